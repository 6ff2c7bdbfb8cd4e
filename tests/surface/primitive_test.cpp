/* primitive_test.cpp - surfaces of lone primitives, worked out by hand. */
#include "surface/surface.h"

#include "comm/zr32comm.h"
#include "support/shapes.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

using namespace zr32test;
using zr32::SURFACEMAP;
using zr32::VMapPrimitive;

namespace {

/* Planes of a size, with a map over them whose first pixel lies at (0, 0) unless told otherwise. */
struct FIELD {
    PATHBUF dist;
    PATHBUF offset;
    int width;
    SURFACEMAP map;

    FIELD(int w, int h, double zoom = 1, VMAPPROGRESS *progress = nullptr)
        : dist(ZrPathBufAlloc(32, w, h)), offset(ZrPathBufAlloc(0x40, w, h)),
          width(w), map{&dist, &offset, progress, zoom, 0, 0}
    {
    }

    ~FIELD()
    {
        if (dist) ZrPathBufFree(dist);
        if (offset) ZrPathBufFree(offset);
    }

    float Dist(int x, int y) const
    {
        return reinterpret_cast<const float *>(dist)[y * width + x];
    }
    SURFVECF Vector(int x, int y) const
    {
        return reinterpret_cast<const SURFVECF *>(offset)[y * width + x];
    }
};

/* An ellipse as the primitives draw it: node 0 above the centre in y, node 3 right of it. Points lie half a pixel off,
 * so that the centre is at pixel (cx, cy). */
PATHREC *Ellipse(double cx, double cy, double rx, double ry)
{
    const double k = 0.5522847;
    cx -= 0.5;
    cy -= 0.5;
    PATHREC *path = MakePath({{6, cx, cy + ry},
                              {4, cx + k * rx, cy + ry},
                              {4, cx + rx, cy + k * ry},
                              {4, cx + rx, cy},
                              {4, cx + rx, cy - k * ry},
                              {4, cx + k * rx, cy - ry},
                              {4, cx, cy - ry},
                              {4, cx - k * rx, cy - ry},
                              {4, cx - rx, cy - k * ry},
                              {4, cx - rx, cy},
                              {4, cx - rx, cy + k * ry},
                              {4, cx - k * rx, cy + ry},
                              {5, cx, cy + ry}});
    path->primitive = 1;
    return path;
}

PATHREC *Rectangle(double left, double top, double right, double bottom)
{
    PATHREC *path = MakeBox(left - 0.5, top - 0.5, right - 0.5, bottom - 0.5);
    path->primitive = 2;
    return path;
}

/* Only the nodes that are read have to stand right: 0, 3, 7 and 11 of 17. */
PATHREC *RoundRect(double left, double top, double right, double bottom, double r)
{
    std::vector<TESTNODE> nodes(17, {2, 0, 0});
    nodes[0] = {6, right - r - 0.5, bottom - 0.5};
    nodes[3] = {2, right - 0.5, bottom - r - 0.5};
    nodes[7] = {2, right - r - 0.5, top - 0.5};
    nodes[11] = {2, left - 0.5, top + r - 0.5};
    PATHREC *path = MakePath(nodes);
    path->primitive = 3;
    return path;
}

PATHREC *Diamond(double cx, double cy, double w, double h)
{
    cx -= 0.5;
    cy -= 0.5;
    PATHREC *path = MakePath({{6, cx, cy + h}, {2, cx + w, cy}, {2, cx, cy - h}, {2, cx - w, cy}, {3, cx, cy + h}});
    path->primitive = 4;
    return path;
}

TEST(Primitive, EllipseIsAConeWithItsHeightAtTheExactCentre)
{
    FIELD field(40, 30);
    PATHREC *path = Ellipse(20, 15, 12, 8);
    double h = 30;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    EXPECT_EQ(30, h);
    EXPECT_EQ(30.0F, field.Vector(20, 15).x); /* (h, 0), not a zero vector */
    EXPECT_EQ(0.0F, field.Vector(20, 15).y);
    EXPECT_EQ(900.0F, field.Dist(20, 15));
    /* Along x the rim lies at 12 + 1: at 6.5 of 13 the cone has half its height. */
    const double g = (13.0 - 6) / 13.0 * 30;
    EXPECT_NEAR(g * g, double(field.Dist(26, 15)), 1e-3);
    EXPECT_NEAR(g, double(field.Vector(26, 15).x), 1e-4);
    EXPECT_EQ(0.0F, field.Dist(33, 15)); /* d = 13 is not below R = 13 */
    EXPECT_NE(0.0F, field.Dist(32, 15));
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, AHeightOfZeroIsTakenFromTheShapeAndHandedBack)
{
    struct {
        PATHREC *path;
        double wanted;
    } cases[] = {{Ellipse(20, 15, 12, 8), 8},
                 {Rectangle(5, 5, 35, 25), 10},
                 {RoundRect(4, 4, 36, 26, 6), 6},
                 {Diamond(20, 15, 14, 9), 9}};
    for (auto &c : cases) {
        FIELD field(40, 30);
        double h = 0;
        EXPECT_EQ(1, VMapPrimitive(c.path, &h, &field.map));
        EXPECT_NEAR(c.wanted, h, 1e-4);
        ZrPathDeletePtr(c.path, 0);
    }
}

TEST(Primitive, RadiiOfTheEllipseDoNotFollowTheZoom)
{
    FIELD field(80, 60, 2.0);
    /* A point v lies at 2 v + 0.5: the centre of path (19.75, 14.75) at pixel (40, 30). */
    PATHREC *path = Ellipse(20.25, 15.25, 12, 8);
    double h = 30;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    EXPECT_EQ(30.0F, field.Vector(40, 30).x);
    EXPECT_EQ(0.0F, field.Dist(53, 30)); /* 13 pixels off: outside the radius of zoom 1 */
    EXPECT_NE(0.0F, field.Dist(52, 30));
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, RectangleIsARoofWhoseVectorsCarryTheHeight)
{
    FIELD field(40, 30);
    PATHREC *path = Rectangle(5, 5, 35, 25);
    double h = 20; /* k = 20 / 10 */
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    EXPECT_EQ(9.0F, field.Dist(8, 15)); /* 3 from the left, unscaled */
    EXPECT_EQ(-6.0F, field.Vector(8, 15).x);
    EXPECT_EQ(4.0F, field.Vector(33, 15).x);
    EXPECT_EQ(-4.0F, field.Vector(20, 7).y);
    EXPECT_EQ(4.0F, field.Vector(20, 23).y);
    EXPECT_FLOAT_EQ(1e-8F, field.Dist(5, 15)); /* on the side: 0.0001 */
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, RectangleOutsideByLessThanAPixelHasATenthOfTheVector)
{
    FIELD field(40, 30);
    PATHREC *path = Rectangle(5.5, 5, 35, 25);
    double h = 10; /* k = 1 */
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    EXPECT_EQ(0.25F, field.Dist(5, 15)); /* e = -0.5 */
    EXPECT_NEAR(0.05, double(field.Vector(5, 15).x), 1e-6);
    EXPECT_EQ(0.0F, field.Dist(4, 15)); /* a pixel and a half outside */
    EXPECT_EQ(0.0F, field.Vector(4, 15).x);
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, TheBarIsReadAtNodes0And13)
{
    std::vector<TESTNODE> nodes(27, {4, 0, 0});
    nodes[0] = {6, 4.5, 4.5};
    nodes[13] = {2, 34.5, 24.5};
    PATHREC *path = MakePath(nodes);
    path->primitive = 5;
    FIELD field(40, 30);
    double h = 0;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    EXPECT_EQ(10.0, h);
    EXPECT_EQ(9.0F, field.Dist(8, 15));
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, RoundRectSidesAndCorners)
{
    FIELD field(40, 30);
    PATHREC *path = RoundRect(4, 4, 36, 26, 6);
    double h = 12;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    /* Flat left side, 3 in: e = 3 x 12 / 6. */
    EXPECT_NEAR(36.0, double(field.Dist(7, 15)), 1e-3);
    EXPECT_NEAR(-6.0, double(field.Vector(7, 15).x), 1e-4);
    /* Corner circle about (10, 10): at (7, 6) L = 5, e = (1 - 5/6) x 12 = 2, the vector has that length. */
    EXPECT_NEAR(4.0, double(field.Dist(7, 6)), 1e-3);
    EXPECT_NEAR(-3.0 * 2 / 5, double(field.Vector(7, 6).x), 1e-4);
    EXPECT_NEAR(-4.0 * 2 / 5, double(field.Vector(7, 6).y), 1e-4);
    /* Beyond the rounded corner: (4, 4) has L = sqrt(72) > 6. */
    EXPECT_FLOAT_EQ(1e-8F, field.Dist(4, 4));
    EXPECT_NEAR(-6.0 * 0.0001, double(field.Vector(4, 4).x), 1e-7);
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, RoundRectOutsideByAPixelKeepsTheVectorOfItsLeftNeighbour)
{
    FIELD field(40, 30);
    PATHREC *path = RoundRect(4, 4, 36, 26, 6);
    double h = 12;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    EXPECT_EQ(0.0F, field.Dist(37, 15));
    EXPECT_EQ(field.Vector(36, 15).x, field.Vector(37, 15).x);
    EXPECT_EQ(field.Vector(36, 15).x, field.Vector(39, 15).x);
    EXPECT_EQ(0.0F, field.Vector(0, 15).x); /* a row starts from (0, 0) */
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, DiamondRowsWithoutTheShapeStayZeroAndOthersWriteAllPixels)
{
    FIELD diamond(40, 40);
    PATHREC *path = Diamond(20, 20, 12, 10);
    double h = 10;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &diamond.map));
    for (int x = 0; x < 40; x++) {
        EXPECT_EQ(0.0F, diamond.Dist(x, 9));
        EXPECT_EQ(0.0F, diamond.Dist(x, 30)); /* bottom <= y */
    }
    EXPECT_NE(0.0F, diamond.Dist(20, 10));
    EXPECT_NE(0.0F, diamond.Dist(20, 29));
    ZrPathDeletePtr(path, 0);

    FIELD rectangle(40, 40);
    path = Rectangle(10.25, 10.25, 30.25, 30.25);
    h = 10;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &rectangle.map));
    EXPECT_EQ(0.0F, rectangle.Dist(0, 0)); /* written as 0 */
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, DiamondMiddleRowByHand)
{
    /* Centre (20, 20), half-width 12, half-height 10: row 20 is the lower half's first, k = 1, xl = 8, xr = 32. */
    FIELD field(40, 40);
    PATHREC *path = Diamond(20, 20, 12, 10);
    double h = 10;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    /* xl is on pixel 8: 8 and 7 are rim, then 9 is measured: its distance to the edge from (20, 30) to (8, 20) is
     * 1 x 10 / sqrt(244). */
    EXPECT_EQ(0.01F, field.Dist(8, 20));
    EXPECT_EQ(0.01F, field.Dist(7, 20));
    const double nine = 10 / std::sqrt(244.0);
    EXPECT_NEAR(nine * nine, double(field.Dist(9, 20)), 1e-5);
    /* The middle has the height: 12 x 10 / sqrt(244) scaled to 10. */
    EXPECT_NEAR(100.0, double(field.Dist(20, 20)), 1e-3);
    /* Between, linear from pixel 9 to 20: the scaled end is nine x s. */
    const double s = 10 / (12 * nine);
    const double at14 = nine * s + (10 - nine * s) * 5 / 11;
    EXPECT_NEAR(at14 * at14, double(field.Dist(14, 20)), 1e-3);
    /* xr is on pixel 32: rim there and behind, with the mixed-up components: the measured vector is 0 long but for the
     * move of 0.01. */
    EXPECT_EQ(0.01F, field.Dist(32, 20));
    EXPECT_EQ(0.01F, field.Dist(33, 20));
    EXPECT_EQ(field.Vector(32, 20).x, field.Vector(32, 20).y);
    ZrPathDeletePtr(path, 0);
}

