// Gathers decimal digits into a managed decimal.
#pragma once

#include <cstddef>
#include <cstdint>

// A managed decimal is four words: 96 bits of mantissa, low word first, and the flags with the sign
// in bit 31 and the scale, 0 to 28, in bits 16 to 23. Digits arrive in groups, most significant
// first, and are folded in without floating point.
class DecimalArgOutBuilder {
public:
    // The mantissa of the largest decimal without its last two digits, and these digits.
    struct EstMaxValue {
        uint32_t last_digits;
        uint32_t words[3];
    };
    static const EstMaxValue est_max_value;

    uint32_t *target;
    bool overflow = false; // the mantissa no longer fits 96 bits
    int32_t round_at = -1; // the count of digits at which the last is rounded off; -1 for none
    int64_t exponent = 0;  // of ten
    int32_t sign = 0;      // 1 for a negative number
    int32_t digits = 0;    // accepted so far

    // Clears the 16 bytes of the target.
    explicit DecimalArgOutBuilder(uint32_t *target) noexcept;

    void begin_accept_decimal(int sign, int64_t exponent, int round_at) noexcept;

    // A group of 1 to 9 digits.
    void accept_decimal_mantissa(uint64_t group, int length) noexcept;

    // Writes the flags. False when the number does not fit.
    bool end_accept_decimal() noexcept;

    // The whole number `value`.
    bool accept_long(int64_t value) noexcept;

    // The 15 significant digits that a double is sure of. False for what is no finite number or
    // does not fit.
    bool accept_double(double value) noexcept;

    // mantissa = mantissa * factor + addend
    void imul_and_add(uint32_t factor, uint32_t addend) noexcept;

    // Drops the last digit of the group, rounding half to even. When the group becomes `factor`
    // the carry goes to the mantissa, and the group is 0.
    void round_last(uint64_t &group, uint64_t factor) noexcept;

    // Whether the mantissa followed by these two digits is more than 96 bits.
    bool is_overflow_estimated(uint64_t group) const noexcept;

    bool is_zero() const noexcept;

    // Multiplies a positive exponent into the mantissa. False when it does not fit.
    bool move_exponent_to_mantissa() noexcept;
};
static_assert(sizeof(DecimalArgOutBuilder) == 32 && offsetof(DecimalArgOutBuilder, target) == 0 &&
              offsetof(DecimalArgOutBuilder, overflow) == 8 &&
              offsetof(DecimalArgOutBuilder, round_at) == 12 &&
              offsetof(DecimalArgOutBuilder, exponent) == 16 &&
              offsetof(DecimalArgOutBuilder, sign) == 24 &&
              offsetof(DecimalArgOutBuilder, digits) == 28);
