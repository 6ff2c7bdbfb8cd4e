/* lightsum.h - the light on one normal, by lighting model: the only part of shading that knows the models.
 *
 * Goes in: a normal and the lights of the call. Comes out: LIT, a factor for the pixel's colour and a highlight to add.
 * Two materials, each with one light or with several; the deliberate differences between the four stand here by name.
 * What a highlight below one level would add is not worked out, and a spot's falloff only where some light needs it.
 *
 * Reflectance: B. T. Phong, Illumination for Computer Generated Pictures, 1975, with the viewer on the z axis.
 */
#ifndef ZR32_LIGHTSUM_H
#define ZR32_LIGHTSUM_H

#include "frame/frame.h"
#include "geometry/vector.h"
#include "shade/lights.h"
#include "shade/shader.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

/* What one normal gets of all lights. */
struct LIT {
    double diffuse;  /* factor of the pixel's colour */
    double spec[3];  /* highlight to add, by channel */
    double strength; /* of the highlight, for the mask */
};

/* The lights of one call. */
struct LIGHTCALL {
    const LIGHTFACTORS *factors;
    int32_t count;
    int32_t spotOn[maxLights];
    double spotX[maxLights]; /* percent of the image's size */
    double spotY[maxLights];
    double spotHeight[maxLights];
    double spotPower;
    double quietBelow[maxLights]; /* below this S a highlight changes no byte by itself */
    double fresnelFloor;
    double imageWidth;
    double imageHeight;
    /* of the pixel at hand */
    double col;
    double row;
    double spotFactor[maxLights]; /* where spotKnown has the light's bit */
    uint32_t spotKnown;
};

/* What makes a normal be lit, where that matters. */
enum LIGHTPLACE {
    PLACE_PLAIN,      /* its colours are cut to whole levels at once */
    PLACE_SEAM,       /* mixed with another before they are cut */
    PLACE_SEAM_SECOND /* the second of a seam in the first pass */
};

/* ---- spots ---- */

/* How high a spot hangs over the image: a cone with one light, a sphere with several. Highest over the middle. */
template <MODEL model> double SpotHeight(int32_t x, int32_t y)
{
    const double dx = x - 50.0;
    const double dy = y - 50.0;
    const double d = (dy * dy + dx * dx) * 2;
    if (IsMulti(model)) return d < 5000.0 ? std::sqrt(5000.0 - d) : 0.0;
    return std::max(70.71 - std::sqrt(d), 0.0);
}

inline double SpotFactorAt(const LIGHTCALL &call, int i)
{
    double v[3] = {call.col / call.imageWidth * 100.0 - call.spotX[i],
                   call.row / call.imageHeight * 100.0 - call.spotY[i], -call.spotHeight[i]};
    Vec3Normalize(v);
    const double c = -Dot3(SHADELIGHTS.lightDir[i], v);
    return c >= 0 ? std::pow(c, call.spotPower) : 0.0; /* 0 also where c is not a number */
}

/* value times the spot's falloff at the pixel, for a light that is a spot. */
inline double SpotTimes(LIGHTCALL *call, int i, double value)
{
    if (!call->spotOn[i]) return value;
    if (!(call->spotKnown >> i & 1u)) {
        call->spotFactor[i] = SpotFactorAt(*call, i);
        call->spotKnown |= 1u << i;
    }
    return value * call->spotFactor[i];
}

/* ---- terms of one light ---- */

/* D is the light's share on the normal. */
template <MODEL model> void AddDiffuse(LIGHTCALL *call, int i, double D, LIT *lit)
{
    const double factor = call->factors->diffuse[i];
    if (IsMulti(model)) {
        if (D > 0.0) lit->diffuse += SpotTimes(call, i, factor * D);
    } else if (!(D < 0)) {
        lit->diffuse = model == METALLIC ? SpotTimes(call, i, factor) * D : SpotTimes(call, i, D * factor);
    }
}

inline void AddPhongHighlight(LIGHTCALL *call, int i, double S, LIT *lit)
{
    const double s = SpotTimes(call, i, std::pow(S, call->factors->shininess[i]) * call->factors->specular[i]);
    for (int c = 0; c < 3; c++) lit->spec[c] += SHADELIGHTS.lightColor[i][c] * s;
    lit->strength += s;
}

/* The metal's tint at the core of the highlight, towards white at its skirts. p stands in for the cosine of the table,
 * though it is a cosine raised to a power; results depend on it. */
template <MODEL model> void AddMetalHighlight(LIGHTCALL *call, int i, double S, LIGHTPLACE place, LIT *lit)
{
    const double p = std::pow(S, call->factors->shininess[i]);
    const double F = (FresnelAt(TruncInt(p * 1000.0)) - call->fresnelFloor) / (1.0 - call->fresnelFloor);
    /* A spot on the second normal of a seam takes the diffuse factor, deliberately. */
    const int takesDiffuse = model == MULTI_METALLIC && place == PLACE_SEAM_SECOND && call->spotOn[i];
    const double s = takesDiffuse ? SpotTimes(call, i, call->factors->diffuse[i]) * p
                                  : SpotTimes(call, i, call->factors->specular[i] * p);
    for (int c = 0; c < 3; c++) {
        const double own = METALLIGHTS.specularTint[c];
        lit->spec[c] += s * (F < 0.0 ? own : (255 - own) * F + own);
    }
    lit->strength += s;
}

