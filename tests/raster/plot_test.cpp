/* plot_test.cpp - outlines as masks: thin chains, ramps, ellipses, directions; random input against the plain form. */
#include "frame/faults.h"
#include "raster/masks.h"
#include "raster/plain_plot.h"
#include "raster/plot.h"
#include "support/randompath.h"
#include "support/shapes.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace zr32test;
using namespace zr32;

namespace {

struct PLOT {
    MASK mask;
    PATHBUF directions;
};

PLOT EmptyPlot(int width, int height)
{
    return {EmptyMask(8, width, height), ZrPathBufAlloc(8, width, height)};
}

/* Plots a record into 8-bit planes whose first pixel is (0, 0). */
PLOT PlotOf(const PATHREC *path, int width, int height, bool smooth, const PLACEMENT &place = PlaceOnMask(1.0, 0, 0))
{
    const PLOT plot = EmptyPlot(width, height);
    const PLOTPLANES planes = {plot.mask.buf, plot.directions, BufInfo(plot.mask.buf)};
    if (smooth)
        PathPlotSmooth(path, place, planes);
    else
        PathPlotHard(path, place, planes);
    return plot;
}

int DirectionAt(const PLOT &plot, int x, int y)
{
    return plot.directions[y * plot.mask.width + x];
}

void FreePlot(const PLOT &plot)
{
    ZrPathBufFree(plot.mask.buf);
    ZrPathBufFree(plot.directions);
}

int NeighboursSet(const MASK &mask, int x, int y)
{
    int count = -1;
    for (int dy = -1; dy <= 1; dy++)
        for (int dx = -1; dx <= 1; dx++) count += At(mask, x + dx, y + dy) != 0;
    return count;
}

TEST(Plot, DirectionsMergeByTheTable)
{
    static const struct {
        uint8_t old, added, want;
    } cases[] = {{0x00, 0x00, 0x00}, {0x00, 0x80, 0x80}, {0x00, 0xC0, 0xC0}, {0x00, 0xF0, 0xF0}, {0x80, 0x00, 0x80},
                 {0x80, 0x80, 0x80}, {0x80, 0xC0, 0xF0}, {0x80, 0xF0, 0x80}, {0xC0, 0x00, 0xC0}, {0xC0, 0x80, 0xF0},
                 {0xC0, 0xC0, 0xC0}, {0xC0, 0xF0, 0xC0}, {0xF0, 0x00, 0xF0}, {0xF0, 0x80, 0xF0}, {0xF0, 0xC0, 0xF0},
                 {0xF0, 0xF0, 0xF0}, {0x08, 0x80, 0xF0}, {0x0F, 0x00, 0xF0}};
    for (const auto &c : cases) EXPECT_EQ(c.want, DirMerge(c.old, c.added)) << int{c.old} << ' ' << int{c.added};
}

TEST(Plot, AHardSquareIsAClosedChainOf255)
{
    PATHREC *path = MakeBox(10, 10, 20, 20);
    const MASK mask = MakeMask(path, 8, 0, 0, 1);
    for (int y = mask.rect.top; y < mask.rect.bottom; y++)
        for (int x = mask.rect.left; x < mask.rect.right; x++) {
            const bool inSpanX = x >= 10 && x <= 20, inSpanY = y >= 10 && y <= 20;
            const bool on = (inSpanX && (y == 10 || y == 20)) || (inSpanY && (x == 10 || x == 20));
            EXPECT_EQ(on ? 255 : 0, At(mask, x, y)) << x << ' ' << y;
        }
    ZrPathBufFree(mask.buf);
    RecordFree(path);
}

TEST(Plot, HardChainsAreConnectedAndThin)
{
    for (unsigned seed = 0; seed < 60; seed++) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto place = [&] { return 10 + static_cast<double>(random() % 100000) / 100000 * 80; };
        PATHREC *path =
            seed % 2
                ? MakePath({{6, place(), place()}, {2, place(), place()}})
                : MakePath(
                      {{6, place(), place()}, {4, place(), place()}, {4, place(), place()}, {4, place(), place()}});
        const MASK mask = EmptyMask(8, 100, 100);
        EXPECT_EQ(1, PathOutlineToBuf(path, mask.buf, 0, 1, 0x10000, 0, 0));
        int ends = 0, set = 0, alone = 0;
        for (int y = 0; y < 100; y++)
            for (int x = 0; x < 100; x++) {
                if (At(mask, x, y) == 0) continue;
                set++;
                EXPECT_EQ(255, At(mask, x, y));
                const int neighbours = NeighboursSet(mask, x, y);
                ends += neighbours == 1;
                alone += neighbours == 0;
            }
        EXPECT_TRUE(alone == 0 || set == 1);
        EXPECT_TRUE(seed % 2 == 0 || ends <= 2);
        ZrPathBufFree(mask.buf);
        RecordFree(path);
    }
}

