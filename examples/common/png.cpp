/* png.cpp - writes PNG files through libpng. */
#include "common/png.h"

#include <png.h>

int WritePng(const char *file, int width, int height, int channels, const uint8_t *rows)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = channels == 1 ? PNG_FORMAT_GRAY : channels == 4 ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, file, 0, rows, 0, nullptr);
}
