/* space.h - vectors, rotation and perspective of paths in space.
 *
 * Vectors are rows, multiplied from the left. A path lies in the picture plane z = 0 before it is turned; larger z is
 * nearer to the eye, which stands over the transform's centre. SPACE is a transform unpacked once per call, so that
 * nothing is converted per point and the caller's record may change underneath.
 */
#ifndef ZR32_SPACE_H
#define ZR32_SPACE_H

#include "frame/frame.h"
#include "geometry/vector.h"
#include <zr32path/render3d.h>

namespace zr32 {

static_assert(sizeof(POINTFXMAT3D) == 144, "the transform record has one layout on every build");

/* A point in space as the array of three that the vector helpers take. */
static_assert(sizeof(POINT3D) == 3 * sizeof(double), "three doubles and nothing between them");
inline double *Coords(POINT3D *point)
{
    return reinterpret_cast<double *>(point);
}

inline const double *Coords(const POINT3D *point)
{
    return reinterpret_cast<const double *>(point);
}

/* pi as it has always stood behind angles here: not the full value, and results depend on it. */
constexpr double coarsePi = 3.14159;

/* One part in 180, so that degrees x coarsePi x partOfHalfTurn are radians. */
constexpr double partOfHalfTurn = 0.005555555555555556;

struct SPACE {
    POINTDB center; /* subtracted before the rotation */
    POINTDB shift;  /* added after it */
    POINT3D eye;
    tagMATRIX3D matrix;
};

/* Unpacks a transform, eye included. A view angle of 0 or one that is no number gives an eye that no point passes. */
void SpaceFromTransform(const POINTFXMAT3D *transform, SPACE *space);

/* Centre, rotation and shift: the point stays in space. */
void SpaceTurn(const SPACE *space, POINT3D *point);

/* Where the ray from the eye through the point meets the plane z = 0. A point at the eye's height has no such place:
 * the result is then not finite. */
void ProjectFromEye(const POINT3D *eye, const POINT3D *point, POINTDB *out);

/* SpaceTurn and ProjectFromEye for the point (x, y, z). */
POINTDB SpaceProject(const SPACE *space, double x, double y, double z);

/* The angle in degrees brought to 0 .. 360. */
double WrapDegrees(double degrees);

} // namespace zr32

#endif
