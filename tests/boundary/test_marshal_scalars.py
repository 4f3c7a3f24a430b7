"""Numbers and booleans: what is an integer, which widths, which words."""

import ctypes
import enum
import math
import struct
import sys
import types

import pytest
from marshal_probe import (
    DOUBLE,
    INT,
    OBJECT,
    POINTER,
    accepted,
    address,
    convert,
    native,
    refused,
    said,
)

behaviour = pytest.mark.behaviour
long_check = native("PyShLong_Check", INT, OBJECT)
has_enum_type = hasattr(enum, "EnumType")
needs_enum_type = pytest.mark.skipif(
    not has_enum_type, reason="enum.EnumType exists from CPython 3.11 on"
)

SIGNED = {"int8": 8, "int16": 16, "int32": 32, "int64": 64}
UNSIGNED = {"uint8": 8, "uint16": 16, "uint32": 32, "uint64": 64}
TARGETS = {name: getattr(ctypes, "c_" + name) for name in [*SIGNED, *UNSIGNED]}
WIDTHS = list(TARGETS)


def converter(width):
    return f"fn_conv_py_{'ulong' if width in UNSIGNED else 'long'}_to_clr_{width}"


class MyInt(int):
    pass


class Colour(enum.IntEnum):
    RED = 1


class Flags(enum.IntFlag):
    ONE = 1


class Indexed:
    def __index__(self):
        return 7


class Metered(type):
    """An EnumType of a test's own, that says what its instances are."""

    def __instancecheck__(cls, value):
        return cls.answer()


def enum_module(answer):
    stub = types.ModuleType("enum")
    stub.EnumType = Metered("EnumType", (), {"answer": staticmethod(answer)})
    return stub


def failing():
    raise ZeroDivisionError("no answer")


@pytest.fixture
def enum_stub(monkeypatch):
    return lambda module: monkeypatch.setitem(sys.modules, "enum", module)


# What counts as an integer.


@behaviour("marshal-scalars.long-check.exact-int")
def test_an_exact_int_is_one_without_an_import(enum_stub):
    enum_stub(None)
    assert [long_check(value) for value in (0, -1, 2**200)] == [1, 1, 1]


@behaviour("marshal-scalars.long-check.bool-and-others")
@pytest.mark.parametrize(
    "value", [True, False, 1.0, "1", None, Indexed()], ids=lambda value: type(value).__name__
)
def test_bools_and_what_is_no_int_are_none(value, enum_stub):
    enum_stub(None)  # nothing is looked up for them
    assert long_check(value) == 0


@needs_enum_type
@behaviour("marshal-scalars.long-check.plain-subclass")
def test_an_instance_of_a_plain_subclass_is_none():
    assert long_check(MyInt(3)) == 0


@needs_enum_type
@behaviour("marshal-scalars.long-check.int-enum-member")
def test_a_member_of_an_int_enum_is_none():
    assert long_check(Colour.RED) == 0
    assert long_check(Flags.ONE) == 0


@pytest.mark.skipif(has_enum_type, reason="enum.EnumType exists in this interpreter")
def test_without_enum_type_a_subclass_cannot_be_checked():
    for value in (MyInt(3), Colour.RED):
        error = refused("fn_conv_py_long_to_clr_int32", value)
        assert said(error) == (ImportError, NO_ENUM_TYPE)


@behaviour("marshal-scalars.long-check.isinstance-result")
def test_the_answer_of_isinstance_stands(enum_stub):
    stub = types.ModuleType("enum")
    stub.EnumType = int
    enum_stub(stub)
    assert long_check(MyInt(3)) == 1
    assert accepted("fn_conv_py_long_to_clr_int32", MyInt(3), ctypes.c_int32()).value == 3
    enum_stub(enum_module(failing))
    assert said(refused("fn_conv_py_long_to_clr_int32", MyInt(3))) == (
        ZeroDivisionError,
        "no answer",
    )
    answer, error = convert("PyShLong_Check", MyInt(3), None)
    assert (answer, *said(error)) == (-1, ZeroDivisionError, "no answer")


@behaviour("marshal-scalars.long-check.lookup-each-call")
def test_the_class_of_enumerations_is_looked_up_each_time(enum_stub):
    answers = []
    for expected in (1, 0, 1):
        enum_stub(enum_module(lambda expected=expected: bool(expected)))
        answers.append(long_check(MyInt(3)))
    assert answers == [1, 0, 1]


NO_ENUM_TYPE = (
    "Unable to import the specified type EnumType from the module enum. "
    "The type not found or errors occurred while initializing it."
)


@behaviour("marshal-scalars.long-check.lookup-failure")
def test_a_module_without_the_class_fails_the_check_of_a_subclass(enum_stub):
    enum_stub(types.ModuleType("enum"))
    answer, error = convert("PyShLong_Check", MyInt(3), None)
    assert (answer, *said(error)) == (-1, ImportError, NO_ENUM_TYPE)
    assert (long_check(3), long_check(True)) == (1, 0)


