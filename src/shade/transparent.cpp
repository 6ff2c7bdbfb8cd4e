/* transparent.cpp - glass: coverage lowered by how much the surface faces the viewer. */
#include "frame/frame.h"
#include "shade/normal.h"
#include "shade/planes.h"

#include <zr32path/shade.h>

#include <algorithm>

namespace zr32 {

namespace {

constexpr int transpEntries = 1024;

/* By the z of the normal in thousandths: edge-on at 0, facing at 1000; a seam's vector may be longer. */
uint8_t TRANSPMAP[transpEntries];

struct TRANSPMEMOREC {
    int32_t face;
    int32_t edge;
};

TRANSPMEMOREC TRANSPMEMO = {101, 0};

void TranspMapBuild(int32_t face, int32_t edge)
{
    if (TRANSPMEMO.face == face && TRANSPMEMO.edge == edge) return;
    TRANSPMEMO = {face, edge};
    const int32_t facing = WrapSub(255, face);
    const int32_t low = facing == 0 ? 1 : facing;
    const double span = static_cast<double>(WrapSub(255, edge)) - low;
    for (int i = 0; i < 1000; i++) TRANSPMAP[i] = TruncByte(std::pow(1.0 - i * 0.001, 1.5) * span + low);
    for (int i = 1000; i < transpEntries; i++) TRANSPMAP[i] = static_cast<uint8_t>(low);
}

int TranspLookup(double z, int32_t face)
{
    if (face == 0) return 255;
    return TRANSPMAP[std::clamp(TruncInt(std::fabs(z) * 1000.0), 0, transpEntries - 1)];
}

int32_t PercentOfByte(int32_t percent)
{
    return static_cast<int32_t>(int64_t{percent} * 255 / 100);
}

} // namespace

extern "C" {

ZRPATHAPI int32_t ZrPathTransparentMask(PATHBUF mask, int32_t facePercent, int32_t edgePercent, double width,
                                        int32_t profile, int32_t invert, int32_t scale, int32_t floatNormals,
                                        PATHBUF normalMap, int32_t reflect, int32_t bumpPercent, PATHBUF bumpMap)
{
    if (!mask || !normalMap) return 0;
    const SURFACEFORM form = SurfaceForm(width, profile, invert, scale, reflect);
    const double bumpScale = bumpPercent * 0.01;
    const int bumpOn = bumpPercent != 0 && bumpMap;
    const int32_t face = PercentOfByte(facePercent);
    TranspMapBuild(face, PercentOfByte(edgePercent));
    ProfileTableBuild(profile, width, scale, invert);

    const BUFINFO maskInfo = BufInfo(mask);
    const BUFINFO normalInfo = BufInfo(normalMap);
    const BUFINFO bumpInfo = BufInfo(bumpMap);
    double normal[3] = {0, 0, 1};
    for (int32_t y = 0; y < maskInfo.height; y++) {
        const SHADEROW row = RowOf(mask, maskInfo, y, 1);
        const SHADEROW normals = RowOf(normalMap, normalInfo, y, 8);
        const SHADEROW bump = RowOf(bumpMap, bumpInfo, y, 1);
        const SHADEROW above = RowOf(bumpMap, bumpInfo, std::max(y - 1, 0), 1);
        for (int32_t x = 0; x < row.count; x++) {
            if (row.pixels[x] == 0) continue;
            OFFSETPAIR offset = OffsetAt(normals, x, floatNormals);
            ProfileNormal(form, &offset.x1, &offset.y1, normal);
            if (bumpOn) {
                double gx;
                double gy;
                BumpSlopes(bump, above, x, bumpScale, &gx, &gy);
                Ruffle(gx, gy, normal);
            }
            row.pixels[x] = static_cast<uint8_t>(TranspLookup(normal[2], face) * row.pixels[x] / 255);
        }
    }
    return 1;
}

} // extern "C"

} // namespace zr32
