"""Any Python value for managed code: its kind, and the callbacks that read and make values."""

import array
import collections
import ctypes
import datetime as dt
import decimal
import enum
import math
import struct
import sys
import uuid

import pytest
from marshal_probe import (
    INT,
    INT64,
    OBJECT,
    POINTER,
    PyStringArg,
    VariantArg,
    accepted,
    address,
    convert,
    identity,
    native,
    refused,
    said,
    text_of,
)

behaviour = pytest.mark.behaviour
VARIANT = "fn_conv_py_variant_to_clr_variant"
needs_enum_type = pytest.mark.skipif(
    not hasattr(enum, "EnumType"), reason="enum.EnumType exists from CPython 3.11 on"
)


def sub(base, *args):
    """An instance of a subclass made for it."""
    return type("My" + base.__name__, (base,), {})(*args)


class Colour(enum.IntEnum):
    RED = 1


Pair = collections.namedtuple("Pair", "a b")


def kind_of(value):
    arg = accepted(VARIANT, value, VariantArg(-7, 0x5555))
    assert arg.value == identity(value)
    return arg.kind


def kinds(kind, name, *values):
    return [
        pytest.param(value, kind, id=f"{name}-{type(value).__name__}-{index}", marks=mark)
        for index, value in enumerate(values)
        for mark in [behaviour(f"marshal-variant.kind.{name}")]
    ]


@behaviour(
    "marshal-records.variant.general-kinds",
    "marshal-records.variant.general-value",
    "marshal-variant.value.borrowed",
)
@pytest.mark.parametrize(
    ("value", "kind"),
    [
        *kinds(0, "none", None),
        *kinds(5, "bool", True, False),
        *kinds(6, "int", 1, 0, -1, 2**100),
        *kinds(7, "float", 1.0, math.nan, sub(float, 1.5)),
        *kinds(9, "decimal-tuple", decimal.DecimalTuple(0, (1,), 0)),
        *kinds(8, "decimal", decimal.Decimal(1), sub(decimal.Decimal, 1)),
        *kinds(14, "uuid", uuid.UUID(int=1), sub(uuid.UUID, "0" * 32)),
        *kinds(13, "timedelta", dt.timedelta(1), sub(dt.timedelta, 1)),
        *kinds(10, "datetime", dt.datetime(2020, 1, 1), sub(dt.datetime, 2020, 1, 1)),
        *kinds(11, "date", dt.date(2020, 1, 1), sub(dt.date, 2020, 1, 1)),
        *kinds(12, "time", dt.time(1), sub(dt.time, 1)),
        *kinds(3, "str", "x", "", sub(str, "x")),
        *kinds(4, "bytes", b"x", b"", sub(bytes, b"x")),
        *kinds(
            4,
            "bytearray-memoryview",
            bytearray(b"x"),
            sub(bytearray, b"x"),
            memoryview(b"x"),
            memoryview(b"abc")[::2],
        ),
        *kinds(15, "list", [], [1]),
        *kinds(16, "tuple", (), (1,)),
    ],
)
def test_a_value_has_a_kind(value, kind):
    assert kind_of(value) == kind


@behaviour("marshal-records.variant.value-borrowed", "marshal-variant.value.borrowed")
@pytest.mark.parametrize(
    "value",
    [12345678, 1.5, "".join(["a ", "text"]), b"by" * 5, [1], (1, object()), decimal.Decimal(5)],
    ids=lambda value: type(value).__name__,
)
def test_a_value_is_lent_without_a_reference(value):
    arg = VariantArg()
    before = sys.getrefcount(value)
    accepted(VARIANT, value, arg)
    assert sys.getrefcount(value) == before
    assert arg.value == identity(value)


@needs_enum_type
@behaviour("marshal-variant.kind.int-subclass", "marshal-records.variant.general-kinds")
@pytest.mark.parametrize("value", [sub(int, 3), Colour.RED], ids=["plain", "enumeration"])
def test_an_instance_of_an_int_subclass_is_no_integer(value):
    assert said(refused(VARIANT, value)) == (TypeError, "unknown variant type")


