/* record.cpp - path records: blocks, growth, chains, and the exports that build and free them.
 *
 * A record is created empty with room for 100 nodes or built at its exact size, receives nodes, and sits in a group's
 * table chain until it is freed. Capacity is not stored: it follows from the node count by the growth rule, so nodes
 * are added only to a record still in the block size that the rule gave it. A block that is smaller than the rule
 * believes (a purged record) is resized all the same.
 */
#include "store/store.h"

#include <algorithm>

namespace zr32 {

namespace {

/* Whole blocks of 100 nodes that hold count nodes; at least one. */
uint64_t BlocksFor(uint64_t count)
{
    return std::max<uint64_t>(1, (count + nodesPerBlock - 1) / nodesPerBlock);
}

/* The rule's room for count more nodes. 1; 0 when the block would have to move and must not, or without memory. A
 * block that has less room than its count tells is resized as well. */
int ReserveNodes(PATHREC **path, PATHNODE **first, uint32_t count, int mayMove)
{
    const uint64_t wanted = uint64_t{(*path)->nodeCount} + count;
    if (wanted > INT32_MAX / sizeof(PATHNODE)) return 0;
    if (wanted > BlocksFor((*path)->nodeCount) * nodesPerBlock || wanted > RecordRoom(*path)) {
        const size_t size = RecordBlockSize(static_cast<size_t>(BlocksFor(wanted) * nodesPerBlock));
        void *block = mayMove ? PathHeapReAlloc(PathHeap(), heapNoSerialize, *path, size)
                              : PathHeapReAllocInPlace(PathHeap(), heapNoSerialize, *path, size);
        if (!block) return 0;
        *path = static_cast<PATHREC *>(block);
    }
    *first = (*path)->nodes + (*path)->nodeCount;
    (*path)->nodeCount = static_cast<uint32_t>(wanted);
    return 1;
}

template <typename RECORD> RECORD *Walk(RECORD *path, CHAINLINK link)
{
    while (path && path->*link) path = path->*link;
    return path;
}

} // namespace

size_t RecordRoom(const PATHREC *path)
{
    const size_t size = PathHeapSize(PathHeap(), heapNoSerialize, path);
    return size < recordHeaderSize ? 0 : (size - recordHeaderSize) / sizeof(PATHNODE);
}

PATHREC *RecordAlloc(size_t nodes)
{
    return static_cast<PATHREC *>(PathHeapAlloc(PathHeap(), heapZero, RecordBlockSize(nodes)));
}

void RecordFree(PATHREC *path)
{
    PathHeapFree(PathHeap(), heapNoSerialize, path);
}

int PathReserveNodes(PATHREC **path, PATHNODE **first, uint32_t count)
{
    return ReserveNodes(path, first, count, 1);
}

int PathTrimNodes(PATHREC **path)
{
    if (!path || !*path || (*path)->nodeCount > RecordRoom(*path)) return 0;
    const size_t size = RecordBlockSize((*path)->nodeCount);
    return PathHeapReAllocInPlace(PathHeap(), heapNoSerialize, *path, size) != nullptr;
}

PATHREC *ChainFirst(const CHAIN &chain, PATHREC *path)
{
    return Walk(path, chain.prev);
}

const PATHREC *ChainFirst(const CHAIN &chain, const PATHREC *path)
{
    return Walk(path, chain.prev);
}

PATHREC *ChainLast(const CHAIN &chain, PATHREC *path)
{
    return Walk(path, chain.next);
}

extern "C" {

ZRPATHAPI PATHREC *ZrPathCreate(void)
{
    return RecordAlloc(nodesPerBlock);
}

ZRPATHAPI int32_t ZrPathAddPoint(PATHREC **path, const ZRPOINTFX *point, uint16_t type)
{
    if (!path || !*path || !point) return 0;
    /* A copy, since the caller's pointer is not ours to change: the block grows where it is or not at all. A node
     * that finds no room is dropped, deliberately without a word of it in the result. */
    PATHREC *record = *path;
    PATHNODE *node = nullptr;
    if (ReserveNodes(&record, &node, 1, 0)) *node = {type, point->x, point->y};
    return 1;
}

ZRPATHAPI int32_t ZrPathPurge(PATHREC **path)
{
    return PathTrimNodes(path);
}

ZRPATHAPI int32_t ZrPathDeletePtr(PATHREC *path, int32_t bySelection)
{
    if (!path || !PathHeapValid(PathHeap(), heapNoSerialize, path)) return 0;
    const CHAINLINK link = bySelection ? selectedChain.next : tableChain.next;

    /* From the tail back to the given record without recursion: the chain is turned round on the way out. */
    PATHREC *reversed = nullptr;
    for (PATHREC *record = path; record;) {
        PATHREC *next = record->*link;
        record->*link = reversed;
        reversed = record;
        record = next;
    }
    while (reversed) {
        PATHREC *before = reversed->*link;
        RecordFree(reversed);
        reversed = before;
    }
    return 1;
}

ZRPATHAPI PATHREC *ZrPathR2VToZrPath(uint32_t count, const R2VPOINT *points)
{
    if (count == 0 || !points || count > INT32_MAX / sizeof(PATHNODE) - 1) return nullptr;
    const R2VPOINT &first = points[0];
    const R2VPOINT &last = points[count - 1];
    const int closes = count > 1 && (first.x != last.x || first.y != last.y);
    const uint32_t nodeCount = count + (closes ? 1 : 0);
    PATHREC *path = RecordAlloc(nodeCount);
    if (!path) return nullptr;

    path->nodeCount = nodeCount;
    path->flags = PATHREC_SELECTED;
    for (uint32_t i = 0; i < count; i++)
        path->nodes[i] = {static_cast<uint16_t>(points[i].type), DoubleToFix(points[i].x), DoubleToFix(points[i].y)};
    PATHNODE *end = &path->nodes[nodeCount - 1];
    if (closes) {
        *end = {PATHNODE_LINE | PATHNODE_CLOSING, DoubleToFix(first.x), DoubleToFix(first.y)};
    } else {
        const int closable = last.type == PATHNODE_CURVE || last.type == PATHNODE_LINE;
        end->type = closable ? static_cast<uint16_t>(last.type | PATHNODE_CLOSING) : uint16_t{0};
    }
    path->nodes[0].type = PATHNODE_START;
    return path;
}

ZRPATHAPI PATHREC *ZrPathChainZrPath(uint32_t count, PATHREC **paths)
{
    if (count == 0 || !paths || std::find(paths, paths + count, nullptr) != paths + count) return nullptr;
    for (uint32_t i = 0; i + 1 < count; i++) {
        ChainLink(joinChain, paths[i], paths[i + 1]);
        ChainLink(tableChain, paths[i], paths[i + 1]);
    }
    return paths[0];
}

ZRPATHAPI int32_t ZrPathChainPaths(PATHREC **chain, PATHREC *added)
{
    if (!chain || !added) return 0;
    if (!*chain)
        *chain = added;
    else if (PathChainFirst(*chain) != PathChainFirst(added)) /* what is in the chain already would make it a ring */
        ChainLink(tableChain, PathChainLast(*chain), PathChainFirst(added));
    return 1;
}

ZRPATHAPI int32_t IsOnlyPrimitive(const PATHREC *path)
{
    if (!path || path->primitive == 0) return 0;
    return !path->nextPath || path->nextPath->flags == PATHREC_ENVELOPE;
}

} // extern "C"

} // namespace zr32
