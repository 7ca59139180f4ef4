"""The page as a folder: make_page.py MODULE FOLDER, where MODULE is the folder of zyrpage.js and zyrpage.wasm."""
import hashlib
import json
import pathlib
import shutil
import sys

PAGE = pathlib.Path(__file__).parent
STYLES = ["base.css", "report.css", "check/check.css"]
SCRIPTS = ["zyr.js", "timeline.js", "pictures.js", "captions.js", "findings.js", "report.js",
           "check/korean.js", "check/engine.js", "check/film.js", "check/check.js"]
FONT = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"
MOST_BYTES = 1_050_000  # of code, before compression


def main(module, folder):
    module, folder = pathlib.Path(module), pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name, parts in (("page.css", STYLES), ("page.js", SCRIPTS)):
        (folder / name).write_text("".join((PAGE / part).read_text("utf-8") for part in parts), "utf-8")
    for source in (PAGE / "check/index.html", PAGE / "check/worker.js", module / "zyrpage.js", module / "zyrpage.wasm"):
        shutil.copyfile(source, folder / source.name)
    shutil.copyfile(FONT, folder / "font.ttc")
    names = sorted(path.name for path in folder.iterdir())
    code = sum((folder / name).stat().st_size for name in names if name.endswith((".js", ".wasm")))
    version = hashlib.sha256(b"".join((folder / name).read_bytes() for name in names)).hexdigest()[:16]
    text = (PAGE / "check/service.js").read_text("utf-8")
    (folder / "service.js").write_text(text.replace("@VERSION@", version).replace("@FILES@", json.dumps(["./", *names])), "utf-8")
    print(f"{folder}: {code:,} bytes of code, {(folder / 'font.ttc').stat().st_size:,} of font")
    if code > MOST_BYTES:
        sys.exit(f"the code is larger than {MOST_BYTES:,} bytes")


if __name__ == "__main__":
    main(*sys.argv[1:])
