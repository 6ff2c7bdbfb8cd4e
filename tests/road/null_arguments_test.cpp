/* null_arguments_test.cpp - exports that need several addresses, each address null in turn.
 *
 * Every export refuses a null alone: no other argument saves it. A row calls it with one address null and tells the
 * result; the row's last form has all of them and shows that the null was to blame.
 */
#include "frame/faults.h"
#include "frame/frame.h"
#include "support/document.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

constexpr int32_t noResult = 0;

struct ROW {
    const char *name;
    int addresses;
    int32_t refused;
    int32_t done;
    int32_t (*call)(int null); /* the how manieth address is null; -1 none */
};

template <typename TYPE> TYPE *Unless(int null, int which, TYPE *address)
{
    return null == which ? nullptr : address;
}

const ROW rows[] = {
    {"ZrPathAddPoint", 3, 0, 1,
     [](int null) {
         const ZRPOINTFX point = {65536, 65536};
         PATHREC *path = ZrPathCreate();
         PATHREC *none = nullptr;
         const int32_t result =
             ZrPathAddPoint(null == 1 ? &none : Unless(null, 0, &path), Unless(null, 2, &point), PATHNODE_START);
         EXPECT_EQ(null == -1, path->nodeCount == 1);
         ZrPathDeletePtr(path, 0);
         return result;
     }},
    {"ZrPathFlatten", 3, 0, 1,
     [](int null) {
         PATHREC *path = MakeBox(0, 0, 10, 10);
         uint32_t size = 0;
         void *stream = nullptr;
         const int32_t result = ZrPathFlatten(Unless(null, 0, path), Unless(null, 1, &size), Unless(null, 2, &stream));
         GlobalBlockFree(stream);
         ZrPathDeletePtr(path, 0);
         return result;
     }},
    {"ZrPathUnFlatten", 3, 0, 1,
     [](int null) {
         PATHREC *path = MakeBox(0, 0, 10, 10);
         PATHREC *read = nullptr;
         uint32_t size = 0;
         void *stream = nullptr;
         void *none = nullptr;
         ZrPathFlatten(path, &size, &stream);
         const int32_t result = ZrPathUnFlatten(null == 1 ? &none : Unless(null, 0, &stream), Unless(null, 2, &read));
         ZrPathDeletePtr(read, 0);
         GlobalBlockFree(stream);
         ZrPathDeletePtr(path, 0);
         return result;
     }},
    {"ZrPathGetMiniMaxRect", 2, 0, 1,
     [](int null) {
         PATHREC *path = MakeBox(0, 0, 10, 10);
         RECT rect;
         const int32_t result = ZrPathGetMiniMaxRect(Unless(null, 0, path), 65536, Unless(null, 1, &rect));
         ZrPathDeletePtr(path, 0);
         return result;
     }},
    {"ZrPathChainPaths", 2, 0, 1,
     [](int null) {
         PATHREC *path = MakeBox(0, 0, 10, 10);
         PATHREC *chain = nullptr;
         const int32_t result = ZrPathChainPaths(Unless(null, 0, &chain), Unless(null, 1, path));
         ZrPathDeletePtr(path, 0);
         return result;
     }},
    {"ZrPathNewCoordStruct", 2, 0, 1,
     [](int null) {
         PATHTBL *table = nullptr;
         COORDSTRUCT *view = nullptr;
         ZrPathNew(&table);
         const int32_t result =
             ZrPathNewCoordStruct(0, 0, 9, 9, 0, 0, 1, 0, Unless(null, 0, table), Unless(null, 1, &view));
         ZrPathTblDelete(table);
         ZrPathDeleteCoordStruct(view);
         return result;
     }},
    {"ZrPathDuplicatePtr", 2, 0, 1,
     [](int null) {
         PATHREC *path = MakeBox(0, 0, 10, 10);
         PATHREC *copy = nullptr;
         const int32_t result = ZrPathDuplicatePtr(Unless(null, 0, path), Unless(null, 1, &copy));
         ZrPathDeletePtr(copy, 0);
         ZrPathDeletePtr(path, 0);
         return result;
     }},
    {"ZrPathGetPrimitive", 3, 0, 1,
     [](int null) {
         COORDSTRUCT view = {};
         view.right = view.bottom = 50;
         view.zoom = 1;
         const RECT drag = {5, 5, 20, 20};
         PATHREC *path = nullptr;
         const int32_t result = ZrPathGetPrimitive(ZRPRIM_BAR, nullptr, Unless(null, 0, &path), Unless(null, 1, &view),
                                                   0, 0, Unless(null, 2, &drag));
         ZrPathDeletePtr(path, 0);
         return result;
     }},
    {"ZrPathToBuf", 3, 0, 1,
     [](int null) {
         PATHREC *path = MakeBox(0, 0, 10, 10);
         RECT *rects = nullptr;
         PATHBUF *bufs = nullptr;
         const int32_t result =
             ZrPathToBuf(Unless(null, 0, path), 8, 0, 1, 0, 65536, Unless(null, 1, &rects), Unless(null, 2, &bufs), 0);
         if (bufs) ZrPathBufFree(bufs[0]);
         GlobalBlockFree(bufs);
         GlobalBlockFree(rects);
         ZrPathDeletePtr(path, 0);
         return result;
     }},
    {"ZrPathBufGetWHU", 4, 0, 1,
     [](int null) {
         PATHBUF buf = ZrPathBufAlloc(8, 3, 4);
         int32_t w = 7, h = 7, bits = 7;
         const int32_t result =
             ZrPathBufGetWHU(Unless(null, 0, buf), Unless(null, 1, &w), Unless(null, 2, &h), Unless(null, 3, &bits));
         EXPECT_EQ(result ? 3 : 7, w);
         ZrPathBufFree(buf);
         return result;
     }},
    {"ZrPathBufLock1", 2, 0, 1,
     [](int null) {
         PATHBUF buf = ZrPathBufAlloc(8, 3, 4);
         PATHBUFLOCK lock;
         const int32_t result = ZrPathBufLock1(Unless(null, 0, buf), 0, 0, 0, Unless(null, 1, &lock));
         ZrPathBufFree(buf);
         return result;
     }},
    {"ZrPathAdjPhongIllum", 3, 0, 1,
     [](int null) {
         const int32_t four[4] = {10, 10, 10, 10};
         const uint32_t colours[4] = {0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF};
         return ZrPathAdjPhongIllum(Unless(null, 0, four), Unless(null, 1, four), 0, Unless(null, 2, colours), 1, 20);
     }},
    {"ZrPathAdjMetallicIllum", 2, 0, 1,
     [](int null) {
         const int32_t four[4] = {10, 10, 10, 10};
         return ZrPathAdjMetallicIllum(Unless(null, 0, four), Unless(null, 1, four), 1, 20);
     }},
    {"ZrpathChangeLightNormal", 3, 1, 1,
     [](int null) {
         const SURFVEC16 row[1] = {{512, 0, 0, 0}};
         const int32_t column = 0;
         double normal[3] = {7, 7, 7};
         const int32_t result = ZrpathChangeLightNormal(9, 0, 0, 0, Unless(null, 0, &column), 0, Unless(null, 1, row),
                                                        0, 0, Unless(null, 2, normal));
         EXPECT_EQ(null == -1, normal[0] != 7);
         return result;
     }},
    {"AddRotation", 2, 0, 1,
     [](int null) {
         tagPOINT3D axis = {7, 7, 7};
         double angle = 7;
         const int32_t result =
             AddRotation({1, 0, 0}, 10, {0, 1, 0}, 20, Unless(null, 0, &axis), Unless(null, 1, &angle));
         EXPECT_EQ(null == -1, axis.x != 7 && angle != 7);
         return result;
     }},
    {"VThitaGetMatrix", 2, noResult, noResult,
     [](int null) {
         const tagPOINT3D axis = {0, 0, 1};
         tagMATRIX3D matrix = {{7, 7, 7, 7, 7, 7, 7, 7, 7}};
         VThitaGetMatrix(1, 0, Unless(null, 0, &axis), Unless(null, 1, &matrix));
         EXPECT_EQ(null == -1, matrix.m[0] != 7);
         return noResult;
     }},
    {"RotatePoint3D", 2, noResult, noResult,
     [](int null) {
         tagPOINT3D point = {7, 7, 7};
         const tagMATRIX3D matrix = {{0, 1, 0, 1, 0, 0, 0, 0, 2}};
         RotatePoint3D(Unless(null, 0, &point), Unless(null, 1, &matrix));
         EXPECT_EQ(null == -1, point.z != 7);
         return noResult;
     }},
    {"ZrProject2DTO3D", 6, noResult, noResult,
     [](int null) {
         tagPOINTDB at = {7, 7};
         const RECT rect = {0, 0, 10, 10};
         const tagPOINT3D eye = {5, 5, 100}, shift = {5, 5, 0};
         const tagMATRIX3D matrix = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
         ZrProject2DTO3D(1, 2, Unless(null, 0, &at), Unless(null, 1, &rect), Unless(null, 2, &rect),
                         Unless(null, 3, &eye), Unless(null, 4, &shift), Unless(null, 5, &matrix));
         EXPECT_EQ(null == -1, at.x != 7);
         return noResult;
     }},
    {"ZrPathTo3D", 2, noResult, noResult,
     [](int null) {
         PATHREC *path = MakeBox(0, 0, 10, 10);
         path->primitive = 2;
         POINTFXMAT3D transform = {};
         transform.viewSize = 100;
         transform.viewAngle = 40;
         transform.matrix = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
         ZrPathTo3D(Unless(null, 0, path), Unless(null, 1, &transform));
         EXPECT_EQ(null == -1, path->primitive == 0);
         ZrPathDeletePtr(path, 0);
         return noResult;
     }},
};

