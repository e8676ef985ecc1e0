"""By how much of a circle does a gate turn a state that it leaves alone? Four base-3 digits read it in 81sts."""

import argparse

import numpy as np
import numpy.typing as npt
import vantel

BASE, DIGITS, LEVELS = 3, 4, 5
VALUES = BASE**DIGITS


def estimate(phase: float) -> npt.NDArray[np.float64]:
    """The probability of each estimate y, in 81sts of a circle, of the phase by which the gate turns level 1."""
    turned = vantel.Qudit(LEVELS)
    vantel.add(turned, 1)
    number = vantel.make_register([BASE] * DIGITS)  # the first is the lowest digit
    for digit in number:
        vantel.hadamard(digit)
    # The gate is applied x times for number x; a power of clock turns level 1 by its fraction of a fifth of a circle.
    for j, digit in enumerate(number):
        for level in range(1, BASE):
            vantel.clock(turned, phase * LEVELS * level * BASE**j, when=digit == level)
    vantel.inverse_fourier_transform(*number)
    return vantel.probabilities(*reversed(number)).ravel()


if __name__ == "__main__":
    argparse.ArgumentParser(description=__doc__).parse_args()
    for phase in 0.0, 2 / 9, 1 / 7, 0.3:
        seen = estimate(phase)
        print(f"{phase:.5f}  {seen.argmax():2d}/81 = {seen.argmax() / VALUES:.5f}  probability {seen.max():.5f}")
