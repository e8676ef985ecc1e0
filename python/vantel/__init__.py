"""A simulator of qudits, quantum systems of 2 to 10 levels, up to ten of them in one joint state.

    >>> import vantel
    >>> a, b = vantel.Qudit(3), vantel.Qudit(4)
    >>> vantel.hadamard(a)
    >>> vantel.cycle(b, when=a == 1)
    >>> vantel.add(b, 2, when=a == 2)
    >>> vantel.probabilities(a, b).round(3)
    array([[0.333, 0.   , 0.   , 0.   ],
           [0.   , 0.333, 0.   , 0.   ],
           [0.   , 0.   , 0.333, 0.   ]])

Qudits begin separate, join when a call relates them, and can go in any order. A state costs as much as it has basis
states in use, at most 100000. Tables have one axis for each qudit, in the order of the arguments. Failures raise
`vantel.Error` with a `status`, `TypeError` or `ValueError`; after the last two nothing was changed. Qudits of separate joint
states can be used by different threads at once; of one joint state, one thread waits for the other.
"""

from collections.abc import Iterable
from typing import SupportsIndex

from ._core import (
    Condition,
    Qudit,
    add,
    amplitudes,
    clock,
    counts,
    cycle,
    damp,
    density_matrix,
    entropy,
    entropy_in_bits,
    expectation,
    fidelity,
    fourier_transform,
    hadamard,
    i_swap,
    inverse_fourier_transform,
    inverse_hadamard,
    inverse_sum,
    kraus,
    measure,
    negate,
    phase_rotate,
    prepare,
    prepare_bell,
    prepare_ghz,
    probabilities,
    project,
    purity,
    reset,
    sample,
    schmidt,
    shift,
    spectrum,
    sum as sum,
    swap_levels,
    toffoli,
    unitary,
    version,
)
from ._errors import Error, Status
from .circuits import Circuit, Ensemble, Run, Value, When, Wire
from .states import Picture, dephase, depolarise, draw

__version__: str = version

# `sum` is not among what a star imports: the builtin of this name is another thing.
__all__ = [
    "Circuit", "Condition", "Ensemble", "Error", "Picture", "Qudit", "Run", "Status", "Value", "When", "Wire", "__version__", "add",
    "amplitudes", "clock", "counts", "cycle", "damp", "density_matrix", "dephase", "depolarise", "draw", "entropy",
    "entropy_in_bits", "expectation", "fidelity", "fourier_transform", "hadamard", "i_swap",
    "inverse_fourier_transform", "inverse_hadamard", "inverse_sum", "kraus", "make_register", "measure", "negate",
    "phase_rotate", "prepare", "prepare_bell", "prepare_ghz", "probabilities", "project", "purity", "reset", "sample",
    "schmidt", "shift", "spectrum", "swap_levels", "toffoli", "unitary",
]


def make_register(dimensions: Iterable[SupportsIndex]) -> list[Qudit]:
    """A qudit for each dimension, each in level 0: `make_register([3] * 4)`, `a, b = make_register([2, 5])`."""
    return [Qudit(dimension) for dimension in dimensions]
