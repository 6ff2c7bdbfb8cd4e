/* pathtobuf.cpp - the exported way from paths to masks: one buffer a compound shape, two parallel arrays of results.
 *
 * Comes in: any record of a shape. Goes out: rectangles and buffers, owned by the caller. With depth 16 a shape is
 * rasterised at a zoom above 1 and then reduced to one mask pixel per path unit.
 */
#include "raster/raster.h"

#include <algorithm>
#include <cstdlib>

namespace zr32 {

namespace {

constexpr uint32_t firstResults = 20;
constexpr uint32_t resultStep = 20;

constexpr int32_t depthSupersampled = 16;

struct MASKREQUEST {
    int32_t depth;
    int32_t evenOdd;
    int32_t aaMode;
    int32_t scope;
    FIXED zoom;
    int64_t inflate; /* its magnitude */
};

struct MASKRESULTS {
    RECT *rects;
    PATHBUF *bufs;
    uint32_t room;
};

/* The record to begin with: a free-standing one itself, else the head of the selected chain for a selected record and
 * that of the table chain for any other. */
PATHREC *FirstRecord(PATHREC *path)
{
    if (path->flags == PATHREC_FREELATTICE) return path;
    return ChainFirst(PathIsSelected(path) ? selectedChain : tableChain, path);
}

int ResultsAlloc(MASKRESULTS *results)
{
    results->rects = static_cast<RECT *>(GlobalBlockAlloc(firstResults * sizeof(RECT)));
    results->bufs = static_cast<PATHBUF *>(GlobalBlockAlloc(firstResults * sizeof(PATHBUF)));
    results->room = firstResults;
    return results->rects && results->bufs;
}

/* Room for one more entry behind the given number. An array that cannot grow stays as it is. */
int ResultsReserve(uint32_t count, MASKRESULTS *results)
{
    if (count < results->room) return 1;
    const size_t room = size_t{results->room} + resultStep;
    RECT *rects = static_cast<RECT *>(GlobalBlockReAlloc(results->rects, room * sizeof(RECT)));
    if (!rects) return 0;
    results->rects = rects;
    PATHBUF *bufs = static_cast<PATHBUF *>(GlobalBlockReAlloc(results->bufs, room * sizeof(PATHBUF)));
    if (!bufs) return 0;
    results->bufs = bufs;
    results->room += resultStep;
    return 1;
}

/* Columns or rows of the large buffer that a pixel of the small one stands for, first and last included. The box sits
 * one pixel further to the right and below than its exact place, deliberately: masks are shifted by half a pixel. */
struct BOXSIDE {
    int32_t first;
    int32_t last;
};

BOXSIDE BoxSide(int32_t index, double factor)
{
    const double start = index * factor;
    return {TruncInt(start) + 1, TruncInt(factor + start)};
}

/* Mean byte of the box of the large buffer that pixel (x, y) of the small one stands for. Pixels that the buffer does
 * not have count as 0, and the divisor stays that of the full box. */
uint8_t PathBufBoxAverage(const uint8_t *buf, const BUFINFO &info, int32_t y, int32_t x, double factor)
{
    const BOXSIDE columns = BoxSide(x, factor);
    const BOXSIDE rows = BoxSide(y, factor);
    if (columns.last < columns.first || rows.last < rows.first) return 0;
    uint64_t sum = 0;
    for (int32_t row = std::max(rows.first, 0); row <= std::min(rows.last, info.height - 1); row++) {
        const uint8_t *pixels = BufRow(buf, info, row);
        for (int32_t column = std::max(columns.first, 0); column <= std::min(columns.last, info.width - 1); column++)
            sum += pixels[column];
    }
    const uint64_t area =
        (static_cast<uint64_t>(columns.last - columns.first) + 1) * (static_cast<uint64_t>(rows.last - rows.first) + 1);
    return static_cast<uint8_t>(sum / area);
}

/* Brings a mask rasterised at factor times the size, and its rectangle, down to 1:1. The large buffer is freed. 1; 0
 * without memory, the buffer and its rectangle then stay. */
int ReduceMask(double factor, int hard, RECT *rect, PATHBUF *buf)
{
    const RECT small = {TruncInt(rect->left / factor), TruncInt(rect->top / factor), TruncInt(rect->right / factor),
                        TruncInt(rect->bottom / factor)};
    PATHBUF reduced = PathBufForRect(small.left, small.top, small.right, small.bottom, 8);
    if (!reduced) return 0;
    const BUFINFO from = BufInfo(*buf);
    const BUFINFO to = BufInfo(reduced);
    for (int32_t y = 0; y < to.height; y++) {
        uint8_t *row = BufRow(reduced, to, y);
        for (int32_t x = 0; x < to.width; x++) {
            const uint8_t mean = PathBufBoxAverage(*buf, from, y, x, factor);
            row[x] = hard ? mean < 128 ? 0 : 255 : mean;
        }
    }
    ZrPathBufFree(*buf);
    *buf = reduced;
    *rect = small;
    return 1;
}

/* The mask of one compound shape. 1; 0 without memory, nothing is then left. */
int MaskOfGroup(PATHREC *path, const MASKREQUEST &request, RECT *rect, PATHBUF *buf)
{
    if (request.scope == scopeTableChain)
        ZrPathGetAllMiniMaxRect(path, request.zoom, rect);
    else
        ZrPathGetMiniMaxRect(path, request.zoom, rect);
    const int64_t width = static_cast<int64_t>(rect->right) - rect->left + 2 * request.inflate;
    if (width > INT32_MAX) return 0;
    const int32_t inflate = static_cast<int32_t>(request.inflate);
    if (inflate != 0) InflateRect(rect, inflate, inflate);

    const int32_t left = rect->left;
    const int32_t top = rect->top;
    *buf = PathBufForRect(left, top, rect->right, rect->bottom, request.depth);
    if (!*buf) return 0;
    if (request.scope == 0)
        PathBandFill(path, *buf, request.evenOdd, request.aaMode, 0, request.zoom, left, top);
    else
        PathOutlineToBuf(path, *buf, request.aaMode, request.scope, request.zoom, left, top);

    const double factor = FixToDouble(request.zoom);
    if (factor > 1 && request.depth == depthSupersampled && request.scope == 0 &&
        !ReduceMask(factor, request.aaMode == 0, rect, buf)) {
        ZrPathBufFree(*buf);
        return 0;
    }
    return 1;
}

/* Masks of the shape and, for a selected one, of those behind it in the selection. The number; 0 without memory. There
 * are no more shapes than selected records: links that lead in a circle end there. */
int32_t MasksOfGroups(PATHREC *path, const MASKREQUEST &request, MASKRESULTS *results)
{
    int32_t most = 0;
    for (const PATHREC *record = path; record; record = record->nextSel) most++;
    int32_t count = 0;
    while (path && count < most) {
        const uint32_t index = static_cast<uint32_t>(count);
        RECT rect;
        PATHBUF buf;
        if (!ResultsReserve(index, results) || !MaskOfGroup(path, request, &rect, &buf)) {
            while (count > 0) ZrPathBufFree(results->bufs[--count]);
            return 0;
        }
        results->rects[index] = rect;
        results->bufs[index] = buf;
        count++;
        path = PathIsSelected(path) ? PathNextGroup(path) : nullptr;
    }
    return count;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathToBuf(PATHREC *path, int32_t depth, int32_t evenOdd, int32_t aaMode, int32_t scope,
                              ZRFIXED zoom, struct tagRECT **rects, PATHBUF **bufs, int32_t inflate)
{
    if (rects) *rects = nullptr;
    if (bufs) *bufs = nullptr;
    if (!path || !rects || !bufs) return 0;

    /* An outline is not supersampled. */
    if (zoom > fixedOne && depth == depthSupersampled && scope != 0) zoom = fixedOne;
    const MASKREQUEST request = {depth, evenOdd, aaMode, scope, zoom, std::abs(int64_t{inflate})};

    MASKRESULTS results;
    const int32_t count = ResultsAlloc(&results) ? MasksOfGroups(FirstRecord(path), request, &results) : 0;
    if (count == 0) {
        GlobalBlockFree(results.rects);
        GlobalBlockFree(results.bufs);
        return 0;
    }
    *rects = results.rects;
    *bufs = results.bufs;
    return count;
}

} // extern "C"

} // namespace zr32