# Integers.


def ends(width):
    bits = 8 * ctypes.sizeof(TARGETS[width])
    return (0, 2**bits - 1) if width in UNSIGNED else (-(2 ** (bits - 1)), 2 ** (bits - 1) - 1)


@behaviour("marshal-scalars.int.accepted-ranges")
@pytest.mark.parametrize("width", WIDTHS)
def test_both_ends_of_a_width_are_accepted(width):
    size = ctypes.sizeof(TARGETS[width])
    for value in ends(width):
        memory = ctypes.create_string_buffer(b"\xaa" * 16, 16)
        accepted(converter(width), value, memory)
        assert memory.raw[:size] == value.to_bytes(size, "little", signed=width in SIGNED)
        assert memory.raw[size:] == b"\xaa" * (16 - size)


@behaviour("marshal-scalars.int.signed-range-message")
@pytest.mark.parametrize("width", ["int8", "int16", "int32"])
def test_a_signed_value_beyond_its_width_is_named(width):
    low, high = ends(width)
    for value in (low - 1, high + 1, 2**63 - 1, -(2**63)):
        assert said(refused(converter(width), value)) == (
            OverflowError,
            f"value '{value}' is out of the {width.upper()} range",
        )


@behaviour("marshal-scalars.int.unsigned-range-message")
@pytest.mark.parametrize("width", ["uint8", "uint16", "uint32"])
def test_an_unsigned_value_beyond_its_width_is_named(width):
    for value in (ends(width)[1] + 1, 2**64 - 1):
        assert said(refused(converter(width), value)) == (
            OverflowError,
            f"value '{value}' is out of the {width.upper()} range",
        )


def interpreters_words(reader, value):
    """What the interpreter's own function says of the value."""
    function = ctypes.PYFUNCTYPE(INT, OBJECT)((reader, ctypes.pythonapi))
    with pytest.raises(Exception) as caught:
        function(value)
    return said(caught.value)


@behaviour("marshal-scalars.int.64-bit-overflow")
@pytest.mark.parametrize(
    ("width", "reader", "value"),
    [
        ("int64", "PyLong_AsLongLong", 2**63),
        ("int64", "PyLong_AsLongLong", -(2**63) - 1),
        ("uint64", "PyLong_AsUnsignedLongLong", 2**64),
    ],
)
def test_beyond_64_bits_the_interpreter_has_the_word(width, reader, value):
    error = said(refused(converter(width), value))
    assert error == interpreters_words(reader, value)
    assert error[0] is OverflowError and "INT64" not in error[1]


@behaviour("marshal-scalars.int.beyond-reader")
@pytest.mark.parametrize("width", ["int8", "int16", "int32", "uint8", "uint16", "uint32"])
def test_beyond_the_reader_the_range_is_not_named(width):
    signed = width in SIGNED
    reader = "PyLong_AsLong" if signed else "PyLong_AsUnsignedLong"
    value = 2**63 if signed else 2**64
    error = said(refused(converter(width), value))
    assert error == interpreters_words(reader, value)
    assert error[0] is OverflowError and "out of the" not in error[1]
    if not signed:
        assert said(refused(converter(width), 2**64 - 1)) == (
            OverflowError,
            f"value '18446744073709551615' is out of the {width.upper()} range",
        )


@behaviour("marshal-scalars.int.negative-unsigned")
@pytest.mark.parametrize("width", UNSIGNED)
def test_a_negative_number_is_the_interpreters_overflow(width):
    reader = "PyLong_AsUnsignedLongLong" if width == "uint64" else "PyLong_AsUnsignedLong"
    error = said(refused(converter(width), -1))
    assert error == interpreters_words(reader, -1)
    assert error[0] is OverflowError and "out of the UINT" not in error[1]


@behaviour("marshal-scalars.int.minus-one-signed")
@pytest.mark.parametrize("width", SIGNED)
def test_minus_one_is_a_value(width):
    assert accepted(converter(width), -1, TARGETS[width]()).value == -1


@behaviour("marshal-scalars.int.type-message")
@pytest.mark.parametrize("width", WIDTHS)
@pytest.mark.parametrize(
    ("value", "name"),
    [
        (True, "bool"),
        (1.0, "float"),
        pytest.param(Colour.RED, "Colour", marks=needs_enum_type),
        pytest.param(MyInt(1), "MyInt", marks=needs_enum_type),
        (None, "NoneType"),
        ("1", "str"),
        (Indexed(), "Indexed"),
    ],
    ids=lambda value: type(value).__name__,
)
def test_what_is_no_integer_is_refused_by_its_type(width, value, name):
    assert said(refused(converter(width), value)) == (
        TypeError,
        f"integer argument expected, got '{name}'",
    )


