/* putfragment_test.cpp - the rules by which samples share a pixel, by hand. */
#include "frame/faults.h"
#include "planes.h"
#include "render3d/coverage.h"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr uint32_t opaque = 0xFF102030u;
constexpr uint32_t glassy = 0x80102030u;

void Solid(ABUF *abuf, int32_t edge, uint32_t colour, double z, double facing = 1)
{
    abuf->edgeId = edge;
    SAMPLE sample = Lit(colour, z, facing);
    ABufPutSolid(abuf, 0, 0, &sample);
}

/* The right half of pixel (0, 0), or all of it, or a triangle. */
const EDGESHAPE rightHalf = {EDGE_ALONG, {0.5, 0.5}, {0.5, 1.5}, {3, 0.5}};
const EDGESHAPE leftHalf = {EDGE_ALONG, {0.5, 0.5}, {0.5, 1.5}, {-3, 0.5}};
const EDGESHAPE bottomHalf = {EDGE_ACROSS, {}, {0, -1}, {0.5, 0.5}};
const EDGESHAPE whole = {EDGE_ALONG, {0, 0.5}, {0, 1.5}, {3, 0.5}};
const EDGESHAPE topTriangle = {EDGE_TRIANGLE, {0, 0}, {1, 0}, {0.5, 0.5}};
const EDGESHAPE wholeTriangle = {EDGE_TRIANGLE, {-9, -9}, {20, -9}, {-9, 20}};

void Edge(ABUF *abuf, int32_t edge, uint32_t colour, double z, const EDGESHAPE &shape, double facing = 1)
{
    abuf->edgeId = edge;
    SAMPLE sample = Lit(colour, z, facing);
    ABufPutEdge(abuf, 0, 0, &sample, &shape);
}

ABUFPIXEL Pixel(const ABUF *abuf)
{
    return *PlanePixel(abuf, 0, 0);
}

class Put : public ::testing::Test {
  protected:
    void SetUp() override
    {
        abuf = MakePlane(2, 2);
    }
    void TearDown() override
    {
        PlaneFree(&abuf);
    }
    ABUF abuf;
};

TEST_F(Put, OpaqueSamplesCompeteByDepth)
{
    Solid(&abuf, 1, 0xFF000005, 5);
    Solid(&abuf, 2, 0xFF000007, 7);
    Solid(&abuf, 3, 0xFF000006, 6);
    EXPECT_EQ(0xFF000007u, Pixel(&abuf).value);
    EXPECT_EQ(3007, Pixel(&abuf).zTag);
    EXPECT_EQ(3002, Pixel(&abuf).edgeTag);
    Solid(&abuf, 4, 0xFF000008, 7.9); /* equal tags: the first stays */
    EXPECT_EQ(0xFF000007u, Pixel(&abuf).value);
    EXPECT_EQ(0u, abuf.pool.live);
}

TEST_F(Put, FacingAwayNegatesTheEdge)
{
    Solid(&abuf, 5, opaque, 0, 0);
    EXPECT_EQ(2995, Pixel(&abuf).edgeTag);
}

TEST_F(Put, DepthsAreCutSoThatNoneIsTakenForAList)
{
    const struct {
        double z;
        int tag;
    } cases[] = {{7000, 9999}, {6999, 9999}, {6998.9, 9998}, {1e300, 9999}, {-3000, 0}, {-5000, 0}, {-2999.5, 0}};
    for (const auto &c : cases) {
        *PlanePixel(&abuf, 0, 0) = {};
        Solid(&abuf, 1, opaque, c.z);
        EXPECT_EQ(c.tag, Pixel(&abuf).zTag) << c.z;
    }
    *PlanePixel(&abuf, 0, 0) = {};
    Solid(&abuf, 1, opaque, NAN);
    Solid(&abuf, 1, glassy, INFINITY);
    Edge(&abuf, 1, glassy, NAN, rightHalf);
    EXPECT_EQ(0u, Pixel(&abuf).value);
}

