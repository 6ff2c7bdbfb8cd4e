/* outline_test.cpp - one record stepped into the plane: lines worked out by hand, everything else against the plain
 * form of plain_overlay.h. */
#include "display/display.h"
#include "plain_overlay.h"
#include "support/randompath.h"
#include "support/shapes.h"
#include "support/views.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

void Step(const TESTVIEW &v, const PATHREC *path, OUTLINEMODE mode, RECT *dirty = nullptr)
{
    DISPLAYPLANE plane;
    ASSERT_TRUE(DisplayPlaneOf(v.view, &plane));
    RECT spare = {0, 0, 0, 0};
    EXPECT_EQ(PathOutlineToDB(path, &plane, mode, dirty ? dirty : &spare), 1);
}

/* The rows of the plane as text, a digit a pixel. */
std::vector<std::string> Rows(const TESTVIEW &v)
{
    std::vector<std::string> rows;
    for (int32_t y = v.view->top; y < v.view->bottom; y++) {
        std::string row;
        for (int32_t x = v.view->left; x < v.view->right; x++) {
            const uint8_t passes = v.At(x - v.view->left, y - v.view->top);
            row += passes == 0 ? '.' : static_cast<char>('0' + passes);
        }
        rows.push_back(row);
    }
    return rows;
}

void Free(PATHREC *path)
{
    ZrPathDeletePtr(path, 0);
}

} // namespace

TEST(Outline, HorizontalLineTouchesEachPixelOnce)
{
    TESTVIEW v(10, 4);
    PATHREC *path = MakePath({{6, 2, 1}, {2, 7, 1}});
    RECT dirty = {0, 0, 0, 0};
    Step(v, path, OUTLINE_DRAW, &dirty);
    EXPECT_EQ(Rows(v), (std::vector<std::string>{"..........", "..111111..", "..........", ".........."}));
    EXPECT_EQ(dirty.left, 1);
    EXPECT_EQ(dirty.top, 0);
    EXPECT_EQ(dirty.right, 8);
    EXPECT_EQ(dirty.bottom, 2); /* the box is half-open: one above, none below */
    Free(path);
}

TEST(Outline, DiagonalLineIsAChainOfCorners)
{
    TESTVIEW v(6, 6);
    PATHREC *path = MakePath({{6, 1, 1}, {2, 4, 4}});
    Step(v, path, OUTLINE_DRAW);
    EXPECT_EQ(Rows(v), (std::vector<std::string>{"......", ".1....", "..1...", "...1..", "....1.", "......"}));
    Free(path);
}

TEST(Outline, LineBetweenTwoRowsGoesUpOneStepSooner)
{
    /* y is 3.0 after the half pixel: s = -0.5, c = 127, c' = 128, which a straight line counts as the row above. */
    TESTVIEW v(8, 6);
    PATHREC *path = MakePath({{6, 1, 2.5}, {2, 5, 2.5}});
    Step(v, path, OUTLINE_DRAW);
    EXPECT_EQ(Rows(v)[2], ".11111..");
    EXPECT_EQ(Rows(v)[3], ".....1..") << "the end is touched where it lies";
    Free(path);
}

TEST(Outline, CurveBetweenTwoRowsStaysInItsPixel)
{
    TESTVIEW v(8, 6);
    PATHREC *path = MakePath({{6, 1, 2.5}, {4, 2.5, 2.5}, {4, 3.5, 2.5}, {4, 5, 2.5}});
    Step(v, path, OUTLINE_DRAW);
    EXPECT_EQ(Rows(v)[2], "........");
    EXPECT_EQ(Rows(v)[3].substr(0, 5), ".1111") << "127 on both sides";
    Free(path);
}

TEST(Outline, SegmentsOutsideTheViewChangeNothing)
{
    TESTVIEW v(10, 10);
    PATHREC *path = MakePath({{6, 20, 20}, {2, 30, 5}, {2, 15, -20}, {4, -30, -5}, {4, 30, -9}, {4, -40, -20}});
    RECT dirty = {1, 2, 3, 4};
    Step(v, path, OUTLINE_DRAW, &dirty);
    EXPECT_EQ(v.Plane(), std::vector<uint8_t>(100));
    EXPECT_EQ(dirty.left, 1);
    EXPECT_EQ(dirty.top, 2);
    EXPECT_EQ(dirty.right, 3);
    EXPECT_EQ(dirty.bottom, 4);
    Free(path);
}

