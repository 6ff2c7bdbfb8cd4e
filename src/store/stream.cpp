/* stream.cpp - a table chain as one block of bytes and back: the library's only persistent format.
 *
 * Every number is little-endian. The stream, n records in table chain order:
 *   0       headerSize   16 + 8 n, where the first blob begins
 *   4       0
 *   8       n entries    number of the record (not 0), size of its blob
 *   8 + 8n  0, 0         ends the entries
 *   16 + 8n n blobs      without gaps
 * A blob, and the older layout that is only read:
 *   0  streamTag 769     -
 *   4  six links         0    prevPath, nextPath, prevJoin, nextJoin, prevSel, nextSel
 *   28 nodeCount, flags  24
 *   36 primitive         -
 *   40 nodes             32   type (2), x (4), y (4) each, then zeros up to the room that the record's block has
 * A link is the number of the record that it leads to, 0 for none. The writer numbers the records from 1; a link that
 * leads out of the chain gets a number that no record has, and a number that no record has is read as no link.
 */
#include "store/store.h"

#include <algorithm>

namespace zr32 {

namespace {

constexpr uint32_t streamTagCurrent = 769;
constexpr uint32_t streamHeadSize = 16; /* around the entries */
constexpr uint32_t streamEntrySize = 8;
constexpr uint32_t blobHeaderSize = 40;
constexpr uint32_t olderHeaderSize = 32; /* without streamTag and primitive */
constexpr uint32_t linkOutside = 0xFFFFFFFF;

/* The links in the order in which a blob holds them. */
constexpr CHAINLINK blobLinks[] = {tableChain.prev, tableChain.next,    joinChain.prev,
                                   joinChain.next,  selectedChain.prev, selectedChain.next};

void Put16(uint8_t **at, uint32_t value)
{
    *(*at)++ = static_cast<uint8_t>(value & 0xFF);
    *(*at)++ = static_cast<uint8_t>(value >> 8 & 0xFF);
}

void Put32(uint8_t **at, uint32_t value)
{
    Put16(at, value);
    Put16(at, value >> 16);
}

uint32_t Get16(const uint8_t *at)
{
    return at[0] | static_cast<uint32_t>(at[1]) << 8;
}

uint32_t Get32(const uint8_t *at)
{
    return Get16(at) | Get16(at + 2) << 16;
}

/* ---- writing ---- */

/* A record's number is its place in the chain, counted from 1. Sorted by address, so that links find theirs. */
struct NUMBERED {
    uintptr_t address;
    uint32_t number;
};

uint32_t NumberOf(const NUMBERED *numbers, uint32_t count, const PATHREC *path)
{
    if (!path) return 0;
    const uintptr_t address = reinterpret_cast<uintptr_t>(path);
    const NUMBERED *found = std::lower_bound(numbers, numbers + count, address,
                                             [](const NUMBERED &a, uintptr_t b) { return a.address < b; });
    return found != numbers + count && found->address == address ? found->number : linkOutside;
}

/* Bytes of a record's block behind its header. */
size_t RecordBodySize(const PATHREC *path)
{
    const size_t size = PathHeapSize(PathHeap(), heapNoSerialize, path);
    return size < recordHeaderSize ? 0 : size - recordHeaderSize;
}

/* The zeros behind the nodes are there already. */
void BlobWrite(const PATHREC *path, const NUMBERED *numbers, uint32_t count, uint8_t *at)
{
    Put32(&at, streamTagCurrent);
    for (CHAINLINK link : blobLinks) Put32(&at, NumberOf(numbers, count, path->*link));
    Put32(&at, path->nodeCount);
    Put32(&at, path->flags);
    Put32(&at, static_cast<uint32_t>(path->primitive));
    const size_t nodes = std::min<size_t>(path->nodeCount, RecordBodySize(path) / sizeof(PATHNODE));
    for (const PATHNODE *node = path->nodes; node < path->nodes + nodes; node++) {
        Put16(&at, node->type);
        Put32(&at, static_cast<uint32_t>(node->x));
        Put32(&at, static_cast<uint32_t>(node->y));
    }
}

void StreamWrite(PATHREC *head, const NUMBERED *numbers, uint32_t count, uint8_t *stream)
{
    uint8_t *blob = stream + streamHeadSize + size_t{streamEntrySize} * count;
    uint8_t *at = stream;
    Put32(&at, streamHeadSize + streamEntrySize * count);
    Put32(&at, 0);
    uint32_t number = 0;
    for (PATHREC *path = head; path; path = path->nextPath) {
        const uint32_t size = static_cast<uint32_t>(blobHeaderSize + RecordBodySize(path));
        Put32(&at, ++number);
        Put32(&at, size);
        path->streamTag = streamTagCurrent;
        BlobWrite(path, numbers, count, blob);
        blob += size;
    }
}

/* ---- reading ---- */

/* A blob of either layout, taken apart. */
struct BLOB {
    const uint8_t *links; /* six numbers */
    const uint8_t *nodes;
    uint32_t nodeCount;
    uint32_t flags;
    int32_t primitive;
    uint32_t bodySize; /* bytes from the first node on */
};

/* The entry at a cursor with its blob. */
struct STREAMCURSOR {
    const uint8_t *stream;
    uint32_t headerSize;
    uint64_t available; /* bytes of the block */
    uint64_t entryAt;   /* offset of the next entry */
    uint64_t blobAt;    /* offset of its blob */
    uint32_t number;
    BLOB blob;
};

/* What is known of the records while a stream is read: by index, and their numbers in ascending order, equal ones by
 * index, for the search of links. */
struct READRECORD {
    PATHREC *record;
    uint32_t nextJoin;
    uint32_t nextSel;
};

struct NUMBEREDENTRY {
    uint32_t number;
    uint32_t index;
};

bool NumberBefore(const NUMBEREDENTRY &a, const NUMBEREDENTRY &b)
{
    return a.number != b.number ? a.number < b.number : a.index < b.index;
}

struct READING {
    uint32_t count;
    READRECORD *records;
    NUMBEREDENTRY *sorted;
};

/* 0 when the blob is too short for its header or its nodes. */
int BlobRead(const uint8_t *bytes, uint32_t size, BLOB *blob)
{
    if (size < olderHeaderSize) return 0;
    const int current = Get32(bytes) == streamTagCurrent;
    if (current && size < blobHeaderSize) return 0;
    blob->links = current ? bytes + 4 : bytes;
    blob->nodes = current ? bytes + blobHeaderSize : bytes + olderHeaderSize;
    blob->nodeCount = Get32(blob->links + 24);
    blob->flags = Get32(blob->links + 28);
    blob->primitive = current ? static_cast<int32_t>(Get32(blob->links + 32)) : 0;
    blob->bodySize = size - (current ? blobHeaderSize : olderHeaderSize);
    return blob->nodeCount <= blob->bodySize / sizeof(PATHNODE);
}

/* Begins with the first entry; 0 when the header does not fit the block. */
int CursorStart(const void *stream, STREAMCURSOR *cursor)
{
    const size_t size = GlobalSize(const_cast<void *>(stream));
    /* 0: not a block of the platform's, so nobody can tell */
    cursor->available = size == 0 ? UINT64_MAX : size;
    if (cursor->available < streamHeadSize) return 0;
    cursor->stream = static_cast<const uint8_t *>(stream);
    cursor->headerSize = Get32(cursor->stream);
    cursor->entryAt = 8;
    cursor->blobAt = cursor->headerSize;
    return cursor->headerSize >= streamHeadSize && cursor->headerSize <= cursor->available;
}

/* The next entry. 1; 0 at the terminator; -1 when the entry or its blob does not fit. */
int CursorNext(STREAMCURSOR *cursor)
{
    if (cursor->entryAt + streamEntrySize > cursor->headerSize) return -1;
    cursor->number = Get32(cursor->stream + cursor->entryAt);
    if (cursor->number == 0) return 0;
    const uint32_t size = Get32(cursor->stream + cursor->entryAt + 4);
    if (size > cursor->available - cursor->blobAt) return -1;
    if (!BlobRead(cursor->stream + cursor->blobAt, size, &cursor->blob)) return -1;
    cursor->entryAt += streamEntrySize;
    cursor->blobAt += size;
    return 1;
}

/* Counts the records and checks all that can be checked before anything is made. A record that is its own successor
 * fits no chain; the last record's forward links are never looked at. */
int StreamCheck(const void *stream, uint32_t *count)
{
    STREAMCURSOR cursor;
    if (!CursorStart(stream, &cursor)) return 0;
    int more;
    int circular = 0;
    *count = 0;
    while ((more = CursorNext(&cursor)) > 0) {
        if (circular) return 0;
        circular = Get32(cursor.blob.links + 12) == cursor.number || Get32(cursor.blob.links + 20) == cursor.number;
        ++*count;
    }
    return more == 0;
}

PATHREC *RecordFromBlob(const BLOB *blob)
{
    PATHREC *path = static_cast<PATHREC *>(PathHeapAlloc(PathHeap(), heapZero, recordHeaderSize + blob->bodySize));
    if (!path) return nullptr;
    path->streamTag = streamTagCurrent;
    path->nodeCount = blob->nodeCount;
    path->flags = blob->flags;
    path->primitive = blob->primitive;
    const uint8_t *at = blob->nodes;
    for (uint32_t i = 0; i < blob->nodeCount; i++, at += sizeof(PATHNODE))
        path->nodes[i] = {static_cast<uint16_t>(Get16(at)), static_cast<FIXED>(Get32(at + 2)),
                          static_cast<FIXED>(Get32(at + 6))};
    return path;
}

/* Links record i to the first record from i on that has the number; where none does there is no link. Of two links to
 * one record the later holds: a record that two lead to would stay in a chain after it has gone. */
void LinkByNumber(const CHAIN &chain, const READING *reading, uint32_t i, uint32_t number)
{
    const NUMBEREDENTRY wanted = {number, i};
    const NUMBEREDENTRY *end = reading->sorted + reading->count;
    const NUMBEREDENTRY *found = std::lower_bound<const NUMBEREDENTRY *>(reading->sorted, end, wanted, NumberBefore);
    if (number == 0 || found == end || found->number != number) return;
    PATHREC *target = reading->records[found->index].record;
    if (target->*chain.prev) target->*chain.prev->*chain.next = nullptr;
    ChainLink(chain, reading->records[i].record, target);
}

/* Makes a record of every blob; 0, with nothing left, without memory. */
int RecordsMake(const void *stream, const READING *reading)
{
    STREAMCURSOR cursor;
    if (!CursorStart(stream, &cursor)) return 0;
    for (uint32_t i = 0; CursorNext(&cursor) > 0; i++) {
        reading->records[i] = {RecordFromBlob(&cursor.blob), Get32(cursor.blob.links + 12),
                               Get32(cursor.blob.links + 20)};
        reading->sorted[i] = {cursor.number, i};
        if (!reading->records[i].record) {
            while (i > 0) RecordFree(reading->records[--i].record);
            return 0;
        }
    }
    return 1;
}

/* The table chain from the order of the blobs, join and selected chain from the forward links of all records but the
 * last: each gives its successor the link back. */
void RecordsLink(const READING *reading)
{
    std::sort(reading->sorted, reading->sorted + reading->count, NumberBefore);
    for (uint32_t i = 0; i + 1 < reading->count; i++) {
        ChainLink(tableChain, reading->records[i].record, reading->records[i + 1].record);
        LinkByNumber(selectedChain, reading, i, reading->records[i].nextSel);
        LinkByNumber(joinChain, reading, i, reading->records[i].nextJoin);
    }
}

/* The head of the chain that a checked stream of at least one record holds; null without memory. */
PATHREC *ChainFromStream(const void *stream, uint32_t count)
{
    READING reading = {count, nullptr, nullptr};
    if (size_t{count} > SIZE_MAX / sizeof(READRECORD)) return nullptr;
    reading.records = static_cast<READRECORD *>(GlobalBlockAlloc(sizeof(READRECORD) * count));
    reading.sorted = static_cast<NUMBEREDENTRY *>(GlobalBlockAlloc(sizeof(NUMBEREDENTRY) * count));
    PATHREC *head = nullptr;
    if (reading.records && reading.sorted && RecordsMake(stream, &reading)) {
        RecordsLink(&reading);
        head = reading.records[0].record;
    }
    GlobalBlockFree(reading.sorted);
    GlobalBlockFree(reading.records);
    return head;
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathFlatten(PATHREC *path, uint32_t *size, void **stream)
{
    if (!path || !size || !stream) return 0;
    PATHREC *head = PathChainFirst(path);
    uint64_t total = streamHeadSize;
    uint32_t count = 0;
    for (PATHREC *record = head; record; record = record->nextPath, count++)
        total += streamEntrySize + blobHeaderSize + RecordBodySize(record);
    *size = static_cast<uint32_t>(std::min<uint64_t>(total, UINT32_MAX));
    *stream = nullptr;
    if (total > UINT32_MAX) return 0; /* more than the format's words can tell */

    NUMBERED *numbers = static_cast<NUMBERED *>(GlobalBlockAlloc(sizeof(NUMBERED) * count));
    uint8_t *block = numbers ? static_cast<uint8_t *>(GlobalBlockAlloc(static_cast<size_t>(total))) : nullptr;
    if (block) {
        uint32_t number = 0;
        for (PATHREC *record = head; record; record = record->nextPath, number++)
            numbers[number] = {reinterpret_cast<uintptr_t>(record), number + 1};
        std::sort(numbers, numbers + count, [](const NUMBERED &a, const NUMBERED &b) { return a.address < b.address; });
        StreamWrite(head, numbers, count, block);
        *stream = block;
    }
    GlobalBlockFree(numbers);
    return block != nullptr;
}

ZRPATHAPI int32_t ZrPathUnFlatten(void *const *stream, PATHREC **path)
{
    uint32_t count = 0;
    if (!stream || !*stream || !path || !StreamCheck(*stream, &count)) return 0;
    PATHREC *head = count > 0 ? ChainFromStream(*stream, count) : nullptr;
    if (count > 0 && !head) return 0;
    *path = head;
    return 1;
}

} // extern "C"

} // namespace zr32
