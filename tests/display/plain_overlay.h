/* plain_overlay.h - a second, plain form of stepping a record into the display buffer, to compare the fast one with. */
#ifndef ZR32_TESTS_PLAIN_OVERLAY_H
#define ZR32_TESTS_PLAIN_OVERLAY_H

#include <vector>
#include <zr32path.h>

namespace zr32test {

struct PLAINPLANE {
    int width;
    int height;
    std::vector<uint8_t> bytes;
    /* union of the rectangles of what was stepped; not any: empty */
    bool any;
    int left, top, right, bottom;
};

PLAINPLANE PlainPlane(const COORDSTRUCT &view);

/* mode: 0 and 3 add, 1 and 7 subtract; 1 and 3 only the segments at selected nodes of a record in node editing. */
void PlainOutline(const PATHREC *path, const COORDSTRUCT &view, int mode, PLAINPLANE *plane);

} // namespace zr32test

#endif