void ExpectPixel(const FIELD &field, int x, int y, double value, double vx, double vy)
{
    EXPECT_NEAR(value, double(field.Dist(x, y)), 1e-4) << x << ", " << y;
    EXPECT_NEAR(vx, double(field.Vector(x, y).x), 1e-5) << x << ", " << y;
    EXPECT_NEAR(vy, double(field.Vector(x, y).y), 1e-5) << x << ", " << y;
}

/* Row 25 of the same diamond: k = 0.5, from xl = 14 to xr = 26. Its edges have the normals (-+10, 12) / sqrt(244), so a
 * pixel that lies a columns inside is a x 10 / sqrt(244) away. */
TEST(Primitive, DiamondLowerRowByHand)
{
    FIELD field(40, 40);
    PATHREC *path = Diamond(20, 20, 12, 10);
    double h = 10;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    const double column = 10 / std::sqrt(244.0);
    const double nx = 10 / std::sqrt(244.0);
    const double ny = 12 / std::sqrt(244.0);
    /* Pixel 14 lies on the edge: it moves 0.01 to the right, so its vector is -0.1 x 0.01 columns. */
    const double rim = -0.1 * 0.01 * column;
    ExpectPixel(field, 13, 25, 0.01, -rim * nx, rim * ny);
    ExpectPixel(field, 14, 25, 0.01, -rim * nx, rim * ny);
    ExpectPixel(field, 15, 25, column * column, -column * nx, column * ny);
    /* The middle has h x k = 5, pixel 15 a sixth of that; five steps between. */
    for (int x = 16; x <= 20; x++) {
        const double e = 5.0 * (x - 14) / 6;
        ExpectPixel(field, x, 25, e * e, -e * nx, e * ny);
    }
    /* The right side is measured from column 21 on, which has h x k again. */
    for (int x = 21; x <= 25; x++) {
        const double e = 5.0 * (26 - x) / 5;
        ExpectPixel(field, x, 25, e * e, e * nx, e * ny);
    }
    /* Pixel 26 moves outwards: its vector w = -0.1 x 0.01 columns, written as (w.x, w.x) and (w.y, as it was). */
    ExpectPixel(field, 26, 25, 0.01, -rim * nx, -rim * nx);
    ExpectPixel(field, 27, 25, 0.01, -rim * ny, 0);
    EXPECT_NE(field.Vector(26, 25).x, field.Vector(27, 25).x);
    EXPECT_EQ(0.0F, field.Dist(12, 25));
    EXPECT_EQ(0.0F, field.Dist(28, 25));
    ZrPathDeletePtr(path, 0);
}

