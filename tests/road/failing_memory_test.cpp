/* failing_memory_test.cpp - every export that allocates, with each allocation that it makes failed in turn.
 *
 * A row is one export in one situation. For each of the four allocators the first allocation of the call fails, then
 * the second, until a call meets no failure. After each failure
 *   - the caller is told what the headers say, and holds nothing or something whole;
 *   - the document keeps its invariants; where the row says so, all is as it was before the call;
 *   - the same call, made again with memory, gives what it gives when nothing has failed;
 *   - when everything is freed, as many blocks live as before.
 * A row also names the allocators that its export takes from: one more or one less is a failed test.
 */
#include "comm/zr32comm.h"
#include "edit/select.h"
#include "frame/faults.h"
#include "road/stage.h"
#include "support/tinyfont.h"
#include "support/undolists.h"

#include <array>
#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr unsigned HEAP = 1u << ALLOC_PATHHEAP;
constexpr unsigned SURFACE = 1u << ALLOC_SURFACEHEAP;
constexpr unsigned BUF = 1u << ALLOC_BUF;
constexpr unsigned GLOBAL = 1u << ALLOC_GLOBAL;

/* What a call without memory leaves. */
enum LEAVES {
    AS_IT_WAS, /* the row's result, nothing given, the stage as before the call */
    PARTLY,    /* something whole, told by the row's check */
    DONE,      /* the same, but the step is done all the same and cannot be made again */
};

/* A call that met a failure, what it gives with memory, and the stage as text. */
struct FAILED {
    const STAGE &stage;
    const GIVEN &given;
    const GIVEN &with;
    ALLOCATOR allocator;
    int64_t n;
    std::string before; /* the stage before the call */
    std::string stands; /* and behind it, with memory */
};

struct ROW {
    const char *name;
    const char *situation;
    unsigned allocators;
    LEAVES leaves;
    int32_t result; /* of a call that leaves all as it was */
    void (*prepare)(STAGE *stage);
    void (*call)(STAGE *stage, GIVEN *given);
    void (*check)(const FAILED &f);
};

/* A handle that asks for a plane. */
const PATHBUF asked = reinterpret_cast<PATHBUF>(uintptr_t{1});

/* ---- situations ---- */

const RECT drag = {20, 20, 60, 50};
const ZRPOINTFX corner = {40 * 65536, 50 * 65536};
constexpr ZRFIXED px = fixedOne;
const ZRPOINTFX frame4[] = {{0, 0}, {90 * px, 5 * px}, {0, 60 * px}, {80 * px, 70 * px}};
const ZRPOINTFX wider4[] = {{0, 0}, {95 * px, 5 * px}, {0, 65 * px}, {80 * px, 75 * px}};
const ZRPOINTFX frame8[] = {{0, 0},       {30 * px, 0},       {60 * px, 0},       {90 * px, 0},
                            {0, 60 * px}, {30 * px, 70 * px}, {60 * px, 70 * px}, {90 * px, 60 * px}};

void AsItStands(STAGE *) {}

void OwnBox(STAGE *stage)
{
    stage->own = MakeBox(20, 20, 40, 45);
}

#if !defined(_WIN32)
/* One node, its block as small as can be; it has room to grow where it stands. */
void OwnPurged(STAGE *stage)
{
    stage->own = ZrPathCreate();
    ZrPathAddPoint(&stage->own, &corner, PATHNODE_START);
    ZrPathPurge(&stage->own);
}
#endif

void OwnUnpurged(STAGE *stage)
{
    stage->own = ZrPathCreate();
    ZrPathAddPoint(&stage->own, &corner, PATHNODE_START);
}

void OwnBoxAndView(STAGE *stage)
{
    OwnBox(stage);
    ZrPathCoordStruct(0, 0, 60, 50, 0, 0, 1, nullptr, &stage->otherView);
}

void EmptyTable(STAGE *stage)
{
    ZrPathNew(&stage->otherTable);
}

void TableWithBuffer(STAGE *stage)
{
    ZrPathNew(&stage->otherTable);
    COORDSTRUCT *view = nullptr;
    ZrPathCoordStruct(0, 0, 20, 10, 0, 0, 1, stage->otherTable, &view);
    ZrPathDeleteCoordStruct(view);
}

void Flattened(STAGE *stage)
{
    uint32_t size;
    ZrPathFlatten(stage->box, &size, &stage->stream);
}

void ABuffer(STAGE *stage)
{
    stage->Buf(24, 10, 8)[5] = 77;
}

/* Arrays for twenty masks are made first; there are three here and nineteen more. */
void TwentyTwoShapes(STAGE *stage)
{
    std::vector<PATHREC *> all = stage->Records();
    for (int i = 0; i < 19; i++) all.push_back(stage->Add(MakeBox(i, i, i + 12, i + 9)));
    stage->Select(all);
}

