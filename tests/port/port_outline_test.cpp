/* port_outline_test.cpp - hand-made glyphs to native contours: starts, runs, implied points, cubics, and bad orders. */
#include "port/port_outline.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace zr32port;

namespace {

constexpr OUTLINESCALE unit = {1.0, 0.0, 0.0, 1.0};

using BYTES = std::vector<BYTE>;

int Convert(std::vector<OUTLINEPOINT> points, std::vector<int32_t> lasts, BYTES *bytes, OUTLINESCALE scale = unit)
{
    const OUTLINE outline = {points.data(), lasts.data(), static_cast<int32_t>(points.size()),
                             static_cast<int32_t>(lasts.size())};
    size_t size = 0;
    bytes->clear();
    if (!OutlineToNative(outline, scale, nullptr, 0, &size)) return 0;
    bytes->resize(size);
    size_t filled = 0;
    EXPECT_EQ(OutlineToNative(outline, scale, bytes->data(), size, &filled), 1);
    EXPECT_EQ(filled, size);
    return 1;
}

/* "start; L points; Q points" a contour, coordinates in whole units. */
std::string Text(const BYTES &bytes)
{
    std::string text;
    const auto point = [&](size_t at) {
        POINTFX p;
        memcpy(&p, bytes.data() + at, sizeof(p));
        const auto number = [](FIXED v) {
            std::string s = std::to_string(v / 65536.0);
            s.erase(s.find_last_not_of('0') + 1);
            if (s.back() == '.') s.pop_back();
            return s;
        };
        return " " + number(p.x) + "," + number(p.y);
    };
    for (size_t at = 0; at < bytes.size();) {
        DWORD head[2];
        memcpy(head, bytes.data() + at, sizeof(head));
        EXPECT_EQ(head[1], 24u);
        EXPECT_GE(head[0], 16u);
        EXPECT_LE(head[0], bytes.size() - at);
        if (head[0] < 16 || head[0] > bytes.size() - at) return text + "?";
        text += (text.empty() ? "M" : " M") + point(at + 8);
        for (size_t curve = at + 16; curve < at + head[0];) {
            WORD words[2];
            memcpy(words, bytes.data() + curve, sizeof(words));
            text += words[0] == TT_PRIM_LINE ? " L" : words[0] == TT_PRIM_QSPLINE ? " Q" : " ?";
            for (size_t i = 0; i < words[1]; i++) text += point(curve + 4 + 8 * i);
            curve += 4 + 8 * size_t{words[1]};
        }
        at += head[0];
    }
    return text;
}

} // namespace

TEST(PortOutline, RunsOfLinesAndSplines)
{
    const POINTKIND on = POINT_ON, off = POINT_CONIC;
    const struct {
        const char *name;
        std::vector<OUTLINEPOINT> points;
        const char *text;
    } cases[] = {
        {"lines: the one back is left out", {{0, 0, on}, {4, 0, on}, {4, 4, on}}, "M 0,0 L 4,0 4,4"},
        {"an end point on the start stays", {{0, 0, on}, {4, 0, on}, {0, 0, on}}, "M 0,0 L 4,0 0,0"},
        {"a spline stays one run", {{0, 0, on}, {1, 0, off}, {2, 1, off}, {3, 3, on}}, "M 0,0 Q 1,0 2,1 3,3"},
        {"line, spline, line",
         {{0, 0, on}, {1, 0, on}, {2, 0, off}, {2, 1, on}, {2, 5, on}, {0, 5, on}},
         "M 0,0 L 1,0 Q 2,0 2,1 L 2,5 0,5"},
        {"two splines with an on-curve point between",
         {{0, 0, on}, {1, 0, off}, {1, 1, on}, {1, 2, off}, {0, 2, on}},
         "M 0,0 Q 1,0 1,1 Q 1,2 0,2"},
        {"a spline into the end ends on the start", {{0, 0, on}, {4, 0, on}, {4, 4, off}}, "M 0,0 L 4,0 Q 4,4 0,0"},
        {"control point first, on-curve point last", {{1, 0, off}, {4, 0, on}, {0, 0, on}}, "M 0,0 Q 1,0 4,0"},
        {"control points only", {{0, 0, off}, {4, 0, off}, {4, 4, off}, {0, 4, off}}, "M 0,2 Q 0,0 4,0 4,4 0,4 0,2"},
        {"a lone point", {{7, 7, on}}, ""},
        {"a lone control point", {{7, 7, off}}, ""},
    };
    for (const auto &c : cases) {
        BYTES bytes;
        EXPECT_EQ(Convert(c.points, {static_cast<int32_t>(c.points.size()) - 1}, &bytes), 1) << c.name;
        EXPECT_EQ(Text(bytes), c.text) << c.name;
    }
}

