#include "frame/faults.h"
#include "store/store.h"
#include "support/document.h"
#include "support/pendriver.h"
#include "support/system.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace zr32;
using namespace zr32test;

namespace {

using NODES = std::vector<NODEVALUE>;

struct PENDOC : DOCUMENT {
    PENDRIVER pen;
    explicit PENDOC(int32_t zoom = 1) : DOCUMENT(200, 200, zoom), pen(table, view) {}

    /* Of the path being drawn, in window coordinates at zoom 1. */
    NODES Drawn() const
    {
        NODES nodes = Selected() ? NodesOf(Selected()) : NODES{};
        for (NODEVALUE &node : nodes) {
            node.x += 0.5;
            node.y += 0.5;
        }
        return nodes;
    }
};

} // namespace

TEST(PenTool, APressAndReleaseOnAnEmptyGroupGivesOneStartNode)
{
    PENDOC doc;
    doc.pen.Click(30, 40);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40}}));
    EXPECT_EQ(doc.Active(), doc.Selected());
    EXPECT_EQ(doc.Active()->flags, PATHREC_SELECTED);
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, doc.Active()), RecordBlockSize(1));
    EXPECT_STREQ(doc.table->groups[0].name, "xxx");
    EXPECT_EQ(doc.table->groupCount, 1u);
}

TEST(PenTool, ThreeClicksAndADoubleClickNearTheFirstAnchorCloseWithAStraightSide)
{
    PENDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Click(90, 40);
    doc.pen.Click(60, 80);
    doc.pen.Click(31, 42); /* the double-click's first press and release */
    doc.pen.DoubleClick(31, 42);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40}, {2, 90, 40}, {2, 60, 80}, {3, 30, 40}}));
    EXPECT_FALSE(doc.pen.Captured());
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, doc.Active()), RecordBlockSize(4));
    EXPECT_EQ(BrokenInvariant(doc), "");
}

TEST(PenTool, ADoubleClickWithTwoNodesNearTheFirstAnchorDoesNothing)
{
    PENDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Click(32, 38);
    doc.pen.DoubleClick(32, 38);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40}, {2, 32, 38}}));
    EXPECT_TRUE(doc.pen.Captured());
}

TEST(PenTool, ADoubleClickFarFromTheFirstAnchorAddsItsNodeAndCloses)
{
    PENDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Click(90, 40);
    doc.pen.Move(60, 80);
    doc.pen.DoubleClick(60, 80);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40}, {2, 90, 40}, {3, 30, 40}}));
    EXPECT_FALSE(doc.pen.Captured());
}

TEST(PenTool, ThreePixelsOnEitherAxisAreNoLongerNear)
{
    for (const int32_t off : {2, 3}) {
        PENDOC doc;
        doc.pen.Click(30, 40);
        doc.pen.Click(90, 40);
        doc.pen.Click(60, 80);
        doc.pen.Click(30 + off, 40);
        doc.pen.DoubleClick(30 + off, 40);
        EXPECT_EQ(doc.Drawn().size(), off == 2 ? 4u : 5u) << "far away it adds a node of its own";
    }
}

TEST(PenTool, ADragOfTwoPixelsIsAClickOneOfThreeASmoothAnchor)
{
    PENDOC click;
    click.pen.Click(30, 40);
    click.pen.Drag(90, 40, 92, 38);
    EXPECT_EQ(click.Drawn(), (NODES{{6, 30, 40}, {2, 92, 38}}));

    PENDOC smooth;
    smooth.pen.Click(30, 40);
    smooth.pen.Drag(90, 40, 93, 40);
    EXPECT_EQ(smooth.Drawn().size(), 7u);
}

TEST(PenTool, DraggingFromTheStartGivesAPendingCurve)
{
    PENDOC doc;
    doc.pen.Drag(30, 40, 50, 30);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40}, {4, 50, 30}, {4, 30, 40}, {4, 30, 40}}));
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, doc.Active()), RecordBlockSize(4));
}

