/* port_font_test.cpp - fonts of known numbers and installed ones: outlines, widths, metrics, code pages, damage. */
#include "support/textdc.h"
#include "support/tinyfont.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace zr32test;

namespace {

constexpr FIXED one = 0x10000;
constexpr MAT2 unit = {one, 0, 0, one};

std::vector<BYTE> Outline(HDC dc, UINT character, const MAT2 &matrix = unit, GLYPHMETRICS *metrics = nullptr)
{
    GLYPHMETRICS own;
    if (!metrics) metrics = &own;
    const DWORD size = GetGlyphOutlineA(dc, character, GGO_NATIVE, metrics, 0, nullptr, &matrix);
    EXPECT_NE(size, GDI_ERROR);
    if (size == GDI_ERROR) return {};
    std::vector<BYTE> bytes(size);
    if (size != 0) {
        EXPECT_EQ(GetGlyphOutlineA(dc, character, GGO_NATIVE, metrics, size, bytes.data(), &matrix), size);
    }
    return bytes;
}

POINTFX PointAt(const std::vector<BYTE> &bytes, size_t at)
{
    POINTFX p = {-1, -1};
    EXPECT_LE(at + sizeof(p), bytes.size());
    if (at + sizeof(p) <= bytes.size()) memcpy(&p, bytes.data() + at, sizeof(p));
    return p;
}

void ExpectPoint(const std::vector<BYTE> &bytes, size_t at, double x, double y)
{
    const POINTFX p = PointAt(bytes, at);
    EXPECT_NEAR(p.x / 65536.0, x, 1.0 / 65536) << at;
    EXPECT_NEAR(p.y / 65536.0, y, 1.0 / 65536) << at;
}

std::string Face(HDC dc)
{
    char name[64] = "";
    GetTextFaceA(dc, sizeof(name), name);
    return name;
}

struct PortFont : NEEDSFONT {};

} // namespace

TEST_F(PortFont, LineGlyphHasItsNumbers)
{
    TEXTDC dc = TextDcMake(InstalledTinyFont(), 100); /* a tenth of a pixel a unit */
    GLYPHMETRICS metrics = {};
    const std::vector<BYTE> bytes = Outline(dc.dc, 'A', unit, &metrics);
    ASSERT_EQ(bytes.size(), 16u + 4 + 3 * 8);
    DWORD head[2];
    WORD curve[2];
    memcpy(head, bytes.data(), sizeof(head));
    memcpy(curve, bytes.data() + 16, sizeof(curve));
    EXPECT_EQ(head[0], bytes.size());
    EXPECT_EQ(head[1], static_cast<DWORD>(TT_POLYGON_TYPE));
    EXPECT_EQ(curve[0], TT_PRIM_LINE);
    EXPECT_EQ(curve[1], 3);
    ExpectPoint(bytes, 8, 10, 0);
    ExpectPoint(bytes, 20, 10, 70);
    ExpectPoint(bytes, 28, 50, 70);
    ExpectPoint(bytes, 36, 50, 0);
    EXPECT_EQ(metrics.gmBlackBoxX, 40u);
    EXPECT_EQ(metrics.gmBlackBoxY, 70u);
    EXPECT_EQ(metrics.gmptGlyphOrigin.x, 10);
    EXPECT_EQ(metrics.gmptGlyphOrigin.y, 70);
    EXPECT_EQ(metrics.gmCellIncX, 60);
    EXPECT_EQ(metrics.gmCellIncY, 0);
    TextDcFree(&dc);
}

TEST_F(PortFont, QuadraticGlyphKeepsItsRuns)
{
    TEXTDC dc = TextDcMake(InstalledTinyFont(), 100);
    const std::vector<BYTE> alternate = Outline(dc.dc, 'Q');
    ASSERT_EQ(alternate.size(), 16u + 4 * (4 + 2 * 8)); /* four splines of two points */
    ExpectPoint(alternate, 8, 60, 0);
    ExpectPoint(alternate, 20, 10, 0);
    ExpectPoint(alternate, 28, 10, 50);
    ExpectPoint(alternate, alternate.size() - 8, 60, 0); /* the last one ends on the start */

    const std::vector<BYTE> controls = Outline(dc.dc, 'O');
    ASSERT_EQ(controls.size(), 16u + 4 + 5 * 8);
    ExpectPoint(controls, 8, 50, 0); /* half-way between the last and the first */
    ExpectPoint(controls, 20, 0, 0);
    ExpectPoint(controls, 52, 50, 0);
    TextDcFree(&dc);
}

