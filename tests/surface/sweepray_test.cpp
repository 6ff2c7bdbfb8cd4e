/* sweepray_test.cpp - rays of the edge sweep: reach, rim, ridges, what is left alone, and what must end quickly. */
#include "surface/maps.h"

#include "surface/offsetmerge.h"
#include "surface/sweep.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zr32test;
using zr32::SURFACEMAP;

namespace {

/* Planes over a hand-made mask whose pixel (0, 0) is path pixel (0, 0). */
struct FIELD {
    PATHBUF mask;
    PATHBUF dist;
    PATHBUF offset;
    SURFACEMAP map;
};

void MakeField(int width, int height, FIELD *field)
{
    field->mask = ZrPathBufAlloc(8, width, height);
    field->dist = ZrPathBufAlloc(32, width, height);
    field->offset = ZrPathBufAlloc(0x40, width, height);
    field->map = {&field->dist, &field->offset, nullptr, 1.0, 0, 0};
}

void FreeField(FIELD *field)
{
    ZrPathBufFree(field->mask);
    ZrPathBufFree(field->dist);
    ZrPathBufFree(field->offset);
}

void FillMask(const FIELD &field, int left, int top, int right, int bottom, uint8_t value)
{
    const zr32::BUFINFO info = zr32::BufInfo(field.mask);
    for (int y = top; y < bottom; y++)
        for (int x = left; x < right; x++) zr32::BufRow(field.mask, info, y)[x] = value;
}

void SetVector(const FIELD &field, int x, int y, SURFVEC16 value)
{
    const zr32::BUFINFO info = zr32::BufInfo(field.offset);
    *reinterpret_cast<SURFVEC16 *>(zr32::BufRow(field.offset, info, y) + 8 * x) = value;
}

void ExpectVector(SURFVEC16 want, SURFVEC16 got)
{
    EXPECT_EQ(want.x1, got.x1);
    EXPECT_EQ(want.y1, got.y1);
    EXPECT_EQ(want.x2, got.x2);
    EXPECT_EQ(want.y2, got.y2);
}

TEST(EdgeSweep, LoneRecordLeavesThePlanes)
{
    FIELD field;
    MakeField(60, 60, &field);
    FillMask(field, 10, 10, 50, 50, 255);
    PATHREC *box = MakeBox(10, 10, 50, 50);
    EXPECT_EQ(1, zr32::VMapEdgeSweep(box, 5, 0, &field.map, field.mask));
    EXPECT_EQ(0, CountWritten(field.dist));
    EXPECT_EQ(0, CountWritten(field.offset));
    zr32::RecordFree(box);
    FreeField(&field);
}

TEST(EdgeSweep, TailOfAChainIsNotSweptAndAnyRecordOfItWillDo)
{
    FIELD field;
    MakeField(60, 60, &field);
    FillMask(field, 10, 10, 30, 30, 255);
    FillMask(field, 35, 35, 55, 55, 255);
    PATHREC *first = MakeBox(10, 10, 30, 30);
    PATHREC *tail = MakeBox(35, 35, 55, 55);
    zr32::ChainLink(zr32::tableChain, first, tail);
    EXPECT_EQ(1, zr32::VMapEdgeSweep(tail, 3, 0, &field.map, field.mask)) << "from the tail the walk finds the head";
    EXPECT_GT(DistAt(field.dist, 10, 20), 0.0F);
    EXPECT_EQ(0.0F, DistAt(field.dist, 35, 45));
    FreeChain(first);
    FreeField(&field);
}

TEST(EdgeSweep, Refusals)
{
    FIELD field;
    MakeField(20, 20, &field);
    PATHREC *head = MakeChain({MakeBox(5, 5, 15, 15)});
    EXPECT_EQ(0, zr32::VMapEdgeSweep(nullptr, 5, 0, &field.map, field.mask));
    EXPECT_EQ(0, zr32::VMapEdgeSweep(head, 0.0, 0, &field.map, field.mask));
    EXPECT_EQ(0, zr32::VMapEdgeSweep(head, -0.0, 0, &field.map, field.mask));
    EXPECT_EQ(0, zr32::VMapEdgeSweep(head, 5, 0, &field.map, nullptr));
    PATHBUF none = nullptr;
    const SURFACEMAP noPlanes = {&none, &none, nullptr, 1.0, 0, 0};
    EXPECT_EQ(0, zr32::VMapEdgeSweep(head, 5, 0, &noPlanes, field.mask));
    EXPECT_EQ(0, zr32::VMapMitreFill(nullptr, 5, &field.map, field.mask));
    EXPECT_EQ(0, zr32::VMapMitreFill(head, 0.0, &field.map, field.mask));
    EXPECT_EQ(0, zr32::VMapMitreFill(head, 5, &noPlanes, field.mask));
    EXPECT_EQ(0, zr32::VMapMitreFill(head, 5, &field.map, nullptr));
    EXPECT_EQ(0, zr32::VMapEnvelopeSweep(nullptr, 5, &field.map, field.mask, 0, 0));
    EXPECT_EQ(0, zr32::VMapEnvelopeSweep(head, 0.0, &field.map, field.mask, 0, 0));
    EXPECT_EQ(0, zr32::VMapEnvelopeSweep(head, 5, &noPlanes, field.mask, 0, 0));
    EXPECT_EQ(0, zr32::VMapEnvelopeSweep(head, 5, &field.map, nullptr, 0, 0));
    EXPECT_EQ(0, CountWritten(field.dist));
    FreeChain(head);
    FreeField(&field);
}

/* A pixel's centre on the outline: the rim on the outline's own pixel, then whole distances, out to trunc(width + 1).
 */
TEST(EdgeSweep, RayOfAnAxisParallelLineEndsAtTheTruncatedReach)
{
    static const struct {
        double width;
        int last;
    } cases[] = {{4.0, 5}, {4.5, 5}, {5.99, 6}, {0.5, 1}, {0.25, 1}, {-0.5, 0}, {-1.0, 0}};
    for (const auto &c : cases) {
        FIELD field;
        MakeField(60, 60, &field);
        FillMask(field, 10, 10, 50, 50, 255);
        PATHREC *head = MakeChain({MakeBox(10, 10, 50, 50)});
        EXPECT_EQ(1, zr32::VMapEdgeSweep(head, c.width, 0, &field.map, field.mask));
        EXPECT_EQ(0.0001F, DistAt(field.dist, 10, 30));
        ExpectVector({-128, 0, 0, 0}, VectorAt(field.offset, 10, 30));
        for (int k = 1; k <= 8; k++) {
            EXPECT_EQ(k <= c.last ? static_cast<float>(k * k) : 0.0F, DistAt(field.dist, 10 + k, 30)) << c.width;
            ExpectVector(k <= c.last ? SURFVEC16{static_cast<int16_t>(-256 * k), 0, 0, 0} : SURFVEC16{},
                         VectorAt(field.offset, 10 + k, 30));
        }
        EXPECT_EQ(0.0F, DistAt(field.dist, 9, 30)) << "nothing outside";
        FreeChain(head);
        FreeField(&field);
    }
}

TEST(EdgeSweep, ZeroLengthLineIsSkipped)
{
    FIELD with;
    FIELD without;
    MakeField(60, 60, &with);
    MakeField(60, 60, &without);
    for (FIELD *field : {&with, &without}) FillMask(*field, 10, 10, 50, 50, 255);
    PATHREC *doubled = MakeChain(
        {MakePath({{6, 10, 10}, {2, 50, 10}, {2, 50, 10}, {2, 50, 50}, {2, 10, 50}, {2, 10, 50}, {3, 10, 10}})});
    PATHREC *plain = MakeChain({MakeBox(10, 10, 50, 50)});
    EXPECT_EQ(1, zr32::VMapEdgeSweep(doubled, 6, 0, &with.map, with.mask));
    EXPECT_EQ(1, zr32::VMapEdgeSweep(plain, 6, 0, &without.map, without.mask));
    PLAINMAP same = EmptyMap(without.dist);
    for (int y = 0; y < same.height; y++)
        for (int x = 0; x < same.width; x++) {
            const SURFVEC16 v = VectorAt(without.offset, x, y);
            same.pixels[static_cast<size_t>(y * same.width + x)] = {DistAt(without.dist, x, y), v.x1, v.y1, v.x2, v.y2};
        }
    EXPECT_EQ("", Difference(with.dist, with.offset, same));
    FreeChain(doubled);
    FreeChain(plain);
    FreeField(&with);
    FreeField(&without);
}

/* A bar ten pixels high: the middle row lies 5 from both edges, its neighbours 4 and 6, too far apart for a ridge...
 * but the nearer edge, coming last, keeps the farther one. */
TEST(EdgeSweep, PixelBetweenTwoEdgesIsARidge)
{
    FIELD field;
    MakeField(80, 40, &field);
    FillMask(field, 10, 10, 70, 21, 255);
    PATHREC *head = MakeChain({MakeBox(10, 10, 70, 20)});
    EXPECT_EQ(1, zr32::VMapEdgeSweep(head, 8, 0, &field.map, field.mask));
    ExpectVector({0, 1280, 0, -1280}, VectorAt(field.offset, 40, 15)); /* equally far: the later edge comes first */
    EXPECT_EQ(25.0F, DistAt(field.dist, 40, 15));
    ExpectVector({0, 1024, 0, -1536}, VectorAt(field.offset, 40, 16)); /* nearer comes last: farther stays second */
    ExpectVector({0, -1024, 0, 0}, VectorAt(field.offset, 40, 14));    /* farther comes last: two pixels are too many */
    FreeChain(head);
    FreeField(&field);
}

TEST(EdgeSweep, RimKeepsAShortFirstVectorButNotTheDistance)
{
    static const struct {
        const char *name;
        SURFVEC16 old;
        SURFVEC16 want;
    } cases[] = {
        {"none", {0, 0, 5, 6}, {-128, 0, 0, 0}},
        {"short", {300, 100, 5, 6}, {300, 100, 5, 6}},
        {"just below 1.5", {383, 0, 5, 6}, {383, 0, 5, 6}},
        {"1.5", {384, 0, 5, 6}, {-128, 0, 0, 0}},
        {"long", {0, -2560, 5, 6}, {-128, 0, 0, 0}},
    };
    for (const auto &c : cases) {
        FIELD field;
        MakeField(60, 60, &field);
        FillMask(field, 10, 10, 50, 50, 255);
        SetVector(field, 10, 30, c.old);
        reinterpret_cast<float *>(field.dist)[30 * 60 + 10] = 0.00001F;
        PATHREC *head = MakeChain({MakeBox(10, 10, 50, 50)});
        zr32::VMapEdgeSweep(head, 5, 0, &field.map, field.mask);
        EXPECT_EQ(0.0001F, DistAt(field.dist, 10, 30)) << c.name;
        ExpectVector(c.want, VectorAt(field.offset, 10, 30));
        FreeChain(head);
        FreeField(&field);
    }
}

/* A ray that begins outside skips rim pixels that the mask covers well: above 0x80 a pixel outside, above 0xf0 half a
 * pixel outside. */
TEST(EdgeSweep, RaysFromOutsideLeaveCoveredRimPixels)
{
    for (int byte : {0, 0x80, 0x81, 0xff}) {
        FIELD field;
        MakeField(60, 60, &field);
        FillMask(field, 10, 10, 50, 50, 255);
        FillMask(field, 9, 20, 10, 40, static_cast<uint8_t>(byte));
        PATHREC *head = MakeChain({MakeBox(10, 10, 50, 50)});
        zr32::VMapEdgeSweep(head, 5, -1, &field.map, field.mask);
        EXPECT_EQ(byte > 0x80 ? 0.0F : 0.0001F, DistAt(field.dist, 9, 30)) << byte;
        EXPECT_EQ(0.0001F, DistAt(field.dist, 10, 30)) << "at the outline itself no byte is asked";
        FreeChain(head);
        FreeField(&field);
    }
}

TEST(EdgeSweep, Row0AndColumn0StayEmpty)
{
    FIELD field;
    MakeField(30, 30, &field);
    FillMask(field, 0, 0, 30, 30, 255);
    FillMask(field, 3, 3, 27, 27, 0);
    PATHREC *head = MakeChain({MakeBox(3, 3, 27, 27)});
    zr32::VMapEdgeSweep(head, 10, 0, &field.map, field.mask);
    EXPECT_EQ(4.0F, DistAt(field.dist, 1, 15));
    for (int i = 0; i < 30; i++) {
        EXPECT_EQ(0.0F, DistAt(field.dist, i, 0));
        EXPECT_EQ(0.0F, DistAt(field.dist, 0, i));
    }
    FreeChain(head);
    FreeField(&field);
}

TEST(EdgeSweep, MaskIsNotWritten)
{
    PATHREC *head = MakeChain({RandomShape(77, 40, 40, 30)});
    PATHBUF mask = MakeMask(head);
    const zr32::BUFINFO info = zr32::BufInfo(mask);
    const std::vector<uint8_t> before(mask, mask + info.stride * static_cast<size_t>(info.height));
    PATHBUF dist = ZrPathBufAlloc(32, info.width, info.height);
    PATHBUF none = nullptr;
    const SURFACEMAP map = {&dist, &none, nullptr, 1.0, 5, 5};
    zr32::VMapMitreFill(head, 9, &map, mask);
    zr32::VMapEdgeSweep(head, 9, 0, &map, mask);
    EXPECT_TRUE(std::equal(before.begin(), before.end(), mask));
    ZrPathBufFree(dist);
    ZrPathBufFree(mask);
    FreeChain(head);
}

/* Each plane is the same whether the other is made or not. */
TEST(EdgeSweep, PlanesDoNotDependOnEachOther)
{
    PATHREC *head = MakeChain({RandomShape(5, 40, 40, 30)});
    MAPCALL both;
    both.path = head;
    both.mask = MakeMask(head);
    MAPCALL one = both;
    MAPCALL other = both;
    one.wantOffset = 0;
    other.wantDist = 0;
    Call(&both);
    Call(&one);
    Call(&other);
    EXPECT_EQ(1, one.result);
    EXPECT_EQ(1, other.result);
    const size_t pixels = CountWritten(both.dist) > 0 ? static_cast<size_t>(zr32::BufInfo(both.dist).width) *
                                                            static_cast<size_t>(zr32::BufInfo(both.dist).height)
                                                      : 0;
    ASSERT_GT(pixels, 0U);
    EXPECT_TRUE(std::equal(both.dist, both.dist + 4 * pixels, one.dist));
    EXPECT_TRUE(std::equal(both.offset, both.offset + 8 * pixels, other.offset));
    for (MAPCALL *call : {&both, &one, &other}) FreePlanes(call);
    ZrPathBufFree(both.mask);
    FreeChain(head);
}

TEST(EdgeSweep, UnknownKindEndsTheRecordNotTheChain)
{
    FIELD field;
    MakeField(60, 60, &field);
    FillMask(field, 10, 10, 50, 50, 255);
    PATHREC *broken = MakePath({{6, 10, 10}, {0x0ff0, 1, 1}, {2, 50, 10}});
    PATHREC *head = MakeChain({broken, MakeBox(10, 10, 50, 50)});
    EXPECT_EQ(1, zr32::VMapEdgeSweep(head, 5, 0, &field.map, field.mask));
    EXPECT_EQ(9.0F, DistAt(field.dist, 13, 30));
    FreeChain(head);
    FreeField(&field);
}

TEST(EdgeSweep, CurveCutShortByTheNodeCountIsLeftOut)
{
    FIELD field;
    MakeField(60, 60, &field);
    PATHREC *head = MakeChain({MakePath({{6, 10, 10}, {4, 20, 10}, {4, 30, 10}})});
    EXPECT_EQ(1, zr32::VMapEdgeSweep(head, 5, 0, &field.map, field.mask));
    EXPECT_EQ(0, CountWritten(field.dist));
    FreeChain(head);
    FreeField(&field);
}

/* ---- what must end quickly ---- */

TEST(EdgeSweep, WidthsThatAreHugeOrNotNumbersEnd)
{
    PATHREC *head = MakeChain({MakeCircle(30, 30, 20), MakeBox(25, 25, 35, 35, false)});
    PATHBUF mask = MakeMask(head);
    for (double width : {1e6, 1e15, 1e17, 1e300, HUGE_VAL, -HUGE_VAL, -1e9, std::nan(""), 5e-324}) {
        for (int32_t outset : {0, 8}) {
            MAPCALL call;
            call.path = head;
            call.mask = mask;
            call.outset = outset;
            call.width = width;
            Call(&call);
            EXPECT_EQ(1, call.result) << width;
            FreePlanes(&call);
        }
    }
    ZrPathBufFree(mask);
    FreeChain(head);
}

/* Lines and curves as long as coordinates and zoom allow: steps are halved down to 1, never to 0, and rays far outside
 * the map cost nothing. */
TEST(EdgeSweep, SegmentsOfHugeLengthEnd)
{
    FIELD field;
    MakeField(50, 50, &field);
    FillMask(field, 0, 0, 50, 50, 255);
    const double big = 32767;
    PATHREC *head = MakeChain({MakePath({{6, -big, -big},
                                         {2, big, big - 7},
                                         {2, -big, big},
                                         {4, big, -big},
                                         {4, -big, -big},
                                         {4, big, big},
                                         {3, -big, -big}})});
    for (double zoom : {1.0, 2.0, 32767.0}) {
        field.map.zoom = zoom;
        EXPECT_EQ(1, zr32::VMapMitreFill(head, 1e9, &field.map, field.mask));
        EXPECT_EQ(1, zr32::VMapEdgeSweep(head, 20, 0, &field.map, field.mask));
    }
    EXPECT_EQ(1, zr32::VMapEdgeSweep(head, 1e9, 0, &field.map, field.mask));
    FreeChain(head);
    FreeField(&field);
}

/* An oblique line between 32768 and 65536 pixels long is halved to a step of 1, and the halving that follows for
 * oblique lines must not make it 0. */
TEST(EdgeSweep, ObliqueLineThatReachesTheShortestStepEnds)
{
    FIELD field;
    MakeField(50, 50, &field);
    FillMask(field, 0, 20, 50, 50, 255);
    field.map.originX = -100;
    PATHREC *head = MakeChain({MakePath({{6, -20000, 20}, {2, 30000, 21}})});
    EXPECT_EQ(1, zr32::VMapEdgeSweep(head, 5, 0, &field.map, field.mask));
    EXPECT_GT(CountWritten(field.dist), 0);
    FreeChain(head);
    FreeField(&field);
}

TEST(EdgeSweep, CurveOfNoExtentEnds)
{
    FIELD field;
    MakeField(50, 50, &field);
    FillMask(field, 0, 0, 50, 50, 255);
    PATHREC *point = MakePath({{6, 20, 20}, {4, 20, 20}, {4, 20, 20}, {5, 20, 20}});
    PATHREC *speck = MakePath({{6, 20, 20}, {4, 20.00002, 20}, {4, 20, 20.00002}, {5, 20.00004, 20.00002}});
    PATHREC *head = MakeChain({point, speck});
    for (double zoom : {1.0, 1.0 / 65536, 0.7}) {
        field.map.zoom = zoom;
        EXPECT_EQ(1, zr32::VMapMitreFill(head, 5, &field.map, field.mask));
        EXPECT_EQ(1, zr32::VMapEdgeSweep(head, 5, 0, &field.map, field.mask));
    }
    FreeChain(head);
    FreeField(&field);
}

TEST(EdgeSweep, MaskAndPlanesOfOtherSizesAreSafe)
{
    PATHREC *head = MakeChain({MakeCircle(30, 30, 20), MakeBox(25, 25, 35, 35, false)});
    for (int maskSize : {0, 1, 20, 90}) {
        for (int planeSize : {0, 1, 20, 90}) {
            FIELD field;
            MakeField(maskSize, maskSize, &field);
            FillMask(field, 0, 0, maskSize, maskSize, 200);
            ZrPathBufFree(field.dist);
            ZrPathBufFree(field.offset);
            field.dist = ZrPathBufAlloc(32, planeSize, planeSize);
            field.offset = ZrPathBufAlloc(0x40, planeSize, planeSize);
            EXPECT_EQ(1, zr32::VMapMitreFill(head, 30, &field.map, field.mask));
            EXPECT_EQ(1, zr32::VMapEdgeSweep(head, 30, 0, &field.map, field.mask));
            EXPECT_EQ(1, zr32::VMapEnvelopeSweep(head, 30, &field.map, field.mask, 3, -4));
            FreeField(&field);
        }
    }
    FreeChain(head);
}

/* Column 1 and row 1 are the first that a ray writes, the size the first that it does not; a ray along such a border
 * stays on it. */
TEST(EdgeSweep, RayEntryOnABorderIsWhereTheRayStands)
{
    const zr32::POINTDB down = {0, 1};
    const zr32::POINTDB right = {1, 0};
    const zr32::POINTDB left = {-1, 0};
    EXPECT_EQ(-1, zr32::RayEntry({1, 50}, down, -1, 1, 300, 200));
    EXPECT_EQ(-1, zr32::RayEntry({50, 1}, right, -1, 1, 300, 200));
    EXPECT_EQ(zr32::farthestRay, zr32::RayEntry({300, 50}, down, 0, 1, 300, 200));
    EXPECT_EQ(0, zr32::RayEntry({300, 50}, left, 0, 1, 300, 200));
    EXPECT_EQ(zr32::farthestRay, zr32::RayEntry({0.5, 50}, down, 0, 1, 300, 200));
}

/* Rays that come from far away enter the map at the same position, skipped to or walked to. */
TEST(EdgeSweep, RayEntryNeverPassesThePositionThatEnters)
{
    std::mt19937 rng(4711);
    for (int k = 0; k < 20000; k++) {
        const auto unit = [&rng] { return static_cast<double>(rng()) / 4294967296.0; };
        const double angle = 6.2831853 * unit();
        const zr32::POINTDB p = {(unit() - 0.5) * 4000, (unit() - 0.5) * 4000};
        zr32::POINTDB n = {std::cos(angle), std::sin(angle)};
        if (k % 5 == 0) n = {k % 2 ? 1.0 : -1.0, 0};
        const double from = k % 3 ? 0 : -1;
        const double step = k % 2 ? 0.5 : 1;
        double first = zr32::farthestRay;
        for (double t = from; t < 6000; t += step)
            if (zr32::RayOnRaster({p.x + n.x * t, p.y + n.y * t}, 300, 200)) {
                first = t;
                break;
            }
        const double entry = zr32::RayEntry(p, n, from, step, 300, 200);
        ASSERT_LE(entry, first) << "case " << k;
        ASSERT_EQ(0.0, std::fmod(entry - from, step)) << "case " << k;
        if (first < zr32::farthestRay) {
            ASSERT_GE(entry, first - 4) << "case " << k << ": little is left to walk";
        }
    }
}

} // namespace
