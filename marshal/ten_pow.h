// Powers of ten.
#pragma once

#include <cstdint>

class TenPow {
public:
    // 10 to the power n modulo 2^64, by repeated squaring.
    static uint64_t pow(uint64_t n) noexcept;
};
