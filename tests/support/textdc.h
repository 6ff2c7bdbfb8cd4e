/* textdc.h - a device context with a font, for tests of text, which are skipped in a build without fonts. */
#ifndef ZR32_TESTS_TEXTDC_H
#define ZR32_TESTS_TEXTDC_H

#include "platform/platform.h"

#include <gtest/gtest.h>

namespace zr32test {

struct NEEDSFONT : testing::Test {
    void SetUp() override
    {
#if !defined(ZR32_TEST_FONTS)
        GTEST_SKIP() << "built without fonts";
#endif
    }
};

/* What the points of a transformed outline are cut to, in 1/65536 pixel: systems other than the port keep 64ths. */
#if defined(_WIN32)
constexpr double outlineUnit = 1024;
#else
constexpr double outlineUnit = 1;
#endif

struct TEXTDC {
    HDC dc;
    HFONT font;
    HGDIOBJ oldFont;
};

/* Height as CreateFontA takes it: above 0 the cell's, below 0 the em square's. */
inline TEXTDC TextDcMake(const char *family, int height, DWORD italic = 0, DWORD charSet = ANSI_CHARSET)
{
    TEXTDC text = {CreateCompatibleDC(nullptr), nullptr, nullptr};
    text.font = CreateFontA(height, 0, 0, 0, FW_NORMAL, italic, 0, 0, charSet, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                            DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, family);
    text.oldFont = SelectObject(text.dc, text.font);
    return text;
}

inline void TextDcFree(TEXTDC *text)
{
    SelectObject(text->dc, text->oldFont);
    DeleteObject(text->font);
    DeleteDC(text->dc);
}

} // namespace zr32test

#endif
