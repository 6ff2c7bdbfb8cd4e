/* rotation.cpp - rotations as matrices and as axis and angle, the algebra behind a trackball.
 *
 * Angles are degrees, turned into radians with coarsePi. A row vector times a matrix turns the vector, so a x b is the
 * rotation a followed by b.
 */
#include "render3d/space.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

/* The point turned about a unit axis. The cosine is derived from the sine, with the sign of its quadrant. */
void TurnAbout(const POINT3D &axis, double degrees, POINT3D *point)
{
    const double sine = std::sin(degrees * coarsePi * partOfHalfTurn);
    double cosine = std::sqrt(1 - sine * sine);
    if (degrees > 90 && degrees < 270) cosine = -cosine;
    tagMATRIX3D turn = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    VThitaGetMatrix(sine, cosine, &axis, &turn);
    RotatePoint3D(point, &turn);
}

} // namespace

double WrapDegrees(double degrees)
{
    if (degrees >= 0 && degrees < 360) return degrees;
    const double rest = std::fmod(degrees, 360.0);
    return rest < 0 ? rest + 360 : rest;
}

extern "C" {

ZRPATHAPI void VThitaGetMatrix(double sine, double cosine, const tagPOINT3D *axis, tagMATRIX3D *matrix)
{
    /* No turn by an exact sine of 0, deliberately also for a half turn: the caller starts from the identity. */
    if (sine == 0 || !axis || !matrix) return;
    const double x = axis->x;
    const double y = axis->y;
    const double z = axis->z;
    const double s = sine;
    const double c = cosine;
    matrix->m[0] = (1 - x * x) * c + x * x;
    matrix->m[1] = x * y * (1 - c) + z * s;
    matrix->m[2] = x * z * (1 - c) - y * s;
    matrix->m[3] = x * y * (1 - c) - z * s;
    matrix->m[4] = (1 - y * y) * c + y * y;
    matrix->m[5] = y * z * (1 - c) + x * s;
    matrix->m[6] = x * z * (1 - c) + y * s;
    matrix->m[7] = y * z * (1 - c) - x * s;
    matrix->m[8] = (1 - z * z) * c + z * z;
}

ZRPATHAPI void RotatePoint3D(tagPOINT3D *point, const tagMATRIX3D *matrix)
{
    if (!point || !matrix) return;
    const POINT3D p = *point;
    const double *m = matrix->m;
    point->x = m[0] * p.x + m[3] * p.y + m[6] * p.z;
    point->y = m[1] * p.x + m[4] * p.y + m[7] * p.z;
    point->z = m[2] * p.x + m[5] * p.y + m[8] * p.z;
}

ZRPATHAPI const tagMATRIX3D *Matrix3X3(const tagMATRIX3D *a, const tagMATRIX3D *b, tagMATRIX3D *result)
{
    if (!a || !b || !result) return a;
    tagMATRIX3D product;
    for (int row = 0; row < 9; row += 3) {
        for (int column = 0; column < 3; column++) {
            product.m[row + column] =
                a->m[row] * b->m[column] + a->m[row + 1] * b->m[column + 3] + a->m[row + 2] * b->m[column + 6];
        }
    }
    *result = product;
    return a;
}

ZRPATHAPI void ORMatrix(tagMATRIX3D *matrix)
{
    if (!matrix) return;
    double *r0 = matrix->m;
    double *r1 = matrix->m + 3;
    double *r2 = matrix->m + 6;
    /* Row 1 keeps its direction; the drift of repeated products goes into the others. */
    Vec3Normalize(r1);
    Vec3Cross(r1, r2, r0, 0);
    Vec3Normalize(r0);
    Vec3Cross(r0, r1, r2, 0);
    Vec3Normalize(r2);
}

ZRPATHAPI int32_t AddRotation(tagPOINT3D axisA, double angleA, tagPOINT3D axisB, double angleB, tagPOINT3D *axis,
                              double *angle)
{
    if ((angleA == 0 && angleB == 0) || !axis || !angle) return 0;
    if (angleA == 0 || angleB == 0) { /* the other one as it stands, axis of any length */
        *axis = angleA == 0 ? axisB : axisA;
        *angle = angleA == 0 ? angleB : angleA;
        return 1;
    }
    Vec3Normalize(Coords(&axisA));
    Vec3Normalize(Coords(&axisB));
    angleA = WrapDegrees(angleA);
    angleB = WrapDegrees(angleB);

    POINT3D n;
    Vec3Cross(Coords(&axisA), Coords(&axisB), Coords(&n), 0);
    if (n.x == 0 && n.y == 0 && n.z == 0) {
        *axis = axisA;
        *angle = WrapDegrees(Vec3Dot(Coords(&axisA), Coords(&axisB)) >= 0 ? angleB + angleA : angleA - angleB);
        return 1;
    }
    const double k = std::sqrt(1 / (n.x * n.x + n.y * n.y + n.z * n.z));
    n = {n.x * k, n.y * k, n.z * k};

    POINT3D u = n;
    POINT3D v = n;
    TurnAbout(axisA, WrapDegrees(-angleA), &u);
    TurnAbout(axisB, WrapDegrees(angleB), &v);
    POINT3D w;
    const double length = Vec3Cross(Coords(&u), Coords(&v), Coords(&w), 1);
    /* Rounding can lift the length of two unit vectors' product over 1, which has no arc sine. */
    double radians = std::asin(std::min(length, 1.0));
    if (Vec3Dot(Coords(&u), Coords(&v)) < 0) radians = coarsePi - radians;
    Vec3Normalize(Coords(&w));
    *axis = w;
    *angle = radians / coarsePi * 180;
    return 1;
}

} // extern "C"

} // namespace zr32
