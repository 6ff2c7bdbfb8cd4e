/* scene.h - records, buffers and surroundings decoded from a fuzzer's input, small enough that every pass ends soon. */
#ifndef ZR32_FUZZ_SCENE_H
#define ZR32_FUZZ_SCENE_H

#include "bytes.h"
#include "platform/platform.h"
#include <zr32path.h>

namespace zr32fuzz {

/* Starts the library and puts all module state that exports can reach into a known state. */
void SceneReset();

/* Traps when blocks of an allocator are left that were not there at the last SceneReset; undo lists go first. */
void SceneCheckLeaks();

void Check(bool holds);

/* ---- records ---- */

/* A chain of one to six records of up to mostNodes nodes each, of any codes, whose points lie within reach pixels of
 * the origin or, rarely, anywhere; linked by the table chain and, by bits of the input, by join and selected chain. */
PATHREC *TakeChain(BYTES *bytes, int32_t reach, int32_t mostNodes);

/* The number of records of a table chain from its head. Traps unless the links of table and join chain are answered by
 * the record that they lead to, those of the selected chain lead on in the order of the table chain (flags say who is
 * selected: the chain is rebuilt from them), and nodes lie within their block. */
uint32_t CheckChain(const PATHREC *head);

/* Every group of the table by CheckChain, active paths heads, selected paths among the group's records. */
void CheckTable(const PATHTBL *table);

/* The current group's active and selected path; null where there is none. */
PATHREC *Active(const PATHTBL *table);
PATHREC *Selected(const PATHTBL *table);

/* The zoom, at most 1.0, at which no side of the whole chain's box is longer than limit pixels. */
ZRFIXED FitZoom(const PATHREC *path, int32_t limit);

/* 1 when the chain's box has no side above limit pixels at zoom 1.0, for passes that take no zoom. */
bool SmallEnough(const PATHREC *path, int32_t limit);

/* The points of a warp, within reach pixels of the origin. */
void TakeFrame(BYTES *bytes, int32_t reach, ZRPOINTFX points[8]);

/* ---- buffers ---- */

/* A buffer of at most 40 x 40 pixels (or null) filled from the input, the rest repeating it. */
PATHBUF TakeBuffer(BYTES *bytes, int32_t bits);

/* The same in a size that the caller says, unless the input asks for another. */
PATHBUF TakeBufferOf(BYTES *bytes, int32_t bits, int32_t width, int32_t height);

void FreeBuffer(PATHBUF buffer);

/* Frees what ZrPathToBuf has given; the first mask stays when kept is not null. */
void FreeMasks(int32_t count, RECT *rects, PATHBUF *bufs, PATHBUF *kept);

/* ---- surroundings ---- */

/* A device context of the input's choice: none, a bitmap of 64 x 48, one of 1 x 1, none selected, or a host's table
 * without functions. They live as long as the process. */
HDC TakeDC(BYTES *bytes);

/* The bitmap of 64 x 48. */
HDC SceneDC();

/* A transform: a rotation about an axis or any nine numbers, seen from anywhere. */
POINTFXMAT3D TakeCamera(BYTES *bytes);

/* Counts calls and stops at the one that the scene chose; user is the address of an int32_t. */
int32_t SceneProgress(int32_t code, int32_t value, int32_t zero, intptr_t user);

/* One step over a document's undo list, with the context that its record asks for. */
void UndoStep(int32_t key, bool forward, PATHTBL *table, COORDSTRUCT *view, HDC hdc, RECT *dirty);

/* ---- fonts: the platform's font services answer from the input while a font is set ---- */

/* The bytes tell how the font answers: metrics, widths, outlines made by hand and damaged, or any bytes. */
void FontSet(const BYTES &bytes);

} // namespace zr32fuzz

#endif
