/* plain_shader.h - the shaders written out again, plainly: the yardstick that the library's forms are compared with.
 *
 * Nothing is shared, remembered or skipped: every pixel asks for its bytes one by one, every light is worked out where
 * it is used, the two materials and the two numbers of lights each have their own lines. Light factors and directions
 * are read from the library's state; tables, normals, seams and the gamma map are this file's own.
 */
#ifndef ZR32_TESTS_PLAIN_SHADER_H
#define ZR32_TESTS_PLAIN_SHADER_H

#include <zr32path.h>

namespace zr32test {

/* A seam as the plain normal leaves it. */
struct PLAINSEAM {
    double first[3];
    double second[3];
    double weight;
};

/* The rise of a profile at entry i of its table. */
double PlainRise(int32_t profile, double width, int32_t invert, int i);

struct PLAINBEVEL {
    double width;
    int32_t profile;
    int32_t invert;
    int32_t scale;
    int32_t reflect;
};

void PlainNormal(const PLAINBEVEL &bevel, double *x, double *y, double *normal, PLAINSEAM *seam);

/* All arguments of the four shaders. */
struct PLAINSHADE {
    int metal; /* not 0: the metallic material */
    int multi; /* not 0: the form for several lights */
    PATHBUF image;
    PATHBUF distanceMap;
    PATHBUF normalMap;
    PATHBUF mask;
    PATHBUF flatMask;
    PATHBUF bumpMap;
    PATHBUF tintMap;
    PLAINBEVEL bevel;
    int32_t floatNormals;
    int32_t lightCount;
    int32_t spotOn[4];
    int32_t spotPos[4][2];
    double lights[4][3];
    int32_t fixedAmbient;
    int32_t specularToAlpha;
    int32_t bumpPercent;
    uint32_t tint;
};

void PlainShade(const PLAINSHADE &call);

/* A byte, word or float of a buffer; 0 where the buffer has nothing. */
int PlainByte(PATHBUF buf, int32_t x, int32_t y, int channels = 1, int channel = 0);

/* The first or second offset of a record in pixels. */
void PlainOffset(PATHBUF normalMap, int32_t x, int32_t y, int32_t floats, double *offset);

} // namespace zr32test

#endif