TEST(PenTool, ACornerFillsThePendingCurveIn)
{
    PENDOC doc;
    doc.pen.Drag(30, 40, 50, 30);
    doc.pen.Click(90, 60);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40}, {4, 50, 30}, {4, 90, 60}, {4, 90, 60}}));
    doc.pen.Click(100, 100); /* the curve is finished: a line */
    EXPECT_EQ(doc.Drawn().back(), (NODEVALUE{2, 100, 100}));
    EXPECT_EQ(doc.Drawn().size(), 5u);
}

TEST(PenTool, ACurveOfARecordOfThreeNodesIsNotPending)
{
    /* Its end has the coordinates that flags and primitive would give if they were read as a node. */
    PENDOC doc;
    doc.Select({doc.Add(MakePath({{4, 1, 1}, {4, 2, 2}, {4, -32768, 0}}))});
    ASSERT_EQ(doc.Selected()->flags, PATHREC_SELECTED);
    SetCapture(doc.pen.window);
    doc.pen.Click(60, 80);
    EXPECT_EQ(NodesOf(doc.Selected()), (NODES{{4, 1, 1}, {4, 2, 2}, {4, -32768, 0}, {2, 59.5, 79.5}}));
}

TEST(PenTool, ASmoothAnchorAfterALineGivesSixNodesMore)
{
    PENDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Click(60, 40);
    doc.pen.Drag(90, 60, 100, 70);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40},
                                  {2, 60, 40},
                                  {4, 60, 40},
                                  {4, 80, 50},
                                  {0x2004, 90, 60},
                                  {4, 100, 70},
                                  {4, 90, 60},
                                  {4, 90, 60}}));
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, doc.Active()), RecordBlockSize(8));
}

TEST(PenTool, ASmoothAnchorFillsThePendingCurveAndLeavesANewOne)
{
    PENDOC doc;
    doc.pen.Drag(30, 40, 50, 30);
    doc.pen.Drag(90, 60, 100, 70);
    EXPECT_EQ(doc.Drawn(),
              (NODES{{6, 30, 40}, {4, 50, 30}, {4, 80, 50}, {0x2004, 90, 60}, {4, 100, 70}, {4, 90, 60}, {4, 90, 60}}));
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, doc.Active()), RecordBlockSize(7));
}

TEST(PenTool, ASmoothAnchorAfterAFinishedCurveBeginsWithACornerHandle)
{
    PENDOC doc;
    doc.pen.Drag(30, 40, 50, 30);
    doc.pen.Click(90, 60);
    doc.pen.Drag(100, 100, 110, 100);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40},
                                  {4, 50, 30},
                                  {4, 90, 60},
                                  {4, 90, 60},
                                  {4, 90, 60},
                                  {4, 90, 100},
                                  {0x2004, 100, 100},
                                  {4, 110, 100},
                                  {4, 100, 100},
                                  {4, 100, 100}}));
}

TEST(PenTool, ClosingWithCurvesAtBothEndsMirrorsTheFirstControl)
{
    PENDOC doc;
    doc.pen.Drag(30, 40, 50, 30);
    doc.pen.Drag(90, 60, 100, 70);
    doc.pen.DoubleClick(60, 90);
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40},
                                  {4, 50, 30},
                                  {4, 80, 50},
                                  {0x2004, 90, 60},
                                  {4, 100, 70},
                                  {4, 10, 50}, /* twice the start less the first control */
                                  {5, 30, 40}}));
    EXPECT_FALSE(doc.pen.Captured());
}

TEST(PenTool, ClosingWithACurveAtOneEndMirrorsNothing)
{
    PENDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Click(60, 40);
    doc.pen.Drag(90, 60, 100, 70);
    doc.pen.Click(31, 41);
    doc.pen.DoubleClick(31, 41);
    const NODES nodes = doc.Drawn();
    EXPECT_EQ(nodes[nodes.size() - 2], (NODEVALUE{4, 31, 41}));
    EXPECT_EQ(nodes.back(), (NODEVALUE{5, 30, 40}));
}

