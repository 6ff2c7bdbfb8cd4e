/* view_test.cpp - the view record, its tie to the display buffer, and window to image coordinates. */
#include "frame/faults.h"
#include "store/store.h"
#include "support/shapes.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <zr32path/display.h>

using namespace zr32;

namespace {

struct View : testing::Test {
    int64_t before = 0;
    COORDSTRUCT *view = nullptr;
    PATHTBL *table = nullptr;

    void SetUp() override
    {
        ZrPathInit();
        FaultSet(ALLOC_BUF, 0);
        before = FaultLiveBlocks(ALLOC_BUF);
        ASSERT_EQ(1, ZrPathNew(&table));
    }

    void TearDown() override
    {
        FaultSet(ALLOC_BUF, 0);
        EXPECT_EQ(1, ZrPathDeleteCoordStruct(view));
        ZrPathTblDelete(table);
        EXPECT_EQ(before, FaultLiveBlocks(ALLOC_BUF)) << "leak";
    }
};

TEST_F(View, WithoutATableOnlyTheSevenWordsAreSet)
{
    EXPECT_EQ(1, ZrPathCoordStruct(1, 2, 30, 40, 5, 6, -7, nullptr, &view));
    ASSERT_NE(nullptr, view);
    EXPECT_EQ(1, view->left);
    EXPECT_EQ(2, view->top);
    EXPECT_EQ(30, view->right);
    EXPECT_EQ(40, view->bottom);
    EXPECT_EQ(5, view->scrollX);
    EXPECT_EQ(6, view->scrollY);
    EXPECT_EQ(-7, view->zoom);
    EXPECT_EQ(nullptr, view->displayBuffer);
    for (uint32_t word : view->reserved) EXPECT_EQ(0u, word);
}

#if GTEST_HAS_DEATH_TEST
/* In a process of its own, where nothing has run yet. */
TEST(ViewStart, MakingTheFirstViewStartsTheLibrary)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto startedByView = [] {
        const bool before = PathHeap() != nullptr;
        COORDSTRUCT view = {};
        COORDSTRUCT *present = &view;
        ZrPathCoordStruct(0, 0, 10, 10, 0, 0, 1, nullptr, &present);
        const bool byPresent = PathHeap() != nullptr;
        COORDSTRUCT *made = nullptr;
        ZrPathCoordStruct(0, 0, 10, 10, 0, 0, 1, nullptr, &made);
        ZrPathDeleteCoordStruct(made);
        return !before && !byPresent && PathHeap() != nullptr;
    };
    EXPECT_EXIT(std::exit(startedByView() ? 0 : 1), testing::ExitedWithCode(0), "");
}
#endif

TEST_F(View, AViewWithoutWidthOrHeightHasABufferOfNothing)
{
    PATHREC *box = zr32test::MakeBox(0, 0, 20, 20);
    for (const RECT &r : {RECT{0, 0, 30, 0}, RECT{0, 0, 0, 30}, RECT{9, 9, 5, 30}}) {
        EXPECT_EQ(1, ZrPathNewCoordStruct(r.left, r.top, r.right, r.bottom, 0, 0, 1, 0, table, &view));
        EXPECT_EQ(table->lpDB, view->displayBuffer);
        EXPECT_EQ(1, ZrPathDraw(view, box, nullptr));
    }
    ZrPathDeletePtr(box, 0);
}

TEST_F(View, WithATableMakesTheBufferOnce)
{
    ZrPathCoordStruct(10, 20, 30, 50, 5, 6, 2, table, &view);
    uint8_t *buffer = table->lpDB;
    ASSERT_NE(nullptr, buffer);
    EXPECT_EQ(buffer, view->displayBuffer);
    EXPECT_LE(20u * 30u, BufMemSize(buffer));
    EXPECT_EQ(20 * 30, std::count(buffer, buffer + 20 * 30, 0));
    EXPECT_EQ(20, table->dbWidth);
    EXPECT_EQ(30, table->dbHeight);
    EXPECT_EQ(5, table->dbScrollX);
    EXPECT_EQ(6, table->dbScrollY);
    EXPECT_EQ(2, table->dbZoom);

    ZrPathCoordStruct(0, 0, 300, 400, 0, 0, 1, table, &view);
    EXPECT_EQ(buffer, table->lpDB) << "kept as it is, even if its size no longer fits";
    EXPECT_EQ(buffer, view->displayBuffer);
    EXPECT_EQ(300, table->dbWidth);

    ZrPathCoordStruct(0, 0, 3, 4, 0, 0, 1, nullptr, &view);
    EXPECT_EQ(buffer, view->displayBuffer) << "without a table the view keeps its buffer";
}

