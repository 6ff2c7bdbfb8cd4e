/* bounds_test.cpp - boxes of control polygons, worked out by hand. */
#include "support/shapes.h"

#include <gtest/gtest.h>

using namespace zr32test;

namespace {

TEST(Bounds, SingleNodeGetsTheMargin)
{
    PATHREC *path = MakePath({{6, 10.5, 20.5}});
    tagRECT rect;
    ASSERT_EQ(1, ZrPathGetMiniMaxRect(path, 0x10000, &rect));
    EXPECT_EQ(5, rect.left);
    EXPECT_EQ(15, rect.top);
    EXPECT_EQ(16, rect.right);
    EXPECT_EQ(26, rect.bottom);
    ZrPathDeletePtr(path, 0);
}

} // namespace
