/* wireframe_test.cpp - the preview's calls on the device context, its fallback, and the bounds in space. */
#include "frame/frame.h"
#include "platform/platform.h"
#include "store/store.h"
#include "support/recorder.h"
#include "support/shapes.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

using namespace zr32;
using namespace zr32test;

namespace {

const tagMATRIX3D identity = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};

/* Eye far above (0, 0), the picture as it is. */
POINTFXMAT3D Flat(double viewSize = 1e9)
{
    POINTFXMAT3D t = {};
    t.viewSize = viewSize;
    t.viewAngle = 60;
    t.matrix = identity;
    return t;
}

TEST(Bounds3D, SingleLineHasTheMarginOnAllSides)
{
    PATHREC *path = MakePath({{6, 10.5, 20.5}, {2, 30.5, 50.5}});
    const POINTFXMAT3D t = Flat();
    tagRECT rect = {};
    ZrPathGet3DMiniMaxRect(path, &t, 0, 0, &rect);
    EXPECT_EQ(5, rect.left);
    EXPECT_EQ(15, rect.top);
    EXPECT_EQ(36, rect.right);
    EXPECT_EQ(56, rect.bottom);
    ZrPathDeletePtr(path, 0);
}

TEST(Bounds3D, DepthGrowsWithThePerspectiveOfTheBack)
{
    PATHREC *path = MakeBox(-100, -100, 100, 100);
    POINTFXMAT3D t = Flat(500);
    t.shift = {DbToFix(1000), 0}; /* off the eye's foot: a farther face is drawn nearer to it */
    tagRECT shallow = {}, deep = {};
    ZrPathGet3DMiniMaxRect(path, &t, 0, 0, &shallow);
    ZrPathGet3DMiniMaxRect(path, &t, 0, 5000, &deep);
    EXPECT_LT(deep.left, shallow.left);
    EXPECT_EQ(deep.right, shallow.right);
    /* the eye is at 500 / tan 30 = 866: k = 866 / 5866, left = 900 k = 132.8, with the margin 127 */
    EXPECT_EQ(127, deep.left);

    tagRECT ahead = {}; /* a front face at a z of its own, a depth below 0 */
    ZrPathGet3DMiniMaxRect(path, &t, 400, -400, &ahead);
    EXPECT_GT(ahead.right, shallow.right);
    ZrPathDeletePtr(path, 0);
}

TEST(Bounds3D, SeedCountsEvenWithoutOtherPoints)
{
    /* Node 1 belongs to a shape: it counts for the seed, the midpoint of nodes 0 and 1, but not for the walk. */
    PATHREC *path = MakePath({{6, 10, 10}, {0x200, 40, 60}});
    const POINTFXMAT3D t = Flat();
    tagRECT rect = {};
    ZrPathGet3DMiniMaxRect(path, &t, 0, 0, &rect);
    EXPECT_NEAR(5, rect.left, 1);
    EXPECT_NEAR(5, rect.top, 1);
    EXPECT_NEAR(31, rect.right, 1);
    EXPECT_NEAR(41, rect.bottom, 1);
    ZrPathDeletePtr(path, 0);

    path = MakePath({{6, 10.5, 10.5}});
    ZrPathGet3DMiniMaxRect(path, &t, 0, 0, &rect);
    EXPECT_EQ(5, rect.left);
    EXPECT_EQ(16, rect.right);
    ZrPathDeletePtr(path, 0);

    path = ZrPathCreate();
    rect = {1, 2, 3, 4};
    ZrPathGet3DMiniMaxRect(path, &t, 0, 0, &rect);
    EXPECT_EQ(4, rect.bottom);
    ZrPathGet3DMiniMaxRect(nullptr, &t, 0, 0, &rect);
    ZrPathGet3DMiniMaxRect(path, nullptr, 0, 0, &rect);
    ZrPathGet3DMiniMaxRect(path, &t, 0, 0, nullptr);
    EXPECT_EQ(1, rect.left);
    ZrPathDeletePtr(path, 0);
}

TEST(Bounds3D, ControlPointsAndTheJoinChainOfTheHeadCount)
{
    PATHREC *head = MakePath({{6, 0.5, 0.5}, {4, 90.5, 0.5}, {4, 0.5, -70.5}, {4, 1.5, 1.5}});
    PATHREC *joined = MakePath({{6, -33.5, 0.5}});
    PATHREC *apart = MakePath({{6, 500, 500}});
    ChainLink(tableChain, head, joined);
    ChainLink(tableChain, joined, apart);
    ChainLink(joinChain, head, joined);
    const POINTFXMAT3D t = Flat();
    tagRECT rect = {};
    ZrPathGet3DMiniMaxRect(apart, &t, 0, 0, &rect);
    EXPECT_EQ(-33 - 5, rect.left);
    EXPECT_EQ(-70 - 5, rect.top);
    EXPECT_EQ(90 + 6, rect.right);
    EXPECT_EQ(1 + 6, rect.bottom);
    ZrPathDeletePtr(head, 0);
}

