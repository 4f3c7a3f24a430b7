"""What the tests of dates, offsets and spans share: values, and calls of the converters."""

import ctypes
import datetime as dt

from marshal_probe import INT, OBJECT, POINTER, accepted, native

DATE_TIME = "fn_conv_py_datetime_to_clr_datetime"
OFFSET = "fn_conv_py_datetime_to_clr_datetimeoffset"
SPAN = "fn_conv_py_datetimedelta_to_clr_timespan"
UTC_BIT = 1 << 62
KEPT = 0x5555555555555555
NO_DATE = "value too large or too small for .Net DateTime"
NO_OFFSET_DATE = "value too large or too small for .Net DateTimeOffSet"
NO_SPAN = "value too large or too small for .Net TimeSpan"
HOURS = 36_000_000_000


def zone(hours=0, minutes=0):
    return dt.timezone(dt.timedelta(hours=hours, minutes=minutes))


class Answers(dt.tzinfo):
    """A zone whose offset is whatever it is told, unchecked where the subclass below asks."""

    def __init__(self, answer):
        self.answer = answer

    def utcoffset(self, when):
        if isinstance(self.answer, Exception):
            raise self.answer
        return self.answer


class MyDateTime(dt.datetime):
    """Its own utcoffset() decides, without the checks of the interpreter's."""

    def utcoffset(self):
        return self.tzinfo.utcoffset(self)


class MyTime(dt.time):
    def utcoffset(self):
        return self.tzinfo.utcoffset(None)


class MyDate(dt.date):
    pass


class MyDelta(dt.timedelta):
    pass


def words(name, value):
    """Two words that a converter writes over a pattern."""
    return list(accepted(name, value, (ctypes.c_int64 * 2)(KEPT, KEPT)))


def signed(value):
    return value - 2**64 if value >= 2**63 else value


NOON = dt.datetime(2020, 1, 1, 12)
NOON_TICKS = 637134768000000000
MIDNIGHT_TICKS = 637134336000000000


def read(name, value):
    out = (ctypes.c_int64 * 2)(KEPT, KEPT)
    return native(name, INT, OBJECT, POINTER)(value, ctypes.addressof(out)), *out
