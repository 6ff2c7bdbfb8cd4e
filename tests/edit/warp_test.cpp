#include "store/store.h"
#include "support/document.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr ZRPOINTFX Pt(double x, double y)
{
    return {static_cast<ZRFIXED>(x * 65536), static_cast<ZRFIXED>(y * 65536)};
}

/* The margin box of MakeBox(10, 20, 110, 70): left 5, top 15, right 116, bottom 76. */
constexpr ZRPOINTFX sameFrame[] = {Pt(5, 15), Pt(116, 15), Pt(5, 76), Pt(116, 76)};

void ExpectNear(const PATHREC *path, const std::vector<NODEVALUE> &want, double within)
{
    const std::vector<NODEVALUE> nodes = NodesOf(path);
    ASSERT_EQ(nodes.size(), want.size());
    for (size_t i = 0; i < nodes.size(); i++) {
        EXPECT_EQ(nodes[i].type, want[i].type);
        EXPECT_NEAR(nodes[i].x, want[i].x, within) << i;
        EXPECT_NEAR(nodes[i].y, want[i].y, within) << i;
    }
}

constexpr double oneUnit = 1.0 / 65536;

/* A cubic in the form of Bernstein polynomials. */
double Bernstein(double a0, double a1, double a2, double a3, double s)
{
    const double r = 1 - s;
    return r * r * r * a0 + 3 * r * r * s * a1 + 3 * r * s * s * a2 + s * s * s * a3;
}

} // namespace

TEST(Warp, AFrameEqualToTheSourceRectangleMapsEachNodeToItself)
{
    PATHREC *path = MakeBox(10, 20, 110, 70);
    const std::vector<NODEVALUE> before = NodesOf(path);
    EXPECT_EQ(ZrPathBiLinear(path, sameFrame), 1);
    ExpectNear(path, before, oneUnit);
    ZrPathDeletePtr(path, 0);
}

TEST(Warp, BiLinearSpreadsAPointByItsPlaceInTheRectangle)
{
    /* A lone node at (0, 0): box (-5, -5, 6, 6), so u = v = 5 / 11. */
    PATHREC *path = MakePath({{6, 0, 0}});
    const ZRPOINTFX frame[] = {Pt(0, 0), Pt(110, 0), Pt(0, 220), Pt(110, 341)};
    EXPECT_EQ(ZrPathBiLinear(path, frame), 1);
    /* y = 220 v + 121 u v = 100 + 25 */
    ExpectNear(path, {{6, 50, 125}}, oneUnit);
    ZrPathDeletePtr(path, 0);
}

TEST(Warp, StraightEvenlySpacedCubicsGiveTheBilinearResult)
{
    const ZRPOINTFX corners[] = {Pt(0, 10), Pt(300, 40), Pt(30, 200), Pt(270, 350)};
    const ZRPOINTFX across[] = {Pt(0, 10),   Pt(100, 20),  Pt(200, 30),  Pt(300, 40),
                                Pt(30, 200), Pt(110, 250), Pt(190, 300), Pt(270, 350)};
    const ZRPOINTFX down[] = {Pt(0, 10),   Pt(10, 10 + 190.0 / 3),  Pt(20, 10 + 380.0 / 3),  Pt(30, 200),
                              Pt(300, 40), Pt(290, 40 + 310.0 / 3), Pt(280, 40 + 620.0 / 3), Pt(270, 350)};
    PATHREC *linear = MakeCircle(50, 60, 40);
    PATHREC *cubic = MakeCircle(50, 60, 40);
    PATHREC *cubicV = MakeCircle(50, 60, 40);
    EXPECT_EQ(ZrPathBiLinear(linear, corners), 1);
    EXPECT_EQ(ZrPathBiCubic(cubic, across), 1);
    EXPECT_EQ(ZrPathBiCubicV(cubicV, down), 1);
    ExpectNear(cubic, NodesOf(linear), oneUnit);
    ExpectNear(cubicV, NodesOf(linear), 4 * oneUnit); /* thirds are not exact in 16.16 */
    for (PATHREC *path : {linear, cubic, cubicV}) ZrPathDeletePtr(path, 0);
}

TEST(Warp, ClearsPrimitiveOnTheWholeJoinChainAndMovesOnlyIt)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    PATHREC *b = doc.Add(MakeBox(30, 30, 40, 40));
    PATHREC *c = doc.Add(MakeBox(50, 50, 60, 60));
    a->primitive = b->primitive = c->primitive = ZRPRIM_RECTANGLE;
    ChainLink(joinChain, a, b);
    const ZRPOINTFX frame[] = {Pt(0, 0), Pt(10, 0), Pt(0, 10), Pt(10, 10)};
    EXPECT_EQ(ZrPathBiLinear(a, frame), 1);
    EXPECT_EQ(a->primitive, 0);
    EXPECT_EQ(b->primitive, 0);
    EXPECT_EQ(c->primitive, ZRPRIM_RECTANGLE);
    EXPECT_LT(NodesOf(b)[2].x, 10);
    EXPECT_EQ(NodesOf(c)[0], (NODEVALUE{6, 50, 50}));
}