@pytest.mark.skipif(hasattr(enum, "EnumType"), reason="enum.EnumType exists in this interpreter")
@pytest.mark.parametrize("value", [sub(int, 3), Colour.RED], ids=["plain", "enumeration"])
def test_without_enum_type_an_int_subclass_passes_with_an_error_pending(value):
    arg = VariantArg(-7)
    result, error = convert(VARIANT, value, arg)
    assert (result, arg.kind, arg.value) == (1, 6, identity(value))
    assert said(error) == (
        ImportError,
        "Unable to import the specified type EnumType from the module enum. "
        "The type not found or errors occurred while initializing it.",
    )


@behaviour("marshal-variant.kind.int-check-failure")
def test_a_failed_integer_check_passes_with_its_error_pending(monkeypatch):
    monkeypatch.setitem(sys.modules, "enum", None)
    arg = VariantArg(-7)
    result, error = convert(VARIANT, sub(int, 3), arg)
    assert (result, arg.kind) == (1, 6)
    assert isinstance(error, ImportError)


UNKNOWN = [object(), {}, set(), 1j, array.array("i"), range(3), Ellipsis, type]


@behaviour("marshal-variant.kind.unknown")
@pytest.mark.parametrize("value", UNKNOWN, ids=lambda value: type(value).__name__)
def test_anything_else_is_unknown(value):
    assert said(refused(VARIANT, value)) == (TypeError, "unknown variant type")


@behaviour("marshal-variant.kind.list-tuple-subclass")
@pytest.mark.parametrize(
    "value", [sub(list), sub(tuple), Pair(1, 2)], ids=["list", "tuple", "named"]
)
def test_instances_of_list_and_tuple_subclasses_are_unknown(value):
    assert said(refused(VARIANT, value)) == (TypeError, "unknown variant type")


@behaviour("marshal-variant.value.stored-first", "marshal-records.partial.variant")
def test_the_object_is_stored_before_any_test():
    value = object()
    arg = VariantArg(-7, 0x5555)
    assert said(refused(VARIANT, value, arg)) == (TypeError, "unknown variant type")
    assert arg.value == identity(value)


@behaviour("marshal-variant.lookup.each-call")
@pytest.mark.parametrize("module", ["decimal", "uuid"])
def test_the_classes_are_looked_up_each_time(module, monkeypatch):
    with monkeypatch.context() as patch:
        patch.setitem(sys.modules, module, None)
        assert isinstance(refused(VARIANT, "x"), ImportError)
    assert kind_of("x") == 3


@behaviour("marshal-variant.lookup.not-reached")
def test_numbers_need_no_look_up(monkeypatch):
    for module in ("decimal", "uuid", "datetime", "enum"):
        monkeypatch.setitem(sys.modules, module, None)
    assert [kind_of(value) for value in (None, True, 1, 1.0)] == [0, 5, 6, 7]


class Anything(type):
    """A class whose instances are all objects."""

    def __instancecheck__(cls, value):
        return True


ANY = Anything("Any", (), {})
MANY = [dt.timedelta(1), dt.datetime(2020, 1, 1), "x", b"x", bytearray(), [], (), object()]


@behaviour("marshal-variant.kind.decimal-tuple", "marshal-variant.kind.decimal")
def test_the_first_test_that_hits_decides(monkeypatch):
    number, triple, guid = decimal.Decimal(1), decimal.DecimalTuple(0, (1,), 0), uuid.UUID(int=1)
    plain = [None, True, 1, 1.5]
    monkeypatch.setattr(uuid, "UUID", ANY)
    assert [kind_of(value) for value in plain] == [0, 5, 6, 7]
    assert [kind_of(value) for value in (triple, number, guid)] == [9, 8, 14]
    assert {kind_of(value) for value in MANY} == {14}
    monkeypatch.setattr(decimal, "Decimal", ANY)
    assert [kind_of(value) for value in plain] == [0, 5, 6, 7]
    assert {kind_of(value) for value in [number, guid, *MANY]} == {8}
    assert kind_of(triple) == 9
    monkeypatch.setattr(decimal, "DecimalTuple", ANY)
    assert [kind_of(value) for value in plain] == [0, 5, 6, 7]
    assert {kind_of(value) for value in [number, guid, triple, *MANY]} == {9}


