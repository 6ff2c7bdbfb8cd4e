/* space.h - the same text as a solid turned in space: wireframe preview and A-buffer render. */
#ifndef BEVEL_SPACE_H
#define BEVEL_SPACE_H

#include "road.h"

namespace bevel {

/* The wireframe of the road's paths at the turn of its options, drawn through a device context over a plain ground;
 * as wide as the image and, up to 500 rows, half as high again. */
int SpaceWireframe(const ROAD &road, const double *turn, PICTURE *picture);

/* The rendered solid with its alpha, of the same size. The road must have its surface. */
int SpaceRender(const ROAD &road, const double *turn, int glass, PICTURE *picture);

} // namespace bevel

#endif
