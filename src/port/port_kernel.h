/* port_kernel.h - private heaps that know the requested size of each block, and global blocks.
 *
 * A heap is a handle of its own, but its blocks come from the standard allocator. Exhaustion gives a null block, also
 * for a heap made with HEAP_GENERATE_EXCEPTIONS: there is nothing here that could raise.
 */
#ifndef ZR32PORT_KERNEL_H
#define ZR32PORT_KERNEL_H

#include "port_types.h"

#define HEAP_NO_SERIALIZE 0x1u
#define HEAP_GENERATE_EXCEPTIONS 0x4u
#define HEAP_ZERO_MEMORY 0x8u
#define HEAP_REALLOC_IN_PLACE_ONLY 0x10u
#define GMEM_MOVEABLE 0x2u
#define GMEM_ZEROINIT 0x40u
#define GPTR 0x40u

#ifdef __cplusplus
extern "C" {
#endif

/* A private heap, null without memory. initial and maximum are taken for what they are elsewhere: hints. */
ZR32PORTAPI HANDLE HeapCreate(DWORD options, SIZE_T initial, SIZE_T maximum);

/* Frees the heap and every block still in it. */
ZR32PORTAPI BOOL HeapDestroy(HANDLE heap);

ZR32PORTAPI void *HeapAlloc(HANDLE heap, DWORD flags, SIZE_T size);

/* Resizes; with HEAP_REALLOC_IN_PLACE_ONLY a block that would have to move stays, and the result is null. Shrinking
 * in place always works. HEAP_ZERO_MEMORY zeroes what is added. */
ZR32PORTAPI void *HeapReAlloc(HANDLE heap, DWORD flags, void *block, SIZE_T size);

ZR32PORTAPI BOOL HeapFree(HANDLE heap, DWORD flags, void *block);

/* The size that was asked for; (SIZE_T)-1 for null. */
ZR32PORTAPI SIZE_T HeapSize(HANDLE heap, DWORD flags, const void *block);

/* Fixed blocks: the handle is the address. GlobalReAlloc may move the block, with GMEM_MOVEABLE elsewhere than here; it
 * gives null, and leaves the block, without memory. */
ZR32PORTAPI HGLOBAL GlobalAlloc(UINT flags, SIZE_T size);
ZR32PORTAPI HGLOBAL GlobalReAlloc(HGLOBAL block, SIZE_T size, UINT flags);
ZR32PORTAPI HGLOBAL GlobalFree(HGLOBAL block);
ZR32PORTAPI SIZE_T GlobalSize(HGLOBAL block); /* 0 for what is not such a block */

/* How many blocks a heap (null: the global blocks) holds now, for tests of leaks. */
ZR32PORTAPI SIZE_T PortBlockCount(HANDLE heap);

#ifdef __cplusplus
}
#endif

#endif
