/* normal.cpp - normals of the bevel's cross-section, see normal.h.
 *
 * One procedure in two forms: through the profile table, for every pixel, and by the arc formulas, for the one pixel
 * that a light is aimed at. Where the forms differ, deliberately, EXACT says so.
 */
#include "shade/normal.h"

#include "frame/frame.h"
#include "geometry/vector.h"

#include <algorithm>

namespace zr32 {

RIMBLENDREC RIMBLEND;

namespace {

/* Shorter than this, an offset counts as none. */
constexpr double offsetNone = 1e-06;

void SetNormal(double *normal, double x, double y, double z)
{
    normal[0] = x;
    normal[1] = y;
    normal[2] = z;
}

/* The last steps of every normal: inside out, depth, unit length. */
template <bool EXACT> void Finish(const SURFACEFORM &form, double *v)
{
    if (form.invert) {
        v[0] = -v[0];
        v[1] = -v[1];
    }
    if (form.scale) v[2] = v[2] / form.scale * 30.0;
    if (EXACT)
        Vec3Normalize(v);
    else
        VecNormalize(v);
}

double TableRise(const SURFACEFORM &form, double q)
{
    return PROFILETBL[std::clamp(TruncInt(q * form.indexScale), 0, profileEntries - 1)].rise;
}

/* The rise of a profile at distance L by its arcs; beyond: on the second arc of a profile that has two. */
double ArcsRise(const SURFACEFORM &form, double L, int beyond)
{
    const double half = form.width * 0.5;
    const double d = L - half;
    const double m = form.width - L;
    switch (form.profile) {
    case 0: return ArcRise(L, 1 - L / form.width, form.invert);
    case 101: return ArcRise(L, L / form.width, form.invert);
    case 100: return beyond ? ArcRise(d, 1 - d / half, form.invert) : ArcRise(L, 1 - L / half, form.invert);
    case 102: return beyond ? ArcRise(d, d / half, form.invert) : ArcRise(L, 1 - L / half, form.invert);
    case 103: return beyond ? ArcRise(d, d / half, form.invert) : ArcRise(L, L / half, form.invert);
    default: return beyond ? ArcRise(m, 1 - m / half, form.invert) : ArcRise(L, 1 - L / half, form.invert);
    }
}

template <bool EXACT> double Rise(const SURFACEFORM &form, double L, int beyond)
{
    return EXACT ? ArcsRise(form, L, beyond) : TableRise(form, L);
}

/* The raw vector beyond the middle of a profile of two arcs; the second arc of 104 faces the other way, which turns the
 * offset round in place. */
template <bool EXACT> void BeyondHalf(const SURFACEFORM &form, double L, double *x, double *y, double *v)
{
    const double half = form.width * 0.5;
    double f = (L - half) / (half + (L - half));
    if (form.profile == 104) {
        const double m = form.width - L;
        f = m / (form.width - m);
        *x = -*x;
        *y = -*y;
    }
    SetNormal(v, *x * f, *y * f, Rise<EXACT>(form, L, 1));
}

/* The last pixel of the bevel, where it meets the level surface. */
template <bool EXACT> void RimNormal(const SURFACEFORM &form, double L, double *x, double *y, double *normal)
{
    const double half = form.width * 0.5;
    double *second = RIMBLEND.second;
    double t = form.width - L;
    if (form.profile == 1) {
        SetNormal(second, *x, *y, L);
    } else if (form.profile == 101) {
        SetNormal(second, *x, *y, Rise<EXACT>(form, L, 0));
    } else {
        if (form.profile != 104) t = form.width - (half + (L - half));
        BeyondHalf<EXACT>(form, L, x, y, second);
    }
    Finish<EXACT>(form, second);
    SetNormal(RIMBLEND.first, 0, 0, 1);
    RIMBLEND.weight = t;
    SetNormal(normal, t * second[0], t * second[1], t * second[2] + (1 - t) * RIMBLEND.first[2]);
}

/* The crease between two arcs. Through the table, profile 103 looks a whole pixel away from it, deliberately. */
template <bool EXACT> void RidgeNormal(const SURFACEFORM &form, double L, double x, double y, double *normal)
{
    const double half = form.width * 0.5;
    const double g = 0.5 / (half + 0.5);
    const double away = !EXACT && form.profile == 103 ? 1.0 : 0.5;
    double *first = RIMBLEND.first;
    double *second = RIMBLEND.second;
    SetNormal(first, x * g, y * g, Rise<EXACT>(form, away, 0));
    SetNormal(second, x, y, Rise<EXACT>(form, half - away, 0));
    Finish<EXACT>(form, first);
    Finish<EXACT>(form, second);
    if (EXACT) {
        const double t = (L - half) + 0.5;
        RIMBLEND.weight = 1 - t;
        for (int i = 0; i < 3; i++) normal[i] = t * first[i] + (1 - t) * second[i];
    } else {
        const double t = 1.0 - (L - (half - 0.5));
        RIMBLEND.weight = t;
        for (int i = 0; i < 3; i++) normal[i] = t * second[i] + (1 - t) * first[i];
    }
}

template <bool EXACT> void NormalAt(const SURFACEFORM &form, double *x, double *y, double *normal)
{
    RIMBLEND.weight = 0.0;
    double L = std::sqrt(*x * *x + *y * *y);
    if (form.reflect) {
        if (L < offsetNone) {
            if (!EXACT) {
                SetNormal(normal, 0, 0, 1);
                return;
            }
            L = offsetNone;
        }
        const double r = std::fabs(form.width - L) / L;
        *x = -(*x * r);
        *y = -(*y * r);
        L = std::sqrt(*x * *x + *y * *y);
    }
    if ((std::fabs(*x) < offsetNone && std::fabs(*y) < offsetNone) || !(L < form.width)) {
        SetNormal(normal, 0, 0, 1);
        return;
    }

    const int32_t profile = form.profile;
    const double half = form.width * 0.5;
    const int hasRim = profile == 1 || (profile >= 101 && profile <= 104);
    if (hasRim && L > form.width - 1.0 && form.reflect != 1) {
        RimNormal<EXACT>(form, L, x, y, normal);
        return;
    }
    if ((profile == 100 || profile == 103) && half - 0.5 < L && L < half + 0.5) {
        RidgeNormal<EXACT>(form, L, *x, *y, normal);
        return;
    }
    switch (profile) {
    case 0:
    case 101: SetNormal(normal, *x, *y, Rise<EXACT>(form, L, 0)); break;
    case 1: SetNormal(normal, *x, *y, L); break;
    case 100:
    case 102:
    case 103:
    case 104:
        if (L > half)
            BeyondHalf<EXACT>(form, L, x, y, normal);
        else
            SetNormal(normal, *x, *y, Rise<EXACT>(form, L, 0));
        break;
    default: break;
    }
    Finish<EXACT>(form, normal);
}

} // namespace

void ProfileNormal(const SURFACEFORM &form, double *offsetX, double *offsetY, double *normal)
{
    NormalAt<false>(form, offsetX, offsetY, normal);
}

void ProfileNormalExact(const SURFACEFORM &form, double x, double y, double *normal)
{
    NormalAt<true>(form, &x, &y, normal);
}

} // namespace zr32
