/* join.cpp - what closes the gaps between one cross-section and the next.
 *
 * The outer ends run along the rim of the bevel and the inner ends along its ridge; both are walked as edges, which
 * gives them their smooth borders. In between, samples that lie apart are joined by whole pixels.
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

/* Walks a rim on to its next point. Points closer than gather are left for later, so that a smooth line is walked in
 * its fine steps and misses no pixel that it only clips. */
void RimTo(RENDER *render, RIMWALK *rim, SAMPLE *to, const POINTDB &inside, double gather)
{
    if (rim->open && Apart(&rim->from, to) <= gather) return;
    if (rim->open) ABufWalkLine(&render->abuf, &rim->from, to, inside);
    rim->from = *to;
    rim->open = 1;
}

/* What is left of a rim, from both ends so that the last pixel is not missed. */
void RimEnd(RENDER *render, RIMWALK *rim, SAMPLE *last, const POINTDB &inside)
{
    ABufWalkLine(&render->abuf, &rim->from, last, inside);
    ABufWalkLine(&render->abuf, last, &rim->from, inside);
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

/* The edge where the surface turns from the eye: the pixel is covered against the direction of the normal. */
void PutSilhouette(RENDER *render, SAMPLE *sample)
{
    const POINTDB out = {sample->normal.x, sample->normal.y};
    const EDGESHAPE shape = {EDGE_ACROSS, {0, 0}, out * (1 / Length(out)), sample->at};
    ABufPutEdge(&render->abuf, PixelIndex(sample->at.x), PixelIndex(sample->at.y), sample, &shape);
}

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

void SideEdge(RENDER *render, int ofLast)
{
    if (render->joined < 2) return;
    STRIP *strip = &render->strips[ofLast ? render->current : render->current ^ 1];
    const STRIP *other = &render->strips[ofLast ? render->current ^ 1 : render->current];
    uint32_t k = 0;
    for (uint32_t i = 0; i + 1 < strip->count; i++) {
        SAMPLE *from = &strip->points[i].sample;
        if (PixelIndex(from->at.x) == PixelIndex(strip->rim.at.x) &&
            PixelIndex(from->at.y) == PixelIndex(strip->rim.at.y))
            continue; /* the rim has the corner there */
        while (k + 1 < other->count && other->points[k].share < strip->points[i].share) k++;
        ABufWalkLine(&render->abuf, from, &strip->points[i + 1].sample, other->points[k].sample.at);
    }
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
    strip->rim.normal = strip->points[0].sample.normal;
    strip->rim.facing = strip->points[0].sample.facing;
    if (render->joined) FillStrips(render, before, strip);
    RimTo(render, &render->outer, &strip->rim, inside, 1.0);
    RimTo(render, &render->inner, &strip->points[strip->count - 1].sample, inside, 0.0);
    render->joined++;
    return 1;
}

} // namespace zr32
