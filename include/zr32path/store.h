/* store.h - path records, the table of named groups, the view record, the flattened stream, bounds.
 *
 * A shape is usually several records, one a contour, tied together by three independent doubly linked chains that
 * live in the records themselves: the table chain (every record of a group, in drawing order), the join chain
 * (records that form one compound shape) and the selected chain.
 *
 * Ownership: the caller owns a record until it hands it to a table; from then on its group owns it and
 * ZrPathTblDelete frees it. The table owns its display buffer. The caller owns view records and streams.
 */
#ifndef ZR32PATH_STORE_H
#define ZR32PATH_STORE_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Node type codes. The low byte and bits 8 to 11 say what a node is; bits are added for its state. */
enum {
    PATHNODE_LINE = 0x0002,      /* straight line from the node before to this one */
    PATHNODE_CURVE = 0x0004,     /* cubic: this node, the next (both control points) and the one after (end) */
    PATHNODE_START = 0x0006,     /* begins a run; node 0 of every record */
    PATHNODE_ELLIPSE = 0x0100,   /* far corner of a box begun by the node before; next node's x is the rotation */
    PATHNODE_RECTANGLE = 0x0200, /* far corner of a box begun by the node before */
    PATHNODE_POLYGON = 0x0400,   /* x: corner count, y: inner radius; node before: centre; next: outer point */

    PATHNODE_CLOSING = 0x0001,  /* added to the last node of a closed run: 3 is a closing line, 5 a closing curve end */
    PATHNODE_SMOOTH = 0x2000,   /* added to a curve's end: its controls on both sides lie in line */
    PATHNODE_SELECTED = 0x8000, /* added to a node that is selected for node editing */

    PATHNODE_KINDMASK = 0x0FFE,    /* leaves the kind */
    PATHNODE_KINDSELMASK = 0x8FFE, /* leaves the kind and the selected bit */
};

/* Ten packed bytes:  offset 0 type (2), 2 x (4), 6 y (4). */
#pragma pack(push, 1)
typedef struct PATHNODE {
    uint16_t type; /* PATHNODE_* */
    ZRFIXED x;     /* image pixels */
    ZRFIXED y;
} PATHNODE;
#pragma pack(pop)

/* Values of PATHREC.flags. Bit 31 alone decides whether a path is selected. */
#define PATHREC_SELECTED 0x80000000u    /* selected as a whole path */
#define PATHREC_NODEEDIT 0x88000000u    /* selected with node editing: selected bits of nodes are live */
#define PATHREC_ENVELOPE 0x88800000u    /* the outline record of an envelope */
#define PATHREC_FREELATTICE 0x88880000u /* free-standing lattice of the surface builder, in no chain */
#define PATHREC_HIDDEN 0x00001000u      /* bit added to any of these: left out of the outline display */

/* A path record: one block of the path heap, a header and then the nodes. Natural alignment; on a 32-bit build the
 * header has 40 bytes, on a 64-bit build 68, and a block of n nodes has 10 n + 2 bytes more. */
typedef struct PATHREC {
    uint32_t streamTag;       /* 0 until the record is flattened, then 769 */
    struct PATHREC *prevPath; /* table chain */
    struct PATHREC *nextPath;
    struct PATHREC *prevJoin; /* join chain */
    struct PATHREC *nextJoin;
    struct PATHREC *prevSel; /* selected chain */
    struct PATHREC *nextSel;
    uint32_t nodeCount; /* nodes in use */
    uint32_t flags;     /* PATHREC_* */
    int32_t primitive;  /* 0, or the kind of the primitive that made the record; cleared by the first node edit */
    PATHNODE nodes[];   /* nodeCount nodes */
} PATHREC;

/* A named group of a table. */
typedef struct PATHGROUP {
    uint32_t index;        /* the entry's own position */
    char name[256];        /* zero-terminated, at most 255 bytes of single-byte or double-byte text */
    PATHREC *activePath;   /* head of the group's table chain, null for an empty group; the group owns the chain */
    PATHREC *selectedPath; /* head of the group's selected chain, null when nothing is selected */
} PATHGROUP;

/* The path table: what an editor holds per document. */
typedef struct PATHTBL {
    uint32_t currentGroup; /* index of the group that queries and edits act on */
    uint32_t version;      /* 0x10000 in a live table */
    uint32_t groupCount;   /* at least 1 */
    uint8_t *lpDB;         /* display buffer, null until made; the table owns it */
    int32_t dbWidth;       /* its width in pixels, which is its row stride */
    int32_t dbHeight;
    int32_t dbScrollX; /* scroll and zoom at which it was last set up */
    int32_t dbScrollY;
    int32_t dbZoom;
    int32_t dbTag; /* the caller's own tag for its contents */
    uint32_t reserved[6];
    PATHGROUP groups[]; /* groupCount entries */
} PATHTBL;

