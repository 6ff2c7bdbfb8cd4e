/* environment_test.cpp - wrapping images around a surface, by hand and against a plain form on random surfaces. */
#include "frame/faults.h"
#include "frame/frame.h"
#include "geometry/vector.h"
#include "shade/normal.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>
#include <zr32path.h>

using namespace zr32;

namespace {

struct BUFFER {
    PATHBUF buf;
    int w, h, size;

    BUFFER(int bits, int width, int height)
        : buf(ZrPathBufAlloc(bits, width, height)), w(width), h(height), size(bits == 64 ? 8 : bits / 8)
    {
    }
    BUFFER(const BUFFER &) = delete;
    BUFFER &operator=(const BUFFER &) = delete;
    ~BUFFER()
    {
        ZrPathBufFree(buf);
    }

    size_t Bytes() const
    {
        return size_t(w) * size_t(h) * size_t(size);
    }
    const uint8_t *At(int x, int y) const
    {
        static const uint8_t nothing[8] = {};
        return x < 0 || y < 0 || x >= w || y >= h ? nothing : buf + (size_t(y) * size_t(w) + size_t(x)) * size_t(size);
    }
};

struct CASE {
    int profile;
    double width;
    int invert, scale, floats, reflect, bumpPercent;
    const BUFFER *normals, *source, *mask, *flat, *bump;
};

struct PLACE {
    double u, v;
};

/* One corner as it is told: no sharing, no tables. prev, cur: bump rows of this corner. */
PLACE Corner(const CASE &c, const BUFFER &target, int col, int row, int bumpRow, int bumpBefore, double factor)
{
    const uint8_t *record = c.normals->At(col, row);
    SURFVEC16 words;
    SURFVECF floats;
    memcpy(&words, record, 8);
    memcpy(&floats, record, 8);
    double x = c.floats ? double(floats.x) : words.x1 * 0.00390625;
    double y = c.floats ? double(floats.y) : words.y1 * 0.00390625;
    const int m = c.reflect && c.flat ? *c.flat->At(col, row) : 0;
    const bool bump = c.bumpPercent != 0 && c.bump;
    double gx = 0, gy = 0;
    if (bump) {
        const int rowNow = std::min(bumpRow, c.bump->h - 1), rowThen = std::min(bumpBefore, c.bump->h - 1);
        const double bs = c.bumpPercent * 0.01;
        gy = (*c.bump->At(col, rowNow) - *c.bump->At(col, rowThen)) * bs * 0.0078125;
        gx = col == 0 ? 0.0 : (*c.bump->At(col, rowNow) - *c.bump->At(col - 1, rowNow)) * bs * 0.0078125;
    }
    double N[3] = {0, 0, 1};
    if (m == 255) {
        if (bump) {
            N[0] = -gx;
            N[1] = -gy;
            VecNormalize(N);
        }
    } else {
        ProfileNormal(SurfaceForm(c.width, c.profile, c.invert, c.scale, c.reflect), &x, &y, N);
        if (bump) {
            N[0] -= gx;
            N[1] -= gy;
            VecNormalize(N);
        }
        if (m != 0) {
            const double k = 1.0 - m * 0.00392156862745098;
            N[0] = k * N[0];
            N[1] = k * N[1];
            N[2] = (1 - k) + k * N[2];
            VecNormalize(N);
        }
    }
    double h = std::sqrt(x * x + y * y);
    if (h > c.width) h = c.width;
    if (c.scale) h = c.scale * h * 0.03333333333333333;
    const int cx = target.w / 2, cy = target.h / 2, radius = (target.w + target.h) / 2;
    const double P[3] = {(col - cx) / double(radius), (row - cy) / double(radius), h / radius};
    const double b = P[0] * N[0] + P[1] * N[1] + P[2] * N[2];
    const double pp = P[0] * P[0] + P[1] * P[1] + P[2] * P[2];
    const double t = std::sqrt(b * b - (pp - 1.0)) - b;
    double qx = t * N[0] + P[0], qy = t * N[1] + P[1];
    if (c.floats) qx = qx / std::sqrt(1.0 - qy * qy);
    const double u = (1.0 - std::acos(qx) * 0.31830989161357204) * c.source->w;
    if (c.floats) qy = std::asin(qy) * factor;
    return {u, (qy + 1.0) * (c.source->h / 2)};
}

void Plain(const CASE &c, BUFFER &target, int channels)
{
    const double factor = channels == 1 ? 0.6366199048125918 : 0.6365372374283896;
    ProfileTableBuild(c.profile, c.width, c.scale, c.invert);
    int prev = 0, cur = 1;
    for (int row = 0; row + 1 < target.h; row++) {
        const int next = row + 1;
        for (int col = 0; col + 1 < target.w; col++) {
            const bool flat = c.reflect && c.flat && *c.flat->At(col, row);
            if (!*c.mask->At(col, row) && !flat) continue;
            const PLACE p[4] = {Corner(c, target, col, row, cur, prev, factor),
                                Corner(c, target, col + 1, row, cur, prev, factor),
                                Corner(c, target, col + 1, row + 1, next, cur, factor),
                                Corner(c, target, col, row + 1, next, cur, factor)};
            double umin = p[0].u, umax = umin, vmin = p[0].v, vmax = vmin;
            for (int i = 1; i < 4; i++) {
                if (std::fabs(p[i].u - p[0].u) < c.source->w / 4) {
                    if (umin < p[i].u)
                        umax = umax > p[i].u ? umax : p[i].u;
                    else
                        umin = p[i].u;
                }
                if (std::fabs(p[i].v - p[0].v) < c.source->h / 4) {
                    if (vmin < p[i].v)
                        vmax = vmax > p[i].v ? vmax : p[i].v;
                    else
                        vmin = p[i].v;
                }
            }
            const auto cut = [](double v, int n) { return std::min(std::max(TruncInt(v), 0), n - 1); };
            uint8_t *out = const_cast<uint8_t *>(target.At(col, row));
            for (int ch = 0; ch < channels; ch++) {
                long long sum = 0, count = 0;
                if (!std::isnan(umin) && !std::isnan(vmin))
                    for (int y = cut(vmin, c.source->h); y <= cut(vmax, c.source->h); y++)
                        for (int x = cut(umin, c.source->w); x <= cut(umax, c.source->w); x++, count++)
                            sum += c.source->At(x, y)[ch];
                out[ch] =
                    count ? uint8_t(sum / count) : c.source->At(cut(col, c.source->w), cut(p[0].v, c.source->h))[ch];
            }
        }
        prev = cur;
        cur = next;
    }
}

int Fast(const CASE &c, BUFFER &target, int channels)
{
    PATHBUF flat = c.flat ? c.flat->buf : nullptr;
    if (channels == 1)
        return ZrPathBumpIt(c.profile, c.width, c.normals->buf, target.buf, c.invert, c.scale, c.floats, c.source->buf,
                            c.reflect, c.mask->buf, flat);
    return ZrPathReflectIt(c.profile, c.width, c.normals->buf, target.buf, c.invert, c.scale, c.floats, c.source->buf,
                           c.reflect, c.mask->buf, flat, c.bumpPercent, c.bump ? c.bump->buf : nullptr);
}

TEST(Environment, RandomSurfacesAreTheSameAsThePlainForm)
{
    static const int profiles[] = {0, 1, 100, 101, 102, 103, 104};
    for (uint32_t seed = 1; seed <= 300; seed++) {
        std::mt19937 engine(seed);
        const auto range = [&](int least, int most) { return least + int(engine() % uint32_t(most - least + 1)); };
        const int channels = range(0, 1) ? 3 : 1;
        const int w = range(1, 30), h = range(1, 20);
        BUFFER normals(64, std::max(1, w - range(0, 1)), h), mask(8, w, h), flat(8, w, h), bump(8, w, range(1, h));
        BUFFER source(channels * 8, range(1, 90), range(1, 60)), fast(channels * 8, w, h), plain(channels * 8, w, h);
        for (const BUFFER *b : {&mask, &flat, &bump, &source, &fast})
            for (size_t i = 0; i < b->Bytes(); i++)
                b->buf[i] = uint8_t(range(0, 3) ? range(0, 255) : range(0, 1) * 255);
        memcpy(plain.buf, fast.buf, fast.Bytes());
        CASE c = {profiles[range(0, 6)],
                  range(0, 9) ? 8.0 : 0.0,
                  range(0, 1),
                  range(0, 2) * 15,
                  range(0, 1),
                  range(0, 2),
                  range(0, 1) * range(1, 150),
                  &normals,
                  &source,
                  &mask,
                  range(0, 1) ? &flat : nullptr,
                  range(0, 1) ? &bump : nullptr};
        if (channels == 1) c.bump = nullptr;
        for (int i = 0; i < normals.w * normals.h; i++) {
            if (c.floats) {
                const SURFVECF v = {float(range(-900, 900)) / 100,
                                    range(0, 30) ? float(range(-900, 900)) / 100 : float(NAN)};
                memcpy(normals.buf + i * 8, &v, 8);
            } else {
                const SURFVEC16 v = {int16_t(range(-2300, 2300)), int16_t(range(-2300, 2300)), 0, 0};
                memcpy(normals.buf + i * 8, &v, 8);
            }
        }
        ASSERT_EQ(1, Fast(c, fast, channels));
        Plain(c, plain, channels);
        ASSERT_EQ(0, memcmp(fast.buf, plain.buf, fast.Bytes())) << "seed " << seed << " channels " << channels;
    }
}

struct LEVEL {
    BUFFER normals, target, mask, source;

