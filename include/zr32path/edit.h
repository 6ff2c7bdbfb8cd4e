/* edit.h - picking, edits, undo, envelope warps, primitives, text, the pen tool.
 *
 * Edits act on the selection of the table's current group, redraw the display buffer where they say so, and return a
 * dirty rectangle in window coordinates for the caller to repaint, whose address may be null. Marks and bands are
 * drawn on a device context by XOR; a null context draws nothing and everything else still happens.
 */
#ifndef ZR32PATH_EDIT_H
#define ZR32PATH_EDIT_H

#include "store.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- picking and selection ---- */

enum {
    ZRPICK_REPLACE = 4, /* plain click: a new selection replaces the old */
    ZRPICK_ADD = 8,     /* added click: the old selection stays */
    ZRPICK_QUERY = 16,  /* exactly this: nothing changes, the answer only */
};

/* What lies under the pointer, and the selection that a click there makes.
 *   x, y       pointer relative to the view
 *   modifiers  ZRPICK_*
 *   path       in: any record of the current group; out: the record hit, or null
 *   node       out: the node hit, or where the segment hit begins
 *   position   out: 0 on a node, else the place along the segment, 0 to 65535
 * Returns 1 when an unselected path was hit (and is now selected with all that is joined to it, unless queried), 2 for
 * a selected path (which is now in node editing when it is the only one), 3 for nothing, -1 without a mode (*path then
 * stays). node and position stay on a miss, on -1 and when a shape is hit. But for a query the selected chain is made
 * anew and the group's selected path is that of *path, none where *path is null. */
ZRPATHAPI int32_t ZrPathPtOn(int32_t x, int32_t y, int32_t modifiers, ZRHDC hdc, const COORDSTRUCT *view,
                             PATHTBL *table, PATHREC **path, uint32_t *node, uint16_t *position);

/* Deselects every record of path's table chain, toggling its marks off when draw is not 0. The group's selected path
 * is the caller's to clear. */
ZRPATHAPI void ZrPathDeSelectAll(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view, int32_t draw);

/* Clears the selected bits of a record's nodes and leaves it selected as a whole. 1; 0 when it is not in node
 * editing. */
ZRPATHAPI int32_t ZrPathDeselectPts(PATHREC *path);

/* Selects every record of path's table chain. 1; 0 for null. */
ZRPATHAPI int32_t ZrPathAllPathSelected(PATHREC *path);

enum {
    ZRCLIP_OUTLINE = 1,  /* a path counts when its outline crosses the rectangle or lies inside */
    ZRCLIP_NODES = 2,    /* a path counts when an anchor lies inside; looked at without ZRCLIP_OUTLINE only */
    ZRCLIP_DESELECT = 4, /* deselect everything first */
};

/* Selects the paths that a rectangle relative to the view touches or holds, its corners in any order, each with all
 * that is joined to it; what is selected already stays. 1 when at least one was selected, else 2. */
ZRPATHAPI int32_t ZrPathRectClip(int32_t left, int32_t top, int32_t right, int32_t bottom, PATHTBL *table, ZRHDC hdc,
                                 const COORDSTRUCT *view, int32_t flags);

/* Handle points around the marked anchors of the one selected record, in window coordinates: an array of twelve
 * pairs, ended by (-1, -1), groups divided by (-3, -3). direction 0 fills the list; not 0 writes changed pairs back
 * into the record, whose primitive becomes 0. Returns the number of pairs in use; 0 without a display buffer or for
 * any other record. */
ZRPATHAPI int32_t ZrPathSelectedToView(const COORDSTRUCT *view, PATHREC *path, struct tagPOINT *handles,
                                       int32_t direction);

/* ---- geometric edits: start, line and curve nodes follow, shape nodes keep their values ---- */

/* Moves a selected record's selected chain, or any other record's join chain, by view pixels. 1; 0 for null. */
ZRPATHAPI int32_t ZrPathMovePaths(PATHREC *path, const COORDSTRUCT *view, int32_t dx, int32_t dy);

