/* nearest.h - the nearest point to a given one on a line and on a cubic.
 *
 * In come a point and a segment, out goes the nearest point of the segment and where on it that lies. Picking asks
 * whether it is near enough, the exact surface builder how far it is. A result in which nothing is a number compares
 * as far away.
 */
#ifndef ZR32_NEAREST_H
#define ZR32_NEAREST_H

#include "geometry/vector.h"

namespace zr32 {

struct NEARPOINT {
    POINTDB vector; /* from the point asked for to the nearest one */
    double dist2;   /* the vector's squared length */
    double t;       /* the nearest point's parameter on the segment, 0 to 1 */
    int atEnd;      /* 1: an end of the segment; on a cubic also within 0.00001 of its far end */
};

/* The point of a cubic at t, by repeated interpolation (de Casteljau). */
POINTDB BezierPoint(const POINTDB *controls, double t);

/* A quintic has no more. */
constexpr int bezierRootsMax = 5;

/* Parameters from 0 to 1, ascending, at which the cubic's distance from the point has a stationary value; returns
 * their number, at most bezierRootsMax. */
int BezierRoots(const POINTDB *controls, const POINTDB &point, double *roots);

/* The nearest of the cubic's start, its stationary points and its end; on a tie the earliest of them. */
void NearestOnCurve(const POINTDB *controls, const POINTDB &point, NEARPOINT *nearest);

/* The foot of the perpendicular, or the end of the line that it lies beyond. A line without length gives NaN
 * throughout, atEnd 0. */
void NearestOnLine(const POINTDB &a, const POINTDB &b, const POINTDB &point, NEARPOINT *nearest);

} // namespace zr32

#endif
