/* port_rect.cpp - rectangle arithmetic; sums wrap as on the platform. */
#include "port_rect.h"

#include <algorithm>

namespace {

int32_t WrapAdd(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

int32_t WrapSub(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

} // namespace

extern "C" {

BOOL SetRect(RECT *rect, int left, int top, int right, int bottom)
{
    if (!rect) return FALSE;
    *rect = {left, top, right, bottom};
    return TRUE;
}

BOOL SetRectEmpty(RECT *rect)
{
    return SetRect(rect, 0, 0, 0, 0);
}

BOOL IsRectEmpty(const RECT *rect)
{
    return !rect || rect->right <= rect->left || rect->bottom <= rect->top;
}

BOOL OffsetRect(RECT *rect, int dx, int dy)
{
    if (!rect) return FALSE;
    *rect = {WrapAdd(rect->left, dx), WrapAdd(rect->top, dy), WrapAdd(rect->right, dx), WrapAdd(rect->bottom, dy)};
    return TRUE;
}

BOOL InflateRect(RECT *rect, int dx, int dy)
{
    if (!rect) return FALSE;
    *rect = {WrapSub(rect->left, dx), WrapSub(rect->top, dy), WrapAdd(rect->right, dx), WrapAdd(rect->bottom, dy)};
    return TRUE;
}

BOOL IntersectRect(RECT *out, const RECT *a, const RECT *b)
{
    if (!out || !a || !b) return FALSE;
    const RECT both = {std::max(a->left, b->left), std::max(a->top, b->top), std::min(a->right, b->right),
                       std::min(a->bottom, b->bottom)};
    if (IsRectEmpty(a) || IsRectEmpty(b) || IsRectEmpty(&both)) {
        SetRectEmpty(out);
        return FALSE;
    }
    *out = both;
    return TRUE;
}

BOOL UnionRect(RECT *out, const RECT *a, const RECT *b)
{
    if (!out || !a || !b) return FALSE;
    const bool emptyA = IsRectEmpty(a) != 0;
    const bool emptyB = IsRectEmpty(b) != 0;
    if (emptyA && emptyB) {
        SetRectEmpty(out);
        return FALSE;
    }
    if (emptyA) {
        *out = *b;
    } else if (emptyB) {
        *out = *a;
    } else {
        *out = {std::min(a->left, b->left), std::min(a->top, b->top), std::max(a->right, b->right),
                std::max(a->bottom, b->bottom)};
    }
    return TRUE;
}

BOOL PtInRect(const RECT *rect, POINT point)
{
    return rect && point.x >= rect->left && point.x < rect->right && point.y >= rect->top && point.y < rect->bottom;
}

} // extern "C"
