"""Circuits in Python: what is recorded is what is called, and the command line runs it."""

from __future__ import annotations

import copy
import os
import pathlib
import pickle
import pty
import signal
import subprocess
import sys
import time
import xml.dom.minidom

import numpy as np
import pytest
import vantel
from vantel import Circuit


def random_unitary(size: int, seed: int) -> np.ndarray[tuple[int, int], np.dtype[np.complex128]]:
    generator = np.random.default_rng(seed)
    q, _ = np.linalg.qr(generator.normal(size=(size, size)) + 1j * generator.normal(size=(size, size)))
    return np.asarray(q)


def every_gate() -> Circuit:
    circuit = Circuit(a=3, b=3, c=2)
    a, b, c = circuit.wires
    circuit.hadamard(a).inverse_hadamard(c).cycle(b, 0.3, when=a == 1).shift(b, when=(a != 0) & (c == 1)).clock(a, 1e8 + 0.4)
    circuit.phase_rotate(0.7, when=b == 2).swap_levels(a, b, when=c == 0).i_swap(a, b, -0.4).add(b, -5).sum(a, c)
    circuit.inverse_sum(c, b).unitary(random_unitary(6, 1), b, c, when=a == 2)
    return circuit


def test_a_circuit_does_what_the_calls_do() -> None:
    a, b, c = vantel.make_register([3, 3, 2])
    vantel.hadamard(a)
    vantel.inverse_hadamard(c)
    vantel.cycle(b, 0.3, when=a == 1)
    vantel.shift(b, when=(a != 0) & (c == 1))
    vantel.clock(a, 1e8 + 0.4)
    vantel.phase_rotate(0.7, when=b == 2)
    vantel.swap_levels(a, b, when=c == 0)
    vantel.i_swap(a, b, -0.4)
    vantel.add(b, -5)
    vantel.sum(a, c)
    vantel.inverse_sum(c, b)
    vantel.unitary(random_unitary(6, 1), b, c, when=a == 2)
    told = vantel.amplitudes(a, b, c)
    circuit = every_gate()
    for same in circuit, copy.deepcopy(circuit), pickle.loads(pickle.dumps(circuit)), Circuit.from_text(circuit.to_text()):
        assert same == circuit
        assert np.allclose(vantel.amplitudes(*same.run().qudits.values()), told, atol=1e-6)
    circuit.append(circuit.inverse())
    assert vantel.probabilities(*circuit.run().qudits.values())[0, 0, 0] == pytest.approx(1, abs=1e-5)


def test_a_unitary_and_a_prepared_state_stand_in_numpy_order() -> None:
    matrix = random_unitary(6, 2)
    a, b, c = vantel.make_register([2, 3, 2])
    vantel.prepare(np.arange(1, 7).reshape(2, 3), a, b)
    before = vantel.amplitudes(a, b).ravel()
    assert np.allclose(before, np.arange(1, 7) / np.sqrt(91), atol=1e-6)
    vantel.unitary(matrix, a, b, when=c == 0)
    after = vantel.amplitudes(a, b).ravel()
    assert abs(np.vdot(after, matrix @ before)) == pytest.approx(1, abs=1e-5)
    with pytest.raises(ValueError):
        vantel.unitary(matrix * 1.01, a, b)
    with pytest.raises(vantel.Error):
        vantel.unitary(matrix, a, b, when=a == 0)


def test_values_steer_later_steps() -> None:
    circuit = Circuit(a=3, b=3)
    a, b = circuit.wires
    circuit.hadamard(a).sum(a, b)
    found = circuit.measure(a, "found")
    circuit.shift(b, when=found == 1).shift(b, 2, when=found == 2)
    for _ in range(20):
        run = circuit.run()
        assert vantel.measure(run.qudits["b"]) == (0,) and vantel.measure(run.qudits["a"]) == (run.values["found"],)
    assert not circuit.ensemble(5).repeatable


@pytest.mark.parametrize("wrong", [
    lambda c, a: c.cycle(a, when=a == 1), lambda c, a: c.clock(a, float("nan")), lambda c, a: c.depolarise(a, 1.5),
    lambda c, a: c.measure(a, "a"), lambda c, a: c.measure(a, "if"), lambda c, a: c.hadamard(vantel.Wire("z", 3)),
    lambda c, a: c.hadamard(a, when=vantel.Value("z") == 1), lambda c, a: a == 3, lambda c, a: c.add_qudit("x", 11),
    lambda c, a: c.phase_rotate(1, when=None), lambda c, a: c.unitary(np.ones((3, 3)), a), lambda c, a: c.run(vantel.Qudit(2)),
    lambda c, a: c.ensemble(-1), lambda c, a: Circuit.from_text("qudit a 3\nhadamrd a\n"),
    lambda c, a: c.ensemble(5, seed=-1), lambda c, a: c.repeat(10**12), lambda c, a: c.ensemble(5, part=(2, 2)), lambda c, a: c.depolarise(a, 0.1).inverse(),
])
def test_what_cannot_be_recorded_raises(wrong: object) -> None:
    circuit = Circuit(a=3)
    before = circuit.to_text()
    with pytest.raises(ValueError):
        assert callable(wrong)
        wrong(circuit, circuit.wires[0])
    assert circuit.to_text() in (before, before + "depolarise a 0.1\n")
    for bad in "a", None, True:
        with pytest.raises(TypeError):
            circuit.hadamard(bad)  # type: ignore[arg-type]
        with pytest.raises(TypeError):
            circuit.hadamard(circuit.wires[0], when=bad or 1)  # type: ignore[arg-type]


NOISY = "qudit a 3\nqudit b 3\nhadamard a\nsum a b\ndepolarise a 0.2\nmeasure a -> m\nmeasure b -> n\n"