TEST(Outline, LineWithoutLengthDoesNotWidenTheDirtyRectangle)
{
    TESTVIEW v(10, 10);
    PATHREC *path = MakePath({{6, 5, 5}, {2, 5, 5}});
    RECT dirty = {0, 0, 0, 0};
    Step(v, path, OUTLINE_DRAW, &dirty);
    EXPECT_TRUE(IsRectEmpty(&dirty));
    EXPECT_EQ(v.Plane(), std::vector<uint8_t>(100));
    Free(path);
}

TEST(Outline, ZoomTwoMapsHalfAPixelBeforeTheZoom)
{
    const struct {
        int32_t zoom;
        size_t first; /* first pixel of a line that begins at image pixel 4 */
    } cases[] = {{1, 4}, {2, 9}, {4, 18}, {-2, 2}, {-4, 1}};
    for (const auto &c : cases) {
        TESTVIEW v(64, 64, c.zoom);
        PATHREC *path = MakePath({{6, 4, 4}, {2, 12, 4}});
        Step(v, path, OUTLINE_DRAW);
        const std::vector<uint8_t> plane = v.Plane();
        size_t first = 64;
        for (size_t i = 0; i < plane.size(); i++)
            if (plane[i]) first = std::min(first, i % 64);
        EXPECT_EQ(first, c.first) << "zoom " << c.zoom;
        Free(path);
    }
}

TEST(Outline, ByteCountsModulo256)
{
    TESTVIEW v(4, 4);
    PATHREC *path = MakePath({{6, 0, 1}, {2, 3, 1}});
    for (int i = 0; i < 255; i++) Step(v, path, OUTLINE_DRAW);
    EXPECT_EQ(v.At(1, 1), 255);
    Step(v, path, OUTLINE_DRAW);
    EXPECT_EQ(v.At(1, 1), 0);
    Step(v, path, OUTLINE_HIDE);
    EXPECT_EQ(v.At(1, 1), 255);
    Free(path);
}

TEST(Outline, NegativePositionsLieInPixelMinusOne)
{
    /* The sample at x = -3.5 counts as pixel -1 and, going right, its neighbours never reach pixel 0 before the line
     * does. */
    TESTVIEW v(6, 3);
    PATHREC *path = MakePath({{6, -4, 1}, {2, 3, 1}});
    Step(v, path, OUTLINE_DRAW);
    EXPECT_EQ(Rows(v)[1], "1111..");
    Free(path);
}

TEST(Outline, PixelThatAStartOutsideTheViewTakesForTouchedIsDropped)
{
    /* The start lies below the view in column 4, so (9, 9) counts as touched last, and it is the first one inside. */
    TESTVIEW v(20, 10);
    PATHREC *path = MakePath({{6, 4, 14}, {2, 14, 4}});
    Step(v, path, OUTLINE_DRAW);
    EXPECT_EQ(v.At(9, 9), 0);
    for (int32_t x = 10; x <= 14; x++) EXPECT_EQ(v.At(x, 18 - x), 1);
    Free(path);
}

/* ---- which segments ---- */

namespace {

/* Segments of a record in node editing that mode 3 steps, as a bit a segment, found by comparing the plane with each
 * segment stepped alone. The record is a grid of segments that do not share pixels beyond their ends. */
unsigned SegmentsStepped(PATHREC *path)
{
    TESTVIEW v(120, 120);
    path->flags = PATHREC_NODEEDIT;
    Step(v, path, OUTLINE_DRAWSEGMENTS);
    unsigned stepped = 0;
    unsigned bit = 1;
    SEGWALK walk;
    SEGMENT segment;
    for (SegWalkStart(path, placeImage, &walk); SegWalkNext(&walk, &segment);) {
        if (segment.kind != PATHNODE_LINE && segment.kind != PATHNODE_CURVE) continue;
        const POINTDB end = segment.kind == PATHNODE_LINE ? segment.p[1] : segment.p[3];
        const POINTDB middle = (segment.p[0] + end) * 0.5;
        const int32_t x = TruncInt(middle.x + 0.5);
        const int32_t y = TruncInt(middle.y + 0.5);
        for (int32_t i = -1; i <= 1; i++)
            for (int32_t j = -1; j <= 1; j++)
                if (v.At(x + i, y + j)) stepped |= bit;
        bit *= 2;
    }
    return stepped;
}

constexpr uint16_t M = PATHNODE_SELECTED;

} // namespace

