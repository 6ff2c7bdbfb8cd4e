/* marks_test.cpp - node marks: every call by hand where calls can be recorded, pixels where they can be drawn. */
#include "support/randompath.h"
#include "support/recorder.h"
#include "support/shapes.h"
#include "support/system.h"
#include "support/views.h"

#include <gtest/gtest.h>

using namespace zr32test;

namespace {

constexpr uint16_t M = PATHNODE_SELECTED;

} // namespace

TEST(Marks, DrawnTwiceLeaveThePixelsAsTheyWere)
{
    int seen = 0;
    for (unsigned seed = 0; seed < 150; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        shape.marks = seed % 2 == 0;
        shape.shapes = seed % 3 == 0;
        TESTVIEW v(90, 70, Pick(random, 0, 2) ? 1 : 3, Pick(random, -20, 20), Pick(random, -20, 20), 5, 8);
        CANVAS canvas(100, 80);
        for (int i = 0; i < 8000; i++) canvas.pixels[i] = static_cast<uint32_t>(random());
        PATHREC *path = RandomPath(random, shape);
        v.Add({path});
        if (seed % 5 == 0) path->flags = PATHREC_ENVELOPE;
        const std::vector<uint32_t> before = canvas.Pixels();
        EXPECT_EQ(ZrPathDrawNodes(canvas.dc, path, v.view), 1);
        const std::vector<uint32_t> drawn = canvas.Pixels();
        EXPECT_EQ(ZrPathDrawNodes(canvas.dc, path, v.view), 1);
        ASSERT_TRUE(canvas.Pixels() == before) << "seed " << seed;
        seen += drawn != before;
    }
    EXPECT_GT(seen, 100);
}

TEST(Marks, NothingWithoutContextViewOrBuffer)
{
    TESTVIEW v(40, 40);
    CANVAS canvas(40, 40);
    PATHREC *path = MakeBox(5, 5, 15, 15);
    v.Add({path});
    EXPECT_EQ(ZrPathDrawNodes(nullptr, path, v.view), 1);
    EXPECT_EQ(ZrPathDrawNodes(canvas.dc, nullptr, v.view), 1);
    EXPECT_EQ(ZrPathDrawNodes(canvas.dc, path, nullptr), 1);
    COORDSTRUCT bare = *v.view;
    bare.displayBuffer = nullptr;
    EXPECT_EQ(ZrPathDrawNodes(canvas.dc, path, &bare), 1);
    EXPECT_EQ(canvas.Pixels(), std::vector<uint32_t>(1600));
}

namespace {

/* The calls for a record in a view of 100 x 100 at (0, 0) with zoom 1, setting up and restoring left out. */
CALLS CallsFor(const std::vector<TESTNODE> &nodes, uint32_t flags)
{
    TESTVIEW v(100, 100);
    RECORDER recorder;
    PATHREC *path = MakePath(nodes);
    v.Add({path});
    path->flags = flags;
    EXPECT_EQ(ZrPathDrawNodes(recorder.dc, path, v.view), 1);
    CALLS calls = recorder.Take();
    const size_t setUp = 3;    /* brush, pen, operation */
    const size_t restored = 3; /* brush, pen, operation */
    if (calls.size() < setUp + restored) return {"too few calls"};
    return {calls.begin() + setUp, calls.end() - restored};
}

const std::string gray = "brush " + std::to_string(0xC0C0C0);
const std::string squarePen = "pen 0 " + std::to_string(0xC0C0C0);
const std::string handlePen = "pen 2 " + std::to_string(0x0000C0);

} // namespace

TEST(Marks, StateIsSetUpAndUndone)
{
    TESTVIEW v(100, 100);
    RECORDER recorder;
    PATHREC *path = MakePath({{6, 10, 10}});
    v.Add({path});
    const int32_t objects = ObjectCount();
    EXPECT_EQ(ZrPathDrawNodes(recorder.dc, path, v.view), 1);
    EXPECT_EQ(ObjectCount(), objects);
    EXPECT_EQ(recorder.Take(), (CALLS{gray, squarePen, "rop 7", "rect 8 8 12 12", "brush " + std::to_string(0xFFFFFF),
                                      "pen 0 0", "rop 13"}));
}

