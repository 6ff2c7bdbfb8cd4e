/* glyphs.cpp - the glyphs of one line of text: outlines and widths from the platform, in a table.
 *
 * The character set of the font says how bytes make characters and which of them the slant shears: in symbol fonts and
 * three double-byte sets every character, in all other sets the double-byte ones only, deliberately.
 */
#include "edit/text.h"

#include <cstring>

namespace zr32 {

namespace {

constexpr double shear = 0.3;

/* A character as the platform's font calls take it. */
struct CHARACTER {
    UINT code;
    int bytes;
    int sheared; /* by its kind, if the slant is on */
};

/* The character that text begins with; 0 at the end, and where the text ends inside a double-byte character. */
int NextCharacter(const char *text, uint8_t charSet, CHARACTER *character)
{
    const uint8_t first = static_cast<uint8_t>(text[0]);
    if (first == 0) return 0;
    if (charSet == SYMBOL_CHARSET) {
        *character = {first, 1, 1};
        return 1;
    }
    const int everyOne = charSet == SHIFTJIS_CHARSET || charSet == CHINESEBIG5_CHARSET || charSet == HANGUL_CHARSET;
    if (!IsDBCSLeadByte(first)) {
        *character = {first, 1, everyOne};
        return 1;
    }
    const uint8_t trail = static_cast<uint8_t>(text[1]);
    if (trail == 0) return 0;
    *character = {first * 256u + trail, static_cast<int>(CharNextA(text) - text), 1};
    return 1;
}

/* The unit matrix with a shear. The platform's record holds the same words under a type of its own. */
MAT2 ShearMatrix(FIXED eM21)
{
    const FIXED words[4] = {fixedOne, 0, eM21, fixedOne};
    MAT2 matrix;
    static_assert(sizeof(matrix) == sizeof(words), "four 16.16 numbers");
    memcpy(&matrix, words, sizeof(matrix));
    return matrix;
}

/* 1; 0 when the outline cannot be had. Widths that cannot be had stay 0. */
int FetchGlyph(HDC hdc, const CHARACTER &character, int32_t slant, GLYPHENTRY *glyph)
{
    const MAT2 matrix = ShearMatrix(slant && character.sheared ? DoubleToFix(shear) : 0);
    GLYPHMETRICS metrics = {};
    const DWORD size = GetGlyphOutlineA(hdc, character.code, GGO_NATIVE, &metrics, 0, nullptr, &matrix);
    if (size == GDI_ERROR) return 0;
    if (size != 0) {
        glyph->outline = static_cast<uint8_t *>(PathHeapAlloc(PathHeap(), heapZero, size));
        if (!glyph->outline) return 0;
        glyph->firstContour = size >= contourHeaderSize ? glyph->outline + contourHeaderSize : nullptr;
        glyph->outlineSize = size;
        if (GetGlyphOutlineA(hdc, character.code, GGO_NATIVE, &metrics, size, glyph->outline, &matrix) == GDI_ERROR)
            return 0;
    }
    ABC widths = {};
    if (GetCharABCWidthsA(hdc, character.code, character.code, &widths)) {
        glyph->abcA = widths.abcA;
        glyph->abcB = widths.abcB;
        glyph->abcC = widths.abcC;
    }
    return 1;
}

} // namespace

int GlyphTableBuild(HDC hdc, const char *text, int32_t slant, uint8_t charSet, GLYPHTABLE **table)
{
    *table = nullptr;
    const size_t room = static_cast<size_t>(lstrlenA(text));
    const size_t size = offsetof(GLYPHTABLE, glyphs) + room * sizeof(GLYPHENTRY);
    GLYPHTABLE *made = static_cast<GLYPHTABLE *>(PathHeapAlloc(PathHeap(), heapZero, size));
    if (!made) return 0;

    CHARACTER character;
    for (const char *at = text; NextCharacter(at, charSet, &character); at += character.bytes) {
        /* Counted first, so that a half-made glyph is freed with the table. */
        GLYPHENTRY *glyph = &made->glyphs[made->count++];
        if (!FetchGlyph(hdc, character, slant, glyph)) {
            GlyphTableFree(made);
            return 0;
        }
    }
    *table = made;
    return 1;
}

void GlyphTableFree(GLYPHTABLE *table)
{
    if (!table) return;
    for (uint32_t i = 0; i < table->count; i++) PathHeapFree(PathHeap(), heapNoSerialize, table->glyphs[i].outline);
    PathHeapFree(PathHeap(), heapNoSerialize, table);
}

} // namespace zr32
