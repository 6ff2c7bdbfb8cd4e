/* shader.h - the per-pixel procedure of the four shaders, with the lighting model as its parameter.
 *
 * Order of calls: an export fills SHADEJOB and calls ShadeImage. The image and the mask are rewritten in place.
 */
#ifndef ZR32_SHADER_H
#define ZR32_SHADER_H

#include "raster/raster.h"
#include "shade/lights.h"
#include "shade/normal.h"

namespace zr32 {

/* The lighting models: two materials, each with one light or with several. */
enum MODEL { PHONG, METALLIC, MULTI_PHONG, MULTI_METALLIC };

constexpr int IsMetal(MODEL model)
{
    return model == METALLIC || model == MULTI_METALLIC;
}

constexpr int IsMulti(MODEL model)
{
    return model == MULTI_PHONG || model == MULTI_METALLIC;
}

struct SHADEJOB {
    PATHBUF image;
    PATHBUF distanceMap;
    PATHBUF normalMap;
    PATHBUF mask;
    PATHBUF flatMask; /* may be null, as the two below */
    PATHBUF bumpMap;
    PATHBUF tintMap;
    SURFACEFORM form;
    int32_t floatNormals;
    int32_t lightCount;        /* 1 for the single models */
    int32_t spotOn[maxLights]; /* not 0: a spot at a place in percent of the image's size */
    int32_t spotX[maxLights];
    int32_t spotY[maxLights];
    double direction[maxLights][3];
    int32_t fixedAmbient;
    int32_t specularToAlpha;
    int32_t bumpPercent;
    uint32_t tint; /* metals: colour word of the highlight */
};

/* 1; 0, with nothing changed, when image, distanceMap, normalMap or mask is null. */
int ShadeImage(MODEL model, const SHADEJOB *job);

} // namespace zr32

#endif
