"""Byte blocks of every exporter and shape."""

import array
import ctypes
import hashlib
import io
import mmap
import pickle

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from kelmor.harness import Blocks, Streams, Variants


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
    "open-buffer": lambda data: io.BytesIO(data).getbuffer(),
    "pickle-buffer": lambda data: pickle.PickleBuffer(data),
    "bytes-subclass": type("MyBytes", (bytes,), {}),
    "array-of-arrays": lambda data: ((ctypes.c_char * 2) * (len(data) // 2)).from_buffer_copy(data),
    "structure": lambda data: type(
        "Record", (ctypes.Structure,), {"_fields_": [("bytes", ctypes.c_uint8 * len(data))]}
    ).from_buffer_copy(data),
    "no-dimension": lambda data: memoryview((data + bytes(4))[:4]).cast("i", []),
    "three-dimensions": lambda data: memoryview((data + bytes(12))[:12]).cast("B", [2, 3, 2]),
    "doubles": lambda data: memoryview(bytes(8) + data[: len(data) // 8 * 8]).cast("d"),
    "map-slice": lambda data: memoryview(mapped(b"x" + data))[1:],
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
    with pytest.raises(BufferError, match="^buffer is not contiguous$"):
        Blocks.length(memoryview(bytes(range(20)))[::step])


def strip(offset, stride):
    """Every `stride`-th byte of nine from `offset` on, in rows of three."""
    return memoryview(bytes(range(9))).cast("B", [3, 3])[offset::stride]


def test_rows_of_a_block_are_taken_when_they_lie_side_by_side(count_case):
    count_case()
    assert Blocks.echo(strip(1, 1)) == bytes(range(3, 9))
    with pytest.raises(BufferError, match="^buffer is not contiguous$"):
        Blocks.echo(strip(0, 2))


@pytest.mark.parametrize("data", [b"", b"abc", bytes(range(256)) * 9])
@pytest.mark.parametrize("exporter", EXPORTERS)
def test_a_block_of_any_type_is_read_like_a_declared_one(count_case, exporter, data):
    count_case()
    block = EXPORTERS[exporter](data)
    if not isinstance(block, (bytes, bytearray, memoryview)):
        with pytest.raises(TypeError, match="unknown variant type"):
            Variants.echo(block)
        return
    assert Variants.echo(block) == memoryview(block).tobytes()
    assert type(Variants.echo(block)) is bytearray


def test_a_block_cannot_change_its_size_while_it_is_lent(count_case):
    count_case()
    block = bytearray(b"abc")

    class Taker(io.RawIOBase):
        def writable(self):
            return True

        def write(self, data):
            with pytest.raises(BufferError):
                block.append(1)
            return memoryview(data).nbytes

    Streams.write(Taker(), block)
    block.append(1)
    assert block == b"abc\x01"


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
