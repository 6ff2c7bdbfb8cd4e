/* plain_overlay.cpp - see plain_overlay.h. Written over whole arrays of samples, without the library's reader of
 * nodes, its stepper or its choice of pixels; needs coordinates that fit in an int. */
#include "plain_overlay.h"

#include <cmath>

namespace zr32test {

namespace {

struct P {
    double x, y;
};

struct SAMPLE {
    double x, y; /* position */
    long long t;
    bool vertical; /* main axis to plot by */
    double k;
};

P Placed(const COORDSTRUCT &view, const PATHNODE &n)
{
    const double z = view.zoom >= 0 ? view.zoom : 1.0 / std::fabs(static_cast<double>(view.zoom));
    return {(FixToDb(n.x) + 0.5) * z - view.scrollX, (FixToDb(n.y) + 0.5) * z - view.scrollY};
}

double Slope(double dx, double dy, bool vertical)
{
    if (vertical) return dy == 0 ? 0 : dx / dy;
    return dx == 0 ? 0 : dy / dx;
}

std::vector<SAMPLE> LineSamples(P a, P b)
{
    double dx = (b.x - a.x) * 0.125;
    double dy = (b.y - a.y) * 0.125;
    long long h = 8192;
    while ((std::fabs(dx) > 1 || std::fabs(dy) > 1) && h > 1) {
        dx /= 2;
        dy /= 2;
        h /= 2;
    }
    const bool vertical = std::fabs(dx) <= std::fabs(dy);
    std::vector<SAMPLE> samples;
    for (long long t = 0; t <= 65536; t += h) {
        samples.push_back({a.x, a.y, t, vertical, Slope(dx, dy, vertical)});
        a.x += dx;
        a.y += dy;
    }
    return samples;
}

struct AXISSTEP {
    double pos, d, dd, ddd;
};

AXISSTEP AxisStart(double p0, double p1, double p2, double p3)
{
    const double a = ((p1 - p2) - (p2 - p3)) * 24576;
    AXISSTEP s;
    s.ddd = (3 * (p1 - p2) + (p3 - p0)) * 6144;
    s.dd = a - 3 * s.ddd;
    s.d = ((p3 - p0) * 8192 + s.ddd) * 2 - 0.5 * s.dd - a;
    s.pos = p0 * 65536;
    return s;
}

void AxisHalve(AXISSTEP &s)
{
    s.ddd *= 0.125;
    s.dd = s.dd * 0.25 - s.ddd;
    s.d = s.d * 0.5 - s.dd * 0.5;
}

void AxisDouble(AXISSTEP &s)
{
    const double dd = s.dd;
    s.ddd *= 8;
    s.dd = dd * 4 + s.ddd * 0.5;
    s.d = s.d * 2 + dd;
}

std::vector<SAMPLE> CurveSamples(const P *p)
{
    AXISSTEP x = AxisStart(p[0].x, p[1].x, p[2].x, p[3].x);
    AXISSTEP y = AxisStart(p[0].y, p[1].y, p[2].y, p[3].y);
    long long h = 16384;
    long long t = 0;
    double markX = 0;
    double markY = 0;
    bool previous = true;
    std::vector<SAMPLE> samples;
    while (t <= 65536) {
        for (bool again = true; again;) {
            again = false;
            if ((std::fabs(x.d) > 64000 || std::fabs(y.d) > 64000) && h > 1) {
                AxisHalve(x);
                AxisHalve(y);
                h /= 2;
                again = true;
            } else if (std::fabs(x.d) < 32000 && std::fabs(y.d) < 32000 && (x.d != markX || y.d != markY)) {
                AxisDouble(x);
                AxisDouble(y);
                h *= 2;
                again = true;
            }
            if (again) {
                markX = x.d;
                markY = y.d;
            }
        }
        const bool vertical = std::fabs(x.d) <= std::fabs(y.d);
        const bool inside = t > 0 && t < 65536;
        const bool used = inside && vertical != previous ? previous : vertical;
        previous = vertical;
        samples.push_back({x.pos / 65536, y.pos / 65536, t, used, Slope(x.d, y.d, used)});
        for (AXISSTEP *s : {&x, &y}) {
            s->pos += s->d;
            s->d += s->dd;
            s->dd += s->ddd;
        }
        t += h;
    }
    return samples;
}

void Split(double v, int *pixel, double *fraction)
{
    double whole;
    *fraction = std::modf(v, &whole);
    *pixel = static_cast<int>(whole);
    if (*fraction < 0) {
        *fraction += 1;
        *pixel = -1;
    }
}

void Plot(const P *p, int count, int sign, PLAINPLANE *plane)
{
    double low[2] = {p[0].x, p[0].y};
    double high[2] = {p[0].x, p[0].y};
    for (int i = 1; i < count; i++) {
        low[0] = std::fmin(low[0], p[i].x);
        low[1] = std::fmin(low[1], p[i].y);
        high[0] = std::fmax(high[0], p[i].x);
        high[1] = std::fmax(high[1], p[i].y);
    }
    const int left = std::max(static_cast<int>(low[0]) - 1, 0);
    const int top = std::max(static_cast<int>(low[1]) - 1, 0);
    const int right = std::min(static_cast<int>(high[0]) + 1, plane->width);
    const int bottom = std::min(static_cast<int>(high[1]) + 1, plane->height);
    if (left >= right || top >= bottom) return;

    int lastX = 0;
    int lastY = 0;
    const auto touch = [&](int x, int y) {
        if (x < left || x >= right || y < top || y >= bottom) return;
        const size_t index = static_cast<size_t>(y) * static_cast<size_t>(plane->width) + static_cast<size_t>(x);
        plane->bytes[index] = static_cast<uint8_t>(plane->bytes[index] + sign);
        lastX = x;
        lastY = y;
    };
    for (const SAMPLE &s : count == 2 ? LineSamples(p[0], p[1]) : CurveSamples(p)) {
        if (count == 4 && (s.x < low[0] - 1 || s.x > high[0] + 1 || s.y < low[1] - 1 || s.y > high[1] + 1)) continue;
        int px;
        int py;
        double fx;
        double fy;
        Split(s.x, &px, &fx);
        Split(s.y, &py, &fy);
        if (s.t == 0) lastX = lastY = px + 5;
        if (s.t == 65536) {
            if (px == lastX && py == lastY) break;
            if (std::abs(px - lastX) < 2 && std::abs(py - lastY) < 2) {
                touch(px, py);
                break;
            }
        }
        const double d = s.vertical ? (fx - 0.5) + (0.5 - fy) * s.k : (fy - 0.5) + (0.5 - fx) * s.k;
        const int c = static_cast<int>(static_cast<long long>(std::fabs(d) * 255) & 255);
        const int threshold = count == 2 && d <= 0 ? 128 : 127;
        if (255 - c <= threshold) (s.vertical ? px : py) += d > 0 ? 1 : -1;
        if (px != lastX || py != lastY) touch(px, py);
    }
    if (!plane->any) {
        plane->any = true;
        plane->left = left;
        plane->top = top;
        plane->right = right;
        plane->bottom = bottom;
    } else {
        plane->left = std::min(plane->left, left);
        plane->top = std::min(plane->top, top);
        plane->right = std::max(plane->right, right);
        plane->bottom = std::max(plane->bottom, bottom);
    }
}

} // namespace

PLAINPLANE PlainPlane(const COORDSTRUCT &view)
{
    const int width = view.right - view.left;
    const int height = view.bottom - view.top;
    return {width, height, std::vector<uint8_t>(static_cast<size_t>(width) * static_cast<size_t>(height)), false, 0, 0,
            0,     0};
}

void PlainOutline(const PATHREC *path, const COORDSTRUCT &view, int mode, PLAINPLANE *plane)
{
    const PATHNODE *n = path->nodes;
    const uint32_t count = path->nodeCount;
    const bool chosen = path->flags == 0x88000000u && (mode == 1 || mode == 3);
    const int sign = mode == 0 || mode == 3 ? 1 : -1;
    const auto marked = [&](uint32_t i) { return (n[i].type & 0x8000) != 0; };
    const bool endMarked =
        count > 0 && (marked(count - 1) || (count >= 3 && (n[count - 1].type & 0xffe) == 4 && marked(count - 3)));
    P current = {0, 0};
    bool following = false;
    for (uint32_t i = 0; i < count;) {
        const int kind = n[i].type & 0xffe;
        if (kind == 6) {
            current = Placed(view, n[i++]);
        } else if (kind == 0x200) {
            i += 1;
        } else if (kind == 0x100 || kind == 0x400) {
            i += 2;
        } else if (kind == 2) {
            const P end = Placed(view, n[i]);
            bool step = true;
            if (chosen) {
                if (!following && !marked(i)) step = i == 1 ? endMarked : i > 0 && (n[i - 1].type & 0x8ffe) == 0x8004;
                if (step) following = marked(i) && !following;
            }
            const P points[2] = {current, end};
            if (step && (current.x != end.x || current.y != end.y)) Plot(points, 2, sign, plane);
            current = end;
            i += 1;
        } else if (kind == 4 && i + 2 < count) {
            const P points[4] = {current, Placed(view, n[i]), Placed(view, n[i + 1]), Placed(view, n[i + 2])};
            bool step = true;
            if (chosen) {
                if (!following && !marked(i)) step = marked(i + 2) || (i == 1 && endMarked);
                if (step) following = marked(i) && !following;
            }
            if (step) Plot(points, 4, sign, plane);
            current = points[3];
            i += 3;
        } else {
            return;
        }
    }
}

} // namespace zr32test
