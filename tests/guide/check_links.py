#!/usr/bin/env python3
"""Follows every relative link of pages in Markdown and HTML: the file must be there, and so must the place in it.

Usage: check_links.py PAGE_OR_DIRECTORY...
"""
import html.parser
import pathlib
import re
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.links, self.places = [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src"):
                self.links.append(value)
            elif name in ("id", "name"):
                self.places.add(value)


class Markdown:
    def __init__(self, text):
        text = re.sub(r"^```.*?^```$|^    [^\n]*$", "", text, flags=re.MULTILINE | re.DOTALL)
        self.links = re.findall(r"\[[^\]]*\]\(([^) ]+)\)", text)
        titles = re.findall(r"^#+ (.*)$", text, re.MULTILINE)
        self.places = {re.sub(r"[^\w -]", "", title).strip().lower().replace(" ", "-") for title in titles}


# Doxygen links to the list of a class's own classes and leaves the list out where all of them are private.
NO_LIST = "#nested-classes"
read = {}


def page(path):
    path = path.resolve()
    if path not in read:
        text = path.read_text()
        read[path] = Page(text) if path.suffix == ".html" else Markdown(text)
    return read[path]


pages = []
for name in map(pathlib.Path, sys.argv[1:]):
    pages += [name] if name.is_file() else sorted([*name.rglob("*.md"), *name.rglob("*.html")])
broken, followed = [], 0
for path in pages:
    for link in page(path).links:
        parts = urllib.parse.urlsplit(link)
        if parts.scheme or parts.netloc or link == NO_LIST:
            continue
        followed += 1
        target = path.parent / urllib.parse.unquote(parts.path) if parts.path else path
        if not target.exists():
            broken.append(f"{path}: {link}")
        elif parts.fragment and target.suffix in (".md", ".html") and parts.fragment not in page(target).places:
            broken.append(f"{path}: {link}, a place that is not there")
print("\n".join(broken) or f"{followed} links of {len(pages)} pages lead somewhere")
sys.exit(bool(broken) or followed == 0)