TEST(PortOutline, ContoursFollowEachOther)
{
    BYTES bytes;
    const POINTKIND on = POINT_ON;
    EXPECT_EQ(Convert({{0, 0, on}, {1, 0, on}, {9, 9, on}, {2, 2, on}, {3, 2, on}, {3, 3, on}}, {1, 2, 2, 5}, &bytes),
              1);
    EXPECT_EQ(Text(bytes), "M 0,0 L 1,0 M 2,2 L 3,2 3,3"); /* the lone point and the empty contour are left out */
    EXPECT_EQ(Convert({}, {}, &bytes), 1);
    EXPECT_TRUE(bytes.empty());
}

TEST(PortOutline, ScaleIsAppliedToEveryPoint)
{
    BYTES bytes;
    EXPECT_EQ(Convert({{1, 2, POINT_ON}, {3, 4, POINT_CONIC}, {5, 6, POINT_ON}}, {2}, &bytes, {2, 0.5, -1, 3}), 1);
    EXPECT_EQ(Text(bytes), "M 3,5 Q 8,9 13,13");
    EXPECT_EQ(Convert({{1, 0, POINT_ON}, {0, 1, POINT_ON}}, {1}, &bytes, {1.0 / 65536, 0, 0, -1.0 / 131072}), 1);
    FIXED words[2];
    memcpy(words, bytes.data() + 8, 8);
    EXPECT_EQ(words[0], 1);
    memcpy(words, bytes.data() + 20, 8);
    EXPECT_EQ(words[1], 0); /* -0.5 of the last bit is rounded up */
}

TEST(PortOutline, CubicsAreFollowedWithinASixtyFourth)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> place(-60, 60);
    for (int n = 0; n < 200; n++) {
        const OUTLINEPOINT p[4] = {{place(random), place(random), POINT_ON},
                                   {place(random), place(random), POINT_CUBIC},
                                   {place(random), place(random), POINT_CUBIC},
                                   {place(random), place(random), POINT_ON}};
        BYTES bytes;
        ASSERT_EQ(Convert({p, p + 4}, {3}, &bytes), 1);
        const auto read = [&](size_t at) {
            FIXED words[2];
            memcpy(words, bytes.data() + at, 8);
            return std::pair<double, double>(words[0] / 65536.0, words[1] / 65536.0);
        };
        /* Pieces lie at equal parameters, each a spline of a control point and an end. */
        const size_t pieces = (bytes.size() - 16) / 20;
        ASSERT_EQ(16 + pieces * 20, bytes.size());
        auto from = read(8);
        for (size_t i = 0; i < pieces; i++) {
            const auto control = read(16 + i * 20 + 4);
            const auto to = read(16 + i * 20 + 12);
            for (double u = 0; u <= 1; u += 0.25) {
                const double x = (1 - u) * (1 - u) * from.first + 2 * u * (1 - u) * control.first + u * u * to.first;
                const double y = (1 - u) * (1 - u) * from.second + 2 * u * (1 - u) * control.second + u * u * to.second;
                const double t = (static_cast<double>(i) + u) / static_cast<double>(pieces), s = 1 - t;
                const double cx =
                    s * s * s * p[0].x + 3 * s * s * t * p[1].x + 3 * s * t * t * p[2].x + t * t * t * p[3].x;
                const double cy =
                    s * s * s * p[0].y + 3 * s * s * t * p[1].y + 3 * s * t * t * p[2].y + t * t * t * p[3].y;
                EXPECT_LT(std::hypot(x - cx, y - cy), 1.0 / 64 + 0.0001);
            }
            from = to;
        }
        EXPECT_NEAR(from.first, p[3].x, 1.0 / 65536);
    }
}

