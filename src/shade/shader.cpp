/* shader.cpp - the per-pixel procedure of the four shaders.
 *
 * A row loop reads mask, offset and colour, takes one or two normals from the offsets, lights them and writes through
 * the gamma map. Pixels between two outline features are lit from two offsets and mixed; seams of the profile are lit
 * from two normals and mixed in colour; a flat interior is lit once and reused. What the lighting models differ in
 * stands in lightsum.h, but for where the ambient colour comes from.
 */
#include "shade/shader.h"

#include "shade/lightsum.h"
#include "shade/planes.h"

namespace zr32 {

namespace {

/* One offset of a pixel, lit. */
struct LITPOINT {
    double z;      /* of the normal */
    double weight; /* not 0: a seam, of lit[1] against lit[0] */
    LIT lit[2];    /* lit[1] of a seam only */
};

/* Lit offsets of the call so far, found again by their records: straight edges and level runs repeat them. */
struct LITCACHE {
    uint64_t record; /* the part of the offset record that was lit */
    int32_t state;   /* 0 empty, 1 as it stands, 2 of a pixel outside the shape */
    LITPOINT point;
};

constexpr size_t cacheEntries = 256;

struct SHADESTATE {
    const SHADEJOB *job;
    LIGHTCALL lights;
    BUFINFO image;
    BUFINFO distance;
    BUFINFO normals;
    BUFINFO mask;
    BUFINFO flat;
    BUFINFO bump;
    BUFINFO tint;
    int flatOn;
    int bumpOn;
    int bumpGiven; /* either bump argument by itself ends the reuse of flatColor */
    int cacheable; /* nothing but the record decides the light on an offset */
    double bumpScale;
    double normal[3];     /* as the last offset of the call left it */
    int lastColor[3];     /* of the pixel that filled flatColor */
    int64_t flatColor[3]; /* of the level surface */

    /* of the pixel at hand */
    int32_t col;
    int32_t row;
    uint8_t base[3]; /* its colour on entry */
    double gx;
    double gy;

