/* move.h - moving a record with its selected or its join chain. */
#ifndef ZR32_MOVE_H
#define ZR32_MOVE_H

#include "store/store.h"

namespace zr32 {

enum MOVECHAIN {
    MOVE_BY_SELECTION, /* a selected record's selected chain, any other record's join chain */
    MOVE_JOINED,       /* always the join chain */
};

/* Moves the record and what lies behind it on the chain. */
void PathMoveChain(PATHREC *path, FIXED dx, FIXED dy, MOVECHAIN which);

} // namespace zr32

#endif
