/* walkline.cpp - a line of half planes: the outer and inner rim of the bevel, pixel by pixel.
 *
 * Colours run along the line in equal byte steps that are cut per step, so the far end comes out near the second
 * colour, not exactly at it. What lies outside the plane is skipped, not walked.
 */
#include "render3d/fragments.h"

#include <algorithm>
#include <cmath>

namespace zr32 {

namespace {

/* Steps a pixel of the longer axis. */
constexpr double stepsPerPixel = 5;

/* No pixel is here; the first one of a line differs from it. */
constexpr int32_t nowhere = 50000;

/* Steps from 0 to count whose points can lie in 0 .. size, widened by one for rounding. */
void CutSteps(double start, double step, int32_t size, double *first, double *last)
{
    if (step == 0) {
        if (start < 0 || start >= size) *last = -1;
        return;
    }
    const double a = -start / step;
    const double b = (size - start) / step;
    *first = std::max(*first, std::floor(std::min(a, b)) - 1);
    *last = std::min(*last, std::ceil(std::max(a, b)) + 1);
}

/* The colour after a number of steps, each byte on its own and wrapping. */
uint32_t ColourAt(uint32_t from, uint32_t to, double count, int64_t steps)
{
    uint32_t colour = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int32_t a = static_cast<int32_t>(from >> shift & 0xFFu);
        const int32_t b = static_cast<int32_t>(to >> shift & 0xFFu);
        const int64_t delta = TruncInt((b - a) / count);
        colour |= static_cast<uint32_t>((a + delta * steps) & 0xFF) << shift;
    }
    return colour;
}

} // namespace

void ABufWalkLine(ABUF *abuf, SAMPLE *from, SAMPLE *to, const POINTDB &inside)
{
    const POINTDB d = to->at - from->at;
    const double longest = std::max(std::fabs(d.x), std::fabs(d.y));
    /* Beyond this the steps of a line no longer tell pixels apart; what is not finite fails too. */
    constexpr double longestLine = 1e12;
    if (!(longest <= longestLine) || !std::isfinite(from->at.x) || !std::isfinite(from->at.y)) return;
    if (d.x == 0 && d.y == 0) return;

    EDGESHAPE shape = {EDGE_ALONG, from->at, to->at, inside};
    if (longest <= 1) {
        ABufPutEdge(abuf, PixelIndex(from->at.x), PixelIndex(from->at.y), from, &shape);
        return;
    }
    const double count = stepsPerPixel * std::trunc(1 + longest);
    const POINTDB step = d * (1 / count);
    double first = 0;
    double last = count;
    CutSteps(from->at.x, step.x, abuf->info.width, &first, &last);
    CutSteps(from->at.y, step.y, abuf->info.height, &first, &last);
    if (!(first <= last)) return;

    const uint32_t colours[2] = {SampleColour(from), SampleColour(to)};
    SAMPLE sample = *from;
    int32_t lastX = nowhere;
    int32_t lastY = nowhere;
    for (int64_t i = static_cast<int64_t>(first); i <= static_cast<int64_t>(last); i++) {
        const double k = static_cast<double>(i);
        shape.from = from->at + step * k;
        const int32_t x = PixelIndex(shape.from.x);
        const int32_t y = PixelIndex(shape.from.y);
        if (x == lastX && y == lastY) continue;
        lastX = x;
        lastY = y;
        shape.to = shape.from + d;
        sample.z = from->z + (to->z - from->z) * (k / count);
        sample.colour = ColourAt(colours[0], colours[1], count, i);
        ABufPutEdge(abuf, x, y, &sample, &shape);
    }
}

} // namespace zr32
