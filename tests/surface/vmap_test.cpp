/* vmap_test.cpp - which builder runs, what the planes hold on every way out, progress and abort. */
#include "surface/maps.h"

#include "frame/faults.h"
#include "zr32comm.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace zr32test;
using zr32::ALLOC_BUF;
using zr32::ALLOC_GLOBAL;
using zr32::ALLOC_PATHHEAP;
using zr32::ALLOCATOR;
using zr32::FaultLiveBlocks;
using zr32::FaultSet;
using zr32::FaultStruck;

namespace {

void ExpectError(int32_t code, int32_t subCode, int32_t index)
{
    ZR32COMMERROR error;
    ASSERT_GT(zr32CommLastError(&error), 0);
    EXPECT_EQ(0, error.words[0]);
    EXPECT_EQ(code, error.words[1]);
    EXPECT_EQ(0, error.words[2]);
    EXPECT_EQ(2600, error.words[3]);
    EXPECT_EQ(subCode, error.words[4]);
    EXPECT_EQ(index, error.words[5]);
}

std::vector<uint8_t> Bytes(PATHBUF mask)
{
    const zr32::BUFINFO info = zr32::BufInfo(mask);
    return std::vector<uint8_t>(mask, mask + info.stride * static_cast<size_t>(info.height));
}

struct BOXMAP {
    PATHREC *head;
    MAPCALL call;
};

/* A box of 40 x 30 with its tail, and a mask that is outset pixels larger. */
BOXMAP MakeBoxMap(int32_t outset)
{
    BOXMAP made;
    made.head = MakeChain({MakeBox(20, 20, 60, 50)});
    made.call.path = made.head;
    made.call.outset = outset;
    made.call.mask = MakeMask(made.head, outset);
    return made;
}

void Free(BOXMAP *made)
{
    FreePlanes(&made->call);
    ZrPathBufFree(made->call.mask);
    FreeChain(made->head);
}

PATHREC *MakeFrame(double left, double top, double right, double bottom)
{
    PATHREC *frame = MakePath({{6, left, top}, {2, right, top}, {2, right, bottom}, {2, left, bottom}, {3, left, top}});
    frame->flags = PATHREC_ENVELOPE;
    return frame;
}

/* ---- refusals ---- */

TEST(VMap, NullPathZeroesBothHandles)
{
    MAPCALL call;
    Call(&call);
    EXPECT_EQ(0, call.result);
    EXPECT_EQ(nullptr, call.dist);
    EXPECT_EQ(nullptr, call.offset);
}

TEST(VMap, MaskThatIsWantedButMissingZeroesBothHandles)
{
    MAPCALL call;
    call.path = MakeBox(10, 10, 20, 20);
    Call(&call);
    EXPECT_EQ(0, call.result);
    EXPECT_EQ(nullptr, call.dist);
    EXPECT_EQ(nullptr, call.offset);
    zr32::RecordFree(call.path);
}

TEST(VMap, NullWidthIsRefused)
{
    PATHREC *path = MakeBox(10, 10, 20, 20);
    PATHBUF dist = reinterpret_cast<PATHBUF>(uintptr_t{1});
    EXPECT_EQ(0, ZrPathVMap(path, &dist, nullptr, 0, 0, 0, 0, 0, nullptr, 0, 0, nullptr, nullptr, 0x10000));
    EXPECT_EQ(nullptr, dist);
    zr32::RecordFree(path);
}

TEST(VMap, NullHandleAddressAsksForNoPlane)
{
    BOXMAP made = MakeBoxMap(0);
    PATHBUF offset = reinterpret_cast<PATHBUF>(uintptr_t{1});
    double width = 5;
    EXPECT_EQ(1,
              ZrPathVMap(made.head, nullptr, &offset, 0, 0, 0, 0, 0, &width, 0, 1, made.call.mask, nullptr, 0x10000));
    EXPECT_GT(CountWritten(offset), 0);
    ZrPathBufFree(offset);
    Free(&made);
}

TEST(VMap, NeitherPlaneGivesZeroFromTheSweepAndNothingToFree)
{
    BOXMAP made = MakeBoxMap(0);
    made.call.wantDist = made.call.wantOffset = 0;
    Call(&made.call);
    EXPECT_EQ(0, made.call.result);
    EXPECT_EQ(nullptr, made.call.dist);
    EXPECT_EQ(nullptr, made.call.offset);
    Free(&made);
}

TEST(VMap, OutsetWithoutUseMaskGivesZeroAndEmptyPlanesWhateverTheMask)
{
    for (int32_t outset : {4, -4}) {
        BOXMAP made = MakeBoxMap(outset);
        const std::vector<uint8_t> before = Bytes(made.call.mask);
        made.call.useMask = 0;
        Call(&made.call);
        EXPECT_EQ(0, made.call.result);
        ASSERT_NE(nullptr, made.call.dist);
        ASSERT_NE(nullptr, made.call.offset);
        EXPECT_EQ(0, CountWritten(made.call.dist));
        EXPECT_EQ(0, CountWritten(made.call.offset));
        EXPECT_EQ(before, Bytes(made.call.mask));
        Free(&made);
    }
}

/* ---- the choice of the builder ---- */

TEST(VMap, WidthOfZeroOfEitherSignGivesEmptyPlanesOfTheMasksSize)
{
    for (double width : {0.0, -0.0}) {
        BOXMAP made = MakeBoxMap(0);
        made.call.width = width;
        Call(&made.call);
        EXPECT_EQ(1, made.call.result);
        const zr32::BUFINFO info = zr32::BufInfo(made.call.dist);
        EXPECT_EQ(zr32::BufInfo(made.call.mask).width, info.width);
        EXPECT_EQ(zr32::BufInfo(made.call.mask).height, info.height);
        EXPECT_EQ(32, info.bits);
        EXPECT_EQ(0x40, zr32::BufInfo(made.call.offset).bits);
        EXPECT_EQ(0, CountWritten(made.call.dist));
        EXPECT_EQ(0, CountWritten(made.call.offset));
        Free(&made);
    }
}

TEST(VMap, WidthOfZeroHoldsForLonePrimitivesToo)
{
    MAPCALL call;
    call.path = MakeBox(20, 20, 60, 50);
    call.path->primitive = 2;
    call.useMask = 0;
    call.width = 0;
    call.fixedHeight = 1;
    Call(&call);
    EXPECT_EQ(1, call.result);
    EXPECT_EQ(0.0, call.width);
    EXPECT_EQ(0, CountWritten(call.dist));
    FreePlanes(&call);
    zr32::RecordFree(call.path);
}

TEST(VMap, LonePrimitiveHasItsWidthReplaced)
{
    for (int32_t fixedHeight : {0, 1}) {
        MAPCALL call;
        call.path = MakeBox(20, 20, 60, 50);
        call.path->primitive = 2;
        call.useMask = 0;
        call.fixedHeight = fixedHeight;
        Call(&call);
        EXPECT_EQ(1, call.result);
        EXPECT_EQ(fixedHeight ? 30.0 : 15.0, call.width) << "half of the shorter side, or the fixed height";
        EXPECT_GT(CountWritten(call.dist), 0);
        FreePlanes(&call);
        zr32::RecordFree(call.path);
    }
}

TEST(VMap, WarpedPrimitiveCountsAsLone)
{
    MAPCALL call;
    call.path = MakeBox(20, 20, 60, 50);
    call.path->primitive = 2;
    PATHREC *frame = MakeFrame(20, 20, 60, 50);
    zr32::ChainLink(zr32::tableChain, call.path, frame);
    call.mask = MakeMask(call.path);
    call.fixedHeight = 1;
    Call(&call);
    EXPECT_EQ(1, call.result);
    EXPECT_EQ(30.0, call.width);
    FreePlanes(&call);

    call.envelopeMode = 1;
    Call(&call);
    EXPECT_EQ(1, call.result);
    EXPECT_EQ(15.0, call.width) << "the envelope's half width comes first";
    FreePlanes(&call);
    ZrPathBufFree(call.mask);
    FreeChain(call.path);
}

TEST(VMap, LonePrimitiveWithAnOutsetTakesTheSweep)
{
    MAPCALL call;
    call.path = MakeBox(20, 20, 60, 50);
    call.path->primitive = 2;
    call.mask = MakeMask(call.path, 6);
    call.outset = 6;
    Call(&call);
    EXPECT_EQ(1, call.result);
    EXPECT_EQ(5.0, call.width);
    EXPECT_EQ(0, CountWritten(call.dist)) << "a lone record is a tail, and tails are not swept";
    FreePlanes(&call);
    ZrPathBufFree(call.mask);
    zr32::RecordFree(call.path);
}

TEST(VMap, EnvelopeModeWithoutAFrameGivesOneAndEmptyPlanes)
{
    BOXMAP made = MakeBoxMap(0);
    made.call.envelopeMode = 1;
    Call(&made.call);
    EXPECT_EQ(1, made.call.result);
    EXPECT_EQ(5.0, made.call.width);
    EXPECT_EQ(0, CountWritten(made.call.dist));
    Free(&made);
}

TEST(VMap, EdgeTablesOfAnEnvelopeWithoutMaskAreReleasedToo)
{
    PATHREC *head = MakeBox(20, 20, 60, 50);
    zr32::ChainLink(zr32::tableChain, head, MakeFrame(20, 20, 60, 50));
    const int64_t bufs = FaultLiveBlocks(ALLOC_BUF);
    const int64_t heap = FaultLiveBlocks(ALLOC_PATHHEAP);
    MAPCALL call;
    call.path = head;
    call.useMask = 0;
    call.envelopeMode = 1;
    Call(&call);
    EXPECT_EQ(1, call.result);
    FreePlanes(&call);
    EXPECT_EQ(bufs, FaultLiveBlocks(ALLOC_BUF));
    EXPECT_EQ(heap, FaultLiveBlocks(ALLOC_PATHHEAP));
    FreeChain(head);
}

/* A box in a box, both run through alike: under the even-odd rule the inner one is a hole. */
TEST(VMap, WithoutAMaskTheFillRuleDecidesWhatIsInside)
{
    for (int32_t evenOdd : {0, 1}) {
        MAPCALL call;
        call.path = MakeBox(10, 10, 60, 60);
        PATHREC *inner = MakeBox(20, 20, 50, 50);
        zr32::ChainLink(zr32::joinChain, call.path, inner);
        call.useMask = 0;
        call.evenOdd = evenOdd;
        Call(&call);
        EXPECT_EQ(1, call.result);
        /* The map begins at 5. */
        EXPECT_EQ(evenOdd ? 0.0F : 300.0F, DistAt(call.dist, 30, 30)) << "nothing within 5 pixels";
        EXPECT_EQ(6.25F, DistAt(call.dist, 8, 30)) << "2.5 from the outer left side, which is placed at 5.5";
        FreePlanes(&call);
        zr32::RecordFree(inner);
        zr32::RecordFree(call.path);
    }
}

/* A corner whose vertex is placed at (25.5, 25.5), with the shape to the left and above. */
TEST(VMap, WithoutAMaskCornersAreMitredOrRoundAndVectorsWordsOrFloats)
{
    for (int32_t noMitre : {0, 1}) {
        for (int32_t floatVectors : {0, 1}) {
            MAPCALL call;
            call.path =
                MakePath({{6, 10, 10}, {2, 50, 10}, {2, 50, 30}, {2, 30, 30}, {2, 30, 50}, {2, 10, 50}, {3, 10, 10}});
            call.useMask = 0;
            call.width = 12;
            call.noMitre = noMitre;
            call.floatVectors = floatVectors;
            Call(&call);
            EXPECT_EQ(1, call.result);
            EXPECT_EQ(noMitre ? 42.5F : 30.25F, DistAt(call.dist, 20, 22)) << "5.5 to the left, 3.5 above";
            if (floatVectors) {
                SURFVECF v;
                memcpy(&v, call.offset + (22 * zr32::BufInfo(call.offset).width + 20) * 8, sizeof v);
                EXPECT_EQ(5.5F, v.x);
                EXPECT_EQ(noMitre ? 3.5F : 0.0F, v.y);
            } else {
                EXPECT_EQ(5.5 * 256, VectorAt(call.offset, 20, 22).x1);
                EXPECT_EQ(noMitre ? 3.5 * 256 : 0, VectorAt(call.offset, 20, 22).y1);
            }
            FreePlanes(&call);
            zr32::RecordFree(call.path);
        }
    }
}

TEST(VMap, OutsetAboveZeroWritesOutsideOnly)
{
    BOXMAP made = MakeBoxMap(6);
    made.call.width = 4;
    const std::vector<uint8_t> before = Bytes(made.call.mask);
    Call(&made.call);
    EXPECT_EQ(1, made.call.result);
    EXPECT_EQ(before, Bytes(made.call.mask)) << "inverted in place for a time, then back";
    /* The map begins at 20 - 5 - 6 = 9: the left edge stands on column 11 (20 - 9 = 11). */
    EXPECT_FLOAT_EQ(0.0001F, DistAt(made.call.dist, 11, 25));
    EXPECT_EQ(4.0F, DistAt(made.call.dist, 9, 25));
    EXPECT_EQ(0.0F, DistAt(made.call.dist, 13, 25));
    Free(&made);
}

TEST(VMap, OutsetBelowZeroWritesOnBothSides)
{
    BOXMAP made = MakeBoxMap(-6);
    made.call.width = 4;
    const std::vector<uint8_t> before = Bytes(made.call.mask);
    Call(&made.call);
    EXPECT_EQ(1, made.call.result);
    EXPECT_EQ(before, Bytes(made.call.mask));
    EXPECT_EQ(4.0F, DistAt(made.call.dist, 9, 25));
    EXPECT_FLOAT_EQ(0.0001F, DistAt(made.call.dist, 11, 25));
    EXPECT_EQ(4.0F, DistAt(made.call.dist, 13, 25));
    EXPECT_EQ(25.0F, DistAt(made.call.dist, 6, 25)) << "the ray's last position, width + 1";
    EXPECT_EQ(0.0F, DistAt(made.call.dist, 5, 25));
    /* The wedge outside the corner at (11, 11): 3 to the left and 2 up, as far as the farther of both edges. */
    EXPECT_EQ(9.0F, DistAt(made.call.dist, 8, 9));
    Free(&made);
}

/* ---- progress ---- */

TEST(VMap, ProgressBeginsWithCode1AndEndsWithCode4)
{
    COUNTER counter;
    VMAPPROGRESS progress = ProgressOf(&counter);
    BOXMAP made = MakeBoxMap(0);
    made.call.progress = &progress;
    Call(&made.call);
    ASSERT_GE(counter.codes.size(), 3U);
    EXPECT_EQ(1, counter.codes.front());
    EXPECT_EQ(4, counter.codes.back());
    EXPECT_EQ(1, counter.begins);
    EXPECT_EQ(1, counter.ends);
    EXPECT_EQ(20, progress.rangeFrom);
    EXPECT_EQ(100, progress.rangeTo);
    Free(&made);
}

TEST(VMap, AProgressRecordWithoutACallbackIsLikeNone)
{
    for (const int32_t useMask : {1, 0}) {
        COUNTER counter;
        VMAPPROGRESS progress = ProgressOf(&counter);
        progress.callback = nullptr;
        BOXMAP with = MakeBoxMap(0), without = MakeBoxMap(0);
        for (BOXMAP *made : {&with, &without}) {
            made->call.useMask = useMask;
            made->call.progress = made == &with ? &progress : nullptr;
            Call(&made->call);
            EXPECT_EQ(1, made->call.result);
        }
        const zr32::BUFINFO info = zr32::BufInfo(without.call.dist);
        EXPECT_EQ(0, memcmp(without.call.dist, with.call.dist, info.stride * static_cast<size_t>(info.height)));
        Free(&with);
        Free(&without);
    }
}

/* Record share x node share x range, cut, from the range's start: five nodes, one record. */
TEST(VMap, PercentagesOfOneSideRunTo20ThenTo100)
{
    COUNTER counter;
    VMAPPROGRESS progress = ProgressOf(&counter);
    BOXMAP made = MakeBoxMap(0);
    made.call.progress = &progress;
    Call(&made.call);
    EXPECT_EQ((std::vector<int>{0, 4, 8, 12, 16, 20, 36, 52, 68, 84}), counter.values);
    Free(&made);
}

TEST(VMap, PercentagesOfBothSidesRunInFourRanges)
{
    COUNTER counter;
    VMAPPROGRESS progress = ProgressOf(&counter);
    BOXMAP made = MakeBoxMap(-4);
    made.call.progress = &progress;
    Call(&made.call);
    EXPECT_EQ((std::vector<int>{0, 2, 4, 6, 8, 10, 18, 26, 34, 42, 50, 52, 54, 56, 58, 60, 68, 76, 84, 92}),
              counter.values);
    Free(&made);
}

/* 41 rows, whatever range the caller's record had. */
TEST(VMap, PercentagesOfALonePrimitiveRunOverItsRows)
{
    COUNTER counter;
    VMAPPROGRESS progress = ProgressOf(&counter);
    progress.rangeFrom = 70;
    progress.rangeTo = 80;
    MAPCALL call;
    call.path = MakeBox(20, 20, 60, 50);
    call.path->primitive = 2;
    call.useMask = 0;
    call.progress = &progress;
    Call(&call);
    ASSERT_EQ(41U, counter.values.size());
    for (int y = 0; y < 41; y++) EXPECT_EQ(y * 100 / 41, counter.values[static_cast<size_t>(y)]);
    FreePlanes(&call);
    zr32::RecordFree(call.path);
}

/* Each record starts from the range's start again; the first of two has half the range. */
TEST(VMap, PercentagesStartAgainWithEveryRecord)
{
    COUNTER counter;
    VMAPPROGRESS progress = ProgressOf(&counter);
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 50), MakeBox(30, 30, 50, 40, false)});
    MAPCALL call;
    call.path = head;
    call.mask = MakeMask(head);
    call.progress = &progress;
    Call(&call);
    EXPECT_EQ((std::vector<int>{0, 2, 4, 6, 8, 0, 4, 8, 12, 16, 20, 28, 36, 44, 52, 20, 36, 52, 68, 84}),
              counter.values);
    FreePlanes(&call);
    ZrPathBufFree(call.mask);
    FreeChain(head);
}

