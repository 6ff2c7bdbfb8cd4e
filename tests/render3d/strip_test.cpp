/* strip_test.cpp - cross-sections as samples, on profiles filled by hand: steps, heights, normals; what is unseen. */
#include "planes.h"
#include "render3d/render.h"
#include "scene.h"
#include "shade/profile.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace zr32;
using namespace zr32test;

namespace {

/* A renderer that sees the picture as it is, from far above, with a bevel of 10 pixels that rises by one in each. */
struct Strips : testing::Test {
    RENDER render = {};
    STRIP strip = {};
    Strips()
    {
        ProfileTableBuild(7777, 1, 0, 0); /* no profile: the table is filled here */
        for (int i = 0; i < 4096; i++) PROFILETBL[i] = {1, i * (10.0 / 4096)};
        render.space = {{0, 0}, {0, 0}, {0, 0, 1e12}, {{1, 0, 0, 0, 1, 0, 0, 0, 1}}};
        render.abuf = MakePlane(60, 40);
        render.width = 10;
        render.budget = 1000000;
        render.highest = 10;
    }
    ~Strips() override
    {
        PlaneFree(&render.abuf);
        GlassAlphaFree(&render.material);
        StripsFree(&render);
        if (strip.points) BufFree(strip.points);
    }
    void Build(const POINTDB &at, const POINTDB &reach)
    {
        const SECTION section = {at, {0, 0}, reach, {0, 0}};
        StripBuild(&render, &section, &strip);
    }
    void TurnAboutY(double degrees)
    {
        const double a = degrees * 3.14159265358979 / 180;
        render.space.matrix = {{std::cos(a), 0, -std::sin(a), 0, 1, 0, std::sin(a), 0, std::cos(a)}};
    }
};

TEST_F(Strips, HalvesBothShorterThanAPixelLeaveNone)
{
    Build({20, 20}, {1.99, 0});
    EXPECT_EQ(0u, strip.count);
    Build({20, 20}, {0, 0});
    EXPECT_EQ(0u, strip.count);
    Build({20, 20}, {NAN, 0});
    EXPECT_EQ(0u, strip.count);
    Build({20, 20}, {2, 0});
    EXPECT_EQ(2, strip.run.steps);
    EXPECT_GT(strip.count, 2u);
    /* each half counts on its own: 2.9 + 2.9 are four */
    Build({20, 20}, {5.8, 0});
    EXPECT_EQ(4, strip.run.steps);
}

TEST_F(Strips, SeenEdgeOnTheRaisedSurfaceCounts)
{
    TurnAboutY(90);
    Build({0, 20}, {8.2, 0}); /* no length in the picture plane, 4.1 + 4.1 pixels of height */
    EXPECT_EQ(8, strip.run.steps);
    Build({0, 20}, {2.5, 0});
    EXPECT_EQ(2, strip.run.steps);
    Build({0, 20}, {1.9, 0}); /* 0.95 + 0.95 are none */
    EXPECT_EQ(0u, strip.count);
    for (int i = 0; i < 4096; i++) PROFILETBL[i].height *= 10; /* 9.5 + 9.5 */
    Build({0, 20}, {1.9, 0});
    EXPECT_EQ(18, strip.run.steps);
}

TEST_F(Strips, SamplesRiseWithTheProfileAndLeanOutwards)
{
    Build({20, 20}, {8, 0});
    ASSERT_GT(strip.count, 8u);
    EXPECT_EQ(0, strip.rim.z);
    for (uint32_t k = 0; k < strip.count; k++) {
        const STRIPPOINT &p = strip.points[k];
        /* eight steps of a pixel, each as high as it is far in */
        EXPECT_NEAR(20 + p.i, p.sample.at.x, 1e-6);
        EXPECT_NEAR(p.i, p.sample.z, 0.01);
        EXPECT_NEAR(p.i / 8, p.share, 1e-12);
        /* (A - P, rise): i pixels outwards, 1 up */
        EXPECT_NEAR(-p.i / std::hypot(p.i, 1), p.sample.normal.x, 1e-9);
        EXPECT_NEAR(1 / std::hypot(p.i, 1), p.sample.facing, 1e-9);
        EXPECT_EQ(p.i <= 1, p.sample.atRim) << p.i;
    }
    EXPECT_EQ(8, strip.points[strip.count - 1].i);
    /* the rim has the light of the first sample */
    EXPECT_EQ(strip.points[0].sample.facing, strip.rim.facing);
    EXPECT_EQ(strip.points[0].sample.normal.x, strip.rim.normal.x);
}

TEST_F(Strips, ASpentBudgetEndsTheSampling)
{
    render.budget = 6; /* the rim takes the first */
    Build({20, 20}, {8, 0});
    EXPECT_LE(strip.count, 5u);
    EXPECT_GT(strip.count, 0u);
    Build({20, 20}, {8, 0});
    EXPECT_EQ(0u, strip.count);
}

TEST_F(Strips, NoMoreSamplesThanAStripHolds)
{
    for (int i = 0; i < 4096; i++) PROFILETBL[i].height = i % 2 * 1e6; /* no step is short enough */
    TurnAboutY(60);
    Build({0, 20}, {9, 0});
    EXPECT_EQ(maxStripPoints, strip.count);
}

TEST_F(Strips, NearATurnTheSampleGoesBackToItWithinItsPixel)
{
    /* facing is about (4.6 - i) / i, so that at i = 5 it is -0.08, between the limits, and at 4.85 -0.05 */
    for (int i = 0; i < 4096; i++) PROFILETBL[i] = {4.6 - i * (10.0 / 4096), 0};
    const auto silhouettesAt = [&](int column) {
        int count = 0;
        for (uint32_t k = 0; k < render.kept.count; k++)
            count += render.kept.edges[k].isSilhouette && PixelIndex(render.kept.edges[k].from.at.x) == column;
        return count;
    };
    render.abuf.edgeId = 1;
    render.material.glass = 1;
    const double aside[3] = {0, -1, 0}; /* no highlight: nothing is opaque */
    render.material.light = aside;
    Build({20.2, 20}, {8, 0});
    ASSERT_EQ(5, strip.points[9].i);
    StripDraw(&render, &strip);
    EXPECT_EQ(1, silhouettesAt(25));
    EXPECT_NEAR(25.05, strip.points[9].sample.at.x, 1e-9); /* the point of the turn takes the sample's place */
    EdgesDraw(&render);
    EXPECT_EQ(1u, ListOf(&render.abuf, 25, 20).size());

    /* the turn lies in the pixel before: the sample fills its own */
    Build({20, 10}, {8, 0});
    StripDraw(&render, &strip);
    EXPECT_EQ(0, silhouettesAt(25));
    EXPECT_EQ(1, silhouettesAt(24));
    EXPECT_NE(0u, PlanePixel(&render.abuf, 25, 10)->value);
    EXPECT_EQ(25, strip.points[9].sample.at.x);
}

TEST_F(Strips, SteepProfilesHaveNoPinholes)
{
    for (int i = 0; i < 4096; i++) PROFILETBL[i].height = i < 100 ? 0 : 20;
    TurnAboutY(60);
    Build({0, 20}, {9, 0});
    ASSERT_GT(strip.count, 9u);
    for (uint32_t k = 1; k < strip.count; k++) {
        if (strip.points[k].sample.z == strip.points[k - 1].sample.z) {
            EXPECT_LE(std::fabs(strip.points[k].sample.at.x - strip.points[k - 1].sample.at.x), 0.51);
        }
        EXPECT_GT(strip.points[k].i, strip.points[k - 1].i);
    }
}

TEST_F(Strips, FacesOfACornerCountTheDistanceFromTheirEdge)
{
    /* 45 degrees aside from straight away: 8 pixels along the run are 8 x 0.7071 away from the edge */
    const double half = std::sqrt(0.5);
    const SECTION section = {{20, 20}, {half, half}, {8 * half, 8 * half}, {1, 0}};
    StripBuild(&render, &section, &strip);
    ASSERT_GT(strip.count, 0u);
    const STRIPPOINT &last = strip.points[strip.count - 1];
    EXPECT_NEAR(8 * half, last.sample.z, 0.01);
    EXPECT_LT(last.sample.normal.x, 0);
    EXPECT_EQ(0, last.sample.normal.y);
}

TEST_F(Strips, WhatIsUnseenHasNoPointInThePlane)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> any(-1, 1);
    int unseen = 0, seen = 0;
    for (int n = 0; n < 4000; n++) {
        for (double &m : render.space.matrix.m) m = any(random) * (n % 3 ? 1 : 30);
        render.space.center = {any(random) * 50, any(random) * 50};
        render.space.shift = {any(random) * 50, any(random) * 50};
        render.space.eye = {render.space.center.x, render.space.center.y, any(random) * 200};
        const POINTDB a = {any(random) * 200, any(random) * 200};
        const POINTDB b = a + POINTDB{any(random) * 60, any(random) * 60};
        if (!BoxUnseen(&render, a, b)) {
            seen++;
            continue;
        }
        unseen++;
        for (int i = 0; i < 60; i++) {
            const double u = 0.5 + any(random) / 2, v = 0.5 + any(random) / 2, w = 0.5 + any(random) / 2;
            POINT3D p = {a.x + (b.x - a.x) * u, a.y + (b.y - a.y) * v, 10 * w};
            SpaceTurn(&render.space, &p);
            if (!(render.space.eye.z / (render.space.eye.z - p.z) > 0)) continue; /* behind the eye */
            POINTDB out;
            ProjectFromEye(&render.space.eye, &p, &out);
            ASSERT_FALSE(out.x >= 0 && out.x < 60 && out.y >= 0 && out.y < 40) << n;
        }
    }
    EXPECT_GT(unseen, 1000);
    EXPECT_GT(seen, 500);
}

