/* resolve_test.cpp - composition over masks: by hand, and against a plain second form that works sub-pixel by sub-pixel
 * in doubles. */
#include "planes.h"
#include "render3d/coverage.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace zr32;
using namespace zr32test;

namespace {

using RGBA = std::array<int, 4>;

ABUFFRAG Frag(uint32_t colour, uint32_t coverage, double z = 0)
{
    ABUFFRAG fragment = {};
    fragment.colour = colour;
    fragment.coverage = coverage;
    fragment.z = z;
    return fragment;
}

RGBA Blend(const std::vector<ABUFFRAG> &fragments, uint32_t mask = coverFull)
{
    uint8_t out[4] = {1, 2, 3, 4};
    ABufBlend(fragments.data(), 0, static_cast<uint32_t>(fragments.size()), mask, out);
    return {out[0], out[1], out[2], out[3]};
}

TEST(Blend, HalfCoverageHalvesTheAlpha)
{
    EXPECT_EQ((RGBA{0x30, 0x20, 0x10, 127}), Blend({Frag(0xFF102030, 0x0000FFFF)}));
}

TEST(Blend, NoMaskLeavesTheResult)
{
    EXPECT_EQ((RGBA{1, 2, 3, 4}), Blend({Frag(0xFF102030, 0x0000FFFF)}, 0));
    EXPECT_EQ((RGBA{1, 2, 3, 4}), Blend({}));
}

TEST(Blend, DisjointOpaqueHalvesMix)
{
    /* premultiplied by 256 / 256; (200 x 128 + 100 x 128) >> 8 = 150; alpha 255 */
    EXPECT_EQ((RGBA{150, 20, 255, 255}), Blend({Frag(0xFFFF00C8, 0x0000FFFF), Frag(0xFFFF2864, 0xFFFF0000)}));
}

TEST(Blend, OpaqueInFrontHidesAllBehind)
{
    EXPECT_EQ((RGBA{0x30, 0x20, 0x10, 255}), Blend({Frag(0xFF102030, coverFull), Frag(0xFFFFFFFF, coverFull)}));
}

TEST(Blend, TranslucentOverOpaque)
{
    /* a1 = 128, a2 = 256, w = 128: blue (200 x 128 + 100 x 128) >> 8 = 150, alpha 256 - 128 + 128 - 1 = 255 */
    EXPECT_EQ((RGBA{150, 0, 0, 255}), Blend({Frag(0x7F0000C8, coverFull), Frag(0xFF000064, coverFull)}));
}

TEST(Blend, TranslucentOverTranslucent)
{
    /* a1 = 128, a2 = 65, w = 128 x 65 >> 8 = 32: blue (200 x 128 + 100 x 32) >> 8 = 112;
     * alpha 65 - (65 x 128 >> 8) + 128 - 1 = 160; blue 112 x 255 / 160 = 178 */
    EXPECT_EQ((RGBA{178, 0, 0, 160}), Blend({Frag(0x7F0000C8, coverFull), Frag(0x40000064, coverFull)}));
}

TEST(Blend, TransparentFrontShowsWhatLiesBeside)
{
    /* alpha of the front part is 0: a1 = 1, a2 = 1, 1 - 0 + 1 - 1 = 1 is not 0, so it mixes with alpha 1 */
    const RGBA mixed = Blend({Frag(0x000000C8, 0x0000FFFF), Frag(0xFF000064, 0xFFFF0000)});
    EXPECT_EQ(128, mixed[3]); /* (1 x 128 + 255 x 128) >> 8 */
}

TEST(Blend, NothingBehindTheUncoveredPart)
{
    /* behindOut stays zeros: alpha 255 x 128 >> 8 */
    EXPECT_EQ((RGBA{0x30, 0x20, 0x10, 127}), Blend({Frag(0xFF102030, 0x0000FFFF), Frag(0xFF999999, 0)}));
}

TEST(Blend, EmptyFragmentIsPassedOver)
{
    EXPECT_EQ((RGBA{0x30, 0x20, 0x10, 255}), Blend({Frag(0xFF999999, 0), Frag(0xFF102030, coverFull)}));
}

/* Each sub-pixel front to back, then the mean, in doubles. */
std::array<double, 4> SubPixelForm(const std::vector<ABUFFRAG> &fragments)
{
    double sum[4] = {};
    for (int bit = 0; bit < 32; bit++) {
        double through = 1;
        for (const ABUFFRAG &f : fragments) {
            if (!(f.coverage >> bit & 1)) continue;
            const double alpha = (f.colour >> 24) / 255.0;
            for (int i = 0; i < 3; i++) sum[i] += through * alpha * (f.colour >> (8 * i) & 0xFF);
            sum[3] += through * alpha;
            through *= 1 - alpha;
        }
    }
    std::array<double, 4> out = {};
    for (int i = 0; i < 3; i++) out[static_cast<size_t>(i)] = sum[3] > 0 ? sum[i] / sum[3] : 0;
    out[3] = sum[3] / 32 * 255;
    return out;
}

TEST(Blend, AgreesWithTheSubPixelForm)
{
    std::mt19937 random(5);
    for (int i = 0; i < 20000; i++) {
        std::vector<ABUFFRAG> fragments;
        const size_t count = 1 + random() % 5;
        for (size_t k = 0; k < count; k++) {
            uint32_t cover = static_cast<uint32_t>(random());
            if (random() % 3 == 0) cover = coverFull;
            uint32_t alpha = 64 + static_cast<uint32_t>(random() % 192);
            if (random() % 2) alpha = 255;
            fragments.push_back(Frag((static_cast<uint32_t>(random()) & 0xFFFFFF) | alpha << 24, cover));
        }
        const RGBA got = Blend(fragments);
        const auto want = SubPixelForm(fragments);
        /* each level of the recursion cuts, so the difference grows with it */
        const double slack = 3.0 * static_cast<double>(count);
        ASSERT_NEAR(want[3], got[3], slack) << i;
        if (want[3] < 60) continue; /* dark sums lose colour to the cutting */
        for (size_t c = 0; c < 3; c++) ASSERT_NEAR(want[c], got[c], 2 * slack + 255 * slack / want[3]) << i;
    }
}

TEST(Blend, AThousandForkingMasksEndQuickly)
{
    std::mt19937 random(6);
    std::vector<ABUFFRAG> fragments;
    for (uint32_t i = 0; i < maxFragments; i++) fragments.push_back(Frag(0x01FFFFFF, static_cast<uint32_t>(random())));
    const RGBA got = Blend(fragments); /* would be 2^1024 calls if masks could overlap */
    EXPECT_GT(got[3], 100);
}

/* What ABufResolve writes for a plane of 3 x 2. */
struct RESOLVED {
    ABUF abuf = MakePlane(3, 2);
    PATHBUF colour = ZrPathBufAlloc(24, 3, 2);
    PATHBUF alpha = ZrPathBufAlloc(8, 3, 2);
    ~RESOLVED()
    {
        PlaneFree(&abuf);
        ZrPathBufFree(colour);
        ZrPathBufFree(alpha);
    }
};

TEST(Resolve, PlainAndEmptyPixelsAreCopied)
{
    RESOLVED r;
    std::fill(r.colour, r.colour + 18, uint8_t(9));
    std::fill(r.alpha, r.alpha + 6, uint8_t(9));
    SAMPLE sample = Lit(0x40102030, 5);
    ABufPutSolid(&r.abuf, 1, 1, &sample);
    EXPECT_EQ(1, ABufResolve(&r.abuf, 2, 0, 3, r.colour, r.alpha));
    for (int i = 0; i < 6; i++) {
        EXPECT_EQ(i == 4 ? 0x40 : 0, r.alpha[i]);
        EXPECT_EQ(i == 4 ? 0x30 : 0, r.colour[3 * i]);
        EXPECT_EQ(i == 4 ? 0x20 : 0, r.colour[3 * i + 1]);
        EXPECT_EQ(i == 4 ? 0x10 : 0, r.colour[3 * i + 2]);
    }
}

TEST(Resolve, ListsAreSortedNearestFirst)
{
    RESOLVED r;
    r.abuf.edgeId = 1;
    SAMPLE a = Lit(0x7F000064, 1);
    ABufPutSolid(&r.abuf, 0, 0, &a);
    r.abuf.edgeId = 2;
    SAMPLE b = Lit(0xFF0000C8, 3);
    const EDGESHAPE half = {EDGE_ALONG, {0, 0.5}, {1, 0.5}, {0.5, 0}};
    ABufPutEdge(&r.abuf, 0, 0, &b, &half);
    EXPECT_EQ(1, ABufResolve(&r.abuf, 2, 0, 3, r.colour, r.alpha));
    const std::vector<ABUFFRAG> sorted = {Frag(0xFF0000C8, 0x0000FFFF), Frag(0x7F000064, coverFull)};
    const RGBA want = Blend(sorted);
    EXPECT_EQ(want[0], r.colour[0]);
    EXPECT_EQ(want[3], r.alpha[0]);
    EXPECT_GT(r.colour[0], 150);
}

TEST(Resolve, EachBandBeginsAtRowZero)
{
    RESOLVED r;
    SAMPLE sample = Lit(0x40102030, 5);
    ABufPutSolid(&r.abuf, 0, 0, &sample);
    EXPECT_EQ(1, ABufResolve(&r.abuf, 501, 500, 3, r.colour, r.alpha));
    EXPECT_EQ(0x40, r.alpha[0]);
}

TEST(Resolve, NullBuffersGiveZero)
{
    RESOLVED r;
    EXPECT_EQ(0, ABufResolve(&r.abuf, 2, 0, 3, nullptr, r.alpha));
    EXPECT_EQ(0, ABufResolve(&r.abuf, 2, 0, 3, r.colour, nullptr));
    ABUF none = {};
    EXPECT_EQ(0, ABufResolve(&none, 2, 0, 3, r.colour, r.alpha));
}

TEST(Resolve, BuffersOfOtherSizesAreBoundedByTheirOwnHeaders)
{
    ABUF abuf = MakePlane(3, 2);
    SAMPLE sample = Lit(0x40102030, 5);
    for (int i = 0; i < 6; i++) ABufPutSolid(&abuf, i % 3, i / 3, &sample);
    const int32_t sizes[][2] = {{0, 0}, {1, 1}, {2, 5}, {7, 1}, {9, 9}};
    for (const auto &c : sizes)
        for (const auto &a : sizes) {
            PATHBUF colour = ZrPathBufAlloc(24, c[0], c[1]);
            PATHBUF alpha = ZrPathBufAlloc(8, a[0], a[1]);
            EXPECT_EQ(1, ABufResolve(&abuf, 40, 0, 50, colour, alpha));
            if (c[0] && c[1]) {
                EXPECT_EQ(0x30, colour[0]);
            }
            if (a[0] && a[1]) {
                EXPECT_EQ(0x40, alpha[0]);
            }
            ZrPathBufFree(colour);
            ZrPathBufFree(alpha);
        }
    PATHBUF thin = ZrPathBufAlloc(8, 3, 2); /* no room for three bytes a pixel */
    EXPECT_EQ(1, ABufResolve(&abuf, 2, 0, 3, thin, thin));
    ZrPathBufFree(thin);
    PlaneFree(&abuf);
}

} // namespace
