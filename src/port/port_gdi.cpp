/* port_gdi.cpp - device contexts and the objects that are selected into them.
 *
 * A context holds one pen, brush, bitmap and font, stock ones to begin with, and gives the old one when a new one goes
 * in. What is drawn is the business of port_draw.cpp.
 */
#include "port_fontface.h"
#include "port_objects.h"

#include <algorithm>
#include <cstdlib>

using namespace zr32port;

namespace {

int32_t liveObjects;

constexpr GDIOBJECT Stock(OBJECTKIND kind)
{
    return {kind, 1, 0};
}

BRUSH stockBrushes[] = {
    {Stock(OBJ_KIND_BRUSH), FALSE, RGB(255, 255, 255)}, {Stock(OBJ_KIND_BRUSH), FALSE, RGB(192, 192, 192)},
    {Stock(OBJ_KIND_BRUSH), FALSE, RGB(128, 128, 128)}, {Stock(OBJ_KIND_BRUSH), FALSE, RGB(64, 64, 64)},
    {Stock(OBJ_KIND_BRUSH), FALSE, RGB(0, 0, 0)},       {Stock(OBJ_KIND_BRUSH), TRUE, 0},
};

PEN stockPens[] = {
    {Stock(OBJ_KIND_PEN), PS_SOLID, 0, RGB(255, 255, 255)},
    {Stock(OBJ_KIND_PEN), PS_SOLID, 0, RGB(0, 0, 0)},
    {Stock(OBJ_KIND_PEN), PS_NULL, 0, 0},
};

FONT stockFont = {Stock(OBJ_KIND_FONT), nullptr, 16, 0, 400, 0, 0, 0, ANSI_CHARSET};

BITMAP stockBitmap = {Stock(OBJ_KIND_BITMAP), 0, 0, 4, 0, nullptr, nullptr};

/* Puts a record into its place in the context and gives the one that was there. */
template <typename RECORD> HGDIOBJ Exchange(RECORD *record, RECORD **place)
{
    RECORD *old = *place;
    old->object.selected--;
    record->object.selected++;
    *place = record;
    return old;
}

void TellPen(HDC dc)
{
    if (dc->calls && dc->calls->setPen)
        dc->calls->setPen(dc->calls->user, dc->pen->style, dc->pen->width, dc->pen->color);
}

void TellBrush(HDC dc)
{
    if (dc->calls && dc->calls->setBrush) dc->calls->setBrush(dc->calls->user, dc->brush->null, dc->brush->color);
}

/* Bytes of a bitmap's row, padded to 4, and of the whole; 0 for a form that cannot be had. */
size_t BitmapBytes(const BITMAPINFOHEADER &head, size_t *pitch)
{
    if (head.biWidth <= 0 || head.biHeight == 0 || head.biHeight == INT32_MIN || head.biPlanes != 1) return 0;
    if ((head.biBitCount != 24 && head.biBitCount != 32) || head.biCompression != BI_RGB) return 0;
    const uint64_t row = (static_cast<uint64_t>(head.biWidth) * (head.biBitCount / 8u) + 3u) & ~uint64_t{3};
    const uint64_t size = row * static_cast<uint64_t>(std::abs(static_cast<int64_t>(head.biHeight)));
    if (size > INT32_MAX) return 0;
    *pitch = static_cast<size_t>(row);
    return static_cast<size_t>(size);
}

} // namespace

namespace zr32port {

GDIOBJECT *ObjectAlloc(OBJECTKIND kind, size_t size)
{
    GDIOBJECT *object = static_cast<GDIOBJECT *>(calloc(1, size));
    if (!object) return nullptr;
    object->kind = kind;
    liveObjects++;
    return object;
}

} // namespace zr32port

