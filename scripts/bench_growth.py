"""How time grows with the entries: the plot, and the steps in it."""
import re

import bench_plot
from bench_pages import short

GATES = "hadamard i_swap clock cycle".split()
OTHERS = "density_matrix_one probabilities_all probabilities_two measure merge release".split()
KINDS = {"complete": "", "with missing labels": "lacking-", "scattered": "scattered-"}
PATTERN = f"^(literal/)?({'|'.join(GATES + OTHERS)})/"

# By how much a step may change the time of an entry.
STEP = 1.3


def line(times, name, prefix=""):
    found = ((re.fullmatch(rf"{name}/{prefix}(\d+)(/0)?", case), time) for case, time in times.items())
    return sorted((int(match[1]), time) for match, time in found if match)


def plot(times):
    return bench_plot.plot([[(f"{title}, {kind}", {name: (points, [] if prefix else line(times, "literal/" + name))
                                                  for name in names if (points := line(times, name, prefix))})
                             for title, names in (("Gates", GATES), ("Readouts, merging and release", OTHERS))]
                            for kind, prefix in KINDS.items()])


def steps(times):
    """For each line the sizes between which the time of an entry rises most, and between which the time of a call falls
    most though the list is longer: a path that begins too late or too early."""
    rows = ["| operation | list | largest rise of an entry's time | largest fall of a call's | |", "|---|---|---|---|---|"]
    for kind, prefix in KINDS.items():
        for name in GATES + OTHERS:
            points = [(n, time) for n, time in line(times, name, prefix) if n >= 10]
            if len(points) < 2:
                continue
            pairs = list(zip(points, points[1:]))
            rise, low, high = max(((b[1] / b[0]) / (a[1] / a[0]), a, b) for a, b in pairs)
            fall, more, less = max((a[1] / b[1], a, b) for a, b in pairs)
            falls = f"{fall:.2f}, {more[0]} to {less[0]}" if fall > 1 else "none"
            rows.append(f"| {name} | {kind} | {rise:.2f}, {low[0]} to {high[0]} ({short(low[1])} to {short(high[1])}) | "
                        f"{falls} | {'over' if max(rise, fall) > STEP else 'ok'} |")
    return "\n".join(rows) + "\n"
