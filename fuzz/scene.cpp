/* scene.cpp - records, buffers and surroundings decoded from a fuzzer's input; see scene.h. */
#include "scene.h"

#include "comm/zr32comm.h"
#include "frame/faults.h"
#include "store/store.h"

namespace zr32fuzz {

namespace {

int64_t liveBefore[zr32::ALLOC_COUNT];

} // namespace

void SceneReset()
{
    ZrPathInit();
    for (int i = 0; i < zr32::ALLOC_COUNT; i++) liveBefore[i] = zr32::FaultLiveBlocks(static_cast<zr32::ALLOCATOR>(i));
    zr32CommReset();
    ShadingGammaToMap();
}

void SceneCheckLeaks()
{
    /* Global blocks are freed by the caller past the library's count, and tables made on first use stay. */
    for (zr32::ALLOCATOR allocator : {zr32::ALLOC_PATHHEAP, zr32::ALLOC_SURFACEHEAP, zr32::ALLOC_BUF})
        if (zr32::FaultLiveBlocks(allocator) != liveBefore[allocator]) __builtin_trap();
}

PATHREC *TakeRecord(BYTES *bytes, int32_t reach)
{
    static const uint16_t codes[] = {2,      2,      4,      4,     3,     5,     6,     0x2004,
                                     0x8002, 0x8004, 0x8006, 0x100, 0x101, 0x200, 0x400, 0x8003};
    const uint32_t count = static_cast<uint32_t>(TakeRange(bytes, 0, 40));
    PATHREC *path = zr32::RecordAlloc(count);
    if (!path) return nullptr;
    for (uint32_t i = 0; i < count; i++) {
        const uint8_t pick = Take<uint8_t>(bytes);
        path->nodes[i].type = i == 0 && pick < 250 ? uint16_t{PATHNODE_START}
                              : pick == 255        ? Take<uint16_t>(bytes)
                                                   : codes[pick % 16];
        path->nodes[i].x = TakeRange(bytes, -reach * 16, reach * 16) * 4096 + (pick & 7);
        path->nodes[i].y = TakeRange(bytes, -reach * 16, reach * 16) * 4096;
    }
    path->nodeCount = count;
    static const uint32_t flags[] = {
        0, PATHREC_SELECTED,   PATHREC_NODEEDIT, PATHREC_ENVELOPE, PATHREC_SELECTED | PATHREC_HIDDEN, PATHREC_HIDDEN,
        0, PATHREC_FREELATTICE};
    path->flags = flags[Take<uint8_t>(bytes) % 8];
    path->primitive = TakeRange(bytes, 0, 6);
    return path;
}

PATHREC *TakeChain(BYTES *bytes, int32_t reach)
{
    const int32_t count = TakeRange(bytes, 1, 6);
    PATHREC *head = nullptr;
    PATHREC *last = nullptr;
    PATHREC *lastSelected = nullptr;
    for (int32_t i = 0; i < count; i++) {
        PATHREC *path = TakeRecord(bytes, reach);
        if (!path) break;
        if (last) {
            zr32::ChainLink(zr32::tableChain, last, path);
            if (Take<uint8_t>(bytes) & 1) zr32::ChainLink(zr32::joinChain, last, path);
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

PATHBUF TakeBuffer(BYTES *bytes, int32_t bits)
{
    const int32_t width = TakeRange(bytes, 0, 40);
    const int32_t height = TakeRange(bytes, 0, 40);
    if (Take<uint8_t>(bytes) == 255) return nullptr;
    PATHBUF buffer = ZrPathBufAlloc(bits, width, height);
    if (!buffer) return nullptr;
    const size_t pixel = bits == 8 ? 1 : bits == 24 ? 3 : bits == 32 ? 4 : 8;
    const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height) * pixel;
    const uint8_t *pattern = bytes->data;
    const size_t length = static_cast<size_t>(TakeRange(bytes, 1, 64)) < bytes->left ? size_t{16} : bytes->left;
    for (size_t i = 0; i < size && length; i++) buffer[i] = pattern[i % length];
    return buffer;
}

void FreeBuffer(PATHBUF buffer)
{
    if (buffer) ZrPathBufFree(buffer);
}

int SmallEnough(const PATHREC *path, ZRFIXED zoom, int32_t limit)
{
    RECT rect;
    if (!ZrPathGetAllMiniMaxRect(path, zoom, &rect)) return 1;
    return int64_t{rect.right} - rect.left <= limit && int64_t{rect.bottom} - rect.top <= limit;
}

HDC SceneDC()
{
    static HDC hdc;
    if (!hdc) {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = 64;
        info.bmiHeader.biHeight = -48;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void *bits = nullptr;
        hdc = CreateCompatibleDC(nullptr);
        SelectObject(hdc, CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    }
    return hdc;
}

int32_t SceneProgress(int32_t code, int32_t, int32_t, intptr_t user)
{
    int32_t *left = reinterpret_cast<int32_t *>(user);
    return code != 2 || --*left > 0;
}

} // namespace zr32fuzz
