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

/* A stretch of the row on which a point is known to lie on the segment, so that it need not be measured there. A long
 * edge that is all but level would otherwise be measured every hundredth of a pixel. */
struct LEVELRUN {
    double low;
    double high;
};

constexpr double surelyOn = onSegment * 0.999; /* a point of the segment as near as this above or below */
constexpr double runMargin = 2 * moveOff;      /* clear of the ends, beyond which points lie off it */

LEVELRUN RunBetween(double x0, double x1)
{
    return {std::min(x0, x1) + runMargin, std::max(x0, x1) - runMargin};
}

void MoveThrough(const LEVELRUN &run, double right, POINTDB *point)
{
    while (point->x > run.low && point->x < run.high) MoveAlongRow(right, point);
}

/* Where a line that is not level passes the row so closely. */
LEVELRUN RunOfLine(const LINEDB &line, double y)
{
    const double slant = (line.b.x - line.a.x) / (line.b.y - line.a.y);
    const double at = line.a.x + (y - line.a.y) * slant;
    const double half = surelyOn * std::fabs(slant);
    const LEVELRUN whole = RunBetween(line.a.x, line.b.x);
    return {std::max(whole.low, at - half), std::min(whole.high, at + half)};
}

/* 1 when the control polygon runs one way and stays so close to the row: then each x between its ends has its point. */
int PolygonIsLevelAt(const POINTDB *c, double y)
{
    for (int i = 0; i < 4; i++)
        if (!(std::fabs(c[i].y - y) < surelyOn)) return 0;
    return (c[0].x <= c[1].x && c[1].x <= c[2].x && c[2].x <= c[3].x) ||
           (c[0].x >= c[1].x && c[1].x >= c[2].x && c[2].x >= c[3].x);
}

/* The same of the longest of the curve's halves, quarters and so on around t whose polygon shows it. */
LEVELRUN RunOfCurve(const POINTDB *controls, double t, double y)
{
    POINTDB c[4] = {controls[0], controls[1], controls[2], controls[3]};
    while (!PolygonIsLevelAt(c, y)) {
        if (!(std::fabs(c[3].x - c[0].x) > 2 * runMargin)) return {0, 0};
        const POINTDB a = (c[0] + c[1]) * 0.5;
        const POINTDB b = (c[1] + c[2]) * 0.5;
        const POINTDB d = (c[2] + c[3]) * 0.5;
        const POINTDB ab = (a + b) * 0.5;
        const POINTDB bd = (b + d) * 0.5;
        const POINTDB middle = (ab + bd) * 0.5;
        t *= 2;
        if (t < 1) {
            c[1] = a;
            c[2] = ab;
            c[3] = middle;
        } else {
            t -= 1;
            c[0] = middle;
            c[1] = bd;
            c[2] = d;
        }
    }
    return RunBetween(c[0].x, c[3].x);
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
        if (line.b.y - line.a.y == 0)
            point.y += line.a.y <= point.y ? moveOff : -moveOff;
        else
            MoveThrough(RunOfLine(line, point.y), right, &point);
    }
}

void VMapCurveDistance(double right, POINTDB point, const POINTDB *controls, int wantVector, NEARENTRY *entry)
{
    const int endsAtZero = controls[0].y == controls[3].y && controls[0].y == 0;
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
        if (endsAtZero)
            point.y += moveOff; /* only in the map's first row, deliberately */
        else
            MoveThrough(RunOfCurve(controls, nearest.t, point.y), right, &point);
    }
}

} // namespace zr32
