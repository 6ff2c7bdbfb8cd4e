/* display.h - outlines over the image and node marks.
 *
 * The display buffer holds one byte a view pixel: how many outlines pass through it, modulo 256. Drawing adds 1 along
 * an outline's pixels and hiding subtracts 1 along the same ones; the paint functions XOR what is not 0 into a bitmap
 * of the caller's. Rectangles out are dirty rectangles in window coordinates, widened by 2 on each side; their address
 * may be null. A null view counts as one without a display buffer, which takes no outlines. The view decides what is
 * drawn; what its buffer has no room for is left out.
 */
#ifndef ZR32PATH_DISPLAY_H
#define ZR32PATH_DISPLAY_H

#include "store.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Rebuilds the whole buffer from the table chain that path belongs to, hidden records left out. 1, also without a
 * display buffer (*dirty then stays); 0 for a null path. */
ZRPATHAPI int32_t ZrPathDraw(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty);

/* Clears the whole buffer. *dirty becomes the view's rectangle moved to the origin or, with a path, the path's
 * ZrPathGetAllMiniMaxRect at zoom 1.0; both widened by 2. Always 1. */
ZRPATHAPI int32_t ZrPathHide(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty);

/* The three functions of the selected chain that path belongs to give 0 for a null or unselected path, else 1; without
 * a display buffer nothing happens and *dirty stays. Where only segments are asked for, a record that is stepped as a
 * whole becomes hidden (PATHREC_HIDDEN), so that ZrPathDraw leaves it out until ZrPathDrawSelected shows it again.
 *
 * Adds the outlines. */
ZRPATHAPI int32_t ZrPathDrawSelected(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty);

/* Subtracts the outlines; of a record in node editing only the segments at its selected nodes. */
ZRPATHAPI int32_t ZrPathHideSelected(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty);

/* Adds the outlines; of a record in node editing only the segments at its selected nodes. */
ZRPATHAPI int32_t ZrPathDrawSelectedSegments(const COORDSTRUCT *view, PATHREC *path, struct tagRECT *dirty);

/* Replaces the table's buffer by one of a new size, keeping what both sizes have. The caller renews its view. 1; 0
 * without memory, nothing is then changed. */
ZRPATHAPI int32_t ZrPathCropDB(PATHTBL *table, int32_t width, int32_t height);

/* Adds the offsets to the view's scroll and redraws path by ZrPathDraw. 1; also for two zero offsets or a null view,
 * where nothing happens. */
ZRPATHAPI int32_t ZrPathScrollDB(COORDSTRUCT *view, PATHREC *path, int16_t dx, int16_t dy);

/* The four paint functions invert two bits of every channel (XOR 0xC0) of each bitmap pixel whose buffer byte is not
 * 0; painting twice restores the bitmap. The rectangle is in buffer coordinates. 1; 0 for a null table or buffer.
 *
 * ZrPathPaint and ZrPathPaint1 take inclusive right and bottom and a bottom-up bitmap of 3 or 1 bytes a pixel whose
 * rows are padded to 4 bytes; what lies outside the buffer is passed over. */
ZRPATHAPI int32_t ZrPathPaint(int32_t left, int32_t top, int32_t right, int32_t bottom, const PATHTBL *table,
                              uint8_t *bitmap);
ZRPATHAPI int32_t ZrPathPaint1(int32_t left, int32_t top, int32_t right, int32_t bottom, const PATHTBL *table,
                               uint8_t *bitmap);

/* The Mem forms take exclusive right and bottom and a top-down bitmap of 3 or 1 bytes a pixel without padding, whose
 * layout is that of the whole rectangle. */
ZRPATHAPI int32_t ZrPathPaintMem(int32_t left, int32_t top, int32_t right, int32_t bottom, const PATHTBL *table,
                                 uint8_t *bitmap);
ZRPATHAPI int32_t ZrPathPaintMem1(int32_t left, int32_t top, int32_t right, int32_t bottom, const PATHTBL *table,
                                  uint8_t *bitmap);

/* Toggles the node marks and control handles of one record on a device context by XOR: a second call with the same
 * state removes them. Always 1. */
ZRPATHAPI int32_t ZrPathDrawNodes(ZRHDC hdc, const PATHREC *path, const COORDSTRUCT *view);

/* ZrPathDrawNodes for the selected chain of the current group, clipped to the rectangle; the clipping region stays in
 * the device context. 1; 0 for a null or dead table or an empty selection. */
ZRPATHAPI int32_t ZrPathTblRepaintNodes(ZRHDC hdc, const PATHTBL *table, const COORDSTRUCT *view, int32_t left,
                                        int32_t top, int32_t right, int32_t bottom);

#ifdef __cplusplus
}
#endif

#endif