TEST(PenTool, TheScrollAndTheZoomAreTakenAway)
{
    const struct {
        int32_t zoom, scrollX, left, x;
        double want;
    } cases[] = {{1, 10, 5, 20, 24.5}, {2, 10, 5, 20, 12}, {-3, 10, 5, 20, 74.5}};
    for (const auto &c : cases) {
        PENDOC doc(c.zoom);
        doc.view->scrollX = c.scrollX;
        doc.view->left = c.left;
        doc.pen.Click(c.x, 0);
        EXPECT_EQ(NodesOf(doc.Selected())[0].x, c.want);
    }
}

TEST(PenTool, ANewPathStandsBehindTheChainAndIsTheOnlySelection)
{
    PENDOC doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    PATHREC *b = doc.Add(MakeBox(0, 0, 20, 20));
    doc.Select({a, b});
    doc.pen.Click(30, 40);
    EXPECT_EQ(a->flags, 0u);
    EXPECT_EQ(b->flags, 0u);
    EXPECT_EQ(doc.Selected(), b->nextPath);
    EXPECT_EQ(doc.Active(), a);
    EXPECT_EQ(BrokenInvariant(doc), "");
}

TEST(PenTool, AnEmptyGroupAmongOthersTakesThePathIntoItsOwnSlot)
{
    PENDOC doc;
    doc.Add(MakeBox(0, 0, 10, 10));
    ZrPathAddPathGroup(&doc.table, MakeBox(5, 5, 9, 9), "second", doc.view, nullptr);
    doc.pen.table = doc.table;
    doc.Select({doc.Active()});
    ZrPathDelete(doc.table, doc.view, nullptr);
    ASSERT_EQ(doc.Active(), nullptr);
    doc.pen.Click(30, 40);
    EXPECT_EQ(doc.table->groupCount, 2u);
    EXPECT_EQ(doc.table->currentGroup, 1u);
    EXPECT_STREQ(doc.table->groups[1].name, "second");
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40}}));
    EXPECT_EQ(doc.Active(), doc.Selected());
}

TEST(PenTool, LinksFollowABlockThatMoves)
{
    PENDOC doc;
    doc.pen.Click(10, 10);
    PATHREC *drawn = doc.Active();
    PATHREC *behind = doc.Add(MakeBox(0, 0, 5, 5));
    ChainLink(joinChain, drawn, behind);
    behind->flags = PATHREC_SELECTED;
    ChainLink(selectedChain, drawn, behind);
    /* Blocks between force the record to move now and then. */
    std::vector<PATHREC *> others;
    int moved = 0;
    for (int i = 0; i < 300; i++) {
        PATHREC *before = doc.Selected();
        others.push_back(MakeBox(0, 0, 1, 1));
        doc.pen.Drag(10 + i % 50, 20, 60, 90);
        moved += doc.Selected() != before;
        ASSERT_EQ(BrokenInvariant(doc), "");
        ASSERT_EQ(doc.Selected()->nextJoin, behind);
    }
    EXPECT_GT(moved, 0);
    EXPECT_EQ(doc.Selected()->nodeCount, 7u + 3 * 299);
    for (PATHREC *other : others) ZrPathDeletePtr(other, 0);
}

TEST(PenTool, APressOnATableThatIsNotLiveIsRefused)
{
    PENDOC doc;
    doc.table->version = 0;
    const int32_t beeps = BeepCount();
    doc.pen.Send(513, 30, 40);
    EXPECT_EQ(BeepCount(), beeps + 1);
    doc.pen.Send(513, 30, 40);
    EXPECT_EQ(doc.Active(), nullptr);
    doc.table->version = 0x10000;
}

TEST(PenTool, WithoutATableNothingIsReachableAndNothingIsLeft)
{
    PENDOC doc;
    doc.pen.table = nullptr;
    const int64_t live = FaultLiveBlocks(ALLOC_PATHHEAP);
    doc.pen.Click(30, 40);
    doc.pen.Click(60, 40);
    doc.pen.DoubleClick(90, 90);
    EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), live);
    doc.table->currentGroup = 9; /* a table without a current group is as good as none */
    doc.pen.table = doc.table;
    ReleaseCapture();
    doc.pen.Click(30, 40);
    EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), live);
    doc.table->currentGroup = 0;
}

