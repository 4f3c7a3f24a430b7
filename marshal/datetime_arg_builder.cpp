// The calendar: fields of a date and time to ticks, and back.
#include "marshal/datetime_arg_builder.h"

namespace {

constexpr int64_t days_per_year = 365;
constexpr int64_t days_per_4_years = 1461;
constexpr int64_t days_per_100_years = 36524;
constexpr int64_t days_per_400_years = 146097;

constexpr int kind_shift = 62;
constexpr int64_t ticks_mask = (int64_t{1} << kind_shift) - 1;

} // namespace

const int32_t DateTimeArgBuilder::m_days_to_month365[13] = {0,   31,  59,  90,  120, 151, 181,
                                                            212, 243, 273, 304, 334, 365};
const int32_t DateTimeArgBuilder::m_days_to_month366[13] = {0,   31,  60,  91,  121, 152, 182,
                                                            213, 244, 274, 305, 335, 366};

bool DateTimeArgBuilder::is_leap_year() const noexcept {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

void DateTimeArgBuilder::add_shift(int64_t &value) const noexcept {
    value |= static_cast<int64_t>(static_cast<uint64_t>(kind) << kind_shift);
}

bool DateTimeArgBuilder::to_ticks_non_kind(int64_t &ticks) const noexcept {
    if (year < 1 || year > 9999 || month < 1 || month > 12) return false;
    const int32_t *days_to_month = is_leap_year() ? m_days_to_month366 : m_days_to_month365;
    if (day < 1 || day > days_to_month[month] - days_to_month[month - 1]) return false;

    const int64_t y = year - 1;
    const int64_t days = y * 365 + y / 4 - y / 100 + y / 400 + days_to_month[month - 1] + day - 1;
    // The managed type knows no leap second: it becomes the one before it.
    const int64_t seconds = second == 60 ? 59 : second;
    ticks = days * ticks_per_day + hour * ticks_per_hour + minute * ticks_per_minute +
            seconds * ticks_per_second + microsecond * ticks_per_microsecond;
    return ticks < end_of_range;
}

bool DateTimeArgBuilder::to_ticks(int64_t &value) const noexcept {
    if (!to_ticks_non_kind(value)) return false;
    add_shift(value);
    return true;
}

bool DateTimeArgBuilder::to_utc_ticks(int64_t offset, int64_t &value) const noexcept {
    int64_t ticks = 0;
    if (!to_ticks_non_kind(ticks) || ticks < offset) return false;
    // Tested before it is reckoned: a large negative offset would leave 64 bits.
    if (offset < 0 && ticks > end_of_range - 1 + offset) return false;
    value = ticks - offset;
    add_shift(value);
    return true;
}

bool DateTimeArgBuilder::to_time_ticks(int64_t offset, int64_t &value) const noexcept {
    int64_t ticks = 0;
    to_ticks_non_kind(ticks);
    value = (ticks_per_day + ticks - offset % ticks_per_day) % ticks_per_day;
    add_shift(value);
    return true;
}

void DateTimeArgBuilder::from_ticks(int64_t value) noexcept {
    kind = static_cast<int32_t>(static_cast<uint64_t>(value) >> kind_shift);
    const int64_t ticks = value & ticks_mask;
    set_date(ticks / ticks_per_day);
    hour = static_cast<int32_t>(ticks / ticks_per_hour % 24);
    minute = static_cast<int32_t>(ticks / ticks_per_minute % 60);
    second = static_cast<int32_t>(ticks / ticks_per_second % 60);
    microsecond = static_cast<int32_t>(ticks / ticks_per_microsecond % 1'000'000);
}

void DateTimeArgBuilder::set_date(int64_t day_number) noexcept {
    const int64_t cycles_400 = day_number / days_per_400_years;
    day_number -= cycles_400 * days_per_400_years;
    // The last 100 years of the cycle and the last year of four are a day longer than their
    // fellows: on that day the quotient is 4.
    int64_t cycles_100 = day_number / days_per_100_years;
    if (cycles_100 == 4) cycles_100 = 3;
    day_number -= cycles_100 * days_per_100_years;
    const int64_t cycles_4 = day_number / days_per_4_years;
    day_number -= cycles_4 * days_per_4_years;
    int64_t years = day_number / days_per_year;
    if (years == 4) years = 3;
    const int32_t day_of_year = static_cast<int32_t>(day_number - years * days_per_year);

    year = static_cast<int32_t>(cycles_400 * 400 + cycles_100 * 100 + cycles_4 * 4 + years + 1);
    const bool leap = years == 3 && (cycles_4 != 24 || cycles_100 == 3);
    const int32_t *days_to_month = leap ? m_days_to_month366 : m_days_to_month365;
    // No month has more than 32 days, so the estimate is never too late.
    month = day_of_year / 32 + 1;
    while (days_to_month[month] <= day_of_year) month++;
    day = day_of_year - days_to_month[month - 1] + 1;
}
