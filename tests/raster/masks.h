/* masks.h - a mask made and looked at by a test. */
#ifndef ZR32_TESTS_MASKS_H
#define ZR32_TESTS_MASKS_H

#include <cstring>
#include <zr32path.h>

#include "platform/platform.h"

namespace zr32test {

struct MASK {
    tagRECT rect;
    PATHBUF buf;
    int32_t width;
    int32_t height;
    int32_t bits;
};

inline MASK MaskOf(PATHBUF buf, const tagRECT &rect)
{
    MASK mask = {rect, buf, 0, 0, 0};
    ZrPathBufGetWHU(buf, &mask.width, &mask.height, &mask.bits);
    return mask;
}

/* An empty mask of the given size at (0, 0). */
inline MASK EmptyMask(int32_t bits, int32_t width, int32_t height)
{
    return MaskOf(ZrPathBufAlloc(bits, width, height), {0, 0, width, height});
}

/* The only buffer that ZrPathToBuf makes of a path; a null buffer when it makes another number. */
inline MASK MakeMask(PATHREC *path, int32_t depth, int32_t evenOdd, int32_t aaMode, int32_t scope,
                     ZRFIXED zoom = 0x10000, int32_t inflate = 0)
{
    tagRECT *rects;
    PATHBUF *bufs;
    MASK mask = {};
    if (ZrPathToBuf(path, depth, evenOdd, aaMode, scope, zoom, &rects, &bufs, inflate) == 1)
        mask = MaskOf(bufs[0], rects[0]);
    if (rects) GlobalFree(rects);
    if (bufs) GlobalFree(bufs);
    return mask;
}

/* The byte at a place in zoomed pixels of an 8-bit mask, 0 outside. */
inline int At(const MASK &mask, int32_t x, int32_t y)
{
    x -= mask.rect.left;
    y -= mask.rect.top;
    return x < 0 || y < 0 || x >= mask.width || y >= mask.height ? 0 : mask.buf[y * mask.width + x];
}

/* The word at a place of a 32-bit mask, which must be inside. */
inline uint32_t WordAt(const MASK &mask, int32_t x, int32_t y)
{
    uint32_t word;
    memcpy(&word, mask.buf + 4 * ((y - mask.rect.top) * mask.width + x - mask.rect.left), 4);
    return word;
}

inline int64_t SumOf(const MASK &mask)
{
    int64_t sum = 0;
    for (int32_t i = 0; i < mask.width * mask.height; i++) sum += mask.buf[i];
    return sum;
}

inline bool SameMask(const MASK &a, const MASK &b)
{
    const size_t size = static_cast<size_t>(a.width) * static_cast<size_t>(a.height) * (a.bits == 32 ? 4 : 1);
    return memcmp(&a.rect, &b.rect, sizeof(tagRECT)) == 0 && a.bits == b.bits && a.width == b.width &&
           a.height == b.height && memcmp(a.buf, b.buf, size) == 0;
}

} // namespace zr32test

#endif
