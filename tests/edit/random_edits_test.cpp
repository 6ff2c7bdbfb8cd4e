/* Random sequences of all editing calls, each step followed by a check of every invariant. The seed is the round's
 * number, so any round can be run alone. The generator behaves as an editor does: it clicks and drags, backs up before
 * it edits, tells the group what is selected where a call leaves that to its caller, and now and then passes
 * nonsense. */
#include "edit/select.h"
#include "edit/undo.h"
#include "frame/faults.h"
#include "support/document.h"
#include "support/pendriver.h"
#include "support/randompath.h"
#include "support/undolists.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

struct EDITOR {
    RANDOM random;
    DOCUMENT doc;
    CANVAS canvas;
    PENDRIVER pen;
    tagRECT dirty = {};

    explicit EDITOR(unsigned seed) : random(seed), doc(90, 70, 1, 3, 5), canvas(100, 80), pen(doc.table, doc.view)
    {
        pen.dc = canvas.dc;
    }

    int32_t Number(int low, int high)
    {
        return Pick(random, low, high);
    }
    bool Chance(int oneIn)
    {
        return Number(1, oneIn) == 1;
    }
    HDC Dc()
    {
        return Chance(8) ? nullptr : canvas.dc;
    }
    ZRFIXED Fixed()
    {
        return Number(-150 * 65536, 150 * 65536);
    }

    PATHREC *AnyPath()
    {
        const std::vector<PATHREC *> records = doc.Records();
        return records.empty() ? nullptr
                               : records[static_cast<size_t>(Number(0, static_cast<int>(records.size()) - 1))];
    }
    PATHREC *SelectedOrAny()
    {
        return Chance(4) ? AnyPath() : doc.Selected();
    }

    RECT Rect()
    {
        return {Number(-20, 110), Number(-20, 90), Number(-20, 110), Number(-20, 90)};
    }

    /* Where a call leaves it to its caller, the group learns what is selected. */
    void Settle()
    {
        PathRebuildSelected(doc.Active());
        ZrPathAssignSelectedPath(doc.table, nullptr);
        ZrPathAssignSelectedPathBlindly(doc.table, doc.Active());
    }
};

constexpr int32_t keys[] = {1, 2, 30};

/* ---- one edit each ---- */

void AddPath(EDITOR &e)
{
    if (e.doc.Records().size() > 25) return;
    RANDOMSHAPE shape;
    shape.shapes = e.Chance(2);
    shape.high = 90;
    shape.low = -10;
    if (PATHREC *path = RandomPath(e.random, shape)) e.doc.Add(path);
}

void Click(EDITOR &e)
{
    const int32_t modifiers[] = {ZRPICK_REPLACE, ZRPICK_REPLACE, ZRPICK_REPLACE, ZRPICK_ADD, ZRPICK_QUERY, 1};
    PATHREC *path = e.AnyPath();
    int32_t x = e.Number(-5, 95);
    int32_t y = e.Number(-5, 75);
    if (path && path->nodeCount > 0 && e.Chance(2)) { /* at a node */
        const PATHNODE &node = path->nodes[e.Number(0, static_cast<int>(path->nodeCount) - 1)];
        x = FixIntPart(node.x);
        y = FixIntPart(node.y);
    }
    uint32_t node;
    uint16_t position;
    ZrPathPtOn(x, y, modifiers[e.Number(0, 5)], e.Dc(), e.doc.view, e.doc.table, &path, &node, &position);
    e.Settle();
}

void ClickTwice(EDITOR &e)
{
    PATHREC *path = e.AnyPath();
    if (!path || path->nodeCount == 0) return;
    const PATHNODE node = path->nodes[e.Number(0, static_cast<int>(path->nodeCount) - 1)];
    e.doc.Draw();
    for (int i = 0; i < 2; i++) {
        PATHREC *hit = path;
        ZrPathPtOn(FixIntPart(node.x), FixIntPart(node.y), ZRPICK_REPLACE, e.Dc(), e.doc.view, e.doc.table, &hit,
                   nullptr, nullptr);
        if (!hit) return;
        path = hit;
    }
}

void Clip(EDITOR &e)
{
    const RECT r = e.Rect();
    ZrPathRectClip(r.left, r.top, r.right, r.bottom, e.doc.table, e.Dc(), e.doc.view, e.Number(0, 7));
    e.Settle();
}

