#include "edit/undo.h"
#include "frame/faults.h"
#include "support/undolists.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr int32_t key = 7;

class Undo : public testing::Test {
  protected:
    void SetUp() override
    {
        FreeAllUndo();
    }
    void TearDown() override
    {
        FreeAllUndo();
    }

    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(10, 10, 40, 40));
    PATHREC *b = doc.Add(MakeBox(50, 50, 80, 80));
    PATHREC *c = doc.Add(MakeCircle(120, 120, 30));

    int32_t Back(void *context = nullptr)
    {
        return ZrPathUndo(key, doc.table, doc.view, context);
    }
    int32_t Forward(void *context = nullptr)
    {
        return ZrPathRedo(key, doc.table, doc.view, context);
    }
    void Backup(int32_t action)
    {
        ZrPathBackupAction(key, action, doc.table);
    }

    /* Flags of the three records, the selected path's place, and the marked nodes. */
    struct STATE {
        uint32_t flags[3];
        PATHREC *selected;
        std::vector<uint32_t> marks;
        bool operator==(const STATE &other) const
        {
            return std::equal(flags, flags + 3, other.flags) && selected == other.selected && marks == other.marks;
        }
    };
    STATE Now() const
    {
        STATE state = {{a->flags, b->flags, c->flags}, doc.Selected(), {}};
        for (const PATHREC *record : {a, b, c})
            for (uint32_t i = 0; i < record->nodeCount; i++)
                if (record->nodes[i].type & PATHNODE_SELECTED) state.marks.push_back(i);
        EXPECT_EQ(BrokenInvariant(doc), "");
        return state;
    }

    void EditNodes(PATHREC *path, const std::vector<uint32_t> &marks)
    {
        doc.Select({path});
        path->flags = PATHREC_NODEEDIT;
        for (const uint32_t i : marks) path->nodes[i].type |= PATHNODE_SELECTED;
    }

    std::vector<uintptr_t> Words() const
    {
        const URRECORD *record = URTail();
        return {record->words, record->words + record->count};
    }
};

using UndoSelection = Undo;
using UndoMove = Undo;
using UndoJoin = Undo;
using UndoEnvelope = Undo;
using SameUR = Undo;
using WORDLIST = std::vector<uintptr_t>;

} // namespace

TEST_F(UndoSelection, ASnapshotIsPlacesAndMarkedNodes)
{
    EditNodes(c, {5});
    Backup(UR_SELECTION);
    EXPECT_EQ(Words(), (WORDLIST{2, 0x8005}));
    doc.Select({a, c});
    Backup(UR_SELECTION);
    EXPECT_EQ(Words(), (WORDLIST{0, 2}));
    doc.Select({});
    Backup(UR_SELECTION);
    EXPECT_EQ(Words(), WORDLIST{});
}

TEST_F(UndoSelection, MarksOfAPathThatIsNotInNodeEditingDoNotCount)
{
    doc.Select({a});
    a->nodes[1].type |= PATHNODE_SELECTED;
    Backup(UR_SELECTION);
    EXPECT_EQ(Words(), (WORDLIST{0}));
}

TEST_F(UndoSelection, AnEmptySnapshotDeselectsEverything)
{
    Backup(UR_SELECTION);
    doc.Select({a, b});
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(Now(), (STATE{{0, 0, 0}, nullptr, {}}));
    EXPECT_EQ(Forward(), 1);
    EXPECT_EQ(Now(), (STATE{{PATHREC_SELECTED, PATHREC_SELECTED, 0}, a, {}}));
}

TEST_F(UndoSelection, UndoAndRedoExchangeTheTwoStatesForEver)
{
    const auto select = [&](unsigned state) {
        ZrPathDeSelectAll(nullptr, a, doc.view, 0);
        ZrPathAssignSelectedPath(doc.table, nullptr);
        if (state == 8)
            EditNodes(a, {0, 3});
        else if (state == 9)
            EditNodes(c, {1, 4, 7, 12});
        else {
            std::vector<PATHREC *> paths;
            PATHREC *const all[] = {a, b, c};
            for (unsigned i = 0; i < 3; i++)
                if (state >> i & 1) paths.push_back(all[i]);
            doc.Select(paths);
        }
    };
    for (unsigned from = 0; from < 10; from++)
        for (unsigned to = 0; to < 10; to++) {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            FreeAllUndo();
            select(from);
            const STATE before = Now();
            Backup(UR_SELECTION);
            select(to);
            const STATE after = Now();
            for (int round = 0; round < 3; round++) {
                EXPECT_EQ(Back(), 1);
                EXPECT_TRUE(Now() == before);
                EXPECT_EQ(Forward(), 1);
                EXPECT_TRUE(Now() == after);
                EXPECT_EQ(UndoLength(key), 1u);
            }
        }
}

