/* road.cpp - the road of one bevelled text, call by call as an editor makes them; see road.h.
 *
 * The surface sweeps leave out the last record of a table chain, so the chain gets a tail record of a single node that
 * belongs to no shape.
 */
#include "road.h"

#include "lettering.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace bevel {

namespace {

constexpr ZRFIXED one = 0x10000;
constexpr int margin = 24;

int Fail(const char *what)
{
    fprintf(stderr, "bevel: %s\n", what);
    return 0;
}

/* A closed shape for builders that do not take text: a primitive over a drag of the image. */
PATHREC *ShapePath(int kind, int width, int height)
{
    COORDSTRUCT *view = nullptr;
    ZrPathCoordStruct(0, 0, width, height, 0, 0, 1, nullptr, &view);
    const struct tagRECT drag = {margin, margin, width - margin, height - margin};
    PATHREC *path = nullptr;
    ZrPathGetPrimitive(kind, nullptr, &path, view, 0, 0, &drag);
    ZrPathDeleteCoordStruct(view);
    return path;
}

/* A bar bent through a frame, with the frame's outline record behind it. */
PATHREC *EnvelopePath(int width, int height)
{
    PATHREC *path = ShapePath(ZRPRIM_BAR, width, height);
    if (!path) return nullptr;
    const auto at = [&](double x, double y) {
        return ZRPOINTFX{DbToFix(margin + x * (width - 2 * margin)), DbToFix(margin + y * (height - 2 * margin))};
    };
    const ZRPOINTFX frame[8] = {at(0, 0.55), at(0.33, 0.0),  at(0.66, 0.0),  at(1, 0.55),
                                at(0, 0.95), at(0.33, 0.45), at(0.66, 0.45), at(1, 0.95)};
    ZrPathBiCubic(path, frame);
    if (!ZrPathAddBiBezierEnvelope(path, frame)) {
        ZrPathDeletePtr(path, 0);
        return nullptr;
    }
    return path;
}

PATHREC *TailRecord()
{
    const R2VPOINT point = {0, 0, PATHNODE_LINE, 0};
    PATHREC *tail = ZrPathR2VToZrPath(1, &point);
    if (tail) tail->flags = 0;
    return tail;
}

/* The library's figure starts again with every record, so the bar shows the highest so far. user is its address. */
int32_t Progress(int32_t code, int32_t value, int32_t, intptr_t user)
{
    constexpr int cells = 40;
    int32_t *highest = reinterpret_cast<int32_t *>(user);
    if (code == 1) return 1;
    if (code == 4) value = 100;
    if (value <= *highest || value > 100) return 1;
    *highest = value;
    char bar[cells + 1];
    for (int i = 0; i < cells; i++) bar[i] = i * 100 < value * cells ? '#' : '.';
    bar[cells] = 0;
    fprintf(stderr, "\rsurface [%s] %3d %%%s", bar, static_cast<int>(value), code == 4 ? "\n" : "");
    fflush(stderr);
    return 1;
}

/* Landscape colours of the place where the mask lies would hide the light, so the solid has a colour of its own. */
PATHBUF SolidColour(int width, int height, bool metal)
{
    PATHBUF image = ZrPathBufAlloc(24, width, height);
    if (!image) return nullptr;
    const uint8_t colour[2][3] = {{214, 92, 44}, {168, 150, 120}};
    for (size_t i = 0; i < static_cast<size_t>(width) * static_cast<size_t>(height); i++)
        memcpy(image + i * 3, colour[metal], 3);
    return image;
}

struct LIGHTING {
    int32_t spotOn[4];
    int32_t spotPos[8];
    double directions[12];
};

/* The first light is the one asked for; the others stand around the viewer. */
LIGHTING LightingFor(const OPTIONS &options)
{
    LIGHTING lighting = {{0, 0, 0, 0}, {35, 35, 75, 30, 30, 75, 70, 70}, {}};
    const double a = 0.5773502;
    const double around[12] = {0, 0, 0, a, -a, a, -a, a, a, a, a, a};
    memcpy(lighting.directions, around, sizeof around);
    memcpy(lighting.directions, options.light, sizeof options.light);
    if (options.spot) std::fill(lighting.spotOn, lighting.spotOn + 4, 1);
    return lighting;
}

int Shade(ROAD *road)
{
    const OPTIONS &o = road->options;
    const LIGHTING lighting = LightingFor(o);
    const int32_t floats = road->floatOffsets;
    if (o.metal) {
        const int32_t shininess[4] = {60, 60, 60, 60};
        const int32_t level[4] = {70, 70, 70, 70};
        ZrPathAdjMetallicIllum(shininess, level, o.lights, 60);
        if (o.lights > 1)
            return ZrPathShadeMultiMetallic(road->image, road->reach, o.profile, o.invert, o.scale, floats,
                                            road->distance, road->offset, 0, road->mask, nullptr, o.lights,
                                            lighting.spotOn, lighting.spotPos, lighting.directions, 0x60C8FF, nullptr,
                                            0, o.bump, road->bumpMap);
        return ZrPathShadeMetallic(road->image, road->reach, o.profile, o.invert, o.scale, floats, road->distance,
                                   road->offset, 0, road->mask, nullptr, o.spot, 35, 35, o.light[0], o.light[1],
                                   o.light[2], 0x60C8FF, nullptr, 0, o.bump, road->bumpMap);
    }
    const int32_t shininess[4] = {24, 24, 24, 24};
    const int32_t percent[4] = {60, 60, 60, 60};
    const uint32_t colours[4] = {0xFFFFFF, 0x8080FF, 0xFFC080, 0x80FFB0};
    ZrPathAdjPhongIllum(shininess, percent, 0x404040, colours, o.lights, 25);
    if (o.lights > 1)
        return ZrPathShadeMultiPhong(road->image, road->reach, o.profile, o.invert, o.scale, floats, road->distance,
                                     road->offset, 0, road->mask, nullptr, o.lights, lighting.spotOn, lighting.spotPos,
                                     lighting.directions, 0, 0, o.bump, road->bumpMap);
    return ZrPathShadePhong(road->image, road->reach, o.profile, o.invert, o.scale, floats, road->distance,
                            road->offset, 0, road->mask, nullptr, o.spot, 35, 35, o.light[0], o.light[1], o.light[2], 0,
                            0, o.bump, road->bumpMap);
}

/* A surface outside the outline is lit where it lies: the mask is filled wherever there is distance. */
void CoverSurface(ROAD *road, int width, int height)
{
    for (size_t i = 0; i < static_cast<size_t>(width) * static_cast<size_t>(height); i++) {
        float distance;
        memcpy(&distance, road->distance + i * sizeof distance, sizeof distance);
        if (distance != 0) road->mask[i] = 255;
    }
}

int SameChain(const PATHREC *a, const PATHREC *b)
{
    for (; a && b; a = a->nextPath, b = b->nextPath) {
        if (a->nodeCount != b->nodeCount || a->flags != b->flags || a->primitive != b->primitive) return 0;
        if (memcmp(a->nodes, b->nodes, sizeof(PATHNODE) * a->nodeCount) != 0) return 0;
        if ((a->nextJoin == a->nextPath) != (b->nextJoin == b->nextPath)) return 0;
    }
    return !a && !b;
}

} // namespace

