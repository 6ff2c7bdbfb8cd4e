#include "edit/undo.h"
#include "frame/faults.h"
#include "support/undolists.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

class UndoList : public testing::Test {
  protected:
    void SetUp() override
    {
        FreeAllUndo();
    }
    void TearDown() override
    {
        FreeAllUndo();
        EXPECT_EQ(FaultLiveBlocks(ALLOC_BUF), live);
    }
    int64_t live = FaultLiveBlocks(ALLOC_BUF);
};

} // namespace

TEST_F(UndoList, EveryRecordCountsAsPast)
{
    ZrPathBackupAction(1, UR_JOIN, nullptr);
    EXPECT_EQ(UndoLength(1), 1u);
    EXPECT_EQ(undoNow.position, 1u);
    ZrPathBackupAction(1, UR_DISJOIN, nullptr);
    EXPECT_EQ(UndoLength(1), 2u);
    EXPECT_EQ(undoNow.position, 2u);
    EXPECT_EQ(undoNow.head->action, uint32_t{UR_JOIN});
    EXPECT_EQ(URTail()->action, uint32_t{UR_DISJOIN});
}

TEST_F(UndoList, ACodeWithoutARecordReturnsOneAndMakesNoSlot)
{
    for (int32_t key = 1; key <= 40; key++) EXPECT_EQ(ZrPathBackupAction(key, 18002, nullptr), 1);
    EXPECT_EQ(undoNow.head, nullptr);
    ZrPathBackupAction(41, UR_JOIN, nullptr);
    EXPECT_EQ(UndoLength(41), 1u) << "slots are free";
}

TEST_F(UndoList, WithoutASelectionThereIsNoMoveAndNoEnvelopeToRecord)
{
    ZrPathBackupAction(1, UR_MOVE, nullptr);
    ZrPathBackupAction(1, UR_ENVELOPE, nullptr);
    EXPECT_EQ(UndoLength(1), 0u);
}

TEST_F(UndoList, KeyZeroIsNoDocument)
{
    EXPECT_EQ(ZrPathBackupAction(0, UR_JOIN, nullptr), 1);
    EXPECT_EQ(ZrPathUndo(0, nullptr, nullptr, nullptr), 0);
    BackupSelected(UR_JOIN, nullptr);
    URStore(0);
    EXPECT_EQ(UndoLength(0), 0u);
}

TEST_F(UndoList, DocumentsHaveListsOfTheirOwn)
{
    ZrPathBackupAction(1, UR_JOIN, nullptr);
    ZrPathBackupAction(2, UR_JOIN, nullptr);
    ZrPathBackupAction(2, UR_JOIN, nullptr);
    EXPECT_EQ(UndoLength(1), 1u);
    EXPECT_EQ(UndoLength(2), 2u);
    EXPECT_EQ(UndoLength(3), 0u);
}

TEST_F(UndoList, TheTwentyFirstDocumentsListIsNotKept)
{
    for (int32_t key = 1; key <= 21; key++) ZrPathBackupAction(key, UR_JOIN, nullptr);
    EXPECT_NE(undoNow.head, nullptr) << "it stays loaded";
    EXPECT_EQ(UndoLength(20), 1u);
    EXPECT_EQ(UndoLength(21), 0u);
}

TEST_F(UndoList, AnEmptiedListGivesItsSlotUpAndTheLaterOnesMoveDown)
{
    for (int32_t key = 1; key <= 20; key++) ZrPathBackupAction(key, UR_JOIN, nullptr);
    ZrPathURFree(5, 0, 1);
    ZrPathBackupAction(21, UR_JOIN, nullptr);
    for (int32_t key = 1; key <= 21; key++) {
        EXPECT_EQ(UndoLength(key), key == 5 ? 0u : 1u) << key;
    }
}

