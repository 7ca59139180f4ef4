"""make_calls.py INCLUDE VERSION OUT: one page of section 3 for each family of calls, made from the public headers,
and a page for each call that leads to its family's."""
import pathlib
import re
import sys

from roff import escape, heading, literal, paragraph, tagged

# Page, header, the names that belong to it, what it is, and what its header's comments leave to this page.
FAMILIES = [
    ("zyrSubtitle", "zyr_subtitle.h", r"zyrSubtitle_", "the subtitle beside a movie", ""),
    ("zyrSubtitleHandler", "zyr_subtitle.h", r"zyrSubtitleHandler_", "the handler behind the calls of a player",
     "For hosts that drive the engine themselves, between QUIB_CAPTION_Open() and QUIB_CAPTION_Close(); a player calls "
     "zyrSubtitle_open() and so on instead."),
    ("QUIB_CAPTION", "quib_caption.h", r"QUIB_CAPTION_|pstQuibCaptionParserInfo", "the frame pump of the caption engine",
     "The pump reads frames of all chosen streams in the order of their times into the output block of the record."),
    ("QUIBCAPT", "quib_caption.h", r"QUIBCAPT_|Convert_|Display_|_UnicodeToUTF8",
     "settings and text output of the caption engine",
     "What every frame starts with, and the way of a frame's text from its units to the bytes of the output block."),
    ("QUIBCAPTCB", "quib_caption.h", r"QUIBCAPTCB_|TRACK_", "memory and files of the caption engine",
     "Every block and every byte that the engine uses passes through these calls to the platform."),
    ("QUIBCAPTPARS", "quib_caption.h", r"QUIBCAPTPARS_|QuibCaptionParser_", "services for the parsers of formats",
     "Options, numbers and names in 16-bit text, and the buffers that the parsers share."),
    ("CAPTIONPARS_SAMI", "quib_caption.h", r"CAPTIONPARS_SAMI_", "language classes of SAMI files",
     "zyrSubtitle_open() folds sparse classes itself; a host that opens files by QUIB_CAPTION_Open() may do so here."),
    ("CaptionParser", "quib_caption.h", r"HeaderParser_|FrameParser_|Seek_", "the parsers of the formats",
     "One of each for every format: the rows of the table that the frame pump calls through. HeaderParser reads the "
     "header once per open and gives 1; any other value fails the open. FrameParser reads one frame of the current "
     "stream and gives 1, or -6 for the last one of its list; any other value is no frame. Seek places the current "
     "stream for a time and gives 1; other values are failures."),
    ("zyrCaptions", "zyr_captions.h", r"zyrCaptions_|ZyrCaption|ZYR_CAPTIONS_", "the captions of a subtitle file as a list",
     "Programs link libzyrcaptions alone."),
    ("zyrFindings", "zyr_findings.h", r"zyrFindings_|ZyrFinding|ZYR_FINDING_", "what a box makes of a subtitle file that was not meant",
     "Programs link libzyrcaptions alone."),
    ("zyr_display", "zyr_display.h", r"zyr_display_(?!system)", "captions on the display", ""),
    ("zyr_display_system", "zyr_display.h", r"zyr_display_system_", "output settings of the display",
     "What the display's output is, and the sizes that follow from it. zyr_display_open() reads them; a player needs "
     "none of these calls."),
    ("zyr_font", "zyr_font.h", r"zyr_font_", "strings and character cells in 16-bit pixels", ""),
    ("zyr_fontFT", "zyr_font.h", r"zyr_[fF]ontFT_", "single characters of the caption font", ""),
    ("zyr_fontDraw", "zyr_font.h", r"zyr_fontDraw_", "pixels of the caption font's destination", ""),
    ("zyr_host", "zyr_host.h", r"zyr_host_|ZyrHost|ZYR_HOST_", "the platform on a desktop Linux machine",
     "Programs that link libzyrhost include this header beside those of the library."),
]


def comment_lines(comment):
    return [re.sub(r"^ ?\* ?", "", line.strip("\n")) for line in comment.split("\n")]


def entries(text):
    """Documented declarations, in order: (comment, code)."""
    for comment, code in re.findall(r"/\*\*(.*?)\*/\n(.*?)(?=\n\n|\Z)", text, re.S):
        yield comment, code
    # A group of declarations without comments of their own stands under a heading alone.
    for code in re.findall(r"----[ \n*]*\*/\n\n((?:ZYR_API[^;]*;\n?)+)", text):
        yield "", code.rstrip()


