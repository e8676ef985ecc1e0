"""The quantum Zeno effect on a qutrit: asked often enough whether it still stands in level 0, it is held there."""

import argparse

import vantel


def survives(steps: int) -> bool:
    """Whether each of `steps` questions on the way through a whole cycle finds the qutrit in level 0."""
    qutrit = vantel.Qudit(3)
    for _ in range(steps):
        vantel.cycle(qutrit, 1 / steps)
        if not vantel.project(qutrit == 0):
            return False
    return True


if __name__ == "__main__":
    argparse.ArgumentParser(description=__doc__).parse_args()
    trials = 2000
    for steps in 2, 4, 8, 16:
        print(f"{steps:2d} steps: {sum(survives(steps) for _ in range(trials)) / trials:.3f} survive")
