/* lettering.cpp - device contexts with a font, text as paths, labels; see lettering.h.
 *
 * The library asks the platform for outlines, so a memory device context with a font selected into it is all it needs.
 */
#include "lettering.h"

#include "options.h"
#include "platform/platform.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace bevel {

namespace {

bool SameFamily(const std::string &a, const std::string &b)
{
    const auto same = [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), same);
}

} // namespace

ZRHDC LetteringOpen(const std::string &family, int height)
{
    const HDC hdc = CreateCompatibleDC(nullptr);
    const HFONT font = CreateFontA(height, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                   CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, family.c_str());
    if (!hdc || !font) {
        fprintf(stderr, "bevel: no device context\n");
        return nullptr;
    }
    SelectObject(hdc, font);
    char face[256] = "";
    if (!GetTextFaceA(hdc, sizeof face, face) || !SameFamily(face, family)) {
        fprintf(stderr, "bevel: the font \"%s\" is not installed%s%s%s\n", family.c_str(),
                face[0] ? " (nearest: \"" : "", face, face[0] ? "\")" : "");
        LetteringClose(hdc);
        return nullptr;
    }
    return hdc;
}

void LetteringClose(ZRHDC hdc)
{
    /* A font is selected out before it is deleted: any stock font does. */
    const HGDIOBJ font = SelectObject(hdc, GetStockObject(SYSTEM_FONT));
    DeleteObject(font);
    DeleteDC(hdc);
}

PATHREC *LetteringPaths(ZRHDC hdc, const std::string &text)
{
    std::string changed = text;
    changed.push_back(0);
    TEXTPARAM param = {};
    param.output = 1021;
    PATHREC *path = nullptr;
    struct tagRECT rect;
    ZrPathCreateText(hdc, changed.data(), &param, &path, &rect);
    return path;
}

PICTURE LetteringMask(const std::string &text, int height)
{
    const ZRHDC hdc = LetteringOpen(OPTIONS().font, height);
    if (!hdc) return {};
    PATHREC *path = LetteringPaths(hdc, text);
    LetteringClose(hdc);
    struct tagRECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    PICTURE mask;
    if (path && ZrPathToBuf(path, 8, 0, 1, 0, 0x10000, &rects, &bufs, 0) > 0) {
        mask = PictureOfBuffer(bufs[0]);
        ZrPathBufFree(bufs[0]);
        GlobalFree(rects);
        GlobalFree(bufs);
    }
    ZrPathDeletePtr(path, 0);
    return mask;
}

} // namespace bevel
