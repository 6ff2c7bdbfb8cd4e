/* tinyfont.cpp - the tables of a small TrueType font, see tinyfont.h. */
#include "support/tinyfont.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <utility>

namespace zr32test {

namespace {

using BYTES = std::vector<uint8_t>;

void U16(int v, BYTES *out)
{
    out->push_back(static_cast<uint8_t>(v >> 8 & 0xFF));
    out->push_back(static_cast<uint8_t>(v & 0xFF));
}

void U32(uint32_t v, BYTES *out)
{
    U16(static_cast<int>(v >> 16), out);
    U16(static_cast<int>(v & 0xFFFF), out);
}

void Words(const std::vector<int> &words, BYTES *out)
{
    for (int word : words) U16(word, out);
}

struct GLYPHPOINT {
    int x, y;
    bool on;
};

/* One contour with plain words for every coordinate. */
BYTES Glyph(const std::vector<GLYPHPOINT> &points)
{
    BYTES out;
    if (points.empty()) return out;
    int left = points[0].x, right = left, bottom = points[0].y, top = bottom;
    for (const GLYPHPOINT &p : points) {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        bottom = std::min(bottom, p.y);
        top = std::max(top, p.y);
    }
    Words({1, left, bottom, right, top, static_cast<int>(points.size()) - 1, 0}, &out);
    for (const GLYPHPOINT &p : points) out.push_back(p.on ? 1 : 0);
    int before = 0;
    for (const GLYPHPOINT &p : points) U16(p.x - std::exchange(before, p.x), &out);
    before = 0;
    for (const GLYPHPOINT &p : points) U16(p.y - std::exchange(before, p.y), &out);
    while (out.size() % 4 != 0) out.push_back(0);
    return out;
}

struct TABLE {
    const char *tag;
    BYTES bytes;
};

BYTES NameTable(const std::string &family)
{
    BYTES text, out;
    for (char c : family) U16(c, &text);
    const int size = static_cast<int>(text.size());
    /* family, style (the family's first letter will do), full name, PostScript name */
    Words({0, 4, 6 + 4 * 12}, &out);
    for (int id : {1, 2, 4, 6}) Words({3, 1, 0x409, id, id == 2 ? 2 : size, 0}, &out);
    out.insert(out.end(), text.begin(), text.end());
    return out;
}

} // namespace

std::vector<uint8_t> TinyFont(const std::string &family, const TINYFORM &form)
{
    const std::vector<BYTES> glyphs = {
        Glyph({{0, 0, true}, {0, 300, true}, {300, 300, true}, {300, 0, true}}),
        Glyph({}),
        Glyph({{100, 0, true}, {100, 700, true}, {500, 700, true}, {500, 0, true}}),
        Glyph({{600, 0, true},
               {100, 0, false},
               {100, 500, true},
               {100, 1000, false},
               {600, 1000, true},
               {1100, 1000, false},
               {1100, 500, true},
               {1100, 0, false}}),
        Glyph({{0, 0, false}, {0, 1000, false}, {1000, 1000, false}, {1000, 0, false}}),
    };
    BYTES glyf, loca, hmtx;
    for (const BYTES &glyph : glyphs) {
        U32(static_cast<uint32_t>(glyf.size()), &loca);
        glyf.insert(glyf.end(), glyph.begin(), glyph.end());
    }
    U32(static_cast<uint32_t>(glyf.size()), &loca);
    Words({300, 0, 400, 0, 600, 100, 1200, 100, 1000, 0}, &hmtx);

    /* (character, glyph), rising */
    const std::vector<std::pair<int, int>> unicode = {{' ', 1},    {'A', 2},    {'O', 4},    {'Q', 3},   {0xFF, 2},
                                                      {0x20AC, 2}, {0x3042, 2}, {0x4E00, 2}, {0xAC00, 2}};
    const std::vector<std::pair<int, int>> symbols = {{' ', 1}, {'Q', 3}, {0xF041, 2}};
    const std::vector<std::pair<int, int>> &map = form.symbol ? symbols : unicode;
    BYTES cmap;
    const int segments = static_cast<int>(map.size()) + 1;
    int half = 1, steps = 0; /* of a search by halves */
    while (half * 2 <= segments) half *= 2, steps++;
    Words({0, 1, 3, form.symbol ? 0 : 1, 0, 12, 4, 16 + 8 * segments, 0, 2 * segments, 2 * half, steps,
           2 * (segments - half)},
          &cmap);
    for (const auto &[character, glyph] : map) U16(character, &cmap);
    Words({0xFFFF, 0}, &cmap);
    for (const auto &[character, glyph] : map) U16(character, &cmap);
    U16(0xFFFF, &cmap);
    for (const auto &[character, glyph] : map) U16(glyph - character, &cmap);
    U16(1, &cmap);
    for (int i = 0; i < segments; i++) U16(0, &cmap);

    BYTES head, hhea, maxp, os2, post;
    U32(0x00010000, &head);
    U32(0x00010000, &head);
    U32(0, &head);
    U32(0x5F0F3CF5, &head);
    Words({0, 1000}, &head);
    for (int i = 0; i < 4; i++) U32(0, &head);
    Words({0, 0, 1100, 1000, 0, 8, 2, 1, 0}, &head);
    U32(0x00010000, &hhea);
    Words({800, -200, 0, 1200, 0, 0, 1100, 1, 0, 0, 0, 0, 0, 0, 0, 5}, &hhea);
    U32(0x00010000, &maxp);
    Words({5, 8, 1, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0}, &maxp);
    Words({3, form.clipping ? 500 : 0, 400, 5, 0}, &os2);
    for (int i = 0; i < 10; i++) U16(100, &os2);
    Words({0, 0, 0, 0, 0, 0}, &os2);          /* family class, panose */
    for (int i = 0; i < 4; i++) U32(1, &os2); /* Unicode ranges */
    U32(0x54455354, &os2);
    const int clipping = form.clipping;
    Words({0x40, 0x20, 0xAC00, 800, -200, 0, 800 * clipping, 200 * clipping}, &os2);
    U32(1, &os2);
    U32(0, &os2);
    Words({500, 700, 0, 32, 1}, &os2);
    U32(0x00030000, &post);
    for (int i = 0; i < 7; i++) U32(0, &post);

    const std::vector<TABLE> tables = {{"OS/2", os2},  {"cmap", cmap}, {"glyf", glyf},
                                       {"head", head}, {"hhea", hhea}, {"hmtx", hmtx},
                                       {"loca", loca}, {"maxp", maxp}, {"name", NameTable(family)},
                                       {"post", post}};
    BYTES out;
    U32(0x00010000, &out);
    Words({static_cast<int>(tables.size()), 128, 3, 32}, &out);
    size_t at = 12 + 16 * tables.size();
    for (const TABLE &table : tables) {
        for (int i = 0; i < 4; i++) out.push_back(static_cast<uint8_t>(table.tag[i]));
        U32(0, &out);
        U32(static_cast<uint32_t>(at), &out);
        U32(static_cast<uint32_t>(table.bytes.size()), &out);
        at += (table.bytes.size() + 3) & ~size_t{3};
    }
    for (const TABLE &table : tables) {
        out.insert(out.end(), table.bytes.begin(), table.bytes.end());
        while (out.size() % 4 != 0) out.push_back(0);
    }
    return out;
}

std::string WriteTestFile(const std::string &name, const std::vector<uint8_t> &bytes)
{
    /* Tests run side by side, each in a process of its own. */
    static const std::string own = std::to_string(std::random_device{}());
    const std::string path = testing::TempDir() + own + name;
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
}

const char *InstalledTinyFont()
{
    static std::string file;
    if (file.empty()) {
        file = WriteTestFile("zrtiny.ttf", TinyFont("Zr Tiny"));
        EXPECT_EQ(AddFontResourceExA(file.c_str(), FR_PRIVATE, nullptr), 1);
        atexit([] { remove(file.c_str()); });
    }
    return "Zr Tiny";
}

} // namespace zr32test
