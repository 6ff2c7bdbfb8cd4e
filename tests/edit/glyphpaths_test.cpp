/* glyphpaths_test.cpp - hand-made outline data to nodes: placing, raising, closing, the pen, and data that lies. */
#include "edit/text.h"
#include "frame/faults.h"
#include "store/store.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using namespace zr32;

namespace {

constexpr ZRFIXED one = 0x10000;

using BYTES = std::vector<uint8_t>;

template <typename WORD_> void Put(WORD_ word, BYTES *bytes)
{
    uint8_t raw[sizeof(word)];
    memcpy(raw, &word, sizeof(word));
    bytes->insert(bytes->end(), raw, raw + sizeof(word));
}

struct CURVE {
    uint16_t type; /* 1 lines, 2 quadratic spline */
    std::vector<ZRPOINTFX> points;
};

/* The bytes of one contour, y upward. */
BYTES Contour(ZRPOINTFX start, const std::vector<CURVE> &curves)
{
    BYTES bytes;
    Put(uint32_t{0}, &bytes);
    Put(uint32_t{24}, &bytes);
    Put(start, &bytes);
    for (const CURVE &curve : curves) {
        Put(curve.type, &bytes);
        Put(static_cast<uint16_t>(curve.points.size()), &bytes);
        for (const ZRPOINTFX &p : curve.points) Put(p, &bytes);
    }
    const uint32_t size = static_cast<uint32_t>(bytes.size());
    memcpy(bytes.data(), &size, sizeof(size));
    return bytes;
}

BYTES Join(const BYTES &a, const BYTES &b)
{
    BYTES both = a;
    both.insert(both.end(), b.begin(), b.end());
    return both;
}

struct GLYPH {
    BYTES outline;
    int32_t a;
    uint32_t b;
    int32_t c;
};

/* A table as the platform's fonts would give it; blocks of exactly the data's size. */
GLYPHTABLE *Table(const std::vector<GLYPH> &glyphs)
{
    ZrPathInit();
    const size_t size = offsetof(GLYPHTABLE, glyphs) + glyphs.size() * sizeof(GLYPHENTRY);
    GLYPHTABLE *table = static_cast<GLYPHTABLE *>(PathHeapAlloc(PathHeap(), heapZero, size));
    table->count = static_cast<uint32_t>(glyphs.size());
    for (size_t i = 0; i < glyphs.size(); i++) {
        GLYPHENTRY *entry = &table->glyphs[i];
        const BYTES &outline = glyphs[i].outline;
        if (!outline.empty()) {
            entry->outline = static_cast<uint8_t *>(PathHeapAlloc(PathHeap(), 0, outline.size()));
            memcpy(entry->outline, outline.data(), outline.size());
            entry->outlineSize = static_cast<uint32_t>(outline.size());
        }
        entry->abcA = glyphs[i].a;
        entry->abcB = glyphs[i].b;
        entry->abcC = glyphs[i].c;
    }
    return table;
}

PATHREC *Paths(const std::vector<GLYPH> &glyphs, int32_t vertical = 0)
{
    GLYPHTABLE *table = Table(glyphs);
    PATHREC *path = nullptr;
    EXPECT_EQ(GlyphTableToPaths(table, vertical, &path), 1);
    GlyphTableFree(table);
    return path;
}

void ExpectNode(const PATHREC *path, uint32_t index, uint16_t type, ZRFIXED x, ZRFIXED y)
{
    ASSERT_LT(index, path->nodeCount);
    EXPECT_EQ(uint16_t{path->nodes[index].type}, type) << "type of node " << index;
    EXPECT_EQ(ZRFIXED{path->nodes[index].x}, x) << "x of node " << index;
    EXPECT_EQ(ZRFIXED{path->nodes[index].y}, y) << "y of node " << index;
}

size_t ChainLength(const PATHREC *path)
{
    size_t n = 0;
    for (; path; path = path->nextJoin) n++;
    return n;
}

const BYTES triangle = Contour({0, 0}, {{1, {{2 * one, 0}, {2 * one, 2 * one}}}});

} // namespace

