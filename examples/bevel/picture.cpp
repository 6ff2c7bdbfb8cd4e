/* picture.cpp - images of the demo.
 *
 * Planes come in, pictures go out. Labels are written with the library itself: a line of text becomes a mask.
 */
#include "picture.h"

#include "common/png.h"
#include "lettering.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace bevel {

namespace {

uint8_t *At(PICTURE *picture, int x, int y)
{
    return picture->bytes.data() +
           (static_cast<size_t>(y) * static_cast<size_t>(picture->width) + static_cast<size_t>(x)) *
               static_cast<size_t>(picture->channels);
}

const uint8_t *At(const PICTURE &picture, int x, int y)
{
    return At(const_cast<PICTURE *>(&picture), x, y);
}

uint8_t Byte(double value)
{
    return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0));
}

/* Smooth noise between 0 and 1 from a hash of lattice points. */
double Lattice(int x, int y)
{
    uint32_t h = static_cast<uint32_t>(x) * 374761393u + static_cast<uint32_t>(y) * 668265263u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return static_cast<double>((h ^ (h >> 16)) & 0xFFFF) / 65535.0;
}

double Noise(double x, double y)
{
    const int ix = static_cast<int>(std::floor(x));
    const int iy = static_cast<int>(std::floor(y));
    double fx = x - ix;
    double fy = y - iy;
    fx = fx * fx * (3 - 2 * fx);
    fy = fy * fy * (3 - 2 * fy);
    const double above = Lattice(ix, iy) * (1 - fx) + Lattice(ix + 1, iy) * fx;
    const double below = Lattice(ix, iy + 1) * (1 - fx) + Lattice(ix + 1, iy + 1) * fx;
    return above * (1 - fy) + below * fy;
}

double Clouds(double x, double y)
{
    double sum = 0;
    double weight = 0.5;
    for (int octave = 0; octave < 5; octave++, x *= 2, y *= 2, weight *= 0.5) sum += weight * Noise(x, y);
    return sum;
}

struct COLOUR {
    double r, g, b;
};

COLOUR Mix(const COLOUR &a, const COLOUR &b, double t)
{
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

void Put(PICTURE *picture, int x, int y, const COLOUR &c)
{
    uint8_t *pixel = At(picture, x, y);
    pixel[0] = Byte(c.r);
    pixel[1] = Byte(c.g);
    pixel[2] = Byte(c.b);
}

/* A full turn of hues at full strength. */
COLOUR Hue(double turn)
{
    const double sixth = (turn - std::floor(turn)) * 6;
    const auto part = [&](double shift) {
        const double h = std::fmod(sixth + shift, 6.0);
        return 255 * std::clamp(std::fabs(h - 3) - 1, 0.0, 1.0);
    };
    return {part(0), part(4), part(2)};
}

/* The mean of a box of a picture, one channel; alpha weighs nothing here: sheets are opaque. */
double BoxMean(const PICTURE &picture, double left, double top, double right, double bottom, int channel)
{
    const int x0 = std::clamp(static_cast<int>(left), 0, picture.width - 1);
    const int y0 = std::clamp(static_cast<int>(top), 0, picture.height - 1);
    const int x1 = std::clamp(static_cast<int>(std::ceil(right)), x0 + 1, picture.width);
    const int y1 = std::clamp(static_cast<int>(std::ceil(bottom)), y0 + 1, picture.height);
    double sum = 0;
    for (int y = y0; y < y1; y++)
        for (int x = x0; x < x1; x++) sum += At(picture, x, y)[channel];
    return sum / ((x1 - x0) * (y1 - y0));
}

/* Draws a picture of any channels into a box of a sheet. */
void Fit(PICTURE *sheet, const PICTURE &source, int left, int top, int width, int height)
{
    const PICTURE &opaque =
        source.channels == 4 ? PictureOver(source, PictureChessboard(source.width, source.height)) : source;
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            const double sx = static_cast<double>(opaque.width) / width;
            const double sy = static_cast<double>(opaque.height) / height;
            for (int c = 0; c < 3; c++)
                At(sheet, left + x, top + y)[c] =
                    Byte(BoxMean(opaque, x * sx, y * sy, (x + 1) * sx, (y + 1) * sy, std::min(c, opaque.channels - 1)) +
                         0.5);
        }
    }
}

