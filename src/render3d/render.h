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
    POINTDB slope;  /* unit vector straight away from the edge whose distance counts */
    double lean;    /* distance from that edge per pixel of the run */
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

/* How many samples a band may take for each of its pixels, many times what a solid needs that fills it; and for how
 * many pixels a small band counts. It is there for transforms gone wild, which fold everything into the band. */
constexpr int64_t samplesOfPixel = 256;
constexpr int64_t leastPixels = 16384;

/* The most samples of a strip. */
constexpr uint32_t maxStripPoints = 65536;

/* A rim that is walked along as strips come: half planes up to where they have been put. */
struct RIMWALK {
    SAMPLE from;
    int open;
};

/* An edge that waits for its face: a piece of a rim, or a silhouette at from. */
struct KEPTEDGE {
    SAMPLE from;
    SAMPLE to;
    POINTDB inside;
    int isSilhouette;
};

struct KEPTEDGES {
    KEPTEDGE *edges;
    uint32_t count;
    uint32_t room;
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
    POINTDB slope; /* unit vector away from the edge whose distance counts; zero: the reach itself */
};

/* A point where a segment begins or ends: unit tangents of what arrives and what leaves. */
struct JOINT {
    POINTDB at; /* mask coordinates */
    POINTDB before;
    POINTDB after;
    int joined; /* two segments meet here */
};

/* Both ends of a strip. */
struct RIMENDS {
    int unseen; /* sections nearer to the segment's end lie outside the plane: nothing is known of them */
    SAMPLE rim;
    SAMPLE middle; /* its light */
    POINTDB inner;
};

/* Both ends of a segment, and what of it was drawn between them. */
struct CORNERS {
    JOINT start;
    JOINT end;
    int side;  /* on which side of its direction the inside lies: 1 towards (-y, x), -1, or 0 when not known */
    int drawn; /* how many strips it has */
    RIMENDS first;
    RIMENDS last;
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
    double lowest; /* heights of the profile */
    double highest;
    int64_t budget;  /* samples that are left; what is still to be drawn then falls away */
    STRIP seam[2];   /* where two segments meet, and one beside it */
    STRIP strips[2]; /* the last and the one before */
    int current;     /* which of them is the last */
    int64_t joined;  /* how many strips in a row have been joined, the last one included */
    RIMWALK outer;
    RIMWALK inner;
    KEPTEDGES kept; /* of the segment under way */
    int hold;       /* whole samples leave the pixel (holdX, holdY) to the corner that lies in it */
    int32_t holdX;
    int32_t holdY;
};

/* Below this cosine a sample counts as near the silhouette, where the surface turns from the eye. Narrow bevels, which
 * turn within few samples, raise it for good; it never falls. */
constexpr double facingNear = 0.06; /* below this it counts as the turn itself */
void FacingWideBy(int32_t width);
double FacingWide();

/* ---- reach.cpp ---- */

/* 1 when both vectors point the same way: same sign and nearly the same slope by the first one's longer axis. */
int SameDirection(const POINTDB &a, const POINTDB &b, double tolerance);

/* How far inward the ridge lies between two edges that are seen along a and b from a point near it. */
double RidgeDistance(const POINTDB &a, const POINTDB &b, double la, double lb);

/* Which side of the outline at at is inside, and whether that is plain to see. 0: neither is. */
int InwardSide(const RENDER *render, const POINTDB &at, const POINTDB &normal, POINTDB *inward, int *isClear);

/* The cross-section at a point of a segment with the given tangent and radius of bend towards the inside, 0 for none.
 * nearBend: the outline bends away from the inside close by, so that the
 * mask cannot be clear although the inside is. mitre carries over from sample to sample. */
void SectionAt(const RENDER *render, const POINTDB &segmentStart, const POINTDB &at, const POINTDB &tangent,
               double radius, double tolerance, int nearBend, MITRE *mitre, SECTION *section);

/* The cross-section at a corner in a given direction, on the face of the edge that runs along the unit vector edge. */
void FanSection(const RENDER *render, const POINTDB &at, const POINTDB &inward, const POINTDB &edge, SECTION *section);

/* ---- strip.cpp ---- */

/* A point of the rim in output pixels of the band; 0 when it cannot be seen. */
int RimProject(const RENDER *render, const POINTDB &at, POINTDB *out);

/* A point of the picture plane, z 0, in output pixels of the band. */
POINTDB ProjectFlat(const RENDER *render, const POINTDB &at);

/* Fills the strip with the samples of a section. No points for a section without a reach. */
void StripBuild(RENDER *render, const SECTION *section, STRIP *strip);

/* Puts the strip's samples into the plane. */
void StripDraw(RENDER *render, STRIP *strip);

/* 1 when everything that the bevel may have over the picture plane between two corners of a box lies well outside the
 * output plane. */
int BoxUnseen(const RENDER *render, const POINTDB &a, const POINTDB &b);

/* The same for all that a bevel can reach from a point of the outline, and for one section. */
int ReachUnseen(const RENDER *render, const POINTDB &at);
int SectionUnseen(const RENDER *render, const SECTION *section);

void StripsFree(RENDER *render);

/* ---- join.cpp ---- */

/* Draws the section's strip and closes what lies between it and the one before it. 0 when it has no strip. */
int SectionDraw(RENDER *render, const SECTION *section);

/* A strip that is the border of a face: it covers on the side of the other strip. */
void SideEdge(RENDER *render, const STRIP *strip, const STRIP *other);

/* Draws the edges that have been kept so far. */
void EdgesDraw(RENDER *render);

/* Ends the rims where they are; nothing before this is joined to what comes. */
void JoinBreak(RENDER *render);

/* Whole pixels from one sample up to the next, where they are more than a step apart. */
void FillBetween(RENDER *render, const SAMPLE *a, const SAMPLE *b);

/* The edge where the surface turns from the eye. */
void PutSilhouette(RENDER *render, const SAMPLE *sample);

/* A sample of the face: an edge where the surface turns from the eye, else the whole pixel unless it has an edge. */
void PutSample(RENDER *render, SAMPLE *sample);

/* ---- corner.cpp ---- */

/* On which side of its direction a segment has the inside: 1 towards (-y, x), -1, or 0 when the mask does not tell. */
int SegmentSide(const RENDER *render, const POINTDB &at, const POINTDB &tangent);

/* 1 when the outline bends away from the inside at the joint. */
int JointBendsAway(const JOINT *joint, int side);

/* 1 when one segment goes on as the other ends, with no corner to see. */
int JointIsSmooth(const JOINT *joint);

/* Brings the inner end of a section back to its segment's side of the seam at a smooth joint, where the segment begins
 * or ends. */
void KeepToOwnSide(const JOINT *joint, int atStart, SECTION *section);

/* The pixels of a segment's two ends. */
void CornersDraw(RENDER *render, const CORNERS *corners);

/* A segment's part of the wedge behind a joint that bends away from the inside: sections from the bisector to the
 * upright one where the segment begins, or from there to the bisector where it ends. At a smooth joint the one section
 * along its seam. How many it has drawn. */
int FanDraw(RENDER *render, const JOINT *joint, int side, int atStart);

/* The border between the faces of two segments that meet without a ridge, for the one that begins or ends there. Both
 * cover up to the same line. */
void SeamDraw(RENDER *render, const JOINT *joint, int side, int atStart);

} // namespace zr32

#endif