TEST(NullArguments, EachAddressIsRefusedAlone)
{
    ZrPathInit();
    const int64_t live = FaultLiveBlocks(ALLOC_PATHHEAP) + FaultLiveBlocks(ALLOC_BUF) + FaultLiveBlocks(ALLOC_GLOBAL);
    for (const ROW &row : rows) {
        for (int null = 0; null < row.addresses; null++) {
            SCOPED_TRACE(std::string(row.name) + " without address " + std::to_string(null));
            EXPECT_EQ(row.refused, row.call(null));
        }
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.done, row.call(-1));
    }
    EXPECT_EQ(live, FaultLiveBlocks(ALLOC_PATHHEAP) + FaultLiveBlocks(ALLOC_BUF) + FaultLiveBlocks(ALLOC_GLOBAL));
}

TEST(NullArguments, QueriesLeaveOutWhatHasNoAddress)
{
    DOCUMENT doc;
    uint32_t count = 7;
    const char *name = "seven";
    ZrPathFindGroups(doc.table, nullptr);
    ZrPathFindGroups(nullptr, &count);
    EXPECT_EQ(0u, count);
    ZrPathFindGroupName(doc.table, 0, nullptr);
    ZrPathFindGroupName(nullptr, 0, &name);
    EXPECT_STREQ("seven", name);
    EXPECT_EQ(1, ZrPathCoordStruct(0, 0, 9, 9, 0, 0, 1, doc.table, nullptr));
    EXPECT_EQ(1, ZrPathScrollDB(doc.view, nullptr, 0, 3));
    EXPECT_EQ(3, doc.view->scrollY);
    EXPECT_EQ(1, ZrPathScrollDB(doc.view, nullptr, 3, 0));
    EXPECT_EQ(3, doc.view->scrollX);
}

} // namespace
