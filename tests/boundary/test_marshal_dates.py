"""Dates, times, offsets and spans to the managed side."""

import ctypes
import datetime as dt
import sys

import pytest
from marshal_dates import (
    DATE_TIME,
    OFFSET,
    SPAN,
    UTC_BIT,
    KEPT,
    NO_DATE,
    NO_OFFSET_DATE,
    NO_SPAN,
    HOURS,
    zone,
    Answers,
    MyDateTime,
    MyTime,
    MyDate,
    MyDelta,
    words,
    NOON,
    NOON_TICKS,
    MIDNIGHT_TICKS,
    read,
)
from marshal_probe import (
    OBJECT,
    POINTER,
    native,
    refused,
    said,
)

behaviour = pytest.mark.behaviour


# Fields.


def copied(name, value, fields):
    memory = (ctypes.c_int32 * 8)(*[-7] * 8)
    native(name, None, OBJECT, POINTER)(value, ctypes.addressof(memory))
    return list(memory)[:fields], list(memory)[fields:]


@behaviour("marshal-dates.copy.packed-data")
def test_fields_are_read_out_of_the_packed_data():
    date = [258, 3, 4]
    time = [1, 2, 3, 66051]
    fields = [-7] * 8
    assert copied("copy_py_date", dt.date(*date), 8)[0] == [-7, *date, *fields[4:]]
    assert copied("copy_py_time", dt.time(*time), 8)[0] == [-7, -7, -7, -7, *time]
    moment = dt.datetime(258, 3, 4, 5, 6, 7, 66051)
    assert copied("copy_py_datetime", moment, 8)[0] == [-7, 258, 3, 4, 5, 6, 7, 66051]
    span, rest = copied("copy_py_datetimedelta", dt.timedelta(microseconds=-1), 3)
    assert (span, rest) == ([-1, 86399, 999999], [-7] * 5)


# Offsets.


def utc_offset(value):
    """(failed, has an offset, ticks); an error is raised by ctypes."""
    out = ctypes.c_int(9), ctypes.c_int(9), ctypes.c_int64(9)
    native("utc_offset_of", None, OBJECT, POINTER, POINTER, POINTER)(
        value, *[ctypes.addressof(item) for item in out]
    )
    return tuple(item.value for item in out)


@behaviour("marshal-dates.offset.value")
@pytest.mark.parametrize(
    ("tzinfo", "ticks"),
    [
        (zone(2), 72000000000),
        (zone(0, -30), -18000000000),
        (dt.timezone.utc, 0),
        (Answers(MyDelta(hours=1)), HOURS),
    ],
)
def test_an_offset_is_told_in_ticks(tzinfo, ticks):
    assert utc_offset(NOON.replace(tzinfo=tzinfo)) == (0, 1, ticks)
    assert utc_offset(dt.time(1, tzinfo=tzinfo)) == (0, 1, ticks)


class NeverAsked(dt.datetime):
    asked = 0

    def utcoffset(self):
        NeverAsked.asked += 1


@behaviour("marshal-dates.offset.none")
def test_what_has_no_offset_is_naive():
    naive = [
        NOON,
        dt.time(1),
        NOON.replace(tzinfo=Answers(None)),
        dt.time(1, tzinfo=Answers(None)),
    ]
    for value in naive:
        assert utc_offset(value) == (0, 0, 0)
        assert words(DATE_TIME, value)[0] >= 0  # kind 0
        assert words(DATE_TIME, value)[0] < UTC_BIT
    assert utc_offset(NeverAsked(2020, 1, 1)) == (0, 0, 0)
    assert NeverAsked.asked == 0


ASKING = [
    (DATE_TIME, MyDateTime(2020, 1, 1)),
    (DATE_TIME, MyTime(1)),
    (OFFSET, MyDateTime(2020, 1, 1)),
    (OFFSET, MyTime(1)),
    ("fn_read_py_vers_datetime", MyDateTime(2020, 1, 1)),
    ("fn_read_py_vers_time", MyTime(1)),
]


