/* road.h - the road of one bevelled text: paths, group, outline, mask, surface, light, stream.
 *
 * Order of calls: RoadPaths; RoadOutline; RoadMask; RoadSurface; RoadLight; RoadStream; RoadFree. Each gives 1, or 0
 * with a message on the error stream; RoadFree is always legal.
 */
#ifndef BEVEL_ROAD_H
#define BEVEL_ROAD_H

#include "options.h"
#include "picture.h"
#include "platform/platform.h"

namespace bevel {

struct ROAD {
    OPTIONS options;
    int width = 0; /* of the image */
    int height = 0;
    PATHREC *path = nullptr; /* head of the text's join chain; the table owns it once RoadOutline has run */
    PATHTBL *table = nullptr;
    COORDSTRUCT *view = nullptr;
    PATHBUF mask = nullptr;     /* 8 bits; its place on the image is maskRect */
    PATHBUF distance = nullptr; /* distance plane, of the mask's size */
    PATHBUF offset = nullptr;   /* offset plane */
    PATHBUF image = nullptr;    /* 24 bits, of the mask's size: the lit colour */
    PATHBUF bumpMap = nullptr;
    bool floatOffsets = false;
    double reach = 0;   /* width of the bevel as the surface was made */
    bool quiet = false; /* no progress bar */
    struct tagRECT maskRect = {0, 0, 0, 0};
};

/* Text or, for the primitive and envelope builders, a shape, placed on an image that holds it with a margin. */
int RoadPaths(const OPTIONS &options, ROAD *road);

/* The table with its group and display buffer, and the outline over a landscape. */
int RoadOutline(ROAD *road, PICTURE *picture);

int RoadMask(ROAD *road);

/* Distance and offset plane, with a progress bar on the error stream. */
int RoadSurface(ROAD *road);

/* The lit image; the mask follows where the options ask for glass. */
int RoadLight(ROAD *road);

/* Flattens the chain into a file, reads it back and compares. */
int RoadStream(ROAD *road, const std::string &file);

void RoadFree(ROAD *road);

/* A picture on the place that the mask has on the image: colour with the mask as alpha, over the landscape. */
PICTURE RoadOverLandscape(const ROAD &road, const PICTURE &front);

/* An 8-bit or 24-bit procedural source to wrap around a surface. */
PATHBUF EnvironmentGrey(int width, int height);
PATHBUF EnvironmentColour(int width, int height);

} // namespace bevel

#endif
