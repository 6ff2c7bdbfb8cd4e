/* text_test.cpp - lines of text as one chain: cutting, stacking, aligning, bars, and the mask. */
#include "edit/text.h"
#include "frame/faults.h"
#include "store/store.h"
#include "support/shapes.h"
#include "support/system.h"
#include "support/textdc.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include <zr32path/edit.h>
#include <zr32path/raster.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr int32_t pathsOnly = 1021;

/* One call: text is copied, since it is changed in place. */
struct MADE {
    PATHREC *path = nullptr;
    PATHBUF mask = nullptr;
    RECT rect = {-7, -7, -7, -7};
    std::string text;
};

MADE Make(HDC dc, const std::string &text, TEXTPARAM param = {})
{
    MADE made;
    made.text = text;
    made.path = reinterpret_cast<PATHREC *>(1);
    made.mask = ZrPathCreateText(dc, made.text.data(), &param, &made.path, &made.rect);
    return made;
}

MADE MakePaths(HDC dc, const std::string &text, TEXTPARAM param = {})
{
    param.output = pathsOnly;
    const MADE made = Make(dc, text, param);
    EXPECT_EQ(made.mask, nullptr);
    return made;
}

void Free(MADE *made)
{
    ZrPathDeletePtr(made->path, 0);
    ZrPathBufFree(made->mask);
}

size_t ChainLength(const PATHREC *path)
{
    size_t n = 0;
    for (; path; path = path->nextJoin) {
        EXPECT_EQ(path->nextJoin, path->nextPath);
        if (path->nextJoin) {
            EXPECT_EQ(path->nextJoin->prevJoin, path);
        }
        if (path->nextJoin) {
            EXPECT_EQ(path->nextJoin->prevPath, path);
        }
        EXPECT_EQ(path->flags, 0u);
        n++;
    }
    return n;
}

/* The chain's nodes as (type, x, y), moved. */
std::vector<PATHNODE> Nodes(const PATHREC *path, ZRFIXED dx = 0, ZRFIXED dy = 0)
{
    std::vector<PATHNODE> nodes;
    for (; path; path = path->nextJoin)
        for (uint32_t i = 0; i < path->nodeCount; i++)
            nodes.push_back({path->nodes[i].type, path->nodes[i].x + dx, path->nodes[i].y + dy});
    return nodes;
}

bool Same(const std::vector<PATHNODE> &a, const std::vector<PATHNODE> &b)
{
    return a.size() == b.size() && (a.empty() || memcmp(a.data(), b.data(), a.size() * sizeof(PATHNODE)) == 0);
}

std::vector<PATHNODE> operator+(std::vector<PATHNODE> a, const std::vector<PATHNODE> &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEXTMETRICA Metrics(HDC dc)
{
    TEXTMETRICA metrics = {};
    EXPECT_TRUE(GetTextMetricsA(dc, &metrics));
    return metrics;
}

RECT Box(const PATHREC *path)
{
    RECT rect = {};
    EXPECT_EQ(ZrPathGetMiniMaxRect(path, 0x10000, &rect), 1);
    return rect;
}

constexpr ZRFIXED Whole(int64_t pixels)
{
    return static_cast<ZRFIXED>(pixels * 65536);
}

const char *const family = "Liberation Sans";

struct Text : NEEDSFONT {};

} // namespace

TEST_F(Text, WithoutALineThereIsNothing)
{
    TEXTDC dc = TextDcMake(family, 80);
    for (const char *text : {"", "\r\n", "\r\n\r\n", "\n", "\r"}) {
        MADE made = Make(dc.dc, text);
        EXPECT_EQ(made.mask, nullptr);
        EXPECT_EQ(made.path, nullptr);
        EXPECT_EQ(made.rect.left, -7);
    }
    TextDcFree(&dc);
}

TEST_F(Text, BlanksAloneAreNothing)
{
    TEXTDC dc = TextDcMake(family, 80);
    MADE made = Make(dc.dc, " \t \r\n  ");
    EXPECT_EQ(made.mask, nullptr);
    EXPECT_EQ(made.path, nullptr);
    EXPECT_EQ(made.rect.left, -7);
    EXPECT_EQ(made.text, "   \r\n  ");
    TextDcFree(&dc);
}

