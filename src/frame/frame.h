/* frame.h - the floor under every room: fixed-point numbers, truncation, the four allocators, error reports.
 *
 * State: the two private heap handles, made on first use and never destroyed. Single-threaded by contract.
 */
#ifndef ZR32_FRAME_H
#define ZR32_FRAME_H

#include "platform/platform.h"
#include <cstddef>
#include <cstdint>
#include <zr32path/frame.h>
#include <zr32path/types.h>

namespace zr32 {

/* Inside the library the plain names mean the library's own types, also where the platform has records so called. */
using FIXED = ZRFIXED;
using POINTFX = ZRPOINTFX;

constexpr FIXED fixedOne = 0x10000;

/* ---- numbers ---- */

/* Double to integer, cut towards zero: the low 32 bits of the truncated 64-bit integer where that exists, else 0. The
 * only way from a double that may be out of range to an integer. */
inline int32_t TruncInt(double value)
{
    /* 2^63 as a double; NaN fails both comparisons. The common case needs no 64-bit step. */
    if (value > -2147483649.0 && value < 2147483648.0) return static_cast<int32_t>(value);
    if (value >= -9223372036854775808.0 && value < 9223372036854775808.0)
        return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(static_cast<int64_t>(value))));
    return 0;
}

/* The low byte of the same. */
inline uint8_t TruncByte(double value)
{
    return static_cast<uint8_t>(static_cast<uint32_t>(TruncInt(value)) & 0xFFu);
}

/* Sums that wrap around, for coordinates of any origin. */
inline int32_t WrapAdd(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

inline int32_t WrapSub(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

/* FixToDb and DbToFix, inline for inner loops. */
inline double FixToDouble(FIXED value)
{
    return value * 1.52587890625e-05;
}

inline FIXED DoubleToFix(double value)
{
    return TruncInt(value * 65536.0);
}

/* The integer part as the upper 16 bits, signed: -0.5 counts as -1. */
inline int16_t FixIntPart(FIXED value)
{
    return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(value) >> 16));
}

/* Adds whole pixels to the upper 16 bits and leaves the fraction alone. */
inline FIXED FixAddWhole(FIXED value, int16_t whole)
{
    return static_cast<FIXED>(static_cast<uint32_t>(value) +
                              (static_cast<uint32_t>(static_cast<uint16_t>(whole)) << 16));
}

int PtfxEqual(FIXED ax, FIXED ay, FIXED bx, FIXED by);

/* (a - b) with wrap-around. */
POINTFX PtfxSub(FIXED ax, FIXED ay, FIXED bx, FIXED by);

/* ((a + b) / 2) and ((a + 2 b) / 3), the sum formed in 64 bits, the division towards zero. */
POINTFX PtfxMidpoint(FIXED ax, FIXED ay, FIXED bx, FIXED by);
POINTFX PtfxTwoThirds(FIXED ax, FIXED ay, FIXED bx, FIXED by);

/* ---- memory: four allocators, never mixed ----
 * path heap     records, tables, edge lists       PathHeap(), PathHeapAlloc and its companions
 * surface heap  the 3D renderer's fragments       SurfaceHeap(), the same companions
 * BufAlloc      raster and display buffers, view and undo records, temporary arrays
 * global blocks what the caller frees with GlobalFree
 * Each gives null without memory. */

constexpr uint32_t heapNoSerialize = 1;
constexpr uint32_t heapZero = 8;
constexpr uint32_t bufZero = 0x40;

/* The heaps; null while they do not exist. */
HANDLE PathHeap();
HANDLE SurfaceHeap();

/* Makes the surface heap once. 1 when it exists. */
int SurfaceHeapInit();

void *PathHeapAlloc(HANDLE heap, uint32_t flags, size_t size);

/* Resizes; the tail is not zeroed and the block may move. On failure the block stays and the result is null. */
void *PathHeapReAlloc(HANDLE heap, uint32_t flags, void *block, size_t size);

/* Resizes without moving; null, with the block kept, when the heap cannot. Shrinking works everywhere; growth is not
 * tried where the platform would raise instead of refusing it. */
void *PathHeapReAllocInPlace(HANDLE heap, uint32_t flags, void *block, size_t size);

void PathHeapFree(HANDLE heap, uint32_t flags, void *block);

/* The size that was asked for last; 0 for null. */
size_t PathHeapSize(HANDLE heap, uint32_t flags, const void *block);

int PathHeapValid(HANDLE heap, uint32_t flags, const void *block);

/* Standard allocation, zero-filled when flags has bufZero. */
void *BufAlloc(uint32_t flags, size_t size);

/* A null block is a BufAlloc. Null, with the block kept, when its old size reads as 0 or the resize fails. With
 * bufZero what was added is zeroed. */
void *BufReAlloc(void *block, size_t size, uint32_t flags);

int BufFree(void *block);

/* The size as the allocator reports it, which can exceed what was asked for; 0 for null. */
size_t BufMemSize(const void *block);

/* Global blocks, zero-filled. GlobalBlockReAlloc zeroes what is added and keeps the block on failure. */
void *GlobalBlockAlloc(size_t size);
void *GlobalBlockReAlloc(void *block, size_t size);
void GlobalBlockFree(void *block);

/* ---- error reports ---- */

constexpr int32_t errorMemory = 1001;
constexpr int32_t errorCancelled = 5200;

/* Reports to the support library under the library's own group 2600. */
void ReportError(int32_t code, int32_t subCode, int32_t index);

} // namespace zr32

#endif
