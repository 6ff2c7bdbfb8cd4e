/* nodes.h - visits the points of a record that edits change.
 *
 * Moves, sizes, warps and 3D transforms all map start, line and curve nodes, a curve's three as plain points, and step
 * over shapes, whose nodes hold other things than points as well and carry no marks. The walk ends where SEGWALK ends:
 * at a kind that no walker knows, or where a segment would reach behind the last node.
 */
#ifndef ZR32_NODES_H
#define ZR32_NODES_H

#include "store/store.h"

namespace zr32 {

constexpr int KindIsShape(uint32_t kind)
{
    return kind == PATHNODE_ELLIPSE || kind == PATHNODE_RECTANGLE || kind == PATHNODE_POLYGON;
}

/* Calls visit(PATHNODE *) for each point. RECORD is PATHREC, or const PATHREC to read only. */
template <typename RECORD, typename VISIT> void ForEachPoint(RECORD *path, VISIT visit)
{
    for (uint32_t i = 0; i < path->nodeCount;) {
        const uint32_t kind = NodeKind(&path->nodes[i]);
        const uint32_t step = NodeStep(kind);
        if (step == 0 || path->nodeCount - i < step) return;
        if (!KindIsShape(kind))
            for (uint32_t k = 0; k < step; k++) visit(&path->nodes[i + k]);
        i += step;
    }
}

} // namespace zr32

#endif
