/* corner.cpp - where one segment of the outline meets the next.
 *
 * Cross-sections stand upright on their own segment, so at a corner some things are left over. The pixel of the corner
 * itself each segment may cover only up to the bisector. Where the outline bends away from the inside, a wedge is
 * reached by no section: it is filled by sections that fan out from the corner. Where it bends towards the inside, the
 * bevel is at first too narrow for sections: it has a cap up to the first of them. And where two faces meet without a
 * ridge, both end at one seam.
 */
#include "render3d/coverage.h"
#include "render3d/render.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

/* How far along a direction its projection is measured, mask pixels. */
constexpr double feeler = 0.25;

/* Widest gap between two sections of a fan at their inner ends, output pixels. */
constexpr double fanGap = 0.5;

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

/* From a joint along the segment that begins or ends there. */
POINTDB OwnWay(const JOINT *joint, int atStart)
{
    return atStart ? joint->after : joint->before * -1;
}

/* The part of the corner's pixel that belongs to one segment: its half plane, up to the bisector. */
void PutCorner(RENDER *render, const JOINT *joint, int atStart, int side, SAMPLE *sample)
{
    const POINTDB own = OwnWay(joint, atStart);
    POINTDB bisector = {-(joint->before.y + joint->after.y), joint->before.x + joint->after.x};
    if (bisector.x == 0 && bisector.y == 0) bisector = joint->before; /* straight back */
    const POINTDB tangent = atStart ? joint->after : joint->before;
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

/* Where the bevel is too narrow for sections, up to the first of them, a segment has the wedge between its edge and the
 * ridge that runs from the joint to that section's inner end. */
void PutCap(RENDER *render, const JOINT *joint, const RIMENDS *ends)
{
    POINTDB at;
    if (!RimProject(render, joint->at, &at)) return;
    const SAMPLE &rim = ends->rim;
    SAMPLE sample = ends->middle;
    const POINTDB ridge = ends->inner - at;
    if (Length(rim.at - at) == 0 || Length(ridge) == 0) return;
    const EDGESHAPE shape = {EDGE_CORNER, at, rim.at, ends->inner, ridge * (1 / Length(ridge)), rim.at};
    const auto first = [](double a, double b, double c) { return std::max(0.0, std::floor(std::min({a, b, c}))); };
    const auto last = [](double a, double b, double c, int32_t size) {
        return std::min(size - 1.0, std::floor(std::max({a, b, c})));
    };
    const double x0 = first(at.x, rim.at.x, ends->inner.x);
    const double y0 = first(at.y, rim.at.y, ends->inner.y);
    const double x1 = last(at.x, rim.at.x, ends->inner.x, render->abuf.info.width);
    const double y1 = last(at.y, rim.at.y, ends->inner.y, render->abuf.info.height);
    constexpr double mostPixels = 16384; /* a wedge as large comes from a projection gone wild */
    if (!((x1 - x0 + 1) * (y1 - y0 + 1) <= mostPixels)) return;
    for (double y = y0; y <= y1; y++) {
        for (double x = x0; x <= x1; x++) {
            const POINTDB origin = {x, y};
            if (CoverTriangle(at - origin, rim.at - origin, ends->inner - origin))
                ABufPutEdge(&render->abuf, PixelIndex(x), PixelIndex(y), &sample, &shape);
        }
    }
}

void PutEnd(RENDER *render, const JOINT *joint, int atStart, int side, const RIMENDS *ends)
{
    if (!joint->joined || ends->unseen) return;
    SAMPLE sample = ends->rim;
    PutCorner(render, joint, atStart, side, &sample);
    if (!JointIsSmooth(joint) && !JointBendsAway(joint, side)) PutCap(render, joint, ends);
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
    PutEnd(render, &corners->start, 1, corners->side, &corners->first);
    PutEnd(render, &corners->end, 0, corners->side, &corners->last);
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

void KeepToOwnSide(const JOINT *joint, int atStart, SECTION *section)
{
    constexpr double near = 4; /* farther off sections may well cross the line of the seam */
    if (!JointIsSmooth(joint) || Length(section->at - joint->at) > near) return;
    POINTDB away = joint->before + joint->after;
    away = away * ((atStart ? 1 : -1) / Length(away));
    const double apart = Dot(section->at + section->reach - joint->at, away);
    if (apart < 0) section->reach = section->reach - away * apart;
}

int JointBendsAway(const JOINT *joint, int side)
{
    return joint->joined && Cross(joint->before, joint->after) * side < 0;
}

int FanDraw(RENDER *render, const JOINT *joint, int side, int atStart)
{
    POINTDB at;
    if (!(JointBendsAway(joint, side) || JointIsSmooth(joint)) || !RimProject(render, joint->at, &at) ||
        ReachUnseen(render, joint->at))
        return 0;
    /* Between the upright and the bisector; not above 0 where the outline does not bend away: one section will do. */
    const double half = 0.5 * std::atan2(-Cross(joint->before, joint->after) * side, Dot(joint->before, joint->after));
    const POINTDB edge = atStart ? joint->after : joint->before;
    const POINTDB upright = POINTDB{-edge.y, edge.x} * side;
    render->hold = 1;
    render->holdX = PixelIndex(at.x);
    render->holdY = PixelIndex(at.y);
    int drawn = 0;
    for (double turn = 0;;) {
        /* The outline turns towards -side; the wedge lies that way from the upright at its end, and the other way at
         * its start. */
        const double angle = atStart ? (half - turn) * side : std::min(turn, half) * -side;
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        SECTION section;
        FanSection(render, joint->at, {upright.x * c - upright.y * s, upright.x * s + upright.y * c}, edge, &section);
        if ((section.reach.x != 0 || section.reach.y != 0) && !SectionUnseen(render, &section)) {
            drawn += SectionDraw(render, &section);
        } else {
            JoinBreak(render);
        }
        if (turn >= half) break;
        const double reach = Length(ProjectFlat(render, section.at + section.reach) - ProjectFlat(render, section.at));
        constexpr double least = 1e-4;
        turn = std::min(half, turn + std::max(least, fanGap / std::max(1.0, reach)));
    }
    render->hold = 0;
    return drawn;
}

void SeamDraw(RENDER *render, const JOINT *joint, int side, int atStart)
{
    const POINTDB along = joint->before + joint->after;
    const double length = Length(along);
    if (!(JointIsSmooth(joint) || JointBendsAway(joint, side)) || length == 0 || ReachUnseen(render, joint->at)) return;
    const POINTDB inward = POINTDB{-along.y, along.x} * (side / length);
    constexpr double beside = 0.5;
    SECTION section;
    FanSection(render, joint->at, inward, atStart ? joint->after : joint->before, &section);
    if (section.reach.x == 0 && section.reach.y == 0) return;
    StripBuild(render, &section, &render->seam[0]);
    section.at = section.at + OwnWay(joint, atStart) * beside;
    StripBuild(render, &section, &render->seam[1]);
    SideEdge(render, &render->seam[0], &render->seam[1]);
}

} // namespace zr32
