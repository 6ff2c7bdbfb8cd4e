/* bandfill_test.cpp - masks of filled paths: values worked out by hand, and random input against the plain form. */
#include "frame/faults.h"
#include "raster/masks.h"
#include "raster/plain_scan.h"
#include "raster/raster.h"
#include "support/shapes.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

using namespace zr32test;

namespace {

constexpr int aaOf[3] = {0, 999, 1};

/* Lines and curves in any order, some runs closed and some not, some points on the sample grid. */
PATHREC *RandomPath(std::mt19937 &random, double extent, double offset)
{
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    const auto place = [&] {
        const double v = below(100000) / 100000.0 * extent + offset;
        switch (below(5)) {
        case 0: return std::floor(v);
        case 1: return std::floor(v * 16) / 16;
        default: return v;
        }
    };
    std::vector<TESTNODE> nodes;
    double lastX = 0;
    for (unsigned run = 0; run < 1 + below(4); run++) {
        const double x = place(), y = place();
        nodes.push_back({6, x, y});
        for (unsigned i = 0; i < 1 + below(7); i++) {
            if (below(2)) {
                nodes.push_back({2, below(5) ? place() : lastX, place()});
            } else {
                nodes.push_back({4, place(), place()});
                nodes.push_back({4, place(), place()});
                nodes.push_back({4, below(5) ? place() : lastX, place()});
            }
            lastX = nodes.back().x;
        }
        if (below(6)) nodes.push_back({3, x, y});
    }
    return MakePath(nodes);
}

/* Both forms over the same buffer content; 1 when every byte is the same. */
void ExpectSame(PATHREC *path, int bits, int width, int height, bool evenOdd, int aaMode, ZRFIXED zoom, int left,
                int top)
{
    PATHBUF fast = ZrPathBufAlloc(bits, width, height);
    PATHBUF plain = ZrPathBufAlloc(bits, width, height);
    const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height) * (bits == 32 ? 4 : 1);
    memset(fast, 7, size);
    memset(plain, 7, size);
    ASSERT_EQ(1, zr32::PathBandFill(path, fast, evenOdd, aaMode, 0, zoom, left, top));
    PlainBandFill(path, plain, evenOdd, aaMode, FixToDb(zoom), left, top);
    size_t differ = 0;
    for (size_t i = 0; i < size; i++) differ += fast[i] != plain[i];
    EXPECT_EQ(0u, differ);
    ZrPathBufFree(fast);
    ZrPathBufFree(plain);
}

TEST(BandFill, RandomPathsEqualThePlainForm)
{
    for (unsigned seed = 0; seed < 600; seed++) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const double extent = seed % 7 == 0 ? 400 : 60;
        PATHREC *path = RandomPath(random, extent, seed % 5 == 0 ? -20 : 3);
        PATHREC *second = RandomPath(random, extent, 3);
        path->nextJoin = second;
        const int size = static_cast<int>(extent) + 8;
        ExpectSame(path, seed % 4 == 3 ? 32 : 8, size, size - static_cast<int>(seed % 3), random() % 2, aaOf[seed % 3],
                   static_cast<ZRFIXED>(seed % 6 ? 0x10000 : random() % 0x30000), static_cast<int>(random() % 9) - 4,
                   static_cast<int>(random() % 9) - 4);
        if (HasFailure()) return;
        ZrPathDeletePtr(path, 0);
        ZrPathDeletePtr(second, 0);
    }
}

TEST(BandFill, TheSamePathsInFramesThatDoNotHoldThemEqualThePlainForm)
{
    for (unsigned seed = 0; seed < 200; seed++) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed + 5000);
        PATHREC *path = RandomPath(random, 150, -40);
        /* Sides of 0 and the first columns, whose sums are formed apart, among them. */
        ExpectSame(path, seed % 4 == 3 ? 32 : 8, static_cast<int>(seed % 23), static_cast<int>(random() % 120),
                   random() % 2, aaOf[seed % 3], 0x10000, static_cast<int>(random() % 60),
                   static_cast<int>(random() % 60));
        if (HasFailure()) return;
        ZrPathDeletePtr(path, 0);
    }
}

