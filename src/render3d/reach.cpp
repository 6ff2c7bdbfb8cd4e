/* reach.cpp - how far inward the bevel runs at a point of the outline.
 *
 * The mask tells which side is inside. The surface map holds for each pixel the way to the nearest outline, and for
 * pixels on a ridge the way to a second one: where, going inward, these vectors turn from this side of the shape to
 * another, the bevel meets the one from the other side and ends. The mitre between two such ridge points is a straight
 * line, so neighbouring sections that find different ridges share it out in proportion.
 */
#include "render3d/render.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

constexpr uint32_t maskOutside = 0xFFFFFFFFu;
constexpr uint32_t maskInside = 0;

struct PIXELAT {
    int32_t x;
    int32_t y;
};

int operator==(const PIXELAT &a, const PIXELAT &b)
{
    return a.x == b.x && a.y == b.y;
}

PIXELAT PixelAt(const POINTDB &p)
{
    return {PixelIndex(p.x), PixelIndex(p.y)};
}

uint32_t MaskPixel(const RENDER *render, const PIXELAT &pixel)
{
    if (!BufHasPixel(render->maskInfo, pixel.x, pixel.y)) return maskOutside;
    const uint8_t *p = BufRow(render->mask, render->maskInfo, pixel.y) + 4 * static_cast<size_t>(pixel.x);
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
           static_cast<uint32_t>(p[3]) << 24;
}

/* 1 when the mask bit of the sub-pixel that holds the point lies outside the shape. */
int MaskBit(const RENDER *render, const POINTDB &p)
{
    const PIXELAT pixel = PixelAt(p);
    const uint32_t mask = MaskPixel(render, pixel);
    if (pixel.x < 0 || pixel.y < 0) return 1;
    const uint32_t row = static_cast<uint32_t>(TruncInt((p.y - pixel.y) * 4)) & 3u;
    const uint32_t column = static_cast<uint32_t>(TruncInt((p.x - pixel.x) * 8)) & 7u;
    return (mask >> 8 * row & 0x80u >> column) != 0;
}

/* What the surface map knows at a pixel. */
struct WAYS {
    POINTDB v1; /* to the nearest outline */
    POINTDB v2; /* to another one, or zero */
};

WAYS WaysAt(const RENDER *render, const PIXELAT &pixel)
{
    if (!BufHasPixel(render->surfaceInfo, pixel.x, pixel.y)) return {};
    const SURFVEC16 *ways =
        reinterpret_cast<const SURFVEC16 *>(BufRow(render->surface, render->surfaceInfo, pixel.y)) + pixel.x;
    constexpr double unit = 1.0 / 256;
    return {{ways->x1 * unit, ways->y1 * unit}, {ways->x2 * unit, ways->y2 * unit}};
}

/* 1 when there is a second way, about as long as the first. */
int EqualWays(const WAYS &ways)
{
    return (ways.v2.x != 0 || ways.v2.y != 0) && std::fabs(Length(ways.v1) - Length(ways.v2)) <= 0.7;
}

POINTDB Negative(const POINTDB &a)
{
    return {-a.x, -a.y};
}

/* Where a ridge search stopped. */
struct RIDGE {
    double r;
    POINTDB back; /* from the outline to the pixel it stopped on */
    PIXELAT pixel;
};

struct RIDGEPAIR {
    POINTDB a;
    POINTDB b;
    int stepBack; /* found between this pixel and the one before, which counts as its pixel */
};

/* One pixel of the search and the one before it. */
struct RIDGESTEP {
    WAYS now;
    WAYS before;
    POINTDB step; /* from the previous pixel to this one */
};

/* 1 when the vectors have turned at this pixel: the two sides that meet there, the own one first. */
int FindRidge(const RIDGESTEP *s, const POINTDB &inward, double tolerance, RIDGEPAIR *pair)
{
    const POINTDB &v1 = s->now.v1;
    const POINTDB &v2 = s->now.v2;
    const POINTDB &p1 = s->before.v1;
    const POINTDB &p2 = s->before.v2;
    const double l1 = Length(v1);
    const double l2 = Length(v2);
    const int isDouble = EqualWays(s->now) && !SameDirection(v1, v2, tolerance);
    pair->stepBack = 0;
    if (isDouble) {
        const POINTDB outward = Negative(inward);
        if (SameDirection(v1, outward, tolerance)) {
            *pair = {v1, v2, 0};
            return 1;
        }
        if (SameDirection(v2, outward, tolerance)) {
            *pair = {v2, v1, 0};
            return 1;
        }
    } else if (SameDirection(v1, p1, tolerance)) {
        return 0;
    }
    if (SameDirection(v2, p1, tolerance)) {
        *pair = {v2, v1, 0};
        return 1;
    }
    const double lp1 = Length(p1);
    const double lp2 = Length(p2);
    if (std::fabs(lp1 - lp2) < 2.0 && !SameDirection(p1, p2, tolerance))
        *pair = {p1, p2, 1};
    else if (std::fabs(lp1 - l1) < 2.0 && !SameDirection(p1, v1, tolerance))
        *pair = {p1, s->step + v1, 1};
    else if (std::fabs(lp1 - l2) < 2.0 && !SameDirection(p1, v2, tolerance))
        *pair = {p1, s->step + v2, 1};
    else
        *pair = {p1, {0, 0}, 1};
    return 1;
}

