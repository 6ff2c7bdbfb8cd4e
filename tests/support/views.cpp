/* views.cpp - a table, a view and device contexts for tests, see views.h. */
#include "support/views.h"

namespace zr32test {

TESTVIEW::TESTVIEW(int32_t width, int32_t height, int32_t zoom, int32_t scrollX, int32_t scrollY, int32_t left,
                   int32_t top)
{
    ZrPathInit();
    ZrPathNew(&table);
    ZrPathCoordStruct(left, top, left + width, top + height, scrollX, scrollY, zoom, table, &view);
}

TESTVIEW::~TESTVIEW()
{
    ZrPathDeleteCoordStruct(view);
    ZrPathTblDelete(table);
}

void TESTVIEW::Add(const std::vector<PATHREC *> &paths)
{
    for (PATHREC *path : paths) ZrPathChainPaths(&Group()->activePath, path);
}

PATHGROUP *TESTVIEW::Group() const
{
    return &table->groups[0];
}

uint8_t TESTVIEW::At(int32_t x, int32_t y) const
{
    return view->displayBuffer[y * (view->right - view->left) + x];
}

std::vector<uint8_t> TESTVIEW::Plane() const
{
    const int32_t size = (view->right - view->left) * (view->bottom - view->top);
    return {view->displayBuffer, view->displayBuffer + size};
}

void SelectPaths(const std::vector<PATHREC *> &paths)
{
    PATHREC *last = nullptr;
    for (PATHREC *path : paths) {
        path->flags = PATHREC_SELECTED;
        path->prevSel = last;
        path->nextSel = nullptr;
        if (last) last->nextSel = path;
        last = path;
    }
}

CANVAS::CANVAS(int w, int h) : width(w), height(h)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void *bits = nullptr;
    dc = CreateCompatibleDC(nullptr);
    bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    pixels = static_cast<uint32_t *>(bits);
    old = SelectObject(dc, bitmap);
}

CANVAS::~CANVAS()
{
    SelectObject(dc, old);
    DeleteObject(bitmap);
    DeleteDC(dc);
}

std::vector<uint32_t> CANVAS::Pixels() const
{
    return {pixels, pixels + width * height};
}

} // namespace zr32test
