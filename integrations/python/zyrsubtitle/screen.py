"""Captions drawn as an output of the box shows them."""
from __future__ import annotations

import threading
from dataclasses import dataclass
from types import TracebackType
from typing import TYPE_CHECKING, Any, Optional

from .captions import Captions, class_number
from .errors import ErrorKind, SubtitleError
from .native import check_ms, ffi, lib, text

if TYPE_CHECKING:
    import numpy
    import numpy.typing
    import PIL.Image

    Pixels = numpy.typing.NDArray[numpy.uint8]


@dataclass(frozen=True)
class Output:
    """An output of the box, and the display's size on it, pixels."""

    name: str
    width: int
    height: int


@dataclass(frozen=True)
class Box:
    """Where a caption stands in its picture, pixels."""

    x: int
    y: int
    width: int
    height: int


_REASONS = {
    ErrorKind.BAD_ARGUMENT: "there is no such output, font size or position",
    ErrorKind.BUSY: "another screen is open; a process has one display",
    ErrorKind.NO_SCREEN: "the renderer does not start; is its font installed? (ZYR_FONT names one)",
    ErrorKind.NO_MEMORY: "there is no memory for the picture",
}


def _check(error: int) -> None:
    if error != lib.ZYR_CAPTIONS_OK:
        kind = ErrorKind(error)
        raise SubtitleError(kind, "", _REASONS.get(kind, "the display refuses"))


def outputs() -> tuple[Output, ...]:
    """The outputs that a Screen can be of.

    >>> outputs()[0].name
    'lcd'
    """
    found: list[Output] = []
    output = ffi.new("ZyrCaptionOutput *")
    while lib.zyrCaptions_getOutput(len(found), output) == lib.ZYR_CAPTIONS_OK:
        found.append(Output(text(output.pszName), output.uiWidth, output.uiHeight))
    return tuple(found)


class Screen:
    """The box's renderer, open for one output.

    output: a name of outputs().
    font_size: 28, 32, 36 or 40 are 4, 8, 12 or 16 pixels above the output's own size; None is that size.
    position: pixels between the caption and the display's bottom; None: 16.

    There is one display in a process: a second screen raises SubtitleError (BUSY) until the first is closed.
    Threads take turns.

    >>> with Screen("lcd") as screen:
    ...     picture = screen.image("Good morning")
    ...     picture.size == (screen.output.width, screen.output.height)
    True
    """

    def __init__(self, output: str = "lcd", font_size: Optional[int] = None, position: Optional[int] = None) -> None:
        self._lock = threading.Lock()
        self._handle: Any = None
        names = {one.name: one for one in outputs()}
        if output not in names:
            raise SubtitleError(ErrorKind.BAD_ARGUMENT, "", f"there is no output '{output}'; outputs() lists them")
        self.output = names[output]
        screen = ffi.new("ZyrCaptionScreen **")
        where = -1 if position is None else position
        _check(lib.zyrCaptions_openScreen(output.encode("ascii"), font_size or 0, where, screen))
        self._handle = screen[0]

    def __enter__(self) -> Screen:
        return self

    def __exit__(
        self, kind: Optional[type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_handle", None) is not None:
            self.close()

    def close(self) -> None:
        """Give the display back; a second time does nothing."""
        with self._lock:
            if self._handle is not None:
                lib.zyrCaptions_closeScreen(self._handle)
            self._handle = None

    def draw(self, what: str, over: Optional[Pixels] = None) -> Pixels:
        """Draw a text into an array of height x width x 4 bytes: red, green, blue, alpha.

        over: such an array to draw over, which is returned; without it all around the text is transparent.

        Raises SubtitleError, and ValueError for an array of another shape. Wants NumPy.

        >>> with Screen("lcd") as screen:
        ...     array = screen.draw("Good morning")
        ...     array.shape[2], bool(array.any())
        (4, True)
        """
        import numpy

        shape = (self.output.height, self.output.width, 4)
        picture = numpy.zeros(shape, numpy.uint8) if over is None else over
        if picture.shape != shape or picture.dtype != numpy.uint8 or not picture.flags.c_contiguous:
            raise ValueError(f"not an array of {shape[0]} x {shape[1]} x 4 bytes without gaps")
        self._draw(what, picture)
        return picture

    def draw_at(self, captions: Captions, ms: int, language: Optional[int] = None) -> Pixels:
        """Draw what is on screen at a time (ms), as draw() does.

        >>> import zyrsubtitle
        >>> day = zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,500\\nHi\\n\\n", name="day.srt")
        >>> with Screen("lcd") as screen:
        ...     bool(screen.draw_at(day, 1000).any()), bool(screen.draw_at(day, 0).any())
        (True, False)
        """
        import numpy

        picture = numpy.zeros((self.output.height, self.output.width, 4), numpy.uint8)
        pixels = ffi.from_buffer("uint8_t[]", picture, require_writable=True)
        with self._lock:
            time = check_ms("ms", ms)
            _check(
                lib.zyrCaptions_drawAt(self._opened(), captions._handle, class_number(language), time, pixels, ffi.NULL)
            )
        return picture

    def image(self, what: str) -> PIL.Image.Image:
        """Draw a text into an RGBA picture of Pillow, which must be installed.

        >>> with Screen("hdmi-720p") as screen:
        ...     screen.image("Good morning").size
        (1280, 720)
        """
        import PIL.Image

        size = (self.output.width, self.output.height)
        pixels = bytearray(4 * size[0] * size[1])
        self._draw(what, pixels)
        return PIL.Image.frombytes("RGBA", size, bytes(pixels))

    def box(self, what: str) -> Optional[Box]:
        """Where a text would stand; None when it leaves no mark.

        >>> with Screen("lcd") as screen:
        ...     screen.box("Good morning").width > 0, screen.box("")
        (True, None)
        """
        found = ffi.new("ZyrCaptionBox *")
        with self._lock:
            _check(lib.zyrCaptions_draw(self._opened(), _c_text(what), ffi.NULL, found))
        return Box(found.uiX, found.uiY, found.uiWidth, found.uiHeight) if found.uiWidth else None

    def missing(self, what: str) -> str:
        """The characters of a text that the font cannot show, each once; a hollow shape stands for each.

        >>> with Screen("lcd") as screen:
        ...     screen.missing("Good morning")
        ''
        """
        room = len(what) + 1
        characters = ffi.new("uint32_t[]", room)
        with self._lock:
            number = lib.zyrCaptions_getMissing(self._opened(), _c_text(what), characters, room)
        return "".join(chr(characters[at]) for at in range(min(number, room)))

    def _draw(self, what: str, into: Any) -> None:
        pixels = ffi.from_buffer("uint8_t[]", into, require_writable=True)
        with self._lock:
            _check(lib.zyrCaptions_draw(self._opened(), _c_text(what), pixels, ffi.NULL))

    def _opened(self) -> Any:
        if self._handle is None:
            raise ValueError("the screen is closed")
        return self._handle


def _c_text(what: str) -> bytes:
    return what.replace("\0", "�").encode("utf-8", "replace")
