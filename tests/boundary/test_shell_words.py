"""The words behind every capsule that the real siblings offer, called as the family calls them."""

import ctypes

import pytest
from family import CAPSULES

ENUMS = ["kelmor.gfxtypes._C_APIT_RotateFlipType", "kelmor.gfxtypes._C_APIT_GraphicsUnit"]
STRUCTS = [name for name in CAPSULES if "_C_APITV1_" in name]
CLASSES = [name for name in CAPSULES if name not in ENUMS + STRUCTS]


def test_every_capsule_is_of_one_form():
    assert (len(CLASSES), len(STRUCTS), len(ENUMS)) == (16, 4, 2)


@pytest.mark.parametrize("capsule", CLASSES)
def test_a_class_converts_both_ways_and_passes_its_wrappers_through(in_process, capsule):
    def program(capsule):
        from shell_words import INT, OBJECT, POINTER, Words, handle_of

        words = Words(capsule)
        from_py, through = [words.word(i, INT, OBJECT, POINTER) for i in (0, 2)]
        to_py = words.word(1, OBJECT, POINTER)
        made = to_py(0x1234)
        assert type(made) is words.kind and handle_of(made) == 0x1234 and to_py(None) is None
        for convert in (from_py, through):
            out = POINTER(0x99)
            assert convert(made, ctypes.addressof(out)) == 1 and out.value == 0x1234
        # None is a null handle where a converter is asked, and no wrapper where one is passed on.
        assert from_py(None, ctypes.addressof(out)) == 1 and out.value is None
        out.value = 0x99
        assert words.refusal(through, None, out) == (0, True)
        assert words.refusal(through, 5, out) == (0, True)
        text = f"can't build {words.name} value from 'int'"
        assert words.refusal(from_py, 5, out) == (text, True)
        del made
        return words.freed()

    assert in_process(program, capsule).value == [0x1234]


@pytest.mark.parametrize("capsule", STRUCTS)
def test_a_value_type_is_a_record_in_and_an_address_out(in_process, capsule):
    def program(capsule):
        from native import VariantArg
        from shell_words import INT, OBJECT, POINTER, Words, handle_of

        words = Words(capsule)
        from_py = words.word(0, INT, OBJECT, POINTER)
        to_py = words.word(1, OBJECT, POINTER)
        held = POINTER(0x1234)
        made = to_py(ctypes.addressof(held))
        assert type(made) is words.kind and handle_of(made) == 0x1234
        held.value = None
        assert to_py(ctypes.addressof(held)) is None
        out = VariantArg(kind=-7, value=0x99)
        assert from_py(made, ctypes.addressof(out)) == 1 and (out.kind, out.value) == (1, 0x1234)
        out = VariantArg(kind=-7, value=0x99)
        for value in (None, 5):
            text = f"can't build {words.name} value from '{type(value).__name__}'"
            assert words.refusal(from_py, value, out) == (text, True)
        del made
        return words.freed()

    # Both kinds of handles go back by one name.
    assert in_process(program, capsule).value == [0x1234]


@pytest.mark.parametrize("capsule", ENUMS)
def test_an_enumeration_is_its_number(in_process, capsule):
    def program(capsule):
        import enum

        from shell_words import INT, OBJECT, POINTER, Words

        words = Words(capsule)
        from_py, to_py = words.word(0, INT, OBJECT, POINTER), words.word(1, OBJECT, INT)
        assert issubclass(words.kind, enum.IntEnum) and len(words.kind) > 1
        for member in words.kind:
            out = INT(-7)
            assert from_py(member, ctypes.addressof(out)) == 1 and out.value == int(member)
            assert to_py(int(member)) is member
        for value in (int(member), None):
            text = f"can't build {words.name} value from '{type(value).__name__}'"
            assert words.refusal(from_py, value, out) == (text, True)
        try:
            to_py(-12345)
        except ValueError as error:
            return str(error)

    name = capsule.rsplit("_", 1)[1]
    assert in_process(program, capsule).value == f"-12345 is not a valid {name}"
