/* passes_fuzz.cpp - masks, surfaces, shaders and the renderer on arbitrary records, planes and parameters. */
#include "scene.h"

using namespace zr32fuzz;

namespace {

void Masks(BYTES *bytes, PATHREC *path)
{
    const ZRFIXED zoom = TakeRange(bytes, -0x8000, 0x30000);
    if (!SmallEnough(path, zoom, 600)) return;
    RECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    const int32_t depth = TakeRange(bytes, 0, 20);
    const int32_t evenOdd = TakeRange(bytes, 0, 1);
    static const int32_t aaModes[] = {0, 1, 999};
    const int32_t aaMode = aaModes[TakeRange(bytes, 0, 2)];
    const int32_t scope = TakeRange(bytes, 0, 3);
    const int32_t count =
        ZrPathToBuf(path, depth, evenOdd, aaMode, scope, zoom, &rects, &bufs, TakeRange(bytes, -9, 9));
    for (int32_t i = 0; i < count; i++) FreeBuffer(bufs[i]);
    if (rects) GlobalFree(rects);
    if (bufs) GlobalFree(bufs);
}

struct PLANES {
    PATHBUF distance;
    PATHBUF offset;
};

PLANES Surface(BYTES *bytes, PATHREC *path)
{
    PLANES planes = {nullptr, nullptr};
    if (!SmallEnough(path, 0x20000, 500)) return planes;
    const uint8_t want = Take<uint8_t>(bytes);
    PATHBUF asked = reinterpret_cast<PATHBUF>(1);
    planes.distance = want & 1 ? asked : nullptr;
    planes.offset = want & 2 ? asked : nullptr;
    const PLANES before = planes;
    int32_t calls = TakeRange(bytes, 1, 400);
    VMAPPROGRESS progress = {0, SceneProgress, reinterpret_cast<intptr_t>(&calls), 0, 100};
    double width = TakeDouble(bytes);
    PATHBUF mask = TakeBuffer(bytes, 8);
    const ZRFIXED zoom = TakeRange(bytes, 0x4000, 0x20000);
    ZrPathVMap(path, &planes.distance, &planes.offset, want & 4, want & 8, (want & 0x70) == 0x10,
               TakeRange(bytes, -6, 6), want & 0x80, &width, Take<uint8_t>(bytes) & 1, Take<uint8_t>(bytes) & 1, mask,
               Take<uint8_t>(bytes) & 1 ? &progress : nullptr, zoom);
    /* A call that was refused early leaves what the caller put there. */
    if (planes.distance == before.distance) planes.distance = nullptr;
    if (planes.offset == before.offset) planes.offset = nullptr;
    FreeBuffer(mask);
    return planes;
}

void Shaders(BYTES *bytes, const PLANES &made)
{
    static const int32_t profiles[] = {0, 1, 100, 101, 102, 103, 104, 7};
    PATHBUF image = TakeBuffer(bytes, 24);
    PATHBUF mask = TakeBuffer(bytes, 8);
    PATHBUF flat = TakeBuffer(bytes, 8);
    PATHBUF bump = TakeBuffer(bytes, 8);
    PATHBUF distance = made.distance ? made.distance : TakeBuffer(bytes, 32);
    PATHBUF offset = made.offset ? made.offset : TakeBuffer(bytes, 0x40);
    PATHBUF source = TakeBuffer(bytes, 24);
    PATHBUF grey = TakeBuffer(bytes, 8);
    const double width = TakeDouble(bytes);
    const int32_t profile = profiles[TakeRange(bytes, 0, 7)];
    const int32_t invert = TakeRange(bytes, 0, 1);
    const int32_t scale = TakeRange(bytes, -2, 60);
    const int32_t floats = TakeRange(bytes, 0, 1);
    const int32_t reflect = TakeRange(bytes, 0, 2);
    const int32_t percent = TakeRange(bytes, -50, 200);
    const int32_t lights = TakeRange(bytes, -1, 6);
    int32_t spotOn[6], spotPos[12];
    double directions[18];
    for (int32_t &value : spotOn) value = TakeRange(bytes, 0, 1);
    for (int32_t &value : spotPos) value = TakeRange(bytes, -20, 120);
    for (double &value : directions) value = TakeDouble(bytes);
    const int32_t four[4] = {TakeRange(bytes, -2, 90), 8, TakeRange(bytes, 0, 255), 1};
    const uint32_t colours[4] = {Take<uint32_t>(bytes), 0xFFFFFF, 0, 0x123456};
    ZrPathAdjPhongIllum(four, four, Take<uint32_t>(bytes), colours, lights, percent);
    ZrPathAdjMetallicIllum(four, four, lights, percent);
    ZrPathShadePhong(image, width, profile, invert, scale, floats, distance, offset, reflect, mask, flat, spotOn[0],
                     spotPos[0], spotPos[1], directions[0], directions[1], directions[2], percent & 1, percent & 2,
                     percent, bump);
    ZrPathShadeMetallic(image, width, profile, invert, scale, floats, distance, offset, reflect, mask, flat, spotOn[0],
                        spotPos[0], spotPos[1], directions[0], directions[1], directions[2], colours[0], source,
                        percent & 2, percent, bump);
    ZrPathShadeMultiPhong(image, width, profile, invert, scale, floats, distance, offset, reflect, mask, flat, lights,
                          spotOn, spotPos, directions, percent & 1, percent & 2, percent, bump);
    ZrPathShadeMultiMetallic(image, width, profile, invert, scale, floats, distance, offset, reflect, mask, flat,
                             lights, spotOn, spotPos, directions, colours[0], source, percent & 2, percent, bump);
    ZrPathBumpIt(profile, width, offset, bump, invert, scale, floats, grey, reflect, mask, flat);
    ZrPathReflectIt(profile, width, offset, image, invert, scale, floats, source, reflect, mask, flat, percent, bump);
    ZrPathTransparentMask(mask, TakeRange(bytes, 0, 100), TakeRange(bytes, 0, 100), width, profile, invert, scale,
                          floats, offset, reflect, percent, bump);
    for (PATHBUF buffer : {image, mask, flat, bump, source, grey}) FreeBuffer(buffer);
    if (!made.distance) FreeBuffer(distance);
    if (!made.offset) FreeBuffer(offset);
}

void Render(BYTES *bytes, PATHREC *path, const PLANES &made)
{
    POINTFXMAT3D camera = {};
    camera.center = {TakeRange(bytes, -100, 100) * 65536, TakeRange(bytes, -100, 100) * 65536};
    camera.shift = {TakeRange(bytes, -100, 100) * 65536, TakeRange(bytes, -100, 100) * 65536};
    camera.viewSize = TakeDouble(bytes);
    camera.viewAngle = TakeDouble(bytes);
    for (double &value : camera.matrix.m) value = TakeDouble(bytes) / 64;
    PATHBUF colour = TakeBuffer(bytes, 24);
    PATHBUF alpha = TakeBuffer(bytes, 8);
    PATHBUF mask = TakeBuffer(bytes, 32);
    PATHBUF offset = Take<uint8_t>(bytes) & 1 ? made.offset : nullptr;
    const POINT origin = {TakeRange(bytes, -50, 50), TakeRange(bytes, -50, 50)};
    const uint32_t material = Take<uint32_t>(bytes);
    const double light[3] = {TakeDouble(bytes), TakeDouble(bytes), TakeDouble(bytes)};
    ZrPathABufRender(path, &camera, colour, alpha, 0, &origin, Take<uint8_t>(bytes) & 1 ? &origin : nullptr, &material,
                     mask, offset, 0, 0, 0, 0, 0, 0, 0, TakeRange(bytes, 0, 1), 0, TakeRange(bytes, -2, 40),
                     TakeRange(bytes, 0, 60), TakeRange(bytes, 0, 104), TakeRange(bytes, 0, 1), light, 0);
    RECT rect = {0, 0, 0, 0};
    ZrPathGet3DMiniMaxRect(path, &camera, TakeRange(bytes, -100, 100), TakeRange(bytes, -100, 100), &rect);
    COORDSTRUCT view = {0, 0, 64, 48, 0, 0, TakeRange(bytes, -4, 4), nullptr, {}};
    ZrPath3DWireFrame(SceneDC(), path, TakeRange(bytes, -100, 100), 20, &view, &camera, TakeRange(bytes, -9, 9));
    ZrPathTo3D(path, &camera);
    for (PATHBUF buffer : {colour, alpha, mask}) FreeBuffer(buffer);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    BYTES bytes = {data, size};
    SceneReset();
    const uint8_t what = Take<uint8_t>(&bytes);
    PATHREC *path = TakeChain(&bytes, what & 0x80 ? 2000 : 60);
    PLANES planes = {nullptr, nullptr};
    if (path && (what & 1)) Masks(&bytes, path);
    if (path && (what & 2)) planes = Surface(&bytes, path);
    if (what & 4) Shaders(&bytes, planes);
    if (path && (what & 8)) Render(&bytes, path, planes);
    FreeBuffer(planes.distance);
    FreeBuffer(planes.offset);
    ZrPathDeletePtr(path, 0);
    SceneCheckLeaks();
    return 0;
}