TEST(Plot, RandomPathsEqualThePlainForm)
{
    for (unsigned seed = 0; seed < 400; seed++) {
        SCOPED_TRACE(seed);
        RANDOM random(seed);
        const bool smooth = seed % 2;
        /* Small ones double their steps, large ones halve them, and some leave the planes. */
        RANDOMSHAPE shape;
        const int extents[4] = {2, 12, 60, 180};
        shape.low = seed % 3 == 0 ? -20 : 2;
        shape.high = shape.low + extents[seed / 2 % 4];
        shape.shapes = true;
        PATHREC *path = RandomPath(random, shape);
        const double zoom = seed % 5 == 0 ? 1.75 : 1.0;
        const int left = Pick(random, -3, 3), top = Pick(random, -3, 3);
        const PLOT plot = PlotOf(path, 120, 100, smooth, PlaceOnMask(zoom, left, top));
        const PLOT plain = EmptyPlot(120, 100);
        PlainPlot(path, zoom, left, top, smooth, plain.mask.buf, plain.directions);
        EXPECT_TRUE(SameMask(plain.mask, plot.mask));
        EXPECT_EQ(0, memcmp(plain.directions, plot.directions, 120 * 100));
        FreePlot(plot);
        FreePlot(plain);
        RecordFree(path);
        if (HasFailure()) return;
    }
}

TEST(Plot, ASmoothStraightEdgeSharesOutTo255)
{
    /* Upright at x = 10.8 with the half pixel: 0.3 right of the centre of pixel 10, so trunc(76.5) go to pixel 11. */
    PATHREC *path = MakePath({{6, 10.3, 5}, {2, 10.3, 25}});
    const MASK mask = EmptyMask(8, 30, 40);
    PathOutlineToBuf(path, mask.buf, 1, 1, 0x10000, 0, 0);
    for (int y = 6; y < 25; y++) {
        EXPECT_EQ(179, At(mask, 10, y));
        EXPECT_EQ(76, At(mask, 11, y));
        EXPECT_EQ(0, At(mask, 9, y));
        EXPECT_EQ(0, At(mask, 12, y));
    }
    ZrPathBufFree(mask.buf);
    RecordFree(path);
}

TEST(Plot, ASmoothSlopeSharesOutTo255WhereItWasPlottedOnce)
{
    PATHREC *path = MakePath({{6, 5, 10.2}, {2, 45, 22.9}});
    const MASK mask = EmptyMask(8, 60, 40);
    PathOutlineToBuf(path, mask.buf, 1, 1, 0x10000, 0, 0);
    for (int x = 8; x < 42; x++) {
        int sum = 0, rows = 0;
        for (int y = 0; y < 40; y++) {
            sum += At(mask, x, y);
            rows += At(mask, x, y) != 0;
        }
        /* Samples less than a pixel apart may raise a byte once more, and add the row of a neighbour. */
        EXPECT_LE(255, sum) << x;
        EXPECT_GE(3, rows) << x;
    }
    ZrPathBufFree(mask.buf);
    RecordFree(path);
}

