/* handles.cpp - the handle points around the marked anchors of one record, on the caller's window.
 *
 * The same walk goes both ways: it fills the caller's list with positions, or takes the list back and moves the nodes
 * whose position is no longer the one that the walk works out for them. So a handle that was not touched is not rounded
 * into its node.
 */
#include "display/display.h"
#include "store/nodes.h"

#include <zr32path/edit.h>

namespace zr32 {

namespace {

constexpr int32_t listPlaces = 12; /* the last place only ever holds the end mark */
constexpr int32_t endMark = -1;
constexpr int32_t groupBreak = -3;

struct HANDLEWALK {
    PATHREC *path;
    POINT *list;
    int32_t used;
    int toRecord;
    PLACEMENT place;
};

void PutPair(POINT *pair, int32_t x, int32_t y)
{
    pair->x = x;
    pair->y = y;
}

/* One way: the entry takes the node's place. The other: the node follows an entry that differs. */
void PathHandleMove(const HANDLEWALK *walk, POINT *entry, PATHNODE *node)
{
    const POINTDB placed = PlaceNode(walk->place, node);
    const int32_t x = TruncInt(placed.x);
    const int32_t y = TruncInt(placed.y);
    if (!walk->toRecord) {
        PutPair(entry, x, y);
    } else if (entry->x != x || entry->y != y) {
        node->x = DbToFix((walk->place.origin.x + entry->x) / walk->place.scale - 0.5);
        node->y = DbToFix((walk->place.origin.y + entry->y) / walk->place.scale - 0.5);
    }
}

/* Takes a place for node i, if the record has one. */
void HandleNode(HANDLEWALK *walk, uint32_t i)
{
    if (i >= walk->path->nodeCount || walk->used == listPlaces) return;
    if (walk->used < listPlaces - 1) PathHandleMove(walk, walk->list + walk->used, &walk->path->nodes[i]);
    walk->used++;
}

void HandleNodes(HANDLEWALK *walk, uint32_t first, uint32_t count)
{
    for (uint32_t i = 0; i < count; i++) HandleNode(walk, first + i);
}

void HandleBreak(HANDLEWALK *walk)
{
    if (walk->used >= listPlaces - 1) return;
    if (!walk->toRecord) PutPair(walk->list + walk->used, groupBreak, groupBreak);
    walk->used++;
}

/* The group around the anchor of segment i, with its neighbours on both sides; behind the record's end they are those
 * behind node 0. */
void HandleGroup(HANDLEWALK *walk, const SEGMENT *segment)
{
    PATHREC *path = walk->path;
    const uint32_t i = segment->index;
    const int selected = NodeSelected(segment->node);
    const uint32_t behind = segment->next == path->nodeCount ? 1 : segment->next;
    if (segment->kind == PATHNODE_CURVE) {
        const int cornerEnd = (segment->node[2].type & PATHNODE_KINDSELMASK) == (PATHNODE_CURVE | PATHNODE_SELECTED);
        if (!selected && !cornerEnd) return;
        HandleNodes(walk, i - 1, 4);
        if (!selected)
            HandleNode(walk, behind);
        else if (path->nodeCount != 4) /* a lone curve has no other one to follow it */
            HandleNodes(walk, behind, 3);
    } else {
        if (!selected) return;
        HandleNode(walk, i == 0 ? path->nodeCount - 2 : i - 1);
        HandleNode(walk, i);
        if (behind < path->nodeCount && NodeKind(&path->nodes[behind]) == PATHNODE_CURVE) {
            HandleNodes(walk, behind, 3);
            HandleBreak(walk);
        } else {
            HandleNode(walk, behind);
        }
    }
    if (!walk->toRecord || segment->next != path->nodeCount) return;
    /* The start of a closed record follows its last anchor. */
    const PATHNODE *last = &path->nodes[path->nodeCount - 1];
    path->nodes[0].x = last->x;
    path->nodes[0].y = last->y;
}

/* An envelope's frame has only few nodes: the marked ones go into the list without their neighbours. */
void HandleEnvelopeNode(HANDLEWALK *walk, const SEGMENT *segment)
{
    if (NodeSelected(segment->node)) HandleNodes(walk, segment->index, segment->next - segment->index);
}

void WalkHandles(HANDLEWALK *walk)
{
    const int envelope = walk->path->flags == PATHREC_ENVELOPE;
    SEGWALK nodes;
    SEGMENT segment;
    SegWalkStart(walk->path, placeImage, &nodes);
    while ((envelope || walk->used < listPlaces - 1) && SegWalkNext(&nodes, &segment)) {
        if (KindIsShape(segment.kind)) continue; /* they have no handles */
        if (envelope)
            HandleEnvelopeNode(walk, &segment);
        else
            HandleGroup(walk, &segment);
    }
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathSelectedToView(const COORDSTRUCT *view, PATHREC *path, struct tagPOINT *handles,
                                       int32_t direction)
{
    if (!handles) return 0;
    const int editable = path && PathInNodeEdit(path) && !path->prevSel && !path->nextSel;
    const int shown = view && view->displayBuffer;
    if (!editable && !shown) return 0;

    HANDLEWALK walk = {path, handles, 0, direction != 0, {}};
    if (editable && shown) {
        walk.place = PlaceOnWindow(view);
        if (walk.toRecord) path->primitive = 0;
        WalkHandles(&walk);
    }
    if (!walk.toRecord && walk.used < listPlaces) PutPair(handles + walk.used, endMark, endMark);
    PutPair(handles + listPlaces - 1, endMark, endMark);
    return walk.used;
}

} // extern "C"

} // namespace zr32