TEST(TextNoFont, NullArgumentsAreRefused)
{
    char text[] = "a";
    TEXTPARAM param = {};
    PATHREC *path = nullptr;
    RECT rect;
    EXPECT_EQ(ZrPathCreateText(nullptr, nullptr, &param, &path, &rect), nullptr);
    EXPECT_EQ(ZrPathCreateText(nullptr, text, nullptr, &path, &rect), nullptr);
    EXPECT_EQ(ZrPathCreateText(nullptr, text, &param, nullptr, &rect), nullptr);
    EXPECT_EQ(ZrPathCreateText(nullptr, text, &param, &path, nullptr), nullptr);
}

TEST(TextNoFont, NullDeviceContextGivesNothingButCleansTheText)
{
    TEXTPARAM param = {};
    param.underline = param.strikeout = 1;
    MADE made = Make(nullptr, "a\tb\r\nc", param);
    EXPECT_EQ(made.path, nullptr);
    EXPECT_EQ(made.mask, nullptr);
    EXPECT_EQ(made.text, "a b\r\nc");
}

TEST_F(Text, TabBecomesABlankThatAdvancesThePen)
{
    TEXTDC dc = TextDcMake(family, 80);
    MADE tab = MakePaths(dc.dc, "l\tl\x01l");
    MADE blank = MakePaths(dc.dc, "l l l");
    EXPECT_EQ(tab.text, "l l l");
    EXPECT_EQ(ChainLength(tab.path), 3u);
    EXPECT_TRUE(Same(Nodes(tab.path), Nodes(blank.path)));
    ABC letter, space;
    ASSERT_TRUE(GetCharABCWidthsA(dc.dc, 'l', 'l', &letter));
    ASSERT_TRUE(GetCharABCWidthsA(dc.dc, ' ', ' ', &space));
    const int advance = letter.abcA + static_cast<int>(letter.abcB) + letter.abcC + space.abcA +
                        static_cast<int>(space.abcB) + space.abcC;
    EXPECT_EQ(tab.path->nextJoin->nodes[0].x - tab.path->nodes[0].x, Whole(advance));
    Free(&tab);
    Free(&blank);
    TextDcFree(&dc);
}

TEST_F(Text, LineIsCutAt54Bytes)
{
    TEXTDC dc = TextDcMake(family, 20);
    const struct {
        size_t bytes, glyphs;
    } cases[] = {{53, 53}, {54, 54}, {55, 54}, {60, 54}, {5000, 54}};
    for (const auto &c : cases) {
        MADE made = MakePaths(dc.dc, std::string(c.bytes, 'l'));
        EXPECT_EQ(ChainLength(made.path), c.glyphs) << c.bytes;
        Free(&made);
    }
    TextDcFree(&dc);
}

TEST_F(Text, DoubleByteCharacterIsNeverCutInHalf)
{
    const CODEPAGE page(932);
    if (!page.found) GTEST_SKIP() << otherCodePage;
    TEXTDC dc = TextDcMake("DejaVu Sans", 20, 0, SHIFTJIS_CHARSET);
    const std::string alpha = "\x83\xBF"; /* Greek, as the font has no kana */
    MADE single = MakePaths(dc.dc, alpha);
    const size_t contours = ChainLength(single.path);
    ASSERT_GT(contours, 0u);
    MADE letter = MakePaths(dc.dc, "l"); /* from another font, where the system finds one with kana */
    const size_t lone = ChainLength(letter.path);
    ASSERT_GT(lone, 0u);
    std::string pairs;
    for (int i = 0; i < 30; i++) pairs += alpha;
    const struct {
        const char *name;
        std::string text;
        size_t contours;
    } cases[] = {
        {"27 pairs fit", pairs, 27 * contours},
        {"after one byte, 26 pairs fit", "l" + pairs, lone + 26 * contours},
        {"after two bytes, 26 pairs fit", "ll" + pairs, 2 * lone + 26 * contours},
        {"half a pair at the end has no glyph", "l\x83", lone},
    };
    for (const auto &c : cases) {
        MADE made = MakePaths(dc.dc, c.text);
        EXPECT_EQ(ChainLength(made.path), c.contours) << c.name;
        Free(&made);
    }
    Free(&single);
    Free(&letter);
    TextDcFree(&dc);
}

