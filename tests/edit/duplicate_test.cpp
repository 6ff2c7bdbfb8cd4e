#include "frame/faults.h"
#include "store/store.h"
#include "support/document.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

TEST(Duplicate, ACopyFifteenViewPixelsOffIsTheSelection)
{
    DOCUMENT doc(200, 200, 2);
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    PATHREC *b = doc.Add(MakeBox(50, 50, 60, 60));
    a->primitive = ZRPRIM_RECTANGLE;
    doc.Select({a});
    tagRECT dirty = {};
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, &dirty), 1);
    PATHREC *copy = b->nextPath;
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(doc.Selected(), copy);
    EXPECT_EQ(copy->flags, PATHREC_SELECTED);
    EXPECT_EQ(copy->primitive, ZRPRIM_RECTANGLE);
    EXPECT_EQ(a->flags, 0u);
    EXPECT_EQ(NodesOf(copy)[0], (NODEVALUE{6, 17.5, 17.5}));
    EXPECT_EQ(NodesOf(a)[0], (NODEVALUE{6, 10, 10}));
    EXPECT_EQ(BrokenInvariant(doc), "");
}

TEST(Duplicate, TheCopyIsDrawnIntoThePlane)
{
    DOCUMENT doc(200, 200, 1, 7, 9);
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    doc.Select({a});
    doc.Draw();
    tagRECT dirty = {};
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, &dirty), 1);
    EXPECT_EQ(doc.Plane(), doc.FreshPlane());
    EXPECT_LE(dirty.left, 7 + 25 - 2);
    EXPECT_GE(dirty.right, 7 + 36 + 2);
    EXPECT_LT(dirty.right, 7 + 45);
    EXPECT_GT(dirty.left, 7 + 15);
}

TEST(Duplicate, TheRectangleIsClippedToTheView)
{
    DOCUMENT doc(40, 40, 1, 7, 9);
    PATHREC *a = doc.Add(MakeBox(-30, -30, 60, 60));
    doc.Select({a});
    tagRECT dirty = {};
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, &dirty), 1);
    EXPECT_TRUE(IsRectEmpty(&dirty)) << "the outline passes outside the view";

    doc.Select({a});
    ZrPathMovePathsByPtfx(a, 0, 40 * 65536); /* its copy's upper side crosses the view at row 25 */
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, &dirty), 1);
    EXPECT_EQ(dirty.left, 7);
    EXPECT_EQ(dirty.right, 47);
    EXPECT_GE(dirty.top, 9);
    EXPECT_LE(dirty.bottom, 49);
}

TEST(Duplicate, JoinLinksStandWhereBothEndsWereCopied)
{
    DOCUMENT doc;
    std::vector<PATHREC *> p;
    for (int i = 0; i < 6; i++) p.push_back(doc.Add(MakeBox(i, i, i + 5, i + 5)));
    ChainLink(joinChain, p[0], p[2]);
    ChainLink(joinChain, p[2], p[4]);
    ChainLink(joinChain, p[1], p[3]);
    ChainLink(joinChain, p[3], p[5]);
    doc.Select({p[0], p[1], p[2], p[4], p[5]}); /* 3 stays, so 1 - 3 - 5 is cut twice */
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, nullptr), 1);
    const std::vector<PATHREC *> all = doc.Records();
    ASSERT_EQ(all.size(), 11u);
    EXPECT_EQ(BrokenInvariant(doc), "");
    PATHREC *const *copy = &all[6]; /* of 0, 1, 2, 4, 5 */
    EXPECT_EQ(copy[0]->nextJoin, copy[2]);
    EXPECT_EQ(copy[2]->nextJoin, copy[3]);
    EXPECT_EQ(copy[3]->nextJoin, nullptr);
    EXPECT_EQ(copy[1]->nextJoin, nullptr);
    EXPECT_EQ(copy[1]->prevJoin, nullptr);
    EXPECT_EQ(copy[4]->prevJoin, nullptr);
    EXPECT_EQ(p[1]->nextJoin, p[3]);
    EXPECT_EQ(p[0]->nextSel, nullptr);
}

TEST(Duplicate, ANodeEditedSourceLosesItsMarksAndTheCopyKeepsThem)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    doc.Select({a});
    a->flags = PATHREC_NODEEDIT;
    a->nodes[1].type |= PATHNODE_SELECTED;
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, nullptr), 1);
    EXPECT_EQ(a->flags, 0u);
    EXPECT_EQ(a->nodes[1].type, 2);
    EXPECT_EQ(a->nextPath->flags, PATHREC_NODEEDIT);
    EXPECT_EQ(a->nextPath->nodes[1].type, 0x8002);
}

TEST(Duplicate, BlocksAreCopiedWhole)
{
    DOCUMENT doc;
    PATHREC *a = ZrPathCreate();
    const ZRPOINTFX point = {65536, 65536};
    ZrPathAddPoint(&a, &point, 6);
    doc.Add(a);
    doc.Select({a});
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, nullptr), 1);
    EXPECT_EQ(RecordRoom(a->nextPath), 100u);
}

