// The calendar of the date builder.
#include "marshal/datetime_arg_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <vector>

namespace {

constexpr int64_t utc_bit = int64_t{1} << 62;
constexpr int64_t local_bit = INT64_MIN;

DateTimeArgBuilder date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                        int microsecond = 0) {
    DateTimeArgBuilder fields;
    fields.year = year;
    fields.month = month;
    fields.day = day;
    fields.hour = hour;
    fields.minute = minute;
    fields.second = second;
    fields.microsecond = microsecond;
    return fields;
}

int64_t ticks_of(const DateTimeArgBuilder &fields) {
    int64_t ticks = -1;
    EXPECT_TRUE(fields.to_ticks_non_kind(ticks));
    return ticks;
}

std::vector<int> fields_of(const DateTimeArgBuilder &fields) {
    return {fields.kind, fields.year,   fields.month,  fields.day,
            fields.hour, fields.minute, fields.second, fields.microsecond};
}

TEST(DateTimeArgBuilder, IsEightInt32InOrder) {
    RecordProperty("behaviour", "marshal-dates.date-builder.layout");
    DateTimeArgBuilder fields;
    ASSERT_EQ(sizeof fields, 32u);
    int32_t *const words = &fields.kind;
    for (int i = 0; i < 8; i++) words[i] = 100 + i;
    EXPECT_EQ(fields_of(fields), (std::vector<int>{100, 101, 102, 103, 104, 105, 106, 107}));
}

TEST(DateTimeArgBuilder, StartsAtTheFirstDay) {
    RecordProperty("behaviour", "marshal-dates.date-builder.default");
    EXPECT_EQ(fields_of(DateTimeArgBuilder()), (std::vector<int>{0, 1, 1, 1, 0, 0, 0, 0}));
}

TEST(DateTimeArgBuilder, IsMadeFromAValueAsFromTicks) {
    RecordProperty("behaviour", "marshal-dates.date-builder.from-value");
    for (int64_t value : {int64_t{0}, int64_t{637610031591234569}, utc_bit | 630873792000000000,
                          local_bit | 3155378975999999999}) {
        DateTimeArgBuilder expected(local_bit | 3155378975999999999); // nothing of it stays
        expected.from_ticks(value);
        EXPECT_EQ(fields_of(DateTimeArgBuilder(value)), fields_of(expected)) << value;
    }
    EXPECT_EQ(fields_of(DateTimeArgBuilder(637610031591234560)),
              (std::vector<int>{0, 2021, 7, 4, 13, 45, 59, 123456}));
}

TEST(DateTimeArgBuilder, KnowsTheDaysBeforeEachMonth) {
    RecordProperty("behaviour", "marshal-dates.date-builder.month-tables");
    const auto &common = DateTimeArgBuilder::m_days_to_month365;
    const auto &leap = DateTimeArgBuilder::m_days_to_month366;
    EXPECT_EQ((std::vector<int>(std::begin(common), std::end(common))),
              (std::vector<int>{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365}));
    EXPECT_EQ((std::vector<int>(std::begin(leap), std::end(leap))),
              (std::vector<int>{0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366}));
}

TEST(DateTimeArgBuilder, TellsLeapYears) {
    RecordProperty("behaviour", "marshal-dates.leap-year");
    for (int year : {4, 400, 2000, 2024}) EXPECT_TRUE(date(year, 1, 1).is_leap_year()) << year;
    for (int year : {1, 100, 1900, 2023, 2100}) {
        EXPECT_FALSE(date(year, 1, 1).is_leap_year()) << year;
    }
}

TEST(DateTimeArgBuilder, RefusesDatesThatDoNotExist) {
    RecordProperty("behaviour", "marshal-dates.ticks.field-ranges");
    int64_t ticks;
    for (const auto &fields :
         {date(0, 1, 1), date(10000, 1, 1), date(2023, 0, 1), date(2023, 13, 1), date(2023, 1, 0),
          date(2023, 1, 32), date(2023, 4, 31), date(2023, 2, 29), date(1900, 2, 29)}) {
        EXPECT_FALSE(fields.to_ticks_non_kind(ticks))
            << fields.year << '-' << fields.month << '-' << fields.day;
    }
    EXPECT_TRUE(date(2000, 2, 29).to_ticks_non_kind(ticks));
}

