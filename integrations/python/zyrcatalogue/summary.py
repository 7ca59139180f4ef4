"""What a catalogue's records come to, counted one by one."""
from __future__ import annotations

import heapq
from collections import Counter
from dataclasses import dataclass, field

from .examination import UNREADABLE, WORKER_DIED, Record

_WEIGHTS = {"lost": 10_000, "changed": 100, "doubtful": 1}


@dataclass
class Group:
    """Files that have something in common."""

    files: int = 0
    with_findings: int = 0
    lost: int = 0
    """Files with a finding of this severity."""
    findings: int = 0


@dataclass
class Summary:
    """Counts over a catalogue."""

    keep_worst: int = 50
    all: Group = field(default_factory=Group)
    captions: int = 0
    bytes: int = 0
    by_code: Counter[str] = field(default_factory=Counter)
    """Findings with each code."""
    files_by_code: Counter[str] = field(default_factory=Counter)
    by_severity: Counter[str] = field(default_factory=Counter)
    by_format: dict[str, Group] = field(default_factory=dict)
    by_encoding: dict[str, Group] = field(default_factory=dict)
    by_maker: dict[str, Group] = field(default_factory=dict)
    _worst: list[tuple[int, str, Record]] = field(default_factory=list)

    @property
    def files(self) -> int:
        """How many files there are."""
        return self.all.files

    @property
    def unreadable(self) -> int:
        """Files that no finder has seen."""
        return self.files_by_code[UNREADABLE] + self.files_by_code[WORKER_DIED]

    def add(self, record: Record) -> None:
        """Count one more file."""
        findings = record["findings"]
        severities = [finding["severity"] for finding in findings]
        self.captions += record["captions"]
        self.bytes += record["bytes"]
        self.by_code.update(finding["code"] for finding in findings)
        self.files_by_code.update({finding["code"] for finding in findings})
        self.by_severity.update(severities)
        groups = (
            self.all,
            self.by_format.setdefault(record["format"], Group()),
            self.by_encoding.setdefault(record["encoding"], Group()),
            self.by_maker.setdefault(record["maker"], Group()),
        )
        for group in groups:
            group.files += 1
            group.with_findings += bool(findings)
            group.lost += "lost" in severities
            group.findings += len(findings)
        if findings:
            self._rank(sum(_WEIGHTS.get(severity, 1) for severity in severities), record)

    def _rank(self, weight: int, record: Record) -> None:
        heapq.heappush(self._worst, (weight, record["file"], record))
        if len(self._worst) > self.keep_worst:
            heapq.heappop(self._worst)

    def worst(self) -> list[Record]:
        """The worst files, the very worst first: lost text counts more than any number of doubts."""
        return [record for _weight, _file, record in sorted(self._worst, key=lambda one: (-one[0], one[1]))]
