/* bandfill.cpp - fills a chain of records into a mask.
 *
 * Comes in: records and a buffer that is large enough for them. Goes out: coverage. Each edge is walked once for the
 * whole buffer; only when the crossings become too many is the buffer done in parts of whole bands, so that memory
 * stays bounded whatever the size of the shape.
 */
#include "raster/coverage.h"

#include <algorithm>

namespace zr32 {

namespace {

/* Crossings above which a part of the buffer is halved. */
constexpr uint32_t mostCrossingsOfPart = 1u << 20;

struct BANDFILL {
    PATHREC *path;
    PATHBUF buf;
    BUFINFO info;
    int evenOdd;
    int hard;
    int32_t rowsPerPixel;
    double zoom;
    int32_t left;
    int32_t top;
    ROWCOVER cover;
};

int32_t RowsPerPixel(int32_t aaMode, int32_t bits)
{
    if (bits == 32 || aaMode == 999) return 4;
    return aaMode == 0 ? 1 : 16;
}

/* The pixel rows from top to bottom, whole bands. 1; 0 without memory or above the limit, nothing is then written. */
int FillPart(int32_t top, int32_t bottom, uint32_t crossingLimit, BANDFILL *fill)
{
    EDGETABLE *table = nullptr;
    if (!EdgeTableAlloc(EDGES_PLAIN, top, bottom, fill->rowsPerPixel, &table)) return 0;
    table->bandHeight = maskBandHeight;
    table->crossingLimit = crossingLimit;
    int done = 1;
    for (PATHREC *record = fill->path; record && done; record = record->nextJoin)
        done = PathAddEdges(record, fill->zoom, fill->left, fill->top, table);
    done = done && EdgeTableSort(table);
    if (done && fill->info.bits == 32) BandToMask32(table, fill->buf, fill->evenOdd);
    if (done && fill->info.bits != 32) BandToMask8(table, fill->buf, fill->evenOdd, fill->hard, &fill->cover);
    EdgeTableFree(table);
    return done;
}

/* Half the height, in whole bands. */
int32_t HalfPart(int32_t height)
{
    return std::max(height / 2 / maskBandHeight, 1) * maskBandHeight;
}

} // namespace

int PathBandFill(PATHREC *path, PATHBUF buf, int32_t evenOdd, int32_t aaMode, int32_t skip, FIXED zoom, int32_t left,
                 int32_t top)
{
    const BUFINFO info = BufInfo(buf);
    if (skip || (info.bits != 8 && info.bits != 32)) return 1;
    BANDFILL fill = {path, buf, info, evenOdd != 0, aaMode == 0, RowsPerPixel(aaMode, info.bits), FixToDouble(zoom),
                     left, top, {}};
    int ready = info.bits == 32 || RowCoverAlloc(info.width, &fill.cover);
    int32_t height = std::max(info.height, 1);
    for (int32_t row = 0; ready && row < info.height;) {
        const int32_t bottom = row + std::min(height, info.height - row);
        const int smallest = height <= maskBandHeight;
        if (FillPart(row, bottom, smallest ? 0 : mostCrossingsOfPart, &fill)) {
            row = bottom;
        } else {
            ready = !smallest;
            height = HalfPart(height);
        }
    }
    RowCoverFree(&fill.cover);
    return 1;
}

} // namespace zr32
