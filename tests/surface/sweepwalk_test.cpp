/* sweepwalk_test.cpp - the sweeps against their plain form, bit for bit, on random shapes. */
#include "surface/maps.h"

#include "surface/sweep.h"

#include <gtest/gtest.h>

using namespace zr32test;

namespace {

struct BOTH {
    PATHBUF dist;
    PATHBUF offset;
};

BOTH NewPlanes(int width, int height)
{
    return {ZrPathBufAlloc(32, width, height), ZrPathBufAlloc(0x40, width, height)};
}

void FreeBoth(BOTH *planes)
{
    ZrPathBufFree(planes->dist);
    ZrPathBufFree(planes->offset);
}

std::vector<const PATHREC *> Swept(const PATHREC *head)
{
    std::vector<const PATHREC *> records;
    for (; head->nextPath; head = head->nextPath) records.push_back(head);
    return records;
}

class SweepAgainstPlain : public testing::TestWithParam<int> {};

/* Mitre fill and edge sweep over the same planes, as they run in a map, with widths from a fraction to more than the
 * map, at a zoom that leaves no coordinate round. */
TEST_P(SweepAgainstPlain, MitreFillAndEdgeSweepAreEqualBitForBit)
{
    const int group = GetParam();
    static const double widths[] = {0.4, 3.0, 7.25, 12.0, 40.0, 150.0, -0.5, -3.0};
    static const ZRFIXED zooms[] = {0x10000, 0x10000, 0x1547a, 0x8000};
    for (uint32_t k = 0; k < 40; k++) {
        const uint32_t seed = static_cast<uint32_t>(group) * 1000 + k;
        const double width = widths[seed % 8];
        const ZRFIXED zoom = zooms[seed / 8 % 4];
        const int32_t outset = seed % 5 == 0 ? 4 : 0;
        std::vector<PATHREC *> shapes = {RandomShape(seed, 40, 40, 30)};
        if (seed % 3 == 0) shapes.push_back(RandomShape(seed + 500000, 45, 42, 20));
        PATHREC *head = MakeChain(shapes);
        PATHBUF mask = MakeMask(head, outset, zoom);
        ASSERT_NE(nullptr, mask);
        if (outset) zr32::VMapInvertMask(mask);
        const zr32::BUFINFO info = zr32::BufInfo(mask);
        RECT rect;
        ZrPathGetMiniMaxRect(head, zoom, &rect);
        const int originX = static_cast<int>(rect.left) - outset;
        const int originY = static_cast<int>(rect.top) - outset;

        BOTH planes = NewPlanes(info.width, info.height);
        zr32::SURFACEMAP map = {&planes.dist, &planes.offset, nullptr, FixToDb(zoom), originX, originY};
        PLAINMAP plain = EmptyMap(planes.dist);
        const PLAINMASK plainMask = {info.width, info.height, mask};
        ASSERT_EQ(1, zr32::VMapMitreFill(head, width, &map, mask));
        PlainSweep(PLAIN_MITRE, Swept(head), width, 0, plainMask, originX, originY, originX, originY, FixToDb(zoom),
                   &plain);
        ASSERT_EQ("", Difference(planes.dist, planes.offset, plain)) << "mitre, seed " << seed << " width " << width;
        const int32_t side = seed % 7 == 0 ? -1 : outset; /* rays that begin a pixel outside */
        ASSERT_EQ(1, zr32::VMapEdgeSweep(head, width, side, &map, mask));
        PlainSweep(PLAIN_EDGE, Swept(head), width, side < 0 ? -1 : 0, plainMask, originX, originY, originX, originY,
                   FixToDb(zoom), &plain);
        ASSERT_EQ("", Difference(planes.dist, planes.offset, plain)) << "edge, seed " << seed << " width " << width;
        FreeBoth(&planes);
        ZrPathBufFree(mask);
        FreeChain(head);
    }
}

TEST_P(SweepAgainstPlain, EnvelopeSweepIsEqualBitForBit)
{
    const int group = GetParam();
    for (uint32_t k = 0; k < 15; k++) {
        const uint32_t seed = static_cast<uint32_t>(group) * 1000 + 700 + k;
        PATHREC *shape = RandomShape(seed, 40, 40, 30);
        PATHBUF mask = MakeMask(shape);
        const zr32::BUFINFO info = zr32::BufInfo(mask);
        RECT rect;
        ZrPathGetMiniMaxRect(shape, 0x10000, &rect);
        const int left = static_cast<int>(rect.left);
        const int top = static_cast<int>(rect.top);
        const int originX = left + static_cast<int>(seed % 9) - 4;
        const int originY = top + static_cast<int>(seed % 5) * 3;
        BOTH planes = NewPlanes(60, 55);
        zr32::SURFACEMAP map = {&planes.dist, &planes.offset, nullptr, 1.0, originX, originY};
        PLAINMAP plain = EmptyMap(planes.dist);
        ASSERT_EQ(1, zr32::VMapEnvelopeSweep(shape, 9.0, &map, mask, left, top));
        PlainSweep(PLAIN_ENVELOPE, {shape}, 9.0, -1, {info.width, info.height, mask}, left, top, originX, originY, 1.0,
                   &plain);
        ASSERT_EQ("", Difference(planes.dist, planes.offset, plain)) << "seed " << seed;
        FreeBoth(&planes);
        ZrPathBufFree(mask);
        zr32::RecordFree(shape);
    }
}

INSTANTIATE_TEST_SUITE_P(Random, SweepAgainstPlain, testing::Range(0, 8));

} // namespace
