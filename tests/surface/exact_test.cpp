/* exact_test.cpp - the exact distance surface: against its plain form to the bit, by hand where hands can, and aborts.
 */
#include "comm/zr32comm.h"
#include "frame/faults.h"
#include "support/shapes.h"
#include "surface/exact.h"
#include "surface/exact_plain.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace zr32;
using namespace zr32test;

namespace {

enum FORM { FORM_DIST = 1, FORM_OFFSET = 2, FORM_BOTH = 3 };

struct SETTINGS {
    double width = 8;
    int form = FORM_BOTH;
    int32_t evenOdd = 0;
    int32_t noMitre = 0;
    int32_t floatVectors = 0;
    ZRFIXED zoom = 0x10000;
};

/* A map from one of the two forms of the builder. */
struct MADE {
    int result;
    PATHBUF dist = nullptr;
    PATHBUF offset = nullptr;
    PLANES planes = {};
    double lastEdge[4] = {0, 0, 0, 0};
    std::vector<uint16_t> types; /* of the path's nodes afterwards */

    float Dist(int x, int y) const
    {
        return planes.dist[y * planes.width + x];
    }

    SURFVEC16 Vectors(int x, int y) const
    {
        return planes.vectors[y * planes.width + x];
    }

    SURFVECF VectorF(int x, int y) const
    {
        return planes.vectorsF[y * planes.width + x];
    }
};

void Free(MADE *made)
{
    ZrPathBufFree(made->dist);
    ZrPathBufFree(made->offset);
}

std::vector<uint16_t> TypesOf(const PATHREC *path)
{
    std::vector<uint16_t> types;
    for (; path; path = path->nextJoin)
        for (uint32_t i = 0; i < path->nodeCount; i++) types.push_back(path->nodes[i].type);
    return types;
}

void SetTypes(PATHREC *path, const std::vector<uint16_t> &types)
{
    size_t at = 0;
    for (; path; path = path->nextJoin)
        for (uint32_t i = 0; i < path->nodeCount; i++) path->nodes[i].type = types[at++];
}

/* Makes a map by one form; the path keeps what was done to its types. */
MADE Make(PATHREC *path, const SETTINGS &s, const double *lastEdge, bool plain, VMAPPROGRESS *progress = nullptr)
{
    MADE made;
    SURFACEEDGES edges;
    VMapBuildEdgeTables(path, s.zoom, &edges);
    EXPECT_NE(nullptr, edges.rows);
    VMapClassifyCrossings(s.evenOdd, edges.rows);
    if (s.form & FORM_DIST) made.dist = ZrPathBufAlloc(32, edges.width, edges.height);
    if (s.form & FORM_OFFSET) made.offset = ZrPathBufAlloc(0x40, edges.width, edges.height);
    const SURFACEMAP map = {&made.dist, &made.offset, progress, FixToDb(s.zoom), edges.originX, edges.originY};
    if (lastEdge) memcpy(made.lastEdge, lastEdge, sizeof made.lastEdge);
    if (plain) {
        made.result = PlainExactDistance(&edges, s.width, &map, s.noMitre, s.floatVectors, made.lastEdge);
    } else {
        vmapLastEdge = {{made.lastEdge[0], made.lastEdge[1]}, {made.lastEdge[2], made.lastEdge[3]}};
        made.result = VMapExactDistance(&edges, s.width, &map, s.noMitre, s.floatVectors);
        const double last[4] = {vmapLastEdge.a.x, vmapLastEdge.a.y, vmapLastEdge.b.x, vmapLastEdge.b.y};
        memcpy(made.lastEdge, last, sizeof last);
    }
    SurfaceEdgesFree(&edges);
    if (made.dist || made.offset) made.planes = MapPlanes(&map);
    made.types = TypesOf(path);
    return made;
}

MADE Fast(PATHREC *path, const SETTINGS &s)
{
    const double none[4] = {0, 0, 0, 0};
    return Make(path, s, none, false);
}

/* Both forms on the same path; planes, types and the last corner must be the same to the bit. */
void ExpectSame(PATHREC *path, const SETTINGS &s, double *lastEdge, const std::string &what)
{
    const std::vector<uint16_t> types = TypesOf(path);
    MADE fast = Make(path, s, lastEdge, false);
    SetTypes(path, types);
    MADE plain = Make(path, s, lastEdge, true);
    SetTypes(path, types);
    EXPECT_EQ(plain.result, fast.result) << what;
    EXPECT_EQ(plain.types, fast.types) << what;
    EXPECT_EQ(0, memcmp(plain.lastEdge, fast.lastEdge, sizeof plain.lastEdge)) << what;
    const int width = plain.planes.width;
    int shown = 0;
    for (int i = 0; i < width * plain.planes.height && shown < 3; i++) {
        const bool dist = !plain.planes.dist || memcmp(&plain.planes.dist[i], &fast.planes.dist[i], 4) == 0;
        const bool vec = !plain.planes.vectors || memcmp(&plain.planes.vectors[i], &fast.planes.vectors[i], 8) == 0;
        if (dist && vec) continue;
        shown++;
        ADD_FAILURE() << what << " at " << i % width << ", " << i / width << ": "
                      << (plain.planes.dist ? plain.planes.dist[i] : 0) << " against "
                      << (fast.planes.dist ? fast.planes.dist[i] : 0);
    }
    memcpy(lastEdge, plain.lastEdge, sizeof plain.lastEdge);
    Free(&fast);
    Free(&plain);
}

PATHREC *JoinPaths(std::vector<PATHREC *> paths)
{
    return ZrPathChainZrPath(static_cast<uint32_t>(paths.size()), paths.data());
}

/* A closed run of lines and curves between random points, on a grid of the given fineness. */
PATHREC *RandomPath(std::mt19937 *random, double size, double grid)
{
    const auto at = [&] { return std::floor(std::uniform_real_distribution<double>(0, size)(*random) * grid) / grid; };
    std::vector<TESTNODE> nodes = {{6, at(), at()}};
    for (size_t i = 2 + (*random)() % 5; i > 0; i--) {
        const uint16_t bits = (*random)() % 3 == 0 ? 0x8000 : 0;
        if ((*random)() % 2) {
            nodes.push_back({static_cast<uint16_t>(2 | bits), at(), at()});
        } else {
            TESTNODE c1 = {static_cast<uint16_t>(4 | bits), at(), at()};
            TESTNODE c2 = {4, at(), at()};
            const TESTNODE end = {0x2004, at(), at()};
            if ((*random)() % 4 == 0) c1 = {c1.type, nodes.back().x, nodes.back().y};
            if ((*random)() % 4 == 0) c2 = {4, end.x, end.y};
            nodes.insert(nodes.end(), {c1, c2, end});
        }
    }
    nodes.push_back({3, nodes[0].x, nodes[0].y});
    return MakePath(nodes);
}

TEST(Exact, RandomShapesAreThePlainFormsToTheBit)
{
    std::mt19937 random(8);
    double lastEdge[4] = {0, 0, 0, 0};
    for (int round = 0; round < 150; round++) {
        std::vector<PATHREC *> paths;
        const double grid = random() % 3 == 0 ? 1 : random() % 2 ? 4 : 65536;
        for (size_t i = 1 + random() % 3; i > 0; i--) paths.push_back(RandomPath(&random, 30, grid));
        PATHREC *path = JoinPaths(paths);
        SETTINGS s;
        const double widths[] = {0.4, 1, 3, 5.5, 12, 40};
        s.width = widths[random() % 6];
        s.form = 1 + static_cast<int>(random() % 3);
        s.evenOdd = random() % 2;
        s.noMitre = random() % 3 == 0;
        s.floatVectors = random() % 3 == 0;
        const ZRFIXED zooms[] = {0x10000, 0x10000, 0x8000, 0x14000};
        s.zoom = zooms[random() % 4];
        ExpectSame(path, s, lastEdge, "round " + std::to_string(round));
        ZrPathDeletePtr(path, 0);
        if (HasFailure()) break;
    }
}

TEST(Exact, SpecialShapesAreThePlainFormsToTheBit)
{
    const struct {
        const char *name;
        std::vector<TESTNODE> nodes;
    } shapes[] = {
        {"box on pixel centres", {{6, .5, .5}, {2, 20.5, .5}, {2, 20.5, 20.5}, {2, .5, 20.5}, {3, .5, .5}}},
        {"box on pixel corners", {{6, 0, 0}, {2, 20, 0}, {2, 20, 20}, {2, 0, 20}, {3, 0, 0}}},
        {"spike folded back on itself", {{6, 0, 0}, {2, 20, 0}, {2, 30, 3}, {2, 20, 0}, {2, 20, 20}, {3, 0, 0}}},
        {"spike folded back along a row", {{6, 0, .5}, {2, 20, .5}, {2, 30, .5}, {2, 20, .5}, {2, 9, 20}, {3, 0, .5}}},
        {"level curve on a pixel row",
         {{6, 0, 2.5}, {4, 5, 2.5}, {4, 9, 2.5}, {4, 15, 2.5}, {2, 15, 12.5}, {2, 0, 12.5}, {3, 0, 2.5}}},
        {"level curve that turns back",
         {{6, 0, 2.5}, {4, 9, 2.5}, {4, 5, 2.5}, {4, 15, 2.5}, {2, 15, 12.5}, {2, 0, 12.5}, {3, 0, 2.5}}},
        {"nearly level line", {{6, 0, 2.5}, {2, 15, 2.50003}, {2, 15, 12.5}, {2, 0, 12.5}, {3, 0, 2.5}}},
        {"nearly level curve",
         {{6, 0, 2.5}, {4, 5, 2.5}, {4, 10, 2.5001}, {4, 15, 2.50012}, {2, 15, 12.5}, {2, 0, 12.5}, {3, 0, 2.5}}},
        {"curve that touches a pixel row from both sides",
         {{6, 0, 2.4998},
          {4, 5, 2.5004},
          {4, 10, 2.4996},
          {4, 15, 2.5002},
          {2, 15, 12.5},
          {2, 0, 12.5},
          {3, 0, 2.4998}}},
        {"curve without a direction at its start",
         {{6, 0, 0}, {4, 0, 0}, {4, 0, 0}, {4, 15, 3}, {2, 9, 20}, {3, 0, 0}}},
        {"curve without length", {{6, 0, 0}, {4, 0, 0}, {4, 0, 0}, {4, 0, 0}, {2, 15, 3}, {2, 9, 20}, {3, 0, 0}}},
        {"lines without length", {{6, 0, 0}, {2, 0, 0}, {2, 15, 3}, {2, 15, 3}, {2, 9, 20}, {3, 0, 0}}},
        {"open run", {{6, 0, 0}, {2, 20, 4}, {2, 4, 20}}},
        {"no start", {{2, 20, 4}, {2, 4, 20}, {2, 20, 20}}},
        {"star of thin points",
         {{6, 20, 0},
          {2, 22, 18},
          {2, 40, 20},
          {2, 22, 22},
          {2, 20, 40},
          {2, 18, 22},
          {2, 0, 20},
          {2, 18, 18},
          {3, 20, 0}}},
    };
    double lastEdge[4] = {0, 0, 0, 0};
    for (const auto &shape : shapes) {
        PATHREC *path = MakePath(shape.nodes);
        for (double width : {0.3, 1.0, 6.0, 25.0, -3.0, 1e300, HUGE_VAL, std::nan("")}) {
            for (int form : {FORM_DIST, FORM_OFFSET, FORM_BOTH}) {
                SETTINGS s;
                s.width = width;
                s.form = form;
                for (s.noMitre = 0; s.noMitre < 2; s.noMitre++)
                    ExpectSame(path, s, lastEdge, std::string(shape.name) + ", " + std::to_string(width));
            }
        }
        ZrPathDeletePtr(path, 0);
    }
}

TEST(Exact, CirclesAreThePlainFormsToTheBit)
{
    double lastEdge[4] = {0, 0, 0, 0};
    PATHREC *path = JoinPaths({MakeCircle(30, 30, 28.3), MakeCircle(22, 30, 9), MakeBox(36, 20, 50, 41, false)});
    for (double width : {2.0, 10.0, 40.0}) {
        SETTINGS s;
        s.width = width;
        ExpectSame(path, s, lastEdge, std::to_string(width));
        s.evenOdd = 1;
        ExpectSame(path, s, lastEdge, std::to_string(width));
    }
    ZrPathDeletePtr(path, 0);
}

/* A box whose placed sides lie at 5.8, 5.8 and 5.8 + size: left is 10.3, the origin 10 - 5, and 0.5 is added. */
constexpr double boxLeft = 10.3;
constexpr double boxPlaced = 5.8;

TEST(Exact, BoxHasTheDistanceToItsNearestSide)
{
    PATHREC *path = MakeBox(boxLeft, boxLeft, boxLeft + 40, boxLeft + 40);
    SETTINGS s;
    s.width = 6;
    MADE made = Fast(path, s);
    EXPECT_EQ(1, made.result);
    const double far = boxPlaced + 40;
    for (int y = 0; y < made.planes.height; y++) {
        for (int x = 0; x < made.planes.width; x++) {
            const double d = std::min({x - boxPlaced, y - boxPlaced, far - x, far - y});
            if (d > 6.5) {
                EXPECT_EQ(300.0F, made.Dist(x, y)) << x << ", " << y;
                EXPECT_EQ(0, made.Vectors(x, y).x1) << x << ", " << y;
                EXPECT_EQ(0, made.Vectors(x, y).y1) << x << ", " << y;
            } else if (d > 0 && d < 5.4) {
                EXPECT_NEAR(d * d, made.Dist(x, y), 1e-3) << x << ", " << y;
            } else if (d < -2) {
                EXPECT_EQ(0.0F, made.Dist(x, y)) << x << ", " << y;
            }
        }
    }
    EXPECT_NEAR(-0.8 * 0.8, made.Dist(20, 5), 1e-4) << "outside, above the top edge, the magnitude is the square";
    EXPECT_EQ(0, made.Vectors(20, 8).x1);
    EXPECT_EQ(-563, made.Vectors(20, 8).y1) << "-2.2 x 256, cut towards zero";
    EXPECT_EQ(0, made.Vectors(20, 8).x2);
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, RidgeHasASecondVector)
{
    PATHREC *path = MakeBox(boxLeft, boxLeft, boxLeft + 40, boxLeft + 40);
    MADE made = Fast(path, SETTINGS{});
    const SURFVEC16 words = made.Vectors(9, 9); /* 3.2 from left and top: 819.2 */
    EXPECT_EQ(-819, words.x1 + words.y1);
    EXPECT_EQ(-819, words.x2 + words.y2);
    EXPECT_EQ(0, words.x1 * words.x2 + words.y1 * words.y2) << "square to each other";
    EXPECT_EQ(0, made.Vectors(11, 9).x2) << "2 pixels off the ridge";
    EXPECT_EQ(0, made.Vectors(11, 9).y2);
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, FloatVectorsPointFromThePixelToTheOutline)
{
    PATHREC *path = MakeBox(boxLeft, boxLeft, boxLeft + 40, boxLeft + 40);
    SETTINGS s;
    s.floatVectors = 1;
    MADE made = Fast(path, s);
    EXPECT_NEAR(-2.2, made.VectorF(8, 20).x, 1e-4);
    EXPECT_EQ(0.0F, made.VectorF(8, 20).y);
    EXPECT_NEAR(0.8, made.VectorF(5, 20).x, 1e-4) << "outside";
    EXPECT_EQ(0.0F, made.VectorF(30, 30).x) << "nothing in reach";
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

/* Three quadrants about the vertex, which lies at (25.8, 25.8) when placed. */
PATHREC *MakeElbow()
{
    const double a = boxLeft;
    const double b = boxLeft + 20;
    const double c = boxLeft + 40;
    return MakePath({{6, a, a}, {2, c, a}, {2, c, b}, {2, b, b}, {2, b, c}, {2, a, c}, {3, a, a}});
}

TEST(Exact, CornersAreMitredUnlessToldOtherwise)
{
    PATHREC *path = MakeElbow();
    SETTINGS s;
    s.width = 12;
    MADE mitred = Fast(path, s);
    s.noMitre = 1;
    MADE round = Fast(path, s);
    const double vertex = 25.8;
    for (int y = 19; y <= 25; y++) {
        for (int x = 19; x <= 25; x++) {
            const double dx = vertex - x;
            const double dy = vertex - y;
            EXPECT_NEAR(dx * dx + dy * dy, round.Dist(x, y), 1e-3) << x << ", " << y;
            const double d = std::max(dx, dy);
            EXPECT_NEAR(d * d, mitred.Dist(x, y), 1e-3) << x << ", " << y;
        }
    }
    Free(&mitred);
    Free(&round);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, CircleHasTheDistanceToTheArcOnBothSides)
{
    PATHREC *path = MakeCircle(30, 30, 20);
    SETTINGS s;
    s.width = 9;
    MADE made = Fast(path, s);
    for (int y = 0; y < made.planes.height; y++) {
        for (int x = 0; x < made.planes.width; x++) {
            const double d = 20 - std::hypot(x - 25.5, y - 25.5); /* 30 less the origin of 5, and a half */
            if (d > 0.6 && d < 8.5) {
                EXPECT_NEAR(d, std::sqrt(made.Dist(x, y)), 0.01) << x << ", " << y;
            } else if (d > 13.5) { /* clear of the corners of the box, too */
                EXPECT_EQ(300.0F, made.Dist(x, y)) << x << ", " << y;
            } else if (d < 0 && made.Dist(x, y) < 0) {
                EXPECT_NEAR(-d, std::sqrt(-made.Dist(x, y)), 0.01) << x << ", " << y;
            }
        }
    }
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

/* A pixel inside that lies on a vertex moves 0.01 to the left, away from the next crossing: 0.01 from an upright edge,
 * whose vector becomes 0.1 long, 25.6. */
TEST(Exact, PixelOnAVertexGetsAVector)
{
    struct {
        const char *name;
        PATHREC *path;
        int x;
        int y;
    } cases[] = {
        {"between two upright lines",
         MakePath(
             {{6, 10.5, 10.5}, {2, 40.5, 10.5}, {2, 40.5, 40.5}, {2, 10.5, 40.5}, {2, 10.5, 25.5}, {3, 10.5, 10.5}}),
         6, 21},
        {"between a level and an upright line",
         MakePath({{6, 10.5, 10.5},
                   {2, 50.5, 10.5},
                   {2, 50.5, 30.5},
                   {2, 30.5, 30.5},
                   {2, 30.5, 50.5},
                   {2, 10.5, 50.5},
                   {3, 10.5, 10.5}}),
         26, 26},
    };
    for (auto &c : cases) {
        SETTINGS s;
        s.noMitre = 1;
        MADE made = Fast(c.path, s);
        EXPECT_NEAR(0.0001, made.Dist(c.x, c.y), 1e-9) << c.name;
        EXPECT_EQ(25, made.Vectors(c.x, c.y).x1) << c.name;
        EXPECT_EQ(0, made.Vectors(c.x, c.y).y1) << c.name;
        Free(&made);
        s.noMitre = 0;
        made = Fast(c.path, s);
        EXPECT_NE(0.0F, made.Dist(c.x, c.y)) << c.name;
        EXPECT_TRUE(made.Vectors(c.x, c.y).x1 || made.Vectors(c.x, c.y).y1) << c.name;
        Free(&made);
        ZrPathDeletePtr(c.path, 0);
    }
}

/* A slope of 3 in 1 runs into the end of a level edge at (26, 26.5). Straight above it the foot on the level edge is
 * its very end, which counts as no end: both see the vertex, but they are no pair. Mitred, the slope's line would be so
 * near and so steep that the pixel had a second vector. One column on they are a pair, and the slope's line is the
 * farther. */
TEST(Exact, SameVertexWithUnequalEndsIsNoPair)
{
    PATHREC *path = MakePath({{6, 10.5, 10.5},
                              {2, 70.5, 10.5},
                              {2, 70.5, 61},
                              {2, 40.5, 61},
                              {2, 30.5, 31},
                              {2, 10.5, 31},
                              {3, 10.5, 10.5}});
    MADE made = Fast(path, SETTINGS{});
    EXPECT_EQ(0.25F, made.Dist(26, 26));
    EXPECT_EQ(0, made.Vectors(26, 26).x1);
    EXPECT_EQ(128, made.Vectors(26, 26).y1);
    EXPECT_EQ(0, made.Vectors(26, 26).x2);
    EXPECT_EQ(0, made.Vectors(26, 26).y2);
    EXPECT_NEAR(3.5 * 3.5 / 10, made.Dist(27, 26), 1e-4) << "(1, -0.5) from the vertex, to a line along (1, 3)";
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

/* An edge 4 above the pixel, and the corner of a hole at (3, 4) from it, which as a mitre is 4 away too: the edge stays
 * first. A pixel lower the mitre is nearer, 3 away by both of its edges: it comes first and the edge is no longer
 * asked.
 */
TEST(Exact, MitredCornerComesFirstOnlyIfItIsNearerThanTheEdge)
{
    PATHREC *path = JoinPaths({MakeBox(10.5, 10.5, 90.5, 70.5), MakeBox(37.5, 18.5, 57.5, 38.5, false)});
    MADE made = Fast(path, SETTINGS{}); /* placed: the edge at 6, the corner at (33, 14) */
    EXPECT_EQ(16.0F, made.Dist(30, 10));
    const SURFVEC16 even = made.Vectors(30, 10);
    EXPECT_EQ(0, even.x1);
    EXPECT_EQ(-1024, even.y1);
    EXPECT_EQ(0, even.x2);
    EXPECT_EQ(1024, even.y2) << "a ridge with the edge of the hole";
    EXPECT_EQ(9.0F, made.Dist(30, 11));
    const SURFVEC16 nearer = made.Vectors(30, 11);
    EXPECT_EQ(768, nearer.x1 + nearer.y1);
    EXPECT_EQ(768, nearer.x2 + nearer.y2);
    EXPECT_EQ(0, nearer.x1 * nearer.x2 + nearer.y1 * nearer.y2);
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, VeryShortVectorsBecomeLonger)
{
    const struct {
        const char *name;
        double left;
        double top;
        int x;
        int y;
        int16_t wantX;
        int16_t wantY;
    } cases[] = {
        /* placed at left - origin + 0.5, and upright or level: 0.1 long, 25.6 */
        {"0.05 to the left", 10.45, 10.3, 6, 20, -25, 0},
        {"0.05 above", 10.3, 10.45, 20, 6, 0, -25},
        {"0.3 to the left", 10.2, 10.3, 6, 20, -76, 0},
    };
    for (const auto &c : cases) {
        PATHREC *path = MakeBox(c.left, c.top, 40, 40);
        MADE made = Fast(path, SETTINGS{});
        EXPECT_EQ(c.wantX, made.Vectors(c.x, c.y).x1) << c.name;
        EXPECT_EQ(c.wantY, made.Vectors(c.x, c.y).y1) << c.name;
        Free(&made);
        ZrPathDeletePtr(path, 0);
    }
}

TEST(Exact, ShortSlantedVectorsKeepTheirDirection)
{
    /* An edge that falls at 3 to 4 passes 0.1 from the pixel: the vector (0.08, -0.06) becomes (0.2, -0.15). */
    PATHREC *path = MakePath({{6, 10, 10}, {2, 13, 14}, {2, 40, 50}, {2, 10, 50}, {3, 10, 10}});
    MADE made = Fast(path, SETTINGS{});
    int seen = 0;
    for (int i = 0; i < made.planes.width * made.planes.height; i++) {
        const SURFVEC16 words = made.planes.vectors[i];
        if (words.x1 == 51) seen += words.y1 == -38;
    }
    EXPECT_GT(seen, 0);
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, MeasuredNodesLoseTheirClosingAndSelectedBits)
{
    PATHREC *path = MakePath({{0x8006, 10, 10},
                              {0x8002, 30, 10},
                              {0x8004, 40, 15},
                              {0x8004, 40, 25},
                              {0xA004, 30, 30},
                              {0x8002, 10, 30},
                              {0x8003, 10, 10}});
    MADE made = Fast(path, SETTINGS{});
    const std::vector<uint16_t> want = {0x8006, 2, 4, 0x8004, 0xA004, 2, 2};
    /* The level lines cross no row, but columns. */
    EXPECT_EQ(want, made.types);
    Free(&made);
    ZrPathDeletePtr(path, 0);

    path = MakeCircle(30, 30, 15);
    made = Fast(path, SETTINGS{});
    EXPECT_EQ(5, path->nodes[12].type) << "a curve's third node is not touched";
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, RowWithoutACrossingComparesXWithY)
{
    /* The tip lies at (5.7, 6.4) when placed: row 6 has no crossing. At x = y the place that stands for the next edge
     * is 0.0001 away, and the nearest point lies to the left: an inside pixel, the only one of its row. */
    PATHREC *path = MakePath({{6, 10.2, 20.9}, {2, 30, 40}, {2, 10, 40}, {3, 10.2, 20.9}});
    SETTINGS s;
    s.noMitre = 1;
    MADE made = Fast(path, s);
    for (int x = 0; x < made.planes.width; x++) {
        if (x == 6) {
            EXPECT_NEAR(0.25, made.Dist(x, 6), 1e-3);
        } else {
            EXPECT_LE(made.Dist(x, 6), 0.0F) << x;
        }
    }
    Free(&made);
    s.form = FORM_DIST;
    made = Fast(path, s);
    EXPECT_NEAR(-0.25, made.Dist(6, 6), 1e-3) << "without vectors there is no late inside";
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, MoreCandidatesThanAnyListWasMadeForChangeNothing)
{
    std::vector<TESTNODE> comb = {{6, 0, 0}, {2, 20, 0}};
    for (int tooth = 0; tooth < 300; tooth++) {
        comb.push_back({2, 20 - tooth / 16.0, 12.3});
        comb.push_back({2, 20 - (tooth + 0.5) / 16, 9.1 + tooth % 7});
    }
    comb.push_back({2, 0, 12});
    comb.push_back({3, 0, 0});
    PATHREC *path = MakePath(comb);
    double lastEdge[4] = {0, 0, 0, 0};
    SETTINGS s;
    for (s.evenOdd = 0; s.evenOdd < 2; s.evenOdd++) ExpectSame(path, s, lastEdge, "comb");
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, AnyZoomAndWidthIsSafe)
{
    PATHREC *path = JoinPaths({MakeBox(-3, -3, 10, 10), MakeCircle(4, 4, 5)});
    for (const ZRFIXED zoom : {0, 1, -1, 0x10000, -0x10000, 0x7000000, INT32_MAX, INT32_MIN}) {
        for (double width : {-1.0, 4.0, 1e300, -HUGE_VAL, static_cast<double>(NAN)}) {
            PATHBUF dist = reinterpret_cast<PATHBUF>(1);
            PATHBUF offset = reinterpret_cast<PATHBUF>(1);
            const int32_t made = ZrPathVMap(path, &dist, &offset, 0, 0, 0, 0, 0, &width, 0, 0, nullptr, nullptr, zoom);
            if (made) {
                ZrPathBufFree(dist);
                ZrPathBufFree(offset);
            }
            if (zoom == 0x7000000) break; /* a large map once */
        }
    }
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, FootOnTheVeryEndIsNoEnd)
{
    NEARENTRY entry;
    VMapLineDistance(1e9, {10, 5}, {{0, 0}, {10, 0}}, &entry);
    EXPECT_EQ(0, entry.atEnd) << "s is exactly 1";
    VMapLineDistance(1e9, {10.5, 5}, {{0, 0}, {10, 0}}, &entry);
    EXPECT_EQ(1, entry.atEnd);
    EXPECT_EQ(25.25, entry.dist2);
    EXPECT_EQ(-0.5, entry.vector.x);
    EXPECT_EQ(-5, entry.vector.y);
    VMapLineDistance(1e9, {0, 5}, {{0, 0}, {10, 0}}, &entry);
    EXPECT_EQ(0, entry.atEnd) << "s is exactly 0";
}

TEST(Exact, PointOnALevelLineSeesADistance)
{
    NEARENTRY entry;
    VMapLineDistance(20, {5, 3}, {{0, 3}, {10, 3}}, &entry);
    /* The line goes down by 0.00001; the point, still on it, moves left and up by 0.01. */
    EXPECT_NEAR(0.01001, entry.vector.y, 1e-12);
    EXPECT_EQ(0, entry.atEnd);
    VMapLineDistance(20, {12, 3}, {{0, 3}, {10, 3}}, &entry);
    EXPECT_EQ(4, entry.dist2) << "beyond its end it is a line like any other";
}

TEST(Exact, PointOnAnUprightLineMovesAwayFromTheNextCrossing)
{
    NEARENTRY entry;
    VMapLineDistance(20, {5, 3}, {{5, 0}, {5, 10}}, &entry);
    EXPECT_NEAR(0.01, entry.vector.x, 1e-12) << "to the left, so the line lies to the right";
    VMapLineDistance(5, {5, 3}, {{5, 0}, {5, 10}}, &entry);
    EXPECT_NEAR(-0.01, entry.vector.x, 1e-12);
}

TEST(Exact, CurveForTheDistanceAloneStaysWhereItIs)
{
    const POINTDB c[4] = {{0, 0}, {0, 4}, {0, 8}, {0, 12}};
    NEARENTRY entry;
    VMapCurveDistance(20, {0, 6}, c, 0, &entry);
    EXPECT_NEAR(0, entry.dist2, 1e-20);
    VMapCurveDistance(20, {0, 6}, c, 1, &entry);
    EXPECT_NEAR(0.0001, entry.dist2, 1e-9);
    EXPECT_NEAR(0.01, entry.vector.x, 1e-9);
}

TEST(Exact, EndsOfALevelCurveInTheFirstRowAreLeftDownwards)
{
    const POINTDB c[4] = {{0, 0}, {4, 0}, {8, 0}, {12, 0}};
    NEARENTRY entry;
    VMapCurveDistance(20, {6, 0}, c, 1, &entry);
    EXPECT_NEAR(-0.01, entry.vector.y, 1e-9);
}

TEST(Exact, MeasuresAreThePlainOnesToTheBit)
{
    std::mt19937 random(9);
    const auto at = [&] { return static_cast<double>(random() % 24) / (random() % 2 ? 1 : 4); };
    for (int round = 0; round < 20000; round++) {
        POINTDB c[4];
        for (POINTDB &p : c) p = {at(), at()};
        if (random() % 4 == 0) c[1].y = c[2].y = c[3].y = c[0].y;
        const POINTDB point = {std::floor(at()), std::floor(at())};
        const double right = at();
        NEARENTRY entry;
        if (c[0].x != c[1].x || c[0].y != c[1].y) {
            VMapLineDistance(right, point, {c[0], c[1]}, &entry);
            const PLAINMEASURE want = PlainMeasureLine(right, point.x, point.y, c[0], c[1]);
            ASSERT_EQ(want.dist2, entry.dist2) << round;
            ASSERT_EQ(want.x, entry.vector.x) << round;
            ASSERT_EQ(want.y, entry.vector.y) << round;
            ASSERT_EQ(want.atEnd, entry.atEnd) << round;
        }
        const int wantVector = random() % 2;
        VMapCurveDistance(right, point, c, wantVector, &entry);
        const PLAINMEASURE want = PlainMeasureCurve(right, point.x, point.y, c, wantVector);
        ASSERT_EQ(want.dist2, entry.dist2) << round;
        ASSERT_EQ(want.atEnd, entry.atEnd) << round;
        if (!wantVector) continue;
        ASSERT_EQ(want.x, entry.vector.x) << round;
        ASSERT_EQ(want.y, entry.vector.y) << round;
    }
}

/* Pixels on an edge that is all but level move far along it. */
TEST(Exact, LongLevelEdgesOnAPixelRowAreNoTrouble)
{
    const std::vector<TESTNODE> edges[] = {
        {{2, 600, 2.5 + 4.0 / 65536}},
        {{4, 200, 2.5}, {4, 400, 2.5}, {4, 600, 2.5}},
        {{4, 200, 2.5}, {4, 400, 2.5 + 6.0 / 65536}, {4, 600, 2.5 + 6.0 / 65536}},
        {{4, 550, 2.5}, {4, 50, 2.5}, {4, 600, 2.5}},
    };
    for (const auto &edge : edges) {
        std::vector<TESTNODE> nodes = {{6, 0, 2.5}};
        nodes.insert(nodes.end(), edge.begin(), edge.end());
        nodes.insert(nodes.end(), {{2, 600, 9}, {2, 0, 9}, {3, 0, 2.5}});
        PATHREC *path = MakePath(nodes);
        SETTINGS s;
        s.width = 4;
        MADE made = Fast(path, s);
        EXPECT_EQ(1, made.result);
        EXPECT_NEAR(1, made.Dist(300, 7), 1e-3) << "the edge is placed at row 6";
        Free(&made);
        ZrPathDeletePtr(path, 0);
    }
}

TEST(Exact, FirstCornerOfACallMayBeTheLastOfTheCallBefore)
{
    PATHREC *path = MakeElbow();
    const double none[4] = {0, 0, 0, 0};
    SETTINGS s;
    MADE first = Make(path, s, none, false);
    MADE second = Make(path, s, first.lastEdge, false);
    EXPECT_NE(0, memcmp(none, first.lastEdge, sizeof none));
    EXPECT_EQ(0, memcmp(first.lastEdge, second.lastEdge, sizeof none));
    Free(&first);
    Free(&second);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, APairWithoutASegmentOrADirectionStays)
{
    PATHNODE nodes[2] = {{PATHNODE_LINE, 0, 0}, {PATHNODE_LINE, 0, 0}};
    EXACTSEGMENT level = {}, upright = {}, point = {};
    level.node = point.node = &nodes[0];
    upright.node = &nodes[1];
    level.p[0] = {0, 10};
    level.p[1] = upright.p[0] = {10, 10};
    upright.p[1] = {10, 20};
    point.p[0] = point.p[1] = {10, 10};
    const struct {
        const EXACTSEGMENT *first;
        const EXACTSEGMENT *second;
        bool stays;
    } cases[] = {{&level, &upright, false},
                 {nullptr, &upright, true},
                 {&level, nullptr, true},
                 {&point, &upright, true},
                 {&level, &point, true}};
    for (const auto &c : cases) {
        NEARENTRY e1 = {}, e2 = {};
        e1.segment = c.first;
        e2.segment = c.second;
        e1.dist2 = e2.dist2 = 13;
        REACH reach = {5, 5, 100};
        VMapMitrePair({13, 8}, &e1, &e2, &reach);
        /* to the lines: 2 above the level one, 3 beside the upright one; the greater first */
        EXPECT_EQ(c.stays ? 13 : 9, e1.dist2);
        EXPECT_EQ(c.stays ? 13 : 4, e2.dist2);
    }
}

TEST(Exact, SharpCornerWidensTheReach)
{
    /* A notch of about 23 degrees whose tip lies in row 45. From the first pixel that sees it, all look as far as its
     * mitre is long, so that a pixel 9.5 from the left side, which is beyond the reach, is no flat top any more. */
    PATHREC *path =
        MakePath({{6, 0, 0}, {2, 60, 0}, {2, 60, 60}, {2, 34, 60}, {2, 30, 40}, {2, 26, 60}, {2, 0, 60}, {3, 0, 0}});
    SETTINGS s;
    s.width = 6;
    MADE mitred = Fast(path, s);
    s.noMitre = 1;
    MADE round = Fast(path, s);
    for (int y = 46; y < 56; y++) {
        EXPECT_EQ(300.0F, round.Dist(15, y)) << y;
        EXPECT_NEAR(9.5 * 9.5, mitred.Dist(15, y), 1e-3) << y;
    }
    EXPECT_EQ(300.0F, mitred.Dist(15, 30)) << "rows before it do not know";
    Free(&mitred);
    Free(&round);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, RefusesWithoutTableWidthOrPlanes)
{
    PATHREC *path = MakeBox(0, 0, 10, 10);
    SURFACEEDGES edges;
    VMapBuildEdgeTables(path, 0x10000, &edges);
    PATHBUF dist = ZrPathBufAlloc(32, edges.width, edges.height);
    PATHBUF none = nullptr;
    const SURFACEMAP map = {&dist, &none, nullptr, 1.0, edges.originX, edges.originY};
    const SURFACEMAP empty = {&none, &none, nullptr, 1.0, edges.originX, edges.originY};
    EXPECT_EQ(0, VMapExactDistance(&edges, 0.0, &map, 0, 0));
    EXPECT_EQ(0, VMapExactDistance(&edges, -0.0, &map, 0, 0));
    EXPECT_EQ(0, VMapExactDistance(&edges, 5.0, &empty, 0, 0));
    SURFACEEDGES nothing = {};
    EXPECT_EQ(0, VMapExactDistance(&nothing, 5.0, &map, 0, 0));
    EXPECT_EQ(1, VMapExactDistance(&edges, 5.0, &map, 0, 0));
    ZrPathBufFree(dist);
    SurfaceEdgesFree(&edges);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, WithoutAColumnTableThePlanesAreDroppedAndTheErrorReported)
{
    PATHREC *path = MakeBox(0, 0, 30, 30);
    SURFACEEDGES edges;
    VMapBuildEdgeTables(path, 0x10000, &edges);
    VMapClassifyCrossings(0, edges.rows);
    EdgeTableFree(edges.columns);
    edges.columns = nullptr;
    PATHBUF dist = ZrPathBufAlloc(32, edges.width, edges.height);
    PATHBUF none = nullptr;
    const SURFACEMAP map = {&dist, &none, nullptr, 1.0, edges.originX, edges.originY};
    zr32CommReset();
    EXPECT_EQ(0, VMapExactDistance(&edges, 5.0, &map, 0, 0));
    EXPECT_EQ(nullptr, dist);
    ZR32COMMERROR error;
    EXPECT_EQ(1, zr32CommLastError(&error));
    EXPECT_EQ(1001, error.words[1]);
    SurfaceEdgesFree(&edges);
    ZrPathDeletePtr(path, 0);
}

/* ---- progress ---- */

struct CALLS {
    std::vector<std::pair<int32_t, int32_t>> seen;
    int32_t stopAt; /* the how manieth advance answers 0; 0: none */
    int32_t advances;
};

int32_t Callback(int32_t code, int32_t value, int32_t zero, intptr_t user)
{
    CALLS *calls = reinterpret_cast<CALLS *>(user);
    EXPECT_EQ(0, zero);
    calls->seen.push_back({code, value});
    if (code != progressAdvance) return 0;
    return ++calls->advances != calls->stopAt;
}

TEST(Exact, ProgressTellsBeginRowsAndEnd)
{
    PATHREC *path = MakeBox(0, 0, 14, 14); /* 25 rows */
    CALLS calls = {};
    VMAPPROGRESS progress = {0, Callback, reinterpret_cast<intptr_t>(&calls), 7, 9};
    zr32CommReset();
    MADE made = Make(path, SETTINGS{}, nullptr, false, &progress);
    EXPECT_EQ(1, progress.active);
    EXPECT_EQ(0, progress.rangeFrom);
    EXPECT_EQ(25, progress.rangeTo);
    ASSERT_EQ(27u, calls.seen.size());
    EXPECT_EQ(std::make_pair(1, 0), calls.seen.front());
    for (int y = 0; y < 25; y++) EXPECT_EQ(std::make_pair(2, y * 4), calls.seen[static_cast<size_t>(y) + 1]);
    EXPECT_EQ(std::make_pair(4, 25), calls.seen.back());
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, CallbackThatAnswers0DropsBothPlanes)
{
    PATHREC *path = MakeBox(0, 0, 50, 40);
    zr32CommReset();
    const int64_t before = FaultLiveBlocks(ALLOC_BUF);
    for (int k = 1; k <= 50; k++) {
        CALLS calls = {{}, k, 0};
        VMAPPROGRESS progress = {0, Callback, reinterpret_cast<intptr_t>(&calls), 0, 0};
        MADE made = Make(path, SETTINGS{}, nullptr, false, &progress);
        EXPECT_EQ(1, made.result) << "an abort is no failure here";
        EXPECT_EQ(nullptr, made.dist);
        EXPECT_EQ(nullptr, made.offset);
        EXPECT_EQ(static_cast<size_t>(k) + 2, calls.seen.size());
        EXPECT_EQ(std::make_pair(4, 51), calls.seen.back());
        EXPECT_EQ(before, FaultLiveBlocks(ALLOC_BUF));
    }
    EXPECT_EQ(0, zr32CommLastError(nullptr)) << "nothing is reported";
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, EscIsPolledOnceARowAlsoWithoutACallback)
{
    PATHREC *path = MakeBox(0, 0, 50, 40);
    const int64_t before = FaultLiveBlocks(ALLOC_BUF);
    for (int polls : {0, 1, 50}) {
        zr32CommEscAfter(polls);
        MADE made = Make(path, SETTINGS{}, nullptr, false);
        EXPECT_EQ(1, made.result);
        EXPECT_EQ(nullptr, made.dist);
        EXPECT_EQ(nullptr, made.offset);
        EXPECT_EQ(before, FaultLiveBlocks(ALLOC_BUF));
    }
    zr32CommEscAfter(51);
    MADE made = Make(path, SETTINGS{}, nullptr, false);
    EXPECT_NE(nullptr, made.dist) << "51 rows, 51 polls";
    zr32CommEscAfter(-1);
    Free(&made);
    ZrPathDeletePtr(path, 0);
}

TEST(Exact, WithoutMemoryThePlanesAreDroppedAndTheErrorReported)
{
    PATHREC *path = MakeCircle(20, 20, 15);
    SURFACEEDGES edges;
    VMapBuildEdgeTables(path, 0x10000, &edges);
    VMapClassifyCrossings(0, edges.rows);
    const int64_t before = FaultLiveBlocks(ALLOC_BUF);
    int failures = 0;
    for (int n = 1;; n++) {
        PATHBUF dist = ZrPathBufAlloc(32, edges.width, edges.height);
        PATHBUF offset = ZrPathBufAlloc(0x40, edges.width, edges.height);
        const SURFACEMAP map = {&dist, &offset, nullptr, 1.0, edges.originX, edges.originY};
        zr32CommReset();
        FaultSet(ALLOC_BUF, n);
        const int done = VMapExactDistance(&edges, 5.0, &map, 0, 0);
        const int struck = FaultStruck();
        FaultSet(ALLOC_BUF, 0);
        if (!struck) {
            EXPECT_EQ(1, done);
            ZrPathBufFree(dist);
            ZrPathBufFree(offset);
            break;
        }
        failures++;
        EXPECT_EQ(0, done);
        EXPECT_EQ(nullptr, dist);
        EXPECT_EQ(nullptr, offset);
        ZR32COMMERROR error;
        EXPECT_EQ(1, zr32CommLastError(&error));
        EXPECT_EQ(1001, error.words[1]);
        EXPECT_EQ(before, FaultLiveBlocks(ALLOC_BUF));
    }
    EXPECT_GT(failures, 4);
    EXPECT_EQ(before, FaultLiveBlocks(ALLOC_BUF));
    SurfaceEdgesFree(&edges);
    ZrPathDeletePtr(path, 0);
}

} // namespace
