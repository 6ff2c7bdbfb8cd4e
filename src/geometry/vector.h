/* vector.h - points and vectors in doubles.
 *
 * Two kinds of helpers: inline operations on POINTDB for new code, and the array forms (Vec2Sub and its companions),
 * whose treatment of null pointers and of a factor 0 is part of their contract.
 */
#ifndef ZR32_VECTOR_H
#define ZR32_VECTOR_H

#include <cmath>
#include <zr32path/types.h>

namespace zr32 {

using POINTDB = tagPOINTDB;
using POINT3D = tagPOINT3D;

inline POINTDB operator+(const POINTDB &a, const POINTDB &b)
{
    return {a.x + b.x, a.y + b.y};
}

inline POINTDB operator-(const POINTDB &a, const POINTDB &b)
{
    return {a.x - b.x, a.y - b.y};
}

inline POINTDB operator*(const POINTDB &a, double k)
{
    return {a.x * k, a.y * k};
}

inline double Dot(const POINTDB &a, const POINTDB &b)
{
    return a.x * b.x + a.y * b.y;
}

/* Above 0 when b points to the side of a that (-y, x) points to. */
inline double Cross(const POINTDB &a, const POINTDB &b)
{
    return a.x * b.y - a.y * b.x;
}

inline double Length(const POINTDB &a)
{
    return std::sqrt(a.x * a.x + a.y * a.y);
}

/* out = a - b; returns out, null if a or b is null. */
double *Vec2Sub(const double *a, const double *b, double *out);

/* a and out = a x k, unless k is 0, when both are left alone; returns out. */
double *Vec2Scale(double *a, double k, double *out);

double Vec2LengthSq(const double *a);
double Vec2Length(const double *a);
double Vec2Dot(const double *a, const double *b);
double Vec3Dot(const double *a, const double *b);

/* out = a x b; the length of out when wantLength is not 0, else 1; 0 if a pointer is null. */
double Vec3Cross(const double *a, const double *b, double *out, int wantLength);

/* Vec3Dot inline and without its tests, for inner loops. */
inline double Dot3(const double *a, const double *b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/* How far the view along z, mirrored at the normal n, goes in the direction l: 2 n.z n - (0, 0, 1) times l. */
inline double MirrorDot(const double *n, const double *l)
{
    return 2 * n[2] * n[0] * l[0] + 2 * n[2] * n[1] * l[1] + (2 * n[2] * n[2] - 1) * l[2];
}

/* A vector taken apart along another. */
struct PROJECTION {
    POINTDB along;
    POINTDB rest;
    double alongLength;
    double restLength;
};

/* Splits a into its part along b and the rest. */
void Vec2Project(const POINTDB &a, const POINTDB &b, PROJECTION *out);

/* Divides by the length without a guard: a zero vector becomes NaN. Inline for inner loops, as the next. */
inline void Vec3Normalize(double *v)
{
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    v[0] /= length;
    v[1] /= length;
    v[2] /= length;
}

/* The same, but a vector of length exactly 0 stays. */
inline void VecNormalize(double *v)
{
    if (v[0] * v[0] + v[1] * v[1] + v[2] * v[2] != 0) Vec3Normalize(v);
}

/* a x (1 - t) + b x t. */
inline POINTDB LerpPoint(const POINTDB &a, const POINTDB &b, double t)
{
    return {a.x * (1 - t) + b.x * t, a.y * (1 - t) + b.y * t};
}

/* Both unit normals of a tangent, by exact tests on its components: (1, 0) for x = 0, (0, 1) for y = 0, else
 * (1, -Tx / Ty) by its length; n2 = -n1. */
void OutlineNormals(const POINTDB &tangent, POINTDB *n1, POINTDB *n2);

} // namespace zr32

#endif