    LITCACHE cache[cacheEntries];
};

/* The byte of a colour of at most 255. Lights set below zero can darken a pixel beyond black. */
uint8_t Written(int64_t value)
{
    return gammaMap[std::max<int64_t>(value, 0)];
}

/* ---- accumulating ---- */

inline void AddLit(const SHADESTATE *st, const LIT &lit, int64_t *acc)
{
    for (int c = 0; c < 3; c++) {
        acc[c] += TruncInt(st->base[c] * lit.diffuse);
        acc[c] += TruncInt(lit.spec[c]);
    }
}

inline void CutToByte(int64_t *acc)
{
    for (int c = 0; c < 3; c++) acc[c] = std::min<int64_t>(acc[c], 255);
}

/* One channel of one normal of a seam. */
template <MODEL model> double SeamColour(const SHADESTATE *st, const LIT &lit, int c)
{
    return std::min(st->base[c] * lit.diffuse + SeamHighlight<model>(lit.spec[c]), 255.0);
}

/* One pass: the light on the point into acc, and in the first pass into the mask. */
template <MODEL model> void AddPoint(const SHADESTATE *st, const LITPOINT &point, uint8_t *alpha, int64_t *acc)
{
    const double t = point.weight;
    const LIT *lit = point.lit;
    double strength = lit[0].strength;
    if (t == 0) {
        AddLit(st, lit[0], acc);
    } else {
        strength = t * lit[1].strength + (1 - t) * strength;
        for (int c = 0; c < 3; c++)
            acc[c] += TruncInt(SeamColour<model>(st, lit[1], c) * t + SeamColour<model>(st, lit[0], c) * (1 - t));
    }
    if (alpha) *alpha = AlphaRaised<model>(strength, *alpha);
    CutToByte(acc);
}

/* ---- one offset ---- */

/* Lights the surface at an offset, bump included. Leaves the call's normal behind. */
template <MODEL model> void LightAt(SHADESTATE *st, double x, double y, int firstPass, LITPOINT *point)
{
    ProfileNormal(st->job->form, &x, &y, st->normal);
    point->weight = RIMBLEND.weight;
    if (RIMBLEND.weight == 0) {
        if (st->bumpOn) Ruffle(st->gx, st->gy, st->normal);
        LightSum<model>(&st->lights, st->normal, PLACE_PLAIN, &point->lit[0]);
    } else {
        if (st->bumpOn) {
            Ruffle(st->gx, st->gy, RIMBLEND.first);
            Ruffle(st->gx, st->gy, RIMBLEND.second);
        }
        LightSum<model>(&st->lights, RIMBLEND.first, PLACE_SEAM, &point->lit[0]);
        LightSum<model>(&st->lights, RIMBLEND.second, firstPass ? PLACE_SEAM_SECOND : PLACE_SEAM, &point->lit[1]);
    }
    point->z = st->normal[2];
}

/* The same for the first offset of a record, found again where it has been lit before. Of the normal that it would
 * leave behind only z is ever asked for: an unknown profile, which asks for all of it, is not remembered. */
template <MODEL model> const LITPOINT *LightRecord(SHADESTATE *st, uint64_t record, int outside, double x, double y)
{
    LITCACHE *entry = &st->cache[(record ^ record >> 29) * 0x9E3779B97F4A7C15u >> 56];
    static_assert(cacheEntries == 256, "the eight bits on top are the entry");
    const int32_t state = outside ? 2 : 1;
    if (entry->state == state && entry->record == record) {
        st->normal[2] = entry->point.z;
    } else {
        LightAt<model>(st, x, y, 1, &entry->point);
        entry->state = state;
        entry->record = record;
    }
    return &entry->point;
}

/* ---- the two branches ---- */

/* A metal's ambient colour and tint at the pixel, both of which outlast it. */
template <MODEL model> void MetalStart(const SHADESTATE *st, const SHADEROW &tint)
{
    if (!IsMetal(model)) return;
    for (int c = 0; c < 3; c++) METALLIGHTS.metalBase[c] = TruncByte(st->lights.factors->ambient * st->base[c]);
    if (st->job->tintMap) ColourAt(tint, st->col, METALLIGHTS.specularTint);
}

/* The ambient colour that the light is added to. */
template <MODEL model> int64_t AmbientOf(const SHADESTATE *st, int c)
{
    if (IsMetal(model)) return METALLIGHTS.metalBase[c];
    if (st->job->fixedAmbient) return SHADELIGHTS.ambientColor[c];
    return TruncInt(st->lights.factors->ambient * st->base[c]);
}

struct PIXELROWS {
    SHADEROW image;
    SHADEROW distance;
    SHADEROW normals;
    SHADEROW mask;
    SHADEROW flat;
    SHADEROW bump;
    SHADEROW bumpAbove;
    SHADEROW tint;
};

/* A pixel of the bevel. */
template <MODEL model> void ShadeBevel(SHADESTATE *st, const PIXELROWS &rows, uint8_t *pixel)
{
    const SHADEJOB *job = st->job;
    const uint32_t distance = DistanceBitsAt(rows.distance, st->col);
    OFFSETPAIR offset = OffsetAt(rows.normals, st->col, job->floatNormals);
    const int outside = DistanceIsNegative(distance);
    memcpy(st->base, pixel, 3);
    MetalStart<model>(st, rows.tint);
    /* A plane of floats has pixels without a surface. */
    if (!outside && job->floatNormals && DistanceIsZero(distance) && offset.x1 == 0 && offset.y1 == 0) return;

    int twoPass = 0;
    double mix = 0;
    if (outside) { /* reversed and shrunk to a tenth */
        offset.x1 = -offset.x1 * 0.1;
        offset.y1 = -offset.y1 * 0.1;
    } else if (offset.hasSecond) {
        const double delta = std::fabs(Length({offset.x2, offset.y2}) - Length({offset.x1, offset.y1}));
        twoPass = !(delta > 0.7);
        mix = delta * 0.71 + 0.5;
    }

    uint8_t *alpha = job->specularToAlpha && st->col < rows.mask.count ? &rows.mask.pixels[st->col] : nullptr;
    int64_t accA[3] = {AmbientOf<model>(st, 0), AmbientOf<model>(st, 1), AmbientOf<model>(st, 2)};
    LITPOINT own;
    const LITPOINT *point = &own;
    if (st->cacheable)
        point = LightRecord<model>(st, offset.record, outside, offset.x1, offset.y1);
    else
        LightAt<model>(st, offset.x1, offset.y1, 1, &own);
    AddPoint<model>(st, *point, alpha, accA);
    if (!twoPass) {
        for (int c = 0; c < 3; c++) pixel[c] = Written(accA[c]);
        return;
    }
    int64_t accB[3] = {AmbientOf<model>(st, 0), AmbientOf<model>(st, 1), AmbientOf<model>(st, 2)};
    LightAt<model>(st, offset.x2, offset.y2, 0, &own);
    AddPoint<model>(st, own, nullptr, accB);
    for (int c = 0; c < 3; c++) {
        /* Far below black it is no number that can be cut. */
        const double value = static_cast<double>(accA[c]) * mix + static_cast<double>(accB[c]) * (1 - mix);
        pixel[c] = Written(TruncInt(std::max(value, 0.0)));
    }
}

/* A pixel of the flat interior, mixed with the bevel below it where flatMask is not full. The record is read as words
 * even when the plane holds floats, deliberately. */
template <MODEL model> void ShadeFlat(SHADESTATE *st, const PIXELROWS &rows, uint8_t *pixel)
{
    const SHADEJOB *job = st->job;
    const int m = ByteAt(rows.flat, st->col);
    uint8_t *maskPixel = st->col < rows.mask.count ? &rows.mask.pixels[st->col] : nullptr;
    const int same = pixel[0] == st->lastColor[0] && pixel[1] == st->lastColor[1] && pixel[2] == st->lastColor[2];
    memcpy(st->base, pixel, 3);
    if (!same || st->bumpGiven) { /* else a metal keeps its ambient colour and tint too, of whichever pixel */
        MetalStart<model>(st, rows.tint);
        for (int c = 0; c < 3; c++) {
            st->lastColor[c] = pixel[c];
            st->flatColor[c] = AmbientOf<model>(st, c);
        }
        LIT level;
        if (st->bumpOn) {
            st->normal[0] = -st->gx;
            st->normal[1] = -st->gy;
            st->normal[2] = 1.0;
            VecNormalize(st->normal);
        }
        LevelLight<model>(&st->lights, st->bumpOn ? st->normal : nullptr, st->normal[2], &level);
        AddLit(st, level, st->flatColor);
        CutToByte(st->flatColor);
    }
    if (m == 255) {
        for (int c = 0; c < 3; c++) pixel[c] = Written(st->flatColor[c]);
        if (maskPixel) *maskPixel = 255;
        return;
    }

    OFFSETPAIR offset = OffsetAt(rows.normals, st->col, 0);
    ProfileNormal(job->form, &offset.x1, &offset.y1, st->normal);
    if (st->bumpOn) Ruffle(st->gx, st->gy, st->normal);
    LIT lit;
    LightSum<model>(&st->lights, st->normal, PLACE_PLAIN, &lit);
    int64_t acc[3] = {AmbientOf<model>(st, 0), AmbientOf<model>(st, 1), AmbientOf<model>(st, 2)};
    AddLit(st, lit, acc);
    int64_t a = m;
    if (job->specularToAlpha) a = std::min<int64_t>(int64_t{TruncInt(lit.strength * 255.0)} + m, 255);
    int mask = maskPixel ? *maskPixel : 0;
    if (mask != 255) {
        mask = static_cast<uint8_t>(a + (mask * (255 - a)) / 255);
        if (maskPixel) *maskPixel = static_cast<uint8_t>(mask);
    }
    const double f = m * byteShare;
    for (int c = 0; c < 3; c++) {
        const int bevel = std::min(TruncInt(static_cast<double>(acc[c]) * mask * byteShare), 255);
        const int value = TruncInt(bevel * (1 - f) + static_cast<double>(st->flatColor[c]) * f);
        pixel[c] = Written(std::min(value, 255));
    }
}

/* ---- the image ---- */

template <MODEL model> void ShadeRow(SHADESTATE *st, const PIXELROWS &rows)
{
    for (st->col = 0; st->col < rows.image.count; st->col++) {
        const int inFlat = st->flatOn && ByteAt(rows.flat, st->col) != 0;
        if (!inFlat && ByteAt(rows.mask, st->col) == 0) continue;
        st->lights.col = st->col;
        st->lights.spotKnown = 0;
        if (st->bumpOn) BumpSlopes(rows.bump, rows.bumpAbove, st->col, st->bumpScale, &st->gx, &st->gy);
        uint8_t *pixel = rows.image.pixels + static_cast<size_t>(st->col) * 3;
        if (inFlat)
            ShadeFlat<model>(st, rows, pixel);
        else
            ShadeBevel<model>(st, rows, pixel);
    }
}

template <MODEL model> void StateStart(const SHADEJOB *job, SHADESTATE *st)
{
    st->job = job;
    st->image = BufInfo(job->image);
    st->distance = BufInfo(job->distanceMap);
    st->normals = BufInfo(job->normalMap);
    st->mask = BufInfo(job->mask);
    st->flat = BufInfo(job->flatMask);
    st->bump = BufInfo(job->bumpMap);
    st->tint = BufInfo(job->tintMap);
    st->flatOn = job->form.reflect != 0 && job->flatMask;
    st->bumpOn = job->bumpPercent != 0 && job->bumpMap;
    st->bumpGiven = job->bumpPercent != 0 || job->bumpMap;
    st->bumpScale = job->bumpPercent * 0.01;
    st->normal[0] = st->normal[1] = 0;
    st->normal[2] = 1;
    for (int &channel : st->lastColor) channel = 999; /* no pixel has it */
    st->gx = st->gy = 0;
    LightsStart<model>(job, st->image.width, st->image.height, &st->lights);
    int spots = 0;
    for (int i = 0; i < job->lightCount; i++) spots |= job->spotOn[i];
    st->cacheable = !spots && !st->bumpOn && !job->tintMap && ProfileIsKnown(job->form.profile);
    for (LITCACHE &entry : st->cache) entry.state = 0;
}

template <MODEL model> void ShadeRows(const SHADEJOB *job)
{
    SHADESTATE st;
    StateStart<model>(job, &st);
    for (st.row = 0; st.row < st.image.height; st.row++) {
        const PIXELROWS rows = {RowOf(job->image, st.image, st.row, 3),
                                RowOf(job->distanceMap, st.distance, st.row, 4),
                                RowOf(job->normalMap, st.normals, st.row, 8),
                                RowOf(job->mask, st.mask, st.row, 1),
                                RowOf(job->flatMask, st.flat, st.row, 1),
                                RowOf(job->bumpMap, st.bump, st.row, 1),
                                RowOf(job->bumpMap, st.bump, std::max(st.row - 1, 0), 1),
                                RowOf(job->tintMap, st.tint, st.row, 3)};
        st.lights.row = st.row;
        ShadeRow<model>(&st, rows);
    }
}

} // namespace

int ShadeImage(MODEL model, const SHADEJOB *job)
{
    if (!job->normalMap || !job->image || !job->distanceMap || !job->mask) return 0;
    ProfileTableBuild(job->form.profile, job->form.width, job->form.scale, job->form.invert);
    switch (model) {
    case PHONG: ShadeRows<PHONG>(job); break;
    case METALLIC: ShadeRows<METALLIC>(job); break;
    case MULTI_PHONG: ShadeRows<MULTI_PHONG>(job); break;
    case MULTI_METALLIC: ShadeRows<MULTI_METALLIC>(job); break;
    }
    return 1;
}

} // namespace zr32
