"""The command line: `python -m vantel run circuit.txt --shots 1000 --seed 1 --svg out.svg`."""

from __future__ import annotations

import argparse
import pathlib
import sys
import time

import vantel


def show_progress(done: int, shots: int) -> None:
    """One line on the terminal, written over itself."""
    width = 40
    full = width * done // shots
    print(f"\r{'#' * full}{'.' * (width - full)} {done} of {shots}", end="" if done < shots else "\n", file=sys.stderr, flush=True)


def run(options: argparse.Namespace) -> None:
    text = sys.stdin.read() if options.circuit == "-" else pathlib.Path(options.circuit).read_text()
    circuit = vantel.Circuit.from_text(text)
    if options.svg:
        pathlib.Path(options.svg).write_text(circuit.svg())
    utf8 = (sys.stdout.encoding or "").lower().replace("-", "") == "utf8"
    print(circuit.draw(ascii=not utf8))
    begun = time.monotonic()
    # A line of progress only for a reader, and only for work that takes a while.
    shown = [False]

    def progress(done: int, shots: int) -> None:
        if shown[0] or time.monotonic() - begun > 0.5 and done < shots:
            shown[0] = True
            show_progress(done, shots)

    print(circuit.ensemble(options.shots, seed=options.seed, threads=options.threads,
                           progress=progress if sys.stderr.isatty() else None))


def count(text: str) -> int:
    number = int(text)
    if number < 0:
        raise ValueError
    return number


def main() -> int:
    parser = argparse.ArgumentParser(prog="python -m vantel", description="A simulator of qudits.")
    parser.add_argument("--version", action="version", version=vantel.__version__)
    commands = parser.add_subparsers(required=True)
    command = commands.add_parser("run", help="run a circuit many times and count what it reads")
    command.add_argument("circuit", help="a file with a circuit as text, or - for standard input")
    command.add_argument("--shots", type=count, default=1000, help="how many runs (1000)")
    command.add_argument("--seed", type=count, help="of the draws that can be repeated (one of the system's randomness)")
    command.add_argument("--threads", type=count, default=0, help="how many share the runs (all processors)")
    command.add_argument("--svg", metavar="FILE", help="write a picture of the circuit")
    command.set_defaults(action=run)
    options = parser.parse_args()
    try:
        options.action(options)
    except KeyboardInterrupt:
        print("\nstopped", file=sys.stderr)
        return 130
    except (OSError, ValueError, vantel.Error) as failure:
        print(f"{parser.prog}: {failure}", file=sys.stderr)
        return 1
    return 0


sys.exit(main())
