/* glyphpaths.cpp - native outline data as path records, quadratics raised to cubics.
 *
 * The data is a row of contours, each a header with its size and start point, then curves: a type, a count and points
 * in 16.16 with y upward. Every point is placed first (y turned over, the pen's whole pixels added) and only then
 * raised, so the thirds and halves are cut on placed values. Sizes in the data are believed only as far as the block
 * reaches.
 */
#include "edit/text.h"
#include "store/store.h"

#include <cstring>

namespace zr32 {

namespace {

constexpr uint16_t primLine = 1;
constexpr uint16_t primQSpline = 2;
constexpr size_t curveHeaderSize = 4;

/* Where the glyph stands: whole pixels along x, or along y for vertical text, in 16 bits. */
struct PEN {
    int16_t at;
    int32_t vertical;
};

uint32_t ReadWord32(const uint8_t *data)
{
    uint32_t word;
    memcpy(&word, data, sizeof(word));
    return word;
}

uint16_t ReadWord16(const uint8_t *data)
{
    uint16_t word;
    memcpy(&word, data, sizeof(word));
    return word;
}

POINTFX ReadPlaced(const uint8_t *data, const PEN &pen)
{
    POINTFX p;
    memcpy(&p, data, sizeof(p));
    p.y = WrapSub(0, p.y);
    if (pen.vertical)
        p.y = FixAddWhole(p.y, pen.at);
    else
        p.x = FixAddWhole(p.x, pen.at);
    return p;
}

PATHNODE NodeAt(uint16_t type, POINTFX p)
{
    return {type, p.x, p.y};
}

POINTFX PointOf(const PATHNODE &node)
{
    return {node.x, node.y};
}

/* The control point of the cubic between an anchor and a quadratic's control point. */
PATHNODE RaisedControl(POINTFX anchor, POINTFX control)
{
    return NodeAt(PATHNODE_CURVE, PtfxTwoThirds(anchor.x, anchor.y, control.x, control.y));
}

int AddLines(const uint8_t *points, uint32_t count, const PEN &pen, PATHREC **path)
{
    PATHNODE *node = nullptr;
    if (!PathReserveNodes(path, &node, count)) return 0;
    for (uint32_t i = 0; i < count; i++) node[i] = NodeAt(PATHNODE_LINE, ReadPlaced(points + i * sizeof(POINTFX), pen));
    return 1;
}

/* count - 1 quadratics: control points and the end, with an anchor half-way between two control points. Fewer than two
 * points are no curve. */
int AddSpline(const uint8_t *points, uint32_t count, const PEN &pen, PATHREC **path)
{
    if (count < 2) return 1;
    const POINTFX current = PointOf((*path)->nodes[(*path)->nodeCount - 1]);
    PATHNODE *node = nullptr;
    if (!PathReserveNodes(path, &node, 3 * (count - 1))) return 0;
    POINTFX control = ReadPlaced(points, pen);
    *node++ = RaisedControl(current, control);
    for (uint32_t i = 1; i + 1 < count; i++) {
        const POINTFX next = ReadPlaced(points + i * sizeof(POINTFX), pen);
        const POINTFX anchor = PtfxMidpoint(control.x, control.y, next.x, next.y);
        *node++ = RaisedControl(anchor, control);
        *node++ = NodeAt(PATHNODE_CURVE | PATHNODE_SMOOTH, anchor);
        *node++ = RaisedControl(anchor, next);
        control = next;
    }
    const POINTFX end = ReadPlaced(points + (count - 1) * sizeof(POINTFX), pen);
    *node++ = RaisedControl(end, control);
    *node = NodeAt(PATHNODE_CURVE, end);
    return 1;
}

/* A last node on the start becomes the closing one; else a line closes. */
int CloseContour(PATHREC **path)
{
    const POINTFX start = PointOf((*path)->nodes[0]);
    PATHNODE *last = &(*path)->nodes[(*path)->nodeCount - 1];
    if (PtfxEqual(last->x, last->y, start.x, start.y)) {
        last->type |= PATHNODE_CLOSING;
    } else {
        if (!PathReserveNodes(path, &last, 1)) return 0;
        *last = NodeAt(PATHNODE_LINE | PATHNODE_CLOSING, start);
    }
    PathTrimNodes(path);
    return 1;
}

/* Fills a new record from a contour of size bytes, header included. A curve that reaches behind them ends it. */
int FillContour(const uint8_t *contour, uint32_t size, const PEN &pen, PATHREC **path)
{
    PATHNODE *start = nullptr;
    if (!PathReserveNodes(path, &start, 1)) return 0;
    *start = NodeAt(PATHNODE_START, ReadPlaced(contour + contourHeaderSize - sizeof(POINTFX), pen));
    for (size_t at = contourHeaderSize; size - at >= curveHeaderSize;) {
        const uint16_t type = ReadWord16(contour + at);
        const uint32_t count = ReadWord16(contour + at + 2);
        const uint8_t *points = contour + at + curveHeaderSize;
        if (count * sizeof(POINTFX) > size - at - curveHeaderSize) break;
        if (type == primLine && !AddLines(points, count, pen, path)) return 0;
        if (type == primQSpline && !AddSpline(points, count, pen, path)) return 0;
        at += curveHeaderSize + count * sizeof(POINTFX);
    }
    return CloseContour(path);
}

/* Adds the contours of a glyph behind *last. 0 without memory. */
int AddGlyph(const GLYPHENTRY *glyph, const PEN &pen, PATHREC **first, PATHREC **last)
{
    const uint32_t size = glyph->outline ? glyph->outlineSize : 0;
    for (uint32_t at = 0; size - at >= contourHeaderSize;) {
        const uint32_t contourSize = ReadWord32(glyph->outline + at);
        if (contourSize < contourHeaderSize || contourSize > size - at) break;
        PATHREC *path = ZrPathCreate();
        if (!path) return 0;
        if (!FillContour(glyph->outline + at, contourSize, pen, &path)) {
            RecordFree(path);
            return 0;
        }
        if (*last) {
            ChainLink(joinChain, *last, path);
            ChainLink(tableChain, *last, path);
        } else {
            *first = path;
        }
        *last = path;
        at += contourSize;
    }
    return 1;
}

} // namespace

int GlyphTableToPaths(const GLYPHTABLE *table, int32_t vertical, PATHREC **path)
{
    *path = nullptr;
    if (!table) return 0;
    PATHREC *first = nullptr;
    PATHREC *last = nullptr;
    PEN pen = {0, vertical};
    for (uint32_t i = 0; i < table->count; i++) {
        const GLYPHENTRY *glyph = &table->glyphs[i];
        if (!AddGlyph(glyph, pen, &first, &last)) {
            ZrPathDeletePtr(first, 0);
            return 0;
        }
        const uint32_t advance = static_cast<uint32_t>(glyph->abcA) + glyph->abcB + static_cast<uint32_t>(glyph->abcC);
        pen.at = static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint16_t>(pen.at) + advance));
    }
    *path = first;
    return 1;
}

} // namespace zr32
