"""Dates, times, offsets and spans, both ways."""

import ctypes
import datetime as dt
import sys
import types

import pytest
from marshal_probe import (
    INT,
    INT64,
    OBJECT,
    POINTER,
    accepted,
    convert,
    native,
    refused,
    said,
)
from shell_probe import kelmor_probe

behaviour = pytest.mark.behaviour

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


def read(name, value):
    out = (ctypes.c_int64 * 2)(KEPT, KEPT)
    return native(name, INT, OBJECT, POINTER)(value, ctypes.addressof(out)), *out


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


# To Python.


def block(*numbers):
    return (ctypes.c_int64 * 2)(*[signed(number) for number in numbers])


FROM_DATE_TIME = ["fn_conv_clr_datetime_to_py_datetime", "fn_write_py_date_time"]
FROM_OFFSET = ["fn_conv_clr_datetimeoffset_to_py_datetime", "fn_write_py_date_time_offset"]
FROM_SPAN = ["fn_conv_clr_timespan_to_py_datetimedelta", "fn_write_py_datetimedelta"]


def both_ways(names):
    return pytest.mark.parametrize(
        "name", [names[0], pytest.param(names[1], marks=behaviour("marshal-dates.write.date-time"))]
    )


def made(name, *numbers):
    return native(name, OBJECT, POINTER)(ctypes.byref(block(*numbers)))


def same(left, right):
    """Equal, of one type, and with one zone: comparison alone takes no notice of it."""
    return (type(left), left, left.tzinfo) == (type(right), right, right.tzinfo)


@both_ways(FROM_DATE_TIME)
@behaviour("marshal-dates.from-clr.kind-0", "marshal-dates.wire.date-time")
def test_a_date_of_no_kind_is_naive(name):
    assert same(made(name, 637610031591234560, KEPT), dt.datetime(2021, 7, 4, 13, 45, 59, 123456))


@both_ways(FROM_DATE_TIME)
@behaviour("marshal-dates.from-clr.kind-1", "marshal-dates.wire.date-time")
def test_a_date_in_utc_is_aware(name):
    result = made(name, 5248820354427387904, KEPT)
    assert same(result, dt.datetime(2020, 1, 1, tzinfo=dt.timezone.utc))
    assert result.tzinfo is dt.timezone.utc


def stub_datetime():
    """A module whose classes write down how they are called."""
    stub = types.ModuleType("datetime")
    stub.datetime = lambda *args, **kwds: ("datetime", args, kwds)

    class timezone:
        utc = "the utc of the stub"

        def __new__(cls, *args, **kwds):
            return ("timezone", args, kwds)

    stub.timezone = timezone
    stub.datetime_CAPI = dt.datetime_CAPI
    return stub


@both_ways(FROM_DATE_TIME)
@behaviour("marshal-dates.from-clr.kind-1-by-name")
def test_the_classes_of_a_utc_date_are_looked_up_each_time(name, monkeypatch):
    ticks = UTC_BIT | 637610031591234560
    with monkeypatch.context() as patch:
        patch.setitem(sys.modules, "datetime", stub_datetime())
        assert made(name, ticks, 0) == (
            "datetime",
            (2021, 7, 4, 13, 45, 59, 123456, "the utc of the stub"),
            {},
        )
    assert made(name, ticks, 0).tzinfo is dt.timezone.utc


@both_ways(FROM_DATE_TIME)
@pytest.mark.parametrize(
    "kind",
    [
        pytest.param(2, marks=behaviour("marshal-dates.from-clr.kind-2")),
        pytest.param(3, marks=behaviour("marshal-dates.from-clr.kind-3")),
    ],
)
@behaviour("marshal-dates.wire.date-time-offset", "marshal-dates.wire.date-time")
def test_a_local_date_takes_its_offset_from_the_second_word(name, kind):
    result = made(name, kind << 62 | NOON_TICKS, 72000000000)
    assert same(result, NOON.replace(tzinfo=zone(2)))
    assert made(name, kind << 62 | NOON_TICKS, -18000000000).utcoffset() == dt.timedelta(
        minutes=-30
    )


@both_ways(FROM_OFFSET)
@pytest.mark.parametrize("kind", [0, 1, 2, 3])
@behaviour("marshal-dates.from-clr.offset-always", "marshal-dates.wire.date-time-offset")
def test_a_date_with_an_offset_uses_it_always(name, kind):
    assert same(made(name, kind << 62 | NOON_TICKS, 72000000000), NOON.replace(tzinfo=zone(2)))
    zero = made(name, kind << 62 | NOON_TICKS, 0)
    assert same(zero, NOON.replace(tzinfo=dt.timezone(dt.timedelta(0))))


