#include "frame/faults.h"
#include "store/store.h"
#include "support/document.h"
#include "support/system.h"
#include "support/textdc.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

using NODES = std::vector<NODEVALUE>;

/* The sample table over a view with a buffer of its own, which the table takes over. */
struct SAMPLE {
    PATHTBL *table = nullptr;
    COORDSTRUCT view = {};
    tagRECT dirty = {1, 2, 3, 4};
    TEXTDC text = TextDcMake("DejaVu Sans", 20);

    explicit SAMPLE(bool withWindow = true)
    {
        view.right = 400;
        view.bottom = 300;
        view.zoom = 1;
        view.displayBuffer = DisplayBufferAlloc(400, 300);
        SetWindowContext(withWindow ? text.dc : nullptr);
        EXPECT_EQ(AddPathTest(&table, &view, &dirty), &table);
    }
    ~SAMPLE()
    {
        SetWindowContext(nullptr);
        if (!table) BufFree(view.displayBuffer);
        ZrPathTblDelete(table);
        TextDcFree(&text);
    }
    PATHREC *Path(uint32_t group) const
    {
        return table->groups[group].activePath;
    }
};

} // namespace

TEST(Sample, SixGroupsInOneBlockTheSecondCurrent)
{
    const SAMPLE sample;
    EXPECT_EQ(sample.table->groupCount, 6u);
    EXPECT_EQ(sample.table->currentGroup, 1u);
    EXPECT_EQ(sample.table->version, 0x10000u);
    EXPECT_EQ(PathHeapSize(PathHeap(), 0, sample.table), TableBlockSize(6));
    EXPECT_EQ(sample.table->lpDB, sample.view.displayBuffer);
    const char *const names[] = {"Single Bezier", "Sandpiper", "Two Ellipse", "Star", "Rectangles", "FontABC"};
    for (uint32_t i = 0; i < 6; i++) {
        EXPECT_STREQ(sample.table->groups[i].name, names[i]);
        EXPECT_EQ(sample.table->groups[i].index, i);
        EXPECT_EQ(sample.table->groups[i].selectedPath, nullptr);
    }
}

TEST(Sample, TheGroupsWithoutText)
{
    const SAMPLE sample;
    EXPECT_EQ(
        NodesOf(sample.Path(0)),
        (NODES{{6, 50, 0}, {2, 150, 50}, {2, 0, 50}, {2, 100, 0}, {6, 50, 0}, {4, 150, 50}, {4, 0, 50}, {4, 100, 0}}));
    const PATHREC *first = sample.Path(2);
    const PATHREC *second = first->nextPath;
    EXPECT_EQ(first->nextJoin, second);
    EXPECT_EQ(second->prevJoin, first);
    const double turn = static_cast<ZRFIXED>(0.5235987 * 65536) / 65536.0;
    EXPECT_EQ(NodesOf(first), (NODES{{6, 200, 200}, {0x100, 700, 600}, {0, -turn, 0}}));
    EXPECT_EQ(NodesOf(second), (NODES{{6, 200, 200}, {0x101, 700, 600}, {0, turn, 0}}));
    EXPECT_EQ(first->flags, 0u);
    EXPECT_EQ(NodesOf(sample.Path(3)), (NODES{{6, 100, 100}, {0x200, 5, 60}, {0x200, 80, 0}}));
    EXPECT_EQ(NodesOf(sample.Path(4)), (NODES{{6, 10, 10}, {0x200, 150, 130}}));
    EXPECT_EQ(NodesOf(sample.Path(4)->nextJoin), (NODES{{6, 30, 30}, {0x200, 110, 90}}));
}

TEST(Sample, TheTextGroupsAreWarpedAndPlaced)
{
    const SAMPLE sample;
    if (!sample.Path(1)) GTEST_SKIP() << "a build without fonts";
    for (const uint32_t group : {1u, 5u}) {
        tagRECT box;
        ASSERT_EQ(ZrPathGetRealRect(sample.Path(group), fixedOne, &box), 1) << group;
        EXPECT_EQ(box.left, 5) << group;
        EXPECT_EQ(box.top, 5) << group;
        EXPECT_EQ(sample.Path(group)->nextJoin, sample.Path(group)->nextPath) << group;
    }
    tagRECT box;
    ZrPathGetRealRect(sample.Path(1), fixedOne, &box);
    EXPECT_NEAR(box.right - box.left, 300, 30) << "the frame is 300 wide";
    EXPECT_GE(box.bottom - box.top, 150);
    uint32_t contours = 0;
    for (const PATHREC *record = sample.Path(1); record; record = record->nextPath) contours++;
    EXPECT_EQ(contours, 14u) << "nine letters, and an inner contour in each A, D, P and R";
}

