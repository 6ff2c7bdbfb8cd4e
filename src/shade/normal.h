/* normal.h - from an offset vector to the surface normal, through the profile table or by the exact arc formulas.
 *
 * A seam is where two parts of the profile meet within a pixel. There the normal is a mixture that is not of unit
 * length, and RIMBLEND holds the two unit normals: a caller that lights the pixel lights both and mixes the colours.
 */
#ifndef ZR32_NORMAL_H
#define ZR32_NORMAL_H

#include "shade/profile.h"

namespace zr32 {

struct RIMBLENDREC {
    double first[3];
    double second[3];
    double weight; /* of second; 0: no seam, first and second hold nothing of use */
};

/* Rewritten by each call of ProfileNormal and ProfileNormalExact. */
extern RIMBLENDREC RIMBLEND;

/* What the normals of one pass share. */
struct SURFACEFORM {
    double width; /* of the bevel, pixels */
    int32_t profile;
    int32_t invert;
    int32_t scale;
    int32_t reflect;
    double indexScale; /* 4096 / width: from a distance to an entry of the table */
};

inline SURFACEFORM SurfaceForm(double width, int32_t profile, int32_t invert, int32_t scale, int32_t reflect)
{
    return {width, profile, invert, scale, reflect, profileSteps / width};
}

/* The normal at an offset, which reflection and profile 104 change in place. normal keeps what it held for a profile
 * code that is not known, but for the last steps of every normal. */
void ProfileNormal(const SURFACEFORM &form, double *offsetX, double *offsetY, double *normal);

/* The same from the arc formulas, without the table; the offset stays. */
void ProfileNormalExact(const SURFACEFORM &form, double x, double y, double *normal);

} // namespace zr32

#endif
