// Splits 96 bits into decimal digits by long division.
#include "marshal/decimal_arg_in_builder.h"

#include <algorithm>
#include <cstddef>

namespace {

// Divides the three words by ten in place; gives the remainder.
uint8_t divide_by_ten(uint32_t *words) {
    uint64_t remainder = 0;
    for (int i = 2; i >= 0; i--) {
        const uint64_t part = remainder << 32 | words[i];
        words[i] = static_cast<uint32_t>(part / 10);
        remainder = part % 10;
    }
    return static_cast<uint8_t>(remainder);
}

} // namespace

void DecimalArgInBuilder::assign() noexcept {
    static_assert(sizeof(DecimalArgInBuilder) == 56 &&
                  offsetof(DecimalArgInBuilder, m_source) == 0 &&
                  offsetof(DecimalArgInBuilder, m_digits) == 8 &&
                  offsetof(DecimalArgInBuilder, m_mantissa_length) == 40 &&
                  offsetof(DecimalArgInBuilder, m_exponent) == 44 &&
                  offsetof(DecimalArgInBuilder, m_sign) == 48);
    // 2^96 - 1 has 29 digits; zero has one.
    do {
        m_digits[m_mantissa_length++] = divide_by_ten(m_source);
    } while ((m_source[0] | m_source[1] | m_source[2]) != 0);
    std::reverse(m_digits, m_digits + m_mantissa_length);
    m_exponent = static_cast<int32_t>(m_source[3] >> 16 & 0xff);
    m_sign = static_cast<int32_t>(m_source[3] >> 31);
}