def test_an_ensemble_is_the_same_whoever_makes_it() -> None:
    for text in NOISY, NOISY.replace("depolarise a 0.2\n", ""):
        circuit = Circuit.from_text(text)
        seen: list[tuple[int, int]] = []
        whole = circuit.ensemble(3000, seed=4, progress=lambda done, shots: seen.append((done, shots)))
        assert seen[-1] == (3000, 3000) and whole.shots == 3000 and whole.repeatable
        parts = [circuit.ensemble(3000, seed=4, threads=3, part=(k, 3)) for k in range(3)]
        assert (parts[0] + parts[1] + parts[2]).counts == whole.counts
        assert circuit.ensemble(3000, seed=5).counts != whole.counts
    assert set(whole.counts) == {(k, k) for k in range(3)}


def test_noise_is_the_channel_that_is_told() -> None:
    generator = np.random.default_rng(3)
    d, p, runs = 3, 0.4, 3000
    drawn = np.zeros((d, d), int)
    lost = 0
    for _ in range(runs):
        q = vantel.Qudit(d)
        vantel.prepare([1, 2, 3], q)
        shifts, clocks = vantel.depolarise(q, p, generator=generator)
        drawn[shifts, clocks] += 1
        told = np.roll(np.arange(1, 4) * np.exp(2j * np.pi * np.arange(3) * clocks / 3), shifts)
        assert vantel.fidelity(told, q) == pytest.approx(1, abs=1e-5)
        vantel.reset(q)
        vantel.add(q, 2)
        lost += vantel.damp(q, 0.5)
    # Hoeffding: each of ten shares is off by 0.065 at most once in ten billion.
    assert np.allclose(drawn / runs, np.where(np.arange(9).reshape(3, 3) == 0, 1 - p, p / 8), atol=0.065)
    assert abs(lost / runs / 2 - 0.5) < 0.065


def test_kraus_operators_are_applied_by_their_probabilities() -> None:
    found = np.zeros(2, int)
    for _ in range(1500):
        q = vantel.Qudit(3)
        vantel.prepare([1, 1, 2**0.5], q)
        which = vantel.kraus(q, [np.diag([1, 1, 0]), np.diag([0, 0, 1])])
        found[which] += 1
        assert np.allclose(vantel.probabilities(q), np.array([[0.5, 0.5, 0], [0, 0, 1]])[which], atol=1e-6)
    assert abs(found[0] / 1500 - 0.5) < 0.09  # Hoeffding, once in ten billion
    with pytest.raises(ValueError):
        vantel.kraus(vantel.Qudit(3), [np.diag([1, 1, 0])])


def test_pictures_are_whole() -> None:
    a, b = vantel.make_register([3, 4])
    vantel.prepare_bell(a, b)
    picture = vantel.draw(a, b, title="A <pair>", names=["one", "two"])
    assert "one two" in str(picture) and picture.text.count("0.333") == 3
    for svg in picture.outcomes_svg, picture.density_svg, every_gate().svg():
        assert xml.dom.minidom.parseString(svg).documentElement.tagName == "svg"
    assert "a (3)" in str(every_gate()) and every_gate().draw(ascii=True).isascii()


def test_pictures_show_what_matters() -> None:
    nearly = vantel.Qudit(2)
    vantel.cycle(nearly, 0.01)
    assert "#." in str(vantel.draw(nearly)) and ">0.999" in str(vantel.draw(nearly))
    qudits = vantel.make_register([10, 10])
    for qudit in qudits:
        vantel.hadamard(qudit)
    picture = vantel.draw(*qudits)
    assert "90 others" in picture.outcomes_svg and "90 others" in picture.density_svg
    for svg in picture.outcomes_svg, picture.density_svg:  # a phone shows it at three quarters of its size
        assert float(xml.dom.minidom.parseString(svg).documentElement.getAttribute("width")) < 460


def run_command(*arguments: str, stdin: str = "") -> subprocess.CompletedProcess[str]:
    return subprocess.run([sys.executable, "-m", "vantel", *arguments], input=stdin, capture_output=True, text=True)


def test_the_command_line(tmp_path: pathlib.Path) -> None:
    file, svg = tmp_path / "circuit.txt", tmp_path / "out.svg"
    file.write_text(NOISY)
    first = run_command("run", str(file), "--shots", "500", "--seed", "1", "--svg", str(svg))
    assert first.returncode == 0 and first.stderr == "" and "m n  shots\n" in first.stdout
    assert first.stdout == run_command("run", "-", "--shots", "500", "--seed", "1", stdin=NOISY).stdout
    assert xml.dom.minidom.parse(str(svg)).documentElement.tagName == "svg"
    wrong = run_command("run", "-", stdin="qudit a 3\nhadamard b\n")
    assert (wrong.returncode, wrong.stdout) == (1, "") and "line 2, column 10" in wrong.stderr
    assert run_command("run", str(tmp_path / "none")).returncode == 1
    assert run_command("run", str(file), "--shots", "-1").returncode == 2


def test_the_command_line_shows_its_progress_and_stops(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "circuit.txt"
    file.write_text(NOISY)
    master, slave = pty.openpty()
    with subprocess.Popen([sys.executable, "-m", "vantel", "run", str(file), "--shots", "20000000"], stdout=subprocess.PIPE,
                          stderr=slave) as command:
        os.close(slave)
        shown = b""
        while b" of 20000000" not in shown:
            shown += os.read(master, 1000)
        sent = time.monotonic()
        command.send_signal(signal.SIGINT)
        assert command.wait(60) == 130 and time.monotonic() - sent < 30
    os.close(master)
    assert b"\r#" in shown or b"\r." in shown
