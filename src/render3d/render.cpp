/* render.cpp - the renderer's frame: arguments, bands, and the walk along the outline of each record.
 *
 * No triangles are filled. The outline is stepped so finely that neighbouring cross-sections lie within a pixel of each
 * other on the output; a fragment plane gathers their samples and is resolved band by band.
 */
#include "render3d/render.h"
#include "geometry/curvestep.h"
#include "render3d/coverage.h"
#include "shade/profile.h"
#include "store/store.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

constexpr int32_t bandRows = 500;

/* How nearly alike two directions must be to count as one, on straight and on curved segments. */
constexpr double toleranceOfLine = 0.1;
constexpr double toleranceOfCurve = 0.2;

/* Projected steps of a curve, pixels of the longer axis. */
constexpr double longestCurveStep = 0.7;
constexpr double shortestCurveStep = 0.35;

/* A segment that is walked in steps as small as this is longer on the output than any plane: most of it lies outside,
 * and is not even asked how far its bevel reaches. */
constexpr int64_t wildStep = 2;

/* A segment under way. */
struct SEGMENTWALK {
    POINTDB start;
    double tolerance;
    MITRE mitre;
    CORNERS corners;
};

/* The mask cannot be clear close to where the outline bends away: two pixels outward lie in the other arm, the farther
 * from the joint the narrower the notch between the two is. */
int NearBend(const JOINT *joint, const POINTDB &at, int side)
{
    constexpr double near = 4;
    constexpr double farthest = 40;
    if (!JointBendsAway(joint, side)) return 0;
    const double notch = Dot(joint->before, joint->after) < 0 ? Cross(joint->before, joint->after) : 1;
    return Length(at - joint->at) < std::min(near / std::fabs(notch), farthest);
}

/* Nothing of a section lies near the plane. */
void SkipUnseen(RENDER *render, CORNERS *corners)
{
    JoinBreak(render);
    if (!corners->drawn) corners->first.unseen = 1;
    corners->last.unseen = 1;
}

/* step: of the parameter. */
void DrawAt(RENDER *render, SEGMENTWALK *walk, const POINTDB &at, const POINTDB &tangent, double radius, int64_t step)
{
    CORNERS *corners = &walk->corners;
    if (step <= wildStep && ReachUnseen(render, at)) {
        SkipUnseen(render, corners);
        return;
    }
    const int nearBend = NearBend(&corners->start, at, corners->side) || NearBend(&corners->end, at, corners->side);
    SECTION section;
    SectionAt(render, walk->start, at, tangent, radius, walk->tolerance, nearBend, &walk->mitre, &section);
    if (section.reach.x == 0 && section.reach.y == 0) {
        JoinBreak(render);
        return;
    }
    KeepToOwnSide(&corners->start, 1, &section);
    KeepToOwnSide(&corners->end, 0, &section);
    if (SectionUnseen(render, &section)) {
        SkipUnseen(render, corners);
        return;
    }
    if (!SectionDraw(render, &section)) return;
    const STRIP *strip = &render->strips[render->current];
    corners->last = {0, strip->rim, strip->points[strip->count / 2].sample, strip->points[strip->count - 1].sample.at};
    if (!corners->drawn && !corners->first.unseen) corners->first = corners->last;
    corners->drawn++;
}

/* The longer axis of a step between two points of the picture, in output pixels. */
double ProjectedStep(const RENDER *render, const POINTDB &a, const POINTDB &b)
{
    const POINTDB d = ProjectFlat(render, b) - ProjectFlat(render, a);
    return std::max(std::fabs(d.x), std::fabs(d.y));
}

void WalkLine(RENDER *render, const SEGMENT *segment, SEGMENTWALK *walk)
{
    const POINTDB from = segment->p[0];
    const POINTDB to = segment->p[1];
    LINESTEP step;
    LineStart(from, to, &step);
    while (step.h > 1 && (ProjectedStep(render, from, from + step.d) > 1 || ProjectedStep(render, to - step.d, to) > 1))
        LineHalve(&step);
    if (step.h > 1) LineHalve(&step); /* within half a pixel */
    for (int64_t i = 0; i * step.h < parameterEnd; i++)
        DrawAt(render, walk, from + step.d * static_cast<double>(i), to - from, 0, step.h);
    DrawAt(render, walk, to, to - from, 0, step.h);
}

double CurveStepOnOutput(const RENDER *render, const CURVESTEP *step)
{
    return ProjectedStep(render, step->pos * subPixelOfStep, (step->pos + step->d) * subPixelOfStep);
}

/* Each sample of a curve stands upright on its own d, the last one too; where d is zero there is none. */
void DrawOnCurve(RENDER *render, SEGMENTWALK *walk, const CURVESTEP *step, const POINTDB &at)
{
    if (step->d.x == 0 && step->d.y == 0) return;
    const double bend = Cross(step->d, step->dd) * walk->corners.side;
    const double length = Length(step->d);
    DrawAt(render, walk, at, step->d, bend > 0 ? length * length * length / bend * subPixelOfStep : 0, step->h);
}

