"""The page of zyrsub report in headless Chromium: report_test.py ZYRSUB AXE [unittest's arguments]."""
import base64
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

import film
from browser import set_screen, start_browser

ZYRSUB, AXE = sys.argv[1:3]
SLOWEST_LOAD = 5.0  # seconds, on a busy machine; it takes about half of one
MOST_MEGABYTES = 4.0  # of the film, drawn for one output

# Pixels of what the stage shows, and of a picture of the whole display, that differ.
COMPARE = """
const [wanted, done] = arguments;
const image = document.querySelector(".screen img");
const screen = document.querySelector(".screen");
const whole = new Image();
whole.onload = async () => {
    await image.decode();
    const paint = (draw) => {
        const canvas = Object.assign(document.createElement("canvas"), { width: whole.width, height: whole.height });
        const context = canvas.getContext("2d");
        context.fillRect(0, 0, whole.width, whole.height);
        draw(context);
        return context.getImageData(0, 0, whole.width, whole.height).data;
    };
    const part = (text, all) => Math.round(parseFloat(text) / 100 * all);
    const a = paint((context) => context.drawImage(whole, 0, 0));
    const b = paint((context) => context.drawImage(image, part(image.style.left, whole.width), part(image.style.top, whole.height)));
    let differ = 0, lit = 0;
    for (let at = 0; at < a.length; at += 4) {
        lit += a[at] > 0 ? 1 : 0;
        differ += a[at] === b[at] && a[at + 1] === b[at + 1] && a[at + 2] === b[at + 2] ? 0 : 1;
    }
    done([whole.width, whole.height, lit, differ]);
};
whole.src = "data:image/png;base64," + wanted;
"""


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.browser = start_browser()
        cls.browser.set_script_timeout(60)
        cls.make("film.smi", film.make_film(), "--outputs", "lcd,hdmi-1080p")

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()
        cls.folder.cleanup()

    @classmethod
    def path(cls, name):
        return pathlib.Path(cls.folder.name) / name

    @classmethod
    def make(cls, name, data, *options, code=0):
        cls.path(name).write_bytes(data)
        command = [ZYRSUB, "report", str(cls.path(name)), "-o", str(cls.path(name)) + ".html", "--force", *options]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        if done.returncode != code:
            raise RuntimeError(f"{command}: {done.returncode} {done.stderr}")
        return done.stdout

    def show(self, name="film.smi", place="", width=1400, height=900, dark=False):
        set_screen(self.browser, width, height)
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                                     {"features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})
        self.browser.get("about:blank")
        self.browser.get(pathlib.Path(f"{self.path(name)}.html").as_uri() + place)
        self.assertEqual(self.script("return document.documentElement.dataset.ready"), "true", self.browser.get_log("browser"))

    def script(self, text, *arguments):
        return self.browser.execute_script(text, *arguments)

    def all(self, selector):
        return self.browser.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def wait(self, what, seconds=10.0):
        end = time.monotonic() + seconds
        while not what():
            self.assertLess(time.monotonic(), end, "it does not happen")
            time.sleep(0.05)

    def shown_rows(self):
        return self.script("return [...document.querySelectorAll('li.caption')].filter((row) => !row.hidden).map((row) => row.id)")

    def chosen(self):
        return self.script("return document.querySelector('[aria-current]')?.closest('li').id")

    def press(self, *keys):
        ActionChains(self.browser).send_keys(*keys).perform()


class Film(PageTest):
    def test_opens_quickly_and_alone(self):
        self.show()
        took = self.script("return (performance.timing.domComplete - performance.timing.navigationStart) / 1000")
        self.assertLess(took, SLOWEST_LOAD)
        self.assertEqual(len(self.shown_rows()), 2 * film.CAPTIONS)
        self.assertEqual(self.one("#status").text, "2,000 captions")
        self.assertEqual(self.one("h1").text, "film.smi")
        loaded = len(self.all(".shot img[src]"))
        self.assertTrue(0 < loaded < 60, f"{loaded} pictures are there before they are seen")
        asked = self.script("return performance.getEntriesByType('resource').map((each) => each.name).filter((name) => !name.startsWith('data:'))")
        self.assertEqual(asked, [])
        self.assertEqual(self.browser.get_log("browser"), [])
        told = self.make("film.smi", film.make_film())
        size = self.path("film.smi.html").stat().st_size / 1e6
        self.assertIn(f"film.smi.html  2000 captions  2 findings  lcd  {size:.2f} MB", told)
        self.assertLess(size, MOST_MEGABYTES)
        self.make("film.smi", film.make_film(), "--outputs", "lcd,hdmi-1080p")

    def test_pictures_come_into_view(self):
        self.show()
        row = self.one("#caption-1500")
        self.assertFalse(row.find_elements(By.CSS_SELECTOR, "img[src]"))
        self.script("arguments[0].scrollIntoView()", row)
        self.wait(lambda: row.find_elements(By.CSS_SELECTOR, ".shot img[src]"))

    def test_filters_and_search(self):
        cases = [
            ("search", "SHIP 421,", ["caption-844"]),
            ("search", "등대지기 421:", ["caption-843"]),
            ("search", "nothing says this", []),
            ("filter-language", "1", 1000),
            ("filter-finding", "any", ["caption-602", "caption-1002"]),
            ("filter-finding", "doubtful", []),
        ]
        for field, value, wanted in cases:
            with self.subTest(field=field, value=value):
                self.show()
                if field == "search":
                    self.one("#search").send_keys(value)
                else:
                    self.one(f"#{field} option[value='{value}']").click()
                rows = self.shown_rows()
                self.assertEqual(len(rows) if isinstance(wanted, int) else rows, wanted)
                if rows != []:
                    self.assertTrue(self.one("#status").text.startswith(f"{len(rows):,} of 2,000 captions"))

    def test_search_for_a_time(self):
        self.show()
        self.one("#search").send_keys("1:00:00", Keys.ENTER)
        start = next(number for number in range(film.CAPTIONS) if film.start_of(number) + film.STAYS > 3600000)
        self.assertEqual(self.chosen(), f"caption-{2 * start + 1}")

    def test_jumps_to_a_finding(self):
        self.show()
        self.one("#filter-language option[value='0']").click()  # which hides where it leads to
        for group in self.all("details.group:not([open]) summary"):
            group.click()
        button = next(each for each in self.all("#findings .go") if "and a seventh" in each.find_element(By.XPATH, "..").text)
        button.click()
        self.assertEqual(self.chosen(), "caption-602")
        place = self.script(
            "const box = document.querySelector('#caption-602').getBoundingClientRect(); return [box.top, innerHeight - box.bottom]")
        self.assertTrue(min(place) >= 0, place)
        self.wait(lambda: "caption=601" in self.browser.current_url)
        self.show(place="#caption=601&at=1953000")
        self.assertEqual(self.chosen(), "caption-602")

    def test_the_right_picture(self):
        for number, output in ((0, "lcd"), (300, "lcd"), (777, "hdmi-1080p")):
            with self.subTest(number=number, output=output):
                at = film.start_of(number)
                picture = self.path("wanted.png")
                subprocess.run([ZYRSUB, "render", str(self.path("film.smi")), "--class", "ENCC", "--at", str(at), "--output", output,
                                "--force", "-o", str(picture)], check=True, capture_output=True)
                self.show(place=f"#caption={2 * number + 1}&at={at}&output={output}")
                wanted = base64.b64encode(picture.read_bytes()).decode()
                width, _, lit, differ = self.browser.execute_async_script(COMPARE, wanted)
                self.assertEqual(width, {"lcd": 800, "hdmi-1080p": 1920}[output])
                self.assertGreater(lit, 500)
                self.assertEqual(differ, 0)
                self.assertEqual(self.one(f"#caption-{2 * number + 2} .shot img").get_attribute("src"), self.one(".screen img").get_attribute("src"))

    def test_switches_between_outputs(self):
        self.show()
        small = self.one("#caption-1 img").get_attribute("src")
        self.one("#filter-output option[value='hdmi-1080p']").click()
        self.wait(lambda: self.one("#caption-1 img").get_attribute("src") not in (small, None, ""))
        self.assertIn("hdmi-1080p", self.one("figcaption").text)

    def test_keyboard_alone(self):
        self.show()
        self.press("j", "j")
        self.assertEqual(self.chosen(), "caption-3")
        self.press("k", "n")
        self.assertEqual(self.chosen(), "caption-602")
        self.press("/")
        self.assertEqual(self.script("return document.activeElement.id"), "search")
        self.show()
        self.press(Keys.TAB)
        self.assertEqual(self.script("return document.activeElement.getAttribute('role')"), "slider")
        whole = self.one(".span").text
        self.press(Keys.ARROW_RIGHT, Keys.ARROW_UP)
        self.wait(lambda: self.one(".span").text != whole)
        self.assertEqual(self.script("return document.activeElement.getAttribute('aria-valuetext')"), "0:00:03.000, caption 2")
        self.press(Keys.END)
        self.assertEqual(self.chosen(), "caption-2000")
        self.press("0")
        self.wait(lambda: self.one(".span").text == whole)

    def test_timeline_by_pointer(self):
        self.show()
        slider = self.one(".slider")
        whole = self.one(".span").text
        self.script("arguments[0].dispatchEvent(new WheelEvent('wheel', { deltaY: -600, clientX: 700, bubbles: true, cancelable: true }))", slider)
        self.wait(lambda: self.one(".span").text != whole)
        self.show()
        slider = self.one(".slider")
        # Of the second language, halfway along.
        ActionChains(self.browser).move_to_element_with_offset(slider, 0, slider.size["height"] // 2 - 8).click().perform()
        number = int(self.chosen().split("-")[1])
        self.assertEqual(number % 2, 0)
        self.assertAlmostEqual(number, film.CAPTIONS, delta=12)

    def test_timeline_by_fingers(self):
        self.show(width=360, height=740)
        touch = lambda kind, *places: self.browser.execute_cdp_cmd("Input.dispatchTouchEvent", {
            "type": kind, "touchPoints": [{"x": x, "y": y, "id": at} for at, (x, y) in enumerate(places)]})
        box = self.script("const box = document.querySelector('.slider').getBoundingClientRect(); return [box.left, box.top, box.width]")
        y, middle = box[1] + 60, box[0] + box[2] / 2
        touch("touchStart", (middle - 40, y), (middle + 40, y))
        for by in range(50, 81, 10):
            touch("touchMove", (middle - by, y), (middle + by, y))
        touch("touchEnd")
        self.wait(lambda: "to=" in self.browser.current_url)
        asked = dict(part.split("=") for part in self.browser.current_url.split("#")[1].split("&"))
        length = int(asked["to"]) - int(asked["from"])
        whole = film.start_of(film.CAPTIONS - 1) + film.STAYS
        self.assertAlmostEqual(length / whole, 0.5, delta=0.05)
        self.assertAlmostEqual(int(asked["from"]) / whole, 0.25, delta=0.05)

    def test_no_sideways_scrolling(self):
        for width in (360, 800, 1400):
            self.show(width=width)
            self.assertLessEqual(self.script("return document.documentElement.scrollWidth"), width)

    def test_accessible(self):
        for width, dark in ((360, False), (1400, True), (1400, False)):
            with self.subTest(width=width, dark=dark):
                self.show(width=width, dark=dark)
                self.script("for (const each of document.querySelectorAll('details')) each.open = true")
                self.script(pathlib.Path(AXE).read_text(encoding="utf-8"))
                # The list is long and its rows are alike.
                found = self.browser.execute_async_script(
                    "const done = arguments[0];"
                    "for (const row of [...document.querySelectorAll('li.caption')].slice(0, -30)) if (!row.matches('.lost, .changed')) row.remove();"
                    "axe.run().then((results) => done(results.violations.map((each) => [each.id, each.nodes.map((node) => node.html).slice(0, 3)])))")
                self.assertEqual(found, [])


class OtherFiles(PageTest):
    def test_text_is_never_markup(self):
        self.make("<b>&amp;.sub", film.make_hostile())
        self.show("<b>&amp;.sub")
        self.assertIsNone(self.script("return window.harmed ?? null"))
        self.assertEqual(self.script("return document.querySelectorAll('script').length"), 2)
        self.assertEqual(self.one("h1").text, "<b>&amp;.sub")
        shown = [each.text for each in self.all("li.caption .text")]
        for text in film.HOSTILE_TEXTS[:3]:
            self.assertIn(text, shown)
        self.assertEqual([each for each in self.browser.get_log("browser") if each["level"] == "SEVERE"], [])

    def test_line_ends_that_a_box_does_not_read(self):
        self.make("lf.srt", b"1\n00:00:01,000 --> 00:00:02,000\none\n\n2\n00:00:03,000 --> 00:00:04,000\ntwo\n\n")
        self.show("lf.srt")
        self.one("#filter-finding option[value='box']").click()
        self.assertEqual(len(self.shown_rows()), 2)
        self.assertIn("gets 0 of 2 captions", self.one("#facts").text)

    def test_a_file_that_is_refused(self):
        self.make("no.sub", b"00:00:01.00,00:00:02.00\r\nHello\r\n\r\n", code=4)
        self.show("no.sub")
        self.assertEqual(self.shown_rows(), [])
        self.assertTrue(self.all("#findings .group.lost"))
        self.assertFalse(self.one("#time").is_displayed())


class Watch(PageTest):
    def test_a_saving_shows_at_the_same_time(self):
        source = self.path("cut.srt")
        entry = "{}\r\n00:00:{:02},000 --> 00:00:{:02},500\r\n{}\r\n\r\n"
        write = lambda texts: source.write_bytes("".join(entry.format(at + 1, start, start, text) for at, (start, text) in enumerate(texts)).encode())
        write([(1, "one"), (5, "five"), (9, "nine")])
        program = subprocess.Popen([ZYRSUB, "report", str(source), "-o", str(source) + ".html", "--watch"], stdout=subprocess.PIPE, text=True)
        try:
            self.assertIn("3 captions", program.stdout.readline())
            self.show("cut.srt")
            self.press("j")
            self.assertEqual(self.one("li:has([aria-current]) .text").text, "five")
            write([(1, "one"), (3, "three"), (5, "FIVE"), (9, "nine")])
            self.assertIn("4 captions", program.stdout.readline())
            self.wait(lambda: len(self.shown_rows()) == 4)
            self.assertEqual(self.one("li:has([aria-current]) .text").text, "FIVE")
        finally:
            program.send_signal(signal.SIGINT)
            program.communicate()
        self.assertEqual(program.returncode, 0)
        self.assertEqual([each for each in os.listdir(self.folder.name) if each.endswith(".js")], [])
        self.assertNotIn("cut.srt.html.watch.js", self.path("cut.srt.html").read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
