"""Circuits: steps over named qudits that are recorded once and run as often as one likes."""

from __future__ import annotations

import math
import secrets
from collections import Counter
from collections.abc import Callable, Sequence
from dataclasses import dataclass, field
from typing import NoReturn, SupportsFloat, SupportsIndex, overload

import numpy as np
import numpy.typing as npt

from . import _core
from ._core import Qudit

_NO_MATRIX = np.zeros(0, complex)


@dataclass(frozen=True)
class When:
    """Conditions on qudits and values of a circuit, joined by `&`."""

    terms: tuple[tuple[bool, str, int, bool], ...]  # whether a value is asked, its name, a level, whether it must be equal

    def __and__(self, other: When) -> When:
        if not isinstance(other, When):
            raise TypeError(f"a condition must be a vantel.When, not {type(other).__name__}")
        return When(self.terms + other.terms)

    def __bool__(self) -> NoReturn:
        raise TypeError("a condition has no truth value: join conditions by & and brackets")


def _seed(seed: SupportsIndex | None) -> int:
    number = secrets.randbits(63) if seed is None else seed.__index__()
    if not 0 <= number < 2**64:
        raise ValueError("a seed must be in 0 .. 2^64 - 1")
    return number


def _level(number: object, dimension: int) -> int:
    if isinstance(number, bool) or not isinstance(number, SupportsIndex):
        raise TypeError(f"a level that is compared must be an integer, not {type(number).__name__}")
    level = number.__index__()
    if not 0 <= level < dimension:
        raise ValueError(f"no level {level} of {dimension} levels")
    return level


@dataclass(frozen=True, eq=False)
class Wire:
    """A qudit of a circuit. `wire == level` and `wire != level` make conditions."""

    name: str
    dimension: int

    def __hash__(self) -> int:
        return hash((self.name, self.dimension))

    @overload  # type: ignore[override]
    def __eq__(self, level: Wire) -> bool: ...
    @overload
    def __eq__(self, level: SupportsIndex) -> When: ...
    def __eq__(self, level: object) -> bool | When:
        if isinstance(level, Wire):
            return (self.name, self.dimension) == (level.name, level.dimension)
        return When(((False, self.name, _level(level, self.dimension), True),))

    @overload  # type: ignore[override]
    def __ne__(self, level: Wire) -> bool: ...
    @overload
    def __ne__(self, level: SupportsIndex) -> When: ...
    def __ne__(self, level: object) -> bool | When:
        if isinstance(level, Wire):
            return (self.name, self.dimension) != (level.name, level.dimension)
        return When(((False, self.name, _level(level, self.dimension), False),))


@dataclass(frozen=True, eq=False)
class Value:
    """What a step of a circuit reads. `value == number` and `value != number` make conditions."""

    name: str

    def __hash__(self) -> int:
        return hash(self.name)

    @overload  # type: ignore[override]
    def __eq__(self, level: Value) -> bool: ...
    @overload
    def __eq__(self, level: SupportsIndex) -> When: ...
    def __eq__(self, level: object) -> bool | When:
        if isinstance(level, Value):
            return self.name == level.name
        return When(((True, self.name, _level(level, 10), True),))

    @overload  # type: ignore[override]
    def __ne__(self, level: Value) -> bool: ...
    @overload
    def __ne__(self, level: SupportsIndex) -> When: ...
    def __ne__(self, level: object) -> bool | When:
        if isinstance(level, Value):
            return self.name != level.name
        return When(((True, self.name, _level(level, 10), False),))


@dataclass(frozen=True)
class Run:
    """A run of a circuit: its qudits as it left them, by their names, and what it read."""

    qudits: dict[str, Qudit]
    values: dict[str, int]


