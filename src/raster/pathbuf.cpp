/* pathbuf.cpp - raster buffers: one block, three header words, then the pixels.
 *
 * The handle is the address of the first pixel. Rows follow each other without padding, so a row is found by one
 * multiplication and one addition. The value 1 is a handle that owns nothing.
 */
#include "raster/raster.h"

#include <cstring>

namespace zr32 {

namespace {

/* The header words as they stand in front of the pixels. */
struct BUFHEADER {
    int32_t bits;
    int32_t width;
    int32_t height;
};

static_assert(sizeof(BUFHEADER) == bufHeaderSize, "three words in front of the pixels");

BUFHEADER *HeaderOf(uint8_t *buf)
{
    return reinterpret_cast<BUFHEADER *>(buf - bufHeaderSize);
}

/* Not the null handle and not the reserved one. */
int OwnsBlock(const uint8_t *buf)
{
    return reinterpret_cast<uintptr_t>(buf) > 1;
}

/* Bytes of a block, or 0 when the sides are negative or no 32-bit word holds the size. */
size_t BlockSize(int32_t bits, int32_t width, int32_t height)
{
    if (width < 0 || height < 0) return 0;
    const uint64_t pixels = static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
    const uint64_t most = (INT32_MAX - bufHeaderSize) / BufPixelSize(bits);
    if (pixels > most) return 0;
    return static_cast<size_t>(pixels) * BufPixelSize(bits) + bufHeaderSize;
}

} // namespace

BUFINFO BufInfo(const uint8_t *buf)
{
    if (!OwnsBlock(buf)) return {0, 0, 0, 0, 0};
    const BUFHEADER *header = HeaderOf(const_cast<uint8_t *>(buf));
    const size_t pixelSize = BufPixelSize(header->bits);
    return {header->width, header->height, header->bits, pixelSize, pixelSize * static_cast<uint32_t>(header->width)};
}

PATHBUF PathBufForRect(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t depth)
{
    const int64_t width = static_cast<int64_t>(right) - left;
    const int64_t height = static_cast<int64_t>(bottom) - top;
    if (width > INT32_MAX || height > INT32_MAX || width < 0 || height < 0) return nullptr;
    return ZrPathBufAlloc(depth == 4 ? 32 : 8, static_cast<int32_t>(width), static_cast<int32_t>(height));
}

PATHREC *PathNextGroup(PATHREC *path)
{
    PATHREC *last = ChainLast(joinChain, path);
    return last ? last->nextSel : nullptr;
}

extern "C" {

ZRPATHAPI PATHBUF ZrPathBufAlloc(int32_t bits, int32_t width, int32_t height)
{
    const size_t size = BlockSize(bits, width, height);
    uint8_t *block = size ? static_cast<uint8_t *>(BufAlloc(bufZero, size)) : nullptr;
    if (!block) return nullptr;
    *HeaderOf(block + bufHeaderSize) = {bits, width, height};
    return block + bufHeaderSize;
}

ZRPATHAPI PATHBUF ZrPathBufDuplicate(int32_t, PATHBUF buf)
{
    if (!OwnsBlock(buf)) return nullptr;
    const size_t size = BufMemSize(buf - bufHeaderSize);
    uint8_t *block = static_cast<uint8_t *>(BufAlloc(0, size));
    if (!block) return nullptr;
    memcpy(block, buf - bufHeaderSize, size);
    return block + bufHeaderSize;
}

ZRPATHAPI int32_t ZrPathBufFree(PATHBUF buf)
{
    if (OwnsBlock(buf)) BufFree(buf - bufHeaderSize);
    return 1;
}

ZRPATHAPI uint32_t ZrPathBufSize(PATHBUF buf)
{
    return OwnsBlock(buf) ? static_cast<uint32_t>(BufMemSize(buf - bufHeaderSize)) : 0;
}

ZRPATHAPI int32_t ZrPathBufGetWHU(PATHBUF buf, int32_t *width, int32_t *height, int32_t *bits)
{
    if (!OwnsBlock(buf) || !width || !height || !bits) return 0;
    const BUFINFO info = BufInfo(buf);
    *width = info.width;
    *height = info.height;
    *bits = info.bits;
    return 1;
}

ZRPATHAPI int32_t ZrPathBufLock1(PATHBUF buf, int32_t, int32_t, int32_t, PATHBUFLOCK *lock)
{
    if (!OwnsBlock(buf) || !lock) return 0;
    *lock = {buf, static_cast<uint32_t>(HeaderOf(buf)->width)};
    return 1;
}

ZRPATHAPI int32_t ZrPathBufUnlock1(PATHBUFLOCK *)
{
    return 1;
}

ZRPATHAPI uint8_t *ZrPathBufLineRead(const PATHBUFLOCK *lock, int32_t y)
{
    if (!lock || !OwnsBlock(lock->pixels)) return nullptr;
    const size_t pixelSize = BufPixelSize(HeaderOf(lock->pixels)->bits);
    return lock->pixels + static_cast<ptrdiff_t>(lock->width) * y * static_cast<ptrdiff_t>(pixelSize);
}

} // extern "C"

} // namespace zr32
