"""A subtitle file's captions as an immutable sequence."""
from __future__ import annotations

import enum
import os
from collections.abc import Iterator, Sequence
from dataclasses import dataclass, replace
from typing import Any, Callable, Optional, TypeVar, Union, overload

from .errors import ErrorKind, SubtitleError
from .native import NONE, NOWHERE, OPEN_END, check_ms, ffi, lib, optional_text, text

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]
Row = TypeVar("Row")


class DisplayMode(enum.Flag):
    """How a caption stands and is written, where its file says so."""

    NONE = 0
    UNDERLINE = 0x0002
    BOLD = 0x0004
    ITALIC = 0x0008
    LEFT = 0x0010
    CENTER = 0x0020
    RIGHT = 0x0040
    H1 = 0x0080
    H2 = 0x0100
    H3 = 0x0200
    H4 = 0x0400
    H5 = 0x0800
    H6 = 0x1000
    TOP = 0x2000
    MIDDLE = 0x4000


_ALL_MODES = sum(mode.value for mode in DisplayMode)


class EncodingRule(enum.IntEnum):
    """What decided on a file's encoding."""

    MARK = 0
    """It begins with a byte order mark."""
    SCAN = 1
    """Its bytes from 0x80 on are UTF-8, or too many of them are not."""
    FALLBACK = 2
    """Neither: a code page."""


@dataclass(frozen=True)
class Style:
    """The style that a caption's text ended with. Numbers are as the file writes them."""

    font_size: int
    mode: DisplayMode
    highlight: int
    colour: str
    """``#RRGGBB``, of the 16 bits that the box keeps."""
    outline_colour: str
    ssa_style: Optional[int]
    """SSA: index in Captions.ssa_styles; the fields below are the Dialogue line's own."""
    marked: int
    margin_left: int
    margin_right: int
    margin_vertical: int
    effect: int
    """0 none, 1 karaoke, 2 scroll up, 3 banner."""
    effect_top: int
    effect_bottom: int
    effect_delay: int


@dataclass(frozen=True)
class Caption:
    """A caption. Times are milliseconds from the start of the movie."""

    index: int
    start: int
    end: Optional[int]
    """None when the file does not tell it."""
    shown_until: Optional[int]
    """The end; of an open one the next start of the class, or None when there is none."""
    language: Optional[int]
    """Index in Captions.classes, or None where classes are joined."""
    text: str
    """Lines with a newline between them; empty for a caption that only clears the screen."""
    bad_characters: int
    """Places of the text that could not be read, each shown as U+FFFD."""
    offset: int
    """Where it begins in the file, bytes."""
    style: Style

    @property
    def lines(self) -> tuple[str, ...]:
        """The lines of the text.

        >>> import zyrsubtitle
        >>> zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,000\\none\\ntwo\\n\\n", name="a.srt")[0].lines
        ('one', 'two')
        """
        return tuple(self.text.split("\n")) if self.text else ()


@dataclass(frozen=True)
class LanguageClass:
    """A language of the file; formats other than SAMI have one without a name."""

    index: int
    name: str
    language: Optional[str]
    """BCP 47 tag where the name tells it: ``ko`` for ``KRCC``."""
    folded: tuple[str, ...]
    """Names of classes that the engine has put into this one."""
    order: Optional[int]
    """Its place among the classes that were read, or None when it was not."""
    captions: int
    first_start: Optional[int]
    last_start: Optional[int]


@dataclass(frozen=True)
class CodePage:
    """A code page that a file's bytes speak for."""

    name: str
    preview: str
    """A line of the captions, read in it; empty when none needs a code page."""
    in_use: bool


