/* port_outline.h - a glyph as a font file holds it, and its form as native outline bytes. Private to the port. */
#ifndef ZR32PORT_OUTLINE_H
#define ZR32PORT_OUTLINE_H

#include "port_font.h"

namespace zr32port {

enum POINTKIND : int32_t { POINT_ON, POINT_CONIC, POINT_CUBIC };

/* In units of the font, y upward. */
struct OUTLINEPOINT {
    double x;
    double y;
    POINTKIND kind;
};

/* Contour i is the points behind the last of contour i - 1 up to lasts[i]; lasts rise and stay below pointCount. */
struct OUTLINE {
    OUTLINEPOINT *points;
    int32_t *lasts;
    int32_t pointCount;
    int32_t contourCount;
};

/* Units of the font to pixels: x' = xx x + xy y, y' = yx x + yy y. */
struct OUTLINESCALE {
    double xx, xy, yx, yy;
};

/* A rectangle in pixels, y upward; all 0 for an outline without points. */
struct OUTLINEBOX {
    double left, bottom, right, top;
};

/* Writes the outline as native contours as far as buffer (may be null) has room, and *size gets the bytes that all of
 * it takes. 1; 0 for points in an order that no outline has, and for coordinates beyond 16 bits. */
int OutlineToNative(const OUTLINE &outline, const OUTLINESCALE &scale, BYTE *buffer, size_t room, size_t *size);

/* The box of all points, control points too. */
void OutlineBox(const OUTLINE &outline, const OUTLINESCALE &scale, OUTLINEBOX *box);

} // namespace zr32port

#endif
