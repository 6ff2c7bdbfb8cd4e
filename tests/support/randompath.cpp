/* randompath.cpp - seeded random records, see randompath.h. */
#include "support/randompath.h"

#include "support/shapes.h"

namespace zr32test {

PATHREC *RandomPath(RANDOM &random, const RANDOMSHAPE &shape)
{
    std::vector<TESTNODE> nodes;
    const auto place = [&] {
        const double whole = Pick(random, shape.low, shape.high);
        return Pick(random, 0, 3) == 0 ? whole : whole + Pick(random, 0, 0xFFFF) / 65536.0;
    };
    const auto add = [&](uint16_t type) { nodes.push_back({type, place(), place()}); };
    const int runs = shape.closed ? 1 : Pick(random, 1, 3);
    for (int run = 0; run < runs; run++) {
        const size_t start = nodes.size();
        add(PATHNODE_START);
        for (int left = Pick(random, 1, shape.segments); left > 0; left--) {
            const int choice = Pick(random, 0, shape.shapes ? 12 : 8);
            if (choice < 4) {
                add(PATHNODE_LINE);
                if (Pick(random, 0, 15) == 0) nodes.back() = {PATHNODE_LINE, nodes.end()[-2].x, nodes.end()[-2].y};
            } else if (choice < 9) {
                for (int i = 0; i < 3; i++) add(PATHNODE_CURVE);
                if (Pick(random, 0, 7) == 0) nodes.back().type |= PATHNODE_SMOOTH;
            } else if (choice < 10) {
                add(PATHNODE_RECTANGLE);
            } else if (choice < 11) {
                add(PATHNODE_ELLIPSE);
                nodes.push_back({PATHNODE_LINE, 0.7, 0});
            } else {
                nodes.push_back({PATHNODE_POLYGON, static_cast<double>(Pick(random, 0, 9)),
                                 static_cast<double>(Pick(random, -1, 20))});
                add(PATHNODE_LINE);
            }
        }
        const bool curved = (nodes.back().type & PATHNODE_KINDMASK) == PATHNODE_CURVE;
        const bool plain = curved || (nodes.back().type & PATHNODE_KINDMASK) == PATHNODE_LINE;
        if (plain && (shape.closed || Pick(random, 0, 1) == 0)) {
            if (!curved) nodes.push_back({PATHNODE_LINE, 0, 0});
            nodes.back() = {static_cast<uint16_t>(nodes.back().type | PATHNODE_CLOSING), nodes[start].x,
                            nodes[start].y};
        }
    }
    if (shape.marks)
        for (TESTNODE &node : nodes)
            if (Pick(random, 0, 2) == 0) node.type |= PATHNODE_SELECTED;
    PATHREC *path = MakePath(nodes);
    if (shape.marks) path->flags = PATHREC_NODEEDIT;
    return path;
}

} // namespace zr32test