@both_ways(FROM_DATE_TIME)
@behaviour("marshal-dates.from-clr.truncated")
def test_what_is_finer_than_a_microsecond_is_dropped(name):
    assert made(name, 9, 0) == dt.datetime(1, 1, 1)
    assert made(name, 19, 0) == dt.datetime(1, 1, 1, microsecond=1)


@both_ways(FROM_SPAN)
@pytest.mark.parametrize(
    ("ticks", "expected"),
    [
        (-10, (-1, 86399, 999999)),
        (-864000000000, (-1, 0, 0)),
        (-15, (-1, 86399, 999999)),
        (-9, (0, 0, 0)),
        (864020000030, (1, 2, 3)),
        (9223372036854775807, (10675199, 10085, 477580)),
        (-9223372036854775808, (-10675200, 76314, 522420)),
    ],
)
@behaviour("marshal-dates.from-clr.timespan", "marshal-dates.wire.time-span")
def test_ticks_become_a_timedelta(name, ticks, expected):
    span = native(name, OBJECT, INT64)(ticks)
    assert type(span) is dt.timedelta
    assert (span.days, span.seconds, span.microseconds) == expected


write_timezone = native("fn_write_py_timezone", OBJECT, ctypes.c_char_p, ctypes.c_int32, INT64)


@behaviour("marshal-dates.write.timezone")
def test_a_zone_has_a_name_and_an_offset(monkeypatch):
    name = "CET€".encode("utf-16-le")
    assert repr(write_timezone(name, 3, HOURS)) == repr(dt.timezone(dt.timedelta(hours=1), "CET"))
    monkeypatch.setitem(sys.modules, "datetime", stub_datetime())
    assert write_timezone(name, 4, -HOURS) == (
        "timezone",
        (dt.timedelta(hours=-1), "CET€"),
        {},
    )


@behaviour("marshal-dates.write.timezone-no-name")
def test_a_zone_without_a_name_is_called_with_none(monkeypatch):
    with pytest.raises(TypeError) as caught:
        dt.timezone(dt.timedelta(hours=1), None)
    with pytest.raises(TypeError) as ours:
        write_timezone(None, -1, HOURS)
    assert said(ours.value) == said(caught.value)
    monkeypatch.setitem(sys.modules, "datetime", stub_datetime())
    assert write_timezone(None, -1, HOURS) == (
        "timezone",
        (dt.timedelta(hours=1), None),
        {},
    )


def test_an_offset_beyond_a_day_is_the_interpreters_error():
    with pytest.raises(ValueError, match="offset must be a timedelta strictly between"):
        made(FROM_OFFSET[0], NOON_TICKS, 24 * HOURS)
    with pytest.raises(LookupError):
        write_timezone(b"\x00\xd8", 1, HOURS)


# The capsule.


USERS = {
    DATE_TIME: NOON,
    OFFSET: NOON.replace(tzinfo=zone(1)),
    SPAN: dt.timedelta(1),
    "fn_read_py_vers_datetime": NOON,
    "fn_read_py_vers_time": dt.time(1),
}


def capsule_error():
    """What the interpreter says of the capsule."""
    load = ctypes.PYFUNCTYPE(POINTER, ctypes.c_char_p, INT)(("PyCapsule_Import", ctypes.pythonapi))
    with pytest.raises(Exception) as caught:
        load(b"datetime.datetime_CAPI", 0)
    return said(caught.value)


@pytest.mark.parametrize("name", [*USERS, *FROM_DATE_TIME, *FROM_OFFSET, *FROM_SPAN])
@pytest.mark.parametrize("broken", ["no capsule", "no module", "wrong capsule"])
@behaviour("marshal-dates.capsule.each-use")
def test_the_capsule_is_imported_at_each_use(name, broken, monkeypatch):
    def use():
        if name in USERS:
            return convert(name, USERS[name], block(0, 0))
        if name in FROM_SPAN:
            return 1, native(name, OBJECT, INT64)(0) and None
        return 1, made(name, 0, 0) and None

    use()
    with monkeypatch.context() as patch:
        stub = types.ModuleType("datetime")
        if broken == "wrong capsule":
            stub.datetime_CAPI = 5
        patch.setitem(sys.modules, "datetime", None if broken == "no module" else stub)
        expected = capsule_error()
        try:
            result, error = use()
            assert result == 0
        except Exception as caught:
            error = caught
        assert said(error) == expected
    use()


def test_the_probe_knows_all_forms_of_dates():
    names = {name for name in kelmor_probe.names() if "date" in name and name.startswith("fn_")}
    tested = {*USERS, *FROM_DATE_TIME, *FROM_OFFSET, *FROM_SPAN}
    tested |= {"fn_read_py_vers_date", "fn_read_py_datetimedelta"}
    assert names <= tested
