/* rectclip_test.cpp - what a dragged rectangle selects, and plain sampling to compare it with. */
#include "store/store.h"
#include "support/randompath.h"
#include "support/shapes.h"
#include "support/views.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

struct SCENE : TESTVIEW {
    explicit SCENE(const std::vector<PATHREC *> &paths) : TESTVIEW(300, 300)
    {
        Add(paths);
    }

    int32_t Clip(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t flags, HDC dc = nullptr)
    {
        return ZrPathRectClip(left, top, right, bottom, table, dc, view, flags);
    }
};

/* View pixel x is image x - 0.5: moves nodes given in view pixels there, the numbers of polygons excepted. */
std::vector<TESTNODE> Shifted(std::vector<TESTNODE> nodes)
{
    for (TESTNODE &n : nodes)
        if ((n.type & 0x400) == 0) {
            n.x -= 0.5;
            n.y -= 0.5;
        }
    return nodes;
}

/* One record, its nodes in view pixels. */
int32_t ClipOne(const std::vector<TESTNODE> &nodes, int32_t left, int32_t top, int32_t right, int32_t bottom,
                int32_t flags)
{
    SCENE s({MakePath(Shifted(nodes))});
    const int32_t result = s.Clip(left, top, right, bottom, flags);
    EXPECT_EQ(PathIsSelected(s.Group()->activePath), result == 1);
    EXPECT_EQ(s.Group()->selectedPath, result == 1 ? s.Group()->activePath : nullptr);
    return result;
}

struct CASE {
    const char *name;
    int32_t left, top, right, bottom;
    bool selected;
};

void ExpectCases(const std::vector<TESTNODE> &nodes, int32_t flags, const std::vector<CASE> &cases)
{
    for (const CASE &c : cases) {
        EXPECT_EQ(ClipOne(nodes, c.left, c.top, c.right, c.bottom, flags), c.selected ? 1 : 2) << c.name;
        EXPECT_EQ(ClipOne(nodes, c.right, c.bottom, c.left, c.top, flags), c.selected ? 1 : 2)
            << c.name << ", dragged backwards";
    }
}

const std::vector<TESTNODE> blob = {{6, 100, 50},  {4, 130, 50},  {4, 150, 70}, {4, 150, 100}, {4, 150, 130},
                                    {4, 130, 150}, {4, 100, 150}, {4, 70, 150}, {4, 50, 130},  {4, 50, 100},
                                    {4, 50, 70},   {4, 70, 50},   {5, 100, 50}};

} // namespace

TEST(RectClip, Lines)
{
    ExpectCases({{6, 50, 50}, {2, 150, 100}}, ZRCLIP_OUTLINE,
                {{"around both ends", 40, 40, 160, 110, true},
                 {"around one end", 40, 40, 60, 60, true},
                 {"across the middle", 90, 60, 110, 90, true},
                 {"in the box, above the line", 120, 55, 145, 75, false},
                 {"left of it", 10, 50, 49, 100, false},
                 {"touching its box at the corner that is an end", 150, 100, 170, 120, true},
                 {"touching its box elsewhere", 150, 60, 170, 70, false},
                 {"without size, on the line", 100, 75, 100, 75, true},
                 {"without size, beside the line", 100, 80, 100, 80, false}});
}

TEST(RectClip, RectangleEdgesAndLineEndsTouch)
{
    ExpectCases({{6, 50, 50}, {2, 150, 50}}, ZRCLIP_OUTLINE,
                {{"its lower edge on the line", 80, 30, 90, 50, true},
                 {"its upper edge on the line", 80, 50, 90, 60, true},
                 {"a pixel above", 80, 30, 90, 49, false}});
}

TEST(RectClip, Curves)
{
    ExpectCases(blob, ZRCLIP_OUTLINE,
                {{"within the blob: no piece crosses it", 90, 90, 110, 110, false},
                 {"around the blob", 40, 40, 160, 160, true},
                 {"across a side", 140, 90, 160, 110, true},
                 {"beside it", 160, 90, 180, 110, false},
                 {"in the corner of its box", 51, 51, 58, 58, false}});
    ExpectCases({{6, 50, 100}, {4, 50, 40}, {4, 150, 40}, {4, 150, 100}}, ZRCLIP_OUTLINE,
                {{"around curve and controls", 40, 30, 160, 110, true},
                 {"around the controls alone", 40, 30, 160, 50, false},
                 {"across its top", 95, 50, 105, 60, true}});
}

