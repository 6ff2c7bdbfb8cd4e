/* plot.cpp - the two outline plotters, one stepping procedure with the plotter's rules as its parameter.
 *
 * Comes in: a record and two planes. Goes out: a connected line one pixel wide. A segment is sampled in steps of less
 * than a pixel; at each sample the distance of the line from the pixel's centre, along the minor axis, decides between
 * the pixel and its neighbour, or how the smooth plotter divides 255 between the two.
 */
#include "raster/plot.h"

#include "geometry/curvestep.h"
#include "geometry/minoraxis.h"

#include <algorithm>
#include <cstring>

namespace zr32 {

namespace {

/* Rules of a plotter. Limits of a curve's step in 1/65536 pixel; shortest 0: a step is never doubled. */
struct PLOTRULE {
    int smooth;
    double longest;
    double shortest;
};

constexpr double pixelStep = 65536;
constexpr PLOTRULE hardRule = {0, 60000, 0};
constexpr PLOTRULE smoothRule = {1, 0.9 * pixelStep, 0.4 * pixelStep};

struct PIXEL {
    int32_t x;
    int32_t y;
};

struct PLOTTER {
    const PLOTPLANES *planes;
    const PLOTRULE *rule;
    PIXEL last; /* plotted; kept from segment to segment of a record */
};

/* What the samples of one stretch share. */
struct STRETCH {
    MAINAXIS axis;
    double slope;
    uint8_t direction;
    int straight;
};

int SamePixel(const PIXEL &a, const PIXEL &b)
{
    return a.x == b.x && a.y == b.y;
}

int AdjacentPixels(const PIXEL &a, const PIXEL &b)
{
    return std::abs(int64_t{a.x} - b.x) < 2 && std::abs(int64_t{a.y} - b.y) < 2;
}

uint8_t Direction(double dy)
{
    return dy > 0 ? dirDown : dy < 0 ? dirUp : dirBoth;
}

/* A pixel's first byte in one of the planes; null outside, where nothing is plotted. */
uint8_t *PixelOf(PATHBUF plane, const BUFINFO &info, const PIXEL &at)
{
    if (!BufHasPixel(info, at.x, at.y)) return nullptr;
    return BufRow(plane, info, at.y) + static_cast<size_t>(at.x) * info.pixelSize;
}

void MergeDirection(const PLOTTER *plotter, const PIXEL &at, uint8_t direction)
{
    uint8_t *code = PixelOf(plotter->planes->directions, plotter->planes->info, at);
    if (code) *code = DirMerge(*code, direction);
}

void SetPixel(const PLOTPLANES *planes, const PIXEL &at)
{
    uint8_t *pixel = PixelOf(planes->mask, planes->info, at);
    if (!pixel) return;
    if (planes->info.bits == 32)
        memset(pixel, 0, 4);
    else
        *pixel = 255;
}

void RaisePixel(const PLOTPLANES *planes, const PIXEL &at, uint8_t value)
{
    uint8_t *pixel = PixelOf(planes->mask, planes->info, at);
    if (pixel) *pixel = std::max(*pixel, value);
}

/* One sample at parameter t. 0 when it has ended the segment. */
int PlotSample(const POINTDB &position, int64_t t, const STRETCH &stretch, PLOTTER *plotter)
{
    const PLOTPLANES *planes = plotter->planes;
    const PIXEL pixel = {TruncInt(position.x), TruncInt(position.y)};
    const MINORCHOICE choice = ChooseMinor(stretch.axis, stretch.slope, position.x - pixel.x, position.y - pixel.y);
    const uint8_t farByte = TruncByte(choice.distance);
    const uint8_t nearByte = static_cast<uint8_t>(255 - farByte);
    const PIXEL neighbour = {WrapAdd(pixel.x, choice.dx), WrapAdd(pixel.y, choice.dy)};
    PIXEL winner = NeighbourWins(choice, nearByte, stretch.straight) ? neighbour : pixel;

    /* A vertex at which the outline may turn. */
    if (t == 0 && SamePixel(pixel, plotter->last)) MergeDirection(plotter, pixel, stretch.direction);
    if (t == parameterEnd) {
        if (SamePixel(pixel, plotter->last)) return 0;
        if (AdjacentPixels(pixel, plotter->last)) winner = pixel;
    }
    if (plotter->rule->smooth) {
        RaisePixel(planes, pixel, nearByte);
        RaisePixel(planes, neighbour, farByte);
    } else {
        SetPixel(planes, winner);
    }
    if (!SamePixel(winner, plotter->last)) {
        plotter->last = winner;
        MergeDirection(plotter, winner, stretch.direction);
    }
    return 1;
}

void PlotLine(const POINTDB &from, const POINTDB &to, PLOTTER *plotter)
{
    if (from.x == to.x && from.y == to.y) return;
    LINESTEP step;
    LineStart(from, to, &step);
    LineFit(&step);
    const MAINAXIS axis = MainAxis(step.d);
    const STRETCH stretch = {axis, MinorSlope(step.d, axis), Direction(step.d.y), 1};
    POINTDB position = from;
    for (int64_t t = 0; t <= parameterEnd; t += step.h) {
        if (!PlotSample(position, t, stretch, plotter)) return;
        position = position + step.d;
    }
}

/* The last sample of a curve lies on its end: where the step passes the parameter's end it is moved there. */
void PlotCurve(const POINTDB *p, PLOTTER *plotter)
{
    const PLOTRULE *rule = plotter->rule;
    CURVESTEP step;
    CurveStart(p, &step);
    MAINAXIS before = MAINLY_VERTICAL;
    for (;;) {
        while (CurveStepAbove(&step, rule->longest) && step.h > 1) CurveHalve(&step);
        const MAINAXIS axis = AxisOfSample(step.d, step.t, &before);
        const STRETCH stretch = {axis, MinorSlope(step.d, axis), Direction(step.d.y), 0};
        if (!PlotSample(step.pos * subPixelOfStep, step.t, stretch, plotter) || step.t == parameterEnd) return;
        const int isShort = CurveStepBelow(&step, rule->shortest);
        CurveAdvance(&step);
        if (isShort) CurveDouble(&step);
        if (step.t > parameterEnd) {
            step.pos = p[3] * 65536;
            step.t = parameterEnd;
        }
    }
}

/* ---- ellipses ---- */

/* Half a unit circle as a rational quadratic, from (1, 0) over (0, 1) to (-1, 0): numerator (1 - 2t, 2t - 2t^2), weight
 * 1 - 2t + 2t^2, both times 32768, stepped by forward differences from a first step of 1/4; x has no second one. */
struct CONICSTEP {
    double x, y, weight;
    double dx, dy, dWeight;
    double ddy, ddWeight;
    int64_t t;
    int64_t h;
};

constexpr CONICSTEP conicStart = {32768, 0, 32768, -16384, 12288, -12288, -8192, 8192, 0, 0x4000};

void ConicHalve(CONICSTEP *step)
{
    step->ddy *= 0.25;
    step->ddWeight *= 0.25;
    step->dx *= 0.5;
    step->dy = (step->dy - step->ddy) * 0.5;
    step->dWeight = (step->dWeight - step->ddWeight) * 0.5;
    step->h >>= 1;
}

void ConicDouble(CONICSTEP *step)
{
    step->dx *= 2;
    step->dy = step->dy * 2 + step->ddy;
    step->dWeight = step->dWeight * 2 + step->ddWeight;
    step->ddy *= 4;
    step->ddWeight *= 4;
    step->h *= 2;
}

void ConicAdvance(CONICSTEP *step)
{
    step->x += step->dx;
    step->y += step->dy;
    step->weight += step->dWeight;
    step->dy += step->ddy;
    step->dWeight += step->ddWeight;
    step->t += step->h;
}

/* The half axes of a turned ellipse. */
struct ELLIPSEAXES {
    POINTDB first;
    POINTDB second;
};

/* From the ellipse's centre, now and one step on. */
POINTDB ConicPoint(const ELLIPSEAXES &axes, double x, double y, double weight)
{
    return (axes.first * x + axes.second * y) * (1 / weight);
}

POINTDB ConicMove(const ELLIPSEAXES &axes, const CONICSTEP &step)
{
    return ConicPoint(axes, step.x + step.dx, step.y + step.dy, step.weight + step.dWeight) -
           ConicPoint(axes, step.x, step.y, step.weight);
}

int MovesAbove(const POINTDB &move, double limit)
{
    return std::fabs(move.x) > limit || std::fabs(move.y) > limit;
}

int MovesBelow(const POINTDB &move, double limit)
{
    return std::fabs(move.x) < limit && std::fabs(move.y) < limit;
}

/* Halves a step that is too long, doubles one that is too short, not one that was halved just now. */
void ConicFit(const ELLIPSEAXES &axes, CONICSTEP *step)
{
    constexpr double longest = 0.9;
    constexpr double shortest = 0.4;
    int halved = 0;
    for (; MovesAbove(ConicMove(axes, *step), longest) && step->h > 1; halved = 1) ConicHalve(step);
    while (!halved && MovesBelow(ConicMove(axes, *step), shortest) && step->h < parameterEnd) ConicDouble(step);
}

/* Two halves in turn, the second being the first mirrored at the centre; each knows its own last pixel. corner and the
 * current point span the box before it is turned. */
void PlotEllipse(const POINTDB &current, const POINTDB &corner, double rotation, int reversed, PLOTTER *plotter)
{
    const POINTDB center = (current + corner) * 0.5;
    const POINTDB u = corner - center;
    const double c = std::cos(rotation);
    const double s = std::sin(rotation);
    const double sense = reversed ? -1.0 : 1.0;
    const ELLIPSEAXES axes = {{u.x * c, -u.x * s}, {u.y * s * sense, u.y * c * sense}};
    CONICSTEP step = conicStart;
    PLOTTER mirrored = *plotter;
    MAINAXIS before = MAINLY_VERTICAL;
    while (step.t <= parameterEnd) {
        ConicFit(axes, &step);
        const POINTDB move = ConicMove(axes, step);
        const POINTDB offset = ConicPoint(axes, step.x, step.y, step.weight);
        const MAINAXIS axis = AxisOfSample(move, step.t, &before);
        const double slope = MinorSlope(move, axis);
        PlotSample(center + offset, step.t, {axis, slope, Direction(move.y), 0}, plotter);
        PlotSample(center - offset, step.t, {axis, slope, Direction(-move.y), 0}, &mirrored);
        ConicAdvance(&step);
    }
}

void PlotRecord(const PATHREC *record, const PLACEMENT &place, const PLOTRULE &rule, const PLOTPLANES &planes)
{
    PLOTTER plotter = {&planes, &rule, {0, 0}};
    SEGWALK walk;
    SEGMENT segment;
    for (SegWalkStart(record, place, &walk); SegWalkNext(&walk, &segment);) {
        switch (segment.kind) {
        case PATHNODE_LINE: PlotLine(segment.p[0], segment.p[1], &plotter); break;
        case PATHNODE_CURVE: PlotCurve(segment.p, &plotter); break;
        case PATHNODE_ELLIPSE:
            if (rule.smooth)
                PlotEllipse(segment.p[0], PlaceNode(place, segment.node), FixToDouble(segment.node[1].x),
                            segment.node[1].type & 1, &plotter);
            break;
        default: break;
        }
    }
}

} // namespace

uint8_t DirMerge(uint8_t old, uint8_t added)
{
    switch (old) {
    case dirNone: return added;
    case dirDown: return added == dirUp ? dirBoth : dirDown;
    case dirUp: return added == dirDown ? dirBoth : dirUp;
    default: return dirBoth;
    }
}

void PathPlotHard(const PATHREC *record, const PLACEMENT &place, const PLOTPLANES &planes)
{
    PlotRecord(record, place, hardRule, planes);
}

void PathPlotSmooth(const PATHREC *record, const PLACEMENT &place, const PLOTPLANES &planes)
{
    PlotRecord(record, place, smoothRule, planes);
}

} // namespace zr32
