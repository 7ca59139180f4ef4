"""Files as a box must have them to show what was meant, by the program zyrsub."""
from __future__ import annotations

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
from dataclasses import dataclass
from typing import Optional

from .captions import Path
from .errors import ErrorKind, LibraryError, SubtitleError
from .findings import Findings, lints

_CHANGE = re.compile(r":(\d+): ([A-Z]+-[A-Z]+-\d+): (.*)$")
_KINDS = {2: ErrorKind.BAD_ARGUMENT, 3: ErrorKind.UNREADABLE, 4: ErrorKind.MALFORMED}


@dataclass(frozen=True)
class Change:
    """What was changed in a file."""

    line: int
    """Of the file as it was, 1 on."""
    code: str
    """The finding that it is about, as in rules()."""
    what: str


@dataclass(frozen=True)
class Fixed:
    """A file that the box reads as it was meant."""

    data: bytes
    """The file; what needed no change is as it was, byte for byte."""
    ending: str
    """Of its format: ``.srt``."""
    changes: tuple[Change, ...]

    @property
    def left(self) -> Findings:
        """The findings that are left, those of the new file."""
        return lints(self.data, "fixed" + self.ending)


def fix(path: Path, *, code_page: Optional[str] = None, single_byte: bool = False) -> Fixed:
    """Give a subtitle file, or the subtitle beside a movie, as the box must have it. The file itself stays as it is.

    code_page: of text without a Unicode encoding, as iconv names it; None finds it out.

    Raises SubtitleError, and LibraryError where zyrsub, which does the work, is not installed.

    >>> import pathlib, tempfile
    >>> file = pathlib.Path(tempfile.mkdtemp(), "day.srt")
    >>> _ = file.write_bytes(b"1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n")
    >>> fix(file).data
    b'1\\r\\n00:00:01,000 --> 00:00:02,500\\r\\nGood morning\\r\\n\\r\\n'
    """
    return _run(os.fsdecode(path), code_page, single_byte)


def fixes(data: bytes, name: str, *, code_page: Optional[str] = None, single_byte: bool = False) -> Fixed:
    """The same of a file in memory; the ending of its name tells the format.

    >>> fixes(b"1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n", "day.srt").changes[0].code
    'ZYR-FILE-003'
    """
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "subtitle" + os.path.splitext(name)[1])
        pathlib.Path(file).write_bytes(data)
        return _run(file, code_page, single_byte, name)


def _run(file: str, code_page: Optional[str], single_byte: bool, name: Optional[str] = None) -> Fixed:
    program = shutil.which("zyrsub")
    if program is None:
        raise LibraryError("zyrsub, which writes fixed files, is not installed")
    with tempfile.TemporaryDirectory() as folder:
        command = [program, "fix", "--codepage", code_page or "auto", "-o", folder]
        run = subprocess.run(
            [*command, *(["--single-byte"] if single_byte else []), "--", file],
            stdin=subprocess.DEVNULL,
            capture_output=True,
            check=False,
        )
        told = run.stderr.decode("utf-8", "replace")
        written = os.listdir(folder)
        if not written:
            reason = told.removeprefix("zyrsub: ").strip().replace(file, name or file)
            raise SubtitleError(_KINDS.get(run.returncode, ErrorKind.MALFORMED), name or file, reason)
        data = pathlib.Path(folder, written[0]).read_bytes()
    shown = re.sub(r"[\0-\x09\x0b-\x1f\x7f]", "\ufffd", os.fsencode(file).decode("utf-8", "replace"))
    lines = told.split("\n")
    found = filter(None, (_CHANGE.match(line[len(shown) :]) for line in lines if line.startswith(shown)))
    changes = tuple(Change(int(one[1]), one[2], one[3]) for one in found)
    return Fixed(data, os.path.splitext(written[0])[1].lower(), changes)
