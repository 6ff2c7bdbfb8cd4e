#include "frame/faults.h"
#include "store/store.h"
#include "support/document.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

using NODES = std::vector<NODEVALUE>;

/* The nodes of a lone record in node editing after ZrPathDelete. */
NODES AfterDelete(const std::vector<TESTNODE> &nodes)
{
    DOCUMENT doc;
    PATHREC *path = doc.Add(MakePath(nodes));
    doc.Select({path});
    path->flags = PATHREC_NODEEDIT;
    path->primitive = ZRPRIM_RECTANGLE;
    EXPECT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 1);
    if (doc.Active() != path) return {};
    EXPECT_EQ(path->flags, PATHREC_SELECTED);
    EXPECT_EQ(path->primitive, 0);
    EXPECT_EQ(doc.Selected(), path);
    return NodesOf(path);
}

} // namespace

TEST(DeleteNodes, AMarkedLineNodeGoes)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {2, 1, 1}, {0x8002, 2, 2}, {2, 3, 3}, {2, 4, 4}, {2, 5, 5}}),
              (NODES{{6, 0, 0}, {2, 1, 1}, {2, 3, 3}, {2, 4, 4}, {2, 5, 5}}));
}

TEST(DeleteNodes, OfTwoMarkedNeighboursOneGoesACall)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {0x8002, 1, 1}, {0x8002, 2, 2}, {2, 3, 3}, {2, 4, 4}}),
              (NODES{{6, 0, 0}, {0x8002, 2, 2}, {2, 3, 3}, {2, 4, 4}}));
}

TEST(DeleteNodes, AMarkedCurveGoesWithItsThreeNodes)
{
    const TESTNODE whole[] = {{6, 0, 0}, {4, 1, 1}, {4, 2, 2}, {4, 3, 3}, {2, 4, 4}, {2, 5, 5}};
    std::vector<TESTNODE> markedAtFirst(whole, whole + 6);
    markedAtFirst[1].type = 0x8004;
    std::vector<TESTNODE> markedAtEnd(whole, whole + 6);
    markedAtEnd[3].type = 0x8004;
    EXPECT_EQ(AfterDelete(markedAtFirst), (NODES{{6, 0, 0}, {2, 4, 4}, {2, 5, 5}}));
    EXPECT_EQ(AfterDelete(markedAtEnd), (NODES{{6, 0, 0}, {2, 4, 4}, {2, 5, 5}}));
}

TEST(DeleteNodes, AMarkOnASecondControlAloneRemovesNothing)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {4, 1, 1}, {0x8004, 2, 2}, {4, 3, 3}, {2, 4, 4}}).size(), 5u);
}

TEST(DeleteNodes, TheClosingAnchorOfALineRecordMovesTheStartToTheOldFirstNode)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {2, 1, 1}, {2, 2, 2}, {2, 3, 3}, {0x8003, 0, 0}}),
              (NODES{{6, 1, 1}, {2, 2, 2}, {2, 3, 3}, {3, 1, 1}}));
}

TEST(DeleteNodes, TheClosingAnchorOfACurveRecordTakesTheFirstCurveAway)
{
    const NODES want = {{6, 3, 3}, {4, 4, 4}, {4, 5, 5}, {4, 6, 6}, {4, 7, 7}, {4, 8, 8}, {5, 3, 3}};
    EXPECT_EQ(AfterDelete({{6, 0, 0},
                           {4, 1, 1},
                           {4, 2, 2},
                           {4, 3, 3},
                           {4, 4, 4},
                           {4, 5, 5},
                           {4, 6, 6},
                           {0x8004, 7, 7},
                           {4, 8, 8},
                           {5, 0, 0}}),
              want);
    EXPECT_EQ(AfterDelete({{6, 0, 0},
                           {4, 1, 1},
                           {4, 2, 2},
                           {4, 3, 3},
                           {4, 4, 4},
                           {4, 5, 5},
                           {4, 6, 6},
                           {4, 7, 7},
                           {4, 8, 8},
                           {0x8005, 0, 0}}),
              want);
}

TEST(DeleteNodes, FirstAndClosingSegmentOfDifferentKinds)
{
    /* A first curve and a closing line: three nodes go, the line closes. */
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {4, 1, 1}, {4, 2, 2}, {4, 3, 3}, {2, 4, 4}, {0x8003, 0, 0}}),
              (NODES{{6, 3, 3}, {2, 4, 4}, {3, 3, 3}}));
    /* A first line and a closing curve: one node goes, the curve closes. */
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {2, 1, 1}, {2, 2, 2}, {0x8004, 3, 3}, {4, 4, 4}, {5, 0, 0}}),
              (NODES{{6, 1, 1}, {2, 2, 2}, {4, 3, 3}, {4, 4, 4}, {5, 1, 1}}));
}

