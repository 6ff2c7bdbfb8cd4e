/* stream_test.cpp - the flattened stream: its bytes, the way there and back, the older layout, broken streams. */
#include "frame/faults.h"
#include "store/store.h"
#include "support/shapes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using namespace zr32;
using zr32test::MakePath;

namespace {

using BYTES = std::vector<uint8_t>;

uint32_t Word(const BYTES &bytes, size_t at)
{
    return bytes.at(at) | uint32_t{bytes.at(at + 1)} << 8 | uint32_t{bytes.at(at + 2)} << 16 |
           uint32_t{bytes.at(at + 3)} << 24;
}

void SetWord(BYTES *bytes, size_t at, uint32_t value)
{
    for (size_t i = 0; i < 4; i++) bytes->at(at + i) = static_cast<uint8_t>(value >> 8 * i & 0xFF);
}

void AddWord(BYTES *bytes, uint32_t value)
{
    bytes->resize(bytes->size() + 4);
    SetWord(bytes, bytes->size() - 4, value);
}

struct Stream : testing::Test {
    int64_t heapBefore = 0;
    int64_t globalBefore = 0;

    void SetUp() override
    {
        ZrPathInit();
        FaultSet(ALLOC_PATHHEAP, 0);
        FaultSet(ALLOC_GLOBAL, 0);
        heapBefore = FaultLiveBlocks(ALLOC_PATHHEAP);
        globalBefore = FaultLiveBlocks(ALLOC_GLOBAL);
    }

    void TearDown() override
    {
        FaultSet(ALLOC_PATHHEAP, 0);
        FaultSet(ALLOC_GLOBAL, 0);
        EXPECT_EQ(heapBefore, FaultLiveBlocks(ALLOC_PATHHEAP)) << "leak";
        EXPECT_EQ(globalBefore, FaultLiveBlocks(ALLOC_GLOBAL)) << "leak";
    }
};

BYTES Flatten(PATHREC *path)
{
    uint32_t size = 0;
    void *stream = nullptr;
    EXPECT_EQ(1, ZrPathFlatten(path, &size, &stream));
    if (!stream) return {};
    EXPECT_EQ(size, GlobalSize(stream));
    const uint8_t *bytes = static_cast<const uint8_t *>(stream);
    const BYTES copy(bytes, bytes + size);
    GlobalBlockFree(stream);
    return copy;
}

/* Reads a stream from a global block of exactly its size, so that a read beyond it is found. */
int UnFlatten(const BYTES &bytes, PATHREC **path)
{
    void *block = GlobalBlockAlloc(bytes.size());
    std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t *>(block));
    const int result = ZrPathUnFlatten(&block, path);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), static_cast<uint8_t *>(block))) << "the stream is unchanged";
    GlobalBlockFree(block);
    return result;
}

std::vector<PATHREC *> ChainOf(PATHREC *head)
{
    std::vector<PATHREC *> chain;
    for (; head; head = head->nextPath) chain.push_back(head);
    return chain;
}

/* Where a link leads: the place in the chain, -1 for none, -2 for anything else. */
int PlaceOf(const std::vector<PATHREC *> &chain, const PATHREC *path)
{
    if (!path) return -1;
    const auto found = std::find(chain.begin(), chain.end(), path);
    return found == chain.end() ? -2 : static_cast<int>(found - chain.begin());
}

constexpr CHAINLINK allLinks[] = {&PATHREC::prevPath, &PATHREC::nextPath, &PATHREC::prevJoin,
                                  &PATHREC::nextJoin, &PATHREC::prevSel,  &PATHREC::nextSel};

