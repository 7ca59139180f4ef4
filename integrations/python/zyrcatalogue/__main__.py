"""The command: python3 -m zyrcatalogue run|report."""
from __future__ import annotations

import argparse
import datetime
import re
import sys
import time
from collections.abc import Iterator
from typing import Optional

from .examination import Reading
from .report import write_report
from .results import ResultsError
from .run import Plan, RunError, run
from .summary import Summary

_UNITS = {"s": 1, "m": 60, "h": 3_600, "d": 86_400, "w": 604_800}


def parse_since(text: str) -> float:
    """A time in seconds from 1970, of a date, a date with a time, or a length of time before now.

    >>> parse_since("2026-01-01T00:00+00:00")
    1767225600.0
    """
    ago = re.fullmatch(r"(\d+)([smhdw])", text)
    if ago:
        return time.time() - int(ago[1]) * _UNITS[ago[2]]
    try:
        return datetime.datetime.fromisoformat(text).timestamp()
    except ValueError:
        raise argparse.ArgumentTypeError(f"'{text}' is no time (2026-01-31, 2026-01-31T12:00, 36h, 7d)") from None


def _read_list(name: str) -> Iterator[str]:
    with open(name, encoding="utf-8", errors="surrogateescape") as lines:
        for line in lines:
            if line.rstrip("\n"):
                yield line.rstrip("\n")


def _add_run(commands: argparse._SubParsersAction[argparse.ArgumentParser]) -> None:
    parser = commands.add_parser("run", help="examine files, and go on with a run that was stopped")
    parser.add_argument("inputs", nargs="*", metavar="FOLDER|FILE", help="folders with all below them, and files")
    parser.add_argument("--list", metavar="FILE", help="more of them, a line each")
    parser.add_argument(
        "-o", "--results", required=True, metavar="FILE", help="JSON lines; CSV where it ends in .csv. Files in it are done"
    )
    parser.add_argument("--report", metavar="PAGE", help="write the report when all is done")
    parser.add_argument("--scheduler", metavar="tcp://HOST:PORT", help="a Dask cluster that runs [one of this machine]")
    parser.add_argument("--workers", type=int, metavar="N", help="processes on this machine; 0: no other one [all cores]")
    parser.add_argument("--batch", type=int, default=Plan.batch, metavar="N", help="files at a time [%(default)s]")
    parser.add_argument(
        "--patience", type=float, default=Plan.patience, metavar="S", help="seconds to wait for a cluster [%(default)s]"
    )
    parser.add_argument("--since", type=parse_since, metavar="TIME", help="only files written since: 2026-01-31, 36h, 7d")
    parser.add_argument("--codepage", metavar="NAME", help="of text without a Unicode encoding [found out]")
    parser.add_argument("--single-byte", action="store_true", help="every byte of such text is one character")
    parser.add_argument("--output", metavar="NAME", help="also try how captions fit this output, as lcd or hdmi-720p")
    parser.add_argument("--quiet", action="store_true", help="no progress and no summary")


def _add_report(commands: argparse._SubParsersAction[argparse.ArgumentParser]) -> None:
    parser = commands.add_parser("report", help="a page over a results file")
    parser.add_argument("results", metavar="RESULTS")
    parser.add_argument("-o", "--output", required=True, metavar="PAGE", help="the page; reports of files go beside it")
    parser.add_argument("--worst", type=int, default=50, metavar="N", help="how many of the worst files [%(default)s]")


def _tell(summary: Summary) -> None:
    print(
        f"{summary.files:,} files, {summary.captions:,} captions; {summary.all.with_findings:,} files with findings, "
        f"{summary.all.lost:,} lose text, {summary.unreadable:,} could not be read",
        file=sys.stderr,
    )
    for code, findings in summary.by_code.most_common():
        print(f"{findings:>12,}  {code}  in {summary.files_by_code[code]:,} files", file=sys.stderr)


def _run(options: argparse.Namespace) -> None:
    inputs = [*options.inputs, *(_read_list(options.list) if options.list else ())]
    if not inputs:
        raise RunError("no folder and no file was named")
    summary = run(
        inputs,
        options.results,
        plan=Plan(
            scheduler=options.scheduler, workers=options.workers, batch=options.batch, patience=options.patience
        ),
        reading=Reading(options.codepage, options.single_byte, options.output),
        since=options.since,
        quiet=options.quiet,
    )
    if not options.quiet:
        _tell(summary)
    if options.report:
        write_report(options.results, options.report)


def main(arguments: Optional[list[str]] = None) -> int:
    """Gives the exit code: 0 all is examined, 1 it could not be, 2 wrong use, 130 interrupted."""
    parser = argparse.ArgumentParser(prog="zyrcatalogue", description="Whole catalogues of subtitle files.")
    commands = parser.add_subparsers(dest="command", required=True)
    _add_run(commands)
    _add_report(commands)
    options = parser.parse_args(arguments)
    try:
        if options.command == "run":
            _run(options)
        else:
            write_report(options.results, options.output, keep_worst=options.worst)
    except (RunError, ResultsError, OSError) as error:
        print(f"zyrcatalogue: {error}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        print("\nzyrcatalogue: stopped; the same command goes on from here", file=sys.stderr)
        return 130
    return 0


if __name__ == "__main__":
    sys.exit(main())