/* Row 15, in the upper half: k = (1 + 15 - 10) / 10, measured at y = 16, from xl = 12.8 to xr = 27.2. */
TEST(Primitive, DiamondUpperRowByHand)
{
    FIELD field(40, 40);
    PATHREC *path = Diamond(20, 20, 12, 10);
    double h = 10;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &field.map));
    const double nx = 10 / std::sqrt(244.0);
    const double ny = 12 / std::sqrt(244.0);
    const double rim = 0.1 * 0.8 * nx; /* pixel 12 lies 0.8 columns outside */
    ExpectPixel(field, 11, 15, 0.01, -rim * nx, -rim * ny);
    /* The end, pixel 13, and the pixel before it have 0.1 and the vector of the first pixel of the ramp, which has 1.
     */
    ExpectPixel(field, 12, 15, 0.1, -nx, -ny);
    ExpectPixel(field, 13, 15, 0.1, -nx, -ny);
    for (int x = 14; x <= 20; x++) {
        const double e = 6 * (x - 12.8) / 7.2;
        ExpectPixel(field, x, 15, e * e, -e * nx, -e * ny);
    }
    for (int x = 21; x <= 27; x++) {
        const double e = 6 * (27.2 - x) / 6.2;
        ExpectPixel(field, x, 15, e * e, e * nx, -e * ny);
    }
    const double last = 6 * 0.2 / 6.2;
    ExpectPixel(field, 28, 15, 0.01, last * nx, -last * ny);
    EXPECT_EQ(field.Vector(27, 15).x, field.Vector(28, 15).x);
    EXPECT_EQ(0.0F, field.Dist(10, 15));
    EXPECT_EQ(0.0F, field.Dist(29, 15));
    ZrPathDeletePtr(path, 0);
}

