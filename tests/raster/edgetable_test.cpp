/* edgetable_test.cpp - rows and columns of crossings with their nodes. */
#include "frame/faults.h"
#include "raster/edgetable.h"
#include "support/shapes.h"

#include <gtest/gtest.h>
#include <random>

using namespace zr32test;
using namespace zr32;

namespace {

struct ROW {
    EDGEENTRY *entries;
    uint32_t count;
};

ROW RowOf(EDGETABLE *table, uint32_t row)
{
    ROW r;
    r.entries = EdgeTableRow(table, row, &r.count);
    return r;
}

TEST(EdgeTable, RowsOfABoxKnowDirectionAndNode)
{
    /* Clockwise on the screen: the right side goes down, the left side up. y is moved by a half, x is not. */
    PATHREC *path = MakeBox(2, 3, 8, 6);
    EDGETABLE *table;
    ASSERT_EQ(1, EdgeTableOfChain(EDGES_ROWS, path, 1.0, 0, 0, 10, &table));
    EXPECT_EQ(10u, EdgeTableRows(table));
    for (uint32_t y = 0; y < 10; y++) {
        const ROW row = RowOf(table, y);
        if (y < 4 || y > 6) {
            EXPECT_EQ(0u, row.count) << y;
            continue;
        }
        ASSERT_EQ(2u, row.count) << y;
        EXPECT_DOUBLE_EQ(-2.00001, row.entries[0].crossing);
        EXPECT_DOUBLE_EQ(8.00001, row.entries[1].crossing);
        EXPECT_EQ(path->nodes + 4, row.entries[0].node);
        EXPECT_EQ(path->nodes + 2, row.entries[1].node);
        EXPECT_EQ(0, row.entries[0].spanFlag);
        EXPECT_EQ(0.0, row.entries[2].crossing);
        EXPECT_EQ(nullptr, row.entries[2].node);
    }
    EXPECT_EQ(1, EdgeTableFree(table));
    RecordFree(path);
}

TEST(EdgeTable, ColumnsExchangeXAndY)
{
    PATHREC *path = MakeBox(2, 3, 8, 6);
    EDGETABLE *table;
    ASSERT_EQ(1, EdgeTableOfChain(EDGES_COLUMNS, path, 1.0, 0, 0, 10, &table));
    for (uint32_t x = 0; x < 10; x++) {
        const ROW column = RowOf(table, x);
        /* x is 2 to 8 and nudged off the grid, so column 2 lies before the box and column 8 in it. */
        if (x < 3 || x > 8) {
            EXPECT_EQ(0u, column.count) << x;
            continue;
        }
        ASSERT_EQ(2u, column.count) << x;
        EXPECT_DOUBLE_EQ(3.5, column.entries[0].crossing);
        EXPECT_DOUBLE_EQ(-6.5, column.entries[1].crossing);
        EXPECT_EQ(path->nodes + 1, column.entries[0].node);
        EXPECT_EQ(path->nodes + 3, column.entries[1].node);
    }
    EdgeTableFree(table);
    RecordFree(path);
}

TEST(EdgeTable, CurveEntriesNameTheFirstControlNode)
{
    PATHREC *path = MakeCircle(20, 20, 10);
    EDGETABLE *table;
    ASSERT_EQ(1, EdgeTableOfChain(EDGES_ROWS, path, 1.0, 0, 0, 40, &table));
    const ROW row = RowOf(table, 15);
    ASSERT_EQ(2u, row.count);
    EXPECT_EQ(path->nodes + 7, row.entries[0].node);
    EXPECT_EQ(path->nodes + 4, row.entries[1].node);
    EdgeTableFree(table);
    RecordFree(path);
}

TEST(EdgeTable, VerticesOnTheSampleGridGiveWholePairs)
{
    /* Corners lie on whole rows once the half pixel is added. */
    PATHREC *path = MakePath({{6, 20, 2.5}, {2, 30, 12.5}, {2, 20, 22.5}, {2, 10, 12.5}, {3, 20, 2.5}});
    EDGETABLE *table;
    ASSERT_EQ(1, EdgeTableOfChain(EDGES_ROWS, path, 1.0, 0, 0, 30, &table));
    for (uint32_t y = 0; y < 30; y++) EXPECT_EQ(y > 3 && y <= 23 ? 2u : 0u, RowOf(table, y).count) << y;
    EdgeTableFree(table);
    RecordFree(path);
}

TEST(EdgeTable, EqualCrossingsKeepTheOrderOfTheWalkWhateverTheirSign)
{
    /* Three uprights at one place: down, up, down. */
    PATHREC *path = MakePath({{6, 5.25, 1}, {2, 5.25, 9}, {6, 5.25, 9}, {2, 5.25, 1}, {6, 5.25, 1}, {2, 5.25, 9}});
    EDGETABLE *table;
    ASSERT_EQ(1, EdgeTableOfChain(EDGES_ROWS, path, 1.0, 0, 0, 12, &table));
    const ROW row = RowOf(table, 5);
    ASSERT_EQ(3u, row.count);
    EXPECT_EQ(path->nodes + 1, row.entries[0].node);
    EXPECT_EQ(path->nodes + 3, row.entries[1].node);
    EXPECT_EQ(path->nodes + 5, row.entries[2].node);
    EXPECT_GT(0, row.entries[1].crossing);
    EdgeTableFree(table);
    RecordFree(path);
}

TEST(EdgeTable, RowsThatDoNotExistAreEmpty)
{
    EDGETABLE *table;
    PATHREC *path = MakeBox(2, 3, 8, 6);
    ASSERT_EQ(1, EdgeTableOfChain(EDGES_ROWS, path, 1.0, 0, 0, 0, &table));
    EXPECT_EQ(0u, EdgeTableRows(table));
    uint32_t count = 7;
    EXPECT_EQ(nullptr, EdgeTableRow(table, 0, &count));
    EXPECT_EQ(0u, count);
    EdgeTableFree(table);
    EXPECT_EQ(nullptr, EdgeTableRow(nullptr, 0, &count));
    EXPECT_EQ(0u, EdgeTableRows(nullptr));
    EXPECT_EQ(0, EdgeTableFree(nullptr));
    EXPECT_EQ(0, EdgeTableOfChain(EDGES_ROWS, path, 1.0, 0, 0, -5, &table));
    EXPECT_EQ(nullptr, table);
    RecordFree(path);
}

TEST(EdgeTable, ZoomsThatAreNoNumbersAddNothingAndEnd)
{
    PATHREC *path = MakeCircle(20, 20, 10);
    PATHREC *box = MakeBox(1, 2, 9, 11);
    ChainLink(joinChain, path, box);
    for (const double zoom : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, -1e300, 1e18}) {
        EDGETABLE *table;
        ASSERT_EQ(1, EdgeTableOfChain(EDGES_ROWS, path, zoom, 0, 0, 40, &table));
        for (uint32_t y = 0; y < 40; y++) EXPECT_EQ(0u, RowOf(table, y).count) << zoom;
        EdgeTableFree(table);
    }
    RecordFree(path);
    RecordFree(box);
}

