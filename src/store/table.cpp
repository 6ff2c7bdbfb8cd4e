/* table.cpp - the path table: named groups, each the owner of one table chain, with one current, and the document's
 * display buffer.
 *
 * Queries act on the current group. A table whose currentGroup lies outside its groups has no current group: queries
 * give null and nothing is touched. Adding a group draws it, through the display room's own exports.
 */
#include "store/store.h"
#include <zr32path/display.h>

#include <algorithm>
#include <cstring>

namespace zr32 {

namespace {

PATHREC *FirstSelected(PATHREC *path)
{
    while (path && !PathIsSelected(path)) path = path->nextPath;
    return path;
}

PATHTBL *TableAlloc()
{
    PATHTBL *table = static_cast<PATHTBL *>(PathHeapAlloc(PathHeap(), heapZero, TableBlockSize(1)));
    if (!table) return nullptr;
    table->version = 0x10000;
    table->groupCount = 1;
    return table;
}

/* The entry is without paths, but may have a name or a selection of its own, which then stay. */
void GroupFill(PATHGROUP *group, const char *name, PATHREC *path)
{
    if (!group->name[0] && name) {
        const size_t length = strnlen(name, sizeof group->name - 1);
        memcpy(group->name, name, length);
        group->name[length] = 0;
    }
    group->activePath = path;
    if (!group->selectedPath) group->selectedPath = FirstSelected(path);
}

/* A table for the first group and the display buffer of its view; null, with the view as it was, without memory. */
PATHTBL *TableForView(COORDSTRUCT *view)
{
    PATHTBL *table = TableAlloc();
    if (!table || !view) return table;
    /* The first view is expected to start at the window's origin, so its right and bottom are the size. */
    table->lpDB = DisplayBufferAlloc(view->right, view->bottom);
    if (!table->lpDB) {
        PathHeapFree(PathHeap(), heapNoSerialize, table);
        return nullptr;
    }
    table->dbWidth = view->right;
    table->dbHeight = view->bottom;
    table->dbScrollX = view->scrollX;
    table->dbScrollY = view->scrollY;
    table->dbZoom = view->zoom;
    view->displayBuffer = table->lpDB;
    return table;
}

/* Adds a zeroed entry; null without memory, the table is then as it was. */
PATHTBL *TableGrow(PATHTBL *table)
{
    const size_t size = TableBlockSize(size_t{table->groupCount} + 1);
    void *block = PathHeapReAlloc(PathHeap(), heapNoSerialize, table, size);
    if (!block) return nullptr;
    table = static_cast<PATHTBL *>(block);
    memset(&table->groups[table->groupCount], 0, sizeof(PATHGROUP));
    return table;
}

} // namespace

PATHGROUP *TableCurrentGroup(PATHTBL *table)
{
    return table && table->currentGroup < table->groupCount ? &table->groups[table->currentGroup] : nullptr;
}

const PATHGROUP *TableCurrentGroup(const PATHTBL *table)
{
    return table && table->currentGroup < table->groupCount ? &table->groups[table->currentGroup] : nullptr;
}

extern "C" {

ZRPATHAPI int32_t ZrPathNew(PATHTBL **table)
{
    if (!table) return 0;
    *table = TableAlloc();
    return *table != nullptr;
}

ZRPATHAPI int32_t ZrPathAddPathGroup(PATHTBL **table, PATHREC *path, const char *name, COORDSTRUCT *view,
                                     struct tagRECT *dirty)
{
    if (!table || !path) return 0;
    if (path->prevPath) path = path->prevPath; /* one step back only, deliberately */

    PATHTBL *grown = *table;
    uint32_t group = 0;
    if (!grown) {
        grown = TableForView(view);
        if (!grown) return 0;
    } else if (grown->groupCount != 1 || grown->groups[0].activePath) {
        group = grown->groupCount;
        grown = TableGrow(grown);
        if (!grown) return 0;
        if (grown->version == 0x10000) ZrPathHide(view, nullptr, nullptr);
    }
    *table = grown;
    grown->currentGroup = group;
    grown->groupCount = group + 1;
    grown->version = 0x10000;
    grown->groups[group].index = group;
    GroupFill(&grown->groups[group], name, path);

    ZrPathDraw(view, path, dirty);
    return 1;
}

ZRPATHAPI int32_t ZrPathTblDelete(PATHTBL *table)
{
    if (!table) return 0;
    for (uint32_t i = 0; i < table->groupCount; i++)
        table->groups[i].activePath = PathChainFirst(table->groups[i].activePath);
    for (uint32_t i = 0; i < table->groupCount; i++) {
        PATHREC *head = table->groups[i].activePath;
        ZrPathDeletePtr(head, 0);
        /* a chain that was added twice is freed once */
        for (uint32_t j = i + 1; j < table->groupCount; j++)
            if (table->groups[j].activePath == head) table->groups[j].activePath = nullptr;
    }
    ZrPathTblDeletelpDB(table);
    PathHeapFree(PathHeap(), heapNoSerialize, table);
    return 1;
}

ZRPATHAPI int32_t ZrPathTblDeletelpDB(PATHTBL *table)
{
    if (!table) return 0;
    BufFree(table->lpDB);
    table->lpDB = nullptr;
    return 1;
}

ZRPATHAPI void ZrPathFind(const PATHTBL *table, uint32_t *group, PATHREC **activePath, PATHREC **selectedPath,
                          int32_t *live)
{
    if (!table) return;
    const PATHGROUP *current = TableCurrentGroup(table);
    if (group) *group = table->currentGroup;
    if (activePath) *activePath = current ? current->activePath : nullptr;
    if (selectedPath) *selectedPath = current ? current->selectedPath : nullptr;
    if (live) *live = table->version != 0;
}

ZRPATHAPI void ZrPathFindGroups(const PATHTBL *table, uint32_t *count)
{
    if (count) *count = table ? table->groupCount : 0;
}

ZRPATHAPI void ZrPathFindGroupName(const PATHTBL *table, int32_t group, const char **name)
{
    if (!table || !name) return;
    const int inRange = group >= 0 && static_cast<uint32_t>(group) < table->groupCount;
    *name = inRange ? table->groups[group].name : nullptr;
}

ZRPATHAPI int32_t ZrPathAssignActivePath(PATHTBL *table, PATHREC *path)
{
    PATHGROUP *group = TableCurrentGroup(table);
    if (!group || !path) return 0;
    group->activePath = PathChainFirst(path);
    group->selectedPath = FirstSelected(group->activePath);
    return 1;
}

ZRPATHAPI int32_t ZrPathAssignSelectedPath(PATHTBL *table, PATHREC *path)
{
    PATHGROUP *group = TableCurrentGroup(table);
    if (!group || (path && !PathIsSelected(path))) return 0;
    group->selectedPath = ChainFirst(selectedChain, path);
    return 1;
}

ZRPATHAPI int32_t ZrPathAssignSelectedPathBlindly(PATHTBL *table, PATHREC *path)
{
    if (!table || !path) return 0;
    PATHREC *record = PathChainFirst(path);
    while (record && record->flags == 0) record = record->nextPath;
    ZrPathAssignSelectedPath(table, record);
    return 1;
}

ZRPATHAPI void ZrPathInfo(const PATHREC *path, int32_t *selected, int32_t *joined)
{
    if (!path) return;
    if (joined && *joined == 3) *joined = path->nextJoin || path->prevJoin;
    if (selected && *selected == 3) {
        if (!PathIsSelected(path))
            *selected = 0;
        else
            *selected = path->prevSel || path->nextSel ? 3 : 1;
        return;
    }

    const PATHREC *head = ChainFirst(selectedChain, path);
    if (selected) *selected = PathIsSelected(head);
    if (!joined) return;
    if (!head->nextSel) {
        *joined = 3;
        return;
    }
    int some = 0;
    int all = 1;
    for (const PATHREC *record = head; record->nextSel; record = record->nextSel) { /* the last is not looked at */
        some |= record->nextJoin != nullptr;
        all &= record->nextJoin != nullptr;
    }
    *joined = all ? 1 : some ? 2 : 0;
}

} // extern "C"

} // namespace zr32
