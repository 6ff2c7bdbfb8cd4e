/* mitre.cpp - the mitre fill: wedges at corners that no ray of the edge sweep reaches.
 *
 * Where two segments meet and their rays part, both edges are extended past the corner, and the wedge between the last
 * ray of the one and the first ray of the other is filled as if the extended edges cast rays: the ridge of the bevel
 * runs straight into the corner. Comes in: the samples at the ends of segments. Goes out: two fans a corner.
 */
#include "surface/offsetmerge.h"
#include "surface/sweep.h"

#include <algorithm>

namespace zr32 {

/* A foot that no first corner equals. */
constexpr POINTDB noFoot = {-300.0, -300.0};

/* Where the offset lines of two ends meet, in tangent steps from each. 1 when that is ahead of both, else both are 0.
 */
static int VMapRayCross(const MITREEND &end, const MITREEND &start, double *a, double *b)
{
    *a = *b = 0;
    const double c = end.tangent.y * start.tangent.x - start.tangent.y * end.tangent.x;
    if (c == 0) return 0;
    const POINTDB d = start.rayEnd - end.rayEnd;
    const double stepsOfStart = (d.y * end.tangent.x - d.x * end.tangent.y) / c;
    const double stepsOfEnd = (d.y * start.tangent.x - d.x * start.tangent.y) / c;
    if (!(stepsOfEnd > 0 && stepsOfStart > 0)) return 0;
    *a = stepsOfEnd;
    *b = stepsOfStart;
    return 1;
}

static void WriteFanPixel(const SWEEP *sweep, const MITREEND *end, const POINTDB &q, int32_t px, int32_t py,
                          double beforeEnd)
{
    size_t index;
    if (!SweepPlanePixel(sweep, q, &index)) return;
    const POINTDB v = OffsetToFoot(q, px, py, end->foot, end->back);
    const double lengthSq = Dot(v, v);
    if (sweep->planes.dist) MergeDistance(lengthSq, sweep->planes.dist + index);
    if (sweep->planes.vectors) MergeMitreVector(v, lengthSq, beforeEnd, sweep->planes.vectors + index);
}

/* One line of a fan, from b on the extended offset line back towards the extended edge. */
static void FillFanLine(const SWEEP *sweep, const MITREEND *end, const POINTDB &b, double tMax)
{
    int32_t lastX = 0xffffff;
    int32_t lastY = 0xffffff;
    double t = RayEntry(b, end->back, 0, 0.5, sweep->width, sweep->height);
    if (t >= farthestRay) return;
    for (t = t < tMax ? t : tMax; t < farthestRay; t = t + 0.5 < tMax ? t + 0.5 : tMax) {
        const POINTDB q = b + end->back * t;
        if (RayOnRaster(q, sweep->width, sweep->height)) {
            const int32_t px = static_cast<int32_t>(q.x);
            const int32_t py = static_cast<int32_t>(q.y);
            if (px != lastX || py != lastY) WriteFanPixel(sweep, end, q, px, py, tMax - t);
            lastX = px;
            lastY = py;
        } else if (RayHasLeft(q, end->back, sweep->width, sweep->height)) {
            return;
        }
        if (t >= tMax) return;
    }
}

/* 1 when neither this line of a fan nor any behind it touches the raster: the longest of them, moved on along the
 * tangent, stays beyond one border. */
static int FanHasLeft(const SWEEP *sweep, const MITREEND *end, const POINTDB &b)
{
    const POINTDB tip = b + end->back * sweep->reach;
    const POINTDB &d = end->tangent;
    const double lowX = b.x < tip.x ? b.x : tip.x;
    const double highX = b.x < tip.x ? tip.x : b.x;
    const double lowY = b.y < tip.y ? b.y : tip.y;
    const double highY = b.y < tip.y ? tip.y : b.y;
    return !(lowX <= sweep->width || d.x < 0) || !(highX >= 0 || d.x > 0) || !(lowY <= sweep->height || d.y < 0) ||
           !(highY >= 0 || d.y > 0);
}

/* Lines of a fan to be taken at once. Where the last step of a curve is the rest of one, a tangent can be any sliver of
 * a pixel, and millions of lines stand in the same pixels: of such a crowd only so many are taken as stand a thousandth
 * of a pixel apart. */
static double FanStride(const POINTDB &tangent, double count)
{
    constexpr double crowd = 0x1p20;
    constexpr double spacing = 0x1p-10;
    const double size = std::max(std::fabs(tangent.x), std::fabs(tangent.y));
    return count > crowd && size < spacing ? std::floor(spacing / size) : 1;
}

/* The triangle between the ray at the corner, the meeting point of the offset lines and the corner: half of a mitre. A
 * spike's meeting point can be practically endless far away; the fan ends where it has left the raster for good. */
static void FillFan(const SWEEP *sweep, MITREEND *end, double count)
{
    if (!(std::fabs(sweep->reach) < farthestRay)) return; /* its lines begin where positions no longer move */
    const double stride = FanStride(end->tangent, count);
    for (double i = stride; i <= count; i += stride) {
        const POINTDB b = end->rayEnd + end->tangent * i;
        end->foot = end->foot + end->tangent * stride;
        const double tMax = (count - i) / count * sweep->reach;
        if (FanHasLeft(sweep, end, b)) return;
        if (!(tMax < 0)) FillFanLine(sweep, end, b, tMax);
    }
}

/* The feet must be the same to the last bit. They move while the fans are filled, so that no corner is filled twice. */
static void TryCorner(SWEEP *sweep)
{
    double a;
    double b;
    if (sweep->end.foot.x != sweep->start.foot.x || sweep->end.foot.y != sweep->start.foot.y) return;
    if (!VMapRayCross(sweep->end, sweep->start, &a, &b)) return;
    FillFan(sweep, &sweep->end, a);
    FillFan(sweep, &sweep->start, b);
}

/* Of all samples only those at the ends of segments count, and of those only such as see the shape. A record with
 * several runs closes its first run only. */
static void KeepSegmentEnd(SWEEP *sweep)
{
    if (sweep->isolated || (sweep->at != 0 && sweep->at != parameterEnd)) return;
    const POINTDB rayEnd = sweep->p + sweep->n * sweep->reach;
    const POINTDB back = sweep->n * -1;
    if (sweep->at == 0) {
        sweep->start = {rayEnd, sweep->t * -1, sweep->p, back};
        if (sweep->nodeIndex == 1) sweep->first = sweep->start;
        TryCorner(sweep);
    } else {
        sweep->end = {rayEnd, sweep->t, sweep->p, back};
        if (!sweep->closesRecord) return;
        sweep->start = sweep->first;
        TryCorner(sweep);
    }
}

static constexpr SWEEPRULES mitreRules = {.useSample = KeepSegmentEnd,
                                          .wholeChain = 1,
                                          .followFans = 0,
                                          .shortestLine = 0.01,
                                          .restingVote = 0,
                                          .abortSubCode = abortInMitre,
                                          .abortIndex = 0};

int VMapMitreFill(PATHREC *path, double width, const SURFACEMAP *map, PATHBUF mask)
{
    if (!path || width == 0 || !MapHasPlanes(map) || !mask) return 0;
    SWEEP sweep;
    SweepInit(&mitreRules, map, mask, width, &sweep);
    sweep.end.foot = sweep.first.foot = noFoot;
    return SweepChain(path, &sweep);
}

} // namespace zr32
