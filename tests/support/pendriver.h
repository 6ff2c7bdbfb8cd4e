/* pendriver.h - a drawing window as the pen tool's caller has it: it passes the messages on and sets the capture at
 * the first press. */
#ifndef ZR32_TESTS_PENDRIVER_H
#define ZR32_TESTS_PENDRIVER_H

#include "support/views.h"

namespace zr32test {

struct PENDRIVER {
    HWND window;
    PATHTBL *table;
    const COORDSTRUCT *view;
    HDC dc;

    /* The tool begins as at start, without capture. */
    PENDRIVER(PATHTBL *table, const COORDSTRUCT *view, HDC dc = nullptr);
    ~PENDRIVER();
    PENDRIVER(const PENDRIVER &) = delete;
    PENDRIVER &operator=(const PENDRIVER &) = delete;

    int32_t Send(uint32_t message, int32_t x, int32_t y, uintptr_t wParam = 0);
    void Down(int32_t x, int32_t y);
    void Move(int32_t x, int32_t y);
    void Up(int32_t x, int32_t y);
    void DoubleClick(int32_t x, int32_t y);
    void Esc(int32_t x, int32_t y);

    /* A press and release without movement; a press, a move and a release. */
    void Click(int32_t x, int32_t y);
    void Drag(int32_t x, int32_t y, int32_t toX, int32_t toY);

    bool Captured() const;
};

} // namespace zr32test

#endif
