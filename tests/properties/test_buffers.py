"""Byte blocks of every exporter and shape."""

import array
import ctypes
import hashlib
import mmap

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from kelmor.harness import Blocks


def mapped(data):
    block = mmap.mmap(-1, max(len(data), 1))
    block[: len(data)] = data
    return block


EXPORTERS = {
    "bytes": bytes,
    "bytearray": bytearray,
    "memoryview": memoryview,
    "read-only-view": lambda data: memoryview(bytearray(data)).toreadonly(),
    "inner-slice": lambda data: memoryview(b"xx" + data + b"yyy")[2:-3],
    "array-of-bytes": lambda data: array.array("B", data),
    "array-of-shorts": lambda data: array.array("h", data + b"\0" * (len(data) % 2)),
    "ctypes-array": lambda data: (ctypes.c_char * len(data)).from_buffer_copy(data),
    "two-dimensions": lambda data: memoryview(data + b"\0" * (-len(data) % 4)).cast(
        "B", (max(-(-len(data) // 4), 1), 4)
    )
    if data
    else memoryview(data),
    "map": mapped,
}


@pytest.mark.parametrize("exporter", EXPORTERS)
def test_a_block_arrives_byte_for_byte(count_case, exporter):
    @settings(max_examples=200, deadline=None)
    @given(st.binary(max_size=300))
    def check(data):
        count_case()
        block = EXPORTERS[exporter](data)
        exact = memoryview(block).tobytes()
        assert Blocks.digest(block) == hashlib.sha256(exact).hexdigest()
        assert Blocks.length(block) == len(exact)
        assert Blocks.echo(block) == exact
        assert type(Blocks.echo(block)) is bytearray

    check()


@pytest.mark.parametrize("step", [2, 3, -1, -2])
def test_a_view_with_a_step_is_refused(count_case, step):
    count_case()
    with pytest.raises(BufferError):
        Blocks.length(memoryview(bytes(range(20)))[::step])


@pytest.mark.parametrize("size", [0, 1, 255, 65536, 1 << 20, (1 << 24) + 1])
def test_a_managed_block_comes_back_whole(count_case, size):
    count_case()
    block = Blocks.make(size)
    assert len(block) == size
    assert hashlib.sha256(block).hexdigest() == Blocks.digest(bytes(i % 251 for i in range(size)))


def test_none_is_a_null_block_and_an_empty_one_is_not():
    assert Blocks.echo(None) is None
    assert Blocks.is_null(None) is True
    assert Blocks.is_null(b"") is False


def test_a_lent_bytearray_can_be_resized_after_the_call():
    block = bytearray(b"abc")
    for _ in range(1000):
        Blocks.length(block)
        block.append(1)
    assert len(block) == 1003