void OneCircle(STAGE *stage)
{
    stage->own = MakeCircle(30, 80, 60);
}

void ASelectionStep(STAGE *stage)
{
    ZrPathBackupAction(stageKey, UR_SELECTION, stage->table);
}

void AnotherSelection(STAGE *stage)
{
    ASelectionStep(stage);
    stage->Select({stage->circle});
}

void SelectionUndone(STAGE *stage)
{
    AnotherSelection(stage);
    ZrPathUndo(stageKey, stage->table, stage->view, nullptr);
}

void JoinedUnselected(STAGE *stage)
{
    stage->Select({});
    ZrPathJoinAll(stage->box);
}

void UnderAnEnvelope(STAGE *stage)
{
    JoinedUnselected(stage);
    ZrPathAddBiLinearEnvelope(stage->box, frame4);
    ZrPathAssignSelectedPathBlindly(stage->table, stage->box);
}

void EnvelopeChanged(STAGE *stage)
{
    UnderAnEnvelope(stage);
    ZrPathBackupAction(stageKey, UR_ENVELOPE, stage->table);
    ZrPathBiLinear(stage->box, wider4);
    ZrPathAddBiLinearEnvelope(stage->box, wider4);
    stage->Draw();
}

void EnvelopeUndone(STAGE *stage)
{
    EnvelopeChanged(stage);
    ZrPathUndo(stageKey, stage->table, stage->view, nullptr);
}

/* A frame's outline is the whole document, so that nothing stands behind it; the step writes one there. */
void AFrameAlone(STAGE *stage)
{
    ZrPathDelete(stage->table, stage->view, nullptr);
    stage->Select({stage->Add(MakeBox(10, 10, 50, 60))});
    stage->Draw();
    ZrPathBackupAction(stageKey, UR_ENVELOPE, stage->table);
}

void AFrameAloneUndone(STAGE *stage)
{
    AFrameAlone(stage);
    FaultSet(ALLOC_PATHHEAP, 1);
    ZrPathUndo(stageKey, stage->table, stage->view, nullptr);
    FaultSet(ALLOC_PATHHEAP, 0);
}

#if defined(ZR32_TEST_FONTS)
void AFont(STAGE *stage)
{
    stage->text = TextDcMake(InstalledTinyFont(), 40);
}
#endif

/* In front, whose device context gives fonts. */
void AWindow(STAGE *stage)
{
#if defined(ZR32_TEST_FONTS)
    AFont(stage);
#endif
    SetWindowContext(stage->text.dc);
}

void APen(STAGE *stage)
{
    stage->pen = std::make_unique<PENDRIVER>(stage->table, stage->view);
}

void APenOnAnEmptyGroup(STAGE *stage)
{
    ZrPathDelete(stage->table, stage->view, nullptr);
    APen(stage);
}

void APenWithoutATable(STAGE *stage)
{
    stage->pen = std::make_unique<PENDRIVER>(nullptr, stage->view);
}

void APenBehindItsFirstAnchor(STAGE *stage)
{
    APen(stage);
    stage->pen->Click(30, 40);
}

void APenBehindACurve(STAGE *stage)
{
    APenBehindItsFirstAnchor(stage);
    stage->pen->Drag(60, 60, 70, 65);
}

/* A shape with a record behind it that ends the chain, and its mask, which lies first among the buffers. */
void OwnWithMask(STAGE *stage, PATHREC *shape, int32_t margin)
{
    RECT *rects = nullptr;
    PATHBUF *masks = nullptr;
    stage->own = shape;
    ZrPathToBuf(shape, 8, 0, 1, 0, fixedOne, &rects, &masks, margin);
    stage->bufs.push_back(masks[0]);
    FreeGlobals(rects, masks);
    ZrPathChainPaths(&stage->own, MakePath({{6, 0, 0}}));
}

void AShapeWithMask(STAGE *stage)
{
    OwnWithMask(stage, MakeCircle(40, 40, 25), 0);
}

void AShapeWithWiderMask(STAGE *stage)
{
    OwnWithMask(stage, MakeCircle(40, 40, 25), 4);
}

void APrimitive(STAGE *stage)
{
    ZrPathGetPrimitive(ZRPRIM_BAR, nullptr, &stage->own, stage->view, 0, 0, &drag);
}

void AStraightFrame(STAGE *stage)
{
    OwnWithMask(stage, MakeBox(20, 20, 60, 50), 0);
    stage->own->nextPath->flags = PATHREC_ENVELOPE;
    PATHREC *const tail = stage->own->nextPath;
    stage->own->nextPath = nullptr;
    ZrPathDeletePtr(tail, 0);
    ZrPathAddBiLinearEnvelope(stage->own, frame4);
}