TEST_F(Put, TranslucentOnAnotherEdgeMakesAListOfTwo)
{
    Solid(&abuf, 1, opaque, 5.5);
    Solid(&abuf, 2, glassy, 1.1);
    EXPECT_EQ(zTagList, Pixel(&abuf).zTag);
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(2u, list.size());
    EXPECT_EQ(opaque, list[0].colour);
    EXPECT_EQ(5, list[0].z); /* what the tag kept */
    EXPECT_EQ(1, list[0].edge);
    EXPECT_EQ(coverFull, list[0].coverage);
    EXPECT_EQ(FRAG_WHOLE, list[0].kind);
    EXPECT_EQ(glassy, list[1].colour);
    EXPECT_EQ(static_cast<double>(1.1f), list[1].z);
    EXPECT_EQ(2, list[1].edge);
}

TEST_F(Put, TranslucentSamplesOfOneEdgeCountOnce)
{
    Solid(&abuf, 1, glassy, 5);
    Solid(&abuf, 1, glassy + 1, 9);
    EXPECT_EQ(glassy, Pixel(&abuf).value);
    Solid(&abuf, 2, glassy, 1);
    Solid(&abuf, 2, glassy + 1, 2);
    Solid(&abuf, 1, glassy + 1, 2);
    EXPECT_EQ(2u, ListOf(&abuf, 0, 0).size());
    Solid(&abuf, 1, glassy, 3, -1); /* the same segment from behind is another surface */
    EXPECT_EQ(3u, ListOf(&abuf, 0, 0).size());
}

TEST_F(Put, OpaqueOnAListFreesWhatIsFartherBehindTheHead)
{
    Solid(&abuf, 1, glassy, 1);
    Solid(&abuf, 2, glassy, 2);
    Solid(&abuf, 3, glassy, 3);
    Solid(&abuf, 4, glassy, 4);
    Solid(&abuf, 5, opaque, 3);
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(4u, list.size());
    EXPECT_EQ(1, list[0].z); /* the head stays */
    EXPECT_EQ(3, list[1].edge);
    EXPECT_EQ(4, list[2].edge);
    EXPECT_EQ(5, list[3].edge);
    EXPECT_EQ(4u, abuf.pool.live);
    Solid(&abuf, 5, opaque, 3.5); /* nearer: what was there behind the head goes, of the same edge too */
    ASSERT_EQ(3u, ListOf(&abuf, 0, 0).size());
    EXPECT_EQ(3.5, ListOf(&abuf, 0, 0)[2].z);
}

TEST_F(Put, OpaqueBehindAnOpaqueFragmentOfAListIsHidden)
{
    Solid(&abuf, 1, glassy, 1);
    Solid(&abuf, 2, glassy, 2);
    Solid(&abuf, 3, opaque, 5);
    const size_t length = ListOf(&abuf, 0, 0).size();
    Solid(&abuf, 4, opaque, 5); /* the first of its surface is kept even so */
    EXPECT_EQ(length + 1, ListOf(&abuf, 0, 0).size());
    Solid(&abuf, 4, opaque, 5);
    Solid(&abuf, 4, opaque, 4.9);
    EXPECT_EQ(length + 1, ListOf(&abuf, 0, 0).size());
    Solid(&abuf, 4, opaque, 5.1);
    EXPECT_EQ(5.1f, ListOf(&abuf, 0, 0).back().z);
    /* a partial one hides nothing */
    *PlanePixel(&abuf, 0, 0) = {};
    Solid(&abuf, 1, glassy, 1);
    Edge(&abuf, 3, opaque, 5, rightHalf);
    Solid(&abuf, 4, opaque, 4);
    Solid(&abuf, 4, opaque, 4.5);
    EXPECT_EQ(4.5, ListOf(&abuf, 0, 0).back().z);
}

TEST_F(Put, TranslucentOnEmptyIsPlain)
{
    Solid(&abuf, 1, glassy, 4);
    EXPECT_EQ(3004, Pixel(&abuf).zTag);
    EXPECT_EQ(glassy, Pixel(&abuf).value);
}

TEST_F(Put, OpaqueOverPlainTranslucentReplacesWhenNearer)
{
    Solid(&abuf, 1, glassy, 4);
    Solid(&abuf, 2, opaque, 3);
    EXPECT_EQ(glassy, Pixel(&abuf).value);
    Solid(&abuf, 2, opaque, 5);
    EXPECT_EQ(opaque, Pixel(&abuf).value);
}

