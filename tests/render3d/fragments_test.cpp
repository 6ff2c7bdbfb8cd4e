/* fragments_test.cpp - the pool of fragments and the way to a pixel. */
#include "frame/faults.h"
#include "planes.h"

#include <gtest/gtest.h>
#include <set>

using namespace zr32;
using namespace zr32test;

namespace {

TEST(FragPool, NumbersCountFromOneAndNothingMoves)
{
    SurfaceHeapInit();
    FRAGPOOL pool = {};
    std::set<ABUFFRAG *> seen;
    ABUFFRAG *first = nullptr;
    for (uint32_t i = 1; i <= 10000; i++) {
        ASSERT_EQ(i, FragTake(&pool));
        ABUFFRAG *fragment = FragAt(&pool, i);
        if (i == 1) first = fragment;
        ASSERT_TRUE(seen.insert(fragment).second);
        ASSERT_EQ(0u, fragment->next);
        fragment->edge = static_cast<int32_t>(i);
    }
    EXPECT_EQ(first, FragAt(&pool, 1));
    for (uint32_t i = 1; i <= 10000; i++) ASSERT_EQ(static_cast<int32_t>(i), FragAt(&pool, i)->edge);
    EXPECT_EQ(10000u, pool.live);
    const uint32_t used = pool.used;
    FragPoolFree(&pool);
    EXPECT_EQ(0u, pool.live);
    EXPECT_EQ(0u, pool.used);
    EXPECT_EQ(used, FragPoolLastUsed());
}

TEST(FragPool, FreedFragmentsComeBackZeroed)
{
    SurfaceHeapInit();
    FRAGPOOL pool = {};
    const uint32_t a = FragTake(&pool), b = FragTake(&pool);
    FragAt(&pool, a)->colour = 5;
    FragDrop(a, &pool);
    FragDrop(b, &pool);
    EXPECT_EQ(0u, pool.live);
    EXPECT_EQ(b, FragTake(&pool));
    EXPECT_EQ(a, FragTake(&pool));
    EXPECT_EQ(0u, FragAt(&pool, a)->colour);
    EXPECT_EQ(0u, FragAt(&pool, a)->next);
    EXPECT_EQ(2u, pool.used);
    FragPoolFree(&pool);
}

TEST(FragPool, WithoutMemoryThereIsNoNumberAndNothingLeaks)
{
    SurfaceHeapInit();
    const int64_t before = FaultLiveBlocks(ALLOC_SURFACEHEAP);
    FRAGPOOL pool = {};
    FaultSet(ALLOC_SURFACEHEAP, 2);
    uint32_t given = 0;
    while (FragTake(&pool)) given++;
    EXPECT_EQ(poolFirst, given);
    FaultSet(ALLOC_SURFACEHEAP, 0);
    EXPECT_EQ(given + 1, FragTake(&pool));
    FragPoolFree(&pool);
    EXPECT_EQ(before, FaultLiveBlocks(ALLOC_SURFACEHEAP));
}

TEST(Plane, PixelsOutsideAreNull)
{
    ABUF abuf = MakePlane(4, 3);
    EXPECT_NE(nullptr, PlanePixel(&abuf, 0, 0));
    EXPECT_EQ(11, PlanePixel(&abuf, 3, 2) - PlanePixel(&abuf, 0, 0));
    for (const auto &[x, y] : {std::pair{-1, 0}, {0, -1}, {4, 0}, {0, 3}, {INT32_MIN, INT32_MAX}})
        EXPECT_EQ(nullptr, PlanePixel(&abuf, x, y));
    PlaneFree(&abuf);
    EXPECT_EQ(nullptr, PlanePixel(&abuf, 0, 0));
    EXPECT_EQ(0, PixelIndex(0.99));
    EXPECT_EQ(-1, PixelIndex(-0.01));
    EXPECT_EQ(-1, PixelIndex(1e300));
    EXPECT_EQ(-1, PixelIndex(NAN));
}

} // namespace
