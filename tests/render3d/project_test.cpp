/* project_test.cpp - perspective of points and of a path's nodes. */
#include "render3d/space.h"
#include "store/store.h"
#include "support/shapes.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

using namespace zr32;
using namespace zr32test;

namespace {

const tagMATRIX3D identity = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};

POINTFXMAT3D Transform(double cx, double cy, double sx, double sy, double viewSize = 1000, double viewAngle = 45)
{
    POINTFXMAT3D t = {};
    t.center = {DbToFix(cx), DbToFix(cy)};
    t.shift = {DbToFix(sx), DbToFix(sy)};
    t.viewSize = viewSize;
    t.viewAngle = viewAngle;
    t.matrix = identity;
    return t;
}

TEST(Project, TheEyeUsesTheCoarsePi)
{
    const POINTFXMAT3D t = Transform(10, 20, 0, 0, 300, 60);
    SPACE space;
    SpaceFromTransform(&t, &space);
    EXPECT_EQ(10, space.eye.x);
    EXPECT_EQ(20, space.eye.y);
    EXPECT_EQ(300 / std::tan(60 * 0.5 * 3.14159 * 0.005555555555555556), space.eye.z);
    EXPECT_NE(300 / std::tan(60 * 0.5 * std::numbers::pi / 180), space.eye.z);
}

TEST(Project, PointInThePictureStays)
{
    const POINT3D eye = {3, 4, 500};
    const POINT3D p = {100, -50, 0};
    POINTDB out;
    ProjectFromEye(&eye, &p, &out);
    EXPECT_EQ(100, out.x);
    EXPECT_EQ(-50, out.y);
}

TEST(Project, HalfwayToTheEyeDoublesTheOffset)
{
    const POINT3D eye = {10, 20, 500};
    const POINT3D p = {13, 16, 250};
    POINTDB out;
    ProjectFromEye(&eye, &p, &out);
    EXPECT_EQ(16, out.x);
    EXPECT_EQ(12, out.y);
}

TEST(Project, PointAtTheEyesHeightIsNotFinite)
{
    const POINT3D eye = {0, 0, 100};
    const POINT3D p = {1, 0, 100};
    POINTDB out;
    ProjectFromEye(&eye, &p, &out);
    EXPECT_FALSE(std::isfinite(out.x));
}

TEST(Project, OnePointThroughSourceShiftAndTarget)
{
    const tagRECT source = {100, 200, 0, 0};
    const tagRECT target = {7, 9, 0, 0};
    const POINT3D eye = {50, 60, 400};
    const POINT3D shift = {1, 2, 12345};            /* its z is not used */
    tagMATRIX3D m = {{1, 0, 0, 0, 0, 1, 0, -1, 0}}; /* y becomes z */
    POINTDB out;
    ZrProject2DTO3D(3, 60, &out, &source, &target, &eye, &shift, &m);
    /* p = (53, 200, 0) -> (53, 0, 200) -> (54, 2, 200); k = 2: 50 + 2 (54 - 50), 60 + 2 (2 - 60) */
    EXPECT_DOUBLE_EQ(58 - 7, out.x);
    EXPECT_DOUBLE_EQ(-56 - 9, out.y);

    const POINTDB before = out;
    ZrProject2DTO3D(3, 60, &out, nullptr, &target, &eye, &shift, &m);
    ZrProject2DTO3D(3, 60, nullptr, &source, &target, &eye, &shift, &m);
    EXPECT_EQ(before.x, out.x);
}

