/* pick_test.cpp - clicks: what they hit, against a plain form over dense samples, and what they do to the selection. */
#include "store/store.h"
#include "support/randompath.h"
#include "support/shapes.h"
#include "support/views.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr uint16_t M = PATHNODE_SELECTED;
constexpr uint32_t noNode = 777;
constexpr uint16_t noPosition = 888;

struct ANSWER {
    int32_t result;
    PATHREC *path;
    uint32_t node;
    uint16_t position;
};

/* A view of 200 x 200 with records drawn into it. */
struct SCENE : TESTVIEW {
    explicit SCENE(const std::vector<PATHREC *> &paths, int32_t zoom = 1, int32_t scrollX = 0, int32_t scrollY = 0)
        : TESTVIEW(200, 200, zoom, scrollX, scrollY)
    {
        Add(paths);
        ZrPathDraw(view, paths[0], nullptr);
    }

    ANSWER Click(int32_t x, int32_t y, int32_t modifiers, HDC dc = nullptr)
    {
        ANSWER answer = {0, Group()->activePath, noNode, noPosition};
        answer.result = ZrPathPtOn(x, y, modifiers, dc, view, table, &answer.path, &answer.node, &answer.position);
        return answer;
    }
};

/* Half a pixel lies between a view pixel and the image: view pixel x is image x - 0.5. */
PATHREC *LineAt(double x0, double y0, double x1, double y1)
{
    return MakePath({{6, x0 - 0.5, y0 - 0.5}, {2, x1 - 0.5, y1 - 0.5}});
}

} // namespace

/* ---- geometry ---- */

TEST(Pick, NodeBoxIsHalfOpen)
{
    const struct {
        double node;
        bool hit;
    } cases[] = {{47.1, true}, {47, false}, {52.9, true}, {53, true}, {53.1, false}};
    for (const auto &c : cases) {
        /* The pointer is at 50, so a node at 47 is clicked 3 to its right. The line leads away from the pointer; where
         * it is hit in the node's stead, its position is not 0. */
        const double away = c.node < 50 ? -100 : 180;
        SCENE s({MakePath({{6, c.node - 0.5, 49.5}, {2, away, 49.5}})});
        const ANSWER answer = s.Click(50, 50, ZRPICK_ADD);
        EXPECT_EQ(answer.node == 0 && answer.position == 0, c.hit) << c.node;
    }
}

TEST(Pick, ToleranceIsThreePixelsOfTheView)
{
    const struct {
        int32_t zoom;
        double tolerance;
    } cases[] = {{1, 3}, {4, 0.75}, {-4, 12}, {-1, 3}};
    for (const auto &c : cases)
        for (const bool inside : {true, false}) {
            /* A line this far above the image point under the pointer, in the middle of its length. */
            SCENE s({MakePath({{6, 0, 0}, {2, 100, 0}})}, c.zoom);
            const tagPOINTDB p = ZrPathPtWndToImage(60, 60, s.view);
            const double off = c.tolerance * (inside ? 0.99 : 1.01);
            PATHREC *path = s.Group()->activePath;
            path->nodes[0] = {6, DbToFix(p.x - 5000), DbToFix(p.y - off)};
            path->nodes[1] = {2, DbToFix(p.x + 5000), DbToFix(p.y - off)};
            EXPECT_EQ(s.Click(60, 60, ZRPICK_ADD).result, inside ? 1 : 3) << c.zoom << ' ' << inside;
        }
}

TEST(Pick, MiddleOfALineGivesItsPositionAndStart)
{
    SCENE s({LineAt(20, 50, 120, 50)});
    const ANSWER answer = s.Click(70, 50, ZRPICK_REPLACE);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.path, s.Group()->activePath);
    EXPECT_EQ(answer.node, 0u);
    EXPECT_EQ(answer.position, 32767);
}

TEST(Pick, PositionsOfACurve)
{
    /* Evenly spaced controls on a line: parameter and length agree. */
    SCENE s({MakePath({{6, 9.5, 49.5}, {4, 39.5, 49.5}, {4, 69.5, 49.5}, {4, 99.5, 49.5}})});
    ANSWER answer = s.Click(40, 51, ZRPICK_QUERY);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.node, 0u);
    EXPECT_NEAR(answer.position, 65535 / 3, 1);
    answer = s.Click(10, 50, ZRPICK_QUERY);
    EXPECT_EQ(answer.node, 0u);
    EXPECT_EQ(answer.position, 0);
    answer = s.Click(100, 50, ZRPICK_QUERY);
    EXPECT_EQ(answer.node, 3u);
    EXPECT_EQ(answer.position, 0);
}

