/* stream_fuzz.cpp - the stream reader, from the bytes up, and then every export that takes a record on what was read.
 *
 * Exports that change or free a record get a copy of the chain. Planes are kept small by the zoom.
 */
#include "scene.h"

#include "store/store.h"

using namespace zr32fuzz;

namespace {

constexpr int32_t key = 9;
constexpr int32_t mostSide = 48;
constexpr ZRPOINTFX frame[8] = {{0, 0},       {6 << 16, -4 * 65536}, {20 << 16, 0},       {30 << 16, 0},
                                {0, 9 << 16}, {6 << 16, 30 << 16},   {20 << 16, 9 << 16}, {30 << 16, 40 << 16}};

/* What only reads. */
void Ask(PATHREC *path)
{
    RECT rect = {0, 0, 0, 0};
    ZRPOINTFX points[8];
    for (PATHREC *record = path; record; record = record->nextPath) {
        int32_t selected = 3;
        int32_t joined = 3;
        ZrPathInfo(record, &selected, &joined);
        selected = 0;
        ZrPathInfo(record, &selected, &joined);
        IsOnlyPrimitive(record);
        ZrPathGetEnvelopeType(record);
        ZrPathGetBiLinearEnvelope(record, points);
        ZrPathGetBiBezierEnvelope(record, points);
        ZrPathGetMiniMaxRect(record, 0x18000, &rect);
        ZrPathGetSelectedRect(record, 0x8000, &rect);
    }
    ZrPathGetAllMiniMaxRect(path, -0x10000, &rect);
    ZrPathGetRealRect(path, 0x10000, &rect);
}

/* Every edit of loose records, each on the result of those before it. */
void Edit(const PATHREC *path)
{
    PATHREC *copy = nullptr;
    if (!ZrPathDuplicatePtr(path, &copy)) return;
    ZrPathOffset(copy, 3, 4);
    ZrPathOffsetExact(copy, -7, 9);
    ZrPathSize(copy, 0.5, 1.25);
    ZrPathMovePathsByPtfx(copy, 0x12345, -0x54321);
    for (PATHREC *record = copy; record; record = record->nextPath) {
        ZrPathDisjoin(record);
        ZrPathJoin(record);
        ZrPathPurge(&record);
        ZrPathAddPoint(&record, &frame[1], PATHNODE_LINE);
        ZrPathDeselectPts(record);
    }
    ZrPathDisjoinAll(copy);
    ZrPathJoinAll(copy);
    CheckChain(copy);
    ZrPathBiLinear(copy, frame);
    ZrPathBiCubic(copy, frame);
    ZrPathBiCubicV(copy, frame);
    ZrPathAddBiLinearEnvelope(copy, frame);
    ZrPathAddBiBezierEnvelope(copy, frame);
    PATHREC *other = nullptr;
    if (ZrPathDuplicatePtr(path, &other)) ZrPathChainPaths(&copy, other);
    ZrPathDeSelectAll(nullptr, copy, nullptr, 0);
    ZrPathAllPathSelected(copy);
    CheckChain(copy);
    ZrPathDeletePtr(copy, 1);
}

/* The first records, each by itself, tied anew. */
void Tie(const PATHREC *path)
{
    PATHREC *copy = nullptr;
    if (!ZrPathDuplicatePtr(path, &copy)) return;
    PATHREC *records[4] = {};
    uint32_t count = 0;
    while (copy) {
        PATHREC *next = copy->nextPath;
        for (const zr32::CHAIN &chain : {zr32::tableChain, zr32::joinChain, zr32::selectedChain})
            copy->*chain.prev = copy->*chain.next = nullptr;
        if (next) next->prevPath = nullptr;
        if (count < 4)
            records[count++] = copy;
        else
            ZrPathDeletePtr(copy, 0);
        copy = next;
    }
    PATHREC *tied = ZrPathChainZrPath(count, records);
    CheckChain(tied);
    ZrPathDeletePtr(tied, 0);
}

struct EDITOR {
    PATHTBL *table;
    COORDSTRUCT *view;
    RECT dirty;
};

void Show(EDITOR *editor)
{
    EDITOR &e = *editor;
    ZrPathAssignActivePath(e.table, Active(e.table));
    ZrPathAssignSelectedPath(e.table, Selected(e.table));
    ZrPathDraw(e.view, Active(e.table), &e.dirty);
    ZrPathHideSelected(e.view, Selected(e.table), &e.dirty);
    ZrPathMovePaths(Selected(e.table), e.view, 5, -3);
    ZrPathDrawSelectedSegments(e.view, Selected(e.table), &e.dirty);
    ZrPathDrawSelected(e.view, Selected(e.table), &e.dirty);
    ZrPathScrollDB(e.view, Active(e.table), 2, -1);
    ZrPathTblRepaintNodes(SceneDC(), e.table, e.view, 0, 0, 40, 30);
    for (PATHREC *record = Active(e.table); record; record = record->nextPath)
        ZrPathDrawNodes(SceneDC(), record, e.view);
    ZrPathHide(e.view, Active(e.table), &e.dirty);
    CheckTable(e.table);
}

/* Clicks on the first nodes of each record, a drag of handles and a rectangle. */
void Pick(EDITOR *editor)
{
    EDITOR &e = *editor;
    for (PATHREC *record = Active(e.table); record; record = record->nextPath) {
        for (uint32_t i = 0; i < record->nodeCount && i < 4; i++) {
            PATHREC *hit = record;
            uint32_t node = 0;
            uint16_t position = 0;
            const double scale = zr32::ViewScale(e.view);
            const int32_t x = static_cast<int32_t>(FixToDb(record->nodes[i].x) * scale) - e.view->scrollX;
            const int32_t y = static_cast<int32_t>(FixToDb(record->nodes[i].y) * scale) - e.view->scrollY;
            ZrPathPtOn(x, y, i & 1 ? ZRPICK_ADD : ZRPICK_REPLACE, SceneDC(), e.view, e.table, &hit, &node, &position);
        }
        POINT handles[12] = {};
        ZrPathSelectedToView(e.view, record, handles, 0);
        for (POINT &handle : handles) handle.x += handle.x > 0;
        ZrPathSelectedToView(e.view, record, handles, 1);
    }
    CheckTable(e.table);
    ZrPathRectClip(0, 0, 40, 40, e.table, SceneDC(), e.view, ZRCLIP_OUTLINE);
    ZrPathRectClip(5, 0, 30, 40, e.table, SceneDC(), e.view, ZRCLIP_NODES | ZRCLIP_DESELECT);
    ZrPathAssignSelectedPathBlindly(e.table, Active(e.table));
    CheckTable(e.table);
}

/* Every kind of step backed up, undone and redone. */
void Step(EDITOR *editor)
{
    EDITOR &e = *editor;
    static const int32_t actions[] = {UR_SELECTION, UR_MOVE, UR_JOIN, UR_DISJOIN, UR_ENVELOPE};
    ZrPathAllPathSelected(Active(e.table));
    ZrPathAssignSelectedPath(e.table, Active(e.table));
    for (const int32_t action : actions) ZrPathBackupAction(key, action, e.table);
    ZrPathSameUR(key, e.table, UR_SELECTION);
    for (int i = 0; i < 10; i++) UndoStep(key, i >= 5, e.table, e.view, SceneDC(), &e.dirty);
    CheckTable(e.table);
    for (int i = 0; i < 5; i++) ZrPathURFree(key, 0, i & 1);
}

/* The records in a group of a table. */
void Group(const PATHREC *path, int32_t zoom)
{
    EDITOR e = {};
    PATHREC *copy = nullptr;
    ZrPathCoordStruct(1, 0, 64, 48, 3, 2, zoom, nullptr, &e.view);
    if (!e.view || !ZrPathDuplicatePtr(path, &copy) || !ZrPathAddPathGroup(&e.table, copy, "fuzz", e.view, &e.dirty)) {
        ZrPathDeletePtr(copy, 0);
        ZrPathDeleteCoordStruct(e.view);
        return;
    }
    Show(&e);
    Pick(&e);
    Step(&e);
    ZrPathAllPathSelected(Active(e.table));
    ZrPathAssignActivePath(e.table, Active(e.table));
    ZrPathCenter(0, 18018, e.table, e.view, &e.dirty);
    ZrPathDuplicate(SceneDC(), e.table, e.view, &e.dirty);
    const RECT drag = {5, 5, 30, 25};
    PATHREC *made = nullptr;
    if (ZrPathGetPrimitive(ZRPRIM_BAR, path, &made, e.view, 1, 1, &drag)) ZrPathDeletePtr(made, 0);
    ZrPathAddPrimitive(SceneDC(), ZRPRIM_BAR, path, e.table, e.view, 0, 0, &drag);
    CheckTable(e.table);
    ZrPathDelete(e.table, e.view, &e.dirty);
    ZrPathDeSelectAll(SceneDC(), Active(e.table), e.view, 1);
    ZrPathAssignSelectedPath(e.table, nullptr);
    if (Active(e.table)) Active(e.table)->flags = PATHREC_NODEEDIT;
    ZrPathAssignSelectedPath(e.table, Active(e.table));
    ZrPathDelete(e.table, e.view, &e.dirty);
    ZrPathDeleteLink(e.table, e.view, &e.dirty);
    CheckTable(e.table);
    ZrPathTblDelete(e.table);
    ZrPathDeleteCoordStruct(e.view);
}

/* Masks, surfaces, and the solid. */
void Passes(const PATHREC *path)
{
    PATHREC *copy = nullptr;
    if (!ZrPathDuplicatePtr(path, &copy)) return;
    const ZRFIXED zoom = FitZoom(copy, mostSide);
    RECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    PATHBUF mask = nullptr;
    int32_t count = ZrPathToBuf(copy, 8, 0, 1, 0, zoom, &rects, &bufs, 0);
    FreeMasks(count, rects, bufs, &mask);
    enum { EXACT, MASK, ENVELOPE };
    for (const int form : {EXACT, MASK, ENVELOPE}) {
        if (form == ENVELOPE && !SmallEnough(copy, 4 * mostSide)) continue; /* its own mask takes no zoom */
        PATHBUF distance = reinterpret_cast<PATHBUF>(1);
        PATHBUF offset = reinterpret_cast<PATHBUF>(1);
        double width = 6;
        ZrPathVMap(copy, &distance, &offset, 0, 0, form == ENVELOPE, 0, 0, &width, 0, form != EXACT, mask, nullptr,
                   zoom);
        if (distance != reinterpret_cast<PATHBUF>(1)) FreeBuffer(distance);
        if (offset != reinterpret_cast<PATHBUF>(1)) FreeBuffer(offset);
    }
    FreeBuffer(mask);
    mask = nullptr;
    count = ZrPathToBuf(copy, 4, 1, 1, 0, zoom, &rects, &bufs, 0);
    FreeMasks(count, rects, bufs, &mask);
    POINTFXMAT3D camera = {};
    camera.viewSize = 100;
    camera.viewAngle = 40;
    camera.matrix = {{0.8, 0, 0.6, 0, 1, 0, -0.6, 0, 0.8}};
    RECT rect = {0, 0, 0, 0};
    ZrPathGet3DMiniMaxRect(copy, &camera, 0, 10, &rect);
    const COORDSTRUCT view = {0, 0, 64, 48, 0, 0, 1, nullptr, {}};
    POINTFXMAT3D drawn = camera;
    ZrPath3DWireFrame(SceneDC(), copy, 40, 40, &view, &drawn, 10);
    PATHBUF colour = ZrPathBufAlloc(24, 40, 30);
    PATHBUF alpha = ZrPathBufAlloc(8, 40, 30);
    const uint32_t material = 0x336699;
    ZrPathABufRender(copy, &camera, colour, alpha, 0, nullptr, nullptr, &material, mask, nullptr, 0, 0, 0, 0, 0, 0, 0,
                     0, 0, 8, 30, 0, 0, nullptr, 0);
    ZrPathTo3D(copy, &camera);
    for (PATHBUF buffer : {mask, colour, alpha}) FreeBuffer(buffer);
    ZrPathDeletePtr(copy, 0);
}

/* What is written can be read, and is then written the same. */
void WriteAndRead(PATHREC *path)
{
    uint32_t size = 0;
    uint32_t sizeAgain = 0;
    void *stream = nullptr;
    void *streamAgain = nullptr;
    if (!ZrPathFlatten(path, &size, &stream)) return;
    PATHREC *again = nullptr;
    Check(ZrPathUnFlatten(&stream, &again) && again);
    Check(ZrPathFlatten(again, &sizeAgain, &streamAgain));
    Check(size == sizeAgain && memcmp(stream, streamAgain, size) == 0);
    ZrPathDeletePtr(again, 0);
    GlobalFree(streamAgain);
    GlobalFree(stream);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    /* Of a block of no bytes the platform does not tell the size, so the reader would have to trust it. */
    if (size == 0) return 0;
    SceneReset();
    void *stream = GlobalAlloc(GPTR, size);
    if (!stream) return 0;
    memcpy(stream, data, size);
    PATHREC *path = nullptr;
    if (ZrPathUnFlatten(&stream, &path) && path) {
        CheckChain(path);
        Ask(path);
        Edit(path);
        Tie(path);
        static const int32_t zooms[] = {1, 3, -2};
        Group(path, zooms[size % 3]);
        Passes(path);
        WriteAndRead(path);
        ZrPathDeletePtr(path, 0);
    }
    GlobalFree(stream);
    SceneCheckLeaks();
    return 0;
}