TEST(DeleteNodes, AMarkedLastNodeClosesAnOpenRecord)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {2, 1, 1}, {2, 2, 2}, {2, 3, 3}, {0x8002, 4, 4}}),
              (NODES{{6, 1, 1}, {2, 2, 2}, {2, 3, 3}, {3, 1, 1}}));
}

TEST(DeleteNodes, OfSeveralRunsTheFirstLosesItsAnchor)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {2, 1, 1}, {3, 0, 0}, {6, 5, 5}, {2, 6, 6}, {0x8003, 5, 5}}),
              (NODES{{6, 1, 1}, {3, 0, 0}, {6, 5, 5}, {2, 6, 6}, {3, 1, 1}}));
}

TEST(DeleteNodes, TheFirstAnchorIsNotedBeforeAnythingIsRemoved)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {0x8002, 1, 1}, {2, 2, 2}, {2, 3, 3}, {0x8003, 0, 0}}),
              (NODES{{6, 2, 2}, {2, 3, 3}, {3, 1, 1}}));
}

TEST(DeleteNodes, MarkedStartsAndShapesAreSteppedOver)
{
    EXPECT_EQ(AfterDelete({{0x8006, 0, 0},
                           {0x8200, 1, 1},
                           {0x8006, 2, 2},
                           {0x8100, 3, 3},
                           {0, 0, 0},
                           {0x8400, 5, 0},
                           {0, 9, 9},
                           {2, 4, 4}})
                  .size(),
              8u);
}

TEST(DeleteNodes, ASegmentCutShortEndsTheWalk)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {2, 1, 1}, {2, 2, 2}, {0x8004, 3, 3}, {0x8004, 4, 4}}).size(), 5u);
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {2, 1, 1}, {0x8800, 2, 2}, {0x8002, 3, 3}, {2, 4, 4}}).size(), 5u);
}

TEST(DeleteNodes, AClosingAnchorThatWouldTakeAllNodesStays)
{
    /* Node 0 is no start, so it goes first; what is left has no more nodes than its first segment. */
    EXPECT_EQ(AfterDelete({{0x8002, 0, 0}, {4, 1, 1}, {0x8002, 2, 2}, {2, 3, 3}, {0x8002, 4, 4}}),
              (NODES{{4, 1, 1}, {2, 3, 3}, {2, 4, 4}}));
}

TEST(DeleteNodes, FourNodesOrFewerGoAsAWhole)
{
    EXPECT_EQ(AfterDelete({{6, 0, 0}, {0x8002, 1, 1}, {2, 2, 2}, {3, 0, 0}}), NODES{});
    EXPECT_EQ(AfterDelete({}), NODES{});
}

TEST(DeleteNodes, AnEnvelopesOutlineGoesAsAWhole)
{
    DOCUMENT doc;
    const ZRPOINTFX frame[8] = {};
    PATHREC *a = doc.Add(MakeBox(0, 0, 5, 5));
    ZrPathAddBiBezierEnvelope(a, frame);
    ZrPathAssignSelectedPathBlindly(doc.table, a);
    EXPECT_EQ(doc.Selected(), a->nextPath);
    EXPECT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 1);
    EXPECT_EQ(doc.Records(), (std::vector<PATHREC *>{a}));
    EXPECT_EQ(BrokenInvariant(doc), "");
}

TEST(DeleteNodes, OnlyTheHeadOfTheSelectionLosesNodes)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 50, 50));
    PATHREC *b = doc.Add(MakeBox(20, 20, 60, 60));
    doc.Select({a, b});
    a->flags = b->flags = PATHREC_NODEEDIT;
    a->nodes[2].type |= PATHNODE_SELECTED;
    b->nodes[2].type |= PATHNODE_SELECTED;
    doc.Draw();
    tagRECT dirty = {};
    EXPECT_EQ(ZrPathDelete(doc.table, doc.view, &dirty), 1);
    EXPECT_EQ(a->nodeCount, 4u);
    EXPECT_EQ(b->nodeCount, 5u);
    EXPECT_EQ(b->flags, PATHREC_NODEEDIT);
    EXPECT_EQ(doc.Plane(), doc.FreshPlane());
    EXPECT_FALSE(IsRectEmpty(&dirty));
}