void ExpectSameChains(PATHREC *a, PATHREC *b)
{
    const std::vector<PATHREC *> first = ChainOf(a);
    const std::vector<PATHREC *> second = ChainOf(b);
    ASSERT_EQ(first.size(), second.size());
    for (size_t i = 0; i < first.size(); i++) {
        EXPECT_EQ(PathHeapSize(PathHeap(), 0, first[i]), PathHeapSize(PathHeap(), 0, second[i]));
        EXPECT_EQ(769u, second[i]->streamTag);
        EXPECT_EQ(first[i]->flags, second[i]->flags);
        EXPECT_EQ(first[i]->primitive, second[i]->primitive);
        ASSERT_EQ(first[i]->nodeCount, second[i]->nodeCount);
        for (uint32_t k = 0; k < first[i]->nodeCount; k++) {
            EXPECT_EQ(+first[i]->nodes[k].type, +second[i]->nodes[k].type);
            EXPECT_EQ(+first[i]->nodes[k].x, +second[i]->nodes[k].x);
            EXPECT_EQ(+first[i]->nodes[k].y, +second[i]->nodes[k].y);
        }
        for (CHAINLINK link : allLinks) EXPECT_EQ(PlaceOf(first, first[i]->*link), PlaceOf(second, second[i]->*link));
    }
}

/* Bytes of an older blob for nodes at (index, -index). */
BYTES OlderBlob(const uint32_t (&links)[6], uint32_t flags, uint32_t nodeCount)
{
    BYTES blob;
    for (uint32_t link : links) AddWord(&blob, link);
    AddWord(&blob, nodeCount);
    AddWord(&blob, flags);
    for (uint32_t i = 0; i < nodeCount; i++) {
        blob.push_back(i == 0 ? 6 : 2);
        blob.push_back(0x80);
        AddWord(&blob, i);
        AddWord(&blob, 0 - i);
    }
    blob.push_back(0xEE);
    blob.push_back(0xEE);
    return blob;
}

BYTES StreamOf(const std::vector<uint32_t> &numbers, const std::vector<BYTES> &blobs)
{
    BYTES stream;
    AddWord(&stream, static_cast<uint32_t>(16 + 8 * numbers.size()));
    AddWord(&stream, 0);
    for (size_t i = 0; i < numbers.size(); i++) {
        AddWord(&stream, numbers[i]);
        AddWord(&stream, static_cast<uint32_t>(blobs[i].size()));
    }
    AddWord(&stream, 0);
    AddWord(&stream, 0);
    for (const BYTES &blob : blobs) stream.insert(stream.end(), blob.begin(), blob.end());
    return stream;
}

TEST_F(Stream, SingleRecordToTheByte)
{
    PATHREC *path = ZrPathCreate();
    const ZRPOINTFX points[] = {{0x00018000, -2}, {0x7FFFFFFF, INT32_MIN}};
    ZrPathAddPoint(&path, &points[0], 6);
    ZrPathAddPoint(&path, &points[1], 0x8003);
    path->flags = 0x88001000;
    path->primitive = -2;
    const BYTES stream = Flatten(path);
    EXPECT_EQ(769u, path->streamTag) << "the live record is marked";
    ASSERT_EQ(16u + 8u + 1042u, stream.size());
    BYTES want;
    for (uint32_t word : {24u, 0u, 1u, 1042u, 0u, 0u}) AddWord(&want, word);
    for (uint32_t word : {769u, 0u, 0u, 0u, 0u, 0u, 0u, 2u, 0x88001000u, 0xFFFFFFFEu}) AddWord(&want, word);
    const BYTES nodes = {0x06, 0x00, 0x00, 0x80, 0x01, 0x00, 0xFE, 0xFF, 0xFF, 0xFF,
                         0x03, 0x80, 0xFF, 0xFF, 0xFF, 0x7F, 0x00, 0x00, 0x00, 0x80};
    want.insert(want.end(), nodes.begin(), nodes.end());
    want.resize(stream.size(), 0);
    EXPECT_EQ(want, stream);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Stream, TailOfABlobIsZerosWhateverTheBlockHolds)
{
    PATHREC *path = ZrPathCreate();
    std::fill_n(reinterpret_cast<uint8_t *>(path->nodes), 1002, uint8_t{0xAA});
    path->nodeCount = 1;
    const BYTES stream = Flatten(path);
    EXPECT_EQ(0xAA, stream[24 + 49]);
    EXPECT_EQ(0, std::count_if(stream.begin() + 24 + 50, stream.end(), [](uint8_t byte) { return byte != 0; }));
    ZrPathDeletePtr(path, 0);
}

