/* table_test.cpp - the path table: groups, queries, ownership, and what failures leave behind. */
#include "frame/faults.h"
#include "store/store.h"
#include "support/shapes.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

using namespace zr32;
using zr32test::MakeBox;
using zr32test::MakePath;

namespace {

struct Table : testing::Test {
    int64_t heapBefore = 0;
    int64_t bufBefore = 0;
    COORDSTRUCT *view = nullptr;
    PATHTBL *table = nullptr;
    tagRECT dirty = {-1, -1, -1, -1};

    void SetUp() override
    {
        ZrPathInit();
        FaultSet(ALLOC_BUF, 0);
        FaultSet(ALLOC_PATHHEAP, 0);
        heapBefore = FaultLiveBlocks(ALLOC_PATHHEAP);
        bufBefore = FaultLiveBlocks(ALLOC_BUF);
        ZrPathCoordStruct(0, 0, 60, 40, 0, 0, 1, nullptr, &view);
    }

    void TearDown() override
    {
        FaultSet(ALLOC_BUF, 0);
        FaultSet(ALLOC_PATHHEAP, 0);
        ZrPathDeleteCoordStruct(view);
        ZrPathTblDelete(table);
        EXPECT_EQ(heapBefore, FaultLiveBlocks(ALLOC_PATHHEAP)) << "leak";
        EXPECT_EQ(bufBefore, FaultLiveBlocks(ALLOC_BUF)) << "leak";
    }

