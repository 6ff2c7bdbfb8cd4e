/* diamond.h - rows of the pyramid over a diamond, and how a pixel of a height field is written. */
#ifndef ZR32_DIAMOND_H
#define ZR32_DIAMOND_H

#include "geometry/box.h"
#include "surface/surface.h"

namespace zr32 {

/* Writes a value of the distance plane and a vector where the plane has that pixel and was asked for. */
inline void PlanePut(const PLANES *planes, int32_t x, int32_t y, double value, const POINTDB &vector)
{
    if (x < 0 || x >= planes->width) return;
    const size_t index = static_cast<size_t>(y) * static_cast<size_t>(planes->width) + static_cast<size_t>(x);
    if (planes->dist) planes->dist[index] = static_cast<float>(value);
    if (planes->vectorsF) planes->vectorsF[index] = {static_cast<float>(vector.x), static_cast<float>(vector.y)};
}

/* One row of the pyramid of height h over the diamond in box; y is a row of the planes. */
void VMapDiamondRow(double h, const BOXDB *box, int32_t y, const PLANES *planes);

} // namespace zr32

#endif
