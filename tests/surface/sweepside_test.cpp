/* sweepside_test.cpp - the choice of the side: looks, votes, and repeated addition. */
#include "surface/maps.h"

#include "surface/sweep.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zr32test;

namespace {

/* A sample in a mask of 60 x 60, filled. */
struct SIDE {
    PATHBUF mask = ZrPathBufAlloc(8, 60, 60);
    PATHBUF none = nullptr;
    zr32::SURFACEMAP map = {&none, &none, nullptr, 1.0, 0, 0};
    zr32::SWEEPRULES rules = {.useSample = nullptr,
                              .wholeChain = 1,
                              .followFans = 1,
                              .shortestLine = 0.0,
                              .restingVote = 1,
                              .abortSubCode = 0,
                              .abortIndex = 0};
    zr32::SWEEP sweep;

    SIDE()
    {
        zr32::SweepInit(&rules, &map, mask, 5.0, &sweep);
        Fill(0, 0, 60, 60, 255);
    }
    ~SIDE()
    {
        ZrPathBufFree(mask);
    }
    SIDE(const SIDE &) = delete;
    SIDE &operator=(const SIDE &) = delete;

    void Fill(int left, int top, int right, int bottom, uint8_t byte) const
    {
        for (int y = top; y < bottom; y++)
            for (int x = left; x < right; x++) mask[y * 60 + x] = byte;
    }

