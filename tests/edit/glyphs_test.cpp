/* glyphs_test.cpp - which bytes make a character, which characters the slant shears, and what a table holds. */
#include "edit/text.h"
#include "frame/faults.h"
#include "support/system.h"
#include "support/textdc.h"

#include <cstring>
#include <gtest/gtest.h>
#include <vector>
#include <zr32path/frame.h>

using namespace zr32;
using namespace zr32test;

namespace {

std::vector<uint8_t> OutlineOf(HDC dc, const char *text, int32_t slant, uint8_t charSet)
{
    GLYPHTABLE *table = nullptr;
    EXPECT_EQ(GlyphTableBuild(dc, text, slant, charSet, &table), 1);
    if (!table || table->count == 0) return {};
    const GLYPHENTRY &glyph = table->glyphs[0];
    std::vector<uint8_t> bytes(glyph.outline, glyph.outline + glyph.outlineSize);
    GlyphTableFree(table);
    return bytes;
}

uint32_t CountOf(HDC dc, const char *text, uint8_t charSet)
{
    GLYPHTABLE *table = nullptr;
    EXPECT_EQ(GlyphTableBuild(dc, text, 0, charSet, &table), 1);
    const uint32_t count = table ? table->count : 0;
    GlyphTableFree(table);
    return count;
}

struct Glyphs : NEEDSFONT {};

} // namespace

TEST_F(Glyphs, TableHoldsOutlinesAndWidths)
{
    ZrPathInit();
    TEXTDC text = TextDcMake("Liberation Sans", 40);
    GLYPHTABLE *table = nullptr;
    ASSERT_EQ(GlyphTableBuild(text.dc, "I ", 0, ANSI_CHARSET, &table), 1);
    ASSERT_EQ(table->count, 2u);
    const GLYPHENTRY &letter = table->glyphs[0];
    ASSERT_NE(letter.outline, nullptr);
    EXPECT_EQ(letter.firstContour, letter.outline + 16);
    EXPECT_EQ(PathHeapSize(PathHeap(), 1, letter.outline), letter.outlineSize);
    ABC widths;
    ASSERT_TRUE(GetCharABCWidthsA(text.dc, 'I', 'I', &widths));
    EXPECT_EQ(letter.abcA, widths.abcA);
    EXPECT_EQ(letter.abcB, widths.abcB);
    EXPECT_EQ(letter.abcC, widths.abcC);
    const GLYPHENTRY &blank = table->glyphs[1];
    EXPECT_EQ(blank.outline, nullptr);
    EXPECT_EQ(blank.outlineSize, 0u);
    EXPECT_GT(blank.abcA + static_cast<int32_t>(blank.abcB) + blank.abcC, 0);
    GlyphTableFree(table);
    TextDcFree(&text);
}

TEST_F(Glyphs, SlantShearsSingleBytesInTheNamedSetsOnly)
{
    ZrPathInit();
    TEXTDC text = TextDcMake("Liberation Sans", 40);
    const std::vector<uint8_t> upright = OutlineOf(text.dc, "I", 0, ANSI_CHARSET);
    const struct {
        uint8_t charSet;
        bool sheared;
    } cases[] = {{ANSI_CHARSET, false},
                 {SYMBOL_CHARSET, true},
                 {SHIFTJIS_CHARSET, true},
                 {CHINESEBIG5_CHARSET, true},
                 {HANGUL_CHARSET, true},
                 {GB2312_CHARSET, false},
                 {204, false}};
    for (const auto &c : cases) {
        const std::vector<uint8_t> slanted = OutlineOf(text.dc, "I", 1, c.charSet);
        EXPECT_EQ(slanted != upright, c.sheared) << int{c.charSet};
        EXPECT_EQ(OutlineOf(text.dc, "I", 0, c.charSet), upright) << int{c.charSet};
    }
    TextDcFree(&text);
}

