"""The programs of the page about Python, one after the other, and what they print."""

from __future__ import annotations

import contextlib
import io
import pathlib
import re

PAGE = pathlib.Path(__file__).parents[2] / "docs" / "python.md"


def test_the_page_prints_what_stands_beside_it() -> None:
    names: dict[str, object] = {}
    programs = re.findall(r"^```python\n(.*?)^```\n(?:```text\n(.*?)^```\n)?", PAGE.read_text(), re.M | re.S)
    assert len(programs) == 2
    for program, told in programs:
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            exec(compile(program, str(PAGE), "exec"), names)
        assert printed.getvalue() == told
