/* spans_test.cpp - spans of hand-made rows of crossings under both filling rules. */
#include "raster/spans.h"
#include "support/shapes.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

using namespace zr32;

namespace {

using SPANS = std::vector<std::pair<double, double>>;

/* The spans of one row, by the walk, and by the short way where the row is one of a single pair. */
void ExpectSpans(const std::vector<double> &crossings, int evenOdd, const SPANS &want)
{
    PATHREC *path = zr32test::MakeBox(0, 0, 1, 1);
    EDGETABLE *table = EdgeTableAlloc(EDGES_PLAIN, 0, PlaceOnMask(1.0, 0, 0), 1);
    table->spare = 20;
    ASSERT_EQ(1, EdgeTableLayOut(path, 0, 1, UINT32_MAX, table));
    for (const double crossing : crossings) EdgeTableAdd(table, crossing, 0, nullptr);
    double from, to;
    if (SpanOfPair(table, 0, evenOdd, &from, &to)) {
        ASSERT_EQ(1u, want.size());
        EXPECT_EQ(want[0], std::pair(from, to));
    }
    SPANWALK walk;
    SPANS spans;
    for (SpanStart(table, 0, evenOdd, &walk); SpanNext(&walk, &from, &to);) spans.emplace_back(from, to);
    EXPECT_EQ(want, spans);
    EdgeTableFree(table);
    RecordFree(path);
}

TEST(Spans, FollowTheFillingRule)
{
    const struct {
        const char *name;
        std::vector<double> crossings; /* in the order of the walk */
        SPANS winding;
        SPANS evenOdd;
    } cases[] = {
        {"none", {}, {}, {}},
        {"a lone crossing is dropped", {5}, {}, {}},
        {"down, then up", {5, -10}, {{5, 10}}, {{5, 10}}},
        {"up, then down, walked from the right", {10, -5}, {{5, 10}}, {{5, 10}}},
        {"no length", {-5, 5}, {}, {}},
        {"side by side", {5, -7, 9, -12}, {{5, 7}, {9, 12}}, {{5, 7}, {9, 12}}},
        {"one in the other, wound alike", {5, 7, -9, -12}, {{5, 12}}, {{5, 7}, {9, 12}}},
        {"one in the other, wound against it", {5, -7, 9, -12}, {{5, 7}, {9, 12}}, {{5, 7}, {9, 12}}},
        {"both down: down to the 0.0 behind the row", {5, 10}, {{5, 0}}, {{5, 10}}},
        {"three: the last finds no end", {5, 7, -10}, {{5, 0}}, {{5, 7}, {10, 0}}},
        {"balanced first, then open", {5, -7, 9}, {{5, 7}, {9, 0}}, {{5, 7}, {9, 0}}},
        {"0.0 begins like an edge that goes up", {0.0, 5}, {{0, 5}}, {{0, 5}}},
        {"0.0 and an edge that goes up", {0.0, -5}, {}, {{0, 5}}},
        {"at one place down comes first", {-5, 5, -9, 9}, {}, {}},
        {"touching at one place", {3, -5, 5, -9}, {{3, 9}}, {{3, 5}, {5, 9}}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ExpectSpans(c.crossings, 0, c.winding);
        ExpectSpans(c.crossings, 1, c.evenOdd);
    }
}

} // namespace
