/* profile.cpp - the profile table, see profile.h.
 *
 * Every profile is made of two kinds of quarter circle: form A is steep where it begins, form B level. The profiles of
 * two arcs lay them end to end, each half the width long.
 */
#include "shade/profile.h"

namespace zr32 {

PROFILEENTRY PROFILETBL[profileEntries];

namespace {

constexpr int halfEntries = 2048;
constexpr int bevelEntries = 4096;
constexpr double entryShare = 0.000244140625; /* 1 / 4096 */

/* The arguments of the last build; at load they match a build of nothing. */
struct PROFILEMEMO {
    int32_t profile;
    double width;
    int32_t scale;
    int32_t invert;
};

PROFILEMEMO profileMemo;

constexpr PROFILEENTRY flatEntry = {1.0, 0.0};

/* The height is scaled by the full width in the profiles of two arcs too. */
PROFILEENTRY ArcEntry(double d, double u, double width, int32_t invert)
{
    const double height = std::sin(std::acos(u)) * width;
    return {ArcRise(d, u, invert), invert ? -height : height};
}

PROFILEENTRY FormA(double d, double radius, double width, int32_t invert)
{
    return ArcEntry(d, 1.0 - d / radius, width, invert);
}

/* Inside out, the quotient of the rise has no value where the arc begins. */
PROFILEENTRY FormB(double d, double radius, double width, int32_t invert)
{
    if (invert && d == 0.0) return {1.0, -width};
    return ArcEntry(d, d / radius, width, invert);
}

using ARCFORM = PROFILEENTRY (*)(double d, double radius, double width, int32_t invert);

/* One arc of the full width, level behind it. */
void BuildWhole(ARCFORM form, double width, int32_t invert)
{
    const double step = width * entryShare;
    for (int i = 0; i < profileEntries; i++) {
        const double d = i * step;
        PROFILETBL[i] = d < width ? form(d, width, width, invert) : flatEntry;
    }
}

void BuildChamfer(double width, int32_t invert)
{
    const double step = width * entryShare;
    for (int i = 0; i < profileEntries; i++) {
        const double d = i * step;
        const double reached = d < width ? d : width;
        PROFILETBL[i] = {reached, invert ? -reached : reached};
    }
}

/* Two arcs of half the width, level behind them; a mirrored second arc is the first one read backwards. */
void BuildHalves(ARCFORM first, ARCFORM second, bool mirrored, double width, int32_t invert)
{
    const double step = width * entryShare;
    const double half = width * 0.5;
    for (int i = 0; i < halfEntries; i++) PROFILETBL[i] = first(i * step, half, width, invert);
    for (int i = 0; i < halfEntries; i++) {
        PROFILEENTRY *entry = &PROFILETBL[halfEntries + i];
        if (mirrored)
            *entry = PROFILETBL[halfEntries - 1 - i];
        else
            *entry = second(i * step, half, width, invert);
    }
    for (int i = bevelEntries; i < profileEntries; i++) PROFILETBL[i] = flatEntry;
}

} // namespace

void ProfileTableBuild(int32_t profile, double width, int32_t scale, int32_t invert)
{
    if (profileMemo.profile == profile && profileMemo.width == width && profileMemo.scale == scale &&
        profileMemo.invert == invert)
        return;
    profileMemo = {profile, width, scale, invert};
    switch (profile) {
    case 0: BuildWhole(FormA, width, invert); break;
    case 1: BuildChamfer(width, invert); break;
    case 100: BuildHalves(FormA, FormA, false, width, invert); break;
    case 101: BuildWhole(FormB, width, invert); break;
    case 102: BuildHalves(FormA, FormB, false, width, invert); break;
    case 103: BuildHalves(FormB, FormB, false, width, invert); break;
    case 104: BuildHalves(FormA, FormA, true, width, invert); break;
    default: break;
    }
}

} // namespace zr32