void ABentFrame(STAGE *stage)
{
    AStraightFrame(stage);
    ZrPathDeletePtr(stage->own->nextPath, 0);
    stage->own->nextPath = nullptr;
    ZrPathAddBiBezierEnvelope(stage->own, frame8);
}

/* A level surface of changing slope that mirrors a source. */
void AMirror(STAGE *stage, int32_t bits)
{
    PATHBUF normals = stage->Buf(0x40, 16, 16);
    PATHBUF mask = stage->Buf(8, 16, 16);
    PATHBUF source = stage->Buf(bits, 200, 200);
    stage->Buf(bits, 16, 16);
    for (int i = 0; i < 16 * 16; i++) {
        const SURFVEC16 v = {int16_t((i * 977) % 3600 - 1800), int16_t((i * 613) % 3600 - 1800), 0, 0};
        memcpy(normals + i * 8, &v, 8);
        mask[i] = 255;
    }
    for (int i = 0; i < 200 * 200 * (bits / 8); i++) source[i] = uint8_t(i * 31);
}

void AGreyMirror(STAGE *stage)
{
    AMirror(stage, 8);
}

void AColourMirror(STAGE *stage)
{
    AMirror(stage, 24);
}

void ASolid(STAGE *stage)
{
    stage->solid = MakeScene(MakeCircle(45, 45, 30), 20, 90, 90);
    Turn(&stage->solid, {0.6, 0.8, 0}, 30);
}

/* ---- calls that several rows make ---- */

void Masks(GIVEN *given, PATHREC *path, int32_t depth, int32_t scope, ZRFIXED zoom)
{
    given->result = ZrPathToBuf(path, depth, 0, 1, scope, zoom, &given->rects, &given->masks, 0);
}

/* The group learns what is selected, which these calls leave to their caller. */
void Settle(STAGE *stage)
{
    PathRebuildSelected(stage->Active());
    ZrPathAssignSelectedPathBlindly(stage->table, stage->Active());
}

void Map(STAGE *stage, GIVEN *given, int32_t envelope, int32_t outset, int32_t useMask)
{
    double width = 9;
    given->bufs[0] = given->bufs[1] = asked;
    given->result = ZrPathVMap(stage->own, &given->bufs[0], &given->bufs[1], 0, 0, envelope, outset, 0, &width, 0,
                               useMask, stage->bufs.empty() ? nullptr : stage->bufs[0], nullptr, fixedOne);
}

/* ---- what is left where something was done ---- */

int Reports()
{
    ZR32COMMERROR error;
    const int count = zr32CommLastError(&error);
    if (count) {
        EXPECT_EQ(errorMemory, error.words[1]);
    }
    return count;
}

size_t LengthOf(const PATHREC *path)
{
    size_t length = 0;
    for (; path; path = path->nextPath) length++;
    return length;
}

void NoViewOrOneWithoutABuffer(const FAILED &f)
{
    EXPECT_EQ(1, f.given.result);
    EXPECT_EQ(f.n == 1, f.given.view == nullptr);
    EXPECT_EQ(nullptr, f.stage.otherTable->lpDB);
    if (f.given.view) {
        EXPECT_EQ(nullptr, f.given.view->displayBuffer);
    }
}

void NoViewOrTheOldBufferGone(const FAILED &f)
{
    EXPECT_EQ(f.n != 1, f.given.result);
    if (f.n != 1) return NoViewOrOneWithoutABuffer(f);
    EXPECT_TRUE(f.given.Nothing());
    EXPECT_EQ(f.before, TextOf(f.stage));
}

/* No mask, or all of them, with rows that are left empty where the tables of a band could not be had. */
void NoMaskOrOneWithEmptyRows(const FAILED &f)
{
    EXPECT_EQ(f.before, TextOf(f.stage));
    if (f.given.result == 0) {
        EXPECT_TRUE(f.given.Nothing());
        return;
    }
    EXPECT_EQ(ALLOC_BUF, f.allocator);
    ASSERT_EQ(f.with.result, f.given.result);
    for (int32_t i = 0; i < f.given.result; i++) {
        const BUFINFO info = BufInfo(f.given.masks[i]);
        const BUFINFO full = BufInfo(f.with.masks[i]);
        ASSERT_EQ(full.width, info.width);
        ASSERT_EQ(full.height, info.height);
        EXPECT_EQ(0, memcmp(&f.with.rects[i], &f.given.rects[i], sizeof(RECT)));
    }
}

