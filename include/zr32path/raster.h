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

/* A new zero-filled buffer; null when it cannot be had. The caller frees it with ZrPathBufFree. */
ZRPATHAPI PATHBUF ZrPathBufAlloc(int32_t bits, int32_t width, int32_t height);

/* Frees a buffer; the value 1 and null are left alone. Always 1. */
ZRPATHAPI int32_t ZrPathBufFree(PATHBUF buf);

/* A copy of the whole block, header included; null when it cannot be had. The first argument is not read. */
ZRPATHAPI PATHBUF ZrPathBufDuplicate(int32_t unused, PATHBUF buf);

/* Size of the whole block, header included, as the allocator reports it (which can exceed what was asked for); 0 for
 * a null handle. */
ZRPATHAPI uint32_t ZrPathBufSize(PATHBUF buf);

/* Stores the header words. Always 1. */
ZRPATHAPI int32_t ZrPathBufGetWHU(PATHBUF buf, int32_t *width, int32_t *height, int32_t *bits);

/* Fills a row access record; locks nothing. The three words are not read. Always 1. */
ZRPATHAPI int32_t ZrPathBufLock1(PATHBUF buf, int32_t unused1, int32_t unused2, int32_t unused3, PATHBUFLOCK *lock);

/* Does nothing. Always 1. */
ZRPATHAPI int32_t ZrPathBufUnlock1(PATHBUFLOCK *lock);

/* Address of the first pixel of row y, unchecked. */
ZRPATHAPI uint8_t *ZrPathBufLineRead(const PATHBUFLOCK *lock, int32_t y);

/* Turns paths into masks, one buffer a compound shape: one for an unselected path, one a join chain of a selection.
 *   path     any record of the shape
 *   depth    4: 32-bit A-buffer masks (8 x 4 sub-pixels, a 1 bit lies outside); 16: 8-bit masks, supersampled when
 *            zoom is above 1; any other: plain 8-bit masks
 *   evenOdd  not 0: even-odd rule, 0: non-zero winding
 *   aaMode   0: hard edge; 999: 4 sample rows a pixel; other: 16
 *   scope    0: filled; not 0: the outline only, one pixel wide; 3: outline and rectangle of the whole table chain
 *   zoom     buffer pixels a path unit
 *   inflate  pixels added on each side of a rectangle; a negative value counts by its magnitude
 *   rects    gets an array of rectangles in zoomed pixels, where each buffer lies
 *   bufs     gets an array of the buffers
 * Returns the number of buffers. The caller frees each buffer with ZrPathBufFree and both arrays with GlobalFree.
 * A null path or missing memory gives 0 and null arrays. */
ZRPATHAPI int32_t ZrPathToBuf(PATHREC *path, int32_t depth, int32_t evenOdd, int32_t aaMode, int32_t scope,
                              ZRFIXED zoom, struct tagRECT **rects, PATHBUF **bufs, int32_t inflate);

#ifdef __cplusplus
}
#endif

#endif
