/* reach_test.cpp - directions, ridges, the inner side and how far the bevel runs, on masks and maps made by hand. */
#include "render3d/render.h"
#include "scene.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

TEST(SameDirection, Table)
{
    const struct {
        const char *name;
        POINTDB a, b;
        double tolerance;
        int want;
    } cases[] = {
        {"equal", {3, 1}, {3, 1}, 0.1, 1},
        {"another length", {3, 1}, {30, 10}, 0.1, 1},
        {"opposite", {3, 1}, {-3, -1}, 0.1, 0},
        {"slopes 0.09 apart", {1, 0}, {1, 0.09}, 0.1, 1},
        {"slopes 0.11 apart", {1, 0}, {1, 0.11}, 0.1, 0},
        {"slopes 0.11 apart on a curve", {1, 0}, {1, 0.11}, 0.2, 1},
        {"by y where y is longer", {0, 5}, {0.4, 5}, 0.1, 1},
        {"by y, other sign", {0, 5}, {0, -5}, 0.1, 0},
        {"the longer axis of the first rules", {1, 2}, {2, 1}, 0.1, 0},
        {"zero first", {0, 0}, {1, 0}, 0.1, 0},
        {"zero second", {1, 0}, {0, 0}, 0.1, 0},
        {"second without that axis", {1, 0}, {0, 1}, 0.1, 0},
    };
    for (const auto &c : cases) EXPECT_EQ(c.want, SameDirection(c.a, c.b, c.tolerance)) << c.name;
}

TEST(RidgeDistance, Table)
{
    EXPECT_EQ(7, RidgeDistance({7, 0}, {0, 0}, 7, 0));
    EXPECT_EQ(0, RidgeDistance({0, 0}, {7, 0}, 0, 7));
    EXPECT_DOUBLE_EQ(8.02, RidgeDistance({8, 0}, {0, 8.04}, 8, 8.04));
    /* opposite edges 4 and 6 away: c = -1. lb > la: (6 - 4) / 2 + 4 = 5, half of 10 */
    EXPECT_DOUBLE_EQ(5, RidgeDistance({-4, 0}, {6, 0}, 4, 6));
    /* lb <= la: (4 - 6 x -1) / 2 = 5 */
    EXPECT_DOUBLE_EQ(5, RidgeDistance({-6, 0}, {4, 0}, 6, 4));
    /* square to each other: c = 0 */
    EXPECT_DOUBLE_EQ(3, RidgeDistance({-4, 0}, {0, 3}, 4, 3));
    EXPECT_DOUBLE_EQ(4, RidgeDistance({-3, 0}, {0, 4}, 3, 4));
    /* the same direction has no ridge */
    EXPECT_FALSE(std::isfinite(RidgeDistance({3, 0}, {4, 0}, 3, 4)));
}

/* A mask whose rows y0 to y1 - 1 are inside, and a map with the ways to both borders. */
struct BAR {
    PATHBUF mask = ZrPathBufAlloc(32, 40, 40);
    PATHBUF surface = ZrPathBufAlloc(0x40, 40, 40);
    RENDER render = {};
    BAR(int y0, int y1, double width)
    {
        render.mask = mask;
        render.maskInfo = BufInfo(mask);
        render.surface = surface;
        render.surfaceInfo = BufInfo(surface);
        render.width = width;
        for (int y = 0; y < 40; y++)
            for (int x = 0; x < 40; x++) {
                reinterpret_cast<uint32_t *>(mask)[y * 40 + x] = y >= y0 && y < y1 ? 0 : 0xFFFFFFFFu;
                SURFVEC16 *way = reinterpret_cast<SURFVEC16 *>(surface) + y * 40 + x;
                const double up = y + 0.5 - y0, down = y1 - y - 0.5;
                if (up <= 0 || down <= 0) continue;
                way->y1 = static_cast<int16_t>(256 * (up <= down ? -up : down));
                if (std::fabs(up - down) < 0.7) way->y2 = static_cast<int16_t>(256 * (up <= down ? down : -up));
            }
    }
    ~BAR()
    {
        ZrPathBufFree(mask);
        ZrPathBufFree(surface);
    }
};