    PATHREC *AddBox(const char *name, uint32_t flags = 0)
    {
        PATHREC *path = MakeBox(5, 5, 20, 20);
        path->flags = flags;
        EXPECT_EQ(1, ZrPathAddPathGroup(&table, path, name, view, &dirty));
        return path;
    }
};

size_t BlockSize(const void *block)
{
    return PathHeapSize(PathHeap(), heapNoSerialize, block);
}

TEST_F(Table, NewTableHasOneEmptyGroup)
{
    ASSERT_EQ(1, ZrPathNew(&table));
    EXPECT_EQ(tableHeaderSize + sizeof(PATHGROUP), BlockSize(table));
    EXPECT_EQ(0u, table->currentGroup);
    EXPECT_EQ(0x10000u, table->version);
    EXPECT_EQ(1u, table->groupCount);
    EXPECT_EQ(nullptr, table->lpDB);
    EXPECT_EQ(nullptr, table->groups[0].activePath);
    EXPECT_EQ(0, table->groups[0].name[0]);
    EXPECT_EQ(0, ZrPathNew(nullptr));
}

TEST_F(Table, NewTableWithoutMemoryIsNull)
{
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(0, ZrPathNew(&table));
    EXPECT_EQ(nullptr, table);
}

TEST_F(Table, FirstGroupMakesTableAndBufferOfTheViewsRightAndBottom)
{
    ZrPathCoordStruct(10, 5, 60, 40, 3, 4, 2, nullptr, &view);
    PATHREC *path = AddBox("first", PATHREC_SELECTED);
    ASSERT_NE(nullptr, table);
    EXPECT_EQ(60, table->dbWidth) << "without subtracting left";
    EXPECT_EQ(40, table->dbHeight);
    EXPECT_EQ(3, table->dbScrollX);
    EXPECT_EQ(4, table->dbScrollY);
    EXPECT_EQ(2, table->dbZoom);
    EXPECT_LE(60u * 40u, BufMemSize(table->lpDB));
    EXPECT_EQ(table->lpDB, view->displayBuffer);
    EXPECT_STREQ("first", table->groups[0].name);
    EXPECT_EQ(path, table->groups[0].activePath);
    EXPECT_EQ(path, table->groups[0].selectedPath);
    EXPECT_EQ(1u, table->groupCount);
}

TEST_F(Table, RectangleToRepaintIsThatOfTheDrawnOutline)
{
    /* Lines from 5.5 to 20.5: pixels 5 to 20, 1 more for the neighbours, 2 more on each side. */
    AddBox("one");
    EXPECT_EQ(2, dirty.left);
    EXPECT_EQ(2, dirty.top);
    EXPECT_EQ(23, dirty.right);
    EXPECT_EQ(23, dirty.bottom);
    EXPECT_EQ(1, table->lpDB[5 * 60 + 12]);
    PATHREC *path = MakeBox(30, 10, 40, 20);
    ASSERT_EQ(1, ZrPathAddPathGroup(&table, path, "two", view, &dirty));
    EXPECT_EQ(27, dirty.left);
    EXPECT_EQ(43, dirty.right);
    EXPECT_EQ(0, table->lpDB[5 * 60 + 12]) << "the group before is no longer shown";
    EXPECT_EQ(1, table->lpDB[10 * 60 + 35]);
}

TEST_F(Table, EmptyFirstGroupIsTakenOverAndASecondOneGrowsTheBlock)
{
    ASSERT_EQ(1, ZrPathNew(&table));
    PATHREC *first = AddBox("one");
    EXPECT_EQ(1u, table->groupCount);
    EXPECT_EQ(TableBlockSize(1), BlockSize(table));
    PATHREC *second = AddBox("two");
    EXPECT_EQ(2u, table->groupCount);
    EXPECT_EQ(1u, table->currentGroup);
    EXPECT_EQ(tableHeaderSize + 2 * sizeof(PATHGROUP), BlockSize(table));
    EXPECT_EQ(1u, table->groups[1].index);
    EXPECT_EQ(first, table->groups[0].activePath);
    EXPECT_EQ(second, table->groups[1].activePath);
    EXPECT_EQ(nullptr, table->groups[1].selectedPath);
    EXPECT_STREQ("one", table->groups[0].name);
    EXPECT_STREQ("two", table->groups[1].name);
}

TEST_F(Table, AnEmptyGroupKeepsTheSelectionThatItWasGiven)
{
    PATHREC *path = MakePath({{6, 1, 2}});
    PATHREC *chosen = MakePath({{6, 3, 4}});
    ZrPathNew(&table);
    table->groups[0].selectedPath = chosen;
    EXPECT_EQ(1, ZrPathAddPathGroup(&table, path, "one", nullptr, nullptr));
    EXPECT_EQ(path, table->groups[0].activePath);
    EXPECT_EQ(chosen, table->groups[0].selectedPath);
    ZrPathDeletePtr(chosen, 0);
}

TEST_F(Table, ATableWithoutGroupsGetsItsFirst)
{
    PATHREC *path = MakePath({{6, 1, 2}});
    ZrPathNew(&table);
    table->groupCount = 0;
    EXPECT_EQ(1, ZrPathAddPathGroup(&table, path, "one", nullptr, nullptr));
    EXPECT_EQ(1u, table->groupCount);
    EXPECT_EQ(0u, table->currentGroup);
    EXPECT_EQ(path, table->groups[0].activePath);
}

TEST_F(Table, RecordOneStepBackStandsIn)
{
    PATHREC *paths[] = {MakeBox(0, 0, 5, 5), MakeBox(5, 5, 9, 9), MakeBox(7, 7, 9, 9)};
    ZrPathChainZrPath(3, paths);
    ASSERT_EQ(1, ZrPathAddPathGroup(&table, paths[2], "g", view, &dirty));
    EXPECT_EQ(paths[1], table->groups[0].activePath) << "one step only";
}

TEST_F(Table, SelectedPathIsTheFirstSelectedOfTheChain)
{
    PATHREC *paths[] = {MakeBox(0, 0, 5, 5), MakeBox(5, 5, 9, 9), MakeBox(7, 7, 9, 9)};
    ZrPathChainZrPath(3, paths);
    paths[0]->flags = 0x1000;
    paths[1]->flags = 0x88001000;
    paths[2]->flags = PATHREC_SELECTED;
    ASSERT_EQ(1, ZrPathAddPathGroup(&table, paths[0], "g", view, &dirty));
    EXPECT_EQ(paths[1], table->groups[0].selectedPath);
}

TEST_F(Table, NamesAreCutTo255BytesAndMayBeNull)
{
    const std::string name(1000, 'n');
    AddBox(name.c_str());
    EXPECT_EQ(255u, strlen(table->groups[0].name));
    AddBox(nullptr);
    EXPECT_EQ(0, table->groups[1].name[0]);
}

TEST_F(Table, NullRecordAndNullTablePointerAreRefused)
{
    EXPECT_EQ(0, ZrPathAddPathGroup(&table, nullptr, "g", view, &dirty));
    EXPECT_EQ(nullptr, table);
    PATHREC *path = MakeBox(0, 0, 5, 5);
    EXPECT_EQ(0, ZrPathAddPathGroup(nullptr, path, "g", view, &dirty));
    ZrPathDeletePtr(path, 0);
}

TEST_F(Table, WithoutAViewOrABufferNothingIsDrawn)
{
    PATHREC *path = MakeBox(0, 0, 5, 5);
    EXPECT_EQ(1, ZrPathAddPathGroup(&table, path, "g", nullptr, &dirty));
    EXPECT_EQ(nullptr, table->lpDB);
    EXPECT_EQ(path, table->groups[0].activePath);
    EXPECT_EQ(1, ZrPathAddPathGroup(&table, MakeBox(1, 1, 2, 2), "h", view, nullptr)) << "the view has no buffer";
    EXPECT_EQ(2u, table->groupCount);
    EXPECT_EQ(-1, dirty.left);
}

TEST_F(Table, FirstGroupWithoutMemoryLeavesTableAndViewAsTheyWere)
{
    PATHREC *path = MakeBox(0, 0, 5, 5);
    const int64_t heap = FaultLiveBlocks(ALLOC_PATHHEAP);
    const int64_t buf = FaultLiveBlocks(ALLOC_BUF);
    for (ALLOCATOR allocator : {ALLOC_PATHHEAP, ALLOC_BUF}) {
        FaultSet(allocator, 1);
        EXPECT_EQ(0, ZrPathAddPathGroup(&table, path, "g", view, &dirty));
        EXPECT_TRUE(FaultStruck());
        EXPECT_EQ(nullptr, table);
        EXPECT_EQ(nullptr, view->displayBuffer);
        EXPECT_EQ(heap, FaultLiveBlocks(ALLOC_PATHHEAP));
        EXPECT_EQ(buf, FaultLiveBlocks(ALLOC_BUF));
    }
    view->right = view->bottom = INT32_MAX;
    EXPECT_EQ(0, ZrPathAddPathGroup(&table, path, "g", view, &dirty)) << "a buffer that cannot be had";
    EXPECT_EQ(nullptr, table);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Table, SecondGroupWithoutMemoryLeavesTheTable)
{
    AddBox("one");
    PATHTBL *const block = table;
    PATHREC *path = MakeBox(0, 0, 5, 5);
    const std::string shown(reinterpret_cast<const char *>(table->lpDB), 60 * 40);
    FaultSet(ALLOC_PATHHEAP, 1);
    EXPECT_EQ(0, ZrPathAddPathGroup(&table, path, "two", view, &dirty));
    EXPECT_EQ(block, table);
    EXPECT_EQ(1u, table->groupCount);
    EXPECT_EQ(0u, table->currentGroup);
    EXPECT_EQ(shown, std::string(reinterpret_cast<const char *>(table->lpDB), 60 * 40));
    ZrPathDeletePtr(path, 0);
}

TEST_F(Table, ChainAddedTwiceIsFreedOnce)
{
    PATHREC *path = AddBox("one");
    EXPECT_EQ(1, ZrPathAddPathGroup(&table, path, "again", view, &dirty));
}

TEST_F(Table, DeleteFreesTheWholeChainFromItsHead)
{
    PATHREC *paths[] = {MakeBox(0, 0, 5, 5), MakeBox(5, 5, 9, 9), MakeBox(7, 7, 9, 9)};
    ZrPathChainZrPath(3, paths);
    ZrPathNew(&table);
    table->groups[0].activePath = paths[2];
    EXPECT_EQ(1, ZrPathTblDelete(table));
    table = nullptr;
    EXPECT_EQ(heapBefore, FaultLiveBlocks(ALLOC_PATHHEAP));
    EXPECT_EQ(0, ZrPathTblDelete(nullptr));
}

TEST_F(Table, DeletingTheBufferKeepsTheSizes)
{
    AddBox("one");
    EXPECT_EQ(1, ZrPathTblDeletelpDB(table));
    EXPECT_EQ(nullptr, table->lpDB);
    EXPECT_EQ(60, table->dbWidth);
    EXPECT_EQ(1, ZrPathTblDeletelpDB(table)) << "again is harmless";
    EXPECT_EQ(0, ZrPathTblDeletelpDB(nullptr));
}

TEST_F(Table, FindTellsWhatIsAskedFor)
{
    PATHREC *path = AddBox("one", PATHREC_SELECTED);
    uint32_t group = 9;
    PATHREC *active = nullptr;
    PATHREC *selected = nullptr;
    int32_t live = 9;
    ZrPathFind(nullptr, &group, &active, &selected, &live);
    EXPECT_EQ(9u, group);
    EXPECT_EQ(9, live);
    ZrPathFind(table, &group, &active, &selected, &live);
    EXPECT_EQ(0u, group);
    EXPECT_EQ(path, active);
    EXPECT_EQ(path, selected);
    EXPECT_EQ(1, live);
    ZrPathFind(table, nullptr, nullptr, nullptr, nullptr);
    table->version = 0;
    ZrPathFind(table, nullptr, nullptr, nullptr, &live);
    EXPECT_EQ(0, live);
    table->currentGroup = 7; /* outside: there is no current group */
    ZrPathFind(table, &group, &active, &selected, nullptr);
    EXPECT_EQ(7u, group);
    EXPECT_EQ(nullptr, active);
    EXPECT_EQ(nullptr, selected);
}

TEST_F(Table, FindGroupsAndNames)
{
    uint32_t count = 9;
    ZrPathFindGroups(nullptr, &count);
    EXPECT_EQ(0u, count);
    const char *name = "kept";
    ZrPathFindGroupName(nullptr, 0, &name);
    EXPECT_STREQ("kept", name);
    AddBox("one");
    AddBox("two");
    ZrPathFindGroups(table, &count);
    EXPECT_EQ(2u, count);
    ZrPathFindGroupName(table, 0, &name);
    EXPECT_EQ(table->groups[0].name, name);
    ZrPathFindGroupName(table, 1, &name);
    EXPECT_EQ(table->groups[1].name, name);
    for (int32_t bad : {-1, 2, INT32_MIN, INT32_MAX}) {
        name = "kept";
        ZrPathFindGroupName(table, bad, &name);
        EXPECT_EQ(nullptr, name) << bad;
    }
}

TEST_F(Table, AssignActivePathGoesToTheHead)
{
    ZrPathNew(&table);
    PATHREC *paths[] = {MakeBox(0, 0, 5, 5), MakeBox(5, 5, 9, 9)};
    ZrPathChainZrPath(2, paths);
    paths[1]->flags = PATHREC_SELECTED;
    EXPECT_EQ(1, ZrPathAssignActivePath(table, paths[1]));
    EXPECT_EQ(paths[0], table->groups[0].activePath);
    EXPECT_EQ(paths[1], table->groups[0].selectedPath);
    paths[1]->flags = 0;
    EXPECT_EQ(1, ZrPathAssignActivePath(table, paths[0]));
    EXPECT_EQ(nullptr, table->groups[0].selectedPath);
    EXPECT_EQ(0, ZrPathAssignActivePath(nullptr, paths[0]));
    EXPECT_EQ(0, ZrPathAssignActivePath(table, nullptr));
    EXPECT_EQ(paths[0], table->groups[0].activePath);
}

TEST_F(Table, AssignSelectedPathRefusesAnUnselectedRecord)
{
    PATHREC *paths[] = {MakeBox(0, 0, 5, 5), MakeBox(5, 5, 9, 9)};
    ZrPathChainZrPath(2, paths);
    paths[0]->flags = paths[1]->flags = PATHREC_SELECTED;
    ChainLink(selectedChain, paths[0], paths[1]);
    ZrPathAddPathGroup(&table, paths[0], "g", view, &dirty);
    EXPECT_EQ(1, ZrPathAssignSelectedPath(table, nullptr));
    EXPECT_EQ(nullptr, table->groups[0].selectedPath);
    EXPECT_EQ(1, ZrPathAssignSelectedPath(table, paths[1]));
    EXPECT_EQ(paths[0], table->groups[0].selectedPath) << "the head of its selected chain";
    paths[1]->flags = 0x08000000;
    EXPECT_EQ(0, ZrPathAssignSelectedPath(table, paths[1]));
    EXPECT_EQ(paths[0], table->groups[0].selectedPath);
    EXPECT_EQ(0, ZrPathAssignSelectedPath(nullptr, paths[0]));
}

TEST_F(Table, AssignBlindlyTakesTheFirstRecordWithAnyFlag)
{
    PATHREC *paths[] = {MakeBox(0, 0, 5, 5), MakeBox(5, 5, 9, 9), MakeBox(6, 6, 9, 9)};
    ZrPathChainZrPath(3, paths);
    paths[1]->flags = PATHREC_SELECTED;
    ZrPathAddPathGroup(&table, paths[0], "g", view, &dirty);
    ZrPathAssignSelectedPath(table, nullptr);
    EXPECT_EQ(1, ZrPathAssignSelectedPathBlindly(table, paths[2]));
    EXPECT_EQ(paths[1], table->groups[0].selectedPath);
    paths[0]->flags = PATHREC_HIDDEN; /* the first with a flag, but not selected: refused, yet 1 */
    EXPECT_EQ(1, ZrPathAssignSelectedPathBlindly(table, paths[2]));
    EXPECT_EQ(paths[1], table->groups[0].selectedPath);
    paths[0]->flags = paths[1]->flags = 0;
    EXPECT_EQ(1, ZrPathAssignSelectedPathBlindly(table, paths[0]));
    EXPECT_EQ(nullptr, table->groups[0].selectedPath);
    EXPECT_EQ(0, ZrPathAssignSelectedPathBlindly(table, nullptr));
    EXPECT_EQ(0, ZrPathAssignSelectedPathBlindly(nullptr, paths[0]));
}

/* A row of records, each selected or not and joined to its successor or not, in one selected chain. */
struct INFOCASE {
    const char *name;
    const char *records; /* a letter each: s selected, j selected and with a nextJoin, u unselected */
    int asked;
    int32_t selected;
    int32_t joined;
    int32_t wantSelected;
    int32_t wantJoined;
};

TEST_F(Table, InfoAnswersByWhatTheWordsHold)
{
    const INFOCASE cases[] = {
        {"lone selected, both 3", "s", 0, 3, 3, 1, 0},
        {"lone unselected, both 3", "u", 0, 3, 3, 0, 0},
        {"lone joined, both 3", "j", 0, 3, 3, 1, 1},
        {"with others, both 3", "ss", 1, 3, 3, 3, 0},
        {"first of two", "ss", 0, 3, 0, 3, 0},
        {"selection asked of the chain's head", "us", 1, 0, 0, 0, 0},
        {"join word 3 alone is overwritten", "j", 0, 0, 3, 1, 3},
        {"a single selection", "s", 0, 0, 0, 1, 3},
        {"joined, then not: the last is not looked at", "js", 0, 0, 0, 1, 1},
        {"not joined, then joined", "sj", 0, 0, 0, 1, 0},
        {"all but the last joined", "jjs", 2, 0, 0, 1, 1},
        {"some joined", "jss", 2, 0, 0, 1, 2},
        {"some joined, the other way", "sjs", 2, 7, 7, 1, 2},
        {"none joined", "sss", 1, 0, 0, 1, 0},
    };
    for (const INFOCASE &c : cases) {
        const size_t count = strlen(c.records);
        PATHREC *paths[4] = {};
        PATHREC *other = MakePath({{6, 0, 0}});
        for (size_t i = 0; i < count; i++) {
            paths[i] = MakePath({{6, 0, 0}});
            if (c.records[i] != 'u') paths[i]->flags = PATHREC_SELECTED;
            if (c.records[i] == 'j') paths[i]->nextJoin = other;
            if (i > 0) ChainLink(selectedChain, paths[i - 1], paths[i]);
        }
        int32_t selected = c.selected;
        int32_t joined = c.joined;
        ZrPathInfo(paths[c.asked], &selected, &joined);
        EXPECT_EQ(c.wantSelected, selected) << c.name;
        EXPECT_EQ(c.wantJoined, joined) << c.name;
        ZrPathInfo(paths[c.asked], nullptr, nullptr);
        ZrPathDeletePtr(paths[0], 1);
        ZrPathDeletePtr(other, 0);
    }
}

TEST_F(Table, InfoOfNullLeavesTheWords)
{
    int32_t selected = 3;
    int32_t joined = 5;
    ZrPathInfo(nullptr, &selected, &joined);
    EXPECT_EQ(3, selected);
    EXPECT_EQ(5, joined);
}

TEST_F(Table, JoinedByItsPredecessorCounts)
{
    PATHREC *paths[] = {MakePath({{6, 0, 0}}), MakePath({{6, 0, 0}})};
    ChainLink(joinChain, paths[0], paths[1]);
    int32_t joined = 3;
    int32_t selected = 3;
    ZrPathInfo(paths[1], &selected, &joined);
    EXPECT_EQ(1, joined);
    EXPECT_EQ(0, selected);
    ZrPathDeletePtr(paths[0], 0);
    ZrPathDeletePtr(paths[1], 0);
}

} // namespace
