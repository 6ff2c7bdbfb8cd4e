/* port_draw_test.cpp - lines, Beziers, rectangles: which pixels, which operation, and that a pair of draws restores. */
#include "platform/platform.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr COLORREF white = RGB(255, 255, 255);

struct PICTURE {
    HDC dc = nullptr;
    HBITMAP bitmap = nullptr;
    HGDIOBJ oldBitmap = nullptr;
    BYTE *bits = nullptr;
    int width = 0;
    int height = 0;
    int pixelBytes = 0;
    bool topDown = true;
    size_t pitch = 0;
};

PICTURE PictureMake(int width, int height, int bitCount = 24, bool topDown = true)
{
    PICTURE p;
    p.dc = CreateCompatibleDC(nullptr);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = topDown ? -height : height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<WORD>(bitCount);
    void *bits = nullptr;
    p.bitmap = CreateDIBSection(p.dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    p.bits = static_cast<BYTE *>(bits);
    p.oldBitmap = SelectObject(p.dc, p.bitmap);
    p.width = width;
    p.height = height;
    p.pixelBytes = bitCount / 8;
    p.topDown = topDown;
    p.pitch = (static_cast<size_t>(width * p.pixelBytes) + 3) & ~size_t{3};
    return p;
}

void PictureFree(PICTURE *p)
{
    SelectObject(p->dc, p->oldBitmap);
    EXPECT_TRUE(DeleteObject(p->bitmap));
    EXPECT_TRUE(DeleteDC(p->dc));
}

COLORREF Pixel(const PICTURE &p, int x, int y)
{
    const int row = p.topDown ? y : p.height - 1 - y;
    const BYTE *pixel = p.bits + p.pitch * static_cast<size_t>(row) + static_cast<size_t>(x * p.pixelBytes);
    return RGB(pixel[2], pixel[1], pixel[0]);
}

/* Rows of the picture, '#' for a pixel that is not black. */
std::vector<std::string> Rows(const PICTURE &p)
{
    std::vector<std::string> rows;
    for (int y = 0; y < p.height; y++) {
        std::string row;
        for (int x = 0; x < p.width; x++) row += Pixel(p, x, y) ? '#' : '.';
        rows.push_back(row);
    }
    return rows;
}

void UseWhitePen(const PICTURE &p)
{
    SelectObject(p.dc, GetStockObject(WHITE_PEN));
}

void LineOf(const PICTURE &p, int x0, int y0, int x1, int y1)
{
    MoveToEx(p.dc, x0, y0, nullptr);
    LineTo(p.dc, x1, y1);
}

} // namespace

TEST(PortDraw, LineLeavesOutItsLastPointAndMovesThere)
{
    PICTURE p = PictureMake(6, 3);
    UseWhitePen(p);
    LineOf(p, 1, 1, 4, 1);
    EXPECT_EQ(Rows(p), (std::vector<std::string>{"......", ".###..", "......"}));
    POINT old = {};
    MoveToEx(p.dc, 0, 0, &old);
    EXPECT_EQ(old.x, 4);
    EXPECT_EQ(old.y, 1);
    PictureFree(&p);
}

TEST(PortDraw, LineOfNoLengthDrawsNothing)
{
    PICTURE p = PictureMake(3, 3);
    UseWhitePen(p);
    LineOf(p, 1, 1, 1, 1);
    EXPECT_EQ(Rows(p), (std::vector<std::string>{"...", "...", "..."}));
    PictureFree(&p);
}

TEST(PortDraw, LinePixelsDoNotDependOnTheDirection)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> place(-6, 25);
    for (int i = 0; i < 500; i++) {
        PICTURE a = PictureMake(20, 20);
        PICTURE b = PictureMake(20, 20);
        UseWhitePen(a);
        UseWhitePen(b);
        const int x0 = place(random), y0 = place(random), x1 = place(random), y1 = place(random);
        /* Each with its own last point added. */
        LineOf(a, x0, y0, x1, y1);
        LineOf(a, x1, y1, x1 + 1, y1);
        LineOf(b, x1, y1, x0, y0);
        LineOf(b, x0, y0, x0 + 1, y0);
        ASSERT_EQ(Rows(a), Rows(b)) << x0 << "," << y0 << " " << x1 << "," << y1;
        PictureFree(&a);
        PictureFree(&b);
    }
}

