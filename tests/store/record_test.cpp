/* record_test.cpp - path records: growth of the block, chains, the exports that build and free them. */
#include "frame/faults.h"
#include "store/store.h"
#include "support/shapes.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace zr32;
using zr32test::MakePath;

namespace {

struct Record : testing::Test {
    int64_t before = 0;

    void SetUp() override
    {
        ZrPathInit();
        FaultSet(ALLOC_PATHHEAP, 0);
        before = FaultLiveBlocks(ALLOC_PATHHEAP);
    }

    void TearDown() override
    {
        FaultSet(ALLOC_PATHHEAP, 0);
        EXPECT_EQ(before, FaultLiveBlocks(ALLOC_PATHHEAP)) << "leak";
    }
};

size_t BlockSize(const PATHREC *path)
{
    return PathHeapSize(PathHeap(), heapNoSerialize, path);
}

TEST_F(Record, BlockOfNNodesHasTwoSpareBytes)
{
    EXPECT_EQ(recordHeaderSize + 2, RecordBlockSize(0));
    EXPECT_EQ(recordHeaderSize + 1002, RecordBlockSize(100));
}

TEST_F(Record, NewRecordIsEmptyWithRoomForAHundred)
{
    PATHREC *path = ZrPathCreate();
    ASSERT_NE(nullptr, path);
    EXPECT_EQ(RecordBlockSize(100), BlockSize(path));
    EXPECT_EQ(100u, RecordRoom(path));
    const uint8_t *bytes = reinterpret_cast<const uint8_t *>(path);
    for (size_t i = 0; i < BlockSize(path); i++) ASSERT_EQ(0, bytes[i]) << i;
    EXPECT_EQ(1, ZrPathDeletePtr(path, 0));
}

TEST_F(Record, TheHundredAndFirstNodeResizesOnceToTwoHundred)
{
    PATHREC *path = ZrPathCreate();
    PATHNODE *node = nullptr;
    for (uint32_t i = 1; i <= 200; i++) {
        ASSERT_EQ(1, PathReserveNodes(&path, &node, 1));
        EXPECT_EQ(&path->nodes[i - 1], node);
        node->x = static_cast<ZRFIXED>(i);
        EXPECT_EQ(RecordBlockSize(i <= 100 ? 100 : 200), BlockSize(path)) << i;
    }
    for (uint32_t i = 1; i <= 200; i++) EXPECT_EQ(static_cast<ZRFIXED>(i), +path->nodes[i - 1].x);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, GrowthFollowsTheCountAndNotTheBlock)
{
    const struct {
        const char *name;
        uint32_t have;
        uint32_t add;
        uint32_t room;
    } cases[] = {
        {"none", 0, 0, 100},
        {"up to a hundred", 0, 100, 100},
        {"250 at once", 0, 250, 300},
        {"one past a hundred", 100, 1, 200},
        {"from 101 to 200", 101, 99, 200},
        {"150 and 51", 150, 51, 300},
        {"150 and 150", 150, 150, 300},
        {"1 and 1000", 1, 1000, 1100},
    };
    for (const auto &c : cases) {
        PATHREC *path = ZrPathCreate();
        PATHNODE *node = nullptr;
        ASSERT_EQ(1, PathReserveNodes(&path, &node, c.have)) << c.name;
        ASSERT_EQ(1, PathReserveNodes(&path, &node, c.add)) << c.name;
        EXPECT_EQ(RecordBlockSize(c.room), BlockSize(path)) << c.name;
        EXPECT_EQ(c.have + c.add, path->nodeCount) << c.name;
        EXPECT_EQ(&path->nodes[c.have], node) << c.name;
        ZrPathDeletePtr(path, 0);
    }
}

TEST_F(Record, BlockLargerThanTheRuleBelievesGetsTheRulesSize)
{
    PATHREC *path = RecordAlloc(500);
    PATHNODE *node = nullptr;
    path->nodeCount = 50;
    ASSERT_EQ(1, PathReserveNodes(&path, &node, 60));
    EXPECT_EQ(RecordBlockSize(200), BlockSize(path));
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, AddingToAPurgedRecordStaysInsideABlock)
{
    PATHREC *path = MakePath({{6, 1, 2}, {2, 3, 4}});
    PATHNODE *node = nullptr;
    ASSERT_EQ(1, PathReserveNodes(&path, &node, 3));
    EXPECT_LE(5u, RecordRoom(path));
    for (int i = 0; i < 3; i++) node[i] = {PATHNODE_LINE, 0, 0};
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, FailedGrowthLeavesTheRecord)
{
    PATHREC *path = ZrPathCreate();
    PATHREC *const block = path;
    PATHNODE *node = nullptr;
    ASSERT_EQ(1, PathReserveNodes(&path, &node, 100));
    PATHNODE *added = node;
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(0, PathReserveNodes(&path, &added, 1));
    EXPECT_TRUE(FaultStruck());
    EXPECT_EQ(block, path);
    EXPECT_EQ(100u, path->nodeCount);
    EXPECT_EQ(node, added);
    EXPECT_EQ(RecordBlockSize(100), BlockSize(path));
    EXPECT_EQ(1, PathReserveNodes(&path, &added, 1)) << "and the next attempt succeeds";
    EXPECT_EQ(RecordBlockSize(200), BlockSize(path));
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, CountsBeyondAnyBlockAreRefused)
{
    PATHREC *path = ZrPathCreate();
    PATHNODE *node = nullptr;
    EXPECT_EQ(0, PathReserveNodes(&path, &node, 0xFFFFFFFF));
    path->nodeCount = 0xFFFFFFFF;
    EXPECT_EQ(0, PathReserveNodes(&path, &node, 1));
    path->nodeCount = 0;
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, AddPointAppendsUpToAHundredNodes)
{
    PATHREC *path = ZrPathCreate();
    PATHREC *const block = path;
    for (int i = 0; i < 100; i++) {
        const ZRPOINTFX point = {i, -i};
        ASSERT_EQ(1, ZrPathAddPoint(&path, &point, static_cast<uint16_t>(i == 0 ? 6 : 0x8002)));
    }
    EXPECT_EQ(block, path);
    EXPECT_EQ(100u, path->nodeCount);
    EXPECT_EQ(6, +path->nodes[0].type);
    EXPECT_EQ(0x8002, +path->nodes[99].type);
    EXPECT_EQ(99, +path->nodes[99].x);
    EXPECT_EQ(-99, +path->nodes[99].y);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, AddPointPastTheBlockNeverLeavesTheCallersPointerDangling)
{
    PATHREC *path = ZrPathCreate();
    PATHREC *const block = path;
    const ZRPOINTFX point = {1, 2};
    for (int i = 0; i < 150; i++) EXPECT_EQ(1, ZrPathAddPoint(&path, &point, 2));
    EXPECT_EQ(block, path);
    EXPECT_LE(100u, path->nodeCount);
    EXPECT_LE(path->nodeCount, RecordRoom(path));
    EXPECT_EQ(1, ZrPathDeletePtr(path, 0));
}

TEST_F(Record, AddPointOfNullIsZero)
{
    PATHREC *path = nullptr;
    const ZRPOINTFX point = {1, 2};
    EXPECT_EQ(0, ZrPathAddPoint(&path, &point, 2));
    EXPECT_EQ(0, ZrPathAddPoint(nullptr, &point, 2));
    EXPECT_EQ(nullptr, path);
}

TEST_F(Record, PurgeShrinksTheBlockWhereItStands)
{
    PATHREC *path = ZrPathCreate();
    PATHREC *const block = path;
    const ZRPOINTFX point = {1, 2};
    for (int i = 0; i < 10; i++) ZrPathAddPoint(&path, &point, 2);
    EXPECT_EQ(1, ZrPathPurge(&path));
    EXPECT_EQ(block, path);
    EXPECT_EQ(recordHeaderSize + 102, BlockSize(path));
    EXPECT_EQ(10u, path->nodeCount);
    EXPECT_EQ(2, +path->nodes[9].y);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, PurgeFailsForNullAndWithoutMemory)
{
    PATHREC *path = nullptr;
    EXPECT_EQ(0, ZrPathPurge(&path));
    EXPECT_EQ(0, ZrPathPurge(nullptr));
    path = ZrPathCreate();
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(0, ZrPathPurge(&path));
    EXPECT_EQ(RecordBlockSize(100), BlockSize(path));
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, PurgeOfACountBeyondTheBlockLeavesTheBlock)
{
    PATHREC *path = ZrPathCreate();
    for (const uint32_t count : {101u, 0xFFFFFFFFu}) {
        path->nodeCount = count;
        EXPECT_EQ(0, ZrPathPurge(&path)) << count;
        EXPECT_EQ(RecordBlockSize(100), BlockSize(path));
    }
    path->nodeCount = 100;
    EXPECT_EQ(1, ZrPathPurge(&path));
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, CreateWithoutMemoryIsNull)
{
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(nullptr, ZrPathCreate());
}

TEST_F(Record, TracedOpenPathIsClosedByALine)
{
    const R2VPOINT points[] = {{1.5, 2, 2, 0}, {3, 4, 4, 0}, {5, -6.25, 2, 0}};
    PATHREC *path = ZrPathR2VToZrPath(3, points);
    ASSERT_NE(nullptr, path);
    EXPECT_EQ(4u, path->nodeCount);
    EXPECT_EQ(RecordBlockSize(4), BlockSize(path));
    EXPECT_EQ(0x80000000u, path->flags);
    const uint16_t types[] = {6, 4, 2, 3};
    for (int i = 0; i < 4; i++) EXPECT_EQ(types[i], +path->nodes[i].type) << i;
    EXPECT_EQ(0x18000, +path->nodes[0].x);
    EXPECT_EQ(-0x64000, +path->nodes[2].y);
    EXPECT_EQ(+path->nodes[0].x, +path->nodes[3].x);
    EXPECT_EQ(+path->nodes[0].y, +path->nodes[3].y);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, TracedClosedPathGetsTheClosingBitOnItsLastNode)
{
    const struct {
        uint32_t last;
        uint16_t want;
    } cases[] = {{4, 5}, {2, 3}, {6, 0}, {0x8004, 0}, {0x10002, 0}};
    for (const auto &c : cases) {
        const R2VPOINT points[] = {{1, 2, 2, 0}, {3, 4, 0x12004, 0}, {5, 6, 4, 0}, {1, 2, c.last, 0}};
        PATHREC *path = ZrPathR2VToZrPath(4, points);
        ASSERT_NE(nullptr, path);
        EXPECT_EQ(4u, path->nodeCount);
        EXPECT_EQ(0x2004, +path->nodes[1].type) << "the element's own type, low 16 bits";
        EXPECT_EQ(c.want, +path->nodes[3].type) << c.last;
        ZrPathDeletePtr(path, 0);
    }
}

TEST_F(Record, TracedPointsThatEndBesideTheirStartInOneDirectionOnlyAreClosed)
{
    for (const R2VPOINT &last : {R2VPOINT{1, 9, 2, 0}, R2VPOINT{9, 2, 2, 0}}) {
        const R2VPOINT points[] = {{1, 2, 2, 0}, {5, 5, 2, 0}, last};
        PATHREC *path = ZrPathR2VToZrPath(3, points);
        ASSERT_EQ(4u, path->nodeCount);
        EXPECT_EQ(PATHNODE_LINE | PATHNODE_CLOSING, path->nodes[3].type);
        ZrPathDeletePtr(path, 0);
    }
}

TEST_F(Record, ABlockSmallerThanAHeaderHasNoRoom)
{
    void *block = PathHeapAlloc(PathHeap(), heapZero, recordHeaderSize - 1);
    EXPECT_EQ(0u, RecordRoom(static_cast<PATHREC *>(block)));
    PathHeapFree(PathHeap(), heapNoSerialize, block);
}

TEST_F(Record, TracedPathsOfNoneAndOnePoint)
{
    const R2VPOINT point = {1, 2, 4, 0};
    EXPECT_EQ(nullptr, ZrPathR2VToZrPath(0, &point));
    EXPECT_EQ(nullptr, ZrPathR2VToZrPath(3, nullptr));
    EXPECT_EQ(nullptr, ZrPathR2VToZrPath(0xFFFFFFFF, &point));
    for (double x : {1.0, static_cast<double>(NAN)}) {
        const R2VPOINT one = {x, 2, 4, 0};
        PATHREC *path = ZrPathR2VToZrPath(1, &one);
        ASSERT_NE(nullptr, path);
        EXPECT_EQ(1u, path->nodeCount);
        EXPECT_EQ(6, +path->nodes[0].type);
        ZrPathDeletePtr(path, 0);
    }
}

TEST_F(Record, TracedPathWithoutMemoryIsNull)
{
    const R2VPOINT points[] = {{1, 2, 2, 0}, {3, 4, 2, 0}};
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(nullptr, ZrPathR2VToZrPath(2, points));
}

TEST_F(Record, ChainingAnArrayLinksTableAndJoinChain)
{
    PATHREC *paths[] = {ZrPathCreate(), ZrPathCreate(), ZrPathCreate()};
    EXPECT_EQ(paths[0], ZrPathChainZrPath(3, paths));
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(i > 0 ? paths[i - 1] : nullptr, paths[i]->prevPath);
        EXPECT_EQ(i > 0 ? paths[i - 1] : nullptr, paths[i]->prevJoin);
        EXPECT_EQ(i < 2 ? paths[i + 1] : nullptr, paths[i]->nextPath);
        EXPECT_EQ(i < 2 ? paths[i + 1] : nullptr, paths[i]->nextJoin);
        EXPECT_EQ(nullptr, paths[i]->nextSel);
    }
    ZrPathDeletePtr(paths[0], 0);
}

