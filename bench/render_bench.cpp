/* render_bench.cpp - time and fragments of the renderer against the outline's length times the bevel's width.
 *
 * The shape is a bar: its outline is about twice its length, and its thickness is twice the bevel's width, so the
 * product is what the sections have to fill. Both must grow with it in proportion at most: time_per_area and
 * fragments_per_area are to stay level, or fall, from line to line.
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

void RenderBar(benchmark::State &state)
{
    ZrPathInit();
    const int32_t length = static_cast<int32_t>(state.range(0));
    const int32_t width = static_cast<int32_t>(state.range(1));
    const double degrees = static_cast<double>(state.range(2));
    PATHREC *path = Bar(length, 2 * width);
    PATHREC *tail = RecordAlloc(1);
    ChainLink(tableChain, path, tail);
    const MASK mask = MaskOf(path, 4);
    const MASK cover = MaskOf(path, 8);
    PATHBUF dist = nullptr;
    PATHBUF surface = cover.buf;
    double reach = width;
    ZrPathVMap(path, &dist, &surface, 0, 0, 0, 0, 0, &reach, 0, 1, cover.buf, nullptr, fixedOne);

    POINTFXMAT3D camera = {};
    camera.center = camera.shift = {DbToFix(10 + length / 2.0), DbToFix(10 + width)};
    camera.viewSize = 4000;
    camera.viewAngle = 40;
    const tagPOINT3D axis = {0.8, 0.6, 0};
    camera.matrix = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    VThitaGetMatrix(std::sin(degrees * 0.017453292519943295), std::cos(degrees * 0.017453292519943295), &axis,
                    &camera.matrix);
    PATHBUF colour = ZrPathBufAlloc(24, length + 20, 2 * width + 40);
    PATHBUF alpha = ZrPathBufAlloc(8, length + 20, 2 * width + 40);
    const uint32_t material = 0x3070E0;
    for (auto _ : state) {
        ZrPathABufRender(path, &camera, colour, alpha, 0, nullptr, &mask.origin, &material, mask.buf, surface, 0, 0, 0,
                         0, 0, 0, 0, 1, 0, width, 0, 0, 0, nullptr, 0);
        benchmark::DoNotOptimize(alpha[0]);
    }
    const double area = static_cast<double>(length) * width;
    state.counters["time_per_area"] =
        benchmark::Counter(area, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["fragments"] = FragPoolLastUsed();
    state.counters["fragments_per_area"] = FragPoolLastUsed() / area;

    ZrPathDeletePtr(path, 0);
    for (PATHBUF buf : {mask.buf, cover.buf, surface, colour, alpha}) ZrPathBufFree(buf);
}

} // namespace

BENCHMARK(RenderBar)
    ->ArgNames({"length", "width", "degrees"})
    ->ArgsProduct({{250, 500, 1000, 2000}, {20}, {0, 30}})
    ->ArgsProduct({{500}, {10, 20, 40, 80}, {0, 30}})
    ->Unit(benchmark::kMillisecond);
