/* coverage.h - which of a pixel's 32 sub-pixels an edge or a triangle covers.
 *
 * A coverage mask has 4 rows of 8 sub-pixels, one row a byte, the top row in the low byte, bit 7 of a byte leftmost:
 *
 *      lattice x  0   1   2   3   4   5   6   7   8
 *   lattice y 0   +---+---+---+---+---+---+---+---+
 *                 | 7 | 6 | 5 | 4 | 3 | 2 | 1 | 0 |   byte 0, bits 0 to 7
 *             1   +---+---+---+---+---+---+---+---+
 *                 | 15| 14| 13| 12| 11| 10| 9 | 8 |   byte 1
 *             2   +---+---+---+---+---+---+---+---+
 *                 | 23| 22| 21| 20| 19| 18| 17| 16|   byte 2
 *             3   +---+---+---+---+---+---+---+---+
 *                 | 31| 30| 29| 28| 27| 26| 25| 24|   byte 3
 *             4   +---+---+---+---+---+---+---+---+
 *
 * Here a 1 bit is covered; in the masks that come from the scan converter a 1 bit lies outside. A sub-pixel counts by
 * its middle. Positions are fractions of the pixel: (0, 0) is its left top, (1, 1) its right bottom corner.
 *
 * Two tables, built once, answer for segments between lattice points, indexed [y0][x0][y1][x1].
 */
#ifndef ZR32_COVERAGE_H
#define ZR32_COVERAGE_H

#include "geometry/vector.h"
#include <cstdint>

namespace zr32 {

constexpr int subColumns = 8;
constexpr int subRows = 4;
constexpr uint32_t coverFull = 0xFFFFFFFFu;

/* The side table's grid: the pixel's own with four columns and one row more on each side. */
constexpr int sideFirstColumn = -4;
constexpr int sideLastColumn = 11;
constexpr int sideFirstRow = -1;
constexpr int sideLastRow = 4;
constexpr int sideRows = sideLastRow - sideFirstRow + 1;

/* In each row that the segment passes, the sub-pixels to the right of it; other rows and level segments 0. The
 * exclusive or over the sides of a closed outline is what it encloses. */
extern uint32_t EdgeMaskTbl[subRows + 1][subColumns + 1][subRows + 1][subColumns + 1];

/* For points on the pixel's border: in the six rows of the wider grid, the sub-pixels to the right of the whole line
 * (below it when it is level), bit 15 the leftmost. Two equal points have no line and no bits, nor have entries of
 * points off the border. */
extern uint16_t EdgeSideTbl[subRows + 1][subColumns + 1][subRows + 1][subColumns + 1][sideRows];

/* Fills both tables on its first call. */
void EdgeTablesBuild();

/* The half plane on the side of inside of the line through at along the unit vector along. The line should pass the
 * pixel; where it misses it, or cuts off less than the lattice can tell, the pixel's centre decides for all. */
uint32_t CoverHalfPlane(const POINTDB &at, const POINTDB &along, const POINTDB &inside);

/* The triangle, whose corners may lie anywhere. */
uint32_t CoverTriangle(const POINTDB &a, const POINTDB &b, const POINTDB &c);

} // namespace zr32

#endif
