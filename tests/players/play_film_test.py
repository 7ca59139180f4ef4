#!/usr/bin/env python3
"""zyrsub play with the film, in a window on a screen of its own.

play_film_test.py ZYRSUB SAMPLES
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from player_kit import HEIGHT, PATIENCE, WIDTH, Screen, make_film, render, wait_for

ZYRSUB, SAMPLES = sys.argv[1:3]
MOON = 0xB0  # no byte of sky or caption is as bright


class PlayFilmTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="zyr-play-test-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.film = self.folder / "film.mkv"
        shutil.copy(pathlib.Path(SAMPLES) / "sami-bilingual.smi", self.folder / "film.smi")
        self.screen = Screen(self.folder)
        self.addCleanup(self.screen.close)

    def start(self, *arguments, **environment):
        self.environment = dict(os.environ, DISPLAY=self.screen.display, SDL_VIDEODRIVER="x11", **environment)
        self.player = subprocess.Popen([ZYRSUB, "play", self.film, *arguments], env=self.environment, text=True,
                                       stderr=subprocess.PIPE)
        self.addCleanup(self.player.stderr.close)
        self.addCleanup(self.player.wait)
        self.addCleanup(self.player.kill)
        self.window = wait_for(self.find_window, None, equal=False)

    def ask_xdotool(self, *arguments):
        return subprocess.run(["xdotool", *arguments], env=self.environment, capture_output=True, text=True,
                              check=False).stdout.strip()

    def find_window(self):
        return self.ask_xdotool("search", "--onlyvisible", "--name", "film.mkv") or None

    def title(self):
        return self.ask_xdotool("getwindowname", self.window)

    def press(self, key):
        self.ask_xdotool("windowfocus", "--sync", self.window, "key", key)

    def expect_title(self, text):
        wait_for(lambda: text in self.title())
        self.assertIn(text, self.title())

    def count_moon(self):
        return sum(byte >= MOON for byte in self.screen.read())

    def wrong_marks(self, seconds, language):
        """Bytes of the screen that are not the caption's where it has marks."""
        marks = render(ZYRSUB, self.folder, self.film, seconds, language)
        shown = self.screen.read()
        places = [pixel for pixel in range(WIDTH * HEIGHT) if marks[4 * pixel + 3]]
        self.assertGreater(len(places), 200)
        return sum(abs(marks[4 * pixel + part] - shown[3 * pixel + part]) > 8 for pixel in places for part in range(3))

    def test_film_and_captions(self):
        make_film(self.film)
        self.start()
        self.assertTrue(wait_for(lambda: self.count_moon() > 1000), "the film")
        first = self.screen.read()
        self.assertTrue(wait_for(lambda: self.screen.read() != first), "it goes on")
        self.expect_title("of 0:00:14.0")
        self.press("space")
        self.expect_title("paused")
        self.press("l")
        self.expect_title("  KRCC")
        self.press("Down")
        self.expect_title("0:00:00.0")
        for key, title, seconds, language in [("Right", "0:00:05.0", 5, "KRCC"), ("Right", "0:00:10.0", 10, "KRCC"),
                                              ("l", "  ENCC", 10, "ENCC"), ("Left", "0:00:05.0", 5, "ENCC")]:
            self.press(key)
            self.expect_title(title)
            self.assertEqual(wait_for(lambda: self.wrong_marks(seconds, language), 0), 0, title)
            self.assertGreater(self.count_moon(), 1000)
        self.press("o")
        self.expect_title("hdmi-1080p")
        self.assertTrue(wait_for(lambda: self.count_moon() > 1000), "in the next output's size")
        self.press("space")
        self.press("Right")
        self.press("Right")
        self.expect_title("end")
        self.press("q")
        self.assertEqual(self.player.wait(PATIENCE), 0)
        self.assertEqual(self.player.stderr.read(), "")

    def test_what_is_no_film(self):
        self.film.write_bytes(b"not a film at all\n" * 100)
        self.start("--from", "4s")
        self.press("space")
        self.press("l")
        self.assertEqual(wait_for(lambda: self.wrong_marks(5, "KRCC"), 0), 0, "its captions all the same")
        self.press("q")
        self.assertEqual(self.player.wait(PATIENCE), 0)
        self.assertIn("its captions are played alone", self.player.stderr.read())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