TEST_F(UndoSelection, NodeEditingWithoutAMarkComesBackAsAPlainSelection)
{
    EditNodes(b, {});
    Backup(UR_SELECTION);
    doc.Select({a});
    Back();
    EXPECT_EQ(Now(), (STATE{{0, PATHREC_SELECTED, 0}, b, {}}));
}

TEST_F(UndoSelection, PathsAndNodesThatAreGoneArePassedOver)
{
    doc.Select({a, c});
    Backup(UR_SELECTION);
    doc.Select({b, c});
    ZrPathDelete(doc.table, doc.view, nullptr);
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(a->flags, PATHREC_SELECTED);
    EXPECT_EQ(doc.Selected(), a);
    EXPECT_EQ(BrokenInvariant(doc), "");

    FreeAllUndo();
    EditNodes(a, {4});
    Backup(UR_SELECTION);
    ZrPathDeselectPts(a);
    a->nodeCount = 3;
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(a->flags, PATHREC_NODEEDIT);
    EXPECT_EQ(a->nodes[4].type, 3) << "nothing is written behind the last node";
    a->nodeCount = 5;
}

TEST_F(UndoSelection, AllPathsGoneLeavesTheRecordAndTheStepCounts)
{
    doc.Select({a, b, c});
    Backup(UR_SELECTION);
    ZrPathDelete(doc.table, doc.view, nullptr);
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(UndoLength(key), 1u);
    EXPECT_EQ(undoNow.position, 0u);
    EXPECT_EQ(undoNow.head->count, 3u);
    EXPECT_EQ(Forward(), 1);
}

TEST_F(UndoSelection, RecordsInTheMiddleOfTheListAreExchangedInPlace)
{
    Backup(UR_JOIN);
    doc.Select({a});
    Backup(UR_SELECTION);
    doc.Select({b});
    Backup(UR_JOIN);
    Back();
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(doc.Selected(), a);
    EXPECT_EQ(UndoLength(key), 3u);
    EXPECT_EQ(URRecordAt(1)->action, uint32_t{UR_JOIN});
    EXPECT_EQ(URRecordAt(2)->action, uint32_t{UR_SELECTION});
    EXPECT_EQ(URRecordAt(2)->words[0], 1u);
    EXPECT_EQ(URRecordAt(3)->action, uint32_t{UR_JOIN});
    EXPECT_EQ(undoNow.position, 1u);
}

TEST_F(UndoSelection, PathsBeyondTheNodeBitAreNotRecorded)
{
    PATHREC *last = c;
    for (int i = 3; i <= 0x8000; i++) {
        PATHREC *path = MakePath({{6, 0, 0}});
        ChainLink(tableChain, last, path);
        last = path;
    }
    PATHREC *within = last->prevPath;
    ASSERT_EQ(doc.Records().size(), 0x8001u);
    doc.Select({a, within, last});
    Backup(UR_SELECTION);
    EXPECT_EQ(Words(), (WORDLIST{0, 0x7FFF}));
}

TEST_F(UndoSelection, WhatStandsBehindTheLastNodeIsNotRecorded)
{
    EditNodes(a, {1, 3});
    a->nodeCount = 3;
    Backup(UR_SELECTION);
    EXPECT_EQ(Words(), (WORDLIST{0, 0x8001}));
    a->nodeCount = 5;
}

TEST_F(UndoSelection, NodesBeyondTheNodeBitAreNotRecorded)
{
    std::vector<TESTNODE> nodes(0x8001, {2, 1, 1});
    nodes[0].type = 6;
    PATHREC *d = doc.Add(MakePath(nodes));
    EditNodes(d, {0x7FFF, 0x8000});
    Backup(UR_SELECTION);
    EXPECT_EQ(Words(), (WORDLIST{3, 0xFFFF}));
}