TEST_F(Put, WholeOpaqueEdgeStaysPlain)
{
    Edge(&abuf, 1, opaque, 4, whole);
    EXPECT_EQ(opaque, Pixel(&abuf).value);
    EXPECT_EQ(3004, Pixel(&abuf).zTag);
    EXPECT_EQ(0u, abuf.pool.live);
}

TEST_F(Put, EdgeOnEmptyIsAListOfOne)
{
    Edge(&abuf, 1, opaque, 4, rightHalf);
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(1u, list.size());
    EXPECT_EQ(0x0F0F0F0Fu, list[0].coverage);
    EXPECT_EQ(FRAG_HALFPLANE, list[0].kind);
    EXPECT_EQ(opaque, list[0].colour);
}

TEST_F(Put, TheThreeForms)
{
    Edge(&abuf, 1, opaque, 4, leftHalf);
    Edge(&abuf, 2, opaque, 4, bottomHalf);
    Edge(&abuf, 3, opaque, 4, topTriangle);
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(3u, list.size());
    EXPECT_EQ(0xF0F0F0F0u, list[0].coverage);
    EXPECT_EQ(0xFFFF0000u, list[1].coverage);
    EXPECT_EQ(0x0000187Eu, list[2].coverage);
    EXPECT_EQ(FRAG_TRIANGLE, list[2].kind);
}

TEST_F(Put, PlainOfTheSameSurfaceGivesWayToItsEdge)
{
    Solid(&abuf, 1, opaque, 9);
    Edge(&abuf, 1, glassy, 4, rightHalf);
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(1u, list.size());
    EXPECT_EQ(0x0F0F0F0Fu, list[0].coverage);
    EXPECT_EQ(glassy, list[0].colour);
}

TEST_F(Put, PlainOfAnotherSurfaceBecomesTheFirstFragment)
{
    Solid(&abuf, 1, opaque, 9);
    Edge(&abuf, 2, opaque, 4, rightHalf);
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(2u, list.size());
    EXPECT_EQ(coverFull, list[0].coverage);
    EXPECT_EQ(2, list[1].edge);
}

TEST_F(Put, FirstPartialEdgeOfASurfaceStandsAndAWholeOneIsUpdated)
{
    Edge(&abuf, 1, glassy, 4, rightHalf);
    Edge(&abuf, 1, glassy + 1, 5, leftHalf);
    EXPECT_EQ(0x0F0F0F0Fu, ListOf(&abuf, 0, 0)[0].coverage);
    EXPECT_EQ(1u, ListOf(&abuf, 0, 0).size());

    *PlanePixel(&abuf, 0, 0) = {};
    Edge(&abuf, 1, glassy, 4, whole);
    EXPECT_EQ(coverFull, ListOf(&abuf, 0, 0)[0].coverage);
    Edge(&abuf, 1, glassy + 1, 5, leftHalf);
    ASSERT_EQ(1u, ListOf(&abuf, 0, 0).size());
    const ABUFFRAG updated = ListOf(&abuf, 0, 0)[0];
    EXPECT_EQ(0xF0F0F0F0u, updated.coverage);
    EXPECT_EQ(glassy + 1, updated.colour);
    EXPECT_EQ(5, updated.z);
}

TEST_F(Put, EmptyMaskMakesNoFragment)
{
    Edge(&abuf, 1, opaque, 10, {EDGE_ALONG, {0, 0.5}, {0, 1.5}, {-3, 0.5}});
    Edge(&abuf, 1, opaque, 10, {EDGE_ALONG, {0.5, 0.5}, {0.5, 0.5}, {-3, 0.5}});
    Edge(&abuf, 1, opaque, 10, {EDGE_TRIANGLE, {NAN, 0.5}, {0.5, 0.5}, {-3, 0.5}});
    EXPECT_EQ(0u, Pixel(&abuf).value);
    /* but a plain pixel of the same surface is emptied, and another surface's stays */
    const EDGESHAPE nothing = {EDGE_ALONG, {0, 0.5}, {0, 1.5}, {-3, 0.5}};
    Solid(&abuf, 2, glassy, 9);
    Edge(&abuf, 1, opaque, 10, nothing);
    EXPECT_EQ(glassy, Pixel(&abuf).value);
    Edge(&abuf, 2, opaque, 10, nothing);
    EXPECT_EQ(0u, Pixel(&abuf).value);
    EXPECT_EQ(0u, abuf.pool.live);
}

