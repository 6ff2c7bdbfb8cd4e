/* rotation_test.cpp - the rotation algebra, against values worked out by hand. */
#include "render3d/space.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

using namespace zr32;

namespace {

const tagMATRIX3D identity = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};

TEST(Rotation, WrapDegreesTable)
{
    const struct {
        const char *name;
        double in, want;
    } cases[] = {{"zero stays", 0, 0},        {"just below a turn stays", 359.5, 359.5},
                 {"negative", -30, 330},      {"a full turn", 360, 0},
                 {"two turns and 5", 725, 5}, {"two turns back", -725, 355}};
    for (const auto &c : cases) EXPECT_DOUBLE_EQ(c.want, WrapDegrees(c.in)) << c.name;
    EXPECT_TRUE(std::isnan(WrapDegrees(NAN)));
    EXPECT_TRUE(std::isnan(WrapDegrees(INFINITY)));
}

TEST(Rotation, SineOfZeroLeavesTheMatrix)
{
    const POINT3D axis = {0, 0, 1};
    for (const double sine : {0.0, -0.0}) {
        tagMATRIX3D m;
        for (int i = 0; i < 9; i++) m.m[i] = i;
        VThitaGetMatrix(sine, -1, &axis, &m);
        for (int i = 0; i < 9; i++) EXPECT_EQ(i, m.m[i]);
    }
}

TEST(Rotation, MatrixTermsByHand)
{
    /* axis (2, 3, 6) / 7, sine 0.6, cosine 0.8 */
    const double x = 2.0 / 7, y = 3.0 / 7, z = 6.0 / 7;
    const POINT3D axis = {x, y, z};
    tagMATRIX3D m = identity;
    VThitaGetMatrix(0.6, 0.8, &axis, &m);
    const double want[9] = {(49 * 0.8 + 4 * 0.2) / 49,  (6 * 0.2 + 42 * 0.6) / 49,  (12 * 0.2 - 21 * 0.6) / 49,
                            (6 * 0.2 - 42 * 0.6) / 49,  (49 * 0.8 + 9 * 0.2) / 49,  (18 * 0.2 + 14 * 0.6) / 49,
                            (12 * 0.2 + 21 * 0.6) / 49, (18 * 0.2 - 14 * 0.6) / 49, (49 * 0.8 + 36 * 0.2) / 49};
    for (int i = 0; i < 9; i++) EXPECT_NEAR(want[i], m.m[i], 1e-15) << i;
}

TEST(Rotation, QuarterTurnAboutZTakesXToY)
{
    const POINT3D axis = {0, 0, 1};
    tagMATRIX3D m = identity;
    VThitaGetMatrix(1, 0, &axis, &m);
    POINT3D p = {5, 0, 2};
    RotatePoint3D(&p, &m);
    EXPECT_DOUBLE_EQ(0, p.x);
    EXPECT_DOUBLE_EQ(5, p.y);
    EXPECT_DOUBLE_EQ(2, p.z);
}

TEST(Rotation, RotatePointIsRowTimesMatrix)
{
    const tagMATRIX3D m = {{1, 2, 3, 4, 5, 6, 7, 8, 10}};
    POINT3D p = {1, 10, 100};
    RotatePoint3D(&p, &m);
    EXPECT_EQ(1 + 40 + 700, p.x);
    EXPECT_EQ(2 + 50 + 800, p.y);
    EXPECT_EQ(3 + 60 + 1000, p.z);
}

TEST(Rotation, NullArgumentsDoNothing)
{
    POINT3D p = {1, 2, 3};
    RotatePoint3D(&p, nullptr);
    RotatePoint3D(nullptr, &identity);
    EXPECT_EQ(1, p.x);
    ORMatrix(nullptr);
    VThitaGetMatrix(1, 0, nullptr, nullptr);

    tagMATRIX3D result;
    memset(&result, 0x55, sizeof result);
    const tagMATRIX3D before = result;
    EXPECT_EQ(nullptr, Matrix3X3(nullptr, &identity, &result));
    EXPECT_EQ(&identity, Matrix3X3(&identity, nullptr, &result));
    EXPECT_EQ(&identity, Matrix3X3(&identity, &identity, nullptr));
    EXPECT_EQ(0, memcmp(&before, &result, sizeof result));
    EXPECT_EQ(0, AddRotation({0, 0, 1}, 10, {0, 1, 0}, 20, nullptr, nullptr));
}

TEST(Rotation, ProductByHandAndInPlace)
{
    const tagMATRIX3D a = {{1, 2, 3, 4, 5, 6, 7, 8, 9}};
    const tagMATRIX3D b = {{1, 0, 2, 0, 3, 0, 4, 0, 5}};
    const double want[9] = {13, 6, 17, 28, 15, 38, 43, 24, 59};
    tagMATRIX3D result;
    EXPECT_EQ(&a, Matrix3X3(&a, &b, &result));
    tagMATRIX3D first = a;
    EXPECT_EQ(&first, Matrix3X3(&first, &b, &first));
    tagMATRIX3D second = b;
    EXPECT_EQ(&a, Matrix3X3(&a, &second, &second));
    for (int i = 0; i < 9; i++) {
        EXPECT_EQ(want[i], result.m[i]) << i;
        EXPECT_EQ(want[i], first.m[i]) << i;
        EXPECT_EQ(want[i], second.m[i]) << i;
    }
}

