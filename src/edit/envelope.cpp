/* envelope.cpp - the outline record of an envelope: a frame kept as a path, so that it draws and is picked like one.
 *
 * It stands in the table chain behind the last record of the join chain that it bends, whichever record stands there,
 * and flags PATHREC_ENVELOPE tell it apart. Its nodes run around the frame and every corner is marked, so that it can
 * be dragged in node editing; 5 nodes are a bilinear frame, 9 a bicubic one, and fewer than 8 mean bilinear
 * everywhere. A frame keeps its kind for life: a bilinear one's block has no room for the nodes of a bicubic one.
 */
#include "store/store.h"
#include <zr32path/edit.h>

namespace zr32 {

namespace {

/* One node of a frame's outline: its code, and which of the frame's points it is. */
struct RINGNODE {
    uint16_t type;
    uint8_t point;
};

constexpr uint16_t markedStart = PATHNODE_START | PATHNODE_SELECTED;
constexpr uint16_t markedLine = PATHNODE_LINE | PATHNODE_SELECTED;
constexpr uint16_t markedCurve = PATHNODE_CURVE | PATHNODE_SELECTED;
constexpr uint16_t closingLine = PATHNODE_LINE | PATHNODE_CLOSING;

constexpr RINGNODE bilinearRing[] = {
    {markedStart, 0}, {markedLine, 1}, {markedLine, 3}, {markedLine, 2}, {closingLine, 0},
};
constexpr RINGNODE bicubicRing[] = {
    {markedStart, 0}, {markedCurve, 1},    {PATHNODE_CURVE, 2}, {PATHNODE_CURVE, 3}, {markedLine, 7},
    {markedCurve, 6}, {PATHNODE_CURVE, 5}, {PATHNODE_CURVE, 4}, {closingLine, 0},
};
constexpr uint32_t bilinearNodes = sizeof bilinearRing / sizeof *bilinearRing;
constexpr uint32_t bicubicNodes = sizeof bicubicRing / sizeof *bicubicRing;

/* The record behind the one given, made when there is none; null without memory or room. */
PATHREC *FrameBehind(PATHREC *last, uint32_t nodes)
{
    PATHREC *frame = last->nextPath;
    if (frame) return RecordRoom(frame) >= nodes ? frame : nullptr;
    frame = RecordAlloc(nodes);
    if (frame) ChainLink(tableChain, last, frame);
    return frame;
}

void FrameWrite(PATHREC *frame, const RINGNODE *ring, uint32_t nodes, const POINTFX *points)
{
    frame->flags = PATHREC_ENVELOPE;
    frame->nodeCount = nodes;
    for (uint32_t i = 0; i < nodes; i++)
        frame->nodes[i] = {ring[i].type, points[ring[i].point].x, points[ring[i].point].y};
}

/* The ring without its closing node names every point once. */
int32_t FrameRead(const PATHREC *frame, const RINGNODE *ring, uint32_t nodes, POINTFX *points)
{
    if (!frame || !points || !PathIsSelected(frame) || frame->nodeCount < nodes - 1) return 0;
    for (uint32_t i = 0; i < nodes - 1; i++) points[ring[i].point] = {frame->nodes[i].x, frame->nodes[i].y};
    return 1;
}

/* Deselects without a trace: the selected chain closes over the record. */
void LeaveSelection(PATHREC *path)
{
    path->flags = 0;
    if (path->prevSel) path->prevSel->nextSel = path->nextSel;
    if (path->nextSel) path->nextSel->prevSel = path->prevSel;
    path->prevSel = nullptr;
    path->nextSel = nullptr;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathAddBiLinearEnvelope(PATHREC *path, const ZRPOINTFX *points)
{
    if (!path || !points) return 0;
    PATHREC *frame = FrameBehind(ChainLast(joinChain, path), bilinearNodes);
    if (!frame) return 0;
    FrameWrite(frame, bilinearRing, bilinearNodes, points);
    return 1;
}

ZRPATHAPI int32_t ZrPathAddBiBezierEnvelope(PATHREC *path, const ZRPOINTFX *points)
{
    if (!path || !points) return 0;
    PATHREC *head = PathChainFirst(path);
    PATHREC *frame = FrameBehind(ChainLast(joinChain, head), bicubicNodes);
    if (!frame) return 0;
    /* The paths under a bicubic frame are not selected; under a bilinear one they stay as they are. */
    for (PATHREC *record = head; record; record = record->nextJoin) LeaveSelection(record);
    FrameWrite(frame, bicubicRing, bicubicNodes, points);
    return 1;
}

ZRPATHAPI int32_t ZrPathGetBiLinearEnvelope(const PATHREC *path, ZRPOINTFX *points)
{
    return FrameRead(path, bilinearRing, bilinearNodes, points);
}

ZRPATHAPI int32_t ZrPathGetBiBezierEnvelope(const PATHREC *path, ZRPOINTFX *points)
{
    return FrameRead(path, bicubicRing, bicubicNodes, points);
}

ZRPATHAPI int32_t ZrPathGetEnvelopeType(const PATHREC *path)
{
    return path ? static_cast<int32_t>(path->nodeCount) : 0;
}

} // extern "C"

} // namespace zr32
