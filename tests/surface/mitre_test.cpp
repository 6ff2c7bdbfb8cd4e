/* mitre_test.cpp - wedges at corners: which corners are filled, with what, and what ends the fans. */
#include "surface/maps.h"

#include "surface/sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace zr32test;
using zr32::SURFACEMAP;

namespace {

/* A map of 100 x 100 whose pixel (0, 0) is path pixel (0, 0), with the mask of a path (inverted: of its outside). */
struct FIELD {
    PATHBUF mask = ZrPathBufAlloc(8, 100, 100);
    PATHBUF dist = ZrPathBufAlloc(32, 100, 100);
    PATHBUF offset = ZrPathBufAlloc(0x40, 100, 100);
    SURFACEMAP map = {&dist, &offset, nullptr, 1.0, 0, 0};

    explicit FIELD(PATHREC *shape, bool outside = false)
    {
        zr32::PathBandFill(shape, mask, 0, 1, 0, 0x10000, 0, 0);
        if (outside) zr32::VMapInvertMask(mask);
    }
    ~FIELD()
    {
        ZrPathBufFree(mask);
        ZrPathBufFree(dist);
        ZrPathBufFree(offset);
    }
    FIELD(const FIELD &) = delete;
    FIELD &operator=(const FIELD &) = delete;
};

TEST(MitreFill, CornersWhereRaysMeetAreLeftAlone)
{
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 60)});
    FIELD field(head);
    EXPECT_EQ(1, zr32::VMapMitreFill(head, 10, &field.map, field.mask));
    EXPECT_EQ(0, CountWritten(field.dist));
    EXPECT_EQ(0, CountWritten(field.offset));
    FreeChain(head);
}

/* Outside a box all four corners are filled, the last one closes the contour: each pixel keeps its distance from the
 * farther edge's extension, so that the ridge runs straight along the diagonal. Both ways round. */
TEST(MitreFill, WedgeOutsideACornerKeepsTheDistanceToTheFartherEdge)
{
    for (bool clockwise : {true, false}) {
        PATHREC *head = MakeChain({MakeBox(20, 20, 60, 60, clockwise)});
        FIELD field(head, true);
        EXPECT_EQ(1, zr32::VMapMitreFill(head, 9, &field.map, field.mask));
        for (int j = 1; j <= 10; j++) {
            for (int i = 1; i <= 10; i++) {
                const float farther = static_cast<float>(std::max(i, j) * std::max(i, j));
                const float nearer = static_cast<float>(std::min(i, j) * std::min(i, j));
                for (int corner = 0; corner < 4; corner++) {
                    const int x = corner % 2 ? 60 + i : 20 - i;
                    const int y = corner / 2 ? 60 + j : 20 - j;
                    const float d = DistAt(field.dist, x, y);
                    /* Beside the diagonal a fan's last position, on the ridge, may fall into either pixel. */
                    EXPECT_TRUE(d == farther || (std::abs(i - j) == 1 && d == nearer)) << x << ", " << y << ": " << d;
                }
            }
        }
        EXPECT_EQ(0.0F, DistAt(field.dist, 40, 15)) << "beside an edge rays come from the sweep";
        const SURFVEC16 above = VectorAt(field.offset, 17, 12);
        EXPECT_EQ(0, above.x1);
        EXPECT_EQ(8 * 256, above.y1) << "towards the upper edge's extension";
        const SURFVEC16 beside = VectorAt(field.offset, 12, 17);
        EXPECT_EQ(8 * 256, beside.x1);
        EXPECT_EQ(0, beside.y1);
        FreeChain(head);
    }
}

TEST(MitreFill, FilledWedgeAndSweepLeaveNoGap)
{
    PATHREC *head =
        MakeChain({MakePath({{6, 50, 20}, {2, 62, 48}, {2, 80, 70}, {2, 50, 60}, {2, 20, 74}, {3, 50, 20}})});
    FIELD field(head, true);
    zr32::VMapMitreFill(head, 8, &field.map, field.mask);
    zr32::VMapEdgeSweep(head, 8, 0, &field.map, field.mask);
    /* Every pixel outside the shape within 8 of the outline's points has a distance of at most that, and a vector. */
    for (int y = 2; y < 98; y++) {
        for (int x = 2; x < 98; x++) {
            double nearest = 1e9;
            for (uint32_t i = 1; i < head->nodeCount; i++) {
                const double ax = head->nodes[i - 1].x / 65536.0, ay = head->nodes[i - 1].y / 65536.0;
                const double bx = head->nodes[i].x / 65536.0, by = head->nodes[i].y / 65536.0;
                double t =
                    ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / ((bx - ax) * (bx - ax) + (by - ay) * (by - ay));
                t = std::clamp(t, 0.0, 1.0);
                nearest = std::min(nearest, std::hypot(x - ax - t * (bx - ax), y - ay - t * (by - ay)));
            }
            if (nearest > 7.5 || field.mask[y * 100 + x] < 255) continue;
            const float d = DistAt(field.dist, x, y);
            EXPECT_GT(d, 0.0F) << x << ", " << y;
            EXPECT_LT(std::sqrt(d), nearest + 0.75) << x << ", " << y;
        }
    }
    FreeChain(head);
}