TEST_F(Stream, BlobSizesFollowTheCapacity)
{
    PATHREC *paths[] = {ZrPathCreate(), MakePath({{6, 0, 0}, {2, 1, 1}}), ZrPathCreate()};
    PATHNODE *node = nullptr;
    PathReserveNodes(&paths[2], &node, 101);
    std::fill_n(node, 101, PATHNODE{2, 0, 0});
    ZrPathChainZrPath(3, paths);
    const BYTES stream = Flatten(paths[1]);
    EXPECT_EQ(16u + 24u, Word(stream, 0));
    EXPECT_EQ(10u * 100 + 42, Word(stream, 12));
    EXPECT_EQ(10u * 2 + 42, Word(stream, 20));
    EXPECT_EQ(10u * 200 + 42, Word(stream, 28));
    EXPECT_EQ(0u, Word(stream, 32)) << "terminator";
    EXPECT_EQ(40u + 1042 + 62 + 2042, stream.size());
    ZrPathDeletePtr(paths[0], 0);
}

TEST_F(Stream, ThreeRecordsWithAJoinOverTheFirstTwoComeBack)
{
    PATHREC *paths[3];
    for (int i = 0; i < 3; i++) paths[i] = MakePath({{6, i + 0.5, 0}, {2, 1, i * 2.0}});
    for (int i = 0; i < 2; i++) ChainLink(tableChain, paths[i], paths[i + 1]);
    ChainLink(joinChain, paths[0], paths[1]);
    const BYTES stream = Flatten(paths[2]);
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(stream, &head));
    ASSERT_NE(nullptr, head);
    EXPECT_NE(paths[0], head);
    EXPECT_EQ(head->nextPath, head->nextJoin);
    EXPECT_EQ(head, head->nextPath->prevJoin);
    EXPECT_EQ(nullptr, head->nextPath->nextJoin);
    ExpectSameChains(paths[0], head);
    EXPECT_EQ(stream, Flatten(head)) << "and flatten to the same bytes";
    ZrPathDeletePtr(paths[0], 0);
    ZrPathDeletePtr(head, 0);
}

TEST_F(Stream, RandomChainsComeBackAndFlattenToTheSameBytes)
{
    std::mt19937 random(6);
    for (int round = 0; round < 200; round++) {
        std::vector<PATHREC *> paths(1 + random() % 12);
        for (PATHREC *&path : paths) {
            path = random() % 2 ? RecordAlloc(random() % 5) : ZrPathCreate();
            PATHNODE *node = nullptr;
            const uint32_t count = static_cast<uint32_t>(random() % 130);
            PathReserveNodes(&path, &node, count);
            for (uint32_t i = 0; i < count; i++)
                node[i] = {static_cast<uint16_t>(random()), static_cast<ZRFIXED>(random()),
                           static_cast<ZRFIXED>(random())};
            path->flags = static_cast<uint32_t>(random());
            path->primitive = static_cast<int32_t>(random() % 7);
            if (random() % 2) ZrPathPurge(&path);
        }
        for (size_t i = 1; i < paths.size(); i++) ChainLink(tableChain, paths[i - 1], paths[i]);
        for (const CHAIN &chain : {joinChain, selectedChain}) {
            PATHREC *last = nullptr;
            for (PATHREC *path : paths) {
                if (random() % 3 == 0) continue;
                if (last && random() % 4) ChainLink(chain, last, path);
                last = path;
            }
        }
        const BYTES stream = Flatten(paths[random() % paths.size()]);
        PATHREC *head = nullptr;
        ASSERT_EQ(1, UnFlatten(stream, &head));
        ExpectSameChains(paths[0], head);
        EXPECT_EQ(stream, Flatten(head));
        ZrPathDeletePtr(paths[0], 0);
        ZrPathDeletePtr(head, 0);
    }
}