@dataclass(frozen=True)
class Encoding:
    """How a file's bytes are read, and why so."""

    name: str
    """``UTF-8``, ``UTF-16LE``, ``UTF-16BE``, or ``ANSI``: a code page."""
    code_page: Optional[str]
    """Of ANSI text, as iconv names it."""
    guessed: bool
    """The code page was found out from the bytes, or is CP949 for want of a better."""
    single_byte: bool
    rule: EncodingRule
    utf8_characters: int
    """Characters of several bytes that the scan saw, and the bytes that are not UTF-8; 0 with a mark."""
    not_utf8: int
    scanned: int
    """Bytes until the scan had seen enough."""
    first_not_utf8: Optional[tuple[int, int]]
    """Place and value of the first such byte."""
    first_unreadable: Optional[tuple[int, int]]
    """Place and value of the first byte that the encoding in use cannot read."""
    likely: tuple[CodePage, ...]
    """Of ANSI text beyond ASCII: the code pages that it looks like, the likeliest first."""

    @property
    def why(self) -> str:
        """What decided, as a sentence.

        >>> import zyrsubtitle
        >>> zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,000\\nHi\\n\\n", name="a.srt").encoding.why
        'nothing in it says UTF-8 or UTF-16, so it is read in CP949'
        """
        if self.rule is EncodingRule.MARK:
            return f"it begins with a byte order mark, so it is {self.name}"
        if self.rule is EncodingRule.FALLBACK:
            return f"nothing in it says UTF-8 or UTF-16, so it is read in {self.code_page}"
        if self.code_page is None:
            return f"the first {self.scanned} bytes hold {self.utf8_characters} characters of UTF-8"
        return f"{self.not_utf8} of the first {self.scanned} bytes are not UTF-8, so it is read in {self.code_page}"


@dataclass(frozen=True)
class SsaStyle:
    """A Style line of an SSA file; numbers as the file writes them."""

    name: str
    font: str
    font_size: int
    primary_colour: int
    secondary_colour: int
    tertiary_colour: int
    back_colour: int
    bold: int
    italic: int
    border_style: int
    outline: int
    shadow: int
    alignment: int
    margin_left: int
    margin_right: int
    margin_vertical: int
    alpha_level: int
    encoding: int


@dataclass(frozen=True)
class LogLine:
    """A message of the engine while it read the file."""

    priority: int
    """3 debug, 6 error."""
    tag: Optional[str]
    text: str
    caption: int
    """The caption before which it was written; the number of captions behind the last."""


@dataclass(frozen=True)
class Request:
    """All that a load is told; what a pickle holds."""

    path: Optional[bytes]
    data: Optional[bytes]
    name: Optional[str]
    code_page: Optional[str]
    classes: tuple[str, ...]
    single_byte: bool
    box_line_ends: bool
    together: bool
    start: int


def load(
    path: Path,
    *,
    code_page: Optional[str] = None,
    classes: Sequence[Union[str, int]] = (),
    single_byte: bool = False,
    box_line_ends: bool = False,
    together: bool = False,
    start: int = 0,
) -> Captions:
    """Read a subtitle file, or the subtitle beside a movie, which need not exist.

    code_page: of text without a Unicode encoding, as iconv names it; None finds it out, CP949 where nothing tells.
    classes: languages to read, by name or index, in this order; none reads all. ``""`` is the class without a name.
    single_byte: every byte of a code page is a character.
    box_line_ends: read line ends as the box does, where only CR LF ends a line.
    together: join the languages of one moment in one caption.
    start: above 0, only what a player gets after a jump to this time (ms).

    Raises SubtitleError; its kind says why.

    >>> import pathlib, tempfile
    >>> file = pathlib.Path(tempfile.mkdtemp(), "day.srt")
    >>> _ = file.write_text("1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n")
    >>> load(file)
    <Captions of day.srt: SubRip, 1 caption>
    """
    return Captions(
        Request(
            os.fsencode(path), None, None, code_page, class_names(classes), single_byte, box_line_ends, together, start
        )
    )


def loads(
    data: bytes,
    name: Optional[str] = None,
    *,
    code_page: Optional[str] = None,
    classes: Sequence[Union[str, int]] = (),
    single_byte: bool = False,
    box_line_ends: bool = False,
    together: bool = False,
    start: int = 0,
) -> Captions:
    """Read a subtitle file that is in memory; options are those of load().

    name: its ending tells the format, and errors use it. Without one the text itself tells the format.

    Raises SubtitleError.

    >>> loads(b"1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n", name="day.srt")[0].text
    'Good morning'
    """
    return Captions(
        Request(
            None, bytes(data), name, code_page, class_names(classes), single_byte, box_line_ends, together, start
        )
    )


