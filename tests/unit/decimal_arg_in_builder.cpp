// A managed decimal taken apart into digits.
#include "marshal/decimal_arg_in_builder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

namespace {

using Words = std::array<uint32_t, 4>;

std::string digits_of(const DecimalArgInBuilder &builder) {
    std::string text;
    for (int i = 0; i < builder.mantissa_length(); i++) {
        text += static_cast<char>('0' + builder.mantissa_cbegin()[i]);
    }
    return text;
}

TEST(DecimalArgInBuilder, HasItsFieldsInOrder) {
    RecordProperty("behaviour", "marshal-decimals.in.fields");
    Words words{12, 0, 0, 0x80050000};
    const DecimalArgInBuilder builder(words.data());
    ASSERT_EQ(sizeof builder, 56u);
    const auto *bytes = reinterpret_cast<const unsigned char *>(&builder);
    const uint32_t *source;
    std::memcpy(&source, bytes, 8);
    EXPECT_EQ(source, words.data());
    EXPECT_EQ(builder.mantissa_cbegin(), bytes + 8);
    int32_t fields[3];
    std::memcpy(fields, bytes + 40, sizeof fields);
    EXPECT_EQ(fields[0], 2) << "mantissa_length";
    EXPECT_EQ(fields[1], 5) << "exponent";
    EXPECT_EQ(fields[2], 1) << "sign";
}

TEST(DecimalArgInBuilder, SplitsTheMantissaIntoDigits) {
    RecordProperty("behaviour", "marshal-decimals.to-python.assign");
    Words words{0xdfdc1c35, 2, 0, 0};
    const DecimalArgInBuilder builder(words.data());
    EXPECT_EQ(builder.mantissa_length(), 11);
    EXPECT_EQ(digits_of(builder), "12345678901");
    Words largest{0xffffffff, 0xffffffff, 0xffffffff, 0};
    EXPECT_EQ(digits_of(DecimalArgInBuilder(largest.data())), "79228162514264337593543950335");
}

TEST(DecimalArgInBuilder, HasOneDigitForZero) {
    RecordProperty("behaviour", "marshal-decimals.to-python.assign.zero");
    Words words{0, 0, 0, 0};
    EXPECT_EQ(digits_of(DecimalArgInBuilder(words.data())), "0");
}

TEST(DecimalArgInBuilder, ConsumesTheMantissaOfItsSource) {
    RecordProperty("behaviour", "marshal-decimals.to-python.assign.destroys-source");
    Words words{1, 2, 3, 0x80050000};
    const DecimalArgInBuilder builder(words.data());
    EXPECT_EQ(words, (Words{0, 0, 0, 0x80050000}));
}

TEST(DecimalArgInBuilder, ReadsTheScaleAsExponent) {
    RecordProperty("behaviour", "marshal-decimals.to-python.exponent");
    Words words{1, 0, 0, 0x801c0000};
    EXPECT_EQ(DecimalArgInBuilder(words.data()).exponent(), 28);
    Words whole{1, 0, 0, 0xff00ffff};
    EXPECT_EQ(DecimalArgInBuilder(whole.data()).exponent(), 0);
    Words wide{1, 0, 0, 0x00ff0000};
    EXPECT_EQ(DecimalArgInBuilder(wide.data()).exponent(), 255);
}

TEST(DecimalArgInBuilder, ReadsTheSign) {
    RecordProperty("behaviour", "marshal-decimals.to-python.sign");
    Words negative{1, 0, 0, 0x80000000};
    EXPECT_EQ(DecimalArgInBuilder(negative.data()).sign(), 1);
    Words positive{1, 0, 0, 0x7fffffff};
    EXPECT_EQ(DecimalArgInBuilder(positive.data()).sign(), 0);
}

} // namespace
