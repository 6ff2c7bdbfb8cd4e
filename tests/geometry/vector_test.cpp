/* vector_test.cpp - vectors in doubles: the array forms with their rules for null and 0, projection, normals. */
#include "geometry/vector.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace zr32;

namespace {

TEST(Vector, SubWritesAndReturnsOut)
{
    const double a[2] = {5, 7};
    const double b[2] = {2, 10};
    double out[2] = {0, 0};
    EXPECT_EQ(out, Vec2Sub(a, b, out));
    EXPECT_EQ(3, out[0]);
    EXPECT_EQ(-3, out[1]);
}

TEST(Vector, SubOfNullIsNullAndWritesNothing)
{
    const double a[2] = {5, 7};
    double out[2] = {1, 2};
    EXPECT_EQ(nullptr, Vec2Sub(nullptr, a, out));
    EXPECT_EQ(nullptr, Vec2Sub(a, nullptr, out));
    EXPECT_EQ(nullptr, Vec2Sub(a, a, nullptr));
    EXPECT_EQ(1, out[0]);
    EXPECT_EQ(2, out[1]);
}

TEST(Vector, ScaleChangesItsArgumentToo)
{
    double a[2] = {3, -4};
    double out[2] = {0, 0};
    EXPECT_EQ(out, Vec2Scale(a, 2.5, out));
    EXPECT_EQ(7.5, a[0]);
    EXPECT_EQ(-10, a[1]);
    EXPECT_EQ(7.5, out[0]);
    EXPECT_EQ(-10, out[1]);
}

TEST(Vector, ScaleByZeroLeavesBothAlone)
{
    double a[2] = {3, -4};
    double out[2] = {8, 9};
    EXPECT_EQ(out, Vec2Scale(a, 0.0, out));
    EXPECT_EQ(out, Vec2Scale(a, -0.0, out));
    EXPECT_EQ(3, a[0]);
    EXPECT_EQ(-4, a[1]);
    EXPECT_EQ(8, out[0]);
    EXPECT_EQ(9, out[1]);
}

TEST(Vector, ScaleOfNullWritesNothing)
{
    double a[2] = {3, -4};
    double out[2] = {8, 9};
    EXPECT_EQ(out, Vec2Scale(nullptr, 2, out));
    EXPECT_EQ(nullptr, Vec2Scale(a, 2, nullptr));
    EXPECT_EQ(3, a[0]);
    EXPECT_EQ(8, out[0]);
}

TEST(Vector, LengthsAndProductsOfNullAreZero)
{
    const double a[3] = {3, 4, 12};
    double out[3] = {1, 2, 3};
    EXPECT_EQ(25, Vec2LengthSq(a));
    EXPECT_EQ(5, Vec2Length(a));
    EXPECT_EQ(25, Vec2Dot(a, a));
    EXPECT_EQ(169, Vec3Dot(a, a));
    EXPECT_EQ(0, Vec2LengthSq(nullptr));
    EXPECT_EQ(0, Vec2Length(nullptr));
    EXPECT_EQ(0, Vec2Dot(a, nullptr));
    EXPECT_EQ(0, Vec2Dot(nullptr, a));
    EXPECT_EQ(0, Vec3Dot(a, nullptr));
    EXPECT_EQ(0, Vec3Dot(nullptr, a));
    EXPECT_EQ(0, Vec3Cross(nullptr, a, out, 1));
    EXPECT_EQ(0, Vec3Cross(a, nullptr, out, 1));
    EXPECT_EQ(0, Vec3Cross(a, a, nullptr, 1));
    EXPECT_EQ(1, out[0]);
}

TEST(Vector, CrossGivesItsLengthOnlyWhenAsked)
{
    const double a[3] = {1, 2, 3};
    const double b[3] = {4, 5, 6};
    double out[3];
    EXPECT_EQ(1, Vec3Cross(a, b, out, 0));
    EXPECT_EQ(-3, out[0]);
    EXPECT_EQ(6, out[1]);
    EXPECT_EQ(-3, out[2]);
    EXPECT_EQ(std::sqrt(54.0), Vec3Cross(a, b, out, 1));
}

TEST(Vector, CrossMayWriteOverAnArgument)
{
    double a[3] = {1, 2, 3};
    const double b[3] = {4, 5, 6};
    Vec3Cross(a, b, a, 0);
    EXPECT_EQ(-3, a[0]);
    EXPECT_EQ(6, a[1]);
    EXPECT_EQ(-3, a[2]);
}

TEST(Vector, ProjectionSplitsIntoAlongAndAcross)
{
    PROJECTION split;
    Vec2Project({3, 4}, {10, 0}, &split);
    EXPECT_EQ(3, split.along.x);
    EXPECT_EQ(0, split.along.y);
    EXPECT_EQ(0, split.rest.x);
    EXPECT_EQ(4, split.rest.y);
    EXPECT_EQ(3, split.alongLength);
    EXPECT_EQ(4, split.restLength);
}

TEST(Vector, ProjectionPartsAddUpAndAreSquare)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> any(-100, 100);
    for (int i = 0; i < 1000; i++) {
        const POINTDB a = {any(random), any(random)};
        const POINTDB b = {any(random), any(random)};
        PROJECTION split;
        Vec2Project(a, b, &split);
        EXPECT_NEAR(a.x, split.along.x + split.rest.x, 1e-9);
        EXPECT_NEAR(a.y, split.along.y + split.rest.y, 1e-9);
        EXPECT_NEAR(0, Dot(split.rest, b) / Length(b), 1e-9);
    }
}