void Deselect(EDITOR &e)
{
    ZrPathDeSelectAll(e.Dc(), e.AnyPath(), e.doc.view, e.Number(0, 1));
    ZrPathAssignSelectedPath(e.doc.table, nullptr);
}

void DeselectPoints(EDITOR &e)
{
    ZrPathDeselectPts(e.SelectedOrAny());
}

void SelectAll(EDITOR &e)
{
    if (ZrPathAllPathSelected(e.AnyPath())) ZrPathAssignSelectedPath(e.doc.table, e.doc.Active());
}

void DragHandles(EDITOR &e)
{
    POINT handles[12];
    PATHREC *path = e.SelectedOrAny();
    const int32_t count = ZrPathSelectedToView(e.doc.view, path, handles, 0);
    for (int32_t i = 0; i < count; i++)
        if (e.Chance(3)) handles[i] = {e.Number(-30, 130), e.Number(-30, 110)};
    if (e.Chance(6))
        for (POINT &handle : handles) handle = {e.Number(-30, 130), e.Number(-30, 110)}; /* a list without an end */
    ZrPathSelectedToView(e.doc.view, path, handles, 1);
}

void MovePath(EDITOR &e)
{
    PATHREC *path = e.SelectedOrAny();
    ZrPathHideSelected(e.doc.view, e.doc.Selected(), &e.dirty);
    if (e.Chance(2))
        ZrPathMovePaths(path, e.doc.view, e.Number(-40, 40), e.Number(-40, 40));
    else
        ZrPathMovePathsByPtfx(path, e.Fixed(), e.Fixed());
    ZrPathDrawSelected(e.doc.view, e.doc.Selected(), &e.dirty);
}

void PlacePath(EDITOR &e)
{
    PATHREC *path = e.AnyPath();
    switch (e.Number(0, 3)) {
    case 0: ZrPathSize(path, e.Number(1, 30) / 15.0, e.Number(0, 30) / 15.0); break;
    case 1: ZrPathOffset(path, e.Number(-20, 60), e.Number(-20, 60)); break;
    case 2:
        ZrPathOffsetExact(path, static_cast<int16_t>(e.Number(-30, 30)), static_cast<int16_t>(e.Number(-30, 30)));
        break;
    default: ZrPathCenter(0, e.Number(18017, 18018), e.doc.table, e.doc.view, &e.dirty); break;
    }
}

void Join(EDITOR &e)
{
    PATHREC *path = e.SelectedOrAny();
    switch (e.Number(0, 7)) {
    case 0: ZrPathJoinAll(path); break;
    case 1: ZrPathDisjoinAll(path); break;
    case 2:
    case 3: ZrPathDisjoin(path); break;
    default: ZrPathJoin(path); break;
    }
}

void Delete(EDITOR &e)
{
    if (e.Chance(3))
        ZrPathDeleteLink(e.doc.table, e.doc.view, &e.dirty);
    else
        ZrPathDelete(e.doc.table, e.doc.view, &e.dirty);
}

void Duplicate(EDITOR &e)
{
    if (e.doc.Records().size() < 30) ZrPathDuplicate(e.Dc(), e.doc.table, e.doc.view, &e.dirty);
}

void CopyAside(EDITOR &e)
{
    PATHREC *copy = nullptr;
    if (ZrPathDuplicatePtr(e.AnyPath(), &copy)) ZrPathDeletePtr(copy, 0);
}

void Envelope(EDITOR &e)
{
    ZRPOINTFX points[8];
    for (ZRPOINTFX &p : points) p = {e.Fixed(), e.Fixed()};
    PATHREC *path = e.SelectedOrAny();
    switch (e.Number(0, 5)) {
    case 0: ZrPathBiLinear(path, points); break;
    case 1: ZrPathBiCubic(path, points); break;
    case 2: ZrPathBiCubicV(path, points); break;
    case 3: ZrPathAddBiLinearEnvelope(path, points); break;
    case 4: ZrPathAddBiBezierEnvelope(path, points); break;
    default:
        if (ZrPathGetBiBezierEnvelope(path, points)) ZrPathAddBiBezierEnvelope(path, points);
        ZrPathGetBiLinearEnvelope(path, points);
        break;
    }
    e.Settle();
}