TEST_F(UndoList, FreeingTakesTheOldestOrTheNewest)
{
    for (const int32_t action : {UR_JOIN, UR_DISJOIN, UR_JOIN}) ZrPathBackupAction(1, action, nullptr);
    EXPECT_EQ(ZrPathURFree(1, 0, 1), 1);
    EXPECT_EQ(UndoLength(1), 2u);
    EXPECT_EQ(undoNow.head->action, uint32_t{UR_DISJOIN});
    EXPECT_EQ(undoNow.position, 2u);
    EXPECT_EQ(ZrPathURFree(1, 0, 0), 1);
    EXPECT_EQ(UndoLength(1), 1u);
    EXPECT_EQ(undoNow.head->action, uint32_t{UR_DISJOIN});
    EXPECT_EQ(undoNow.position, 1u);
    EXPECT_EQ(ZrPathURFree(1, 0, 0), 1);
    EXPECT_EQ(UndoLength(1), 0u);
    EXPECT_EQ(ZrPathURFree(1, 0, 0), 1) << "an empty list stays empty";
    EXPECT_EQ(ZrPathURFree(1, 0, 1), 1);
}

TEST_F(UndoList, FreeingTheOldestAtPositionZeroLeavesItThere)
{
    ZrPathBackupAction(1, UR_JOIN, nullptr);
    ZrPathBackupAction(1, UR_JOIN, nullptr);
    ZrPathUndo(1, nullptr, nullptr, nullptr);
    ZrPathUndo(1, nullptr, nullptr, nullptr);
    ZrPathURFree(1, 0, 1);
    URLoad(1);
    EXPECT_EQ(undoNow.position, 0u);
    EXPECT_EQ(UndoLength(1), 1u);
}

TEST_F(UndoList, FreeingTheNewestLowersAPositionBeyondTheEndOnly)
{
    for (int i = 0; i < 3; i++) ZrPathBackupAction(1, UR_JOIN, nullptr);
    ZrPathUndo(1, nullptr, nullptr, nullptr);
    ZrPathUndo(1, nullptr, nullptr, nullptr);
    ZrPathURFree(1, 0, 0);
    URLoad(1);
    EXPECT_EQ(undoNow.position, 1u);
    ZrPathURFree(1, 0, 0);
    ZrPathURFree(1, 0, 0);
    URLoad(1);
    EXPECT_EQ(undoNow.position, 0u);
}

TEST_F(UndoList, ARecordOfTheCallersOwnKindIsKeptAndSteppedOver)
{
    for (const int32_t action : {18002, 17000, 18017}) {
        ZrPathBackupAction(1, UR_JOIN, nullptr);
        EXPECT_EQ(BackupSelected(action, nullptr), 1);
        EXPECT_EQ(URTail()->action, static_cast<uint32_t>(action));
        EXPECT_EQ(ZrPathURFree(1, 0, 0), 1);
        EXPECT_EQ(UndoLength(1), 2u) << action;
        EXPECT_EQ(ZrPathURFree(1, 0, 1), 1);
        EXPECT_EQ(ZrPathRedo(1, nullptr, nullptr, nullptr), 1);
        EXPECT_EQ(ZrPathUndo(1, nullptr, nullptr, nullptr), 1);
        FreeAllUndo();
    }
}

TEST_F(UndoList, RecordsWithoutAKeyAreNotCountedInTheSlot)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(3, 4, 10, 10));
    doc.Select({a});
    ZrPathBackupAction(1, UR_JOIN, nullptr);
    EXPECT_EQ(BackupSelected(18003, doc.table), 1);
    EXPECT_EQ(URTail()->count, 1u);
    EXPECT_EQ(URTail()->words[0], reinterpret_cast<uintptr_t>(a));
    EXPECT_EQ(BackupSelectMove(18004, doc.table), 1);
    EXPECT_EQ(URTail()->action, 18004u);
    EXPECT_EQ(URTail()->count, 2u);
    EXPECT_EQ(URTail()->words[0], 3u * 65536);
    EXPECT_EQ(URTail()->words[1], 4u * 65536);
    EXPECT_EQ(BackupDuplicate(0, doc.table), 1);
    EXPECT_EQ(URTail()->action, uint32_t{UR_SELECTION});
    EXPECT_EQ(undoNow.position, 4u);
    URLoad(1);
    EXPECT_EQ(undoNow.position, 1u);
    EXPECT_EQ(UndoLength(1), 4u) << "they hang on the list all the same";
}

TEST_F(UndoList, RecordsWithoutAKeyOnAnEmptyListAreInNoSlot)
{
    URLoad(1);
    BackupSelected(UR_JOIN, nullptr);
    EXPECT_EQ(undoNow.position, 1u);
    EXPECT_EQ(UndoLength(1), 0u);
}

