/* pentool.h - the pen tool's state, for those who must put it into a known one. */
#ifndef ZR32_PENTOOL_H
#define ZR32_PENTOOL_H

namespace zr32 {

/* As at start: no press, no anchor, no band. */
void PenReset();

} // namespace zr32

#endif
