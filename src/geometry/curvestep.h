/* curvestep.h - the curve stepper: a cubic by forward differences with a step that is halved and doubled.
 *
 * Every walker of curves uses it: scan converter, plotters, display, sweep, mitre fill, 3D walk. They differ in the
 * rule, when a step is halved or doubled, and in what a sample is for; rule and use stay with the walker.
 *
 * With P(t) the cubic on t = 0 .. 1, a step of h = 1/4 at first, positions in 1/65536 pixel (x 65536 = 2^16):
 *   ddd = 6 h^3 (P3 - 3 P2 + 3 P1 - P0)           = (3 (P1 - P2) + (P3 - P0)) x 6144
 *   dd  = second difference, taken one step back  = a - 3 ddd,  a = ((P1 - P2) - (P2 - P3)) x 24576
 *   d   = first difference                        = ((P3 - P0) x 8192 + ddd) x 2 - dd / 2 - a
 * All factors of the halving and doubling are powers of two, so only the sums round.
 */
#ifndef ZR32_CURVESTEP_H
#define ZR32_CURVESTEP_H

#include "geometry/vector.h"
#include <cstdint>

namespace zr32 {

constexpr double subPixelOfStep = 1.52587890625e-05; /* 1 / 65536 */
constexpr int64_t parameterEnd = 0x10000;

struct CURVESTEP {
    POINTDB pos; /* 1/65536 pixel, like the differences */
    POINTDB d;
    POINTDB dd;
    POINTDB ddd;
    int64_t t; /* parameter, 0 to 0x10000 */
    int64_t h; /* its step; in 64 bits, since a very short curve may double it beyond 32 */
};

inline void CurveStart(const POINTDB *p, CURVESTEP *step)
{
    const POINTDB p12 = p[1] - p[2];
    const POINTDB p03 = p[3] - p[0];
    const POINTDB a = (p12 - (p[2] - p[3])) * 24576;
    step->ddd = (p12 * 3 + p03) * 6144;
    step->dd = a - step->ddd * 3;
    step->d = (p03 * 8192 + step->ddd) * 2 - step->dd * 0.5 - a;
    step->pos = p[0] * 65536;
    step->t = 0;
    step->h = 0x4000;
}

inline void CurveHalve(CURVESTEP *step)
{
    step->ddd = step->ddd * 0.125;
    step->dd = step->dd * 0.25 - step->ddd;
    step->d = step->d * 0.5 - step->dd * 0.5;
    step->h >>= 1;
}

inline void CurveDouble(CURVESTEP *step)
{
    step->ddd = step->ddd * 8;
    step->d = step->d * 2 + step->dd;
    step->dd = step->dd * 4 + step->ddd * 0.5;
    step->h *= 2;
}

inline void CurveAdvance(CURVESTEP *step)
{
    step->pos = step->pos + step->d;
    step->d = step->d + step->dd;
    step->dd = step->dd + step->ddd;
    step->t += step->h;
}

/* 1 when a component of d is longer than the limit; a d that is not a number is not. */
inline int CurveStepAbove(const CURVESTEP *step, double limit)
{
    return std::fabs(step->d.x) > limit || std::fabs(step->d.y) > limit;
}

/* 1 when both components of d are shorter than the limit. */
inline int CurveStepBelow(const CURVESTEP *step, double limit)
{
    return std::fabs(step->d.x) < limit && std::fabs(step->d.y) < limit;
}

/* A straight line in equal steps: an eighth at first, halved while a component is longer than a pixel. */
struct LINESTEP {
    POINTDB d;
    int64_t h; /* step of the parameter that runs from 0 to 0x10000; never below 1 */
};

inline void LineStart(const POINTDB &from, const POINTDB &to, LINESTEP *step)
{
    step->d = (to - from) * 0.125;
    step->h = 0x2000;
}

inline void LineHalve(LINESTEP *step)
{
    step->d = step->d * 0.5;
    step->h >>= 1;
}

/* Halves until neither component exceeds one pixel, but never below a parameter step of 1. */
inline void LineFit(LINESTEP *step)
{
    while ((std::fabs(step->d.x) > 1.0 || std::fabs(step->d.y) > 1.0) && step->h > 1) LineHalve(step);
}

} // namespace zr32

#endif
