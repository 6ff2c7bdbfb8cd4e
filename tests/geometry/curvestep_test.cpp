/* curvestep_test.cpp - the curve stepper against an exact evaluation of the same cubic, and the line stepper. */
#include "geometry/curvestep.h"

#include <gtest/gtest.h>
#include <random>

using namespace zr32;

namespace {

/* The truth by a second road: the cubic's value by Bernstein polynomials, in 1/65536 pixel. */
POINTDB Bernstein(const POINTDB *p, double t)
{
    const double s = 1 - t;
    const double b[4] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
    POINTDB sum = {0, 0};
    for (int i = 0; i < 4; i++) sum = sum + p[i] * (b[i] * 65536);
    return sum;
}

void RandomCurve(std::mt19937 *random, POINTDB *p)
{
    std::uniform_real_distribution<double> any(-500, 500);
    for (int i = 0; i < 4; i++) p[i] = {any(*random), any(*random)};
}

/* Rounding of a few sums of numbers near 2^25 in each step. */
constexpr double tolerance = 1e-4;

void ExpectOnCurve(const POINTDB *p, const CURVESTEP &step)
{
    const POINTDB want = Bernstein(p, static_cast<double>(step.t) / 65536);
    EXPECT_NEAR(want.x, step.pos.x, tolerance) << step.t;
    EXPECT_NEAR(want.y, step.pos.y, tolerance) << step.t;
}

TEST(CurveStep, FourQuarterStepsReachTheEnd)
{
    std::mt19937 random(3);
    for (int i = 0; i < 200; i++) {
        POINTDB p[4];
        RandomCurve(&random, p);
        CURVESTEP step;
        CurveStart(p, &step);
        EXPECT_EQ(0x4000, step.h);
        for (int k = 0; k < 4; k++) {
            ExpectOnCurve(p, step);
            CurveAdvance(&step);
        }
        EXPECT_EQ(parameterEnd, step.t);
        ExpectOnCurve(p, step);
    }
}

TEST(CurveStep, HalvingAndDoublingStayOnTheCurve)
{
    std::mt19937 random(4);
    for (int i = 0; i < 300; i++) {
        POINTDB p[4];
        RandomCurve(&random, p);
        CURVESTEP step;
        CurveStart(p, &step);
        while (step.t < parameterEnd) {
            const uint32_t choice = random() % 4;
            if (choice == 0 && step.h > 0x100)
                CurveHalve(&step);
            else if (choice == 1 && step.h < 0x4000)
                CurveDouble(&step);
            else
                CurveAdvance(&step);
            ExpectOnCurve(p, step);
        }
    }
}

TEST(CurveStep, DoublingUndoesHalvingToTheBit)
{
    const POINTDB p[4] = {{1, 2}, {30, -4}, {5, 60}, {-7, 8}};
    CURVESTEP step;
    CurveStart(p, &step);
    const CURVESTEP before = step;
    CurveHalve(&step);
    CurveHalve(&step);
    CurveDouble(&step);
    CurveDouble(&step);
    EXPECT_EQ(before.h, step.h);
    EXPECT_EQ(before.d.x, step.d.x);
    EXPECT_EQ(before.d.y, step.d.y);
    EXPECT_EQ(before.dd.x, step.dd.x);
    EXPECT_EQ(before.ddd.y, step.ddd.y);
}

TEST(CurveStep, AStraightEvenCurveHasConstantSteps)
{
    const POINTDB p[4] = {{0, 0}, {4, 8}, {8, 16}, {12, 24}};
    CURVESTEP step;
    CurveStart(p, &step);
    EXPECT_EQ(3 * 65536, step.d.x);
    EXPECT_EQ(6 * 65536, step.d.y);
    EXPECT_EQ(0, step.dd.x);
    EXPECT_EQ(0, step.ddd.y);
}

TEST(CurveStep, LimitsAreStrict)
{
    CURVESTEP step = {};
    step.d = {60000, -10};
    EXPECT_FALSE(CurveStepAbove(&step, 60000));
    EXPECT_FALSE(CurveStepBelow(&step, 60000));
    step.d = {-60001, 0};
    EXPECT_TRUE(CurveStepAbove(&step, 60000));
    step.d = {10, -59999};
    EXPECT_TRUE(CurveStepBelow(&step, 60000));
    step.d = {NAN, NAN};
    EXPECT_FALSE(CurveStepAbove(&step, 60000));
    EXPECT_FALSE(CurveStepBelow(&step, 60000));
}

TEST(LineStep, HalvesUntilNoComponentIsLongerThanAPixel)
{
    LINESTEP step;
    LineStart({1, 1}, {17, 1 - 8.0}, &step);
    EXPECT_EQ(2, step.d.x);
    EXPECT_EQ(-1, step.d.y);
    EXPECT_EQ(0x2000, step.h);
    LineFit(&step);
    EXPECT_EQ(1, step.d.x);
    EXPECT_EQ(-0.5, step.d.y);
    EXPECT_EQ(0x1000, step.h);
}

TEST(LineStep, AStepOfExactlyAPixelStaysAndOneAboveIsHalved)
{
    const struct {
        POINTDB extent;
        POINTDB d;
        int64_t h;
    } cases[] = {{{8, -8}, {1, -1}, 0x2000},
                 {{-8, 8}, {-1, 1}, 0x2000},
                 {{8.04, 0}, {0.5025, 0}, 0x1000},
                 {{0, -8.04}, {0, -0.5025}, 0x1000}};
    for (const auto &c : cases) {
        LINESTEP step;
        LineStart({0, 0}, c.extent, &step);
        LineFit(&step);
        EXPECT_EQ(c.d.x, step.d.x);
        EXPECT_EQ(c.d.y, step.d.y);
        EXPECT_EQ(c.h, step.h);
    }
}

TEST(LineStep, IsNeverHalvedBelowOne)
{
    LINESTEP step;
    LineStart({0, 0}, {1e12, 0}, &step);
    LineFit(&step);
    EXPECT_EQ(1, step.h);
}

} // namespace