int RoadPaths(const OPTIONS &options, ROAD *road)
{
    road->options = options;
    ZrPathInit();
    if (options.builder == BUILD_PRIMITIVE || options.builder == BUILD_ENVELOPE) {
        road->width = options.size * 3;
        road->height = options.size * 2;
        road->path = options.builder == BUILD_PRIMITIVE ? ShapePath(ZRPRIM_ELLIPSE, road->width, road->height)
                                                        : EnvelopePath(road->width, road->height);
        return road->path ? 1 : Fail("the shape could not be made");
    }
    const ZRHDC hdc = LetteringOpen(options.font, options.size);
    if (!hdc) return 0;
    road->path = LetteringPaths(hdc, options.text);
    LetteringClose(hdc);
    if (!road->path) return Fail("the text has no outline in this font");
    ZrPathOffset(road->path, margin, margin);
    struct tagRECT rect;
    ZrPathGetMiniMaxRect(road->path, one, &rect);
    road->width = rect.right + margin;
    road->height = rect.bottom + margin;
    PATHREC *tail = TailRecord();
    if (!tail) return Fail("out of memory");
    return ZrPathChainPaths(&road->path, tail);
}

int RoadOutline(ROAD *road, PICTURE *picture)
{
    ZrPathCoordStruct(0, 0, road->width, road->height, 0, 0, 1, nullptr, &road->view);
    struct tagRECT dirty;
    if (!road->view || !ZrPathAddPathGroup(&road->table, road->path, "text", road->view, &dirty))
        return Fail("out of memory");
    *picture = PictureLandscape(road->width, road->height);
    ZrPathPaintMem(0, 0, road->width, road->height, road->table, picture->bytes.data());
    return 1;
}

