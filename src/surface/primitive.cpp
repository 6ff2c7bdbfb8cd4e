/* primitive.cpp - surfaces of lone primitives in closed form: a cone over the ellipse, a roof over the rectangle, a
 * roof with round corners, a pyramid over the diamond.
 *
 * In come the record's kind and a few of its nodes; out goes a height field over the whole shape, row by row, always
 * with one float vector a pixel. Pixels are measured at their integer position, without the half that points carry.
 * Ellipse and rounded rectangle take their radii in path units, without the zoom, deliberately: results depend on it.
 */
#include "surface/surface.h"

#include "surface/diamond.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

/* What a row function needs of the shape. */
struct SHAPE {
    BOXDB box; /* pixels, sorted */
    double h;  /* height of the surface */
    POINTDB centre;
    double rx; /* ellipse's radii, path units */
    double ry;
    double r; /* rounded rectangle's corner radius, path units */
};

using SHAPEROW = void (*)(const SHAPE *shape, const PLANES *planes, int32_t y);

struct PRIMITIVE {
    uint32_t nodes; /* that a record must have at least */
    int32_t errorIndex;
    SHAPEROW row;
};

/* ---- ellipse ---- */

void EllipseRow(const SHAPE *shape, const PLANES *planes, int32_t y)
{
    const double rx2 = shape->rx * shape->rx;
    const double ry2 = shape->ry * shape->ry;
    for (int32_t x = 0; x < planes->width; x++) {
        double dx = x - shape->centre.x;
        const double dy = y - shape->centre.y;
        const double d = std::sqrt(dx * dx + dy * dy);
        if (dx == 0) dx = 0.00001;
        const double angle = std::atan2(dy, dx);
        const double s = std::sin(angle);
        const double c = std::cos(angle);
        /* The rim lies a pixel outside the ellipse. */
        const double rim = std::sqrt(rx2 * ry2 / (rx2 * (s * s) + ry2 * (c * c))) + 1.0;
        if (!(d < rim)) continue;
        const double g = (rim - d) / rim * shape->h;
        PlanePut(planes, x, y, g * g, d == 0 ? POINTDB{shape->h, 0} : POINTDB{dx * g / d, dy * g / d});
    }
}

/* ---- rectangles ---- */

enum SIDE { SIDE_LEFT, SIDE_RIGHT, SIDE_TOP, SIDE_BOTTOM };

/* Distances from a point to the four sides, positive inside, in the order of SIDE. */
struct SIDES {
    double to[4];
};

SIDES SidesOf(const BOXDB *box, double x, double y)
{
    return {{x - box->left, box->right - x, y - box->top, box->bottom - y}};
}

/* The nearest side by magnitude; of equal ones the first in the order of SIDE. */
SIDE NearestSide(const SIDES *sides)
{
    int best = SIDE_LEFT;
    for (int side = SIDE_RIGHT; side <= SIDE_BOTTOM; side++)
        if (std::fabs(sides->to[side]) < std::fabs(sides->to[best])) best = side;
    return static_cast<SIDE>(best);
}

/* A vector of length e towards a side. */
POINTDB TowardsSide(SIDE side, double e)
{
    switch (side) {
    case SIDE_LEFT: return {-e, 0};
    case SIDE_RIGHT: return {e, 0};
    case SIDE_TOP: return {0, -e};
    default: return {0, e};
    }
}

void RectangleRow(const SHAPE *shape, const PLANES *planes, int32_t y)
{
    const double halfWidth = (shape->box.right - shape->box.left) / 2;
    const double halfHeight = (shape->box.bottom - shape->box.top) / 2;
    const double slope = shape->h / std::min(halfWidth, halfHeight);
    for (int32_t x = 0; x < planes->width; x++) {
        const SIDES sides = SidesOf(&shape->box, x, y);
        const SIDE side = NearestSide(&sides);
        double e = sides.to[side];
        if (e == 0) e = 0.0001;
        POINTDB vector = {0, 0};
        if (e <= -1.0)
            e = 0;
        else
            vector = TowardsSide(side, e);
        if (e < 0) vector = vector * 0.1;
        PlanePut(planes, x, y, e * e, vector * slope);
    }
}

/* The corner circle that a pixel near two sides belongs to. */
POINTDB CornerCentre(const SHAPE *shape, SIDE a, SIDE b)
{
    const int right = a == SIDE_RIGHT || b == SIDE_RIGHT;
    const int bottom = a == SIDE_BOTTOM || b == SIDE_BOTTOM;
    return {right ? shape->box.right - shape->r : shape->box.left + shape->r,
            bottom ? shape->box.bottom - shape->r : shape->box.top + shape->r};
}

/* One pixel of the rounded rectangle. Outside the box by a pixel or more the vector stays as the pixel before left it.
 */
