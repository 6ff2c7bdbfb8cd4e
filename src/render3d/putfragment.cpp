/* putfragment.cpp - how a sample enters its pixel: whole, or with the coverage of an edge.
 *
 * A pixel stays plain as long as one opaque surface, or one translucent surface alone, covers it; it becomes a list
 * when it needs more. The rules differ for opaque and translucent colours: opaque samples compete by depth, translucent
 * ones of one surface count once.
 */
#include "render3d/coverage.h"
#include "render3d/fragments.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

int PixelIsList(const ABUFPIXEL *pixel)
{
    return pixel->zTag == zTagList;
}

int PixelIsEmpty(const ABUFPIXEL *pixel)
{
    return pixel->value == 0 && !PixelIsList(pixel);
}

/* The depth as a tag, cut so that none can be taken for a list. */
uint16_t ZTag(double z)
{
    return static_cast<uint16_t>(std::clamp(z + zTagOffset, 0.0, zTagList - 1.0));
}

int16_t EdgeTag(int32_t edge)
{
    return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(WrapAdd(edge, edgeTagOffset))));
}

int32_t EdgeOf(const ABUF *abuf, const SAMPLE *sample)
{
    return sample->facing > 0 ? abuf->edgeId : -abuf->edgeId;
}

int IsOpaque(uint32_t colour)
{
    return colour >> 24 == 255;
}

void PutPlain(ABUFPIXEL *pixel, uint32_t colour, double z, int32_t edge)
{
    *pixel = {colour, ZTag(z), EdgeTag(edge)};
}

/* What a search along a list finds. */
struct LISTVIEW {
    ABUFFRAG *same;     /* the first fragment of the surface, or null */
    ABUFFRAG *last;     /* null for no list */
    ABUFFRAG *farthest; /* null for no list */
    uint32_t length;
};

LISTVIEW ListLook(const ABUF *abuf, const ABUFPIXEL *pixel, int32_t edge)
{
    LISTVIEW view = {};
    if (!PixelIsList(pixel)) return view;
    for (uint32_t n = pixel->value; n; n = view.last->next) {
        ABUFFRAG *fragment = FragAt(&abuf->pool, n);
        if (!view.same && fragment->edge == edge) view.same = fragment;
        if (!view.farthest || fragment->z < view.farthest->z) view.farthest = fragment;
        view.last = fragment;
        view.length++;
    }
    return view;
}

void FragmentFill(ABUFFRAG *fragment, const ABUFFRAG &content)
{
    const uint32_t next = fragment->next;
    *fragment = content;
    fragment->next = next;
}

/* To the end of a list. A full one gives up its farthest fragment, or the new one where that is farther still. */
void ListAppend(ABUF *abuf, ABUFPIXEL *pixel, const ABUFFRAG &content)
{
    const LISTVIEW view = ListLook(abuf, pixel, 0);
    if (view.length >= maxFragments) {
        if (content.z > view.farthest->z) FragmentFill(view.farthest, content);
        return;
    }
    const uint32_t number = FragTake(&abuf->pool);
    if (!number) return;
    FragmentFill(FragAt(&abuf->pool, number), content);
    if (view.last) {
        view.last->next = number;
    } else {
        pixel->value = number;
        pixel->zTag = zTagList;
        pixel->edgeTag = 0;
    }
}

/* A plain pixel becomes a list of its own colour, whole. 0 without memory; the pixel then stays plain. */
int PlainToList(ABUF *abuf, ABUFPIXEL *pixel)
{
    const uint32_t number = FragTake(&abuf->pool);
    if (!number) return 0;
    ABUFFRAG *fragment = FragAt(&abuf->pool, number);
    fragment->z = pixel->zTag - zTagOffset;
    fragment->colour = pixel->value;
    fragment->coverage = coverFull;
    fragment->kind = FRAG_WHOLE;
    fragment->edge = pixel->edgeTag - edgeTagOffset;
    *pixel = {number, zTagList, 0};
    return 1;
}

/* Frees what lies behind the head of the list and farther away than z; the head stays, deliberately. */
void ListDropFarther(ABUF *abuf, ABUFPIXEL *pixel, double z)
{
    ABUFFRAG *previous = FragAt(&abuf->pool, pixel->value);
    while (previous->next) {
        const uint32_t number = previous->next;
        const ABUFFRAG *fragment = FragAt(&abuf->pool, number);
        if (fragment->z < z) {
            previous->next = fragment->next;
            FragDrop(number, &abuf->pool);
        } else {
            previous = FragAt(&abuf->pool, number);
        }
    }
}

/* A fragment's depth has single precision. */
ABUFFRAG MakeFragment(double z, uint32_t colour, uint32_t coverage, uint32_t kind, int32_t edge)
{
    return {static_cast<double>(static_cast<float>(z)), colour, coverage, kind, edge, 0};
}

