/* nearest.cpp - the nearest point on a line and on a cubic, see nearest.h.
 *
 * The cubic by the method of Philip J. Schneider, "A Bezier curve-based root-finder", Graphics Gems, 1990: the
 * derivative of the squared distance, (C(u) - p) . C'(u), is a quintic; in Bezier form its sign changes bound its
 * roots, so halves without a change are dropped and the others are cut in two until a root is pinned down.
 */
#include "geometry/nearest.h"

#include <algorithm>
#include <bit>

namespace zr32 {

namespace {

constexpr int quintic = 5;
constexpr int depthMax = 64;
constexpr double flatError = 0x1p-65;

/* A control polygon of the quintic over a piece of the parameter: x is the parameter, y the value. */
struct QUINTIC {
    POINTDB p[quintic + 1];
    int depth;
};

/* Products of binomial coefficients of a quadratic (row, the derivative) and a cubic (column, the curve), over those
 * of the quintic of their sum. */
constexpr double formWeights[3][4] = {{1.0, 0.6, 0.3, 0.1}, {0.4, 0.6, 0.6, 0.4}, {0.1, 0.3, 0.6, 1.0}};

void QuinticOfDistance(const POINTDB *controls, const POINTDB &point, QUINTIC *form)
{
    form->depth = 0;
    for (int i = 0; i <= quintic; i++) form->p[i] = {i / 5.0, 0};
    for (int row = 0; row < 3; row++) {
        const POINTDB derivative = (controls[row + 1] - controls[row]) * 3;
        for (int column = 0; column < 4; column++)
            form->p[row + column].y += Dot(derivative, controls[column] - point) * formWeights[row][column];
    }
}

/* Zero counts as positive, and so does what is not a number. */
int SignChanges(const QUINTIC *form)
{
    const POINTDB *p = form->p;
    const unsigned below = static_cast<unsigned>(p[0].y < 0) | static_cast<unsigned>(p[1].y < 0) << 1 |
                           static_cast<unsigned>(p[2].y < 0) << 2 | static_cast<unsigned>(p[3].y < 0) << 3 |
                           static_cast<unsigned>(p[4].y < 0) << 4 | static_cast<unsigned>(p[5].y < 0) << 5;
    constexpr unsigned neighbours = (1U << quintic) - 1;
    return std::popcount((below ^ below >> 1) & neighbours);
}

/* 1 when the band along the chord that holds the whole polygon meets the axis within the error. */
int FlatEnough(const QUINTIC *form)
{
    const POINTDB &first = form->p[0];
    const POINTDB &last = form->p[quintic];
    const double a = first.y - last.y;
    const double b = last.x - first.x;
    const double c = first.x * last.y - last.x * first.y;
    const double surelyTooHigh =
        std::fabs(a) * (2 * flatError); /* the common case needs neither all points nor a quotient */
    double above = 0;
    double below = 0;
    for (int i = 1; i < quintic; i++) {
        const double distance = a * form->p[i].x + b * form->p[i].y + c;
        above = std::max(above, distance);
        below = std::min(below, distance);
        if (above - below > surelyTooHigh) return 0;
    }
    return (above - below) / std::fabs(a) < flatError;
}

double ChordRoot(const QUINTIC *form)
{
    const POINTDB &first = form->p[0];
    const POINTDB &last = form->p[quintic];
    return first.x - first.y * (last.x - first.x) / (last.y - first.y);
}

/* Levels of repeated halving, written out by the compiler so that the points stay in registers: most of the time of a
 * search goes here. */
template <int LEVEL, int I = 0> void HalveLevels(POINTDB *p, POINTDB *left)
{
    p[I] = (p[I] + p[I + 1]) * 0.5;
    if constexpr (I < quintic - LEVEL) {
        HalveLevels<LEVEL, I + 1>(p, left);
    } else {
        left[LEVEL] = p[0];
        if constexpr (LEVEL < quintic) HalveLevels<LEVEL + 1>(p, left);
    }
}

/* Cuts at the middle: form becomes its right half. */
void QuinticSplit(QUINTIC *form, QUINTIC *left)
{
    left->depth = ++form->depth;
    left->p[0] = form->p[0];
    POINTDB p[quintic + 1];
    std::copy(form->p, form->p + quintic + 1, p);
    HalveLevels<1>(p, left->p);
    std::copy(p, p + quintic + 1, form->p);
}

} // namespace

POINTDB BezierPoint(const POINTDB *controls, double t)
{
    const POINTDB middle = LerpPoint(controls[1], controls[2], t);
    const POINTDB left = LerpPoint(LerpPoint(controls[0], controls[1], t), middle, t);
    const POINTDB right = LerpPoint(middle, LerpPoint(controls[2], controls[3], t), t);
    return LerpPoint(left, right, t);
}

int BezierRoots(const POINTDB *controls, const POINTDB &point, double *roots)
{
    /* The pieces not looked at yet, the leftmost on top: one at most for each depth, and the one at hand. */
    QUINTIC stack[depthMax + 2];
    QuinticOfDistance(controls, point, &stack[0]);
    int height = 1;
    int count = 0;
    while (height > 0 && count < bezierRootsMax) {
        QUINTIC *piece = &stack[height - 1];
        const int changes = SignChanges(piece);
        if (changes == 0) {
            height--;
        } else if (piece->depth >= depthMax) {
            /* Several roots in a piece as narrow as this are one. */
            roots[count++] = (piece->p[0].x + piece->p[quintic].x) / 2;
            height--;
        } else if (changes == 1 && FlatEnough(piece)) {
            roots[count++] = ChordRoot(piece);
            height--;
        } else {
            QuinticSplit(piece, piece + 1);
            height++;
        }
    }
    return count;
}

void NearestOnCurve(const POINTDB *controls, const POINTDB &point, NEARPOINT *nearest)
{
    double at[bezierRootsMax + 2];
    at[0] = 0;
    const int roots = BezierRoots(controls, point, at + 1);
    at[roots + 1] = 1;
    for (int i = 0; i < roots + 2; i++) {
        const POINTDB vector = BezierPoint(controls, at[i]) - point;
        const double dist2 = Dot(vector, vector);
        if (i > 0 && !(dist2 < nearest->dist2)) continue;
        const int atEnd = i == 0 || std::fabs(at[i] - 1) < 0.00001;
        *nearest = {vector, dist2, at[i], atEnd};
    }
}

void NearestOnLine(const POINTDB &a, const POINTDB &b, const POINTDB &point, NEARPOINT *nearest)
{
    const POINTDB along = b - a;
    const double t = Dot(point - a, along) / Dot(along, along);
    POINTDB rest;
    if (t < 0)
        rest = point - a;
    else if (t > 1)
        rest = point - b;
    else
        rest = (point - a) - along * t;
    const int atEnd = t < 0 || t > 1;
    *nearest = {rest * -1, Dot(rest, rest), t < 0 ? 0 : t > 1 ? 1 : t, atEnd};
}

} // namespace zr32
