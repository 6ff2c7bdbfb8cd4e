/* diamond.cpp - rows of the pyramid over a diamond.
 *
 * Each row runs from its left end to the middle column and from the column behind the middle to its right end: both are
 * measured at their ends, against the diamond's edge on that side, and everything between is linear. The upper and the
 * lower half are not mirror images, and the right rim mixes up the components of its vector; all of it is deliberate,
 * since maps must come out as they always did.
 */
#include "surface/diamond.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

constexpr double floorDistance = 0.1;
constexpr double rimValue = 0.01F; /* singles, as they stand in the plane */
constexpr double upperRimValue = 0.1F;

struct EDGE {
    POINTDB a;
    POINTDB b;
};

struct MEASURE {
    double distance;
    POINTDB vector; /* from the point to the edge */
};

/* The nearest point of a segment; a point that lies on it moves off by 0.01 first, so that there is a vector. */
MEASURE VMapSegmentNearest(POINTDB point, const EDGE *edge)
{
    const POINTDB along = edge->b - edge->a;
    POINTDB p = {0, 0};
    for (;;) { /* ends: a point that is moved on and on leaves the segment */
        const double s = Dot(point - edge->a, along) / Dot(along, along);
        if (s < 0 || s > 1) {
            p = point - (s > 1 ? edge->b : edge->a);
            break;
        }
        p = (point - edge->a) - along * s;
        if (!(std::fabs(p.x) < 0.0001 && std::fabs(p.y) < 0.0001)) break;
        point.x += 0.01;
        if (along.y == 0) point.y += 0.01;
    }
    return {std::sqrt(Dot(p, p)), {-p.x, -p.y}};
}

MEASURE Scaled(const MEASURE &measure, double s)
{
    return {measure.distance * s, measure.vector * s};
}

MEASURE Floored(const MEASURE &measure)
{
    return {std::max(measure.distance, floorDistance), measure.vector};
}

/* What the row's steps share. */
struct DIAMONDROW {
    const PLANES *planes;
    int32_t y;
    double measureY; /* the upper half measures a row further down */
    double h;
    double k; /* the row's share of the diamond's width */
    int upper;
};

void PutMeasure(const DIAMONDROW *row, int32_t x, const MEASURE &measure)
{
    PlanePut(row->planes, x, row->y, measure.distance * measure.distance, measure.vector);
}

MEASURE MeasureAt(const DIAMONDROW *row, int32_t x, const EDGE *edge)
{
    return VMapSegmentNearest({static_cast<double>(x), row->measureY}, edge);
}

/* Index of a pixel of this row, or -1 outside. */
int64_t PixelIndex(const DIAMONDROW *row, int64_t x)
{
    return x < 0 || x >= row->planes->width ? -1 : int64_t{row->y} * row->planes->width + x;
}

void PutValue(const DIAMONDROW *row, int64_t x, double value)
{
    const int64_t index = PixelIndex(row, x);
    if (index >= 0 && row->planes->dist) row->planes->dist[index] = static_cast<float>(value);
}

void PutVector(const DIAMONDROW *row, int64_t x, const POINTDB &vector)
{
    const int64_t index = PixelIndex(row, x);
    if (index >= 0 && row->planes->vectorsF)
        row->planes->vectorsF[index] = {static_cast<float>(vector.x), static_cast<float>(vector.y)};
}

void CopyPixel(const DIAMONDROW *row, int64_t to, int64_t from)
{
    const int64_t target = PixelIndex(row, to);
    const int64_t source = PixelIndex(row, from);
    if (target < 0 || source < 0) return;
    if (row->planes->dist) row->planes->dist[target] = row->planes->dist[source];
    if (row->planes->vectorsF) row->planes->vectorsF[target] = row->planes->vectorsF[source];
}

MEASURE Between(const MEASURE &a, const MEASURE &b, int64_t i, int64_t n)
{
    const double step = static_cast<double>(i);
    const double steps = static_cast<double>(n);
    return {
        a.distance + (b.distance - a.distance) * step / steps,
        {a.vector.x + (b.vector.x - a.vector.x) * step / steps, a.vector.y + (b.vector.y - a.vector.y) * step / steps}};
}

/* Linear from pixel first (value a) to pixel last (value b): writes the pixels behind first, as far as the plane
 * reaches. */
