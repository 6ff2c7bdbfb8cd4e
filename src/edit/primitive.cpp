/* primitive.cpp - ready-made closed paths over a dragged rectangle, and scaled copies of a prototype.
 *
 * A primitive is a record of ordinary nodes at its exact size; its primitive word remembers the kind until the first
 * node edit. The formulas run from the side of greater y, so "top" of a frame is cy + h here. A built-in kind is a
 * table of nodes computed from the frame.
 */
#include "edit/select.h"
#include "store/store.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

/* Control distance of a quarter circle, 4/3 (sqrt 2 - 1) to seven digits. */
constexpr double circleControl = 0.5522847;
constexpr double twelfth = 0.08333333333333333;

/* What the drag means in image coordinates: centre and half sizes. */
struct FRAME {
    double cx;
    double cy;
    double w;
    double h;
};

/* Nodes of a shape while it is being computed. */
struct SHAPENODES {
    struct {
        uint16_t type;
        double x;
        double y;
    } nodes[27];
    uint32_t count;
};

void Add(SHAPENODES *shape, uint16_t type, double x, double y)
{
    shape->nodes[shape->count++] = {type, x, y};
}

constexpr uint16_t closingLine = PATHNODE_LINE | PATHNODE_CLOSING;
constexpr uint16_t closingCurve = PATHNODE_CURVE | PATHNODE_CLOSING;

/* One cubic a quadrant, clockwise from (cx, cy + h). */
void Ellipse(const FRAME &f, SHAPENODES *shape)
{
    const double kw = circleControl * f.w;
    const double kh = circleControl * f.h;
    Add(shape, PATHNODE_START, f.cx, f.cy + f.h);
    Add(shape, PATHNODE_CURVE, f.cx + kw, f.cy + f.h);
    Add(shape, PATHNODE_CURVE, f.cx + f.w, f.cy + kh);
    Add(shape, PATHNODE_CURVE, f.cx + f.w, f.cy);
    Add(shape, PATHNODE_CURVE, f.cx + f.w, f.cy - kh);
    Add(shape, PATHNODE_CURVE, f.cx + kw, f.cy - f.h);
    Add(shape, PATHNODE_CURVE, f.cx, f.cy - f.h);
    Add(shape, PATHNODE_CURVE, f.cx - kw, f.cy - f.h);
    Add(shape, PATHNODE_CURVE, f.cx - f.w, f.cy - kh);
    Add(shape, PATHNODE_CURVE, f.cx - f.w, f.cy);
    Add(shape, PATHNODE_CURVE, f.cx - f.w, f.cy + kh);
    Add(shape, PATHNODE_CURVE, f.cx - kw, f.cy + f.h);
    Add(shape, closingCurve, f.cx, f.cy + f.h);
}

void Rectangle(const FRAME &f, SHAPENODES *shape)
{
    Add(shape, PATHNODE_START, f.cx - f.w, f.cy + f.h);
    Add(shape, PATHNODE_LINE, f.cx + f.w, f.cy + f.h);
    Add(shape, PATHNODE_LINE, f.cx + f.w, f.cy - f.h);
    Add(shape, PATHNODE_LINE, f.cx - f.w, f.cy - f.h);
    Add(shape, closingLine, f.cx - f.w, f.cy + f.h);
}

void Diamond(const FRAME &f, SHAPENODES *shape)
{
    Add(shape, PATHNODE_START, f.cx, f.cy + f.h);
    Add(shape, PATHNODE_LINE, f.cx + f.w, f.cy);
    Add(shape, PATHNODE_LINE, f.cx, f.cy - f.h);
    Add(shape, PATHNODE_LINE, f.cx - f.w, f.cy);
    Add(shape, closingLine, f.cx, f.cy + f.h);
}

/* (x, y) is the centre of the corner of greatest x and y; a and b are the lengths of the straight sides. */
void RoundRect(const FRAME &f, SHAPENODES *shape)
{
    const double halfW = std::fabs(f.w);
    const double halfH = std::fabs(f.h);
    const double r = std::min(std::max(halfW, halfH) / 3, std::min(halfW, halfH));
    const double x = f.cx + f.w - r;
    const double y = f.cy + f.h - r;
    const double a = 2 * (halfW - r);
    const double b = 2 * (halfH - r);
    const double q = circleControl * r;
    Add(shape, PATHNODE_START, x, y + r);
    Add(shape, PATHNODE_CURVE, x + q, y + r);
    Add(shape, PATHNODE_CURVE, x + r, y + q);
    Add(shape, PATHNODE_CURVE, x + r, y);
    Add(shape, PATHNODE_LINE, x + r, y - b);
    Add(shape, PATHNODE_CURVE, x + r, y - b - q);
    Add(shape, PATHNODE_CURVE, x + q, y - b - r);
    Add(shape, PATHNODE_CURVE, x, y - b - r);
    Add(shape, PATHNODE_LINE, x - a, y - b - r);
    Add(shape, PATHNODE_CURVE, x - a - q, y - b - r);
    Add(shape, PATHNODE_CURVE, x - a - r, y - b - q);
    Add(shape, PATHNODE_CURVE, x - a - r, y - b);
    Add(shape, PATHNODE_LINE, x - a - r, y);
    Add(shape, PATHNODE_CURVE, x - a - r, y + q);
    Add(shape, PATHNODE_CURVE, x - a - q, y + r);
    Add(shape, PATHNODE_CURVE, x - a, y + r);
    Add(shape, closingLine, x, y + r);
}

/* Four cubics along each long side. The lower side's nodes begin two steps from the right edge and reach the left one
 * early, deliberately: the uneven spacing is part of the shape. */
