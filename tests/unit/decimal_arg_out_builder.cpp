// Digits folded into a managed decimal.
#include "marshal/decimal_arg_out_builder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <limits>

namespace {

using Words = std::array<uint32_t, 4>;
constexpr uint32_t full = 0xffffffff;

// A builder over a block of its own. The constructor of the builder clears the block, so a mantissa
// is set after it.
struct Folding {
    explicit Folding(uint32_t low = 0, uint32_t middle = 0, uint32_t high = 0) {
        words[0] = low;
        words[1] = middle;
        words[2] = high;
    }
    Folding(const Folding &other) : Folding(other.words[0], other.words[1], other.words[2]) {}
    uint64_t low64() const { return uint64_t{words[1]} << 32 | words[0]; }

    Words words{};
    DecimalArgOutBuilder builder{words.data()};
};

TEST(DecimalArgOutBuilder, HasItsFieldsInOrder) {
    RecordProperty("behaviour", "marshal-decimals.out.fields");
    EXPECT_EQ(offsetof(DecimalArgOutBuilder, target), 0u);
    EXPECT_EQ(offsetof(DecimalArgOutBuilder, overflow), 8u);
    EXPECT_EQ(offsetof(DecimalArgOutBuilder, round_at), 12u);
    EXPECT_EQ(offsetof(DecimalArgOutBuilder, exponent), 16u);
    EXPECT_EQ(offsetof(DecimalArgOutBuilder, sign), 24u);
    EXPECT_EQ(offsetof(DecimalArgOutBuilder, digits), 28u);
    EXPECT_EQ(sizeof(DecimalArgOutBuilder), 32u);
    EXPECT_EQ(sizeof(DecimalArgOutBuilder::overflow), 1u);
}

TEST(DecimalArgOutBuilder, StartsWithAClearedBlock) {
    RecordProperty("behaviour", "marshal-decimals.out.constructor");
    Words words{full, full, full, full};
    const DecimalArgOutBuilder builder(words.data());
    EXPECT_EQ(words, (Words{0, 0, 0, 0}));
    EXPECT_EQ(builder.target, words.data());
    EXPECT_FALSE(builder.overflow);
    EXPECT_EQ(builder.round_at, -1);
    EXPECT_EQ(builder.exponent, 0);
    EXPECT_EQ(builder.sign, 0);
    EXPECT_EQ(builder.digits, 0);
}

TEST(DecimalArgOutBuilder, OffersItsOperations) {
    RecordProperty("behaviour", "marshal-decimals.out.operations");
    using B = DecimalArgOutBuilder;
    void (B::*begin)(int, int64_t, int) = &B::begin_accept_decimal;
    void (B::*accept)(uint64_t, int) = &B::accept_decimal_mantissa;
    bool (B::*end)() = &B::end_accept_decimal;
    void (B::*multiply)(uint32_t, uint32_t) = &B::imul_and_add;
    void (B::*round)(uint64_t &, uint64_t) = &B::round_last;
    bool (B::*estimate)(uint64_t) const = &B::is_overflow_estimated;
    bool (B::*zero)() const = &B::is_zero;
    bool (B::*move)() = &B::move_exponent_to_mantissa;
    EXPECT_TRUE(begin && accept && end && multiply && round && estimate && zero && move);
    Folding folding;
    EXPECT_TRUE(folding.builder.accept_long(INT64_MIN));
    EXPECT_EQ(folding.words, (Words{0, 0x80000000, 0, 0x80000000}));
    Folding real;
    EXPECT_TRUE(real.builder.accept_double(-1.5));
    EXPECT_EQ(real.words, (Words{15, 0, 0, 0x80010000}));
}

TEST(DecimalArgOutBuilder, TakesTheSureDigitsOfADouble) {
    const auto words_of = [](double value) {
        Folding folding;
        EXPECT_TRUE(folding.builder.accept_double(value)) << value;
        return folding.words;
    };
    EXPECT_EQ(words_of(0.0), (Words{0, 0, 0, 0}));
    EXPECT_EQ(words_of(0.1), (Words{1, 0, 0, 0x00010000}));
    EXPECT_EQ(words_of(1e-28), (Words{1, 0, 0, 0x001c0000}));
    EXPECT_EQ(words_of(1e-30), (Words{0, 0, 0, 0}));
    EXPECT_EQ(words_of(123456789012345.0), (Words{0x860ddf79, 0x00007048, 0, 0}));
    Folding folding;
    EXPECT_FALSE(folding.builder.accept_double(1e29));
    EXPECT_FALSE(folding.builder.accept_double(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(folding.builder.accept_double(std::numeric_limits<double>::quiet_NaN()));
}

TEST(DecimalArgOutBuilder, KnowsWhereTheLast29thDigitFits) {
    RecordProperty("behaviour", "marshal-decimals.out.est-max-value");
    const auto *words = reinterpret_cast<const uint32_t *>(&DecimalArgOutBuilder::est_max_value);
    EXPECT_EQ((Words{words[0], words[1], words[2], words[3]}),
              (Words{35, 0x28f5c28f, 0xf5c28f5c, 0x028f5c28}));
    EXPECT_EQ(sizeof(DecimalArgOutBuilder::est_max_value), 16u);
}

TEST(DecimalArgOutBuilder, BeginsWithSignExponentAndRounding) {
    RecordProperty("behaviour", "marshal-decimals.builder.begin");
    Folding folding;
    folding.builder.begin_accept_decimal(1, -7, 30);
    EXPECT_EQ(folding.builder.sign, 1);
    EXPECT_EQ(folding.builder.exponent, -7);
    EXPECT_EQ(folding.builder.round_at, 30);
}

TEST(DecimalArgOutBuilder, FoldsGroupsIn) {
    RecordProperty("behaviour", "marshal-decimals.builder.accept-plain");
    Folding folding;
    folding.builder.accept_decimal_mantissa(123456789, 9);
    folding.builder.accept_decimal_mantissa(1, 2);
    EXPECT_EQ(folding.low64(), 12345678901u);
    EXPECT_EQ(folding.builder.digits, 11);
}

TEST(DecimalArgOutBuilder, RoundsTheLastDigitOfTheCount) {
    RecordProperty("behaviour", "marshal-decimals.builder.accept-round");
    Folding one_group;
    one_group.builder.begin_accept_decimal(0, 0, 3);
    one_group.builder.accept_decimal_mantissa(126, 3);
    EXPECT_EQ(one_group.low64(), 13u);
    EXPECT_EQ(one_group.builder.digits, 2);

    Folding two_groups;
    two_groups.builder.begin_accept_decimal(0, 0, 12);
    two_groups.builder.accept_decimal_mantissa(123456789, 9);
    two_groups.builder.accept_decimal_mantissa(126, 3);
    EXPECT_EQ(two_groups.low64(), 12345678913u);
    EXPECT_EQ(two_groups.builder.digits, 11);
}

TEST(DecimalArgOutBuilder, GivesUpADigitOfScaleForThe29th) {
    RecordProperty("behaviour", "marshal-decimals.builder.accept-shrink");
    Folding folding; // 7.9228162514264337593543950346
    folding.builder.begin_accept_decimal(0, -28, -1);
    for (uint64_t group : {792281625u, 142643375u, 935439503u}) {
        folding.builder.accept_decimal_mantissa(group, 9);
    }
    folding.builder.accept_decimal_mantissa(46, 2);
    EXPECT_EQ(folding.builder.exponent, -27);
    EXPECT_EQ(folding.builder.digits, 29);
    EXPECT_FALSE(folding.builder.overflow);
    // 7922816251426433759354395035
    EXPECT_EQ(folding.words, (Words{0x9999999b, 0x99999999, 0x19999999, 0}));
}

TEST(DecimalArgOutBuilder, RoundsHalfToEven) {
    RecordProperty("behaviour", "marshal-decimals.builder.round-last.half-even");
    for (const auto &[before, after] :
         {std::pair<uint64_t, uint64_t>{24, 2}, {25, 2}, {26, 3}, {35, 4}, {45, 4}}) {
        Folding folding;
        uint64_t group = before;
        folding.builder.round_last(group, 100);
        EXPECT_EQ(group, after) << before;
        EXPECT_TRUE(folding.builder.is_zero());
    }
}

TEST(DecimalArgOutBuilder, CarriesOutOfTheGroup) {
    RecordProperty("behaviour", "marshal-decimals.builder.round-last.carry");
    Folding folding(7);
    uint64_t group = 96;
    folding.builder.round_last(group, 10);
    EXPECT_EQ(group, 0u);
    EXPECT_EQ(folding.low64(), 8u);
}

TEST(DecimalArgOutBuilder, MultipliesAcrossTheWords) {
    RecordProperty("behaviour", "marshal-decimals.builder.imul-and-add");
    Folding folding(full);
    folding.words[3] = 0x80010000;
    folding.builder.imul_and_add(full, 5);
    EXPECT_EQ(folding.words, (Words{6, 0xfffffffe, 0, 0x80010000}));
    EXPECT_FALSE(folding.builder.overflow);
}

TEST(DecimalArgOutBuilder, TellsAMultiplicationPast96Bits) {
    RecordProperty("behaviour", "marshal-decimals.builder.imul-and-add.overflow");
    Folding by_product(0, 0, 0x80000000);
    by_product.builder.imul_and_add(2, 0);
    EXPECT_TRUE(by_product.builder.overflow);
    Folding by_addend(full, full, full);
    by_addend.builder.imul_and_add(1, 0);
    EXPECT_FALSE(by_addend.builder.overflow);
    by_addend.builder.imul_and_add(1, 1);
    EXPECT_TRUE(by_addend.builder.overflow);
}

TEST(DecimalArgOutBuilder, EstimatesTheOverflowOfTwoMoreDigits) {
    RecordProperty("behaviour", "marshal-decimals.builder.overflow-estimate");
    const uint32_t low = 0x28f5c28f, middle = 0xf5c28f5c, high = 0x028f5c28;
    for (const Folding &smaller : {Folding(low - 1, middle, high), Folding(full, middle - 1, high),
                                   Folding(full, full, high - 1)}) {
        EXPECT_FALSE(smaller.builder.is_overflow_estimated(99));
    }
    for (const Folding &larger :
         {Folding(low + 1, middle, high), Folding(0, middle + 1, high), Folding(0, 0, high + 1)}) {
        EXPECT_TRUE(larger.builder.is_overflow_estimated(0));
    }
    const Folding equal(low, middle, high);
    EXPECT_FALSE(equal.builder.is_overflow_estimated(0));
    EXPECT_FALSE(equal.builder.is_overflow_estimated(35));
    EXPECT_TRUE(equal.builder.is_overflow_estimated(36));
    EXPECT_TRUE(equal.builder.is_overflow_estimated(99));
}

TEST(DecimalArgOutBuilder, IsZeroWithAllThreeWordsZero) {
    RecordProperty("behaviour", "marshal-decimals.builder.is-zero");
    EXPECT_TRUE(Folding().builder.is_zero());
    Folding flags_only;
    flags_only.words[3] = 0x80000000;
    EXPECT_TRUE(flags_only.builder.is_zero());
    EXPECT_FALSE(Folding(1).builder.is_zero());
    EXPECT_FALSE(Folding(0, 1).builder.is_zero());
    EXPECT_FALSE(Folding(0, 0, 1).builder.is_zero());
}

TEST(DecimalArgOutBuilder, FailsInTheEndAfterAnOverflow) {
    RecordProperty("behaviour", "marshal-decimals.builder.end.overflow");
    Folding folding(1);
    folding.builder.overflow = true;
    EXPECT_FALSE(folding.builder.end_accept_decimal());
}

TEST(DecimalArgOutBuilder, LosesSignAndScaleOfAZero) {
    RecordProperty("behaviour", "marshal-decimals.builder.end.zero");
    for (int64_t exponent : {-5, 50}) {
        Folding folding;
        folding.builder.begin_accept_decimal(1, exponent, -1);
        EXPECT_TRUE(folding.builder.end_accept_decimal());
        EXPECT_EQ(folding.words, (Words{0, 0, 0, 0}));
        EXPECT_EQ(folding.builder.sign, 0);
        EXPECT_EQ(folding.builder.exponent, 0);
    }
}

TEST(DecimalArgOutBuilder, WritesSignAndScale) {
    RecordProperty("behaviour", "marshal-decimals.builder.end.scale");
    Folding scaled(1);
    scaled.builder.begin_accept_decimal(1, -28, -1);
    EXPECT_TRUE(scaled.builder.end_accept_decimal());
    EXPECT_EQ(scaled.words, (Words{1, 0, 0, 0x801c0000}));
    Folding whole(1);
    whole.builder.begin_accept_decimal(1, 0, -1);
    EXPECT_TRUE(whole.builder.end_accept_decimal());
    EXPECT_EQ(whole.words, (Words{1, 0, 0, 0x80000000}));
}

TEST(DecimalArgOutBuilder, MultipliesAPositiveExponentIn) {
    RecordProperty("behaviour", "marshal-decimals.builder.end.positive-exponent");
    Folding folding(3);
    folding.builder.begin_accept_decimal(1, 19, -1);
    EXPECT_TRUE(folding.builder.end_accept_decimal());
    // 3 * 10^19
    EXPECT_EQ(folding.words, (Words{0x9db80000, 0xa055690d, 1, 0x80000000}));
    Folding too_large(8);
    too_large.builder.begin_accept_decimal(0, 28, -1);
    EXPECT_FALSE(too_large.builder.end_accept_decimal());
    Folding far_too_large(1);
    far_too_large.builder.begin_accept_decimal(0, INT64_MAX, -1);
    EXPECT_FALSE(far_too_large.builder.end_accept_decimal());
}

} // namespace