TEST_F(Strips, UnseenBeginsSixteenPixelsBesideThePlane)
{
    const struct {
        POINTDB a, b;
        int want;
    } cases[] = {
        {{10, 10}, {20, 20}, 0},     {{-30, 10}, {-16.1, 20}, 1}, {{-30, 10}, {-15.9, 20}, 0},
        {{76.1, 10}, {90, 20}, 1},   {{75.9, 10}, {90, 20}, 0},   {{10, -30}, {20, -16.1}, 1},
        {{10, -30}, {20, -15.9}, 0}, {{10, 56.1}, {20, 70}, 1},   {{10, 55.9}, {20, 70}, 0},
    };
    for (const auto &c : cases) EXPECT_EQ(c.want, BoxUnseen(&render, c.a, c.b)) << c.a.x << "," << c.a.y;
    const SECTION section = {{80, 20}, {-1, 0}, {-4, 0}, {0, 0}};
    EXPECT_EQ(0, SectionUnseen(&render, &section));
    EXPECT_EQ(0, ReachUnseen(&render, {86, 20}));
    EXPECT_EQ(1, ReachUnseen(&render, {86.1, 20}));
    render.space.eye.z = 5; /* all of it behind the eye */
    render.lowest = 6;
    EXPECT_EQ(1, BoxUnseen(&render, {10, 10}, {20, 20}));
}

