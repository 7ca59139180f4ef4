"""Headless Chromium. As a program, browser.py PAGE PLACE WIDTH HEIGHT OUT.png: a picture of a page at a place of it."""
import os
import pathlib
import sys
import time

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service


def start_browser(*more):
    options = Options()
    for argument in ("--headless=new", "--hide-scrollbars", "--disable-gpu", "--disable-dev-shm-usage", *more):
        options.add_argument(argument)
    if os.geteuid() == 0:
        options.add_argument("--no-sandbox")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def set_screen(browser, width, height):
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 500})


def main(page, place, width, height, out):
    browser = start_browser()
    set_screen(browser, int(width), int(height))
    browser.get(pathlib.Path(page).resolve().as_uri() + place)
    time.sleep(1)  # for the pictures that come into view
    browser.save_screenshot(out)
    browser.quit()


if __name__ == "__main__":
    main(*sys.argv[1:])
