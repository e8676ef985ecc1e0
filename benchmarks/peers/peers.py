"""Holds the library beside what somebody would use in its place; see scripts/bench."""
import argparse
import collections
import importlib
import os
import pathlib
import re
import statistics
import sys
import time

# Threads of a matrix product would not be counted, and nobody else has them.
for name in ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS", "MKL_NUM_THREADS"):
    os.environ[name] = "1"

import numpy as np

from rows import GROUPS, Step
from with_numpy import WithNumpy

TOLERANCE = 2e-6
TITLES = {"numpy": "NumPy", "eigen": "Eigen", "fftw": "FFTW", "libquantum": "libquantum", "by_hand": "by hand",
          "same_bits": "by hand, same bits", "same_entries": "the same, 32 B an entry", "bare_pass": "pass over 32 B",
          "complete": "complete list"}
UNITS = {"ns": 1, "µs": 1e3, "ms": 1e6}


class Native:
    """A contender of the C++ module."""

    def __init__(self, module, name, dimension, qudits):
        self.module, self.is_library, self.programs = module, name == "library", {}
        self.itself = getattr(module, name)(dimension, qudits)
        self.load, self.amplitudes, self.read = self.itself.load, self.itself.amplitudes, self.itself.read

    def run(self, steps, times):
        if id(steps) not in self.programs:
            program = self.module.Program()
            for step in steps:
                program.add(step.act, step.qudits, step.amount, step.when)
            self.programs[id(steps)] = (steps, program)  # kept, so that no other list gets its place
        self.itself.run(self.programs[id(steps)][1], times)


class Table:
    def __init__(self, module):
        self.module = module

    def ready(self, name, row):
        """A contender that has the row's state in new memory, and the steps that it is to do."""
        if name == "complete":
            qudits, prepare, steps = row.complete
            name = "library"
        else:
            qudits, prepare, steps = row.qudits, row.prepare, row.steps
        if name == "numpy":
            found = WithNumpy(row.dimension, qudits)
        else:
            makers = {"eigen": "by_eigen", "fftw": "by_fftw", "libquantum": "by_libquantum"}
            found = Native(self.module, makers.get(name, name), row.dimension, qudits)
        if name in ("numpy", "library"):
            found.run(prepare, 1)
        else:
            found.load(self.start)
        return found, steps

    def compare(self, row, name, what, found, expected):
        error = np.abs(found - expected).max() / np.abs(expected).max()
        if not error <= TOLERANCE:
            sys.exit(f"{row.name}: {name} differs in {what} by {error:.1e} of the largest")

    def expect_entries(self, row, library, what):
        """That a time by entry means what it says: no gate has lost any, but where that is what is timed."""
        if row.unit == "ns" and not any(step.when for step in row.steps):
            library.run([Step("probabilities")], 1)
            found = np.count_nonzero(library.read())
            if found != row.entries:
                sys.exit(f"{row.name}: {what} has {found} entries and not {row.entries}")

    def check(self, row, names):
        """What all contenders find out from one state, beside what NumPy does."""
        reference = WithNumpy(row.dimension, row.qudits)
        reference.run(row.prepare, 1)
        self.start = reference.amplitudes()
        if row.steps[0].act == "pair":
            return  # drawn at random; each contender sees to it that both are the same
        everything = [Step("probabilities")]
        turned = [Step("fourier", (i,)) for i in range(row.qudits)]
        library = self.ready("library", row)[0]
        library.run(everything, 1)
        self.compare(row, "the library", "its start", library.read(), np.abs(self.start) ** 2)
        self.expect_entries(row, library, "its start")
        reference.run(row.steps, 1)
        reads = row.steps[-1].act in ("probabilities", "matrix")
        library.run(row.steps, 1)
        if reads:
            self.compare(row, "the library", "what is read", library.read(), reference.read())
        else:
            # Its amplitudes are nobody's to read: probabilities of the levels, and of the levels of the other basis.
            after = WithNumpy(row.dimension, row.qudits)
            after.load(reference.amplitudes())
            for basis in ([], turned):
                library.run(basis, 1)
                after.run(basis, 1)
                library.run(everything, 1)
                self.compare(row, "the library", "probabilities", library.read(), np.abs(after.amplitudes()) ** 2)
        for name in names:
            if name not in ("library", "complete", "bare_pass", "numpy"):
                other, steps = self.ready(name, row)
                other.run(steps, 1)
                if reads:
                    self.compare(row, name, "what is read", other.read(), reference.read())
                else:
                    self.compare(row, name, "amplitudes", other.amplitudes(), reference.amplitudes())

    def round(self, row, names, turns, turn_ns):
        """The time of each contender for the steps once: the median of its turns. All have states of their own."""
        ready = {name: self.ready(name, row) for name in names}
        times = {}
        for name, (contender, steps) in ready.items():
            contender.run(steps, 1)
            start = time.thread_time_ns()
            contender.run(steps, 1)
            times[name] = max(1, turn_ns // max(1, time.thread_time_ns() - start))
        found = collections.defaultdict(list)
        for turn in range(turns):
            for name in names[turn % len(names):] + names[:turn % len(names)]:
                contender, steps = ready[name]
                start = time.thread_time_ns()
                contender.run(steps, times[name])
                found[name].append((time.thread_time_ns() - start) / times[name])
        self.expect_entries(row, ready["library"][0], "what it was timed on")
        scale = row.entries / row.dimension ** row.complete[0] if row.complete else 1
        return {name: statistics.median(list_) * (scale if name == "complete" else 1) for name, list_ in found.items()}


def spread(values, form):
    low, middle, high = min(values), statistics.median(values), max(values)
    return f"{format(middle, form)} ({format(low, form)} to {format(high, form)})"


def cells(row, rounds, columns):
    divisor = UNITS[row.unit] * (row.gates * row.entries if row.unit == "ns" else 1)
    yield row.name
    yield spread([found["library"] / divisor for found in rounds], ".3g") + " " + row.unit
    for name in columns:
        yield spread([found[name] / found["library"] for found in rounds], ".2f") if name in rounds[0] else ""
    if row.wanted:
        beside, most = row.wanted
        ratio = statistics.median(found["library"] / found[beside] for found in rounds)
        yield f"{ratio:.2f} of {TITLES[beside]}, at most {most:g}: " + ("ok" if ratio <= most else "over")


def line(texts):
    return "| " + " | ".join(texts) + " |"


def print_group(table, title, group, options):
    columns = [name for name in TITLES if any(name in row.contenders.split() for row in group)]
    heads = ["work", "the library", *(TITLES[name] for name in columns)]
    wanted = ["aim"] if any(row.wanted for row in group) else []
    print(f"**{title}**\n\n" + line(heads + wanted) + "\n|---|" + "---:|" * (len(heads) - 1) + "---|" * len(wanted))
    for row in group:
        print(row.name, file=sys.stderr)
        names = ["library", *row.contenders.split()]
        table.check(row, names)
        rounds = [table.round(row, names, options.turns, 2_000_000) for _ in range(options.rounds)]
        print(line(cells(row, rounds, columns)))
    print()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("module", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--turns", type=int, default=9)
    parser.add_argument("--filter", default="")
    options = parser.parse_args()
    sys.path.insert(0, str(options.module))
    table = Table(importlib.import_module("vantel_peers"))
    for title, group in GROUPS.items():
        chosen = [row for row in group() if re.search(options.filter, row.name)]
        if chosen:
            print_group(table, title, chosen, options)


main()
