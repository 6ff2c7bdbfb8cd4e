/* document.cpp - see document.h. */
#include "support/document.h"

#include "store/store.h"

#include <map>
#include <ostream>

namespace zr32test {

using namespace zr32;

DOCUMENT::DOCUMENT(int32_t width, int32_t height, int32_t zoom, int32_t left, int32_t top)
    : TESTVIEW(width, height, zoom, 0, 0, left, top)
{
}

PATHREC *DOCUMENT::Active() const
{
    PATHREC *path = nullptr;
    ZrPathFind(table, nullptr, &path, nullptr, nullptr);
    return path;
}

PATHREC *DOCUMENT::Selected() const
{
    PATHREC *path = nullptr;
    ZrPathFind(table, nullptr, nullptr, &path, nullptr);
    return path;
}

PATHREC *DOCUMENT::Add(PATHREC *path)
{
    PATHREC *head = Active();
    ZrPathChainPaths(&head, path);
    ZrPathAssignActivePath(table, path);
    return path;
}

void DOCUMENT::Select(const std::vector<PATHREC *> &paths)
{
    ZrPathDeSelectAll(nullptr, Active(), view, 0);
    SelectPaths(paths);
    ZrPathAssignSelectedPath(table, paths.empty() ? nullptr : paths.front());
}

void DOCUMENT::Draw()
{
    tagRECT dirty;
    if (Active())
        ZrPathDraw(view, Active(), &dirty);
    else
        ZrPathHide(view, nullptr, &dirty);
}

std::vector<uint8_t> DOCUMENT::FreshPlane() const
{
    const TESTVIEW other(view->right - view->left, view->bottom - view->top, view->zoom, view->scrollX, view->scrollY,
                         view->left, view->top);
    tagRECT dirty;
    ZrPathDraw(other.view, Active(), &dirty);
    return other.Plane();
}

std::vector<PATHREC *> DOCUMENT::Records() const
{
    std::vector<PATHREC *> records;
    for (PATHREC *record = Active(); record; record = record->nextPath) records.push_back(record);
    return records;
}

std::vector<NODEVALUE> NodesOf(const PATHREC *path)
{
    std::vector<NODEVALUE> nodes;
    for (uint32_t i = 0; i < path->nodeCount; i++)
        nodes.push_back({path->nodes[i].type, FixToDouble(path->nodes[i].x), FixToDouble(path->nodes[i].y)});
    return nodes;
}

void PrintTo(const NODEVALUE &node, std::ostream *out)
{
    *out << std::hex << "0x" << node.type << std::dec << " (" << node.x << ", " << node.y << ")";
}

namespace {

using PLACES = std::map<const PATHREC *, size_t>; /* where in the table chain a record stands */

std::string BrokenLink(const PLACES &places, const PATHREC *record, const CHAIN &chain, const char *name)
{
    const PATHREC *next = record->*chain.next;
    const PATHREC *prev = record->*chain.prev;
    if (next && (!places.count(next) || next->*chain.prev != record)) return std::string(name) + " next";
    if (prev && (!places.count(prev) || prev->*chain.next != record)) return std::string(name) + " prev";
    if (next && places.at(next) <= places.at(record)) return std::string(name) + " order";
    return "";
}

std::string BrokenRecord(const PATHREC *record)
{
    if (record->nodeCount > RecordRoom(record)) return "nodes outside the block";
    uint32_t i = 0;
    while (i < record->nodeCount) {
        const uint32_t step = NodeStep(NodeKind(&record->nodes[i]));
        if (step == 0) return "unknown kind";
        i += step;
    }
    if (i != record->nodeCount) return "a segment cut short";
    if (!PathIsSelected(record) && (record->prevSel || record->nextSel)) return "unselected on the selected chain";
    return "";
}

} // namespace

std::string BrokenInvariant(const DOCUMENT &document)
{
    PLACES places;
    const PATHREC *active = document.Active();
    const PATHREC *before = nullptr;
    for (const PATHREC *record = active; record; record = record->nextPath) {
        if (!places.emplace(record, places.size()).second) return "table chain does not end";
        if (record->prevPath != before) return "table prev";
        before = record;
    }
    const PATHREC *firstSelected = nullptr;
    size_t heads = 0;
    for (const PATHREC *record = active; record; record = record->nextPath) {
        const std::string where = " at record " + std::to_string(places.at(record));
        for (const std::string &broken : {BrokenRecord(record), BrokenLink(places, record, joinChain, "join"),
                                          BrokenLink(places, record, selectedChain, "selected")})
            if (!broken.empty()) return broken + where;
        if (!PathIsSelected(record)) continue;
        if (!firstSelected) firstSelected = record;
        heads += !record->prevSel;
    }
    if (heads > 1) return "selected records in several chains";
    if (document.Selected() != firstSelected) return "selectedPath is not the first selected record";
    return "";
}

} // namespace zr32test