void Write(PICTURE *sheet, const std::string &text, int left, int top, int size)
{
    const PICTURE mask = LetteringMask(text, size);
    for (int y = 0; y < mask.height && top + y < sheet->height; y++) {
        for (int x = 0; x < mask.width && left + x < sheet->width; x++) {
            uint8_t *pixel = At(sheet, left + x, top + y);
            const int ink = *At(mask, x, y);
            for (int c = 0; c < 3; c++) pixel[c] = static_cast<uint8_t>((pixel[c] * (255 - ink) + 40 * ink) / 255);
        }
    }
}

} // namespace

PICTURE PictureMake(int width, int height, int channels)
{
    PICTURE picture;
    picture.width = width;
    picture.height = height;
    picture.channels = channels;
    picture.bytes.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(channels));
    return picture;
}

PICTURE PictureLandscape(int width, int height)
{
    PICTURE picture = PictureMake(width, height, 3);
    for (int x = 0; x < width; x++) {
        const double u = static_cast<double>(x) / height;
        const double far = 0.52 + 0.16 * (Clouds(u * 1.3, 7.0) - 0.5);
        const double near = 0.74 + 0.22 * (Clouds(u * 1.9 + 40, 3.0) - 0.5);
        for (int y = 0; y < height; y++) {
            const double v = static_cast<double>(y) / height;
            COLOUR c = Mix({74, 108, 158}, {246, 196, 148}, std::clamp(v / 0.6, 0.0, 1.0));
            c = Mix(c, {250, 236, 224}, 0.7 * std::clamp((Clouds(u * 3, v * 7) - 0.42) * 3, 0.0, 1.0));
            if (v > far) c = Mix({122, 116, 142}, {98, 104, 116}, std::clamp((v - far) * 4, 0.0, 1.0));
            if (v > near) c = Mix({64, 78, 58}, {30, 40, 30}, std::clamp((v - near) * 4, 0.0, 1.0));
            const double grain = 10 * (Clouds(u * 60, v * 60) - 0.5);
            Put(&picture, x, y, {c.r + grain, c.g + grain, c.b + grain});
        }
    }
    return picture;
}

PICTURE PictureOfBuffer(PATHBUF buffer)
{
    int32_t width, height, bits;
    ZrPathBufGetWHU(buffer, &width, &height, &bits);
    PICTURE picture = PictureMake(width, height, bits / 8);
    if (!picture.bytes.empty()) memcpy(picture.bytes.data(), buffer, picture.bytes.size());
    return picture;
}

PICTURE PictureOfDistance(PATHBUF plane, double reach)
{
    int32_t width, height, bits;
    ZrPathBufGetWHU(plane, &width, &height, &bits);
    PICTURE picture = PictureMake(width, height, 3);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            float value;
            memcpy(&value, plane + (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 4,
                   4);
            if (value == 0) continue;
            const double t = std::min(1.0, std::sqrt(std::fabs(static_cast<double>(value))) / std::max(reach, 1.0));
            if (value < 0)
                Put(&picture, x, y, Mix({30, 40, 90}, {120, 170, 255}, t));
            else
                Put(&picture, x, y,
                    t < 0.5 ? Mix({60, 0, 30}, {230, 80, 20}, t * 2) : Mix({230, 80, 20}, {255, 250, 190}, t * 2 - 1));
        }
    }
    return picture;
}