TEST(Pick, PositionBehindALinesEndStaysAtTheEnd)
{
    /* 3 to the right of the end: on the edge that the node's box does not have and the line's has. */
    SCENE s({LineAt(20, 50, 120, 50)});
    const ANSWER answer = s.Click(123, 50, ZRPICK_ADD);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.node, 0u);
    EXPECT_EQ(answer.position, 65535);
}

TEST(Pick, EarlierNodeAndEarlierRecordWin)
{
    SCENE s({MakePath({{6, 10, 49.5}, {2, 48.5, 49.5}, {2, 50.5, 49.5}, {2, 90, 90}}), LineAt(50, 50, 150, 50)});
    const ANSWER answer = s.Click(50, 50, ZRPICK_QUERY);
    EXPECT_EQ(answer.path, s.Group()->activePath);
    EXPECT_EQ(answer.node, 1u);
    EXPECT_EQ(answer.position, 0);
}

TEST(Pick, StartWithTheSelectedBitIsAPlainStart)
{
    SCENE s({MakePath({{6 | M, 20, 20}, {2, 60, 20}, {6 | M, 60, 80}, {2, 20, 80}})});
    EXPECT_EQ(s.Click(60, 50, ZRPICK_ADD).result, 3) << "no line leads from one run to the next";
    EXPECT_EQ(s.Click(40, 20, ZRPICK_ADD).result, 1);
}

TEST(Pick, ACurveIsHitAsFarAwayAsTheToleranceItself)
{
    /* At zoom 2 the tolerance is 1.5, and view row 4 is image row 1.5. */
    SCENE s({MakePath({{6, 0, 0}, {4, 10, 0}, {4, 20, 0}, {4, 30, 0}})}, 2);
    EXPECT_EQ(s.Click(31, 5, ZRPICK_ADD).result, 3);
    EXPECT_EQ(s.Click(31, 4, ZRPICK_ADD).result, 1);
}

TEST(Pick, CurveIsTestedInItsControlBoxOnly)
{
    SCENE s({MakePath({{6, 20, 80}, {4, 20, 20}, {4, 80, 20}, {4, 80, 80}})});
    EXPECT_EQ(s.Click(50, 35, ZRPICK_ADD).result, 1) << "three quarters of the way to the controls";
    EXPECT_EQ(s.Click(50, 20, ZRPICK_ADD).result, 3);
    EXPECT_EQ(s.Click(50, 100, ZRPICK_ADD).result, 3);
}

namespace {

ANSWER QueryShape(const std::vector<TESTNODE> &nodes, int32_t x, int32_t y)
{
    SCENE s({MakePath(nodes)});
    return s.Click(x, y, ZRPICK_ADD);
}

} // namespace

TEST(Pick, EllipseIsHitAlongItsRim)
{
    /* Centre (99.5, 99.5) in the image, half-widths 60 and 40. */
    const std::vector<TESTNODE> nodes = {{6, 159.5, 59.5}, {0x100, 39.5, 139.5}, {0, 1.5, 0}};
    const struct {
        int32_t x, y;
        bool hit;
    } cases[] = {{160, 100, true},  {157, 100, true}, {156, 100, false}, {163, 100, true}, {164, 100, false},
                 {100, 60, true},   {100, 57, true},  {100, 56, false},  {100, 63, true},  {100, 64, false},
                 {100, 100, false}, {40, 60, false},  {142, 128, true},  {137, 128, false}};
    for (const auto &c : cases) EXPECT_EQ(QueryShape(nodes, c.x, c.y).result, c.hit ? 1 : 3) << c.x << ' ' << c.y;
    const ANSWER answer = QueryShape(nodes, 160, 100);
    EXPECT_EQ(answer.node, noNode) << "neither is written for a shape";
    EXPECT_EQ(answer.position, noPosition);
}

