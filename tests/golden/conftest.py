"""The generator, on the import path and loaded once for each module."""

import functools
import pathlib
import sys

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT))


@functools.cache
def load(key):
    from wrpgen import generate

    return generate.load(ROOT / "api", key)


@pytest.fixture(scope="session")
def generation():
    """`generation("psd")`: one module, composed from api/."""
    return load
