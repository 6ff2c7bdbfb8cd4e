/* sweep.h - the walk that edge sweep, mitre fill and envelope sweep share.
 *
 * A sweep goes along the outlines of a chain, sample by sample. At each sample the mask tells on which side the shape
 * lies; what is done with the sample is the sweep's own: a ray is cast, or a segment's end is kept for a corner. The
 * three sweeps are three rows of SWEEPRULES over one walk.
 *
 *   sweepwalk.cpp   records, nodes, percentages, abort
 *   sweepstep.cpp   the samples of a line and of a curve
 *   sweepside.cpp   the side on which the shape lies
 *   sweepray.cpp    rays: edge sweep and envelope sweep
 *   offsetmerge.h   how a pixel takes one more distance and vector
 *   mitre.cpp       corners: mitre fill
 *   envelope.cpp    the record and the mask of an envelope sweep
 *
 * All numbers are map pixels: the centre of pixel (i, j) is (i + 0.5, j + 0.5), a point's pixel is found by truncation.
 */
#ifndef ZR32_SWEEP_H
#define ZR32_SWEEP_H

#include "geometry/curvestep.h"
#include "surface/surface.h"

namespace zr32 {

struct SWEEP;

/* What the sweeps do differently. */
struct SWEEPRULES {
    void (*useSample)(SWEEP *sweep);
    int wholeChain;       /* 1: from the head of the table chain, the tail record left out, as maps are made of chains
                             whose tail is a frame; 0: from the given record on, the tail included */
    int followFans;       /* curves: 1 the step shrinks where rays part, until their far ends stay together; 0 not */
    double shortestLine;  /* lines: a tangent step with both components below this is stretched; 0: never */
    int restingVote;      /* curves: a tangent of length 0 votes along the whole curve (1) or not at all (0) */
    int32_t abortSubCode; /* what an abort reports */
    int32_t abortIndex;
};

/* An end of a segment as a corner needs it. */
struct MITREEND {
    POINTDB rayEnd;  /* the sample plus reach along the inward normal */
    POINTDB tangent; /* the tangent step, away from the corner */
    POINTDB foot;    /* the sample; moves along the tangent while a wedge is filled */
    POINTDB back;    /* the inward normal negated */
};

struct SWEEP {
    const SWEEPRULES *rules;
    const SURFACEMAP *map;
    const uint8_t *mask;
    BUFINFO maskInfo;
    PLANES planes;
    PLACEMENT place; /* of nodes, on the mask */
    double width;    /* rays end at these: of the planes, or of the mask when it lies elsewhere */
    double height;
    int elsewhere;   /* 1: the mask lies elsewhere than the planes, or has another size */
    POINTDB shift;   /* from a position on the mask to one on the planes, to be taken off */
    double reach;    /* length of a ray: the surface's width and a pixel more */
    double rayStart; /* 0, or -1 for rays that begin a pixel outside */
    int result;

    /* the segment that is walked */
    uint32_t nodeIndex; /* of its first node in its record */
    int closesRecord;   /* 1: its last node is the record's last */
    int onCurve;

    /* the sample */
    int64_t at; /* parameter: 0 at the segment's start, parameterEnd at its end */
    POINTDB p;  /* the point on the outline */
    POINTDB t;  /* tangent step: the way to the next sample */
    POINTDB n1; /* both unit normals */
    POINTDB n2;
    POINTDB n;    /* the one on the shape's side; carried from sample to sample */
    int isolated; /* neither side shows the shape */

    /* rays */
    double rayStep;  /* 1, from a record's first oblique tangent on 0.5 */
    int fanning;     /* curves: the outline bends away from n; carried from curve to curve */
    POINTDB lastEnd; /* last position of the last ray of a curve */