TEST_F(UndoList, NodeZeroOfARecordWithoutNodesIsNotRecorded)
{
    DOCUMENT doc;
    doc.Select({doc.Add(MakePath({}))});
    ZrPathBackupAction(1, UR_MOVE, doc.table);
    EXPECT_EQ(BackupSelectMove(UR_MOVE, doc.table), 1);
    EXPECT_EQ(UndoLength(1), 0u);
}

TEST_F(UndoList, StepsOutsideTheListChangeNothing)
{
    EXPECT_EQ(ZrPathUndo(1, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(ZrPathRedo(1, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(ZrPathSameUR(1, nullptr, UR_SELECTION), 0);
    ZrPathBackupAction(1, UR_JOIN, nullptr);
    EXPECT_EQ(ZrPathRedo(1, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(ZrPathUndo(1, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(ZrPathUndo(1, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(ZrPathSameUR(1, nullptr, UR_SELECTION), 0) << "position 0";
    EXPECT_EQ(ZrPathRedo(1, nullptr, nullptr, nullptr), 1);
    URLoad(1);
    EXPECT_EQ(undoNow.position, 1u);
}

TEST_F(UndoList, ANewRecordStandsBehindTheOldRedoRecords)
{
    for (int i = 0; i < 3; i++) ZrPathBackupAction(1, UR_JOIN, nullptr);
    ZrPathUndo(1, nullptr, nullptr, nullptr);
    ZrPathUndo(1, nullptr, nullptr, nullptr);
    ZrPathBackupAction(1, UR_DISJOIN, nullptr);
    EXPECT_EQ(UndoLength(1), 4u);
    EXPECT_EQ(undoNow.position, 2u);
    EXPECT_EQ(URTail()->action, uint32_t{UR_DISJOIN});
}

TEST_F(UndoList, TheLimitChangesNothingAndTheOtherCallsHaveNoLastingEffect)
{
    ZrPathBackupAction(1, UR_JOIN, nullptr);
    EXPECT_EQ(ZrPathSetUndoLimit(), 1);
    EXPECT_EQ(ZrPathGetURAction(), 1);
    EXPECT_EQ(undoNow.position, 2u);
    EXPECT_EQ(UndoLength(1), 1u);
    EXPECT_EQ(undoNow.position, 1u);
    int32_t first = 5;
    int32_t second = 6;
    EXPECT_EQ(ZrPathZrPathGetURInfo(&first, &second), 1);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(ZrPathZrPathGetURInfo(nullptr, nullptr), 1);
    for (int i = 0; i < 1000; i++) ZrPathBackupAction(1, UR_JOIN, nullptr);
    EXPECT_EQ(UndoLength(1), 1001u);
}

TEST_F(UndoList, WithoutMemoryTheListStaysAsItWas)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(3, 4, 10, 10));
    const ZRPOINTFX frame[4] = {};
    ZrPathAddBiLinearEnvelope(a, frame);
    ZrPathAssignSelectedPathBlindly(doc.table, a);
    ZrPathBackupAction(1, UR_JOIN, nullptr);
    for (const int32_t action : {UR_SELECTION, UR_MOVE, UR_JOIN, UR_DISJOIN, UR_ENVELOPE})
        for (int64_t n = 1;; n++) {
            FaultSet(ALLOC_BUF, n);
            EXPECT_EQ(ZrPathBackupAction(1, action, doc.table), 1);
            const int struck = FaultStruck();
            FaultSet(ALLOC_BUF, 0);
            if (!struck) {
                EXPECT_EQ(UndoLength(1), 2u);
                ZrPathURFree(1, 0, 0);
                break;
            }
            EXPECT_EQ(UndoLength(1), 1u);
            EXPECT_EQ(undoNow.position, 1u);
        }
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(BackupSelected(18003, doc.table), 1);
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(BackupSelectMove(18003, doc.table), 1);
    FaultSet(ALLOC_BUF, 1);
    EXPECT_EQ(BackupDuplicate(0, doc.table), 0);
    FaultSet(ALLOC_BUF, 0);
    EXPECT_EQ(UndoLength(1), 1u);
}
