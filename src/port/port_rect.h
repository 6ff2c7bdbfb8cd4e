/* port_rect.h - rectangle arithmetic. A rectangle is empty when right <= left or bottom <= top. */
#ifndef ZR32PORT_RECT_H
#define ZR32PORT_RECT_H

#include "port_types.h"

#ifdef __cplusplus
extern "C" {
#endif

ZR32PORTAPI BOOL SetRect(RECT *rect, int left, int top, int right, int bottom);
ZR32PORTAPI BOOL SetRectEmpty(RECT *rect);
ZR32PORTAPI BOOL IsRectEmpty(const RECT *rect);
ZR32PORTAPI BOOL OffsetRect(RECT *rect, int dx, int dy);
ZR32PORTAPI BOOL InflateRect(RECT *rect, int dx, int dy);

/* *out = what both have, or the empty rectangle with the result 0; out may be a source. */
ZR32PORTAPI BOOL IntersectRect(RECT *out, const RECT *a, const RECT *b);

/* *out = the smallest rectangle that holds both, an empty one counting for nothing; 0 when both are empty. */
ZR32PORTAPI BOOL UnionRect(RECT *out, const RECT *a, const RECT *b);

/* Left and top edges are inside, right and bottom edges are not. */
ZR32PORTAPI BOOL PtInRect(const RECT *rect, POINT point);

#ifdef __cplusplus
}
#endif

#endif
