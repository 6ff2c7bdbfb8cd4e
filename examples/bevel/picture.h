/* picture.h - images of the demo: what the planes look like, and sheets that show several at a glance. */
#ifndef BEVEL_PICTURE_H
#define BEVEL_PICTURE_H

#include <cstdint>
#include <string>
#include <vector>
#include <zr32path.h>

namespace bevel {

/* Rows top-down, 8 bits a channel; 1 grey, 3 red green blue, 4 with alpha. */
struct PICTURE {
    int width = 0;
    int height = 0;
    int channels = 3;
    std::vector<uint8_t> bytes;
};

struct LABELLED {
    std::string label;
    PICTURE picture;
};

PICTURE PictureMake(int width, int height, int channels);

/* A landscape of hills under an evening sky, like a photograph: what outlines are shown over. */
PICTURE PictureLandscape(int width, int height);

/* A raster buffer of 8 or 24 bits as it stands. Channel 0 of a 24-bit buffer is taken for red. */
PICTURE PictureOfBuffer(PATHBUF buffer);

/* The distance plane as a heat map: dark at the outline, bright far from it; blue where it is negative. */
PICTURE PictureOfDistance(PATHBUF plane, double reach);

/* The offset plane as directions: hue tells where the outline lies, white marks a ridge. */
PICTURE PictureOfOffset(PATHBUF plane, bool floats);

/* Colour with a mask as its alpha. */
PICTURE PictureWithAlpha(const PICTURE &colour, const PICTURE &alpha);

/* A picture with alpha over a picture of the same size. */
PICTURE PictureOver(const PICTURE &front, const PICTURE &back);

/* A chessboard in two greys, to see alpha by. */
PICTURE PictureChessboard(int width, int height);

/* A sheet of labelled pictures in columns, each shrunk or grown to fit a cell of the given width. */
PICTURE PictureSheet(const std::string &title, const std::vector<LABELLED> &pictures, int columns, int cellWidth);

/* Writes a PNG file; false with a message on the error stream. */
bool PictureWrite(const std::string &file, const PICTURE &picture);

} // namespace bevel

#endif
