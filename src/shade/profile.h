/* profile.h - how a bevel's cross-section rises from its rim to its inner end.
 *
 * Goes in: a profile code, the bevel's width, inside out or not. Comes out: one table by distance, which the shaders
 * read for normals (rise) and the 3D renderer for heights. The trigonometry runs once a change, never a pixel.
 *
 * Profile codes:
 *   0    one quarter circle of radius width, steep at the rim, level at the inner end
 *   1    a straight chamfer
 *   100  two equal quarter circles of radius width / 2, one behind the other
 *   101  one quarter circle of radius width, level at the rim, steep at the inner end
 *   102  a quarter circle of radius width / 2 as in code 0, then one as in code 101
 *   103  two quarter circles of radius width / 2 as in code 101, one behind the other
 *   104  a quarter circle of radius width / 2 as in code 0, then its mirror image
 */
#ifndef ZR32_PROFILE_H
#define ZR32_PROFILE_H

#include <cmath>
#include <cstdint>

namespace zr32 {

struct PROFILEENTRY {
    double rise;   /* the z that goes with an offset vector of this length, before normalising */
    double height; /* of the surface, pixels; negative when inside out */
};

inline int ProfileIsKnown(int32_t profile)
{
    return profile == 0 || profile == 1 || (profile >= 100 && profile <= 104);
}

/* Entry i stands for the distance i x width / 4096 from the rim: 0 to 4095 span the bevel, the rest lies beyond it. */
constexpr int profileEntries = 6192;
constexpr double profileSteps = 4096.0;

/* All zero until the first build, then valid until a build with other arguments. */
extern PROFILEENTRY PROFILETBL[profileEntries];

/* The rise of a quarter circle at distance d from where it begins, u being the cosine of the slope's angle there. */
inline double ArcRise(double d, double u, int32_t invert)
{
    return invert ? d / std::tan(std::asin(u)) : std::tan(std::acos(u)) * d;
}

/* Rebuilds PROFILETBL unless all four arguments are those of the last build. A code that is not above leaves the table
 * as it was, but counts as a build. scale plays no part in the table, but a change of it rebuilds. */
void ProfileTableBuild(int32_t profile, double width, int32_t scale, int32_t invert);

} // namespace zr32

#endif