/* Goes inward from at until the surface turns to another side of the shape, at most as far as the bevel is wide. */
void RidgeSearch(const RENDER *render, const POINTDB &at, const POINTDB &inward, double tolerance, RIDGE *ridge)
{
    constexpr double stride = 0.2;
    const double width = render->width;
    double limit = width; /* the nearest ridge expected so far */
    RIDGE kept = {};      /* where that one was seen */
    RIDGESTEP s = {};
    s.before.v1 = inward * -0.1;
    PIXELAT previous = {};
    int hasPrevious = 0;
    *ridge = {};
    for (double t = 1;;) {
        const PIXELAT pixel = PixelAt(at + inward * t);
        if (!hasPrevious || !(pixel == previous)) {
            const int outside = !BufHasPixel(render->maskInfo, pixel.x, pixel.y);
            if (outside || (hasPrevious && MaskPixel(render, pixel) != maskInside)) {
                *ridge = kept;
                ridge->r = t * 0.5;
                return;
            }
            s.now = WaysAt(render, pixel);
            s.step = {0, 0};
            if (hasPrevious)
                s.step = POINTDB{static_cast<double>(pixel.x), static_cast<double>(pixel.y)} -
                         POINTDB{static_cast<double>(previous.x), static_cast<double>(previous.y)};
            RIDGEPAIR pair;
            if (FindRidge(&s, inward, tolerance, &pair)) {
                const double la = Length(pair.a);
                double q = RidgeDistance(pair.a, pair.b, la, Length(pair.b));
                if (!std::isfinite(q)) q = width;
                const RIDGE found = {q, Negative(pair.a), pair.stepBack && hasPrevious ? previous : pixel};
                if (limit == width && (q - la <= 3 || q >= width)) {
                    *ridge = found;
                    return;
                }
                if (limit == width || q < limit) {
                    limit = q;
                    kept = found;
                }
            }
            previous = pixel;
            hasPrevious = 1;
            s.before = s.now;
        }
        const int close = limit <= t + stride;
        if (close && limit >= width) {
            *ridge = kept;
            ridge->r = width;
            return;
        }
        if (close) t = limit;
        t += stride;
        if (limit < t) {
            *ridge = kept;
            ridge->r = t;
            return;
        }
    }
}

/* 1 when a section of this reach ends inside the shape, not beyond the ridge: nothing else lies much nearer to its end
 * than the section is long. */
int ReachFits(const RENDER *render, const POINTDB &at, const POINTDB &reach)
{
    constexpr double beyondRidge = 1.5;
    const PIXELAT pixel = PixelAt(at + reach);
    if (MaskPixel(render, pixel) == maskOutside) return 0;
    const double nearest = Length(WaysAt(render, pixel).v1);
    return nearest == 0 || Length(reach) <= nearest + beyondRidge;
}

/* 1 when the way back from the pixel at the end of a reach leads to where the section stands. */
int WayIsOwn(const RENDER *render, const POINTDB &at, const POINTDB &reach)
{
    constexpr double alike = 1.0; /* pixels */
    const PIXELAT pixel = PixelAt(at + reach);
    if (MaskPixel(render, pixel) != maskInside) return 0;
    const POINTDB centre = {pixel.x + 0.5, pixel.y + 0.5};
    return Length(centre + WaysAt(render, pixel).v1 - at) <= alike;
}

/* The directions of ways tell a ridge late where edges meet at a shallow angle, and early where pixels lie close to all
 * of them, as in the middle of a circle, or close to a tight bend. What they tell is settled by the ways themselves: a
 * reach beyond the ridge is cut, and one is drawn on as long as the way back from its end is the own one. */
void ReachSettle(const RENDER *render, const POINTDB &at, const POINTDB &inward, POINTDB *reach)
{
    constexpr double stride = 0.25;
    constexpr double closeBy = 2; /* up to there the ways of a tight bend may be anything */
    constexpr double toPixel = 0.75;
    const double r = Length(*reach);
    if (r >= 1 && !ReachFits(render, at, *reach)) {
        const POINTDB along = *reach * (1 / r);
        double t = 1;
        while (t < r && ReachFits(render, at, along * t)) t += stride;
        *reach = along * std::min(t, r);
        return;
    }
    const POINTDB along = r >= 1 ? *reach * (1 / r) : inward;
    const double start = r >= 1 ? r : closeBy - stride;
    double t = start;
    while (t + stride <= render->width && WayIsOwn(render, at, along * (t + stride))) t += stride;
    if (t - start <= 2 * toPixel) return; /* the ridge as it was found is better than that to a pixel */
    *reach = along * (t + stride > render->width ? render->width : t - toPixel);
}

