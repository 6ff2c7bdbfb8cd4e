/* main.cpp - bevel: a line of text becomes a lit, bevelled solid, one picture a stage. */
#include "gallery.h"
#include "road.h"
#include "space.h"

#include <cstdio>
#include <filesystem>

namespace bevel {

namespace {

/* The folder, made if it is not there; false with a message when nothing can be written into it. */
bool FolderReady(const std::string &folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::string probe = folder + "/.bevel";
    FILE *file = error ? nullptr : fopen(probe.c_str(), "wb");
    if (!file) {
        fprintf(stderr, "bevel: cannot write into %s\n", folder.c_str());
        return false;
    }
    fclose(file);
    std::filesystem::remove(probe, error);
    return true;
}

bool Keep(const std::string &folder, const char *name, const std::string &label, const PICTURE &picture,
          std::vector<LABELLED> *stages)
{
    stages->push_back({label, picture});
    return PictureWrite(folder + "/" + name, picture);
}

bool Solid(const ROAD &road, std::vector<LABELLED> *stages)
{
    const OPTIONS &o = road.options;
    PICTURE wire, solid;
    return SpaceWireframe(road, o.turn, &wire) && Keep(o.out, "6-wireframe.png", "wireframe", wire, stages) &&
           SpaceRender(road, o.turn, o.glass, &solid) &&
           Keep(o.out, "7-solid.png", o.glass ? "solid of glass" : "solid",
                PictureOver(solid, PictureLandscape(solid.width, solid.height)), stages);
}

bool Stages(ROAD *road)
{
    const OPTIONS &o = road->options;
    std::vector<LABELLED> stages;
    PICTURE picture;
    if (!RoadOutline(road, &picture) || !Keep(o.out, "1-outline.png", "1 outline over the image", picture, &stages))
        return false;
    if (!RoadMask(road) || !Keep(o.out, "2-mask.png", "2 mask", PictureOfBuffer(road->mask), &stages)) return false;
    if (!RoadSurface(road)) return false;
    if (!Keep(o.out, "3-distance.png", "3 distance to the outline", PictureOfDistance(road->distance, road->reach),
              &stages))
        return false;
    if (!Keep(o.out, "4-offset.png", "4 direction to the outline", PictureOfOffset(road->offset, road->floatOffsets),
              &stages))
        return false;
    if (!RoadLight(road)) return false;
    const PICTURE lit = PictureWithAlpha(PictureOfBuffer(road->image), PictureOfBuffer(road->mask));
    if (!Keep(o.out, "5-lit.png", "5 lit, with its mask as alpha", lit, &stages)) return false;
    stages.push_back({"6 over the image", RoadOverLandscape(*road, lit)});
    if (o.turned && !Solid(*road, &stages)) return false;
    if (!RoadStream(road, o.out + "/paths.zrp")) return false;
    return PictureWrite(o.out + "/sheet.png", PictureSheet("The road of one bevelled text", stages, 2, 640));
}

int Run(const OPTIONS &options)
{
    if (!FolderReady(options.out)) return 1;
    if (options.gallery) return GalleryRender(options) ? 0 : 1;
    ROAD road;
    const bool done = RoadPaths(options, &road) && Stages(&road);
    RoadFree(&road);
    if (done) printf("bevel: pictures, stream and contact sheet are in %s\n", options.out.c_str());
    return done ? 0 : 1;
}

} // namespace

} // namespace bevel

int main(int argc, char **argv)
{
    bevel::OPTIONS options;
    const int status = bevel::OptionsRead(argc, argv, &options);
    return status >= 0 ? status : bevel::Run(options);
}
