/* render_bench.cpp - time and fragments of the renderer against the outline's length times the bevel's width.
 *
 * The shape is a bar: its outline is about twice its length, and its thickness is twice the bevel's width, so the
 * product is what the sections have to fill. Both must grow with it in proportion at most: time_per_area and
 * fragments_per_area are to stay level, or fall, from line to line. The last benchmark blows the bar up until nearly
 * all of it lies outside the output: the time must not follow the scale.
 */
#include "raster/raster.h"
#include "render3d/fragments.h"
#include "store/store.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <zr32path.h>

using namespace zr32;

namespace {

PATHREC *Bar(double length, double thickness)
{
    const double x1 = 10 + length;
    const double y1 = 10 + thickness;
    const struct {
        uint16_t type;
        double x, y;
    } nodes[] = {{6, 10, 10}, {2, x1, 10}, {2, x1, y1}, {2, 10, y1}, {3, 10, 10}};
    PATHREC *path = RecordAlloc(5);
    path->nodeCount = 5;
    for (int i = 0; i < 5; i++) path->nodes[i] = {nodes[i].type, DbToFix(nodes[i].x), DbToFix(nodes[i].y)};
    return path;
}

struct MASK {
    PATHBUF buf;
    tagPOINT origin;
};

MASK MaskOf(PATHREC *path, int32_t depth)
{
    tagRECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    ZrPathToBuf(path, depth, 0, 1, 0, fixedOne, &rects, &bufs, 0);
    const MASK mask = {bufs[0], {rects[0].left, rects[0].top}};
    GlobalBlockFree(rects);
    GlobalBlockFree(bufs);
    return mask;
}

/* A bar ready to be rendered. */
struct STAND {
    PATHREC *path;
    MASK mask;
    MASK cover;
    PATHBUF surface;
    PATHBUF colour;
    PATHBUF alpha;
    POINTFXMAT3D camera;
    int32_t width;
};

STAND StandMake(int32_t length, int32_t width)
{
    STAND stand = {};
    stand.width = width;
    stand.path = Bar(length, 2 * width);
    ChainLink(tableChain, stand.path, RecordAlloc(1));
    stand.mask = MaskOf(stand.path, 4);
    stand.cover = MaskOf(stand.path, 8);
    stand.surface = stand.cover.buf;
    PATHBUF dist = nullptr;
    double reach = width;
    ZrPathVMap(stand.path, &dist, &stand.surface, 0, 0, 0, 0, 0, &reach, 0, 1, stand.cover.buf, nullptr, fixedOne);
    stand.colour = ZrPathBufAlloc(24, length + 20, 2 * width + 40);
    stand.alpha = ZrPathBufAlloc(8, length + 20, 2 * width + 40);
    stand.camera.center = stand.camera.shift = {DbToFix(10 + length / 2.0), DbToFix(10 + width)};
    stand.camera.viewSize = 4000;
    stand.camera.viewAngle = 40;
    stand.camera.matrix = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    return stand;
}

void StandRender(STAND *stand)
{
    const uint32_t material = 0x3070E0;
    ZrPathABufRender(stand->path, &stand->camera, stand->colour, stand->alpha, 0, nullptr, &stand->mask.origin,
                     &material, stand->mask.buf, stand->surface, 0, 0, 0, 0, 0, 0, 0, 1, 0, stand->width, 0, 0, 0,
                     nullptr, 0);
    benchmark::DoNotOptimize(stand->alpha[0]);
}

void StandFree(STAND *stand)
{
    ZrPathDeletePtr(stand->path, 0);
    for (PATHBUF buf : {stand->mask.buf, stand->cover.buf, stand->surface, stand->colour, stand->alpha})
        ZrPathBufFree(buf);
}

void RenderBar(benchmark::State &state)
{
    ZrPathInit();
    const int32_t length = static_cast<int32_t>(state.range(0));
    const int32_t width = static_cast<int32_t>(state.range(1));
    const double radians = static_cast<double>(state.range(2)) * 0.017453292519943295;
    STAND stand = StandMake(length, width);
    const tagPOINT3D axis = {0.8, 0.6, 0};
    VThitaGetMatrix(std::sin(radians), std::cos(radians), &axis, &stand.camera.matrix);
    for (auto _ : state) StandRender(&stand);
    const double area = static_cast<double>(length) * width;
    state.counters["time_per_area"] =
        benchmark::Counter(area, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["fragments"] = FragPoolLastUsed();
    state.counters["fragments_per_area"] = FragPoolLastUsed() / area;
    StandFree(&stand);
}

void RenderBlownUp(benchmark::State &state)
{
    ZrPathInit();
    STAND stand = StandMake(100, 20);
    const double scale = static_cast<double>(state.range(0));
    stand.camera.matrix = {{scale, 0, 0, 0, scale, 0, 0, 0, scale}};
    for (auto _ : state) StandRender(&stand);
    StandFree(&stand);
}

} // namespace

BENCHMARK(RenderBar)
    ->ArgNames({"length", "width", "degrees"})
    ->ArgsProduct({{250, 500, 1000, 2000}, {20}, {0, 30}})
    ->ArgsProduct({{500}, {10, 20, 40, 80}, {0, 30}})
    ->Unit(benchmark::kMillisecond);

BENCHMARK(RenderBlownUp)->ArgName("scale")->RangeMultiplier(10)->Range(1, 1000000)->Unit(benchmark::kMillisecond);