TEST(Pick, FlatEllipseIsHitEverywhereInItsReach)
{
    /* Half a pixel high: the reach inwards is cut to that, so nothing is inside. */
    const std::vector<TESTNODE> nodes = {{6, 39.5, 99}, {0x100, 159.5, 100}, {0, 0, 0}};
    EXPECT_EQ(QueryShape(nodes, 100, 100).result, 1);
    EXPECT_EQ(QueryShape(nodes, 100, 101).result, 1);
    EXPECT_EQ(QueryShape(nodes, 100, 102).result, 3) << "outwards too";
}

TEST(Pick, RectangleIsHitAlongItsSides)
{
    const std::vector<TESTNODE> nodes = {{6, 39.5, 49.5}, {0x200, 139.5, 109.5}};
    const struct {
        int32_t x, y;
        bool hit;
    } cases[] = {{90, 50, true},  {140, 80, true}, {90, 110, true}, {40, 80, true},  {90, 53, true},
                 {90, 54, false}, {90, 80, false}, {43, 53, true},  {44, 54, false}, {90, 47, true}};
    for (const auto &c : cases) EXPECT_EQ(QueryShape(nodes, c.x, c.y).result, c.hit ? 1 : 3) << c.x << ' ' << c.y;
}

TEST(Pick, PolygonIsHitAlongItsEdges)
{
    /* A diamond about (99.5, 99.5) with a corner at the right. */
    const std::vector<TESTNODE> diamond = {{6, 99.5, 99.5}, {0x400, 4, 0}, {2, 149.5, 99.5}};
    EXPECT_EQ(QueryShape(diamond, 125, 125).result, 1);
    EXPECT_EQ(QueryShape(diamond, 75, 75).result, 1);
    EXPECT_EQ(QueryShape(diamond, 125, 75).result, 1) << "the last edge joins corner 0";
    EXPECT_EQ(QueryShape(diamond, 100, 100).result, 3);
    /* A star of four points: its edges run to the inner circle. */
    const std::vector<TESTNODE> star = {{6, 99.5, 99.5}, {0x400, 4, 10}, {2, 149.5, 99.5}};
    EXPECT_EQ(QueryShape(star, 125, 125).result, 3);
    EXPECT_EQ(QueryShape(star, 107, 107).result, 1);
    const std::vector<TESTNODE> none = {{6, 99.5, 99.5}, {0x400, 0, 10}, {2, 149.5, 99.5}};
    EXPECT_EQ(QueryShape(none, 149, 99).result, 3) << "what cannot be built is not hit";
}

/* ---- against dense samples ---- */

namespace {

double Distance(const POINTDB *p, int points, const POINTDB &at)
{
    double best = 1e30;
    const int pieces = 2000;
    for (int i = 0; i <= pieces; i++) {
        const double t = i / double{pieces};
        const double s = 1 - t;
        const POINTDB q =
            points == 2 ? p[0] * s + p[1] * t
                        : p[0] * (s * s * s) + p[1] * (3 * s * s * t) + p[2] * (3 * s * t * t) + p[3] * (t * t * t);
        best = std::min(best, Length(q - at));
    }
    return best;
}

bool NearNode(const PATHNODE &n, const POINTDB &p, double t)
{
    const double dx = p.x - FixToDb(n.x);
    const double dy = p.y - FixToDb(n.y);
    return dx >= -t && dx < t && dy >= -t && dy < t;
}

enum CERTAINTY { NO, YES, CLOSE_CALL };

struct EXPECTED {
    CERTAINTY hit;
    uint32_t node;
    bool onNode;
};

/* First match over the nodes of one record; a close call when sampling cannot tell. */
EXPECTED PlainHit(const PATHREC *path, const POINTDB &p, double t)
{
    for (uint32_t i = 0; i < path->nodeCount;) {
        const int kind = path->nodes[i].type & 0xffe;
        if (kind == 6) {
            i++;
            continue;
        }
        const int points = kind == 4 ? 4 : 2;
        const uint32_t end = kind == 4 ? i + 2 : i;
        POINTDB c[4];
        for (int k = 0; k < points; k++) {
            const PATHNODE n = path->nodes[i - 1 + static_cast<uint32_t>(k)];
            c[k] = {FixToDb(n.x), FixToDb(n.y)};
        }
        if (NearNode(path->nodes[i - 1], p, t)) return {YES, i - 1, true};
        if (NearNode(path->nodes[end], p, t)) return {YES, end, true};
        const double distance = Distance(c, points, p);
        if (distance < t - 0.05 * t) return {YES, i - 1, false};
        /* A corner of a line's box lies farther than t from it but within t of the line drawn on. */
        if (distance < t * 1.5) return {CLOSE_CALL, 0, false};
        i = end + 1;
    }
    return {NO, 0, false};
}

} // namespace