TEST_F(Strips, BothSidesOfASilhouetteEndAtItsLine)
{
    SAMPLE sample = Lit(0x80112233, 1, 0.01, {10.5, 10.5});
    sample.normal = {1, 0, 0};
    SAMPLE behind = Lit(0x80112233, 1, -0.5, {10.5, 10.5});
    render.abuf.edgeId = 1;
    ABufPutSolid(&render.abuf, 10, 10, &behind);
    PutSilhouette(&render, &sample);
    EXPECT_EQ(0u, ListOf(&render.abuf, 10, 10).size()); /* not before the face stands */
    EdgesDraw(&render);
    const auto list = ListOf(&render.abuf, 10, 10);
    ASSERT_EQ(2u, list.size());
    for (const ABUFFRAG &fragment : list) EXPECT_EQ(0xF0F0F0F0u, fragment.coverage);
    /* without a sample from behind there is no edge for it */
    sample.at = {11.5, 10.5};
    PutSilhouette(&render, &sample);
    EdgesDraw(&render);
    EXPECT_EQ(1u, ListOf(&render.abuf, 11, 10).size());
}

TEST_F(Strips, WhatLiesApartIsFilledWithWholePixelsOfMixedColour)
{
    /* two pixels apart: five steps of 0.4, the samples between at 10.9, 11.3, 11.7 and 12.1 */
    SAMPLE from = Lit(0x80104050, 5, 1, {10.5, 10.5});
    SAMPLE to = Lit(0x30606000, 10, 0.5, {12.5, 10.5});
    render.abuf.edgeId = 1;
    FillBetween(&render, &from, &to);
    EXPECT_EQ(0u, PlanePixel(&render.abuf, 9, 10)->value);
    /* the first in a pixel stands; a fifth on the way: 0x80 - 16, 0x10 + 16, 0x40 + 6.4, 0x50 - 16; z 6 */
    EXPECT_EQ(0x70204640u, PlanePixel(&render.abuf, 10, 10)->value);
    EXPECT_EQ(3006, PlanePixel(&render.abuf, 10, 10)->zTag);
    /* two fifths: 0x80 - 32, 0x10 + 32, 0x40 + 12.8, 0x50 - 32; z 7 */
    EXPECT_EQ(0x60304C30u, PlanePixel(&render.abuf, 11, 10)->value);
    EXPECT_EQ(3007, PlanePixel(&render.abuf, 11, 10)->zTag);
    /* four fifths: 0x80 - 64, 0x10 + 64, 0x40 + 25.6, 0x50 - 64 */
    EXPECT_EQ(0x40505910u, PlanePixel(&render.abuf, 12, 10)->value);
    EXPECT_EQ(0u, PlanePixel(&render.abuf, 13, 10)->value);

    /* half a pixel needs none, and what spans more than the plane is no neighbour */
    from.at = {10.5, 20.5};
    to.at = {11, 20.5};
    FillBetween(&render, &from, &to);
    EXPECT_EQ(0u, PlanePixel(&render.abuf, 10, 20)->value);
    from.at = {10.5, 30.5};
    to.at = {115, 30.5};
    FillBetween(&render, &from, &to);
    EXPECT_EQ(0u, PlanePixel(&render.abuf, 20, 30)->value);
}