TEST(Project, IdentityWithShiftAtCentreKeepsThePath)
{
    PATHREC *path = MakePath({{6, 10, 10}, {2, 90, 10}, {4, 95, 20}, {4, 95, 80}, {0x8004, 90, 90}, {3, 10, 10}});
    path->primitive = 5;
    const POINTFXMAT3D t = Transform(50, 50, 50, 50, 1e6);
    ZrPathTo3D(path, &t);
    EXPECT_EQ(0, path->primitive);
    const double want[6][2] = {{10, 10}, {90, 10}, {95, 20}, {95, 80}, {90, 90}, {10, 10}};
    for (int i = 0; i < 6; i++) {
        EXPECT_NEAR(want[i][0], FixToDb(path->nodes[i].x), 2e-5) << i;
        EXPECT_NEAR(want[i][1], FixToDb(path->nodes[i].y), 2e-5) << i;
    }
    EXPECT_EQ(0x8004, +path->nodes[4].type);
    ZrPathDeletePtr(path, 0);
}

TEST(Project, ShiftOfZeroDrawsRelativeToTheOrigin)
{
    PATHREC *path = MakePath({{6, 60, 45}});
    const POINTFXMAT3D t = Transform(50, 50, 0, 0);
    ZrPathTo3D(path, &t);
    EXPECT_NEAR(10, FixToDb(path->nodes[0].x), 2e-5);
    EXPECT_NEAR(-5, FixToDb(path->nodes[0].y), 2e-5);
    ZrPathDeletePtr(path, 0);
}

TEST(Project, WalksTheJoinChainOfTheTableChainsHead)
{
    PATHREC *head = MakePath({{6, 1, 0}});
    PATHREC *joined = MakePath({{6, 2, 0}});
    PATHREC *apart = MakePath({{6, 3, 0}});
    ChainLink(tableChain, head, joined);
    ChainLink(tableChain, joined, apart);
    ChainLink(joinChain, head, joined);
    apart->primitive = 9;
    const POINTFXMAT3D t = Transform(0, 0, 100, 0);
    ZrPathTo3D(apart, &t);
    EXPECT_NEAR(101, FixToDb(head->nodes[0].x), 2e-5);
    EXPECT_NEAR(102, FixToDb(joined->nodes[0].x), 2e-5);
    EXPECT_EQ(DbToFix(3), +apart->nodes[0].x);
    EXPECT_EQ(9, apart->primitive);
    ZrPathDeletePtr(head, 0);
}

TEST(Project, ShapesKeepTheirOwnNodes)
{
    PATHREC *path = MakePath({{6, 1, 1},
                              {0x100, 5, 5},
                              {0x100, 0.5, 0},
                              {6, 2, 2},
                              {0x200, 8, 8},
                              {6, 3, 3},
                              {0x400, 5, 0},
                              {0x400, 9, 9},
                              {2, 4, 4}});
    const POINTFXMAT3D t = Transform(0, 0, 100, 0);
    ZrPathTo3D(path, &t);
    const double want[9] = {101, 5, 0.5, 102, 8, 103, 5, 9, 104};
    for (int i = 0; i < 9; i++) EXPECT_NEAR(want[i], FixToDb(path->nodes[i].x), 2e-5) << i;
    ZrPathDeletePtr(path, 0);
}

TEST(Project, BadInputIsSafe)
{
    ZrPathTo3D(nullptr, nullptr);
    PATHREC *path = MakePath({{6, 30000, -30000}, {4, 1, 1}, {4, 2, 2}}); /* a curve cut short */
    ZrPathTo3D(path, nullptr);
    EXPECT_EQ(DbToFix(30000), +path->nodes[0].x);
    POINTFXMAT3D t = Transform(0, 0, 0, 0, 0, 0); /* no eye at all */
    ZrPathTo3D(path, &t);
    EXPECT_EQ(0, +path->nodes[0].x);
    EXPECT_EQ(DbToFix(1), +path->nodes[1].x);
    ZrPathDeletePtr(path, 0);

    path = MakePath({{6, 100, 100}, {2, 200, 100}});
    t = Transform(0, 0, 0, 0, 1, 90); /* eye low over the path, which stands upright through it */
    t.matrix = {{0, 0, 1, 0, 1, 0, -1, 0, 0}};
    ZrPathTo3D(path, &t);
    ZrPathDeletePtr(path, 0);
}

} // namespace
