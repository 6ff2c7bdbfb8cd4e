/* mask_bench.cpp - the time of ZrPathToBuf beside two peers on the same outlines in the same run.
 *
 * Peers: cairo's fill into an A8 surface and FreeType's smooth rasteriser. Each turn of a benchmark makes the mask of
 * one shape three times, once by each, from the outline to the finished buffer, the buffer's allocation included; the
 * outline itself stands ready in the form that each takes. Counters: microseconds of each in its fastest turn, and ours
 * over theirs.
 */
#include "store/store.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cairo.h>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ft2build.h>
#include <random>
#include <vector>
#include <zr32path.h>

#include FT_OUTLINE_H

namespace {

struct PT {
    double x, y;
};

/* Closed contours of cubics: a start and three points a curve. A line is a cubic with its controls on it, but for the
 * star, whose contour is one of corners. */
struct SHAPE {
    std::vector<std::vector<PT>> contours;
    bool lines;
};

/* A closed smooth curve through points on a wobbling circle. */
std::vector<PT> Blob(PT center, PT radius, int curves, double wobble, std::mt19937 &random)
{
    std::uniform_real_distribution<double> factor(1 - wobble, 1.0);
    std::vector<PT> on;
    for (int i = 0; i < curves; i++) {
        const double angle = 2 * M_PI * i / curves;
        const double f = factor(random);
        on.push_back({center.x + std::cos(angle) * radius.x * f, center.y + std::sin(angle) * radius.y * f});
    }
    std::vector<PT> contour = {on[0]};
    const size_t n = on.size();
    for (size_t i = 0; i < n; i++) {
        const PT &a = on[(i + n - 1) % n], &b = on[i], &c = on[(i + 1) % n], &d = on[(i + 2) % n];
        contour.push_back({b.x + (c.x - a.x) / 6, b.y + (c.y - a.y) / 6});
        contour.push_back({c.x - (d.x - b.x) / 6, c.y - (d.y - b.y) / 6});
        contour.push_back(c);
    }
    return contour;
}

SHAPE BlobShape(double size)
{
    std::mt19937 random(1);
    return {{Blob({size / 2, size / 2}, {size / 2, size / 2}, 40, 0.3, random)}, false};
}

SHAPE GlyphShape(double size)
{
    std::mt19937 random(2);
    SHAPE shape = {{}, false};
    for (int row = 0; row < 10; row++)
        for (int column = 0; column < 20; column++)
            shape.contours.push_back(
                Blob({(column + 0.5) * size * 1.25, (row + 0.5) * size * 1.25}, {size / 2, size / 2}, 10, 0.4, random));
    return shape;
}

/* A thin star: long spikes to both sides. */
SHAPE StarShape(double width)
{
    const double height = width / 20;
    std::vector<PT> contour;
    for (int i = 0; i < 20; i++) {
        const double angle = 2 * M_PI * i / 20;
        const double f = i % 2 ? 0.1 : 0.5;
        contour.push_back({width / 2 + std::cos(angle) * f * width, height / 2 + std::sin(angle) * f * height});
    }
    contour.push_back(contour[0]);
    return {{contour}, true};
}

/* ---- ours ---- */

PATHREC *OurPath(const SHAPE &shape)
{
    ZrPathInit();
    std::vector<PATHREC *> records;
    for (const std::vector<PT> &contour : shape.contours) {
        PATHREC *record = zr32::RecordAlloc(contour.size());
        record->nodeCount = static_cast<uint32_t>(contour.size());
        for (size_t i = 0; i < contour.size(); i++) {
            const int last = i + 1 == contour.size();
            const int type = i == 0 ? PATHNODE_START : (shape.lines ? PATHNODE_LINE : PATHNODE_CURVE) + last;
            record->nodes[i] = {static_cast<uint16_t>(type), DbToFix(contour[i].x), DbToFix(contour[i].y)};
        }
        records.push_back(record);
    }
    for (size_t i = 1; i < records.size(); i++) {
        records[i - 1]->nextJoin = records[i];
        records[i]->prevJoin = records[i - 1];
    }
    return records[0];
}

void OurMask(PATHREC *path)
{
    tagRECT *rects;
    PATHBUF *bufs;
    if (ZrPathToBuf(path, 8, 0, 1, 0, 0x10000, &rects, &bufs, 0) != 1) abort();
    benchmark::DoNotOptimize(bufs[0][0]);
    ZrPathBufFree(bufs[0]);
    GlobalFree(bufs);
    GlobalFree(rects);
}

/* ---- cairo ---- */

cairo_path_t *CairoPath(const SHAPE &shape)
{
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cairo_t *cr = cairo_create(surface);
    for (const std::vector<PT> &c : shape.contours) {
        cairo_move_to(cr, c[0].x, c[0].y);
        if (shape.lines)
            for (size_t i = 1; i < c.size(); i++) cairo_line_to(cr, c[i].x, c[i].y);
        else
            for (size_t i = 1; i + 2 < c.size(); i += 3)
                cairo_curve_to(cr, c[i].x, c[i].y, c[i + 1].x, c[i + 1].y, c[i + 2].x, c[i + 2].y);
        cairo_close_path(cr);
    }
    cairo_path_t *path = cairo_copy_path(cr);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
    return path;
}

void CairoMask(const cairo_path_t *path, int width, int height)
{
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_A8, width, height);
    cairo_t *cr = cairo_create(surface);
    cairo_append_path(cr, path);
    cairo_fill(cr);
    cairo_surface_flush(surface);
    benchmark::DoNotOptimize(cairo_image_surface_get_data(surface)[0]);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
}