/* 1 when a list knows the surface of a fresh fragment already and has a whole opaque one before it. What is never seen
 * need not make the list longer at every sample. */
int ListHides(const ABUF *abuf, const ABUFPIXEL *pixel, const ABUFFRAG &fresh)
{
    bool hidden = false;
    bool known = false;
    for (uint32_t n = pixel->value; n; n = FragAt(&abuf->pool, n)->next) {
        const ABUFFRAG *fragment = FragAt(&abuf->pool, n);
        hidden = hidden || (fragment->coverage == coverFull && IsOpaque(fragment->colour) && fragment->z >= fresh.z);
        known = known || fragment->edge == fresh.edge;
    }
    return hidden && known;
}

void PutOpaque(ABUF *abuf, ABUFPIXEL *pixel, double z, uint32_t colour, int32_t edge)
{
    if (PixelIsList(pixel)) {
        const ABUFFRAG fresh = MakeFragment(z, colour, coverFull, FRAG_WHOLE, edge);
        if (ListHides(abuf, pixel, fresh)) return;
        ListDropFarther(abuf, pixel, z);
        ListAppend(abuf, pixel, fresh);
    } else if (PixelIsEmpty(pixel) || pixel->zTag < ZTag(z)) {
        PutPlain(pixel, colour, z, edge);
    }
}

void PutTranslucent(ABUF *abuf, ABUFPIXEL *pixel, double z, uint32_t colour, int32_t edge)
{
    if (PixelIsEmpty(pixel)) {
        PutPlain(pixel, colour, z, edge);
        return;
    }
    if (PixelIsList(pixel)) {
        if (ListLook(abuf, pixel, edge).same) return;
    } else if (pixel->edgeTag == EdgeTag(edge) || !PlainToList(abuf, pixel)) {
        return;
    }
    ListAppend(abuf, pixel, MakeFragment(z, colour, coverFull, FRAG_WHOLE, edge));
}

/* Two triangles of one surface at one pixel: each colour weighs by the cover of the other's top row. */
uint32_t MixTriangles(uint32_t old, uint32_t oldCover, uint32_t colour, uint32_t cover)
{
    const auto weight = [](uint32_t mask) {
        uint32_t bits = 0;
        for (mask &= 0xFFu; mask; mask &= mask - 1) bits++;
        return bits * 4;
    };
    const uint32_t a = weight(cover);
    const uint32_t b = weight(oldCover);
    uint32_t mix = 0;
    for (int shift = 0; shift < 32; shift += 8)
        mix |= (((colour >> shift & 0xFFu) * b + (old >> shift & 0xFFu) * a) >> 5 & 0xFFu) << shift;
    return mix;
}

/* A fragment of the same surface is there already. */
void MergeFragment(ABUFFRAG *old, const ABUFFRAG &fresh)
{
    /* A whole pixel always yields, a triangle to nothing but another one with which it mixes, and anything else to a
     * triangle. Half planes of one surface are alike, so the second adds nothing; one whose first covered the whole
     * pixel never gets here. */
    if (old->kind == FRAG_TRIANGLE) {
        if (fresh.kind != FRAG_TRIANGLE) return;
        old->colour = MixTriangles(old->colour, old->coverage, fresh.colour, fresh.coverage);
        old->coverage &= fresh.coverage;
    } else if (old->kind == FRAG_WHOLE || fresh.kind == FRAG_TRIANGLE) {
        FragmentFill(old, fresh);
    }
}

void InsertFragment(ABUF *abuf, ABUFPIXEL *pixel, const ABUFFRAG &fresh)
{
    if (!PixelIsList(pixel)) {
        if (IsOpaque(fresh.colour) && fresh.coverage == coverFull) {
            PutOpaque(abuf, pixel, fresh.z, fresh.colour, fresh.edge);
            return;
        }
        if (!PixelIsEmpty(pixel) && !PlainToList(abuf, pixel)) return;
    }
    ABUFFRAG *same = ListLook(abuf, pixel, fresh.edge).same;
    if (same)
        MergeFragment(same, fresh);
    else
        ListAppend(abuf, pixel, fresh);
}

ABUFFRAG *PriorEdge(const ABUF *abuf, const ABUFPIXEL *pixel, int32_t edge)
{
    if (!PixelIsList(pixel)) return nullptr;
    for (uint32_t n = pixel->value; n; n = FragAt(&abuf->pool, n)->next) {
        ABUFFRAG *fragment = FragAt(&abuf->pool, n);
        if (fragment->edge == edge && fragment->kind == FRAG_HALFPLANE) return fragment;
    }
    return nullptr;
}

/* The point of a line that lies nearest to the pixel's centre. */
POINTDB NearCentre(const POINTDB &at, const POINTDB &unit)
{
    return at + unit * Dot(POINTDB{0.5, 0.5} - at, unit);
}