TEST(GlyphPaths, LinesTurnYOverAndAClosingLineIsAdded)
{
    PATHREC *path = Paths({{Contour({one, 2 * one}, {{1, {{4 * one, 2 * one}, {4 * one, 9 * one}}}}), 0, 5, 0}});
    ASSERT_NE(path, nullptr);
    ASSERT_EQ(path->nodeCount, 4u);
    ExpectNode(path, 0, 6, one, -2 * one);
    ExpectNode(path, 1, 2, 4 * one, -2 * one);
    ExpectNode(path, 2, 2, 4 * one, -9 * one);
    ExpectNode(path, 3, 3, one, -2 * one);
    EXPECT_EQ(path->flags, 0u);
    EXPECT_EQ(path->nextPath, nullptr);
    EXPECT_EQ(path->prevJoin, nullptr);
    EXPECT_EQ(RecordRoom(path), 4u); /* trimmed */
    EXPECT_EQ(PathHeapSize(PathHeap(), 1, path), RecordBlockSize(4));
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, LineThatEndsOnTheStartIsTheClosingLine)
{
    PATHREC *path = Paths({{Contour({0, 0}, {{1, {{one, 0}, {one, one}, {0, 0}}}}), 0, 0, 0}});
    ASSERT_EQ(path->nodeCount, 4u);
    ExpectNode(path, 3, 3, 0, 0);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, CurveThatEndsOnTheStartIsTheClosingCurve)
{
    PATHREC *path = Paths({{Contour({0, 0}, {{1, {{3 * one, 0}}}, {2, {{3 * one, 3 * one}, {0, 0}}}}), 0, 0, 0}});
    ASSERT_EQ(path->nodeCount, 5u);
    ExpectNode(path, 1, 2, 3 * one, 0);
    /* (3,0) and (3,-3): a third of the way from the control point. */
    ExpectNode(path, 2, 4, 3 * one, -2 * one);
    ExpectNode(path, 3, 4, 2 * one, -2 * one);
    ExpectNode(path, 4, 5, 0, 0);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, QuadraticOfThreePointsHasSixNodesTheThirdSmooth)
{
    PATHREC *path = Paths({{Contour({0, 0}, {{2, {{6 * one, 0}, {6 * one, 6 * one}, {12 * one, 6 * one}}}}), 0, 0, 0}});
    ASSERT_EQ(path->nodeCount, 8u); /* start, six, closing line */
    ExpectNode(path, 1, 4, 4 * one, 0);
    ExpectNode(path, 2, 4, 6 * one, -one);
    ExpectNode(path, 3, 0x2004, 6 * one, -3 * one);
    ExpectNode(path, 4, 4, 6 * one, -5 * one);
    ExpectNode(path, 5, 4, 8 * one, -6 * one);
    ExpectNode(path, 6, 4, 12 * one, -6 * one);
    ExpectNode(path, 7, 3, 0, 0);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, ThirdsAndHalvesAreCutTowardsZeroAfterPlacing)
{
    /* y is turned over first: controls at -1 and -2, end at -4 (all in 1/65536). */
    PATHREC *path = Paths({{Contour({0, 0}, {{2, {{0, 1}, {0, 2}, {0, 4}}}}), 0, 0, 0}});
    ExpectNode(path, 3, 0x2004, 0, -1); /* (-1 - 2) / 2 */
    ExpectNode(path, 1, 4, 0, 0);       /* (0 - 2) / 3 */
    ExpectNode(path, 2, 4, 0, -1);      /* (-1 - 2) / 3 */
    ExpectNode(path, 4, 4, 0, -1);      /* (-1 - 4) / 3 */
    ExpectNode(path, 5, 4, 0, -2);      /* (-4 - 4) / 3 */
    ExpectNode(path, 6, 4, 0, -4);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, PenIsAddedBeforeRaisingAndFractionsStay)
{
    const BYTES glyph = Contour({one / 2, one / 4}, {{2, {{one, 0}, {2 * one, one}}}});
    PATHREC *path = Paths({{{}, 3, 4, -1}, {glyph, 0, 0, 0}});
    ExpectNode(path, 0, 6, 6 * one + one / 2, -one / 4);
    /* from (6.5, -0.25) to control (7, 0): thirds of placed values */
    ExpectNode(path, 1, 4, static_cast<ZRFIXED>((int64_t{6 * one + one / 2} + 2 * int64_t{7 * one}) / 3),
               (-one / 4) / 3);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, PenAdvancesAndVerticalTextAdvancesDownward)
{
    PATHREC *across = Paths({{triangle, 1, 5, -2}, {triangle, 1, 5, -2}, {triangle, 0, 0, 0}});
    ASSERT_EQ(ChainLength(across), 3u);
    ExpectNode(across->nextJoin, 0, 6, 4 * one, 0);
    ExpectNode(across->nextJoin->nextJoin, 0, 6, 8 * one, 0);
    ZrPathDeletePtr(across, 0);

    PATHREC *down = Paths({{triangle, 1, 5, -2}, {triangle, 1, 5, -2}}, 1);
    ExpectNode(down->nextJoin, 0, 6, 0, 4 * one);
    ExpectNode(down->nextJoin, 2, 2, 2 * one, 2 * one);
    ZrPathDeletePtr(down, 0);
}