/* S is the light's share on the mirrored view vector. */
template <MODEL model> void AddHighlight(LIGHTCALL *call, int i, double S, LIGHTPLACE place, LIT *lit)
{
    if (IsMetal(model))
        AddMetalHighlight<model>(call, i, S, place, lit);
    else
        AddPhongHighlight(call, i, S, lit);
}

/* 1 when the model gives a highlight for S: inclusive with one light, strict with several. */
template <MODEL model> int ShowsHighlight(double S)
{
    const double least = IsMetal(model) ? 0.0 : 0.01;
    return IsMulti(model) ? S > least : !(S < least);
}

/* S below which the highlights of all lights together add less than one level to any channel and to the mask. A spot
 * makes a light weaker, but for a direction that is longer than it should be. */
inline double QuietBelow(const LIGHTCALL &call, int i)
{
    const double *direction = SHADELIGHTS.lightDir[i];
    const double length = std::max(std::sqrt(Dot3(direction, direction)), 1.0) * 1.000001;
    const double spot = call.spotOn[i] ? std::pow(length, call.spotPower) : 1.0;
    const double strongest = call.factors->specular[i] * 255.0 * call.count * spot;
    const double exponent = call.factors->shininess[i];
    if (!(strongest >= 0) || !(exponent >= 1.0)) return 0.0;
    if (strongest < 0.999) return 1.0;
    return std::pow(0.999 / strongest, 1.0 / exponent) * 0.999999;
}

/* ---- all lights ---- */

template <MODEL model> int LightCount(const LIGHTCALL &call)
{
    return IsMulti(model) ? call.count : 1;
}

/* The light on one normal. */
template <MODEL model> void LightSum(LIGHTCALL *call, const double *normal, LIGHTPLACE place, LIT *lit)
{
    *lit = {};
    double S[maxLights];
    int loud = 0;
    const int count = LightCount<model>(*call);
    for (int i = 0; i < count; i++) {
        const double *direction = SHADELIGHTS.lightDir[i];
        AddDiffuse<model>(call, i, Dot3(normal, direction), lit);
        S[i] = MirrorDot(normal, direction);
        loud |= !(S[i] < call->quietBelow[i]);
    }
    if (!loud && place == PLACE_PLAIN) return;
    for (int i = 0; i < count; i++)
        if (ShowsHighlight<model>(S[i])) AddHighlight<model>(call, i, S[i], place, lit);
}

/* The light on the level surface, by the bump's normal or, with null, by the z of an earlier one: without bump the
 * mirrored view comes from whichever offset was the last, deliberately. With one light an S below the least counts as 0
 * and adds nothing. */
template <MODEL model> void LevelLight(LIGHTCALL *call, const double *bumped, double z, LIT *lit)
{
    *lit = {};
    for (int i = 0; i < LightCount<model>(*call); i++) {
        const double *direction = SHADELIGHTS.lightDir[i];
        const double D = bumped ? Dot3(bumped, direction) : direction[2];
        const double S = bumped ? MirrorDot(bumped, direction) : (2 * z * z - 1) * direction[2];
        AddDiffuse<model>(call, i, D, lit);
        if (ShowsHighlight<model>(S)) AddHighlight<model>(call, i, S, PLACE_PLAIN, lit);
    }
}

/* The mask raised by a highlight: with one light the highlight is cut to whole levels before it is added, with several
 * behind. */
template <MODEL model> uint8_t AlphaRaised(double strength, int mask)
{
    if (IsMulti(model)) return TruncByte(std::min(strength * 255.0 + mask, 255.0));
    return static_cast<uint8_t>(std::min<int64_t>(int64_t{TruncInt(strength * 255.0)} + mask, 255));
}

/* The part of a seam's highlight that is mixed: with several lights it is cut to whole levels first. */
template <MODEL model> double SeamHighlight(double spec)
{
    return IsMulti(model) ? TruncInt(spec) : spec;
}

/* Directions into the light state, where they stay; spots, and the metal's tint and table. */
template <MODEL model> void LightsStart(const SHADEJOB *job, int32_t imageWidth, int32_t imageHeight, LIGHTCALL *call)
{
    const LIGHTFACTORS *factors = IsMetal(model) ? &METALLIGHTS.factors : &SHADELIGHTS.factors;
    call->factors = factors;
    call->count = job->lightCount;
    call->spotPower = IsMulti(model) ? factors->multiSpotPower : factors->spotPower;
    call->imageWidth = imageWidth;
    call->imageHeight = imageHeight;
    call->spotKnown = 0;
    for (int i = 0; i < job->lightCount; i++) {
        std::copy(job->direction[i], job->direction[i] + 3, SHADELIGHTS.lightDir[i]);
        call->spotOn[i] = job->spotOn[i];
        call->spotX[i] = job->spotX[i];
        call->spotY[i] = job->spotY[i];
        call->spotHeight[i] = SpotHeight<model>(job->spotX[i], job->spotY[i]);
        call->quietBelow[i] = QuietBelow(*call, i);
    }
    if (IsMetal(model)) {
        for (int c = 0; c < 3; c++) METALLIGHTS.specularTint[c] = static_cast<uint8_t>(job->tint >> (8 * c));
        FresnelTableInit();
        call->fresnelFloor = FresnelAt(999);
    }
}

} // namespace zr32

#endif
