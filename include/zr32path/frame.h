/* frame.h - start of the library and fixed-point arithmetic. */
#ifndef ZR32PATH_FRAME_H
#define ZR32PATH_FRAME_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Makes the path heap if it does not exist yet. Returns 0x30000 (3.0 as ZRFIXED, a constant of the interface) when
 * the heap exists, 0 when it could not be made. Calling it again is harmless. Must have run before any other
 * function that allocates records; ZrPathCoordStruct, ZrPathCreateText, AddPathTest and ZrPathMouseProcDraw call
 * it themselves. The heap lives until the process ends. */
ZRPATHAPI int32_t ZrPathInit(void);

/* value x 65536, cut towards zero. A value out of range gives the low 32 bits of the truncated 64-bit integer; what
 * fits no 64-bit integer (NaN and infinities included) gives 0. */
ZRPATHAPI ZRFIXED DbToFix(double value);

/* value / 65536, exactly. */
ZRPATHAPI double FixToDb(ZRFIXED value);

/* (ax + bx, ay + by) with 32-bit wrap-around. */
ZRPATHAPI ZRPOINTFX PtfxAdd(ZRFIXED ax, ZRFIXED ay, ZRFIXED bx, ZRFIXED by);

#ifdef __cplusplus
}
#endif

#endif