TEST(Pick, EqualsThePlainFormOnRandomRecords)
{
    int hits = 0;
    int misses = 0;
    for (unsigned seed = 0; seed < 1500; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        shape.segments = 4;
        const int32_t zooms[] = {1, 2, -2};
        SCENE s({RandomPath(random, shape)}, zooms[seed % 3], Pick(random, -40, 40), Pick(random, -40, 40));
        const PATHREC *path = s.Group()->activePath;
        const double t = zooms[seed % 3] > 0 ? 3.0 / zooms[seed % 3] : 6.0;
        for (int click = 0; click < 10; click++) {
            const int32_t x = Pick(random, 0, 199);
            const int32_t y = Pick(random, 0, 199);
            const EXPECTED want = PlainHit(path, ZrPathPtWndToImage(x, y, s.view), t);
            if (want.hit == CLOSE_CALL) continue;
            const ANSWER got = s.Click(x, y, ZRPICK_ADD);
            s.Group()->selectedPath = nullptr;
            ZrPathDeSelectAll(nullptr, s.Group()->activePath, s.view, 0);
            ASSERT_EQ(got.result, want.hit == YES ? 1 : 3) << "seed " << seed << " at " << x << ' ' << y;
            (want.hit == YES ? hits : misses)++;
            if (want.hit != YES) continue;
            ASSERT_EQ(got.node, want.node) << "seed " << seed;
            if (want.onNode) {
                ASSERT_EQ(got.position, 0);
            }
        }
    }
    EXPECT_GT(hits, 500);
    EXPECT_GT(misses, 500);
}

TEST(Pick, FilterLetsEveryVisibleHitThrough)
{
    for (unsigned seed = 0; seed < 400; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        shape.segments = 3;
        shape.low = 0;
        SCENE s({RandomPath(random, shape)});
        for (int click = 0; click < 20; click++) {
            const int32_t x = Pick(random, 5, 190);
            const int32_t y = Pick(random, 5, 190);
            const bool plain = s.Click(x, y, ZRPICK_QUERY).result != 3;
            if (!plain) continue;
            bool any = false;
            for (int32_t j = y - 4; j < y + 4; j++)
                for (int32_t i = x - 4; i < x + 4; i++) any |= s.At(i, j) != 0;
            ASSERT_TRUE(any) << "seed " << seed;
        }
    }
}

/* ---- the filter ---- */

TEST(Pick, WindowIsEightByEightClippedToTheBuffer)
{
    SCENE s({LineAt(20, 50, 120, 50)});
    const auto nearby = [&s](int32_t x, int32_t y, int32_t bx, int32_t by) {
        std::fill(s.view->displayBuffer, s.view->displayBuffer + 40000, uint8_t{0});
        s.view->displayBuffer[by * 200 + bx] = 1;
        /* A huge tolerance about the image's origin makes every click that passes the filter a hit. */
        COORDSTRUCT view = *s.view;
        view.zoom = -1000;
        view.scrollX = WrapSub(0, x);
        view.scrollY = WrapSub(0, y);
        PATHREC *path = s.Group()->activePath;
        return ZrPathPtOn(x, y, ZRPICK_QUERY, nullptr, &view, s.table, &path, nullptr, nullptr) != 3;
    };
    EXPECT_TRUE(nearby(100, 100, 96, 96));
    EXPECT_FALSE(nearby(100, 100, 95, 100));
    EXPECT_FALSE(nearby(100, 100, 100, 95));
    EXPECT_TRUE(nearby(100, 100, 103, 103));
    EXPECT_FALSE(nearby(100, 100, 104, 100));
    EXPECT_FALSE(nearby(100, 100, 100, 104));
    EXPECT_TRUE(nearby(0, 0, 3, 3));
    EXPECT_TRUE(nearby(199, 199, 199, 199));
    EXPECT_TRUE(nearby(202, 202, 199, 199));
    EXPECT_FALSE(nearby(204, 204, 199, 199));
    EXPECT_FALSE(nearby(-4, 0, 0, 0));
    EXPECT_TRUE(nearby(-3, -3, 0, 0));
    EXPECT_FALSE(nearby(INT32_MAX, INT32_MIN, 0, 0));
}

