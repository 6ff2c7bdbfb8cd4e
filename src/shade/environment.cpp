/* environment.cpp - an image wrapped around the surface: a bump map that follows the bevel, a mirror finish.
 *
 * From each corner of a target pixel a ray runs along the surface normal to a unit sphere around the scene; where it
 * meets the sphere is a place of the source, whose columns run once around and whose rows run from pole to pole. The
 * pixel is the mean of the box that its four corners span. Corners are worked out once and shared by the pixels that
 * touch them: two rows of them are kept. Large boxes are read off a table of sums.
 *
 * Environment mapping: J. F. Blinn and M. E. Newell, Texture and Reflection in Computer Generated Images, 1976.
 */
#include "frame/frame.h"
#include "geometry/vector.h"
#include "shade/normal.h"
#include "shade/planes.h"

#include <zr32path/shade.h>

#include <algorithm>

namespace zr32 {

namespace {

/* Where a corner of a target pixel falls on the source: column and row, not cut. */
struct CORNER {
    double u;
    double v;
    int known;
};

/* One row of corners, one a target column, and the rows of the planes that they are worked out from. */
struct CORNERROW {
    CORNER *corners;
    int32_t row;
    SHADEROW offsets;
    SHADEROW flat;
    SHADEROW bump;
    SHADEROW bumpBefore;
};

/* One wrapping, with what differs between the two exports named. */
struct WRAP {
    PATHBUF normalMap;
    PATHBUF target;
    PATHBUF source;
    PATHBUF mask;
    PATHBUF flatMask; /* may be null, as bumpMap */
    PATHBUF bumpMap;
    int32_t bumpPercent;
    int32_t floats; /* form of the records; also picks the projection: with it latitude and longitude */
    SURFACEFORM form;
    double latitudeFactor; /* 2 / pi to few digits; the two exports have two values, deliberately */
};

struct WRAPSTATE {
    const WRAP *wrap;
    BUFINFO target;
    BUFINFO source;
    BUFINFO normals;
    BUFINFO mask;
    BUFINFO flat;
    BUFINFO bump;
    int flatOn;
    int bumpOn;
    double bumpScale;
    int32_t centreX;
    int32_t centreY;
    double radius;      /* of the scene, pixels */
    int32_t halfHeight; /* of the source, as the next two */
    int32_t quarterWidth;
    int32_t quarterHeight;
    CORNERROW above; /* the upper and the lower edge of the row of pixels at hand */
    CORNERROW below;
    uint32_t *sums;     /* of all bytes above and left, by channel, modulo 2^32; null: boxes are added up */
    int64_t addedUp;    /* bytes added up so far for lack of sums */
    int64_t sumsWanted; /* so many make the sums worth their making */
};

/* ---- corners ---- */

/* The rows of the planes for a row of corners. The bump map's first two slopes downwards start oddly: row 1 against
 * row 0, then row 1 against itself; behind the last row it goes on as that row. */
void CornerRowStart(const WRAPSTATE *st, int32_t row, CORNERROW *corners)
{
    const WRAP *wrap = st->wrap;
    const int32_t lastBump = st->bump.height - 1;
    const int32_t bumpRow = std::max(row, 1);
    const int32_t bumpBefore = row == 1 ? 1 : std::max(row - 1, 0);
    corners->row = row;
    corners->offsets = RowOf(wrap->normalMap, st->normals, row, 8);
    corners->flat = RowOf(wrap->flatMask, st->flat, row, 1);
    corners->bump = RowOf(wrap->bumpMap, st->bump, std::min(bumpRow, lastBump), 1);
    corners->bumpBefore = RowOf(wrap->bumpMap, st->bump, std::min(bumpBefore, lastBump), 1);
    for (int32_t col = 0; col < st->target.width; col++) corners->corners[col].known = 0;
}

/* The normal at a corner; x and y as the profile leaves them. m is the flat interior's coverage there. */
void CornerNormal(const WRAPSTATE *st, const CORNERROW &row, int32_t col, int m, double *x, double *y, double *normal)
{
    double gx = 0;
    double gy = 0;
    if (st->bumpOn) BumpSlopes(row.bump, row.bumpBefore, col, st->bumpScale, &gx, &gy);
    if (m == 255) {
        normal[0] = -gx;
        normal[1] = -gy;
        normal[2] = 1;
        if (st->bumpOn) VecNormalize(normal);
        return;
    }
    ProfileNormal(st->wrap->form, x, y, normal);
    if (st->bumpOn) Ruffle(gx, gy, normal);
    if (m == 0) return;
    const double k = 1.0 - m * byteShare;
    normal[0] = k * normal[0];
    normal[1] = k * normal[1];
    normal[2] = (1 - k) + k * normal[2];
    VecNormalize(normal);
}

CORNER CornerAt(const WRAPSTATE *st, const CORNERROW &row, int32_t col)
{
    const WRAP *wrap = st->wrap;
    const OFFSETPAIR offset = OffsetAt(row.offsets, col, wrap->floats);
    const int m = st->flatOn ? ByteAt(row.flat, col) : 0;
    double x = offset.x1;
    double y = offset.y1;
    double normal[3] = {0, 0, 1};
    CornerNormal(st, row, col, m, &x, &y, normal);

    double h = std::sqrt(x * x + y * y);
    if (h > wrap->form.width) h = wrap->form.width;
    if (wrap->form.scale) h = wrap->form.scale * h * 0.03333333333333333;

    const double p[3] = {(col - st->centreX) / st->radius, (row.row - st->centreY) / st->radius, h / st->radius};
    const double b = Dot3(p, normal);
    const double t = std::sqrt(b * b - (Dot3(p, p) - 1.0)) - b;
    double qx = t * normal[0] + p[0];
    double qy = t * normal[1] + p[1];
    if (wrap->floats) qx = qx / std::sqrt(1.0 - qy * qy);
    const double u = (1.0 - std::acos(qx) * 0.31830989161357204) * st->source.width;
    if (wrap->floats) qy = std::asin(qy) * wrap->latitudeFactor;
    return {u, (qy + 1.0) * st->halfHeight, 1};
}

const CORNER &CornerOf(const WRAPSTATE *st, const CORNERROW &row, int32_t col)
{
    CORNER *corner = &row.corners[col];
    if (!corner->known) *corner = CornerAt(st, row, col);
    return *corner;
}

/* ---- boxes of the source ---- */

/* From least to most of one axis, over the corners that lie within a quarter of the source from the first: neighbours
 * may land on opposite sides of its seam. */
struct EXTENT {
    double least;
    double most;
};

void Widen(EXTENT *extent, double first, double value, int32_t quarter)
{
    if (!(std::fabs(value - first) < quarter)) return;
    if (extent->least < value) {
        if (!(extent->most > value)) extent->most = value;
    } else {
        extent->least = value;
    }
}

/* The column or row of a place, the first or last for what lies outside and the first for no number. */
int32_t Cut(double place, int32_t count)
{
    if (!(place > 0)) return 0;
    return place < count ? TruncInt(place) : count - 1;
}

/* Columns and rows, all of them inclusive. */
struct BOX {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};

/* The sums of the whole source. Without memory, or where a box could pass 32 bits, boxes are added up for ever. */
template <size_t CHANNELS> void SumsMake(WRAPSTATE *st)
{
    st->sumsWanted = INT64_MAX;
    const size_t width = static_cast<size_t>(st->source.width);
    const size_t height = static_cast<size_t>(st->source.height);
    const size_t stride = (width + 1) * CHANNELS;
    if (width * height > 1 << 24) return;
    st->sums = static_cast<uint32_t *>(BufAlloc(bufZero, stride * (height + 1) * sizeof(uint32_t)));
    if (!st->sums) return;
    uint32_t *to = st->sums + stride + CHANNELS;
    for (size_t y = 0; y < height; y++, to += CHANNELS) {
        const uint8_t *from = BufRow(st->wrap->source, st->source, static_cast<int32_t>(y));
        uint32_t row[CHANNELS] = {};
        for (size_t x = 0; x < width; x++)
            for (size_t c = 0; c < CHANNELS; c++, to++) {
                row[c] += *from++;
                *to = *(to - stride) + row[c];
            }
    }
}

/* The sum of each channel over a box. Small boxes are added up byte by byte; the sums are made once the large ones
 * have cost as much as making them. */
template <size_t CHANNELS> void BoxSum(WRAPSTATE *st, const BOX &box, int64_t count, int64_t *sum)
{
    if (count > 16 && st->addedUp >= st->sumsWanted) SumsMake<CHANNELS>(st);
    const size_t left = static_cast<size_t>(box.left) * CHANNELS;
    const size_t right = (static_cast<size_t>(box.right) + 1) * CHANNELS;
    if (count > 16 && st->sums) {
        const size_t stride = (static_cast<size_t>(st->source.width) + 1) * CHANNELS;
        const uint32_t *over = st->sums + stride * static_cast<size_t>(box.top);
        const uint32_t *last = st->sums + stride * (static_cast<size_t>(box.bottom) + 1);
        for (size_t c = 0; c < CHANNELS; c++)
            sum[c] = last[right + c] - last[left + c] - over[right + c] + over[left + c];
        return;
    }
    if (count > 16) st->addedUp += count;
    for (size_t c = 0; c < CHANNELS; c++) sum[c] = 0;
    for (int32_t y = box.top; y <= box.bottom; y++) {
        const uint8_t *row = BufRow(st->wrap->source, st->source, y);
        for (size_t at = left; at < right; at += CHANNELS)
            for (size_t c = 0; c < CHANNELS; c++) sum[c] += row[at + c];
    }
}

/* ---- the target ---- */

template <size_t CHANNELS> void WrapPixel(WRAPSTATE *st, int32_t col, uint8_t *pixel)
{
    const int32_t width = st->source.width;
    const int32_t height = st->source.height;
    const CORNER &first = CornerOf(st, st->above, col);
    const CORNER *others[3] = {&CornerOf(st, st->above, col + 1), &CornerOf(st, st->below, col + 1),
                               &CornerOf(st, st->below, col)};
    if (std::isnan(first.u) || std::isnan(first.v)) { /* no box: the target's own column serves */
        memcpy(pixel,
               BufRow(st->wrap->source, st->source, Cut(first.v, height)) +
                   static_cast<size_t>(std::min(col, width - 1)) * CHANNELS,
               CHANNELS);
        return;
    }
    EXTENT u = {first.u, first.u};
    EXTENT v = {first.v, first.v};
    for (const CORNER *corner : others) {
        Widen(&u, first.u, corner->u, st->quarterWidth);
        Widen(&v, first.v, corner->v, st->quarterHeight);
    }
    const BOX box = {Cut(u.least, width), Cut(v.least, height), Cut(u.most, width), Cut(v.most, height)};
    const int64_t count = (int64_t{box.right} - box.left + 1) * (int64_t{box.bottom} - box.top + 1);
    int64_t sum[CHANNELS];
    BoxSum<CHANNELS>(st, box, count, sum);
    for (size_t c = 0; c < CHANNELS; c++) pixel[c] = static_cast<uint8_t>(sum[c] / count);
}

/* The last row and the last column of the target are never written. */
template <size_t CHANNELS> void WrapRows(WRAPSTATE *st)
{
    const WRAP *wrap = st->wrap;
    CornerRowStart(st, 0, &st->below);
    for (int32_t row = 0; row + 1 < st->target.height; row++) {
        std::swap(st->above, st->below);
        CornerRowStart(st, row + 1, &st->below);
        const SHADEROW mask = RowOf(wrap->mask, st->mask, row, 1);
        uint8_t *pixels = BufRow(wrap->target, st->target, row);
        for (int32_t col = 0; col + 1 < st->target.width; col++) {
            if (ByteAt(mask, col) == 0 && !(st->flatOn && ByteAt(st->above.flat, col) != 0)) continue;
            WrapPixel<CHANNELS>(st, col, pixels + static_cast<size_t>(col) * CHANNELS);
        }
    }
}

/* 1; 0 when a buffer that must be there is null, or without memory for two rows of corners: nothing is written then. */
template <size_t CHANNELS> int32_t WrapAround(const WRAP *wrap)
{
    if (!wrap->normalMap || !wrap->target || !wrap->source || !wrap->mask) return 0;
    WRAPSTATE st = {};
    st.wrap = wrap;
    st.target = BufInfo(wrap->target);
    st.source = BufInfo(wrap->source);
    st.normals = BufInfo(wrap->normalMap);
    st.mask = BufInfo(wrap->mask);
    st.flat = BufInfo(wrap->flatMask);
    st.bump = BufInfo(wrap->bumpMap);
    st.flatOn = wrap->form.reflect != 0 && wrap->flatMask;
    st.bumpOn = wrap->bumpPercent != 0 && wrap->bumpMap;
    st.bumpScale = wrap->bumpPercent * 0.01;
    ProfileTableBuild(wrap->form.profile, wrap->form.width, wrap->form.scale, wrap->form.invert);
    if (st.target.width < 2 || st.target.height < 2 || st.source.width < 1 || st.source.height < 1) return 1;
    if (st.target.pixelSize < CHANNELS || st.source.pixelSize < CHANNELS) return 1;
    st.centreX = st.target.width / 2;
    st.centreY = st.target.height / 2;
    const int64_t radius = (int64_t{st.target.width} + st.target.height) / 2;
    st.radius = static_cast<double>(radius);
    st.halfHeight = st.source.height / 2;
    st.quarterWidth = st.source.width / 4;
    st.quarterHeight = st.source.height / 4;
    /* Sums of a source that changes under the hand would be those of before. */
    st.sumsWanted = wrap->source == wrap->target ? INT64_MAX : int64_t{st.source.width} * st.source.height;

    const size_t width = static_cast<size_t>(st.target.width);
    CORNER *corners = static_cast<CORNER *>(BufAlloc(0, 2 * width * sizeof(CORNER)));
    if (!corners) return 0;
    st.above.corners = corners;
    st.below.corners = corners + width;
    WrapRows<CHANNELS>(&st);
    BufFree(st.sums);
    BufFree(corners);
    return 1;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathBumpIt(int32_t profile, double width, PATHBUF normalMap, PATHBUF target, int32_t invert,
                               int32_t scale, int32_t floatNormals, PATHBUF source, int32_t reflect, PATHBUF mask,
                               PATHBUF flatMask)
{
    const WRAP wrap = {normalMap,
                       target,
                       source,
                       mask,
                       flatMask,
                       nullptr,
                       0,
                       floatNormals,
                       SurfaceForm(width, profile, invert, scale, reflect),
                       0.6366199048125918};
    return WrapAround<1>(&wrap);
}

ZRPATHAPI int32_t ZrPathReflectIt(int32_t profile, double width, PATHBUF normalMap, PATHBUF target, int32_t invert,
                                  int32_t scale, int32_t floatNormals, PATHBUF source, int32_t reflect, PATHBUF mask,
                                  PATHBUF flatMask, int32_t bumpPercent, PATHBUF bumpMap)
{
    const WRAP wrap = {normalMap,
                       target,
                       source,
                       mask,
                       flatMask,
                       bumpMap,
                       bumpPercent,
                       floatNormals,
                       SurfaceForm(width, profile, invert, scale, reflect),
                       0.6365372374283896};
    return WrapAround<3>(&wrap);
}

} // extern "C"

} // namespace zr32
