"""How far a run is, on standard error."""
from __future__ import annotations

import sys
import time
from typing import TextIO


def tell_duration(seconds: float) -> str:
    """A length of time in the two largest units that it has.

    >>> tell_duration(59.4), tell_duration(7_290), tell_duration(180_000)
    ('59 s', '2 h 1 min', '2 d 2 h')
    """
    units = ((86_400, "d"), (3_600, "h"), (60, "min"), (1, "s"))
    left = int(seconds)
    for place, (length, name) in enumerate(units):
        if left >= length and place < len(units) - 1:
            small, small_name = units[place + 1]
            return f"{left // length} {name} {left % length // small} {small_name}"
    return f"{left} s"


class Progress:
    """Tells it once a second on a terminal, once in ten elsewhere."""

    def __init__(self, done: int, total: int, stream: TextIO = sys.stderr) -> None:
        self._first = done
        self._total = total
        self._stream = stream
        self._terminal = stream.isatty()
        self._started = time.monotonic()
        self._told = self._started

    def show(self, done: int, last: bool = False) -> None:
        """Tell it when it is time, and at the end."""
        now = time.monotonic()
        if not last and now - self._told < (1 if self._terminal else 10):
            return
        self._told = now
        spent = max(now - self._started, 1e-3)
        rate = (done - self._first) / spent
        left = f", {tell_duration((self._total - done) / rate)} left" if rate > 0 and done < self._total else ""
        text = f"{done:,} of {self._total:,} files, {rate:,.0f} a second{left}"
        if self._terminal:
            self._stream.write(f"\r{text:<70}" + ("\n" if last else ""))
        else:
            self._stream.write(text + "\n")
        self._stream.flush()