void NoCopies(const FAILED &f)
{
    EXPECT_EQ(nullptr, f.given.path);
    EXPECT_EQ(f.before, TextOf(f.stage));
    const bool atTheLastRecord = f.allocator == ALLOC_PATHHEAP && f.n == 3;
    EXPECT_EQ(atTheLastRecord, f.given.result);
}

void NoNewRecordAndTheOldSelectionOff(const FAILED &f)
{
    EXPECT_EQ(1, f.given.result);
    EXPECT_EQ(3u, f.stage.Records().size());
    EXPECT_EQ(nullptr, f.stage.Selected());
}

/* Without memory for the snapshot nothing; without memory for an outline that is not there the step goes without. */
void NoStepOrOneWithoutAnOutline(const FAILED &f)
{
    EXPECT_EQ(f.allocator == ALLOC_PATHHEAP, f.given.result);
    if (f.given.result == 0) {
        EXPECT_EQ(f.before, TextOf(f.stage));
    }
    EXPECT_EQ(1u, f.stage.Records().size());
}

/* The table alone decides; a group whose record or text cannot be had is empty or shorter. */
void ATableOfSixGroupsOrNone(const FAILED &f)
{
    EXPECT_EQ(f.allocator == ALLOC_PATHHEAP && f.n == 1, f.given.table == nullptr);
    if (f.given.table) {
        EXPECT_EQ(6u, f.given.table->groupCount);
    }
}

/* Lines and bars may be missing for want of records; the paths are whole when only the mask is missing. In a build
 * without fonts nobody asks. */
[[maybe_unused]] void PathsWithoutAMaskOrLessOfBoth(const FAILED &f)
{
    const size_t all = LengthOf(f.with.path);
    const size_t length = LengthOf(f.given.path);
    if (f.allocator == ALLOC_PATHHEAP) {
        EXPECT_LE(length, all);                        /* a record whose block could not be cut to size is whole */
    } else if (f.allocator == ALLOC_BUF && f.n == 1) { /* the array of lines */
        EXPECT_EQ(0u, length);
    } else {
        EXPECT_EQ(all, length);
    }
    if (length == 0 || f.allocator == ALLOC_GLOBAL) {
        EXPECT_EQ(nullptr, f.given.bufs[0]);
    }
    EXPECT_EQ(f.before, TextOf(f.stage));
}

/* Without the distance plane the other handle is left; without the offset plane both are 0. */
void NoPlanes(const FAILED &f)
{
    EXPECT_EQ(0, f.given.result);
    EXPECT_EQ(nullptr, f.given.bufs[0]);
    EXPECT_TRUE(f.given.bufs[1] == nullptr || f.given.bufs[1] == asked);
    EXPECT_EQ(1, Reports());
}

void HandlesLeftAlone(const FAILED &f)
{
    EXPECT_EQ(0, f.given.result);
    EXPECT_EQ(asked, f.given.bufs[0]);
    EXPECT_EQ(asked, f.given.bufs[1]);
    EXPECT_EQ(0, Reports());
}

/* No rows of the outline, no planes, or a map that was given up on the way; never a part of one. */
void NoExactMap(const FAILED &f)
{
    if (f.given.result == 1) {
        EXPECT_EQ(nullptr, f.given.bufs[0]);
        EXPECT_EQ(nullptr, f.given.bufs[1]);
        EXPECT_EQ(1, Reports());
    } else if (Reports()) {
        NoPlanes(f);
    } else {
        HandlesLeftAlone(f);
    }
}

/* The columns of the outline are not needed here. */
void NoPrimitiveMapOrAll(const FAILED &f)
{
    if (f.given.result == 1)
        EXPECT_EQ(TextOf(f.with), TextOf(f.given));
    else
        NoExactMap(f);
}

/* No planes, empty ones without the lattice or its mask, or what a mask with empty rows gives. */
void NoPlanesOrOnesOfLess(const FAILED &f)
{
    if (Reports()) return NoPlanes(f);
    for (int i = 0; i < 2; i++) EXPECT_EQ(BufInfo(f.with.bufs[i]).height, BufInfo(f.given.bufs[i]).height);
    EXPECT_EQ(f.before, TextOf(f.stage)) << "the mask is as it was";
}

/* The first allocation is what the pass cannot do without; the second makes it faster. */
void NothingOrAll(const FAILED &f)
{
    EXPECT_EQ(f.n != 1, f.given.result);
    EXPECT_EQ(f.n == 1 ? f.before : f.stands, TextOf(f.stage));
}