/* The first row, k = 0.1, measured at y = 11. Where an end meets the middle no ramp runs: the pixel outside is a copy.
 */
TEST(Primitive, DiamondTipWithoutARampCopiesItsEnd)
{
    FIELD narrow(40, 40);
    PATHREC *path = Diamond(20, 20, 8, 10); /* xl = 19.2: its end, pixel 20, is the middle */
    double h = 10;
    ASSERT_EQ(1, VMapPrimitive(path, &h, &narrow.map));
    const double e = 0.8 * 10 / std::sqrt(164.0);
    ExpectPixel(narrow, 19, 10, e * e, -e * 10 / std::sqrt(164.0), -e * 8 / std::sqrt(164.0));
    /* xr = 20.8: pixel 20 is the right end too and is written from its own measuring; behind it is rim. */
    ExpectPixel(narrow, 20, 10, e * e, e * 10 / std::sqrt(164.0), -e * 8 / std::sqrt(164.0));
    EXPECT_EQ(0.01F, narrow.Dist(21, 10));
    ZrPathDeletePtr(path, 0);

    FIELD wide(40, 40);
    path = Diamond(20, 20, 15, 10); /* xr = 21.5: its end, pixel 21, is the column behind the middle, h x k = 1 */
    ASSERT_EQ(1, VMapPrimitive(path, &h, &wide.map));
    ExpectPixel(wide, 21, 10, 1, 10 / std::sqrt(325.0), -15 / std::sqrt(325.0));
    ExpectPixel(wide, 22, 10, 1, 10 / std::sqrt(325.0), -15 / std::sqrt(325.0));
    EXPECT_EQ(0.0F, wide.Dist(23, 10));
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, RefusesWhatIsNoLonePrimitiveOrTooShort)
{
    FIELD field(10, 10);
    double h = 5;
    EXPECT_EQ(0, VMapPrimitive(nullptr, &h, &field.map));
    PATHREC *path = Rectangle(2, 2, 8, 8);
    path->primitive = 0;
    EXPECT_EQ(0, VMapPrimitive(path, &h, &field.map));
    for (int32_t kind : {1, 3, 4, 5}) {
        path->primitive = kind;
        path->nodeCount = 3;
        EXPECT_EQ(0, VMapPrimitive(path, &h, &field.map)) << kind;
    }
    path->primitive = 2;
    path->nodeCount = 2;
    EXPECT_EQ(0, VMapPrimitive(path, &h, &field.map));
    path->nodeCount = 5;
    PATHBUF none = nullptr;
    const SURFACEMAP empty = {&none, &none, nullptr, 1, 0, 0};
    EXPECT_EQ(0, VMapPrimitive(path, &h, &empty));
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, WritesOutsideThePlaneAreSkippedAndASinglePlaneIsEnough)
{
    for (double zoom : {0.25, 1.0, 7.0, 300.0}) {
        for (int kind = 1; kind <= 5; kind++) {
            PATHREC *path = Ellipse(20, 15, 12, 8);
            std::vector<TESTNODE> nodes(27, {2, 0, 0});
            for (size_t i = 0; i < nodes.size(); i++)
                nodes[i] = {uint16_t(i ? 2 : 6), std::sin(double(i)) * 3000, std::cos(double(i) * 2) * 900};
            PATHREC *wild = MakePath(nodes);
            for (PATHREC *shape : {path, wild}) {
                shape->primitive = kind;
                FIELD field(7, 5, zoom);
                double h = 0;
                EXPECT_EQ(shape == wild || kind != 5, VMapPrimitive(shape, &h, &field.map));
                ZrPathBufFree(field.offset);
                field.offset = nullptr;
                EXPECT_EQ(shape == wild || kind != 5, VMapPrimitive(shape, &h, &field.map));
                ZrPathDeletePtr(shape, 0);
            }
        }
    }
}