def class_names(classes: Sequence[Union[str, int]]) -> tuple[str, ...]:
    if isinstance(classes, str):
        raise TypeError("classes is a list of names")
    return tuple(str(name) for name in classes)


class Captions(Sequence[Caption]):
    """The captions of one file, in the order in which a player gets them. Made by load() and loads()."""

    def __init__(self, request: Request) -> None:
        self._request = request
        handle = _run_load(request)
        if handle == ffi.NULL:
            raise SubtitleError(ErrorKind.NO_MEMORY, name_of(request), "there is no memory for the captions")
        error = lib.zyrCaptions_getError(handle)
        sentence = text(lib.zyrCaptions_getErrorText(handle))
        self._take(ffi.gc(handle, lib.zyrCaptions_free), None)
        if error != lib.ZYR_CAPTIONS_OK:
            raise SubtitleError(ErrorKind(error), name_of(request), sentence)

    @classmethod
    def of_findings(cls, request: Request, handle: Any, owner: Any, box: bool) -> Captions:
        """For Findings: a list that belongs to its owner."""
        captions = cls.__new__(cls)
        captions._request = replace(request, box_line_ends=box)
        captions._take(handle, owner)
        return captions

    def _take(self, handle: Any, owner: Any) -> None:
        self._handle = handle
        self._owner = owner  # lives as long as its list is asked
        self._file = ffi.new("ZyrCaptionsFile *")
        lib.zyrCaptions_getFile(handle, self._file)
        self._count: int = lib.zyrCaptions_count(handle)

    def __reduce__(self) -> tuple[type[Captions], tuple[Request]]:
        return Captions, (self._request,)

    def __repr__(self) -> str:
        name = os.path.basename(self.file)
        return f"<Captions of {name}: {self.format}, {self._count} caption{'' if self._count == 1 else 's'}>"

    def __len__(self) -> int:
        return self._count

    @overload
    def __getitem__(self, index: int) -> Caption: ...

    @overload
    def __getitem__(self, index: slice) -> tuple[Caption, ...]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[Caption, tuple[Caption, ...]]:
        if isinstance(index, slice):
            return tuple(self._get(at) for at in range(*index.indices(self._count)))
        at = index + self._count if index < 0 else index
        if not 0 <= at < self._count:
            raise IndexError(f"caption {index} of {self._count}")
        return self._get(at)

    def __iter__(self) -> Iterator[Caption]:
        return (self._get(index) for index in range(self._count))

    def _get(self, index: int) -> Caption:
        caption = ffi.new("ZyrCaption *")
        lib.zyrCaptions_get(self._handle, index, caption)
        return Caption(
            index,
            caption.iStart,
            _until(caption.iEnd),
            _until(caption.iShownUntil),
            _index(caption.uiClass),
            bytes(ffi.buffer(caption.pszText, caption.uiTextBytes)).decode("utf-8", "replace"),
            caption.uiBadCharacters,
            caption.uiSource,
            _read_style(caption.pstStyle),
        )

    # ------------------------------------------------------------------------------------------------- by time

    def at(self, ms: int, language: Optional[int] = None) -> list[Caption]:
        """The captions that are on screen at a time, language by language.

        language: index of a class; None for all.

        >>> import zyrsubtitle
        >>> day = zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n", name="day.srt")
        >>> [caption.index for caption in day.at(2499)], day.at(2500)
        ([0], [])
        """
        room = 8
        while True:
            indexes = ffi.new("uint32_t[]", room)
            number = lib.zyrCaptions_getAt(self._handle, class_number(language), check_ms("ms", ms), indexes, room)
            if number <= room:
                return [self._get(indexes[at]) for at in range(number)]
            room = number

    def text_at(self, ms: int, language: Optional[int] = None) -> str:
        """The text on screen at a time, that of several captions below each other.

        >>> import zyrsubtitle
        >>> zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,500\\nHi\\n\\n", name="day.srt").text_at(1000)
        'Hi'
        """
        return "\n".join(caption.text for caption in self.at(ms, language) if caption.text)

    def next(self, ms: int, language: Optional[int] = None) -> Optional[Caption]:
        """The first caption that starts after a time, or None.

        >>> import zyrsubtitle
        >>> day = zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n", name="day.srt")
        >>> day.next(0).start, day.next(1000)
        (1000, None)
        """
        return self._perhaps(lib.zyrCaptions_getNext(self._handle, class_number(language), check_ms("ms", ms)))

    def previous(self, ms: int, language: Optional[int] = None) -> Optional[Caption]:
        """The last caption that starts before a time, or None.

        >>> import zyrsubtitle
        >>> day = zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n", name="day.srt")
        >>> day.previous(1001).start, day.previous(1000)
        (1000, None)
        """
        return self._perhaps(lib.zyrCaptions_getPrevious(self._handle, class_number(language), check_ms("ms", ms)))

    def next_change(self, ms: int) -> Optional[int]:
        """The next time after this one at which a caption comes or goes, or None.

        >>> import zyrsubtitle
        >>> day = zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n", name="day.srt")
        >>> day.next_change(0), day.next_change(1000), day.next_change(2500)
        (1000, 2500, None)
        """
        return _until(lib.zyrCaptions_getNextChange(self._handle, check_ms("ms", ms)))

    def _perhaps(self, index: int) -> Optional[Caption]:
        return None if index == NONE else self._get(index)

    # ------------------------------------------------------------------------------------------------ the file

    @property
    def file(self) -> str:
        """The subtitle file: beside a movie the one that was found, of bytes the name that was given."""
        return os.fsdecode(ffi.string(self._file.pszFile))

    @property
    def format(self) -> str:
        """``SAMI``, ``SubRip``, ``SubViewer`` or ``SSA``."""
        return text(self._file.pszFormat)

    @property
    def with_text(self) -> int:
        """How many captions show something."""
        return int(self._file.uiWithText)

    @property
    def bad_characters(self) -> int:
        """Places of all captions that could not be read."""
        return int(self._file.uiBadCharacters)

    @property
    def last_end(self) -> int:
        """When the last caption goes (ms), or starts where it never goes."""
        return int(self._file.iLastEnd)

    @property
    def title(self) -> str:
        """SSA: the script's title; empty when the file does not tell."""
        return text(self._file.pszTitle)

    @property
    def original_script(self) -> str:
        """SSA: who wrote it."""
        return text(self._file.pszOriginalScript)

    @property
    def encoding(self) -> Encoding:
        """How the bytes are read, why so, and what else they look like."""
        file = self._file
        return Encoding(
            text(file.pszEncoding),
            optional_text(file.pszCodePage),
            bool(file.bGuessed),
            bool(file.bSingleByte),
            EncodingRule(file.uiRule),
            file.uiUtf8Characters,
            file.uiNotUtf8,
            file.uiScanned,
            _place(file.uiFirstNotUtf8, file.ucFirstNotUtf8),
            _place(file.uiFirstUnreadable, file.ucFirstUnreadable),
            tuple(
                self._rows(
                    "ZyrCaptionCodePage",
                    lib.zyrCaptions_getCodePage,
                    lambda _, row: CodePage(text(row.pszName), text(row.pszPreview), bool(row.bInUse)),
                )
            ),
        )

    @property
    def classes(self) -> tuple[LanguageClass, ...]:
        """The languages of the file, also those that were not asked for.

        >>> import zyrsubtitle
        >>> sami = b"<SAMI><BODY><SYNC Start=1000><P Class=KRCC>one<SYNC Start=2000><P Class=ENCC>two</BODY></SAMI>"
        >>> [(one.name, one.language, one.captions) for one in zyrsubtitle.loads(sami, name="a.smi").classes]
        [('KRCC', 'ko', 1), ('ENCC', 'en', 1)]
        """
        return tuple(self._rows("ZyrCaptionClass", lib.zyrCaptions_getClass, self._read_class))

    def _read_class(self, index: int, row: Any) -> LanguageClass:
        folded = (lib.zyrCaptions_getFoldedName(self._handle, index, name) for name in range(row.uiFolded))
        return LanguageClass(
            index,
            text(row.pszName),
            optional_text(row.pszLanguage),
            tuple(text(name) for name in folded),
            _index(row.uiOrder),
            row.uiCaptions,
            row.iFirstStart if row.uiCaptions else None,
            row.iLastStart if row.uiCaptions else None,
        )

    @property
    def ssa_styles(self) -> tuple[SsaStyle, ...]:
        """SSA: the file's styles."""
        return tuple(self._rows("ZyrCaptionSsaStyle", lib.zyrCaptions_getSsaStyle, _read_ssa_style))

    @property
    def log(self) -> tuple[LogLine, ...]:
        """What the engine had to say of the file."""
        return tuple(
            self._rows(
                "ZyrCaptionLogLine",
                lib.zyrCaptions_getLogLine,
                lambda _, row: LogLine(
                    row.iPriority, optional_text(row.pszTag), text(row.pszText).rstrip("\n"), row.uiCaption
                ),
            )
        )

    def _rows(self, kind: str, get: Any, read: Callable[[int, Any], Row]) -> Iterator[Row]:
        row = ffi.new(kind + " *")
        index = 0
        while get(self._handle, index, row) == lib.ZYR_CAPTIONS_OK:
            yield read(index, row)
            index += 1


