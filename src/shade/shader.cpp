/* shader.cpp - the per-pixel procedure of the four shaders.
 *
 * A row loop reads mask, offset and colour, takes one or two normals from the offsets, lights them and writes through
 * the gamma map. Pixels between two outline features are lit from two offsets and mixed; seams of the profile are lit
 * from two normals and mixed in colour; a flat interior is lit once and reused. The models differ in LightSum, in how a
 * highlight is rounded into the mask (AlphaRaised) and in where the ambient colour comes from, and in nothing else.
 *
 * Reflectance: B. T. Phong, Illumination for Computer Generated Pictures, 1975, with the viewer on the z axis.
 */
#include "shade/shader.h"

#include "geometry/vector.h"
#include "shade/planes.h"

#include <algorithm>

namespace zr32 {

namespace {

constexpr double byteShare = 0.00392156862745098; /* 1 / 255 */

/* What one normal gets of all lights. */
struct LIT {
    double diffuse;  /* factor of the pixel's colour */
    double spec[3];  /* highlight to add, by channel */
    double strength; /* of the highlight, for the mask */
    int hasDiffuse;
    int hasSpec;
};

/* The surface at one offset. */
struct SURFACEPOINT {
    double normal[3];
    double first[3]; /* of a seam */
    double second[3];
    double weight; /* not 0: a seam */
};

/* Lit offsets of the call so far, found again by their words: straight edges and level runs repeat them. */
struct LITCACHE {
    uint32_t key; /* 1 + place of the entry's offset, 0 empty */
    int16_t x;
    int16_t y;
    SURFACEPOINT point;
    LIT lit[2]; /* plain, or first and second */
};

constexpr uint32_t cacheEntries = 256;

struct SHADESTATE {
    const SHADEJOB *job;
    const LIGHTFACTORS *factors;
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
    double bumpScale;
    double spotHeight[maxLights];
    double quietBelow[maxLights]; /* below this S a plain highlight adds less than one level */
    double fresnelFloor;
    double normal[3]; /* as the last offset of the call left it */
    int lastColor[3]; /* of the pixel that filled flatColor */
    int64_t flatColor[3];

