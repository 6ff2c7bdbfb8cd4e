/* surface.h - what the builders of surface maps share: the map under construction, its planes, progress and abort.
 *
 * ZrPathVMap (vmap.cpp) chooses one builder: the sweep of the outline against a mask with the mitre fill before it, the
 * exact distance without a mask, the closed forms of lone primitives, or the sweep of an envelope frame. A builder
 * writes through PLANES, asks MapProgress between its steps, and on a 0 gives the planes up by MapAbort.
 */
#ifndef ZR32_SURFACE_H
#define ZR32_SURFACE_H

#include "raster/raster.h"
#include <zr32path/surface.h>

namespace zr32 {

/* ---- the map under construction ---- */

struct SURFACEMAP {
    PATHBUF *distOut; /* the caller's handles, never null; a handle of 0: not asked for, or given up */
    PATHBUF *offsetOut;
    VMAPPROGRESS *progress; /* may be null */
    double zoom;            /* map pixels a path unit */
    int32_t originX;        /* where the map's first pixel lies, in zoomed pixels */
    int32_t originY;
};

/* The planes as they stand. Both have the size of the mask or of the shape's rectangle. */
struct PLANES {
    int32_t width; /* 0 without any plane */
    int32_t height;
    float *dist;        /* null when there is none */
    SURFVEC16 *vectors; /* the offset plane in either form, whichever the builder writes; null when there is none */
    SURFVECF *vectorsF;
};

PLANES MapPlanes(const SURFACEMAP *map);

inline int MapHasPlanes(const SURFACEMAP *map)
{
    return *map->distOut || *map->offsetOut;
}

constexpr float distOnOutline = 0.0001F;
constexpr float distFlatTop = 300.0F;

/* ---- progress ---- */

constexpr int32_t progressBegin = 1;
constexpr int32_t progressAdvance = 2; /* a result of 0 asks for the pass to stop */
constexpr int32_t progressEnd = 4;

/* Sub-codes of the report of an abort, errorCancelled. */
constexpr int32_t abortInPrimitive = 19;
constexpr int32_t abortInMitre = 20; /* with errorMemory: a plane that cannot be had */
constexpr int32_t abortInSweep = 21;

/* The callback's answer; 1 without a record or a callback. */
int32_t MapProgress(const SURFACEMAP *map, int32_t code, int32_t value);

/* The range of percentages of the passes to come; nothing for null. */
void VMapSetProgressRange(VMAPPROGRESS *progress, int32_t from, int32_t to);

/* Frees what planes there are and zeroes both handles. */
void MapDropPlanes(const SURFACEMAP *map);

/* The same, and reports errorCancelled. */
void MapAbort(const SURFACEMAP *map, int32_t subCode, int32_t index);

/* ---- what goes before a builder ---- */

/* Rows and columns of crossings of the join chain behind path, sorted, each entry with its node, and the origin and
 * size of the map. The row table is null when it cannot be had; the column table alone may be null too. */
struct SURFACEEDGES {
    EDGETABLE *rows;
    EDGETABLE *columns;
    int32_t originX;
    int32_t originY;
    int32_t width;
    int32_t height; /* also the number of rows in the row table */
};

void VMapBuildEdgeTables(PATHREC *path, FIXED zoom, SURFACEEDGES *edges);
void SurfaceEdgesFree(SURFACEEDGES *edges);

/* Gives each crossing of the rows its role: spanFlag 1 where the shape is entered, 0 where it is left; crossings inside
 * the shape lose their node. 0 without a table or rows, else 1. */
int VMapClassifyCrossings(int32_t evenOdd, EDGETABLE *rows);

/* Complements every byte of an 8-bit buffer. 0 for a null handle, else 1. */
int VMapInvertMask(PATHBUF mask);

/* ---- builders ----
 * Each gives 1, or 0 when it is refused or aborted; it is refused without a path, with a width of 0 or without a
 * plane. */

/* Sweeps the outlines of the table chain, its tail record left out, towards the side where the mask is not 0. */
int VMapEdgeSweep(PATHREC *path, double width, int32_t outset, const SURFACEMAP *map, PATHBUF mask);

/* Fills the wedges that the rays of the edge sweep leave at corners; runs before it, over the same records. */
int VMapMitreFill(PATHREC *path, double width, const SURFACEMAP *map, PATHBUF mask);

/* The map of an envelope frame. *width becomes the band's half width. */
int VMapEnvelope(PATHREC *frame, double *width, const SURFACEMAP *map, FIXED zoom);

/* The true distance of each pixel to the outline behind the edge tables, which have been classified. Aborted, or
 * stopped by Esc, it drops the planes without a report and still gives 1. */
int VMapExactDistance(SURFACEEDGES *edges, double width, const SURFACEMAP *map, int32_t noMitre, int32_t floatVectors);

/* The height field of a lone primitive. *width is the height; 0 lets the shape's size decide and gets the result. */
int VMapPrimitive(PATHREC *path, double *width, const SURFACEMAP *map);

} // namespace zr32

#endif
