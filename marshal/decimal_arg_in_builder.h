// Takes a managed decimal apart into decimal digits.
#pragma once

#include <cstdint>

// The division runs in the caller's block: its mantissa is zero afterwards. A caller that needs it
// passes a copy.
class DecimalArgInBuilder {
public:
    explicit DecimalArgInBuilder(uint32_t *source) noexcept : m_source(source) { assign(); }

    // Digit values 0 to 9, most significant first.
    const uint8_t *mantissa_cbegin() const noexcept { return m_digits; }
    int32_t mantissa_length() const noexcept { return m_mantissa_length; }
    int32_t exponent() const noexcept { return m_exponent; } // the scale, 0 or more
    int32_t sign() const noexcept { return m_sign; }         // 1 for a negative number

private:
    void assign() noexcept;

    uint32_t *m_source;
    uint8_t m_digits[32];
    int32_t m_mantissa_length = 0;
    int32_t m_exponent = 0;
    int32_t m_sign = 0;
};