TEST(GlyphPaths, PenHasSixteenBits)
{
    PATHREC *path =
        Paths({{{}, 0, 0x7FFF, 0}, {triangle, 0, 1, 0}, {triangle, 0, 0xFFFFFFFFu, 0}, {triangle, 0, 0, 0}});
    ASSERT_EQ(ChainLength(path), 3u);
    ExpectNode(path, 0, 6, 0x7FFF0000, 0);
    ExpectNode(path->nextJoin, 0, 6, INT32_MIN, 0);
    ExpectNode(path->nextJoin->nextJoin, 0, 6, 0x7FFF0000, 0);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, ContoursAndGlyphsMakeOneChainWithoutTheBlanks)
{
    PATHREC *path = Paths({{{}, 0, 1, 0}, {Join(triangle, triangle), 0, 1, 0}, {{}, 0, 1, 0}, {triangle, 0, 1, 0}});
    ASSERT_EQ(ChainLength(path), 3u);
    EXPECT_EQ(path->prevJoin, nullptr);
    EXPECT_EQ(path->prevPath, nullptr);
    for (const PATHREC *record = path; record; record = record->nextJoin) {
        EXPECT_EQ(record->nextJoin, record->nextPath);
        EXPECT_EQ(record->prevJoin, record->prevPath);
        if (record->nextJoin) {
            EXPECT_EQ(record->nextJoin->prevJoin, record);
        }
        EXPECT_EQ(record->nextSel, nullptr);
        EXPECT_EQ(record->flags, 0u);
        EXPECT_EQ(record->primitive, 0);
    }
    ExpectNode(path, 0, 6, one, 0);
    ExpectNode(path->nextJoin->nextJoin, 0, 6, 3 * one, 0);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, BlanksAloneHaveNoPath)
{
    EXPECT_EQ(Paths({{{}, 0, 9, 0}, {{}, 0, 9, 0}}), nullptr);
    EXPECT_EQ(Paths({}), nullptr);
    PATHREC *path = reinterpret_cast<PATHREC *>(1);
    EXPECT_EQ(GlyphTableToPaths(nullptr, 0, &path), 0);
    EXPECT_EQ(path, nullptr);
    GlyphTableFree(nullptr);
}

