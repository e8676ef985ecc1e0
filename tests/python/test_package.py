"""What the package promises beside the meaning of its gates."""

from __future__ import annotations

import copy
import gc
import pickle
import subprocess
import sys
import threading
import time
from collections.abc import Callable
from typing import Any

import numpy as np
import pytest
import vantel as typed
from vantel import Qudit, Status

vantel: Any = typed  # what is refused here is refused by the types as well
AnyQudit: Any = Qudit


def pair() -> tuple[Qudit, Qudit]:
    a, b = Qudit(3), Qudit(4)
    vantel.hadamard(a)
    vantel.cycle(b, when=a == 1)
    vantel.add(b, 2, when=a == 2)
    return a, b


class Odd:
    """A number that closes a qudit while it is asked for its value."""

    def __init__(self, victim: Qudit) -> None:
        self.victim = victim

    def __float__(self) -> float:
        self.victim.close()
        return 0.5

    def __index__(self) -> int:
        self.victim.close()
        return 1


def closed() -> Qudit:
    qudit = Qudit(3)
    qudit.close()
    return qudit


def with_odd(call: Callable[[Qudit, Odd], object]) -> object:
    qudit = Qudit(3)
    return call(qudit, Odd(qudit))


# Each is (what is wrong, a call with a qutrit, a ququart entangled with it, and a free qubit).
REFUSED: list[tuple[Any, Callable[[Any, Any, Any], object]]] = [
    (Status.TARGET_CONTROL_OVERLAP, lambda a, b, c: vantel.cycle(a, when=(a == 1) & (c == 0))),
    (Status.TARGET_CONTROL_OVERLAP, lambda a, b, c: vantel.sum(a, a)),
    (Status.TARGET_CONTROL_OVERLAP, lambda a, b, c: vantel.toffoli(a, b, b)),
    (Status.DIFFERENT_DIMENSIONS, lambda a, b, c: vantel.swap_levels(a, b)),
    (Status.DIFFERENT_DIMENSIONS, lambda a, b, c: vantel.fourier_transform(a, b)),
    (Status.BAD_DIMENSION, lambda a, b, c: Qudit(11)),
    (Status.BAD_QUDIT_NUMBER, lambda a, b, c: vantel.prepare_ghz(a, *vantel.make_register([2] * 9))),
    (Status.BAD_QUDIT_NUMBER, lambda a, b, c: vantel.probabilities(*vantel.make_register([2] * 70))),
    (TypeError, lambda a, b, c: Qudit(True)),
    (TypeError, lambda a, b, c: AnyQudit(2.0)),
    (TypeError, lambda a, b, c: vantel.hadamard(None)),
    (TypeError, lambda a, b, c: vantel.hadamard(a, b)),
    (TypeError, lambda a, b, c: vantel.hadamard(a, where=b == 1)),
    (TypeError, lambda a, b, c: vantel.hadamard(a, target=a)),
    (TypeError, lambda a, b, c: vantel.hadamard(a, when=False)),
    (TypeError, lambda a, b, c: vantel.hadamard(Qudit.__new__(Qudit))),
    (TypeError, lambda a, b, c: vantel.cycle(a, b == 1)),
    (TypeError, lambda a, b, c: vantel.cycle(a, True)),
    (TypeError, lambda a, b, c: vantel.phase_rotate(1.0, when=None)),
    (TypeError, lambda a, b, c: vantel.Condition()),
    (TypeError, lambda a, b, c: vantel.Condition.__new__(vantel.Condition) & (a == 1)),
    (TypeError, lambda a, b, c: (a == 1) & 1),
    (TypeError, lambda a, b, c: (a == 1) and (b == 1)),
    (TypeError, lambda a, b, c: a == 1.0),
    (TypeError, lambda a, b, c: vantel.measure()),
    (TypeError, lambda a, b, c: vantel.project(True)),
    (TypeError, lambda a, b, c: copy.copy(a)),
    (TypeError, lambda a, b, c: copy.deepcopy([a == 1])),
    (TypeError, lambda a, b, c: pickle.dumps(a)),
    (TypeError, lambda a, b, c: setattr(a, "__class__", vantel.Condition)),
    (TypeError, lambda a, b, c: type("Other", (Qudit,), {})),
    (ValueError, lambda a, b, c: a == 3),
    (ValueError, lambda a, b, c: a != -1),
    (ValueError, lambda a, b, c: vantel.clock(a, float("nan"))),
    (ValueError, lambda a, b, c: vantel.i_swap(a, a)),
    (ValueError, lambda a, b, c: vantel.measure(a, a)),
    (ValueError, lambda a, b, c: vantel.hadamard(closed())),
    (ValueError, lambda a, b, c: closed() == 1),
    (ValueError, lambda a, b, c: closed().__enter__()),
    (ValueError, lambda a, b, c: vantel.amplitudes(a)),
    (ValueError, lambda a, b, c: vantel.schmidt([a, b], [b])),
    (ValueError, lambda a, b, c: vantel.expectation(np.eye(2), a)),
    (ValueError, lambda a, b, c: vantel.expectation([[np.inf, 0], [0, 1]], c)),
    (ValueError, lambda a, b, c: vantel.fidelity([0, 0], c)),
    (ValueError, lambda a, b, c: vantel.counts(a, shots=-1)),
    (ValueError, lambda a, b, c: vantel.sample(a, shots=2**40)),
    (ValueError, lambda a, b, c: vantel.probabilities(*vantel.make_register([10] * 9))),
    (ValueError, lambda a, b, c: vantel.density_matrix(*vantel.make_register([10] * 5))),
    (ValueError, lambda a, b, c: with_odd(lambda q, odd: vantel.cycle(q, odd))),
    (ValueError, lambda a, b, c: with_odd(lambda q, odd: vantel.i_swap(q, Qudit(3), odd))),
    (ValueError, lambda a, b, c: with_odd(lambda q, odd: vantel.add(q, odd))),
    (ValueError, lambda a, b, c: with_odd(lambda q, odd: vantel.prepare_bell(q, Qudit(3), odd))),
    (ValueError, lambda a, b, c: with_odd(lambda q, odd: vantel.counts(q, shots=odd))),
]


