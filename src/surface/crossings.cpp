/* crossings.cpp - what the exact distance builder needs of the outline: edge tables of rows and columns, and the role
 * of each crossing of a row.
 */
#include "surface/surface.h"

namespace zr32 {

void VMapBuildEdgeTables(PATHREC *path, FIXED zoom, SURFACEEDGES *edges)
{
    *edges = {};
    RECT rect = {};
    ZrPathGetMiniMaxRect(path, zoom, &rect);
    edges->originX = static_cast<int32_t>(rect.left);
    edges->originY = static_cast<int32_t>(rect.top);
    edges->width = WrapSub(static_cast<int32_t>(rect.right), edges->originX);
    edges->height = WrapSub(static_cast<int32_t>(rect.bottom), edges->originY);
    const double scale = FixToDouble(zoom);
    if (EdgeTableOfChain(EDGES_ROWS, path, scale, edges->originX, edges->originY, edges->height, &edges->rows))
        EdgeTableOfChain(EDGES_COLUMNS, path, scale, edges->originX, edges->originY, edges->width, &edges->columns);
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
