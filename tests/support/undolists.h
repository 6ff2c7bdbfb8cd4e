/* undolists.h - puts the library's undo lists, which outlive a test, into a known state. */
#ifndef ZR32_TESTS_UNDOLISTS_H
#define ZR32_TESTS_UNDOLISTS_H

#include "support/document.h"

namespace zr32test {

/* Empties every list of the keys 0 to 50, also records that ZrPathURFree keeps. */
void FreeAllUndo();

/* Loads a document's list and counts its records. */
uint32_t UndoLength(int32_t key);

} // namespace zr32test

#endif