/* The same by fixed-point image pixels. */
ZRPATHAPI int32_t ZrPathMovePathsByPtfx(PATHREC *path, ZRFIXED dx, ZRFIXED dy);

/* Scales path's table chain about image (0, 0); sy 0 scales both ways by sx. 1; 0 for null. */
ZRPATHAPI int32_t ZrPathSize(PATHREC *path, double sx, double sy);

/* Moves path and what lies behind it on the table chain by whole pixels, so that the margin box of its join chain
 * has its left top at (x, y). Always 1. */
ZRPATHAPI int32_t ZrPathOffset(PATHREC *path, int32_t x, int32_t y);

/* Adds whole pixels to path and what lies behind it on the table chain. Always 1. */
ZRPATHAPI int32_t ZrPathOffsetExact(PATHREC *path, int16_t dx, int16_t dy);

/* Aligns the selected objects on the centre of the selection: vertically for axis 18018, else horizontally. The first
 * argument is not read. 1; 0 without a table or a selection. */
ZRPATHAPI int32_t ZrPathCenter(intptr_t unused, int32_t axis, PATHTBL *table, const COORDSTRUCT *view,
                               struct tagRECT *dirty);

/* Joins the selected chain into one compound shape, or takes it apart. Each record leaves the shape that it was part
 * of, which closes over it. 1; 0 for a null or unselected record. */
ZRPATHAPI int32_t ZrPathJoin(PATHREC *path);
ZRPATHAPI int32_t ZrPathDisjoin(PATHREC *path);

/* The same for the whole table chain. 1; 0 for null. */
ZRPATHAPI int32_t ZrPathJoinAll(PATHREC *path);
ZRPATHAPI int32_t ZrPathDisjoinAll(PATHREC *path);

/* Deletes the marked nodes of a record in node editing that has more than 4 nodes and is no envelope's outline (the
 * head of the selection alone), else the selected paths. Of two marked neighbours one goes a call; a mark on the last
 * anchor stands for the start, and the record begins with the next anchor and closes there. What goes is taken out of
 * the display buffer; *dirty is empty without one. Needs no memory. 1; 0 when nothing is selected. */
ZRPATHAPI int32_t ZrPathDelete(PATHTBL *table, COORDSTRUCT *view, struct tagRECT *dirty);

/* ZrPathDelete without touching the display buffer; *dirty gets the selected path's margin box. Always 1. */
ZRPATHAPI int32_t ZrPathDeleteLink(PATHTBL *table, COORDSTRUCT *view, struct tagRECT *dirty);

/* Copies the selected chain behind its table chain, 15 view pixels off, and draws the copies, which are the new
 * selection; copies are joined where both sources were selected. Marks of the sources are toggled off. 1; 0 when
 * nothing is selected or without memory, nothing is then changed. */
ZRPATHAPI int32_t ZrPathDuplicate(ZRHDC hdc, PATHTBL *table, const COORDSTRUCT *view, struct tagRECT *dirty);

/* Copies path's whole table chain, with its join and selected chains, as a separate chain of the caller's. 1; 0 for
 * null. Without memory *copy is null, with the result 0, or 1 when only the last record could not be had. */
ZRPATHAPI int32_t ZrPathDuplicatePtr(const PATHREC *path, PATHREC **copy);

/* ---- undo ---- */

enum {
    UR_SELECTION = 18001, /* which paths and nodes are selected */
    UR_MOVE = 18006,      /* where node 0 of the selected path was */
    UR_JOIN = 18007,      /* ZrPathJoin was applied */
    UR_DISJOIN = 18008,   /* ZrPathDisjoin was applied */
    UR_ENVELOPE = 18016,  /* the old envelope */
};

/* Appends a record for the present state to the list of the document key (not 0). A code without a record does
 * nothing. Always 1. */
ZRPATHAPI int32_t ZrPathBackupAction(int32_t key, int32_t action, PATHTBL *table);

