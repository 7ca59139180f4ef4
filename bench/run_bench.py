"""Runs the engine and general software in turn on the same files, and makes the table. script/bench builds and calls it.

    run_bench.py [--size 1m] [--rounds 5] [--only TEXT] [--quick] [--json FILE] [--write-docs]
    run_bench.py --compare OLD.json NEW.json

A ratio is formed inside one round, from processor times, and is the median of the rounds. Instructions are callgrind's, inside
the operation. --quick counts none, --only takes the rows whose name holds TEXT.
"""
import argparse
import json
import math
import os
import platform
import re
import statistics
import subprocess
import sys

import make_corpus

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
ENGINE = os.path.join(ROOT, "build/bench/bin/engine_bench")
WORDS = os.path.join(ROOT, "build/bench-words/bin/engine_bench")
USUAL = os.path.join(ROOT, "build/bench/bin/usual_bench")
PEER = os.path.join(ROOT, "build/bench/bin/peer_bench")
CORPUS = os.path.join(ROOT, "build/bench/corpus")
FONT = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"
CURVE_SIZES = ["100k", "300k", "1m", "3m", "10m"]

# What is read, its goals: instructions a byte at most, times libavformat at least.
READ = [("srt-utf8", "SubRip, UTF-8", 13, 30), ("srt-ascii", "SubRip, ASCII", 12, 45), ("srt-cp949", "SubRip, CP949", 13, 45),
        ("srt-utf16", "SubRip, UTF-16LE", 8, 50), ("sub-utf8", "SubViewer, UTF-8", 14, 36),
        ("sub-cp949", "SubViewer, CP949", 14, 40), ("smi-utf8", "SAMI, one class", 22, 22),
        ("smi2sync-utf8", "SAMI, two classes, a SYNC each", 25, 20), ("smi2-utf8", "SAMI, two classes in one SYNC", 25, 20),
        ("ssa-utf8", "SSA, UTF-8", 16, 18), ("ssa-utf16", "SSA, UTF-16LE", 15, 18)]
ODD = [("srt-odd", "SubRip"), ("sub-odd", "SubViewer"), ("smi-odd", "SAMI"), ("ssa-odd", "SSA")]
ORDERS = {"shuffled": "shuffled", "pairs": "each pair swapped", "descending": "descending", "runs": "two runs",
          "sparsefront": "four sparse classes in front", "sparseback": "four sparse classes at the end",
          "twop": "two P per SYNC, the second empty", "styles": "half of the file styles"}
HOSTILE = {"entities": "entity after entity", "tags": "tag after tag", "open": "50 open tags", "restarts": "restarted tags",
           "cr": "lone CRs, a log line each", "tiny": "one-character entries", "lines": "150 lines an entry",
           "lf": "LF alone: no entry ends", "one": "one entry", "detect": "encoding open to the end", "blank": "blank lines"}


def run_program(program, operation, path, rounds, *more):
    """What the program prints: its figures by their names."""
    done = subprocess.run([program, operation, path, str(rounds), *map(str, more)], stdout=subprocess.PIPE, text=True)
    if done.returncode != 0:
        sys.exit("bench: %s %s %s failed" % (os.path.basename(program), operation, path))
    return {key: float(value) for key, value in (line.split() for line in done.stdout.splitlines())}


def count_instructions(program, operation, path, *more):
    """Instructions of one operation."""
    command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", "--collect-atstart=no",
               "--toggle-collect=Run_Measured", program, operation, path, "1", *map(str, more)]
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    total = re.search(r"Collected : (\d+)", done.stderr)
    if done.returncode != 0 or total is None:
        sys.exit("bench: %s failed:\n%s" % (" ".join(command), done.stderr))
    return int(total.group(1)) / float(re.search(r"count (\d+)", done.stdout).group(1))


def count_usual(path):
    """The share of a file's frames that were read in the usual way; None when the engine does not tell."""
    done = subprocess.run([USUAL, path], stdout=subprocess.PIPE, text=True, check=True)
    figures = dict(line.split() for line in done.stdout.splitlines())
    return int(figures["usual"]) / int(figures["frames"]) if "usual" in figures else None


