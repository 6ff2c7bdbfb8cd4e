/* lightnormal.cpp - aims a light along the surface normal at a picked pixel, by the exact arc formulas. */
#include "shade/lights.h"
#include "shade/normal.h"
#include "shade/planes.h"

#include <zr32path/shade.h>

namespace zr32 {

extern "C" {

ZRPATHAPI int32_t ZrpathChangeLightNormal(double width, int32_t profile, int32_t invert, int32_t scale,
                                          const int32_t *column, int32_t floatNormals, const void *normalRow,
                                          int32_t reflect, int32_t lightIndex, double *result)
{
    if (!column || !normalRow || !result) return 1;
    const OFFSETPAIR offset =
        OffsetRead(static_cast<const uint8_t *>(normalRow) + ptrdiff_t{*column} * 8, floatNormals);
    /* An index without a light changes none; the normal is worked out all the same. */
    double spare[3] = {0, 0, 1};
    double *light = lightIndex >= 0 && lightIndex < maxLights ? SHADELIGHTS.lightDir[lightIndex] : spare;
    ProfileNormalExact(SurfaceForm(width, profile, invert, scale, reflect), offset.x1, offset.y1, light);
    memcpy(result, light, 3 * sizeof *result);
    return 1;
}

} // extern "C"

} // namespace zr32