TEST_F(Text, DiagnosticGoesOutBeforeEachLine)
{
    TEXTDC dc = TextDcMake(family, 20);
    DEBUGTEXT debug;
    MADE made = MakePaths(dc.dc, "a\r\n\r\nb\r\n");
    EXPECT_EQ(debug.texts, std::vector<std::string>(3, "Enter FontOutlineToPSPath\n"));
    Free(&made);
    TextDcFree(&dc);
}

TEST_F(Text, LinesStackByTheFontsHeight)
{
    TEXTDC dc = TextDcMake(family, 50);
    const ZRFIXED height = Whole(Metrics(dc.dc).tmHeight);
    MADE first = MakePaths(dc.dc, "ab");
    MADE third = MakePaths(dc.dc, "cd");
    MADE made = MakePaths(dc.dc, "ab\r\n\r\ncd\r\n");
    EXPECT_TRUE(Same(Nodes(made.path), Nodes(first.path) + Nodes(third.path, 0, 2 * height)));
    EXPECT_EQ(ChainLength(made.path), ChainLength(first.path) + ChainLength(third.path));
    EXPECT_EQ(made.path->prevJoin, nullptr);
    Free(&first);
    Free(&third);
    Free(&made);
    TextDcFree(&dc);
}

TEST_F(Text, VerticalLinesStackFromRightToLeft)
{
    TEXTDC dc = TextDcMake(family, 50);
    const ZRFIXED width = Whole(Metrics(dc.dc).tmMaxCharWidth);
    TEXTPARAM param = {};
    param.vertical = 1;
    MADE first = MakePaths(dc.dc, "ab", param);
    MADE second = MakePaths(dc.dc, "cd", param);
    MADE made = MakePaths(dc.dc, "ab\r\ncd", param);
    EXPECT_TRUE(Same(Nodes(made.path), Nodes(first.path) + Nodes(second.path, -width, 0)));
    /* The second letter stands under the first by its advance. */
    MADE b = MakePaths(dc.dc, "b");
    ABC a;
    ASSERT_TRUE(GetCharABCWidthsA(dc.dc, 'a', 'a', &a));
    const std::vector<PATHNODE> tail = Nodes(b.path, 0, Whole(a.abcA + static_cast<int>(a.abcB) + a.abcC));
    const std::vector<PATHNODE> whole = Nodes(first.path);
    ASSERT_GT(whole.size(), tail.size());
    for (size_t i = 0; i < tail.size(); i++) { /* thirds are cut on placed values, so by one unit at most */
        const PATHNODE &node = whole[whole.size() - tail.size() + i];
        EXPECT_EQ(ZRFIXED{node.x}, ZRFIXED{tail[i].x});
        EXPECT_NEAR(ZRFIXED{node.y}, ZRFIXED{tail[i].y}, 1);
    }
    Free(&first);
    Free(&second);
    Free(&made);
    Free(&b);
    TextDcFree(&dc);
}

TEST_F(Text, ControlByteTakesTheNextByteAlongWhateverItIs)
{
    TEXTDC dc = TextDcMake(family, 30);
    const struct {
        const char *name, *text, *same;
    } cases[] = {
        {"a lone line feed eats a letter", "l\nli", "l\r\ni"}, {"LF CR", "l\n\rl", "l\r\nl"},
        {"two line feeds are one break", "l\n\nl", "l\r\nl"},  {"break at the very end", "l\n", "l"},
        {"the eaten letter may be the last", "l\nl", "l"},
    };
    for (const auto &c : cases) {
        MADE a = MakePaths(dc.dc, c.text);
        MADE b = MakePaths(dc.dc, c.same);
        EXPECT_TRUE(Same(Nodes(a.path), Nodes(b.path))) << c.name;
        Free(&a);
        Free(&b);
    }
    TextDcFree(&dc);
}

