/* mask8.cpp - rows of crossings become coverage bytes.
 *
 * Coverage is exact in x and sampled in y. A span is not added pixel by pixel: its two ends are noted as changes from
 * one column to the next, and one pass over the columns that were touched adds them up and writes runs of equal bytes.
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
    return (static_cast<size_t>(width) + 2 + 63) / 64;
}

/* From x on, everything to the right is covered (sign 1) or no longer covered (sign -1). */
inline void AddEnd(double x, int32_t column, double sign, ROWCOVER *cover)
{
    const double fraction = x - column;
    cover->change[column] += sign * (1.0 - fraction);
    cover->change[column + 1] += sign * fraction;
    const uint32_t bit = static_cast<uint32_t>(column) & 63;
    uint64_t *word = cover->touched + (static_cast<uint32_t>(column) >> 6);
    word[0] |= uint64_t{3} << bit;
    if (bit == 63) word[1] |= 1;
}

/* A span that begins in the first columns, or that runs down to 0, added pixel by pixel. */
void AddSpanInOrder(double from, double to, ROWCOVER *cover)
{
    const int32_t a = static_cast<int32_t>(from);
    const int32_t b = to >= cover->width ? cover->width : static_cast<int32_t>(to);
    if (a >= nearColumns) {
        /* Down to 0, where nothing is added. */
        AddEnd(from, a, 1.0, cover);
        AddEnd(a + 1, a + 1, -1.0, cover);
        return;
    }
    if (a == b) {
        cover->near[a] += (to - b) - (from - a);
        return;
    }
    cover->near[a] += 1 - (from - a);
    for (int32_t x = a + 1; x < std::min(b, nearColumns); x++) cover->near[x] += 1;
    if (b < nearColumns) {
        cover->near[b] += to - b;
    } else {
        AddEnd(nearColumns, nearColumns, 1.0, cover);
        if (b < cover->width) AddEnd(to, b, -1.0, cover);
    }
}

/* Pixels outside the row are dropped: a span that reaches beyond it is left without an end. */
inline void AddSpan(double from, double to, ROWCOVER *cover)
{
    if (from >= cover->width) return;
    if (from < nearColumns || to < from) {
        AddSpanInOrder(from, to, cover);
        return;
    }
    AddEnd(from, static_cast<int32_t>(from), 1.0, cover);
    if (to < cover->width) AddEnd(to, static_cast<int32_t>(to), -1.0, cover);
}

/* The byte of a pixel whose coverage, in sample rows, is not 0. scale: 256 over the sample rows of a pixel. */
inline uint8_t CoverByte(double coverage, double scale, int hard)
{
    const uint8_t byte = TruncByte(scale * coverage - 1);
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
void WriteRow(uint8_t *row, double scale, int hard, ROWCOVER *cover)
{
    for (int32_t x = 0; x < std::min(nearColumns, cover->width); x++)
        if (cover->near[x] != 0) row[x] = CoverByte(cover->near[x], scale, hard);
    std::fill_n(cover->near, nearColumns, 0.0);

    double coverage = 0;
    int32_t runStart = 0;
    for (size_t w = 0; w < TouchedWords(cover->width); w++) {
        uint64_t bits = cover->touched[w];
        if (bits == 0) continue;
        cover->touched[w] = 0;
        for (; bits; bits &= bits - 1) {
            const int32_t x = static_cast<int32_t>(w * 64) + std::countr_zero(bits);
            if (coverage != 0)
                FillRun(row + runStart, std::min(x, cover->width) - runStart, CoverByte(coverage, scale, hard));
            coverage += cover->change[x];
            cover->change[x] = 0;
            runStart = x;
        }
    }
    if (coverage != 0) FillRun(row + runStart, cover->width - runStart, CoverByte(coverage, scale, hard));
}

} // namespace

int RowCoverAlloc(int32_t width, ROWCOVER *cover)
{
    *cover = {{}, nullptr, nullptr, width};
    cover->change = static_cast<double *>(BufAlloc(bufZero, (static_cast<size_t>(width) + 3) * sizeof(double)));
    cover->touched = static_cast<uint64_t *>(BufAlloc(bufZero, TouchedWords(width) * sizeof(uint64_t)));
    return cover->change && cover->touched;
}

void RowCoverFree(ROWCOVER *cover)
{
    BufFree(cover->change);
    BufFree(cover->touched);
}

void BandToMask8(const EDGETABLE *table, PATHBUF buf, int evenOdd, int hard, ROWCOVER *cover)
{
    const BUFINFO info = BufInfo(buf);
    const double scale = 256 / table->rowsPerPixel;
    uint32_t row = 0;
    for (int32_t y = table->top; y < table->bottom; y++) {
        for (int32_t sample = 0; sample < table->rowsPerPixel; sample++, row++) {
            uint32_t count;
            const double *entries = EdgeTablePlainRow(table, row, &count);
            SPANWALK walk;
            double from;
            double to;
            for (SpanStart(entries, count, evenOdd, &walk); SpanNext(&walk, &from, &to);) AddSpan(from, to, cover);
        }
        WriteRow(BufRow(buf, info, y), scale, hard, cover);
    }
}

} // namespace zr32
