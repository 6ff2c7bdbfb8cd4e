#include "edit/move.h"
#include "support/shapes.h"

#include <gtest/gtest.h>
#include <limits>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr PATHNODE At(uint16_t type, double x, double y)
{
    return {type, static_cast<ZRFIXED>(x * 65536), static_cast<ZRFIXED>(y * 65536)};
}

void ExpectNode(const PATHREC *path, uint32_t index, double x, double y)
{
    const PATHNODE node = path->nodes[index];
    const PATHNODE want = At(node.type, x, y);
    EXPECT_EQ(ZRFIXED{node.x}, ZRFIXED{want.x}) << "x of node " << index;
    EXPECT_EQ(ZRFIXED{node.y}, ZRFIXED{want.y}) << "y of node " << index;
}

COORDSTRUCT ViewAtZoom(int32_t zoom)
{
    COORDSTRUCT view = {};
    view.right = view.bottom = 100;
    view.zoom = zoom;
    return view;
}

/* Two records on one table chain. */
struct PAIR {
    PATHREC *a = MakeBox(0, 0, 10, 10);
    PATHREC *b = MakeBox(20, 20, 30, 30);
    PAIR()
    {
        ChainLink(tableChain, a, b);
    }
    ~PAIR()
    {
        ZrPathDeletePtr(a, 0);
    }
};

} // namespace

TEST(Move, ByZeroReturnsOneAndWritesNothing)
{
    PAIR p;
    const COORDSTRUCT view = ViewAtZoom(1);
    EXPECT_EQ(ZrPathMovePaths(p.a, &view, 0, 0), 1);
    EXPECT_EQ(ZrPathMovePathsByPtfx(p.a, 0, 0), 1);
    ExpectNode(p.a, 0, 0, 0);
}

TEST(Move, NullIsRefused)
{
    const COORDSTRUCT view = ViewAtZoom(1);
    PAIR p;
    EXPECT_EQ(ZrPathMovePaths(nullptr, &view, 1, 1), 0);
    EXPECT_EQ(ZrPathMovePaths(p.a, nullptr, 1, 1), 0);
    EXPECT_EQ(ZrPathMovePathsByPtfx(nullptr, 1, 1), 0);
    EXPECT_EQ(ZrPathSize(nullptr, 2, 2), 0);
    EXPECT_EQ(ZrPathOffset(nullptr, 1, 1), 1);
    EXPECT_EQ(ZrPathOffsetExact(nullptr, 1, 1), 1);
}

TEST(Move, AnUnselectedRecordMovesItsJoinChain)
{
    PAIR p;
    ChainLink(joinChain, p.a, p.b);
    EXPECT_EQ(ZrPathMovePathsByPtfx(p.a, 65536, 2 * 65536), 1);
    ExpectNode(p.a, 0, 1, 2);
    ExpectNode(p.b, 0, 21, 22);
}

TEST(Move, ASelectedRecordMovesItsSelectedChainAndNotItsJoinChain)
{
    PAIR p;
    PATHREC *c = MakeBox(40, 40, 50, 50);
    ChainLink(tableChain, p.b, c);
    ChainLink(joinChain, p.a, p.b);
    p.a->flags = c->flags = PATHREC_SELECTED;
    ChainLink(selectedChain, p.a, c);
    EXPECT_EQ(ZrPathMovePathsByPtfx(p.a, 65536, 65536), 1);
    ExpectNode(p.a, 0, 1, 1);
    ExpectNode(p.b, 0, 20, 20);
    ExpectNode(c, 0, 41, 41);
}

TEST(Move, TheJoinedFormIgnoresTheSelection)
{
    PAIR p;
    ChainLink(joinChain, p.a, p.b);
    p.a->flags = PATHREC_SELECTED;
    PathMoveChain(p.a, 65536, 0, MOVE_JOINED);
    ExpectNode(p.a, 0, 1, 0);
    ExpectNode(p.b, 0, 21, 20);
    PathMoveChain(nullptr, 1, 1, MOVE_JOINED);
}