/* Append to the list that the last keyed call loaded, without saving its position: the selected path's address; node 0
 * of the selected path (nothing when there is none); a selection snapshot. The first two store the action code as it
 * is given and give 1 always; codes other than UR_* are stepped over and never removed. The third does not read the
 * code; 1, 0 without memory. */
ZRPATHAPI int32_t BackupSelected(int32_t action, PATHTBL *table);
ZRPATHAPI int32_t BackupSelectMove(int32_t action, PATHTBL *table);
ZRPATHAPI int32_t BackupDuplicate(int32_t action, PATHTBL *table);

/* Steps back or forward. context is a device context (ZRHDC) when the record is UR_SELECTION, and the address of a
 * struct tagRECT that receives the rectangle to repaint when it is UR_MOVE or UR_ENVELOPE. 1; 0 for an empty list,
 * where there is nothing to step over, and without memory: nothing is then changed. */
ZRPATHAPI int32_t ZrPathUndo(int32_t key, PATHTBL *table, COORDSTRUCT *view, void *context);
ZRPATHAPI int32_t ZrPathRedo(int32_t key, PATHTBL *table, COORDSTRUCT *view, void *context);

/* 1 when the record that the next undo applies is UR_SELECTION and equals the present selection, else 0. */
ZRPATHAPI int32_t ZrPathSameUR(int32_t key, PATHTBL *table, int32_t action);

/* Removes the oldest (oldest not 0) or the newest record. Always 1. */
ZRPATHAPI int32_t ZrPathURFree(int32_t key, intptr_t unused, int32_t oldest);

/* Has no lasting effect. Always 1. */
ZRPATHAPI int32_t ZrPathGetURAction(void);

/* Stores 0 in both words. Always 1. */
ZRPATHAPI int32_t ZrPathZrPathGetURInfo(int32_t *first, int32_t *second);

/* Does nothing: there is no limit. Always 1. */
ZRPATHAPI int32_t ZrPathSetUndoLimit(void);

/* ---- envelope warps ---- */

/* Warp the join chain from path through a frame: four corners (left top, right top, left bottom, right bottom), or
 * two opposite cubic sides of four points each: top and bottom from left to right, for BiCubicV left and right from
 * top to bottom. primitive becomes 0. 1; 0 for null. */
ZRPATHAPI int32_t ZrPathBiLinear(PATHREC *path, const ZRPOINTFX *points);
ZRPATHAPI int32_t ZrPathBiCubic(PATHREC *path, const ZRPOINTFX *points);
ZRPATHAPI int32_t ZrPathBiCubicV(PATHREC *path, const ZRPOINTFX *points);

/* Write the frame's outline record behind the join chain (the Bezier form: the one that heads path's table chain),
 * replacing what stands there; the group owns it. The Bezier form deselects the paths under the frame. Who should be
 * selected is then the caller's to tell the group (ZrPathAssignSelectedPathBlindly). 1; 0 for a null argument, without
 * memory, or when an existing record there has no room; nothing is then changed. */
ZRPATHAPI int32_t ZrPathAddBiLinearEnvelope(PATHREC *path, const ZRPOINTFX *points);
ZRPATHAPI int32_t ZrPathAddBiBezierEnvelope(PATHREC *path, const ZRPOINTFX *points);

/* Read a frame back from its outline record. 1; 0 for a null argument, an unselected record or one with too few
 * nodes. */
ZRPATHAPI int32_t ZrPathGetBiLinearEnvelope(const PATHREC *path, ZRPOINTFX *points);
ZRPATHAPI int32_t ZrPathGetBiBezierEnvelope(const PATHREC *path, ZRPOINTFX *points);

/* The outline record's node count: 5 bilinear, 9 bicubic; 0 for null. */
ZRPATHAPI int32_t ZrPathGetEnvelopeType(const PATHREC *path);

/* ---- sources of shapes ---- */

enum {
    ZRPRIM_ELLIPSE = 1,
    ZRPRIM_RECTANGLE = 2,
    ZRPRIM_ROUNDRECT = 3,
    ZRPRIM_BAR = 5, /* a rectangle whose long sides are curves, ready for bending; any other kind is a diamond */
};

