/* soak_test.cpp - a long life: an editor that opens, edits, renders and closes documents, round after round.
 *
 * Twenty documents are open at a time, as many as there are undo lists; a round closes the oldest and opens a new one
 * under a key that no document has had. What a round does follows from its number alone. Every tenth of the rounds all
 * documents are closed: then no block is left, and each of the twenty undo lists is free for another key.
 * ZR32_SOAK_ROUNDS=N, set by ./run soak, makes it N rounds and prints how long each tenth took and what the process
 * holds: no figure of time is a test.
 */
#include "frame/faults.h"
#include "render3d/scene.h"
#include "support/document.h"
#include "support/pendriver.h"
#include "support/randompath.h"
#include "support/textdc.h"
#include "support/tinyfont.h"
#include "support/undolists.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <fstream>
#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr size_t openAtOnce = 20;
constexpr int32_t width = 72;
constexpr int32_t height = 56;

/* An open document; key 0 is none. */
struct OPEN {
    int32_t key;
    PATHTBL *table;
    COORDSTRUCT *view;
};

struct EDITOR {
    std::deque<OPEN> documents;
    CANVAS canvas = CANVAS(width, height);
    TEXTDC text = {};
    PATHBUF image = ZrPathBufAlloc(24, width, height);
    PATHBUF alpha = ZrPathBufAlloc(8, width, height);
    RECT dirty = {};

    EDITOR()
    {
#if defined(ZR32_TEST_FONTS)
        text = TextDcMake(InstalledTinyFont(), 20);
#endif
    }

    ~EDITOR()
    {
        ZrPathBufFree(image);
        ZrPathBufFree(alpha);
        if (text.dc) TextDcFree(&text);
    }

    EDITOR(const EDITOR &) = delete;
    EDITOR &operator=(const EDITOR &) = delete;
};

PATHREC *Active(const OPEN &doc)
{
    PATHREC *path = nullptr;
    ZrPathFind(doc.table, nullptr, &path, nullptr, nullptr);
    return path;
}

PATHREC *Selected(const OPEN &doc)
{
    PATHREC *path = nullptr;
    ZrPathFind(doc.table, nullptr, nullptr, &path, nullptr);
    return path;
}

/* ---- what an editor does ---- */

PATHREC *Text(EDITOR *e)
{
    char text[] = "AO\nQ";
    TEXTPARAM param = {};
    param.underline = 1;
    PATHREC *path = nullptr;
    RECT rect;
    ZrPathBufFree(ZrPathCreateText(e->text.dc, text, &param, &path, &rect));
    return path;
}

OPEN Open(EDITOR *e, int32_t key, RANDOM *random)
{
    OPEN doc = {key, nullptr, nullptr};
    ZrPathCoordStruct(0, 0, width, height, 0, 0, 1, nullptr, &doc.view);
    PATHREC *path = nullptr;
    const RECT drag = {Pick(*random, 2, 20), Pick(*random, 2, 20), Pick(*random, 40, 70), Pick(*random, 30, 54)};
    if (Pick(*random, 0, 3) == 0) path = Text(e);
    if (!path) ZrPathGetPrimitive(Pick(*random, 1, 6), nullptr, &path, doc.view, 0, 0, &drag);
    EXPECT_EQ(1, ZrPathAddPathGroup(&doc.table, path, "document", doc.view, &e->dirty));
    ZrPathAllPathSelected(path);
    ZrPathAssignSelectedPath(doc.table, path);
    return doc;
}

void Close(const OPEN &doc)
{
    int32_t left = 1000;
    while (ZrPathURFree(doc.key, 0, 0) && UndoLength(doc.key) > 0 && left > 0) left--;
    EXPECT_GT(left, 0) << "the undo list of document " << doc.key << " does not empty";
    ZrPathDeleteCoordStruct(doc.view);
    ZrPathTblDelete(doc.table);
}