TEST_F(Put, EmptyMaskLeavesAnOpaquePixelThatMayHaveHiddenAnother)
{
    Solid(&abuf, 2, opaque, 9);
    Edge(&abuf, 2, opaque, 10, {EDGE_ALONG, {0, 0.5}, {0, 1.5}, {-3, 0.5}});
    EXPECT_EQ(opaque, Pixel(&abuf).value);
    EXPECT_EQ(3009, Pixel(&abuf).zTag);
}

TEST_F(Put, EmptyMaskTakesAWholeSampleOutOfAListForGood)
{
    const EDGESHAPE nothing = {EDGE_ALONG, {0, 0.5}, {0, 1.5}, {-3, 0.5}};
    Solid(&abuf, 1, glassy, 9);
    Solid(&abuf, 2, glassy, 8);
    Edge(&abuf, 2, glassy, 8, nothing);
    ASSERT_EQ(2u, ListOf(&abuf, 0, 0).size());
    EXPECT_EQ(0u, ListOf(&abuf, 0, 0)[1].coverage);
    EXPECT_EQ(FRAG_HALFPLANE, ListOf(&abuf, 0, 0)[1].kind);
    Edge(&abuf, 2, glassy, 8, rightHalf);
    Solid(&abuf, 2, glassy, 8);
    EXPECT_EQ(2u, ListOf(&abuf, 0, 0).size());
    EXPECT_EQ(0u, ListOf(&abuf, 0, 0)[1].coverage);
    /* a triangle that is there is left alone */
    *PlanePixel(&abuf, 0, 0) = {};
    Solid(&abuf, 1, glassy, 9);
    Edge(&abuf, 2, glassy, 8, topTriangle);
    Edge(&abuf, 2, glassy, 8, nothing);
    EXPECT_EQ(0x0000187Eu, ListOf(&abuf, 0, 0)[1].coverage);
    /* and a half plane that covered all is brought up to date */
    *PlanePixel(&abuf, 0, 0) = {};
    Edge(&abuf, 2, glassy, 8, whole);
    Edge(&abuf, 2, glassy, 8, nothing);
    EXPECT_EQ(0u, ListOf(&abuf, 0, 0)[0].coverage);
}

TEST_F(Put, WholeSamplesOfASurfaceAreKnown)
{
    SAMPLE sample = Lit(glassy, 1);
    abuf.edgeId = 1;
    EXPECT_EQ(0, PixelHasWhole(&abuf, 0, 0, &sample));
    Solid(&abuf, 1, glassy, 1);
    EXPECT_EQ(1, PixelHasWhole(&abuf, 0, 0, &sample));
    sample.facing = -1;
    EXPECT_EQ(0, PixelHasWhole(&abuf, 0, 0, &sample));
    sample.facing = 1;
    Solid(&abuf, 2, glassy, 1);
    abuf.edgeId = 1;
    EXPECT_EQ(1, PixelHasWhole(&abuf, 0, 0, &sample));
    Edge(&abuf, 1, glassy, 1, rightHalf);
    EXPECT_EQ(0, PixelHasWhole(&abuf, 0, 0, &sample));
    EXPECT_EQ(0, PixelHasWhole(&abuf, -1, 0, &sample));
}

TEST_F(Put, CornersReplaceTheEdgeThatIsThere)
{
    Edge(&abuf, 1, glassy, 4, rightHalf);
    Edge(&abuf, 1, glassy + 1, 5, {EDGE_CORNER, {0.5, 0.5}, {0.5, 1.5}, {3, 0.5}, {1, 0}, {0.5, 3}});
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(1u, list.size());
    EXPECT_EQ(0x0F0F0000u, list[0].coverage);
    EXPECT_EQ(glassy + 1, list[0].colour);
}