/* A callback that stops at its k-th question, in every pass of every mask-based map. */
TEST(VMap, AbortAtAnyCallDropsBothPlanesReportsAndRestoresTheMask)
{
    for (int32_t outset : {0, 5, -5}) {
        for (int k = 1; k <= 50; k++) {
            PATHREC *head = MakeChain({MakeBox(20, 20, 60, 50), MakeBox(30, 30, 50, 40, false)});
            MAPCALL call;
            call.path = head;
            call.outset = outset;
            call.mask = MakeMask(head, outset);
            const std::vector<uint8_t> before = Bytes(call.mask);
            const int64_t live = FaultLiveBlocks(ALLOC_BUF);
            COUNTER counter;
            counter.stopAt = k;
            VMAPPROGRESS progress = ProgressOf(&counter);
            call.progress = &progress;
            zr32CommReset();
            Call(&call);
            EXPECT_EQ(before, Bytes(call.mask));
            EXPECT_EQ(1, counter.ends) << "code 4 comes after an abort too";
            const bool stopped = counter.calls >= k;
            EXPECT_EQ(stopped ? 0 : 1, call.result) << "outset " << outset << " call " << k;
            if (stopped) {
                EXPECT_EQ(nullptr, call.dist);
                EXPECT_EQ(nullptr, call.offset);
                EXPECT_EQ(live, FaultLiveBlocks(ALLOC_BUF));
                /* 10 questions a pass, the mitre fill first. */
                ExpectError(5200, (k - 1) / 10 % 2 == 0 ? 20 : 21, 0);
            }
            FreePlanes(&call);
            ZrPathBufFree(call.mask);
            FreeChain(head);
        }
    }
}

