"""The package over the shipped samples, against what was worked out from them by hand."""
import concurrent.futures
import os
import pathlib
import pickle
import subprocess
import sys
import threading
import time

import pytest

import zyrsubtitle
from zyrsubtitle import DisplayMode, EncodingRule, ErrorKind, SubtitleError

SRT = b"1\r\n00:00:01,000 --> 00:00:02,500\r\nGood morning\r\n\r\n"


def test_declarations_are_those_of_the_headers():
    folder = pathlib.Path(__file__).resolve().parents[1]
    sys.path.insert(0, str(folder))
    import make_declarations

    assert make_declarations.OUTPUT.read_text() == make_declarations.make_declarations()
    version = (folder.parents[1] / "include/zyr/zyr_version.h").read_text()
    for part, number in zip(("MAJOR", "MINOR", "PATCH"), zyrsubtitle.__version__.split(".")):
        assert f"ZYR_VERSION_{part} {number}\n" in version


def test_two_languages(samples):
    both = zyrsubtitle.load(samples / "sami-interleaved.smi")
    english = zyrsubtitle.load(samples / "sami-interleaved.smi", classes=["encc"])
    assert [(one.name, one.language) for one in both.classes] == [("KRCC", "ko"), ("ENCC", "en")]
    assert [one.order for one in english.classes] == [None, 0]
    assert english[2].lines == ("It turns once in ten seconds,", "and every ship counts along.")
    assert [one.text for one in both.at(1500)] == ["해가 지면 등을 켭니다.", "The lamp is lit at dusk."]
    assert both.text_at(1500, language=1) == "The lamp is lit at dusk."
    assert zyrsubtitle.load(samples / "sami-interleaved.smi", together=True)[0].language is None
    assert both[-1] == list(both)[-1] and both[:2] == (both[0], both[1])
    with pytest.raises(IndexError):
        both[len(both)]


def test_files_tell_what_they_are(samples):
    cases = [
        ("subrip-crlf.avi", "SubRip", "ANSI", EncodingRule.FALLBACK),
        ("subrip-utf16be.srt", "SubRip", "UTF-16BE", EncodingRule.MARK),
        ("subviewer-utf8.sub", "SubViewer", "UTF-8", EncodingRule.SCAN),
        ("ssa-cp949.ssa", "SSA", "ANSI", EncodingRule.SCAN),
    ]
    for name, kind, encoding, rule in cases:
        captions = zyrsubtitle.load(samples / name)
        told = captions.encoding
        assert (captions.format, told.name, told.rule) == (kind, encoding, rule), name
        assert told.why
    assert [(page.name, page.in_use) for page in told.likely][0] == ("CP949", True)
    styled = zyrsubtitle.load(samples / "ssa-styles.ssa")
    assert [style.name for style in styled.ssa_styles][:1] == ["Default"] and styled.title
    tagged = zyrsubtitle.loads(SRT.replace(b"Good", b'<b><font color="red">Good'), name="a.srt")[0].style
    assert DisplayMode.BOLD in tagged.mode and tagged.colour == "#FF0000"


def test_code_pages(samples):
    data = (samples / "subrip-cp1252.srt").read_bytes()
    assert "é" in "".join(one.text for one in zyrsubtitle.loads(data, "x.srt", code_page="CP1252", single_byte=True))
    broken = zyrsubtitle.loads(SRT.replace(b"Good", b"\xff\xff"), name="a.srt", code_page="CP949")
    assert broken[0].bad_characters > 0
    assert broken.encoding.first_unreadable == (SRT.index(b"Good"), 0xFF)


