// Powers of ten by repeated squaring.
#include "marshal/ten_pow.h"

uint64_t TenPow::pow(uint64_t n) noexcept {
    uint64_t result = 1;
    for (uint64_t square = 10; n != 0; n >>= 1, square *= square) {
        if (n & 1) result *= square;
    }
    return result;
}
