/* handles_test.cpp - the list of handle points both ways. */
#include "store/store.h"
#include "support/randompath.h"
#include "support/shapes.h"
#include "support/views.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr uint16_t M = PATHNODE_SELECTED;
constexpr int32_t end = -1;
constexpr int32_t gap = -3;
constexpr int32_t untouched = 4242;

/* One record in node editing. Node k of most records here lies at (10 k, 10 k). */
struct SCENE : TESTVIEW {
    PATHREC *path;
    tagPOINT list[13];
    int32_t used = 0;

    explicit SCENE(const std::vector<TESTNODE> &nodes, uint32_t flags = PATHREC_NODEEDIT, int32_t zoom = 1,
                   int32_t scrollX = 0, int32_t scrollY = 0, int32_t left = 0, int32_t top = 0)
        : TESTVIEW(200, 200, zoom, scrollX, scrollY, left, top), path(MakePath(nodes))
    {
        Add({path});
        path->flags = flags;
        Forget();
    }

    void Forget()
    {
        for (tagPOINT &p : list) p = {untouched, untouched};
    }

    void Read()
    {
        used = ZrPathSelectedToView(view, path, list, 0);
    }

    int32_t Write()
    {
        return ZrPathSelectedToView(view, path, list, 1);
    }

    /* The x of all entries. */
    std::vector<int32_t> Xs() const
    {
        std::vector<int32_t> xs;
        for (int i = 0; i < 12; i++) xs.push_back(list[i].x);
        return xs;
    }
};

/* Nodes of the given types at (10, 10), (20, 20) and so on. */
std::vector<TESTNODE> Diagonal(const std::vector<uint16_t> &types)
{
    std::vector<TESTNODE> nodes;
    for (size_t i = 0; i < types.size(); i++) {
        const double at = 10.0 * static_cast<double>(i + 1);
        nodes.push_back({types[i], at, at});
    }
    return nodes;
}

/* The nodes in the list by their index; -1 the end mark, -3 a group break. */
std::vector<int32_t> Nodes(const std::vector<uint16_t> &types, uint32_t flags = PATHREC_NODEEDIT)
{
    SCENE s(Diagonal(types), flags);
    s.Read();
    EXPECT_EQ(s.list[11].x, end);
    EXPECT_EQ(s.list[11].y, end);
    EXPECT_EQ(s.list[12].x, untouched);
    std::vector<int32_t> nodes;
    for (int32_t i = 0; i < std::min(s.used, 11); i++) {
        EXPECT_EQ(s.list[i].x, s.list[i].y);
        nodes.push_back(s.list[i].x > 0 ? s.list[i].x / 10 - 1 : s.list[i].x);
    }
    if (s.used < 12) {
        EXPECT_EQ(s.list[s.used].x, end);
    }
    for (int32_t i = s.used + 1; i < 11; i++) EXPECT_EQ(s.list[i].x, untouched);
    return nodes;
}

using LIST = std::vector<int32_t>;

} // namespace

TEST(Handles, GroupsByTheKindOfAnchor)
{
    const struct {
        const char *name;
        std::vector<uint16_t> types;
        LIST want;
    } cases[] = {
        {"line node in the middle", {6, 2, 2 | M, 2, 2}, {1, 2, 3}},
        {"last line node of an open record", {6, 2, 2, 2 | M}, {2, 3, 1}},
        {"closing line node", {6, 2, 2, 3 | M}, {2, 3, 1}},
        {"start node", {6 | M, 2, 2, 3}, {2, 0, 1}},
        {"line node with a curve behind it", {6, 2 | M, 4, 4, 4, 2}, {0, 1, 2, 3, 4, gap}},
        {"closing line with a curve behind node 0", {6, 4, 4, 4, 2, 3 | M}, {4, 5, 1, 2, 3, gap}},
        {"smooth anchor", {6, 4 | M, 4, 4, 4, 4, 4, 2}, {0, 1, 2, 3, 4, 5, 6}},
        {"smooth anchor at the closing point", {6, 4, 4, 4, 4 | M, 4, 5}, {3, 4, 5, 6, 1, 2, 3}},
        {"curve end with a line behind it", {6, 4, 4, 4 | M, 2}, {0, 1, 2, 3, 4}},
        {"curve end at the record's end, with a line in front", {6, 2, 4, 4, 5 | M}, {1, 2, 3, 4, 1}},
        {"a lone closed curve", {6, 4 | M, 4, 5}, {0, 1, 2, 3}},
        {"nothing marked", {6, 2, 4, 4, 4, 2}, {}},
        {"two line nodes side by side: each has its own group", {6, 2 | M, 2 | M, 2}, {0, 1, 2, 1, 2, 3}},
        {"shapes give nothing", {6, 0x100 | M, 0, 0x200 | M, 0x400 | M, 0, 2 | M, 2}, {5, 6, 7}},
        {"a kind that nobody knows ends the walk", {6, 0x40, 2 | M, 2}, {}},
        {"neighbours that the record lacks are left out", {6, 4 | M, 4, 4, 4}, {0, 1, 2, 3, 4}},
        {"a lone start", {6 | M}, {0}},
    };
    for (const auto &c : cases) EXPECT_EQ(Nodes(c.types), c.want) << c.name;
}