/* The view record: where the view lies on the window, how it scrolls and zooms, which buffer it draws into. */
typedef struct COORDSTRUCT {
    int32_t left; /* view rectangle on the caller's window; right and bottom are exclusive */
    int32_t top;
    int32_t right;
    int32_t bottom;
    int32_t scrollX; /* pixel of the zoomed image that lies at left */
    int32_t scrollY; /* row of the zoomed image that lies at top */
    int32_t zoom;    /* n > 0: n x n screen pixels an image pixel; -n: one screen pixel per n image pixels; never 0 */
    uint8_t *displayBuffer; /* a copy of the table's lpDB, which stays the owner */
    uint32_t reserved[4];
} COORDSTRUCT;

/* A traced point for ZrPathR2VToZrPath. */
typedef struct R2VPOINT {
    double x;
    double y;
    uint32_t type; /* PATHNODE_LINE, or PATHNODE_CURVE on each of a curve's three points */
    uint32_t unused;
} R2VPOINT;

/* ---- records ---- */

/* A new empty record with room for 100 nodes, flags and links 0; null without memory. The caller owns it. */
ZRPATHAPI PATHREC *ZrPathCreate(void);

/* Appends one node of the given type code at *point. 1; 0 when the record pointer is null. Give it records in the
 * block that ZrPathCreate made, up to 100 nodes: *path is never changed, so the block of a fuller record grows only
 * where it stands, and a node that finds no room is dropped. */
ZRPATHAPI int32_t ZrPathAddPoint(PATHREC **path, const ZRPOINTFX *point, uint16_t type);

/* Shrinks the record's block in place to what its nodes need: the last step of building a record. 1; 0 for a null
 * pointer or when the block cannot be resized. */
ZRPATHAPI int32_t ZrPathPurge(PATHREC **path);

/* Frees the record and all records behind it on the table chain (bySelection 0) or the selected chain (not 0), the
 * given one last. Unlinks nothing in front of it. 1; 0 for null or for a block whose size the heap gives as 0. */
ZRPATHAPI int32_t ZrPathDeletePtr(PATHREC *path, int32_t bySelection);

/* A new selected record from count traced points, closed by an extra line when last and first point differ. 0 points
 * give null, 1 point a lone start node. The caller owns it; null without memory. */
ZRPATHAPI PATHREC *ZrPathR2VToZrPath(uint32_t count, const R2VPOINT *points);

/* Links the array into one table chain and one join chain; returns its first record. Each record stands in the array
 * once and in no chain yet: links in front of the first and behind the last stay as they are. Null, with nothing
 * linked, for an empty array or one with a null in it. */
ZRPATHAPI PATHREC *ZrPathChainZrPath(uint32_t count, PATHREC **paths);

/* Puts the table chain that added belongs to behind the chain of *chain, or stores added where *chain is null.
 * 1; 0 when added is null. Join and selected chains stay, and so does what is in the chain already. */
ZRPATHAPI int32_t ZrPathChainPaths(PATHREC **chain, PATHREC *added);

/* 1 when the record is a primitive that stands alone or with only its own envelope behind it, else 0. */
ZRPATHAPI int32_t IsOnlyPrimitive(const PATHREC *path);

/* ---- table, groups, view ---- */

/* Makes a table with one empty nameless group and no display buffer. 1; 0 without memory (*table is then null). */
ZRPATHAPI int32_t ZrPathNew(PATHTBL **table);

/* Adds a group that holds the table chain of path, makes it current and draws it. An empty *table makes the table
 * and a display buffer of view->right x view->bottom; an empty only group is taken over. The name is cut to 255
 * bytes. The group owns the records. *dirty, which may be null, gets the rectangle to repaint; without a display
 * buffer nothing is drawn and it stays. 1; 0, with nothing changed, for a null record or without memory. */
ZRPATHAPI int32_t ZrPathAddPathGroup(PATHTBL **table, PATHREC *path, const char *name, COORDSTRUCT *view,
                                     struct tagRECT *dirty);

/* Frees every group's table chain, the display buffer and the table. 1; 0 for null. */
ZRPATHAPI int32_t ZrPathTblDelete(PATHTBL *table);

/* Frees the display buffer and clears lpDB; the sizes stay. 1; 0 for null. */
ZRPATHAPI int32_t ZrPathTblDeletelpDB(PATHTBL *table);

/* Tells what is asked for of the current group; each result address may be null. *live is 1 when version is not 0.
 * A null table does nothing. */
ZRPATHAPI void ZrPathFind(const PATHTBL *table, uint32_t *group, PATHREC **activePath, PATHREC **selectedPath,
                          int32_t *live);

/* Stores groupCount, or 0 for a null table. */
ZRPATHAPI void ZrPathFindGroups(const PATHTBL *table, uint32_t *count);

/* Stores the address of a group's name inside the table, or null for an index out of range. Nothing for a null
 * table. */
ZRPATHAPI void ZrPathFindGroupName(const PATHTBL *table, int32_t group, const char **name);

/* Makes the head of path's table chain the current group's active path and the first selected record of that chain
 * its selected path. 1; 0 for a null table or record. */