TEST(BandFill, NegativeAndOddZoomsEqualThePlainForm)
{
    for (unsigned seed = 0; seed < 60; seed++) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed + 9000);
        PATHREC *path = RandomPath(random, 60, -30);
        static const ZRFIXED zooms[] = {-0x10000, 0, 1, -1, 0x8000, 0x24680, -0x30000, 0x123};
        ExpectSame(path, seed % 2 ? 32 : 8, 90, 90, random() % 2, aaOf[seed % 3], zooms[seed % 8], -45, -45);
        if (HasFailure()) return;
        ZrPathDeletePtr(path, 0);
    }
}

TEST(BandFill, NearVerticalEdgesEqualThePlainForm)
{
    /* Steps near the rounding of x: rows may run past the edge's end, as far as its band, or stop short. */
    for (unsigned seed = 0; seed < 40; seed++) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        PATHREC *path = MakePath({{6, 40, 3}, {2, 900, 3}, {2, 900, 760}, {3, 40, 3}});
        const int units = 1 + static_cast<int>(random() % 3);
        for (uint32_t i = 0; i < 4; i++) path->nodes[i].x += static_cast<int>(random() % 7);
        path->nodes[2].x = path->nodes[1].x + units;
        ExpectSame(path, 8, 1000, 800, false, 1, static_cast<ZRFIXED>(0x10000 + seed), 0, 0);
        if (HasFailure()) return;
        ZrPathDeletePtr(path, 0);
    }
}

TEST(BandFill, TallShapesInSeveralPartsEqualThePlainForm)
{
    /* More crossings than one part holds, and more rows. */
    std::mt19937 random(3);
    std::vector<TESTNODE> nodes = {{6, 5, 5}};
    for (int i = 0; i < 60; i++)
        nodes.push_back({2, 5.0 + static_cast<int>(random() % 60), 5.0 + static_cast<int>(random() % 2000)});
    PATHREC *path = MakePath(nodes);
    ExpectSame(path, 8, 80, 2030, true, 1, 0x10000, 0, 0);
    ZrPathDeletePtr(path, 0);
    path = MakeBox(5, 5, 10, 7000);
    ExpectSame(path, 8, 20, 7010, true, 1, 0x10000, 0, 0);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, HorizontalLinesAloneGiveAnEmptyMask)
{
    PATHREC *path = MakePath({{6, 2, 4}, {2, 9, 4}, {2, 3, 4}, {3, 2, 4}});
    const MASK mask = MakeMask(path, 8, 0, 1, 0);
    EXPECT_EQ(0, SumOf(mask));
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, ALoneCrossingGivesNoSpan)
{
    PATHREC *path = MakePath({{6, 2, 4}, {2, 9, 40}});
    for (int evenOdd : {0, 1}) {
        const MASK mask = MakeMask(path, 8, evenOdd, 1, 0);
        EXPECT_EQ(0, SumOf(mask));
        ZrPathBufFree(mask.buf);
    }
    ZrPathDeletePtr(path, 0);
}

/* Two boxes joined: the inner 20 wide from (20, 20), the outer 40 wide from (10, 10) or overlapping. */
MASK MaskOfTwoBoxes(PATHREC *first, PATHREC *second, int evenOdd)
{
    zr32::ChainLink(zr32::joinChain, first, second);
    const MASK mask = MakeMask(first, 8, evenOdd, 1, 0);
    zr32::RecordFree(first);
    zr32::RecordFree(second);
    return mask;
}

TEST(BandFill, BoxesWoundAlikeAreSolidOrHaveAHoleByTheRule)
{
    const MASK winding = MaskOfTwoBoxes(MakeBox(10, 10, 30, 30), MakeBox(20, 20, 40, 40), 0);
    const MASK evenOdd = MaskOfTwoBoxes(MakeBox(10, 10, 30, 30), MakeBox(20, 20, 40, 40), 1);
    EXPECT_EQ(255, At(winding, 15, 15));
    EXPECT_EQ(255, At(winding, 25, 25));
    EXPECT_EQ(255, At(winding, 35, 35));
    EXPECT_EQ(0, At(winding, 35, 15));
    EXPECT_EQ(255, At(evenOdd, 15, 15));
    EXPECT_EQ(0, At(evenOdd, 25, 25));
    EXPECT_EQ(255, At(evenOdd, 35, 35));
    ZrPathBufFree(winding.buf);
    ZrPathBufFree(evenOdd.buf);
}

