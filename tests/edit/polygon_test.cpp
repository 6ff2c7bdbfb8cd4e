/* polygon_test.cpp - corners of polygon shapes. */
#include "edit/polygon.h"
#include "support/shapes.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

/* Reads the shape with its centre at (10, 20), corner 0 at (x, y) and the given numbers. */
int Read(double corners, double inner, double x, double y, POLYGON *polygon)
{
    PATHREC *path = MakePath({{6, 10, 20}, {0x400, corners, inner}, {2, x, y}});
    SEGWALK walk;
    SEGMENT segment = {};
    SegWalkStart(path, placeImage, &walk);
    SegWalkNext(&walk, &segment);
    SegWalkNext(&walk, &segment);
    const int read = PolygonOf(&segment, polygon);
    ZrPathDeletePtr(path, 0);
    return read;
}

} // namespace

TEST(Polygon, SquareHasItsCornersAtQuarterTurns)
{
    POLYGON polygon;
    ASSERT_TRUE(Read(4, 0, 30, 20, &polygon));
    ASSERT_EQ(polygon.count, 4u);
    const POINTDB want[] = {{30, 20}, {10, 40}, {-10, 20}, {10, 0}, {30, 20}};
    for (uint32_t k = 0; k <= 4; k++) {
        EXPECT_NEAR(PolygonCorner(&polygon, k).x, want[k].x, 1e-4) << k;
        EXPECT_NEAR(PolygonCorner(&polygon, k).y, want[k].y, 1e-4) << k;
    }
    EXPECT_EQ(PolygonCorner(&polygon, 2).x, -10) << "opposite: reflected, not turned";
    EXPECT_EQ(PolygonCorner(&polygon, 2).y, 20);
    EXPECT_EQ(PolygonCorner(&polygon, 1).x, PolygonCorner(&polygon, 3).x) << "a mirrored pair";
    EXPECT_NE(PolygonCorner(&polygon, 1).x, 10) << "the short turn is kept";
}

TEST(Polygon, StarHasInnerCornersBetweenTheOuter)
{
    for (const int n : {2, 3, 5, 6, 40}) {
        POLYGON polygon;
        ASSERT_TRUE(Read(n, 7, 30, 20, &polygon));
        ASSERT_EQ(polygon.count, 2u * static_cast<uint32_t>(n));
        for (uint32_t k = 0; k < polygon.count; k++) {
            const POINTDB corner = PolygonCorner(&polygon, k);
            const POINTDB from = corner - polygon.centre;
            EXPECT_NEAR(Length(from), k % 2 ? 7 : 20, 1e-9);
            const double turn = 3.14159265358979 * k / n;
            EXPECT_NEAR(from.x, std::cos(turn) * Length(from), 2e-4) << n << ' ' << k;
            EXPECT_NEAR(from.y, std::sin(turn) * Length(from), 2e-4) << n << ' ' << k;
        }
    }
}

TEST(Polygon, CornersAreTurnedFromWhereverCornerZeroIs)
{
    POLYGON polygon;
    ASSERT_TRUE(Read(4, 0, 13, 24, &polygon)); /* (3, 4) from the centre: a quarter turn leads to (-4, 3) */
    EXPECT_EQ(PolygonCorner(&polygon, 0).x, 13);
    EXPECT_EQ(PolygonCorner(&polygon, 0).y, 24);
    EXPECT_NEAR(PolygonCorner(&polygon, 1).x, 6, 1e-4);
    EXPECT_NEAR(PolygonCorner(&polygon, 1).y, 23, 1e-4);
    EXPECT_NEAR(PolygonCorner(&polygon, 3).x, 14, 1e-4);
    EXPECT_NEAR(PolygonCorner(&polygon, 3).y, 17, 1e-4);
}

TEST(Polygon, CornersComeInMirroredPairs)
{
    for (int n = 3; n <= 12; n++)
        for (const double inner : {0.0, 7.0}) {
            POLYGON polygon;
            ASSERT_TRUE(Read(n, inner, 26, 20, &polygon)); /* the axis is level, at y 20 */
            for (uint32_t k = 1; k < polygon.count; k++) {
                const POINTDB a = PolygonCorner(&polygon, k);
                const POINTDB b = PolygonCorner(&polygon, polygon.count - k);
                EXPECT_NEAR(a.x, b.x, 1e-12) << n << ' ' << k;
                EXPECT_NEAR(a.y - 20, 20 - b.y, 1e-12) << n << ' ' << k;
            }
        }
}

TEST(Polygon, NumbersAreCutToWholeCorners)
{
    POLYGON polygon;
    ASSERT_TRUE(Read(5.9, -3, 30, 20, &polygon));
    EXPECT_EQ(polygon.count, 5u);
}

TEST(Polygon, WhatHasNoCornersIsNoPolygon)
{
    POLYGON polygon;
    EXPECT_FALSE(Read(0, 0, 30, 20, &polygon));
    EXPECT_FALSE(Read(0.9, 0, 30, 20, &polygon));
    EXPECT_FALSE(Read(-3, 0, 30, 20, &polygon));
    EXPECT_FALSE(Read(5, 7, 10, 20, &polygon)) << "a star without an outer circle";
    EXPECT_TRUE(Read(5, 0, 10, 20, &polygon)) << "a polygon of one point is one";

    PATHREC *path = MakePath({{0x400, 5, 0}, {2, 30, 20}});
    SEGWALK walk;
    SEGMENT segment = {};
    SegWalkStart(path, placeImage, &walk);
    ASSERT_TRUE(SegWalkNext(&walk, &segment));
    EXPECT_FALSE(PolygonOf(&segment, &polygon)) << "no centre";
    ZrPathDeletePtr(path, 0);
}