void Primitive(EDITOR &e)
{
    if (e.doc.Records().size() > 25) return;
    const RECT drag = e.Rect();
    const PATHREC *prototype = e.Chance(6) && e.doc.Records().size() < 8 ? e.AnyPath() : nullptr;
    ZrPathAddPrimitive(e.Dc(), e.Number(0, 6), prototype, e.doc.table, e.doc.view, e.Number(0, 1), e.Number(0, 1),
                       &drag);
}

void Pen(EDITOR &e)
{
    const uint32_t messages[] = {512, 514, 515, 256, 257};
    for (int i = e.Number(1, 12); i > 0; i--) {
        if (e.Chance(2))
            e.pen.Drag(e.Number(0, 90), e.Number(0, 70), e.Number(0, 90), e.Number(0, 70));
        else
            e.pen.Send(messages[e.Number(0, 4)], e.Number(0, 90), e.Number(0, 70), e.Chance(2) ? 27 : 0);
        if (e.Chance(10)) e.pen.Down(e.Number(0, 90), e.Number(0, 70));
    }
    if (e.Chance(2)) ReleaseCapture();
}

void Backup(EDITOR &e)
{
    const int32_t actions[] = {UR_SELECTION, UR_SELECTION, UR_MOVE, UR_JOIN, UR_DISJOIN, UR_ENVELOPE, 18002};
    const int32_t action = actions[e.Number(0, 6)];
    const int32_t key = keys[e.Number(0, 2)];
    switch (e.Number(0, 9)) {
    case 0: BackupSelected(action, e.doc.table); break;
    case 1: BackupSelectMove(action, e.doc.table); break;
    case 2: BackupDuplicate(action, e.doc.table); break;
    case 3: ZrPathSameUR(key, e.doc.table, action); break;
    case 4: ZrPathURFree(key, 0, e.Number(0, 1)); break;
    case 5: ZrPathGetURAction(); break;
    default: ZrPathBackupAction(key, action, e.doc.table); break;
    }
}

/* An editor knows which record it is about to step over, and so what the context is. */
void Step(EDITOR &e)
{
    const int32_t key = keys[e.Number(0, 2)];
    const int forward = e.Number(0, 1);
    URLoad(key);
    const URRECORD *record = URRecordAt(undoNow.position + static_cast<uint32_t>(forward));
    const int onContext = record && record->action == UR_SELECTION;
    void *context = onContext ? static_cast<void *>(e.Dc()) : e.Chance(8) ? nullptr : &e.dirty;
    if (forward)
        ZrPathRedo(key, e.doc.table, e.doc.view, context);
    else
        ZrPathUndo(key, e.doc.table, e.doc.view, context);
    e.Settle();
}

void Show(EDITOR &e)
{
    PATHREC *path = e.SelectedOrAny();
    switch (e.Number(0, 6)) {
    case 0: ZrPathHide(e.doc.view, path, &e.dirty); break;
    case 1: ZrPathDrawSelected(e.doc.view, path, &e.dirty); break;
    case 2: ZrPathDrawSelectedSegments(e.doc.view, path, &e.dirty); break;
    case 3: ZrPathHideSelected(e.doc.view, path, &e.dirty); break;
    case 4: ZrPathTblRepaintNodes(e.Dc(), e.doc.table, e.doc.view, 0, 0, 80, 60); break;
    default: e.doc.Draw(); break;
    }
}

void ChangeView(EDITOR &e)
{
    const int32_t zooms[] = {1, 1, 1, 2, 3, -1, -2};
    const int32_t width = e.Number(1, 100);
    const int32_t height = e.Number(1, 80);
    const int32_t zoom = zooms[e.Number(0, 6)];
    if (e.Chance(3)) ZrPathCropDB(e.doc.table, width, height); /* and the view is renewed, as it must be */
    ZrPathNewCoordStruct(0, 0, width, height, e.Number(-20, 20), e.Number(-20, 20), zoom, 0, e.doc.table, &e.doc.view);
    e.pen.view = e.doc.view;
    e.doc.Draw();
}

