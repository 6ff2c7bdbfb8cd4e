/* sweep_bench.cpp - the sweep's time against outline length times width, and the mitre fill's against outline length.
 *
 * Three shapes at several sizes: a blob of 40 curves, a row of glyph-like rings of lines and curves, a thin star of
 * lines. "ns/area" is the time a pixel of outline length x width: it stays level where the growth is that product.
 */
#include "surface/surface.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

PATHREC *MakeRecord(const std::vector<PATHNODE> &nodes)
{
    ZrPathInit();
    PATHREC *record = zr32::RecordAlloc(nodes.size());
    record->nodeCount = static_cast<uint32_t>(nodes.size());
    for (size_t i = 0; i < nodes.size(); i++) record->nodes[i] = nodes[i];
    return record;
}

void Add(uint16_t type, double x, double y, std::vector<PATHNODE> *nodes)
{
    nodes->push_back({type, DbToFix(x), DbToFix(y)});
}

/* A closed curve of 40 cubics around the middle, in and out by a fifth. */
PATHREC *Blob(double size)
{
    std::vector<PATHNODE> nodes;
    const int curves = 40;
    const double middle = size / 2;
    const auto at = [&](double i, double bulge, uint16_t type) {
        const double angle = 6.283185307179586 * i / curves;
        Add(type, middle + bulge * middle * std::cos(angle), middle + bulge * middle * std::sin(angle), &nodes);
    };
    at(0, 0.8, PATHNODE_START);
    for (int i = 0; i < curves; i++) {
        at(i + 1.0 / 3, i % 2 ? 0.7 : 0.9, PATHNODE_CURVE);
        at(i + 2.0 / 3, i % 2 ? 0.7 : 0.9, PATHNODE_CURVE);
        at(i + 1 == curves ? 0 : i + 1, 0.8, i + 1 == curves ? 5 : 4);
    }
    return MakeRecord(nodes);
}

/* A bowl on a stem, a fifth of its height thick: lines and curves as in a letter. */
PATHREC *Glyph(double left, double top, double size)
{
    std::vector<PATHNODE> nodes;
    const auto add = [&](uint16_t type, double x, double y) { Add(type, left + size * x, top + size * y, &nodes); };
    add(6, 0, 0);
    add(2, 0.5, 0);
    add(4, 0.9, 0);
    add(4, 0.9, 0.6);
    add(4, 0.5, 0.6);
    add(2, 0.2, 0.6);
    add(2, 0.2, 1);
    add(2, 0, 1);
    add(3, 0, 0);
    return MakeRecord(nodes);
}

PATHREC *Star(double width, double height)
{
    std::vector<PATHNODE> nodes;
    const int points = 24;
    for (int i = 0; i <= points * 2; i++) {
        const double angle = 3.141592653589793 * (i % (points * 2)) / points;
        const double r = i % 2 ? 0.2 : 0.5;
        Add(i == 0            ? 6
            : i == points * 2 ? 3
                              : 2,
            width * (0.5 + r * std::cos(angle)), height * (0.5 + r * std::sin(angle)), &nodes);
    }
    return MakeRecord(nodes);
}

/* The length of the control polygon's chords, curves halved once: near enough for a scale. */
double OutlineLength(const PATHREC *record)
{
    double length = 0;
    zr32::SEGWALK walk;
    zr32::SEGMENT segment;
    zr32::SegWalkStart(record, zr32::placeImage, &walk);
    while (zr32::SegWalkNext(&walk, &segment)) {
        const zr32::POINTDB *p = segment.p;
        const auto between = [](const zr32::POINTDB &a, const zr32::POINTDB &b) {
            return std::hypot(a.x - b.x, a.y - b.y);
        };
        if (segment.kind == PATHNODE_LINE) length += between(p[0], p[1]);
        if (segment.kind == PATHNODE_CURVE) {
            const zr32::POINTDB middle = {(p[0].x + 3 * p[1].x + 3 * p[2].x + p[3].x) / 8,
                                          (p[0].y + 3 * p[1].y + 3 * p[2].y + p[3].y) / 8};
            length += between(p[0], middle) + between(middle, p[3]);
        }
    }
    return length;
}

struct SUBJECT {
    PATHREC *head;
    double length;
};

