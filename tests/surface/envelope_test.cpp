/* envelope_test.cpp - maps of envelope frames: half width, lattice, register, abort. */
#include "surface/maps.h"

#include "frame/faults.h"
#include "zr32comm.h"

#include <gtest/gtest.h>

using namespace zr32test;

namespace {

/* A shape that fills the box, and the box's frame behind it. */
PATHREC *WithFrame(const std::vector<TESTNODE> &nodes, double left, double top, double right, double bottom)
{
    PATHREC *head = MakeBox(left, top, right, bottom);
    PATHREC *frame = MakePath(nodes);
    frame->flags = PATHREC_ENVELOPE;
    zr32::ChainLink(zr32::tableChain, head, frame);
    return head;
}

std::vector<TESTNODE> BilinearBox(double left, double top, double right, double bottom)
{
    return {{6, left, top}, {2, right, top}, {2, right, bottom}, {2, left, bottom}, {3, left, top}};
}

/* The same with its long sides as curves whose controls stand at thirds. */
std::vector<TESTNODE> BicubicBox(double left, double top, double right, double bottom)
{
    const double third = (right - left) / 3;
    return {{6, left, top},     {4, left + third, top},     {4, right - third, top},   {4, right, top},
            {2, right, bottom}, {4, right - third, bottom}, {4, left + third, bottom}, {4, left, bottom},
            {3, left, top}};
}

MAPCALL EnvelopeCall(PATHREC *head)
{
    MAPCALL call;
    call.path = head;
    call.mask = MakeMask(head);
    call.envelopeMode = 1;
    return call;
}

void Free(MAPCALL *call)
{
    FreePlanes(call);
    ZrPathBufFree(call->mask);
    FreeChain(call->path);
}

TEST(EnvelopeMap, HalfWidthReplacesTheCallersWidth)
{
    static const struct {
        const char *name;
        std::vector<TESTNODE> nodes;
        double want;
    } cases[] = {
        {"five nodes, equal sides", BilinearBox(20, 20, 80, 50), 15.0},
        {"five nodes, the right side longer", {{6, 20, 20}, {2, 80, 10}, {2, 80, 60}, {2, 20, 50}, {3, 20, 20}}, 25.0},
        {"five nodes, the left side longer", {{6, 20, 10}, {2, 80, 20}, {2, 80, 50}, {2, 20, 60}, {3, 20, 10}}, 25.0},
        {"nine nodes: between the middles of the long sides", BicubicBox(21, 20, 81, 50), 15.0},
        {"nine nodes, bulging: the middles count",
         {{6, 20, 40},
          {4, 40, 20},
          {4, 60, 20},
          {4, 80, 40},
          {2, 80, 50},
          {4, 60, 70},
          {4, 40, 70},
          {4, 20, 50},
          {3, 20, 40}},
         20.0},
        {"198 wide", BilinearBox(20, 20, 80, 218), 99.0},
        {"wider than 198", BilinearBox(20, 20, 80, 300), 99.0},
    };
    for (const auto &c : cases) {
        PATHREC *head = WithFrame(c.nodes, 20, 20, 80, 50);
        MAPCALL call = EnvelopeCall(head);
        call.width = 1234.5;
        Call(&call);
        EXPECT_EQ(1, call.result) << c.name;
        EXPECT_DOUBLE_EQ(c.want, call.width) << c.name;
        Free(&call);
    }
}

/* A band of 60 x 30 rises from both long sides to the middle. The map begins at 15: row 5 is the upper side's. */
TEST(EnvelopeMap, BandRisesFromBothLongSidesToTheMiddle)
{
    for (const auto &nodes : {BilinearBox(20, 20, 80, 50), BicubicBox(20, 20, 80, 50)}) {
        PATHREC *head = WithFrame(nodes, 20, 20, 80, 50);
        MAPCALL call = EnvelopeCall(head);
        Call(&call);
        ASSERT_EQ(1, call.result);
        for (int x = 1; x <= 70; x++) { /* beyond the ends of the frame too */
            EXPECT_EQ(0.0001F, DistAt(call.dist, x, 5)) << x;
            EXPECT_EQ(0.0001F, DistAt(call.dist, x, 35)) << x;
            for (int k = 1; k <= 15; k++) {
                EXPECT_NEAR(k * k, DistAt(call.dist, x, 5 + k), 1e-6) << x << ", " << k;
                EXPECT_NEAR(k * k, DistAt(call.dist, x, 35 - k), 1e-6) << x << ", " << k;
            }
            const SURFVEC16 ridge = VectorAt(call.offset, x, 20);
            EXPECT_EQ(15 * 256, std::abs(ridge.y1)) << x;
            EXPECT_EQ(-ridge.y1, ridge.y2) << "both sides: the ridge";
        }
        Free(&call);
    }
}

/* A frame of five nodes is swept as the nine nodes that stand for it, with the second side's controls exchanged. */
TEST(EnvelopeMap, FiveNodesAreTheNineWithStraightCurves)
{
    PATHREC *five = WithFrame({{6, 21, 22}, {2, 81, 19}, {2, 78, 49}, {2, 18, 52}, {3, 21, 22}}, 20, 20, 80, 50);
    PATHREC *nine = WithFrame({{6, 21, 22},
                               {4, 41, 21},
                               {4, 61, 20},
                               {4, 81, 19},
                               {2, 78, 49},
                               {4, 38, 51},
                               {4, 58, 50},
                               {4, 18, 52},
                               {3, 21, 22}},
                              20, 20, 80, 50);
    MAPCALL a = EnvelopeCall(five);
    MAPCALL b = EnvelopeCall(nine);
    Call(&a);
    Call(&b);
    ASSERT_GT(CountWritten(a.dist), 1000);
    ASSERT_EQ(a.width, b.width);
    const size_t pixels = 71 * 41;
    EXPECT_TRUE(std::equal(a.dist, a.dist + 4 * pixels, b.dist));
    EXPECT_TRUE(std::equal(a.offset, a.offset + 8 * pixels, b.offset));
    Free(&a);
    Free(&b);
}

TEST(EnvelopeMap, FrameOfAnotherNodeCountMakesNoLattice)
{
    for (size_t nodes : {4, 13}) {
        std::vector<TESTNODE> frame = {{6, 20, 20}};
        while (frame.size() < nodes) frame.push_back({2, 80, 20.0 + static_cast<double>(frame.size())});
        PATHREC *head = WithFrame(frame, 20, 20, 80, 50);
        MAPCALL call = EnvelopeCall(head);
        call.width = 120;
        Call(&call);
        EXPECT_EQ(0, call.result);
        EXPECT_EQ(99.0, call.width) << "left as it was, but for the cut";
        EXPECT_EQ(0, CountWritten(call.dist));
        Free(&call);
    }
}

TEST(EnvelopeMap, FrameWithoutWidthIsRefused)
{
    PATHREC *head = WithFrame(BilinearBox(20, 30, 80, 30), 20, 20, 80, 50);
    MAPCALL call = EnvelopeCall(head);
    Call(&call);
    EXPECT_EQ(0, call.result);
    EXPECT_EQ(0.0, call.width);
    Free(&call);
}

TEST(EnvelopeMap, OtherZoomsAreSafe)
{
    for (ZRFIXED zoom : {0x8000, 0x20000, 1, 0, -0x10000, 0x7fffffff}) {
        PATHREC *head = WithFrame(BicubicBox(20, 20, 80, 50), 20, 20, 80, 50);
        MAPCALL call = EnvelopeCall(head);
        call.zoom = zoom;
        Call(&call);
        EXPECT_EQ(1, call.result);
        Free(&call);
    }
}

/* The lattice of a frame from (20, 20) to (80, 50) runs from -10 to 110 and has a mask of 131 x 41. At zoom 2 its upper
 * side still lies on the mask's row 5, but the mask ends at 41 rows, before the lower side at 65, and its band at
 * column 125, which is the map's 65. */
TEST(EnvelopeMap, AtAnotherZoomTheMaskIsOutOfRegister)
{
    PATHREC *head = WithFrame(BicubicBox(20, 20, 80, 50), 20, 20, 80, 50);
    MAPCALL call = EnvelopeCall(head);
    ZrPathBufFree(call.mask);
    call.zoom = 0x20000;
    call.mask = MakeMask(head, 0, call.zoom);
    Call(&call);
    ASSERT_EQ(1, call.result);
    EXPECT_EQ(15.0, call.width) << "in image pixels";
    for (int x : {1, 35, 64}) {
        EXPECT_EQ(0.0001F, DistAt(call.dist, x, 5)) << x;
        for (int k = 1; k <= 16; k++) EXPECT_NEAR(k * k, DistAt(call.dist, x, 5 + k), 1e-6) << x << ", " << k;
        for (int y = 22; y < 71; y++) EXPECT_EQ(0.0F, DistAt(call.dist, x, y)) << x << ", " << y;
    }
    for (int y = 7; y < 71; y++) EXPECT_EQ(0.0F, DistAt(call.dist, 70, y)) << y;
    Free(&call);
}

TEST(EnvelopeMap, PercentagesRunOverTheLattice)
{
    COUNTER counter;
    VMAPPROGRESS progress = ProgressOf(&counter);
    PATHREC *head = WithFrame(BicubicBox(20, 20, 80, 50), 20, 20, 80, 50);
    MAPCALL call = EnvelopeCall(head);
    call.progress = &progress;
    Call(&call);
    /* Nodes 0, 1, 4, 5, 6, 7, 10, 11, 12 of 13. */
    EXPECT_EQ((std::vector<int>{0, 7, 30, 38, 46, 53, 76, 84, 92}), counter.values);
    Free(&call);
}

TEST(EnvelopeMap, AbortAtAnyCallFreesAllAndReports)
{
    for (int k = 1; k <= 50; k++) {
        PATHREC *head = WithFrame(BicubicBox(20, 20, 80, 50), 20, 20, 80, 50);
        MAPCALL call = EnvelopeCall(head);
        const int64_t bufs = zr32::FaultLiveBlocks(zr32::ALLOC_BUF);
        const int64_t heap = zr32::FaultLiveBlocks(zr32::ALLOC_PATHHEAP);
        const int64_t global = zr32::FaultLiveBlocks(zr32::ALLOC_GLOBAL);
        COUNTER counter;
        counter.stopAt = k;
        VMAPPROGRESS progress = ProgressOf(&counter);
        call.progress = &progress;
        zr32CommReset();
        Call(&call);
        EXPECT_EQ(1, counter.ends);
        if (k <= 9) {
            EXPECT_EQ(0, call.result);
            EXPECT_EQ(nullptr, call.dist);
            EXPECT_EQ(nullptr, call.offset);
            ZR32COMMERROR error;
            EXPECT_EQ(1, zr32CommLastError(&error));
            EXPECT_EQ(5200, error.words[1]);
            EXPECT_EQ(21, error.words[4]);
            EXPECT_EQ(1, error.words[5]);
        } else {
            EXPECT_EQ(1, call.result);
        }
        FreePlanes(&call);
        EXPECT_EQ(bufs, zr32::FaultLiveBlocks(zr32::ALLOC_BUF));
        EXPECT_EQ(heap, zr32::FaultLiveBlocks(zr32::ALLOC_PATHHEAP));
        EXPECT_EQ(global, zr32::FaultLiveBlocks(zr32::ALLOC_GLOBAL));
        Free(&call);
    }
}

} // namespace
