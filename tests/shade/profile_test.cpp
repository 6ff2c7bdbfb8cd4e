/* profile_test.cpp - the profile table against its formulas, entry by entry. */
#include "shade/profile.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

using namespace zr32;

namespace {

/* Before anything else in this process: a build of nothing. */
const bool tableWasZeroAfterAllZeros = [] {
    ProfileTableBuild(0, 0, 0, 0);
    for (const PROFILEENTRY &entry : PROFILETBL)
        if (entry.rise != 0 || entry.height != 0) return false;
    return true;
}();

TEST(Profile, ABuildWithAllArgumentsZeroOnAFreshLibraryBuildsNothing)
{
    EXPECT_TRUE(tableWasZeroAfterAllZeros);
}

struct WANTED {
    double rise;
    double height;
};

WANTED Arc(double d, double u, double width, int invert)
{
    if (invert) return {d / std::tan(std::asin(u)), -(std::sin(std::acos(u)) * width)};
    return {std::tan(std::acos(u)) * d, std::sin(std::acos(u)) * width};
}

WANTED FormA(double d, double r, double width, int invert)
{
    return Arc(d, 1 - d / r, width, invert);
}

WANTED FormB(double d, double r, double width, int invert)
{
    if (invert && d == 0.0) return {1.0, -width};
    return Arc(d, d / r, width, invert);
}

WANTED Entry(int profile, int i, double width, int invert)
{
    const double step = width * 0.000244140625;
    const double half = width * 0.5;
    const double d = i * step;
    const int j = i >= 2048 ? i - 2048 : i;
    if (profile == 1) {
        const double d2 = d < width ? d : width;
        return {d2, invert ? -d2 : d2};
    }
    if (profile == 0) return d < width ? FormA(d, width, width, invert) : WANTED{1, 0};
    if (profile == 101) return d < width ? FormB(d, width, width, invert) : WANTED{1, 0};
    if (i >= 4096) return {1, 0};
    switch (profile) {
    case 100: return FormA(j * step, half, width, invert);
    case 102: return i < 2048 ? FormA(d, half, width, invert) : FormB(j * step, half, width, invert);
    case 103: return FormB(j * step, half, width, invert);
    default: return i < 2048 ? FormA(d, half, width, invert) : FormA((4095 - i) * step, half, width, invert);
    }
}

TEST(Profile, EveryEntryOfEveryProfileIsItsFormula)
{
    for (int profile : {0, 1, 100, 101, 102, 103, 104}) {
        for (int invert : {0, 1}) {
            for (double width : {8.0, 0.75, 37.5}) {
                ProfileTableBuild(profile, width, 0, invert);
                for (int i = 0; i < profileEntries; i++) {
                    const WANTED wanted = Entry(profile, i, width, invert);
                    ASSERT_EQ(0, memcmp(&wanted.rise, &PROFILETBL[i].rise, 8)) << profile << " rise " << i;
                    ASSERT_EQ(wanted.height, PROFILETBL[i].height) << profile << " height " << i;
                }
            }
        }
    }
}

TEST(Profile, AChangeOfScaleAloneRebuildsTheSameTable)
{
    ProfileTableBuild(0, 8, 0, 0);
    const PROFILEENTRY before = PROFILETBL[700];
    PROFILETBL[700].rise = -1;
    ProfileTableBuild(0, 8, 0, 0); /* nothing changed: not rebuilt */
    EXPECT_EQ(-1, PROFILETBL[700].rise);
    ProfileTableBuild(0, 8, 5, 0);
    EXPECT_EQ(before.rise, PROFILETBL[700].rise);
}

TEST(Profile, AnUnknownCodeLeavesTheTableAndUpdatesTheMemo)
{
    ProfileTableBuild(0, 8, 0, 0);
    const PROFILEENTRY before = PROFILETBL[700];
    ProfileTableBuild(55, 9, 0, 0);
    EXPECT_EQ(before.rise, PROFILETBL[700].rise);
    PROFILETBL[700].rise = -1;
    ProfileTableBuild(0, 8, 0, 0); /* the memo has changed, so this builds */
    EXPECT_EQ(before.rise, PROFILETBL[700].rise);
}

TEST(Profile, InsideOutHasTheSameRiseAndTheOppositeHeight)
{
    ProfileTableBuild(0, 8, 0, 0);
    static PROFILEENTRY upright[profileEntries];
    memcpy(upright, PROFILETBL, sizeof upright);
    ProfileTableBuild(0, 8, 0, 1);
    for (int i = 1; i < 4096; i++) {
        EXPECT_NEAR(upright[i].rise, PROFILETBL[i].rise, 1e-9 * (1 + std::fabs(upright[i].rise)));
        EXPECT_EQ(-upright[i].height, PROFILETBL[i].height);
    }
}

} // namespace
