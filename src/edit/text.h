/* text.h - between glyph outlines of the platform and path records. Private to the text files of this room.
 *
 * Order of calls: GlyphTableBuild fetches a line's outlines and widths; GlyphTableToPaths turns them into one join
 * chain; GlyphTableFree. ZrPathCreateText does this line by line.
 * Always: records of text have flags 0, and table chain and join chain are the same.
 */
#ifndef ZR32_TEXT_H
#define ZR32_TEXT_H

#include "frame/frame.h"
#include <zr32path/store.h>

namespace zr32 {

/* One character. A blank has no outline. */
struct GLYPHENTRY {
    uint8_t *outline;      /* path heap block of native outline data; the table owns it */
    uint8_t *firstContour; /* behind the first contour's header */
    int32_t abcA;          /* widths in pixels; their sum is the advance */
    uint32_t abcB;
    int32_t abcC;
    uint32_t outlineSize; /* bytes of outline */
};

/* A path heap block. */
struct GLYPHTABLE {
    uint32_t count;
    GLYPHENTRY glyphs[];
};

static_assert(sizeof(void *) != 4 || sizeof(GLYPHENTRY) == 24, "documented 32-bit glyph entry");
static_assert(sizeof(void *) != 4 || offsetof(GLYPHTABLE, glyphs) == 4, "entries follow the count");

/* A contour begins with its size in bytes, its type and its start point. */
constexpr uint32_t contourHeaderSize = 16;

/* The glyphs of a text in the font of the device context, sheared where slant is not 0 and the character set lets it.
 * 1; 0 and a null table when an outline cannot be had. The table may hold fewer glyphs than the text has bytes; a lead
 * byte at the very end has none. */
int GlyphTableBuild(HDC hdc, const char *text, int32_t slant, uint8_t charSet, GLYPHTABLE **table);

/* The contours of all glyphs as one chain, the pen moving downward when vertical is not 0, else to the right. *path
 * gets its head, null when no glyph has a contour. 1; 0 and a null head for a null table or without memory. Outline
 * data that does not fit its own size ends its glyph. */
int GlyphTableToPaths(const GLYPHTABLE *table, int32_t vertical, PATHREC **path);

/* Frees the outlines and the table; null is legal. */
void GlyphTableFree(GLYPHTABLE *table);

enum TEXTBAR { TEXTBAR_UNDERLINE = 1, TEXTBAR_STRIKEOUT = 2 };

/* Hangs a bar behind the join chain of a line, sized by the box of everything from path on. 1; 0 without memory. */
int TextAddBar(PATHREC *path, TEXTBAR kind, int32_t vertical);

} // namespace zr32

#endif
