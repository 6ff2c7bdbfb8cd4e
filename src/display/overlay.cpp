/* overlay.cpp - the outline display buffer. */
#include "store/store.h"
#include <zr32path/display.h>

namespace zr32 {

extern "C" {

int32_t ZrPathDraw(const COORDSTRUCT *, PATHREC *path, struct tagRECT *)
{
    return path != nullptr;
}

int32_t ZrPathHide(const COORDSTRUCT *, PATHREC *, struct tagRECT *)
{
    return 1;
}

} // extern "C"

} // namespace zr32