/* Without the plane of the band nothing is drawn; else samples are missing, or nothing is. */
void NoPictureOrOneOfLess(const FAILED &f)
{
    const bool noPlane = f.allocator == ALLOC_BUF && f.n == 1;
    EXPECT_EQ(!noPlane, f.given.result);
    if (noPlane) {
        EXPECT_EQ(f.before, TextOf(f.stage));
    }
    if (f.allocator == ALLOC_GLOBAL) { /* the table of glass, tried again at the next sample */
        EXPECT_EQ(f.stands, TextOf(f.stage));
    }
}

const ROW rows[] = {
    /* records */
    {"ZrPathCreate", "", HEAP, AS_IT_WAS, 0, AsItStands, [](STAGE *, GIVEN *g) { g->path = ZrPathCreate(); }, nullptr},
    {"ZrPathR2VToZrPath", "three points", HEAP, AS_IT_WAS, 0, AsItStands,
     [](STAGE *, GIVEN *g) {
         const R2VPOINT points[] = {{1, 1, PATHNODE_LINE, 0}, {9, 1, PATHNODE_LINE, 0}, {5, 8, PATHNODE_LINE, 0}};
         g->path = ZrPathR2VToZrPath(3, points);
     },
     nullptr},
#if !defined(_WIN32) /* where no block grows in place, so that the node is dropped without asking */
    {"ZrPathAddPoint", "a node that finds no room is dropped", HEAP, AS_IT_WAS, 1, OwnPurged,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathAddPoint(&s->own, &corner, PATHNODE_LINE); }, nullptr},
