/* exactmeasure.cpp - the distance of a pixel to one segment of the outline.
 *
 * In come the pixel and a placed line or curve, out goes the nearest point of the segment as a vector. A shader needs a
 * direction, so a pixel that lies on the segment is moved off it by hundredths before it is measured again.
 */
#include "geometry/nearest.h"
#include "surface/exact.h"

#include <algorithm>

namespace zr32 {

namespace {

constexpr double onSegment = 0.0001; /* both components below: no vector */
constexpr double moveOff = 0.01;

/* What is not a number is no reason to move. */
int LiesOn(const POINTDB &vector)
{
    return std::fabs(vector.x) < onSegment && std::fabs(vector.y) < onSegment;
}

void MoveAlongRow(double right, POINTDB *point)
{
    point->x += point->x >= right ? moveOff : -moveOff;
}

/* The inside of a level curve that runs one way: between the limits each x has its point of the curve, found to far
 * better than onSegment, so a point there is known to lie on it. */
struct LEVELRUN {
    double low;
    double high;
};

int CurveIsLevelAt(const POINTDB *c, double y, LEVELRUN *run)
{
    for (int i = 0; i < 4; i++)
        if (!(std::fabs(c[i].y - y) < onSegment / 2)) return 0;
    const int rises = c[0].x <= c[1].x && c[1].x <= c[2].x && c[2].x <= c[3].x;
    const int falls = c[0].x >= c[1].x && c[1].x >= c[2].x && c[2].x >= c[3].x;
    if (!rises && !falls) return 0;
    constexpr double margin = 2 * moveOff;
    *run = {std::min(c[0].x, c[3].x) + margin, std::max(c[0].x, c[3].x) - margin};
    return 1;
}

} // namespace

void SegmentMaskType(const EXACTSEGMENT *segment)
{
    segment->node->type = static_cast<uint16_t>(segment->node->type & PATHNODE_KINDMASK);
}

void VMapLineDistance(double right, POINTDB point, LINEDB line, NEARENTRY *entry)
{
    const double low = std::min(line.a.x, line.b.x);
    const double high = std::max(line.a.x, line.b.x);
    if (line.a.y == line.b.y && point.y == line.a.y && point.x >= low && point.x <= high) {
        /* A pixel on a level edge must see a distance. */
        line.a.y += 0.00001;
        line.b.y += 0.00001;
    }
    for (;;) {
        NEARPOINT nearest;
        NearestOnLine(line.a, line.b, point, &nearest);
        if (nearest.atEnd || !LiesOn(nearest.vector)) {
            entry->dist2 = nearest.dist2;
            entry->vector = nearest.vector;
            entry->atEnd = nearest.atEnd;
            return;
        }
        MoveAlongRow(right, &point);
        if (line.b.y - line.a.y == 0) point.y += line.a.y <= point.y ? moveOff : -moveOff;
    }
}

void VMapCurveDistance(double right, POINTDB point, const POINTDB *controls, int wantVector, NEARENTRY *entry)
{
    LEVELRUN run;
    const int endsAtZero = controls[0].y == controls[3].y && controls[0].y == 0;
    if (wantVector && !endsAtZero && CurveIsLevelAt(controls, point.y, &run))
        while (point.x > run.low && point.x < run.high) MoveAlongRow(right, &point);
    for (;;) {
        NEARPOINT nearest;
        NearestOnCurve(controls, point, &nearest);
        if (!wantVector || !LiesOn(nearest.vector)) {
            entry->dist2 = nearest.dist2;
            entry->vector = nearest.vector;
            entry->atEnd = nearest.atEnd;
            return;
        }
        MoveAlongRow(right, &point);
        if (endsAtZero) point.y += moveOff; /* only in the map's first row, deliberately */
    }
}

} // namespace zr32
