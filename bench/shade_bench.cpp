/* shade_bench.cpp - time a pixel of each shader, of bump and reflection maps and of glass, by image size.
 *
 * Two surfaces: a cone, where every pixel has an offset of its own and lies on the bevel, and a plate with straight
 * bevels along its sides and a level middle, as an editor's usual shapes have them. time/px is the figure to read.
 */
#include <benchmark/benchmark.h>
#include <zr32path.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

enum SURFACE { CONE, PLATE };

constexpr double bevelWidth = 40.0;

struct SCENE {
    int32_t size;
    PATHBUF image;
    PATHBUF fresh; /* the image before shading */
    PATHBUF distance;
    PATHBUF offsets;
    PATHBUF mask;
    PATHBUF grey;
    PATHBUF colours;
};

void PutOffset(SCENE *scene, int32_t x, int32_t y, double dx, double dy)
{
    const size_t at = static_cast<size_t>(y) * static_cast<size_t>(scene->size) + static_cast<size_t>(x);
    const SURFVEC16 vector = {static_cast<int16_t>(dx * 256), static_cast<int16_t>(dy * 256), 0, 0};
    const float distance = static_cast<float>(dx * dx + dy * dy);
    std::memcpy(scene->offsets + 8 * at, &vector, 8);
    std::memcpy(scene->distance + 4 * at, &distance, 4);
}

/* The bevel of a disc that is as wide as the image, repeated ring by ring. */
void FillCone(SCENE *scene)
{
    const double centre = scene->size * 0.5;
    for (int32_t y = 0; y < scene->size; y++)
        for (int32_t x = 0; x < scene->size; x++) {
            const double dx = x + 0.5 - centre;
            const double dy = y + 0.5 - centre;
            const double r = std::max(std::sqrt(dx * dx + dy * dy), 0.5);
            const double length = std::fmod(r, bevelWidth);
            PutOffset(scene, x, y, dx / r * length, dy / r * length);
        }
}

void FillPlate(SCENE *scene)
{
    const int32_t last = scene->size - 1;
    for (int32_t y = 0; y < scene->size; y++)
        for (int32_t x = 0; x < scene->size; x++) {
            const int32_t left = std::min(x, last - x);
            const int32_t top = std::min(y, last - y);
            const double side = x < last - x ? -1.0 : 1.0;
            const double updown = y < last - y ? -1.0 : 1.0;
            if (std::min(left, top) + 0.5 >= bevelWidth)
                PutOffset(scene, x, y, 0, 0);
            else if (left < top)
                PutOffset(scene, x, y, side * (left + 0.5), 0);
            else
                PutOffset(scene, x, y, 0, updown * (top + 0.5));
        }
}

SCENE MakeScene(int32_t size, SURFACE surface)
{
    SCENE scene = {size,
                   ZrPathBufAlloc(24, size, size),
                   nullptr,
                   ZrPathBufAlloc(32, size, size),
                   ZrPathBufAlloc(0x40, size, size),
                   ZrPathBufAlloc(8, size, size),
                   ZrPathBufAlloc(8, size, size),
                   ZrPathBufAlloc(24, size, size)};
    const size_t pixels = static_cast<size_t>(size) * static_cast<size_t>(size);
    std::memset(scene.mask, 255, pixels);
    for (size_t i = 0; i < 3 * pixels; i++) {
        scene.image[i] = static_cast<uint8_t>(96 + (i * 37 >> 6) % 64);
        scene.colours[i] = static_cast<uint8_t>(i * 29 >> 3);
    }
    for (size_t i = 0; i < pixels; i++) scene.grey[i] = static_cast<uint8_t>(i * 13 >> 2);
    scene.fresh = ZrPathBufDuplicate(0, scene.image);
    surface == CONE ? FillCone(&scene) : FillPlate(&scene);
    ShadingGammaToMap();
    return scene;
}

void FreeScene(const SCENE &scene)
{
    for (PATHBUF buf : {scene.image, scene.fresh, scene.distance, scene.offsets, scene.mask, scene.grey, scene.colours})
        ZrPathBufFree(buf);
}

/* What a pass is asked for besides its surface. */
struct PASS {
    int32_t profile;
    int32_t spot;
    int32_t bump;
};

const double lights[12] = {-0.5773502, -0.5773502, 0.5773502, 0.5773502, -0.5773502, 0.5773502,
                           -0.5773502, 0.5773502,  0.5773502, 0.5773502, 0.5773502,  0.5773502};
const int32_t places[8] = {30, 30, 70, 30, 30, 70, 70, 70};

void Phong(const SCENE &s, const PASS &pass)
{
    ZrPathShadePhong(s.image, bevelWidth, pass.profile, 0, 0, 0, s.distance, s.offsets, 0, s.mask, nullptr, pass.spot,
                     30, 30, lights[0], lights[1], lights[2], 0, 0, pass.bump, pass.bump ? s.grey : nullptr);
}

