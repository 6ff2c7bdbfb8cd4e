/* port_gdi_test.cpp - objects and contexts: who holds what, what can be had, and contexts that a host draws for. */
#include "platform/platform.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

HBITMAP Section(int width, int height, int bitCount, void **bits)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<WORD>(bitCount);
    return CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, bits, nullptr, 0);
}

using CALLS = std::vector<std::string>;

void Note(void *user, std::initializer_list<int64_t> values, const char *name)
{
    std::string text = name;
    for (int64_t v : values) text += ' ' + std::to_string(v);
    static_cast<CALLS *>(user)->push_back(text);
}

PORTDCCALLS Recorder(CALLS *calls)
{
    PORTDCCALLS table = {};
    table.user = calls;
    table.moveTo = [](void *user, int x, int y) { Note(user, {x, y}, "move"); };
    table.lineTo = [](void *user, int x, int y) { Note(user, {x, y}, "line"); };
    table.polyBezierTo = [](void *user, const POINT *points, DWORD count) {
        Note(user, {count, points[0].x, points[count - 1].y}, "bezier");
    };
    table.rectangle = [](void *user, int l, int t, int r, int b) { Note(user, {l, t, r, b}, "rectangle"); };
    table.setPen = [](void *user, int style, int width, COLORREF color) { Note(user, {style, width, color}, "pen"); };
    table.setBrush = [](void *user, BOOL null, COLORREF color) { Note(user, {null, color}, "brush"); };
    table.setRop2 = [](void *user, int rop) { Note(user, {rop}, "rop"); };
    table.setClip = [](void *user, const RECT *clip) {
        if (clip)
            Note(user, {clip->left, clip->top, clip->right, clip->bottom}, "clip");
        else
            Note(user, {}, "unclip");
    };
    return table;
}

} // namespace

TEST(PortGdi, SelectGivesWhatWasThere)
{
    const int32_t before = PortObjectCount();
    HDC dc = CreateCompatibleDC(nullptr);
    HPEN pen = CreatePen(PS_SOLID, 0, 0xC0C0C0);
    EXPECT_EQ(SelectObject(dc, pen), GetStockObject(BLACK_PEN));
    EXPECT_EQ(SelectObject(dc, GetStockObject(NULL_BRUSH)), GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(SelectObject(dc, GetStockObject(BLACK_PEN)), static_cast<HGDIOBJ>(pen));
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_EQ(PortObjectCount(), before);
}

TEST(PortGdi, BackgroundModesAndClipsOfNoHeight)
{
    HDC dc = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SelectObject(dc, nullptr), nullptr);
    EXPECT_EQ(SetBkMode(nullptr, OPAQUE), 0);
    EXPECT_EQ(SetBkMode(dc, 99), 0);
    EXPECT_EQ(SetBkMode(dc, TRANSPARENT), OPAQUE);
    EXPECT_EQ(SetBkMode(dc, OPAQUE), TRANSPARENT);
    for (const RECT &box : {RECT{3, 1, 3, 9}, RECT{1, 3, 9, 3}, RECT{1, 1, 9, 9}}) {
        HRGN region = CreateRectRgn(box.left, box.top, box.right, box.bottom);
        EXPECT_EQ(SelectClipRgn(dc, region), box.right - box.left == box.bottom - box.top ? SIMPLEREGION : NULLREGION);
        DeleteObject(region);
    }
    DeleteDC(dc);
}

TEST(PortGdi, SelectedObjectIsNotDeleted)
{
    HDC dc = CreateCompatibleDC(nullptr);
    HPEN pen = CreatePen(PS_SOLID, 0, 0);
    HGDIOBJ old = SelectObject(dc, pen);
    EXPECT_FALSE(DeleteObject(pen));
    SelectObject(dc, old);
    EXPECT_TRUE(DeleteObject(pen));
    DeleteDC(dc);
}

TEST(PortGdi, DeletedContextGivesItsObjectsFree)
{
    HDC dc = CreateCompatibleDC(nullptr);
    HPEN pen = CreatePen(PS_SOLID, 0, 0);
    SelectObject(dc, pen);
    DeleteDC(dc);
    EXPECT_TRUE(DeleteObject(pen));
}

TEST(PortGdi, StockObjectsStay)
{
    EXPECT_TRUE(DeleteObject(GetStockObject(NULL_BRUSH)));
    EXPECT_NE(GetStockObject(NULL_BRUSH), nullptr);
    EXPECT_EQ(GetStockObject(99), nullptr);
    EXPECT_EQ(GetStockObject(-1), nullptr);
    EXPECT_NE(GetStockObject(SYSTEM_FONT), nullptr);
    EXPECT_FALSE(DeleteObject(nullptr));
}

