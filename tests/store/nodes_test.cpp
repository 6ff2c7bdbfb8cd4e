/* nodes_test.cpp - the points of a record that edits visit, and those that they leave alone. */
#include "store/nodes.h"
#include "support/shapes.h"

#include <gtest/gtest.h>
#include <vector>

using namespace zr32;
using zr32test::MakePath;

namespace {

/* Indices of the visited nodes. */
std::vector<ptrdiff_t> Visited(PATHREC *path)
{
    std::vector<ptrdiff_t> visited;
    ForEachPoint(path, [&](const PATHNODE *node) { visited.push_back(node - path->nodes); });
    RecordFree(path);
    return visited;
}

TEST(Nodes, CurvesAreThreePointsAndShapesAreSteppedOver)
{
    EXPECT_EQ((std::vector<ptrdiff_t>{0, 1, 2, 3, 4, 10, 11}), Visited(MakePath({{6, 1, 1},
                                                                                 {0x8002, 2, 2},
                                                                                 {4, 3, 3},
                                                                                 {4, 4, 4},
                                                                                 {0x2005, 5, 5},
                                                                                 {0x200, 6, 6},
                                                                                 {0x100, 7, 7},
                                                                                 {2, 0.5, 0},
                                                                                 {0x400, 5, 0},
                                                                                 {2, 8, 8},
                                                                                 {6, 9, 9},
                                                                                 {3, 9, 9}})));
}

TEST(Nodes, EndAtAnUnknownKindAndWhereASegmentIsCutShort)
{
    EXPECT_EQ((std::vector<ptrdiff_t>{0}), Visited(MakePath({{6, 1, 1}, {0x800, 2, 2}, {2, 3, 3}})));
    EXPECT_EQ((std::vector<ptrdiff_t>{0}), Visited(MakePath({{6, 1, 1}, {4, 2, 2}, {4, 3, 3}})));
    EXPECT_EQ((std::vector<ptrdiff_t>{0, 1, 2, 3}), Visited(MakePath({{6, 1, 1}, {4, 2, 2}, {4, 3, 3}, {4, 4, 4}})));
    EXPECT_TRUE(Visited(MakePath({})).empty());
}

} // namespace
