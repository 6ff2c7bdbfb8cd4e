/* sweepside.cpp - on which side of the outline the shape lies.
 *
 * Comes in: a sample and the mask. Goes out: the normal that points into the shape. One look a pixel and a half to each
 * side decides where the shape ends; in the midst of it a vote over a stretch of the outline does, and after that the
 * side of the sample before.
 */
#include "surface/sweep.h"

namespace zr32 {

constexpr double probeDistance = 1.5;
constexpr double nearProbeDistance = 1.0;
constexpr double votePixels = 5.0;
constexpr int64_t lineVoteShare = 0x2000; /* at least an eighth of a line votes */

static uint8_t MaskByteAt(const SWEEP *sweep, const POINTDB &q)
{
    return SweepMaskByte(sweep, PixelOf(q.x), PixelOf(q.y));
}

/* 1 when the two looks decide. */
static int SideByProbes(SWEEP *sweep)
{
    const uint8_t a = MaskByteAt(sweep, sweep->p + sweep->n1 * probeDistance);
    const uint8_t b = MaskByteAt(sweep, sweep->p + sweep->n2 * probeDistance);
    sweep->isolated = a == 0 && b == 0;
    if (a == 0)
        sweep->n = sweep->n2;
    else if (b == 0)
        sweep->n = sweep->n1;
    return a == 0 || b == 0;
}

/* How much a look at the mask speaks against a side. */
static double Emptiness(uint8_t byte, double faint)
{
    return byte == 0 ? 1.0 : byte < 0x80 ? faint : 0.0;
}

constexpr double faintWeight = 0.1;

/* From the second of two sums between the same two powers of two, each further addition adds the same, rounded: the
 * sums are multiples of one unit, and what lay half between two of them has gone to the even one. */
double AddRepeatedly(double sum, double c, int64_t times)
{
    while (times > 0) {
        const double first = sum + c;
        if (times == 1) return first;
        sum = first + c;
        times -= 2;
        int exponent = 0;
        std::frexp(sum, &exponent);
        const double power = std::ldexp(1.0, exponent);
        if (first < power / 2) continue;
        const double rise = sum + c - sum;
        const double room = std::floor((power - sum) / rise) - 2;
        if (!(room > 0)) continue;
        const int64_t jump = room < static_cast<double>(times) ? static_cast<int64_t>(room) : times;
        sum += static_cast<double>(jump) * rise;
        times -= jump;
    }
    return sum;
}

/* ---- lines ---- */

struct PIXEL {
    int32_t x;
    int32_t y;
};

static PIXEL LineVotePixel(const SWEEP *sweep, const POINTDB &offset, int64_t i)
{
    const POINTDB q = sweep->p + sweep->t * static_cast<double>(i) + offset;
    return {PixelOf(q.x), PixelOf(q.y)};
}

static int LineVoteMeets(const SWEEP *sweep, const POINTDB &offset, int64_t i, PIXEL pixel)
{
    const PIXEL there = LineVotePixel(sweep, offset, i);
    return there.x == pixel.x && there.y == pixel.y;
}

/* The first position behind first, and before count, that looks at another pixel: positions never turn back. */
static int64_t NextVotePixel(const SWEEP *sweep, const POINTDB &offset, PIXEL pixel, int64_t first, int64_t count)
{
    int64_t same = first;
    int64_t other = count;
    for (int64_t ahead = 1; same + ahead < other; ahead *= 2) {
        if (LineVoteMeets(sweep, offset, same + ahead, pixel))
            same += ahead;
        else
            other = same + ahead;
    }
    while (other - same > 1) {
        const int64_t middle = (same + other) / 2;
        if (LineVoteMeets(sweep, offset, middle, pixel))
            same = middle;
        else
            other = middle;
    }
    return other;
}

/* Emptiness along the first count positions of the line, beside it by offset. A line much shorter than a pixel has
 * millions of positions in the same few pixels: each pixel is read once and counted as often as it is met. */
static double LineVote(const SWEEP *sweep, const POINTDB &offset, int32_t count, double faint)
{
    double score = 0;
    for (int64_t i = 0; i < count;) {
        const PIXEL pixel = LineVotePixel(sweep, offset, i);
        const int64_t next = NextVotePixel(sweep, offset, pixel, i, count);
        const double weight = Emptiness(SweepMaskByte(sweep, pixel.x, pixel.y), faint);
        if (weight > 0) score = AddRepeatedly(score, weight, next - i);
        i = next;
    }
    return score;
}

static void VoteOnLine(int64_t step, SWEEP *sweep)
{
    const int32_t share = static_cast<int32_t>(lineVoteShare / step);
    int32_t count = TruncInt(votePixels / Length(sweep->t));
    if (count < share) count = share;
    double score1 = LineVote(sweep, sweep->n1 * probeDistance, count, faintWeight);
    double score2 = LineVote(sweep, sweep->n2 * probeDistance, count, faintWeight);
    if (score1 == 0 && score2 == 0) {
        score1 = LineVote(sweep, sweep->n1 * nearProbeDistance, count, 0.0);
        score2 = LineVote(sweep, sweep->n2 * nearProbeDistance, count, 0.0);
    }
    sweep->n = score1 <= score2 ? sweep->n1 : sweep->n2;
}

void ChooseSideOnLine(int64_t step, SWEEP *sweep)
{
    if (!SideByProbes(sweep) && sweep->at == 0) VoteOnLine(step, sweep);
}

/* ---- curves ---- */

/* Emptiness along the first count steps of the curve on the side of the first normal, or the opposite one. The opposite
 * side of an oblique step is reckoned with the starting sample's normal, not with the step's: deliberate, and what the
 * side of a bent curve depends on. */
static double CurveVote(const SWEEP *sweep, const CURVESTEP *step, int64_t count, int opposite)
{
    POINTDB pos = step->pos * subPixelOfStep;
    POINTDB d = step->d * subPixelOfStep;
    POINTDB dd = step->dd * subPixelOfStep;
    const POINTDB ddd = step->ddd * subPixelOfStep;
    double score = 0;
    for (int64_t i = 0; i < count; i++) {
        POINTDB n1;
        POINTDB n2;
        OutlineNormals(d, &n1, &n2);
        const POINTDB otherSide = d.x == 0 || d.y == 0 ? n2 : sweep->n2;
        score += Emptiness(MaskByteAt(sweep, pos + (opposite ? otherSide : n1) * probeDistance), faintWeight);
        pos = pos + d;
        d = d + dd;
        dd = dd + ddd;
    }
    return score;
}

static void VoteOnCurve(const CURVESTEP *step, SWEEP *sweep)
{
    const int64_t whole = parameterEnd / step->h;
    const double length = Length(sweep->t);
    int64_t count = sweep->rules->restingVote ? whole : 0;
    if (length != 0) {
        count = TruncInt(votePixels / length);
        if (whole < count) count = whole;
    }
    const double score1 = CurveVote(sweep, step, count, 0);
    const double score2 = CurveVote(sweep, step, count, 1);
    sweep->n = score1 <= score2 ? sweep->n1 : sweep->n2;
}

void ChooseSideOnCurve(const CURVESTEP *step, int mayVote, SWEEP *sweep)
{
    if (SideByProbes(sweep)) return;
    if (mayVote && step->t == 0)
        VoteOnCurve(step, sweep);
    else
        sweep->n = Dot(sweep->n2, sweep->n) > 0 ? sweep->n2 : sweep->n1;
}

} // namespace zr32
