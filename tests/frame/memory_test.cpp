/* memory_test.cpp - the start of the library and its four allocators. */
#include "comm/zr32comm.h"
#include "frame/faults.h"
#include "frame/frame.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

using namespace zr32;

namespace {

int AllZero(const void *block, size_t size)
{
    const uint8_t *bytes = static_cast<const uint8_t *>(block);
    return std::all_of(bytes, bytes + size, [](uint8_t byte) { return byte == 0; });
}

TEST(Memory, InitMakesTheHeapOnce)
{
    EXPECT_EQ(0x30000, ZrPathInit());
    const HANDLE heap = PathHeap();
    EXPECT_NE(nullptr, heap);
    EXPECT_EQ(0x30000, ZrPathInit());
    EXPECT_EQ(heap, PathHeap());
}

TEST(Memory, SurfaceHeapIsASecondHeapMadeOnce)
{
    ZrPathInit();
    EXPECT_EQ(1, SurfaceHeapInit());
    const HANDLE heap = SurfaceHeap();
    EXPECT_EQ(1, SurfaceHeapInit());
    EXPECT_EQ(heap, SurfaceHeap());
    EXPECT_NE(heap, PathHeap());
}

TEST(Memory, HeapTellsTheSizeThatWasAskedFor)
{
    ZrPathInit();
    void *block = PathHeapAlloc(PathHeap(), heapZero, 1042);
    ASSERT_NE(nullptr, block);
    EXPECT_TRUE(AllZero(block, 1042));
    EXPECT_EQ(1042u, PathHeapSize(PathHeap(), heapNoSerialize, block));
    EXPECT_EQ(1, PathHeapValid(PathHeap(), heapNoSerialize, block));
    void *grown = PathHeapReAlloc(PathHeap(), heapNoSerialize, block, 2043);
    ASSERT_NE(nullptr, grown);
    EXPECT_EQ(2043u, PathHeapSize(PathHeap(), heapNoSerialize, grown));
    EXPECT_TRUE(AllZero(grown, 1042));
    EXPECT_EQ(grown, PathHeapReAllocInPlace(PathHeap(), heapNoSerialize, grown, 7)) << "shrinking never moves";
    EXPECT_EQ(7u, PathHeapSize(PathHeap(), heapNoSerialize, grown));
    PathHeapFree(PathHeap(), heapNoSerialize, grown);
}

TEST(Memory, BlockOfNoBytesIsNotValid)
{
    ZrPathInit();
    void *block = PathHeapAlloc(PathHeap(), heapZero, 0);
    EXPECT_EQ(0, PathHeapValid(PathHeap(), heapNoSerialize, block));
    EXPECT_EQ(0, PathHeapValid(PathHeap(), heapNoSerialize, nullptr));
    PathHeapFree(PathHeap(), heapNoSerialize, block);
}

TEST(Memory, WithoutAHeapNothingIsGivenAndNothingTouched)
{
    EXPECT_EQ(nullptr, PathHeapAlloc(nullptr, heapZero, 10));
    EXPECT_EQ(nullptr, PathHeapReAlloc(nullptr, 0, nullptr, 10));
    EXPECT_EQ(0u, PathHeapSize(nullptr, 0, nullptr));
    PathHeapFree(nullptr, 0, nullptr);
}

TEST(Memory, BufReAllocOfNullIsABufAlloc)
{
    /* What the allocator hands out next is not clean by chance. */
    void *used = BufAlloc(0, 100);
    memset(used, 0xEE, 100);
    BufFree(used);
    void *block = BufReAlloc(nullptr, 100, bufZero);
    ASSERT_NE(nullptr, block);
    EXPECT_TRUE(AllZero(block, 100));
    EXPECT_LE(100u, BufMemSize(block));
    EXPECT_EQ(1, BufFree(block));
}

TEST(Memory, BufReAllocZeroesWhatItAdds)
{
    uint8_t *block = static_cast<uint8_t *>(BufAlloc(0, 16));
    const size_t old = BufMemSize(block);
    std::fill(block, block + 16, uint8_t{7});
    block = static_cast<uint8_t *>(BufReAlloc(block, 100000, bufZero));
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(16, std::count(block, block + 16, 7));
    EXPECT_TRUE(AllZero(block + old, 100000 - old));
    BufFree(block);
}

TEST(Memory, ResizingToNothingIsRefusedAndShrinkingZeroesNothing)
{
    uint8_t *block = static_cast<uint8_t *>(BufAlloc(0, 1000));
    std::fill(block, block + 1000, uint8_t{7});
    EXPECT_EQ(nullptr, BufReAlloc(block, 0, bufZero));
    block = static_cast<uint8_t *>(BufReAlloc(block, 500, bufZero));
    EXPECT_EQ(500, std::count(block, block + 500, 7));
    BufFree(block);
}

TEST(Memory, WhatNoBlockCanHoldIsNotCounted)
{
    const int64_t before = FaultLiveBlocks(ALLOC_GLOBAL);
    EXPECT_EQ(nullptr, GlobalBlockAlloc(SIZE_MAX));
    EXPECT_EQ(before, FaultLiveBlocks(ALLOC_GLOBAL));
}

TEST(Memory, BufFreeOfNullIsOne)
{
    EXPECT_EQ(1, BufFree(nullptr));
    EXPECT_EQ(0u, BufMemSize(nullptr));
}

TEST(Memory, FailedResizeKeepsTheBlock)
{
    uint8_t *block = static_cast<uint8_t *>(BufAlloc(bufZero, 16));
    block[3] = 9;
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(nullptr, BufReAlloc(block, 32, 0));
    EXPECT_TRUE(FaultStruck());
    EXPECT_EQ(9, block[3]);
    BufFree(block);
    FaultSet(ALLOC_BUF, 0);
}

TEST(Memory, FaultsStrikeTheNthAllocationOnce)
{
    ZrPathInit();
    const int64_t before = FaultLiveBlocks(ALLOC_PATHHEAP);
    FaultSet(ALLOC_PATHHEAP, 2);
    void *first = PathHeapAlloc(PathHeap(), heapZero, 8);
    void *second = PathHeapAlloc(PathHeap(), heapZero, 8);
    void *third = PathHeapAlloc(PathHeap(), heapZero, 8);
    EXPECT_NE(nullptr, first);
    EXPECT_EQ(nullptr, second);
    EXPECT_NE(nullptr, third);
    EXPECT_EQ(before + 2, FaultLiveBlocks(ALLOC_PATHHEAP));
    PathHeapFree(PathHeap(), heapNoSerialize, first);
    PathHeapFree(PathHeap(), heapNoSerialize, third);
    EXPECT_EQ(before, FaultLiveBlocks(ALLOC_PATHHEAP));
}

TEST(Memory, FailedHeapResizeKeepsTheBlock)
{
    ZrPathInit();
    uint8_t *block = static_cast<uint8_t *>(PathHeapAlloc(PathHeap(), heapZero, 16));
    block[3] = 9;
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(nullptr, PathHeapReAlloc(PathHeap(), heapNoSerialize, block, 32));
    EXPECT_TRUE(FaultStruck());
    EXPECT_EQ(16u, PathHeapSize(PathHeap(), heapNoSerialize, block));
    EXPECT_EQ(9, block[3]);
    EXPECT_EQ(nullptr, PathHeapReAllocInPlace(PathHeap(), heapNoSerialize, block, 100000));
    EXPECT_EQ(16u, PathHeapSize(PathHeap(), heapNoSerialize, block));
    PathHeapFree(PathHeap(), heapNoSerialize, block);
    FaultSet(ALLOC_PATHHEAP, 0);
}

TEST(Memory, BufReAllocToNoBytesKeepsTheBlock)
{
    uint8_t *block = static_cast<uint8_t *>(BufAlloc(bufZero, 16));
    block[15] = 4;
    EXPECT_EQ(nullptr, BufReAlloc(block, 0, bufZero));
    EXPECT_EQ(4, block[15]);
    BufFree(block);
}

TEST(Memory, EachAllocatorFailsByItself)
{
    ZrPathInit();
    SurfaceHeapInit();
    FaultSet(ALLOC_SURFACEHEAP, 1);
    void *path = PathHeapAlloc(PathHeap(), heapZero, 8);
    EXPECT_NE(nullptr, path);
    EXPECT_EQ(nullptr, PathHeapAlloc(SurfaceHeap(), heapZero, 8));
    PathHeapFree(PathHeap(), heapNoSerialize, path);
    FaultSet(ALLOC_SURFACEHEAP, 0);
    FaultSet(ALLOC_GLOBAL, 1);
    EXPECT_EQ(nullptr, GlobalBlockAlloc(8));
    uint8_t *global = static_cast<uint8_t *>(GlobalBlockAlloc(8));
    global[7] = 3;
    FaultSet(ALLOC_GLOBAL, 1);
    EXPECT_EQ(nullptr, GlobalBlockReAlloc(global, 800));
    EXPECT_EQ(3, global[7]);
    FaultSet(ALLOC_GLOBAL, 0);
    GlobalBlockFree(global);
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(nullptr, BufAlloc(bufZero, 8));
    FaultSet(ALLOC_BUF, 0);
}

TEST(Memory, ErrorReportsCarryTheLibrarysGroup)
{
    zr32CommReset();
    ReportError(errorMemory, 20, 0);
    ReportError(errorCancelled, 19, 3);
    ZR32COMMERROR error;
    EXPECT_EQ(2, zr32CommLastError(&error));
    const int32_t want[6] = {0, 5200, 0, 2600, 19, 3};
    for (int i = 0; i < 6; i++) EXPECT_EQ(want[i], error.words[i]) << i;
    ReportError(errorMemory, 20, 0);
    EXPECT_EQ(3, zr32CommLastError(&error));
    EXPECT_EQ(1001, error.words[1]);
    zr32CommReset();
    EXPECT_EQ(0, zr32CommLastError(&error));
    EXPECT_EQ(0, error.words[3]);
}

TEST(Memory, StopPollAnswersAfterTheGivenNumberOfPolls)
{
    zr32CommReset();
    EXPECT_EQ(0, zr32IsEscPressed());
    zr32CommEscAfter(2);
    EXPECT_EQ(0, zr32IsEscPressed());
    EXPECT_EQ(0, zr32IsEscPressed());
    EXPECT_EQ(1, zr32IsEscPressed());
    EXPECT_EQ(1, zr32IsEscPressed());
    zr32CommReset();
    EXPECT_EQ(0, zr32IsEscPressed());
}

TEST(Memory, GlobalBlocksGrowWithZerosAndFreeNull)
{
    uint8_t *block = static_cast<uint8_t *>(GlobalBlockAlloc(10));
    ASSERT_NE(nullptr, block);
    EXPECT_TRUE(AllZero(block, 10));
    block[0] = 5;
    block = static_cast<uint8_t *>(GlobalBlockReAlloc(block, 1000));
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(5, block[0]);
    EXPECT_TRUE(AllZero(block + 1, 999));
    EXPECT_EQ(1000u, GlobalSize(block));
    GlobalBlockFree(block);
    GlobalBlockFree(nullptr);
}

} // namespace