TEST(GlyphPaths, ContourMayFillItsBlockExactly)
{
    CURVE lines = {1, {}};
    for (int i = 0; i < 98; i++) lines.points.push_back({i * one, one});
    lines.points.push_back({0, 0});
    PATHREC *path = Paths({{Contour({0, 0}, {lines}), 0, 0, 0}});
    ASSERT_EQ(path->nodeCount, 100u);
    ExpectNode(path, 99, 3, 0, 0);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, LongContourGrowsItsRecord)
{
    CURVE lines = {1, {}};
    CURVE spline = {2, {}};
    for (int i = 0; i < 250; i++) lines.points.push_back({i * one, one});
    for (int i = 0; i < 300; i++) spline.points.push_back({i * one, (i % 7) * one});
    const int64_t before = FaultLiveBlocks(ALLOC_PATHHEAP);
    PATHREC *path = Paths({{Contour({0, -one}, {lines, spline}), 0, 0, 0}});
    ASSERT_EQ(path->nodeCount, 1u + 250u + 3u * 299u + 1u);
    ExpectNode(path, 250, 2, 249 * one, -one);
    ExpectNode(path, 251 + 3 * 299 - 1, 4, 299 * one, -5 * one);
    EXPECT_EQ(PathHeapSize(PathHeap(), 1, path), RecordBlockSize(path->nodeCount));
    ZrPathDeletePtr(path, 0);
    EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), before);
}

TEST(GlyphPaths, RaisedCubicsAreTheQuadratics)
{
    std::mt19937 random(5);
    std::uniform_int_distribution<ZRFIXED> place(-400 * one, 400 * one);
    for (int n = 0; n < 50; n++) {
        std::vector<ZRPOINTFX> q;
        for (int i = 0; i < 2 + n % 6; i++) q.push_back({place(random), place(random)});
        const ZRPOINTFX start = {place(random), place(random)};
        PATHREC *path = Paths({{Contour(start, {{2, q}}), 0, 0, 0}});
        /* The quadratics one by one, in doubles, y turned over. */
        double ax = start.x, ay = -static_cast<double>(start.y);
        for (size_t k = 0; k + 1 < q.size(); k++) {
            const double cx = q[k].x, cy = -static_cast<double>(q[k].y);
            const bool last = k + 2 == q.size();
            const double ex = last ? q[k + 1].x : (cx + q[k + 1].x) / 2;
            const double ey = last ? -static_cast<double>(q[k + 1].y) : (cy - q[k + 1].y) / 2;
            const PATHNODE *c = &path->nodes[1 + 3 * k];
            const PATHNODE *before = c - 1;
            for (double t = 0; t <= 1; t += 0.125) {
                const double s = 1 - t;
                const double x =
                    s * s * s * before->x + 3 * s * s * t * c[0].x + 3 * s * t * t * c[1].x + t * t * t * c[2].x;
                const double y =
                    s * s * s * before->y + 3 * s * s * t * c[0].y + 3 * s * t * t * c[1].y + t * t * t * c[2].y;
                EXPECT_NEAR(x, s * s * ax + 2 * s * t * cx + t * t * ex, 2.0);
                EXPECT_NEAR(y, s * s * ay + 2 * s * t * cy + t * t * ey, 2.0);
            }
            ax = ex;
            ay = ey;
        }
        ZrPathDeletePtr(path, 0);
    }
}

TEST(GlyphPaths, HugeCoordinatesDoNotFault)
{
    const ZRFIXED low = INT32_MIN, high = INT32_MAX;
    PATHREC *path =
        Paths({{{}, 0, 0x7FFF, 0},
               {Contour({low, low}, {{2, {{high, high}, {low, high}, {high, low}}}, {1, {{low, high}}}}), 0, 0, 0}});
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(path->nodeCount, 9u);
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, StartAloneIsOneNode)
{
    PATHREC *path = Paths({{Contour({one, one}, {}), 0, 0, 0}});
    ASSERT_EQ(path->nodeCount, 1u);
    ExpectNode(path, 0, 7, one, -one); /* the start is its own end: the closing bit, no further node */
    EXPECT_EQ(NodeKind(&path->nodes[0]), static_cast<uint32_t>(PATHNODE_START));
    ZrPathDeletePtr(path, 0);
}

