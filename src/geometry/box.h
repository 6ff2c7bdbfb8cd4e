/* box.h - upright boxes in doubles, and the upright ellipse in one. */
#ifndef ZR32_BOX_H
#define ZR32_BOX_H

#include "geometry/vector.h"
#include <algorithm>

namespace zr32 {

/* left <= right and top <= bottom. */
struct BOXDB {
    double left;
    double top;
    double right;
    double bottom;
};

/* The least box that holds the points, of which there is at least one. */
inline BOXDB BoxOfPoints(const POINTDB *points, int count)
{
    BOXDB box = {points[0].x, points[0].y, points[0].x, points[0].y};
    for (int i = 1; i < count; i++) {
        box.left = std::min(box.left, points[i].x);
        box.top = std::min(box.top, points[i].y);
        box.right = std::max(box.right, points[i].x);
        box.bottom = std::max(box.bottom, points[i].y);
    }
    return box;
}

/* The corners from the left top, the right top next; the first again at the end. */
struct BOXCORNERS {
    POINTDB p[5];
};

inline BOXCORNERS CornersOfBox(const BOXDB &box)
{
    return {{{box.left, box.top},
             {box.right, box.top},
             {box.right, box.bottom},
             {box.left, box.bottom},
             {box.left, box.top}}};
}

/* 1 when the point lies in the box widened by reach on each side, edges included. */
inline int PointInBox(const POINTDB &p, const BOXDB &box, double reach)
{
    return p.x >= box.left - reach && p.x <= box.right + reach && p.y >= box.top - reach && p.y <= box.bottom + reach;
}

/* How a point lies to the ellipse of radii a and b about (0, 0): negative inside, 0 on it, positive outside. */
inline double EllipseSide(const POINTDB &p, double a, double b)
{
    return p.x * p.x * b * b + p.y * p.y * a * a - a * a * b * b;
}

} // namespace zr32

#endif
