/* join.cpp - what closes the gaps between one cross-section and the next.
 *
 * The outer ends run along the rim of the bevel and the inner ends along its ridge; both are walked as edges, which
 * gives them their smooth borders. In between, samples that lie apart are joined by whole pixels. The edges are drawn
 * when all sections of a segment stand, since an edge takes a whole sample of its own surface back, but not the other
 * way round.
 */
#include "render3d/render.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

constexpr double closeEnough = 0.5; /* pixels of the longer axis */

double Apart(const SAMPLE *a, const SAMPLE *b)
{
    return std::max(std::fabs(a->at.x - b->at.x), std::fabs(a->at.y - b->at.y));
}

uint32_t MixColour(uint32_t a, uint32_t b, double t)
{
    uint32_t mix = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const double from = a >> shift & 0xFFu;
        const double to = b >> shift & 0xFFu;
        mix |= static_cast<uint32_t>(TruncByte(from + (to - from) * t)) << shift;
    }
    return mix;
}

/* The edge in every pixel that the line from one sample to the next only clips, which its steps may have missed. */
void PutClipped(RENDER *render, SAMPLE *from, const SAMPLE *to, const POINTDB &inside)
{
    const POINTDB d = to->at - from->at;
    if (!std::isfinite(d.x) || !std::isfinite(d.y)) return;
    const auto putAt = [&](double x, double y, const POINTDB &at) {
        const EDGESHAPE shape = {EDGE_ALONG, at, at + d, inside};
        ABufPutEdge(&render->abuf, PixelIndex(x), PixelIndex(y), from, &shape);
    };
    /* Both pixels at each crossing of a pixel border, columns first. */
    const double width = render->abuf.info.width;
    const double height = render->abuf.info.height;
    const double firstX = std::max(0.0, std::ceil(std::min(from->at.x, to->at.x)));
    for (double x = firstX; x <= std::min(width, std::max(from->at.x, to->at.x)); x++) {
        const double y = from->at.y + d.y * ((x - from->at.x) / d.x);
        putAt(x - 1, y, {x, y});
        putAt(x, y, {x, y});
    }
    const double firstY = std::max(0.0, std::ceil(std::min(from->at.y, to->at.y)));
    for (double y = firstY; y <= std::min(height, std::max(from->at.y, to->at.y)); y++) {
        const double x = from->at.x + d.x * ((y - from->at.y) / d.y);
        putAt(x, y - 1, {x, y});
        putAt(x, y, {x, y});
    }
}

/* The pixel is covered against the direction of the normal. What is seen of the surface from behind ends at the same
 * line, if there is any. */
void SilhouetteDraw(RENDER *render, SAMPLE *sample)
{
    const POINTDB out = {sample->normal.x, sample->normal.y};
    const EDGESHAPE shape = {EDGE_ACROSS, {0, 0}, out * (1 / Length(out)), sample->at};
    const int32_t x = PixelIndex(sample->at.x);
    const int32_t y = PixelIndex(sample->at.y);
    SAMPLE behind = *sample;
    behind.facing = sample->facing > 0 ? -1 : 1;
    ABufPutEdge(&render->abuf, x, y, sample, &shape);
    if (PixelHasWhole(&render->abuf, x, y, &behind)) ABufPutEdge(&render->abuf, x, y, &behind, &shape);
}

void EdgeDraw(RENDER *render, KEPTEDGE *edge)
{
    if (edge->isSilhouette) {
        SilhouetteDraw(render, &edge->from);
        return;
    }
    ABufWalkLine(&render->abuf, &edge->from, &edge->to, edge->inside);
    PutClipped(render, &edge->from, &edge->to, edge->inside);
}

/* Keeps an edge until the face stands: where it leaves nothing of a pixel, no later whole sample may fill it again.
 * What would be too much to keep, or finds no memory, is drawn at once. */
void EdgeKeep(RENDER *render, const KEPTEDGE &edge)
{
    constexpr uint32_t mostKept = 1u << 16;
    KEPTEDGES *kept = &render->kept;
    if (kept->count == mostKept) EdgesDraw(render);
    if (kept->count == kept->room) {
        const uint32_t room = kept->room ? kept->room * 2 : 256;
        KEPTEDGE *edges = static_cast<KEPTEDGE *>(BufReAlloc(kept->edges, room * sizeof(KEPTEDGE), 0));
        if (!edges) {
            KEPTEDGE now = edge;
            EdgeDraw(render, &now);
            return;
        }
        kept->edges = edges;
        kept->room = room;
    }
    kept->edges[kept->count++] = edge;
}

/* Walks a rim on to its next point. Points closer than a pixel are left for later, so that the line is walked in its
 * fine steps. */
void RimTo(RENDER *render, RIMWALK *rim, const SAMPLE *to, const POINTDB &inside)
{
    constexpr double gather = 1.0;
    if (rim->open && Apart(&rim->from, to) <= gather) return;
    if (rim->open) EdgeKeep(render, {rim->from, *to, inside, 0});
    rim->from = *to;
    rim->open = 1;
}

