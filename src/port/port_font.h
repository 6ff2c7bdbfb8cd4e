/* port_font.h - fonts by family name, and their glyphs as outlines of lines and quadratics.
 *
 * fontconfig finds a family's file, FreeType reads it. Outlines are unhinted, scaled in doubles and rounded to 16.16;
 * y runs upward from the base line. In a build without FreeType every call here fails.
 */
#ifndef ZR32PORT_FONT_H
#define ZR32PORT_FONT_H

#include "port_types.h"

#ifdef __cplusplus
extern "C" {
#endif

#define ANSI_CHARSET 0
#define DEFAULT_CHARSET 1
#define SYMBOL_CHARSET 2
#define SHIFTJIS_CHARSET 128
#define HANGUL_CHARSET 129
#define GB2312_CHARSET 134
#define CHINESEBIG5_CHARSET 136

#define FW_NORMAL 400
#define FW_BOLD 700

#define OUT_DEFAULT_PRECIS 0
#define CLIP_DEFAULT_PRECIS 0
#define DEFAULT_QUALITY 0
#define DEFAULT_PITCH 0
#define FF_DONTCARE 0

#define GDI_ERROR 0xFFFFFFFFu
#define GGO_METRICS 0
#define GGO_NATIVE 2

#define TT_POLYGON_TYPE 24
#define TT_PRIM_LINE 1
#define TT_PRIM_QSPLINE 2

#define FR_PRIVATE 0x10u

/* x' = x eM11 + y eM21, y' = x eM12 + y eM22. */
typedef struct _MAT2 {
    FIXED eM11;
    FIXED eM12;
    FIXED eM21;
    FIXED eM22;
} MAT2;

/* In whole pixels; the origin is the left top of the black box, y upward. */
typedef struct _GLYPHMETRICS {
    UINT gmBlackBoxX;
    UINT gmBlackBoxY;
    POINT gmptGlyphOrigin;
    short gmCellIncX;
    short gmCellIncY;
} GLYPHMETRICS;

/* A native outline is a row of contours: this header, then curves up to cb bytes from the header's first. */
typedef struct tagTTPOLYGONHEADER {
    DWORD cb;
    DWORD dwType; /* TT_POLYGON_TYPE */
    POINTFX pfxStart;
} TTPOLYGONHEADER;

/* Lines through cpfx points, or a quadratic spline: control points and at last the end point, with an end point implied
 * half-way between two control points. A contour is closed by a line unless its last point is its start. */
typedef struct tagTTPOLYCURVE {
    WORD wType; /* TT_PRIM_* */
    WORD cpfx;
    POINTFX apfx[1];
} TTPOLYCURVE;

typedef struct _ABC {
    int abcA;  /* from the pen to the black box */
    UINT abcB; /* the black box */
    int abcC;  /* from there to the next pen; the sum is the advance */
} ABC;

typedef struct tagTEXTMETRICA {
    LONG tmHeight; /* ascent + descent */
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading; /* tmHeight less the size of the em square */
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    LONG tmOverhang;
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    BYTE tmFirstChar;
    BYTE tmLastChar;
    BYTE tmDefaultChar;
    BYTE tmBreakChar;
    BYTE tmItalic; /* not 0: italic */
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;
    BYTE tmCharSet;
} TEXTMETRICA;

/* A font of the family, or of the one nearest to it: GetTextFaceA tells which.
 *   height     above 0: of the cell, ascent + descent; below 0: of the em square; 0: 16
 *   width      average character's; 0: as the font has it
 *   charSet    SHIFTJIS, HANGUL, GB2312 and CHINESEBIG5_CHARSET take character codes by their code page,
 *              SYMBOL_CHARSET takes a symbol font's own codes, all others the current code page
 * A font is made even where no file can be read; what is asked of it then fails. Escapement, orientation, precisions,
 * quality and pitch are not read. Null without memory. */
ZR32PORTAPI HFONT CreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                              DWORD underline, DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision,
                              DWORD quality, DWORD pitchAndFamily, const char *faceName);

/* The family of the selected font's file, cut to size bytes with its terminator. Returns the bytes written, or with a
 * null name the bytes needed; 0 without a font file. A program tells an unknown font by a name other than it asked
 * for. */
ZR32PORTAPI int GetTextFaceA(HDC dc, int size, char *name);

/* Adds the fonts of a file to those that CreateFontA finds, for this process. flags is FR_PRIVATE. 1; 0 when the file
 * is not a font. */
ZR32PORTAPI int AddFontResourceExA(const char *file, DWORD flags, void *reserved);

/* A character's outline (GGO_NATIVE) under the matrix. Returns its size in bytes with a null or empty buffer; else
 * fills the buffer and returns what was filled; 0 for a blank. GDI_ERROR without a font or outline, for other formats
 * than GGO_NATIVE and GGO_METRICS, and for a buffer that is too small. *metrics is filled in any case but failure. */
ZR32PORTAPI DWORD GetGlyphOutlineA(HDC dc, UINT character, UINT format, GLYPHMETRICS *metrics, DWORD size, void *buffer,
                                   const MAT2 *matrix);

/* Widths of the characters first to last. */
ZR32PORTAPI BOOL GetCharABCWidthsA(HDC dc, UINT first, UINT last, ABC *widths);

ZR32PORTAPI BOOL GetTextMetricsA(HDC dc, TEXTMETRICA *metrics);

#ifdef __cplusplus
}
#endif

#endif
