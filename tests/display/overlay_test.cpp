/* overlay_test.cpp - the display buffer as a whole: rebuilding, selection in and out, cropping, scrolling, dirty
 * rectangles. */
#include "display/display.h"
#include "frame/faults.h"
#include "plain_overlay.h"
#include "support/randompath.h"
#include "support/shapes.h"
#include "support/views.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

void ExpectRect(const RECT &rect, int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    EXPECT_EQ(rect.left, left);
    EXPECT_EQ(rect.top, top);
    EXPECT_EQ(rect.right, right);
    EXPECT_EQ(rect.bottom, bottom);
}

constexpr RECT untouched = {11, 22, 33, 44};

} // namespace

TEST(Overlay, DrawRebuildsFromTheHeadOfTheChain)
{
    TESTVIEW v(50, 40, 1, 0, 0, 7, 9);
    PATHREC *a = MakeBox(5, 5, 15, 15);
    PATHREC *b = MakeBox(20, 5, 30, 15);
    v.Add({a, b});
    v.view->displayBuffer[0] = 99;
    RECT dirty;
    ASSERT_EQ(ZrPathDraw(v.view, b, &dirty), 1);
    PLAINPLANE plain = PlainPlane(*v.view);
    PlainOutline(a, *v.view, 0, &plain);
    PlainOutline(b, *v.view, 0, &plain);
    EXPECT_EQ(v.Plane(), plain.bytes);
    EXPECT_EQ(v.At(0, 0), 0);
    /* Boxes from 5.5 to 30.5: whole pixels 5 and 30, widened by 1, then moved to the view and widened by 2. */
    ExpectRect(dirty, 4 + 7 - 2, 4 + 9 - 2, 31 + 7 + 2, 16 + 9 + 2);
}

TEST(Overlay, DrawLeavesHiddenRecordsOut)
{
    TESTVIEW v(50, 40, 1, 0, 0, 7, 9);
    PATHREC *a = MakeBox(5, 5, 15, 15);
    a->flags = PATHREC_SELECTED | PATHREC_HIDDEN;
    v.Add({a});
    v.view->displayBuffer[77] = 3;
    RECT dirty;
    ASSERT_EQ(ZrPathDraw(v.view, a, &dirty), 1);
    EXPECT_EQ(v.Plane(), std::vector<uint8_t>(2000));
    ExpectRect(dirty, 7 - 2, 9 - 2, 7 + 2, 9 + 2);
}

TEST(Overlay, DrawWithoutABufferLeavesTheRectangle)
{
    TESTVIEW v(20, 20);
    PATHREC *a = MakeBox(5, 5, 15, 15);
    v.Add({a});
    COORDSTRUCT bare = *v.view;
    bare.displayBuffer = nullptr;
    RECT dirty = untouched;
    EXPECT_EQ(ZrPathDraw(&bare, a, &dirty), 1);
    EXPECT_EQ(ZrPathDraw(nullptr, a, &dirty), 1);
    ExpectRect(dirty, 11, 22, 33, 44);
    EXPECT_EQ(ZrPathDraw(v.view, nullptr, &dirty), 0);
    EXPECT_EQ(ZrPathDraw(v.view, a, nullptr), 1);
    EXPECT_NE(v.Plane(), std::vector<uint8_t>(400));
}

TEST(Overlay, HideClearsTheBlockWithItsSpareBytes)
{
    TESTVIEW v(10, 10, 1, 0, 0, 30, 40);
    const size_t size = BufMemSize(v.view->displayBuffer);
    std::fill(v.view->displayBuffer, v.view->displayBuffer + size, uint8_t{5});
    RECT dirty;
    EXPECT_EQ(ZrPathHide(v.view, nullptr, &dirty), 1);
    for (size_t i = 0; i < size; i++) ASSERT_EQ(v.view->displayBuffer[i], 0);
    ExpectRect(dirty, -2, -2, 12, 12);
}