/* What is left of a rim, from both ends so that the last pixel is not missed. */
void RimEnd(RENDER *render, RIMWALK *rim, const SAMPLE *last, const POINTDB &inside)
{
    EdgeKeep(render, {rim->from, *last, inside, 0});
    EdgeKeep(render, {*last, rim->from, inside, 0});
    rim->open = 0;
}

/* Joins the samples of two strips, in the order of their places along the strips. */
void FillStrips(RENDER *render, const STRIP *a, const STRIP *b)
{
    uint32_t i = 0;
    uint32_t k = 0;
    FillBetween(render, &a->points[0].sample, &b->points[0].sample);
    while (i + 1 < a->count || k + 1 < b->count) {
        const int stepA = k + 1 >= b->count || (i + 1 < a->count && a->points[i + 1].share <= b->points[k + 1].share);
        if (stepA)
            i++;
        else
            k++;
        FillBetween(render, &a->points[i].sample, &b->points[k].sample);
    }
}

} // namespace

void PutSample(RENDER *render, SAMPLE *sample)
{
    if (std::fabs(sample->facing) < facingNear && !sample->atRim) {
        PutSilhouette(render, sample);
        return;
    }
    const int32_t x = PixelIndex(sample->at.x);
    const int32_t y = PixelIndex(sample->at.y);
    if (render->hold && x == render->holdX && y == render->holdY) return;
    if (!PixelHasEdge(&render->abuf, x, y, sample)) ABufPutSolid(&render->abuf, x, y, sample);
}

void FillBetween(RENDER *render, const SAMPLE *a, const SAMPLE *b)
{
    const double apart = Apart(a, b);
    if (!(apart > closeEnough)) return;
    const double width = render->abuf.info.width;
    const double height = render->abuf.info.height;
    if (std::max(a->at.x, b->at.x) < 0 || std::min(a->at.x, b->at.x) >= width || std::max(a->at.y, b->at.y) < 0 ||
        std::min(a->at.y, b->at.y) >= height)
        return;
    /* Two samples so far apart are no neighbours on the surface, only on a projection gone wild. */
    if (apart > width + height) return;
    const double count = std::trunc(apart / closeEnough) + 1;
    render->budget -= static_cast<int64_t>(count);
    SAMPLE from = *a;
    SAMPLE to = *b;
    for (double i = 1; i < count; i++) {
        const double t = i / count;
        SAMPLE sample = from;
        sample.at = LerpPoint(from.at, to.at, t);
        if (!(sample.at.x >= 0 && sample.at.x < width && sample.at.y >= 0 && sample.at.y < height)) continue;
        sample.z = from.z + (to.z - from.z) * t;
        sample.facing = from.facing + (to.facing - from.facing) * t;
        sample.normal = {from.normal.x + (to.normal.x - from.normal.x) * t,
                         from.normal.y + (to.normal.y - from.normal.y) * t,
                         from.normal.z + (to.normal.z - from.normal.z) * t};
        sample.atRim = from.atRim || to.atRim;
        sample.colour = MixColour(SampleColour(&from), SampleColour(&to), t);
        sample.lit = 1;
        PutSample(render, &sample);
    }
}

void SideEdge(RENDER *render, const STRIP *strip, const STRIP *other)
{
    if (strip->count == 0 || other->count == 0) return;
    RIMWALK rim = {strip->rim, 1};
    uint32_t k = 0;
    for (uint32_t i = 0; i < strip->count; i++) {
        while (k + 1 < other->count && other->points[k].share < strip->points[i].share) k++;
        RimTo(render, &rim, &strip->points[i].sample, other->points[k].sample.at);
    }
    RimEnd(render, &rim, &strip->points[strip->count - 1].sample, other->points[k].sample.at);
}

void EdgesDraw(RENDER *render)
{
    for (uint32_t i = 0; i < render->kept.count; i++) EdgeDraw(render, &render->kept.edges[i]);
    render->kept.count = 0;
}

void PutSilhouette(RENDER *render, const SAMPLE *sample)
{
    EdgeKeep(render, {*sample, *sample, sample->at, 1});
}

void JoinBreak(RENDER *render)
{
    if (!render->joined) return;
    STRIP *last = &render->strips[render->current];
    const POINTDB inside = last->points[0].sample.at;
    RimEnd(render, &render->outer, &last->rim, inside);
    RimEnd(render, &render->inner, &last->points[last->count - 1].sample, inside);
    render->joined = 0;
}

int SectionDraw(RENDER *render, const SECTION *section)
{
    STRIP *before = &render->strips[render->current];
    STRIP *strip = &render->strips[render->current ^ 1];
    StripBuild(render, section, strip);
    if (strip->count == 0) {
        JoinBreak(render);
        return 0;
    }
    render->current ^= 1;
    StripDraw(render, strip);
    const POINTDB inside = strip->points[0].sample.at;
    if (render->joined) FillStrips(render, before, strip);
    RimTo(render, &render->outer, &strip->rim, inside);
    RimTo(render, &render->inner, &strip->points[strip->count - 1].sample, inside);
    render->joined++;
    return 1;
}

} // namespace zr32