TEST_F(Record, ChainingOneRecordLinksNothing)
{
    PATHREC *path = ZrPathCreate();
    EXPECT_EQ(path, ZrPathChainZrPath(1, &path));
    EXPECT_EQ(nullptr, path->nextPath);
    EXPECT_EQ(nullptr, path->prevJoin);
    EXPECT_EQ(nullptr, ZrPathChainZrPath(0, &path));
    EXPECT_EQ(nullptr, ZrPathChainZrPath(1, nullptr));
    PATHREC *holed[] = {path, nullptr};
    EXPECT_EQ(nullptr, ZrPathChainZrPath(2, holed));
    EXPECT_EQ(nullptr, path->nextPath);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Record, ChainPathsStoresOrAppends)
{
    PATHREC *a[] = {ZrPathCreate(), ZrPathCreate()};
    PATHREC *b[] = {ZrPathCreate(), ZrPathCreate()};
    ZrPathChainZrPath(2, a);
    ZrPathChainZrPath(2, b);
    PATHREC *chain = nullptr;
    EXPECT_EQ(0, ZrPathChainPaths(&chain, nullptr));
    EXPECT_EQ(nullptr, chain);
    EXPECT_EQ(1, ZrPathChainPaths(&chain, a[1]));
    EXPECT_EQ(a[1], chain) << "an empty chain takes the record as it stands";
    EXPECT_EQ(1, ZrPathChainPaths(&chain, b[1]));
    EXPECT_EQ(a[1], chain);
    EXPECT_EQ(b[0], a[1]->nextPath) << "the whole chain of the added record, from its head";
    EXPECT_EQ(a[1], b[0]->prevPath);
    EXPECT_EQ(nullptr, a[1]->nextJoin) << "join chains stay";
    EXPECT_EQ(0, ZrPathChainPaths(nullptr, b[0]));
    ZrPathDeletePtr(a[0], 0);
}

