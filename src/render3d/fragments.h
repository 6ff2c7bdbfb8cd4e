/* fragments.h - the fragment plane: what each pixel of a band holds while the solid is rendered.
 *
 * A pixel is empty, plain (one colour with a depth and an edge number) or a list of fragments with coverage masks. A
 * surface is named by the number of the outline segment that it hangs on, the edge number, negative where it faces
 * away, so that one surface counts once at a pixel however many samples reach it.
 *
 * Fragments come from a pool that lives for one band. They are numbered from 1 and never move; a list is the number of
 * its first. Without memory a sample is dropped and everything stays as it was.
 */
#ifndef ZR32_FRAGMENTS_H
#define ZR32_FRAGMENTS_H

#include "frame/frame.h"
#include "geometry/vector.h"
#include "raster/raster.h"

namespace zr32 {

/* Depth code of the plane's buffer: eight bytes a pixel. */
constexpr int32_t planeBits = 0x40;

constexpr uint16_t zTagList = 10000; /* marks a list; depths end before it */
constexpr double zTagOffset = 3000;  /* added to depths and edge numbers in a plain pixel */
constexpr int32_t edgeTagOffset = 3000;

/* Eight bytes, all zero when empty: offset 0 value, 4 zTag, 6 edgeTag. */
struct ABUFPIXEL {
    uint32_t value;  /* colour (blue low, then green, red, alpha), or the number of a list's first fragment */
    uint16_t zTag;   /* depth + 3000, cut to 0 .. 9999, or zTagList */
    int16_t edgeTag; /* edge number + 3000, in 16 bits */
};
static_assert(sizeof(ABUFPIXEL) == 8, "one plane pixel of depth code 0x40");

enum FRAGKIND : uint32_t {
    FRAG_WHOLE,     /* the whole pixel */
    FRAG_TRIANGLE,  /* a triangle */
    FRAG_HALFPLANE, /* the side of an edge */
};

struct ABUFFRAG {
    double z; /* larger is nearer */
    uint32_t colour;
    uint32_t coverage; /* as in coverage.h */
    uint32_t kind;     /* FRAGKIND */
    int32_t edge;
    uint32_t next; /* number of the next fragment, 0 at the end */
};

/* The longest list. What would be longer loses its farthest. */
constexpr uint32_t maxFragments = 1024;

/* Chunk k holds poolFirst << k fragments, so that the pool grows by doubling and nothing ever moves. */
constexpr uint32_t poolFirst = 1024;
constexpr uint32_t poolChunks = 22;

struct FRAGPOOL {
    ABUFFRAG *chunks[poolChunks];
    uint32_t used; /* highest number given */
    uint32_t free; /* first of the freed ones, linked by next */
    uint32_t live; /* given and not freed */
};

/* Number of a zeroed fragment; 0 without memory. */
uint32_t FragTake(FRAGPOOL *pool);
void FragDrop(uint32_t number, FRAGPOOL *pool);
void FragPoolFree(FRAGPOOL *pool);

/* How many fragments the pool that was freed last had given out at most. */
uint32_t FragPoolLastUsed();

ABUFFRAG *FragAt(const FRAGPOOL *pool, uint32_t number);

/* The plane of one band. */
struct ABUF {
    PATHBUF plane;
    BUFINFO info;
    FRAGPOOL pool;
    int32_t edgeId; /* the segment that is being walked */
};

/* The pixel index of a position; -1, which no plane has, for what lies before 0 or beyond every plane. */
inline int32_t PixelIndex(double position)
{
    return position >= 0 && position < 2147483647.0 ? static_cast<int32_t>(position) : -1;
}

/* The pixel; null outside the plane. */
ABUFPIXEL *PlanePixel(const ABUF *abuf, int32_t x, int32_t y);

/* Light and colours of a render, and the table behind GlassAlpha. */
struct MATERIAL {
    uint32_t colour;     /* blue, green and red bytes; the top byte is not read */
    int32_t glass;       /* not 0: alpha follows the viewing angle */
    const double *light; /* direction to the light, or null for the last one */
    uint8_t *glassTable; /* null until first used */
};

/* One point of the surface on its way into the plane. It is lit when its colour is first asked for. */
struct SAMPLE {
    POINTDB at; /* output pixels of the band */
    double z;
    double facing; /* cosine of the angle to the eye; not above 0: seen from behind */
    POINT3D normal;
    uint32_t colour;
    int lit;
    int atRim; /* within a pixel of the rim of the bevel, which has an edge of its own */
    MATERIAL *material;
};

/* ---- sample.cpp ---- */

/* The cosine between a normal and the direction from the point to the eye. */
double FacingDot(const POINT3D *point, const POINT3D *normal, const POINT3D *eye);

/* Alpha of glass seen at that cosine: from 255 along the surface to 16 straight on. 255 when glass is 0. */
uint32_t GlassAlpha(double facing, MATERIAL *material);
void GlassAlphaFree(MATERIAL *material);

/* Lights a colour. lightDir, where given, is kept for later calls; so are the glass settings, which the first colour
 * that is not opaque brings in for good. */
void ABufShade(const double *normal, const double *lightDir, uint32_t *colour);

uint32_t SampleColour(SAMPLE *sample);

/* ---- putfragment.cpp ---- */

/* A sample that covers the whole pixel (x, y); nothing outside the plane or at a depth that is no number. */
void ABufPutSolid(ABUF *abuf, int32_t x, int32_t y, SAMPLE *sample);

/* The shape of a partly covered pixel, positions in the plane. */
enum EDGEFORM {
    EDGE_ACROSS,   /* half plane behind the line through point across the unit vector to */
    EDGE_ALONG,    /* half plane on point's side of the line from from to to */
    EDGE_TRIANGLE, /* triangle of from, point and to */
    EDGE_CORNER    /* as EDGE_ALONG, but only on boundInside's side of the line through from along bound as well */
};

struct EDGESHAPE {
    EDGEFORM form;
    POINTDB from;
    POINTDB to;
    POINTDB point;
    POINTDB bound = {0, 0}; /* a corner's second line */
    POINTDB boundInside = {0, 0};
};

/* A sample that covers part of pixel (x, y). The first partial edge of a surface stands, but a corner, which knows two
 * edges, replaces it. */
void ABufPutEdge(ABUF *abuf, int32_t x, int32_t y, SAMPLE *sample, const EDGESHAPE *shape);

/* 1 when the sample's surface covers the whole pixel. */
int PixelHasWhole(const ABUF *abuf, int32_t x, int32_t y, const SAMPLE *sample);

/* 1 when the pixel holds a partial edge of the sample's surface. */
int PixelHasEdge(const ABUF *abuf, int32_t x, int32_t y, const SAMPLE *sample);

/* ---- walkline.cpp ---- */

/* Half planes along the line between two samples, covered on the side of inside. */
void ABufWalkLine(ABUF *abuf, SAMPLE *from, SAMPLE *to, const POINTDB &inside);

/* ---- resolve.cpp ---- */

/* Composes scratch fragments first to count - 1, sorted from near to far, over the sub-pixels in mask: blue, green,
 * red, alpha. *result stays as it was when mask is 0. */
void ABufBlend(const ABUFFRAG *fragments, uint32_t first, uint32_t count, uint32_t mask, uint8_t *result);

/* Turns the plane into pixels of both buffers, its row 0 into their row 0. 1; 0 when the plane or a buffer is null. */
int ABufResolve(const ABUF *abuf, int32_t bottom, int32_t top, int32_t width, PATHBUF colourBuf, PATHBUF alphaBuf);

} // namespace zr32

#endif
