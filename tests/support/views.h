/* views.h - a table, a view on it and a device context, for tests of what is displayed. */
#ifndef ZR32_TESTS_VIEWS_H
#define ZR32_TESTS_VIEWS_H

#include "platform/platform.h"

#include <vector>
#include <zr32path.h>

namespace zr32test {

/* A table with one empty group, its display buffer, and a view of it; frees all of it and the group's records. */
struct TESTVIEW {
    PATHTBL *table = nullptr;
    COORDSTRUCT *view = nullptr;

    TESTVIEW(int32_t width, int32_t height, int32_t zoom = 1, int32_t scrollX = 0, int32_t scrollY = 0,
             int32_t left = 0, int32_t top = 0);
    ~TESTVIEW();
    TESTVIEW(const TESTVIEW &) = delete;
    TESTVIEW &operator=(const TESTVIEW &) = delete;

    /* Puts the records behind the group's chain, in this order. */
    void Add(const std::vector<PATHREC *> &paths);

    PATHGROUP *Group() const;
    uint8_t At(int32_t x, int32_t y) const;

    /* The pixels of the view, row after row. */
    std::vector<uint8_t> Plane() const;
};

/* Selects the records, in table order, as whole paths. */
void SelectPaths(const std::vector<PATHREC *> &paths);

/* A 32-bit bitmap and a context that draws into it. */
struct CANVAS {
    HDC dc = nullptr;
    HBITMAP bitmap = nullptr;
    uint32_t *pixels = nullptr; /* top-down */
    int width;
    int height;

    CANVAS(int width, int height);
    ~CANVAS();
    CANVAS(const CANVAS &) = delete;
    CANVAS &operator=(const CANVAS &) = delete;

    std::vector<uint32_t> Pixels() const;

  private:
    HGDIOBJ old = nullptr;
};

} // namespace zr32test

#endif
