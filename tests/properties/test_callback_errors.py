"""Python exceptions out of every kind of callback, seen by managed code and given back as text."""

import ctypes
import datetime as dt
import decimal
import io
import sys
import types
import uuid

import pytest

from kelmor.harness import Collections, Failures, Scalars, Streams, Texts, Variants

PENDING = ctypes.PYFUNCTYPE(ctypes.c_void_p)(("PyErr_Occurred", ctypes.pythonapi))


class Boom(Exception):
    pass


def boom(*arguments):
    raise Boom("größer – 漢字 😀")


def told(call, *arguments):
    """The text with which a call fails; nothing is pending, and calls go on."""
    with pytest.raises(RuntimeError) as caught:
        call(*arguments)
    assert type(caught.value) is RuntimeError
    assert PENDING() is None
    assert Scalars.echo_int32(5) == 5
    text = str(caught.value)
    assert text.startswith("Proxy error(")
    return text


def told_whole(call, *arguments):
    """The same for an error that came out of Python code, whose traceback is told as well."""
    text = told(call, *arguments)
    assert "Traceback (most recent call last):" in text
    assert "Boom: größer – 漢字 😀" in text and "in boom" in text
    return text


# Streams.

STREAM_CALLS = {
    "readinto": lambda stream: Streams.read_some(stream, 3),
    "write": lambda stream: Streams.write(stream, b"x"),
    "seek": lambda stream: Streams.seek(stream, 0, 0),
    "tell": Streams.position,
    "truncate": lambda stream: Streams.set_length(stream, 1),
    "flush": Streams.flush,
    "readable": Streams.abilities,
    "writable": Streams.abilities,
    "seekable": Streams.abilities,
}


def stream_whose(method):
    def able(self):
        return True

    body = {name: able for name in ("readable", "writable", "seekable")}
    return type("Broken", (io.RawIOBase,), body | {method: boom})()


@pytest.mark.parametrize("method", STREAM_CALLS)
def test_a_stream_method_that_raises(count_case, method):
    count_case()
    told_whole(STREAM_CALLS[method], stream_whose(method))


@pytest.mark.parametrize("method", ["seek", "tell"])
def test_a_length_that_cannot_be_reckoned(count_case, method):
    count_case()
    words = "TypeError: While calculating the length of the stream, an error occurred."
    assert words in told(Streams.length, stream_whose(method))


def test_a_read_byte_that_raises(count_case):
    count_case()
    told_whole(Streams.read_byte, stream_whose("readinto"))


def test_a_written_byte_that_raises(count_case):
    count_case()
    told_whole(Streams.write_byte, stream_whose("write"), 5)


# Iterators and collections.


class Broken:
    """Whatever is asked for by name raises; the rest answers."""

    def __init__(self, *methods):
        self.methods = methods

    def __iter__(self):
        return boom() if "iter" in self.methods else self

    def __next__(self):
        return boom() if "next" in self.methods else 1

    def __len__(self):
        return boom() if "len" in self.methods else 2


class BrokenSequence(Broken):
    def __getitem__(self, index):
        return boom() if "getitem" in self.methods else index


def test_an_iteration_that_raises(count_case):
    for method in ("iter", "next"):
        count_case()
        told_whole(Collections.join_all, Broken(method))


def test_an_enumerator_that_raises(count_case):
    count_case()
    told_whole(Collections.draw, iter(Broken("next")), 3)


def test_a_length_that_raises(count_case):
    count_case()
    told_whole(Collections.count, Broken("len"))


def test_a_sequence_that_raises(count_case):
    for method in ("len", "getitem"):
        count_case()
        told_whole(Collections.join_by_index, BrokenSequence(method))


def test_an_element_of_no_known_form(count_case):
    for items in ([1, object()], (1, object())):
        count_case()
        assert "TypeError: unknown variant type" in told(Collections.join_by_index, items)
        assert "TypeError: unknown variant type" in told(Collections.join_all, items)


class Unequal:
    """Cannot be compared."""

    __eq__ = boom
    __hash__ = object.__hash__


SEARCHES = [Collections.contains, Collections.index_of]


def test_a_comparison_that_raises(count_case):
    for items in ([Unequal()], (Unequal(),)):
        for search in SEARCHES:
            count_case()
            told_whole(search, items, 5)
    count_case()
    items = [Unequal()]
    told_whole(Collections.remove, items, 5)
    assert len(items) == 1


class BrokenList(list):
    pop = clear = boom


def test_a_change_that_raises(count_case):
    items = BrokenList([1, 2])
    for change in (Collections.clear, lambda items: Collections.remove_at(items, 0)):
        count_case()
        told_whole(change, items)
    assert items == [1, 2]


