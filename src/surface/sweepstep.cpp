/* sweepstep.cpp - the samples of a line and of a curve.
 *
 * Comes in: a segment in map pixels. Goes out: samples with point, tangent, normals and the chosen side, each handed to
 * the sweep's useSample. A line is stepped evenly, a curve by halving and doubling: samples stand 0.3 to 0.6 pixel
 * apart, and where the rays of a bevel fan out, as close as keeps their far ends within half a pixel.
 */
#include "surface/sweep.h"

namespace zr32 {

/* ---- lines ---- */

/* A tangent so short that the vote and a corner could not make anything of it grows by tens; the samples then overrun
 * the line's end a little, which is accepted. */
static void StretchShortLine(double shortest, LINESTEP *step)
{
    while (std::fabs(step->d.x) < shortest && std::fabs(step->d.y) < shortest) step->d = step->d * 10;
}

void SweepLine(const SEGMENT *segment, SWEEP *sweep)
{
    const POINTDB from = segment->p[0];
    const POINTDB to = segment->p[1];
    if (to.x == from.x && to.y == from.y) return;

    LINESTEP step;
    LineStart(from, to, &step);
    StretchShortLine(sweep->rules->shortestLine, &step);
    LineFit(&step);
    OutlineNormals(step.d, &sweep->n1, &sweep->n2);
    if (step.d.x != 0 && step.d.y != 0) {
        if (step.h > 1) LineHalve(&step);
        sweep->rayStep = 0.5;
    }
    sweep->onCurve = 0;
    sweep->t = step.d;
    sweep->p = from;
    for (sweep->at = 0; sweep->at <= parameterEnd; sweep->at += step.h) {
        ChooseSideOnLine(step.h, sweep);
        sweep->rules->useSample(sweep);
        sweep->p = sweep->p + sweep->t;
    }
}

/* ---- curves ---- */

/* A sample may be made only when no component of the way to the next exceeds the first limit; below the second the
 * step doubles. In 1/65536 pixel. */
constexpr double longestCurveStep = 40000;
constexpr double shortestCurveStep = 20000;

/* A curve of no extent would double its step without end. */
constexpr int64_t mostCurveStep = int64_t{1} << 60;

struct CURVEWALK {
    CURVESTEP step;
    POINTDB lastHalved; /* d after the last halving; to double it would only undo that */
    POINTDB end;        /* the curve's last point */
    int started;
};

static void WalkHalve(CURVEWALK *walk)
{
    CurveHalve(&walk->step);
    walk->lastHalved = walk->step.d;
}

/* Longer than allowed, and the step not yet as short as it gets. */
static int MustHalve(const CURVEWALK *walk)
{
    return CurveStepAbove(&walk->step, longestCurveStep) && walk->step.h > 1;
}

static int MayDouble(const CURVEWALK *walk)
{
    const POINTDB d = walk->step.d;
    return !(d.x == walk->lastHalved.x && d.y == walk->lastHalved.y) && walk->step.h < mostCurveStep;
}

/* After an advance beyond the end: the last sample stands on the end point, its tangent is the way there from the
 * position before. */
static void StepToEnd(CURVEWALK *walk)
{
    CURVESTEP *const step = &walk->step;
    step->dd = step->dd - step->ddd;
    step->d = step->pos - (step->d - step->dd);
    step->pos = walk->end * 65536;
    step->d = step->pos - step->d;
    step->t = parameterEnd;
    step->h = 0;
}

static void MakeSample(const CURVESTEP *step, int mayVote, SWEEP *sweep)
{
    sweep->at = step->t;
    sweep->t = step->d * subPixelOfStep;
    sweep->p = step->pos * subPixelOfStep;
    OutlineNormals(sweep->t, &sweep->n1, &sweep->n2);
    if (sweep->t.x != 0 && sweep->t.y != 0) sweep->rayStep = 0.5;
    ChooseSideOnCurve(step, mayVote, sweep);
}

/* Where the walk along a curve that watches its fans stands. */
enum CURVESTATE {
    CURVE_TURN,   /* a new step is begun */
    CURVE_PROBE,  /* would a ray cast here stay with the one before? */
    CURVE_LIMITS, /* is the step within its limits? */
    CURVE_GROW,   /* it may grow */
    CURVE_SAMPLE, /* it fits */
    CURVE_DONE
};

static CURVESTATE CurveTurn(const CURVEWALK *walk)
{
    if (walk->step.t > parameterEnd) return CURVE_DONE;
    const int underWay = walk->step.t != 0 || walk->started;
    return underWay && CurveStepBelow(&walk->step, longestCurveStep) ? CURVE_PROBE : CURVE_LIMITS;
}

static CURVESTATE CurveLimits(CURVEWALK *walk)
{
    if (MustHalve(walk)) {
        WalkHalve(walk);
        return CURVE_TURN;
    }
    return CurveStepBelow(&walk->step, shortestCurveStep) ? CURVE_GROW : CURVE_SAMPLE;
}

/* The side is chosen for the probe as for a sample, and stays chosen. */
static CURVESTATE CurveProbe(CURVEWALK *walk, SWEEP *sweep)
{
    MakeSample(&walk->step, 0, sweep);
    if (!sweep->fanning || (walk->step.t == 0 && !walk->started) || walk->step.h < 2) return CURVE_LIMITS;
    POINTDB end = sweep->p + sweep->n * sweep->reach;
    if (walk->started) end = end + sweep->t;
    if (std::fabs(end.x - sweep->lastEnd.x) > 0.5 || std::fabs(end.y - sweep->lastEnd.y) > 0.5) {
        WalkHalve(walk);
        return CURVE_TURN;
    }
    return CURVE_GROW;
}

static CURVESTATE CurveGrow(CURVEWALK *walk)
{
    if (!MayDouble(walk)) return CURVE_SAMPLE;
    CurveDouble(&walk->step);
    return CURVE_PROBE;
}

static CURVESTATE CurveSample(CURVEWALK *walk, SWEEP *sweep)
{
    CURVESTEP *const step = &walk->step;
    MakeSample(step, 1, sweep);
    if (!walk->started) {
        walk->started = 1;
        if (Dot(step->d + step->dd, sweep->n) < 0) return CURVE_PROBE;
    }
    sweep->rules->useSample(sweep);
    if (step->t == parameterEnd) return CURVE_DONE;
    CurveAdvance(step);
    if (step->t > parameterEnd) {
        StepToEnd(walk);
        return CURVE_SAMPLE;
    }
    sweep->fanning = Dot(step->d, sweep->n) < 0;
    return CURVE_TURN;
}

static void WalkCurveWithFans(CURVEWALK *walk, SWEEP *sweep)
{
    CURVESTATE state = CURVE_TURN;
    while (state != CURVE_DONE) {
        switch (state) {
        case CURVE_TURN: state = CurveTurn(walk); break;
        case CURVE_PROBE: state = CurveProbe(walk, sweep); break;
        case CURVE_LIMITS: state = CurveLimits(walk); break;
        case CURVE_GROW: state = CurveGrow(walk); break;
        case CURVE_SAMPLE: state = CurveSample(walk, sweep); break;
        case CURVE_DONE: break;
        }
    }
}

static void WalkCurvePlainly(CURVEWALK *walk, SWEEP *sweep)
{
    CURVESTEP *const step = &walk->step;
    for (;;) {
        if (MustHalve(walk)) {
            WalkHalve(walk);
            continue;
        }
        if (CurveStepBelow(step, shortestCurveStep) && MayDouble(walk)) {
            CurveDouble(step);
            continue;
        }
        MakeSample(step, 1, sweep);
        sweep->rules->useSample(sweep);
        if (step->t == parameterEnd) return;
        CurveAdvance(step);
        if (step->t > parameterEnd) {
            StepToEnd(walk);
            MakeSample(step, 1, sweep);
            sweep->rules->useSample(sweep);
            return;
        }
    }
}

void SweepCurve(const SEGMENT *segment, SWEEP *sweep)
{
    CURVEWALK walk;
    CurveStart(segment->p, &walk.step);
    walk.lastHalved = segment->p[3] - segment->p[0];
    walk.end = segment->p[3];
    walk.started = 0;
    sweep->onCurve = 1;
    if (sweep->rules->followFans)
        WalkCurveWithFans(&walk, sweep);
    else
        WalkCurvePlainly(&walk, sweep);
}

} // namespace zr32
