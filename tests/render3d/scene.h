/* scene.h - a shape with its masks and surface map, ready to be rendered, for tests of the renderer. */
#ifndef ZR32_TESTS_SCENE_H
#define ZR32_TESTS_SCENE_H

#include "frame/frame.h"
#include "raster/raster.h"
#include "render3d/space.h"
#include "store/store.h"
#include "support/shapes.h"

#include <cmath>

namespace zr32test {

struct SCENE {
    PATHREC *path; /* the shape, and behind it a record that only ends the table chain */
    PATHREC *tail;
    PATHBUF mask;  /* A-buffer mask */
    PATHBUF cover; /* 8-bit mask */
    PATHBUF surface;
    tagPOINT maskOrigin;
    POINTFXMAT3D camera; /* unturned, centred, the picture as it is */
    PATHBUF colour;
    PATHBUF alpha;
};

inline void FreeGlobals(tagRECT *rects, PATHBUF *bufs)
{
    zr32::GlobalBlockFree(rects);
    zr32::GlobalBlockFree(bufs);
}

/* Takes the path (a join chain that is its own table chain) over. */
inline SCENE MakeScene(PATHREC *path, double width, int32_t w, int32_t h)
{
    SCENE scene = {};
    scene.path = path;
    scene.tail = MakePath({{6, 0, 0}});
    zr32::ChainLink(zr32::tableChain, zr32::PathChainLast(path), scene.tail);
    tagRECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    ZrPathToBuf(path, 4, 0, 1, 0, 0x10000, &rects, &bufs, 0);
    scene.mask = bufs[0];
    scene.maskOrigin = {rects[0].left, rects[0].top};
    FreeGlobals(rects, bufs);
    ZrPathToBuf(path, 8, 0, 1, 0, 0x10000, &rects, &bufs, 0);
    scene.cover = bufs[0];
    FreeGlobals(rects, bufs);
    PATHBUF dist = nullptr;
    scene.surface = reinterpret_cast<PATHBUF>(1);
    ZrPathVMap(path, &dist, &scene.surface, 0, 0, 0, 0, 0, &width, 0, 1, scene.cover, nullptr, 0x10000);
    scene.camera.center = {DbToFix(w / 2), DbToFix(h / 2)};
    scene.camera.shift = scene.camera.center;
    scene.camera.viewSize = 1000;
    scene.camera.viewAngle = 40;
    scene.camera.matrix = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    scene.colour = ZrPathBufAlloc(24, w, h);
    scene.alpha = ZrPathBufAlloc(8, w, h);
    return scene;
}

inline void SceneFree(SCENE *scene)
{
    ZrPathDeletePtr(scene->path, 0);
    ZrPathBufFree(scene->mask);
    ZrPathBufFree(scene->cover);
    ZrPathBufFree(scene->surface);
    ZrPathBufFree(scene->colour);
    ZrPathBufFree(scene->alpha);
}

inline void Turn(SCENE *scene, const tagPOINT3D &axis, double degrees)
{
    tagMATRIX3D turn = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    const double radians = degrees * 3.14159265358979 / 180;
    VThitaGetMatrix(std::sin(radians), std::cos(radians), &axis, &turn);
    Matrix3X3(&scene->camera.matrix, &turn, &scene->camera.matrix);
}

struct BEVEL {
    int32_t width = 40;
    int32_t profile = 1;
    int32_t glass = 1;
    int32_t scale = 0;
    int32_t invert = 0;
};

inline int32_t Render(SCENE *scene, const BEVEL &bevel, const double *light)
{
    const uint32_t colour = 0x003070E0;
    return ZrPathABufRender(scene->path, &scene->camera, scene->colour, scene->alpha, 0, nullptr, &scene->maskOrigin,
                            &colour, scene->mask, scene->surface, 0, 0, 0, 0, 0, 0, 0, bevel.glass, 0, bevel.width,
                            bevel.scale, bevel.profile, bevel.invert, light, 0);
}

} // namespace zr32test

#endif
