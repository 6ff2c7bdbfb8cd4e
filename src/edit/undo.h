/* undo.h - the undo lists: one list of records a document, of which one is loaded at a time.
 *
 *   undoNow.head -> oldest ... [position] ... newest
 *                   |-- past --|  |-- redo --|
 *
 * position counts the records of the past: the next undo applies the record at it, the next redo the one behind it.
 * A record holds the state on the other side of its step; applying it, in either direction, exchanges what it holds
 * with the present state, so one record serves both. Lists live in a table of slots by document key; every call with
 * a key loads its list first (URLoad) and saves it last (URStore). A list that no slot holds, because the table was
 * full or because it grew from nothing without a key, lasts until the next load, which frees it.
 */
#ifndef ZR32_UNDO_H
#define ZR32_UNDO_H

#include "store/store.h"
#include <zr32path/edit.h>

namespace zr32 {

/* One BufAlloc block. */
struct URRECORD {
    uint32_t action;
    URRECORD *next;  /* next newer record */
    uint32_t count;  /* words in use */
    POINTFX *points; /* an envelope's frame, a BufAlloc block that the words tell too: number of points, address */
    uintptr_t words[];
};

struct UNDOLIST {
    URRECORD *head; /* oldest */
    uint32_t position;
};

/* The list now loaded. */
extern UNDOLIST undoNow;

constexpr int undoSlots = 20;

/* ---- lists (undo_list.cpp) ---- */

/* Loads the list of a key, an empty one when the key has none. */
void URLoad(int32_t key);

/* Saves the loaded list under the key; an empty list gives its slot up. With all slots taken nothing is saved. */
void URStore(int32_t key);

/* Appends a zeroed record of count words and counts it as past; the redo records in front of it stay. Null without
 * memory. */
URRECORD *URNewRecord(uint32_t action, uint32_t count);

/* The record at a position counted from 1; null outside the list. */
URRECORD *URRecordAt(uint32_t position);

URRECORD *URTail();

/* Removes the oldest or the newest record of a list that is not empty. */
void URDropOldest();
void URDropNewest();

/* Takes the newest record off and puts it in the place of another, which is freed. */
void URReplaceByNewest(URRECORD *record);

/* ---- selections (undo_selection.cpp) ---- */

/* A word of a snapshot is the place of a selected path in the table chain, or with this bit the index of a selected
 * node of the path before it. Places and indices beyond the bit are not recorded. */
constexpr uint32_t snapshotNode = 0x8000;

/* Appends the present selection; null without memory. */
URRECORD *URSelectionSnapshot(const PATHTBL *table);

/* Exchanges the present selection with the record's. 0 without memory, nothing is then changed. */
int URSelectionApply(const COORDSTRUCT *view, PATHTBL *table, URRECORD *record, ZRHDC hdc);

/* ---- moves and envelopes (undo_steps.cpp) ---- */

/* Appends where node 0 of the path is; null without memory or without such a node. */
URRECORD *URMoveRecord(uint32_t action, const PATHREC *selected);

/* Exchanges the place of node 0 with the record's and moves the selection along. */
void URMoveApply(const COORDSTRUCT *view, PATHREC *selected, URRECORD *record, RECT *dirty);

/* Appends the frame of an envelope's outline record; null without memory or when the path is none. */
URRECORD *UREnvelopeRecord(const PATHREC *frame);

/* Exchanges the frame with the record's and warps the paths under it. 0 without memory for the exchange, nothing is
 * then changed; an outline record that does not exist and cannot be had is left out. */
int UREnvelopeApply(PATHREC *active, const PATHREC *frame, URRECORD *record);

/* Frees what a record owns. */
void URFreePoints(URRECORD *record);

} // namespace zr32

#endif
