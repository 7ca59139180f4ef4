"""zyrsub.py [--box] FILE [ENCODING]: what zyrsub, found in the PATH, gets from a file, in the form of samples/expected."""
import json
import subprocess
import sys

UNICODE = ("", "UTF-8", "UTF-16LE", "UTF-16BE")


def read_file(path, encoding, box):
    command = ["zyrsub", "frames", "--json", path]
    if box:
        command.append("--raw-line-ends")
    if encoding not in UNICODE:
        command += ["--codepage", encoding]
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    return json.loads(done.stdout)["files"][0]


def shows_something(frame):
    return any(line.strip() for line in frame["lines"])


def describe(read):
    """A caption that only clears is told by the end of the one before it."""
    if "error" in read:
        return {"schema": 1, "encoding": None, "captions": None}
    captions = [
        {"start": frame["start"], "end": frame["end"], "class": frame["class"] or None, "lines": frame["lines"]}
        for frame in read["frames"]
        if shows_something(frame)
    ]
    return {"schema": 1, "encoding": read["code_page"] or read["encoding"], "captions": captions}


def main(arguments):
    box = arguments[:1] == ["--box"]
    path, encoding = [*(arguments[1:] if box else arguments), ""][:2]
    json.dump(describe(read_file(path, encoding, box)), sys.stdout)


if __name__ == "__main__":
    main(sys.argv[1:])
