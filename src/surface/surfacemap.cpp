/* surfacemap.cpp - the planes of a map under construction, progress and abort.
 *
 * The planes belong to the caller from the start: a builder reaches them through the caller's two handles, and an abort
 * frees them there and leaves 0.
 */
#include "surface/surface.h"

#include <initializer_list>

namespace zr32 {

PLANES MapPlanes(const SURFACEMAP *map)
{
    PLANES planes = {};
    uint8_t *const dist = *map->distOut;
    uint8_t *const vectors = *map->offsetOut;
    const BUFINFO info = BufInfo(dist ? dist : vectors);
    planes.width = info.width;
    planes.height = info.height;
    planes.dist = static_cast<float *>(static_cast<void *>(dist));
    planes.vectors = static_cast<SURFVEC16 *>(static_cast<void *>(vectors));
    planes.vectorsF = static_cast<SURFVECF *>(static_cast<void *>(vectors));
    return planes;
}

int32_t MapProgress(const SURFACEMAP *map, int32_t code, int32_t value)
{
    const VMAPPROGRESS *const progress = map->progress;
    return progress && progress->callback ? progress->callback(code, value, 0, progress->user) : 1;
}

void VMapSetProgressRange(VMAPPROGRESS *progress, int32_t from, int32_t to)
{
    if (!progress) return;
    progress->rangeFrom = from;
    progress->rangeTo = to;
}

void MapDropPlanes(const SURFACEMAP *map)
{
    for (PATHBUF *const plane : {map->distOut, map->offsetOut}) {
        ZrPathBufFree(*plane);
        *plane = nullptr;
    }
}

void MapAbort(const SURFACEMAP *map, int32_t subCode, int32_t index)
{
    MapDropPlanes(map);
    ReportError(errorCancelled, subCode, index);
}

int VMapInvertMask(PATHBUF mask)
{
    if (!mask) return 0;
    const BUFINFO info = BufInfo(mask);
    const size_t bytes = info.stride * static_cast<size_t>(info.height);
    for (size_t i = 0; i < bytes; i++) mask[i] = static_cast<uint8_t>(~mask[i]);
    return 1;
}

} // namespace zr32
