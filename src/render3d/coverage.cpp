/* coverage.cpp - coverage masks of half planes and triangles, see coverage.h.
 *
 * A half plane is one look-up: its line is cut to the pixel, the two border points go to the lattice, and the table has
 * the mask. Whether that mask or its inverse is meant is asked of the same entry, at a point known to be inside.
 */
#include "render3d/coverage.h"

#include "frame/frame.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

uint32_t EdgeMaskTbl[subRows + 1][subColumns + 1][subRows + 1][subColumns + 1];
uint16_t EdgeSideTbl[subRows + 1][subColumns + 1][subRows + 1][subColumns + 1][sideRows];

namespace {

struct LATTICEPOINT {
    int x;
    int y;
};

int OnBorder(const LATTICEPOINT &p)
{
    return p.x == 0 || p.x == subColumns || p.y == 0 || p.y == subRows;
}

/* 1 when the middle of sub-pixel (column, row) lies to the right of the line, or below a level one. In whole numbers,
 * twice the lattice, so that a middle on the line counts the same from both ends. */
int MiddleIsRight(LATTICEPOINT a, LATTICEPOINT b, int column, int row)
{
    if (a.y > b.y) std::swap(a, b);
    const int x = 2 * column + 1 - 2 * a.x;
    const int y = 2 * row + 1 - 2 * a.y;
    if (a.y == b.y) return a.x != b.x && y > 0;
    return x * (b.y - a.y) > y * (b.x - a.x);
}

uint32_t MaskOfSegment(const LATTICEPOINT &a, const LATTICEPOINT &b)
{
    uint32_t mask = 0;
    for (int row = std::min(a.y, b.y); row < std::max(a.y, b.y); row++) {
        for (int column = 0; column < subColumns; column++)
            if (MiddleIsRight(a, b, column, row)) mask |= 0x80u >> column << 8 * row;
    }
    return mask;
}

uint16_t SideOfRow(const LATTICEPOINT &a, const LATTICEPOINT &b, int row)
{
    uint32_t bits = 0;
    for (int column = sideFirstColumn; column <= sideLastColumn; column++)
        bits = bits << 1 | static_cast<uint32_t>(MiddleIsRight(a, b, column, row));
    return static_cast<uint16_t>(bits);
}

/* Cuts the line at + t x along to the unit square; 0 when it misses. */
int CutToPixel(const POINTDB &at, const POINTDB &along, POINTDB *first, POINTDB *last)
{
    constexpr double reach = 10; /* pixels either way, far more than a line through the pixel needs */
    double t0 = -reach;
    double t1 = reach;
    const double start[2] = {at.x, at.y};
    const double step[2] = {along.x, along.y};
    for (int axis = 0; axis < 2; axis++) {
        if (step[axis] == 0) {
            if (start[axis] < 0 || start[axis] > 1) return 0;
            continue;
        }
        const double low = -start[axis] / step[axis];
        const double high = (1 - start[axis]) / step[axis];
        t0 = std::max(t0, std::min(low, high));
        t1 = std::min(t1, std::max(low, high));
    }
    if (!(t0 <= t1)) return 0;
    *first = at + along * t0;
    *last = at + along * t1;
    return 1;
}

LATTICEPOINT ToLattice(const POINTDB &p)
{
    return {std::clamp(TruncInt(p.x * subColumns + 0.5), 0, subColumns),
            std::clamp(TruncInt(p.y * subRows + 0.5), 0, subRows)};
}

double Side(const POINTDB &at, const POINTDB &along, const POINTDB &p)
{
    return along.x * (p.y - at.y) - along.y * (p.x - at.x);
}

/* The table's answer at the sub-pixel that holds the point, pulled towards the line until the table knows it. */
int SideBit(const uint16_t *entry, const POINTDB &at, POINTDB inside)
{
    constexpr int pulls = 60;
    for (int i = 0; i < pulls; i++) {
        const double column = std::floor(inside.x * subColumns);
        const double row = std::floor(inside.y * subRows);
        if (column >= sideFirstColumn && column <= sideLastColumn && row >= sideFirstRow && row <= sideLastRow)
            return entry[static_cast<int>(row) - sideFirstRow] >> (sideLastColumn - static_cast<int>(column)) & 1;
        inside = LerpPoint(inside, at, 0.5);
    }
    return 0;
}

/* Exclusive or of what lies to the right of a side: one piece a row, at the lattice column that the side has at the
 * row's middle. A side left of the pixel runs along its left border. */
uint32_t CoverRightOf(POINTDB a, POINTDB b)
{
    if (a.y > b.y) std::swap(a, b);
    uint32_t mask = 0;
    for (int row = 0; row < subRows; row++) {
        const double middle = (row + 0.5) / subRows;
        if (!(a.y <= middle && middle < b.y)) continue;
        const double x = a.x + (b.x - a.x) * ((middle - a.y) / (b.y - a.y));
        const int column = static_cast<int>(std::clamp(std::floor(x * subColumns + 0.5), 0.0, double(subColumns)));
        mask ^= EdgeMaskTbl[row][column][row + 1][column];
    }
    return mask;
}

int Finite(const POINTDB &p)
{
    return std::isfinite(p.x) && std::isfinite(p.y);
}

} // namespace

void EdgeTablesBuild()
{
    static int built = 0;
    if (built) return;
    built = 1;
    constexpr int points = (subRows + 1) * (subColumns + 1);
    for (int i = 0; i < points * points; i++) {
        const LATTICEPOINT a = {i / points % (subColumns + 1), i / points / (subColumns + 1)};
        const LATTICEPOINT b = {i % points % (subColumns + 1), i % points / (subColumns + 1)};
        EdgeMaskTbl[a.y][a.x][b.y][b.x] = MaskOfSegment(a, b);
        if (!OnBorder(a) || !OnBorder(b)) continue;
        for (int row = sideFirstRow; row <= sideLastRow; row++)
            EdgeSideTbl[a.y][a.x][b.y][b.x][row - sideFirstRow] = SideOfRow(a, b, row);
    }
}

uint32_t CoverHalfPlane(const POINTDB &at, const POINTDB &along, const POINTDB &inside)
{
    if (!Finite(at) || !Finite(along) || !Finite(inside) || (along.x == 0 && along.y == 0)) return 0;
    EdgeTablesBuild();
    POINTDB first;
    POINTDB last;
    LATTICEPOINT a = {0, 0};
    LATTICEPOINT b = {0, 0};
    if (CutToPixel(at, along, &first, &last)) {
        a = ToLattice(first);
        b = ToLattice(last);
    }
    if (a.x == b.x && a.y == b.y) {
        const POINTDB centre = {0.5, 0.5};
        return Side(at, along, centre) * Side(at, along, inside) > 0 ? coverFull : 0;
    }
    const uint16_t *entry = EdgeSideTbl[a.y][a.x][b.y][b.x];
    uint32_t mask = 0;
    for (int row = 0; row < subRows; row++) mask |= (entry[row - sideFirstRow] >> 4 & 0xFFu) << 8 * row;
    return SideBit(entry, at, inside) ? mask : ~mask;
}

uint32_t CoverTriangle(const POINTDB &a, const POINTDB &b, const POINTDB &c)
{
    if (!Finite(a) || !Finite(b) || !Finite(c)) return 0;
    EdgeTablesBuild();
    return CoverRightOf(a, b) ^ CoverRightOf(b, c) ^ CoverRightOf(c, a);
}

} // namespace zr32