TEST(Outline, OneSelectedNodeStepsTheSegmentsThatMeetThere)
{
    const struct {
        const char *name;
        std::vector<TESTNODE> nodes;
        unsigned want; /* bit 0 the first segment */
    } cases[] = {
        {"line node in the middle",
         {{6, 10, 10}, {2, 30, 10}, {2 | M, 50, 10}, {2, 70, 10}, {2, 70, 40}, {3, 10, 10}},
         0b00110},
        {"last node of a closed polygon, with the first line",
         {{6, 10, 10}, {2, 60, 10}, {2, 60, 60}, {2, 30, 90}, {3 | M, 10, 10}},
         0b1001},
        {"first line node", {{6, 10, 10}, {2 | M, 60, 10}, {2, 60, 60}, {2, 30, 90}, {3, 10, 10}}, 0b0011},
        {"smooth anchor between two curves",
         {{6, 10, 10},
          {4 | M, 20, 10},
          {4, 30, 10},
          {4, 40, 10},
          {4, 50, 10},
          {4, 60, 10},
          {4, 70, 10},
          {4, 70, 20},
          {4, 70, 30},
          {4, 70, 40}},
         0b011},
        {"curve end with a line behind it",
         {{6, 10, 10}, {4, 20, 10}, {4, 30, 10}, {4 | M, 40, 10}, {2, 40, 40}, {2, 80, 40}},
         0b011},
        {"closing anchor of two curves, with the first one",
         {{6, 10, 10},
          {4, 20, 10},
          {4, 30, 10},
          {4, 60, 10},
          {4, 60, 20},
          {4, 60, 40},
          {4, 60, 60},
          {4 | M, 45, 45},
          {4, 30, 30},
          {5, 10, 10}},
         0b101},
        {"two selected nodes in a row: the segment behind the second is left out",
         {{6, 10, 10}, {2 | M, 30, 10}, {2 | M, 60, 10}, {2, 60, 40}, {2, 20, 40}},
         0b0011},
        {"a run's start does not end what a selected node began",
         {{6, 10, 10}, {2 | M, 30, 10}, {6, 10, 40}, {2, 50, 40}, {2, 50, 80}},
         0b011},
        {"nothing selected", {{6, 10, 10}, {2, 30, 10}, {4, 40, 20}, {4, 50, 30}, {4, 60, 40}}, 0},
        {"shapes are passed over, selected or not",
         {{6, 10, 10}, {0x200 | M, 90, 90}, {6, 30, 30}, {2, 60, 30}, {2 | M, 60, 60}},
         0b10},
    };
    for (const auto &c : cases) {
        PATHREC *path = MakePath(c.nodes);
        EXPECT_EQ(SegmentsStepped(path), c.want) << c.name;
        Free(path);
    }
}

TEST(Outline, OtherFlagsStepTheWholeRecord)
{
    for (const uint32_t flags : {0u, 0x80000000u, 0x88800000u, 0x88001000u}) {
        TESTVIEW whole(80, 80);
        TESTVIEW segments(80, 80);
        PATHREC *path = MakeBox(10, 10, 60, 60);
        path->nodes[2].type |= PATHNODE_SELECTED;
        path->flags = flags;
        Step(whole, path, OUTLINE_DRAW);
        Step(segments, path, OUTLINE_DRAWSEGMENTS);
        EXPECT_EQ(whole.Plane(), segments.Plane()) << std::hex << flags;
        Free(path);
    }
}

/* ---- against the plain form ---- */

