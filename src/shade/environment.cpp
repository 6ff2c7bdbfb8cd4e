/* environment.cpp - an image wrapped around the surface: a bump map that follows the bevel, a mirror finish.
 *
 * From each corner of a target pixel a ray runs along the surface normal to a unit sphere around the scene; where it
 * meets the sphere is a place of the source, whose columns run once around and whose rows run from pole to pole. The
 * pixel is the mean of the box that its four corners span. Corners are worked out once and shared by the pixels that
 * touch them: two rows of them are kept.
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

struct CORNER {
    double u; /* column and row of the source, not cut */
    double v;
    int known;
};

/* One wrapping, with what differs between the two exports named. */
struct WRAP {
    PATHBUF normalMap;
    PATHBUF target;
    PATHBUF source;
    PATHBUF mask;
    PATHBUF flatMask; /* may be null, as bumpMap */
    PATHBUF bumpMap;
    int channels; /* of target and source */
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
    CORNER *above; /* corners of the pixel row's upper and lower edge, one a column */
    CORNER *below;
    uint32_t *sums; /* of the source, along each row from the left, by channel; null: added up pixel by pixel */
};

/* The bump rows that a row of corners is measured between. The first two start oddly: row 1 against row 0, then row 1
 * against itself. */
void BumpRowsOf(const WRAPSTATE *st, int32_t row, SHADEROW *current, SHADEROW *before)
{
    const int32_t last = st->bump.height - 1;
    const int32_t currentRow = std::max(row, 1);
    const int32_t beforeRow = row == 1 ? 1 : std::max(row - 1, 0);
    *current = RowOf(st->wrap->bumpMap, st->bump, std::min(currentRow, last), 1);
    *before = RowOf(st->wrap->bumpMap, st->bump, std::min(beforeRow, last), 1);
}

/* The normal at a corner; x and y as the profile leaves them. m is the flat interior's coverage there. */
void CornerNormal(const WRAPSTATE *st, int32_t col, int32_t row, int m, double *x, double *y, double *normal)
{
    double gx = 0;
    double gy = 0;
    if (st->bumpOn) {
        SHADEROW current;
        SHADEROW before;
        BumpRowsOf(st, row, &current, &before);
        BumpSlopes(current, before, col, st->bumpScale, &gx, &gy);
    }
    if (m == 255) {
        normal[0] = -gx;
        normal[1] = -gy;
        normal[2] = 1;
        if (st->bumpOn) VecNormalize(normal);
        return;
    }
    ProfileNormal(st->wrap->form, x, y, normal);
    if (st->bumpOn) {
        normal[0] -= gx;
        normal[1] -= gy;
        VecNormalize(normal);
    }
    if (m == 0) return;
    const double k = 1.0 - m * 0.00392156862745098;
    normal[0] = k * normal[0];
    normal[1] = k * normal[1];
    normal[2] = (1 - k) + k * normal[2];
    VecNormalize(normal);
}

CORNER CornerAt(const WRAPSTATE *st, int32_t col, int32_t row)
{
    const WRAP *wrap = st->wrap;
    const OFFSETPAIR offset = OffsetAt(RowOf(wrap->normalMap, st->normals, row, 8), col, wrap->floats);
    const int m = st->flatOn ? ByteAt(RowOf(wrap->flatMask, st->flat, row, 1), col) : 0;
    double x = offset.x1;
    double y = offset.y1;
    double normal[3] = {0, 0, 1};
    CornerNormal(st, col, row, m, &x, &y, normal);

    double h = std::sqrt(x * x + y * y);
    if (h > wrap->form.width) h = wrap->form.width;
    if (wrap->form.scale) h = wrap->form.scale * h * 0.03333333333333333;

    const int32_t centreX = st->target.width / 2;
    const int32_t centreY = st->target.height / 2;
    const double radius = static_cast<double>((int64_t{st->target.width} + st->target.height) / 2);
    const double p[3] = {(col - centreX) / radius, (row - centreY) / radius, h / radius};
    const double b = Vec3Dot(p, normal);
    const double t = std::sqrt(b * b - (Vec3Dot(p, p) - 1.0)) - b;
    double qx = t * normal[0] + p[0];
    double qy = t * normal[1] + p[1];
    if (wrap->floats) qx = qx / std::sqrt(1.0 - qy * qy);
    const double u = (1.0 - std::acos(qx) * 0.31830989161357204) * st->source.width;
    if (wrap->floats) qy = std::asin(qy) * wrap->latitudeFactor;
    return {u, (qy + 1.0) * (st->source.height / 2), 1};
}

const CORNER &CornerOf(const WRAPSTATE *st, CORNER *corners, int32_t col, int32_t row)
{
    if (!corners[col].known) corners[col] = CornerAt(st, col, row);
    return corners[col];
}

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

int32_t Cut(double value, int32_t count)
{
    return std::clamp(TruncInt(value), 0, count - 1);
}

/* The sum of a channel over columns left to right of a row of the source. */
uint32_t RowSum(const WRAPSTATE *st, int32_t row, int32_t left, int32_t right, int c)
{
    const int channels = st->wrap->channels;
    if (st->sums) {
        const uint32_t *sums = st->sums + static_cast<size_t>(row) * static_cast<size_t>(st->source.width + 1) *
                                              static_cast<size_t>(channels);
        return sums[(right + 1) * channels + c] - sums[left * channels + c];
    }
    const uint8_t *pixels = BufRow(st->wrap->source, st->source, row);
    uint32_t sum = 0;
    for (int32_t x = left; x <= right; x++) sum += pixels[x * channels + c];
    return sum;
}

