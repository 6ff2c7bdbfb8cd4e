/* polygon.h - the corners of a polygon shape.
 *
 * A polygon is kept as its centre, a corner on the outer circle and a number; its other corners are worked out when
 * they are asked for. Corner 0 is the one that is kept; corners k and n - k are that one turned by the same angle both
 * ways, and the one opposite is its reflection, so that the shape is symmetrical about its axis to the last bit.
 */
#ifndef ZR32_POLYGON_H
#define ZR32_POLYGON_H

#include "store/store.h"

namespace zr32 {

struct POLYGON {
    POINTDB centre;
    POINTDB corner; /* corner 0, from the centre */
    uint32_t count; /* of corners; of a star both kinds */
    double inward;  /* of a star the factor from the outer circle to the inner, else 0 */
};

/* Reads a polygon shape from a segment of that kind. 0 for one that has no corners: too few nodes, a number that is
 * not positive, or a star without an outer circle. */
int PolygonOf(const SEGMENT *segment, POLYGON *polygon);

/* k from 0; k = count is corner 0 again. */
POINTDB PolygonCorner(const POLYGON *polygon, uint32_t k);

} // namespace zr32

#endif
