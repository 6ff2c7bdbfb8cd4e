/* bounds.cpp - rough pixel boxes of control polygons, the one rectangle that redraws, masks and moves share.
 *
 * Curves are not evaluated: a Bezier segment lies in the hull of its control points, so the box is safe and may be
 * larger than the curve. The margin of 5 and 6 pixels comes after the zoom.
 */
#include "store/store.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

void Extend(RECT *rect, int32_t x, int32_t y)
{
    rect->left = std::min<int32_t>(rect->left, x);
    rect->right = std::max<int32_t>(rect->right, x);
    rect->top = std::min<int32_t>(rect->top, y);
    rect->bottom = std::max<int32_t>(rect->bottom, y);
}

/* The rotated frame of an ellipse shape in nodes 0 to 2. */
void ExtendEllipse(const PATHREC *path, RECT *rect)
{
    const POINTDB a = PlaceNode(placeImage, &path->nodes[0]);
    const POINTDB b = PlaceNode(placeImage, &path->nodes[1]);
    const double angle = path->nodeCount > 2 ? FixToDouble(path->nodes[2].x) : 0.0;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double cx = (a.x + b.x) / 2;
    const double cy = (a.y + b.y) / 2;
    const POINTDB corners[4] = {{a.x, a.y}, {b.x, a.y}, {b.x, b.y}, {a.x, b.y}};
    for (const POINTDB &p : corners)
        Extend(rect, TruncInt((p.x - cx) * c + (p.y - cy) * s + cx), TruncInt((p.y - cy) * c + (cx - p.x) * s + cy));
}

void PathBoundsOfRecord(const PATHREC *path, RECT *rect)
{
    const uint32_t kind = path->nodeCount > 1 ? NodeKind(&path->nodes[1]) : 0;
    if (kind == PATHNODE_ELLIPSE) {
        ExtendEllipse(path, rect);
        return;
    }
    if (kind == PATHNODE_POLYGON) return; /* a polygon shape is not bounded, deliberately */
    for (uint32_t i = 0; i < path->nodeCount; i++)
        Extend(rect, FixIntPart(path->nodes[i].x), FixIntPart(path->nodes[i].y));
}

int PathBoundsByChain(const PATHREC *path, FIXED zoom, RECT *rect, CHAINLINK next)
{
    if (!path || !rect) return 0;
    RECT box = {0, 0, 0, 0};
    if (path->nodeCount > 0) {
        box.left = box.right = FixIntPart(path->nodes[0].x);
        box.top = box.bottom = FixIntPart(path->nodes[0].y);
    }
    for (const PATHREC *record = path; record; record = record->*next) PathBoundsOfRecord(record, &box);

    const double scale = FixToDouble(zoom);
    if (scale != 1.0) {
        box.left = TruncInt(box.left * scale);
        box.right = TruncInt(box.right * scale);
        box.top = TruncInt(box.top * scale);
        box.bottom = TruncInt(box.bottom * scale);
    }
    box.left = WrapSub(box.left, 5);
    box.top = WrapSub(box.top, 5);
    box.right = WrapAdd(box.right, 6);
    box.bottom = WrapAdd(box.bottom, 6);
    *rect = box;
    return 1;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathGetMiniMaxRect(const PATHREC *path, ZRFIXED zoom, struct tagRECT *rect)
{
    return PathBoundsByChain(path, zoom, rect, joinChain.next);
}

ZRPATHAPI int32_t ZrPathGetSelectedRect(const PATHREC *path, ZRFIXED zoom, struct tagRECT *rect)
{
    return PathBoundsByChain(path, zoom, rect, selectedChain.next);
}

ZRPATHAPI int32_t ZrPathGetAllMiniMaxRect(const PATHREC *path, ZRFIXED zoom, struct tagRECT *rect)
{
    return PathBoundsByChain(path, zoom, rect, tableChain.next);
}

ZRPATHAPI int32_t ZrPathGetRealRect(const PATHREC *path, ZRFIXED zoom, struct tagRECT *rect)
{
    if (!ZrPathGetAllMiniMaxRect(path, zoom, rect)) return 0;
    rect->left = WrapAdd(rect->left, 5);
    rect->top = WrapAdd(rect->top, 5);
    rect->right = WrapSub(rect->right, 6);
    rect->bottom = WrapSub(rect->bottom, 6);
    return 1;
}

} // extern "C"

} // namespace zr32
