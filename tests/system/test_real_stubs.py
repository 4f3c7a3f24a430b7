"""The stubs that the package holds, against the modules that they describe."""

import importlib.util
import os
import pathlib
import subprocess
import sys

import kelmor.psd
import pytest

STAGE = pathlib.Path(kelmor.psd.__file__).parents[1]


def test_the_stubs_name_exactly_what_there_is(tmp_path):
    if importlib.util.find_spec("mypy") is None:
        pytest.skip("this interpreter has no mypy")
    # What the stubs say of bases and overloads is how the library is.
    (tmp_path / "mypy.ini").write_text("[mypy]\n[mypy-kelmor.*]\nignore_errors = True\n")
    command = [sys.executable, "-m", "mypy.stubtest", "--concise", "--mypy-config-file=mypy.ini"]
    modules = ["kelmor.psd", "kelmor.gfxtypes", "kelmor.typemodel"]
    done = subprocess.run(
        [*command, *modules],
        cwd=tmp_path,
        env={**os.environ, "MYPYPATH": str(STAGE)},
        capture_output=True,
        text=True,
    )
    lines = done.stdout.splitlines()
    # It cannot see through the descriptors of the modules, and says that of every class.
    assert any(line.endswith("is not a function") for line in lines), done
    names = [line for line in lines if "is not present" in line or "differs" in line]
    assert names == []
