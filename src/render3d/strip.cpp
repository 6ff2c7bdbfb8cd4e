/* strip.cpp - one cross-section of the bevel: samples from the rim inward, raised by the profile, turned, projected and
 * lit.
 *
 * Neighbouring samples lie at most half a pixel apart on the output, so that with sections as dense a closed face has
 * no pinhole: the step along the section shrinks where the profile is steep and grows again where it is flat.
 *
 * State: the silhouette limit.
 */
#include "render3d/render.h"
#include "shade/profile.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zr32 {

namespace {

double facingWide = 0.12;
constexpr double longestStep = 0.5; /* pixels of the longer axis */
constexpr double shortStep = 0.5;   /* of the longest: below this the step may double */
constexpr double leastPart = 1e-4;  /* of a step */
constexpr double unseenSteps = 64;  /* how few steps a section may take where nothing of it can be seen */

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr POINTDB nowhere = {noNumber, noNumber};

int ProfileIndex(double position)
{
    constexpr int last = static_cast<int>(profileSteps) - 1;
    return position < last ? std::max(0, TruncInt(position)) : last;
}

/* Height of the surface i steps from the rim. Between entries it runs straight where the samples are denser. */
double HeightAt(const RUN *run, double i, double part)
{
    const double position = i * run->index;
    const int entry = ProfileIndex(position);
    const double height = PROFILETBL[entry].height;
    if (!(part * run->index <= 1) || position >= profileSteps) return height;
    return height + (PROFILETBL[ProfileIndex(position + 1)].height - height) * (position - entry);
}

/* A point in space on its way to the output. 0 when the eye cannot see it: at its height or behind it. */
int SampleProject(const RENDER *render, POINT3D *p, POINTDB *out)
{
    SpaceTurn(&render->space, p);
    const double eye = render->space.eye.z;
    if (!(eye / (eye - p->z) > 0)) return 0;
    POINTDB picture;
    ProjectFromEye(&render->space.eye, p, &picture);
    *out = picture - render->outOrigin;
    return std::isfinite(out->x) && std::isfinite(out->y) && std::isfinite(p->z);
}

/* The sample i steps from the rim, not yet lit. 0 when it cannot be seen; it then lies at no place that compares. */
int SampleAt(RENDER *render, const RUN *run, double i, double part, SAMPLE *sample)
{
    const POINTDB offset = run->inward * (run->stride * i);
    const POINTDB at = run->at + offset;
    POINT3D p = {at.x, at.y, HeightAt(run, i, part)};
    render->budget--;
    *sample = {};
    sample->material = &render->material;
    sample->at = nowhere;
    if (!SampleProject(render, &p, &sample->at)) return 0;

    const POINTDB across = run->slope * (run->stride * i * run->lean);
    POINT3D n = {-across.x, -across.y, PROFILETBL[ProfileIndex(i * run->index)].rise};
    VecNormalize(Coords(&n));
    RotatePoint3D(&n, &render->space.matrix);
    sample->normal = n;
    sample->z = p.z;
    sample->facing = FacingDot(&p, &n, &render->space.eye);
    return 1;
}

/* 1 when the surface turns from the eye between two samples that are both far from the turn. */
int SkipsTurn(const SAMPLE *a, const SAMPLE *b)
{
    return (a->facing > facingNear && b->facing < -facingNear) || (a->facing < -facingNear && b->facing > facingNear);
}

double Apart(const SAMPLE *a, const SAMPLE *b)
{
    return std::max(std::fabs(a->at.x - b->at.x), std::fabs(a->at.y - b->at.y));
}

/* How far outside the plane a sample lies, pixels of the longer axis; 0 inside. */
double BesidePlane(const RENDER *render, const SAMPLE *sample)
{
    const double x = std::max(-sample->at.x, sample->at.x - render->abuf.info.width);
    const double y = std::max(-sample->at.y, sample->at.y - render->abuf.info.height);
    return std::max(0.0, std::max(x, y));
}

/* The two halves of a section as they are seen, each cut to whole pixels; at is the rim, half-way and the inner end. */
double HalvesInPixels(const POINTDB *at)
{
    constexpr double rounding = 1e-9; /* what a half of exactly one pixel may lose on the way */
    return std::trunc(Length(at[1] - at[0]) + rounding) + std::trunc(Length(at[2] - at[1]) + rounding);
}

/* How many steps a section has: by its place in the picture plane, or by the raised surface where more is seen of that,
 * as nearly edge-on or on narrow strokes. Halves that are all shorter than a pixel leave none, deliberately; nor does a
 * length that is no number. */
double StepsOf(const RENDER *render, const RUN *run, double reach)
{
    POINTDB flat[3];
    POINTDB raised[3];
    for (int i = 0; i < 3; i++) {
        const double r = reach * 0.5 * i;
        const POINTDB p = run->at + run->inward * r;
        const double height = PROFILETBL[ProfileIndex(r * run->lean / render->width * profileSteps)].height;
        flat[i] = SpaceProject(&render->space, p.x, p.y, 0);
        raised[i] = SpaceProject(&render->space, p.x, p.y, height);
    }
    const double steps = std::max(HalvesInPixels(flat), HalvesInPixels(raised));
    return std::isfinite(steps) ? std::min(steps, static_cast<double>(maxStripPoints)) : 0;
}

/* 0 when the section is too short for a strip. */
int RunStart(const RENDER *render, const SECTION *section, RUN *run)
{
    const double r = Length(section->reach);
    run->at = section->at + render->maskOrigin;
    run->inward = section->reach * (1 / r);
    run->slope = run->inward;
    run->lean = 1;
    if (section->slope.x != 0 || section->slope.y != 0) {
        run->slope = section->slope;
        run->lean = Dot(run->inward, run->slope);
    }
    run->steps = StepsOf(render, run, r);
    if (run->steps == 0) return 0;
    run->stride = r / run->steps;
    run->index = run->stride / render->width * profileSteps * run->lean;
    return 1;
}

/* Room for one more point. 0 when the strip is full or memory short. */
int StripReserve(STRIP *strip)
{
    if (strip->count < strip->room) return 1;
    if (strip->room >= maxStripPoints) return 0;
    const uint32_t room = strip->room ? strip->room * 2 : 256;
    STRIPPOINT *points = static_cast<STRIPPOINT *>(BufReAlloc(strip->points, room * sizeof(STRIPPOINT), 0));
    if (!points) return 0;
    strip->points = points;
    strip->room = room;
    return 1;
}

int InPlane(const RENDER *render, const SAMPLE *sample)
{
    return sample->at.x >= 0 && sample->at.x < render->abuf.info.width && sample->at.y >= 0 &&
           sample->at.y < render->abuf.info.height;
}

int SamePixel(const SAMPLE *a, const SAMPLE *b)
{
    return PixelIndex(a->at.x) == PixelIndex(b->at.x) && PixelIndex(a->at.y) == PixelIndex(b->at.y);
}

/* Goes back along the strip in tenths of a step, within the pixel, to where the surface turns. 0 when it does not turn
 * in this pixel. */
int FindTurn(RENDER *render, const RUN *run, const STRIPPOINT *point, double part, SAMPLE *turn)
{
    for (int tenth = 1; tenth <= 10; tenth++) {
        SAMPLE sample;
        const double i = point->i - part * 0.1 * tenth;
        if (i < 0 || !SampleAt(render, run, i, part, &sample) || !SamePixel(&sample, &point->sample)) return 0;
        if (std::fabs(sample.facing) > facingWide) return 0;
        if (std::fabs(sample.facing) < facingNear || (sample.facing > 0) != (point->sample.facing > 0)) {
            *turn = sample;
            return 1;
        }
    }
    return 0;
}

} // namespace