TEST(Overlay, HideGivesThePathsBoxInImagePixels)
{
    TESTVIEW v(10, 10, 4);
    PATHREC *a = MakeBox(5, 6, 15, 17);
    v.Add({a});
    RECT dirty;
    EXPECT_EQ(ZrPathHide(v.view, a, &dirty), 1);
    ExpectRect(dirty, 5 - 5 - 2, 6 - 5 - 2, 15 + 6 + 2, 17 + 6 + 2);
    EXPECT_EQ(ZrPathHide(v.view, a, nullptr), 1);
    EXPECT_EQ(ZrPathHide(nullptr, nullptr, &dirty), 1);
    ExpectRect(dirty, -2, -2, 2, 2);
    v.view->displayBuffer = nullptr;
    EXPECT_EQ(ZrPathHide(v.view, a, &dirty), 1);
}

TEST(Overlay, DrawAndHideOfTheSelectionRestoreEveryByte)
{
    for (unsigned seed = 0; seed < 300; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        TESTVIEW v(Pick(random, 5, 90), Pick(random, 5, 90), Pick(random, 0, 2) ? 1 : -2, Pick(random, -20, 20), 0,
                   Pick(random, 0, 9), 0);
        std::vector<PATHREC *> chosen;
        for (int i = 0; i < 5; i++) {
            PATHREC *path = RandomPath(random, shape);
            v.Add({path});
            if (i % 2 == 0) chosen.push_back(path);
        }
        SelectPaths(chosen);
        RECT dirty;
        ZrPathDraw(v.view, chosen[0], &dirty);
        const std::vector<uint8_t> before = v.Plane();
        EXPECT_EQ(ZrPathDrawSelected(v.view, chosen[1], &dirty), 1);
        EXPECT_EQ(ZrPathHideSelected(v.view, chosen[2], &dirty), 1);
        ASSERT_EQ(v.Plane(), before) << "seed " << seed;
    }
}

TEST(Overlay, SegmentsInAndOutRestoreEveryByteOfARecordInNodeEditing)
{
    for (unsigned seed = 0; seed < 300; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        shape.marks = true;
        TESTVIEW v(80, 60);
        PATHREC *path = RandomPath(random, shape);
        v.Add({path});
        RECT in;
        RECT out;
        ZrPathDraw(v.view, path, &in);
        const std::vector<uint8_t> before = v.Plane();
        EXPECT_EQ(ZrPathHideSelected(v.view, path, &in), 1);
        EXPECT_EQ(path->flags, PATHREC_NODEEDIT) << "stays shown as a whole";
        EXPECT_EQ(ZrPathDrawSelectedSegments(v.view, path, &out), 1);
        ASSERT_EQ(v.Plane(), before) << "seed " << seed;
        ExpectRect(in, out.left, out.top, out.right, out.bottom);
    }
}

TEST(Overlay, WhatIsTakenOutAsAWholeIsHidden)
{
    TESTVIEW v(40, 40);
    PATHREC *a = MakeBox(5, 5, 15, 15);
    PATHREC *b = MakeBox(10, 10, 30, 30);
    v.Add({a, b});
    SelectPaths({a, b});
    b->flags = PATHREC_NODEEDIT;
    RECT dirty;
    ZrPathDraw(v.view, a, &dirty);
    EXPECT_EQ(ZrPathHideSelected(v.view, b, &dirty), 1);
    EXPECT_EQ(a->flags, PATHREC_SELECTED | PATHREC_HIDDEN);
    EXPECT_EQ(b->flags, PATHREC_NODEEDIT);
    EXPECT_EQ(ZrPathDrawSelectedSegments(v.view, b, &dirty), 1);
    EXPECT_EQ(a->flags, PATHREC_SELECTED | PATHREC_HIDDEN) << "segment modes hide whichever way they step";
    EXPECT_EQ(ZrPathDrawSelected(v.view, b, &dirty), 1);
    EXPECT_EQ(a->flags, PATHREC_SELECTED);
}