class Bench:
    """The rows, as they are made."""

    def __init__(self, arguments):
        self.size, self.rounds, self.only, self.quick = arguments.size, arguments.rounds, arguments.only, arguments.quick
        self.rows = []

    def wants(self, row_id):
        return not self.only or self.only in row_id

    def add(self, row_id, title, **row):
        """A row: ours and theirs in microseconds with their ratio, a cost of instructions; either may have a goal."""
        row = {"id": row_id, "title": title, **row}
        verdicts = []
        if row.get("ratio_goal") is not None:
            better = row["ratio"] >= row["ratio_goal"] if row.get("more_is_better", True) else row["ratio"] <= row["ratio_goal"]
            verdicts.append(better)
        if row.get("cost_goal") is not None and row.get("cost") is not None:
            verdicts.append(row["cost"] <= row["cost_goal"])
        row["met"] = all(verdicts) if verdicts else None
        self.rows.append(row)
        print(format_table([row], False), flush=True)

    def compare(self, ours, *others):
        """Medians of each in microseconds, and of each other's ratio to ours. All are run in turn, round after round."""
        rounds = []
        for _ in range(self.rounds):
            rounds.append([run_program(*each) for each in (ours, *others)])
        times = [[figures["us"] for figures in each] for each in rounds]
        medians = [statistics.median(column) for column in zip(*times)]
        ratios = [statistics.median(each[index] / each[0] for each in times) for index in range(1, len(others) + 1)]
        return medians, ratios, [each.get("frames") for each in rounds[-1]]

    def count(self, *command):
        return None if self.quick else count_instructions(*command)

    def inner(self, path):
        return max(3, min(15, int(15e6 / os.path.getsize(path))))

    def read_files(self):
        for name, title, cost_goal, ratio_goal in READ + [(name, title + ", odd entries", None, 5) for name, title in ODD]:
            if not self.wants("read " + name):
                continue
            path = make_corpus.write_file(CORPUS, name, self.size)
            charset = ["CP949"] if "cp949" in name else []
            medians, (loop, peer), _ = self.compare(
                (ENGINE, "read", path, self.inner(path)), (ENGINE, "loop", path, self.inner(path)),
                (PEER, "read", path, 3, *charset))
            cost = self.count(ENGINE, "read", path)
            self.add("read " + name, title, section="Reading a whole file", ours=medians[0], against="libavformat",
                     theirs=medians[2], ratio=peer, ratio_goal=ratio_goal, loop=1 / loop, cost_goal=cost_goal,
                     cost=cost and cost / os.path.getsize(path), unit="a byte",
                     usual=count_usual(path))

    def open_files(self):
        for name, title, cost_goal in (("smi-utf8", "SAMI", 6), ("ssa-utf8", "SSA", 5)):
            if not self.wants("index " + name):
                continue
            path = make_corpus.write_file(CORPUS, name, self.size)
            medians, (peer,), _ = self.compare((ENGINE, "index", path, self.inner(path)), (PEER, "index", path, 3))
            cost = self.count(ENGINE, "index", path)
            self.add("index " + name, title + ", open and its index", section="Opening", ours=medians[0], against="libavformat",
                     theirs=medians[1], ratio=peer, cost=cost and cost / os.path.getsize(path), unit="a byte", cost_goal=cost_goal)

    def seek(self):
        path = make_corpus.write_file(CORPUS, "srt-utf8", self.size)
        if self.wants("firstseek srt-utf8"):
            medians, (loop,), _ = self.compare((ENGINE, "firstseek", path, 15), (ENGINE, "loop", path, 15))
            cost = self.count(ENGINE, "firstseek", path)
            self.add("firstseek srt-utf8", "SubRip, first seek, to the end", section="Seeking", ours=medians[0], against="byte loop",
                     theirs=medians[1], ratio=loop, cost=cost and cost / os.path.getsize(path), unit="a byte", cost_goal=4)
        goals = {("srt", "100k"): 10000, ("srt", "10m"): 20000}
        for kind, size in [("srt", "100k"), ("srt", "10m"), ("sub", "10m"), ("smi", "10m"), ("ssa", "10m")]:
            if not self.wants("seek %s-utf8 %s" % (kind, size)):
                continue
            path = make_corpus.write_file(CORPUS, kind + "-utf8", size)
            medians, (peer,), _ = self.compare((ENGINE, "seek", path, 9), (PEER, "seek", path, 9))
            self.add("seek %s-utf8 %s" % (kind, size), "%s, later seeks and their frames, %s" % (
                         {"srt": "SubRip", "sub": "SubViewer", "smi": "SAMI", "ssa": "SSA"}[kind], size), section="Seeking",
                     ours=medians[0], against="libavformat", theirs=medians[1], ratio=peer,
                     cost=self.count(ENGINE, "seek", path), unit="a seek", cost_goal=goals.get((kind, size)))

    def forms(self):
        """The same file without SIMD, and with line ends that the host layer makes whole."""
        path = make_corpus.write_file(CORPUS, "srt-ascii", self.size)
        bytes_ = os.path.getsize(path)
        if self.wants("words srt-ascii"):
            medians, (simd,), _ = self.compare((WORDS, "read", path, 15), (ENGINE, "read", path, 15))
            cost = self.count(WORDS, "read", path)
            self.add("words srt-ascii", "SubRip, ASCII, machine words only", section="Other forms", ours=medians[0],
                     against="with SIMD", theirs=medians[1], ratio=simd, cost=cost and cost / bytes_, unit="a byte", cost_goal=17)
        for name, title in (("srt-ascii", "CR LF made whole"), ("srt-lf", "LF made whole")):
            if not self.wants("lineends " + name):
                continue
            other = make_corpus.write_file(CORPUS, name, self.size)
            medians, (plain,), _ = self.compare((ENGINE, "read", other, 15, 1), (ENGINE, "read", path, 15))
            cost = None if self.quick else self.count(ENGINE, "read", other, 1) - self.count(ENGINE, "read", path)
            self.add("lineends " + name, "SubRip, " + title + " by the host layer", section="Other forms", ours=medians[0],
                     against="as it stands", theirs=medians[1], ratio=plain, cost=cost and cost / bytes_, unit="more a byte",
                     cost_goal=1.0)

    def draw(self):
        rows = [("string", "40 glyphs seen before, 32 pixels", (PEER, "glyphs"), "FreeType", 43, True),
                ("string", "40 glyphs seen before, 32 pixels", (PEER, "line"), "libass", 6, True),
                ("string", "40 glyphs seen before, 32 pixels", (ENGINE, "bits"), "bare bit loop", None, True),
                ("newstring", "40 new glyphs, 32 pixels", (PEER, "newglyphs"), "FreeType", 1 / 1.15, True),
                ("caption", "a caption change, to the device's update", (ENGINE, "bits"), "bare bit loop", None, True)]
        for operation, title, other, against, goal, more in rows:
            row_id = "%s %s" % (operation, other[1])
            if self.wants(row_id):
                medians, (ratio,), _ = self.compare((ENGINE, operation, FONT, 31), (*other, FONT, 31))
                self.add(row_id, title, section="Drawing", ours=medians[0], against=against, theirs=medians[1], ratio=ratio,
                         ratio_goal=goal, more_is_better=more)

    def orders(self):
        """A file in an unusual order against the same amount in order."""
        for kind, title in (("smi", "SAMI"), ("ssa", "SSA")):
            for name in [each for each in make_corpus.make_names() if each.startswith(kind + "-order-") and "plain" not in each]:
                if not self.wants("order " + name):
                    continue
                path = make_corpus.write_file(CORPUS, name, self.size)
                plain = make_corpus.write_file(CORPUS, kind + "-order-plain", self.size)
                medians, (ratio,), frames = self.compare((ENGINE, "rewound", path, self.inner(path)),
                                                         (ENGINE, "rewound", plain, self.inner(path)))
                # As much work: as many bytes, or as many frames where the same bytes hold more of them.
                share = max(os.path.getsize(path) / os.path.getsize(plain), frames[0] / frames[1])
                self.add("order " + name, "%s, %s" % (title, ORDERS[name.split("-")[2]]), section="Unusual orders", ours=medians[0],
                         against="in order", theirs=medians[1], ratio=1 / ratio / share, ratio_goal=2, more_is_better=False)

    def hostile(self):
        """Instructions a byte at 1 MB against those at 100 KB: a cost that grows faster than the file shows."""
        names = [each for each in make_corpus.make_names() if "hostile" in each or "order" in each]
        for name in [] if self.quick else names:
            if not self.wants("growth " + name):
                continue
            costs = []
            for size in ("100k", "1m"):
                path = make_corpus.write_file(CORPUS, name, size)
                costs.append(self.count(ENGINE, "rewound", path) / os.path.getsize(path))
            what = name.split("-")[2]
            title = {"srt": "SubRip", "sub": "SubViewer", "smi": "SAMI", "ssa": "SSA"}[name[:3]] + ", "
            self.add("growth " + name, title + {**ORDERS, **HOSTILE, "plain": "in order"}[what], section="Growth, 1 MB to 100 KB",
                     against="at 100 KB", ratio=costs[1] / costs[0], ratio_goal=1.25, more_is_better=False, cost=costs[1],
                     unit="a byte")

    def curve(self):
        """Milliseconds over the file's size, for the plot."""
        curve = {}
        for kind in ("srt", "sub", "smi", "ssa"):
            for size in CURVE_SIZES:
                path = make_corpus.write_file(CORPUS, kind + "-utf8", size)
                times, _, _ = self.compare((ENGINE, "read", path, self.inner(path)), (ENGINE, "loop", path, self.inner(path)),
                                           (PEER, "read", path, 1))
                for program, time in zip(("engine", "loop", "libavformat"), times):
                    curve.setdefault("%s %s" % (program, kind), []).append([os.path.getsize(path), time / 1000])
        return curve


