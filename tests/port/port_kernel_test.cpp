/* port_kernel_test.cpp - heaps and global blocks: exact sizes, growth in place or not, zeroing, what is left. */
#include "platform/platform.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

bool AllBytes(const void *block, size_t from, size_t to, BYTE value)
{
    const BYTE *bytes = static_cast<const BYTE *>(block);
    for (size_t i = from; i < to; i++)
        if (bytes[i] != value) return false;
    return true;
}

} // namespace

TEST(PortKernel, BlockKnowsTheSizeThatWasAskedFor)
{
    HANDLE heap = HeapCreate(HEAP_GENERATE_EXCEPTIONS, 0x80000, 0);
    ASSERT_NE(heap, nullptr);
    for (const SIZE_T size : {SIZE_T{0}, SIZE_T{1}, SIZE_T{13}, SIZE_T{1042}}) {
        void *block = HeapAlloc(heap, HEAP_ZERO_MEMORY, size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(HeapSize(heap, 0, block), size);
        EXPECT_TRUE(AllBytes(block, 0, size, 0));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 16, 0u);
    }
    EXPECT_EQ(PortBlockCount(heap), 4u);
    EXPECT_EQ(HeapSize(heap, 0, nullptr), static_cast<SIZE_T>(-1));
    EXPECT_TRUE(HeapDestroy(heap)); /* with its blocks */
    EXPECT_FALSE(HeapDestroy(nullptr));
}

TEST(PortKernel, ShrinkingInPlaceAlwaysWorksAndLeavesRoomToGrowBack)
{
    HANDLE heap = HeapCreate(0, 0, 0);
    void *block = HeapAlloc(heap, 0, 100);
    memset(block, 7, 100);
    EXPECT_EQ(HeapReAlloc(heap, HEAP_REALLOC_IN_PLACE_ONLY | HEAP_ZERO_MEMORY, block, 50), block);
    EXPECT_TRUE(AllBytes(block, 0, 50, 7));
    EXPECT_EQ(HeapReAlloc(heap, HEAP_REALLOC_IN_PLACE_ONLY, block, 40), block);
    EXPECT_EQ(HeapSize(heap, 0, block), 40u);
    EXPECT_EQ(HeapReAlloc(heap, HEAP_REALLOC_IN_PLACE_ONLY | HEAP_ZERO_MEMORY, block, 60), block);
    EXPECT_TRUE(AllBytes(block, 0, 40, 7));
    EXPECT_TRUE(AllBytes(block, 40, 60, 0));
    EXPECT_EQ(HeapReAlloc(heap, HEAP_REALLOC_IN_PLACE_ONLY, block, 101), nullptr);
    EXPECT_EQ(HeapSize(heap, 0, block), 60u);
    HeapDestroy(heap);
}

TEST(PortKernel, GrowingKeepsTheContents)
{
    HANDLE heap = HeapCreate(0, 0, 0);
    void *block = HeapAlloc(heap, 0, 10);
    memset(block, 5, 10);
    block = HeapReAlloc(heap, HEAP_ZERO_MEMORY, block, 5000);
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(AllBytes(block, 0, 10, 5));
    EXPECT_TRUE(AllBytes(block, 10, 5000, 0));
    EXPECT_EQ(HeapSize(heap, 0, block), 5000u);
    EXPECT_EQ(PortBlockCount(heap), 1u);
    EXPECT_TRUE(HeapFree(heap, HEAP_NO_SERIALIZE, block));
    EXPECT_TRUE(HeapFree(heap, 0, nullptr));
    EXPECT_EQ(PortBlockCount(heap), 0u);
    HeapDestroy(heap);
}

TEST(PortKernel, SizesThatCannotBeHadGiveNull)
{
    HANDLE heap = HeapCreate(0, 0, 0);
    void *block = HeapAlloc(heap, 0, 10);
    EXPECT_EQ(HeapAlloc(heap, 0, SIZE_MAX), nullptr);
    EXPECT_EQ(HeapReAlloc(heap, 0, block, SIZE_MAX), nullptr);
    EXPECT_EQ(HeapSize(heap, 0, block), 10u);
    EXPECT_EQ(HeapAlloc(nullptr, 0, 10), nullptr);
    EXPECT_EQ(HeapReAlloc(heap, 0, nullptr, 10), nullptr);
    EXPECT_EQ(HeapReAlloc(nullptr, 0, block, 10), nullptr);
    EXPECT_FALSE(HeapFree(nullptr, 0, block));
    HeapDestroy(heap);
}

TEST(PortKernel, GlobalBlocks)
{
    const SIZE_T before = PortBlockCount(nullptr);
    HGLOBAL block = GlobalAlloc(GPTR, 20);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GlobalSize(block), 20u);
    EXPECT_TRUE(AllBytes(block, 0, 20, 0));
    memset(block, 9, 20);
    block = GlobalReAlloc(block, 400, GMEM_ZEROINIT);
    EXPECT_TRUE(AllBytes(block, 0, 20, 9));
    EXPECT_TRUE(AllBytes(block, 20, 400, 0));
    EXPECT_EQ(PortBlockCount(nullptr), before + 1);
    EXPECT_EQ(GlobalReAlloc(block, SIZE_MAX, 0), nullptr);
    EXPECT_EQ(GlobalReAlloc(nullptr, 4, 0), nullptr);
    EXPECT_EQ(GlobalFree(block), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    EXPECT_EQ(GlobalSize(nullptr), 0u);
    EXPECT_EQ(PortBlockCount(nullptr), before);
}
