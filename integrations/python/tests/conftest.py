"""What the tests share: where the samples are."""
import pathlib

import pytest

SOURCE = pathlib.Path(__file__).resolve().parents[3]


@pytest.fixture
def samples() -> pathlib.Path:
    return SOURCE / "samples"