TEST_F(Record, ChainPathsOfItsOwnRecordMakesNoRing)
{
    PATHREC *a[] = {ZrPathCreate(), ZrPathCreate()};
    ZrPathChainZrPath(2, a);
    PATHREC *chain = a[0];
    EXPECT_EQ(1, ZrPathChainPaths(&chain, a[1]));
    EXPECT_EQ(nullptr, a[1]->nextPath);
    ZrPathDeletePtr(a[0], 0);
}

TEST_F(Record, LonePrimitiveIsAloneAlsoWithItsEnvelope)
{
    EXPECT_EQ(0, IsOnlyPrimitive(nullptr));
    PATHREC *paths[] = {ZrPathCreate(), ZrPathCreate()};
    EXPECT_EQ(0, IsOnlyPrimitive(paths[0]));
    paths[0]->primitive = 2;
    EXPECT_EQ(1, IsOnlyPrimitive(paths[0]));
    ZrPathChainZrPath(2, paths);
    EXPECT_EQ(0, IsOnlyPrimitive(paths[0])) << "an ordinary path follows";
    paths[1]->flags = 0x88800000;
    EXPECT_EQ(1, IsOnlyPrimitive(paths[0]));
    paths[1]->flags = 0x88801000;
    EXPECT_EQ(0, IsOnlyPrimitive(paths[0])) << "recognised by the exact value";
    ZrPathDeletePtr(paths[0], 0);
}