    /* corners */
    MITREEND end;   /* at the end of a segment */
    MITREEND start; /* at the start of the next */
    MITREEND first; /* of a record's first segment */
};

/* A sweep over a mask that lies where the planes lie; reach from the width. */
void SweepInit(const SWEEPRULES *rules, const SURFACEMAP *map, const uint8_t *mask, double width, SWEEP *sweep);

/* Walks the records. 1, or 0 when the callback has stopped it: the planes are then gone and the walk has gone on
 * through the remaining records without writing. */
int SweepChain(const PATHREC *path, SWEEP *sweep);

/* The edge sweep of one record whose mask lies elsewhere than the map; rays begin a pixel outside. */
int VMapEnvelopeSweep(PATHREC *lattice, double width, const SURFACEMAP *map, PATHBUF mask, int32_t maskLeft,
                      int32_t maskTop);

void SweepLine(const SEGMENT *segment, SWEEP *sweep);
void SweepCurve(const SEGMENT *segment, SWEEP *sweep);

/* Choose n for the sample, and tell whether it is isolated. mayVote: a sample at the start of its segment, with the
 * shape on both sides, asks a stretch of the mask along it; else it takes the side of the sample before. */
void ChooseSideOnLine(int64_t step, SWEEP *sweep);
void ChooseSideOnCurve(const CURVESTEP *step, int mayVote, SWEEP *sweep);

/* c + c + ... + sum, times additions, each rounded, in a few operations. sum and c are not negative. */
double AddRepeatedly(double sum, double c, int64_t times);

/* A position's pixel, cut towards zero; far outside, and for what is not a number, one that no buffer has. Never turns
 * back where positions do not. */
inline int32_t PixelOf(double position)
{
    if (!(position > -1)) return -1;
    return position < INT32_MAX ? static_cast<int32_t>(position) : INT32_MAX;
}

/* What lies outside the mask is empty. */
inline uint8_t SweepMaskByte(const SWEEP *sweep, int32_t x, int32_t y)
{
    return BufHasPixel(sweep->maskInfo, x, y) ? BufRow(sweep->mask, sweep->maskInfo, y)[x] : uint8_t{0};
}

/* ---- pixels under a ray ----
 * Rays leave row 0 and column 0 alone, like all that lies outside. */

inline int RayOnRaster(const POINTDB &q, double width, double height)
{
    return q.x >= 1 && q.x < width && q.y >= 1 && q.y < height;
}

/* 1 when a ray in the given direction cannot come back from q, outside the raster, to the raster. Positions along a ray
 * never turn back, rounded as they are; what is not a number is taken for gone. */
inline int RayHasLeft(const POINTDB &q, const POINTDB &direction, double width, double height)
{
    return (!(q.x < width) && !(direction.x < 0)) || (!(q.x >= 1) && !(direction.x > 0)) ||
           (!(q.y < height) && !(direction.y < 0)) || (!(q.y >= 1) && !(direction.y > 0));
}

/* Beyond this a position no longer moves by half a pixel; no walk along a ray goes farther. */
constexpr double farthestRay = 4503599627370496.0; /* 2^52 */

/* The first of from, from + step, ... that a ray of at least that length has to look at: what lies before is provably
 * outside the raster. Steps are 1 or 0.5, so the sums are exact. farthestRay or more: none. */
double RayEntry(const POINTDB &origin, const POINTDB &direction, double from, double step, double width, double height);

/* Where q, on the raster of the rays, lies on the planes; 0 when it lies on none of their pixels. */
inline int SweepPlanePixel(const SWEEP *sweep, const POINTDB &q, size_t *index)
{
    const POINTDB on = q - sweep->shift;
    if (!RayOnRaster(on, sweep->planes.width, sweep->planes.height)) return 0;
    *index = static_cast<size_t>(on.y) * static_cast<size_t>(sweep->planes.width) + static_cast<size_t>(on.x);
    return 1;
}

/* From the centre of pixel's q lies in to the line through foot across the normal: as long as the pixel centre's own
 * distance from that line. */
inline POINTDB OffsetToFoot(const POINTDB &q, int32_t px, int32_t py, const POINTDB &foot, const POINTDB &normal)
{
    const POINTDB toCentre = {px - q.x + 0.5, py - q.y + 0.5};
    const POINTDB v = foot - q;
    return toCentre.x == 0 && toCentre.y == 0 ? v : v - normal * Dot(toCentre, normal);
}

} // namespace zr32

#endif