TEST(PortDraw, LinePixelsAreThoseNearestToIt)
{
    PICTURE p = PictureMake(9, 4);
    UseWhitePen(p);
    LineOf(p, 0, 0, 8, 3);
    /* y at x = 0 .. 7: 0, .375, .75, 1.125, 1.5, 1.875, 2.25, 2.625; the half goes to the lower row number. */
    EXPECT_EQ(Rows(p), (std::vector<std::string>{"##.......", "..###....", ".....##..", ".......#."}));
    PictureFree(&p);
}

TEST(PortDraw, RectangleCoversTwoBeforeToOneBehind)
{
    PICTURE p = PictureMake(8, 8);
    UseWhitePen(p);
    SelectObject(p.dc, GetStockObject(NULL_BRUSH));
    Rectangle(p.dc, 4 - 2, 4 - 2, 4 + 2, 4 + 2);
    EXPECT_EQ(Rows(p), (std::vector<std::string>{"........", "........", "..####..", "..#..#..", "..#..#..", "..####..",
                                                 "........", "........"}));
    PictureFree(&p);
}

TEST(PortDraw, RectangleFormsByPenAndBrush)
{
    const struct {
        const char *name;
        int pen, brush, left, top, right, bottom;
        std::vector<std::string> rows;
    } cases[] = {
        {"pen and brush", WHITE_PEN, GRAY_BRUSH, 0, 0, 4, 3, {"####.", "####.", "####."}},
        {"null pen: one less each way", NULL_PEN, WHITE_BRUSH, 0, 0, 4, 3, {"###..", "###..", "....."}},
        {"corners in any order", WHITE_PEN, NULL_BRUSH, 4, 3, 1, 0, {".###.", ".#.#.", ".###."}},
        {"empty", WHITE_PEN, WHITE_BRUSH, 2, 0, 2, 3, {".....", ".....", "....."}},
        {"one column", WHITE_PEN, WHITE_BRUSH, 2, 0, 3, 3, {"..#..", "..#..", "..#.."}},
        {"one row", WHITE_PEN, NULL_BRUSH, 1, 1, 5, 2, {".....", ".####", "....."}},
        {"one pixel", WHITE_PEN, WHITE_BRUSH, 2, 1, 3, 2, {".....", "..#..", "....."}},
        {"two by two", WHITE_PEN, WHITE_BRUSH, 2, 1, 4, 3, {".....", "..##.", "..##."}},
        {"beyond every side", WHITE_PEN, NULL_BRUSH, INT_MIN, -1, INT_MAX, 2, {".....", "#####", "....."}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        for (const int rop : {R2_COPYPEN, R2_XORPEN}) {
            PICTURE p = PictureMake(5, 3);
            SelectObject(p.dc, GetStockObject(c.pen));
            SelectObject(p.dc, GetStockObject(c.brush));
            SetROP2(p.dc, rop);
            Rectangle(p.dc, c.left, c.top, c.right, c.bottom);
            EXPECT_EQ(Rows(p), c.rows) << rop;
            PictureFree(&p);
        }
    }
}

TEST(PortDraw, BorderIsThePensAndTheInsideTheBrushs)
{
    PICTURE p = PictureMake(8, 7);
    SelectObject(p.dc, GetStockObject(WHITE_PEN));
    SelectObject(p.dc, GetStockObject(GRAY_BRUSH));
    Rectangle(p.dc, 1, 2, 6, 6);
    for (int y = 0; y < p.height; y++)
        for (int x = 0; x < p.width; x++) {
            const bool covered = x >= 1 && x < 6 && y >= 2 && y < 6;
            const bool inside = x >= 2 && x < 5 && y >= 3 && y < 5;
            EXPECT_EQ(Pixel(p, x, y), inside ? RGB(128, 128, 128) : covered ? white : 0) << x << ' ' << y;
        }
    PictureFree(&p);
}

TEST(PortDraw, StockBrushesAndPensHaveTheirColors)
{
    const struct {
        int object;
        BYTE level;
    } brushes[] = {{WHITE_BRUSH, 255}, {LTGRAY_BRUSH, 192}, {GRAY_BRUSH, 128},
                   {DKGRAY_BRUSH, 64}, {BLACK_BRUSH, 0},    {NULL_BRUSH, 17}},
      pens[] = {{WHITE_PEN, 255}, {BLACK_PEN, 0}, {NULL_PEN, 17}};
    PICTURE p = PictureMake(4, 4);
    SelectObject(p.dc, GetStockObject(NULL_PEN));
    for (const auto &c : brushes) {
        memset(p.bits, 17, p.pitch * 4);
        SelectObject(p.dc, GetStockObject(c.object));
        Rectangle(p.dc, 0, 0, 4, 4);
        EXPECT_EQ(Pixel(p, 1, 1), RGB(c.level, c.level, c.level)) << c.object;
    }
    for (const auto &c : pens) {
        memset(p.bits, 17, p.pitch * 4);
        SelectObject(p.dc, GetStockObject(c.object));
        MoveToEx(p.dc, 0, 1, nullptr);
        LineTo(p.dc, 4, 1);
        EXPECT_EQ(Pixel(p, 1, 1), RGB(c.level, c.level, c.level)) << c.object;
    }
    PictureFree(&p);
}

TEST(PortDraw, DotsAreThreeLongWithWhiteOrNothingBetween)
{
    PICTURE p = PictureMake(9, 2);
    HPEN pen = CreatePen(PS_DOT, 0, RGB(0, 0, 0xC0));
    HGDIOBJ old = SelectObject(p.dc, pen);
    LineOf(p, 0, 0, 9, 0);
    EXPECT_EQ(SetBkMode(p.dc, TRANSPARENT), OPAQUE);
    LineOf(p, 0, 1, 9, 1);
    EXPECT_EQ(Pixel(p, 2, 0), RGB(0, 0, 0xC0));
    EXPECT_EQ(Pixel(p, 3, 0), white);
    EXPECT_EQ(Pixel(p, 5, 0), white);
    EXPECT_EQ(Pixel(p, 6, 0), RGB(0, 0, 0xC0));
    EXPECT_EQ(Rows(p)[1], "###...###");
    SelectObject(p.dc, old);
    EXPECT_TRUE(DeleteObject(pen));
    PictureFree(&p);
}

TEST(PortDraw, DotsOfAClippedLineStayWhereTheyWere)
{
    PICTURE p = PictureMake(9, 2);
    HPEN pen = CreatePen(PS_DOT, 0, white);
    HGDIOBJ old = SelectObject(p.dc, pen);
    SetBkMode(p.dc, TRANSPARENT);
    LineOf(p, -100, 0, 100, 0); /* phase at column 0: 100 % 6 = 4 */
    EXPECT_EQ(Rows(p)[0], "..###...#");
    SelectObject(p.dc, old);
    DeleteObject(pen);
    PictureFree(&p);
}

TEST(PortDraw, EveryRasterOperationIsItsTruthTable)
{
    for (int rop = R2_BLACK; rop <= R2_WHITE; rop++) {
        PICTURE p = PictureMake(1, 2);
        HPEN pen = CreatePen(PS_SOLID, 0, RGB(0x0C, 0x0C, 0x0C)); /* pen bits 1100, pixel bits 1010 */
        HGDIOBJ old = SelectObject(p.dc, pen);
        memset(p.bits, 0x0A, p.pitch);
        EXPECT_EQ(SetROP2(p.dc, rop), R2_COPYPEN);
        EXPECT_EQ(SetROP2(p.dc, rop), rop);
        LineOf(p, 0, 0, 0, 1);
        EXPECT_EQ(Pixel(p, 0, 0) & 0xFu, static_cast<unsigned>(rop - 1)) << rop;
        SelectObject(p.dc, old);
        DeleteObject(pen);
        PictureFree(&p);
    }
}

TEST(PortDraw, BadOperationIsRefused)
{
    PICTURE p = PictureMake(1, 1);
    EXPECT_EQ(SetROP2(p.dc, 0), 0);
    EXPECT_EQ(SetROP2(p.dc, 17), 0);
    EXPECT_EQ(SetBkMode(p.dc, 3), 0);
    EXPECT_EQ(SetROP2(p.dc, R2_XORPEN), R2_COPYPEN);
    PictureFree(&p);
}

TEST(PortDraw, DrawingTwiceByXorRestoresEveryPixel)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<int> place(-20, 60);
    std::uniform_int_distribution<int> choice(0, 1);
    int changed = 0;
    for (const int bitCount : {24, 32}) {
        for (int i = 0; i < 200; i++) {
            PICTURE p = PictureMake(41, 37, bitCount, choice(random) != 0);
            const size_t size = p.pitch * static_cast<size_t>(p.height);
            for (size_t k = 0; k < size; k++) p.bits[k] = static_cast<BYTE>(random());
            const std::vector<BYTE> before(p.bits, p.bits + size);
            HPEN pen = CreatePen(choice(random) ? PS_SOLID : PS_DOT, 0, 0xC0C0C0);
            HGDIOBJ old = SelectObject(p.dc, pen);
            SelectObject(p.dc, GetStockObject(choice(random) ? NULL_BRUSH : GRAY_BRUSH));
            SetROP2(p.dc, R2_XORPEN);
            POINT points[8];
            for (POINT &point : points) point = {place(random), place(random)};
            for (int pass = 0; pass < 2; pass++) {
                MoveToEx(p.dc, points[0].x, points[0].y, nullptr);
                PolyBezierTo(p.dc, points + 1, 6);
                LineTo(p.dc, points[7].x, points[7].y);
                Rectangle(p.dc, points[0].x, points[0].y, points[1].x, points[1].y);
                if (pass == 0) changed += memcmp(p.bits, before.data(), size) != 0;
            }
            EXPECT_EQ(memcmp(p.bits, before.data(), size), 0);
            SelectObject(p.dc, old);
            DeleteObject(pen);
            PictureFree(&p);
        }
    }
    EXPECT_GT(changed, 350); /* some marks miss the picture */
}

