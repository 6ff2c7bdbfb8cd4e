/* bandfill_test.cpp - masks of filled paths: values worked out by hand, and random input against the plain form. */
#include "raster/plain_scan.h"
#include "raster/raster.h"
#include "support/shapes.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

using namespace zr32test;

namespace {

constexpr int aaOf[3] = {0, 999, 1};

/* Lines and curves in any order, some runs closed and some not, some points on the sample grid. */
PATHREC *RandomPath(std::mt19937 &random, double extent, double offset)
{
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    const auto place = [&] {
        const double v = below(100000) / 100000.0 * extent + offset;
        switch (below(5)) {
        case 0: return std::floor(v);
        case 1: return std::floor(v * 16) / 16;
        default: return v;
        }
    };
    std::vector<TESTNODE> nodes;
    double lastX = 0;
    for (unsigned run = 0; run < 1 + below(4); run++) {
        const double x = place(), y = place();
        nodes.push_back({6, x, y});
        for (unsigned i = 0; i < 1 + below(7); i++) {
            if (below(2)) {
                nodes.push_back({2, below(5) ? place() : lastX, place()});
            } else {
                nodes.push_back({4, place(), place()});
                nodes.push_back({4, place(), place()});
                nodes.push_back({4, below(5) ? place() : lastX, place()});
            }
            lastX = nodes.back().x;
        }
        if (below(6)) nodes.push_back({3, x, y});
    }
    return MakePath(nodes);
}

/* Both forms over the same buffer content; 1 when every byte is the same. */
void ExpectSame(PATHREC *path, int bits, int width, int height, bool evenOdd, int aaMode, ZRFIXED zoom, int left,
                int top)
{
    PATHBUF fast = ZrPathBufAlloc(bits, width, height);
    PATHBUF plain = ZrPathBufAlloc(bits, width, height);
    const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height) * (bits == 32 ? 4 : 1);
    memset(fast, 7, size);
    memset(plain, 7, size);
    ASSERT_EQ(1, zr32::PathBandFill(path, fast, evenOdd, aaMode, 0, zoom, left, top));
    PlainBandFill(path, plain, evenOdd, aaMode, FixToDb(zoom), left, top);
    size_t differ = 0;
    for (size_t i = 0; i < size; i++) differ += fast[i] != plain[i];
    EXPECT_EQ(0u, differ);
    ZrPathBufFree(fast);
    ZrPathBufFree(plain);
}

TEST(BandFill, RandomPathsEqualThePlainForm)
{
    for (unsigned seed = 0; seed < 600; seed++) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const double extent = seed % 7 == 0 ? 400 : 60;
        PATHREC *path = RandomPath(random, extent, seed % 5 == 0 ? -20 : 3);
        PATHREC *second = RandomPath(random, extent, 3);
        path->nextJoin = second;
        const int size = static_cast<int>(extent) + 8;
        ExpectSame(path, seed % 4 == 3 ? 32 : 8, size, size - static_cast<int>(seed % 3), random() % 2, aaOf[seed % 3],
                   static_cast<ZRFIXED>(seed % 6 ? 0x10000 : random() % 0x30000), static_cast<int>(random() % 9) - 4,
                   static_cast<int>(random() % 9) - 4);
        if (HasFailure()) return;
        ZrPathDeletePtr(path, 0);
        ZrPathDeletePtr(second, 0);
    }
}

} // namespace
