/* Edits on whole groups by the number of records: the time of each must grow no worse than linearly (copying sorts its
 * pairs of records, which hardly shows). */
#include "store/store.h"

#include <benchmark/benchmark.h>
#include <zr32path.h>

using namespace zr32;

namespace {

/* A joined and selected chain of small boxes in a group. */
PATHTBL *MakeGroup(int64_t count, COORDSTRUCT **view)
{
    PATHTBL *table = nullptr;
    ZrPathInit();
    ZrPathNew(&table);
    ZrPathCoordStruct(0, 0, 800, 600, 0, 0, 1, table, view);
    PATHREC *head = nullptr;
    PATHREC *last = nullptr;
    for (int64_t i = 0; i < count; i++) {
        const double x = static_cast<double>(i * 37 % 780);
        const double y = static_cast<double>(i * 53 % 580);
        const R2VPOINT points[] = {{x, y, 2, 0}, {x + 9, y, 2, 0}, {x + 9, y + 9, 2, 0}, {x, y + 9, 2, 0}};
        PATHREC *path = ZrPathR2VToZrPath(4, points);
        if (last)
            ChainLink(tableChain, last, path);
        else
            head = path;
        last = path;
    }
    ZrPathAllPathSelected(head);
    ZrPathJoinAll(head);
    ZrPathAssignActivePath(table, head);
    return table;
}

void FreeGroup(PATHTBL *table, COORDSTRUCT *view)
{
    ZrPathDeleteCoordStruct(view);
    ZrPathTblDelete(table);
}

void DuplicateAndDelete(benchmark::State &state)
{
    COORDSTRUCT *view = nullptr;
    PATHTBL *table = MakeGroup(state.range(0), &view);
    tagRECT dirty;
    for (auto _ : state) {
        PATHREC *sources = nullptr;
        ZrPathFind(table, nullptr, &sources, nullptr, nullptr);
        ZrPathDuplicate(nullptr, table, view, &dirty);
        ZrPathDelete(table, view, &dirty);
        ZrPathAllPathSelected(sources);
        ZrPathAssignSelectedPath(table, sources);
    }
    state.SetComplexityN(state.range(0));
    FreeGroup(table, view);
}
BENCHMARK(DuplicateAndDelete)->RangeMultiplier(10)->Range(100, 10000)->Complexity();

void SelectionUndoAndRedo(benchmark::State &state)
{
    COORDSTRUCT *view = nullptr;
    PATHTBL *table = MakeGroup(state.range(0), &view);
    PATHREC *path = nullptr;
    ZrPathFind(table, nullptr, &path, nullptr, nullptr);
    ZrPathBackupAction(1, UR_SELECTION, table);
    ZrPathDeSelectAll(nullptr, path, view, 0);
    ZrPathAssignSelectedPath(table, nullptr);
    for (auto _ : state) {
        ZrPathUndo(1, table, view, nullptr);
        ZrPathRedo(1, table, view, nullptr);
    }
    state.SetComplexityN(state.range(0));
    ZrPathURFree(1, 0, 1);
    FreeGroup(table, view);
}
BENCHMARK(SelectionUndoAndRedo)->RangeMultiplier(10)->Range(100, 10000)->Complexity();

void WarpThroughAFrame(benchmark::State &state)
{
    COORDSTRUCT *view = nullptr;
    PATHTBL *table = MakeGroup(state.range(0), &view);
    PATHREC *path = nullptr;
    ZrPathFind(table, nullptr, &path, nullptr, nullptr);
    const ZRPOINTFX frame[] = {{0, 0},         {0x1000000, 0},         {0x2000000, 0},         {0x3000000, 0},
                               {0, 0x2000000}, {0x1000000, 0x2100000}, {0x2000000, 0x1F00000}, {0x3000000, 0x2000000}};
    for (auto _ : state) ZrPathBiCubic(path, frame);
    state.SetComplexityN(state.range(0));
    FreeGroup(table, view);
}
BENCHMARK(WarpThroughAFrame)->RangeMultiplier(10)->Range(100, 10000)->Complexity();

} // namespace
