#!/usr/bin/env python3
"""Compiles and runs every program of a page, and holds what it prints against the text block behind it.

Usage: run_snippets.py PAGE SCRATCH_DIRECTORY INCLUDE_DIRECTORY LIBRARY_DIRECTORY C_COMPILER CXX_COMPILER [FLAG...]
A block without a main function becomes the body of one.
"""

import pathlib
import re
import subprocess
import sys

page, scratch, include, libraries, c_compiler, cxx_compiler, *flags = sys.argv[1:]
scratch = pathlib.Path(scratch)
scratch.mkdir(parents=True, exist_ok=True)

LANGUAGES = {
    "c": ([c_compiler, "-std=c11"], "#include <assert.h>\n#include <stdio.h>\n#include <vantel_guarded.h>\nint main(void) {\n%s}\n"),
    "cpp": ([cxx_compiler, "-std=c++20"],
            "#include <cassert>\n#include <cmath>\n#include <cstdio>\n#include <vantel.hpp>\nint main() {\n%s}\n"),
}
block = re.compile(r"^```(\w*)\n(.*?)^```\n", re.MULTILINE | re.DOTALL)
text = pathlib.Path(page).read_text()
snippets = 0
expected_of = {}
previous = None
for match in block.finditer(text):
    if match[1] in LANGUAGES:
        previous = match
        expected_of[match] = None
    elif match[1] == "text" and previous and text[previous.end():match.start()].strip() == "":
        expected_of[previous] = match[2]

for match, expected in expected_of.items():
    command, frame = LANGUAGES[match[1]]
    line = text.count("\n", 0, match.start()) + 1
    source = scratch / f"line_{line}.{match[1]}"
    source.write_text(match[2] if "int main" in match[2] else frame % match[2])
    program = source.with_suffix("")
    subprocess.run([*command, *flags, "-Wall", "-Wextra", "-Werror", f"-I{include}", source, f"-L{libraries}",
                    f"-Wl,-rpath,{libraries}", "-lvantel", "-lvantel_guarded", "-o", program], check=True)
    run = subprocess.run([program], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if run.returncode != 0 or expected is not None and run.stdout != expected:
        sys.exit(f"{page}:{line}: exit status {run.returncode}, printed\n{run.stdout}{run.stderr}expected\n{expected}")
    snippets += 1
print(f"{page}: {snippets} programs")
sys.exit(snippets == 0)
