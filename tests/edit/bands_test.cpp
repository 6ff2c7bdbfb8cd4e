#include "edit/bands.h"
#include "edit/pentool.h"
#include "support/document.h"
#include "support/pendriver.h"
#include "support/recorder.h"
#include "support/system.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr POINT a = {10, 10};
constexpr POINT b = {40, 30};

} // namespace

TEST(Bands, DrawnTwiceEveryPixelIsAsItWas)
{
    CANVAS canvas(60, 60);
    canvas.pixels[15 * 60 + 20] = 0x123456;
    const std::vector<uint32_t> before = canvas.Pixels();
    BandLine(canvas.dc, a, b);
    EXPECT_NE(canvas.Pixels(), before);
    BandLine(canvas.dc, a, b);
    EXPECT_EQ(canvas.Pixels(), before);
    BandCurve(canvas.dc, a, {10, 40}, {50, 50}, b);
    EXPECT_NE(canvas.Pixels(), before);
    BandCurve(canvas.dc, a, {10, 40}, {50, 50}, b);
    EXPECT_EQ(canvas.Pixels(), before);
}

TEST(Bands, TheLastLineCanBeErasedWithoutKnowingIt)
{
    CANVAS canvas(60, 60);
    const std::vector<uint32_t> before = canvas.Pixels();
    BandLine(canvas.dc, a, b);
    BandLineAgain(canvas.dc);
    EXPECT_EQ(canvas.Pixels(), before);
}

TEST(Bands, ALineIsShownUntilACurveIsDrawn)
{
    BandsReset();
    EXPECT_FALSE(BandLineShown());
    BandLine(nullptr, a, b);
    EXPECT_TRUE(BandLineShown());
    BandCurve(nullptr, a, a, b, b);
    EXPECT_FALSE(BandLineShown());
    BandLineAgain(nullptr);
    EXPECT_TRUE(BandLineShown());
    BandsReset();
}

TEST(Bands, TheContextIsPutBackAsItWas)
{
    CANVAS canvas(60, 60);
    const HPEN pen = CreatePen(PS_SOLID, 0, 0xFF);
    const HGDIOBJ oldPen = SelectObject(canvas.dc, pen);
    const HGDIOBJ oldBrush = SelectObject(canvas.dc, GetStockObject(GRAY_BRUSH));
    SetROP2(canvas.dc, R2_NOT);
    const int32_t objects = ObjectCount();
    BandLine(canvas.dc, a, b);
    BandCurve(canvas.dc, a, a, b, b);
    EXPECT_EQ(SetROP2(canvas.dc, R2_COPYPEN), R2_NOT);
    EXPECT_EQ(SelectObject(canvas.dc, oldBrush), GetStockObject(GRAY_BRUSH));
    EXPECT_EQ(SelectObject(canvas.dc, oldPen), pen);
    EXPECT_EQ(ObjectCount(), objects);
    DeleteObject(pen);
}

TEST(Bands, ALineHasABoxAroundItsEnd)
{
    RECORDER record;
    BandLine(record.dc, a, b);
    EXPECT_EQ(record.Take("move"), CALLS{"move 10 10"});
    BandLine(record.dc, a, b);
    EXPECT_EQ(record.Take("line"), CALLS{"line 40 30"});
    BandLine(record.dc, a, b);
    EXPECT_EQ(record.Take("rect"), CALLS{"rect 38 28 42 32"});
    BandLine(record.dc, a, b);
    EXPECT_EQ(record.Take("brush").front(), "brush null");
}

namespace {

/* The tool over a recorder; each call gives the lines drawn by one message as "x y to x y". */
class BANDDOC : public DOCUMENT {
    RECORDER record; /* its context is another one after each Take */

  public:
    PENDRIVER pen;
    BANDDOC() : pen(table, view, record.dc)
    {
        Take();
    }
    CALLS Take(const std::string &word = "")
    {
        const CALLS calls = record.Take(word);
        pen.dc = record.dc;
        return calls;
    }
    CALLS Moves(int32_t x, int32_t y)
    {
        Take();
        pen.Move(x, y);
        return Take("move");
    }
    CALLS Lines(int32_t x, int32_t y)
    {
        Take();
        pen.Move(x, y);
        return Take("line");
    }
};

} // namespace

TEST(PenBands, BetweenCornersALineRunsFromTheAnchor)
{
    BANDDOC doc;
    doc.pen.Click(30, 40);
    EXPECT_EQ(doc.Lines(60, 50), (CALLS{"line 30 40", "line 60 50"})) << "the first erases a box never drawn";
    EXPECT_EQ(doc.Lines(70, 50), (CALLS{"line 60 50", "line 70 50"}));
    EXPECT_EQ(doc.Moves(80, 50), (CALLS{"move 30 40", "move 30 40"}));
}

TEST(PenBands, PullingTheStartHandleIsALine)
{
    BANDDOC doc;
    doc.pen.Down(30, 40);
    EXPECT_EQ(doc.Lines(50, 30), (CALLS{"line 30 40", "line 50 30"}));
    EXPECT_EQ(doc.Lines(55, 30), (CALLS{"line 50 30", "line 55 30"}));
}

