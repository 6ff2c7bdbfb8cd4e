/* undo_selection.cpp - snapshots of which paths and nodes are selected, and going back to one.
 *
 * A snapshot holds places in the table chain, not addresses, so it outlives records that move in memory. A place or
 * node that the table no longer has is passed over.
 */
#include "edit/select.h"
#include "edit/undo.h"
#include <zr32path/display.h>

namespace zr32 {

namespace {

/* Calls word(uint32_t) for each word of the present selection's snapshot. The selected chain is in table order, so
 * one walk along the table chain meets it. */
template <typename WORD> void ForEachWord(const PATHTBL *table, WORD word)
{
    const PATHGROUP *group = TableCurrentGroup(table);
    const PATHREC *selected = group ? group->selectedPath : nullptr;
    const PATHREC *record = selected ? group->activePath : nullptr;
    for (uint32_t place = 0; record && selected && place < snapshotNode; record = record->nextPath, place++) {
        if (record != selected) continue;
        word(place);
        if (PathInNodeEdit(record))
            for (uint32_t i = 0; i < record->nodeCount && i < snapshotNode; i++)
                if (record->nodes[i].type & PATHNODE_SELECTED) word(i | snapshotNode);
        selected = selected->nextSel;
    }
}

/* What of a snapshot is still to be done. */
struct WORDS {
    const URRECORD *record;
    uint32_t next;
};

int AtEnd(const WORDS *words)
{
    return words->next >= words->record->count;
}

int AtNode(const WORDS *words)
{
    return !AtEnd(words) && (words->record->words[words->next] & snapshotNode) != 0;
}

/* Selects the record by its node words, as a whole when there are none. */
void SelectBySnapshot(ZRHDC hdc, const COORDSTRUCT *view, PATHREC *record, WORDS *words)
{
    if (PathInNodeEdit(record)) PathDeselect(hdc, record, view, 1);
    const int withNodes = AtNode(words);
    if (!PathIsSelected(record)) {
        record->flags |= PATHREC_SELECTED;
        if (!withNodes) ZrPathDrawNodes(hdc, record, view);
    } else if (withNodes) {
        ZrPathDrawNodes(hdc, record, view);
    }
    if (!withNodes) return;
    for (; AtNode(words); words->next++) {
        const uintptr_t node = words->record->words[words->next] & (snapshotNode - 1);
        if (node < record->nodeCount) record->nodes[node].type |= PATHNODE_SELECTED;
    }
    record->flags = PATHREC_NODEEDIT;
    ZrPathDrawNodes(hdc, record, view);
}

void SelectSnapshot(ZRHDC hdc, const COORDSTRUCT *view, PATHGROUP *group, const URRECORD *record)
{
    WORDS words = {record, 0};
    PATHREC *before = nullptr;
    uintptr_t place = 0;
    group->selectedPath = nullptr;
    for (PATHREC *path = group->activePath; path; path = path->nextPath, place++) {
        if (AtEnd(&words) || record->words[words.next] != place) {
            PathDeselect(hdc, path, view, 1);
            continue;
        }
        words.next++;
        SelectBySnapshot(hdc, view, path, &words);
        path->prevSel = before;
        path->nextSel = nullptr;
        if (before)
            before->nextSel = path;
        else
            group->selectedPath = path;
        before = path;
    }
}

} // namespace

URRECORD *URSelectionSnapshot(const PATHTBL *table)
{
    uint32_t count = 0;
    ForEachWord(table, [&](uint32_t) { count++; });
    URRECORD *record = URNewRecord(UR_SELECTION, count);
    if (!record) return nullptr;
    uintptr_t *out = record->words;
    ForEachWord(table, [&](uint32_t word) { *out++ = word; });
    return record;
}

int URSelectionApply(const COORDSTRUCT *view, PATHTBL *table, URRECORD *record, ZRHDC hdc)
{
    PATHGROUP *group = TableCurrentGroup(table);
    if (!group || !group->activePath) return 1; /* nothing to select: the step counts, the record stays */
    if (!URSelectionSnapshot(table)) return 0;
    undoNow.position--; /* the present state is no step of its own */
    if (record->count == 0) {
        ZrPathDeSelectAll(hdc, group->selectedPath, view, 1);
        group->selectedPath = nullptr;
    } else {
        SelectSnapshot(hdc, view, group, record);
    }
    URReplaceByNewest(record);
    return 1;
}

} // namespace zr32
