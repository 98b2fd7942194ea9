#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"

#include <array>
#include <memory>
#include <utility>
#include <vector>

/// Operation of a vector function and the values that were worked out for it beforehand.
template <class Values>
class OssEvPointKernel : public OssEvPointOperation
{
public:
    using Function = void (*)(const OssEvStrip &strip, const Values &values);

    OssEvPointKernel(Function function, Values values)
        : m_function(function)
        , m_values(std::move(values))
    {
    }

    void run(const OssEvStrip &strip) const override { m_function(strip, m_values); }

private:
    Function m_function;
    Values m_values;
};

template <class Values>
std::shared_ptr<const OssEvOperation> OssEvMakePoint(
    void (*function)(const OssEvStrip &, const Values &), Values values,
    const std::vector<std::array<float, 4>> &defaults = {}, int onlyInput = -1)
{
    auto operation = std::make_shared<OssEvPointKernel<Values>>(function, std::move(values));
    operation->defaults = defaults;
    operation->onlyInput = onlyInput;
    return operation;
}

/// A default for a scalar input.
constexpr std::array<float, 4> OssEvScalar(double value)
{
    return {float(value), 0.0F, 0.0F, 0.0F};
}
