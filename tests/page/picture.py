"""A picture of the page that checks with a file: picture.py FOLDER FILE WIDTH HEIGHT OUT.png"""
import pathlib
import subprocess
import sys
import time

from selenium.webdriver.common.by import By

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/report"))
from browser import set_screen, start_browser  # noqa: E402


def main(folder, file, width, height, out):
    server = subprocess.Popen([sys.executable, str(ROOT / "page/serve.py"), folder, "0"], stdout=subprocess.PIPE, text=True)
    browser = start_browser("--lang=en")
    set_screen(browser, int(width), int(height))
    browser.get(server.stdout.readline().strip())
    browser.find_element(By.ID, "files").send_keys(str(pathlib.Path(file).resolve()))
    time.sleep(3)  # for the font, and the pictures that come into view
    browser.save_screenshot(out)
    browser.quit()
    server.kill()


if __name__ == "__main__":
    main(*sys.argv[1:])
