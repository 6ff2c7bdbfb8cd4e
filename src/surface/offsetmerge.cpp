/* offsetmerge.cpp - how a pixel of the offset plane takes one more vector, see offsetmerge.h. */
#include "surface/offsetmerge.h"

namespace zr32 {

static int SecondIsZero(const SURFVEC16 *pixel)
{
    return pixel->x2 == 0 && pixel->y2 == 0;
}

/* The words are read as unsigned here, and only here, so that a second vector with a negative component never matches:
 * deliberate, ridges of curves depend on it. */
static int NearSecondOfCurve(const POINTDB &v, const SURFVEC16 *pixel)
{
    const POINTDB second = {static_cast<uint16_t>(pixel->x2) / vectorScale,
                            static_cast<uint16_t>(pixel->y2) / vectorScale};
    return !SecondIsZero(pixel) && VectorsNear(second, v, 0.5);
}

void MergeOtherEdge(const POINTDB &first, const POINTDB &v, double lengthSq, int fromCurve, SURFVEC16 *pixel)
{
    if (fromCurve && NearSecondOfCurve(v, pixel)) return;
    const double firstSq = Dot(first, first);
    if (firstSq < lengthSq) {
        if (std::sqrt(lengthSq) - std::sqrt(firstSq) < 1.0) SetSecondVector(v, pixel);
    } else {
        SetSecondVector(first, pixel);
        SetFirstVector(v, pixel);
    }
}

enum MITREVERDICT { MITRE_LEAVE, MITRE_KEEP, MITRE_REPLACE, MITRE_ASK_SECOND };

/* What becomes of c, which is there, when v comes. */
static MITREVERDICT JudgeMitre(const POINTDB &c, const POINTDB &v, double lengthSq, double beforeEnd)
{
    constexpr double ridge = 1.4;
    if (VectorsNear(c, v, 0.1)) return MITRE_LEAVE;
    const double cSq = Dot(c, c);
    if (beforeEnd > ridge) {
        if (!(cSq < lengthSq)) return MITRE_REPLACE;
        return std::sqrt(lengthSq) - std::sqrt(cSq) < 1.0 ? MITRE_KEEP : MITRE_LEAVE;
    }
    const double excess = std::sqrt(cSq) - std::sqrt(lengthSq);
    if (excess > 0 && excess < ridge) return MITRE_KEEP;
    if (excess > -ridge && excess <= 0) return MITRE_REPLACE;
    return cSq < lengthSq ? MITRE_LEAVE : MITRE_ASK_SECOND;
}

void MergeMitreVector(const POINTDB &v, double lengthSq, double beforeEnd, SURFVEC16 *pixel)
{
    if (FirstIsZero(pixel)) {
        SetFirstVector(v, pixel);
        return;
    }
    POINTDB c = FirstVector(pixel);
    MITREVERDICT verdict = JudgeMitre(c, v, lengthSq, beforeEnd);
    if (verdict == MITRE_ASK_SECOND && !SecondIsZero(pixel)) {
        /* To replace the second vector drops the first, to keep it promotes it: deliberate. */
        c = SecondVector(pixel);
        verdict = JudgeMitre(c, v, lengthSq, beforeEnd);
    }
    switch (verdict) {
    case MITRE_LEAVE: break;
    case MITRE_KEEP:
        SetFirstVector(c, pixel);
        SetSecondVector(v, pixel);
        break;
    case MITRE_REPLACE:
    case MITRE_ASK_SECOND:
        SetSecondVector(c, pixel);
        SetFirstVector(v, pixel);
        break;
    }
}

} // namespace zr32