void Metallic(const SCENE &s, const PASS &pass)
{
    ZrPathShadeMetallic(s.image, bevelWidth, pass.profile, 0, 0, 0, s.distance, s.offsets, 0, s.mask, nullptr,
                        pass.spot, 30, 30, lights[0], lights[1], lights[2], 0x40C0FF, nullptr, 0, pass.bump,
                        pass.bump ? s.grey : nullptr);
}

void MultiPhong(const SCENE &s, const PASS &pass)
{
    const int32_t spots[4] = {pass.spot, pass.spot, pass.spot, pass.spot};
    ZrPathShadeMultiPhong(s.image, bevelWidth, pass.profile, 0, 0, 0, s.distance, s.offsets, 0, s.mask, nullptr, 4,
                          spots, places, lights, 0, 0, pass.bump, pass.bump ? s.grey : nullptr);
}

void MultiMetallic(const SCENE &s, const PASS &pass)
{
    const int32_t spots[4] = {pass.spot, pass.spot, pass.spot, pass.spot};
    ZrPathShadeMultiMetallic(s.image, bevelWidth, pass.profile, 0, 0, 0, s.distance, s.offsets, 0, s.mask, nullptr, 4,
                             spots, places, lights, 0x40C0FF, nullptr, 0, pass.bump, pass.bump ? s.grey : nullptr);
}

void BumpIt(const SCENE &s, const PASS &pass)
{
    ZrPathBumpIt(pass.profile, bevelWidth, s.offsets, s.mask, 0, 0, 0, s.grey, 0, s.mask, nullptr);
}

void ReflectIt(const SCENE &s, const PASS &pass)
{
    ZrPathReflectIt(pass.profile, bevelWidth, s.offsets, s.image, 0, 0, 0, s.colours, 0, s.mask, nullptr, pass.bump,
                    pass.bump ? s.grey : nullptr);
}

void Glass(const SCENE &s, const PASS &pass)
{
    std::memset(s.mask, 255, static_cast<size_t>(s.size) * static_cast<size_t>(s.size));
    ZrPathTransparentMask(s.mask, 60, 10, bevelWidth, pass.profile, 0, 0, 0, s.offsets, 0, pass.bump,
                          pass.bump ? s.grey : nullptr);
}

void Measure(benchmark::State &state, void (*run)(const SCENE &, const PASS &), SURFACE surface, PASS pass)
{
    const int32_t size = static_cast<int32_t>(state.range(0));
    const SCENE scene = MakeScene(size, surface);
    const size_t pixels = static_cast<size_t>(size) * static_cast<size_t>(size);
    for (auto step : state) {
        state.PauseTiming();
        std::memcpy(scene.image, scene.fresh, 3 * pixels);
        std::memset(scene.mask, 255, pixels);
        state.ResumeTiming();
        run(scene, pass);
    }
    state.counters["time/px"] = benchmark::Counter(
        static_cast<double>(pixels), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    FreeScene(scene);
}

} // namespace

#define SHADE_BENCH(run, surface, profile, spot, bump)                                                                 \
    BENCHMARK_CAPTURE(Measure, run##_##surface##_profile##profile##_spot##spot##_bump##bump, run, surface,             \
                      PASS{profile, spot, bump})                                                                       \
        ->Arg(128)                                                                                                     \
        ->Arg(512)                                                                                                     \
        ->Arg(1024)                                                                                                    \
        ->Unit(benchmark::kMillisecond)

SHADE_BENCH(Phong, CONE, 0, 0, 0);
SHADE_BENCH(Phong, PLATE, 0, 0, 0);
SHADE_BENCH(Phong, CONE, 102, 0, 0);
SHADE_BENCH(Phong, CONE, 0, 1, 0);
SHADE_BENCH(Phong, CONE, 0, 0, 50);
SHADE_BENCH(Metallic, CONE, 0, 0, 0);
SHADE_BENCH(Metallic, PLATE, 0, 0, 0);
SHADE_BENCH(MultiPhong, CONE, 0, 0, 0);
SHADE_BENCH(MultiPhong, PLATE, 0, 0, 0);
SHADE_BENCH(MultiPhong, CONE, 0, 1, 0);
SHADE_BENCH(MultiMetallic, CONE, 0, 0, 0);
SHADE_BENCH(MultiMetallic, PLATE, 0, 0, 0);
SHADE_BENCH(BumpIt, CONE, 0, 0, 0);
SHADE_BENCH(ReflectIt, CONE, 0, 0, 0);
SHADE_BENCH(ReflectIt, PLATE, 0, 0, 0);
SHADE_BENCH(ReflectIt, CONE, 0, 0, 50);
SHADE_BENCH(Glass, CONE, 0, 0, 0);
SHADE_BENCH(Glass, PLATE, 0, 0, 0);
