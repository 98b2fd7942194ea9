#include "OssEvaluation/Kernels/Logic/ExpressionValues.h"

#include <algorithm>

namespace {

using Op = OssEvExpression::Op;

struct Function
{
    const char *name = nullptr;
    /// Values that it takes, at least and at most.
    int least = 0;
    int most = 0;
    /// Constant for those that are several operations.
    Op op = Op::Constant;
};

constexpr Function Functions[] = {{"abs", 1, 1, Op::Abs},
                                  {"sign", 1, 1, Op::Sign},
                                  {"floor", 1, 1, Op::Floor},
                                  {"round", 1, 1, Op::Round},
                                  {"sqrt", 1, 1, Op::Sqrt},
                                  {"exp", 1, 1, Op::Exp},
                                  {"log", 1, 1, Op::Log},
                                  {"sin", 1, 1, Op::Sin},
                                  {"cos", 1, 1, Op::Cos},
                                  {"mod", 2, 2, Op::Modulo},
                                  {"min", 2, 2, Op::Minimum},
                                  {"max", 2, 2, Op::Maximum},
                                  {"atan", 2, 2, Op::Angle},
                                  {"step", 2, 2, Op::LessOrEqual},
                                  {"smoothstep", 3, 3, Op::Smooth},
                                  {"noise", 1, 3, Op::Noise},
                                  {"fractal", 1, 3, Op::Fractal},
                                  {"random", 1, 3, Op::Random},
                                  {"pow", 2, 2},
                                  {"clamp", 3, 3},
                                  {"mix", 3, 3},
                                  {"if", 3, 3},
                                  {"ceil", 1, 1},
                                  {"fract", 1, 1},
                                  {"tan", 1, 1},
                                  {"luma", 1, 1},
                                  {"rgb", 3, 3},
                                  {"rgba", 4, 4},
                                  {"hsv", 3, 3},
                                  {"length", 2, 3}};

} // namespace

OssEvExpressionValues::Value OssEvExpressionValues::input(int input)
{
    Value value;
    value.isColor = true;
    value.channel[3] = m_builder.input(4 * input + 3);
    for (int k = 0; k < 3; ++k) {
        value.channel[std::size_t(k)] = m_builder.apply(Op::Divide, m_builder.input(4 * input + k),
                                                        value.channel[3]);
    }
    return value;
}

OssEvExpressionValues::Value OssEvExpressionValues::channel(const Value &value, std::size_t channel)
{
    return scalar(channel == 3 ? alphaOf(value) : value.channel[channel]);
}

OssEvExpressionValues::Value OssEvExpressionValues::each(Op op, const List &values, bool all)
{
    const auto first = std::find_if(values.begin(), values.end(),
                                    [](const Value &value) { return value.isColor; });
    const auto at = [&](std::size_t k) {
        std::array<int, 3> from{-1, -1, -1};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const bool hasAlpha = values[i].isColor || (op == Op::Mix && i < 2)
                                  || (op == Op::Select && i > 0);
            from[i] = k < 3      ? values[i].channel[k]
                      : hasAlpha ? alphaOf(values[i])
                                 : values[i].channel[0];
        }
        return m_builder.apply(op, from[0], from[1], from[2]);
    };
    if (first == values.end())
        return scalar(at(0));
    return {{at(0), at(1), at(2), all ? at(3) : first->channel[3]}, true};
}

int OssEvExpressionValues::luminance(const Value &value)
{
    return value.isColor ? m_builder.apply(Op::Luminance, value.channel[0], value.channel[1],
                                           value.channel[2])
                         : value.channel[0];
}

OssEvExpressionValues::Value OssEvExpressionValues::select(const Value &condition, const Value &yes,
                                                           const Value &no)
{
    return each(Op::Select, {brightness(condition), yes, no}, true);
}

OssEvExpressionValues::Value OssEvExpressionValues::truth(const Value &value)
{
    return each(Op::Not, {each(Op::Not, {brightness(value)})});
}

OssEvExpressionValues::Value OssEvExpressionValues::power(const Value &base, const Value &exponent)
{
    constexpr float Most = 8.0F;
    float number = 0.0F;
    const bool isPlain = !exponent.isColor && m_builder.isConstant(exponent.channel[0], &number);
    if (!isPlain || number < 1.0F || number > Most || number != float(int(number)))
        return each(Op::Power, {base, exponent});
    Value result = base;
    for (int i = 1; i < int(number); ++i)
        result = each(Op::Multiply, {result, base});
    return result;
}