def test_errors_name_file_and_reason(samples, tmp_path):
    (tmp_path / "no.srt").write_bytes(b"")
    cases = [
        (lambda: zyrsubtitle.load(tmp_path / "none.srt"), ErrorKind.NOT_FOUND, "none.srt"),
        (lambda: zyrsubtitle.load(tmp_path / "no.srt"), ErrorKind.EMPTY, "no.srt"),
        (lambda: zyrsubtitle.loads(b"", name="b.srt"), ErrorKind.EMPTY, "b.srt"),
        (lambda: zyrsubtitle.loads(b"\0\1\2"), ErrorKind.NO_FORMAT, ""),
        (lambda: zyrsubtitle.load(samples / "subviewer-no-header.sub"), ErrorKind.MALFORMED, "no-header"),
        (lambda: zyrsubtitle.loads(SRT, "a.srt", code_page="CP-0"), ErrorKind.NO_CODE_PAGE, "a.srt"),
        (lambda: zyrsubtitle.load(samples / "sami-cp949.smi", classes=["FRCC"]), ErrorKind.NO_CLASS, "sami-cp949"),
    ]
    for call, kind, name in cases:
        with pytest.raises(SubtitleError) as raised:
            call()
        error = raised.value
        assert (error.kind, name in error.file, bool(str(error))) == (kind, True, True), name
        assert pickle.loads(pickle.dumps(error)).args == error.args
    for wrong in (lambda: zyrsubtitle.load("a\0.srt"), lambda: zyrsubtitle.loads(SRT, "a.srt", start=-1)):
        with pytest.raises(ValueError):
            wrong()


def test_names_of_any_bytes(tmp_path):
    name = os.fsencode(tmp_path) + b"/d\xe9j\xe0.srt"
    with open(name, "wb") as file:
        file.write(SRT)
    assert os.fsencode(zyrsubtitle.load(name).file) == name
    os.unlink(name)
    with pytest.raises(SubtitleError) as raised:
        zyrsubtitle.load(os.fsdecode(name))
    assert os.fsencode(raised.value.file) == name


def test_pickles(samples):
    for captions in (
        zyrsubtitle.load(samples / "sami-cp949.smi"),
        zyrsubtitle.loads(SRT, "a.srt", start=10),
    ):
        again = pickle.loads(pickle.dumps(captions))
        assert (list(again), again.file, again.encoding) == (list(captions), captions.file, captions.encoding)
    with concurrent.futures.ProcessPoolExecutor(1) as pool:
        assert list(pool.submit(zyrsubtitle.loads, SRT, "a.srt").result(60))[0].text == "Good morning"


