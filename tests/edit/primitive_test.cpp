#include "frame/faults.h"
#include "store/store.h"
#include "support/document.h"

#include <gtest/gtest.h>
#include <limits>

using namespace zr32;
using namespace zr32test;

namespace {

/* Frame centre (cx, cy) and half sizes for a view whose window coordinates are image coordinates plus 0.5. */
struct PRIMITIVE {
    PATHREC *path = nullptr;
    int32_t result;
    PRIMITIVE(int32_t kind, RECT drag, int32_t zoom = 1, int32_t center = 0)
    {
        ZrPathInit();
        COORDSTRUCT view = {};
        view.zoom = zoom;
        result = ZrPathGetPrimitive(kind, nullptr, &path, &view, center, 0, &drag);
    }
    ~PRIMITIVE()
    {
        ZrPathDeletePtr(path, 0);
    }
    tagRECT Box() const
    {
        tagRECT box;
        ZrPathGetRealRect(path, fixedOne, &box);
        return box;
    }
};

/* Nodes as whole pixels off the frame's centre. */
std::vector<NODEVALUE> AboutCentre(const PATHREC *path, double cx, double cy)
{
    std::vector<NODEVALUE> nodes = NodesOf(path);
    for (NODEVALUE &node : nodes) {
        node.x -= cx;
        node.y -= cy;
    }
    return nodes;
}

void ExpectNear(const std::vector<NODEVALUE> &nodes, const std::vector<NODEVALUE> &want)
{
    ASSERT_EQ(nodes.size(), want.size());
    for (size_t i = 0; i < nodes.size(); i++) {
        EXPECT_EQ(nodes[i].type, want[i].type) << i;
        EXPECT_NEAR(nodes[i].x, want[i].x, 2.0 / 65536) << i;
        EXPECT_NEAR(nodes[i].y, want[i].y, 2.0 / 65536) << i;
    }
}

} // namespace

TEST(Primitive, ADragWithoutWidthOrHeightGivesNoRecord)
{
    const PRIMITIVE narrow(ZRPRIM_ELLIPSE, {10, 10, 10, 50});
    const PRIMITIVE flat(ZRPRIM_ELLIPSE, {10, 10, 50, 10});
    EXPECT_EQ(narrow.result, 0);
    EXPECT_EQ(flat.result, 0);
    EXPECT_EQ(narrow.path, nullptr);
    EXPECT_EQ(flat.path, nullptr);
}

TEST(Primitive, TheDirectionOfTheDragDoesNotMatter)
{
    const PRIMITIVE a(ZRPRIM_RECTANGLE, {20, 30, 120, 90});
    const PRIMITIVE b(ZRPRIM_RECTANGLE, {120, 30, 20, 90});
    const PRIMITIVE c(ZRPRIM_RECTANGLE, {120, 90, 20, 30});
    EXPECT_EQ(NodesOf(a.path), NodesOf(b.path));
    EXPECT_EQ(NodesOf(a.path), NodesOf(c.path));
    /* centre (70, 60) less the half pixel, half sizes 50 and 30 */
    ExpectNear(AboutCentre(a.path, 69.5, 59.5), {{6, -50, 30}, {2, 50, 30}, {2, 50, -30}, {2, -50, -30}, {3, -50, 30}});
}

TEST(Primitive, ACentredDragIsTheHalfSize)
{
    const PRIMITIVE p(ZRPRIM_RECTANGLE, {100, 100, 110, 105}, 1, 1);
    ExpectNear(AboutCentre(p.path, 99.5, 99.5), {{6, -10, 5}, {2, 10, 5}, {2, 10, -5}, {2, -10, -5}, {3, -10, 5}});
}

TEST(Primitive, ViewPixelsFollowTheZoom)
{
    const PRIMITIVE enlarged(ZRPRIM_RECTANGLE, {0, 0, 100, 40}, 2);
    EXPECT_EQ(NodesOf(enlarged.path)[1].x - NodesOf(enlarged.path)[0].x, 50);
    EXPECT_EQ(NodesOf(enlarged.path)[0].x, -0.5);
    const PRIMITIVE reduced(ZRPRIM_RECTANGLE, {0, 0, 100, 40}, -3);
    EXPECT_EQ(NodesOf(reduced.path)[1].x - NodesOf(reduced.path)[0].x, 300);
}

