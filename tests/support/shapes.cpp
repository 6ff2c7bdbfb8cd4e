/* shapes.cpp - small records for tests, see shapes.h. */
#include "support/shapes.h"

#include "store/store.h"

namespace zr32test {

PATHREC *MakePath(const std::vector<TESTNODE> &nodes)
{
    ZrPathInit();
    PATHREC *path = zr32::RecordAlloc(nodes.size());
    path->nodeCount = static_cast<uint32_t>(nodes.size());
    for (size_t i = 0; i < nodes.size(); i++)
        path->nodes[i] = {nodes[i].type, DbToFix(nodes[i].x), DbToFix(nodes[i].y)};
    return path;
}

PATHREC *MakeBox(double left, double top, double right, double bottom, bool clockwise)
{
    if (clockwise)
        return MakePath({{6, left, top}, {2, right, top}, {2, right, bottom}, {2, left, bottom}, {3, left, top}});
    return MakePath({{6, left, top}, {2, left, bottom}, {2, right, bottom}, {2, right, top}, {3, left, top}});
}

PATHREC *MakeCircle(double cx, double cy, double radius)
{
    const double r = radius;
    const double k = 0.5522847 * r;
    return MakePath({{6, cx, cy + r},
                     {4, cx + k, cy + r},
                     {4, cx + r, cy + k},
                     {4, cx + r, cy},
                     {4, cx + r, cy - k},
                     {4, cx + k, cy - r},
                     {4, cx, cy - r},
                     {4, cx - k, cy - r},
                     {4, cx - r, cy - k},
                     {4, cx - r, cy},
                     {4, cx - r, cy + k},
                     {4, cx - k, cy + r},
                     {5, cx, cy + r}});
}

} // namespace zr32test
