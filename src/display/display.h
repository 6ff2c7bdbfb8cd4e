/* display.h - what the editing room uses of the outline display: the plane of pass counts, stepping a record into it,
 * and the dirty rectangle.
 *
 * A dirty rectangle lives in buffer coordinates while it grows, starts empty as (0, 0, 0, 0), and goes to the caller
 * in window coordinates.
 */
#ifndef ZR32_DISPLAY_H
#define ZR32_DISPLAY_H

#include "store/store.h"
#include <zr32path/display.h>

namespace zr32 {

/* What of a record is stepped, and with which sign. "Segments" means: of a record whose flags are exactly
 * PATHREC_NODEEDIT only the segments that touch a selected node; any other record whole. */
enum OUTLINEMODE {
    OUTLINE_DRAW = 0,         /* +1, the whole record */
    OUTLINE_HIDESEGMENTS = 1, /* -1 */
    OUTLINE_DRAWSEGMENTS = 3, /* +1 */
    OUTLINE_HIDE = 7,         /* -1, the whole record */
};

/* A view's display buffer, ready for stepping. */
struct DISPLAYPLANE {
    uint8_t *pixels;
    int64_t size; /* bytes of the block as its allocator tells them: no index at or beyond it is touched */
    int32_t stride;
    int32_t height;
    RECT clip; /* the view's rectangle moved to the origin */
    PLACEMENT place;
};

/* The view's rectangle moved to the origin. */
RECT ViewRect(const COORDSTRUCT *view);

/* 0 for a null view or one without a display buffer; *plane is then not set. */
int DisplayPlaneOf(const COORDSTRUCT *view, DISPLAYPLANE *plane);

/* Adds or subtracts 1 along the record's outline. *dirty grows by the rectangle of each stepped segment. Always 1. */
int PathOutlineToDB(const PATHREC *path, const DISPLAYPLANE *plane, OUTLINEMODE mode, RECT *dirty);

/* Zeroes a region. Exactly (0, 0, stride, height) is the whole block with its spare bytes; any other rectangle has
 * inclusive right and bottom. */
void DbClear(const DISPLAYPLANE *plane, const RECT *rect);

/* Steps the selected chain that path belongs to: the body of ZrPathDrawSelected, ZrPathHideSelected and
 * ZrPathDrawSelectedSegments. Sets the hidden bit of what is taken or drawn whole in the segment modes, so that
 * ZrPathDraw leaves it out, and clears it elsewhere. *dirty as DirtyToWindow gives it. 0 for a null or unselected
 * path, 1 otherwise; without a display buffer *dirty stays. */
int PathDrawSelection(const COORDSTRUCT *view, PATHREC *path, OUTLINEMODE mode, RECT *dirty);

/* A dirty rectangle in window coordinates, widened by 2 on each side, also when it is empty. */
void DirtyToWindow(const COORDSTRUCT *view, RECT *dirty);

/* The same for the edits that change records: one that is not empty is widened by 2, clipped to the view and then
 * moved; an empty one stays (0, 0, 0, 0). */
void DirtyToWindowClipped(const COORDSTRUCT *view, RECT *dirty);

/* Where the points of a view lie on the caller's window. */
PLACEMENT PlaceOnWindow(const COORDSTRUCT *view);

/* 1 when the record's last anchor is selected, which in a closed record is where its first segment begins: the last
 * node carries the bit, or the first node of the curve that it ends. The record has a node. */
int PathEndSelected(const PATHREC *path);

} // namespace zr32

#endif
