"""What managed code keeps is its own: nothing that happens to the Python object reaches it."""

import datetime as dt
import decimal
import uuid

import pytest

from kelmor.harness import Kept

VALUES = [
    ("bool", True),
    ("int32", -(2**31)),
    ("double", -0.5),
    ("text", "größer 漢字 😀"),
    ("text", ""),
    ("text", None),
    ("block", bytearray(range(256))),
    ("block", None),
    ("date", dt.datetime(2024, 2, 29, 12, 30, 15, 123456)),
    ("span", dt.timedelta(days=-1, microseconds=7)),
    ("decimal", decimal.Decimal("-12.340")),
    ("guid", uuid.UUID(int=2**127 + 5)),
    ("any", 2**63),
    ("any", "text"),
    ("any", None),
]


@pytest.mark.parametrize(("form", "value"), VALUES, ids=lambda v: str(v)[:12])
def test_a_value_is_given_back_as_it_was_taken(count_case, form, value):
    count_case()
    take, give = getattr(Kept, f"take_{form}"), getattr(Kept, f"give_{form}")
    assert take(value) is None
    given = give()
    assert given == value
    assert type(given) is type(value)
    assert str(give()) == str(value)


def test_a_kept_block_is_a_copy(count_case):
    count_case()
    block = bytearray(b"abc")
    Kept.take_block(block)
    block[:] = b"xyz!"
    assert Kept.give_block() == b"abc"
    Kept.give_block()[0] = 0
    assert Kept.give_block() == b"abc"


def test_nothing_goes_in_and_nothing_comes_out(count_case):
    count_case()
    assert Kept.nothing() is None
