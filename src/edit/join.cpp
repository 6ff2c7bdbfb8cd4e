/* join.cpp - joins records into one compound shape and takes them apart.
 *
 * Whoever is joined anew or disjoined leaves its old join chain first, so that a shape of which only some records are
 * selected keeps the rest in one consistent chain.
 */
#include "edit/join.h"

#include <zr32path/edit.h>

namespace zr32 {

namespace {

void LeaveAll(PATHREC *head, CHAINLINK next)
{
    for (PATHREC *record = head; record; record = record->*next) JoinLeave(record);
}

/* Makes the join chain equal to the chain from head on. */
void JoinAlong(PATHREC *head, CHAINLINK next)
{
    LeaveAll(head, next);
    for (PATHREC *record = head; record->*next; record = record->*next) ChainLink(joinChain, record, record->*next);
}

PATHREC *SelectionHead(PATHREC *path)
{
    return path && PathIsSelected(path) ? ChainFirst(selectedChain, path) : nullptr;
}

} // namespace

void JoinLeave(PATHREC *path)
{
    if (path->prevJoin) path->prevJoin->nextJoin = path->nextJoin;
    if (path->nextJoin) path->nextJoin->prevJoin = path->prevJoin;
    path->prevJoin = nullptr;
    path->nextJoin = nullptr;
}

extern "C" {

ZRPATHAPI int32_t ZrPathJoin(PATHREC *path)
{
    PATHREC *head = SelectionHead(path);
    if (!head) return 0;
    JoinAlong(head, selectedChain.next);
    return 1;
}

ZRPATHAPI int32_t ZrPathDisjoin(PATHREC *path)
{
    PATHREC *head = SelectionHead(path);
    if (!head) return 0;
    LeaveAll(head, selectedChain.next);
    return 1;
}

ZRPATHAPI int32_t ZrPathJoinAll(PATHREC *path)
{
    PATHREC *head = PathChainFirst(path);
    if (!head) return 0;
    JoinAlong(head, tableChain.next);
    return 1;
}

ZRPATHAPI int32_t ZrPathDisjoinAll(PATHREC *path)
{
    PATHREC *head = PathChainFirst(path);
    if (!head) return 0;
    LeaveAll(head, tableChain.next);
    return 1;
}

} // extern "C"

} // namespace zr32
