"""Random programs, with qudits that come, go and are forgotten at any time, against the dense model."""

from __future__ import annotations

import gc

import numpy as np
import vantel
from hypothesis import HealthCheck, given, settings, strategies as st

import dense_model as dense

TOLERANCE = 2e-5
MOST_COMBINATIONS = 3000


class Program:
    def __init__(self, data: st.DataObject) -> None:
        self.data = data
        self.model = dense.DenseState()
        self.qudits: dict[int, vantel.Qudit] = {}  # by axis
        self.kept: list[vantel.Condition] = []  # conditions that outlive the names in them
        self.closed: list[vantel.Qudit] = []

    def pick(self, most: int, least: int = 1) -> list[int]:
        return self.data.draw(st.lists(st.sampled_from(sorted(self.qudits)), min_size=least, max_size=most, unique=True))

    def conditions(self, targets: list[int]) -> tuple[dense.When, vantel.Condition | None]:
        free = sorted(set(self.qudits) - set(targets))
        axes = self.data.draw(st.lists(st.sampled_from(free), max_size=3)) if free else []
        when: dense.When = []
        joined: vantel.Condition | None = None
        for axis in axes:
            level = self.data.draw(st.integers(0, self.qudits[axis].dimension - 1))
            is_equal = self.data.draw(st.booleans())
            when.append((axis, level, is_equal))
            one = self.qudits[axis] == level if is_equal else self.qudits[axis] != level
            joined = one if joined is None else joined & one
        if joined is not None and self.data.draw(st.integers(0, 9)) == 0:
            self.kept.append(joined)
        return when, joined

    def gate(self) -> None:
        axis, = self.pick(1)
        qudit, d = self.qudits[axis], self.qudits[axis].dimension
        when, condition = self.conditions([axis])
        power = self.data.draw(st.one_of(st.sampled_from([1.0, -1, 2, 123456789.37]), st.floats(-20, 20)))
        steps = self.data.draw(st.integers(-30, 30))
        name = self.data.draw(st.sampled_from(["hadamard", "inverse", "cycle", "shift", "clock", "add", "phase"]))
        matrix = np.eye(d, dtype=complex)
        if name == "hadamard":
            vantel.hadamard(qudit, when=condition)
            matrix = dense.fourier(d)
        elif name == "inverse":
            vantel.inverse_hadamard(qudit, when=condition)
            matrix = dense.fourier(d).conj()
        elif name == "cycle":
            vantel.cycle(qudit, power, when=condition)
            matrix = dense.cycle(d, power)
        elif name == "shift":
            vantel.shift(qudit, power, when=condition)
            matrix = dense.cycle(d, -power)
        elif name == "clock":
            vantel.clock(qudit, power, when=condition)
            matrix = dense.clock(d, power)
        elif name == "add":
            vantel.add(qudit, steps, when=condition)
            matrix = np.roll(matrix, steps, axis=0)
        elif condition is not None:
            vantel.phase_rotate(power, when=condition)
            matrix = matrix * np.exp(1j * power)
        self.model.apply(matrix, [axis], when)

    def exchange(self) -> None:
        axes = self.pick(2, 2) if len(self.qudits) > 1 else []
        dimensions = [self.qudits[axis].dimension for axis in axes]
        if len(set(dimensions)) != 1:
            return
        when, condition = self.conditions(axes)
        power = self.data.draw(st.one_of(st.none(), st.floats(-9, 9)))
        if power is None:
            vantel.swap_levels(self.qudits[axes[0]], self.qudits[axes[1]], when=condition)
            self.model.apply(np.eye(dimensions[0] ** 2).reshape([dimensions[0]] * 4).swapaxes(0, 1).reshape(
                dimensions[0] ** 2, -1).astype(complex), axes, when)
        else:
            vantel.i_swap(self.qudits[axes[0]], self.qudits[axes[1]], power, when=condition)
            self.model.apply(dense.i_swap(dimensions[0], power), axes, when)

    def ask(self) -> None:
        axes = self.pick(3)
        names = [self.qudits[axis] for axis in axes]
        what = self.data.draw(st.sampled_from(["measure", "project", "density", "counts"]))
        if what == "measure":
            levels = vantel.measure(*names)
            assert self.model.project([(axis, level, True) for axis, level in zip(axes, levels)], True) > 1e-12
        elif what == "project":
            when, condition = self.conditions([])
            if condition is not None:
                answer = vantel.project(condition)
                assert self.model.project(when, answer) > 1e-12
        elif what == "density":
            told = self.model.density_matrix(axes)
            assert np.allclose(vantel.density_matrix(*names), told, atol=TOLERANCE)
            assert abs(vantel.purity(*names) - np.trace(told @ told).real) < TOLERANCE
        else:
            possible = self.model.probabilities(axes)
            drawn = vantel.counts(*names, shots=20, seed=1)
            assert drawn.total() == 20 and all(possible[levels] > 0 for levels in drawn)

    def come(self) -> None:
        d = self.data.draw(st.integers(2, 5))
        if self.model.state.size * d <= MOST_COMBINATIONS:
            self.qudits[self.model.add_qudit(d)] = vantel.Qudit(d)

    def go(self) -> None:
        if len(self.qudits) > 1:
            axis, = self.pick(1)
            if self.data.draw(st.booleans()):
                self.qudits[axis].close()
                self.closed.append(self.qudits[axis])
            del self.qudits[axis]
            gc.collect(0)

    def check(self) -> None:
        axes = self.pick(len(self.qudits))
        told = self.model.probabilities(axes)
        seen = vantel.probabilities(*(self.qudits[axis] for axis in axes))
        assert seen.shape == told.shape
        assert np.allclose(seen, told, atol=TOLERANCE)


@settings(max_examples=300, deadline=None, derandomize=True, database=None,
          suppress_health_check=[HealthCheck.too_slow, HealthCheck.data_too_large])
@given(st.data())
def test_a_program_means_what_the_dense_model_says(data: st.DataObject) -> None:
    program = Program(data)
    program.come()
    program.come()
    steps = [program.gate] * 6 + [program.exchange, program.ask, program.come, program.go]
    for step in data.draw(st.lists(st.sampled_from(range(len(steps))), min_size=5, max_size=40)):
        steps[step]()
        program.check()
