// Spans of a timedelta and their ticks.
#include "marshal/timespan_arg_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>

namespace {

using Fields = std::tuple<int32_t, int32_t, int32_t>;

Fields fields_of(const TimeSpanArgBuilder &span) {
    return {span.days, span.seconds, span.microseconds};
}

int64_t ticks_of(TimeSpanArgBuilder span) {
    int64_t ticks = 1;
    EXPECT_TRUE(span.to_ticks(ticks));
    return ticks;
}

bool fits(TimeSpanArgBuilder span) {
    int64_t ticks;
    return span.to_ticks(ticks);
}

TEST(TimeSpanArgBuilder, IsThreeInt32InOrder) {
    RecordProperty("behaviour", "marshal-dates.span-builder.layout");
    TimeSpanArgBuilder span;
    ASSERT_EQ(sizeof span, 12u);
    int32_t *const words = &span.days;
    for (int i = 0; i < 3; i++) words[i] = 7 + i;
    EXPECT_EQ(fields_of(span), Fields(7, 8, 9));
}

TEST(TimeSpanArgBuilder, StartsAtZero) {
    RecordProperty("behaviour", "marshal-dates.span-builder.default");
    EXPECT_EQ(fields_of(TimeSpanArgBuilder()), Fields(0, 0, 0));
}

TEST(TimeSpanArgBuilder, CountsTicks) {
    RecordProperty("behaviour", "marshal-dates.span.to-ticks");
    EXPECT_EQ(ticks_of({0, 0, 0}), 0);
    EXPECT_EQ(ticks_of({1, 2, 3}), 864020000030);
}

TEST(TimeSpanArgBuilder, CountsNegativeTicks) {
    RecordProperty("behaviour", "marshal-dates.span.negative");
    EXPECT_EQ(ticks_of({-1, 0, 0}), -864000000000);
    EXPECT_EQ(ticks_of({-1, 1, 0}), -863990000000);
    EXPECT_EQ(ticks_of({-1, 86399, 999999}), -10);
    EXPECT_EQ(ticks_of({-2, 0, 0}), -1728000000000);
}

TEST(TimeSpanArgBuilder, BringsNegativeDaysToOneSign) {
    RecordProperty("behaviour", "marshal-dates.span.normalize");
    for (const auto &[before, after] : {std::pair{Fields(-1, 86399, 999999), Fields(0, 0, -1)},
                                        {Fields(-1, 1, 0), Fields(0, -86399, 0)},
                                        {Fields(-1, 0, 0), Fields(0, -86400, 0)},
                                        {Fields(-3, 86399, 1), Fields(-2, 0, -999999)}}) {
        const auto &[days, seconds, microseconds] = before;
        TimeSpanArgBuilder span(days, seconds, microseconds);
        span.normalize();
        EXPECT_EQ(fields_of(span), after);
        TimeSpanArgBuilder converted(days, seconds, microseconds);
        int64_t ticks;
        converted.to_ticks(ticks);
        EXPECT_EQ(fields_of(converted), after);
    }
    TimeSpanArgBuilder positive(0, 5, 6);
    int64_t ticks;
    positive.to_ticks(ticks);
    EXPECT_EQ(fields_of(positive), Fields(0, 5, 6));
}

constexpr int64_t border = 922337203685;

TEST(TimeSpanArgBuilder, OverflowsOutsideTheBorder) {
    RecordProperty("behaviour", "marshal-dates.span.overflow-outside");
    for (int64_t microseconds : {int64_t{-999999}, int64_t{0}, int64_t{999999}}) {
        EXPECT_TRUE(TimeSpanArgBuilder::is_overflow(border + 1, microseconds));
        EXPECT_TRUE(TimeSpanArgBuilder::is_overflow(-border - 1, microseconds));
    }
}

TEST(TimeSpanArgBuilder, NeverOverflowsInsideTheBorder) {
    RecordProperty("behaviour", "marshal-dates.span.overflow-inside");
    for (int64_t microseconds : {int64_t{-999999}, int64_t{0}, int64_t{999999}}) {
        for (int64_t seconds : {border - 1, 1 - border, int64_t{0}}) {
            EXPECT_FALSE(TimeSpanArgBuilder::is_overflow(seconds, microseconds));
        }
    }
}

TEST(TimeSpanArgBuilder, LooksAtMicrosecondsOnTheBorder) {
    RecordProperty("behaviour", "marshal-dates.span.overflow-border");
    for (int64_t seconds : {border, -border}) {
        EXPECT_FALSE(TimeSpanArgBuilder::is_overflow(seconds, 477580));
        EXPECT_FALSE(TimeSpanArgBuilder::is_overflow(seconds, -477580));
        EXPECT_TRUE(TimeSpanArgBuilder::is_overflow(seconds, 477581));
        EXPECT_TRUE(TimeSpanArgBuilder::is_overflow(seconds, -477581));
    }
}

TEST(TimeSpanArgBuilder, FitsUpToTheExtremes) {
    RecordProperty("behaviour", "marshal-dates.span.to-ticks-extremes");
    EXPECT_EQ(ticks_of({10675199, 10085, 477580}), 9223372036854775800);
    EXPECT_FALSE(fits({10675199, 10085, 477581}));
    // The negatives of both, as a timedelta holds them.
    EXPECT_EQ(ticks_of({-10675200, 76314, 522420}), -9223372036854775800);
    EXPECT_FALSE(fits({-10675200, 76314, 522419}));
    EXPECT_FALSE(fits({999999999, 86399, 999999}));
    EXPECT_FALSE(fits({-999999999, 0, 0}));
}

TEST(TimeSpanArgBuilder, TruncatesTowardsZero) {
    RecordProperty("behaviour", "marshal-dates.span.from-ticks");
    for (const auto &[ticks, expected] : {std::pair{int64_t{864020000030}, Fields(1, 2, 3)},
                                          {-864020000030, Fields(-1, -2, -3)},
                                          {-15, Fields(0, 0, -1)},
                                          {-9, Fields(0, 0, 0)},
                                          {INT64_MAX, Fields(10675199, 10085, 477580)},
                                          {INT64_MIN, Fields(-10675199, -10085, -477580)}}) {
        TimeSpanArgBuilder span(9, 9, 9);
        span.from_ticks(ticks);
        EXPECT_EQ(fields_of(span), expected) << ticks;
    }
}

} // namespace