TEST(DateTimeArgBuilder, CountsTicksFromTheFirstMidnight) {
    RecordProperty("behaviour", "marshal-dates.ticks.values");
    EXPECT_EQ(ticks_of(date(1, 1, 1)), 0);
    EXPECT_EQ(ticks_of(date(4, 12, 31)), 1261440000000000);
    EXPECT_EQ(ticks_of(date(5, 1, 1)), 1262304000000000);
    EXPECT_EQ(ticks_of(date(101, 1, 1)), 31556736000000000);
    EXPECT_EQ(ticks_of(date(400, 12, 31)), 126226944000000000);
    EXPECT_EQ(ticks_of(date(1900, 3, 1)), 599317056000000000);
    EXPECT_EQ(ticks_of(date(2000, 2, 29)), 630873792000000000);
    EXPECT_EQ(ticks_of(date(2000, 3, 1)), 630874656000000000);
    EXPECT_EQ(ticks_of(date(2100, 3, 1)), 662431392000000000);
    EXPECT_EQ(ticks_of(date(2021, 7, 4, 13, 45, 59, 123456)), 637610031591234560);
    EXPECT_EQ(ticks_of(date(9999, 12, 31, 23, 59, 59, 999999)), 3155378975999999990);
}

TEST(DateTimeArgBuilder, TurnsALeapSecondIntoTheOneBefore) {
    RecordProperty("behaviour", "marshal-dates.ticks.second");
    EXPECT_EQ(ticks_of(date(1, 1, 1, 0, 0, 60)), 590000000);
    EXPECT_EQ(ticks_of(date(1, 1, 1, 0, 0, 59)), 590000000);
    EXPECT_EQ(ticks_of(date(1, 1, 1, 0, 0, 61)), 610000000);
}

TEST(DateTimeArgBuilder, EndsWithTheYear9999) {
    RecordProperty("behaviour", "marshal-dates.ticks.upper-limit");
    int64_t ticks;
    EXPECT_TRUE(date(9999, 12, 31, 23, 59, 59, 999999).to_ticks_non_kind(ticks));
    EXPECT_FALSE(date(9999, 12, 31, 24).to_ticks_non_kind(ticks));
    EXPECT_FALSE(date(9999, 12, 31, 23, 59, 59, 1000000).to_ticks_non_kind(ticks));
}

TEST(DateTimeArgBuilder, PutsTheKindAboveTheTicks) {
    RecordProperty("behaviour", "marshal-dates.ticks.add-shift");
    for (const auto &[kind, expected] : {std::pair{0, int64_t{5}},
                                         {1, int64_t{4611686018427387909}},
                                         {2, local_bit | 5},
                                         {3, local_bit | utc_bit | 5}}) {
        DateTimeArgBuilder fields;
        fields.kind = kind;
        int64_t value = 5;
        fields.add_shift(value);
        EXPECT_EQ(value, expected) << kind;
    }
    DateTimeArgBuilder fields;
    int64_t value = utc_bit | 5;
    fields.add_shift(value);
    EXPECT_EQ(value, utc_bit | 5) << "an OR, no assignment";
}

TEST(DateTimeArgBuilder, AddsTheKindInToTicksAlone) {
    RecordProperty("behaviour", "marshal-dates.ticks.with-kind");
    DateTimeArgBuilder fields = date(2020, 1, 1);
    for (int kind : {1, 2}) {
        fields.kind = kind;
        EXPECT_EQ(ticks_of(fields), 637134336000000000);
    }
    fields.kind = 1;
    int64_t value;
    EXPECT_TRUE(fields.to_ticks(value));
    EXPECT_EQ(value, 5248820354427387904);
    EXPECT_FALSE(date(2023, 2, 29).to_ticks(value));
}

TEST(DateTimeArgBuilder, TakesTheOffsetOffForUtc) {
    RecordProperty("behaviour", "marshal-dates.utc-ticks.value");
    DateTimeArgBuilder fields = date(2020, 1, 1, 12);
    fields.kind = 1;
    int64_t value;
    EXPECT_TRUE(fields.to_utc_ticks(72000000000, value));
    EXPECT_EQ(value, 5248820714427387904);
}

TEST(DateTimeArgBuilder, FailsForUtcBeforeTheFirstTick) {
    RecordProperty("behaviour", "marshal-dates.utc-ticks.below-zero");
    int64_t value;
    EXPECT_FALSE(date(1, 1, 1).to_utc_ticks(10, value));
    EXPECT_TRUE(date(1, 1, 1).to_utc_ticks(0, value));
    EXPECT_EQ(value, 0);
    EXPECT_FALSE(date(2020, 1, 1).to_utc_ticks(INT64_MAX, value));
}

TEST(DateTimeArgBuilder, FailsForUtcBehindTheLastTick) {
    RecordProperty("behaviour", "marshal-dates.utc-ticks.above-limit");
    const DateTimeArgBuilder last = date(9999, 12, 31, 23, 59, 59, 999999);
    int64_t value;
    EXPECT_TRUE(last.to_utc_ticks(-9, value));
    EXPECT_EQ(value, 3155378975999999999);
    EXPECT_FALSE(last.to_utc_ticks(-10, value));
    EXPECT_FALSE(last.to_utc_ticks(INT64_MIN + 1, value));
    EXPECT_FALSE(date(2023, 2, 29).to_utc_ticks(0, value));
}

