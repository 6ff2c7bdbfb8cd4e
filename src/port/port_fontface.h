/* port_fontface.h - a font's file: found by family, read glyph by glyph. Private to the port.
 *
 * The only room that knows FreeType and fontconfig; in a build without them no face can be opened.
 */
#ifndef ZR32PORT_FONTFACE_H
#define ZR32PORT_FONTFACE_H

#include "port_outline.h"

namespace zr32port {

/* In units of the font; em, ascent + descent and averageWidth are above 0. */
struct FACEMETRICS {
    double em;
    double ascent;
    double descent;
    double lineGap;
    double averageWidth;
    double maxWidth;
    int fixedPitch;
    int italic;
    int bold;
};

struct FONTFACE;

/* The face of the family's nearest font; null when none can be read. */
FONTFACE *FontFaceOpen(const char *family, int weight, int italic);

/* Null is legal. */
void FontFaceFree(FONTFACE *face);

/* The family that was chosen. */
const char *FontFaceFamily(const FONTFACE *face);

const FACEMETRICS *FontFaceMetrics(const FONTFACE *face);

/* The glyph of a Unicode character, or of a symbol font's own code; a character that the font lacks has the font's
 * glyph for that. *outline belongs to the face and holds until the next call. 1; 0 for a damaged or absent glyph. */
int FontFaceGlyph(FONTFACE *face, uint32_t character, int symbol, OUTLINE *outline, double *advance);

/* Makes a file's fonts known to FontFaceOpen. 1; 0 when it is not a font. */
int FontFaceAddFile(const char *file);

} // namespace zr32port

#endif