TEST(Overlay, SelectionFunctionsRefuseWhatIsNotSelected)
{
    TESTVIEW v(40, 40);
    PATHREC *a = MakeBox(5, 5, 15, 15);
    v.Add({a});
    RECT dirty = untouched;
    for (const auto call : {ZrPathDrawSelected, ZrPathHideSelected, ZrPathDrawSelectedSegments}) {
        EXPECT_EQ(call(v.view, nullptr, &dirty), 0);
        EXPECT_EQ(call(v.view, a, &dirty), 0);
    }
    a->flags = PATHREC_SELECTED;
    COORDSTRUCT bare = *v.view;
    bare.displayBuffer = nullptr;
    for (const auto call : {ZrPathDrawSelected, ZrPathHideSelected, ZrPathDrawSelectedSegments}) {
        EXPECT_EQ(call(&bare, a, &dirty), 1);
        EXPECT_EQ(call(nullptr, a, &dirty), 1);
    }
    ExpectRect(dirty, 11, 22, 33, 44);
    EXPECT_EQ(a->flags, PATHREC_SELECTED) << "without a buffer nothing is hidden";
    EXPECT_EQ(ZrPathDrawSelected(v.view, a, nullptr), 1);
}

TEST(Overlay, SelectionStartsAtTheHeadOfItsChain)
{
    TESTVIEW v(40, 40);
    PATHREC *a = MakeBox(5, 5, 15, 15);
    PATHREC *b = MakeBox(20, 20, 30, 30);
    v.Add({a, b});
    SelectPaths({a, b});
    RECT dirty;
    ZrPathDrawSelected(v.view, b, &dirty);
    EXPECT_EQ(v.At(5, 10), 1);
    EXPECT_EQ(v.At(20, 25), 1);
}

