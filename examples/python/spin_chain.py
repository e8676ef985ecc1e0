"""A chain of seven spins of size 1, with H = the sum of S . S' over neighbours: three quanta at one end run through it."""

import argparse

import numpy as np
import numpy.typing as npt
import vantel

SPINS = 7
START = (2, 1, 0, 0, 0, 0, 0)  # level v is the state with S_z = 1 - v
S_Z = np.diag([1.0, 0, -1])
RAISING = np.sqrt(2) * np.eye(3, k=1)


def coupling() -> npt.NDArray[np.float64]:
    """S . S' of two spins, a matrix of shape (9, 9)."""
    return np.asarray(np.kron(S_Z, S_Z) + (np.kron(RAISING, RAISING.T) + np.kron(RAISING.T, RAISING)) / 2)


def bond(t: float) -> npt.NDArray[np.complex128]:
    """exp(-i t S . S')."""
    energies, vectors = np.linalg.eigh(coupling())
    return np.asarray((vectors * np.exp(-1j * t * energies)) @ vectors.T)


def evolve(t: float, steps: int) -> list[vantel.Qudit]:
    """The chain after a time t, by a Trotter product of second order."""
    chain = vantel.make_register([3] * SPINS)
    for qutrit, level in zip(chain, START):
        vantel.add(qutrit, level)
    half, whole = bond(t / steps / 2), bond(t / steps)
    for _ in range(steps):
        for gate, first in ((half, 0), (whole, 1), (half, 0)):
            for i in range(first, SPINS - 1, 2):
                vantel.unitary(gate, chain[i], chain[i + 1])
    return chain


def profile(chain: list[vantel.Qudit]) -> npt.NDArray[np.float64]:
    """The mean of S_z of each spin."""
    return np.array([vantel.expectation(S_Z, qutrit).real for qutrit in chain])


if __name__ == "__main__":
    argparse.ArgumentParser(description=__doc__).parse_args()
    print("time   S_z of each spin")
    for t in 0.5, 1.0, 2.0:
        print(t, *(f"{mean:8.3f}" for mean in profile(evolve(t, 20))))
