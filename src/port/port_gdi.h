/* port_gdi.h - device contexts: lines, Beziers and rectangles with one-pixel pens over a bitmap in memory.
 *
 * A context made by CreateCompatibleDC draws into the bitmap that CreateDIBSection made and SelectObject put in; one
 * made by PortCreateCallbackDC hands every call to functions of the host. A null context draws nothing, and its results
 * are those of failure.
 * Pixels are whole numbers with the origin at the left top, also in bottom-up bitmaps. Every drawing call is
 * deterministic, so under R2_XORPEN the same calls made twice restore every pixel. Coordinates beyond 2^27 either way
 * cannot be drawn to; a line that has one is left out.
 */
#ifndef ZR32PORT_GDI_H
#define ZR32PORT_GDI_H

#include "port_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Pen styles. Dots are 3 pixels long and 3 apart, begin anew with every drawing call, and have white between them
 * unless SetBkMode makes the background transparent. */
#define PS_SOLID 0
#define PS_DOT 2
#define PS_NULL 5

/* Stock objects. */
#define WHITE_BRUSH 0
#define LTGRAY_BRUSH 1
#define GRAY_BRUSH 2
#define DKGRAY_BRUSH 3
#define BLACK_BRUSH 4
#define NULL_BRUSH 5
#define HOLLOW_BRUSH NULL_BRUSH
#define WHITE_PEN 6
#define BLACK_PEN 7
#define NULL_PEN 8
#define SYSTEM_FONT 13

/* Raster operations: code less one is the truth table of the result, bit 2 pen + destination. */
#define R2_BLACK 1
#define R2_NOT 6
#define R2_XORPEN 7
#define R2_NOP 11
#define R2_COPYPEN 13
#define R2_WHITE 16

#define TRANSPARENT 1
#define OPAQUE 2

/* Results of SelectClipRgn; 0 is failure. */
#define ERROR 0
#define NULLREGION 1
#define SIMPLEREGION 2

#define BI_RGB 0u
#define DIB_RGB_COLORS 0u

#define RGB(r, g, b) ((COLORREF)(((DWORD)(BYTE)(b) << 16) | ((DWORD)(BYTE)(g) << 8) | (DWORD)(BYTE)(r)))

typedef struct tagBITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight; /* negative: the first row in memory is the top row */
    WORD biPlanes;
    WORD biBitCount; /* 24 or 32 */
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
} BITMAPINFOHEADER;

typedef struct tagRGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
} RGBQUAD;

typedef struct tagBITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
} BITMAPINFO;

/* ---- contexts ---- */

/* A context without a bitmap, drawing nothing until one is selected: black pen, white brush, R2_COPYPEN, position
 * (0, 0). The argument is not read. */
ZR32PORTAPI HDC CreateCompatibleDC(HDC like);

ZR32PORTAPI BOOL DeleteDC(HDC dc);

/* The drawing functions of a host. Each gets user first; a null one is passed over. Pen, brush, operation and clip are
 * told when they change; a clip of null is none. Points are as the caller gave them. */
typedef struct PORTDCCALLS {
    void *user;
    void (*moveTo)(void *user, int x, int y);
    void (*lineTo)(void *user, int x, int y);
    void (*polyBezierTo)(void *user, const POINT *points, DWORD count);
    void (*rectangle)(void *user, int left, int top, int right, int bottom);
    void (*setPen)(void *user, int style, int width, COLORREF color);
    void (*setBrush)(void *user, BOOL null, COLORREF color);
    void (*setRop2)(void *user, int rop);
    void (*setClip)(void *user, const RECT *clip);
} PORTDCCALLS;

/* A context that hands everything to the host; freed with DeleteDC. The table is copied. */
ZR32PORTAPI HDC PortCreateCallbackDC(const PORTDCCALLS *calls);

/* ---- objects ---- */

/* A zeroed bitmap of 24 or 32 bits, rows padded to 4 bytes; *bits gets the first byte of its memory, which lives until
 * DeleteObject. usage, section and offset must be 0. Null for any other form and without memory. */
ZR32PORTAPI HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO *info, UINT usage, void **bits, HANDLE section,
                                     DWORD offset);

/* Pens are one pixel wide whatever the width. */
ZR32PORTAPI HPEN CreatePen(int style, int width, COLORREF color);

ZR32PORTAPI HRGN CreateRectRgn(int left, int top, int right, int bottom);

/* White, gray, black and null brushes, white, black and null pens, the default font. Null for any other. */
ZR32PORTAPI HGDIOBJ GetStockObject(int object);

/* Puts a pen, brush, bitmap or font in and gives what it replaces; null for what cannot be selected. */
ZR32PORTAPI HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);

/* Frees an object. 0 for null and while it is selected into a context; a stock object stays, with the result 1. */
ZR32PORTAPI BOOL DeleteObject(HGDIOBJ object);

/* Objects and contexts that exist now, stock objects apart, for tests of leaks. */
ZR32PORTAPI int32_t PortObjectCount(void);

/* ---- state and drawing ---- */

/* Set a raster operation (R2_*) or background mode and give the old one; 0 for a bad one. */
ZR32PORTAPI int SetROP2(HDC dc, int rop);
ZR32PORTAPI int SetBkMode(HDC dc, int mode);

/* The clip becomes a copy of the region; null: none. */
ZR32PORTAPI int SelectClipRgn(HDC dc, HRGN region);

/* Sets the position; *old, where given, gets the old one. */
ZR32PORTAPI BOOL MoveToEx(HDC dc, int x, int y, POINT *old);

/* A line from the position, without its last point, which becomes the position. */
ZR32PORTAPI BOOL LineTo(HDC dc, int x, int y);

/* Cubics from the position through count points, a multiple of three; drawn without the last point, which becomes the
 * position. */
ZR32PORTAPI BOOL PolyBezierTo(HDC dc, const POINT *points, DWORD count);

/* Outline in the pen, inside in the brush, columns left to right - 1 and rows top to bottom - 1, each pixel once. With
 * a null pen it is one column and one row less. The position stays. */
ZR32PORTAPI BOOL Rectangle(HDC dc, int left, int top, int right, int bottom);

#ifdef __cplusplus
}
#endif

#endif
