/* randompath.h - seeded random records for property tests. */
#ifndef ZR32_TESTS_RANDOMPATH_H
#define ZR32_TESTS_RANDOMPATH_H

#include <random>
#include <zr32path.h>

namespace zr32test {

using RANDOM = std::mt19937;

inline int Pick(RANDOM &random, int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(random);
}

struct RANDOMSHAPE {
    int low = -50; /* coordinates in image pixels */
    int high = 150;
    int segments = 12;   /* at most */
    bool shapes = false; /* shape nodes among the segments */
    bool marks = false;  /* selected bits on random nodes, and flags for node editing */
    bool closed = false; /* always ends at its start */
};

/* One to three runs of lines and curves at fractional places, some of them closed, some lines without length. */
PATHREC *RandomPath(RANDOM &random, const RANDOMSHAPE &shape);

} // namespace zr32test

#endif