/* Where the outline bends around a point in the middle of the shape, the ways from near that point lead anywhere, and
 * their directions tell nothing. Their lengths do: past the point, everything else is nearer than where the section
 * stands. radius is that of the outline's bend, larger than 0 when it bends towards the inside. 0 when something else
 * ends the section before. */
double CentreReach(const RENDER *render, const POINTDB &at, const POINTDB &inward, double radius)
{
    constexpr double stride = 0.5;
    constexpr double beyond = 0.75;
    constexpr double alike = 0.1; /* of the radius */
    const double longest = std::min(radius * (1 + alike) + 2, render->width);
    for (double t = std::max(1.0, radius * 0.5); t < longest; t += stride) {
        const PIXELAT pixel = PixelAt(at + inward * t);
        if (MaskPixel(render, pixel) != maskInside) return 0;
        const POINTDB own = POINTDB{pixel.x + 0.5, pixel.y + 0.5} - at;
        const double x = Length(own) - Length(WaysAt(render, pixel).v1);
        if (!(x > beyond)) continue;
        /* Seen from the bend's centre the pixel lies s farther inward and q beside the section: with all of the outline
         * one radius away, x = s + sqrt(s^2 + q^2). */
        const double along = Dot(own, inward);
        const double q2 = Dot(own, own) - along * along;
        const double reach = along - (x * x - q2) / (2 * x);
        return std::fabs(reach - radius) <= alike * radius ? std::min(reach, render->width) : 0;
    }
    return 0;
}

/* Shares the way between two ridge points out among the sections between their feet. *reach comes in as found at this
 * section alone. */
void MitreReach(const RENDER *render, const POINTDB &s, const RIDGE *ridge, double *r, POINTDB *reach, MITRE *mitre)
{
    const int same = mitre->reach.x == reach->x && mitre->reach.y == reach->y;
    const POINTDB a = same ? mitre->halfFoot : mitre->foot;
    const POINTDB b = same ? mitre->halfReach : mitre->reach;
    const POINTDB centre = {ridge->pixel.x + render->maskOrigin.x + 0.5, ridge->pixel.y + render->maskOrigin.y + 0.5};
    const POINTDB foot = centre - ridge->back;
    const POINTDB h = foot - a;
    double u = 1.0;
    if (std::fabs(h.x) >= 1e-5 || std::fabs(h.y) >= 1e-5) u = Dot(h, s - a) / Dot(h, h);
    const POINTDB from = a + b;
    const POINTDB way = foot + *reach - from;
    const POINTDB inner = from + way * u;
    if (foot.x != mitre->foot.x || foot.y != mitre->foot.y) {
        mitre->halfFoot = LerpPoint(mitre->foot, foot, 0.5);
        mitre->halfReach = LerpPoint(mitre->reach, *reach, 0.5);
        mitre->reach = *reach;
        mitre->foot = foot;
    }
    if (!ReachFits(render, s - render->maskOrigin, inner - s)) return; /* feet in disorder: as found here alone */
    *reach = inner - s;
    *r = Length(*reach);
    if (*r > render->width) {
        *reach = *reach * (render->width / *r);
        *r = render->width;
    }
}

/* Near the outline's ends the mask itself says where the shape ends: the bisector between the segment and what stops
 * the way inward. */
double NearReach(const RENDER *render, const POINTDB &segmentStart, const POINTDB &at, const POINTDB &inward)
{
    double t = 0.25;
    while (t <= 2 && !MaskBit(render, at + inward * t)) t += 0.1;
    const double la = Length(at - segmentStart);
    const double lb = Length(at + inward * t - segmentStart);
    return la + lb > 0 ? t * la / (la + lb) : 0;
}

/* From a corner that bends away from the inside the bevel runs as far as its edge, drawn on beyond the corner, is what
 * lies nearest. slope is the unit vector away from that edge. */
