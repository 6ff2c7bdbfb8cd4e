/* vmap.cpp - ZrPathVMap: which builder makes a surface map, and what goes before and after it.
 *
 * Comes in: a shape, with or without a mask. Goes out: distance plane and offset plane, whichever the caller asks for.
 * The planes lie in the caller's handles from the start, so that a builder which is stopped can take them back.
 */
#include "surface/surface.h"

namespace zr32 {

namespace {

/* What the caller wants to be built. */
struct VMAPORDER {
    PATHREC *path;
    PATHBUF mask; /* null when the map is made without one */
    double *width;
    FIXED zoom;
    int32_t evenOdd;
    int32_t fixedHeight;
    int32_t envelopeMode;
    int32_t outset;
    int32_t noMitre;
    int32_t floatVectors;
    int32_t useMask;
};

constexpr double primitiveHeight = 30.0;

int32_t Magnitude(int32_t value)
{
    return value < 0 ? WrapSub(0, value) : value;
}

/* Mitre fill and edge sweep on the side of the outline where the mask is not 0, each with its share of the progress. */
int32_t SweepSide(const VMAPORDER *order, int32_t outset, const SURFACEMAP *map, int32_t from, int32_t sweepFrom,
                  int32_t to)
{
    VMapSetProgressRange(map->progress, from, sweepFrom);
    VMapMitreFill(order->path, *order->width, map, order->mask);
    VMapSetProgressRange(map->progress, sweepFrom, to);
    return VMapEdgeSweep(order->path, *order->width, outset, map, order->mask);
}

/* Outside the outline the same passes run over the inverted mask. */
int32_t SweepOutside(const VMAPORDER *order, int32_t outset, const SURFACEMAP *map, int32_t from, int32_t sweepFrom,
                     int32_t to)
{
    VMapInvertMask(order->mask);
    const int32_t result = SweepSide(order, outset, map, from, sweepFrom, to);
    VMapInvertMask(order->mask);
    return result;
}

int32_t SweepSides(const VMAPORDER *order, const SURFACEMAP *map)
{
    const int32_t outset = order->outset;
    if (outset == 0) return SweepSide(order, 0, map, 0, 20, 100);
    if (outset > 0) return SweepOutside(order, outset, map, 0, 20, 100);
    SweepSide(order, 0, map, 0, 10, 50);
    return SweepOutside(order, Magnitude(outset), map, 50, 60, 100);
}

PATHREC *FindFrame(PATHREC *path)
{
    while (path && path->flags != PATHREC_ENVELOPE) path = path->nextPath;
    return path;
}

/* The first builder that applies, from the top. */
int32_t BuildMap(const VMAPORDER *order, SURFACEEDGES *edges, const SURFACEMAP *map)
{
    if (order->envelopeMode) {
        PATHREC *const frame = FindFrame(order->path);
        return frame ? VMapEnvelope(frame, order->width, map, order->zoom) : 1;
    }
    if (!order->useMask) VMapClassifyCrossings(order->evenOdd, edges->rows);
    if (*order->width == 0) return 1;
    if (order->outset == 0 && IsOnlyPrimitive(order->path)) {
        *order->width = order->fixedHeight ? primitiveHeight : 0.0;
        VMapSetProgressRange(map->progress, 0, 100);
        return VMapPrimitive(order->path, order->width, map);
    }
    if (order->outset == 0 && !order->useMask) {
        /* What becomes of it is not asked: a map that was stopped counts as made, with its planes gone. */
        VMapExactDistance(edges, *order->width, map, order->noMitre, order->floatVectors);
        return 1;
    }
    return SweepSides(order, map);
}

/* Replaces each handle that is not 0 by a plane. Where one cannot be had the distance plane's handle is 0 in any case,
 * the offset plane's only when it was its turn. */
int32_t PlanesAlloc(const SURFACEMAP *map, int32_t width, int32_t height)
{
    constexpr int32_t distBits = 32;
    constexpr int32_t offsetBits = 0x40;
    int32_t complete = 1;
    if (*map->distOut) {
        *map->distOut = ZrPathBufAlloc(distBits, width, height);
        complete = *map->distOut != nullptr;
    }
    if (complete && *map->offsetOut) {
        *map->offsetOut = ZrPathBufAlloc(offsetBits, width, height);
        complete = *map->offsetOut != nullptr;
        if (!complete) MapDropPlanes(map);
    }
    if (!complete) ReportError(errorMemory, abortInMitre, 0);
    return complete;
}

/* Where the map lies: on the mask, which begins outset pixels outside of the shape's rectangle, or on the rectangle. */
void PlaceMap(const VMAPORDER *order, const SURFACEEDGES *edges, SURFACEMAP *map, int32_t *width, int32_t *height)
{
    if (!order->useMask) {
        *width = edges->width;
        *height = edges->height;
        map->originX = edges->originX;
        map->originY = edges->originY;
        return;
    }
    const BUFINFO info = BufInfo(order->mask);
    const int32_t margin = Magnitude(order->outset);
    RECT rect = {};
    ZrPathGetMiniMaxRect(order->path, order->zoom, &rect);
    *width = info.width;
    *height = info.height;
    map->originX = WrapSub(static_cast<int32_t>(rect.left), margin);
    map->originY = WrapSub(static_cast<int32_t>(rect.top), margin);
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathVMap(PATHREC *path, PATHBUF *distOut, PATHBUF *offsetOut, int32_t evenOdd, int32_t fixedHeight,
                             int32_t envelopeMode, int32_t outset, int32_t noMitre, double *width, int32_t floatVectors,
                             int32_t useMask, PATHBUF mask, VMAPPROGRESS *progress, ZRFIXED zoom)
{
    PATHBUF noPlane[2] = {nullptr, nullptr};
    SURFACEMAP map = {
        distOut ? distOut : noPlane, offsetOut ? offsetOut : noPlane + 1, progress, FixToDouble(zoom), 0, 0};
    if (!path || !width || (useMask && !mask)) {
        *map.distOut = *map.offsetOut = nullptr;
        return 0;
    }
    const VMAPORDER order = {path,         useMask ? mask : nullptr,
                             width,        zoom,
                             evenOdd,      fixedHeight,
                             envelopeMode, outset,
                             noMitre,      floatVectors,
                             useMask};
    SURFACEEDGES edges = {};
    if (!useMask) {
        VMapBuildEdgeTables(path, zoom, &edges);
        if (!edges.rows) return 0;
    }
    int32_t mapWidth;
    int32_t mapHeight;
    PlaceMap(&order, &edges, &map, &mapWidth, &mapHeight);
    int32_t result = PlanesAlloc(&map, mapWidth, mapHeight);
    if (result) {
        MapProgress(&map, progressBegin, 0);
        result = BuildMap(&order, &edges, &map);
    }
    MapProgress(&map, progressEnd, 100);
    SurfaceEdgesFree(&edges);
    return result;
}

} // extern "C"

} // namespace zr32
