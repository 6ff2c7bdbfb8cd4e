/* bounds_test.cpp - boxes of control polygons, worked out by hand. */
#include "store/store.h"
#include "support/shapes.h"

#include <gtest/gtest.h>
#include <random>

using namespace zr32test;

namespace {

constexpr ZRFIXED one = 0x10000;

void ExpectRect(const tagRECT &rect, int left, int top, int right, int bottom, const char *what = "")
{
    EXPECT_EQ(left, rect.left) << what;
    EXPECT_EQ(top, rect.top) << what;
    EXPECT_EQ(right, rect.right) << what;
    EXPECT_EQ(bottom, rect.bottom) << what;
}

/* The box without the margin. */
tagRECT BoxOf(const std::vector<TESTNODE> &nodes, ZRFIXED zoom = one)
{
    PATHREC *path = MakePath(nodes);
    tagRECT rect = {};
    EXPECT_EQ(1, ZrPathGetRealRect(path, zoom, &rect));
    ZrPathDeletePtr(path, 0);
    return rect;
}

TEST(Bounds, SingleNodeGetsTheMargin)
{
    PATHREC *path = MakePath({{6, 10.5, 20.5}});
    tagRECT rect;
    ASSERT_EQ(1, ZrPathGetMiniMaxRect(path, one, &rect));
    ExpectRect(rect, 5, 15, 16, 26);
    ASSERT_EQ(1, ZrPathGetRealRect(path, one, &rect));
    ExpectRect(rect, 10, 20, 10, 20);
    ASSERT_EQ(1, ZrPathGetMiniMaxRect(path, 2 * one, &rect));
    ExpectRect(rect, 15, 35, 26, 46, "the margin is not scaled");
    ZrPathDeletePtr(path, 0);
}

TEST(Bounds, IntegerPartsGoDownAndZoomsCutTowardsZero)
{
    ExpectRect(BoxOf({{6, -0.5, 0.9}}), -1, 0, -1, 0);
    ExpectRect(BoxOf({{6, -3, 3}}, one / 2), -1, 1, -1, 1, "-1.5 becomes -1");
    ExpectRect(BoxOf({{6, -3, 3}, {2, 7, 9}}, 0), 0, 0, 0, 0, "zoom 0");
    ExpectRect(BoxOf({{6, -3, 3}, {2, 7, 9}}, -one), 3, -3, -7, -9, "a negative zoom sorts nothing");
}

TEST(Bounds, ControlPointsCountAndCurvesAreNotEvaluated)
{
    ExpectRect(BoxOf({{6, 0, 0}, {4, 0, 100}, {4, -50, 0}, {4, 10, 0}}), -50, 0, 10, 100);
    ExpectRect(BoxOf({{6, 0, 0}, {0x1234, 5, 6}}), 0, 0, 5, 6, "whatever a node's kind is");
}

TEST(Bounds, EllipseShapeGivesItsRotatedFrame)
{
    ExpectRect(BoxOf({{6, 10, 20}, {0x100, 50, 40}, {2, 0, 0}}), 10, 20, 50, 40, "not turned");
    /* A quarter turn about (30, 30) gives (20, 10) to (40, 50), but the angle is cut to 1/65536, so the top lies at
     * 9.9999 and is cut to 9. Node 0 itself widens the first record's box to 10 on the left. */
    ExpectRect(BoxOf({{6, 10, 20}, {0x101, 50, 40}, {2, 1.5707963, 0}}), 10, 9, 40, 50, "a quarter turn");
    ExpectRect(BoxOf({{6, 10, 20}, {0x100, 50, 40}}), 10, 20, 50, 40, "no node for the rotation");
}

TEST(Bounds, LaterEllipseShapeIsBoundedByItsFrameAlone)
{
    PATHREC *paths[] = {MakePath({{6, 30, 30}}), MakePath({{6, 10, 20}, {0x100, 50, 40}, {2, 1.5707963, 0}})};
    ZrPathChainZrPath(2, paths);
    tagRECT rect;
    ZrPathGetRealRect(paths[0], one, &rect);
    EXPECT_NEAR(20, rect.left, 1);
    EXPECT_NEAR(10, rect.top, 1);
    EXPECT_NEAR(40, rect.right, 1);
    EXPECT_NEAR(50, rect.bottom, 1);
    ZrPathDeletePtr(paths[0], 0);
}

TEST(Bounds, PolygonShapeAddsNothing)
{
    ExpectRect(BoxOf({{6, 10, 20}, {0x400, 5, 0}, {2, 90, 90}}), 10, 20, 10, 20);
}

TEST(Bounds, APolygonShapeBehindAnotherRecordLeavesTheBoxAtTheStartPointOfTheFirst)
{
    PATHREC *paths[] = {MakePath({{6, 30, 31}}), MakePath({{6, 10, 20}, {0x401, 5, 0}, {2, 90, 90}})};
    ZrPathChainZrPath(2, paths);
    tagRECT rect;
    ZrPathGetRealRect(paths[0], one, &rect);
    ExpectRect(rect, 30, 31, 30, 31);
    ZrPathDeletePtr(paths[0], 0);
}

TEST(Bounds, RectangleShapeIsBoundedByItsTwoCorners)
{
    ExpectRect(BoxOf({{6, 10, 20}, {0x200, -5, 40}}), -5, 20, 10, 40);
}

TEST(Bounds, NodeOneIsLookedAtOnlyWhenThereIsOne)
{
    PATHREC *path = MakePath({{6, 1, 2}, {0x400, 5, 0}});
    path->nodeCount = 1;
    tagRECT rect;
    ZrPathGetRealRect(path, one, &rect);
    ExpectRect(rect, 1, 2, 1, 2);
    path->nodeCount = 0;
    EXPECT_EQ(1, ZrPathGetRealRect(path, one, &rect));
    ExpectRect(rect, 0, 0, 0, 0, "no nodes at all");
    ZrPathDeletePtr(path, 0);
}

TEST(Bounds, EachFunctionFollowsItsOwnChainFromTheGivenRecord)
{
    PATHREC *paths[4];
    for (int i = 0; i < 4; i++) paths[i] = MakePath({{6, i * 10.0, i * 10.0}});
    for (int i = 0; i < 3; i++) zr32::ChainLink(zr32::tableChain, paths[i], paths[i + 1]);
    zr32::ChainLink(zr32::joinChain, paths[1], paths[2]);
    zr32::ChainLink(zr32::selectedChain, paths[1], paths[3]);
    tagRECT rect;
    ZrPathGetMiniMaxRect(paths[1], one, &rect);
    ExpectRect(rect, 5, 5, 26, 26, "join chain");
    ZrPathGetSelectedRect(paths[1], one, &rect);
    ExpectRect(rect, 5, 5, 36, 36, "selected chain");
    ZrPathGetAllMiniMaxRect(paths[2], one, &rect);
    ExpectRect(rect, 15, 15, 36, 36, "table chain, nothing in front");
    ZrPathGetRealRect(paths[0], one, &rect);
    ExpectRect(rect, 0, 0, 30, 30, "table chain without the margin");
    ZrPathDeletePtr(paths[0], 0);
}

TEST(Bounds, NullRecordsLeaveTheRectangle)
{
    tagRECT rect = {1, 2, 3, 4};
    EXPECT_EQ(0, ZrPathGetMiniMaxRect(nullptr, one, &rect));
    EXPECT_EQ(0, ZrPathGetSelectedRect(nullptr, one, &rect));
    EXPECT_EQ(0, ZrPathGetAllMiniMaxRect(nullptr, one, &rect));
    EXPECT_EQ(0, ZrPathGetRealRect(nullptr, one, &rect));
    ExpectRect(rect, 1, 2, 3, 4);
}

TEST(Bounds, HugeZoomsWrapAndDoNotFault)
{
    PATHREC *path = MakePath({{6, -32768, -32768}, {2, 32767, 32767}});
    tagRECT rect;
    EXPECT_EQ(1, ZrPathGetMiniMaxRect(path, INT32_MAX, &rect));
    EXPECT_EQ(1, ZrPathGetRealRect(path, INT32_MIN, &rect));
    ZrPathDeletePtr(path, 0);
}

TEST(Bounds, BoxHoldsEveryNode)
{
    std::mt19937 random(5);
    for (int i = 0; i < 200; i++) {
        std::vector<TESTNODE> nodes = {{6, 0, 0}};
        for (size_t k = random() % 20; k > 0; k--)
            nodes.push_back({2, static_cast<double>(random() % 2000) / 7 - 100, static_cast<double>(random() % 99)});
        const tagRECT rect = BoxOf(nodes);
        for (const TESTNODE &node : nodes) {
            EXPECT_LE(rect.left, node.x);
            EXPECT_GE(rect.right + 1, node.x);
            EXPECT_LE(rect.top, node.y);
            EXPECT_GE(rect.bottom + 1, node.y);
        }
    }
}

} // namespace