TEST(Primitive, TheViewsPlaceAndScrollCount)
{
    ZrPathInit();
    COORDSTRUCT view = {};
    view.left = 10;
    view.top = 20;
    view.scrollX = 5;
    view.scrollY = 7;
    view.zoom = 1;
    PATHREC *path = nullptr;
    const RECT drag = {10, 20, 30, 60};
    EXPECT_EQ(ZrPathGetPrimitive(ZRPRIM_RECTANGLE, nullptr, &path, &view, 0, 0, &drag), 1);
    EXPECT_EQ(NodesOf(path)[3], (NODEVALUE{2, 4.5, 6.5}));
    ZrPathDeletePtr(path, 0);
}

TEST(Primitive, AnEllipseIsFourCurvesFromTheSideOfGreaterY)
{
    const PRIMITIVE p(ZRPRIM_ELLIPSE, {0, 0, 200, 100});
    EXPECT_EQ(p.path->primitive, ZRPRIM_ELLIPSE);
    EXPECT_EQ(p.path->flags, PATHREC_SELECTED);
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, p.path), RecordBlockSize(13));
    const double kw = 55.22847;
    const double kh = 27.614235;
    ExpectNear(AboutCentre(p.path, 99.5, 49.5), {{6, 0, 50},
                                                 {4, kw, 50},
                                                 {4, 100, kh},
                                                 {4, 100, 0},
                                                 {4, 100, -kh},
                                                 {4, kw, -50},
                                                 {4, 0, -50},
                                                 {4, -kw, -50},
                                                 {4, -100, -kh},
                                                 {4, -100, 0},
                                                 {4, -100, kh},
                                                 {4, -kw, 50},
                                                 {5, 0, 50}});
}

TEST(Primitive, AnyOtherKindIsADiamondThatKeepsItsKind)
{
    for (const int32_t kind : {4, 0, 6, -1}) {
        const PRIMITIVE p(kind, {0, 0, 40, 20});
        EXPECT_EQ(p.path->primitive, kind);
        ExpectNear(AboutCentre(p.path, 19.5, 9.5), {{6, 0, 10}, {2, 20, 0}, {2, 0, -10}, {2, -20, 0}, {3, 0, 10}});
    }
}

TEST(Primitive, ARoundedRectanglesRadiusIsAThirdOfTheLongerSideAtMostTheShorter)
{
    const struct {
        RECT drag;
        double w, h, r;
    } cases[] = {{{0, 0, 60, 18}, 30, 9, 9}, {{0, 0, 60, 24}, 30, 12, 10}, {{0, 0, 24, 60}, 12, 30, 10}};
    for (const auto &c : cases) {
        const PRIMITIVE p(ZRPRIM_ROUNDRECT, c.drag);
        const double x = c.w;
        const double y = c.h;
        const double r = c.r;
        const double q = 0.5522847 * r;
        ExpectNear(AboutCentre(p.path, c.w - 0.5, c.h - 0.5), {{6, x - r, y},
                                                               {4, x - r + q, y},
                                                               {4, x, y - r + q},
                                                               {4, x, y - r},
                                                               {2, x, -y + r},
                                                               {4, x, -y + r - q},
                                                               {4, x - r + q, -y},
                                                               {4, x - r, -y},
                                                               {2, -x + r, -y},
                                                               {4, -x + r - q, -y},
                                                               {4, -x, -y + r - q},
                                                               {4, -x, -y + r},
                                                               {2, -x, y - r},
                                                               {4, -x, y - r + q},
                                                               {4, -x + r - q, y},
                                                               {4, -x + r, y},
                                                               {3, x - r, y}});
    }
}

TEST(Primitive, ABarsLowerSideIsUnevenlySpaced)
{
    const PRIMITIVE p(ZRPRIM_BAR, {0, 0, 120, 20}); /* a step is 10 */
    const std::vector<NODEVALUE> n = AboutCentre(p.path, 59.5, 9.5);
    ASSERT_EQ(n.size(), 27u);
    EXPECT_EQ(n[0], (NODEVALUE{6, -60, -10}));
    for (uint32_t i = 1; i <= 12; i++) {
        EXPECT_EQ(n[i].type, 4);
        EXPECT_NEAR(n[i].x, -60 + 10.0 * i, 2.0 / 65536);
        EXPECT_EQ(n[i].y, -10);
    }
    EXPECT_EQ(n[13], (NODEVALUE{2, 60, 10}));
    EXPECT_NEAR(n[14].x, 40, 2.0 / 65536) << "two steps from the right edge";
    for (uint32_t i = 14; i <= 24; i++) {
        EXPECT_EQ(n[i].type, 4);
        EXPECT_NEAR(n[i].x, 60 + (12.0 - i) * 10, 2.0 / 65536);
        EXPECT_EQ(n[i].y, 10);
    }
    EXPECT_NEAR(n[24].x, -60, 2.0 / 65536) << "on the left edge already";
    EXPECT_EQ(n[25], (NODEVALUE{4, -60, 10}));
    EXPECT_EQ(n[26], (NODEVALUE{3, -60, -10}));
}

