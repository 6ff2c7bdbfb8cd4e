/* exact_plain.cpp - the exact distance surface in its plain form, see exact_plain.h. */
#include "surface/exact_plain.h"

#include "comm/zr32comm.h"
#include "geometry/nearest.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace zr32test {

using namespace zr32;

namespace {

struct ENTRY {
    double dist2;
    PATHNODE *node;
    int32_t atEnd;
    double x;
    double y;
};

struct PLAIN {
    SURFACEEDGES *edges;
    const SURFACEMAP *map;
    int wide;
    double baseWidth;
    double width;
    double diagonal;
    double *lastEdge;
    std::vector<ENTRY> list;
    size_t count;
};

void Collect(EDGEENTRY *row, uint32_t entries, double low, double high, PLAIN *plain)
{
    for (uint32_t i = 0; i < entries; i++) {
        const double at = std::fabs(row[i].crossing);
        if (!(at > low && at < high) || !row[i].node) continue;
        const auto end = plain->list.begin() + static_cast<ptrdiff_t>(plain->count);
        PATHNODE *node = row[i].node;
        if (std::find_if(plain->list.begin(), end, [node](const ENTRY &e) { return e.node == node; }) != end) continue;
        if (plain->count + 8 > plain->list.size()) plain->list.resize(plain->list.size() * 2);
        plain->list[plain->count++] = {0, node, 0, 0, 0};
    }
}

POINTDB Place(const PLAIN *plain, const PATHNODE *node)
{
    return {FixToDb(node->x) * plain->map->zoom - plain->map->originX + 0.5,
            FixToDb(node->y) * plain->map->zoom - plain->map->originY + 0.5};
}

int MaskKind(PATHNODE *node)
{
    node->type = static_cast<uint16_t>(node->type & 0xFFE);
    return node->type;
}

void MeasureAll(double right, int32_t x, int32_t y, PLAIN *plain)
{
    for (size_t i = 0; i < plain->count; i++) {
        ENTRY &e = plain->list[i];
        const int kind = MaskKind(e.node);
        PLAINMEASURE m = {0, 0, 0, 0};
        if (kind == 2) {
            m = PlainMeasureLine(right, x, y, Place(plain, e.node - 1), Place(plain, e.node));
        } else if (kind == 4) {
            POINTDB controls[4];
            for (int k = 0; k < 4; k++) controls[k] = Place(plain, e.node + k - 1);
            m = PlainMeasureCurve(right, x, y, controls, plain->wide);
        }
        e.dist2 = m.dist2;
        e.atEnd = m.atEnd;
        e.x = m.x;
        e.y = m.y;
    }
    std::stable_sort(plain->list.begin(), plain->list.begin() + static_cast<ptrdiff_t>(plain->count),
                     [](const ENTRY &a, const ENTRY &b) { return a.dist2 < b.dist2; });
}

struct LINE {
    POINTDB a;
    POINTDB b;
};

bool Same(const POINTDB &a, const POINTDB &b)
{
    return a.x == b.x && a.y == b.y;
}

bool Tangent(const PLAIN *plain, PATHNODE *node, const POINTDB &pixel, LINE *line)
{
    const int kind = MaskKind(node);
    if (kind == 2) {
        *line = {Place(plain, node - 1), Place(plain, node)};
        return true;
    }
    if (kind != 4) return false;
    POINTDB p[4];
    for (int k = 0; k < 4; k++) p[k] = Place(plain, node + k - 1);
    const POINTDB toStart = pixel - p[0];
    const POINTDB toEnd = pixel - p[3];
    if (Dot(toStart, toStart) < Dot(toEnd, toEnd))
        *line = {p[0], Same(p[1], p[0]) ? p[2] : p[1]};
    else
        *line = {Same(p[2], p[3]) ? p[1] : p[2], p[3]};
    return !Same(line->a, line->b);
}

void ExtendedDistances(const POINTDB &pixel, LINE a, LINE b, ENTRY *e1, ENTRY *e2, PLAIN *plain)
{
    if (!Same(a.b, b.b)) std::swap(a.a, a.b);
    if (!Same(a.b, b.b)) {
        std::swap(a.a, a.b);
        std::swap(b.a, b.b);
    }
    POINTDB foot[2];
    const LINE lines[2] = {a, b};
    for (int i = 0; i < 2; i++) {
        const POINTDB d = lines[i].a - lines[i].b;
        const POINTDB q = pixel - lines[i].b;
        foot[i] = q - d * (Dot(q, d) / Dot(d, d));
    }
    const double da = Dot(foot[0], foot[0]);
    const double db = Dot(foot[1], foot[1]);
    const int first = db > da ? 1 : 0;
    e1->dist2 = first ? db : da;
    e2->dist2 = first ? da : db;
    e1->x = -foot[first].x;
    e1->y = -foot[first].y;
    e2->x = -foot[1 - first].x;
    e2->y = -foot[1 - first].y;

    double *last = plain->lastEdge;
    if ((last[0] == a.a.x && last[1] == a.a.y && last[2] == a.b.x && last[3] == a.b.y) ||
        (last[0] == a.b.x && last[1] == a.b.y && last[2] == a.a.x && last[3] == a.a.y))
        return;
    last[0] = a.a.x;
    last[1] = a.a.y;
    last[2] = a.b.x;
    last[3] = a.b.y;
    const POINTDB u = a.b - a.a;
    const POINTDB v = b.b - b.a;
    if (u.x == -v.x && u.y == -v.y) return;
    const double c = Dot(u, v) / (Length(u) * Length(v));
    plain->width = c > 0 ? 2.0 * plain->baseWidth * std::sqrt(1.0 / (2.0 * (1.0 - c))) : 1.5 * plain->baseWidth;
    if (!std::isfinite(plain->width)) plain->width = plain->diagonal;
}

void MitrePair(int32_t x, int32_t y, size_t i, PLAIN *plain)
{
    ENTRY *e1 = &plain->list[i];
    ENTRY *e2 = e1 + 1;
    ENTRY *behind = e1 + 2;
    if (plain->wide && !(e1->x == e2->x && e1->y == e2->y)) {
        if (behind->dist2 != e1->dist2) return;
        if (behind->x == e1->x && behind->y == e1->y)
            std::swap(*behind, *e2);
        else
            std::swap(*behind, *e1);
    }
    const POINTDB pixel = {static_cast<double>(x), static_cast<double>(y)};
    LINE a;
    LINE b;
    const bool hasA = e1->node && Tangent(plain, e1->node, pixel, &a);
    const bool hasB = e2->node && Tangent(plain, e2->node, pixel, &b);
    if (hasA && hasB) ExtendedDistances(pixel, a, b, e1, e2, plain);
}

bool IsPair(const ENTRY &a, const ENTRY &b)
{
    return a.dist2 == b.dist2 && a.atEnd && b.atEnd;
}

void Resolve(ENTRY *e)
{
    if (e[2].dist2 < e[0].dist2) {
        if (std::sqrt(e[2].dist2) - std::sqrt(e[3].dist2) >= 1.0) {
            e[1] = e[0];
            e[0] = e[2];
        } else {
            e[0] = e[2];
            e[1] = e[3];
        }
    } else if (std::sqrt(e[0].dist2) - std::sqrt(e[1].dist2) > 1.0) {
        e[1] = e[2];
    }
}

void Corners(int32_t x, int32_t y, PLAIN *plain)
{
    ENTRY *e = plain->list.data();
    if (!plain->wide) {
        if (plain->count > 0 && IsPair(e[0], e[1])) MitrePair(x, y, 0, plain);
        return;
    }
    if (plain->count > 0 && IsPair(e[0], e[1])) {
        MitrePair(x, y, 0, plain);
        if (plain->count >= 4 && IsPair(e[2], e[3])) {
            MitrePair(x, y, 2, plain);
            Resolve(e);
        } else if (std::sqrt(e[0].dist2) - std::sqrt(e[1].dist2) > 1.0) {
            e[1] = e[2];
        }
    } else if (plain->count >= 3 && IsPair(e[1], e[2])) {
        MitrePair(x, y, 1, plain);
        if (e[1].dist2 < e[0].dist2) {
            if (std::sqrt(e[1].dist2) - std::sqrt(e[2].dist2) >= 1.0) {
                std::swap(e[0], e[1]);
            } else {
                e[0] = e[1];
                e[1] = e[2];
            }
        }
    } else if (plain->count >= 3 && IsPair(e[2], e[3])) {
        MitrePair(x, y, 2, plain);
        Resolve(e);
    }
}

void MinVector(double *x, double *y)
{
    if (std::fabs(*x) >= 0.2 || std::fabs(*y) >= 0.2) return;
    if (*x == 0) {
        *y = *y > 0 ? 0.1 : -0.1;
    } else if (*y == 0) {
        *x = *x > 0 ? 0.1 : -0.1;
    } else {
        const double r = *y / *x;
        const double inverse = *x / *y;
        if (std::fabs(r) < 1) {
            *x = *x > 0 ? 0.2 : -0.2;
            *y = *x * r;
        } else {
            *y = *y > 0 ? 0.2 : -0.2;
            *x = *y * inverse;
        }
    }
}

int16_t Word(double v)
{
    return static_cast<int16_t>(TruncInt(v * 256));
}

void Write(bool inside, size_t index, const PLANES &planes, int32_t floatVectors, PLAIN *plain)
{
    const ENTRY &e1 = plain->list[0];
    if (e1.dist2 == 0) {
        if (inside && plain->wide && planes.dist) planes.dist[index] = 300.0F;
        return;
    }
    if (planes.dist) planes.dist[index] = static_cast<float>(inside ? e1.dist2 : -e1.dist2);
    if (!plain->wide) return;
    if (floatVectors) {
        planes.vectorsF[index] = {static_cast<float>(e1.x), static_cast<float>(e1.y)};
        return;
    }
    double px = e1.x;
    double py = e1.y;
    MinVector(&px, &py);
    SURFVEC16 words = {Word(px), Word(py), 0, 0};
    for (size_t i = 1; inside && i < plain->count; i++) {
        double qx = plain->list[i].x;
        double qy = plain->list[i].y;
        const double p = std::sqrt(px * px + py * py);
        const double q = std::sqrt(qx * qx + qy * qy);
        if (std::fabs(p - q) >= 0.7) break;
        if ((px * qx + py * qy) / (p * q) < 0.34) {
            MinVector(&qx, &qy);
            words.x2 = Word(qx);
            words.y2 = Word(qy);
            break;
        }
    }
    planes.vectors[index] = words;
}

void Pixel(int32_t x, int32_t y, const PLANES &planes, int32_t noMitre, int32_t floatVectors, PLAIN *plain)
{
    uint32_t count = 0;
    EDGEENTRY *row = EdgeTableRow(plain->edges->rows, static_cast<uint32_t>(y), &count);
    uint32_t at = 0;
    while (at < count && !(std::fabs(row[at].crossing) > x && row[at].node)) at++;
    bool inside = false;
    double right = y + 0.0001;
    double reach = 1.0;
    if (at < count) {
        right = std::fabs(row[at].crossing);
        inside = row[at].spanFlag == 0;
        if (inside) {
            reach = right - x + 1.0;
            for (uint32_t i = at; i-- > 1;) {
                if (!row[i].spanFlag || !row[i].node) continue;
                reach = std::max(reach, x - std::fabs(row[i].crossing) + 1.0);
                break;
            }
        }
    }
    if (reach > plain->width) reach = plain->width;

    std::fill(plain->list.begin(), plain->list.end(), ENTRY{0, nullptr, 0, 0, 0});
    plain->count = 0;
    const double yLow = std::max(y - reach, 0.0);
    const double yHigh = std::min(y + reach + 0.5, static_cast<double>(plain->edges->height));
    for (int32_t r = TruncInt(yLow); r <= TruncInt(yHigh); r++) {
        EDGEENTRY *list = EdgeTableRow(plain->edges->rows, static_cast<uint32_t>(r), &count);
        Collect(list, count, x - reach, x + reach, plain);
    }
    const double xLow = std::max(x - reach, 0.0);
    const double xHigh = std::min(x + reach, static_cast<double>(planes.width));
    for (int32_t c = TruncInt(xLow); c <= TruncInt(xHigh); c++) {
        EDGEENTRY *list = EdgeTableRow(plain->edges->columns, static_cast<uint32_t>(c), &count);
        Collect(list, count, TruncInt(yLow), TruncInt(yHigh), plain);
    }
    MeasureAll(right, x, y, plain);
    if (plain->wide && !inside && right > x && right - x < 0.05 && plain->list[0].x < 0) inside = true;
    if (inside && !noMitre) Corners(x, y, plain);
    const size_t index = static_cast<size_t>(y) * static_cast<size_t>(planes.width) + static_cast<size_t>(x);
    Write(inside, index, planes, floatVectors, plain);
}

} // namespace

