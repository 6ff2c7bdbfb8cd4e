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

/* ---- against plain forms ---- */

namespace {

/* Sides and coordinates in quarters of an image pixel, so that everything below is exact in integers. */
struct QUARTERS {
    int64_t left, top, right, bottom;
};

struct SPOT {
    int64_t x, y;
};

int64_t Turn(const SPOT &a, const SPOT &b, const SPOT &c)
{
    const int64_t turn = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    return (turn > 0) - (turn < 0);
}

bool Between(const SPOT &a, const SPOT &b, const SPOT &p)
{
    return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
           p.y <= std::max(a.y, b.y);
}

/* Do two segments have a point in common? */
bool Meet(const SPOT &a, const SPOT &b, const SPOT &c, const SPOT &d)
{
    const int64_t abc = Turn(a, b, c);
    const int64_t abd = Turn(a, b, d);
    const int64_t cda = Turn(c, d, a);
    const int64_t cdb = Turn(c, d, b);
    if (abc != abd && cda != cdb) return true;
    return (abc == 0 && Between(a, b, c)) || (abd == 0 && Between(a, b, d)) || (cda == 0 && Between(c, d, a)) ||
           (cdb == 0 && Between(c, d, b));
}

bool PlainLine(const SPOT &a, const SPOT &b, const QUARTERS &r)
{
    const SPOT c[4] = {{r.left, r.top}, {r.right, r.top}, {r.right, r.bottom}, {r.left, r.bottom}};
    bool any = Between(c[0], c[2], a);
    for (int i = 0; i < 4; i++) any |= Meet(a, b, c[i], c[(i + 1) % 4]);
    return any;
}

bool Apart(const QUARTERS &a, const QUARTERS &b)
{
    return a.right < b.left || b.right < a.left || a.bottom < b.top || b.bottom < a.top;
}

bool Within(const QUARTERS &in, const QUARTERS &out)
{
    return out.left < in.left && in.right < out.right && out.top < in.top && in.bottom < out.bottom;
}

bool PlainBox(QUARTERS box, const QUARTERS &r)
{
    box = {box.left / 4 * 4, box.top / 4 * 4, box.right / 4 * 4, box.bottom / 4 * 4};
    return !Apart(box, r) && !Within(r, box);
}

bool PlainEllipse(const QUARTERS &e, const QUARTERS &r)
{
    if (Within(e, r)) return true;
    if (Apart(e, r)) return false;
    const int64_t a = (e.right - e.left) / 2;
    const int64_t b = (e.bottom - e.top) / 2;
    const SPOT exact = {(e.left + e.right) / 2, (e.top + e.bottom) / 2};
    const auto f = [a, b](int64_t x, int64_t y) { return x * x * b * b + y * y * a * a - a * a * b * b; };
    bool all = true;
    for (const int64_t x : {r.left, r.right})
        for (const int64_t y : {r.top, r.bottom})
            all &= e.left <= x && x <= e.right && e.top <= y && y <= e.bottom && f(x - exact.x, y - exact.y) < 0;
    if (all) return false;
    const SPOT c = {exact.x / 4 * 4, exact.y / 4 * 4};
    const QUARTERS s = {r.left - c.x, r.top - c.y, r.right - c.x, r.bottom - c.y};
    const int across = s.left > 0 ? 1 : s.right < 0 ? -1 : 0;
    const int down = s.top > 0 ? 1 : s.bottom < 0 ? -1 : 0;
    if (across == 0 && down == 0)
        return std::max({f(s.left, s.top), f(s.right, s.top), f(s.left, s.bottom), f(s.right, s.bottom)}) >= 0;
    if (across == 0) return (down > 0 ? s.top : -s.bottom) < b;
    if (down == 0) return (across > 0 ? s.left : -s.right) < a;
    const auto x = [&](bool far) { return (across > 0) == far ? s.right : s.left; };
    const auto y = [&](bool far) { return (down > 0) == far ? s.bottom : s.top; };
    return f(x(false), y(false)) < 0 && f(x(true), y(true)) > 0;
}

/* At zoom 2 and scroll 1 view pixel v is image v / 2: whole and half pixels. */
bool Clips(const std::vector<TESTNODE> &nodes, const QUARTERS &r)
{
    TESTVIEW v(300, 300, 2, 1, 1);
    v.Add({MakePath(nodes)});
    return ZrPathRectClip(static_cast<int32_t>(r.left / 2), static_cast<int32_t>(r.top / 2),
                          static_cast<int32_t>(r.right / 2), static_cast<int32_t>(r.bottom / 2), v.table, nullptr,
                          v.view, ZRCLIP_OUTLINE) == 1;
}

/* Halves of pixels in a small range, so that edges often meet. */
QUARTERS RandomBox(RANDOM &random)
{
    const int64_t x = Pick(random, -14, 14) * 2;
    const int64_t y = Pick(random, -14, 14) * 2;
    return {x, y, x + Pick(random, 0, 16) * 2, y + Pick(random, 0, 16) * 2};
}

} // namespace

