/* marks.cpp - node marks and control handles, drawn straight on the caller's device context.
 *
 * In come a record, its view and a device context; out go squares and dotted lines by XOR, so that the same call on
 * the same state takes them off again. Which anchor is marked is told by where the selected bit stands: on the anchor's
 * own node or, for a smooth join of two curves, on the first node of the curve that ends there.
 */
#include "display/display.h"

namespace zr32 {

namespace {

constexpr COLORREF squareColor = 0xC0C0C0;
constexpr COLORREF handleColor = 0x0000C0;
constexpr int markReach = 2;

struct MARKS {
    HDC hdc;
    HPEN squarePen;
    RECT seen; /* the view's rectangle, widened by the reach of a mark */
    PLACEMENT place;
};

POINT WindowPixel(const MARKS *marks, const PATHNODE *node)
{
    const POINTDB placed = PlaceNode(marks->place, node);
    return {TruncInt(placed.x), TruncInt(placed.y)};
}

void DrawSquare(const MARKS *marks, const POINT &at)
{
    Rectangle(marks->hdc, WrapSub(at.x, markReach), WrapSub(at.y, markReach), WrapAdd(at.x, markReach),
              WrapAdd(at.y, markReach));
}

/* The square of a node, if that is to be seen. */
void DrawMark(const MARKS *marks, const PATHNODE *node)
{
    const POINT at = WindowPixel(marks, node);
    if (PtInRect(&marks->seen, at)) DrawSquare(marks, at);
}

void SelectBrush(const MARKS *marks, int stock)
{
    SelectObject(marks->hdc, GetStockObject(stock));
}

/* The dotted line between an anchor and its control point; it is not clipped to the view. */
void DrawHandle(const MARKS *marks, const PATHNODE *from, const PATHNODE *to)
{
    const POINT a = WindowPixel(marks, from);
    const POINT b = WindowPixel(marks, to);
    const HPEN pen = CreatePen(PS_DOT, 0, handleColor);
    SelectObject(marks->hdc, pen);
    MoveToEx(marks->hdc, a.x, a.y, nullptr);
    LineTo(marks->hdc, b.x, b.y);
    SelectObject(marks->hdc, marks->squarePen);
    DeleteObject(pen);
}

/* Both handles and the end of a curve, c its first node. hollow: the end is the selected anchor. */
void DrawCurveHandles(const MARKS *marks, const PATHNODE *c, int hollow, int envelope)
{
    DrawMark(marks, c);
    DrawHandle(marks, c, c - 1);
    DrawMark(marks, c + 1);
    if (hollow && !envelope) SelectBrush(marks, NULL_BRUSH);
    /* The end goes by its control point's place, deliberately. */
    if (PtInRect(&marks->seen, WindowPixel(marks, c + 1))) DrawSquare(marks, WindowPixel(marks, c + 2));
    if (hollow) SelectBrush(marks, LTGRAY_BRUSH);
    DrawHandle(marks, c + 1, c + 2);
}

void DrawMarksOf(const MARKS *marks, const PATHREC *path)
{
    const int envelope = path->flags == PATHREC_ENVELOPE;
    int selectedSpan = 0; /* the curve at hand begins at a selected anchor */
    SEGWALK walk;
    SEGMENT segment;
    for (SegWalkStart(path, placeImage, &walk); SegWalkNext(&walk, &segment);) {
        const PATHNODE *node = segment.node;
        const int selected = NodeSelected(node);
        if (segment.kind == PATHNODE_LINE || segment.kind == PATHNODE_START) {
            if (selected) {
                if (!envelope) SelectBrush(marks, NULL_BRUSH);
                DrawMark(marks, node);
                SelectBrush(marks, LTGRAY_BRUSH);
            } else if (!(node->type & PATHNODE_CLOSING)) { /* a closing node coincides with the start */
                DrawMark(marks, node);
                selectedSpan = 0;
            }
        } else if (segment.kind == PATHNODE_CURVE && segment.index > 0) {
            const int fromSelected = NodeSelected(node - 1) || (segment.index == 1 && PathEndSelected(path));
            if (selected || NodeSelected(node + 2) || fromSelected || selectedSpan) {
                if (fromSelected) selectedSpan = 1;
                DrawCurveHandles(marks, node, !selectedSpan, envelope);
                selectedSpan = !selectedSpan;
            } else if (segment.next != path->nodeCount) {
                DrawMark(marks, node + 2);
            }
        }
    }
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathDrawNodes(ZRHDC hdc, const PATHREC *path, const COORDSTRUCT *view)
{
    if (!hdc || !path || !view || !view->displayBuffer) return 1;
    MARKS marks = {hdc,
                   CreatePen(PS_SOLID, 0, squareColor),
                   {view->left, view->top, view->right, view->bottom},
                   PlaceOnWindow(view)};
    InflateRect(&marks.seen, markReach, markReach);
    const HGDIOBJ oldBrush = SelectObject(hdc, GetStockObject(LTGRAY_BRUSH));
    const HGDIOBJ oldPen = SelectObject(hdc, marks.squarePen);
    const int oldRop = SetROP2(hdc, R2_XORPEN);
    DrawMarksOf(&marks, path);
    SelectObject(hdc, oldBrush);
    SelectObject(hdc, oldPen);
    DeleteObject(marks.squarePen);
    SetROP2(hdc, oldRop);
    return 1;
}

ZRPATHAPI int32_t ZrPathTblRepaintNodes(ZRHDC hdc, const PATHTBL *table, const COORDSTRUCT *view, int32_t left,
                                        int32_t top, int32_t right, int32_t bottom)
{
    const PATHGROUP *group = TableCurrentGroup(table);
    if (!group || table->version == 0 || !group->selectedPath) return 0;
    const HRGN region = CreateRectRgn(left, top, right, bottom);
    SelectClipRgn(hdc, region);
    DeleteObject(region);
    for (const PATHREC *path = group->selectedPath; path; path = path->nextSel) ZrPathDrawNodes(hdc, path, view);
    return 1;
}

} // extern "C"

} // namespace zr32