SECTION At(BAR *bar, double x, double y, MITRE *mitre, int nearBend = 0)
{
    SECTION section;
    SectionAt(&bar->render, {1, y}, {x, y}, {1, 0}, 0, 0.1, nearBend, mitre, &section);
    return section;
}

TEST(InwardSide, ClearUnclearAndNone)
{
    BAR bar(10, 30, 50);
    POINTDB inward;
    int isClear = 0;
    EXPECT_EQ(1, InwardSide(&bar.render, {20.5, 10}, {0, 1}, &inward, &isClear));
    EXPECT_EQ(1, inward.y);
    EXPECT_EQ(1, isClear);
    EXPECT_EQ(1, InwardSide(&bar.render, {20.5, 30}, {0, 1}, &inward, &isClear));
    EXPECT_EQ(-1, inward.y);

    BAR thin(10, 11, 50); /* two pixels away it is outside on both sides */
    EXPECT_EQ(1, InwardSide(&thin.render, {20.5, 10}, {0, 1}, &inward, &isClear));
    EXPECT_EQ(1, inward.y);
    EXPECT_EQ(0, isClear);
    EXPECT_EQ(0, InwardSide(&thin.render, {20.5, 10.5}, {0, 1}, &inward, &isClear)); /* inside on both */
    EXPECT_EQ(0, InwardSide(&thin.render, {20.5, 20}, {0, 1}, &inward, &isClear));
    EXPECT_EQ(0, InwardSide(&thin.render, {-100, 1e12}, {0, 1}, &inward, &isClear)); /* off the mask */
}

TEST(InwardSide, SubPixelsDecideWhereItIsNotClear)
{
    BAR bar(50, 51, 50);
    reinterpret_cast<uint32_t *>(bar.mask)[5 * 40 + 5] = 0xF0F0F0F0u; /* left half outside */
    POINTDB inward;
    int isClear;
    EXPECT_EQ(1, InwardSide(&bar.render, {5.5, 5.5}, {1, 0}, &inward, &isClear));
    EXPECT_EQ(1, inward.x);
    EXPECT_EQ(0, isClear);
    reinterpret_cast<uint32_t *>(bar.mask)[5 * 40 + 5] = 0x0000FFFFu; /* top half outside */
    EXPECT_EQ(1, InwardSide(&bar.render, {5.5, 5.5}, {0, 1}, &inward, &isClear));
    EXPECT_EQ(1, inward.y);
    EXPECT_EQ(0, InwardSide(&bar.render, {5.5, 5.4}, {1, 0}, &inward, &isClear));
}

TEST(Section, WithoutASurfaceTheBevelIsTwoPixelsWide)
{
    BAR bar(10, 30, 50);
    bar.render.surface = nullptr;
    MITRE mitre = {};
    EXPECT_EQ(2, At(&bar, 20.5, 10, &mitre).reach.y);
    BAR thin(10, 11, 50);
    thin.render.surface = nullptr;
    mitre = {};
    EXPECT_EQ(0, At(&thin, 20.5, 10, &mitre).reach.y);
}

TEST(Section, TheRidgeIsHalfWayAcross)
{
    for (const int height : {8, 9, 20}) {
        BAR bar(10, 10 + height, 50);
        MITRE mitre = {};
        At(&bar, 20.5, 10, &mitre);
        const SECTION section = At(&bar, 21.5, 10, &mitre);
        EXPECT_NEAR(height / 2.0, section.reach.y, 0.6) << height;
        EXPECT_NEAR(0, section.reach.x, 0.6);
    }
}

TEST(Section, TheReachIsCutToTheWidth)
{
    BAR bar(10, 30, 4);
    MITRE mitre = {};
    EXPECT_DOUBLE_EQ(4, At(&bar, 20.5, 10, &mitre).reach.y);
    bar.render.width = 0;
    EXPECT_EQ(0, At(&bar, 20.5, 10, &mitre).reach.y);
    bar.render.width = -3;
    EXPECT_EQ(0, At(&bar, 20.5, 10, &mitre).reach.y);
    bar.render.width = 2147483647.0; /* far beyond the mask: the search ends there */
    mitre = {};
    EXPECT_LT(At(&bar, 20.5, 10, &mitre).reach.y, 40);
}