TEST(Duplicate, NothingSelectedIsRefused)
{
    DOCUMENT doc;
    EXPECT_EQ(ZrPathDuplicate(nullptr, nullptr, doc.view, nullptr), 0);
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, nullptr), 0);
    doc.Add(MakeBox(0, 0, 5, 5));
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, doc.view, nullptr), 0);
    EXPECT_EQ(doc.Records().size(), 1u);
}

TEST(Duplicate, WithoutAViewTheCopyStandsWhereItsSourceStands)
{
    DOCUMENT doc;
    doc.Select({doc.Add(MakeBox(10, 10, 20, 20))});
    tagRECT dirty = {1, 2, 3, 4};
    EXPECT_EQ(ZrPathDuplicate(nullptr, doc.table, nullptr, &dirty), 1);
    EXPECT_EQ(NodesOf(doc.Selected())[0].x, 10);
    EXPECT_TRUE(IsRectEmpty(&dirty));
}

TEST(Duplicate, EveryFailedAllocationLeavesTheSourcesAsTheyWere)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    PATHREC *b = doc.Add(MakeBox(30, 30, 40, 40));
    ChainLink(joinChain, a, b);
    doc.Select({a, b});
    for (const ALLOCATOR allocator : {ALLOC_PATHHEAP, ALLOC_BUF})
        for (int64_t n = 1;; n++) {
            const int64_t live[] = {FaultLiveBlocks(ALLOC_PATHHEAP), FaultLiveBlocks(ALLOC_BUF)};
            FaultSet(allocator, n);
            const int32_t result = ZrPathDuplicate(nullptr, doc.table, doc.view, nullptr);
            const int struck = FaultStruck();
            FaultSet(allocator, 0);
            EXPECT_EQ(BrokenInvariant(doc), "");
            EXPECT_EQ(FaultLiveBlocks(ALLOC_BUF), live[1]);
            if (!struck) {
                EXPECT_EQ(result, 1);
                break;
            }
            EXPECT_EQ(result, 0);
            EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), live[0]);
        }
}

TEST(DuplicatePtr, CopiesTheWholeChainFromItsHeadWithAllThreeChains)
{
    DOCUMENT doc;
    std::vector<PATHREC *> p;
    for (int i = 0; i < 5; i++) p.push_back(doc.Add(MakeBox(i, i, i + 5, i + 5)));
    ChainLink(joinChain, p[1], p[3]);
    ChainLink(joinChain, p[3], p[4]);
    doc.Select({p[0], p[2], p[4]});
    PATHREC *copy = nullptr;
    EXPECT_EQ(ZrPathDuplicatePtr(p[3], &copy), 1);
    ASSERT_NE(copy, nullptr);
    std::vector<PATHREC *> c;
    for (PATHREC *record = copy; record; record = record->nextPath) c.push_back(record);
    ASSERT_EQ(c.size(), 5u);
    EXPECT_EQ(copy->prevPath, nullptr);
    EXPECT_EQ(c[1]->nextJoin, c[3]);
    EXPECT_EQ(c[3]->nextJoin, c[4]);
    EXPECT_EQ(c[4]->prevJoin, c[3]);
    EXPECT_EQ(c[0]->nextSel, c[2]);
    EXPECT_EQ(c[2]->nextSel, c[4]);
    EXPECT_EQ(c[4]->flags, PATHREC_SELECTED);
    for (size_t i = 0; i < 5; i++) EXPECT_EQ(NodesOf(c[i]), NodesOf(p[i]));
    EXPECT_EQ(BrokenInvariant(doc), "");
    ZrPathDeletePtr(copy, 0);
}

TEST(DuplicatePtr, NullIsRefused)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    PATHREC *copy = a;
    EXPECT_EQ(ZrPathDuplicatePtr(nullptr, &copy), 0);
    EXPECT_EQ(copy, a);
    EXPECT_EQ(ZrPathDuplicatePtr(a, nullptr), 0);
}

TEST(DuplicatePtr, AFailureAtTheLastRecordHasAttemptedTheWholeChain)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    doc.Add(MakeBox(30, 30, 40, 40));
    const int64_t live[] = {FaultLiveBlocks(ALLOC_PATHHEAP), FaultLiveBlocks(ALLOC_BUF)};
    const struct {
        ALLOCATOR allocator;
        int64_t n;
        int32_t want;
    } cases[] = {{ALLOC_BUF, 1, 0}, {ALLOC_PATHHEAP, 1, 0}, {ALLOC_PATHHEAP, 2, 1}};
    for (const auto &c : cases) {
        PATHREC *copy = a;
        FaultSet(c.allocator, c.n);
        EXPECT_EQ(ZrPathDuplicatePtr(a, &copy), c.want);
        EXPECT_TRUE(FaultStruck());
        FaultSet(c.allocator, 0);
        EXPECT_EQ(copy, nullptr);
        EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), live[0]);
        EXPECT_EQ(FaultLiveBlocks(ALLOC_BUF), live[1]);
    }
}