@pytest.mark.parametrize(("name", "value"), ASKING)
@pytest.mark.parametrize(
    ("answer", "error", "text"),
    [
        pytest.param(
            ZeroDivisionError("no zone"),
            ZeroDivisionError,
            "no zone",
            marks=behaviour("marshal-dates.offset.utcoffset-raises"),
            id="raises",
        ),
        pytest.param(
            5,
            TypeError,
            "instance utcoffset() return wrong value",
            marks=behaviour("marshal-dates.offset.wrong-type"),
            id="wrong-type",
        ),
        pytest.param(
            dt.timedelta.max,
            OverflowError,
            "value too large or too small utc offset",
            marks=behaviour("marshal-dates.offset.overflow"),
            id="overflow",
        ),
    ],
)
def test_an_offset_that_fails_fails_every_converter(name, value, answer, error, text):
    value = value.replace(tzinfo=Answers(answer))
    assert said(refused(name, value)) == (error, text)
    if name == DATE_TIME:
        with pytest.raises(error):
            utc_offset(value)


@behaviour("marshal-dates.offset.wrong-type")
def test_an_override_of_utcoffset_decides():
    class Fixed(dt.datetime):
        def utcoffset(self):
            return dt.timedelta(hours=3)

    assert utc_offset(Fixed(2020, 1, 1, tzinfo=zone(1))) == (0, 1, 3 * HOURS)


# To the managed side.


@behaviour("marshal-dates.to-clr.naive", "marshal-dates.wire.date-time")
@pytest.mark.parametrize(
    ("value", "ticks"),
    [
        (dt.datetime(2020, 1, 1), 637134336000000000),
        (dt.datetime(1, 1, 1), 0),
        (dt.datetime(2021, 7, 4, 13, 45, 59, 123456), 637610031591234560),
        (dt.datetime(9999, 12, 31, 23, 59, 59, 999999), 3155378975999999990),
    ],
)
def test_a_naive_datetime_is_its_ticks(value, ticks):
    assert words(DATE_TIME, value) == [ticks, KEPT]


@behaviour("marshal-dates.to-clr.aware", "marshal-dates.wire.date-time")
def test_an_aware_datetime_travels_as_utc():
    assert words(DATE_TIME, NOON.replace(tzinfo=zone(2))) == [5248820714427387904, KEPT]
    assert words(DATE_TIME, NOON.replace(tzinfo=dt.timezone.utc)) == [UTC_BIT | NOON_TICKS, KEPT]


@behaviour("marshal-dates.to-clr.aware-out-of-range")
@pytest.mark.parametrize(
    "value",
    [
        dt.datetime(1, 1, 1, tzinfo=zone(2)),
        dt.datetime(9999, 12, 31, 23, 59, 59, 999999, tzinfo=zone(-1)),
    ],
)
def test_utc_out_of_range_is_refused(value):
    assert said(refused(DATE_TIME, value)) == (OverflowError, NO_DATE)


@behaviour("marshal-dates.to-clr.date")
def test_a_date_is_its_midnight():
    assert words(DATE_TIME, dt.date(2020, 1, 1)) == [MIDNIGHT_TICKS, KEPT]


@behaviour("marshal-dates.to-clr.time")
def test_a_time_stands_on_the_first_day():
    assert words(DATE_TIME, dt.time(1, 2, 3, 4)) == [37230000040, KEPT]


@behaviour("marshal-dates.to-clr.time-aware")
@pytest.mark.parametrize(
    ("value", "word"),
    [
        (dt.time(1, tzinfo=zone(2)), 4611686846427387904),
        (dt.time(23, tzinfo=zone(-2)), 4611686054427387904),
        (dt.time(0, tzinfo=zone(23, 59)), UTC_BIT | 600000000),
    ],
)
def test_an_aware_time_wraps_within_its_day(value, word):
    assert words(DATE_TIME, value) == [word, KEPT]


