"""The page over a catalogue: findings by code, encoding and maker, and the worst files with their own reports."""
from __future__ import annotations

import os
import pathlib
import shutil
import subprocess
from typing import Any, Optional

import zyrsubtitle

from .examination import Record
from .results import read_records
from .summary import Group, Summary

_ROWS = 30
_REPORT_SECONDS = 120


def write_report(results: str, page: str, *, keep_worst: int = 50) -> Summary:
    """Write one HTML page over a results file, and beside it a folder with a report of each of the worst files.

    keep_worst: how many of them. Their reports are made by ``zyrsub report`` where that is installed, and left out for
    files that are gone by now.

    Raises OSError, and ResultsError for a results file that cannot be used. Wants Jinja2.

    >>> import pathlib, tempfile
    >>> folder = pathlib.Path(tempfile.mkdtemp())
    >>> (folder / "results.jsonl").touch()
    >>> write_report(str(folder / "results.jsonl"), str(folder / "catalogue.html")).files
    0
    """
    import jinja2

    summary = Summary(keep_worst)
    for record in read_records(results):
        summary.add(record)
    environment = jinja2.Environment(
        loader=jinja2.PackageLoader("zyrcatalogue", "."), autoescape=True, undefined=jinja2.StrictUndefined
    )
    text = environment.get_template("report.html").render(
        summary=summary,
        results=os.path.basename(results),
        megabytes=summary.bytes / 1e6,
        codes=_list_codes(summary),
        tables=[
            ("By format", "Format", _list_groups(summary.by_format)),
            ("By encoding", "Encoding", _list_groups(summary.by_encoding)),
            ("By maker", "Made by", _list_groups(summary.by_maker)),
        ],
        worst=_list_worst(summary.worst(), pathlib.Path(page)),
    )
    temporary = f"{page}.new"
    with open(temporary, "w", encoding="utf-8", errors="replace") as file:
        file.write(text)
    os.replace(temporary, page)
    return summary


def _list_codes(summary: Summary) -> list[dict[str, Any]]:
    """Worse severities first, then what is met more often."""
    rules = {rule.code: rule for rule in zyrsubtitle.rules()}
    rows: list[dict[str, Any]] = []
    for code, findings in summary.by_code.items():
        rule = rules.get(code)
        rows.append(
            {
                "code": code,
                "severity": rule.severity if rule else zyrsubtitle.Severity.LOST,
                "title": rule.title if rule else "the file could not be examined",
                "explanation": rule.explanation if rule else "",
                "findings": findings,
                "files": summary.files_by_code[code],
            }
        )
    rows.sort(key=lambda row: (-row["severity"], -row["findings"], row["code"]))
    most = max((row["findings"] for row in rows), default=1)
    for row in rows:
        row["share"] = 100 * row["findings"] / most
        row["severity"] = row["severity"].name.lower()
    return rows


def _list_groups(groups: dict[str, Group]) -> list[tuple[str, Group]]:
    """The largest; the others in one row."""
    rows = sorted(groups.items(), key=lambda one: (-one[1].files, one[0]))
    if len(rows) > _ROWS:
        rest = Group()
        for _name, group in rows[_ROWS - 1 :]:
            rest.files += group.files
            rest.with_findings += group.with_findings
            rest.lost += group.lost
            rest.findings += group.findings
        rows = [*rows[: _ROWS - 1], (f"{len(rows) - _ROWS + 1} others", rest)]
    return [(name or "not told", group) for name, group in rows]


def _list_worst(records: list[Record], page: pathlib.Path) -> list[dict[str, Any]]:
    folder = page.with_name(page.stem + "-files")
    rows = []
    for number, record in enumerate(records, 1):
        severities = [finding["severity"] for finding in record["findings"]]
        made = _write_file_report(record["file"], folder / f"{number:04}.html")
        rows.append(
            {
                "file": record["file"],
                "link": None if made is None else f"{folder.name}/{made.name}",
                "captions": record["captions"],
                "encoding": record["encoding"],
                "lost": severities.count("lost"),
                "changed": severities.count("changed"),
                "doubtful": severities.count("doubtful"),
                "first": max(record["findings"], key=lambda one: _rank(one["severity"]))["message"],
            }
        )
    return rows


def _rank(severity: str) -> int:
    return ("doubtful", "changed", "lost").index(severity)


def _write_file_report(file: str, report: pathlib.Path) -> Optional[pathlib.Path]:
    program = shutil.which("zyrsub")
    if program is None or not os.path.isfile(file):
        return None
    report.parent.mkdir(exist_ok=True)
    report.unlink(missing_ok=True)
    # A file that is refused gets a page, too, and another exit code.
    subprocess.run(
        [program, "report", "-o", str(report), "--", file],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        timeout=_REPORT_SECONDS,
        check=False,
    )
    return report if report.exists() else None
