// Folds digit groups into 96 bits, rounding as the managed decimal does.
#include "marshal/decimal_arg_out_builder.h"

#include "marshal/ten_pow.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int group_length = 9;
constexpr uint32_t group_factor = 1'000'000'000;
constexpr int most_digits = 29; // of 2^96 - 1

} // namespace

const DecimalArgOutBuilder::EstMaxValue DecimalArgOutBuilder::est_max_value = {
    35, {0x28f5c28f, 0xf5c28f5c, 0x028f5c28}};

DecimalArgOutBuilder::DecimalArgOutBuilder(uint32_t *target) noexcept : target(target) {
    std::memset(target, 0, 16);
}

void DecimalArgOutBuilder::begin_accept_decimal(int sign, int64_t exponent, int round_at) noexcept {
    this->sign = sign;
    this->exponent = exponent;
    this->round_at = round_at;
}

void DecimalArgOutBuilder::accept_decimal_mantissa(uint64_t group, int length) noexcept {
    uint64_t factor = length == group_length ? group_factor : TenPow::pow(length);
    int32_t total = digits + length;
    if (total == round_at) {
        round_last(group, factor);
        total -= 1;
        factor /= 10;
    }
    digits = total;
    // The 29th digit fits only below 2^96. A number with a scale gives up one place of it instead.
    if (total == most_digits && exponent < 0 && is_overflow_estimated(group)) {
        exponent += 1;
        round_last(group, 10);
        factor = 10;
    }
    imul_and_add(static_cast<uint32_t>(factor), static_cast<uint32_t>(group));
}

bool DecimalArgOutBuilder::end_accept_decimal() noexcept {
    if (overflow) return false;
    if (is_zero()) {
        // A managed zero has neither sign nor scale here.
        sign = 0;
        exponent = 0;
    }
    target[3] = static_cast<uint32_t>(sign) << 31;
    if (exponent > 0) return move_exponent_to_mantissa();
    target[3] |= static_cast<uint32_t>(-exponent) << 16;
    return true;
}

bool DecimalArgOutBuilder::accept_long(int64_t value) noexcept {
    const uint64_t magnitude =
        value < 0 ? -static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    begin_accept_decimal(value < 0 ? 1 : 0, 0, -1);
    constexpr uint64_t half = uint64_t{group_factor} * group_factor;
    accept_decimal_mantissa(magnitude / half, 2);
    accept_decimal_mantissa(magnitude / group_factor % group_factor, group_length);
    accept_decimal_mantissa(magnitude % group_factor, group_length);
    return end_accept_decimal();
}

bool DecimalArgOutBuilder::accept_double(double value) noexcept {
    if (!std::isfinite(value)) return false;
    char text[32]; // d.dddddddddddddde[+-]ddd
    std::snprintf(text, sizeof text, "%.14e", std::fabs(value));
    int64_t exponent = std::strtol(std::strchr(text, 'e') + 1, nullptr, 10) - 14;
    uint64_t mantissa = static_cast<uint64_t>(text[0] - '0');
    for (int i = 2; i < 16; i++) mantissa = mantissa * 10 + static_cast<uint64_t>(text[i] - '0');
    for (; mantissa % 10 == 0 && exponent < 0; mantissa /= 10) exponent += 1;
    for (; exponent < -28; exponent++) round_last(mantissa, UINT64_MAX);
    begin_accept_decimal(std::signbit(value) ? 1 : 0, exponent, -1);
    accept_decimal_mantissa(mantissa / group_factor, 6);
    accept_decimal_mantissa(mantissa % group_factor, group_length);
    return end_accept_decimal();
}

void DecimalArgOutBuilder::imul_and_add(uint32_t factor, uint32_t addend) noexcept {
    uint64_t carry = addend;
    for (int i = 0; i < 3; i++) {
        carry += uint64_t{target[i]} * factor;
        target[i] = static_cast<uint32_t>(carry);
        carry >>= 32;
    }
    if (carry != 0) overflow = true;
}

void DecimalArgOutBuilder::round_last(uint64_t &group, uint64_t factor) noexcept {
    const uint64_t dropped = group % 10;
    group /= 10;
    if (dropped > 5 || (dropped == 5 && group % 2 == 1)) group += 1;
    if (group == factor) {
        imul_and_add(1, 1);
        group = 0;
    }
}

bool DecimalArgOutBuilder::is_overflow_estimated(uint64_t group) const noexcept {
    for (int i = 2; i >= 0; i--) {
        if (target[i] != est_max_value.words[i]) return target[i] > est_max_value.words[i];
    }
    return group > est_max_value.last_digits;
}

bool DecimalArgOutBuilder::is_zero() const noexcept {
    return (target[0] | target[1] | target[2]) == 0;
}

bool DecimalArgOutBuilder::move_exponent_to_mantissa() noexcept {
    // A mantissa of zero never comes here, so a large exponent overflows after a few steps.
    for (; exponent >= group_length && !overflow; exponent -= group_length) {
        imul_and_add(group_factor, 0);
    }
    if (overflow) return false;
    imul_and_add(static_cast<uint32_t>(TenPow::pow(static_cast<uint64_t>(exponent))), 0);
    exponent = 0;
    return !overflow;
}