@behaviour("marshal-dates.to-clr.subclasses")
def test_instances_of_subclasses_are_taken_like_their_bases():
    aware = MyDateTime(2020, 1, 1, 12, tzinfo=zone(2))
    assert words(DATE_TIME, MyDateTime(2020, 1, 1, tzinfo=None)) == [MIDNIGHT_TICKS, KEPT]
    assert words(DATE_TIME, aware) == [5248820714427387904, KEPT]
    assert words(DATE_TIME, MyDate(2020, 1, 1)) == [MIDNIGHT_TICKS, KEPT]
    assert words(DATE_TIME, MyTime(1, 2, 3, 4)) == [37230000040, KEPT]
    assert words(OFFSET, aware) == [NOON_TICKS, 2 * HOURS]
    assert words(OFFSET, MyTime(1, tzinfo=zone(2))) == [HOURS, 2 * HOURS]
    assert words(SPAN, MyDelta(days=1)) == [864000000000, KEPT]


@behaviour("marshal-dates.to-clr.other")
@pytest.mark.parametrize(
    ("value", "name"),
    [("2020", "str"), (None, "NoneType"), (dt.timedelta(1), "datetime.timedelta"), (5, "int")],
)
def test_nothing_else_is_a_date(value, name):
    assert said(refused(DATE_TIME, value)) == (TypeError, f"can't build DateTime from '{name}'")


@behaviour("marshal-dates.offset-to-clr.datetime", "marshal-dates.wire.date-time-offset")
def test_a_datetime_with_its_offset_is_two_words():
    assert words(OFFSET, NOON.replace(tzinfo=zone(2))) == [NOON_TICKS, 72000000000]
    assert words(OFFSET, NOON.replace(tzinfo=zone(-2))) == [NOON_TICKS, -72000000000]


@behaviour("marshal-dates.offset-to-clr.datetime-naive")
@pytest.mark.parametrize("value", [NOON, NOON.replace(tzinfo=Answers(None))], ids=str)
def test_a_datetime_without_offset_has_none_to_give(value):
    assert said(refused(OFFSET, value)) == (
        ValueError,
        "The tzinfo property of a given datetime should not be None",
    )


@behaviour("marshal-dates.offset-to-clr.time")
def test_a_time_with_its_offset_is_two_words():
    assert words(OFFSET, dt.time(1, tzinfo=zone(2))) == [36000000000, 72000000000]


@behaviour("marshal-dates.offset-to-clr.time-naive")
@pytest.mark.parametrize("value", [dt.time(1), dt.time(1, tzinfo=Answers(None))], ids=str)
def test_a_time_without_offset_has_none_to_give(value):
    assert said(refused(OFFSET, value)) == (
        ValueError,
        "The tzinfo property of a given time should not be None",
    )


class Impossible:
    """A datetime whose packed year is one that no datetime has."""

    def __init__(self, value, year=0):
        self.value = value
        packed = id(value) + object.__basicsize__ + 9  # hash code, then the flag of the zone
        self.bytes = (ctypes.c_uint8 * 2).from_address(packed)
        self.year = self.bytes[:]
        assert (self.year[0] << 8 | self.year[1]) == value.year
        self.bytes[:] = [year >> 8, year & 255]

    def __enter__(self):
        return self.value

    def __exit__(self, *error):
        self.bytes[:] = self.year


def test_an_impossible_date_is_refused_everywhere():
    for name in (DATE_TIME, "fn_read_py_vers_date"):
        with Impossible(dt.date(2020, 1, 1), 10000) as value:
            assert said(refused(name, value)) == (OverflowError, NO_DATE)
    with Impossible(dt.datetime(2020, 1, 1)) as value:
        assert said(refused(DATE_TIME, value)) == (OverflowError, NO_DATE)


@behaviour("marshal-dates.offset-to-clr.range")
def test_only_the_local_fields_have_a_range():
    assert words(OFFSET, dt.datetime(1, 1, 1, tzinfo=zone(2))) == [0, 72000000000]
    with Impossible(dt.datetime(2020, 1, 1, tzinfo=dt.timezone.utc)) as value:
        assert said(refused(OFFSET, value)) == (OverflowError, NO_DATE)


@behaviour("marshal-dates.offset-to-clr.other")
@pytest.mark.parametrize(
    ("value", "name"), [(dt.date(2020, 1, 1), "datetime.date"), ("x", "str"), (None, "NoneType")]
)
def test_a_date_has_no_offset(value, name):
    assert said(refused(OFFSET, value)) == (TypeError, f"can't build DateTime from '{name}'")