@behaviour("marshal-variant.lookup.each-call")
def test_look_ups_fail_in_their_order(monkeypatch):
    def first_missing(value, *missing):
        with monkeypatch.context() as patch:
            for module in missing:
                patch.setitem(sys.modules, module, None)
            error = refused(VARIANT, value)
        assert isinstance(error, ImportError)
        return [module for module in missing if module in str(error)]

    for value in MANY:
        assert first_missing(value, "decimal", "uuid", "datetime") == ["decimal"]
        assert first_missing(value, "uuid", "datetime") == ["uuid"]
        assert first_missing(value, "datetime") == ["datetime"]
    assert first_missing(uuid.UUID(int=1), "decimal", "uuid") == ["decimal"]


# The tables.


def slots(name, count):
    return list((ctypes.c_void_p * count).from_address(address(name)))


READ = [
    "fn_read_py_string",
    "fn_read_py_bool",
    "fn_read_py_vers_long",
    "fn_read_py_double",
    "fn_read_py_decimal",
    "fn_read_py_decimal_tuple",
    "fn_read_py_vers_datetime",
    "fn_read_py_vers_date",
    "fn_read_py_vers_time",
    "fn_read_py_datetimedelta",
    "fn_read_py_guid",
]
WRITE = [
    "fn_write_py_tpo",
    "fn_write_py_bool",
    "fn_write_py_long",
    "fn_write_py_ulong",
    "fn_write_py_longlong",
    "fn_write_py_ulonglong",
    "fn_write_py_double",
    "fn_write_py_decimal",
    "fn_write_py_date_time",
    "fn_write_py_date_time_offset",
    "fn_write_py_datetimedelta",
    "fn_write_py_timezone",
    "fn_write_py_guid",
    "fn_write_py_char",
]
WRAPPER_TABLES = [
    "m_py_read_callbacks",
    "m_py_write_callbacks",
    "m_py_buffer_callbacks",
    "m_py_tpo_api_callbacks",
]


@pytest.mark.parametrize(
    ("table", "functions"),
    [
        pytest.param(
            "m_py_read_callbacks", READ, marks=behaviour("marshal-variant.tables.read"), id="read"
        ),
        pytest.param(
            "m_py_write_callbacks",
            WRITE,
            marks=behaviour("marshal-variant.tables.write"),
            id="write",
        ),
        pytest.param(
            "m_py_obj_api_callbacks",
            ["fn_get_py_none", "fn_xinc_ref", "fn_xdec_ref", None],
            marks=behaviour("marshal-variant.tables.obj-api"),
            id="objects",
        ),
        pytest.param(
            "m_py_tpo_api_callbacks",
            ["fn_try_write_py_tpo", None, None],
            marks=behaviour("marshal-variant.tables.tpo"),
            id="wrappers",
        ),
    ],
)
def test_a_table_holds_its_functions_in_order(table, functions):
    expected = [None if name is None else address(name) for name in functions]
    assert slots(table, len(functions)) == expected


@behaviour("marshal-variant.tables.wrapper")
def test_the_table_of_tables_has_nine_and_ends():
    tables = slots("m_all_py_wrapper_callbacks", 11)
    assert tables[:4] == [address(name) for name in WRAPPER_TABLES]
    assert tables[9:] == [None, None]
    # The others by the first function of each, and all of them different.
    firsts = [
        "fn_clbk_iter_next",
        "fn_clbk_ucol_list_length",
        "fn_clbk_olist_get_item",
        "fn_clbk_oseq_get_item",
    ]
    for table, first in zip(tables[4:8], firsts):
        assert ctypes.c_void_p.from_address(table).value == address(first)
    assert all(tables[:9]) and len(set(tables[:9])) == 9
    rawio = [address("fn_clbk_rawio_" + name) for name in ("write", "write_byte", "read")]
    assert list((ctypes.c_void_p * 3).from_address(tables[8])) == rawio
    assert native("get_all_py_wrapper_callbacks", POINTER)() == address(
        "m_all_py_wrapper_callbacks"
    )


# Objects.

xinc_ref = native("fn_xinc_ref", None, POINTER)
xdec_ref = native("fn_xdec_ref", None, POINTER)


