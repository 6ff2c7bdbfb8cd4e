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
constexpr int64_t mostRowsPassed = int64_t{1} << 22;

int IsNear(const POINTDB &p)
{
    return std::fabs(p.x) < farthest && std::fabs(p.y) < farthest;
}

/* Moves a coordinate that lies exactly on the sample grid off it, so that a vertex never lies on a sample row and two
 * edges that meet there give one crossing, not none or two. Adding and taking away 1.5 x 2^52 rounds to a whole number;
 * the distance of coordinates is bounded far below that. */
double OffGrid(double v, double samples)
{
    constexpr double rounder = 6755399441055744.0;
    const double scaled = v * samples;
    return (scaled + rounder) - rounder == scaled ? v + offGrid : v;
}

POINTDB OffGrid(const POINTDB &p, const EDGETABLE *table)
{
    return {OffGrid(p.x, table->samples), OffGrid(p.y, table->samples)};
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
 * near-vertical edge a row past its end; a band in which the edge has no part gets nothing of that. Most edges lie in
 * the band of the one before them, whose rows are kept. */
const EDGEBAND *BandOfEdge(double low, double high, EDGETABLE *table)
{
    EDGEBAND *band = &table->band;
    if (low >= band->low && high < band->high) return band;
    int32_t first = table->top;
    int32_t end = table->bottom;
    if (table->banded) {
        if (low > first) first = static_cast<int32_t>(low) / maskBandHeight * maskBandHeight;
        if (high < end)
            end = std::min(end, static_cast<int32_t>(high) / maskBandHeight * maskBandHeight + maskBandHeight);
    }
    *band = {static_cast<double>(first), static_cast<double>(end),
             static_cast<int64_t>(first - table->top) * table->rowsPerPixel,
             static_cast<int64_t>(end - table->top) * table->rowsPerPixel};
    if (table->banded && end - first > maskBandHeight) band->high = band->low;
    return band;
}

/* An upright edge: the rows between its ends, all at one place. The walk is measured in y, whose steps are exact, so
 * the first and the last row can be named. first is where the walk begins. */
void AddUpright(const POINTDB &p0, const POINTDB &p1, int64_t first, const EDGEBAND &band, PATHNODE *node,
                EDGETABLE *table)
{
    const double n = table->samples;
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
    end = std::min(end, band.endRow);
    const double crossing = down ? p0.x : -p0.x;
    for (int64_t row = std::max(low, band.firstRow); row < end; row++)
        EdgeTableAdd(table, crossing, static_cast<size_t>(row), node);
}

/* The walk along a sloping edge: x at the present row, its step to the next. */
struct SLOPEWALK {
    double x;
    double dx;
    double end;
    int64_t row;
    int64_t rowStep;
};

/* One row on. 0 where the step is too small to be felt: such a walk ends. */
inline int SlopeForward(SLOPEWALK *walk)
{
    const double next = walk->x + walk->dx;
    if (next == walk->x) return 0;
    walk->x = next;
    walk->row += walk->rowStep;
    return 1;
}

/* Brings a walk that begins outside the range to its first row there. 0 when it ends before. */
int SlopeEnter(const EDGEBAND &band, SLOPEWALK *walk)
{
    int64_t away = walk->rowStep > 0 ? band.firstRow - walk->row : walk->row - (band.endRow - 1);
    if (away > mostRowsPassed) {
        walk->x += walk->dx * static_cast<double>(away);
        walk->row += walk->rowStep * away;
        away = 0;
    }
    for (; away > 0; away--)
        if (!(walk->x < walk->end) || !SlopeForward(walk)) return 0;
    return 1;
}

/* Adds rows that are certain to be reached. */
void AddRows(int64_t rows, double sign, PATHNODE *node, SLOPEWALK *walk, EDGETABLE *table)
{
    if (table->mode != EDGES_PLAIN) {
        for (; rows > 0; rows--) {
            EdgeTableAdd(table, walk->x * sign, static_cast<size_t>(walk->row), node);
            walk->x += walk->dx;
            walk->row += walk->rowStep;
        }
        return;
    }
    /* The same with everything at hand. */
    const uint32_t *start = table->rowStart + 1;
    uint32_t *next = table->rowNext;
    double *crossings = table->crossings;
    SLOPEWALK at = *walk;
    for (; rows > 0; rows--) {
        const uint32_t place = next[at.row];
        if (place + 1 < start[at.row]) {
            crossings[place] = at.x * sign;
            next[at.row] = place + 1;
        } else {
            table->overflow = 1;
        }
        at.x += at.dx;
        at.row += at.rowStep;
    }
    *walk = at;
}

/* How many rows of a walk are certain before it is walked, counted from its first: those above its start, and those
 * above its end. They follow from y alone, so the processor need not wait for the sum of x to know how often to go
 * round. The last row of each count, where rounding of x may decide, is not certain; neither is anything where the step
 * nears the rounding of x or is repeated so often that rounding adds up to a row. */
struct CERTAINROWS {
    int64_t toStart;
    int64_t toEnd;
};

CERTAINROWS CertainRows(double startOffset, double height, double farX, const SLOPEWALK &walk, const EDGETABLE *table)
{
    constexpr double mostRows = 1024;
    constexpr double leastStep = 0x1p-40;
    const double start = startOffset * static_cast<double>(walk.rowStep) * -table->samples;
    const double end = start + std::fabs(height) * table->samples;
    if (!(start >= 0 && end < mostRows && walk.dx > farX * leastStep)) return {0, 0};
    return {static_cast<int32_t>(start), static_cast<int32_t>(end)};
}

/* A sloping edge. The walk is measured in x: from the pixel row in which the edge starts, x moves on by the same step
 * each row; rows count from the edge's start until its end is reached. Edges towards smaller x are walked as their
 * mirror image, which rounds the same. startOffset leads from the edge's start to the row's place in y. */
void AddSloping(const POINTDB &p0, const POINTDB &p1, double slope, double startOffset, int64_t row,
                const EDGEBAND &band, PATHNODE *node, EDGETABLE *table)
{
    const int down = p1.y > p0.y;
    const double step = (down ? slope : -slope) * table->rowHeight;
    const double mirror = step < 0 ? -1.0 : 1.0;
    const double from = p0.x * mirror;
    SLOPEWALK walk = {(startOffset * slope + p0.x) * mirror, step * mirror, p1.x * mirror, row, down ? 1 : -1};
    const double farX = std::max(std::fabs(p0.x), std::fabs(p1.x));
    const CERTAINROWS certain = CertainRows(startOffset, p1.y - p0.y, farX, walk, table);

    for (int64_t i = 0; i < certain.toStart; i++) walk.x += walk.dx;
    walk.row += certain.toStart * walk.rowStep;
    while (walk.x < from)
        if (!SlopeForward(&walk)) return;
    if (!SlopeEnter(band, &walk)) return;

    const double sign = down ? mirror : -mirror;
    int64_t rows = down ? band.endRow - walk.row : walk.row - band.firstRow + 1;
    const int64_t sure = std::min(certain.toEnd - (walk.row - row) * walk.rowStep, rows);
    if (sure > 0) {
        AddRows(sure, sign, node, &walk, table);
        rows -= sure;
    }
    for (; rows > 0 && walk.x < walk.end; rows--) {
        EdgeTableAdd(table, walk.x * sign, static_cast<size_t>(walk.row), node);
        if (!SlopeForward(&walk)) return;
    }
}

/* One straight piece. width is its extent in x, which for a curve's piece may have been taken as 0. */
void AddPiece(const POINTDB &p0, const POINTDB &p1, double width, PATHNODE *node, EDGETABLE *table)
{
    const double height = p1.y - p0.y;
    if (height == 0) return;
    const double low = std::min(p0.y, p1.y);
    const double high = std::max(p0.y, p1.y);
    if (high < table->top || low >= table->bottom) return;
    const EDGEBAND &band = *BandOfEdge(low, high, table);
    const int64_t startPixel = static_cast<int64_t>(p0.y) + (height < 0);
    const int64_t row = (startPixel - table->top) * table->rowsPerPixel;
    if (width == 0)
        AddUpright(p0, p1, row, band, node, table);
    else
        AddSloping(p0, p1, width / height, static_cast<double>(startPixel) - p0.y, row, band, node, table);
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
void AddCurve(const POINTDB *p, PATHNODE *node, EDGETABLE *table)
{
    if (CurveMisses(p, table)) return;
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
        AddPiece(from, to, std::fabs(width) < narrowPiece ? 0.0 : width, node, table);
        CurveAdvance(&step);
        from = to;
    }
}

} // namespace

