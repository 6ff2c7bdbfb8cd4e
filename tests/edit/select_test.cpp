/* select_test.cpp - selecting and deselecting records and their chain. */
#include "edit/select.h"
#include "support/recorder.h"
#include "support/shapes.h"
#include "support/views.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr uint16_t M = PATHNODE_SELECTED;

/* Five boxes in a group; the second to fourth are joined. */
struct GROUP : TESTVIEW {
    std::vector<PATHREC *> path;

    GROUP() : TESTVIEW(200, 100)
    {
        for (int i = 0; i < 5; i++) path.push_back(MakeBox(10 + i * 30, 10, 30 + i * 30, 30));
        Add(path);
        ChainLink(joinChain, path[1], path[2]);
        ChainLink(joinChain, path[2], path[3]);
    }

    std::vector<uint32_t> Flags() const
    {
        std::vector<uint32_t> flags;
        for (const PATHREC *p : path) flags.push_back(p->flags);
        return flags;
    }
};

constexpr uint32_t S = PATHREC_SELECTED;

} // namespace

TEST(Select, JoinedRecordsAreSelectedTogether)
{
    for (int from = 1; from <= 3; from++) {
        GROUP g;
        PathSelectJoined(nullptr, g.path[static_cast<size_t>(from)], g.view);
        EXPECT_EQ(g.Flags(), (std::vector<uint32_t>{0, S, S, S, 0})) << from;
        GROUP h;
        PathSelectJoinedFromHead(nullptr, h.path[static_cast<size_t>(from)], h.view);
        EXPECT_EQ(h.Flags(), (std::vector<uint32_t>{0, S, S, S, 0})) << from;
    }
    GROUP g;
    PathSelectJoined(nullptr, g.path[4], g.view);
    EXPECT_EQ(g.Flags(), (std::vector<uint32_t>{0, 0, 0, 0, S}));
    PathSelectJoined(nullptr, nullptr, g.view);
    PathSelectJoinedFromHead(nullptr, nullptr, g.view);
}

TEST(Select, EachRecordsMarksAreToggled)
{
    GROUP g;
    RECORDER recorder;
    PathSelectJoined(recorder.dc, g.path[2], g.view);
    const CALLS squares = recorder.Take("rect");
    ASSERT_EQ(squares.size(), 12u) << "four a box, the closing one not";
    EXPECT_EQ(squares[0], "rect 68 8 72 12") << "the record itself first";
    EXPECT_EQ(squares[4], "rect 98 8 102 12") << "then what lies behind";
    EXPECT_EQ(squares[8], "rect 38 8 42 12") << "then what lies in front";
    PathSelectJoinedFromHead(recorder.dc, g.path[3], g.view);
    EXPECT_EQ(recorder.Take("rect")[0], "rect 38 8 42 12");
}

TEST(Select, DeselectingTogglesMarksOnlyWhenAsked)
{
    GROUP g;
    RECORDER recorder;
    SelectPaths({g.path[0], g.path[3]});
    ZrPathDeSelectAll(recorder.dc, g.path[1], g.view, 0);
    EXPECT_EQ(recorder.Take(), CALLS{});
    SelectPaths({g.path[0], g.path[3]});
    ZrPathDeSelectAll(recorder.dc, g.path[1], g.view, 1);
    EXPECT_EQ(recorder.Take("rect").size(), 8u);
}

TEST(Select, MarksGoWhileTheNodeBitsStillStand)
{
    GROUP g;
    RECORDER recorder;
    g.path[0]->flags = PATHREC_NODEEDIT;
    g.path[0]->nodes[1].type |= M;
    ZrPathDeSelectAll(recorder.dc, g.path[0], g.view, 1);
    EXPECT_EQ(recorder.Take("brush null").size(), 1u) << "the hollow mark is taken off as it was put on";
    EXPECT_EQ(g.path[0]->nodes[1].type, PATHNODE_LINE);
}

TEST(Select, DeselectAllReachesBothWays)
{
    GROUP g;
    SelectPaths(g.path);
    g.path[2]->flags = PATHREC_NODEEDIT | PATHREC_HIDDEN;
    g.path[2]->nodes[3].type |= M;
    ZrPathDeSelectAll(nullptr, g.path[2], g.view, 1);
    for (const PATHREC *p : g.path) {
        EXPECT_EQ(p->flags, 0u);
        EXPECT_EQ(p->prevSel, nullptr);
        EXPECT_EQ(p->nextSel, nullptr);
    }
    EXPECT_EQ(g.path[2]->nodes[3].type, PATHNODE_LINE);
    ZrPathDeSelectAll(nullptr, nullptr, g.view, 1);
}

