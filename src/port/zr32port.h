/* zr32port.h - the small part of the platform's interface that Zr32path calls, for systems other than Windows.
 *
 * Names, arguments, constants and results are those of the platform, as far as the library and its tests use them.
 * An editor on such a system includes this file to make device contexts, select fonts and free what it is given; what
 * only a host or a test needs (code page, window state, inspection) begins with Port.
 */
#ifndef ZR32PORT_H
#define ZR32PORT_H

#include "port_font.h"
#include "port_gdi.h"
#include "port_kernel.h"
#include "port_rect.h"
#include "port_text.h"
#include "port_window.h"

#endif