@behaviour("marshal-variant.api.none")
def test_none_is_lent():
    before = sys.getrefcount(None)
    none = native("fn_get_py_none", POINTER)
    assert {none() for _ in range(1000)} == {identity(None)}
    assert abs(sys.getrefcount(None) - before) < 100


@behaviour("marshal-variant.api.xinc-ref")
def test_a_reference_is_added():
    value = object()
    before = sys.getrefcount(value)
    xinc_ref(identity(value))
    assert sys.getrefcount(value) == before + 1
    ctypes.pythonapi.Py_DecRef(OBJECT(value))
    xinc_ref(None)


class Mortal:
    """Says when it goes."""

    gone = 0

    def __del__(self):
        Mortal.gone += 1


@behaviour("marshal-variant.api.xdec-ref")
def test_a_reference_is_dropped():
    value = Mortal()
    before = sys.getrefcount(value)
    xinc_ref(identity(value))
    xdec_ref(identity(value))
    assert sys.getrefcount(value) == before
    xdec_ref(None)
    Mortal.gone = 0
    where = identity(value)
    xinc_ref(where)
    del value
    assert Mortal.gone == 0
    xdec_ref(where)
    assert Mortal.gone == 1


# Reading. Each function is called through its slot, as the managed side does.


def reader(slot):
    return ctypes.PYFUNCTYPE(INT, OBJECT, POINTER)(slots("m_py_read_callbacks", 11)[slot])


def read(slot, value, size):
    """The result, and the bytes that were written; the byte behind them must stay."""
    memory = ctypes.create_string_buffer(b"\xaa" * (size + 1), size + 1)
    result = reader(slot)(value, ctypes.addressof(memory))
    assert memory.raw[size] == 0xAA
    return result, memory.raw[:size]


def words(*numbers):
    return struct.pack(f"<{len(numbers)}q", *numbers)


TWO = dt.timezone(dt.timedelta(hours=2))
READS = [
    (2, 5, 8, 1, words(5)),
    (3, 1.5, 8, 1, struct.pack("<d", 1.5)),
    (4, decimal.Decimal("-1.5"), 16, 1, struct.pack("<4I", 15, 0, 0, 0x80010000)),
    (5, decimal.DecimalTuple(0, (1, 5), -1), 16, 1, struct.pack("<4I", 15, 0, 0, 0x10000)),
    (6, dt.datetime(1, 1, 1, 1), 8, 1, words(36000000000)),
    (6, dt.datetime(1, 1, 1, 1, tzinfo=TWO), 16, 2, words(36000000000, 72000000000)),
    (7, dt.date(1, 1, 2), 8, 1, words(864000000000)),
    (8, dt.time(1), 8, 1, words(36000000000)),
    (8, dt.time(1, tzinfo=TWO), 16, 2, words(36000000000, 72000000000)),
    (9, dt.timedelta(1), 8, 1, words(864000000000)),
    (10, uuid.UUID(bytes_le=bytes(range(16))), 16, 1, bytes(range(16))),
]


@behaviour("marshal-variant.read.arguments", "marshal-variant.read.results")
@pytest.mark.parametrize(("slot", "value", "size", "result", "content"), READS)
def test_a_value_is_read_into_its_block(slot, value, size, result, content):
    assert read(slot, value, size) == (result, content)


@behaviour("marshal-variant.read.arguments", "marshal-variant.read.results")
def test_texts_and_truths_are_read():
    arg = PyStringArg()
    assert reader(0)("é€", ctypes.addressof(arg)) == 1
    assert text_of(arg) == "é€"
    truth = ctypes.PYFUNCTYPE(INT, OBJECT)(slots("m_py_read_callbacks", 2)[1])
    assert [truth(value) for value in (True, False)] == [1, 0]


class Broken:
    def __float__(self):
        raise ZeroDivisionError("no number")


@behaviour("marshal-variant.read.results")
@pytest.mark.parametrize(
    ("slot", "value"),
    [
        (2, "x"),
        (3, Broken()),
        (4, decimal.Decimal("NaN")),
        (5, decimal.DecimalTuple(0, (1,), "F")),
        (9, dt.timedelta.max),
        (10, object()),
    ],
)
def test_a_value_that_cannot_be_read_is_zero_and_an_error(slot, value):
    result, error = convert(READ[slot], value, ctypes.create_string_buffer(16))
    assert result == 0 and error is not None


