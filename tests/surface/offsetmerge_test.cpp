/* offsetmerge_test.cpp - how a pixel takes one more distance and vector: tables of cases in 1/256 pixel. */
#include "surface/offsetmerge.h"

#include <gtest/gtest.h>

#include <cmath>

using zr32::MergeDistance;
using zr32::MergeMitreVector;
using zr32::MergeRayVector;
using zr32::POINTDB;

namespace {

struct WORDS {
    int x1, y1, x2, y2;
    bool operator==(const WORDS &) const = default;
};

std::ostream &operator<<(std::ostream &out, const WORDS &w)
{
    return out << "(" << w.x1 << ", " << w.y1 << ", " << w.x2 << ", " << w.y2 << ")";
}

SURFVEC16 Pixel(const WORDS &w)
{
    return {static_cast<int16_t>(w.x1), static_cast<int16_t>(w.y1), static_cast<int16_t>(w.x2),
            static_cast<int16_t>(w.y2)};
}

WORDS WordsOf(const SURFVEC16 &p)
{
    return {p.x1, p.y1, p.x2, p.y2};
}

TEST(OffsetMerge, DistanceKeepsTheLeast)
{
    static const struct {
        const char *name;
        float old;
        double distance;
        float want;
    } cases[] = {
        {"empty pixel", 0.0F, 4.0, 4.0F},
        {"empty pixel of the other sign", -0.0F, 4.0, 4.0F},
        {"nearer", 9.0F, 4.0, 4.0F},
        {"farther", 4.0F, 9.0, 4.0F},
        {"negative, left by another builder", -4.0F, 9.0, -4.0F},
        {"infinite", 4.0F, INFINITY, 4.0F},
    };
    for (const auto &c : cases) {
        float pixel = c.old;
        MergeDistance(c.distance, &pixel);
        EXPECT_EQ(c.want, pixel) << c.name;
    }
}

TEST(OffsetMerge, RaysOfLinesAndCurves)
{
    static const struct {
        const char *name;
        WORDS old;
        POINTDB v;
        WORDS onLine;
        WORDS onCurve;
    } cases[] = {
        {"empty pixel: first vector", {0, 0, 0, 0}, {3, 0}, {768, 0, 0, 0}, {768, 0, 0, 0}},
        {"empty first slot leaves the second alone", {0, 0, 5, 6}, {3, 0}, {768, 0, 5, 6}, {768, 0, 5, 6}},
        {"cut towards zero", {0, 0, 0, 0}, {-0.99, 0.999}, {-253, 255, 0, 0}, {-253, 255, 0, 0}},
        {"same edge within 0.1", {768, 0, 0, 0}, {3.09, 0.09}, {768, 0, 0, 0}, {768, 0, 0, 0}},
        {"0.3 away: another edge for a line only", {768, 0, 0, 0}, {3.3, 0}, {768, 0, 844, 0}, {768, 0, 0, 0}},
        {"0.5 away is not within 0.5", {768, 0, 0, 0}, {3.5, 0}, {768, 0, 896, 0}, {768, 0, 896, 0}},
        {"farther by less than a pixel: ridge", {768, 0, 0, 0}, {0, 3.9}, {768, 0, 0, 998}, {768, 0, 0, 998}},
        {"farther by a pixel: nothing", {768, 0, 0, 0}, {0, 4.0}, {768, 0, 0, 0}, {768, 0, 0, 0}},
        {"nearer: the old one is kept second", {768, 0, 0, 0}, {0, 2.0}, {0, 512, 768, 0}, {0, 512, 768, 0}},
        {"nearer, however much", {7680, 0, 9, 9}, {0, 1.0}, {0, 256, 7680, 0}, {0, 256, 7680, 0}},
        {"equally far: the new one comes first", {768, 0, 0, 0}, {0, 3.0}, {0, 768, 768, 0}, {0, 768, 768, 0}},
        {"second vector within 0.5: only curves ask it",
         {768, 0, 0, 896},
         {0, 3.25},
         {768, 0, 0, 832},
         {768, 0, 0, 896}},
        {"second vector with a negative word never matches",
         {768, 0, 0, -896},
         {0, -3.25},
         {768, 0, 0, -832},
         {768, 0, 0, -832}},
        {"second vector of zero is not asked", {-768, 0, 0, 0}, {0.3, 0.3}, {76, 76, -768, 0}, {76, 76, -768, 0}},
    };
    for (const auto &c : cases) {
        SURFVEC16 line = Pixel(c.old);
        SURFVEC16 curve = Pixel(c.old);
        MergeRayVector(c.v, zr32::Dot(c.v, c.v), 0, &line);
        MergeRayVector(c.v, zr32::Dot(c.v, c.v), 1, &curve);
        EXPECT_EQ(c.onLine, WordsOf(line)) << c.name << ", line";
        EXPECT_EQ(c.onCurve, WordsOf(curve)) << c.name << ", curve";
    }
}

/* inner: far from the end of the fan's line; ridge: within 1.4 pixels of it. */
TEST(OffsetMerge, FansOfMitres)
{
    static const struct {
        const char *name;
        WORDS old;
        POINTDB v;
        WORDS inner;
        WORDS ridge;
    } cases[] = {
        {"empty pixel", {0, 0, 0, 0}, {3, 0}, {768, 0, 0, 0}, {768, 0, 0, 0}},
        {"empty first slot leaves the second alone", {0, 0, 5, 6}, {3, 0}, {768, 0, 5, 6}, {768, 0, 5, 6}},
        {"same edge within 0.1", {768, 0, 7, 7}, {3.05, 0.05}, {768, 0, 7, 7}, {768, 0, 7, 7}},
        {"farther by 0.9", {768, 0, 0, 0}, {0, 3.9}, {768, 0, 0, 998}, {0, 998, 768, 0}},
        {"farther by 1.3", {768, 0, 0, 0}, {0, 4.3}, {768, 0, 0, 0}, {0, 1100, 768, 0}},
        {"farther by 1.5", {768, 0, 0, 0}, {0, 4.5}, {768, 0, 0, 0}, {768, 0, 0, 0}},
        {"nearer by 1", {768, 0, 0, 0}, {0, 2.0}, {0, 512, 768, 0}, {768, 0, 0, 512}},
        {"nearer by 2, no second", {768, 0, 0, 0}, {0, 1.0}, {0, 256, 768, 0}, {0, 256, 768, 0}},
        {"nearer by 2, second near in length", {768, 0, 0, -512}, {0, 1.0}, {0, 256, 768, 0}, {0, -512, 0, 256}},
        {"nearer by 2, second a little nearer still", {768, 0, 0, -128}, {0, 1.0}, {0, 256, 768, 0}, {0, 256, 0, -128}},
        {"nearer by 2, second the same edge", {768, 0, 0, 256}, {0, 1.0}, {0, 256, 768, 0}, {768, 0, 0, 256}},
        {"nearer by 2, second much nearer", {7680, 0, 0, -256}, {0, 4.0}, {0, 1024, 7680, 0}, {7680, 0, 0, -256}},
        {"nearer by 2, second much farther", {768, 0, 0, -2560}, {0, 1.0}, {0, 256, 768, 0}, {0, 256, 0, -2560}},
        {"equally far", {768, 0, 0, 0}, {0, 3.0}, {0, 768, 768, 0}, {0, 768, 768, 0}},
        {"nearer by exactly 1.4", {768, 0, 0, 0}, {0, 1.6}, {0, 409, 768, 0}, {0, 409, 768, 0}},
        {"farther by exactly 1.4", {256, 0, 0, 0}, {0, 2.4}, {256, 0, 0, 0}, {256, 0, 0, 0}},
    };
    for (const auto &c : cases) {
        SURFVEC16 inner = Pixel(c.old);
        SURFVEC16 ridge = Pixel(c.old);
        MergeMitreVector(c.v, zr32::Dot(c.v, c.v), 1.5, &inner);
        MergeMitreVector(c.v, zr32::Dot(c.v, c.v), 1.4, &ridge);
        EXPECT_EQ(c.inner, WordsOf(inner)) << c.name << ", inner";
        EXPECT_EQ(c.ridge, WordsOf(ridge)) << c.name << ", ridge";
    }
}

} // namespace
