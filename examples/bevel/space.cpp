/* space.cpp - the text turned in space; see space.h.
 *
 * The solid turns about the middle of its mask and stays there; the eye looks from above that point. A line of text
 * that turns reaches above and below the image it was made for, so the pictures show more of both.
 */
#include "space.h"

#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace bevel {

namespace {

constexpr double degree = 3.14159265358979 / 180;
constexpr int mostRows = 500; /* that a render fills */

/* Turns about x, then y, then z. */
tagMATRIX3D Rotation(const double *turn)
{
    const tagPOINT3D axes[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    tagMATRIX3D all = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    for (int i = 0; i < 3; i++) {
        tagMATRIX3D one = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
        VThitaGetMatrix(std::sin(turn[i] * degree), std::cos(turn[i] * degree), &axes[i], &one);
        Matrix3X3(&all, &one, &all);
    }
    return all;
}

POINTFXMAT3D Camera(const ROAD &road, const double *turn)
{
    POINTFXMAT3D camera = {};
    camera.center.x = DbToFix((road.maskRect.left + road.maskRect.right) * 0.5);
    camera.center.y = DbToFix((road.maskRect.top + road.maskRect.bottom) * 0.5);
    camera.shift = camera.center;
    camera.viewSize = road.width;
    camera.viewAngle = 40;
    camera.matrix = Rotation(turn);
    return camera;
}

/* What the pictures show, in image pixels: the image and half as much again, above it and below. */
RECT Frame(const ROAD &road)
{
    const int more = std::max(0, std::min(road.height / 2, mostRows - road.height));
    return {0, -more / 2, road.width, road.height + more - more / 2};
}

} // namespace

int SpaceWireframe(const ROAD &road, const double *turn, PICTURE *picture)
{
    const RECT frame = Frame(road);
    const int height = static_cast<int>(frame.bottom - frame.top);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = road.width;
    info.bmiHeader.biHeight = -height; /* top-down */
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void *bits = nullptr;
    const HDC hdc = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!hdc || !bitmap) {
        fprintf(stderr, "bevel: no device context\n");
        return 0;
    }
    const HGDIOBJ oldBitmap = SelectObject(hdc, bitmap);
    const HPEN pen = CreatePen(PS_SOLID, 0, 0xFFFFFF);
    const HGDIOBJ oldPen = SelectObject(hdc, pen);

    COORDSTRUCT *view = nullptr;
    ZrPathCoordStruct(0, 0, road.width, height, 0, frame.top, 1, nullptr, &view);
    POINTFXMAT3D camera = Camera(road, turn);
    ZrPath3DWireFrame(hdc, road.path, road.width / 2, road.height / 2, view, &camera,
                      2 * static_cast<int32_t>(road.reach));
    ZrPathDeleteCoordStruct(view);

    *picture = PictureMake(road.width, height, 3);
    const uint8_t *pixel = static_cast<const uint8_t *>(bits);
    for (size_t i = 0; i < picture->bytes.size(); i += 3, pixel += 4) {
        const uint8_t ground[3] = {34, 44, 62};
        for (int c = 0; c < 3; c++) picture->bytes[i + static_cast<size_t>(c)] = pixel[0] ? uint8_t{236} : ground[c];
    }
    SelectObject(hdc, oldPen);
    SelectObject(hdc, oldBitmap);
    DeleteObject(pen);
    DeleteObject(bitmap);
    DeleteDC(hdc);
    return 1;
}

int SpaceRender(const ROAD &road, const double *turn, int glass, PICTURE *picture)
{
    struct tagRECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    if (ZrPathToBuf(road.path, 4, 0, 1, 0, 0x10000, &rects, &bufs, 0) < 1) {
        fprintf(stderr, "bevel: no mask for the solid\n");
        return 0;
    }
    const struct tagPOINT maskOrigin = {rects[0].left, rects[0].top};
    const RECT frame = Frame(road);
    const struct tagPOINT outOrigin = {frame.left, frame.top};
    PATHBUF colour = ZrPathBufAlloc(24, road.width, frame.bottom - frame.top);
    PATHBUF alpha = ZrPathBufAlloc(8, road.width, frame.bottom - frame.top);
    const POINTFXMAT3D camera = Camera(road, turn);
    const uint32_t material = 0xD65C2C; /* blue, green, red from the low byte up */
    const OPTIONS &o = road.options;
    const int rendered = colour && alpha &&
                         ZrPathABufRender(road.path, &camera, colour, alpha, 0, &outOrigin, &maskOrigin, &material,
                                          bufs[0], road.offset, 0, 0, 0, 0, 0, 0, 0, glass, 0,
                                          static_cast<int32_t>(road.reach), o.scale, o.profile, o.invert, o.light, 0);
    if (rendered) {
        *picture = PictureWithAlpha(PictureOfBuffer(colour), PictureOfBuffer(alpha));
        for (size_t i = 0; i < picture->bytes.size(); i += 4) std::swap(picture->bytes[i], picture->bytes[i + 2]);
    } else {
        fprintf(stderr, "bevel: the solid could not be rendered\n");
    }
    if (colour) ZrPathBufFree(colour);
    if (alpha) ZrPathBufFree(alpha);
    ZrPathBufFree(bufs[0]);
    GlobalFree(rects);
    GlobalFree(bufs);
    return rendered;
}

} // namespace bevel