@pytest.mark.parametrize("number", range(len(REFUSED)))
def test_what_is_wrong_is_refused_and_changes_nothing(number: int) -> None:
    wrong, call = REFUSED[number]
    a, b = pair()
    c = Qudit(2)
    before = vantel.probabilities(a, b)
    with pytest.raises(vantel.Error if isinstance(wrong, Status) else wrong) as raised:
        call(a, b, c)
    if isinstance(wrong, Status):
        assert isinstance(raised.value, vantel.Error) and raised.value.status is wrong and str(raised.value)
    assert np.array_equal(vantel.probabilities(a, b), before)
    assert np.array_equal(vantel.probabilities(c), [1, 0])


def test_a_state_over_the_limit_can_be_dropped_or_measured() -> None:
    for measured in False, True:
        register = vantel.make_register([10] * 6)
        with pytest.raises(vantel.Error) as raised:
            for i in range(6):
                vantel.hadamard(register[i], when=register[(i + 1) % 6] != 9)
        assert raised.value.status is Status.STATE_SIZE_EXCEEDED
        if measured:
            assert vantel.measure(*register) == vantel.measure(*register)
        register.pop(0).close()
    gc.collect()


def test_a_dropped_qudit_is_traced_out_and_gives_its_place_back_once_it_can() -> None:
    for _ in range(60):  # each ends it with a probability of a third
        a, b = pair()
        with Qudit(2) as helper:
            vantel.hadamard(helper, when=a != 0)
        assert helper.closed
        assert np.allclose(vantel.probabilities(a), [1 / 3] * 3)
        assert vantel.density_matrix(a, b)[0, 5] == pytest.approx(1 / 3 / np.sqrt(2), abs=1e-6)  # the helper knows
        others = vantel.make_register([2] * 7)
        for other in others:
            vantel.hadamard(other, when=a == 1)
        with pytest.raises(vantel.Error, match="1 of them were closed or dropped and keep"):
            vantel.hadamard(Qudit(2), when=a == 1)
        if vantel.measure(a) == (0,):
            vantel.hadamard(Qudit(2), when=a == 1)  # the helper is in level 0 now, and is gone
            return
    raise AssertionError("a is never in level 0")


