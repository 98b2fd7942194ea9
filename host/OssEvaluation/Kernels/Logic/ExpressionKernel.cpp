// An expression for each texel: its steps, run over pieces of a strip that stay in the nearest cache.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Logic/Expression.h"
#include "OssEvaluation/Kernels/Logic/ExpressionPlaces.h"
#include "OssEvaluation/Kernels/PointKernel.h"
#include "OssEvaluation/Kernels/Scratch.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Logic/ExpressionKernel.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Logic/ExpressionSteps-inl.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

#ifndef OSSEV_EXPRESSION_VALUES
#define OSSEV_EXPRESSION_VALUES

namespace OssEvExpressions {

struct ExpressionValues
{
    enum Output { Color, Scalar };

    OssEvExpression expression;
    int output = Color;
    OssEvWorkingSpace::Weights luminance{};
    OssEvNoise::NoiseLayers layers;
    std::uint32_t seed = 0;
};

/// Where the inputs are that a piece of a strip has, and what is known of its places.
struct Piece
{
    /// Texels of a piece: what a register holds.
    static constexpr std::size_t Size = 64;

    const OssEvStrip *strip = nullptr;
    OssEvExpressionPlaces::Planes places{};
    std::size_t begin = 0;
    float *registers = nullptr;

    float *at(int index) const { return registers + std::size_t(index) * Size; }
};

} // namespace OssEvExpressions
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvExpressions;
using Op = OssEvExpression::Op;
using Step = OssEvExpression::Step;

template <class Function>
HWY_INLINE void forOne(const Piece &piece, const Step &step, const Function &function)
{
    const float *a = piece.at(step.from[0]);
    float *to = piece.at(step.to);
    for (std::size_t i = 0; i < Piece::Size; i += hn::Lanes(Floats()))
        store(function(load(a + i)), to + i);
}

template <class Function>
HWY_INLINE void forTwo(const Piece &piece, const Step &step, const Function &function)
{
    const float *a = piece.at(step.from[0]);
    const float *b = piece.at(step.from[1]);
    float *to = piece.at(step.to);
    for (std::size_t i = 0; i < Piece::Size; i += hn::Lanes(Floats()))
        store(function(load(a + i), load(b + i)), to + i);
}

template <class Function>
HWY_INLINE void forThree(const Piece &piece, const Step &step, const Function &function)
{
    const float *a = piece.at(step.from[0]);
    const float *b = piece.at(step.from[1]);
    const float *c = piece.at(step.from[2]);
    float *to = piece.at(step.to);
    for (std::size_t i = 0; i < Piece::Size; i += hn::Lanes(Floats()))
        store(function(load(a + i), load(b + i), load(c + i)), to + i);
}

void copyTo(const Piece &piece, const Step &step, const float *from)
{
    std::copy_n(from + piece.begin, Piece::Size, piece.at(step.to));
}

void runFirst(const Piece &piece, const Step &step, const ExpressionValues & /*values*/)
{
    switch (step.op) {
    case Op::Input:
        copyTo(piece, step, piece.strip->inputs[step.slot / 4].plane[std::size_t(step.slot % 4)]);
        break;
    case Op::Place:
        copyTo(piece, step, piece.places[std::size_t(step.slot)]);
        break;
    case Op::Not:
        return forOne(piece, step, NotOf());
    case Op::Abs:
        return forOne(piece, step, AbsOf());
    case Op::Sign:
        return forOne(piece, step, SignOf());
    case Op::Floor:
        return forOne(piece, step, FloorOf());
    case Op::Round:
        return forOne(piece, step, RoundOf());
    case Op::Sqrt:
        return forOne(piece, step, SqrtOf());
    case Op::Exp:
        return forOne(piece, step, ExpOf());
    case Op::Log:
        return forOne(piece, step, LogOf());
    case Op::Sin:
        return forOne(piece, step, SinOf());
    case Op::Cos:
        return forOne(piece, step, CosOf());
    default:
        std::fill_n(piece.at(step.to), Piece::Size, step.number);
    }
}

void runSecond(const Piece &piece, const Step &step, const ExpressionValues & /*values*/)
{
    switch (step.op) {
    case Op::Add:
        return forTwo(piece, step, AddOf());
    case Op::Subtract:
        return forTwo(piece, step, SubtractOf());
    case Op::Multiply:
        return forTwo(piece, step, MultiplyOf());
    case Op::Divide:
        return forTwo(piece, step, DivideOf());
    case Op::Modulo:
        return forTwo(piece, step, ModuloOf());
    case Op::Power:
        return forTwo(piece, step, PowerOf());
    case Op::Minimum:
        return forTwo(piece, step, MinimumOf());
    case Op::Maximum:
        return forTwo(piece, step, MaximumOf());
    case Op::Less:
        return forTwo(piece, step, LessOf());
    case Op::LessOrEqual:
        return forTwo(piece, step, LessOrEqualOf());
    case Op::Equal:
        return forTwo(piece, step, EqualOf());
    default:
        return forTwo(piece, step, AngleOf());
    }
}

