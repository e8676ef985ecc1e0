"""Runs of a noisy circuit on many machines, with MPI: the same counts for the same seed on any number of ranks.

    mpirun -n 4 python3 ensemble_mpi.py circuit.txt --shots 100000 --seed 1
"""

import argparse
import os
import pathlib
import time

import vantel
from mpi4py import MPI


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("circuit", type=pathlib.Path, help="a circuit as text, which every rank can read")
    parser.add_argument("--shots", type=int, default=10000)
    parser.add_argument("--seed", type=int, default=0)
    parser.add_argument("--threads", type=int, default=1, help="of each rank")
    options = parser.parse_args()
    ranks = MPI.COMM_WORLD
    circuit = vantel.Circuit.from_text(options.circuit.read_text())
    ranks.Barrier()
    begun = time.perf_counter()
    part = circuit.ensemble(options.shots, seed=options.seed, threads=options.threads, part=(ranks.rank, ranks.size))
    parts = ranks.gather(part)
    if parts is not None:  # on rank 0
        whole = parts[0]
        for other in parts[1:]:
            whole += other
        print(whole, flush=True)
        if "VANTEL_TIME" in os.environ:
            print(f"{ranks.size} ranks: {time.perf_counter() - begun:.3f} s")


main()