TEST(BandFill, ABoxWoundAgainstItsFrameIsAHoleUnderBothRules)
{
    for (int evenOdd : {0, 1}) {
        const MASK mask = MaskOfTwoBoxes(MakeBox(10, 10, 50, 50), MakeBox(20, 20, 40, 40, false), evenOdd);
        EXPECT_EQ(255, At(mask, 15, 30));
        EXPECT_EQ(0, At(mask, 30, 30));
        EXPECT_EQ(255, At(mask, 45, 30));
        ZrPathBufFree(mask.buf);
    }
}

TEST(BandFill, AVertexOnASampleRowGivesTheSpansOfItsNeighbours)
{
    /* With the half pixel the left and right corner lie exactly on a sample row, at y = 13. */
    PATHREC *path = MakePath({{6, 20, 2.5}, {2, 30, 12.5}, {2, 20, 22.5}, {2, 10, 12.5}, {3, 20, 2.5}});
    const MASK mask = MakeMask(path, 8, 0, 1, 0);
    for (int y = 4; y < 22; y++) EXPECT_EQ(255, At(mask, 20, y)) << y;
    int64_t above = 0, at = 0, below = 0;
    for (int x = 0; x < 40; x++) {
        above += At(mask, x, 11);
        at += At(mask, x, 12);
        below += At(mask, x, 13);
    }
    /* Twice the distance from the tip, in the mean of the sixteen rows: 8.47, 9.47, and 9.53 on the other side. */
    EXPECT_NEAR(16.94 * 255, static_cast<double>(above), 40);
    EXPECT_NEAR(18.94 * 255, static_cast<double>(at), 40);
    EXPECT_NEAR(19.06 * 255, static_cast<double>(below), 40);
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, AHardMaskIsMovedByAHalfInYOnly)
{
    PATHREC *path = MakeBox(2, 2, 12, 12);
    const MASK mask = EmptyMask(8, 16, 16);
    zr32::PathBandFill(path, mask.buf, 0, 0, 0, 0x10000, 0, 0);
    /* x runs from 2 to 12; y from 2.5 to 12.5, so the rows through 3 to 12 are inside. */
    for (int y = 0; y < 16; y++)
        for (int x = 0; x < 16; x++)
            EXPECT_EQ(x >= 2 && x < 12 && y >= 3 && y <= 12 ? 255 : 0, At(mask, x, y)) << x << ' ' << y;
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, AHardPixelIsOnFrom116Of256)
{
    /* One row; the right end covers 115/256, then 116/256, of pixel 20. */
    static const struct {
        double right;
        int want;
    } cases[] = {{20 + 115.9 / 256, 0}, {20 + 116.1 / 256, 255}};
    for (const auto &c : cases) {
        PATHREC *path = MakeBox(10, 2, c.right, 6);
        const MASK mask = EmptyMask(8, 30, 10);
        zr32::PathBandFill(path, mask.buf, 0, 0, 0, 0x10000, 0, 0);
        EXPECT_EQ(255, At(mask, 19, 4));
        EXPECT_EQ(c.want, At(mask, 20, 4)) << c.right;
        ZrPathBufFree(mask.buf);
        ZrPathDeletePtr(path, 0);
    }
}

