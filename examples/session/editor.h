/* editor.h - the window of a small editor: an image, the outlines over it, and the node marks.
 *
 * The window is a bitmap in which all three are joined by XOR: outlines by ZrPathPaint, marks and rubber bands by the
 * library's own drawing on the device context. So whatever is drawn again goes away, and an edit is: take off what it
 * changes, edit, put it back on.
 */
#ifndef SESSION_EDITOR_H
#define SESSION_EDITOR_H

#include "platform/platform.h"

#include <string>
#include <vector>
#include <zr32path.h>

namespace session {

struct EDITOR {
    int32_t width;
    int32_t height;
    std::vector<uint8_t> image; /* 24-bit, blue first, bottom row first, rows padded to 4 bytes */
    PATHTBL *table;
    COORDSTRUCT *view;
    HWND window; /* owns the mouse while the pen tool draws */
    HDC dc;
    HBITMAP bitmap;
    HGDIOBJ oldBitmap;
    uint8_t *pixels; /* the window, laid out like the image */
};

/* image: rows top-down, red first, 3 bytes a pixel; null for grey. 1; 0 without memory. */
int EditorOpen(int32_t width, int32_t height, const uint8_t *image, EDITOR *editor);

void EditorClose(EDITOR *editor);

PATHREC *EditorActive(const EDITOR *editor);
PATHREC *EditorSelected(const EDITOR *editor);

/* Put the outlines, or the marks of the selection, on or take them off. */
void EditorToggleOutlines(EDITOR *editor);
void EditorToggleMarks(EDITOR *editor);

/* Draws the window anew: image, outlines, marks. Rubber bands are gone. */
void EditorRepaint(EDITOR *editor);

/* The window, rows top-down, red first. */
std::vector<uint8_t> EditorPicture(const EDITOR *editor);

/* What of the window and the display buffer is not as it must be after a finished step; empty when all is:
 * the buffer equals a fresh ZrPathDraw of the same records, hiding and drawing the selection restores every byte, marks
 * drawn twice leave the window as it was, and the window is image, outlines and marks and nothing else. */
std::string EditorFault(EDITOR *editor);

} // namespace session

#endif
