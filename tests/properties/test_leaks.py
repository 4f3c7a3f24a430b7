"""Every converter, ten thousand times with success and as often with failure: nothing stays."""

import datetime as dt
import decimal
import gc
import io
import itertools
import sys
import uuid

import pytest

from kelmor.harness import (
    Blocks,
    Circle,
    Collections,
    Counter,
    Decimals,
    Declared,
    Enums,
    Failures,
    Objects,
    Others,
    Pair,
    References,
    Scalars,
    Shade,
    Streams,
    Texts,
    Times,
    Variants,
)
from managed_side import ManagedSide

TIMES = 10_000
REFUSALS = (TypeError, ValueError, OverflowError, RuntimeError, BufferError, LookupError)


class Bad:
    """No converter takes it, and every question to it fails."""

    def __float__(self):
        raise ZeroDivisionError("no")

    __index__ = __fspath__ = __iter__ = __len__ = __float__


class Lost(dt.tzinfo):
    def utcoffset(self, when):
        raise ValueError("no offset")


class Broken(io.RawIOBase):
    def readable(self):
        return True

    def readinto(self, window):
        raise ValueError("no bytes")


class BrokenItems:
    def __iter__(self):
        return self

    def __next__(self):
        raise ValueError("no item")


BAD = Bad()
AWARE = dt.datetime(2020, 1, 2, tzinfo=dt.timezone.utc)
NAIVE = dt.datetime(2020, 1, 2, 3, 4, 5, 6)
LOST = NAIVE.replace(tzinfo=Lost())
NUMBER = decimal.Decimal("-123456789012345678901234567.89")
TEXT = "a text that only this file holds"
WIDE = "größer 漢字 😀 "
BLOCK = b"a block that only this file holds"
NO_TEXT = "a\ud800"  # goes in, and cannot come back
COUNTER, PAIR, CIRCLE = Counter(7), Pair(1, 2), Circle(2)
HUGE = 2**70


def divide(total):
    return References.divide(total, [], [None], [], [])


def length_of(stream):
    return Streams.read_all(stream)


