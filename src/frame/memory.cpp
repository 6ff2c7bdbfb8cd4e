/* memory.cpp - the four allocators and the two private heaps.
 *
 * Order of calls: ZrPathInit before anything from the path heap, SurfaceHeapInit before anything from the surface heap.
 * The heaps are never destroyed; the handles are the frame's only state.
 */
#include "comm/zr32comm.h"
#include "frame/faults.h"
#include "frame/frame.h"

#include <cstdlib>
#include <cstring>

#if defined(__linux__) || defined(_WIN32)
#include <malloc.h>
#endif

namespace zr32 {

namespace {

HANDLE pathHeap;
HANDLE surfaceHeap;

constexpr SIZE_T heapInitialSize = 0x80000;

static_assert(heapNoSerialize == HEAP_NO_SERIALIZE && heapZero == HEAP_ZERO_MEMORY, "the platform's flags");

#if defined(ZR32_TEST_FAULTS)
int64_t faultCountdown[ALLOC_COUNT];
int faultStruck;
int64_t liveBlocks[ALLOC_COUNT];

int FaultHits(ALLOCATOR allocator)
{
    if (faultCountdown[allocator] == 0 || --faultCountdown[allocator] > 0) return 0;
    faultStruck = 1;
    return 1;
}

void *Counted(ALLOCATOR allocator, void *block)
{
    if (block) liveBlocks[allocator]++;
    return block;
}

void Uncounted(ALLOCATOR allocator, const void *block)
{
    if (block) liveBlocks[allocator]--;
}
#else
constexpr int FaultHits(ALLOCATOR)
{
    return 0;
}

void *Counted(ALLOCATOR, void *block)
{
    return block;
}

void Uncounted(ALLOCATOR, const void *) {}
#endif

/* Of a heap that exists. */
ALLOCATOR HeapKind(HANDLE heap)
{
    return heap == surfaceHeap ? ALLOC_SURFACEHEAP : ALLOC_PATHHEAP;
}

int HeapMake(HANDLE *heap)
{
    if (!*heap) *heap = HeapCreate(HEAP_GENERATE_EXCEPTIONS, heapInitialSize, 0);
    return *heap != nullptr;
}

} // namespace

#if defined(ZR32_TEST_FAULTS)
void FaultSet(ALLOCATOR allocator, int64_t n)
{
    faultCountdown[allocator] = n;
    faultStruck = 0;
}

int FaultStruck()
{
    return faultStruck;
}

int64_t FaultLiveBlocks(ALLOCATOR allocator)
{
    return liveBlocks[allocator];
}
#endif

extern "C" int32_t ZrPathInit(void)
{
    return HeapMake(&pathHeap) ? 0x30000 : 0;
}

HANDLE PathHeap()
{
    return pathHeap;
}

HANDLE SurfaceHeap()
{
    return surfaceHeap;
}

int SurfaceHeapInit()
{
    return HeapMake(&surfaceHeap);
}

void *PathHeapAlloc(HANDLE heap, uint32_t flags, size_t size)
{
    if (!heap) return nullptr;
    const ALLOCATOR kind = HeapKind(heap);
    if (FaultHits(kind)) return nullptr;
    return Counted(kind, HeapAlloc(heap, flags, size));
}

void *PathHeapReAlloc(HANDLE heap, uint32_t flags, void *block, size_t size)
{
    if (!heap || FaultHits(HeapKind(heap))) return nullptr;
    return HeapReAlloc(heap, flags, block, size);
}

void *PathHeapReAllocInPlace(HANDLE heap, uint32_t flags, void *block, size_t size)
{
#if defined(_WIN32)
    /* A heap with HEAP_GENERATE_EXCEPTIONS raises where a block cannot grow in place, and nothing tells that before. */
    if (size > PathHeapSize(heap, flags, block)) return nullptr;
#endif
    return PathHeapReAlloc(heap, flags | HEAP_REALLOC_IN_PLACE_ONLY, block, size);
}

void PathHeapFree(HANDLE heap, uint32_t flags, void *block)
{
    if (!heap || !block) return;
    Uncounted(HeapKind(heap), block);
    HeapFree(heap, flags, block);
}

size_t PathHeapSize(HANDLE heap, uint32_t flags, const void *block)
{
    return heap && block ? HeapSize(heap, flags, block) : 0;
}

int PathHeapValid(HANDLE heap, uint32_t flags, const void *block)
{
    return PathHeapSize(heap, flags, block) != 0;
}

void *BufAlloc(uint32_t flags, size_t size)
{
    if (FaultHits(ALLOC_BUF)) return nullptr;
    return Counted(ALLOC_BUF, flags & bufZero ? calloc(1, size) : malloc(size));
}

void *BufReAlloc(void *block, size_t size, uint32_t flags)
{
    if (!block) return BufAlloc(flags, size);
    const size_t old = BufMemSize(block);
    if (old == 0 || size == 0 || FaultHits(ALLOC_BUF)) return nullptr;
    uint8_t *resized = static_cast<uint8_t *>(realloc(block, size));
    if (resized && flags & bufZero && size > old) memset(resized + old, 0, size - old);
    return resized;
}

int BufFree(void *block)
{
    Uncounted(ALLOC_BUF, block);
    free(block);
    return 1;
}

size_t BufMemSize(const void *block)
{
    if (!block) return 0;
#if defined(_WIN32)
    return _msize(const_cast<void *>(block));
#else
    return malloc_usable_size(const_cast<void *>(block));
#endif
}

void *GlobalBlockAlloc(size_t size)
{
    if (FaultHits(ALLOC_GLOBAL)) return nullptr;
    return Counted(ALLOC_GLOBAL, GlobalAlloc(GPTR, size));
}

void *GlobalBlockReAlloc(void *block, size_t size)
{
    if (FaultHits(ALLOC_GLOBAL)) return nullptr;
    return GlobalReAlloc(block, size, GMEM_ZEROINIT | GMEM_MOVEABLE);
}

void GlobalBlockFree(void *block)
{
    if (!block) return;
    Uncounted(ALLOC_GLOBAL, block);
    GlobalFree(block);
}

void ReportError(int32_t code, int32_t subCode, int32_t index)
{
    zr32SetDLLErrInfo(0, code, 0, 2600, subCode, index);
}

} // namespace zr32
