/* outline.cpp - the outline of a chain as a mask: the line alone, one pixel wide.
 *
 * Comes in: a chain and its buffer. Goes out: line pixels, and beside them, while the chain is plotted, a plane of the
 * directions in which the outline passes.
 */
#include "raster/plot.h"

#include <cstring>

namespace zr32 {

int PathOutlineToBuf(PATHREC *path, PATHBUF buf, int32_t aaMode, int32_t scope, FIXED zoom, int32_t left, int32_t top)
{
    PATHBUF directions = ZrPathBufDuplicate(0, buf);
    if (!directions) return 0;
    const PLOTPLANES planes = {buf, directions, BufInfo(buf)};
    const PLACEMENT place = PlaceOnMask(FixToDouble(zoom), left, top);
    /* In an A-buffer mask set bits lie outside; its pixels are whole or empty, so the outline is a hard one. */
    const int isMask32 = planes.info.bits == 32;
    if (isMask32) memset(buf, 0xFF, planes.info.stride * static_cast<size_t>(planes.info.height));
    const CHAINLINK next = scope == scopeTableChain ? tableChain.next : joinChain.next;
    for (const PATHREC *record = path; record; record = record->*next) {
        if (aaMode == 0 || isMask32)
            PathPlotHard(record, place, planes);
        else
            PathPlotSmooth(record, place, planes);
    }
    ZrPathBufFree(directions);
    return 1;
}

} // namespace zr32