TEST(PortGdi, RegionIsNotSelectedAsAnObject)
{
    HDC dc = CreateCompatibleDC(nullptr);
    HRGN region = CreateRectRgn(0, 0, 4, 4);
    HPEN pen = CreatePen(PS_SOLID, 0, 0);
    EXPECT_EQ(SelectObject(dc, region), nullptr);
    EXPECT_EQ(SelectClipRgn(dc, reinterpret_cast<HRGN>(pen)), ERROR);
    EXPECT_TRUE(DeleteObject(region));
    EXPECT_TRUE(DeleteObject(pen));
    DeleteDC(dc);
}

TEST(PortGdi, SectionsThatCannotBeHad)
{
    const struct {
        const char *name;
        int width, height, bitCount;
    } cases[] = {
        {"no width", 0, 4, 24},
        {"negative width", -4, 4, 24},
        {"no height", 4, 0, 24},
        {"lowest height", 4, INT_MIN, 24},
        {"8 bits", 4, 4, 8},
        {"huge", INT_MAX, INT_MAX, 32},
        {"too many bytes", 30000, 30000, 32},
    };
    const int32_t before = PortObjectCount();
    for (const auto &c : cases) {
        void *bits = &bits;
        EXPECT_EQ(Section(c.width, c.height, c.bitCount, &bits), nullptr) << c.name;
        EXPECT_EQ(bits, nullptr) << c.name;
    }
    EXPECT_EQ(CreateDIBSection(nullptr, nullptr, 0, nullptr, nullptr, 0), nullptr);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = info.bmiHeader.biHeight = 4;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void *bits = nullptr;
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS + 1, &bits, nullptr, 0), nullptr);
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, &info, 0), nullptr) << "a shared section";
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 4), nullptr) << "an offset";
    info.bmiHeader.biPlanes = 2;
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0), nullptr) << "two planes";
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biCompression = BI_RGB + 1;
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0), nullptr) << "compressed";
    EXPECT_EQ(PortObjectCount(), before);
}

TEST(PortGdi, SectionStartsBlack)
{
    void *bits = nullptr;
    HBITMAP bitmap = Section(3, -2, 24, &bits);
    ASSERT_NE(bits, nullptr);
    for (int i = 0; i < 24; i++) EXPECT_EQ(static_cast<BYTE *>(bits)[i], 0);
    EXPECT_TRUE(DeleteObject(bitmap));
}

TEST(PortGdi, HostGetsEveryCall)
{
    CALLS calls;
    const PORTDCCALLS table = Recorder(&calls);
    HDC dc = PortCreateCallbackDC(&table);
    HPEN pen = CreatePen(PS_DOT, 0, 0xC0);
    HGDIOBJ old = SelectObject(dc, pen);
    SelectObject(dc, GetStockObject(NULL_BRUSH));
    EXPECT_EQ(SetROP2(dc, R2_XORPEN), R2_COPYPEN);
    HRGN region = CreateRectRgn(1, 2, 3, 4);
    SelectClipRgn(dc, region);
    SelectClipRgn(dc, nullptr);
    MoveToEx(dc, 5, 6, nullptr);
    LineTo(dc, 7, 8);
    const POINT points[3] = {{1, 1}, {2, 2}, {3, 3}};
    PolyBezierTo(dc, points, 3);
    Rectangle(dc, 9, 8, 7, 6);
    SelectObject(dc, old);
    EXPECT_EQ(calls, (CALLS{"pen 2 0 192", "brush 1 0", "rop 7", "clip 1 2 3 4", "unclip", "move 5 6", "line 7 8",
                            "bezier 3 1 3", "rectangle 9 8 7 6", "pen 0 0 0"}));
    DeleteObject(pen);
    DeleteObject(region);
    DeleteDC(dc);
}

TEST(PortGdi, HostMayLeaveFunctionsOut)
{
    const PORTDCCALLS none = {};
    HDC dc = PortCreateCallbackDC(&none);
    const POINT points[3] = {};
    SelectObject(dc, GetStockObject(WHITE_PEN));
    SelectObject(dc, GetStockObject(NULL_BRUSH));
    SetROP2(dc, R2_XORPEN);
    SelectClipRgn(dc, nullptr);
    EXPECT_TRUE(MoveToEx(dc, 1, 1, nullptr));
    EXPECT_TRUE(LineTo(dc, 2, 2));
    EXPECT_TRUE(PolyBezierTo(dc, points, 3));
    EXPECT_TRUE(Rectangle(dc, 0, 0, 4, 4));
    DeleteDC(dc);
    EXPECT_EQ(PortCreateCallbackDC(nullptr), nullptr);
}