TEST_F(View, NewViewReplacesTheBuffer)
{
    ZrPathCoordStruct(0, 0, 10, 10, 0, 0, 1, table, &view);
    table->lpDB[5] = 3;
    EXPECT_EQ(1, ZrPathNewCoordStruct(0, 0, 10, 10, 4, 5, 1, 77, table, &view));
    ASSERT_NE(nullptr, table->lpDB);
    EXPECT_EQ(0, table->lpDB[5]);
    EXPECT_EQ(table->lpDB, view->displayBuffer);
    EXPECT_EQ(77, table->dbTag);
    ZrPathNewCoordStruct(0, 0, 10, 12, 4, 5, 1, 0, table, &view);
    EXPECT_EQ(77, table->dbTag) << "a tag of 0 is not stored";
    EXPECT_EQ(12, table->dbHeight);
}

TEST_F(View, NewViewNeedsATable)
{
    EXPECT_EQ(0, ZrPathNewCoordStruct(0, 0, 10, 10, 4, 5, 1, 77, nullptr, &view));
    EXPECT_EQ(nullptr, view);
    EXPECT_EQ(0, ZrPathNewCoordStruct(0, 0, 10, 10, 4, 5, 1, 77, table, nullptr));
    EXPECT_EQ(nullptr, table->lpDB);
}

TEST_F(View, WithoutMemoryAViewIsNullOrHasNoBuffer)
{
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(1, ZrPathCoordStruct(0, 0, 10, 10, 0, 0, 1, table, &view));
    EXPECT_EQ(nullptr, view);
    EXPECT_EQ(nullptr, table->lpDB);
    FaultSet(ALLOC_BUF, 2);
    EXPECT_EQ(1, ZrPathCoordStruct(0, 0, 10, 10, 0, 0, 1, table, &view));
    ASSERT_NE(nullptr, view);
    EXPECT_EQ(nullptr, view->displayBuffer);
    EXPECT_EQ(nullptr, table->lpDB);
    EXPECT_EQ(1, ZrPathCoordStruct(0, 0, 10, 10, 0, 0, 1, table, &view)) << "the next call makes up for it";
    EXPECT_NE(nullptr, view->displayBuffer);
}

TEST_F(View, NewViewWithoutMemoryLeavesTheTableUsable)
{
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(0, ZrPathNewCoordStruct(0, 0, 10, 10, 0, 0, 1, 5, table, &view));
    EXPECT_EQ(nullptr, view);
    EXPECT_EQ(0, table->dbTag);
    EXPECT_EQ(1, ZrPathNewCoordStruct(0, 0, 10, 10, 0, 0, 1, 5, table, &view));
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(1, ZrPathNewCoordStruct(0, 0, 20, 20, 0, 0, 1, 5, table, &view));
    EXPECT_EQ(nullptr, table->lpDB) << "the old buffer is freed, the new one could not be had";
    EXPECT_EQ(nullptr, view->displayBuffer);
}

TEST_F(View, SizesWithoutPixelsAndImpossibleSizesAreSafe)
{
    ZrPathNewCoordStruct(10, 10, 5, 20, 0, 0, 1, 1, table, &view);
    EXPECT_NE(nullptr, table->lpDB);
    EXPECT_EQ(-5, table->dbWidth);
    ZrPathNewCoordStruct(0, 0, INT32_MAX, INT32_MAX, 0, 0, 1, 1, table, &view);
    EXPECT_EQ(nullptr, table->lpDB);
    ZrPathNewCoordStruct(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 0, 0, 1, 1, table, &view);
    EXPECT_EQ(-1, table->dbWidth) << "the difference wraps";
}