TEST(Outline, EqualsThePlainFormOnRandomRecordsAndViews)
{
    const int32_t zooms[] = {1, 1, 2, 3, 7, -1, -2, -3, -8, 0, 40};
    const OUTLINEMODE modes[] = {OUTLINE_DRAW, OUTLINE_HIDESEGMENTS, OUTLINE_DRAWSEGMENTS, OUTLINE_HIDE};
    for (unsigned seed = 0; seed < 3000; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        shape.shapes = Pick(random, 0, 2) == 0;
        shape.marks = Pick(random, 0, 1) == 0;
        const int32_t zoom = zooms[Pick(random, 0, 10)];
        TESTVIEW v(Pick(random, 1, 90), Pick(random, 1, 90), zoom, Pick(random, -60, 60) * std::max(zoom, 1),
                   Pick(random, -60, 60), Pick(random, -5, 20), Pick(random, 0, 9));
        PATHREC *path = RandomPath(random, shape);
        const OUTLINEMODE mode = modes[Pick(random, 0, 3)];
        RECT dirty = {0, 0, 0, 0};
        Step(v, path, mode, &dirty);
        PLAINPLANE plain = PlainPlane(*v.view);
        PlainOutline(path, *v.view, mode, &plain);
        ASSERT_EQ(v.Plane(), plain.bytes) << "seed " << seed;
        ASSERT_EQ(IsRectEmpty(&dirty), !plain.any) << "seed " << seed;
        if (plain.any) {
            ASSERT_EQ(dirty.left, plain.left) << "seed " << seed;
            ASSERT_EQ(dirty.top, plain.top) << "seed " << seed;
            ASSERT_EQ(dirty.right, plain.right) << "seed " << seed;
            ASSERT_EQ(dirty.bottom, plain.bottom) << "seed " << seed;
        }
        /* And out again. */
        const OUTLINEMODE back = mode == OUTLINE_DRAW           ? OUTLINE_HIDE
                                 : mode == OUTLINE_HIDE         ? OUTLINE_DRAW
                                 : mode == OUTLINE_DRAWSEGMENTS ? OUTLINE_HIDESEGMENTS
                                                                : OUTLINE_DRAWSEGMENTS;
        Step(v, path, back);
        ASSERT_EQ(v.Plane(), std::vector<uint8_t>(plain.bytes.size())) << "seed " << seed;
        Free(path);
    }
}

TEST(Outline, CurvesAlongAnAxisEqualThePlainForm)
{
    /* One component of the step never changes; where such a curve turns back, it counts which places are sampled. */
    for (unsigned seed = 0; seed < 2000; seed++) {
        RANDOM random(seed);
        const double fixed = Pick(random, 0, 600) / 16.0;
        double along[4];
        for (double &place : along) place = Pick(random, -100, 800) / 16.0;
        const bool upright = seed % 2 == 0;
        std::vector<TESTNODE> nodes;
        for (const double place : along)
            nodes.push_back(
                {nodes.empty() ? uint16_t{6} : uint16_t{4}, upright ? fixed : place, upright ? place : fixed});
        TESTVIEW v(50, 50);
        PATHREC *path = MakePath(nodes);
        Step(v, path, OUTLINE_DRAW);
        PLAINPLANE plain = PlainPlane(*v.view);
        PlainOutline(path, *v.view, OUTLINE_DRAW, &plain);
        ASSERT_EQ(v.Plane(), plain.bytes) << "seed " << seed;
        Free(path);
    }
}

TEST(Outline, ChainHasNoGaps)
{
    for (unsigned seed = 0; seed < 600; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        shape.low = 5;
        shape.high = 90;
        shape.segments = 1;
        TESTVIEW v(100, 100);
        PATHREC *path = RandomPath(random, shape);
        const bool curved = NodeKind(&path->nodes[1]) == PATHNODE_CURVE;
        path->nodeCount = curved ? 4 : 2;
        Step(v, path, OUTLINE_DRAW);
        /* Every touched pixel is reached from the first one by steps to one of eight neighbours. Where a curve runs at
         * 45 degrees and its main axis changes, pixels may be left out: a step and a neighbour to either side. */
        const int32_t reach = curved ? 3 : 1;
        std::vector<uint8_t> plane = v.Plane();
        std::vector<int32_t> open;
        for (int32_t i = 0; i < 10000 && open.empty(); i++)
            if (plane[static_cast<size_t>(i)]) open.push_back(i);
        while (!open.empty()) {
            const int32_t at = open.back();
            open.pop_back();
            for (int32_t dy = -reach; dy <= reach; dy++)
                for (int32_t dx = -reach; dx <= reach; dx++) {
                    uint8_t &next = plane[static_cast<size_t>(at + dy * 100 + dx)];
                    if (next) open.push_back(at + dy * 100 + dx);
                    next = 0;
                }
        }
        EXPECT_TRUE(plane == std::vector<uint8_t>(10000)) << "seed " << seed;
        Free(path);
    }
}

