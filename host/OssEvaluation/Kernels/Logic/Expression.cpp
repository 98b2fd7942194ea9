#include "OssEvaluation/Kernels/Logic/Expression.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using Op = OssEvExpression::Op;

float quotient(float a, float b)
{
    return b != 0.0F ? a / b : 0.0F;
}

float powerOf(float a, float b)
{
    if (b == 0.0F)
        return 1.0F;
    return a > 0.0F ? std::pow(a, b) : 0.0F;
}

float smoothOf(float from, float to, float value)
{
    const float t = std::clamp(quotient(value - from, to - from), 0.0F, 1.0F);
    return from == to ? float(value >= to) : t * t * (3.0F - 2.0F * t);
}

bool foldOne(Op op, float a, float *result)
{
    switch (op) {
    case Op::Not:
        *result = float(a == 0.0F);
        return true;
    case Op::Abs:
        *result = std::abs(a);
        return true;
    case Op::Sign:
        *result = float(a > 0.0F) - float(a < 0.0F);
        return true;
    case Op::Floor:
        *result = std::floor(a);
        return true;
    case Op::Round:
        *result = std::nearbyint(a);
        return true;
    case Op::Sqrt:
        *result = std::sqrt(std::max(a, 0.0F));
        return true;
    case Op::Exp:
        *result = std::exp(std::min(a, 80.0F));
        return true;
    case Op::Log:
        *result = std::log(std::max(a, 1e-30F));
        return true;
    case Op::Sin:
        *result = std::sin(a);
        return true;
    case Op::Cos:
        *result = std::cos(a);
        return true;
    default:
        return false;
    }
}

bool foldTwo(Op op, float a, float b, float *result)
{
    switch (op) {
    case Op::Add:
        *result = a + b;
        return true;
    case Op::Subtract:
        *result = a - b;
        return true;
    case Op::Multiply:
        *result = a * b;
        return true;
    case Op::Divide:
        *result = quotient(a, b);
        return true;
    case Op::Modulo:
        *result = a - b * std::floor(quotient(a, b));
        return true;
    case Op::Power:
        *result = powerOf(a, b);
        return true;
    case Op::Minimum:
        *result = std::min(a, b);
        return true;
    case Op::Maximum:
        *result = std::max(a, b);
        return true;
    case Op::Less:
        *result = float(a < b);
        return true;
    case Op::LessOrEqual:
        *result = float(a <= b);
        return true;
    case Op::Equal:
        *result = float(a == b);
        return true;
    default:
        return false;
    }
}

/// What an operation gives for constants; false for those that are left to be run.
bool fold(Op op, float a, float b, float c, float *result)
{
    const int operands = OssEvExpression::operands(op);
    if (operands == 1)
        return foldOne(op, a, result);
    if (operands == 2)
        return foldTwo(op, a, b, result);
    switch (op) {
    case Op::Mix:
        *result = a + (b - a) * c;
        return true;
    case Op::Smooth:
        *result = smoothOf(a, b, c);
        return true;
    case Op::Select:
        *result = a != 0.0F ? b : c;
        return true;
    default:
        return false;
    }
}

} // namespace

int OssEvExpression::operands(Op op)
{
    if (op < Op::Not)
        return 0;
    if (op < Op::Add)
        return 1;
    return op < Op::Mix ? 2 : 3;
}

int OssEvExpressionBuilder::constant(float number)
{
    return part({Op::Constant, 0, {-1, -1, -1}, std::isfinite(number) ? number : 0.0F, 0});
}

bool OssEvExpressionBuilder::isConstant(int index, float *number) const
{
    const Step &step = m_parts[std::size_t(index)];
    *number = step.number;
    return step.op == Op::Constant;
}

int OssEvExpressionBuilder::apply(Op op, int a, int b, int c)
{
    std::array<float, 3> numbers{};
    const std::array<int, 3> from{a, b, c};
    bool areConstant = true;
    for (std::size_t i = 0; i < from.size(); ++i)
        areConstant = areConstant && (from[i] < 0 || isConstant(from[i], &numbers[i]));
    float folded = 0.0F;
    if (areConstant && fold(op, numbers[0], numbers[1], numbers[2], &folded))
        return constant(folded);
    return part({op, 0, from, 0.0F, 0});
}

int OssEvExpressionBuilder::part(const Step &step)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &step.number, sizeof(bits));
    const Key key{step.op, step.from[0], step.from[1], step.from[2], bits, step.slot};
    const auto [found, isNew] = m_known.emplace(key, int(m_parts.size()));
    if (isNew)
        m_parts.push_back(step);
    return found->second;
}

// Parts come before those that use them, so one way back finds what is needed and where each is last used.
std::vector<int> OssEvExpressionBuilder::lastUses(const std::array<int, 4> &result) const
{
    std::vector<int> lastUse(m_parts.size(), Never);
    for (const int part : result)
        lastUse[std::size_t(part)] = int(m_parts.size());
    for (int i = int(m_parts.size()) - 1; i >= 0; --i) {
        if (lastUse[std::size_t(i)] == Never)
            continue;
        for (const int from : m_parts[std::size_t(i)].from) {
            if (from >= 0)
                lastUse[std::size_t(from)] = std::max(lastUse[std::size_t(from)], i);
        }
    }
    return lastUse;
}

bool OssEvExpressionBuilder::finish(const std::array<int, 4> &result, bool isScalar,
                                    OssEvExpression *expression) const
{
    const std::vector<int> lastUse = lastUses(result);
    *expression = {};
    expression->m_isScalar = isScalar;
    std::vector<int> places(m_parts.size(), 0);
    std::vector<int> idle;
    for (int i = 0; i < int(m_parts.size()); ++i) {
        if (lastUse[std::size_t(i)] == Never)
            continue;
        Step step = m_parts[std::size_t(i)];
        // A step writes no register that it reads: what it read is idle only after it.
        if (idle.empty())
            idle.push_back(expression->m_registers++);
        step.to = idle.back();
        idle.pop_back();
        places[std::size_t(i)] = step.to;
        for (int &from : step.from) {
            const int part = from;
            from = part < 0 ? 0 : places[std::size_t(part)];
            const bool isDone = part >= 0 && lastUse[std::size_t(part)] == i;
            if (isDone && std::find(idle.begin(), idle.end(), from) == idle.end())
                idle.push_back(from);
        }
        expression->note(step);
    }
    for (std::size_t k = 0; k < 4; ++k)
        expression->m_result[k] = places[std::size_t(result[k])];
    return expression->m_registers <= OssEvExpression::MostRegisters
           && int(expression->m_steps.size()) <= OssEvExpression::MostSteps;
}

void OssEvExpression::note(const Step &step)
{
    if (step.op == Op::Input)
        m_inputs |= 1U << unsigned(step.slot / 4);
    if (step.op == Op::Place)
        m_places |= 1U << unsigned(step.slot);
    m_steps.push_back(step);
}