TEST_F(Stream, LinksOutOfTheChainComeBackAsNone)
{
    PATHREC *paths[] = {MakePath({{6, 0, 0}}), MakePath({{6, 1, 1}})};
    PATHREC *outside = MakePath({{6, 2, 2}});
    ChainLink(tableChain, paths[0], paths[1]);
    paths[0]->nextJoin = outside;
    paths[0]->prevSel = outside;
    paths[1]->nextSel = outside;
    const BYTES stream = Flatten(paths[0]);
    EXPECT_NE(0u, Word(stream, 32 + 16));
    EXPECT_EQ(Word(stream, 32 + 16), Word(stream, 32 + 20)) << "equal links give equal values";
    EXPECT_NE(Word(stream, 8), Word(stream, 32 + 16));
    EXPECT_NE(Word(stream, 16), Word(stream, 32 + 16));
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(stream, &head));
    for (PATHREC *path : ChainOf(head)) {
        EXPECT_EQ(nullptr, path->nextJoin);
        EXPECT_EQ(nullptr, path->prevSel);
        EXPECT_EQ(nullptr, path->nextSel);
    }
    ZrPathDeletePtr(paths[0], 0);
    ZrPathDeletePtr(outside, 0);
    ZrPathDeletePtr(head, 0);
}

TEST_F(Stream, OlderLayoutIsUpgraded)
{
    const BYTES first = OlderBlob({0, 500, 0, 500, 0, 0}, 0x80000000, 3);
    const BYTES second = OlderBlob({400, 0, 400, 0, 0, 0}, 7, 2);
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(StreamOf({400, 500}, {first, second}), &head));
    const std::vector<PATHREC *> chain = ChainOf(head);
    ASSERT_EQ(2u, chain.size());
    EXPECT_EQ(769u, head->streamTag);
    EXPECT_EQ(0, head->primitive);
    EXPECT_EQ(0x80000000u, head->flags);
    EXPECT_EQ(3u, head->nodeCount);
    EXPECT_EQ(0x8006, +head->nodes[0].type);
    EXPECT_EQ(2, +head->nodes[2].x);
    EXPECT_EQ(-2, +head->nodes[2].y);
    EXPECT_EQ(RecordBlockSize(3), PathHeapSize(PathHeap(), 0, head)) << "8 bytes more on a 32-bit build";
    EXPECT_EQ(chain[1], head->nextJoin);
    EXPECT_EQ(head, chain[1]->prevJoin);
    ZrPathDeletePtr(head, 0);
}

TEST_F(Stream, OlderRecordOfItsHeaderAloneIsRead)
{
    BYTES blob = OlderBlob({0, 0, 0, 0, 0, 0}, 3, 0);
    blob.resize(32); /* without the spare bytes */
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(StreamOf({5}, {blob}), &head));
    EXPECT_EQ(0u, head->nodeCount);
    EXPECT_EQ(3u, head->flags);
    EXPECT_EQ(recordHeaderSize, PathHeapSize(PathHeap(), 0, head));
    ZrPathDeletePtr(head, 0);
}

