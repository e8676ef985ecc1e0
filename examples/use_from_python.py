"""Qutrits from Python, by the face that lets no exception out: libvantel_guarded.so.1 and ctypes alone."""

import argparse
import ctypes
import math
import sys

OK, BAD_QUDIT_NUMBER, STATE_SIZE_EXCEEDED = 0, 7, 9
Handle = ctypes.c_void_p


class Condition(ctypes.Structure):
    _fields_ = [("qudit", Handle), ("level", ctypes.c_int), ("is_equal", ctypes.c_ubyte)]


parser = argparse.ArgumentParser(description=__doc__)
parser.add_argument("library", nargs="?", default="libvantel_guarded.so.1", help="where the system does not find it")
library = ctypes.CDLL(parser.parse_args().library)
conditions = [ctypes.POINTER(Condition), ctypes.c_size_t]
for name, arguments in {
    "free_quantum_property": [Handle],
    "join": [Handle, Handle],
    "hadamard": [Handle, *conditions],
    "cycle": [Handle, ctypes.c_float, *conditions],
    "measure": [ctypes.POINTER(Handle), ctypes.c_size_t, ctypes.POINTER(ctypes.c_int)],
    "project": [*conditions, ctypes.POINTER(ctypes.c_int)],
}.items():
    getattr(library, f"vantel_guarded_{name}").argtypes = arguments
library.vantel_guarded_make_quantum_property.argtypes = [ctypes.c_int, ctypes.POINTER(ctypes.c_int)]
library.vantel_guarded_make_quantum_property.restype = Handle
library.vantel_guarded_last_failure.restype = ctypes.c_char_p


class Failure(Exception):
    def __init__(self, status):
        super().__init__(library.vantel_guarded_last_failure().decode())
        self.status = status


def call(name, *arguments):
    status = getattr(library, f"vantel_guarded_{name}")(*arguments)
    if status != OK:
        raise Failure(status)


def listed(when):
    return (Condition * len(when))(*when), len(when)


class Qudit:
    def __init__(self, levels):
        status = ctypes.c_int()
        self.handle = library.vantel_guarded_make_quantum_property(levels, status)
        if status.value != OK:
            raise Failure(status.value)

    def free(self):
        """Raises Failure where the joint state is over the limit; the qudit is still good then."""
        if self.handle:
            call("free_quantum_property", self.handle)
            self.handle = None

    __del__ = free

    def __eq__(self, level):
        return Condition(self.handle, level, 1)

    def __ne__(self, level):
        return Condition(self.handle, level, 0)


def hadamard(target, *when):
    call("hadamard", target.handle, *listed(when))


def cycle(target, *when, fraction=1.0):
    call("cycle", target.handle, fraction, *listed(when))


def measure(*qudits):
    levels = (ctypes.c_int * len(qudits))()
    call("measure", (Handle * len(qudits))(*(q.handle for q in qudits)), len(qudits), levels)
    return list(levels)


def project(*when):
    answer = ctypes.c_int()
    call("project", *listed(when), answer)
    return answer.value == 1


a, b = Qudit(3), Qudit(3)
hadamard(a)
cycle(b, a != 0)
cycle(b, a == 2)
levels = measure(a, b)
assert levels[0] == levels[1], levels
print("measured", levels)

# A qutrit that is asked after each quarter of a cycle whether it is still in level 0. The part f of a cycle leaves
# sin^2(pi f) / (9 sin^2(pi f / 3)) of it there. By Hoeffding's inequality the share of 3000 runs is off by 0.063
# in fewer than one of ten billion programs.
held, runs, steps = 0, 3000, 4
for _ in range(runs):
    qutrit = Qudit(3)
    for _ in range(steps):
        cycle(qutrit, fraction=1 / steps)
        if not project(qutrit == 0):
            break
    else:
        held += 1
exactly = (math.sin(math.pi / steps) / (3 * math.sin(math.pi / 3 / steps))) ** (2 * steps)
print(f"held in level 0 in {held / runs:.3f} of all runs, {exactly:.3f} by the formula")
assert abs(held / runs - exactly) < 0.063

# What would end a process that calls the functions of vantel.h comes back as a failure here.
for other in (crowd := [Qudit(2) for _ in range(9)]):
    try:
        hadamard(a, other == 1)
    except Failure as failure:
        assert failure.status == BAD_QUDIT_NUMBER and other is crowd[-1]
        print(failure)
wide = [Qudit(10) for _ in range(6)]
for qudit in wide[1:]:
    call("join", wide[0].handle, qudit.handle)
for attempt in [lambda: [hadamard(qudit) for qudit in wide], wide[3].free]:
    try:
        attempt()
        sys.exit("a state over the limit was not refused")
    except Failure as failure:
        assert failure.status == STATE_SIZE_EXCEEDED
        print(failure)
measure(wide[0])
wide[3].free()
