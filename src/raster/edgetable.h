/* edgetable.h - inside of the edge tables: rows laid out one behind the other in one block, filled by the walker.
 *
 * A cubic crosses a row no more often than its control polygon does. So the control polygons tell how much room each
 * row needs before an edge is walked, every crossing goes to its final row at once, and nothing is allocated a row.
 * Rounding may break the rule by a crossing or two: rows have places to spare, and a table in which even these do not
 * do is filled once more with more of them.
 */
#ifndef ZR32_EDGETABLE_H
#define ZR32_EDGETABLE_H

#include "raster/raster.h"

namespace zr32 {

/* Height of a band of a mask, in pixel rows: an edge reaches only the rows of the bands in which its ends lie. */
constexpr int32_t maskBandHeight = 50;

/* Bands, in pixel rows and as rows of the table. */
struct EDGEBAND {
    double low;
    double high;
    int64_t firstRow;
    int64_t endRow;
};

struct EDGETABLE {
    EDGEMODE mode;
    int banded; /* 1: rows form bands of a mask; 0: all are one band */
    PLACEMENT place;
    int32_t rowsPerPixel;
    double samples; /* the same, and one over it */
    double rowHeight;

    /* What the table holds at present: pixel rows, and their sample rows. */
    int32_t top;
    int32_t bottom;
    uint32_t rowCount;
    EDGEBAND band; /* of the edge walked last */

    uint32_t spare;     /* places a row has above what the control polygons ask for */
    int overflow;       /* a row was full, its crossing is lost */
    uint32_t *rowStart; /* rowCount + 1 places in crossings or entries */
    uint32_t *rowNext;  /* rowCount: the place behind the last crossing of a row */
    double *crossings;  /* mode plain */
    EDGEENTRY *entries; /* the other modes */
    size_t rowRoom;
    size_t placeRoom;
};

/* A table without rows. */
EDGETABLE *EdgeTableAlloc(EDGEMODE mode, int banded, const PLACEMENT &place, int32_t rowsPerPixel);

/* Lays out empty rows for the join chain that begins with path: pixel rows from top to at most bottom, fewer when they
 * would take more than mostPlaces, but at least one band. 1; 0 without memory. */
int EdgeTableLayOut(const PATHREC *path, int32_t top, int32_t bottom, uint32_t mostPlaces, EDGETABLE *table);

/* Walks the join chain into the rows as they are laid out, and once more with more room while a row overflows.
 * 1; 0 without memory. */
int EdgeTableFill(PATHREC *path, EDGETABLE *table);

/* Adds the crossings of one record. */
void PathAddEdges(PATHREC *path, EDGETABLE *table);

/* The next segment of a walk, in the table's coordinates. */
int EdgeWalkNext(const EDGETABLE *table, SEGWALK *walk, SEGMENT *segment);

/* 1 when no point of the segment lies so far out that rows could not be counted. */
int SegmentIsNear(const SEGMENT &segment);

inline void EdgeTableAdd(EDGETABLE *table, double crossing, size_t row, PATHNODE *node)
{
    const uint32_t at = table->rowNext[row];
    if (at + 1 >= table->rowStart[row + 1]) {
        table->overflow = 1;
        return;
    }
    if (table->crossings)
        table->crossings[at] = crossing;
    else
        table->entries[at] = {crossing, node, 0};
    table->rowNext[row] = at + 1;
}

inline uint32_t EdgeTableRowCount(const EDGETABLE *table, size_t row)
{
    return table->rowNext[row] - table->rowStart[row];
}

/* Brings a row of a plain table into order of magnitude, of equal crossings the positive first, and puts a 0.0 behind
 * the last. Its crossings. */
double *EdgeTableSortRow(EDGETABLE *table, size_t row);

} // namespace zr32

#endif