TEST(PortOutline, CubicThatIsAQuadraticIsOnePiece)
{
    /* (0,0) (3,0) (3,3) raised. */
    BYTES bytes;
    EXPECT_EQ(Convert({{0, 0, POINT_ON}, {2, 0, POINT_CUBIC}, {3, 1, POINT_CUBIC}, {3, 3, POINT_ON}}, {3}, &bytes), 1);
    EXPECT_EQ(Text(bytes), "M 0,0 Q 3,0 3,3");
    EXPECT_EQ(Convert({{0, 0, POINT_ON}, {3, 3, POINT_ON}, {3, 1, POINT_CUBIC}, {2, 0, POINT_CUBIC}}, {3}, &bytes), 1);
    EXPECT_EQ(Text(bytes), "M 0,0 L 3,3 Q 3,0 0,0");
}

TEST(PortOutline, CubicsEndWithTheirContourWhateverFollows)
{
    const POINTKIND on = POINT_ON, off = POINT_CONIC, cubic = POINT_CUBIC;
    BYTES bytes;
    EXPECT_EQ(Convert({{0, 0, on}, {3, 3, on}, {3, 1, cubic}, {2, 0, cubic}, {9, 9, off}, {8, 8, on}, {7, 9, on}},
                      {3, 6}, &bytes),
              1);
    EXPECT_EQ(Text(bytes), "M 0,0 L 3,3 Q 3,0 0,0 M 7,9 Q 9,9 8,8");
    EXPECT_EQ(Convert({{0, 0, on}, {3, 3, cubic}, {1, 1, cubic}, {2, 0, cubic}, {9, 9, on}}, {1, 4}, &bytes), 0)
        << "a control point alone, though another contour's stands behind it";
}

TEST(PortOutline, OrdersThatNoOutlineHasAreRefused)
{
    const POINTKIND on = POINT_ON, off = POINT_CONIC, cubic = POINT_CUBIC;
    const std::vector<POINTKIND> orders[] = {
        {on, cubic},           {on, cubic, on},         {on, cubic, off, on},          {on, off, cubic, cubic, on},
        {cubic, cubic, cubic}, {on, cubic, cubic, off}, {on, cubic, cubic, cubic, on},
    };
    for (const auto &order : orders) {
        std::vector<OUTLINEPOINT> points;
        for (POINTKIND kind : order) points.push_back({1.0 * static_cast<double>(points.size()), 0, kind});
        BYTES bytes;
        EXPECT_EQ(Convert(points, {static_cast<int32_t>(points.size()) - 1}, &bytes), 0);
    }
}

TEST(PortOutline, CoordinatesBeyondSixteenBitsAreRefused)
{
    for (const double v : {32768.0, -32768.0, 1e300, -1e300, static_cast<double>(INFINITY), static_cast<double>(NAN)}) {
        BYTES bytes;
        EXPECT_EQ(Convert({{0, 0, POINT_ON}, {v, 0, POINT_ON}}, {1}, &bytes), 0) << v;
        EXPECT_EQ(Convert({{0, 0, POINT_ON}, {0, v, POINT_CUBIC}, {0, v, POINT_CUBIC}}, {2}, &bytes), 0) << v;
    }
    BYTES bytes;
    EXPECT_EQ(Convert({{32767, -32767, POINT_ON}, {0, 0, POINT_ON}}, {1}, &bytes), 1);
}

