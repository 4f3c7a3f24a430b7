"""A builder that fails gives null beside its error: no object that nobody would drop."""

import ctypes
import datetime as dt
import sys
import types

import pytest
from marshal_dates import HOURS, NOON_TICKS, UTC_BIT
from marshal_probe import INT64, OBJECT, POINTER, address, identity, native

_status = native("status64_and_error", OBJECT, *[POINTER] * 6)
LOCAL_BIT = -(1 << 63)
LONE = b"\x00\xd8"


def outcome(name, *words):
    """What a builder answers, as a number, and the error that it leaves pending."""
    return _status(address(name), *words, *[None] * (5 - len(words)))


def block(*numbers):
    return (INT64 * 2)(*numbers)


class Refusing:
    """Stands for a class whose every call fails."""

    utc = "of a stub"

    def __new__(cls, *args, **kwds):
        raise ZeroDivisionError("no")


def module(name, **attributes):
    made = types.ModuleType(name)
    vars(made).update(attributes)
    return made


CAPI = {"datetime_CAPI": dt.datetime_CAPI}
ZONE = {"timezone": dt.timezone}
NO_MODULE = {"datetime": None}
NO_ZONE = {"datetime": module("datetime", **CAPI, datetime=dt.datetime)}
NO_UTC = {"datetime": module("datetime", **CAPI, timezone=object, datetime=dt.datetime)}
NO_CLASS = {"datetime": module("datetime", **CAPI, **ZONE)}
BAD_ZONE = {"datetime": module("datetime", **CAPI, timezone=Refusing, datetime=dt.datetime)}
BAD_CLASS = {"datetime": module("datetime", **CAPI, **ZONE, datetime=Refusing)}

NAIVE, UTC, LOCAL = block(NOON_TICKS, 0), block(UTC_BIT | NOON_TICKS, 0), block(LOCAL_BIT, HOURS)
FAR = block(NOON_TICKS, 25 * HOURS)
DATE, OFFSET = "fn_conv_clr_datetime_to_py_datetime", "fn_conv_clr_datetimeoffset_to_py_datetime"
SPAN, ZONE_OF = "fn_conv_clr_timespan_to_py_datetimedelta", "fn_write_py_timezone"
DECIMAL, GUID = "fn_conv_clr_decimal_to_py_decimal", "fn_conv_clr_guid_to_py_uuid"
NUMBER, SIXTEEN = (ctypes.c_uint32 * 4)(15), ctypes.create_string_buffer(16)

CASES = [
    *[(DATE, [value], NO_MODULE, ImportError) for value in (NAIVE, UTC, LOCAL)],
    *[(DATE, [value], NO_ZONE, ImportError) for value in (UTC, LOCAL)],
    *[(DATE, [value], NO_CLASS, ImportError) for value in (UTC, LOCAL)],
    *[(DATE, [value], BAD_CLASS, ZeroDivisionError) for value in (UTC, LOCAL)],
    (DATE, [UTC], NO_UTC, AttributeError),
    (DATE, [LOCAL], BAD_ZONE, ZeroDivisionError),
    (OFFSET, [LOCAL], NO_MODULE, ImportError),
    (OFFSET, [LOCAL], NO_ZONE, ImportError),
    (OFFSET, [LOCAL], NO_CLASS, ImportError),
    (OFFSET, [LOCAL], BAD_ZONE, ZeroDivisionError),
    (OFFSET, [FAR], {}, ValueError),
    (SPAN, [5], NO_MODULE, ImportError),
    (ZONE_OF, [LONE, 0, HOURS], NO_MODULE, ImportError),
    (ZONE_OF, [LONE, 0, HOURS], NO_ZONE, ImportError),
    (ZONE_OF, [LONE, 0, HOURS], BAD_ZONE, ZeroDivisionError),
    (ZONE_OF, [LONE, 1, HOURS], {}, LookupError),
    (ZONE_OF, [LONE, 0, 25 * HOURS], {}, ValueError),
    (DECIMAL, [NUMBER], {"decimal": None}, ImportError),
    (DECIMAL, [NUMBER], {"decimal": module("decimal")}, ImportError),
    (DECIMAL, [NUMBER], {"decimal": module("decimal", Decimal=Refusing)}, ZeroDivisionError),
    (GUID, [SIXTEEN], {"uuid": None}, ImportError),
    (GUID, [SIXTEEN], {"uuid": module("uuid", UUID=Refusing)}, ZeroDivisionError),
    ("fn_conv_clr_string_to_py_string", [LONE, 1], {}, LookupError),
    ("fn_conv_clr_string_to_py_string_value", [LONE, 1], {}, LookupError),
    ("fn_write_py_char", [0xD800], {}, UnicodeDecodeError),
    ("fn_conv_clr_char_to_py_string", [0xDFFF], {}, UnicodeDecodeError),
    ("fn_conv_clr_bytes_to_py_bytes", [SIXTEEN, -1], {}, SystemError),
]
ALIASES = {
    DATE: "fn_write_py_date_time",
    OFFSET: "fn_write_py_date_time_offset",
    SPAN: "fn_write_py_datetimedelta",
    DECIMAL: "fn_write_py_decimal",
    GUID: "fn_write_py_guid",
}


@pytest.mark.parametrize(("name", "arguments", "modules", "error"), CASES)
def test_a_builder_that_fails_gives_null(name, arguments, modules, error, monkeypatch):
    words = [ctypes.addressof(a) if isinstance(a, ctypes.Array) else a for a in arguments]
    words = [ctypes.cast(a, POINTER).value if isinstance(a, bytes) else a for a in words]
    for module_name, stub in modules.items():
        monkeypatch.setitem(sys.modules, module_name, stub)
    for each in {name, ALIASES.get(name, name)}:
        result, raised = outcome(each, *words)
        assert result == 0
        assert isinstance(raised, error)


@pytest.mark.behaviour("marshal-others.byref.push.result")
def test_what_is_no_list_takes_no_value():
    status = native("status_and_error", OBJECT, *[POINTER] * 6)
    value = object()
    for target in ((), {}, None):
        before = sys.getrefcount(value)
        ctypes.pythonapi.Py_IncRef(OBJECT(value))
        push = address("fn_push_parbyref_outvalue")
        result, raised = status(push, identity(target), identity(value), None, None, None)
        assert result == -1 and type(raised) is SystemError
        assert sys.getrefcount(value) == before