TEST_F(UndoSelection, WithoutMemoryNothingChanges)
{
    doc.Select({a});
    Backup(UR_SELECTION);
    doc.Select({b});
    const STATE before = Now();
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(Back(), 0);
    FaultSet(ALLOC_BUF, 0);
    EXPECT_TRUE(Now() == before);
    EXPECT_EQ(UndoLength(key), 1u);
    EXPECT_EQ(undoNow.position, 1u);
}

TEST_F(UndoSelection, AWordThatIsNoPlaceSelectsNothing)
{
    doc.Select({a});
    Backup(UR_JOIN);
    BackupSelected(UR_SELECTION, doc.table); /* one word, an address */
    EXPECT_EQ(Forward(), 1);
    EXPECT_EQ(Now(), (STATE{{0, 0, 0}, nullptr, {}}));
}

TEST_F(UndoMove, UndoThenRedoLeavesNodeZeroExactly)
{
    doc.Select({a, c});
    doc.Draw();
    Backup(UR_MOVE);
    ZrPathMovePathsByPtfx(a, 12345, -54321);
    const std::vector<NODEVALUE> moved[] = {NodesOf(a), NodesOf(c)};
    doc.Draw();
    tagRECT dirty = {};
    EXPECT_EQ(Back(&dirty), 1);
    EXPECT_EQ(NodesOf(a)[0], (NODEVALUE{6, 10, 10}));
    EXPECT_EQ(NodesOf(c)[0], (NODEVALUE{6, 120, 150}));
    EXPECT_EQ(doc.Plane(), doc.FreshPlane());
    EXPECT_LE(dirty.left, 8);
    EXPECT_GE(dirty.bottom, 152);
    EXPECT_EQ(Forward(&dirty), 1);
    EXPECT_EQ(NodesOf(a), moved[0]);
    EXPECT_EQ(NodesOf(c), moved[1]);
    EXPECT_EQ(NodesOf(b)[0].x, 50);
    EXPECT_EQ(doc.Plane(), doc.FreshPlane());
}

TEST_F(UndoMove, WithoutASelectionOrANodeNothingMoves)
{
    doc.Select({a});
    Backup(UR_MOVE);
    doc.Select({});
    tagRECT dirty = {1, 2, 3, 4};
    EXPECT_EQ(Back(&dirty), 1);
    EXPECT_EQ(dirty.left, 1);
    doc.Select({a});
    a->nodeCount = 0;
    EXPECT_EQ(Forward(&dirty), 1);
    a->nodeCount = 5;
    EXPECT_EQ(NodesOf(a)[0].x, 10);
    EXPECT_EQ(Back(nullptr), 1) << "a null rectangle is not written";
}

TEST_F(UndoMove, ARecordWithTooFewWordsIsSteppedOver)
{
    doc.Select({a});
    Backup(UR_JOIN);
    BackupSelected(UR_MOVE, doc.table);
    EXPECT_EQ(Forward(), 1);
    EXPECT_EQ(NodesOf(a)[0].x, 10);
}

TEST_F(UndoJoin, AJoinIsTakenApartAndMadeAgain)
{
    doc.Select({a, c});
    Backup(UR_JOIN);
    ZrPathJoin(a);
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(a->nextJoin, nullptr);
    EXPECT_EQ(Forward(), 1);
    EXPECT_EQ(a->nextJoin, c);
    EXPECT_EQ(c->prevJoin, a);
}

TEST_F(UndoJoin, ADisjoinIsTheOtherWayRound)
{
    doc.Select({a, c});
    ZrPathJoin(a);
    Backup(UR_DISJOIN);
    ZrPathDisjoin(a);
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(a->nextJoin, c);
    EXPECT_EQ(Forward(), 1);
    EXPECT_EQ(a->nextJoin, nullptr);
}

TEST_F(UndoJoin, WithoutASelectionTheStepCounts)
{
    Backup(UR_JOIN);
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(Forward(), 1);
}

namespace {

constexpr ZRPOINTFX Pt(int x, int y)
{
    return {x * 65536, y * 65536};
}

constexpr ZRPOINTFX square[] = {Pt(5, 5), Pt(46, 5), Pt(5, 46), Pt(46, 46)};
constexpr ZRPOINTFX bent[] = {Pt(5, 5), Pt(90, 10), Pt(5, 46), Pt(60, 90)};
constexpr ZRPOINTFX level[] = {Pt(5, 5),  Pt(18, 5),  Pt(32, 5),  Pt(46, 5),
                               Pt(5, 46), Pt(18, 46), Pt(32, 46), Pt(46, 46)};
constexpr ZRPOINTFX arched[] = {Pt(5, 5),  Pt(18, 0),  Pt(32, 0),  Pt(46, 5),
                                Pt(5, 46), Pt(18, 60), Pt(32, 60), Pt(46, 46)};

} // namespace

