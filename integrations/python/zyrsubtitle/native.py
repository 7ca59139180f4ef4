"""Finds libzyrcaptions and knows its calls. For the other modules of this package."""
from __future__ import annotations

import importlib.resources
import os
import pathlib
from typing import Any, Optional

import cffi

from .errors import LibraryError

SONAME = "libzyrcaptions.so.0"
VARIABLE = "ZYRSUBTITLE_LIBRARY"

ffi = cffi.FFI()
ffi.cdef(importlib.resources.files(__package__).joinpath("declarations.cdef").read_text(encoding="ascii"))


def _candidates() -> list[str]:
    """Where the library may be, the first that there is: named by the user, in a wheel, in the system."""
    named = os.environ.get(VARIABLE)
    if named:
        return [named]
    beside = pathlib.Path(__file__).resolve().parent / "lib" / SONAME
    return [str(beside), SONAME] if beside.exists() else [SONAME]


def _open() -> Any:
    tried = []
    for name in _candidates():
        try:
            return ffi.dlopen(name)
        except OSError as error:
            tried.append(str(error))
    raise LibraryError(f"libzyrcaptions cannot be loaded ({'; '.join(tried)}); {VARIABLE} may name the file")


lib: Any = _open()

OPEN_END: int = lib.ZYR_CAPTIONS_OPEN_END
NONE: int = lib.ZYR_CAPTIONS_NONE
NOWHERE: int = (1 << (8 * ffi.sizeof("size_t"))) - 1


def text(pointer: Any) -> str:
    """A text of the library; names in it are bytes, and what is not UTF-8 in them shows as U+FFFD."""
    return "" if pointer == ffi.NULL else bytes(ffi.string(pointer)).decode("utf-8", "replace")


def optional_text(pointer: Any) -> Optional[str]:
    """The same, and None for NULL."""
    return None if pointer == ffi.NULL else text(pointer)


def check_ms(name: str, value: int) -> int:
    """A time as the library takes it: later ones than it knows are its last one."""
    if value < -(2**31):
        raise ValueError(f"{name} is no time: {value}")
    return min(value, 2**31 - 1)
