/* envelope.cpp - the map of an envelope frame: a band that rises from its two long sides to a ridge, like a bent bar.
 *
 * Comes in: the frame record of five or nine nodes. From it a free-standing record is built, the lattice, whose long
 * sides run on past the frame's ends, so that the short sides lie outside and cast no rays into the band. The lattice
 * gets a mask of its own and is swept like any outline.
 */
#include "geometry/nearest.h"
#include "surface/sweep.h"

namespace zr32 {

constexpr uint32_t bilinearNodes = 5;
constexpr uint32_t bicubicNodes = 9;
constexpr uint32_t latticeNodes = 13;
constexpr double widestBand = 99.0;

static POINTDB FramePoint(const PATHREC *frame, uint32_t index)
{
    return PlaceNode(placeImage, frame->nodes + index);
}

static void SetNode(PATHREC *path, uint32_t index, uint16_t type, const POINTDB &p)
{
    path->nodes[index] = {type, DoubleToFix(p.x), DoubleToFix(p.y)};
}

/* Half the distance between the middles of the long sides, or half the longer short side. */
static void VMapFrameHalfWidth(const PATHREC *frame, double *width)
{
    POINTDB p[bicubicNodes] = {};
    for (uint32_t i = 0; i < frame->nodeCount && i < bicubicNodes; i++) p[i] = FramePoint(frame, i);
    if (frame->nodeCount == bicubicNodes) {
        *width = Length(BezierPoint(p, 0.5) - BezierPoint(p + 4, 0.5)) * 0.5;
    } else if (frame->nodeCount == bilinearNodes) {
        const double a = Length(p[0] - p[3]) * 0.5;
        const double b = Length(p[1] - p[2]) * 0.5;
        *width = b >= a ? b : a;
    }
    if (*width > widestBand) *width = widestBand;
}

/* A frame of nine nodes with the sides of one of five: its long sides as straight curves. The controls of the second
 * side stand in each other's places: deliberate, the curve stays the same line and is only run through at another pace,
 * which decides where its samples fall. Null without memory. */
static PATHREC *VMapBilinearToBicubic(const PATHREC *frame)
{
    PATHREC *const bicubic = RecordAlloc(bicubicNodes);
    if (!bicubic) return nullptr;
    bicubic->nodeCount = bicubicNodes;
    bicubic->flags = PATHREC_ENVELOPE;
    for (uint32_t side = 0; side < 2; side++) {
        const uint32_t first = side * 4;
        const POINTDB a = FramePoint(frame, side * 2);
        const POINTDB b = FramePoint(frame, side * 2 + 1);
        const POINTDB nearA = {(2 * a.x + b.x) / 3, (2 * a.y + b.y) / 3};
        const POINTDB nearB = {(a.x + 2 * b.x) / 3, (a.y + 2 * b.y) / 3};
        SetNode(bicubic, first, side == 0 ? PATHNODE_START : PATHNODE_LINE, a);
        SetNode(bicubic, first + 1, PATHNODE_CURVE, side == 0 ? nearA : nearB);
        SetNode(bicubic, first + 2, PATHNODE_CURVE, side == 0 ? nearB : nearA);
        SetNode(bicubic, first + 3, PATHNODE_CURVE, b);
    }
    SetNode(bicubic, 8, PATHNODE_LINE | PATHNODE_CLOSING, FramePoint(frame, 0));
    return bicubic;
}

/* From p on, away from before, by a length; a direction of no length leaves p. */
static POINTDB RunOn(const POINTDB &p, const POINTDB &before, double length)
{
    const POINTDB d = p - before;
    const double size = Length(d);
    const POINTDB unit = size == 0 ? POINTDB{0, 0} : POINTDB{d.x / size, d.y / size};
    return p + unit * length;
}

static PATHREC *LatticeOfBicubic(const PATHREC *frame)
{
    PATHREC *const lattice = RecordAlloc(latticeNodes);
    if (!lattice) return nullptr;
    POINTDB p[bicubicNodes];
    for (uint32_t i = 0; i < bicubicNodes; i++) p[i] = FramePoint(frame, i);
    const double shortSideA = Length(p[7] - p[0]);
    const double shortSideB = Length(p[4] - p[3]);
    lattice->nodeCount = latticeNodes;
    lattice->flags = PATHREC_FREELATTICE;
    for (uint32_t i = 0; i < 4; i++) lattice->nodes[i] = frame->nodes[i];
    SetNode(lattice, 4, PATHNODE_LINE, RunOn(p[3], p[2], shortSideB));
    SetNode(lattice, 5, PATHNODE_LINE, RunOn(p[4], p[5], shortSideB));
    SetNode(lattice, 6, PATHNODE_LINE, p[4]);
    for (uint32_t i = 0; i < 3; i++) SetNode(lattice, 7 + i, PATHNODE_CURVE, p[5 + i]);
    SetNode(lattice, 10, PATHNODE_LINE, RunOn(p[7], p[6], shortSideA));
    SetNode(lattice, 11, PATHNODE_LINE, RunOn(p[0], p[1], shortSideA));
    SetNode(lattice, 12, PATHNODE_LINE | PATHNODE_CLOSING, p[8]);
    return lattice;
}

/* 0 when the frame has neither form, or without memory; the caller frees the lattice. */
static int VMapFrameLattice(const PATHREC *frame, PATHREC **lattice)
{
    *lattice = nullptr;
    if (frame->nodeCount == bicubicNodes) {
        *lattice = LatticeOfBicubic(frame);
    } else if (frame->nodeCount == bilinearNodes) {
        PATHREC *const bicubic = VMapBilinearToBicubic(frame);
        if (!bicubic) return 0;
        *lattice = LatticeOfBicubic(bicubic);
        RecordFree(bicubic);
    }
    return *lattice != nullptr;
}

/* The lattice's plain mask, at zoom 1 whatever the map's zoom: another zoom puts it out of register, deliberately. */
static PATHBUF LatticeMask(PATHREC *lattice)
{
    RECT *rects = nullptr;
    PATHBUF *masks = nullptr;
    PATHBUF mask = nullptr;
    if (ZrPathToBuf(lattice, 0, 0, 1, 0, fixedOne, &rects, &masks, 0) > 0) mask = masks[0];
    GlobalBlockFree(rects);
    GlobalBlockFree(masks);
    return mask;
}

int VMapEnvelope(PATHREC *frame, double *width, const SURFACEMAP *map, FIXED zoom)
{
    PATHREC *lattice;
    VMapFrameHalfWidth(frame, width);
    if (!VMapFrameLattice(frame, &lattice)) return 0;
    const PATHBUF mask = LatticeMask(lattice);
    RECT rect = {};
    ZrPathGetMiniMaxRect(lattice, zoom, &rect);
    VMapSetProgressRange(map->progress, 0, 100);
    const int result =
        VMapEnvelopeSweep(lattice, *width, map, mask, static_cast<int32_t>(rect.left), static_cast<int32_t>(rect.top));
    RecordFree(lattice);
    ZrPathBufFree(mask);
    return result;
}

} // namespace zr32