void WalkCurve(RENDER *render, const SEGMENT *segment, SEGMENTWALK *walk)
{
    CURVESTEP step;
    CurveStart(segment->p, &step);
    while (step.t < parameterEnd) {
        if (step.t + 2 * step.h <= parameterEnd && CurveStepOnOutput(render, &step) < shortestCurveStep)
            CurveDouble(&step);
        while (step.h > 1 && (step.t + step.h > parameterEnd || CurveStepOnOutput(render, &step) > longestCurveStep))
            CurveHalve(&step);
        DrawOnCurve(render, walk, &step, step.pos * subPixelOfStep);
        CurveAdvance(&step);
    }
    DrawOnCurve(render, walk, &step, segment->p[3]);
}

/* The unit vector from a to the first of the points that differs from it; zero when none does. */
POINTDB Direction(const POINTDB &a, const POINTDB *points, int count, int step)
{
    for (int i = 0; i < count; i++, points += step) {
        const POINTDB d = *points - a;
        if (d.x != 0 || d.y != 0) return d * (1 / Length(d));
    }
    return {0, 0};
}

int SegmentIsDrawn(const SEGMENT *segment)
{
    if (segment->kind == PATHNODE_CURVE) return 1;
    /* A line without a length is passed over. */
    return segment->kind == PATHNODE_LINE && (segment->p[0].x != segment->p[1].x || segment->p[0].y != segment->p[1].y);
}

POINTDB StartTangent(const SEGMENT *segment)
{
    return Direction(segment->p[0], &segment->p[1], segment->kind == PATHNODE_CURVE ? 3 : 1, 1);
}

POINTDB EndPoint(const SEGMENT *segment)
{
    return segment->p[segment->kind == PATHNODE_CURVE ? 3 : 1];
}

POINTDB EndTangent(const SEGMENT *segment)
{
    const int last = segment->kind == PATHNODE_CURVE ? 3 : 1;
    return Direction(segment->p[last], &segment->p[last - 1], last, -1) * -1;
}

/* The next segment of the run that is drawn. 0 at the run's end. */
int NextOfRun(SEGWALK *walk, SEGMENT *segment)
{
    while (SegWalkNext(walk, segment)) {
        if (segment->kind == PATHNODE_START) return 0;
        if (SegmentIsDrawn(segment)) return 1;
    }
    return 0;
}

/* How a run closes: its first segment's start and its last one's end, where they meet. */
void ClosingJoint(SEGWALK walk, JOINT *joint)
{
    SEGMENT segment;
    *joint = {};
    if (!NextOfRun(&walk, &segment)) return;
    joint->at = segment.p[0];
    joint->after = StartTangent(&segment);
    SEGMENT last = segment;
    while (NextOfRun(&walk, &segment)) last = segment;
    joint->before = EndTangent(&last);
    const POINTDB end = EndPoint(&last);
    joint->joined = end.x == joint->at.x && end.y == joint->at.y;
}

/* A point of a segment and its direction there. */
POINTDB PointOfSegment(const SEGMENT *segment, double t, POINTDB *tangent)
{
    const POINTDB *p = segment->p;
    if (segment->kind == PATHNODE_LINE) {
        *tangent = p[1] - p[0];
        return LerpPoint(p[0], p[1], t);
    }
    const POINTDB a = LerpPoint(LerpPoint(p[0], p[1], t), LerpPoint(p[1], p[2], t), t);
    const POINTDB b = LerpPoint(LerpPoint(p[1], p[2], t), LerpPoint(p[2], p[3], t), t);
    *tangent = b - a;
    return LerpPoint(a, b, t);
}

void RenderSegment(RENDER *render, const SEGMENT *segment, const JOINT *start, const JOINT *end)
{
    render->abuf.edgeId++;
    SEGMENTWALK walk = {};
    walk.start = segment->p[0];
    walk.corners.start = *start;
    walk.corners.end = *end;
    for (const double t : {0.5, 0.25, 0.75}) {
        if (walk.corners.side != 0) break;
        POINTDB tangent;
        const POINTDB at = PointOfSegment(segment, t, &tangent);
        if (tangent.x != 0 || tangent.y != 0) walk.corners.side = SegmentSide(render, at, tangent);
    }
    const int fanned = FanDraw(render, start, walk.corners.side, 1);
    if (segment->kind == PATHNODE_LINE) {
        walk.tolerance = toleranceOfLine;
        WalkLine(render, segment, &walk);
    } else {
        walk.tolerance = toleranceOfCurve;
        WalkCurve(render, segment, &walk);
    }
    if (FanDraw(render, end, walk.corners.side, 0) + fanned + walk.corners.drawn > 0) {
        SeamDraw(render, start, walk.corners.side, 1);
        SeamDraw(render, end, walk.corners.side, 0);
    }
    JoinBreak(render);
    EdgesDraw(render);
    CornersDraw(render, &walk.corners);
}