TEST(RectClip, LinesEllipsesAndBoxesEqualTheirPlainForms)
{
    int yes[3] = {};
    for (unsigned seed = 0; seed < 6000; seed++) {
        RANDOM random(seed);
        const QUARTERS box = RandomBox(random);
        const QUARTERS rect = RandomBox(random);
        const double left = static_cast<double>(box.left) / 4;
        const double top = static_cast<double>(box.top) / 4;
        const double right = static_cast<double>(box.right) / 4;
        const double bottom = static_cast<double>(box.bottom) / 4;
        const bool line = Clips({{6, left, bottom}, {2, right, top}}, rect);
        ASSERT_EQ(line, PlainLine({box.left, box.bottom}, {box.right, box.top}, rect)) << "seed " << seed;
        const bool ellipse = Clips({{6, right, top}, {0x100, left, bottom}, {0, 0.3, 0}}, rect);
        ASSERT_EQ(ellipse, PlainEllipse(box, rect)) << "seed " << seed;
        const bool shape = Clips({{6, right, bottom}, {0x200, left, top}}, rect);
        ASSERT_EQ(shape, PlainBox(box, rect)) << "seed " << seed;
        yes[0] += line;
        yes[1] += ellipse;
        yes[2] += shape;
    }
    for (const int count : yes) {
        EXPECT_GT(count, 600);
        EXPECT_LT(count, 5400);
    }
}

TEST(RectClip, CurvesEqualTheirSampledForm)
{
    int yes = 0;
    for (unsigned seed = 0; seed < 4000; seed++) {
        RANDOM random(seed);
        /* Small ones, whose pieces are few and cut corners, and large ones. */
        const int size = seed % 2 ? 20 : 120;
        std::vector<TESTNODE> nodes;
        POINTDB p[4];
        for (POINTDB &c : p) {
            c = {static_cast<double>(Pick(random, 0, size)), static_cast<double>(Pick(random, 0, size))};
            nodes.push_back({nodes.empty() ? uint16_t{6} : uint16_t{4}, c.x, c.y});
        }
        const int64_t left = Pick(random, 0, 2 * size) * 2;
        const int64_t top = Pick(random, 0, 2 * size) * 2;
        const QUARTERS rect = {left, top, left + Pick(random, 0, 6) * 2, top + Pick(random, 0, 6) * 2};
        const double rl = static_cast<double>(rect.left) / 4;
        const double rt = static_cast<double>(rect.top) / 4;
        const double rr = static_cast<double>(rect.right) / 4;
        const double rb = static_cast<double>(rect.bottom) / 4;

        int length = 0;
        for (int i = 0; i < 3; i++) length += static_cast<int>(std::hypot(p[i + 1].x - p[i].x, p[i + 1].y - p[i].y));
        const int count = std::max(length / 10, 10) + 1;
        bool want = true;
        for (const POINTDB &c : p) want &= c.x > rl && c.x < rr && c.y > rt && c.y < rb;
        POINTDB before = p[0];
        for (int i = 1; i < count && !want; i++) {
            const double u = static_cast<double>(i) / (count - 1);
            const double w[4] = {(1 - u) * (1 - u) * (1 - u), 3 * (1 - u) * (1 - u) * u, 3 * (1 - u) * u * u,
                                 u * u * u};
            POINTDB at = {0, 0};
            for (int k = 0; k < 4; k++) at = at + p[k] * w[k];
            /* Clip the piece's parameter by each side in turn. */
            double from = 0;
            double to = 1;
            const double limits[4][2] = {{before.x - rl, at.x - before.x},
                                         {rr - before.x, before.x - at.x},
                                         {before.y - rt, at.y - before.y},
                                         {rb - before.y, before.y - at.y}};
            for (const auto &l : limits) {
                /* l[0] + t l[1] must not be negative. */
                if (l[1] > 0) from = std::max(from, -l[0] / l[1]);
                if (l[1] < 0) to = std::min(to, -l[0] / l[1]);
                if (l[1] == 0 && l[0] < 0) to = -1;
            }
            want = from <= to;
            before = at;
        }
        const bool got = Clips(nodes, rect);
        ASSERT_EQ(got, want) << "seed " << seed;
        yes += got;
    }
    EXPECT_GT(yes, 150);
}

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
