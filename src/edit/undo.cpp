/* undo.cpp - the exports of undo and redo.
 *
 * Each keyed call is one passage: load the document's list, do one thing, save it. The record under a step tells what
 * to apply, and with it what the caller's context is: a device context for a selection, the address of a rectangle
 * for moves and envelopes.
 */
#include "edit/undo.h"
#include <zr32path/display.h>

namespace zr32 {

namespace {

enum URDIRECTION { UR_BACK, UR_FORWARD };

/* Applying a join backwards is a disjoin, and the other way round. */
void URJoinApply(PATHREC *selected, int join)
{
    if (!selected) return;
    if (join)
        ZrPathJoin(selected);
    else
        ZrPathDisjoin(selected);
}

/* Redraws the whole group, since a warp changes more than the selection. */
int EnvelopeStep(const COORDSTRUCT *view, PATHREC *active, PATHREC *selected, URRECORD *record, RECT *dirty)
{
    if (!view) return UREnvelopeApply(active, selected, record);
    RECT hidden = {0, 0, 0, 0};
    RECT drawn = {0, 0, 0, 0};
    ZrPathHide(view, selected, &hidden);
    const int done = UREnvelopeApply(active, selected, record);
    ZrPathDraw(view, active, &drawn);
    ZrPathGetAllMiniMaxRect(selected, fixedOne, &drawn);
    if (dirty) UnionRect(dirty, &hidden, &drawn);
    return done;
}

/* 0 without memory, nothing is then changed. */
int Apply(URRECORD *record, URDIRECTION direction, PATHTBL *table, COORDSTRUCT *view, void *context)
{
    PATHREC *active = nullptr;
    PATHREC *selected = nullptr;
    ZrPathFind(table, nullptr, &active, &selected, nullptr);
    switch (record->action) {
    case UR_SELECTION: return URSelectionApply(view, table, record, static_cast<ZRHDC>(context));
    case UR_MOVE: URMoveApply(view, selected, record, static_cast<RECT *>(context)); return 1;
    case UR_JOIN: URJoinApply(selected, direction == UR_FORWARD); return 1;
    case UR_DISJOIN: URJoinApply(selected, direction == UR_BACK); return 1;
    case UR_ENVELOPE: return EnvelopeStep(view, active, selected, record, static_cast<RECT *>(context));
    default: return 1; /* a record of the caller's own kind is stepped over */
    }
}

int32_t Step(int32_t key, URDIRECTION direction, PATHTBL *table, COORDSTRUCT *view, void *context)
{
    URLoad(key);
    URRECORD *record = URRecordAt(direction == UR_BACK ? undoNow.position : undoNow.position + 1);
    if (!record || !Apply(record, direction, table, view, context)) return 0;
    if (direction == UR_BACK)
        undoNow.position--;
    else
        undoNow.position++;
    URStore(key);
    return 1;
}

/* 1 when the words agree, or when the second record has none: an empty selection counts as the same. */
int SameWords(const URRECORD *a, const URRECORD *b)
{
    if (b->count == 0) return 1;
    if (a->count != b->count) return 0;
    for (uint32_t i = 0; i < a->count; i++)
        if (a->words[i] != b->words[i]) return 0;
    return 1;
}

PATHREC *SelectedPath(const PATHTBL *table)
{
    PATHREC *selected = nullptr;
    ZrPathFind(table, nullptr, nullptr, &selected, nullptr);
    return selected;
}

/* The record of an action for the present state; null for a code without one, and without memory. */
URRECORD *RecordAction(int32_t action, const PATHTBL *table)
{
    switch (action) {
    case UR_SELECTION: return URSelectionSnapshot(table);
    case UR_MOVE: return URMoveRecord(UR_MOVE, SelectedPath(table));
    case UR_JOIN:
    case UR_DISJOIN: return URNewRecord(static_cast<uint32_t>(action), 0);
    case UR_ENVELOPE: return UREnvelopeRecord(SelectedPath(table));
    default: return nullptr;
    }
}

int IsListedAction(uint32_t action)
{
    return action == UR_SELECTION || action == UR_MOVE || action == UR_JOIN || action == UR_DISJOIN ||
           action == UR_ENVELOPE;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathBackupAction(int32_t key, int32_t action, PATHTBL *table)
{
    if (key == 0) return 1;
    URLoad(key);
    if (RecordAction(action, table)) URStore(key); /* what records nothing makes no slot */
    return 1;
}

ZRPATHAPI int32_t BackupSelected(int32_t action, PATHTBL *table)
{
    URRECORD *record = URNewRecord(static_cast<uint32_t>(action), 1);
    if (record) record->words[0] = reinterpret_cast<uintptr_t>(SelectedPath(table));
    return 1;
}

ZRPATHAPI int32_t BackupSelectMove(int32_t action, PATHTBL *table)
{
    URMoveRecord(static_cast<uint32_t>(action), SelectedPath(table));
    return 1;
}

ZRPATHAPI int32_t BackupDuplicate(int32_t, PATHTBL *table)
{
    return URSelectionSnapshot(table) != nullptr;
}

ZRPATHAPI int32_t ZrPathUndo(int32_t key, PATHTBL *table, COORDSTRUCT *view, void *context)
{
    return Step(key, UR_BACK, table, view, context);
}

ZRPATHAPI int32_t ZrPathRedo(int32_t key, PATHTBL *table, COORDSTRUCT *view, void *context)
{
    return Step(key, UR_FORWARD, table, view, context);
}

ZRPATHAPI int32_t ZrPathSameUR(int32_t key, PATHTBL *table, int32_t action)
{
    URLoad(key);
    const URRECORD *record = URRecordAt(undoNow.position);
    if (!record || action != UR_SELECTION || record->action != UR_SELECTION) return 0;
    if (!URSelectionSnapshot(table)) return 0;
    /* Meant for a record at the tail. With redo records behind it the next of those is compared, and the position
     * stays one higher, deliberately. */
    const int32_t same = SameWords(record, record->next);
    URDropNewest();
    URStore(key);
    return same;
}

ZRPATHAPI int32_t ZrPathURFree(int32_t key, intptr_t, int32_t oldest)
{
    URLoad(key);
    const URRECORD *record = oldest ? undoNow.head : URTail();
    if (!record || !IsListedAction(record->action)) return 1;
    if (oldest)
        URDropOldest();
    else
        URDropNewest();
    URStore(key);
    return 1;
}

ZRPATHAPI int32_t ZrPathGetURAction(void)
{
    undoNow.position++; /* the next call with a key loads it anew */
    return 1;
}

ZRPATHAPI int32_t ZrPathZrPathGetURInfo(int32_t *first, int32_t *second)
{
    if (first) *first = 0;
    if (second) *second = 0;
    return 1;
}

ZRPATHAPI int32_t ZrPathSetUndoLimit(void)
{
    return 1;
}

} // extern "C"

} // namespace zr32