TEST(Bounds3D, PointsAtInfinityAreSafe)
{
    PATHREC *path = MakePath({{6, 100, 0}, {2, 200, 0}});
    POINTFXMAT3D t = Flat();
    t.viewSize = t.viewAngle = 0;
    tagRECT rect = {};
    ZrPathGet3DMiniMaxRect(path, &t, INT32_MAX, INT32_MIN, &rect);
    t = Flat(100);
    t.matrix = {{0, 0, 1e300, 0, 0, 1e300, 0, 0, 1e300}};
    ZrPathGet3DMiniMaxRect(path, &t, 1, 1, &rect);
    ZrPathDeletePtr(path, 0);
}

/* What is drawn: "Mx,y", "Lx,y", "Bx,y bx,y bx,y". */
std::string Draw(PATHREC *path, int32_t w, int32_t h, const COORDSTRUCT *view, POINTFXMAT3D *t, int32_t depth)
{
    RECORDER recorder;
    ZrPath3DWireFrame(recorder.dc, path, w, h, view, t, depth);
    std::ostringstream out;
    for (const std::string &call : recorder.Take()) {
        std::istringstream in(call);
        std::string word, x, y;
        in >> word;
        if (word != "move" && word != "line" && word != "bezier") continue;
        const char follower = word == "bezier" ? 'b' : 0;
        for (char letter = static_cast<char>(std::toupper(word[0])); in >> x >> y; letter = follower)
            out << letter << x << ',' << y << ' ';
    }
    return out.str();
}

COORDSTRUCT View(int32_t zoom)
{
    COORDSTRUCT view = {};
    view.zoom = zoom;
    return view;
}

/* The eye at exactly z = 100, so that depth 100 halves what is seen: tan of half the angle is 1 to many digits. */
POINTFXMAT3D Near()
{
    POINTFXMAT3D t = Flat();
    t.viewAngle = 90;
    t.viewSize = 100 * std::tan(90 * 0.5 * 3.14159 * 0.005555555555555556);
    return t;
}

TEST(Wireframe, DepthZeroDrawsTheFrontOnly)
{
    PATHREC *path = MakePath({{6, 10, 10}, {2, 20, 10}, {4, 22, 12}, {4, 22, 18}, {5, 10, 10}});
    POINTFXMAT3D t = Near();
    const COORDSTRUCT view = View(1);
    EXPECT_EQ("M10,10 L20,10 M20,10 B22,12 b22,18 b10,10 ", Draw(path, 1, 1, &view, &t, 0));
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, LineWithDepthIsARibbonOfThreeLines)
{
    PATHREC *path = MakePath({{6, 10, 20}, {2, 40, 20}});
    POINTFXMAT3D t = Near();
    const COORDSTRUCT view = View(1);
    EXPECT_EQ("M10,20 L5,10 M10,20 L40,20 L20,10 L5,10 ", Draw(path, 1, 1, &view, &t, 100));
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, CurveWithDepthRunsBackThroughItsControls)
{
    PATHREC *path = MakePath({{6, 10, 20}, {4, 20, 40}, {4, 30, 40}, {4, 40, 20}});
    POINTFXMAT3D t = Near();
    const COORDSTRUCT view = View(1);
    EXPECT_EQ("M10,20 L5,10 M10,20 B20,40 b30,40 b40,20 L20,10 B15,20 b10,20 b5,10 ", Draw(path, 1, 1, &view, &t, 100));
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, NegativeDepthComesTowardsTheEye)
{
    PATHREC *path = MakePath({{6, 10, 20}});
    POINTFXMAT3D t = Near();
    const COORDSTRUCT view = View(1);
    EXPECT_EQ("M10,20 L20,40 ", Draw(path, 1, 1, &view, &t, -50));
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, BackFaceAtTheEyeFaultsNowhere)
{
    PATHREC *path = MakePath({{6, 10, 20}, {4, 20, 40}, {4, 30, 40}, {4, 40, 20}});
    POINTFXMAT3D t = Flat(100);
    t.viewAngle = 90;
    t.viewSize = 0; /* the eye lies in the picture */
    const COORDSTRUCT view = View(1);
    Draw(path, 1, 1, &view, &t, 0);
    t = Near();
    Draw(path, 1, 1, &view, &t, -100);
    Draw(path, 1, 1, &view, &t, INT32_MIN);
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, HalfPixelOnlyWhereTheViewEnlarges)
{
    PATHREC *path = MakePath({{6, 11, 21}, {2, 31, 41}});
    POINTFXMAT3D t = Flat();
    COORDSTRUCT view = View(2);
    view.left = 1000;
    view.top = 2000;
    view.scrollX = 100;
    view.scrollY = 200;
    EXPECT_EQ("M923,1843 L963,1883 ", Draw(path, 1, 1, &view, &t, 0));
    view.zoom = 1000; /* 11.5 x 1000 - 100 + 1000, 21.5 x 1000 - 200 + 2000; 31.5 and 41.5 */
    EXPECT_EQ("M12400,23300 L32400,43300 ", Draw(path, 1, 1, &view, &t, 0));
    view.zoom = -2;
    EXPECT_EQ("M905,1810 L915,1820 ", Draw(path, 1, 1, &view, &t, 0));
    view.zoom = INT32_MIN;
    EXPECT_EQ("M900,1800 L900,1800 ", Draw(path, 1, 1, &view, &t, 0));
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, WalksTheJoinChainOfTheHeadAndStepsOverShapes)
{
    PATHREC *head = MakePath({{6, 1, 1}, {0x100, 50, 50}, {0x100, 0, 0}, {2, 3, 3}});
    PATHREC *joined = MakePath({{6, 5, 5}, {2, 7, 7}});
    ChainLink(tableChain, head, joined);
    ChainLink(joinChain, head, joined);
    POINTFXMAT3D t = Near();
    const COORDSTRUCT view = View(1);
    EXPECT_EQ("M1,1 L3,3 M5,5 L7,7 ", Draw(joined, 1, 1, &view, &t, 0));
    ZrPathDeletePtr(head, 0);
}

