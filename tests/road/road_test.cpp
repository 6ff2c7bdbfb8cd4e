/* road_test.cpp - whole roads from a fixed outline to pixels, compared with what the 64-bit build for Linux wrote.
 *
 * Every build for every system must give the same bytes, streams among them: what one build writes all others write and
 * read. Stages whose numbers pass through a mathematical function that is not the same to the last bit in every C
 * library (pow, tan, acos, asin, atan2, sin, cos) are compared within one level; they say so where they compare.
 * ZR32_ROAD_WRITE=FOLDER writes the files instead of comparing.
 */
#include "store/store.h"
#include "support/shapes.h"
#include "support/textdc.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

using namespace zr32test;

namespace {

using BLOCK = std::vector<uint8_t>;

enum COMPARE { SAME_BYTES, ONE_LEVEL };

/* A letter-like contour with curves and a hole, and a star with sharp corners, joined; the sweeps leave out the last
 * record of a table chain, so a lone node stands behind them. */
PATHREC *Outline()
{
    PATHREC *paths[4] = {MakeCircle(52, 48, 34), MakeCircle(50, 50, 17), nullptr, nullptr};
    /* The hole runs the other way. */
    PATHREC *hole = paths[1];
    for (uint32_t i = 0, j = hole->nodeCount - 1; i < j; i++, j--) {
        const PATHNODE first = hole->nodes[i];
        hole->nodes[i] = {first.type, hole->nodes[j].x, hole->nodes[j].y};
        hole->nodes[j] = {hole->nodes[j].type, first.x, first.y};
    }
    std::vector<TESTNODE> star;
    static const double corners[10][2] = {{130, 14},   {138.25, 38.5}, {164, 38.75}, {143.5, 54}, {151, 78.25},
                                          {130, 63.5}, {109, 78.25},   {116.5, 54},  {96, 38.75}, {121.75, 38.5}};
    for (const auto &corner : corners) star.push_back({uint16_t(star.empty() ? 6 : 2), corner[0], corner[1]});
    star.push_back({3, corners[0][0], corners[0][1]});
    paths[2] = MakePath(star);
    ZrPathChainZrPath(3, paths);
    PATHREC *tail = MakePath({{6, 0, 0}});
    ZrPathChainPaths(&paths[0], tail);
    return paths[0];
}

BLOCK Bytes(PATHBUF buffer)
{
    int32_t width, height, bits;
    ZrPathBufGetWHU(buffer, &width, &height, &bits);
    const size_t pixel = bits == 8 ? 1 : bits == 24 ? 3 : bits == 32 ? 4 : 8;
    return BLOCK(buffer, buffer + static_cast<size_t>(width) * static_cast<size_t>(height) * pixel);
}

BLOCK ReadAll(const std::string &file)
{
    BLOCK block;
    if (FILE *in = fopen(file.c_str(), "rb")) {
        uint8_t part[4096];
        for (size_t got; (got = fread(part, 1, sizeof part, in)) > 0;) block.insert(block.end(), part, part + got);
        fclose(in);
    }
    return block;
}

std::string Kept(const std::string &name)
{
    return std::string(ZR32_TEST_DATA) + "/road/" + name + ".bin";
}

BLOCK Flattened(PATHREC *path)
{
    uint32_t size = 0;
    void *stream = nullptr;
    if (!ZrPathFlatten(path, &size, &stream)) return {};
    const uint8_t *bytes = static_cast<const uint8_t *>(stream);
    const BLOCK block(bytes, bytes + size);
    GlobalFree(stream);
    return block;
}

/* Null for no bytes. */
PATHREC *Unflattened(const BLOCK &block)
{
    if (block.empty()) return nullptr;
    ZrPathInit();
    void *stream = GlobalAlloc(GPTR, block.size());
    memcpy(stream, block.data(), block.size());
    PATHREC *path = nullptr;
    ZrPathUnFlatten(&stream, &path);
    GlobalFree(stream);
    return path;
}

void Compare(const std::string &name, const BLOCK &got, COMPARE how)
{
    if (const char *folder = getenv("ZR32_ROAD_WRITE")) {
        FILE *out = fopen((std::string(folder) + "/" + name + ".bin").c_str(), "wb");
        ASSERT_NE(nullptr, out);
        fwrite(got.data(), 1, got.size(), out);
        fclose(out);
        return;
    }
    const BLOCK wanted = ReadAll(Kept(name));
    ASSERT_EQ(wanted.size(), got.size()) << name;
    size_t differing = 0;
    int widest = 0;
    for (size_t i = 0; i < got.size(); i++) {
        differing += got[i] != wanted[i];
        widest = std::max(widest, std::abs(int(got[i]) - int(wanted[i])));
    }
    if (how == SAME_BYTES)
        EXPECT_EQ(0u, differing) << name << ": bytes differ, by up to " << widest;
    else
        EXPECT_LE(widest, 1) << name << ": " << differing << " bytes differ";
}

/* A chain that has in it whatever a stream can carry: joined and selected records, node bits, a primitive, shapes, a
 * record with room to spare. */
PATHREC *Everything()
{
    PATHREC *path = Outline();
    PATHREC *star = path->nextJoin->nextJoin;
    star->flags = PATHREC_NODEEDIT | PATHREC_HIDDEN;
    star->nodes[3].type |= PATHNODE_SELECTED;
    PATHREC *shapes =
        MakePath({{6, 10, 20}, {0x101, 70.25, 60}, {0, -0.5, 0}, {0x200, 40, 40}, {0x401, 5, 0.5}, {2, 8, 9}});
    shapes->flags = PATHREC_SELECTED;
    shapes->primitive = ZRPRIM_BAR;
    star->nextSel = shapes;
    shapes->prevSel = star;
    ZrPathChainPaths(&path, shapes);
    PATHREC *roomy = ZrPathCreate();
    const ZRPOINTFX points[2] = {{-70000, INT32_MIN}, {INT32_MAX, 1}};
    ZrPathAddPoint(&roomy, &points[0], PATHNODE_START);
    ZrPathAddPoint(&roomy, &points[1], PATHNODE_LINE | PATHNODE_CLOSING);
    ZrPathChainPaths(&path, roomy);
    return path;
}

/* Every field of every record, links as places in the table chain. */
std::string Description(const PATHREC *path)
{
    const auto place = [path](const PATHREC *record) {
        int at = 0;
        for (const PATHREC *p = path; p; p = p->nextPath, at++)
            if (p == record) return at;
        return record ? -2 : -1;
    };
    std::ostringstream out;
    for (const PATHREC *p = path; p; p = p->nextPath) {
        out << p->streamTag << ' ' << p->nodeCount << ' ' << p->flags << ' ' << p->primitive;
        for (const PATHREC *link : {p->prevPath, p->nextPath, p->prevJoin, p->nextJoin, p->prevSel, p->nextSel})
            out << ' ' << place(link);
        out << ", room for " << zr32::RecordRoom(p);
        for (uint32_t i = 0; i < p->nodeCount; i++)
            out << '\n' << p->nodes[i].type << ' ' << ZRFIXED{p->nodes[i].x} << ' ' << ZRFIXED{p->nodes[i].y};
        out << "\n\n";
    }
    return out.str();
}

/* The demo's text from a stream, since fonts are not the same on every system. */
PATHREC *Lettering()
{
#if defined(ZR32_TEST_FONTS)
    if (getenv("ZR32_ROAD_WRITE")) {
        TEXTDC dc = TextDcMake("DejaVu Sans", 80);
        char text[] = "Zr32";
        TEXTPARAM param = {};
        param.output = 1021;
        PATHREC *path = nullptr;
        RECT rect;
        ZrPathCreateText(dc.dc, text, &param, &path, &rect);
        TextDcFree(&dc);
        ZrPathChainPaths(&path, MakePath({{6, 0, 0}}));
        ZrPathOffset(path, 10, 30);
        Compare("lettering", Flattened(path), SAME_BYTES);
        return path;
    }
#endif
    return Unflattened(ReadAll(Kept("lettering")));
}

struct ROAD {
    PATHREC *path;
    PATHBUF mask;
    PATHBUF distance;
    PATHBUF offset;
    double width;
};

PATHBUF Mask(PATHREC *path, int32_t depth, int32_t aaMode, int32_t scope)
{
    RECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    EXPECT_EQ(1, ZrPathToBuf(path, depth, 0, aaMode, scope, 0x10000, &rects, &bufs, 0));
    PATHBUF mask = bufs[0];
    GlobalFree(rects);
    GlobalFree(bufs);
    return mask;
}

ROAD Swept(PATHREC *path, double width)
{
    ROAD road = {path, nullptr, nullptr, nullptr, width};
    road.mask = Mask(road.path, 8, 1, 0);
    road.distance = road.offset = reinterpret_cast<PATHBUF>(1);
    EXPECT_EQ(1, ZrPathVMap(road.path, &road.distance, &road.offset, 0, 0, 0, 0, 0, &width, 0, 1, road.mask, nullptr,
                            0x10000));
    return road;
}

void Free(ROAD *road)
{
    ZrPathBufFree(road->mask);
    ZrPathBufFree(road->distance);
    ZrPathBufFree(road->offset);
    ZrPathDeletePtr(road->path, 0);
}

PATHBUF Colour(PATHBUF like)
{
    int32_t width, height, bits;
    ZrPathBufGetWHU(like, &width, &height, &bits);
    PATHBUF image = ZrPathBufAlloc(24, width, height);
    for (int32_t i = 0; i < width * height; i++) {
        image[i * 3] = uint8_t(200 - i % 7);
        image[i * 3 + 1] = 120;
        image[i * 3 + 2] = uint8_t(60 + i % 5);
    }
    return image;
}

PATHBUF Grey(int32_t width, int32_t height)
{
    PATHBUF grey = ZrPathBufAlloc(8, width, height);
    for (int32_t i = 0; i < width * height; i++) grey[i] = uint8_t((i * 37 + (i / width) * 11) & 255);
    return grey;
}

constexpr double slope = 0.5773502; /* of a light halfway between three axes */

void LightsOn()
{
    ShadingGammaToMap();
    const int32_t shininess[4] = {24, 30, 12, 8};
    const int32_t percent[4] = {60, 40, 70, 20};
    const uint32_t colours[4] = {0xFFFFFF, 0x80FF40, 0x4060FF, 0xFF8020};
    ZrPathAdjPhongIllum(shininess, percent, 0x202020, colours, 1, 25);
    ZrPathAdjMetallicIllum(shininess, percent, 1, 60);
}

void ComparePhong(const std::string &name, const ROAD &road, int32_t profile)
{
    PATHBUF image = Colour(road.mask);
    ZrPathShadePhong(image, road.width, profile, 0, 0, 0, road.distance, road.offset, 0, road.mask, nullptr, 0, 0, 0,
                     -slope, -slope, slope, 0, 0, 0, nullptr);
    Compare(name, Bytes(image), ONE_LEVEL);
    ZrPathBufFree(image);
}

void CompareMetallic(const std::string &name, const ROAD &road)
{
    PATHBUF image = Colour(road.mask);
    ZrPathShadeMetallic(image, road.width, 0, 1, 20, 0, road.distance, road.offset, 0, road.mask, nullptr, 1, 40, 40,
                        -slope, -slope, slope, 0x60C8FF, nullptr, 0, 0, nullptr);
    Compare(name, Bytes(image), ONE_LEVEL);
    ZrPathBufFree(image);
}

void CompareRender(const std::string &name, const ROAD &road, int32_t width)
{
    PATHBUF mask = Mask(road.path, 4, 1, 0);
    RECT rect;
    ZrPathGetMiniMaxRect(road.path, 0x10000, &rect);
    const POINT maskOrigin = {rect.left, rect.top};
    const POINT outOrigin = {0, 0};
    POINTFXMAT3D camera = {};
    camera.center = camera.shift = {width / 2 * 65536, 48 * 65536};
    camera.viewSize = width;
    camera.viewAngle = 40;
    camera.matrix = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    const tagPOINT3D axis = {0, 1, 0};
    VThitaGetMatrix(0.5, 0.8660254037844386, &axis, &camera.matrix);
    PATHBUF colour = ZrPathBufAlloc(24, width, 100);
    PATHBUF alpha = ZrPathBufAlloc(8, width, 100);
    const uint32_t material = 0x2C5CD6;
    const double light[3] = {-slope, -slope, slope};
    ASSERT_EQ(1, ZrPathABufRender(road.path, &camera, colour, alpha, 0, &outOrigin, &maskOrigin, &material, mask,
                                  road.offset, 0, 0, 0, 0, 0, 0, 0, 1, 0, static_cast<int32_t>(road.width), 0, 0, 0,
                                  light, 0));
    Compare(name + "-colour", Bytes(colour), ONE_LEVEL);
    Compare(name + "-alpha", Bytes(alpha), ONE_LEVEL);
    ZrPathBufFree(colour);
    ZrPathBufFree(alpha);
    ZrPathBufFree(mask);
}

TEST(Road, MasksAreTheSameBytesOnEveryBuild)
{
    PATHREC *path = Outline();
    static const struct {
        const char *name;
        int32_t depth, aaMode, scope;
    } masks[] = {{"mask-16rows", 8, 1, 0},  {"mask-4rows", 8, 999, 0}, {"mask-hard", 8, 0, 0},
                 {"mask-abuffer", 4, 1, 0}, {"outline-hard", 8, 0, 1}, {"outline-smooth", 8, 1, 1}};
    for (const auto &entry : masks) {
        PATHBUF mask = Mask(path, entry.depth, entry.aaMode, entry.scope);
        Compare(entry.name, Bytes(mask), SAME_BYTES);
        ZrPathBufFree(mask);
    }
    ZrPathDeletePtr(path, 0);
}

TEST(Road, DisplayBufferIsTheSameBytesOnEveryBuild)
{
    PATHREC *path = Outline();
    PATHTBL *table = nullptr;
    COORDSTRUCT *view = nullptr;
    RECT dirty;
    ZrPathCoordStruct(0, 0, 180, 100, 0, 0, 1, nullptr, &view);
    ASSERT_EQ(1, ZrPathAddPathGroup(&table, path, "road", view, &dirty));
    Compare("display", BLOCK(table->lpDB, table->lpDB + 180 * 100), SAME_BYTES);
    ZrPathTblDelete(table);
    ZrPathDeleteCoordStruct(view);
}

TEST(Road, StreamIsTheSameBytesOnEveryBuildAndReadsBack)
{
    PATHREC *path = Everything();
    Compare("stream", Flattened(path), SAME_BYTES);
    PATHREC *read = Unflattened(ReadAll(Kept("stream")));
    ASSERT_NE(nullptr, read);
    EXPECT_EQ(Description(path), Description(read));
    ZrPathDeletePtr(read, 0);
    ZrPathDeletePtr(path, 0);
}

TEST(Road, SweptPlanesAreTheSameBytesOnEveryBuild)
{
    ROAD road = Swept(Outline(), 9);
    Compare("swept-distance", Bytes(road.distance), SAME_BYTES);
    Compare("swept-offset", Bytes(road.offset), SAME_BYTES);
    Free(&road);
}

TEST(Road, ExactPlanesAreTheSameBytesOnEveryBuild)
{
    PATHREC *path = Outline();
    double width = 9;
    PATHBUF distance = reinterpret_cast<PATHBUF>(1);
    PATHBUF offset = reinterpret_cast<PATHBUF>(1);
    ASSERT_EQ(1, ZrPathVMap(path, &distance, &offset, 0, 0, 0, 0, 1, &width, 0, 0, nullptr, nullptr, 0x10000));
    Compare("exact-distance", Bytes(distance), SAME_BYTES);
    Compare("exact-offset", Bytes(offset), SAME_BYTES);
    ZrPathBufFree(distance);
    ZrPathBufFree(offset);
    ZrPathDeletePtr(path, 0);
}

TEST(Road, ShadersAgreeWithinOneLevelOnEveryBuild)
{
    ROAD road = Swept(Outline(), 9);
    LightsOn();
    const double lights[12] = {-slope, -slope, slope, slope, -slope, slope, -slope, slope, slope, slope, slope, slope};
    const int32_t spotOn[4] = {1, 0, 1, 0};
    const int32_t spotPos[8] = {30, 30, 50, 50, 70, 60, 10, 90};
    static const int32_t profiles[] = {0, 1, 100, 101, 102, 103, 104};
    for (int32_t profile : profiles) ComparePhong("phong-" + std::to_string(profile), road, profile);
    CompareMetallic("metallic", road);
    PATHBUF image = Colour(road.mask);
    ZrPathShadeMultiPhong(image, 9, 0, 0, 0, 0, road.distance, road.offset, 0, road.mask, nullptr, 4, spotOn, spotPos,
                          lights, 0, 0, 0, nullptr);
    Compare("multi-phong", Bytes(image), ONE_LEVEL);
    ZrPathBufFree(image);
    image = Colour(road.mask);
    ZrPathShadeMultiMetallic(image, 9, 1, 0, 0, 0, road.distance, road.offset, 0, road.mask, nullptr, 3, spotOn,
                             spotPos, lights, 0x60C8FF, nullptr, 0, 0, nullptr);
    Compare("multi-metallic", Bytes(image), ONE_LEVEL);
    ZrPathBufFree(image);
    Free(&road);
}

TEST(Road, MapsAgreeWithinOneLevelOnEveryBuild)
{
    ROAD road = Swept(Outline(), 9);
    int32_t width, height, bits;
    ZrPathBufGetWHU(road.mask, &width, &height, &bits);
    PATHBUF source = Grey(64, 32);
    PATHBUF bump = ZrPathBufAlloc(8, width, height);
    ZrPathBumpIt(0, 9, road.offset, bump, 0, 0, 0, source, 0, road.mask, nullptr);
    Compare("bump", Bytes(bump), ONE_LEVEL);
    ZrPathTransparentMask(road.mask, 70, 20, 9, 0, 0, 0, 0, road.offset, 0, 0, nullptr);
    Compare("transparent", Bytes(road.mask), ONE_LEVEL);
    ZrPathBufFree(source);
    ZrPathBufFree(bump);
    Free(&road);
}

TEST(Road, RenderAgreesWithinOneLevelOnEveryBuild)
{
    ROAD road = Swept(Outline(), 9);
    CompareRender("render", road, 180);
    Free(&road);
}

TEST(Road, LetteringIsTheSameOnEveryBuild)
{
    PATHREC *path = Lettering();
    ASSERT_NE(nullptr, path);
    PATHBUF fine = Mask(path, 4, 1, 0);
    Compare("lettering-mask-abuffer", Bytes(fine), SAME_BYTES);
    ZrPathBufFree(fine);
    ROAD road = Swept(path, 6);
    Compare("lettering-mask", Bytes(road.mask), SAME_BYTES);
    Compare("lettering-distance", Bytes(road.distance), SAME_BYTES);
    Compare("lettering-offset", Bytes(road.offset), SAME_BYTES);
    LightsOn();
    ComparePhong("lettering-phong", road, 0);
    CompareMetallic("lettering-metallic", road);
    CompareRender("lettering-render", road, 200);
    Free(&road);
}

} // namespace