SUBJECT MakeSubject(int shape, int size)
{
    std::vector<PATHREC *> records;
    if (shape == 0) records.push_back(Blob(size));
    if (shape == 1)
        for (int i = 0; i < 100; i++) records.push_back(Glyph(i % 20 * size * 1.2, i / 20 * size * 1.2, size));
    if (shape == 2) records.push_back(Star(size, size / 20.0));
    SUBJECT subject = {records[0], 0};
    for (const PATHREC *record : records) subject.length += OutlineLength(record);
    records.push_back(Glyph(0, 0, 1)); /* the tail, which no sweep visits */
    for (size_t i = 1; i < records.size(); i++) zr32::ChainLink(zr32::tableChain, records[i - 1], records[i]);
    for (size_t i = 1; i + 1 < records.size(); i++) zr32::ChainLink(zr32::joinChain, records[i - 1], records[i]);
    return subject;
}

using PASS = int (*)(PATHREC *, double, const zr32::SURFACEMAP *, PATHBUF);

int Sweep(PATHREC *path, double width, const zr32::SURFACEMAP *map, PATHBUF mask)
{
    return zr32::VMapEdgeSweep(path, width, 0, map, mask);
}

void Run(benchmark::State &state, int shape, PASS pass, int side)
{
    const SUBJECT subject = MakeSubject(shape, static_cast<int>(state.range(0)));
    const double width = static_cast<double>(state.range(1));
    const int32_t margin = side ? static_cast<int32_t>(width) : 0;
    struct tagRECT rect;
    ZrPathGetMiniMaxRect(subject.head, 0x10000, &rect);
    const int32_t left = static_cast<int32_t>(rect.left) - margin;
    const int32_t top = static_cast<int32_t>(rect.top) - margin;
    const int32_t columns = static_cast<int32_t>(rect.right) + margin - left;
    const int32_t rows = static_cast<int32_t>(rect.bottom) + margin - top;
    PATHBUF mask = ZrPathBufAlloc(8, columns, rows);
    PATHBUF dist = ZrPathBufAlloc(32, columns, rows);
    PATHBUF offset = ZrPathBufAlloc(0x40, columns, rows);
    zr32::PathBandFill(subject.head, mask, 0, 1, 0, 0x10000, left, top);
    if (side) zr32::VMapInvertMask(mask);
    const zr32::SURFACEMAP map = {&dist, &offset, nullptr, 1.0, left, top};
    const size_t pixels = static_cast<size_t>(columns) * static_cast<size_t>(rows);
    for (auto _ : state) {
        state.PauseTiming();
        std::memset(dist, 0, pixels * 4);
        std::memset(offset, 0, pixels * 8);
        state.ResumeTiming();
        benchmark::DoNotOptimize(pass(subject.head, width, &map, mask));
    }
    state.counters["length"] = subject.length;
    state.counters["ns/area"] = benchmark::Counter(
        subject.length * width, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    ZrPathBufFree(mask);
    ZrPathBufFree(dist);
    ZrPathBufFree(offset);
    for (PATHREC *record = subject.head; record;) {
        PATHREC *const next = record->nextPath;
        zr32::RecordFree(record);
        record = next;
    }
}

/* By width at one size, and by size at one width. */
void Sizes(benchmark::internal::Benchmark *bench, const std::vector<int64_t> &sizes)
{
    for (int64_t width : {5, 10, 20, 40}) bench->Args({sizes[1], width});
    for (int64_t size : sizes)
        if (size != sizes[1]) bench->Args({size, 10});
    bench->Unit(benchmark::kMicrosecond)->ArgNames({"size", "width"});
}

void BlobSizes(benchmark::internal::Benchmark *bench)
{
    Sizes(bench, {500, 1000, 2000});
}

void GlyphSizes(benchmark::internal::Benchmark *bench)
{
    Sizes(bench, {20, 40, 80});
}

void StarSizes(benchmark::internal::Benchmark *bench)
{
    Sizes(bench, {2000, 4000, 8000});
}

BENCHMARK_CAPTURE(Run, sweep_blob, 0, Sweep, 0)->Apply(BlobSizes);
BENCHMARK_CAPTURE(Run, sweep_blob_outside, 0, Sweep, 1)->Apply(BlobSizes);
BENCHMARK_CAPTURE(Run, sweep_glyphs, 1, Sweep, 0)->Apply(GlyphSizes);
BENCHMARK_CAPTURE(Run, sweep_star, 2, Sweep, 0)->Apply(StarSizes);
BENCHMARK_CAPTURE(Run, mitre_blob, 0, zr32::VMapMitreFill, 0)->Apply(BlobSizes);
BENCHMARK_CAPTURE(Run, mitre_glyphs_outside, 1, zr32::VMapMitreFill, 1)->Apply(GlyphSizes);
BENCHMARK_CAPTURE(Run, mitre_star_outside, 2, zr32::VMapMitreFill, 1)->Apply(StarSizes);

} // namespace
