/* plain_plot.cpp - the outline plotters in their plainest form, see plain_plot.h. */
#include "raster/plain_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zr32test {

namespace {

struct PT {
    double x, y;
};

struct PLANES {
    PATHBUF mask, directions;
    int width, height;
    bool smooth;
    int lastX, lastY; /* plotted */
};

/* How a sample's line lies: along y or along x, at which slope, with which code. */
struct WAY {
    bool alongY;
    double slope;
    int code;
    bool straight;
};

uint8_t *PixelOf(PATHBUF plane, const PLANES &planes, int x, int y)
{
    return x < 0 || y < 0 || x >= planes.width || y >= planes.height ? nullptr : plane + y * planes.width + x;
}

void Merge(const PLANES &planes, int x, int y, int code)
{
    uint8_t *at = PixelOf(planes.directions, planes, x, y);
    if (!at) return;
    if (*at == 0)
        *at = static_cast<uint8_t>(code);
    else if (*at == 0x80)
        *at = code == 0xC0 ? 0xF0 : 0x80;
    else if (*at == 0xC0)
        *at = code == 0x80 ? 0xF0 : 0xC0;
    else
        *at = 0xF0;
}

void Raise(const PLANES &planes, int x, int y, int value)
{
    uint8_t *at = PixelOf(planes.mask, planes, x, y);
    if (at) *at = static_cast<uint8_t>(std::max<int>(*at, value));
}

/* The last sample of a segment is whole, at parameter 65536. */
void Sample(PT p, int t, const WAY &way, PLANES *planes)
{
    const int px = static_cast<int>(p.x), py = static_cast<int>(p.y);
    const double fx = p.x - px, fy = p.y - py;
    const bool again = px == planes->lastX && py == planes->lastY;
    if (t == 0 && again) Merge(*planes, px, py, way.code);
    if (t == 65536 && again) return;
    const double s = way.alongY ? (fx - 0.5) + (0.5 - fy) * way.slope : (fy - 0.5) + (0.5 - fx) * way.slope;
    const int side = s <= 0 ? -1 : 1;
    const int nx = px + (way.alongY ? side : 0), ny = py + (way.alongY ? 0 : side);
    const int c = static_cast<int>(std::fabs(s) * 255) & 255;
    bool neighbour = 255 - c < (way.straight && s <= 0 ? 129 : 128);
    if (t == 65536 && std::abs(px - planes->lastX) < 2 && std::abs(py - planes->lastY) < 2) neighbour = false;
    const int wx = neighbour ? nx : px, wy = neighbour ? ny : py;
    if (planes->smooth) {
        Raise(*planes, px, py, 255 - c);
        Raise(*planes, nx, ny, c);
    } else {
        Raise(*planes, wx, wy, 255);
    }
    if (wx == planes->lastX && wy == planes->lastY) return;
    planes->lastX = wx;
    planes->lastY = wy;
    Merge(*planes, wx, wy, way.code);
}

int Code(double dy)
{
    return dy > 0 ? 0x80 : dy < 0 ? 0xC0 : 0xF0;
}

double Slope(double over, double under)
{
    return under == 0 ? 0 : over / under;
}

void Line(PT a, PT b, PLANES *planes)
{
    if (a.x == b.x && a.y == b.y) return;
    double dx = (b.x - a.x) * 0.125, dy = (b.y - a.y) * 0.125;
    int h = 0x2000;
    while (std::fabs(dx) > 1 || std::fabs(dy) > 1) {
        dx /= 2;
        dy /= 2;
        h >>= 1;
    }
    const bool alongY = std::fabs(dx) <= std::fabs(dy);
    const WAY way = {alongY, alongY ? dx / dy : dy / dx, Code(dy), true};
    for (int t = 0; t <= 65536; t += h) {
        Sample(a, t, way, planes);
        a = {a.x + dx, a.y + dy};
    }
}

struct AXIS {
    double pos, d, dd, ddd;
};

AXIS AxisOf(double p0, double p1, double p2, double p3)
{
    AXIS axis;
    const double a = ((p1 - p2) - (p2 - p3)) * 24576;
    axis.ddd = (3 * (p1 - p2) + (p3 - p0)) * 6144;
    axis.dd = a - 3 * axis.ddd;
    axis.d = ((p3 - p0) * 8192 + axis.ddd) * 2 - 0.5 * axis.dd - a;
    axis.pos = p0 * 65536;
    return axis;
}

void Halve(AXIS *axis)
{
    axis->ddd *= 0.125;
    axis->dd = axis->dd * 0.25 - axis->ddd;
    axis->d = axis->d * 0.5 + axis->dd * -0.5;
}

void Double(AXIS *axis)
{
    axis->d = 2 * axis->d + axis->dd;
    axis->dd = 4 * axis->dd + 4 * axis->ddd;
    axis->ddd *= 8;
}

void Advance(AXIS *axis)
{
    axis->pos += axis->d;
    axis->d += axis->dd;
    axis->dd += axis->ddd;
}

void Curve(const PT *p, PLANES *planes)
{
    AXIS x = AxisOf(p[0].x, p[1].x, p[2].x, p[3].x), y = AxisOf(p[0].y, p[1].y, p[2].y, p[3].y);
    const double longest = planes->smooth ? 0.9 * 65536 : 60000;
    int64_t t = 0, h = 16384;
    bool before = true;
    for (;;) {
        for (; std::fabs(x.d) > longest || std::fabs(y.d) > longest; h >>= 1) {
            Halve(&x);
            Halve(&y);
        }
        const bool now = std::fabs(x.d) <= std::fabs(y.d);
        /* After a change of the main axis one sample still goes by the old one. */
        const bool alongY = t == 0 || t == 65536 ? now : before;
        before = now;
        const double slope = alongY ? Slope(x.d, y.d) : Slope(y.d, x.d);
        Sample({x.pos * 1.52587890625e-05, y.pos * 1.52587890625e-05}, static_cast<int>(t),
               {alongY, slope, Code(y.d), false}, planes);
        if (t == 65536) return;
        const bool isShort = planes->smooth && std::fabs(x.d) < 0.4 * 65536 && std::fabs(y.d) < 0.4 * 65536;
        Advance(&x);
        Advance(&y);
        t += h;
        if (isShort) {
            Double(&x);
            Double(&y);
            h *= 2;
        }
        if (t > 65536) {
            x.pos = p[3].x * 65536;
            y.pos = p[3].y * 65536;
            t = 65536;
        }
    }
}

/* Half of an ellipse at a parameter from 0 to 65536, from its centre: a conic with the half axes a and b. */
PT OnConic(PT a, PT b, int64_t t)
{
    const double u = static_cast<double>(t) / 65536;
    const double x = 32768 * (1 - 2 * u), y = 32768 * (2 * u - 2 * u * u), w = 32768 * (1 - 2 * u + 2 * u * u);
    return {(a.x * x + b.x * y) * (1 / w), (a.y * x + b.y * y) * (1 / w)};
}

/* Both halves in turn; each knows the pixel that it has plotted last. */
void Ellipse(PT current, PT corner, double rotation, bool reversed, PLANES *planes)
{
    const PT c = {(current.x + corner.x) * 0.5, (current.y + corner.y) * 0.5};
    const double rx = corner.x - c.x, ry = corner.y - c.y;
    const PT a = {rx * std::cos(rotation), -rx * std::sin(rotation)};
    PT b = {ry * std::sin(rotation), ry * std::cos(rotation)};
    if (reversed) b = {-b.x, -b.y};
    PLANES other = *planes;
    bool before = true;
    int64_t h = 16384;
    for (int64_t t = 0; t <= 65536; t += h) {
        const PT p = OnConic(a, b, t);
        const auto move = [&] {
            const PT next = OnConic(a, b, t + h);
            return PT{next.x - p.x, next.y - p.y};
        };
        const auto isLong = [](PT m) { return std::fabs(m.x) > 0.9 || std::fabs(m.y) > 0.9; };
        const auto isShort = [](PT m) { return std::fabs(m.x) < 0.4 && std::fabs(m.y) < 0.4; };
        const bool halved = isLong(move());
        while (isLong(move())) h /= 2;
        while (!halved && isShort(move()) && h < 65536) h *= 2;
        const PT m = move();
        const bool now = std::fabs(m.x) <= std::fabs(m.y);
        const bool alongY = t == 0 || t == 65536 ? now : before;
        before = now;
        const double slope = alongY ? Slope(m.x, m.y) : Slope(m.y, m.x);
        Sample({c.x + p.x, c.y + p.y}, static_cast<int>(t), {alongY, slope, Code(m.y), false}, planes);
        Sample({c.x - p.x, c.y - p.y}, static_cast<int>(t), {alongY, slope, Code(-m.y), false}, &other);
    }
}

} // namespace