TEST_F(Strips, RimsCutEveryPixelThatTheyClip)
{
    SAMPLE from = Lit(0x80112233, 1, 1, {10.95, 10.5});
    SAMPLE to = Lit(0x80112233, 1, 1, {11.5, 11.05});
    SAMPLE inside = Lit(0x80112233, 1, 1, {10.2, 11.8});
    render.abuf.edgeId = 1;
    for (int y = 10; y < 12; y++)
        for (int x = 10; x < 12; x++) ABufPutSolid(&render.abuf, x, y, &inside);
    STRIPPOINT points[2] = {{from, 0, 0}, {to, 1, 1}};
    STRIPPOINT beside[1] = {{inside, 1, 1}};
    const STRIP side = {{}, from, points, 2, 2};
    const STRIP other = {{}, inside, beside, 1, 1};
    SideEdge(&render, &side, &other);
    EdgesDraw(&render);
    /* the line y = x - 0.45 passes all but the pixel left below, which it leaves whole */
    EXPECT_EQ(0x80112233u, PlanePixel(&render.abuf, 10, 11)->value);
    EXPECT_EQ(1u, ListOf(&render.abuf, 10, 10).size());
    EXPECT_EQ(1u, ListOf(&render.abuf, 11, 10).size());
    EXPECT_EQ(1u, ListOf(&render.abuf, 11, 11).size());
}

} // namespace
