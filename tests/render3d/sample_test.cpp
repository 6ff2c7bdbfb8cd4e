/* sample_test.cpp - light and glass, by hand. State persists: the first test must see the opaque reflectance. */
#include "frame/faults.h"
#include "planes.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

const double up[3] = {0, 0, 1};

TEST(Shade, GlassSettingsStayForLaterOpaqueColours)
{
    /* N = (0, 0, 1), L = (0, 0.6, 0.8): d = 0.8, e = 0.8, 0.8^28 = 0.001934281. Glass: x 4 x 255 = 1.97. */
    const double light[3] = {0, 0.6, 0.8};
    uint32_t glass = 0x20644BFF;
    ABufShade(up, light, &glass);
    /* 255: 51 + 153 + 1; 75: 15 + 45 + 1; 100: 20 + 60 + 1; alpha 32 + 1 */
    EXPECT_EQ(0x21513DCDu, glass);
    /* The light persists when none is given, and so does the highlight of glass. */
    uint32_t opaque = 0xFF644BFF;
    ABufShade(up, nullptr, &opaque);
    EXPECT_EQ(0xFF513DCDu, opaque);
}

TEST(Shade, HighlightSaturatesAndReachesAlpha)
{
    uint32_t colour = 0x00000000;
    ABufShade(up, up, &colour);
    EXPECT_EQ(0xFFFFFFFFu, colour);
}

TEST(Shade, LightFromBehindLeavesTheAmbientTerm)
{
    const double light[3] = {0, 0, -1};
    uint32_t colour = 0x10FF6409;
    ABufShade(up, light, &colour);
    EXPECT_EQ(0x10331401u, colour);
}

TEST(Shade, MirrorDirectionByHand)
{
    /* N = (0.6, 0, 0.8), L = (0.96, 0, 0.28): e = 2 x .8 x .6 x .96 + (2 x .64 - 1) x .28 = 1 */
    const double n[3] = {0.6, 0, 0.8}, light[3] = {0.96, 0, 0.28};
    uint32_t colour = 0x00000000;
    ABufShade(n, light, &colour);
    EXPECT_EQ(0xFFFFFFFFu, colour);
    /* the mirror image of it: e = -0.8432, no highlight; d = -0.352, no diffuse term */
    const double other[3] = {-0.96, 0, 0.28};
    colour = 0x05000064;
    ABufShade(n, other, &colour);
    EXPECT_EQ(0x05000014u, colour);
}

TEST(Shade, WildLightsAreCut)
{
    const double light[3] = {1e200, 1e200, 1e200}, bad[3] = {NAN, NAN, NAN};
    const double n[3] = {0.6, 0, 0.8};
    uint32_t colour = 0x80FFFFFF;
    ABufShade(n, light, &colour);
    EXPECT_EQ(0xFFFFFFFFu, colour);
    colour = 0x80FFFFFF;
    ABufShade(n, bad, &colour);
    EXPECT_EQ(0x80333333u, colour);
    ABufShade(bad, up, &colour);
    ABufShade(up, up, &colour);
}

TEST(Glass, AlphaByTheViewingAngle)
{
    MATERIAL material = {};
    EXPECT_EQ(255u, GlassAlpha(0.7, &material)); /* glass 0 */
    EXPECT_EQ(nullptr, material.glassTable);
    material.glass = 1;
    const struct {
        double facing;
        uint32_t want;
    } cases[] = {{0, 255}, {0.5, 75}, {-0.5, 75},  {0.9994, 16},   {1, 16},
                 {-1, 16}, {5, 16},   {1e300, 16}, {INFINITY, 16}, {NAN, 255}};
    for (const auto &c : cases) EXPECT_EQ(c.want, GlassAlpha(c.facing, &material)) << c.facing;
    for (int i = 0; i < 1000; i++)
        ASSERT_EQ(static_cast<uint32_t>((1 - 0.001 * i) * (1 - 0.001 * i) * 239 + 16), material.glassTable[i]);
    GlassAlphaFree(&material);
    EXPECT_EQ(nullptr, material.glassTable);
}

TEST(Glass, WithoutMemoryTheAlphaIsTheSame)
{
    MATERIAL material = {};
    material.glass = 1;
    FaultSet(ALLOC_GLOBAL, 1);
    EXPECT_EQ(75u, GlassAlpha(0.5, &material));
    EXPECT_TRUE(FaultStruck());
    FaultSet(ALLOC_GLOBAL, 0);
    EXPECT_EQ(nullptr, material.glassTable);
    GlassAlphaFree(&material);
}

TEST(Sample, FacingIsTheCosineToTheEye)
{
    const POINT3D point = {1, 2, 3}, eye = {1, 5, 7}, normal = {0, 0, 1};
    EXPECT_DOUBLE_EQ(0.8, FacingDot(&point, &normal, &eye));
    EXPECT_TRUE(std::isnan(FacingDot(&point, &normal, &point)));
}

TEST(Sample, ColourStartsWithoutAlphaUnlessItIsGlass)
{
    const double behind[3] = {0, 0, -1};
    MATERIAL material = {0xFF0A1464, 0, behind, nullptr};
    SAMPLE sample = {};
    sample.normal = {0, 0, 1};
    sample.facing = 0.5;
    sample.material = &material;
    EXPECT_EQ(0x00020414u, SampleColour(&sample));
    material.glass = 1;
    EXPECT_EQ(0x00020414u, SampleColour(&sample)); /* lit once */
    sample.lit = 0;
    EXPECT_EQ(0x4B020414u, SampleColour(&sample));
    GlassAlphaFree(&material);
}

} // namespace
