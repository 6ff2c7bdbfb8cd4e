/* pick.cpp - what lies under the pointer, and the selection that a click there makes.
 *
 * A click costs 64 bytes of the display buffer when no outline is near. Otherwise records are tried in drawing order,
 * and nodes in theirs: the first match wins, a segment's start before its end and both before the segment. Geometry is
 * in image coordinates with a tolerance of three view pixels.
 */
#include "edit/polygon.h"
#include "edit/select.h"
#include "geometry/box.h"
#include "geometry/nearest.h"

#include <algorithm>
#include <zr32path/display.h>

namespace zr32 {

namespace {

constexpr double toleranceInView = 3;
constexpr double positionEnd = 65535;

enum PICKRESULT { PICK_NOMODE = -1, PICK_NEW = 1, PICK_SELECTED = 2, PICK_NOTHING = 3 };

enum HITPLACE { HIT_NODE, HIT_SEGMENT, HIT_SHAPE };

struct HIT {
    PATHREC *path;
    HITPLACE place;
    uint32_t node; /* the node hit, or the one at which the segment hit begins */
    uint16_t position;
};

/* ---- geometry: point p, tolerance t ---- */

/* Left and top edges belong to the node's box, right and bottom edges do not. */
int PathNearNode(const POINTDB &node, const POINTDB &p, double t)
{
    return p.x >= node.x - t && p.x < node.x + t && p.y >= node.y - t && p.y < node.y + t;
}

uint16_t PositionOf(double part)
{
    return static_cast<uint16_t>(TruncInt(std::min(part * positionEnd, positionEnd)));
}

/* position may be null. A line without length is hit at its nodes only. */
int PathHitLine(const POINTDB &a, const POINTDB &b, const POINTDB &p, double t, uint16_t *position)
{
    const POINTDB ends[2] = {a, b};
    if (!PointInBox(p, BoxOfPoints(ends, 2), t)) return 0;
    PROJECTION projection;
    Vec2Project(p - a, b - a, &projection);
    if (!(projection.restLength <= t)) return 0;
    if (position) *position = PositionOf(projection.alongLength / Length(b - a));
    return 1;
}

int PathHitCurve(const POINTDB *c, const POINTDB &p, double t, uint16_t *position)
{
    if (!PointInBox(p, BoxOfPoints(c, 4), t)) return 0; /* the curve lies in that box */
    NEARPOINT nearest;
    NearestOnCurve(c, p, &nearest);
    *position = PositionOf(nearest.t);
    return std::sqrt(nearest.dist2) <= t;
}

/* The frame's upright ellipse: its rotation is not used, deliberately. */
int PathHitEllipse(const POINTDB &a, const POINTDB &b, const POINTDB &p, double t)
{
    const POINTDB frame[2] = {a, b};
    const BOXDB box = BoxOfPoints(frame, 2);
    if (!PointInBox(p, box, t)) return 0;
    const double w = (box.right - box.left) / 2;
    const double h = (box.bottom - box.top) / 2;
    const POINTDB fromCentre = p - (a + b) * 0.5;
    t = std::min({t, w, h});
    return !(EllipseSide(fromCentre, w - t, h - t) < 0) && !(EllipseSide(fromCentre, w + t, h + t) > 0);
}

int PathHitBox(const POINTDB &a, const POINTDB &b, const POINTDB &p, double t)
{
    const POINTDB corners[5] = {a, {b.x, a.y}, b, {a.x, b.y}, a};
    for (int side = 0; side < 4; side++)
        if (PathHitLine(corners[side], corners[side + 1], p, t, nullptr)) return 1;
    return 0;
}

int PathHitPolygon(const SEGMENT *segment, const POINTDB &p, double t)
{
    POLYGON polygon;
    if (!PolygonOf(segment, &polygon)) return 0;
    POINTDB from = PolygonCorner(&polygon, 0);
    for (uint32_t k = 1; k <= polygon.count; k++) {
        const POINTDB to = PolygonCorner(&polygon, k);
        if (PathHitLine(from, to, p, t, nullptr)) return 1;
        from = to;
    }
    return 0;
}

/* ---- records ---- */

int SegmentHit(SEGMENT *segment, const POINTDB &p, double t, HIT *hit)
{
    /* Everything but a start begins at the node before it; a record that lacks one there has nothing to hit. */
    if (segment->kind == PATHNODE_START || segment->index == 0) return 0;
    const POINTDB begin = PlaceNode(placeImage, segment->node - 1);
    hit->node = segment->index - 1;
    hit->position = 0;
    hit->place = HIT_SHAPE;
    const POINTDB corner = PlaceNode(placeImage, segment->node);
    switch (segment->kind) {
    case PATHNODE_ELLIPSE: return PathHitEllipse(begin, corner, p, t);
    case PATHNODE_RECTANGLE: return PathHitBox(begin, corner, p, t);
    case PATHNODE_POLYGON: return PathHitPolygon(segment, p, t);
    default: break;
    }
    hit->place = HIT_NODE;
    if (PathNearNode(begin, p, t)) return 1;
    const uint32_t end = segment->next - 1;
    if (PathNearNode(segment->kind == PATHNODE_LINE ? segment->p[1] : segment->p[3], p, t)) {
        hit->node = end;
        return 1;
    }
    hit->place = HIT_SEGMENT;
    segment->p[0] = begin;
    return segment->kind == PATHNODE_LINE ? PathHitLine(segment->p[0], segment->p[1], p, t, &hit->position)
                                          : PathHitCurve(segment->p, p, t, &hit->position);
}

int RecordHit(PATHREC *path, const POINTDB &p, double t, HIT *hit)
{
    SEGWALK walk;
    SEGMENT segment;
    for (SegWalkStart(path, placeImage, &walk); SegWalkNext(&walk, &segment);) {
        if (!SegmentHit(&segment, p, t, hit)) continue;
        hit->path = path;
        return 1;
    }
    return 0;
}

/* 1 when a byte of the 8 x 8 window about the view's pixel (x, y) is not 0. */
int PathNearOutline(const COORDSTRUCT *view, int32_t x, int32_t y)
{
    if (!view || !view->displayBuffer) return 0;
    const int64_t width = WrapSub(view->right, view->left);
    const int64_t height = WrapSub(view->bottom, view->top);
    const int64_t size = static_cast<int64_t>(BufMemSize(view->displayBuffer));
    const int64_t left = std::max<int64_t>(int64_t{x} - 4, 0);
    const int64_t right = std::min<int64_t>(int64_t{x} + 4, width);
    const int64_t bottom = std::min<int64_t>(int64_t{y} + 4, height);
    for (int64_t row = std::max<int64_t>(int64_t{y} - 4, 0); row < bottom; row++)
        for (int64_t index = row * width + left; index < std::min(row * width + right, size); index++)
            if (view->displayBuffer[index] != 0) return 1;
    return 0;
}

/* ---- what a hit does ---- */

uint32_t PlainKind(const PATHNODE *node)
{
    return node->type & 0xFEu;
}

/* Puts the selected bit of the anchor h where the display looks for it: on the anchor's own node or, between two
 * curves, on the first node of the curve that ends there. Node 0 counts as the record's last anchor, which it is the
 * same point as in a closed record. */
void MarkAnchor(PATHREC *path, uint32_t h)
{
    const uint32_t kind = PlainKind(&path->nodes[h]);
    if (kind != PATHNODE_START && kind != PATHNODE_LINE && kind != PATHNODE_CURVE) return;
    const uint32_t end = h == 0 ? path->nodeCount - 1 : h;
    const uint32_t next = h + 1;
    const int betweenCurves = end >= 2 && PlainKind(&path->nodes[end]) == PATHNODE_CURVE && next < path->nodeCount &&
                              PlainKind(&path->nodes[next]) == PATHNODE_CURVE;
    path->nodes[betweenCurves ? end - 2 : end].type |= PATHNODE_SELECTED;
}

PICKRESULT ApplyHit(const HIT *hit, int32_t modifiers, ZRHDC hdc, const COORDSTRUCT *view)
{
    PATHREC *path = hit->path;
    if (modifiers == ZRPICK_QUERY) return PathIsSelected(path) ? PICK_SELECTED : PICK_NEW;
    if (PathIsSelected(path)) {
        if (path->prevSel || path->nextSel) return PICK_SELECTED;
        ZrPathDeSelectAll(hdc, path, view, 1);
        path->flags = PATHREC_NODEEDIT;
        if (hit->place == HIT_NODE) MarkAnchor(path, hit->node);
        ZrPathDrawNodes(hdc, path, view);
        return PICK_SELECTED;
    }
    if (modifiers & ZRPICK_REPLACE) {
        ZrPathDeSelectAll(hdc, path, view, 1);
        PathSelectJoined(hdc, path, view);
    } else {
        PathSelectJoinedFromHead(hdc, path, view);
    }
    return PICK_NEW;
}

PICKRESULT PathHitTest(PATHREC *head, const POINTDB &p, int32_t modifiers, ZRHDC hdc, const COORDSTRUCT *view, HIT *hit)
{
    hit->path = nullptr;
    if (!view) return PICK_NOTHING;
    const double zoom = view->zoom;
    const double t = zoom >= 0 ? toleranceInView / zoom : toleranceInView * -zoom;
    for (PATHREC *path = head; path; path = path->nextPath)
        if (RecordHit(path, p, t, hit)) return ApplyHit(hit, modifiers, hdc, view);
    return PICK_NOTHING;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathPtOn(int32_t x, int32_t y, int32_t modifiers, ZRHDC hdc, const COORDSTRUCT *view,
                             PATHTBL *table, PATHREC **path, uint32_t *node, uint16_t *position)
{
    PATHREC *none = nullptr;
    if (!path) path = &none;
    PATHREC *head = PathChainFirst(*path);
    PICKRESULT result = PICK_NOMODE;
    const int replacing = (modifiers & ZRPICK_REPLACE) != 0;
    const int query = modifiers == ZRPICK_QUERY;
    if (replacing || query || modifiers & ZRPICK_ADD) {
        /* An added click does without the filter, so that it can reach what is hidden from the display. */
        const int nearby = !(replacing || query) || PathNearOutline(view, x, y);
        HIT hit = {nullptr, HIT_SHAPE, 0, 0};
        result = nearby ? PathHitTest(head, ZrPathPtWndToImage(x, y, view), modifiers, hdc, view, &hit) : PICK_NOTHING;
        *path = hit.path;
        if (hit.path && hit.place != HIT_SHAPE) {
            if (node) *node = hit.node;
            if (position) *position = hit.position;
        }
        if (query) return result;
        if (result == PICK_NOTHING && replacing) ZrPathDeSelectAll(hdc, head, view, 1);
    }
    PathRebuildSelected(head);
    ZrPathAssignSelectedPath(table, *path);
    return result;
}

} // extern "C"

} // namespace zr32
