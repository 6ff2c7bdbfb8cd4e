/* minoraxis.h - which of two neighbouring pixels a thin line belongs to at one sample.
 *
 * A line that is mostly vertical lies, in the row of the sample, between two pixels side by side; a line that is mostly
 * horizontal between two pixels one above the other. Comes in: the sample's pixel and its place in it, the slope of the
 * minor axis against the major one. Goes out: how far the line passes from the pixel's centre, as a byte, and the
 * neighbour on that side. Masks and display share it; they differ in what a byte above or below their threshold means.
 */
#ifndef ZR32_MINORAXIS_H
#define ZR32_MINORAXIS_H

#include "geometry/vector.h"
#include <cstdint>

namespace zr32 {

enum MAINAXIS { MAINLY_VERTICAL, MAINLY_HORIZONTAL };

/* Both ways of a tangent: its main axis (vertical on a tie) and the slope, 0 where that would divide by 0. */
inline MAINAXIS MainAxis(const POINTDB &tangent)
{
    return std::fabs(tangent.x) <= std::fabs(tangent.y) ? MAINLY_VERTICAL : MAINLY_HORIZONTAL;
}

inline double MinorSlope(const POINTDB &tangent, MAINAXIS axis)
{
    const double major = axis == MAINLY_VERTICAL ? tangent.y : tangent.x;
    const double minor = axis == MAINLY_VERTICAL ? tangent.x : tangent.y;
    return major == 0 ? 0.0 : minor / major;
}

/* The axis by which a curve's sample is decided. Where the main axis has changed since the sample before, one sample
 * still goes by the old one, so that the pixels of both stretches join; not at the curve's ends, where t is whole. */
inline MAINAXIS AxisOfSample(const POINTDB &tangent, int64_t t, MAINAXIS *before)
{
    const MAINAXIS axis = MainAxis(tangent);
    const MAINAXIS used = t == 0 || t == 0x10000 ? axis : *before;
    *before = axis;
    return used;
}

struct MINORCHOICE {
    double distance; /* |s| x 255, s being how far the line passes from the pixel's centre; its low byte counts */
    int32_t dx;      /* from the pixel to the neighbour: one of the two is -1 or 1, the other 0 */
    int32_t dy;
    int backward; /* 1 when the neighbour lies to the left or above */
};

/* fx, fy: the place of the sample in its pixel. */
inline MINORCHOICE ChooseMinor(MAINAXIS axis, double k, double fx, double fy)
{
    const double s = axis == MAINLY_VERTICAL ? (fx - 0.5) + (0.5 - fy) * k : (fy - 0.5) + (0.5 - fx) * k;
    const int backward = !(s > 0);
    const int32_t side = backward ? -1 : 1;
    return {std::fabs(s) * 255, axis == MAINLY_VERTICAL ? side : 0, axis == MAINLY_VERTICAL ? 0 : side, backward};
}

/* 1 when the sample belongs to the neighbour. nearByte is 255 less the distance's byte. A straight line leaves its
 * pixel to the left or above one step sooner than a curve does, deliberately: both pixels of a tie would do, and which
 * one it is must not change. */
inline int NeighbourWins(const MINORCHOICE &choice, uint8_t nearByte, int straight)
{
    return nearByte < (straight && choice.backward ? 129 : 128);
}

} // namespace zr32

#endif