void runThird(const Piece &piece, const Step &step, const ExpressionValues &values)
{
    switch (step.op) {
    case Op::Mix:
        return forThree(piece, step, MixOf());
    case Op::Smooth:
        return forThree(piece, step, SmoothOf());
    case Op::Select:
        return forThree(piece, step, SelectOf());
    case Op::Luminance:
        return forThree(piece, step, LuminanceOf{values.luminance});
    case Op::Noise:
        return forThree(piece, step, NoiseOf{values.seed});
    case Op::Fractal:
        return forThree(piece, step, FractalOf{&values.layers, values.seed});
    default:
        return forThree(piece, step, RandomOf{values.seed});
    }
}

HWY_INLINE V finite(V value)
{
    return hn::IfThenElseZero(hn::IsFinite(value), value);
}

void putResult(const Piece &piece, const ExpressionValues &values)
{
    const std::array<int, 4> &result = values.expression.result();
    const auto &output = piece.strip->output;
    for (std::size_t i = 0; i < Piece::Size; i += hn::Lanes(Floats())) {
        V color[3];
        for (std::size_t k = 0; k < 3; ++k)
            color[k] = finite(load(piece.at(result[k]) + i));
        const V alpha = finite(load(piece.at(result[3]) + i));
        const std::size_t to = piece.begin + i;
        if (values.output == ExpressionValues::Scalar) {
            store(values.expression.isScalar()
                      ? color[0]
                      : hn::Mul(alpha, luminance(color[0], color[1], color[2], values.luminance)),
                  output[0] + to);
            continue;
        }
        for (std::size_t k = 0; k < 3; ++k)
            store(hn::Mul(color[k], alpha), output[k] + to);
        store(alpha, output[3] + to);
    }
}

void expression(const OssEvStrip &strip, const ExpressionValues &values)
{
    OssEvScratch scratch;
    Piece piece{&strip};
    piece.registers = scratch.floats(std::size_t(values.expression.registers()) * Piece::Size);
    piece.places = OssEvExpressionPlaces::of(strip, values.expression, &scratch);
    for (; piece.begin < strip.texels(); piece.begin += Piece::Size) {
        for (const Step &step : values.expression.steps()) {
            switch (OssEvExpression::operands(step.op)) {
            case 2:
                runSecond(piece, step, values);
                break;
            case 3:
                runThird(piece, step, values);
                break;
            default:
                runFirst(piece, step, values);
            }
        }
        putResult(piece, values);
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(expression);
} // namespace OssEvSimd

namespace {

using namespace OssEvSimd;
using OssEvExpressions::ExpressionValues;

constexpr const char *NumberNames[] = {"k1", "k2", "k3", "k4"};
constexpr const char *NumberAttributes[] = {"K1", "K2", "K3", "K4"};

OssEvResult readExpression(const OssEvParameters &parameters, OssEvExpression *expression)
{
    OssEvExpression::Numbers numbers;
    for (std::size_t i = 0; i < std::size(NumberNames); ++i)
        numbers[NumberNames[i]] = float(std::get<double>(parameters.at(NumberAttributes[i])));
    return OssEvExpression::read(std::get<std::string>(parameters.at("Expression")), numbers,
                                 expression);
}

std::shared_ptr<const OssEvOperation> makeExpression(const OssEvKernelSetup &setup)
{
    OssEvParameters parameters{{"Expression", setup.text("Expression")}};
    for (const char *name : NumberAttributes)
        parameters[name] = setup.real(name);
    ExpressionValues values;
    const OssEvResult read = readExpression(parameters, &values.expression);
    const unsigned ignored = [&] {
        unsigned bits = 0;
        for (int i = 0; i < OssEvExpression::Inputs; ++i)
            bits |= read && values.expression.readsInput(i) ? 0U : 1U << unsigned(i);
        return bits;
    }();
    values.output = setup.output();
    values.luminance = setup.working().luminance;
    values.layers = OssEvNoise::NoiseLayers::of(5, 0.5);
    values.seed = std::uint32_t(setup.integer("Seed")) * 2654435769U;
    auto operation = std::make_shared<OssEvPointKernel<ExpressionValues>>(
        &HWY_DYNAMIC_DISPATCH(expression), std::move(values));
    operation->ignored = ignored;
    return operation;
}

} // namespace

void OssEvFamilies::addExpression(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "expression";
    kernel.inputs = {{"A", 4}, {"B", 4}, {"C", 4}, {"D", 4}};
    kernel.outputs = {{"Output", 4}, {"Value", 1, true}};
    kernel.parameters = {text("Expression")};
    for (const char *name : NumberAttributes)
        kernel.parameters.push_back(real(name, 0.5, -1e6, 1e6));
    kernel.parameters.push_back(integer("Seed", 1, 0, 9999));
    kernel.parameters[0].fallback = std::string("a");
    kernel.usesSurface = true;
    kernel.check = [](const OssEvParameters &parameters) {
        OssEvExpression expression;
        return readExpression(parameters, &expression);
    };
    kernel.make = makeExpression;
    kernels->push_back(kernel);
}
#endif
