#pragma once

#include "OssEvaluation/Kernels/Logic/Expression.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

/// What stands in the text of an expression, as parts of its steps: numbers and colours, operators on them, and
/// functions by their names.
class OssEvExpressionValues
{
public:
    using Op = OssEvExpression::Op;

    /// One number, or a colour of four.
    struct Value
    {
        std::array<int, 4> channel{};
        bool isColor = false;
    };

    using List = std::vector<Value>;

    static Value scalar(int part) { return {{part, part, part, -1}, false}; }

    Value number(float value) { return scalar(m_builder.constant(value)); }

    Value place(int slot) { return scalar(m_builder.place(slot)); }

    /// Its colours divided by its alpha.
    Value input(int input);

    /// "r", "g", "b" or "a".
    Value channel(const Value &value, std::size_t channel);

    /// The operation on each channel; alpha is that of the first colour, or one of the others where `all`.
    Value each(Op op, const List &values, bool all = false);

    Value select(const Value &condition, const Value &yes, const Value &no);

    /// 1 where a value is not 0.
    Value truth(const Value &value);

    /// Of negative numbers, too, where the power is one of the usual ones.
    Value power(const Value &base, const Value &exponent);

    /// False where there is no such function or it takes other values, with the reason in words.
    bool call(std::string_view name, const List &values, Value *result, std::string *reason);

    /// Whether there is so much that it will be refused.
    bool isTooMuch() const
    {
        return m_builder.size() > std::size_t(4) * OssEvExpression::MostSteps;
    }

    OssEvResult finish(const Value &value, OssEvExpression *expression);

private:
    int alphaOf(const Value &value)
    {
        return value.isColor ? value.channel[3] : m_builder.constant(1.0F);
    }

    /// A color's; the number itself.
    int luminance(const Value &value);

    Value brightness(const Value &value) { return scalar(luminance(value)); }

    Value composed(std::string_view name, const List &values);
    Value lengthOf(const List &values);
    Value color(const List &values);
    Value fromHsv(const List &values);

    OssEvExpressionBuilder m_builder;
};
