/* exact.cpp - the exact distance surface: from each pixel to the true nearest point of the outline, on both sides.
 *
 * In come the edge tables, with the role of each crossing of a row; out go the planes. For each pixel of a row the
 * crossings tell whether it lies inside and how far it need look; the nearest segments in that reach are measured,
 * corners are mitred, and the nearest is written, with a second one where the pixel lies on a ridge.
 */
#include "surface/exact.h"
#include "comm/zr32comm.h"
#include "surface/offsetmerge.h"

#include <algorithm>
#include <utility>

namespace zr32 {

namespace {

/* ---- inside or outside ---- */

/* A row on its way from left to right. */
struct SPANWALK {
    const EDGEENTRY *entries;
    uint32_t count;
    uint32_t next; /* the first entry to the right that still has its node; count: none */
    int hasLeft;   /* the span that it ends has an entry that begins it, other than the row's first */
    double left;
    double noRight; /* what stands in for the place of the next entry when there is none */
};

struct PIXELSPAN {
    int inside;
    double right;
    double reach;
};

/* The nearest entry before the next one at which the shape is entered. The row's first entry is left out, deliberately:
 * the leftmost span takes its reach from the right alone. */
void FindLeft(SPANWALK *walk)
{
    walk->hasLeft = 0;
    for (uint32_t i = walk->next; i-- > 1;) {
        if (!NearFlag(&walk->entries[i]) || !walk->entries[i].node) continue;
        walk->hasLeft = 1;
        walk->left = std::fabs(walk->entries[i].crossing);
        return;
    }
}

void SpanStart(const SURFACEEDGES *edges, int32_t y, SPANWALK *walk)
{
    *walk = {};
    walk->entries = EdgeTableRow(edges->rows, static_cast<uint32_t>(y), &walk->count);
    walk->noRight = y + 0.0001; /* y and not x, deliberately */
    while (walk->next < walk->count && !walk->entries[walk->next].node) walk->next++;
    FindLeft(walk);
}

/* Pixels come in order of x. */
void SpanAt(int32_t x, SPANWALK *walk, PIXELSPAN *span)
{
    const uint32_t before = walk->next;
    while (walk->next < walk->count &&
           !(std::fabs(walk->entries[walk->next].crossing) > x && walk->entries[walk->next].node))
        walk->next++;
    if (walk->next != before) FindLeft(walk);
    *span = {0, walk->noRight, 1.0};
    if (walk->next == walk->count) return;
    const EDGEENTRY *const entry = &walk->entries[walk->next];
    span->right = std::fabs(entry->crossing);
    if (NearFlag(entry)) return; /* the next edge enters the shape, so the pixel is outside */
    span->inside = 1;
    span->reach = span->right - x + 1.0;
    if (walk->hasLeft) span->reach = std::max(span->reach, x - walk->left + 1.0);
}

/* ---- corners ---- */

int IsPair(const NEARENTRY *a, const NEARENTRY *b)
{
    return a->dist2 == b->dist2 && a->atEnd && b->atEnd;
}

int SameVector(const NEARENTRY *a, const NEARENTRY *b)
{
    return a->vector.x == b->vector.x && a->vector.y == b->vector.y;
}

/* Distances of entry i and the one behind it to the lines that meet in their vertex. Two vertices may be equally far:
 * then the entry behind the two takes the place of one of them. */
void MitreAt(uint32_t i, NEARLIST *list, REACH *reach)
{
    NEARENTRY *const e1 = NearAt(i, list);
    if (list->wide && !SameVector(e1, e1 + 1)) {
        NEARENTRY *const behind = NearAt(i + 2, list);
        if (behind->dist2 != e1->dist2) return;
        std::swap(*behind, SameVector(behind, e1) ? e1[1] : *e1);
    }
    VMapMitrePair({static_cast<double>(list->x), static_cast<double>(list->y)}, e1, e1 + 1, reach);
}

/* e[0] and e[1] are one corner, e[2] and e[3] another: the nearer one comes first. A second entry that lies more than a
 * pixel below the first is none of the first's ridge. */
void ResolveCorners(NEARENTRY *e)
{
    if (e[2].dist2 < e[0].dist2) {
        const int apart = std::sqrt(e[2].dist2) - std::sqrt(e[3].dist2) >= 1.0;
        e[1] = apart ? e[0] : e[3];
        e[0] = e[2];
    } else if (std::sqrt(e[0].dist2) - std::sqrt(e[1].dist2) > 1.0) {
        e[1] = e[2];
    }
}

/* Mitres of the corners among the first four entries. The distance plane alone looks at the first two. */
void MitreCorners(NEARLIST *list, REACH *reach)
{
    NEARENTRY *const e = NearAt(0, list);
    NearAt(list->wide ? 3 : 1, list);
    if (!list->wide) {
        if (IsPair(e, e + 1)) MitreAt(0, list, reach);
    } else if (IsPair(e, e + 1)) {
        MitreAt(0, list, reach);
        if (IsPair(e + 2, e + 3)) {
            MitreAt(2, list, reach);
            ResolveCorners(e);
        } else if (std::sqrt(e[0].dist2) - std::sqrt(e[1].dist2) > 1.0) {
            e[1] = e[2];
        }
    } else if (IsPair(e + 1, e + 2)) {
        MitreAt(1, list, reach);
        if (e[1].dist2 < e[0].dist2) {
            if (std::sqrt(e[1].dist2) - std::sqrt(e[2].dist2) >= 1.0) {
                std::swap(e[0], e[1]);
            } else {
                e[0] = e[1];
                e[1] = e[2];
            }
        }
    } else if (IsPair(e + 2, e + 3)) {
        MitreAt(2, list, reach);
        ResolveCorners(e);
    }
}

/* ---- writing ---- */

/* A very short vector becomes longer and keeps its direction: a word of 0 would look as if there were no surface. One
 * that is level or upright becomes half as long as the others, deliberately. */
void VMapMinVector(POINTDB *v)
{
    constexpr double shortest = 0.2;
    constexpr double shortestOnAxis = 0.1;
    if (std::fabs(v->x) >= shortest || std::fabs(v->y) >= shortest) return;
    if (v->x == 0) {
        v->y = v->y > 0 ? shortestOnAxis : -shortestOnAxis;
    } else if (v->y == 0) {
        v->x = v->x > 0 ? shortestOnAxis : -shortestOnAxis;
    } else {
        const double rise = v->y / v->x;
        const double run = v->x / v->y;
        if (std::fabs(rise) < 1) {
            v->x = v->x > 0 ? shortest : -shortest;
            v->y = v->x * rise;
        } else {
            v->y = v->y > 0 ? shortest : -shortest;
            v->x = v->y * run;
        }
    }
}

/* A ridge: another edge at nearly the same distance, at more than about 70 degrees to the first. */
int FindSecondVector(const POINTDB &p, NEARLIST *list, POINTDB *second)
{
    constexpr double sameHeight = 0.7;
    constexpr double bent = 0.34;
    const double length = Length(p);
    const double beyond = length + sameHeight + 0.01; /* clear of any rounding */
    for (uint32_t i = 1; i < list->produced || NearBeyond(list) < beyond; i++) {
        if (!NearExists(i, list)) return 0;
        const POINTDB q = NearAt(i, list)->vector;
        if (std::fabs(length - Length(q)) >= sameHeight) return 0;
        if (Dot(p, q) / (length * Length(q)) < bent) {
            *second = q;
            VMapMinVector(second);
            return 1;
        }
    }
    return 0;
}

SURFVEC16 VectorsOfPixel(int inside, NEARLIST *list)
{
    POINTDB p = NearAt(0, list)->vector;
    VMapMinVector(&p);
    SURFVEC16 words = {};
    SetFirstVector(p, &words);
    POINTDB second;
    if (inside && FindSecondVector(p, list, &second)) SetSecondVector(second, &words);
    return words;
}

struct EXACTPASS {
    PLANES planes;
    int32_t noMitre;
    int32_t floatVectors;
    REACH reach;
    NEARLIST list;
};

void WritePixel(int inside, size_t index, EXACTPASS *pass)
{
    const NEARENTRY *const nearest = NearAt(0, &pass->list);
    if (nearest->dist2 == 0) { /* also when there is nothing in reach */
        if (inside && pass->list.wide && pass->planes.dist) pass->planes.dist[index] = distFlatTop;
        return;
    }
    if (pass->planes.dist) pass->planes.dist[index] = static_cast<float>(inside ? nearest->dist2 : -nearest->dist2);
    if (!pass->list.wide) return;
    if (pass->floatVectors)
        pass->planes.vectorsF[index] = {static_cast<float>(nearest->vector.x), static_cast<float>(nearest->vector.y)};
    else
        pass->planes.vectors[index] = VectorsOfPixel(inside, &pass->list);
}

void ExactPixel(int32_t x, int32_t y, const PIXELSPAN &span, EXACTPASS *pass)
{
    const double reach = span.reach > pass->reach.width ? pass->reach.width : span.reach;
    NEARLIST *const list = &pass->list;
    NearListStart(x, y, reach, pass->reach.width, span.right, list);
    int inside = span.inside;
    if (!inside && list->waitingCount == 0) return;
    /* Just left of an edge that it is not past yet, a pixel counts as inside. */
    if (!inside && list->wide && span.right > x && span.right - x < 0.05) inside = NearAt(0, list)->vector.x < 0;
    if (inside && !pass->noMitre) MitreCorners(list, &pass->reach);
    WritePixel(inside, static_cast<size_t>(y) * static_cast<size_t>(pass->planes.width) + static_cast<size_t>(x), pass);
}

int GoOn(const SURFACEMAP *map, int32_t y, int32_t height)
{
    const int32_t percent = static_cast<int32_t>(int64_t{y} * 100 / height);
    return MapProgress(map, progressAdvance, percent) && !zr32IsEscPressed();
}

void ExactRows(const SURFACEEDGES *edges, const SURFACEMAP *map, EXACTPASS *pass)
{
    const int32_t height = pass->planes.height;
    if (map->progress) {
        map->progress->active = 1;
        map->progress->rangeFrom = 0;
        map->progress->rangeTo = height;
    }
    MapProgress(map, progressBegin, 0);
    for (int32_t y = 0; y < height; y++) {
        if (!GoOn(map, y, height)) {
            MapDropPlanes(map);
            break;
        }
        SPANWALK walk;
        PIXELSPAN span;
        SpanStart(edges, y, &walk);
        for (int32_t x = 0; x < pass->planes.width; x++) {
            SpanAt(x, &walk, &span);
            ExactPixel(x, y, span, pass);
        }
    }
    MapProgress(map, progressEnd, height);
}

} // namespace

int VMapExactDistance(SURFACEEDGES *edges, double width, const SURFACEMAP *map, int32_t noMitre, int32_t floatVectors)
{
    if (!edges->rows || width == 0 || !MapHasPlanes(map)) return 0;
    EXACTPASS pass = {};
    pass.planes = MapPlanes(map);
    pass.noMitre = noMitre;
    pass.floatVectors = floatVectors;
    pass.reach = {width, width,
                  Length({static_cast<double>(pass.planes.width), static_cast<double>(pass.planes.height)})};
    /* Without the columns some pixels would miss their nearest segment and nobody would know. */
    const int ready = edges->columns && NearListAlloc(edges, map, &pass.list);
    if (ready) {
        ExactRows(edges, map, &pass);
    } else {
        MapDropPlanes(map);
        ReportError(errorMemory, abortInMitre, 0);
    }
    NearListFree(&pass.list);
    return ready;
}

} // namespace zr32
