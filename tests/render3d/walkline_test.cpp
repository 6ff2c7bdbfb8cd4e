/* walkline_test.cpp - lines of half planes: pixels, colours, cutting at the plane. */
#include "planes.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr uint32_t glassy = 0x80102030u;

TEST(WalkLine, ShortLinesGiveOneEdge)
{
    ABUF abuf = MakePlane(8, 8);
    abuf.edgeId = 1;
    SAMPLE a = Lit(glassy, 1, 1, {2.5, 3.2}), b = Lit(glassy + 1, 2, 1, {3.5, 3.2});
    ABufWalkLine(&abuf, &a, &b, {2.5, 9});
    ASSERT_EQ(1u, ListOf(&abuf, 2, 3).size());
    EXPECT_EQ(0xFFFFFF00u, ListOf(&abuf, 2, 3)[0].coverage);
    EXPECT_EQ(0u, ListOf(&abuf, 3, 3).size());
    PlaneFree(&abuf);
}

TEST(WalkLine, LongLinesTouchEachPixelWithRunningColours)
{
    ABUF abuf = MakePlane(8, 8);
    abuf.edgeId = 1;
    SAMPLE a = Lit(0x80000000, 0, 1, {1.5, 2.5}), b = Lit(0x80000064, 50, 1, {6.5, 2.5});
    ABufWalkLine(&abuf, &a, &b, {2.5, -9});
    for (int x = 1; x <= 6; x++) {
        const auto list = ListOf(&abuf, x, 2);
        ASSERT_EQ(1u, list.size()) << x;
        EXPECT_EQ(0x0000FFFFu, list[0].coverage) << x;
        /* count 5 x (1 + 5) = 30, 100 / 30 cut to 3 a step, 6 steps a pixel, half a pixel to the first border */
        const uint32_t steps = x == 1 ? 0 : 3 + 6 * static_cast<uint32_t>(x - 2);
        EXPECT_EQ(0x80000000 + 3 * steps, list[0].colour) << x;
        EXPECT_NEAR(50.0 * steps / 30, list[0].z, 1e-5) << x;
    }
    EXPECT_EQ(0u, ListOf(&abuf, 0, 2).size());
    EXPECT_EQ(0u, ListOf(&abuf, 7, 2).size());
    PlaneFree(&abuf);
}

TEST(WalkLine, WhatLiesOutsideIsCutAndWhatIsNotFiniteDropped)
{
    ABUF abuf = MakePlane(8, 8);
    abuf.edgeId = 1;
    SAMPLE a = Lit(glassy, 1, 1, {-1e9, 3.5}), b = Lit(glassy, 2, 1, {1e9, 3.5});
    ABufWalkLine(&abuf, &a, &b, {0, 9}); /* thousands of millions of steps, of which the plane sees some */
    int touched = 0;
    for (int x = 0; x < 8; x++) touched += static_cast<int>(ListOf(&abuf, x, 3).size());
    EXPECT_EQ(8, touched);
    PlaneFree(&abuf);

    abuf = MakePlane(8, 8);
    for (const double bad : {static_cast<double>(NAN), static_cast<double>(INFINITY), 1e300}) {
        a = Lit(glassy, 1, 1, {1, bad});
        b = Lit(glassy, 1, 1, {3, 3});
        ABufWalkLine(&abuf, &a, &b, {0, 9});
        ABufWalkLine(&abuf, &b, &a, {0, 9});
    }
    a = Lit(glassy, 1, 1, {-5, 20});
    b = Lit(glassy, 1, 1, {20, 20});
    ABufWalkLine(&abuf, &a, &b, {0, 9});
    ABufWalkLine(&abuf, &a, &a, {0, 9});
    for (int i = 0; i < 64; i++) ASSERT_EQ(0u, PlanePixel(&abuf, i % 8, i / 8)->value);
    PlaneFree(&abuf);
}

TEST(WalkLine, ClippingLosesNoPixel)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> any(-30, 40);
    for (int i = 0; i < 300; i++) {
        const POINTDB p = {any(random), any(random)}, q = {any(random), any(random)};
        ABUF cut = MakePlane(10, 10), wide = MakePlane(120, 120);
        cut.edgeId = wide.edgeId = 1;
        SAMPLE a = Lit(glassy, 1, 1, p), b = Lit(glassy, 2, 1, q);
        ABufWalkLine(&cut, &a, &b, {5, 5});
        a.at = p + POINTDB{50, 50};
        b.at = q + POINTDB{50, 50};
        ABufWalkLine(&wide, &a, &b, {55, 55});
        for (int y = 0; y < 10; y++)
            for (int x = 0; x < 10; x++)
                ASSERT_EQ(ListOf(&wide, x + 50, y + 50).size(), ListOf(&cut, x, y).size()) << i;
        PlaneFree(&cut);
        PlaneFree(&wide);
    }
}

} // namespace