void PlainPlot(const PATHREC *path, double zoom, int left, int top, bool smooth, PATHBUF mask, PATHBUF directions)
{
    PLANES planes = {mask, directions, 0, 0, smooth, 0, 0};
    int bits;
    ZrPathBufGetWHU(mask, &planes.width, &planes.height, &bits);
    const auto place = [&](const PATHNODE &node) {
        return PT{FixToDb(node.x) * zoom - left + 0.5, FixToDb(node.y) * zoom - top + 0.5};
    };
    PT current = {0, 0};
    for (uint32_t i = 0; i < path->nodeCount;) {
        const PATHNODE *node = path->nodes + i;
        switch (node->type & 0xFFE) {
        case 6:
            current = place(node[0]);
            i++;
            break;
        case 2:
            Line(current, place(node[0]), &planes);
            current = place(node[0]);
            i++;
            break;
        case 4: {
            const PT p[4] = {current, place(node[0]), place(node[1]), place(node[2])};
            Curve(p, &planes);
            current = p[3];
            i += 3;
            break;
        }
        case 0x200: i++; break;
        case 0x100:
            if (smooth) Ellipse(current, place(node[0]), FixToDb(node[1].x), node[1].type & 1, &planes);
            i += 2;
            break;
        default: i += 2; break;
        }
    }
}

} // namespace zr32test