uint32_t CoverOfShape(const EDGESHAPE *shape, const POINTDB &origin)
{
    const POINTDB from = shape->from - origin;
    const POINTDB to = shape->to - origin;
    const POINTDB point = shape->point - origin;
    switch (shape->form) {
    case EDGE_ACROSS: return CoverHalfPlane(point, {-shape->to.y, shape->to.x}, point - shape->to);
    case EDGE_ALONG:
    case EDGE_CORNER: {
        /* The direction counts as a unit vector: from a shorter one the reference could not get out of the line's own
         * sub-pixel. */
        const POINTDB d = shape->to - shape->from;
        const POINTDB along = d * (1 / Length(d));
        const POINTDB across = {-along.y, along.x};
        const POINTDB aside = Dot(point - from, across) < 0 ? across * -1 : across;
        if (shape->form == EDGE_ALONG) return CoverHalfPlane(from, along, from + aside);
        /* A corner reaches over many pixels: each of its lines is taken where it passes this one. */
        const POINTDB near = NearCentre(from, along);
        return CoverHalfPlane(near, along, near + aside) &
               CoverHalfPlane(NearCentre(from, shape->bound), shape->bound, shape->boundInside - origin);
    }
    case EDGE_TRIANGLE: break;
    }
    return CoverTriangle(from, point, to);
}

} // namespace

void ABufPutSolid(ABUF *abuf, int32_t x, int32_t y, SAMPLE *sample)
{
    ABUFPIXEL *pixel = PlanePixel(abuf, x, y);
    if (!pixel || !std::isfinite(sample->z)) return;
    const int32_t edge = EdgeOf(abuf, sample);
    /* Neither an opaque nor a translucent sample of this surface would be stored: no light is spent on it. */
    if (!PixelIsList(pixel) && !PixelIsEmpty(pixel) && pixel->edgeTag == EdgeTag(edge) &&
        pixel->zTag >= ZTag(sample->z))
        return;
    const uint32_t colour = SampleColour(sample);
    if (IsOpaque(colour))
        PutOpaque(abuf, pixel, sample->z, colour, edge);
    else
        PutTranslucent(abuf, pixel, sample->z, colour, edge);
}

int PixelHasEdge(const ABUF *abuf, int32_t x, int32_t y, const SAMPLE *sample)
{
    const ABUFPIXEL *pixel = PlanePixel(abuf, x, y);
    if (!pixel) return 0;
    const ABUFFRAG *prior = PriorEdge(abuf, pixel, EdgeOf(abuf, sample));
    return prior && prior->coverage != coverFull;
}

int PixelHasWhole(const ABUF *abuf, int32_t x, int32_t y, const SAMPLE *sample)
{
    const ABUFPIXEL *pixel = PlanePixel(abuf, x, y);
    if (!pixel || PixelIsEmpty(pixel)) return 0;
    const int32_t edge = EdgeOf(abuf, sample);
    if (!PixelIsList(pixel)) return pixel->edgeTag == EdgeTag(edge);
    const ABUFFRAG *same = ListLook(abuf, pixel, edge).same;
    return same && same->kind == FRAG_WHOLE;
}

void ABufPutEdge(ABUF *abuf, int32_t x, int32_t y, SAMPLE *sample, const EDGESHAPE *shape)
{
    ABUFPIXEL *pixel = PlanePixel(abuf, x, y);
    if (!pixel || !std::isfinite(sample->z)) return;
    const int32_t edge = EdgeOf(abuf, sample);
    ABUFFRAG *prior = PriorEdge(abuf, pixel, edge);
    if (prior && prior->coverage != coverFull && shape->form != EDGE_CORNER) return;

    /* The edge knows better than a whole sample of the same surface, even where it leaves nothing of it. */
    const ABUFPIXEL before = *pixel;
    if (!PixelIsList(pixel) && pixel->edgeTag == EdgeTag(edge)) *pixel = {};
    const uint32_t cover = CoverOfShape(shape, {static_cast<double>(x), static_cast<double>(y)});
    if (cover == 0) {
        /* No fragment is made for nothing, but one that is there is cut like by any other edge. */
        ABUFFRAG *same = ListLook(abuf, pixel, edge).same;
        if (same && (same == prior || same->kind == FRAG_WHOLE)) {
            same->coverage = 0;
            same->kind = FRAG_HALFPLANE;
        }
        /* What a plain opaque sample has hidden is gone: without it there would be a hole. */
        if (!PixelIsList(&before) && IsOpaque(before.value)) *pixel = before;
        return;
    }
    const uint32_t kind = shape->form == EDGE_TRIANGLE ? FRAG_TRIANGLE : FRAG_HALFPLANE;
    const ABUFFRAG fresh = MakeFragment(sample->z, SampleColour(sample), cover, kind, edge);
    if (prior) {
        FragmentFill(prior, fresh);
        return;
    }
    InsertFragment(abuf, pixel, fresh);
    if (PixelIsEmpty(pixel)) *pixel = before; /* out of memory */
}

} // namespace zr32
