/* sweepwalk.cpp - the walk of a sweep over records and nodes, its percentages and its abort.
 *
 * Comes in: a chain and a sweep that knows its rules. Goes out: lines and curves to be stepped. After an abort the walk
 * goes on to the end and keeps asking the callback, with no plane left to write.
 */
#include "surface/sweep.h"

namespace zr32 {

void SweepInit(const SWEEPRULES *rules, const SURFACEMAP *map, const uint8_t *mask, double width, SWEEP *sweep)
{
    *sweep = {};
    sweep->rules = rules;
    sweep->map = map;
    sweep->mask = mask;
    sweep->maskInfo = BufInfo(mask);
    sweep->planes = MapPlanes(map);
    sweep->place = PlaceOnMask(map->zoom, map->originX, map->originY);
    sweep->width = sweep->planes.width;
    sweep->height = sweep->planes.height;
    sweep->reach = width + 1.0;
    sweep->result = 1;
}

/* The range begins anew with every record: the callback sees each record's share of it, not a running sum. */
static int32_t Percentage(const VMAPPROGRESS *progress, double recordShare, double nodeShare)
{
    const double range = WrapSub(progress->rangeTo, progress->rangeFrom);
    return WrapAdd(progress->rangeFrom, TruncInt(recordShare * nodeShare * range));
}

static int GoOn(double recordShare, double nodeShare, SWEEP *sweep)
{
    const VMAPPROGRESS *const progress = sweep->map->progress;
    if (!progress || !progress->callback) return 1;
    if (MapProgress(sweep->map, progressAdvance, Percentage(progress, recordShare, nodeShare))) return 1;
    MapAbort(sweep->map, sweep->rules->abortSubCode, sweep->rules->abortIndex);
    sweep->planes = {};
    sweep->result = 0;
    return 0;
}

static void SweepRecord(const PATHREC *record, double recordShare, SWEEP *sweep)
{
    SEGWALK walk;
    SEGMENT segment;
    sweep->rayStep = 1.0;
    SegWalkStart(record, sweep->place, &walk);
    while (walk.index < record->nodeCount) {
        const double nodeShare = static_cast<double>(walk.index) / static_cast<double>(record->nodeCount);
        if (!GoOn(recordShare, nodeShare, sweep) || !SegWalkNext(&walk, &segment)) return;
        if (!sweep->planes.dist && !sweep->planes.vectors) continue;
        sweep->nodeIndex = segment.index;
        sweep->closesRecord = segment.next == record->nodeCount;
        if (segment.kind == PATHNODE_LINE) SweepLine(&segment, sweep);
        if (segment.kind == PATHNODE_CURVE) SweepCurve(&segment, sweep);
    }
}

int SweepChain(const PATHREC *path, SWEEP *sweep)
{
    const int wholeChain = sweep->rules->wholeChain;
    const PATHREC *const head = wholeChain ? ChainFirst(tableChain, path) : path;
    double count = wholeChain ? -1 : 0;
    for (const PATHREC *record = head; record; record = record->nextPath) count++;
    double number = 1;
    for (const PATHREC *record = head; record && number <= count; record = record->nextPath, number++)
        SweepRecord(record, number / count, sweep);
    return sweep->result;
}

} // namespace zr32
