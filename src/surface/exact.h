/* exact.h - inside of the exact distance builder: segments of the outline, what lies near a pixel, corners.
 *
 * exactmeasure.cpp measures one segment, exactmitre.cpp extends two segments past their common vertex, exactnear.cpp
 * knows which segments lie near a pixel and gives them in order of distance, exact.cpp goes over the pixels.
 */
#ifndef ZR32_EXACT_H
#define ZR32_EXACT_H

#include "surface/surface.h"

namespace zr32 {

/* ---- one segment ---- */

struct LINEDB {
    POINTDB a;
    POINTDB b;
};

/* A line (p[0], p[1]) or a curve (p[0] to p[3]) of the outline, placed in map pixels, and what is remembered of it. */
struct EXACTSEGMENT {
    PATHNODE *node; /* at which the segment is stored; the node before it is the start */
    int curve;
    int typeMasked; /* the node's type has lost its closing and selected bits */
    POINTDB p[4];
    POINTDB low; /* box of the points */
    POINTDB high;
    double lastDistance; /* as last measured, and for which pixel; less than 0 before */
    int32_t lastX;
    int32_t lastY;
    uint32_t stamp;   /* of the set that last took it in */
    uint32_t rowHits; /* first of its crossings with rows and with columns; the next segment's first ends them */
    uint32_t columnHits;
};

/* A segment as seen from a pixel; without a segment there is none, and all is 0. */
struct NEARENTRY {
    double dist2;
    POINTDB vector; /* from the pixel to the nearest point; not for the distance plane alone */
    const EXACTSEGMENT *segment;
    int atEnd;      /* the nearest point is an end of the segment */
    uint64_t order; /* place in the order of gathering, which decides between equal distances */
};

/* Takes the closing and selected bits out of the node's type, in the path itself. What reads the path afterwards
 * depends on that. */
void SegmentMaskType(const EXACTSEGMENT *segment);

/* Nearest points. right is where the pixel's row is next crossed: a point that lies on the segment is moved along the
 * row, away from it, until there is a vector. A curve measured for its distance alone stays where it is. */
void VMapLineDistance(double right, POINTDB point, LINEDB line, NEARENTRY *entry);
void VMapCurveDistance(double right, POINTDB point, const POINTDB *controls, int wantVector, NEARENTRY *entry);

/* ---- corners ---- */

/* The line of the last corner that widened the reach. It outlives the call, deliberately: the first corner of a map may
 * be taken for the last one of the map before. */
extern LINEDB vmapLastEdge;

/* How far a pixel looks. */
struct REACH {
    double base;     /* as the caller asked */
    double width;    /* as the corners met so far have widened it */
    double diagonal; /* of the map, for a corner so sharp that there is no number */
};

/* Replaces the distances of two entries that see one vertex by those to the extended lines, the greater first, and
 * widens the reach to the length of the mitre. A pair without a direction stays. */
void VMapMitrePair(const POINTDB &pixel, NEARENTRY *e1, NEARENTRY *e2, REACH *reach);

/* ---- what lies near a pixel ---- */

/* The box around a pixel in which a crossing makes its segment a candidate: rows and columns inclusive, places between
 * the limits. */
struct NEARBOX {
    int32_t firstRow;
    int32_t lastRow;
    double xLow;
    double xHigh;
    int32_t firstColumn;
    int32_t lastColumn;
    double yLow;
    double yHigh;
};

struct NEARHIT;
struct NEARWAIT;

/* All segments, those near the stretch of the row at hand, and the candidates of one pixel as far as they have been
 * asked for. */
struct NEARLIST {
    const SURFACEEDGES *edges;
    int wide; /* vectors are wanted, too */

    EXACTSEGMENT *segments; /* segmentCount and one behind, which ends the hits */
    uint32_t segmentCount;
    NEARHIT *rowHits;
    NEARHIT *columnHits;

    uint32_t *stretch; /* segments near the pixels from stretchX to stretchEnd of row stretchY, up to stretchReach */
    uint32_t stretchCount;
    uint32_t stamp;
    int32_t stretchX;
    int32_t stretchEnd;
    int32_t stretchY;
    double stretchReach;

    int32_t x; /* the pixel */
    int32_t y;
    double right;
    NEARBOX box;
    NEARWAIT *waiting; /* a heap of what has not been measured yet, the lowest bound on top */
    uint32_t waitingCount;
    NEARENTRY *entries; /* produced ones in their order, then measured ones that wait for their turn, nearest first */
    uint32_t produced;
    uint32_t measured;
};

/* Reads the edge tables; each table entry's spanFlag then also holds its segment (NearFlag reads the role). 1; 0
 * without memory. NearListFree in either case. */
int NearListAlloc(const SURFACEEDGES *edges, const SURFACEMAP *map, NEARLIST *list);
void NearListFree(NEARLIST *list);

/* The role that the crossing was given: 1 where the shape is entered. */
inline int NearFlag(const EDGEENTRY *entry)
{
    return entry->spanFlag & 1;
}

/* Makes the list that of a pixel with this reach; no pixel of the row is expected to look farther than widest. right is
 * where the row is next crossed. */
void NearListStart(int32_t x, int32_t y, double reach, double widest, double right, NEARLIST *list);

/* Entry i in order of distance; up to five places behind the last one an entry of 0. It stays where it is until the
 * next pixel and may be changed. */
NEARENTRY *NearAt(uint32_t i, NEARLIST *list);

/* 1 when there is an entry i. */
int NearExists(uint32_t i, NEARLIST *list);

/* No entry that has not been produced yet is nearer than this. */
double NearBeyond(const NEARLIST *list);

} // namespace zr32

#endif