TEST_F(UndoEnvelope, ABilinearFrameIsExchangedAndTheShapeWarpedBack)
{
    ZrPathDisjoinAll(a);
    DOCUMENT other;
    PATHREC *path = other.Add(MakeBox(10, 10, 40, 40));
    ZrPathAddBiLinearEnvelope(path, square);
    PATHREC *frame = path->nextPath;
    ZrPathAssignSelectedPath(other.table, frame);
    ZrPathBackupAction(key, UR_ENVELOPE, other.table);
    EXPECT_EQ(URTail()->words[0], 4u);
    const std::vector<NODEVALUE> squareFrame = NodesOf(frame);

    ZrPathBiLinear(path, bent);
    ZrPathAddBiLinearEnvelope(path, bent);
    const std::vector<NODEVALUE> bentFrame = NodesOf(frame);
    std::vector<NODEVALUE> want = NodesOf(path);
    PATHREC *plain = MakeBox(10, 10, 40, 40);
    ZrPathBiLinear(plain, bent);
    ZrPathBiLinear(plain, square);

    tagRECT dirty = {};
    EXPECT_EQ(ZrPathUndo(key, other.table, other.view, &dirty), 1);
    EXPECT_EQ(NodesOf(frame), squareFrame);
    EXPECT_EQ(NodesOf(path), NodesOf(plain));
    EXPECT_EQ(other.Plane(), other.FreshPlane());
    EXPECT_LE(dirty.left, 5);
    EXPECT_GE(dirty.right, 90);
    EXPECT_EQ(ZrPathRedo(key, other.table, other.view, &dirty), 1);
    EXPECT_EQ(NodesOf(frame), bentFrame);
    EXPECT_EQ(UndoLength(key), 1u);
    ZrPathDeletePtr(plain, 0);
}

TEST_F(UndoEnvelope, ABicubicFrameThatIsARectangleOnlyWritesTheOutline)
{
    DOCUMENT other;
    PATHREC *path = other.Add(MakeBox(10, 10, 40, 40));
    ZrPathAddBiBezierEnvelope(path, level);
    PATHREC *frame = path->nextPath;
    ZrPathAssignSelectedPath(other.table, frame);
    ZrPathBackupAction(key, UR_ENVELOPE, other.table);
    EXPECT_EQ(URTail()->words[0], 8u);

    ZrPathBiCubic(path, arched);
    ZrPathAddBiBezierEnvelope(path, arched);
    const std::vector<NODEVALUE> archedPath = NodesOf(path);
    EXPECT_EQ(ZrPathUndo(key, other.table, other.view, nullptr), 1);
    ZRPOINTFX read[8];
    ZrPathGetBiBezierEnvelope(frame, read);
    EXPECT_EQ(memcmp(read, level, sizeof level), 0);
    EXPECT_EQ(NodesOf(path), archedPath) << "the undistorted rectangle warps nothing";
    EXPECT_EQ(ZrPathRedo(key, other.table, other.view, nullptr), 1);
    EXPECT_NE(NodesOf(path), archedPath) << "any other frame does";
    ZrPathGetBiBezierEnvelope(frame, read);
    EXPECT_EQ(memcmp(read, arched, sizeof arched), 0);
}

TEST_F(UndoEnvelope, ARectangleNeedsLevelSidesThatStandAboveEachOther)
{
    const struct {
        const char *name;
        int point;
        ZRPOINTFX put;
        bool warps;
    } cases[] = {{"as it is", 0, level[0], false},
                 {"one top y", 2, Pt(32, 6), true},
                 {"one bottom y", 6, Pt(32, 45), true},
                 {"one x", 5, Pt(19, 46), true}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.name);
        FreeAllUndo();
        DOCUMENT other;
        PATHREC *path = other.Add(MakeBox(10, 10, 40, 40));
        ZRPOINTFX frame[8];
        std::copy(level, level + 8, frame);
        frame[each.point] = each.put;
        ZrPathAddBiBezierEnvelope(path, frame);
        ZrPathAssignSelectedPath(other.table, path->nextPath);
        ZrPathBackupAction(key, UR_ENVELOPE, other.table);
        const std::vector<NODEVALUE> before = NodesOf(path);
        ZrPathUndo(key, other.table, nullptr, nullptr);
        EXPECT_EQ(NodesOf(path) != before, each.warps);
    }
}

