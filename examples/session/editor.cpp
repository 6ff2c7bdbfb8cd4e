/* editor.cpp - the window of a small editor, see editor.h. */
#include "editor.h"

#include "common/window.h"

#include <algorithm>

namespace session {

namespace {

size_t RowBytes(int32_t width)
{
    return (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
}

/* The way between top-down rows of red first and the window's layout; it is its own inverse. */
template <typename COPY> void ForEachByte(int32_t width, int32_t height, COPY copy)
{
    for (int32_t y = 0; y < height; y++)
        for (int32_t x = 0; x < width; x++)
            for (size_t c = 0; c < 3; c++)
                copy((static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3 + c,
                     static_cast<size_t>(height - 1 - y) * RowBytes(width) + static_cast<size_t>(x) * 3 + 2 - c);
}

std::vector<uint8_t> WindowBytes(const EDITOR *editor)
{
    return {editor->pixels, editor->pixels + editor->image.size()};
}

std::vector<uint8_t> BufferBytes(const EDITOR *editor, const COORDSTRUCT *view)
{
    const size_t size = static_cast<size_t>(editor->width) * static_cast<size_t>(editor->height);
    return {view->displayBuffer, view->displayBuffer + size};
}

/* The display buffer that the records as they stand give. */
std::vector<uint8_t> FreshBuffer(const EDITOR *editor)
{
    PATHTBL *table = nullptr;
    COORDSTRUCT *view = nullptr;
    struct tagRECT dirty;
    ZrPathNew(&table);
    ZrPathCoordStruct(0, 0, editor->width, editor->height, 0, 0, 1, table, &view);
    ZrPathDraw(view, EditorActive(editor), &dirty);
    const std::vector<uint8_t> bytes = BufferBytes(editor, view);
    ZrPathDeleteCoordStruct(view);
    ZrPathTblDelete(table);
    return bytes;
}

} // namespace

int EditorOpen(int32_t width, int32_t height, const uint8_t *image, EDITOR *editor)
{
    *editor = {};
    editor->width = width;
    editor->height = height;
    editor->image.assign(RowBytes(width) * static_cast<size_t>(height), 128);
    if (image) ForEachByte(width, height, [&](size_t rgb, size_t own) { editor->image[own] = image[rgb]; });

    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void *bits = nullptr;
    editor->dc = CreateCompatibleDC(nullptr);
    editor->bitmap = CreateDIBSection(editor->dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    editor->pixels = static_cast<uint8_t *>(bits);
    editor->oldBitmap = SelectObject(editor->dc, editor->bitmap);
    editor->window = MakeWindow();
    ReleaseCapture();

    ZrPathCoordStruct(0, 0, width, height, 0, 0, 1, nullptr, &editor->view); /* starts the library */
    ZrPathNew(&editor->table);
    ZrPathCoordStruct(0, 0, width, height, 0, 0, 1, editor->table, &editor->view);
    if (!editor->pixels || !editor->table || !editor->view) {
        EditorClose(editor);
        return 0;
    }
    EditorRepaint(editor);
    return 1;
}

void EditorClose(EDITOR *editor)
{
    ReleaseCapture();
    ZrPathTblDelete(editor->table);
    ZrPathDeleteCoordStruct(editor->view);
    SelectObject(editor->dc, editor->oldBitmap);
    DeleteObject(editor->bitmap);
    DeleteDC(editor->dc);
    FreeWindow(editor->window);
}

PATHREC *EditorActive(const EDITOR *editor)
{
    PATHREC *path = nullptr;
    ZrPathFind(editor->table, nullptr, &path, nullptr, nullptr);
    return path;
}

PATHREC *EditorSelected(const EDITOR *editor)
{
    PATHREC *path = nullptr;
    ZrPathFind(editor->table, nullptr, nullptr, &path, nullptr);
    return path;
}

void EditorToggleOutlines(EDITOR *editor)
{
    ZrPathPaint(0, 0, editor->width - 1, editor->height - 1, editor->table, editor->pixels);
}

void EditorToggleMarks(EDITOR *editor)
{
    for (PATHREC *path = EditorSelected(editor); path; path = path->nextSel)
        ZrPathDrawNodes(editor->dc, path, editor->view);
}

void EditorRepaint(EDITOR *editor)
{
    std::copy(editor->image.begin(), editor->image.end(), editor->pixels);
    EditorToggleOutlines(editor);
    EditorToggleMarks(editor);
}

std::vector<uint8_t> EditorPicture(const EDITOR *editor)
{
    std::vector<uint8_t> rgb(static_cast<size_t>(editor->width) * static_cast<size_t>(editor->height) * 3);
    ForEachByte(editor->width, editor->height, [&](size_t to, size_t own) { rgb[to] = editor->pixels[own]; });
    return rgb;
}

std::string EditorFault(EDITOR *editor)
{
    const std::vector<uint8_t> buffer = BufferBytes(editor, editor->view);
    if (EditorActive(editor) && buffer != FreshBuffer(editor)) return "the buffer is not a fresh drawing";

    const std::vector<uint8_t> window = WindowBytes(editor);
    EditorToggleMarks(editor);
    EditorToggleMarks(editor);
    if (WindowBytes(editor) != window) return "marks drawn twice leave something";

    if (PATHREC *path = EditorSelected(editor)) {
        struct tagRECT dirty;
        ZrPathHideSelected(editor->view, path, &dirty);
        if (path->flags == PATHREC_NODEEDIT)
            ZrPathDrawSelectedSegments(editor->view, path, &dirty);
        else
            ZrPathDrawSelected(editor->view, path, &dirty);
        if (BufferBytes(editor, editor->view) != buffer) return "hide and draw do not cancel";
    }

    EditorRepaint(editor);
    if (WindowBytes(editor) != window) return "the window is not image, outlines and marks";
    return "";
}

} // namespace session
