/* delete.cpp - deletes the marked nodes of a record in node editing, or the selected paths.
 *
 * Which of the two follows from the head of the selection alone: in node editing, not an envelope's outline, and with
 * more than 4 nodes, its marked nodes go; otherwise every selected path goes. The outlines are taken out of the
 * display buffer first. No memory is needed, so nothing fails part way.
 */
#include "display/display.h"
#include "edit/join.h"
#include <zr32path/edit.h>

#include <cstring>

namespace zr32 {

namespace {

constexpr uint32_t wholePathNodes = 4; /* a record of so many nodes or fewer is deleted whole */

void RemoveNodes(PATHREC *path, uint32_t index, uint32_t count)
{
    memmove(&path->nodes[index], &path->nodes[index + count], sizeof(PATHNODE) * (path->nodeCount - index - count));
    path->nodeCount -= count;
}

/* The anchor behind the start, noted before anything is removed. */
struct FIRSTANCHOR {
    FIXED x;
    FIXED y;
    uint32_t nodes; /* nodes of the first segment: 1, or 3 for a curve */
};

/* The mark on the last anchor stands for the start of a closed run. The first segment goes, its anchor becomes the
 * start, and the closing segment keeps its nodes and ends on that anchor as it was. An open record is closed by this,
 * and of several runs the first loses its anchor, deliberately. A record that does not begin with a start may have no
 * more nodes left than the first segment had: they stay. */
void RemoveClosingAnchor(PATHREC *path, const FIRSTANCHOR &first, uint32_t closingKind)
{
    if (path->nodeCount <= first.nodes) return;
    RemoveNodes(path, 0, first.nodes);
    path->nodes[0].type = PATHNODE_START;
    path->nodes[path->nodeCount - 1] = {static_cast<uint16_t>(closingKind | PATHNODE_CLOSING), first.x, first.y};
}

/* The walk moves on past the node that comes into the place of a removed one, so of two marked neighbours only one
 * goes. */
void DeleteMarkedNodes(PATHREC *path)
{
    const int startsWithLine = NodeKind(&path->nodes[1]) != PATHNODE_CURVE;
    const uint32_t anchor = startsWithLine ? 1 : 3;
    const FIRSTANCHOR first = {path->nodes[anchor].x, path->nodes[anchor].y, anchor};
    path->flags = PATHREC_SELECTED;
    path->primitive = 0;

    for (uint32_t i = 0; i < path->nodeCount;) {
        PATHNODE *node = &path->nodes[i];
        const uint32_t kind = NodeKind(node);
        const uint32_t step = NodeStep(kind);
        if (step == 0 || path->nodeCount - i < step) return;
        const int removable = kind == PATHNODE_LINE || kind == PATHNODE_CURVE;
        const int marked = (node->type & PATHNODE_SELECTED) || (node[step - 1].type & PATHNODE_SELECTED);
        if (removable && marked) {
            if (i + step < path->nodeCount) {
                RemoveNodes(path, i, step);
            } else {
                node->type &= static_cast<uint16_t>(~PATHNODE_SELECTED);
                RemoveClosingAnchor(path, first, kind);
            }
        }
        i += step;
    }
}

/* Divides the table chain: unselected records stay linked behind the new head, which is returned (null when none
 * stays), the selected ones become one selected chain, *doomed its head. Join chains close over what goes. */
PATHREC *PartSelected(PATHREC *head, PATHREC **doomed)
{
    PATHREC *kept = nullptr;
    PATHREC *lastKept = nullptr;
    PATHREC *lastDoomed = nullptr;
    *doomed = nullptr;
    for (PATHREC *record = head, *next; record; record = next) {
        next = record->nextPath;
        const int goes = PathIsSelected(record);
        PATHREC **first = goes ? doomed : &kept;
        PATHREC **last = goes ? &lastDoomed : &lastKept;
        if (goes) JoinLeave(record);
        record->prevPath = *last;
        record->nextPath = nullptr;
        record->prevSel = goes ? *last : nullptr;
        record->nextSel = nullptr;
        if (*last) {
            (*last)->nextPath = record;
            if (goes) (*last)->nextSel = record;
        } else {
            *first = record;
        }
        *last = record;
    }
    return kept;
}

void DeleteSelectedPaths(PATHTBL *table, PATHREC *active)
{
    PATHGROUP *group = TableCurrentGroup(table);
    PATHREC *doomed;
    group->selectedPath = nullptr;
    group->activePath = PartSelected(PathChainFirst(active), &doomed);
    ZrPathDeletePtr(doomed, 1);
}

void HideSelection(const COORDSTRUCT *view, const PATHREC *head, RECT *dirty)
{
    DISPLAYPLANE plane;
    *dirty = {0, 0, 0, 0};
    if (!DisplayPlaneOf(view, &plane)) return;
    for (const PATHREC *record = head; record; record = record->nextSel)
        PathOutlineToDB(record, &plane, OUTLINE_HIDE, dirty);
    DirtyToWindowClipped(view, dirty);
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathDelete(PATHTBL *table, COORDSTRUCT *view, struct tagRECT *dirty)
{
    PATHREC *active = nullptr;
    PATHREC *selected = nullptr;
    ZrPathFind(table, nullptr, &active, &selected, nullptr);
    if (!active || !selected || !PathIsSelected(selected)) return 0;
    PATHREC *head = ChainFirst(selectedChain, selected);

    RECT changed;
    HideSelection(view, head, &changed);
    if (PathInNodeEdit(head) && head->flags != PATHREC_ENVELOPE && head->nodeCount > wholePathNodes) {
        DeleteMarkedNodes(head);
        ZrPathDrawSelected(view, head, &changed);
    } else {
        DeleteSelectedPaths(table, active);
    }
    if (dirty) *dirty = changed;
    return 1;
}

ZRPATHAPI int32_t ZrPathDeleteLink(PATHTBL *table, COORDSTRUCT *view, struct tagRECT *dirty)
{
    PATHREC *selected = nullptr;
    ZrPathFind(table, nullptr, nullptr, &selected, nullptr);
    RECT box = {0, 0, 0, 0};
    ZrPathGetMiniMaxRect(selected, fixedOne, &box);

    uint8_t *buffer = view ? view->displayBuffer : nullptr;
    if (view) view->displayBuffer = nullptr;
    ZrPathDelete(table, view, nullptr);
    if (view) view->displayBuffer = buffer;
    if (dirty) *dirty = box;
    return 1;
}

} // extern "C"

} // namespace zr32