int RoadMask(ROAD *road)
{
    const int outset = road->options.side == SIDE_INSIDE ? 0 : static_cast<int>(std::ceil(road->options.width));
    struct tagRECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    const int count = ZrPathToBuf(road->path, 8, 0, 1, 0, one, &rects, &bufs, outset);
    if (count < 1) return Fail("the mask could not be made");
    road->mask = bufs[0];
    road->maskRect = rects[0];
    for (int i = 1; i < count; i++) ZrPathBufFree(bufs[i]);
    GlobalFree(rects);
    GlobalFree(bufs);
    return 1;
}

int RoadSurface(ROAD *road)
{
    const OPTIONS &o = road->options;
    const int reachOut = static_cast<int>(std::ceil(o.width));
    const int outset = o.side == SIDE_INSIDE ? 0 : o.side == SIDE_OUTSIDE ? reachOut : -reachOut;
    const bool swept = o.builder == BUILD_SWEPT;
    int32_t highest = -1;
    VMAPPROGRESS progress = {0, road->quiet ? nullptr : Progress, reinterpret_cast<intptr_t>(&highest), 0, 100};
    road->distance = road->offset = reinterpret_cast<PATHBUF>(1); /* asks for both planes */
    road->reach = o.width;
    if (!ZrPathVMap(road->path, &road->distance, &road->offset, o.evenOdd, 0, o.builder == BUILD_ENVELOPE, outset,
                    o.rounded, &road->reach, 0, swept, swept ? road->mask : nullptr, &progress, one)) {
        road->distance = road->offset = nullptr;
        return Fail("the surface could not be made");
    }
    road->floatOffsets = o.builder == BUILD_PRIMITIVE;
    return 1;
}

int RoadLight(ROAD *road)
{
    const OPTIONS &o = road->options;
    int32_t width, height, bits;
    ZrPathBufGetWHU(road->mask, &width, &height, &bits);
    ShadingGammaToMap();
    road->image = SolidColour(width, height, o.metal);
    if (!road->image) return Fail("out of memory");
    if (o.bump) {
        PATHBUF source = EnvironmentGrey(512, 256);
        road->bumpMap = ZrPathBufAlloc(8, width, height);
        ZrPathBumpIt(o.profile, road->reach, road->offset, road->bumpMap, o.invert, o.scale, road->floatOffsets, source,
                     0, road->mask, nullptr);
        ZrPathBufFree(source);
    }
    if (o.mirror) {
        PATHBUF source = EnvironmentColour(512, 256);
        ZrPathReflectIt(o.profile, road->reach, road->offset, road->image, o.invert, o.scale, road->floatOffsets,
                        source, 0, road->mask, nullptr, o.bump, road->bumpMap);
        ZrPathBufFree(source);
    }
    if (o.side != SIDE_INSIDE) CoverSurface(road, width, height);
    if (!Shade(road)) return Fail("the image could not be lit");
    if (o.face || o.edge)
        ZrPathTransparentMask(road->mask, o.face, o.edge, road->reach, o.profile, o.invert, o.scale, road->floatOffsets,
                              road->offset, 0, o.bump, road->bumpMap);
    return 1;
}

