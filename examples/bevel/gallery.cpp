/* gallery.cpp - the families of the gallery as tables of options; every picture is one walk along the road. */
#include "gallery.h"

#include "road.h"
#include "space.h"

#include <functional>
#include <vector>

namespace bevel {

namespace {

struct VARIANT {
    const char *label;
    std::function<void(OPTIONS *)> change;
};

struct FAMILY {
    const char *file;
    const char *title;
    std::function<void(OPTIONS *)> base;
    std::vector<VARIANT> variants;
};

std::vector<FAMILY> Families()
{
    const auto none = [](OPTIONS *) {};
    return {
        {"profiles.png",
         "Profiles",
         none,
         {{"0: quarter circle", [](OPTIONS *o) { o->profile = 0; }},
          {"1: chamfer", [](OPTIONS *o) { o->profile = 1; }},
          {"100: two quarter circles", [](OPTIONS *o) { o->profile = 100; }},
          {"101: hollow quarter circle", [](OPTIONS *o) { o->profile = 101; }},
          {"102: round, then hollow", [](OPTIONS *o) { o->profile = 102; }},
          {"103: two hollow ones", [](OPTIONS *o) { o->profile = 103; }},
          {"104: a ridge", [](OPTIONS *o) { o->profile = 104; }},
          {"0, inside out", [](OPTIONS *o) { o->invert = true; }},
          {"0, scale 10", [](OPTIONS *o) { o->scale = 10; }},
          {"0, scale 90", [](OPTIONS *o) { o->scale = 90; }}}},
        {"builders.png",
         "Builders and sides",
         [](OPTIONS *o) { o->profile = 1; },
         {{"swept, inside", none},
          {"swept, outside", [](OPTIONS *o) { o->side = SIDE_OUTSIDE; }},
          {"swept, both sides", [](OPTIONS *o) { o->side = SIDE_BOTH; }},
          {"exact, mitred, winding", [](OPTIONS *o) { o->builder = BUILD_EXACT; }},
          {"exact, rounded",
           [](OPTIONS *o) {
               o->builder = BUILD_EXACT;
               o->rounded = true;
           }},
          {"exact, even-odd",
           [](OPTIONS *o) {
               o->builder = BUILD_EXACT;
               o->evenOdd = true;
           }},
          {"lone primitive", [](OPTIONS *o) { o->builder = BUILD_PRIMITIVE; }},
          {"envelope", [](OPTIONS *o) { o->builder = BUILD_ENVELOPE; }}}},
        {"materials.png",
         "Materials and lights",
         none,
         {{"plastic, one light", none},
          {"plastic, four lights", [](OPTIONS *o) { o->lights = 4; }},
          {"plastic, a spot", [](OPTIONS *o) { o->spot = true; }},
          {"plastic, three spots",
           [](OPTIONS *o) {
               o->lights = 3;
               o->spot = true;
           }},
          {"metal, one light", [](OPTIONS *o) { o->metal = true; }},
          {"metal, four lights",
           [](OPTIONS *o) {
               o->metal = true;
               o->lights = 4;
           }},
          {"metal, a spot",
           [](OPTIONS *o) {
               o->metal = true;
               o->spot = true;
           }},
          {"metal, two spots",
           [](OPTIONS *o) {
               o->metal = true;
               o->lights = 2;
               o->spot = true;
           }}}},
        {"maps.png",
         "Bump, reflection, transparency",
         none,
         {{"plain", none},
          {"bump 60 %", [](OPTIONS *o) { o->bump = 60; }},
          {"bump 200 %", [](OPTIONS *o) { o->bump = 200; }},
          {"mirror", [](OPTIONS *o) { o->mirror = true; }},
          {"mirror, bump 100 %",
           [](OPTIONS *o) {
               o->mirror = true;
               o->bump = 100;
           }},
          {"mirror on metal",
           [](OPTIONS *o) {
               o->mirror = true;
               o->metal = true;
           }},
          {"glass 70, 10 %",
           [](OPTIONS *o) {
               o->face = 70;
               o->edge = 10;
           }},
          {"glass 95, 40 %, four lights",
           [](OPTIONS *o) {
               o->face = 95;
               o->edge = 40;
               o->lights = 4;
           }}}},
    };
}

int RenderVariant(const OPTIONS &options, PICTURE *picture)
{
    ROAD road;
    road.quiet = true;
    const int done = RoadPaths(options, &road) && RoadMask(&road) && RoadSurface(&road) && RoadLight(&road);
    if (done) {
        const PICTURE lit = PictureWithAlpha(PictureOfBuffer(road.image), PictureOfBuffer(road.mask));
        *picture = RoadOverLandscape(road, lit);
    }
    RoadFree(&road);
    return done;
}

int RenderFamily(const OPTIONS &options, const FAMILY &family)
{
    std::vector<LABELLED> pictures;
    for (const VARIANT &variant : family.variants) {
        OPTIONS changed = options;
        family.base(&changed);
        variant.change(&changed);
        PICTURE picture;
        if (!RenderVariant(changed, &picture)) return 0;
        pictures.push_back({variant.label, picture});
    }
    return PictureWrite(options.out + "/" + family.file, PictureSheet(family.title, pictures, 2, 460));
}

/* A film strip of a full turn about an axis that leans a little. */
int RenderTurn(const OPTIONS &options)
{
    ROAD road;
    road.quiet = true;
    int done = RoadPaths(options, &road) && RoadMask(&road) && RoadSurface(&road);
    std::vector<LABELLED> frames;
    for (int step = 0; done && step < 12; step++) {
        const double turn[3] = {15, step * 30.0, 0};
        PICTURE wire, glass, opaque;
        done = SpaceWireframe(road, turn, &wire) && SpaceRender(road, turn, 1, &glass) &&
               SpaceRender(road, turn, 0, &opaque);
        if (!done) break;
        const PICTURE ground = PictureLandscape(glass.width, glass.height);
        const std::string degrees = std::to_string(step * 30) + " degrees";
        frames.push_back({"wireframe, " + degrees, wire});
        frames.push_back({"glass, " + degrees, PictureOver(glass, ground)});
        frames.push_back({"glass 0, " + degrees, PictureOver(opaque, ground)});
    }
    RoadFree(&road);
    return done && PictureWrite(options.out + "/turn.png", PictureSheet("A full turn in space", frames, 3, 400));
}

} // namespace

int GalleryRender(const OPTIONS &options)
{
    for (const FAMILY &family : Families())
        if (!RenderFamily(options, family)) return 0;
    return RenderTurn(options);
}

} // namespace bevel
