"""The results file: a record for each file, as lines of JSON or rows of CSV, and how a run goes on with it."""
from __future__ import annotations

import csv
import fcntl
import io
import json
import os
import re
import time
from collections.abc import Iterable, Iterator
from typing import BinaryIO, Optional

from .examination import Record

_FILE_COLUMNS = ("file", "bytes", "format", "encoding", "maker", "captions", "captions_on_the_box")
_FINDING_COLUMNS = ("code", "severity", "line", "column", "offset", "caption", "message")
COLUMNS = (*_FILE_COLUMNS, "findings", "finding", *_FINDING_COLUMNS)
"""Of CSV: a row for each finding, the finding-th of so many; one row with 0 of 0 for a file without any."""
_NUMBERS = {"bytes", "captions", "captions_on_the_box", "findings", "finding", "line", "column", "offset", "caption"}
_SYNC_SECONDS = 1.0


class ResultsError(Exception):
    """The results file cannot be used; the text says why."""


def encode_json(record: Record) -> str:
    """A record as a line; names that are no UTF-8 keep their bytes."""
    return json.dumps(record, separators=(",", ":")) + "\n"


def encode_csv(record: Record) -> str:
    """A record as rows. A cell never holds a line end, so that a line is a row."""
    rows = io.StringIO()
    writer = csv.writer(rows, lineterminator="\n")
    common = [_escape(record["file"]), *(record[column] for column in _FILE_COLUMNS[1:])]
    findings = record["findings"]
    if not findings:
        writer.writerow([*map(_cell, common), 0, 0, *[""] * len(_FINDING_COLUMNS)])
    for number, finding in enumerate(findings, 1):
        cells = [*common, len(findings), number, *(finding[column] for column in _FINDING_COLUMNS)]
        writer.writerow([_cell(cell) for cell in cells])
    return rows.getvalue()


def _cell(value: object) -> str:
    return "" if value is None else str(value).replace("\r", " ").replace("\n", " ")


# A name may hold any byte but zero, and must come back as it was.
_ESCAPES = {"\\": "\\\\", "\n": "\\n", "\r": "\\r"}
_UNESCAPES = {escape: character for character, escape in _ESCAPES.items()}


def _escape(name: str) -> str:
    return "".join(_ESCAPES.get(character, character) for character in name)


def _unescape(name: str) -> str:
    return re.sub(r"\\[\\nr]", lambda found: _UNESCAPES[found[0]], name)


def read_records(file: str) -> Iterator[Record]:
    """The whole records of a results file; what is cut off at its end is left out."""
    with open(file, "rb") as stream:
        for record, _end in _scan(stream, _is_csv(file)):
            yield record


def _is_csv(file: str) -> bool:
    return file.lower().endswith(".csv")


def _scan(stream: BinaryIO, as_csv: bool) -> Iterator[tuple[Record, int]]:
    """Each whole record, and where it ends."""
    return _scan_csv(stream) if as_csv else _scan_json(stream)


def _scan_json(stream: BinaryIO) -> Iterator[tuple[Record, int]]:
    end = 0
    for line in stream:
        if not line.endswith(b"\n"):
            return
        end += len(line)
        try:
            record = json.loads(line)
            record["file"], record["findings"]
        except (ValueError, KeyError, TypeError):
            raise ResultsError(f"byte {end - len(line)} of the results is no record") from None
        yield record, end


def _scan_csv(stream: BinaryIO) -> Iterator[tuple[Record, int]]:
    end = 0
    record: Optional[Record] = None
    for line in stream:
        if not line.endswith(b"\n"):
            return
        end += len(line)
        cells = next(csv.reader([line.decode("utf-8", "surrogateescape")]))
        if tuple(cells) == COLUMNS:
            continue
        row = {name: _value(name, cell) for name, cell in zip(COLUMNS, cells)}
        if len(cells) != len(COLUMNS):
            raise ResultsError(f"byte {end - len(line)} of the results is no row")
        if record is None or row["finding"] in (0, 1):
            record = {column: row[column] for column in _FILE_COLUMNS}
            record["file"] = _unescape(record["file"])
            record["findings"] = []
        if row["findings"]:
            record["findings"].append({column: row[column] for column in _FINDING_COLUMNS})
        if row["finding"] == row["findings"]:
            yield record, end
            record = None


def _value(name: str, cell: str) -> object:
    if name not in _NUMBERS:
        return cell
    return int(cell) if cell else None


class Results:
    """A results file that is open for more. One run at a time may have it."""

    def __init__(self, file: str) -> None:
        self._csv = _is_csv(file)
        self._encode = encode_csv if self._csv else encode_json
        self._stream = open(file, "a+b")
        self._synced = time.monotonic()
        try:
            fcntl.flock(self._stream, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError:
            self._stream.close()
            raise ResultsError(f"{file}: another run writes to it") from None

    def read_done(self) -> Iterator[Record]:
        """The records that an earlier run has left; what it wrote of another is cut off behind them."""
        self._stream.seek(0)
        end = 0
        for record, end in _scan(self._stream, self._csv):
            yield record
        # The heading of CSV alone is written anew.
        self._stream.truncate(end)
        self._stream.seek(end)
        if self._csv and end == 0:
            self._write(",".join(COLUMNS) + "\n")

    def write(self, records: Iterable[Record]) -> None:
        """Put records behind those that are there, in one piece."""
        self._write("".join(map(self._encode, records)))

    def _write(self, text: str) -> None:
        self._stream.write(text.encode("utf-8", "surrogateescape"))
        self._stream.flush()
        if time.monotonic() - self._synced >= _SYNC_SECONDS:
            self._sync()

    def _sync(self) -> None:
        os.fsync(self._stream.fileno())
        self._synced = time.monotonic()

    def close(self) -> None:
        """All that was written is on the disk behind this."""
        self._sync()
        self._stream.close()