TEST(PenBands, AfterASmoothAnchorTheBandIsTheCurveToCome)
{
    BANDDOC doc;
    doc.pen.Drag(30, 40, 50, 30);
    EXPECT_EQ(doc.Moves(90, 60), (CALLS{"move 30 40"})) << "nothing to erase where the last position is the anchor";
    EXPECT_EQ(doc.Moves(95, 60), (CALLS{"move 30 40", "move 30 40"}));
    EXPECT_EQ(doc.Lines(99, 60), CALLS{});
}

TEST(PenBands, PullingAHandleShowsItsMirrorImageAndTheCurve)
{
    BANDDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Move(60, 50);
    doc.pen.Down(60, 50);
    /* The line band to the press stands and is erased as it was drawn; then handle, mirror, curve. */
    EXPECT_EQ(doc.Lines(70, 55), (CALLS{"line 60 50", "line 70 55", "line 50 45"}));
    EXPECT_EQ(doc.Lines(72, 56), (CALLS{"line 70 55", "line 50 45", "line 72 56", "line 48 44"}));
    EXPECT_EQ(doc.Moves(74, 57),
              (CALLS{"move 60 50", "move 60 50", "move 30 40", "move 60 50", "move 60 50", "move 30 40"}));
}

TEST(PenBands, EscErasesAndTheNextMoveDrawsAgain)
{
    BANDDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Down(60, 50);
    doc.pen.Move(70, 55);
    doc.pen.Move(72, 56);
    doc.Take();
    doc.pen.Esc(72, 56);
    EXPECT_EQ(doc.Take("line"), (CALLS{"line 72 56", "line 48 44"}));
    EXPECT_EQ(doc.Lines(80, 60), (CALLS{"line 72 56", "line 48 44", "line 80 60", "line 40 40"}))
        << "it draws what it means to erase";
    doc.pen.Send(257, 80, 60, 27);
    EXPECT_EQ(doc.Take("line"), (CALLS{"line 80 60", "line 40 40"}));
    EXPECT_EQ(NodesOf(doc.Selected()).size(), 1u) << "Esc cancels nothing";
}

TEST(PenBands, OnlyTheEscKeyErases)
{
    BANDDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Move(60, 50);
    doc.Take();
    for (const uint32_t message : {256u, 257u}) doc.pen.Send(message, 60, 50, 28);
    EXPECT_EQ(doc.Take(), CALLS{});
    doc.pen.Send(512, 70, 50, 27);
    EXPECT_EQ(doc.Take("line"), (CALLS{"line 60 50", "line 70 50"})) << "a move draws, whatever its word is";
}

TEST(PenBands, TheScrollIsTakenAwayAndReductionsLeaveTheHalfPixelOut)
{
    BANDDOC doc;
    doc.view->scrollX = 100;
    doc.view->scrollY = 7;
    doc.view->zoom = -2;
    doc.pen.Drag(30, 40, 50, 30);
    /* The start lies at (130 x 2 - 0.5, 47 x 2 - 0.5) of the image; halved and cut: 129, 46; less the scroll. */
    EXPECT_EQ(doc.Moves(90, 60), (CALLS{"move 29 39"}));
}

TEST(PenBands, TheCurveToComeBeginsWithTheHandleThatWasPulled)
{
    BANDDOC doc;
    doc.pen.Drag(30, 40, 50, 10);
    doc.Take();
    doc.pen.Move(90, 60);
    EXPECT_EQ(doc.Take("bezier"), CALLS{"bezier 50 10 90 60 90 60"});
    /* Pulling a handle there: first the curve that stands goes, then the one with the mirror image comes. */
    doc.pen.Down(90, 60);
    doc.pen.Move(110, 80);
    EXPECT_EQ(doc.Take("bezier"), (CALLS{"bezier 50 10 90 60 90 60", "bezier 50 10 70 40 90 60"}));
}

TEST(PenBands, BehindACornerTheCurveBeginsWithoutAHandle)
{
    BANDDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Down(90, 60);
    doc.Take();
    doc.pen.Move(110, 80);
    EXPECT_EQ(doc.Take("bezier").back(), "bezier 30 40 70 40 90 60");
}

TEST(PenBands, AWholeDrawingLeavesTheContextAsItWas)
{
    CANVAS canvas(200, 200);
    DOCUMENT doc;
    PENDRIVER pen(doc.table, doc.view, canvas.dc);
    const std::vector<uint32_t> before = canvas.Pixels();
    pen.Drag(30, 40, 50, 30);
    for (int i = 0; i < 40; i += 5) pen.Move(60 + i, 60 + i);
    pen.Esc(95, 95);
    /* The start handle's band and the box of its first move stand; every other band has been taken back. */
    BandLine(canvas.dc, {30, 40}, {30, 40});
    BandLine(canvas.dc, {30, 40}, {50, 30});
    EXPECT_EQ(canvas.Pixels(), before);
}
