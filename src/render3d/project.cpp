/* project.cpp - perspective: points in space to the picture plane, one point or the nodes of a path for good.
 *
 * Everybody takes the eye from SpaceFromTransform, so the preview, the projected path and the rendered solid agree.
 */
#include "render3d/space.h"
#include "store/nodes.h"

#include <cmath>

namespace zr32 {

void SpaceFromTransform(const POINTFXMAT3D *transform, SPACE *space)
{
    space->center = {FixToDouble(transform->center.x), FixToDouble(transform->center.y)};
    space->shift = {FixToDouble(transform->shift.x), FixToDouble(transform->shift.y)};
    space->eye = {space->center.x, space->center.y,
                  transform->viewSize / std::tan(transform->viewAngle * 0.5 * coarsePi * partOfHalfTurn)};
    space->matrix = transform->matrix;
}

void SpaceTurn(const SPACE *space, POINT3D *point)
{
    point->x -= space->center.x;
    point->y -= space->center.y;
    RotatePoint3D(point, &space->matrix);
    point->x += space->shift.x;
    point->y += space->shift.y;
}

void ProjectFromEye(const POINT3D *eye, const POINT3D *point, POINTDB *out)
{
    const double k = eye->z / (eye->z - point->z);
    out->x = eye->x + k * (point->x - eye->x);
    out->y = eye->y + k * (point->y - eye->y);
}

POINTDB SpaceProject(const SPACE *space, double x, double y, double z)
{
    POINT3D p = {x, y, z};
    SpaceTurn(space, &p);
    POINTDB out;
    ProjectFromEye(&space->eye, &p, &out);
    return out;
}

extern "C" {

ZRPATHAPI void ZrProject2DTO3D(double x, double y, tagPOINTDB *result, const struct tagRECT *source,
                               const struct tagRECT *target, const tagPOINT3D *eye, const tagPOINT3D *shift,
                               const tagMATRIX3D *matrix)
{
    if (!result || !source || !target || !eye || !shift || !matrix) return;
    POINT3D p = {source->left + x - eye->x, source->top + y - eye->y, 0};
    RotatePoint3D(&p, matrix);
    p.x += shift->x; /* the shift's z is not used */
    p.y += shift->y;
    ProjectFromEye(eye, &p, result);
    result->x -= target->left;
    result->y -= target->top;
}

ZRPATHAPI void ZrPathTo3D(PATHREC *path, const POINTFXMAT3D *transform)
{
    if (!path || !transform) return;
    SPACE space;
    SpaceFromTransform(transform, &space);
    for (PATHREC *record = PathChainFirst(path); record; record = record->nextJoin) {
        record->primitive = 0;
        ForEachPoint(record, [&space](PATHNODE *node) {
            const POINTDB at = SpaceProject(&space, FixToDouble(node->x), FixToDouble(node->y), 0);
            node->x = DoubleToFix(at.x);
            node->y = DoubleToFix(at.y);
        });
    }
}

} // extern "C"

} // namespace zr32