#endif
    {"ZrPathPurge", "", HEAP, AS_IT_WAS, 0, OwnUnpurged,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathPurge(&s->own); }, nullptr},

    /* table and view */
    {"ZrPathNew", "", HEAP, AS_IT_WAS, 0, AsItStands,
     [](STAGE *, GIVEN *g) { g->result = ZrPathNew(&g->table); }, nullptr},
    {"ZrPathAddPathGroup", "a new table", HEAP | BUF, AS_IT_WAS, 0, OwnBoxAndView,
     [](STAGE *s, GIVEN *g) {
         g->result = ZrPathAddPathGroup(&g->table, s->own, "one", s->otherView, nullptr);
         if (g->result) s->own = nullptr;
     },
     nullptr},
    {"ZrPathAddPathGroup", "a further group", HEAP, AS_IT_WAS, 0, OwnBox,
     [](STAGE *s, GIVEN *g) {
         g->result = ZrPathAddPathGroup(&s->table, s->own, "two", s->view, nullptr);
         if (g->result) s->own = nullptr;
     },
     nullptr},
    {"ZrPathCoordStruct", "a view and a buffer", BUF, PARTLY, 0, EmptyTable,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathCoordStruct(0, 0, 60, 50, 0, 0, 1, s->otherTable, &g->view); }, NoViewOrOneWithoutABuffer},
    {"ZrPathNewCoordStruct", "a view and a buffer", BUF, PARTLY, 0, TableWithBuffer,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathNewCoordStruct(0, 0, 60, 50, 0, 0, 1, 5, s->otherTable, &g->view); },
     NoViewOrTheOldBufferGone},

    /* stream */
    {"ZrPathFlatten", "", GLOBAL, AS_IT_WAS, 0, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathFlatten(s->circle, &g->size, &g->stream); }, nullptr},
    {"ZrPathUnFlatten", "", HEAP | GLOBAL, AS_IT_WAS, 0, Flattened,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathUnFlatten(&s->stream, &g->path); }, nullptr},

    /* buffers and masks */
    {"ZrPathBufAlloc", "", BUF, AS_IT_WAS, 0, AsItStands,
     [](STAGE *, GIVEN *g) { g->bufs[0] = ZrPathBufAlloc(24, 10, 10); }, nullptr},
    {"ZrPathBufDuplicate", "", BUF, AS_IT_WAS, 0, ABuffer,
     [](STAGE *s, GIVEN *g) { g->bufs[0] = ZrPathBufDuplicate(0, s->bufs[0]); }, nullptr},
    {"ZrPathToBuf", "one shape", BUF | GLOBAL, PARTLY, 0, OneCircle,
     [](STAGE *s, GIVEN *g) { Masks(g, s->own, 8, 0, fixedOne); }, NoMaskOrOneWithEmptyRows},
    {"ZrPathToBuf", "one shape, an A-buffer mask", BUF | GLOBAL, PARTLY, 0, OneCircle,
     [](STAGE *s, GIVEN *g) { Masks(g, s->own, 4, 0, fixedOne); }, NoMaskOrOneWithEmptyRows},
    {"ZrPathToBuf", "one shape, made larger and reduced", BUF | GLOBAL, PARTLY, 0, OneCircle,
     [](STAGE *s, GIVEN *g) { Masks(g, s->own, 16, 0, 2 * fixedOne); }, NoMaskOrOneWithEmptyRows},
    {"ZrPathToBuf", "one outline", BUF | GLOBAL, PARTLY, 0, OneCircle,
     [](STAGE *s, GIVEN *g) { Masks(g, s->own, 8, 1, fixedOne); }, NoMaskOrOneWithEmptyRows},
    {"ZrPathToBuf", "twenty-two shapes", BUF | GLOBAL, PARTLY, 0, TwentyTwoShapes,
     [](STAGE *s, GIVEN *g) { Masks(g, s->box, 8, 0, fixedOne); }, NoMaskOrOneWithEmptyRows},

    /* display */
    {"ZrPathCropDB", "", BUF, AS_IT_WAS, 0, AsItStands,
     [](STAGE *s, GIVEN *g) {
         g->result = ZrPathCropDB(s->table, 60, 50);
         s->view->displayBuffer = s->table->lpDB;
     },
     nullptr},

    /* edits */
    {"ZrPathDuplicate", "three records", HEAP | BUF, AS_IT_WAS, 0, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathDuplicate(nullptr, s->table, s->view, nullptr); }, nullptr},
    {"ZrPathDuplicatePtr", "three records", HEAP | BUF, PARTLY, 0, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathDuplicatePtr(s->circle, &g->path); }, NoCopies},
    {"ZrPathAddBiLinearEnvelope", "", HEAP, AS_IT_WAS, 0, JoinedUnselected,
     [](STAGE *s, GIVEN *g) {
         g->result = ZrPathAddBiLinearEnvelope(s->box, frame4);
         ZrPathAssignSelectedPathBlindly(s->table, s->box);
     },
     nullptr},
    {"ZrPathAddBiBezierEnvelope", "", HEAP, AS_IT_WAS, 0, JoinedUnselected,
     [](STAGE *s, GIVEN *g) {
         g->result = ZrPathAddBiBezierEnvelope(s->box, frame8);
         ZrPathAssignSelectedPathBlindly(s->table, s->box);
     },
     nullptr},

    /* undo */
    {"ZrPathBackupAction", "a selection", BUF, AS_IT_WAS, 1, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathBackupAction(stageKey, UR_SELECTION, s->table); }, nullptr},
    {"ZrPathBackupAction", "a move", BUF, AS_IT_WAS, 1, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathBackupAction(stageKey, UR_MOVE, s->table); }, nullptr},
    {"ZrPathBackupAction", "an envelope", BUF, AS_IT_WAS, 1, UnderAnEnvelope,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathBackupAction(stageKey, UR_ENVELOPE, s->table); }, nullptr},
    {"BackupSelected", "", BUF, AS_IT_WAS, 1, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = BackupSelected(18003, s->table); }, nullptr},
    {"BackupSelectMove", "", BUF, AS_IT_WAS, 1, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = BackupSelectMove(18003, s->table); }, nullptr},
    {"BackupDuplicate", "", BUF, AS_IT_WAS, 0, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = BackupDuplicate(0, s->table); }, nullptr},
    {"ZrPathSameUR", "the same selection", BUF, AS_IT_WAS, 0, ASelectionStep,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathSameUR(stageKey, s->table, UR_SELECTION); }, nullptr},
    {"ZrPathUndo", "a selection", BUF, AS_IT_WAS, 0, AnotherSelection,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathUndo(stageKey, s->table, s->view, nullptr); }, nullptr},
    {"ZrPathUndo", "an envelope", BUF, AS_IT_WAS, 0, EnvelopeChanged,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathUndo(stageKey, s->table, s->view, nullptr); }, nullptr},
    {"ZrPathUndo", "an envelope without an outline behind it", HEAP | BUF, DONE, 0, AFrameAlone,
     [](STAGE *s, GIVEN *g) {
         g->result = ZrPathUndo(stageKey, s->table, s->view, nullptr);
         Settle(s);
     },
     NoStepOrOneWithoutAnOutline},
    {"ZrPathRedo", "a selection", BUF, AS_IT_WAS, 0, SelectionUndone,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathRedo(stageKey, s->table, s->view, nullptr); }, nullptr},
    {"ZrPathRedo", "an envelope without an outline behind it", HEAP | BUF, DONE, 0, AFrameAloneUndone,
     [](STAGE *s, GIVEN *g) {
         g->result = ZrPathRedo(stageKey, s->table, s->view, nullptr);
         Settle(s);
     },
     NoStepOrOneWithoutAnOutline},
    {"ZrPathRedo", "an envelope", BUF, AS_IT_WAS, 0, EnvelopeUndone,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathRedo(stageKey, s->table, s->view, nullptr); }, nullptr},

    /* sources of shapes */
    {"ZrPathGetPrimitive", "built in", HEAP, AS_IT_WAS, 0, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathGetPrimitive(1, nullptr, &g->path, s->view, 0, 0, &drag); }, nullptr},
    {"ZrPathGetPrimitive", "a stamp", HEAP | BUF, AS_IT_WAS, 0, OwnBox,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathGetPrimitive(0, s->own, &g->path, s->view, 0, 0, &drag); }, nullptr},
    {"ZrPathAddPrimitive", "built in", HEAP, PARTLY, 0, AsItStands,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathAddPrimitive(nullptr, 3, nullptr, s->table, s->view, 0, 0, &drag); },
     NoNewRecordAndTheOldSelectionOff},
    {"ZrPathAddPrimitive", "a stamp", HEAP | BUF, PARTLY, 0, OwnBox,
     [](STAGE *s, GIVEN *g) { g->result = ZrPathAddPrimitive(nullptr, 0, s->own, s->table, s->view, 0, 0, &drag); },
     NoNewRecordAndTheOldSelectionOff},
    {"AddPathTest", "", HEAP | BUF, PARTLY, 0, AWindow,
     [](STAGE *, GIVEN *g) { AddPathTest(&g->table, nullptr, nullptr); }, ATableOfSixGroupsOrNone},