TEST(Pick, HiddenPathIsReachedByAnAddedClickOnly)
{
    SCENE s({LineAt(20, 50, 120, 50)});
    s.Group()->activePath->flags = PATHREC_HIDDEN;
    ZrPathDraw(s.view, s.Group()->activePath, nullptr);
    EXPECT_EQ(s.Click(70, 50, ZRPICK_REPLACE).result, 3);
    EXPECT_EQ(s.Click(70, 50, ZRPICK_QUERY).result, 3);
    EXPECT_EQ(s.Click(70, 50, ZRPICK_ADD).result, 1);
}

TEST(Pick, WithoutABufferOnlyAddedClicksHit)
{
    SCENE s({LineAt(20, 50, 120, 50)});
    s.view->displayBuffer = nullptr;
    EXPECT_EQ(s.Click(70, 50, ZRPICK_REPLACE).result, 3);
    EXPECT_EQ(s.Click(70, 50, ZRPICK_ADD).result, 1);
}

/* ---- the selection ---- */

TEST(Pick, QueryChangesNothing)
{
    SCENE s({LineAt(20, 50, 120, 50), LineAt(20, 80, 120, 80)});
    PATHREC *b = s.Group()->activePath->nextPath;
    SelectPaths({b});
    b->flags = PATHREC_NODEEDIT;
    s.Group()->selectedPath = b;
    const auto expectUnchanged = [&] {
        EXPECT_EQ(s.Group()->activePath->flags, 0u);
        EXPECT_EQ(b->flags, PATHREC_NODEEDIT);
        EXPECT_EQ(s.Group()->selectedPath, b);
    };
    ANSWER answer = s.Click(70, 50, ZRPICK_QUERY);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.path, s.Group()->activePath);
    expectUnchanged();
    answer = s.Click(70, 80, ZRPICK_QUERY);
    EXPECT_EQ(answer.result, 2);
    EXPECT_EQ(answer.path, b);
    expectUnchanged();
    for (const int32_t y : {65, 180}) { /* near an outline or not */
        answer = s.Click(70, y, ZRPICK_QUERY);
        EXPECT_EQ(answer.result, 3);
        EXPECT_EQ(answer.path, nullptr);
        EXPECT_EQ(answer.node, noNode);
        EXPECT_EQ(answer.position, noPosition);
        expectUnchanged();
    }
}

TEST(Pick, PlainClickReplacesTheSelection)
{
    SCENE s({LineAt(20, 50, 120, 50), LineAt(20, 80, 120, 80)});
    PATHREC *a = s.Group()->activePath;
    PATHREC *b = a->nextPath;
    EXPECT_EQ(s.Click(70, 50, ZRPICK_REPLACE).result, 1);
    EXPECT_EQ(s.Group()->selectedPath, a);
    EXPECT_EQ(s.Click(70, 80, ZRPICK_REPLACE).result, 1);
    EXPECT_EQ(a->flags, 0u);
    EXPECT_EQ(b->flags, PATHREC_SELECTED);
    EXPECT_EQ(s.Group()->selectedPath, b);
    EXPECT_EQ(s.Click(70, 180, ZRPICK_REPLACE).result, 3) << "far from everything";
    EXPECT_EQ(b->flags, 0u);
    EXPECT_EQ(s.Group()->selectedPath, nullptr);
    EXPECT_EQ(s.Click(70, 80, ZRPICK_REPLACE).result, 1);
    EXPECT_EQ(s.Click(70, 84, ZRPICK_REPLACE).result, 3) << "past the filter, but no hit";
    EXPECT_EQ(b->flags, 0u);
    EXPECT_EQ(s.Group()->selectedPath, nullptr);
}

