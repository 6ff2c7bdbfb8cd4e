/* raster.h - raster buffers and masks.
 *
 * A PATHBUF is one block: three 32-bit words (depth code, width, height), then the pixels, rows unpadded and top-down.
 * The handle is the address of the first pixel. Depth codes: 8 one byte a pixel, 24 three, 32 four, any other eight.
 * The value 1 is a reserved handle that owns nothing. Pixels are at least 4-byte aligned, not more.
 */
#ifndef ZR32PATH_RASTER_H
#define ZR32PATH_RASTER_H

#include "store.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Row access to a buffer: filled by ZrPathBufLock1, owns nothing. */
typedef struct PATHBUFLOCK {
    PATHBUF pixels;
    uint32_t width;
} PATHBUFLOCK;

/* A new zero-filled buffer of width x height pixels of a depth code, in a block of that many bytes and 12 more. Sides
 * of 0 are legal; null for a negative side, for a block that no 32-bit number could size, and without memory. The
 * caller frees it with ZrPathBufFree. */
ZRPATHAPI PATHBUF ZrPathBufAlloc(int32_t bits, int32_t width, int32_t height);

/* Frees a buffer; the value 1 and null are left alone. Always 1. */
ZRPATHAPI int32_t ZrPathBufFree(PATHBUF buf);

/* A copy of the whole block, header included; null for null and without memory. The first argument is not read. The
 * caller frees it with ZrPathBufFree. */
ZRPATHAPI PATHBUF ZrPathBufDuplicate(int32_t unused, PATHBUF buf);

/* Size of the whole block, header included, as the allocator reports it (which can exceed what was asked for); 0 for
 * a null handle. */
ZRPATHAPI uint32_t ZrPathBufSize(PATHBUF buf);

/* Stores the header words: pixels a row, rows, depth code. 1; 0, with nothing stored, for a null pointer. */
ZRPATHAPI int32_t ZrPathBufGetWHU(PATHBUF buf, int32_t *width, int32_t *height, int32_t *bits);

/* Fills a row access record, good for as long as the buffer is; locks nothing. The three words are not read. 1; 0, with
 * nothing stored, for a null pointer. */
ZRPATHAPI int32_t ZrPathBufLock1(PATHBUF buf, int32_t unused1, int32_t unused2, int32_t unused3, PATHBUFLOCK *lock);

/* Does nothing. Always 1. */
ZRPATHAPI int32_t ZrPathBufUnlock1(PATHBUFLOCK *lock);

/* Address of the first pixel of row y, which is not checked; null for a record without a buffer. */
ZRPATHAPI uint8_t *ZrPathBufLineRead(const PATHBUFLOCK *lock, int32_t y);

/* Turns paths into masks, one buffer a compound shape: one for an unselected path, one a join chain of a selection.
 *   path     any record of the shape
 *   depth    4: 32-bit A-buffer masks (8 x 4 sub-pixels, a 1 bit lies outside; byte k is sample row k from the top, bit
 *            7 the leftmost column); 16: 8-bit masks, made at zoom times the size and reduced to one pixel a path unit
 *            when zoom is above 1; any other: plain 8-bit masks, 255 where the shape covers the pixel
 *   evenOdd  not 0: even-odd rule, 0: non-zero winding
 *   aaMode   0: hard edge; 999: 4 sample rows a pixel; other: 16
 *   scope    0: filled; not 0: the outline only, one pixel wide (hard for aaMode 0 or depth 4, else smooth); 3: outline
 *            and rectangle of the whole table chain
 *   zoom     buffer pixels a path unit; an outline of depth 16 is never enlarged
 *   inflate  pixels added on each side of a rectangle; a negative value counts by its magnitude
 *   rects    gets an array of rectangles in zoomed pixels, where each buffer lies
 *   bufs     gets an array of the buffers
 * Returns the number of buffers. The caller frees each buffer with ZrPathBufFree and both arrays with GlobalFree.
 * A null path, a rectangle that no buffer can hold or missing memory gives 0 and null arrays. Where memory is missing
 * only for the tables of a band, a filled mask counts all the same, with its rows from there on left as 0. */
ZRPATHAPI int32_t ZrPathToBuf(PATHREC *path, int32_t depth, int32_t evenOdd, int32_t aaMode, int32_t scope,
                              ZRFIXED zoom, struct tagRECT **rects, PATHBUF **bufs, int32_t inflate);

#ifdef __cplusplus
}
#endif

#endif