def show(value, digits=3):
    """A figure with three digits that count."""
    if value is None:
        return "-"
    if value >= 1000:
        return "{:,.0f}".format(value)
    return "%.*f" % (max(0, digits - 1 - int(math.floor(math.log10(abs(value))))) if value else 0, value)


def format_row(row):
    cost = "-" if row.get("cost") is None else show(row["cost"]) + " " + row["unit"]
    more = row.get("more_is_better", True)
    ratio = "-" if row.get("ratio") is None else "%s%s x %s" % ("" if more else "costs ", show(row["ratio"]), row["against"])
    goal = [] if row.get("cost_goal") is None else ["%s %s" % ("{:,g}".format(row["cost_goal"]), row["unit"])]
    if row.get("ratio_goal") is not None:
        goal.append(("at least " if more else "at most ") + "%.3g x" % row["ratio_goal"])
    usual = "-" if row.get("usual") is None else "%.1f %%" % (100 * row["usual"])
    return [row["title"], show(row.get("ours")), cost, show(row.get("loop")), ratio, ", ".join(goal) or "-", usual,
            {True: "met", False: "not met", None: "-"}[row["met"]]]


HEAD = ["operation", "us", "instructions", "x byte loop", "speed", "goal", "usual", "result"]
WIDTHS = [54, 9, 18, 11, 22, 28, 7, 7]


