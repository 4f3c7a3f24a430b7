"""Strings over all planes, lone surrogates included, and characters."""

import struct

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from kelmor.harness import Scalars, Texts

anything = st.text(st.characters(blacklist_categories=()), max_size=60)
well_formed = st.text(st.characters(blacklist_categories=("Cs",)), max_size=200)
latin = st.text(st.characters(max_codepoint=0xFF), max_size=200)


def units_of(text):
    packed = text.encode("utf-16-le", "surrogatepass")
    return list(struct.unpack(f"<{len(packed) // 2}H", packed))


@settings(max_examples=3000, deadline=None)
@given(st.one_of(anything, well_formed, latin))
def test_a_string_arrives_as_its_utf_16_units(count_case, text):
    count_case()
    assert list(Texts.units(text)) == units_of(text)


@settings(max_examples=3000, deadline=None)
@given(st.one_of(well_formed, latin))
def test_a_well_formed_string_comes_back_equal(count_case, text):
    count_case()
    assert Texts.echo(text) == text


@settings(max_examples=1000, deadline=None)
@given(st.text(st.characters(whitelist_categories=("Cs",)), min_size=1, max_size=1), well_formed)
def test_a_lone_surrogate_does_not_come_back(count_case, surrogate, text):
    count_case()
    with pytest.raises(LookupError):
        Texts.echo("a" + surrogate + "b" + text)


def test_every_character_of_the_first_plane_crosses_alone(count_case):
    for unit in range(0x10000):
        if not 0xD800 <= unit < 0xE000:
            assert Scalars.char_unit(chr(unit)) == unit
            assert Scalars.char_from_unit(unit) == chr(unit)
            count_case()


@pytest.mark.parametrize("length", [0, 1, 15, 16, 17, 31, 32, 33, 255, 256, 4095, 4096, 100_000])
@pytest.mark.parametrize("letter", ["a", "é", "Ж", "漢", "😀"])
def test_every_length_and_width_crosses(count_case, letter, length):
    count_case()
    assert Texts.echo(letter * length) == letter * length
    assert Texts.length(letter * length) == len(units_of(letter * length))


def test_null_and_empty_stay_apart():
    assert Texts.echo(None) is None
    assert Texts.echo("") == ""
    assert Texts.is_null(None) is True
    assert Texts.is_null("") is False
