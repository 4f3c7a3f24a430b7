"""The exception bridge, both ways, over the real runtime."""

import io
import sys

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from kelmor.harness import Failures, Streams

well_formed = st.text(st.characters(blacklist_categories=("Cs",)), max_size=80)

TYPES = {
    "argument": "System.ArgumentException",
    "invalid": "System.InvalidOperationException",
    "io": "System.IO.IOException",
    "unsupported": "System.NotSupportedException",
    "memory": "System.OutOfMemoryException",
    "plain": "System.Exception",
}


@pytest.mark.parametrize("kind", TYPES)
def test_a_managed_exception_is_a_runtime_error_with_its_type_and_message(count_case, kind):
    @settings(max_examples=100, deadline=None)
    @given(well_formed)
    def check(message):
        count_case()
        with pytest.raises(RuntimeError) as caught:
            Failures.throw(kind, message)
        text = str(caught.value)
        assert text.startswith("Proxy error(")
        name, _, rest = text.removeprefix("Proxy error(").partition("): ")
        assert name in (TYPES[kind], TYPES[kind].rpartition(".")[2])
        assert rest == message

    check()


def test_a_null_message_reads_unknown(count_case):
    count_case()
    with pytest.raises(RuntimeError) as caught:
        Failures.throw("null", None)
    assert str(caught.value).endswith("): <unknown>")


@pytest.mark.parametrize("depth", [0, 1, 5, 50])
def test_of_nested_exceptions_the_outer_one_is_reported(count_case, depth):
    count_case()
    with pytest.raises(RuntimeError) as caught:
        Failures.throw_nested(depth)
    outermost = "innermost" if depth == 0 else f"level {depth - 1}"
    assert outermost in str(caught.value)


class Raising(io.RawIOBase):
    """A stream whose every read raises what it was made with."""

    def __init__(self, error):
        super().__init__()
        self._error = error

    def readable(self):
        return True

    def readinto(self, buffer):
        raise self._error


ERRORS = [
    ValueError("a value"),
    OSError(5, "an input error"),
    KeyError("missing"),
    UnicodeDecodeError("utf-8", b"\xff", 0, 1, "bad start"),
    MemoryError("too much"),
    StopIteration("over"),
    KeyboardInterrupt("stop"),
    type("Localised", (Exception,), {})("Größe – 漢字 😀"),
]


@pytest.mark.parametrize("error", ERRORS, ids=lambda e: type(e).__name__)
def test_managed_code_sees_a_python_exception_as_its_whole_text(count_case, error):
    count_case()
    message = Failures.message_of_read(Raising(error))
    assert type(error).__name__ in message
    assert "Traceback (most recent call last):" in message
    assert "in readinto" in message
    for argument in error.args:
        if isinstance(argument, str) and not isinstance(error, UnicodeDecodeError):
            assert argument in message
    assert sys.exc_info() == (None, None, None)


def test_an_exception_that_managed_code_lets_pass_comes_back_as_its_text(count_case):
    count_case()
    with pytest.raises(RuntimeError) as caught:
        Streams.read_all(Raising(ValueError("the reason")))
    assert "ValueError: the reason" in str(caught.value)


def failing(how_many, error):
    yield from range(how_many)
    raise error


def test_an_iterator_that_raises_is_told_from_one_that_ends(count_case):
    count_case()
    assert Failures.message_of_enumeration(iter([1, 2])) == ""
    assert "LookupError: broke" in Failures.message_of_enumeration(failing(3, LookupError("broke")))


class BadItems(list):
    def __getitem__(self, index):
        raise ZeroDivisionError("never asked: a list is read in place")


def test_a_list_subclass_is_read_by_its_items_in_place(count_case):
    count_case()
    assert Failures.message_of_item(BadItems([1, 2]), 1) == ""
    assert "IndexError" in Failures.message_of_item([1, 2], 7)


def test_a_call_while_an_exception_is_handled_keeps_that_one(count_case):
    count_case()
    try:
        try:
            raise ValueError("first")
        except ValueError:
            Failures.throw("io", "second")
    except RuntimeError as second:
        assert str(second.__context__) == "first"
        assert str(second).endswith("second")


def test_a_managed_null_reference_is_an_error_like_any_other(count_case):
    count_case()
    with pytest.raises(RuntimeError, match="NullReference"):
        Failures.length_of_null()