TEST(Marks, PolylineHasPlainAndHollowSquares)
{
    EXPECT_EQ(CallsFor({{6, 10, 10}, {2, 30, 10}, {2 | M, 30, 40}, {3, 10, 10}}, PATHREC_NODEEDIT),
              (CALLS{"rect 8 8 12 12", "rect 28 8 32 12", "brush null", "rect 28 38 32 42", gray}))
        << "a closing line draws nothing: the start's square is not taken off again";
    EXPECT_EQ(CallsFor({{6 | M, 10, 10}, {2, 30, 10}, {3 | M, 10, 10}}, PATHREC_NODEEDIT),
              (CALLS{"brush null", "rect 8 8 12 12", gray, "rect 28 8 32 12", "brush null", "rect 8 8 12 12", gray}));
}

TEST(Marks, EnvelopeMarksStayFilled)
{
    EXPECT_EQ(CallsFor({{6 | M, 10, 10}, {2 | M, 30, 10}, {2, 30, 30}, {2, 10, 30}, {3, 10, 10}}, PATHREC_ENVELOPE),
              (CALLS{"rect 8 8 12 12", gray, "rect 28 8 32 12", gray, "rect 28 28 32 32", "rect 8 28 12 32"}));
    EXPECT_EQ(
        CallsFor({{6, 10, 10}, {4 | M, 20, 10}, {4, 30, 10}, {4, 40, 10}, {2, 50, 10}}, PATHREC_ENVELOPE),
        (CALLS{"rect 8 8 12 12", "rect 18 8 22 12", handlePen, "move 20 10", "line 10 10", squarePen, "rect 28 8 32 12",
               "rect 38 8 42 12", gray, handlePen, "move 30 10", "line 40 10", squarePen, "rect 48 8 52 12"}));
}

TEST(Marks, CurveWithoutASelectedAnchorHasASquareAtItsEnd)
{
    EXPECT_EQ(CallsFor({{6, 10, 10}, {4, 20, 10}, {4, 30, 10}, {4, 40, 10}, {4, 50, 10}, {4, 60, 10}, {4, 70, 10}}, 0),
              (CALLS{"rect 8 8 12 12", "rect 38 8 42 12"}))
        << "but not where the record ends";
}

TEST(Marks, SmoothAnchorShowsTheHandlesOnBothSides)
{
    const CALLS want = {/* the curve that ends there */
                        "rect 8 8 12 12", "rect 18 8 22 12", handlePen, "move 20 10", "line 10 10", squarePen,
                        "rect 28 8 32 12", "brush null", "rect 38 8 42 12", gray, handlePen, "move 30 10", "line 40 10",
                        squarePen,
                        /* the curve that begins there; its end is not the anchor and has a plain square */
                        "rect 48 8 52 12", handlePen, "move 50 10", "line 40 10", squarePen, "rect 58 8 62 12",
                        "rect 68 8 72 12", handlePen, "move 60 10", "line 70 10", squarePen,
                        /* and a line behind both */
                        "rect 88 8 92 12"};
    EXPECT_EQ(CallsFor({{6, 10, 10},
                        {4 | M, 20, 10},
                        {4, 30, 10},
                        {4, 40, 10},
                        {4, 50, 10},
                        {4, 60, 10},
                        {4, 70, 10},
                        {2, 90, 10}},
                       PATHREC_NODEEDIT),
              want);
}

TEST(Marks, CurveEndWithALineBehindItIsHollow)
{
    EXPECT_EQ(CallsFor({{6, 10, 10}, {4, 20, 10}, {4, 30, 10}, {4 | M, 40, 10}, {2, 50, 10}}, PATHREC_NODEEDIT),
              (CALLS{"rect 8 8 12 12", "rect 18 8 22 12", handlePen, "move 20 10", "line 10 10", squarePen,
                     "rect 28 8 32 12", "brush null", "rect 38 8 42 12", gray, handlePen, "move 30 10", "line 40 10",
                     squarePen, "rect 48 8 52 12"}));
}