TEST(Primitive, AWarpEndsIt)
{
    const PRIMITIVE p(ZRPRIM_ELLIPSE, {0, 0, 200, 100});
    EXPECT_EQ(IsOnlyPrimitive(p.path), 1);
    const ZRPOINTFX frame[] = {{0, 0}, {65536, 0}, {0, 65536}, {65536, 65536}};
    ZrPathBiLinear(p.path, frame);
    EXPECT_EQ(IsOnlyPrimitive(p.path), 0);
}

TEST(Primitive, APrototypeFillsTheFrame)
{
    DOCUMENT doc;
    PATHREC *a = MakeBox(10, 10, 30, 20);
    PATHREC *b = MakeBox(20, 12, 50, 30);
    ChainLink(tableChain, a, b);
    a->primitive = b->primitive = ZRPRIM_RECTANGLE;
    PATHREC *made = nullptr;
    const RECT drag = {100, 100, 180, 160};
    ASSERT_EQ(ZrPathGetPrimitive(ZRPRIM_ELLIPSE, b, &made, doc.view, 0, 0, &drag), 1);
    /* the box 40 x 20 becomes 80 x 60 */
    tagRECT box;
    ZrPathGetRealRect(made, fixedOne, &box);
    EXPECT_EQ(box.left, 99); /* 99.5 - 5.0 cut towards zero is 94, and 5 back */
    EXPECT_EQ(box.top, 99);
    EXPECT_EQ(box.right, 179);
    EXPECT_EQ(box.bottom, 159);
    PATHREC *second = made->nextPath;
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(made->primitive, 0);
    EXPECT_EQ(made->flags, PATHREC_SELECTED);
    EXPECT_EQ(second->flags, PATHREC_SELECTED);
    EXPECT_EQ(made->nextJoin, second);
    EXPECT_EQ(made->nextSel, second);
    EXPECT_EQ(second->prevSel, made);
    ZrPathDeletePtr(made, 0);
    ZrPathDeletePtr(a, 0);
}

TEST(Primitive, AStampWithTheAspectFlagKeepsItsProportions)
{
    DOCUMENT doc;
    PATHREC *prototype = MakeBox(0, 0, 40, 20);
    PATHREC *made = nullptr;
    const RECT drag = {100, 100, 180, 180}; /* factors 2 and 4 */
    ASSERT_EQ(ZrPathGetPrimitive(0, prototype, &made, doc.view, 0, 1, &drag), 1);
    tagRECT box;
    ZrPathGetRealRect(made, fixedOne, &box);
    EXPECT_EQ(box.right - box.left, 80);
    EXPECT_EQ(box.bottom - box.top, 40);
    ZrPathDeletePtr(made, 0);
    ZrPathDeletePtr(prototype, 0);
}

TEST(Primitive, APrototypeWithoutWidthOrHeightIsRefused)
{
    DOCUMENT doc;
    const RECT drag = {100, 100, 180, 180};
    for (PATHREC *prototype : {MakeBox(0, 0, 0, 20), MakeBox(0, 0, 20, 0), MakePath({})}) {
        PATHREC *made = nullptr;
        const int64_t live = FaultLiveBlocks(ALLOC_PATHHEAP);
        EXPECT_EQ(ZrPathGetPrimitive(0, prototype, &made, doc.view, 0, 0, &drag), 0);
        EXPECT_EQ(made, nullptr);
        EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), live);
        ZrPathDeletePtr(prototype, 0);
    }
}

TEST(Primitive, AddedBehindTheChainItIsTheNewSelection)
{
    DOCUMENT doc;
    const RECT drag = {10, 10, 60, 40};
    EXPECT_EQ(ZrPathAddPrimitive(nullptr, ZRPRIM_ELLIPSE, nullptr, doc.table, doc.view, 0, 0, &drag), 1);
    PATHREC *first = doc.Active();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(doc.Selected(), first);
    EXPECT_EQ(ZrPathAddPrimitive(nullptr, ZRPRIM_BAR, nullptr, doc.table, doc.view, 0, 0, &drag), 1);
    EXPECT_EQ(doc.Active(), first);
    EXPECT_EQ(first->flags, 0u);
    EXPECT_EQ(doc.Selected(), first->nextPath);
    EXPECT_EQ(first->nextPath->primitive, ZRPRIM_BAR);
    EXPECT_EQ(BrokenInvariant(doc), "");
    EXPECT_EQ(doc.Plane(), std::vector<uint8_t>(200 * 200, 0)) << "nothing is drawn";
}

