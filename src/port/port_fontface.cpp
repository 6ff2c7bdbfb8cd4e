/* port_fontface.cpp - fonts' files through fontconfig and FreeType.
 *
 * Glyphs are loaded in units of the font, unhinted, and handed on as plain points, so that scaling and the form of the
 * result are the port's own. The library handles live as long as the process.
 */
#include "port_fontface.h"

#include <cstdlib>
#include <cstring>

#if defined(ZR32PORT_FONTS)
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H
#include <strings.h>
#endif

namespace zr32port {

#if defined(ZR32PORT_FONTS)

constexpr size_t familySize = 64;

struct FONTFACE {
    FT_Face face;
    FACEMETRICS metrics;
    char family[familySize];
    OUTLINE outline; /* of the last glyph */
    int32_t pointRoom;
    int32_t contourRoom;
};

namespace {

FT_Library Library()
{
    static FT_Library library;
    if (!library && FT_Init_FreeType(&library) != 0) library = nullptr;
    return library;
}

FcConfig *config;

void FreeConfig()
{
    FcConfigDestroy(config);
    config = nullptr;
}

/* The fonts that are installed, and those that FontFaceAddFile adds: a configuration of the port's own, so that a host
 * that uses fontconfig too is not disturbed. Given back at the end of the process. */
FcConfig *Config()
{
    if (config) return config;
    config = FcInitLoadConfigAndFonts();
    if (config) atexit(FreeConfig);
    return config;
}

/* The pattern of the font that fontconfig takes for the family; null when there is none. */
FcPattern *Match(const char *family, int weight, int italic)
{
    FcPattern *wanted = Config() ? FcPatternCreate() : nullptr;
    if (!wanted) return nullptr;
    FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8 *>(family));
    FcPatternAddInteger(wanted, FC_WEIGHT, FcWeightFromOpenType(weight));
    FcPatternAddInteger(wanted, FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(wanted, FC_OUTLINE, FcTrue);
    FcPatternAddBool(wanted, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(Config(), wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result;
    FcPattern *found = FcFontMatch(Config(), wanted, &result);
    FcPatternDestroy(wanted);
    return found;
}

/* A font may have several family names: the one that was asked for, else the first. */
void ChosenFamily(FcPattern *font, const char *asked, char *family)
{
    FcChar8 *name = nullptr;
    const char *chosen = "";
    for (int i = 0; FcPatternGetString(font, FC_FAMILY, i, &name) == FcResultMatch; i++) {
        const char *text = reinterpret_cast<const char *>(name);
        const bool same = strcasecmp(text, asked) == 0;
        if (i == 0 || same) chosen = text;
        if (same) break;
    }
    strncpy(family, chosen, familySize - 1);
}

/* Heights as the platform takes them: from the font's own clipping heights where it has them. */
int ReadMetrics(FT_Face face, FACEMETRICS *metrics)
{
    const TT_OS2 *os2 = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    metrics->em = face->units_per_EM;
    metrics->ascent = face->ascender;
    metrics->descent = -static_cast<double>(face->descender);
    if (os2 && (os2->usWinAscent != 0 || os2->usWinDescent != 0)) {
        metrics->ascent = os2->usWinAscent;
        metrics->descent = os2->usWinDescent;
    }
    const double height = metrics->ascent + metrics->descent;
    metrics->lineGap = face->height > height ? face->height - height : 0.0;
    metrics->maxWidth = face->max_advance_width;
    metrics->averageWidth = os2 && os2->xAvgCharWidth > 0 ? os2->xAvgCharWidth : metrics->em * 0.5;
    metrics->fixedPitch = FT_IS_FIXED_WIDTH(face) != 0;
    metrics->italic = (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0;
    metrics->bold = (face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
    return metrics->em > 0.0 && height > 0.0;
}

/* Room for a number of elements; what is there is not kept. */
template <typename ELEMENT> int MakeRoom(ELEMENT **array, int32_t *room, int32_t count)
{
    if (count <= *room) return 1;
    free(*array);
    *array = static_cast<ELEMENT *>(malloc(static_cast<size_t>(count) * sizeof(ELEMENT)));
    *room = *array ? count : 0;
    return *array != nullptr;
}

int CopyOutline(const FT_Outline &from, FONTFACE *face)
{
    OUTLINE *to = &face->outline;
    const int32_t points = from.n_points;
    const int32_t contours = from.n_contours;
    to->pointCount = to->contourCount = 0;
    if (points < 0 || contours < 0) return 0;
    if (!MakeRoom(&to->points, &face->pointRoom, points) || !MakeRoom(&to->lasts, &face->contourRoom, contours))
        return 0;
    for (int32_t i = 0; i < points; i++) {
        const int tag = FT_CURVE_TAG(from.tags[i]);
        const POINTKIND kind = tag == FT_CURVE_TAG_ON      ? POINT_ON
                               : tag == FT_CURVE_TAG_CUBIC ? POINT_CUBIC
                                                           : POINT_CONIC;
        to->points[i] = {static_cast<double>(from.points[i].x), static_cast<double>(from.points[i].y), kind};
    }
    int32_t before = -1;
    for (int32_t i = 0; i < contours; i++) {
        to->lasts[i] = from.contours[i];
        if (to->lasts[i] < before || to->lasts[i] >= points) return 0;
        before = to->lasts[i];
    }
    to->pointCount = points;
    to->contourCount = contours;
    return 1;
}

/* Selects the map for the kind of code and looks the code up. Symbol fonts keep byte codes from 0xF000 on. */
FT_UInt GlyphIndex(FT_Face face, uint32_t character, int symbol)
{
    if (symbol && FT_Select_Charmap(face, FT_ENCODING_MS_SYMBOL) == 0) {
        const FT_UInt index = FT_Get_Char_Index(face, 0xF000u + character);
        return index != 0 ? index : FT_Get_Char_Index(face, character);
    }
    FT_Select_Charmap(face, FT_ENCODING_UNICODE);
    return FT_Get_Char_Index(face, character);
}

} // namespace

FONTFACE *FontFaceOpen(const char *family, int weight, int italic)
{
    FcPattern *font = Library() ? Match(family, weight, italic) : nullptr;
    if (!font) return nullptr;
    FONTFACE *face = static_cast<FONTFACE *>(calloc(1, sizeof(FONTFACE)));
    FcChar8 *file = nullptr;
    int index = 0;
    FcPatternGetInteger(font, FC_INDEX, 0, &index);
    if (face && FcPatternGetString(font, FC_FILE, 0, &file) == FcResultMatch) {
        ChosenFamily(font, family, face->family);
        if (FT_New_Face(Library(), reinterpret_cast<const char *>(file), index, &face->face) != 0) face->face = nullptr;
    }
    FcPatternDestroy(font);
    if (face && (!face->face || !ReadMetrics(face->face, &face->metrics))) {
        FontFaceFree(face);
        return nullptr;
    }
    return face;
}

void FontFaceFree(FONTFACE *face)
{
    if (!face) return;
    if (face->face) FT_Done_Face(face->face);
    free(face->outline.points);
    free(face->outline.lasts);
    free(face);
}

const char *FontFaceFamily(const FONTFACE *face)
{
    return face->family;
}

const FACEMETRICS *FontFaceMetrics(const FONTFACE *face)
{
    return &face->metrics;
}

int FontFaceGlyph(FONTFACE *face, uint32_t character, int symbol, OUTLINE *outline, double *advance)
{
    const FT_UInt index = GlyphIndex(face->face, character, symbol);
    const FT_Int32 how = FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP | FT_LOAD_IGNORE_TRANSFORM;
    if (FT_Load_Glyph(face->face, index, how) != 0) return 0;
    const FT_GlyphSlot slot = face->face->glyph;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE || !CopyOutline(slot->outline, face)) return 0;
    *outline = face->outline;
    *advance = static_cast<double>(slot->metrics.horiAdvance);
    return 1;
}

int FontFaceAddFile(const char *file)
{
    return Config() && FcConfigAppFontAddFile(Config(), reinterpret_cast<const FcChar8 *>(file));
}

#else

FONTFACE *FontFaceOpen(const char *, int, int)
{
    return nullptr;
}

void FontFaceFree(FONTFACE *) {}

const char *FontFaceFamily(const FONTFACE *)
{
    return "";
}

const FACEMETRICS *FontFaceMetrics(const FONTFACE *)
{
    return nullptr;
}

int FontFaceGlyph(FONTFACE *, uint32_t, int, OUTLINE *, double *)
{
    return 0;
}

int FontFaceAddFile(const char *)
{
    return 0;
}

#endif

} // namespace zr32port
