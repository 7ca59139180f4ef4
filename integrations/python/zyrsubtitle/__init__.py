"""The captions of subtitle files: SAMI, SubRip, SubViewer and SSA, as a set-top box reads and draws them.

    >>> import zyrsubtitle
    >>> captions = zyrsubtitle.loads(b"1\\n00:00:01,000 --> 00:00:02,500\\nGood morning\\n\\n", name="day.srt")
    >>> [(caption.start, caption.end, caption.text) for caption in captions]
    [(1000, 2500, 'Good morning')]
    >>> captions.at(1500)[0].text
    'Good morning'

Times are milliseconds from the start of the movie. Whatever goes wrong with a file is a SubtitleError that names the
file and the reason. Captions never change, any number of threads may ask them, and they pickle by their path or
bytes. The interpreter's lock is free while a file is read or drawn, so that other threads go on; the engine itself
reads one file at a time, so that to read on several cores takes several processes.
"""
from .captions import (
    Caption,
    Captions,
    CodePage,
    DisplayMode,
    Encoding,
    EncodingRule,
    LanguageClass,
    LogLine,
    SsaStyle,
    Style,
    load,
    loads,
)
from .errors import ErrorKind, LibraryError, SubtitleError
from .findings import Finding, Findings, Rule, Severity, lint, lints, rules
from .fixing import Change, Fixed, fix, fixes
from .screen import Box, Output, Screen, outputs
from .version import VERSION as __version__

__all__ = [
    "Box",
    "Caption",
    "Captions",
    "Change",
    "CodePage",
    "DisplayMode",
    "Encoding",
    "EncodingRule",
    "ErrorKind",
    "Finding",
    "Findings",
    "Fixed",
    "LanguageClass",
    "LibraryError",
    "LogLine",
    "Output",
    "Rule",
    "Screen",
    "Severity",
    "SsaStyle",
    "Style",
    "SubtitleError",
    "fix",
    "fixes",
    "lint",
    "lints",
    "load",
    "loads",
    "outputs",
    "rules",
]
