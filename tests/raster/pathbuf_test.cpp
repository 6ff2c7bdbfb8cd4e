/* pathbuf_test.cpp - layout, sizes and lifetime of raster buffers. */
#include "frame/faults.h"
#include "raster/raster.h"
#include "support/shapes.h"

#include <cstring>
#include <gtest/gtest.h>

using namespace zr32test;

namespace {

int32_t HeaderWord(PATHBUF buf, int word)
{
    int32_t value;
    memcpy(&value, buf - 12 + 4 * word, 4);
    return value;
}

TEST(PathBuf, HeaderHoldsDepthWidthHeightInThisOrder)
{
    PATHBUF buf = ZrPathBufAlloc(24, 5, 7);
    EXPECT_EQ(24, HeaderWord(buf, 0));
    EXPECT_EQ(5, HeaderWord(buf, 1));
    EXPECT_EQ(7, HeaderWord(buf, 2));
    int32_t width, height, bits;
    EXPECT_EQ(1, ZrPathBufGetWHU(buf, &width, &height, &bits));
    EXPECT_EQ(5, width);
    EXPECT_EQ(7, height);
    EXPECT_EQ(24, bits);
    EXPECT_EQ(1, ZrPathBufFree(buf));
}

TEST(PathBuf, NewBufferIsZero)
{
    PATHBUF buf = ZrPathBufAlloc(32, 9, 3);
    for (int i = 0; i < 9 * 3 * 4; i++) EXPECT_EQ(0, buf[i]);
    ZrPathBufFree(buf);
}

TEST(PathBuf, RowsStepByTheBytesOfTheirDepth)
{
    static const struct {
        const char *name;
        int32_t bits;
        int32_t pixelSize;
    } cases[] = {{"mask", 8, 1},     {"colour", 24, 3}, {"word", 32, 4}, {"vectors", 64, 8},
                 {"sixteen", 16, 8}, {"one", 1, 8},     {"zero", 0, 8},  {"negative", -8, 8}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        PATHBUF buf = ZrPathBufAlloc(c.bits, 5, 4);
        EXPECT_LE(static_cast<uint32_t>(5 * 4 * c.pixelSize + 12), ZrPathBufSize(buf));
        PATHBUFLOCK lock;
        EXPECT_EQ(1, ZrPathBufLock1(buf, 1, 2, 3, &lock));
        EXPECT_EQ(buf, lock.pixels);
        EXPECT_EQ(5u, lock.width);
        EXPECT_EQ(buf, ZrPathBufLineRead(&lock, 0));
        EXPECT_EQ(buf + 3 * 5 * c.pixelSize, ZrPathBufLineRead(&lock, 3));
        EXPECT_EQ(1, ZrPathBufUnlock1(&lock));
        ZrPathBufFree(buf);
    }
}

TEST(PathBuf, ColourRowsOfFivePixelsAreFifteenBytesApart)
{
    PATHBUF buf = ZrPathBufAlloc(24, 5, 2);
    PATHBUFLOCK lock;
    ZrPathBufLock1(buf, 0, 0, 0, &lock);
    EXPECT_EQ(buf + 15, ZrPathBufLineRead(&lock, 1));
    ZrPathBufFree(buf);
}

TEST(PathBuf, BufferWithoutPixelsIsOnlyItsHeader)
{
    for (const auto &[width, height] : {std::pair{0, 9}, {9, 0}, {0, 0}}) {
        PATHBUF buf = ZrPathBufAlloc(8, width, height);
        ASSERT_NE(nullptr, buf);
        EXPECT_LE(12u, ZrPathBufSize(buf));
        EXPECT_EQ(1, ZrPathBufFree(buf));
    }
}

TEST(PathBuf, ReservedAndNullHandlesAreLeftAlone)
{
    PATHBUF reserved = reinterpret_cast<PATHBUF>(uintptr_t{1});
    EXPECT_EQ(1, ZrPathBufFree(reserved));
    EXPECT_EQ(1, ZrPathBufFree(nullptr));
    EXPECT_EQ(0u, ZrPathBufSize(nullptr));
    EXPECT_EQ(0u, ZrPathBufSize(reserved));
    EXPECT_EQ(nullptr, ZrPathBufDuplicate(0, nullptr));
    PATHBUFLOCK lock = {nullptr, 77};
    EXPECT_EQ(0, ZrPathBufLock1(nullptr, 0, 0, 0, &lock));
    EXPECT_EQ(77u, lock.width);
    EXPECT_EQ(nullptr, ZrPathBufLineRead(&lock, 0));
    EXPECT_EQ(nullptr, ZrPathBufLineRead(nullptr, 0));
    int32_t width = 5, height = 6, bits = 7;
    EXPECT_EQ(0, ZrPathBufGetWHU(nullptr, &width, &height, &bits));
    EXPECT_EQ(5, width);
    EXPECT_EQ(0, zr32::BufInfo(nullptr).width);
    EXPECT_EQ(0, zr32::BufInfo(reserved).height);
}

TEST(PathBuf, DuplicateIsEqualAndIndependent)
{
    PATHBUF buf = ZrPathBufAlloc(32, 6, 5);
    for (int i = 0; i < 6 * 5 * 4; i++) buf[i] = static_cast<uint8_t>(i * 7);
    PATHBUF copy = ZrPathBufDuplicate(99, buf);
    ASSERT_NE(nullptr, copy);
    EXPECT_NE(buf, copy);
    EXPECT_EQ(0, memcmp(buf - 12, copy - 12, 12 + 6 * 5 * 4));
    EXPECT_LE(12u + 6 * 5 * 4, ZrPathBufSize(copy));
    copy[0] = 200;
    EXPECT_EQ(0, buf[0]);
    ZrPathBufFree(buf);
    EXPECT_EQ(200, copy[0]);
    ZrPathBufFree(copy);
}

TEST(PathBuf, ImpossibleSizesGiveNull)
{
    static const struct {
        const char *name;
        int32_t bits, width, height;
    } cases[] = {{"negative width", 8, -1, 5},
                 {"negative height", 8, 5, -1},
                 {"both negative", 8, -5, -5},
                 {"product beyond 32 bits", 8, 0x10000, 0x10000},
                 {"a header more than fits", 8, INT32_MAX - 11, 1},
                 {"bytes beyond 32 bits", 64, 0x8000, 0x8000},
                 {"largest sides", 32, INT32_MAX, INT32_MAX}};
    for (const auto &c : cases) EXPECT_EQ(nullptr, ZrPathBufAlloc(c.bits, c.width, c.height)) << c.name;
}

TEST(PathBuf, NoMemoryGivesNull)
{
    PATHBUF buf = ZrPathBufAlloc(8, 3, 3);
    zr32::FaultSet(zr32::ALLOC_BUF, 1);
    EXPECT_EQ(nullptr, ZrPathBufAlloc(8, 3, 3));
    zr32::FaultSet(zr32::ALLOC_BUF, 1);
    EXPECT_EQ(nullptr, ZrPathBufDuplicate(0, buf));
    zr32::FaultSet(zr32::ALLOC_BUF, 0);
    ZrPathBufFree(buf);
}

TEST(PathBuf, RectangleBufferHas32BitsForDepth4Only)
{
    for (int32_t depth : {0, 4, 8, 16, 32, -4}) {
        PATHBUF buf = zr32::PathBufForRect(-3, 10, 4, 12, depth);
        int32_t width, height, bits;
        ZrPathBufGetWHU(buf, &width, &height, &bits);
        EXPECT_EQ(7, width);
        EXPECT_EQ(2, height);
        EXPECT_EQ(depth == 4 ? 32 : 8, bits) << depth;
        ZrPathBufFree(buf);
    }
    EXPECT_EQ(nullptr, zr32::PathBufForRect(5, 0, 4, 1, 8));
    EXPECT_EQ(nullptr, zr32::PathBufForRect(INT32_MIN, 0, INT32_MAX, 1, 8));
    EXPECT_EQ(nullptr, zr32::PathBufForRect(0, INT32_MIN, 1, INT32_MAX, 8));
    EXPECT_EQ(nullptr, zr32::PathBufForRect(0, 5, 1, 4, 8));
}

TEST(PathBuf, NextGroupStandsBehindTheTailOfTheJoinChain)
{
    PATHREC *a = MakeBox(0, 0, 1, 1);
    PATHREC *b = MakeBox(0, 0, 1, 1);
    PATHREC *c = MakeBox(0, 0, 1, 1);
    zr32::ChainLink(zr32::joinChain, a, b);
    zr32::ChainLink(zr32::selectedChain, a, c);
    EXPECT_EQ(nullptr, zr32::PathNextGroup(a));
    zr32::ChainLink(zr32::selectedChain, b, c);
    EXPECT_EQ(c, zr32::PathNextGroup(a));
    EXPECT_EQ(c, zr32::PathNextGroup(b));
    EXPECT_EQ(nullptr, zr32::PathNextGroup(c));
    EXPECT_EQ(nullptr, zr32::PathNextGroup(nullptr));
    for (PATHREC *path : {a, b, c}) zr32::RecordFree(path);
}

} // namespace
