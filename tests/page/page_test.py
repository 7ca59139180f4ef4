"""The page that checks in headless Chromium: page_test.py FOLDER ZYRSUB AXE [unittest's arguments]."""
import base64
import json
import pathlib
import re
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/report"))
from browser import set_screen, start_browser  # noqa: E402

FOLDER, ZYRSUB, AXE = sys.argv[1:4]
SAMPLES = sorted(path for path in (ROOT / "samples").iterdir() if path.suffix in (".smi", ".srt", ".sub", ".ssa"))
OUTPUTS = ["lcd", "hdmi-720p", "composite-pal"]
SLOWEST_FIRST = 1.0  # seconds to the first result on a quiet machine
PATIENCE = 5.0  # times as long, on a busy one

# Has the page read a file: [name, base64] and options; gives what the worker tells of it.
OPEN = """
const [name, data, more, done] = arguments;
const bytes = Uint8Array.from(atob(data), (each) => each.charCodeAt(0));
Zyr.page.engine.call("open", { key: "test", name, bytes, codePage: "auto", output: 0, whole: true, ...more }).then(done, (error) => done({ error: error.message }));
"""
# Pixels that differ between pictures as zyrsub drew them and as the page draws them, and how many were compared.
COMPARE = """
const [texts, output, pictures, done] = arguments;
(async () => {
    let differ = 0, lit = 0;
    for (const [at, text] of texts.entries()) {
        const wanted = pictures[at];
        const drawn = await Zyr.page.engine.call("drawRaw", { text, output });
        if (!wanted || !drawn) { differ += wanted || drawn ? 1 : 0; continue; }
        const bitmap = await createImageBitmap(await (new Response(Uint8Array.from(atob(wanted.png), (each) => each.charCodeAt(0)))).blob(), { premultiplyAlpha: "none" });
        const context = new OffscreenCanvas(bitmap.width, bitmap.height).getContext("2d");
        context.drawImage(bitmap, 0, 0);
        const a = context.getImageData(0, 0, bitmap.width, bitmap.height).data;
        if (["x", "y", "width", "height"].some((name) => wanted[name] !== drawn[name])) differ += a.length;
        for (let pixel = 0; pixel < a.length; pixel += 4) {
            lit += a[pixel + 3] > 0 ? 1 : 0;
            if ([0, 1, 2, 3].some((part) => a[pixel + part] !== drawn.pixels[pixel + part] && a[pixel + 3] + drawn.pixels[pixel + 3] > 0)) differ += 1;
        }
    }
    return [differ, lit];
})().then(done, (error) => done(error.message));
"""


