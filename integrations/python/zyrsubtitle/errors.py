"""What goes wrong, and of which file."""
from __future__ import annotations

import enum


class ErrorKind(enum.IntEnum):
    """Why a file could not be read, or a caption not drawn."""

    BAD_ARGUMENT = 1
    """No path, no data, or an option without a meaning."""
    NOT_FOUND = 2
    """No such file, or no subtitle beside the movie."""
    UNREADABLE = 3
    """The system does not let it be read, or it is no regular file."""
    FOLDER = 4
    NO_FORMAT = 5
    """A subtitle of a kind that is not read."""
    EMPTY = 6
    """No bytes at all."""
    MALFORMED = 7
    """Not what its name says."""
    NO_CODE_PAGE = 8
    """There is no code page of the given name."""
    NO_CLASS = 9
    """The file has no such language class."""
    NO_SEEK = 10
    """The file cannot be read from the given time on."""
    BUSY = 11
    """Another screen is open, or the program has a subtitle open in the engine itself."""
    TOO_LARGE = 12
    """2 GiB and more."""
    NO_MEMORY = 13
    NO_SCREEN = 14
    """The renderer does not start: no font, or no such output."""


class LibraryError(ImportError):
    """libzyrcaptions was not found; the text says where it was looked for."""


class SubtitleError(Exception):
    """A file, or a drawing, that failed.

    >>> import zyrsubtitle
    >>> try:
    ...     zyrsubtitle.load("/nowhere/night.srt")
    ... except zyrsubtitle.SubtitleError as error:
    ...     print(error.kind.name, error.file)
    NOT_FOUND /nowhere/night.srt
    """

    kind: ErrorKind
    file: str
    """The file as it was given; empty when the error is about none."""
    reason: str
    """A sentence that says what is wrong and what to do."""

    def __init__(self, kind: ErrorKind, file: str, reason: str) -> None:
        super().__init__(kind, file, reason)
        self.kind = kind
        self.file = file
        self.reason = reason

    def __str__(self) -> str:
        return self.reason