TEST_F(Stream, BothLayoutsMayStandInOneStream)
{
    PATHREC *path = MakePath({{6, 1, 2}, {2, 3, 4}});
    path->primitive = 2;
    const BYTES flat = Flatten(path);
    const BYTES current(flat.begin() + 24, flat.end());
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(StreamOf({9, 8, 7}, {OlderBlob({0, 8, 0, 8, 0, 7}, 1, 1), current,
                                                OlderBlob({1, 0, 0, 0, 0, 0}, 0, 0)}),
                           &head));
    const std::vector<PATHREC *> chain = ChainOf(head);
    ASSERT_EQ(3u, chain.size());
    EXPECT_EQ(2, chain[1]->primitive);
    EXPECT_EQ(chain[1], chain[0]->nextJoin);
    EXPECT_EQ(chain[2], chain[0]->nextSel);
    EXPECT_EQ(chain[0], chain[2]->prevSel);
    ZrPathDeletePtr(head, 0);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Stream, OnlyForwardLinksAreMatched)
{
    struct {
        const char *name;
        uint32_t numbers[3];
        uint32_t nextSel[3];
        int wantNext[3];
        int wantPrev[3];
    } const cases[] = {
        {"in order", {10, 20, 30}, {20, 30, 0}, {1, 2, -1}, {-1, 0, 1}},
        {"backward is not repaired", {10, 20, 30}, {0, 10, 0}, {-1, -1, -1}, {-1, -1, -1}},
        {"the last record is not visited", {10, 20, 30}, {0, 0, 30}, {-1, -1, -1}, {-1, -1, -1}},
        {"first match from the record on", {10, 30, 30}, {30, 0, 0}, {1, -1, -1}, {-1, 0, -1}},
        {"a match in front is passed over", {30, 20, 30}, {0, 30, 0}, {-1, 2, -1}, {-1, -1, 1}},
        {"of two links to one record the later holds", {10, 20, 30}, {30, 30, 0}, {-1, 2, -1}, {-1, -1, 1}},
        {"nothing matches", {10, 20, 30}, {99, 98, 97}, {-1, -1, -1}, {-1, -1, -1}},
    };
    for (const auto &c : cases) {
        for (const int join : {0, 1}) {
            std::vector<BYTES> blobs;
            for (int i = 0; i < 3; i++) {
                const uint32_t link = c.nextSel[i];
                blobs.push_back(OlderBlob({0, 0, 0, join ? link : 0, 0, join ? 0 : link}, 0, 1));
            }
            PATHREC *head = nullptr;
            ASSERT_EQ(1, UnFlatten(StreamOf({c.numbers[0], c.numbers[1], c.numbers[2]}, blobs), &head)) << c.name;
            const std::vector<PATHREC *> chain = ChainOf(head);
            const CHAIN &asked = join ? joinChain : selectedChain;
            const CHAIN &other = join ? selectedChain : joinChain;
            for (size_t i = 0; i < 3; i++) {
                EXPECT_EQ(c.wantNext[i], PlaceOf(chain, chain[i]->*asked.next)) << c.name << i;
                EXPECT_EQ(c.wantPrev[i], PlaceOf(chain, chain[i]->*asked.prev)) << c.name << i;
                EXPECT_EQ(nullptr, chain[i]->*other.next) << c.name;
            }
            ZrPathDeletePtr(head, 0);
        }
    }
}

TEST_F(Stream, LoneRecordKeepsNoLinkThatMatchesNothing)
{
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(StreamOf({5}, {OlderBlob({1, 2, 3, 4, 5, 5}, 0, 1)}), &head));
    for (CHAINLINK link : allLinks) EXPECT_EQ(nullptr, head->*link);
    ZrPathDeletePtr(head, 0);
}

TEST_F(Stream, HeaderSizeAndNotTheCountSaysWhereTheBlobsBegin)
{
    BYTES stream = StreamOf({5}, {OlderBlob({0, 0, 0, 0, 0, 0}, 3, 2)});
    stream.insert(stream.begin() + 24, 12, uint8_t{0xCC});
    SetWord(&stream, 0, 36);
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(stream, &head));
    EXPECT_EQ(3u, head->flags);
    EXPECT_EQ(2u, head->nodeCount);
    ZrPathDeletePtr(head, 0);
}

TEST_F(Stream, EmptyIndexTableGivesNullAndOne)
{
    PATHREC *head = reinterpret_cast<PATHREC *>(8);
    EXPECT_EQ(1, UnFlatten(StreamOf({}, {}), &head));
    EXPECT_EQ(nullptr, head);
}

