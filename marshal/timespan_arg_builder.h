// The fields of a Python timedelta, and their arithmetic in ticks.
#pragma once

#include <cstddef>
#include <cstdint>

// Of a timedelta only `days` is ever negative; the managed side wants one sign for all fields.
class TimeSpanArgBuilder {
public:
    int32_t days = 0;
    int32_t seconds = 0;
    int32_t microseconds = 0;

    TimeSpanArgBuilder() noexcept = default;
    TimeSpanArgBuilder(int32_t days, int32_t seconds, int32_t microseconds) noexcept
        : days(days), seconds(seconds), microseconds(microseconds) {}

    // Changes negative fields by normalize(). False when the span does not fit.
    bool to_ticks(int64_t &ticks) noexcept;

    // Truncates towards zero: a negative span has all fields zero or negative.
    void from_ticks(int64_t ticks) noexcept;

    // Brings fields with negative `days` to one sign.
    void normalize() noexcept;

    // Whether that many seconds and microseconds are more ticks than 64 bits hold.
    static bool is_overflow(int64_t seconds, int64_t microseconds) noexcept;
};
static_assert(sizeof(TimeSpanArgBuilder) == 12 && offsetof(TimeSpanArgBuilder, days) == 0 &&
              offsetof(TimeSpanArgBuilder, seconds) == 4 &&
              offsetof(TimeSpanArgBuilder, microseconds) == 8);
