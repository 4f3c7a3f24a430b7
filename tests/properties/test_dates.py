"""Dates, offsets and spans against datetime arithmetic and against .NET's own calendar."""

import calendar
import datetime as dt

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from kelmor.harness import Times

EPOCH = dt.datetime(1, 1, 1)
MICROSECOND = dt.timedelta(microseconds=1)
LAST_TICK = 3155378975999999999
INT64 = range(-(2**63), 2**63)

offsets = st.integers(-14 * 60, 14 * 60)


def ticks_of(value):
    return (value - EPOCH) // MICROSECOND * 10


@settings(max_examples=3000, deadline=None)
@given(st.datetimes())
def test_a_naive_datetime_has_the_ticks_of_its_distance_from_year_one(count_case, value):
    count_case()
    assert Times.date_ticks(value) == ticks_of(value)
    assert Times.date_kind_of(value) == 0
    assert Times.echo_date(value) == value


@settings(max_examples=3000, deadline=None)
@given(st.integers(0, LAST_TICK))
def test_ticks_come_back_cut_to_microseconds(count_case, ticks):
    count_case()
    assert Times.date_from(ticks, 0) == EPOCH + dt.timedelta(microseconds=ticks // 10)


@settings(max_examples=2000, deadline=None)
@given(st.datetimes(), st.integers(-3_700_000, 3_700_000))
def test_days_add_up_as_in_the_managed_calendar(count_case, value, days):
    count_case()
    try:
        expected = value + dt.timedelta(days=days)
    except OverflowError:
        with pytest.raises(RuntimeError, match="ArgumentOutOfRange"):
            Times.add_days(value, days)
        return
    assert Times.add_days(value, days) == expected


def test_every_day_of_every_leap_rule_has_its_ticks(count_case):
    for year in range(1, 10000):
        assert Times.is_leap_year(year) == calendar.isleap(year)
        for month in (1, 2, 3, 12):
            last = dt.datetime(year, month, calendar.monthrange(year, month)[1], 23, 59, 59)
            assert Times.date_ticks(last) == ticks_of(last)
            count_case()


@settings(max_examples=2000, deadline=None)
@given(st.datetimes(dt.datetime(2, 1, 1), dt.datetime(9998, 12, 31)), offsets)
def test_an_aware_datetime_reaches_managed_code_as_utc(count_case, value, minutes):
    count_case()
    zone = dt.timezone(dt.timedelta(minutes=minutes))
    assert Times.date_ticks(value.replace(tzinfo=zone)) == ticks_of(
        value - dt.timedelta(minutes=minutes)
    )
    assert Times.date_kind_of(value.replace(tzinfo=zone)) == 1
    back = Times.echo_date(value.replace(tzinfo=zone))
    assert back.tzinfo is dt.timezone.utc
    assert back == value.replace(tzinfo=zone)


@settings(max_examples=2000, deadline=None)
@given(st.datetimes(dt.datetime(2, 1, 1), dt.datetime(9998, 12, 31)), offsets)
def test_an_offset_keeps_local_time_and_zone(count_case, value, minutes):
    count_case()
    aware = value.replace(tzinfo=dt.timezone(dt.timedelta(minutes=minutes)))
    assert Times.offset_ticks(aware) == ticks_of(value)
    assert Times.offset_of(aware) == minutes * 600_000_000
    back = Times.echo_offset(aware)
    assert (back.replace(tzinfo=None), back.utcoffset()) == (value, aware.utcoffset())
    assert Times.offset_from(ticks_of(value), minutes) == aware


@settings(max_examples=2000, deadline=None)
@given(st.times(), offsets)
def test_an_aware_time_wraps_within_one_day(count_case, value, minutes):
    count_case()
    day = 864_000_000_000
    local = ((value.hour * 60 + value.minute) * 60 + value.second) * 10_000_000
    local += value.microsecond * 10
    assert Times.date_ticks(value) == local
    aware = value.replace(tzinfo=dt.timezone(dt.timedelta(minutes=minutes)))
    assert Times.date_ticks(aware) == (local - minutes * 600_000_000) % day


@settings(max_examples=4000, deadline=None)
@given(st.timedeltas())
def test_a_span_has_the_ticks_of_its_microseconds_or_is_refused(count_case, value):
    count_case()
    ticks = value // MICROSECOND * 10
    if ticks in INT64:
        assert Times.span_ticks(value) == ticks
        assert Times.echo_span(value) == value
    else:
        with pytest.raises(OverflowError, match="^value too large or too small for .Net TimeSpan$"):
            Times.span_ticks(value)


@settings(max_examples=4000, deadline=None)
@given(st.integers(INT64.start, INT64.stop - 1))
def test_span_ticks_come_back_cut_towards_zero(count_case, ticks):
    count_case()
    microseconds = abs(ticks) // 10 * (1 if ticks >= 0 else -1)
    assert Times.span_from(ticks) == dt.timedelta(microseconds=microseconds)