/* A new record of a kind, or a scaled copy of the prototype's chain, over a rectangle dragged on the window in any
 * direction. center not 0: the drag runs from the centre to a corner. aspect not 0: a prototype keeps its
 * proportions. The caller owns the record. 1; 0, with *path as it was, for a null view, a drag or a prototype
 * without width or height, and without memory. */
ZRPATHAPI int32_t ZrPathGetPrimitive(int32_t kind, const PATHREC *prototype, PATHREC **path, const COORDSTRUCT *view,
                                     int32_t center, int32_t aspect, const struct tagRECT *drag);

/* The same behind the current group's chain, as the new selection; draws only the marks that it takes off. 1, also
 * where there is no shape to add; 0 for a null table or view. */
ZRPATHAPI int32_t ZrPathAddPrimitive(ZRHDC hdc, int32_t kind, const PATHREC *prototype, PATHTBL *table,
                                     const COORDSTRUCT *view, int32_t center, int32_t aspect,
                                     const struct tagRECT *drag);

/* A sample table of six groups, with the second current and drawn into the view's buffer, which the table takes over.
 * The caller owns the table; *table is null without memory. Returns table. */
ZRPATHAPI PATHTBL **AddPathTest(PATHTBL **table, const COORDSTRUCT *view, struct tagRECT *dirty);

/* Parameters of ZrPathCreateText. */
typedef struct TEXTPARAM {
    int32_t reserved0; /* not read */
    int32_t slant;     /* not 0: shears glyphs by 0.3, but single bytes of a font only in a symbol, Shift-JIS, Big5 or
                          Hangul set; set to 0 when the font is italic already */
    int32_t underline; /* not 0: adds a bar */
    int32_t strikeout; /* not 0: adds a bar; measured with the underline in place */
    int32_t maskArg1;  /* scope of ZrPathToBuf: 0 for a filled mask */
    int32_t vertical;  /* not 0: lines run downward and stack from right to left */
    int32_t maskArg2;  /* aaMode of ZrPathToBuf: 0 for a hard edge */
    int32_t reserved7; /* not read */
    int32_t align;     /* 1001: far side, 1002: centred, else near side */
    int32_t output;    /* 1021: paths only, no mask */
} TEXTPARAM;

/* Turns text in the device context's font into one join chain of paths, and that into a mask.
 *   text   bytes in the current code page, changed in place: control bytes other than CR and LF become blanks. Any
 *          CR or LF ends a line and takes the byte behind it along. A line is cut at 54 bytes; lines behind the
 *          2047th are left out
 *   param  slant may be changed
 *   path   gets the head of the chain, which the caller owns; null when there is none. The base line of the first
 *          line lies at y 0, its pen starts at x 0; vertical text moves the pen downward
 *   rect   gets the mask's place in image pixels; untouched without a mask
 * Returns the mask, which the caller frees with ZrPathBufFree; null with output 1021, without a line of text, without
 * a contour, without memory, and for a null argument. A line whose glyphs cannot be had, as in a null device context,
 * counts as empty. Without memory for the mask the paths are delivered all the same. */
ZRPATHAPI PATHBUF ZrPathCreateText(ZRHDC hdc, char *text, TEXTPARAM *param, PATHREC **path, struct tagRECT *rect);

/* The pen tool: takes the messages of the drawing window (513 down, 514 up, 515 double-click, 512 move, 256 and 257
 * with wParam 27 for Esc; x and y on the window) and builds the group's selected path with a rubber band on the device
 * context. A press without capture begins a path; the caller then sets the mouse capture, and a double-click that
 * closes the path releases it. The path is not drawn into the display buffer. Always 1. */
ZRPATHAPI int32_t ZrPathMouseProcDraw(ZRHDC hdc, PATHTBL *table, const COORDSTRUCT *view, uint32_t message,
                                      uintptr_t wParam, int32_t x, int32_t y);

#ifdef __cplusplus
}
#endif

#endif
