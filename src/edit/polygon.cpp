/* polygon.cpp - the corners of a polygon shape, see polygon.h. */
#include "edit/polygon.h"

namespace zr32 {

namespace {

/* Two times pi, to the digits that files made with this shape rely on. */
constexpr double fullTurn = 6.28318;

} // namespace

int PolygonOf(const SEGMENT *segment, POLYGON *polygon)
{
    if (segment->index == 0) return 0;
    const PATHNODE *node = segment->node;
    const int16_t corners = FixIntPart(node->x);
    if (corners <= 0) return 0;
    polygon->centre = PlaceNode(placeImage, node - 1);
    polygon->corner = PlaceNode(placeImage, node + 1) - polygon->centre;
    polygon->count = static_cast<uint32_t>(corners);
    polygon->inward = 0;
    if (node->y <= 0) return 1;
    polygon->count *= 2;
    polygon->inward = FixToDouble(node->y) / Length(polygon->corner);
    return std::isfinite(polygon->inward);
}

POINTDB PolygonCorner(const POLYGON *polygon, uint32_t k)
{
    const uint32_t n = polygon->count;
    k %= n;
    const POINTDB from = polygon->inward != 0 && k % 2 == 1 ? polygon->corner * polygon->inward : polygon->corner;
    if (2 * k == n) return polygon->centre - from;
    const double angle = 2 * k < n ? fullTurn * k / n : -(fullTurn * (n - k) / n);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return polygon->centre + POINTDB{from.x * c - from.y * s, from.x * s + from.y * c};
}

} // namespace zr32
