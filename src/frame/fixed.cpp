/* fixed.cpp - fixed-point numbers and pairs. Conversions cut towards zero; sums wrap around. */
#include "frame/frame.h"

namespace zr32 {

namespace {

FIXED DivideSum(int64_t sum, int64_t divisor)
{
    return static_cast<FIXED>(sum / divisor);
}

} // namespace

int PtfxEqual(FIXED ax, FIXED ay, FIXED bx, FIXED by)
{
    return ax == bx && ay == by;
}

POINTFX PtfxSub(FIXED ax, FIXED ay, FIXED bx, FIXED by)
{
    return {WrapSub(ax, bx), WrapSub(ay, by)};
}

POINTFX PtfxMidpoint(FIXED ax, FIXED ay, FIXED bx, FIXED by)
{
    return {DivideSum(int64_t{ax} + bx, 2), DivideSum(int64_t{ay} + by, 2)};
}

POINTFX PtfxTwoThirds(FIXED ax, FIXED ay, FIXED bx, FIXED by)
{
    return {DivideSum(int64_t{ax} + 2 * int64_t{bx}, 3), DivideSum(int64_t{ay} + 2 * int64_t{by}, 3)};
}

extern "C" {

ZRPATHAPI ZRFIXED DbToFix(double value)
{
    return DoubleToFix(value);
}

ZRPATHAPI double FixToDb(ZRFIXED value)
{
    return FixToDouble(value);
}

ZRPATHAPI ZRPOINTFX PtfxAdd(ZRFIXED ax, ZRFIXED ay, ZRFIXED bx, ZRFIXED by)
{
    return {WrapAdd(ax, bx), WrapAdd(ay, by)};
}

} // extern "C"

} // namespace zr32
