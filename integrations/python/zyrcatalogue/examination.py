"""One file of a catalogue: what it is, and what is wrong with it, as one record. Runs on the workers."""
from __future__ import annotations

import os
import re
import stat
from dataclasses import dataclass
from typing import Any, Optional

import zyrsubtitle

Record = dict[str, Any]

UNREADABLE = "CATALOGUE-UNREADABLE"
"""The code of a file whose bytes could not be read."""
WORKER_DIED = "CATALOGUE-WORKER-DIED"
"""The code of a file at which workers died, again and again."""

_HEAD_BYTES = 8192
_LONGEST_MAKER = 60
_MAKERS = (
    # SAMI tells it in a comment or a meta tag, SSA in a comment or a field, SubViewer in a field of its header.
    re.compile(r"<meta\b[^>]*\bname\s*=\s*[\"']?generator[\"']?[^>]*\bcontent\s*=\s*[\"']([^\"'>]+)", re.I),
    re.compile(r"(?:<!--|^\s*;|^\s*\*)[^\n]*?\b(?:generated|created|made|produced|written)\s+(?:by|with|using)[ \t]*:?[ \t]*"
               r"([^\r\n>]+?)(?:-->|[\r\n]|$)", re.I | re.M),
    re.compile(r"^\[PRG\]([^\r\n]+)", re.I | re.M),
    re.compile(r"^Original Script:[ \t]*([^\r\n]+)", re.I | re.M),
    re.compile(r"^\[(?:AUTHOR|SOURCE)\]([^\r\n]+)", re.I | re.M),
)


@dataclass(frozen=True)
class Reading:
    """How every file is read; see zyrsubtitle.lint()."""

    code_page: Optional[str] = None
    single_byte: bool = False
    output: Optional[str] = None
    """Also try how captions fit this output; it costs many times as much."""


def examine(file: str, reading: Reading = Reading()) -> Record:
    """Give a file's record. It never raises for what a file is: a file that cannot be read is one finding.

    >>> examine("/nowhere/night.srt")["findings"][0]["code"]
    'CATALOGUE-UNREADABLE'
    """
    try:
        data = _read(file)
    except OSError as error:
        return refuse(file, UNREADABLE, error.strerror or str(error))
    try:
        found = zyrsubtitle.lints(
            data, file, code_page=reading.code_page, single_byte=reading.single_byte, output=reading.output
        )
    except zyrsubtitle.SubtitleError as error:
        return refuse(file, UNREADABLE, error.reason, len(data))
    return _describe_file(file, data, found)


def _describe_file(file: str, data: bytes, found: zyrsubtitle.Findings) -> Record:
    captions, box = found.captions, found.box_captions
    page = captions.encoding if captions is not None else None
    return _make_record(
        file,
        len(data),
        "none" if captions is None else captions.format,
        "none" if page is None else page.code_page or page.name,
        find_maker(data[:_HEAD_BYTES]),
        0 if captions is None else len(captions),
        0 if box is None else len(box),
        [_describe(one) for one in found],
    )


def examine_all(files: list[str], reading: Reading) -> list[Record]:
    """The records of a batch, in its order."""
    return [examine(file, reading) for file in files]


def refuse(file: str, code: str, sentence: str, size: int = 0) -> Record:
    """The record of a file that no finder has seen."""
    finding: Record = {"code": code, "severity": "lost", "line": 0, "column": 0, "offset": 0}
    finding |= {"caption": None, "message": sentence}
    return _make_record(file, size, "none", "none", "", 0, 0, [finding])


def find_maker(head: bytes) -> str:
    """The program or the person that a file says it is made by; empty when it does not say.

    >>> find_maker(b"[INFORMATION]\\r\\n[PRG]Lamp Titler 2\\r\\n")
    'Lamp Titler 2'
    """
    wide = head[:2] in (b"\xff\xfe", b"\xfe\xff")
    text = head.decode("utf-16" if wide else "utf-8", "replace")
    for pattern in _MAKERS:
        found = pattern.search(text)
        if found and found[1].strip():
            return " ".join(found[1].split())[:_LONGEST_MAKER]
    return ""


def _make_record(
    file: str, size: int, kind: str, encoding: str, maker: str, captions: int, on_box: int, findings: list[Record]
) -> Record:
    return {
        "file": file,
        "bytes": size,
        "format": kind,
        "encoding": encoding,
        "maker": maker,
        "captions": captions,
        "captions_on_the_box": on_box,
        "findings": findings,
    }


def _describe(finding: zyrsubtitle.Finding) -> Record:
    return {
        "code": finding.code,
        "severity": finding.severity.name.lower(),
        "line": finding.line,
        "column": finding.column,
        "offset": finding.offset,
        "caption": finding.caption,
        "message": finding.sentence,
    }


def _read(file: str) -> bytes:
    """A regular file's bytes; a pipe would never end."""
    handle = os.open(file, os.O_RDONLY | os.O_NONBLOCK | os.O_CLOEXEC)
    with os.fdopen(handle, "rb") as stream:
        if not stat.S_ISREG(os.fstat(handle).st_mode):
            raise OSError(0, "not a regular file")
        return stream.read()