    LEVEL(int w, int h, int sw, int sh, int channels = 1)
        : normals(64, w, h), target(channels * 8, w, h), mask(8, w, h), source(channels * 8, sw, sh)
    {
        memset(mask.buf, 255, mask.Bytes());
        for (size_t i = 0; i < source.Bytes(); i++) source.buf[i] = uint8_t(i * 7 + 13);
        memset(target.buf, 200, target.Bytes());
    }

    CASE Case()
    {
        return {0, 8, 0, 0, 0, 0, 0, &normals, &source, &mask, nullptr, nullptr};
    }
};

TEST(Environment, ATargetOfOneRowOrColumnIsLeftUntouched)
{
    for (auto size : {std::pair{5, 1}, {1, 5}, {1, 1}, {0, 4}}) {
        LEVEL s(size.first, size.second, 8, 8);
        EXPECT_EQ(1, Fast(s.Case(), s.target, 1));
        for (size_t i = 0; i < s.target.Bytes(); i++) EXPECT_EQ(200, s.target.buf[i]);
    }
}

TEST(Environment, APixelOutsideBothMasksAndTheLastRowAndColumnKeepTheirValue)
{
    LEVEL s(6, 5, 16, 16);
    s.mask.buf[0] = 0;
    memset(s.source.buf, 9, s.source.Bytes());
    ASSERT_EQ(1, Fast(s.Case(), s.target, 1));
    EXPECT_EQ(200, s.target.buf[0]);
    EXPECT_EQ(9, s.target.buf[1]);
    for (int x = 0; x < 6; x++) EXPECT_EQ(200, *s.target.At(x, 4));
    for (int y = 0; y < 5; y++) EXPECT_EQ(200, *s.target.At(5, y));
}

TEST(Environment, AtTheMiddleALevelSurfaceReadsTheMiddleOfTheSource)
{
    /* Corner (20, 20) of 40 x 40 is Q = (0, 0): u = (1 - acos(0) / pi') x 80, a hair under 40; v = 30. Its neighbours
     * span a box of u 40 +- 0.64 and v +- 0.75 (1/40 of half the width of the projection). */
    LEVEL s(40, 40, 80, 60);
    memset(s.source.buf, 0, s.source.Bytes());
    for (int y = 29; y <= 31; y++)
        for (int x = 38; x <= 41; x++) s.source.buf[y * 80 + x] = 100;
    ASSERT_EQ(1, Fast(s.Case(), s.target, 1));
    EXPECT_EQ(100, *s.target.At(20, 20));
    EXPECT_EQ(0, *s.target.At(10, 20));
}

TEST(Environment, OnAFlatSurfaceTheMappingStillVariesWithPosition)
{
    LEVEL s(20, 20, 100, 100);
    for (int y = 0; y < 100; y++)
        for (int x = 0; x < 100; x++) s.source.buf[y * 100 + x] = uint8_t(x * 2);
    ASSERT_EQ(1, Fast(s.Case(), s.target, 1));
    EXPECT_LT(*s.target.At(3, 10), *s.target.At(10, 10));
    EXPECT_LT(*s.target.At(10, 10), *s.target.At(16, 10));
}

TEST(Environment, BumpNeedsBothItsArguments)
{
    LEVEL plain(12, 12, 40, 40, 3), depth(12, 12, 40, 40, 3), map(12, 12, 40, 40, 3), both(12, 12, 40, 40, 3);
    BUFFER bump(8, 12, 12);
    for (size_t i = 0; i < bump.Bytes(); i++) bump.buf[i] = uint8_t(i * 97);
    CASE c = plain.Case();
    Fast(c, plain.target, 3);
    CASE d = depth.Case();
    d.bumpPercent = 80;
    Fast(d, depth.target, 3);
    CASE m = map.Case();
    m.bump = &bump;
    Fast(m, map.target, 3);
    CASE b = both.Case();
    b.bumpPercent = 80;
    b.bump = &bump;
    Fast(b, both.target, 3);
    EXPECT_EQ(0, memcmp(plain.target.buf, depth.target.buf, plain.target.Bytes()));
    EXPECT_EQ(0, memcmp(plain.target.buf, map.target.buf, plain.target.Bytes()));
    EXPECT_NE(0, memcmp(plain.target.buf, both.target.buf, plain.target.Bytes()));
}

/* The target with a bump map against the one without: 1 where a pixel differs. */
std::vector<int> RuffledPixels(const BUFFER &bump)
{
    LEVEL plain(8, 8, 60, 60, 3), ruffled(8, 8, 60, 60, 3);
    CASE p = plain.Case(), r = ruffled.Case();
    r.bumpPercent = 100;
    r.bump = &bump;
    Fast(p, plain.target, 3);
    Fast(r, ruffled.target, 3);
    std::vector<int> differs;
    for (int i = 0; i < 64; i++)
        differs.push_back(memcmp(plain.target.At(i % 8, i / 8), ruffled.target.At(i % 8, i / 8), 3) != 0);
    return differs;
}

/* A map without slopes but at its left border: the left corners of column 0 do not see what lies left of it. A step
 * between columns 0 and 1 is seen by the right corners of column 0 and the left ones of column 1. */
TEST(Environment, LeftCornersOfColumn0HaveNoSlopeToTheLeftAndRightOnesHave)
{
    BUFFER even(8, 8, 8), step(8, 8, 8);
    memset(even.buf, 200, even.Bytes());
    for (int i = 0; i < 64; i++) step.buf[i] = i % 8 ? 200 : 0;
    EXPECT_EQ(std::vector<int>(64, 0), RuffledPixels(even));
    const std::vector<int> differs = RuffledPixels(step);
    for (int i = 0; i < 56; i++) EXPECT_EQ(i % 8 < 2, differs[static_cast<size_t>(i)]) << i;
}

/* A step between rows 0 and 1 of the map: target row 0 sees it at its upper corners, row 1 not, though its upper
 * corners stand on the step. One between rows 1 and 2 is seen at the lower corners of row 1 and the upper ones of
 * row 2.
 */
TEST(Environment, InTargetRow1UpperCornersHaveNoSlopeUpwards)
{
    for (int last : {0, 1}) {
        BUFFER bump(8, 8, 8);
        for (int i = 0; i < 64; i++) bump.buf[i] = i / 8 > last ? 200 : 0;
        const std::vector<int> differs = RuffledPixels(bump);
        for (int i = 0; i < 56; i++) {
            const int row = i / 8;
            const int seen = i % 8 < 7 && (last == 0 ? row == 0 : row == 1 || row == 2);
            EXPECT_EQ(seen, differs[static_cast<size_t>(i)]) << last << ", " << i;
        }
    }
}

TEST(Environment, ABumpMapOfOneRowIsReadAsIfItWentOn)
{
    LEVEL one(10, 10, 40, 40, 3), many(10, 10, 40, 40, 3);
    BUFFER row(8, 10, 1), rows(8, 10, 10);
    for (int i = 0; i < 100; i++) rows.buf[i] = uint8_t(i % 10 * 25);
    memcpy(row.buf, rows.buf, 10);
    CASE a = one.Case(), b = many.Case();
    a.bumpPercent = b.bumpPercent = 90;
    a.bump = &row;
    b.bump = &rows;
    Fast(a, one.target, 3);
    Fast(b, many.target, 3);
    EXPECT_EQ(0, memcmp(one.target.buf, many.target.buf, one.target.Bytes()));
}

TEST(Environment, NullBuffersGiveZeroAndAnEmptySourceWritesNothing)
{
    LEVEL s(6, 6, 8, 8);
    PATHBUF n = s.normals.buf, t = s.target.buf, src = s.source.buf, m = s.mask.buf;
    EXPECT_EQ(0, ZrPathBumpIt(0, 8, nullptr, t, 0, 0, 0, src, 0, m, nullptr));
    EXPECT_EQ(0, ZrPathBumpIt(0, 8, n, nullptr, 0, 0, 0, src, 0, m, nullptr));
    EXPECT_EQ(0, ZrPathBumpIt(0, 8, n, t, 0, 0, 0, nullptr, 0, m, nullptr));
    EXPECT_EQ(0, ZrPathBumpIt(0, 8, n, t, 0, 0, 0, src, 0, nullptr, nullptr));
    BUFFER empty(8, 0, 7);
    EXPECT_EQ(1, ZrPathBumpIt(0, 8, n, t, 0, 0, 0, empty.buf, 0, m, nullptr));
    EXPECT_EQ(200, t[0]);
}

/* Neighbouring corners far apart on a large source: boxes that are worth a table of sums. */
void Roughen(LEVEL *s)
{
    std::mt19937 engine(7);
    for (int i = 0; i < s->normals.w * s->normals.h; i++) {
        const SURFVEC16 v = {int16_t(int(engine() % 3600) - 1800), int16_t(int(engine() % 3600) - 1800), 0, 0};
        memcpy(s->normals.buf + i * 8, &v, 8);
    }
}

TEST(Environment, WithoutMemoryNothingIsWrittenOrLeakedAndSumsAreDoneWithout)
{
    LEVEL s(16, 16, 200, 200, 3), good(16, 16, 200, 200, 3), plain(16, 16, 200, 200, 3);
    for (LEVEL *each : {&s, &good, &plain}) Roughen(each);
    Plain(plain.Case(), plain.target, 3);
    Fast(good.Case(), good.target, 3);
    EXPECT_EQ(0, memcmp(good.target.buf, plain.target.buf, s.target.Bytes()));
    const int64_t live = FaultLiveBlocks(ALLOC_BUF);
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(0, Fast(s.Case(), s.target, 3));
    EXPECT_EQ(200, s.target.buf[0]);
    FaultSet(ALLOC_BUF, 2); /* the sums */
    EXPECT_EQ(1, Fast(s.Case(), s.target, 3));
    EXPECT_TRUE(FaultStruck());
    EXPECT_EQ(0, memcmp(good.target.buf, s.target.buf, s.target.Bytes()));
    FaultSet(ALLOC_BUF, 0);
    EXPECT_EQ(live, FaultLiveBlocks(ALLOC_BUF));
}

TEST(Environment, AnImageThatMirrorsItselfIsReadAsItChanges)
{
    LEVEL fast(24, 24, 24, 24, 3), plain(24, 24, 24, 24, 3);
    for (LEVEL *each : {&fast, &plain}) {
        Roughen(each);
        memcpy(each->target.buf, each->source.buf, each->target.Bytes());
    }
    CASE f = fast.Case(), p = plain.Case();
    f.source = &fast.target;
    p.source = &plain.target;
    Fast(f, fast.target, 3);
    Plain(p, plain.target, 3);
    EXPECT_EQ(0, memcmp(fast.target.buf, plain.target.buf, fast.target.Bytes()));
}

TEST(Environment, BuffersOfSmallerPixelsAreLeftAlone)
{
    LEVEL s(6, 6, 8, 8); /* grey where colour is wanted */
    EXPECT_EQ(1, Fast(s.Case(), s.target, 3));
    EXPECT_EQ(200, s.target.buf[0]);
}

TEST(Environment, AWidthThatIsNoNumberIsSafe)
{
    for (double width : {double(NAN), double(INFINITY), -1.0, 0.0, 1e300, 1e-300}) {
        LEVEL fast(9, 9, 30, 30), plain(9, 9, 30, 30);
        for (LEVEL *each : {&fast, &plain}) Roughen(each);
        CASE f = fast.Case(), p = plain.Case();
        f.width = p.width = width;
        EXPECT_EQ(1, Fast(f, fast.target, 1));
        Plain(p, plain.target, 1);
        EXPECT_EQ(0, memcmp(fast.target.buf, plain.target.buf, fast.target.Bytes())) << width;
    }
}

/* ---- glass ---- */

struct GLASS {
    BUFFER mask, normals;
    GLASS(int w, int h, int value) : mask(8, w, h), normals(64, w, h)
    {
        memset(mask.buf, value, mask.Bytes());
    }
    int Make(int face, int edge, int bumpPercent = 0, PATHBUF bump = nullptr, int profile = 0)
    {
        return ZrPathTransparentMask(mask.buf, face, edge, 8, profile, 0, 0, 0, normals.buf, 0, bumpPercent, bump);
    }
    void Set(int x, SURFVEC16 v)
    {
        memcpy(normals.buf + x * 8, &v, 8);
    }
};

TEST(Glass, AFaceOfZeroLeavesTheMaskForAnyEdge)
{
    for (int edge : {0, 40, 100}) {
        GLASS g(2, 1, 177);
        g.Set(1, {256, 0, 0, 0});
        ASSERT_EQ(1, g.Make(0, edge));
        EXPECT_EQ(177, g.mask.buf[0]);
        EXPECT_EQ(177, g.mask.buf[1]);
    }
}

TEST(Glass, AFaceOfAHundredLeavesOneOf255)
{
    GLASS g(1, 1, 255);
    g.Make(100, 0);
    EXPECT_EQ(1, g.mask.buf[0]);
}

TEST(Glass, ALevelPixelKeepsTheShareThatTheFaceLeaves)
{
    for (int face : {10, 37, 80}) {
        const int value = face * 255 / 100;
        GLASS g(1, 1, 201);
        g.Make(face, 20);
        EXPECT_EQ((255 - value) * 201 / 255, g.mask.buf[0]) << face;
    }
}

TEST(Glass, AnEmptyPixelStaysEmptyAndAnEdgeOnOneKeepsMore)
{
    GLASS g(3, 1, 255);
    g.mask.buf[0] = 0;
    g.Set(2, {64, 0, 0, 0}); /* a quarter pixel from the rim of a quarter circle: nearly edge-on */
    g.Make(90, 10);
    EXPECT_EQ(0, g.mask.buf[0]);
    EXPECT_LT(g.mask.buf[1], g.mask.buf[2]);
    /* z = sqrt(1 - (1 - 0.25 / 8)^2), table entry cut to thousandths. */
    const double c = 1 - 0.25 / 8;
    const int index = int(std::sqrt(1 - c * c) * 1000);
    const int face = 90 * 255 / 100, edge = 10 * 255 / 100;
    const int wanted = int(std::pow(1.0 - index * 0.001, 1.5) * ((255 - edge) - (255 - face)) + (255 - face));
    EXPECT_NEAR(wanted, g.mask.buf[2], 2);
}

TEST(Glass, ASeamsVectorIsLookedUpAsItIs)
{
    /* The rim of a chamfer: z = t / sqrt(2) + 1 - t. */
    GLASS g(1, 1, 255);
    g.Set(0, {int16_t(7.5 * 256), 0, 0, 0});
    g.Make(60, 0, 0, nullptr, 1);
    const double z = 0.5 / std::sqrt(2.0) + 0.5;
    const int face = 60 * 255 / 100;
    const int wanted = int(std::pow(1.0 - int(z * 1000) * 0.001, 1.5) * (255 - (255 - face)) + (255 - face));
    EXPECT_EQ(wanted, g.mask.buf[0]);
}

TEST(Glass, BumpRufflesTheSurfaceAndNeedsBothArguments)
{
    GLASS level(2, 1, 255), ruffled(2, 1, 255);
    BUFFER bump(8, 2, 1);
    bump.buf[1] = 255;
    level.Make(80, 0, 0, bump.buf);
    ruffled.Make(80, 0, 100, bump.buf);
    EXPECT_EQ(level.mask.buf[0], ruffled.mask.buf[0]); /* column 0 has no slope */
    EXPECT_LT(level.mask.buf[1], ruffled.mask.buf[1]);
    EXPECT_EQ(0, ZrPathTransparentMask(nullptr, 1, 1, 8, 0, 0, 0, 0, level.normals.buf, 0, 0, nullptr));
    EXPECT_EQ(0, ZrPathTransparentMask(level.mask.buf, 1, 1, 8, 0, 0, 0, 0, nullptr, 0, 0, nullptr));
}

TEST(Glass, AnyPercentagesAndSizesAreSafe)
{
    for (int percent : {-1000, -1, 101, 100000, INT32_MAX, INT32_MIN}) {
        GLASS g(3, 3, 200);
        BUFFER small(8, 1, 1);
        g.Make(percent, percent / 2, percent, small.buf);
        g.Make(50, percent);
    }
}

} // namespace
