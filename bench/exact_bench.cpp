/* exact_bench.cpp - the time a pixel of the exact distance surface by the reach of the surface.
 *
 * Each turn makes a map of one shape without a mask, both planes, edge tables included. Counters: nanoseconds a pixel
 * of the map and a pixel that has a distance, in the fastest turn. Peer: FreeType's signed distance field of the same
 * outline, which holds a distance in 8 bits; its reach ends at 32.
 */
#include "freetype_outline.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <fontconfig/fontconfig.h>
#include <zr32path.h>

#include FT_FREETYPE_H
#include FT_MODULE_H

namespace {

using namespace zr32bench;

template <class WORK> double Seconds(WORK work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct COUNTS {
    double all;
    double reached; /* neither without a surface nor flat top */
};

COUNTS OurMap(PATHREC *path, double width, int noMitre)
{
    PATHBUF dist = reinterpret_cast<PATHBUF>(1);
    PATHBUF offset = reinterpret_cast<PATHBUF>(1);
    if (ZrPathVMap(path, &dist, &offset, 0, 0, 0, 0, noMitre, &width, 0, 0, nullptr, nullptr, 0x10000) != 1) abort();
    int32_t w = 0, h = 0, bits = 0;
    ZrPathBufGetWHU(dist, &w, &h, &bits);
    const float *values = reinterpret_cast<const float *>(dist);
    const size_t all = static_cast<size_t>(w) * static_cast<size_t>(h);
    const auto reached = std::count_if(values, values + all, [](float v) { return v != 0.0F && v != 300.0F; });
    ZrPathBufFree(dist);
    ZrPathBufFree(offset);
    return {static_cast<double>(all), static_cast<double>(reached)};
}

/* A glyph slot to put outlines into; null without any font. */
FT_Face AnyFace(FT_Library library)
{
    FcPattern *pattern = FcPatternCreate();
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern *match = FcFontMatch(nullptr, pattern, &result);
    FT_Face face = nullptr;
    FcChar8 *file = nullptr;
    if (match && FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch)
        FT_New_Face(library, reinterpret_cast<const char *>(file), 0, &face);
    if (match) FcPatternDestroy(match);
    FcPatternDestroy(pattern);
    return face;
}

/* The slot's outline is taken by the renderer as it stands. */
void FreeTypeField(FT_Library library, FT_Face face, FT_Outline *outline, int spread)
{
    FT_Property_Set(library, "sdf", "spread", &spread);
    face->glyph->format = FT_GLYPH_FORMAT_OUTLINE;
    face->glyph->outline = *outline;
    if (FT_Render_Glyph(face->glyph, FT_RENDER_MODE_SDF) != 0) abort();
    benchmark::DoNotOptimize(face->glyph->bitmap.buffer[0]);
}

void SideBySide(benchmark::State &state, SHAPE (*make)(double), double size, int noMitre)
{
    const int width = static_cast<int>(state.range(0));
    const SHAPE shape = make(size);
    PATHREC *path = OurPath(shape);
    FTSHAPE ft;
    FreeTypePath(shape, &ft);
    FT_Library library;
    FT_Init_FreeType(&library);
    FT_Face face = AnyFace(library);

    constexpr double never = 1e9;
    double ours = never, theirs = never;
    COUNTS counts = {};
    for (auto _ : state) {
        const double own = Seconds([&] { counts = OurMap(path, width, noMitre); });
        ours = std::min(ours, own);
        if (face)
            theirs = std::min(theirs, Seconds([&] { FreeTypeField(library, face, &ft.outline, std::min(width, 32)); }));
        state.SetIterationTime(own);
    }
    state.counters["ns_pixel"] = ours * 1e9 / counts.all;
    state.counters["ns_reached"] = ours * 1e9 / counts.reached;
    if (face) {
        state.counters["freetype_ms"] = theirs * 1e3;
        state.counters["over_freetype"] = ours / theirs;
    }

    if (face) {
        face->glyph->outline = {};
        FT_Done_Face(face);
    }
    FT_Done_FreeType(library);
    FreeOurPath(path);
}

void BlobOf40Curves(benchmark::State &state)
{
    SideBySide(state, BlobShape, 500, 0);
}

void BlobOf40CurvesWithoutMitres(benchmark::State &state)
{
    SideBySide(state, BlobShape, 500, 1);
}

void GlyphContours200(benchmark::State &state)
{
    SideBySide(state, GlyphShape, 40, 0);
}

void ThinStar(benchmark::State &state)
{
    SideBySide(state, StarShape, 2000, 0);
}

BENCHMARK(BlobOf40Curves)->Arg(8)->Arg(20)->Arg(40)->Arg(80)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BlobOf40CurvesWithoutMitres)->Arg(8)->Arg(20)->Arg(40)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(GlyphContours200)->Arg(8)->Arg(20)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ThinStar)->Arg(8)->Arg(20)->Arg(40)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
