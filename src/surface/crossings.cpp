/* crossings.cpp - what the exact distance builder needs of the outline: edge tables of rows and columns, and the role
 * of each crossing of a row.
 */
#include "surface/surface.h"

namespace zr32 {

/* Null when memory is short at any step: a table without all its edges would show holes that are not there. */
static EDGETABLE *MakeEdgeTable(EDGEMODE mode, PATHREC *path, double zoom, const SURFACEEDGES *edges)
{
    const int32_t rows = mode == EDGES_COLUMNS ? edges->width : edges->height;
    EDGETABLE *table = nullptr;
    if (!EdgeTableAlloc(mode, 0, rows, 1, &table)) return nullptr;
    int complete = 1;
    for (PATHREC *record = path; record && complete; record = record->nextJoin)
        complete = PathAddEdges(record, zoom, edges->originX, edges->originY, table);
    if (complete && EdgeTableSort(table)) return table;
    EdgeTableFree(table);
    return nullptr;
}

void VMapBuildEdgeTables(PATHREC *path, FIXED zoom, SURFACEEDGES *edges)
{
    *edges = {};
    RECT rect = {};
    ZrPathGetMiniMaxRect(path, zoom, &rect);
    edges->originX = static_cast<int32_t>(rect.left);
    edges->originY = static_cast<int32_t>(rect.top);
    edges->width = WrapSub(static_cast<int32_t>(rect.right), edges->originX);
    edges->height = WrapSub(static_cast<int32_t>(rect.bottom), edges->originY);
    edges->rows = MakeEdgeTable(EDGES_ROWS, path, FixToDouble(zoom), edges);
    if (edges->rows) edges->columns = MakeEdgeTable(EDGES_COLUMNS, path, FixToDouble(zoom), edges);
}

void SurfaceEdgesFree(SURFACEEDGES *edges)
{
    EdgeTableFree(edges->rows);
    EdgeTableFree(edges->columns);
    edges->rows = edges->columns = nullptr;
}

static void ClassifyPairs(EDGEENTRY *entries, uint32_t count)
{
    for (uint32_t i = 0; i + 1 < count; i += 2) {
        entries[i].spanFlag = 1;
        entries[i + 1].spanFlag = 0;
    }
}

/* The winding count is not reset between spans: a crossing of exactly 0 ends a span with the count as it stands. */
static void ClassifyWinding(EDGEENTRY *entries, uint32_t count)
{
    int32_t winding = 0;
    for (uint32_t i = 0; i < count; i++) {
        entries[i].spanFlag = 1;
        winding += entries[i].crossing > 0 ? 1 : -1;
        while (winding != 0) {
            if (++i >= count) return;
            if (entries[i].crossing == 0) break;
            winding += entries[i].crossing > 0 ? 1 : -1;
            if (winding != 0)
                entries[i].node = nullptr;
            else
                entries[i].spanFlag = 0;
        }
    }
}

int VMapClassifyCrossings(int32_t evenOdd, EDGETABLE *rows)
{
    if (!rows || EdgeTableRows(rows) == 0) return 0;
    for (uint32_t row = 0; row < EdgeTableRows(rows); row++) {
        uint32_t count = 0;
        EDGEENTRY *const entries = EdgeTableRow(rows, row, &count);
        if (count < 2) continue;
        if (evenOdd)
            ClassifyPairs(entries, count);
        else
            ClassifyWinding(entries, count);
    }
    return 1;
}

} // namespace zr32
