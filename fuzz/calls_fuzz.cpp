/* calls_fuzz.cpp - sequences of calls over the whole interface, decoded from bytes: one document as an editor holds it.
 *
 * After every call the chains must be consistent; at the end everything is freed and nothing may be left.
 */
#include "scene.h"

#include "store/store.h"

using namespace zr32fuzz;

namespace {

constexpr int32_t key = 77;

struct DOCUMENT {
    PATHTBL *table;
    COORDSTRUCT *view;
    RECT dirty;
    int32_t undoRecords; /* how many were backed up; more than enough to free them all */
};

void Check(bool holds)
{
    if (!holds) __builtin_trap();
}

void CheckDocument(const DOCUMENT &document)
{
    for (uint32_t g = 0; document.table && g < document.table->groupCount; g++) {
        const PATHGROUP &group = document.table->groups[g];
        Check(!group.activePath || !group.activePath->prevPath);
        uint32_t count = 0;
        for (const PATHREC *path = group.activePath; path; path = path->nextPath) {
            Check(!path->nextPath || path->nextPath->prevPath == path);
            Check(!path->nextJoin || path->nextJoin->prevJoin == path);
            Check(!path->nextSel || path->nextSel->prevSel == path);
            Check(path->nodeCount <= zr32::RecordRoom(path));
            Check(++count < 100000);
        }
    }
}

PATHREC *Active(const DOCUMENT &document)
{
    PATHREC *path = nullptr;
    ZrPathFind(document.table, nullptr, &path, nullptr, nullptr);
    return path;
}

PATHREC *Selected(const DOCUMENT &document)
{
    PATHREC *path = nullptr;
    ZrPathFind(document.table, nullptr, nullptr, &path, nullptr);
    return path;
}

void AddChain(BYTES *bytes, DOCUMENT *document)
{
    PATHREC *path = TakeChain(bytes, 60);
    if (!path) return;
    PATHTBL *before = document->table;
    if (!ZrPathAddPathGroup(&document->table, path, "group", document->view, &document->dirty)) {
        document->table = before;
        ZrPathDeletePtr(path, 0);
    }
}

void Backup(DOCUMENT *document, int32_t action)
{
    ZrPathBackupAction(key, action, document->table);
    document->undoRecords++;
}

void Mouse(BYTES *bytes, DOCUMENT *document)
{
    static const uint32_t messages[] = {513, 514, 512, 515, 512, 514, 256, 257};
    const uint32_t message = messages[Take<uint8_t>(bytes) % 8];
    if (message == 513) SetCapture(reinterpret_cast<HWND>(8));
    ZrPathMouseProcDraw(SceneDC(), document->table, document->view, message, 27, TakeRange(bytes, -10, 80),
                        TakeRange(bytes, -10, 60));
}

void Pick(BYTES *bytes, DOCUMENT *document)
{
    static const int32_t modifiers[] = {ZRPICK_REPLACE, ZRPICK_ADD, ZRPICK_QUERY, 1};
    PATHREC *path = Active(*document);
    uint32_t node = 0;
    uint16_t position = 0;
    const int32_t x = TakeRange(bytes, -5, 70);
    const int32_t y = TakeRange(bytes, -5, 55);
    ZrPathPtOn(x, y, modifiers[Take<uint8_t>(bytes) % 4], SceneDC(), document->view, document->table, &path, &node,
               &position);
}

void Handles(BYTES *bytes, DOCUMENT *document)
{
    PATHREC *path = Selected(*document);
    if (!path) return;
    POINT handles[12] = {};
    const int32_t count = ZrPathSelectedToView(document->view, path, handles, 0);
    for (int32_t i = 0; i < count && i < 12; i++) handles[i].x += TakeRange(bytes, -9, 9);
    ZrPathSelectedToView(document->view, path, handles, 1);
}

void Primitive(BYTES *bytes, DOCUMENT *document)
{
    const RECT drag = {TakeRange(bytes, -9, 70), TakeRange(bytes, -9, 70), TakeRange(bytes, -9, 70),
                       TakeRange(bytes, -9, 70)};
    const int32_t kind = TakeRange(bytes, 0, 6);
    const PATHREC *prototype = Take<uint8_t>(bytes) % 4 == 0 ? Active(*document) : nullptr;
    ZrPathAddPrimitive(SceneDC(), kind, prototype, document->table, document->view, Take<uint8_t>(bytes) & 1,
                       Take<uint8_t>(bytes) & 1, &drag);
}

void Envelope(BYTES *bytes, DOCUMENT *document)
{
    ZRPOINTFX points[8];
    for (ZRPOINTFX &point : points) point = {TakeRange(bytes, -90, 90) * 65536, TakeRange(bytes, -90, 90) * 65536};
    PATHREC *path = Take<uint8_t>(bytes) & 1 ? Active(*document) : Selected(*document);
    switch (Take<uint8_t>(bytes) % 6) {
    case 0: ZrPathBiLinear(path, points); break;
    case 1: ZrPathBiCubic(path, points); break;
    case 2: ZrPathBiCubicV(path, points); break;
    case 3: ZrPathAddBiLinearEnvelope(path, points); break;
    case 4: ZrPathAddBiBezierEnvelope(path, points); break;
    default: ZrPathGetBiBezierEnvelope(path, points); break;
    }
    /* A frame behind the chain stands in the table chain, and flags may have been cleared: the group is told. */
    if (path) ZrPathAssignActivePath(document->table, path);
}

void ViewChange(BYTES *bytes, DOCUMENT *document)
{
    const int32_t zoom = TakeRange(bytes, -4, 4);
    const int32_t right = TakeRange(bytes, 0, 90);
    if (Take<uint8_t>(bytes) & 1)
        ZrPathCoordStruct(0, 0, right, 48, TakeRange(bytes, -20, 20), 2, zoom, document->table, &document->view);
    else
        ZrPathNewCoordStruct(0, 0, right, 48, TakeRange(bytes, -20, 20), 2, zoom, 5, document->table, &document->view);
}

void Paint(BYTES *bytes, DOCUMENT *document)
{
    static uint8_t bitmap[256 * 256 * 3];
    const int32_t left = TakeRange(bytes, -10, 100);
    const int32_t top = TakeRange(bytes, -10, 100);
    const int32_t right = left + TakeRange(bytes, -3, 200);
    const int32_t bottom = top + TakeRange(bytes, -3, 200);
    switch (Take<uint8_t>(bytes) % 4) {
    case 0: ZrPathPaint(left, top, right, bottom, document->table, bitmap); break;
    case 1: ZrPathPaint1(left, top, right, bottom, document->table, bitmap); break;
    case 2: ZrPathPaintMem(left, top, right, bottom, document->table, bitmap); break;
    default: ZrPathPaintMem1(left, top, right, bottom, document->table, bitmap); break;
    }
}

void Call(BYTES *bytes, DOCUMENT *document)
{
    DOCUMENT &d = *document;
    switch (Take<uint8_t>(bytes) % 36) {
    case 0: AddChain(bytes, document); break;
    case 1: Pick(bytes, document); break;
    case 2: Handles(bytes, document); break;
    case 3: Primitive(bytes, document); break;
    case 4: Envelope(bytes, document); break;
    case 5: ViewChange(bytes, document); break;
    case 6: Paint(bytes, document); break;
    case 7: Mouse(bytes, document); break;
    case 8:
        ZrPathRectClip(0, 0, TakeRange(bytes, 0, 60), TakeRange(bytes, 0, 60), d.table, SceneDC(), d.view,
                       TakeRange(bytes, 0, 7));
        break;
    case 9: ZrPathDraw(d.view, Active(d), &d.dirty); break;
    case 10: ZrPathHide(d.view, Active(d), &d.dirty); break;
    case 11: ZrPathDrawSelected(d.view, Selected(d), &d.dirty); break;
    case 12: ZrPathHideSelected(d.view, Selected(d), &d.dirty); break;
    case 13: ZrPathDrawSelectedSegments(d.view, Selected(d), &d.dirty); break;
    case 14: ZrPathMovePaths(Selected(d), d.view, TakeRange(bytes, -9, 9), TakeRange(bytes, -9, 9)); break;
    case 15: ZrPathSize(Active(d), TakeRange(bytes, 1, 5) * 0.5, TakeRange(bytes, 0, 3) * 0.5); break;
    case 16: ZrPathOffset(Active(d), TakeRange(bytes, -40, 40), TakeRange(bytes, -40, 40)); break;
    case 17: ZrPathCenter(0, TakeRange(bytes, 18017, 18018), d.table, d.view, &d.dirty); break;
    case 18: ZrPathJoin(Selected(d)); break;
    case 19: ZrPathDisjoin(Selected(d)); break;
    case 20: ZrPathJoinAll(Active(d)); break;
    case 21: ZrPathDisjoinAll(Active(d)); break;
    case 22: ZrPathDelete(d.table, d.view, &d.dirty); break;
    case 23: ZrPathDeleteLink(d.table, d.view, &d.dirty); break;
    case 24: ZrPathDuplicate(SceneDC(), d.table, d.view, &d.dirty); break;
    case 25: Backup(document, 18001); break;
    case 26: Backup(document, 18006); break;
    case 27: Backup(document, 18007); break;
    case 28: Backup(document, 18016); break;
    case 29: ZrPathSameUR(key, d.table, 18001); break;
    case 30: ZrPathURFree(key, 0, Take<uint8_t>(bytes) & 1); break;
    case 31: ZrPathTblRepaintNodes(SceneDC(), d.table, d.view, 0, 0, 50, 40); break;
    case 32: ZrPathCropDB(d.table, TakeRange(bytes, 0, 90), TakeRange(bytes, 0, 90)); break;
    case 33: ZrPathScrollDB(d.view, Active(d), static_cast<int16_t>(TakeRange(bytes, -5, 5)), 1); break;
    case 34:
        if (Active(d)) ZrPathAllPathSelected(Active(d));
        ZrPathAssignActivePath(d.table, Active(d));
        break;
    default:
        ZrPathDeSelectAll(SceneDC(), Active(d), d.view, 1);
        ZrPathAssignSelectedPath(d.table, nullptr);
        break;
    }
    /* The display buffer may have been replaced: an editor renews its view. */
    if (d.view && d.table) d.view->displayBuffer = d.table->lpDB;
}

void Step(BYTES *bytes, DOCUMENT *document)
{
    const int32_t action = TakeRange(bytes, 0, 15);
    if (action >= 2) {
        Call(bytes, document);
        return;
    }
    /* What the context is depends on the record to be applied; a rectangle is safe for none but the two that take one,
     * so the kinds are kept apart: only selections are undone with a device context. */
    void *context = ZrPathSameUR(key, document->table, 18001) ? static_cast<void *>(SceneDC()) : nullptr;
    if (!context) return;
    if (action == 0)
        ZrPathUndo(key, document->table, document->view, context);
    else
        ZrPathRedo(key, document->table, document->view, nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    SceneReset();
    BYTES bytes = {data, size};
    DOCUMENT document = {nullptr, nullptr, {0, 0, 0, 0}, 0};
    ZrPathCoordStruct(0, 0, 64, 48, 0, 0, 1, nullptr, &document.view);
    AddChain(&bytes, &document);
    for (int32_t step = 0; step < 60 && bytes.left > 0; step++) {
        Step(&bytes, &document);
        CheckDocument(document);
    }
    ReleaseCapture();
    for (int32_t i = 0; i <= document.undoRecords + 60; i++) ZrPathURFree(key, 0, 1);
    ZrPathTblDelete(document.table);
    ZrPathDeleteCoordStruct(document.view);
    SceneCheckLeaks();
    return 0;
}
