/* overlay_bench.cpp - what a mouse move costs: drawing, hiding and picking in groups of 100 to 10000 records.
 *
 * A group is a field of small shapes, half of them boxes and half circles. "Visible" figures grow with what is in the
 * view, "scrolled away" ones with box tests only; a click far from everything reads 64 bytes whatever the group.
 */
#include "store/store.h"

#include <benchmark/benchmark.h>
#include <zr32path.h>

namespace {

constexpr int32_t viewSize = 1000;
constexpr double circle = 0.5522847;

PATHREC *SmallShape(double x, double y, int round)
{
    const double r = 4;
    const double k = circle * r;
    const double roundPoints[13][2] = {{x, y + r},     {x + k, y + r}, {x + r, y + k}, {x + r, y},     {x + r, y - k},
                                       {x + k, y - r}, {x, y - r},     {x - k, y - r}, {x - r, y - k}, {x - r, y},
                                       {x - r, y + k}, {x - k, y + r}, {x, y + r}};
    const double boxPoints[5][2] = {{x - r, y - r}, {x + r, y - r}, {x + r, y + r}, {x - r, y + r}, {x - r, y - r}};
    const uint32_t count = round ? 13 : 5;
    PATHREC *path = zr32::RecordAlloc(count);
    path->nodeCount = count;
    for (uint32_t i = 0; i < count; i++) {
        const double *p = round ? roundPoints[i] : boxPoints[i];
        const uint16_t kind = round ? PATHNODE_CURVE : PATHNODE_LINE;
        const uint16_t type = i == 0           ? uint16_t{PATHNODE_START}
                              : i == count - 1 ? static_cast<uint16_t>(kind | PATHNODE_CLOSING)
                                               : kind;
        path->nodes[i] = {type, DbToFix(p[0]), DbToFix(p[1])};
    }
    return path;
}

/* A table with one group of count shapes on a square field of 10 pixels each, and a view of its left top. */
struct FIELD {
    PATHTBL *table = nullptr;
    COORDSTRUCT *view = nullptr;
    PATHREC *head = nullptr;

    explicit FIELD(int64_t count)
    {
        ZrPathInit();
        ZrPathNew(&table);
        ZrPathCoordStruct(0, 0, viewSize, viewSize, 0, 0, 1, table, &view);
        int64_t columns = 1;
        while (columns * columns < count) columns++;
        PATHREC *last = nullptr;
        for (int64_t i = 0; i < count; i++) {
            PATHREC *path = SmallShape(static_cast<double>(i % columns * 10 + 5),
                                       static_cast<double>(i / columns * 10 + 5), i % 2 != 0);
            if (last)
                zr32::ChainLink(zr32::tableChain, last, path);
            else
                head = path;
            last = path;
        }
        ZrPathAssignActivePath(table, head);
        ZrPathDraw(view, head, nullptr);
    }
    ~FIELD()
    {
        ZrPathDeleteCoordStruct(view);
        ZrPathTblDelete(table);
    }
    FIELD(const FIELD &) = delete;
    FIELD &operator=(const FIELD &) = delete;
};

void DrawVisible(benchmark::State &state)
{
    FIELD field(state.range(0));
    for (auto _ : state) ZrPathDraw(field.view, field.head, nullptr);
    state.SetComplexityN(state.range(0));
}

void DrawScrolledAway(benchmark::State &state)
{
    FIELD field(state.range(0));
    field.view->scrollX = 20000;
    for (auto _ : state) ZrPathDraw(field.view, field.head, nullptr);
    state.SetComplexityN(state.range(0));
}

/* The selection in and out again: what each mouse move of a drag costs. */
void HideAndDrawSelected(benchmark::State &state)
{
    FIELD field(state.range(0));
    const int64_t selected = state.range(1) ? state.range(0) : 1;
    PATHREC *last = nullptr;
    PATHREC *path = field.head;
    for (int64_t i = 0; i < selected; i++, path = path->nextPath) {
        path->flags = PATHREC_SELECTED;
        if (last) zr32::ChainLink(zr32::selectedChain, last, path);
        last = path;
    }
    for (auto _ : state) {
        ZrPathHideSelected(field.view, field.head, nullptr);
        ZrPathDrawSelected(field.view, field.head, nullptr);
    }
}

void Click(benchmark::State &state, int32_t x, int32_t y)
{
    FIELD field(state.range(0));
    int32_t result = 0;
    for (auto _ : state) {
        PATHREC *path = field.head;
        result = ZrPathPtOn(x, y, ZRPICK_QUERY, nullptr, field.view, field.table, &path, nullptr, nullptr);
        benchmark::DoNotOptimize(result);
    }
    state.counters["result"] = result;
    state.SetComplexityN(state.range(0));
}

/* On the last shape of the field, which every other one is asked before. */
void ClickOnTheLast(benchmark::State &state)
{
    int32_t columns = 1;
    while (int64_t{columns} * columns < state.range(0)) columns++;
    const auto last = static_cast<int32_t>(state.range(0) - 1);
    Click(state, last % columns * 10 + 9, last / columns * 10 + 5);
}

void ClickFarFromEverything(benchmark::State &state)
{
    FIELD field(state.range(0));
    std::fill(field.view->displayBuffer, field.view->displayBuffer + viewSize * viewSize, uint8_t{0});
    for (auto _ : state) {
        PATHREC *path = field.head;
        benchmark::DoNotOptimize(
            ZrPathPtOn(500, 500, ZRPICK_QUERY, nullptr, field.view, field.table, &path, nullptr, nullptr));
    }
}

/* One segment far longer than the view, which it crosses, at a zoom. */
void LongSegment(benchmark::State &state, int curved)
{
    FIELD field(1);
    PATHREC *path = zr32::RecordAlloc(4);
    path->nodeCount = curved ? 4 : 2;
    const uint16_t kind = curved ? PATHNODE_CURVE : PATHNODE_LINE;
    path->nodes[0] = {PATHNODE_START, DbToFix(-20000), DbToFix(-20000)};
    for (uint32_t i = 1; i < path->nodeCount; i++) {
        const double at = -20000 + 40000.0 * i / (path->nodeCount - 1);
        path->nodes[i] = {kind, DbToFix(at), DbToFix(at)};
    }
    field.view->zoom = static_cast<int32_t>(state.range(0));
    for (auto _ : state) ZrPathDraw(field.view, path, nullptr);
    ZrPathDeletePtr(path, 0);
}

BENCHMARK(DrawVisible)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond)->Complexity();
BENCHMARK(DrawScrolledAway)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond)->Complexity();
BENCHMARK(HideAndDrawSelected)
    ->ArgNames({"records", "all"})
    ->ArgsProduct({{100, 1000, 10000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ClickOnTheLast)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond)->Complexity();
BENCHMARK(ClickFarFromEverything)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kNanosecond);
BENCHMARK_CAPTURE(LongSegment, line, 0)->ArgName("zoom")->Arg(1)->Arg(4)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LongSegment, curve, 1)->ArgName("zoom")->Arg(1)->Arg(4)->Arg(100)->Unit(benchmark::kMicrosecond);

} // namespace