TEST(Primitive, EachPlaneAloneIsAsItIsBesideTheOther)
{
    /* The first ones reach behind the right border; the last two have ends that are copies. */
    const struct {
        int kind;
        PATHREC *path;
    } shapes[] = {{1, Ellipse(20, 15, 12, 8)},  {2, Rectangle(6, 5, 33, 24)}, {3, RoundRect(6, 5, 33, 24, 5)},
                  {4, Diamond(20, 15, 24, 16)}, {4, Diamond(2, 15, 24, 16)},  {4, Diamond(20, 15, 8, 10)},
                  {4, Diamond(20, 15, 15, 10)}};
    for (const auto &[kind, path] : shapes) {
        path->primitive = kind;
        FIELD both(30, 30), distance(30, 30), vectors(30, 30);
        ZrPathBufFree(distance.offset);
        ZrPathBufFree(vectors.dist);
        distance.offset = vectors.dist = nullptr;
        for (FIELD *field : {&both, &distance, &vectors}) {
            double h = 10;
            ASSERT_EQ(1, VMapPrimitive(path, &h, &field->map)) << kind;
        }
        EXPECT_EQ(0, memcmp(both.dist, distance.dist, size_t{30} * 30 * sizeof(float))) << kind;
        EXPECT_EQ(0, memcmp(both.offset, vectors.offset, size_t{30} * 30 * sizeof(SURFVECF))) << kind;
        ZrPathDeletePtr(path, 0);
    }
}

