/* scene.h - records, buffers and surroundings decoded from a fuzzer's input, small enough that every pass ends soon. */
#ifndef ZR32_FUZZ_SCENE_H
#define ZR32_FUZZ_SCENE_H

#include "bytes.h"
#include "platform/platform.h"
#include <zr32path.h>

namespace zr32fuzz {

/* Starts the library and puts all module state that exports can reach into a known state. */
void SceneReset();

/* Traps when blocks of an allocator are left that were not there at the last SceneReset. */
void SceneCheckLeaks();

/* A record of up to 40 nodes of any codes whose points lie within reach pixels of the origin; flags as decoded. */
PATHREC *TakeRecord(BYTES *bytes, int32_t reach);

/* A chain of one to six records, linked by the table chain and, by bits of the input, by join and selected chain. */
PATHREC *TakeChain(BYTES *bytes, int32_t reach);

/* A buffer of up to 40 x 40 pixels (or null) filled from the input, the rest repeating it. */
PATHBUF TakeBuffer(BYTES *bytes, int32_t bits);

void FreeBuffer(PATHBUF buffer);

/* 1 when the masks of the chain at this zoom have sides of at most limit pixels. */
int SmallEnough(const PATHREC *path, ZRFIXED zoom, int32_t limit);

/* A memory device context of 64 x 48 pixels that lives as long as the process. */
HDC SceneDC();

/* Counts calls and stops at the one that the scene chose. */
int32_t SceneProgress(int32_t code, int32_t value, int32_t zero, intptr_t user);

} // namespace zr32fuzz

#endif