TEST(Pick, AddedClickKeepsTheSelection)
{
    SCENE s({LineAt(20, 50, 120, 50), LineAt(20, 80, 120, 80)});
    PATHREC *a = s.Group()->activePath;
    PATHREC *b = a->nextPath;
    EXPECT_EQ(s.Click(70, 80, ZRPICK_ADD).result, 1);
    EXPECT_EQ(s.Click(70, 50, ZRPICK_ADD).result, 1);
    EXPECT_EQ(s.Group()->selectedPath, a);
    EXPECT_EQ(a->nextSel, b);
    EXPECT_EQ(b->prevSel, a);
    EXPECT_EQ(s.Click(70, 180, ZRPICK_ADD).result, 3);
    EXPECT_EQ(a->flags, PATHREC_SELECTED);
    EXPECT_EQ(b->flags, PATHREC_SELECTED);
    EXPECT_EQ(a->nextSel, b);
    EXPECT_EQ(s.Group()->selectedPath, nullptr) << "the records stay selected, the group forgets them";
}

TEST(Pick, ClickOnOneOfSeveralSelectedStartsNoNodeEditing)
{
    SCENE s({LineAt(20, 50, 120, 50), LineAt(20, 80, 120, 80)});
    PATHREC *a = s.Group()->activePath;
    SelectPaths({a, a->nextPath});
    for (const int32_t modifiers : {ZRPICK_REPLACE, ZRPICK_ADD}) {
        EXPECT_EQ(s.Click(20, 50, modifiers).result, 2);
        EXPECT_EQ(a->flags, PATHREC_SELECTED);
        EXPECT_EQ(a->nextPath->flags, PATHREC_SELECTED);
        EXPECT_EQ(s.Group()->selectedPath, a);
    }
}

TEST(Pick, ClickOnTheOnlySelectedEditsItsNodes)
{
    SCENE s({MakeBox(20, 20, 120, 120)});
    PATHREC *a = s.Group()->activePath;
    EXPECT_EQ(s.Click(70, 20, ZRPICK_REPLACE).result, 1);
    ANSWER answer = s.Click(70, 20, ZRPICK_REPLACE);
    EXPECT_EQ(answer.result, 2);
    EXPECT_EQ(a->flags, PATHREC_NODEEDIT);
    for (uint32_t i = 0; i < 5; i++) EXPECT_FALSE(NodeSelected(&a->nodes[i])) << "a segment marks no node";
    for (uint32_t corner = 1; corner < 4; corner++) {
        const int32_t x = corner < 3 ? 120 : 20;
        const int32_t y = corner > 1 ? 120 : 20;
        EXPECT_EQ(s.Click(x, y, corner % 2 ? ZRPICK_REPLACE : ZRPICK_ADD).result, 2);
        EXPECT_EQ(a->flags, PATHREC_NODEEDIT);
        for (uint32_t i = 0; i < 5; i++) EXPECT_EQ(NodeSelected(&a->nodes[i]), i == corner) << corner;
        EXPECT_EQ(s.Group()->selectedPath, a);
    }
}

