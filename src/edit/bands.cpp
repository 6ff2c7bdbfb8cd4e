/* bands.cpp - the rubber band of the pen tool, see bands.h.
 *
 * Every band is drawn with the same pen, brush and raster operation, and the context is put back as it was: drawing
 * twice erases.
 */
#include "edit/bands.h"

#include "frame/frame.h"

namespace zr32 {

namespace {

constexpr COLORREF bandColor = 0xC0C0C0;
constexpr int boxReach = 2;

struct BANDS {
    int lineShown;
    POINT from;
    POINT to;
};

BANDS bands;

/* What a band puts into the context, and what it found there. */
struct BANDPEN {
    HDC hdc;
    HPEN pen;
    HGDIOBJ oldPen;
    HGDIOBJ oldBrush;
    int oldRop;
};

BANDPEN BandBegin(HDC hdc)
{
    BANDPEN band = {hdc, CreatePen(PS_SOLID, 0, bandColor), nullptr, nullptr, 0};
    band.oldPen = SelectObject(hdc, band.pen);
    band.oldBrush = SelectObject(hdc, GetStockObject(NULL_BRUSH));
    band.oldRop = SetROP2(hdc, R2_XORPEN);
    return band;
}

void BandEnd(const BANDPEN &band)
{
    SetROP2(band.hdc, band.oldRop);
    SelectObject(band.hdc, band.oldBrush);
    SelectObject(band.hdc, band.oldPen);
    DeleteObject(band.pen);
}

} // namespace

void BandLine(HDC hdc, const POINT &from, const POINT &to)
{
    bands.from = from;
    bands.to = to;
    BandLineAgain(hdc);
}

void BandLineAgain(HDC hdc)
{
    bands.lineShown = 1;
    const POINT &to = bands.to;
    const BANDPEN band = BandBegin(hdc);
    MoveToEx(hdc, bands.from.x, bands.from.y, nullptr);
    LineTo(hdc, to.x, to.y);
    Rectangle(hdc, WrapSub(to.x, boxReach), WrapSub(to.y, boxReach), WrapAdd(to.x, boxReach), WrapAdd(to.y, boxReach));
    BandEnd(band);
}

void BandCurve(HDC hdc, const POINT &p0, const POINT &c1, const POINT &c2, const POINT &p3)
{
    bands.lineShown = 0;
    const POINT rest[] = {c1, c2, p3};
    const BANDPEN band = BandBegin(hdc);
    MoveToEx(hdc, p0.x, p0.y, nullptr);
    PolyBezierTo(hdc, rest, 3);
    BandEnd(band);
}

int BandLineShown()
{
    return bands.lineShown;
}

void BandsReset()
{
    bands = {};
}

} // namespace zr32
