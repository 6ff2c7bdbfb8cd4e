/* text_fuzz.cpp - hand-made and damaged outline data below the font services: glyphs of any bytes become paths. */
#include "scene.h"

#include "edit/text.h"
#include "store/store.h"

using namespace zr32fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    SceneReset();
    BYTES bytes = {data, size};
    const int32_t vertical = TakeRange(&bytes, 0, 1);
    const uint32_t count = static_cast<uint32_t>(TakeRange(&bytes, 0, 5));
    zr32::GLYPHTABLE *table = static_cast<zr32::GLYPHTABLE *>(zr32::PathHeapAlloc(
        zr32::PathHeap(), zr32::heapZero, sizeof(zr32::GLYPHTABLE) + count * sizeof(zr32::GLYPHENTRY)));
    if (!table) return 0;
    table->count = count;
    for (uint32_t i = 0; i < count; i++) {
        zr32::GLYPHENTRY *glyph = &table->glyphs[i];
        glyph->abcA = Take<int16_t>(&bytes);
        glyph->abcB = Take<uint16_t>(&bytes);
        glyph->abcC = Take<int16_t>(&bytes);
        const size_t wanted = Take<uint16_t>(&bytes) % 600;
        const size_t length = wanted < bytes.left ? wanted : bytes.left;
        glyph->outline = static_cast<uint8_t *>(zr32::PathHeapAlloc(zr32::PathHeap(), zr32::heapZero, length));
        if (!glyph->outline) continue;
        if (length) memcpy(glyph->outline, bytes.data, length);
        bytes.data += length;
        bytes.left -= length;
        glyph->outlineSize = static_cast<uint32_t>(length);
        glyph->firstContour = length >= zr32::contourHeaderSize ? glyph->outline + zr32::contourHeaderSize : nullptr;
    }
    PATHREC *path = nullptr;
    zr32::GlyphTableToPaths(table, vertical, &path);
    zr32::GlyphTableFree(table);
    if (path) {
        zr32::TextAddBar(path, zr32::TEXTBAR_UNDERLINE, vertical);
        zr32::TextAddBar(path, zr32::TEXTBAR_STRIKEOUT, vertical);
        for (const PATHREC *record = path; record; record = record->nextPath)
            if (record->nodeCount > zr32::RecordRoom(record)) __builtin_trap();
        ZrPathDeletePtr(path, 0);
    }
    SceneCheckLeaks();
    return 0;
}
