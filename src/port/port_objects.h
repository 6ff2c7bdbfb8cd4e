/* port_objects.h - what stands behind the handles: pens, brushes, regions, bitmaps, fonts and device contexts.
 *
 * Private to the port. A handle is the address of its record; every record begins with its kind, and what is handed in
 * is looked at through ObjectOf, which refuses null and other kinds.
 */
#ifndef ZR32PORT_OBJECTS_H
#define ZR32PORT_OBJECTS_H

#include "port_gdi.h"

namespace zr32port {

enum OBJECTKIND : uint32_t { OBJ_KIND_PEN = 1, OBJ_KIND_BRUSH, OBJ_KIND_REGION, OBJ_KIND_BITMAP, OBJ_KIND_FONT };

struct GDIOBJECT {
    OBJECTKIND kind;
    int32_t stock;    /* not 0: lives as long as the process */
    int32_t selected; /* contexts that hold it */
};

struct PEN {
    GDIOBJECT object;
    int style;
    int width;
    COLORREF color;
};

struct BRUSH {
    GDIOBJECT object;
    BOOL null;
    COLORREF color;
};

struct REGION {
    GDIOBJECT object;
    RECT box;
};

struct BITMAP {
    GDIOBJECT object;
    int32_t width; /* 0 by 0 for the stock bitmap of a new context */
    int32_t height;
    int32_t pixelBytes; /* 3 or 4 */
    ptrdiff_t pitch;    /* from a row to the one below it */
    BYTE *top;          /* first byte of the top row */
    BYTE *memory;
};

struct FONTFACE;

struct FONT {
    GDIOBJECT object;
    FONTFACE *face; /* null without a font file */
    int height;
    int width;
    int weight;
    BYTE italic;
    BYTE underline;
    BYTE strikeOut;
    BYTE charSet;
};

/* The object of a kind behind a handle, or null. */
template <typename RECORD> RECORD *ObjectOf(HGDIOBJ handle, OBJECTKIND kind)
{
    GDIOBJECT *object = static_cast<GDIOBJECT *>(handle);
    return object && object->kind == kind ? reinterpret_cast<RECORD *>(object) : nullptr;
}

/* A zeroed record of its kind, counted; null without memory. */
GDIOBJECT *ObjectAlloc(OBJECTKIND kind, size_t size);

} // namespace zr32port

struct HDC__ {
    const PORTDCCALLS *calls; /* the host's functions, or null for a bitmap */
    PORTDCCALLS callTable;
    zr32port::PEN *pen;
    zr32port::BRUSH *brush;
    zr32port::BITMAP *bitmap;
    zr32port::FONT *font;
    int rop;
    int backMode;
    POINT position;
    BOOL clipped;
    RECT clip;
};

#endif