TEST(Handles, WalkStopsAtTwelve)
{
    /* Two smooth anchors need fourteen pairs: eleven are had, the twelfth place is used but ends the list. */
    SCENE s(Diagonal({6, 4 | M, 4, 4, 4 | M, 4, 4, 4, 4, 4, 2}));
    s.Read();
    EXPECT_EQ(s.used, 12);
    EXPECT_EQ(s.Xs(), (LIST{10, 20, 30, 40, 50, 60, 70, 40, 50, 60, 70, end}));
    EXPECT_EQ(s.list[12].x, untouched);
    /* In the other direction the twelfth is not applied. */
    s.list[11] = {150, 150};
    EXPECT_EQ(s.Write(), 12);
    EXPECT_EQ(ZRFIXED{s.path->nodes[7].x}, DbToFix(80));
    EXPECT_EQ(s.list[11].x, end);
}

TEST(Handles, ElevenPairsEndTheWalk)
{
    /* Three line groups and a break fill ten; the fourth group takes what is left. */
    SCENE s(Diagonal({6, 2 | M, 2 | M, 2 | M, 2 | M, 2}));
    s.Read();
    EXPECT_EQ(s.used, 12);
    SCENE t(Diagonal({6, 2 | M, 2 | M, 4 | M, 4, 4, 2 | M, 2}));
    t.Read();
    /* 0 1 2 | 1 2 3 4 5 break | then four of a group of five */
    EXPECT_EQ(t.used, 12);
    EXPECT_EQ(t.Xs(), (LIST{10, 20, 30, 20, 30, 40, 50, 60, gap, 30, 40, end}));
}

TEST(Handles, FullListHasNoGroupBreak)
{
    /* Six of two line groups, then a line node before a curve: P(i-1), P(i) and three make eleven. */
    SCENE s(Diagonal({6, 2 | M, 2 | M, 2 | M, 4, 4, 4, 2 | M, 2}));
    s.Read();
    EXPECT_EQ(s.used, 11) << "nor is another anchor looked for";
    EXPECT_EQ(s.Xs(), (LIST{10, 20, 30, 20, 30, 40, 30, 40, 50, 60, 70, end}));
}

TEST(Handles, PlacesFollowZoomScrollAndView)
{
    SCENE s({{6, 10, 20}, {2 | M, 30, 41.25}, {2, 50, 60}}, PATHREC_NODEEDIT, 2, 7, -3, 20, 30);
    s.Read();
    ASSERT_EQ(s.used, 3);
    EXPECT_EQ(s.list[1].x, 61 - (7 - 20));
    EXPECT_EQ(s.list[1].y, 83 - (-3 - 30)) << "83.5 is cut";
    s.view->zoom = -2;
    s.Read();
    EXPECT_EQ(s.list[1].x, 28) << "15.25 + 13";
    EXPECT_EQ(s.list[1].y, 53) << "20.875 + 33";
}

TEST(Handles, EnvelopeGivesMarkedNodesAlone)
{
    EXPECT_EQ(Nodes({6 | M, 2, 2 | M, 2, 3 | M}, PATHREC_ENVELOPE), (LIST{0, 2, 4}));
    EXPECT_EQ(Nodes({6, 4 | M, 4, 4, 2, 4, 4, 4, 2}, PATHREC_ENVELOPE), (LIST{1, 2, 3}));
    EXPECT_EQ(Nodes({6, 2, 2, 2, 3}, PATHREC_ENVELOPE), LIST{});
    /* More nodes than an envelope can have stay in the list. */
    SCENE s(Diagonal(std::vector<uint16_t>(18, 2 | M)), PATHREC_ENVELOPE);
    s.Read();
    EXPECT_EQ(s.used, 12);
    EXPECT_EQ(s.list[12].x, untouched);
}

