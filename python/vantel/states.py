"""Pictures of states, and noise that a program draws step by step."""

from __future__ import annotations

import random
from collections.abc import Sequence
from dataclasses import dataclass
from typing import Protocol

from . import _core
from ._core import Qudit


@dataclass(frozen=True)
class Picture:
    """A picture of a state: bars of text when it is printed, and in a notebook an SVG."""

    text: str
    outcomes_svg: str  #: a bar for each outcome, coloured by its phase
    density_svg: str  #: a square for each element of the density matrix

    def __str__(self) -> str:
        return self.text

    def _repr_svg_(self) -> str:
        return self.outcomes_svg

    def _repr_html_(self) -> str:
        return f'<div style="overflow-x:auto">{self.outcomes_svg}{self.density_svg}</div>'


def draw(*qudits: Qudit, title: str = "", names: Sequence[str] | None = None) -> Picture:
    """Draws the state of the listed qudits, all others traced out.

    Colours are phases, by the cyclic map romaO; they fade to grey where outcomes are not coherent.
    names: one for each qudit; without any they are q0, q1, ...
    """
    labels = [f"q{i}" for i in range(len(qudits))] if names is None else list(names)
    return Picture(*_core.draw(*qudits, title=title, names=labels))


class Random(Protocol):
    """Any source of uniform numbers: random.Random, numpy.random.Generator."""

    def random(self) -> float:
        """A number in [0, 1)."""


_system: Random = random.SystemRandom()


def depolarise(target: Qudit, p: float, *, generator: Random = _system) -> tuple[int, int]:
    """Depolarising noise: with probability p one of the d^2 - 1 Weyl operators X^a Z^b that are errors, all equally likely.

    Returns (a, b), which is (0, 0) if there was none.
    """
    return _core.depolarise_by(target, p, float(generator.random()))


def dephase(target: Qudit, p: float, *, generator: Random = _system) -> tuple[int, int]:
    """Dephasing noise: with probability p one of the d - 1 powers Z^b of clock(), all equally likely. Returns (0, b)."""
    return _core.dephase_by(target, p, float(generator.random()))