TEST(PortDraw, StraightBezierIsItsLine)
{
    PICTURE p = PictureMake(12, 2);
    UseWhitePen(p);
    const POINT points[3] = {{3, 0}, {6, 0}, {9, 0}};
    SetROP2(p.dc, R2_XORPEN); /* a pixel visited twice would be missing */
    EXPECT_TRUE(PolyBezierTo(p.dc, points, 3));
    EXPECT_EQ(Rows(p)[0], "#########...");
    POINT at = {};
    MoveToEx(p.dc, 0, 0, &at);
    EXPECT_EQ(at.x, 9);
    PictureFree(&p);
}

TEST(PortDraw, BezierPassesThroughItsMiddle)
{
    PICTURE p = PictureMake(60, 60);
    UseWhitePen(p);
    const POINT points[3] = {{0, 40}, {40, 40}, {40, 0}};
    PolyBezierTo(p.dc, points, 3); /* at one half: (20, 30) */
    EXPECT_EQ(Pixel(p, 20, 30), white);
    EXPECT_EQ(Pixel(p, 20, 28), 0u);
    EXPECT_EQ(Pixel(p, 20, 32), 0u);
    int count = 0;
    for (const std::string &row : Rows(p))
        for (char c : row) count += c == '#';
    EXPECT_GT(count, 60); /* connected: at least the longer of both axes twice */
    PictureFree(&p);
}

