/* port_text.h - byte text in the current code page.
 *
 * Text is bytes ended by a zero. In the code pages 932, 936, 949 and 950 some bytes lead a character of two.
 */
#ifndef ZR32PORT_TEXT_H
#define ZR32PORT_TEXT_H

#include "port_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes in front of the terminator; 0 for null. */
ZR32PORTAPI int lstrlenA(const char *text);

/* Copies text with its terminator and gives to; null, and nothing copied, when either is null. */
ZR32PORTAPI char *lstrcpyA(char *to, const char *text);

/* Not 0 for the first byte of a two-byte character in the current code page. */
ZR32PORTAPI BOOL IsDBCSLeadByte(BYTE byte);

/* The next character: one byte on, or two behind a lead byte that is not the last; the terminator is never passed. */
ZR32PORTAPI char *CharNextA(const char *text);

/* The current code page: 1252 at the start. */
ZR32PORTAPI UINT GetACP(void);

/* Hands a diagnostic text to the sink that PortSetDebugSink set; without one it is dropped. */
ZR32PORTAPI void OutputDebugStringA(const char *text);

/* Sets the current code page: 1252, 932, 936, 949, 950. 0, and no change, for any other. */
ZR32PORTAPI BOOL PortSetCodePage(UINT codePage);

/* Where diagnostic texts go from now on; a null function drops them. */
typedef void (*PORTDEBUGSINK)(void *user, const char *text);
ZR32PORTAPI void PortSetDebugSink(PORTDEBUGSINK sink, void *user);

#ifdef __cplusplus
}
#endif

#endif