class Outside(threading.Thread):
    """Stands for all the world beyond this machine: a proxy that notes what is asked of it, and answers nothing."""

    def __init__(self):
        super().__init__(daemon=True)
        self.server = socket.create_server(("127.0.0.1", 0))
        self.port = self.server.getsockname()[1]
        self.asked = []
        self.start()

    def run(self):
        while True:
            connection, _ = self.server.accept()
            with connection:
                self.asked.append(connection.recv(500).split(b"\r\n")[0].decode("latin-1"))


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.outside = Outside()
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.temporary.name)
        cls.serve(0)
        cls.browser = start_browser(f"--proxy-server=127.0.0.1:{cls.outside.port}", f"--proxy-bypass-list=127.0.0.1:{cls.port}", "--lang=en")
        cls.browser.set_script_timeout(120)
        cls.browser.execute_cdp_cmd("Browser.setDownloadBehavior", {"behavior": "allow", "downloadPath": str(cls.folder / "saved")})

    @classmethod
    def serve(cls, port):
        cls.server = subprocess.Popen([sys.executable, str(ROOT / "page/serve.py"), FOLDER, str(port)], stdout=subprocess.PIPE, text=True)
        cls.address = cls.server.stdout.readline().strip()
        cls.port = int(re.search(r":(\d+)/", cls.address)[1])

    @classmethod
    def stop(cls):
        cls.server.kill()
        cls.server.communicate()

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()
        cls.stop()
        cls.temporary.cleanup()

    def setUp(self):
        self.show()

    def show(self, width=1400, height=900, dark=False):
        set_screen(self.browser, width, height)
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                                     {"features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})
        self.browser.get("about:blank")
        self.browser.get(self.address)
        self.wait_ready()

    def script(self, text, *arguments):
        return self.browser.execute_script(text, *arguments)

    def asks(self, text, *arguments):
        return self.browser.execute_async_script(text, *arguments)

    def one(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    # In one step: the page may put other elements in their place at any moment.
    def text(self, selector):
        return self.script("return document.querySelector(arguments[0])?.textContent ?? ''", selector)

    def all(self, selector):
        return self.browser.find_elements(By.CSS_SELECTOR, selector)

    def wait(self, what, seconds=20.0):
        end = time.monotonic() + seconds
        while not what():
            self.assertLess(time.monotonic(), end, "it does not happen")
            time.sleep(0.03)

    def wait_ready(self):
        self.wait(lambda: self.script("return document.documentElement.dataset.ready") == "true", 60)

    def choose(self, *paths):
        self.script("document.documentElement.dataset.ready = 'false'")
        self.one("#files").send_keys("\n".join(str(path) for path in paths))
        self.wait_ready()

    def write(self, name, data):
        path = self.folder / name
        path.write_bytes(data)
        return path

    def open(self, path, **more):
        return self.asks(OPEN, path.name, base64.b64encode(path.read_bytes()).decode(), more)

    def report(self, path, *options):
        done = subprocess.run([ZYRSUB, "report", str(path), "-o", "-", *options], capture_output=True, text=True, check=False)
        return json.loads(re.search(r'<script type="application/json" id="data">(.*?)</script>', done.stdout, re.S)[1])

    def count(self):
        return len(self.all("li.caption"))

    def saved(self, name):
        path = self.folder / "saved" / name
        self.wait(path.exists)
        data = path.read_bytes()
        path.unlink()
        return data


class Samples(PageTest):
    def test_as_zyrsub_tells(self):
        for path in SAMPLES:
            with self.subTest(sample=path.name):
                wanted = self.report(path, "--codepage", "auto", "--outputs", ",".join(OUTPUTS))
                told = self.open(path)
                page = told["page"]
                outputs = wanted.pop("outputs")
                page.pop("first")
                for caption in page["captions"]:
                    caption.pop("sourceEnd")
                self.assertEqual(page, wanted)
                texts = {each["picture"]: "\n".join(each["lines"]) for each in wanted["captions"] if each["picture"] is not None}
                for output in outputs:
                    differ, lit = self.asks(COMPARE, [texts[at] for at in range(len(texts))], output["name"], output["pictures"])
                    self.assertEqual(differ, 0, output["name"])
                    self.assertGreaterEqual(lit, 100 * len(texts))

    def test_fixes_as_zyrsub_does(self):
        for path in SAMPLES:
            with self.subTest(sample=path.name):
                wanted = self.folder / f"fixed{path.suffix}"
                subprocess.run([ZYRSUB, "fix", str(path), "--codepage", "auto", "-o", str(wanted), "--force"], capture_output=True, check=False)
                self.open(path)
                got = self.asks("const done = arguments[0]; Zyr.page.engine.call('fix', { key: 'test' }).then((each) => done(btoa(String.fromCharCode(...each.bytes))))")
                self.assertEqual(base64.b64decode(got), wanted.read_bytes())

    def test_saves_as_zyrsub_converts(self):
        for name, form, encoding in (("sami-trilingual.smi", "srt", "UTF-8"), ("subrip-cp949.srt", "smi", "CP949"),
                                     ("ssa-utf8.ssa", "vtt", "UTF-8"), ("subviewer-utf16le.sub", "ssa", "UTF-16BE"), ("subrip-cp1252.srt", "txt", "CP1252")):
            with self.subTest(sample=name, form=form):
                target = self.folder / f"out.{form}"
                path = ROOT / "samples" / name
                subprocess.run([ZYRSUB, "convert", str(path), "--codepage", "auto", "-o", str(target), "--to", form, "--encoding", encoding, "--force"],
                               capture_output=True, check=False)
                wanted = {each.name: each.read_bytes() for each in self.folder.glob("out.*")}
                for each in self.folder.glob("out.*"):
                    each.unlink()
                self.open(path)
                got = self.asks("const [format, encoding, done] = arguments; Zyr.page.engine.call('save', { key: 'test', format, encoding, name: 'out.' + format })"
                                ".then((each) => done(each.files.map((file) => [file.name, btoa(String.fromCharCode(...file.bytes))])))", form, encoding)
                self.assertEqual({each: base64.b64decode(data) for each, data in got}, wanted)
                self.assertTrue(wanted)


class Page(PageTest):
    def test_first_result(self):
        path = ROOT / "samples/sami-trilingual.smi"
        took = self.asks("""
            const [name, data, done] = arguments;
            const start = performance.now();
            new MutationObserver((_, observer) => {
                if (!document.querySelector("li.caption")) return;
                observer.disconnect();
                done((performance.now() - start) / 1000);
            }).observe(document.getElementById("shown"), { childList: true, subtree: true });
            Zyr.page.addFiles([new File([Uint8Array.from(atob(data), (each) => each.charCodeAt(0))], name)]);
            """, path.name, base64.b64encode(path.read_bytes()).decode())
        print(f"\nfirst result after {took:.2f} s")
        self.assertLess(took, SLOWEST_FIRST * PATIENCE)

    def test_several_files_in_tabs(self):
        self.choose(ROOT / "samples/subrip-crlf.srt", ROOT / "samples/sami-bilingual.smi")
        self.wait(lambda: self.count() > 0)
        self.wait_ready()
        self.assertEqual([each.text for each in self.all("[role=tab]")], ["subrip-crlf.srt", "sami-bilingual.smi"])
        self.one("[role=tab]").send_keys(Keys.ARROW_RIGHT)
        self.wait(lambda: self.script("return document.querySelector('#name')?.textContent") == "sami-bilingual.smi")
        self.one("#close").click()
        self.wait(lambda: len(self.all("[role=tab]")) == 1 and self.text("#name") == "subrip-crlf.srt")

    def test_pasted_text(self):
        self.one("#paste summary").click()
        self.one("#pasted").send_keys("1\n00:00:01,000 --> 00:00:03,000\nPasted words\n\n")
        self.one("#pasted-go").click()
        self.wait(lambda: self.count() == 1)
        self.assertIn("Pasted words", self.text("li.caption"))
        self.assertEqual(self.text("#name"), "pasted.srt")

    def test_another_code_page(self):
        text = "1\r\n00:00:01,000 --> 00:00:03,000\r\nПривет, как дела?\r\n\r\n"
        self.choose(self.write("russian.srt", text.encode("cp1251")))
        self.wait(lambda: self.all("input[name=codepage]"))
        self.script("document.getElementById('pages').open = true")
        other = "CP1251" if self.script("return document.querySelector('input[name=codepage]:checked').value") != "CP1251" else "CP1252"
        self.script("const select = document.getElementById('other-page');"
                    "select.value = arguments[0]; select.value ? select.onchange() : document.querySelector(`[value='${arguments[0]}']`).click()", other)
        shown = text.encode("cp1251").decode(other, "replace").split("\r\n")[2]
        self.wait(lambda: shown in self.text("#captions"))

    def test_edit_fix_undo_and_save(self):
        entry = "1\r\n00:00:01,000 --> 00:00:03,000\r\n안녕하세요, 등대지기입니다\r\n\r\n2\r\n00:00:04,000 --> 00:00:05,000\r\n둘\r\n\r\n"
        path = self.write("korean.srt", entry.encode("cp949"))
        self.choose(path)
        self.one("#edit summary").click()
        self.wait(lambda: self.all("#edit-text"))
        area = self.one("#edit-text")
        self.assertEqual(area.get_attribute("value"), entry.split("2\r\n")[0].replace("\r\n", "\n"))
        self.script("arguments[0].value = arguments[0].value.replace('등대지기', '뱃사공').replace('03,000', '03,500')", area)
        self.one("#edit-go").click()
        self.wait(lambda: "뱃사공" in self.text("#captions"))
        self.wait_ready()
        self.one("#save-same").click()
        wanted = entry.replace("등대지기", "뱃사공").replace("03,000", "03,500").encode("cp949")
        self.assertEqual(self.saved("korean.srt"), wanted)
        self.one("#undo").click()
        self.wait(lambda: "등대지기" in self.text("#captions"))
        self.wait_ready()
        self.one("#fix").click()
        self.wait(lambda: "findings:" in self.text("#message"))
        self.wait_ready()
        self.one("#save-same").click()
        self.assertIn("등대지기", self.saved("korean.srt").decode("utf-8-sig"))

    def test_what_the_encoding_does_not_have_is_refused(self):
        self.choose(self.write("latin.srt", "1\r\n00:00:01,000 --> 00:00:03,000\r\nDéjà vu, garçon, à bientôt\r\n\r\n".encode("cp1252")))
        self.one("#edit summary").click()
        self.wait(lambda: self.all("#edit-text"))
        self.script("document.querySelector('#edit-text').value += '등대'")
        self.one("#edit-go").click()
        self.wait(lambda: "does not have" in self.text("#message"))

    def test_film(self):
        film = self.folder / "film.webm"
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc=size=320x180:rate=10:duration=12", "-c:v", "libvpx", "-y", str(film)], check=True)
        path = ROOT / "samples/subrip-crlf.srt"
        captions = self.report(path)["captions"]
        self.choose(path)
        self.one("#film-panel summary").click()
        self.wait(lambda: self.all("#film-file"))
        self.one("#film-file").send_keys(str(film))
        self.wait(lambda: self.script("return document.querySelector('#film video').readyState >= 2"))
        for caption in captions[:3]:
            at = caption["start"] + 100
            self.script("document.querySelector('#film video').currentTime = arguments[0] / 1000", at)
            self.wait(lambda: self.script("return document.querySelector('#film-screen img').alt") == "\n".join(caption["lines"]))
            self.wait(lambda: self.script("return !document.querySelector('#film-screen img').hidden"))
        self.script("document.querySelector('#film video').currentTime = arguments[0] / 1000", (captions[0]["start"] - 50))
        self.wait(lambda: self.script("return document.querySelector('#film-screen img').hidden"))
        self.script("document.querySelector('#film video').currentTime = arguments[0] / 1000", captions[1]["start"] + 50)
        self.script("const select = document.getElementById('filter-output'); select.value = 'hdmi-720p'; select.onchange()")
        self.wait(lambda: "hdmi" in self.text("figcaption"))
        self.wait_ready()
        self.wait(lambda: self.script("return document.querySelector('#film-screen img').alt") == "\n".join(captions[1]["lines"]))

    def test_a_sentence_for_what_cannot_be_read(self):
        for name, data, words in (("empty.srt", b"", "empty.srt:"), ("noise.smi", bytes(range(256)) * 40, "noise.smi:"), ("movie.ass", b"[Script Info]\n", "movie.ass:")):
            with self.subTest(name=name):
                self.show()
                self.choose(self.write(name, data))
                self.wait(lambda: self.text("#message").startswith(words))
                self.assertGreater(len(self.text("#message")), len(words) + 10)

    def test_hostile_files(self):
        worst = 0
        for folder in ("smi", "srt", "ssa", "sub"):
            for path in sorted((ROOT / "fuzz/corpus" / folder).iterdir())[::8]:
                data = path.read_bytes()
                start = time.monotonic()
                told = self.asks(OPEN, f"x.{folder}", base64.b64encode(data).decode(), {})
                worst = max(worst, time.monotonic() - start)
                self.assertTrue("page" in told or told["error"] not in ("", "unreachable", "memory access out of bounds"), (path, told.get("error")))
                self.assertNotIn("Abort", str(told.get("error")), path)
        print(f"\nthe slowest hostile file takes {worst:.2f} s")
        self.assertLess(worst, 10)

    def test_a_long_file_does_not_stall_the_page(self):
        entry = "{n}\r\n{h:02}:{m:02}:{s:02},000 --> {h:02}:{m:02}:{s:02},900\r\nLine number {n} of a very long file, which goes on and on\r\n\r\n"
        data = "".join(entry.format(n=n, h=n // 3600, m=n // 60 % 60, s=n % 60) for n in range(1, 200001)).encode()
        path = self.write("long.srt", data)
        self.script("window.gaps = []; let last = performance.now(); setInterval(() => { gaps.push(performance.now() - last); last = performance.now(); }, 20)")
        start = time.monotonic()
        self.choose(path)
        took = time.monotonic() - start
        gap = max(self.script("return gaps"))
        print(f"\n{len(data) / 1e6:.0f} MB: {took:.1f} s, the longest pause of the page {gap / 1000:.2f} s")
        self.assertEqual(self.count(), 2000)
        self.assertLess(gap, 5000)
        self.one("#part option:nth-child(2)").click()
        self.wait(lambda: "2001" in self.text("li.caption .number"))

    def test_no_request_leaves(self):
        self.outside.asked.clear()
        self.choose(ROOT / "samples/sami-trilingual.smi")
        self.asks("fetch('http://outside.example/').then(() => arguments[0]('came through'), () => arguments[0]('refused'))".replace("arguments[0]", "done").join(["const done = arguments[0];", ""]))
        time.sleep(0.5)
        self.assertEqual([each for each in self.outside.asked if "outside.example" in each], [])
        mine = [each for each in self.outside.asked if "google" not in each and "gvt1" not in each]
        self.assertEqual(mine, [])
        self.browser.get("data:text/html,")
        self.asks("const done = arguments[0]; fetch('http://outside.example/', { mode: 'no-cors' }).then(done, () => done())")
        self.assertTrue(any("outside.example" in each for each in self.outside.asked), "the proxy would have seen it")

    def test_without_a_network(self):
        self.asks("const done = arguments[0]; navigator.serviceWorker.ready.then(() => done())")
        self.wait(lambda: self.script("return navigator.serviceWorker.controller !== null"))
        port = self.port
        self.stop()
        try:
            self.show()
            self.choose(ROOT / "samples/subrip-crlf.srt")
            self.wait(lambda: self.all("#stage img[src^='blob:']"))
        finally:
            self.serve(port)

    def test_korean(self):
        self.choose(ROOT / "samples/subrip-malformed.srt")
        self.one("#tongues option[value=ko]").click()
        self.wait(lambda: "자막" in self.text("#captions h2"))
        left = self.script("""
            const known = new Set(Object.values(Zyr.tongues.ko));
            const own = [...document.querySelectorAll("button, label > span, summary, h2, dt")].filter((each) => !each.closest("ol, [lang=en], .group") && each.children.length === 0);
            return own.map((each) => each.textContent).filter((text) => /[a-z]{3}/i.test(text) && !/[가-힣]/.test(text));""")
        self.assertEqual([text for text in left if not text.startswith("subrip-")], [])
        self.one("#tongues option[value=en]").click()

    def test_accessible_and_no_wider_than_the_screen(self):
        for width, dark in ((1400, False), (1400, True), (768, False), (360, False), (360, True)):
            with self.subTest(width=width, dark=dark):
                self.show(width, 900, dark)
                self.choose(ROOT / "samples/sami-cp949.smi", ROOT / "samples/subrip-malformed.srt")
                for panel in ("film-panel", "edit", "paste"):
                    self.script("document.getElementById(arguments[0]).open = true", panel)
                self.wait(lambda: self.all("#edit-text"))
                self.assertLessEqual(self.script("return document.documentElement.scrollWidth"), width)
                self.browser.execute_cdp_cmd("Page.setBypassCSP", {"enabled": True})
                self.script(pathlib.Path(AXE).read_text("utf-8"))
                found = self.asks("const done = arguments[0]; axe.run().then((results) => done(results.violations.map((each) => [each.id, each.nodes.map((node) => node.html).slice(0, 3)])))")
                self.browser.execute_cdp_cmd("Page.setBypassCSP", {"enabled": False})
                self.assertEqual(found, [])
                self.browser.save_screenshot(f"build/page-{width}{'-dark' if dark else ''}.png")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