# The member, what it takes, what it refuses.
CONVERTERS = {
    "bool": (Scalars.echo_bool, [True, False], [1, None, BAD]),
    "int8": (Scalars.echo_int8, [-128, 127], [128, HUGE, True, BAD]),
    "int16": (Scalars.echo_int16, [-(2**15), 2**15 - 1], [2**15, HUGE, 1.0, BAD]),
    "int32": (Scalars.echo_int32, [-(2**31), 2**31 - 1], [2**31, HUGE, None, BAD]),
    "int64": (Scalars.echo_int64, [-(2**63), 2**63 - 1], [2**63, "x", BAD]),
    "uint8": (Scalars.echo_u_int8, [255, 7], [256, -1, HUGE, BAD]),
    "uint16": (Scalars.echo_u_int16, [2**16 - 1], [2**16, -1, HUGE, BAD]),
    "uint32": (Scalars.echo_u_int32, [2**32 - 1], [2**32, -1, HUGE, BAD]),
    "uint64": (Scalars.echo_u_int64, [2**64 - 1], [2**64, -1, BAD]),
    "single": (Scalars.echo_single, [0.5, 7, 2**64 - 1], [HUGE, True, BAD]),
    "double": (Scalars.echo_double, [0.5, 7, 2**64 - 1], [HUGE, True, BAD]),
    "char": (Scalars.echo_char, ["c", "漢"], ["", "ab", "\ud800", BAD]),
    "string": (Texts.echo, [TEXT, WIDE * 50, "", None], [NO_TEXT, BLOCK, BAD]),
    "bytes": (Blocks.echo, [BLOCK, bytearray(b"abc"), None], [memoryview(BLOCK)[::2], "x", BAD]),
    "date": (Times.echo_date, [NAIVE, AWARE, NAIVE.date(), NAIVE.time()], [LOST, TEXT, BAD]),
    "offset": (Times.echo_offset, [AWARE], [NAIVE, LOST, NAIVE.date(), BAD]),
    "offset that managed code refuses": (
        Times.echo_offset,
        [],
        [dt.datetime(1, 1, 1, tzinfo=dt.timezone(dt.timedelta(hours=2)))],
    ),
    "span": (Times.echo_span, [dt.timedelta(-5, 6, 7)], [dt.timedelta.max, 5, BAD]),
    "decimal": (
        Decimals.echo,
        [NUMBER, NUMBER.as_tuple()],
        [decimal.Decimal("NaN"), decimal.Decimal("1E+30"), 5, BAD],
    ),
    "guid": (Others.echo_guid, [uuid.UUID(int=2**100)], ["x", BAD]),
    "version": (Others.echo_version, [(1, 2), (1, 2, 3, 4), None], [(1,), (1, -1), (1, "x"), BAD]),
    "nullable": (Others.echo_nullable_int32, [1000, None], [2**31, BAD]),
    "nullable date": (Others.echo_nullable_date, [NAIVE, None], [LOST, BAD]),
    "nullable struct": (Declared.echo_nullable_pair, [PAIR, None], [COUNTER, BAD]),
    "enum": (Enums.echo_shade, [Shade.LIGHT], [5, BAD]),
    "unknown member": (lambda _: Enums.unknown_shade(), [], [None]),
    "class": (Objects.echo_counter, [COUNTER, None], [PAIR, BAD]),
    "struct": (Objects.echo_pair, [PAIR], [None, COUNTER, BAD]),
    "interface": (Objects.echo_figure, [CIRCLE, None], [COUNTER, BAD]),
    "variant": (
        Variants.echo,
        [None, True, 12345, 2**64 - 1, 1.5, NUMBER, NUMBER.as_tuple(), uuid.UUID(int=5)]
        + [NAIVE, AWARE, NAIVE.date(), NAIVE.time(), dt.timedelta(3), TEXT, BLOCK]
        + [bytearray(b"abc"), memoryview(BLOCK), [1, 2], (1, 2), COUNTER, PAIR],
        [HUGE, LOST, NO_TEXT, decimal.Decimal("NaN"), memoryview(BLOCK)[::2], {}, BAD],
    ),
    "array": (Collections.echo_int_32_array, [[1, 2], (1, 2), None], [[1, "x"], (1, "x"), BAD]),
    "objects": (Collections.echo_counter_array, [[COUNTER], (COUNTER,)], [[PAIR], (BAD,), BAD]),
    "structs": (Collections.echo_pair_array, [[PAIR], (PAIR,)], [[COUNTER], [None], (BAD,)]),
    "list": (Collections.echo_list, [[1, 2], (1, 2), None], [BAD, 5]),
    "list by index": (Collections.join_by_index, [[1, TEXT], (1, COUNTER)], [[1, {}], (LOST,)]),
    "enumeration": (Collections.join_all, [[1, TEXT], (1, PAIR), "xy"], [[{}], [LOST], BAD]),
    "broken enumeration": (lambda _: Collections.join_all(BrokenItems()), [], [None]),
    "enumerator": (lambda items: Collections.draw(iter(items), 2), [[1, 2, 3]], [[{}], [LOST]]),
    "stream": (Streams.echo, [io.BytesIO(b"xyz"), None], ["x", BAD]),
    "stream read": (length_of, [io.BytesIO(b"xyz")], [Broken(), BAD]),
    "by reference": (divide, [7, 8], [-1, 100, BAD]),
    "exception": (lambda value: Failures.throw("io", value), [], [TEXT, WIDE, NO_TEXT, None]),
    "nested exception": (Failures.throw_nested, [], [0, 3]),
}
# A window that a stream was given is never let go by the call, for the stream may keep it.
WINDOWS = {"stream read": TIMES}
CASES = [
    pytest.param(
        convert, values, good, WINDOWS.get(name, 0), id=f"{name} {'taken' if good else 'refused'}"
    )
    for name, (convert, taken, refused) in CONVERTERS.items()
    for values, good in ((taken, True), (refused, False))
    if values
]


@pytest.fixture(scope="module")
def managed():
    return ManagedSide("WrpInterop.Kelmor.Harness")


def call_each(convert, values, good, times):
    for value in itertools.islice(itertools.cycle(values), times):
        try:
            convert(value)
        except REFUSALS:
            assert not good
        else:
            assert good


def state(managed, values):
    """Live handles, the references of the values and of what they hold, and allocated blocks."""
    gc.collect()
    managed.collect()
    gc.collect()
    assert managed.late_releases() == 0
    parts = [part for v in values if isinstance(v, (list, tuple)) for part in v]
    # Counts of small and shared objects move with what else goes on.
    counted = [sys.getrefcount(v) for v in (*values, *parts) if sys.getrefcount(v) < 1000]
    return managed.live_handles(), counted, sys.getallocatedblocks()


@pytest.mark.parametrize(("convert", "values", "good", "windows"), CASES)
def test_nothing_is_left_behind(managed, count_case, convert, values, good, windows):
    call_each(convert, values, good, 3 * len(values) + 50)
    handles, references, blocks = state(managed, values)
    call_each(convert, values, good, TIMES)
    count_case(TIMES)
    after = state(managed, values)
    assert after[:2] == (handles, references)
    # What leaks does so each time; a few blocks come and go with caches.
    assert after[2] - blocks < TIMES // 20 + windows


def test_a_buffer_export_is_given_back(managed):
    block = bytearray(b"abc")
    for _ in range(TIMES):
        Blocks.echo(block)
        Variants.echo(block)
        with pytest.raises(TypeError):
            Scalars.echo_int32(block)
    block.append(1)
    assert len(block) == 4
