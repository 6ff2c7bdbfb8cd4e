/* select.cpp - selecting and deselecting records, see select.h.
 *
 * Marks on the device context are toggled while flags and node bits still stand as they did when the marks were
 * drawn, so that XOR takes off what it put on.
 */
#include "edit/select.h"

#include "store/nodes.h"
#include <zr32path/display.h>

namespace zr32 {

namespace {

void SelectOne(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view)
{
    path->flags = PATHREC_SELECTED;
    ZrPathDrawNodes(hdc, path, view);
}

} // namespace

void PathDeselect(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view, int draw)
{
    if (!PathIsSelected(path)) return;
    if (draw) ZrPathDrawNodes(hdc, path, view);
    if (PathInNodeEdit(path)) ZrPathDeselectPts(path);
    path->flags = 0;
    path->prevSel = nullptr;
    path->nextSel = nullptr;
}

void PathSelectJoined(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view)
{
    if (!path) return;
    for (PATHREC *record = path; record; record = record->nextJoin) SelectOne(hdc, record, view);
    for (PATHREC *record = path->prevJoin; record; record = record->prevJoin) SelectOne(hdc, record, view);
}

void PathSelectJoinedFromHead(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view)
{
    PathSelectJoined(hdc, ChainFirst(joinChain, path), view);
}

void PathRebuildSelected(PATHREC *path)
{
    PATHREC *last = nullptr;
    for (PATHREC *record = PathChainFirst(path); record; record = record->nextPath) {
        record->prevSel = nullptr;
        record->nextSel = nullptr;
        if (!PathIsSelected(record)) continue;
        if (last) ChainLink(selectedChain, last, record);
        last = record;
    }
}

extern "C" {

ZRPATHAPI void ZrPathDeSelectAll(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view, int32_t draw)
{
    if (!path) return;
    for (PATHREC *record = path; record; record = record->nextPath) PathDeselect(hdc, record, view, draw);
    for (PATHREC *record = path->prevPath; record; record = record->prevPath) PathDeselect(hdc, record, view, draw);
}

ZRPATHAPI int32_t ZrPathDeselectPts(PATHREC *path)
{
    if (!path || !PathInNodeEdit(path)) return 0;
    path->flags = PATHREC_SELECTED;
    ForEachPoint(path, [](PATHNODE *node) { node->type &= static_cast<uint16_t>(~PATHNODE_SELECTED); });
    return 1;
}

ZRPATHAPI int32_t ZrPathAllPathSelected(PATHREC *path)
{
    if (!path) return 0;
    PATHREC *record = PathChainFirst(path);
    for (record->prevSel = nullptr; record; record = record->nextPath) {
        record->flags = PATHREC_SELECTED;
        record->nextSel = nullptr;
        if (record->nextPath) ChainLink(selectedChain, record, record->nextPath);
    }
    return 1;
}

} // extern "C"

} // namespace zr32
