/* select.h - the selection of records and its chain.
 *
 * Flags say what is selected, the selected chain is rebuilt from them, and the group's selected path is the chain's
 * head. Whoever changes flags rebuilds the chain and tells the table (ZrPathAssignSelectedPath).
 */
#ifndef ZR32_SELECT_H
#define ZR32_SELECT_H

#include "store/store.h"
#include <zr32path/edit.h>

namespace zr32 {

/* Selects the record and what lies behind it on its join chain, then what lies in front of it; each record's marks
 * are toggled after its flags are set. */
void PathSelectJoined(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view);

/* The same from the head of the join chain onwards. */
void PathSelectJoinedFromHead(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view);

/* Deselects one record: marks off when draw is not 0, selected bits of its nodes, flags and its links of the selected
 * chain cleared. Neighbours on that chain keep their links: whoever deselects some records of a chain mends it. An
 * unselected record stays as it is. */
void PathDeselect(ZRHDC hdc, PATHREC *path, const COORDSTRUCT *view, int draw);

/* Links the selected records of the table chain that path belongs to, in table order, and no others: records that a
 * stream has left on the chain without being selected leave it. */
void PathRebuildSelected(PATHREC *path);

} // namespace zr32

#endif