TEST(BandFill, FourRowsCoverExactlyInXAndByQuartersInY)
{
    /* x from 10.3 + 0.5 to 20.5: pixel 10 is covered by 0.2. y from 5.1 + 0.5: of pixel row 5 only the sample at 5.75.
     */
    PATHREC *path = MakeBox(10.3, 5.1, 20, 9);
    const MASK mask = EmptyMask(8, 30, 16);
    zr32::PathBandFill(path, mask.buf, 0, 999, 0, 0x10000, 0, 0);
    EXPECT_EQ(static_cast<int>(64 * 4 * 0.2 - 1), At(mask, 10, 7));
    EXPECT_EQ(255, At(mask, 11, 7));
    EXPECT_EQ(64 - 1, At(mask, 15, 5));
    EXPECT_EQ(static_cast<int>(64 * 0.2 - 1), At(mask, 10, 5));
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, SixteenRowsCountSixteenthsInY)
{
    /* y from 5.25 + 0.5: four samples of row 5, the first of which lies on the edge, moved off it by the nudge. */
    PATHREC *path = MakeBox(10, 5.25, 20, 9);
    const MASK mask = EmptyMask(8, 30, 16);
    zr32::PathBandFill(path, mask.buf, 0, 1, 0, 0x10000, 0, 0);
    EXPECT_EQ(3 * 16 - 1, At(mask, 15, 5));
    EXPECT_EQ(255, At(mask, 15, 6));
    EXPECT_EQ(126, At(mask, 10, 6)); /* half, 16 x 8 - 1, less what the nudge takes: cut */
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, SubPixelMasksIgnoreTheRowsAskedFor)
{
    PATHREC *path = MakeCircle(20, 20, 11.3);
    const MASK one = MakeMask(path, 4, 0, 0, 0);
    const MASK two = MakeMask(path, 4, 0, 999, 0);
    const MASK three = MakeMask(path, 4, 0, 1, 0);
    EXPECT_TRUE(SameMask(one, two));
    EXPECT_TRUE(SameMask(one, three));
    for (const MASK &mask : {one, two, three}) ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, SubPixelsAreByteRowsFromTheTopAndBitsFromTheLeft)
{
    /* x from 10.25 + 0.5 to 15.5, y from 5.25 + 0.5 to 9.5. */
    PATHREC *path = MakeBox(10.25, 5.25, 15, 9);
    const MASK mask = EmptyMask(32, 30, 16);
    zr32::PathBandFill(path, mask.buf, 0, 1, 0, 0x10000, 0, 0);
    EXPECT_EQ(0xFFFFFFFFu, WordAt(mask, 5, 7));
    EXPECT_EQ(0u, WordAt(mask, 12, 7));
    EXPECT_EQ(0xFCFCFCFCu, WordAt(mask, 10, 7)); /* six sub-columns stay outside */
    EXPECT_EQ(0x0F0F0F0Fu, WordAt(mask, 15, 7)); /* four inside */
    EXPECT_EQ(0xFFFFFFFFu, WordAt(mask, 12, 5)); /* the sample at 5.75 lies on the edge, before the nudge */
    EXPECT_EQ(0xFF000000u, WordAt(mask, 12, 9)); /* 9.0, 9.25, and 9.5, which the edge there is nudged past */
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, OfTwoSpansOfASampleRowInOnePixelTheLaterStands)
{
    /* Two narrow boxes inside pixel 10: eighths 1 to 3 and 5 to 7. */
    PATHREC *path = MakeBox(9.625, 2, 9.875, 9);
    PATHREC *second = MakeBox(10.125, 2, 10.375, 9);
    zr32::ChainLink(zr32::joinChain, path, second);
    const MASK mask = EmptyMask(32, 20, 12);
    zr32::PathBandFill(path, mask.buf, 0, 1, 0, 0x10000, 0, 0);
    EXPECT_EQ(0xF9F9F9F9u, WordAt(mask, 10, 5));
    ZrPathBufFree(mask.buf);
    zr32::RecordFree(path);
    zr32::RecordFree(second);
}

TEST(BandFill, ABufferOfOneBandIsFilledToItsLastRow)
{
    for (int height : {49, 50, 51, 100}) {
        PATHREC *path = MakeBox(2, -3, 12, 200);
        const MASK mask = EmptyMask(8, 20, height);
        EXPECT_EQ(1, zr32::PathBandFill(path, mask.buf, 0, 1, 0, 0x10000, 0, 0));
        for (int y = 0; y < height; y++) EXPECT_EQ(255, At(mask, 6, y)) << height << ' ' << y;
        ZrPathBufFree(mask.buf);
        ZrPathDeletePtr(path, 0);
    }
}

