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

/* A segment under way. */
struct SEGMENTWALK {
    POINTDB start;
    double tolerance;
    MITRE mitre;
};

void DrawAt(RENDER *render, SEGMENTWALK *walk, const POINTDB &at, const POINTDB &tangent)
{
    SECTION section;
    SectionAt(render, walk->start, at, tangent, walk->tolerance, &walk->mitre, &section);
    if (section.reach.x == 0 && section.reach.y == 0)
        JoinBreak(render);
    else
        SectionDraw(render, &section);
}

/* 1 when a step between two points of the picture is longer than the limit on an axis of the output. */
double ProjectedStep(const RENDER *render, const POINTDB &a, const POINTDB &b)
{
    const POINTDB d = ProjectFlat(render, b) - ProjectFlat(render, a);
    return std::max(std::fabs(d.x), std::fabs(d.y));
}

void WalkLine(RENDER *render, const SEGMENT *segment)
{
    const POINTDB from = segment->p[0];
    const POINTDB to = segment->p[1];
    if (from.x == to.x && from.y == to.y) return;
    render->abuf.edgeId++;
    SEGMENTWALK walk = {from, toleranceOfLine, {}};
    LINESTEP step;
    LineStart(from, to, &step);
    while (step.h > 1 && (ProjectedStep(render, from, from + step.d) > 1 || ProjectedStep(render, to - step.d, to) > 1))
        LineHalve(&step);
    if (step.h > 1) LineHalve(&step); /* within half a pixel */
    for (int64_t t = 0; t < parameterEnd; t += step.h)
        DrawAt(render, &walk, from + step.d * static_cast<double>(t / step.h), to - from);
    DrawAt(render, &walk, to, to - from);
}

double CurveStepOnOutput(const RENDER *render, const CURVESTEP *step)
{
    return ProjectedStep(render, step->pos * subPixelOfStep, (step->pos + step->d) * subPixelOfStep);
}

void WalkCurve(RENDER *render, const SEGMENT *segment)
{
    render->abuf.edgeId++;
    SEGMENTWALK walk = {segment->p[0], toleranceOfCurve, {}};
    CURVESTEP step;
    CurveStart(segment->p, &step);
    POINTDB tangent = {0, 0};
    while (step.t < parameterEnd) {
        if (step.t + 2 * step.h <= parameterEnd && CurveStepOnOutput(render, &step) < shortestCurveStep)
            CurveDouble(&step);
        while (step.h > 1 && (step.t + step.h > parameterEnd || CurveStepOnOutput(render, &step) > longestCurveStep))
            CurveHalve(&step);
        if (step.d.x != 0 || step.d.y != 0) {
            tangent = step.d;
            DrawAt(render, &walk, step.pos * subPixelOfStep, tangent);
        }
        CurveAdvance(&step);
    }
    if (tangent.x != 0 || tangent.y != 0) DrawAt(render, &walk, segment->p[3], tangent);
}

void RenderRecord(RENDER *render, const PATHREC *record)
{
    SEGWALK walk;
    SEGMENT segment;
    for (SegWalkStart(record, PlaceInSpace(render->maskOrigin.x, render->maskOrigin.y), &walk);
         SegWalkNext(&walk, &segment);) {
        JoinBreak(render);
        if (segment.kind == PATHNODE_LINE) WalkLine(render, &segment);
        if (segment.kind == PATHNODE_CURVE) WalkCurve(render, &segment);
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
    for (; *cursor && (*cursor)->nextPath; *cursor = (*cursor)->nextPath) RenderRecord(render, *cursor);
    ABufResolve(&render->abuf, bottom, top, colour.width, colourBuf, alphaBuf);
    FragPoolFree(&render->abuf.pool);
    ZrPathBufFree(render->abuf.plane);
    return 1;
}

} // namespace

extern "C" {

int32_t ZrPathABufRender(PATHREC *path, const POINTFXMAT3D *camera, PATHBUF colourBuf, PATHBUF alphaBuf, intptr_t,
                         const struct tagPOINT *outOrigin, const struct tagPOINT *maskOrigin, const uint32_t *colour,
                         PATHBUF mask, PATHBUF surface, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t,
                         intptr_t, int32_t glass, intptr_t, int32_t width, int32_t scale, int32_t profile,
                         int32_t invert, const double *light, int32_t)
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
