/* minoraxis_test.cpp - which of two pixels a thin line belongs to, worked out by hand. */
#include "geometry/minoraxis.h"

#include <gtest/gtest.h>

using namespace zr32;

namespace {

TEST(MinorAxis, TiesAreVerticalAndSlopesRunAgainstTheMainAxis)
{
    const struct {
        POINTDB tangent;
        MAINAXIS axis;
        double slope;
    } cases[] = {
        {{1, 4}, MAINLY_VERTICAL, 0.25},    {{-1, 4}, MAINLY_VERTICAL, -0.25},   {{3, -3}, MAINLY_VERTICAL, -1},
        {{4, 1}, MAINLY_HORIZONTAL, 0.25},  {{-4, 1}, MAINLY_HORIZONTAL, -0.25}, {{0, 0}, MAINLY_VERTICAL, 0},
        {{-7, 0}, MAINLY_HORIZONTAL, -0.0},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.axis, MainAxis(c.tangent)) << c.tangent.x << ' ' << c.tangent.y;
        EXPECT_EQ(c.slope, MinorSlope(c.tangent, c.axis)) << c.tangent.x << ' ' << c.tangent.y;
    }
    EXPECT_EQ(0, MinorSlope({5, 0}, MAINLY_VERTICAL)) << "no division by 0";
    EXPECT_EQ(0, MinorSlope({0, 5}, MAINLY_HORIZONTAL));
}

TEST(MinorAxis, OneSampleAfterAChangeGoesByTheOldAxisButNotAtTheEnds)
{
    const POINTDB steep = {1, 2};
    const POINTDB flat = {2, 1};
    MAINAXIS before = MAINLY_HORIZONTAL;
    EXPECT_EQ(MAINLY_VERTICAL, AxisOfSample(steep, 0, &before)) << "the first sample has none before it";
    EXPECT_EQ(MAINLY_VERTICAL, AxisOfSample(steep, 0x100, &before));
    EXPECT_EQ(MAINLY_VERTICAL, AxisOfSample(flat, 0x200, &before)) << "once by the old one";
    EXPECT_EQ(MAINLY_HORIZONTAL, AxisOfSample(flat, 0x300, &before));
    EXPECT_EQ(MAINLY_VERTICAL, AxisOfSample(steep, 0x10000, &before)) << "the last by its own";
}

TEST(MinorAxis, NeighbourLiesOnTheSideOnWhichTheLinePasses)
{
    const struct {
        const char *name;
        MAINAXIS axis;
        double k, fx, fy;
        double distance;
        int32_t dx, dy;
        int backward;
    } cases[] = {
        {"upright, 0.25 right", MAINLY_VERTICAL, 0, 0.75, 0.1, 63.75, 1, 0, 0},
        {"upright, 0.25 left", MAINLY_VERTICAL, 0, 0.25, 0.9, 63.75, -1, 0, 1},
        {"through the centre", MAINLY_VERTICAL, 0, 0.5, 0.1, 0, -1, 0, 1},
        {"-0.25 - 0.25 x 0.5", MAINLY_VERTICAL, 0.5, 0.25, 0.75, 95.625, -1, 0, 1},
        {"0.25 + 0.25 x 0.5", MAINLY_VERTICAL, 0.5, 0.75, 0.25, 95.625, 1, 0, 0},
        {"level, 0.25 below", MAINLY_HORIZONTAL, 0, 0.1, 0.75, 63.75, 0, 1, 0},
        {"level, 0.25 above", MAINLY_HORIZONTAL, 0, 0.9, 0.25, 63.75, 0, -1, 1},
        {"-0.25 - 0.25 x 0.5, level", MAINLY_HORIZONTAL, 0.5, 0.75, 0.25, 95.625, 0, -1, 1},
        {"0.25 - 0.25 x 0.5, level", MAINLY_HORIZONTAL, 0.5, 0.75, 0.75, 31.875, 0, 1, 0},
    };
    for (const auto &c : cases) {
        const MINORCHOICE choice = ChooseMinor(c.axis, c.k, c.fx, c.fy);
        EXPECT_EQ(c.distance, choice.distance) << c.name;
        EXPECT_EQ(c.dx, choice.dx) << c.name;
        EXPECT_EQ(c.dy, choice.dy) << c.name;
        EXPECT_EQ(c.backward, choice.backward) << c.name;
    }
}

TEST(MinorAxis, AStraightLineLeavesItsPixelBackwardOneStepSooner)
{
    MINORCHOICE forward = {};
    MINORCHOICE backward = {};
    backward.backward = 1;
    for (const int straight : {0, 1}) {
        EXPECT_TRUE(NeighbourWins(forward, 127, straight));
        EXPECT_FALSE(NeighbourWins(forward, 128, straight));
        EXPECT_TRUE(NeighbourWins(backward, 127, straight));
        EXPECT_EQ(straight, NeighbourWins(backward, 128, straight));
        EXPECT_FALSE(NeighbourWins(backward, 129, straight));
    }
}

} // namespace
