/* rectclip.cpp - the paths that a dragged rectangle touches or holds.
 *
 * In come a rectangle of the view and the choice between two tests: does the outline pass through it, or does a node
 * lie in it. Out goes the selection, whole join chains at a time. Geometry is in image coordinates; a shape and a
 * rectangle that only touch are not apart.
 */
#include "edit/polygon.h"
#include "edit/select.h"
#include "geometry/box.h"

#include <algorithm>

namespace zr32 {

namespace {

/* Left and top edges are inside, right and bottom edges are not. */
int PointInRect(const POINTDB &p, const BOXDB &rect)
{
    return rect.left <= p.x && p.x < rect.right && rect.top <= p.y && p.y < rect.bottom;
}

int BoxesApart(const BOXDB &a, const BOXDB &b)
{
    return a.right < b.left || a.left > b.right || a.bottom < b.top || a.top > b.bottom;
}

int StrictlyWithin(const BOXDB &inner, const BOXDB &outer)
{
    return inner.left > outer.left && inner.right < outer.right && inner.top > outer.top && inner.bottom < outer.bottom;
}

/* ---- outlines ---- */

/* 1 when all four corners of the rectangle lie strictly on one side of the line through the segment. */
int CornersOneSide(const POINTDB &a, const POINTDB &b, const BOXDB &rect)
{
    const BOXCORNERS corners = CornersOfBox(rect);
    const POINTDB along = b - a;
    int left = 0;
    int right = 0;
    for (int i = 0; i < 4; i++) {
        const double side = along.x * (corners.p[i].y - a.y) - along.y * (corners.p[i].x - a.x);
        left += side < 0;
        right += side > 0;
    }
    return left == 4 || right == 4;
}

int LineCrossesRect(const POINTDB &a, const POINTDB &b, const BOXDB &rect)
{
    if (PointInBox(a, rect, 0) && PointInBox(b, rect, 0)) return 1;
    const POINTDB ends[2] = {a, b};
    return !BoxesApart(BoxOfPoints(ends, 2), rect) && !CornersOneSide(a, b, rect);
}

POINTDB BernsteinPoint(const POINTDB *p, double u)
{
    const double v = 1 - u;
    return p[0] * (v * v * v) + p[1] * (3 * v * v * u) + p[2] * (3 * v * u * u) + p[3] * (u * u * u);
}

int CurveCrossesRect(const POINTDB *p, const BOXDB &rect)
{
    const BOXDB box = BoxOfPoints(p, 4);
    if (StrictlyWithin(box, rect)) return 1;
    if (BoxesApart(box, rect)) return 0;
    /* About one sample every ten pixels of the control polygon. */
    int32_t length = 0;
    for (int leg = 0; leg < 3; leg++) length += TruncInt(Length(p[leg + 1] - p[leg]));
    const int32_t pieces = std::max(length / 10, 10);
    POINTDB from = p[0];
    for (int32_t i = 1; i <= pieces; i++) {
        const POINTDB to = BernsteinPoint(p, static_cast<double>(i) / pieces);
        if (LineCrossesRect(from, to, rect)) return 1;
        from = to;
    }
    return 0;
}

/* 1 for the sides' answer of the upright ellipse with half-widths a and b about (0, 0). */
int CentredEllipseCrossesRect(double a, double b, const BOXDB &rect)
{
    const auto side = [a, b](double x, double y) { return EllipseSide({x, y}, a, b); };
    const int spansX = rect.left <= 0 && 0 <= rect.right;
    const int spansY = rect.top <= 0 && 0 <= rect.bottom;
    if (spansX && spansY)
        return side(rect.left, rect.top) >= 0 || side(rect.right, rect.top) >= 0 ||
               side(rect.right, rect.bottom) >= 0 || side(rect.left, rect.bottom) >= 0;
    if (spansX) return rect.top > 0 ? rect.top < b : -rect.bottom < b;
    if (spansY) return rect.left > 0 ? rect.left < a : -rect.right < a;
    const int toRight = rect.left > 0;
    const int below = rect.top > 0;
    const double nearX = toRight ? rect.left : rect.right;
    const double nearY = below ? rect.top : rect.bottom;
    const double farX = toRight ? rect.right : rect.left;
    const double farY = below ? rect.bottom : rect.top;
    return side(nearX, nearY) < 0 && side(farX, farY) > 0;
}

/* The frame's upright ellipse: its rotation is not used, deliberately. */
int EllipseCrossesRect(const BOXDB &box, const BOXDB &rect)
{
    if (StrictlyWithin(box, rect)) return 1;
    if (BoxesApart(box, rect)) return 0;
    const double a = (box.right - box.left) / 2;
    const double b = (box.bottom - box.top) / 2;
    const double cx = (box.left + box.right) / 2;
    const double cy = (box.top + box.bottom) / 2;
    const BOXCORNERS corners = CornersOfBox(rect);
    int inside = 0;
    for (int i = 0; i < 4; i++)
        inside += PointInBox(corners.p[i], box, 0) && EllipseSide(corners.p[i] - POINTDB{cx, cy}, a, b) < 0;
    if (inside == 4) return 0;
    /* From here on the centre counts in whole pixels, deliberately. */
    const double x = TruncInt(cx);
    const double y = TruncInt(cy);
    return CentredEllipseCrossesRect(a, b, {rect.left - x, rect.top - y, rect.right - x, rect.bottom - y});
}

int BoxCrossesRect(const BOXDB &exact, const BOXDB &rect)
{
    const BOXDB box = {static_cast<double>(TruncInt(exact.left)), static_cast<double>(TruncInt(exact.top)),
                       static_cast<double>(TruncInt(exact.right)), static_cast<double>(TruncInt(exact.bottom))};
    if (StrictlyWithin(box, rect)) return 1;
    if (BoxesApart(box, rect)) return 0;
    const BOXCORNERS corners = CornersOfBox(box);
    for (int side = 0; side < 4; side++)
        if (LineCrossesRect(corners.p[side], corners.p[side + 1], rect)) return 1;
    return 0;
}

int PolygonCrossesRect(const POLYGON *polygon, const BOXDB &rect)
{
    POINTDB from = PolygonCorner(polygon, 0);
    for (uint32_t k = 1; k <= polygon->count; k++) {
        const POINTDB to = PolygonCorner(polygon, k);
        if (LineCrossesRect(from, to, rect)) return 1;
        from = to;
    }
    return 0;
}

/* ---- records ---- */

int AnyPointInRect(const POINTDB *points, int count, const BOXDB &rect)
{
    for (int i = 0; i < count; i++)
        if (PointInRect(points[i], rect)) return 1;
    return 0;
}

int AnyCornerInRect(const POLYGON *polygon, const BOXDB &rect)
{
    for (uint32_t k = 0; k < polygon->count; k++)
        if (PointInRect(PolygonCorner(polygon, k), rect)) return 1;
    return 0;
}

int SegmentCounts(const SEGMENT *segment, const BOXDB &rect, int outline)
{
    if (segment->kind == PATHNODE_START || segment->index == 0) return 0;
    /* A segment begins at the node before it. */
    const POINTDB begin = PlaceNode(placeImage, segment->node - 1);
    const POINTDB end = PlaceNode(placeImage, segment->node);
    const POINTDB frame[2] = {begin, end};
    const BOXDB box = BoxOfPoints(frame, 2);
    switch (segment->kind) {
    case PATHNODE_LINE: return outline ? LineCrossesRect(begin, end, rect) : AnyPointInRect(frame, 2, rect);
    case PATHNODE_CURVE: {
        const POINTDB curve[4] = {begin, segment->p[1], segment->p[2], segment->p[3]};
        const POINTDB ends[2] = {curve[0], curve[3]};
        return outline ? CurveCrossesRect(curve, rect) : AnyPointInRect(ends, 2, rect);
    }
    case PATHNODE_ELLIPSE: {
        const POINTDB centre = {(box.left + box.right) / 2, (box.top + box.bottom) / 2};
        const POINTDB middles[4] = {
            {centre.x, box.top}, {box.right, centre.y}, {centre.x, box.bottom}, {box.left, centre.y}};
        return outline ? EllipseCrossesRect(box, rect) : AnyPointInRect(middles, 4, rect);
    }
    case PATHNODE_RECTANGLE: return outline ? BoxCrossesRect(box, rect) : AnyPointInRect(CornersOfBox(box).p, 4, rect);
    default: {
        POLYGON polygon;
        if (!PolygonOf(segment, &polygon)) return 0;
        return outline ? PolygonCrossesRect(&polygon, rect) : AnyCornerInRect(&polygon, rect);
    }
    }
}

int RecordCounts(const PATHREC *path, const BOXDB &rect, int outline)
{
    SEGWALK walk;
    SEGMENT segment;
    for (SegWalkStart(path, placeImage, &walk); SegWalkNext(&walk, &segment);)
        if (SegmentCounts(&segment, rect, outline)) return 1;
    return 0;
}

/* Selects every shape that counts; 1 when there was one. */
int PathRectTest(PATHREC *path, const BOXDB &rect, int outline, ZRHDC hdc, const COORDSTRUCT *view)
{
    int found = 0;
    for (PATHREC *record = ChainFirst(joinChain, path); record; record = record->nextPath) {
        if (PathIsSelected(record) || !RecordCounts(record, rect, outline)) continue;
        PathSelectJoinedFromHead(hdc, record, view);
        found = 1;
    }
    return found;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathRectClip(int32_t left, int32_t top, int32_t right, int32_t bottom, PATHTBL *table, ZRHDC hdc,
                                 const COORDSTRUCT *view, int32_t flags)
{
    constexpr int32_t none = 2;
    const PATHGROUP *group = TableCurrentGroup(table);
    if (!view || !group || !group->activePath) return none;
    const ZRRECTDB dragged = ZrPathRectWndToImage(left, top, right, bottom, view);
    const POINTDB corners[2] = {dragged.topLeft, dragged.bottomRight};
    PATHREC *head = PathChainFirst(group->activePath);
    if (flags & ZRCLIP_DESELECT) ZrPathDeSelectAll(hdc, head, view, 1);
    int found = 0;
    if (flags & (ZRCLIP_OUTLINE | ZRCLIP_NODES))
        found = PathRectTest(head, BoxOfPoints(corners, 2), (flags & ZRCLIP_OUTLINE) != 0, hdc, view);
    PathRebuildSelected(head);
    ZrPathAssignSelectedPathBlindly(table, head);
    return found ? 1 : none;
}

} // extern "C"

} // namespace zr32
