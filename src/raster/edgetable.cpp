/* edgetable.cpp - memory and order of the edge tables.
 *
 * Comes in: the segments of a chain. Goes out: rows of crossings, laid out one behind the other in one block. A row has
 * at least one place more than crossings, so that a search along it always finds an empty entry for its end.
 */
#include "raster/edgetable.h"

#include <algorithm>
#include <bit>

namespace zr32 {

namespace {

constexpr int64_t mostRows = 0x10000000;
constexpr uint64_t mostPlacesOfTable = 0x40000000;

/* The end of a row's list, and one crossing more than the control polygons ask for. */
constexpr uint32_t firstSpare = 1;

/* Order of crossings as an order of whole numbers: the magnitude, and below it the sign. */
inline uint64_t SortKey(double crossing)
{
    return std::rotl(std::bit_cast<uint64_t>(crossing), 1);
}

/* A block of at least count items whose content is not kept. 1; 0 without memory, no block is then left. */
template <class ITEM> int EnsureRoom(size_t count, ITEM **items)
{
    if (count > SIZE_MAX / sizeof(ITEM)) return 0;
    BufFree(*items);
    *items = static_cast<ITEM *>(BufAlloc(0, count * sizeof(ITEM)));
    return *items != nullptr;
}

int EnsureRows(size_t rows, EDGETABLE *table)
{
    if (table->rowNext && rows <= table->rowRoom) return 1;
    table->rowRoom = 0;
    if (!EnsureRoom(rows + 1, &table->rowStart) || !EnsureRoom(rows + 1, &table->rowNext)) return 0;
    table->rowRoom = rows;
    return 1;
}

int EnsurePlaces(size_t places, EDGETABLE *table)
{
    if (places <= table->placeRoom) return 1;
    table->placeRoom = 0;
    if (table->mode == EDGES_PLAIN ? !EnsureRoom(places, &table->crossings) : !EnsureRoom(places, &table->entries))
        return 0;
    table->placeRoom = places;
    return 1;
}

/* A line from y0 to y1 may cross the sample rows between them: one up where they begin, one down behind them. */
void CountLine(double y0, double y1, const EDGETABLE *table, uint32_t *change)
{
    const double rows = table->rowCount;
    const double first = (std::min(y0, y1) - table->top) * table->samples;
    const double last = (std::max(y0, y1) - table->top) * table->samples;
    if (last < 0 || first >= rows) return;
    change[first > 0 ? static_cast<uint32_t>(first) : 0]++;
    change[last < rows - 1 ? static_cast<uint32_t>(last) + 1 : table->rowCount]--;
}

void CountChain(const PATHREC *path, const EDGETABLE *table, uint32_t *change)
{
    for (const PATHREC *record = path; record; record = record->nextJoin) {
        SEGWALK walk;
        SEGMENT segment;
        for (SegWalkStart(record, table->place, &walk); EdgeWalkNext(table, &walk, &segment);) {
            const int lines = segment.kind == PATHNODE_CURVE ? 3 : segment.kind == PATHNODE_LINE ? 1 : 0;
            if (!SegmentIsNear(segment)) continue;
            for (int i = 0; i < lines; i++) CountLine(segment.p[i].y, segment.p[i + 1].y, table, change);
        }
    }
}

} // namespace

EDGETABLE *EdgeTableAlloc(EDGEMODE mode, int banded, const PLACEMENT &place, int32_t rowsPerPixel)
{
    EDGETABLE *table = static_cast<EDGETABLE *>(BufAlloc(bufZero, sizeof(EDGETABLE)));
    if (!table) return nullptr;
    table->mode = mode;
    table->banded = banded;
    table->place = place;
    table->rowsPerPixel = rowsPerPixel;
    table->samples = rowsPerPixel;
    table->rowHeight = 1.0 / rowsPerPixel;
    table->spare = firstSpare;
    return table;
}

int EdgeTableLayOut(const PATHREC *path, int32_t top, int32_t bottom, uint32_t mostPlaces, EDGETABLE *table)
{
    const int64_t rows = (static_cast<int64_t>(bottom) - top) * table->rowsPerPixel;
    table->rowCount = 0;
    if (rows < 0 || rows > mostRows || !EnsureRows(static_cast<size_t>(rows), table)) return 0;
    table->top = top;
    table->bottom = bottom;
    table->rowCount = static_cast<uint32_t>(rows);
    table->overflow = 0;
    table->band = {};

    /* rowStart first counts: its entries hold the change from the row before until that row is laid out. */
    std::fill_n(table->rowStart, table->rowCount + 1, 0);
    CountChain(path, table, table->rowStart);
    const uint32_t bandRows = static_cast<uint32_t>(maskBandHeight * table->rowsPerPixel);
    uint64_t start = 0;
    uint32_t count = 0;
    for (uint32_t row = 0; row < table->rowCount; row++) {
        if (start > mostPlaces && row > 0 && row % bandRows == 0) {
            table->rowCount = row;
            table->bottom = top + static_cast<int32_t>(row) / table->rowsPerPixel;
            break;
        }
        count += table->rowStart[row];
        table->rowStart[row] = table->rowNext[row] = static_cast<uint32_t>(start);
        start += uint64_t{count} + table->spare;
        if (start > mostPlacesOfTable) return 0;
    }
    table->rowStart[table->rowCount] = static_cast<uint32_t>(start);
    return EnsurePlaces(static_cast<size_t>(start) + 1, table);
}

int EdgeTableFill(PATHREC *path, EDGETABLE *table)
{
    for (;;) {
        for (PATHREC *record = path; record; record = record->nextJoin) PathAddEdges(record, table);
        if (!table->overflow) return 1;
        table->spare *= 2;
        if (!EdgeTableLayOut(path, table->top, table->bottom, UINT32_MAX, table)) return 0;
    }
}

/* Insertion, as rows are short and mostly in order already: contours tend to follow each other from left to right. A
 * row that would take too many moves is sorted by other means. */
double *EdgeTableSortRow(EDGETABLE *table, size_t row)
{
    constexpr uint32_t movesPerEntry = 8;
    double *crossings = table->crossings + table->rowStart[row];
    const uint32_t n = EdgeTableRowCount(table, row);
    crossings[n] = 0.0;
    int64_t moves = int64_t{n} * movesPerEntry;
    for (uint32_t i = 1; i < n && moves > 0; i++) {
        const double crossing = crossings[i];
        const uint64_t key = SortKey(crossing);
        uint32_t at = i;
        for (; at > 0 && SortKey(crossings[at - 1]) > key; at--) crossings[at] = crossings[at - 1];
        crossings[at] = crossing;
        moves -= i - at;
    }
    if (moves <= 0) std::sort(crossings, crossings + n, [](double a, double b) { return SortKey(a) < SortKey(b); });
    return crossings;
}

int EdgeTableOfChain(EDGEMODE mode, PATHREC *path, double zoom, int32_t left, int32_t top, int32_t rowCount,
                     EDGETABLE **table)
{
    PLACEMENT place = PlaceOnMask(zoom, left, top);
    place.post.x = 0.0;
    EDGETABLE *made = EdgeTableAlloc(mode, 0, place, 1);
    *table = nullptr;
    if (!made || !EdgeTableLayOut(path, 0, rowCount, UINT32_MAX, made) || !EdgeTableFill(path, made)) {
        EdgeTableFree(made);
        return 0;
    }
    for (uint32_t row = 0; row < made->rowCount; row++) {
        EDGEENTRY *first = made->entries + made->rowStart[row];
        EDGEENTRY *end = made->entries + made->rowNext[row];
        *end = {0.0, nullptr, 0};
        /* The flag holds the place in the order of the walk while the row is sorted: equal crossings keep that order,
         * whatever their sign, since it decides what the exact surface sees at a corner. */
        for (EDGEENTRY *entry = first; entry < end; entry++) entry->spanFlag = static_cast<int32_t>(entry - first);
        std::sort(first, end, [](const EDGEENTRY &a, const EDGEENTRY &b) {
            const uint64_t sizeA = SortKey(a.crossing) >> 1;
            const uint64_t sizeB = SortKey(b.crossing) >> 1;
            return sizeA != sizeB ? sizeA < sizeB : a.spanFlag < b.spanFlag;
        });
        for (EDGEENTRY *entry = first; entry < end; entry++) entry->spanFlag = 0;
    }
    *table = made;
    return 1;
}

uint32_t EdgeTableRows(const EDGETABLE *table)
{
    return table ? table->rowCount : 0;
}

EDGEENTRY *EdgeTableRow(EDGETABLE *table, uint32_t row, uint32_t *count)
{
    *count = 0;
    if (!table || row >= table->rowCount) return nullptr;
    *count = EdgeTableRowCount(table, row);
    return table->entries + table->rowStart[row];
}

int EdgeTableFree(EDGETABLE *table)
{
    if (!table) return 0;
    BufFree(table->rowStart);
    BufFree(table->rowNext);
    BufFree(table->crossings);
    BufFree(table->entries);
    BufFree(table);
    return 1;
}

} // namespace zr32