# Reading any of them.


@behaviour("marshal-dates.read-vers.datetime-aware")
def test_an_aware_datetime_is_read_as_two_words():
    value = NOON.replace(tzinfo=zone(2))
    assert read("fn_read_py_vers_datetime", value) == (2, NOON_TICKS, 72000000000)


@behaviour("marshal-dates.read-vers.datetime-naive")
def test_a_naive_datetime_is_read_as_one_word():
    assert read("fn_read_py_vers_datetime", NOON) == (1, NOON_TICKS, KEPT)
    assert read("fn_read_py_vers_datetime", NOON.replace(tzinfo=Answers(None)))[0] == 1


@behaviour("marshal-dates.read-vers.datetime-failures")
def test_a_datetime_out_of_range_is_not_read():
    name = "fn_read_py_vers_datetime"
    with Impossible(dt.datetime(2020, 1, 1, tzinfo=zone(2))) as value:
        assert said(refused(name, value)) == (OverflowError, NO_OFFSET_DATE)
    with Impossible(dt.datetime(2020, 1, 1)) as value:
        assert said(refused(name, value)) == (OverflowError, NO_DATE)


@behaviour("marshal-dates.read-vers.time")
def test_a_time_is_read_as_one_word_or_two():
    name = "fn_read_py_vers_time"
    assert read(name, dt.time(1, 2, 3, 4)) == (1, 37230000040, KEPT)
    assert read(name, dt.time(1, tzinfo=zone(2))) == (2, 36000000000, 72000000000)
    # UTC would lie before the first day
    assert read(name, dt.time(0, tzinfo=zone(14))) == (2, 0, 14 * HOURS)


@behaviour("marshal-dates.read-vers.date")
def test_a_date_is_read_as_one_word():
    assert read("fn_read_py_vers_date", dt.date(2020, 1, 1)) == (1, MIDNIGHT_TICKS, KEPT)
    with Impossible(dt.date(2020, 1, 1)) as value:
        assert said(refused("fn_read_py_vers_date", value)) == (OverflowError, NO_DATE)


# Spans.


@behaviour("marshal-dates.span-to-clr.value", "marshal-dates.wire.time-span")
@pytest.mark.parametrize(
    ("value", "ticks"),
    [
        (dt.timedelta(0), 0),
        (dt.timedelta(days=-1), -864000000000),
        (dt.timedelta(days=-1, seconds=1), -863990000000),
        (dt.timedelta(microseconds=-1), -10),
        (MyDelta(1, 2, 3), 864020000030),
    ],
)
def test_a_span_is_its_ticks(value, ticks):
    assert words(SPAN, value) == [ticks, KEPT]
    assert read("fn_read_py_datetimedelta", value) == (1, ticks, KEPT)


@behaviour("marshal-dates.span-to-clr.refused")
@pytest.mark.parametrize(
    ("value", "name"), [(5, "int"), (None, "NoneType"), (NOON, "datetime.datetime")]
)
def test_only_a_timedelta_is_a_span(value, name):
    assert said(refused(SPAN, value)) == (TypeError, f"can't build TimeSpan from '{name}'")


@behaviour("marshal-dates.span-to-clr.overflow", "marshal-dates.span-to-clr.read")
@pytest.mark.parametrize("name", [SPAN, "fn_read_py_datetimedelta"])
@pytest.mark.parametrize("value", [dt.timedelta.max, dt.timedelta.min], ids=["max", "min"])
def test_a_span_that_does_not_fit_is_refused(name, value):
    assert said(refused(name, value)) == (OverflowError, NO_SPAN)


@behaviour("marshal-dates.span-to-clr.read")
def test_a_span_is_read_without_a_type_test(monkeypatch):
    # Nothing is looked up: the object is known to be a span.
    monkeypatch.setitem(sys.modules, "datetime", None)
    assert read("fn_read_py_datetimedelta", dt.timedelta(days=-1)) == (1, -864000000000, KEPT)