TEST(Plot, CrossingLinesKeepTheStrongerValue)
{
    PATHREC *one = MakePath({{6, 10.3, 5}, {2, 10.3, 25}});
    PATHREC *both = MakePath({{6, 10.3, 5}, {2, 10.3, 25}, {6, 5, 15.1}, {2, 20, 15.1}});
    const PLOT a = PlotOf(one, 30, 40, true);
    const PLOT b = PlotOf(both, 30, 40, true);
    for (int y = 0; y < 40; y++)
        for (int x = 0; x < 30; x++) EXPECT_LE(At(a.mask, x, y), At(b.mask, x, y));
    FreePlot(a);
    FreePlot(b);
    RecordFree(one);
    RecordFree(both);
}

TEST(Plot, ALineOfNoLengthPlotsNothing)
{
    PATHREC *path = MakePath({{6, 10, 10}, {2, 10, 10}, {3, 10, 10}});
    for (int aaMode : {0, 1}) {
        const MASK mask = MakeMask(path, 8, 0, aaMode, 1);
        EXPECT_EQ(0, SumOf(mask));
        ZrPathBufFree(mask.buf);
    }
    RecordFree(path);
}

TEST(Plot, ATieGoesToTheLeftOnAStraightLineDeliberately)
{
    /* At the centre of a pixel s is 0 and the near byte 255; at x = 10 (that is 10.5 - 0.5 with the half pixel: pixel
     * 10, place 0) |s| is 0.5, the near byte 255 - 127 = 128: below 129, so the left neighbour takes it. */
    PATHREC *path = MakePath({{6, 9.5, 5}, {2, 9.5, 25}});
    const PLOT plot = PlotOf(path, 30, 40, false);
    EXPECT_EQ(255, At(plot.mask, 9, 15));
    EXPECT_EQ(0, At(plot.mask, 10, 15));
    FreePlot(plot);
    /* The same line as a curve stays in its own pixel. */
    PATHREC *curve = MakePath({{6, 9.5, 5}, {4, 9.5, 10}, {4, 9.5, 20}, {4, 9.5, 25}});
    const PLOT other = PlotOf(curve, 30, 40, false);
    EXPECT_EQ(0, At(other.mask, 9, 15));
    EXPECT_EQ(255, At(other.mask, 10, 15));
    FreePlot(other);
    RecordFree(path);
    RecordFree(curve);
}

TEST(Plot, DirectionsFollowTheOutline)
{
    PATHREC *path = MakeBox(10, 10, 20, 20);
    const PLOT plot = PlotOf(path, 30, 30, false);
    EXPECT_EQ(0x80, DirectionAt(plot, 20, 15));
    EXPECT_EQ(0xC0, DirectionAt(plot, 10, 15));
    EXPECT_EQ(0xF0, DirectionAt(plot, 15, 10));
    EXPECT_EQ(0xF0, DirectionAt(plot, 15, 20));
    EXPECT_EQ(0x00, DirectionAt(plot, 15, 15));
    /* A vertex that is turned at keeps the code of its first line, merged with that of the second. */
    EXPECT_EQ(0xF0, DirectionAt(plot, 20, 10));
    FreePlot(plot);
    RecordFree(path);
}

TEST(Plot, APeakIsMarkedWithBothDirections)
{
    PATHREC *path = MakePath({{6, 10, 10}, {2, 15, 30}, {2, 20, 10}});
    const PLOT plot = PlotOf(path, 30, 40, false);
    EXPECT_EQ(0xF0, DirectionAt(plot, 15, 30));
    EXPECT_EQ(0x80, DirectionAt(plot, 10, 12));
    EXPECT_EQ(0xC0, DirectionAt(plot, 19, 12));
    FreePlot(plot);
    RecordFree(path);
}

