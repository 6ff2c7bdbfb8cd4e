/* plain_shader.cpp - the shaders without any reuse: every pixel, every light, every power is worked out where it is
 * needed, and every buffer is read through one checked function. */
#include "shade/plain_shader.h"

#include "frame/frame.h"
#include "geometry/vector.h"
#include <zr32path.h>

#include <cmath>
#include <cstring>

namespace zr32test {

using namespace zr32;

namespace {

struct CALL {
    MODEL model;
    SHADEJOB job;
    int width;
    int height;
    bool metal;
    bool multi;
    double N[3];
    double last[3];
    int64_t flat[3];
    double spot[4];
    double spotHeight[4];
    uint8_t tint[3];
    uint8_t base[3]; /* metalBase */
    double fresnelFloor;
};

const uint8_t *Pixel(PATHBUF buf, int x, int y)
{
    static const uint8_t nothing[8] = {};
    if (!buf) return nothing;
    int32_t w, h, bits;
    ZrPathBufGetWHU(buf, &w, &h, &bits);
    if (x < 0 || y < 0 || x >= w || y >= h) return nothing;
    const size_t size = bits == 8 ? 1 : bits == 24 ? 3 : bits == 32 ? 4 : 8;
    return buf + (size_t(y) * size_t(w) + size_t(x)) * size;
}

bool Has(PATHBUF buf, int x, int y)
{
    int32_t w, h, bits;
    ZrPathBufGetWHU(buf, &w, &h, &bits);
    return x < w && y < h;
}

double Fresnel(int i)
{
    if (i < 0 || i > 999) return 0.0;
    const double k = 0.617, n = 2.63, c = i * 0.001;
    const double q1 = (k * k + n * n) * c * c, p1 = c * n * 2.0;
    const double q2 = k * k + n * n, p2 = n * c * 2.0;
    return 0.5 * (((q1 - p1) + 1.0) / (p1 + q1 + 1.0) + ((q2 - p2) + c * c) / (q2 + c * c + p2));
}

double S(const double *N, const double *L)
{
    return 2 * N[2] * N[0] * L[0] + 2 * N[2] * N[1] * L[1] + (2 * N[2] * N[2] - 1) * L[2];
}

double D(const double *N, const double *L)
{
    return N[0] * L[0] + N[1] * L[1] + N[2] * L[2];
}

const LIGHTFACTORS &Factors(const CALL &call)
{
    return call.metal ? METALLIGHTS.factors : SHADELIGHTS.factors;
}

/* A highlight's channel values and strength for one light. */
void Highlight(const CALL &call, int i, double s, bool exception, double *add, double *strength)
{
    const LIGHTFACTORS &f = Factors(call);
    const bool spot = call.job.spotOn[i] != 0;
    if (!call.metal) {
        double ss = std::pow(s, f.shininess[i]) * f.specular[i];
        if (spot) ss *= call.spot[i];
        for (int c = 0; c < 3; c++) add[c] = SHADELIGHTS.lightColor[i][c] * ss;
        *strength = ss;
        return;
    }
    const double p = std::pow(s, f.shininess[i]);
    const double F = (Fresnel(TruncInt(p * 1000.0)) - call.fresnelFloor) / (1.0 - call.fresnelFloor);
    double ss = f.specular[i] * p;
    if (spot) ss *= call.spot[i];
    if (exception && spot) ss = f.diffuse[i] * call.spot[i] * p;
    for (int c = 0; c < 3; c++)
        add[c] = ss * (F < 0.0 ? double(call.tint[c]) : (255 - call.tint[c]) * F + call.tint[c]);
    *strength = ss;
}

struct SUM {
    bool lit; /* the diffuse term counts */
    double dd;
    bool shines; /* the highlight counts */
    double spec[3];
    double ss;
};

/* All light on given D and S of each light. floored: a low S of the single models becomes 0 and counts. */
SUM Sum(const CALL &call, const double *d, const double *s, bool exception, bool floored)
{
    const LIGHTFACTORS &f = Factors(call);
    SUM sum = {false, 0, false, {0, 0, 0}, 0};
    if (!call.multi) {
        const bool spot = call.job.spotOn[0] != 0;
        sum.lit = !(d[0] < 0);
        if (call.metal)
            sum.dd = (spot ? f.diffuse[0] * call.spot[0] : f.diffuse[0]) * d[0];
        else
            sum.dd = spot ? d[0] * f.diffuse[0] * call.spot[0] : d[0] * f.diffuse[0];
        const double limit = call.metal ? 0.0 : 0.01;
        double share = s[0];
        if (share < limit) {
            if (!floored) return sum;
            share = 0.0;
        }
        sum.shines = true;
        Highlight(call, 0, share, exception, sum.spec, &sum.ss);
        return sum;
    }
    for (int i = 0; i < call.job.lightCount; i++) {
        if (d[i] > 0.0) {
            double part = f.diffuse[i] * d[i];
            if (call.job.spotOn[i]) part *= call.spot[i];
            sum.dd += part;
        }
        if (s[i] > (call.metal ? 0.0 : 0.01)) {
            double add[3], ss;
            Highlight(call, i, s[i], exception, add, &ss);
            for (int c = 0; c < 3; c++) sum.spec[c] += add[c];
            sum.ss += ss;
        }
    }
    sum.lit = sum.dd != 0;
    sum.shines = true;
    return sum;
}

SUM SumOf(const CALL &call, const double *N, bool exception)
{
    double d[4], s[4];
    for (int i = 0; i < 4; i++) {
        d[i] = D(N, SHADELIGHTS.lightDir[i]);
        s[i] = S(N, SHADELIGHTS.lightDir[i]);
    }
    return Sum(call, d, s, exception, false);
}

void Alpha(const CALL &call, double ss, uint8_t *mask)
{
    if (call.multi) {
        double v = ss * 255.0 + *mask;
        if (v > 255.0) v = 255.0;
        *mask = TruncByte(v);
    } else {
        const int64_t v = int64_t(TruncInt(ss * 255.0)) + *mask;
        *mask = uint8_t(v < 255 ? v : 255);
    }
}

void Pass(CALL *call, double x, double y, const uint8_t *pixel, double gx, double gy, bool bump, uint8_t *mask,
          bool first, int64_t *acc)
{
    ProfileNormal(call->job.form, &x, &y, call->N);
    const double t = RIMBLEND.weight;
    double a[3], b[3];
    memcpy(a, RIMBLEND.first, sizeof a);
    memcpy(b, RIMBLEND.second, sizeof b);
    const auto ruffle = [&](double *n) {
        n[0] -= gx;
        n[1] -= gy;
        VecNormalize(n);
    };
    if (bump && t != 0) {
        ruffle(a);
        ruffle(b);
    } else if (bump) {
        ruffle(call->N);
    }
    const bool toAlpha = first && call->job.specularToAlpha && mask;
    if (t == 0) {
        const SUM sum = SumOf(*call, call->N, false);
        if (sum.shines && toAlpha) Alpha(*call, sum.ss, mask);
        for (int c = 0; c < 3; c++) {
            if (sum.lit) acc[c] += TruncInt(pixel[c] * sum.dd);
            if (sum.shines) acc[c] += TruncInt(sum.spec[c]);
            if (acc[c] > 255) acc[c] = 255;
        }
        return;
    }
    const SUM one = SumOf(*call, a, false);
    const SUM two = SumOf(*call, b, call->multi && call->metal && first);
    for (int c = 0; c < 3; c++) {
        double col[2];
        const SUM *sums[2] = {&one, &two};
        for (int i = 0; i < 2; i++) {
            col[i] = sums[i]->lit ? pixel[c] * sums[i]->dd : 0.0;
            if (sums[i]->shines) col[i] += call->multi ? double(TruncInt(sums[i]->spec[c])) : sums[i]->spec[c];
            if (col[i] > 255.0) col[i] = 255.0;
        }
        acc[c] += TruncInt(col[1] * t + col[0] * (1 - t));
        if (acc[c] > 255) acc[c] = 255;
    }
    if (toAlpha) Alpha(*call, t * two.ss + (1 - t) * one.ss, mask);
}

void Ambient(CALL *call, const uint8_t *pixel, int x, int y, int64_t *acc)
{
    for (int c = 0; c < 3; c++) {
        if (call->metal) call->base[c] = TruncByte(METALLIGHTS.factors.ambient * pixel[c]);
        acc[c] = call->metal              ? call->base[c]
                 : call->job.fixedAmbient ? int64_t(SHADELIGHTS.ambientColor[c])
                                          : int64_t(TruncInt(SHADELIGHTS.factors.ambient * pixel[c]));
    }
    if (call->metal && call->job.tintMap) memcpy(call->tint, Pixel(call->job.tintMap, x, y), 3);
}

void Bevel(CALL *call, int x, int y, uint8_t *out, uint8_t *mask, double gx, double gy, bool bump)
{
    uint32_t bits;
    memcpy(&bits, Pixel(call->job.distanceMap, x, y), 4);
    const uint8_t *record = Pixel(call->job.normalMap, x, y);
    SURFVEC16 words;
    SURFVECF floats;
    memcpy(&words, record, 8);
    memcpy(&floats, record, 8);
    double x1 = call->job.floatNormals ? double(floats.x) : words.x1 * 0.00390625;
    double y1 = call->job.floatNormals ? double(floats.y) : words.y1 * 0.00390625;
    const bool negative = bits > 0x80000000u;
    const bool zero = (bits << 1) == 0;
    if (!negative && call->job.floatNormals && zero && x1 == 0 && y1 == 0) return;
    uint8_t pixel[3];
    memcpy(pixel, out, 3);
    int64_t accA[3], accB[3];
    Ambient(call, pixel, x, y, accA);
    memcpy(accB, accA, sizeof accA);
    bool two = false;
    double mix = 0, x2 = 0, y2 = 0;
    if (negative) {
        x1 = -x1 * 0.1;
        y1 = -y1 * 0.1;
    } else if (!call->job.floatNormals && (words.x2 || words.y2)) {
        x2 = words.x2 * 0.00390625;
        y2 = words.y2 * 0.00390625;
        const double delta = std::fabs(std::sqrt(x2 * x2 + y2 * y2) - std::sqrt(x1 * x1 + y1 * y1));
        two = !(delta > 0.7);
        mix = delta * 0.71 + 0.5;
    }
    Pass(call, x1, y1, pixel, gx, gy, bump, mask, true, accA);
    if (two) Pass(call, x2, y2, pixel, gx, gy, bump, mask, false, accB);
    for (int c = 0; c < 3; c++) {
        const int64_t v = two ? TruncInt(double(accA[c]) * mix + double(accB[c]) * (1 - mix)) : accA[c];
        out[c] = gammaMap[uint8_t(v)];
    }
}

void Flat(CALL *call, int x, int y, uint8_t *out, uint8_t *mask, double gx, double gy, bool bump)
{
    const int m = *Pixel(call->job.flatMask, x, y);
    uint8_t pixel[3];
    memcpy(pixel, out, 3);
    const bool match = pixel[0] == call->last[0] && pixel[1] == call->last[1] && pixel[2] == call->last[2];
    if (!(match && call->job.bumpPercent == 0 && !call->job.bumpMap)) {
        for (int c = 0; c < 3; c++) call->last[c] = pixel[c];
        Ambient(call, pixel, x, y, call->flat);
        double d[4], s[4];
        double level[3] = {-gx, -gy, 1.0};
        VecNormalize(level);
        for (int i = 0; i < 4; i++) {
            const double *L = SHADELIGHTS.lightDir[i];
            const double z = call->N[2];
            d[i] = bump ? D(level, L) : L[2];
            s[i] = bump ? S(level, L) : (2 * z * z - 1) * L[2];
        }
        const SUM sum = Sum(*call, d, s, false, true);
        for (int c = 0; c < 3; c++) {
            if (sum.lit) call->flat[c] += TruncInt(pixel[c] * sum.dd);
            call->flat[c] += TruncInt(sum.spec[c]);
            if (call->flat[c] > 255) call->flat[c] = 255;
        }
    }
    if (m == 255) {
        for (int c = 0; c < 3; c++) out[c] = gammaMap[uint8_t(call->flat[c])];
        if (mask) *mask = 255;
        return;
    }
    SURFVEC16 words;
    memcpy(&words, Pixel(call->job.normalMap, x, y), 8);
    double x1 = words.x1 * 0.00390625, y1 = words.y1 * 0.00390625;
    ProfileNormal(call->job.form, &x1, &y1, call->N);
    if (bump) {
        call->N[0] -= gx;
        call->N[1] -= gy;
        VecNormalize(call->N);
    }
    const SUM sum = SumOf(*call, call->N, false);
    int64_t acc[3];
    int a = m;
    if (sum.shines && call->job.specularToAlpha) {
        const int64_t v = int64_t(TruncInt(sum.ss * 255.0)) + m;
        a = int(v < 255 ? v : 255);
    }
    for (int c = 0; c < 3; c++) {
        acc[c] = call->metal              ? call->base[c]
                 : call->job.fixedAmbient ? int64_t(SHADELIGHTS.ambientColor[c])
                                          : int64_t(TruncInt(SHADELIGHTS.factors.ambient * pixel[c]));
        if (sum.lit) acc[c] += TruncInt(pixel[c] * sum.dd);
        if (sum.shines) acc[c] += TruncInt(sum.spec[c]);
    }
    int k = mask ? *mask : 0;
    if (k != 255) {
        k = uint8_t(a + (k * (255 - a)) / 255);
        if (mask) *mask = uint8_t(k);
    }
    const double f = m * 0.00392156862745098;
    for (int c = 0; c < 3; c++) {
        int v = TruncInt(double(acc[c]) * k * 0.00392156862745098);
        if (v > 255) v = 255;
        int w = TruncInt(v * (1 - f) + double(call->flat[c]) * f);
        if (w > 255) w = 255;
        out[c] = gammaMap[uint8_t(w)];
    }
}

} // namespace

void PlainShade(MODEL model, const SHADEJOB &job)
{
    CALL call = {};
    call.model = model;
    call.job = job;
    call.metal = model == METALLIC || model == MULTI_METALLIC;
    call.multi = model == MULTI_PHONG || model == MULTI_METALLIC;
    call.N[2] = 1;
    for (double &value : call.last) value = 999.0;
    call.fresnelFloor = Fresnel(999);
    for (int c = 0; c < 3; c++) call.tint[c] = uint8_t(job.tint >> (8 * c));
    memcpy(call.base, METALLIGHTS.metalBase, 3);
    int32_t bits;
    ZrPathBufGetWHU(job.image, &call.width, &call.height, &bits);
    for (int i = 0; i < job.lightCount; i++) {
        memcpy(SHADELIGHTS.lightDir[i], job.direction[i], sizeof SHADELIGHTS.lightDir[i]);
        const double sum = (double(job.spotY[i]) - 50) * (double(job.spotY[i]) - 50) +
                           (double(job.spotX[i]) - 50) * (double(job.spotX[i]) - 50);
        if (call.multi)
            call.spotHeight[i] = sum * 2 < 5000.0 ? std::sqrt(5000.0 - sum * 2) : 0.0;
        else
            call.spotHeight[i] = 70.71 - std::sqrt(sum * 2) < 0 ? 0.0 : 70.71 - std::sqrt(sum * 2);
    }
    ProfileTableBuild(job.form.profile, job.form.width, job.form.scale, job.form.invert);
    const bool bump = job.bumpPercent != 0 && job.bumpMap;
    for (int y = 0; y < call.height; y++) {
        for (int x = 0; x < call.width; x++) {
            const bool inFlat = job.form.reflect && job.flatMask && *Pixel(job.flatMask, x, y);
            if (!inFlat && *Pixel(job.mask, x, y) == 0) continue;
            for (int i = 0; i < job.lightCount; i++) {
                if (!job.spotOn[i]) continue;
                double v[3] = {double(x) / call.width * 100.0 - job.spotX[i],
                               double(y) / call.height * 100.0 - job.spotY[i], -call.spotHeight[i]};
                const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
                for (double &value : v) value /= length;
                const double c = -(SHADELIGHTS.lightDir[i][0] * v[0] + SHADELIGHTS.lightDir[i][1] * v[1] +
                                   SHADELIGHTS.lightDir[i][2] * v[2]);
                const LIGHTFACTORS &f = Factors(call);
                call.spot[i] = c < 0 || std::isnan(c) ? 0.0 : std::pow(c, call.multi ? f.multiSpotPower : f.spotPower);
            }
            double gx = 0, gy = 0;
            if (bump) {
                const double scale = job.bumpPercent * 0.01;
                const int b = *Pixel(job.bumpMap, x, y);
                gy = (b - *Pixel(job.bumpMap, x, y ? y - 1 : 0)) * scale * 0.0078125;
                gx = x ? (b - *Pixel(job.bumpMap, x - 1, y)) * scale * 0.0078125 : 0.0;
            }
            uint8_t *mask = Has(job.mask, x, y) ? const_cast<uint8_t *>(Pixel(job.mask, x, y)) : nullptr;
            uint8_t *out = const_cast<uint8_t *>(Pixel(job.image, x, y));
            if (inFlat)
                Flat(&call, x, y, out, mask, gx, gy, bump);
            else
                Bevel(&call, x, y, out, mask, gx, gy, bump);
        }
    }
}

} // namespace zr32test