TEST_F(Glyphs, ShearAddsThreeTenthsOfTheHeight)
{
    ZrPathInit();
    TEXTDC text = TextDcMake("Liberation Sans", 100);
    const std::vector<uint8_t> upright = OutlineOf(text.dc, "I", 0, SYMBOL_CHARSET);
    const std::vector<uint8_t> slanted = OutlineOf(text.dc, "I", 1, SYMBOL_CHARSET);
    ASSERT_EQ(upright.size(), slanted.size());
    ASSERT_GE(upright.size(), 20u + 3 * 8);
    for (size_t at = 20; at + 8 <= 20 + 3 * 8; at += 8) { /* the points of the first run of lines */
        int32_t a[2], b[2];
        memcpy(a, upright.data() + at, 8);
        memcpy(b, slanted.data() + at, 8);
        EXPECT_EQ(a[1], b[1]);
        EXPECT_NEAR(b[0], a[0] + 19660.0 / 65536.0 * a[1], outlineUnit);
    }
    TextDcFree(&text);
}

TEST(GlyphsNoFont, WithoutADeviceContextThereIsNoTable)
{
    ZrPathInit();
    const int64_t before = FaultLiveBlocks(ALLOC_PATHHEAP);
    GLYPHTABLE *table = reinterpret_cast<GLYPHTABLE *>(1);
    EXPECT_EQ(GlyphTableBuild(nullptr, "I", 0, ANSI_CHARSET, &table), 0);
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(GlyphTableBuild(nullptr, "", 0, ANSI_CHARSET, &table), 1);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->count, 0u);
    GlyphTableFree(table);
    EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), before);
}

TEST_F(Glyphs, EveryFailedAllocationFreesTheTable)
{
    ZrPathInit();
    TEXTDC text = TextDcMake("Liberation Sans", 40);
    const int64_t before = FaultLiveBlocks(ALLOC_PATHHEAP);
    for (int64_t n = 1; n <= 4; n++) { /* the table and three outlines; a blank has none */
        GLYPHTABLE *table = reinterpret_cast<GLYPHTABLE *>(1);
        FaultSet(ALLOC_PATHHEAP, n);
        EXPECT_EQ(GlyphTableBuild(text.dc, "ab c", 0, ANSI_CHARSET, &table), 0);
        FaultSet(ALLOC_PATHHEAP, 0);
        EXPECT_EQ(table, nullptr);
        EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), before);
    }
    TextDcFree(&text);
}

TEST_F(Glyphs, LeadBytesTakeTheNextByteAlong)
{
    ZrPathInit();
    const CODEPAGE page(932);
    if (!page.found) GTEST_SKIP() << otherCodePage;
    TEXTDC text = TextDcMake("DejaVu Sans", 40, 0, SHIFTJIS_CHARSET);
    const struct {
        const char *name;
        const char *text;
        uint8_t charSet;
        uint32_t count;
    } cases[] = {
        {"one of each", "a\x82\xA0z", SHIFTJIS_CHARSET, 3},
        {"only pairs", "\x82\xA0\x82\xA2", SHIFTJIS_CHARSET, 2},
        {"ends in a pair", "a\x82", SHIFTJIS_CHARSET, 1},
        {"pairs in any set but symbols", "\x82\xA0", ANSI_CHARSET, 1},
        {"symbols are single", "\x82\xA0", SYMBOL_CHARSET, 2},
        {"half-width kana", "\xB1\xB2", SHIFTJIS_CHARSET, 2},
    };
    for (const auto &c : cases) EXPECT_EQ(CountOf(text.dc, c.text, c.charSet), c.count) << c.name;
    TextDcFree(&text);
}

TEST_F(Glyphs, SlantShearsDoubleBytesInEverySet)
{
    ZrPathInit();
    const CODEPAGE page(936);
    if (!page.found) GTEST_SKIP() << otherCodePage;
    TEXTDC text = TextDcMake("DejaVu Sans", 40, 0, GB2312_CHARSET);
    /* Greek alpha in the double-byte page: a glyph that the font has. */
    const char alpha[] = "\xA6\xC1";
    const std::vector<uint8_t> upright = OutlineOf(text.dc, alpha, 0, GB2312_CHARSET);
    EXPECT_FALSE(upright.empty());
    EXPECT_NE(OutlineOf(text.dc, alpha, 1, GB2312_CHARSET), upright);
    EXPECT_NE(OutlineOf(text.dc, alpha, 1, ANSI_CHARSET), upright);
    TextDcFree(&text);
}