TEST_F(PortFont, HeightAboveZeroIsTheCellBelowZeroTheEm)
{
    const struct {
        int height, width;
        LONG tmHeight, tmAscent, tmAve, tmMax, leading;
        double right; /* of 'A' */
        int advance;
    } cases[] = {
        {100, 0, 100, 80, 50, 120, 0, 50, 60}, {-100, 0, 100, 80, 50, 120, 0, 50, 60},
        {30, 0, 30, 24, 15, 36, 0, 15, 18},    {100, 100, 100, 80, 100, 240, 0, 100, 120},
        {0, 0, 16, 13, 8, 19, 0, 8, 10}, /* 9.6 rounded */
    };
    for (const auto &c : cases) {
        TEXTDC dc = {CreateCompatibleDC(nullptr), nullptr, nullptr};
        dc.font = CreateFontA(c.height, c.width, 0, 0, 0, 0, 1, 1, DEFAULT_CHARSET, 0, 0, 0, 0, InstalledTinyFont());
        dc.oldFont = SelectObject(dc.dc, dc.font);
        TEXTMETRICA metrics = {};
        ASSERT_TRUE(GetTextMetricsA(dc.dc, &metrics));
        EXPECT_EQ(metrics.tmHeight, c.tmHeight);
        EXPECT_EQ(metrics.tmAscent, c.tmAscent);
        EXPECT_EQ(metrics.tmDescent, c.tmHeight - c.tmAscent);
        EXPECT_EQ(metrics.tmAveCharWidth, c.tmAve);
        EXPECT_EQ(metrics.tmMaxCharWidth, c.tmMax);
        EXPECT_EQ(metrics.tmInternalLeading, c.leading);
        EXPECT_EQ(metrics.tmExternalLeading, 0);
        EXPECT_EQ(metrics.tmItalic, 0);
        EXPECT_EQ(metrics.tmUnderlined, 1);
        EXPECT_EQ(metrics.tmStruckOut, 1);
        EXPECT_EQ(metrics.tmCharSet, ANSI_CHARSET);
        ExpectPoint(Outline(dc.dc, 'A'), 36, c.right, 0);
        GLYPHMETRICS glyph = {};
        EXPECT_EQ(GetGlyphOutlineA(dc.dc, 'A', GGO_METRICS, &glyph, 0, nullptr, &unit), 0u);
        EXPECT_EQ(glyph.gmCellIncX, c.advance);
        TextDcFree(&dc);
    }
}

TEST_F(PortFont, WidthsAddUpToTheAdvance)
{
    TEXTDC dc = TextDcMake(InstalledTinyFont(), 105); /* 'A' from 10.5 to 52.5, advance 63 */
    ABC widths[2] = {};
    ASSERT_TRUE(GetCharABCWidthsA(dc.dc, 'A', 'A', widths));
    EXPECT_EQ(widths[0].abcA, 10);
    EXPECT_EQ(widths[0].abcB, 43u);
    EXPECT_EQ(widths[0].abcC, 10);
    ASSERT_TRUE(GetCharABCWidthsA(dc.dc, ' ', ' ' + 1, widths));
    EXPECT_EQ(widths[0].abcA, 0);
    EXPECT_EQ(widths[0].abcB, 42u);
    EXPECT_EQ(widths[0].abcC, 0);
    EXPECT_EQ(widths[1].abcB, 32u); /* glyph 0: 31.5 */
    EXPECT_TRUE(Outline(dc.dc, ' ').empty());
    EXPECT_FALSE(GetCharABCWidthsA(dc.dc, 'B', 'A', widths));
    EXPECT_FALSE(GetCharABCWidthsA(dc.dc, 0, 0x10000, widths));
    EXPECT_FALSE(GetCharABCWidthsA(dc.dc, 'A', 'A', nullptr));
    TextDcFree(&dc);
}