void RenderRecord(RENDER *render, const PATHREC *record)
{
    SEGWALK walk;
    SEGMENT segment;
    JOINT closing = {}; /* of the run that is being walked */
    JOINT start = {};
    int atStart = 1;
    SegWalkStart(record, PlaceInSpace(render->maskOrigin.x, render->maskOrigin.y), &walk);
    for (SEGWALK before = walk; SegWalkNext(&walk, &segment); before = walk) {
        if (segment.kind == PATHNODE_START) atStart = 1;
        if (!SegmentIsDrawn(&segment)) continue;
        if (atStart) {
            ClosingJoint(before, &closing);
            start = closing;
            atStart = 0;
        }
        JOINT end = {EndPoint(&segment), EndTangent(&segment), {0, 0}, 0};
        SEGWALK ahead = walk;
        SEGMENT next;
        if (NextOfRun(&ahead, &next)) {
            end.after = StartTangent(&next);
            end.joined = 1;
        } else if (closing.joined) {
            end = closing;
        }
        RenderSegment(render, &segment, &start, &end);
        start = end;
    }
}

POINTDB Origin(const struct tagPOINT *point)
{
    if (!point) return {0, 0};
    return {static_cast<double>(point->x), static_cast<double>(point->y)};
}

/* One band: fragments, and what becomes of them. 0 without memory for its plane. */
int RenderBand(RENDER *render, const PATHREC **cursor, int32_t top, int32_t bottom, PATHBUF colourBuf, PATHBUF alphaBuf)
{
    const BUFINFO colour = BufInfo(colourBuf);
    render->abuf.plane = ZrPathBufAlloc(planeBits, colour.width, bottom - top);
    if (!render->abuf.plane) return 0;
    render->abuf.info = BufInfo(render->abuf.plane);
    const int64_t pixels = static_cast<int64_t>(render->abuf.info.width) * render->abuf.info.height;
    render->budget = samplesOfPixel * std::max(pixels, leastPixels);
    for (; *cursor && (*cursor)->nextPath; *cursor = (*cursor)->nextPath) RenderRecord(render, *cursor);
    ABufResolve(&render->abuf, bottom, top, colour.width, colourBuf, alphaBuf);
    FragPoolFree(&render->abuf.pool);
    ZrPathBufFree(render->abuf.plane);
    return 1;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathABufRender(PATHREC *path, const POINTFXMAT3D *camera, PATHBUF colourBuf, PATHBUF alphaBuf,
                                   intptr_t, const struct tagPOINT *outOrigin, const struct tagPOINT *maskOrigin,
                                   const uint32_t *colour, PATHBUF mask, PATHBUF surface, intptr_t, intptr_t, intptr_t,
                                   intptr_t, intptr_t, intptr_t, intptr_t, int32_t glass, intptr_t, int32_t width,
                                   int32_t scale, int32_t profile, int32_t invert, const double *light, int32_t)
{
    if (!path || !camera || !colourBuf || !alphaBuf || !mask || !SurfaceHeapInit()) return 0;
    ProfileTableBuild(profile, width, scale, invert);
    FacingWideBy(width);
    EdgeTablesBuild();

    RENDER render = {};
    SpaceFromTransform(camera, &render.space);
    render.material = {colour ? *colour : 0, glass, light, nullptr};
    /* A buffer of another depth has no pixels here. */
    render.mask = mask;
    render.maskInfo = BufInfo(mask);
    if (render.maskInfo.pixelSize != 4) render.maskInfo = {};
    render.surfaceInfo = BufInfo(surface);
    render.surface = render.surfaceInfo.pixelSize == sizeof(SURFVEC16) ? surface : nullptr;
    render.maskOrigin = Origin(maskOrigin);
    render.outOrigin = Origin(outOrigin);
    render.width = width;
    const auto [lowest, highest] =
        std::minmax_element(PROFILETBL, PROFILETBL + static_cast<int>(profileSteps),
                            [](const PROFILEENTRY &a, const PROFILEENTRY &b) { return a.height < b.height; });
    render.lowest = lowest->height;
    render.highest = highest->height;

    /* The records are rendered once, into the first band; later bands, and the last record of the chain, come out
     * empty, deliberately. */
    const PATHREC *cursor = path;
    const int32_t height = BufInfo(colourBuf).height;
    const POINTDB origin = render.outOrigin;
    int result = 1;
    for (int32_t top = 0; result; top += bandRows) {
        const int32_t bottom = std::min(height - top, bandRows) + top;
        render.outOrigin.y = origin.y + top;
        result = RenderBand(&render, &cursor, top, bottom, colourBuf, alphaBuf);
        if (top > height - bandRows) break;
    }
    StripsFree(&render);
    GlassAlphaFree(&render.material);
    return result;
}

} // extern "C"

} // namespace zr32