TEST(PortDraw, BezierStaysWithinAPixelOfTheCurve)
{
    std::mt19937 random(13);
    std::uniform_int_distribution<int> place(0, 199);
    for (int n = 0; n < 30; n++) {
        PICTURE p = PictureMake(200, 200);
        UseWhitePen(p);
        POINT c[4];
        for (POINT &point : c) point = {place(random), place(random)};
        MoveToEx(p.dc, c[0].x, c[0].y, nullptr);
        PolyBezierTo(p.dc, c + 1, 3);
        LineTo(p.dc, c[3].x + 1, c[3].y); /* its own last point */
        std::vector<std::pair<double, double>> curve;
        for (int i = 0; i <= 2000; i++) {
            const double t = i / 2000.0, s = 1 - t;
            const double w[4] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
            double x = 0, y = 0;
            for (int k = 0; k < 4; k++) {
                x += w[k] * c[k].x;
                y += w[k] * c[k].y;
            }
            curve.push_back({x, y});
            bool drawn = false; /* some pixel next to every place of the curve */
            for (int dy = -1; dy <= 1; dy++)
                for (int dx = -1; dx <= 1; dx++) {
                    const int px = static_cast<int>(std::lround(x)) + dx, py = static_cast<int>(std::lround(y)) + dy;
                    if (px >= 0 && py >= 0 && px < 200 && py < 200) drawn = drawn || Pixel(p, px, py) != 0;
                }
            ASSERT_TRUE(drawn) << x << "," << y;
        }
        for (int y = 0; y < 200; y++)
            for (int x = 0; x < 200; x++) {
                if (!Pixel(p, x, y)) continue;
                double nearest = 1e9;
                for (const auto &[cx, cy] : curve) nearest = std::min(nearest, std::hypot(cx - x, cy - y));
                ASSERT_LT(nearest, 1.5) << x << "," << y;
            }
        PictureFree(&p);
    }
}

