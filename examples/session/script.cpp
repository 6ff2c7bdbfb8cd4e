/* script.cpp - the editing session, see script.h.
 *
 * A path is drawn with the pen tool, edited by its nodes, moved, joined with an ellipse, bent through both kinds of
 * envelope, copied, selected by rectangle and deleted; undo and redo go back and forth over it. The editor here
 * keeps its window right without ever redrawing it: it takes marks and outlines off before an edit and puts them on
 * after it.
 */
#include "script.h"

#include <algorithm>
#include <cstdlib>

namespace session {

namespace {

constexpr int32_t documentKey = 4711;
constexpr ZRFIXED pixel = 0x10000;

/* The corners of the path, where its first anchor and its two smooth anchors are. */
constexpr POINT first = {90, 200};
constexpr POINT second = {150, 90};
constexpr POINT crest = {240, 70};
constexpr POINT crestHandle = {295, 58};
constexpr POINT side = {340, 150};
constexpr POINT sideHandle = {348, 205};
constexpr POINT fifth = {255, 250};
constexpr POINT last = {150, 262};

/* ---- what an editor does around an edit ---- */

void TakeOff(EDITOR *editor)
{
    EditorToggleMarks(editor);
    EditorToggleOutlines(editor);
}

void PutOn(EDITOR *editor)
{
    EditorToggleOutlines(editor);
    EditorToggleMarks(editor);
}

void Backup(EDITOR *editor, int32_t action)
{
    ZrPathBackupAction(documentKey, action, editor->table);
}

void Draw(EDITOR *editor)
{
    RECT dirty;
    ZrPathDraw(editor->view, EditorActive(editor), &dirty);
}

int32_t Click(EDITOR *editor, POINT at, int32_t modifiers)
{
    PATHREC *path = EditorActive(editor);
    uint32_t node = 0;
    uint16_t position = 0;
    return ZrPathPtOn(at.x, at.y, modifiers, editor->dc, editor->view, editor->table, &path, &node, &position);
}

/* ---- the pen ---- */

enum PENMESSAGE { PEN_MOVE = 512, PEN_DOWN = 513, PEN_UP = 514, PEN_DOUBLECLICK = 515 };

void Pen(EDITOR *editor, PENMESSAGE message, POINT at)
{
    ZrPathMouseProcDraw(editor->dc, editor->table, editor->view, message, 0, at.x, at.y);
    if (message == PEN_DOWN && !GetCapture()) SetCapture(editor->window);
}

/* After each release the editor shows what the path has become. */
void PenRelease(EDITOR *editor, POINT at)
{
    Pen(editor, PEN_UP, at);
    Draw(editor);
    EditorRepaint(editor);
}

void PenMove(EDITOR *editor, POINT from, POINT to)
{
    for (int i = 1; i <= 8; i++)
        Pen(editor, PEN_MOVE, {from.x + (to.x - from.x) * i / 8, from.y + (to.y - from.y) * i / 8});
}

void FirstCorner(EDITOR *editor)
{
    Pen(editor, PEN_DOWN, first);
    PenRelease(editor, first);
    PenMove(editor, first, second);
}

void SecondCorner(EDITOR *editor)
{
    Pen(editor, PEN_DOWN, second);
    PenRelease(editor, second);
    PenMove(editor, second, crest);
    Pen(editor, PEN_DOWN, crest);
    PenMove(editor, crest, crestHandle);
}

void CurveToCome(EDITOR *editor)
{
    PenRelease(editor, crestHandle);
    PenMove(editor, crestHandle, side);
}

void SecondSmoothAnchor(EDITOR *editor)
{
    Pen(editor, PEN_DOWN, side);
    PenMove(editor, side, sideHandle);
}

void MoreCorners(EDITOR *editor)
{
    PenRelease(editor, sideHandle);
    PenMove(editor, sideHandle, fifth);
    Pen(editor, PEN_DOWN, fifth);
    PenRelease(editor, fifth);
    PenMove(editor, fifth, last);
}

void ClosingDoubleClick(EDITOR *editor)
{
    Pen(editor, PEN_DOWN, last);
    PenRelease(editor, last);
    Pen(editor, PEN_DOUBLECLICK, last);
    Pen(editor, PEN_UP, last);
    Draw(editor);
    EditorRepaint(editor);
}

std::string PathIsClosed(EDITOR *editor)
{
    const PATHREC *path = EditorSelected(editor);
    if (!path || GetCapture()) return "no closed path";
    static const uint16_t codes[] = {6, 2, 4, 4, 0x2004, 4, 4, 0x2004, 4, 4, 4, 2, 3};
    const uint32_t count = sizeof codes / sizeof *codes;
    if (path->nodeCount != count) return "another number of nodes";
    for (uint32_t i = 0; i < count; i++)
        if (path->nodes[i].type != codes[i]) return "another kind of node";
    const PATHNODE &start = path->nodes[0];
    const PATHNODE &end = path->nodes[count - 1];
    return start.x == end.x && start.y == end.y ? "" : "the ends do not meet";
}

/* ---- picking and nodes ---- */

void ClickElsewhere(EDITOR *editor)
{
    Backup(editor, UR_SELECTION);
    Click(editor, {20, 20}, ZRPICK_REPLACE);
}

std::string NothingSelected(EDITOR *editor)
{
    return EditorSelected(editor) ? "something is selected" : "";
}

void Pick(EDITOR *editor)
{
    Backup(editor, UR_SELECTION);
    Click(editor, {120, 145}, ZRPICK_REPLACE); /* half way from the first corner to the second */
}

std::string PathSelected(EDITOR *editor)
{
    const PATHREC *path = EditorSelected(editor);
    return path && path->flags == PATHREC_SELECTED ? "" : "the path is not selected";
}

void EditNodes(EDITOR *editor)
{
    Backup(editor, UR_SELECTION);
    Click(editor, crest, ZRPICK_REPLACE);
}

std::string CrestIsMarked(EDITOR *editor)
{
    const PATHREC *path = EditorSelected(editor);
    if (!path || path->flags != PATHREC_NODEEDIT) return "the path is not in node editing";
    /* A smooth join of two curves is marked on the first node of the curve that ends there. */
    return path->nodes[2].type == (PATHNODE_CURVE | PATHNODE_SELECTED) ? "" : "the crest is not marked";
}

/* Drags entries of the handle list by (dx, dy) and writes the list back. */
void DragHandles(EDITOR *editor, int from, int count, int32_t dx, int32_t dy)
{
    POINT handles[12];
    RECT dirty;
    PATHREC *path = EditorSelected(editor);
    TakeOff(editor);
    ZrPathHideSelected(editor->view, path, &dirty);
    ZrPathSelectedToView(editor->view, path, handles, 0);
    for (int i = from; i < from + count; i++) {
        handles[i].x += dx;
        handles[i].y += dy;
    }
    ZrPathSelectedToView(editor->view, path, handles, 1);
    if (path->flags == PATHREC_NODEEDIT)
        ZrPathDrawSelectedSegments(editor->view, path, &dirty);
    else
        ZrPathDrawSelected(editor->view, path, &dirty);
    PutOn(editor);
}

/* A smooth anchor's list: the anchor before, both controls, the anchor, both controls behind it, the anchor behind. */
void DragCrest(EDITOR *editor)
{
    DragHandles(editor, 2, 3, 12, -34);
}

std::string CrestHasMoved(EDITOR *editor)
{
    const PATHNODE &node = EditorSelected(editor)->nodes[4];
    const int there =
        std::abs(node.x - (crest.x + 12) * pixel) <= pixel && std::abs(node.y - (crest.y - 34) * pixel) <= pixel;
    return there ? "" : "the crest is not where it was dragged";
}

void DragOneHandle(EDITOR *editor)
{
    DragHandles(editor, 5, 1, 20, -40);
}

/* ---- moving and joining ---- */

void WholePathAgain(EDITOR *editor)
{
    EditorToggleMarks(editor);
    ZrPathDeselectPts(EditorSelected(editor));
    EditorToggleMarks(editor);
}

void MoveBy(EDITOR *editor, int32_t dx, int32_t dy)
{
    RECT dirty;
    TakeOff(editor);
    ZrPathHideSelected(editor->view, EditorSelected(editor), &dirty);
    ZrPathMovePaths(EditorSelected(editor), editor->view, dx, dy);
    ZrPathDrawSelected(editor->view, EditorSelected(editor), &dirty);
    PutOn(editor);
}

void Move(EDITOR *editor)
{
    Backup(editor, UR_MOVE);
    MoveBy(editor, -40, 30);
}

void AddEllipse(EDITOR *editor)
{
    const RECT drag = {250, 150, 400, 290};
    Backup(editor, UR_SELECTION);
    EditorToggleOutlines(editor);
    ZrPathAddPrimitive(editor->dc, ZRPRIM_ELLIPSE, nullptr, editor->table, editor->view, 0, 0, &drag);
    Draw(editor);
    PutOn(editor);
}

std::string EllipseSelected(EDITOR *editor)
{
    const PATHREC *path = EditorSelected(editor);
    return path && path->primitive == ZRPRIM_ELLIPSE && path == EditorActive(editor)->nextPath ? "" : "no ellipse";
}

void AddPathToSelection(EDITOR *editor)
{
    Backup(editor, UR_SELECTION);
    Click(editor, {80, 175}, ZRPICK_ADD);
}

std::string BothSelected(EDITOR *editor)
{
    const PATHREC *path = EditorSelected(editor);
    return path && path == EditorActive(editor) && path->nextSel == path->nextPath && path->nextSel ? "" : "not both";
}

void Join(EDITOR *editor)
{
    Backup(editor, UR_JOIN);
    ZrPathJoin(EditorSelected(editor));
}

std::string BothJoined(EDITOR *editor)
{
    const PATHREC *path = EditorActive(editor);
    return path->nextJoin && path->nextJoin == path->nextPath ? "" : "not joined";
}

std::string NotJoined(EDITOR *editor)
{
    return EditorActive(editor)->nextJoin ? "joined" : "";
}

/* ---- envelopes ---- */

RECT ShapeBox(EDITOR *editor)
{
    RECT box;
    ZrPathGetMiniMaxRect(EditorActive(editor), pixel, &box);
    return box;
}

/* Writes the frame's record, which becomes the selection. */
template <typename ADD> void AddFrame(EDITOR *editor, ADD add)
{
    Backup(editor, UR_SELECTION);
    EditorToggleOutlines(editor);
    ZrPathDeSelectAll(editor->dc, EditorActive(editor), editor->view, 1);
    add(ShapeBox(editor));
    ZrPathAssignSelectedPathBlindly(editor->table, EditorActive(editor));
    Draw(editor);
    PutOn(editor);
}

ZRPOINTFX At(int32_t x, int32_t y)
{
    return {x * pixel, y * pixel};
}

void BilinearFrame(EDITOR *editor)
{
    AddFrame(editor, [editor](const RECT &b) {
        const ZRPOINTFX corners[] = {At(b.left, b.top), At(b.right, b.top), At(b.left, b.bottom),
                                     At(b.right, b.bottom)};
        ZrPathAddBiLinearEnvelope(EditorActive(editor), corners);
    });
}

void BicubicFrame(EDITOR *editor)
{
    AddFrame(editor, [editor](const RECT &b) {
        const auto across = [&b](int third) { return b.left + (b.right - b.left) * third / 3; };
        const ZRPOINTFX sides[] = {At(across(0), b.top),    At(across(1), b.top),    At(across(2), b.top),
                                   At(across(3), b.top),    At(across(0), b.bottom), At(across(1), b.bottom),
                                   At(across(2), b.bottom), At(across(3), b.bottom)};
        ZrPathAddBiBezierEnvelope(EditorActive(editor), sides);
    });
}

std::string FrameOf(EDITOR *editor, int32_t nodes)
{
    const PATHREC *frame = EditorSelected(editor);
    if (!frame || frame->flags != PATHREC_ENVELOPE) return "the frame is not selected";
    return ZrPathGetEnvelopeType(frame) == nodes ? "" : "another kind of frame";
}

std::string BilinearSelected(EDITOR *editor)
{
    return FrameOf(editor, 5);
}

std::string BicubicSelected(EDITOR *editor)
{
    return FrameOf(editor, 9);
}

/* Bends what lies under the selected frame by its points, changed. */
template <typename CHANGE> void Bend(EDITOR *editor, CHANGE change)
{
    ZRPOINTFX points[8];
    PATHREC *frame = EditorSelected(editor);
    PATHREC *shape = EditorActive(editor);
    Backup(editor, UR_ENVELOPE);
    TakeOff(editor);
    if (ZrPathGetEnvelopeType(frame) < 8) {
        ZrPathGetBiLinearEnvelope(frame, points);
        change(points);
        ZrPathBiLinear(shape, points);
        ZrPathAddBiLinearEnvelope(shape, points);
    } else {
        ZrPathGetBiBezierEnvelope(frame, points);
        change(points);
        ZrPathBiCubic(shape, points);
        ZrPathAddBiBezierEnvelope(shape, points);
    }
    Draw(editor);
    PutOn(editor);
}

void BendBilinear(EDITOR *editor)
{
    Bend(editor, [](ZRPOINTFX *p) {
        p[1].x -= 40 * pixel;
        p[1].y += 25 * pixel;
        p[2].x += 30 * pixel;
    });
}

void BendBicubic(EDITOR *editor)
{
    Bend(editor, [](ZRPOINTFX *p) {
        for (int i = 0; i < 8; i += 4) {
            p[i + 1].y -= 60 * pixel;
            p[i + 2].y += 30 * pixel;
        }
    });
}

void DeleteSelection(EDITOR *editor)
{
    RECT dirty;
    TakeOff(editor);
    ZrPathDelete(editor->table, editor->view, &dirty);
    PutOn(editor);
}

std::string TwoRecords(EDITOR *editor)
{
    const PATHREC *path = EditorActive(editor);
    return path && path->nextPath && !path->nextPath->nextPath ? NothingSelected(editor) : "not two records";
}

/* ---- undo and redo ---- */

enum DIRECTION { BACK, FORWARD };

/* The editor knows which action it steps over: a selection toggles marks itself, everything else has them taken off. */
void StepOver(EDITOR *editor, DIRECTION direction, int32_t action)
{
    RECT dirty;
    const auto step = direction == BACK ? ZrPathUndo : ZrPathRedo;
    if (action == UR_SELECTION) {
        step(documentKey, editor->table, editor->view, editor->dc);
        return;
    }
    TakeOff(editor);
    step(documentKey, editor->table, editor->view, &dirty);
    PutOn(editor);
}

void UndoBend(EDITOR *editor)
{
    StepOver(editor, BACK, UR_ENVELOPE);
}

void RedoBend(EDITOR *editor)
{
    StepOver(editor, FORWARD, UR_ENVELOPE);
}

/* What was done up to the bilinear bend, in order. */
constexpr int32_t actions[] = {UR_SELECTION, UR_SELECTION, UR_SELECTION, UR_MOVE,    UR_SELECTION,
                               UR_SELECTION, UR_JOIN,      UR_SELECTION, UR_ENVELOPE};
constexpr int actionCount = sizeof actions / sizeof *actions;

void UndoJoin(EDITOR *editor)
{
    StepOver(editor, BACK, UR_ENVELOPE);
    StepOver(editor, BACK, UR_SELECTION);
    StepOver(editor, BACK, UR_JOIN);
}

std::string BothSelectedNotJoined(EDITOR *editor)
{
    const std::string fault = BothSelected(editor);
    return fault.empty() ? NotJoined(editor) : fault;
}

void UndoMove(EDITOR *editor)
{
    StepOver(editor, BACK, UR_SELECTION);
    StepOver(editor, BACK, UR_SELECTION);
    StepOver(editor, BACK, UR_MOVE);
}

void UndoAll(EDITOR *editor)
{
    for (int i = 3; i-- > 0;) StepOver(editor, BACK, actions[i]);
}

void RedoAll(EDITOR *editor)
{
    for (const int32_t action : actions) StepOver(editor, FORWARD, action);
}

void ThereAndBack(EDITOR *editor)
{
    for (int i = actionCount; i-- > 0;) StepOver(editor, BACK, actions[i]);
    RedoAll(editor);
}

/* ---- copies, rectangle, delete ---- */

void PickShape(EDITOR *editor)
{
    const PATHNODE &node = EditorActive(editor)->nodes[1];
    Click(editor, {(node.x + pixel / 2) / pixel, (node.y + pixel / 2) / pixel}, ZRPICK_REPLACE);
}

void Duplicate(EDITOR *editor)
{
    RECT dirty;
    EditorToggleOutlines(editor);
    ZrPathDuplicate(editor->dc, editor->table, editor->view, &dirty);
    PutOn(editor);
}

std::string FourRecords(EDITOR *editor)
{
    int count = 0;
    for (const PATHREC *path = EditorActive(editor); path; path = path->nextPath) count++;
    const PATHREC *copy = EditorSelected(editor);
    const int joined = copy && copy->nextJoin && copy->nextJoin == copy->nextSel;
    return count == 4 && joined ? "" : "no copy of the whole shape";
}

void SelectByRectangle(EDITOR *editor)
{
    ZrPathRectClip(5, 5, sceneWidth - 5, sceneHeight - 5, editor->table, editor->dc, editor->view,
                   ZRCLIP_OUTLINE | ZRCLIP_DESELECT);
}

std::string AllSelected(EDITOR *editor)
{
    int count = 0;
    for (const PATHREC *path = EditorSelected(editor); path; path = path->nextSel) count++;
    return count == 4 ? "" : "not all are selected";
}

std::string NothingLeft(EDITOR *editor)
{
    return EditorActive(editor) ? "something is left" : NothingSelected(editor);
}

std::string Nothing(EDITOR *)
{
    return "";
}

} // namespace

const std::vector<SCENE> &Scenes()
{
    static const std::vector<SCENE> scenes = {
        {"pen-first", "Pen: a corner, and a band to the pointer", SCENE_BANDS, FirstCorner, Nothing},
        {"pen-pull", "Pen: a smooth anchor, its handle pulled", SCENE_BANDS, SecondCorner, Nothing},
        {"pen-pending", "Pen: the curve to come", SCENE_BANDS, CurveToCome, Nothing},
        {"pen-smooth", "Pen: a second smooth anchor", SCENE_BANDS, SecondSmoothAnchor, Nothing},
        {"pen-corner", "Pen: a corner again", SCENE_BANDS, MoreCorners, Nothing},
        {"pen-closed", "Pen: a double-click closes the path", SCENE_FINISHED, ClosingDoubleClick, PathIsClosed},
        {"click-away", "A click elsewhere", SCENE_FINISHED, ClickElsewhere, NothingSelected},
        {"pick", "A click on the outline selects", SCENE_FINISHED, Pick, PathSelected},
        {"node-edit", "A click on an anchor: node editing", SCENE_FINISHED, EditNodes, CrestIsMarked},
        {"drag-anchor", "The anchor dragged with its controls", SCENE_FINISHED, DragCrest, CrestHasMoved},
        {"drag-handle", "One control dragged", SCENE_FINISHED, DragOneHandle, CrestHasMoved},
        {"whole", "The path as a whole again", SCENE_FINISHED, WholePathAgain, PathSelected},
        {"move", "Moved", SCENE_FINISHED, Move, PathSelected},
        {"ellipse", "An ellipse", SCENE_FINISHED, AddEllipse, EllipseSelected},
        {"add-click", "An added click selects both", SCENE_FINISHED, AddPathToSelection, BothSelected},
        {"join", "Joined to one shape", SCENE_FINISHED, Join, BothJoined},
        {"frame-bilinear", "A bilinear frame", SCENE_FINISHED, BilinearFrame, BilinearSelected},
        {"bend-bilinear", "Bent through it", SCENE_FINISHED, BendBilinear, BilinearSelected},
        {"undo-bend", "Undo: the frame", SCENE_FINISHED, UndoBend, BilinearSelected},
        {"redo-bend", "Redo: the frame", SCENE_FINISHED, RedoBend, BilinearSelected},
        {"undo-join", "Undo: back before the join", SCENE_FINISHED, UndoJoin, BothSelectedNotJoined},
        {"undo-move", "Undo: back before the move", SCENE_FINISHED, UndoMove, PathSelected},
        {"undo-all", "Undo: back to the drawn path", SCENE_FINISHED, UndoAll, PathSelected},
        {"redo-all", "Redo: all of it", SCENE_FINISHED, RedoAll, BilinearSelected},
        {"there-and-back", "There and back again", SCENE_FINISHED, ThereAndBack, BilinearSelected},
        {"frame-away", "The frame deleted", SCENE_FINISHED, DeleteSelection, TwoRecords},
        {"frame-bicubic", "A bicubic frame", SCENE_FINISHED, BicubicFrame, BicubicSelected},
        {"bend-bicubic", "Bent through it", SCENE_FINISHED, BendBicubic, BicubicSelected},
        {"undo-bicubic", "Undo: a level frame warps nothing", SCENE_FINISHED, UndoBend, BicubicSelected},
        {"redo-bicubic", "Redo: bent once more", SCENE_FINISHED, RedoBend, BicubicSelected},
        {"frame-gone", "The frame deleted", SCENE_FINISHED, DeleteSelection, TwoRecords},
        {"pick-shape", "One click selects the joined shape", SCENE_FINISHED, PickShape, BothSelected},
        {"duplicate", "Duplicated", SCENE_FINISHED, Duplicate, FourRecords},
        {"rectangle", "Selected by rectangle", SCENE_FINISHED, SelectByRectangle, AllSelected},
        {"deleted", "Deleted", SCENE_FINISHED, DeleteSelection, NothingLeft},
    };
    return scenes;
}

void ScriptEnd()
{
    for (int i = 0; i < 2 * actionCount; i++) ZrPathURFree(documentKey, 0, 1);
}

} // namespace session
