/* Records that no builder makes, given to every edit: without nodes, of shapes alone, with coordinates at the ends of
 * the number range, with a segment cut short, of unknown kinds, beginning without a start. */
#include "edit/undo.h"
#include "support/document.h"
#include "support/pendriver.h"
#include "support/randompath.h"
#include "support/undolists.h"

#include <gtest/gtest.h>
#include <limits>

using namespace zr32;
using namespace zr32test;

namespace {

const struct {
    const char *name;
    std::vector<TESTNODE> nodes;
} badRecords[] = {
    {"no nodes", {}},
    {"one node", {{6, 1, 1}}},
    {"a marked start alone", {{0x8006, 1, 1}}},
    {"shapes alone", {{0x200, 1, 1}, {0x100, 2, 2}, {0, 0, 0}, {0x400, 3, 3}, {0, 0, 0}}},
    {"a shape cut short", {{6, 1, 1}, {0x100, 5, 5}}},
    {"a curve cut short", {{6, 1, 1}, {2, 3, 3}, {2, 4, 4}, {2, 5, 5}, {0x8004, 2, 2}, {4, 3, 3}}},
    {"unknown kinds", {{6, 1, 1}, {0, 0, 0}, {0x800, 1, 1}, {0xFFFF, 2, 2}, {0x8800, 3, 3}}},
    {"no start", {{0x8002, 1, 1}, {0x8004, 2, 2}, {4, 3, 3}, {4, 4, 4}, {0x8003, 5, 5}}},
    {"the ends of the number range",
     {{6, -32768, -32768}, {0x8002, 32767.9, -32768}, {0x8004, 32767, 32767}, {4, -32768, 32767}, {4, 0, 0}}},
};

constexpr ZRFIXED most = std::numeric_limits<ZRFIXED>::max();
constexpr ZRFIXED least = std::numeric_limits<ZRFIXED>::min();

/* Every edit once, on a record that is selected in one of the ways. */
void EditEverything(DOCUMENT &doc, PATHREC *path)
{
    CANVAS canvas(50, 50);
    tagRECT dirty;
    PATHREC *copy = nullptr;
    const ZRPOINTFX frame[8] = {{least, most}, {most, least},  {0, 0}, {most, most},
                                {1, 1},        {least, least}, {5, 5}, {most, 0}};
    ZRPOINTFX read[8];
    for (const int32_t action : {UR_SELECTION, UR_MOVE, UR_JOIN, UR_ENVELOPE}) ZrPathBackupAction(1, action, doc.table);
    ZrPathMovePaths(path, doc.view, 3, -3);
    ZrPathMovePathsByPtfx(path, most, least);
    ZrPathSize(path, -1e9, 0.5);
    ZrPathOffset(path, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min());
    ZrPathOffsetExact(path, -32768, 32767);
    ZrPathCenter(0, 18018, doc.table, doc.view, &dirty);
    ZrPathJoin(path);
    ZrPathDisjoin(path);
    ZrPathGetBiLinearEnvelope(path, read);
    ZrPathGetBiBezierEnvelope(path, read);
    if (ZrPathDuplicatePtr(path, &copy)) ZrPathDeletePtr(copy, 0);
    const RECT drag = {std::numeric_limits<int32_t>::min(), 0, std::numeric_limits<int32_t>::max(), 10};
    if (ZrPathGetPrimitive(1, path, &copy, doc.view, 0, 1, &drag)) ZrPathDeletePtr(copy, 0);
    ZrPathDuplicate(canvas.dc, doc.table, doc.view, &dirty);
    {
        PENDRIVER pen(doc.table, doc.view, canvas.dc);
        SetCapture(pen.window);
        pen.Drag(5, 5, 20, 20);
        pen.Esc(9, 9);
        pen.Click(30, 5);
        pen.DoubleClick(40, 40);
    }
    EXPECT_EQ(BrokenInvariant(doc).find("chain"), std::string::npos);
    for (int i = 0; i < 4; i++) {
        URLoad(1);
        const URRECORD *record = URRecordAt(undoNow.position);
        void *context = record && record->action != UR_SELECTION ? &dirty : nullptr;
        ZrPathUndo(1, doc.table, doc.view, context);
    }
    ZrPathBiLinear(path, frame);
    ZrPathBiCubic(path, frame);
    ZrPathBiCubicV(path, frame);
    ZrPathAddBiLinearEnvelope(path, frame);
    ZrPathAddBiBezierEnvelope(path, frame);
    ZrPathAssignSelectedPathBlindly(doc.table, doc.Active());
    ZrPathDelete(doc.table, doc.view, &dirty);
    ZrPathAllPathSelected(doc.Active());
    ZrPathAssignSelectedPath(doc.table, doc.Active());
    ZrPathDeleteLink(doc.table, doc.view, &dirty);
}

} // namespace