/* The walk goes on to the next record, and asks there again. */
TEST(VMap, AbortedPassAsksOnInTheRemainingRecords)
{
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 50), MakeBox(30, 30, 50, 40, false)});
    MAPCALL call;
    call.path = head;
    call.mask = MakeMask(head);
    COUNTER counter;
    counter.stopAt = 2;
    VMAPPROGRESS progress = ProgressOf(&counter);
    call.progress = &progress;
    Call(&call);
    EXPECT_EQ(7, counter.calls) << "two in the first record, five in the second, none in the refused sweep";
    ZrPathBufFree(call.mask);
    FreeChain(head);
}

int32_t AlwaysStop(int32_t code, int32_t, int32_t, intptr_t)
{
    return code != 2;
}

TEST(VMap, AbortIsReportedAgainByEachRecordThatIsStopped)
{
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 50), MakeBox(30, 30, 50, 40, false)});
    MAPCALL call;
    call.path = head;
    call.mask = MakeMask(head);
    VMAPPROGRESS progress = {0, AlwaysStop, 0, 0, 0};
    call.progress = &progress;
    zr32CommReset();
    Call(&call);
    EXPECT_EQ(0, call.result);
    EXPECT_EQ(2, zr32CommLastError(nullptr));
    ZrPathBufFree(call.mask);
    FreeChain(head);
}

