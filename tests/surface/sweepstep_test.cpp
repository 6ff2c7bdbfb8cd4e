/* sweepstep_test.cpp - how many samples a line and a curve get, and where the last one stands. */
#include "surface/maps.h"

#include "surface/sweep.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zr32test;
using zr32::POINTDB;

namespace {

std::vector<zr32::SWEEP> samples;

/* Keeps the sample, and notes the ray's end as a ray would. */
void KeepSample(zr32::SWEEP *sweep)
{
    samples.push_back(*sweep);
    sweep->lastEnd = {sweep->p.x + sweep->n.x * sweep->reach, sweep->p.y + sweep->n.y * sweep->reach};
}

/* The samples of one segment in an empty mask: two points make a line, four a curve. */
std::vector<zr32::SWEEP> Walk(const std::vector<POINTDB> &p, bool followFans, double shortestLine = 0, double width = 5)
{
    PATHBUF none = nullptr;
    const zr32::SURFACEMAP map = {&none, &none, nullptr, 1.0, 0, 0};
    const zr32::SWEEPRULES rules = {.useSample = KeepSample,
                                    .wholeChain = 1,
                                    .followFans = followFans,
                                    .shortestLine = shortestLine,
                                    .restingVote = 1,
                                    .abortSubCode = 0,
                                    .abortIndex = 0};
    zr32::SWEEP sweep;
    zr32::SEGMENT segment = {};
    PATHBUF mask = ZrPathBufAlloc(8, 4, 4);
    zr32::SweepInit(&rules, &map, mask, width, &sweep);
    sweep.rayStep = 1;
    std::copy(p.begin(), p.end(), segment.p);
    samples.clear();
    if (p.size() == 2)
        zr32::SweepLine(&segment, &sweep);
    else
        zr32::SweepCurve(&segment, &sweep);
    ZrPathBufFree(mask);
    return samples;
}

/* A straight level curve from (10, 10), run through evenly. */
std::vector<POINTDB> Level(double length)
{
    return {{10, 10}, {10 + length / 3, 10}, {10 + length * 2 / 3, 10}, {10 + length, 10}};
}

TEST(SweepStep, SamplesOfALine)
{
    constexpr double least = 1.0 / 65536;
    static const struct {
        const char *name;
        POINTDB to;
        size_t samples;
        double tangentX;
        double rayStep;
    } cases[] = {
        {"no length", {10, 10}, 0, 0, 0},
        {"8 long: steps of exactly a pixel are not halved", {18, 10}, 9, 1, 1},
        {"a little longer", {18 + least, 10}, 17, (8 + least) / 16, 1},
        {"short: eight steps all the same", {10.5, 10}, 9, 0.0625, 1},
        {"upright", {10, 2}, 9, 0, 1},
        {"oblique: halved once more, and rays in half steps", {18, 11}, 17, 0.5, 0.5},
    };
    for (const auto &c : cases) {
        const std::vector<zr32::SWEEP> got = Walk({{10, 10}, c.to}, true);
        ASSERT_EQ(c.samples, got.size()) << c.name;
        if (got.empty()) continue;
        EXPECT_EQ(c.tangentX, got[0].t.x) << c.name;
        EXPECT_EQ(c.rayStep, got[0].rayStep) << c.name;
        EXPECT_EQ(0, got.front().at) << c.name;
        EXPECT_EQ(0x10000, got.back().at) << c.name;
        EXPECT_EQ(c.to.x, got.back().p.x) << c.name;
        EXPECT_EQ(c.to.y, got.back().p.y) << c.name;
    }
}

/* 0.0625 long: steps of 0.0078 grow tenfold, the samples end at ten times the length. */
TEST(SweepStep, ShortLineIsStretchedWhereTheRulesSaySo)
{
    const std::vector<zr32::SWEEP> plain = Walk({{10, 10}, {10.0625, 10}}, false, 0);
    const std::vector<zr32::SWEEP> stretched = Walk({{10, 10}, {10.0625, 10}}, false, 0.01);
    const std::vector<zr32::SWEEP> longer = Walk({{10, 10}, {10.125, 10}}, false, 0.01);
    EXPECT_EQ(0.0078125, plain[0].t.x);
    EXPECT_EQ(0.078125, stretched[0].t.x);
    EXPECT_EQ(0.015625, longer[0].t.x) << "not below 0.01";
    EXPECT_EQ(9U, stretched.size());
    EXPECT_EQ(10.625, stretched.back().p.x);
}

/* A step exceeds its limit above 40000/65536 pixel and grows below 20000/65536. Lengths in 1/65536 pixel: a quarter of
 * the curve is the first step. */
TEST(SweepStep, SamplesOfACurveFollowItsLimits)
{
    static const struct {
        int length;
        size_t samples;
    } cases[] = {{160000, 5}, {160004, 9}, {80000, 5}, {79996, 3}, {320000, 9}, {320008, 17}};
    for (const auto &c : cases) {
        for (bool followFans : {false, true}) {
            const std::vector<zr32::SWEEP> got = Walk(
                {{0, 10}, {c.length / 196608.0, 10}, {c.length / 98304.0, 10}, {c.length / 65536.0, 10}}, followFans);
            EXPECT_EQ(c.samples, got.size()) << c.length << ", fans " << followFans;
            EXPECT_EQ(0, got.front().at);
            EXPECT_EQ(0x10000, got.back().at);
            EXPECT_EQ(c.length / 65536.0, got.back().p.x);
        }
    }
}

/* A step that has grown jumps over the end: the last sample stands on the end point, its tangent is the way there. */
TEST(SweepStep, LastSampleStandsOnTheEndPoint)
{
    for (bool followFans : {false, true}) {
        for (double length : {0.01, 0.2, 0.37, 3.7, 29.3}) {
            const std::vector<zr32::SWEEP> got = Walk(
                {{10, 10}, {10, 10 + length * 0.1}, {10 + length * 0.7, 10 + length * 0.2}, {10 + length, 10 + length}},
                followFans);
            ASSERT_GE(got.size(), 2U);
            const zr32::SWEEP &last = got.back();
            const zr32::SWEEP &before = got[got.size() - 2];
            EXPECT_EQ(0x10000, last.at);
            EXPECT_DOUBLE_EQ(10 + length, last.p.x);
            EXPECT_DOUBLE_EQ(10 + length, last.p.y);
            EXPECT_GT(last.t.x, 0) << "forward";
            EXPECT_GT(last.p.x, before.p.x);
        }
    }
}

/* In an empty mask rays run along the second normal, here to the left and up, away from the arc's centre: they part,
 * and with a wide bevel samples stand so close that far ends stay together. */
TEST(SweepStep, SamplesCloseUpWhereWideRaysFanOut)
{
    const std::vector<POINTDB> arc = {{40, 20}, {28.954, 20}, {20, 28.954}, {20, 40}};
    const size_t narrow = Walk(arc, true, 0, 1).size();
    const size_t wide = Walk(arc, true, 0, 100).size();
    const size_t notFollowed = Walk(arc, false, 0, 100).size();
    EXPECT_LT(notFollowed, 120U);
    EXPECT_LT(narrow, 160U);
    EXPECT_GT(wide, 3 * narrow);
    const std::vector<zr32::SWEEP> got = Walk(arc, true, 0, 100);
    for (size_t i = 2; i < got.size(); i++) {
        const POINTDB a = {got[i - 1].p.x + got[i - 1].n.x * 101, got[i - 1].p.y + got[i - 1].n.y * 101};
        const POINTDB b = {got[i].p.x + got[i].n.x * 101, got[i].p.y + got[i].n.y * 101};
        EXPECT_LT(std::hypot(a.x - b.x, a.y - b.y), 1.5) << i;
    }
}

TEST(SweepStep, LevelCurveHasTheRaysOfALevelLine)
{
    EXPECT_EQ(1.0, Walk(Level(9), true).back().rayStep);
    EXPECT_EQ(0.5, Walk({{10, 10}, {13, 10}, {16, 10}, {19, 11}}, true).back().rayStep);
}

} // namespace
