/* exactnear.cpp - the candidates of one pixel after the other, nearest first, measured only as far as they are asked
 * for.
 *
 * A segment is a candidate of a pixel if one of its crossings lies in the pixel's box. Three things keep that cheap:
 * segments are gathered once for a stretch of a row, with room for all its pixels; a segment cannot have come nearer
 * than the pixel has moved since it was last measured, which bounds its distance from below; and only a segment whose
 * bound says that it may be next is looked up in the box and measured. Equal distances keep the order in which a search
 * of the whole box would have met their segments: rows from the top, then columns from the left, each list in its
 * order.
 */
#include "surface/exact.h"

#include <algorithm>
#include <limits>

namespace zr32 {

/* A crossing of a segment with a row or a column. */
struct NEARHIT {
    double at;
    int32_t line;   /* the row or column */
    uint32_t place; /* in its list */
};

struct NEARWAIT {
    double bound2; /* squared distance below which the segment cannot lie */
    uint32_t segment;
};

namespace {

constexpr uint32_t mostSegments = 0x3FFFFFFF; /* their numbers share a word with the role of a crossing */
constexpr uint32_t zeroEntries = 8;           /* that may be asked for behind the last one */

/* A pixel on a segment is moved off it before it is measured, and positions round. */
constexpr double boundSlack = 0.03;

constexpr int32_t stretchShortest = 16;
constexpr int32_t stretchLongest = 256;

double Magnitude(const EDGEENTRY &entry)
{
    return std::fabs(entry.crossing);
}

uint32_t SegmentOfEntry(const EDGEENTRY &entry)
{
    return static_cast<uint32_t>(entry.spanFlag) >> 1;
}

/* ---- reading the tables ---- */

/* Calls visit(line, place, entry) for each entry with a node. */
template <typename VISIT> void ForEachEntry(EDGETABLE *table, VISIT visit)
{
    for (uint32_t line = 0; line < EdgeTableRows(table); line++) {
        uint32_t count = 0;
        EDGEENTRY *const entries = EdgeTableRow(table, line, &count);
        for (uint32_t place = 0; place < count; place++)
            if (entries[place].node) visit(line, place, &entries[place]);
    }
}

/* The distinct nodes of both tables, in order of address; null without memory, or with more than can be numbered. */
PATHNODE **NodesOfTables(const SURFACEEDGES *edges, uint32_t *count)
{
    size_t entries = 0;
    for (EDGETABLE *table : {edges->rows, edges->columns})
        ForEachEntry(table, [&](uint32_t, uint32_t, EDGEENTRY *) { entries++; });
    if (entries > SIZE_MAX / sizeof(PATHNODE *) - 1) return nullptr;
    PATHNODE **nodes = static_cast<PATHNODE **>(BufAlloc(0, (entries + 1) * sizeof(PATHNODE *)));
    if (!nodes) return nullptr;
    PATHNODE **end = nodes;
    for (EDGETABLE *table : {edges->rows, edges->columns})
        ForEachEntry(table, [&](uint32_t, uint32_t, EDGEENTRY *entry) { *end++ = entry->node; });
    std::sort(nodes, end);
    end = std::unique(nodes, end);
    if (end - nodes <= static_cast<ptrdiff_t>(mostSegments)) {
        *count = static_cast<uint32_t>(end - nodes);
        return nodes;
    }
    BufFree(nodes);
    return nullptr;
}

void SegmentRead(PATHNODE *node, const PLACEMENT &place, EXACTSEGMENT *segment)
{
    segment->node = node;
    segment->curve = NodeKind(node) == PATHNODE_CURVE;
    segment->typeMasked = node->type == NodeKind(node);
    segment->lastDistance = -1;
    const int points = segment->curve ? 4 : 2;
    for (int i = 0; i < points; i++) {
        const POINTDB p = segment->p[i] = PlaceNode(place, node + i - 1);
        segment->low = i == 0 ? p : POINTDB{std::min(segment->low.x, p.x), std::min(segment->low.y, p.y)};
        segment->high = i == 0 ? p : POINTDB{std::max(segment->high.x, p.x), std::max(segment->high.y, p.y)};
    }
}

/* Numbers the entries of a table and deals their crossings out to the segments, by line and place in it. */
NEARHIT *HitsOfTable(EDGETABLE *table, uint32_t EXACTSEGMENT::*first, NEARLIST *list)
{
    const EXACTSEGMENT *const segments = list->segments;
    size_t count = 0;
    ForEachEntry(table, [&](uint32_t, uint32_t, EDGEENTRY *entry) {
        const EXACTSEGMENT *found =
            std::lower_bound(segments, segments + list->segmentCount, entry->node,
                             [](const EXACTSEGMENT &segment, const PATHNODE *node) { return segment.node < node; });
        const uint32_t number = static_cast<uint32_t>(found - segments);
        entry->spanFlag = NearFlag(entry) | static_cast<int32_t>(number << 1);
        list->segments[number + 1].*first += 1;
        count++;
    });
    NEARHIT *hits = count <= SIZE_MAX / sizeof(NEARHIT) - 1
                        ? static_cast<NEARHIT *>(BufAlloc(0, (count + 1) * sizeof(NEARHIT)))
                        : nullptr;
    if (!hits) return nullptr;
    /* From counts to ends; dealt out from the back, each end becomes its segment's first. */
    for (uint32_t i = 0; i < list->segmentCount; i++) list->segments[i + 1].*first += list->segments[i].*first;
    for (uint32_t i = 0; i < list->segmentCount; i++) list->segments[i].*first = list->segments[i + 1].*first;
    for (uint32_t line = EdgeTableRows(table); line-- > 0;) {
        uint32_t entries = 0;
        const EDGEENTRY *const row = EdgeTableRow(table, line, &entries);
        for (uint32_t place = entries; place-- > 0;)
            if (row[place].node)
                hits[--(list->segments[SegmentOfEntry(row[place])].*first)] = {Magnitude(row[place]),
                                                                               static_cast<int32_t>(line), place};
    }
    return hits;
}

template <typename ITEM> ITEM *AllocItems(size_t count, ITEM **items)
{
    if (count > SIZE_MAX / sizeof(ITEM)) return nullptr;
    *items = static_cast<ITEM *>(BufAlloc(bufZero, count * sizeof(ITEM)));
    return *items;
}

/* ---- one segment seen from a pixel ---- */

/* The first crossing on lines first to last whose place lies between low and high; null without one. */
const NEARHIT *HitInBox(const NEARHIT *hits, const NEARHIT *end, int32_t first, int32_t last, double low, double high)
{
    hits = std::lower_bound(hits, end, first, [](const NEARHIT &hit, int32_t line) { return hit.line < line; });
    for (; hits < end && hits->line <= last; hits++)
        if (hits->at > low && hits->at < high) return hits;
    return nullptr;
}

/* Whether the segment is a candidate of the pixel, and where a search of its box meets it first. */
int SegmentInBox(const NEARLIST *list, const EXACTSEGMENT *segment, uint64_t *order)
{
    const NEARBOX &box = list->box;
    constexpr uint64_t columnsBehindRows = uint64_t{1} << 63;
    const NEARHIT *hit = HitInBox(list->rowHits + segment[0].rowHits, list->rowHits + segment[1].rowHits, box.firstRow,
                                  box.lastRow, box.xLow, box.xHigh);
    uint64_t base = 0;
    if (!hit) {
        hit = HitInBox(list->columnHits + segment[0].columnHits, list->columnHits + segment[1].columnHits,
                       box.firstColumn, box.lastColumn, box.yLow, box.yHigh);
        base = columnsBehindRows;
    }
    if (!hit) return 0;
    *order = base | static_cast<uint64_t>(hit->line) << 32 | hit->place;
    return 1;
}

/* No candidate's measured distance from the pixel is less than this. */
double BoundOfSegment(const NEARLIST *list, const EXACTSEGMENT *segment)
{
    double distance;
    if (segment->lastDistance >= 0) {
        const double dx = static_cast<double>(list->x) - segment->lastX;
        const double dy = static_cast<double>(list->y) - segment->lastY;
        distance = segment->lastDistance - std::sqrt(dx * dx + dy * dy);
    } else {
        const double dx = std::max({segment->low.x - list->x, list->x - segment->high.x, 0.0});
        const double dy = std::max({segment->low.y - list->y, list->y - segment->high.y, 0.0});
        distance = std::sqrt(dx * dx + dy * dy);
    }
    return std::max(distance - boundSlack, 0.0);
}

void MeasureSegment(uint64_t order, NEARLIST *list, EXACTSEGMENT *segment)
{
    NEARENTRY entry;
    const POINTDB pixel = {static_cast<double>(list->x), static_cast<double>(list->y)};
    if (segment->curve)
        VMapCurveDistance(list->right, pixel, segment->p, list->wide, &entry);
    else
        VMapLineDistance(list->right, pixel, {segment->p[0], segment->p[1]}, &entry);
    entry.segment = segment;
    entry.order = order;
    segment->lastDistance = std::sqrt(entry.dist2);
    segment->lastX = list->x;
    segment->lastY = list->y;

    uint32_t at = list->measured++;
    for (; at > list->produced; at--) {
        const NEARENTRY &before = list->entries[at - 1];
        if (before.dist2 < entry.dist2 || (before.dist2 == entry.dist2 && before.order < order)) break;
        list->entries[at] = before;
    }
    list->entries[at] = entry;
}

bool WaitsLonger(const NEARWAIT &a, const NEARWAIT &b)
{
    return a.bound2 > b.bound2;
}

/* ---- gathering ---- */

/* Adds the segments of a list of crossings between two places that the set does not have yet. */
void VMapCollectEdges(const EDGEENTRY *entries, uint32_t count, double low, double high, NEARLIST *list)
{
    const EDGEENTRY *const end = entries + count;
    const EDGEENTRY *entry =
        std::lower_bound(entries, end, low, [](const EDGEENTRY &a, double b) { return Magnitude(a) < b; });
    for (; entry < end && Magnitude(*entry) <= high; entry++) {
        if (!entry->node) continue;
        EXACTSEGMENT *segment = &list->segments[SegmentOfEntry(*entry)];
        if (segment->stamp == list->stamp) continue;
        segment->stamp = list->stamp;
        list->stretch[list->stretchCount++] = SegmentOfEntry(*entry);
    }
}

void CollectFromLines(EDGETABLE *table, double firstLine, double lastLine, double low, double high, NEARLIST *list)
{
    const double first = std::max(firstLine, 0.0);
    const double last = std::min(lastLine, EdgeTableRows(table) - 1.0);
    if (!(first <= last)) return;
    for (uint32_t line = static_cast<uint32_t>(first); line <= static_cast<uint32_t>(last); line++) {
        uint32_t count = 0;
        const EDGEENTRY *const entries = EdgeTableRow(table, line, &count);
        if (count) VMapCollectEdges(entries, count, low, high, list);
    }
}

/* All segments that the pixels from x on may have in their boxes, as long as none looks farther than the reach that is
 * noted, at most the widest; two pixels more on each side, since the boxes are cut to whole rows and columns. */
void GatherStretch(int32_t x, int32_t y, double reach, double widest, NEARLIST *list)
{
    const double length = std::clamp<double>(reach, stretchShortest, stretchLongest);
    list->stretchX = x;
    list->stretchEnd = WrapAdd(x, static_cast<int32_t>(length));
    list->stretchY = y;
    list->stretchReach = reach > 1 ? std::min(reach + length, widest) : reach;
    list->stretchCount = 0;
    list->stamp++;
    const double far = list->stretchReach + 2;
    const double left = x - far;
    const double right = x + length + far;
    CollectFromLines(list->edges->rows, y - far, y + far, left, right, list);
    CollectFromLines(list->edges->columns, left, right, y - far, y + far, list);
}

} // namespace

int NearListAlloc(const SURFACEEDGES *edges, const SURFACEMAP *map, NEARLIST *list)
{
    *list = {};
    list->edges = edges;
    list->wide = *map->offsetOut != nullptr;
    uint32_t count = 0;
    PATHNODE **nodes = NodesOfTables(edges, &count);
    if (nodes && AllocItems(size_t{count} + 1, &list->segments)) {
        list->segmentCount = count;
        const PLACEMENT place = PlaceOnMask(map->zoom, map->originX, map->originY);
        for (uint32_t i = 0; i < count; i++) SegmentRead(nodes[i], place, &list->segments[i]);
        list->rowHits = HitsOfTable(edges->rows, &EXACTSEGMENT::rowHits, list);
        list->columnHits = HitsOfTable(edges->columns, &EXACTSEGMENT::columnHits, list);
    }
    BufFree(nodes);
    return list->rowHits && list->columnHits && AllocItems(size_t{count} + 1, &list->stretch) &&
           AllocItems(size_t{count} + 1, &list->waiting) && AllocItems(size_t{count} + zeroEntries, &list->entries);
}

void NearListFree(NEARLIST *list)
{
    BufFree(list->segments);
    BufFree(list->rowHits);
    BufFree(list->columnHits);
    BufFree(list->stretch);
    BufFree(list->waiting);
    BufFree(list->entries);
}

void NearListStart(int32_t x, int32_t y, double reach, double widest, double right, NEARLIST *list)
{
    const int inStretch = y == list->stretchY && x >= list->stretchX && x < list->stretchEnd;
    if (!inStretch || reach > list->stretchReach) GatherStretch(x, y, reach, widest, list);
    list->x = x;
    list->y = y;
    list->right = right;
    list->waitingCount = list->produced = list->measured = 0;
    if (list->stretchCount == 0) return;

    const double rows = EdgeTableRows(list->edges->rows);
    const double yLow = std::max(y - reach, 0.0);
    const double yHigh = std::min(y + reach + 0.5, rows);
    list->box.firstRow = TruncInt(yLow);
    list->box.lastRow = TruncInt(yHigh);
    list->box.xLow = x - reach;
    list->box.xHigh = x + reach;
    list->box.firstColumn = TruncInt(std::max(x - reach, 0.0));
    list->box.lastColumn = TruncInt(std::min<double>(x + reach, list->edges->width));
    list->box.yLow = list->box.firstRow;
    list->box.yHigh = list->box.lastRow;

    /* Farther than the corner of the box, a row or column around it and the half pixel that crossings are off, nothing
     * is a candidate. */
    const double farthest = 1.5 * (reach + 2) + 1;
    for (uint32_t i = 0; i < list->stretchCount; i++) {
        EXACTSEGMENT *segment = &list->segments[list->stretch[i]];
        const double bound = BoundOfSegment(list, segment);
        if (bound > farthest) continue;
        uint64_t order;
        if (!segment->typeMasked && SegmentInBox(list, segment, &order)) {
            SegmentMaskType(segment);
            segment->typeMasked = 1;
        }
        list->waiting[list->waitingCount++] = {bound * bound, list->stretch[i]};
    }
    std::make_heap(list->waiting, list->waiting + list->waitingCount, WaitsLonger);
}

NEARENTRY *NearAt(uint32_t i, NEARLIST *list)
{
    while (list->produced <= i) {
        while (list->waitingCount &&
               (list->measured == list->produced || list->waiting[0].bound2 <= list->entries[list->produced].dist2)) {
            std::pop_heap(list->waiting, list->waiting + list->waitingCount, WaitsLonger);
            EXACTSEGMENT *segment = &list->segments[list->waiting[--list->waitingCount].segment];
            uint64_t order;
            if (SegmentInBox(list, segment, &order)) MeasureSegment(order, list, segment);
        }
        if (list->measured == list->produced) {
            std::fill(list->entries + list->produced, list->entries + i + 1, NEARENTRY{});
            break;
        }
        list->produced++;
    }
    return &list->entries[i];
}

int NearExists(uint32_t i, NEARLIST *list)
{
    NearAt(i, list);
    return i < list->produced;
}

double NearBeyond(const NEARLIST *list)
{
    double nearest2 = std::numeric_limits<double>::infinity();
    if (list->waitingCount) nearest2 = list->waiting[0].bound2;
    if (list->measured > list->produced) nearest2 = std::min(nearest2, list->entries[list->produced].dist2);
    return std::sqrt(nearest2);
}

} // namespace zr32
