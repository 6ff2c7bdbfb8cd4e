/* zr32path.h - the whole exported interface of Zr32path, the vector-path engine of a raster image editor.
 *
 * A flat C interface of 123 functions over plain records. Include this file, or only the subsystem headers that
 * you need. Valid C11 and C++20; on Windows it may stand before or after the platform's own headers.
 *
 * Calls:     everything runs on the caller's thread and returns when done. The library is not re-entrant.
 * Results:   1 for success and 0 for failure unless a function's comment says otherwise; a null handle is a
 *            failure, not a fault.
 * Ownership: stands in each function's comment. Out parameters come last.
 */
#ifndef ZR32PATH_H
#define ZR32PATH_H

#include "zr32path/display.h"
#include "zr32path/edit.h"
#include "zr32path/frame.h"
#include "zr32path/raster.h"
#include "zr32path/render3d.h"
#include "zr32path/shade.h"
#include "zr32path/store.h"
#include "zr32path/surface.h"
#include "zr32path/types.h"

#endif
