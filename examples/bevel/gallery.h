/* gallery.h - one labelled contact sheet a family of surfaces, materials and solids. */
#ifndef BEVEL_GALLERY_H
#define BEVEL_GALLERY_H

#include "options.h"

namespace bevel {

/* Renders every family into the options' folder; 0 with a message on failure. */
int GalleryRender(const OPTIONS &options);

} // namespace bevel

#endif
