"""What a stream refuses of strided blocks, and what the extension never asks of the interpreter."""

import subprocess

import pytest
from family import extension_path
from wrappers import INT, OBJECT, POINTER, scene, text_of


@scene("collections-streams.write.not-contiguous", "collections-streams.readinto.not-contiguous")
def test_a_block_with_gaps_is_refused_and_released(s):
    import ctypes
    import sys

    block = ctypes.create_string_buffer(8)
    create = s.function("exporter_new", OBJECT, POINTER, ctypes.c_ssize_t, ctypes.c_ssize_t)
    taken, released = (
        s.function(f"exporter_{what}", INT, OBJECT) for what in ("taken", "released")
    )
    stream = s.wrap(s.interop._StreamWrapper, 0x10)
    s.clear()
    for method, words in (
        (stream.write, "write argument must be contiguous buffer"),
        (stream.readinto, "readinto argument must be read-write contiguous buffer"),
    ):
        exporter = create(ctypes.addressof(block), 3, 2)
        count = sys.getrefcount(exporter)
        assert text_of(TypeError, method, exporter) == words + ", not 'kelmor_probe.Exporter'"
        assert taken(exporter) == released(exporter) == 1
        assert sys.getrefcount(exporter) == count and s.calls() == []


@pytest.mark.behaviour("collections-streams.lock.no-release")
def test_the_extension_never_lets_the_interpreter_lock_go():
    command = ["nm", "-D", "--undefined-only", str(extension_path())]
    listed = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    names = [line.split()[-1].split("@")[0] for line in listed.splitlines()]
    assert "PyErr_Occurred" in names
    refused = ("PyEval_", "PyGILState_", "PyThread_")
    assert [name for name in names if name.startswith(refused)] == []