TEST(Rotation, OrthonormalMatrixChangesByRoundingOnly)
{
    const POINT3D axis = {2.0 / 7, 3.0 / 7, 6.0 / 7};
    tagMATRIX3D m = identity;
    VThitaGetMatrix(0.6, 0.8, &axis, &m);
    const tagMATRIX3D before = m;
    ORMatrix(&m);
    for (int i = 0; i < 9; i++) EXPECT_NEAR(before.m[i], m.m[i], 1e-15) << i;
}

TEST(Rotation, ORMatrixKeepsTheSecondRowsDirection)
{
    tagMATRIX3D m = {{9, 9, 9, 0, 4, 0, 1, 2, 3}};
    ORMatrix(&m);
    /* r1 = (0, 1, 0); r0 = r1 x (1, 2, 3) = (3, 0, -1) / sqrt 10; r2 = r0 x r1 = (1, 0, 3) / sqrt 10 */
    const double k = 1 / std::sqrt(10.0);
    const double want[9] = {3 * k, 0, -k, 0, 1, 0, k, 0, 3 * k};
    for (int i = 0; i < 9; i++) EXPECT_NEAR(want[i], m.m[i], 1e-15) << i;
}

TEST(Rotation, SingularMatrixFaultsNowhere)
{
    tagMATRIX3D m = {{0, 0, 0, 0, 0, 0, 0, 0, 0}};
    ORMatrix(&m);
    EXPECT_TRUE(std::isnan(m.m[0]));
}

TEST(AddRotation, BothAnglesZeroWritesNothing)
{
    POINT3D axis = {7, 7, 7};
    double angle = 7;
    EXPECT_EQ(0, AddRotation({1, 0, 0}, 0, {0, 1, 0}, 0, &axis, &angle));
    EXPECT_EQ(7, axis.x);
    EXPECT_EQ(7, angle);
}

TEST(AddRotation, OneAngleZeroCopiesTheOtherUnnormalised)
{
    POINT3D axis;
    double angle;
    EXPECT_EQ(1, AddRotation({1, 0, 0}, 0, {0, 5, 0}, 400, &axis, &angle));
    EXPECT_EQ(5, axis.y);
    EXPECT_EQ(400, angle);
    EXPECT_EQ(1, AddRotation({3, 0, 0}, -400, {0, 5, 0}, 0, &axis, &angle));
    EXPECT_EQ(3, axis.x);
    EXPECT_EQ(-400, angle);
}

TEST(AddRotation, ParallelAxes)
{
    POINT3D axis;
    double angle;
    EXPECT_EQ(1, AddRotation({0, 0, 2}, 200, {0, 0, 3}, 300, &axis, &angle));
    EXPECT_EQ(1, axis.z);
    EXPECT_DOUBLE_EQ(140, angle);
    EXPECT_EQ(1, AddRotation({0, 0, 2}, 30, {0, 0, -3}, 50, &axis, &angle));
    EXPECT_EQ(1, axis.z);
    EXPECT_DOUBLE_EQ(340, angle);
}

TEST(AddRotation, CrossedAxesByHand)
{
    /* A = x by 90, B = y by 90: n = z. u = z turned by 270 about x: a row (0, 0, 1) times the matrix of sine -1,
     * cosine 0 is (m6, m7, m8) = (0, 1, 0). v = z turned by 90 about y: (1, 0, 0). w = u x v = (0, 0, -1), u . v = 0,
     * so the angle is 90. The steps are not the true composition, deliberately. */
    POINT3D axis;
    double angle;
    EXPECT_EQ(1, AddRotation({2, 0, 0}, 90, {0, 2, 0}, 90, &axis, &angle));
    EXPECT_NEAR(0, axis.x, 1e-5);
    EXPECT_NEAR(0, axis.y, 1e-5);
    EXPECT_NEAR(-1, axis.z, 1e-9);
    EXPECT_NEAR(90, angle, 2e-4);
}

TEST(AddRotation, ObtuseAngleIsTakenFromTheCoarsePi)
{
    /* A = x by 120, B = y by 120: u = (0, sin 120, cos 120), v = (sin 120, 0, cos 120) up to signs; u . v = 1/4 > 0.
     * With B by 30 the product of cosines is cos 120 cos 30 < 0, and the angle lies beyond 90. */
    POINT3D axis;
    double angle;
    EXPECT_EQ(1, AddRotation({1, 0, 0}, 120, {0, 1, 0}, 30, &axis, &angle));
    const double c = std::cos(240 * 3.14159 / 180) * std::cos(30 * 3.14159 / 180);
    EXPECT_NEAR(std::acos(c) / 3.14159 * 180, angle, 1e-3);
    EXPECT_GT(angle, 90);
}

TEST(AddRotation, FullTurnsOfCrossedAxesFaultNowhere)
{
    POINT3D axis;
    double angle;
    EXPECT_EQ(1, AddRotation({1, 0, 0}, 360, {0, 1, 0}, 720, &axis, &angle));
    EXPECT_EQ(0, angle); /* u and v are both n, their product has no direction */
    EXPECT_TRUE(std::isnan(axis.x));
}

TEST(AddRotation, ArcSineNeverSeesMoreThanOne)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> any(-1, 1);
    for (int i = 0; i < 2000; i++) {
        POINT3D axis;
        double angle;
        ASSERT_EQ(1, AddRotation({any(random), any(random), any(random)}, 90, {any(random), any(random), any(random)},
                                 90 + i % 2 * 180, &axis, &angle));
        ASSERT_FALSE(std::isnan(angle));
        ASSERT_GE(angle, 0);
        ASSERT_LE(angle, 180);
    }
}

} // namespace