bool OssEvExpressionValues::call(std::string_view name, const List &values, Value *result,
                                 std::string *reason)
{
    const auto *found = std::find_if(std::begin(Functions), std::end(Functions),
                                     [name](const Function &row) { return row.name == name; });
    const std::string quoted = "\"" + std::string(name) + "\"";
    if (found == std::end(Functions)) {
        *reason = "there is no function " + quoted;
        return false;
    }
    const int count = int(values.size());
    if (count < found->least || count > found->most) {
        const std::string least = std::to_string(found->least);
        *reason = quoted + " takes "
                  + (found->least == found->most ? least
                                                 : least + " to " + std::to_string(found->most))
                  + (found->most == 1 ? " value" : " values");
        return false;
    }
    if (found->op == Op::Constant) {
        *result = composed(name, values);
        return true;
    }
    if (found->least == found->most) {
        *result = each(found->op, values);
        return true;
    }
    // Of places: what is not said of them is 0.
    List place;
    for (std::size_t i = 0; i < 3; ++i)
        place.push_back(i < values.size() ? brightness(values[i]) : number(0.0F));
    *result = each(found->op, place);
    return true;
}

OssEvExpressionValues::Value OssEvExpressionValues::composed(std::string_view name,
                                                             const List &values)
{
    const Value nothing = number(0.0F);
    if (name == "pow")
        return power(values[0], values[1]);
    if (name == "clamp")
        return each(Op::Minimum, {each(Op::Maximum, {values[0], values[1]}), values[2]});
    if (name == "mix")
        return each(Op::Mix, values, true);
    if (name == "if")
        return select(values[0], values[1], values[2]);
    if (name == "ceil") {
        const Value below = each(Op::Floor, {each(Op::Subtract, {nothing, values[0]})});
        return each(Op::Subtract, {nothing, below});
    }
    if (name == "fract")
        return each(Op::Subtract, {values[0], each(Op::Floor, values)});
    if (name == "tan")
        return each(Op::Divide, {each(Op::Sin, values), each(Op::Cos, values)});
    if (name == "luma")
        return brightness(values[0]);
    if (name == "length")
        return lengthOf(values);
    return name == "hsv" ? fromHsv(values) : color(values);
}

OssEvExpressionValues::Value OssEvExpressionValues::lengthOf(const List &values)
{
    Value sum = number(0.0F);
    for (const Value &value : values)
        sum = each(Op::Add, {sum, each(Op::Multiply, {value, value})});
    return each(Op::Sqrt, {sum});
}

OssEvExpressionValues::Value OssEvExpressionValues::color(const List &values)
{
    Value result;
    result.isColor = true;
    for (std::size_t k = 0; k < 4; ++k)
        result.channel[k] = k < values.size() ? luminance(values[k]) : m_builder.constant(1.0F);
    return result;
}

// Hue in turns. Each channel is the value less what saturation takes from it, by how far the hue is away.
OssEvExpressionValues::Value OssEvExpressionValues::fromHsv(const List &values)
{
    const Value one = number(1.0F);
    const Value six = number(6.0F);
    const Value hue = each(Op::Multiply, {brightness(values[0]), six});
    List channels;
    for (const float offset : {0.0F, 4.0F, 2.0F}) {
        const Value turned = each(Op::Modulo, {each(Op::Add, {hue, number(offset)}), six});
        const Value away = each(Op::Abs, {each(Op::Subtract, {turned, number(3.0F)})});
        const Value over = each(Op::Maximum, {each(Op::Subtract, {away, one}), number(0.0F)});
        const Value share = each(Op::Minimum, {over, one});
        const Value kept = each(Op::Mix, {one, share, brightness(values[1])});
        channels.push_back(each(Op::Multiply, {brightness(values[2]), kept}));
    }
    return color(channels);
}

OssEvResult OssEvExpressionValues::finish(const Value &value, OssEvExpression *expression)
{
    std::array<int, 4> result = value.channel;
    result[3] = alphaOf(value);
    if (!m_builder.finish(result, !value.isColor, expression))
        return OssEvResult::failure("the expression is more than can be computed");
    return {};
}
