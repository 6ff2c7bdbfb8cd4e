/* shaders.cpp - the four exported shaders: arguments into a job, and what each does to the light state around it. */
#include "shade/shader.h"

#include <zr32path/shade.h>

#include <algorithm>
#include <cstring>

namespace zr32 {

namespace {

SHADEJOB Job(PATHBUF image, PATHBUF distanceMap, PATHBUF normalMap, PATHBUF mask, PATHBUF flatMask,
             const SURFACEFORM &form, int32_t floatNormals, int32_t specularToAlpha, int32_t bumpPercent,
             PATHBUF bumpMap)
{
    SHADEJOB job = {};
    job.image = image;
    job.distanceMap = distanceMap;
    job.normalMap = normalMap;
    job.mask = mask;
    job.flatMask = flatMask;
    job.bumpMap = bumpMap;
    job.form = form;
    job.floatNormals = floatNormals;
    job.specularToAlpha = specularToAlpha;
    job.bumpPercent = bumpPercent;
    return job;
}

void OneLight(SHADEJOB *job, int32_t spot, int32_t spotX, int32_t spotY, double x, double y, double z)
{
    job->lightCount = 1;
    job->spotOn[0] = spot;
    job->spotX[0] = spotX;
    job->spotY[0] = spotY;
    job->direction[0][0] = x;
    job->direction[0][1] = y;
    job->direction[0][2] = z;
}

/* More than four lights count as four, fewer than none or absent arrays as none. */
void ManyLights(SHADEJOB *job, int32_t lightCount, const int32_t *spotOn, const int32_t *spotPos, const double *lights)
{
    job->lightCount = lights ? std::clamp(lightCount, 0, maxLights) : 0;
    for (int i = 0; i < job->lightCount; i++) {
        job->spotOn[i] = spotOn && spotPos ? spotOn[i] : 0;
        job->spotX[i] = job->spotOn[i] ? spotPos[2 * i] : 0;
        job->spotY[i] = job->spotOn[i] ? spotPos[2 * i + 1] : 0;
        memcpy(job->direction[i], lights + static_cast<size_t>(3 * i), sizeof job->direction[i]);
    }
}

/* Highlights that raise the mask are four times as strong, in colour too, for the length of the call. The end takes the
 * factor back from the given number of lights, which may be more than had it, deliberately. */
int ShadeStrong(MODEL model, const SHADEJOB *job, int32_t lightsRestored)
{
    if (!job->specularToAlpha || !job->normalMap || !job->image || !job->distanceMap || !job->mask)
        return ShadeImage(model, job);
    double *specular = SHADELIGHTS.factors.specular;
    for (int i = 0; i < job->lightCount; i++) specular[i] *= 4.0;
    const int result = ShadeImage(model, job);
    for (int i = 0; i < lightsRestored; i++) specular[i] *= 0.25;
    return result;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathShadePhong(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                   int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                   PATHBUF mask, PATHBUF flatMask, int32_t spot, int32_t spotX, int32_t spotY,
                                   double lightX, double lightY, double lightZ, int32_t fixedAmbient,
                                   int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap)
{
    SHADEJOB job =
        Job(image, distanceMap, normalMap, mask, flatMask, SurfaceForm(width, profile, invert, scale, reflect),
            floatNormals, specularToAlpha, bumpPercent, bumpMap);
    OneLight(&job, spot, spotX, spotY, lightX, lightY, lightZ);
    job.fixedAmbient = fixedAmbient;
    return ShadeStrong(PHONG, &job, 1);
}

ZRPATHAPI int32_t ZrPathShadeMetallic(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                      int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                      PATHBUF mask, PATHBUF flatMask, int32_t spot, int32_t spotX, int32_t spotY,
                                      double lightX, double lightY, double lightZ, uint32_t tint, PATHBUF tintMap,
                                      int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap)
{
    SHADEJOB job =
        Job(image, distanceMap, normalMap, mask, flatMask, SurfaceForm(width, profile, invert, scale, reflect),
            floatNormals, specularToAlpha, bumpPercent, bumpMap);
    OneLight(&job, spot, spotX, spotY, lightX, lightY, lightZ);
    job.tint = tint;
    job.tintMap = tintMap;
    return ShadeImage(METALLIC, &job);
}

ZRPATHAPI int32_t ZrPathShadeMultiPhong(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                        int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                        PATHBUF mask, PATHBUF flatMask, int32_t lightCount, const int32_t *spotOn,
                                        const int32_t *spotPos, const double *lights, int32_t fixedAmbient,
                                        int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap)
{
    SHADEJOB job =
        Job(image, distanceMap, normalMap, mask, flatMask, SurfaceForm(width, profile, invert, scale, reflect),
            floatNormals, specularToAlpha, bumpPercent, bumpMap);
    ManyLights(&job, lightCount, spotOn, spotPos, lights);
    job.fixedAmbient = fixedAmbient;
    return ShadeStrong(MULTI_PHONG, &job, maxLights);
}

ZRPATHAPI int32_t ZrPathShadeMultiMetallic(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                           int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap,
                                           int32_t reflect, PATHBUF mask, PATHBUF flatMask, int32_t lightCount,
                                           const int32_t *spotOn, const int32_t *spotPos, const double *lights,
                                           uint32_t tint, PATHBUF tintMap, int32_t specularToAlpha, int32_t bumpPercent,
                                           PATHBUF bumpMap)
{
    if (reflect == 1 && !flatMask) return 0; /* the other shaders accept it */
    SHADEJOB job =
        Job(image, distanceMap, normalMap, mask, flatMask, SurfaceForm(width, profile, invert, scale, reflect),
            floatNormals, specularToAlpha, bumpPercent, bumpMap);
    ManyLights(&job, lightCount, spotOn, spotPos, lights);
    job.tint = tint;
    job.tintMap = tintMap;
    return ShadeImage(MULTI_METALLIC, &job);
}

} // extern "C"

} // namespace zr32