TEST_F(PortFont, MatrixIsAppliedAfterTheScale)
{
    TEXTDC dc = TextDcMake(InstalledTinyFont(), 100);
    const MAT2 shear = {one, 0, one / 2, one};
    ExpectPoint(Outline(dc.dc, 'A', shear), 28, 50 + 35, 70);
    const MAT2 turn = {0, one, -one, 0}; /* a quarter turn to the left */
    ExpectPoint(Outline(dc.dc, 'A', turn), 28, -70, 50);
    const MAT2 twice = {2 * one, 0, 0, 3 * one};
    GLYPHMETRICS metrics;
    ExpectPoint(Outline(dc.dc, 'A', twice, &metrics), 28, 100, 210);
    EXPECT_EQ(metrics.gmBlackBoxX, 80u);
    EXPECT_EQ(metrics.gmCellIncX, 60);
    const MAT2 mirrored = {one, 0, 0, -one};
    ExpectPoint(Outline(dc.dc, 'A', mirrored, &metrics), 28, 50, -70);
    EXPECT_EQ(metrics.gmBlackBoxX, 40u);
    EXPECT_EQ(metrics.gmBlackBoxY, 70u) << "also where it hangs below the base line";
    EXPECT_EQ(metrics.gmptGlyphOrigin.y, 0);
    TextDcFree(&dc);
}

TEST_F(PortFont, MetricsTellTheCharactersThatAByteFontHas)
{
    TEXTDC dc = TextDcMake(InstalledTinyFont(), 100);
    TEXTMETRICA metrics = {};
    ASSERT_TRUE(GetTextMetricsA(dc.dc, &metrics));
    EXPECT_EQ(metrics.tmFirstChar, 0x1E);
    EXPECT_EQ(metrics.tmLastChar, 0xFF);
    EXPECT_EQ(metrics.tmDefaultChar, 0x1F);
    EXPECT_EQ(metrics.tmBreakChar, 0x20);
    EXPECT_EQ(metrics.tmWeight, FW_NORMAL);
    TextDcFree(&dc);
}

TEST_F(PortFont, FontThatTellsNoAverageWidthHasHalfTheEm)
{
    /* OS/2 is the first table: its offset stands in bytes 20 to 23, the average width behind its version. */
    std::vector<uint8_t> bytes = TinyFont("Zr Bare");
    const size_t os2 = size_t{bytes[22]} << 8 | bytes[23];
    ASSERT_EQ(500, bytes[os2 + 2] << 8 | bytes[os2 + 3]);
    bytes[os2 + 2] = bytes[os2 + 3] = 0;
    const std::string file = WriteTestFile("zrbare.ttf", bytes);
    ASSERT_EQ(AddFontResourceExA(file.c_str(), FR_PRIVATE, nullptr), 1);
    TEXTDC dc = TextDcMake("Zr Bare", 100);
    EXPECT_EQ(Face(dc.dc), "Zr Bare");
    TEXTMETRICA metrics = {};
    ASSERT_TRUE(GetTextMetricsA(dc.dc, &metrics));
    EXPECT_EQ(metrics.tmAveCharWidth, 50);
    TextDcFree(&dc);
    remove(file.c_str());
}

TEST_F(PortFont, FontWithoutItalicLeansAndSaysSo)
{
    TEXTDC dc = TextDcMake(InstalledTinyFont(), 100, 1);
    TEXTMETRICA metrics = {};
    ASSERT_TRUE(GetTextMetricsA(dc.dc, &metrics));
    EXPECT_NE(metrics.tmItalic, 0);
    ExpectPoint(Outline(dc.dc, 'A'), 28, 50 + 14, 70);
    TextDcFree(&dc);
    TEXTDC real = TextDcMake("Liberation Sans", 100, 1);
    ASSERT_TRUE(GetTextMetricsA(real.dc, &metrics));
    EXPECT_NE(metrics.tmItalic, 0);
    TextDcFree(&real);
}

