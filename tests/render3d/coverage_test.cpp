/* coverage_test.cpp - both lattice tables entry by entry, and masks against the middles of the sub-pixels. */
#include "render3d/coverage.h"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace zr32;

namespace {

/* Where the line through (ax, ay) and (bx, by), not level, crosses y. */
double LineX(int ax, int ay, int bx, int by, double y)
{
    return ax + static_cast<double>(bx - ax) * (y - ay) / (by - ay);
}

TEST(Coverage, EdgeMaskTblEntryByEntry)
{
    EdgeTablesBuild();
    for (int y0 = 0; y0 <= 4; y0++)
        for (int x0 = 0; x0 <= 8; x0++)
            for (int y1 = 0; y1 <= 4; y1++)
                for (int x1 = 0; x1 <= 8; x1++) {
                    uint32_t want = 0;
                    for (int row = 0; row < 4; row++) {
                        if (row < std::min(y0, y1) || row >= std::max(y0, y1)) continue;
                        const double x = LineX(x0, y0, x1, y1, row + 0.5);
                        uint32_t byte = 0;
                        for (int column = 0; column < 8; column++)
                            if (column + 0.5 > x + 1e-9) byte |= 0x80u >> column;
                        want |= byte << (8 * row);
                    }
                    ASSERT_EQ(want, EdgeMaskTbl[y0][x0][y1][x1]) << x0 << "," << y0 << " " << x1 << "," << y1;
                }
}

TEST(Coverage, EdgeSideTblEntryByEntry)
{
    EdgeTablesBuild();
    for (int y0 = 0; y0 <= 4; y0++)
        for (int x0 = 0; x0 <= 8; x0++)
            for (int y1 = 0; y1 <= 4; y1++)
                for (int x1 = 0; x1 <= 8; x1++) {
                    const bool border =
                        (x0 == 0 || x0 == 8 || y0 == 0 || y0 == 4) && (x1 == 0 || x1 == 8 || y1 == 0 || y1 == 4);
                    const bool point = x0 == x1 && y0 == y1;
                    for (int row = -1; row <= 4; row++)
                        for (int column = -4; column <= 11; column++) {
                            bool want = false;
                            if (border && !point)
                                want =
                                    y0 == y1 ? row + 0.5 > y0 : column + 0.5 > LineX(x0, y0, x1, y1, row + 0.5) + 1e-9;
                            const int word = EdgeSideTbl[y0][x0][y1][x1][row + 1];
                            ASSERT_EQ(want, (word >> (11 - column) & 1) != 0)
                                << x0 << "," << y0 << " " << x1 << "," << y1 << " at " << column << "," << row;
                        }
                }
}

TEST(Coverage, TablesAgreeInsideThePixelForLinesFromTopToBottom)
{
    EdgeTablesBuild();
    for (int x0 = 0; x0 <= 8; x0++)
        for (int x1 = 0; x1 <= 8; x1++) {
            uint32_t mask = 0;
            for (int row = 0; row < 4; row++)
                mask |= static_cast<uint32_t>(EdgeSideTbl[0][x0][4][x1][row + 1] >> 4 & 0xFF) << (8 * row);
            EXPECT_EQ(EdgeMaskTbl[0][x0][4][x1], mask);
        }
}

/* The plain second form: each middle against the three sides; middles closer than eps to a side may go either way. */
void BruteTriangle(const POINTDB *p, double eps, uint32_t *sure, uint32_t *maybe)
{
    const double area = (p[1].x - p[0].x) * (p[2].y - p[0].y) - (p[1].y - p[0].y) * (p[2].x - p[0].x);
    *sure = *maybe = 0;
    for (int row = 0; row < 4; row++)
        for (int column = 0; column < 8; column++) {
            const POINTDB m = {(column + 0.5) / 8, (row + 0.5) / 4};
            double least = 1e300;
            for (int i = 0; i < 3; i++) {
                const POINTDB a = p[i], d = p[(i + 1) % 3] - a;
                const double side = (d.x * (m.y - a.y) - d.y * (m.x - a.x)) * (area < 0 ? -1 : 1);
                least = std::min(least, side / (Length(d) + 1e-300));
            }
            const uint32_t bit = 0x80u >> column << (8 * row);
            if (least > eps) *sure |= bit;
            if (least > -eps) *maybe |= bit;
        }
}

TEST(Coverage, TriangleTakesTheMiddles)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> any(-1.5, 2.5);
    for (int i = 0; i < 20000; i++) {
        const POINTDB p[3] = {{any(random), any(random)}, {any(random), any(random)}, {any(random), any(random)}};
        uint32_t sure, maybe;
        BruteTriangle(p, 1e-9, &sure, &maybe);
        const uint32_t got = CoverTriangle(p[0], p[1], p[2]);
        ASSERT_EQ(sure, got & sure) << i;
        ASSERT_EQ(0u, got & ~maybe) << i;
    }
}