TEST(Handles, UnchangedListLeavesTheRecord)
{
    for (unsigned seed = 0; seed < 500; seed++) {
        RANDOM random(seed);
        RANDOMSHAPE shape;
        shape.marks = true;
        shape.closed = seed % 2 == 0;
        shape.shapes = seed % 3 == 0;
        PATHREC *random1 = RandomPath(random, shape);
        SCENE s({{6, 0, 0}}, PATHREC_NODEEDIT, seed % 5 ? 1 : -3);
        s.Add({random1});
        random1->primitive = 2;
        /* An open record whose last anchor is marked has its start pulled there, deliberately: close it. */
        const PATHNODE last = random1->nodes[random1->nodeCount - 1];
        random1->nodes[0].x = last.x;
        random1->nodes[0].y = last.y;
        const std::vector<uint8_t> before(reinterpret_cast<uint8_t *>(random1->nodes),
                                          reinterpret_cast<uint8_t *>(random1->nodes + random1->nodeCount));
        const int32_t used = ZrPathSelectedToView(s.view, random1, s.list, 0);
        EXPECT_EQ(random1->primitive, 2);
        EXPECT_EQ(ZrPathSelectedToView(s.view, random1, s.list, 1), used);
        EXPECT_EQ(random1->primitive, 0) << "an edited primitive is a free path";
        const std::vector<uint8_t> after(reinterpret_cast<uint8_t *>(random1->nodes),
                                         reinterpret_cast<uint8_t *>(random1->nodes + random1->nodeCount));
        ASSERT_EQ(before, after) << "seed " << seed;
    }
}

TEST(Handles, MovedPairMovesItsNodeOnly)
{
    SCENE s({{6, 10.25, 10}, {2, 20.75, 20.125}, {2 | M, 30.5, 30.25}, {2, 40.0625, 40}}, PATHREC_NODEEDIT, 2, 3, 5, 7,
            9);
    s.Read();
    ASSERT_EQ(s.used, 3);
    s.list[1].x += 9;
    EXPECT_EQ(s.Write(), 3);
    EXPECT_EQ(ZRFIXED{s.path->nodes[1].x}, DbToFix(20.75));
    EXPECT_EQ(ZRFIXED{s.path->nodes[1].y}, DbToFix(20.125));
    EXPECT_EQ(ZRFIXED{s.path->nodes[3].x}, DbToFix(40.0625));
    /* (30.5 + 0.5) x 2 + 4 = 66, moved to 75: (75 - 4) / 2 - 0.5 = 35; y goes through whole pixels too:
     * (30.25 + 0.5) x 2 + 4 = 65.5, cut to 65: (65 - 4) / 2 - 0.5 = 30. */
    EXPECT_EQ(ZRFIXED{s.path->nodes[2].x}, DbToFix(35));
    EXPECT_EQ(ZRFIXED{s.path->nodes[2].y}, DbToFix(30));
}

TEST(Handles, PairMovedDownwardOnlyIsAppliedToo)
{
    SCENE s({{6, 10, 10}, {2 | M, 20, 20}, {2, 30, 30}});
    s.Read();
    s.list[1].y += 4;
    s.Write();
    EXPECT_EQ(ZRFIXED{s.path->nodes[1].x}, DbToFix(19.5)) << "(20 + 0.5) is cut to 20, and the half goes again";
    EXPECT_EQ(ZRFIXED{s.path->nodes[1].y}, DbToFix(23.5));
}

TEST(Handles, StartFollowsAMovedClosingAnchor)
{
    const struct {
        const char *name;
        std::vector<TESTNODE> nodes;
        int entry; /* of the closing anchor */
    } cases[] = {
        {"polygon", {{6, 10, 10}, {2, 50, 10}, {2, 50, 50}, {3 | M, 10, 10}}, 1},
        {"curves", {{6, 10, 10}, {4, 20, 10}, {4, 30, 10}, {4, 50, 50}, {4 | M, 40, 40}, {4, 30, 30}, {5, 10, 10}}, 3},
        {"line, then a closing curve", {{6, 10, 10}, {2, 50, 50}, {4, 40, 40}, {4, 30, 30}, {5 | M, 10, 10}}, 3},
        {"a lone closed curve", {{6, 10, 10}, {4 | M, 40, 10}, {4, 10, 40}, {5, 10, 10}}, 3},
    };
    for (const auto &c : cases) {
        SCENE s(c.nodes);
        s.Read();
        ASSERT_EQ(s.list[c.entry].x, 10) << c.name;
        s.list[c.entry] = {22, 33};
        s.Write();
        const uint32_t last = s.path->nodeCount - 1;
        EXPECT_EQ(ZRFIXED{s.path->nodes[last].x}, DbToFix(21.5)) << c.name;
        EXPECT_EQ(ZRFIXED{s.path->nodes[0].x}, DbToFix(21.5)) << c.name;
        EXPECT_EQ(ZRFIXED{s.path->nodes[0].y}, DbToFix(32.5)) << c.name;
    }
}

TEST(Handles, StartStaysWhenNoGroupReachesTheEnd)
{
    SCENE s({{6, 10, 10}, {2 | M, 50, 10}, {2, 50, 50}, {3, 12, 12}});
    s.Read();
    s.list[1].x += 5;
    s.Write();
    EXPECT_EQ(ZRFIXED{s.path->nodes[0].x}, DbToFix(10));
}

