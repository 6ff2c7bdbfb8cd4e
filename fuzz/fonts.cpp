/* fonts.cpp - the platform's font services, answered from a fuzzer's input in place of the platform's own: what lies
 * above them must take whatever a damaged font gives. */
#include "scene.h"

#include <algorithm>
#include <cstring>

namespace zr32fuzz {

namespace {

constexpr size_t mostOutline = 512;

/* Outline 0 is a blank; a character has the outline of its code modulo four. */
struct FONT {
    BYTES glyphs[3];
    TEXTMETRICA metrics;
    ABC widths;
    uint8_t refused; /* a bit a character code modulo eight whose outline or widths cannot be had */
    uint8_t raw;     /* a bit a glyph whose bytes are the outline as they stand */
    int8_t grown;    /* the second call for an outline gives as many bytes more than the first has told */
    uint8_t outline[mostOutline];
};

FONT font;

void Put(const void *value, size_t size, size_t *at)
{
    if (*at + size > mostOutline) return;
    memcpy(font.outline + *at, value, size);
    *at += size;
}

void PutPoint(BYTES *bytes, size_t *at)
{
    const POINTFX point = {TakeRange(bytes, -40 * 16, 40 * 16) * 4096, TakeRange(bytes, -40 * 16, 40 * 16) * 4096};
    Put(&point, sizeof point, at);
}

/* Contours of lines and splines whose points lie near the base line; sizes and counts are now and then wrong. */
size_t MakeOutline(BYTES bytes)
{
    size_t at = 0;
    for (int32_t contours = TakeRange(&bytes, 0, 3); contours > 0; contours--) {
        const size_t header = at;
        if (at + sizeof(TTPOLYGONHEADER) > mostOutline) break;
        DWORD words[2] = {0, Take<uint8_t>(&bytes) >= 250 ? Take<uint8_t>(&bytes) : DWORD{TT_POLYGON_TYPE}};
        Put(words, sizeof words, &at);
        PutPoint(&bytes, &at);
        for (int32_t curves = TakeRange(&bytes, 0, 4); curves > 0; curves--) {
            const uint8_t how = Take<uint8_t>(&bytes);
            const int32_t points = TakeRange(&bytes, 0, 6);
            const WORD curve[2] = {static_cast<WORD>(how >= 250 ? how : how % 2 + TT_PRIM_LINE),
                                   static_cast<WORD>(how % 64 == 63 ? points + TakeRange(&bytes, -2, 300) : points)};
            Put(curve, sizeof curve, &at);
            for (int32_t i = 0; i < points; i++) PutPoint(&bytes, &at);
        }
        words[0] = static_cast<DWORD>(at - header);
        if (Take<uint8_t>(&bytes) >= 245) words[0] += static_cast<DWORD>(TakeNumber(&bytes, -20, 20));
        memcpy(font.outline + header, words, sizeof words);
    }
    return at;
}

/* The bytes of a character's outline, in font.outline. */
size_t Outline(UINT character)
{
    const UINT glyph = character % 4;
    if (glyph == 0) return 0;
    const BYTES &bytes = font.glyphs[glyph - 1];
    if (!(font.raw >> glyph & 1)) return MakeOutline(bytes);
    const size_t size = std::min(bytes.left, mostOutline);
    if (size) memcpy(font.outline, bytes.data, size);
    return size;
}

bool Refused(UINT character)
{
    return font.refused >> character % 8 & 1;
}

} // namespace

void FontSet(const BYTES &bytes)
{
    BYTES left = bytes;
    font = {};
    static const BYTE charSets[] = {ANSI_CHARSET, SYMBOL_CHARSET, SHIFTJIS_CHARSET, HANGUL_CHARSET,
                                    CHINESEBIG5_CHARSET};
    font.metrics.tmCharSet = TakeOne(&left, charSets);
    font.metrics.tmItalic = TakeBool(&left);
    font.metrics.tmHeight = TakeNumber(&left, 20, 100);
    font.metrics.tmMaxCharWidth = TakeNumber(&left, 0, 100);
    font.widths = {TakeNumber(&left, -20, 20), static_cast<UINT>(TakeNumber(&left, 0, 40)), TakeNumber(&left, -20, 20)};
    font.refused = Take<uint8_t>(&left) & Take<uint8_t>(&left) & Take<uint8_t>(&left);
    font.raw = Take<uint8_t>(&left) & Take<uint8_t>(&left);
    font.grown = static_cast<int8_t>(Take<uint8_t>(&left) >= 240 ? Take<int8_t>(&left) : 0);
    const size_t third = left.left / 3;
    for (BYTES &glyph : font.glyphs) glyph = TakeSlice(&left, third);
}

} // namespace zr32fuzz

using namespace zr32fuzz;

extern "C" {

HFONT CreateFontA(int, int, int, int, int, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, const char *)
{
    return static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
}

DWORD GetGlyphOutlineA(HDC, UINT character, UINT, GLYPHMETRICS *metrics, DWORD size, void *buffer, const MAT2 *)
{
    *metrics = {};
    if (Refused(character)) return GDI_ERROR;
    const size_t length = Outline(character);
    if (!buffer || size == 0) return static_cast<DWORD>(length);
    if (font.grown < 0) return GDI_ERROR;
    memcpy(buffer, font.outline, std::min<size_t>(length, size));
    return static_cast<DWORD>(length) + static_cast<DWORD>(font.grown);
}

BOOL GetCharABCWidthsA(HDC, UINT first, UINT, ABC *widths)
{
    if (Refused(first + 1)) return 0;
    *widths = font.widths;
    return 1;
}

BOOL GetTextMetricsA(HDC, TEXTMETRICA *metrics)
{
    *metrics = font.metrics;
    return 1;
}

} // extern "C"
