"""conformance: holds a program's captions of the samples against those in samples/expected, and prints a table.

  conformance.py COMMAND...        COMMAND SAMPLE ENCODING prints the captions as JSON (docs/conformance.md)
  conformance.py --box COMMAND...  against what the box gets, which ends lines at CR LF alone
  conformance.py --write           make samples/expected anew from libzyrcaptions, by zyrsub in the PATH
"""
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "samples"
EXPECTED = SAMPLES / "expected"
HERE = pathlib.Path(__file__).resolve().parent
TIMEOUT = 60  # seconds for one file

# Nothing in the files tells these.
ENCODINGS = {"subrip-cp1252.srt": "CP1252"}

COLUMNS = ("sample", "captions", "same", "time", "wrap", "text", "class", "missing", "extra", "first difference")


def list_samples():
    return sorted(path for path in SAMPLES.iterdir() if path.is_file() and path.name != "README.md")


def run(command, sample, encoding):
    """What a program prints of a sample, or why that is nothing."""
    try:
        done = subprocess.run([*command, str(sample), encoding or ""], capture_output=True, timeout=TIMEOUT, check=False)
    except subprocess.TimeoutExpired:
        return {"error": f"not done after {TIMEOUT} s"}
    try:
        return json.loads(done.stdout)
    except ValueError:
        said = done.stderr.decode(errors="replace").strip().split("\n")[-1]
        return {"error": said or f"no JSON, exit code {done.returncode}"}


def words(caption):
    return " ".join(" ".join(caption["lines"]).split())


def times(caption):
    return caption["start"], caption["end"]


# A caption counts under the first rule by which it finds a partner that no other has taken.
RULES = (
    ("same", lambda a: (times(a), a["lines"], a["class"])),
    ("class", lambda a: (times(a), a["lines"])),
    ("wrap", lambda a: (times(a), words(a))),
    ("time", words),
    ("text", lambda a: (a["start"], a["class"])),
    ("text", lambda a: a["start"]),
)


def pair(expected, given, key):
    """Pairs of captions with equal keys; what finds no partner stays in the two lists."""
    waiting = {}
    for caption in given:
        waiting.setdefault(repr(key(caption)), []).append(caption)
    pairs, left = [], []
    for caption in expected:
        partners = waiting.get(repr(key(caption)))
        if partners:
            pairs.append((caption, partners.pop(0)))
        else:
            left.append(caption)
    taken = {id(partner) for _, partner in pairs}
    return pairs, left, [caption for caption in given if id(caption) not in taken]


def show(caption):
    end = "open" if caption["end"] is None else caption["end"]
    text = " / ".join(caption["lines"])
    return f"{caption['start']} to {end} {text if len(text) < 40 else text[:38] + '..'}".replace("|", "\\|")


def compare(expected, given):
    """A row of the table without its name: counts by rule, and the earliest difference in words."""
    counts, firsts = dict.fromkeys(COLUMNS[2:9], 0), []
    told = any(caption.get("class") for caption in given)
    given = [{**caption, "class": caption.get("class") if told else None} for caption in given]
    wanted = [{**caption, "class": caption["class"] if told else None} for caption in expected]
    for name, key in RULES:
        pairs, wanted, given = pair(wanted, given, key)
        counts[name] += len(pairs)
        if name != "same":
            firsts += [(a["start"], f"{show(a)} is {show(b)}") for a, b in pairs]
    counts["missing"], counts["extra"] = len(wanted), len(given)
    firsts += [(a["start"], f"{show(a)} is missing") for a in wanted]
    firsts += [(a["start"], f"{show(a)} is extra") for a in given]
    return counts, min(firsts)[1] if firsts else ""


def judge(document, expected):
    if expected is None:
        extra = len(document.get("captions") or [])
        return {"extra": extra}, "is to be refused" if extra else ""
    if document.get("captions") is None:
        return {"missing": len(expected)}, document.get("error", "is refused")
    return compare(expected, document["captions"])


def make_row(command, path, box):
    wanted = json.loads((EXPECTED / (path.name + ".json")).read_text(encoding="utf-8"))
    expected = wanted["box_captions"] if box and "box_captions" in wanted else wanted["captions"]
    counts, first = judge(run(command, path, wanted["encoding"]), expected)
    total = "refused" if expected is None else len(expected)
    return [path.name, total, *(counts.get(name) or "" for name in COLUMNS[2:9]), first]


def print_table(rows):
    totals = ["all", *(sum(row[at] for row in rows if isinstance(row[at], int)) for at in range(1, 9)), ""]
    for row in [COLUMNS, ["---"] + ["--:"] * 8 + ["---"], *rows, totals]:
        print("|", " | ".join(str(cell) for cell in row), "|")


def check(command, box):
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        rows = list(pool.map(lambda path: make_row(command, path, box), list_samples()))
    print_table(rows)
    good = sum(not row[-1] for row in rows)
    print(f"\n{good} of {len(rows)} samples come out as expected")
    return 0 if good == len(rows) else 1


def format_document(document):
    """One caption a line, so that a difference shows in a diff as what it is."""
    text = {name: json.dumps(value, ensure_ascii=False) for name, value in document.items()}
    for name in ("captions", "box_captions"):
        if document.get(name):
            rows = ",\n    ".join(json.dumps(caption, ensure_ascii=False) for caption in document[name])
            text[name] = f"[\n    {rows}\n  ]"
    return "{\n" + ",\n".join(f'  "{name}": {value}' for name, value in text.items()) + "\n}\n"


def write():
    EXPECTED.mkdir(exist_ok=True)
    program = [sys.executable, str(HERE / "zyrsub.py")]
    for path in list_samples():
        encoding = ENCODINGS.get(path.name, "")
        document = run(program, path, encoding)
        boxed = run([*program, "--box"], path, encoding)
        if boxed.get("captions") != document.get("captions"):
            document["box_captions"] = boxed.get("captions")
        (EXPECTED / (path.name + ".json")).write_text(format_document(document), encoding="utf-8")
    return 0


def main(arguments):
    if arguments == ["--write"]:
        return write()
    box = arguments[:1] == ["--box"]
    command = arguments[1:] if box else arguments
    if not command or command[0].startswith("-"):
        print(__doc__, file=sys.stderr)
        return 2
    return check(command, box)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
