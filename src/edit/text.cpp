/* text.cpp - text as one compound path and its mask: lines are cut out, converted, stacked, aligned and chained.
 *
 * A line is measured as its glyphs alone, before bars are hung on it and before it moves; the measure includes the
 * margin of every box, which cancels where widths are compared.
 */
#include "edit/text.h"
#include "store/store.h"
#include <zr32path/edit.h>
#include <zr32path/raster.h>

#include <algorithm>
#include <cstring>

namespace zr32 {

namespace {

constexpr size_t mostLines = 2047;
constexpr size_t longestLine = 54;

enum { ALIGN_FAR = 1001, ALIGN_CENTER = 1002, OUTPUT_PATHS = 1021 };

/* A small font is rasterised larger and reduced again, so that its mask has detail. */
constexpr LONG smallFont = 60;
constexpr double smallFontHeight = 150.0;
constexpr int32_t supersampled = 16;

/* A run of bytes of a text. */
struct TEXTSPAN {
    const char *text;
    size_t length;
};

/* A converted line: its chain, null for a line without contours, and the size of its glyphs. */
struct TEXTLINE {
    PATHREC *path;
    int32_t width;
    int32_t height;
};

uint8_t ByteAt(const char *text)
{
    return static_cast<uint8_t>(*text);
}

/* Control bytes other than the two of a line break become blanks. */
void CleanText(char *text)
{
    for (; *text; text++)
        if (ByteAt(text) < 32 && *text != '\r' && *text != '\n') *text = ' ';
}

/* The line that *at begins, and *at behind its break. A break takes two bytes whatever the second is, deliberately,
 * but never the terminator. 0 at the end of the text. */
int NextLine(const char **at, TEXTSPAN *line)
{
    const char *text = *at;
    if (!*text) return 0;
    while (ByteAt(text) >= 32) text++;
    *line = {*at, static_cast<size_t>(text - *at)};
    for (int i = 0; i < 2 && *text; i++) text++;
    *at = text;
    return 1;
}

/* Lines up to the last one that is not empty. */
size_t CountLines(const char *text)
{
    size_t count = 0;
    TEXTSPAN line;
    for (size_t i = 1; i <= mostLines && NextLine(&text, &line); i++)
        if (line.length != 0) count = i;
    return count;
}

/* Copies a line, cut to what fits. Half a double-byte character at the cut gets no glyph: see GlyphTableBuild. */
void CopyLine(const TEXTSPAN &line, char *out)
{
    const size_t length = std::min(line.length, longestLine);
    memcpy(out, line.text, length);
    out[length] = 0;
}

FIXED WholePixels(int64_t pixels)
{
    return static_cast<FIXED>(static_cast<uint32_t>(static_cast<uint64_t>(pixels)) << 16);
}

/* The chain of one line, at the place of the first line. */
PATHREC *ConvertLine(HDC hdc, const TEXTSPAN &span, const TEXTPARAM *param, uint8_t charSet)
{
    char text[longestLine + 1];
    CopyLine(span, text);
    GLYPHTABLE *table = nullptr;
    PATHREC *path = nullptr;
    GlyphTableBuild(hdc, text, param->slant, charSet, &table);
    OutputDebugStringA("Enter FontOutlineToPSPath\n"); /* an aid; nothing depends on it */
    GlyphTableToPaths(table, param->vertical, &path);
    GlyphTableFree(table);
    return path;
}

void MoveLine(PATHREC *path, int64_t dx, int64_t dy)
{
    ZrPathMovePathsByPtfx(path, WholePixels(dx), WholePixels(dy));
}

void MakeLine(HDC hdc, const TEXTSPAN &span, const TEXTPARAM *param, const TEXTMETRICA &metrics, size_t index,
              TEXTLINE *line)
{
    *line = {ConvertLine(hdc, span, param, metrics.tmCharSet), 0, 0};
    if (!line->path) return;
    RECT box;
    ZrPathGetMiniMaxRect(line->path, fixedOne, &box);
    line->width = static_cast<int32_t>(box.right - box.left);
    line->height = static_cast<int32_t>(box.bottom - box.top);
    if (param->underline) TextAddBar(line->path, TEXTBAR_UNDERLINE, param->vertical);
    if (param->strikeout) TextAddBar(line->path, TEXTBAR_STRIKEOUT, param->vertical);
    const int64_t i = static_cast<int64_t>(index);
    if (param->vertical)
        MoveLine(line->path, -i * metrics.tmMaxCharWidth, 0);
    else
        MoveLine(line->path, 0, i * metrics.tmHeight);
}

/* Moves each line along its run towards the far side. */
void AlignLines(TEXTLINE *lines, size_t count, const TEXTPARAM *param)
{
    if (param->align != ALIGN_FAR && param->align != ALIGN_CENTER) return;
    const int32_t divisor = param->align == ALIGN_CENTER ? 2 : 1;
    int32_t width = 0;
    int32_t height = 0;
    for (size_t i = 0; i < count; i++) {
        width = std::max(width, lines[i].width);
        height = std::max(height, lines[i].height);
    }
    for (size_t i = 0; i < count; i++) {
        if (param->vertical)
            MoveLine(lines[i].path, 0, (height - lines[i].height) / divisor);
        else
            MoveLine(lines[i].path, (width - lines[i].width) / divisor, 0);
    }
}

/* Ties the lines into one chain; the head, or null when no line has paths. */
PATHREC *ChainLines(const TEXTLINE *lines, size_t count)
{
    PATHREC *head = nullptr;
    PATHREC *tail = nullptr;
    for (size_t i = 0; i < count; i++) {
        PATHREC *path = lines[i].path;
        if (!path) continue;
        if (tail) {
            ChainLink(joinChain, tail, path);
            ChainLink(tableChain, tail, path);
        } else {
            head = path;
        }
        tail = ChainLast(joinChain, path);
    }
    return head;
}

/* The first count lines of a text as one chain; null without contours or memory. */
PATHREC *TextToPaths(HDC hdc, const char *text, size_t count, const TEXTPARAM *param, const TEXTMETRICA &metrics)
{
    TEXTLINE *lines = static_cast<TEXTLINE *>(BufAlloc(bufZero, count * sizeof(TEXTLINE)));
    if (!lines) return nullptr;
    TEXTSPAN span;
    for (size_t i = 0; i < count && NextLine(&text, &span); i++) MakeLine(hdc, span, param, metrics, i, &lines[i]);
    AlignLines(lines, count, param);
    PATHREC *head = ChainLines(lines, count);
    BufFree(lines);
    return head;
}

/* The mask of the whole chain and its place. */
PATHBUF TextMask(PATHREC *path, const TEXTPARAM *param, LONG height, RECT *rect)
{
    const double zoom = height >= smallFont ? 1.0 : smallFontHeight / static_cast<double>(height);
    RECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    PATHBUF mask = nullptr;
    if (ZrPathToBuf(path, supersampled, 0, param->maskArg2, param->maskArg1, DoubleToFix(zoom), &rects, &bufs, 0) > 0) {
        mask = bufs[0];
        *rect = rects[0];
    }
    GlobalBlockFree(rects);
    GlobalBlockFree(bufs);
    return mask;
}

/* Twice the area that a chain's control polygons enclose, above 0 where they run clockwise on the screen: the outer
 * contours outweigh the holes in them. */
double ChainArea(const PATHREC *path)
{
    double area = 0.0;
    for (; path; path = path->nextJoin) {
        for (uint32_t i = 0; i < path->nodeCount; i++) {
            const PATHNODE &a = path->nodes[i];
            const PATHNODE &b = path->nodes[i + 1 < path->nodeCount ? i + 1 : 0];
            area += FixToDouble(a.x) * FixToDouble(b.y) - FixToDouble(b.x) * FixToDouble(a.y);
        }
    }
    return area;
}

} // namespace

int TextAddBar(PATHREC *path, TEXTBAR kind, int32_t vertical)
{
    RECT box;
    if (!ZrPathGetRealRect(path, fixedOne, &box)) return 0;
    PATHREC *bar = RecordAlloc(5);
    if (!bar) return 0;

    const double across = static_cast<double>(vertical ? box.right - box.left : box.bottom - box.top);
    const int32_t thickness = TruncInt(std::max(0.1 * across, 2.0));
    const int32_t shift = TruncInt(across * (kind == TEXTBAR_STRIKEOUT ? 0.55 : 1.05));
    RECT side = box;
    if (vertical) {
        side.left = box.right - thickness - shift;
        side.right = box.right - shift;
    } else {
        side.top = box.top + shift;
        side.bottom = box.top + thickness + shift;
    }

    /* The bar runs as the glyphs' outer contours do, so that it never cuts holes into them. */
    const FIXED left = WholePixels(side.left), top = WholePixels(side.top);
    const FIXED right = WholePixels(side.right), bottom = WholePixels(side.bottom);
    const bool clockwise = ChainArea(path) >= 0.0;
    bar->nodeCount = 5;
    bar->nodes[0] = {PATHNODE_START, left, top};
    bar->nodes[1] = {PATHNODE_LINE, clockwise ? right : left, clockwise ? top : bottom};
    bar->nodes[2] = {PATHNODE_LINE, right, bottom};
    bar->nodes[3] = {PATHNODE_LINE, clockwise ? left : right, clockwise ? bottom : top};
    bar->nodes[4] = {PATHNODE_LINE | PATHNODE_CLOSING, left, top};

    PATHREC *tail = ChainLast(joinChain, path);
    ChainLink(joinChain, tail, bar);
    ChainLink(tableChain, tail, bar);
    return 1;
}

extern "C" PATHBUF ZrPathCreateText(ZRHDC hdc, char *text, TEXTPARAM *param, PATHREC **path, struct tagRECT *rect)
{
    if (!text || !param || !path || !rect) return nullptr;
    *path = nullptr;
    if (!ZrPathInit()) return nullptr;
    CleanText(text);
    const size_t count = CountLines(text);
    if (count == 0) return nullptr;
    TEXTMETRICA metrics = {};
    GetTextMetricsA(hdc, &metrics);
    if (metrics.tmItalic) param->slant = 0;
    *path = TextToPaths(hdc, text, count, param, metrics);
    if (!*path || param->output == OUTPUT_PATHS) return nullptr;
    return TextMask(*path, param, metrics.tmHeight, rect);
}

} // namespace zr32
