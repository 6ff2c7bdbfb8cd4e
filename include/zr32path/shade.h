/* shade.h - lighting a surface map: Phong and metallic shaders, bump, reflection, transparency.
 *
 * The shaders read the planes of surface.h and rewrite the caller's 24-bit image and 8-bit mask in place. A colour
 * word's low byte goes with byte 0 of a 24-bit pixel. The viewer looks along z; x runs right, y down, z to the viewer.
 *
 * Arguments that all of them share:
 *   width, profile, invert, scale   bevel width in pixels; cross-section 0, 1, 100 to 104; not 0: inside out; depth of
 *                                   the surface, 0 for none
 *   floatNormals                    not 0: normalMap holds SURFVECF, 0: SURFVEC16
 *   reflect                         measures offsets from the bevel's inner end, and switches flatMask on
 *   flatMask                        coverage of the flat interior, may be null
 *   spot, spotX, spotY              not 0 makes the light a spot at these percentages of the image's size
 *   specularToAlpha                 not 0: highlights also raise the mask
 *   bumpPercent, bumpMap            an 8-bit height image and its depth; on only when both are non-zero
 * Buffers of other sizes than the image read as 0 where they have nothing.
 */
#ifndef ZR32PATH_SHADE_H
#define ZR32PATH_SHADE_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Sets the Phong light state from four exponents (0 becomes 1), four percentages, an ambient colour word and four
 * light colour words. Directions stay. Always 1. */
ZRPATHAPI int32_t ZrPathAdjPhongIllum(const int32_t *shininess, const int32_t *specularPercent, uint32_t ambientColor,
                                      const uint32_t *lightColor, int32_t lightCount, int32_t ambientPercent);

/* Sets the metallic light state. Always 1. */
ZRPATHAPI int32_t ZrPathAdjMetallicIllum(const int32_t *shininess, const int32_t *specularLevel, int32_t lightCount,
                                         int32_t ambientPercent);

/* Builds the gamma map (gamma 0.625) that every shaded colour is written through; call it once before shading. */
ZRPATHAPI void ShadingGammaToMap(void);

/* Lights image with one Phong light; (lightX, lightY, lightZ) is the unit vector towards it. fixedAmbient: not 0
 * takes the state's ambient colour, 0 the pixel's own. 1; 0 when image, distanceMap, normalMap or mask is null. */
ZRPATHAPI int32_t ZrPathShadePhong(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                   int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                   PATHBUF mask, PATHBUF flatMask, int32_t spot, int32_t spotX, int32_t spotY,
                                   double lightX, double lightY, double lightZ, int32_t fixedAmbient,
                                   int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap);

/* Lights image as metal; tint is the highlight's colour, tintMap a 24-bit tint a pixel, may be null. Result as
 * ZrPathShadePhong. */
ZRPATHAPI int32_t ZrPathShadeMetallic(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                      int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                      PATHBUF mask, PATHBUF flatMask, int32_t spot, int32_t spotX, int32_t spotY,
                                      double lightX, double lightY, double lightZ, uint32_t tint, PATHBUF tintMap,
                                      int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap);

/* ZrPathShadePhong with up to four lights: spotOn one word a light, spotPos a pair of percentages a light, lights
 * three doubles a light. */
ZRPATHAPI int32_t ZrPathShadeMultiPhong(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                        int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                        PATHBUF mask, PATHBUF flatMask, int32_t lightCount, const int32_t *spotOn,
                                        const int32_t *spotPos, const double *lights, int32_t fixedAmbient,
                                        int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap);

/* ZrPathShadeMetallic with up to four lights. Also 0 for reflect 1 without a flatMask. */
ZRPATHAPI int32_t ZrPathShadeMultiMetallic(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                           int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap,
                                           int32_t reflect, PATHBUF mask, PATHBUF flatMask, int32_t lightCount,
                                           const int32_t *spotOn, const int32_t *spotPos, const double *lights,
                                           uint32_t tint, PATHBUF tintMap, int32_t specularToAlpha, int32_t bumpPercent,
                                           PATHBUF bumpMap);

/* Aims light lightIndex (0 to 3) along the surface normal at record *column of normalRow; *result gets the new
 * direction, three doubles. Always 1. */
ZRPATHAPI int32_t ZrpathChangeLightNormal(double width, int32_t profile, int32_t invert, int32_t scale,
                                          const int32_t *column, int32_t floatNormals, const void *normalRow,
                                          int32_t reflect, int32_t lightIndex, double *result);

/* Wraps a grey source around the surface into an 8-bit target, as a bump map that follows the bevel. The last row and
 * column of target are not written. 1; 0 when normalMap, target, source or mask is null. */
ZRPATHAPI int32_t ZrPathBumpIt(int32_t profile, double width, PATHBUF normalMap, PATHBUF target, int32_t invert,
                               int32_t scale, int32_t floatNormals, PATHBUF source, int32_t reflect, PATHBUF mask,
                               PATHBUF flatMask);

/* ZrPathBumpIt for 24-bit buffers: replaces target by what the surface mirrors of source. */
ZRPATHAPI int32_t ZrPathReflectIt(int32_t profile, double width, PATHBUF normalMap, PATHBUF target, int32_t invert,
                                  int32_t scale, int32_t floatNormals, PATHBUF source, int32_t reflect, PATHBUF mask,
                                  PATHBUF flatMask, int32_t bumpPercent, PATHBUF bumpMap);

/* Lowers an 8-bit mask by how much the surface faces the viewer; percentages of transparency facing and edge-on.
 * 1; 0 when mask or normalMap is null. */
ZRPATHAPI int32_t ZrPathTransparentMask(PATHBUF mask, int32_t facePercent, int32_t edgePercent, double width,
                                        int32_t profile, int32_t invert, int32_t scale, int32_t floatNormals,
                                        PATHBUF normalMap, int32_t reflect, int32_t bumpPercent, PATHBUF bumpMap);

#ifdef __cplusplus
}
#endif

#endif
