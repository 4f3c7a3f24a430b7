"""Dates, times, offsets and spans to Python, and the capsule that both ways import."""

import ctypes
import datetime as dt
import sys
import types

import pytest
from marshal_dates import (
    DATE_TIME,
    OFFSET,
    SPAN,
    UTC_BIT,
    KEPT,
    HOURS,
    zone,
    signed,
    NOON,
    NOON_TICKS,
)
from marshal_probe import (
    INT,
    INT64,
    OBJECT,
    POINTER,
    convert,
    native,
    said,
)
from shell_probe import kelmor_probe

behaviour = pytest.mark.behaviour


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
