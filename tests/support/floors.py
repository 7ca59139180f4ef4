#!/usr/bin/env python3
"""floors.py ROOT: every #include "..." in src/ leads to the file's own floor or to one below it, never in a circle.

The floors of the engine are those of ORDER, ground first; a format's folder stands on format/ and knows no other
format, and those above name none but in TABLES. The renderer is a house of its own, font/ under display/. The headers of platform/ and zyr/ lie below both.
"""
import pathlib
import re
import sys

ORDER = ["record", "text", "lines", "markup", "format", "format/*", "pump", "interface"]
RENDERER = ["font", "display"]
NAMELESS = ["pump", "interface"]
TABLES = "pump/parser_table.cpp"


def floor(path):
    """Folder of a source below src/; platform and public headers have none."""
    return "/".join(path.split("/")[:-1])


def may_include(source, target):
    if source == target:
        return True
    if source in RENDERER or target in RENDERER:
        return source in RENDERER and target in RENDERER and RENDERER.index(target) < RENDERER.index(source)
    height = [ORDER.index("format/*" if name.startswith("format/") else name) for name in (target, source)]
    return height[0] < height[1]


def read_includes(root):
    """Each source's includes that lie in src/; a mistake for each that lies nowhere."""
    includes, mistakes = {}, []
    for path in sorted((root / "src").rglob("*.[ch]*")):
        name = path.relative_to(root / "src").as_posix()
        if path.suffix not in (".h", ".cpp"):
            continue
        includes[name] = []
        for target in re.findall(r'^\s*#\s*include\s*"([^"]+)"', path.read_text(encoding="utf-8"), re.M):
            if (root / "src" / target).is_file():
                includes[name].append(target)
            elif not (root / "platform" / target).is_file() and not (root / "include" / target).is_file():
                mistakes.append(f"{name} includes {target}, which is in none of src, platform and include")
    return includes, mistakes


def find_circles(includes):
    mistakes, done = [], set()

    def visit(name, way):
        if name in way:
            mistakes.append("a circle: " + " > ".join(way[way.index(name):] + [name]))
        elif name not in done:
            for target in includes[name]:
                visit(target, way + [name])
            done.add(name)

    for name in includes:
        visit(name, [])
    return mistakes


def find_formats(root):
    """Pump and interface know formats by their rows alone, which TABLES holds."""
    mistakes = []
    for path in sorted(path for folder in NAMELESS for path in (root / "src" / folder).iterdir()):
        name = path.relative_to(root / "src").as_posix()
        named = set(re.findall(r"E_CAPTION_FORMAT_(?!NONE)\w+|\b\w*(?:SAMI|Sami|SubRip|SubViewer|SSA)\w*",
                               path.read_text(encoding="utf-8")))
        if name != TABLES:
            mistakes += [f"{name} names a format: {word}" for word in sorted(named)]
    return mistakes


def main(root):
    includes, mistakes = read_includes(root)
    upward = {(name, target) for name, targets in includes.items() for target in targets
              if not may_include(floor(name), floor(target))}
    mistakes += [f"{name} includes {target}, which is not below it" for name, target in sorted(upward)]
    mistakes += find_circles(includes) + find_formats(root)
    print("\n".join(mistakes) or f"{len(includes)} files stand on their floors")
    return 1 if mistakes or len(includes) == 0 else 0


sys.exit(main(pathlib.Path(sys.argv[1])))
