/* box_test.cpp - upright boxes and the upright ellipse, edges included or not. */
#include "geometry/box.h"

#include <gtest/gtest.h>

using namespace zr32;

namespace {

TEST(Box, OfPointsIsTheLeastThatHoldsThem)
{
    const POINTDB points[] = {{3, -1}, {-2, 4}, {0.5, 7}, {1, -3}};
    const BOXDB box = BoxOfPoints(points, 4);
    EXPECT_EQ(-2, box.left);
    EXPECT_EQ(-3, box.top);
    EXPECT_EQ(3, box.right);
    EXPECT_EQ(7, box.bottom);
    const BOXDB one = BoxOfPoints(points, 1);
    EXPECT_EQ(3, one.left);
    EXPECT_EQ(-1, one.bottom);
}

TEST(Box, CornersRunFromTheLeftTopOverTheRightTopBackToTheFirst)
{
    const BOXCORNERS corners = CornersOfBox({1, 2, 3, 4});
    const POINTDB want[5] = {{1, 2}, {3, 2}, {3, 4}, {1, 4}, {1, 2}};
    for (int i = 0; i < 5; i++) {
        EXPECT_EQ(want[i].x, corners.p[i].x) << i;
        EXPECT_EQ(want[i].y, corners.p[i].y) << i;
    }
}

TEST(Box, ReachWidensItOnEverySideAndEdgesAreInside)
{
    const BOXDB box = {10, 20, 30, 40};
    const struct {
        POINTDB p;
        int in;
    } cases[] = {{{20, 30}, 1},    {{8, 18}, 1},     {{32, 42}, 1},    {{7.99, 30}, 0},
                 {{32.01, 30}, 0}, {{20, 17.99}, 0}, {{20, 42.01}, 0}, {{NAN, 30}, 0}};
    for (const auto &c : cases) EXPECT_EQ(c.in, PointInBox(c.p, box, 2)) << c.p.x << ' ' << c.p.y;
}

TEST(Box, EllipseHasASideOfZeroOnItself)
{
    EXPECT_EQ(0, EllipseSide({3, 0}, 3, 2));
    EXPECT_EQ(0, EllipseSide({0, -2}, 3, 2));
    EXPECT_EQ(-36, EllipseSide({0, 0}, 3, 2));
    EXPECT_EQ(16 * 4 - 36, EllipseSide({4, 0}, 3, 2));
    EXPECT_EQ(9 * 9 - 36, EllipseSide({0, 3}, 3, 2));
}

} // namespace