# ------------------------------------------------------------------------------------------------- the C values


def _run_load(request: Request) -> Any:
    options, _alive = make_options(request)
    if request.path is not None:
        return lib.zyrCaptions_load(bytes_without_zero(request.path), options)
    name = ffi.NULL if request.name is None else ffi.new("char[]", bytes_without_zero(os.fsencode(request.name)))
    data = ffi.from_buffer(request.data)
    return lib.zyrCaptions_loadMemory(data, len(request.data or b""), name, options)


def make_options(request: Request) -> tuple[Any, Any]:
    """The options of a load, and what must stay while they are used."""
    options = ffi.new("ZyrCaptionsOptions *")
    page = ffi.NULL if request.code_page is None else ffi.new("char[]", bytes_without_zero(request.code_page.encode()))
    names = [ffi.new("char[]", bytes_without_zero(name.encode())) for name in request.classes]
    pointers = ffi.new("char *[]", names)
    options.pszCodePage = page
    options.ppszClasses = pointers if names else ffi.NULL
    options.uiClasses = len(names)
    options.uiFlags = (
        (lib.ZYR_CAPTIONS_BOX_LINE_ENDS if request.box_line_ends else 0)
        | (lib.ZYR_CAPTIONS_SINGLE_BYTE if request.single_byte else 0)
        | (lib.ZYR_CAPTIONS_TOGETHER if request.together else 0)
    )
    if request.start < 0:
        raise ValueError(f"start is no time: {request.start}")
    options.uiFromMs = min(request.start, 2**31 - 1)
    return options, (page, names, pointers)


