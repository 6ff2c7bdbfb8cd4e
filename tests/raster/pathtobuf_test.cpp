/* pathtobuf_test.cpp - one buffer a compound shape: heads, rectangles, growth, reduction, failing memory. */
#include "frame/faults.h"
#include "raster/masks.h"
#include "raster/raster.h"
#include "support/shapes.h"

#include <gtest/gtest.h>
#include <vector>

using namespace zr32test;

namespace {

constexpr uint32_t selected = 0x80000000;

/* Boxes of growing size, all selected; each a shape of its own. */
std::vector<PATHREC *> SelectedBoxes(int count)
{
    std::vector<PATHREC *> paths;
    for (int i = 0; i < count; i++) {
        paths.push_back(MakeBox(i, 2 * i, 3 * i + 4, 2 * i + 5));
        paths.back()->flags = selected;
        if (i > 0) zr32::ChainLink(zr32::selectedChain, paths[static_cast<size_t>(i) - 1], paths.back());
    }
    return paths;
}

void FreeAll(const std::vector<PATHREC *> &paths)
{
    for (PATHREC *path : paths) zr32::RecordFree(path);
}

void FreeResults(int32_t count, tagRECT *rects, PATHBUF *bufs)
{
    for (int32_t i = 0; i < count; i++) ZrPathBufFree(bufs[i]);
    GlobalFree(rects);
    GlobalFree(bufs);
}

void ExpectRect(int left, int top, int right, int bottom, const tagRECT &rect)
{
    EXPECT_EQ(left, rect.left);
    EXPECT_EQ(top, rect.top);
    EXPECT_EQ(right, rect.right);
    EXPECT_EQ(bottom, rect.bottom);
}

TEST(PathToBuf, NullPathGivesNullArrays)
{
    tagRECT *rects = reinterpret_cast<tagRECT *>(1);
    PATHBUF *bufs = reinterpret_cast<PATHBUF *>(1);
    EXPECT_EQ(0, ZrPathToBuf(nullptr, 8, 0, 1, 0, 0x10000, &rects, &bufs, 0));
    EXPECT_EQ(nullptr, rects);
    EXPECT_EQ(nullptr, bufs);
}

TEST(PathToBuf, NullOutPointersGiveNothing)
{
    PATHREC *path = MakeBox(1, 1, 9, 9);
    tagRECT *rects;
    PATHBUF *bufs;
    EXPECT_EQ(0, ZrPathToBuf(path, 8, 0, 1, 0, 0x10000, nullptr, &bufs, 0));
    EXPECT_EQ(0, ZrPathToBuf(path, 8, 0, 1, 0, 0x10000, &rects, nullptr, 0));
    EXPECT_EQ(nullptr, rects);
    zr32::RecordFree(path);
}

TEST(PathToBuf, RectangleIsTheBoundsWithTheirMarginAndTheBufferFitsIt)
{
    PATHREC *path = MakeBox(10, 20, 30, 50);
    const MASK mask = MakeMask(path, 8, 0, 1, 0);
    ExpectRect(5, 15, 36, 56, mask.rect);
    EXPECT_EQ(31, mask.width);
    EXPECT_EQ(41, mask.height);
    EXPECT_EQ(8, mask.bits);
    EXPECT_EQ(255, At(mask, 20, 30));
    EXPECT_EQ(0, At(mask, 8, 30));
    ZrPathBufFree(mask.buf);
    zr32::RecordFree(path);
}

TEST(PathToBuf, Depth4Gives32BitsWhateverTheSampling)
{
    PATHREC *path = MakeBox(10, 20, 30, 50);
    for (int aaMode : {0, 1, 999}) {
        const MASK mask = MakeMask(path, 4, 0, aaMode, 0);
        EXPECT_EQ(32, mask.bits);
        EXPECT_EQ(0u, WordAt(mask, 20, 30));
        EXPECT_EQ(0xFFFFFFFFu, WordAt(mask, 7, 30));
        ZrPathBufFree(mask.buf);
    }
    zr32::RecordFree(path);
}

TEST(PathToBuf, InflateCountsByItsMagnitude)
{
    PATHREC *path = MakeBox(10, 20, 30, 50);
    for (int inflate : {3, -3}) {
        const MASK mask = MakeMask(path, 8, 0, 1, 0, 0x10000, inflate);
        ExpectRect(2, 12, 39, 59, mask.rect);
        EXPECT_EQ(255, At(mask, 20, 30));
        ZrPathBufFree(mask.buf);
    }
    zr32::RecordFree(path);
}

TEST(PathToBuf, AnUnselectedRecordGivesTheHeadOfItsTableChainAlone)
{
    PATHREC *head = MakeBox(10, 10, 20, 20);
    PATHREC *tail = MakeBox(60, 60, 70, 70);
    zr32::ChainLink(zr32::tableChain, head, tail);
    /* Links of the selection are not looked at. */
    head->nextSel = tail;
    const MASK mask = MakeMask(tail, 8, 0, 1, 0);
    ExpectRect(5, 5, 26, 26, mask.rect);
    ZrPathBufFree(mask.buf);
    FreeAll({head, tail});
}

TEST(PathToBuf, AFreeStandingRecordStartsAtItself)
{
    PATHREC *head = MakeBox(10, 10, 20, 20);
    PATHREC *tail = MakeBox(60, 60, 70, 70);
    zr32::ChainLink(zr32::tableChain, head, tail);
    zr32::ChainLink(zr32::selectedChain, head, tail);
    tail->flags = 0x88880000;
    const MASK mask = MakeMask(tail, 8, 0, 1, 0);
    ExpectRect(55, 55, 76, 76, mask.rect);
    ZrPathBufFree(mask.buf);
    FreeAll({head, tail});
}

TEST(PathToBuf, ASelectionGivesOneBufferAJoinChain)
{
    std::vector<PATHREC *> paths = SelectedBoxes(5);
    zr32::ChainLink(zr32::joinChain, paths[1], paths[2]);
    zr32::ChainLink(zr32::joinChain, paths[2], paths[3]);
    tagRECT *rects;
    PATHBUF *bufs;
    ASSERT_EQ(3, ZrPathToBuf(paths[3], 8, 0, 1, 0, 0x10000, &rects, &bufs, 0));
    ExpectRect(-5, -5, 10, 11, rects[0]);
    ExpectRect(-4, -3, 19, 17, rects[1]);
    ExpectRect(-1, 3, 22, 19, rects[2]);
    FreeResults(3, rects, bufs);
    FreeAll(paths);
}

TEST(PathToBuf, ArraysGrowByTwentyAndKeepWhatTheyHold)
{
    for (int count : {1, 20, 21, 40, 41, 65}) {
        const std::vector<PATHREC *> paths = SelectedBoxes(count);
        tagRECT *rects;
        PATHBUF *bufs;
        ASSERT_EQ(count, ZrPathToBuf(paths[0], 8, 0, 1, 0, 0x10000, &rects, &bufs, 0));
        for (int i = 0; i < count; i++) {
            ExpectRect(i - 5, 2 * i - 5, 3 * i + 10, 2 * i + 11, rects[i]);
            int32_t width, height, bits;
            ZrPathBufGetWHU(bufs[i], &width, &height, &bits);
            EXPECT_EQ(2 * i + 15, width);
            EXPECT_EQ(16, height);
        }
        for (int i = count; i < (count + 19) / 20 * 20; i++) {
            EXPECT_EQ(nullptr, bufs[i]);
            EXPECT_EQ(0, rects[i].right);
        }
        FreeResults(count, rects, bufs);
        FreeAll(paths);
    }
}

TEST(PathToBuf, LinksThatLeadInACircleEnd)
{
    std::vector<PATHREC *> paths = SelectedBoxes(3);
    /* The join chain runs against the selection: behind the last record the second follows again. */
    paths[2]->nextJoin = paths[0];
    tagRECT *rects;
    PATHBUF *bufs;
    EXPECT_EQ(3, ZrPathToBuf(paths[0], 8, 0, 1, 0, 0x10000, &rects, &bufs, 0));
    FreeResults(3, rects, bufs);
    FreeAll(paths);
}

/* The reduction worked out from a mask of the full size, pixel by pixel. */
int BoxMean(const MASK &large, int x, int y, double factor)
{
    int sum = 0, pixels = 0;
    const double X = x * factor, Y = y * factor;
    for (int row = static_cast<int>(Y) + 1; row <= static_cast<int>(factor + Y); row++)
        for (int column = static_cast<int>(X) + 1; column <= static_cast<int>(factor + X); column++) {
            pixels++;
            if (row < large.height && column < large.width) sum += large.buf[row * large.width + column];
        }
    return pixels ? sum / pixels : 0;
}

TEST(PathToBuf, Depth16ReducesAMaskMadeAtAZoomAbove1)
{
    PATHREC *path = MakeCircle(25, 31, 14.3);
    for (const ZRFIXED zoom : {0x20000, 0x30000, 0x18000, 0x10001, 0x4C000}) {
        for (int aaMode : {0, 1}) {
            const double factor = FixToDb(zoom);
            const MASK large = MakeMask(path, 8, 0, aaMode, 0, zoom);
            const MASK small = MakeMask(path, 16, 0, aaMode, 0, zoom);
            ExpectRect(static_cast<int>(large.rect.left / factor), static_cast<int>(large.rect.top / factor),
                       static_cast<int>(large.rect.right / factor), static_cast<int>(large.rect.bottom / factor),
                       small.rect);
            for (int y = 0; y < small.height; y++)
                for (int x = 0; x < small.width; x++) {
                    const int mean = BoxMean(large, x, y, factor);
                    ASSERT_EQ(aaMode       ? mean
                              : mean < 128 ? 0
                                           : 255,
                              small.buf[y * small.width + x])
                        << x << ' ' << y << ' ' << zoom;
                }
            ZrPathBufFree(large.buf);
            ZrPathBufFree(small.buf);
        }
    }
    zr32::RecordFree(path);
}

TEST(PathToBuf, Depth16AtTwiceTheSizeHasHalfTheRectangle)
{
    PATHREC *path = MakeBox(10, 20, 30, 50);
    const MASK mask = MakeMask(path, 16, 0, 0, 0, 0x20000);
    /* (20, 40, 60, 100) with its margin is (15, 35, 66, 106). */
    ExpectRect(7, 17, 33, 53, mask.rect);
    EXPECT_EQ(26, mask.width);
    EXPECT_EQ(36, mask.height);
    for (int i = 0; i < mask.width * mask.height; i++) EXPECT_TRUE(mask.buf[i] == 0 || mask.buf[i] == 255);
    EXPECT_EQ(255, At(mask, 20, 30));
    ZrPathBufFree(mask.buf);
    zr32::RecordFree(path);
}

TEST(PathToBuf, AReducedHardPixelIsOnFromAMeanOf128)
{
    /* In pixels of the large mask, 16 a path unit: from (40, 83) to (120, 120), so that rows 84 to 120 and columns 40
     * to 119 are on. The bounds begin at path unit (2, 5), that is at (32, 80), less the margin of 5: the box of small
     * pixel (3, 0) holds columns and rows 76 to 91. Of its 256 pixels 8 x 16 are on: the mean is 127.5, cut to 127. One
     * more, at (76, 83), and the mean is 128.49, cut to 128. */
    const auto unit = [](double pixels) { return pixels / 16; };
    for (const bool notch : {false, true}) {
        const double top = unit(notch ? 82 : 83);
        PATHREC *path = MakePath({{6, unit(40), unit(83)},
                                  {2, unit(76), unit(83)},
                                  {2, unit(76), top},
                                  {2, unit(77), top},
                                  {2, unit(77), unit(83)},
                                  {2, unit(120), unit(83)},
                                  {2, unit(120), unit(120)},
                                  {2, unit(40), unit(120)},
                                  {3, unit(40), unit(83)}});
        const MASK mask = MakeMask(path, 16, 0, 0, 0, 0x100000);
        EXPECT_EQ(1, mask.rect.left);
        EXPECT_EQ(4, mask.rect.top);
        EXPECT_EQ(notch ? 255 : 0, mask.buf[3]);
        ZrPathBufFree(mask.buf);
        zr32::RecordFree(path);
    }
}

TEST(PathToBuf, Depth16AtNoEnlargementEqualsDepth8)
{
    PATHREC *path = MakeCircle(25, 31, 14.3);
    for (const ZRFIXED zoom : {0x10000, 0x8000, 0x4000}) {
        const MASK a = MakeMask(path, 16, 0, 1, 0, zoom);
        const MASK b = MakeMask(path, 8, 0, 1, 0, zoom);
        EXPECT_TRUE(SameMask(a, b));
        ZrPathBufFree(a.buf);
        ZrPathBufFree(b.buf);
    }
    zr32::RecordFree(path);
}

TEST(PathToBuf, AnOutlineIsNotSupersampled)
{
    PATHREC *path = MakeCircle(25, 31, 14.3);
    const MASK a = MakeMask(path, 16, 0, 1, 1, 0x20000);
    const MASK b = MakeMask(path, 8, 0, 1, 1, 0x10000);
    EXPECT_TRUE(SameMask(a, b));
    EXPECT_LT(0, SumOf(a));
    ZrPathBufFree(a.buf);
    ZrPathBufFree(b.buf);
    zr32::RecordFree(path);
}

TEST(PathToBuf, Scope3TakesInTheTableChain)
{
    PATHREC *head = MakeBox(10, 10, 20, 20);
    PATHREC *tail = MakeBox(60, 60, 70, 70);
    zr32::ChainLink(zr32::tableChain, head, tail);
    const MASK all = MakeMask(head, 8, 0, 0, 3);
    ExpectRect(5, 5, 76, 76, all.rect);
    EXPECT_EQ(255, At(all, 15, 10));
    EXPECT_EQ(255, At(all, 65, 60));
    const MASK one = MakeMask(head, 8, 0, 0, 1);
    ExpectRect(5, 5, 26, 26, one.rect);
    ZrPathBufFree(all.buf);
    ZrPathBufFree(one.buf);
    FreeAll({head, tail});
}

TEST(PathToBuf, WhatCannotBeMadeGivesNothing)
{
    PATHREC *path = MakeBox(10, 10, 20, 20);
    PATHREC *huge = MakeBox(-32000, -32000, 32000, 32000);
    static const struct {
        const char *name;
        bool isHuge;
        ZRFIXED zoom;
        int32_t inflate;
    } cases[] = {{"turned inside out by a negative zoom", false, -0x10000 * 3, 0},
                 {"turned inside out by the lowest zoom", false, INT32_MIN, 0},
                 {"too large by its zoom", true, 0x7FFFFFFF, 0},
                 {"too large by its margin", false, 0x10000, INT32_MAX},
                 {"a margin without a magnitude", false, 0x10000, INT32_MIN}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        tagRECT *rects;
        PATHBUF *bufs;
        EXPECT_EQ(0, ZrPathToBuf(c.isHuge ? huge : path, 8, 0, 1, 0, c.zoom, &rects, &bufs, c.inflate));
        EXPECT_EQ(nullptr, rects);
        EXPECT_EQ(nullptr, bufs);
    }
    FreeAll({path, huge});
}

TEST(PathToBuf, AnEmptyMaskIsNoError)
{
    PATHREC *path = MakePath({{6, 10, 10}});
    const MASK mask = MakeMask(path, 8, 0, 1, 0, 0);
    ASSERT_NE(nullptr, mask.buf);
    ExpectRect(-5, -5, 6, 6, mask.rect);
    EXPECT_EQ(0, SumOf(mask));
    ZrPathBufFree(mask.buf);
    zr32::RecordFree(path);
}

TEST(PathToBuf, EveryFailedAllocationOfArraysOrBuffersLeavesNothing)
{
    const std::vector<PATHREC *> paths = SelectedBoxes(22);
    const int64_t bufBlocks = zr32::FaultLiveBlocks(zr32::ALLOC_BUF);
    const int64_t globalBlocks = zr32::FaultLiveBlocks(zr32::ALLOC_GLOBAL);
    for (zr32::ALLOCATOR allocator : {zr32::ALLOC_GLOBAL, zr32::ALLOC_BUF}) {
        for (int n = 1;; n++) {
            zr32::FaultSet(allocator, n);
            tagRECT *rects;
            PATHBUF *bufs;
            const int32_t count = ZrPathToBuf(paths[0], 16, 0, 1, 0, 0x20000, &rects, &bufs, 0);
            const bool struck = zr32::FaultStruck();
            if (count != 0) {
                /* A failure inside the filling of a mask leaves that mask empty, and the call goes on. */
                EXPECT_EQ(22, count);
                for (int32_t i = 0; i < count; i++) ZrPathBufFree(bufs[i]);
                zr32::GlobalBlockFree(rects);
                zr32::GlobalBlockFree(bufs);
            } else {
                EXPECT_EQ(nullptr, rects);
                EXPECT_EQ(nullptr, bufs);
            }
            ASSERT_EQ(bufBlocks, zr32::FaultLiveBlocks(zr32::ALLOC_BUF)) << n;
            ASSERT_EQ(globalBlocks, zr32::FaultLiveBlocks(zr32::ALLOC_GLOBAL)) << n;
            if (!struck) {
                EXPECT_EQ(22, count);
                EXPECT_LE(allocator == zr32::ALLOC_GLOBAL ? 4 : 44, n - 1);
                break;
            }
        }
        zr32::FaultSet(allocator, 0);
    }
    FreeAll(paths);
}

} // namespace
