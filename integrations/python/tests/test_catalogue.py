"""Catalogues whose workers, schedulers and runs die on the way: every file is in the results, exactly once."""
import csv
import json
import os
import pathlib
import re
import subprocess
import time

import pytest

import zyrcatalogue
import zyrcatalogue.results
from catalogue_kit import (
    PYTHON,
    Cluster,
    command,
    count_lines,
    kill,
    make_catalogue,
    make_templates,
    wait_for_lines,
)

SOURCE = pathlib.Path(__file__).resolve().parents[3]
FILES = int(os.environ.get("ZYR_CATALOGUE_FILES", "20000"))

pytest.importorskip("distributed")


@pytest.fixture(scope="module")
def catalogue(tmp_path_factory):
    folder = tmp_path_factory.mktemp("catalogue")
    make_catalogue(folder, SOURCE / "samples", FILES)
    return folder


@pytest.fixture(scope="module")
def expected(catalogue, tmp_path_factory):
    """The results of one process, sorted."""
    file = tmp_path_factory.mktemp("one") / "one.jsonl"
    summary = zyrcatalogue.run([str(catalogue)], str(file), plan=zyrcatalogue.Plan(workers=0), quiet=True)
    assert summary.files == FILES
    return sorted_lines(file)


def sorted_lines(file):
    return sorted(file.read_bytes().splitlines(keepends=True))


def run_command(*arguments, **settings):
    return subprocess.run(command(*arguments), capture_output=True, text=True, timeout=300, **settings)


def test_one_process_finds_what_was_put_in(expected):
    templates = make_templates(SOURCE / "samples")
    found = {}
    for line in expected:
        record = json.loads(line)
        name = os.path.basename(record["file"]).split("-", 1)[1]
        codes = tuple(finding["code"] for finding in record["findings"])
        code = templates[name][1]
        assert code is None or code in codes, name
        assert found.setdefault(name, codes) == codes, name  # every copy alike
    assert set(found) == set(templates)
    assert found["subrip-crlf.srt"] == () and found["subviewer.sub"] == ()


