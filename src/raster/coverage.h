/* coverage.h - the two output stages of the scan converter: rows of crossings become mask pixels. */
#ifndef ZR32_COVERAGE_H
#define ZR32_COVERAGE_H

#include "raster/edgetable.h"

namespace zr32 {

/* Columns at the left edge whose sums are formed in the order of the spans. From there on crossings are multiples of
 * 2^-49, and 16 sample rows add to at most 16: every sum is exact in a double, so any order gives the same bits. */
constexpr int32_t nearColumns = 8;

/* The ends of spans in one column: how many more begin there than end, and how far to the right in it, summed with the
 * same sign. What lies right of the column is covered by the sum of all counts up to it, the column itself by less than
 * that: by what lies before its ends. */
struct COLUMNENDS {
    double count;
    double before;
};

/* Coverage of one pixel row, in sample rows. Only pointers: it is handed on by value, so that the compiler keeps them
 * at hand. */
struct ROWCOVER {
    double *near;      /* coverage of the first columns */
    COLUMNENDS *ends;  /* of the others; width */
    uint64_t *touched; /* a bit for each column with ends */
    int32_t width;
};

int RowCoverAlloc(int32_t width, ROWCOVER *cover);
void RowCoverFree(ROWCOVER *cover);

/* Writes the pixel rows of a plain table into an 8-bit buffer. hard: 255 or 0 by a threshold. */
void BandToMask8(EDGETABLE *table, PATHBUF buf, int evenOdd, int hard, ROWCOVER cover);

/* The same for a 32-bit buffer and a table of 4 sample rows a pixel. */
void BandToMask32(EDGETABLE *table, PATHBUF buf, int evenOdd);

} // namespace zr32

#endif
