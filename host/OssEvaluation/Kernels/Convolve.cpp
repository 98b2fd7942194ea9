#include "OssEvaluation/Kernels/Convolve.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Convolve.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <cmath>

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

// Several rows at once share what they load.
constexpr int RowsAtOnce = 4;

void filterColumns(const OssEvPlane &from, const float *weights, int radius, const OssEvPlane &to)
{
    const int lanes = int(hn::Lanes(Floats()));
    for (int y = 0; y < to.height; y += RowsAtOnce) {
        const int rows = std::min(RowsAtOnce, to.height - y);
        for (int x = 0; x < to.width; x += lanes) {
            V sums[RowsAtOnce] = {zero(), zero(), zero(), zero()};
            const float *texel = from.row(y) + x;
            // Row y + i of the source weighs |i - k - radius| in row y + k of the result.
            for (int i = 0; i < 2 * radius + rows; ++i) {
                const V value = load(texel + std::ptrdiff_t(i) * from.stride);
                for (int k = 0; k < rows; ++k) {
                    const int distance = std::abs(i - k - radius);
                    if (distance <= radius)
                        sums[k] = hn::MulAdd(value, splat(weights[distance]), sums[k]);
                }
            }
            for (int k = 0; k < rows; ++k)
                store(sums[k], to.row(y + k) + x);
        }
    }
}

void filterRows(const OssEvPlane &from, const float *weights, int radius, const OssEvPlane &to)
{
    const Floats d;
    const int lanes = int(hn::Lanes(d));
    for (int y = 0; y < to.height; ++y) {
        const float *source = from.row(y) + radius;
        float *target = to.row(y);
        for (int x = 0; x < to.width; x += lanes) {
            V even = hn::Mul(hn::LoadU(d, source + x), splat(weights[0]));
            V odd = zero();
            int i = 1;
            for (; i + 1 <= radius; i += 2) {
                const V near = hn::Add(hn::LoadU(d, source + x - i), hn::LoadU(d, source + x + i));
                const V far = hn::Add(hn::LoadU(d, source + x - i - 1),
                                      hn::LoadU(d, source + x + i + 1));
                even = hn::MulAdd(near, splat(weights[i]), even);
                odd = hn::MulAdd(far, splat(weights[i + 1]), odd);
            }
            if (i <= radius) {
                const V near = hn::Add(hn::LoadU(d, source + x - i), hn::LoadU(d, source + x + i));
                even = hn::MulAdd(near, splat(weights[i]), even);
            }
            store(hn::Add(even, odd), target + x);
        }
    }
}

void halveSize(const OssEvPlane &from, const OssEvPlane &between, const OssEvPlane &to)
{
    const Floats d;
    const int lanes = int(hn::Lanes(d));
    const V eighth = splat(0.125F);
    const V three = splat(3.0F);
    for (int y = 0; y < between.height; ++y) {
        const float *a = from.row(2 * y);
        float *target = between.row(y);
        for (int x = 0; x < between.width; x += lanes) {
            const V outer = hn::Add(load(a + x), load(a + 3 * std::ptrdiff_t(from.stride) + x));
            const V inner = hn::Add(load(a + from.stride + x),
                                    load(a + 2 * std::ptrdiff_t(from.stride) + x));
            store(hn::Mul(hn::MulAdd(inner, three, outer), eighth), target + x);
        }
    }
    for (int y = 0; y < to.height; ++y) {
        const float *source = between.row(y);
        float *target = to.row(y);
        for (int x = 0; x < to.width; x += lanes) {
            V a;
            V b;
            V c;
            V e;
            hn::LoadInterleaved2(d, source + 2 * std::ptrdiff_t(x), a, b);
            hn::LoadInterleaved2(d, source + 2 * std::ptrdiff_t(x) + 2, c, e);
            store(hn::Mul(hn::MulAdd(hn::Add(b, c), three, hn::Add(a, e)), eighth), target + x);
        }
    }
}

void doublePlane(const OssEvPlane &from, const OssEvPlane &between, const OssEvPlane &to)
{
    const Floats d;
    const int lanes = int(hn::Lanes(d));
    const V much = splat(0.75F);
    const V little = splat(0.25F);
    for (int y = 0; y < between.height; ++y) {
        const float *near = from.row(y / 2 + 1);
        const float *far = from.row(y % 2 == 0 ? y / 2 : y / 2 + 2);
        float *target = between.row(y);
        for (int x = 0; x < between.width; x += lanes)
            store(hn::MulAdd(hn::LoadU(d, far + x), little, hn::Mul(hn::LoadU(d, near + x), much)),
                  target + x);
    }
    for (int y = 0; y < to.height; ++y) {
        const float *source = between.row(y);
        float *target = to.row(y);
        for (int x = 0; x < to.width / 2; x += lanes) {
            const V middle = hn::Mul(hn::LoadU(d, source + x + 1), much);
            const V left = hn::MulAdd(load(source + x), little, middle);
            const V right = hn::MulAdd(hn::LoadU(d, source + x + 2), little, middle);
            hn::StoreInterleaved2(left, right, d, target + 2 * std::ptrdiff_t(x));
        }
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(filterColumns);
HWY_EXPORT(filterRows);
HWY_EXPORT(halveSize);
HWY_EXPORT(doublePlane);
} // namespace OssEvSimd

namespace {

std::vector<float> normalised(const std::vector<double> &weights)
{
    double sum = weights[0];
    for (std::size_t i = 1; i < weights.size(); ++i)
        sum += 2.0 * weights[i];
    std::vector<float> result;
    result.reserve(weights.size());
    for (const double weight : weights)
        result.push_back(float(weight / sum));
    return result;
}

} // namespace

std::vector<float> OssEvConvolve::gaussian(double sigma)
{
    // Beyond this distance the weights are too small to be seen.
    constexpr double Reach = 3.5;
    if (!(sigma > 0.0))
        return {1.0F};
    const int radius = int(std::ceil(Reach * sigma));
    std::vector<double> weights;
    weights.reserve(std::size_t(radius) + 1);
    for (int i = 0; i <= radius; ++i)
        weights.push_back(std::exp(-0.5 * i * i / (sigma * sigma)));
    return normalised(weights);
}

std::vector<float> OssEvConvolve::box(double radius)
{
    std::vector<double> weights{1.0};
    const int whole = int(std::floor(radius));
    weights.insert(weights.end(), std::size_t(whole), 1.0);
    if (radius > whole)
        weights.push_back(radius - whole);
    return normalised(weights);
}

void OssEvConvolve::columns(const OssEvPlane &from, const std::vector<float> &weights,
                            const OssEvPlane &to)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(filterColumns)(from, weights.data(), int(weights.size()) - 1, to);
}

void OssEvConvolve::rows(const OssEvPlane &from, const std::vector<float> &weights,
                         const OssEvPlane &to)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(filterRows)(from, weights.data(), int(weights.size()) - 1, to);
}

void OssEvConvolve::halve(const OssEvPlane &from, const OssEvPlane &between, const OssEvPlane &to)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(halveSize)(from, between, to);
}

void OssEvConvolve::doubleSize(const OssEvPlane &from, const OssEvPlane &between,
                               const OssEvPlane &to)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(doublePlane)(from, between, to);
}
#endif