int SegmentIsNear(const SEGMENT &segment)
{
    const int last = segment.kind == PATHNODE_CURVE ? 3 : segment.kind == PATHNODE_LINE ? 1 : 0;
    for (int i = 0; i <= last; i++)
        if (!IsNear(segment.p[i])) return 0;
    return 1;
}

int EdgeWalkNext(const EDGETABLE *table, SEGWALK *walk, SEGMENT *segment)
{
    if (!SegWalkNext(walk, segment)) return 0;
    if (table->mode == EDGES_COLUMNS)
        for (POINTDB &p : segment->p) std::swap(p.x, p.y);
    return 1;
}

void PathAddEdges(PATHREC *path, EDGETABLE *table)
{
    SEGWALK walk;
    SEGMENT segment;
    POINTDB current = {0, 0};
    for (SegWalkStart(path, table->place, &walk); EdgeWalkNext(table, &walk, &segment);) {
        PATHNODE *node = path->nodes + segment.index;
        switch (segment.kind) {
        case PATHNODE_START: current = segment.p[0]; break;
        case PATHNODE_LINE:
            /* The next segment starts where this one has ended, with its shift. */
            segment.p[0] = OffGrid(current, table);
            segment.p[1] = current = OffGrid(segment.p[1], table);
            if (SegmentIsNear(segment))
                AddPiece(segment.p[0], segment.p[1], segment.p[1].x - segment.p[0].x, node, table);
            break;
        case PATHNODE_CURVE:
            segment.p[0] = current;
            current = segment.p[3];
            if (SegmentIsNear(segment)) AddCurve(segment.p, node, table);
            break;
        default: break;
        }
    }
}

} // namespace zr32
