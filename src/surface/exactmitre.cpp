/* exactmitre.cpp - corners of the exact distance surface: both edges are extended past their vertex.
 *
 * In come two entries whose nearest point is the same vertex; out go their distances to the infinite lines through the
 * edges, the greater first: that is the height of a mitred bevel. A corner met for the first time widens the reach of
 * all pixels that follow to the length of its mitre.
 */
#include "surface/exact.h"

#include <utility>

namespace zr32 {

LINEDB vmapLastEdge;

namespace {

int SamePoint(const POINTDB &a, const POINTDB &b)
{
    return a.x == b.x && a.y == b.y;
}

int SameLine(const LINEDB &a, const LINEDB &b)
{
    return SamePoint(a.a, b.a) && SamePoint(a.b, b.b);
}

/* The line in which the segment leaves the vertex that the pixel sees, from its start to its end. A control point that
 * lies on its anchor is replaced by the other one. 0 for a segment without a direction there. */
int TangentAtVertex(const EXACTSEGMENT *segment, const POINTDB &pixel, LINEDB *line)
{
    const POINTDB *p = segment->p;
    if (!segment->curve) {
        *line = {p[0], p[1]};
    } else {
        const POINTDB toStart = pixel - p[0];
        const POINTDB toEnd = pixel - p[3];
        if (Dot(toStart, toStart) < Dot(toEnd, toEnd))
            *line = {p[0], SamePoint(p[1], p[0]) ? p[2] : p[1]};
        else
            *line = {SamePoint(p[2], p[3]) ? p[1] : p[2], p[3]};
    }
    return !SamePoint(line->a, line->b);
}

/* From the pixel's foot on the infinite line to the pixel. */
POINTDB AcrossLine(const POINTDB &pixel, const LINEDB &line)
{
    const POINTDB along = line.a - line.b;
    const POINTDB fromVertex = pixel - line.b;
    return fromVertex - along * (Dot(fromVertex, along) / Dot(along, along));
}

void WidenReach(const LINEDB &a, const LINEDB &b, REACH *reach)
{
    if (SameLine(a, vmapLastEdge) || SameLine({a.b, a.a}, vmapLastEdge)) return;
    vmapLastEdge = a;
    const POINTDB u = a.b - a.a;
    const POINTDB v = b.b - b.a;
    if (u.x == -v.x && u.y == -v.y) return;
    const double c = Dot(u, v) / (Length(u) * Length(v));
    reach->width = c > 0 ? 2 * reach->base * std::sqrt(1 / (2 * (1 - c))) : 1.5 * reach->base;
    if (!std::isfinite(reach->width)) reach->width = reach->diagonal; /* an edge folded back on itself */
}

/* Each line's second point should be the vertex that they share; ends are exchanged until it is. */
void VMapExtendedDistances(const POINTDB &pixel, LINEDB a, LINEDB b, NEARENTRY *e1, NEARENTRY *e2, REACH *reach)
{
    if (!SamePoint(a.b, b.b)) {
        const LINEDB turned = {a.b, a.a};
        if (SamePoint(turned.b, b.b))
            a = turned;
        else
            b = {b.b, b.a};
    }
    POINTDB greater = AcrossLine(pixel, a);
    POINTDB smaller = AcrossLine(pixel, b);
    if (Dot(smaller, smaller) > Dot(greater, greater)) std::swap(greater, smaller);
    e1->dist2 = Dot(greater, greater);
    e2->dist2 = Dot(smaller, smaller);
    e1->vector = {-greater.x, -greater.y};
    e2->vector = {-smaller.x, -smaller.y};
    WidenReach(a, b, reach);
}

} // namespace

void VMapMitrePair(const POINTDB &pixel, NEARENTRY *e1, NEARENTRY *e2, REACH *reach)
{
    if (!e1->segment || !e2->segment) return;
    SegmentMaskType(e1->segment);
    SegmentMaskType(e2->segment);
    LINEDB a;
    LINEDB b;
    if (TangentAtVertex(e1->segment, pixel, &a) && TangentAtVertex(e2->segment, pixel, &b))
        VMapExtendedDistances(pixel, a, b, e1, e2, reach);
}

} // namespace zr32
