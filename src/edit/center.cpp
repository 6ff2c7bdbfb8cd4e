/* center.cpp - aligns the selected objects on the centre of the selection, across or down.
 *
 * An object is a join chain, moved as a whole from its head; centres are those of margin boxes in whole pixels.
 */
#include "edit/move.h"
#include <zr32path/display.h>
#include <zr32path/edit.h>

namespace zr32 {

namespace {

constexpr int32_t axisVertical = 18018;

struct CENTRE {
    int32_t x;
    int32_t y;
};

CENTRE CentreOf(const RECT &box)
{
    return {box.left + (box.right - box.left) / 2, box.top + (box.bottom - box.top) / 2};
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathCenter(intptr_t, int32_t axis, PATHTBL *table, const COORDSTRUCT *view, struct tagRECT *dirty)
{
    PATHREC *selected = nullptr;
    ZrPathFind(table, nullptr, nullptr, &selected, nullptr);
    if (!selected || !PathIsSelected(selected)) return 0;
    PATHREC *head = ChainFirst(selectedChain, selected);

    RECT hidden = {0, 0, 0, 0};
    RECT drawn = {0, 0, 0, 0};
    ZrPathHideSelected(view, head, &hidden);

    RECT box;
    ZrPathGetSelectedRect(head, fixedOne, &box);
    const CENTRE centre = CentreOf(box);
    for (PATHREC *record = head; record; record = record->nextSel) {
        if (record->prevJoin) continue; /* moves with the head of its join chain */
        ZrPathGetMiniMaxRect(record, fixedOne, &box);
        const CENTRE own = CentreOf(box);
        if (axis == axisVertical)
            PathMoveChain(record, 0, DoubleToFix(centre.y - own.y), MOVE_JOINED);
        else
            PathMoveChain(record, DoubleToFix(centre.x - own.x), 0, MOVE_JOINED);
    }

    ZrPathDrawSelected(view, head, &drawn);
    if (dirty) UnionRect(dirty, &hidden, &drawn);
    return 1;
}

} // extern "C"

} // namespace zr32