    /* A line from (30.5, 30.5) to the right in steps of a pixel: n1 points down, n2 up. */
    void OnLine(int64_t at, double stepLength = 1.0)
    {
        sweep.p = {30.5, 30.5};
        sweep.t = {stepLength, 0};
        sweep.at = at;
        sweep.n = {7, 7};
        zr32::OutlineNormals(sweep.t, &sweep.n1, &sweep.n2);
        zr32::ChooseSideOnLine(0x1000, &sweep);
    }
};

TEST(SweepSide, LooksDecideWhereOneSideIsEmpty)
{
    SIDE side;
    side.Fill(0, 32, 60, 33, 0);
    side.OnLine(0x1000);
    EXPECT_EQ(-1.0, side.sweep.n.y) << "below is empty: up";
    EXPECT_EQ(0, side.sweep.isolated);
    side.Fill(0, 0, 60, 60, 255);
    side.Fill(0, 29, 60, 30, 0);
    side.OnLine(0x1000);
    EXPECT_EQ(1.0, side.sweep.n.y) << "above is empty: down";
}

TEST(SweepSide, EmptyOnBothSidesIsIsolatedAndTakesTheSecondNormal)
{
    SIDE side;
    side.Fill(0, 0, 60, 60, 0);
    side.OnLine(0);
    EXPECT_EQ(-1.0, side.sweep.n.y);
    EXPECT_EQ(1, side.sweep.isolated);
}

TEST(SweepSide, OutsideTheMaskIsEmpty)
{
    SIDE side;
    side.sweep.p = {-20, 70};
    side.sweep.t = {1, 0};
    zr32::OutlineNormals(side.sweep.t, &side.sweep.n1, &side.sweep.n2);
    zr32::ChooseSideOnLine(0x1000, &side.sweep);
    EXPECT_EQ(1, side.sweep.isolated);
    side.sweep.p = {30, -1e300};
    zr32::ChooseSideOnLine(0x1000, &side.sweep);
    EXPECT_EQ(1, side.sweep.isolated);
}

TEST(SweepSide, WithinTheShapeALineKeepsItsSideBehindItsStart)
{
    SIDE side;
    side.OnLine(0x1000);
    EXPECT_EQ(7.0, side.sweep.n.x) << "left as it was";
}

/* Five positions: trunc(5 / 1) beats 0x2000 / 0x1000. Weights: 1 for an empty byte, 0.1 below 0x80. */
TEST(SweepSide, VoteOnALine)
{
    static const struct {
        const char *name;
        int below[5]; /* bytes 1.5 below the first five positions */
        int above[5];
        double wantY;
    } cases[] = {
        {"all full: a tie goes to the first normal", {255, 255, 255, 255, 255}, {255, 255, 255, 255, 255}, 1},
        {"below is emptier", {255, 0, 255, 255, 255}, {255, 255, 255, 255, 255}, -1},
        {"above is emptier", {255, 0, 255, 255, 255}, {255, 0, 0, 255, 255}, 1},
        {"one empty byte outweighs four faint ones", {1, 0, 255, 255, 255}, {1, 1, 1, 1, 127}, -1},
        {"a byte of 0x80 is full", {128, 127, 255, 255, 255}, {128, 128, 128, 128, 128}, -1},
        {"equal scores go to the first normal", {255, 1, 255, 255, 255}, {255, 255, 1, 255, 255}, 1},
    };
    for (const auto &c : cases) {
        SIDE side;
        for (int i = 0; i < 5; i++) {
            side.mask[32 * 60 + 30 + i] = static_cast<uint8_t>(c.below[i]);
            side.mask[29 * 60 + 30 + i] = static_cast<uint8_t>(c.above[i]);
        }
        side.mask[32 * 60 + 35] = 0; /* a sixth position, not asked */
        side.OnLine(0);
        EXPECT_EQ(c.wantY, side.sweep.n.y) << c.name;
    }
}

/* With nothing counted 1.5 pixels away the vote looks 1 pixel away, for empty bytes only. */
TEST(SweepSide, VoteThatFindsNothingLooksNearer)
{
    SIDE side;
    side.Fill(32, 31, 33, 32, 1);
    side.OnLine(0);
    EXPECT_EQ(1.0, side.sweep.n.y) << "a faint byte does not count nearby";
    side.Fill(32, 31, 33, 32, 0);
    side.OnLine(0);
    EXPECT_EQ(-1.0, side.sweep.n.y);
}

TEST(SweepSide, VoteOnALineLooksAlongAtLeastAnEighthOfIt)
{
    SIDE side;
    side.mask[32 * 60 + 41] = 0; /* 11 positions ahead */
    side.sweep.p = {30.5, 30.5};
    side.sweep.t = {1, 0};
    side.sweep.at = 0;
    zr32::OutlineNormals(side.sweep.t, &side.sweep.n1, &side.sweep.n2);
    zr32::ChooseSideOnLine(0x2000 / 11, &side.sweep); /* 11 positions: 0 to 10 */
    EXPECT_EQ(1.0, side.sweep.n.y);
    zr32::ChooseSideOnLine(0x2000 / 12, &side.sweep);
    EXPECT_EQ(-1.0, side.sweep.n.y);
}

/* A step of 2^-16 pixel asks 327680 positions, one of 2^-28 a thousand million: counted, not read. */
TEST(SweepSide, VoteOnAVeryShortLineIsQuickAndCountsTheSame)
{
    SIDE side;
    side.mask[32 * 60 + 33] = 0;
    for (double length = 1.0 / 8; length > 3e-9; length *= 0.5) {
        side.OnLine(0, length);
        EXPECT_EQ(-1.0, side.sweep.n.y) << length;
    }
    side.OnLine(0, 5e-324);
}

TEST(SweepSide, VoteOnACurveOfNoTangentAsksTheWholeCurveOrNothing)
{
    for (int resting : {0, 1}) {
        SIDE side;
        side.rules.restingVote = resting;
        side.Fill(30, 29, 60, 30, 1); /* above the curve's first steps */
        const zr32::POINTDB p[4] = {{30.5, 30.5}, {30.5, 30.5}, {30.5, 30.5}, {40.5, 30.5}};
        zr32::CURVESTEP step;
        zr32::CurveStart(p, &step);
        side.Fill(30, 32, 60, 33, 1);
        side.sweep.t = {0, 0};
        side.sweep.p = p[0];
        side.sweep.n1 = {0, 1};
        side.sweep.n2 = {0, -1};
        side.Fill(34, 32, 60, 33, 0);
        zr32::ChooseSideOnCurve(&step, 1, &side.sweep);
        EXPECT_EQ(resting ? -1.0 : 1.0, side.sweep.n.y) << "emptiness four pixels along the curve, below it";
    }
}

TEST(SweepSide, WithinTheShapeACurveKeepsTheDirectionOfItsNormal)
{
    SIDE side;
    const zr32::POINTDB p[4] = {{30.5, 30.5}, {33, 30.5}, {36, 30.5}, {40.5, 30.5}};
    zr32::CURVESTEP step;
    zr32::CurveStart(p, &step);
    side.sweep.t = {1, 0};
    side.sweep.p = p[0];
    side.sweep.n1 = {0, 1};
    side.sweep.n2 = {0, -1};
    side.sweep.n = {0.9, -0.1};
    zr32::ChooseSideOnCurve(&step, 0, &side.sweep);
    EXPECT_EQ(-1.0, side.sweep.n.y);
    side.sweep.n = {0.9, 0.1};
    zr32::ChooseSideOnCurve(&step, 0, &side.sweep);
    EXPECT_EQ(1.0, side.sweep.n.y);
    side.sweep.n = {1, 0};
    zr32::ChooseSideOnCurve(&step, 0, &side.sweep);
    EXPECT_EQ(1.0, side.sweep.n.y) << "square to the old one: the first normal";
}

/* The sums must be those of the plain loop, to the last bit: the vote compares them. */
TEST(SweepSide, RepeatedAdditionEqualsThePlainLoop)
{
    std::mt19937 rng(99);
    const double parts[] = {0.1, 1.0, 0.3, 1.0 / 3, 0.7, 1e-3, 3.0000000001};
    for (int k = 0; k < 400; k++) {
        const double c = parts[rng() % 7];
        double sum = rng() % 3 ? static_cast<double>(rng() % 100000) * 0.1 : 0;
        const int64_t times = static_cast<int64_t>(rng() % (k % 10 == 0 ? 3000000 : 300));
        const double got = zr32::AddRepeatedly(sum, c, times);
        for (int64_t i = 0; i < times; i++) sum += c;
        ASSERT_EQ(sum, got) << c << " x " << times;
    }
}

} // namespace
