/* render3d.h - paths in space: rotation algebra, projection, wireframe preview, the A-buffer renderer.
 *
 * A path lies in the picture plane z = 0 and is turned about a centre in it; x goes to the right, y down the rows, and
 * larger z comes nearer to the eye. Vectors are rows, multiplied from the left. The eye stands over the centre at the
 * height viewSize / tan(viewAngle / 2). Degrees are turned into radians with 3.14159 for pi. Nothing here reports an
 * error but by the results told below; a null argument does nothing unless said otherwise.
 */
#ifndef ZR32PATH_RENDER3D_H
#define ZR32PATH_RENDER3D_H

#include "store.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A transform in space, 144 bytes on every build; the caller keeps it. */
typedef struct POINTFXMAT3D {
    ZRPOINTFX center; /* the point of the path about which it turns; also the foot of the eye */
    ZRPOINTFX shift;  /* where that point goes: added after the rotation */
    double viewSize;  /* width of the picture plane that the angle of view spans, pixels */
    double reserved1;
    double viewAngle; /* degrees */
    uint8_t reserved2[32];
    tagMATRIX3D matrix; /* the rotation */
} POINTFXMAT3D;

/* Stores the rotation by the angle of the given sine and cosine about a unit axis. A sine of exactly 0 leaves *matrix
 * as it is, also for a half turn: start from the identity. */
ZRPATHAPI void VThitaGetMatrix(double sine, double cosine, const tagPOINT3D *axis, tagMATRIX3D *matrix);

/* The rotation A followed by B, as a trackball adds them up, as one axis and one angle in degrees. Axes may have any
 * length but 0; when one angle is 0 the other pair is copied as it stands, otherwise the result's axis has length 1.
 * 1; 0 when both angles are 0 or an address is null, nothing is then written. */
ZRPATHAPI int32_t AddRotation(tagPOINT3D axisA, double angleA, tagPOINT3D axisB, double angleB, tagPOINT3D *axis,
                              double *angle);

/* *result = a x b as row-major matrices, the rotation a followed by b; result may be a or b. Returns a; a null argument
 * writes nothing. */
ZRPATHAPI const tagMATRIX3D *Matrix3X3(const tagMATRIX3D *a, const tagMATRIX3D *b, tagMATRIX3D *result);

/* Makes the matrix orthonormal in place, against the drift of many products; the second row keeps its direction. A
 * singular matrix becomes one of no numbers. */
ZRPATHAPI void ORMatrix(tagMATRIX3D *matrix);

/* Turns the point in place: row vector times matrix. */
ZRPATHAPI void RotatePoint3D(tagPOINT3D *point, const tagMATRIX3D *matrix);

/* Maps one point (x, y) of a picture whose left top lies at source through rotation about the eye's foot, shift (its z
 * is not used) and perspective, to a picture whose left top lies at target. */
ZRPATHAPI void ZrProject2DTO3D(double x, double y, tagPOINTDB *result, const struct tagRECT *source,
                               const struct tagRECT *target, const tagPOINT3D *eye, const tagPOINT3D *shift,
                               const tagMATRIX3D *matrix);

/* Projects the nodes of the join chain at the head of path's table chain for good: apply it to a copy to keep the
 * shape. primitive becomes 0; a shape's own nodes stay. Points that the eye cannot see get coordinates without a
 * meaning. */
ZRPATHAPI void ZrPathTo3D(PATHREC *path, const POINTFXMAT3D *transform);

/* Draws the join chain at the head of path's table chain: its front outline and, with a depth, the back outline at z =
 * -depth and a rib at each anchor, straight on the device context with the pen and raster mode that it has, in window
 * coordinates of the view. A transform that brings a corner of the frame of half-width w and half-height h behind the
 * eye is overwritten with the last one of any call that did not, and that one is drawn; when that fails for this frame
 * too, nothing is drawn. A null hdc or view only leaves out the drawing. */
ZRPATHAPI void ZrPath3DWireFrame(ZRHDC hdc, PATHREC *path, int32_t w, int32_t h, const COORDSTRUCT *view,
                                 POINTFXMAT3D *transform, int32_t depth);

/* The rectangle that such a drawing covers, front face at z and back face at -depth, in image pixels with a margin of 5
 * left and above and 6 right and below. A record without nodes leaves *rect. */
ZRPATHAPI void ZrPathGet3DMiniMaxRect(const PATHREC *path, const POINTFXMAT3D *transform, int32_t z, int32_t depth,
                                      struct tagRECT *rect);

/* Renders a bevelled shape, turned in space and seen in perspective, into colour and alpha.
 *   path        start of the table chain to render. The chain's last record is not rendered: put an empty record behind
 *               the shape
 *   camera      the transform
 *   colourBuf   24 bits; its size rules the render. Colours are not multiplied by the alpha
 *   alphaBuf    8 bits, the same size. Where sizes differ, each buffer is written as far as it goes
 *   outOrigin   image position of the output's left top, subtracted from each projected point
 *   maskOrigin  image position of the left top of mask and surface. Either origin null: (0, 0)
 *   colour      address of the material's blue, green and red bytes; null: black
 *   mask        32-bit A-buffer mask of the shape from ZrPathToBuf with depth 4; what lies beside it is outside
 *   surface     offset plane of SURFVEC16 of the same size from ZrPathVMap. Null, or of another depth: the bevel is two
 *               pixels wide
 *   glass       not 0: alpha follows the viewing angle, from 255 along the surface to 16 straight on. 0: the alpha of
 *               each sample is 0 before it is lit, so that samples are translucent, lit as glass, and the alpha buffer
 *               holds the highlights alone
 *   width       bevel width in pixels; from 2 on something is drawn: where both halves of a cross-section are shorter
 *               than a pixel, as in the thinnest strokes, there is none. What lies deeper than width inside the shape
 *               stays empty
 *   scale, profile, invert  the bevel's cross-section, as in shade.h; scale changes nothing here
 *   light       three doubles, the unit vector to the light, or null for the one of the last call
 *   reserved    are not read
 * All of both buffers is written up to 500 rows, empty pixels as zeros; only the first 500 rows are rendered, a further
 * band of up to 500 rows clears as many rows at the top again and leaves its own as they were. The caller keeps
 * everything that it hands in; nothing is kept but light direction, profile table and material.
 * 1; 0 when path, camera, colourBuf, alphaBuf or mask is null, or without memory for a band's plane: its rows are then
 * left. Where memory for fragments ends, further samples are dropped. */
ZRPATHAPI int32_t ZrPathABufRender(PATHREC *path, const POINTFXMAT3D *camera, PATHBUF colourBuf, PATHBUF alphaBuf,
                                   intptr_t reserved5, const struct tagPOINT *outOrigin,
                                   const struct tagPOINT *maskOrigin, const uint32_t *colour, PATHBUF mask,
                                   PATHBUF surface, intptr_t reserved11, intptr_t reserved12, intptr_t reserved13,
                                   intptr_t reserved14, intptr_t reserved15, intptr_t reserved16, intptr_t reserved17,
                                   int32_t glass, intptr_t reserved19, int32_t width, int32_t scale, int32_t profile,
                                   int32_t invert, const double *light, int32_t reserved25);

#ifdef __cplusplus
}
#endif

#endif
