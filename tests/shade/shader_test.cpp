/* shader_test.cpp - the four shaders: behaviours by hand. */
#include "shade/shader.h"

#include "frame/frame.h"
#include "support/shapes.h"
#include <zr32path.h>

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

using namespace zr32;

namespace {

/* Buffers of one size for a shader; the surface is level until told otherwise. */
struct SCENE {
    int w;
    int h;
    PATHBUF image, distance, normals, mask, flat, bump, tintMap;

    SCENE(int width, int height)
        : w(width), h(height), image(ZrPathBufAlloc(24, w, h)), distance(ZrPathBufAlloc(32, w, h)),
          normals(ZrPathBufAlloc(0x40, w, h)), mask(ZrPathBufAlloc(8, w, h)), flat(ZrPathBufAlloc(8, w, h)),
          bump(ZrPathBufAlloc(8, w, h)), tintMap(ZrPathBufAlloc(24, w, h))
    {
        memset(image, 100, size_t(w * h * 3));
        memset(mask, 255, size_t(w * h));
    }
    SCENE(const SCENE &) = delete;
    SCENE &operator=(const SCENE &) = delete;

    ~SCENE()
    {
        for (PATHBUF buf : {image, distance, normals, mask, flat, bump, tintMap}) ZrPathBufFree(buf);
    }

