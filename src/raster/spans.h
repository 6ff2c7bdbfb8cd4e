/* spans.h - takes the spans of a filling rule from a sorted row of crossings. */
#ifndef ZR32_SPANS_H
#define ZR32_SPANS_H

#include "raster/edgetable.h"

#include <algorithm>

namespace zr32 {

struct SPANWALK {
    const double *entries; /* count crossings and a 0.0 behind them */
    uint32_t count;
    uint32_t at;
    int32_t winding; /* of the whole row: it is not reset from span to span */
    int evenOdd;
};

/* Sorts the row and begins with its first span. A row with fewer than two crossings has none: a lone crossing is
 * dropped. */
inline void SpanStart(EDGETABLE *table, size_t row, int evenOdd, SPANWALK *walk)
{
    const uint32_t count = EdgeTableRowCount(table, row);
    *walk = {count < 2 ? nullptr : EdgeTableSortRow(table, row), count < 2 ? 0 : count, 0, 0, evenOdd};
}

/* The span of a row that consists of one: most rows do. 0 when the row is not such a one. */
inline int SpanOfPair(const EDGETABLE *table, size_t row, int evenOdd, double *from, double *to)
{
    if (EdgeTableRowCount(table, row) != 2) return 0;
    const double *entries = table->crossings + table->rowStart[row];
    const double a = entries[0];
    const double b = entries[1];
    if (!evenOdd && !(a > 0 && b < 0) && !(a < 0 && b > 0)) return 0;
    *from = std::min(std::fabs(a), std::fabs(b));
    *to = std::max(std::fabs(a), std::fabs(b));
    return *from != *to;
}

/* The next span, from |a| to |b|; spans of no length are passed over. 0 at the end. In a row that is not balanced the
 * last span finds no end and takes the 0.0 behind the last entry for one: it then runs from a down to 0. */
inline int SpanNext(SPANWALK *walk, double *from, double *to)
{
    while (walk->at < walk->count) {
        const double a = walk->entries[walk->at];
        double b = a;
        if (walk->evenOdd) {
            b = walk->entries[++walk->at];
        } else {
            walk->winding += a > 0 ? 1 : -1;
            while (walk->winding != 0) {
                b = walk->entries[++walk->at];
                if (b == 0) break;
                walk->winding += b > 0 ? 1 : -1;
            }
        }
        walk->at++;
        *from = std::fabs(a);
        *to = std::fabs(b);
        if (*from != *to) return 1;
    }
    return 0;
}

} // namespace zr32

#endif
