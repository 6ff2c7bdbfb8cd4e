/* port_rect_test.cpp - rectangle arithmetic: empty ones, shared edges, sums that wrap. */
#include "platform/platform.h"

#include <climits>
#include <gtest/gtest.h>

namespace {

void ExpectRect(const RECT &got, const RECT &want)
{
    EXPECT_EQ(got.left, want.left);
    EXPECT_EQ(got.top, want.top);
    EXPECT_EQ(got.right, want.right);
    EXPECT_EQ(got.bottom, want.bottom);
}

} // namespace

TEST(PortRect, SetMoveAndWiden)
{
    RECT r;
    EXPECT_TRUE(SetRect(&r, 1, 2, 3, 4));
    ExpectRect(r, {1, 2, 3, 4});
    EXPECT_TRUE(OffsetRect(&r, 10, -10));
    ExpectRect(r, {11, -8, 13, -6});
    EXPECT_TRUE(InflateRect(&r, 2, 3));
    ExpectRect(r, {9, -11, 15, -3});
    EXPECT_TRUE(InflateRect(&r, -4, 0)); /* past itself: empty, as it comes */
    ExpectRect(r, {13, -11, 11, -3});
    EXPECT_TRUE(IsRectEmpty(&r));
    EXPECT_TRUE(SetRectEmpty(&r));
    ExpectRect(r, {0, 0, 0, 0});
}

TEST(PortRect, SumsWrap)
{
    RECT r = {INT_MIN, 0, INT_MAX, 0};
    OffsetRect(&r, 1, 0);
    ExpectRect(r, {INT_MIN + 1, 0, INT_MIN, 0});
    r = {INT_MIN, 0, INT_MAX, 0};
    InflateRect(&r, 1, 0);
    ExpectRect(r, {INT_MAX, 0, INT_MIN, 0});
}

TEST(PortRect, EmptyIsWithoutWidthOrHeight)
{
    const struct {
        RECT rect;
        bool empty;
    } cases[] = {{{0, 0, 1, 1}, false}, {{0, 0, 0, 1}, true}, {{0, 0, 1, 0}, true},
                 {{1, 0, 0, 1}, true},  {{0, 1, 1, 0}, true}, {{-5, -5, -4, -4}, false}};
    for (const auto &c : cases) EXPECT_EQ(IsRectEmpty(&c.rect) != 0, c.empty);
    EXPECT_TRUE(IsRectEmpty(nullptr));
}

TEST(PortRect, IntersectionAndUnion)
{
    const RECT none = {0, 0, 0, 0};
    const struct {
        const char *name;
        RECT a, b, both;
        bool meets;
        RECT around;
    } cases[] = {
        {"overlap", {0, 0, 4, 4}, {2, 1, 6, 3}, {2, 1, 4, 3}, true, {0, 0, 6, 4}},
        {"inside", {0, 0, 9, 9}, {2, 2, 3, 3}, {2, 2, 3, 3}, true, {0, 0, 9, 9}},
        {"a shared edge is nothing", {0, 0, 4, 4}, {4, 0, 8, 4}, none, false, {0, 0, 8, 4}},
        {"apart", {0, 0, 1, 1}, {5, 5, 6, 6}, none, false, {0, 0, 6, 6}},
        {"first empty", {7, 7, 7, 9}, {1, 2, 3, 4}, none, false, {1, 2, 3, 4}},
        {"second empty", {1, 2, 3, 4}, {7, 7, 9, 7}, none, false, {1, 2, 3, 4}},
        {"both empty", {7, 7, 7, 9}, {1, 1, 1, 1}, none, false, none},
        {"an inside-out one is empty", {4, 4, 0, 0}, {1, 1, 3, 3}, none, false, {1, 1, 3, 3}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        RECT out = {-1, -1, -1, -1};
        EXPECT_EQ(IntersectRect(&out, &c.a, &c.b) != 0, c.meets);
        ExpectRect(out, c.both);
        EXPECT_EQ(UnionRect(&out, &c.a, &c.b) != 0, !IsRectEmpty(&c.around));
        ExpectRect(out, c.around);
        RECT own = c.a; /* the result may be a source */
        UnionRect(&own, &own, &c.b);
        ExpectRect(own, c.around);
        own = c.b;
        IntersectRect(&own, &c.a, &own);
        ExpectRect(own, c.both);
    }
}

TEST(PortRect, PointsOnTheRightAndBottomEdgesAreOutside)
{
    const RECT r = {1, 2, 4, 5};
    const struct {
        POINT p;
        bool in;
    } cases[] = {{{1, 2}, true}, {{3, 4}, true}, {{4, 4}, false}, {{3, 5}, false}, {{0, 3}, false}, {{2, 1}, false}};
    for (const auto &c : cases) EXPECT_EQ(PtInRect(&r, c.p) != 0, c.in);
    const POINT origin = {0, 0};
    EXPECT_FALSE(PtInRect(nullptr, origin));
}

TEST(PortRect, NullIsRefused)
{
    RECT r = {0, 0, 1, 1};
    EXPECT_FALSE(SetRect(nullptr, 0, 0, 1, 1));
    EXPECT_FALSE(SetRectEmpty(nullptr));
    EXPECT_FALSE(OffsetRect(nullptr, 1, 1));
    EXPECT_FALSE(InflateRect(nullptr, 1, 1));
    EXPECT_FALSE(IntersectRect(nullptr, &r, &r));
    EXPECT_FALSE(IntersectRect(&r, nullptr, &r));
    EXPECT_FALSE(IntersectRect(&r, &r, nullptr));
    EXPECT_FALSE(UnionRect(nullptr, &r, &r));
    EXPECT_FALSE(UnionRect(&r, nullptr, &r));
    EXPECT_FALSE(UnionRect(&r, &r, nullptr));
}