/* Every row of the merge table; a fragment of another surface stands first so that the pixel is a list. */
TEST_F(Put, MergeOfOneSurface)
{
    const uint32_t old = 0x80404040, fresh = 0x80C0C0C0;
    const struct {
        const char *name;
        uint32_t oldKind;
        const EDGESHAPE *shape;
        uint32_t wantKind, wantColour, wantCover;
    } cases[] = {
        {"whole, triangle: replaced", 0, &topTriangle, 1, fresh, 0x0000187E},
        {"whole, half plane: replaced", 0, &rightHalf, 2, fresh, 0x0F0F0F0F},
        {"triangle, half plane: dropped", 1, &rightHalf, 1, old, 0x0F0F0F0F},
        {"half plane, half plane: dropped", 2, &leftHalf, 2, old, 0x0F0F0F0F},
        {"other, triangle: replaced", 3, &topTriangle, 1, fresh, 0x0000187E},
        {"other, half plane: dropped", 3, &leftHalf, 3, old, 0x0F0F0F0F},
    };
    for (const auto &c : cases) {
        *PlanePixel(&abuf, 0, 0) = {};
        Solid(&abuf, 7, opaque, 1);
        Edge(&abuf, 1, old, 2, rightHalf);
        const uint32_t second = FragAt(&abuf.pool, Pixel(&abuf).value)->next;
        FragAt(&abuf.pool, second)->kind = c.oldKind;
        Edge(&abuf, 1, fresh, 3, *c.shape);
        const auto list = ListOf(&abuf, 0, 0);
        ASSERT_EQ(2u, list.size()) << c.name;
        EXPECT_EQ(c.wantKind, list[1].kind) << c.name;
        EXPECT_EQ(c.wantColour, list[1].colour) << c.name;
        EXPECT_EQ(c.wantCover, list[1].coverage) << c.name;
        EXPECT_EQ(c.wantColour == fresh ? 3 : 2, list[1].z) << c.name;
    }
}

TEST_F(Put, TriangleReplacesAHalfPlaneOnlyWhereThatCoversAll)
{
    /* A partial half plane of the surface ends the call, a whole one is updated. */
    Solid(&abuf, 7, opaque, 1);
    Edge(&abuf, 1, glassy, 2, rightHalf);
    Edge(&abuf, 1, glassy + 1, 3, topTriangle);
    EXPECT_EQ(FRAG_HALFPLANE, ListOf(&abuf, 0, 0)[1].kind);
    *PlanePixel(&abuf, 0, 0) = {};
    Edge(&abuf, 1, glassy, 2, whole);
    Edge(&abuf, 1, glassy + 1, 3, topTriangle);
    EXPECT_EQ(FRAG_TRIANGLE, ListOf(&abuf, 0, 0)[0].kind);
    EXPECT_EQ(0x0000187Eu, ListOf(&abuf, 0, 0)[0].coverage);
}

TEST_F(Put, ShapesLieInThePlaneNotInThePixel)
{
    const POINTDB one = {1, 1};
    const EDGESHAPE *shapes[] = {&rightHalf, &topTriangle};
    for (int i = 0; i < 2; i++) {
        EDGESHAPE shape = *shapes[i];
        shape.from = shape.from + one;
        shape.to = shape.to + one;
        shape.point = shape.point + one;
        *PlanePixel(&abuf, 1, 1) = {};
        SAMPLE sample = Lit(glassy, 2);
        abuf.edgeId = 1;
        ABufPutEdge(&abuf, 1, 1, &sample, &shape);
        ASSERT_EQ(1u, ListOf(&abuf, 1, 1).size());
        EXPECT_EQ(i == 0 ? 0x0F0F0F0Fu : 0x0000187Eu, ListOf(&abuf, 1, 1)[0].coverage);
    }
}

