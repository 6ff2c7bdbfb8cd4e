/* render.h - what the walk of the renderer shares: one call's state, cross-sections and strips.
 *
 * The outline is walked in small steps in the picture plane. At each step SECTION says how far the bevel reaches inward
 * (reach.cpp); STRIP is that cross-section as lit, projected samples (strip.cpp), joined to the one before it
 * (join.cpp). Three coordinate systems: the mask's (half pixel included), the picture's = mask + maskOrigin, and the
 * output band's = projected picture - outOrigin.
 */
#ifndef ZR32_RENDER_H
#define ZR32_RENDER_H

#include "render3d/fragments.h"
#include "render3d/space.h"
#include <zr32path/surface.h>

namespace zr32 {

struct STRIPPOINT {
    SAMPLE sample;
    double i;     /* steps from the rim */
    double share; /* the same as a part of the whole strip, 0 to 1 */
};

/* A cross-section laid out for sampling. */
struct RUN {
    POINTDB at;     /* picture coordinates */
    POINTDB inward; /* unit vector from the rim to the inner end */
    double stride;  /* pixels a step */
    double index;   /* profile entries a step */
    double steps;
};

/* One cross-section from the rim inward. */
struct STRIP {
    RUN run;
    SAMPLE rim; /* the outer end, with the first sample's light */
    STRIPPOINT *points;
    uint32_t count;
    uint32_t room;
};

/* The most samples of a strip. */
constexpr uint32_t maxStripPoints = 65536;

/* A rim that is walked along as strips come: half planes up to where they have been put. */
struct RIMWALK {
    SAMPLE from;
    int open;
};

/* What the reach of a sample's neighbours leaves for it; picture coordinates, one a segment. */
struct MITRE {
    POINTDB foot; /* of the last ridge */
    POINTDB reach;
    POINTDB halfFoot; /* half-way from the one before */
    POINTDB halfReach;
    int begun;
};

/* A sample of the outline. */
struct SECTION {
    POINTDB at; /* mask coordinates */
    POINTDB inward;
    POINTDB reach; /* from at to the bevel's inner end; zero: no strip here */
};

struct RENDER {
    SPACE space;
    ABUF abuf;
    MATERIAL material;
    const uint8_t *mask;
    BUFINFO maskInfo;
    const uint8_t *surface; /* null: the bevel is two pixels wide */
    BUFINFO surfaceInfo;
    POINTDB maskOrigin;
    POINTDB outOrigin; /* of the band's first pixel */
    double width;
    STRIP strips[2]; /* the last and the one before */
    int current;     /* which of them is the last */
    int joined;      /* the other one belongs to the same run of the segment */
    RIMWALK outer;
    RIMWALK inner;
};

/* Below this cosine a sample counts as near the silhouette, where the surface turns from the eye. Narrow bevels, which
 * turn within few samples, raise it for good; it never falls. */
void FacingWideBy(int32_t width);
double FacingWide();

/* ---- reach.cpp ---- */

/* 1 when both vectors point the same way: same sign and nearly the same slope by the first one's longer axis. */
int SameDirection(const POINTDB &a, const POINTDB &b, double tolerance);

/* How far inward the ridge lies between two edges that are seen along a and b from a point near it. */
double RidgeDistance(const POINTDB &a, const POINTDB &b, double la, double lb);

/* Which side of the outline at at is inside, and whether that is plain to see. 0: neither is. */
int InwardSide(const RENDER *render, const POINTDB &at, const POINTDB &normal, POINTDB *inward, int *isClear);

/* The cross-section at a point of a segment with the given tangent. mitre carries over from sample to sample. */
void SectionAt(const RENDER *render, const POINTDB &segmentStart, const POINTDB &at, const POINTDB &tangent,
               double tolerance, MITRE *mitre, SECTION *section);

/* ---- strip.cpp ---- */

/* A point of the picture plane, z 0, in output pixels of the band. */
POINTDB ProjectFlat(const RENDER *render, const POINTDB &at);

/* Fills the strip with the samples of a section. No points for a section without a reach. */
void StripBuild(RENDER *render, const SECTION *section, STRIP *strip);

/* Puts the strip's samples into the plane. */
void StripDraw(RENDER *render, STRIP *strip);

void StripsFree(RENDER *render);

/* ---- join.cpp ---- */

/* Draws the section's strip and closes what lies between it and the one before it. */
void SectionDraw(RENDER *render, const SECTION *section);

/* Ends the rims where they are; nothing before this is joined to what comes. */
void JoinBreak(RENDER *render);

/* Whole pixels from one sample up to the next, where they are more than a step apart. */
void FillBetween(RENDER *render, const SAMPLE *a, const SAMPLE *b);

/* A whole-pixel sample where the surface has no edge at that pixel. */
void PutSample(RENDER *render, SAMPLE *sample);

} // namespace zr32

#endif
