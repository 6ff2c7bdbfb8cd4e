/* paint_test.cpp - the four ways of showing the display buffer, against plain loops over bitmap coordinates. */
#include "support/randompath.h"
#include "support/views.h"

#include <gtest/gtest.h>

using namespace zr32test;

namespace {

using PAINT = int32_t (*)(int32_t, int32_t, int32_t, int32_t, const PATHTBL *, uint8_t *);

struct FORM {
    const char *name;
    PAINT paint;
    int pixelSize;
    bool padded; /* inclusive corners, bottom-up, rows padded to 4 bytes */
};

const FORM forms[] = {
    {"Paint", ZrPathPaint, 3, true},
    {"Paint1", ZrPathPaint1, 1, true},
    {"PaintMem", ZrPathPaintMem, 3, false},
    {"PaintMem1", ZrPathPaintMem1, 1, false},
};

int RowBytes(const FORM &form, int left, int right)
{
    return form.padded ? ((right - left + 1) * form.pixelSize + 3) / 4 * 4 : (right - left) * form.pixelSize;
}

int RowCount(const FORM &form, int top, int bottom)
{
    return bottom - top + (form.padded ? 1 : 0);
}

/* What a bitmap of zeros must hold afterwards. */
std::vector<uint8_t> Wanted(const FORM &form, const TESTVIEW &v, int left, int top, int right, int bottom)
{
    const int stride = RowBytes(form, left, right);
    const int rows = RowCount(form, top, bottom);
    std::vector<uint8_t> bitmap(static_cast<size_t>(std::max(stride * rows, 0)));
    for (int row = 0; row < rows; row++)
        for (int column = 0; (column + 1) * form.pixelSize <= stride; column++) {
            const int x = left + column;
            const int y = form.padded ? bottom - row : top + row;
            if (form.padded ? x > right : x >= right) continue;
            if (x < 0 || y < 0 || x >= v.table->dbWidth || y >= v.table->dbHeight || v.At(x, y) == 0) continue;
            for (int c = 0; c < form.pixelSize; c++)
                bitmap[static_cast<size_t>(row * stride + column * form.pixelSize + c)] = 0xC0;
        }
    return bitmap;
}

} // namespace

TEST(Paint, StridesOfWidthFive)
{
    const int strides[] = {16, 8, 15, 5};
    for (int i = 0; i < 4; i++) {
        TESTVIEW v(10, 10);
        /* The pixel at the left end of the second row tells where that row begins. */
        const FORM &form = forms[i];
        const int right = form.padded ? 6 : 7;
        v.view->displayBuffer[10 * 4 + 2] = 1;
        uint8_t bitmap[100] = {};
        EXPECT_EQ(form.paint(2, form.padded ? 4 : 3, right, form.padded ? 5 : 5, v.table, bitmap), 1);
        int first = 0;
        while (first < 100 && !bitmap[first]) first++;
        EXPECT_EQ(first, strides[i]) << form.name;
    }
}

TEST(Paint, OnePixelHasARowOfFourBytes)
{
    TESTVIEW v(10, 10);
    v.view->displayBuffer[10 * 4 + 3] = 1;
    uint8_t bitmap[5] = {1, 2, 3, 4, 5};
    EXPECT_EQ(ZrPathPaint(3, 4, 3, 4, v.table, bitmap), 1);
    const uint8_t want[5] = {1 ^ 0xC0, 2 ^ 0xC0, 3 ^ 0xC0, 4, 5};
    for (int i = 0; i < 5; i++) EXPECT_EQ(bitmap[i], want[i]) << i;
}

TEST(Paint, LowestRowComesFirstInAPaddedBitmap)
{
    TESTVIEW v(4, 3);
    v.view->displayBuffer[0] = 1;
    uint8_t bitmap[12] = {};
    EXPECT_EQ(ZrPathPaint1(0, 0, 3, 2, v.table, bitmap), 1);
    EXPECT_EQ(bitmap[8], 0xC0);
    EXPECT_EQ(bitmap[0], 0);
}