TEST_F(Text, LinesBehindThe2047thAreLeftOut)
{
    TEXTDC dc = TextDcMake(family, 8);
    std::string breaks;
    for (int i = 0; i < 2046; i++) breaks += "\r\n";
    MADE last = MakePaths(dc.dc, breaks + "l\r\nl");
    ASSERT_EQ(ChainLength(last.path), 1u);
    MADE none = MakePaths(dc.dc, breaks + "\r\nl");
    EXPECT_EQ(none.path, nullptr);
    Free(&last);
    TextDcFree(&dc);
}

TEST_F(Text, AlignMovesShorterLinesInWholePixels)
{
    TEXTDC dc = TextDcMake(family, 50);
    const ZRFIXED height = Whole(Metrics(dc.dc).tmHeight);
    MADE wide = MakePaths(dc.dc, "wide");
    MADE shorter = MakePaths(dc.dc, "i");
    const int32_t difference = static_cast<int32_t>((Box(wide.path).right - Box(wide.path).left) -
                                                    (Box(shorter.path).right - Box(shorter.path).left));
    ASSERT_GT(difference, 1);
    const struct {
        int32_t align, move;
    } cases[] = {{1001, difference}, {1002, difference / 2}, {0, 0}, {1000, 0}, {1003, 0}};
    for (const auto &c : cases) {
        TEXTPARAM param = {};
        param.align = c.align;
        MADE made = MakePaths(dc.dc, "wide\r\ni", param);
        EXPECT_TRUE(Same(Nodes(made.path), Nodes(wide.path) + Nodes(shorter.path, Whole(c.move), height))) << c.align;
        Free(&made);
        MADE turned = MakePaths(dc.dc, "i\r\nwide", param);
        EXPECT_TRUE(Same(Nodes(turned.path), Nodes(shorter.path, Whole(c.move)) + Nodes(wide.path, 0, height)));
        Free(&turned);
    }
    Free(&wide);
    Free(&shorter);
    TextDcFree(&dc);
}

TEST_F(Text, AlignOfVerticalTextComparesHeights)
{
    TEXTDC dc = TextDcMake(family, 50);
    TEXTPARAM param = {};
    param.vertical = 1;
    MADE tall = MakePaths(dc.dc, "abc", param);
    MADE shorter = MakePaths(dc.dc, "x", param);
    const int32_t difference = static_cast<int32_t>((Box(tall.path).bottom - Box(tall.path).top) -
                                                    (Box(shorter.path).bottom - Box(shorter.path).top));
    const ZRFIXED width = Whole(Metrics(dc.dc).tmMaxCharWidth);
    for (const int32_t align : {1001, 1002}) {
        param.align = align;
        MADE made = MakePaths(dc.dc, "abc\r\nx", param);
        const ZRFIXED move = Whole(align == 1001 ? difference : difference / 2);
        EXPECT_TRUE(Same(Nodes(made.path), Nodes(tall.path) + Nodes(shorter.path, -width, move)));
        Free(&made);
    }
    Free(&tall);
    Free(&shorter);
    TextDcFree(&dc);
}

