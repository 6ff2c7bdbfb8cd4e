/* normal_test.cpp - normals of every profile by hand, through the table and by the exact formulas. */
#include "shade/lights.h"
#include "shade/normal.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <zr32path.h>

using namespace zr32;

namespace {

struct NORMAL {
    double x, y, z;
};

NORMAL Table(int profile, double x, double y, double width = 8, int invert = 0, int scale = 0, int reflect = 0)
{
    ProfileTableBuild(profile, width, scale, invert);
    double n[3] = {0, 0, 1};
    ProfileNormal(SurfaceForm(width, profile, invert, scale, reflect), &x, &y, n);
    return {n[0], n[1], n[2]};
}

NORMAL Exact(int profile, double x, double y, double width = 8, int invert = 0, int scale = 0, int reflect = 0)
{
    double n[3] = {0, 0, 1};
    ProfileNormalExact(SurfaceForm(width, profile, invert, scale, reflect), x, y, n);
    return {n[0], n[1], n[2]};
}

void ExpectNormal(const NORMAL &wanted, const NORMAL &got, double within, const char *what)
{
    EXPECT_NEAR(wanted.x, got.x, within) << what;
    EXPECT_NEAR(wanted.y, got.y, within) << what;
    EXPECT_NEAR(wanted.z, got.z, within) << what;
}

constexpr int allProfiles[] = {0, 1, 100, 101, 102, 103, 104};

TEST(Normal, BeyondTheWidthItIsExactlyUpWithoutASeam)
{
    for (int profile : allProfiles) {
        for (double x : {8.0, 8.5, 1e9}) {
            const NORMAL n = Table(profile, x, 0);
            EXPECT_TRUE(n.x == 0 && n.y == 0 && n.z == 1) << profile;
            EXPECT_EQ(0.0, RIMBLEND.weight);
        }
    }
}

TEST(Normal, AnOffsetShorterThanAMillionthIsUp)
{
    const NORMAL plain = Table(0, 9e-7, -9e-7);
    EXPECT_TRUE(plain.x == 0 && plain.y == 0 && plain.z == 1);
    const NORMAL reflected = Table(0, 5e-7, 0, 8, 0, 0, 1);
    EXPECT_TRUE(reflected.x == 0 && reflected.y == 0 && reflected.z == 1);
    for (const NORMAL &n : {Table(0, 1e-6, 0), Table(0, 0, 1e-6)}) EXPECT_EQ(0, n.z) << "the rim stands upright";
    EXPECT_NE(1, Table(0, 1e-6, 0, 8, 0, 0, 1).z) << "reflected it is all but 8 long";
}

TEST(Normal, AChamferHasItsLengthForAHeight)
{
    ExpectNormal({0.6 / std::sqrt(2.0), 0.8 / std::sqrt(2.0), 1 / std::sqrt(2.0)}, Table(1, 3, 4), 1e-12, "chamfer");
}

TEST(Normal, AQuarterCircleStandsUpTowardsItsInnerEnd)
{
    /* At distance d the cosine of the angle is 1 - d / width. */
    for (double d : {1.0, 4.0, 7.0}) {
        const double c = 1 - d / 8;
        ExpectNormal({c, 0, std::sqrt(1 - c * c)}, Table(0, d, 0), 1e-3, "table");
        ExpectNormal({c, 0, std::sqrt(1 - c * c)}, Exact(0, d, 0), 1e-12, "exact");
        ExpectNormal({d / 8, 0, std::sqrt(1 - d * d / 64)}, d < 7 ? Table(101, d, 0) : Exact(101, 6.9, 0),
                     d < 7 ? 1e-3 : 0.1, "101");
    }
}

TEST(Normal, InsideOutTurnsTheLevelPartAndScaleTheHeight)
{
    const NORMAL n = Table(1, 3, 4, 8, 1);
    EXPECT_LT(n.x, 0);
    EXPECT_LT(n.y, 0);
    /* z 5 / 10 x 30 = 15 */
    const double length = std::sqrt(25 + 225.0);
    ExpectNormal({3 / length, 4 / length, 15 / length}, Table(1, 3, 4, 8, 0, 10), 1e-12, "scale");
}

TEST(Normal, TheLastPixelOfTheBevelIsASeamWithTheLevelSurface)
{
    for (int profile : {1, 101, 102, 103, 104}) {
        Table(profile, 7.25, 0);
        EXPECT_NEAR(0.75, RIMBLEND.weight, 1e-12) << profile;
        EXPECT_EQ(1.0, RIMBLEND.first[2]);
        EXPECT_EQ(0.0, RIMBLEND.first[0]);
    }
    for (int profile : {0, 100}) {
        Table(profile, 7.25, 0);
        EXPECT_EQ(0.0, RIMBLEND.weight) << profile;
    }
    Table(1, 7.25, 0, 8, 0, 0, 1); /* reflected: |8 - 7.25| = 0.75 long, no rim */
    EXPECT_EQ(0.0, RIMBLEND.weight);
    const NORMAL blended = Table(1, 7.25, 0);
    const double s = 1 / std::sqrt(2.0);
    ExpectNormal({0.75 * s, 0, 0.75 * s + 0.25}, blended, 1e-12, "not of unit length");
}

TEST(Normal, TheCreaseOfTwoArcsIsASeam)
{
    for (int profile : {100, 103}) {
        Table(profile, 4.25, 0);
        EXPECT_NEAR(0.25, RIMBLEND.weight, 1e-12) << profile; /* 1 - (4.25 - 3.5) */
        Table(profile, 3.5, 0);
        EXPECT_EQ(0.0, RIMBLEND.weight); /* strict */
        ExpectNormal(Exact(profile, 4.5, 0), Table(profile, 4.5, 0), 1e-3, "behind the crease the second arc alone");
        EXPECT_EQ(0.0, RIMBLEND.weight);
    }
}

TEST(Normal, Profile104FacesTheOtherWayBeyondTheMiddleAndTurnsTheOffset)
{
    ProfileTableBuild(104, 8, 0, 0);
    double x = 5;
    double y = 0;
    double n[3] = {0, 0, 1};
    ProfileNormal(SurfaceForm(8, 104, 0, 0, 0), &x, &y, n);
    EXPECT_EQ(-5, x);
    EXPECT_LT(n[0], 0);
    /* The mirror of distance 3 from the other end. */
    EXPECT_NEAR(-Exact(104, 3, 0).x, n[0], 2e-3);
}

TEST(Normal, ReflectMeasuresFromTheInnerEndAndWritesTheOffsetBack)
{
    ProfileTableBuild(0, 8, 0, 0);
    double x = 2;
    double y = 0;
    double n[3] = {0, 0, 1};
    ProfileNormal(SurfaceForm(8, 0, 0, 0, 1), &x, &y, n);
    EXPECT_EQ(-6, x); /* |8 - 2| / 2 x -2 */
    const double c = 1 - 6.0 / 8;
    EXPECT_NEAR(-c, n[0], 1e-3);
}

TEST(Normal, AnUnknownProfileKeepsWhatTheNormalHeld)
{
    double x = 3;
    double y = 0;
    double n[3] = {0.6, 0, 0.8};
    ProfileNormal(SurfaceForm(8, 55, 0, 0, 0), &x, &y, n);
    EXPECT_EQ(0.6, n[0]);
    EXPECT_EQ(0.8, n[2]);
}

TEST(Normal, TheExactFormAgreesWithTheTableButOnTheCreaseOf103)
{
    for (int profile : allProfiles) {
        for (int invert : {0, 1}) {
            for (int scale : {0, 20}) {
                for (double d = 0.11; d < 8; d += 0.137) {
                    if (profile == 103 && d > 3.4 && d < 4.6) continue;
                    if (profile == 0 && d > 7.8) continue; /* where the rise grows without bound */
                    const NORMAL table = Table(profile, d * 0.6, d * 0.8, 8, invert, scale);
                    const double weight = RIMBLEND.weight;
                    const NORMAL exact = Exact(profile, d * 0.6, d * 0.8, 8, invert, scale);
                    ExpectNormal(table, exact, 0.03, "table and exact");
                    EXPECT_NEAR(weight, RIMBLEND.weight, 1e-9);
                }
            }
        }
    }
}

TEST(Normal, TheExactFormRaisesAReflectedOffsetInsteadOfGivingUp)
{
    /* L is raised to 1e-6: r = 8e6 and an offset of 5e-7 becomes -4. */
    const NORMAL n = Exact(0, 5e-7, 0, 8, 0, 0, 1);
    EXPECT_NEAR(-0.5, n.x, 1e-5);
}

TEST(Normal, AnyWidthAndOffsetIsSafe)
{
    const double odd[] = {
        0, -1, 0.3, 1.5, 1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
    for (int profile : allProfiles)
        for (double width : odd)
            for (double x : odd)
                for (int reflect : {0, 1, 2}) {
                    Table(profile, x, 0.5, width, reflect & 1, 3, reflect);
                    Exact(profile, x, 0.5, width, reflect & 1, 3, reflect);
                }
}

/* ---- the light aimed at a picked pixel ---- */

TEST(LightNormal, AZeroOffsetOrOneBeyondTheBevelAimsAtTheViewer)
{
    for (SURFVEC16 record : {SURFVEC16{0, 0, 0, 0}, SURFVEC16{8 * 256, 0, 0, 0}}) {
        const int32_t column = 0;
        double result[3] = {9, 9, 9};
        ASSERT_EQ(1, ZrpathChangeLightNormal(8, 0, 0, 0, &column, 0, &record, 0, 2, result));
        EXPECT_TRUE(result[0] == 0 && result[1] == 0 && result[2] == 1);
        EXPECT_EQ(1, SHADELIGHTS.lightDir[2][2]);
    }
}

TEST(LightNormal, TheFirstAndTheLastLightAreAimedLikeTheOthers)
{
    const SURFVEC16 record = {4 * 256, 0, 0, 0};
    const int32_t column = 0;
    for (int32_t index = 0; index < 4; index++) {
        double result[3];
        SHADELIGHTS.lightDir[index][0] = 9;
        ZrpathChangeLightNormal(8, 0, 0, 0, &column, 0, &record, 0, index, result);
        EXPECT_NEAR(0.5, SHADELIGHTS.lightDir[index][0], 1e-12) << index;
    }
}

TEST(LightNormal, TheRecordOfTheColumnIsReadInBothForms)
{
    const SURFVEC16 words[3] = {{0, 0, 0, 0}, {0, 0, 0, 0}, {4 * 256, 0, 0, 0}};
    const SURFVECF floats[3] = {{0, 0}, {0, 0}, {4, 0}};
    const int32_t column = 2;
    double fromWords[3], fromFloats[3];
    ZrpathChangeLightNormal(8, 0, 0, 0, &column, 0, words, 0, 1, fromWords);
    ZrpathChangeLightNormal(8, 0, 0, 0, &column, 1, floats, 0, 1, fromFloats);
    EXPECT_NEAR(0.5, fromWords[0], 1e-12);
    for (int i = 0; i < 3; i++) EXPECT_EQ(fromWords[i], fromFloats[i]);
    EXPECT_EQ(fromWords[0], SHADELIGHTS.lightDir[1][0]);
}

TEST(LightNormal, AnIndexWithoutALightChangesNoneAndTheResultComesAllTheSame)
{
    const SURFVEC16 record = {4 * 256, 0, 0, 0};
    const int32_t column = 0;
    double before[4][3];
    memcpy(before, SHADELIGHTS.lightDir, sizeof before);
    for (int32_t index : {-1, 4, 1000000}) {
        double result[3] = {0, 0, 0};
        EXPECT_EQ(1, ZrpathChangeLightNormal(8, 0, 0, 0, &column, 0, &record, 0, index, result));
        EXPECT_NEAR(0.5, result[0], 1e-12);
    }
    EXPECT_EQ(0, memcmp(before, SHADELIGHTS.lightDir, sizeof before));
}

TEST(LightNormal, ASeamsVectorIsStoredAsItIs)
{
    const SURFVEC16 record = {7 * 256 + 128, 0, 0, 0};
    const int32_t column = 0;
    double r[3];
    ZrpathChangeLightNormal(8, 1, 0, 0, &column, 0, &record, 0, 0, r);
    EXPECT_LT(std::sqrt(r[0] * r[0] + r[2] * r[2]), 0.95);
}

TEST(LightNormal, AShaderOverwritesTheLightThatItUses)
{
    const SURFVEC16 record = {4 * 256, 0, 0, 0};
    const int32_t column = 0;
    double r[3];
    ZrpathChangeLightNormal(8, 0, 0, 0, &column, 0, &record, 0, 0, r);
    PATHBUF image = ZrPathBufAlloc(24, 1, 1), distance = ZrPathBufAlloc(32, 1, 1), normals = ZrPathBufAlloc(64, 1, 1),
            mask = ZrPathBufAlloc(8, 1, 1);
    ZrPathShadePhong(image, 8, 0, 0, 0, 0, distance, normals, 0, mask, nullptr, 0, 0, 0, 0, 1, 0, 0, 0, 0, nullptr);
    EXPECT_EQ(0, SHADELIGHTS.lightDir[0][0]);
    EXPECT_EQ(1, SHADELIGHTS.lightDir[0][1]);
    for (PATHBUF buf : {image, distance, normals, mask}) ZrPathBufFree(buf);
}

/* ---- light state ---- */

/* Before any test runs. */
const SHADELIGHTSREC phongAtLoad = SHADELIGHTS;
const METALLIGHTSREC metalAtLoad = METALLIGHTS;
const int gammaAtLoad = *std::max_element(gammaMap, gammaMap + 256);

TEST(Lights, StateAtLoadIsOneDiagonalLightACornerAndWhite)
{
    const double dir[4][3] = {{-0.5773502, -0.5773502, 0.5773502},
                              {0.5773502, -0.5773502, 0.5773502},
                              {-0.5773502, 0.5773502, 0.5773502},
                              {0.5773502, 0.5773502, 0.5773502}};
    EXPECT_EQ(0.2, phongAtLoad.factors.ambient);
    EXPECT_EQ(0.8, metalAtLoad.factors.ambient);
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(0.75, phongAtLoad.factors.diffuse[i]) << i;
        EXPECT_EQ(0.8, phongAtLoad.factors.specular[i]) << i;
        EXPECT_EQ(28.0, phongAtLoad.factors.shininess[i]) << i;
        EXPECT_EQ(0.3, metalAtLoad.factors.diffuse[i]) << i;
        EXPECT_EQ(2.0, metalAtLoad.factors.specular[i]) << i;
        EXPECT_EQ(8.0, metalAtLoad.factors.shininess[i]) << i;
        for (int c = 0; c < 3; c++) {
            EXPECT_EQ(255, phongAtLoad.lightColor[i][c]) << i;
            EXPECT_EQ(dir[i][c], phongAtLoad.lightDir[i][c]) << i;
        }
    }
    for (const LIGHTFACTORS *factors : {&phongAtLoad.factors, &metalAtLoad.factors}) {
        EXPECT_EQ(4.0, factors->spotPower);
        EXPECT_EQ(4.0, factors->multiSpotPower);
    }
    for (uint8_t byte : phongAtLoad.ambientColor) EXPECT_EQ(0, byte);
    EXPECT_EQ(0, gammaAtLoad) << "until the map is built all is black";
}

TEST(Lights, PhongStateFollowsItsArguments)
{
    const int32_t shininess[4] = {0, 5, 90, -3};
    const int32_t percent[4] = {50, 0, 100, 200};
    const uint32_t colours[4] = {0x030201, 0xFFFFFF, 0x10, 0};
    ASSERT_EQ(1, ZrPathAdjPhongIllum(shininess, percent, 0x6496C8, colours, 2, 50));
    EXPECT_EQ(1.0, SHADELIGHTS.factors.shininess[0]); /* 0 becomes 1 */
    EXPECT_EQ(5.0, SHADELIGHTS.factors.shininess[1]);
    EXPECT_EQ(50 * 0.01, SHADELIGHTS.factors.specular[0]);
    EXPECT_EQ(50 * 0.01 * 0.3 + 0.7 / 2, SHADELIGHTS.factors.diffuse[0]);
    EXPECT_EQ(0.5, SHADELIGHTS.factors.ambient);
    EXPECT_EQ(100, SHADELIGHTS.ambientColor[0]);
    EXPECT_EQ(75, SHADELIGHTS.ambientColor[1]);
    EXPECT_EQ(50, SHADELIGHTS.ambientColor[2]);
    EXPECT_EQ(1, SHADELIGHTS.lightColor[0][0]);
    EXPECT_EQ(3, SHADELIGHTS.lightColor[0][2]);
    ZrPathAdjPhongIllum(shininess, percent, 0xFF, colours, 0, 200);
    EXPECT_TRUE(std::isinf(SHADELIGHTS.factors.diffuse[0])); /* no light: stored, nothing faults */
    EXPECT_EQ(510 - 256, SHADELIGHTS.ambientColor[0]);       /* wraps in its byte */
    EXPECT_EQ(0, ZrPathAdjPhongIllum(nullptr, percent, 0, colours, 1, 1));
}

TEST(Lights, MetallicStateFollowsItsArguments)
{
    const int32_t shininess[4] = {100, 0, 50, 10};
    const int32_t level[4] = {60, 0, 100, 10};
    ASSERT_EQ(1, ZrPathAdjMetallicIllum(shininess, level, 4, 80));
    const double v = 60 * 0.02 + 0.8;
    EXPECT_EQ(v, METALLIGHTS.factors.specular[0]);
    EXPECT_EQ((v - 0.8) * 0.15 + 0.2 / 4, METALLIGHTS.factors.diffuse[0]);
    EXPECT_EQ(100 * 0.06 + 2.0, METALLIGHTS.factors.shininess[0]);
    EXPECT_EQ(80 * 0.01, METALLIGHTS.factors.ambient);
    EXPECT_EQ(0, ZrPathAdjMetallicIllum(shininess, nullptr, 4, 80));
}

TEST(Lights, TheGammaMapRunsFromZeroTo255)
{
    ShadingGammaToMap();
    EXPECT_EQ(0, gammaMap[0]);
    EXPECT_EQ(255, gammaMap[255]);
    EXPECT_EQ(int(std::pow(100 * 0.00392156862745098, 0.625) * 255.0), gammaMap[100]);
    uint8_t map[256];
    GammaMapBuild(1.0, map);
    for (int i = 0; i < 256; i++) EXPECT_EQ(i, map[i]);
}

TEST(Lights, FresnelTermsMeetAtTheEndsAndReadZeroBehind)
{
    FresnelTableInit();
    EXPECT_EQ(1.0, FresnelAt(0)); /* along the surface everything is mirrored */
    /* Straight on: ((n - 1)^2 + k^2) / ((n + 1)^2 + k^2). */
    const double n = 2.63, k = 0.617;
    EXPECT_NEAR(((n - 1) * (n - 1) + k * k) / ((n + 1) * (n + 1) + k * k), FresnelAt(999), 1e-3);
    EXPECT_EQ(0.0, FresnelAt(1000));
    EXPECT_EQ(0.0, FresnelAt(-1));
}

} // namespace
