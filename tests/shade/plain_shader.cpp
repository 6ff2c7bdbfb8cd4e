/* plain_shader.cpp - the per-pixel procedure of the four shaders, written out plainly; see plain_shader.h. */
#include "shade/plain_shader.h"

#include "frame/frame.h"
#include "shade/lights.h"

#include <cmath>
#include <cstring>

namespace zr32test {

using zr32::METALLIGHTS;
using zr32::SHADELIGHTS;
using zr32::TruncInt;

namespace {

const uint8_t *At(PATHBUF buf, int32_t x, int32_t y, int size)
{
    if (!buf) return nullptr;
    int32_t width, height, bits;
    ZrPathBufGetWHU(buf, &width, &height, &bits);
    if (x < 0 || y < 0 || x >= width || y >= height) return nullptr;
    return buf +
           (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * static_cast<size_t>(size);
}

/* Words of one record, the form of words being read even from a plane of floats. */
void Words(PATHBUF normalMap, int32_t x, int32_t y, double *offset)
{
    PlainOffset(normalMap, x, y, 0, offset);
}

struct PIXEL {
    const PLAINSHADE *call;
    double base[3];
    double spotFactor[4];
    double gx;
    double gy;
};

const zr32::LIGHTFACTORS &FactorsOf(const PLAINSHADE &call)
{
    return call.metal ? METALLIGHTS.factors : SHADELIGHTS.factors;
}

double DotD(const double *n, const double *l)
{
    return n[0] * l[0] + n[1] * l[1] + n[2] * l[2];
}

double DotS(const double *n, const double *l)
{
    return 2 * n[2] * n[0] * l[0] + 2 * n[2] * n[1] * l[1] + (2 * n[2] * n[2] - 1) * l[2];
}

double Hi(int light, int c)
{
    return SHADELIGHTS.lightColor[light][c];
}

double FresnelOf(int i)
{
    if (i < 0 || i > 999) return 0.0;
    const double k = 0.617;
    const double n = 2.63;
    const double c = i * 0.001;
    const double q = k * k + n * n;
    const double p = n * c * 2.0;
    const double across = ((q - p) + c * c) / (q + c * c + p);
    const double q2 = (k * k + n * n) * c * c;
    const double p2 = c * n * 2.0;
    const double along = ((q2 - p2) + 1.0) / (p2 + q2 + 1.0);
    return 0.5 * (along + across);
}

void TintOf(double p, double *tint)
{
    const double floor = FresnelOf(999);
    const double F = (FresnelOf(TruncInt(p * 1000.0)) - floor) / (1.0 - floor);
    for (int c = 0; c < 3; c++) {
        const int own = METALLIGHTS.specularTint[c];
        tint[c] = F < 0.0 ? own : (255 - own) * F + own;
    }
}

/* ---- one light ---- */

struct SINGLE {
    double D;
    double S;
    double dd;
    double ss;
    double hi[3]; /* colour of the highlight */
    int shines;   /* S passes its test */
};

SINGLE SingleOf(const PIXEL &pixel, double D, double S, int cutLow)
{
    const PLAINSHADE &call = *pixel.call;
    const zr32::LIGHTFACTORS &factors = FactorsOf(call);
    SINGLE one;
    one.D = D;
    const double least = call.metal ? 0.0 : 0.01;
    one.shines = !(S < least);
    if (cutLow && S < least) {
        S = 0.0;
        one.shines = 1;
    }
    one.S = S;
    if (call.metal) {
        one.dd = call.spotOn[0] ? factors.diffuse[0] * pixel.spotFactor[0] * D : factors.diffuse[0] * D;
        const double p = std::pow(S, factors.shininess[0]);
        one.ss = factors.specular[0] * p;
        TintOf(p, one.hi);
    } else {
        one.dd = D * factors.diffuse[0];
        if (call.spotOn[0]) one.dd = one.dd * pixel.spotFactor[0];
        one.ss = std::pow(S, factors.shininess[0]) * factors.specular[0];
        for (int c = 0; c < 3; c++) one.hi[c] = Hi(0, c);
    }
    if (call.spotOn[0]) one.ss = one.ss * pixel.spotFactor[0];
    return one;
}

SINGLE SingleAt(const PIXEL &pixel, const double *n)
{
    const double *l = SHADELIGHTS.lightDir[0];
    return SingleOf(pixel, DotD(n, l), DotS(n, l), 0);
}

/* ---- several lights ---- */

struct SEVERAL {
    double sumD;
    double spec[3];
    double sumS;
};

void SeveralAdd(const PIXEL &pixel, int i, double D, double S, int diffuseForSpecular, SEVERAL *sum)
{
    const PLAINSHADE &call = *pixel.call;
    const zr32::LIGHTFACTORS &factors = FactorsOf(call);
    if (D > 0.0) {
        double d = factors.diffuse[i] * D;
        if (call.spotOn[i]) d = d * pixel.spotFactor[i];
        sum->sumD += d;
    }
    if (!call.metal) {
        if (S > 0.01) {
            double s = std::pow(S, factors.shininess[i]) * factors.specular[i];
            if (call.spotOn[i]) s = s * pixel.spotFactor[i];
            for (int c = 0; c < 3; c++) sum->spec[c] += Hi(i, c) * s;
            sum->sumS += s;
        }
    } else if (S > 0.0) {
        const double p = std::pow(S, factors.shininess[i]);
        double tint[3];
        TintOf(p, tint);
        double s = factors.specular[i] * p;
        if (call.spotOn[i]) {
            s = s * pixel.spotFactor[i];
            if (diffuseForSpecular) s = factors.diffuse[i] * pixel.spotFactor[i] * p;
        }
        for (int c = 0; c < 3; c++) sum->spec[c] += s * tint[c];
        sum->sumS += s;
    }
}

int Lights(const PLAINSHADE &call)
{
    return call.lightCount > 4 ? 4 : call.lightCount;
}

SEVERAL SeveralAt(const PIXEL &pixel, const double *n, int diffuseForSpecular)
{
    SEVERAL sum = {};
    for (int i = 0; i < Lights(*pixel.call); i++) {
        const double *l = SHADELIGHTS.lightDir[i];
        SeveralAdd(pixel, i, DotD(n, l), DotS(n, l), diffuseForSpecular, &sum);
    }
    return sum;
}

/* ---- adding up ---- */

int Least(int64_t a, int b)
{
    return static_cast<int>(a < b ? a : b);
}

double LeastOf(double a, double b)
{
    return b < a ? b : a;
}

uint8_t GammaOf(int value)
{
    return zr32::gammaMap[value < 0 ? 0 : value];
}

void LightPlain(const PIXEL &pixel, const double *n, int firstPass, uint8_t *mask, int *acc)
{
    const PLAINSHADE &call = *pixel.call;
    if (!call.multi) {
        const SINGLE one = SingleAt(pixel, n);
        for (int c = 0; c < 3; c++)
            if (!(one.D < 0)) acc[c] += TruncInt(pixel.base[c] * one.dd);
        if (one.shines) {
            if (firstPass && call.specularToAlpha)
                *mask = static_cast<uint8_t>(Least(TruncInt(one.ss * 255.0) + int64_t{*mask}, 255));
            for (int c = 0; c < 3; c++) acc[c] += TruncInt(one.hi[c] * one.ss);
        }
    } else {
        const SEVERAL sum = SeveralAt(pixel, n, 0);
        for (int c = 0; c < 3; c++)
            if (sum.sumD != 0) acc[c] += TruncInt(pixel.base[c] * sum.sumD);
        if (firstPass && call.specularToAlpha) {
            double v = sum.sumS * 255.0 + *mask;
            if (v > 255.0) v = 255.0;
            *mask = zr32::TruncByte(v);
        }
        for (int c = 0; c < 3; c++) acc[c] += TruncInt(sum.spec[c]);
    }
    for (int c = 0; c < 3; c++) acc[c] = Least(acc[c], 255);
}

void LightSeam(const PIXEL &pixel, const PLAINSEAM &seam, int firstPass, uint8_t *mask, int *acc)
{
    const PLAINSHADE &call = *pixel.call;
    const double t = seam.weight;
    double colour[2][3];
    double strength[2];
    for (int k = 0; k < 2; k++) {
        const double *n = k == 0 ? seam.first : seam.second;
        if (!call.multi) {
            const SINGLE one = SingleAt(pixel, n);
            for (int c = 0; c < 3; c++) {
                colour[k][c] = !(one.D < 0) ? pixel.base[c] * one.dd : 0.0;
                if (one.shines) colour[k][c] += one.hi[c] * one.ss;
            }
            strength[k] = one.shines ? one.ss : 0.0;
        } else {
            const SEVERAL sum = SeveralAt(pixel, n, k == 1 && firstPass);
            for (int c = 0; c < 3; c++)
                colour[k][c] = (sum.sumD != 0 ? pixel.base[c] * sum.sumD : 0.0) + TruncInt(sum.spec[c]);
            strength[k] = sum.sumS;
        }
        for (int c = 0; c < 3; c++) colour[k][c] = LeastOf(colour[k][c], 255.0);
    }
    for (int c = 0; c < 3; c++) {
        acc[c] += TruncInt(colour[1][c] * t + colour[0][c] * (1 - t));
        acc[c] = Least(acc[c], 255);
    }
    if (firstPass && call.specularToAlpha) {
        const double mixed = (t * strength[1] + (1 - t) * strength[0]) * 255.0;
        if (!call.multi)
            *mask = static_cast<uint8_t>(Least(TruncInt(mixed) + int64_t{*mask}, 255));
        else
            *mask = zr32::TruncByte(LeastOf(mixed + *mask, 255.0));
    }
}

void Normalize(double *v)
{
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (length == 0) return;
    for (int i = 0; i < 3; i++) v[i] = v[i] / length;
}

/* What lives for the length of a call. */
struct CALLSTATE {
    double lastColor[3];
    int flatColor[3];
    double normal[3];
    double spotHeight[4];
};

void Ambient(const PLAINSHADE &call, int32_t col, int32_t row, const PIXEL &pixel)
{
    if (!call.metal) return;
    for (int c = 0; c < 3; c++) METALLIGHTS.metalBase[c] = zr32::TruncByte(METALLIGHTS.factors.ambient * pixel.base[c]);
    if (call.tintMap)
        for (int c = 0; c < 3; c++)
            METALLIGHTS.specularTint[c] = static_cast<uint8_t>(PlainByte(call.tintMap, col, row, 3, c));
}

int AmbientOf(const PLAINSHADE &call, const PIXEL &pixel, int c)
{
    if (call.metal) return METALLIGHTS.metalBase[c];
    return call.fixedAmbient ? SHADELIGHTS.ambientColor[c] : TruncInt(SHADELIGHTS.factors.ambient * pixel.base[c]);
}

void OnePass(CALLSTATE *state, const PIXEL &pixel, double x, double y, int firstPass, uint8_t *mask, int *acc)
{
    const PLAINSHADE &call = *pixel.call;
    const int bumpOn = call.bumpPercent != 0 && call.bumpMap;
    PLAINSEAM seam;
    PlainNormal(call.bevel, &x, &y, state->normal, &seam);
    if (bumpOn) {
        if (seam.weight != 0) {
            seam.first[0] -= pixel.gx;
            seam.first[1] -= pixel.gy;
            seam.second[0] -= pixel.gx;
            seam.second[1] -= pixel.gy;
            Normalize(seam.first);
            Normalize(seam.second);
        } else {
            state->normal[0] -= pixel.gx;
            state->normal[1] -= pixel.gy;
            Normalize(state->normal);
        }
    }
    if (seam.weight != 0)
        LightSeam(pixel, seam, firstPass, mask, acc);
    else
        LightPlain(pixel, state->normal, firstPass, mask, acc);
}

void Shaded(CALLSTATE *state, PIXEL *pixel, int32_t col, int32_t row, uint8_t *rgb, uint8_t *mask)
{
    const PLAINSHADE &call = *pixel->call;
    for (int c = 0; c < 3; c++) pixel->base[c] = rgb[c];
    Ambient(call, col, row, *pixel);
    int accA[3], accB[3];
    for (int c = 0; c < 3; c++) accA[c] = accB[c] = AmbientOf(call, *pixel, c);

    uint32_t bits = 0;
    if (const uint8_t *distance = At(call.distanceMap, col, row, 4)) std::memcpy(&bits, distance, 4);
    double offset[4];
    PlainOffset(call.normalMap, col, row, call.floatNormals, offset);
    int twoPass = 0;
    double mix = 0;
    if (bits > 0x80000000u) {
        offset[0] = -offset[0] * 0.1;
        offset[1] = -offset[1] * 0.1;
    } else if (call.floatNormals) {
        if ((bits & 0x7FFFFFFF) == 0 && offset[0] == 0 && offset[1] == 0) return;
    } else if (offset[2] != 0 || offset[3] != 0) {
        const double delta = std::sqrt(offset[2] * offset[2] + offset[3] * offset[3]) -
                             std::sqrt(offset[0] * offset[0] + offset[1] * offset[1]);
        if (!(std::fabs(delta) > 0.7)) {
            twoPass = 1;
            mix = std::fabs(delta) * 0.71 + 0.5;
        }
    }
    OnePass(state, *pixel, offset[0], offset[1], 1, mask, accA);
    if (!twoPass) {
        for (int c = 0; c < 3; c++) rgb[c] = GammaOf(accA[c]);
        return;
    }
    OnePass(state, *pixel, offset[2], offset[3], 0, mask, accB);
    for (int c = 0; c < 3; c++) rgb[c] = GammaOf(TruncInt(accA[c] * mix + accB[c] * (1 - mix)));
}

void LevelColour(CALLSTATE *state, const PIXEL &pixel)
{
    const PLAINSHADE &call = *pixel.call;
    const int bumpOn = call.bumpPercent != 0 && call.bumpMap;
    double n[3] = {-pixel.gx, -pixel.gy, 1.0};
    if (bumpOn) {
        Normalize(n);
        std::memcpy(state->normal, n, sizeof n);
    }
    const double z = state->normal[2];
    if (!call.multi) {
        const double *l = SHADELIGHTS.lightDir[0];
        const SINGLE one =
            bumpOn ? SingleOf(pixel, DotD(n, l), DotS(n, l), 1) : SingleOf(pixel, l[2], (2 * z * z - 1) * l[2], 1);
        for (int c = 0; c < 3; c++) {
            if (!(one.D < 0)) state->flatColor[c] += TruncInt(pixel.base[c] * one.dd);
            state->flatColor[c] += TruncInt(one.hi[c] * one.ss);
        }
    } else {
        SEVERAL sum = {};
        for (int i = 0; i < Lights(call); i++) {
            const double *l = SHADELIGHTS.lightDir[i];
            if (bumpOn)
                SeveralAdd(pixel, i, DotD(n, l), DotS(n, l), 0, &sum);
            else
                SeveralAdd(pixel, i, l[2], l[2] * (2 * z * z - 1), 0, &sum);
        }
        for (int c = 0; c < 3; c++) {
            if (sum.sumD != 0) state->flatColor[c] += TruncInt(pixel.base[c] * sum.sumD);
            state->flatColor[c] += TruncInt(sum.spec[c]);
        }
    }
    for (int c = 0; c < 3; c++) state->flatColor[c] = Least(state->flatColor[c], 255);
}

void Flat(CALLSTATE *state, PIXEL *pixel, int32_t col, int32_t row, int m, uint8_t *rgb, uint8_t *mask)
{
    const PLAINSHADE &call = *pixel->call;
    for (int c = 0; c < 3; c++) pixel->base[c] = rgb[c];
    const int match = rgb[0] == state->lastColor[0] && rgb[1] == state->lastColor[1] && rgb[2] == state->lastColor[2];
    if (!(match && call.bumpPercent == 0 && !call.bumpMap)) {
        for (int c = 0; c < 3; c++) state->lastColor[c] = rgb[c];
        Ambient(call, col, row, *pixel);
        for (int c = 0; c < 3; c++) state->flatColor[c] = AmbientOf(call, *pixel, c);
        LevelColour(state, *pixel);
    }
    if (m == 255) {
        for (int c = 0; c < 3; c++) rgb[c] = GammaOf(state->flatColor[c]);
        *mask = 255;
        return;
    }
    double offset[4];
    Words(call.normalMap, col, row, offset);
    PLAINSEAM seam;
    PlainNormal(call.bevel, &offset[0], &offset[1], state->normal, &seam);
    if (call.bumpPercent != 0 && call.bumpMap) {
        state->normal[0] -= pixel->gx;
        state->normal[1] -= pixel->gy;
        Normalize(state->normal);
    }
    int acc[3];
    for (int c = 0; c < 3; c++) acc[c] = AmbientOf(call, *pixel, c);
    int64_t a = m;
    if (!call.multi) {
        const SINGLE one = SingleAt(*pixel, state->normal);
        for (int c = 0; c < 3; c++)
            if (!(one.D < 0)) acc[c] += TruncInt(pixel->base[c] * one.dd);
        if (one.shines) {
            if (call.specularToAlpha) a = Least(TruncInt(one.ss * 255.0) + int64_t{m}, 255);
            for (int c = 0; c < 3; c++) acc[c] += TruncInt(one.hi[c] * one.ss);
        }
    } else {
        const SEVERAL sum = SeveralAt(*pixel, state->normal, 0);
        for (int c = 0; c < 3; c++) {
            if (sum.sumD != 0) acc[c] += TruncInt(pixel->base[c] * sum.sumD);
            acc[c] += TruncInt(sum.spec[c]);
        }
        if (call.specularToAlpha && sum.sumS != 0) a = Least(TruncInt(sum.sumS * 255.0) + int64_t{m}, 255);
    }
    if (*mask != 255) *mask = static_cast<uint8_t>(a + (*mask * (255 - a)) / 255);
    const double f = m * 0.00392156862745098;
    for (int c = 0; c < 3; c++) {
        acc[c] = Least(TruncInt(static_cast<double>(acc[c]) * *mask * 0.00392156862745098), 255);
        rgb[c] = GammaOf(Least(TruncInt(acc[c] * (1 - f) + state->flatColor[c] * f), 255));
    }
}

void SpotFactors(const PLAINSHADE &call, const CALLSTATE &state, double col, double row, double width, double height,
                 double *factors)
{
    for (int i = 0; i < Lights(call); i++) {
        if (!call.spotOn[i]) continue;
        double v[3] = {(col / width) * 100.0 - call.spotPos[i][0], (row / height) * 100.0 - call.spotPos[i][1],
                       -state.spotHeight[i]};
        const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        for (double &part : v) part = part / length;
        const double c = -DotD(SHADELIGHTS.lightDir[i], v);
        const zr32::LIGHTFACTORS &state2 = FactorsOf(call);
        factors[i] = c >= 0.0 ? std::pow(c, call.multi ? state2.multiSpotPower : state2.spotPower) : 0.0;
    }
}

} // namespace

int PlainByte(PATHBUF buf, int32_t x, int32_t y, int channels, int channel)
{
    const uint8_t *at = At(buf, x, y, channels);
    return at ? at[channel] : 0;
}

void PlainOffset(PATHBUF normalMap, int32_t x, int32_t y, int32_t floats, double *offset)
{
    offset[0] = offset[1] = offset[2] = offset[3] = 0;
    const uint8_t *at = At(normalMap, x, y, 8);
    if (!at) return;
    if (floats) {
        float f[2];
        std::memcpy(f, at, 8);
        offset[0] = static_cast<double>(f[0]);
        offset[1] = static_cast<double>(f[1]);
    } else {
        int16_t w[4];
        std::memcpy(w, at, 8);
        for (int i = 0; i < 4; i++) offset[i] = w[i] * 0.00390625;
    }
}

void PlainShade(const PLAINSHADE &call)
{
    if (call.metal && call.multi && call.bevel.reflect == 1 && !call.flatMask) return;
    CALLSTATE state = {};
    state.normal[2] = 1;
    for (double &channel : state.lastColor) channel = 999.0;
    const int strong = !call.metal && call.specularToAlpha;
    for (int i = 0; i < Lights(call); i++) {
        std::memcpy(SHADELIGHTS.lightDir[i], call.lights[i], sizeof call.lights[i]);
        if (strong) SHADELIGHTS.factors.specular[i] *= 4.0;
        const double x = call.spotPos[i][0] - 50;
        const double y = call.spotPos[i][1] - 50;
        if (call.multi) {
            const double d = (x * x + y * y) * 2;
            state.spotHeight[i] = d < 5000.0 ? std::sqrt(5000.0 - d) : 0.0;
        } else {
            state.spotHeight[i] = 70.71 - std::sqrt((y * y + x * x) * 2);
            if (state.spotHeight[i] < 0) state.spotHeight[i] = 0;
        }
    }
    for (int c = 0; c < 3; c++)
        if (call.metal) METALLIGHTS.specularTint[c] = static_cast<uint8_t>(call.tint >> (8 * c));

    int32_t width, height, bits;
    ZrPathBufGetWHU(call.image, &width, &height, &bits);
    for (int32_t row = 0; row < height; row++)
        for (int32_t col = 0; col < width; col++) {
            const int m = call.bevel.reflect != 0 ? PlainByte(call.flatMask, col, row) : 0;
            if (m == 0 && PlainByte(call.mask, col, row) == 0) continue;
            PIXEL pixel = {};
            pixel.call = &call;
            SpotFactors(call, state, col, row, width, height, pixel.spotFactor);
            if (call.bumpPercent != 0 && call.bumpMap) {
                const double scale = call.bumpPercent * 0.01;
                const int b = PlainByte(call.bumpMap, col, row);
                pixel.gy = (b - PlainByte(call.bumpMap, col, row == 0 ? 0 : row - 1)) * scale * 0.0078125;
                if (col > 0) pixel.gx = (b - PlainByte(call.bumpMap, col - 1, row)) * scale * 0.0078125;
            }
            uint8_t *rgb =
                call.image + (static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(col)) * 3;
            uint8_t *stored = const_cast<uint8_t *>(At(call.mask, col, row, 1));
            uint8_t mask = stored ? *stored : 0;
            if (m != 0)
                Flat(&state, &pixel, col, row, m, rgb, &mask);
            else
                Shaded(&state, &pixel, col, row, rgb, &mask);
            if (stored) *stored = mask;
        }
    if (strong)
        for (int i = 0; i < (call.multi ? 4 : 1); i++) SHADELIGHTS.factors.specular[i] *= 0.25;
}

} // namespace zr32test