TEST_F(Put, TrianglesOfOneSurfaceMix)
{
    const EDGESHAPE left = {EDGE_TRIANGLE, {0, -1}, {0, 3}, {0.5, 1}}; /* top row: 2 sub-pixels */
    Edge(&abuf, 1, 0x40201008, 2, wholeTriangle);
    Edge(&abuf, 1, 0x80402010, 3, left);
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(1u, list.size());
    const uint32_t cover = CoverTriangle({0, -1}, {0.5, 1}, {0, 3});
    EXPECT_EQ(cover, list[0].coverage);
    const uint32_t a = static_cast<uint32_t>(std::popcount(cover & 0xFF)) * 4, b = 32;
    uint32_t want = 0;
    const uint32_t oldBytes[4] = {0x08, 0x10, 0x20, 0x40}, newBytes[4] = {0x10, 0x20, 0x40, 0x80};
    for (int i = 0; i < 4; i++) want |= ((newBytes[i] * b + oldBytes[i] * a) >> 5 & 0xFF) << (8 * i);
    EXPECT_EQ(want, list[0].colour);
    EXPECT_EQ(FRAG_TRIANGLE, list[0].kind);
    EXPECT_EQ(2, list[0].z);
}

TEST_F(Put, OnlyPartialEdgesOfTheSameSurfaceAreKnown)
{
    SAMPLE sample = Lit(glassy, 1);
    abuf.edgeId = 1;
    EXPECT_EQ(0, PixelHasEdge(&abuf, 0, 0, &sample));
    Edge(&abuf, 1, glassy, 1, whole);
    EXPECT_EQ(0, PixelHasEdge(&abuf, 0, 0, &sample));
    Edge(&abuf, 1, glassy, 1, rightHalf);
    EXPECT_EQ(1, PixelHasEdge(&abuf, 0, 0, &sample));
    abuf.edgeId = 2;
    EXPECT_EQ(0, PixelHasEdge(&abuf, 0, 0, &sample));
    EXPECT_EQ(0, PixelHasEdge(&abuf, -1, 0, &sample));
}

TEST_F(Put, EdgeTagsCompareInSixteenBits)
{
    Solid(&abuf, 1, glassy, 1);
    Solid(&abuf, 1 + 0x10000, glassy, 2);
    EXPECT_EQ(3001, Pixel(&abuf).zTag); /* taken for the same surface, and dropped */
    Solid(&abuf, INT32_MAX, glassy, 3);
    EXPECT_EQ(2u, ListOf(&abuf, 0, 0).size());
}

TEST_F(Put, OutsideThePlaneNothingHappens)
{
    SAMPLE sample = Lit(opaque, 1);
    ABufPutSolid(&abuf, 2, 0, &sample);
    ABufPutSolid(&abuf, 0, -1, &sample);
    ABufPutEdge(&abuf, 2, 0, &sample, &rightHalf);
    for (int i = 0; i < 4; i++) EXPECT_EQ(0u, PlanePixel(&abuf, i % 2, i / 2)->value);
}

TEST_F(Put, AFullListLosesItsFarthest)
{
    for (int i = 1; i <= 3000; i++) Solid(&abuf, i, glassy, (i * 7919) % 3000);
    const auto list = ListOf(&abuf, 0, 0);
    ASSERT_EQ(maxFragments, list.size());
    EXPECT_EQ(maxFragments, abuf.pool.live);
    for (const ABUFFRAG &fragment : list) ASSERT_GE(fragment.z, 3000 - 1024);
}

TEST_F(Put, WithoutMemoryASampleIsDroppedAndThePixelStays)
{
    Solid(&abuf, 1, opaque, 9);
    FaultSet(ALLOC_SURFACEHEAP, 1);
    Solid(&abuf, 2, glassy, 9);
    EXPECT_TRUE(FaultStruck());
    EXPECT_EQ(opaque, Pixel(&abuf).value);
    EXPECT_EQ(3009, Pixel(&abuf).zTag);
    FaultSet(ALLOC_SURFACEHEAP, 1);
    Edge(&abuf, 1, glassy, 9, rightHalf);
    EXPECT_EQ(opaque, Pixel(&abuf).value);
    FaultSet(ALLOC_SURFACEHEAP, 1);
    Edge(&abuf, 2, glassy, 9, rightHalf);
    EXPECT_EQ(3009, Pixel(&abuf).zTag);
    FaultSet(ALLOC_SURFACEHEAP, 0);
}

} // namespace