TEST(Primitive, ARefusedDragReturnsOneAndAddsNothing)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    doc.Select({a});
    const RECT drag = {10, 10, 10, 40};
    EXPECT_EQ(ZrPathAddPrimitive(nullptr, ZRPRIM_ELLIPSE, nullptr, doc.table, doc.view, 0, 0, &drag), 1);
    EXPECT_EQ(doc.Records().size(), 1u);
    EXPECT_EQ(doc.Selected(), nullptr);
    EXPECT_EQ(ZrPathAddPrimitive(nullptr, ZRPRIM_ELLIPSE, nullptr, doc.table, doc.view, 0, 0, nullptr), 1);
    EXPECT_EQ(doc.Records().size(), 1u);
}

TEST(Primitive, NullIsRefused)
{
    DOCUMENT doc;
    const RECT drag = {10, 10, 60, 40};
    PATHREC *made = nullptr;
    EXPECT_EQ(ZrPathGetPrimitive(1, nullptr, &made, nullptr, 0, 0, &drag), 0);
    EXPECT_EQ(ZrPathGetPrimitive(1, nullptr, nullptr, doc.view, 0, 0, &drag), 0);
    EXPECT_EQ(ZrPathGetPrimitive(1, nullptr, &made, doc.view, 0, 0, nullptr), 0);
    EXPECT_EQ(ZrPathAddPrimitive(nullptr, 1, nullptr, nullptr, doc.view, 0, 0, &drag), 0);
    EXPECT_EQ(ZrPathAddPrimitive(nullptr, 1, nullptr, doc.table, nullptr, 0, 0, &drag), 0);
    doc.table->currentGroup = 7;
    EXPECT_EQ(ZrPathAddPrimitive(nullptr, 1, nullptr, doc.table, doc.view, 0, 0, &drag), 0);
    doc.table->currentGroup = 0;
    EXPECT_EQ(made, nullptr);
}

TEST(Primitive, ADragAcrossTheWholeNumberRangeAndAZoomOfZeroAreSafe)
{
    constexpr int32_t most = std::numeric_limits<int32_t>::max();
    constexpr int32_t least = std::numeric_limits<int32_t>::min();
    for (const int32_t kind : {1, 2, 3, 4, 5})
        for (const int32_t zoom : {1, 0, -1, most, least}) {
            const PRIMITIVE p(kind, {least, most, most, least}, zoom);
            EXPECT_EQ(p.result, 1);
        }
}

TEST(Primitive, EveryFailedAllocationAddsNothing)
{
    DOCUMENT doc;
    PATHREC *prototype = MakeBox(0, 0, 40, 20);
    ChainLink(tableChain, prototype, MakeBox(5, 5, 10, 10));
    const RECT drag = {10, 10, 60, 40};
    for (const ALLOCATOR allocator : {ALLOC_PATHHEAP, ALLOC_BUF})
        for (const PATHREC *stamp : {static_cast<PATHREC *>(nullptr), prototype})
            for (int64_t n = 1;; n++) {
                const int64_t live = FaultLiveBlocks(ALLOC_PATHHEAP);
                const int64_t liveBuf = FaultLiveBlocks(ALLOC_BUF);
                FaultSet(allocator, n);
                PATHREC *made = nullptr;
                const int32_t result = ZrPathGetPrimitive(1, stamp, &made, doc.view, 0, 0, &drag);
                const int struck = FaultStruck();
                FaultSet(allocator, 0);
                EXPECT_EQ(FaultLiveBlocks(ALLOC_BUF), liveBuf);
                if (!struck) {
                    EXPECT_EQ(result, 1);
                    ZrPathDeletePtr(made, 0);
                    break;
                }
                EXPECT_EQ(result, 0);
                EXPECT_EQ(made, nullptr);
                EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), live);
            }
    ZrPathDeletePtr(prototype, 0);
}

TEST(Primitive, WithoutMemoryAddingReturnsOneAndAddsNothing)
{
    DOCUMENT doc;
    doc.Select({doc.Add(MakeBox(0, 0, 10, 10))});
    const RECT drag = {10, 10, 60, 40};
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(ZrPathAddPrimitive(nullptr, ZRPRIM_ELLIPSE, nullptr, doc.table, doc.view, 0, 0, &drag), 1);
    FaultSet(ALLOC_PATHHEAP, 0);
    EXPECT_EQ(doc.Records().size(), 1u);
    EXPECT_EQ(BrokenInvariant(doc), "");
}
