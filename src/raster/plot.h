/* plot.h - plots the lines, curves and ellipses of one record into a mask. */
#ifndef ZR32_PLOT_H
#define ZR32_PLOT_H

#include "raster/raster.h"

namespace zr32 {

/* In which vertical direction an outline passes through a pixel. */
constexpr uint8_t dirNone = 0x00;
constexpr uint8_t dirDown = 0x80; /* towards larger y */
constexpr uint8_t dirUp = 0xC0;
constexpr uint8_t dirBoth = 0xF0; /* horizontal, or both ways */

uint8_t DirMerge(uint8_t old, uint8_t added);

/* A mask and, pixel by pixel beside it, the directions in which its outline passes: two buffers of the same shape, the
 * first byte of a pixel counts in the second. */
struct PLOTPLANES {
    PATHBUF mask;
    PATHBUF directions;
    BUFINFO info;
};

/* The hard plotter sets one pixel a sample: to 255 in 8 bits, to 0 (covered) in 32. The smooth one spreads a sample
 * over two pixels whose bytes sum to 255, keeps the larger value where lines meet, and knows ellipse shapes. */
void PathPlotHard(const PATHREC *record, const PLACEMENT &place, const PLOTPLANES &planes);
void PathPlotSmooth(const PATHREC *record, const PLACEMENT &place, const PLOTPLANES &planes);

} // namespace zr32

#endif