TEST_F(Text, BarsDoNotChangeTheMeasureOfALine)
{
    /* A vertical bar widens nothing along the run; a horizontal one widens no line either, and heights are not
     * compared: the moves are those of the lines without bars. */
    TEXTDC dc = TextDcMake(family, 50);
    TEXTPARAM param = {};
    param.align = 1001;
    MADE plain = MakePaths(dc.dc, "wide\r\ni", param);
    param.underline = param.strikeout = 1;
    MADE barred = MakePaths(dc.dc, "wide\r\ni", param);
    EXPECT_EQ(ChainLength(barred.path), ChainLength(plain.path) + 4);
    EXPECT_EQ(ZRFIXED{barred.path->nodes[0].x}, ZRFIXED{plain.path->nodes[0].x});
    const PATHREC *plainLast = ChainLast(joinChain, plain.path);
    const PATHREC *dot = ChainLast(joinChain, barred.path)->prevJoin->prevJoin;
    EXPECT_EQ(ZRFIXED{dot->nodes[0].x}, ZRFIXED{plainLast->nodes[0].x});
    EXPECT_EQ(ZRFIXED{dot->nodes[0].y}, ZRFIXED{plainLast->nodes[0].y});
    Free(&plain);
    Free(&barred);
    TextDcFree(&dc);
}

TEST(TextBar, BarIsSizedAndPlacedByTheBox)
{
    const struct {
        const char *name;
        double left, top, right, bottom;
        TEXTBAR kind;
        int32_t vertical;
        int32_t l, t, r, b;
    } cases[] = {
        {"underline: 100 high, 10 thick, 105 down", 3, 7, 53, 107, TEXTBAR_UNDERLINE, 0, 3, 112, 53, 122},
        {"strike-through: 55 down", 3, 7, 53, 107, TEXTBAR_STRIKEOUT, 0, 3, 62, 53, 72},
        {"thin: at least 2; 15 * 1.05 cut to 15", 0, 0, 50, 15, TEXTBAR_UNDERLINE, 0, 0, 15, 50, 17},
        {"29 high: 2.9 cut to 2, 29 * 0.55 to 15", 0, 0, 50, 29, TEXTBAR_STRIKEOUT, 0, 0, 15, 50, 17},
        {"no height", 0, 4, 50, 4, TEXTBAR_UNDERLINE, 0, 0, 4, 50, 6},
        {"vertical underline: from right - 10 - 105", 3, 7, 103, 57, TEXTBAR_UNDERLINE, 1, -12, 7, -2, 57},
        {"vertical strike-through", 3, 7, 103, 57, TEXTBAR_STRIKEOUT, 1, 38, 7, 48, 57},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        PATHREC *path = MakeBox(c.left, c.top, c.right, c.bottom);
        ASSERT_EQ(TextAddBar(path, c.kind, c.vertical), 1);
        PATHREC *bar = path->nextJoin;
        ASSERT_NE(bar, nullptr);
        EXPECT_EQ(path->nextPath, bar);
        EXPECT_EQ(bar->prevPath, path);
        EXPECT_EQ(bar->prevJoin, path);
        ASSERT_EQ(bar->nodeCount, 5u);
        EXPECT_EQ(PathHeapSize(PathHeap(), 1, bar), RecordBlockSize(5));
        EXPECT_EQ(bar->flags, 0u);
        const uint16_t types[5] = {6, 2, 2, 2, 3};
        const int32_t xs[5] = {c.l, c.r, c.r, c.l, c.l};
        const int32_t ys[5] = {c.t, c.t, c.b, c.b, c.t};
        for (uint32_t i = 0; i < 5; i++) {
            EXPECT_EQ(uint16_t{bar->nodes[i].type}, types[i]) << i;
            EXPECT_EQ(ZRFIXED{bar->nodes[i].x}, Whole(xs[i])) << i;
            EXPECT_EQ(ZRFIXED{bar->nodes[i].y}, Whole(ys[i])) << i;
        }
        ZrPathDeletePtr(path, 0);
    }
}

TEST(TextBar, BarHangsBehindTheTailAndMeasuresTheBarBefore)
{
    PATHREC *path = MakeBox(0, 0, 50, 100);
    PATHREC *second = MakeBox(60, 20, 90, 60);
    ChainLink(joinChain, path, second);
    ChainLink(tableChain, path, second);
    ASSERT_EQ(TextAddBar(path, TEXTBAR_UNDERLINE, 0), 1); /* rows 105 to 115 */
    ASSERT_EQ(TextAddBar(path, TEXTBAR_STRIKEOUT, 0), 1); /* measured over 0 to 115: 11 thick, 63 down */
    const PATHREC *underline = second->nextJoin;
    const PATHREC *strike = underline->nextJoin;
    EXPECT_EQ(ZRFIXED{underline->nodes[0].y}, Whole(105));
    EXPECT_EQ(ZRFIXED{underline->nodes[2].x}, Whole(90));
    EXPECT_EQ(ZRFIXED{strike->nodes[0].y}, Whole(63));
    EXPECT_EQ(ZRFIXED{strike->nodes[2].y}, Whole(74));
    EXPECT_EQ(strike->nextJoin, nullptr);
    ZrPathDeletePtr(path, 0);
}