TEST_F(View, ValidOnlyForExactlyTheSameValues)
{
    ZrPathNewCoordStruct(10, 20, 30, 50, 5, 6, 2, 77, table, &view);
    EXPECT_EQ(1, ZrPathTblIsValid(10, 20, 30, 50, 5, 6, 2, 77, table));
    EXPECT_EQ(1, ZrPathTblIsValid(0, 0, 20, 30, 5, 6, 2, 77, table)) << "the same size elsewhere";
    EXPECT_EQ(0, ZrPathTblIsValid(10, 20, 31, 50, 5, 6, 2, 77, table));
    EXPECT_EQ(0, ZrPathTblIsValid(10, 20, 30, 51, 5, 6, 2, 77, table));
    EXPECT_EQ(0, ZrPathTblIsValid(10, 20, 30, 50, 4, 6, 2, 77, table));
    EXPECT_EQ(0, ZrPathTblIsValid(10, 20, 30, 50, 5, 7, 2, 77, table));
    EXPECT_EQ(0, ZrPathTblIsValid(10, 20, 30, 50, 5, 6, 1, 77, table));
    EXPECT_EQ(0, ZrPathTblIsValid(10, 20, 30, 50, 5, 6, 2, 78, table)) << "all else fits";
    EXPECT_EQ(0, ZrPathTblIsValid(10, 20, 30, 50, 5, 6, 2, 77, nullptr));
}

TEST_F(View, DeleteOfNullIsOne)
{
    EXPECT_EQ(1, ZrPathDeleteCoordStruct(nullptr));
}

TEST_F(View, WindowPointsBecomeImagePoints)
{
    const struct {
        const char *name;
        int32_t scroll;
        int32_t zoom;
        int32_t at;
        double want;
    } cases[] = {
        {"one to one", 0, 1, 7, 6.5},
        {"zoom 2, scroll 10", 10, 2, 0, 4.5},
        {"reduction by 2", 10, -2, 0, 19.5},
        {"reduction by 1", 10, -1, 3, 12.5},
        {"negative", 0, 4, -2, -1.0},
        {"no 32-bit sum", INT32_MAX, 1, INT32_MAX, 4294967293.5},
        {"lowest zoom", 1, INT32_MIN, 0, 2147483647.5},
    };
    for (const auto &c : cases) {
        ZrPathCoordStruct(0, 0, 10, 10, c.scroll, c.scroll, c.zoom, nullptr, &view);
        const tagPOINTDB point = ZrPathPtWndToImage(c.at, c.at, view);
        EXPECT_EQ(c.want, point.x) << c.name;
        EXPECT_EQ(c.want, point.y) << c.name;
    }
}

TEST_F(View, RectanglesConvertBothCorners)
{
    ZrPathCoordStruct(100, 200, 300, 400, 10, 20, 2, nullptr, &view);
    const ZRRECTDB rect = ZrPathRectWndToImage(0, 2, 4, 6, view);
    EXPECT_EQ(4.5, rect.topLeft.x);
    EXPECT_EQ(10.5, rect.topLeft.y);
    EXPECT_EQ(6.5, rect.bottomRight.x);
    EXPECT_EQ(12.5, rect.bottomRight.y);
    const tagPOINTDB whole = PathViewToImage(view, 100, 202);
    EXPECT_EQ(4.5, whole.x) << "a point on the whole window";
    EXPECT_EQ(10.5, whole.y);
    EXPECT_EQ(0, ZrPathPtWndToImage(5, 5, nullptr).x);
    EXPECT_EQ(0, PathViewToImage(nullptr, 5, 5).y);
}

TEST_F(View, ZoomZeroIsSafe)
{
    ZrPathCoordStruct(0, 0, 10, 10, 3, 3, 0, nullptr, &view);
    EXPECT_EQ(-0.5, ZrPathPtWndToImage(5, 5, view).x);
}

} // namespace
