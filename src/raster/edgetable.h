/* edgetable.h - inside of the edge tables: one arena for all crossings, filled by the walker, read row by row.
 *
 * While edges are walked, crossings only go to the end of one array; a run says which rows a stretch of them belongs
 * to. EdgeTableSort then deals them out into rows that stand one behind the other in a second array. So an edge is
 * walked once, and nothing is allocated a row.
 */
#ifndef ZR32_EDGETABLE_H
#define ZR32_EDGETABLE_H

#include "raster/raster.h"

namespace zr32 {

/* Crossings of one edge on rows that follow each other, upwards or downwards. */
struct EDGERUN {
    PATHNODE *node;
    int32_t row;  /* of the first */
    int32_t step; /* 1 or -1 */
    uint32_t count;
};

struct EDGETABLE {
    EDGEMODE mode;
    int32_t top; /* pixel rows */
    int32_t bottom;
    int32_t rowsPerPixel;
    int32_t bandHeight; /* an edge reaches only the rows of the bands in which its ends lie; 0: one band */
    uint32_t rowCount;
    uint32_t crossingLimit; /* PathAddEdges gives up above it; 0: none */

    double *crossings; /* in the order of the walk */
    uint32_t crossingCount;
    uint32_t crossingRoom;
    EDGERUN *runs;
    uint32_t runCount;
    uint32_t runRoom;

    uint32_t *rowStart; /* rowCount + 1 places in rows or entries; each row ends in an empty entry of its own */
    double *rows;       /* mode plain */
    EDGEENTRY *entries; /* the other modes */
};

/* Height of a band of a mask, in pixel rows. */
constexpr int32_t maskBandHeight = 50;

/* Room for at least count crossings and one run behind what the table holds. 1; 0 without memory or over the limit. */
int EdgeTableReserve(uint32_t count, EDGETABLE *table);

/* A row of a sorted plain table: count crossings and a 0.0 behind them. */
inline const double *EdgeTablePlainRow(const EDGETABLE *table, uint32_t row, uint32_t *count)
{
    *count = table->rowStart[row + 1] - table->rowStart[row] - 1;
    return table->rows + table->rowStart[row];
}

/* Sorts crossings by magnitude, of equal ones the positive first. */
void SortCrossings(double *crossings, uint32_t count);

} // namespace zr32

#endif