TEST_F(Record, DeleteFreesWhatLiesBehindOnTheChosenChain)
{
    std::vector<PATHREC *> paths;
    for (int i = 0; i < 4; i++) paths.push_back(ZrPathCreate());
    ZrPathChainZrPath(4, paths.data());
    ChainLink(selectedChain, paths[1], paths[3]);
    const int64_t all = FaultLiveBlocks(ALLOC_PATHHEAP);
    EXPECT_EQ(1, ZrPathDeletePtr(paths[1], 1));
    EXPECT_EQ(all - 2, FaultLiveBlocks(ALLOC_PATHHEAP)) << "1 and 3 are gone, 0 and 2 live";
    EXPECT_EQ(0u, paths[2]->nodeCount);
    paths[2]->nextPath = nullptr;
    paths[0]->nextPath = paths[2];
    EXPECT_EQ(1, ZrPathDeletePtr(paths[0], 0));
}

TEST_F(Record, DeleteFromTheMiddleLeavesWhatStandsInFront)
{
    PATHREC *paths[] = {ZrPathCreate(), ZrPathCreate(), ZrPathCreate()};
    ZrPathChainZrPath(3, paths);
    const int64_t all = FaultLiveBlocks(ALLOC_PATHHEAP);
    EXPECT_EQ(1, ZrPathDeletePtr(paths[1], 0));
    EXPECT_EQ(all - 2, FaultLiveBlocks(ALLOC_PATHHEAP));
    EXPECT_NE(nullptr, paths[0]->nextPath) << "nothing is unlinked";
    paths[0]->nextPath = nullptr;
    ZrPathDeletePtr(paths[0], 0);
}

