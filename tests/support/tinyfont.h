/* tinyfont.h - a TrueType font made byte by byte, so that tests know every number in it.
 *
 * 1000 units an em, 800 up and 200 down, average width 500, widest 1200. Glyphs (advance; points in units):
 *   'A'  600; a square of lines from (100, 0) to (500, 700)
 *   'Q'  1200; eight points, control and on-curve in turn, around the box (100, 0) to (1100, 1000)
 *   'O'  1000; four control points only: the corners of the box (0, 0) to (1000, 1000)
 *   ' '  400; blank
 *   the y with two dots, the euro sign, hiragana a, the ideograph one and the hangul ga are 'A'; anything else is the
 *   square of glyph 0, (0, 0) to (300, 300)
 */
#ifndef ZR32_TESTS_TINYFONT_H
#define ZR32_TESTS_TINYFONT_H

#include <cstdint>
#include <string>
#include <vector>

namespace zr32test {

struct TINYFORM {
    bool symbol = false;  /* a symbol font: blank and 'Q' at their codes, 'A' at 0xF041, and nothing else */
    bool clipping = true; /* tells its clipping heights and average width */
};

std::vector<uint8_t> TinyFont(const std::string &family, const TINYFORM &form = {});

/* Writes a file that no other process has into the folder for temporary files and gives its path. */
std::string WriteTestFile(const std::string &name, const std::vector<uint8_t> &bytes);

/* The tiny font, installed for this process under the family name "Zr Tiny". */
const char *InstalledTinyFont();

} // namespace zr32test

#endif