TEST(Wireframe, FrameBehindTheEyeFallsBackToTheLastGoodTransform)
{
    PATHREC *path = MakePath({{6, 10, 20}, {2, 40, 20}});
    const COORDSTRUCT view = View(1);
    POINTFXMAT3D good = Near();
    good.shift = {DbToFix(3), 0};
    Draw(path, 10, 10, &view, &good, 0);

    /* x becomes z: a corner of x = 101 reaches 101, and the eye is at 100. */
    POINTFXMAT3D t = Near();
    t.matrix = {{0, 0, 1, 0, 1, 0, -1, 0, 0}};
    EXPECT_EQ("M13,20 L43,20 ", Draw(path, 101, 10, &view, &t, 0));
    EXPECT_EQ(0, memcmp(&good, &t, sizeof t));

    t.matrix = {{0, 0, 1, 0, 1, 0, -1, 0, 0}};
    const POINTFXMAT3D turned = t;
    Draw(path, 99, 10, &view, &t, 0); /* this frame stays in front of the eye */
    EXPECT_EQ(0, memcmp(&turned, &t, sizeof t));
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, EqualityPassesAndNaNFails)
{
    PATHREC *path = MakePath({{6, 10, 20}});
    const COORDSTRUCT view = View(1);
    POINTFXMAT3D good = Near();
    Draw(path, 10, 10, &view, &good, 0);

    POINTFXMAT3D equal = Flat();
    equal.viewSize = 0; /* the eye at z 0, and so are the corners */
    POINTFXMAT3D t = equal;
    Draw(path, 10, 10, &view, &t, 0);
    EXPECT_EQ(0, memcmp(&equal, &t, sizeof t));

    Draw(path, 10, 10, &view, &good, 0);
    t = Near();
    t.matrix.m[2] = NAN;
    Draw(path, 10, 10, &view, &t, 0);
    EXPECT_EQ(0, memcmp(&good, &t, sizeof t));
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, NoGoodTransformAtAllEndsWithoutDrawing)
{
    PATHREC *path = MakePath({{6, 10, 20}, {2, 3, 4}});
    const COORDSTRUCT view = View(1);
    POINTFXMAT3D good = Near();
    Draw(path, 1, 1, &view, &good, 0);
    POINTFXMAT3D bad = good;
    bad.matrix = {{0, 0, 1, 0, 1, 0, -1, 0, 0}};
    POINTFXMAT3D kept = bad;
    kept.viewSize = 1e6;
    Draw(path, 1, 1, &view, &kept, 0);
    /* A frame this large fails under the stored copy too: the caller's record holds the copy all the same. */
    EXPECT_EQ("", Draw(path, INT32_MIN, 10, &view, &bad, 0));
    EXPECT_EQ(0, memcmp(&kept, &bad, sizeof bad));
    ZrPathDeletePtr(path, 0);
}

TEST(Wireframe, NullContextOrViewStillTestsAndStores)
{
    PATHREC *path = MakePath({{6, 10, 20}});
    const COORDSTRUCT view = View(1);
    POINTFXMAT3D first = Near();
    first.shift = {DbToFix(8), 0};
    ZrPath3DWireFrame(nullptr, path, 1, 1, &view, &first, 0);
    POINTFXMAT3D bad = Near();
    bad.matrix.m[2] = NAN;
    Draw(path, 1, 1, nullptr, &bad, 0);
    EXPECT_EQ(0, memcmp(&first, &bad, sizeof bad));

    bad.matrix.m[2] = NAN;
    const POINTFXMAT3D before = bad;
    Draw(nullptr, 1, 1, &view, &bad, 0);
    EXPECT_EQ(0, memcmp(&before, &bad, sizeof bad));
    Draw(path, 1, 1, &view, nullptr, 0);
    ZrPathDeletePtr(path, 0);
}

} // namespace
