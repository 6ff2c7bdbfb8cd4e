/* fragments.cpp - the pool of fragments, and the way to a pixel of the plane.
 *
 * Chunks double in size, so a number finds its chunk in a few steps, and taking a fragment is a step of a counter.
 *
 * State: how large the last pool grew, for those who measure.
 */
#include "render3d/fragments.h"

namespace zr32 {

namespace {

uint32_t lastUsed = 0;

struct POOLPLACE {
    uint32_t chunk;
    uint32_t index;
};

POOLPLACE PlaceOf(uint32_t number)
{
    const uint64_t n = static_cast<uint64_t>(number) - 1 + poolFirst;
    uint32_t chunk = 0;
    while (n >> chunk >= 2 * static_cast<uint64_t>(poolFirst)) chunk++;
    return {chunk, static_cast<uint32_t>(n - (static_cast<uint64_t>(poolFirst) << chunk))};
}

} // namespace

ABUFFRAG *FragAt(const FRAGPOOL *pool, uint32_t number)
{
    const POOLPLACE place = PlaceOf(number);
    return pool->chunks[place.chunk] + place.index;
}

uint32_t FragTake(FRAGPOOL *pool)
{
    uint32_t number = pool->free;
    if (number) {
        pool->free = FragAt(pool, number)->next;
        *FragAt(pool, number) = {};
    } else {
        const POOLPLACE place = PlaceOf(pool->used + 1);
        if (place.chunk >= poolChunks) return 0;
        ABUFFRAG **chunk = &pool->chunks[place.chunk];
        if (!*chunk) {
            const uint64_t size = static_cast<uint64_t>(sizeof(ABUFFRAG)) * poolFirst << place.chunk;
            if (size > SIZE_MAX / 2) return 0;
            *chunk = static_cast<ABUFFRAG *>(PathHeapAlloc(SurfaceHeap(), heapZero, static_cast<size_t>(size)));
            if (!*chunk) return 0;
        }
        number = ++pool->used;
    }
    pool->live++;
    return number;
}

void FragDrop(uint32_t number, FRAGPOOL *pool)
{
    FragAt(pool, number)->next = pool->free;
    pool->free = number;
    pool->live--;
}

uint32_t FragPoolLastUsed()
{
    return lastUsed;
}

void FragPoolFree(FRAGPOOL *pool)
{
    lastUsed = pool->used;
    for (ABUFFRAG *chunk : pool->chunks)
        if (chunk) PathHeapFree(SurfaceHeap(), heapNoSerialize, chunk);
    *pool = {};
}

ABUFPIXEL *PlanePixel(const ABUF *abuf, int32_t x, int32_t y)
{
    if (!abuf->plane || !BufHasPixel(abuf->info, x, y)) return nullptr;
    return reinterpret_cast<ABUFPIXEL *>(BufRow(abuf->plane, abuf->info, y)) + x;
}

} // namespace zr32
