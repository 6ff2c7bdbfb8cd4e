/* pendriver.cpp - see pendriver.h. */
#include "support/pendriver.h"

#include "common/window.h"
#include "edit/pentool.h"

namespace zr32test {

PENDRIVER::PENDRIVER(PATHTBL *t, const COORDSTRUCT *v, HDC d) : window(MakeWindow()), table(t), view(v), dc(d)
{
    ReleaseCapture();
    zr32::PenReset();
}

PENDRIVER::~PENDRIVER()
{
    ReleaseCapture();
    zr32::PenReset();
    FreeWindow(window);
}

int32_t PENDRIVER::Send(uint32_t message, int32_t x, int32_t y, uintptr_t wParam)
{
    return ZrPathMouseProcDraw(dc, table, view, message, wParam, x, y);
}

void PENDRIVER::Down(int32_t x, int32_t y)
{
    Send(513, x, y);
    if (!Captured()) SetCapture(window);
}

void PENDRIVER::Move(int32_t x, int32_t y)
{
    Send(512, x, y);
}

void PENDRIVER::Up(int32_t x, int32_t y)
{
    Send(514, x, y);
}

void PENDRIVER::DoubleClick(int32_t x, int32_t y)
{
    Send(515, x, y);
}

void PENDRIVER::Esc(int32_t x, int32_t y)
{
    Send(256, x, y, 27);
}

void PENDRIVER::Click(int32_t x, int32_t y)
{
    Down(x, y);
    Up(x, y);
}

void PENDRIVER::Drag(int32_t x, int32_t y, int32_t toX, int32_t toY)
{
    Down(x, y);
    Move(toX, toY);
    Up(toX, toY);
}

bool PENDRIVER::Captured() const
{
    return GetCapture() == window;
}

} // namespace zr32test
