/* undolists.cpp - see undolists.h. */
#include "support/undolists.h"

#include "edit/undo.h"

namespace zr32test {

using namespace zr32;

void FreeAllUndo()
{
    for (int32_t key = 0; key <= 50; key++) {
        URLoad(key);
        if (!undoNow.head) continue;
        while (undoNow.head) URDropOldest();
        URStore(key);
    }
}

uint32_t UndoLength(int32_t key)
{
    URLoad(key);
    uint32_t count = 0;
    for (const URRECORD *record = undoNow.head; record; record = record->next) count++;
    return count;
}

} // namespace zr32test
