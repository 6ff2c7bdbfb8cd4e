#include "store/store.h"
#include "support/document.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr int32_t vertical = 18018;

} // namespace

TEST(Center, TheVerticalAxisCodeMovesNothingHorizontally)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    PATHREC *b = doc.Add(MakeBox(50, 60, 90, 110));
    doc.Select({a, b});
    /* margin box (5, 5, 96, 116): cy 5 + 111 / 2 = 60; own centres 5 + 21 / 2 = 15 and 55 + 61 / 2 = 85 */
    EXPECT_EQ(ZrPathCenter(0, vertical, doc.table, doc.view, nullptr), 1);
    EXPECT_EQ(NodesOf(a)[0], (NODEVALUE{6, 10, 55}));
    EXPECT_EQ(NodesOf(b)[0], (NODEVALUE{6, 50, 35}));
}

TEST(Center, AnyOtherAxisCodeMovesNothingVertically)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    PATHREC *b = doc.Add(MakeBox(50, 60, 90, 110));
    doc.Select({a, b});
    /* cx 5 + 91 / 2 = 50; own centres 5 + 21 / 2 = 15 and 45 + 51 / 2 = 70 */
    EXPECT_EQ(ZrPathCenter(0, 18017, doc.table, doc.view, nullptr), 1);
    EXPECT_EQ(NodesOf(a)[0], (NODEVALUE{6, 45, 10}));
    EXPECT_EQ(NodesOf(b)[0], (NODEVALUE{6, 30, 60}));
}

TEST(Center, AJoinChainMovesAsOneFromItsHead)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    PATHREC *b = doc.Add(MakeBox(20, 0, 30, 10));
    PATHREC *c = doc.Add(MakeBox(0, 100, 100, 110));
    ChainLink(joinChain, a, b);
    doc.Select({a, b, c});
    /* cx -5 + 111 / 2 = 50; the shape's own centre -5 + 41 / 2 = 15 */
    EXPECT_EQ(ZrPathCenter(0, 0, doc.table, doc.view, nullptr), 1);
    EXPECT_EQ(NodesOf(a)[0].x, 35);
    EXPECT_EQ(NodesOf(b)[0].x, 55);
    EXPECT_EQ(NodesOf(c)[0].x, 0);
}

TEST(Center, ThePlaneFollowsAndTheRectangleHoldsOldAndNew)
{
    DOCUMENT doc(200, 200, 1, 7, 9);
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    PATHREC *b = doc.Add(MakeBox(50, 60, 90, 110));
    doc.Add(MakeBox(15, 5, 60, 150));
    doc.Select({a, b});
    doc.Draw();
    tagRECT dirty = {};
    EXPECT_EQ(ZrPathCenter(0, vertical, doc.table, doc.view, &dirty), 1);
    EXPECT_EQ(doc.Plane(), doc.FreshPlane());
    EXPECT_LE(dirty.left, 7 + 10);
    EXPECT_LE(dirty.top, 9 + 10);
    EXPECT_GE(dirty.right, 7 + 91);
    EXPECT_GE(dirty.bottom, 9 + 111);
}

TEST(Center, WithoutADisplayBufferTheRectangleIsEmpty)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    doc.Select({a});
    ZrPathTblDeletelpDB(doc.table);
    doc.view->displayBuffer = nullptr;
    tagRECT dirty = {1, 2, 3, 4};
    EXPECT_EQ(ZrPathCenter(0, vertical, doc.table, doc.view, &dirty), 1);
    EXPECT_TRUE(IsRectEmpty(&dirty));
}

TEST(Center, NothingSelectedIsRefused)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 20, 20));
    EXPECT_EQ(ZrPathCenter(0, 0, nullptr, doc.view, nullptr), 0);
    EXPECT_EQ(ZrPathCenter(0, 0, doc.table, doc.view, nullptr), 0);
    doc.Select({a});
    a->flags = 0; /* the group's selected path is not selected */
    EXPECT_EQ(ZrPathCenter(0, 0, doc.table, doc.view, nullptr), 0);
    ZrPathAssignSelectedPath(doc.table, nullptr);
}
