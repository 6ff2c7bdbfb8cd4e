/* exact_plain.h - the exact distance surface in its plain form, the yardstick for the fast one: for every pixel the
 * whole list is cleared, candidates are gathered with a linear search for duplicates, and all of them are measured.
 */
#ifndef ZR32_TESTS_EXACT_PLAIN_H
#define ZR32_TESTS_EXACT_PLAIN_H

#include "surface/surface.h"

namespace zr32test {

/* As VMapExactDistance. The line of the last corner that widened the reach is handed in and out. */
int PlainExactDistance(zr32::SURFACEEDGES *edges, double width, const zr32::SURFACEMAP *map, int32_t noMitre,
                       int32_t floatVectors, double lastEdge[4]);

/* One segment, from two points (a line) or four (a curve). */
struct PLAINMEASURE {
    double dist2;
    double x;
    double y;
    int atEnd;
};

PLAINMEASURE PlainMeasureLine(double right, double x, double y, zr32::POINTDB a, zr32::POINTDB b);
PLAINMEASURE PlainMeasureCurve(double right, double x, double y, const zr32::POINTDB *controls, int wantVector);

} // namespace zr32test

#endif
