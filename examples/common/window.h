/* window.h - a window to capture the mouse for: one that is never shown, so that it needs no display. */
#ifndef EXAMPLES_WINDOW_H
#define EXAMPLES_WINDOW_H

#include "platform/platform.h"

#if defined(_WIN32)
inline HWND MakeWindow()
{
    return CreateWindowA("STATIC", "", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr, nullptr, nullptr);
}

inline void FreeWindow(HWND window)
{
    DestroyWindow(window);
}
#else
inline HWND MakeWindow()
{
    static int place;
    return reinterpret_cast<HWND>(&place); /* a window is whatever a host takes for one */
}

inline void FreeWindow(HWND) {}
#endif

#endif
