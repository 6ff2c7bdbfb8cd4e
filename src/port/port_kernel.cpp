/* port_kernel.cpp - heaps and global blocks over the standard allocator.
 *
 * Every block has a header in front of it with the requested size and its room, and hangs in its heap's ring, so that
 * HeapDestroy can free what is left and HeapSize answers exactly. The header keeps blocks aligned to 16 bytes.
 */
#include "port_kernel.h"

#include <cstdlib>
#include <cstring>

namespace {

struct alignas(16) BLOCKHEAD {
    BLOCKHEAD *prev;
    BLOCKHEAD *next;
    SIZE_T size; /* as asked for */
    SIZE_T room; /* as had from the allocator; shrinking in place leaves it */
};

struct HEAP {
    BLOCKHEAD ring; /* blocks hang between ring.next and ring.prev */
    SIZE_T count;
};

void RingInit(HEAP *heap)
{
    heap->ring.prev = heap->ring.next = &heap->ring;
    heap->count = 0;
}

HEAP *GlobalHeap()
{
    static HEAP heap;
    if (!heap.ring.next) RingInit(&heap);
    return &heap;
}

BLOCKHEAD *HeadOf(void *block)
{
    return static_cast<BLOCKHEAD *>(block) - 1;
}

void *BlockAlloc(HEAP *heap, bool zero, SIZE_T size)
{
    if (size > SIZE_MAX - sizeof(BLOCKHEAD)) return nullptr;
    void *memory = zero ? calloc(1, sizeof(BLOCKHEAD) + size) : malloc(sizeof(BLOCKHEAD) + size);
    if (!memory) return nullptr;
    BLOCKHEAD *head = static_cast<BLOCKHEAD *>(memory);
    head->size = head->room = size;
    head->prev = heap->ring.prev;
    head->next = &heap->ring;
    head->prev->next = head->next->prev = head;
    heap->count++;
    return head + 1;
}

void BlockFree(HEAP *heap, void *block)
{
    BLOCKHEAD *head = HeadOf(block);
    head->prev->next = head->next;
    head->next->prev = head->prev;
    heap->count--;
    free(head);
}

void *BlockReAlloc(HEAP *heap, bool zero, bool inPlace, void *block, SIZE_T size)
{
    BLOCKHEAD *head = HeadOf(block);
    const SIZE_T old = head->size;
    if (size > head->room) {
        if (inPlace) return nullptr;
        void *moved = BlockAlloc(heap, false, size);
        if (!moved) return nullptr;
        memcpy(moved, block, old);
        BlockFree(heap, block);
        block = moved;
        head = HeadOf(block);
    }
    head->size = size;
    if (zero && size > old) memset(static_cast<BYTE *>(block) + old, 0, size - old);
    return block;
}

} // namespace

extern "C" {

HANDLE HeapCreate(DWORD, SIZE_T, SIZE_T)
{
    HEAP *heap = static_cast<HEAP *>(malloc(sizeof(HEAP)));
    if (heap) RingInit(heap);
    return heap;
}

BOOL HeapDestroy(HANDLE handle)
{
    if (!handle) return FALSE;
    HEAP *heap = static_cast<HEAP *>(handle);
    for (BLOCKHEAD *head = heap->ring.next; head != &heap->ring;) {
        BLOCKHEAD *next = head->next;
        free(head);
        head = next;
    }
    free(heap);
    return TRUE;
}

void *HeapAlloc(HANDLE heap, DWORD flags, SIZE_T size)
{
    if (!heap) return nullptr;
    return BlockAlloc(static_cast<HEAP *>(heap), (flags & HEAP_ZERO_MEMORY) != 0, size);
}

void *HeapReAlloc(HANDLE heap, DWORD flags, void *block, SIZE_T size)
{
    if (!heap || !block) return nullptr;
    return BlockReAlloc(static_cast<HEAP *>(heap), (flags & HEAP_ZERO_MEMORY) != 0,
                        (flags & HEAP_REALLOC_IN_PLACE_ONLY) != 0, block, size);
}

BOOL HeapFree(HANDLE heap, DWORD, void *block)
{
    if (!heap) return FALSE;
    if (block) BlockFree(static_cast<HEAP *>(heap), block);
    return TRUE;
}

SIZE_T HeapSize(HANDLE, DWORD, const void *block)
{
    return block ? HeadOf(const_cast<void *>(block))->size : static_cast<SIZE_T>(-1);
}

HGLOBAL GlobalAlloc(UINT flags, SIZE_T size)
{
    return BlockAlloc(GlobalHeap(), (flags & GMEM_ZEROINIT) != 0, size);
}

HGLOBAL GlobalReAlloc(HGLOBAL block, SIZE_T size, UINT flags)
{
    if (!block) return nullptr;
    return BlockReAlloc(GlobalHeap(), (flags & GMEM_ZEROINIT) != 0, false, block, size);
}

HGLOBAL GlobalFree(HGLOBAL block)
{
    if (block) BlockFree(GlobalHeap(), block);
    return nullptr;
}

SIZE_T GlobalSize(HGLOBAL block)
{
    /* An address that is no global block has no size to tell, and nothing in front of it may be read. */
    const HEAP *heap = GlobalHeap();
    for (const BLOCKHEAD *head = heap->ring.prev; head != &heap->ring; head = head->prev)
        if (head + 1 == block) return head->size;
    return 0;
}

SIZE_T PortBlockCount(HANDLE heap)
{
    return heap ? static_cast<HEAP *>(heap)->count : GlobalHeap()->count;
}

} // extern "C"
