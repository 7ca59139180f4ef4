#!/usr/bin/python3
"""make_declarations.py: zyrsubtitle/declarations.cdef out of the public headers.

The package calls the library by these declarations, so that no compiler is needed where it is installed. The tests
compare the file with what the headers say today.
"""
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
HEADERS = HERE.parents[1] / "include" / "zyr"
OUTPUT = HERE / "zyrsubtitle" / "declarations.cdef"
NAMES = ("zyr_captions.h", "zyr_findings.h")


def strip_header(text: str) -> str:
    """Give what of a header declares types, numbers and calls."""
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
    text = re.sub(r'extern "C" \{|ZYR_API ', "", text)
    kept = [line.rstrip() for line in text.splitlines() if not re.match(r"\s*#(?!define \w+ +0x\w+$)", line)]
    body = re.sub(r"\n{2,}", "\n", "\n".join(kept)).strip()
    return re.sub(r"\n\}$", "", body)  # closes the extern block


def make_declarations() -> str:
    """Give the text of declarations.cdef."""
    parts = [strip_header((HEADERS / name).read_text(encoding="ascii")) for name in NAMES if (HEADERS / name).exists()]
    return "\n".join(["/* Made by make_declarations.py from the public headers. */", *parts]) + "\n"


if __name__ == "__main__":
    OUTPUT.write_text(make_declarations(), encoding="ascii")
    sys.exit(0)
