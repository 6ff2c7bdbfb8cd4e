/* png.h - writes PNG files, through libpng or, on Windows, through the system's own encoder. */
#ifndef EXAMPLES_PNG_H
#define EXAMPLES_PNG_H

#include <cstdint>

/* Rows top-down without padding, 8 bits a channel: 1 grey, 3 red green blue, 4 with alpha. 1; 0 when the file cannot be
 * written. */
int WritePng(const char *file, int width, int height, int channels, const uint8_t *rows);

#endif
