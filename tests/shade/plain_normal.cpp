/* plain_normal.cpp - profile and normal, written out without sharing anything; see plain_shader.h. */
#include "shade/plain_shader.h"

#include <cmath>

namespace zr32test {

namespace {

double Arc(double d, double u, int32_t invert)
{
    return invert ? d / std::tan(std::asin(u)) : std::tan(std::acos(u)) * d;
}

double ArcB(double d, double r, int32_t invert)
{
    if (invert && d == 0.0) return 1.0;
    return Arc(d, d / r, invert);
}

void Set(double *v, double x, double y, double z)
{
    v[0] = x;
    v[1] = y;
    v[2] = z;
}

void Done(const PLAINBEVEL &bevel, double *v)
{
    if (bevel.invert != 0) {
        v[0] = -v[0];
        v[1] = -v[1];
    }
    if (bevel.scale != 0) v[2] = v[2] / bevel.scale * 30.0;
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (length != 0) Set(v, v[0] / length, v[1] / length, v[2] / length);
}

/* The rise at a distance, the index cut to the table. */
double R(const PLAINBEVEL &bevel, double q)
{
    const double index = q * (4096.0 / bevel.width);
    int i = 0;
    if (index >= 6191.0)
        i = 6191;
    else if (index > 0)
        i = static_cast<int>(index);
    return PlainRise(bevel.profile, bevel.width, bevel.invert, i);
}

} // namespace

double PlainRise(int32_t profile, double width, int32_t invert, int i)
{
    const double step = width * 0.000244140625;
    const double half = width * 0.5;
    const double d = i * step;
    if (profile == 0) return d < width ? Arc(d, 1.0 - d / width, invert) : 1.0;
    if (profile == 1) return d < width ? d : width;
    if (profile == 101) return d < width ? ArcB(d, width, invert) : 1.0;
    if (i >= 4096) return 1.0;
    if (profile == 104) {
        const double d4 = (i < 2048 ? i : 4095 - i) * step;
        return Arc(d4, 1.0 - d4 / half, invert);
    }
    const double d2 = (i < 2048 ? i : i - 2048) * step;
    const int formB = profile == 103 || (profile == 102 && i >= 2048);
    return formB ? ArcB(d2, half, invert) : Arc(d2, 1.0 - d2 / half, invert);
}

void PlainNormal(const PLAINBEVEL &bevel, double *px, double *py, double *normal, PLAINSEAM *seam)
{
    const double width = bevel.width;
    const double half = width * 0.5;
    const int32_t profile = bevel.profile;
    seam->weight = 0.0;
    double L = std::sqrt(*px * *px + *py * *py);
    if (bevel.reflect != 0) {
        if (L < 1e-06) return Set(normal, 0, 0, 1);
        const double r = std::fabs(width - L) / L;
        *px = -(*px * r);
        *py = -(*py * r);
        L = std::sqrt(*px * *px + *py * *py);
    }
    const double x = *px;
    const double y = *py;
    if (std::fabs(x) < 1e-06 && std::fabs(y) < 1e-06) return Set(normal, 0, 0, 1);
    if (!(L < width)) return Set(normal, 0, 0, 1);

    const double f = (L - half) / (half + (L - half));
    const double m = width - L;
    const double f4 = m / (width - m);

    if (L > width - 1.0 && bevel.reflect != 1) {
        double t = 0;
        double *second = seam->second;
        int rim = 1;
        switch (profile) {
        case 1:
            Set(second, x, y, L);
            t = width - L;
            break;
        case 101:
            Set(second, x, y, R(bevel, L));
            t = width - L;
            break;
        case 102:
        case 103:
            Set(second, x * f, y * f, R(bevel, L));
            t = width - (half + (L - half));
            break;
        case 104:
            *px = -x;
            *py = -y;
            Set(second, *px * f4, *py * f4, R(bevel, L));
            t = m;
            break;
        default: rim = 0; break;
        }
        if (rim) {
            Set(seam->first, 0, 0, 1);
            Done(bevel, second);
            seam->weight = t;
            return Set(normal, t * second[0], t * second[1], t * second[2] + (1 - t) * 1.0);
        }
    }
    if ((profile == 100 || profile == 103) && half - 0.5 < L && L < half + 0.5) {
        const double g = 0.5 / (half + 0.5);
        const double q1 = profile == 100 ? 0.5 : 1.0;
        const double q2 = profile == 100 ? half - 0.5 : half - 1.0;
        Set(seam->first, x * g, y * g, R(bevel, q1));
        Set(seam->second, x, y, R(bevel, q2));
        Done(bevel, seam->first);
        Done(bevel, seam->second);
        const double t = 1.0 - (L - (half - 0.5));
        seam->weight = t;
        return Set(normal, t * seam->second[0] + (1 - t) * seam->first[0],
                   t * seam->second[1] + (1 - t) * seam->first[1], t * seam->second[2] + (1 - t) * seam->first[2]);
    }
    if (profile == 0 || profile == 101) Set(normal, x, y, R(bevel, L));
    if (profile == 1) Set(normal, x, y, L);
    if (profile >= 100 && profile <= 104 && profile != 101) {
        if (L <= half) {
            Set(normal, x, y, R(bevel, L));
        } else if (profile == 104) {
            *px = -x;
            *py = -y;
            Set(normal, *px * f4, *py * f4, R(bevel, L));
        } else {
            Set(normal, x * f, y * f, R(bevel, L));
        }
    }
    Done(bevel, normal);
}

} // namespace zr32test