/* ---- memory ---- */

TEST(VMap, DistancePlaneThatCannotBeHadLeavesTheOtherHandle)
{
    BOXMAP made = MakeBoxMap(0);
    COUNTER counter;
    VMAPPROGRESS progress = ProgressOf(&counter);
    made.call.progress = &progress;
    zr32CommReset();
    FaultSet(ALLOC_BUF, 1);
    Call(&made.call);
    FaultSet(ALLOC_BUF, 0);
    EXPECT_EQ(0, made.call.result);
    EXPECT_EQ(nullptr, made.call.dist);
    EXPECT_EQ(reinterpret_cast<PATHBUF>(uintptr_t{0x40}), made.call.offset) << "what the caller put there";
    ExpectError(1001, 20, 0);
    EXPECT_EQ((std::vector<int32_t>{4}), counter.codes) << "no begin, but an end";
    made.call.offset = nullptr;
    Free(&made);
}

TEST(VMap, OffsetPlaneThatCannotBeHadFreesTheDistancePlane)
{
    BOXMAP made = MakeBoxMap(0);
    const int64_t live = FaultLiveBlocks(ALLOC_BUF);
    zr32CommReset();
    FaultSet(ALLOC_BUF, 2);
    Call(&made.call);
    FaultSet(ALLOC_BUF, 0);
    EXPECT_EQ(0, made.call.result);
    EXPECT_EQ(nullptr, made.call.dist);
    EXPECT_EQ(nullptr, made.call.offset);
    EXPECT_EQ(live, FaultLiveBlocks(ALLOC_BUF));
    ExpectError(1001, 20, 0);
    Free(&made);
}

