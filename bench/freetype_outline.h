/* freetype_outline.h - a shape of outlines.h as FreeType takes it. */
#ifndef ZR32_BENCH_FREETYPE_OUTLINE_H
#define ZR32_BENCH_FREETYPE_OUTLINE_H

#include "outlines.h"

#include <ft2build.h>

#include FT_OUTLINE_H

namespace zr32bench {

struct FTSHAPE {
    std::vector<FT_Vector> points;
    std::vector<char> tags;
    std::vector<short> ends;
    FT_Outline outline;
};

inline void FreeTypePath(const SHAPE &shape, FTSHAPE *ft)
{
    for (const std::vector<PT> &c : shape.contours) {
        for (size_t i = 0; i + 1 < c.size(); i++) {
            ft->points.push_back({std::lround(c[i].x * 64), std::lround(c[i].y * 64)});
            ft->tags.push_back(shape.lines || i % 3 == 0 ? FT_CURVE_TAG_ON : FT_CURVE_TAG_CUBIC);
        }
        ft->ends.push_back(static_cast<short>(ft->points.size() - 1));
    }
    ft->outline = {static_cast<short>(ft->ends.size()),
                   static_cast<short>(ft->points.size()),
                   ft->points.data(),
                   ft->tags.data(),
                   ft->ends.data(),
                   FT_OUTLINE_NONE};
}

} // namespace zr32bench

#endif