def names_of(code):
    names = re.findall(r"\b(\w+)\(", code) if "typedef" not in code and "{" not in code else []
    names += re.findall(r"\*(pst\w+);|typedef .*?\(\*(\w+)\)|^enum \{ ?\n? *(\w+)|^#define (\w+)|^\} (\w+);|"
                        r"^typedef struct \w+ (\w+);", code, re.M)
    return ["".join(name) for name in names if "".join(name) not in ("aligned", "visibility")]


def split_tags(lines):
    """The comment's parts: ('', text lines), ('param', ...), ('return', ...), ('Ownership', ...)."""
    parts = [["", []]]
    for line in lines:
        found = re.match(r"^(.*?)@(param|return)(?:\[[a-z,]*\])? ?(.*)$", line)
        if found:
            parts[-1][1].append(found[1])
            parts.append([found[2], [found[3]]])
        elif line.strip() == "" or line.startswith("Ownership:"):
            parts.append(["", [line]])
        else:
            parts[-1][1].append(line)
    return [(kind, body) for kind, body in parts if "".join(body).strip()]


def return_roff(body):
    """Codes stand in a column of their own: a number, then two blanks or more."""
    items = [["", ""]]
    for line in body:
        code = re.match(r"^\s*(-?\d+(?: to \d+)?|open|read|seek|tell)\s\s+(\S.*)$", line)
        if code:
            items.append([code[1], code[2]])
        else:
            items[-1][1] += " " + line
    out = ""
    for code, text in items:
        if code:
            out += tagged(code, text)
        elif text.strip():
            out += ".PP\nResult: " + paragraph(text)
    return out


def comment_roff(comment):
    out = ""
    for kind, body in split_tags(comment_lines(comment)):
        if kind == "return":
            out += return_roff(body)
        elif kind == "param":
            name, _, rest = " ".join(body).strip().partition(" ")
            out += tagged(name, rest)
        else:
            out += ".PP\n" + paragraph(" ".join(body))
    return out


def rules_roff(comment):
    """The head comment: sentences, a list of numbered rules, and what is set off by four blanks."""
    out, kind, broken = "", None, False
    for line in comment_lines(comment):
        rule = re.match(r"^ ?(\d+)\. +(.*)$", line)
        shown = re.match(r"^ {4}(\w+\(\).*)$", line)
        if rule:
            out += f".IP {rule[1]}. 4\n{paragraph(rule[2])}"
        elif shown:
            out += (".PP\n" if kind != "shown" else "") + ".nf\n" + escape(shown[1]) + "\n.fi\n"
        elif not line.strip():
            broken = True
            continue
        else:
            out += (".PP\n" if broken or kind == "shown" else "") + paragraph(line)
        broken = False
        kind = "shown" if shown else "rule" if rule else "text" if line.strip() else None
    return out


def page(family, include, version):
    name, header, pattern, what, intro = family
    text = (include / "zyr" / header).read_text()
    chosen, calls = [], []
    for comment, code in entries(text):
        named = names_of(code)
        if named and all(re.match(pattern, one) for one in named):
            chosen.append((comment, re.sub(r"\bZYR_API ", "", code)))
            calls += [one for one in named if re.match(r"[a-zQ_CDTHFS]", one)]
    out = heading(name, 3, version, "Calls of libZYRsubtitle")
    out += ".SH NAME\n" + escape(", ".join(calls)) + " \\- " + what + "\n"
    library = {"zyr_host.h": "zyrhost", "zyr_captions.h": "zyrcaptions",
               "zyr_findings.h": "zyrcaptions"}.get(header, "zyrsubtitle")
    out += ".SH SYNOPSIS\n" + literal(f"#include <zyr/{header}>\n\n"
                                      f"cc PROGRAM.c $(pkg-config --cflags --libs {library})")
    out += ".SH DESCRIPTION\n" + (paragraph(intro) + ".PP\n" if intro else "")
    out += rules_roff(re.search(r"/\*(.*?)\*/", text, re.S)[1])
    out += ".SH CALLS\n"
    for comment, code in chosen:
        out += f'.SS "{", ".join(names_of(code))}"\n' + literal(code) + comment_roff(comment)
    others = [other[0] for other in FAMILIES if other[0] != name]
    out += ".SH SEE ALSO\n" + ",\n".join(f".BR {other} (3)" for other in others).replace("),", ") ,").replace(") ,", "),")
    out += ",\n.BR zyrsubtitle (5)\n"
    return out, calls


def main():
    include, version, target = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
    target.mkdir(parents=True, exist_ok=True)
    for family in FAMILIES:
        text, calls = page(family, include, version)
        (target / f"{family[0]}.3").write_text(text)
        for call in calls:
            (target / f"{call}.3").write_text(f".so man3/{family[0]}.3\n")


main()