TEST(Overlay, ClearOfAPartHasInclusiveEnds)
{
    const struct {
        RECT rect;
        int cleared;
    } cases[] = {
        {{2, 3, 4, 5}, 9},
        {{0, 0, 0, 0}, 1},
        {{-5, -5, 2, 2}, 9},
        {{8, 8, 50, 50}, 4},
        {{5, 5, 4, 6}, 0},
        {{5, 6, 9, 5}, 0},
        {{0, 0, 9, 9}, 100},
        {{0, 0, 10, 10}, 100},
        {{20, 0, 30, 9}, 0},
        {{0, 20, 9, 30}, 0},
        {{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, 100},
        {{0, 0, 10, 0}, 10},
    };
    for (const auto &c : cases) {
        TESTVIEW v(10, 10);
        std::fill(v.view->displayBuffer, v.view->displayBuffer + 100, uint8_t{1});
        DISPLAYPLANE plane;
        ASSERT_TRUE(DisplayPlaneOf(v.view, &plane));
        DbClear(&plane, &c.rect);
        const std::vector<uint8_t> after = v.Plane();
        EXPECT_EQ(std::count(after.begin(), after.end(), uint8_t{0}), c.cleared)
            << c.rect.left << ' ' << c.rect.top << ' ' << c.rect.right << ' ' << c.rect.bottom;
    }
}

TEST(Overlay, ClearStaysInTheBlock)
{
    TESTVIEW v(10, 10);
    v.view->right = 1000;
    v.view->bottom = 1000;
    DISPLAYPLANE plane;
    ASSERT_TRUE(DisplayPlaneOf(v.view, &plane));
    const RECT part = {3, 0, 990, 800};
    DbClear(&plane, &part);
    RECT dirty;
    EXPECT_EQ(ZrPathHide(v.view, nullptr, &dirty), 1);
}

TEST(Overlay, DirtyRectangleOfAnEditIsClippedToTheView)
{
    TESTVIEW v(50, 40, 1, 0, 0, 7, 9);
    RECT dirty = {-10, 5, 20, 60};
    DirtyToWindowClipped(v.view, &dirty);
    ExpectRect(dirty, 7, 12, 29, 49);
    dirty = {5, 5, 5, 9};
    DirtyToWindowClipped(v.view, &dirty);
    ExpectRect(dirty, 0, 0, 0, 0);
}

TEST(Overlay, CropKeepsWhatBothSizesHave)
{
    const struct {
        int32_t width, height;
    } cases[] = {{5, 5}, {10, 8}, {14, 3}, {3, 14}, {20, 20}, {1, 1}};
    for (const auto &c : cases) {
        TESTVIEW v(10, 8);
        for (int i = 0; i < 80; i++) v.table->lpDB[i] = static_cast<uint8_t>(i + 1);
        uint8_t *old = v.view->displayBuffer;
        ASSERT_EQ(ZrPathCropDB(v.table, c.width, c.height), 1);
        EXPECT_EQ(v.table->dbWidth, c.width);
        EXPECT_EQ(v.table->dbHeight, c.height);
        EXPECT_EQ(v.view->displayBuffer, old) << "the caller renews its view";
        for (int32_t y = 0; y < c.height; y++)
            for (int32_t x = 0; x < c.width; x++)
                ASSERT_EQ(v.table->lpDB[y * c.width + x], x < 10 && y < 8 ? y * 10 + x + 1 : 0) << x << ' ' << y;
    }
}

TEST(Overlay, CropRefusesWhatCannotBeHad)
{
    TESTVIEW v(10, 8);
    v.table->lpDB[3] = 7;
    uint8_t *old = v.table->lpDB;
    EXPECT_EQ(ZrPathCropDB(nullptr, 5, 5), 0);
    EXPECT_EQ(ZrPathCropDB(v.table, INT32_MAX, INT32_MAX), 0);
    for (const int32_t side : {5, 0}) {
        FaultSet(ALLOC_BUF, 1);
        EXPECT_EQ(ZrPathCropDB(v.table, side, side), 0);
        FaultSet(ALLOC_BUF, 0);
    }
    EXPECT_EQ(v.table->lpDB, old);
    EXPECT_EQ(v.table->dbWidth, 10);
    EXPECT_EQ(v.table->lpDB[3], 7);
}

TEST(Overlay, CropOfATableWithoutABufferMakesOne)
{
    TESTVIEW v(10, 8);
    ZrPathTblDeletelpDB(v.table);
    ASSERT_EQ(ZrPathCropDB(v.table, 4, 4), 1);
    for (int i = 0; i < 16; i++) EXPECT_EQ(v.table->lpDB[i], 0);
    EXPECT_EQ(ZrPathCropDB(v.table, 0, -3), 1);
    EXPECT_EQ(v.table->dbHeight, -3);
}

TEST(Overlay, CropOfABufferSmallerThanItsSizesStaysInTheBlock)
{
    TESTVIEW v(10, 8);
    v.table->dbWidth = 500;
    v.table->dbHeight = 500;
    EXPECT_EQ(ZrPathCropDB(v.table, 400, 400), 1);
}

TEST(Overlay, ScrollMovesTheViewAndRedraws)
{
    TESTVIEW v(40, 40);
    PATHREC *a = MakeBox(5, 5, 15, 15);
    v.Add({a});
    RECT dirty;
    ZrPathDraw(v.view, a, &dirty);
    EXPECT_EQ(ZrPathScrollDB(v.view, a, 3, -4), 1);
    EXPECT_EQ(v.view->scrollX, 3);
    EXPECT_EQ(v.view->scrollY, -4);
    PLAINPLANE plain = PlainPlane(*v.view);
    PlainOutline(a, *v.view, 0, &plain);
    EXPECT_EQ(v.Plane(), plain.bytes);
    EXPECT_EQ(ZrPathScrollDB(v.view, nullptr, 1, 1), 1);
    EXPECT_EQ(v.view->scrollX, 4);
    EXPECT_EQ(ZrPathScrollDB(v.view, nullptr, 0, -5), 1);
    EXPECT_EQ(v.view->scrollY, -8) << "either offset alone counts";
    EXPECT_EQ(v.Plane(), plain.bytes) << "nothing to redraw";
}

TEST(Overlay, ScrollByNothingOrWithoutAViewIsOne)
{
    TESTVIEW v(40, 40);
    PATHREC *a = MakeBox(5, 5, 15, 15);
    v.Add({a});
    EXPECT_EQ(ZrPathScrollDB(v.view, a, 0, 0), 1);
    EXPECT_EQ(v.Plane(), std::vector<uint8_t>(1600)) << "not even redrawn";
    EXPECT_EQ(ZrPathScrollDB(nullptr, a, 3, 3), 1);
    v.view->scrollX = INT32_MAX;
    EXPECT_EQ(ZrPathScrollDB(v.view, a, 1, 0), 1);
    EXPECT_EQ(v.view->scrollX, INT32_MIN);
}
