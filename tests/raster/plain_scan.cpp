/* plain_scan.cpp - the scan converter in its plainest form, see plain_scan.h. */
#include "raster/plain_scan.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace zr32test {

namespace {

using ROWS = std::vector<std::vector<double>>;

struct PT {
    double x, y;
};

struct BAND {
    double top, bottom, step;
    ROWS rows;
};

/* Cut to an integer as the library's helper does it. */
int32_t Cut(double v)
{
    if (!(std::fabs(v) < 9.2e18)) return 0;
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(static_cast<int64_t>(v))));
}

void Nudge(double step, double *v)
{
    const double n = Cut(1 / step);
    if (*v * n == std::trunc(*v * n)) *v += 0.00001;
}

void Walk(PT p0, PT p1, double dx, BAND *band)
{
    const double dy = p1.y - p0.y;
    if (dy == 0) return;
    if ((p0.y < band->top && p1.y < band->top) || (p0.y >= band->bottom && p1.y >= band->bottom)) return;
    const double xs = dx / std::fabs(dy) * band->step;
    const double m = dx / dy;
    double yc = std::trunc(p0.y);
    if (dy < 0) yc += 1;
    double row = std::trunc((yc - band->top) / band->step);
    const double rows = std::trunc((band->bottom - band->top) / band->step);
    double xc = (yc - p0.y) * m + p0.x;
    const int forward = dy > 0 ? 1 : -1;
    const auto emit = [&] {
        if (row >= 0 && row < rows) band->rows[static_cast<size_t>(row)].push_back(dy > 0 ? xc : -xc);
    };
    /* Behind the last row that the direction of travel leads to nothing can be emitted any more. */
    const auto gone = [&] { return forward > 0 ? row >= rows : row < 0; };
    if (xs == 0) {
        if (forward > 0) {
            for (; yc < p0.y; yc += band->step) row++;
            for (; yc < p1.y && !gone(); yc += band->step) {
                emit();
                row++;
            }
        } else {
            for (; yc > p0.y; yc -= band->step) row--;
            for (; yc > p1.y && !gone(); yc -= band->step) {
                emit();
                row--;
            }
        }
        return;
    }
    const auto before = [&](double end) { return xs > 0 ? xc < end : xc > end; };
    while (before(p0.x)) {
        if (xc + xs == xc) return;
        row += forward;
        xc += xs;
    }
    while (before(p1.x) && !gone()) {
        emit();
        if (xc + xs == xc) return;
        row += forward;
        xc += xs;
    }
}

void Curve(const PT *p, BAND *band)
{
    const double c[4][2] = {{p[0].x, p[0].y}, {p[1].x, p[1].y}, {p[2].x, p[2].y}, {p[3].x, p[3].y}};
    double pos[2], d[2], dd[2], ddd[2];
    for (int i = 0; i < 2; i++) {
        const double a = ((c[1][i] - c[2][i]) - (c[2][i] - c[3][i])) * 24576;
        ddd[i] = (3 * (c[1][i] - c[2][i]) + (c[3][i] - c[0][i])) * 6144;
        dd[i] = a - 3 * ddd[i];
        d[i] = ((c[3][i] - c[0][i]) * 8192 + ddd[i]) * 2 - 0.5 * dd[i] - a;
        pos[i] = c[0][i] * 65536;
    }
    int t = 0;
    int h = 16384;
    while (t < 65536) {
        bool stuck = false;
        while (!stuck && (std::fabs(d[0]) > 60000 || std::fabs(d[1]) > 60000)) {
            if (h == 1) {
                stuck = true;
                break;
            }
            for (int i = 0; i < 2; i++) {
                ddd[i] = ddd[i] * 0.125;
                dd[i] = dd[i] * 0.25 - ddd[i];
                d[i] = d[i] * 0.5 + dd[i] * -0.5;
            }
            h >>= 1;
        }
        if (stuck || t + h >= 65536) {
            for (int i = 0; i < 2; i++) d[i] = c[3][i] * 65536 - pos[i];
            t = 65536;
            h = 0;
        }
        PT a = {pos[0] * 1.52587890625e-05, pos[1] * 1.52587890625e-05};
        PT b = {(pos[0] + d[0]) * 1.52587890625e-05, (pos[1] + d[1]) * 1.52587890625e-05};
        for (double *v : {&a.y, &b.y, &a.x, &b.x}) Nudge(band->step, v);
        double dx = b.x - a.x;
        if (std::fabs(dx) < 1e-7) dx = 0;
        Walk(a, b, dx, band);
        for (int i = 0; i < 2; i++) {
            pos[i] += d[i];
            d[i] += dd[i];
            dd[i] += ddd[i];
        }
        t += h;
    }
}

void AddEdges(const PATHREC *path, double zoom, int left, int top, BAND *band)
{
    const auto place = [&](const PATHNODE &node) {
        PT p = {FixToDb(node.x) * zoom - left, FixToDb(node.y) * zoom - top};
        if (band->step != 1) p.x += 0.5;
        p.y += 0.5;
        return p;
    };
    PT current = {0, 0};
    for (uint32_t i = 0; i < path->nodeCount;) {
        const uint32_t kind = path->nodes[i].type & 0xFFE;
        const uint32_t uses = kind == 4 ? 3 : kind == 0x100 || kind == 0x400 ? 2 : 1;
        if (i + uses > path->nodeCount) return;
        if (kind == 6) {
            current = place(path->nodes[i]);
        } else if (kind == 2) {
            PT a = current;
            PT b = place(path->nodes[i]);
            for (double *v : {&a.y, &b.y, &a.x, &b.x}) Nudge(band->step, v);
            Walk(a, b, b.x - a.x, band);
            current = b;
        } else if (kind == 4) {
            const PT p[4] = {current, place(path->nodes[i]), place(path->nodes[i + 1]), place(path->nodes[i + 2])};
            Curve(p, band);
            current = p[3];
        } else if (kind != 0x100 && kind != 0x200 && kind != 0x400) {
            return;
        }
        i += uses;
    }
}

