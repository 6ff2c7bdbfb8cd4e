/* render_test.cpp - the renderer as a whole: what it renders, how its coverage agrees with masks, bad input. */
#include "frame/faults.h"
#include "render3d/render.h"
#include "scene.h"
#include "shade/profile.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using namespace zr32;
using namespace zr32test;

namespace {

/* No highlight anywhere: what glass shows is its alpha by the angle alone. */
const double lightFromBehind[3] = {0, 0, -1};

int CountAlpha(const SCENE *scene)
{
    const BUFINFO info = BufInfo(scene->alpha);
    return static_cast<int>(
        std::count_if(scene->alpha, scene->alpha + info.width * info.height, [](uint8_t a) { return a != 0; }));
}

PATHREC *Chain(PATHREC *a, PATHREC *b)
{
    ChainLink(tableChain, a, b);
    ChainLink(joinChain, a, b);
    return a;
}

PATHREC *Star()
{
    std::vector<TESTNODE> nodes;
    for (int i = 0; i <= 10; i++) {
        const double r = i % 2 ? 30 : 50, a = i % 10 * 0.62831853 - 1.5;
        nodes.push_back({static_cast<uint16_t>(i == 0    ? 6
                                               : i == 10 ? 3
                                                         : 2),
                         60 + r * std::cos(a), 60 + r * std::sin(a)});
    }
    return MakePath(nodes);
}

PATHREC *Ell()
{
    return MakePath({{6, 20.3, 20.3},
                     {2, 50.3, 20.3},
                     {2, 50.3, 70.7},
                     {2, 100.7, 70.7},
                     {2, 100.7, 100.4},
                     {2, 20.3, 100.4},
                     {3, 20.3, 20.3}});
}

/* A box with a narrow wedge cut into its left side. */
PATHREC *Notch()
{
    return MakePath({{6, 20.3, 20.3},
                     {2, 100.7, 20.3},
                     {2, 100.7, 100.4},
                     {2, 20.3, 100.4},
                     {2, 20.3, 70.2},
                     {2, 70.4, 60.1},
                     {2, 20.3, 50.2},
                     {3, 20.3, 20.3}});
}

/* Two arms that meet in an arc, the inner one tight and in two halves. */
PATHREC *Bend()
{
    return MakePath({{6, 30.3, 20.3},
                     {2, 44.3, 20.3},
                     {2, 44.3, 60.4},
                     {4, 44.3, 63.7},
                     {4, 45.1, 66.1},
                     {4, 46.7, 67.8},
                     {4, 48.3, 69.5},
                     {4, 50.8, 70.3},
                     {4, 54.1, 70.3},
                     {2, 90.3, 70.3},
                     {2, 90.3, 84.4},
                     {2, 52.3, 84.4},
                     {4, 38.3, 84.4},
                     {4, 30.3, 76.4},
                     {4, 30.3, 60.4},
                     {3, 30.3, 20.3}});
}

PATHREC *Ring()
{
    PATHREC *hole = MakeCircle(60, 60, 20);
    for (uint32_t i = 0; i < hole->nodeCount; i++) hole->nodes[i].x = DbToFix(120) - hole->nodes[i].x;
    return Chain(MakeCircle(60, 60, 48), hole);
}

TEST(Render, AChainOfOneRendersNothing)
{
    SCENE scene = MakeScene(MakeBox(20, 20, 80, 80), 40, 100, 100);
    scene.path->nextPath = nullptr;
    scene.tail->prevPath = nullptr;
    std::fill(scene.colour, scene.colour + 30000, uint8_t(77));
    std::fill(scene.alpha, scene.alpha + 10000, uint8_t(77));
    EXPECT_EQ(1, Render(&scene, {}, lightFromBehind));
    EXPECT_EQ(0, CountAlpha(&scene));
    EXPECT_EQ(0, *std::max_element(scene.colour, scene.colour + 30000));
    ChainLink(tableChain, scene.path, scene.tail);
    SceneFree(&scene);
}

TEST(Render, AChainOfThreeRendersTheFirstTwo)
{
    PATHREC *first = Chain(MakeBox(10, 10, 40, 40), MakeBox(60, 10, 90, 40));
    PATHREC *third = MakeBox(10, 60, 40, 90);
    ChainLink(tableChain, first->nextPath, third);
    ChainLink(joinChain, first->nextPath, third);
    SCENE scene = MakeScene(first, 40, 100, 100);
    third->nextPath = nullptr; /* without the record that ends the chain for the other tests */
    scene.tail->prevPath = nullptr;
    EXPECT_EQ(1, Render(&scene, {}, lightFromBehind));
    EXPECT_NE(0, scene.alpha[20 * 100 + 20]);
    EXPECT_NE(0, scene.alpha[20 * 100 + 70]);
    EXPECT_EQ(0, scene.alpha[70 * 100 + 20]);
    ChainLink(tableChain, third, scene.tail);
    SceneFree(&scene);
}

TEST(Render, TheWalkBeginsAtTheRecordThatIsGiven)
{
    SCENE scene = MakeScene(Chain(MakeBox(10, 10, 40, 40), MakeBox(60, 10, 90, 40)), 40, 100, 100);
    PATHREC *head = scene.path;
    scene.path = head->nextPath;
    EXPECT_EQ(1, Render(&scene, {}, lightFromBehind));
    EXPECT_EQ(0, scene.alpha[20 * 100 + 20]);
    EXPECT_NE(0, scene.alpha[20 * 100 + 70]);
    scene.path = head;
    SceneFree(&scene);
}

TEST(Render, ASecondBandOverwritesTheTopRowsWithZeros)
{
    SCENE scene = MakeScene(MakeBox(10, 50, 60, 150), 40, 70, 600);
    std::fill(scene.alpha, scene.alpha + 70 * 600, uint8_t(77));
    EXPECT_EQ(1, Render(&scene, {}, lightFromBehind));
    for (int y = 0; y < 100; y++) EXPECT_EQ(0, scene.alpha[y * 70 + 30]) << y;
    for (int y = 101; y < 149; y++) EXPECT_NE(0, scene.alpha[y * 70 + 30]) << y;
    for (int y = 160; y < 500; y++) EXPECT_EQ(0, scene.alpha[y * 70 + 30]) << y;
    for (int y = 500; y < 600; y++) EXPECT_EQ(77, scene.alpha[y * 70 + 30]) << y;
    SceneFree(&scene);
}

TEST(Render, NarrowBevelsRaiseTheSilhouetteLimitForGood)
{
    SCENE scene = MakeScene(MakeBox(20, 20, 50, 50), 40, 60, 60);
    Render(&scene, {14, 0, 1, 0, 0}, lightFromBehind);
    EXPECT_EQ(0.2, FacingWide());
    Render(&scene, {30, 0, 1, 0, 0}, lightFromBehind);
    EXPECT_EQ(0.2, FacingWide());
    Render(&scene, {24, 0, 1, 0, 0}, lightFromBehind);
    EXPECT_EQ(0.15, FacingWide());
    SceneFree(&scene);
}

TEST(Render, WithoutASurfaceTheBevelIsTwoPixelsWide)
{
    SCENE scene = MakeScene(MakeBox(20.5, 20.5, 79.5, 79.5), 40, 100, 100);
    PATHBUF surface = scene.surface;
    scene.surface = nullptr;
    EXPECT_EQ(1, Render(&scene, {}, lightFromBehind));
    for (int x = 30; x < 70; x++) {
        EXPECT_NE(0, scene.alpha[21 * 100 + x]) << x;
        EXPECT_NE(0, scene.alpha[22 * 100 + x]) << x;
        EXPECT_EQ(0, scene.alpha[20 * 100 + x]) << x;
        EXPECT_EQ(0, scene.alpha[24 * 100 + x]) << x;
    }
    scene.surface = surface;
    SceneFree(&scene);
}

TEST(Render, WithoutGlassTheAlphaHoldsTheHighlightAlone)
{
    SCENE scene = MakeScene(MakeBox(20, 20, 80, 80), 40, 100, 100);
    EXPECT_EQ(1, Render(&scene, {40, 1, 0, 0, 0}, lightFromBehind));
    /* nothing, but where lists of nothing are composed */
    EXPECT_LE(*std::max_element(scene.alpha, scene.alpha + 10000), 4);
    /* the material under the ambient term: 0x30, 0x70, 0xE0 x 0.2 */
    const uint8_t *pixel = scene.colour + 3 * (30 * 100 + 50);
    EXPECT_EQ(0xE0 / 5, pixel[0]);
    EXPECT_EQ(0x70 / 5, pixel[1]);
    EXPECT_EQ(0x30 / 5, pixel[2]);
    /* a light that mirrors straight up from the upper chamfer */
    const double light[3] = {0, -1, 0};
    EXPECT_EQ(1, Render(&scene, {40, 1, 0, 0, 0}, light));
    EXPECT_EQ(255, scene.alpha[30 * 100 + 50]);
    EXPECT_EQ(0, scene.alpha[70 * 100 + 50]);
    SceneFree(&scene);
}

TEST(Render, GlassFollowsTheViewingAngle)
{
    SCENE scene = MakeScene(MakeBox(20, 20, 80, 80), 40, 100, 100);
    scene.camera.viewSize = 1e7;
    EXPECT_EQ(1, Render(&scene, {}, lightFromBehind));
    /* a chamfer of 45 degrees: entry 707 of the table, (1 - 0.707)^2 x 239 + 16 */
    EXPECT_EQ(36, scene.alpha[30 * 100 + 50]);
    EXPECT_EQ(36, scene.alpha[50 * 100 + 30]);
    SceneFree(&scene);
}

/* Flat faces of one alpha all over: the covered share of a pixel is its alpha over that one, and a pixel that two faces
 * cover twice shows. Half of it is used, which glass 0 and a highlight give: 128.5 = e^28 x 4 x 255. */
constexpr int32_t noProfile = 7777; /* a profile code that is none keeps the table, which is filled here */
constexpr int faceAlpha = 128;
constexpr int bitAlpha = 4; /* of one sub-pixel */

void FlattenProfile()
{
    ProfileTableBuild(noProfile, 1, 0, 0);
    for (PROFILEENTRY &entry : PROFILETBL) entry = {1e9, 0};
}

void RenderFlat(SCENE *scene)
{
    FlattenProfile();
    tagPOINT3D n = {0, 0, 1};
    RotatePoint3D(&n, &scene->camera.matrix);
    const double e = std::pow(128.5 / 1020, 1 / 28.0);
    /* the light that the face mirrors to the view axis, and a little less of it */
    const double light[3] = {e * 2 * n.z * n.x, e * 2 * n.z * n.y, e * (2 * n.z * n.z - 1)};
    EXPECT_EQ(1, Render(scene, {60, noProfile, 0, 0, 0}, light));
}

struct AGREEMENT {
    double mean; /* of edge pixels, levels of 255 */
    int worst;
    int edges;
    int holes;  /* inside and empty */
    int uneven; /* inside, and off by more than a quarter */
    int stray;  /* outside, and touched by more than two sub-pixels */
};

/* Compares the alpha with an 8-bit mask that lies at (left, top). Edge pixels near a corner of the path are left out.
 */
AGREEMENT Compare(const SCENE *scene, PATHBUF mask, int32_t left, int32_t top, double cornerSize)
{
    const BUFINFO alpha = BufInfo(scene->alpha), cover = BufInfo(mask);
    const auto coverAt = [&](int x, int y) {
        return BufHasPixel(cover, x - left, y - top) ? mask[(y - top) * cover.width + x - left] : 0;
    };
    AGREEMENT result = {};
    double sum = 0;
    for (int y = 0; y < alpha.height; y++)
        for (int x = 0; x < alpha.width; x++) {
            const int c = coverAt(x, y), a = scene->alpha[y * alpha.width + x];
            result.holes += c == 255 && a == 0;
            result.uneven += c == 255 && std::abs(a - faceAlpha) > faceAlpha / 4;
            result.stray += c == 0 && a > 2 * bitAlpha;
            if (c == 0 || c == 255) continue;
            bool corner = false;
            for (const PATHREC *record = scene->path; record != scene->tail; record = record->nextPath)
                for (uint32_t i = 0; i < record->nodeCount; i++)
                    corner = corner ||
                             std::hypot(FixToDb(record->nodes[i].x) - x, FixToDb(record->nodes[i].y) - y) < cornerSize;
            if (corner) continue;
            const int off = std::abs(a * 255 / faceAlpha - c);
            result.worst = std::max(result.worst, off);
            result.edges++;
            sum += off;
        }
    result.mean = result.edges ? sum / result.edges : 0;
    return result;
}

/* A level edge goes to the nearest of five rows of the lattice, up to an eighth of a pixel off: 32 levels, 16 on the
 * average; an upright one to the nearest of nine columns, 16 and 8. Where the edge slants, middles that lie on the
 * lattice line itself add up to half of their number: four at most, 16 levels. */
constexpr int worstOfLattice = 32 + 16;
constexpr double meanOfLattice = 14;

TEST(Render, UnturnedEdgesAgreeWithTheMaskOfTheOutline)
{
    const struct {
        const char *name;
        PATHREC *path;
        double cornerSize;
    } cases[] = {{"box", MakeBox(20.3, 20.7, 90.1, 70.4), 4},
                 {"triangle", MakePath({{6, 20, 20}, {2, 100, 40}, {2, 30, 100}, {3, 20, 20}}), 6},
                 {"star", Star(), 4},
                 {"ell", Ell(), 4},
                 {"notch", Notch(), 6},
                 {"bend", Bend(), 4},
                 {"circle", MakeCircle(60, 60, 40.3), 0},
                 {"ring", Ring(), 0}};
    for (const auto &c : cases) {
        SCENE scene = MakeScene(c.path, 60, 120, 120);
        scene.camera.viewSize = 1e7;
        RenderFlat(&scene);
        const AGREEMENT got = Compare(&scene, scene.cover, scene.maskOrigin.x, scene.maskOrigin.y, c.cornerSize);
        EXPECT_GT(got.edges, 100) << c.name;
        EXPECT_LE(got.mean, meanOfLattice) << c.name;
        EXPECT_LE(got.worst, worstOfLattice) << c.name;
        EXPECT_EQ(0, got.stray) << c.name;
        EXPECT_EQ(0, got.holes) << c.name;
        /* some where more than two faces meet in one pixel */
        EXPECT_LE(got.uneven, 4) << c.name;
        SceneFree(&scene);
    }
}

/* The plain second form of a half plane's mask: the line cut to the pixel, its ends on the lattice, each middle on its
 * own. Middles on the lattice line may go either way. */
struct COUNT {
    int least;
    int most;
};

COUNT PlainCount(POINTDB a, POINTDB b, POINTDB inside)
{
    const POINTDB d = b - a;
    double t0 = -1e9, t1 = 1e9;
    const double at[2] = {a.x, a.y}, along[2] = {d.x, d.y};
    for (int axis = 0; axis < 2; axis++) {
        if (along[axis] == 0) continue;
        const double low = -at[axis] / along[axis], high = (1 - at[axis]) / along[axis];
        t0 = std::max(t0, std::min(low, high));
        t1 = std::min(t1, std::max(low, high));
    }
    const auto lattice = [](const POINTDB &p) {
        return POINTDB{std::floor(p.x * 8 + 0.5) / 8, std::floor(p.y * 4 + 0.5) / 4};
    };
    const POINTDB first = lattice(a + d * t0), last = lattice(a + d * t1);
    const auto side = [&inside](const POINTDB &p, const POINTDB &way, const POINTDB &m) {
        const double of = way.x * (m.y - p.y) - way.y * (m.x - p.x);
        return way.x * (inside.y - p.y) - way.y * (inside.x - p.x) > 0 ? of : -of;
    };
    if (t0 > t1 || (first.x == last.x && first.y == last.y)) {
        const int all = side(a, d, {0.5, 0.5}) > 0 ? 32 : 0;
        return {all, all};
    }
    COUNT count = {0, 0};
    for (int row = 0; row < 4; row++)
        for (int column = 0; column < 8; column++) {
            const double of = side(first, last - first, {(column + 0.5) / 8, (row + 0.5) / 4});
            count.least += of > 1e-9;
            count.most += of > -1e-9;
        }
    return count;
}

TEST(Render, UnturnedStraightEdgesHaveTheLatticeCoverageExactly)
{
    const struct {
        const char *name;
        PATHREC *path;
    } cases[] = {{"box", MakeBox(20.3, 20.7, 90.1, 70.4)},
                 {"triangle", MakePath({{6, 20, 20}, {2, 100, 40}, {2, 30, 100}, {3, 20, 20}})},
                 {"star", Star()},
                 {"ell", Ell()}};
    for (const auto &c : cases) {
        SCENE scene = MakeScene(c.path, 60, 120, 120);
        scene.camera.viewSize = 1e7;
        RenderFlat(&scene);
        const int n = static_cast<int>(c.path->nodeCount) - 1;
        const auto node = [&](int i) {
            const PATHNODE &p = c.path->nodes[i % n];
            return POINTDB{FixToDb(p.x) + 0.5, FixToDb(p.y) + 0.5};
        };
        int compared = 0;
        for (int i = 0; i < n; i++) {
            const POINTDB a = node(i), b = node(i + 1), d = (b - a) * (1 / Length(b - a));
            const POINTDB left = {-d.y, d.x}; /* the paths here run clockwise on the screen: inside */
            /* pixel by pixel along the edge, not where it ends or hardly touches the pixel */
            for (double t = 3; t < Length(b - a) - 3; t += 0.25) {
                const POINTDB p = a + d * t;
                const int x = static_cast<int>(p.x), y = static_cast<int>(p.y);
                const POINTDB origin = {static_cast<double>(x), static_cast<double>(y)};
                int least = 32, most = 0;
                for (const double nudge : {-1e-4, 0.0, 1e-4}) { /* a hair may round to another lattice point */
                    const POINTDB at = p + left * nudge - origin;
                    const COUNT count = PlainCount(at, at + d, at + left);
                    least = std::min(least, count.least);
                    most = std::max(most, count.most);
                }
                const int got = scene.alpha[y * 120 + x];
                ASSERT_GE(got, least * bitAlpha) << c.name << " " << x << "," << y;
                ASSERT_LE(got, most * bitAlpha + 1) << c.name << " " << x << "," << y;
                compared++;
            }
        }
        EXPECT_GT(compared, 500) << c.name;
        SceneFree(&scene);
    }
}

TEST(Render, NarrowCornersAreFilledUpToTheirTips)
{
    for (PATHREC *path : {MakePath({{6, 20, 20}, {2, 100, 40}, {2, 30, 100}, {3, 20, 20}}), Star(), Ell(),
                          MakeBox(20.3, 20.7, 90, 70)}) {
        SCENE scene = MakeScene(path, 60, 120, 120);
        scene.camera.viewSize = 1e7;
        RenderFlat(&scene);
        const BUFINFO cover = BufInfo(scene.cover);
        for (uint32_t i = 0; i + 1 < path->nodeCount; i++) {
            const int cx = static_cast<int>(FixToDb(path->nodes[i].x)),
                      cy = static_cast<int>(FixToDb(path->nodes[i].y));
            double want = 0, got = 0; /* whole pixels */
            for (int y = cy - 6; y <= cy + 6; y++)
                for (int x = cx - 6; x <= cx + 6; x++) {
                    const int mx = x - scene.maskOrigin.x, my = y - scene.maskOrigin.y;
                    if (BufHasPixel(cover, mx, my)) want += scene.cover[my * cover.width + mx] / 255.0;
                    got += scene.alpha[y * 120 + x] / double{faceAlpha};
                }
            /* a quarter of a pixel a row of the box at most where an edge is off by the lattice */
            EXPECT_NEAR(want, got, 2.5) << cx << "," << cy;
        }
        SceneFree(&scene);
    }
}

TEST(Render, TurnedFacesAgreeWithTheProjectedOutline)
{
    const struct {
        const char *name;
        PATHREC *(*make)();
        tagPOINT3D axis;
        double degrees;
    } cases[] = {
        {"box by x", [] { return MakeBox(20, 20, 90, 70); }, {1, 0, 0}, 50},
        {"box by y", [] { return MakeBox(20, 20, 90, 70); }, {0, 1, 0}, -40},
        {"star", Star, {0.6, 0.8, 0}, 35},
        {"ell", Ell, {0, 1, 0}, 45},
        {"ell by z", Ell, {0, 0, 1}, 30},
        {"ring", Ring, {0.8, 0.6, 0}, 30},
    };
    for (const auto &c : cases) {
        SCENE scene = MakeScene(c.make(), 60, 120, 120);
        scene.camera.viewSize = 300;
        Turn(&scene, c.axis, c.degrees);
        RenderFlat(&scene);

        /* The renderer's half pixel comes before the projection, the mask's behind it. */
        PATHREC *copy = nullptr;
        for (const PATHREC *record = scene.path; record != scene.tail; record = record->nextPath) {
            std::vector<TESTNODE> nodes;
            for (uint32_t i = 0; i < record->nodeCount; i++)
                nodes.push_back(
                    {record->nodes[i].type, FixToDb(record->nodes[i].x) + 0.5, FixToDb(record->nodes[i].y) + 0.5});
            PATHREC *made = MakePath(nodes);
            if (copy)
                Chain(copy, made);
            else
                copy = made;
        }
        ZrPathTo3D(copy, &scene.camera);
        for (PATHREC *record = copy; record; record = record->nextPath)
            for (uint32_t i = 0; i < record->nodeCount; i++) {
                record->nodes[i].x -= 0x8000;
                record->nodes[i].y -= 0x8000;
            }
        tagRECT *rects;
        PATHBUF *bufs;
        ASSERT_EQ(1, ZrPathToBuf(copy, 8, 0, 1, 0, 0x10000, &rects, &bufs, 0));
        const AGREEMENT got = Compare(&scene, bufs[0], rects[0].left, rects[0].top, 0);
        EXPECT_EQ(0, got.holes) << c.name;
        EXPECT_EQ(0, got.stray) << c.name;
        EXPECT_LE(got.uneven, 6) << c.name;
        EXPECT_LE(got.worst, worstOfLattice) << c.name;
        EXPECT_LE(got.mean, 2 * meanOfLattice) << c.name; /* the turned boxes' level edges all lie the same way */
        ZrPathBufFree(bufs[0]);
        FreeGlobals(rects, bufs);
        ZrPathDeletePtr(copy, 0);
        SceneFree(&scene);
    }
}

TEST(Render, OpaqueFacesHaveNoHolesEither)
{
    for (PATHREC *(*make)() : {Star, Ell, Ring}) {
        SCENE scene = MakeScene(make(), 60, 120, 120);
        scene.camera.viewSize = 1e7;
        FlattenProfile();
        const double light[3] = {0, 0, 1}; /* the highlight saturates */
        EXPECT_EQ(1, Render(&scene, {60, noProfile, 0, 0, 0}, light));
        const BUFINFO cover = BufInfo(scene.cover);
        int thin = 0;
        for (int y = 0; y < cover.height; y++)
            for (int x = 0; x < cover.width; x++) {
                if (scene.cover[y * cover.width + x] < 255) continue;
                const int a = scene.alpha[(y + scene.maskOrigin.y) * 120 + x + scene.maskOrigin.x];
                EXPECT_NE(0, a) << x << "," << y;
                thin += a < 128;
            }
        EXPECT_LE(thin, 2); /* in the middle of the star, where ten faces meet */
        SceneFree(&scene);
    }
}

TEST(Render, NullArgumentsGiveZero)
{
    SCENE s = MakeScene(MakeBox(20, 20, 50, 50), 40, 60, 60);
    const uint32_t colour = 0;
    const auto call = [&](PATHREC *path, const POINTFXMAT3D *camera, PATHBUF col, PATHBUF alpha, PATHBUF mask) {
        return ZrPathABufRender(path, camera, col, alpha, 0, nullptr, nullptr, &colour, mask, s.surface, 0, 0, 0, 0, 0,
                                0, 0, 1, 0, 40, 0, 1, 0, nullptr, 0);
    };
    EXPECT_EQ(0, call(nullptr, &s.camera, s.colour, s.alpha, s.mask));
    EXPECT_EQ(0, call(s.path, nullptr, s.colour, s.alpha, s.mask));
    EXPECT_EQ(0, call(s.path, &s.camera, nullptr, s.alpha, s.mask));
    EXPECT_EQ(0, call(s.path, &s.camera, s.colour, nullptr, s.mask));
    EXPECT_EQ(0, call(s.path, &s.camera, s.colour, s.alpha, nullptr));
    EXPECT_EQ(1, call(s.path, &s.camera, s.colour, s.alpha, s.mask));
    SceneFree(&s);
}

TEST(Render, WidthsOfZeroAndFarBeyond)
{
    SCENE scene = MakeScene(MakeBox(20, 20, 50, 50), 40, 60, 60);
    /* a bevel of one pixel has two halves that are no whole step long: no strip */
    for (const int32_t width : {0, 1, -1, INT32_MIN}) {
        EXPECT_EQ(1, Render(&scene, {width, 0, 1, 0, 0}, lightFromBehind));
        EXPECT_EQ(0, CountAlpha(&scene)) << width;
    }
    for (const int32_t width : {3, 1000, INT32_MAX}) {
        EXPECT_EQ(1, Render(&scene, {width, 1, 1, 0, 0}, lightFromBehind));
        EXPECT_GT(CountAlpha(&scene), 100) << width;
    }
    SceneFree(&scene);
}

TEST(Render, WildTransformsAreSafe)
{
    SCENE scene = MakeScene(Ell(), 40, 120, 120);
    const POINTFXMAT3D good = scene.camera;
    const double big = 1e308;
    const tagMATRIX3D matrices[] = {{{0, 0, 0, 0, 0, 0, 0, 0, 0}},
                                    {{1, 0, 0, 1, 0, 0, 1, 0, 0}},
                                    {{0, 0, 1, 0, 1, 0, -1, 0, 0}},
                                    {{NAN, 0, 0, 0, 1, 0, 0, 0, 1}},
                                    {{big, big, big, big, big, big, big, big, big}},
                                    {{100, 0, 0, 0, 100, 0, 0, 0, 100}}};
    for (const tagMATRIX3D &matrix : matrices)
        for (const double viewSize : {0.0, -50.0, 1.0, 20.0, 1e300}) {
            scene.camera = good;
            scene.camera.matrix = matrix;
            scene.camera.viewSize = viewSize;
            EXPECT_EQ(1, Render(&scene, {40, 0, 1, 0, 0}, lightFromBehind));
        }
    for (const double angle : {0.0, 180.0, 360.0, -40.0, static_cast<double>(NAN)}) {
        scene.camera = good;
        scene.camera.viewAngle = angle;
        EXPECT_EQ(1, Render(&scene, {40, 0, 1, 0, 0}, lightFromBehind));
    }
    SceneFree(&scene);
}

TEST(Render, BuffersOfAnySizeAndDepthAreSafe)
{
    SCENE scene = MakeScene(Ell(), 40, 120, 120);
    const uint32_t colour = 0x102030;
    const int32_t sizes[][2] = {{0, 0}, {1, 1}, {13, 200}, {200, 13}, {40, 40}};
    for (const auto &a : sizes)
        for (const auto &b : sizes) {
            PATHBUF bufs[4] = {ZrPathBufAlloc(24, a[0], a[1]), ZrPathBufAlloc(8, b[0], b[1]),
                               ZrPathBufAlloc(32, b[0], a[1]), ZrPathBufAlloc(0x40, a[0], b[1])};
            EXPECT_EQ(1, ZrPathABufRender(scene.path, &scene.camera, bufs[0], bufs[1], 0, nullptr, nullptr, &colour,
                                          bufs[2], scene.surface, 0, 0, 0, 0, 0, 0, 0, 1, 0, 40, 0, 1, 0, nullptr, 0));
            EXPECT_EQ(1, ZrPathABufRender(scene.path, &scene.camera, bufs[0], bufs[1], 0, nullptr, &scene.maskOrigin,
                                          nullptr, scene.mask, bufs[3], 0, 0, 0, 0, 0, 0, 0, 1, 0, 40, 0, 1, 0, nullptr,
                                          0));
            for (PATHBUF buf : bufs) ZrPathBufFree(buf);
        }
    /* a mask and a surface of other depths are taken for none */
    EXPECT_EQ(1,
              ZrPathABufRender(scene.path, &scene.camera, scene.colour, scene.alpha, 0, nullptr, &scene.maskOrigin,
                               &colour, scene.cover, scene.cover, 0, 0, 0, 0, 0, 0, 0, 1, 0, 40, 0, 1, 0, nullptr, 0));
    EXPECT_EQ(0, CountAlpha(&scene));
    SceneFree(&scene);
}

TEST(Render, EmptyMasksRenderNothing)
{
    SCENE scene = MakeScene(Ell(), 40, 120, 120);
    const BUFINFO info = BufInfo(scene.mask);
    for (const uint8_t fill : {uint8_t(0), uint8_t(255)}) {
        std::fill(scene.mask, scene.mask + info.stride * static_cast<size_t>(info.height), fill);
        EXPECT_EQ(1, Render(&scene, {}, lightFromBehind));
        if (fill) {
            EXPECT_EQ(0, CountAlpha(&scene));
        }
    }
    SceneFree(&scene);
}

TEST(Render, OutputOrigin)
{
    SCENE scene = MakeScene(MakeBox(20, 20, 80, 80), 40, 100, 100);
    EXPECT_EQ(1, Render(&scene, {}, lightFromBehind));
    const std::vector<uint8_t> whole(scene.alpha, scene.alpha + 10000);
    const tagPOINT origin = {15, 25};
    const uint32_t colour = 0x003070E0;
    EXPECT_EQ(1, ZrPathABufRender(scene.path, &scene.camera, scene.colour, scene.alpha, 0, &origin, &scene.maskOrigin,
                                  &colour, scene.mask, scene.surface, 0, 0, 0, 0, 0, 0, 0, 1, 0, 40, 0, 1, 0,
                                  lightFromBehind, 0));
    for (int y = 0; y < 75; y++)
        for (int x = 0; x < 85; x++)
            ASSERT_NEAR(whole[static_cast<size_t>((y + 25) * 100 + x + 15)], scene.alpha[y * 100 + x], 1)
                << x << "," << y;
    SceneFree(&scene);
}

TEST(Render, WhatIsCutOffLeavesTheRestAsItIs)
{
    for (PATHREC *(*make)() : {Star, Ell, Ring}) {
        SCENE scene = MakeScene(make(), 40, 120, 120);
        Turn(&scene, {0.6, 0.8, 0}, 30);
        EXPECT_EQ(1, Render(&scene, {40, 0, 1, 0, 0}, lightFromBehind));
        const std::vector<uint8_t> whole(scene.alpha, scene.alpha + 120 * 120);
        const uint32_t colour = 0x003070E0;
        for (const tagPOINT origin : {tagPOINT{60, 0}, tagPOINT{0, 60}, tagPOINT{50, 50}, tagPOINT{-70, -70}}) {
            EXPECT_EQ(1, ZrPathABufRender(scene.path, &scene.camera, scene.colour, scene.alpha, 0, &origin,
                                          &scene.maskOrigin, &colour, scene.mask, scene.surface, 0, 0, 0, 0, 0, 0, 0, 1,
                                          0, 40, 0, 0, 0, lightFromBehind, 0));
            int different = 0;
            for (int y = 0; y < 120; y++)
                for (int x = 0; x < 120; x++) {
                    const int wx = x + origin.x, wy = y + origin.y;
                    if (wx < 0 || wx >= 120 || wy < 0 || wy >= 120) continue;
                    const int off = scene.alpha[y * 120 + x] - whole[static_cast<size_t>(wy * 120 + wx)];
                    different += std::abs(off) > 16;
                }
            /* a rim or a fan that is walked from another point on rounds some pixels of its edges otherwise */
            EXPECT_LE(different, 6) << origin.x << "," << origin.y;
        }
        SceneFree(&scene);
    }
}

TEST(Render, RandomPathsAreSafe)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> any(-20, 80);
    for (int n = 0; n < 60; n++) {
        std::vector<TESTNODE> nodes = {{6, any(random), any(random)}};
        for (int i = 0; i < 12; i++) {
            const TESTNODE node = {2, any(random), any(random)};
            if (random() % 3 == 0)
                for (int k = 0; k < 3; k++) nodes.push_back({4, any(random), any(random)});
            else if (random() % 8 == 0)
                nodes.push_back({6, any(random), any(random)});
            else if (random() % 8 == 0)
                nodes.push_back({2, nodes.back().x, nodes.back().y});
            else
                nodes.push_back(node);
        }
        SCENE scene = MakeScene(MakePath(nodes), 30, 60, 60);
        Turn(&scene, {0.6, 0.8, 0}, n * 6.0);
        const int32_t profiles[] = {0, 1, 100, 101, 102, 103, 104};
        EXPECT_EQ(1, Render(&scene, {30, profiles[n % 7], n % 2, 0, n % 3 == 0}, nullptr));
        SceneFree(&scene);
    }
}

TEST(Render, FailingMemoryLeavesEverythingConsistent)
{
    SCENE scene = MakeScene(Ell(), 40, 120, 120);
    Turn(&scene, {0.6, 0.8, 0}, 30);
    for (const ALLOCATOR allocator : {ALLOC_SURFACEHEAP, ALLOC_BUF, ALLOC_GLOBAL}) {
        const int64_t before = FaultLiveBlocks(allocator);
        for (int64_t n = 1;; n++) {
            FaultSet(allocator, n);
            const int32_t result = Render(&scene, {40, 0, 1, 0, 0}, lightFromBehind);
            const int struck = FaultStruck();
            FaultSet(allocator, 0);
            EXPECT_EQ(before, FaultLiveBlocks(allocator));
            /* only a band's plane is missed */
            EXPECT_EQ(allocator == ALLOC_BUF && n == 1 ? 0 : 1, result);
            if (!struck) break;
            ASSERT_LT(n, 1000);
        }
    }
    SceneFree(&scene);
}

} // namespace
