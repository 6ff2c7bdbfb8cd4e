/* nodewalk_test.cpp - the reader of nodes: steps, segments, placements, and walks that must end early. */
#include "store/store.h"
#include "support/shapes.h"

#include <gtest/gtest.h>
#include <vector>

using namespace zr32;
using zr32test::MakePath;

namespace {

std::vector<SEGMENT> Walk(const PATHREC *path, const PLACEMENT &place)
{
    std::vector<SEGMENT> segments;
    SEGWALK walk;
    SEGMENT segment = {};
    for (SegWalkStart(path, place, &walk); SegWalkNext(&walk, &segment);) segments.push_back(segment);
    return segments;
}

TEST(NodeWalk, StepsByKind)
{
    const struct {
        uint32_t kind;
        uint32_t step;
    } cases[] = {{6, 1}, {2, 1}, {4, 3}, {0x100, 2}, {0x200, 1}, {0x400, 2}, {0, 0}, {8, 0}, {0x800, 0}, {0x106, 0}};
    for (const auto &c : cases) EXPECT_EQ(c.step, NodeStep(c.kind)) << c.kind;
}

TEST(NodeWalk, KindLeavesOutClosingSmoothAndSelectedBits)
{
    const struct {
        uint16_t type;
        uint32_t kind;
    } cases[] = {{3, 2}, {5, 4}, {0x8003, 2}, {0x2004, 4}, {0xA005, 4}, {0x101, 0x100}, {0x8200, 0x200}, {0xF006, 6}};
    for (const auto &c : cases) {
        const PATHNODE node = {c.type, 0, 0};
        EXPECT_EQ(c.kind, NodeKind(&node)) << c.type;
    }
}

TEST(NodeWalk, NodeIsSelectedByItsTopBitAlone)
{
    const struct {
        uint16_t type;
        int selected;
    } cases[] = {{0x0002, 0}, {0x8002, 1}, {0x7FFF, 0}, {0x8000, 1}, {0xA005, 1}, {0x2004, 0}};
    for (const auto &c : cases) {
        const PATHNODE node = {c.type, 0, 0};
        EXPECT_EQ(c.selected, NodeSelected(&node)) << c.type;
    }
}

TEST(NodeWalk, PullsWholeSegmentsOfAllRuns)
{
    PATHREC *path = MakePath({{6, 1, 2},
                              {0x8002, 3, 4},
                              {4, 5, 6},
                              {4, 7, 8},
                              {5, 9, 10},
                              {6, 20, 20},
                              {0x100, 30, 40},
                              {2, 0.5, 0},
                              {0x200, 50, 60},
                              {0x400, 5, 0},
                              {2, 70, 80},
                              {3, 20, 20}});
    const std::vector<SEGMENT> s = Walk(path, placeImage);
    ASSERT_EQ(8u, s.size());
    const uint32_t kinds[] = {6, 2, 4, 6, 0x100, 0x200, 0x400, 2};
    const uint32_t nexts[] = {1, 2, 5, 6, 8, 9, 11, 12};
    for (size_t i = 0; i < 8; i++) {
        EXPECT_EQ(kinds[i], s[i].kind) << i;
        EXPECT_EQ(nexts[i], s[i].next) << i;
        EXPECT_EQ(&path->nodes[s[i].index], s[i].node) << i;
    }
    EXPECT_EQ(1, s[1].p[0].x);
    EXPECT_EQ(4, s[1].p[1].y);
    EXPECT_EQ(3, s[2].p[0].x) << "a curve begins where the line ended";
    EXPECT_EQ(10, s[2].p[3].y);
    EXPECT_EQ(20, s[7].p[0].x) << "shapes leave the current point";
    ZrPathDeletePtr(path, 0);
}

TEST(NodeWalk, EndsAtAKindThatNoWalkerKnows)
{
    for (const uint16_t type : std::initializer_list<uint16_t>{0x0000, 0x0001, 0x0008, 0x0800, 0x8000, 0x0600}) {
        PATHREC *path = MakePath({{6, 0, 0}, {2, 1, 1}, {type, 2, 2}, {2, 3, 3}});
        EXPECT_EQ(2u, Walk(path, placeImage).size()) << type;
        ZrPathDeletePtr(path, 0);
    }
}

TEST(NodeWalk, EndsWhereASegmentWouldReachBehindTheLastNode)
{
    for (const uint16_t type : std::initializer_list<uint16_t>{0x0004, 0x0005, 0x0100, 0x0400}) {
        PATHREC *path = MakePath({{6, 0, 0}, {type, 2, 2}});
        EXPECT_EQ(1u, Walk(path, placeImage).size()) << type;
        ZrPathDeletePtr(path, 0);
    }
    PATHREC *path = MakePath({{6, 0, 0}, {4, 2, 2}, {4, 3, 3}});
    EXPECT_EQ(1u, Walk(path, placeImage).size());
    ZrPathDeletePtr(path, 0);
}

TEST(NodeWalk, NullAndEmptyRecordsHaveNoSegments)
{
    EXPECT_TRUE(Walk(nullptr, placeImage).empty());
    PATHREC *path = MakePath({});
    EXPECT_TRUE(Walk(path, placeImage).empty());
    ZrPathDeletePtr(path, 0);
}

TEST(NodeWalk, RecordWithoutAStartBeginsAtTheOrigin)
{
    PATHREC *path = MakePath({{2, 3, 4}});
    const std::vector<SEGMENT> s = Walk(path, placeImage);
    ASSERT_EQ(1u, s.size());
    EXPECT_EQ(0, s[0].p[0].x);
    EXPECT_EQ(3, s[0].p[1].x);
    ZrPathDeletePtr(path, 0);
}

TEST(NodeWalk, PlacementsPutTheHalfPixelWhereTheirUsersWantIt)
{
    PATHREC *path = MakePath({{6, 10.25, -4}});
    const PATHNODE *node = path->nodes;
    EXPECT_EQ(10.25 * 2 - 3 + 0.5, PlaceNode(PlaceOnMask(2, 3, 7), node).x);
    EXPECT_EQ(-4.0 * 2 - 7 + 0.5, PlaceNode(PlaceOnMask(2, 3, 7), node).y);
    EXPECT_EQ(10.75 * 2 - 3, PlaceNode(PlaceOnView(2, 3, 7), node).x);
    EXPECT_EQ(-3.5 * 2 - 7, PlaceNode(PlaceOnView(2, 3, 7), node).y);
    EXPECT_EQ(10.25 - 3 + 0.5, PlaceNode(PlaceInSpace(3, 7), node).x);
    EXPECT_EQ(10.25, PlaceNode(placeImage, node).x);
    ZrPathDeletePtr(path, 0);
}

TEST(NodeWalk, ViewScaleOfZoomsAndReductions)
{
    COORDSTRUCT view = {};
    const struct {
        int32_t zoom;
        double scale;
    } cases[] = {{1, 1}, {4, 4}, {-1, 1}, {-4, 0.25}, {0, 0}};
    for (const auto &c : cases) {
        view.zoom = c.zoom;
        EXPECT_EQ(c.scale, ViewScale(&view)) << c.zoom;
    }
}

} // namespace
