/* render3d.h - paths in space: rotation algebra, projection, wireframe preview, the A-buffer renderer.
 *
 * Vectors are rows, multiplied from the left. The eye stands over the transform's centre at the height
 * viewSize / tan(viewAngle / 2); the picture plane is z = 0. Degrees are turned into radians with 3.14159 for pi.
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
    double viewSize;  /* width of the picture plane that the angle of view spans */
    double reserved1;
    double viewAngle; /* degrees */
    uint8_t reserved2[32];
    tagMATRIX3D matrix; /* the rotation */
} POINTFXMAT3D;

/* The rotation by the angle of the given sine and cosine about a unit axis; a sine of exactly 0 leaves *matrix. */
ZRPATHAPI void VThitaGetMatrix(double sine, double cosine, const tagPOINT3D *axis, tagMATRIX3D *matrix);

/* The rotation A followed by B (axes of any length, angles in degrees) as one axis and angle. 1; 0 when both angles
 * are 0, nothing is then written. */
ZRPATHAPI int32_t AddRotation(tagPOINT3D axisA, double angleA, tagPOINT3D axisB, double angleB, tagPOINT3D *axis,
                              double *angle);

/* *result = a x b as row-major matrices; result may be a or b. Returns a; a null argument writes nothing. */
ZRPATHAPI const tagMATRIX3D *Matrix3X3(const tagMATRIX3D *a, const tagMATRIX3D *b, tagMATRIX3D *result);

/* Makes the matrix orthonormal in place; the second row keeps its direction. */
ZRPATHAPI void ORMatrix(tagMATRIX3D *matrix);

/* Turns the point in place: row vector times matrix. */
ZRPATHAPI void RotatePoint3D(tagPOINT3D *point, const tagMATRIX3D *matrix);

/* Maps one point of a picture at source through rotation, shift and perspective to a picture at target. */
ZRPATHAPI void ZrProject2DTO3D(double x, double y, tagPOINTDB *result, const struct tagRECT *source,
                               const struct tagRECT *target, const tagPOINT3D *eye, const tagPOINT3D *shift,
                               const tagMATRIX3D *matrix);

/* Projects the nodes of the join chain at the head of path's table chain for good; primitive becomes 0. */
ZRPATHAPI void ZrPathTo3D(PATHREC *path, const POINTFXMAT3D *transform);

/* Draws front outline and, with a depth, back outline and ribs on the device context, with its own pen and mode.
 * A transform that brings the frame of half-width w and half-height h behind the eye is overwritten with the last one
 * that did not. */
ZRPATHAPI void ZrPath3DWireFrame(ZRHDC hdc, PATHREC *path, int32_t w, int32_t h, const COORDSTRUCT *view,
                                 POINTFXMAT3D *transform, int32_t depth);

/* The rectangle that such a drawing covers, in image pixels with the usual margin. */
ZRPATHAPI void ZrPathGet3DMiniMaxRect(const PATHREC *path, const POINTFXMAT3D *transform, int32_t z, int32_t depth,
                                      struct tagRECT *rect);

/* Renders a bevelled shape, turned in space and seen in perspective, into colour and alpha.
 *   path        start of the table chain; the chain's last record is not rendered
 *   camera      the transform
 *   colourBuf   24 bits; its size rules the render
 *   alphaBuf    8 bits, same size
 *   outOrigin, maskOrigin   image positions of the output's and of the mask's top left; null reads as (0, 0)
 *   colour      address of the material's colour word
 *   mask        32-bit A-buffer mask from ZrPathToBuf with depth 4
 *   surface     offset plane of SURFVEC16, may be null
 *   glass       0, or not 0: alpha follows the viewing angle. With 0 the top byte of each colour is 0 before shading,
 *               so that samples are translucent with the glass material and the alpha buffer holds the highlight
 *   width, scale, profile, invert   the bevel, as in shade.h
 *   light       three doubles, the direction to the light, or null for the last one
 * The reserved arguments are not read. 1; 0 when path, camera, colourBuf, alphaBuf or mask is null. */
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
