/* shade.h - lighting a surface map: Phong and metallic shaders, bump, reflection, transparency.
 *
 * The shaders read the planes of surface.h and rewrite the caller's 24-bit image and 8-bit mask in place. A colour
 * word's low byte goes with byte 0 of a 24-bit pixel. The viewer looks along z; x runs right, y down, z to the viewer.
 *
 * Order of calls: ShadingGammaToMap once; ZrPathVMap; ZrPathAdjPhongIllum or ZrPathAdjMetallicIllum; a shader. Lights,
 * factors and tables are the library's own state and stay from call to call; only one call at a time may run.
 *
 * Arguments that all of them share:
 *   width      of the bevel in pixels; 0 or less, or not a number: the surface is level everywhere
 *   profile    cross-section of the bevel
 *                0    one quarter circle, steep at the rim, level at the inner end
 *                1    a straight chamfer
 *                100  two quarter circles of half the width, one behind the other, each steep where it begins
 *                101  one quarter circle, level at the rim, steep at the inner end
 *                102  half the width as 0, then half as 101
 *                103  two of half the width as 101
 *                104  half the width as 0, then its mirror image
 *   invert     not 0: the surface is turned inside out
 *   scale      depth of the surface: 30 leaves it as it is, more is deeper and steeper; 0 counts as 30
 *   floatNormals   not 0: normalMap holds SURFVECF, 0: SURFVEC16; the planes do not tell by themselves
 *   distanceMap    32-bit plane; only its sign and whether it is zero matter: less than 0 is outside the shape
 *   normalMap      plane of offset records, 8 bytes each
 *   reflect    0: offsets are measured from the rim; else from the bevel's inner end, and flatMask is switched on; 1
 *              also leaves out the rim's blend into the level surface
 *   mask       8-bit coverage; pixels of 0 are left alone unless flatMask has them
 *   flatMask   8-bit coverage of the level interior, may be null, unused with reflect 0; the shaders raise mask by it,
 *              to 255 where it is full
 *   spot, spotX, spotY   not 0 makes the light a spot that hangs over the place (percent of the image's size)
 *   specularToAlpha      not 0: highlights also raise the mask
 *   bumpPercent, bumpMap depth in percent and an 8-bit height image; on only when both are given
 *   tint, tintMap        colour word of a metal's highlight; 24-bit image of tints by pixel, may be null
 * Every buffer may have another size than the image or target that rules the call: what it does not have reads as 0,
 * and what would be written there is dropped. A buffer whose pixels have fewer bytes than it is used with counts as
 * empty.
 */
#ifndef ZR32PATH_SHADE_H
#define ZR32PATH_SHADE_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Sets the Phong light state, for all four lights whatever lightCount says. Directions stay.
 *   shininess        four exponents of the highlight, larger is smaller and sharper; 0 becomes 1
 *   specularPercent  four strengths of the highlight; raises the diffuse factor too
 *   ambientColor     colour word for the shaders' fixedAmbient, taken times ambientPercent
 *   lightColor       four colour words of the highlights
 *   lightCount       lights that share the diffuse factor of 0.7; not 0
 * 1; 0, with nothing changed, when a pointer is null. */
ZRPATHAPI int32_t ZrPathAdjPhongIllum(const int32_t *shininess, const int32_t *specularPercent, uint32_t ambientColor,
                                      const uint32_t *lightColor, int32_t lightCount, int32_t ambientPercent);

/* Sets the metallic light state, for all four lights: exponents of shininess x 0.06 + 2, strengths of
 * specularLevel x 0.02 + 0.8. 1; 0, with nothing changed, when a pointer is null. */
ZRPATHAPI int32_t ZrPathAdjMetallicIllum(const int32_t *shininess, const int32_t *specularLevel, int32_t lightCount,
                                         int32_t ambientPercent);

/* Builds the gamma map (gamma 0.625) that every shaded colour is written through. Call it once before shading: until
 * then every pixel that a shader writes is black. */
ZRPATHAPI void ShadingGammaToMap(void);

/* Lights image with one Phong light.
 *   lightX, lightY, lightZ  unit vector towards the light; stays in the state as light 0
 *   fixedAmbient            not 0 takes the state's ambient colour, 0 the pixel's own times the ambient factor
 *   specularToAlpha         also makes the highlights four times as strong for the length of the call
 * 1; 0, with nothing changed, when image, distanceMap, normalMap or mask is null. */
ZRPATHAPI int32_t ZrPathShadePhong(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                   int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                   PATHBUF mask, PATHBUF flatMask, int32_t spot, int32_t spotX, int32_t spotY,
                                   double lightX, double lightY, double lightZ, int32_t fixedAmbient,
                                   int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap);

