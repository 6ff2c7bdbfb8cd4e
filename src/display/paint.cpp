/* paint.cpp - showing the outline display buffer: two bits of every channel of a bitmap are inverted where an outline
 * passes.
 *
 * In come a rectangle of the buffer and a bitmap of that rectangle's size; painting twice restores it. The four forms
 * differ in the bytes of a pixel and in the bitmap's layout; what lies outside the buffer is passed over in all.
 */
#include "display/display.h"

#include <algorithm>

namespace zr32 {

namespace {

constexpr uint8_t invertedBits = 0xC0;

/* A rectangle with exclusive right and bottom, and the bitmap of its size. */
struct PAINTAREA {
    int64_t left;
    int64_t top;
    int64_t right;
    int64_t bottom;
    int pixelSize;
    int64_t stride; /* bytes from one bitmap row to the next in memory */
    int bottomUp;   /* the first row in memory is the lowest */
};

int PaintOverlay(const PATHTBL *table, const PAINTAREA &area, uint8_t *bitmap)
{
    if (!table || !table->lpDB) return 0;
    if (!bitmap) return 1;
    const int64_t size = static_cast<int64_t>(BufMemSize(table->lpDB));
    const int64_t left = std::max<int64_t>(area.left, 0);
    const int64_t right = std::min<int64_t>(area.right, table->dbWidth);
    const int64_t bottom = std::min<int64_t>(area.bottom, table->dbHeight);
    for (int64_t y = std::max<int64_t>(area.top, 0); y < bottom; y++) {
        const int64_t first = y * table->dbWidth;
        const int64_t end = std::min(right, size - first);
        if (end <= left) break; /* no columns, or the block's end */
        const uint8_t *passes = table->lpDB + first;
        const int64_t row = area.bottomUp ? area.bottom - 1 - y : y - area.top;
        uint8_t *pixels = bitmap + row * area.stride;
        for (int64_t x = left; x < end; x++) {
            if (passes[x] == 0) continue;
            uint8_t *pixel = pixels + (x - area.left) * area.pixelSize;
            for (int channel = 0; channel < area.pixelSize; channel++) pixel[channel] ^= invertedBits;
        }
    }
    return 1;
}

/* A bitmap as device-independent bitmaps are: inclusive corners, bottom-up, rows padded to 4 bytes. */
int PaintPadded(int32_t left, int32_t top, int32_t right, int32_t bottom, int pixelSize, const PATHTBL *table,
                uint8_t *bitmap)
{
    const int64_t width = int64_t{right} - left + 1;
    return PaintOverlay(
        table, {left, top, int64_t{right} + 1, int64_t{bottom} + 1, pixelSize, (width * pixelSize + 3) / 4 * 4, 1},
        bitmap);
}

/* A plain block: exclusive corners, top-down, no padding. */
int PaintPlain(int32_t left, int32_t top, int32_t right, int32_t bottom, int pixelSize, const PATHTBL *table,
               uint8_t *bitmap)
{
    const int64_t width = int64_t{right} - left;
    return PaintOverlay(table, {left, top, right, bottom, pixelSize, width * pixelSize, 0}, bitmap);
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathPaint(int32_t left, int32_t top, int32_t right, int32_t bottom, const PATHTBL *table,
                              uint8_t *bitmap)
{
    return PaintPadded(left, top, right, bottom, 3, table, bitmap);
}

ZRPATHAPI int32_t ZrPathPaint1(int32_t left, int32_t top, int32_t right, int32_t bottom, const PATHTBL *table,
                               uint8_t *bitmap)
{
    return PaintPadded(left, top, right, bottom, 1, table, bitmap);
}

ZRPATHAPI int32_t ZrPathPaintMem(int32_t left, int32_t top, int32_t right, int32_t bottom, const PATHTBL *table,
                                 uint8_t *bitmap)
{
    return PaintPlain(left, top, right, bottom, 3, table, bitmap);
}

ZRPATHAPI int32_t ZrPathPaintMem1(int32_t left, int32_t top, int32_t right, int32_t bottom, const PATHTBL *table,
                                  uint8_t *bitmap)
{
    return PaintPlain(left, top, right, bottom, 1, table, bitmap);
}

} // extern "C"

} // namespace zr32
