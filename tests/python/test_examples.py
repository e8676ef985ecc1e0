"""The programs of examples/python against what can be calculated otherwise."""

from __future__ import annotations

import subprocess
import sys
import types

import numpy as np
import pytest

import noisy_code
import phase_estimation
import spin_chain
import vantel
import zeno


def test_the_spin_chain_turns_as_diagonalisation_says() -> None:
    qutip = pytest.importorskip("qutip")
    spins = [[qutip.tensor([qutip.jmat(1, axis) if k == i else qutip.qeye(3) for k in range(spin_chain.SPINS)])
              for axis in "xyz"] for i in range(spin_chain.SPINS)]
    hamiltonian = sum(a * b for left, right in zip(spins, spins[1:]) for a, b in zip(left, right))
    start = qutip.tensor([qutip.basis(3, level) for level in spin_chain.START])
    means = qutip.sesolve(hamiltonian, start, [0, 0.5, 1], [z for _, _, z in spins]).expect
    chain = spin_chain.evolve(1, 20)
    assert np.allclose(spin_chain.profile(chain), [of_spin[2] for of_spin in means], atol=5e-3)
    assert np.allclose(spin_chain.profile(spin_chain.evolve(0.5, 10)), [of_spin[1] for of_spin in means], atol=5e-3)
    assert vantel.entropy(*chain[:3]) > 0.1


def test_phases_are_estimated_with_their_probabilities() -> None:
    for phase in 0.0, 50 / 81, 0.3:
        x = np.arange(phase_estimation.VALUES)
        told = np.abs(np.fft.fft(np.exp(2j * np.pi * x * phase)) / phase_estimation.VALUES) ** 2
        assert np.allclose(phase_estimation.estimate(phase), told, atol=2e-5)


def test_questions_hold_a_qutrit() -> None:
    trials = 1500
    for steps, told in (2, 0.198), (8, 0.692), (16, 0.833):
        # Hoeffding: off by 0.089 at most once in ten billion.
        assert abs(sum(zeno.survives(steps) for _ in range(trials)) / trials - told) < 0.089


def test_the_code_passes_errors_as_seldom_as_told() -> None:
    passed, wrong = noisy_code.shares(0.1, 6000, seed=1)
    told_passed, told_wrong = noisy_code.exactly(0.1)
    assert abs(passed - told_passed) < 0.045 and abs(wrong * passed - told_wrong * told_passed) < 0.045
    assert noisy_code.shares(0.0, 50, seed=1) == (1, 0)


@pytest.mark.parametrize("example", [noisy_code, phase_estimation, spin_chain, zeno])
def test_a_command_line_that_nobody_reads_is_refused(example: types.ModuleType) -> None:
    refused = subprocess.run([sys.executable, str(example.__file__), "--svg", "x"], capture_output=True, text=True)
    assert (refused.returncode, refused.stdout) == (2, "") and "usage:" in refused.stderr