TEST(Move, ViewPixelsFollowTheZoom)
{
    const struct {
        const char *name;
        int32_t zoom;
        int32_t dx;
        double want;
    } cases[] = {
        {"one to one", 1, 7, 7},         {"enlarged", 4, 7, 1.75},      {"reduced", -3, 7, 21},
        {"enlarged, left", 2, -3, -1.5}, {"reduced, left", -2, -3, -6}, {"no zoom moves nothing", 0, 5, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        PAIR p;
        const COORDSTRUCT view = ViewAtZoom(c.zoom);
        EXPECT_EQ(ZrPathMovePaths(p.a, &view, c.dx, 0), 1);
        ExpectNode(p.a, 0, c.want, 0);
    }
}

TEST(Move, ViewPixelsAreCutTowardsZero)
{
    PAIR p;
    const COORDSTRUCT view = ViewAtZoom(3);
    ZrPathMovePaths(p.a, &view, 1, -1);
    EXPECT_EQ(ZRFIXED{p.a->nodes[0].x}, 21845); /* 65536 / 3 = 21845.33 */
    EXPECT_EQ(ZRFIXED{p.a->nodes[0].y}, -21845);
}

TEST(Move, ShapesStayAndAllThreeNodesOfACurveFollow)
{
    PATHREC *path = MakePath({{6, 0, 0},
                              {0x200, 9, 9},
                              {6, 1, 1},
                              {0x100, 5, 5},
                              {0, 0.5, 0},
                              {6, 2, 2},
                              {0x400, 5, 3},
                              {0, 7, 7},
                              {0x8004, 3, 3},
                              {4, 4, 4},
                              {0x2005, 2, 2}});
    EXPECT_EQ(ZrPathMovePathsByPtfx(path, 65536, 65536), 1);
    ExpectNode(path, 0, 1, 1);
    ExpectNode(path, 1, 9, 9);
    ExpectNode(path, 2, 2, 2);
    ExpectNode(path, 3, 5, 5);
    ExpectNode(path, 4, 0.5, 0);
    ExpectNode(path, 5, 3, 3);
    ExpectNode(path, 6, 5, 3);
    ExpectNode(path, 7, 7, 7);
    ExpectNode(path, 8, 4, 4);
    ExpectNode(path, 9, 5, 5);
    ExpectNode(path, 10, 3, 3);
    ZrPathDeletePtr(path, 0);
}

TEST(Move, ACurveCutShortAndAnUnknownKindEndTheWalk)
{
    for (const uint16_t type : {uint16_t{4}, uint16_t{0x800}, uint16_t{0}}) {
        PATHREC *path = MakePath({{6, 0, 0}, {2, 1, 1}, {type, 2, 2}, {2, 3, 3}});
        ZrPathMovePathsByPtfx(path, 65536, 0);
        ExpectNode(path, 1, 2, 1);
        ExpectNode(path, 2, 2, 2);
        ExpectNode(path, 3, 3, 3);
        ZrPathDeletePtr(path, 0);
    }
}

TEST(Move, SumsWrapAround)
{
    PATHREC *path = MakePath({{6, 0, 0}});
    path->nodes[0].x = std::numeric_limits<ZRFIXED>::max();
    ZrPathMovePathsByPtfx(path, 1, 0);
    EXPECT_EQ(ZRFIXED{path->nodes[0].x}, std::numeric_limits<ZRFIXED>::min());
    ZrPathDeletePtr(path, 0);
}

TEST(Size, ASecondFactorOfZeroScalesBothWaysByTheFirst)
{
    PAIR p;
    EXPECT_EQ(ZrPathSize(p.b, 1.5, 0), 1);
    ExpectNode(p.a, 2, 15, 15);
    ExpectNode(p.b, 0, 30, 30);
}

TEST(Size, OneByOneReturnsAtOnce)
{
    PAIR p;
    EXPECT_EQ(ZrPathSize(p.a, 1.0, 1.0), 1);
    EXPECT_EQ(ZrPathSize(p.a, 1.0, 0.0), 1);
    ExpectNode(p.b, 0, 20, 20);
}

TEST(Size, TwoByOneChangesOnlyX)
{
    PAIR p;
    EXPECT_EQ(ZrPathSize(p.a, 2.0, 1.0), 1);
    ExpectNode(p.b, 2, 60, 30);
}

TEST(Size, AFactorThatIsNotANumberIsSafe)
{
    PAIR p;
    EXPECT_EQ(ZrPathSize(p.a, std::numeric_limits<double>::quiet_NaN(), 1e300), 1);
    EXPECT_EQ(ZRFIXED{p.a->nodes[1].x}, 0);
}

TEST(Offset, ToTheOriginLeavesTheBoxOfTheNodesAtFive)
{
    PATHREC *path = MakeBox(33.25, -7.75, 50, 60);
    EXPECT_EQ(ZrPathOffset(path, 0, 0), 1);
    ExpectNode(path, 0, 5.25, 5.25); /* -7.75 counts as -8 with a fraction of 0.25 */
    ZrPathDeletePtr(path, 0);
}

TEST(Offset, TakesTheBoxOfTheJoinChainAndMovesTheTableChainFromTheRecordOn)
{
    PAIR p;
    PATHREC *c = MakeBox(-50, 0, 0, 10);
    ChainLink(tableChain, p.b, c);
    ChainLink(joinChain, p.b, c);
    EXPECT_EQ(ZrPathOffset(p.b, 100, 200), 1);
    ExpectNode(p.a, 0, 0, 0);
    ExpectNode(p.b, 0, 175, 225); /* the box began at (-50, 0) */
    ExpectNode(c, 0, 105, 205);
}

TEST(Offset, DeltasKeepTheirLowSixteenBits)
{
    PATHREC *path = MakeBox(5, 5, 10, 10);
    EXPECT_EQ(ZrPathOffset(path, 65536 + 3, 0), 1);
    ExpectNode(path, 0, 8, 5);
    ZrPathDeletePtr(path, 0);
}

TEST(Offset, ExactKeepsTheFractionsOfAllCoordinates)
{
    PATHREC *path = MakePath({{6, 1.5, -1.25}, {2, 3.75, 4}, {4, -0.5, 0}, {4, 0, 0.125}, {5, 7, 7}});
    PATHREC *behind = MakeBox(0, 0, 1, 1);
    ChainLink(tableChain, path, behind);
    EXPECT_EQ(ZrPathOffsetExact(path, -3, 10), 1);
    ExpectNode(path, 0, -1.5, 8.75);
    ExpectNode(path, 1, 0.75, 14);
    ExpectNode(path, 2, -3.5, 10);
    ExpectNode(path, 3, -3, 10.125);
    ExpectNode(behind, 0, -3, 10);
    ZrPathDeletePtr(path, 0);
}
