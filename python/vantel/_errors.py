"""What a failed operation raises."""

import enum


class Status(enum.IntEnum):
    """Why an operation failed; the numbers are those of the C library."""

    OUTPUT_TOO_SMALL = 3
    TARGET_CONTROL_OVERLAP = 4
    DIFFERENT_DIMENSIONS = 5
    BAD_DIMENSION = 6
    BAD_QUDIT_NUMBER = 7
    OUTPUT_SIZE_MISMATCH = 8
    STATE_SIZE_EXCEEDED = 9


class Error(RuntimeError):
    """A failure that the library has a status for.

    After STATE_SIZE_EXCEEDED of a gate the state may be larger than the limit of 100000 basis states, and a power of
    `cycle` or `shift` may have stopped half way. Measure some of its qudits, or close all of them.
    """

    status: Status

    def __init__(self, status: Status, text: str) -> None:
        super().__init__(status, text)
        self.status = Status(status)

    def __str__(self) -> str:
        return str(self.args[1])