void VMapRoundRectPixel(const SHAPE *shape, const POINTDB &point, double *height, POINTDB *vector)
{
    const SIDES sides = SidesOf(&shape->box, point.x, point.y);
    const SIDE side = NearestSide(&sides);
    double e = sides.to[side];
    if (e == 0) e = 0.0001;
    if (e <= -1.0) {
        *height = 0;
        return;
    }
    const SIDE across = side == SIDE_LEFT || side == SIDE_RIGHT ? SIDE_TOP : SIDE_LEFT;
    for (int i = across; i <= across + 1; i++) {
        const SIDE neighbour = static_cast<SIDE>(i);
        if (!(e < shape->r && sides.to[neighbour] > -1.0 && sides.to[neighbour] < shape->r)) continue;
        const POINTDB a = point - CornerCentre(shape, side, neighbour);
        const double length = Length(a);
        double s = length / shape->r;
        if (s >= 1) { /* beyond the rounded corner */
            *height = 0.0001;
            *vector = a * 0.0001;
        } else {
            *height = (1 - s) * shape->h;
            if (length != 0) s = *height / length;
            *vector = a * s;
        }
        return;
    }
    *height = e * (shape->h / shape->r);
    *vector = TowardsSide(side, *height);
}

void RoundRectRow(const SHAPE *shape, const PLANES *planes, int32_t y)
{
    POINTDB vector = {0, 0};
    for (int32_t x = 0; x < planes->width; x++) {
        double height = 0;
        VMapRoundRectPixel(shape, {static_cast<double>(x), static_cast<double>(y)}, &height, &vector);
        PlanePut(planes, x, y, height * height, vector);
    }
}

void DiamondRow(const SHAPE *shape, const PLANES *planes, int32_t y)
{
    VMapDiamondRow(shape->h, &shape->box, y, planes);
}

/* ---- kinds ---- */

BOXDB SortedBox(double x0, double y0, double x1, double y1)
{
    return {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
}

PRIMITIVE PrimitiveOfKind(int32_t kind)
{
    switch (kind) {
    case 1: return {4, 0, EllipseRow};
    case 2: return {3, 1, RectangleRow};
    case 5: return {14, 1, RectangleRow};
    case 3: return {12, 2, RoundRectRow};
    default: return {4, 3, DiamondRow};
    }
}

/* Reads the shape off the nodes; the record has enough of them. */
SHAPE ShapeRead(const PATHREC *path, const SURFACEMAP *map)
{
    const PLACEMENT place = PlaceOnMask(map->zoom, map->originX, map->originY);
    const auto at = [&](int node) { return PlaceNode(place, &path->nodes[node]); };
    const auto unplaced = [&](int node) { return PlaceNode(placeImage, &path->nodes[node]); };
    SHAPE shape = {};
    double defaultHeight = 0;
    switch (path->primitive) {
    case 1:
        shape.centre = {at(0).x, at(3).y};
        shape.rx = unplaced(3).x - unplaced(0).x;
        shape.ry = unplaced(0).y - unplaced(3).y;
        defaultHeight = std::min(std::fabs(shape.rx), std::fabs(shape.ry));
        break;
    case 3:
        shape.box = SortedBox(at(3).x, at(0).y, at(11).x, at(7).y);
        shape.r = std::fabs(unplaced(3).x - unplaced(0).x);
        defaultHeight = shape.r;
        break;
    default: {
        const int far = path->primitive == 2 ? 2 : 13;
        const int corners = path->primitive == 2 || path->primitive == 5;
        shape.box =
            corners ? SortedBox(at(0).x, at(0).y, at(far).x, at(far).y) : SortedBox(at(3).x, at(2).y, at(1).x, at(0).y);
        defaultHeight = std::min((shape.box.right - shape.box.left) / 2, (shape.box.bottom - shape.box.top) / 2);
        break;
    }
    }
    shape.h = defaultHeight;
    return shape;
}

/* The callback's answer for a row; the percentage in integers, within the range of the pass. */
int RowProgress(const SURFACEMAP *map, int32_t y, int32_t height)
{
    if (!map->progress) return 1;
    const int64_t range = int64_t{map->progress->rangeTo} - map->progress->rangeFrom;
    const int64_t value = map->progress->rangeFrom + y * range / height;
    return MapProgress(map, progressAdvance, static_cast<int32_t>(value)) != 0;
}

} // namespace

int VMapPrimitive(PATHREC *path, double *width, const SURFACEMAP *map)
{
    if (!IsOnlyPrimitive(path) || !MapHasPlanes(map)) return 0;
    const PRIMITIVE primitive = PrimitiveOfKind(path->primitive);
    if (path->nodeCount < primitive.nodes) return 0;
    SHAPE shape = ShapeRead(path, map);
    if (*width != 0) shape.h = *width;
    *width = shape.h;

    const PLANES planes = MapPlanes(map);
    for (int32_t y = 0; y < planes.height; y++) {
        if (!RowProgress(map, y, planes.height)) {
            MapAbort(map, abortInPrimitive, primitive.errorIndex);
            return 0;
        }
        primitive.row(&shape, &planes, y);
    }
    return 1;
}

} // namespace zr32
