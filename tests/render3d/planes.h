/* planes.h - fragment planes and samples for tests. */
#ifndef ZR32_TESTS_PLANES_H
#define ZR32_TESTS_PLANES_H

#include "render3d/fragments.h"

#include <vector>

namespace zr32test {

/* An empty plane; free it with PlaneFree. */
inline zr32::ABUF MakePlane(int32_t width, int32_t height)
{
    zr32::SurfaceHeapInit();
    zr32::ABUF abuf = {};
    abuf.plane = ZrPathBufAlloc(zr32::planeBits, width, height);
    abuf.info = zr32::BufInfo(abuf.plane);
    return abuf;
}

inline void PlaneFree(zr32::ABUF *abuf)
{
    zr32::FragPoolFree(&abuf->pool);
    ZrPathBufFree(abuf->plane);
    abuf->plane = nullptr;
}

/* A sample that is lit already. */
inline zr32::SAMPLE Lit(uint32_t colour, double z, double facing = 1, zr32::POINTDB at = {0.5, 0.5})
{
    zr32::SAMPLE sample = {};
    sample.at = at;
    sample.z = z;
    sample.facing = facing;
    sample.colour = colour;
    sample.lit = 1;
    return sample;
}

/* The fragments of a pixel's list in order; none for a pixel that is no list. */
inline std::vector<zr32::ABUFFRAG> ListOf(const zr32::ABUF *abuf, int32_t x, int32_t y)
{
    std::vector<zr32::ABUFFRAG> list;
    const zr32::ABUFPIXEL *pixel = zr32::PlanePixel(abuf, x, y);
    if (pixel->zTag != zr32::zTagList) return list;
    for (uint32_t n = pixel->value; n; n = list.back().next) list.push_back(*zr32::FragAt(&abuf->pool, n));
    return list;
}

} // namespace zr32test

#endif
