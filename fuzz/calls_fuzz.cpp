/* calls_fuzz.cpp - sequences of calls over the whole interface, decoded from bytes, as a careless editor makes them:
 * two documents with their views, records of its own, buffers, device contexts, undo lists, and allocations that fail.
 *
 * What the interface asks of a caller is kept: records in a group are not freed, a view is told its table's buffer, a
 * step over an undo record gets the context that the record asks for. After every call the chains must be consistent;
 * at the end everything is freed and nothing may be left. Every export has its place in one of the calls.
 */
#include "scene.h"

#include "frame/faults.h"
#include "store/store.h"

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace zr32fuzz;

namespace {

constexpr uint32_t mostRecords = 40;
constexpr uint32_t mostGroups = 8;
constexpr int32_t mostSide = 64;
constexpr int32_t mostSteps = 80;

struct EDITOR {
    BYTES bytes;
    PATHTBL *tables[2];
    COORDSTRUCT *views[2];
    int now; /* the document at hand */
    PATHREC *loose[3];
    PATHBUF buffers[6];
    RECT dirty;
};

/* ---- what calls are given ---- */

PATHTBL *Table(const EDITOR &e)
{
    return e.tables[e.now];
}

COORDSTRUCT *View(const EDITOR &e)
{
    return e.views[e.now];
}

uint32_t CountRecords(const PATHREC *path)
{
    uint32_t count = 0;
    for (; path; path = path->nextPath) count++;
    return count;
}

PATHREC *RecordAt(PATHREC *path, int32_t index)
{
    while (path && path->nextPath && index-- > 0) path = path->nextPath;
    return path;
}

/* A record of the current group, mostly the head of the selection. */
PATHREC *GroupPath(EDITOR &e)
{
    const uint8_t pick = Take<uint8_t>(&e.bytes);
    return pick < 100 ? Selected(Table(e)) : RecordAt(Active(Table(e)), pick % 16);
}

PATHREC **LooseSlot(EDITOR &e)
{
    return &e.loose[Take<uint8_t>(&e.bytes) % std::size(e.loose)];
}

/* A record of the group or of the editor's own. */
PATHREC *AnyPath(EDITOR &e)
{
    const uint8_t pick = Take<uint8_t>(&e.bytes);
    if (pick < 160) return GroupPath(e);
    return RecordAt(e.loose[pick % std::size(e.loose)], pick / 3 % 8);
}

/* Puts a chain into a slot, freeing what was there. */
void KeepLoose(EDITOR &e, PATHREC *path)
{
    if (!path) return;
    PATHREC **slot = LooseSlot(e);
    ZrPathDeletePtr(zr32::PathChainFirst(*slot), 0);
    *slot = path;
}

PATHBUF Buffer(EDITOR &e)
{
    return TakeOne(&e.bytes, e.buffers);
}

void KeepBuffer(EDITOR &e, PATHBUF buffer)
{
    if (!buffer) return;
    PATHBUF *slot = &e.buffers[Take<uint8_t>(&e.bytes) % std::size(e.buffers)];
    ZrPathBufFree(*slot);
    *slot = buffer;
}

int32_t Key(EDITOR &e)
{
    return TakeBool(&e.bytes) ? e.now + 1 : TakeRange(&e.bytes, 0, 24);
}

RECT TakeRect(EDITOR &e)
{
    return {TakeNumber(&e.bytes, -20, 90), TakeNumber(&e.bytes, -20, 70), TakeNumber(&e.bytes, -20, 90),
            TakeNumber(&e.bytes, -20, 70)};
}

/* The group learns what is selected, where calls leave that to the caller. */
void Settle(EDITOR &e)
{
    ZrPathAssignSelectedPath(Table(e), nullptr);
    ZrPathAssignSelectedPathBlindly(Table(e), Active(Table(e)));
}

/* ---- records of the editor's own ---- */

void MakeChain(EDITOR &e)
{
    KeepLoose(e, TakeChain(&e.bytes, 60, 40));
}

void MakePoints(EDITOR &e)
{
    PATHREC *path = ZrPathCreate();
    for (int32_t i = TakeRange(&e.bytes, 0, 110); path && i > 0; i--) {
        const ZRPOINTFX point = {TakeRange(&e.bytes, -40, 40) * 65536, i << 16};
        ZrPathAddPoint(&path, &point, i & 3 ? PATHNODE_LINE : PATHNODE_START);
    }
    ZrPathPurge(&path);
    KeepLoose(e, path);
}

void MakeTraced(EDITOR &e)
{
    R2VPOINT points[12];
    for (R2VPOINT &point : points) {
        static const uint32_t types[] = {PATHNODE_LINE, PATHNODE_CURVE, PATHNODE_START, 0};
        point = {TakeDouble(&e.bytes), TakeDouble(&e.bytes), TakeOne(&e.bytes, types), 0};
    }
    KeepLoose(e, ZrPathR2VToZrPath(static_cast<uint32_t>(TakeRange(&e.bytes, 0, 12)), points));
}

void MakeCopy(EDITOR &e)
{
    const PATHREC *path = AnyPath(e);
    PATHREC *copy = nullptr;
    ZrPathDuplicatePtr(path, &copy);
    KeepLoose(e, copy);
}

void MakePrimitive(EDITOR &e)
{
    const RECT drag = TakeRect(e);
    const int32_t kind = TakeRange(&e.bytes, 0, 6);
    const PATHREC *prototype = TakeRange(&e.bytes, 0, 3) == 0 ? AnyPath(e) : nullptr;
    PATHREC *path = nullptr;
    ZrPathGetPrimitive(kind, prototype, &path, View(e), TakeRange(&e.bytes, 0, 1), TakeRange(&e.bytes, 0, 1), &drag);
    KeepLoose(e, path);
}

void MakeText(EDITOR &e)
{
    char text[16] = {};
    for (int i = 0; i < 10; i++) text[i] = static_cast<char>(Take<uint8_t>(&e.bytes));
    FontSet(TakeSlice(&e.bytes, 100));
    TEXTPARAM param = {0, 1, TakeRange(&e.bytes, 0, 1), 1, 0, TakeRange(&e.bytes, 0, 1), 1, 0, 1002, 1021};
    PATHREC *path = nullptr;
    RECT rect = {0, 0, 0, 0};
    KeepBuffer(e, ZrPathCreateText(TakeDC(&e.bytes), text, &param, &path, &rect));
    KeepLoose(e, path);
}

void SaveAndLoad(EDITOR &e)
{
    PATHREC *path = AnyPath(e);
    uint32_t size = 0;
    void *stream = nullptr;
    if (!ZrPathFlatten(path, &size, &stream)) return;
    if (TakeRange(&e.bytes, 0, 2) == 0) static_cast<uint8_t *>(stream)[Take<uint16_t>(&e.bytes) % size] ^= 1;
    PATHREC *read = nullptr;
    ZrPathUnFlatten(&stream, &read);
    GlobalFree(stream);
    KeepLoose(e, read);
}

/* Two of the editor's chains become one, or the first records of two are tied. */
void ChainLoose(EDITOR &e)
{
    PATHREC **a = LooseSlot(e);
    PATHREC **b = LooseSlot(e);
    if (a == b || CountRecords(*a) + CountRecords(*b) > mostRecords) return;
    const bool single = *a && *b && !(*a)->nextPath && !(*b)->nextPath && !(*a)->nextJoin && !(*b)->nextJoin;
    PATHREC *pair[2] = {*a, *b};
    if (single && TakeBool(&e.bytes))
        *a = ZrPathChainZrPath(2, pair);
    else if (!ZrPathChainPaths(a, *b))
        return;
    *b = nullptr;
}

void FreeLoose(EDITOR &e)
{
    PATHREC **slot = LooseSlot(e);
    *slot = zr32::PathChainFirst(*slot);
    const bool all = TakeBool(&e.bytes) && ZrPathAllPathSelected(*slot);
    ZrPathDeletePtr(*slot, all);
    *slot = nullptr;
}

/* ---- documents ---- */

void AddGroup(EDITOR &e)
{
    PATHREC **slot = LooseSlot(e);
    uint32_t groups = 0;
    ZrPathFindGroups(Table(e), &groups);
    *slot = zr32::PathChainFirst(*slot);
    if (groups >= mostGroups) return;
    if (ZrPathAddPathGroup(&e.tables[e.now], *slot, TakeBool(&e.bytes) ? "group" : nullptr,
                           TakeRange(&e.bytes, 0, 7) ? View(e) : nullptr, &e.dirty))
        *slot = nullptr;
}

/* Behind the current group's chain. */
void AddToGroup(EDITOR &e)
{
    PATHREC **slot = LooseSlot(e);
    PATHREC *head = Active(Table(e));
    if (!*slot || !head || CountRecords(head) + CountRecords(*slot) > mostRecords) return;
    PATHREC *added = zr32::PathChainFirst(*slot);
    ZrPathChainPaths(&head, added);
    ZrPathAssignActivePath(Table(e), added);
    *slot = nullptr;
}

void ChangeDocument(EDITOR &e)
{
    e.now = TakeRange(&e.bytes, 0, 1);
}

void ChangeGroup(EDITOR &e)
{
    uint32_t count = 0;
    ZrPathFindGroups(Table(e), &count);
    if (Table(e)) Table(e)->currentGroup = static_cast<uint32_t>(TakeRange(&e.bytes, 0, static_cast<int32_t>(count)));
    const char *name = nullptr;
    ZrPathFindGroupName(Table(e), TakeRange(&e.bytes, -1, 9), &name);
    Check(!name || strlen(name) < 256);
}

/* A sample table takes over the display buffer that the view knows. */
void NewDocument(EDITOR &e)
{
    const int32_t how = TakeRange(&e.bytes, 0, 3);
    PATHTBL **table = &e.tables[e.now];
    uint8_t *handedOn = nullptr;
    if (how == 1 && *table && View(e)) std::swap(handedOn, (*table)->lpDB);
    ZrPathTblDelete(*table);
    *table = nullptr;
    if (View(e)) View(e)->displayBuffer = handedOn;
    if (how == 0) ZrPathNew(table);
    if (how == 1) {
        FontSet(TakeSlice(&e.bytes, 60));
        AddPathTest(table, View(e), &e.dirty);
        if (!*table) zr32::BufFree(handedOn);
    }
}

void ChangeView(EDITOR &e)
{
    static const int32_t zooms[] = {1, 1, 2, 3, 5, -1, -2, -3, 40, -100};
    const int32_t left = TakeRange(&e.bytes, -5, 20);
    const int32_t top = TakeRange(&e.bytes, -5, 20);
    const int32_t right = left + TakeRange(&e.bytes, -3, 120);
    const int32_t bottom = top + TakeRange(&e.bytes, -3, 90);
    const int32_t scrollX = TakeNumber(&e.bytes, -40, 40);
    const int32_t scrollY = TakeNumber(&e.bytes, -40, 40);
    const int32_t zoom = TakeOne(&e.bytes, zooms);
    COORDSTRUCT **view = &e.views[e.now];
    switch (TakeRange(&e.bytes, 0, 5)) {
    case 0:
        ZrPathDeleteCoordStruct(*view);
        *view = nullptr;
        break;
    case 1: ZrPathCoordStruct(left, top, right, bottom, scrollX, scrollY, zoom, nullptr, view); break;
    case 2: ZrPathCoordStruct(left, top, right, bottom, scrollX, scrollY, zoom, Table(e), view); break;
    default: ZrPathNewCoordStruct(left, top, right, bottom, scrollX, scrollY, zoom, right, Table(e), view); break;
    }
    ZrPathTblIsValid(left, top, right, bottom, scrollX, scrollY, zoom, right, Table(e));
    ZrPathPtWndToImage(left, bottom, *view);
    ZrPathRectWndToImage(left, top, right, bottom, *view);
}

void ChangeBuffer(EDITOR &e)
{
    if (TakeRange(&e.bytes, 0, 3) == 0)
        ZrPathTblDeletelpDB(Table(e));
    else if (Table(e))
        ZrPathCropDB(Table(e), TakeRange(&e.bytes, -2, 120), TakeRange(&e.bytes, -2, 120));
}

/* ---- display ---- */

void Show(EDITOR &e)
{
    PATHREC *path = AnyPath(e);
    switch (TakeRange(&e.bytes, 0, 8)) {
    case 0: ZrPathDraw(View(e), path, &e.dirty); break;
    case 1: ZrPathHide(View(e), path, &e.dirty); break;
    case 2: ZrPathDrawSelected(View(e), path, &e.dirty); break;
    case 3: ZrPathHideSelected(View(e), path, &e.dirty); break;
    case 4: ZrPathDrawSelectedSegments(View(e), path, nullptr); break;
    case 5: ZrPathDrawNodes(TakeDC(&e.bytes), path, View(e)); break;
    case 6: {
        const RECT r = TakeRect(e);
        ZrPathTblRepaintNodes(TakeDC(&e.bytes), Table(e), View(e), r.left, r.top, r.right, r.bottom);
        break;
    }
    default: {
        const int16_t dx = Take<int8_t>(&e.bytes);
        ZrPathScrollDB(View(e), path, dx, Take<int8_t>(&e.bytes));
        break;
    }
    }
}

/* The bitmap is as large as the interface says for the rectangle, and not a byte larger. */
void Paint(EDITOR &e)
{
    const int32_t left = TakeRange(&e.bytes, -10, 100);
    const int32_t top = TakeRange(&e.bytes, -10, 100);
    const int32_t right = left + TakeRange(&e.bytes, -3, 120);
    const int32_t bottom = top + TakeRange(&e.bytes, -3, 120);
    const int32_t form = TakeRange(&e.bytes, 0, 3);
    const size_t pixel = form & 1 ? 1 : 3;
    const bool padded = form < 2; /* with inclusive sides */
    size_t stride = static_cast<size_t>(std::max(right - left + padded, 0)) * pixel;
    if (padded) stride = (stride + 3) / 4 * 4;
    uint8_t *bitmap =
        static_cast<uint8_t *>(calloc(1, stride * static_cast<size_t>(std::max(bottom - top + padded, 0))));
    switch (form) {
    case 0: ZrPathPaint(left, top, right, bottom, Table(e), bitmap); break;
    case 1: ZrPathPaint1(left, top, right, bottom, Table(e), bitmap); break;
    case 2: ZrPathPaintMem(left, top, right, bottom, Table(e), bitmap); break;
    default: ZrPathPaintMem1(left, top, right, bottom, Table(e), bitmap); break;
    }
    free(bitmap);
}

/* ---- picking and edits ---- */

void Click(EDITOR &e)
{
    static const int32_t modifiers[] = {ZRPICK_REPLACE, ZRPICK_REPLACE, ZRPICK_ADD, ZRPICK_QUERY, 1};
    PATHREC *path = RecordAt(Active(Table(e)), TakeRange(&e.bytes, 0, 15));
    int32_t x = TakeNumber(&e.bytes, -5, 70);
    int32_t y = TakeNumber(&e.bytes, -5, 55);
    if (path && path->nodeCount && View(e) && TakeBool(&e.bytes)) { /* at a node */
        const PATHNODE &node = path->nodes[static_cast<uint32_t>(x) % path->nodeCount];
        const double scale = zr32::ViewScale(View(e));
        x = static_cast<int32_t>(std::clamp(FixToDb(node.x) * scale - View(e)->scrollX, -1e9, 1e9));
        y = static_cast<int32_t>(std::clamp(FixToDb(node.y) * scale - View(e)->scrollY, -1e9, 1e9));
    }
    uint32_t node = 0;
    uint16_t position = 0;
    ZrPathPtOn(x, y, TakeOne(&e.bytes, modifiers), TakeDC(&e.bytes), View(e), Table(e), &path, &node, &position);
}

void Select(EDITOR &e)
{
    PATHREC *path = GroupPath(e);
    switch (TakeRange(&e.bytes, 0, 6)) {
    case 0: {
        const RECT r = TakeRect(e);
        ZrPathRectClip(r.left, r.top, r.right, r.bottom, Table(e), TakeDC(&e.bytes), View(e),
                       TakeRange(&e.bytes, 0, 7));
        break;
    }
    case 1: ZrPathDeSelectAll(TakeDC(&e.bytes), path, View(e), TakeRange(&e.bytes, 0, 1)); break;
    case 2: ZrPathDeselectPts(path); break;
    case 3: ZrPathAllPathSelected(path); break;
    case 4: ZrPathAssignActivePath(Table(e), path); break;
    case 5: ZrPathAssignSelectedPath(Table(e), path); break;
    default: ZrPathAssignSelectedPathBlindly(Table(e), path); break;
    }
}

void SelectAll(EDITOR &e)
{
    ZrPathAllPathSelected(Active(Table(e)));
    ZrPathAssignActivePath(Table(e), Active(Table(e)));
}

void Ask(EDITOR &e)
{
    const PATHREC *path = AnyPath(e);
    int32_t selected = TakeRange(&e.bytes, 2, 3);
    int32_t joined = TakeRange(&e.bytes, 2, 3);
    ZRPOINTFX points[8];
    ZrPathInfo(path, &selected, &joined);
    IsOnlyPrimitive(path);
    ZrPathGetEnvelopeType(path);
    ZrPathGetBiLinearEnvelope(path, points);
    ZrPathGetBiBezierEnvelope(path, points);
    const ZRFIXED zoom = Take<int32_t>(&e.bytes);
    ZrPathGetMiniMaxRect(path, zoom, &e.dirty);
    ZrPathGetSelectedRect(path, zoom, &e.dirty);
    ZrPathGetAllMiniMaxRect(path, zoom, &e.dirty);
    ZrPathGetRealRect(path, zoom, &e.dirty);
    uint32_t group = 0;
    int32_t live = 0;
    ZrPathFind(Table(e), &group, nullptr, nullptr, &live);
}

void DragHandles(EDITOR &e)
{
    PATHREC *path = GroupPath(e);
    POINT handles[12] = {};
    const int32_t count = ZrPathSelectedToView(View(e), path, handles, 0);
    for (int32_t i = 0; i < count && i < 12; i++)
        if (TakeBool(&e.bytes)) handles[i].x += TakeNumber(&e.bytes, -9, 9) % 100000;
    ZrPathSelectedToView(View(e), path, handles, 1);
}

void Place(EDITOR &e)
{
    PATHREC *path = AnyPath(e);
    const int32_t x = TakeNumber(&e.bytes, -40, 40);
    const int32_t y = TakeNumber(&e.bytes, -40, 40);
    switch (TakeRange(&e.bytes, 0, 6)) {
    case 0: ZrPathMovePaths(path, View(e), x, y); break;
    case 1: ZrPathMovePathsByPtfx(path, Take<int32_t>(&e.bytes) >> 8, y); break;
    case 2: ZrPathSize(path, TakeDouble(&e.bytes), TakeDouble(&e.bytes)); break;
    case 3: ZrPathSize(path, 0.5, 0); break;
    case 4: ZrPathOffset(path, x, y); break;
    case 5: ZrPathOffsetExact(path, static_cast<int16_t>(x), static_cast<int16_t>(y)); break;
    default: ZrPathCenter(0, 18017 + (x & 1), Table(e), View(e), &e.dirty); break;
    }
}

void Join(EDITOR &e)
{
    PATHREC *path = AnyPath(e);
    switch (TakeRange(&e.bytes, 0, 4)) {
    case 0: ZrPathDisjoin(path); break;
    case 1: ZrPathJoinAll(path); break;
    case 2: ZrPathDisjoinAll(path); break;
    default: ZrPathJoin(path); break;
    }
}

void Delete(EDITOR &e)
{
    if (TakeBool(&e.bytes))
        ZrPathDelete(Table(e), View(e), &e.dirty);
    else
        ZrPathDeleteLink(Table(e), View(e), &e.dirty);
}

void Duplicate(EDITOR &e)
{
    if (CountRecords(Active(Table(e))) * 2 <= mostRecords)
        ZrPathDuplicate(TakeDC(&e.bytes), Table(e), View(e), &e.dirty);
}

void AddPrimitive(EDITOR &e)
{
    const RECT drag = TakeRect(e);
    const PATHREC *prototype = TakeRange(&e.bytes, 0, 3) == 0 ? AnyPath(e) : nullptr;
    const uint32_t grown = CountRecords(prototype) + CountRecords(Active(Table(e))) + 1;
    if (grown > mostRecords) return;
    ZrPathAddPrimitive(TakeDC(&e.bytes), TakeRange(&e.bytes, 0, 6), prototype, Table(e), View(e),
                       TakeRange(&e.bytes, 0, 1), TakeRange(&e.bytes, 0, 1), &drag);
}

void Warp(EDITOR &e)
{
    ZRPOINTFX points[8];
    TakeFrame(&e.bytes, 90, points);
    PATHREC *path = AnyPath(e);
    const int32_t kind = TakeRange(&e.bytes, 0, 5);
    if (kind >= 3 && CountRecords(zr32::PathChainFirst(path)) >= mostRecords) return;
    switch (kind) {
    case 0: ZrPathBiLinear(path, points); break;
    case 1: ZrPathBiCubic(path, points); break;
    case 2: ZrPathBiCubicV(path, points); break;
    case 3: ZrPathAddBiLinearEnvelope(path, points); break;
    default: ZrPathAddBiBezierEnvelope(path, points); break;
    }
}

void Pen(EDITOR &e)
{
    static const uint32_t messages[] = {513, 514, 512, 515, 512, 514, 256, 257, 0};
    if (CountRecords(Active(Table(e))) >= mostRecords) return;
    HDC hdc = TakeDC(&e.bytes);
    for (int32_t i = TakeRange(&e.bytes, 1, 6); i > 0; i--) {
        const uint32_t message = TakeOne(&e.bytes, messages);
        const int32_t x = TakeNumber(&e.bytes, -10, 80);
        const int32_t y = TakeNumber(&e.bytes, -10, 60);
        ZrPathMouseProcDraw(hdc, Table(e), View(e), message, TakeBool(&e.bytes) ? 27 : 0, x, y);
        if (message == 513 && TakeRange(&e.bytes, 0, 7)) SetCapture(reinterpret_cast<HWND>(8));
        if (TakeRange(&e.bytes, 0, 15) == 0) ReleaseCapture();
    }
}

/* ---- undo ---- */

void Backup(EDITOR &e)
{
    static const int32_t actions[] = {UR_SELECTION, UR_SELECTION, UR_MOVE, UR_JOIN, UR_DISJOIN, UR_ENVELOPE, 18002, 5};
    const int32_t action = TakeOne(&e.bytes, actions);
    switch (TakeRange(&e.bytes, 0, 7)) {
    case 0: BackupSelected(action, Table(e)); break;
    case 1: BackupSelectMove(action, Table(e)); break;
    case 2: BackupDuplicate(action, Table(e)); break;
    default: ZrPathBackupAction(Key(e), action, Table(e)); break;
    }
}

/* Backs an edit up as the editor does, makes it, and steps over it both ways. */
void EditAndStep(EDITOR &e)
{
    ZRPOINTFX points[8];
    const int32_t key = Key(e);
    PATHREC *selected = Selected(Table(e));
    switch (TakeRange(&e.bytes, 0, 3)) {
    case 0:
        ZrPathBackupAction(key, UR_MOVE, Table(e));
        ZrPathMovePaths(selected, View(e), TakeRange(&e.bytes, -20, 20), 5);
        break;
    case 1:
        if (ZrPathJoin(selected)) ZrPathBackupAction(key, UR_JOIN, Table(e));
        break;
    case 2:
        if (ZrPathDisjoin(selected)) ZrPathBackupAction(key, UR_DISJOIN, Table(e));
        break;
    default:
        TakeFrame(&e.bytes, 60, points);
        if (CountRecords(Active(Table(e))) >= mostRecords) return;
        ZrPathAddBiBezierEnvelope(Active(Table(e)), points);
        Settle(e);
        ZrPathBackupAction(key, UR_ENVELOPE, Table(e));
        ZrPathBiCubic(Active(Table(e)), points);
        break;
    }
    for (int32_t i = TakeRange(&e.bytes, 1, 4); i > 0; i--)
        UndoStep(key, TakeBool(&e.bytes), Table(e), View(e), TakeDC(&e.bytes), &e.dirty);
}

void Step(EDITOR &e)
{
    UndoStep(Key(e), TakeBool(&e.bytes), Table(e), View(e), TakeDC(&e.bytes),
             TakeRange(&e.bytes, 0, 7) ? &e.dirty : nullptr);
}

void AskUndo(EDITOR &e)
{
    int32_t words[2];
    switch (TakeRange(&e.bytes, 0, 4)) {
    case 0: ZrPathSameUR(Key(e), Table(e), UR_SELECTION); break;
    case 1: ZrPathGetURAction(); break;
    case 2: ZrPathZrPathGetURInfo(&words[0], &words[1]); break;
    case 3: ZrPathSetUndoLimit(); break;
    default: ZrPathURFree(Key(e), 0, TakeRange(&e.bytes, 0, 1)); break;
    }
}

/* ---- buffers, masks, surfaces, shaders, space ---- */

void MakeBuffer(EDITOR &e)
{
    const int32_t width = TakeRange(&e.bytes, -1, 40);
    const int32_t height = TakeRange(&e.bytes, -1, 40);
    static const int32_t depths[] = {8, 24, 32, 0x40, 0, -1};
    KeepBuffer(e, TakeBool(&e.bytes) ? ZrPathBufDuplicate(0, Buffer(e))
                                     : ZrPathBufAlloc(TakeOne(&e.bytes, depths), width, height));
}

void ReadBuffer(EDITOR &e)
{
    PATHBUF buffer = Buffer(e);
    int32_t width = 0, height = 0, bits = 0;
    PATHBUFLOCK lock = {};
    ZrPathBufGetWHU(buffer, &width, &height, &bits);
    if (!ZrPathBufLock1(buffer, 0, 0, 0, &lock)) return;
    const int32_t pixel = bits == 8 ? 1 : bits == 24 ? 3 : bits == 32 ? 4 : 8;
    Check(ZrPathBufSize(buffer) >= static_cast<uint32_t>(width * height * pixel) + 12);
    if (width && height) ZrPathBufLineRead(&lock, height - 1)[width * pixel - 1] ^= 0x55;
    ZrPathBufUnlock1(&lock);
    ZrPathBufFree(reinterpret_cast<PATHBUF>(1));
}

void MakeMasks(EDITOR &e)
{
    static const int32_t depths[] = {4, 8, 16};
    static const int32_t aaModes[] = {0, 1, 999};
    PATHREC *path = AnyPath(e);
    const ZRFIXED zoom = FitZoom(path, mostSide);
    RECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    PATHBUF kept = nullptr;
    const int32_t depth = TakeOne(&e.bytes, depths);
    const int32_t evenOdd = TakeRange(&e.bytes, 0, 1);
    const int32_t aaMode = TakeOne(&e.bytes, aaModes);
    const int32_t scope = TakeRange(&e.bytes, 0, 3);
    const int32_t count =
        ZrPathToBuf(path, depth, evenOdd, aaMode, scope, zoom, &rects, &bufs, TakeRange(&e.bytes, -9, 9));
    FreeMasks(count, rects, bufs, &kept);
    KeepBuffer(e, kept);
}

void MakeSurface(EDITOR &e)
{
    PATHREC *path = AnyPath(e);
    const uint8_t how = Take<uint8_t>(&e.bytes);
    PATHBUF asked = reinterpret_cast<PATHBUF>(1);
    PATHBUF distance = asked;
    PATHBUF offset = asked;
    double width = TakeRange(&e.bytes, -1, 20);
    int32_t calls = TakeRange(&e.bytes, 1, 200);
    VMAPPROGRESS progress = {0, SceneProgress, reinterpret_cast<intptr_t>(&calls), 0, 100};
    const bool envelope = how & 4 && SmallEnough(path, 4 * mostSide);
    ZrPathVMap(path, &distance, &offset, how & 1, how & 2, envelope, TakeRange(&e.bytes, -4, 4), how & 8, &width,
               how & 16, how & 32, Buffer(e), how & 64 ? &progress : nullptr, FitZoom(path, mostSide));
    KeepBuffer(e, distance == asked ? nullptr : distance);
    KeepBuffer(e, offset == asked ? nullptr : offset);
}

void Shade(EDITOR &e)
{
    static const int32_t profiles[] = {0, 1, 100, 101, 102, 103, 104, 7};
    PATHBUF image = Buffer(e), distance = Buffer(e), normals = Buffer(e), mask = Buffer(e), flat = Buffer(e);
    PATHBUF bump = Buffer(e), tints = Buffer(e);
    const double width = TakeRange(&e.bytes, -1, 20);
    const int32_t profile = TakeOne(&e.bytes, profiles);
    const int32_t invert = TakeRange(&e.bytes, 0, 1);
    const int32_t scale = TakeNumber(&e.bytes, -2, 60);
    const int32_t floats = TakeRange(&e.bytes, 0, 1);
    const int32_t reflect = TakeRange(&e.bytes, 0, 2);
    const int32_t percent = TakeNumber(&e.bytes, -50, 200);
    const int32_t lights = TakeNumber(&e.bytes, -1, 6);
    const double x = TakeDouble(&e.bytes);
    const int32_t four[4] = {lights, percent, scale, 1};
    const uint32_t colours[4] = {0xFFFFFF, 0x123456, 0, static_cast<uint32_t>(percent)};
    int32_t spotOn[6] = {1, 0, 1, 1, 0, 1};
    int32_t spotPos[12] = {percent, 5, 50, 50};
    double directions[18] = {x, 0, 1, 0, 1, 0, -x};
    const int32_t column = 0;
    switch (TakeRange(&e.bytes, 0, 9)) {
    case 0: ZrPathAdjPhongIllum(four, four, colours[1], colours, lights, percent); break;
    case 1: ZrPathAdjMetallicIllum(four, four, lights, percent); break;
    case 2:
        ZrPathShadePhong(image, width, profile, invert, scale, floats, distance, normals, reflect, mask, flat, invert,
                         percent, 50, x, 0.5, 0.7, 1, 1, percent, bump);
        break;
    case 3:
        ZrPathShadeMetallic(image, width, profile, invert, scale, floats, distance, normals, reflect, mask, flat,
                            invert, percent, 50, x, 0.5, 0.7, colours[1], tints, 1, percent, bump);
        break;
    case 4:
        ZrPathShadeMultiPhong(image, width, profile, invert, scale, floats, distance, normals, reflect, mask, flat,
                              lights, spotOn, spotPos, directions, 1, 1, percent, bump);
        break;
    case 5:
        ZrPathShadeMultiMetallic(image, width, profile, invert, scale, floats, distance, normals, reflect, mask, flat,
                                 lights, spotOn, spotPos, directions, colours[1], tints, 1, percent, bump);
        break;
    case 6: ZrPathBumpIt(profile, width, normals, image, invert, scale, floats, bump, reflect, mask, flat); break;
    case 7:
        ZrPathReflectIt(profile, width, normals, image, invert, scale, floats, tints, reflect, mask, flat, percent,
                        bump);
        break;
    case 8:
        ZrPathTransparentMask(mask, percent, 50, width, profile, invert, scale, floats, normals, reflect, percent,
                              bump);
        break;
    default:
        ZrpathChangeLightNormal(width, profile, invert, scale, &column, floats, directions, reflect, lights,
                                directions);
        break;
    }
}

void Turn(EDITOR &e)
{
    POINTFXMAT3D camera = TakeCamera(&e.bytes);
    PATHREC *path = AnyPath(e);
    const int32_t z = TakeNumber(&e.bytes, -100, 100);
    const int32_t depth = TakeNumber(&e.bytes, -20, 20);
    switch (TakeRange(&e.bytes, 0, 3)) {
    case 0: ZrPathTo3D(path, &camera); break;
    case 1: ZrPathGet3DMiniMaxRect(path, &camera, z, depth, &e.dirty); break;
    case 2: ZrPath3DWireFrame(TakeDC(&e.bytes), path, z, 20, View(e), &camera, depth); break;
    default: {
        PATHBUF colour = Buffer(e), alpha = Buffer(e), mask = Buffer(e), surface = Buffer(e);
        const POINT origin = {z % 100, depth % 100};
        const uint32_t material = 0x336699;
        ZrPathABufRender(path, &camera, colour, alpha, 0, &origin, nullptr, &material, mask, surface, 0, 0, 0, 0, 0, 0,
                         0, z & 1, 0, TakeRange(&e.bytes, -1, 30), 30, TakeRange(&e.bytes, 0, 104), z & 2, nullptr, 0);
        break;
    }
    }
}

void Calculate(EDITOR &e)
{
    const double x = TakeDouble(&e.bytes);
    const double y = TakeDouble(&e.bytes);
    const ZRFIXED fixed = DbToFix(x);
    PtfxAdd(fixed, DbToFix(y), DbToFix(FixToDb(fixed)), Take<int32_t>(&e.bytes));
    const tagPOINT3D a = {x, y, TakeDouble(&e.bytes)};
    const tagPOINT3D b = {TakeDouble(&e.bytes), x, 1};
    tagPOINT3D axis = a;
    double angle = 0;
    AddRotation(a, y, b, x, &axis, &angle);
    tagMATRIX3D matrix = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    VThitaGetMatrix(std::sin(angle), std::cos(angle), &axis, &matrix);
    Matrix3X3(&matrix, &matrix, &matrix);
    ORMatrix(&matrix);
    RotatePoint3D(&axis, &matrix);
    tagPOINTDB result;
    const RECT source = TakeRect(e), target = TakeRect(e);
    ZrProject2DTO3D(x, y, &result, &source, &target, &a, &b, &matrix);
}

constexpr void (*calls[])(EDITOR &) = {
    MakeChain,   MakeChain,   MakePoints,  MakeTraced,   MakeCopy,     MakePrimitive, MakeText,
    SaveAndLoad, ChainLoose,  FreeLoose,   AddGroup,     AddToGroup,   AddToGroup,    ChangeDocument,
    ChangeGroup, NewDocument, ChangeView,  ChangeView,   ChangeBuffer, Show,          Show,
    Paint,       Click,       Click,       Click,        Select,       Select,        SelectAll,
    SelectAll,   Ask,         DragHandles, DragHandles,  Place,        Join,          Join,
    Delete,      Delete,      Duplicate,   AddPrimitive, AddPrimitive, Warp,          Warp,
    Pen,         Pen,         Backup,      Backup,       EditAndStep,  EditAndStep,   Step,
    Step,        Step,        AskUndo,     MakeBuffer,   ReadBuffer,   MakeMasks,     MakeSurface,
    Shade,       Turn,        Calculate,   Settle,       Settle};

/* One allocation in the call fails, now and then. */
void Call(EDITOR &e)
{
    const auto call = TakeOne(&e.bytes, calls);
    const uint8_t fault = Take<uint8_t>(&e.bytes);
    if (fault >= 224) zr32::FaultSet(static_cast<zr32::ALLOCATOR>(fault % 4), 1 + fault / 4 % 4);
    call(e);
    for (int i = 0; i < zr32::ALLOC_COUNT; i++) zr32::FaultSet(static_cast<zr32::ALLOCATOR>(i), 0);
    /* The display buffer may have been replaced: an editor renews its views. */
    for (int i = 0; i < 2; i++) {
        if (e.views[i]) e.views[i]->displayBuffer = e.tables[i] ? e.tables[i]->lpDB : nullptr;
        CheckTable(e.tables[i]);
    }
    for (PATHREC *path : e.loose) CheckChain(zr32::PathChainFirst(path));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    SceneReset();
    EDITOR e = {};
    e.bytes = {data, size};
    ZrPathCoordStruct(0, 0, 64, 48, 0, 0, 1, nullptr, &e.views[0]);
    PATHREC *first = TakeChain(&e.bytes, 60, 40);
    if (!ZrPathAddPathGroup(&e.tables[0], first, "first", e.views[0], &e.dirty)) ZrPathDeletePtr(first, 0);
    for (int32_t step = 0; step < mostSteps && e.bytes.left > 0; step++) Call(e);
    for (PATHREC *path : e.loose) ZrPathDeletePtr(zr32::PathChainFirst(path), 0);
    for (PATHBUF buffer : e.buffers) ZrPathBufFree(buffer);
    for (PATHTBL *table : e.tables) ZrPathTblDelete(table);
    for (COORDSTRUCT *view : e.views) ZrPathDeleteCoordStruct(view);
    SceneCheckLeaks();
    return 0;
}
