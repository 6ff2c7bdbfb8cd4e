/* undo_steps.cpp - the records of moves and of envelope shapes.
 *
 * Both are exchanges: a move by the place of node 0, exact in fixed point; an envelope by its frame, applied to the
 * shape as it stands, which therefore returns only as far as a second warp brings it.
 */
#include "edit/undo.h"
#include <zr32path/display.h>

namespace zr32 {

namespace {

constexpr uint32_t bilinearPoints = 4;
constexpr uint32_t bicubicPoints = 8;
constexpr uint32_t bicubicNodeCount = 8; /* an outline record with fewer nodes is bilinear */

/* A snapshot of a frame. */
struct FRAMEPOINTS {
    uint32_t count;
    POINTFX *points; /* a BufAlloc block */
};

/* 0 without memory or when the record is no frame; *noMemory tells the two apart. */
int ReadFrame(const PATHREC *frame, FRAMEPOINTS *out, int *noMemory)
{
    *noMemory = 0;
    if (!frame) return 0;
    const int bilinear = frame->nodeCount < bicubicNodeCount;
    POINTFX read[bicubicPoints];
    if (!(bilinear ? ZrPathGetBiLinearEnvelope(frame, read) : ZrPathGetBiBezierEnvelope(frame, read))) return 0;
    out->count = bilinear ? bilinearPoints : bicubicPoints;
    out->points = static_cast<POINTFX *>(BufAlloc(0, sizeof(POINTFX) * out->count));
    if (!out->points) {
        *noMemory = 1;
        return 0;
    }
    for (uint32_t i = 0; i < out->count; i++) out->points[i] = read[i];
    return 1;
}

void StoreFrame(const FRAMEPOINTS &frame, URRECORD *record)
{
    record->words[0] = frame.count;
    record->words[1] = reinterpret_cast<uintptr_t>(frame.points);
    record->points = frame.points;
}

FRAMEPOINTS StoredFrame(const URRECORD *record)
{
    return {static_cast<uint32_t>(record->words[0]), record->points};
}

/* The undistorted rectangle: the opposite sides stand above each other, and each is level. */
int FrameIsRectangle(const POINTFX *p)
{
    for (int i = 0; i < 4; i++)
        if (p[4 + i].x != p[i].x || p[i].y != p[0].y || p[4 + i].y != p[4].y) return 0;
    return 1;
}

void ApplyFrame(PATHREC *active, const FRAMEPOINTS &frame)
{
    if (frame.count == bilinearPoints) {
        ZrPathBiLinear(active, frame.points);
        ZrPathAddBiLinearEnvelope(active, frame.points);
        return;
    }
    if (!FrameIsRectangle(frame.points)) ZrPathBiCubic(active, frame.points);
    ZrPathAddBiBezierEnvelope(active, frame.points);
}

} // namespace

URRECORD *URMoveRecord(uint32_t action, const PATHREC *selected)
{
    if (!selected || selected->nodeCount == 0) return nullptr;
    URRECORD *record = URNewRecord(action, 2);
    if (!record) return nullptr;
    record->words[0] = static_cast<uint32_t>(selected->nodes[0].x);
    record->words[1] = static_cast<uint32_t>(selected->nodes[0].y);
    return record;
}

void URMoveApply(const COORDSTRUCT *view, PATHREC *selected, URRECORD *record, RECT *dirty)
{
    if (!selected || selected->nodeCount == 0 || record->count < 2) return;
    const POINTFX stored = {static_cast<FIXED>(static_cast<uint32_t>(record->words[0])),
                            static_cast<FIXED>(static_cast<uint32_t>(record->words[1]))};
    const POINTFX now = {selected->nodes[0].x, selected->nodes[0].y};
    record->words[0] = static_cast<uint32_t>(now.x);
    record->words[1] = static_cast<uint32_t>(now.y);
    const POINTFX delta = PtfxSub(stored.x, stored.y, now.x, now.y);

    RECT hidden = {0, 0, 0, 0};
    RECT drawn = {0, 0, 0, 0};
    ZrPathHideSelected(view, selected, &hidden);
    ZrPathMovePathsByPtfx(selected, delta.x, delta.y);
    ZrPathDrawSelected(view, selected, &drawn);
    if (dirty) UnionRect(dirty, &hidden, &drawn);
}

URRECORD *UREnvelopeRecord(const PATHREC *frame)
{
    FRAMEPOINTS present;
    int noMemory;
    if (!ReadFrame(frame, &present, &noMemory)) return nullptr;
    URRECORD *record = URNewRecord(UR_ENVELOPE, 2);
    if (!record) {
        BufFree(present.points);
        return nullptr;
    }
    StoreFrame(present, record);
    return record;
}

int UREnvelopeApply(PATHREC *active, const PATHREC *frame, URRECORD *record)
{
    FRAMEPOINTS present;
    int noMemory;
    if (!record->points) return 1;
    if (!ReadFrame(frame, &present, &noMemory)) return !noMemory; /* without a frame the step counts all the same */
    const FRAMEPOINTS stored = StoredFrame(record);
    StoreFrame(present, record);
    ApplyFrame(active, stored);
    BufFree(stored.points);
    return 1;
}

void URFreePoints(URRECORD *record)
{
    BufFree(record->points);
    record->points = nullptr;
}

} // namespace zr32