TEST(PortOutline, RunsHoldAtMost65535Points)
{
    const struct {
        int32_t lines;
        size_t runs;
    } cases[] = {{65535, 1}, {65536, 2}, {70000, 2}};
    for (const auto &c : cases) {
        std::vector<OUTLINEPOINT> points(static_cast<size_t>(c.lines) + 1, {1, 1, POINT_ON});
        BYTES bytes;
        ASSERT_EQ(Convert(points, {c.lines}, &bytes), 1);
        EXPECT_EQ(bytes.size(), 16 + 4 * c.runs + 8 * static_cast<size_t>(c.lines));
        WORD words[2];
        memcpy(words, bytes.data() + 16, sizeof(words));
        EXPECT_EQ(words[1], 65535);
    }
    /* A spline is not taken apart: with its end point it has one more than its control points. */
    for (const int32_t controls : {65534, 65535}) {
        std::vector<OUTLINEPOINT> points(static_cast<size_t>(controls) + 1, {1, 1, POINT_CONIC});
        points[0].kind = POINT_ON;
        BYTES bytes;
        EXPECT_EQ(Convert(points, {controls}, &bytes), controls == 65534) << controls;
    }
}

TEST(PortOutline, NothingIsWrittenBehindTheBuffer)
{
    std::vector<OUTLINEPOINT> points = {{0, 0, POINT_ON},    {1, 0, POINT_CONIC}, {2, 0, POINT_ON},
                                        {3, 0, POINT_CUBIC}, {4, 9, POINT_CUBIC}, {5, 0, POINT_ON},
                                        {0, 0, POINT_CONIC}, {9, 0, POINT_CONIC}};
    std::vector<int32_t> lasts = {5, 7};
    const OUTLINE outline = {points.data(), lasts.data(), 8, 2};
    size_t size = 0;
    ASSERT_EQ(OutlineToNative(outline, unit, nullptr, 0, &size), 1);
    for (size_t room = 0; room <= size; room++) {
        BYTES buffer(size + 32, 0xEE);
        size_t filled = 0;
        EXPECT_EQ(OutlineToNative(outline, unit, buffer.data(), room, &filled), 1);
        EXPECT_EQ(filled, size);
        for (size_t i = room; i < buffer.size(); i++) ASSERT_EQ(buffer[i], 0xEE) << room;
    }
}

TEST(PortOutline, RandomOrdersGiveWellFormedDataOrNone)
{
    std::mt19937 random(9);
    for (int n = 0; n < 3000; n++) {
        std::vector<OUTLINEPOINT> points;
        std::vector<int32_t> lasts;
        for (int k = 0; k < 3; k++) {
            for (auto i = random() % 7; i > 0; i--)
                points.push_back({static_cast<double>(random() % 100), static_cast<double>(random() % 100),
                                  static_cast<POINTKIND>(random() % (n % 2 ? 3 : 2))});
            lasts.push_back(static_cast<int32_t>(points.size()) - 1);
        }
        BYTES bytes;
        if (Convert(points, lasts, &bytes)) Text(bytes);
    }
}

TEST(PortOutline, BoxHoldsEveryPoint)
{
    std::vector<OUTLINEPOINT> points = {{3, -2, POINT_ON}, {-4, 7, POINT_CONIC}, {5, 1, POINT_ON}};
    std::vector<int32_t> lasts = {2};
    OUTLINEBOX box;
    OutlineBox({points.data(), lasts.data(), 3, 1}, {2, 0, 0, -1}, &box);
    EXPECT_EQ(box.left, -8);
    EXPECT_EQ(box.right, 10);
    EXPECT_EQ(box.bottom, -7);
    EXPECT_EQ(box.top, 2);
    OutlineBox({nullptr, nullptr, 0, 0}, unit, &box);
    EXPECT_EQ(box.right, 0);
}