TEST(TextBar, BarRunsAsTheOuterContoursDo)
{
    for (const bool clockwise : {true, false}) {
        PATHREC *path = MakeBox(0, 0, 50, 100, clockwise);
        PATHREC *hole = MakeBox(10, 10, 40, 90, !clockwise);
        ChainLink(joinChain, path, hole);
        ChainLink(tableChain, path, hole);
        ASSERT_EQ(TextAddBar(path, TEXTBAR_STRIKEOUT, 0), 1);
        const PATHNODE &second = hole->nextJoin->nodes[1];
        EXPECT_EQ(ZRFIXED{second.x}, Whole(clockwise ? 50 : 0));
        EXPECT_EQ(ZRFIXED{second.y}, Whole(clockwise ? 55 : 65));
        ZrPathDeletePtr(path, 0);
    }
}

TEST_F(Text, BarCutsNoHolesIntoLetters)
{
    TEXTDC dc = TextDcMake(family, 100);
    TEXTPARAM param = {};
    param.maskArg2 = 1;
    MADE plain = Make(dc.dc, "B8", param);
    param.strikeout = 1;
    MADE barred = Make(dc.dc, "B8", param);
    ASSERT_NE(plain.mask, nullptr);
    ASSERT_NE(barred.mask, nullptr);
    int32_t width = 0, height = 0, bits = 0;
    ZrPathBufGetWHU(plain.mask, &width, &height, &bits);
    int32_t barredWidth = 0, barredHeight = 0;
    ZrPathBufGetWHU(barred.mask, &barredWidth, &barredHeight, &bits);
    for (int32_t y = plain.rect.top; y < plain.rect.top + height; y++)
        for (int32_t x = plain.rect.left; x < plain.rect.left + width; x++) {
            const int32_t bx = x - barred.rect.left, by = y - barred.rect.top;
            if (bx < 0 || by < 0 || bx >= barredWidth || by >= barredHeight) continue;
            const uint8_t a = plain.mask[(y - plain.rect.top) * width + x - plain.rect.left];
            const uint8_t b = barred.mask[by * barredWidth + bx];
            ASSERT_GE(b + 1, a) << x << "," << y;
        }
    Free(&plain);
    Free(&barred);
    TextDcFree(&dc);
}

TEST_F(Text, ItalicFontSwitchesTheShearOff)
{
    for (const DWORD italic : {0u, 1u}) {
        TEXTDC dc = TextDcMake(family, 50, italic);
        char text[] = "a";
        TEXTPARAM param = {};
        param.slant = 1;
        param.output = pathsOnly;
        PATHREC *path = nullptr;
        RECT rect;
        ZrPathCreateText(dc.dc, text, &param, &path, &rect);
        EXPECT_EQ(param.slant, italic ? 0 : 1);
        ZrPathDeletePtr(path, 0);
        TextDcFree(&dc);
    }
}

