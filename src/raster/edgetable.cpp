/* edgetable.cpp - memory and order of the edge tables.
 *
 * Comes in: runs of crossings in the order in which edges were walked. Goes out: rows in order of magnitude, one behind
 * the other in one block, each with an empty entry behind its last: a search along a row always finds an end.
 */
#include "raster/edgetable.h"

#include <algorithm>
#include <bit>

namespace zr32 {

namespace {

constexpr uint32_t firstCrossings = 0x2000;
constexpr uint32_t firstRuns = 0x400;
constexpr uint32_t mostCrossings = 0x40000000;
constexpr int64_t mostRows = 0x40000000;

/* Order of crossings as an order of whole numbers: the magnitude, and below it the sign. */
uint64_t SortKey(double crossing)
{
    return std::rotl(std::bit_cast<uint64_t>(crossing), 1);
}

/* Doubles the room until wanted fits. */
uint32_t GrownRoom(uint32_t room, uint32_t first, uint64_t wanted)
{
    uint64_t grown = std::max(room, first);
    while (grown < wanted) grown *= 2;
    return static_cast<uint32_t>(grown);
}

template <class ITEM> int Grow(uint32_t room, ITEM **items, uint32_t *itemRoom)
{
    if (room > SIZE_MAX / sizeof(ITEM)) return 0;
    ITEM *grown = static_cast<ITEM *>(BufReAlloc(*items, room * sizeof(ITEM), 0));
    if (!grown) return 0;
    *items = grown;
    *itemRoom = room;
    return 1;
}

/* Where each row begins, and the same once more in next, for dealing out. */
void LayOutRows(EDGETABLE *table, uint32_t *next)
{
    /* One up where a run begins and one down behind it: their running sum is the count of a row. */
    for (uint32_t i = 0; i < table->runCount; i++) {
        const EDGERUN &run = table->runs[i];
        const int32_t behind = static_cast<int32_t>(run.count);
        const int32_t low = run.step > 0 ? run.row : run.row - behind + 1;
        next[low]++;
        next[low + behind]--;
    }
    uint32_t start = 0;
    uint32_t count = 0;
    for (uint32_t row = 0; row < table->rowCount; row++) {
        count += next[row];
        table->rowStart[row] = next[row] = start;
        start += count + 1;
    }
    table->rowStart[table->rowCount] = start;
}

void DealPlain(EDGETABLE *table, uint32_t *next)
{
    const double *from = table->crossings;
    for (uint32_t i = 0; i < table->runCount; i++) {
        const EDGERUN &run = table->runs[i];
        uint32_t *row = next + run.row;
        for (uint32_t k = 0; k < run.count; k++, row += run.step) table->rows[(*row)++] = *from++;
    }
    for (uint32_t row = 0; row < table->rowCount; row++) {
        table->rows[next[row]] = 0.0;
        SortCrossings(table->rows + table->rowStart[row], next[row] - table->rowStart[row]);
    }
}

void DealEntries(EDGETABLE *table, uint32_t *next)
{
    const double *from = table->crossings;
    for (uint32_t i = 0; i < table->runCount; i++) {
        const EDGERUN &run = table->runs[i];
        uint32_t *row = next + run.row;
        /* The flag holds the place in the order of the walk until the row is sorted. */
        for (uint32_t k = 0; k < run.count; k++, row += run.step, from++)
            table->entries[(*row)++] = {*from, run.node, static_cast<int32_t>(i)};
    }
    for (uint32_t row = 0; row < table->rowCount; row++) {
        EDGEENTRY *first = table->entries + table->rowStart[row];
        EDGEENTRY *end = table->entries + next[row];
        std::sort(first, end, [](const EDGEENTRY &a, const EDGEENTRY &b) {
            const uint64_t sizeA = SortKey(a.crossing) >> 1;
            const uint64_t sizeB = SortKey(b.crossing) >> 1;
            return sizeA != sizeB ? sizeA < sizeB : a.spanFlag < b.spanFlag;
        });
        for (EDGEENTRY *entry = first; entry < end; entry++) entry->spanFlag = 0;
        *end = {0.0, nullptr, 0};
    }
}

} // namespace

void SortCrossings(double *crossings, uint32_t count)
{
    constexpr uint32_t shortRow = 24;
    if (count > shortRow) {
        std::sort(crossings, crossings + count, [](double a, double b) { return SortKey(a) < SortKey(b); });
        return;
    }
    for (uint32_t i = 1; i < count; i++) {
        const double crossing = crossings[i];
        const uint64_t key = SortKey(crossing);
        uint32_t at = i;
        for (; at > 0 && SortKey(crossings[at - 1]) > key; at--) crossings[at] = crossings[at - 1];
        crossings[at] = crossing;
    }
}

int EdgeTableAlloc(EDGEMODE mode, int32_t top, int32_t bottom, int32_t rowsPerPixel, EDGETABLE **table)
{
    if (*table) return 0;
    const int64_t rows = bottom > top ? (static_cast<int64_t>(bottom) - top) * rowsPerPixel : 0;
    if (rows > mostRows) return 0;
    EDGETABLE *made = static_cast<EDGETABLE *>(BufAlloc(bufZero, sizeof(EDGETABLE)));
    if (!made) return 0;
    made->mode = mode;
    made->top = top;
    made->bottom = bottom;
    made->rowsPerPixel = rowsPerPixel;
    made->rowCount = static_cast<uint32_t>(rows);
    *table = made;
    return 1;
}

int EdgeTableReserve(uint32_t count, EDGETABLE *table)
{
    const uint64_t wanted = static_cast<uint64_t>(table->crossingCount) + count;
    if (wanted > mostCrossings || (table->crossingLimit && table->crossingCount > table->crossingLimit)) return 0;
    if (wanted > table->crossingRoom &&
        !Grow(GrownRoom(table->crossingRoom, firstCrossings, wanted), &table->crossings, &table->crossingRoom))
        return 0;
    return table->runCount < table->runRoom ||
           Grow(GrownRoom(table->runRoom, firstRuns, table->runCount + 1), &table->runs, &table->runRoom);
}

int EdgeTableSort(EDGETABLE *table)
{
    if (!table || table->rowStart) return 0;
    const size_t places = size_t{table->crossingCount} + table->rowCount + 1;
    uint32_t *next = static_cast<uint32_t *>(BufAlloc(bufZero, (size_t{table->rowCount} + 1) * sizeof(uint32_t)));
    table->rowStart = static_cast<uint32_t *>(BufAlloc(0, (size_t{table->rowCount} + 1) * sizeof(uint32_t)));
    if (table->mode == EDGES_PLAIN)
        table->rows = static_cast<double *>(BufAlloc(0, places * sizeof(double)));
    else if (places <= SIZE_MAX / sizeof(EDGEENTRY))
        table->entries = static_cast<EDGEENTRY *>(BufAlloc(0, places * sizeof(EDGEENTRY)));
    const int ready = next && table->rowStart && (table->rows || table->entries);
    if (ready) {
        LayOutRows(table, next);
        if (table->mode == EDGES_PLAIN)
            DealPlain(table, next);
        else
            DealEntries(table, next);
    } else {
        BufFree(table->rows);
        BufFree(table->entries);
        table->rows = nullptr;
        table->entries = nullptr;
    }
    BufFree(next);
    return ready;
}

uint32_t EdgeTableRows(const EDGETABLE *table)
{
    return table ? table->rowCount : 0;
}

EDGEENTRY *EdgeTableRow(EDGETABLE *table, uint32_t row, uint32_t *count)
{
    *count = 0;
    if (!table || !table->entries || row >= table->rowCount) return nullptr;
    *count = table->rowStart[row + 1] - table->rowStart[row] - 1;
    return *count ? table->entries + table->rowStart[row] : nullptr;
}

int EdgeTableFree(EDGETABLE *table)
{
    if (!table) return 0;
    BufFree(table->crossings);
    BufFree(table->runs);
    BufFree(table->rowStart);
    BufFree(table->rows);
    BufFree(table->entries);
    BufFree(table);
    return 1;
}

} // namespace zr32