TEST(Coverage, NeighbouringTrianglesNeverOverlapAndLeaveNoGap)
{
    std::mt19937 random(8);
    std::uniform_int_distribution<int> any(-8, 16); /* often right on the middles */
    for (int i = 0; i < 5000; i++) {
        const POINTDB a = {-1, -1}, b = {3, -1}, c = {3, 3}, d = {-1, 3};
        const POINTDB m = {any(random) / 16.0, any(random) / 8.0};
        if (m.x <= -1 || m.y <= -1) continue;
        const uint32_t parts[4] = {CoverTriangle(a, b, m), CoverTriangle(b, c, m), CoverTriangle(c, d, m),
                                   CoverTriangle(d, a, m)};
        uint32_t all = 0;
        int bits = 0;
        for (const uint32_t part : parts) {
            all |= part;
            bits += std::popcount(part);
        }
        ASSERT_EQ(coverFull, all);
        ASSERT_EQ(32, bits);
    }
}

TEST(Coverage, TriangleAroundAndApart)
{
    EXPECT_EQ(coverFull, CoverTriangle({-5, -5}, {20, -5}, {-5, 20}));
    EXPECT_EQ(0u, CoverTriangle({2, 0}, {3, 0}, {2, 1}));
    EXPECT_EQ(0u, CoverTriangle({-3, 0}, {-2, 0}, {-2, 1}));
    EXPECT_EQ(0u, CoverTriangle({0.1, 0.1}, {0.9, 0.9}, {0.5, 0.5}));
    EXPECT_EQ(0u, CoverTriangle({NAN, 0}, {1, 0}, {0, 1}));
    EXPECT_EQ(0u, CoverTriangle({INFINITY, 0}, {1, 0}, {0, 1}));
}

TEST(Coverage, HalfPlaneByHand)
{
    const struct {
        const char *name;
        POINTDB at, along, inside;
        uint32_t want;
    } cases[] = {
        {"right half", {0.5, 0.5}, {0, 1}, {1.5, 0.5}, 0x0F0F0F0F},
        {"left half", {0.5, 0.5}, {0, 1}, {-0.5, 0.5}, 0xF0F0F0F0},
        {"left half, line upwards", {0.5, 0.5}, {0, -1}, {-0.5, 0.5}, 0xF0F0F0F0},
        {"bottom half", {0.2, 0.5}, {1, 0}, {0.2, 1.5}, 0xFFFF0000},
        {"top half", {0.2, 0.5}, {1, 0}, {0.2, -0.5}, 0x0000FFFF},
        {"far reference", {0.5, 0.5}, {0, 1}, {1000, 0.5}, 0x0F0F0F0F},
        {"on the left border, inside right", {0, 0.5}, {0, 1}, {1, 0.5}, 0xFFFFFFFF},
        {"on the left border, inside left", {0, 0.5}, {0, 1}, {-1, 0.5}, 0},
        {"on the bottom border, inside above", {0.5, 1}, {1, 0}, {0.5, 0}, 0xFFFFFFFF},
        {"on the bottom border, inside below", {0.5, 1}, {1, 0}, {0.5, 2}, 0},
        {"diagonal, below left", {0.5, 0.5}, {0.6, 0.6}, {0, 1}, 0xFEF8E080},
        {"touches a corner, inside away from it", {0, 0}, {0.6, -0.6}, {-1, -1}, 0},
        {"touches a corner, inside across", {0, 0}, {0.6, -0.6}, {1, 1}, 0xFFFFFFFF},
        {"misses the pixel, inside has it", {2, 0}, {0, 1}, {1, 0}, 0xFFFFFFFF},
        {"misses the pixel, inside has it not", {2, 0}, {0, 1}, {3, 0}, 0},
        {"no direction", {0.5, 0.5}, {0, 0}, {1, 1}, 0},
        {"no number", {NAN, 0.5}, {0, 1}, {1, 1}, 0},
        {"infinite", {0.5, 0.5}, {0, 1}, {INFINITY, 1}, 0},
    };
    for (const auto &c : cases) EXPECT_EQ(c.want, CoverHalfPlane(c.at, c.along, c.inside)) << c.name;
}

TEST(Coverage, HalfPlanesAreNearTheirArea)
{
    std::mt19937 random(9);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int i = 0; i < 20000; i++) {
        const POINTDB at = {unit(random), unit(random)};
        const double angle = unit(random) * 6.2831853;
        const POINTDB along = {std::cos(angle), std::sin(angle)};
        const POINTDB inside = at + POINTDB{-along.y, along.x};
        int area = 0;
        for (int y = 0; y < 64; y++)
            for (int x = 0; x < 64; x++) {
                const POINTDB m = {(x + 0.5) / 64, (y + 0.5) / 64};
                area += Dot(m - at, inside - at) > 0;
            }
        const uint32_t mask = CoverHalfPlane(at, along, inside);
        /* both ends move by at most half a lattice step, then 32 sub-pixels count for the area */
        ASSERT_NEAR(area / 4096.0, std::popcount(mask) / 32.0, 0.16) << at.x << "," << at.y << " " << angle;
        ASSERT_EQ(~mask, CoverHalfPlane(at, along, at + POINTDB{along.y, -along.x})) << i;
    }
}

} // namespace