TEST_F(Stream, NullsAreRefusedAndNothingIsStored)
{
    uint32_t size = 77;
    void *stream = &size;
    EXPECT_EQ(0, ZrPathFlatten(nullptr, &size, &stream));
    EXPECT_EQ(77u, size);
    EXPECT_EQ(&size, stream);
    PATHREC *path = MakePath({{6, 0, 0}});
    EXPECT_EQ(0, ZrPathFlatten(path, nullptr, &stream));
    EXPECT_EQ(0, ZrPathFlatten(path, &size, nullptr));
    EXPECT_EQ(0u, path->streamTag);
    PATHREC *head = path;
    stream = nullptr;
    EXPECT_EQ(0, ZrPathUnFlatten(&stream, &head));
    EXPECT_EQ(0, ZrPathUnFlatten(nullptr, &head));
    EXPECT_EQ(path, head);
    ZrPathDeletePtr(path, 0);
}

TEST_F(Stream, StreamInMemoryOfTheCallersOwnIsRead)
{
    PATHREC *path = MakePath({{6, 1, 2}, {2, 3, 4}});
    BYTES bytes = Flatten(path);
    void *stream = bytes.data();
    PATHREC *head = nullptr;
    ASSERT_EQ(1, ZrPathUnFlatten(&stream, &head));
    ExpectSameChains(path, head);
    ZrPathDeletePtr(path, 0);
    ZrPathDeletePtr(head, 0);
}

TEST_F(Stream, WithoutMemoryTheSizeIsToldAndTheStreamIsNull)
{
    PATHREC *paths[] = {ZrPathCreate(), ZrPathCreate()};
    ZrPathChainZrPath(2, paths);
    for (int n = 1;; n++) {
        uint32_t size = 0;
        void *stream = paths;
        FaultSet(ALLOC_GLOBAL, n);
        const int done = ZrPathFlatten(paths[0], &size, &stream);
        EXPECT_EQ(32u + 2 * 1042, size);
        if (done) {
            EXPECT_GE(n, 2);
            GlobalBlockFree(stream);
            break;
        }
        EXPECT_EQ(nullptr, stream);
        EXPECT_EQ(0u, paths[0]->streamTag);
        EXPECT_EQ(globalBefore, FaultLiveBlocks(ALLOC_GLOBAL));
    }
    ZrPathDeletePtr(paths[0], 0);
}

TEST_F(Stream, ReadingWithoutMemoryLeavesNothingBehind)
{
    PATHREC *paths[] = {ZrPathCreate(), ZrPathCreate(), ZrPathCreate()};
    ZrPathChainZrPath(3, paths);
    uint32_t size = 0;
    void *stream = nullptr;
    ZrPathFlatten(paths[0], &size, &stream);
    ZrPathDeletePtr(paths[0], 0);
    const int64_t global = FaultLiveBlocks(ALLOC_GLOBAL);
    for (ALLOCATOR allocator : {ALLOC_PATHHEAP, ALLOC_GLOBAL}) {
        for (int n = 1;; n++) {
            PATHREC *head = nullptr;
            FaultSet(allocator, n);
            if (ZrPathUnFlatten(&stream, &head)) {
                EXPECT_GE(n, allocator == ALLOC_PATHHEAP ? 4 : 2);
                ZrPathDeletePtr(head, 0);
                break;
            }
            EXPECT_EQ(nullptr, head);
            EXPECT_EQ(heapBefore, FaultLiveBlocks(ALLOC_PATHHEAP));
            EXPECT_EQ(global, FaultLiveBlocks(ALLOC_GLOBAL));
        }
        FaultSet(allocator, 0);
    }
    GlobalBlockFree(stream);
}