void Bar(const FRAME &f, SHAPENODES *shape)
{
    const double step = 2 * f.w * twelfth;
    Add(shape, PATHNODE_START, f.cx - f.w, f.cy - f.h);
    for (int i = 1; i <= 11; i++) Add(shape, PATHNODE_CURVE, f.cx - f.w + i * step, f.cy - f.h);
    Add(shape, PATHNODE_CURVE, f.cx + f.w, f.cy - f.h);
    Add(shape, PATHNODE_LINE, f.cx + f.w, f.cy + f.h);
    for (int i = 14; i <= 24; i++) Add(shape, PATHNODE_CURVE, f.cx + f.w + (12 - i) * step, f.cy + f.h);
    Add(shape, PATHNODE_CURVE, f.cx - f.w, f.cy + f.h);
    Add(shape, closingLine, f.cx - f.w, f.cy - f.h);
}

void ShapeOfKind(int32_t kind, const FRAME &frame, SHAPENODES *shape)
{
    shape->count = 0;
    switch (kind) {
    case ZRPRIM_ELLIPSE: Ellipse(frame, shape); break;
    case ZRPRIM_RECTANGLE: Rectangle(frame, shape); break;
    case ZRPRIM_ROUNDRECT: RoundRect(frame, shape); break;
    case ZRPRIM_BAR: Bar(frame, shape); break;
    default: Diamond(frame, shape); break;
    }
}

/* Null without memory. */
PATHREC *RecordOfKind(int32_t kind, const FRAME &frame)
{
    SHAPENODES shape;
    ShapeOfKind(kind, frame, &shape);
    PATHREC *path = RecordAlloc(shape.count);
    if (!path) return nullptr;
    path->nodeCount = shape.count;
    path->flags = PATHREC_SELECTED;
    path->primitive = kind;
    for (uint32_t i = 0; i < shape.count; i++)
        path->nodes[i] = {shape.nodes[i].type, DoubleToFix(shape.nodes[i].x), DoubleToFix(shape.nodes[i].y)};
    return path;
}

/* The prototype's chain as one selected compound shape over the frame; null without memory or for a prototype without
 * width or height. */
PATHREC *StampPrototype(const PATHREC *prototype, const FRAME &frame, int keepAspect)
{
    PATHREC *copy = nullptr;
    if (!ZrPathDuplicatePtr(prototype, &copy) || !copy) return nullptr;
    ZrPathJoinAll(copy);
    RECT box;
    ZrPathGetRealRect(copy, fixedOne, &box);
    if (box.right == box.left || box.bottom == box.top) {
        ZrPathDeletePtr(copy, 0);
        return nullptr;
    }
    const double sx = 2 * frame.w / (box.right - box.left);
    const double sy = 2 * frame.h / (box.bottom - box.top);
    if (keepAspect)
        ZrPathSize(copy, std::min(sx, sy), 0);
    else
        ZrPathSize(copy, sx, sy);
    /* The 5 takes back the margin that ZrPathOffset counts on. */
    ZrPathOffset(copy, TruncInt(frame.cx - frame.w - 5.0), TruncInt(frame.cy - frame.h - 5.0));
    ZrPathAllPathSelected(copy);
    copy->flags = PATHREC_SELECTED;
    copy->primitive = 0;
    return copy;
}

/* 0 for a drag without width or height. */
int FrameOfDrag(const COORDSTRUCT *view, int fromCentre, const RECT *drag, FRAME *frame)
{
    const double width = std::fabs(static_cast<double>(drag->right) - drag->left);
    const double height = std::fabs(static_cast<double>(drag->bottom) - drag->top);
    if (width == 0 || height == 0) return 0;
    const POINTDB start = PathViewToImage(view, drag->left, drag->top);
    const double zoom = view->zoom;
    *frame = {start.x, start.y, zoom >= 1 ? width / zoom : width * -zoom, zoom >= 1 ? height / zoom : height * -zoom};
    if (fromCentre) return 1;
    frame->w /= 2;
    frame->h /= 2;
    frame->cx += drag->right >= drag->left ? frame->w : -frame->w;
    frame->cy += drag->bottom >= drag->top ? frame->h : -frame->h;
    return 1;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathGetPrimitive(int32_t kind, const PATHREC *prototype, PATHREC **path, const COORDSTRUCT *view,
                                     int32_t center, int32_t aspect, const struct tagRECT *drag)
{
    FRAME frame;
    if (!path || !view || !drag || !FrameOfDrag(view, center, drag, &frame)) return 0;
    PATHREC *made = prototype ? StampPrototype(prototype, frame, aspect) : RecordOfKind(kind, frame);
    if (!made) return 0;
    *path = made;
    return 1;
}

ZRPATHAPI int32_t ZrPathAddPrimitive(ZRHDC hdc, int32_t kind, const PATHREC *prototype, PATHTBL *table,
                                     const COORDSTRUCT *view, int32_t center, int32_t aspect,
                                     const struct tagRECT *drag)
{
    PATHGROUP *group = TableCurrentGroup(table);
    if (!group || !view) return 0;
    if (group->selectedPath) {
        ZrPathDeSelectAll(hdc, group->selectedPath, view, 1);
        ZrPathAssignSelectedPath(table, nullptr);
    }
    PATHREC *made = nullptr;
    if (!ZrPathGetPrimitive(kind, prototype, &made, view, center, aspect, drag))
        return 1; /* adds nothing, not a failure */
    if (group->activePath)
        ChainLink(tableChain, PathChainLast(group->activePath), made);
    else
        ZrPathAssignActivePath(table, made);
    ZrPathAssignSelectedPath(table, made);
    return 1;
}

} // extern "C"

} // namespace zr32
