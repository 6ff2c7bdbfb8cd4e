/* mask_bench.cpp - the time of ZrPathToBuf beside two peers on the same outlines in the same run.
 *
 * Peers: cairo's fill into an A8 surface and FreeType's smooth rasteriser. Each turn of a benchmark makes the mask of
 * one shape three times, once by each, from the outline to the finished buffer, the buffer's allocation included; the
 * outline itself stands ready in the form that each takes. Counters: microseconds of each in its fastest turn, and ours
 * over theirs.
 */
#include "freetype_outline.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cairo.h>
#include <chrono>
#include <cstdlib>
#include <zr32path.h>

namespace {

using namespace zr32bench;

/* ---- ours ---- */

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
    FreeOurPath(path);
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
