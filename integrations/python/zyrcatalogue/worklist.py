"""Which files there are, and which are done. On disk, so that memory stays flat over millions of them."""
from __future__ import annotations

import os
import sqlite3
from collections.abc import Iterable, Iterator
from typing import Optional

ENDINGS = (".smi", ".sami", ".srt", ".sub", ".ssa")


class WorkList:
    """Files, each once, in the order of their names.

    >>> work = WorkList()
    >>> work.add(["b.srt", "a.srt", "b.srt"]); work.finish(["a.srt"])
    >>> work.count(), list(work.batches(10))
    ((2, 1), [['b.srt']])
    """

    def __init__(self) -> None:
        # A name of its own gives a file that the system clears away with the process.
        self._base = sqlite3.connect("", isolation_level=None)
        self._base.execute("PRAGMA journal_mode = OFF")
        self._base.execute("CREATE TABLE file (name BLOB PRIMARY KEY, done INT NOT NULL) WITHOUT ROWID")

    def add(self, files: Iterable[str]) -> None:
        """Take files in; those that are known stay as they are."""
        self._change("INSERT OR IGNORE INTO file VALUES (?, 0)", files)

    def finish(self, files: Iterable[str]) -> None:
        """Mark files as done; those that are not in the list are left out."""
        self._change("UPDATE file SET done = 1 WHERE name = ?", files)

    def _change(self, statement: str, files: Iterable[str]) -> None:
        self._base.execute("BEGIN")
        self._base.executemany(statement, ((os.fsencode(file),) for file in files))
        self._base.execute("COMMIT")

    def count(self) -> tuple[int, int]:
        """How many files there are, and how many of them are done."""
        row = self._base.execute("SELECT count(*), ifnull(sum(done), 0) FROM file").fetchone()
        return int(row[0]), int(row[1])

    def batches(self, size: int) -> Iterator[list[str]]:
        """The files that are not done when this is first asked for, so many at a time."""
        last = b""
        while True:
            rows = self._base.execute(
                "SELECT name FROM file WHERE done = 0 AND name > ? ORDER BY name LIMIT ?", (last, size)
            ).fetchall()
            if not rows:
                return
            yield [os.fsdecode(row[0]) for row in rows]
            last = rows[-1][0]


def find_files(inputs: Iterable[str], since: Optional[float] = None) -> Iterator[str]:
    """Every subtitle file in folders and below, and files as they are named.

    since: leave out what was last written before this time (seconds from 1970). A file that cannot be asked stays, so
    that it is told of.
    """
    for name in inputs:
        if not os.path.isdir(name):
            if _is_young(name, since):
                yield name
            continue
        for folder, folders, files in os.walk(name):
            folders.sort()
            for file in files:
                path = os.path.join(folder, file)
                if file.lower().endswith(ENDINGS) and _is_young(path, since):
                    yield path


def _is_young(file: str, since: Optional[float]) -> bool:
    if since is None:
        return True
    try:
        return os.stat(file).st_mtime >= since
    except OSError:
        return True