TEST(VMap, MissingRowTableGivesZeroKeepsTheHandlesAndCallsNobody)
{
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 50)});
    COUNTER counter;
    VMAPPROGRESS progress = ProgressOf(&counter);
    MAPCALL call;
    call.path = head;
    call.useMask = 0;
    call.progress = &progress;
    FaultSet(ALLOC_BUF, 1);
    Call(&call);
    FaultSet(ALLOC_BUF, 0);
    EXPECT_EQ(0, call.result);
    EXPECT_EQ(reinterpret_cast<PATHBUF>(uintptr_t{0x40}), call.dist);
    EXPECT_EQ(reinterpret_cast<PATHBUF>(uintptr_t{0x40}), call.offset);
    EXPECT_TRUE(counter.codes.empty());
    FreeChain(head);
}

/* Every way to make a map, every allocation failed in turn. */
TEST(VMap, NoFailedAllocationLeaks)
{
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 50)});
    PATHREC *frame = MakeFrame(20, 20, 60, 50);
    zr32::ChainLink(zr32::tableChain, zr32::PathChainLast(head), frame);
    PATHBUF mask = MakeMask(head, 4);
    for (int32_t way = 0; way < 4; way++) {
        for (ALLOCATOR allocator : {ALLOC_BUF, ALLOC_PATHHEAP, ALLOC_GLOBAL}) {
            for (int n = 1; n < 200; n++) {
                const int64_t bufs = FaultLiveBlocks(ALLOC_BUF);
                const int64_t heap = FaultLiveBlocks(ALLOC_PATHHEAP);
                const int64_t global = FaultLiveBlocks(ALLOC_GLOBAL);
                MAPCALL call;
                call.path = head;
                call.mask = mask;
                call.useMask = way != 2;
                call.outset = way == 1 ? -4 : 0;
                call.envelopeMode = way == 3;
                FaultSet(allocator, n);
                Call(&call);
                const int struck = FaultStruck();
                FaultSet(allocator, 0);
                if (call.dist == reinterpret_cast<PATHBUF>(uintptr_t{0x40})) call.dist = nullptr;
                if (call.offset == reinterpret_cast<PATHBUF>(uintptr_t{0x40})) call.offset = nullptr;
                FreePlanes(&call);
                EXPECT_EQ(bufs, FaultLiveBlocks(ALLOC_BUF)) << "way " << way << " allocation " << n;
                EXPECT_EQ(heap, FaultLiveBlocks(ALLOC_PATHHEAP)) << "way " << way << " allocation " << n;
                EXPECT_EQ(global, FaultLiveBlocks(ALLOC_GLOBAL)) << "way " << way << " allocation " << n;
                if (!struck) break;
            }
        }
    }
    ZrPathBufFree(mask);
    FreeChain(head);
}