void Edit(EDITOR *e, const OPEN &doc, RANDOM *random)
{
    PATHREC *selected = Selected(doc);
    switch (Pick(*random, 0, 7)) {
    case 0:
        ZrPathBackupAction(doc.key, UR_MOVE, doc.table);
        ZrPathHideSelected(doc.view, selected, &e->dirty);
        ZrPathMovePaths(selected, doc.view, Pick(*random, -4, 4), Pick(*random, -4, 4));
        ZrPathDrawSelected(doc.view, selected, &e->dirty);
        break;
    case 1: {
        PATHREC *hit = Active(doc);
        ZrPathBackupAction(doc.key, UR_SELECTION, doc.table);
        ZrPathPtOn(Pick(*random, 0, width), Pick(*random, 0, height), ZRPICK_REPLACE, e->canvas.dc, doc.view, doc.table,
                   &hit, nullptr, nullptr);
        ZrPathAssignSelectedPath(doc.table, nullptr);
        ZrPathAssignSelectedPathBlindly(doc.table, Active(doc));
        break;
    }
    case 2:
        ZrPathBackupAction(doc.key, UR_JOIN, doc.table);
        ZrPathJoin(selected);
        break;
    case 3: ZrPathDuplicate(e->canvas.dc, doc.table, doc.view, &e->dirty); break;
    case 4: {
        const RECT drag = {4, 6, Pick(*random, 20, 70), Pick(*random, 20, 50)};
        ZrPathAddPrimitive(e->canvas.dc, Pick(*random, 1, 5), nullptr, doc.table, doc.view, 0, 0, &drag);
        break;
    }
    case 5:
        ZrPathBackupAction(doc.key, UR_SELECTION, doc.table);
        ZrPathRectClip(0, 0, Pick(*random, 10, width), height, doc.table, e->canvas.dc, doc.view,
                       ZRCLIP_OUTLINE | ZRCLIP_DESELECT);
        ZrPathAssignSelectedPath(doc.table, nullptr);
        ZrPathAssignSelectedPathBlindly(doc.table, Active(doc));
        break;
    case 6: {
        PENDRIVER pen(doc.table, doc.view, e->canvas.dc);
        pen.Click(5, 5);
        pen.Drag(Pick(*random, 20, 60), 10, 60, 20);
        pen.Click(30, Pick(*random, 30, 50));
        pen.DoubleClick(6, 6);
        break;
    }
    default:
        if (selected && selected->nextPath) ZrPathDelete(doc.table, doc.view, &e->dirty);
        break;
    }
}

/* Back and forth along what the list holds; the record under a step tells its context. */
void Step(EDITOR *e, const OPEN &doc, RANDOM *random)
{
    for (int i = Pick(*random, 1, 4); i > 0; i--) {
        /* every kind takes a null context */
        if (Pick(*random, 0, 2))
            ZrPathUndo(doc.key, doc.table, doc.view, nullptr);
        else
            ZrPathRedo(doc.key, doc.table, doc.view, nullptr);
        ZrPathAssignSelectedPath(doc.table, nullptr);
        ZrPathAssignSelectedPathBlindly(doc.table, Active(doc));
    }
    ZrPathDraw(doc.view, Active(doc), &e->dirty);
}

/* Out to a stream and in again; both streams are as large. */
void SaveAndLoad(const OPEN &doc)
{
    uint32_t size = 0, sizeAgain = 0;
    void *stream = nullptr, *again = nullptr;
    PATHREC *read = nullptr;
    if (!Active(doc)) return; /* everything was deleted */
    EXPECT_EQ(1, ZrPathFlatten(Active(doc), &size, &stream));
    EXPECT_EQ(1, ZrPathUnFlatten(&stream, &read));
    EXPECT_EQ(1, ZrPathFlatten(read, &sizeAgain, &again));
    EXPECT_EQ(size, sizeAgain);
    ZrPathDeletePtr(read, 0);
    GlobalBlockFree(stream);
    GlobalBlockFree(again);
}

