/* bands.h - the rubber band of the pen tool: lines with a box at their end, and cubics, drawn by XOR. */
#ifndef ZR32_BANDS_H
#define ZR32_BANDS_H

#include "platform/platform.h"

namespace zr32 {

/* A line between two points with a box around the second, both in window pixels of the context. It is remembered. */
void BandLine(HDC hdc, const POINT &from, const POINT &to);

/* Draws the remembered line again, which erases it. */
void BandLineAgain(HDC hdc);

/* A cubic through four points. */
void BandCurve(HDC hdc, const POINT &p0, const POINT &c1, const POINT &c2, const POINT &p3);

/* 1 when the last band drawn was a line, 0 when it was a curve. */
int BandLineShown();

/* As at start: nothing drawn, nothing remembered. */
void BandsReset();

} // namespace zr32

#endif
