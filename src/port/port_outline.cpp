/* port_outline.cpp - glyph outlines as native contours of lines and quadratics.
 *
 * A contour starts on an on-curve point; runs of quadratic control points stay one spline with its end point, and a
 * spline that runs into the contour's end gets the start point for its end. A line back to the start is left to the
 * reader. A cubic is cut into pieces at equal parameters and each becomes the quadratic through its ends whose control
 * point is the mean of the two that match one end's tangent.
 */
#include "port_outline.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zr32port {

namespace {

/* Distance in pixels that a quadratic may have from its cubic, and the most pieces that a cubic is cut into. */
constexpr double cubicTolerance = 1.0 / 64.0;
constexpr int mostPieces = 16;

/* Whole pixels that 16.16 holds. */
constexpr double farthest = 32767.0;

struct VEC {
    double x;
    double y;
};

struct WRITER {
    BYTE *buffer;
    size_t room;
    size_t used;    /* also counts what had no room */
    size_t contour; /* where the open contour's header stands */
    size_t curve;   /* where the open curve stands; 0: none */
    WORD curveType;
    uint32_t curvePoints;
    int bad;
};

void Put(size_t at, const void *data, size_t size, WRITER *out)
{
    if (out->buffer && at <= out->room && size <= out->room - at) memcpy(out->buffer + at, data, size);
}

FIXED ToFixed(double v, WRITER *out)
{
    if (!(v >= -farthest && v <= farthest)) {
        out->bad = 1;
        return 0;
    }
    return static_cast<FIXED>(std::floor(v * 65536.0 + 0.5));
}

void PutPoint(VEC p, WRITER *out)
{
    const POINTFX fixed = {ToFixed(p.x, out), ToFixed(p.y, out)};
    Put(out->used, &fixed, sizeof(fixed), out);
    out->used += sizeof(fixed);
}

void ContourBegin(VEC start, WRITER *out)
{
    out->contour = out->used;
    out->used += offsetof(TTPOLYGONHEADER, pfxStart);
    out->curve = 0;
    PutPoint(start, out);
}

void CurveEnd(WRITER *out)
{
    if (out->curve == 0) return;
    const WORD head[2] = {out->curveType, static_cast<WORD>(out->curvePoints)};
    if (out->curvePoints > 0xFFFF) out->bad = 1;
    Put(out->curve, head, sizeof(head), out);
    out->curve = 0;
}

void CurveBegin(WORD type, WRITER *out)
{
    CurveEnd(out);
    out->curve = out->used;
    out->curveType = type;
    out->curvePoints = 0;
    out->used += offsetof(TTPOLYCURVE, apfx);
}

void CurvePoint(VEC p, WRITER *out)
{
    PutPoint(p, out);
    out->curvePoints++;
}

void ContourEnd(WRITER *out)
{
    CurveEnd(out);
    const DWORD head[2] = {static_cast<DWORD>(out->used - out->contour), TT_POLYGON_TYPE};
    Put(out->contour, head, sizeof(head), out);
}

void Cubic(VEC p0, VEC p1, VEC p2, VEC p3, WRITER *out)
{
    /* The third difference is what a quadratic cannot follow: the distance is sqrt(3) / 36 of it over n cubed. */
    const double third = std::hypot(p3.x - 3.0 * p2.x + 3.0 * p1.x - p0.x, p3.y - 3.0 * p2.y + 3.0 * p1.y - p0.y);
    const double exact = std::cbrt(std::sqrt(3.0) / 36.0 * third / cubicTolerance);
    const int pieces = exact < mostPieces ? std::max(1, static_cast<int>(std::ceil(exact))) : mostPieces;

    const auto at = [&](double t) {
        const double s = 1.0 - t;
        const double w0 = s * s * s, w1 = 3.0 * s * s * t, w2 = 3.0 * s * t * t, w3 = t * t * t;
        return VEC{w0 * p0.x + w1 * p1.x + w2 * p2.x + w3 * p3.x, w0 * p0.y + w1 * p1.y + w2 * p2.y + w3 * p3.y};
    };
    const auto slope = [&](double t) {
        const double s = 1.0 - t;
        const double w0 = 3.0 * s * s, w1 = 6.0 * s * t, w2 = 3.0 * t * t;
        return VEC{w0 * (p1.x - p0.x) + w1 * (p2.x - p1.x) + w2 * (p3.x - p2.x),
                   w0 * (p1.y - p0.y) + w1 * (p2.y - p1.y) + w2 * (p3.y - p2.y)};
    };
    /* A piece's tangent points are a third of its parameter length along the slope; (3 c - p) / 2 of each end, halved
     * for the mean. */
    const double step = 1.0 / pieces;
    VEC from = p0;
    for (int i = 0; i < pieces; i++) {
        const double t1 = (i + 1) * step;
        const VEC to = i + 1 < pieces ? at(t1) : p3;
        const VEC leave = slope(i * step);
        const VEC arrive = slope(t1);
        const VEC control = {(from.x + to.x) * 0.5 + (leave.x - arrive.x) * step * 0.25,
                             (from.y + to.y) * 0.5 + (leave.y - arrive.y) * step * 0.25};
        CurveBegin(TT_PRIM_QSPLINE, out);
        CurvePoint(control, out);
        CurvePoint(to, out);
        from = to;
    }
    CurveEnd(out);
}

VEC Scaled(const OUTLINEPOINT &p, const OUTLINESCALE &scale)
{
    return {scale.xx * p.x + scale.xy * p.y, scale.yx * p.x + scale.yy * p.y};
}

/* One contour: points first to last, at least two. */
void Contour(const OUTLINEPOINT *points, int32_t first, int32_t last, const OUTLINESCALE &scale, WRITER *out)
{
    /* The start is the first on-curve point of: the first point, the last, the middle between both. */
    VEC start = Scaled(points[first], scale);
    int32_t i = first;
    if (points[first].kind == POINT_ON) {
        i++;
    } else if (points[last].kind == POINT_ON) {
        start = Scaled(points[last], scale);
        last--;
    } else {
        const VEC end = Scaled(points[last], scale);
        start = {(start.x + end.x) * 0.5, (start.y + end.y) * 0.5};
    }

    ContourBegin(start, out);
    VEC at = start;
    while (i <= last && !out->bad) {
        const VEC p = Scaled(points[i], scale);
        if (points[i].kind == POINT_ON) {
            if (out->curve == 0 || out->curvePoints == 0xFFFF) CurveBegin(TT_PRIM_LINE, out);
            CurvePoint(p, out);
            at = p;
            i++;
        } else if (points[i].kind == POINT_CONIC) {
            CurveBegin(TT_PRIM_QSPLINE, out);
            for (; i <= last && points[i].kind == POINT_CONIC; i++) CurvePoint(Scaled(points[i], scale), out);
            if (i <= last && points[i].kind != POINT_ON) out->bad = 1;
            at = i <= last ? Scaled(points[i], scale) : start;
            CurvePoint(at, out);
            CurveEnd(out);
            i++;
        } else {
            const bool whole =
                i + 1 <= last && points[i + 1].kind == POINT_CUBIC && (i + 2 > last || points[i + 2].kind == POINT_ON);
            if (!whole) {
                out->bad = 1;
                break;
            }
            const VEC to = i + 2 <= last ? Scaled(points[i + 2], scale) : start;
            Cubic(at, p, Scaled(points[i + 1], scale), to, out);
            at = to;
            i += 3;
        }
    }
    ContourEnd(out);
}

} // namespace

int OutlineToNative(const OUTLINE &outline, const OUTLINESCALE &scale, BYTE *buffer, size_t room, size_t *size)
{
    WRITER out = {buffer, room, 0, 0, 0, 0, 0, 0};
    int32_t first = 0;
    for (int32_t i = 0; i < outline.contourCount && !out.bad; i++) {
        const int32_t last = outline.lasts[i];
        /* A lone point is an anchor for composition, not a shape. */
        if (last > first) Contour(outline.points, first, last, scale, &out);
        first = last + 1;
    }
    *size = out.used;
    return !out.bad;
}

void OutlineBox(const OUTLINE &outline, const OUTLINESCALE &scale, OUTLINEBOX *box)
{
    *box = {0.0, 0.0, 0.0, 0.0};
    for (int32_t i = 0; i < outline.pointCount; i++) {
        const VEC p = Scaled(outline.points[i], scale);
        if (i == 0) *box = {p.x, p.y, p.x, p.y};
        box->left = std::min(box->left, p.x);
        box->right = std::max(box->right, p.x);
        box->bottom = std::min(box->bottom, p.y);
        box->top = std::max(box->top, p.y);
    }
}

} // namespace zr32port