TEST(Plot, SmoothAndHardCurvesEndOnTheirEndPoint)
{
    for (double scale : {0.01, 0.3, 1.0, 7.0}) {
        const double x = 20 + 5 * scale, y = 20 + 3 * scale;
        PATHREC *path = MakePath({{6, 20, 20}, {4, 20 + 2 * scale, 20}, {4, 20 + 4 * scale, 20 + scale}, {4, x, y}});
        for (bool smooth : {false, true}) {
            const PLOT plot = PlotOf(path, 80, 80, smooth);
            EXPECT_NE(0, At(plot.mask, static_cast<int>(x + 0.5), static_cast<int>(y + 0.5))) << scale << smooth;
            FreePlot(plot);
        }
        RecordFree(path);
    }
}

TEST(Plot, SmoothEllipsesLieOnTheirOutlineAndHardOnesAreIgnored)
{
    for (double rotation : {0.0, 0.7, -2.1}) {
        for (uint16_t sense : {uint16_t{0}, uint16_t{1}}) {
            PATHREC *path =
                MakePath({{6, 20, 30}, {0x100, 80, 60}, {static_cast<uint16_t>(0x100 | sense), rotation, 0}});
            const PLOT hard = PlotOf(path, 100, 100, false);
            EXPECT_EQ(0, SumOf(hard.mask));
            FreePlot(hard);
            const PLOT plot = PlotOf(path, 100, 100, true);
            const double c = std::cos(rotation), s = std::sin(rotation);
            int on = 0;
            for (int y = 0; y < 100; y++)
                for (int x = 0; x < 100; x++) {
                    const double dx = x - 50.0, dy = y - 45.0;
                    const double u = (dx * c - dy * s) / 30, v = (dx * s + dy * c) / 15;
                    const double r = std::sqrt(u * u + v * v);
                    if (At(plot.mask, x, y) > 128) {
                        on++;
                        EXPECT_NEAR(1.0, r, 0.06) << x << ' ' << y;
                    }
                }
            EXPECT_LT(120, on);
            EXPECT_NE(0, At(plot.mask, static_cast<int>(50.5 + 30 * c), static_cast<int>(45.5 - 30 * s)));
            EXPECT_NE(0, At(plot.mask, static_cast<int>(50.5 - 30 * c), static_cast<int>(45.5 + 30 * s)));
            FreePlot(plot);
            RecordFree(path);
        }
    }
}

TEST(Plot, LargeEllipsesLieOnTheirOutlineToThePixel)
{
    /* A circle of radius 30000, looked at through windows all around it. */
    constexpr double radius = 30000;
    constexpr int side = 40;
    PATHREC *path = MakePath({{6, -radius, -radius}, {0x100, radius, radius}, {0x100, 0.3, 0}});
    for (int i = 0; i < 12; i++) {
        const double angle = i * 3.14159265358979 / 6;
        const int left = static_cast<int>(radius * std::cos(angle)) - side / 2;
        const int top = static_cast<int>(radius * std::sin(angle)) - side / 2;
        const PLOT plot = PlotOf(path, side, side, true, PlaceOnMask(1.0, left, top));
        int on = 0;
        for (int y = 0; y < side; y++)
            for (int x = 0; x < side; x++) {
                if (At(plot.mask, x, y) <= 128) continue;
                on++;
                EXPECT_NEAR(radius, std::hypot(x + left, y + top), 0.75) << i << ": " << x << ' ' << y;
            }
        EXPECT_LT(side / 4, on) << i;
        FreePlot(plot);
    }
    RecordFree(path);
}

TEST(Plot, EllipsesTurnByTheLowBitOfTheirLastNode)
{
    PATHREC *path = MakePath({{6, 20, 30}, {0x100, 80, 60}, {0x100, 0, 0}});
    const PLOT plain = PlotOf(path, 100, 100, true);
    EXPECT_EQ(0xC0, DirectionAt(plain, 20, 45) | DirectionAt(plain, 20, 44)) << "the left goes up";
    path->nodes[2].type = 0x101;
    const PLOT turned = PlotOf(path, 100, 100, true);
    EXPECT_EQ(0x80, DirectionAt(turned, 20, 45) | DirectionAt(turned, 20, 44)) << "the left goes down";
    for (int i = 0; i < 100 * 100; i++) EXPECT_NEAR(plain.mask.buf[i], turned.mask.buf[i], 200);
    FreePlot(plain);
    FreePlot(turned);
    RecordFree(path);
}

