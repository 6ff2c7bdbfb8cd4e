/* pentool.cpp - the pen tool: a path built node by node from the messages of the caller's drawing window.
 *
 *            down, live table              up                  down
 *   Idle ------------------------> Pressed ------> Between ------------> Pressed
 *     ^                                               |
 *     +----------- Closing releases the capture <-----+ double-click
 *
 * The caller sets the mouse capture at the first press; while it stands, a path is being drawn, and the path is the
 * group's selected one. A click places a corner, a drag a smooth anchor. After a smooth anchor the record ends with a
 * pending curve: first control the handle, second control and end the anchor itself; the next anchor fills it in.
 * Messages out of place do nothing; when the path is gone the tool is as at start.
 */
#include "edit/pentool.h"

#include "edit/bands.h"
#include "store/nodes.h"
#include <zr32path/edit.h>

#include <cstdlib>

namespace zr32 {

namespace {

enum PENMESSAGE {
    MESSAGE_KEYDOWN = 256,
    MESSAGE_KEYUP = 257,
    MESSAGE_MOVE = 512,
    MESSAGE_DOWN = 513,
    MESSAGE_UP = 514,
    MESSAGE_DOUBLECLICK = 515,
};

constexpr uintptr_t keyEscape = 27;
constexpr int nearPixels = 3; /* closer than this on both axes is the same place */

/* Window positions with the scroll added. */
struct PENSTATE {
    POINT anchorPos; /* the anchor being placed: the last press; (-1, -1) after a refused one */
    POINT handlePos; /* where the drag is: the handle's end */
    POINT firstPos;  /* the path's first anchor */
    POINT lastPos;   /* the band's previous position */
    int pressed;
};

PENSTATE pen;

int SamePos(const POINT &a, const POINT &b)
{
    return a.x == b.x && a.y == b.y;
}

int NearPos(const POINT &a, const POINT &b)
{
    return std::llabs(int64_t{a.x} - b.x) < nearPixels && std::llabs(int64_t{a.y} - b.y) < nearPixels;
}

/* The point as far from the centre on the other side. */
POINT Mirror(const POINT &centre, const POINT &p)
{
    return {WrapSub(WrapAdd(centre.x, centre.x), p.x), WrapSub(WrapAdd(centre.y, centre.y), p.y)};
}

/* A position of the tool as a place of the image. */
POINTFX PathPixToFix(const COORDSTRUCT *view, const POINT &p)
{
    const double zoom = view->zoom;
    const auto fix = [zoom](int32_t v, int32_t origin) {
        const double d = static_cast<double>(v) - origin;
        return DoubleToFix((zoom >= 1 ? d / zoom : d * -zoom) - 0.5);
    };
    return {fix(p.x, view->left), fix(p.y, view->top)};
}

/* A node in view coordinates. A reduction leaves the half pixel out, deliberately. */
POINT FixToView(const PATHNODE *node, const COORDSTRUCT *view)
{
    const double zoom = view->zoom;
    const auto place = [zoom](FIXED v, int32_t scroll, int32_t origin) {
        const double d = FixToDouble(v);
        return WrapAdd(WrapSub(TruncInt(zoom >= 0 ? (d + 0.5) * zoom : d / -zoom), scroll), origin);
    };
    return {place(node->x, view->scrollX, view->left), place(node->y, view->scrollY, view->top)};
}

/* ---- the path being drawn ---- */

PATHREC *DrawnPath(const PATHTBL *table)
{
    PATHREC *active = nullptr;
    PATHREC *selected = nullptr;
    ZrPathFind(table, nullptr, &active, &selected, nullptr);
    return active && selected && selected->nodeCount > 0 ? selected : nullptr;
}

PATHNODE *LastNode(PATHREC *path)
{
    return &path->nodes[path->nodeCount - 1];
}

int SamePoint(const PATHNODE *node, const POINTFX &p)
{
    return PtfxEqual(node->x, node->y, p.x, p.y);
}

/* 1 when the record ends with a curve that the next anchor fills in. */
int CurveIsPending(const PATHREC *path)
{
    if (path->nodeCount < 4) return 0;
    const PATHNODE *end = &path->nodes[path->nodeCount - 1];
    return NodeKind(end) == PATHNODE_CURVE && SamePoint(end, {end[-3].x, end[-3].y});
}

/* After a block has moved every link to it follows. */
void LinksFollow(PATHREC *path, PATHGROUP *group, int wasActive, int wasSelected)
{
    constexpr CHAIN chains[] = {tableChain, joinChain, selectedChain};
    for (const CHAIN &chain : chains) {
        if (path->*chain.prev) (path->*chain.prev)->*chain.next = path;
        if (path->*chain.next) (path->*chain.next)->*chain.prev = path;
    }
    if (wasActive) group->activePath = path;
    if (wasSelected) group->selectedPath = path;
}

/* Appends nodes, the block becoming exactly as large as they need. Null without memory; the record is then as it
 * was. */
PATHREC *AddNodes(PATHTBL *table, PATHREC *path, const PATHNODE *nodes, uint32_t count)
{
    PATHGROUP *group = TableCurrentGroup(table);
    const int wasActive = group->activePath == path;
    const int wasSelected = group->selectedPath == path;
    const size_t size = RecordBlockSize(size_t{path->nodeCount} + count);
    PATHREC *grown = static_cast<PATHREC *>(PathHeapReAlloc(PathHeap(), heapNoSerialize, path, size));
    if (!grown) return nullptr;
    for (uint32_t i = 0; i < count; i++) grown->nodes[grown->nodeCount++] = nodes[i];
    LinksFollow(grown, group, wasActive, wasSelected);
    return grown;
}

PATHNODE NodeAt(uint32_t type, const POINTFX &p)
{
    return {static_cast<uint16_t>(type), p.x, p.y};
}

/* ---- messages ---- */

/* A record of one start node; null without memory. */
PATHREC *StartPath(const COORDSTRUCT *view, const POINT &p)
{
    PATHREC *path = ZrPathInit() ? RecordAlloc(1) : nullptr;
    if (!path) return nullptr;
    path->nodeCount = 1;
    path->flags = PATHREC_SELECTED;
    path->nodes[0] = NodeAt(PATHNODE_START, PathPixToFix(view, p));
    return path;
}

/* Gives the path to the table's current group. An only group is taken over as a new table's is; any other empty group
 * takes the path into its own slot, so that the table's block does not move under the caller. */
void OwnPath(PATHTBL *table, PATHREC *path, COORDSTRUCT *view)
{
    PATHGROUP *group = TableCurrentGroup(table);
    if (group->activePath) {
        ChainLink(tableChain, PathChainLast(group->activePath), path);
    } else if (table->groupCount == 1) {
        RECT drawn;
        ZrPathAddPathGroup(&table, path, "xxx", view, &drawn);
    } else {
        ZrPathAssignActivePath(table, path);
    }
    ZrPathAssignSelectedPath(table, path);
}

void ButtonDown(HDC hdc, PATHTBL *table, const COORDSTRUCT *view, const POINT &p)
{
    const int nextAnchor = GetCapture() != nullptr;
    int32_t live = 1; /* a null table passes */
    ZrPathFind(table, nullptr, nullptr, nullptr, &live);
    if (!nextAnchor && !live) {
        pen.anchorPos = {-1, -1};
        MessageBeep(0);
        return;
    }
    pen.anchorPos = pen.handlePos = p;
    pen.pressed = 1;
    if (nextAnchor) return;
    pen.lastPos = pen.firstPos = p;

    PATHGROUP *group = TableCurrentGroup(table);
    if (group && group->selectedPath) {
        ZrPathDeSelectAll(hdc, group->selectedPath, view, 1);
        group->selectedPath = nullptr;
    }

    /* Drawing the new group needs a view to write to; the caller's stays as it is. */
    COORDSTRUCT drawView = *view;
    PATHREC *path = StartPath(view, p);
    if (!path) return;
    if (group) {
        OwnPath(table, path, &drawView);
        return;
    }
    /* Without a table the path gets one of its own, which no caller can ever reach: it goes again at once. */
    PATHTBL *own = nullptr;
    if (!table && ZrPathNew(&own)) {
        OwnPath(own, path, &drawView);
        ZrPathTblDelete(own);
    } else {
        ZrPathDeletePtr(path, 0);
    }
}

void PlaceCorner(PATHTBL *table, const COORDSTRUCT *view, PATHREC *path, const POINT &p)
{
    PATHNODE *last = LastNode(path);
    if (NodeKind(last) == PATHNODE_START && SamePos(pen.anchorPos, pen.firstPos)) return;
    const POINTFX q = PathPixToFix(view, p);
    if (CurveIsPending(path)) {
        last[-1].x = last[0].x = q.x;
        last[-1].y = last[0].y = q.y;
        return;
    }
    const PATHNODE corner = NodeAt(PATHNODE_LINE, q);
    AddNodes(table, path, &corner, 1);
}

void PlaceSmoothAnchor(PATHTBL *table, const COORDSTRUCT *view, PATHREC *path)
{
    const POINTFX a = PathPixToFix(view, pen.anchorPos);
    const POINTFX handle = PathPixToFix(view, pen.handlePos);
    const POINTFX mirrored = PathPixToFix(view, Mirror(pen.anchorPos, pen.handlePos));
    const PATHNODE *last = LastNode(path);
    const uint32_t kind = NodeKind(last);
    /* The curve that ends on the anchor, and the pending one that leaves it. */
    const PATHNODE nodes[] = {
        NodeAt(PATHNODE_CURVE, {last->x, last->y}),
        NodeAt(PATHNODE_CURVE, mirrored),
        NodeAt(PATHNODE_CURVE | PATHNODE_SMOOTH, a),
        NodeAt(PATHNODE_CURVE, handle),
        NodeAt(PATHNODE_CURVE, a),
        NodeAt(PATHNODE_CURVE, a),
    };
    if (kind == PATHNODE_START && SamePoint(last, a)) {
        AddNodes(table, path, nodes + 3, 3);
    } else if (CurveIsPending(path)) {
        path = AddNodes(table, path, nodes + 3, 3);
        if (!path) return;
        PATHNODE *filled = LastNode(path) - 3; /* the end of the curve that was pending */
        filled[-1].x = mirrored.x;
        filled[-1].y = mirrored.y;
        filled[0] = nodes[2];
    } else if (kind == PATHNODE_START || kind == PATHNODE_LINE || kind == PATHNODE_CURVE) {
        AddNodes(table, path, nodes, 6);
    }
}

void ClosePath(PATHREC *path)
{
    if (path->nodeCount < 3) return;
    ReleaseCapture();
    PATHNODE *last = LastNode(path);
    const PATHNODE *nodes = path->nodes;
    *last = NodeAt(last->type | PATHNODE_CLOSING, {nodes[0].x, nodes[0].y});
    if (NodeKind(last) != PATHNODE_CURVE || NodeKind(&nodes[1]) != PATHNODE_CURVE) return;
    const POINTFX twice = PtfxAdd(nodes[0].x, nodes[0].y, nodes[0].x, nodes[0].y);
    const POINTFX mirrored = PtfxSub(twice.x, twice.y, nodes[1].x, nodes[1].y);
    last[-1].x = mirrored.x;
    last[-1].y = mirrored.y;
}

void PlaceAnchor(PATHTBL *table, const COORDSTRUCT *view, PATHREC *path, const POINT &p)
{
    if (NearPos(pen.handlePos, pen.anchorPos)) pen.handlePos = pen.anchorPos;
    if (SamePos(pen.handlePos, pen.anchorPos))
        PlaceCorner(table, view, path, p);
    else
        PlaceSmoothAnchor(table, view, path);
    pen.anchorPos = pen.handlePos = pen.lastPos = p;
    pen.pressed = 0;
}

void DoubleClick(PATHTBL *table, const COORDSTRUCT *view, PATHREC *path, const POINT &p)
{
    if (!NearPos(pen.anchorPos, pen.firstPos)) {
        pen.anchorPos = pen.handlePos;
        PlaceAnchor(table, view, path, p);
        path = DrawnPath(table);
    }
    ClosePath(path);
}

/* ---- the band ---- */

/* The band while a handle is pulled to h: the handle, its mirror image, and the curve that ends on the anchor. */
void PulledBand(HDC hdc, const POINT &s, const POINT &c, const POINT &a, const POINT &h)
{
    const POINT mirrored = Mirror(a, h);
    BandLine(hdc, a, h);
    BandLine(hdc, a, mirrored);
    BandCurve(hdc, s, c, mirrored, a);
}

/* Erases the band and, unless eraseOnly, draws it at p. Literal about what stands there: the first move after a click
 * "erases" a box that was never drawn, and so does the move after an Esc. */
void MoveBand(HDC hdc, const COORDSTRUCT *view, PATHREC *path, const POINT &p, int eraseOnly)
{
    const auto onView = [view](const POINT &pos) {
        return POINT{WrapSub(pos.x, view->scrollX), WrapSub(pos.y, view->scrollY)};
    };
    pen.handlePos = p;
    const POINT a = onView(pen.anchorPos);
    const POINT from = onView(pen.lastPos);
    const POINT to = onView(p);
    const int stayed = SamePos(pen.lastPos, pen.anchorPos);
    const int pending = CurveIsPending(path);
    const PATHNODE *last = LastNode(path);
    const uint32_t kind = NodeKind(last);
    const int straight =
        pen.pressed ? kind == PATHNODE_START && SamePos(pen.anchorPos, pen.firstPos) : !pending && !KindIsShape(kind);
    if (straight) {
        BandLine(hdc, a, from);
        if (!eraseOnly) BandLine(hdc, a, to);
    } else if (!pen.pressed && pending) {
        const POINT s = FixToView(last - 3, view);
        const POINT c = FixToView(last - 2, view);
        if (!stayed) BandCurve(hdc, s, c, from, from);
        if (!eraseOnly) BandCurve(hdc, s, c, to, to);
    } else if (pen.pressed) {
        const POINT s = FixToView(last, view);
        const POINT c = pending ? FixToView(last - 2, view) : s;
        if (stayed && BandLineShown())
            BandLineAgain(hdc);
        else
            PulledBand(hdc, s, c, a, from);
        if (!eraseOnly) PulledBand(hdc, s, c, a, to);
    }
    pen.lastPos = p;
}

} // namespace

void PenReset()
{
    pen = {};
    BandsReset();
}

extern "C" {

ZRPATHAPI int32_t ZrPathMouseProcDraw(ZRHDC hdc, PATHTBL *table, const COORDSTRUCT *view, uint32_t message,
                                      uintptr_t wParam, int32_t x, int32_t y)
{
    if (!view) return 1;
    const POINT p = {WrapAdd(x, view->scrollX), WrapAdd(y, view->scrollY)};
    if (message == MESSAGE_DOWN) {
        ButtonDown(hdc, table, view, p);
        return 1;
    }
    if (!GetCapture()) return 1;
    const int escape = (message == MESSAGE_KEYDOWN || message == MESSAGE_KEYUP) && wParam == keyEscape;
    if (!escape && (message < MESSAGE_MOVE || message > MESSAGE_DOUBLECLICK)) return 1;
    PATHREC *path = DrawnPath(table);
    if (!path)
        PenReset();
    else if (escape || message == MESSAGE_MOVE)
        MoveBand(hdc, view, path, p, escape);
    else if (message == MESSAGE_DOUBLECLICK)
        DoubleClick(table, view, path, p);
    else if (pen.pressed)
        PlaceAnchor(table, view, path, p);
    return 1;
}

} // extern "C"

} // namespace zr32