TEST(MitreFill, SmoothJoinIsLeftAlone)
{
    PATHREC *head =
        MakeChain({MakePath({{6, 20, 20}, {2, 40, 20}, {2, 60, 20}, {2, 60, 60}, {2, 20, 60}, {3, 20, 20}})});
    FIELD field(head, true);
    zr32::VMapMitreFill(head, 9, &field.map, field.mask);
    for (int y = 5; y < 20; y++) EXPECT_EQ(0.0F, DistAt(field.dist, 40, y));
    FreeChain(head);
}

TEST(MitreFill, OpenContourIsNotClosed)
{
    /* The same box without its closing line, and with one that ends a little off. */
    for (double gap : {40.0, 1.0 / 65536}) {
        PATHREC *closed = MakeBox(20, 20, 60, 60);
        PATHREC *head = MakeChain({MakePath({{6, 20, 20}, {2, 60, 20}, {2, 60, 60}, {2, 20, 60}, {2, 20, 20 + gap}})});
        FIELD field(closed, true);
        zr32::VMapMitreFill(head, 9, &field.map, field.mask);
        EXPECT_EQ(0.0F, DistAt(field.dist, 15, 15)) << gap;
        EXPECT_EQ(25.0F, DistAt(field.dist, 65, 15)) << "the others are filled";
        FreeChain(head);
        zr32::RecordFree(closed);
    }
}

TEST(MitreFill, EndsThatDifferByOneFixedPointStepMakeNoCorner)
{
    PATHREC *head = MakeChain(
        {MakePath({{6, 20, 20}, {2, 60, 20}, {6, 60 + 1.0 / 65536, 20}, {2, 60, 60}, {2, 20, 60}, {3, 20, 20}})});
    PATHREC *box = MakeBox(20, 20, 60, 60);
    FIELD field(box, true);
    zr32::VMapMitreFill(head, 9, &field.map, field.mask);
    EXPECT_EQ(0.0F, DistAt(field.dist, 65, 15));
    EXPECT_EQ(25.0F, DistAt(field.dist, 65, 65));
    FreeChain(head);
    zr32::RecordFree(box);
}

/* Of two runs in one record the first is closed; the second's last end would be closed onto the first's start only. */
TEST(MitreFill, RecordOfSeveralRunsClosesNone)
{
    PATHREC *two = MakePath({{6, 10, 10},
                             {2, 30, 10},
                             {2, 30, 30},
                             {2, 10, 30},
                             {3, 10, 10},
                             {6, 60, 60},
                             {2, 80, 60},
                             {2, 80, 80},
                             {2, 60, 80},
                             {3, 60, 60}});
    PATHREC *head = MakeChain({two});
    FIELD field(head, true);
    zr32::VMapMitreFill(head, 5, &field.map, field.mask);
    EXPECT_EQ(0.0F, DistAt(field.dist, 7, 7)) << "only the record's last segment closes";
    EXPECT_EQ(0.0F, DistAt(field.dist, 57, 57)) << "and it does not end on the first run's start";
    EXPECT_EQ(9.0F, DistAt(field.dist, 33, 7));
    EXPECT_EQ(9.0F, DistAt(field.dist, 83, 57));
    FreeChain(head);
}

/* The end of one record and the start of the next form a corner if they are the same point. */
TEST(MitreFill, EndsOfTwoRecordsThatCoincideAreACorner)
{
    PATHREC *box = MakeBox(20, 20, 60, 60);
    PATHREC *head = MakeChain({MakePath({{6, 20, 60}, {2, 20, 20}}), MakePath({{6, 20, 20}, {2, 60, 20}})});
    FIELD field(box, true);
    zr32::VMapMitreFill(head, 9, &field.map, field.mask);
    EXPECT_EQ(25.0F, DistAt(field.dist, 15, 15));
    FreeChain(head);
    zr32::RecordFree(box);
}

/* Both looks at the corner fall on an empty mask: neither end is kept. */
TEST(MitreFill, IsolatedEndTakesNoPart)
{
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 60)});
    FIELD field(head, true);
    for (int y = 15; y < 26; y++)
        for (int x = 55; x < 66; x++) field.mask[y * 100 + x] = 0;
    zr32::VMapMitreFill(head, 9, &field.map, field.mask);
    EXPECT_EQ(0.0F, DistAt(field.dist, 65, 15));
    EXPECT_EQ(25.0F, DistAt(field.dist, 15, 15));
    FreeChain(head);
}

