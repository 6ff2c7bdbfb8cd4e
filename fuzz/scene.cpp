/* scene.cpp - records, buffers and surroundings decoded from a fuzzer's input; see scene.h. */
#include "scene.h"

#include "comm/zr32comm.h"
#include "edit/pentool.h"
#include "edit/undo.h"
#include "frame/faults.h"
#include "store/store.h"

#include <algorithm>

namespace zr32fuzz {

namespace {

constexpr int32_t mostKeys = 30;

int64_t liveBefore[zr32::ALLOC_COUNT];

/* Also records that ZrPathURFree keeps. */
void ForgetUndo()
{
    for (int32_t key = 1; key <= mostKeys; key++) {
        zr32::URLoad(key);
        if (!zr32::undoNow.head) continue;
        while (zr32::undoNow.head) zr32::URDropOldest();
        zr32::URStore(key);
    }
    zr32::URLoad(0);
}

HDC BitmapDC(int32_t width, int32_t height)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void *bits = nullptr;
    HDC hdc = CreateCompatibleDC(nullptr);
    SelectObject(hdc, CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    return hdc;
}

bool InChain(const PATHREC *head, const PATHREC *path)
{
    while (head && head != path) head = head->nextPath;
    return head != nullptr;
}

PATHREC *TakeRecord(BYTES *bytes, int32_t reach, int32_t mostNodes)
{
    static const uint16_t codes[] = {2,      2,      4,      4,     3,     5,     6,     0x2004,
                                     0x8002, 0x8004, 0x8006, 0x100, 0x101, 0x200, 0x400, 0x8003};
    const uint32_t count = static_cast<uint32_t>(TakeRange(bytes, 0, mostNodes));
    PATHREC *path = zr32::RecordAlloc(count);
    if (!path) return nullptr;
    for (uint32_t i = 0; i < count; i++) {
        const uint8_t pick = Take<uint8_t>(bytes);
        path->nodes[i].type = i == 0 && pick < 250 ? uint16_t{PATHNODE_START}
                              : pick == 255        ? Take<uint16_t>(bytes)
                                                   : codes[pick % 16];
        const bool anywhere = pick == 254;
        path->nodes[i].x = anywhere ? Take<int32_t>(bytes) : TakeRange(bytes, -reach * 16, reach * 16) * 4096;
        path->nodes[i].y = anywhere ? Take<int32_t>(bytes) : TakeRange(bytes, -reach * 16, reach * 16) * 4096;
    }
    path->nodeCount = count;
    static const uint32_t flags[] = {
        0, PATHREC_SELECTED,   PATHREC_NODEEDIT, PATHREC_ENVELOPE, PATHREC_SELECTED | PATHREC_HIDDEN, PATHREC_HIDDEN,
        0, PATHREC_FREELATTICE};
    path->flags = TakeOne(bytes, flags);
    path->primitive = TakeRange(bytes, 0, 6);
    return path;
}

} // namespace

void Check(bool holds)
{
    if (!holds) __builtin_trap();
}

void SceneReset()
{
    ZrPathInit();
    ForgetUndo();
    zr32::PenReset();
    ReleaseCapture();
    for (int i = 0; i < zr32::ALLOC_COUNT; i++) liveBefore[i] = zr32::FaultLiveBlocks(static_cast<zr32::ALLOCATOR>(i));
    zr32CommReset();
    ShadingGammaToMap();
    FontSet({nullptr, 0});
    PORTWINDOWSTATE *windows = PortWindowState();
    windows->foreground = reinterpret_cast<HWND>(4);
    windows->dc = SceneDC();
}

void SceneCheckLeaks()
{
    ForgetUndo();
    /* Global blocks are freed by the caller past the library's count; the leak sanitizer sees them. */
    for (zr32::ALLOCATOR allocator : {zr32::ALLOC_PATHHEAP, zr32::ALLOC_SURFACEHEAP, zr32::ALLOC_BUF})
        Check(zr32::FaultLiveBlocks(allocator) == liveBefore[allocator]);
}

/* ---- records ---- */

PATHREC *TakeChain(BYTES *bytes, int32_t reach, int32_t mostNodes)
{
    const int32_t count = TakeRange(bytes, 1, 6);
    PATHREC *head = nullptr;
    PATHREC *last = nullptr;
    PATHREC *lastSelected = nullptr;
    for (int32_t i = 0; i < count; i++) {
        PATHREC *path = TakeRecord(bytes, reach, mostNodes);
        if (!path) break;
        if (last) {
            zr32::ChainLink(zr32::tableChain, last, path);
            if (TakeBool(bytes)) zr32::ChainLink(zr32::joinChain, last, path);
        } else {
            head = path;
        }
        if (zr32::PathIsSelected(path)) {
            if (lastSelected) zr32::ChainLink(zr32::selectedChain, lastSelected, path);
            lastSelected = path;
        }
        last = path;
    }
    return head;
}

uint32_t CheckChain(const PATHREC *head)
{
    uint32_t count = 0;
    Check(!head || !head->prevPath);
    for (const PATHREC *path = head; path; path = path->nextPath) {
        Check(!path->nextPath || path->nextPath->prevPath == path);
        Check(!path->nextJoin || (InChain(head, path->nextJoin) && path->nextJoin->prevJoin == path));
        Check(!path->prevJoin || (InChain(head, path->prevJoin) && path->prevJoin->nextJoin == path));
        Check(!path->nextSel || InChain(path->nextPath, path->nextSel));
        Check(!path->prevSel || InChain(path->prevSel->nextPath, path));
        Check(path->nodeCount <= zr32::RecordRoom(path));
        Check(++count < 10000);
    }
    return count;
}

void CheckTable(const PATHTBL *table)
{
    for (uint32_t g = 0; table && g < table->groupCount; g++) {
        const PATHGROUP &group = table->groups[g];
        CheckChain(group.activePath);
        Check(!group.selectedPath || InChain(group.activePath, group.selectedPath));
    }
}

PATHREC *Active(const PATHTBL *table)
{
    PATHREC *path = nullptr;
    ZrPathFind(table, nullptr, &path, nullptr, nullptr);
    return path;
}

PATHREC *Selected(const PATHTBL *table)
{
    PATHREC *path = nullptr;
    ZrPathFind(table, nullptr, nullptr, &path, nullptr);
    return path;
}

ZRFIXED FitZoom(const PATHREC *path, int32_t limit)
{
    RECT rect = {0, 0, 0, 0};
    ZrPathGetAllMiniMaxRect(zr32::ChainFirst(zr32::tableChain, path), 0x10000, &rect);
    const int64_t side = std::max(int64_t{rect.right} - rect.left, int64_t{rect.bottom} - rect.top);
    return side <= limit ? 0x10000 : std::max(static_cast<ZRFIXED>(int64_t{0x10000} * limit / side), 1);
}

bool SmallEnough(const PATHREC *path, int32_t limit)
{
    return FitZoom(path, limit) == 0x10000;
}

void TakeFrame(BYTES *bytes, int32_t reach, ZRPOINTFX points[8])
{
    for (int i = 0; i < 8; i++)
        points[i] = {TakeRange(bytes, -reach, reach) * 65536, TakeRange(bytes, -reach, reach) * 65536};
}

/* ---- buffers ---- */

PATHBUF TakeBuffer(BYTES *bytes, int32_t bits)
{
    const int32_t width = TakeRange(bytes, 0, 40);
    return TakeBufferOf(bytes, bits, width, TakeRange(bytes, 0, 40));
}

PATHBUF TakeBufferOf(BYTES *bytes, int32_t bits, int32_t width, int32_t height)
{
    const uint8_t how = Take<uint8_t>(bytes);
    if (how == 255) return nullptr;
    if (how >= 240) width = TakeRange(bytes, 0, 40);
    if (how >= 240) height = TakeRange(bytes, 0, 40);
    static const int32_t depths[] = {8, 24, 32, 0x40, 1};
    if (how >= 230 && how < 240) bits = TakeOne(bytes, depths);
    PATHBUF buffer = ZrPathBufAlloc(bits, width, height);
    if (!buffer) return nullptr;
    const size_t size = ZrPathBufSize(buffer) - 3 * sizeof(uint32_t);
    const BYTES pattern = TakeSlice(bytes, how % 32);
    for (size_t i = 0; i < size && pattern.left; i++) buffer[i] = pattern.data[i % pattern.left];
    return buffer;
}

void FreeBuffer(PATHBUF buffer)
{
    if (buffer) ZrPathBufFree(buffer);
}

void FreeMasks(int32_t count, RECT *rects, PATHBUF *bufs, PATHBUF *kept)
{
    for (int32_t i = 0; i < count; i++) {
        if (kept && i == 0)
            *kept = bufs[i];
        else
            FreeBuffer(bufs[i]);
    }
    if (rects) GlobalFree(rects);
    if (bufs) GlobalFree(bufs);
}

/* ---- surroundings ---- */

HDC SceneDC()
{
    static HDC hdc = BitmapDC(64, 48);
    return hdc;
}

HDC TakeDC(BYTES *bytes)
{
    static const PORTDCCALLS noCalls = {};
    static HDC dcs[] = {
        SceneDC(), SceneDC(), SceneDC(), BitmapDC(1, 1), CreateCompatibleDC(nullptr), PortCreateCallbackDC(&noCalls),
        nullptr};
    return TakeOne(bytes, dcs);
}

POINTFXMAT3D TakeCamera(BYTES *bytes)
{
    POINTFXMAT3D camera = {};
    const uint8_t how = Take<uint8_t>(bytes);
    camera.center = {TakeRange(bytes, -60, 60) * 65536, TakeRange(bytes, -60, 60) * 65536};
    camera.shift = {TakeRange(bytes, -60, 60) * 65536, TakeRange(bytes, -60, 60) * 65536};
    camera.viewSize = (how & 0x11) == 0x11 ? TakeDouble(bytes) : TakeRange(bytes, 60, 400);
    camera.viewAngle = (how & 0x22) == 0x22 ? TakeDouble(bytes) : TakeRange(bytes, 5, 100);
    if (how & 4) {
        for (double &value : camera.matrix.m) value = TakeDouble(bytes) / 64;
        return camera;
    }
    for (int i = 0; i < 9; i += 4) camera.matrix.m[i] = 1.0;
    for (const tagPOINT3D &axis : {tagPOINT3D{1, 0, 0}, tagPOINT3D{0, 1, 0}}) {
        const double sine = TakeRange(bytes, -4, 4) * 0.25;
        tagMATRIX3D turn = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
        VThitaGetMatrix(sine, how & 8 ? -0.5 : 0.75, &axis, &turn);
        Matrix3X3(&camera.matrix, &turn, &camera.matrix);
    }
    ORMatrix(&camera.matrix);
    return camera;
}

int32_t SceneProgress(int32_t code, int32_t, int32_t, intptr_t user)
{
    int32_t *left = reinterpret_cast<int32_t *>(user);
    return code != 2 || --*left > 0;
}

void UndoStep(int32_t key, bool forward, PATHTBL *table, COORDSTRUCT *view, HDC hdc, RECT *dirty)
{
    zr32::URLoad(key);
    const zr32::URRECORD *record = zr32::URRecordAt(zr32::undoNow.position + (forward ? 1 : 0));
    void *context = record && record->action == UR_SELECTION ? static_cast<void *>(hdc) : dirty;
    if (forward)
        ZrPathRedo(key, table, view, context);
    else
        ZrPathUndo(key, table, view, context);
}

} // namespace zr32fuzz