TEST_F(Text, MaskIsThatOfTheChainAtTheFontsZoom)
{
    const struct {
        const char *name;
        int height;
        double zoom;
        int32_t maskArg1, maskArg2;
    } cases[] = {
        {"height 30: zoom 5, smooth", 30, 5.0, 0, 1},
        {"height 30: zoom 5, hard", 30, 5.0, 0, 0},
        {"height 30: four sample rows", 30, 5.0, 0, 999},
        {"height 59", 59, 150.0 / 59, 0, 1},
        {"height 60: zoom 1", 60, 1.0, 0, 1},
        {"height 100: zoom 1", 100, 1.0, 0, 1},
        {"outline only", 100, 1.0, 1, 1},
        {"hard outline only", 100, 1.0, 1, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        TEXTDC dc = TextDcMake(family, c.height);
        ASSERT_EQ(Metrics(dc.dc).tmHeight, c.height);
        TEXTPARAM param = {};
        param.maskArg1 = c.maskArg1;
        param.maskArg2 = c.maskArg2;
        const int64_t globals = FaultLiveBlocks(ALLOC_GLOBAL);
        MADE made = Make(dc.dc, "Ag", param);
        EXPECT_EQ(FaultLiveBlocks(ALLOC_GLOBAL), globals);
        ASSERT_NE(made.mask, nullptr);
        RECT *rects = nullptr;
        PATHBUF *bufs = nullptr;
        ASSERT_EQ(ZrPathToBuf(made.path, 16, 0, c.maskArg2, c.maskArg1, DbToFix(c.zoom), &rects, &bufs, 0), 1);
        EXPECT_EQ(memcmp(&rects[0], &made.rect, sizeof(RECT)), 0);
        int32_t width = 0, height = 0, bits = 0, wantedWidth = 0, wantedHeight = 0;
        ZrPathBufGetWHU(made.mask, &width, &height, &bits);
        ZrPathBufGetWHU(bufs[0], &wantedWidth, &wantedHeight, &bits);
        EXPECT_EQ(bits, 8);
        ASSERT_EQ(width, wantedWidth);
        ASSERT_EQ(height, wantedHeight);
        EXPECT_EQ(memcmp(made.mask, bufs[0], static_cast<size_t>(width * height)), 0);
        ZrPathBufFree(bufs[0]);
        GlobalBlockFree(rects);
        GlobalBlockFree(bufs);
        Free(&made);
        TextDcFree(&dc);
    }
}

TEST_F(Text, EveryFailedAllocationLeavesNothingBehind)
{
    TEXTDC dc = TextDcMake(family, 70);
    TEXTPARAM param = {};
    param.underline = param.strikeout = 1;
    for (const ALLOCATOR allocator : {ALLOC_PATHHEAP, ALLOC_BUF, ALLOC_GLOBAL}) {
        ZrPathInit();
        int64_t before[ALLOC_COUNT];
        for (int k = 0; k < ALLOC_COUNT; k++) before[k] = FaultLiveBlocks(static_cast<ALLOCATOR>(k));
        for (int64_t n = 1;; n++) {
            FaultSet(allocator, n);
            MADE made = Make(dc.dc, "ab\r\n8", param);
            const int struck = FaultStruck();
            FaultSet(allocator, 0);
            ChainLength(made.path);
            if (!struck) {
                EXPECT_NE(made.mask, nullptr);
            }
            if (allocator == ALLOC_BUF && n == 1) {
                EXPECT_EQ(made.path, nullptr);
            }
            if (allocator == ALLOC_GLOBAL && struck) {
                EXPECT_EQ(made.mask, nullptr);
                EXPECT_NE(made.path, nullptr);
            }
            Free(&made);
            for (int k = 0; k < ALLOC_COUNT; k++)
                ASSERT_EQ(FaultLiveBlocks(static_cast<ALLOCATOR>(k)), before[k]) << int{allocator} << " at " << n;
            if (!struck) break;
        }
    }
    TextDcFree(&dc);
}

TEST_F(Text, LineWithoutMemoryCountsAsEmpty)
{
    TEXTDC dc = TextDcMake(family, 70);
    MADE second = MakePaths(dc.dc, "\r\nb");
    FaultSet(ALLOC_PATHHEAP, 1); /* the first line's table */
    MADE made = MakePaths(dc.dc, "a\r\nb");
    FaultSet(ALLOC_PATHHEAP, 0);
    EXPECT_TRUE(Same(Nodes(made.path), Nodes(second.path)));
    Free(&made);
    Free(&second);
    TextDcFree(&dc);
}