/* A very short side: its tangent is stretched, so that its samples overrun its end and only its first corner is found.
 */
TEST(MitreFill, VeryShortLineMakesACornerAtItsStartOnly)
{
    PATHREC *box = MakeBox(20, 20, 60, 60);
    PATHREC *head = MakeChain({MakePath({{6, 20, 40}, {2, 20, 20}, {2, 20.0625, 20}, {2, 60, 19}})});
    FIELD field(box, true);
    zr32::VMapMitreFill(head, 9, &field.map, field.mask);
    EXPECT_EQ(25.0F, DistAt(field.dist, 15, 15));
    FreeChain(head);
    zr32::RecordFree(box);
}

/* Two edges almost back on themselves: the offset lines meet hundreds of millions of steps away. */
TEST(MitreFill, SpikeEndsWhereItLeavesTheMap)
{
    for (double thin : {1.0, 1.0 / 256, 1.0 / 65536}) {
        PATHREC *head = MakeChain({MakePath({{6, 20, 50}, {2, 60, 50}, {2, 20, 50 + thin}, {3, 20, 50}})});
        FIELD field(head, true);
        std::fill(field.mask, field.mask + 100 * 100, uint8_t{255});
        for (int x = 20; x <= 60; x++) field.mask[50 * 100 + x] = 0;
        for (double width : {5.0, 1e5, 1e12, 1e18, HUGE_VAL, std::nan("")})
            EXPECT_EQ(1, zr32::VMapMitreFill(head, width, &field.map, field.mask));
        FreeChain(head);
    }
}

/* A curve of one fixed-point step, 1/65536 pixel, before a corner: two million lines stand in 31 pixels. */
TEST(MitreFill, CornerBehindASliverOfACurveIsFilledLikeAnyOther)
{
    const double sliver = 1.0 / 65536;
    PATHREC *box = MakeBox(20, 20, 60, 60);
    PATHREC *head = MakeChain(
        {MakePath({{6, 60, 60}, {2, 20 + sliver, 60}, {4, 20 + sliver, 60}, {4, 20, 60}, {4, 20, 60}, {2, 20, 20}})});
    FIELD field(box, true);
    zr32::VMapMitreFill(head, 30, &field.map, field.mask);
    for (int i = 1; i <= 18; i++) {
        for (int j = 1; j <= 18; j++) {
            if (std::abs(i - j) <= 1) continue;
            const float farther = static_cast<float>(std::max(i, j) * std::max(i, j));
            const SURFVEC16 v = VectorAt(field.offset, 20 - i, 60 + j);
            EXPECT_EQ(farther, DistAt(field.dist, 20 - i, 60 + j)) << i << ", " << j;
            EXPECT_EQ(i > j ? 256 * i : 0, v.x1) << i << ", " << j;
            EXPECT_EQ(i > j ? 0 : -256 * j, v.y1) << i << ", " << j;
        }
    }
    FreeChain(head);
    zr32::RecordFree(box);
}

/* At the least zoom such a curve is 2^-32 pixel long: line by line its fan would have 47 thousand million of them. The
 * corner is placed at (50.75, 50.75). */
TEST(MitreFill, FanOfTheShortestTangentEndsAndFillsItsHalf)
{
    const double at = 0.25 * 65536;
    const double sliver = 1.0 / 65536;
    PATHREC *head =
        MakeChain({MakePath({{6, at - sliver, at}, {4, at - sliver, at}, {4, at, at}, {4, at, at}, {2, at, 30000}})});
    FIELD field(head);
    std::fill(field.mask, field.mask + 100 * 100, uint8_t{255});
    for (int y = 50; y < 100; y++) std::fill(field.mask + 100 * y, field.mask + 100 * y + 52, uint8_t{0});
    field.map.zoom = 1.0 / 65536;
    field.map.originX = field.map.originY = -50;
    zr32::VMapMitreFill(head, 10, &field.map, field.mask);
    for (int i = 1; i <= 9; i++) {
        for (int j = i + 2; j <= 9; j++) {
            EXPECT_NEAR((j + 0.25) * (j + 0.25), DistAt(field.dist, 50 + i, 50 - j), 1e-4) << i << ", " << j;
            EXPECT_EQ(64 + 256 * j, VectorAt(field.offset, 50 + i, 50 - j).y1) << i << ", " << j;
        }
    }
    FreeChain(head);
}

TEST(MitreFill, NegativeWidthEnds)
{
    PATHREC *head = MakeChain({RandomShape(3, 50, 50, 30)});
    FIELD field(head, true);
    for (double width : {-0.5, -1.0, -2.0, -100.0, -1e12, -1e18, -1e98, -HUGE_VAL})
        EXPECT_EQ(1, zr32::VMapMitreFill(head, width, &field.map, field.mask));
    FreeChain(head);
}

} // namespace
