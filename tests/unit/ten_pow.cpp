// Powers of ten.
#include "marshal/ten_pow.h"

#include <gtest/gtest.h>

namespace {

TEST(TenPow, GivesPowersThatFit) {
    RecordProperty("behaviour", "marshal-decimals.ten-pow.values");
    EXPECT_EQ(TenPow::pow(0), 1u);
    EXPECT_EQ(TenPow::pow(1), 10u);
    EXPECT_EQ(TenPow::pow(9), 1'000'000'000u);
    EXPECT_EQ(TenPow::pow(19), 10'000'000'000'000'000'000u);
    uint64_t expected = 1;
    for (uint64_t n = 0; n < 20; n++, expected *= 10) EXPECT_EQ(TenPow::pow(n), expected) << n;
}

TEST(TenPow, WrapsBeyond64Bits) {
    RecordProperty("behaviour", "marshal-decimals.ten-pow.wraps");
    EXPECT_EQ(TenPow::pow(20), 7'766'279'631'452'241'920u);
    EXPECT_EQ(TenPow::pow(64), 0u);
}

} // namespace
