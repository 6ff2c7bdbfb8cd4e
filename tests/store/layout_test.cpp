/* layout_test.cpp - sizes of blocks and records as the numbers that callers rely on: those of a 32-bit build are
 * documented, those of a 64-bit build follow from wider links. */
#include "store/store.h"
#include "support/shapes.h"

#include <gtest/gtest.h>
#include <zr32path.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr size_t ByBuild(size_t on32Bits, size_t on64Bits)
{
    return sizeof(void *) == 4 ? on32Bits : on64Bits;
}

size_t BlockSize(const void *block)
{
    return PathHeapSize(PathHeap(), heapNoSerialize, block);
}

TEST(Layout, BlocksOfRecords)
{
    ZrPathInit();
    PATHREC *path = ZrPathCreate();
    EXPECT_EQ(BlockSize(path), ByBuild(1042, 1070)) << "a new record";
    PATHNODE *node = nullptr;
    ASSERT_EQ(PathReserveNodes(&path, &node, 100), 1);
    EXPECT_EQ(BlockSize(path), ByBuild(1042, 1070)) << "a hundred nodes";
    ASSERT_EQ(PathReserveNodes(&path, &node, 1), 1);
    EXPECT_EQ(BlockSize(path), ByBuild(2042, 2070)) << "the 101st node";
    ZrPathDeletePtr(path, 0);

    path = ZrPathCreate();
    const ZRPOINTFX point = {1, 2};
    for (int i = 0; i < 10; i++) ZrPathAddPoint(&path, &point, PATHNODE_LINE);
    ASSERT_EQ(ZrPathPurge(&path), 1);
    EXPECT_EQ(BlockSize(path), ByBuild(142, 170)) << "purged to ten nodes";
    ZrPathDeletePtr(path, 0);
}

TEST(Layout, BlocksOfTables)
{
    ZrPathInit();
    PATHTBL *table = nullptr;
    COORDSTRUCT *view = nullptr;
    tagRECT dirty;
    ASSERT_EQ(ZrPathNew(&table), 1);
    EXPECT_EQ(BlockSize(table), ByBuild(332, 352)) << "one group";
    ZrPathCoordStruct(0, 0, 30, 30, 0, 0, 1, nullptr, &view);
    for (const char *name : {"first", "second"})
        ASSERT_EQ(ZrPathAddPathGroup(&table, MakeBox(5, 5, 20, 20), name, view, &dirty), 1);
    EXPECT_EQ(BlockSize(table), ByBuild(600, 632)) << "two groups";
    ZrPathTblDelete(table);
    ZrPathDeleteCoordStruct(view);

    ASSERT_EQ(AddPathTest(&table, nullptr, nullptr), &table);
    EXPECT_EQ(BlockSize(table), ByBuild(1672, 1752)) << "the sample table";
    ZrPathTblDelete(table);
}

TEST(Layout, RecordsOfTheInterface)
{
    EXPECT_EQ(sizeof(COORDSTRUCT), ByBuild(48, 56));
    EXPECT_EQ(sizeof(PATHGROUP), ByBuild(268, 280));
    EXPECT_EQ(offsetof(PATHTBL, groups), ByBuild(64, 72));
    EXPECT_EQ(offsetof(PATHREC, nodes), ByBuild(40, 68));
    EXPECT_EQ(sizeof(PATHBUFLOCK), ByBuild(8, 16));
    EXPECT_EQ(sizeof(PATHNODE), 10u);
    EXPECT_EQ(sizeof(R2VPOINT), 24u);
    EXPECT_EQ(sizeof(TEXTPARAM), 40u);
    EXPECT_EQ(sizeof(SURFVEC16), 8u);
    EXPECT_EQ(sizeof(SURFVECF), 8u);
    EXPECT_EQ(sizeof(POINTFXMAT3D), 144u);
    EXPECT_EQ(sizeof(tagRECT), 16u);
}

} // namespace