/* ---- FreeType ---- */

struct FTSHAPE {
    std::vector<FT_Vector> points;
    std::vector<char> tags;
    std::vector<short> ends;
    FT_Outline outline;
};

void FreeTypePath(const SHAPE &shape, FTSHAPE *ft)
{
    for (const std::vector<PT> &c : shape.contours) {
        for (size_t i = 0; i + 1 < c.size(); i++) {
            ft->points.push_back({std::lround(c[i].x * 64), std::lround(c[i].y * 64)});
            ft->tags.push_back(shape.lines || i % 3 == 0 ? FT_CURVE_TAG_ON : FT_CURVE_TAG_CUBIC);
        }
        ft->ends.push_back(static_cast<short>(ft->points.size() - 1));
    }
    ft->outline = {static_cast<short>(ft->ends.size()),
                   static_cast<short>(ft->points.size()),
                   ft->points.data(),
                   ft->tags.data(),
                   ft->ends.data(),
                   FT_OUTLINE_NONE};
}

void FreeTypeMask(FT_Library library, FT_Outline *outline, int width, int height)
{
    unsigned char *pixels =
        static_cast<unsigned char *>(calloc(static_cast<size_t>(width), static_cast<size_t>(height)));
    FT_Bitmap bitmap = {};
    bitmap.rows = static_cast<unsigned>(height);
    bitmap.width = static_cast<unsigned>(width);
    bitmap.pitch = width;
    bitmap.buffer = pixels;
    bitmap.num_grays = 256;
    bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
    if (FT_Outline_Get_Bitmap(library, outline, &bitmap) != 0) abort();
    benchmark::DoNotOptimize(pixels[0]);
    free(pixels);
}

/* ---- side by side ---- */

template <class WORK> double Seconds(WORK work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void SideBySide(benchmark::State &state, SHAPE (*make)(double))
{
    const SHAPE shape = make(static_cast<double>(state.range(0)));
    PATHREC *path = OurPath(shape);
    tagRECT rect;
    ZrPathGetMiniMaxRect(path, 0x10000, &rect);
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    cairo_path_t *cairoPath = CairoPath(shape);
    FTSHAPE ft;
    FreeTypePath(shape, &ft);
    FT_Library library;
    FT_Init_FreeType(&library);

    /* The fastest turn of each: other work of the machine can only add to it. */
    double ours = 1e9, cairos = 1e9, freetypes = 1e9;
    for (auto _ : state) {
        const double own = Seconds([&] { OurMask(path); });
        ours = std::min(ours, own);
        cairos = std::min(cairos, Seconds([&] { CairoMask(cairoPath, width, height); }));
        freetypes = std::min(freetypes, Seconds([&] { FreeTypeMask(library, &ft.outline, width, height); }));
        state.SetIterationTime(own);
    }
    state.counters["ours_us"] = ours * 1e6;
    state.counters["cairo_us"] = cairos * 1e6;
    state.counters["freetype_us"] = freetypes * 1e6;
    state.counters["over_cairo"] = ours / cairos;
    state.counters["over_freetype"] = ours / freetypes;

    FT_Done_FreeType(library);
    cairo_path_destroy(cairoPath);
    while (path) {
        PATHREC *next = path->nextJoin;
        ZrPathDeletePtr(path, 0);
        path = next;
    }
}

void BlobOf40Curves(benchmark::State &state)
{
    SideBySide(state, BlobShape);
}

void GlyphContours200(benchmark::State &state)
{
    SideBySide(state, GlyphShape);
}

void ThinStar(benchmark::State &state)
{
    SideBySide(state, StarShape);
}

BENCHMARK(BlobOf40Curves)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(GlyphContours200)->Arg(20)->Arg(40)->Arg(80)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(ThinStar)->Arg(1000)->Arg(2000)->Arg(4000)->Arg(8000)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace
