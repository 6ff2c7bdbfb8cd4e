/* sweepray.cpp - rays from the outline into the shape: the edge sweep, and its variant for envelope frames.
 *
 * Comes in: a sample with the normal on the shape's side. Goes out: the pixels along that normal, each with its squared
 * distance from the outline and the vector that leads back to it. The cost follows the outline's length times the
 * width.
 */
#include "surface/offsetmerge.h"
#include "surface/sweep.h"

namespace zr32 {

/* A pixel that no ray is in before it starts. */
constexpr int32_t noPixel = 0xffffff;

/* On the rim the distance is overwritten, whatever stands there; the vector, half a pixel out of the shape, gives way
 * to one that is shorter than 1.5 pixels. */
static void WriteRim(const SWEEP *sweep, size_t index)
{
    if (sweep->planes.dist) sweep->planes.dist[index] = distOnOutline;
    if (!sweep->planes.vectors) return;
    SURFVEC16 *const pixel = sweep->planes.vectors + index;
    const POINTDB first = FirstVector(pixel);
    if ((pixel->x1 == 0 && pixel->y1 == 0) || Length(first) >= 1.5)
        *pixel = {VectorWord(sweep->n.x * -128), VectorWord(sweep->n.y * -128), 0, 0};
}

/* Outside positions of the rim leave pixels alone that the shape already covers well. */
static int RimIsCovered(const SWEEP *sweep, double t, int32_t px, int32_t py)
{
    if (t == 0) return 0;
    const uint8_t byte = SweepMaskByte(sweep, px, py);
    return byte > (t == -1 ? 0x80 : 0xf0);
}

double RayEntry(const POINTDB &origin, const POINTDB &direction, double from, double step, double width, double height)
{
    const double at[2] = {origin.x, origin.y};
    const double along[2] = {direction.x, direction.y};
    const double size[2] = {width, height};
    double entry = from;
    for (int axis = 0; axis < 2; axis++) {
        const double start = at[axis] + from * along[axis];
        if (start >= 1 && start < size[axis]) continue;
        if (start < 1 ? !(along[axis] > 0) : !(along[axis] < 0)) return farthestRay; /* it never comes nearer */
        /* Early by what a position and this sum may be rounded, taken largely. */
        const double border = start < 1 ? 1 : size[axis];
        const double reached =
            (border - at[axis]) / along[axis] - (std::fabs(at[axis]) + size[axis]) / std::fabs(along[axis]) * 1e-15;
        if (!(reached < farthestRay)) return farthestRay;
        if (reached > entry) entry = reached;
    }
    const double steps = std::floor((entry - from) / step) - 2;
    return steps > 0 ? from + steps * step : from;
}

/* The last position at or before reach. */
static double RayLast(double from, double step, double reach)
{
    double last = from + std::floor((reach - from) / step) * step;
    while (last > reach) last -= step;
    return last;
}

/* The pixel a ray has last been in: it is not visited twice in a row. */
struct RAYPIXEL {
    int32_t x;
    int32_t y;
};

static void CastRim(const SWEEP *sweep, double reach, RAYPIXEL *last)
{
    for (double t = sweep->rayStart; t <= 0 && t <= reach; t += sweep->rayStep) {
        const POINTDB q = sweep->p + sweep->n * t;
        if (!RayOnRaster(q, sweep->width, sweep->height)) continue;
        const RAYPIXEL pixel = {static_cast<int32_t>(q.x), static_cast<int32_t>(q.y)};
        if (pixel.x == last->x && pixel.y == last->y) continue;
        *last = pixel;
        size_t index;
        if (SweepPlanePixel(sweep, q, &index) && !RimIsCovered(sweep, t, pixel.x, pixel.y)) WriteRim(sweep, index);
    }
}

/* A position of a ray and its pixel. */
struct RAYPOSITION {
    POINTDB q;
    RAYPIXEL pixel;
};

/* Positions are taken in runs, as a ray's steps from pixel to pixel are too irregular to be guessed: of a run that lies
 * on the raster as a whole those that enter a pixel are picked out first, without a branch, then written. */
constexpr int runLength = 16;

/* Of so many positions from t on those that enter a pixel; gives their number. */
static int PickEntries(const POINTDB &p, const POINTDB &n, double t, double step, int positions, RAYPIXEL *last,
                       RAYPOSITION *entries)
{
    int count = 0;
    for (int i = 0; i < positions; i++, t += step) {
        const POINTDB q = p + n * t;
        const RAYPIXEL pixel = {static_cast<int32_t>(q.x), static_cast<int32_t>(q.y)};
        entries[count] = {q, pixel};
        count += static_cast<int>(pixel.x != last->x) | static_cast<int>(pixel.y != last->y);
        *last = pixel;
    }
    return count;
}

static void WriteInterior(const SWEEP *sweep, const RAYPOSITION *entries, int count)
{
    const POINTDB p = sweep->p;
    const POINTDB n = sweep->n;
    const int onCurve = sweep->onCurve;
    const int elsewhere = sweep->elsewhere;
    const size_t stride = static_cast<size_t>(sweep->planes.width);
    float *const dist = sweep->planes.dist;
    SURFVEC16 *const vectors = sweep->planes.vectors;
    for (int i = 0; i < count; i++) {
        const POINTDB q = entries[i].q;
        const RAYPIXEL pixel = entries[i].pixel;
        size_t index = static_cast<size_t>(pixel.y) * stride + static_cast<size_t>(pixel.x);
        if (elsewhere && !SweepPlanePixel(sweep, q, &index)) continue;
        const POINTDB v = OffsetToFoot(q, pixel.x, pixel.y, p, n);
        const double lengthSq = Dot(v, v);
        if (dist) MergeDistance(lengthSq, dist + index);
        if (vectors) MergeRayVector(v, lengthSq, onCurve, vectors + index);
    }
}

static void CastInterior(const SWEEP *sweep, double reach, RAYPIXEL last)
{
    const POINTDB p = sweep->p;
    const POINTDB n = sweep->n;
    const double step = sweep->rayStep;
    const double width = sweep->width;
    const double height = sweep->height;
    RAYPOSITION entries[runLength];
    for (double t = RayEntry(p, n, step, step, width, height); t <= reach;) {
        const POINTDB q = p + n * t;
        if (!RayOnRaster(q, width, height)) {
            if (RayHasLeft(q, n, width, height)) return;
            t += step;
            continue;
        }
        int positions = runLength;
        if (t + (runLength - 1) * step > reach) positions = static_cast<int>((reach - t) / step) + 1;
        if (!RayOnRaster(p + n * (t + (positions - 1) * step), width, height)) positions = 1;
        WriteInterior(sweep, entries, PickEntries(p, n, t, step, positions, &last, entries));
        t += positions * step;
    }
}

static void CastRay(SWEEP *sweep)
{
    const double reach = sweep->reach < farthestRay ? sweep->reach : farthestRay;
    RAYPIXEL last = {noPixel, noPixel};
    if (!(sweep->rayStart <= sweep->reach)) return;
    CastRim(sweep, reach, &last);
    CastInterior(sweep, reach, last);
    if (sweep->onCurve) sweep->lastEnd = sweep->p + sweep->n * RayLast(sweep->rayStart, sweep->rayStep, reach);
}

static constexpr SWEEPRULES edgeRules = {.useSample = CastRay,
                                         .wholeChain = 1,
                                         .followFans = 1,
                                         .shortestLine = 0.0,
                                         .restingVote = 1,
                                         .abortSubCode = abortInSweep,
                                         .abortIndex = 0};
static constexpr SWEEPRULES envelopeRules = {.useSample = CastRay,
                                             .wholeChain = 0,
                                             .followFans = 1,
                                             .shortestLine = 0.0,
                                             .restingVote = 1,
                                             .abortSubCode = abortInSweep,
                                             .abortIndex = 1};

int VMapEdgeSweep(PATHREC *path, double width, int32_t outset, const SURFACEMAP *map, PATHBUF mask)
{
    if (!path || width == 0 || !MapHasPlanes(map) || !mask) return 0;
    SWEEP sweep;
    SweepInit(&edgeRules, map, mask, width, &sweep);
    sweep.rayStart = outset < 0 ? -1 : 0;
    return SweepChain(path, &sweep);
}

int VMapEnvelopeSweep(PATHREC *lattice, double width, const SURFACEMAP *map, PATHBUF mask, int32_t maskLeft,
                      int32_t maskTop)
{
    if (!lattice || width == 0 || !MapHasPlanes(map) || !mask) return 0;
    SWEEP sweep;
    SweepInit(&envelopeRules, map, mask, width, &sweep);
    sweep.rayStart = -1;
    sweep.place = PlaceOnMask(map->zoom, maskLeft, maskTop);
    sweep.elsewhere = 1;
    sweep.shift = {static_cast<double>(map->originX) - maskLeft, static_cast<double>(map->originY) - maskTop};
    sweep.width = sweep.maskInfo.width;
    sweep.height = sweep.maskInfo.height;
    return SweepChain(lattice, &sweep);
}

} // namespace zr32
