#include "frame/faults.h"
#include "store/store.h"
#include "support/document.h"

#include <cstring>
#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr ZRPOINTFX Pt(int x, int y)
{
    return {x * 65536, y * 65536};
}

constexpr ZRPOINTFX corners[] = {Pt(0, 1), Pt(10, 2), Pt(3, 20), Pt(14, 25)};
constexpr ZRPOINTFX sides[] = {Pt(0, 1), Pt(3, 2), Pt(6, 3), Pt(9, 4), Pt(1, 20), Pt(4, 21), Pt(7, 22), Pt(11, 23)};

} // namespace

TEST(Envelope, ABilinearFrameIsARingOfFiveNodesBehindTheJoinChain)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    PATHREC *b = doc.Add(MakeBox(2, 2, 8, 8));
    ChainLink(joinChain, a, b);
    EXPECT_EQ(ZrPathAddBiLinearEnvelope(a, corners), 1);
    PATHREC *frame = b->nextPath;
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->prevPath, b);
    EXPECT_EQ(frame->flags, PATHREC_ENVELOPE);
    EXPECT_EQ(frame->prevJoin, nullptr);
    EXPECT_EQ(ZrPathGetEnvelopeType(frame), 5);
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, frame), RecordBlockSize(5));
    EXPECT_EQ(NodesOf(frame),
              (std::vector<NODEVALUE>{{0x8006, 0, 1}, {0x8002, 10, 2}, {0x8002, 14, 25}, {0x8002, 3, 20}, {3, 0, 1}}));
}

TEST(Envelope, ABicubicFrameIsARingOfNineNodes)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    EXPECT_EQ(ZrPathAddBiBezierEnvelope(a, sides), 1);
    PATHREC *frame = a->nextPath;
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(ZrPathGetEnvelopeType(frame), 9);
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, frame), RecordBlockSize(9));
    EXPECT_EQ(NodesOf(frame), (std::vector<NODEVALUE>{{0x8006, 0, 1},
                                                      {0x8004, 3, 2},
                                                      {4, 6, 3},
                                                      {4, 9, 4},
                                                      {0x8002, 11, 23},
                                                      {0x8004, 7, 22},
                                                      {4, 4, 21},
                                                      {4, 1, 20},
                                                      {3, 0, 1}}));
}

TEST(Envelope, ABicubicFrameDeselectsItsPathsFromTheHeadOfTheTableChain)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    PATHREC *b = doc.Add(MakeBox(2, 2, 8, 8));
    PATHREC *c = doc.Add(MakeBox(4, 4, 6, 6));
    ChainLink(joinChain, a, b);
    doc.Select({a, b, c});
    EXPECT_EQ(ZrPathAddBiBezierEnvelope(b, sides), 0) << "the box behind the chain has no room for nine nodes";
    EXPECT_EQ(a->flags, PATHREC_SELECTED);
    EXPECT_EQ(a->nextSel, b);

    ChainLink(joinChain, b, c);
    EXPECT_EQ(ZrPathAddBiBezierEnvelope(c, sides), 1);
    for (PATHREC *record : {a, b, c}) {
        EXPECT_EQ(record->flags, 0u);
        EXPECT_EQ(record->prevSel, nullptr);
        EXPECT_EQ(record->nextSel, nullptr);
    }
    EXPECT_EQ(c->nextPath->flags, PATHREC_ENVELOPE);
}

TEST(Envelope, TheSelectedChainClosesOverThePathsUnderABicubicFrame)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    PATHREC *b = doc.Add(MakeBox(2, 2, 8, 8));
    PATHREC *c = doc.Add(MakeBox(4, 4, 6, 6));
    PATHREC *d = doc.Add(MakeCircle(5, 5, 5)); /* has room for the frame */
    PATHREC *e = doc.Add(MakeBox(4, 4, 6, 6));
    ChainLink(joinChain, a, c);
    doc.Select({a, b, c, e});
    EXPECT_EQ(ZrPathAddBiBezierEnvelope(a, sides), 1);
    EXPECT_EQ(d->flags, PATHREC_ENVELOPE);
    EXPECT_EQ(b->prevSel, nullptr);
    EXPECT_EQ(b->nextSel, e);
    EXPECT_EQ(e->prevSel, b);
    EXPECT_EQ(c->prevSel, nullptr);
    EXPECT_EQ(c->nextSel, nullptr);
}

TEST(Envelope, ABilinearFrameLeavesTheSelectionOfItsPaths)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    doc.Select({a});
    EXPECT_EQ(ZrPathAddBiLinearEnvelope(a, corners), 1);
    EXPECT_EQ(a->flags, PATHREC_SELECTED);
}

