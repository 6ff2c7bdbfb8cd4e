/* crossings_test.cpp - edge tables of a shape and the role of each crossing of a row. */
#include "surface/maps.h"

#include <gtest/gtest.h>

using namespace zr32test;
using zr32::EDGEENTRY;
using zr32::SURFACEEDGES;

namespace {

/* Crossing as path pixel, flag, and whether the entry has kept its node. */
struct ROLE {
    double x;
    int flag;
    bool node;
    bool operator==(const ROLE &) const = default;
};

std::vector<ROLE> Roles(const SURFACEEDGES &edges, uint32_t row)
{
    uint32_t count = 0;
    const EDGEENTRY *entries = zr32::EdgeTableRow(edges.rows, row, &count);
    std::vector<ROLE> roles;
    for (uint32_t i = 0; i < count; i++)
        roles.push_back({entries[i].crossing, entries[i].spanFlag, entries[i].node != nullptr});
    return roles;
}

/* The row's entries get these crossings. */
void SetCrossings(SURFACEEDGES *edges, uint32_t row, const std::vector<double> &crossings)
{
    uint32_t count = 0;
    EDGEENTRY *entries = zr32::EdgeTableRow(edges->rows, row, &count);
    ASSERT_EQ(crossings.size(), count);
    for (uint32_t i = 0; i < count; i++) entries[i].crossing = crossings[i];
}

PATHREC *Joined(const std::vector<PATHREC *> &records)
{
    for (size_t i = 1; i < records.size(); i++) zr32::ChainLink(zr32::joinChain, records[i - 1], records[i]);
    return records[0];
}

void FreeJoined(PATHREC *path)
{
    while (path) {
        PATHREC *next = path->nextJoin;
        zr32::RecordFree(path);
        path = next;
    }
}

TEST(SurfaceEdges, RowsAndColumnsOfABox)
{
    PATHREC *box = MakeBox(20, 30, 60, 50);
    SURFACEEDGES edges;
    zr32::VMapBuildEdgeTables(box, 0x10000, &edges);
    EXPECT_EQ(15, edges.originX);
    EXPECT_EQ(25, edges.originY);
    EXPECT_EQ(51, edges.width);
    EXPECT_EQ(31, edges.height);
    EXPECT_EQ(31U, zr32::EdgeTableRows(edges.rows));
    EXPECT_EQ(51U, zr32::EdgeTableRows(edges.columns));
    uint32_t count = 0;
    const EDGEENTRY *row = zr32::EdgeTableRow(edges.rows, 15, &count);
    ASSERT_EQ(2U, count);
    /* Drawn clockwise: the left side runs up. Half a pixel to the left of what is measured, and off the grid. */
    EXPECT_NEAR(-5.0, row[0].crossing, 1e-4);
    EXPECT_NEAR(45.0, row[1].crossing, 1e-4);
    EXPECT_EQ(box->nodes + 4, row[0].node);
    EXPECT_EQ(box->nodes + 2, row[1].node);
    const EDGEENTRY *column = zr32::EdgeTableRow(edges.columns, 30, &count);
    ASSERT_EQ(2U, count);
    EXPECT_EQ(box->nodes + 1, column[0].node);
    EXPECT_EQ(box->nodes + 3, column[1].node);
    zr32::SurfaceEdgesFree(&edges);
    EXPECT_EQ(nullptr, edges.rows);
    zr32::RecordFree(box);
}

TEST(SurfaceEdges, NullPathHasNoTables)
{
    SURFACEEDGES edges;
    zr32::VMapBuildEdgeTables(nullptr, 0x10000, &edges);
    EXPECT_EQ(0, zr32::VMapClassifyCrossings(0, edges.rows));
    zr32::SurfaceEdgesFree(&edges);
}

/* Two boxes with a side in common, run through in opposite directions: neither sign nor node changes their order. */
TEST(SurfaceEdges, EqualCrossingsStayInTheOrderOfAdding)
{
    for (bool swapped : {false, true}) {
        PATHREC *left = MakeBox(20, 20, 40, 40);
        PATHREC *right = MakeBox(40, 20, 60, 40);
        PATHREC *path = swapped ? Joined({right, left}) : Joined({left, right});
        SURFACEEDGES edges;
        zr32::VMapBuildEdgeTables(path, 0x10000, &edges);
        uint32_t count = 0;
        const EDGEENTRY *row = zr32::EdgeTableRow(edges.rows, 12, &count);
        ASSERT_EQ(4U, count);
        EXPECT_EQ(swapped ? right->nodes + 4 : left->nodes + 2, row[1].node);
        EXPECT_EQ(swapped ? left->nodes + 2 : right->nodes + 4, row[2].node);
        zr32::SurfaceEdgesFree(&edges);
        FreeJoined(path);
    }
}

TEST(SurfaceEdges, RolesUnderBothRules)
{
    /* Two boxes that overlap from 40 to 60, run through alike. The map begins at 15. */
    PATHREC *path = Joined({MakeBox(20, 20, 60, 60), MakeBox(40, 20, 80, 60)});
    for (int evenOdd : {0, 1}) {
        SURFACEEDGES edges;
        zr32::VMapBuildEdgeTables(path, 0x10000, &edges);
        SetCrossings(&edges, 20, {-5, -25, 45, 65});
        EXPECT_EQ(1, zr32::VMapClassifyCrossings(evenOdd, edges.rows));
        if (evenOdd)
            EXPECT_EQ((std::vector<ROLE>{{-5, 1, true}, {-25, 0, true}, {45, 1, true}, {65, 0, true}}),
                      Roles(edges, 20));
        else
            EXPECT_EQ((std::vector<ROLE>{{-5, 1, true}, {-25, 0, false}, {45, 0, false}, {65, 0, true}}),
                      Roles(edges, 20));
        zr32::SurfaceEdgesFree(&edges);
    }
    FreeJoined(path);
}

/* Rows that no shape of our own making gives: odd counts, a count that never comes back, an exact 0. */
TEST(SurfaceEdges, RolesOfUnbalancedRows)
{
    static const struct {
        const char *name;
        int evenOdd;
        std::vector<double> crossings;
        std::vector<int> flags;
        std::vector<int> nodes;
    } cases[] = {
        {"even-odd, the third of three is alone", 1, {1, 2, 3}, {1, 0, 0}, {1, 1, 1}},
        {"winding, entered twice, left once", 0, {1, 2, -3}, {1, 0, 0}, {1, 0, 0}},
        {"winding, entered twice, left twice", 0, {1, 2, -3, -4}, {1, 0, 0, 0}, {1, 0, 0, 1}},
        {"winding, two spans", 0, {1, -2, 3, -4}, {1, 0, 1, 0}, {1, 1, 1, 1}},
        {"winding, left before entered", 0, {-1, 2, -3, 4}, {1, 0, 1, 0}, {1, 1, 1, 1}},
        {"a 0 in the first place counts down and begins a span", 0, {0, 2, 3, -4}, {1, 0, 1, 0}, {1, 1, 1, 1}},
        {"a 0 ends a span and leaves the count: the next entry brings it to 0 and closes nothing",
         0,
         {1, 0, -3, 4},
         {1, 0, 1, 1},
         {1, 1, 1, 1}},
    };
    for (const auto &c : cases) {
        std::vector<PATHREC *> boxes;
        for (size_t i = 0; i < (c.crossings.size() + 1) / 2; i++) boxes.push_back(MakeBox(20, 20, 60, 60));
        if (c.crossings.size() % 2) {
            zr32::RecordFree(boxes.back());
            boxes.back() = MakePath({{6, 30, 20}, {2, 30, 60}});
        }
        PATHREC *path = Joined(boxes);
        SURFACEEDGES edges;
        zr32::VMapBuildEdgeTables(path, 0x10000, &edges);
        SetCrossings(&edges, 20, c.crossings);
        zr32::VMapClassifyCrossings(c.evenOdd, edges.rows);
        const std::vector<ROLE> roles = Roles(edges, 20);
        for (size_t i = 0; i < roles.size(); i++) {
            EXPECT_EQ(c.flags[i], roles[i].flag) << c.name << ", entry " << i;
            EXPECT_EQ(c.nodes[i] != 0, roles[i].node) << c.name << ", entry " << i;
        }
        zr32::SurfaceEdgesFree(&edges);
        FreeJoined(path);
    }
}

TEST(SurfaceEdges, LoneCrossingIsLeftAlone)
{
    PATHREC *line = MakePath({{6, 20, 20}, {2, 30, 60}});
    for (int evenOdd : {0, 1}) {
        SURFACEEDGES edges;
        zr32::VMapBuildEdgeTables(line, 0x10000, &edges);
        EXPECT_EQ(1, zr32::VMapClassifyCrossings(evenOdd, edges.rows));
        const std::vector<ROLE> roles = Roles(edges, 20);
        ASSERT_EQ(1U, roles.size());
        EXPECT_EQ(0, roles[0].flag);
        EXPECT_TRUE(roles[0].node);
        zr32::SurfaceEdgesFree(&edges);
    }
    zr32::RecordFree(line);
}

} // namespace