TEST(Warp, TwiceDiffersFromOnceSinceTheSourceRectangleHasMoved)
{
    const ZRPOINTFX frame[] = {Pt(0, 0), Pt(200, 20), Pt(10, 100), Pt(180, 150)};
    PATHREC *once = MakeBox(10, 20, 110, 70);
    PATHREC *twice = MakeBox(10, 20, 110, 70);
    ZrPathBiLinear(once, frame);
    ZrPathBiLinear(twice, frame);
    ZrPathBiLinear(twice, frame);
    EXPECT_NE(NodesOf(once), NodesOf(twice));
    ZrPathDeletePtr(once, 0);
    ZrPathDeletePtr(twice, 0);
}

TEST(Warp, ShapeNodesAreNotWarped)
{
    PATHREC *path = MakePath({{6, 0, 0},
                              {0x200, 50, 50},
                              {6, 0, 0},
                              {0x100, 40, 40},
                              {0, 0.5, 0},
                              {6, 0, 0},
                              {0x400, 5, 2},
                              {0, 9, 9},
                              {2, 50, 50}});
    const ZRPOINTFX frame[] = {Pt(0, 0), Pt(1, 0), Pt(0, 1), Pt(1, 1)};
    ZrPathBiLinear(path, frame);
    const std::vector<NODEVALUE> nodes = NodesOf(path);
    EXPECT_EQ(nodes[1], (NODEVALUE{0x200, 50, 50}));
    EXPECT_EQ(nodes[3], (NODEVALUE{0x100, 40, 40}));
    EXPECT_EQ(nodes[4], (NODEVALUE{0, 0.5, 0}));
    EXPECT_EQ(nodes[6], (NODEVALUE{0x400, 5, 2}));
    EXPECT_EQ(nodes[7], (NODEVALUE{0, 9, 9}));
    EXPECT_LT(nodes[8].x, 1);
    ZrPathDeletePtr(path, 0);
}

TEST(Warp, NullIsRefused)
{
    PATHREC *path = MakeBox(0, 0, 1, 1);
    EXPECT_EQ(ZrPathBiLinear(nullptr, sameFrame), 0);
    EXPECT_EQ(ZrPathBiCubic(nullptr, sameFrame), 0);
    EXPECT_EQ(ZrPathBiCubicV(nullptr, sameFrame), 0);
    EXPECT_EQ(ZrPathBiLinear(path, nullptr), 0);
    EXPECT_EQ(ZrPathBiCubic(path, nullptr), 0);
    EXPECT_EQ(ZrPathBiCubicV(path, nullptr), 0);
    ZrPathDeletePtr(path, 0);
}

TEST(Warp, ExtremeFramesAndEmptyRecordsAreSafe)
{
    constexpr ZRFIXED most = std::numeric_limits<ZRFIXED>::max();
    constexpr ZRFIXED least = std::numeric_limits<ZRFIXED>::min();
    const ZRPOINTFX frame[] = {{least, least}, {most, least}, {least, most}, {most, most},
                               {most, most},   {least, most}, {most, least}, {least, least}};
    for (PATHREC *path : {MakePath({}), MakeBox(-32768, -32768, 32767, 32767)}) {
        EXPECT_EQ(ZrPathBiLinear(path, frame), 1);
        EXPECT_EQ(ZrPathBiCubic(path, frame), 1);
        EXPECT_EQ(ZrPathBiCubicV(path, frame), 1);
        ZrPathDeletePtr(path, 0);
    }
}

TEST(Warp, RandomFramesAgreeWithTheBernsteinForm)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(-2000, 2000);
    for (int round = 0; round < 200; round++) {
        ZRPOINTFX frame[8];
        for (ZRPOINTFX &p : frame) p = Pt(place(random), place(random));
        PATHREC *path = MakePath({{6, place(random), place(random)},
                                  {2, place(random), place(random)},
                                  {4, place(random), place(random)},
                                  {4, place(random), place(random)},
                                  {4, place(random), place(random)}});
        std::vector<NODEVALUE> want = NodesOf(path);
        tagRECT box;
        ZrPathGetMiniMaxRect(path, fixedOne, &box);
        const int vertical = round % 2;
        const auto coord = [&](ZRFIXED ZRPOINTFX::*m, double u, double v) {
            const auto at = [&](int i) { return FixToDouble(frame[i].*m); };
            const double s = vertical ? v : u;
            const double from = Bernstein(at(0), at(1), at(2), at(3), s);
            const double to = Bernstein(at(4), at(5), at(6), at(7), s);
            return from + (vertical ? u : v) * (to - from);
        };
        for (NODEVALUE &node : want) {
            const double u = (node.x - box.left) / (box.right - box.left);
            const double v = (node.y - box.top) / (box.bottom - box.top);
            node.x = coord(&ZRPOINTFX::x, u, v);
            node.y = coord(&ZRPOINTFX::y, u, v);
        }
        if (vertical)
            ZrPathBiCubicV(path, frame);
        else
            ZrPathBiCubic(path, frame);
        ExpectNear(path, want, oneUnit);
        ZrPathDeletePtr(path, 0);
    }
}
