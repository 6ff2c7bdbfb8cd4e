/* bandfill.cpp - fills a chain of records into a mask.
 *
 * Comes in: records and a buffer that is large enough for them. Goes out: coverage. Each edge is walked once for the
 * whole buffer, unless the crossings become too many: the buffer is then done in parts of whole bands, so that memory
 * stays bounded whatever the size of the shape.
 */
#include "raster/coverage.h"

#include <algorithm>

namespace zr32 {

namespace {

/* Crossings of one part, and its height in pixel rows. */
constexpr uint32_t mostPlacesOfPart = 1u << 19;
constexpr int32_t tallestPart = 64 * maskBandHeight;

int32_t RowsPerPixel(int32_t aaMode, int32_t bits)
{
    if (bits == 32 || aaMode == 999) return 4;
    return aaMode == 0 ? 1 : 16;
}

} // namespace

int PathBandFill(PATHREC *path, PATHBUF buf, int32_t evenOdd, int32_t aaMode, int32_t skip, FIXED zoom, int32_t left,
                 int32_t top)
{
    const BUFINFO info = BufInfo(buf);
    if (skip || (info.bits != 8 && info.bits != 32)) return 1;
    const int32_t rowsPerPixel = RowsPerPixel(aaMode, info.bits);
    PLACEMENT place = PlaceOnMask(FixToDouble(zoom), left, top);
    /* A hard edge leaves x without the half pixel, deliberately. */
    if (rowsPerPixel == 1) place.post.x = 0.0;

    EDGETABLE *table = EdgeTableAlloc(EDGES_PLAIN, 1, place, rowsPerPixel);
    ROWCOVER cover = {};
    if (table && (info.bits == 32 || RowCoverAlloc(info.width, &cover))) {
        for (int32_t row = 0; row < info.height; row = table->bottom) {
            const int32_t bottom = row + std::min(info.height - row, tallestPart);
            if (!EdgeTableLayOut(path, row, bottom, mostPlacesOfPart, table) || !EdgeTableFill(path, table)) break;
            if (info.bits == 32)
                BandToMask32(table, buf, evenOdd != 0);
            else
                BandToMask8(table, buf, evenOdd != 0, aaMode == 0, cover);
        }
    }
    RowCoverFree(&cover);
    EdgeTableFree(table);
    return 1;
}

} // namespace zr32
