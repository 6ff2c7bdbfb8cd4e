/* faults.h - failing memory on purpose, for tests.
 *
 * memory.cpp asks FaultHits before each allocation. In the shipped library FaultHits is a constant 0; the tests link a
 * build of memory.cpp with ZR32_TEST_FAULTS, in which FaultSet makes the n-th allocation of one allocator fail.
 */
#ifndef ZR32_FAULTS_H
#define ZR32_FAULTS_H

#include <cstdint>

namespace zr32 {

enum ALLOCATOR { ALLOC_PATHHEAP, ALLOC_SURFACEHEAP, ALLOC_BUF, ALLOC_GLOBAL, ALLOC_COUNT };

#if defined(ZR32_TEST_FAULTS)
/* The n-th allocation from now on (1 the next) of the allocator fails, once; 0: none. */
void FaultSet(ALLOCATOR allocator, int64_t n);

/* Not 0 when the fault that was set has struck. */
int FaultStruck();

/* Blocks that the allocator has given and not got back. */
int64_t FaultLiveBlocks(ALLOCATOR allocator);
#endif

} // namespace zr32

#endif