TEST(PortDraw, BezierTakesWholeTriplesOnly)
{
    PICTURE p = PictureMake(4, 4);
    const POINT points[4] = {};
    EXPECT_FALSE(PolyBezierTo(p.dc, points, 4));
    EXPECT_FALSE(PolyBezierTo(p.dc, points, 0));
    EXPECT_FALSE(PolyBezierTo(p.dc, nullptr, 3));
    PictureFree(&p);
}

TEST(PortDraw, HugeCoordinatesEndAndStayInside)
{
    PICTURE p = PictureMake(16, 16);
    UseWhitePen(p);
    LineOf(p, -(1 << 27), -(1 << 27), 1 << 27, 1 << 27);
    EXPECT_EQ(Pixel(p, 9, 9), white);
    EXPECT_EQ(Pixel(p, 9, 8), 0u);
    LineOf(p, INT_MIN, 3, INT_MAX, 3);
    EXPECT_EQ(Pixel(p, 9, 3), 0u); /* beyond what can be drawn to */
    const POINT points[3] = {{INT_MAX, INT_MIN}, {INT_MIN, INT_MAX}, {INT_MAX, INT_MAX}};
    MoveToEx(p.dc, INT_MIN, INT_MIN, nullptr);
    PolyBezierTo(p.dc, points, 3);
    Rectangle(p.dc, INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    PictureFree(&p);
}

TEST(PortDraw, ClippedLineHasThePixelsOfTheWholeLine)
{
    std::mt19937 random(3);
    std::uniform_int_distribution<int> place(-100, 140);
    for (int i = 0; i < 300; i++) {
        PICTURE whole = PictureMake(40, 40);
        PICTURE part = PictureMake(40, 40);
        UseWhitePen(whole);
        UseWhitePen(part);
        HRGN region = CreateRectRgn(30, 8, 11, 25);
        EXPECT_EQ(SelectClipRgn(part.dc, region), SIMPLEREGION);
        EXPECT_TRUE(DeleteObject(region));
        const int x0 = place(random), y0 = place(random), x1 = place(random), y1 = place(random);
        LineOf(whole, x0, y0, x1, y1);
        LineOf(part, x0, y0, x1, y1);
        for (int y = 0; y < 40; y++)
            for (int x = 0; x < 40; x++) {
                const bool inside = x >= 11 && x < 30 && y >= 8 && y < 25;
                ASSERT_EQ(Pixel(part, x, y), inside ? Pixel(whole, x, y) : 0u);
            }
        PictureFree(&whole);
        PictureFree(&part);
    }
}

TEST(PortDraw, ClipCanBeEmptyAndBeTakenOff)
{
    PICTURE p = PictureMake(4, 1);
    UseWhitePen(p);
    HRGN region = CreateRectRgn(2, 0, 2, 5);
    EXPECT_EQ(SelectClipRgn(p.dc, region), NULLREGION);
    LineOf(p, 0, 0, 4, 0);
    EXPECT_EQ(Rows(p)[0], "....");
    EXPECT_EQ(SelectClipRgn(p.dc, nullptr), SIMPLEREGION);
    LineOf(p, 0, 0, 4, 0);
    EXPECT_EQ(Rows(p)[0], "####");
    DeleteObject(region);
    PictureFree(&p);
}

TEST(PortDraw, BottomUpBitmapHasItsTopRowLast)
{
    PICTURE p = PictureMake(3, 2, 24, false); /* 12 bytes a row */
    UseWhitePen(p);
    LineOf(p, 0, 0, 1, 0);
    EXPECT_EQ(p.bits[0], 0);
    EXPECT_EQ(p.bits[12], 255);
    PictureFree(&p);
}

TEST(PortDraw, ColorsAreBlueFirstAndTheFourthByteStays)
{
    PICTURE p = PictureMake(1, 1, 32);
    p.bits[3] = 0x77;
    HPEN pen = CreatePen(PS_SOLID, 0, RGB(1, 2, 3));
    HGDIOBJ old = SelectObject(p.dc, pen);
    LineOf(p, 0, 0, 1, 0);
    EXPECT_EQ(p.bits[0], 3);
    EXPECT_EQ(p.bits[1], 2);
    EXPECT_EQ(p.bits[2], 1);
    EXPECT_EQ(p.bits[3], 0x77);
    SelectObject(p.dc, old);
    DeleteObject(pen);
    PictureFree(&p);
}

TEST(PortDraw, NullContextDrawsNothing)
{
    const POINT points[3] = {};
    EXPECT_FALSE(MoveToEx(nullptr, 1, 1, nullptr));
    EXPECT_FALSE(LineTo(nullptr, 1, 1));
    EXPECT_FALSE(PolyBezierTo(nullptr, points, 3));
    EXPECT_FALSE(Rectangle(nullptr, 0, 0, 9, 9));
    EXPECT_EQ(SetROP2(nullptr, R2_XORPEN), 0);
    EXPECT_EQ(SetBkMode(nullptr, OPAQUE), 0);
    EXPECT_EQ(SelectClipRgn(nullptr, nullptr), ERROR);
    EXPECT_EQ(SelectObject(nullptr, GetStockObject(NULL_BRUSH)), nullptr);
    EXPECT_FALSE(DeleteDC(nullptr));
}

TEST(PortDraw, ContextWithoutBitmapDrawsNothing)
{
    HDC dc = CreateCompatibleDC(nullptr);
    EXPECT_TRUE(LineTo(dc, 5, 5));
    EXPECT_TRUE(Rectangle(dc, 0, 0, 9, 9));
    EXPECT_TRUE(DeleteDC(dc));
}
