/* sample.cpp - the light on a sample: glass by the viewing angle, and one light with a highlight.
 *
 * State: the light's direction and the material's factors. Both outlive a render: the direction until another is
 * given, and the factors of glass for good once a translucent colour has been lit.
 */
#include "render3d/fragments.h"
#include "render3d/space.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

double lightDirection[3] = {-0.5773502, -0.5773502, 0.5773502};

struct REFLECTANCE {
    double ambient;
    double diffuse;
    double specular;
    double shininess;
};

constexpr REFLECTANCE reflectanceOfGlass = {0.2, 0.75, 4.0, 28.0};
REFLECTANCE reflectance = {0.2, 0.75, 0.8, 28.0};

constexpr int32_t glassEntries = 1000;
constexpr size_t glassBlock = 0x400;

uint8_t GlassEntry(int32_t i)
{
    const double k = 1 - 0.001 * i;
    return TruncByte(k * k * 239 + 16);
}

/* A term cut to what a byte holds before it is converted; what is no number counts 0. */
uint32_t Term(double value)
{
    return value > 0 ? static_cast<uint32_t>(std::min(value, 255.0)) : 0;
}

} // namespace

double FacingDot(const POINT3D *point, const POINT3D *normal, const POINT3D *eye)
{
    POINT3D ray = {eye->x - point->x, eye->y - point->y, eye->z - point->z};
    Vec3Normalize(Coords(&ray));
    return Vec3Dot(Coords(&ray), Coords(normal));
}

uint32_t GlassAlpha(double facing, MATERIAL *material)
{
    if (material->glass == 0) return 255;
    const double scaled = std::fabs(facing) * glassEntries;
    const int32_t i = scaled < glassEntries ? TruncInt(scaled) : scaled >= glassEntries ? glassEntries - 1 : 0;
    if (!material->glassTable) {
        material->glassTable = static_cast<uint8_t *>(GlobalBlockAlloc(glassBlock));
        if (!material->glassTable) return GlassEntry(i); /* slower, but the same */
        for (int32_t k = 0; k < glassEntries; k++) material->glassTable[k] = GlassEntry(k);
    }
    return material->glassTable[i];
}

void GlassAlphaFree(MATERIAL *material)
{
    if (material->glassTable) GlobalBlockFree(material->glassTable);
    material->glassTable = nullptr;
}

void ABufShade(const double *normal, const double *lightDir, uint32_t *colour)
{
    if (lightDir) std::copy(lightDir, lightDir + 3, lightDirection);
    uint32_t alpha = *colour >> 24;
    if (alpha < 255) reflectance = reflectanceOfGlass;

    const double d = std::max(0.0, Dot3(lightDirection, normal));
    double e = MirrorDot(normal, lightDirection);
    if (!(e >= 0.01)) e = 0;
    const uint32_t highlight = Term(std::pow(e, reflectance.shininess) * reflectance.specular * 255);

    uint32_t lit = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const double channel = *colour >> shift & 0xFFu;
        const uint32_t base = Term(channel * reflectance.ambient);
        const uint32_t diffuse = Term(channel * reflectance.diffuse * d);
        lit |= std::min(base + diffuse + highlight, 255u) << shift;
    }
    /* Highlights stay visible on glass. */
    if (alpha < 255) alpha = std::min(alpha + highlight, 255u);
    *colour = lit | alpha << 24;
}

uint32_t SampleColour(SAMPLE *sample)
{
    if (!sample->lit) {
        MATERIAL *material = sample->material;
        /* Without glass the alpha starts at 0, deliberately, so that only the highlight shows in it. */
        const uint32_t alpha = material->glass == 0 ? 0 : GlassAlpha(sample->facing, material);
        sample->colour = (material->colour & 0xFFFFFFu) | alpha << 24;
        ABufShade(Coords(&sample->normal), material->light, &sample->colour);
        sample->lit = 1;
    }
    return sample->colour;
}

} // namespace zr32