/* Lights image as metal: the highlight has the tint at its core and whitens towards its skirts. Result as
 * ZrPathShadePhong. */
ZRPATHAPI int32_t ZrPathShadeMetallic(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                      int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                      PATHBUF mask, PATHBUF flatMask, int32_t spot, int32_t spotX, int32_t spotY,
                                      double lightX, double lightY, double lightZ, uint32_t tint, PATHBUF tintMap,
                                      int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap);

/* ZrPathShadePhong with several lights.
 *   lightCount  lights, more than 4 count as 4; 0 or less: the ambient term only
 *   spotOn      one word a light, not 0 makes it a spot; null: no spots
 *   spotPos     x and y in percent a light; null: no spots
 *   lights      unit vector towards each light, three doubles a light; null: no lights
 * With specularToAlpha the strengths of the lights from lightCount to 3 stand at a quarter of their value after the
 * call, until the next ZrPathAdjPhongIllum. */
ZRPATHAPI int32_t ZrPathShadeMultiPhong(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                        int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap, int32_t reflect,
                                        PATHBUF mask, PATHBUF flatMask, int32_t lightCount, const int32_t *spotOn,
                                        const int32_t *spotPos, const double *lights, int32_t fixedAmbient,
                                        int32_t specularToAlpha, int32_t bumpPercent, PATHBUF bumpMap);

/* ZrPathShadeMetallic with several lights, given as for ZrPathShadeMultiPhong. Also 0, with nothing changed, for a
 * reflect of 1 without a flatMask. */
ZRPATHAPI int32_t ZrPathShadeMultiMetallic(PATHBUF image, double width, int32_t profile, int32_t invert, int32_t scale,
                                           int32_t floatNormals, PATHBUF distanceMap, PATHBUF normalMap,
                                           int32_t reflect, PATHBUF mask, PATHBUF flatMask, int32_t lightCount,
                                           const int32_t *spotOn, const int32_t *spotPos, const double *lights,
                                           uint32_t tint, PATHBUF tintMap, int32_t specularToAlpha, int32_t bumpPercent,
                                           PATHBUF bumpMap);

/* Aims light lightIndex (0 to 3; any other aims none) along the surface normal at record *column of normalRow, the
 * first record of a row of a normalMap; *result gets the new direction, three doubles, not of unit length on a seam of
 * the profile. The next shader puts its own directions in place: hand it *result. Always 1; nothing is done when a
 * pointer is null. */
ZRPATHAPI int32_t ZrpathChangeLightNormal(double width, int32_t profile, int32_t invert, int32_t scale,
                                          const int32_t *column, int32_t floatNormals, const void *normalRow,
                                          int32_t reflect, int32_t lightIndex, double *result);

/* Wraps a grey source around the surface into an 8-bit target, as a bump map that follows the bevel: the columns of
 * source, of any size, run once around a sphere over the scene, its rows from pole to pole.
 *   floatNormals  also picks the projection: not 0 latitude and longitude, 0 straight from top to bottom
 *   scale         also scales the height of the surface over the target
 * The last row and column of target, pixels outside mask and flatMask, and a target of one row or column are left as
 * they are. 1; 0, with nothing written, when normalMap, target, source or mask is null or memory is short. */
ZRPATHAPI int32_t ZrPathBumpIt(int32_t profile, double width, PATHBUF normalMap, PATHBUF target, int32_t invert,
                               int32_t scale, int32_t floatNormals, PATHBUF source, int32_t reflect, PATHBUF mask,
                               PATHBUF flatMask);

/* ZrPathBumpIt for 24-bit buffers: replaces target by what the surface mirrors of source, its normals ruffled by
 * bumpMap. Rows behind the last of bumpMap are that row. */
ZRPATHAPI int32_t ZrPathReflectIt(int32_t profile, double width, PATHBUF normalMap, PATHBUF target, int32_t invert,
                                  int32_t scale, int32_t floatNormals, PATHBUF source, int32_t reflect, PATHBUF mask,
                                  PATHBUF flatMask, int32_t bumpPercent, PATHBUF bumpMap);

/* Makes glass: lowers an 8-bit mask by how much the surface faces the viewer.
 *   facePercent, edgePercent  transparency facing the viewer and edge-on, 0 to 100; a facePercent of 0 changes nothing,
 *                             whatever edgePercent says
 * 1; 0, with nothing changed, when mask or normalMap is null. */
ZRPATHAPI int32_t ZrPathTransparentMask(PATHBUF mask, int32_t facePercent, int32_t edgePercent, double width,
                                        int32_t profile, int32_t invert, int32_t scale, int32_t floatNormals,
                                        PATHBUF normalMap, int32_t reflect, int32_t bumpPercent, PATHBUF bumpMap);

#ifdef __cplusplus
}
#endif

#endif