TEST(BadInput, EveryEditTakesEveryBadRecord)
{
    for (const auto &bad : badRecords)
        for (const uint32_t flags : {PATHREC_SELECTED, PATHREC_NODEEDIT, PATHREC_ENVELOPE})
            for (const int32_t zoom : {1, 3, -2}) {
                SCOPED_TRACE(bad.name);
                FreeAllUndo();
                DOCUMENT doc(50, 50, zoom);
                PATHREC *path = doc.Add(MakePath(bad.nodes));
                doc.Add(MakeBox(5, 5, 20, 20));
                doc.Select({path});
                path->flags = flags;
                doc.Draw();
                EditEverything(doc, path);
            }
    FreeAllUndo();
}

TEST(BadInput, DeletingNodesTakesEveryBadRecord)
{
    for (const auto &bad : badRecords) {
        DOCUMENT doc(50, 50);
        PATHREC *path = doc.Add(MakePath(bad.nodes));
        doc.Select({path});
        for (int i = 0; i < 6 && doc.Active(); i++) {
            path->flags = PATHREC_NODEEDIT;
            EXPECT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 1);
            EXPECT_LE(doc.Active() ? path->nodeCount : 0, bad.nodes.size()) << bad.name;
        }
    }
}

/* Records of up to fourteen nodes with any codes, some of them marked, in any order. */
TEST(BadInput, EveryEditTakesRandomCodes)
{
    constexpr uint16_t codes[] = {2, 2,     2,     3,     4,     4,      4,      5, 6,    6,
                                  7, 0x100, 0x101, 0x200, 0x400, 0x2004, 0x2005, 0, 0x800};
    for (unsigned seed = 0; seed < 100; seed++) {
        SCOPED_TRACE(seed);
        RANDOM random(seed);
        std::vector<TESTNODE> nodes;
        for (int count = Pick(random, 0, 14); count > 0; count--) {
            const uint16_t mark = Pick(random, 0, 1) ? PATHNODE_SELECTED : 0;
            const uint16_t code = codes[Pick(random, 0, static_cast<int>(std::size(codes)) - 1)];
            nodes.push_back(
                {static_cast<uint16_t>(code | mark), Pick(random, -20, 60) / 2.0, Pick(random, -20, 60) / 2.0});
        }
        FreeAllUndo();
        DOCUMENT doc(50, 50);
        PATHREC *path = doc.Add(MakePath(nodes));
        doc.Add(MakeBox(5, 5, 20, 20));
        doc.Select({path});
        path->flags = PATHREC_NODEEDIT;
        doc.Draw();
        POINT handles[12];
        ZrPathSelectedToView(doc.view, path, handles, 0);
        for (POINT &handle : handles) handle.x += Pick(random, -1, 1);
        ZrPathSelectedToView(doc.view, path, handles, 1);
        EditEverything(doc, path);
    }
    FreeAllUndo();
}

TEST(BadInput, DeletingNodesTakesEveryRecordOfFiveNodes)
{
    constexpr uint16_t codes[] = {2, 4, 6, 0x8002, 0x8004, 0x8006};
    DOCUMENT doc(50, 50);
    for (unsigned record = 0; record < 6 * 6 * 6 * 6 * 6; record++) {
        std::vector<TESTNODE> nodes;
        for (unsigned i = 0, rest = record; i < 5; i++, rest /= 6) nodes.push_back({codes[rest % 6], 5.0 * i, 5.0});
        PATHREC *path = doc.Add(MakePath(nodes));
        doc.Select({path});
        path->flags = PATHREC_NODEEDIT;
        ASSERT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 1);
        ASSERT_TRUE(path->nodeCount >= 1 && path->nodeCount <= 5) << record;
        path->nodeCount = 0;
        ASSERT_EQ(ZrPathDelete(doc.table, doc.view, nullptr), 1);
        ASSERT_EQ(doc.Active(), nullptr);
    }
}
