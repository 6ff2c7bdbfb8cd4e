/* port_codepage.h - bytes of a code page as Unicode, for the fonts. Private to the port. */
#ifndef ZR32PORT_CODEPAGE_H
#define ZR32PORT_CODEPAGE_H

#include "port_types.h"

namespace zr32port {

/* The Unicode value of a character code: one byte, or lead x 256 + trail. 0 for a code that the page does not have. */
uint32_t CodePageToUnicode(UINT codePage, UINT character);

} // namespace zr32port

#endif
