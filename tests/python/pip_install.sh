#!/bin/sh
# Installs the package with pip into an environment of its own, from a copy of the sources and without the library
# that the build has made, and uses it.
# Usage: pip_install.sh SOURCES SCRATCH_DIRECTORY PYTHON
set -eu
sources=$1 scratch=$2 python=$3

rm -rf "$scratch"
mkdir -p "$scratch/copy"
(cd "$sources" && tar -cf - --exclude=.git --exclude=build .) | tar -xf - -C "$scratch/copy"
"$python" -m venv --system-site-packages "$scratch/environment"
(cd "$scratch/copy/python" && "$scratch/environment/bin/pip" install --no-build-isolation --no-index --no-deps . >"$scratch/log" 2>&1) ||
    { cat "$scratch/log"; exit 1; }
cd "$scratch"
environment/bin/python - <<'END'
import pathlib
import sys

import vantel

assert pathlib.Path(vantel.__file__).is_relative_to(sys.prefix), vantel.__file__
a, b = vantel.Qudit(3), vantel.Qudit(4)
vantel.prepare_bell(a, b)
assert vantel.schmidt(a, b).round(4).tolist() == [0.5774] * 3
END