@behaviour("marshal-variant.read.vers-long.widths")
def test_an_integer_is_read_in_the_narrowest_width():
    for value, width in [(2147483647, 1), (2147483648, 2), (2**63, 3)]:
        assert read(2, value, 8) == (width, value.to_bytes(8, "little"))
    with pytest.raises(TypeError):
        read(2, 2**64, 8)
    assert convert(READ[2], 2**64, ctypes.create_string_buffer(8))[0] == 0


# Making.


def maker(slot, *arguments):
    return ctypes.PYFUNCTYPE(OBJECT, *arguments)(slots("m_py_write_callbacks", 14)[slot])


@behaviour("marshal-variant.write.bool")
def test_a_bool_is_made_of_the_low_byte():
    make = maker(1, ctypes.c_int32)
    assert [make(value) for value in (1, 0x101, -1)] == [True] * 3
    assert [make(value) for value in (0, 0x100, -256)] == [False] * 3
    assert type(make(1)) is bool
    before = sys.getrefcount(True)
    kept = [make(1) for _ in range(1000)]
    # A count that does not move is that of an immortal object.
    grown = sys.getrefcount(True) - before
    assert grown == 0 or 990 < grown < 1010
    del kept


def made_whole(slot, kind, *values):
    make = maker(slot, kind)
    for value in values:
        assert type(make(value)) is int and make(value) == value


@behaviour("marshal-variant.write.long")
def test_an_int_is_made():
    made_whole(2, ctypes.c_int32, -(2**31), 2**31 - 1, 0)


@behaviour("marshal-variant.write.ulong")
def test_an_unsigned_int_is_made():
    made_whole(3, ctypes.c_uint32, 2**32 - 1, 0)


@behaviour("marshal-variant.write.longlong")
def test_a_long_int_is_made():
    made_whole(4, ctypes.c_int64, -(2**63), 2**63 - 1)


@behaviour("marshal-variant.write.ulonglong")
def test_an_unsigned_long_int_is_made():
    made_whole(5, ctypes.c_uint64, 2**64 - 1, 2**63)


@behaviour("marshal-variant.write.double")
@pytest.mark.parametrize("value", [0.1, -0.0, math.inf, -math.inf, 5e-324, math.nan])
def test_a_float_is_made_of_the_same_bits(value):
    made = maker(6, ctypes.c_double)(value)
    assert type(made) is float
    assert struct.pack("<d", made) == struct.pack("<d", value)


@behaviour("marshal-variant.write.char-low-bits")
def test_a_character_is_made_of_the_low_bits():
    make = maker(13, ctypes.c_int32)
    assert make(0x00010041) == "A" and make(-65471) == "A"


def block(form, *values):
    return ctypes.create_string_buffer(struct.pack(form, *values))


MADE = [
    (7, block("<4I", 15, 0, 0, 0x80010000), decimal.Decimal("-1.5")),
    (8, block("<2q", 36000000000, 0), dt.datetime(1, 1, 1, 1)),
    (9, block("<2q", 36000000000, 72000000000), dt.datetime(1, 1, 1, 1, tzinfo=TWO)),
    (12, block("<16s", bytes(range(16))), uuid.UUID(bytes_le=bytes(range(16)))),
]


@behaviour("marshal-variant.write.arguments")
@pytest.mark.parametrize(("slot", "source", "expected"), MADE)
def test_a_value_is_made_of_a_block(slot, source, expected):
    made = maker(slot, POINTER)(ctypes.byref(source))
    assert (type(made), made) == (type(expected), expected)
    assert ctypes.c_ssize_t.from_address(identity(made)).value == 1  # new, and the caller's


@behaviour("marshal-variant.write.arguments")
def test_a_span_and_a_zone_are_made_of_ticks():
    assert maker(10, INT64)(864000000000) == dt.timedelta(1)
    make = maker(11, ctypes.c_char_p, ctypes.c_int32, INT64)
    zone = make("CET".encode("utf-16-le"), 3, 36000000000)
    assert repr(zone) == repr(dt.timezone(dt.timedelta(hours=1), "CET"))