@behaviour("marshal-scalars.int.check-error-passes")
@pytest.mark.parametrize("width", WIDTHS)
def test_a_failed_check_leaves_its_error(width, enum_stub):
    enum_stub(enum_module(failing))
    assert said(refused(converter(width), MyInt(1))) == (ZeroDivisionError, "no answer")


@behaviour("marshal-scalars.int.target-untouched")
@pytest.mark.parametrize("width", WIDTHS)
def test_a_refusal_leaves_the_target(width):
    for value in (True, "x", ends(width)[1] + 1, 2**100, -(2**100)):
        memory = ctypes.create_string_buffer(b"\xaa" * 16, 16)
        refused(converter(width), value, memory)
        assert memory.raw == b"\xaa" * 16


# Booleans.


@behaviour("marshal-scalars.bool.exact")
@pytest.mark.parametrize("value", [True, False])
def test_a_bool_is_one_byte(value):
    memory = ctypes.create_string_buffer(b"\xaa" * 3, 3)
    accepted("fn_conv_py_bool_to_clr_bool", value, ctypes.addressof(memory) + 1)
    assert memory.raw == bytes([0xAA, value, 0xAA])


@behaviour("marshal-scalars.bool.refused")
@pytest.mark.parametrize(
    ("value", "name"), [(0, "int"), (1, "int"), (None, "NoneType"), (1.0, "float"), ("", "str")]
)
def test_nothing_but_a_bool_is_a_bool(value, name):
    memory = ctypes.create_string_buffer(b"\xaa", 1)
    error = refused("fn_conv_py_bool_to_clr_bool", value, memory)
    assert said(error) == (TypeError, f"can't build bool from '{name}'")
    assert memory.raw == b"\xaa"


@behaviour("marshal-scalars.bool.read-truth-value")
def test_a_bool_is_read_by_its_truth():
    read = native("fn_read_py_bool", INT, OBJECT)
    assert [read(value) for value in (True, False, [0], 0, "", 5)] == [1, 0, 1, 0, 0, 1]


# Real numbers.

REALS = {
    "fn_conv_py_float_to_clr_double": ctypes.c_double,
    "fn_conv_py_float_to_clr_float": ctypes.c_float,
}


class MyFloat(float):
    pass


def real(name, value):
    return accepted(name, value, REALS[name]()).value


