"""Ten thousand conversions of every sort leave nothing behind, whether they succeed or fail."""

import ctypes
import datetime as dt
import decimal
import gc
import pathlib
import sys
import uuid

import pytest
from marshal_probe import (
    OBJECT,
    POINTER,
    PyBytesArgBuilder,
    PyNullableArg,
    PyParamByRef,
    address,
    identity,
    kelmor_probe,
    native,
)
from shell_probe import identifier

TIMES = 10000


class Bad:
    """Nothing that any converter takes, and every question to it fails."""

    def __float__(self):
        raise ZeroDivisionError("no")

    __index__ = __fspath__ = __iter__ = __len__ = __float__


class Zone(dt.tzinfo):
    def utcoffset(self, when):
        raise ZeroDivisionError("no")


AWARE = dt.datetime(2020, 1, 1, 12, tzinfo=dt.timezone(dt.timedelta(hours=2)))
LOST = AWARE.replace(tzinfo=Zone())
SPAN = dt.timedelta(5, 6, 7)
NUMBER = decimal.Decimal("-123456789012345678901234567.89")
INTEGERS = [f"long_to_clr_int{width}" for width in (8, 16, 32, 64)]
INTEGERS += [f"ulong_to_clr_uint{width}" for width in (8, 16, 32, 64)]

# Values of each converter: what it takes, and what it refuses.
CONVERTED = {
    **{"fn_conv_py_" + name: ([5, 100], [2**70, -(2**70), True, Bad()]) for name in INTEGERS},
    "fn_conv_py_float_to_clr_double": ([1.5, 5, 2**64 - 1], [2**70, True, Bad()]),
    "fn_conv_py_float_to_clr_float": ([1.5, 5, 2**64 - 1], [2**70, True, Bad()]),
    "fn_conv_py_bool_to_clr_bool": ([True], [1, Bad()]),
    "fn_conv_py_string_to_clr_string": ([None, "a", "€" * 50], [b"a", Bad()]),
    "fn_conv_py_string_to_clr_string_value": (["a", "€" * 50], []),
    "fn_conv_py_string_to_clr_char": (["a"], ["ab", "\ud800", Bad()]),
    "fn_conv_py_datetime_to_clr_datetime": (
        [AWARE, AWARE.replace(tzinfo=None), AWARE.date(), AWARE.timetz()],
        [LOST, AWARE.replace(year=1, month=1, day=1, hour=0), Bad()],
    ),
    "fn_conv_py_datetime_to_clr_datetimeoffset": ([AWARE, AWARE.timetz()], [LOST, AWARE.date()]),
    "fn_conv_py_datetimedelta_to_clr_timespan": ([SPAN], [dt.timedelta.max, Bad()]),
    "fn_conv_py_decimal_to_clr_decimal": (
        [NUMBER, NUMBER.as_tuple()],
        [decimal.Decimal("NaN"), decimal.Decimal("1E+30"), decimal.DecimalTuple(0, (1, "x"), 0), 5],
    ),
    "fn_conv_py_decimal_obj_to_clr_decimal": ([NUMBER], [decimal.Decimal("sNaN"), Bad()]),
    "fn_conv_py_decimal_tuple_to_clr_decimal": ([NUMBER.as_tuple()], [Bad()]),
    "fn_conv_py_uuid_to_clr_guid": ([uuid.UUID(int=2**100)], [Bad()]),
    "fn_conv_py_uuid_to_clr_guid_value": ([uuid.UUID(int=2**100)], [Bad()]),
    "fn_conv_py_tuple_to_clr_version": ([None, (1, 2, 3, 4)], [(1,), (1, "x"), (1, -1), Bad()]),
    "fn_conv_py_obj_to_ssize_t": ([5], [2**70, Bad(), "x"]),
    "fn_conv_py_optional_to_ssize_t": ([(5,), (None,)], [(2**70,), (Bad(),)]),
    "fn_conv_py_variant_to_clr_variant": (
        [None, True, 2**70, 1.5, NUMBER, NUMBER.as_tuple(), uuid.UUID(int=1), SPAN, AWARE]
        + [AWARE.date(), AWARE.time(), "x", b"x", bytearray(b"x"), [1], (1,)],
        [Bad(), object(), {}],
    ),
    "fn_read_py_string": (["a"], []),
    "fn_read_py_bool": ([True, [1], 0], [Bad()]),
    "fn_read_py_vers_long": ([5, 2**40, 2**63], [2**70, "x"]),
    "fn_read_py_double": ([1.5, 5], ["x", Bad()]),
    "fn_read_py_decimal": ([NUMBER], [decimal.Decimal("NaN"), Bad()]),
    "fn_read_py_decimal_tuple": ([NUMBER.as_tuple()], [Bad()]),
    "fn_read_py_vers_datetime": ([AWARE, AWARE.replace(tzinfo=None)], [LOST]),
    "fn_read_py_vers_date": ([AWARE.date()], []),
    "fn_read_py_vers_time": ([AWARE.timetz(), AWARE.time()], [LOST.timetz()]),
    "fn_read_py_datetimedelta": ([SPAN], [dt.timedelta.max]),
    "fn_read_py_guid": ([uuid.UUID(int=2**100)], [Bad()]),
}