def format_table(rows, head=True):
    lines = [HEAD, ["-" * width for width in WIDTHS]] if head else []
    lines += [format_row(row) for row in rows]
    return "\n".join("| " + " | ".join(cell.ljust(width) for cell, width in zip(line, WIDTHS)) + " |" for line in lines)


def describe_machine():
    """Where the figures were taken, in general terms."""
    def first_line(*command):
        try:
            return subprocess.run(command, stdout=subprocess.PIPE, text=True).stdout.split("\n")[0]
        except OSError:
            return "unknown"
    model = re.search(r"model name\s*: (.*)", open("/proc/cpuinfo").read())
    system = re.search(r'PRETTY_NAME="(.*)"', open("/etc/os-release").read())
    versions = ["%s %s" % (name, first_line("pkg-config", "--modversion", name)) for name in ("libavformat", "libavcodec", "libass")]
    return {"processor": "%d x %s, %s" % (os.cpu_count(), model.group(1) if model else "unknown", platform.machine()),
            "system": system.group(1) if system else platform.system(), "compiler": first_line("g++", "--version"),
            "peers": ", ".join(versions), "commit": first_line("git", "-C", ROOT, "rev-parse", "--short", "HEAD")}


def draw_plot(curve):
    """The times over the sizes, both logarithmic, as SVG."""
    width, height, left, top, right, bottom = 760, 460, 70, 20, 190, 50
    points = [point for series in curve.values() for point in series]
    low = [math.floor(math.log10(min(point[axis] for point in points)) + 0.01) for axis in (0, 1)]
    high = [math.ceil(math.log10(max(point[axis] for point in points)) - 0.01) for axis in (0, 1)]

    def place(point):
        part = [(math.log10(point[axis]) - low[axis]) / (high[axis] - low[axis]) for axis in (0, 1)]
        return left + part[0] * (width - left - right), height - bottom - part[1] * (height - top - bottom)

    out = ['<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %d" font-family="sans-serif" font-size="12">' % (width, height),
           '<rect width="100%" height="100%" fill="white"/>']
    for power in range(low[0], high[0] + 1):
        x = place((10 ** power, 10 ** low[1]))[0]
        out.append('<path d="M%.1f %d V%d" stroke="#ddd"/>' % (x, top, height - bottom))
        label = "%g KB" % (10 ** power / 1000) if power < 6 else "%g MB" % (10 ** power / 1e6)
        out.append('<text x="%.1f" y="%d" text-anchor="middle">%s</text>' % (x, height - bottom + 18, label))
    for power in range(low[1], high[1] + 1):
        y = place((10 ** low[0], 10 ** power))[1]
        out.append('<path d="M%d %.1f H%d" stroke="#ddd"/>' % (left, y, width - right))
        out.append('<text x="%d" y="%.1f" text-anchor="end">%g ms</text>' % (left - 6, y + 4, 10 ** power))
    out.append('<text x="%d" y="%d" text-anchor="middle">size of the file</text>' % ((left + width - right) / 2, height - 12))
    colours = {"srt": "#1b6ca8", "sub": "#2a9d5c", "smi": "#c8553d", "ssa": "#7b4fa3"}
    names = {"srt": "SubRip", "sub": "SubViewer", "smi": "SAMI", "ssa": "SSA"}
    legend = top + 10
    for name, series in sorted(curve.items(), key=lambda item: -item[1][-1][1]):
        program, kind = name.split()
        if program == "loop" and kind != "srt":
            continue
        colour = "#888" if program == "loop" else colours[kind]
        dash = {"engine": "", "libavformat": ' stroke-dasharray="6 4"', "loop": ' stroke-dasharray="2 3"'}[program]
        path = " L".join("%.1f %.1f" % place(point) for point in series)
        out.append('<path d="M%s" fill="none" stroke="%s" stroke-width="2"%s/>' % (path, colour, dash))
        out.append('<path d="M%d %d h28" stroke="%s" stroke-width="2"%s/>' % (width - right + 14, legend, colour, dash))
        label = "byte loop" if program == "loop" else "%s, %s" % (names[kind], {"engine": "here"}.get(program, program))
        out.append('<text x="%d" y="%d">%s</text>' % (width - right + 48, legend + 4, label))
        legend += 20
    return "\n".join(out + ["</svg>", ""])