void PutRamp(const DIAMONDROW *row, int64_t first, int64_t last, const MEASURE &a, const MEASURE &b)
{
    const int64_t from = std::max<int64_t>(first + 1, 0);
    const int64_t to = std::min<int64_t>(last, int64_t{row->planes->width} - 1);
    for (int64_t x = from; x <= to; x++)
        PutMeasure(row, static_cast<int32_t>(x), Floored(Between(a, b, x - first, last - first)));
}

void LeftHalf(const DIAMONDROW *row, double xl, double cx, const EDGE *edge)
{
    int32_t i = TruncInt(xl);
    MEASURE end = MeasureAt(row, i, edge);
    if (xl >= i) {
        for (int64_t x = int64_t{i} - 1; x <= i; x++) {
            PutValue(row, x, rimValue);
            PutVector(row, x, end.vector * -0.1);
        }
        i = WrapAdd(i, 1);
        end = MeasureAt(row, i, edge);
    }
    end = Floored(end);
    PutMeasure(row, i, end);

    const int32_t c = TruncInt(cx);
    MEASURE centre = MeasureAt(row, c, edge);
    const double s = row->h / centre.distance * row->k;
    end = Scaled(end, s);
    centre = Scaled(centre, s);
    if (row->upper && c == i) CopyPixel(row, int64_t{i} - 1, i);
    if (c == i) return;
    if (row->upper) {
        const POINTDB first = Between(end, centre, 1, int64_t{c} - i).vector;
        for (int64_t x = int64_t{i} - 1; x <= i; x++) {
            PutValue(row, x, upperRimValue);
            if (c > i) PutVector(row, x, first);
        }
    }
    PutRamp(row, i, c, end, centre);
}

void RightHalf(const DIAMONDROW *row, double xr, double cx, const EDGE *edge)
{
    int32_t j = TruncInt(xr);
    MEASURE end = MeasureAt(row, j, edge);
    if (xr <= j) {
        const POINTDB w = end.vector * -0.1;
        PutValue(row, j, rimValue);
        PutValue(row, int64_t{j} + 1, rimValue);
        PutVector(row, j, {w.x, w.x}); /* not (x, y), deliberately */
        const int64_t behind = PixelIndex(row, int64_t{j} + 1);
        if (behind >= 0 && row->planes->vectorsF) row->planes->vectorsF[behind].x = static_cast<float>(w.y);
        j = WrapSub(j, 1);
        end = MeasureAt(row, j, edge);
    }
    end = Floored(end);
    PutMeasure(row, j, end);

    const int32_t c = TruncInt(1.0 + cx);
    MEASURE centre = MeasureAt(row, c, edge);
    const double s = row->h / centre.distance * row->k;
    end = Scaled(end, s);
    centre = Scaled(centre, s);
    PutMeasure(row, c, Floored(centre));
    if (c == j) {
        if (row->upper) CopyPixel(row, int64_t{j} + 1, j);
        return;
    }
    PutRamp(row, c, j, centre, end);
    if (row->upper) {
        PutValue(row, int64_t{j} + 1, rimValue);
        if (j > c) PutVector(row, int64_t{j} + 1, end.vector);
    }
}

} // namespace

void VMapDiamondRow(double h, const BOXDB *box, int32_t y, const PLANES *planes)
{
    if (box->top > y || box->bottom <= y) return;
    const double cx = (box->left + box->right) / 2;
    const double cy = (box->top + box->bottom) / 2;
    const double wide = box->right - box->left;
    DIAMONDROW row = {planes, y, static_cast<double>(y), h, 0, y < cy};
    if (row.upper) {
        row.measureY = y + 1.0;
        row.k = (1 + y - box->top) / (cy - box->top);
    } else {
        row.k = (box->bottom - y) / (box->bottom - cy);
    }
    const POINTDB tip = {cx, row.upper ? box->top : box->bottom};
    const EDGE left = {tip, {box->left, cy}};
    const EDGE right = {tip, {box->right, cy}};
    const double xl = cx - row.k * wide / 2;
    LeftHalf(&row, xl, cx, &left);
    RightHalf(&row, xl + row.k * wide, cx, &right);
}

} // namespace zr32
