/* port_font.cpp - fonts as objects of a device context: outlines, widths and metrics in pixels.
 *
 * A font is a face and the scale that its height and width ask for; everything is worked out from units of the font at
 * each call, in doubles, and nothing is hinted.
 */
#include "port_font.h"
#include "port_codepage.h"
#include "port_fontface.h"
#include "port_objects.h"
#include "port_text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace zr32port;

namespace {

constexpr int defaultHeight = 16;
constexpr const char *defaultFamily = "sans-serif";

/* An upright font that stands in for an italic one leans by this much. */
constexpr double syntheticSlant = 0.2;

struct FONTSCALE {
    double x;
    double y;
    double slant;
};

int RoundPixels(double v)
{
    return static_cast<int>(std::floor(std::clamp(v, -1.0e8, 1.0e8) + 0.5));
}

/* The font of a context, or null for a null context and a font without a file. */
FONT *FontOf(HDC dc)
{
    return dc && dc->font->face ? dc->font : nullptr;
}

/* Pixels a unit of the font. */
FONTSCALE ScaleOf(const FONT *font)
{
    const FACEMETRICS *metrics = FontFaceMetrics(font->face);
    const double height = static_cast<double>(font->height);
    const double y = height > 0 ? height / (metrics->ascent + metrics->descent) : -height / metrics->em;
    const double x = font->width != 0 ? std::abs(static_cast<double>(font->width)) / metrics->averageWidth : y;
    return {x, y, font->italic && !metrics->italic ? syntheticSlant : 0.0};
}

OUTLINESCALE Upright(const FONTSCALE &scale)
{
    return {scale.x, scale.slant * scale.y, 0.0, scale.y};
}

/* The scale and then the caller's matrix. */
OUTLINESCALE Under(const MAT2 &matrix, const FONTSCALE &scale)
{
    const OUTLINESCALE s = Upright(scale);
    const double m11 = matrix.eM11 / 65536.0, m12 = matrix.eM12 / 65536.0;
    const double m21 = matrix.eM21 / 65536.0, m22 = matrix.eM22 / 65536.0;
    return {m11 * s.xx, m11 * s.xy + m21 * s.yy, m12 * s.xx, m12 * s.xy + m22 * s.yy};
}

/* The code page in which a font of the set takes its characters. */
UINT CodePageOf(BYTE charSet)
{
    switch (charSet) {
    case SHIFTJIS_CHARSET: return 932;
    case GB2312_CHARSET: return 936;
    case HANGUL_CHARSET: return 949;
    case CHINESEBIG5_CHARSET: return 950;
    default: return GetACP();
    }
}

/* The set that a font asked for with DEFAULT_CHARSET has. */
BYTE CharSetOf(BYTE asked)
{
    if (asked != DEFAULT_CHARSET) return asked;
    constexpr BYTE doubleByteSets[] = {SHIFTJIS_CHARSET, GB2312_CHARSET, HANGUL_CHARSET, CHINESEBIG5_CHARSET};
    for (const BYTE charSet : doubleByteSets)
        if (CodePageOf(charSet) == GetACP()) return charSet;
    return ANSI_CHARSET;
}

int GlyphOf(FONT *font, UINT character, OUTLINE *outline, double *advance)
{
    const int symbol = font->charSet == SYMBOL_CHARSET;
    const uint32_t code = symbol ? character : CodePageToUnicode(CodePageOf(font->charSet), character);
    return FontFaceGlyph(font->face, code, symbol, outline, advance);
}

} // namespace