def test_projections_can_be_repeated() -> None:
    survived = 0
    for _ in range(4000):
        qutrit = Qudit(3)
        for _ in range(4):
            vantel.cycle(qutrit, 0.25)
            if not vantel.project(qutrit == 0):
                break
        else:
            survived += 1
    # By Hoeffding's inequality, off by 0.053 in one run of ten billion.
    assert abs(survived / 4000 - 0.473) < 0.053


def test_arrays_stand_in_the_order_of_the_arguments() -> None:
    a, b = pair()
    vantel.clock(a, 0.5)
    told = np.zeros((3, 4), complex)
    told[[0, 1, 2], [0, 1, 2]] = np.exp(1j * np.pi * np.arange(3) / 3) / np.sqrt(3)
    assert np.allclose(vantel.probabilities(b, a), np.abs(told.T) ** 2, atol=1e-6)
    assert np.allclose(vantel.amplitudes(a, b) * np.vdot(vantel.amplitudes(a, b), told), told, atol=1e-5)
    assert np.allclose(vantel.density_matrix(b, a), np.outer(told.T.ravel(), told.T.ravel().conj()), atol=1e-6)
    assert vantel.fidelity(told, a, b) == pytest.approx(1, abs=1e-5)
    raising = np.kron(np.roll(np.eye(3), 1, axis=0), np.eye(4))
    assert vantel.expectation(raising, a, b) == pytest.approx(np.vdot(told.ravel(), raising @ told.ravel()), abs=1e-6)
    assert vantel.schmidt(a, [b]) == pytest.approx([3**-0.5] * 3, abs=1e-6)
    assert vantel.entropy(b) == pytest.approx(np.log(3), abs=1e-6)


def test_shots_are_those_of_every_run_with_their_seed() -> None:
    a, b = pair()
    shots = vantel.sample(a, b, shots=300_000, seed=5)
    assert shots.shape == (300_000, 2) and (shots[:, 0] == shots[:, 1]).all()
    assert np.array_equal(shots, vantel.sample(a, b, shots=300_000, seed=5))
    drawn = vantel.counts(a, b, shots=300_000, seed=5)
    assert drawn == {(k, k): int((shots[:, 0] == k).sum()) for k in range(3)}
    # The first shots of mt19937_64(2024) from the table (4/9, 4/9, 1/9), as a C++ program gets them too.
    q = Qudit(3)
    vantel.cycle(q, 0.5)
    assert vantel.sample(q, shots=8, seed=2024)[:, 0].tolist() == [0, 0, 0, 1, 0, 1, 1, 0]
    assert not np.array_equal(vantel.sample(a, shots=64), vantel.sample(a, shots=64))  # 3^-64


def test_threads_wait_for_each_other_on_one_joint_state() -> None:
    shared = vantel.make_register([10] * 4)
    for qudit in shared:
        vantel.hadamard(qudit)
    vantel.cycle(shared[0], when=(shared[1] == 1) & (shared[2] == 1) & (shared[3] == 1))
    failures: list[BaseException] = []

    def work(number: int) -> None:
        try:
            for i in range(15):
                extra = Qudit(2)
                vantel.hadamard(extra, when=shared[number] == 0)
                vantel.add(shared[number], 1)
                vantel.add(shared[number], -1)
                vantel.probabilities(*shared)
        except BaseException as failure:
            failures.append(failure)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not [failure for failure in failures if not isinstance(failure, vantel.Error)]
    assert np.allclose(vantel.probabilities(shared[1]), 0.1, atol=1e-4)


def test_other_threads_run_during_a_long_call_and_ctrl_c_ends_it() -> None:
    program = """
import os, signal, threading, time, vantel
a = vantel.Qudit(3)
vantel.hadamard(a)
threading.Timer(0.3, lambda: os.kill(os.getpid(), signal.SIGINT)).start()
begun = time.monotonic()
try:
    vantel.counts(a, shots=10**12)
except KeyboardInterrupt:
    print("stopped" if time.monotonic() - begun < 20 else "late", vantel.probabilities(a).round(3).tolist())
"""
    run = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, timeout=60)
    assert run.stdout == "stopped [0.333, 0.333, 0.333]\n", run.stderr
