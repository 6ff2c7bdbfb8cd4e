/* port_window.cpp - one record of window state, and the calls that read and write it. */
#include "port_window.h"

namespace {

PORTWINDOWSTATE state;

} // namespace

extern "C" {

PORTWINDOWSTATE *PortWindowState(void)
{
    return &state;
}

HDC GetDC(HWND)
{
    if (state.dc) state.dcsOut++;
    return state.dc;
}

int ReleaseDC(HWND, HDC dc)
{
    if (!dc || dc != state.dc || state.dcsOut == 0) return 0;
    state.dcsOut--;
    return 1;
}

HWND GetForegroundWindow(void)
{
    return state.foreground;
}

HWND GetCapture(void)
{
    return state.capture;
}

HWND SetCapture(HWND window)
{
    HWND old = state.capture;
    state.capture = window;
    return old;
}

BOOL ReleaseCapture(void)
{
    state.capture = nullptr;
    return TRUE;
}

BOOL MessageBeep(UINT type)
{
    state.beeps++;
    state.lastBeep = type;
    return TRUE;
}

} // extern "C"
