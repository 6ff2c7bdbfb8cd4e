/* text_fuzz.cpp - hand-made and damaged outline data below the font services: glyphs of any bytes become paths, lines
 * of text become a chain and a mask. */
#include "scene.h"

#include "edit/text.h"
#include "store/store.h"

#include <cstdlib>

using namespace zr32fuzz;

namespace {

/* A table of glyphs as the font services would leave it, of any bytes. */
zr32::GLYPHTABLE *TakeGlyphs(BYTES *bytes)
{
    const uint32_t count = static_cast<uint32_t>(TakeRange(bytes, 0, 5));
    zr32::GLYPHTABLE *table = static_cast<zr32::GLYPHTABLE *>(zr32::PathHeapAlloc(
        zr32::PathHeap(), zr32::heapZero, sizeof(zr32::GLYPHTABLE) + count * sizeof(zr32::GLYPHENTRY)));
    if (!table) return nullptr;
    table->count = count;
    for (uint32_t i = 0; i < count; i++) {
        zr32::GLYPHENTRY *glyph = &table->glyphs[i];
        glyph->abcA = Take<int16_t>(bytes);
        glyph->abcB = Take<uint16_t>(bytes);
        glyph->abcC = Take<int16_t>(bytes);
        const BYTES outline = TakeSlice(bytes, Take<uint16_t>(bytes) % 600);
        glyph->outline = static_cast<uint8_t *>(zr32::PathHeapAlloc(zr32::PathHeap(), zr32::heapZero, outline.left));
        if (!glyph->outline) continue;
        if (outline.left) memcpy(glyph->outline, outline.data, outline.left);
        glyph->outlineSize = static_cast<uint32_t>(outline.left);
        glyph->firstContour =
            outline.left >= zr32::contourHeaderSize ? glyph->outline + zr32::contourHeaderSize : nullptr;
    }
    return table;
}

void Glyphs(BYTES *bytes)
{
    const int32_t vertical = TakeRange(bytes, 0, 1);
    zr32::GLYPHTABLE *table = TakeGlyphs(bytes);
    PATHREC *path = nullptr;
    zr32::GlyphTableToPaths(table, vertical, &path);
    zr32::GlyphTableFree(table);
    if (!path) return;
    zr32::TextAddBar(path, zr32::TEXTBAR_UNDERLINE, vertical);
    zr32::TextAddBar(path, zr32::TEXTBAR_STRIKEOUT, vertical);
    CheckChain(path);
    ZrPathDeletePtr(path, 0);
}

/* How wide and high a text may be for a mask of at most 600 pixels a side: small fonts are rasterised larger. */
int32_t MostSide(HDC hdc)
{
    TEXTMETRICA metrics;
    GetTextMetricsA(hdc, &metrics);
    return metrics.tmHeight >= 60 ? 600 : metrics.tmHeight > -60 ? std::abs(metrics.tmHeight) * 4 : 240;
}

/* The text is delivered as paths first, and its mask is asked for where it is not larger than a screen. */
void Lines(BYTES *bytes)
{
    static const int32_t aligns[] = {0, 1001, 1002};
    static const int32_t aaModes[] = {0, 1, 999};
    static const UINT codePages[] = {1252, 932, 936, 949, 950};
    PortSetCodePage(TakeOne(bytes, codePages));
    char text[80];
    const BYTES letters = TakeSlice(bytes, static_cast<size_t>(TakeRange(bytes, 0, 79)));
    TEXTPARAM param = {};
    param.slant = TakeRange(bytes, 0, 1);
    param.underline = TakeRange(bytes, 0, 1);
    param.strikeout = TakeRange(bytes, 0, 1);
    param.maskArg1 = TakeRange(bytes, 0, 3);
    param.vertical = TakeRange(bytes, 0, 1);
    param.maskArg2 = TakeOne(bytes, aaModes);
    param.align = TakeOne(bytes, aligns);
    HDC hdc = TakeDC(bytes);
    FontSet(*bytes);
    for (const int32_t output : {1021, 0}) {
        if (letters.left) memcpy(text, letters.data, letters.left);
        text[letters.left] = 0;
        param.output = output;
        PATHREC *path = nullptr;
        RECT rect = {0, 0, 0, 0};
        FreeBuffer(ZrPathCreateText(hdc, text, &param, &path, &rect));
        CheckChain(path);
        const bool small = SmallEnough(path, MostSide(hdc));
        ZrPathDeletePtr(path, 0);
        if (!small) break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    SceneReset();
    BYTES bytes = {data, size};
    if (TakeBool(&bytes))
        Lines(&bytes);
    else
        Glyphs(&bytes);
    SceneCheckLeaks();
    return 0;
}