/* Pairs of ends; the list has a 0.0 behind its last entry. */
std::vector<std::pair<double, double>> Spans(const std::vector<double> &row, bool evenOdd)
{
    std::vector<std::pair<double, double>> spans;
    const size_t n = row.size();
    if (n < 2) return spans;
    const auto entry = [&](size_t i) { return i < n ? row[i] : 0.0; };
    int w = 0;
    for (size_t j = 0; j < n; j++) {
        const double a = row[j];
        double b = a;
        if (evenOdd) {
            b = entry(++j);
        } else {
            w += a > 0 ? 1 : -1;
            while (w != 0) {
                b = entry(++j);
                if (b > 0)
                    w++;
                else if (b < 0)
                    w--;
                else
                    break;
            }
        }
        if (std::fabs(a) != std::fabs(b)) spans.emplace_back(std::fabs(a), std::fabs(b));
    }
    return spans;
}

void ToMask8(const BAND &band, PATHBUF buf, int width, bool evenOdd, int aaMode)
{
    const int n = static_cast<int>(1 / band.step);
    std::vector<double> acc(static_cast<size_t>(width));
    const auto add = [&](double x, double v) {
        if (x < width) acc[static_cast<size_t>(x)] += v;
    };
    for (size_t i = 0; i < band.rows.size(); i++) {
        for (const auto &[a, b] : Spans(band.rows[i], evenOdd)) {
            const double A = std::trunc(a), B = std::trunc(b), fa = a - A, fb = b - B;
            if (A == B) {
                add(A, fb - fa);
                continue;
            }
            add(A, 1 - fa);
            for (double x = A + 1; x < B && x < width; x++) add(x, 1);
            add(B, fb);
        }
        if (static_cast<int>(i) % n != n - 1) continue;
        uint8_t *row = buf + static_cast<size_t>(width) * (static_cast<size_t>(band.top) + i / static_cast<size_t>(n));
        const double k = Cut(band.step * 256);
        for (size_t x = 0; x < acc.size(); x++) {
            if (acc[x] == 0) continue;
            const uint8_t byte = static_cast<uint8_t>(Cut(k * acc[x] - 1));
            row[x] = aaMode != 0 ? byte : byte < 115 ? 0 : 255;
            acc[x] = 0;
        }
    }
}

void ToMask32(const BAND &band, PATHBUF buf, int width, bool evenOdd)
{
    const uint8_t left[9] = {0x00, 0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0xFE, 0xFF};
    const uint8_t right[9] = {0xFF, 0x7F, 0x3F, 0x1F, 0x0F, 0x07, 0x03, 0x01, 0x00};
    for (size_t i = 0; i < band.rows.size(); i++) {
        uint8_t *row = buf + 4 * static_cast<size_t>(width) * (static_cast<size_t>(band.top) + i / 4);
        if (i % 4 == 0) memset(row, 0xFF, 4 * static_cast<size_t>(width));
        const auto store = [&](double x, uint8_t byte) {
            if (x < width) row[4 * static_cast<size_t>(x) + i % 4] = byte;
        };
        for (const auto &[a, b] : Spans(band.rows[i], evenOdd)) {
            const double A = std::trunc(a), B = std::trunc(b);
            const int f1 = Cut((a - A) * 8 + 0.5), f2 = Cut((b - B) * 8 + 0.5);
            if (A == B) {
                store(A, left[f1] | right[f2]);
                continue;
            }
            store(A, left[f1]);
            for (double x = A + 1; x < B && x < width; x++) store(x, 0);
            store(B, right[f2]);
        }
    }
}

} // namespace

void PlainBandFill(const PATHREC *path, PATHBUF buf, bool evenOdd, int aaMode, double zoom, int left, int top)
{
    int width, height, bits;
    ZrPathBufGetWHU(buf, &width, &height, &bits);
    double step = aaMode == 0 ? 1 : 0.0625;
    if (bits == 32 || aaMode == 999) step = 0.25;
    for (int bandTop = 0; bandTop <= height; bandTop += 50) {
        const int bandBottom = std::min(bandTop + 50, height);
        BAND band = {static_cast<double>(bandTop), static_cast<double>(bandBottom), step, {}};
        band.rows.resize(static_cast<size_t>((bandBottom - bandTop) / step));
        for (const PATHREC *record = path; record; record = record->nextJoin) AddEdges(record, zoom, left, top, &band);
        for (auto &row : band.rows)
            std::sort(row.begin(), row.end(), [](double a, double b) {
                return std::fabs(a) != std::fabs(b) ? std::fabs(a) < std::fabs(b) : a > b;
            });
        if (bits == 32)
            ToMask32(band, buf, width, evenOdd);
        else
            ToMask8(band, buf, width, evenOdd, aaMode);
    }
}

} // namespace zr32test
