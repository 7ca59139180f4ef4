#!/usr/bin/env python3
"""zyrsub.lua in mpv on a screen of its own: tracks, texts, the box's picture, and what is left behind.

mpv_test.py ZYRSUB SCRIPT SAMPLES

ZYR_PICTURES names a folder to take the picture of docs/players.md anew.
"""
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

from player_kit import HEIGHT, PATIENCE, WIDTH, Screen, make_film, render, wait_for, write_png

ZYRSUB, SCRIPT, SAMPLES = sys.argv[1:4]

# When, forward and back, in which language, and what stands there.
STOPS = [
    (4.5, "KRCC", "열 초에 한 번 돌고,\n배들은 그 수를 셉니다."),
    (12.5, "ENCC", "Good night."),
    (1.2, "ENCC", "The lamp is lit at dusk."),
    (8.0, "KRCC", "아무도 소리 내어 세지 않습니다."),
    (10.0, "ENCC", "The kettle is on."),
]


class Mpv:
    """A paused mpv with the script, asked by its JSON interface."""

    def __init__(self, film, folder, display):
        self.requests = 0
        path = str(folder / "socket")
        environment = dict(os.environ, DISPLAY=display, TMPDIR=str(folder / "tmp"), HOME=str(folder))
        environment.pop("WAYLAND_DISPLAY", None)
        (folder / "tmp").mkdir(exist_ok=True)
        self.process = subprocess.Popen(
            ["mpv", "--no-config", "--pause", "--vo=x11", "--fs", "--ao=null", "--osd-level=0", "--no-osc",
             "--keep-open=always", "--msg-level=all=warn", "--sub-auto=exact", "--cursor-autohide=always",
             f"--script={SCRIPT}", f"--script-opts=zyrsub-zyrsub={ZYRSUB}", f"--input-ipc-server={path}", str(film)],
            env=environment, stdin=subprocess.DEVNULL)
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(PATIENCE)
        wait_for(lambda: self.socket.connect_ex(path), 0)
        self.answers = self.socket.makefile()
        wait_for(lambda: self.get("time-pos") is not None)

    def ask(self, *command):
        self.requests += 1
        request = {"command": list(command), "request_id": self.requests}
        self.socket.sendall((json.dumps(request) + "\n").encode())
        while True:
            answer = json.loads(self.answers.readline())
            if answer.get("request_id") == self.requests:
                return answer

    def get(self, name):
        return self.ask("get_property", name).get("data")

    def set(self, name, value):
        self.ask("set_property", name, value)

    def tracks(self):
        return [track for track in self.get("track-list") if track["type"] == "sub"]

    def go_to(self, seconds):
        self.ask("seek", seconds, "absolute+exact")
        wait_for(lambda: self.get("seeking") is False and abs(self.get("time-pos") - seconds) < 0.06)

    def end(self, ask_it=True):
        self.ask("quit") if ask_it else self.process.send_signal(signal.SIGTERM)
        code = self.process.wait(PATIENCE)
        self.answers.close()
        self.socket.close()
        return code


class MpvTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="zyr-mpv-test-"))
        cls.film = cls.folder / "it's a film.mkv"
        make_film(cls.film)
        cls.screen = Screen(cls.folder)

    @classmethod
    def tearDownClass(cls):
        cls.screen.close()
        shutil.rmtree(cls.folder)

    def setUp(self):
        for old in self.folder.glob("it's a film.s*"):
            old.unlink()
        shutil.rmtree(self.folder / "tmp", ignore_errors=True)
        self.mpv = None

    def tearDown(self):
        if self.mpv and self.mpv.process.poll() is None:
            self.mpv.process.kill()
            self.mpv.process.wait()

    def start(self, sample=None):
        if sample:
            shutil.copy(pathlib.Path(SAMPLES) / sample, self.film.with_suffix(pathlib.Path(sample).suffix))
        self.mpv = Mpv(self.film, self.folder, self.screen.display)
        return self.mpv

    def expect_nothing_left(self):
        self.assertEqual(list((self.folder / "tmp").iterdir()), [])

    def choose(self, title):
        self.mpv.set("sid", next(track["id"] for track in self.mpv.tracks() if track.get("title") == title))

    def render(self, seconds, title="0"):
        return render(ZYRSUB, self.folder, self.film, seconds, title)

    def plain(self, seconds):
        """The screen without captions, to be expected below those of a picture."""
        self.mpv.set("sub-visibility", False)
        self.mpv.go_to(seconds)
        time.sleep(0.5)
        shown = self.screen.read()
        self.mpv.set("sub-visibility", True)
        return shown

    def lay_over(self, plain, raw):
        """A film's frame with a picture of zyrsub render over it; marks are opaque."""
        wanted = bytearray(plain)
        for pixel in range(WIDTH * HEIGHT):
            if raw[4 * pixel + 3]:
                wanted[3 * pixel:3 * pixel + 3] = raw[4 * pixel:4 * pixel + 3]
        self.assertGreater(sum(one != other for one, other in zip(plain, wanted)), 500)
        return bytes(wanted)

    def differences(self, wanted):
        """Bytes of the screen that are not the wanted ones; another frame of the film would be thousands."""
        shown = self.screen.read()
        self.assertEqual(len(shown), len(wanted))
        return sum(abs(one - other) > 24 for one, other in zip(shown, wanted))

    def test_each_language_is_a_track(self):
        mpv = self.start("sami-bilingual.smi")
        self.assertEqual([(track["title"], track["lang"]) for track in mpv.tracks()],
                         [("KRCC", "ko"), ("ENCC", "en")])
        self.assertTrue(wait_for(lambda: mpv.tracks()[0]["selected"]))
        for seconds, title, text in STOPS:
            mpv.set("pause", False)
            time.sleep(0.1)
            self.choose(title)
            time.sleep(0.1)
            mpv.set("pause", True)
            mpv.go_to(seconds)
            self.assertEqual(wait_for(lambda text=text: mpv.get("sub-text"), text), text)
        self.assertNotEqual(list((self.folder / "tmp").iterdir()), [])
        self.assertEqual(mpv.end(), 0)
        self.expect_nothing_left()

    def test_the_boxs_picture(self):
        mpv = self.start("sami-bilingual.smi")
        plain = {seconds: self.plain(seconds) for seconds in [3.7] + [stop[0] for stop in STOPS]}
        mpv.ask("script-binding", "zyrsub/show-as-box")
        for seconds, title, text in STOPS:
            self.choose(title)
            mpv.go_to(seconds)
            wanted = self.lay_over(plain[seconds], self.render(seconds, title))
            self.assertEqual(wait_for(lambda wanted=wanted: self.differences(wanted), 0), 0, text)
        if "ZYR_PICTURES" in os.environ:
            write_png(pathlib.Path(os.environ["ZYR_PICTURES"]) / "players-mpv.png", self.screen.read())
        mpv.go_to(3.7)
        self.assertEqual(wait_for(lambda: self.differences(plain[3.7]), 0), 0, "no caption")
        mpv.go_to(10.0)
        self.assertEqual(wait_for(lambda: self.differences(wanted), 0), 0)
        self.assertFalse(mpv.get("sub-visibility"))
        mpv.ask("script-binding", "zyrsub/show-as-box")
        self.assertTrue(wait_for(lambda: mpv.get("sub-visibility")))
        self.assertNotEqual(wait_for(lambda: self.differences(wanted) > 0), 0, "the player's own text")
        mpv.end(ask_it=False)
        self.expect_nothing_left()

    def test_other_formats_beside_the_players_own_track(self):
        mpv = self.start("subrip-cp949.srt")
        self.assertEqual([track.get("title") for track in mpv.tracks() if "zyrsub-mpv-" in track["external-filename"]],
                         ["SubRip"])
        self.choose("SubRip")
        plain = self.plain(2.0)
        self.assertEqual(wait_for(lambda: mpv.get("sub-text"), "해가 지면 등을 켭니다."), "해가 지면 등을 켭니다.")
        mpv.ask("script-binding", "zyrsub/show-as-box")
        wanted = self.lay_over(plain, self.render(2.0))
        self.assertEqual(wait_for(lambda: self.differences(wanted), 0), 0)
        self.assertEqual(mpv.end(), 0)
        self.expect_nothing_left()

    def test_no_subtitle(self):
        mpv = self.start()
        self.assertEqual(mpv.tracks(), [])
        mpv.ask("script-binding", "zyrsub/show-as-box")
        mpv.go_to(5.0)
        self.assertEqual(mpv.end(), 0)
        self.expect_nothing_left()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[4:], verbosity=2)
