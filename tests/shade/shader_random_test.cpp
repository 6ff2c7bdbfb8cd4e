/* shader_random_test.cpp - the four shaders against the plain form, byte by byte, on random planes and settings. */
#include "shade/shader.h"

#include "shade/plain_shader.h"
#include "shade/planes_fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

using namespace zr32;
using namespace zr32test;

namespace {

struct LIGHTSTATE {
    SHADELIGHTSREC phong;
    METALLIGHTSREC metal;
};

LIGHTSTATE KeepLights()
{
    return {SHADELIGHTS, METALLIGHTS};
}

void PutLights(const LIGHTSTATE &state)
{
    SHADELIGHTS = state.phong;
    METALLIGHTS = state.metal;
}

void RandomLights(RANDOM &random)
{
    int32_t shininess[4], percent[4];
    uint32_t colours[4];
    for (int i = 0; i < 4; i++) {
        shininess[i] = Pick(random, 0, 3) ? Pick(random, 0, 100) : 0;
        percent[i] = Pick(random, 0, 7) ? Pick(random, 0, 150) : 0;
        colours[i] = Word(random);
    }
    ZrPathAdjPhongIllum(shininess, percent, Word(random), colours, Pick(random, 1, 4), Pick(random, 0, 130));
    ZrPathAdjMetallicIllum(shininess, percent, Pick(random, 1, 4), Pick(random, 0, 130));
    ShadingGammaToMap();
    for (uint8_t &byte : METALLIGHTS.metalBase) byte = static_cast<uint8_t>(random());
}

int32_t Export(const PLAINSHADE &call)
{
    const PLAINBEVEL &b = call.bevel;
    const double *l = call.lights[0];
    const int32_t *pos = call.spotPos[0];
    if (!call.multi && !call.metal)
        return ZrPathShadePhong(call.image, b.width, b.profile, b.invert, b.scale, call.floatNormals, call.distanceMap,
                                call.normalMap, b.reflect, call.mask, call.flatMask, call.spotOn[0], pos[0], pos[1],
                                l[0], l[1], l[2], call.fixedAmbient, call.specularToAlpha, call.bumpPercent,
                                call.bumpMap);
    if (!call.multi)
        return ZrPathShadeMetallic(call.image, b.width, b.profile, b.invert, b.scale, call.floatNormals,
                                   call.distanceMap, call.normalMap, b.reflect, call.mask, call.flatMask,
                                   call.spotOn[0], pos[0], pos[1], l[0], l[1], l[2], call.tint, call.tintMap,
                                   call.specularToAlpha, call.bumpPercent, call.bumpMap);
    if (!call.metal)
        return ZrPathShadeMultiPhong(call.image, b.width, b.profile, b.invert, b.scale, call.floatNormals,
                                     call.distanceMap, call.normalMap, b.reflect, call.mask, call.flatMask,
                                     call.lightCount, call.spotOn, pos, l, call.fixedAmbient, call.specularToAlpha,
                                     call.bumpPercent, call.bumpMap);
    return ZrPathShadeMultiMetallic(call.image, b.width, b.profile, b.invert, b.scale, call.floatNormals,
                                    call.distanceMap, call.normalMap, b.reflect, call.mask, call.flatMask,
                                    call.lightCount, call.spotOn, pos, l, call.tint, call.tintMap, call.specularToAlpha,
                                    call.bumpPercent, call.bumpMap);
}

PLANESIZE SizeNear(RANDOM &random, PLANESIZE size)
{
    if (Pick(random, 0, 5) != 0) return size;
    return {Pick(random, 0, size.width + 3), Pick(random, 0, size.height + 3)};
}

PLAINSHADE RandomCall(RANDOM &random, BUFFERS *buffers)
{
    const int32_t profiles[] = {0, 1, 100, 101, 102, 103, 104, 55};
    PLAINSHADE call = {};
    call.metal = Pick(random, 0, 1);
    call.multi = Pick(random, 0, 1);
    const PLANESIZE size = {Pick(random, 1, 24), Pick(random, 1, 12)};
    double width = PickReal(random, 0.5, 20);
    if (Pick(random, 0, 15) == 0) {
        const double odd[] = {0, -3, std::nan(""), HUGE_VAL, 1e-5, 1e300};
        width = odd[Pick(random, 0, 5)];
    }
    const double reach = std::isfinite(width) && width > 0 && width < 100 ? width : 4.0;
    call.bevel = {width, profiles[Pick(random, 0, 7)], Pick(random, 0, 1),
                  Pick(random, 0, 2) ? 0 : Pick(random, -5, 90), Pick(random, 0, 2)};
    call.floatNormals = Pick(random, 0, 3) == 0;
    call.image = buffers->Make(24, size);
    call.distanceMap = buffers->Make(32, SizeNear(random, size));
    call.normalMap = buffers->Make(0x40, SizeNear(random, size));
    call.mask = buffers->Make(8, SizeNear(random, size));
    if (Pick(random, 0, 1)) call.flatMask = buffers->Make(8, SizeNear(random, size));
    if (Pick(random, 0, 2) == 0) call.bumpMap = buffers->Make(8, SizeNear(random, size));
    if (Pick(random, 0, 2) == 0) call.tintMap = buffers->Make(24, SizeNear(random, size));
    FillColours(random, call.image);
    FillDistances(random, call.distanceMap);
    if (call.floatNormals)
        FillFloats(random, call.normalMap, reach);
    else
        FillWords(random, call.normalMap, reach);
    FillBytes(random, call.mask, 2);
    if (call.flatMask) FillBytes(random, call.flatMask, Pick(random, 1, 6));
    if (call.bumpMap) FillBytes(random, call.bumpMap, 2);
    if (call.tintMap) FillColours(random, call.tintMap);
    call.lightCount = call.multi ? Pick(random, -1, 6) : 1;
    for (int i = 0; i < 4; i++) {
        call.spotOn[i] = Pick(random, 0, 2) == 0;
        call.spotPos[i][0] = Pick(random, -20, 120);
        call.spotPos[i][1] = Pick(random, -20, 120);
        double x = PickReal(random, -1, 1), y = PickReal(random, -1, 1), z = PickReal(random, -0.2, 1);
        const double length = std::sqrt(x * x + y * y + z * z);
        if (Pick(random, 0, 9) == 0) {
            x = y = 0;
            z = length;
        }
        call.lights[i][0] = x / length;
        call.lights[i][1] = y / length;
        call.lights[i][2] = z / length;
    }
    call.fixedAmbient = Pick(random, 0, 1);
    call.specularToAlpha = Pick(random, 0, 1);
    call.bumpPercent = Pick(random, 0, 1) ? Pick(random, -100, 300) : 0;
    call.tint = Word(random);
    return call;
}

void ExpectSameBytes(PATHBUF got, PATHBUF want, const char *what, unsigned seed)
{
    const size_t count = BytesOf(want);
    for (size_t i = 0; i < count; i++) ASSERT_EQ(got[i], want[i]) << what << " byte " << i << " of case " << seed;
}

/* One case: the export on one set of buffers, the plain form on copies. */
void CompareCase(unsigned seed)
{
    RANDOM random(seed);
    BUFFERS buffers;
    RandomLights(random);
    const PLAINSHADE call = RandomCall(random, &buffers);
    PLAINSHADE plain = call;
    plain.image = buffers.Copy(call.image);
    plain.mask = buffers.Copy(call.mask);
    const LIGHTSTATE before = KeepLights();
    PlainShade(plain);
    const LIGHTSTATE wanted = KeepLights();
    PutLights(before);
    const int refused = call.metal && call.multi && call.bevel.reflect == 1 && !call.flatMask;
    ASSERT_EQ(Export(call), refused ? 0 : 1) << "case " << seed;
    ExpectSameBytes(call.image, plain.image, "image", seed);
    ExpectSameBytes(call.mask, plain.mask, "mask", seed);
    for (int i = 0; i < 4; i++) {
        ASSERT_EQ(SHADELIGHTS.factors.specular[i], wanted.phong.factors.specular[i]) << "case " << seed;
        /* as bytes: a light that the call leaves alone may have been left without a number */
        ASSERT_EQ(memcmp(SHADELIGHTS.lightDir[i], wanted.phong.lightDir[i], sizeof wanted.phong.lightDir[i]), 0)
            << "case " << seed;
    }
    for (int c = 0; c < 3; c++) {
        ASSERT_EQ(METALLIGHTS.specularTint[c], wanted.metal.specularTint[c]) << "case " << seed;
        ASSERT_EQ(METALLIGHTS.metalBase[c], wanted.metal.metalBase[c]) << "case " << seed;
    }
}

TEST(Shader, AgreesWithThePlainFormOnRandomPlanes)
{
    for (unsigned seed = 1; seed <= 4000; seed++) {
        CompareCase(seed);
        if (HasFatalFailure()) return;
    }
}

} // namespace
