"""Runs a notebook from its first cell to its last, and sees that its pictures are there. With OUTPUT it keeps the page.

Usage: run_notebook.py NOTEBOOK [OUTPUT.html]
"""

import pathlib
import sys

import nbformat
from nbclient.client import NotebookClient

notebook = pathlib.Path(sys.argv[1])
page = nbformat.read(notebook, as_version=4)  # type: ignore[no-untyped-call]
NotebookClient(page, timeout=120, resources={"metadata": {"path": str(notebook.parent)}}).execute()
pictures = [kind for cell in page.cells for output in cell.get("outputs", []) for kind in output.get("data", {})]
assert pictures.count("text/html") == 3 and pictures.count("image/png") == 2, pictures
if len(sys.argv) > 2:
    from nbconvert import HTMLExporter  # type: ignore[import]

    pathlib.Path(sys.argv[2]).write_text(HTMLExporter().from_notebook_node(page)[0])
