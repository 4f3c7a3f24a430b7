"""api/ describes the library as it was compiled: nobody has forgotten `make api`."""

import os
import pathlib
import shutil
import subprocess

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("KELMOR_BUILD") or ROOT / "build/dev").resolve()
LIBRARIES = {
    "psd": "Kelmor.PSD/release/Kelmor.PSD.dll",
    "gfxtypes": "Kelmor.PSD/release/Kelmor.GfxTypes.dll",
    "harness": "Kelmor.Harness/release/Kelmor.Harness.dll",
}


@pytest.fixture(scope="session")
def extractor():
    if shutil.which("dotnet") is None:
        pytest.skip("no dotnet to run the extractor")
    command = ["dotnet", "build", ROOT / "managed/Extractor", "-nologo", "-v", "quiet"]
    artifacts = f"-p:KelmorArtifacts={BUILD}/managed/"
    built = subprocess.run([*command, artifacts], capture_output=True, text=True)
    assert built.returncode == 0, built.stdout
    (program,) = (BUILD / "managed/bin/Extractor/debug").glob("*xtractor.dll")
    return program


@pytest.mark.parametrize("key", LIBRARIES)
def test_the_description_is_that_of_the_compiled_library(extractor, key):
    library = BUILD / "managed/bin" / LIBRARIES[key]
    if not library.exists():
        pytest.skip("this build took the assemblies of another one")
    arguments = ["--library", library, "--out", ROOT / "api" / key, "--check"]
    done = subprocess.run(["dotnet", extractor, *arguments], capture_output=True, text=True)
    assert done.returncode == 0, f"run `make api` and review api/{key}: {done.stderr}{done.stdout}"