TEST(DateTimeArgBuilder, WrapsTimesWithinADay) {
    RecordProperty("behaviour", "marshal-dates.time-ticks.wrap");
    constexpr int64_t two_hours = 72000000000;
    int64_t value;
    EXPECT_TRUE(date(1, 1, 1, 1).to_time_ticks(two_hours, value));
    EXPECT_EQ(value, 828000000000);
    EXPECT_TRUE(date(1, 1, 1, 23).to_time_ticks(-two_hours, value));
    EXPECT_EQ(value, 36000000000);
    EXPECT_TRUE(date(1, 1, 1, 1).to_time_ticks(864000000000 + two_hours, value));
    EXPECT_EQ(value, 828000000000);
    for (int hour = 0; hour < 24; hour++) {
        for (int64_t offset = -23; offset < 24; offset++) {
            date(1, 1, 1, hour).to_time_ticks(offset * 36000000000, value);
            EXPECT_EQ(value, (hour + 24 - offset) % 24 * 36000000000);
        }
    }
    DateTimeArgBuilder fields = date(1, 1, 1, 1);
    fields.kind = 1;
    fields.to_time_ticks(two_hours, value);
    EXPECT_EQ(value, utc_bit | 828000000000);
}

TEST(DateTimeArgBuilder, NeverFailsForATime) {
    RecordProperty("behaviour", "marshal-dates.time-ticks.ignores-failure");
    int64_t value;
    EXPECT_FALSE(date(1, 13, 1).to_ticks_non_kind(value));
    EXPECT_TRUE(date(1, 13, 1).to_time_ticks(0, value));
}

TEST(DateTimeArgBuilder, FindsTheDateOfTicks) {
    RecordProperty("behaviour", "marshal-dates.from-ticks.values");
    const struct {
        int64_t ticks;
        int year, month, day;
    } rows[] = {
        {0, 1, 1, 1},
        {314496000000000, 1, 12, 31},
        {997056000000000, 4, 2, 29},
        {1261440000000000, 4, 12, 31},
        {31555872000000000, 100, 12, 31},
        {126226944000000000, 400, 12, 31},
        {126227808000000000, 401, 1, 1},
        {599316192000000000, 1900, 2, 28},
        {599317056000000000, 1900, 3, 1},
        {600578496000000000, 1904, 2, 29},
        {630873792000000000, 2000, 2, 29},
        {662430528000000000, 2100, 2, 28},
        {662431392000000000, 2100, 3, 1},
        {638422560000000000, 2024, 1, 31},
        {638423424000000000, 2024, 2, 1},
        {638712000000000000, 2024, 12, 31},
        {3155378112000000000, 9999, 12, 31},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(fields_of(DateTimeArgBuilder(row.ticks)),
                  (std::vector<int>{0, row.year, row.month, row.day, 0, 0, 0, 0}))
            << row.ticks;
    }
}

// Every day of the range, against counting.
TEST(DateTimeArgBuilder, FindsEveryDayOfTheCalendar) {
    int year = 1, month = 1, day = 1;
    for (int64_t ticks = 0; ticks < DateTimeArgBuilder::end_of_range;
         ticks += DateTimeArgBuilder::ticks_per_day) {
        const DateTimeArgBuilder found(ticks);
        ASSERT_EQ(found.year, year);
        ASSERT_EQ(found.month, month);
        ASSERT_EQ(found.day, day);
        int64_t back;
        ASSERT_TRUE(found.to_ticks_non_kind(back));
        ASSERT_EQ(back, ticks);
        const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
        const int lengths[] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        if (++day <= lengths[month - 1]) continue;
        day = 1;
        if (++month <= 12) continue;
        month = 1;
        year++;
    }
    EXPECT_EQ(year, 10000);
}

TEST(DateTimeArgBuilder, LosesTicksBelowAMicrosecond) {
    RecordProperty("behaviour", "marshal-dates.from-ticks.time-fields");
    for (int64_t ticks : {637610031591234560, 637610031591234569}) {
        EXPECT_EQ(fields_of(DateTimeArgBuilder(ticks)),
                  (std::vector<int>{0, 2021, 7, 4, 13, 45, 59, 123456}));
    }
}

TEST(DateTimeArgBuilder, ReadsTheKindAsUnsigned) {
    RecordProperty("behaviour", "marshal-dates.from-ticks.kind");
    EXPECT_EQ(fields_of(DateTimeArgBuilder(local_bit)), (std::vector<int>{2, 1, 1, 1, 0, 0, 0, 0}));
    EXPECT_EQ(fields_of(DateTimeArgBuilder(local_bit | utc_bit | 36000000000)),
              (std::vector<int>{3, 1, 1, 1, 1, 0, 0, 0}));
}

} // namespace