void WrapPixel(const WRAPSTATE *st, int32_t col, int32_t row, uint8_t *pixel)
{
    const CORNER corners[4] = {CornerOf(st, st->above, col, row), CornerOf(st, st->above, col + 1, row),
                               CornerOf(st, st->below, col + 1, row + 1), CornerOf(st, st->below, col, row + 1)};
    const int channels = st->wrap->channels;
    const CORNER &first = corners[0];
    if (std::isnan(first.u) || std::isnan(first.v)) { /* no box: the target's own column serves */
        const uint8_t *pixels = BufRow(st->wrap->source, st->source, Cut(first.v, st->source.height));
        memcpy(pixel, pixels + static_cast<size_t>(Cut(col, st->source.width) * channels),
               static_cast<size_t>(channels));
        return;
    }
    EXTENT u = {first.u, first.u};
    EXTENT v = {first.v, first.v};
    for (int i = 1; i < 4; i++) {
        Widen(&u, first.u, corners[i].u, st->source.width / 4);
        Widen(&v, first.v, corners[i].v, st->source.height / 4);
    }
    const int32_t left = Cut(u.least, st->source.width);
    const int32_t right = Cut(u.most, st->source.width);
    const int32_t top = Cut(v.least, st->source.height);
    const int32_t bottom = Cut(v.most, st->source.height);
    const int64_t count = (int64_t{right} - left + 1) * (int64_t{bottom} - top + 1);
    for (int c = 0; c < channels; c++) {
        int64_t sum = 0;
        for (int32_t y = top; y <= bottom; y++) sum += RowSum(st, y, left, right, c);
        pixel[c] = static_cast<uint8_t>(sum / count);
    }
}

/* Sums along the source's rows, where they are worth their making. Without memory boxes are added up pixel by pixel. */
uint32_t *SourceSums(const WRAPSTATE *st)
{
    const size_t pixels = static_cast<size_t>(st->source.width) * static_cast<size_t>(st->source.height);
    const size_t targets = static_cast<size_t>(st->target.width) * static_cast<size_t>(st->target.height);
    if (pixels / 16 > targets || st->source.width > 1 << 24) return nullptr;
    const size_t channels = static_cast<size_t>(st->wrap->channels);
    const size_t entries = (pixels + static_cast<size_t>(st->source.height)) * channels;
    uint32_t *sums = static_cast<uint32_t *>(BufAlloc(0, entries * sizeof(uint32_t)));
    if (!sums) return nullptr;
    uint32_t *to = sums;
    for (int32_t y = 0; y < st->source.height; y++) {
        const uint8_t *from = BufRow(st->wrap->source, st->source, y);
        std::fill(to, to + channels, 0u);
        to += channels;
        for (size_t i = 0; i < static_cast<size_t>(st->source.width) * channels; i++, to++)
            *to = *(to - channels) + from[i];
    }
    return sums;
}

void WrapRows(WRAPSTATE *st)
{
    const WRAP *wrap = st->wrap;
    const int32_t width = st->target.width;
    for (int32_t row = 0; row + 1 < st->target.height; row++) {
        std::swap(st->above, st->below);
        if (row == 0) std::fill(st->above, st->above + width, CORNER{0, 0, 0});
        std::fill(st->below, st->below + width, CORNER{0, 0, 0});
        const SHADEROW mask = RowOf(wrap->mask, st->mask, row, 1);
        const SHADEROW flat = RowOf(wrap->flatMask, st->flat, row, 1);
        uint8_t *pixels = BufRow(wrap->target, st->target, row);
        for (int32_t col = 0; col + 1 < width; col++) {
            if (ByteAt(mask, col) == 0 && !(st->flatOn && ByteAt(flat, col) != 0)) continue;
            WrapPixel(st, col, row, pixels + static_cast<size_t>(col) * static_cast<size_t>(wrap->channels));
        }
    }
}

/* The common body. The last row and the last column of the target are never written. */
int32_t WrapAround(const WRAP *wrap)
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

    CORNER *corners = static_cast<CORNER *>(BufAlloc(0, 2 * static_cast<size_t>(st.target.width) * sizeof(CORNER)));
    if (!corners) return 0;
    st.above = corners;
    st.below = corners + st.target.width;
    st.sums = SourceSums(&st);
    WrapRows(&st);
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
    const WRAP wrap = {
        normalMap,         target, source, mask,         flatMask,
        nullptr,           1,      0,      floatNormals, SurfaceForm(width, profile, invert, scale, reflect),
        0.6366199048125918};
    return WrapAround(&wrap);
}

ZRPATHAPI int32_t ZrPathReflectIt(int32_t profile, double width, PATHBUF normalMap, PATHBUF target, int32_t invert,
                                  int32_t scale, int32_t floatNormals, PATHBUF source, int32_t reflect, PATHBUF mask,
                                  PATHBUF flatMask, int32_t bumpPercent, PATHBUF bumpMap)
{
    const WRAP wrap = {
        normalMap,         target, source,      mask,         flatMask,
        bumpMap,           3,      bumpPercent, floatNormals, SurfaceForm(width, profile, invert, scale, reflect),
        0.6365372374283896};
    return WrapAround(&wrap);
}

} // extern "C"

} // namespace zr32
