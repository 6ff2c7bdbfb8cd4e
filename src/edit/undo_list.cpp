/* undo_list.cpp - records, the loaded list and the slots of the documents. */
#include "edit/undo.h"

#include <algorithm>

namespace zr32 {

UNDOLIST undoNow;

namespace {

struct URSLOT {
    int32_t key; /* 0 ends the used slots */
    UNDOLIST list;
};

URSLOT slots[undoSlots];

URSLOT *SlotOf(int32_t key)
{
    for (URSLOT &slot : slots) {
        if (slot.key == 0) return nullptr;
        if (slot.key == key) return &slot;
    }
    return nullptr;
}

int ListIsInASlot()
{
    for (const URSLOT &slot : slots)
        if (slot.key != 0 && slot.list.head == undoNow.head) return 1;
    return 0;
}

void RecordDelete(URRECORD *record)
{
    URFreePoints(record);
    BufFree(record);
}

} // namespace

void URLoad(int32_t key)
{
    if (!ListIsInASlot())
        while (undoNow.head) URDropOldest();
    const URSLOT *slot = SlotOf(key);
    undoNow = slot ? slot->list : UNDOLIST{nullptr, 0};
}

void URStore(int32_t key)
{
    if (key == 0) return;
    URSLOT *slot = SlotOf(key);
    if (!slot) {
        URSLOT *end = slots + undoSlots;
        slot = std::find_if(slots, end, [](const URSLOT &s) { return s.key == 0; });
        if (slot != end) *slot = {key, undoNow};
        return;
    }
    slot->list = undoNow;
    if (undoNow.head) return;
    std::copy(slot + 1, slots + undoSlots, slot);
    slots[undoSlots - 1] = {0, {nullptr, 0}};
}

URRECORD *URNewRecord(uint32_t action, uint32_t count)
{
    URRECORD *record =
        static_cast<URRECORD *>(BufAlloc(bufZero, offsetof(URRECORD, words) + sizeof(uintptr_t) * count));
    if (!record) return nullptr;
    record->action = action;
    record->count = count;
    if (undoNow.head) {
        undoNow.position++;
        URTail()->next = record;
    } else {
        undoNow = {record, 1};
    }
    return record;
}

URRECORD *URRecordAt(uint32_t position)
{
    if (position == 0) return nullptr;
    URRECORD *record = undoNow.head;
    for (uint32_t i = 1; record && i < position; i++) record = record->next;
    return record;
}

URRECORD *URTail()
{
    URRECORD *record = undoNow.head;
    while (record && record->next) record = record->next;
    return record;
}

void URDropOldest()
{
    URRECORD *oldest = undoNow.head;
    undoNow.head = oldest->next;
    if (undoNow.position > 0) undoNow.position--;
    RecordDelete(oldest);
}

void URDropNewest()
{
    URRECORD **link = &undoNow.head;
    uint32_t keep = 0;
    for (; (*link)->next; link = &(*link)->next) keep++;
    RecordDelete(*link);
    *link = nullptr;
    undoNow.position = std::min(undoNow.position, keep);
}

void URReplaceByNewest(URRECORD *record)
{
    URRECORD *newest = URTail();
    for (URRECORD *before = undoNow.head; before; before = before->next)
        if (before->next == newest) before->next = nullptr;
    newest->next = record->next;
    if (undoNow.head == record) undoNow.head = newest;
    for (URRECORD *before = undoNow.head; before; before = before->next)
        if (before->next == record) before->next = newest;
    RecordDelete(record);
}

} // namespace zr32
