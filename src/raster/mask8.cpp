/* mask8.cpp - rows of crossings become coverage bytes.
 *
 * Coverage is exact in x and sampled in y. A span is not added pixel by pixel: each of its ends is noted in the column
 * where it lies, and one pass over the columns that were touched adds them up and writes runs of equal bytes.
 */
#include "raster/coverage.h"
#include "raster/spans.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zr32 {

namespace {

constexpr uint8_t hardThreshold = 115;

size_t TouchedWords(int32_t width)
{
    return (static_cast<size_t>(width) + 63) / 64;
}

/* From x on everything to the right is covered (sign 1), or no longer covered (sign -1). */
inline void AddEnd(double x, int32_t column, double sign, ROWCOVER cover)
{
    COLUMNENDS *ends = cover.ends + column;
    ends->count += sign;
    ends->before += sign * (x - column);
    cover.touched[static_cast<uint32_t>(column) >> 6] |= uint64_t{1} << (static_cast<uint32_t>(column) & 63);
}

/* A span that begins in the first columns, or that runs down to 0, added pixel by pixel. */
void AddSpanInOrder(double from, double to, ROWCOVER cover)
{
    const int32_t a = static_cast<int32_t>(from);
    const int32_t b = to >= cover.width ? cover.width : static_cast<int32_t>(to);
    if (a >= nearColumns) {
        /* Down to 0, where nothing is added. */
        AddEnd(from, a, 1.0, cover);
        if (a + 1 < cover.width) AddEnd(a + 1, a + 1, -1.0, cover);
        return;
    }
    if (a == b) {
        cover.near[a] += (to - b) - (from - a);
        return;
    }
    cover.near[a] += 1 - (from - a);
    for (int32_t x = a + 1; x < std::min(b, nearColumns); x++) cover.near[x] += 1;
    if (b < nearColumns) {
        cover.near[b] += to - b;
    } else {
        if (cover.width > nearColumns) AddEnd(nearColumns, nearColumns, 1.0, cover);
        if (b < cover.width) AddEnd(to, b, -1.0, cover);
    }
}

/* Pixels outside the row are dropped: a span that reaches beyond it is left without an end. */
inline void AddSpan(double from, double to, ROWCOVER cover)
{
    if (from >= cover.width) return;
    if (from < nearColumns || to < from) {
        AddSpanInOrder(from, to, cover);
        return;
    }
    AddEnd(from, static_cast<int32_t>(from), 1.0, cover);
    if (to < cover.width) AddEnd(to, static_cast<int32_t>(to), -1.0, cover);
}

/* The byte of a pixel, from its coverage in sample rows x 256 over the sample rows of a pixel. */
inline uint8_t CoverByte(int32_t coverage, int hard)
{
    const uint8_t byte = static_cast<uint8_t>(coverage);
    return hard ? byte < hardThreshold ? 0 : 255 : byte;
}

inline void FillRun(uint8_t *to, int32_t count, uint8_t byte)
{
    constexpr int32_t shortRun = 8;
    if (count > shortRun) {
        memset(to, byte, static_cast<size_t>(count));
        return;
    }
    for (int32_t i = 0; i < count; i++) to[i] = byte;
}

/* Writes the row where its coverage is not 0, and clears the coverage. */
void WriteRow(uint8_t *row, double scale, int hard, ROWCOVER cover)
{
    for (int32_t x = 0; x < std::min(nearColumns, cover.width); x++)
        if (cover.near[x] != 0) row[x] = CoverByte(TruncInt(scale * cover.near[x] - 1), hard);
    std::fill_n(cover.near, nearColumns, 0.0);

    /* From here on coverage lies between 0 and the number of sample rows. */
    const auto byteOf = [&](double coverage) { return CoverByte(static_cast<int32_t>(scale * coverage - 1), hard); };
    double right = 0; /* coverage to the right of the ends so far */
    int32_t runStart = nearColumns;
    for (size_t w = 0; w < TouchedWords(cover.width); w++) {
        uint64_t bits = cover.touched[w];
        if (bits == 0) continue;
        cover.touched[w] = 0;
        for (; bits; bits &= bits - 1) {
            const int32_t x = static_cast<int32_t>(w * 64) + std::countr_zero(bits);
            COLUMNENDS *ends = cover.ends + x;
            if (right != 0 && x > runStart) FillRun(row + runStart, x - runStart, byteOf(right));
            right += ends->count;
            const double coverage = right - ends->before;
            if (coverage != 0) row[x] = byteOf(coverage);
            *ends = {0, 0};
            runStart = x + 1;
        }
    }
    if (right != 0) FillRun(row + runStart, cover.width - runStart, byteOf(right));
}

} // namespace

int RowCoverAlloc(int32_t width, ROWCOVER *cover)
{
    const size_t columns = std::max<size_t>(static_cast<size_t>(width), 1);
    *cover = {nullptr, nullptr, nullptr, width};
    cover->near = static_cast<double *>(BufAlloc(bufZero, nearColumns * sizeof(double)));
    cover->ends = static_cast<COLUMNENDS *>(BufAlloc(bufZero, columns * sizeof(COLUMNENDS)));
    cover->touched = static_cast<uint64_t *>(BufAlloc(bufZero, (columns + 63) / 64 * sizeof(uint64_t)));
    return cover->near && cover->ends && cover->touched;
}

void RowCoverFree(ROWCOVER *cover)
{
    BufFree(cover->near);
    BufFree(cover->ends);
    BufFree(cover->touched);
}

/* cppcheck-suppress passedByValue - few pointers, kept in registers */
void BandToMask8(EDGETABLE *table, PATHBUF buf, int evenOdd, int hard, ROWCOVER cover)
{
    const BUFINFO info = BufInfo(buf);
    const double scale = 256 * table->rowHeight;
    size_t row = 0;
    for (int32_t y = table->top; y < table->bottom; y++) {
        for (int32_t sample = 0; sample < table->rowsPerPixel; sample++, row++) {
            double from;
            double to;
            if (SpanOfPair(table, row, evenOdd, &from, &to)) {
                AddSpan(from, to, cover);
                continue;
            }
            SPANWALK walk;
            for (SpanStart(table, row, evenOdd, &walk); SpanNext(&walk, &from, &to);) AddSpan(from, to, cover);
        }
        WriteRow(BufRow(buf, info, y), scale, hard, cover);
    }
}

} // namespace zr32
