"""Whole catalogues of subtitle files, examined by Dask on one machine or many.

    python3 -m zyrcatalogue run FOLDER -o results.jsonl
    python3 -m zyrcatalogue report results.jsonl -o catalogue.html
"""
from .examination import UNREADABLE, WORKER_DIED, Reading, examine, find_maker
from .report import write_report
from .results import ResultsError, read_records
from .run import Plan, RunError, run
from .summary import Group, Summary

__all__ = [
    "UNREADABLE",
    "WORKER_DIED",
    "Group",
    "Plan",
    "Reading",
    "ResultsError",
    "RunError",
    "Summary",
    "examine",
    "find_maker",
    "read_records",
    "run",
    "write_report",
]
