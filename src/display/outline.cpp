/* outline.cpp - one record's outline stepped into the display buffer, pixel by pixel.
 *
 * In come a record and a view's plane; out go bytes that are one higher or one lower along a thin, connected chain of
 * pixels per segment. Everything here is deterministic and knows no other clip than the segment's own box: hiding must
 * find the pixels that drawing found. A segment whose box misses the view costs that test and nothing more.
 */
#include "display/display.h"
#include "geometry/box.h"
#include "geometry/curvestep.h"
#include "geometry/minoraxis.h"

#include <cstdlib>

namespace zr32 {

namespace {

/* Limits of a curve's step in 1/65536 pixel: halved above the one, doubled below the other. */
constexpr double stepLongest = 64000;
constexpr double stepShortest = 32000;

/* What the samples of one segment share. */
struct PIXELCHAIN {
    const DISPLAYPLANE *plane;
    RECT rect;  /* of the segment; nothing is written outside */
    POINT last; /* the pixel touched last */
    uint8_t sign;
    int straight;
};

/* Pixel and place in it. A negative position lies, oddly but deliberately, in pixel -1 however far out it is. */
int32_t SplitPosition(double position, double *fraction)
{
    const int32_t pixel = TruncInt(position);
    *fraction = position - (std::fabs(position) < 2147483648.0 ? pixel : std::trunc(position));
    if (!(*fraction < 0)) return pixel;
    *fraction += 1;
    return -1;
}

/* 1 when the pixel or a neighbour of it may lie in the segment's rectangle. */
int InReach(const PIXELCHAIN *chain, const POINT &pixel)
{
    const RECT &rect = chain->rect; /* within the view, so its edges can be moved by 1 */
    return pixel.x >= rect.left - 1 && pixel.x <= rect.right && pixel.y >= rect.top - 1 && pixel.y <= rect.bottom;
}

void TouchPixel(PIXELCHAIN *chain, const POINT &pixel)
{
    const RECT &rect = chain->rect;
    if (pixel.x < rect.left || pixel.x >= rect.right || pixel.y < rect.top || pixel.y >= rect.bottom) return;
    const DISPLAYPLANE *plane = chain->plane;
    const int64_t index = int64_t{pixel.y} * plane->stride + pixel.x;
    if (index < plane->size) plane->pixels[index] = static_cast<uint8_t>(plane->pixels[index] + chain->sign);
    chain->last = pixel;
}

/* One sample at parameter t, axis and slope being those of the segment there. */
void TouchSample(PIXELCHAIN *chain, const POINTDB &position, int64_t t, MAINAXIS axis, double slope)
{
    double fx;
    double fy;
    const POINT pixel = {SplitPosition(position.x, &fx), SplitPosition(position.y, &fy)};
    if (t == 0) chain->last = {WrapAdd(pixel.x, 5), WrapAdd(pixel.x, 5)}; /* touched by nothing near */
    if (!InReach(chain, pixel)) return;
    if (t == parameterEnd) {
        const int64_t dx = int64_t{pixel.x} - chain->last.x;
        const int64_t dy = int64_t{pixel.y} - chain->last.y;
        if (dx == 0 && dy == 0) return;
        if (std::abs(dx) < 2 && std::abs(dy) < 2) {
            TouchPixel(chain, pixel);
            return;
        }
    }
    const MINORCHOICE choice = ChooseMinor(axis, slope, fx, fy);
    const uint8_t nearByte = static_cast<uint8_t>(255 - TruncByte(choice.distance));
    POINT target = pixel;
    if (NeighbourWins(choice, nearByte, chain->straight))
        target = {WrapAdd(pixel.x, choice.dx), WrapAdd(pixel.y, choice.dy)};
    if (target.x != chain->last.x || target.y != chain->last.y) TouchPixel(chain, target);
}

void StepLine(PIXELCHAIN *chain, const POINTDB *p)
{
    LINESTEP step;
    LineStart(p[0], p[1], &step);
    LineFit(&step);
    const MAINAXIS axis = MainAxis(step.d);
    const double slope = MinorSlope(step.d, axis);
    POINTDB position = p[0];
    for (int64_t t = 0; t <= parameterEnd; t += step.h) {
        TouchSample(chain, position, t, axis, slope);
        position = position + step.d;
    }
}

/* Halves a step that is too long; else doubles one that is too short, unless it is as a halving or doubling left it,
 * which would go back and forth for ever. */
void FitCurveStep(CURVESTEP *step, POINTDB *adjusted)
{
    for (;;) {
        while (CurveStepAbove(step, stepLongest) && step->h > 1) {
            CurveHalve(step);
            *adjusted = step->d;
        }
        const int moved = step->d.x != adjusted->x || step->d.y != adjusted->y;
        if (!moved || !CurveStepBelow(step, stepShortest)) return;
        CurveDouble(step);
        *adjusted = step->d;
    }
}

/* box is that of the four points. */
void StepCurve(PIXELCHAIN *chain, const POINTDB *p, const BOXDB &box)
{
    CURVESTEP step;
    CurveStart(p, &step);
    POINTDB adjusted = {0, 0};
    MAINAXIS before = MAINLY_VERTICAL;
    while (step.t <= parameterEnd) {
        FitCurveStep(&step, &adjusted);
        const MAINAXIS axis = AxisOfSample(step.d, step.t, &before);
        const POINTDB position = step.pos * subPixelOfStep;
        if (PointInBox(position, box, 1)) TouchSample(chain, position, step.t, axis, MinorSlope(step.d, axis));
        CurveAdvance(&step);
    }
}

/* Steps a line (two points) or a curve (four) whose box meets the view. */
void StepSegment(const DISPLAYPLANE *plane, uint8_t sign, const POINTDB *p, int points, RECT *dirty)
{
    const BOXDB box = BoxOfPoints(p, points);
    PIXELCHAIN chain = {plane, {}, {}, sign, points == 2};
    RECT pixels = {TruncInt(box.left), TruncInt(box.top), TruncInt(box.right), TruncInt(box.bottom)};
    InflateRect(&pixels, 1, 1);
    if (!IntersectRect(&chain.rect, &pixels, &plane->clip)) return;
    if (points == 2)
        StepLine(&chain, p);
    else
        StepCurve(&chain, p, box);
    UnionRect(dirty, dirty, &chain.rect);
}

/* ---- which segments touch a selected node ---- */

/* Of a segment whose own node is not selected. */
int BesideSelected(const PATHREC *path, const SEGMENT *segment)
{
    if (segment->kind == PATHNODE_CURVE && NodeSelected(segment->node + 2)) return 1;
    if (segment->index == 1) return PathEndSelected(path);
    return segment->kind == PATHNODE_LINE && segment->index > 0 &&
           (segment->node[-1].type & PATHNODE_KINDSELMASK) == (PATHNODE_CURVE | PATHNODE_SELECTED);
}

} // namespace

int PathEndSelected(const PATHREC *path)
{
    const PATHNODE *end = path->nodes + path->nodeCount;
    if (NodeSelected(end - 1)) return 1;
    return path->nodeCount >= 3 && NodeKind(end - 1) == PATHNODE_CURVE && NodeSelected(end - 3);
}

int PathOutlineToDB(const PATHREC *path, const DISPLAYPLANE *plane, OUTLINEMODE mode, RECT *dirty)
{
    if (!path) return 1;
    const uint8_t sign = mode == OUTLINE_DRAW || mode == OUTLINE_DRAWSEGMENTS ? 1 : 255;
    const int segmentsOnly = path->flags == PATHREC_NODEEDIT && mode != OUTLINE_DRAW && mode != OUTLINE_HIDE;
    int inSegment = 0;
    SEGWALK walk;
    SEGMENT segment;
    for (SegWalkStart(path, plane->place, &walk); SegWalkNext(&walk, &segment);) {
        /* The outlines of shapes exist as lines and curves of their records; a start only moves. */
        if (segment.kind != PATHNODE_LINE && segment.kind != PATHNODE_CURVE) continue;
        if (segmentsOnly) {
            const int selected = NodeSelected(segment.node);
            if (!inSegment && !selected && !BesideSelected(path, &segment)) continue;
            /* The segment behind a selected node is stepped too. A second selected node in a row ends that,
             * deliberately, and a start does not. */
            inSegment = selected && !inSegment;
        }
        if (segment.kind == PATHNODE_CURVE)
            StepSegment(plane, sign, segment.p, 4, dirty);
        else if (segment.p[0].x != segment.p[1].x || segment.p[0].y != segment.p[1].y)
            StepSegment(plane, sign, segment.p, 2, dirty);
    }
    return 1;
}

} // namespace zr32