def format_sections(rows):
    """The table of each section, as Markdown."""
    parts = []
    for section in dict.fromkeys(row["section"] for row in rows):
        table = format_table([row for row in rows if row["section"] == section])
        parts.append("### %s\n\n%s\n" % (section, re.sub(r" +\|", " |", re.sub(r"-{4,}", "---", table))))
    return "\n".join(parts)


def write_docs(result):
    """Puts the figures between the marks of docs/performance.md, and the plot beside it."""
    path = os.path.join(ROOT, "docs/performance.md")
    machine = result["machine"]
    text = open(path).read()
    met = [row["met"] for row in result["rows"] if row["met"] is not None]
    body = "\n%s, %s, %s; %s. Files of %s, medians of %d rounds. %d of %d goals are met.\n\n%s" % (
        machine["processor"], machine["system"], machine["compiler"], machine["peers"], result["size"], result["rounds"],
        sum(met), len(met), format_sections(result["rows"]))
    text = re.sub(r"(<!-- figures -->\n).*(<!-- end -->)", lambda match: match.group(1) + body + match.group(2), text, flags=re.S)
    open(path, "w").write(text)
    open(os.path.join(ROOT, "docs/performance.svg"), "w").write(draw_plot(result["curve"]))


def compare_results(old_path, new_path):
    """What changed between two --json files, row by row."""
    old, new = ({row["id"]: row for row in json.load(open(path))["rows"]} for path in (old_path, new_path))
    print("%-34s %27s %7s   %23s %7s" % ("operation", "instructions", "", "ratio", ""))
    for row_id in new:
        cells = []
        for key in ("cost", "ratio"):
            before, after = old.get(row_id, {}).get(key), new[row_id].get(key)
            change = "%+.1f %%" % (100 * (after / before - 1)) if before and after else ""
            cells.append("%11s -> %-9s %8s" % (show(before), show(after), change))
        print("%-34s %s   %s" % (row_id, *cells))


def main():
    parser = argparse.ArgumentParser(prog="script/bench", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--size", default="1m")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--only")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--json", metavar="FILE")
    parser.add_argument("--write-docs", action="store_true")
    parser.add_argument("--compare", nargs=2, metavar=("OLD", "NEW"))
    arguments = parser.parse_args()
    if arguments.compare:
        return compare_results(*arguments.compare)
    bench = Bench(arguments)
    print(format_table([]), flush=True)
    for part in (bench.read_files, bench.open_files, bench.seek, bench.forms, bench.draw, bench.orders, bench.hostile):
        part()
    result = {"machine": describe_machine(), "size": bench.size, "rounds": bench.rounds, "rows": bench.rows}
    if arguments.write_docs:
        result["curve"] = bench.curve()
        write_docs(result)
    if arguments.json:
        with open(arguments.json, "w") as file:
            json.dump(result, file, indent=1)
    met = [row["met"] for row in bench.rows if row["met"] is not None]
    print("%d of %d goals met" % (sum(met), len(met)))


if __name__ == "__main__":
    main()
