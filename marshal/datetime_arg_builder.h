// The fields of a Python date and time, and their arithmetic in ticks.
#pragma once

#include <cstddef>
#include <cstdint>

// Ticks are 100 ns, counted from midnight of 1 January of year 1. On the wire the kind stands in
// bits 62 and 63 above them. The calendar is reckoned here so that neither side has to call the
// other for it.
class DateTimeArgBuilder {
public:
    static constexpr int64_t ticks_per_microsecond = 10;
    static constexpr int64_t ticks_per_second = 10'000'000;
    static constexpr int64_t ticks_per_minute = 600'000'000;
    static constexpr int64_t ticks_per_hour = 36'000'000'000;
    static constexpr int64_t ticks_per_day = 864'000'000'000;
    static constexpr int64_t end_of_range = 3'155'378'976'000'000'000; // the first tick beyond

    // Days before each month, and of the whole year.
    static const int32_t m_days_to_month365[13];
    static const int32_t m_days_to_month366[13];

    int32_t kind = 0; // 0 unspecified, 1 UTC, 2 local
    int32_t year = 1;
    int32_t month = 1;
    int32_t day = 1;
    int32_t hour = 0;
    int32_t minute = 0;
    int32_t second = 0;
    int32_t microsecond = 0;

    DateTimeArgBuilder() noexcept = default;
    explicit DateTimeArgBuilder(int64_t value) noexcept { from_ticks(value); }

    // Bits 62 and 63 stay clear whatever the kind. False when the date does not exist or lies
    // beyond the range; hour, minute and second are not tested.
    bool to_ticks_non_kind(int64_t &ticks) const noexcept;

    bool to_ticks(int64_t &value) const noexcept;

    // The moment in UTC of these fields at `offset`; false when it lies outside the range.
    bool to_utc_ticks(int64_t offset, int64_t &value) const noexcept;

    // The same for a time without a date: it wraps within one day, and cannot fail.
    bool to_time_ticks(int64_t offset, int64_t &value) const noexcept;

    // Ticks below a microsecond are lost.
    void from_ticks(int64_t value) noexcept;

    // Puts the kind above the ticks.
    void add_shift(int64_t &value) const noexcept;

    bool is_leap_year() const noexcept;

private:
    void set_date(int64_t day_number) noexcept;
};
static_assert(sizeof(DateTimeArgBuilder) == 32 && offsetof(DateTimeArgBuilder, kind) == 0 &&
              offsetof(DateTimeArgBuilder, year) == 4 && offsetof(DateTimeArgBuilder, month) == 8 &&
              offsetof(DateTimeArgBuilder, day) == 12 && offsetof(DateTimeArgBuilder, hour) == 16 &&
              offsetof(DateTimeArgBuilder, minute) == 20 &&
              offsetof(DateTimeArgBuilder, second) == 24 &&
              offsetof(DateTimeArgBuilder, microsecond) == 28);