TEST_F(PortFont, CharactersGoThroughTheCodePage)
{
    const struct {
        const char *name;
        UINT page;
        DWORD charSet;
        UINT character;
        bool isA;
    } cases[] = {
        {"plain", 1252, ANSI_CHARSET, 'A', true},
        {"euro of 1252", 1252, ANSI_CHARSET, 0x80, true},
        {"the last byte of 1252", 1252, ANSI_CHARSET, 0xFF, true},
        {"a hole of 1252", 1252, ANSI_CHARSET, 0x81, false},
        {"hiragana in the current page", 932, ANSI_CHARSET, 0x82A0, true},
        {"hiragana in the font's set", 1252, SHIFTJIS_CHARSET, 0x82A0, true},
        {"hiragana of 936", 936, DEFAULT_CHARSET, 0xA4A2, true},
        {"hiragana of 949", 949, DEFAULT_CHARSET, 0xAAA2, true},
        {"hangul of 949", 949, DEFAULT_CHARSET, 0xB0A1, true},
        {"ideograph one of 950", 950, DEFAULT_CHARSET, 0xA440, true},
        {"single byte in a double-byte page", 932, DEFAULT_CHARSET, 'A', true},
        {"a pair that is none", 932, DEFAULT_CHARSET, 0x8200, false},
        {"beyond two bytes", 932, DEFAULT_CHARSET, 0x10041, false},
        {"symbol set takes codes as they are", 1252, SYMBOL_CHARSET, 'A', true},
    };
    for (const auto &c : cases) {
        PortSetCodePage(c.page);
        TEXTDC dc = TextDcMake(InstalledTinyFont(), 100, 0, c.charSet);
        EXPECT_EQ(PointAt(Outline(dc.dc, c.character), 8).x, c.isA ? 10 * one : 0) << c.name;
        TextDcFree(&dc);
    }
    PortSetCodePage(1252);
}

/* Installs a form of the tiny font under a family of its own. */
TEXTDC FormDc(const char *family, const TINYFORM &form, DWORD charSet)
{
    const std::string file = WriteTestFile(std::string(family) + ".ttf", TinyFont(family, form));
    EXPECT_EQ(AddFontResourceExA(file.c_str(), FR_PRIVATE, nullptr), 1);
    TEXTDC dc = TextDcMake(family, 100, 0, charSet);
    EXPECT_EQ(Face(dc.dc), family);
    remove(file.c_str());
    return dc;
}

TEST_F(PortFont, SymbolFontsHaveTheirCharactersFrom0xF000OnOrAtTheirCodes)
{
    TEXTDC dc = FormDc("Zr Symbols", {.symbol = true}, SYMBOL_CHARSET);
    EXPECT_EQ(PointAt(Outline(dc.dc, 'A'), 8).x, 10 * one) << "at 0xF041";
    EXPECT_EQ(PointAt(Outline(dc.dc, 'Q'), 8).x, 60 * one) << "at 0x51";
    EXPECT_EQ(PointAt(Outline(dc.dc, 'Z'), 8).x, 0) << "nowhere";
    TextDcFree(&dc);
}

TEST_F(PortFont, WithoutClippingHeightsTheLinesHeightsCountAndHalfAnEmForTheAverage)
{
    TEXTDC dc = FormDc("Zr Unclipped", {.clipping = false}, ANSI_CHARSET);
    TEXTMETRICA metrics = {};
    ASSERT_TRUE(GetTextMetricsA(dc.dc, &metrics));
    EXPECT_EQ(metrics.tmAscent, 80);
    EXPECT_EQ(metrics.tmDescent, 20);
    EXPECT_EQ(metrics.tmAveCharWidth, 50);
    TextDcFree(&dc);
}

TEST_F(PortFont, DefaultSetFollowsTheCodePage)
{
    const struct {
        UINT page;
        DWORD asked;
        BYTE got;
    } cases[] = {{1252, DEFAULT_CHARSET, ANSI_CHARSET},       {932, DEFAULT_CHARSET, SHIFTJIS_CHARSET},
                 {936, DEFAULT_CHARSET, GB2312_CHARSET},      {949, DEFAULT_CHARSET, HANGUL_CHARSET},
                 {950, DEFAULT_CHARSET, CHINESEBIG5_CHARSET}, {932, ANSI_CHARSET, ANSI_CHARSET},
                 {1252, SYMBOL_CHARSET, SYMBOL_CHARSET}};
    for (const auto &c : cases) {
        PortSetCodePage(c.page);
        TEXTDC dc = TextDcMake(InstalledTinyFont(), 20, 0, c.asked);
        TEXTMETRICA metrics = {};
        ASSERT_TRUE(GetTextMetricsA(dc.dc, &metrics));
        EXPECT_EQ(metrics.tmCharSet, c.got) << c.page << " " << c.asked;
        TextDcFree(&dc);
    }
    PortSetCodePage(1252);
}

