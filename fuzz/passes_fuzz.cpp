/* passes_fuzz.cpp - masks, surfaces, shaders and the renderer on arbitrary records, planes and parameters.
 *
 * The planes of one run come from each other as an editor's do, or are any bytes in any size and depth; the zoom keeps
 * them small.
 */
#include "scene.h"

#include "comm/zr32comm.h"
#include "store/store.h"

using namespace zr32fuzz;

namespace {

constexpr int32_t mostSide = 48;
constexpr int32_t profiles[] = {0, 0, 1, 100, 101, 102, 103, 104, 7};

/* A zoom that keeps the shape below the largest side: that one, a smaller one, or one that turns it over. */
ZRFIXED TakeZoom(BYTES *bytes, const PATHREC *path)
{
    const ZRFIXED fit = FitZoom(path, mostSide);
    switch (TakeRange(bytes, 0, 7)) {
    case 0: return static_cast<ZRFIXED>(int64_t{fit} * TakeRange(bytes, 0, 255) / 256);
    case 1: return -fit;
    case 2: return FitZoom(path, mostSide / 2) * 2 - 1;
    default: return fit;
    }
}

void Masks(BYTES *bytes, PATHREC *path)
{
    static const int32_t depths[] = {4, 8, 16, 16, 0, 99};
    static const int32_t aaModes[] = {0, 1, 999};
    RECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    const int32_t depth = TakeOne(bytes, depths);
    const int32_t evenOdd = TakeRange(bytes, 0, 1);
    const int32_t aaMode = TakeOne(bytes, aaModes);
    const int32_t scope = TakeRange(bytes, 0, 3);
    const ZRFIXED zoom = TakeZoom(bytes, path);
    const int32_t count =
        ZrPathToBuf(path, depth, evenOdd, aaMode, scope, zoom, &rects, &bufs, TakeRange(bytes, -9, 9));
    FreeMasks(count, rects, bufs, nullptr);
}

struct PLANES {
    PATHBUF mask;
    PATHBUF distance;
    PATHBUF offset;
    int32_t width; /* of the mask, which the surface shares */
    int32_t height;
};

/* The mask that a surface or a solid is made against, of the shape or of any bytes. */
PATHBUF TakeMask(BYTES *bytes, PATHREC *path, int32_t depth, ZRFIXED zoom)
{
    RECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    PATHBUF mask = nullptr;
    if (TakeRange(bytes, 0, 7) == 0) return TakeBuffer(bytes, depth == 4 ? 32 : 8);
    const int32_t count = ZrPathToBuf(path, depth, 0, 1, 0, zoom, &rects, &bufs, TakeRange(bytes, 0, 6));
    FreeMasks(count, rects, bufs, &mask);
    return mask;
}

PLANES Surface(BYTES *bytes, PATHREC *path)
{
    PLANES planes = {};
    const ZRFIXED zoom = TakeZoom(bytes, path);
    planes.mask = TakeMask(bytes, path, 8, zoom);
    const uint16_t want = Take<uint16_t>(bytes);
    PATHBUF asked = reinterpret_cast<PATHBUF>(1);
    planes.distance = want & 1 ? nullptr : asked;
    planes.offset = want & 2 ? nullptr : asked;
    const PLANES before = planes;
    int32_t calls = TakeRange(bytes, 1, 400);
    if (want & 0x800) zr32CommEscAfter(TakeRange(bytes, 0, 60));
    VMAPPROGRESS progress = {0, want & 0x400 ? SceneProgress : nullptr, reinterpret_cast<intptr_t>(&calls), 0, 100};
    double width = want & 0x1000 ? TakeDouble(bytes) : TakeRange(bytes, 1, 20);
    const int32_t outset = want & 0x2000 ? TakeRange(bytes, -6, 6) : 0;
    const bool envelope = (want & 0x70) == 0x10 && SmallEnough(path, 4 * mostSide);
    ZrPathVMap(path, &planes.distance, &planes.offset, want & 4, want & 8, envelope, outset, want & 0x80, &width,
               want & 0x4000, want & 0x8000, planes.mask, want & 0x300 ? &progress : nullptr, zoom);
    zr32CommEscAfter(-1);
    /* A call that was refused early leaves what the caller put there. */
    if (planes.distance == before.distance) planes.distance = nullptr;
    if (planes.offset == before.offset) planes.offset = nullptr;
    if (PATHBUF ruling = planes.offset ? planes.offset : planes.distance) {
        int32_t bits = 0;
        ZrPathBufGetWHU(ruling, &planes.width, &planes.height, &bits);
    } else {
        planes.width = TakeRange(bytes, 0, 40);
        planes.height = TakeRange(bytes, 0, 40);
    }
    return planes;
}

void Shaders(BYTES *bytes, const PLANES &made)
{
    const auto plane = [&](int32_t bits) { return TakeBufferOf(bytes, bits, made.width, made.height); };
    PATHBUF image = plane(24);
    PATHBUF mask = plane(8);
    PATHBUF flat = plane(8);
    PATHBUF bump = plane(8);
    PATHBUF distance = made.distance ? made.distance : plane(32);
    PATHBUF offset = made.offset ? made.offset : plane(0x40);
    PATHBUF source = TakeBuffer(bytes, 24);
    PATHBUF grey = TakeBuffer(bytes, 8);
    const double width = TakeBool(bytes) ? TakeDouble(bytes) : TakeRange(bytes, 1, 20);
    const int32_t profile = TakeOne(bytes, profiles);
    const int32_t invert = TakeRange(bytes, 0, 1);
    const int32_t scale = TakeNumber(bytes, -2, 60);
    const int32_t floats = TakeRange(bytes, 0, 1);
    const int32_t reflect = TakeRange(bytes, 0, 2);
    const int32_t percent = TakeNumber(bytes, -50, 200);
    const int32_t lights = TakeNumber(bytes, -1, 6);
    const uint8_t which = Take<uint8_t>(bytes);
    int32_t spotOn[6], spotPos[12];
    double directions[18];
    for (int32_t &value : spotOn) value = TakeRange(bytes, 0, 1);
    for (int32_t &value : spotPos) value = TakeNumber(bytes, -20, 120);
    for (double &value : directions) value = TakeDouble(bytes) / 8;
    const int32_t four[4] = {TakeNumber(bytes, -2, 90), 8, TakeNumber(bytes, 0, 255), 1};
    const uint32_t colours[4] = {Take<uint32_t>(bytes), 0xFFFFFF, 0, 0x123456};
    ZrPathAdjPhongIllum(four, four, Take<uint32_t>(bytes), colours, lights, percent);
    ZrPathAdjMetallicIllum(four, four, lights, percent);
    if (which & 1)
        ZrPathShadePhong(image, width, profile, invert, scale, floats, distance, offset, reflect, mask, flat, spotOn[0],
                         spotPos[0], spotPos[1], directions[0], directions[1], directions[2], percent & 1, percent & 2,
                         percent, bump);
    if (which & 2)
        ZrPathShadeMetallic(image, width, profile, invert, scale, floats, distance, offset, reflect, mask, flat,
                            spotOn[0], spotPos[0], spotPos[1], directions[0], directions[1], directions[2], colours[0],
                            source, percent & 2, percent, bump);
    if (which & 4)
        ZrPathShadeMultiPhong(image, width, profile, invert, scale, floats, distance, offset, reflect, mask, flat,
                              lights, spotOn, spotPos, directions, percent & 1, percent & 2, percent, bump);
    if (which & 8)
        ZrPathShadeMultiMetallic(image, width, profile, invert, scale, floats, distance, offset, reflect, mask, flat,
                                 lights, spotOn, spotPos, directions, colours[0], source, percent & 2, percent, bump);
    if (which & 16) ZrPathBumpIt(profile, width, offset, bump, invert, scale, floats, grey, reflect, mask, flat);
    if (which & 32)
        ZrPathReflectIt(profile, width, offset, image, invert, scale, floats, source, reflect, mask, flat, percent,
                        bump);
    if (which & 64)
        ZrPathTransparentMask(mask, TakeNumber(bytes, 0, 100), TakeNumber(bytes, 0, 100), width, profile, invert, scale,
                              floats, offset, reflect, percent, bump);
    if (which & 128 && made.offset && made.width > 0 && made.height > 0) {
        const int32_t column = TakeRange(bytes, 0, made.width - 1);
        ZrpathChangeLightNormal(width, profile, invert, scale, &column, floats, made.offset, reflect, lights,
                                directions);
    }
    for (PATHBUF buffer : {image, mask, flat, bump, source, grey}) FreeBuffer(buffer);
    if (!made.distance) FreeBuffer(distance);
    if (!made.offset) FreeBuffer(offset);
}

/* The chain's last record is not rendered: an empty one stands behind it, now and then. */
void Render(BYTES *bytes, PATHREC *path, const PLANES &made)
{
    const uint8_t how = Take<uint8_t>(bytes);
    if (how & 1) {
        PATHREC *behind = ZrPathCreate();
        ZrPathChainPaths(&path, behind);
    }
    PATHBUF mask = TakeMask(bytes, path, 4, FitZoom(path, mostSide));
    POINTFXMAT3D camera = TakeCamera(bytes);
    PATHBUF colour = TakeBuffer(bytes, 24);
    PATHBUF alpha = nullptr;
    if (colour) {
        int32_t width = 0, height = 0, bits = 0;
        ZrPathBufGetWHU(colour, &width, &height, &bits);
        alpha = TakeBufferOf(bytes, 8, width, height);
    }
    PATHBUF offset = how & 2 ? made.offset : how & 4 ? TakeBuffer(bytes, 0x40) : nullptr;
    RECT box = {0, 0, 0, 0};
    ZrPathGetAllMiniMaxRect(path, 0x10000, &box);
    const POINT outOrigin = {TakeNumber(bytes, -50, 50), TakeNumber(bytes, -50, 50)};
    const POINT maskOrigin = {box.left, box.top};
    const uint32_t material = Take<uint32_t>(bytes);
    const double light[3] = {TakeDouble(bytes), TakeDouble(bytes), TakeDouble(bytes)};
    const int32_t width = TakeRange(bytes, -2, 40);
    const int32_t scale = TakeNumber(bytes, 0, 60);
    ZrPathABufRender(path, &camera, colour, alpha, 0, how & 8 ? &outOrigin : nullptr, how & 16 ? &maskOrigin : nullptr,
                     &material, mask, offset, 0, 0, 0, 0, 0, 0, 0, how & 32, 0, width, scale, TakeOne(bytes, profiles),
                     how & 64, how & 128 ? light : nullptr, 0);
    RECT rect = {0, 0, 0, 0};
    ZrPathGet3DMiniMaxRect(path, &camera, TakeNumber(bytes, -100, 100), TakeNumber(bytes, -100, 100), &rect);
    COORDSTRUCT view = {0, 0, 64, 48, 0, 0, TakeRange(bytes, -4, 4), nullptr, {}};
    ZrPath3DWireFrame(TakeDC(bytes), path, TakeNumber(bytes, -100, 100), 20, &view, &camera, TakeNumber(bytes, -9, 9));
    ZrPathTo3D(path, &camera);
    for (PATHBUF buffer : {colour, alpha, mask}) FreeBuffer(buffer);
    if (!(how & 2)) FreeBuffer(offset);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    BYTES bytes = {data, size};
    SceneReset();
    const uint8_t what = Take<uint8_t>(&bytes);
    /* Mostly so small that mask and solid share one scale. */
    PATHREC *path = TakeChain(&bytes, what >= 0xF0 ? 2000 : what & 0x80 ? 40 : 18, 12);
    PLANES planes = {nullptr, nullptr, nullptr, 16, 12};
    if (path && (what & 1)) Masks(&bytes, path);
    if (path && (what & 2)) planes = Surface(&bytes, path);
    if (what & 4) Shaders(&bytes, planes);
    if (path && (what & 8)) Render(&bytes, path, planes);
    for (PATHBUF buffer : {planes.mask, planes.distance, planes.offset}) FreeBuffer(buffer);
    ZrPathDeletePtr(path, 0);
    SceneCheckLeaks();
    return 0;
}
