"""What a box makes of a file that its author did not mean."""
from __future__ import annotations

import enum
import os
from collections.abc import Iterator, Sequence
from dataclasses import dataclass
from typing import Any, Optional, Union, overload

from .captions import Captions, Path, Request, bytes_without_zero, class_names, make_options, name_of
from .errors import ErrorKind, SubtitleError
from .native import NONE, ffi, lib, text


class Severity(enum.IntEnum):
    """How bad a finding is; worse ones are larger."""

    DOUBTFUL = 1
    """Shown as it is written, but it may not be what was meant."""
    CHANGED = 2
    """Shown, but otherwise than it was meant."""
    LOST = 3
    """Text or captions are never seen."""


@dataclass(frozen=True)
class Rule:
    """What a code stands for."""

    code: str
    """``ZYR-SRT-002``; it never changes its meaning."""
    severity: Severity
    formats: str
    title: str
    explanation: str
    """What the box does, and what to write instead."""
    file: str
    """A name for a file of the example."""
    example: bytes
    """A file that has it."""


@dataclass(frozen=True)
class Finding:
    """A place in a file where the box does something else than its author meant."""

    code: str
    severity: Severity
    line: int
    """1 on, where every kind of line end counts; 0: the file as a whole."""
    column: int
    """1 on, in characters; 0 with line 0."""
    columns: int
    """How many characters of the line it is about."""
    offset: int
    """Bytes into the file."""
    caption: Optional[int]
    """The caption of Findings.captions that it is about."""
    language: Optional[int]
    """That caption's class."""
    sentence: str
    """What the box does here."""
    text: str
    """What in the file it is about; may be empty."""
    source: str
    """The whole line, without its end."""


@dataclass(frozen=True)
class _Limits:
    characters_per_second: int
    longest: int
    output: Optional[str]
    font_size: int


def lint(
    path: Path,
    *,
    code_page: Optional[str] = None,
    classes: Sequence[Union[str, int]] = (),
    single_byte: bool = False,
    characters_per_second: int = 25,
    longest: int = 15_000,
    output: Optional[str] = None,
    font_size: int = 0,
) -> Findings:
    """Look for all findings of a subtitle file, or of the subtitle beside a movie.

    characters_per_second: more are too fast to read; 0 says that any number is fine.
    longest: a caption that stays longer (ms) is doubtful; 0 says that none is.
    output: also try how the captions fit this one of outputs(); font_size as Screen takes it. It wants the display
    of the process, so that no Screen may be open.
    The other options are those of load().

    Raises SubtitleError for a file whose bytes cannot be read. One that the box does not read is a finding.

    >>> import pathlib, tempfile
    >>> file = pathlib.Path(tempfile.mkdtemp(), "day.srt")
    >>> _ = file.write_bytes(b"1\\r\\n00:00:01,000 --> 00:00:02,500\\r\\nGood morning\\r\\n\\r\\n")
    >>> len(lint(file))
    0
    """
    names = class_names(classes)
    request = Request(os.fsencode(path), None, None, code_page, names, single_byte, False, False, 0)
    return Findings(request, _Limits(characters_per_second, longest, output, font_size))


def lints(
    data: bytes,
    name: Optional[str] = None,
    *,
    code_page: Optional[str] = None,
    classes: Sequence[Union[str, int]] = (),
    single_byte: bool = False,
    characters_per_second: int = 25,
    longest: int = 15_000,
    output: Optional[str] = None,
    font_size: int = 0,
) -> Findings:
    """Look for all findings of a file in memory; options are those of lint(), and the name that of loads().

    >>> entry = b"1\\r\\n00:00:01,000 --> 00:00:02,500\\r\\nGood morning\\r\\n\\r\\n"
    >>> [finding.code for finding in lints(entry.replace(b"01,000", b"03,000"), name="day.srt")]
    ['ZYR-TIME-003']
    """
    names = class_names(classes)
    request = Request(None, bytes(data), name, code_page, names, single_byte, False, False, 0)
    return Findings(request, _Limits(characters_per_second, longest, output, font_size))