#if defined(ZR32_TEST_FONTS)
    {"ZrPathCreateText", "two lines with bars, and their mask", HEAP | BUF | GLOBAL, PARTLY, 0, AFont,
     [](STAGE *s, GIVEN *g) {
         TEXTPARAM param = {};
         param.underline = param.strikeout = 1;
         char text[] = "AQ\r\nO";
         RECT rect;
         g->bufs[0] = ZrPathCreateText(s->text.dc, text, &param, &g->path, &rect);
     },
     PathsWithoutAMaskOrLessOfBoth},
#endif
    {"ZrPathMouseProcDraw", "the first press", HEAP, PARTLY, 1, APen,
     [](STAGE *s, GIVEN *g) {
         ReleaseCapture();
         g->result = s->pen->Send(513, 30, 40);
     },
     NoNewRecordAndTheOldSelectionOff},
    {"ZrPathMouseProcDraw", "the first press on an empty group", HEAP, AS_IT_WAS, 1, APenOnAnEmptyGroup,
     [](STAGE *s, GIVEN *g) {
         ReleaseCapture();
         g->result = s->pen->Send(513, 30, 40);
     },
     nullptr},
    {"ZrPathMouseProcDraw", "the first press without a table", HEAP, AS_IT_WAS, 1, APenWithoutATable,
     [](STAGE *s, GIVEN *g) {
         ReleaseCapture();
         g->result = s->pen->Send(513, 30, 40);
     },
     nullptr},
    {"ZrPathMouseProcDraw", "a corner", HEAP, AS_IT_WAS, 0, APenBehindItsFirstAnchor,
     [](STAGE *s, GIVEN *) { s->pen->Click(60, 60); }, nullptr},
    {"ZrPathMouseProcDraw", "a smooth anchor", HEAP, AS_IT_WAS, 0, APenBehindItsFirstAnchor,
     [](STAGE *s, GIVEN *) { s->pen->Drag(60, 60, 70, 65); }, nullptr},
    {"ZrPathMouseProcDraw", "a smooth anchor behind a curve", HEAP, AS_IT_WAS, 0, APenBehindACurve,
     [](STAGE *s, GIVEN *) { s->pen->Drag(20, 70, 10, 75); }, nullptr},

    /* surface maps */
    {"ZrPathVMap", "a sweep inside a mask", BUF, PARTLY, 0, AShapeWithMask,
     [](STAGE *s, GIVEN *g) { Map(s, g, 0, 0, 1); }, NoPlanes},
    {"ZrPathVMap", "a sweep on both sides", BUF, PARTLY, 0, AShapeWithWiderMask,
     [](STAGE *s, GIVEN *g) { Map(s, g, 0, -4, 1); }, NoPlanes},
    {"ZrPathVMap", "exact, without a mask", BUF, PARTLY, 0, AShapeWithMask,
     [](STAGE *s, GIVEN *g) { Map(s, g, 0, 0, 0); }, NoExactMap},
    {"ZrPathVMap", "a primitive", BUF, PARTLY, 0, APrimitive, [](STAGE *s, GIVEN *g) { Map(s, g, 0, 0, 0); }, NoPrimitiveMapOrAll},
    {"ZrPathVMap", "a bilinear frame", HEAP | BUF | GLOBAL, PARTLY, 0, AStraightFrame,
     [](STAGE *s, GIVEN *g) { Map(s, g, 1, 0, 1); }, NoPlanesOrOnesOfLess},
    {"ZrPathVMap", "a bicubic frame", HEAP | BUF | GLOBAL, PARTLY, 0, ABentFrame,
     [](STAGE *s, GIVEN *g) { Map(s, g, 1, 0, 1); }, NoPlanesOrOnesOfLess},

    /* shading */
    {"ZrPathBumpIt", "sums of the source are made", BUF, PARTLY, 0, AGreyMirror,
     [](STAGE *s, GIVEN *g) {
         g->result = ZrPathBumpIt(0, 9, s->bufs[0], s->bufs[3], 0, 0, 0, s->bufs[2], 0, s->bufs[1], nullptr);
     },
     NothingOrAll},
    {"ZrPathReflectIt", "sums of the source are made", BUF, PARTLY, 0, AColourMirror,
     [](STAGE *s, GIVEN *g) {
         g->result =
             ZrPathReflectIt(0, 9, s->bufs[0], s->bufs[3], 0, 0, 0, s->bufs[2], 0, s->bufs[1], nullptr, 0, nullptr);
     },
     NothingOrAll},

    /* the renderer */
    {"ZrPathABufRender", "glass", SURFACE | BUF | GLOBAL, PARTLY, 0, ASolid,
     [](STAGE *s, GIVEN *g) {
         const double light[3] = {-0.5773502, -0.5773502, 0.5773502};
         g->result = Render(&s->solid, {20, 0, 1, 0, 0}, light);
     },
     NoPictureOrOneOfLess},
};