def as_float(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


@behaviour("marshal-scalars.double.float")
def test_a_float_passes_as_it_is():
    name = "fn_conv_py_float_to_clr_double"
    for value in (1.5, -1.0, math.inf, -math.inf, -0.0, MyFloat(2.5)):
        assert struct.pack("<d", real(name, value)) == struct.pack("<d", value)
    assert math.isnan(real(name, math.nan))


@behaviour("marshal-scalars.double.int")
@pytest.mark.parametrize(
    ("value", "expected"),
    [
        (1, 1.0),
        (-1, -1.0),
        (-9223372036854775808, -9.223372036854775808e18),
        (9007199254740993, 9007199254740992.0),
    ],
)
def test_an_int_becomes_a_double(value, expected):
    assert real("fn_conv_py_float_to_clr_double", value) == expected


REFUSED_REALS = [
    (True, "bool"),
    ("1", "str"),
    (None, "NoneType"),
    pytest.param(MyInt(1), "MyInt", marks=needs_enum_type),
]


@behaviour("marshal-scalars.double.refused")
@pytest.mark.parametrize(("value", "name"), REFUSED_REALS)
def test_what_is_no_number_is_refused(value, name):
    memory = ctypes.create_string_buffer(b"\xaa" * 8, 8)
    error = refused("fn_conv_py_float_to_clr_double", value, memory)
    assert said(error) == (TypeError, f"numeric argument expected, got '{name}'")
    assert memory.raw == b"\xaa" * 8


@behaviour("marshal-scalars.double.check-error-passes")
@pytest.mark.parametrize("name", REALS)
def test_a_failed_integer_check_is_the_error_of_a_real(name, enum_stub):
    enum_stub(enum_module(failing))
    assert said(refused(name, MyInt(1))) == (ZeroDivisionError, "no answer")


@behaviour("marshal-scalars.double.unsigned-halving")
@pytest.mark.parametrize(
    ("value", "expected"),
    [
        (18446744073709551615, 1.8446744073709552e19),
        (9223372036854775808, 9.223372036854775808e18),
        (9223372036854775809, 9.223372036854775808e18),
        (9223372036854776833, 9.223372036854777856e18),
        (9223372036854776832, 9.223372036854775808e18),
    ],
)
def test_an_int_with_the_top_bit_is_halved_and_doubled(value, expected):
    assert real("fn_conv_py_float_to_clr_double", value) == expected == float(value)


@behaviour("marshal-scalars.double.int-too-large")
@pytest.mark.parametrize("name", REALS)
@pytest.mark.parametrize("value", [2**64, -(2**63) - 1])
def test_an_int_beyond_64_bits_is_no_real(name, value):
    error = said(refused(name, value))
    assert error == interpreters_words("PyLong_AsUnsignedLongLong", value)
    assert error[0] is OverflowError


@behaviour("marshal-scalars.float.narrowing")
def test_a_float_is_narrowed_without_a_range():
    name = "fn_conv_py_float_to_clr_float"
    assert real(name, 1e300) == math.inf
    assert real(name, -1e300) == -math.inf
    assert real(name, 0.1) == 0.10000000149011612


@pytest.mark.parametrize("name", [*REALS, "fn_conv_py_long_to_clr_int32"])
def test_a_value_that_reads_as_a_failure_fails_with_an_earlier_error(name, enum_stub):
    # The first unit passes with the error of its look-up pending.
    enum_stub(types.ModuleType("enum"))
    parse = ctypes.PYFUNCTYPE(INT, OBJECT, ctypes.c_char_p, *[POINTER] * 4)(
        ("PyArg_ParseTuple", ctypes.pythonapi)
    )
    first = address("fn_conv_py_variant_to_clr_variant"), ctypes.create_string_buffer(16)
    for value, written in ((-1, False), (5, True)):
        value = float(value) if name in REALS else value
        memory = ctypes.create_string_buffer(b"\xaa" * 8, 8)
        with pytest.raises(ImportError):
            parse(
                (MyInt(1), value),
                b"O&O&",
                first[0],
                ctypes.addressof(first[1]),
                address(name),
                ctypes.addressof(memory),
            )
        assert (memory.raw != b"\xaa" * 8) == written


@behaviour("marshal-scalars.float.same-tests")
def test_the_narrow_converter_takes_and_refuses_the_same():
    name = "fn_conv_py_float_to_clr_float"
    assert real(name, 1) == 1.0
    assert real(name, -(2**63)) == -(2.0**63)
    assert real(name, 18446744073709551615) == as_float(1.8446744e19)
    assert real(name, MyFloat(2.5)) == 2.5
    for value, type_name in [(True, "bool"), ("1", "str"), (None, "NoneType")]:
        assert said(refused(name, value)) == (
            TypeError,
            f"numeric argument expected, got '{type_name}'",
        )


@behaviour("marshal-scalars.double.read")
def test_a_double_is_read_from_whatever_floats():
    class Floats:
        def __float__(self):
            return 2.5

    read = native("fn_read_py_double", INT, OBJECT, POINTER)
    out = DOUBLE()
    for value, expected in [(1.5, 1.5), (3, 3.0), (Floats(), 2.5), (-1.0, -1.0), (True, 1.0)]:
        assert read(value, ctypes.byref(out)) == 1
        assert out.value == expected
    with pytest.raises(TypeError) as caught:
        read("x", ctypes.byref(out))
    assert said(caught.value) == interpreters_words("PyFloat_AsDouble", "x")
    assert out.value == 1.0


# The narrowest width.

_read_vers_long = native("fn_read_py_vers_long", INT, OBJECT, POINTER)


def read_vers_long(value):
    out = ctypes.c_uint64(0x5555555555555555)
    return _read_vers_long(value, ctypes.byref(out)), out.value


@behaviour("marshal-scalars.vers-long.int32")
@pytest.mark.parametrize("value", [0, 1, -1, 2**31 - 1, -(2**31)])
def test_the_narrowest_width_is_32_bits(value):
    assert read_vers_long(value) == (1, value % 2**64)


@behaviour("marshal-scalars.vers-long.int64", "marshal-scalars.vers-long.no-error-left")
@pytest.mark.parametrize("value", [2**31, -(2**31) - 1, 2**63 - 1, -(2**63)])
def test_the_next_width_is_64_bits(value):
    assert read_vers_long(value) == (2, value % 2**64)


@behaviour("marshal-scalars.vers-long.uint64", "marshal-scalars.vers-long.no-error-left")
@pytest.mark.parametrize("value", [2**63, 2**64 - 1])
def test_the_last_width_is_unsigned(value):
    # ctypes raises what is left pending.
    assert read_vers_long(value) == (3, value)


@behaviour("marshal-scalars.vers-long.failure")
@pytest.mark.parametrize(
    ("value", "name"), [(2**64, "int"), (-(2**63) - 1, "int"), ("x", "str"), (None, "NoneType")]
)
def test_what_fits_no_width_is_no_integer(value, name):
    with pytest.raises(TypeError) as caught:
        read_vers_long(value)
    assert str(caught.value) == f"can't build integer value from '{name}'"
    result, error = convert("fn_read_py_vers_long", value, ctypes.c_uint64())
    assert result == 0 and error is not None