TEST(Marks, CurveBehindASelectedLineNodeShowsItsHandles)
{
    EXPECT_EQ(CallsFor({{6, 10, 10}, {2 | M, 20, 10}, {4, 30, 10}, {4, 40, 10}, {4, 50, 10}}, PATHREC_NODEEDIT),
              (CALLS{"rect 8 8 12 12", "brush null", "rect 18 8 22 12", gray, "rect 28 8 32 12", handlePen,
                     "move 30 10", "line 20 10", squarePen, "rect 38 8 42 12", "rect 48 8 52 12", handlePen,
                     "move 40 10", "line 50 10", squarePen}));
}

TEST(Marks, FirstCurveLooksAtTheRecordsEnd)
{
    /* A closed record of two curves whose closing anchor is selected: both show their handles. */
    const std::vector<TESTNODE> closed = {{6, 10, 10},     {4, 20, 10}, {4, 30, 10}, {4, 40, 10},
                                          {4 | M, 40, 20}, {4, 30, 20}, {5, 10, 10}};
    EXPECT_EQ(
        CallsFor(closed, PATHREC_NODEEDIT),
        (CALLS{"rect 8 8 12 12",   "rect 18 8 22 12", handlePen,    "move 20 10", "line 10 10", squarePen,
               "rect 28 8 32 12",  "rect 38 8 42 12", handlePen,    "move 30 10", "line 40 10", squarePen,
               "rect 38 18 42 22", handlePen,         "move 40 20", "line 40 10", squarePen,    "rect 28 18 32 22",
               "brush null",       "rect 8 8 12 12",  gray,         handlePen,    "move 30 20", "line 10 10",
               squarePen}));
    /* A closing line that is selected does the same. */
    const CALLS calls =
        CallsFor({{6, 10, 10}, {4, 20, 10}, {4, 30, 10}, {4, 40, 10}, {3 | M, 10, 10}}, PATHREC_NODEEDIT);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), handlePen), 2);
}

TEST(Marks, TwoPixelsOutsideAreStillDrawnThreeAreNot)
{
    const struct {
        double x, y;
        bool drawn;
    } cases[] = {{8, 50, true},  {7, 50, false},  {111, 50, true}, {112, 50, false},
                 {50, 18, true}, {50, 17, false}, {50, 101, true}, {50, 102, false}};
    for (const auto &c : cases) {
        /* View (10, 20) to (110, 100) on the window; the scroll makes image pixels window pixels. */
        TESTVIEW v(100, 80, 1, 10, 20, 10, 20);
        RECORDER recorder;
        PATHREC *path = MakePath({{6, c.x, c.y}});
        v.Add({path});
        ZrPathDrawNodes(recorder.dc, path, v.view);
        EXPECT_EQ(recorder.Take("rect").size(), c.drawn ? 1u : 0u) << c.x << ' ' << c.y;
    }
}

TEST(Marks, SquareOfACurvesEndGoesByItsSecondControl)
{
    /* End inside, its control outside: no square; and the other way round. Lines are drawn all the same. */
    CALLS calls = CallsFor({{6, 10, 10}, {4 | M, 20, 10}, {4, 300, 10}, {4, 40, 10}, {2, 40, 20}}, PATHREC_NODEEDIT);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "rect 38 8 42 12"), 0);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "move 300 10"), 1);
    calls = CallsFor({{6, 10, 10}, {4 | M, 20, 10}, {4, 30, 10}, {4, 400, 10}, {2, 40, 20}}, PATHREC_NODEEDIT);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "rect 398 8 402 12"), 1);
    calls = CallsFor({{6, 10, 10}, {4 | M, 20, 10}, {4, 101, 10}, {4, 40, 10}, {2, 40, 20}}, PATHREC_NODEEDIT);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "rect 38 8 42 12"), 1) << "within the reach of a mark";
}