TEST_F(Stream, PartsThatDoNotFitEachOtherAreRefused)
{
    const BYTES good = StreamOf({5, 6}, {OlderBlob({0, 6, 0, 6, 0, 6}, 3, 2), OlderBlob({5, 0, 5, 0, 5, 0}, 3, 2)});
    const struct {
        const char *name;
        size_t at;
        uint32_t value;
    } cases[] = {
        {"header size 0", 0, 0},
        {"header size inside the entries", 0, 24},
        {"header size that leaves no terminator", 0, 31},
        {"header size beyond the block", 0, 0xFFFFFFF0},
        {"first blob too short for a header", 12, 31},
        {"first blob beyond the block", 12, 0xFFFFFFFF},
        {"blob too short for its nodes", 12, 51},
        {"last blob one byte too long", 20, 55},
        {"too many nodes", 32 + 24, 3},
        {"a node count whose bytes do not fit 32 bits", 32 + 24, 429496731},
        {"current tag on a blob that is too short for it", 32, 769},
        {"no terminator", 24, 7},
        {"a record that is its own successor on the selected chain", 32 + 20, 5},
        {"a record that is its own successor on the join chain", 32 + 12, 5},
    };
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(good, &head));
    ZrPathDeletePtr(head, 0);
    for (const auto &c : cases) {
        BYTES bad = good;
        SetWord(&bad, c.at, c.value);
        head = nullptr;
        EXPECT_EQ(0, UnFlatten(bad, &head)) << c.name;
        EXPECT_EQ(nullptr, head) << c.name;
        if (head) ZrPathDeletePtr(head, 0);
    }
    for (size_t size = 0; size < good.size(); size++) {
        head = nullptr;
        const BYTES cut(good.begin(), good.begin() + static_cast<ptrdiff_t>(size));
        if (size == 0) continue; /* a block of no bytes tells no size */
        EXPECT_EQ(0, UnFlatten(cut, &head)) << "cut to " << size;
        if (head) ZrPathDeletePtr(head, 0);
    }
}

TEST_F(Stream, RandomDamageIsReadSafely)
{
    std::mt19937 random(7);
    PATHREC *paths[4];
    for (PATHREC *&path : paths) path = MakePath({{6, 1, 2}, {2, 3, 4}, {4, 1, 1}, {4, 2, 2}, {5, 1, 2}});
    ZrPathChainZrPath(4, paths);
    ChainLink(selectedChain, paths[1], paths[3]);
    const BYTES good = Flatten(paths[0]);
    ZrPathDeletePtr(paths[0], 0);
    int accepted = 0;
    for (int round = 0; round < 20000; round++) {
        BYTES bad = good;
        for (size_t hits = 1 + random() % 4; hits > 0; hits--) {
            if (random() % 2)
                bad[random() % (random() % 2 ? 48 : bad.size())] = static_cast<uint8_t>(random());
            else
                SetWord(&bad, random() % 24 * 4, static_cast<uint32_t>(random() % 2 ? random() % 64 : random()));
        }
        if (random() % 8 == 0) bad.resize(1 + random() % bad.size());
        PATHREC *head = nullptr;
        if (UnFlatten(bad, &head)) {
            accepted++;
            ChainOf(head);
            for (PATHREC *path : ChainOf(head))
                for (CHAINLINK link : {joinChain.next, selectedChain.next, joinChain.prev, selectedChain.prev})
                    for (PATHREC *at = path; at; at = at->*link) EXPECT_LE(at->nodeCount, RecordRoom(at));
            if (head) ZrPathDeletePtr(head, 0);
        } else {
            EXPECT_EQ(nullptr, head);
        }
        ASSERT_EQ(heapBefore, FaultLiveBlocks(ALLOC_PATHHEAP));
    }
    EXPECT_GT(accepted, 100);
    EXPECT_LT(accepted, 19900);
}

TEST_F(Stream, AHundredThousandJoinedRecordsAreReadInOneGo)
{
    std::vector<PATHREC *> paths(100000);
    for (PATHREC *&path : paths) path = RecordAlloc(0);
    ZrPathChainZrPath(static_cast<uint32_t>(paths.size()), paths.data());
    const BYTES stream = Flatten(paths[0]);
    PATHREC *head = nullptr;
    ASSERT_EQ(1, UnFlatten(stream, &head));
    size_t joined = 0;
    for (const PATHREC *path = head; path; path = path->nextJoin) joined++;
    EXPECT_EQ(paths.size(), joined);
    ZrPathDeletePtr(paths[0], 0);
    ZrPathDeletePtr(head, 0);
}

} // namespace
