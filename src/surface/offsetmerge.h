/* offsetmerge.h - how a pixel of the planes takes one more distance and vector.
 *
 * The distance plane keeps the least. A pixel of the offset plane keeps its nearest edge in the first vector and, in
 * the second, another edge at nearly the same distance: that is what makes a ridge visible to a shader. Which vectors
 * count as the same edge, and which wins, differs between lines, curves and mitres.
 */
#ifndef ZR32_OFFSETMERGE_H
#define ZR32_OFFSETMERGE_H

#include "surface/surface.h"

namespace zr32 {

constexpr double vectorScale = 256.0;

inline int16_t VectorWord(double value)
{
    return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(TruncInt(value))));
}

inline POINTDB FirstVector(const SURFVEC16 *pixel)
{
    return {pixel->x1 / vectorScale, pixel->y1 / vectorScale};
}

inline POINTDB SecondVector(const SURFVEC16 *pixel)
{
    return {pixel->x2 / vectorScale, pixel->y2 / vectorScale};
}

inline void SetFirstVector(const POINTDB &v, SURFVEC16 *pixel)
{
    pixel->x1 = VectorWord(v.x * vectorScale);
    pixel->y1 = VectorWord(v.y * vectorScale);
}

inline void SetSecondVector(const POINTDB &v, SURFVEC16 *pixel)
{
    pixel->x2 = VectorWord(v.x * vectorScale);
    pixel->y2 = VectorWord(v.y * vectorScale);
}

inline int VectorsNear(const POINTDB &a, const POINTDB &b, double tolerance)
{
    return std::fabs(a.x - b.x) < tolerance && std::fabs(a.y - b.y) < tolerance;
}

/* Keeps the least squared distance that reached a pixel. */
inline void MergeDistance(double distance, float *pixel)
{
    /* Without a branch: which of two rays comes nearer is as good as random. */
    const float old = *pixel;
    const int taken = static_cast<int>(old == 0) | static_cast<int>(static_cast<double>(old) > distance);
    const float either[2] = {old, static_cast<float>(distance)};
    *pixel = either[taken];
}

inline int FirstIsZero(const SURFVEC16 *pixel)
{
    return pixel->x1 == 0 && pixel->y1 == 0;
}

/* What MergeRayVector does where another edge, or none yet as near, holds the first vector. */
void MergeOtherEdge(const POINTDB &first, const POINTDB &v, double lengthSq, int fromCurve, SURFVEC16 *pixel);

/* A vector from a ray of a line, or of a curve: neighbouring samples of a curve lead to close but unequal feet, so that
 * curves are more tolerant about what is the same edge, and ask the second vector too. */
inline void MergeRayVector(const POINTDB &v, double lengthSq, int fromCurve, SURFVEC16 *pixel)
{
    if (FirstIsZero(pixel)) {
        SetFirstVector(v, pixel);
        return;
    }
    const POINTDB first = FirstVector(pixel);
    if (!VectorsNear(first, v, fromCurve ? 0.5 : 0.1)) MergeOtherEdge(first, v, lengthSq, fromCurve, pixel);
}

/* A vector from a mitre's fan, at a distance before the end of its ray. Near that end, on the ridge, the mitre wins
 * even where it is a little longer than what is there. */
void MergeMitreVector(const POINTDB &v, double lengthSq, double beforeEnd, SURFVEC16 *pixel);

} // namespace zr32

#endif
