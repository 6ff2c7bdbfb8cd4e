/* fixed_test.cpp - truncation and pairs, values worked out by hand. */
#include "frame/frame.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace zr32;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(Fixed, TruncationIsDefinedForEveryDouble)
{
    const struct {
        const char *name;
        double value;
        int32_t want;
    } cases[] = {
        {"zero", 0.0, 0},
        {"negative zero", -0.0, 0},
        {"cut, not rounded", 2.999, 2},
        {"towards zero, not down", -2.999, -2},
        {"largest", 2147483647.9, 2147483647},
        {"one past the largest wraps", 2147483648.0, INT32_MIN},
        {"smallest", -2147483648.9, INT32_MIN},
        {"one past the smallest wraps", -2147483649.0, INT32_MAX},
        {"low 32 bits of 2^31 + 5", 2147483653.0, INT32_MIN + 5},
        {"low 32 bits of -(2^31 + 5)", -2147483653.0, INT32_MAX - 4},
        {"low 32 bits of 2^32 + 5", 4294967301.0, 5},
        {"low 32 bits of -(2^32 + 5)", -4294967301.0, -5},
        {"low bits of 2^62", 4611686018427387904.0, 0},
        {"lowest 64-bit integer", -9223372036854775808.0, 0},
        {"no 64-bit integer", 9223372036854775808.0, 0},
        {"huge", 1e300, 0},
        {"infinity", inf, 0},
        {"negative infinity", -inf, 0},
        {"not a number", nan, 0},
        {"denormal", 5e-324, 0},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.want, TruncInt(c.value)) << c.name;
        EXPECT_EQ(static_cast<uint8_t>(static_cast<uint32_t>(c.want) & 0xFF), TruncByte(c.value)) << c.name;
    }
}

TEST(Fixed, DbToFixTruncatesTowardsZeroAndWraps)
{
    const struct {
        const char *name;
        double value;
        ZRFIXED want;
    } cases[] = {
        {"negative one and a half", -1.5, -98304},
        {"just below one", 0.99999999, 65535},
        {"just above minus one", -0.99999999, -65535},
        {"a thirty-second of a step", 1.0 / 131072, 0},
        {"largest", 32767.99999, 0x7FFFFFFF},
        {"32768 wraps", 32768.0, INT32_MIN},
        {"65536 wraps to 0", 65536.0, 0},
        {"65537.5 wraps to 1.5", 65537.5, 0x18000},
        {"-32769 wraps", -32769.0, 0x7FFF0000},
        {"not a number", nan, 0},
        {"infinity", inf, 0},
    };
    for (const auto &c : cases) EXPECT_EQ(c.want, DbToFix(c.value)) << c.name;
}

TEST(Fixed, FixToDbIsExactAndGoesRound)
{
    EXPECT_EQ(1.52587890625e-05, FixToDb(1));
    EXPECT_EQ(-32768.0, FixToDb(INT32_MIN));
    EXPECT_EQ(-1.5, FixToDb(-98304));
    std::mt19937 random(1);
    for (int i = 0; i < 100000; i++) {
        const ZRFIXED value = static_cast<ZRFIXED>(random());
        ASSERT_EQ(value, DbToFix(FixToDb(value)));
    }
}

TEST(Fixed, PairSumsAndDifferencesWrap)
{
    const ZRPOINTFX sum = PtfxAdd(0x7FFFFFFF, -5, 1, 7);
    EXPECT_EQ(INT32_MIN, sum.x);
    EXPECT_EQ(2, sum.y);
    const ZRPOINTFX difference = PtfxSub(INT32_MIN, 5, 1, 7);
    EXPECT_EQ(INT32_MAX, difference.x);
    EXPECT_EQ(-2, difference.y);
}

TEST(Fixed, MidpointAndTwoThirdsDivideTowardsZero)
{
    EXPECT_EQ(0, PtfxMidpoint(-1, 0, 0, 0).x);
    EXPECT_EQ(-1, PtfxMidpoint(-1, 0, -2, 0).x);
    EXPECT_EQ(2, PtfxMidpoint(0, 2, 0, 3).y);
    EXPECT_EQ(INT32_MAX, PtfxMidpoint(INT32_MAX, 0, INT32_MAX, 0).x) << "the sum is formed in 64 bits";
    EXPECT_EQ(7, PtfxTwoThirds(1, 0, 10, 0).x);
    EXPECT_EQ(0, PtfxTwoThirds(0, 0, -1, 0).x) << "-2 / 3 is 0";
    EXPECT_EQ(-1, PtfxTwoThirds(-1, 0, -2, 0).x) << "-5 / 3 is -1";
    EXPECT_EQ(INT32_MIN, PtfxTwoThirds(0, INT32_MIN, 0, INT32_MIN).y);
}

TEST(Fixed, PairsAreEqualOnlyInBothParts)
{
    EXPECT_EQ(1, PtfxEqual(3, -4, 3, -4));
    EXPECT_EQ(0, PtfxEqual(3, -4, 3, -5));
    EXPECT_EQ(0, PtfxEqual(3, -4, 2, -4));
}

TEST(Fixed, IntegerPartIsTheUpperHalf)
{
    EXPECT_EQ(-1, FixIntPart(DbToFix(-0.5)));
    EXPECT_EQ(10, FixIntPart(DbToFix(10.9)));
    EXPECT_EQ(-32768, FixIntPart(INT32_MIN));
    EXPECT_EQ(DbToFix(-2.25), FixAddWhole(DbToFix(-0.25), -2));
    EXPECT_EQ(INT32_MIN, FixAddWhole(0x7FFF0000, 1));
}

TEST(Fixed, WrappingSums)
{
    EXPECT_EQ(INT32_MIN, WrapAdd(INT32_MAX, 1));
    EXPECT_EQ(INT32_MAX, WrapSub(INT32_MIN, 1));
}

} // namespace