TEST(Sample, TheTextsAreThoseOfTheirFonts)
{
    const SAMPLE sample;
    if (!sample.Path(1)) GTEST_SKIP() << "a build without fonts";
    constexpr ZRFIXED one = 65536;
    constexpr ZRPOINTFX frame[] = {{0, 150 * one},         {100 * one, 0},        {200 * one, 0},
                                   {300 * one, 150 * one}, {0, 200 * one},        {100 * one, 350 * one},
                                   {200 * one, 350 * one}, {300 * one, 200 * one}};
    const struct {
        uint32_t group;
        const char *text, *family;
        DWORD charSet;
        const ZRPOINTFX *frame;
    } cases[] = {{1, "SANDPIPER", "Times New Roman", ANSI_CHARSET, frame},
                 {5, "efgh", "Monotype Sorts", SYMBOL_CHARSET, nullptr}};
    for (const auto &c : cases) {
        TEXTDC dc = TextDcMake(c.family, 100, 0, c.charSet);
        std::string text = c.text;
        TEXTPARAM param = {};
        param.output = 1021;
        PATHREC *want = nullptr;
        RECT place;
        ZrPathCreateText(dc.dc, text.data(), &param, &want, &place);
        if (c.frame) ZrPathBiCubic(want, c.frame);
        ZrPathOffset(want, 0, 0);
        const PATHREC *got = sample.Path(c.group);
        for (const PATHREC *record = want; record; record = record->nextPath, got = got->nextPath) {
            ASSERT_NE(got, nullptr);
            EXPECT_EQ(NodesOf(got), NodesOf(record)) << c.text;
        }
        EXPECT_EQ(got, nullptr);
        ZrPathDeletePtr(want, 0);
        TextDcFree(&dc);
    }
}

TEST(Sample, TheCurrentGroupIsDrawn)
{
    const SAMPLE sample;
    if (!sample.Path(1)) GTEST_SKIP() << "a build without fonts";
    size_t touched = 0;
    for (int i = 0; i < 400 * 300; i++) touched += sample.view.displayBuffer[i] != 0;
    EXPECT_GT(touched, 500u);
    EXPECT_LE(sample.dirty.left, 5);
    EXPECT_GT(sample.dirty.right, 250);
}

TEST(Sample, WithoutAForegroundWindowTheTextGroupsAreEmpty)
{
    const SAMPLE sample(false);
    EXPECT_EQ(sample.Path(1), nullptr);
    EXPECT_EQ(sample.Path(5), nullptr);
    EXPECT_NE(sample.Path(2), nullptr);
    EXPECT_EQ(sample.dirty.left, 1) << "nothing was drawn";
}

TEST(Sample, TheWindowsContextAndItsFontAreGivenBack)
{
    SAMPLE(); /* what the system keeps from the first time on */
    const int32_t objects = ObjectCount();
    {
        const SAMPLE sample;
        EXPECT_EQ(WindowContextsOut(), 0);
        EXPECT_EQ(SelectObject(sample.text.dc, sample.text.font), sample.text.font);
    }
    EXPECT_EQ(ObjectCount(), objects);
}

TEST(Sample, NullIsSafe)
{
    EXPECT_EQ(AddPathTest(nullptr, nullptr, nullptr), nullptr);
    PATHTBL *table = nullptr;
    EXPECT_EQ(AddPathTest(&table, nullptr, nullptr), &table);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->lpDB, nullptr);
    ZrPathTblDelete(table);
}

TEST(Sample, EveryFailedAllocationLeavesATableOrNone)
{
    for (const ALLOCATOR allocator : {ALLOC_PATHHEAP, ALLOC_BUF}) {
        for (int64_t n = 1; n < 400; n++) {
            const int64_t live[] = {FaultLiveBlocks(ALLOC_PATHHEAP), FaultLiveBlocks(ALLOC_BUF)};
            int struck;
            {
                PATHTBL *table = nullptr;
                FaultSet(allocator, n);
                AddPathTest(&table, nullptr, nullptr);
                struck = FaultStruck();
                FaultSet(allocator, 0);
                EXPECT_EQ(table == nullptr, allocator == ALLOC_PATHHEAP && n == 1);
                ZrPathTblDelete(table);
            }
            EXPECT_EQ(FaultLiveBlocks(ALLOC_PATHHEAP), live[0]);
            EXPECT_EQ(FaultLiveBlocks(ALLOC_BUF), live[1]);
            if (!struck) break;
        }
    }
}
