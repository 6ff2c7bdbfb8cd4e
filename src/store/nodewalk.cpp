/* nodewalk.cpp - the reader of nodes: whole segments of one record, pulled one by one.
 *
 * Comes in: a record and a placement. Goes out: moves, lines, curves and shapes with placed points. The only place
 * that knows how far a kind steps is NodeStep; a walk ends at what it does not know and never reads behind the last
 * node.
 */
#include "store/store.h"

namespace zr32 {

void SegWalkStart(const PATHREC *path, const PLACEMENT &place, SEGWALK *walk)
{
    *walk = {path, place, 0, {0, 0}};
}

int SegWalkNext(SEGWALK *walk, SEGMENT *segment)
{
    if (!walk->path || walk->index >= walk->path->nodeCount) return 0;
    const PATHNODE *node = walk->path->nodes + walk->index;
    const uint32_t kind = NodeKind(node);
    const uint32_t step = NodeStep(kind);
    if (step == 0 || walk->path->nodeCount - walk->index < step) return 0;

    segment->kind = kind;
    segment->index = walk->index;
    segment->node = node;
    segment->p[0] = walk->current;
    walk->index += step;
    segment->next = walk->index;

    switch (kind) {
    case PATHNODE_START: segment->p[0] = walk->current = PlaceNode(walk->place, node); break;
    case PATHNODE_LINE: segment->p[1] = walk->current = PlaceNode(walk->place, node); break;
    case PATHNODE_CURVE:
        segment->p[1] = PlaceNode(walk->place, node);
        segment->p[2] = PlaceNode(walk->place, node + 1);
        segment->p[3] = walk->current = PlaceNode(walk->place, node + 2);
        break;
    default: break;
    }
    return 1;
}

} // namespace zr32
