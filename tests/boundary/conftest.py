"""Fixtures of the tests over the scripted peer."""

import pathlib
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parent))

import peer  # noqa: E402

sys.path.insert(0, str(peer.PEER))


@pytest.fixture
def empty_installation(tmp_path):
    """A runtime root and an assembly root without anything in them."""
    return peer.Installation(tmp_path / "installation")


@pytest.fixture
def installation(empty_installation):
    """A runtime folder with the peer's wrap library, and two assembly folders."""
    empty_installation.add_runtime()
    empty_installation.add_assemblies("psd", "gfxtypes")
    return empty_installation


@pytest.fixture
def in_process(request):
    """Runs a program in a process of its own, over the installation of the test if it has one.

    `code` is how the process must end; None accepts every end.
    """

    names = request.fixturenames
    is_empty = "empty_installation" in names and "installation" not in names
    used = request.getfixturevalue("empty_installation" if is_empty else "installation")

    def run(program, *arguments, code=0, environment=(), **options):
        variables = used.environment()
        variables.update(environment)
        variables = {name: value for name, value in variables.items() if value is not None}
        outcome = peer.run_python(program, *arguments, environment=variables, **options)
        assert code is None or outcome.code == code, outcome
        return outcome

    return run