TEST(Handles, NodeInTwoGroupsIsTakenAsItStands)
{
    /* Moved in the first group and left in the second, which puts it back where the list says. */
    SCENE s(Diagonal({6, 2 | M, 2 | M, 2}));
    s.Read();
    ASSERT_EQ(s.Xs(), (LIST{10, 20, 30, 20, 30, 40, end, untouched, untouched, untouched, untouched, end}));
    s.list[1].x = 90;
    s.Write();
    EXPECT_EQ(ZRFIXED{s.path->nodes[1].x}, DbToFix(19.5));
    s.list[1].x = s.list[3].x = 90;
    s.Write();
    EXPECT_EQ(ZRFIXED{s.path->nodes[1].x}, DbToFix(89.5));
}

TEST(Handles, OtherRecordsGiveAnEmptyList)
{
    const struct {
        const char *name;
        uint32_t flags;
        bool chained;
    } cases[] = {{"not selected", 0, false},
                 {"selected as a whole", PATHREC_SELECTED, false},
                 {"one of several", PATHREC_NODEEDIT, true}};
    for (const auto &c : cases)
        for (const int32_t direction : {0, 1}) {
            SCENE s(Diagonal({6, 2 | M, 2}), c.flags);
            PATHREC *other = MakePath({{6, 0, 0}});
            s.Add({other});
            if (c.chained) ChainLink(selectedChain, s.path, other);
            EXPECT_EQ(ZrPathSelectedToView(s.view, s.path, s.list, direction), 0) << c.name;
            EXPECT_EQ(s.list[0].x, direction ? untouched : end) << c.name;
            EXPECT_EQ(s.list[1].x, untouched) << c.name;
            EXPECT_EQ(s.list[11].y, end) << c.name;
            other->flags = PATHREC_NODEEDIT;
            s.Forget();
            EXPECT_EQ(ZrPathSelectedToView(s.view, nullptr, s.list, direction), 0);
            EXPECT_EQ(s.list[11].y, end);
        }
}

TEST(Handles, TheLastOfSeveralGivesNoneEither)
{
    SCENE s(Diagonal({6, 2 | M, 2}));
    PATHREC *first = MakePath({{6, 0, 0}});
    s.Add({first});
    ChainLink(selectedChain, first, s.path);
    s.Read();
    EXPECT_EQ(s.used, 0);
    EXPECT_EQ(s.list[0].x, end);
}

TEST(Handles, WithoutABufferOnlyAnEditedRecordEndsTheList)
{
    SCENE s(Diagonal({6, 2 | M, 2}));
    s.view->displayBuffer = nullptr;
    s.path->primitive = 3;
    EXPECT_EQ(ZrPathSelectedToView(s.view, s.path, s.list, 0), 0);
    EXPECT_EQ(s.list[0].x, end);
    EXPECT_EQ(s.list[11].x, end);
    s.Forget();
    EXPECT_EQ(ZrPathSelectedToView(nullptr, s.path, s.list, 1), 0);
    EXPECT_EQ(s.list[0].x, untouched);
    EXPECT_EQ(s.list[11].x, end);
    EXPECT_EQ(s.path->primitive, 3);
    s.Forget();
    s.path->flags = 0;
    EXPECT_EQ(ZrPathSelectedToView(s.view, s.path, s.list, 0), 0);
    EXPECT_EQ(s.list[0].x, untouched);
    EXPECT_EQ(s.list[11].x, untouched);
    SCENE whole(Diagonal({6, 2 | M, 2}));
    EXPECT_EQ(ZrPathSelectedToView(whole.view, whole.path, nullptr, 0), 0);
}

TEST(Handles, ListThatDoesNotEndIsReadNoFurtherThanTheWalk)
{
    SCENE s(Diagonal({6, 2 | M, 2 | M, 2 | M, 2 | M, 2 | M, 2}));
    for (tagPOINT &p : s.list) p = {INT32_MAX, INT32_MIN};
    s.list[12] = {untouched, untouched};
    EXPECT_EQ(s.Write(), 12);
    EXPECT_EQ(s.list[12].x, untouched);
}

TEST(Handles, OddZoomsAndPlacesAreSafe)
{
    for (const int32_t zoom : {0, INT32_MIN, INT32_MAX, -1})
        for (const int32_t at : {INT32_MIN, INT32_MAX, 0}) {
            SCENE s(Diagonal({6, 4 | M, 4, 4, 4 | M, 4, 5}), PATHREC_NODEEDIT, zoom, at, -1, 0, 0);
            s.Read();
            for (tagPOINT &p : s.list) p.x = WrapAdd(p.x, at);
            s.Write();
            s.path->nodeCount = 0;
            s.Read();
            EXPECT_EQ(s.used, 0);
        }
}