TEST_F(PortFont, FaceNameTellsAnUnknownFamily)
{
    TEXTDC known = TextDcMake("liberation sans", 20);
    EXPECT_EQ(Face(known.dc), "Liberation Sans");
    char name[5] = "xxxx";
    EXPECT_EQ(GetTextFaceA(known.dc, 5, name), 5);
    EXPECT_STREQ(name, "Libe");
    EXPECT_EQ(GetTextFaceA(known.dc, 0, nullptr), 16);
    EXPECT_EQ(GetTextFaceA(known.dc, 0, name), 0);
    TextDcFree(&known);
    TEXTDC unknown = TextDcMake("No Such Family Here", 20);
    EXPECT_NE(Face(unknown.dc), "No Such Family Here");
    EXPECT_NE(Face(unknown.dc), "");
    TextDcFree(&unknown);
    for (const char *empty : {"", static_cast<const char *>(nullptr)}) {
        TEXTDC nameless = TextDcMake(empty, 20);
        EXPECT_NE(Face(nameless.dc), "");
        TextDcFree(&nameless);
    }
}

TEST(PortNoFont, WithoutAFontEverythingFails)
{
    GLYPHMETRICS glyph;
    TEXTMETRICA metrics;
    ABC widths;
    HDC dc = CreateCompatibleDC(nullptr); /* the default font has no file */
    for (HDC each : {static_cast<HDC>(nullptr), dc}) {
        EXPECT_EQ(GetGlyphOutlineA(each, 'A', GGO_NATIVE, &glyph, 0, nullptr, &unit), GDI_ERROR);
        EXPECT_FALSE(GetCharABCWidthsA(each, 'A', 'A', &widths));
        EXPECT_FALSE(GetTextMetricsA(each, &metrics));
        EXPECT_EQ(GetTextFaceA(each, 0, nullptr), 0);
    }
    DeleteDC(dc);
}

TEST_F(PortFont, BadArgumentsFail)
{
    TEXTDC dc = TextDcMake(InstalledTinyFont(), 100);
    GLYPHMETRICS glyph;
    BYTE buffer[256];
    memset(buffer, 0xEE, sizeof(buffer));
    EXPECT_EQ(GetGlyphOutlineA(dc.dc, 'A', GGO_NATIVE, nullptr, 0, nullptr, &unit), GDI_ERROR);
    EXPECT_EQ(GetGlyphOutlineA(dc.dc, 'A', GGO_NATIVE, &glyph, 0, nullptr, nullptr), GDI_ERROR);
    EXPECT_EQ(GetGlyphOutlineA(dc.dc, 'A', 1, &glyph, 0, nullptr, &unit), GDI_ERROR);
    EXPECT_EQ(GetGlyphOutlineA(dc.dc, 'A', GGO_NATIVE, &glyph, 43, buffer, &unit), GDI_ERROR);
    EXPECT_EQ(GetGlyphOutlineA(dc.dc, 'A', GGO_NATIVE, &glyph, 0, buffer, &unit), 44u) << "only the size";
    for (BYTE byte : buffer) EXPECT_EQ(byte, 0xEE);
    EXPECT_EQ(GetGlyphOutlineA(dc.dc, 'A', GGO_NATIVE, &glyph, 44, buffer, &unit), 44u);
    EXPECT_EQ(buffer[44], 0xEE);
    EXPECT_FALSE(GetTextMetricsA(dc.dc, nullptr));
    EXPECT_EQ(AddFontResourceExA(nullptr, FR_PRIVATE, nullptr), 0);
    EXPECT_EQ(AddFontResourceExA("no/such/file", FR_PRIVATE, nullptr), 0);
    TextDcFree(&dc);
}

