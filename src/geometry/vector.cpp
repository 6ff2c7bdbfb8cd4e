/* vector.cpp - points and vectors in doubles, see vector.h. */
#include "geometry/vector.h"

namespace zr32 {

double *Vec2Sub(const double *a, const double *b, double *out)
{
    if (!a || !b || !out) return nullptr;
    out[0] = a[0] - b[0];
    out[1] = a[1] - b[1];
    return out;
}

double *Vec2Scale(double *a, double k, double *out)
{
    if (a && out && k != 0) {
        a[0] = out[0] = a[0] * k;
        a[1] = out[1] = a[1] * k;
    }
    return out;
}

double Vec2LengthSq(const double *a)
{
    return a ? a[0] * a[0] + a[1] * a[1] : 0;
}

double Vec2Length(const double *a)
{
    return std::sqrt(Vec2LengthSq(a));
}

double Vec2Dot(const double *a, const double *b)
{
    return a && b ? a[0] * b[0] + a[1] * b[1] : 0;
}

double Vec3Dot(const double *a, const double *b)
{
    return a && b ? a[0] * b[0] + a[1] * b[1] + a[2] * b[2] : 0;
}

double Vec3Cross(const double *a, const double *b, double *out, int wantLength)
{
    if (!a || !b || !out) return 0;
    const double x = a[1] * b[2] - b[1] * a[2];
    const double y = a[2] * b[0] - a[0] * b[2];
    const double z = a[0] * b[1] - a[1] * b[0];
    out[0] = x;
    out[1] = y;
    out[2] = z;
    return wantLength ? std::sqrt(x * x + y * y + z * z) : 1;
}

void Vec2Project(const POINTDB &a, const POINTDB &b, PROJECTION *out)
{
    const double k = Dot(a, b) / Dot(b, b);
    out->along = b * k;
    out->rest = a - out->along;
    out->alongLength = Length(out->along);
    out->restLength = Length(out->rest);
}

void OutlineNormals(const POINTDB &tangent, POINTDB *n1, POINTDB *n2)
{
    if (tangent.x == 0) {
        *n1 = {1, 0};
        *n2 = {-1, 0};
    } else if (tangent.y == 0) {
        *n1 = {0, 1};
        *n2 = {0, -1};
    } else {
        const double slope = -tangent.x / tangent.y;
        const double length = std::sqrt(1 + slope * slope);
        *n1 = {1 / length, slope / length};
        *n2 = {-n1->x, -n1->y};
    }
}

} // namespace zr32
