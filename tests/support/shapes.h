/* shapes.h - small records for tests, built through the exports. */
#ifndef ZR32_TESTS_SHAPES_H
#define ZR32_TESTS_SHAPES_H

#include "platform/platform.h"
#include <vector>
#include <zr32path.h>

namespace zr32test {

struct TESTNODE {
    uint16_t type;
    double x;
    double y;
};

/* A record of exact size with the given nodes; starts the library. */
PATHREC *MakePath(const std::vector<TESTNODE> &nodes);

/* A closed rectangle of lines, clockwise on the screen (y downward), or the other way round. */
PATHREC *MakeBox(double left, double top, double right, double bottom, bool clockwise = true);

/* A closed circle of four curves. */
PATHREC *MakeCircle(double cx, double cy, double radius);

} // namespace zr32test

#endif