TEST_F(Record, DeleteRefusesNullAndABlockOfNoBytes)
{
    EXPECT_EQ(0, ZrPathDeletePtr(nullptr, 0));
    void *block = PathHeapAlloc(PathHeap(), heapZero, 0);
    EXPECT_EQ(0, ZrPathDeletePtr(static_cast<PATHREC *>(block), 0));
    PathHeapFree(PathHeap(), heapNoSerialize, block);
}

TEST_F(Record, AMillionRecordsAreFreedWithoutTheStack)
{
    PATHREC *head = RecordAlloc(0);
    PATHREC *tail = head;
    for (int i = 1; i < 1000000; i++) {
        PATHREC *next = RecordAlloc(0);
        ChainLink(tableChain, tail, next);
        tail = next;
    }
    EXPECT_EQ(tail, PathChainLast(head));
    EXPECT_EQ(head, PathChainFirst(tail));
    EXPECT_EQ(1, ZrPathDeletePtr(head, 0));
}

TEST_F(Record, ChainEndsOfNullAreNull)
{
    EXPECT_EQ(nullptr, PathChainFirst(nullptr));
    EXPECT_EQ(nullptr, PathChainLast(nullptr));
}

TEST_F(Record, SelectionIsReadFromBit31Alone)
{
    const struct {
        uint32_t flags;
        int selected;
        int nodeEdit;
    } cases[] = {{0, 0, 0},          {0x80000000, 1, 0}, {0x88000000, 1, 1}, {0x88800000, 1, 1},
                 {0x08000000, 0, 0}, {0x80001000, 1, 0}, {0x1000, 0, 0},     {0x88001000, 1, 1}};
    PATHREC *path = ZrPathCreate();
    for (const auto &c : cases) {
        path->flags = c.flags;
        EXPECT_EQ(c.selected, PathIsSelected(path)) << std::hex << c.flags;
        EXPECT_EQ(c.nodeEdit, PathInNodeEdit(path)) << std::hex << c.flags;
    }
    ZrPathDeletePtr(path, 0);
}

} // namespace
