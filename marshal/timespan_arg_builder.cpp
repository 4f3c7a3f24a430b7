// Fields of a timedelta to ticks, and back.
#include "marshal/timespan_arg_builder.h"

namespace {

constexpr int64_t microseconds_per_second = 1'000'000;
constexpr int64_t microseconds_per_day = 86'400'000'000;
constexpr int64_t seconds_per_day = 86'400;
constexpr int64_t ticks_per_microsecond = 10;
constexpr int64_t ticks_per_second = 10'000'000;
constexpr int64_t ticks_per_day = 864'000'000'000;

// The widest span: 922337203685.477580 s either way.
constexpr int64_t most_seconds = 922'337'203'685;
constexpr int64_t most_microseconds = 477'580;

} // namespace

void TimeSpanArgBuilder::normalize() noexcept {
    days += 1;
    const int64_t total = seconds * microseconds_per_second + microseconds - microseconds_per_day;
    seconds = static_cast<int32_t>(total / microseconds_per_second);
    microseconds = static_cast<int32_t>(total % microseconds_per_second);
}

bool TimeSpanArgBuilder::is_overflow(int64_t seconds, int64_t microseconds) noexcept {
    if (seconds > most_seconds || seconds < -most_seconds) return true;
    if (seconds < most_seconds && seconds > -most_seconds) return false;
    return microseconds > most_microseconds || microseconds < -most_microseconds;
}

bool TimeSpanArgBuilder::to_ticks(int64_t &ticks) noexcept {
    if (days < 0) normalize();
    const int64_t whole_seconds = days * seconds_per_day + seconds;
    if (is_overflow(whole_seconds, microseconds)) return false;
    ticks = (whole_seconds * microseconds_per_second + microseconds) * ticks_per_microsecond;
    return true;
}

void TimeSpanArgBuilder::from_ticks(int64_t ticks) noexcept {
    days = static_cast<int32_t>(ticks / ticks_per_day);
    seconds = static_cast<int32_t>(ticks / ticks_per_second % seconds_per_day);
    microseconds = static_cast<int32_t>(ticks / ticks_per_microsecond % microseconds_per_second);
}