TEST(BandFill, ACurveOfOnePointAddsNothing)
{
    PATHREC *path = MakePath({{6, 7.3, 9.1}, {4, 7.3, 9.1}, {4, 7.3, 9.1}, {5, 7.3, 9.1}});
    const MASK mask = MakeMask(path, 8, 0, 1, 0);
    EXPECT_EQ(0, SumOf(mask));
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, ShapeNodesAndUnknownKindsAddNothing)
{
    /* An ellipse, a polygon and a rectangle shape are stepped over; a kind that nobody knows ends the walk. */
    PATHREC *path = MakePath({{6, 5, 5},
                              {0x100, 9, 9},
                              {6, 0, 0},
                              {0x200, 9, 9},
                              {0x400, 5, 0},
                              {6, 9, 9},
                              {0x800, 1, 1},
                              {2, 20, 5},
                              {2, 20, 20},
                              {3, 5, 20}});
    const MASK mask = EmptyMask(8, 30, 30);
    EXPECT_EQ(1, zr32::PathBandFill(path, mask.buf, 0, 1, 0, 0x10000, 0, 0));
    EXPECT_EQ(0, SumOf(mask));
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, SkipLeavesTheBufferAlone)
{
    PATHREC *path = MakeBox(2, 2, 12, 12);
    const MASK mask = EmptyMask(8, 20, 20);
    EXPECT_EQ(1, zr32::PathBandFill(path, mask.buf, 0, 1, 1, 0x10000, 0, 0));
    EXPECT_EQ(0, SumOf(mask));
    ZrPathBufFree(mask.buf);
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, BuffersThatHoldNoMaskAreLeftAlone)
{
    PATHREC *path = MakeBox(2, 2, 12, 12);
    EXPECT_EQ(1, zr32::PathBandFill(path, nullptr, 0, 1, 0, 0x10000, 0, 0));
    EXPECT_EQ(1, zr32::PathBandFill(nullptr, nullptr, 0, 1, 0, 0x10000, 0, 0));
    for (int bits : {24, 64}) {
        const MASK mask = EmptyMask(bits, 20, 20);
        EXPECT_EQ(1, zr32::PathBandFill(path, mask.buf, 0, 1, 0, 0x10000, 0, 0));
        EXPECT_EQ(0, SumOf(mask));
        ZrPathBufFree(mask.buf);
    }
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, CoverageOfACircleIsItsArea)
{
    for (double radius : {10.0, 33.3, 120.0}) {
        PATHREC *path = MakeCircle(radius + 7.1, radius + 3.7, radius);
        const MASK mask = MakeMask(path, 8, 0, 1, 0);
        const double area = 3.14159265358979 * radius * radius;
        EXPECT_NEAR(area, static_cast<double>(SumOf(mask)) / 255, 0.002 * area + radius * 0.1);
        ZrPathBufFree(mask.buf);
        ZrPathDeletePtr(path, 0);
    }
}

TEST(BandFill, CurvesTooLongToStepEnd)
{
    /* At this zoom a quarter turn would need steps below 1/65536 of its parameter. */
    PATHREC *path = MakePath({{6, -30000, 0}, {4, 30000, 30000}, {4, 30000, -30000}, {5, -30000, 0}});
    for (int bits : {8, 32}) {
        const MASK mask = EmptyMask(bits, 40, 120);
        EXPECT_EQ(1, zr32::PathBandFill(path, mask.buf, 0, 1, 0, 0x7FFFFFFF, -20, -60));
        ZrPathBufFree(mask.buf);
    }
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, LinesFarLongerThanTheBufferEnd)
{
    PATHREC *path = MakePath({{6, -30000, -32000}, {2, 30000, 32000}, {2, 30000, -32000}, {3, -30000, -32000}});
    for (const ZRFIXED zoom : {0x10000, 0x100000, 0x7FFFFFFF, INT32_MIN}) {
        const MASK mask = EmptyMask(8, 40, 120);
        EXPECT_EQ(1, zr32::PathBandFill(path, mask.buf, 0, 1, 0, zoom, -20, -60));
        ZrPathBufFree(mask.buf);
    }
    ZrPathDeletePtr(path, 0);
}

TEST(BandFill, EveryFailedAllocationLeavesRowsAsTheyWereAndLeaksNothing)
{
    PATHREC *path = MakeCircle(50, 50, 40);
    const MASK whole = MakeMask(path, 8, 0, 1, 0);
    const int64_t blocks = zr32::FaultLiveBlocks(zr32::ALLOC_BUF);
    for (int n = 1;; n++) {
        const MASK mask = EmptyMask(8, whole.width, whole.height);
        zr32::FaultSet(zr32::ALLOC_BUF, n);
        EXPECT_EQ(1, zr32::PathBandFill(path, mask.buf, 0, 1, 0, 0x10000, whole.rect.left, whole.rect.top));
        const bool struck = zr32::FaultStruck();
        EXPECT_EQ(struck ? 0 : SumOf(whole), SumOf(mask)) << n;
        ZrPathBufFree(mask.buf);
        EXPECT_EQ(blocks, zr32::FaultLiveBlocks(zr32::ALLOC_BUF));
        if (!struck) break;
    }
    zr32::FaultSet(zr32::ALLOC_BUF, 0);
    ZrPathBufFree(whole.buf);
    ZrPathDeletePtr(path, 0);
}

} // namespace
