"""What the tests share: where the samples are."""
import os
import pathlib

import pytest

SOURCE = pathlib.Path(__file__).resolve().parents[3]

# Schedulers, workers and commands that the tests start find the package that is tested.
os.environ["PYTHONPATH"] = os.pathsep.join(
    [str(SOURCE / "integrations" / "python"), *filter(None, [os.environ.get("PYTHONPATH")])]
)


@pytest.fixture
def samples() -> pathlib.Path:
    return SOURCE / "samples"
