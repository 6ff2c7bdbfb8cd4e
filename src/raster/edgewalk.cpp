/* edgewalk.cpp - walks lines and curves of a record into the crossings of an edge table.
 *
 * Comes in: nodes, placed in pixels of the raster. Goes out: for each sample row that an edge meets, the exact place
 * where it does, signed by the edge's direction. Results are fixed bit by bit: along an edge the place moves on by
 * repeated addition from the pixel row in which the edge starts, also where a multiplication would be nearer.
 */
#include "geometry/curvestep.h"
#include "raster/edgetable.h"

#include <algorithm>

namespace zr32 {

namespace {

constexpr double offGrid = 1e-5;
constexpr double longestPiece = 60000; /* of a curve, in 1/65536 pixel */
constexpr double narrowPiece = 1e-7;   /* a curve's piece that moves less than this in x is upright */

/* Coordinates beyond this do not come from any record and zoom; arithmetic on rows stays exact within it. */
constexpr double farthest = 1099511627776.0;

/* An edge that begins more sample rows than this before the first one wanted is entered by one multiplication. */
constexpr int64_t mostRowsPassed = int64_t{1} << 26;

int IsNear(const POINTDB &p)
{
    return std::fabs(p.x) < farthest && std::fabs(p.y) < farthest;
}

/* Moves a coordinate that lies exactly on the sample grid off it, so that a vertex never lies on a sample row and two
 * edges that meet there give one crossing, not none or two. */
double OffGrid(double v, double rowsPerPixel)
{
    const double scaled = v * rowsPerPixel;
    return scaled == TruncInt(scaled) ? v + offGrid : v;
}

POINTDB OffGrid(const POINTDB &p, const EDGETABLE *table)
{
    return {OffGrid(p.x, table->rowsPerPixel), OffGrid(p.y, table->rowsPerPixel)};
}

int64_t Floor(double v)
{
    const int64_t whole = static_cast<int64_t>(v);
    return whole - (static_cast<double>(whole) > v);
}

int64_t Ceil(double v)
{
    const int64_t whole = static_cast<int64_t>(v);
    return whole + (static_cast<double>(whole) < v);
}

/* Sample rows that an edge may reach: the bands between its ends, as far as the table goes. Rounding may carry a
 * near-vertical edge a row past its end; a band in which the edge has no part gets nothing of that. */
struct ROWRANGE {
    int64_t first;
    int64_t end;
};

ROWRANGE RowsOfEdge(const EDGETABLE *table, double y0, double y1)
{
    int32_t first = table->top;
    int32_t end = table->bottom;
    if (table->bandHeight) {
        const int32_t low = static_cast<int32_t>(std::max<double>(std::min(y0, y1), first));
        const int32_t high = static_cast<int32_t>(std::min<double>(std::max(y0, y1), end));
        first = std::max(first, low - low % table->bandHeight);
        end = std::min(end, high - high % table->bandHeight + table->bandHeight);
    }
    return {static_cast<int64_t>(first - table->top) * table->rowsPerPixel,
            static_cast<int64_t>(end - table->top) * table->rowsPerPixel};
}

/* Takes over the count crossings that stand behind the last one. */
void AddRun(int64_t row, int32_t step, uint32_t count, PATHNODE *node, EDGETABLE *table)
{
    if (count == 0) return;
    table->runs[table->runCount++] = {node, static_cast<int32_t>(row), step, count};
    table->crossingCount += count;
}

/* An upright edge: the rows between its ends, all at one place. The walk is measured in y, whose steps are exact, so
 * the first and the last row can be named. first is where the walk begins. */
int AddUpright(const POINTDB &p0, const POINTDB &p1, int64_t first, const ROWRANGE &range, PATHNODE *node,
               EDGETABLE *table)
{
    const double n = table->rowsPerPixel;
    const int64_t topRow = static_cast<int64_t>(table->top) * table->rowsPerPixel;
    const int down = p1.y > p0.y;
    int64_t low;
    int64_t end;
    if (down) {
        low = std::max(first, Ceil(p0.y * n) - topRow);
        end = Ceil(p1.y * n) - topRow;
    } else {
        low = Floor(p1.y * n) + 1 - topRow;
        end = std::min(first, Floor(p0.y * n) - topRow) + 1;
    }
    low = std::max(low, range.first);
    end = std::min(end, range.end);
    if (low >= end) return 1;
    const uint32_t count = static_cast<uint32_t>(end - low);
    if (!EdgeTableReserve(count, table)) return 0;
    const double crossing = down ? p0.x : -p0.x;
    std::fill_n(table->crossings + table->crossingCount, count, crossing);
    AddRun(low, 1, count, node, table);
    return 1;
}

/* A sloping edge. The walk is measured in x: from the pixel row in which the edge starts, x moves on by the same step
 * each row; rows count from the edge's start until its end is reached. A walk that no longer moves ends. Edges towards
 * smaller x are walked as their mirror image, which rounds the same. */
int AddSloping(const POINTDB &p0, const POINTDB &p1, double slope, double startOffset, int64_t row,
               const ROWRANGE &range, PATHNODE *node, EDGETABLE *table)
{
    const int32_t rowStep = p1.y > p0.y ? 1 : -1;
    const double xStep = slope * rowStep / table->rowsPerPixel;
    const double mirror = xStep < 0 ? -1.0 : 1.0;
    const double dx = xStep * mirror;
    const double from = p0.x * mirror;
    const double to = p1.x * mirror;
    double x = (startOffset * slope + p0.x) * mirror;

    while (x < from) {
        const double next = x + dx;
        if (next == x) return 1;
        x = next;
        row += rowStep;
    }
    const int64_t passed = rowStep > 0 ? range.first - row : row - (range.end - 1);
    if (passed > mostRowsPassed) {
        x += dx * static_cast<double>(passed);
        row += rowStep * passed;
    }
    while (rowStep > 0 ? row < range.first : row >= range.end) {
        const double next = x + dx;
        if (!(x < to) || next == x) return 1;
        x = next;
        row += rowStep;
    }
    const int64_t most = rowStep > 0 ? range.end - row : row - range.first + 1;
    if (most <= 0 || !(x < to)) return 1;

    /* The step may be too small to be felt at one place and be felt at another, so no quotient bounds the count. */
    if (!EdgeTableReserve(static_cast<uint32_t>(most), table)) return 0;
    const double sign = mirror * rowStep;
    double *out = table->crossings + table->crossingCount;
    double *const end = out + most;
    double *at = out;
    while (at < end && x < to) {
        *at++ = x * sign;
        const double next = x + dx;
        if (next == x) break;
        x = next;
    }
    AddRun(row, rowStep, static_cast<uint32_t>(at - out), node, table);
    return 1;
}

/* One straight piece. width is its extent in x, which for a curve's piece may have been taken as 0. */
int AddPiece(const POINTDB &p0, const POINTDB &p1, double width, PATHNODE *node, EDGETABLE *table)
{
    const double height = p1.y - p0.y;
    if (height == 0) return 1;
    if ((p0.y < table->top && p1.y < table->top) || (p0.y >= table->bottom && p1.y >= table->bottom)) return 1;
    const ROWRANGE range = RowsOfEdge(table, p0.y, p1.y);
    const int64_t startPixel = static_cast<int64_t>(p0.y) + (height < 0);
    const int64_t row = (startPixel - table->top) * table->rowsPerPixel;
    if (width == 0) return AddUpright(p0, p1, row, range, node, table);
    return AddSloping(p0, p1, width / height, static_cast<double>(startPixel) - p0.y, row, range, node, table);
}

/* 1 when the hull of a curve lies so far above or below the table that no piece can reach it. */
int CurveMisses(const POINTDB *p, const EDGETABLE *table)
{
    const double top = table->top - 1.0;
    const double bottom = table->bottom + 1.0;
    return (p[0].y < top && p[1].y < top && p[2].y < top && p[3].y < top) ||
           (p[0].y > bottom && p[1].y > bottom && p[2].y > bottom && p[3].y > bottom);
}

/* A curve goes straight into the table, piece by piece. Once halved the step stays short for the rest of the curve. */
int AddCurve(const POINTDB *p, PATHNODE *node, EDGETABLE *table)
{
    if (CurveMisses(p, table)) return 1;
    CURVESTEP step;
    CurveStart(p, &step);
    POINTDB from = OffGrid(step.pos * subPixelOfStep, table);
    while (step.t < parameterEnd) {
        while (CurveStepAbove(&step, longestPiece) && step.h > 1) CurveHalve(&step);
        /* A step that would fall to 0 never ends: the rest of the curve becomes one piece. */
        const int stuck = CurveStepAbove(&step, longestPiece);
        if (stuck || step.t + step.h >= parameterEnd) {
            step.d = p[3] * 65536 - step.pos;
            step.t = parameterEnd;
            step.h = 0;
        }
        const POINTDB to = OffGrid((step.pos + step.d) * subPixelOfStep, table);
        const double width = to.x - from.x;
        if (!AddPiece(from, to, std::fabs(width) < narrowPiece ? 0.0 : width, node, table)) return 0;
        CurveAdvance(&step);
        from = to;
    }
    return 1;
}

POINTDB Exchanged(const POINTDB &p)
{
    return {p.y, p.x};
}

} // namespace

int PathAddEdges(PATHREC *path, double zoom, int32_t left, int32_t originTop, EDGETABLE *table)
{
    if (!table) return 0;
    PLACEMENT place = PlaceOnMask(zoom, left, originTop);
    if (table->rowsPerPixel == 1) place.post.x = 0.0;

    SEGWALK walk;
    SEGMENT segment;
    POINTDB current = {0, 0};
    for (SegWalkStart(path, place, &walk); SegWalkNext(&walk, &segment);) {
        if (table->mode == EDGES_COLUMNS)
            for (POINTDB &p : segment.p) p = Exchanged(p);
        PATHNODE *node = path->nodes + segment.index;
        switch (segment.kind) {
        case PATHNODE_START: current = segment.p[0]; break;
        case PATHNODE_LINE: {
            /* The next segment starts where this one has ended, with its shift. */
            const POINTDB from = OffGrid(current, table);
            const POINTDB to = current = OffGrid(segment.p[1], table);
            if (IsNear(from) && IsNear(to) && !AddPiece(from, to, to.x - from.x, node, table)) return 0;
            break;
        }
        case PATHNODE_CURVE: {
            const POINTDB p[4] = {current, segment.p[1], segment.p[2], segment.p[3]};
            current = p[3];
            if (IsNear(p[0]) && IsNear(p[1]) && IsNear(p[2]) && IsNear(p[3]) && !AddCurve(p, node, table)) return 0;
            break;
        }
        default: break;
        }
    }
    return 1;
}

} // namespace zr32
