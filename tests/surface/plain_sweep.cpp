/* plain_sweep.cpp - the sweeps in their plainest form, see plain_sweep.h. */
#include "surface/plain_sweep.h"

#include <cmath>

namespace zr32test {

namespace {

struct VEC {
    double x, y;
};

struct END {
    VEC rayEnd, tangent, foot, back;
};

struct STATE {
    PLAINPASS pass;
    PLAINMASK mask;
    PLAINMAP *map;
    double reach, rayStart, dx, dy;
    double rayStep;
    VEC p, t, n1, n2, n;
    VEC lastEnd;
    int fanning, isolated;
    int64_t u;
    END e, s, f;
    uint32_t index;
    bool last, curve;
};

int Byte(const STATE &st, double x, double y)
{
    const int px = static_cast<int>(x);
    const int py = static_cast<int>(y);
    if (px < 0 || py < 0 || px >= st.mask.width || py >= st.mask.height) return 0;
    return st.mask.bytes[py * st.mask.width + px];
}

int16_t Word(double v)
{
    return static_cast<int16_t>(static_cast<int>(v * 256));
}

void Normals(VEC t, VEC *n1, VEC *n2)
{
    if (t.x == 0) {
        *n1 = {1, 0};
        *n2 = {-1, 0};
    } else if (t.y == 0) {
        *n1 = {0, 1};
        *n2 = {0, -1};
    } else {
        const double q = -t.x / t.y;
        const double length = std::sqrt(1 + q * q);
        *n1 = {1 / length, q / length};
        *n2 = {-n1->x, -n1->y};
    }
}

double Weigh(int byte)
{
    if (byte == 0) return 1.0;
    if (byte < 0x80) return 0.1;
    return 0;
}

void SideOnLine(STATE &st, int64_t step)
{
    const int a = Byte(st, st.p.x + 1.5 * st.n1.x, st.p.y + 1.5 * st.n1.y);
    const int b = Byte(st, st.p.x + 1.5 * st.n2.x, st.p.y + 1.5 * st.n2.y);
    st.isolated = !a && !b;
    if (a == 0) {
        st.n = st.n2;
    } else if (b == 0) {
        st.n = st.n1;
    } else if (st.u == 0) {
        int n = static_cast<int>(5.0 / std::sqrt(st.t.x * st.t.x + st.t.y * st.t.y));
        if (0x2000 / step > n) n = static_cast<int>(0x2000 / step);
        double s1 = 0, s2 = 0;
        for (int i = 0; i < n; i++) {
            s1 += Weigh(Byte(st, st.p.x + i * st.t.x + 1.5 * st.n1.x, st.p.y + i * st.t.y + 1.5 * st.n1.y));
            s2 += Weigh(Byte(st, st.p.x + i * st.t.x + 1.5 * st.n2.x, st.p.y + i * st.t.y + 1.5 * st.n2.y));
        }
        if (s1 == 0 && s2 == 0) {
            for (int i = 0; i < n; i++) {
                if (!Byte(st, st.p.x + i * st.t.x + st.n1.x, st.p.y + i * st.t.y + st.n1.y)) s1 += 1;
                if (!Byte(st, st.p.x + i * st.t.x + st.n2.x, st.p.y + i * st.t.y + st.n2.y)) s2 += 1;
            }
        }
        st.n = s1 <= s2 ? st.n1 : st.n2;
    }
}

void SideOnCurve(STATE &st, bool probe, VEC pos, VEC d1, VEC d2, VEC d3, int64_t step)
{
    const int a = Byte(st, st.p.x + 1.5 * st.n1.x, st.p.y + 1.5 * st.n1.y);
    const int b = Byte(st, st.p.x + 1.5 * st.n2.x, st.p.y + 1.5 * st.n2.y);
    st.isolated = !a && !b;
    if (a == 0) {
        st.n = st.n2;
        return;
    }
    if (b == 0) {
        st.n = st.n1;
        return;
    }
    if (probe || st.u != 0) {
        st.n = st.n2.x * st.n.x + st.n2.y * st.n.y > 0 ? st.n2 : st.n1;
        return;
    }
    const double length = std::sqrt(st.t.x * st.t.x + st.t.y * st.t.y);
    int64_t n = 0x10000 / step;
    if (length == 0) {
        if (st.pass == PLAIN_MITRE) n = 0;
    } else if (static_cast<int>(5.0 / length) < n) {
        n = static_cast<int>(5.0 / length);
    }
    double score[2] = {0, 0};
    for (int walk = 0; walk < 2; walk++) {
        VEC q = {pos.x / 65536, pos.y / 65536};
        VEC c1 = {d1.x / 65536, d1.y / 65536};
        VEC c2 = {d2.x / 65536, d2.y / 65536};
        const VEC c3 = {d3.x / 65536, d3.y / 65536};
        for (int64_t i = 0; i < n; i++) {
            VEC m;
            VEC unused;
            Normals(c1, &m, &unused);
            if (walk == 1) {
                if (c1.x == 0)
                    m = {-1, 0};
                else if (c1.y == 0)
                    m = {0, -1};
                else
                    m = {-st.n1.x, -st.n1.y};
            }
            score[walk] += Weigh(Byte(st, q.x + 1.5 * m.x, q.y + 1.5 * m.y));
            q = {q.x + c1.x, q.y + c1.y};
            c1 = {c1.x + c2.x, c1.y + c2.y};
            c2 = {c2.x + c3.x, c2.y + c3.y};
        }
    }
    st.n = score[0] <= score[1] ? st.n1 : st.n2;
}

bool Near(double ax, double ay, VEC v, double tolerance)
{
    return std::fabs(ax - v.x) < tolerance && std::fabs(ay - v.y) < tolerance;
}

void Least(PLAINPIXEL *pixel, double d)
{
    if (pixel->dist == 0 || pixel->dist > d) pixel->dist = static_cast<float>(d);
}

VEC Offset(VEC q, int px, int py, VEC foot, VEC n)
{
    const VEC f = {px - q.x + 0.5, py - q.y + 0.5};
    if (f.x == 0 && f.y == 0) return {foot.x - q.x, foot.y - q.y};
    const double fn = f.x * n.x + f.y * n.y;
    return {foot.x - q.x - n.x * fn, foot.y - q.y - n.y * fn};
}

void Cast(STATE &st)
{
    int lastX = 0xffffff;
    int lastY = 0xffffff;
    const bool envelope = st.pass == PLAIN_ENVELOPE;
    const int width = envelope ? st.mask.width : st.map->width;
    const int height = envelope ? st.mask.height : st.map->height;
    VEC q = st.lastEnd;
    for (double t = st.rayStart; t <= st.reach; t += st.rayStep) {
        q = {st.p.x + t * st.n.x, st.p.y + t * st.n.y};
        const int px = static_cast<int>(q.x);
        const int py = static_cast<int>(q.y);
        if (px <= 0 || px >= width || py <= 0 || py >= height || (px == lastX && py == lastY)) continue;
        lastX = px;
        lastY = py;
        const int mx = static_cast<int>(q.x - st.dx);
        const int my = static_cast<int>(q.y - st.dy);
        if (mx <= 0 || mx >= st.map->width || my <= 0 || my >= st.map->height) continue;
        PLAINPIXEL *pixel = &st.map->pixels[static_cast<size_t>(my * st.map->width + mx)];
        if (t <= 0) {
            const int byte = Byte(st, px, py);
            if (t == -1 && byte > 0x80) continue;
            if (t == -0.5 && byte > 0xf0) continue;
            pixel->dist = 0.0001F;
            const double ax = pixel->x1 / 256.0;
            const double ay = pixel->y1 / 256.0;
            if ((pixel->x1 == 0 && pixel->y1 == 0) || std::sqrt(ax * ax + ay * ay) >= 1.5) {
                pixel->x1 = static_cast<int16_t>(static_cast<int>(st.n.x * -128));
                pixel->y1 = static_cast<int16_t>(static_cast<int>(st.n.y * -128));
                pixel->x2 = pixel->y2 = 0;
            }
            continue;
        }
        const VEC v = Offset(q, px, py, st.p, st.n);
        const double d = v.x * v.x + v.y * v.y;
        Least(pixel, d);
        const VEC a = {pixel->x1 / 256.0, pixel->y1 / 256.0};
        if (pixel->x1 == 0 && pixel->y1 == 0) {
            pixel->x1 = Word(v.x);
            pixel->y1 = Word(v.y);
            continue;
        }
        if (Near(a.x, a.y, v, st.curve ? 0.5 : 0.1)) continue;
        if (st.curve && (pixel->x2 != 0 || pixel->y2 != 0) &&
            Near(static_cast<uint16_t>(pixel->x2) / 256.0, static_cast<uint16_t>(pixel->y2) / 256.0, v, 0.5))
            continue;
        const double aa = a.x * a.x + a.y * a.y;
        if (aa < d && std::sqrt(d) - std::sqrt(aa) < 1.0) {
            pixel->x2 = Word(v.x);
            pixel->y2 = Word(v.y);
        } else if (!(aa < d)) {
            pixel->x2 = pixel->x1;
            pixel->y2 = pixel->y1;
            pixel->x1 = Word(v.x);
            pixel->y1 = Word(v.y);
        }
    }
    if (st.curve) st.lastEnd = q;
}

void MitrePixel(PLAINPIXEL *pixel, VEC v, double d, double left)
{
    Least(pixel, d);
    if (pixel->x1 == 0 && pixel->y1 == 0) {
        pixel->x1 = Word(v.x);
        pixel->y1 = Word(v.y);
        return;
    }
    int16_t wx = pixel->x1;
    int16_t wy = pixel->y1;
    for (int pass = 0; pass < 2; pass++) {
        const VEC c = {wx / 256.0, wy / 256.0};
        const double q = c.x * c.x + c.y * c.y;
        const double e = std::sqrt(q) - std::sqrt(d);
        bool keep = false;
        bool replace = false;
        if (Near(c.x, c.y, v, 0.1)) return;
        if (left > 1.4) {
            if (q < d && std::sqrt(d) - std::sqrt(q) < 1.0)
                keep = true;
            else if (q < d)
                return;
            else
                replace = true;
        } else if (e > 0 && e < 1.4) {
            keep = true;
        } else if (e > -1.4 && e <= 0) {
            replace = true;
        } else if (q < d) {
            return;
        } else if (pass == 0 && (pixel->x2 != 0 || pixel->y2 != 0)) {
            wx = pixel->x2;
            wy = pixel->y2;
            continue;
        } else {
            replace = true;
        }
        if (keep) {
            pixel->x1 = wx;
            pixel->y1 = wy;
            pixel->x2 = Word(v.x);
            pixel->y2 = Word(v.y);
        }
        if (replace) {
            pixel->x2 = wx;
            pixel->y2 = wy;
            pixel->x1 = Word(v.x);
            pixel->y1 = Word(v.y);
        }
        return;
    }
}

void Fan(STATE &st, END *r, double c)
{
    for (int i = 1; i <= c; i++) {
        const VEC b = {r->rayEnd.x + i * r->tangent.x, r->rayEnd.y + i * r->tangent.y};
        r->foot = {r->foot.x + r->tangent.x, r->foot.y + r->tangent.y};
        const double tMax = (c - i) / c * st.reach;
        int lastX = 0xffffff;
        int lastY = 0xffffff;
        double t = 0;
        while (!(tMax < 0)) {
            const VEC q = {b.x + t * r->back.x, b.y + t * r->back.y};
            const int px = static_cast<int>(q.x);
            const int py = static_cast<int>(q.y);
            if (!(px <= 0 || px >= st.map->width || py <= 0 || py >= st.map->height || (px == lastX && py == lastY))) {
                lastX = px;
                lastY = py;
                const VEC v = Offset(q, px, py, r->foot, r->back);
                MitrePixel(&st.map->pixels[static_cast<size_t>(py * st.map->width + px)], v, v.x * v.x + v.y * v.y,
                           tMax - t);
            }
            if (t >= tMax) break;
            t += 0.5;
            if (t > tMax) t = tMax;
        }
    }
}

void Corner(STATE &st)
{
    END &e = st.e;
    END &s = st.s;
    if (e.foot.x != s.foot.x || e.foot.y != s.foot.y) return;
    const double c = e.tangent.y * s.tangent.x - s.tangent.y * e.tangent.x;
    if (c == 0) return;
    const VEC d = {s.rayEnd.x - e.rayEnd.x, s.rayEnd.y - e.rayEnd.y};
    const double b = (d.y * e.tangent.x - d.x * e.tangent.y) / c;
    const double a = (d.y * s.tangent.x - d.x * s.tangent.y) / c;
    if (!(a > 0 && b > 0)) return;
    Fan(st, &e, a);
    Fan(st, &s, b);
}

void Use(STATE &st)
{
    if (st.pass != PLAIN_MITRE) {
        Cast(st);
        return;
    }
    if (st.isolated) return;
    const VEC end = {st.p.x + st.reach * st.n.x, st.p.y + st.reach * st.n.y};
    if (st.u == 0x10000) {
        st.e = {end, st.t, st.p, {-st.n.x, -st.n.y}};
        if (st.last) {
            st.s = st.f;
            Corner(st);
        }
    } else if (st.u == 0) {
        st.s = {end, {-st.t.x, -st.t.y}, st.p, {-st.n.x, -st.n.y}};
        if (st.index == 1) st.f = st.s;
        Corner(st);
    }
}

void Line(STATE &st, VEC from, VEC to)
{
    if (from.x == to.x && from.y == to.y) return;
    st.curve = false;
    st.t = {(to.x - from.x) * 0.125, (to.y - from.y) * 0.125};
    int64_t step = 0x2000;
    if (st.pass == PLAIN_MITRE)
        while (std::fabs(st.t.x) < 0.01 && std::fabs(st.t.y) < 0.01) st.t = {st.t.x * 10, st.t.y * 10};
    while (std::fabs(st.t.x) > 1.0 || std::fabs(st.t.y) > 1.0) {
        st.t = {st.t.x / 2, st.t.y / 2};
        step /= 2;
    }
    Normals(st.t, &st.n1, &st.n2);
    if (st.t.x != 0 && st.t.y != 0) {
        st.t = {st.t.x / 2, st.t.y / 2};
        step /= 2;
        st.rayStep = 0.5;
    }
    st.p = from;
    for (st.u = 0; st.u <= 0x10000; st.u += step) {
        SideOnLine(st, step);
        Use(st);
        st.p = {st.p.x + st.t.x, st.p.y + st.t.y};
    }
}

struct DIFF {
    VEC pos, d1, d2, d3, lastHalved;
    int64_t u, step;
};

void Halve(DIFF &c)
{
    c.d3 = {c.d3.x * 0.125, c.d3.y * 0.125};
    c.d2 = {c.d2.x * 0.25 - c.d3.x, c.d2.y * 0.25 - c.d3.y};
    c.step >>= 1;
    c.d1 = {c.d1.x * 0.5 - c.d2.x * 0.5, c.d1.y * 0.5 - c.d2.y * 0.5};
    c.lastHalved = c.d1;
}

void Double(DIFF &c)
{
    c.d3 = {c.d3.x * 8, c.d3.y * 8};
    c.step <<= 1;
    c.d1 = {c.d1.x * 2 + c.d2.x, c.d1.y * 2 + c.d2.y};
    c.d2 = {c.d2.x * 4 + c.d3.x * 0.5, c.d2.y * 4 + c.d3.y * 0.5};
}

void Advance(DIFF &c)
{
    c.pos = {c.pos.x + c.d1.x, c.pos.y + c.d1.y};
    c.d1 = {c.d1.x + c.d2.x, c.d1.y + c.d2.y};
    c.d2 = {c.d2.x + c.d3.x, c.d2.y + c.d3.y};
    c.u += c.step;
}

void ToEnd(DIFF &c, VEC p3)
{
    c.d2 = {c.d2.x - c.d3.x, c.d2.y - c.d3.y};
    c.d1 = {c.pos.x - (c.d1.x - c.d2.x), c.pos.y - (c.d1.y - c.d2.y)};
    c.pos = {p3.x * 65536, p3.y * 65536};
    c.d1 = {c.pos.x - c.d1.x, c.pos.y - c.d1.y};
    c.u = 0x10000;
    c.step = 0;
}

void Sample(STATE &st, const DIFF &c, bool probe)
{
    st.u = c.u;
    st.t = {c.d1.x / 65536, c.d1.y / 65536};
    st.p = {c.pos.x / 65536, c.pos.y / 65536};
    Normals(st.t, &st.n1, &st.n2);
    if (st.t.x != 0 && st.t.y != 0) st.rayStep = 0.5;
    SideOnCurve(st, probe, c.pos, c.d1, c.d2, c.d3, c.step);
}

void Curve(STATE &st, const VEC *p)
{
    st.curve = true;
    const auto axis = [](double p0, double p1, double p2, double p3, double *d1, double *d2, double *d3) {
        *d3 = ((p3 - p0) + 3 * (p1 - p2)) * 6144;
        const double e = ((p1 - p2) - (p2 - p3)) * 24576;
        *d2 = e - 3 * *d3;
        *d1 = ((p3 - p0) * 8192 + *d3) * 2 - *d2 * 0.5 - e;
    };
    DIFF c;
    axis(p[0].x, p[1].x, p[2].x, p[3].x, &c.d1.x, &c.d2.x, &c.d3.x);
    axis(p[0].y, p[1].y, p[2].y, p[3].y, &c.d1.y, &c.d2.y, &c.d3.y);
    c.pos = {p[0].x * 65536, p[0].y * 65536};
    c.u = 0;
    c.step = 0x4000;
    c.lastHalved = {p[3].x - p[0].x, p[3].y - p[0].y};
    const auto above = [&c] { return std::fabs(c.d1.x) > 40000 || std::fabs(c.d1.y) > 40000; };
    const auto below = [&c](double limit) { return std::fabs(c.d1.x) < limit && std::fabs(c.d1.y) < limit; };
    const auto same = [&c] { return c.d1.x == c.lastHalved.x && c.d1.y == c.lastHalved.y; };

    if (st.pass == PLAIN_MITRE) {
        while (c.u <= 0x10000) {
            if (above()) {
                Halve(c);
            } else if (!below(20000) || same()) {
                Sample(st, c, false);
                Use(st);
                if (c.u == 0x10000) return;
                Advance(c);
                if (c.u > 0x10000) {
                    ToEnd(c, p[3]);
                    Sample(st, c, false);
                    Use(st);
                    return;
                }
            } else {
                Double(c);
            }
        }
        return;
    }

    bool started = false;
turn:
    if (c.u > 0x10000) return;
    if ((c.u != 0 || started) && below(40000)) goto five;
two:
    if (above()) {
        Halve(c);
        goto turn;
    }
    if (below(20000)) goto seven;
    goto eight;
five:
    Sample(st, c, true);
    if (!st.fanning || (c.u == 0 && !started) || c.step < 2) goto two;
    {
        VEC end = {st.p.x + st.n.x * st.reach, st.p.y + st.n.y * st.reach};
        if (started) end = {end.x + st.t.x, end.y + st.t.y};
        if (std::fabs(end.x - st.lastEnd.x) > 0.5 || std::fabs(end.y - st.lastEnd.y) > 0.5) {
            Halve(c);
            goto turn;
        }
    }
seven:
    if (same()) goto eight;
    Double(c);
    goto five;
eight:
    Sample(st, c, false);
    if (!started) {
        started = true;
        if ((c.d1.x + c.d2.x) * st.n.x + (c.d1.y + c.d2.y) * st.n.y < 0) goto five;
    }
    Use(st);
    if (c.u == 0x10000) return;
    Advance(c);
    if (c.u <= 0x10000) {
        st.fanning = c.d1.x * st.n.x + c.d1.y * st.n.y < 0;
        goto turn;
    }
    ToEnd(c, p[3]);
    goto eight;
}

} // namespace

void PlainSweep(PLAINPASS pass, const std::vector<const PATHREC *> &records, double width, double rayStart,
                const PLAINMASK &mask, int maskX, int maskY, int mapX, int mapY, double zoom, PLAINMAP *map)
{
    STATE st = {};
    st.pass = pass;
    st.mask = mask;
    st.map = map;
    st.reach = width + 1.0;
    st.rayStart = rayStart;
    st.dx = mapX - maskX;
    st.dy = mapY - maskY;
    st.e.foot = st.f.foot = {-300, -300};
    for (const PATHREC *record : records) {
        st.rayStep = 1.0;
        VEC cur = {0, 0};
        const auto point = [&](uint32_t i) {
            return VEC{record->nodes[i].x / 65536.0 * zoom - maskX + 0.5,
                       record->nodes[i].y / 65536.0 * zoom - maskY + 0.5};
        };
        for (uint32_t i = 0; i < record->nodeCount;) {
            st.index = i;
            switch (record->nodes[i].type & 0xffe) {
            case 6:
                cur = point(i);
                i++;
                break;
            case 2:
                st.last = i + 1 == record->nodeCount;
                Line(st, cur, point(i));
                cur = point(i);
                i++;
                break;
            case 4: {
                if (i + 3 > record->nodeCount) {
                    i = record->nodeCount;
                    break;
                }
                st.last = i + 3 == record->nodeCount;
                const VEC p[4] = {cur, point(i), point(i + 1), point(i + 2)};
                Curve(st, p);
                cur = p[3];
                i += 3;
                break;
            }
            case 0x100:
            case 0x400: i += 2; break;
            case 0x200: i++; break;
            default: i = record->nodeCount;
            }
        }
    }
}

} // namespace zr32test