TEST(Pick, WhereAnAnchorsBitStands)
{
    const struct {
        const char *name;
        std::vector<TESTNODE> nodes;
        uint32_t click; /* node whose place is clicked */
        int32_t want;   /* node that carries the bit; -1: none */
    } cases[] = {
        {"line node", {{6, 20, 20}, {2, 60, 20}, {2, 60, 60}}, 1, 1},
        {"start of an open polyline: its last node", {{6, 20, 20}, {2, 60, 20}, {2, 60, 60}}, 0, 2},
        {"start of a closed polygon", {{6, 20, 20}, {2, 60, 20}, {2, 60, 60}, {3, 20, 20}}, 0, 3},
        {"between two curves: first node of the one that ends there",
         {{6, 20, 20}, {4, 30, 20}, {4, 50, 20}, {4, 60, 20}, {4, 60, 30}, {4, 60, 50}, {4, 60, 80}},
         3,
         1},
        {"curve end before a line", {{6, 20, 20}, {4, 30, 20}, {4, 50, 20}, {4, 60, 20}, {2, 60, 80}}, 3, 3},
        {"line before a curve", {{6, 20, 20}, {2, 60, 20}, {4, 70, 30}, {4, 80, 50}, {4, 80, 90}}, 1, 1},
        {"last curve end of an open record",
         {{6, 20, 20}, {4, 30, 20}, {4, 50, 20}, {4, 60, 20}, {4, 60, 30}, {4, 60, 50}, {4, 60, 80}},
         6,
         6},
        {"start of a closed record of curves",
         {{6, 20, 20}, {4, 30, 20}, {4, 50, 20}, {4, 60, 20}, {4, 60, 80}, {4, 20, 80}, {5, 20, 20}},
         0,
         4},
        {"start of a closed record with a line behind it",
         {{6, 20, 20}, {2, 60, 20}, {4, 60, 80}, {4, 20, 80}, {5, 20, 20}},
         0,
         4},
        {"start of an inner run", {{6, 20, 20}, {2, 60, 20}, {6, 80, 80}, {2, 120, 80}, {2, 120, 120}}, 2, 2},
        {"curve end before an inner run",
         {{6, 20, 20}, {4, 30, 20}, {4, 50, 20}, {4, 60, 20}, {6, 80, 80}, {2, 120, 80}},
         3,
         3},
        {"smooth curve end between curves",
         {{6, 20, 20}, {4, 30, 20}, {4, 50, 20}, {0x2004, 60, 20}, {4, 60, 30}, {4, 60, 50}, {4, 60, 80}},
         3,
         1},
        {"a shape's node is no anchor", {{6, 20, 20}, {0x100, 60, 60}, {0, 120, 120}, {2, 150, 150}}, 2, -1},
    };
    for (const auto &c : cases) {
        SCENE s({MakePath(c.nodes)});
        PATHREC *a = s.Group()->activePath;
        SelectPaths({a});
        const TESTNODE &n = c.nodes[c.click];
        EXPECT_EQ(s.Click(static_cast<int32_t>(n.x), static_cast<int32_t>(n.y), ZRPICK_ADD).result, 2) << c.name;
        EXPECT_EQ(a->flags, PATHREC_NODEEDIT) << c.name;
        for (uint32_t i = 0; i < a->nodeCount; i++)
            EXPECT_EQ(NodeSelected(&a->nodes[i]), static_cast<int32_t>(i) == c.want) << c.name << " node " << i;
    }
}

TEST(Pick, ShapeHitEntersNodeEditingWithoutAMark)
{
    SCENE s({MakePath({{6, 39.5, 49.5}, {0x200, 139.5, 109.5}})});
    PATHREC *a = s.Group()->activePath;
    SelectPaths({a});
    EXPECT_EQ(s.Click(90, 50, ZRPICK_ADD).result, 2);
    EXPECT_EQ(a->flags, PATHREC_NODEEDIT);
    EXPECT_EQ(a->nodes[0].type, 6);
    EXPECT_EQ(a->nodes[1].type, 0x200);
}

TEST(Pick, JoinedRecordsAreSelectedTogether)
{
    for (const int32_t modifiers : {ZRPICK_REPLACE, ZRPICK_ADD}) {
        SCENE s({LineAt(20, 50, 120, 50), LineAt(20, 80, 120, 80), LineAt(20, 110, 120, 110)});
        PATHREC *a = s.Group()->activePath;
        PATHREC *b = a->nextPath;
        PATHREC *c = b->nextPath;
        ChainLink(joinChain, a, c);
        EXPECT_EQ(s.Click(70, 110, modifiers).result, 1);
        EXPECT_EQ(a->flags, PATHREC_SELECTED);
        EXPECT_EQ(b->flags, 0u);
        EXPECT_EQ(c->flags, PATHREC_SELECTED);
        EXPECT_EQ(s.Group()->selectedPath, a);
        EXPECT_EQ(a->nextSel, c);
        EXPECT_EQ(c->nextSel, nullptr);
    }
}

TEST(Pick, WithoutAModeTheChainIsStillRebuilt)
{
    SCENE s({LineAt(20, 50, 120, 50), LineAt(20, 80, 120, 80)});
    PATHREC *a = s.Group()->activePath;
    a->flags = a->nextPath->flags = PATHREC_SELECTED;
    for (const int32_t modifiers : {1, 0, 17, 32, 3}) {
        a->nextSel = nullptr;
        s.Group()->selectedPath = nullptr;
        const ANSWER answer = s.Click(70, 50, modifiers);
        EXPECT_EQ(answer.result, -1) << modifiers;
        EXPECT_EQ(answer.path, a);
        EXPECT_EQ(answer.node, noNode);
        EXPECT_EQ(answer.position, noPosition);
        EXPECT_EQ(a->nextSel, a->nextPath);
        EXPECT_EQ(s.Group()->selectedPath, a);
    }
}