extern "C" {

/* ---- contexts ---- */

HDC CreateCompatibleDC(HDC)
{
    HDC dc = static_cast<HDC>(calloc(1, sizeof(HDC__)));
    if (!dc) return nullptr;
    liveObjects++;
    dc->pen = &stockPens[BLACK_PEN - WHITE_PEN];
    dc->brush = &stockBrushes[WHITE_BRUSH];
    dc->bitmap = &stockBitmap;
    dc->font = &stockFont;
    dc->pen->object.selected++;
    dc->brush->object.selected++;
    dc->bitmap->object.selected++;
    dc->font->object.selected++;
    dc->rop = R2_COPYPEN;
    dc->backMode = OPAQUE;
    return dc;
}

HDC PortCreateCallbackDC(const PORTDCCALLS *calls)
{
    HDC dc = calls ? CreateCompatibleDC(nullptr) : nullptr;
    if (!dc) return nullptr;
    dc->callTable = *calls;
    dc->calls = &dc->callTable;
    return dc;
}

BOOL DeleteDC(HDC dc)
{
    if (!dc) return FALSE;
    dc->pen->object.selected--;
    dc->brush->object.selected--;
    dc->bitmap->object.selected--;
    dc->font->object.selected--;
    free(dc);
    liveObjects--;
    return TRUE;
}

/* ---- objects ---- */

HBITMAP CreateDIBSection(HDC, const BITMAPINFO *info, UINT usage, void **bits, HANDLE section, DWORD offset)
{
    if (bits) *bits = nullptr;
    if (!info || !bits || usage != DIB_RGB_COLORS || section || offset != 0) return nullptr;
    const BITMAPINFOHEADER &head = info->bmiHeader;
    size_t pitch = 0;
    const size_t size = BitmapBytes(head, &pitch);
    BYTE *memory = size != 0 ? static_cast<BYTE *>(calloc(1, size)) : nullptr;
    BITMAP *bitmap = memory ? reinterpret_cast<BITMAP *>(ObjectAlloc(OBJ_KIND_BITMAP, sizeof(BITMAP))) : nullptr;
    if (!bitmap) {
        free(memory);
        return nullptr;
    }
    bitmap->width = head.biWidth;
    bitmap->height = std::abs(head.biHeight);
    bitmap->pixelBytes = head.biBitCount / 8;
    bitmap->memory = memory;
    if (head.biHeight < 0) {
        bitmap->top = memory;
        bitmap->pitch = static_cast<ptrdiff_t>(pitch);
    } else {
        bitmap->top = memory + (size - pitch);
        bitmap->pitch = -static_cast<ptrdiff_t>(pitch);
    }
    *bits = memory;
    return reinterpret_cast<HBITMAP>(bitmap);
}

HPEN CreatePen(int style, int width, COLORREF color)
{
    PEN *pen = reinterpret_cast<PEN *>(ObjectAlloc(OBJ_KIND_PEN, sizeof(PEN)));
    if (!pen) return nullptr;
    pen->style = style;
    pen->width = width;
    pen->color = color;
    return reinterpret_cast<HPEN>(pen);
}

HRGN CreateRectRgn(int left, int top, int right, int bottom)
{
    REGION *region = reinterpret_cast<REGION *>(ObjectAlloc(OBJ_KIND_REGION, sizeof(REGION)));
    if (!region) return nullptr;
    region->box = {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)};
    return reinterpret_cast<HRGN>(region);
}

HGDIOBJ GetStockObject(int object)
{
    if (object >= WHITE_BRUSH && object <= NULL_BRUSH) return &stockBrushes[object];
    if (object >= WHITE_PEN && object <= NULL_PEN) return &stockPens[object - WHITE_PEN];
    return object == SYSTEM_FONT ? &stockFont : nullptr;
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object)
{
    if (!dc || !object) return nullptr;
    HGDIOBJ old = nullptr;
    if (PEN *pen = ObjectOf<PEN>(object, OBJ_KIND_PEN)) {
        old = Exchange(pen, &dc->pen);
        TellPen(dc);
    } else if (BRUSH *brush = ObjectOf<BRUSH>(object, OBJ_KIND_BRUSH)) {
        old = Exchange(brush, &dc->brush);
        TellBrush(dc);
    } else if (BITMAP *bitmap = ObjectOf<BITMAP>(object, OBJ_KIND_BITMAP)) {
        old = Exchange(bitmap, &dc->bitmap);
    } else if (FONT *font = ObjectOf<FONT>(object, OBJ_KIND_FONT)) {
        old = Exchange(font, &dc->font);
    }
    return old;
}

BOOL DeleteObject(HGDIOBJ handle)
{
    GDIOBJECT *object = static_cast<GDIOBJECT *>(handle);
    if (!object) return FALSE;
    if (object->stock) return TRUE;
    if (object->selected != 0) return FALSE;
    if (BITMAP *bitmap = ObjectOf<BITMAP>(handle, OBJ_KIND_BITMAP)) free(bitmap->memory);
    if (FONT *font = ObjectOf<FONT>(handle, OBJ_KIND_FONT)) FontFaceFree(font->face);
    free(object);
    liveObjects--;
    return TRUE;
}

int32_t PortObjectCount(void)
{
    return liveObjects;
}

/* ---- state ---- */

int SetROP2(HDC dc, int rop)
{
    if (!dc || rop < R2_BLACK || rop > R2_WHITE) return 0;
    const int old = dc->rop;
    dc->rop = rop;
    if (dc->calls && dc->calls->setRop2) dc->calls->setRop2(dc->calls->user, rop);
    return old;
}

int SetBkMode(HDC dc, int mode)
{
    if (!dc || (mode != TRANSPARENT && mode != OPAQUE)) return 0;
    const int old = dc->backMode;
    dc->backMode = mode;
    return old;
}

int SelectClipRgn(HDC dc, HRGN handle)
{
    const REGION *region = ObjectOf<REGION>(handle, OBJ_KIND_REGION);
    if (!dc || (handle && !region)) return ERROR;
    dc->clipped = region != nullptr;
    if (region) dc->clip = region->box;
    if (dc->calls && dc->calls->setClip) dc->calls->setClip(dc->calls->user, region ? &dc->clip : nullptr);
    const BOOL empty = region && (dc->clip.right == dc->clip.left || dc->clip.bottom == dc->clip.top);
    return empty ? NULLREGION : SIMPLEREGION;
}

} // extern "C"