TEST(Paint, AnyCountInvertsOnce)
{
    for (const FORM &form : forms)
        for (const int count : {1, 2, 3, 128, 255}) {
            TESTVIEW v(1, 1);
            v.view->displayBuffer[0] = static_cast<uint8_t>(count);
            uint8_t bitmap[4] = {0x0F, 0x0F, 0x0F, 0x0F};
            EXPECT_EQ(form.paint(0, 0, form.padded ? 0 : 1, form.padded ? 0 : 1, v.table, bitmap), 1);
            EXPECT_EQ(bitmap[0], 0xCF) << form.name << ' ' << count;
        }
}

TEST(Paint, RandomRectanglesEqualThePlainFormAndTwiceRestores)
{
    for (unsigned seed = 0; seed < 2000; seed++) {
        RANDOM random(seed);
        TESTVIEW v(Pick(random, 1, 20), Pick(random, 1, 20));
        for (int i = 0; i < v.table->dbWidth * v.table->dbHeight; i++)
            v.view->displayBuffer[i] = static_cast<uint8_t>(Pick(random, 0, 3) ? 0 : Pick(random, 1, 255));
        const int left = Pick(random, -10, 20);
        const int top = Pick(random, -10, 20);
        const int right = left + Pick(random, -2, 30);
        const int bottom = top + Pick(random, -2, 30);
        for (const FORM &form : forms) {
            const std::vector<uint8_t> want = Wanted(form, v, left, top, right, bottom);
            std::vector<uint8_t> bitmap(want.size());
            ASSERT_EQ(form.paint(left, top, right, bottom, v.table, bitmap.data()), 1);
            ASSERT_EQ(bitmap, want) << form.name << " seed " << seed;
            ASSERT_EQ(form.paint(left, top, right, bottom, v.table, bitmap.data()), 1);
            ASSERT_EQ(bitmap, std::vector<uint8_t>(want.size())) << form.name << " seed " << seed;
        }
    }
}

TEST(Paint, RectangleOverTheRightSideKeepsTheCallersStride)
{
    TESTVIEW v(10, 2);
    v.view->displayBuffer[9] = 1;
    v.view->displayBuffer[10] = 1;
    uint8_t bitmap[2 * 5] = {};
    EXPECT_EQ(ZrPathPaintMem1(8, 0, 13, 2, v.table, bitmap), 1);
    const uint8_t want[10] = {0, 0xC0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (int i = 0; i < 10; i++) EXPECT_EQ(bitmap[i], want[i]) << i;
}

TEST(Paint, NothingToPaintFromIsZero)
{
    TESTVIEW v(4, 4);
    uint8_t bitmap[64] = {};
    for (const FORM &form : forms) EXPECT_EQ(form.paint(0, 0, 2, 2, nullptr, bitmap), 0) << form.name;
    ZrPathTblDeletelpDB(v.table);
    for (const FORM &form : forms) EXPECT_EQ(form.paint(0, 0, 2, 2, v.table, bitmap), 0) << form.name;
}

TEST(Paint, TopBelowBottomIsOneAndPaintsNothing)
{
    TESTVIEW v(4, 4);
    std::fill(v.view->displayBuffer, v.view->displayBuffer + 16, uint8_t{1});
    uint8_t bitmap[4] = {};
    for (const FORM &form : forms) {
        EXPECT_EQ(form.paint(0, 3, 3, 1, v.table, bitmap), 1) << form.name;
        EXPECT_EQ(form.paint(0, 0, 3, 3, v.table, nullptr), 1) << form.name;
    }
    for (const uint8_t value : bitmap) EXPECT_EQ(value, 0);
}

TEST(Paint, SizesThatTheBufferDoesNotHaveStayInTheBlock)
{
    TESTVIEW v(4, 4);
    std::fill(v.view->displayBuffer, v.view->displayBuffer + 16, uint8_t{1});
    v.table->dbWidth = 300;
    v.table->dbHeight = 300;
    std::vector<uint8_t> bitmap(302 * 302 * 3);
    for (const FORM &form : forms) EXPECT_EQ(form.paint(0, 0, 299, 299, v.table, bitmap.data()), 1) << form.name;
    for (const FORM &form : forms)
        EXPECT_EQ(form.paint(INT32_MAX - 3, INT32_MAX - 3, INT32_MAX, INT32_MAX, v.table, bitmap.data()), 1);
}
