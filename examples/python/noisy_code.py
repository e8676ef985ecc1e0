"""A code of three qutrits that sees every error of one of them, under depolarising noise.

Level k becomes the sum over j of |j, j + k, j + 2k>. Half of a Bell pair is sent, which shows every error.
"""

import argparse

import vantel
from vantel import Circuit, Wire


def encode(circuit: Circuit, code: tuple[Wire, Wire, Wire]) -> None:
    first, second, third = code  # the third holds the message
    circuit.hadamard(first).sum(first, second).sum(third, second).sum(second, third)


def sent(p: float) -> Circuit:
    """With noise of probability p on each qutrit; test_clock and test_shift are 0 where the test sees no error."""
    circuit = Circuit(kept=3, first=3, second=3, third=3)
    kept, first, second, third = circuit.wires
    circuit.hadamard(kept).sum(kept, third)
    encode(circuit, (first, second, third))
    for qutrit in first, second, third:
        circuit.depolarise(qutrit, p)
    circuit.inverse_sum(second, third).inverse_sum(third, second)
    circuit.inverse_sum(first, second).inverse_hadamard(first)
    circuit.inverse_sum(kept, third).inverse_hadamard(kept)
    circuit.measure_all(test_clock=first, test_shift=second, phase=kept, offset=third)
    return circuit


def shares(p: float, shots: int, seed: int) -> tuple[float, float]:
    """The share that passes the test, and of these the share that is wrong."""
    counts = sent(p).ensemble(shots, seed=seed).counts
    passed = counts[0, 0, 0, 0] + sum(n for numbers, n in counts.items() if numbers[:2] == (0, 0) and any(numbers))
    return passed / shots, 1 - counts[0, 0, 0, 0] / passed


def exactly(p: float) -> tuple[float, float]:
    """The same, calculated: the test sees the sums of the shifts and of the clocks, and errors alike on all do no harm."""
    passed = (1 + 8 * (1 - 9 * p / 8) ** 3) / 9
    return passed, 1 - ((1 - p) ** 3 + 8 * (p / 8) ** 3) / passed


if __name__ == "__main__":
    argparse.ArgumentParser(description=__doc__).parse_args()
    print(sent(0.05))
    print("p     passed  wrong of them  exactly")
    for p in 0.02, 0.05, 0.1:
        passed, wrong = shares(p, 20000, seed=1)
        print(f"{p:.2f}  {passed:.4f}  {wrong:13.4f}  {exactly(p)[1]:.4f}")
