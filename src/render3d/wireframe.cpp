/* wireframe.cpp - the fast preview of a path in space, and the rectangle that it covers.
 *
 * The path is an extrusion: the front face in the plane, the back face a depth behind it. Each segment with depth is
 * drawn as a ribbon, straight on the caller's device context with its own pen and raster mode.
 *
 * State: the last transform under which the frame lay in front of the eye. A turning gesture stops there instead of
 * turning inside out.
 */
#include "platform/platform.h"
#include "render3d/space.h"
#include "store/nodes.h"

#include <algorithm>

namespace zr32 {

namespace {

POINTFXMAT3D lastGood; /* zeros at first, which pass no test */

/* A front point and the back point behind it, in window pixels. */
struct POST {
    POINT front;
    POINT back;
};

struct WIREFRAME {
    HDC hdc;
    SPACE space;
    const COORDSTRUCT *view;
    double depth;
};

/* 1 when no corner of the frame reaches behind the eye. */
int FrameInFront(const POINTFXMAT3D *transform, double w, double h)
{
    SPACE space;
    SpaceFromTransform(transform, &space);
    const POINT3D corners[4] = {{w, h, 0}, {-w, h, 0}, {w, -h, 0}, {-w, -h, 0}};
    for (POINT3D corner : corners) { /* turned about the origin: the frame has no place of its own */
        RotatePoint3D(&corner, &space.matrix);
        if (!(space.eye.z >= corner.z)) return 0;
    }
    return 1;
}

/* Image coordinates to the window. Half a pixel is added only where image pixels are at least as large as the
 * screen's, deliberately. */
int32_t WireToView(double v, int32_t zoom, int32_t scroll, int32_t origin)
{
    const double zoomed = zoom >= 0 ? (v + 0.5) * zoom : v / -static_cast<double>(zoom);
    return WrapAdd(WrapSub(TruncInt(zoomed), scroll), origin);
}

void Wire3DToView(const POINTDB &point, const COORDSTRUCT *view, POINT *out)
{
    out->x = WireToView(point.x, view->zoom, view->scrollX, view->left);
    out->y = WireToView(point.y, view->zoom, view->scrollY, view->top);
}

void PostAt(const WIREFRAME *wire, const POINTDB &at, POST *post)
{
    Wire3DToView(SpaceProject(&wire->space, at.x, at.y, 0), wire->view, &post->front);
    Wire3DToView(SpaceProject(&wire->space, at.x, at.y, -wire->depth), wire->view, &post->back);
}

void Line(HDC hdc, const POINT &to)
{
    LineTo(hdc, to.x, to.y);
}

void Move(HDC hdc, const POINT &to)
{
    MoveToEx(hdc, to.x, to.y, nullptr);
}

void DrawRecord(const WIREFRAME *wire, const PATHREC *record)
{
    POST from = {};
    SEGWALK walk;
    SEGMENT segment;
    for (SegWalkStart(record, placeImage, &walk); SegWalkNext(&walk, &segment);) {
        switch (segment.kind) {
        case PATHNODE_START:
            PostAt(wire, segment.p[0], &from);
            if (wire->depth != 0) {
                Move(wire->hdc, from.front);
                Line(wire->hdc, from.back);
            }
            break;
        case PATHNODE_LINE: {
            POST to;
            PostAt(wire, segment.p[1], &to);
            Move(wire->hdc, from.front);
            Line(wire->hdc, to.front);
            if (wire->depth != 0) {
                Line(wire->hdc, to.back);
                Line(wire->hdc, from.back);
            }
            from = to;
            break;
        }
        case PATHNODE_CURVE: {
            POST posts[3];
            for (int i = 0; i < 3; i++) PostAt(wire, segment.p[i + 1], &posts[i]);
            const POINT forth[3] = {posts[0].front, posts[1].front, posts[2].front};
            Move(wire->hdc, from.front);
            PolyBezierTo(wire->hdc, forth, 3);
            if (wire->depth != 0) {
                const POINT home[3] = {posts[1].back, posts[0].back, from.back};
                Line(wire->hdc, posts[2].back);
                PolyBezierTo(wire->hdc, home, 3);
            }
            from = posts[2];
            break;
        }
        default: break; /* shapes are not drawn */
        }
    }
}

/* Widens the rectangle by the front and the back of a node. */
void WidenByNode(const SPACE *space, const POINTDB &at, double front, double back, RECT *rect)
{
    for (const double z : {front, back}) {
        const POINTDB p = SpaceProject(space, at.x, at.y, z);
        const int32_t x = TruncInt(p.x);
        const int32_t y = TruncInt(p.y);
        rect->left = std::min<int32_t>(rect->left, x);
        rect->right = std::max<int32_t>(rect->right, x);
        rect->top = std::min<int32_t>(rect->top, y);
        rect->bottom = std::max<int32_t>(rect->bottom, y);
    }
}

} // namespace

extern "C" {

ZRPATHAPI void ZrPath3DWireFrame(ZRHDC hdc, PATHREC *path, int32_t w, int32_t h, const COORDSTRUCT *view,
                                 POINTFXMAT3D *transform, int32_t depth)
{
    if (!path || !transform) return;
    if (!FrameInFront(transform, w, h)) {
        *transform = lastGood;
        if (!FrameInFront(transform, w, h)) return; /* there is nothing left to fall back to */
    }
    lastGood = *transform;
    if (!hdc || !view) return;

    WIREFRAME wire = {hdc, {}, view, static_cast<double>(depth)};
    SpaceFromTransform(transform, &wire.space);
    for (const PATHREC *record = PathChainFirst(path); record; record = record->nextJoin) DrawRecord(&wire, record);
}

ZRPATHAPI void ZrPathGet3DMiniMaxRect(const PATHREC *path, const POINTFXMAT3D *transform, int32_t z, int32_t depth,
                                      struct tagRECT *rect)
{
    if (!path || !transform || !rect) return;
    const PATHREC *head = ChainFirst(tableChain, path);
    if (head->nodeCount == 0) return; /* no place to begin at */
    const double front = z;
    const double back = -static_cast<double>(depth);
    SPACE space;
    SpaceFromTransform(transform, &space);

    const PATHNODE *first = &head->nodes[0];
    const PATHNODE *second = &head->nodes[head->nodeCount > 1 ? 1 : 0];
    const POINTFX seed = PtfxMidpoint(first->x, first->y, second->x, second->y);
    const POINTDB at = SpaceProject(&space, FixToDouble(seed.x), FixToDouble(seed.y), front);
    RECT box;
    box.left = box.right = TruncInt(at.x);
    box.top = box.bottom = TruncInt(at.y);

    for (const PATHREC *record = head; record; record = record->nextJoin) {
        ForEachPoint(
            record, [&](const PATHNODE *node) { WidenByNode(&space, PlaceNode(placeImage, node), front, back, &box); });
    }
    box.left = WrapSub(box.left, 5);
    box.top = WrapSub(box.top, 5);
    box.right = WrapAdd(box.right, 6);
    box.bottom = WrapAdd(box.bottom, 6);
    *rect = box;
}

} // extern "C"

} // namespace zr32