TEST(EdgeTable, FullRowsAreLaidOutAgainWithMoreRoom)
{
    PATHREC *path = MakeBox(2, 3, 8, 6);
    EDGETABLE *table = EdgeTableAlloc(EDGES_PLAIN, 1, PlaceOnMask(1.0, 0, 0), 4);
    ASSERT_EQ(1, EdgeTableLayOut(path, 0, 10, UINT32_MAX, table));
    /* A caller that adds more than the edges that were counted. */
    for (int i = 0; i < 40; i++) EdgeTableAdd(table, i + 1, 17, nullptr);
    EXPECT_EQ(1, table->overflow);
    EXPECT_GT(40u, EdgeTableRowCount(table, 17));
    const uint32_t spare = table->spare;
    EXPECT_EQ(1, EdgeTableFill(path, table));
    EXPECT_EQ(0, table->overflow);
    EXPECT_LT(spare, table->spare);
    EXPECT_EQ(2u, EdgeTableRowCount(table, 17));
    EdgeTableFree(table);
    RecordFree(path);
}

TEST(EdgeTable, MoreRoomThanAnyTableHasIsRefused)
{
    PATHREC *path = MakeBox(2, 3, 8, 6);
    EDGETABLE *table = EdgeTableAlloc(EDGES_PLAIN, 1, PlaceOnMask(1.0, 0, 0), 1);
    table->spare = 0x20000000;
    EXPECT_EQ(0, EdgeTableLayOut(path, 0, 10, UINT32_MAX, table));
    table->spare = 1;
    EXPECT_EQ(1, EdgeTableLayOut(path, 0, 10, UINT32_MAX, table));
    EdgeTableFree(table);
    RecordFree(path);
}