CASES = [
    pytest.param(name, value, good, id=f"{name[3:]}-{'takes' if good else 'refuses'}-{index}")
    for name, (taken, refused) in CONVERTED.items()
    for good, values in ((True, taken), (False, refused))
    for index, value in enumerate(values)
]

_convert = native("convert", OBJECT, POINTER, OBJECT, POINTER)


def parts_of(value):
    """The value and what it holds, whose references are counted."""
    return [value, *(value if isinstance(value, (tuple, list)) else ())]


def counted(values):
    return [sys.getrefcount(value) for value in values]


def check(run, *values):
    """Runs many times; neither references nor blocks of memory may have grown."""
    watched = [part for value in values for part in parts_of(value)]
    for _ in range(50):
        run()
    gc.collect()
    references, blocks = counted(watched), sys.getallocatedblocks()
    for _ in range(TIMES):
        run()
    gc.collect()
    # What leaks does so each time; a few blocks come and go with the interpreter's own caches.
    assert sys.getallocatedblocks() - blocks < TIMES // 10
    for value, before, after in zip(watched, references, counted(watched)):
        # The counts of small and immortal objects move with what else goes on.
        assert abs(after - before) < 50, value


@pytest.mark.parametrize(("name", "value", "good"), CASES)
def test_a_conversion_leaves_nothing(name, value, good):
    if name not in kelmor_probe.names():
        pytest.skip("the probe was built without the layer of this converter")
    target = ctypes.create_string_buffer(64)
    converter, where = address(name), ctypes.addressof(target)
    result, error = _convert(converter, value, where)
    assert (result > 0) == good or name == "fn_read_py_bool"
    del error

    check(lambda: _convert(converter, value, where), value)


@pytest.mark.parametrize("value", [pathlib.Path("a.psd"), b"a.psd", "a.psd", None, 5, Bad(), b"\0"])
def test_a_path_leaves_nothing(value):
    memory = ctypes.create_string_buffer(24)
    where = ctypes.addressof(memory)
    begin = native("eph_str_construct", None, POINTER)
    end = native("eph_str_destroy", None, POINTER)
    converter = address("fn_conv_py_strorpath_to_clr_string")

    def run():
        begin(where)
        _convert(converter, value, where)
        end(where)

    check(run, value)


@pytest.mark.parametrize(
    "value",
    [None, b"abc", bytearray(b"abc"), memoryview(b"abc"), memoryview(b"abcdef")[::2], 5, Bad()],
)
def test_a_block_leaves_nothing(value):
    def run():
        with PyBytesArgBuilder() as builder:
            _convert(address("fn_conv_py_bytes_to_clr_bytes"), value, builder.address)

    check(run, value)
    if isinstance(value, bytearray):
        value.append(1)  # no export is left


@pytest.mark.parametrize("value", [None, 5, "x", Bad()])
def test_a_nullable_and_a_reference_leave_nothing(value):
    number = ctypes.c_int32()
    inner = address("fn_conv_py_long_to_clr_int32"), ctypes.addressof(number)
    nullable, reference = PyNullableArg(0, *inner), PyParamByRef(None, *inner)
    wrapped = [value]

    def run():
        nullable_address, by_ref = ctypes.addressof(nullable), ctypes.addressof(reference)
        _convert(address("fn_conv_py_nullable_to_clr_nullable"), value, nullable_address)
        _convert(address("fn_conv_py_parbyref_to_clr_parbyref"), wrapped, by_ref)

    check(run, value, wrapped)


def test_an_out_value_leaves_nothing():
    push = native("fn_push_parbyref_outvalue", ctypes.c_int, OBJECT, POINTER)
    take = ctypes.pythonapi.Py_IncRef
    value, filled, wrong = object(), [object()], ()

    def run():
        for target in ([], filled, wrong):
            take(OBJECT(value))
            try:
                push(target, identity(value))
            except SystemError:
                pass

    check(run, value)