    /* of the pixel at hand */
    int32_t col;
    int32_t row;
    uint8_t base[3];
    int64_t ambient[3];
    double spotFactor[maxLights];
    double gx;
    double gy;
    int cacheable;
    LITCACHE cache[cacheEntries];
};

enum LIGHTPLACE {
    PLACE_PLAIN,
    PLACE_SEAM,        /* first of a seam, or either normal of the second pass */
    PLACE_SEAM_SECOND, /* second of a seam in the first pass */
};

/* The byte of a colour of at most 255. Lights set below zero can darken a pixel beyond black. */
uint8_t Written(int64_t value)
{
    return gammaMap[std::max<int64_t>(value, 0)];
}

double SpotTimes(const SHADESTATE *st, int i, double value)
{
    return st->job->spotOn[i] ? value * st->spotFactor[i] : value;
}

/* ---- the lighting models ---- */

/* The mirrored view vector in the direction of a light. */
double MirrorDot(const double *n, const double *l)
{
    return 2 * n[2] * n[0] * l[0] + 2 * n[2] * n[1] * l[1] + (2 * n[2] * n[2] - 1) * l[2];
}

/* Diffuse and highlight of light i, added to lit. D and S are the light's share on the normal and on its mirror. */
template <MODEL model> void AddDiffuse(const SHADESTATE *st, int i, double D, LIT *lit)
{
    const double factor = st->factors->diffuse[i];
    if (IsMulti(model)) {
        if (D > 0.0) lit->diffuse += SpotTimes(st, i, factor * D);
    } else {
        lit->hasDiffuse = !(D < 0);
        lit->diffuse = model == METALLIC ? SpotTimes(st, i, factor) * D : SpotTimes(st, i, D * factor);
    }
}

template <MODEL model> void AddPhongHighlight(const SHADESTATE *st, int i, double S, LIT *lit)
{
    const double s = SpotTimes(st, i, std::pow(S, st->factors->shininess[i]) * st->factors->specular[i]);
    for (int c = 0; c < 3; c++) lit->spec[c] += SHADELIGHTS.lightColor[i][c] * s;
    lit->strength += s;
}

/* The metal's tint at the core of the highlight, towards white at its skirts. p stands in for the cosine of the table,
 * though it is a cosine raised to a power; results depend on it. */
template <MODEL model> void AddMetalHighlight(const SHADESTATE *st, int i, double S, LIGHTPLACE place, LIT *lit)
{
    const double p = std::pow(S, st->factors->shininess[i]);
    const double F = (FresnelAt(TruncInt(p * 1000.0)) - st->fresnelFloor) / (1.0 - st->fresnelFloor);
    double s = SpotTimes(st, i, st->factors->specular[i] * p);
    /* A spot on the second normal of a seam takes the diffuse factor, deliberately. */
    if (model == MULTI_METALLIC && place == PLACE_SEAM_SECOND && st->job->spotOn[i])
        s = st->factors->diffuse[i] * st->spotFactor[i] * p;
    for (int c = 0; c < 3; c++) {
        const double own = METALLIGHTS.specularTint[c];
        lit->spec[c] += s * (F < 0.0 ? own : (255 - own) * F + own);
    }
    lit->strength += s;
}

template <MODEL model> void AddHighlight(const SHADESTATE *st, int i, double S, LIGHTPLACE place, LIT *lit)
{
    if (IsMetal(model))
        AddMetalHighlight<model>(st, i, S, place, lit);
    else
        AddPhongHighlight<model>(st, i, S, lit);
}

/* 1 when the model gives a highlight for S: inclusive with one light, strict with several. */
template <MODEL model> int ShowsHighlight(double S)
{
    const double least = IsMetal(model) ? 0.0 : 0.01;
    return IsMulti(model) ? S > least : !(S < least);
}

/* The light on one normal. */
template <MODEL model> LIT LightSum(const SHADESTATE *st, const double *normal, LIGHTPLACE place)
{
    LIT lit = {};
    for (int i = 0; i < st->job->lightCount; i++) {
        const double *direction = SHADELIGHTS.lightDir[i];
        AddDiffuse<model>(st, i, Vec3Dot(normal, direction), &lit);
        const double S = MirrorDot(normal, direction);
        if (!ShowsHighlight<model>(S)) continue;
        lit.hasSpec = 1;
        if (place == PLACE_PLAIN && S < st->quietBelow[i]) continue;
        AddHighlight<model>(st, i, S, place, &lit);
    }
    if (IsMulti(model)) {
        lit.hasDiffuse = lit.diffuse != 0;
        lit.hasSpec = 1;
    }
    return lit;
}

/* The light on the level surface. Without bump the mirrored view comes from the z of the last offset's normal,
 * whichever that was, deliberately. With one light a highlight below the least counts as 0 and is added all the same.
 */
template <MODEL model> LIT LevelLight(SHADESTATE *st)
{
    LIT lit = {};
    double *level = st->normal;
    if (st->bumpOn) {
        level[0] = -st->gx;
        level[1] = -st->gy;
        level[2] = 1.0;
        VecNormalize(level);
    }
    const double z = level[2];
    for (int i = 0; i < st->job->lightCount; i++) {
        const double *direction = SHADELIGHTS.lightDir[i];
        const double D = st->bumpOn ? Vec3Dot(level, direction) : direction[2];
        double S = st->bumpOn ? MirrorDot(level, direction) : (2 * z * z - 1) * direction[2];
        AddDiffuse<model>(st, i, D, &lit);
        if (!ShowsHighlight<model>(S)) {
            if (IsMulti(model)) continue;
            S = 0.0;
        }
        AddHighlight<model>(st, i, S, PLACE_PLAIN, &lit);
    }
    if (IsMulti(model)) lit.hasDiffuse = lit.diffuse != 0;
    lit.hasSpec = 1;
    return lit;
}

/* The mask raised by a highlight: with one light the highlight is cut to whole levels before it is added, with several
 * behind. */
template <MODEL model> uint8_t AlphaRaised(double strength, int mask)
{
    if (IsMulti(model)) return TruncByte(std::min(strength * 255.0 + mask, 255.0));
    return static_cast<uint8_t>(std::min<int64_t>(int64_t{TruncInt(strength * 255.0)} + mask, 255));
}

/* ---- accumulating ---- */

void AddLit(const SHADESTATE *st, const LIT &lit, int64_t *acc)
{
    for (int c = 0; c < 3; c++) {
        if (lit.hasDiffuse) acc[c] += TruncInt(st->base[c] * lit.diffuse);
        if (lit.hasSpec) acc[c] += TruncInt(lit.spec[c]);
    }
}

void CutToByte(int64_t *acc)
{
    for (int c = 0; c < 3; c++) acc[c] = std::min<int64_t>(acc[c], 255);
}

/* One channel of one normal of a seam. */
template <MODEL model> double SeamColour(const SHADESTATE *st, const LIT &lit, int c)
{
    double colour = lit.hasDiffuse ? st->base[c] * lit.diffuse : 0.0;
    if (lit.hasSpec) colour += IsMulti(model) ? TruncInt(lit.spec[c]) : lit.spec[c];
    return std::min(colour, 255.0);
}

/* One pass: the light on the surface point into acc, and in the first pass into the mask. */
template <MODEL model>
void LightPoint(const SHADESTATE *st, const SURFACEPOINT &point, const LIT *lit, uint8_t *alpha, int64_t *acc)
{
    const double t = point.weight;
    if (t == 0) {
        if (alpha && lit[0].hasSpec) *alpha = AlphaRaised<model>(lit[0].strength, *alpha);
        AddLit(st, lit[0], acc);
    } else {
        for (int c = 0; c < 3; c++)
            acc[c] += TruncInt(SeamColour<model>(st, lit[1], c) * t + SeamColour<model>(st, lit[0], c) * (1 - t));
        if (alpha) *alpha = AlphaRaised<model>(t * lit[1].strength + (1 - t) * lit[0].strength, *alpha);
    }
    CutToByte(acc);
}

/* ---- one offset ---- */

void Ruffle(const SHADESTATE *st, double *normal)
{
    normal[0] -= st->gx;
    normal[1] -= st->gy;
    VecNormalize(normal);
}

/* The surface at an offset, bump included. Leaves the call's normal behind. */
void PointAt(SHADESTATE *st, double x, double y, SURFACEPOINT *point)
{
    ProfileNormal(st->job->form, &x, &y, st->normal);
    point->weight = RIMBLEND.weight;
    if (point->weight != 0) {
        memcpy(point->first, RIMBLEND.first, sizeof point->first);
        memcpy(point->second, RIMBLEND.second, sizeof point->second);
        if (st->bumpOn) {
            Ruffle(st, point->first);
            Ruffle(st, point->second);
        }
    } else if (st->bumpOn) {
        Ruffle(st, st->normal);
    }
    memcpy(point->normal, st->normal, sizeof point->normal);
}

template <MODEL model> void LightAt(SHADESTATE *st, double x, double y, int firstPass, SURFACEPOINT *point, LIT *lit)
{
    PointAt(st, x, y, point);
    if (point->weight == 0) {
        lit[0] = LightSum<model>(st, point->normal, PLACE_PLAIN);
    } else {
        lit[0] = LightSum<model>(st, point->first, PLACE_SEAM);
        lit[1] = LightSum<model>(st, point->second, firstPass ? PLACE_SEAM_SECOND : PLACE_SEAM);
    }
}

/* The same for an offset in 1/256 pixel, remembered where nothing but the offset decides. */
template <MODEL model>
const LITCACHE *LightAtWords(SHADESTATE *st, const SURFVEC16 &words, int outside, double x, double y)
{
    uint32_t mixed =
        (static_cast<uint32_t>(static_cast<uint16_t>(words.x1)) << 16 | static_cast<uint16_t>(words.y1)) * 2654435761u;
    mixed = (mixed >> 24) % cacheEntries;
    LITCACHE *entry = &st->cache[mixed];
    const uint32_t key = outside ? 2 : 1;
    if (entry->key == key && entry->x == words.x1 && entry->y == words.y1) {
        memcpy(st->normal, entry->point.normal, sizeof st->normal);
        return entry;
    }
    LightAt<model>(st, x, y, 1, &entry->point, entry->lit);
    entry->key = key;
    entry->x = words.x1;
    entry->y = words.y1;
    return entry;
}

/* ---- the two branches ---- */

/* The pixel's ambient colour, which the light is added to. */
template <MODEL model> void AmbientStart(SHADESTATE *st, const SHADEROW &tint)
{
    for (int c = 0; c < 3; c++) {
        if (IsMetal(model)) {
            METALLIGHTS.metalBase[c] = TruncByte(st->factors->ambient * st->base[c]);
            st->ambient[c] = METALLIGHTS.metalBase[c];
        } else {
            st->ambient[c] =
                st->job->fixedAmbient ? SHADELIGHTS.ambientColor[c] : TruncInt(st->factors->ambient * st->base[c]);
        }
    }
    if (IsMetal(model) && st->job->tintMap) ColourAt(tint, st->col, METALLIGHTS.specularTint);
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
    AmbientStart<model>(st, rows.tint);
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
    int64_t accA[3];
    memcpy(accA, st->ambient, sizeof accA);
    if (st->cacheable && st->col < rows.normals.count) {
        SURFVEC16 words;
        memcpy(&words, rows.normals.pixels + static_cast<size_t>(st->col) * 8, sizeof words);
        const LITCACHE *entry = LightAtWords<model>(st, words, outside, offset.x1, offset.y1);
        LightPoint<model>(st, entry->point, entry->lit, alpha, accA);
    } else {
        SURFACEPOINT point;
        LIT lit[2];
        LightAt<model>(st, offset.x1, offset.y1, 1, &point, lit);
        LightPoint<model>(st, point, lit, alpha, accA);
    }
    if (!twoPass) {
        for (int c = 0; c < 3; c++) pixel[c] = Written(accA[c]);
        return;
    }
    SURFACEPOINT point;
    LIT lit[2];
    int64_t accB[3];
    memcpy(accB, st->ambient, sizeof accB);
    LightAt<model>(st, offset.x2, offset.y2, 0, &point, lit);
    LightPoint<model>(st, point, lit, nullptr, accB);
    for (int c = 0; c < 3; c++)
        pixel[c] = Written(TruncInt(static_cast<double>(accA[c]) * mix + static_cast<double>(accB[c]) * (1 - mix)));
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
    const int fresh = !same || st->bumpGiven;
    /* On a colour match a metal keeps what the last pixel that wrote them left. */
    if (fresh || !IsMetal(model)) AmbientStart<model>(st, rows.tint);
    if (fresh) {
        for (int c = 0; c < 3; c++) st->lastColor[c] = pixel[c];
        memcpy(st->flatColor, st->ambient, sizeof st->flatColor);
        AddLit(st, LevelLight<model>(st), st->flatColor);
        CutToByte(st->flatColor);
    }
    if (m == 255) {
        for (int c = 0; c < 3; c++) pixel[c] = Written(st->flatColor[c]);
        if (maskPixel) *maskPixel = 255;
        return;
    }

    OFFSETPAIR offset = OffsetAt(rows.normals, st->col, 0);
    ProfileNormal(job->form, &offset.x1, &offset.y1, st->normal);
    if (st->bumpOn) Ruffle(st, st->normal);
    const LIT lit = LightSum<model>(st, st->normal, PLACE_PLAIN);
    int64_t acc[3];
    memcpy(acc, st->ambient, sizeof acc);
    AddLit(st, lit, acc);
    int64_t a = m;
    if (job->specularToAlpha && lit.hasSpec) a = std::min<int64_t>(int64_t{TruncInt(lit.strength * 255.0)} + m, 255);
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

void SpotFactors(SHADESTATE *st, double power)
{
    for (int i = 0; i < st->job->lightCount; i++) {
        if (!st->job->spotOn[i]) continue;
        double v[3] = {static_cast<double>(st->col) / st->image.width * 100.0 - st->job->spotX[i],
                       static_cast<double>(st->row) / st->image.height * 100.0 - st->job->spotY[i], -st->spotHeight[i]};
        Vec3Normalize(v);
        const double c = -Vec3Dot(SHADELIGHTS.lightDir[i], v);
        st->spotFactor[i] = c >= 0 ? std::pow(c, power) : 0.0; /* 0 also where c is not a number */
    }
}

template <MODEL model> void ShadeRow(SHADESTATE *st, const PIXELROWS &rows)
{
    const double power = IsMulti(model) ? st->factors->multiSpotPower : st->factors->spotPower;
    for (st->col = 0; st->col < rows.image.count; st->col++) {
        const int inFlat = st->flatOn && ByteAt(rows.flat, st->col) != 0;
        if (!inFlat && ByteAt(rows.mask, st->col) == 0) continue;
        SpotFactors(st, power);
        if (st->bumpOn) BumpSlopes(rows.bump, rows.bumpAbove, st->col, st->bumpScale, &st->gx, &st->gy);
        uint8_t *pixel = rows.image.pixels + static_cast<size_t>(st->col) * 3;
        if (inFlat)
            ShadeFlat<model>(st, rows, pixel);
        else
            ShadeBevel<model>(st, rows, pixel);
    }
}

/* How high a spot hangs over the image: a cone with one light, a sphere with several. Highest over the middle. */
template <MODEL model> double SpotHeight(int32_t x, int32_t y)
{
    const double dx = x - 50.0;
    const double dy = y - 50.0;
    const double d = (dy * dy + dx * dx) * 2;
    if (IsMulti(model)) return d < 5000.0 ? std::sqrt(5000.0 - d) : 0.0;
    return std::max(70.71 - std::sqrt(d), 0.0);
}

/* S below which the highlight of light i adds less than one level to any channel and to the mask: a power not worked
 * out there changes nothing. Only where one light is added by itself, so that nothing else can make up for the
 * fraction. */
template <MODEL model> double QuietBelow(const SHADESTATE *st, int i)
{
    const double strongest = st->factors->specular[i] * 255.0;
    const double exponent = st->factors->shininess[i];
    if (IsMulti(model) || st->job->spotOn[i] || !(strongest > 1.0) || !(exponent >= 1.0)) return 0.0;
    return std::pow(0.999 / strongest, 1.0 / exponent) * 0.999999;
}

template <MODEL model> void StateStart(const SHADEJOB *job, SHADESTATE *st)
{
    st->job = job;
    st->factors = IsMetal(model) ? &METALLIGHTS.factors : &SHADELIGHTS.factors;
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
    st->cacheable = !job->floatNormals && !st->bumpOn && !job->tintMap && ProfileIsKnown(job->form.profile);
    for (LITCACHE &entry : st->cache) entry.key = 0;
    for (int i = 0; i < job->lightCount; i++) {
        memcpy(SHADELIGHTS.lightDir[i], job->direction[i], sizeof SHADELIGHTS.lightDir[i]);
        st->spotHeight[i] = SpotHeight<model>(job->spotX[i], job->spotY[i]);
        st->quietBelow[i] = QuietBelow<model>(st, i);
        if (job->spotOn[i]) st->cacheable = 0;
    }
    if (IsMetal(model)) {
        for (int c = 0; c < 3; c++) METALLIGHTS.specularTint[c] = static_cast<uint8_t>(job->tint >> (8 * c));
        FresnelTableInit();
        st->fresnelFloor = FresnelAt(999);
    }
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
