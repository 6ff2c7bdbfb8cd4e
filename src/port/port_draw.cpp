/* port_draw.cpp - lines, Beziers and rectangles over a bitmap in memory.
 *
 * A line's pixels are those nearest to it along its longer axis, a tie going to the lower coordinate, so that the set
 * does not depend on the direction; the last point is left out. The visible part of a line is found first and only its
 * pixels are walked, each placed by one exact division: no call costs more than the bitmap is wide or high. Everything
 * that is drawn goes through PixelApply, the only place that knows raster operations.
 */
#include "port_objects.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace zr32port;

namespace {

/* Farthest coordinate that can be drawn to: products of two differences then fit in 64 bits. */
constexpr int32_t farthest = 1 << 27;

constexpr int dotLength = 3;
constexpr COLORREF backColor = RGB(255, 255, 255);

/* Pieces of a curve: enough for the flatness, and never more than this. */
constexpr double flatness = 0.25;
constexpr int mostPieces = 1024;

/* What one drawing call needs at hand. */
struct CANVAS {
    const BITMAP *bitmap;
    RECT box; /* bitmap and clip */
    int rop;
    int backMode;
    const PEN *pen;
    int64_t phase; /* pixels since the call began, for dots */
};

/* 0 when nothing of the call can be seen. */
BOOL CanvasOf(HDC dc, CANVAS *canvas)
{
    const BITMAP *bitmap = dc->bitmap;
    canvas->bitmap = bitmap;
    canvas->box = {0, 0, bitmap->width, bitmap->height};
    if (dc->clipped) {
        canvas->box = {std::max<int32_t>(0, dc->clip.left), std::max<int32_t>(0, dc->clip.top),
                       std::min(bitmap->width, dc->clip.right), std::min(bitmap->height, dc->clip.bottom)};
    }
    canvas->rop = dc->rop;
    canvas->backMode = dc->backMode;
    canvas->pen = dc->pen;
    canvas->phase = 0;
    return canvas->box.left < canvas->box.right && canvas->box.top < canvas->box.bottom;
}

/* One byte under a raster operation: bit 2p + d of its truth table for each bit p of the source, d of the pixel. */
BYTE RopByte(int rop, unsigned p, unsigned d)
{
    const unsigned table = static_cast<unsigned>(rop - 1);
    unsigned result = 0;
    if (table & 1u) result |= ~p & ~d;
    if (table & 2u) result |= ~p & d;
    if (table & 4u) result |= p & ~d;
    if (table & 8u) result |= p & d;
    return static_cast<BYTE>(result & 0xFFu);
}

/* The fourth byte of a 32-bit pixel stays. */
void PixelApply(const CANVAS &canvas, int32_t x, int32_t y, COLORREF color)
{
    BYTE *pixel = canvas.bitmap->top + canvas.bitmap->pitch * y + ptrdiff_t{x} * canvas.bitmap->pixelBytes;
    pixel[0] = RopByte(canvas.rop, color >> 16 & 0xFFu, pixel[0]);
    pixel[1] = RopByte(canvas.rop, color >> 8 & 0xFFu, pixel[1]);
    pixel[2] = RopByte(canvas.rop, color & 0xFFu, pixel[2]);
}

/* A pixel of an outline that is known to lie in the box, phase pixels after the call's first. */
void PenPixel(const CANVAS &canvas, int32_t x, int32_t y, int64_t phase)
{
    const bool gap = canvas.pen->style == PS_DOT && phase / dotLength % 2 != 0;
    if (!gap)
        PixelApply(canvas, x, y, canvas.pen->color);
    else if (canvas.backMode == OPAQUE)
        PixelApply(canvas, x, y, backColor);
}

bool IsNear(int32_t v)
{
    return v >= -farthest && v <= farthest;
}

int64_t FloorDiv(int64_t a, int64_t b)
{
    return a / b - (a % b < 0 ? 1 : 0);
}

/* A line from a without b; the phase goes on by its length. */
void Line(POINT a, POINT b, CANVAS *canvas)
{
    if (canvas->pen->style == PS_NULL || !IsNear(a.x) || !IsNear(a.y) || !IsNear(b.x) || !IsNear(b.y)) return;
    const int64_t dx = int64_t{b.x} - a.x;
    const int64_t dy = int64_t{b.y} - a.y;
    const bool steep = std::abs(dy) > std::abs(dx);
    const int64_t length = steep ? std::abs(dy) : std::abs(dx);
    const int64_t rise = steep ? dx : dy;
    const int64_t from = steep ? a.y : a.x;
    const int64_t across = steep ? a.x : a.y;
    const int64_t step = (steep ? dy : dx) < 0 ? -1 : 1;
    const int64_t low = steep ? canvas->box.top : canvas->box.left;
    const int64_t high = steep ? canvas->box.bottom : canvas->box.right;
    const int64_t acrossLow = steep ? canvas->box.left : canvas->box.top;
    const int64_t acrossHigh = steep ? canvas->box.right : canvas->box.bottom;

    /* from + i step inside [low, high), and i below length. */
    const int64_t first = std::max<int64_t>(0, step > 0 ? low - from : from - (high - 1));
    const int64_t end = std::min(length, step > 0 ? high - from : from - low + 1);
    for (int64_t i = first; i < end; i++) {
        /* i rise / length, rounded, the half downward. */
        const int64_t minor = across - FloorDiv(length - 2 * i * rise, 2 * length);
        if (minor < acrossLow || minor >= acrossHigh) continue;
        const int32_t major = static_cast<int32_t>(from + i * step);
        const int32_t other = static_cast<int32_t>(minor);
        PenPixel(*canvas, steep ? other : major, steep ? major : other, canvas->phase + i);
    }
    canvas->phase += length;
}

int32_t RoundNear(double v)
{
    const double limit = 2.0 * farthest;
    return static_cast<int32_t>(std::floor(std::clamp(v, -limit, limit) + 0.5));
}

/* A cubic as lines between points on it. Cut into n pieces, a cubic with second differences up to b strays from its
 * chords by at most 6/8 b / n^2. */
void Cubic(const POINT p[4], CANVAS *canvas)
{
    double bend = 0.0;
    for (int i = 0; i < 2; i++) {
        const double x = static_cast<double>(p[i].x) - 2.0 * p[i + 1].x + p[i + 2].x;
        const double y = static_cast<double>(p[i].y) - 2.0 * p[i + 1].y + p[i + 2].y;
        bend = std::max(bend, std::hypot(x, y));
    }
    const int pieces =
        static_cast<int>(std::min(static_cast<double>(mostPieces), std::ceil(std::sqrt(0.75 * bend / flatness)) + 1.0));
    POINT from = p[0];
    for (int i = 1; i <= pieces; i++) {
        POINT to = p[3];
        if (i < pieces) {
            const double t = static_cast<double>(i) / pieces;
            const double s = 1.0 - t;
            const double w[4] = {s * s * s, 3.0 * s * s * t, 3.0 * s * t * t, t * t * t};
            to.x = RoundNear(w[0] * p[0].x + w[1] * p[1].x + w[2] * p[2].x + w[3] * p[3].x);
            to.y = RoundNear(w[0] * p[0].y + w[1] * p[1].y + w[2] * p[2].y + w[3] * p[3].y);
        }
        Line(from, to, canvas);
        from = to;
    }
}

/* Columns left to right - 1 of the rows top to bottom - 1 in the brush. */
void Fill(const CANVAS &canvas, int64_t left, int64_t top, int64_t right, int64_t bottom, COLORREF color)
{
    const int32_t x0 = static_cast<int32_t>(std::max<int64_t>(left, canvas.box.left));
    const int32_t y0 = static_cast<int32_t>(std::max<int64_t>(top, canvas.box.top));
    const int32_t x1 = static_cast<int32_t>(std::min<int64_t>(right, canvas.box.right));
    const int32_t y1 = static_cast<int32_t>(std::min<int64_t>(bottom, canvas.box.bottom));
    for (int32_t y = y0; y < y1; y++)
        for (int32_t x = x0; x < x1; x++) PixelApply(canvas, x, y, color);
}

/* Once round the border, corners counted once; a border of one row or column is a single line. */
void Border(int32_t left, int32_t top, int32_t right, int32_t bottom, CANVAS *canvas)
{
    if (right - left == 1) {
        Line({left, top}, {left, bottom}, canvas);
    } else if (bottom - top == 1) {
        Line({left, top}, {right, top}, canvas);
    } else {
        Line({left, top}, {right - 1, top}, canvas);
        Line({right - 1, top}, {right - 1, bottom - 1}, canvas);
        Line({right - 1, bottom - 1}, {left, bottom - 1}, canvas);
        Line({left, bottom - 1}, {left, top}, canvas);
    }
}

} // namespace

