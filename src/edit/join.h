/* join.h - the join chain: records that form one compound shape. */
#ifndef ZR32_JOIN_H
#define ZR32_JOIN_H

#include "store/store.h"

namespace zr32 {

/* Takes one record out of its join chain, which closes over it. */
void JoinLeave(PATHREC *path);

} // namespace zr32

#endif
