/* planes.h - rows of the shaders' buffers, read safely: what a buffer does not have reads as 0.
 *
 * Offset records in both forms are read here and nowhere else, and so are bump maps: their slopes, and what they do to
 * a normal.
 */
#ifndef ZR32_SHADEPLANES_H
#define ZR32_SHADEPLANES_H

#include "geometry/vector.h"
#include "raster/raster.h"
#include <zr32path/surface.h>

#include <cstring>

namespace zr32 {

constexpr double byteShare = 0.00392156862745098; /* 1 / 255 */

/* One row of a buffer; count pixels, 0 for a row that does not exist. */
struct SHADEROW {
    uint8_t *pixels;
    int32_t count;
};

/* A buffer whose pixels are smaller than the bytes asked for has none of them. */
inline SHADEROW RowOf(uint8_t *buf, const BUFINFO &info, int32_t y, size_t pixelSize)
{
    if (y < 0 || y >= info.height || info.pixelSize < pixelSize) return {nullptr, 0};
    return {BufRow(buf, info, y), info.width};
}

/* A byte of an 8-bit row. */
inline int ByteAt(const SHADEROW &row, int32_t x)
{
    return x >= 0 && x < row.count ? row.pixels[x] : 0;
}

/* The three bytes of a pixel of a 24-bit row. */
inline void ColourAt(const SHADEROW &row, int32_t x, uint8_t *colour)
{
    if (x >= 0 && x < row.count)
        memcpy(colour, row.pixels + static_cast<size_t>(x) * 3, 3);
    else
        memset(colour, 0, 3);
}

/* The bits of a single float of a 32-bit row. */
inline uint32_t DistanceBitsAt(const SHADEROW &row, int32_t x)
{
    uint32_t bits = 0;
    if (x >= 0 && x < row.count) memcpy(&bits, row.pixels + static_cast<size_t>(x) * 4, 4);
    return bits;
}

/* Outside the shape: a negative distance, -0.0 not counting as one. */
inline int DistanceIsNegative(uint32_t bits)
{
    return bits > 0x80000000u;
}

inline int DistanceIsZero(uint32_t bits)
{
    return (bits & 0x7FFFFFFFu) == 0;
}

/* An offset record in pixels. Only the form of words has a second vector. */
struct OFFSETPAIR {
    double x1;
    double y1;
    double x2;
    double y2;
    int hasSecond;
    uint64_t record; /* the bits that the first vector was read from: equal bits, equal vectors */
};

/* The record at an address of eight bytes. */
inline OFFSETPAIR OffsetRead(const uint8_t *record, int32_t floats)
{
    if (floats) {
        SURFVECF vector;
        memcpy(&vector, record, sizeof vector);
        uint64_t bits;
        memcpy(&bits, record, sizeof bits);
        return {static_cast<double>(vector.x), static_cast<double>(vector.y), 0, 0, 0, bits};
    }
    SURFVEC16 vector;
    memcpy(&vector, record, sizeof vector);
    uint32_t bits;
    memcpy(&bits, record, sizeof bits);
    return {vector.x1 * 0.00390625, vector.y1 * 0.00390625,           vector.x2 * 0.00390625,
            vector.y2 * 0.00390625, vector.x2 != 0 || vector.y2 != 0, bits};
}

inline OFFSETPAIR OffsetAt(const SHADEROW &row, int32_t x, int32_t floats)
{
    if (x < 0 || x >= row.count) return {0, 0, 0, 0, 0, 0};
    return OffsetRead(row.pixels + static_cast<size_t>(x) * 8, floats);
}

/* The slope between two values of a bump map; scale is the depth, 1.0 for 100 percent. */
inline double BumpSlope(int a, int b, double scale)
{
    return (a - b) * scale * 0.0078125;
}

/* The slopes at a column, from the value to its left (0.0 in column 0) and the value above. */
inline void BumpSlopes(const SHADEROW &row, const SHADEROW &above, int32_t x, double scale, double *gx, double *gy)
{
    const int value = ByteAt(row, x);
    *gy = BumpSlope(value, ByteAt(above, x), scale);
    *gx = x == 0 ? 0.0 : BumpSlope(value, ByteAt(row, x - 1), scale);
}

/* A normal on a surface of those slopes. */
inline void Ruffle(double gx, double gy, double *normal)
{
    normal[0] -= gx;
    normal[1] -= gy;
    VecNormalize(normal);
}

} // namespace zr32

#endif