extern "C" {

BOOL MoveToEx(HDC dc, int x, int y, POINT *old)
{
    if (!dc) return FALSE;
    if (old) *old = dc->position;
    dc->position = {x, y};
    if (dc->calls && dc->calls->moveTo) dc->calls->moveTo(dc->calls->user, x, y);
    return TRUE;
}

BOOL LineTo(HDC dc, int x, int y)
{
    if (!dc) return FALSE;
    const POINT from = dc->position;
    dc->position = {x, y};
    if (dc->calls) {
        if (dc->calls->lineTo) dc->calls->lineTo(dc->calls->user, x, y);
        return TRUE;
    }
    CANVAS canvas;
    if (CanvasOf(dc, &canvas)) Line(from, {x, y}, &canvas);
    return TRUE;
}

BOOL PolyBezierTo(HDC dc, const POINT *points, DWORD count)
{
    if (!dc || !points || count == 0 || count % 3 != 0) return FALSE;
    POINT from = dc->position;
    dc->position = points[count - 1];
    if (dc->calls) {
        if (dc->calls->polyBezierTo) dc->calls->polyBezierTo(dc->calls->user, points, count);
        return TRUE;
    }
    CANVAS canvas;
    if (!CanvasOf(dc, &canvas)) return TRUE;
    for (DWORD i = 0; i < count; i += 3) {
        const POINT p[4] = {from, points[i], points[i + 1], points[i + 2]};
        Cubic(p, &canvas);
        from = p[3];
    }
    return TRUE;
}

BOOL Rectangle(HDC dc, int left, int top, int right, int bottom)
{
    if (!dc) return FALSE;
    if (dc->calls) {
        if (dc->calls->rectangle) dc->calls->rectangle(dc->calls->user, left, top, right, bottom);
        return TRUE;
    }
    CANVAS canvas;
    if (!CanvasOf(dc, &canvas)) return TRUE;
    const int32_t l = std::clamp(std::min(left, right), -farthest, farthest);
    const int32_t t = std::clamp(std::min(top, bottom), -farthest, farthest);
    const int32_t r = std::clamp(std::max(left, right), -farthest, farthest);
    const int32_t b = std::clamp(std::max(top, bottom), -farthest, farthest);
    if (l == r || t == b) return TRUE;
    if (dc->pen->style != PS_NULL) Border(l, t, r, b, &canvas);
    if (!dc->brush->null) {
        const int32_t inset = dc->pen->style != PS_NULL ? 1 : 0;
        Fill(canvas, l + inset, t + inset, r - 1, b - 1, dc->brush->color);
    }
    return TRUE;
}

} // extern "C"