INT64, INT32 = ctypes.c_int64, ctypes.c_int32
MADE = {
    "fn_write_py_bool": [(INT32, 1)],
    "fn_write_py_long": [(INT32, 123456)],
    "fn_write_py_ulong": [(ctypes.c_uint32, 123456)],
    "fn_write_py_longlong": [(INT64, 2**40)],
    "fn_write_py_ulonglong": [(ctypes.c_uint64, 2**63)],
    "fn_write_py_double": [(ctypes.c_double, 1.5)],
    "fn_write_py_char": [(INT32, 0x20AC)],
    "fn_write_py_datetimedelta": [(INT64, 12345678)],
    "fn_write_py_timezone": [(ctypes.c_char_p, b"C\0"), (INT32, 1), (INT64, 36000000000)],
    "fn_write_py_guid": [(ctypes.c_char_p, bytes(range(16)))],
    "fn_conv_clr_bytes_to_py_bytes": [(ctypes.c_char_p, b"abc"), (INT32, 3)],
    "fn_conv_clr_string_to_py_string": [(ctypes.c_char_p, b"a\0\xac\x20"), (INT32, 2)],
    "fn_create_shlbuffer_view": [(POINTER, 0x1000), (INT64, 5), (INT32, 0)],
}
FAILING = {
    "fn_write_py_char": [(INT32, 0xD800)],
    "fn_write_py_timezone": [(ctypes.c_char_p, None), (INT32, -1), (INT64, 36000000000)],
    "fn_conv_clr_string_to_py_string": [(ctypes.c_char_p, b"\0\xd8"), (INT32, 1)],
}


@pytest.mark.parametrize(
    ("name", "arguments"), [*MADE.items(), *FAILING.items()], ids=lambda value: str(value)[:30]
)
def test_a_made_value_leaves_nothing(name, arguments):
    if name == "fn_create_shlbuffer_view":
        ctypes.pythonapi.PyType_Ready(ctypes.c_void_p(address("wrpPye_tyds_ShlBufferView")))
    make = native(name, OBJECT, *[kind for kind, _ in arguments])
    values = [value for _, value in arguments]
    fails = arguments is FAILING.get(name)

    def run():
        try:
            make(*values)
        except (LookupError, TypeError, UnicodeError):
            assert fails
        else:
            assert not fails

    check(run)


@pytest.mark.parametrize(
    ("name", "words"),
    [
        ("fn_write_py_date_time", (637610031591234560, 0)),
        ("fn_write_py_date_time", (1 << 62 | 637610031591234560, 0)),
        ("fn_write_py_date_time_offset", (637610031591234560, 72000000000)),
        ("fn_write_py_date_time_offset", (637610031591234560, 1 << 60)),
        ("fn_write_py_date_time", ((1 << 62) - 1, 0)),
    ],
)
def test_a_made_date_leaves_nothing(name, words):
    block = (ctypes.c_int64 * 2)(*words)
    make = native(name, OBJECT, POINTER)

    def run():
        try:
            make(ctypes.byref(block))
        except (ValueError, OverflowError):
            pass

    check(run)


def test_a_made_decimal_and_a_made_version_leave_nothing():
    words = (ctypes.c_uint32 * 4)(15, 7, 9, 0x80010000)
    version = (ctypes.c_int32 * 5)(4, 1000, 2000, 3000, 4000)
    decimal_of = native("fn_write_py_decimal", OBJECT, POINTER)
    tuple_of = native("fn_conv_clr_version_to_py_tuple", OBJECT, POINTER)

    def run():
        decimal_of(ctypes.byref((ctypes.c_uint32 * 4)(*words)))
        tuple_of(ctypes.byref(version))

    check(run)


def test_caught_errors_and_thrown_exceptions_leave_nothing():
    catch = native("raise_and_catch", OBJECT, POINTER, POINTER, POINTER, POINTER, POINTER)
    throw = native("on_clr_exception", None, POINTER, POINTER)
    take, drop = ctypes.pythonapi.Py_IncRef, ctypes.pythonapi.Py_DecRef
    owner, text = ctypes.c_void_p(), (ctypes.c_uint64 * 2)()
    error = ValueError("boom")
    name = "".join(["System", ".Exception"])

    def run():
        where = identity(type(error)), identity(error), None
        catch(*where, ctypes.addressof(owner), ctypes.addressof(text))
        drop(ctypes.c_void_p(owner.value))
        take(OBJECT(name))
        try:
            throw(identity(name), None)
        except RuntimeError:
            pass

    check(run, error, name, identifier("PyWrpIdTraceBack_Unknown"))


def test_every_converter_is_counted():
    named = {
        name for name in kelmor_probe.names() if name.startswith(("fn_conv_py_", "fn_read_py"))
    }
    elsewhere = {
        "fn_conv_py_strorpath_to_clr_string",
        "fn_conv_py_nullable_to_clr_nullable",
        "fn_conv_py_parbyref_to_clr_parbyref",
        "fn_conv_py_bytes_to_clr_bytes",
        "fn_conv_py_bytes_to_clr_bytes_value",
        "fn_read_py_buffer",
        "fn_read_py_buffer_view",
    }
    handles = {name for name in named if name.startswith("fn_conv_py_obj_to_clr_")}
    assert named - elsewhere - handles == set(CONVERTED)