@dataclass(frozen=True)
class Ensemble:
    """How often many runs of a circuit read what."""

    names: tuple[str, ...]  #: of the values
    counts: Counter[tuple[int, ...]]  #: by one number for each of `names`
    repeatable: bool  #: whether the same seed gives the same counts
    seed: int

    @property
    def shots(self) -> int:
        """How many runs there were."""
        return self.counts.total()

    def share(self, name: str, number: int) -> float:
        """The share of the runs in which a value was this number."""
        if name not in self.names:
            raise KeyError(f"no value is named {name}")
        place = self.names.index(name)
        found = sum(shots for numbers, shots in self.counts.items() if numbers[place] == number)
        return found / self.shots if self.shots else 0.0

    def __add__(self, other: Ensemble) -> Ensemble:
        """Two parts of one ensemble together."""
        if self.names != other.names or self.seed != other.seed:
            raise ValueError("these are not parts of one ensemble")
        return Ensemble(self.names, self.counts + other.counts, self.repeatable and other.repeatable, self.seed)

    def __str__(self) -> str:
        width = max((len(name) for name in self.names), default=1)
        lines = [" ".join(f"{text:>{width}}" for text in self.names) + "  shots"]
        most = max(self.counts.values(), default=1)
        for numbers, shots in sorted(self.counts.items()):
            bar = "#" * math.ceil(40 * shots / most)
            lines.append(" ".join(f"{number:>{width}}" for number in numbers) + f"  {shots:>{len(str(most))}}  {bar}")
        if not self.repeatable:
            lines.append("cannot be repeated: the circuit collapses its state midway")
        return "\n".join(lines)


