/* corner.cpp - where one segment of the outline meets the next.
 *
 * Cross-sections stand upright on their own segment, so at a corner two things are left over: the pixel of the corner
 * itself, which each segment may cover only up to the bisector, and, where the outline bends away from the inside, a
 * wedge that no section reaches. The wedge is filled by sections that fan out from the corner.
 */
#include "render3d/render.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

/* How far along a direction its projection is measured, mask pixels. */
constexpr double feeler = 0.25;

/* Widest gap between two sections of a fan at their inner ends, output pixels. */
constexpr double fanGap = 0.5;

double Cross(const POINTDB &a, const POINTDB &b)
{
    return a.x * b.y - a.y * b.x;
}

/* The projected direction of a short way from the corner; 0 when it cannot be seen. */
int ProjectedWay(const RENDER *render, const POINTDB &at, const POINTDB &way, POINTDB *out)
{
    POINTDB from;
    POINTDB to;
    if (!RimProject(render, at, &from) || !RimProject(render, at + way * feeler, &to)) return 0;
    const double length = Length(to - from);
    *out = (to - from) * (1 / length);
    return length > 0 && std::isfinite(length);
}

/* The part of the corner's pixel that belongs to one segment: its half plane, up to the bisector. own points from the
 * corner along the segment. */
void PutCorner(RENDER *render, const JOINT *joint, const POINTDB &own, int side, SAMPLE *sample)
{
    POINTDB bisector = {-(joint->before.y + joint->after.y), joint->before.x + joint->after.x};
    if (bisector.x == 0 && bisector.y == 0) bisector = joint->before; /* straight back */
    const POINTDB tangent = Dot(own, joint->after) > 0 ? joint->after : joint->before;
    const POINTDB inward = POINTDB{-tangent.y, tangent.x} * side;
    EDGESHAPE shape = {};
    shape.form = EDGE_CORNER;
    POINTDB at;
    POINTDB in;
    POINTDB along;
    if (!RimProject(render, joint->at, &at) || !ProjectedWay(render, joint->at, own, &along) ||
        !ProjectedWay(render, joint->at, inward, &in) ||
        !ProjectedWay(render, joint->at, bisector * (1 / Length(bisector)), &shape.bound))
        return;
    shape.from = at;
    shape.to = at + along;
    shape.point = at + in;
    shape.boundInside = at + along;
    ABufPutEdge(&render->abuf, PixelIndex(at.x), PixelIndex(at.y), sample, &shape);
}

} // namespace

int JointIsSmooth(const JOINT *joint)
{
    constexpr double straight = 0.97; /* the cosine of some 14 degrees */
    return joint->joined && Dot(joint->before, joint->after) > straight;
}

void CornersDraw(RENDER *render, const CORNERS *corners)
{
    if (!corners->drawn) return;
    const JOINT *start = &corners->start;
    const JOINT *end = &corners->end;
    SAMPLE sample = corners->firstRim;
    if (start->joined) PutCorner(render, start, start->after, corners->side, &sample);
    sample = corners->lastRim;
    if (end->joined) PutCorner(render, end, end->before * -1, corners->side, &sample);
}

int SegmentSide(const RENDER *render, const POINTDB &at, const POINTDB &tangent)
{
    POINTDB normal;
    POINTDB other;
    OutlineNormals(tangent, &normal, &other);
    POINTDB inward;
    int isClear;
    if (!InwardSide(render, at, normal, &inward, &isClear)) return 0;
    return Cross(tangent, inward) > 0 ? 1 : -1;
}

int JointBendsAway(const JOINT *joint, int side)
{
    return joint->joined && Cross(joint->before, joint->after) * side < 0;
}

void FanDraw(RENDER *render, const JOINT *joint, int side, int atStart)
{
    POINTDB at;
    if (!JointBendsAway(joint, side) || !RimProject(render, joint->at, &at)) return;
    const double half =
        0.5 * std::atan2(std::fabs(Cross(joint->before, joint->after)), Dot(joint->before, joint->after));
    const POINTDB edge = atStart ? joint->after : joint->before;
    const POINTDB upright = POINTDB{-edge.y, edge.x} * side;
    render->hold = 1;
    render->holdX = PixelIndex(at.x);
    render->holdY = PixelIndex(at.y);
    for (double turn = 0;;) {
        /* The outline turns towards -side; the wedge lies that way from the upright at its end, and the other way at
         * its start. */
        const double angle = atStart ? (half - turn) * side : turn * -side;
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        SECTION section;
        FanSection(render, joint->at, {upright.x * c - upright.y * s, upright.x * s + upright.y * c}, edge, &section);
        if (section.reach.x != 0 || section.reach.y != 0) {
            SectionDraw(render, &section);
            if (atStart && render->joined == 2) SideEdge(render, 0);
        } else {
            JoinBreak(render);
        }
        if (turn >= half) break;
        const double reach = Length(ProjectFlat(render, section.at + section.reach) - ProjectFlat(render, section.at));
        constexpr double least = 1e-4;
        turn = std::min(half, turn + std::max(least, fanGap / std::max(1.0, reach)));
    }
    render->hold = 0;
}

} // namespace zr32