TEST(Plot, SmallAndEndlessEllipsesEnd)
{
    for (double size : {0.0, 0.001, 0.4, 30000.0}) {
        PATHREC *path = MakePath({{6, 20, 20}, {0x100, 20 + size, 20 + size}, {0x100, 1, 0}});
        const PLOT plot = PlotOf(path, 60, 60, true);
        EXPECT_EQ(size<1000, SumOf(plot.mask)> 0) << size;
        FreePlot(plot);
        RecordFree(path);
    }
}

TEST(Plot, AnOutlineIn32BitsIsCoveredWhereTheHardOneIs)
{
    PATHREC *path = MakeCircle(25, 25, 15);
    const MASK hard = MakeMask(path, 8, 0, 0, 1);
    for (int aaMode : {0, 1}) {
        const MASK mask = MakeMask(path, 4, 0, aaMode, 1);
        ASSERT_EQ(32, mask.bits);
        for (int y = mask.rect.top; y < mask.rect.bottom; y++)
            for (int x = mask.rect.left; x < mask.rect.right; x++)
                EXPECT_EQ(At(hard, x, y) ? 0u : 0xFFFFFFFFu, WordAt(mask, x, y));
        ZrPathBufFree(mask.buf);
    }
    ZrPathBufFree(hard.buf);
    RecordFree(path);
}

TEST(Plot, NothingIsWrittenOutsideTheBuffer)
{
    for (unsigned seed = 0; seed < 60; seed++) {
        std::mt19937 random(seed);
        const auto place = [&] { return static_cast<double>(random() % 100000) / 100000 * 120 - 50; };
        PATHREC *path = MakePath({{6, place(), place()},
                                  {2, place(), place()},
                                  {4, place(), place()},
                                  {4, place(), place()},
                                  {4, place(), place()},
                                  {0x100, place(), place()},
                                  {6, place(), place()}});
        for (bool smooth : {false, true}) FreePlot(PlotOf(path, static_cast<int>(seed % 20), 17, smooth));
        RecordFree(path);
    }
}

TEST(Plot, SegmentsOfAnyLengthEnd)
{
    PATHREC *path = MakePath({{6, -32000, -32000},
                              {2, 32000, 32000},
                              {4, -32000, 32000},
                              {4, 32000, -32000},
                              {4, -32000, 100},
                              {0x100, 30000, 30000},
                              {6, 3, 3}});
    for (const ZRFIXED zoom : {0x10000, 0x7FFFFFFF, INT32_MIN, 0, -1}) {
        for (int aaMode : {0, 1}) {
            const MASK mask = EmptyMask(8, 40, 40);
            EXPECT_EQ(1, PathOutlineToBuf(path, mask.buf, aaMode, 1, zoom, -20, -20));
            ZrPathBufFree(mask.buf);
        }
    }
    RecordFree(path);
}

TEST(Plot, WithoutASecondPlaneNothingIsPlotted)
{
    PATHREC *path = MakeBox(10, 10, 20, 20);
    for (int bits : {8, 32}) {
        const MASK mask = EmptyMask(bits, 30, 30);
        const int64_t blocks = FaultLiveBlocks(ALLOC_BUF);
        FaultSet(ALLOC_BUF, 1);
        EXPECT_EQ(0, PathOutlineToBuf(path, mask.buf, 0, 1, 0x10000, 0, 0));
        FaultSet(ALLOC_BUF, 0);
        EXPECT_EQ(blocks, FaultLiveBlocks(ALLOC_BUF));
        EXPECT_EQ(0, SumOf(mask));
        ZrPathBufFree(mask.buf);
    }
    EXPECT_EQ(0, PathOutlineToBuf(path, nullptr, 0, 1, 0x10000, 0, 0));
    RecordFree(path);
}

} // namespace
