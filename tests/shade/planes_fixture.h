/* planes_fixture.h - random planes for tests of the shaders, with everything in them that a caller may bring. */
#ifndef ZR32_TESTS_PLANESFIXTURE_H
#define ZR32_TESTS_PLANESFIXTURE_H

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>
#include <zr32path.h>

namespace zr32test {

struct PLANESIZE {
    int32_t width;
    int32_t height;
};

using RANDOM = std::mt19937;

inline int32_t Pick(RANDOM &random, int32_t from, int32_t to)
{
    return std::uniform_int_distribution<int32_t>(from, to)(random);
}

inline double PickReal(RANDOM &random, double from, double to)
{
    return std::uniform_real_distribution<double>(from, to)(random);
}

inline uint32_t Word(RANDOM &random)
{
    return static_cast<uint32_t>(random());
}

/* Buffers that are freed at the end of a test. */
struct BUFFERS {
    std::vector<PATHBUF> all;

    BUFFERS() = default;
    BUFFERS(const BUFFERS &) = delete;
    BUFFERS &operator=(const BUFFERS &) = delete;

    ~BUFFERS()
    {
        for (PATHBUF buf : all) ZrPathBufFree(buf);
    }

    PATHBUF Make(int32_t bits, PLANESIZE size)
    {
        PATHBUF buf = ZrPathBufAlloc(bits, size.width, size.height);
        all.push_back(buf);
        return buf;
    }

    PATHBUF Copy(PATHBUF from)
    {
        if (!from) return nullptr;
        PATHBUF buf = ZrPathBufDuplicate(0, from);
        all.push_back(buf);
        return buf;
    }
};

inline size_t BytesOf(PATHBUF buf)
{
    int32_t width, height, bits;
    ZrPathBufGetWHU(buf, &width, &height, &bits);
    const size_t size = bits == 8 ? 1 : bits == 24 ? 3 : bits == 32 ? 4 : 8;
    return static_cast<size_t>(width) * static_cast<size_t>(height) * size;
}

/* Bytes that are often 0 or 255, and often the same as the one before. */
inline void FillBytes(RANDOM &random, PATHBUF buf, int zeros)
{
    const size_t count = BytesOf(buf);
    for (size_t i = 0; i < count; i++) {
        const int kind = Pick(random, 0, 9);
        if (kind < zeros)
            buf[i] = 0;
        else if (kind < 6)
            buf[i] = 255;
        else if (kind == 6 && i > 0)
            buf[i] = buf[i - 1];
        else
            buf[i] = static_cast<uint8_t>(Pick(random, 0, 255));
    }
}

/* Colours in runs, so that equal neighbours are common. */
inline void FillColours(RANDOM &random, PATHBUF buf)
{
    const size_t pixels = BytesOf(buf) / 3;
    for (size_t i = 0; i < pixels; i++) {
        if (i > 0 && Pick(random, 0, 2) != 0)
            std::memcpy(buf + 3 * i, buf + 3 * i - 3, 3);
        else
            for (size_t c = 0; c < 3; c++) buf[3 * i + c] = static_cast<uint8_t>(Pick(random, 0, 255));
    }
}

/* Records of words: lengths around the places where the profile has its seams, runs of equal records, second offsets of
 * nearly the same length. */
inline void FillWords(RANDOM &random, PATHBUF buf, double width)
{
    const size_t count = BytesOf(buf) / 8;
    const double marks[] = {0.0, width * 0.5, width, width - 0.5, width * 0.5 - 0.4, width * 0.25, 0.01};
    for (size_t i = 0; i < count; i++) {
        int16_t words[4] = {};
        const int kind = Pick(random, 0, 11);
        if (kind <= 1 && i > 0) {
            std::memcpy(words, buf + 8 * i - 8, 8);
        } else if (kind >= 3) {
            double length = PickReal(random, 0, width * 1.1);
            if (kind < 7) length = marks[Pick(random, 0, 6)] + PickReal(random, -0.6, 0.6);
            const double angle = kind == 7 ? 1.5707963267948966 * Pick(random, 0, 3) : PickReal(random, 0, 6.3);
            words[0] = static_cast<int16_t>(std::cos(angle) * length * 256);
            words[1] = static_cast<int16_t>(std::sin(angle) * length * 256);
            if (kind & 1) {
                const double second = length + PickReal(random, -0.9, 0.9);
                const double turned = angle + PickReal(random, 0, 3);
                words[2] = static_cast<int16_t>(std::cos(turned) * second * 256);
                words[3] = static_cast<int16_t>(std::sin(turned) * second * 256);
            }
        }
        std::memcpy(buf + 8 * i, words, 8);
    }
}

inline float OddFloat(RANDOM &random)
{
    using LIMITS = std::numeric_limits<float>;
    const float odd[] = {LIMITS::infinity(),
                         -LIMITS::infinity(),
                         LIMITS::quiet_NaN(),
                         -LIMITS::quiet_NaN(),
                         -0.0f,
                         1e30f,
                         -1e30f,
                         1e-40f,
                         LIMITS::max()};
    return odd[Pick(random, 0, 8)];
}

inline void FillFloats(RANDOM &random, PATHBUF buf, double width)
{
    const size_t count = BytesOf(buf) / 8;
    for (size_t i = 0; i < count; i++) {
        float pair[2] = {};
        const int kind = Pick(random, 0, 15);
        if (kind == 0) {
            pair[0] = OddFloat(random);
            pair[1] = Pick(random, 0, 1) ? OddFloat(random) : 1.0f;
        } else if (kind > 2) {
            const double length = PickReal(random, 0, width * 1.1);
            const double angle = PickReal(random, 0, 6.3);
            pair[0] = static_cast<float>(std::cos(angle) * length);
            pair[1] = static_cast<float>(std::sin(angle) * length);
        }
        std::memcpy(buf + 8 * i, pair, 8);
    }
}

inline void FillDistances(RANDOM &random, PATHBUF buf)
{
    const size_t count = BytesOf(buf) / 4;
    for (size_t i = 0; i < count; i++) {
        float value = 0;
        const int kind = Pick(random, 0, 9);
        if (kind == 0)
            value = OddFloat(random);
        else if (kind < 3)
            value = -static_cast<float>(PickReal(random, 0, 50));
        else if (kind < 8)
            value = static_cast<float>(PickReal(random, 0, 300));
        std::memcpy(buf + 4 * i, &value, 4);
    }
}

} // namespace zr32test

#endif