TEST(RectClip, Ellipses)
{
    /* Centre (100, 100), half-widths 50 and 30. */
    ExpectCases({{6, 50, 70}, {0x100, 150, 130}, {0, 0, 0}}, ZRCLIP_OUTLINE,
                {{"within: the outline does not touch it", 90, 90, 110, 110, false},
                 {"around", 40, 60, 160, 140, true},
                 {"holds the centre and a corner outside", 90, 90, 200, 110, true},
                 {"across the right end, beside the centre", 140, 95, 170, 105, true},
                 {"right of it", 151, 95, 170, 105, false},
                 {"across the lower end", 95, 120, 105, 150, true},
                 {"across the upper end", 95, 50, 105, 80, true},
                 {"across the left end", 30, 95, 60, 105, true},
                 {"in the corner of its box", 141, 121, 149, 129, false},
                 {"across one quadrant", 120, 110, 149, 129, true},
                 {"inside one quadrant", 110, 105, 120, 110, false},
                 {"the upper left quadrant", 55, 75, 80, 90, true}});
}

TEST(RectClip, EllipseInOneQuadrantNeedsBothCorners)
{
    /* Odd sizes: the exact centre is (101.5, 100), the truncated one (100, 99) in image coordinates. */
    EXPECT_EQ(ClipOne({{6, 51, 70}, {0x100, 152, 130}, {0, 0, 0}}, 150, 128, 170, 150, ZRCLIP_OUTLINE), 2);
    EXPECT_EQ(ClipOne({{6, 51, 70}, {0x100, 152, 130}, {0, 0, 0}}, 120, 105, 170, 150, ZRCLIP_OUTLINE), 1);
}

TEST(RectClip, RectangleShapes)
{
    ExpectCases({{6, 50, 70}, {0x200, 150, 130}}, ZRCLIP_OUTLINE,
                {{"within", 90, 90, 110, 110, false},
                 {"around", 40, 60, 160, 140, true},
                 {"across a side", 140, 90, 170, 110, true},
                 {"beside it", 152, 90, 170, 110, false},
                 {"across a corner", 140, 120, 160, 140, true}});
    /* The shape's sides are cut to whole image pixels first: 49.5 becomes 49, and view pixel 49 is 48.5. */
    EXPECT_EQ(ClipOne({{6, 50, 70}, {0x200, 150, 130}}, 10, 90, 49, 110, ZRCLIP_OUTLINE), 2);
    SCENE s({MakePath({{6, 50.9, 70}, {0x200, 150, 130}})});
    EXPECT_EQ(s.Clip(10, 90, 51, 110, ZRCLIP_OUTLINE), 1) << "50.5 reaches 50, not 50.9";
}

TEST(RectClip, PolygonShapes)
{
    /* A diamond about (100, 100). */
    ExpectCases({{6, 100, 100}, {0x400, 4, 0}, {2, 150, 100}}, ZRCLIP_OUTLINE,
                {{"within", 95, 95, 105, 105, false},
                 {"around", 40, 40, 160, 160, true},
                 {"across the edge to the lower right", 120, 120, 130, 130, true},
                 {"across the closing edge, to the upper right", 120, 70, 130, 80, true},
                 {"in the corner of its box", 140, 140, 148, 148, false}});
    ExpectCases({{6, 100, 100}, {0x400, 4, 10}, {2, 150, 100}}, ZRCLIP_OUTLINE,
                {{"between two points of the star", 120, 120, 130, 130, false},
                 {"across an inner corner", 104, 104, 112, 112, true}});
    ExpectCases({{6, 100, 100}, {0x400, 0, 10}, {2, 150, 100}}, ZRCLIP_OUTLINE,
                {{"what cannot be built is not touched", 40, 40, 160, 160, false}});
}

TEST(RectClip, NodesOfLinesAndCurves)
{
    ExpectCases({{6, 50, 50}, {2, 150, 50}}, ZRCLIP_NODES,
                {{"on the left edge", 150, 40, 160, 60, true},
                 {"on the right edge", 140, 40, 150, 60, false},
                 {"on the top edge", 140, 50, 160, 60, true},
                 {"on the bottom edge", 140, 40, 160, 50, false},
                 {"the start", 45, 45, 55, 55, true},
                 {"the line between them", 90, 40, 110, 60, false}});
    ExpectCases({{6, 50, 100}, {4, 50, 40}, {4, 150, 40}, {4, 150, 100}}, ZRCLIP_NODES,
                {{"controls only", 40, 30, 160, 50, false},
                 {"the end", 145, 95, 155, 105, true},
                 {"the start", 45, 95, 55, 105, true}});
}