TEST(PenTool, MessagesOutOfPlaceReturnOneAndDoNothing)
{
    PENDOC doc;
    for (const uint32_t message : {0u, 256u, 257u, 511u, 512u, 514u, 515u, 516u, 4000000000u})
        EXPECT_EQ(doc.pen.Send(message, 5, 5, 27), 1);
    EXPECT_EQ(doc.Active(), nullptr);
    doc.pen.Click(30, 40);
    for (const uint32_t message : {0u, 511u, 516u}) EXPECT_EQ(doc.pen.Send(message, 90, 90), 1);
    EXPECT_EQ(doc.pen.Send(256, 90, 90, 28), 1);
    doc.pen.Up(90, 90); /* no press */
    EXPECT_EQ(doc.Drawn(), (NODES{{6, 30, 40}}));
    EXPECT_EQ(ZrPathMouseProcDraw(nullptr, doc.table, nullptr, 513, 0, 1, 1), 1);
}

TEST(PenTool, WhenThePathIsGoneTheToolIsAsAtStart)
{
    PENDOC doc;
    doc.pen.Click(30, 40);
    doc.pen.Down(60, 40);
    ZrPathDelete(doc.table, doc.view, nullptr);
    doc.pen.Move(70, 50);
    doc.pen.Up(70, 50);
    doc.pen.DoubleClick(70, 50);
    EXPECT_EQ(doc.Active(), nullptr);
    PATHREC *box = doc.Add(MakeBox(0, 0, 10, 10));
    doc.Select({box});
    doc.pen.Up(80, 80);
    EXPECT_EQ(box->nodeCount, 5u) << "the press is forgotten";
}

TEST(PenTool, EveryFailedAllocationLeavesAPathThatCanGoOn)
{
    for (int64_t n = 1; n <= 6; n++) {
        PENDOC doc;
        FaultSet(ALLOC_PATHHEAP, n);
        doc.pen.Click(30, 40);
        doc.pen.Click(60, 40);
        doc.pen.Drag(90, 60, 100, 70);
        doc.pen.Drag(40, 90, 50, 100);
        doc.pen.Click(20, 60);
        FaultSet(ALLOC_PATHHEAP, 0);
        EXPECT_EQ(BrokenInvariant(doc), "") << n;
        doc.pen.DoubleClick(10, 10);
        EXPECT_EQ(BrokenInvariant(doc), "") << n;
    }
}

TEST(PenTool, RandomMessagesKeepEveryInvariant)
{
    std::mt19937 random(3);
    const auto upTo = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const uint32_t messages[] = {512, 512, 512, 513, 513, 514, 514, 515, 256, 257};
    const int32_t extremes[] = {std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min(), 0, -1};
    CANVAS canvas(60, 60);
    for (int round = 0; round < 60; round++) {
        PENDOC doc(round % 3 ? round % 3 : -2);
        doc.pen.dc = round % 2 ? canvas.dc : nullptr;
        doc.view->scrollX = upTo(30);
        for (int step = 0; step < 100; step++) {
            const uint32_t message = messages[upTo(10)];
            const bool extreme = upTo(50) == 0;
            const int32_t x = extreme ? extremes[upTo(4)] : upTo(40);
            const int32_t y = extreme ? extremes[upTo(4)] : upTo(40);
            if (message == 513)
                doc.pen.Down(x, y);
            else
                doc.pen.Send(message, x, y, upTo(2) ? 27 : 0);
            ASSERT_EQ(BrokenInvariant(doc), "") << "round " << round << " step " << step;
            if (upTo(80) == 0) ZrPathDelete(doc.table, doc.view, nullptr);
            if (upTo(80) == 0) ReleaseCapture();
        }
    }
}