TEST(Vector, NormalizeGuardsOnlyWhereItSaysSo)
{
    double zero[3] = {0, 0, 0};
    VecNormalize(zero);
    EXPECT_EQ(0, zero[0]);
    Vec3Normalize(zero);
    EXPECT_TRUE(std::isnan(zero[0]));
    double v[3] = {0, 3, -4};
    VecNormalize(v);
    EXPECT_EQ(0, v[0]);
    EXPECT_EQ(0.6, v[1]);
    EXPECT_EQ(-0.8, v[2]);
}

TEST(Vector, LerpIsExactAtItsEnds)
{
    const POINTDB a = {0.1, -7};
    const POINTDB b = {12.3, 5};
    EXPECT_EQ(0.1, LerpPoint(a, b, 0).x);
    EXPECT_EQ(12.3, LerpPoint(a, b, 1).x);
    EXPECT_EQ(-4, LerpPoint(a, b, 0.25).y);
}

TEST(Vector, OutlineNormalsTestTheExactComponents)
{
    const double half = std::sqrt(0.5);
    const struct {
        const char *name;
        POINTDB tangent;
        POINTDB want;
    } cases[] = {
        {"upright", {0, 5}, {1, 0}},         {"upright the other way", {0, -5}, {1, 0}},
        {"no direction", {0, 0}, {1, 0}},    {"level", {-3, 0}, {0, 1}},
        {"diagonal", {1, 1}, {half, -half}}, {"diagonal the other way", {-2, -2}, {half, -half}},
        {"falling", {1, -1}, {half, half}},  {"three to four", {4, 3}, {0.6, -0.8}},
    };
    for (const auto &c : cases) {
        POINTDB n1;
        POINTDB n2;
        OutlineNormals(c.tangent, &n1, &n2);
        EXPECT_NEAR(c.want.x, n1.x, 1e-15) << c.name;
        EXPECT_NEAR(c.want.y, n1.y, 1e-15) << c.name;
        EXPECT_EQ(-n1.x, n2.x) << c.name;
        EXPECT_EQ(-n1.y, n2.y) << c.name;
    }
}

TEST(Vector, OutlineNormalsOfANearlyLevelTangentStayUnitVectors)
{
    POINTDB n1;
    POINTDB n2;
    OutlineNormals({1, 1e-200}, &n1, &n2);
    EXPECT_EQ(0, n1.x) << "the slope's square is beyond a double, its quotient is not";
    OutlineNormals({1e-12, 1}, &n1, &n2);
    EXPECT_EQ(1, n1.x);
    EXPECT_EQ(-1e-12, n1.y);
}

} // namespace
