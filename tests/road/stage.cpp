/* stage.cpp - see stage.h. */
#include "road/stage.h"

#include "edit/undo.h"
#include "support/undolists.h"

#include <algorithm>
#include <sstream>

namespace zr32test {

using namespace zr32;

namespace {

void PutBytes(const uint8_t *bytes, size_t count, std::ostream &out)
{
    uint32_t sum = 2166136261u; /* FNV-1a */
    for (size_t i = 0; i < count; i++) sum = (sum ^ bytes[i]) * 16777619u;
    out << count << " bytes " << std::hex << sum << std::dec << "\n";
}

void PutChain(const PATHREC *head, std::ostream &out)
{
    std::vector<const PATHREC *> records;
    for (const PATHREC *record = head; record; record = record->nextPath) records.push_back(record);
    const auto place = [&](const PATHREC *record) {
        return record ? std::find(records.begin(), records.end(), record) - records.begin() : -1;
    };
    for (const PATHREC *record : records) {
        out << "flags " << record->flags << " primitive " << record->primitive << " join " << place(record->nextJoin)
            << " selected " << place(record->nextSel);
        for (uint32_t i = 0; i < record->nodeCount; i++)
            out << " " << record->nodes[i].type << "," << record->nodes[i].x << "," << record->nodes[i].y;
        out << "\n";
    }
}

void PutTable(const PATHTBL *table, std::ostream &out)
{
    if (!table) return;
    out << "group " << table->currentGroup << " of " << table->groupCount << "\n";
    for (uint32_t i = 0; i < table->groupCount; i++) {
        const PATHGROUP &group = table->groups[i];
        out << "name " << group.name << " selected " << (group.selectedPath != nullptr) << "\n";
        PutChain(group.activePath, out);
    }
    if (table->lpDB)
        PutBytes(table->lpDB, static_cast<size_t>(table->dbWidth) * static_cast<size_t>(table->dbHeight), out);
    else
        out << "no display buffer\n";
}

void PutView(const COORDSTRUCT *view, std::ostream &out)
{
    if (!view) return;
    out << "view " << view->left << " " << view->top << " " << view->right << " " << view->bottom << " "
        << (view->displayBuffer ? "tied" : "without buffer") << "\n";
}

void PutBuf(PATHBUF buf, std::ostream &out)
{
    const BUFINFO info = BufInfo(buf);
    out << info.width << " x " << info.height << " of " << info.bits << ": ";
    PutBytes(buf, info.pixelSize * static_cast<size_t>(info.width) * static_cast<size_t>(info.height), out);
}

/* The words of a selection and of a move hold numbers; those of an envelope hold an address. */
void PutUndo(std::ostream &out)
{
    const UNDOLIST loaded = undoNow;
    out << "undo list of " << UndoLength(stageKey) << " at " << undoNow.position << ":";
    for (const URRECORD *record = undoNow.head; record; record = record->next) {
        out << " " << record->action;
        for (uintptr_t i = 0; record->points && i < record->words[0]; i++)
            out << "," << record->points[i].x << "," << record->points[i].y;
        const bool numbers = record->action == UR_SELECTION || record->action == UR_MOVE;
        for (uint32_t i = 0; numbers && i < record->count; i++) out << "," << record->words[i];
    }
    if (loaded.head == undoNow.head) undoNow = loaded;
}

} // namespace

STAGE::STAGE() : DOCUMENT(120, 90)
{
    FreeAllUndo();
    box = Add(MakeBox(10, 10, 50, 60));
    circle = Add(MakeCircle(70, 40, 22));
    last = Add(MakeBox(60, 5, 110, 30));
    Select({box, circle, last});
    Draw();
    ZrPathBackupAction(stageKey, UR_JOIN, table);
}

STAGE::~STAGE()
{
    FreeAllUndo();
    ZrPathDeletePtr(own, 0);
    ZrPathTblDelete(otherTable);
    ZrPathDeleteCoordStruct(otherView);
    GlobalBlockFree(stream);
    for (PATHBUF buf : bufs) ZrPathBufFree(buf);
    SceneFree(&solid);
    SetWindowContext(nullptr);
    if (text.dc) TextDcFree(&text);
}

PATHBUF STAGE::Buf(int32_t bits, int32_t width, int32_t height)
{
    bufs.push_back(ZrPathBufAlloc(bits, width, height));
    return bufs.back();
}

GIVEN::~GIVEN()
{
    ZrPathDeletePtr(path, 0);
    ZrPathTblDelete(table);
    ZrPathDeleteCoordStruct(view);
    GlobalBlockFree(stream);
    for (int32_t i = 0; masks && i < result; i++) ZrPathBufFree(masks[i]);
    GlobalBlockFree(rects);
    GlobalBlockFree(masks);
    for (PATHBUF buf : bufs) ZrPathBufFree(buf);
}

bool GIVEN::Nothing() const
{
    return !path && !table && !view && !stream && !rects && !masks && !bufs[0] && !bufs[1];
}

std::string TextOf(const STAGE &stage)
{
    std::ostringstream out;
    PutTable(stage.table, out);
    PutView(stage.view, out);
    PutTable(stage.otherTable, out);
    PutView(stage.otherView, out);
    PutChain(stage.own, out);
    for (PATHBUF buf : stage.bufs) PutBuf(buf, out);
    PutBuf(stage.solid.colour, out);
    PutBuf(stage.solid.alpha, out);
    PutUndo(out);
    return out.str();
}

std::string TextOf(const GIVEN &given)
{
    std::ostringstream out;
    out << "result " << given.result << "\n";
    PutChain(given.path, out);
    PutTable(given.table, out);
    PutView(given.view, out);
    if (given.stream) out << "stream of " << given.size << "\n";
    for (int32_t i = 0; given.masks && i < given.result; i++) {
        out << given.rects[i].left << " " << given.rects[i].top << " ";
        PutBuf(given.masks[i], out);
    }
    for (PATHBUF buf : given.bufs) PutBuf(buf, out);
    return out.str();
}

} // namespace zr32test
