/* planes_test.cpp - rows of the shaders' buffers: what a buffer does not have reads as 0. */
#include "shade/planes.h"

#include <gtest/gtest.h>

using namespace zr32;

namespace {

/* Two pixels of eight bytes between others that no row may show. */
struct PIXELS {
    uint8_t bytes[32];
    SHADEROW row = {bytes + 8, 2};

    PIXELS()
    {
        for (uint8_t &byte : bytes) byte = 7;
    }
};

TEST(Planes, PixelsBesideARowReadAsZero)
{
    const PIXELS p;
    EXPECT_EQ(7, ByteAt(p.row, 0));
    EXPECT_EQ(7, ByteAt(p.row, 1));
    EXPECT_NE(0u, DistanceBitsAt(p.row, 1));
    EXPECT_NE(0, OffsetAt(p.row, 1, 0).x1);
    for (const int32_t x : {-1, 2}) {
        uint8_t colour[3] = {9, 9, 9};
        ColourAt(p.row, x, colour);
        EXPECT_EQ(0, colour[0] | colour[1] | colour[2]) << x;
        EXPECT_EQ(0, ByteAt(p.row, x)) << x;
        EXPECT_EQ(0u, DistanceBitsAt(p.row, x)) << x;
        const OFFSETPAIR offset = OffsetAt(p.row, x, 0);
        EXPECT_EQ(0, offset.x1) << x;
        EXPECT_EQ(0, offset.hasSecond) << x;
    }
}

TEST(Planes, RowsThatABufferDoesNotHaveAreEmpty)
{
    uint8_t pixels[6] = {};
    const BUFINFO info = {3, 2, 8, 1, 3};
    EXPECT_EQ(3, RowOf(pixels, info, 1, 1).count);
    EXPECT_EQ(pixels + 3, RowOf(pixels, info, 1, 1).pixels);
    for (const int32_t y : {-1, 2}) EXPECT_EQ(0, RowOf(pixels, info, y, 1).count) << y;
    EXPECT_EQ(0, RowOf(pixels, info, 0, 3).count) << "pixels of fewer bytes than asked for";
}

} // namespace
