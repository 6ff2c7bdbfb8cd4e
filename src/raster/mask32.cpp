/* mask32.cpp - rows of crossings become A-buffer masks: 4 rows of 8 sub-pixels a pixel, a 1 bit where the shape is not.
 *
 * Byte k of a pixel is its sample row k, the topmost first; bit 7 is the leftmost sub-column. Span ends are rounded to
 * the nearest eighth. Bytes are stored, not merged: of two spans of one sample row that touch a pixel the later one
 * stands, deliberately.
 */
#include "raster/coverage.h"
#include "raster/spans.h"

#include <algorithm>
#include <cstring>

namespace zr32 {

namespace {

/* The f leftmost sub-columns stay outside. */
constexpr uint8_t leftEnd[9] = {0x00, 0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0xFE, 0xFF};
/* The sub-columns from the f-th on stay outside. */
constexpr uint8_t rightEnd[9] = {0xFF, 0x7F, 0x3F, 0x1F, 0x0F, 0x07, 0x03, 0x01, 0x00};

/* A span end: its pixel, the row's width for all that lie beyond, and its eighth. */
struct SUBCOLUMN {
    int32_t x;
    int32_t eighth;
};

SUBCOLUMN SubColumn(double at, int32_t width)
{
    if (at >= width) return {width, 0};
    const int32_t x = static_cast<int32_t>(at);
    return {x, TruncInt((at - x) * 8 + 0.5)};
}

/* bytes: the sample row's byte in the first pixel of the row. */
void StoreSpan(double from, double to, int32_t width, uint8_t *bytes)
{
    const SUBCOLUMN a = SubColumn(from, width);
    const SUBCOLUMN b = SubColumn(to, width);
    if (a.x == width && b.x == width) return;
    if (a.x == b.x) {
        bytes[4 * a.x] = leftEnd[a.eighth] | rightEnd[b.eighth];
        return;
    }
    if (a.x < width) bytes[4 * a.x] = leftEnd[a.eighth];
    for (int32_t x = a.x + 1; x < b.x; x++) bytes[4 * x] = 0;
    if (b.x < width) bytes[4 * b.x] = rightEnd[b.eighth];
}

} // namespace

void BandToMask32(EDGETABLE *table, PATHBUF buf, int evenOdd)
{
    const BUFINFO info = BufInfo(buf);
    size_t row = 0;
    for (int32_t y = table->top; y < table->bottom; y++) {
        uint8_t *pixels = BufRow(buf, info, y);
        memset(pixels, 0xFF, info.stride);
        for (int32_t sample = 0; sample < table->rowsPerPixel; sample++, row++) {
            SPANWALK walk;
            double from;
            double to;
            for (SpanStart(table, row, evenOdd, &walk); SpanNext(&walk, &from, &to);)
                StoreSpan(from, to, info.width, pixels + sample);
        }
    }
}

} // namespace zr32
