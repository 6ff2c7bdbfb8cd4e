/* raster.h - what the other rooms use of the rasteriser: access to raster buffers, edge tables, masks of one chain.
 *
 * A raster buffer is handed about as the address of its first pixel; the header words are read here and nowhere else.
 * An edge table holds, row by row, where the edges of some records cross that row: the scan converter and the exact
 * surface are built on it.
 */
#ifndef ZR32_RASTER_H
#define ZR32_RASTER_H

#include "store/store.h"
#include <zr32path/raster.h>

namespace zr32 {

/* ---- raster buffers ---- */

/* Bytes in front of the first pixel: three 32-bit words. */
constexpr size_t bufHeaderSize = 12;

/* Bytes a pixel of a depth code. */
constexpr size_t BufPixelSize(int32_t bits)
{
    return bits == 8 ? 1 : bits == 24 ? 3 : bits == 32 ? 4 : 8;
}

/* The header of a buffer, and the stride that follows from it. All 0 for a null handle and for the reserved one. */
struct BUFINFO {
    int32_t width;
    int32_t height;
    int32_t bits;
    size_t pixelSize;
    size_t stride; /* bytes a row */
};

BUFINFO BufInfo(const uint8_t *buf);

/* Address of the first pixel of row y, unchecked. */
inline uint8_t *BufRow(uint8_t *buf, const BUFINFO &info, int32_t y)
{
    return buf + info.stride * static_cast<size_t>(y);
}

inline const uint8_t *BufRow(const uint8_t *buf, const BUFINFO &info, int32_t y)
{
    return buf + info.stride * static_cast<size_t>(y);
}

/* 1 when the pixel exists; negative indices count as too large. */
inline int BufHasPixel(const BUFINFO &info, int32_t x, int32_t y)
{
    return static_cast<uint32_t>(x) < static_cast<uint32_t>(info.width) &&
           static_cast<uint32_t>(y) < static_cast<uint32_t>(info.height);
}

/* A zeroed buffer as large as the rectangle: 32 bits for the mask depth 4, else 8. */
PATHBUF PathBufForRect(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t depth);

/* The compound shape behind this one in the selection: what follows the tail of the join chain. */
PATHREC *PathNextGroup(PATHREC *path);

/* ---- edge tables ----
 * A crossing is where an edge meets a row, with the edge's direction as its sign: positive towards larger y. Masks keep
 * bare crossings; the tables that other rooms ask for here know the node of each. */

enum EDGEMODE {
    EDGES_PLAIN,  /* bare crossings, for masks */
    EDGES_ROWS,   /* with nodes */
    EDGES_COLUMNS /* with nodes, x and y of every point exchanged: the table's rows are pixel columns */
};

struct EDGEENTRY {
    double crossing;
    PATHNODE *node;   /* the node at which the edge's segment is stored */
    int32_t spanFlag; /* 0 from the table; for its user */
};

struct EDGETABLE;

/* The crossings of every record of the join chain that begins with path with the pixel rows (or columns) 0 to
 * rowCount - 1, one sample row each; the origin lies at (left, top) in zoomed pixels. x lies at v x zoom - left,
 * without the half pixel that y has: that is how rows of one sample are placed. Rows are sorted by magnitude, equal
 * crossings stay in the order of the walk. 1; 0, with *table null, without memory. */
int EdgeTableOfChain(EDGEMODE mode, PATHREC *path, double zoom, int32_t left, int32_t top, int32_t rowCount,
                     EDGETABLE **table);

uint32_t EdgeTableRows(const EDGETABLE *table);

/* The entries of a row and an empty one behind the last; null and a count of 0 for a row that does not exist. */
EDGEENTRY *EdgeTableRow(EDGETABLE *table, uint32_t row, uint32_t *count);

/* 1; 0 for null. */
int EdgeTableFree(EDGETABLE *table);

/* ---- masks ---- */

/* Fills the join chain that begins with path into a buffer of 8 or 32 bits whose first pixel lies at (left, top) in
 * zoomed pixels. aaMode 0: hard edge, 999: 4 sample rows a pixel, other: 16; 32 bits always have 4. skip not 0: nothing
 * is done. Always 1. */
int PathBandFill(PATHREC *path, PATHBUF buf, int32_t evenOdd, int32_t aaMode, int32_t skip, FIXED zoom, int32_t left,
                 int32_t top);

/* The scope of ZrPathToBuf that takes in the table chain instead of the join chain. */
constexpr int32_t scopeTableChain = 3;

/* Plots the outline of the join chain (scope 3: of the table chain behind path), one pixel wide: with aaMode 0 hard,
 * else smooth. 1; 0 when memory is short, nothing is then plotted. */
int PathOutlineToBuf(PATHREC *path, PATHBUF buf, int32_t aaMode, int32_t scope, FIXED zoom, int32_t left, int32_t top);

} // namespace zr32

#endif