/* The road of a bevel: mask, surface, light. */
void Shade(EDITOR *e, RANDOM *random)
{
    SCENE scene = MakeScene(MakeCircle(30, 27, Pick(*random, 10, 20)), 6, width, height);
    PATHBUF dist = reinterpret_cast<PATHBUF>(1), offset = reinterpret_cast<PATHBUF>(1);
    double reach = 6;
    const int exact = Pick(*random, 0, 1);
    ZrPathVMap(scene.path, &dist, &offset, 0, 0, 0, 0, 0, &reach, 0, !exact, exact ? nullptr : scene.cover, nullptr,
               0x10000);
    ZrPathShadePhong(e->image, 6, Pick(*random, 0, 1), 0, 0, 0, dist, offset, 0, scene.cover, nullptr, 0, 0, 0, -0.577,
                     -0.577, 0.577, 0, 0, 0, nullptr);
    ZrPathBumpIt(0, 6, offset, e->alpha, 0, 0, 0, e->alpha, 0, scene.cover, nullptr);
    ZrPathBufFree(dist);
    ZrPathBufFree(offset);
    if (Pick(*random, 0, 3) == 0) {
        Turn(&scene, {0, 1, 0}, Pick(*random, 0, 40));
        EXPECT_EQ(1, Render(&scene, {6, 0, 1, 0, 0}, nullptr));
    }
    SceneFree(&scene);
}

void Round(EDITOR *e, int64_t number)
{
    RANDOM random(static_cast<unsigned>(number));
    if (e->documents.size() == openAtOnce) {
        Close(e->documents.front());
        e->documents.pop_front();
    }
    e->documents.push_back(Open(e, static_cast<int32_t>(number + 1), &random));
    for (int i = 0; i < 6; i++) {
        const OPEN &doc = e->documents[static_cast<size_t>(Pick(random, 0, static_cast<int>(e->documents.size()) - 1))];
        Edit(e, doc, &random);
        if (i % 2) Step(e, doc, &random);
    }
    const OPEN &doc = e->documents.back();
    SaveAndLoad(doc);
    if (number % 4 == 0) {
        ZrPathCropDB(doc.table, width / 2, height / 2);
        EXPECT_EQ(1, ZrPathNewCoordStruct(0, 0, width, height, 0, 0, 1, 0, doc.table, &e->documents.back().view));
    }
    if (number % 8 == 0) Shade(e, &random);
}

void CloseAll(EDITOR *e)
{
    for (const OPEN &doc : e->documents) Close(doc);
    e->documents.clear();
}

/* Twenty keys that were never used each get a list of their own. */
void ExpectAllListsFree()
{
    for (int32_t key = -1; key >= -20; key--) ZrPathBackupAction(key, UR_JOIN, nullptr);
    for (int32_t key = -1; key >= -20; key--) {
        EXPECT_EQ(1, ZrPathUndo(key, nullptr, nullptr, nullptr)) << "list " << -key << " was taken";
        ZrPathURFree(key, 0, 0);
    }
}

using LIVE = std::array<int64_t, ALLOC_COUNT>;

LIVE LiveNow()
{
    LIVE live;
    for (int k = 0; k < ALLOC_COUNT; k++) live[static_cast<size_t>(k)] = FaultLiveBlocks(static_cast<ALLOCATOR>(k));
    return live;
}

/* Pages that the process holds, in KiB; 0 where the system does not tell. */
long ResidentKiB()
{
    std::ifstream statm("/proc/self/statm");
    long total = 0, resident = 0;
    statm >> total >> resident;
    return resident * 4;
}

TEST(Soak, ALongLifeLeavesNoBlockAndNoUndoListBehind)
{
    const char *const asked = getenv("ZR32_SOAK_ROUNDS");
    const int64_t rounds = asked ? strtoll(asked, nullptr, 10) : 400;
    constexpr int64_t parts = 10;
    ZrPathInit();
    SurfaceHeapInit();
    ShadingGammaToMap();
    FreeAllUndo();
    EDITOR editor;
    const LIVE before = LiveNow();
    for (int64_t part = 0; part < parts && !HasFailure(); part++) {
        const clock_t start = clock();
        for (int64_t n = rounds * part / parts; n < rounds * (part + 1) / parts && !HasFailure(); n++)
            Round(&editor, n);
        CloseAll(&editor);
        EXPECT_EQ(before, LiveNow());
        ExpectAllListsFree();
        EXPECT_EQ(before, LiveNow());
        if (asked)
            printf("%10lld rounds: %7.2f s of the processor, %ld KiB resident\n",
                   static_cast<long long>(rounds * (part + 1) / parts),
                   static_cast<double>(clock() - start) / CLOCKS_PER_SEC, ResidentKiB());
    }
}

} // namespace