struct COUNTDOWN {
    int left;
    std::vector<int32_t> values;
};

int32_t CountDown(int32_t code, int32_t value, int32_t, intptr_t user)
{
    COUNTDOWN *count = reinterpret_cast<COUNTDOWN *>(user);
    if (code == 2) count->values.push_back(value);
    return code != 2 || --count->left > 0;
}

TEST(Primitive, AbortAtEveryRowFreesBothPlanesAndReportsTheShape)
{
    struct {
        PATHREC *path;
        int32_t index;
    } cases[] = {{Ellipse(20, 15, 12, 8), 0},
                 {Rectangle(5, 5, 35, 25), 1},
                 {RoundRect(4, 4, 36, 26, 6), 2},
                 {Diamond(20, 15, 14, 9), 3}};
    for (auto &c : cases) {
        for (int k = 1; k <= 30; k++) {
            COUNTDOWN count = {k, {}};
            VMAPPROGRESS progress = {0, CountDown, reinterpret_cast<intptr_t>(&count), 0, 100};
            FIELD field(40, 30, 1, &progress);
            zr32CommReset();
            double h = 10;
            EXPECT_EQ(0, VMapPrimitive(c.path, &h, &field.map));
            EXPECT_EQ(nullptr, field.dist);
            EXPECT_EQ(nullptr, field.offset);
            ZR32COMMERROR error;
            ASSERT_EQ(1, zr32CommLastError(&error));
            EXPECT_EQ(5200, error.words[1]);
            EXPECT_EQ(19, error.words[4]);
            EXPECT_EQ(c.index, error.words[5]);
            EXPECT_EQ((k - 1) * 100 / 30, count.values.back());
        }
        ZrPathDeletePtr(c.path, 0);
    }
}

} // namespace