PLAINMEASURE PlainMeasureLine(double right, double x, double y, POINTDB a, POINTDB b)
{
    if (a.y == b.y && y == a.y && x >= std::min(a.x, b.x) && x <= std::max(a.x, b.x)) {
        a.y += 0.00001;
        b.y += 0.00001;
    }
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    for (;;) {
        const double s = ((x - a.x) * dx + (y - a.y) * dy) / (dx * dx + dy * dy);
        double px;
        double py;
        int atEnd = 1;
        if (s < 0) {
            px = x - a.x;
            py = y - a.y;
        } else if (s > 1) {
            px = x - b.x;
            py = y - b.y;
        } else {
            atEnd = 0;
            px = (x - a.x) - dx * s;
            py = (y - a.y) - dy * s;
            if (std::fabs(px) < 0.0001 && std::fabs(py) < 0.0001) {
                x += x >= right ? 0.01 : -0.01;
                if (dy == 0) y += a.y <= y ? 0.01 : -0.01;
                continue;
            }
        }
        return {px * px + py * py, -px, -py, atEnd};
    }
}

PLAINMEASURE PlainMeasureCurve(double right, double x, double y, const POINTDB *controls, int wantVector)
{
    for (;;) {
        double roots[bezierRootsMax];
        const int count = BezierRoots(controls, {x, y}, roots);
        POINTDB best = controls[0];
        int atEnd = 1;
        const auto distance = [&](const POINTDB &q) { return (q.x - x) * (q.x - x) + (q.y - y) * (q.y - y); };
        for (int i = 0; i < count; i++) {
            POINTDB q[4] = {controls[0], controls[1], controls[2], controls[3]};
            const double t = roots[i];
            for (int level = 3; level > 0; level--)
                for (int k = 0; k < level; k++)
                    q[k] = {(1 - t) * q[k].x + t * q[k + 1].x, (1 - t) * q[k].y + t * q[k + 1].y};
            if (distance(q[0]) < distance(best)) {
                best = q[0];
                atEnd = std::fabs(t - 1) < 0.00001;
            }
        }
        if (distance(controls[3]) < distance(best)) {
            best = controls[3];
            atEnd = 1;
        }
        const PLAINMEASURE measure = {distance(best), best.x - x, best.y - y, atEnd};
        if (!wantVector || std::fabs(measure.x) >= 0.0001 || std::fabs(measure.y) >= 0.0001) return measure;
        x += x >= right ? 0.01 : -0.01;
        if (controls[0].y == controls[3].y && controls[0].y == 0) y += 0.01;
    }
}

int PlainExactDistance(SURFACEEDGES *edges, double width, const SURFACEMAP *map, int32_t noMitre, int32_t floatVectors,
                       double lastEdge[4])
{
    if (!edges->rows || width == 0 || !MapHasPlanes(map)) return 0;
    const PLANES planes = MapPlanes(map);
    PLAIN plain = {edges, map, planes.vectors != nullptr, width, width, 0, lastEdge, {}, 0};
    plain.diagonal = std::sqrt(static_cast<double>(planes.width) * planes.width +
                               static_cast<double>(planes.height) * planes.height);
    plain.list.resize(100);
    if (map->progress) {
        map->progress->active = 1;
        map->progress->rangeFrom = 0;
        map->progress->rangeTo = planes.height;
    }
    MapProgress(map, progressBegin, 0);
    for (int32_t y = 0; y < planes.height; y++) {
        if (!MapProgress(map, progressAdvance, y * 100 / planes.height) || zr32IsEscPressed()) {
            MapDropPlanes(map);
            break;
        }
        for (int32_t x = 0; x < planes.width; x++) Pixel(x, y, planes, noMitre, floatVectors, &plain);
    }
    MapProgress(map, progressEnd, planes.height);
    return 1;
}

} // namespace zr32test