TEST(DeletePaths, AllPathsOfAGroupLeaveNoActivePath)
{
    DOCUMENT doc;
    const int64_t live = FaultLiveBlocks(ALLOC_PATHHEAP);
    PATHREC *a = doc.Add(MakeBox(10, 10, 50, 50));
    PATHREC *b = doc.Add(MakeBox(20, 20, 60, 60));
    doc.Select({a, b});
    doc.Draw();
    EXPECT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 1);
    EXPECT_EQ(doc.Active(), nullptr);
    EXPECT_EQ(doc.Selected(), nullptr);
    EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), live);
    EXPECT_EQ(doc.Plane(), std::vector<uint8_t>(200 * 200, 0));
}

TEST(DeletePaths, TheUnselectedStayLinkedInOrderAndThePlaneShowsThem)
{
    for (unsigned mask = 1; mask < 32; mask++) {
        DOCUMENT doc(200, 200, 1, 3, 4);
        std::vector<PATHREC *> kept;
        std::vector<PATHREC *> gone;
        for (unsigned i = 0; i < 5; i++) {
            PATHREC *path = doc.Add(MakeCircle(20 + 30 * i, 50, 25));
            (mask >> i & 1 ? gone : kept).push_back(path);
        }
        ZrPathJoinAll(doc.Active());
        doc.Select(gone);
        doc.Draw();
        tagRECT dirty = {};
        EXPECT_EQ(ZrPathDelete(doc.table, doc.view, &dirty), 1);
        EXPECT_EQ(doc.Records(), kept);
        EXPECT_EQ(doc.Selected(), nullptr);
        EXPECT_EQ(BrokenInvariant(doc), "") << "join links skip what went";
        EXPECT_EQ(doc.Plane(), kept.empty() ? std::vector<uint8_t>(200 * 200, 0) : doc.FreshPlane());
        EXPECT_FALSE(IsRectEmpty(&dirty));
        for (size_t i = 0; i + 1 < kept.size(); i++) EXPECT_EQ(kept[i]->nextJoin, kept[i + 1]);
    }
}

TEST(DeletePaths, ASelectionWhoseChainIsNotLinkedGoesAsAWholeToo)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 50, 50));
    PATHREC *b = doc.Add(MakeBox(20, 20, 60, 60));
    PATHREC *c = doc.Add(MakeBox(30, 30, 60, 60));
    doc.Select({a, b});
    a->nextSel = b->prevSel = nullptr;
    EXPECT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 1);
    EXPECT_EQ(doc.Records(), (std::vector<PATHREC *>{c}));
}

TEST(DeletePaths, WithoutADisplayBufferTheRectangleIsEmpty)
{
    DOCUMENT doc;
    doc.Select({doc.Add(MakeBox(10, 10, 50, 50))});
    tagRECT dirty = {1, 2, 3, 4};
    EXPECT_EQ(ZrPathDelete(doc.table, nullptr, &dirty), 1);
    EXPECT_TRUE(IsRectEmpty(&dirty));
}

TEST(DeletePaths, NothingSelectedIsRefused)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 50, 50));
    EXPECT_EQ(ZrPathDelete(nullptr, doc.view, nullptr), 0);
    EXPECT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 0);
    doc.Select({a});
    a->flags = 0;
    EXPECT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 0);
    ZrPathAssignSelectedPath(doc.table, nullptr);
}

TEST(DeleteLink, LeavesTheDisplayBufferAloneAndGivesTheMarginBox)
{
    DOCUMENT doc(200, 200, 1, 7, 9);
    PATHREC *a = doc.Add(MakeBox(10, 10, 50, 50));
    PATHREC *b = doc.Add(MakeBox(60, 60, 70, 70));
    doc.Select({b});
    doc.Draw();
    const std::vector<uint8_t> before = doc.Plane();
    tagRECT dirty = {};
    EXPECT_EQ(ZrPathDeleteLink(doc.table, doc.view, &dirty), 1);
    EXPECT_EQ(doc.Records(), (std::vector<PATHREC *>{a}));
    EXPECT_EQ(doc.Plane(), before);
    EXPECT_EQ(dirty.left, 55);
    EXPECT_EQ(dirty.top, 55);
    EXPECT_EQ(dirty.right, 76);
    EXPECT_EQ(dirty.bottom, 76);
}

TEST(DeleteLink, WithNothingSelectedReturnsOneAndAnEmptyRectangle)
{
    DOCUMENT doc;
    doc.Add(MakeBox(10, 10, 50, 50));
    tagRECT dirty = {1, 2, 3, 4};
    EXPECT_EQ(ZrPathDeleteLink(doc.table, doc.view, &dirty), 1);
    EXPECT_TRUE(IsRectEmpty(&dirty));
    EXPECT_EQ(ZrPathDeleteLink(nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(doc.Records().size(), 1u);
}