TEST(Pick, MarksOfOldAndNewSelectionAreToggled)
{
    SCENE s({MakeBox(20, 20, 60, 60), MakeBox(100, 20, 160, 60)});
    CANVAS canvas(200, 200);
    EXPECT_EQ(s.Click(40, 20, ZRPICK_REPLACE, canvas.dc).result, 1);
    EXPECT_NE(canvas.Pixels(), std::vector<uint32_t>(40000));
    EXPECT_EQ(s.Click(60, 20, ZRPICK_REPLACE, canvas.dc).result, 2);
    EXPECT_EQ(s.Click(120, 20, ZRPICK_REPLACE, canvas.dc).result, 1);
    EXPECT_EQ(s.Click(180, 180, ZRPICK_REPLACE, canvas.dc).result, 3);
    EXPECT_EQ(canvas.Pixels(), std::vector<uint32_t>(40000)) << "nothing selected: nothing left";
}

/* ---- bad input ---- */

TEST(Pick, NothingGivenIsNothingHit)
{
    SCENE s({LineAt(20, 50, 120, 50)});
    PATHREC *path = nullptr;
    for (const int32_t modifiers : {ZRPICK_REPLACE, ZRPICK_ADD, ZRPICK_QUERY}) {
        EXPECT_EQ(ZrPathPtOn(70, 50, modifiers, nullptr, s.view, s.table, &path, nullptr, nullptr), 3);
        EXPECT_EQ(ZrPathPtOn(70, 50, modifiers, nullptr, s.view, s.table, nullptr, nullptr, nullptr), 3);
        path = s.Group()->activePath;
        EXPECT_EQ(ZrPathPtOn(70, 50, modifiers, nullptr, nullptr, s.table, &path, nullptr, nullptr), 3);
        EXPECT_EQ(path, nullptr);
        path = s.Group()->activePath;
        EXPECT_EQ(ZrPathPtOn(70, 50, modifiers, nullptr, s.view, nullptr, &path, nullptr, nullptr),
                  modifiers == ZRPICK_REPLACE ? 1 : 2);
        path = nullptr;
    }
    EXPECT_EQ(ZrPathPtOn(70, 50, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), -1);
}

TEST(Pick, AtZoomZeroEverythingIsNear)
{
    SCENE s({LineAt(20, 50, 120, 50)});
    s.view->zoom = 0;
    const ANSWER answer = s.Click(0, 0, ZRPICK_ADD);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.node, 0u);
}

TEST(Pick, RecordsAndViewsThatNobodyShouldMakeAreSafe)
{
    const std::vector<TESTNODE> records[] = {
        {{2, 50, 50}},
        {{4, 50, 50}, {4, 60, 50}, {4, 70, 50}},
        {{0x100, 50, 50}, {0, 0, 0}},
        {{6, 50, 50}, {0x40, 60, 60}, {2, 50, 50}},
        {{6, 50, 50}, {4, 60, 60}, {4, 50, 50}},
        {{6, 50, 50}, {2, 50, 50}, {2, 50, 50}},
        {{6, 50, 50}, {0x400, 32767, 5}, {2, 60, 60}},
        {{6, 50, 50}, {0x400, 5, 5}},
        {{6, -32768, -32768}, {4, 32767, 32767}, {4, -32768, 32767}, {4, 32767, -32768}},
    };
    for (const auto &nodes : records)
        for (const int32_t zoom : {1, 0, INT32_MIN, INT32_MAX, -3}) {
            SCENE s({MakePath(nodes)});
            s.view->zoom = zoom;
            for (const int32_t at : {50, 0, INT32_MAX, INT32_MIN}) {
                const ANSWER answer = s.Click(at, at, ZRPICK_ADD);
                EXPECT_TRUE(answer.result >= 1 && answer.result <= 3);
                s.Click(at, at, ZRPICK_ADD);
                s.Click(at, at, ZRPICK_REPLACE);
            }
        }
    SCENE s({MakePath({})});
    EXPECT_EQ(s.Click(0, 0, ZRPICK_ADD).result, 3);
}
