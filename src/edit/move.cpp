/* move.cpp - moves, scales and places chains of records.
 *
 * Start, line and curve nodes follow; the nodes of shapes keep their values, so a shape stays where it is. Nothing is
 * drawn here: the caller hides before and draws after.
 */
#include "edit/move.h"

#include "store/nodes.h"
#include <zr32path/edit.h>

namespace zr32 {

namespace {

FIXED ScaleFixed(FIXED value, double factor)
{
    return DoubleToFix(FixToDouble(value) * factor);
}

/* Adds whole pixels to the record and what lies behind it on the table chain; fractions stay. */
void OffsetChain(PATHREC *path, int16_t dx, int16_t dy)
{
    for (PATHREC *record = path; record; record = record->nextPath)
        ForEachPoint(record, [dx, dy](PATHNODE *node) {
            node->x = FixAddWhole(node->x, dx);
            node->y = FixAddWhole(node->y, dy);
        });
}

int16_t Low16(int32_t value)
{
    return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(value) & 0xFFFFu));
}

} // namespace

void PathMoveChain(PATHREC *path, FIXED dx, FIXED dy, MOVECHAIN which)
{
    if (!path || (dx == 0 && dy == 0)) return;
    const int bySelection = which == MOVE_BY_SELECTION && PathIsSelected(path);
    const CHAINLINK next = bySelection ? selectedChain.next : joinChain.next;
    for (PATHREC *record = path; record; record = record->*next)
        ForEachPoint(record, [dx, dy](PATHNODE *node) {
            node->x = WrapAdd(node->x, dx);
            node->y = WrapAdd(node->y, dy);
        });
}

extern "C" {

ZRPATHAPI int32_t ZrPathMovePathsByPtfx(PATHREC *path, ZRFIXED dx, ZRFIXED dy)
{
    if (!path) return 0;
    PathMoveChain(path, dx, dy, MOVE_BY_SELECTION);
    return 1;
}

ZRPATHAPI int32_t ZrPathMovePaths(PATHREC *path, const COORDSTRUCT *view, int32_t dx, int32_t dy)
{
    if (!path || !view) return 0;
    const double zoom = view->zoom;
    const double x = zoom >= 1 ? dx / zoom : dx * -zoom;
    const double y = zoom >= 1 ? dy / zoom : dy * -zoom;
    return ZrPathMovePathsByPtfx(path, DoubleToFix(x), DoubleToFix(y));
}

ZRPATHAPI int32_t ZrPathSize(PATHREC *path, double sx, double sy)
{
    if (!path) return 0;
    if (sy == 0) sy = sx;
    if (sx == 1.0 && sy == 1.0) return 1;
    for (PATHREC *record = PathChainFirst(path); record; record = record->nextPath)
        ForEachPoint(record, [sx, sy](PATHNODE *node) {
            node->x = ScaleFixed(node->x, sx);
            node->y = ScaleFixed(node->y, sy);
        });
    return 1;
}

ZRPATHAPI int32_t ZrPathOffset(PATHREC *path, int32_t x, int32_t y)
{
    RECT box;
    if (!ZrPathGetMiniMaxRect(path, fixedOne, &box)) return 1;
    OffsetChain(path, Low16(WrapSub(x, box.left)), Low16(WrapSub(y, box.top)));
    return 1;
}

ZRPATHAPI int32_t ZrPathOffsetExact(PATHREC *path, int16_t dx, int16_t dy)
{
    OffsetChain(path, dx, dy);
    return 1;
}

} // extern "C"

} // namespace zr32