TEST(Select, DeselectAllLeavesWhatIsNotSelected)
{
    GROUP g;
    g.path[1]->flags = PATHREC_HIDDEN;
    g.path[1]->nextSel = g.path[3];
    ZrPathDeSelectAll(nullptr, g.path[0], g.view, 0);
    EXPECT_EQ(g.path[1]->flags, PATHREC_HIDDEN);
    EXPECT_EQ(g.path[1]->nextSel, g.path[3]);
}

TEST(Select, DeselectPtsClearsTheBitsOfStartsLinesAndCurves)
{
    PATHREC *path = MakePath({{6 | M, 0, 0},
                              {2 | M, 1, 1},
                              {4 | M, 2, 2},
                              {4 | M, 3, 3},
                              {5 | M, 4, 4},
                              {0x100 | M, 5, 5},
                              {M, 0, 0},
                              {3 | M, 6, 6}});
    EXPECT_EQ(ZrPathDeselectPts(path), 0) << "not in node editing";
    path->flags = PATHREC_SELECTED;
    EXPECT_EQ(ZrPathDeselectPts(path), 0);
    EXPECT_EQ(path->nodes[0].type, 6 | M);
    path->flags = PATHREC_ENVELOPE;
    EXPECT_EQ(ZrPathDeselectPts(path), 1);
    EXPECT_EQ(path->flags, PATHREC_SELECTED);
    const uint16_t want[] = {6, 2, 4, 4, 5, 0x100 | M, M, 3};
    for (int i = 0; i < 8; i++) EXPECT_EQ(path->nodes[i].type, want[i]) << i;
    EXPECT_EQ(ZrPathDeselectPts(nullptr), 0);
    ZrPathDeletePtr(path, 0);
}

TEST(Select, AllPathsAreSelectedInTableOrder)
{
    GROUP g;
    g.path[0]->prevSel = g.path[4];
    g.path[4]->nextSel = g.path[0];
    g.path[1]->flags = PATHREC_NODEEDIT;
    EXPECT_EQ(ZrPathAllPathSelected(g.path[3]), 1);
    for (size_t i = 0; i < 5; i++) {
        EXPECT_EQ(g.path[i]->flags, S);
        EXPECT_EQ(g.path[i]->prevSel, i > 0 ? g.path[i - 1] : nullptr);
        EXPECT_EQ(g.path[i]->nextSel, i < 4 ? g.path[i + 1] : nullptr);
    }
    EXPECT_EQ(ZrPathAllPathSelected(nullptr), 0);
}

TEST(Select, RebuiltChainHoldsTheSelectedRecordsInTableOrder)
{
    for (unsigned chosen = 0; chosen < 32; chosen++) {
        GROUP g;
        std::vector<PATHREC *> want;
        for (size_t i = 0; i < 5; i++)
            if (chosen >> i & 1) {
                g.path[i]->flags = i % 2 ? PATHREC_NODEEDIT : S;
                want.push_back(g.path[i]);
            }
        if (!want.empty()) want.front()->prevSel = g.path[4];
        PathRebuildSelected(g.path[2]);
        for (size_t i = 0; i < want.size(); i++) {
            EXPECT_EQ(want[i]->prevSel, i > 0 ? want[i - 1] : nullptr);
            EXPECT_EQ(want[i]->nextSel, i + 1 < want.size() ? want[i + 1] : nullptr);
        }
    }
    PathRebuildSelected(nullptr);
}

TEST(Select, RebuildingTakesLinksOfADamagedStreamAway)
{
    GROUP g;
    g.path[1]->flags = S;
    ChainLink(selectedChain, g.path[1], g.path[2]);
    ChainLink(selectedChain, g.path[3], g.path[4]);
    PathRebuildSelected(g.path[0]);
    for (const PATHREC *p : g.path) {
        EXPECT_EQ(p->prevSel, nullptr);
        EXPECT_EQ(p->nextSel, nullptr);
    }
}