def test_a_worker_is_killed(catalogue, expected, tmp_path):
    results = tmp_path / "results.jsonl"
    with Cluster(tmp_path) as cluster:
        workers = [cluster.start_worker() for _ in range(2)]
        run = subprocess.Popen(command("run", catalogue, "-o", results, "--scheduler", cluster.address, "--quiet"))
        wait_for_lines(results, FILES // 4, run)
        kill(workers[0])
        assert run.wait(300) == 0
    assert sorted_lines(results) == expected


def test_the_scheduler_is_restarted(catalogue, expected, tmp_path):
    results = tmp_path / "results.jsonl"
    with Cluster(tmp_path) as cluster:
        workers = [cluster.start_worker() for _ in range(2)]
        run = subprocess.Popen(command("run", catalogue, "-o", results, "--scheduler", cluster.address, "--quiet"))
        wait_for_lines(results, FILES // 4, run)
        kill(cluster.scheduler)
        time.sleep(2)
        before = count_lines(results)
        cluster.scheduler = cluster.start_scheduler()
        for worker in workers:
            kill(worker)
            cluster.start_worker()
        assert run.wait(300) == 0
    assert before < FILES
    assert sorted_lines(results) == expected


@pytest.mark.parametrize("ending", ["jsonl", "csv"])
def test_a_run_is_stopped_and_goes_on(catalogue, expected, tmp_path, ending):
    results = tmp_path / f"results.{ending}"
    arguments = ("run", catalogue, "-o", results, "--workers", 0, "--batch", 50, "--quiet")
    for lines in (FILES // 5, FILES // 2):
        run = subprocess.Popen(command(*arguments))
        wait_for_lines(results, lines, run)
        kill(run)
        with open(results, "ab") as torn:  # as a full disk, or a machine that lost its power, leaves it
            torn.write(expected[0][:40])
    assert run_command(*arguments).returncode == 0
    if ending == "jsonl":
        assert sorted_lines(results) == expected
    else:
        with open(results, newline="", encoding="utf-8") as rows:
            table = list(csv.DictReader(rows))
        kept = {record["file"]: record for record in zyrcatalogue.read_records(str(results))}
        assert len(kept) == len(list(zyrcatalogue.read_records(str(results)))) == FILES
        assert sum(1 for row in table if row["code"]) == sum(line.count(b'"code":') for line in expected)
        assert all(kept[json.loads(line)["file"]] == json.loads(line) for line in expected)


def test_a_file_at_which_workers_die(tmp_path):
    """It is blamed, and no other, whatever was with the workers at the time."""
    folder = tmp_path / "files"
    make_catalogue(folder, SOURCE / "samples", 60)
    poison = folder / "000" / "000031-poison.srt"
    poison.write_bytes(b"1\r\n00:00:01,000 --> 00:00:02,000\r\nx\r\n")
    (tmp_path / "poisoned.py").write_text(
        "import os, zyrcatalogue.examination as examine\n"
        "real = examine._read\n"
        "def read(file):\n"
        "    return os._exit(1) if 'poison' in file else real(file)\n"
        "def dask_setup(worker):\n"
        "    examine._read = read\n"
    )
    results, clean = tmp_path / "results.jsonl", tmp_path / "clean.jsonl"
    zyrcatalogue.run([str(folder)], str(clean), plan=zyrcatalogue.Plan(workers=0), quiet=True)
    environment = {
        **os.environ,
        "DASK_DISTRIBUTED__WORKER__PRELOAD": "['poisoned']",
        "PYTHONPATH": os.pathsep.join([str(tmp_path), str(SOURCE / "integrations/python")]),
    }
    arguments = ("run", folder, "-o", results, "--workers", 2, "--batch", 4, "--quiet")
    assert run_command(*arguments, env=environment).returncode == 0
    by_file = {record["file"]: record for record in zyrcatalogue.read_records(str(results))}
    assert count_lines(results) == len(by_file) == 61
    assert [one["code"] for one in by_file.pop(str(poison))["findings"]] == [zyrcatalogue.WORKER_DIED]
    assert by_file == {
        record["file"]: record for record in zyrcatalogue.read_records(str(clean)) if "poison" not in record["file"]
    }


def test_files_that_cannot_be_read(tmp_path):
    folder = tmp_path / "files"
    (folder / "folder.srt").mkdir(parents=True)
    os.mkfifo(folder / "pipe.srt")
    (folder / "empty.smi").touch()
    (folder / "gone.ssa").symlink_to("nothing")
    (folder / "good.SRT").write_bytes(b"1\r\n00:00:01,000 --> 00:00:02,000\r\nx\r\n\r\n")
    (folder / "other.txt").write_text("no subtitle")
    odd = os.fsencode(folder) + b"/d\xe9j\xe0\nvu.srt"
    with open(odd, "wb") as file:
        file.write(b"1\r\n00:00:01,000 --> 00:00:02,000\r\nx\r\n\r\n")
    wanted = {"empty.smi", "gone.ssa", "good.SRT", "pipe.srt", os.fsdecode(odd).rsplit("/", 1)[1]}
    for name in ("results.jsonl", "results.csv"):
        file = str(tmp_path / name)
        for _ in range(2):  # the second run finds all of it done
            plan = zyrcatalogue.Plan(workers=0)
            summary = zyrcatalogue.run([str(folder), str(folder / "good.SRT")], file, plan=plan, quiet=True)
        codes = {
            os.path.basename(record["file"]): [one["code"] for one in record["findings"]]
            for record in zyrcatalogue.read_records(file)
        }
        assert codes["pipe.srt"] == codes["gone.ssa"] == [zyrcatalogue.UNREADABLE]
        assert len(codes["empty.smi"]) == 1 and codes["good.SRT"] == []
        assert summary.files == len(codes) == 5
        assert set(codes) == wanted


@pytest.mark.parametrize(
    "head, maker",
    [
        (b"; Script generated by Lamp 1.2\r\nTitle: created by night\r\n", "Lamp 1.2"),
        (b"[Script Info]\nOriginal Script: A. Keeper\n", "A. Keeper"),
        (b"[Script Info]\r\nOriginal Script:\r\nOriginal Translation: B\r\n", ""),
        (b"<SAMI><HEAD>\n<!-- Created with: Tower 3 -->\n", "Tower 3"),
        ("\ufeff<meta name=Generator content='Tower  4'>".encode("utf-16-le"), "Tower 4"),
        (b"[INFORMATION]\n[AUTHOR]C. Ship\n[PRG]Lamp\n", "Lamp"),
        (b"1\n00:00:01,000 --> 00:00:02,000\nmade by hand\n", ""),
        (b"\xff\xfe\x00", ""),
    ],
)
def test_makers(head, maker):
    assert zyrcatalogue.find_maker(head) == maker


def test_since_and_lists(tmp_path):
    for name, age in (("old.srt", 10 * 86_400), ("new.srt", 60)):
        (tmp_path / name).write_bytes(b"1\r\n00:00:01,000 --> 00:00:02,000\r\nx\r\n\r\n")
        os.utime(tmp_path / name, (time.time() - age,) * 2)
    (tmp_path / "list").write_text(f"{tmp_path}/old.srt\n\n{tmp_path}/new.srt\n")
    cases = [([], {"old.srt", "new.srt"}), (["--since", "2d"], {"new.srt"}), (["--since", "30s"], set())]
    for number, (arguments, files) in enumerate(cases):
        results = tmp_path / f"{number}.jsonl"
        base = ("run", "--list", tmp_path / "list", "-o", results, "--workers", 0)
        assert run_command(*base, *arguments).returncode == 0
        assert {os.path.basename(one["file"]) for one in zyrcatalogue.read_records(str(results))} == files
    assert run_command(*base, "--since", "yesterday").returncode == 2
    assert "no scheduler" in run_command(*base[:-2], "--scheduler", "tcp://127.0.0.1:1", "--patience", 0).stderr


def test_two_runs_never_share_results(tmp_path):
    results = zyrcatalogue.results.Results(str(tmp_path / "results.jsonl"))
    run = run_command("run", tmp_path, "-o", tmp_path / "results.jsonl", "--workers", 0)
    results.close()
    assert run.returncode == 1 and "another run" in run.stderr
    (tmp_path / "other.jsonl").write_text("a diary\n")
    run = run_command("run", tmp_path, "-o", tmp_path / "other.jsonl", "--workers", 0)
    assert run.returncode == 1 and (tmp_path / "other.jsonl").read_text() == "a diary\n"


def test_report(tmp_path):
    folder = tmp_path / "<b>files"
    make_catalogue(folder, SOURCE / "samples", 120)
    (folder / "maker.sub").write_bytes(b"[INFORMATION]\r\n[PRG]<i>Lamp & Titler\r\n[SUBTITLE]\r\n")
    page = tmp_path / "catalogue.html"
    results = tmp_path / "results.jsonl"
    zyrcatalogue.run([str(folder)], str(results), plan=zyrcatalogue.Plan(workers=0), quiet=True)
    summary = zyrcatalogue.write_report(str(results), str(page), keep_worst=5)
    text = page.read_text()
    assert all(f">{code}<" in text for code in summary.by_code)
    assert "&lt;i&gt;Lamp &amp; Titler" in text and "<b>files" not in text and "<i>Lamp" not in text
    links = re.findall(r'href="([^"]+)"', text)
    assert len(summary.worst()) == 5
    weights = [[one["severity"] for one in record["findings"]].count("lost") for record in summary.worst()]
    assert weights == sorted(weights, reverse=True) and weights[0] > 0
    has_report = "\n  report " in subprocess.run(["zyrsub", "--help"], capture_output=True, text=True).stdout
    assert len(links) == (5 if has_report else 0)
    assert all((tmp_path / link).stat().st_size > 1000 for link in links)


def test_what_the_page_shows_runs(tmp_path):
    """The commands and the program of docs/catalogues.md, in a folder that has the samples."""
    text = (SOURCE / "docs" / "catalogues.md").read_text(encoding="utf-8")
    (tmp_path / "samples").symlink_to(SOURCE / "samples")
    (tmp_path / "bin").mkdir()
    (tmp_path / "bin" / "python3").symlink_to(PYTHON)
    environment = {
        **os.environ,
        "PATH": f"{tmp_path / 'bin'}:{os.environ['PATH']}",
        "PYTHONPATH": str(SOURCE / "integrations/python"),
    }
    commands = re.search(r"```sh\n(.*?)```", text, re.DOTALL)[1]
    subprocess.run(["bash", "-ec", commands], cwd=tmp_path, env=environment, check=True, timeout=300)
    assert count_lines(tmp_path / "results.jsonl") == len(list((SOURCE / "samples").glob("*.s*")))
    assert (tmp_path / "catalogue.html").exists()
    program, told = re.search(r"```python\n(.*?)```\n\n```text\n(.*?)```", text, re.DOTALL).groups()
    (tmp_path / "example.py").write_text(program, encoding="utf-8")
    run = subprocess.run(
        [PYTHON, "example.py"], cwd=tmp_path, env=environment, capture_output=True, text=True, timeout=300
    )
    assert run.stdout == told, run.stderr