def test_threads_go_on_while_a_file_is_read():
    entry = "{0}\n00:{1:02}:{2:02},000 --> 00:{1:02}:{2:02},900\nA line of some length to read\n\n"
    data = "".join(entry.format(i, i // 60 % 60, i % 60) for i in range(400_000)).encode()
    loaded = []
    loader = threading.Thread(target=lambda: loaded.append(zyrsubtitle.loads(data, "long.srt")))
    seen, longest = 0, 0.0
    loader.start()
    last = time.perf_counter()
    while loader.is_alive():
        time.sleep(0.001)
        now = time.perf_counter()
        seen, longest, last = seen + 1, max(longest, now - last), now
    assert len(loaded[0]) == 400_000
    # A load that held the lock would let this thread in once or twice.
    assert seen >= 20, (seen, longest)


def test_threads_ask_one_list(samples):
    captions = zyrsubtitle.load(samples / "sami-blocks.smi")
    expected = [[one.text for one in captions.at(ms)] for ms in range(0, 14_000, 50)]
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        for answers in pool.map(lambda _: [[one.text for one in captions.at(ms)] for ms in range(0, 14_000, 50)], "ab"):
            assert answers == expected


def test_every_example_has_its_finding():
    """What the library's table says of its codes, and what the package gives of each, are one."""
    rules = zyrsubtitle.rules()
    assert len(rules) > 50
    for rule in rules:
        drawn = {"output": "hdmi-vga", "font_size": 40} if rule.code.startswith("ZYR-OUT") else {}
        found = zyrsubtitle.lints(rule.example, rule.file, **drawn)
        mine = [finding for finding in found if finding.code == rule.code]
        assert mine and all(finding.severity is rule.severity for finding in mine), rule.code
        again = pickle.loads(pickle.dumps(found))
        assert list(again) == list(found)
        for finding in mine:
            assert finding.sentence and (finding.line == 0) == (finding.column == 0)
            if finding.caption is not None:
                assert found.captions[finding.caption].language == finding.language


def test_findings_by_line_ends_and_limits():
    data = SRT.replace(b"\r\n", b"\n") + b"2\n00:00:03,000 --> 00:00:23,000\nlong\n\n"
    found = zyrsubtitle.lints(data, "a.srt")
    captions, box = found.captions, found.box_captions
    del found  # its lists keep it
    assert len(captions) == 2 and len(box) < 2
    assert list(pickle.loads(pickle.dumps(box))) == list(box)
    cases = [({}, True), ({"longest": 20_000}, False), ({"longest": 0}, False)]
    for options, told in cases:
        codes = {one.code for one in zyrsubtitle.lints(data.replace(b"\n", b"\r\n"), "a.srt", **options)}
        assert ("ZYR-TIME-006" in codes or "ZYR-TIME-005" in codes) == told, options
    with pytest.raises(SubtitleError):
        zyrsubtitle.lint("/nowhere/a.srt")
    refused = zyrsubtitle.lints(b"", "a.srt")
    assert len(refused) == 1 and refused.captions is None


def test_fix(tmp_path):
    broken = b"1\r\n0:0:1.0 --> 0:0:2.5\r\none\r\n2\r\n00:00:03,000 --> 00:00:04,000\r\ntwo\r\n\r\n"
    fixed = zyrsubtitle.fixes(broken, "a.srt")
    assert [caption.text for caption in zyrsubtitle.loads(fixed.data, "a.srt", box_line_ends=True)] == ["one", "two"]
    assert fixed.ending == ".srt" and fixed.changes and len(fixed.left) < len(zyrsubtitle.lints(broken, "a.srt"))
    codes = {finding.code for finding in zyrsubtitle.lints(broken, "a.srt")}
    assert {change.code for change in fixed.changes} <= codes
    assert all(change.line > 0 and change.what for change in fixed.changes)
    assert zyrsubtitle.fixes(SRT, "a.srt") == zyrsubtitle.Fixed(SRT, ".srt", ())
    odd = tmp_path / "d:12: A-B-1: x.srt"
    odd.write_bytes(broken)
    assert zyrsubtitle.fix(odd) == fixed and odd.read_bytes() == broken
    for call, name in ((lambda: zyrsubtitle.fix("/nowhere/a.srt"), "/nowhere/a.srt"), (lambda: zyrsubtitle.fixes(b"", "b.srt"), "b.srt")):
        with pytest.raises(SubtitleError) as raised:
            call()
        assert raised.value.file == name and name in raised.value.reason


def test_screen():
    numpy = pytest.importorskip("numpy")
    with zyrsubtitle.Screen("hdmi-720p", font_size=40, position=50) as screen:
        with pytest.raises(SubtitleError) as raised:
            zyrsubtitle.Screen()
        assert raised.value.kind is ErrorKind.BUSY
        array = screen.draw("Good morning")
        box = screen.box("Good morning")
        rows, columns = array[..., 3].nonzero()
        assert box.x <= columns.min() and columns.max() < box.x + box.width
        assert box.y <= rows.min() and rows.max() < box.y + box.height <= 720 - 50 + 1
        assert screen.image("Good morning").tobytes() == array.tobytes()
        over = numpy.full((720, 1280, 4), 7, numpy.uint8)
        assert screen.draw("Good morning", over) is over and (over[0] == 7).all() and (over != 7).any()
        with pytest.raises(ValueError):
            screen.draw("x", numpy.zeros((720, 1280, 3), numpy.uint8))
        assert screen.missing("a\U0010FFFD") == "\U0010FFFD"
    with pytest.raises(ValueError):
        screen.draw("x")
    with pytest.raises(SubtitleError):
        zyrsubtitle.Screen("cinema")


def test_library_that_is_not_there():
    run = subprocess.run(
        [sys.executable, "-c", "import zyrsubtitle"],
        env={**os.environ, "ZYRSUBTITLE_LIBRARY": "/nowhere/lib.so"},
        capture_output=True,
        text=True,
    )
    assert run.returncode == 1 and "/nowhere/lib.so" in run.stderr and "ZYRSUBTITLE_LIBRARY" in run.stderr


def test_what_readme_shows_runs():
    folder = pathlib.Path(__file__).resolve().parents[1]
    text = (folder / "README.md").read_text(encoding="utf-8")
    blocks = [block.split("```")[0] for block in text.split("```python\n")[1:]]
    environment = {**os.environ, "PYTHONPATH": str(folder)}
    run = subprocess.run(
        [sys.executable, "-c", "\n".join(blocks)], cwd=folder.parents[1], env=environment, capture_output=True, text=True
    )
    assert run.returncode == 0, run.stderr
    assert "It turns once in ten seconds," in run.stdout and "0 findings left" in run.stdout