    void SetVector(int x, int y, SURFVEC16 v)
    {
        memcpy(normals + (y * w + x) * 8, &v, 8);
    }
    void SetFloats(int x, int y, SURFVECF v)
    {
        memcpy(normals + (y * w + x) * 8, &v, 8);
    }
    void SetDistance(int x, int y, float d)
    {
        memcpy(distance + (y * w + x) * 4, &d, 4);
    }
};

/* The light state as at load, with the gamma map the identity so that levels can be read off. */
void KnownState()
{
    const int32_t shininess[4] = {28, 28, 28, 28};
    const int32_t percent[4] = {80, 80, 80, 80};
    const uint32_t white[4] = {0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF};
    ZrPathAdjPhongIllum(shininess, percent, 0, white, 1, 20);
    const int32_t metal[4] = {100, 100, 100, 100};
    const int32_t level[4] = {60, 60, 60, 60};
    ZrPathAdjMetallicIllum(metal, level, 1, 80);
    GammaMapBuild(1.0, gammaMap);
}

constexpr double a = 0.5773502;

int Phong(SCENE &s, int32_t reflect = 0, PATHBUF flat = nullptr, int32_t floats = 0, int32_t toAlpha = 0,
          int32_t bumpPercent = 0, PATHBUF bump = nullptr, double lx = -a, double ly = -a, double lz = a)
{
    return ZrPathShadePhong(s.image, 8, 0, 0, 0, floats, s.distance, s.normals, reflect, s.mask, flat, 0, 0, 0, lx, ly,
                            lz, 0, toAlpha, bumpPercent, bump);
}

/* A level surface under the diagonal light: 20 % ambient, 0.94 x 0.577 diffuse, a highlight of 0.577 to the 28th. */
int LevelValue(int base)
{
    const double dd = a * (80 * 0.01 * 0.3 + 0.7 / 1);
    const double S = (2 * 1.0 * 1.0 - 1) * a;
    const double ss = std::pow(S, 28.0) * (80 * 0.01);
    return int(20 * 0.01 * base) + int(base * dd) + int(255 * ss);
}

TEST(Shader, LevelSurfaceByHand)
{
    KnownState();
    SCENE s(4, 3);
    ASSERT_EQ(1, Phong(s));
    EXPECT_EQ(LevelValue(100), s.image[0]);
    EXPECT_EQ(LevelValue(100), s.image[4 * 3 * 3 - 1]);
}

TEST(Shader, ANullRequiredBufferGivesZeroAndChangesNothing)
{
    KnownState();
    SCENE s(4, 3);
    const double before = SHADELIGHTS.factors.specular[0];
    SHADELIGHTS.lightDir[0][0] = 0.25;
    for (int missing = 0; missing < 4; missing++) {
        PATHBUF image = missing == 0 ? nullptr : s.image, distance = missing == 1 ? nullptr : s.distance;
        PATHBUF normals = missing == 2 ? nullptr : s.normals, mask = missing == 3 ? nullptr : s.mask;
        EXPECT_EQ(0, ZrPathShadePhong(image, 8, 0, 0, 0, 0, distance, normals, 0, mask, nullptr, 0, 0, 0, -a, -a, a, 0,
                                      1, 0, nullptr));
        EXPECT_EQ(0, ZrPathShadeMetallic(image, 8, 0, 0, 0, 0, distance, normals, 0, mask, nullptr, 0, 0, 0, -a, -a, a,
                                         0, nullptr, 1, 0, nullptr));
        EXPECT_EQ(0, ZrPathShadeMultiPhong(image, 8, 0, 0, 0, 0, distance, normals, 0, mask, nullptr, 0, nullptr,
                                           nullptr, nullptr, 0, 1, 0, nullptr));
        EXPECT_EQ(0, ZrPathShadeMultiMetallic(image, 8, 0, 0, 0, 0, distance, normals, 0, mask, nullptr, 0, nullptr,
                                              nullptr, nullptr, 0, nullptr, 1, 0, nullptr));
    }
    EXPECT_EQ(before, SHADELIGHTS.factors.specular[0]);
    EXPECT_EQ(0.25, SHADELIGHTS.lightDir[0][0]);
}

TEST(Shader, APixelWithoutMaskAndFlatMaskIsLeftAlone)
{
    KnownState();
    SCENE s(3, 1);
    s.mask[1] = 0;
    Phong(s);
    EXPECT_NE(100, s.image[0]);
    EXPECT_EQ(100, s.image[3]);
    EXPECT_NE(100, s.image[6]);
}

TEST(Shader, AFlatPixelIsShadedWithoutMaskAndFullFlatMaskFillsTheMask)
{
    KnownState();
    SCENE s(3, 1);
    memset(s.mask, 0, 3);
    s.flat[0] = 255;
    s.flat[1] = 128;
    Phong(s, 1, s.flat);
    EXPECT_EQ(255, s.mask[0]);
    EXPECT_EQ(LevelValue(100), s.image[0]);
    EXPECT_EQ(128, s.mask[1]); /* a + 0 */
    EXPECT_NE(100, s.image[3]);
    EXPECT_EQ(0, s.mask[2]);
    EXPECT_EQ(100, s.image[6]);
}

TEST(Shader, WithoutReflectTheFlatMaskIsIgnored)
{
    KnownState();
    SCENE s(2, 1);
    memset(s.mask, 0, 2);
    s.flat[0] = 255;
    Phong(s, 0, s.flat);
    EXPECT_EQ(100, s.image[0]);
    EXPECT_EQ(0, s.mask[0]);
}

TEST(Shader, ReflectActsOnNormalsWithoutAFlatMask)
{
    KnownState();
    SCENE plain(1, 1), reflected(1, 1);
    plain.SetVector(0, 0, {-512, 0, 0, 0});
    reflected.SetVector(0, 0, {-512, 0, 0, 0});
    Phong(plain, 0);
    Phong(reflected, 1);
    EXPECT_NE(plain.image[0], reflected.image[0]);
}

TEST(Shader, ABumpMapWithoutDepthIsNotRead)
{
    KnownState();
    SCENE with(3, 2), without(3, 2);
    for (int i = 0; i < 6; i++) with.bump[i] = uint8_t(i * 40);
    Phong(with, 0, nullptr, 0, 0, 0, with.bump);
    Phong(without);
    EXPECT_EQ(0, memcmp(with.image, without.image, 18));
    Phong(without, 0, nullptr, 0, 0, 50, nullptr); /* depth without a map is off too */
}

/* A level surface seen along a normal (x, y, 1), under a light from the viewer. */
int RuffledValue(double x, double y)
{
    const double z = 1 / std::sqrt(x * x + y * y + 1);
    const double S = 2 * z * z - 1;
    const int highlight = S < 0.01 ? 0 : int(255 * (std::pow(S, 28.0) * (80 * 0.01)));
    return std::min(int(20 * 0.01 * 100) + int(100 * (z * (80 * 0.01 * 0.3 + 0.7))) + highlight, 255);
}

/* A slope is the difference to the left and above, times the depth, over 128. */
TEST(Shader, SlopesAreZeroInTheFirstRowAndColumn)
{
    KnownState();
    SCENE s(2, 2);
    const uint8_t heights[4] = {200, 136, 104, 72};
    memcpy(s.bump, heights, 4);
    Phong(s, 0, nullptr, 0, 0, 50, s.bump, 0, 0, 1);
    EXPECT_EQ(RuffledValue(0, 0), s.image[0]) << "200 lies above nothing and right of nothing";
    EXPECT_EQ(RuffledValue(0.25, 0), s.image[3]) << "-64 from the left, half of it over 128";
    EXPECT_EQ(RuffledValue(0, 0.375), s.image[6]) << "-96 from above";
    EXPECT_EQ(RuffledValue(0.125, 0.25), s.image[9]) << "-32 and -64";
    EXPECT_NE(RuffledValue(0.25, 0), RuffledValue(0, 0.375));
}

TEST(Shader, AFloatRecordWithoutSurfaceKeepsItsColourAndWordsAreShadedLevel)
{
    KnownState();
    SCENE s(1, 1);
    Phong(s, 0, nullptr, 1);
    EXPECT_EQ(100, s.image[0]);
    s.SetFloats(0, 0, {-0.0F, 0.0F}); /* compared by value */
    s.SetDistance(0, 0, -0.0F);       /* not negative */
    Phong(s, 0, nullptr, 1);
    EXPECT_EQ(100, s.image[0]);
    s.SetVector(0, 0, {0, 0, 0, 0});
    Phong(s);
    EXPECT_EQ(LevelValue(100), s.image[0]);
}

TEST(Shader, ANegativeDistanceHasNoSecondOffset)
{
    KnownState();
    SCENE one(1, 1), two(1, 1);
    one.SetVector(0, 0, {600, 100, 0, 0});
    two.SetVector(0, 0, {600, 100, -600, 50});
    one.SetDistance(0, 0, -4);
    two.SetDistance(0, 0, -4);
    Phong(one);
    Phong(two);
    EXPECT_EQ(0, memcmp(one.image, two.image, 3));
    SCENE inside(1, 1);
    inside.SetVector(0, 0, {600, 100, -600, 50});
    Phong(inside);
    EXPECT_NE(0, memcmp(inside.image, two.image, 3));
}

TEST(Shader, APixelOutsideTheShapeTakesATenthOfItsOffsetReversed)
{
    KnownState();
    SCENE outside(1, 1), inside(1, 1);
    outside.SetVector(0, 0, {640, -1280, 0, 0}); /* (2.5, -5) */
    outside.SetDistance(0, 0, -31);
    inside.SetFloats(0, 0, {-0.25F, 0.5F});
    Phong(outside);
    Phong(inside, 0, nullptr, 1);
    EXPECT_EQ(inside.image[0], outside.image[0]);
    EXPECT_NE(LevelValue(100), outside.image[0]);
}

/* On a chamfer, two edges that face differently: the nearer one, the first, gets 0.71 x the difference + 0.5. */
TEST(Shader, ASecondOffsetIsMixedInUpToSevenTenthsOfAPixel)
{
    static const struct {
        int16_t second;
        double mix; /* 1: the second plays no part */
    } cases[] = {{512, 0.5},
                 {-512, 0.5},
                 {640, 0.5 + 0.5 * 0.71},
                 {384, 0.5 + 0.5 * 0.71},
                 {691, 0.5 + 179 / 256.0 * 0.71},
                 {692, 1},
                 {333, 0.5 + 179 / 256.0 * 0.71},
                 {332, 1}};
    for (const auto &c : cases) {
        KnownState();
        SCENE both(1, 1), first(1, 1), second(1, 1);
        both.SetVector(0, 0, {-512, 0, 0, c.second});
        first.SetVector(0, 0, {-512, 0, 0, 0});
        second.SetVector(0, 0, {0, c.second, 0, 0});
        for (SCENE *s : {&both, &first, &second})
            ZrPathShadePhong(s->image, 8, 1, 0, 0, 0, s->distance, s->normals, 0, s->mask, nullptr, 0, 0, 0, -0.6, 0,
                             0.8, 0, 0, 0, nullptr);
        EXPECT_EQ(int(first.image[0] * c.mix + second.image[0] * (1 - c.mix)), both.image[0]) << c.second;
        EXPECT_GT(first.image[0], second.image[0] + 20);
    }
}

TEST(Shader, HighlightsInTheMaskAreFourTimesAsStrongForTheLengthOfTheCall)
{
    KnownState();
    SHADELIGHTS.factors.specular[0] = 0.125;
    SCENE s(1, 1), clear(1, 1), full(1, 1);
    for (SCENE *each : {&s, &clear, &full}) {
        memset(each->mask, 10, 1);
        memset(each->image, 0, 3);
    }
    Phong(s, 0, nullptr, 0, 1, 0, nullptr, 0, 0, 1); /* light from the viewer: S is 1 */
    EXPECT_EQ(0.125, SHADELIGHTS.factors.specular[0]);
    EXPECT_EQ(127, s.image[0]);     /* 0.125 x 4 x 255 = 127.5 */
    EXPECT_EQ(127 + 10, s.mask[0]); /* cut before it is added */
    Phong(clear, 0, nullptr, 0, 0, 0, nullptr, 0, 0, 1);
    EXPECT_EQ(31, clear.image[0]); /* 0.125 x 255 = 31.875 */
    EXPECT_EQ(10, clear.mask[0]);
    SHADELIGHTS.factors.specular[0] = 0.8;
    Phong(full, 0, nullptr, 0, 1, 0, nullptr, 0, 0, 1);
    EXPECT_EQ(255, full.image[0]);
    EXPECT_EQ(255, full.mask[0]);
    EXPECT_EQ(0.8, SHADELIGHTS.factors.specular[0]);
}

TEST(Shader, SpotHeightIsFullOverTheMiddleAndCutAtTheCorner)
{
    KnownState();
    /* At (50, 50) of a 2 x 2 image pixel (1, 1) lies right below the spot: c = lz x 70.71 / 70.71. */
    SCENE s(2, 2);
    ZrPathShadePhong(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 0, s.mask, nullptr, 1, 50, 50, 0, 0, 1, 0, 0, 0,
                     nullptr);
    const int full = int(20 * 0.01 * 100) + int(100 * (80 * 0.01 * 0.3 + 0.7)) + int(255 * (80 * 0.01));
    EXPECT_EQ(std::min(full, 255), s.image[9]);
    /* Pixel (0, 0) lies 50 to the left and 50 up: c = 70.71 / sqrt(5000 + 70.71^2) = 0.70710, to the 4th 0.24999.
     * Diffuse 94 x 0.25 = 23.49, highlight 204 x 0.24999 = 50.99: with 1 over the square root of 2 it would be 51. */
    EXPECT_EQ(20 + 23 + 50, s.image[0]);
    /* At (0, 0) the height is 0: v lies in the image's plane and a light from the viewer gives nothing but ambient. */
    SCENE corner(2, 2);
    ZrPathShadePhong(corner.image, 8, 0, 0, 0, 0, corner.distance, corner.normals, 0, corner.mask, nullptr, 1, 0, 0, 0,
                     0, 1, 0, 0, 0, nullptr);
    EXPECT_EQ(20, corner.image[9]);
}

TEST(Shader, BeforeTheGammaMapIsBuiltEveryWrittenPixelIsZero)
{
    KnownState();
    memset(gammaMap, 0, sizeof gammaMap);
    SCENE s(2, 1);
    s.mask[1] = 0;
    Phong(s);
    EXPECT_EQ(0, s.image[0]);
    EXPECT_EQ(100, s.image[3]);
}

TEST(Shader, TheFlatHighlightDependsOnTheNormalOfThePixelBefore)
{
    KnownState();
    SCENE s(2, 1), alone(1, 1);
    s.SetVector(0, 0, {-256, 0, 0, 0});
    s.flat[1] = 255;
    Phong(s, 2, s.flat, 0, 0, 0, nullptr, 0, 0, 1);
    alone.flat[0] = 255;
    Phong(alone, 2, alone.flat, 0, 0, 0, nullptr, 0, 0, 1);
    EXPECT_NE(alone.image[0], s.image[3]);
}

/* ---- metal ---- */

TEST(Shader, TheCoreOfAMetalHighlightHasThePlainTint)
{
    KnownState();
    SCENE s(1, 1);
    memset(s.image, 0, 3);
    /* S is 1, p is 1, the entry behind the table reads 0.0: tint x specular, cut at 255. */
    METALLIGHTS.factors.specular[0] = 0.5;
    ZrPathShadeMetallic(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 0, s.mask, nullptr, 0, 0, 0, 0, 0, 1, 0x0A64C8,
                        nullptr, 0, 0, nullptr);
    EXPECT_EQ(100, s.image[0]); /* 0xC8 = 200 */
    EXPECT_EQ(50, s.image[1]);
    EXPECT_EQ(5, s.image[2]);
}

TEST(Shader, WithoutATintMapAllPixelsHaveTheOneTintAndWithItTheirOwn)
{
    KnownState();
    SCENE s(2, 1);
    memset(s.image, 0, 6);
    METALLIGHTS.factors.specular[0] = 1.0;
    s.tintMap[3] = 77;
    ZrPathShadeMetallic(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 0, s.mask, nullptr, 0, 0, 0, 0, 0, 1, 0xFF,
                        s.tintMap, 0, 0, nullptr);
    EXPECT_EQ(0, s.image[0]);
    EXPECT_EQ(77, s.image[3]);
    memset(s.image, 0, 6);
    ZrPathShadeMetallic(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 0, s.mask, nullptr, 0, 0, 0, 0, 0, 1, 0x20,
                        nullptr, 0, 0, nullptr);
    EXPECT_EQ(32, s.image[0]);
    EXPECT_EQ(32, s.image[3]);
}

TEST(Shader, AMetalsAmbientWrapsInItsByteAndThePhongOneDoesNot)
{
    KnownState();
    METALLIGHTS.factors.ambient = 1.5;
    METALLIGHTS.factors.diffuse[0] = 0;
    METALLIGHTS.factors.specular[0] = 0;
    SHADELIGHTS.factors.ambient = 1.5;
    SHADELIGHTS.factors.diffuse[0] = SHADELIGHTS.factors.specular[0] = 0;
    SCENE metal(1, 1), phong(1, 1);
    memset(metal.image, 200, 3);
    memset(phong.image, 200, 3);
    ZrPathShadeMetallic(metal.image, 8, 0, 0, 0, 0, metal.distance, metal.normals, 0, metal.mask, nullptr, 0, 0, 0, 0,
                        0, 1, 0, nullptr, 0, 0, nullptr);
    Phong(phong);
    EXPECT_EQ(300 - 256, metal.image[0]);
    EXPECT_EQ(255, phong.image[0]);
}

TEST(Shader, ALevelPixelWithAnSOfExactlyZeroGetsNoHighlight)
{
    KnownState();
    METALLIGHTS.factors.ambient = 0;
    SCENE s(1, 1);
    memset(s.image, 90, 3);
    ZrPathShadeMetallic(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 0, s.mask, nullptr, 0, 0, 0, 1, 0, 0, 0xFFFFFF,
                        nullptr, 0, 0, nullptr);
    EXPECT_EQ(0, s.image[0]);
}

/* ---- several lights ---- */

TEST(Shader, SeveralLightsGiveBackAQuarterOfTheFactorsBehindTheLastLight)
{
    KnownState();
    SCENE s(1, 1);
    const double lights[12] = {0, 0, 1, -a, -a, a, a, a, a, 0, 0, 1};
    const int32_t off[4] = {0, 0, 0, 0};
    const int32_t pos[8] = {};
    const double before = SHADELIGHTS.factors.specular[3];
    ZrPathShadeMultiPhong(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 0, s.mask, nullptr, 2, off, pos, lights, 0, 1,
                          0, nullptr);
    EXPECT_EQ(before, SHADELIGHTS.factors.specular[0]);
    EXPECT_EQ(before, SHADELIGHTS.factors.specular[1]);
    EXPECT_EQ(before * 0.25, SHADELIGHTS.factors.specular[2]);
    EXPECT_EQ(before * 0.25, SHADELIGHTS.factors.specular[3]);
}

TEST(Shader, OneOfSeveralLightsIsCloseToTheSingleFormButNotTheSame)
{
    KnownState();
    SCENE single(30, 30), multi(30, 30);
    const double light[3] = {-a, -a, a};
    const int32_t on[1] = {1};
    const int32_t pos[2] = {30, 40};
    for (SCENE *s : {&single, &multi})
        for (int i = 0; i < 900; i++)
            s->SetVector(i % 30, i / 30, {int16_t(i % 30 * 64), int16_t(i / 30 * 50 - 700), 0, 0});
    ZrPathShadePhong(single.image, 8, 0, 0, 0, 0, single.distance, single.normals, 0, single.mask, nullptr, 1, 30, 40,
                     -a, -a, a, 0, 0, 0, nullptr);
    ZrPathShadeMultiPhong(multi.image, 8, 0, 0, 0, 0, multi.distance, multi.normals, 0, multi.mask, nullptr, 1, on, pos,
                          light, 0, 0, 0, nullptr);
    int differing = 0;
    int widest = 0;
    for (int i = 0; i < 2700; i++) {
        differing += single.image[i] != multi.image[i];
        widest = std::max(widest, std::abs(single.image[i] - multi.image[i]));
    }
    EXPECT_GT(differing, 0);
    EXPECT_LT(widest, 60);
}

TEST(Shader, SeveralMetalLightsWantAFlatMaskForReflectOneOnly)
{
    KnownState();
    SCENE s(1, 1);
    const double light[3] = {0, 0, 1};
    const int32_t off[1] = {0};
    const int32_t pos[2] = {0, 0};
    EXPECT_EQ(0, ZrPathShadeMultiMetallic(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 1, s.mask, nullptr, 1, off,
                                          pos, light, 0, nullptr, 0, 0, nullptr));
    EXPECT_EQ(100, s.image[0]);
    EXPECT_EQ(1, ZrPathShadeMultiMetallic(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 2, s.mask, nullptr, 1, off,
                                          pos, light, 0, nullptr, 0, 0, nullptr));
    EXPECT_NE(100, s.image[0]);
}

TEST(Shader, NoLightGivesTheAmbientTermAndMoreThanFourCountAsFour)
{
    KnownState();
    SCENE none(1, 1), four(1, 1), nine(1, 1);
    double lights[27];
    for (int i = 0; i < 27; i++) lights[i] = i % 3 == 2 ? 1 : 0;
    int32_t off[9] = {};
    int32_t pos[18] = {};
    for (int32_t count : {0, -3}) {
        memset(none.image, 100, 3);
        ZrPathShadeMultiPhong(none.image, 8, 0, 0, 0, 0, none.distance, none.normals, 0, none.mask, nullptr, count, off,
                              pos, lights, 0, 0, 0, nullptr);
        EXPECT_EQ(20, none.image[0]);
    }
    ZrPathShadeMultiPhong(four.image, 8, 0, 0, 0, 0, four.distance, four.normals, 0, four.mask, nullptr, 4, off, pos,
                          lights, 0, 0, 0, nullptr);
    ZrPathShadeMultiPhong(nine.image, 8, 0, 0, 0, 0, nine.distance, nine.normals, 0, nine.mask, nullptr, 9, off, pos,
                          lights, 0, 0, 0, nullptr);
    EXPECT_EQ(0, memcmp(four.image, nine.image, 3));
}

TEST(Shader, SpotsNeedBothTheirArrays)
{
    KnownState();
    const double light[3] = {0, 0, 1};
    const int32_t on[1] = {1};
    const int32_t off[1] = {0};
    const int32_t place[2] = {0, 0};
    const struct {
        const int32_t *on;
        const int32_t *place;
    } cases[] = {{nullptr, place}, {on, nullptr}, {nullptr, nullptr}};
    SCENE plain(4, 4), spot(4, 4);
    const auto shade = [&](SCENE *s, const int32_t *spotOn, const int32_t *spotPos) {
        ZrPathShadeMultiPhong(s->image, 8, 0, 0, 0, 0, s->distance, s->normals, 0, s->mask, nullptr, 1, spotOn, spotPos,
                              light, 0, 0, 0, nullptr);
    };
    shade(&plain, off, place);
    shade(&spot, on, place);
    EXPECT_NE(0, memcmp(plain.image, spot.image, 48));
    for (const auto &c : cases) {
        SCENE s(4, 4);
        shade(&s, c.on, c.place);
        EXPECT_EQ(0, memcmp(plain.image, s.image, 48));
    }
}

TEST(Shader, ASpotOfSeveralLightsHangsOnASphere)
{
    KnownState();
    /* (0, 0): d = 10000, height 0; a light from the viewer gives nothing. (50, 0): d = 5000, not below: 0 too. (50,
     * 25): d = 1250, sqrt(3750). */
    const double light[3] = {0, 0, 1};
    const int32_t on[1] = {1};
    const int32_t places[3][2] = {{0, 0}, {50, 0}, {50, 25}};
    for (const auto &place : places) {
        SCENE s(4, 4);
        ZrPathShadeMultiPhong(s.image, 8, 0, 0, 0, 0, s.distance, s.normals, 0, s.mask, nullptr, 1, on, place, light, 0,
                              0, 0, nullptr);
        const uint8_t middle = s.image[(2 * 4 + 2) * 3];
        if (place[1] < 25) {
            EXPECT_EQ(20, middle);
        } else {
            const double height = std::sqrt(3750.0);
            const double c = height / std::sqrt(25.0 * 25.0 + height * height);
            const double f = std::pow(c, 4.0);
            const int wanted = 20 + int(100 * ((80 * 0.01 * 0.3 + 0.7) * f)) + int(255 * (80 * 0.01 * f));
            EXPECT_NEAR(std::min(wanted, 255), middle, 1);
        }
    }
}

/* ---- what no caller should bring ---- */

TEST(Shader, AMetalPixelWithoutASurfaceLeavesItsAmbientColourAndTintBehind)
{
    KnownState();
    SCENE s(1, 1);
    memset(s.image, 50, 3);
    s.tintMap[0] = 9;
    ZrPathShadeMetallic(s.image, 8, 0, 0, 0, 1, s.distance, s.normals, 0, s.mask, nullptr, 0, 0, 0, 0, 0, 1, 0xFFFFFF,
                        s.tintMap, 0, 0, nullptr);
    EXPECT_EQ(50, s.image[0]);
    EXPECT_EQ(40, METALLIGHTS.metalBase[0]); /* 0.8 x 50 */
    EXPECT_EQ(9, METALLIGHTS.specularTint[0]);
    EXPECT_EQ(0, METALLIGHTS.specularTint[1]);
}

TEST(Shader, BuffersOfSmallerPixelsCountAsEmpty)
{
    KnownState();
    SCENE s(5, 4);
    PATHBUF small = ZrPathBufAlloc(8, 5, 4);
    memset(small, 77, 20);
    EXPECT_EQ(1, ZrPathShadePhong(small, 8, 0, 0, 0, 0, s.distance, s.normals, 0, s.mask, nullptr, 0, 0, 0, -a, -a, a,
                                  0, 0, 0, nullptr));
    for (int i = 0; i < 20; i++) EXPECT_EQ(77, small[i]);
    /* Planes without a record: level, of distance 0. */
    EXPECT_EQ(1, ZrPathShadePhong(s.image, 8, 0, 0, 0, 0, small, small, 0, s.mask, nullptr, 0, 0, 0, -a, -a, a, 0, 0, 0,
                                  nullptr));
    EXPECT_EQ(LevelValue(100), s.image[0]);
    ZrPathBufFree(small);
}

/* 200 x -1e7 of ambient and 200 x -3e6 of diffuse light on a level surface: -2.6e9 a channel, below what 32 bits hold.
 */
TEST(Shader, TwoOffsetsFarBelowBlackAreBlack)
{
    KnownState();
    const int32_t shininess[4] = {28, 28, 28, 28};
    const int32_t percent[4] = {-1000000000, 0, 0, 0};
    const uint32_t black[4] = {};
    ZrPathAdjPhongIllum(shininess, percent, 0, black, 1, -1000000000);
    SCENE s(2, 2);
    memset(s.image, 200, 12);
    s.SetVector(0, 0, {2560, 0, 0, 2560});
    ASSERT_EQ(1, Phong(s, 0, nullptr, 0, 0, 0, nullptr, 0, 0, 1));
    EXPECT_EQ(0, s.image[0]);
}

TEST(Shader, AnyFactorPositionAndDirectionIsSafe)
{
    const int32_t extremes[] = {INT32_MIN, -1000, -1, 0, 1, 1000, INT32_MAX};
    const double directions[] = {
        0.0, -1.0, 1e-310, 1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
    for (int32_t value : extremes)
        for (double z : directions)
            for (int multi = 0; multi < 2; multi++) {
                const int32_t four[4] = {value, value, value, value};
                const uint32_t colours[4] = {0xFFFFFF, 0, 0xFF, 0xFFFFFF};
                ZrPathAdjPhongIllum(four, four, 0xFFFFFF, colours, multi ? 0 : 1, value);
                ZrPathAdjMetallicIllum(four, four, multi ? 0 : 1, value);
                SCENE s(6, 4);
                for (int i = 0; i < 24; i++) {
                    s.SetVector(i % 6, i / 6, {int16_t(i * 90), int16_t(500 - i * 40), int16_t(i * 88), 500});
                    s.flat[i] = uint8_t(i * 31);
                    s.mask[i] = uint8_t(i * 17);
                }
                const double lights[12] = {0, z, z, z, 0, z, z, z, 0, 1, 1, z};
                const int32_t on[4] = {1, 0, 1, 0};
                const int32_t places[8] = {value, value, 0, 0, 50, value, 0, 0};
                if (multi) {
                    ZrPathShadeMultiPhong(s.image, 8, 100, 0, value, 0, s.distance, s.normals, 1, s.mask, s.flat, 4, on,
                                          places, lights, 0, 1, value, s.bump);
                    ZrPathShadeMultiMetallic(s.image, 8, 104, 0, value, 0, s.distance, s.normals, 1, s.mask, s.flat, 4,
                                             on, places, lights, 0x123456, s.tintMap, 1, value, s.bump);
                } else {
                    ZrPathShadePhong(s.image, 8, 100, 1, value, 0, s.distance, s.normals, 1, s.mask, s.flat, 1, value,
                                     value, 0, z, z, 1, 1, value, s.bump);
                    ZrPathShadeMetallic(s.image, 8, 104, 1, value, 0, s.distance, s.normals, 1, s.mask, s.flat, 1,
                                        value, value, 0, z, z, 0x123456, s.tintMap, 1, value, s.bump);
                }
            }
    KnownState();
}

} // namespace
