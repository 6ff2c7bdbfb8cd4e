/* overlay.cpp - the outline display buffer: rebuilding it, taking the selection out and putting it back, cropping and
 * scrolling, and the dirty rectangles that go to the caller.
 *
 * A byte of the plane counts the outlines that pass through its pixel, so outlines come and go in any order without
 * their neighbours being redrawn, as long as each is hidden with the view and the nodes that it was drawn with. The
 * block may be of another size than the view: no access goes beyond what the allocator tells.
 */
#include "display/display.h"

#include <algorithm>
#include <cstring>

namespace zr32 {

RECT ViewRect(const COORDSTRUCT *view)
{
    if (!view) return {0, 0, 0, 0};
    return {0, 0, WrapSub(view->right, view->left), WrapSub(view->bottom, view->top)};
}

PLACEMENT PlaceOnWindow(const COORDSTRUCT *view)
{
    return PlaceOnView(ViewScale(view), static_cast<double>(view->scrollX) - view->left,
                       static_cast<double>(view->scrollY) - view->top);
}

int DisplayPlaneOf(const COORDSTRUCT *view, DISPLAYPLANE *plane)
{
    if (!view || !view->displayBuffer) return 0;
    plane->pixels = view->displayBuffer;
    plane->size = static_cast<int64_t>(BufMemSize(view->displayBuffer));
    plane->clip = ViewRect(view);
    plane->stride = plane->clip.right;
    plane->height = plane->clip.bottom;
    plane->place = PlaceOnView(ViewScale(view), view->scrollX, view->scrollY);
    return 1;
}

void DbClear(const DISPLAYPLANE *plane, const RECT *rect)
{
    if (rect->left == 0 && rect->top == 0 && rect->right == plane->stride && rect->bottom == plane->height) {
        memset(plane->pixels, 0, static_cast<size_t>(plane->size));
        return;
    }
    const int64_t left = std::max<int64_t>(rect->left, 0);
    const int64_t right = std::min<int64_t>(rect->right, int64_t{plane->stride} - 1);
    const int64_t bottom = std::min<int64_t>(rect->bottom, int64_t{plane->height} - 1);
    for (int64_t y = std::max<int64_t>(rect->top, 0); y <= bottom; y++) {
        const int64_t first = y * plane->stride + left;
        const int64_t end = std::min(y * plane->stride + right + 1, plane->size);
        if (end <= first) break; /* no columns, or the block's end */
        memset(plane->pixels + first, 0, static_cast<size_t>(end - first));
    }
}

void DirtyToWindow(const COORDSTRUCT *view, RECT *dirty)
{
    OffsetRect(dirty, view->left, view->top);
    InflateRect(dirty, 2, 2);
}

void DirtyToWindowClipped(const COORDSTRUCT *view, RECT *dirty)
{
    if (IsRectEmpty(dirty)) {
        SetRectEmpty(dirty);
        return;
    }
    const RECT whole = ViewRect(view);
    InflateRect(dirty, 2, 2);
    IntersectRect(dirty, dirty, &whole);
    OffsetRect(dirty, view->left, view->top);
}

int PathDrawSelection(const COORDSTRUCT *view, PATHREC *path, OUTLINEMODE mode, RECT *dirty)
{
    if (!path || !PathIsSelected(path)) return 0;
    DISPLAYPLANE plane;
    if (!DisplayPlaneOf(view, &plane)) return 1;
    RECT stepped = {0, 0, 0, 0};
    for (PATHREC *record = ChainFirst(selectedChain, path); record; record = record->nextSel) {
        /* What was taken out of the plane as a whole must not come back with the next ZrPathDraw. */
        if (mode != OUTLINE_DRAW && record->flags != PATHREC_NODEEDIT)
            record->flags |= PATHREC_HIDDEN;
        else
            record->flags &= ~PATHREC_HIDDEN;
        PathOutlineToDB(record, &plane, mode, &stepped);
    }
    DirtyToWindow(view, &stepped);
    if (dirty) *dirty = stepped;
    return 1;
}

extern "C" {

ZRPATHAPI int32_t ZrPathDraw(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty)
{
    if (!path) return 0;
    DISPLAYPLANE plane;
    if (!DisplayPlaneOf(view, &plane)) return 1;
    DbClear(&plane, &plane.clip);
    RECT stepped = {0, 0, 0, 0};
    for (const PATHREC *record = PathChainFirst(path); record; record = record->nextPath)
        if (!(record->flags & PATHREC_HIDDEN)) PathOutlineToDB(record, &plane, OUTLINE_DRAW, &stepped);
    DirtyToWindow(view, &stepped);
    if (dirty) *dirty = stepped;
    return 1;
}

ZRPATHAPI int32_t ZrPathHide(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty)
{
    DISPLAYPLANE plane;
    if (DisplayPlaneOf(view, &plane)) DbClear(&plane, &plane.clip);
    if (!dirty) return 1;
    *dirty = ViewRect(view);
    ZrPathGetAllMiniMaxRect(path, fixedOne, dirty); /* leaves the view's rectangle for a null path */
    InflateRect(dirty, 2, 2);
    return 1;
}

ZRPATHAPI int32_t ZrPathDrawSelected(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty)
{
    return PathDrawSelection(view, path, OUTLINE_DRAW, dirty);
}

ZRPATHAPI int32_t ZrPathHideSelected(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty)
{
    return PathDrawSelection(view, path, OUTLINE_HIDESEGMENTS, dirty);
}

ZRPATHAPI int32_t ZrPathDrawSelectedSegments(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty)
{
    return PathDrawSelection(view, path, OUTLINE_DRAWSEGMENTS, dirty);
}

ZRPATHAPI int32_t ZrPathCropDB(PATHTBL *table, int32_t width, int32_t height)
{
    if (!table) return 0;
    uint8_t *cropped = DisplayBufferAlloc(width, height);
    if (!cropped) return 0;
    const int64_t oldSize = static_cast<int64_t>(BufMemSize(table->lpDB));
    const int64_t columns = std::min(width, table->dbWidth);
    const int64_t rows = std::min(height, table->dbHeight);
    for (int64_t y = 0; y < rows && columns > 0; y++) {
        const int64_t from = y * table->dbWidth;
        const int64_t count = std::min(columns, oldSize - from);
        if (count <= 0) break;
        memcpy(cropped + y * width, table->lpDB + from, static_cast<size_t>(count));
    }
    BufFree(table->lpDB);
    table->lpDB = cropped;
    table->dbWidth = width;
    table->dbHeight = height;
    return 1;
}

ZRPATHAPI int32_t ZrPathScrollDB(COORDSTRUCT *view, PATHREC *path, int16_t dx, int16_t dy)
{
    if (!view || (dx == 0 && dy == 0)) return 1;
    view->scrollX = WrapAdd(view->scrollX, dx);
    view->scrollY = WrapAdd(view->scrollY, dy);
    ZrPathDraw(view, path, nullptr);
    return 1;
}

} // extern "C"

} // namespace zr32