void FacingWideBy(int32_t width)
{
    if (width < 15)
        facingWide = 0.2;
    else if (width < 25)
        facingWide = 0.15;
}

double FacingWide()
{
    return facingWide;
}

POINTDB ProjectFlat(const RENDER *render, const POINTDB &at)
{
    const POINTDB picture = at + render->maskOrigin;
    return SpaceProject(&render->space, picture.x, picture.y, 0) - render->outOrigin;
}

int RimProject(const RENDER *render, const POINTDB &at, POINTDB *out)
{
    const POINTDB picture = at + render->maskOrigin;
    POINT3D p = {picture.x, picture.y, PROFILETBL[0].height};
    return SampleProject(render, &p, out);
}

int BoxUnseen(const RENDER *render, const POINTDB &a, const POINTDB &b)
{
    /* With w = 1 - z / eye, what is seen has w > 0 and lies at eye + (p - eye) / w. So a side of the plane, multiplied
     * by w, is linear in the point: all corners beyond it are all of the box, whether or not it reaches behind the
     * eye. */
    constexpr double margin = 16; /* output pixels */
    const POINT3D &eye = render->space.eye;
    const double left = eye.x - render->outOrigin.x + margin;
    const double right = left - 2 * margin - render->abuf.info.width;
    const double above = eye.y - render->outOrigin.y + margin;
    const double below = above - 2 * margin - render->abuf.info.height;
    int beyond[5] = {1, 1, 1, 1, 1};
    for (int i = 0; i < 8; i++) {
        const POINTDB picture = POINTDB{i & 1 ? b.x : a.x, i & 2 ? b.y : a.y} + render->maskOrigin;
        POINT3D p = {picture.x, picture.y, i & 4 ? render->highest : render->lowest};
        SpaceTurn(&render->space, &p);
        const double w = 1 - p.z / eye.z;
        beyond[0] &= left * w + (p.x - eye.x) < 0;
        beyond[1] &= right * w + (p.x - eye.x) > 0;
        beyond[2] &= above * w + (p.y - eye.y) < 0;
        beyond[3] &= below * w + (p.y - eye.y) > 0;
        beyond[4] &= w <= 0;
    }
    return beyond[0] || beyond[1] || beyond[2] || beyond[3] || beyond[4];
}

