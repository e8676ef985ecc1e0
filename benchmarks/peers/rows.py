"""The rows of the table of `scripts/bench peers`: a state, what is done to it, and who is held beside the library."""
import math
import random
from dataclasses import dataclass


@dataclass(frozen=True)
class Step:
    act: str
    qudits: tuple = ()
    amount: float = 1.0
    when: tuple = ()


@dataclass
class Row:
    name: str
    dimension: int
    qudits: int
    prepare: list
    steps: list
    contenders: str = ""
    gates: int = 1      # by which the time is divided
    unit: str = "ns"    # "ns" an entry, or "µs" or "ms" of the whole
    missing: int = 0    # labels that the list lacks
    complete: tuple = ()  # (qudits, prepare, steps): the same on a list without what is special about it
    wanted: tuple = ()  # (contender, how many times its time at most)

    @property
    def entries(self):
        return self.dimension**self.qudits - self.missing


def step(act, *qudits, amount=1.0, **when):
    return Step(act, qudits, amount, tuple((int(qudit[1:]), level) for qudit, level in when.items()))


def superposed(qudits, but=(), last=None):
    """Every combination of levels, no two phases the same by design; some qudits are in level 0 still. All are joined.
    The last gate is on the qudit in the middle unless another one is named."""
    steps = [step("anew")]
    for i in range(qudits):
        if i not in but:
            steps += [step("fourier", i), step("clock", i, amount=0.37)]
        if i > 0:
            steps.append(step("clock", i, amount=0.25, **{f"q{i - 1}": 1}))
    return steps + [step("fourier", qudits // 2 if last is None else last)]


def lacking():
    """3^10 less 1074 labels: the last qutrit goes back to level 0 where the first ones have certain levels."""
    steps = superposed(10, but=[9]) + [step("fourier", 9)]
    for levels in ("2222", "1111", "000000", "0101010", "1010101", "02020202", "20202020"):
        steps.append(step("inverse_fourier", 9, **{f"q{i}": int(level) for i, level in enumerate(levels)}))
    return steps


def idle():
    """Nine qutrits beside one that is in level 0 still."""
    return superposed(10, but=[8])


def to_one_level(qudits):
    """The qudit in the middle is in the equal superposition that one gate takes to level 0."""
    return superposed(qudits, but=[qudits // 2])  # which ends with a gate on it


def random_gates(count, dimension, qudits, seed):
    draw, steps = random.Random(seed), []
    for _ in range(count):
        a, b = draw.sample(range(qudits), 2)
        when = {f"q{b}": draw.randrange(dimension)}
        steps.append(draw.choice([
            step("fourier", a), step("inverse_fourier", a), step("cycle", a, **when), step("swap", a, b),
            step("clock", a, amount=draw.random()), step("clock", a, amount=draw.random(), **when)]))
    return steps


def grover(qubits, rounds):
    """The marked item is 1 in every qubit."""
    everywhere = [step("fourier", i) for i in range(qubits)]
    oracle = step("phase", amount=math.pi, **{f"q{i}": 1 for i in range(qubits)})
    about_zero = step("phase", amount=math.pi, **{f"q{i}": 0 for i in range(qubits)})
    return [step("anew")] + everywhere + rounds * [oracle, *everywhere, about_zero, *everywhere]


def complete_lists():
    everybody = "numpy eigen fftw by_hand same_bits same_entries bare_pass"
    for (d, n), most in {(2, 10): 0.47, (3, 10): 0.85, (4, 8): 0.9, (10, 4): 0.9, (10, 5): 0.95}.items():
        yield Row(f"{d}^{n}, each qudit in turn", d, n, superposed(n), [step("fourier", i) for i in range(n)],
                  everybody + (" libquantum" if d == 2 else ""), gates=n, wanted=("numpy", most))


def few_labels():
    for d in (2, 3):
        for some in (2, 4, 6, 8):
            target = some // 2
            yield Row(f"{d}^{some} of the labels of {d}^10", d, 10, superposed(10, but=range(some, 10), last=target),
                      [step("fourier", target)], "numpy by_hand" + (" libquantum" if d == 2 else ""),
                      missing=d**10 - d**some)


def lists_of_programs():
    back = [step("fourier", 5), step("inverse_fourier", 5)]
    yield Row("Fourier gate and back, 3^10 with 1074 labels missing", 3, 10, lacking(), back, "numpy by_hand complete",
              gates=2, missing=1074, complete=(10, superposed(10), back), wanted=("complete", 1.25))
    for name, act, qudits in (("Fourier gate", "fourier", 1), ("i-swap", "i_swap", 2), ("matrix of one", "matrix", 1)):
        does, beside = [[step(act, *(5, last)[:qudits], amount=0.3)] for last in (9, 8)]
        yield Row(f"{name}, 3^9 and a qudit in level 0", 3, 10, idle(), does, "complete", missing=3**10 - 3**9,
                  complete=(9, superposed(9), beside), wanted=("complete", 1.15))
    for (d, n), passes in {(2, 10): 15, (3, 10): 9, (10, 4): 9.25, (10, 5): 8.75}.items():
        t = n // 2
        yield Row(f"superposition to one level and back, {d}^{n}", d, n, to_one_level(n),
                  [step("inverse_fourier", t), step("fourier", t)],
                  "numpy eigen fftw by_hand bare_pass" + (" libquantum" if d == 2 else ""), wanted=("bare_pass", passes))


def other_calls():
    for name, does, size, wanted in (
            ("cycle", step("cycle", 2), 5, ("bare_pass", 1.5)),
            ("swap", step("swap", 2, 4), 5, ("bare_pass", 1.5)),
            ("clock", step("clock", 2), 5, ("bare_pass", 1.5)),
            ("probabilities of all", step("probabilities"), 5, ("numpy", 3.9)),
            ("matrix of one", step("matrix", 2), 5, ("numpy", 0.49)),
            ("matrix of two", step("matrix", 2, 3), 4, ("numpy", 0.92)),
            ("SUM of two", step("sum", 1, 2), 5, ("numpy", 4.6))):
        yield Row(f"{name}, 10^{size}", 10, size, superposed(size), [does], "numpy by_hand bare_pass", wanted=wanted)


def programs():
    transform = [step("transform")]
    yield Row("whole Fourier transform, 3^10", 3, 10, superposed(10), transform, "numpy fftw by_hand", unit="ms",
              wanted=("numpy", 6.2))
    for count, qudits, most in ((1000, 3, 0.38), (100, 5, 0.83)):
        yield Row(f"{count} random gates, 10^{qudits}", 10, qudits, superposed(qudits), random_gates(count, 10, qudits, 1),
                  "numpy by_hand", unit="ms", wanted=("numpy", most))
    yield Row("Grover, 25 rounds, 2^10", 2, 10, [step("anew")], grover(10, 25), "numpy by_hand", unit="ms",
              wanted=("by_hand", 2.2))
    yield Row("a pair made, entangled, measured, freed", 2, 2, [step("anew")], [step("pair")], "numpy libquantum by_hand",
              unit="µs", wanted=("numpy", 0.07))


GROUPS = {"A Fourier gate on complete lists": complete_lists, "A Fourier gate where few of the labels are in use": few_labels,
          "Lists that programs make": lists_of_programs, "Other calls": other_calls, "Programs": programs}
