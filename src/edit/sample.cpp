/* sample.cpp - a sample table for trying the library without an editor: six groups that show runs, warped text,
 * rotated ellipses, shapes and a symbol font, with the second group current.
 *
 * The text groups take their glyphs from the foreground window's device context; without one they are empty.
 */
#include "store/store.h"
#include <zr32path/display.h>
#include <zr32path/edit.h>

#include <cstring>

namespace zr32 {

namespace {

/* Coordinates in whole pixels but for a rotation. */
struct SAMPLENODE {
    uint16_t type;
    double x;
    double y;
};

/* Null without memory. */
template <size_t COUNT> PATHREC *RecordOf(const SAMPLENODE (&nodes)[COUNT])
{
    PATHREC *path = RecordAlloc(COUNT);
    if (!path) return nullptr;
    path->nodeCount = COUNT;
    for (size_t i = 0; i < COUNT; i++)
        path->nodes[i] = {nodes[i].type, DoubleToFix(nodes[i].x), DoubleToFix(nodes[i].y)};
    return path;
}

/* Two records as one shape; null when one could not be had. */
PATHREC *Joined(PATHREC *a, PATHREC *b)
{
    PATHREC *pair[] = {a, b};
    if (a && b) return ZrPathChainZrPath(2, pair);
    RecordFree(a);
    RecordFree(b);
    return nullptr;
}

/* A broken line, and a curve through the same points. */
PATHREC *SingleBezier()
{
    return RecordOf({{PATHNODE_START, 50, 0},
                     {PATHNODE_LINE, 150, 50},
                     {PATHNODE_LINE, 0, 50},
                     {PATHNODE_LINE, 100, 0},
                     {PATHNODE_START, 50, 0},
                     {PATHNODE_CURVE, 150, 50},
                     {PATHNODE_CURVE, 0, 50},
                     {PATHNODE_CURVE, 100, 0}});
}

PATHREC *TwoEllipses()
{
    constexpr double sixthTurn = 0.5235987;
    constexpr uint16_t closed = PATHNODE_ELLIPSE | PATHNODE_CLOSING;
    return Joined(RecordOf({{PATHNODE_START, 200, 200}, {PATHNODE_ELLIPSE, 700, 600}, {0, -sixthTurn, 0}}),
                  RecordOf({{PATHNODE_START, 200, 200}, {closed, 700, 600}, {0, sixthTurn, 0}}));
}

PATHREC *Star()
{
    return RecordOf({{PATHNODE_START, 100, 100}, {PATHNODE_RECTANGLE, 5, 60}, {PATHNODE_RECTANGLE, 80, 0}});
}

PATHREC *Rectangles()
{
    return Joined(RecordOf({{PATHNODE_START, 10, 10}, {PATHNODE_RECTANGLE, 150, 130}}),
                  RecordOf({{PATHNODE_START, 30, 30}, {PATHNODE_RECTANGLE, 110, 90}}));
}

/* The outlines of a text in a font 100 high; null without a foreground window, the font or memory. The text is
 * changed in place. */
PATHREC *TextOutlines(char *text, const char *family, DWORD charSet)
{
    const HWND window = GetForegroundWindow();
    const HDC hdc = GetDC(window);
    const HFONT font = CreateFontA(100, 0, 0, 0, FW_NORMAL, 0, 0, 0, charSet, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                   DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, family);
    const HGDIOBJ oldFont = SelectObject(hdc, font);
    PATHREC *path = nullptr;
    TEXTPARAM param = {};
    param.output = 1021;
    RECT place;
    ZrPathCreateText(hdc, text, &param, &path, &place);
    SelectObject(hdc, oldFont);
    DeleteObject(font);
    ReleaseDC(window, hdc);
    return path;
}

constexpr POINTFX Pixels(int16_t x, int16_t y)
{
    return {x * fixedOne, y * fixedOne};
}

PATHREC *Sandpiper()
{
    char text[] = "SANDPIPER";
    constexpr POINTFX frame[] = {Pixels(0, 150), Pixels(100, 0),   Pixels(200, 0),   Pixels(300, 150),
                                 Pixels(0, 200), Pixels(100, 350), Pixels(200, 350), Pixels(300, 200)};
    PATHREC *path = TextOutlines(text, "Times New Roman", ANSI_CHARSET);
    ZrPathBiCubic(path, frame);
    ZrPathOffset(path, 0, 0);
    return path;
}

PATHREC *FontAbc()
{
    char text[] = "efgh";
    PATHREC *path = TextOutlines(text, "Monotype Sorts", SYMBOL_CHARSET);
    ZrPathOffset(path, 0, 0);
    return path;
}

constexpr struct {
    const char *name;
    PATHREC *(*make)();
} sampleGroups[] = {
    {"Single Bezier", SingleBezier}, {"Sandpiper", Sandpiper}, {"Two Ellipse", TwoEllipses}, {"Star", Star},
    {"Rectangles", Rectangles},      {"FontABC", FontAbc},
};
constexpr uint32_t sampleCount = sizeof sampleGroups / sizeof *sampleGroups;
constexpr uint32_t sampleCurrent = 1;

} // namespace

extern "C" {

ZRPATHAPI PATHTBL **AddPathTest(PATHTBL **table, const COORDSTRUCT *view, struct tagRECT *dirty)
{
    if (!table || !ZrPathInit()) return table;
    PATHTBL *made = static_cast<PATHTBL *>(PathHeapAlloc(PathHeap(), heapZero, TableBlockSize(sampleCount)));
    *table = made;
    if (!made) return table;
    made->currentGroup = sampleCurrent;
    made->version = 0x10000;
    made->groupCount = sampleCount;
    for (uint32_t i = 0; i < sampleCount; i++) {
        PATHGROUP *group = &made->groups[i];
        group->index = i;
        memcpy(group->name, sampleGroups[i].name, strlen(sampleGroups[i].name));
        group->activePath = sampleGroups[i].make();
    }
    if (!view) return table;
    made->lpDB = view->displayBuffer; /* the table takes it over */
    TableNoteView(made, view);
    RECT drawn = {0, 0, 0, 0};
    ZrPathDraw(view, made->groups[sampleCurrent].activePath, &drawn);
    if (dirty && !IsRectEmpty(&drawn)) *dirty = drawn;
    return table;
}

} // extern "C"

} // namespace zr32