double FanReach(const RENDER *render, const POINTDB &at, const POINTDB &inward, const POINTDB &slope, double longest)
{
    constexpr double stride = 0.2;
    constexpr double nearer = 0.25; /* how much nearer another edge must be to count */
    double t = 2;                   /* up to there the corner itself is what lies nearest */
    for (; t < longest; t += stride) {
        const PIXELAT pixel = PixelAt(at + inward * t);
        if (MaskPixel(render, pixel) != maskInside) break;
        const POINTDB centre = {pixel.x + 0.5, pixel.y + 0.5};
        const POINTDB way = WaysAt(render, pixel).v1;
        const double length = Length(way);
        if (!(Dot(centre - at, slope) > length + nearer)) continue;
        /* Both distances change steadily along the section: back to where they are equal. */
        const POINTDB unit = way * (1 / length);
        const double rate = Dot(slope + unit, inward);
        if (rate > 0.1) t = std::clamp((length + Dot(centre - at, unit)) / rate, t - 1.5, t + 1.5);
        break;
    }
    return std::clamp(t, 0.0, longest);
}

} // namespace

int SameDirection(const POINTDB &a, const POINTDB &b, double tolerance)
{
    const int byX = std::fabs(a.x) >= std::fabs(a.y);
    const double majorA = byX ? a.x : a.y;
    const double majorB = byX ? b.x : b.y;
    if (majorA == 0 || majorB == 0 || (majorA > 0) != (majorB > 0)) return 0;
    const double slopeA = (byX ? a.y : a.x) / majorA;
    const double slopeB = (byX ? b.y : b.x) / majorB;
    return std::fabs(slopeA - slopeB) < tolerance;
}

double RidgeDistance(const POINTDB &a, const POINTDB &b, double la, double lb)
{
    if (la == 0 || lb == 0) return la;
    if (std::fabs(la - lb) < 0.1 && la > 5) return (la + lb) / 2;
    const double c = Dot(a, b) / (la * lb);
    return std::fabs(lb <= la ? (lb - la * c) / (1 - c) : (lb - la) / (1 - c) + la);
}

int InwardSide(const RENDER *render, const POINTDB &at, const POINTDB &normal, POINTDB *inward, int *isClear)
{
    const uint32_t far = MaskPixel(render, PixelAt(at + normal * 2));
    const uint32_t near = MaskPixel(render, PixelAt(at - normal * 2));
    *isClear = 1;
    if (far == maskOutside && near == maskInside) {
        *inward = Negative(normal);
        return 1;
    }
    if (far == maskInside && near == maskOutside) {
        *inward = normal;
        return 1;
    }
    *isClear = 0;
    const int plus = MaskBit(render, at + normal * 0.25);
    const int minus = MaskBit(render, at - normal * 0.25);
    if (plus == minus) return 0;
    *inward = plus ? Negative(normal) : normal;
    return 1;
}

void SectionAt(const RENDER *render, const POINTDB &segmentStart, const POINTDB &at, const POINTDB &tangent,
               double radius, double tolerance, int nearBend, MITRE *mitre, SECTION *section)
{
    *section = {at, {0, 0}, {0, 0}, {0, 0}};
    const POINTDB s = at + render->maskOrigin;
    const int first = !mitre->begun;
    if (first) *mitre = {s, {0, 0}, s, {0, 0}, 1};

    POINTDB normal;
    POINTDB other;
    OutlineNormals(tangent, &normal, &other);
    int isClear;
    if (render->width <= 0 || !InwardSide(render, at, normal, &section->inward, &isClear)) return;

    double r;
    RIDGE ridge = {};
    const int searched = render->surface && isClear && !nearBend;
    if (render->surface && nearBend) {
        r = FanReach(render, at, section->inward, section->inward, render->width);
    } else if (searched) {
        RidgeSearch(render, at, section->inward, tolerance, &ridge);
        r = ridge.r;
    } else if (render->surface) {
        r = NearReach(render, segmentStart, at, section->inward);
    } else {
        r = isClear ? 2 : 0;
    }
    if (!(r <= render->width)) r = render->width;
    if (first && r < 1) r = 0;
    section->reach = section->inward * r;
    if (first || nearBend || (searched && r == render->width))
        *mitre = {s, section->reach, s, section->reach, 1};
    else if (searched)
        MitreReach(render, s, &ridge, &r, &section->reach, mitre);
    if (!std::isfinite(r)) section->reach = {0, 0};
    const double centre = searched && radius > 0 ? CentreReach(render, at, section->inward, radius) : 0;
    if (centre > 0)
        section->reach = section->inward * centre;
    else if (searched)
        ReachSettle(render, at, section->inward, &section->reach);
}

void FanSection(const RENDER *render, const POINTDB &at, const POINTDB &inward, const POINTDB &edge, SECTION *section)
{
    POINTDB slope = {-edge.y, edge.x};
    double lean = Dot(slope, inward);
    if (lean < 0) {
        slope = Negative(slope);
        lean = -lean;
    }
    /* The bevel's width counts straight away from the edge. */
    const double longest = lean > 0 ? render->width / lean : 0;
    const double r = render->surface ? FanReach(render, at, inward, slope, longest) : 2;
    *section = {at, inward, inward * std::max(0.0, std::min(r, longest)), slope};
}

} // namespace zr32