TEST(GlyphPaths, DataThatDoesNotFitItsSizeEndsTheGlyph)
{
    const auto with32 = [](BYTES bytes, size_t at, uint32_t word) {
        memcpy(bytes.data() + at, &word, sizeof(word));
        return bytes;
    };
    const auto with16 = [](BYTES bytes, size_t at, uint16_t word) {
        memcpy(bytes.data() + at, &word, sizeof(word));
        return bytes;
    };
    const auto cut = [](BYTES bytes, size_t size) {
        bytes.resize(size);
        return bytes;
    };
    const BYTES two = Join(triangle, triangle);
    const struct {
        const char *name;
        BYTES outline;
        size_t contours;
        uint32_t nodes; /* of the first */
    } cases[] = {
        {"whole", two, 2, 4},
        {"shorter than a header", cut(two, 15), 0, 0},
        {"header cut off behind the first contour", cut(two, triangle.size() + 15), 1, 4},
        {"contour size 0", with32(two, 0, 0), 0, 0},
        {"contour size below a header", with32(two, 0, 15), 0, 0},
        {"contour size beyond the block", with32(two, 0, static_cast<uint32_t>(two.size() + 1)), 0, 0},
        {"contour size of all ones", with32(two, 0, 0xFFFFFFFFu), 0, 0},
        {"second contour's size beyond", with32(two, triangle.size(), static_cast<uint32_t>(triangle.size() + 1)), 1,
         4},
        {"more points than the contour has", with16(two, 18, 3), 2, 1},
        {"65535 points", with16(two, 18, 0xFFFF), 2, 1},
        {"no points", with16(two, 18, 0), 2, 1},
        {"a type that is none", with16(two, 16, 9), 2, 1},
        {"spline of one point", Contour({0, 0}, {{2, {{one, one}}}}), 1, 1},
        {"spline of no points", Contour({0, 0}, {{2, {}}}), 1, 1},
        {"curve header cut in half", with32(cut(triangle, 18), 0, 18), 1, 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        PATHREC *path = Paths({{c.outline, 0, 0, 0}});
        EXPECT_EQ(ChainLength(path), c.contours);
        if (path) {
            EXPECT_EQ(path->nodeCount, c.nodes);
        }
        ZrPathDeletePtr(path, 0);
    }
}

TEST(GlyphPaths, RandomDataStaysInsideItsBlock)
{
    std::mt19937 random(11);
    const int64_t before = FaultLiveBlocks(ALLOC_PATHHEAP);
    for (int n = 0; n < 3000; n++) {
        BYTES bytes = Join(Join(triangle, Contour({0, 0}, {{2, {{one, one}, {one, 0}, {0, 0}}}})), triangle);
        bytes.resize(random() % (bytes.size() + 1));
        for (int k = 0; k < 4 && !bytes.empty(); k++)
            bytes[random() % bytes.size()] = static_cast<uint8_t>(random() % (k % 2 ? 256 : 40));
        PATHREC *path = Paths({{bytes, 0, 3, 0}, {bytes, 0, 3, 0}});
        ZrPathDeletePtr(path, 0);
    }
    EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), before);
}

TEST(GlyphPaths, EveryFailedAllocationLeavesNothing)
{
    CURVE lines = {1, {}};
    for (int i = 0; i < 130; i++) lines.points.push_back({i * one, one});
    GLYPHTABLE *table = Table({{Join(triangle, Contour({0, 0}, {lines})), 0, 2, 0}, {triangle, 0, 2, 0}});
    const int64_t before = FaultLiveBlocks(ALLOC_PATHHEAP);
    int failed = 0;
    for (int64_t n = 1;; n++) {
        PATHREC *path = reinterpret_cast<PATHREC *>(1);
        FaultSet(ALLOC_PATHHEAP, n);
        const int result = GlyphTableToPaths(table, 0, &path);
        const int struck = FaultStruck();
        FaultSet(ALLOC_PATHHEAP, 0);
        if (!result) {
            EXPECT_EQ(path, nullptr);
            failed++;
        }
        ZrPathDeletePtr(path, 0);
        EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), before);
        if (!struck) {
            EXPECT_EQ(result, 1);
            break;
        }
    }
    EXPECT_GE(failed, 3) << "each of the records; growing as well where the heap has to move the block";
    GlyphTableFree(table);
}
