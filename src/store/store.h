/* store.h - what the other rooms use of the path store: sizes of blocks, growth, chains, the reader of nodes.
 *
 * Only this room knows type codes, their steps and how a block grows. Everybody else pulls whole segments from SEGWALK
 * or steps with NodeStep.
 */
#ifndef ZR32_STORE_H
#define ZR32_STORE_H

#include "frame/frame.h"
#include "geometry/vector.h"
#include <zr32path/store.h>

namespace zr32 {

/* ---- blocks ---- */

constexpr size_t recordHeaderSize = offsetof(PATHREC, nodes);
constexpr size_t tableHeaderSize = offsetof(PATHTBL, groups);
constexpr uint32_t nodesPerBlock = 100;

static_assert(sizeof(PATHNODE) == 10, "nodes are packed");
static_assert(offsetof(PATHREC, nodes) == offsetof(PATHREC, primitive) + 4, "nodes follow the primitive word");
static_assert(sizeof(void *) != 4 || recordHeaderSize == 40, "documented 32-bit record header");
static_assert(sizeof(void *) != 8 || recordHeaderSize == 68, "64-bit record header");
static_assert(sizeof(void *) != 4 || sizeof(PATHGROUP) == 268, "documented 32-bit group entry");
static_assert(sizeof(void *) != 4 || tableHeaderSize == 64, "documented 32-bit table header");
static_assert(sizeof(void *) != 4 || sizeof(COORDSTRUCT) == 48, "documented 32-bit view record");
static_assert(sizeof(R2VPOINT) == 24, "traced point");

/* Bytes of a block for a number of nodes: header, nodes and two spare bytes. */
constexpr size_t RecordBlockSize(size_t nodes)
{
    return recordHeaderSize + sizeof(PATHNODE) * nodes + 2;
}

constexpr size_t TableBlockSize(size_t groups)
{
    return tableHeaderSize + sizeof(PATHGROUP) * groups;
}

/* Nodes that the record's block has room for, by the size that the heap reports. */
size_t RecordRoom(const PATHREC *path);

/* A zeroed record with room for exactly the given number of nodes; null without memory. */
PATHREC *RecordAlloc(size_t nodes);

void RecordFree(PATHREC *path);

/* Adds count nodes of no defined content to a record that is still in the block size this rule gave it. *path follows
 * a block that moves. 1; 0 when the resize fails, the record is then unchanged. */
int PathReserveNodes(PATHREC **path, PATHNODE **first, uint32_t count);

/* Shrinks the block in place to what its nodes need. 1; 0 for null, for a count beyond the block, or when the heap
 * cannot. */
int PathTrimNodes(PATHREC **path);

/* ---- chains ---- */

/* A chain is named by its forward link. */
using CHAINLINK = PATHREC *PATHREC::*;

struct CHAIN {
    CHAINLINK prev;
    CHAINLINK next;
};

constexpr CHAIN tableChain = {&PATHREC::prevPath, &PATHREC::nextPath};
constexpr CHAIN joinChain = {&PATHREC::prevJoin, &PATHREC::nextJoin};
constexpr CHAIN selectedChain = {&PATHREC::prevSel, &PATHREC::nextSel};

/* Head and tail of the chain that the record belongs to; null for null. */
PATHREC *ChainFirst(const CHAIN &chain, PATHREC *path);
PATHREC *ChainLast(const CHAIN &chain, PATHREC *path);
const PATHREC *ChainFirst(const CHAIN &chain, const PATHREC *path);

inline PATHREC *PathChainFirst(PATHREC *path)
{
    return ChainFirst(tableChain, path);
}

inline PATHREC *PathChainLast(PATHREC *path)
{
    return ChainLast(tableChain, path);
}

/* Links b behind a. */
inline void ChainLink(const CHAIN &chain, PATHREC *a, PATHREC *b)
{
    a->*chain.next = b;
    b->*chain.prev = a;
}

inline int PathIsSelected(const PATHREC *path)
{
    return (path->flags & PATHREC_SELECTED) != 0;
}

inline int PathInNodeEdit(const PATHREC *path)
{
    return (path->flags & PATHREC_NODEEDIT) == PATHREC_NODEEDIT;
}

/* ---- nodes ---- */

inline uint32_t NodeKind(const PATHNODE *node)
{
    return node->type & PATHNODE_KINDMASK;
}

inline int NodeSelected(const PATHNODE *node)
{
    return (node->type & PATHNODE_SELECTED) != 0;
}

/* Nodes that a kind (type under PATHNODE_KINDMASK) takes up: 1, 2 or 3; 0 for a kind that no walker steps past, which
 * ends the walk of a record. */
constexpr uint32_t NodeStep(uint32_t kind)
{
    switch (kind) {
    case PATHNODE_START:
    case PATHNODE_LINE:
    case PATHNODE_RECTANGLE: return 1;
    case PATHNODE_ELLIPSE:
    case PATHNODE_POLYGON: return 2;
    case PATHNODE_CURVE: return 3;
    default: return 0;
    }
}

/* Where a point of a record lies on a raster. The three users differ, deliberately:
 *   masks, surfaces   v x zoom - origin + 0.5          (a hard-edged mask leaves x without the 0.5)
 *   display, marks    (v + 0.5) x z - origin           the half pixel comes before the zoom
 *   3D walk           v - origin + 0.5
 * One formula holds all three: ((v + pre) x scale - origin) + post. */
struct PLACEMENT {
    double pre;
    double scale;
    POINTDB origin;
    POINTDB post;
};

constexpr PLACEMENT PlaceOnMask(double zoom, double left, double top)
{
    return {0.0, zoom, {left, top}, {0.5, 0.5}};
}

constexpr PLACEMENT PlaceOnView(double z, double originX, double originY)
{
    return {0.5, z, {originX, originY}, {0.0, 0.0}};
}

constexpr PLACEMENT PlaceInSpace(double originX, double originY)
{
    return {0.0, 1.0, {originX, originY}, {0.5, 0.5}};
}

/* A point in image coordinates, unplaced. */
constexpr PLACEMENT placeImage = {0.0, 1.0, {0.0, 0.0}, {0.0, 0.0}};

inline POINTDB PlaceNode(const PLACEMENT &place, const PATHNODE *node)
{
    return {(FixToDouble(node->x) + place.pre) * place.scale - place.origin.x + place.post.x,
            (FixToDouble(node->y) + place.pre) * place.scale - place.origin.y + place.post.y};
}

/* The scale of a view: zoom as it stands, or one over its magnitude for a reduction. */
inline double ViewScale(const COORDSTRUCT *view)
{
    return view->zoom >= 0 ? static_cast<double>(view->zoom) : 1.0 / -static_cast<double>(view->zoom);
}

/* One step of a walk: a move, a line, a curve or a shape. */
struct SEGMENT {
    uint32_t kind;        /* PATHNODE_START, _LINE, _CURVE or a shape kind */
    uint32_t index;       /* of its first node */
    uint32_t next;        /* index behind it */
    const PATHNODE *node; /* its first node */
    POINTDB p[4];         /* line: p[0] to p[1]; curve: p[0] to p[3]; start: p[0]; shapes: only p[0], the current
                             point */
};

struct SEGWALK {
    const PATHREC *path;
    PLACEMENT place;
    uint32_t index;
    POINTDB current;
};

/* Begins a walk; a null record has no segments. The current point starts at (0, 0), for records that begin without a
 * start node. */
void SegWalkStart(const PATHREC *path, const PLACEMENT &place, SEGWALK *walk);

/* The next segment; 0 at the end, at a kind that no walker knows, or where a segment would reach behind the last
 * node. The current point moves to the end of what is returned; shapes leave it. */
int SegWalkNext(SEGWALK *walk, SEGMENT *segment);

/* ---- table ---- */

/* The current group, or null for a null table or an index out of range. */
PATHGROUP *TableCurrentGroup(PATHTBL *table);
const PATHGROUP *TableCurrentGroup(const PATHTBL *table);

/* A zeroed display buffer, for a size without pixels a block of no bytes; null without memory or when the size is
 * beyond what one buffer holds. */
uint8_t *DisplayBufferAlloc(int32_t width, int32_t height);

/* Notes in the table what its display buffer was set up for. */
void TableNoteView(PATHTBL *table, const COORDSTRUCT *view);

/* A point on the whole window in image coordinates. */
tagPOINTDB PathViewToImage(const COORDSTRUCT *view, int32_t x, int32_t y);

} // namespace zr32

#endif