int ReachUnseen(const RENDER *render, const POINTDB &at)
{
    const POINTDB reach = {render->width, render->width};
    return BoxUnseen(render, at - reach, at + reach);
}

int SectionUnseen(const RENDER *render, const SECTION *section)
{
    return BoxUnseen(render, section->at, section->at + section->reach);
}

void StripBuild(RENDER *render, const SECTION *section, STRIP *strip)
{
    strip->count = 0;
    RUN &run = strip->run;
    if (!RunStart(render, section, &run)) return;
    const double longestPart = std::max(1.0, run.steps / unseenSteps);
    int seen = SampleAt(render, &run, 0, 1, &strip->rim);
    double part = 1;
    for (double i = 0; i < run.steps && render->budget > 0 && StripReserve(strip);) {
        STRIPPOINT *point = &strip->points[strip->count];
        const SAMPLE *last = strip->count > 0 ? &point[-1].sample : &strip->rim;
        double next;
        double jump;
        double limit;
        int visible;
        for (;;) {
            next = std::min(i + part, run.steps);
            visible = SampleAt(render, &run, next, part, &point->sample);
            jump = 0;
            limit = longestStep;
            if (!seen || !visible) break;
            jump = Apart(last, &point->sample);
            /* Beside the plane the samples need not be dense until they come back to it. */
            limit = std::max(limit, 0.5 * std::min(BesidePlane(render, last), BesidePlane(render, &point->sample)));
            if (part <= leastPart || (jump <= limit && !SkipsTurn(last, &point->sample))) break;
            part = std::max(leastPart, part * (jump > limit ? std::min(0.9, limit / jump) : 0.5));
        }
        if (!(next > i)) break; /* a step too small to count */
        const int dense = seen && visible && limit == longestStep;
        if (jump < limit * shortStep) part = std::min(dense ? 1.0 : longestPart, part * 2);
        if (dense) part = std::min(part, 1.0);
        i = next;
        /* The rim must not be cut by the turn of a profile that begins upright. */
        point->sample.atRim = Apart(&point->sample, &strip->rim) <= 1;
        point->share = i / run.steps;
        point->i = i;
        seen = visible;
        strip->count++;
    }
    if (strip->count == 0) return;
    strip->rim.normal = strip->points[0].sample.normal;
    strip->rim.facing = strip->points[0].sample.facing;
}

void StripDraw(RENDER *render, STRIP *strip)
{
    for (uint32_t k = 0; k < strip->count; k++) {
        STRIPPOINT *point = &strip->points[k];
        SAMPLE *sample = &point->sample;
        if (!InPlane(render, sample)) continue;
        const STRIPPOINT *before = k > 0 ? point - 1 : nullptr;
        const int turned = before && (before->sample.facing > 0) != (sample->facing > 0);
        const double steep = std::fabs(sample->facing);
        if ((turned || steep < facingWide) && !sample->atRim) {
            SAMPLE turn;
            if (steep >= facingNear && steep < facingWide &&
                FindTurn(render, &strip->run, point, point->i - (before ? before->i : 0), &turn)) {
                *sample = turn;
                PutSilhouette(render, sample);
                continue;
            }
        }
        PutSample(render, sample);
    }
}

void StripsFree(RENDER *render)
{
    for (STRIP *strip : {&render->strips[0], &render->strips[1], &render->seam[0], &render->seam[1]}) {
        if (strip->points) BufFree(strip->points);
        *strip = {};
    }
    if (render->kept.edges) BufFree(render->kept.edges);
    render->kept = {};
}

} // namespace zr32
