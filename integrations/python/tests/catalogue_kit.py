"""A catalogue whose findings are known, and a Dask cluster whose processes can be killed."""
from __future__ import annotations

import os
import pathlib
import signal
import socket
import subprocess
import sys
import time
from typing import Optional

import zyrsubtitle
from zyrcatalogue.worklist import ENDINGS

PYTHON = "/usr/bin/python3" if os.path.exists("/usr/bin/python3") else sys.executable


def make_templates(samples: pathlib.Path) -> dict[str, tuple[bytes, Optional[str]]]:
    """Every shipped sample, and an example of every kind of fault with its code."""
    templates: dict[str, tuple[bytes, Optional[str]]] = {}
    for sample in sorted(samples.glob("*.s*")):
        templates[sample.name] = (sample.read_bytes(), None)
    for rule in zyrsubtitle.rules():
        shows = rule.code if not rule.code.startswith("ZYR-OUT") else None  # those are of an output
        templates[f"{rule.code}-{rule.file}"] = (rule.example, shows)
    return {name: row for name, row in templates.items() if name.endswith(ENDINGS)}


def make_catalogue(folder: pathlib.Path, samples: pathlib.Path, files: int) -> None:
    """Copies of the templates, each a file of its own, in folders of a few hundred."""
    templates = list(make_templates(samples).items())
    for number in range(files):
        name, (data, _code) = templates[number % len(templates)]
        path = folder / f"{number // 500:03}" / f"{number:06}-{name}"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)


def command(*arguments: object) -> list[str]:
    return [PYTHON, "-m", "zyrcatalogue", *map(str, arguments)]


def count_lines(file: pathlib.Path) -> int:
    return file.read_bytes().count(b"\n") if file.exists() else 0


def wait_for_lines(file: pathlib.Path, lines: int, run: subprocess.Popen[bytes], seconds: float = 120) -> None:
    """Until a run has written so much; it must still be at work then."""
    deadline = time.monotonic() + seconds
    while count_lines(file) < lines:
        assert run.poll() is None, "the run ended early"
        assert time.monotonic() < deadline, f"{count_lines(file)} lines"
        time.sleep(0.02)
    assert run.poll() is None


class Cluster:
    """A scheduler on a port of its own, and workers without anyone that starts them again."""

    def __init__(self, logs: pathlib.Path) -> None:
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            self.port = free.getsockname()[1]
        self.address = f"tcp://127.0.0.1:{self.port}"
        self._logs = logs
        self._processes: list[subprocess.Popen[bytes]] = []
        self.scheduler = self.start_scheduler()

    def _start(self, *arguments: object) -> subprocess.Popen[bytes]:
        with open(self._logs / f"dask-{len(self._processes)}.log", "wb") as log:
            process = subprocess.Popen([PYTHON, "-m", *map(str, arguments)], stdout=log, stderr=log, cwd=self._logs)
        self._processes.append(process)
        return process

    def start_scheduler(self) -> subprocess.Popen[bytes]:
        return self._start(
            "distributed.cli.dask_scheduler", "--host", "127.0.0.1", "--port", self.port, "--no-dashboard"
        )

    def start_worker(self) -> subprocess.Popen[bytes]:
        return self._start(
            "distributed.cli.dask_worker", self.address, "--nthreads", 1, "--no-nanny", "--no-dashboard",
            "--death-timeout", 60,
        )

    def __enter__(self) -> Cluster:
        return self

    def __exit__(self, *_: object) -> None:
        for process in self._processes:
            process.kill()
            process.wait()


def kill(process: subprocess.Popen[bytes]) -> None:
    process.send_signal(signal.SIGKILL)
    process.wait()