PICTURE PictureOfOffset(PATHBUF plane, bool floats)
{
    int32_t width, height, bits;
    ZrPathBufGetWHU(plane, &width, &height, &bits);
    PICTURE picture = PictureMake(width, height, 3);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            const uint8_t *pixel =
                plane + (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 8;
            double vx, vy;
            bool ridge = false;
            if (floats) {
                SURFVECF vector;
                memcpy(&vector, pixel, sizeof vector);
                vx = static_cast<double>(vector.x);
                vy = static_cast<double>(vector.y);
            } else {
                SURFVEC16 vector;
                memcpy(&vector, pixel, sizeof vector);
                vx = vector.x1;
                vy = vector.y1;
                ridge = vector.x2 != 0 || vector.y2 != 0;
            }
            if (vx == 0 && vy == 0) continue;
            const COLOUR hue = Hue(std::atan2(vy, vx) / 6.283185307179586 + 1);
            Put(&picture, x, y, ridge ? Mix(hue, {255, 255, 255}, 0.75) : hue);
        }
    }
    return picture;
}

PICTURE PictureWithAlpha(const PICTURE &colour, const PICTURE &alpha)
{
    PICTURE picture = PictureMake(colour.width, colour.height, 4);
    for (int y = 0; y < picture.height; y++) {
        for (int x = 0; x < picture.width; x++) {
            memcpy(At(&picture, x, y), At(colour, x, y), 3);
            At(&picture, x, y)[3] = *At(alpha, x, y);
        }
    }
    return picture;
}

PICTURE PictureOver(const PICTURE &front, const PICTURE &back)
{
    PICTURE picture = back;
    for (int y = 0; y < picture.height; y++) {
        for (int x = 0; x < picture.width; x++) {
            const uint8_t *f = At(front, x, y);
            uint8_t *b = At(&picture, x, y);
            for (int c = 0; c < 3; c++) b[c] = static_cast<uint8_t>((f[c] * f[3] + b[c] * (255 - f[3])) / 255);
        }
    }
    return picture;
}

PICTURE PictureChessboard(int width, int height)
{
    PICTURE picture = PictureMake(width, height, 3);
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) memset(At(&picture, x, y), (x / 12 + y / 12) % 2 ? 176 : 214, 3);
    return picture;
}

PICTURE PictureSheet(const std::string &title, const std::vector<LABELLED> &pictures, int columns, int cellWidth)
{
    const int gap = 16;
    const int labelHeight = 30;
    const int titleHeight = 56;
    const auto fitted = [&](const PICTURE &picture) { return cellWidth * picture.height / std::max(1, picture.width); };
    std::vector<int> tops = {titleHeight}; /* of each row, and behind the last */
    for (size_t i = 0; i < pictures.size(); i += static_cast<size_t>(columns)) {
        int highest = 1;
        for (size_t j = i; j < std::min(i + static_cast<size_t>(columns), pictures.size()); j++)
            highest = std::max(highest, fitted(pictures[j].picture));
        tops.push_back(tops.back() + labelHeight + highest + gap);
    }
    PICTURE sheet = PictureMake(gap + columns * (cellWidth + gap), tops.back(), 3);
    std::fill(sheet.bytes.begin(), sheet.bytes.end(), uint8_t{244});
    Write(&sheet, title, gap, 10, 32);
    for (size_t i = 0; i < pictures.size(); i++) {
        const int left = gap + static_cast<int>(i) % columns * (cellWidth + gap);
        const int top = tops[i / static_cast<size_t>(columns)];
        Write(&sheet, pictures[i].label, left, top, 20);
        Fit(&sheet, pictures[i].picture, left, top + labelHeight, cellWidth, fitted(pictures[i].picture));
    }
    return sheet;
}

bool PictureWrite(const std::string &file, const PICTURE &picture)
{
    if (WritePng(file.c_str(), picture.width, picture.height, picture.channels, picture.bytes.data())) return true;
    fprintf(stderr, "bevel: cannot write %s\n", file.c_str());
    return false;
}

} // namespace bevel