TEST(RectClip, NodesOfShapes)
{
    ExpectCases({{6, 50, 70}, {0x100, 150, 130}, {0, 0, 0}}, ZRCLIP_NODES,
                {{"middle of the top", 95, 65, 105, 75, true},
                 {"middle of the right", 145, 95, 155, 105, true},
                 {"middle of the bottom", 95, 125, 105, 135, true},
                 {"middle of the left", 45, 95, 55, 105, true},
                 {"a corner of the frame", 45, 65, 55, 75, false}});
    ExpectCases({{6, 50, 70}, {0x200, 150, 130}}, ZRCLIP_NODES,
                {{"left top", 45, 65, 55, 75, true},
                 {"right top", 145, 65, 155, 75, true},
                 {"right bottom", 145, 125, 155, 135, true},
                 {"left bottom", 45, 125, 55, 135, true},
                 {"middle of a side", 95, 65, 105, 75, false}});
    ExpectCases({{6, 100, 100}, {0x400, 4, 10}, {2, 150, 100}}, ZRCLIP_NODES,
                {{"corner 0", 145, 95, 155, 105, true},
                 {"the opposite corner", 45, 95, 55, 105, true},
                 {"an inner corner", 103, 103, 112, 112, true},
                 {"the centre", 97, 97, 103, 103, false}});
}

TEST(RectClip, OutlineTestGoesBeforeTheNodeTest)
{
    EXPECT_EQ(ClipOne({{6, 50, 50}, {2, 150, 50}}, 90, 40, 110, 60, ZRCLIP_OUTLINE | ZRCLIP_NODES), 1);
}

TEST(RectClip, WithoutATestNothingIsSelected)
{
    SCENE s({MakeBox(50, 50, 100, 100), MakeBox(150, 50, 200, 100)});
    PATHREC *a = s.Group()->activePath;
    SelectPaths({a->nextPath});
    EXPECT_EQ(s.Clip(0, 0, 300, 300, 0), 2);
    EXPECT_EQ(a->flags, 0u);
    EXPECT_EQ(s.Group()->selectedPath, a->nextPath) << "the chain is rebuilt all the same";
    EXPECT_EQ(s.Clip(0, 0, 300, 300, ZRCLIP_DESELECT), 2);
    EXPECT_EQ(a->nextPath->flags, 0u);
    EXPECT_EQ(s.Group()->selectedPath, nullptr);
}

TEST(RectClip, SelectedPathsStayUnlessDeselectedFirst)
{
    for (const int32_t flags : {1, 2, ZRCLIP_OUTLINE | ZRCLIP_DESELECT}) {
        SCENE s({MakeBox(50, 50, 100, 100), MakeBox(150, 50, 200, 100), MakeBox(50, 150, 100, 200)});
        PATHREC *a = s.Group()->activePath;
        PATHREC *b = a->nextPath;
        SelectPaths({b});
        b->flags = PATHREC_NODEEDIT;
        EXPECT_EQ(s.Clip(40, 40, 110, 110, flags), 1);
        EXPECT_EQ(a->flags, PATHREC_SELECTED);
        const bool kept = !(flags & ZRCLIP_DESELECT);
        EXPECT_EQ(b->flags, kept ? PATHREC_NODEEDIT : 0u);
        EXPECT_EQ(a->nextSel, kept ? b : nullptr);
        EXPECT_EQ(s.Group()->selectedPath, a);
    }
}

TEST(RectClip, PathsThatAreSelectedAlreadyDoNotCount)
{
    SCENE s({MakeBox(50, 50, 100, 100)});
    SelectPaths({s.Group()->activePath});
    EXPECT_EQ(s.Clip(40, 40, 110, 110, ZRCLIP_OUTLINE), 2);
    EXPECT_EQ(s.Clip(40, 40, 110, 110, ZRCLIP_OUTLINE | ZRCLIP_DESELECT), 1);
}