TEST(Marks, ShapesAndCurvesWithoutAnAnchorArePassedOver)
{
    EXPECT_EQ(
        CallsFor(
            {{6, 10, 10}, {0x101, 30, 30}, {0, 1, 1}, {0x200 | M, 40, 40}, {0x400, 5, 0}, {0, 60, 60}, {2, 80, 80}},
            PATHREC_NODEEDIT),
        (CALLS{"rect 8 8 12 12", "rect 78 78 82 82"}));
    EXPECT_EQ(CallsFor({{4 | M, 10, 10}, {4, 20, 20}, {4, 30, 30}, {2, 50, 50}}, PATHREC_NODEEDIT),
              (CALLS{"rect 48 48 52 52"}));
}

TEST(Marks, UnknownKindsEndTheWalk)
{
    EXPECT_EQ(CallsFor({{6, 10, 10}, {0x40, 30, 30}, {2, 50, 50}}, 0), (CALLS{"rect 8 8 12 12"}));
    EXPECT_EQ(CallsFor({{6, 10, 10}, {4 | M, 30, 30}, {4, 50, 50}}, 0), (CALLS{"rect 8 8 12 12"}));
}

TEST(Marks, PlacesFollowZoomScrollAndView)
{
    const struct {
        int32_t zoom, scrollX, scrollY;
        const char *want;
    } cases[] = {{1, 0, 0, "rect 18 28 22 32"}, {4, 30, 40, "rect 20 20 24 24"}, {-2, 0, 0, "rect 13 23 17 27"}};
    for (const auto &c : cases) {
        TESTVIEW v(100, 100, c.zoom, c.scrollX, c.scrollY, 10, 20);
        RECORDER recorder;
        PATHREC *path = MakePath({{6, 10, 10}});
        v.Add({path});
        ZrPathDrawNodes(recorder.dc, path, v.view);
        EXPECT_EQ(recorder.Take("rect"), CALLS{c.want}) << c.zoom;
    }
}

TEST(Marks, RepaintDrawsTheSelectionUnderAClip)
{
    TESTVIEW v(100, 100);
    RECORDER recorder;
    PATHREC *a = MakePath({{6, 10, 10}});
    PATHREC *b = MakePath({{6, 30, 30}});
    PATHREC *c = MakePath({{6, 50, 50}});
    v.Add({a, b, c});
    EXPECT_EQ(ZrPathTblRepaintNodes(recorder.dc, v.table, v.view, 1, 2, 3, 4), 0);
    EXPECT_EQ(recorder.Take(), CALLS{}) << "an empty selection sets no clip";
    SelectPaths({a, c});
    v.Group()->selectedPath = a;
    EXPECT_EQ(ZrPathTblRepaintNodes(recorder.dc, v.table, v.view, 1, 2, 3, 4), 1);
    CALLS calls = recorder.Take();
    EXPECT_EQ(calls.front(), "clip 1 2 3 4");
    std::erase_if(calls, [](const std::string &call) { return !call.starts_with("rect"); });
    EXPECT_EQ(calls, (CALLS{"rect 8 8 12 12", "rect 48 48 52 52"}));

    ZrPathTblRepaintNodes(recorder.dc, v.table, v.view, 1, 2, 3, 4); /* the context keeps a copy of the clip */
    const int32_t objects = ObjectCount();
    ZrPathTblRepaintNodes(recorder.dc, v.table, v.view, 1, 2, 3, 4);
    EXPECT_EQ(ObjectCount(), objects) << "and nothing else is left";
    recorder.Take();

    EXPECT_EQ(ZrPathTblRepaintNodes(nullptr, v.table, v.view, 1, 2, 3, 4), 1);
    EXPECT_EQ(ZrPathTblRepaintNodes(recorder.dc, nullptr, v.view, 1, 2, 3, 4), 0);
    v.table->version = 0;
    EXPECT_EQ(ZrPathTblRepaintNodes(recorder.dc, v.table, v.view, 1, 2, 3, 4), 0);
    v.table->version = 0x10000;
    v.table->currentGroup = 5;
    EXPECT_EQ(ZrPathTblRepaintNodes(recorder.dc, v.table, v.view, 1, 2, 3, 4), 0);
    v.table->currentGroup = 0;
    EXPECT_EQ(recorder.Take(), CALLS{});
}
