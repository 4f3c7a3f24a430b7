"""The demo program ends well on every document, or with one line that says what is wrong."""

import pathlib
import subprocess
import sys

import documents
import pytest

DEMO = pathlib.Path(__file__).resolve().parents[2] / "examples" / "demo.py"


def run(*arguments):
    command = [sys.executable, str(DEMO), *map(str, arguments)]
    return subprocess.run(command, capture_output=True, text=True)


def test_it_makes_changes_and_saves_a_document_of_its_own(tmp_path):
    result = run("--output", tmp_path)
    assert result.returncode == 0, result.stderr
    made = {"poster.psd", "poster-changed.psd", "poster.png"}
    assert {path.name for path in tmp_path.iterdir()} == made
    assert "changed: 'Shade (changed)', opacity 80" in result.stdout


def test_a_picture_that_cannot_be_shown_is_one_line_after_the_document_is_saved(tmp_path):
    # Its layers need more than can be rendered, and most of the stored picture is missing.
    source = next((t for t in documents.truths() if documents.short_name(t) == "slices.psd"), None)
    if source is None:
        pytest.skip(documents.WITHOUT_CORPUS)
    damaged = tmp_path / "damaged.psd"
    damaged.write_bytes(documents.path_of(source).read_bytes()[:-1000])
    result = run(damaged, "--output", tmp_path / "out")
    assert result.returncode == 1
    (line,) = result.stderr.splitlines()
    assert line.startswith(f"{damaged}: Proxy error(")
    saved = tmp_path / "out" / "damaged-changed.psd"
    assert saved.stat().st_size > 1_000_000
    assert not (tmp_path / "out" / "damaged.png").exists()


def test_a_file_that_is_no_document_is_one_line(tmp_path):
    path = tmp_path / "no.psd"
    path.write_text("no document")
    result = run(path, "--output", tmp_path / "out")
    assert result.returncode == 1
    (line,) = result.stderr.splitlines()
    assert line.startswith(f"{path}: Proxy error(Kelmor.PSD.CoreExceptions.ImageLoadException)")
