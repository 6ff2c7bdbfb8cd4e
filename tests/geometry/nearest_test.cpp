/* nearest_test.cpp - nearest points against dense sampling, and cases with a known answer. */
#include "geometry/nearest.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace zr32;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double Polynomial(const POINTDB *p, const POINTDB &point, double t)
{
    const double s = 1 - t;
    const POINTDB at = p[0] * (s * s * s) + p[1] * (3 * s * s * t) + p[2] * (3 * s * t * t) + p[3] * (t * t * t);
    return Dot(at - point, at - point);
}

} // namespace

TEST(Nearest, BezierPointMeetsTheEndsExactly)
{
    const POINTDB p[4] = {{1.25, -3.5}, {7, 8}, {-9, 10.75}, {3.125, 4}};
    EXPECT_EQ(BezierPoint(p, 0).x, 1.25);
    EXPECT_EQ(BezierPoint(p, 0).y, -3.5);
    EXPECT_EQ(BezierPoint(p, 1).x, 3.125);
    EXPECT_EQ(BezierPoint(p, 1).y, 4);
    EXPECT_EQ(BezierPoint(p, 0.5).x, (1.25 + 3 * 7 + 3 * -9 + 3.125) / 8);
}

TEST(Nearest, StraightCubicHasOneRootAtTheFoot)
{
    /* Evenly spaced controls: parameter and length agree. */
    const POINTDB p[4] = {{0, 0}, {3, 0}, {6, 0}, {9, 0}};
    double roots[bezierRootsMax];
    ASSERT_EQ(BezierRoots(p, {2.25, 5}, roots), 1);
    EXPECT_NEAR(roots[0], 0.25, 1e-15);
    EXPECT_EQ(BezierRoots(p, {-1, 5}, roots), 0) << "the foot lies outside";
    EXPECT_EQ(BezierRoots(p, {9.5, 0}, roots), 0);
}

TEST(Nearest, PointWithinAHighArchHasThreeStationaryPlaces)
{
    const POINTDB p[4] = {{-10, 0}, {-10, 40}, {10, 40}, {10, 0}};
    double roots[bezierRootsMax];
    const int count = BezierRoots(p, {0, 15}, roots);
    ASSERT_EQ(count, 3);
    EXPECT_NEAR(roots[0] + roots[2], 1, 1e-12);
    EXPECT_NEAR(roots[1], 0.5, 1e-12);
}

TEST(Nearest, RootsAreThoseOfTheSampledDerivative)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-100, 100);
    for (int turn = 0; turn < 400; turn++) {
        POINTDB p[4];
        for (POINTDB &c : p) c = {place(random), place(random)};
        const POINTDB point = {place(random), place(random)};
        double roots[bezierRootsMax];
        const int count = BezierRoots(p, point, roots);
        ASSERT_LE(count, bezierRootsMax);
        EXPECT_TRUE(std::is_sorted(roots, roots + count));
        /* Sign changes of the difference quotient on a fine grid, and a root beside each. */
        int changes = 0;
        constexpr int pieces = 20000;
        double before = Polynomial(p, point, 1.0 / pieces) - Polynomial(p, point, 0);
        for (int i = 2; i <= pieces; i++) {
            const double slope =
                Polynomial(p, point, i / double{pieces}) - Polynomial(p, point, (i - 1) / double{pieces});
            if ((slope < 0) != (before < 0)) {
                const double at = (i - 1) / double{pieces};
                EXPECT_TRUE(
                    std::any_of(roots, roots + count, [at](double r) { return std::fabs(r - at) <= 1.5 / pieces; }))
                    << turn << " at " << at;
                changes++;
            }
            before = slope;
        }
        EXPECT_LE(changes, count) << turn;
        EXPECT_LE(count, changes + 2) << turn;
    }
}

TEST(Nearest, CurveEqualsDenseSampling)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(-60, 60);
    for (int turn = 0; turn < 500; turn++) {
        POINTDB p[4];
        for (POINTDB &c : p) c = {place(random), place(random)};
        if (turn % 7 == 0) p[1] = p[0];
        if (turn % 11 == 0) p[3] = p[0];
        const POINTDB point = {place(random), place(random)};
        NEARPOINT nearest;
        NearestOnCurve(p, point, &nearest);
        double best = Polynomial(p, point, 0);
        for (int i = 1; i <= 4000; i++) best = std::min(best, Polynomial(p, point, i / 4000.0));
        EXPECT_LE(nearest.dist2, best + 1e-9) << turn;
        EXPECT_NEAR(std::sqrt(nearest.dist2), std::sqrt(best), 0.05) << turn;
        EXPECT_NEAR(nearest.dist2, Dot(nearest.vector, nearest.vector), 1e-12);
        const POINTDB at = BezierPoint(p, nearest.t);
        EXPECT_EQ(at.x - point.x, nearest.vector.x);
        EXPECT_EQ(at.y - point.y, nearest.vector.y);
    }
}

