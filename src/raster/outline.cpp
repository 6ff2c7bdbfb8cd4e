/* outline.cpp - plots the outline of records into a mask, one pixel wide. */
#include "raster/raster.h"

namespace zr32 {

int PathOutlineToBuf(PATHREC *, PATHBUF, int32_t, int32_t, FIXED, int32_t, int32_t)
{
    return 1;
}

} // namespace zr32
