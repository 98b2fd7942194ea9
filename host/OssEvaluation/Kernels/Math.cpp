// Arithmetic on scalars and vectors.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Math.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Simd-inl.h"

#ifndef OSSEV_MATH_VALUES
#define OSSEV_MATH_VALUES

namespace OssEvMath {

struct MathValues
{
    enum Operation { Add, Subtract, Multiply, Divide, Power, Minimum, Maximum, Step };

    int operation;
};

struct VectorValues
{
    enum Operation { Add, Subtract, Multiply, Cross, Normalize };

    int operation;
};

} // namespace OssEvMath
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvMath;

HWY_INLINE V apply(int operation, V a, V b)
{
    switch (operation) {
    case MathValues::Add:
        return hn::Add(a, b);
    case MathValues::Subtract:
        return hn::Sub(a, b);
    case MathValues::Multiply:
        return hn::Mul(a, b);
    case MathValues::Divide: {
        // Nothing sensible comes of a division by zero; 0 spoils the least.
        const auto none = hn::Eq(b, zero());
        return hn::IfThenElseZero(hn::Not(none), hn::Div(a, hn::IfThenElse(none, splat(1.0F), b)));
    }
    case MathValues::Power:
        return hn::IfThenElse(hn::Eq(b, zero()), splat(1.0F), power(a, b));
    case MathValues::Minimum:
        return hn::Min(a, b);
    case MathValues::Maximum:
        return hn::Max(a, b);
    default:
        return hn::IfThenElseZero(hn::Ge(a, b), splat(1.0F));
    }
}

void math(const OssEvStrip &strip, const MathValues &values)
{
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V a = load(strip.inputs[0].plane[0] + i);
        const V b = load(strip.inputs[1].plane[0] + i);
        store(apply(values.operation, a, b), strip.output[0] + i);
    }
}

HWY_INLINE void storeCross(const OssEvStrip &strip, std::size_t i, const V *a, const V *b)
{
    for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t m = (k + 1) % 3;
        const std::size_t n = (k + 2) % 3;
        store(hn::MulSub(a[m], b[n], hn::Mul(a[n], b[m])), strip.output[k] + i);
    }
}

HWY_INLINE void storeNormalized(const OssEvStrip &strip, std::size_t i, const V *a)
{
    const V square = hn::MulAdd(a[0], a[0], hn::MulAdd(a[1], a[1], hn::Mul(a[2], a[2])));
    const auto some = hn::Gt(square, splat(1e-30F));
    const V length = hn::IfThenElse(some, hn::Sqrt(square), splat(1.0F));
    for (std::size_t k = 0; k < 3; ++k)
        store(hn::IfThenElseZero(some, hn::Div(a[k], length)), strip.output[k] + i);
}

void vectorMath(const OssEvStrip &strip, const VectorValues &values)
{
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        V a[3];
        V b[3];
        for (std::size_t k = 0; k < 3; ++k) {
            a[k] = load(strip.inputs[0].plane[k] + i);
            b[k] = load(strip.inputs[1].plane[k] + i);
        }
        if (values.operation == VectorValues::Cross) {
            storeCross(strip, i, a, b);
        } else if (values.operation == VectorValues::Normalize) {
            storeNormalized(strip, i, a);
        } else {
            for (std::size_t k = 0; k < 3; ++k)
                store(apply(values.operation, a[k], b[k]), strip.output[k] + i);
        }
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(math);
HWY_EXPORT(vectorMath);
} // namespace OssEvSimd

void OssEvFamilies::addMath(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    using namespace OssEvMath;
    using namespace OssEvSimd;
    OssEvKernel math;
    math.name = "math";
    math.inputs = {{"A", 1}, {"B", 1}};
    math.outputs = {{"Output", 1}};
    math.parameters = {
        choice("Operation",
               {"Add", "Subtract", "Multiply", "Divide", "Power", "Minimum", "Maximum", "Step"},
               MathValues::Multiply),
        real("A", 1), real("B", 1)};
    math.uniform = true;
    math.keepsPrecision = true;
    math.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(math), MathValues{setup.integer("Operation")},
                              {OssEvScalar(setup.real("A")), OssEvScalar(setup.real("B"))});
    };
    kernels->push_back(math);

    OssEvKernel vectors;
    vectors.name = "vectorMath";
    vectors.inputs = {{"A", 3}, {"B", 3}};
    vectors.outputs = {{"Output", 3}};
    vectors.parameters = {
        choice("Operation", {"Add", "Subtract", "Multiply", "Cross", "Normalize"})};
    vectors.uniform = true;
    vectors.keepsPrecision = true;
    vectors.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(vectorMath),
                              VectorValues{setup.integer("Operation")});
    };
    kernels->push_back(vectors);
}
#endif