TEST(Nearest, EndsOfACurveAreMarked)
{
    const POINTDB p[4] = {{0, 0}, {3, 0}, {6, 0}, {9, 0}};
    const struct {
        const char *name;
        POINTDB point;
        double t;
        int atEnd;
    } cases[] = {
        {"before the start", {-2, 1}, 0, 1},
        {"behind the end", {11, 1}, 1, 1},
        {"beside the middle", {4.5, 2}, 0.5, 0},
        {"just before the end", {9 - 9e-7, 2}, 1 - 1e-7, 1},
        {"a little before the end", {9 - 9e-4, 2}, 1 - 1e-4, 0},
    };
    for (const auto &c : cases) {
        NEARPOINT nearest;
        NearestOnCurve(p, c.point, &nearest);
        EXPECT_NEAR(nearest.t, c.t, 1e-12) << c.name;
        EXPECT_EQ(nearest.atEnd, c.atEnd) << c.name;
    }
}

TEST(Nearest, OfTwoEquallyNearPlacesTheEarlierWins)
{
    const POINTDB closed[4] = {{0, 0}, {10, 10}, {-10, 10}, {0, 0}};
    NEARPOINT nearest;
    NearestOnCurve(closed, {0, -3}, &nearest);
    EXPECT_EQ(nearest.t, 0);
    EXPECT_EQ(nearest.dist2, 9);
    EXPECT_EQ(nearest.vector.y, 3);
}

TEST(Nearest, PointOfACurveAndCoincidingControlsAreFound)
{
    const POINTDB dot[4] = {{5, 5}, {5, 5}, {5, 5}, {5, 5}};
    NEARPOINT nearest;
    NearestOnCurve(dot, {8, 9}, &nearest);
    EXPECT_EQ(nearest.dist2, 25);
    EXPECT_EQ(nearest.atEnd, 1);
    double roots[bezierRootsMax];
    EXPECT_EQ(BezierRoots(dot, {8, 9}, roots), 0);
    EXPECT_EQ(BezierRoots(dot, {5, 5}, roots), 0);
}

TEST(Nearest, WhatIsNotANumberEnds)
{
    const double values[] = {0, 1, -5, inf, -inf, notANumber, 1e308, -1e308, 5e-324, -5e-324};
    std::mt19937 random(11);
    std::uniform_int_distribution<size_t> which(0, std::size(values) - 1);
    for (int turn = 0; turn < 20000; turn++) {
        POINTDB p[5];
        for (POINTDB &c : p) c = {values[which(random)], values[which(random)]};
        double roots[bezierRootsMax];
        const int count = BezierRoots(p, p[4], roots);
        ASSERT_GE(count, 0);
        ASSERT_LE(count, bezierRootsMax);
        NEARPOINT nearest;
        NearestOnCurve(p, p[4], &nearest);
        NearestOnLine(p[0], p[1], p[4], &nearest);
    }
}

TEST(Nearest, FootOnALineAndItsEnds)
{
    const struct {
        const char *name;
        POINTDB point;
        POINTDB vector;
        double t;
        int atEnd;
    } cases[] = {
        {"above", {3, 4}, {0, -4}, 0.3, 0},  {"on it", {3, 0}, {0, 0}, 0.3, 0}, {"before", {-3, 4}, {3, -4}, 0, 1},
        {"behind", {13, 4}, {-3, -4}, 1, 1}, {"over a", {0, 2}, {0, -2}, 0, 0}, {"over b", {10, 2}, {0, -2}, 1, 0},
    };
    for (const auto &c : cases) {
        NEARPOINT nearest;
        const POINTDB origin = {-7, 21};
        NearestOnLine(origin, origin + POINTDB{10, 0}, origin + c.point, &nearest);
        EXPECT_DOUBLE_EQ(nearest.vector.x, c.vector.x) << c.name;
        EXPECT_DOUBLE_EQ(nearest.vector.y, c.vector.y) << c.name;
        EXPECT_DOUBLE_EQ(nearest.dist2, Dot(c.vector, c.vector)) << c.name;
        EXPECT_DOUBLE_EQ(nearest.t, c.t) << c.name;
        EXPECT_EQ(nearest.atEnd, c.atEnd) << c.name;
    }
}

TEST(Nearest, SlopingLineHasAPerpendicularVector)
{
    NEARPOINT nearest;
    NearestOnLine({1, 2}, {9, 8}, {1, 7}, &nearest); /* 3 : 4, so the foot is at (3.4, 3.8) */
    EXPECT_NEAR(nearest.vector.x, 2.4, 1e-12);
    EXPECT_NEAR(nearest.vector.y, -3.2, 1e-12);
    EXPECT_NEAR(nearest.t, 0.3, 1e-12);
}

TEST(Nearest, LineWithoutLengthIsNotANumber)
{
    NEARPOINT nearest;
    NearestOnLine({2, 2}, {2, 2}, {5, 6}, &nearest);
    EXPECT_TRUE(std::isnan(nearest.dist2));
    EXPECT_EQ(nearest.atEnd, 0);
}