TEST(RectClip, OneTouchedContourSelectsItsWholeGroup)
{
    SCENE s({MakeBox(50, 50, 100, 100), MakeBox(150, 50, 200, 100), MakeBox(50, 150, 100, 200)});
    PATHREC *a = s.Group()->activePath;
    PATHREC *c = a->nextPath->nextPath;
    ChainLink(joinChain, a, c);
    EXPECT_EQ(s.Clip(40, 140, 110, 210, ZRCLIP_OUTLINE), 1);
    EXPECT_EQ(a->flags, PATHREC_SELECTED);
    EXPECT_EQ(a->nextPath->flags, 0u);
    EXPECT_EQ(c->flags, PATHREC_SELECTED);
    EXPECT_EQ(a->nextSel, c);
}

TEST(RectClip, EmptyGroupsNullsAndOddRecordsAreSafe)
{
    TESTVIEW empty(100, 100);
    EXPECT_EQ(ZrPathRectClip(0, 0, 10, 10, empty.table, nullptr, empty.view, ZRCLIP_OUTLINE), 2);
    EXPECT_EQ(ZrPathRectClip(0, 0, 10, 10, nullptr, nullptr, empty.view, ZRCLIP_OUTLINE), 2);
    EXPECT_EQ(ZrPathRectClip(0, 0, 10, 10, empty.table, nullptr, nullptr, ZRCLIP_OUTLINE), 2);
    const std::vector<TESTNODE> records[] = {
        {},
        {{2, 50, 50}},
        {{4, 50, 50}, {4, 60, 50}, {4, 70, 50}},
        {{0x100, 50, 50}, {0, 0, 0}},
        {{0x200, 50, 50}},
        {{6, 50, 50}, {0x40, 60, 60}, {2, 50, 50}},
        {{6, 50, 50}, {2, 50, 50}},
        {{6, 50, 50}, {0x400, 32767, 5}, {2, 60, 60}},
        {{6, 50, 50}, {0x100, 50, 50}, {0, 0, 0}},
        {{6, -32768, -32768}, {4, 32767, 32767}, {4, -32768, 32767}, {4, 32767, -32768}},
    };
    for (const auto &nodes : records)
        for (const int32_t zoom : {1, 0, INT32_MIN, INT32_MAX, -3})
            for (const int32_t flags : {ZRCLIP_OUTLINE, ZRCLIP_NODES}) {
                SCENE s({MakePath(nodes)});
                s.view->zoom = zoom;
                const int32_t result = s.Clip(INT32_MIN, 0, INT32_MAX, 60, flags);
                EXPECT_TRUE(result == 1 || result == 2);
                s.Clip(60, 60, 60, 60, flags);
            }
}

/* ---- against samples ---- */

TEST(RectClip, OutlineTestEqualsDenseSampling)
{
    int yes = 0;
    int no = 0;
    for (unsigned seed = 0; seed < 3000; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        shape.segments = 2;
        PATHREC *path = RandomPath(random, shape);
        SCENE s({path});
        const double left = Pick(random, -50, 150) - 0.5;
        const double top = Pick(random, -50, 150) - 0.5;
        const double right = left + Pick(random, 1, 60);
        const double bottom = top + Pick(random, 1, 60);
        /* The least distance by which the outline misses the rectangle, and the most by which it is inside. */
        double best = -1e9;
        SEGWALK walk;
        SEGMENT segment;
        for (SegWalkStart(path, placeImage, &walk); SegWalkNext(&walk, &segment);) {
            if (segment.kind == PATHNODE_START) continue;
            const POINTDB *p = segment.p;
            for (int i = 0; i <= 3000; i++) {
                const double t = i / 3000.0;
                const double u = 1 - t;
                const POINTDB q = segment.kind == PATHNODE_LINE ? p[0] * u + p[1] * t
                                                                : p[0] * (u * u * u) + p[1] * (3 * u * u * t) +
                                                                      p[2] * (3 * u * t * t) + p[3] * (t * t * t);
                best = std::max(best, std::min({q.x - left, right - q.x, q.y - top, bottom - q.y}));
            }
        }
        if (std::fabs(best) < 1) continue; /* the curve's pieces cut corners by less than that */
        const int32_t result =
            s.Clip(static_cast<int32_t>(left + 0.5), static_cast<int32_t>(top + 0.5), static_cast<int32_t>(right + 0.5),
                   static_cast<int32_t>(bottom + 0.5), ZRCLIP_OUTLINE);
        ASSERT_EQ(result, best > 0 ? 1 : 2) << "seed " << seed << " by " << best;
        (best > 0 ? yes : no)++;
    }
    EXPECT_GT(yes, 500);
    EXPECT_GT(no, 500);
}
