/* surface.h - surface maps: how far each pixel lies from a shape's outline, and in which direction.
 *
 * Distance plane: a PATHBUF of 32 bits whose pixels are single floats, squared distances; 0.0 no surface, 0.0001 the
 * outline itself, 300.0 a flat top, less than 0 outside. Offset plane: a PATHBUF of depth code 0x40 whose pixels are
 * SURFVEC16 or SURFVECF; which of the two follows from the arguments that made it.
 */
#ifndef ZR32PATH_SURFACE_H
#define ZR32PATH_SURFACE_H

#include "store.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Vectors from a pixel to the nearest point of the outline and, on a ridge, to a second edge; 1/256 pixel. */
typedef struct SURFVEC16 {
    int16_t x1;
    int16_t y1;
    int16_t x2;
    int16_t y2;
} SURFVEC16;

/* One vector in pixels. */
typedef struct SURFVECF {
    float x;
    float y;
} SURFVECF;

/* code 1: the map begins, value 0. code 2: a pass has advanced, value a percentage; a result of 0 aborts. code 4: the
 * map is finished, value 100, also after a failure. The third argument is always 0. Results of codes 1 and 4 are not
 * looked at. A pass without a mask sends a code 1 of its own, and at its end a code 4 with the number of rows. */
typedef int32_t (*ZRVMAPCALLBACK)(int32_t code, int32_t value, int32_t zero, intptr_t user);

typedef struct VMAPPROGRESS {
    int32_t active;          /* set to 1 by the exact distance builder */
    ZRVMAPCALLBACK callback; /* may be null */
    intptr_t user;           /* handed back unchanged */
    int32_t rangeFrom;       /* set by the call: percentages at which the running pass begins and ends, in a pass */
    int32_t rangeTo;         /* without a mask 0 and the number of rows */
} VMAPPROGRESS;

/* Makes the surface map of a shape.
 *   path          the shape
 *   distOut       in: not 0 asks for the distance plane; out: the new plane, or 0
 *   offsetOut     the same for the offset plane
 *   evenOdd       without a mask: not 0 even-odd rule, 0 non-zero winding
 *   fixedHeight   lone primitives: not 0 sets the height to 30.0, 0 lets the size decide
 *   envelopeMode  not 0: from the path's envelope outline record
 *   outset        0: inside the outline; above 0: outside it, by a mask this much larger on each side; below: both
 *   noMitre       without a mask: not 0 leaves out the mitres of corners
 *   width         in: reach of the surface in pixels, 0 for no surface; out: overwritten for lone primitives and
 *                 envelopes
 *   floatVectors  without a mask: not 0 writes SURFVECF instead of SURFVEC16; a lone primitive (IsOnlyPrimitive) with
 *                 an outset of 0 always writes SURFVECF, mask or not
 *   useMask       not 0: made against mask, by sweeping the outline; 0: exact, without a mask
 *   mask          an 8-bit mask of the shape from ZrPathToBuf, which sets the map's size; inverted for a time and
 *                 unchanged on return
 *   progress      may be null
 *   zoom          map pixels a path unit
 * A sweep walks the whole table chain that path belongs to, but for its last record; a chain is therefore made with a
 * record behind it, such as its envelope's frame. Without a mask the join chain behind path counts.
 * The caller frees the planes with ZrPathBufFree, and the record of the progress stays the caller's. A pass without a
 * mask takes the selected and closing bits out of the types of the nodes it measures, in the path itself.
 *
 * Result: 1; also for a width of 0, or without an envelope record in envelope mode: the planes are then zero-filled.
 * 0, with both planes 0: a null path or width, a mask that is missing, or a pass that the callback has stopped (error
 * 5200).
 * 0, with planes zero-filled: an outset without useMask; an envelope record of no known form; a lone primitive with
 * fewer nodes than its kind has. 0 too when neither plane was asked for, but for a pass without a mask.
 * 0 with error 1001: a plane could not be had; *distOut is 0, and *offsetOut as well if it was its turn.
 * 0, with the handles left alone and no callback: no memory for the outline without a mask.
 * 0 or 1, with planes of which rows may be empty: no memory for the lattice of an envelope or its mask.
 * A pass without a mask gives 1 even when the callback or Esc stopped it, or it had no memory (error 1001): null planes
 * tell.
 * Code 4 is sent in every case but those two that come before the planes. */
ZRPATHAPI int32_t ZrPathVMap(PATHREC *path, PATHBUF *distOut, PATHBUF *offsetOut, int32_t evenOdd, int32_t fixedHeight,
                             int32_t envelopeMode, int32_t outset, int32_t noMitre, double *width, int32_t floatVectors,
                             int32_t useMask, PATHBUF mask, VMAPPROGRESS *progress, ZRFIXED zoom);

#ifdef __cplusplus
}
#endif

#endif
