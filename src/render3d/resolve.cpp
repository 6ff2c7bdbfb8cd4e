/* resolve.cpp - fragments become pixels: sorted by depth, composed from front to back over their coverage masks.
 *
 * Each fragment splits the sub-pixels it is given into those it covers and those it does not; the two parts are
 * resolved on their own behind it and mixed by their numbers of bits. The method is the A-buffer (L. Carpenter, The
 * A-buffer, an antialiased hidden surface method, 1984).
 */
#include "render3d/coverage.h"
#include "render3d/fragments.h"

#include <algorithm>
#include <bit>

namespace zr32 {

namespace {

/* The fragments of one pixel at a time. */
ABUFFRAG scratch[maxFragments];

enum CHANNEL { BLUE, GREEN, RED, ALPHA, CHANNELS };

struct BLENDCOLOUR {
    uint32_t c[CHANNELS]; /* bytes */
};

BLENDCOLOUR Unpack(uint32_t colour)
{
    return {{colour & 0xFFu, colour >> 8 & 0xFFu, colour >> 16 & 0xFFu, colour >> 24}};
}

/* Truncation of part / total x scale, in this order. */
uint32_t Share(double part, double total, double scale)
{
    return static_cast<uint32_t>(part / total * scale);
}

/* The colours of a result are not multiplied by its alpha. */
void Unpremultiply(BLENDCOLOUR *colour)
{
    if (colour->c[ALPHA] == 0) return;
    for (int i = 0; i < ALPHA; i++) colour->c[i] = colour->c[i] * 255 / colour->c[ALPHA] & 0xFFu;
}

/* front, translucent, over what lies behind it in the same sub-pixels. */
BLENDCOLOUR Over(const BLENDCOLOUR &front, const BLENDCOLOUR &behind)
{
    const uint32_t a1 = front.c[ALPHA] + 1;
    const uint32_t a2 = behind.c[ALPHA] + 1;
    const uint32_t w = (256 - a1) * a2 >> 8;
    BLENDCOLOUR out;
    for (int i = 0; i < ALPHA; i++) out.c[i] = (front.c[i] * a1 + behind.c[i] * w) >> 8 & 0xFFu;
    out.c[ALPHA] = (a2 - (a2 * a1 >> 8) + a1 - 1) & 0xFFu;
    Unpremultiply(&out);
    return out;
}

/* Two colours side by side in one pixel, with their shares in 256. */
BLENDCOLOUR Mix(const BLENDCOLOUR &front, uint32_t wIn, const BLENDCOLOUR &behind, uint32_t wOut)
{
    BLENDCOLOUR out;
    if (behind.c[ALPHA] == 0) { /* the front's alpha is never 0: what is not opaque comes from Over, at least 1 */
        out = front;
        out.c[ALPHA] = front.c[ALPHA] * wIn >> 8;
        return out;
    }
    for (int i = 0; i < ALPHA; i++) {
        const uint32_t f = front.c[i] * (front.c[ALPHA] + 1) >> 8;
        const uint32_t b = behind.c[i] * (behind.c[ALPHA] + 1) >> 8;
        out.c[i] = (f * wIn + b * wOut) >> 8;
    }
    out.c[ALPHA] = (front.c[ALPHA] * wIn + behind.c[ALPHA] * wOut) >> 8;
    Unpremultiply(&out);
    return out;
}

/* The masks that reach one depth of the recursion come from splitting one mask again and again, so they never overlap:
 * there are at most 32 of them, and the whole costs at most 32 calls a fragment, however the masks fork. */
void Blend(const ABUFFRAG *fragments, uint32_t first, uint32_t count, uint32_t mask, BLENDCOLOUR *result)
{
    if (mask == 0 || first >= count) return;
    const ABUFFRAG *fragment = &fragments[first];
    BLENDCOLOUR front = Unpack(fragment->colour);
    const uint32_t in = mask & fragment->coverage;
    const uint32_t out = mask & ~fragment->coverage;
    const uint32_t nIn = static_cast<uint32_t>(std::popcount(in));
    const uint32_t nOut = static_cast<uint32_t>(std::popcount(out));
    const uint32_t total = nIn + nOut;

    if (first + 1 == count) {
        *result = front;
        result->c[ALPHA] = Share(front.c[ALPHA], total, nIn);
        return;
    }
    BLENDCOLOUR behindOut = {};
    Blend(fragments, first + 1, count, out, &behindOut);
    if (front.c[ALPHA] != 255) {
        BLENDCOLOUR behindIn = {};
        Blend(fragments, first + 1, count, in, &behindIn);
        front = Over(front, behindIn);
    }
    if (out == 0) {
        *result = front;
        result->c[ALPHA] = Share(front.c[ALPHA], total, nIn);
        return;
    }
    *result = Mix(front, Share(nIn, total, 256), behindOut, Share(nOut, total, 256));
}

/* Copies a list to the scratch array, nearest first; fragments of one depth stay in the order of the list, which the
 * copies keep in next. */
uint32_t SortList(const ABUF *abuf, uint32_t number)
{
    uint32_t count = 0;
    for (; number && count < maxFragments; number = FragAt(&abuf->pool, number)->next, count++) {
        scratch[count] = *FragAt(&abuf->pool, number);
        scratch[count].next = count;
    }
    std::sort(scratch, scratch + count,
              [](const ABUFFRAG &a, const ABUFFRAG &b) { return a.z > b.z || (a.z == b.z && a.next < b.next); });
    return count;
}

} // namespace

void ABufBlend(const ABUFFRAG *fragments, uint32_t first, uint32_t count, uint32_t mask, uint8_t *result)
{
    if (mask == 0 || first >= count) return;
    BLENDCOLOUR colour = {};
    Blend(fragments, first, count, mask, &colour);
    for (int i = 0; i < CHANNELS; i++) result[i] = static_cast<uint8_t>(colour.c[i]);
}

int ABufResolve(const ABUF *abuf, int32_t bottom, int32_t top, int32_t width, PATHBUF colourBuf, PATHBUF alphaBuf)
{
    if (!abuf->plane || !colourBuf || !alphaBuf) return 0;
    const BUFINFO colour = BufInfo(colourBuf);
    const BUFINFO alpha = BufInfo(alphaBuf);
    /* Each band is written from row 0 of the buffers, deliberately. */
    const int32_t rows = std::min(bottom - top, abuf->info.height);
    const int32_t columns = std::min(width, abuf->info.width);
    for (int32_t y = 0; y < rows; y++) {
        for (int32_t x = 0; x < columns; x++) {
            const ABUFPIXEL *pixel = PlanePixel(abuf, x, y);
            uint8_t out[CHANNELS];
            if (pixel->zTag == zTagList) {
                ABufBlend(scratch, 0, SortList(abuf, pixel->value), coverFull, out);
            } else {
                const BLENDCOLOUR plain = Unpack(pixel->value);
                for (int i = 0; i < CHANNELS; i++) out[i] = static_cast<uint8_t>(plain.c[i]);
            }
            if (colour.pixelSize >= 3 && BufHasPixel(colour, x, y))
                std::copy(out, out + 3, BufRow(colourBuf, colour, y) + colour.pixelSize * static_cast<size_t>(x));
            if (BufHasPixel(alpha, x, y))
                BufRow(alphaBuf, alpha, y)[alpha.pixelSize * static_cast<size_t>(x)] = out[ALPHA];
        }
    }
    return 1;
}

} // namespace zr32