int RoadStream(ROAD *road, const std::string &file)
{
    uint32_t size = 0;
    void *stream = nullptr;
    if (!ZrPathFlatten(road->path, &size, &stream)) return Fail("out of memory");
    PATHREC *copy = nullptr;
    const int same = ZrPathUnFlatten(&stream, &copy) && SameChain(road->path, copy);
    ZrPathDeletePtr(copy, 0);

    FILE *out = fopen(file.c_str(), "wb");
    const int written = out && fwrite(stream, 1, size, out) == size;
    const int closed = out && fclose(out) == 0;
    GlobalFree(stream);
    if (!same) return Fail("the stream does not read back as it was written");
    if (!written || !closed) {
        fprintf(stderr, "bevel: cannot write %s\n", file.c_str());
        return 0;
    }
    return 1;
}

void RoadFree(ROAD *road)
{
    for (PATHBUF *buffer : {&road->mask, &road->distance, &road->offset, &road->image, &road->bumpMap}) {
        if (*buffer) ZrPathBufFree(*buffer);
        *buffer = nullptr;
    }
    if (road->table)
        ZrPathTblDelete(road->table);
    else if (road->path)
        ZrPathDeletePtr(road->path, 0);
    ZrPathDeleteCoordStruct(road->view);
    road->table = nullptr;
    road->path = nullptr;
    road->view = nullptr;
}

PICTURE RoadOverLandscape(const ROAD &road, const PICTURE &front)
{
    PICTURE back = PictureLandscape(road.width, road.height);
    PICTURE placed = PictureMake(road.width, road.height, 4);
    for (int y = 0; y < front.height; y++) {
        const int row = y + road.maskRect.top;
        if (row < 0 || row >= placed.height) continue;
        for (int x = 0; x < front.width; x++) {
            const int column = x + road.maskRect.left;
            if (column < 0 || column >= placed.width) continue;
            memcpy(
                &placed.bytes
                     [(static_cast<size_t>(row) * static_cast<size_t>(placed.width) + static_cast<size_t>(column)) * 4],
                &front.bytes[(static_cast<size_t>(y) * static_cast<size_t>(front.width) + static_cast<size_t>(x)) * 4],
                4);
        }
    }
    return PictureOver(placed, back);
}

PATHBUF EnvironmentGrey(int width, int height)
{
    PATHBUF grey = ZrPathBufAlloc(8, width, height);
    const PICTURE scene = PictureLandscape(width, height);
    for (size_t i = 0; grey && i < static_cast<size_t>(width) * static_cast<size_t>(height); i++) {
        const size_t x = i % static_cast<size_t>(width);
        const size_t y = i / static_cast<size_t>(width);
        const double wave = 60 * std::sin(static_cast<double>(x) * 0.35) * std::sin(static_cast<double>(y) * 0.35);
        grey[i] = static_cast<uint8_t>(std::clamp(scene.bytes[i * 3 + 1] * 0.4 + 90 + wave, 0.0, 255.0));
    }
    return grey;
}

PATHBUF EnvironmentColour(int width, int height)
{
    PATHBUF colour = ZrPathBufAlloc(24, width, height);
    const PICTURE scene = PictureLandscape(width, height);
    if (colour) memcpy(colour, scene.bytes.data(), scene.bytes.size());
    return colour;
}

} // namespace bevel