def bytes_without_zero(value: bytes) -> bytes:
    if b"\0" in value:
        raise ValueError("a name with a zero byte in it")
    return value


def name_of(request: Request) -> str:
    return (request.name or "") if request.path is None else os.fsdecode(request.path)


def _until(ms: int) -> Optional[int]:
    return None if ms == OPEN_END else ms


def _index(value: int) -> Optional[int]:
    return None if value == NONE else value


def class_number(language: Optional[int]) -> int:
    return NONE if language is None else language


def _place(offset: int, byte: int) -> Optional[tuple[int, int]]:
    return None if offset == NOWHERE else (offset, byte)


def _colour(rgb565: int) -> str:
    red, green, blue = rgb565 >> 11, rgb565 >> 5 & 0x3F, rgb565 & 0x1F
    return f"#{red << 3 | red >> 2:02X}{green << 2 | green >> 4:02X}{blue << 3 | blue >> 2:02X}"


def _read_style(style: Any) -> Style:
    return Style(
        style.uiFontSize,
        DisplayMode(style.uiDisplayMode & _ALL_MODES),
        style.uiHighlight,
        _colour(style.usColor),
        _colour(style.usOutlineColor),
        _index(style.uiSsaStyle),
        style.uiMarked,
        style.uiMarginLeft,
        style.uiMarginRight,
        style.uiMarginVertical,
        style.uiEffect,
        style.uiEffectTop,
        style.uiEffectBottom,
        style.uiEffectDelay,
    )


def _read_ssa_style(_: int, row: Any) -> SsaStyle:
    names = (name for name, _field in ffi.typeof("ZyrCaptionSsaStyle").fields)
    return SsaStyle(*(text(getattr(row, name)) if name.startswith("psz") else getattr(row, name) for name in names))