@dataclass
class Circuit:
    """A recorded list of steps over named qudits; it holds no state.

        circuit = Circuit(a=3, b=3)
        a, b = circuit.wires
        circuit.hadamard(a).sum(a, b)
        found = circuit.measure(a, "found")
        circuit.shift(b, when=found == 1).shift(b, 2, when=found == 2)
        print(circuit.run().values)

    Steps are the functions of their names, with a Wire for a Qudit. Names have letters, digits and `_`. What cannot be
    recorded raises ValueError, before the circuit changes. In a notebook it shows as a picture, printed as text.
    """

    _recorded: _core.Recorded = field(repr=False)

    def __init__(self, **dimensions: SupportsIndex) -> None:
        self._recorded = _core.Recorded()
        for name, dimension in dimensions.items():
            self.add_qudit(name, dimension)

    @classmethod
    def _of(cls, recorded: _core.Recorded) -> Circuit:
        circuit = cls()
        circuit._recorded = recorded
        return circuit

    @property
    def wires(self) -> tuple[Wire, ...]:
        """The qudits, in order."""
        return tuple(Wire(name, dimension) for name, dimension in self._recorded.qudits())

    @property
    def values(self) -> tuple[Value, ...]:
        """What is read, in order."""
        return tuple(Value(name) for name in self._recorded.values())

    def __len__(self) -> int:
        """The number of steps."""
        return self._recorded.steps()

    def add_qudit(self, name: str, dimension: SupportsIndex) -> Wire:
        """Adds a qudit of 2 to 10 levels, which begins in level 0."""
        self._recorded.add_qudit(name, _level(dimension, 11))
        return Wire(name, dimension.__index__())

    def _place(self, wire: Wire) -> int:
        if not isinstance(wire, Wire):
            raise TypeError(f"a qudit of a circuit must be a vantel.Wire, not {type(wire).__name__}")
        for place, (name, dimension) in enumerate(self._recorded.qudits()):
            if name == wire.name and dimension == wire.dimension:
                return place
        raise ValueError(f"the circuit has no qudit {wire.name} of {wire.dimension} levels")

    def _record(self, action: str, wires: Sequence[Wire], amount: SupportsFloat | SupportsIndex = 1.0,
                when: When | None = None, values: Sequence[str] = (), matrix: npt.ArrayLike = _NO_MATRIX) -> Circuit:
        if isinstance(amount, bool):
            raise TypeError("a power must be a number, not bool")
        if when is not None and not isinstance(when, When):
            raise TypeError(f"when must be a vantel.When, not {type(when).__name__}")
        asked = []
        for on_value, name, level, is_equal in when.terms if when is not None else ():
            names = self._recorded.values() if on_value else [wire for wire, _ in self._recorded.qudits()]
            if name not in names:
                raise ValueError(f"the circuit has nothing called {name}")
            asked.append((on_value, names.index(name), level, is_equal))
        places = [self._place(wire) for wire in wires]
        number = float(amount)
        periods = {"clock": wires[0].dimension, "cycle": wires[0].dimension, "shift": wires[0].dimension,
                   "i_swap": 4, "phase_rotate": 2 * math.pi} if wires else {"phase_rotate": 2 * math.pi}
        if math.isfinite(number) and abs(number) > periods.get(action, math.inf):
            number = math.remainder(number, periods[action])  # before it loses digits to single precision
        self._recorded.record(action, places, number, asked, list(values), matrix)
        return self

    def hadamard(self, target: Wire, *, when: When | None = None) -> Circuit:
        """vantel.hadamard()"""
        return self._record("hadamard", [target], when=when)

    def inverse_hadamard(self, target: Wire, *, when: When | None = None) -> Circuit:
        """vantel.inverse_hadamard()"""
        return self._record("inverse_hadamard", [target], when=when)

    def cycle(self, target: Wire, power: SupportsFloat | SupportsIndex = 1.0, *, when: When | None = None) -> Circuit:
        """vantel.cycle()"""
        return self._record("cycle", [target], power, when)

    def shift(self, target: Wire, power: SupportsFloat | SupportsIndex = 1.0, *, when: When | None = None) -> Circuit:
        """vantel.shift()"""
        return self._record("shift", [target], power, when)

    def clock(self, target: Wire, power: SupportsFloat | SupportsIndex = 1.0, *, when: When | None = None) -> Circuit:
        """vantel.clock()"""
        return self._record("clock", [target], power, when)

    def phase_rotate(self, angle: SupportsFloat | SupportsIndex, *, when: When) -> Circuit:
        """vantel.phase_rotate(), with a condition on a qudit at least."""
        return self._record("phase_rotate", [], angle, when)

    def swap_levels(self, first: Wire, second: Wire, *, when: When | None = None) -> Circuit:
        """vantel.swap_levels()"""
        return self._record("swap_levels", [first, second], when=when)

    def i_swap(self, first: Wire, second: Wire, power: SupportsFloat | SupportsIndex = 1.0, *,
               when: When | None = None) -> Circuit:
        """vantel.i_swap()"""
        return self._record("i_swap", [first, second], power, when)

    def add(self, target: Wire, steps: SupportsIndex, *, when: When | None = None) -> Circuit:
        """vantel.add()"""
        return self._record("add", [target], steps.__index__() % target.dimension, when)

    def sum(self, control: Wire, target: Wire, *, when: When | None = None) -> Circuit:
        """vantel.sum()"""
        return self._record("sum", [control, target], when=when)

    def inverse_sum(self, control: Wire, target: Wire, *, when: When | None = None) -> Circuit:
        """vantel.inverse_sum()"""
        return self._record("inverse_sum", [control, target], when=when)

    def unitary(self, matrix: npt.ArrayLike, *targets: Wire, when: When | None = None) -> Circuit:
        """vantel.unitary(): a matrix of shape (P, P) in the order of numpy.kron."""
        return self._record("unitary", targets, when=when, matrix=matrix)

    def depolarise(self, target: Wire, p: SupportsFloat, *, when: When | None = None) -> Circuit:
        """Depolarising noise: with probability p one of the d^2 - 1 Weyl operators that are errors, all equally likely.

        Noise and readings can have conditions on values only.
        """
        return self._record("depolarise", [target], p, when)

    def dephase(self, target: Wire, p: SupportsFloat, *, when: When | None = None) -> Circuit:
        """Dephasing noise: with probability p one of the d - 1 powers of clock(), all equally likely."""
        return self._record("dephase", [target], p, when)

    def damp(self, target: Wire, gamma: SupportsFloat, *, when: When | None = None) -> Circuit:
        """vantel.damp(), which draws from the system's randomness."""
        return self._record("damp", [target], gamma, when)

    def measure(self, target: Wire, name: str, *, when: When | None = None) -> Value:
        """Measures a qudit and reads its level into the value of this name."""
        self._record("measure", [target], when=when, values=[name])
        return Value(name)

    def measure_all(self, **targets: Wire) -> tuple[Value, ...]:
        """Measures several qudits at once, each into the value of its keyword: `measure_all(m=a, n=b)`."""
        self._record("measure", list(targets.values()), values=list(targets))
        return tuple(map(Value, targets))

    def project(self, name: str, *, when: When) -> Value:
        """vantel.project(): reads 1 if the conditions on qudits hold, else 0, and projects onto the answer."""
        self._record("project", [], when=when, values=[name])
        return Value(name)

    def reset(self, target: Wire, name: str, *, when: When | None = None) -> Value:
        """vantel.reset(); reads the level that it had."""
        self._record("reset", [target], when=when, values=[name])
        return Value(name)

    def append(self, other: Circuit) -> Circuit:
        """Records the steps of another circuit; what has the same name is the same, other names are added."""
        self._recorded.append(other._recorded)
        return self

    def copy(self) -> Circuit:
        """The same steps, as a circuit of its own."""
        return Circuit._of(self._recorded.copy())

    __copy__ = copy

    def __deepcopy__(self, memo: object) -> Circuit:
        return self.copy()

    def __reduce__(self) -> tuple[Callable[[str], Circuit], tuple[str]]:
        return Circuit.from_text, (self.to_text(),)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Circuit) and self.to_text() == other.to_text()

    def inverse(self) -> Circuit:
        """The circuit backwards, each step inverted. Raises ValueError if a step reads or is noise."""
        return Circuit._of(self._recorded.inverse())

    def repeat(self, times: SupportsIndex) -> Circuit:
        """The circuit `times` times over, of at most ten million steps."""
        most_steps = 10_000_000
        if not 0 <= times.__index__() <= most_steps // max(len(self), 1):
            raise ValueError(f"a circuit of {times.__index__()} times {len(self)} steps")
        return Circuit._of(self._recorded.repeat(times.__index__()))

    def run(self, *qudits: Qudit, seed: SupportsIndex | None = None) -> Run:
        """Runs the steps on given qudits, one for each wire and of its dimension, or without any on new ones.

        seed: of the noise; None for one of the system's randomness. Measurements always draw from the system.
        """
        used = qudits or tuple(Qudit(wire.dimension) for wire in self.wires)
        if [qudit.dimension for qudit in used] != [wire.dimension for wire in self.wires]:
            raise ValueError("the qudits have not the dimensions of the circuit")
        if not used:
            return Run({}, {})
        number = _seed(seed)
        values = self._recorded.run(number, *used)
        return Run({wire.name: qudit for wire, qudit in zip(self.wires, used)}, values)

    def ensemble(self, shots: SupportsIndex, *, seed: SupportsIndex | None = None, threads: SupportsIndex = 0,
                 part: tuple[int, int] = (0, 1), progress: Callable[[int, int], object] | None = None) -> Ensemble:
        """Many runs from level 0, each independent of all others, on all processors. Ctrl-C stops it.

        seed: of all draws that are not the system's, 0 .. 2^64 - 1; None for one of the system's randomness.
        threads: how many share the runs; 0 for as many as there are processors.
        part: (k, n) makes the k-th of n parts, k = 0 .. n - 1; parts of one seed add up to the ensemble of all.
        progress: called now and then with how many runs of this part are done, and how many there are.
        """
        all_shots, (k, n) = shots.__index__(), part
        if all_shots < 0 or not 0 <= k < n:
            raise ValueError("shots must not be negative, and part k, n needs 0 <= k < n")
        number = _seed(seed)
        running = self._recorded.trials(number)
        first, end = all_shots * k // n, all_shots * (k + 1) // n
        counts: Counter[tuple[int, ...]] = Counter()
        step = max(1, (end - first) // 100 if progress is not None else end - first)
        for start in range(first, end, step):
            stop = min(start + step, end)
            counts.update(running.tally(start, stop, threads.__index__()))
            if progress is not None:
                progress(stop - first, end - first)
        return Ensemble(tuple(self._recorded.values()), counts, running.repeatable(), number)

    def to_text(self) -> str:
        """The plain text that from_text() makes the same circuit of."""
        return self._recorded.write()

    @staticmethod
    def from_text(text: str) -> Circuit:
        """Reads a circuit. Raises ValueError with line and column for a text that is none."""
        return Circuit._of(_core.Recorded.read(text))

    def draw(self, *, ascii: bool = False) -> str:
        """The circuit as text, a line for each qudit."""
        return self._recorded.draw_text(not ascii)

    def svg(self) -> str:
        """The circuit as an SVG picture."""
        return self._recorded.draw_svg()

    def __str__(self) -> str:
        return self.draw()

    def __repr__(self) -> str:
        return f"<vantel.Circuit of {len(self.wires)} qudits and {len(self)} steps>"

    def _repr_svg_(self) -> str:
        return self.svg()

    def _repr_html_(self) -> str:
        return f'<div style="overflow-x:auto">{self.svg()}</div>'
