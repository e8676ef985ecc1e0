"""What a program of qudits means, with the whole state vector: one axis of an array for each qudit that ever was."""

from __future__ import annotations

import numpy as np
import numpy.typing as npt

Matrix = npt.NDArray[np.complex128]
When = list[tuple[int, int, bool]]  # an axis, a level, and whether it must be that level


def fourier(d: int) -> Matrix:
    """The Hadamard gate: column v has exp(-2 pi i k v / d) / sqrt(d) in row k."""
    k = np.arange(d)
    return np.asarray(np.exp(-2j * np.pi * np.outer(k, k) / d) / np.sqrt(d))


def clock(d: int, power: float) -> Matrix:
    return np.asarray(np.diag(np.exp(2j * np.pi * np.arange(d) * power / d)))


def cycle(d: int, power: float) -> Matrix:
    return np.asarray(fourier(d).conj().T @ clock(d, power).conj() @ fourier(d))


def i_swap(d: int, power: float) -> Matrix:
    t = power * np.pi / 2
    exchange = np.eye(d * d).reshape(d, d, d, d).swapaxes(0, 1).reshape(d * d, d * d)
    equal = np.diag([1.0 if i // d == i % d else 0.0 for i in range(d * d)])
    return np.asarray(equal + (np.eye(d * d) - equal) @ (np.cos(t) * np.eye(d * d) + 1j * np.sin(t) * exchange))


class DenseState:
    def __init__(self) -> None:
        self.state: Matrix = np.ones((), complex)

    def add_qudit(self, d: int) -> int:
        self.state = np.multiply.outer(self.state, np.eye(d)[0].astype(complex))
        return self.state.ndim - 1

    def where(self, when: When) -> npt.NDArray[np.bool_]:
        holds = np.ones(self.state.shape, bool)
        for axis, level, is_equal in when:
            holds &= (np.indices(self.state.shape)[axis] == level) == is_equal
        return holds

    def apply(self, matrix: Matrix, axes: list[int], when: When) -> None:
        """The matrix has rows in the order of numpy.kron over the axes."""
        shape = [self.state.shape[axis] for axis in axes]
        moved = np.moveaxis(self.state, axes, range(len(axes)))
        result = (matrix @ moved.reshape(matrix.shape[0], -1)).reshape(*shape, *moved.shape[len(axes):])
        self.state = np.where(self.where(when), np.moveaxis(result, range(len(axes)), axes), self.state)

    def probabilities(self, axes: list[int]) -> npt.NDArray[np.float64]:
        others = tuple(axis for axis in range(self.state.ndim) if axis not in axes)
        left = sorted(axes)
        summed = np.sum(np.abs(self.state) ** 2, axis=others)
        return np.asarray(np.transpose(summed, [left.index(axis) for axis in axes]))

    def density_matrix(self, axes: list[int]) -> Matrix:
        moved = np.moveaxis(self.state, axes, range(len(axes)))
        rows = moved.reshape(int(np.prod(moved.shape[:len(axes)])), -1)
        return np.asarray(rows @ rows.conj().T)

    def project(self, when: When, answer: bool) -> float:
        """Keeps the part where the conditions hold, or do not; returns its probability."""
        kept = np.where(self.where(when) == answer, self.state, 0)
        probability = float(np.sum(np.abs(kept) ** 2))
        self.state = kept / np.sqrt(probability) if probability > 0 else kept
        return probability
