/* recorder.cpp - see recorder.h. */
#include "support/recorder.h"

#include <map>
#include <utility>

namespace zr32test {

namespace {

void Note(CALLS *calls, const char *word, std::initializer_list<long long> values)
{
    std::string text = word;
    for (long long v : values) text += ' ' + std::to_string(v);
    calls->push_back(text);
}

void NoteBezier(CALLS *calls, const std::vector<POINT> &points)
{
    std::string text = "bezier";
    for (const POINT &p : points) text += ' ' + std::to_string(p.x) + ' ' + std::to_string(p.y);
    calls->push_back(text);
}

CALLS BeginningWith(const std::string &word, const CALLS &calls)
{
    CALLS taken;
    for (const std::string &call : calls)
        if (call.compare(0, word.size(), word) == 0) taken.push_back(call);
    return taken;
}

#if defined(_WIN32)

/* Pens made on the way through a metafile, by the number under which it selects them. */
struct READER {
    CALLS *calls;
    std::map<DWORD, LOGPEN> pens;
};

/* Selections by the high bit are of stock objects. */
void NoteSelection(DWORD object, READER *reader)
{
    const HGDIOBJ stock = object >> 31 ? GetStockObject(static_cast<int>(object & 0x7FFFFFFF)) : nullptr;
    LOGBRUSH brush;
    LOGPEN pen;
    if (stock && GetObjectType(stock) == OBJ_BRUSH && GetObjectA(stock, sizeof brush, &brush)) {
        if (brush.lbStyle == BS_NULL)
            Note(reader->calls, "brush null", {});
        else
            Note(reader->calls, "brush", {brush.lbColor});
    } else if (stock && GetObjectType(stock) == OBJ_PEN && GetObjectA(stock, sizeof pen, &pen)) {
        Note(reader->calls, "pen", {pen.lopnStyle, pen.lopnColor});
    } else if (const auto made = reader->pens.find(object); made != reader->pens.end()) {
        Note(reader->calls, "pen", {made->second.lopnStyle, made->second.lopnColor});
    }
}

int CALLBACK Read(HDC, HANDLETABLE *, const ENHMETARECORD *record, int, LPARAM user)
{
    READER *reader = reinterpret_cast<READER *>(user);
    CALLS *calls = reader->calls;
    const auto longs = reinterpret_cast<const LONG *>(record->dParm);
    switch (record->iType) {
    case EMR_MOVETOEX: Note(calls, "move", {longs[0], longs[1]}); break;
    case EMR_LINETO: Note(calls, "line", {longs[0], longs[1]}); break;
    case EMR_RECTANGLE: /* a box whose last column and row are inside */
        Note(calls, "rect", {longs[0], longs[1], longs[2] + 1, longs[3] + 1});
        break;
    case EMR_POLYBEZIERTO: {
        const auto bezier = reinterpret_cast<const EMRPOLYBEZIERTO *>(record);
        const POINTL *points = bezier->aptl;
        std::vector<POINT> list;
        for (DWORD i = 0; i < bezier->cptl; i++) list.push_back({points[i].x, points[i].y});
        NoteBezier(calls, list);
        break;
    }
    case EMR_POLYBEZIERTO16: {
        const auto bezier = reinterpret_cast<const EMRPOLYBEZIERTO16 *>(record);
        const POINTS *points = bezier->apts;
        std::vector<POINT> list;
        for (DWORD i = 0; i < bezier->cpts; i++) list.push_back({points[i].x, points[i].y});
        NoteBezier(calls, list);
        break;
    }
    case EMR_CREATEPEN: reader->pens[record->dParm[0]] = reinterpret_cast<const EMRCREATEPEN *>(record)->lopn; break;
    case EMR_SELECTOBJECT: NoteSelection(record->dParm[0], reader); break;
    case EMR_SETROP2: Note(calls, "rop", {record->dParm[0]}); break;
    case EMR_EXTSELECTCLIPRGN: {
        const auto clip = reinterpret_cast<const EMREXTSELECTCLIPRGN *>(record);
        if (clip->cbRgnData == 0) break; /* the clip is taken off */
        const RECT &box = reinterpret_cast<const RGNDATA *>(clip->RgnData)->rdh.rcBound;
        Note(calls, "clip", {box.left, box.top, box.right, box.bottom});
        break;
    }
    default: break;
    }
    return 1;
}

#else

CALLS *Told(void *user)
{
    return static_cast<CALLS *>(user);
}

#endif

} // namespace

#if defined(_WIN32)

RECORDER::RECORDER() : dc(CreateEnhMetaFileA(nullptr, nullptr, nullptr, nullptr)) {}

RECORDER::~RECORDER()
{
    DeleteEnhMetaFile(CloseEnhMetaFile(dc));
}

CALLS RECORDER::Take(const std::string &word)
{
    const HENHMETAFILE file = CloseEnhMetaFile(dc);
    CALLS calls;
    READER reader = {&calls, {}};
    EnumEnhMetaFile(nullptr, file, Read, &reader, nullptr);
    DeleteEnhMetaFile(file);
    dc = CreateEnhMetaFileA(nullptr, nullptr, nullptr, nullptr);
    return BeginningWith(word, calls);
}

#else

RECORDER::RECORDER()
{
    PORTDCCALLS table = {};
    table.user = &told;
    table.moveTo = [](void *user, int x, int y) { Note(Told(user), "move", {x, y}); };
    table.lineTo = [](void *user, int x, int y) { Note(Told(user), "line", {x, y}); };
    table.polyBezierTo = [](void *user, const POINT *points, DWORD count) {
        NoteBezier(Told(user), {points, points + count});
    };
    table.rectangle = [](void *user, int l, int t, int r, int b) { Note(Told(user), "rect", {l, t, r, b}); };
    table.setPen = [](void *user, int style, int, COLORREF color) { Note(Told(user), "pen", {style, color}); };
    table.setBrush = [](void *user, BOOL null, COLORREF color) {
        if (null)
            Note(Told(user), "brush null", {});
        else
            Note(Told(user), "brush", {color});
    };
    table.setRop2 = [](void *user, int rop) { Note(Told(user), "rop", {rop}); };
    table.setClip = [](void *user, const RECT *clip) {
        if (clip) Note(Told(user), "clip", {clip->left, clip->top, clip->right, clip->bottom});
    };
    dc = PortCreateCallbackDC(&table);
    told.clear();
}

RECORDER::~RECORDER()
{
    DeleteDC(dc);
}

CALLS RECORDER::Take(const std::string &word)
{
    const CALLS calls = std::exchange(told, {});
    return BeginningWith(word, calls);
}

#endif

} // namespace zr32test
