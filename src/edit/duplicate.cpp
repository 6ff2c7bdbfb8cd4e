/* duplicate.cpp - copies records block by block, within their table chain or as a chain of the caller's.
 *
 * Every copy is known by its source: the pairs are sorted by the source's address, and a link of the source becomes
 * the same link between copies where both ends were copied. So join chains that lie in any order or are selected in
 * part come out consistent.
 */
#include "display/display.h"
#include "edit/select.h"
#include <zr32path/edit.h>

#include <algorithm>
#include <cstring>
#include <functional>

namespace zr32 {

namespace {

struct COPYPAIR {
    const PATHREC *source;
    PATHREC *copy;
};

/* Copies in the order of their sources, and the same pairs by address. */
struct COPYSET {
    COPYPAIR *pairs;
    COPYPAIR *byAddress;
    size_t count;
};

/* A copy without links; null without memory. */
PATHREC *CopyRecord(const PATHREC *source)
{
    const size_t size = PathHeapSize(PathHeap(), heapNoSerialize, source);
    PATHREC *copy = static_cast<PATHREC *>(PathHeapAlloc(PathHeap(), heapZero, size));
    if (!copy) return nullptr;
    memcpy(copy, source, size);
    copy->prevPath = copy->nextPath = nullptr;
    copy->prevJoin = copy->nextJoin = nullptr;
    copy->prevSel = copy->nextSel = nullptr;
    return copy;
}

int SourceBefore(const COPYPAIR &a, const COPYPAIR &b)
{
    return std::less<const PATHREC *>()(a.source, b.source);
}

size_t ChainLength(const PATHREC *head, CHAINLINK next)
{
    size_t count = 0;
    for (const PATHREC *record = head; record; record = record->*next) count++;
    return count;
}

/* Copies head and what lies behind it. 1; 0 without memory: no copy is then left, and *last tells whether all but the
 * last had been made. */
int CopySetMake(const PATHREC *head, CHAINLINK next, COPYSET *set, int *last)
{
    *last = 0;
    const size_t count = ChainLength(head, next);
    set->count = 0;
    set->pairs = static_cast<COPYPAIR *>(BufAlloc(0, 2 * count * sizeof(COPYPAIR)));
    if (!set->pairs) return 0;
    set->byAddress = set->pairs + count;

    for (const PATHREC *source = head; source; source = source->*next) {
        PATHREC *copy = CopyRecord(source);
        if (!copy) {
            *last = set->count + 1 == count;
            while (set->count > 0) RecordFree(set->pairs[--set->count].copy);
            BufFree(set->pairs);
            return 0;
        }
        set->pairs[set->count++] = {source, copy};
    }
    std::copy(set->pairs, set->pairs + count, set->byAddress);
    std::sort(set->byAddress, set->byAddress + count, SourceBefore);
    return 1;
}

/* The record's copy; null for null and for what was not copied. */
PATHREC *CopyOf(const COPYSET *set, const PATHREC *source)
{
    const COPYPAIR wanted = {source, nullptr};
    const COPYPAIR *first = set->byAddress;
    const COPYPAIR *end = first + set->count;
    const COPYPAIR *found = std::lower_bound(first, end, wanted, SourceBefore);
    return found != end && found->source == source ? found->copy : nullptr;
}

/* Gives the copies the sources' links on a chain. */
void LinkLikeSources(const COPYSET *set, const CHAIN &chain)
{
    for (size_t i = 0; i < set->count; i++) {
        PATHREC *target = CopyOf(set, set->pairs[i].source->*chain.next);
        if (target) ChainLink(chain, set->pairs[i].copy, target);
    }
}

/* Links the copies in their order. */
void LinkInOrder(const COPYSET *set, const CHAIN &chain)
{
    for (size_t i = 0; i + 1 < set->count; i++) ChainLink(chain, set->pairs[i].copy, set->pairs[i + 1].copy);
}

void DrawRecords(const COORDSTRUCT *view, const PATHREC *head, CHAINLINK next, RECT *dirty)
{
    DISPLAYPLANE plane;
    RECT drawn = {0, 0, 0, 0};
    if (DisplayPlaneOf(view, &plane)) {
        for (const PATHREC *record = head; record; record = record->*next)
            PathOutlineToDB(record, &plane, OUTLINE_DRAW, &drawn);
        DirtyToWindowClipped(view, &drawn);
    }
    if (dirty) *dirty = drawn;
}

constexpr int32_t duplicateShift = 15; /* view pixels, right and down */

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathDuplicate(ZRHDC hdc, PATHTBL *table, const COORDSTRUCT *view, struct tagRECT *dirty)
{
    PATHREC *active = nullptr;
    PATHREC *selected = nullptr;
    ZrPathFind(table, nullptr, &active, &selected, nullptr);
    if (!active || !selected || !PathIsSelected(selected)) return 0;
    PATHREC *head = ChainFirst(selectedChain, selected);

    COPYSET set;
    int last;
    if (!CopySetMake(head, selectedChain.next, &set, &last)) return 0;
    LinkInOrder(&set, tableChain);
    LinkInOrder(&set, selectedChain);
    LinkLikeSources(&set, joinChain);
    PATHREC *copies = set.pairs[0].copy;
    BufFree(set.pairs);

    ChainLink(tableChain, PathChainLast(active), copies);
    for (PATHREC *record = head; record;) {
        PATHREC *next = record->nextSel;
        PathDeselect(hdc, record, view, 1);
        record = next;
    }
    ZrPathMovePaths(copies, view, duplicateShift, duplicateShift);
    ZrPathAssignSelectedPath(table, copies);
    DrawRecords(view, copies, selectedChain.next, dirty);
    return 1;
}

ZRPATHAPI int32_t ZrPathDuplicatePtr(const PATHREC *path, PATHREC **copy)
{
    if (!path || !copy) return 0;
    COPYSET set;
    int last;
    if (!CopySetMake(ChainFirst(tableChain, path), tableChain.next, &set, &last)) {
        *copy = nullptr;
        return last; /* a chain that failed at its last record has been attempted as a whole */
    }
    LinkInOrder(&set, tableChain);
    LinkLikeSources(&set, joinChain);
    LinkLikeSources(&set, selectedChain);
    *copy = set.pairs[0].copy;
    BufFree(set.pairs);
    return 1;
}

} // extern "C"

} // namespace zr32
