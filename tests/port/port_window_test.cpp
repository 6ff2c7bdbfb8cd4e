/* port_window_test.cpp - window state is what a host or a test says it is. */
#include "platform/platform.h"

#include <gtest/gtest.h>

TEST(PortWindow, StateIsWhatTheHostSays)
{
    PORTWINDOWSTATE *state = PortWindowState();
    *state = {};
    int one = 0, two = 0;
    HWND window = reinterpret_cast<HWND>(&one);
    state->foreground = window;
    EXPECT_EQ(GetForegroundWindow(), window);

    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(SetCapture(window), nullptr);
    EXPECT_EQ(SetCapture(reinterpret_cast<HWND>(&two)), window);
    EXPECT_EQ(GetCapture(), reinterpret_cast<HWND>(&two));
    EXPECT_TRUE(ReleaseCapture());
    EXPECT_EQ(GetCapture(), nullptr);

    EXPECT_EQ(GetDC(window), nullptr);
    EXPECT_EQ(state->dcsOut, 0);
    state->dc = CreateCompatibleDC(nullptr);
    HDC dc = GetDC(window);
    EXPECT_EQ(dc, state->dc);
    EXPECT_EQ(state->dcsOut, 1);
    EXPECT_EQ(ReleaseDC(window, nullptr), 0);
    EXPECT_EQ(ReleaseDC(window, reinterpret_cast<HDC>(&one)), 0);
    EXPECT_EQ(ReleaseDC(window, dc), 1);
    EXPECT_EQ(ReleaseDC(window, dc), 0);
    EXPECT_EQ(state->dcsOut, 0);

    EXPECT_TRUE(MessageBeep(3));
    EXPECT_EQ(state->beeps, 1);
    EXPECT_EQ(state->lastBeep, 3u);
    DeleteDC(dc);
    *state = {};
}