ZRPATHAPI int32_t ZrPathAssignActivePath(PATHTBL *table, PATHREC *path);

/* Makes the head of path's selected chain the current group's selected path; null clears it. 1; 0 for a null table
 * or a record that is not selected. */
ZRPATHAPI int32_t ZrPathAssignSelectedPath(PATHTBL *table, PATHREC *path);

/* ZrPathAssignSelectedPath with the first record of path's table chain whose flags are not 0, or with null. 1, also
 * when that refuses the record; 0 for a null record or table. */
ZRPATHAPI int32_t ZrPathAssignSelectedPathBlindly(PATHTBL *table, PATHREC *path);

/* Answers questions about a selection by what the two words hold beforehand; each address may be null.
 * A word of 3 asks about path itself: *joined becomes 1 or 0, *selected 0, 1 (alone) or 3 (with others), and with
 * *selected 3 that is all. Otherwise the head of path's selected chain is asked: *selected becomes 1 or 0, *joined 3
 * for a single selection, else 0, 1 or 2 when none, all or some of the chain's records but the last have a
 * nextJoin. A null path does nothing. */
ZRPATHAPI void ZrPathInfo(const PATHREC *path, int32_t *selected, int32_t *joined);

/* Sets up a view, making the record when *view is null (the library is started if need be). With a table the view is
 * tied to its display buffer, which is made when there is none and kept as it is, of whatever size, when there is one.
 * The caller frees the record with ZrPathDeleteCoordStruct. Always 1: without memory *view or its buffer is null. */
ZRPATHAPI int32_t ZrPathCoordStruct(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t scrollX,
                                    int32_t scrollY, int32_t zoom, PATHTBL *table, COORDSTRUCT **view);

/* Sets up a view with a new display buffer of its size, freeing the old one; a tag other than 0 is stored in the
 * table. 1, with a null buffer when that could not be had; 0, with nothing changed, for a null table or address or
 * without memory for the record. */
ZRPATHAPI int32_t ZrPathNewCoordStruct(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t scrollX,
                                       int32_t scrollY, int32_t zoom, int32_t tag, PATHTBL *table, COORDSTRUCT **view);

/* Frees the view record; its display buffer stays. Always 1. */
ZRPATHAPI int32_t ZrPathDeleteCoordStruct(COORDSTRUCT *view);

/* 1 when the table's display buffer was set up for exactly these values, else 0. */
ZRPATHAPI int32_t ZrPathTblIsValid(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t scrollX,
                                   int32_t scrollY, int32_t zoom, int32_t tag, const PATHTBL *table);

/* A point relative to the view rectangle in image coordinates; (0, 0) for a null view. */
ZRPATHAPI tagPOINTDB ZrPathPtWndToImage(int32_t x, int32_t y, const COORDSTRUCT *view);

/* Both corners of a rectangle relative to the view rectangle in image coordinates; (0, 0) twice for a null view. */
ZRPATHAPI ZRRECTDB ZrPathRectWndToImage(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                        const COORDSTRUCT *view);

/* ---- stream ---- */

/* Writes the whole table chain that path belongs to into one block of little-endian 32-bit words, 40-byte record
 * headers and packed nodes: the library's only persistent format. *size gets the total before the block is had,
 * *stream the block; the caller frees it with GlobalFree. The live records' streamTag becomes 769. 1; 0 for a null
 * record or without memory (*stream is then null). */
ZRPATHAPI int32_t ZrPathFlatten(PATHREC *path, uint32_t *size, void **stream);

/* Rebuilds the chain of a stream, in the current or the older layout, with table, join and selected links repaired.
 * *path gets its head (null for a stream of no records); the caller owns the records. The stream is unchanged.
 * 1; 0 for a null stream, one whose sizes, counts or links do not fit each other, or without memory: nothing is then
 * stored. */
ZRPATHAPI int32_t ZrPathUnFlatten(void *const *stream, PATHREC **path);

/* ---- bounds ---- */

/* The box of the control polygons of path and what lies behind it on the join chain, in whole pixels at the given
 * zoom, with a margin of 5 left and above and 6 right and below. 1; 0 for a null record, which leaves *rect. */
ZRPATHAPI int32_t ZrPathGetMiniMaxRect(const PATHREC *path, ZRFIXED zoom, struct tagRECT *rect);

/* The same along the selected chain. */
ZRPATHAPI int32_t ZrPathGetSelectedRect(const PATHREC *path, ZRFIXED zoom, struct tagRECT *rect);

/* The same along the table chain. */
ZRPATHAPI int32_t ZrPathGetAllMiniMaxRect(const PATHREC *path, ZRFIXED zoom, struct tagRECT *rect);

/* The same along the table chain without the margin. */
ZRPATHAPI int32_t ZrPathGetRealRect(const PATHREC *path, ZRFIXED zoom, struct tagRECT *rect);

#ifdef __cplusplus
}
#endif

#endif