extern "C" {

HFONT CreateFontA(int height, int width, int, int, int weight, DWORD italic, DWORD underline, DWORD strikeOut,
                  DWORD charSet, DWORD, DWORD, DWORD, DWORD, const char *faceName)
{
    FONT *font = reinterpret_cast<FONT *>(ObjectAlloc(OBJ_KIND_FONT, sizeof(FONT)));
    if (!font) return nullptr;
    font->height = height != 0 ? height : defaultHeight;
    font->width = width;
    font->weight = weight > 0 ? std::min(weight, 1000) : FW_NORMAL;
    font->italic = italic != 0;
    font->underline = underline != 0;
    font->strikeOut = strikeOut != 0;
    font->charSet = CharSetOf(static_cast<BYTE>(charSet & 0xFFu));
    const char *family = faceName && *faceName ? faceName : defaultFamily;
    font->face = FontFaceOpen(family, font->weight, font->italic);
    return reinterpret_cast<HFONT>(font);
}

int GetTextFaceA(HDC dc, int size, char *name)
{
    const FONT *font = FontOf(dc);
    if (!font) return 0;
    const char *family = FontFaceFamily(font->face);
    const int needed = static_cast<int>(strlen(family)) + 1;
    if (!name) return needed;
    if (size <= 0) return 0;
    const int written = std::min(size, needed);
    memcpy(name, family, static_cast<size_t>(written - 1));
    name[written - 1] = 0;
    return written;
}

int AddFontResourceExA(const char *file, DWORD, void *)
{
    return file ? FontFaceAddFile(file) : 0;
}

DWORD GetGlyphOutlineA(HDC dc, UINT character, UINT format, GLYPHMETRICS *metrics, DWORD size, void *buffer,
                       const MAT2 *matrix)
{
    FONT *font = FontOf(dc);
    if (!font || !metrics || !matrix || (format != GGO_NATIVE && format != GGO_METRICS)) return GDI_ERROR;
    OUTLINE outline;
    double advance = 0.0;
    if (!GlyphOf(font, character, &outline, &advance)) return GDI_ERROR;

    const FONTSCALE fontScale = ScaleOf(font);
    const OUTLINESCALE scale = Under(*matrix, fontScale);
    size_t bytes = 0;
    if (!OutlineToNative(outline, scale, nullptr, 0, &bytes)) return GDI_ERROR;
    const bool wanted = format == GGO_NATIVE && buffer && size != 0;
    if (bytes >= GDI_ERROR || (wanted && bytes > size)) return GDI_ERROR;
    if (wanted) OutlineToNative(outline, scale, static_cast<BYTE *>(buffer), size, &bytes);

    OUTLINEBOX box;
    OutlineBox(outline, scale, &box);
    const int left = RoundPixels(std::floor(box.left));
    const int top = RoundPixels(std::ceil(box.top));
    metrics->gmptGlyphOrigin = {left, top};
    metrics->gmBlackBoxX = static_cast<UINT>(std::max(1, RoundPixels(std::ceil(box.right)) - left));
    metrics->gmBlackBoxY = static_cast<UINT>(std::max(1, top - RoundPixels(std::floor(box.bottom))));
    metrics->gmCellIncX = static_cast<short>(std::clamp(RoundPixels(advance * fontScale.x), -32768, 32767));
    metrics->gmCellIncY = 0;
    return format == GGO_METRICS ? 0 : static_cast<DWORD>(bytes);
}

BOOL GetCharABCWidthsA(HDC dc, UINT first, UINT last, ABC *widths)
{
    FONT *font = FontOf(dc);
    if (!font || !widths || last < first || last > 0xFFFF) return FALSE;
    const FONTSCALE scale = ScaleOf(font);
    for (UINT character = first; character <= last; character++) {
        OUTLINE outline;
        double advance = 0.0;
        if (!GlyphOf(font, character, &outline, &advance)) return FALSE;
        OUTLINEBOX box;
        OutlineBox(outline, Upright(scale), &box);
        const int whole = RoundPixels(advance * scale.x);
        ABC *abc = &widths[character - first];
        /* A blank is all black box, so that the sum is the advance. */
        const double left = outline.pointCount != 0 ? box.left : 0.0;
        const double right = outline.pointCount != 0 ? box.right : whole;
        abc->abcA = RoundPixels(std::floor(left));
        abc->abcB = static_cast<UINT>(std::max(0, RoundPixels(std::ceil(right)) - abc->abcA));
        abc->abcC = whole - abc->abcA - static_cast<int>(abc->abcB);
    }
    return TRUE;
}

BOOL GetTextMetricsA(HDC dc, TEXTMETRICA *metrics)
{
    const FONT *font = FontOf(dc);
    if (!font || !metrics) return FALSE;
    const FACEMETRICS *face = FontFaceMetrics(font->face);
    const FONTSCALE scale = ScaleOf(font);
    *metrics = {};
    metrics->tmAscent = RoundPixels(face->ascent * scale.y);
    metrics->tmHeight = font->height > 0 ? font->height : metrics->tmAscent + RoundPixels(face->descent * scale.y);
    metrics->tmDescent = metrics->tmHeight - metrics->tmAscent;
    metrics->tmInternalLeading = metrics->tmHeight - RoundPixels(face->em * scale.y);
    metrics->tmExternalLeading = RoundPixels(face->lineGap * scale.y);
    metrics->tmAveCharWidth = RoundPixels(face->averageWidth * scale.x);
    metrics->tmMaxCharWidth = RoundPixels(face->maxWidth * scale.x);
    metrics->tmWeight = face->bold ? FW_BOLD : FW_NORMAL;
    metrics->tmDigitizedAspectX = metrics->tmDigitizedAspectY = 96;
    metrics->tmFirstChar = 0x1E;
    metrics->tmLastChar = 0xFF;
    metrics->tmDefaultChar = 0x1F;
    metrics->tmBreakChar = 0x20;
    metrics->tmItalic = font->italic || face->italic ? 255 : 0;
    metrics->tmUnderlined = font->underline;
    metrics->tmStruckOut = font->strikeOut;
    metrics->tmPitchAndFamily = static_cast<BYTE>(0x06 | (face->fixedPitch ? 0 : 1));
    metrics->tmCharSet = font->charSet;
    return TRUE;
}

} // extern "C"
