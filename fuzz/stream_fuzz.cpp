/* stream_fuzz.cpp - the stream reader, from the bytes up, and then every export that takes a record on what was read.
 */
#include "scene.h"

using namespace zr32fuzz;

namespace {

void EveryExport(PATHREC *path)
{
    RECT rect = {0, 0, 0, 0};
    int32_t selected = 3;
    int32_t joined = 0;
    ZrPathInfo(path, &selected, &joined);
    IsOnlyPrimitive(path);
    ZrPathGetMiniMaxRect(path, 0x18000, &rect);
    ZrPathGetSelectedRect(path, 0x8000, &rect);
    ZrPathGetAllMiniMaxRect(path, -0x10000, &rect);
    ZrPathGetRealRect(path, 0x10000, &rect);

    PATHREC *copy = nullptr;
    ZrPathDuplicatePtr(path, &copy);
    ZrPathAllPathSelected(copy);
    ZrPathJoinAll(copy);
    ZrPathSize(copy, 0.5, 1.25);
    ZrPathOffsetExact(copy, -7, 9);
    const ZRPOINTFX frame[8] = {{0, 0},       {6 << 16, -4 << 16}, {20 << 16, 0},       {30 << 16, 0},
                                {0, 9 << 16}, {6 << 16, 30 << 16}, {20 << 16, 9 << 16}, {30 << 16, 40 << 16}};
    ZrPathBiLinear(copy, frame);
    ZrPathBiCubic(copy, frame);
    ZrPathBiCubicV(copy, frame);
    ZrPathAddBiBezierEnvelope(copy, frame);
    ZrPathDisjoinAll(copy);

    PATHTBL *table = nullptr;
    COORDSTRUCT *view = nullptr;
    ZrPathCoordStruct(0, 0, 64, 48, 3, 2, 1, nullptr, &view);
    if (view && copy && ZrPathAddPathGroup(&table, copy, "fuzz", view, &rect)) {
        uint32_t node = 0;
        uint16_t position = 0;
        PATHREC *hit = copy;
        ZrPathPtOn(20, 20, ZRPICK_REPLACE, SceneDC(), view, table, &hit, &node, &position);
        hit = copy;
        ZrPathPtOn(20, 20, ZRPICK_ADD, SceneDC(), view, table, &hit, &node, &position);
        POINT handles[12];
        ZrPathSelectedToView(view, copy, handles, 0);
        ZrPathSelectedToView(view, copy, handles, 1);
        ZrPathRectClip(0, 0, 40, 40, table, SceneDC(), view, ZRCLIP_OUTLINE | ZRCLIP_DESELECT);
        ZrPathDrawNodes(SceneDC(), copy, view);
        ZrPathDuplicate(SceneDC(), table, view, &rect);
        ZrPathCenter(0, 18018, table, view, &rect);
        ZrPathDelete(table, view, &rect);
        ZrPathTblDelete(table);
    } else {
        ZrPathDeletePtr(copy, 0);
    }
    ZrPathDeleteCoordStruct(view);

    if (SmallEnough(path, 0x10000, 400)) {
        RECT *rects = nullptr;
        PATHBUF *bufs = nullptr;
        const int32_t count = ZrPathToBuf(path, 8, 0, 1, 0, 0x10000, &rects, &bufs, 0);
        for (int32_t i = 0; i < count; i++) FreeBuffer(bufs[i]);
        if (rects) GlobalFree(rects);
        if (bufs) GlobalFree(bufs);
    }
    uint32_t size = 0;
    void *stream = nullptr;
    if (ZrPathFlatten(path, &size, &stream)) {
        PATHREC *again = nullptr;
        if (!ZrPathUnFlatten(&stream, &again)) __builtin_trap(); /* what is written can be read */
        ZrPathDeletePtr(again, 0);
        GlobalFree(stream);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    SceneReset();
    void *stream = GlobalAlloc(GPTR, size);
    if (!stream) return 0;
    if (size) memcpy(stream, data, size);
    PATHREC *path = nullptr;
    if (ZrPathUnFlatten(&stream, &path) && path) {
        EveryExport(path);
        ZrPathDeletePtr(path, 0);
    }
    GlobalFree(stream);
    SceneCheckLeaks();
    return 0;
}
