"""Integers at the edges of each width, doubles and singles by their bits."""

import math
import struct

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from kelmor.harness import Scalars

WIDTHS = [
    ("echo_int8", -(2**7), 2**7 - 1, "INT8"),
    ("echo_int16", -(2**15), 2**15 - 1, "INT16"),
    ("echo_int32", -(2**31), 2**31 - 1, "INT32"),
    ("echo_int64", -(2**63), 2**63 - 1, None),
    ("echo_u_int8", 0, 2**8 - 1, "UINT8"),
    ("echo_u_int16", 0, 2**16 - 1, "UINT16"),
    ("echo_u_int32", 0, 2**32 - 1, "UINT32"),
    ("echo_u_int64", 0, 2**64 - 1, None),
]


@pytest.mark.parametrize(("name", "lowest", "highest", "label"), WIDTHS, ids=[w[0] for w in WIDTHS])
def test_an_integer_passes_exactly_inside_its_width(count_case, name, lowest, highest, label):
    echo = getattr(Scalars, name)

    @settings(max_examples=1000, deadline=None)
    @given(
        st.one_of(
            st.integers(lowest - 3, lowest + 3),
            st.integers(highest - 3, highest + 3),
            st.integers(lowest, highest),
            st.integers(),
        )
    )
    def check(value):
        count_case()
        if lowest <= value <= highest:
            assert echo(value) == value
            return
        with pytest.raises(OverflowError) as refusal:
            echo(value)
        inside_long = -(2**63) <= value < 2**63 if lowest else 0 <= value < 2**64
        if label and inside_long:
            assert str(refusal.value) == f"value '{value}' is out of the {label} range"

    check()


def bits_of(value):
    return struct.unpack("<Q", struct.pack("<d", value))[0]


@settings(max_examples=4000, deadline=None)
@given(st.integers(0, 2**64 - 1))
def test_a_double_keeps_every_bit(count_case, bits):
    count_case()
    value = struct.unpack("<d", struct.pack("<Q", bits))[0]
    assert Scalars.double_bits(value) == bits_of(value)
    assert bits_of(Scalars.double_from_bits(bits)) == bits_of(value)
    assert bits_of(Scalars.echo_double(value)) == bits_of(value)


@settings(max_examples=4000, deadline=None)
@given(st.floats(allow_nan=False))
def test_a_float_is_narrowed_as_the_machine_narrows_it(count_case, value):
    count_case()
    try:
        narrowed = struct.unpack("<f", struct.pack("<f", value))[0]
    except OverflowError:
        narrowed = math.copysign(math.inf, value)
    assert Scalars.echo_single(value) == narrowed


@settings(max_examples=3000, deadline=None)
@given(st.integers(-(2**63), 2**64 - 1))
def test_an_integer_becomes_the_nearest_double(count_case, value):
    count_case()
    assert Scalars.echo_double(value) == float(value)


@settings(max_examples=1000, deadline=None)
@given(st.one_of(st.integers(max_value=-(2**63) - 1), st.integers(min_value=2**64)))
def test_an_integer_beyond_64_bits_is_no_double(count_case, value):
    count_case()
    with pytest.raises(OverflowError):
        Scalars.echo_double(value)
