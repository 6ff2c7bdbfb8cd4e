/* plain_sweep.h - the sweeps in their plainest form, to compare the library's with, bit for bit.
 *
 * One long function a pass, no skipping, no shared walk: each step stands where it is thought. Only for shapes of sane
 * size; there are no guards.
 */
#ifndef ZR32_TESTS_PLAIN_SWEEP_H
#define ZR32_TESTS_PLAIN_SWEEP_H

#include <vector>
#include <zr32path.h>

namespace zr32test {

struct PLAINPIXEL {
    float dist;
    int16_t x1, y1, x2, y2;
};

struct PLAINMAP {
    int width;
    int height;
    std::vector<PLAINPIXEL> pixels;
};

struct PLAINMASK {
    int width;
    int height;
    const uint8_t *bytes;
};

enum PLAINPASS { PLAIN_EDGE, PLAIN_MITRE, PLAIN_ENVELOPE };

/* Runs one pass over records in the order given (the tail of a chain already left out). maskX, maskY: where the mask
 * begins, mapX, mapY: where the map begins; they differ for envelopes only. */
void PlainSweep(PLAINPASS pass, const std::vector<const PATHREC *> &records, double width, double rayStart,
                const PLAINMASK &mask, int maskX, int maskY, int mapX, int mapY, double zoom, PLAINMAP *map);

} // namespace zr32test

#endif
