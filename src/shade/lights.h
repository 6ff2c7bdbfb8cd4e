/* lights.h - the light state of the shaders: factors, colours, directions, the gamma map, the Fresnel table.
 *
 * One instance in the library, alive from load to unload. Factors change through ZrPathAdjPhongIllum and
 * ZrPathAdjMetallicIllum, directions through the shaders' own arguments and ZrpathChangeLightNormal.
 */
#ifndef ZR32_LIGHTS_H
#define ZR32_LIGHTS_H

#include <cstdint>

namespace zr32 {

constexpr int maxLights = 4;

/* The part of the state that every lighting model has. */
struct LIGHTFACTORS {
    double ambient;
    double diffuse[maxLights];
    double specular[maxLights];
    double shininess[maxLights];
    double spotPower;      /* falloff of the spot with a single light */
    double multiSpotPower; /* and with several */
};

struct SHADELIGHTSREC {
    LIGHTFACTORS factors;
    uint8_t ambientColor[3];          /* already multiplied by ambient */
    uint8_t lightColor[maxLights][3]; /* highlight colour of each light, channels 0 to 2 */
    double lightDir[maxLights][3];    /* unit vectors from the surface towards each light; also the metallic ones */
};

struct METALLIGHTSREC {
    LIGHTFACTORS factors;
    uint8_t specularTint[3]; /* of the metal's highlight, at the pixel at hand */
    uint8_t metalBase[3];    /* ambient colour of the pixel at hand */
};

extern SHADELIGHTSREC SHADELIGHTS;
extern METALLIGHTSREC METALLIGHTS;
extern uint8_t gammaMap[256];

/* map[i] = (i / 255) ^ gamma x 255, cut; the identity for a gamma of exactly 1. */
void GammaMapBuild(double gamma, uint8_t *map);

/* Reflectance of the metal by the cosine of the angle in thousandths, averaged over both polarisations. An entry behind
 * the last reads 0.0. Made on first use. */
void FresnelTableInit();
double FresnelAt(int32_t index);

} // namespace zr32

#endif
