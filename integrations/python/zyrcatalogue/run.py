"""Runs over a catalogue: in this process, or by Dask on this machine's cores or on a cluster."""
from __future__ import annotations

import contextlib
import time
from collections import deque
from collections.abc import Callable, Iterable, Iterator
from dataclasses import dataclass, field
from typing import Any, Optional

from .examination import WORKER_DIED, Reading, Record, examine_all, refuse
from .progress import Progress
from .results import Results
from .summary import Summary
from .worklist import WorkList, find_files

Batch = list[str]
Take = Callable[[list[Record]], None]

_COUNT_SECONDS = 2.0
_GATHER_SECONDS = 30.0


@dataclass(frozen=True)
class Plan:
    """How a run is spread."""

    scheduler: Optional[str] = None
    """``tcp://host:8786`` of a Dask cluster; None starts one on this machine."""
    workers: Optional[int] = None
    """Of a cluster of one's own: how many processes; None: one for each core; 0: this process alone."""
    batch: int = 64
    """Files that a worker is given at a time."""
    ahead: int = 3
    """Batches for each worker that wait or are worked on."""
    patience: float = 600
    """How long to wait for a scheduler, or for workers, that have gone away, seconds."""


class RunError(Exception):
    """A run cannot go on; what is done stays in the results."""


def run(
    inputs: Iterable[str],
    results: str,
    *,
    plan: Plan = Plan(),
    reading: Reading = Reading(),
    since: Optional[float] = None,
    keep_worst: int = 50,
    quiet: bool = False,
) -> Summary:
    """Examine every subtitle file in folders and below, and files that are named, and write a record for each.

    results: a file of JSON lines, or of CSV where its name ends in ``.csv``. Files that it has already are not read
    again, so that the same call goes on with a run that was stopped; each file is in it exactly once.
    since: seconds from 1970; files that were last written before it are left out.

    Gives the summary of all that the results file holds. Raises RunError when the cluster stays away for longer than
    the plan's patience, ResultsError for a results file that cannot be used.

    >>> import pathlib, tempfile
    >>> folder = pathlib.Path(tempfile.mkdtemp())
    >>> _ = (folder / "day.srt").write_bytes(b"1\\r\\n00:00:01,000 --> 00:00:02,500\\r\\nGood morning\\r\\n\\r\\n")
    >>> summary = run([str(folder)], str(folder / "results.jsonl"), plan=Plan(workers=0), quiet=True)
    >>> summary.files, summary.captions, sum(summary.by_code.values())
    (1, 1, 0)
    """
    output = Results(results)
    with contextlib.closing(output):
        summary = Summary(keep_worst)
        work = WorkList()
        work.add(find_files(inputs, since))
        work.finish(_count_done(output, summary))
        total, done = work.count()
        progress = Progress(done, total)

        def take(records: list[Record]) -> None:
            nonlocal done
            output.write(records)
            for record in records:
                summary.add(record)
            done += len(records)
            if not quiet:
                progress.show(done)

        batches = work.batches(plan.batch)
        if plan.workers == 0 and plan.scheduler is None:
            for batch in batches:
                take(examine_all(batch, reading))
        elif done < total:
            _Cluster(plan, reading, take).run(batches)
        if not quiet:
            progress.show(done, last=True)
    return summary


def _count_done(output: Results, summary: Summary) -> Iterator[str]:
    for record in output.read_done():
        summary.add(record)
        yield record["file"]


