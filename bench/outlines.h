/* outlines.h - the shapes that benchmarks are run on, the same for us and for every peer. */
#ifndef ZR32_BENCH_OUTLINES_H
#define ZR32_BENCH_OUTLINES_H

#include "store/store.h"

#include <cmath>
#include <random>
#include <vector>

namespace zr32bench {

struct PT {
    double x, y;
};

/* Closed contours of cubics: a start and three points a curve. A line is a cubic with its controls on it, but for the
 * star, whose contour is one of corners. */
struct SHAPE {
    std::vector<std::vector<PT>> contours;
    bool lines;
};

/* A closed smooth curve through points on a wobbling circle. */
inline std::vector<PT> Blob(PT center, PT radius, int curves, double wobble, std::mt19937 &random)
{
    std::uniform_real_distribution<double> factor(1 - wobble, 1.0);
    std::vector<PT> on;
    for (int i = 0; i < curves; i++) {
        const double angle = 2 * M_PI * i / curves;
        const double f = factor(random);
        on.push_back({center.x + std::cos(angle) * radius.x * f, center.y + std::sin(angle) * radius.y * f});
    }
    std::vector<PT> contour = {on[0]};
    const size_t n = on.size();
    for (size_t i = 0; i < n; i++) {
        const PT &a = on[(i + n - 1) % n], &b = on[i], &c = on[(i + 1) % n], &d = on[(i + 2) % n];
        contour.push_back({b.x + (c.x - a.x) / 6, b.y + (c.y - a.y) / 6});
        contour.push_back({c.x - (d.x - b.x) / 6, c.y - (d.y - b.y) / 6});
        contour.push_back(c);
    }
    return contour;
}

inline SHAPE BlobShape(double size)
{
    std::mt19937 random(1);
    return {{Blob({size / 2, size / 2}, {size / 2, size / 2}, 40, 0.3, random)}, false};
}

inline SHAPE GlyphShape(double size)
{
    std::mt19937 random(2);
    SHAPE shape = {{}, false};
    for (int row = 0; row < 10; row++)
        for (int column = 0; column < 20; column++)
            shape.contours.push_back(
                Blob({(column + 0.5) * size * 1.25, (row + 0.5) * size * 1.25}, {size / 2, size / 2}, 10, 0.4, random));
    return shape;
}

/* A thin star of ten spikes; with twice as many FreeType gives up, its cells overflow. */
inline SHAPE StarShape(double width)
{
    const double height = width / 20;
    std::vector<PT> contour;
    for (int i = 0; i < 20; i++) {
        const double angle = 2 * M_PI * i / 20;
        const double f = i % 2 ? 0.1 : 0.5;
        contour.push_back({width / 2 + std::cos(angle) * f * width, height / 2 + std::sin(angle) * f * height});
    }
    contour.push_back(contour[0]);
    return {{contour}, true};
}

/* The shape as records joined to each other. */
inline PATHREC *OurPath(const SHAPE &shape)
{
    ZrPathInit();
    std::vector<PATHREC *> records;
    for (const std::vector<PT> &contour : shape.contours) {
        PATHREC *record = zr32::RecordAlloc(contour.size());
        record->nodeCount = static_cast<uint32_t>(contour.size());
        for (size_t i = 0; i < contour.size(); i++) {
            const int last = i + 1 == contour.size();
            const int type = i == 0 ? PATHNODE_START : (shape.lines ? PATHNODE_LINE : PATHNODE_CURVE) + last;
            record->nodes[i] = {static_cast<uint16_t>(type), DbToFix(contour[i].x), DbToFix(contour[i].y)};
        }
        records.push_back(record);
    }
    for (size_t i = 1; i < records.size(); i++) {
        records[i - 1]->nextJoin = records[i];
        records[i]->prevJoin = records[i - 1];
    }
    return records[0];
}

/* Frees a join chain that is in no table chain. */
inline void FreeOurPath(PATHREC *path)
{
    while (path) {
        PATHREC *next = path->nextJoin;
        ZrPathDeletePtr(path, 0);
        path = next;
    }
}

} // namespace zr32bench

#endif
