/* warp.cpp - bends a compound path through a frame.
 *
 * The source rectangle is the margin box of the nodes as they stand, so a second warp bends the result of the first:
 * nothing unwarped is kept. Every start, line and curve node is mapped as a plain point (u, v) of that rectangle, the
 * controls of curves too; shapes keep their values. A frame is four corners, or two opposite cubics with straight
 * lines between them.
 */
#include "store/nodes.h"
#include <zr32path/edit.h>

namespace zr32 {

namespace {

POINTDB ToPoint(const POINTFX &p)
{
    return {FixToDouble(p.x), FixToDouble(p.y)};
}

/* A cubic in power form, lowest power first. */
struct CUBIC {
    POINTDB c[4];
};

/* From the four Bezier points. */
CUBIC CubicOf(const POINTFX *points)
{
    const POINTDB a0 = ToPoint(points[0]);
    const POINTDB a1 = ToPoint(points[1]);
    const POINTDB a2 = ToPoint(points[2]);
    const POINTDB a3 = ToPoint(points[3]);
    return {{a0, (a1 - a0) * 3, (a0 - a1 * 2 + a2) * 3, a3 + (a1 - a2) * 3 - a0}};
}

POINTDB CubicAt(const CUBIC &cubic, double s)
{
    return cubic.c[0] + cubic.c[1] * s + cubic.c[2] * (s * s) + cubic.c[3] * (s * s * s);
}

/* Maps the join chain from path on by target(u, v). 1; 0 for null. */
template <typename TARGET> int32_t WarpJoinChain(PATHREC *path, TARGET target)
{
    RECT source;
    if (!ZrPathGetMiniMaxRect(path, fixedOne, &source)) return 0;
    const double left = source.left;
    const double top = source.top;
    const double width = source.right - left; /* the margin makes both at least 11 */
    const double height = source.bottom - top;
    for (PATHREC *record = path; record; record = record->nextJoin) {
        record->primitive = 0;
        ForEachPoint(record, [&](PATHNODE *node) {
            const POINTDB q = target((FixToDouble(node->x) - left) / width, (FixToDouble(node->y) - top) / height);
            node->x = DoubleToFix(q.x);
            node->y = DoubleToFix(q.y);
        });
    }
    return 1;
}

/* Which way the two cubics of a bicubic frame run. */
enum FRAMESIDES { SIDES_TOPBOTTOM, SIDES_LEFTRIGHT };

int32_t WarpBiCubic(PATHREC *path, const POINTFX *points, FRAMESIDES sides)
{
    if (!path || !points) return 0;
    const CUBIC first = CubicOf(points);
    const CUBIC opposite = CubicOf(points + 4);
    return WarpJoinChain(path, [&](double u, double v) {
        const double along = sides == SIDES_TOPBOTTOM ? u : v;
        const double across = sides == SIDES_TOPBOTTOM ? v : u;
        const POINTDB from = CubicAt(first, along);
        return from + (CubicAt(opposite, along) - from) * across;
    });
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathBiLinear(PATHREC *path, const ZRPOINTFX *points)
{
    if (!path || !points) return 0;
    const POINTDB p0 = ToPoint(points[0]);
    const POINTDB a = ToPoint(points[1]) - p0;
    const POINTDB b = ToPoint(points[2]) - p0;
    const POINTDB c = ToPoint(points[3]) - ToPoint(points[1]) - ToPoint(points[2]) + p0;
    return WarpJoinChain(path, [&](double u, double v) { return p0 + a * u + b * v + c * (u * v); });
}

ZRPATHAPI int32_t ZrPathBiCubic(PATHREC *path, const ZRPOINTFX *points)
{
    return WarpBiCubic(path, points, SIDES_TOPBOTTOM);
}

ZRPATHAPI int32_t ZrPathBiCubicV(PATHREC *path, const ZRPOINTFX *points)
{
    return WarpBiCubic(path, points, SIDES_LEFTRIGHT);
}

} // extern "C"

} // namespace zr32
