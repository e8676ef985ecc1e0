"""A dense register in the lines of NumPy that somebody would write."""
import functools
import math

import numpy as np


@functools.lru_cache(None)
def fourier_matrix(dimension, inverse):
    levels = np.arange(dimension)
    turn = (2j if inverse else -2j) * math.pi / dimension
    return np.exp(turn * (np.outer(levels, levels) % dimension)) / math.sqrt(dimension)


class WithNumpy:
    """The first qudit varies fastest, so that it is the last axis."""

    def __init__(self, dimension, qudits):
        self.dimension, self.qudits = dimension, qudits
        self.anew(None)

    def load(self, state):
        self.state = np.array(state)

    def amplitudes(self):
        return self.state.copy()

    def read(self):
        return self.result.astype(complex).ravel()

    def run(self, steps, times):
        for _ in range(times):
            for step in steps:
                getattr(self, step.act)(step)

    def part(self, step):
        """The amplitudes that meet the conditions, one axis for each qudit, and where the axes of the targets are."""
        when = dict(step.when)
        others = [i for i in reversed(range(self.qudits)) if i not in when]
        view = self.state.reshape((self.dimension,) * self.qudits)
        view = view[(*(when.get(i, slice(None)) for i in reversed(range(self.qudits))), ...)]  # a view in any case
        return view, [others.index(qudit) for qudit in step.qudits]

    def anew(self, step):
        self.state = np.zeros(self.dimension**self.qudits, complex)
        self.state[0] = 1

    def fourier(self, step, inverse=False):
        gate = fourier_matrix(self.dimension, inverse)
        if step.when:
            view, (axis,) = self.part(step)
            view[...] = np.moveaxis(np.tensordot(gate, view, (1, axis)), 0, axis)
        else:
            blocks = self.state.reshape(-1, self.dimension, self.dimension**step.qudits[0])
            self.state = (gate @ blocks).ravel()

    def inverse_fourier(self, step):
        self.fourier(step, True)

    def cycle(self, step):
        view, (axis,) = self.part(step)
        view[...] = np.roll(view, 1, axis)

    def clock(self, step):
        levels = np.float32(step.amount) * np.arange(self.dimension, dtype=np.float32)
        turns = np.exp(2j * math.pi / self.dimension * levels.astype(float))
        view, (axis,) = self.part(step)
        view *= turns.reshape([-1 if i == axis else 1 for i in range(view.ndim)])

    def phase(self, step):
        view, _ = self.part(step)
        view *= np.exp(1j * float(np.float32(step.amount)))

    def swap(self, step):
        view, axes = self.part(step)
        view[...] = view.swapaxes(*axes).copy()

    def i_swap(self, step):
        view, axes = self.part(step)
        t = float(np.float32(step.amount)) * math.pi / 2
        mixed = math.cos(t) * view + 1j * math.sin(t) * view.swapaxes(*axes)
        now, mixed = np.moveaxis(view, axes, (0, 1)), np.moveaxis(mixed, axes, (0, 1))
        for p in range(self.dimension):
            mixed[p, p] = now[p, p]
        now[...] = mixed

    def sum(self, step):
        view, axes = self.part(step)
        view = np.moveaxis(view, axes, (0, 1))
        for level in range(1, self.dimension):
            view[level] = np.roll(view[level], level, 0)

    def transform(self, step):
        self.state = np.fft.ifft(self.state, norm="ortho")

    def probabilities(self, step):
        self.result = self.state.real**2 + self.state.imag**2

    def matrix(self, step):
        view, axes = self.part(step)
        rows = np.moveaxis(view, axes[::-1], range(len(axes))).reshape(self.dimension ** len(axes), -1)
        self.result = rows @ rows.conj().T

    def pair(self, step):
        state = np.zeros(4, complex)
        state[0] = 1
        state = (state.reshape(2, 2) @ fourier_matrix(2, False)).ravel()
        state = state[[0, 3, 2, 1]]  # the second follows the first
        drawn = np.random.default_rng().choice(4, p=np.abs(state) ** 2)
        assert drawn in (0, 3), drawn
