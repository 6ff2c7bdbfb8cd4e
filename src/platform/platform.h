/* platform.h - the platform's services under one name on every system.
 *
 * On Windows these are the system's own; everywhere else src/port provides the same names. Nothing in the library
 * includes a platform header but through this one.
 */
#ifndef ZR32_PLATFORM_H
#define ZR32_PLATFORM_H

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef STRICT
#define STRICT
#endif
#include <windows.h>
/* Macros of those headers that would take words away from the library. */
#undef near
#undef far
#undef small
#undef PLANES
#else
#include "port/zr32port.h"
#endif

#endif
