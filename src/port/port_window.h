/* port_window.h - window state as plain state: a host or a test writes it, the library asks for it.
 *
 * There are no windows here. A window handle is whatever non-null value the host takes for one.
 */
#ifndef ZR32PORT_WINDOW_H
#define ZR32PORT_WINDOW_H

#include "port_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* All of it. PortWindowState gives the one record there is; everything in it may be read and set at any time. */
typedef struct PORTWINDOWSTATE {
    HWND foreground;   /* what GetForegroundWindow gives */
    HWND capture;      /* the window that has the mouse, or null */
    HDC dc;            /* what GetDC gives; null: drawing goes nowhere */
    int32_t dcsOut;    /* calls of GetDC that gave a context, less those of ReleaseDC */
    int32_t beeps;     /* calls of MessageBeep */
    uint32_t lastBeep; /* the last one's argument */
} PORTWINDOWSTATE;

ZR32PORTAPI PORTWINDOWSTATE *PortWindowState(void);

ZR32PORTAPI HDC GetDC(HWND window);
ZR32PORTAPI int ReleaseDC(HWND window, HDC dc);
ZR32PORTAPI HWND GetForegroundWindow(void);
ZR32PORTAPI HWND GetCapture(void);

/* Gives the window that had the mouse before. */
ZR32PORTAPI HWND SetCapture(HWND window);

ZR32PORTAPI BOOL ReleaseCapture(void);
ZR32PORTAPI BOOL MessageBeep(UINT type);

#ifdef __cplusplus
}
#endif

#endif