TEST(Section, NearTheStartTheMaskGivesTheBisector)
{
    /* not clear: t stops at the first bit outside, r = t la / (la + lb), la and lb from the segment's start at x 1 */
    BAR bar(10, 11, 50);
    MITRE mitre = {};
    At(&bar, 1, 10, &mitre);
    const SECTION section = At(&bar, 5, 10, &mitre);
    double t = 0.25;
    while (10 + t < 11) t += 0.1;
    EXPECT_NEAR(t * 4 / (4 + std::hypot(4, t)), section.reach.y, 1e-12);
}

TEST(Section, AtTheStartLessThanAPixelIsNothing)
{
    BAR bar(10, 11, 50);
    MITRE mitre = {};
    EXPECT_EQ(0, At(&bar, 5, 10, &mitre).reach.y);
    EXPECT_NE(0, At(&bar, 5.5, 10, &mitre).reach.y);
}

TEST(Section, FansRunAsFarAsTheirEdgeIsNearest)
{
    BAR bar(10, 30, 50);
    SECTION section;
    FanSection(&bar.render, {20.5, 10}, {0, 1}, {1, 0}, &section);
    EXPECT_NEAR(10, section.reach.y, 0.8);
    const double k = std::sqrt(0.5);
    FanSection(&bar.render, {20.5, 10}, {k, k}, {1, 0}, &section);
    EXPECT_NEAR(10, section.reach.y, 0.8); /* the distance counts straight from the edge */
    EXPECT_EQ(1, section.slope.y);
    bar.render.width = 6;
    FanSection(&bar.render, {20.5, 10}, {k, k}, {1, 0}, &section);
    EXPECT_NEAR(6, section.reach.y, 1e-9);
}

TEST(Section, BadMapsAreSafe)
{
    BAR bar(10, 30, 50);
    for (int i = 0; i < 1600; i++)
        reinterpret_cast<SURFVEC16 *>(bar.surface)[i] = {static_cast<int16_t>(i * 7919),
                                                         static_cast<int16_t>(i * 104729), static_cast<int16_t>(i * 31),
                                                         static_cast<int16_t>(-i * 577)};
    MITRE mitre = {};
    for (double x = -5; x < 45; x += 0.37) {
        const SECTION section = At(&bar, x, 10, &mitre);
        ASSERT_LE(Length(section.reach), 50.001);
        ASSERT_LE(section.at.y + section.reach.y, 31); /* whatever the map says, the shape is not left */
        ASSERT_GE(section.at.y + section.reach.y, 9);
    }
}

TEST(Section, SectionsOfACircleEndAtItsCentre)
{
    SCENE scene = MakeScene(MakeCircle(60, 60, 40.3), 60, 120, 120);
    RENDER render = {};
    SpaceFromTransform(&scene.camera, &render.space);
    render.mask = scene.mask;
    render.maskInfo = BufInfo(scene.mask);
    render.surface = scene.surface;
    render.surfaceInfo = BufInfo(scene.surface);
    render.maskOrigin = {static_cast<double>(scene.maskOrigin.x), static_cast<double>(scene.maskOrigin.y)};
    render.width = 60;
    MITRE mitre = {};
    for (double a = 0; a < 6.28; a += 0.02) {
        const POINTDB out = {std::cos(a), std::sin(a)}, centre = POINTDB{60.5, 60.5} - render.maskOrigin;
        SECTION section;
        SectionAt(&render, centre, centre + out * 40.3, {-out.y, out.x}, 40.3, 0.2, 0, &mitre, &section);
        const POINTDB off = section.at + section.reach - centre;
        EXPECT_LE(Length(off), 0.35) << a;
        /* a bend of another radius is none around that point */
        SectionAt(&render, centre, centre + out * 40.3, {-out.y, out.x}, 60, 0.2, 0, &mitre, &section);
        EXPECT_LE(Length(section.reach), 41) << a;
    }
    render.width = 25; /* as far as the bevel goes */
    SECTION section;
    mitre = {};
    const POINTDB rim = POINTDB{60.5 + 40.3, 60.5} - render.maskOrigin;
    SectionAt(&render, rim, rim, {0, 1}, 40.3, 0.2, 0, &mitre, &section);
    EXPECT_NEAR(25, Length(section.reach), 1e-9);
    SceneFree(&scene);
}

} // namespace
