"""Two entangled qutrits from Python, by the guarded face, and a failure that does not end the process."""

import ctypes
import sys

VANTEL_OK, BAD_QUDIT_NUMBER, STATE_SIZE_EXCEEDED = 0, 7, 9

library = ctypes.CDLL(sys.argv[1])
Handle = ctypes.c_void_p


class Condition(ctypes.Structure):
    _fields_ = [("qudit", Handle), ("level", ctypes.c_int), ("is_equal", ctypes.c_ubyte)]


library.guarded_make_quantum_property.restype = Handle
library.guarded_make_quantum_property.argtypes = [ctypes.c_int, ctypes.POINTER(ctypes.c_int)]
library.guarded_free_quantum_property.argtypes = [Handle]
library.guarded_hadamard.argtypes = [Handle, ctypes.POINTER(Condition), ctypes.c_size_t]
library.guarded_cycle.argtypes = [Handle, ctypes.c_float, ctypes.POINTER(Condition), ctypes.c_size_t]
library.guarded_measure.argtypes = [ctypes.POINTER(Handle), ctypes.c_size_t, ctypes.POINTER(ctypes.c_int)]


class Qudit:
    def __init__(self, levels):
        status = ctypes.c_int()
        self.handle = library.guarded_make_quantum_property(levels, ctypes.byref(status))
        if status.value != VANTEL_OK:
            raise ValueError(f"status {status.value}")

    def __del__(self):
        library.guarded_free_quantum_property(self.handle)


def hadamard(target, *conditions):
    return library.guarded_hadamard(target.handle, (Condition * len(conditions))(*conditions), len(conditions))


def cycle(target, *conditions):
    return library.guarded_cycle(target.handle, 1.0, (Condition * len(conditions))(*conditions), len(conditions))


def measure(*qudits):
    levels = (ctypes.c_int * len(qudits))()
    status = library.guarded_measure((Handle * len(qudits))(*(q.handle for q in qudits)), len(qudits), levels)
    return status, list(levels)


a, b = Qudit(3), Qudit(3)
assert hadamard(a) == VANTEL_OK
assert cycle(b, Condition(a.handle, 0, 0)) == VANTEL_OK
assert cycle(b, Condition(a.handle, 2, 1)) == VANTEL_OK
status, levels = measure(a, b)
assert status == VANTEL_OK and levels[0] == levels[1], levels
print("measured", levels)

# Both failures pass out of the library's own functions as exceptions, and would end a Python process.
crowd = [Qudit(2) for _ in range(10)]
statuses = [hadamard(a, Condition(other.handle, 1, 1)) for other in crowd]
assert statuses == [VANTEL_OK] * 8 + [BAD_QUDIT_NUMBER] * 2, statuses
wide = [Qudit(10) for _ in range(6)]
assert all(hadamard(qudit) == VANTEL_OK for qudit in wide)
assert measure(*wide)[0] == STATE_SIZE_EXCEEDED
print("both failures came back as statuses")
