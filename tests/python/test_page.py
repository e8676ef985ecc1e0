"""The Python programs of a page, one after the other, and what they print."""

from __future__ import annotations

import contextlib
import io
import pathlib
import re

import pytest

ROOT = pathlib.Path(__file__).parents[2]


@pytest.mark.parametrize(("page", "count"), [("README.md", 1), ("docs/python.md", 2)])
def test_the_page_prints_what_stands_beside_it(page: str, count: int) -> None:
    names: dict[str, object] = {}
    programs = re.findall(r"^```python\n(.*?)^```\n(?:```text\n(.*?)^```\n)?", (ROOT / page).read_text(), re.M | re.S)
    assert len(programs) == count
    for program, expected in programs:
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            exec(compile(program, page, "exec"), names)
        assert printed.getvalue() == expected