/* ---- what must end, and stay inside ---- */

TEST(Outline, SegmentsOfHugeLengthEnd)
{
    TESTVIEW v(50, 50, 0x7FFFFFFF);
    PATHREC *path = MakePath({{6, -32768, -32768},
                              {2, 32767, 32767},
                              {4, -32768, 32767},
                              {4, 32767, -32768},
                              {4, -32768, -32768},
                              {2, 0, -0.5}});
    for (const int32_t zoom : {0x7FFFFFFF, 0x7FFFFFF, 100000, 30, -0x7FFFFFFF, INT32_MIN}) {
        v.view->zoom = zoom;
        for (const int32_t scroll : {0, 1 << 30, INT32_MIN, INT32_MAX}) {
            v.view->scrollX = scroll;
            Step(v, path, OUTLINE_DRAW);
            Step(v, path, OUTLINE_HIDE);
            EXPECT_EQ(v.Plane(), std::vector<uint8_t>(2500)) << zoom << " " << scroll;
        }
    }
    Free(path);
}

TEST(Outline, ViewLargerThanItsBufferStaysInTheBlock)
{
    TESTVIEW v(10, 10);
    v.view->right = 400;
    v.view->bottom = 300;
    PATHREC *path = MakeCircle(150, 150, 140);
    Step(v, path, OUTLINE_DRAW);
    Step(v, path, OUTLINE_HIDE);
    for (int i = 0; i < 100; i++) EXPECT_EQ(v.view->displayBuffer[i], 0);
    Free(path);
}

TEST(Outline, ViewWithoutPixelsDrawsNothing)
{
    TESTVIEW v(10, 10);
    PATHREC *path = MakeCircle(5, 5, 4);
    const int32_t sizes[][2] = {{0, 10}, {10, 0}, {-5, 10}, {10, INT32_MIN}};
    for (const auto &size : sizes) {
        v.view->right = size[0];
        v.view->bottom = size[1];
        Step(v, path, OUTLINE_DRAW);
        for (int i = 0; i < 100; i++) EXPECT_EQ(v.view->displayBuffer[i], 0);
    }
    Free(path);
}

TEST(Outline, UnknownKindsEndTheWalk)
{
    TESTVIEW v(40, 40);
    PATHREC *path = MakePath({{6, 5, 5}, {2, 20, 5}, {0x40, 9, 9}, {2, 20, 30}});
    Step(v, path, OUTLINE_DRAW);
    EXPECT_EQ(v.At(10, 5), 1);
    EXPECT_EQ(v.At(20, 20), 0);
    path->nodeCount = 0;
    Step(v, path, OUTLINE_DRAW);
    path->nodeCount = 1;
    Step(v, path, OUTLINE_DRAWSEGMENTS);
    EXPECT_EQ(v.At(10, 5), 1);
    Free(path);
}

TEST(Outline, CurveWhoseNodesAreCutOffIsNotStepped)
{
    TESTVIEW v(40, 40);
    PATHREC *path = MakePath({{6, 5, 5}, {4, 20, 5}, {4, 20, 20}});
    path->flags = PATHREC_NODEEDIT;
    path->nodes[2].type |= PATHNODE_SELECTED;
    Step(v, path, OUTLINE_DRAWSEGMENTS);
    Step(v, nullptr, OUTLINE_DRAW);
    EXPECT_EQ(v.Plane(), std::vector<uint8_t>(1600));
    Free(path);
}