TEST_F(UndoEnvelope, WithoutAFrameTheStepCountsAndNothingChanges)
{
    ZrPathAddBiLinearEnvelope(c, square);
    ZrPathAssignSelectedPath(doc.table, c->nextPath);
    Backup(UR_ENVELOPE);
    const std::vector<NODEVALUE> before = NodesOf(a);
    ZrPathAssignSelectedPath(doc.table, nullptr);
    EXPECT_EQ(Back(), 1);
    EXPECT_EQ(NodesOf(a), before);
    EXPECT_EQ(ZrPathURFree(key, 0, 0), 1);
}

TEST_F(UndoEnvelope, ARecordThatOwnsNoPointsIsSteppedOver)
{
    doc.Select({a});
    Backup(UR_JOIN);
    BackupSelected(UR_ENVELOPE, doc.table);
    BackupSelectMove(UR_ENVELOPE, doc.table);
    EXPECT_EQ(Forward(), 1);
    EXPECT_EQ(Forward(), 1);
    EXPECT_EQ(ZrPathURFree(key, 0, 0), 1);
    EXPECT_EQ(ZrPathURFree(key, 0, 0), 1);
    EXPECT_EQ(UndoLength(key), 1u);
}

TEST_F(UndoEnvelope, WithoutMemoryNothingChanges)
{
    ZrPathAddBiLinearEnvelope(c, square);
    ZrPathAssignSelectedPath(doc.table, c->nextPath);
    Backup(UR_ENVELOPE);
    const std::vector<NODEVALUE> before = NodesOf(a);
    const int64_t live = FaultLiveBlocks(ALLOC_BUF);
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(Back(), 0);
    FaultSet(ALLOC_BUF, 0);
    EXPECT_EQ(NodesOf(a), before);
    EXPECT_EQ(FaultLiveBlocks(ALLOC_BUF), live);
    EXPECT_EQ(Back(), 1);
}

TEST_F(SameUR, TheSelectionOfTheLastRecordIsTheSame)
{
    EditNodes(c, {4});
    Backup(UR_SELECTION);
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_SELECTION), 1);
    EXPECT_EQ(UndoLength(key), 1u);
    EXPECT_EQ(undoNow.position, 1u);
    c->nodes[7].type |= PATHNODE_SELECTED;
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_SELECTION), 0) << "another count";
    c->nodes[4].type = 4;
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_SELECTION), 0) << "another node";
    EXPECT_EQ(UndoLength(key), 1u);
}

TEST_F(SameUR, AnEmptySelectionCountsAsTheSame)
{
    doc.Select({a});
    Backup(UR_SELECTION);
    doc.Select({});
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_SELECTION), 1);
}

TEST_F(SameUR, AnotherActionIsNotTheSame)
{
    doc.Select({a});
    Backup(UR_SELECTION);
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_MOVE), 0);
    Backup(UR_MOVE);
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_SELECTION), 0);
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_MOVE), 0);
}

TEST_F(SameUR, WithRedoRecordsBehindTheNextOfThemIsComparedAndThePositionRises)
{
    doc.Select({a});
    Backup(UR_SELECTION);
    Backup(UR_SELECTION);
    doc.Select({b});
    Backup(UR_JOIN);
    Back();
    Back();
    URLoad(key);
    ASSERT_EQ(undoNow.position, 1u);
    doc.Select({c});
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_SELECTION), 0) << "record 2 holds b since it was applied";
    URLoad(key);
    EXPECT_EQ(undoNow.position, 2u);
    EXPECT_EQ(UndoLength(key), 3u);
}

TEST_F(SameUR, WithoutMemoryItIsNotTheSame)
{
    doc.Select({a});
    Backup(UR_SELECTION);
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(ZrPathSameUR(key, doc.table, UR_SELECTION), 0);
    FaultSet(ALLOC_BUF, 0);
    EXPECT_EQ(UndoLength(key), 1u);
    EXPECT_EQ(undoNow.position, 1u);
}