/* ---- bad input ---- */

TEST(VMap, ReservedMaskHandleMakesEmptyPlanes)
{
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 50)});
    MAPCALL call;
    call.path = head;
    call.mask = reinterpret_cast<PATHBUF>(uintptr_t{1});
    call.outset = -3;
    Call(&call);
    EXPECT_EQ(1, call.result);
    FreePlanes(&call);
    FreeChain(head);
}

TEST(VMap, MaskOfAnotherPlaceSizeOrDepthIsSafe)
{
    PATHREC *head = MakeChain({MakeBox(20, 20, 60, 50), MakeCircle(40, 35, 12)});
    static const int sizes[][3] = {{1, 1, 8}, {0, 0, 8}, {7, 300, 8}, {300, 7, 8}, {51, 41, 24}, {51, 41, 32}};
    for (const auto &size : sizes) {
        for (int32_t outset : {0, 7, -7}) {
            MAPCALL call;
            call.path = head;
            call.mask = ZrPathBufAlloc(size[2], size[0], size[1]);
            call.outset = outset;
            Call(&call);
            EXPECT_EQ(1, call.result);
            FreePlanes(&call);
            ZrPathBufFree(call.mask);
        }
    }
    FreeChain(head);
}

TEST(VMap, ZoomsThatAreZeroNegativeOrHugeEnd)
{
    BOXMAP made = MakeBoxMap(0);
    for (ZRFIXED zoom : {0, 1, -0x10000, 0x7fffffff, INT32_MIN}) {
        made.call.zoom = zoom;
        for (int32_t outset : {0, 3, INT32_MIN}) {
            made.call.outset = outset;
            Call(&made.call);
            FreePlanes(&made.call);
        }
    }
    Free(&made);
}

} // namespace