TEST(Envelope, TheRecordBehindTheChainIsTakenWhicheverItIs)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    PATHREC *b = doc.Add(MakeCircle(2, 2, 8));
    EXPECT_EQ(ZrPathAddBiBezierEnvelope(a, sides), 1);
    EXPECT_EQ(a->nextPath, b);
    EXPECT_EQ(b->nodeCount, 9u);
    EXPECT_EQ(ZrPathAddBiLinearEnvelope(a, corners), 1);
    EXPECT_EQ(b->nodeCount, 5u);
}

TEST(Envelope, ARecordWithoutRoomIsRefusedBeforeAnythingIsWritten)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    doc.Add(MakePath({{6, 1, 1}, {2, 2, 2}, {2, 3, 3}, {2, 4, 4}}));
    EXPECT_EQ(ZrPathAddBiLinearEnvelope(a, corners), 0);
    EXPECT_EQ(a->nextPath->nodeCount, 4u);
    EXPECT_EQ(a->nextPath->flags, 0u);
    EXPECT_EQ(a->nextPath->nodes[0].type, 6);
}

TEST(Envelope, AGetThenAddLeavesTheNodesAsTheyWere)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    ZRPOINTFX read[8];

    ZrPathAddBiBezierEnvelope(a, sides);
    std::vector<NODEVALUE> before = NodesOf(a->nextPath);
    EXPECT_EQ(ZrPathGetBiBezierEnvelope(a->nextPath, read), 1);
    EXPECT_EQ(memcmp(read, sides, sizeof sides), 0);
    ZrPathAddBiBezierEnvelope(a, read);
    EXPECT_EQ(NodesOf(a->nextPath), before);

    ZrPathAddBiLinearEnvelope(a, corners);
    before = NodesOf(a->nextPath);
    EXPECT_EQ(ZrPathGetBiLinearEnvelope(a->nextPath, read), 1);
    EXPECT_EQ(memcmp(read, corners, sizeof corners), 0);
    ZrPathAddBiLinearEnvelope(a, read);
    EXPECT_EQ(NodesOf(a->nextPath), before);
}

TEST(Envelope, TheGettersRefuseNullUnselectedAndTooShort)
{
    ZRPOINTFX read[8];
    PATHREC *path = MakePath({{6, 0, 0}, {2, 1, 1}, {2, 2, 2}});
    EXPECT_EQ(ZrPathGetBiLinearEnvelope(nullptr, read), 0);
    EXPECT_EQ(ZrPathGetBiBezierEnvelope(nullptr, read), 0);
    path->flags = PATHREC_SELECTED;
    EXPECT_EQ(ZrPathGetBiLinearEnvelope(path, nullptr), 0);
    EXPECT_EQ(ZrPathGetBiLinearEnvelope(path, read), 0);
    EXPECT_EQ(ZrPathGetBiBezierEnvelope(path, read), 0);
    ZrPathDeletePtr(path, 0);

    /* The ring less its closing node is enough. */
    for (const uint32_t nodes : {3u, 4u, 7u, 8u}) {
        path = MakeCircle(0, 0, 5);
        path->flags = PATHREC_SELECTED;
        path->nodeCount = nodes;
        EXPECT_EQ(ZrPathGetBiLinearEnvelope(path, read), nodes >= 4);
        EXPECT_EQ(ZrPathGetBiBezierEnvelope(path, read), nodes >= 8);
        ZrPathDeletePtr(path, 0);
    }

    path = MakeCircle(0, 0, 5);
    EXPECT_EQ(ZrPathGetBiLinearEnvelope(path, read), 0);
    EXPECT_EQ(ZrPathGetBiBezierEnvelope(path, read), 0);
    path->flags = PATHREC_SELECTED;
    EXPECT_EQ(ZrPathGetBiBezierEnvelope(path, read), 1);
    ZrPathDeletePtr(path, 0);
}

TEST(Envelope, NullIsRefusedEverywhere)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    EXPECT_EQ(ZrPathAddBiLinearEnvelope(nullptr, corners), 0);
    EXPECT_EQ(ZrPathAddBiBezierEnvelope(nullptr, sides), 0);
    EXPECT_EQ(ZrPathAddBiLinearEnvelope(a, nullptr), 0);
    EXPECT_EQ(ZrPathAddBiBezierEnvelope(a, nullptr), 0);
    EXPECT_EQ(ZrPathGetEnvelopeType(nullptr), 0);
}

TEST(Envelope, WithoutMemoryNothingIsAdded)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    doc.Select({a});
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(ZrPathAddBiLinearEnvelope(a, corners), 0);
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(ZrPathAddBiBezierEnvelope(a, sides), 0);
    FaultSet(ALLOC_PATHHEAP, 0);
    EXPECT_EQ(a->nextPath, nullptr);
    EXPECT_EQ(a->flags, PATHREC_SELECTED);
}