TEST(EdgeTable, PartsAreWholeBandsAndAtLeastOne)
{
    PATHREC *path = MakeBox(2, 3, 8, 600);
    EDGETABLE *table = EdgeTableAlloc(EDGES_PLAIN, 1, PlaceOnMask(1.0, 0, 0), 16);
    ASSERT_EQ(1, EdgeTableLayOut(path, 50, 610, 1, table));
    EXPECT_EQ(100, table->bottom);
    EXPECT_EQ(800u, table->rowCount);
    ASSERT_EQ(1, EdgeTableLayOut(path, 50, 610, 7000, table));
    EXPECT_EQ(0, table->bottom % 50);
    EXPECT_LT(100, table->bottom);
    EXPECT_GT(610, table->bottom);
    ASSERT_EQ(1, EdgeTableLayOut(path, 600, 610, 1, table));
    EXPECT_EQ(610, table->bottom);
    EdgeTableFree(table);
    RecordFree(path);
}

TEST(EdgeTable, SortsRowsOfAnyLengthByMagnitudePositiveFirst)
{
    for (unsigned seed = 0; seed < 60; seed++) {
        std::mt19937 random(seed);
        PATHREC *path = MakeBox(0, 0, 1, 1);
        EDGETABLE *table = EdgeTableAlloc(EDGES_PLAIN, 0, PlaceOnMask(1.0, 0, 0), 1);
        table->spare = 200;
        ASSERT_EQ(1, EdgeTableLayOut(path, 0, 1, UINT32_MAX, table));
        for (unsigned i = 0; i < seed * 3; i++)
            EdgeTableAdd(table, (static_cast<double>(random() % 40) + 1) * (random() % 2 ? 1 : -1), 0, nullptr);
        const double *row = EdgeTableSortRow(table, 0);
        for (unsigned i = 1; i < seed * 3; i++) {
            EXPECT_LE(std::fabs(row[i - 1]), std::fabs(row[i]));
            EXPECT_TRUE(row[i - 1] != -row[i] || row[i - 1] > 0);
        }
        EXPECT_EQ(0.0, row[seed * 3]);
        EdgeTableFree(table);
        RecordFree(path);
    }
}

TEST(EdgeTable, EveryFailedAllocationGivesNoTableAndLeaksNothing)
{
    PATHREC *path = MakeCircle(20, 20, 10);
    const int64_t blocks = FaultLiveBlocks(ALLOC_BUF);
    for (int n = 1;; n++) {
        FaultSet(ALLOC_BUF, n);
        EDGETABLE *table;
        const int made = EdgeTableOfChain(EDGES_ROWS, path, 1.0, 0, 0, 40, &table);
        if (!FaultStruck()) {
            EXPECT_LT(3, n);
            EdgeTableFree(table);
            break;
        }
        EXPECT_EQ(0, made);
        EXPECT_EQ(nullptr, table);
        EXPECT_EQ(blocks, FaultLiveBlocks(ALLOC_BUF));
    }
    FaultSet(ALLOC_BUF, 0);
    EXPECT_EQ(blocks, FaultLiveBlocks(ALLOC_BUF));
    RecordFree(path);
}

} // namespace