struct LIVE {
    std::array<int64_t, ALLOC_COUNT> blocks;
};

LIVE LiveNow()
{
    LIVE live;
    for (int k = 0; k < ALLOC_COUNT; k++) live.blocks[k] = FaultLiveBlocks(static_cast<ALLOCATOR>(k));
    return live;
}

/* One call with one failure, and what follows. Returns whether the failure was met. */
bool FailOnce(const ROW &row, ALLOCATOR allocator, int64_t n, const GIVEN &with, const std::string &stands)
{
    STAGE stage;
    row.prepare(&stage);
    const std::string before = TextOf(stage);
    {
        GIVEN given;
        zr32CommReset();
        FaultSet(allocator, n);
        row.call(&stage, &given);
        const bool struck = FaultStruck();
        FaultSet(allocator, 0);
        EXPECT_EQ("", BrokenInvariant(stage));
        if (!struck) {
            EXPECT_EQ(TextOf(with), TextOf(given));
            EXPECT_EQ(stands, TextOf(stage));
            return false;
        }
        if (row.leaves == AS_IT_WAS) {
            EXPECT_EQ(row.result, given.result);
            EXPECT_TRUE(given.Nothing());
            EXPECT_EQ(before, TextOf(stage));
        } else {
            row.check({stage, given, with, allocator, n, before, stands});
        }
    }
    if (row.leaves == DONE) return true;
    GIVEN again;
    row.call(&stage, &again);
    EXPECT_EQ(TextOf(with), TextOf(again)) << "made again";
    EXPECT_EQ(stands, TextOf(stage)) << "made again";
    return true;
}

/* Fails every allocation of one allocator in turn. */
void FailAll(const ROW &row, ALLOCATOR allocator, const GIVEN &with, const std::string &stands)
{
    const LIVE live = LiveNow();
    int64_t met = 0;
    while (FailOnce(row, allocator, met + 1, with, stands)) {
        met++;
        ASSERT_EQ(live.blocks, LiveNow().blocks) << "allocation " << met;
        ASSERT_FALSE(testing::Test::HasFailure()) << "allocation " << met;
    }
    EXPECT_EQ(live.blocks, LiveNow().blocks);
    EXPECT_EQ((row.allocators >> allocator & 1) != 0, met > 0) << "it makes " << met << " allocations";
}

TEST(FailingMemory, EveryAllocationOfEveryExportFailsInTurn)
{
    ZrPathInit();
    SurfaceHeapInit();
    for (const ROW &row : rows) {
        STAGE stage;
        GIVEN with;
        row.prepare(&stage);
        row.call(&stage, &with);
        const std::string stands = TextOf(stage);
        FreeAllUndo(); /* the lists are the library's; each further stage begins with its own */
        for (const ALLOCATOR allocator : {ALLOC_PATHHEAP, ALLOC_SURFACEHEAP, ALLOC_BUF, ALLOC_GLOBAL}) {
            SCOPED_TRACE(std::string(row.name) + ", " + row.situation + ", allocator " + std::to_string(allocator));
            FailAll(row, allocator, with, stands);
        }
        ASSERT_FALSE(HasFailure());
    }
}

} // namespace