constexpr struct {
    const char *name;
    int weight;
    void (*run)(EDITOR &);
} edits[] = {
    {"add path", 3, AddPath},
    {"click", 8, Click},
    {"click twice", 4, ClickTwice},
    {"rectangle", 4, Clip},
    {"deselect", 1, Deselect},
    {"deselect points", 1, DeselectPoints},
    {"select all", 1, SelectAll},
    {"drag handles", 4, DragHandles},
    {"move", 4, MovePath},
    {"place", 3, PlacePath},
    {"join", 4, Join},
    {"delete", 3, Delete},
    {"duplicate", 2, Duplicate},
    {"copy aside", 1, CopyAside},
    {"envelope", 3, Envelope},
    {"primitive", 3, Primitive},
    {"pen", 2, Pen},
    {"backup", 8, Backup},
    {"step", 8, Step},
    {"show", 3, Show},
    {"view", 1, ChangeView},
};

int AnyEdit(EDITOR &e)
{
    static const int total = [] {
        int sum = 0;
        for (const auto &edit : edits) sum += edit.weight;
        return sum;
    }();
    int left = e.Number(0, total - 1);
    int chosen = 0;
    while (left >= edits[chosen].weight) left -= edits[chosen++].weight;
    return chosen;
}

struct LIVEBLOCKS {
    int64_t count[ALLOC_COUNT];
    LIVEBLOCKS()
    {
        for (int i = 0; i < ALLOC_COUNT; i++) count[i] = FaultLiveBlocks(static_cast<ALLOCATOR>(i));
    }
    bool operator==(const LIVEBLOCKS &) const = default;
};

constexpr unsigned rounds = 30;
constexpr int steps = 250;

/* faultsIn: one step in so many runs with a failing allocation; 0 for none. */
void RunRound(unsigned seed, int faultsIn)
{
    FreeAllUndo();
    const LIVEBLOCKS before;
    {
        EDITOR e(seed);
        for (int step = 0; step < steps; step++) {
            const auto &edit = edits[AnyEdit(e)];
            if (faultsIn && edit.run != AddPath && e.Chance(faultsIn))
                FaultSet(e.Chance(2) ? ALLOC_PATHHEAP : ALLOC_BUF, e.Number(1, 3));
            edit.run(e);
            FaultSet(ALLOC_PATHHEAP, 0);
            FaultSet(ALLOC_BUF, 0);
            ASSERT_EQ(BrokenInvariant(e.doc), "") << "seed " << seed << ", step " << step << ", after " << edit.name;
        }
        ReleaseCapture();
    }
    FreeAllUndo();
    EXPECT_TRUE(LIVEBLOCKS() == before) << "seed " << seed << " leaks";
}

} // namespace

TEST(RandomEdits, KeepEveryInvariantAndLeakNothing)
{
    for (unsigned seed = 1; seed <= rounds && !testing::Test::HasFailure(); seed++) RunRound(seed, 0);
}

TEST(RandomEdits, KeepEveryInvariantWhereAllocationsFail)
{
    for (unsigned seed = 1001; seed <= 1000 + rounds && !testing::Test::HasFailure(); seed++) RunRound(seed, 4);
}

TEST(RandomEdits, TheCheckSeesWhatItIsMeantToSee)
{
    DOCUMENT doc;
    PATHREC *a = doc.Add(MakeBox(0, 0, 10, 10));
    PATHREC *b = doc.Add(MakeBox(20, 20, 30, 30));
    PATHREC *stray = MakeBox(0, 0, 1, 1);
    doc.Select({a, b});
    ASSERT_EQ(BrokenInvariant(doc), "");
    const auto broken = [&](auto *field, auto value, const char *message) {
        const auto old = *field;
        *field = value;
        EXPECT_EQ(BrokenInvariant(doc), message);
        *field = old;
        EXPECT_EQ(BrokenInvariant(doc), "");
    };
    PATHREC *none = nullptr;
    broken(&b->prevPath, none, "table prev");
    broken(&b->nextPath, a, "table chain does not end");
    broken(&a->nextJoin, b, "join next at record 0");
    broken(&b->nextJoin, stray, "join next at record 1");
    broken(&b->prevSel, none, "selected next at record 0");
    broken(&b->flags, 0u, "unselected on the selected chain at record 1");
    broken(&doc.table->groups[0].selectedPath, b, "selectedPath is not the first selected record");
    broken(&a->nodeCount, 6u, "nodes outside the block at record 0");
    a->nodeCount = 4;
    a->nodes[3].type = 4;
    EXPECT_EQ(BrokenInvariant(doc), "a segment cut short at record 0");
    a->nodes[3].type = 0x800;
    EXPECT_EQ(BrokenInvariant(doc), "unknown kind at record 0");
    ZrPathDeletePtr(stray, 0);
}