TEST_F(PortFont, HugeSizesFailOrStayInRange)
{
    for (const int height : {INT_MAX, INT_MIN, 1000000, -1000000, 30000}) {
        TEXTDC dc = TextDcMake(InstalledTinyFont(), height);
        GLYPHMETRICS glyph;
        TEXTMETRICA metrics;
        ABC widths;
        const DWORD size = GetGlyphOutlineA(dc.dc, 'A', GGO_NATIVE, &glyph, 0, nullptr, &unit);
        EXPECT_EQ(size == GDI_ERROR, height != 30000);
        EXPECT_TRUE(GetTextMetricsA(dc.dc, &metrics));
        EXPECT_TRUE(GetCharABCWidthsA(dc.dc, 'A', 'A', &widths));
        TextDcFree(&dc);
    }
    TEXTDC wide = {CreateCompatibleDC(nullptr), nullptr, nullptr};
    wide.font = CreateFontA(10, INT_MIN, 0, 0, INT_MAX, 0, 0, 0, 0, 0, 0, 0, 0, InstalledTinyFont());
    wide.oldFont = SelectObject(wide.dc, wide.font);
    GLYPHMETRICS glyph;
    EXPECT_EQ(GetGlyphOutlineA(wide.dc, 'A', GGO_NATIVE, &glyph, 0, nullptr, &unit), GDI_ERROR);
    TextDcFree(&wide);
}

TEST_F(PortFont, InstalledFontsHaveSoundOutlines)
{
    for (const char *family : {"Liberation Sans", "DejaVu Serif"}) {
        TEXTDC dc = TextDcMake(family, 64);
        for (UINT character = 33; character < 127; character++) {
            const std::vector<BYTE> bytes = Outline(dc.dc, character);
            ASSERT_FALSE(bytes.empty()) << character;
            for (size_t at = 0; at < bytes.size();) {
                DWORD size;
                memcpy(&size, bytes.data() + at, sizeof(size));
                ASSERT_GE(size, 16u + 4 + 8);
                ASSERT_LE(size, bytes.size() - at);
                size_t curve = at + 16;
                while (curve < at + size) {
                    WORD words[2];
                    memcpy(words, bytes.data() + curve, sizeof(words));
                    ASSERT_TRUE(words[0] == TT_PRIM_LINE || (words[0] == TT_PRIM_QSPLINE && words[1] >= 2));
                    curve += 4 + 8 * size_t{words[1]};
                }
                ASSERT_EQ(curve, at + size);
                at += size;
            }
        }
        TextDcFree(&dc);
    }
}

TEST_F(PortFont, DamagedFontsAreSafe)
{
    std::mt19937 random(4);
    int usable = 0;
    for (int n = 0; n < 150; n++) {
        const std::string family = "Zr Damaged " + std::to_string(n);
        std::vector<uint8_t> bytes = TinyFont(family);
        const size_t header = 12 + 16 * 10;
        if (n % 5 == 0) bytes.resize(bytes.size() - 1 - random() % (bytes.size() / 2));
        for (int k = 0; k < 1 + n % 12; k++)
            bytes[header + random() % (bytes.size() - header)] = static_cast<uint8_t>(random());
        const std::string file = WriteTestFile("zrdamaged" + std::to_string(n) + ".ttf", bytes);
        if (!AddFontResourceExA(file.c_str(), FR_PRIVATE, nullptr)) {
            remove(file.c_str());
            continue;
        }
        TEXTDC dc = TextDcMake(family.c_str(), 50);
        for (UINT character : {' ', 'A', 'O', 'Q', 'x'}) {
            GLYPHMETRICS glyph;
            ABC widths;
            TEXTMETRICA metrics;
            const DWORD size = GetGlyphOutlineA(dc.dc, character, GGO_NATIVE, &glyph, 0, nullptr, &unit);
            if (size != GDI_ERROR) Outline(dc.dc, character);
            usable += size != GDI_ERROR;
            GetCharABCWidthsA(dc.dc, character, character, &widths);
            GetTextMetricsA(dc.dc, &metrics);
        }
        TextDcFree(&dc);
        remove(file.c_str());
    }
    EXPECT_GT(usable, 0);
}
