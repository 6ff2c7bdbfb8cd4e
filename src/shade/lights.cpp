/* lights.cpp - the light state of the shaders, see lights.h. */
#include "shade/lights.h"

#include "frame/frame.h"
#include <zr32path/shade.h>

#include <cmath>

namespace zr32 {

namespace {

/* 1 over the square root of 3 to seven digits; results depend on them. */
constexpr double diagonal = 0.5773502;

} // namespace

SHADELIGHTSREC SHADELIGHTS = {
    {0.2, {0.75, 0.75, 0.75, 0.75}, {0.8, 0.8, 0.8, 0.8}, {28.0, 28.0, 28.0, 28.0}, 4.0, 4.0},
    {0, 0, 0},
    {{255, 255, 255}, {255, 255, 255}, {255, 255, 255}, {255, 255, 255}},
    {{-diagonal, -diagonal, diagonal},
     {diagonal, -diagonal, diagonal},
     {-diagonal, diagonal, diagonal},
     {diagonal, diagonal, diagonal}},
};

METALLIGHTSREC METALLIGHTS = {
    {0.8, {0.3, 0.3, 0.3, 0.3}, {2.0, 2.0, 2.0, 2.0}, {8.0, 8.0, 8.0, 8.0}, 4.0, 4.0}, {0, 0, 0}, {0, 0, 0}};

uint8_t gammaMap[256];

void GammaMapBuild(double gamma, uint8_t *map)
{
    for (int i = 0; i < 256; i++)
        map[i] = gamma == 1.0 ? static_cast<uint8_t>(i) : TruncByte(std::pow(i * 0.00392156862745098, gamma) * 255.0);
}

/* ---- Fresnel's terms for a metal with refraction n and absorption k, c being the cosine of the angle ---- */

namespace {

constexpr int fresnelEntries = 1000;
double FRESNELTBL[fresnelEntries];

double FresnelPerpendicular(double i, double k, double n)
{
    const double c = i * 0.001;
    const double q = k * k + n * n;
    const double p = n * c * 2.0;
    return ((q - p) + c * c) / (q + c * c + p);
}

double FresnelParallel(double i, double k, double n)
{
    const double c = i * 0.001;
    const double q = (k * k + n * n) * c * c;
    const double p = c * n * 2.0;
    return ((q - p) + 1.0) / (p + q + 1.0);
}

} // namespace

void FresnelTableInit()
{
    if (FRESNELTBL[0] != 0) return;
    for (int i = 0; i < fresnelEntries; i++)
        FRESNELTBL[i] = 0.5 * (FresnelParallel(i, 0.617, 2.63) + FresnelPerpendicular(i, 0.617, 2.63));
}

double FresnelAt(int32_t index)
{
    return index >= 0 && index < fresnelEntries ? FRESNELTBL[index] : 0.0;
}

extern "C" {

ZRPATHAPI int32_t ZrPathAdjPhongIllum(const int32_t *shininess, const int32_t *specularPercent, uint32_t ambientColor,
                                      const uint32_t *lightColor, int32_t lightCount, int32_t ambientPercent)
{
    if (!shininess || !specularPercent || !lightColor) return 0;
    LIGHTFACTORS *factors = &SHADELIGHTS.factors;
    for (int i = 0; i < maxLights; i++) {
        factors->specular[i] = specularPercent[i] * 0.01;
        factors->diffuse[i] = factors->specular[i] * 0.3 + 0.7 / lightCount;
        factors->shininess[i] = shininess[i] == 0 ? 1.0 : shininess[i];
    }
    factors->ambient = ambientPercent * 0.01;
    for (int c = 0; c < 3; c++) {
        SHADELIGHTS.ambientColor[c] = TruncByte((ambientColor >> (8 * c) & 255) * factors->ambient);
        for (int i = 0; i < maxLights; i++)
            SHADELIGHTS.lightColor[i][c] = static_cast<uint8_t>(lightColor[i] >> (8 * c));
    }
    return 1;
}

ZRPATHAPI int32_t ZrPathAdjMetallicIllum(const int32_t *shininess, const int32_t *specularLevel, int32_t lightCount,
                                         int32_t ambientPercent)
{
    if (!shininess || !specularLevel) return 0;
    LIGHTFACTORS *factors = &METALLIGHTS.factors;
    for (int i = 0; i < maxLights; i++) {
        const double level = specularLevel[i] * 0.02 + 0.8;
        factors->specular[i] = level;
        factors->diffuse[i] = (level - 0.8) * 0.15 + 0.2 / lightCount;
        factors->shininess[i] = shininess[i] * 0.06 + 2.0;
    }
    factors->ambient = ambientPercent * 0.01;
    return 1;
}

ZRPATHAPI void ShadingGammaToMap(void)
{
    GammaMapBuild(0.625, gammaMap);
}

} // extern "C"

} // namespace zr32
