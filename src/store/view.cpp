/* view.cpp - the view record and the way between window and image coordinates.
 *
 * The centre of image pixel (i, j) is at (i, j): window to image adds the scroll, takes the zoom away and subtracts
 * half a pixel.
 */
#include "store/store.h"

namespace zr32 {

namespace {

void ViewSet(COORDSTRUCT *view, int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t scrollX,
             int32_t scrollY, int32_t zoom)
{
    view->left = left;
    view->top = top;
    view->right = right;
    view->bottom = bottom;
    view->scrollX = scrollX;
    view->scrollY = scrollY;
    view->zoom = zoom;
}

/* Makes the record when there is none; null without memory. */
COORDSTRUCT *ViewHave(COORDSTRUCT **view)
{
    if (!*view) *view = static_cast<COORDSTRUCT *>(BufAlloc(bufZero, sizeof(COORDSTRUCT)));
    return *view;
}

/* Gives the view the table's buffer, which is set up for it. */
void ViewTie(PATHTBL *table, COORDSTRUCT *view)
{
    view->displayBuffer = table->lpDB;
    TableNoteView(table, view);
}

double FromView(int32_t v, int32_t scroll, int32_t zoom)
{
    const double scrolled = static_cast<double>(v) + scroll;
    return (zoom >= 1 ? scrolled / zoom : scrolled * -static_cast<double>(zoom)) - 0.5;
}

} // namespace

uint8_t *DisplayBufferAlloc(int32_t width, int32_t height)
{
    uint64_t size = 0;
    if (width > 0 && height > 0) size = static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
    if (size > INT32_MAX) return nullptr;
    return static_cast<uint8_t *>(BufAlloc(bufZero, static_cast<size_t>(size)));
}

void TableNoteView(PATHTBL *table, const COORDSTRUCT *view)
{
    table->dbWidth = WrapSub(view->right, view->left);
    table->dbHeight = WrapSub(view->bottom, view->top);
    table->dbScrollX = view->scrollX;
    table->dbScrollY = view->scrollY;
    table->dbZoom = view->zoom;
}

tagPOINTDB PathViewToImage(const COORDSTRUCT *view, int32_t x, int32_t y)
{
    if (!view) return {0, 0};
    return ZrPathPtWndToImage(WrapSub(x, view->left), WrapSub(y, view->top), view);
}

extern "C" {

ZRPATHAPI int32_t ZrPathCoordStruct(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t scrollX,
                                    int32_t scrollY, int32_t zoom, PATHTBL *table, COORDSTRUCT **view)
{
    if (!view) return 1;
    if (!*view) ZrPathInit();
    if (!ViewHave(view)) return 1;
    ViewSet(*view, left, top, right, bottom, scrollX, scrollY, zoom);
    if (table) {
        if (!table->lpDB) table->lpDB = DisplayBufferAlloc(WrapSub(right, left), WrapSub(bottom, top));
        ViewTie(table, *view);
    }
    return 1;
}

ZRPATHAPI int32_t ZrPathNewCoordStruct(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t scrollX,
                                       int32_t scrollY, int32_t zoom, int32_t tag, PATHTBL *table, COORDSTRUCT **view)
{
    if (!table || !view || !ViewHave(view)) return 0;
    ViewSet(*view, left, top, right, bottom, scrollX, scrollY, zoom);
    BufFree(table->lpDB);
    table->lpDB = DisplayBufferAlloc(WrapSub(right, left), WrapSub(bottom, top));
    ViewTie(table, *view);
    if (tag != 0) table->dbTag = tag;
    return 1;
}

ZRPATHAPI int32_t ZrPathDeleteCoordStruct(COORDSTRUCT *view)
{
    return BufFree(view);
}

ZRPATHAPI int32_t ZrPathTblIsValid(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t scrollX,
                                   int32_t scrollY, int32_t zoom, int32_t tag, const PATHTBL *table)
{
    return table && WrapSub(right, table->dbWidth) == left && WrapSub(bottom, top) == table->dbHeight &&
           scrollX == table->dbScrollX && scrollY == table->dbScrollY && zoom == table->dbZoom && tag == table->dbTag;
}

ZRPATHAPI tagPOINTDB ZrPathPtWndToImage(int32_t x, int32_t y, const COORDSTRUCT *view)
{
    if (!view) return {0, 0};
    return {FromView(x, view->scrollX, view->zoom), FromView(y, view->scrollY, view->zoom)};
}

ZRPATHAPI ZRRECTDB ZrPathRectWndToImage(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                        const COORDSTRUCT *view)
{
    return {ZrPathPtWndToImage(left, top, view), ZrPathPtWndToImage(right, bottom, view)};
}

} // extern "C"

} // namespace zr32