def test_an_index_that_no_item_has(count_case):
    items = [1, 2]
    for change in (
        lambda: Collections.replace(items, 2, 5),
        lambda: Collections.insert(items, 3, 5),
        lambda: Collections.remove_at(items, 2),
    ):
        count_case()
        assert "ArgumentOutOfRangeException" in told(change)
    assert items == [1, 2]


def test_an_item_that_cannot_be_made_for_a_list(count_case):
    """The value comes back out of managed code, where it has become a text that Python refuses."""
    items = [1]
    for change in (
        lambda: Collections.add_to(items, "a\ud800"),
        lambda: Collections.insert(items, 0, "a\ud800"),
        lambda: Collections.replace(items, 0, "a\ud800"),
        lambda: Collections.contains(items, "a\ud800"),
        lambda: Collections.index_of((1,), "a\ud800"),
    ):
        count_case()
        assert "LookupError: unknown error handler name ''" in told(change)
    assert items == [1]


def test_an_element_of_a_typed_array_that_cannot_be_read(count_case):
    for items in ([1, "x"], (1, "x")):
        count_case()
        words = "TypeError: integer argument expected, got 'str'"
        assert words in told(Collections.sum_array, items)
    count_case()
    told_whole(Collections.sum_array, BrokenSequence("getitem"))


def test_what_managed_code_makes_of_a_type_that_is_not_bound(count_case):
    count_case()
    with pytest.raises(TypeError, match="^unknown wrapper type$"):
        Variants.make("unbound")
    assert PENDING() is None


# Readers of values.


class Lost(dt.tzinfo):
    def utcoffset(self, when):
        boom()


class Untold(decimal.Decimal):
    as_tuple = boom


class Nameless(uuid.UUID):
    bytes_le = property(boom)


NO_DIGITS = decimal.DecimalTuple(0, (1, "x"), 0)
READ = {
    "datetime": dt.datetime(2020, 1, 1, tzinfo=Lost()),
    "time": dt.time(1, tzinfo=Lost()),
    "decimal": Untold(1),
    "uuid": Nameless(int=1),
}
READ_NATIVELY = {
    "int": (2**64, "TypeError: can't build integer value from 'int'"),
    "negative int": (-(2**63) - 1, "TypeError: can't build integer value from 'int'"),
    "timedelta": (dt.timedelta.max, "value too large or too small for .Net TimeSpan"),
    "decimal": (decimal.Decimal("1E+30"), "OverflowError: value too large for .Net decimal"),
    "not a number": (decimal.Decimal("NaN"), "OverflowError: value is not a number"),
    "decimal tuple": (NO_DIGITS, "TypeError"),
    "buffer": (memoryview(b"abcdef")[::2], "BufferError: buffer is not contiguous"),
}


@pytest.mark.parametrize("value", READ.values(), ids=READ)
def test_a_value_whose_own_code_raises(count_case, value):
    count_case()
    told_whole(Variants.type_name, value)


@pytest.mark.parametrize(("value", "words"), READ_NATIVELY.values(), ids=READ_NATIVELY)
def test_a_value_that_cannot_be_read(count_case, value, words):
    count_case()
    assert words in told(Variants.type_name, value)


def test_an_element_that_cannot_be_read(count_case):
    for value in READ.values():
        count_case()
        told_whole(Collections.join_all, [1, value])
        told_whole(Collections.join_by_index, (1, value))


# Builders of values.


def test_a_text_that_cannot_be_built(count_case):
    count_case()
    with pytest.raises(LookupError) as caught:
        Texts.from_units([0x61, 0xD800])
    assert str(caught.value) == "unknown error handler name ''"
    assert PENDING() is None


# Both at once.


def test_a_message_with_a_lone_surrogate_is_told_all_the_same(count_case):
    count_case()
    assert told(Failures.throw, "io", "a\ud800b").endswith("): a\ufffdb")


class MyInt(int):
    """Tested by an import that can be made to fail."""


@pytest.mark.skipif(sys.version_info < (3, 11), reason="EnumType is in module enum from 3.11 on")
def test_an_exception_while_an_error_is_pending(count_case, monkeypatch):
    # The converter answers 1 and leaves the error of the import pending.
    monkeypatch.setitem(sys.modules, "enum", types.ModuleType("enum"))
    count_case()
    with pytest.raises(ImportError, match="EnumType"):
        Variants.echo(MyInt(5))
    assert PENDING() is None
    with pytest.raises(RuntimeError, match=r"^Proxy error\(System.NotSupportedException\)"):
        Collections.add_to((1, 2), MyInt(5))
    assert PENDING() is None