@dataclass
class _Cluster:
    """A run over Dask.

    A batch is either waiting here, or with the cluster under exactly one future, or written: what happens to workers
    and to the scheduler only moves it back to those that wait. A result is taken from the one future that its batch
    has now, so that work that was done twice is written once.
    """

    plan: Plan
    reading: Reading
    take: Take
    waiting: deque[Batch] = field(default_factory=deque)
    suspects: deque[Batch] = field(default_factory=deque)
    """Files, one by one, at whose batch workers died too often."""
    running: dict[Any, Batch] = field(default_factory=dict)
    taken: float = field(default_factory=time.monotonic)
    """When something last came back."""
    threads: int = 1
    """Of all workers, when they were last counted."""
    counted: float = -_COUNT_SECONDS

    def run(self, batches: Iterator[Batch]) -> None:
        """Work until everything is taken."""
        with contextlib.ExitStack() as stack:
            address: Any = self.plan.scheduler
            if address is None:
                address = stack.enter_context(_start_cluster(self.plan.workers))
            client = self._connect(address)
            try:
                while True:
                    if client.status != "running":
                        _close(client)
                        client = self._connect(address)
                    self._submit(client, batches)
                    if not self.running:
                        return
                    self._collect(client)
            finally:
                _close(client)

    def _connect(self, address: Any) -> Any:
        """A client; what the last one had is to be done again."""
        import distributed

        self.waiting.extend(self.running.values())
        self.running.clear()
        deadline = time.monotonic() + self.plan.patience
        while True:
            try:
                return distributed.Client(address, timeout=10, set_as_default=False)
            except OSError as error:  # also every timeout of a connection
                if time.monotonic() > deadline:
                    raise RunError(f"there is no scheduler at {address}: {error}") from None
                time.sleep(1)

    def _submit(self, client: Any, batches: Iterator[Batch]) -> None:
        """Keep the workers busy, and no more than that, so that memory stays flat."""
        room = self.plan.ahead * self._count_threads(client)
        while len(self.running) < room:
            batch = next(batches, None) if not self.waiting else self.waiting.popleft()
            if batch is None:
                break
            self._start(client, batch)
        # A file is only blamed for a worker's death when it was alone with it.
        if not self.running and self.suspects:
            self._start(client, self.suspects.popleft())

    def _count_threads(self, client: Any) -> int:
        import distributed

        now = time.monotonic()
        if now - self.counted > _COUNT_SECONDS:
            with contextlib.suppress(distributed.TimeoutError, OSError):  # a scheduler that goes is seen elsewhere
                self.threads = max(sum(client.nthreads().values()), 1)
            self.counted = now
        return self.threads

    def _start(self, client: Any, batch: Batch) -> None:
        self.running[client.submit(examine_all, batch, self.reading, pure=False)] = batch

    def _collect(self, client: Any) -> None:
        """Wait until something has ended, and take it."""
        import distributed

        while client.status == "running":
            ended = [future for future in self.running if future.status != "pending"]
            for future in ended:
                self._take(future, self.running.pop(future))
            if ended:
                return
            if time.monotonic() - self.taken > self.plan.patience:
                raise RunError(f"no worker has done anything for {self.plan.patience:.0f} s")
            # A scheduler that goes is seen by the next round.
            with contextlib.suppress(distributed.TimeoutError, distributed.CancelledError, OSError), client.as_current():
                distributed.wait(list(self.running), timeout=1, return_when="FIRST_COMPLETED")

    def _take(self, future: Any, batch: Batch) -> None:
        import distributed

        try:
            records = future.result(timeout=_GATHER_SECONDS)
        except distributed.KilledWorker:
            self._suspect(batch)
            return
        except ImportError as error:
            raise RunError(f"the workers need this package, too: {error}") from None
        except (distributed.CancelledError, distributed.TimeoutError, OSError):
            self.waiting.append(batch)  # the scheduler, or the worker that had the result, is gone
            return
        self.taken = time.monotonic()
        self.take(records)

    def _suspect(self, batch: Batch) -> None:
        """Workers died at this batch, one after the other."""
        if len(batch) > 1:
            self.suspects.extend([file] for file in batch)
        else:
            self.take([refuse(batch[0], WORKER_DIED, "every worker that read it died")])


def _start_cluster(workers: Optional[int]) -> Any:
    import dask
    import distributed

    # Workers look at their own stacks for the dashboard, which this cluster does not have.
    with dask.config.set({"distributed.worker.profile.interval": "1s", "distributed.worker.profile.cycle": "60s"}):
        return distributed.LocalCluster(
            n_workers=workers,
            threads_per_worker=1,  # the engine reads one file at a time in a process
            dashboard_address=None,
            silence_logs=50,
        )


def _close(client: Any) -> None:
    with contextlib.suppress(Exception):
        client.close(timeout=5)