class Findings(Sequence[Finding]):
    """The findings of one file, in its order, those of one place the worst first. Made by lint() and lints()."""

    def __init__(self, request: Request, limits: _Limits) -> None:
        self._request = request
        self._limits = limits
        handle = _run_load(request, limits)
        if handle == ffi.NULL:
            raise SubtitleError(ErrorKind.NO_MEMORY, name_of(request), "there is no memory for the findings")
        self._handle = ffi.gc(handle, lib.zyrFindings_free)
        error = lib.zyrFindings_getError(handle)
        if error != lib.ZYR_CAPTIONS_OK:
            raise SubtitleError(ErrorKind(error), name_of(request), text(lib.zyrFindings_getErrorText(handle)))
        self._count: int = lib.zyrFindings_count(handle)

    def __reduce__(self) -> tuple[type[Findings], tuple[Request, _Limits]]:
        return Findings, (self._request, self._limits)

    def __repr__(self) -> str:
        name = os.path.basename(name_of(self._request))
        return f"<Findings of {name}: {self._count}>"

    def __len__(self) -> int:
        return self._count

    @overload
    def __getitem__(self, index: int) -> Finding: ...

    @overload
    def __getitem__(self, index: slice) -> tuple[Finding, ...]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[Finding, tuple[Finding, ...]]:
        if isinstance(index, slice):
            return tuple(self._get(at) for at in range(*index.indices(self._count)))
        at = index + self._count if index < 0 else index
        if not 0 <= at < self._count:
            raise IndexError(f"finding {index} of {self._count}")
        return self._get(at)

    def __iter__(self) -> Iterator[Finding]:
        return (self._get(index) for index in range(self._count))

    def _get(self, index: int) -> Finding:
        row = ffi.new("ZyrFinding *")
        lib.zyrFindings_get(self._handle, index, row)
        return Finding(
            text(row.pszCode),
            Severity(row.uiSeverity),
            row.uiLine,
            row.uiColumn,
            row.uiColumns,
            row.uiOffset,
            None if row.uiCaption == NONE else row.uiCaption,
            None if row.uiClass == NONE else row.uiClass,
            text(row.pszSentence),
            text(row.pszText),
            text(row.pszLine),
        )

    @property
    def captions(self) -> Optional[Captions]:
        """The captions that findings are about, once all lines end in CR LF; None where the box reads none."""
        return self._captions(lib.zyrFindings_getCaptions(self._handle), box=False)

    @property
    def box_captions(self) -> Optional[Captions]:
        """The captions that the box gets of the file as it is."""
        return self._captions(lib.zyrFindings_getBoxCaptions(self._handle), box=True)

    def _captions(self, handle: Any, box: bool) -> Optional[Captions]:
        if handle == ffi.NULL or lib.zyrCaptions_getError(handle) != lib.ZYR_CAPTIONS_OK:
            return None
        return Captions.of_findings(self._request, handle, self._handle, box)


def rules() -> tuple[Rule, ...]:
    """Every code that a finding can have.

    >>> len({rule.code for rule in rules()}) == len(rules())
    True
    """
    found: list[Rule] = []
    row = ffi.new("ZyrFindingRule *")
    while lib.zyrFindings_getRule(len(found), row) == lib.ZYR_CAPTIONS_OK:
        found.append(
            Rule(
                text(row.pszCode),
                Severity(row.uiSeverity),
                text(row.pszFormats),
                text(row.pszTitle),
                text(row.pszExplanation),
                text(row.pszFile),
                _make_example(ffi.string(row.pszExample)),
            )
        )
    return tuple(found)


# What line ends and the character 0 are written as, so that an example is a C string that can be read.
_EXAMPLE_BYTES = {b"\n"[0]: b"\r\n", b"\r"[0]: b"\n", b"\1"[0]: b"\0"}


def _make_example(written: bytes) -> bytes:
    return b"".join(_EXAMPLE_BYTES.get(byte, bytes([byte])) for byte in written)


def _run_load(request: Request, limits: _Limits) -> Any:
    captions, _alive = make_options(request)
    options = ffi.new("ZyrFindingsOptions *")
    options.pstCaptions = captions
    options.uiCharactersPerSecond = limits.characters_per_second or NONE
    options.uiLongestMs = limits.longest or NONE
    output = ffi.NULL if limits.output is None else ffi.new("char[]", bytes_without_zero(limits.output.encode()))
    options.pszOutput = output
    options.uiFontSize = limits.font_size
    if request.path is not None:
        return lib.zyrFindings_load(bytes_without_zero(request.path), options)
    name = ffi.NULL if request.name is None else ffi.new("char[]", bytes_without_zero(os.fsencode(request.name)))
    data = ffi.from_buffer(request.data)
    return lib.zyrFindings_loadMemory(data, len(request.data or b""), name, options)
