"""ffmpeg.py FILE [ENCODING]: what ffmpeg's demuxers and decoders get from a file, in the form of samples/expected."""
import json
import pathlib
import re
import subprocess
import sys

# As for the file's name: what a probe of the bytes does not know would be refused.
DEMUXERS = {".srt": "srt", ".smi": "sami", ".ssa": "ass", ".sub": "subviewer"}
UNICODE = ("", "UTF-8", "UTF-16LE", "UTF-16BE")
TIME = r"(\d+):(\d\d):(\d\d),(\d\d\d)"
OPEN_END = 0xFFFFFFFF  # as a duration: none
ENTRY = re.compile(rf"\d+\n{TIME} --> {TIME}\n(.*?)\n\n(?=\d+\n\d+:\d\d:|\Z)", re.S)


def milliseconds(hours, minutes, seconds, rest):
    return ((int(hours) * 60 + int(minutes)) * 60 + int(seconds)) * 1000 + int(rest)


def make_caption(entry):
    start, end = milliseconds(*entry[:4]), milliseconds(*entry[4:8])
    return {"start": start, "end": end if end - start < OPEN_END else None, "lines": entry[8].split("\n")}


def read_captions(path, encoding):
    """Bare text behind times that are always written in one form: the muxer's, not the file's."""
    charset = [] if encoding in UNICODE else ["-sub_charenc", encoding]
    demuxer = ["-f", DEMUXERS[pathlib.Path(path).suffix]]
    command = ["ffmpeg", "-v", "error", *demuxer, *charset, "-i", path, "-c:s", "text", "-f", "srt", "-"]
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=False)
    text = done.stdout.decode(errors="replace").replace("\r\n", "\n")
    if done.returncode != 0 and not text:
        return None
    return [make_caption(entry) for entry in ENTRY.findall(text) if entry[8].strip()]


def main(arguments):
    path, encoding = [*arguments, ""][:2]
    json.dump({"schema": 1, "captions": read_captions(path, encoding)}, sys.stdout)


if __name__ == "__main__":
    main(sys.argv[1:])
