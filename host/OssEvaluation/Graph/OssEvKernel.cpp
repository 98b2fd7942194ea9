#include "OssEvaluation/Graph/OssEvKernel.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace {

OssEvResult unusable(const OssEvParameterDescription &description, const char *what)
{
    return OssEvResult::failure("\"" + description.name + "\" is no " + what);
}

// The value as a number, if it is one in any type.
bool number(const OssEvParameter &value, double *result)
{
    if (const auto *real = std::get_if<double>(&value))
        *result = *real;
    else if (const auto *integer = std::get_if<std::int64_t>(&value))
        *result = double(*integer);
    else if (const auto *flag = std::get_if<bool>(&value))
        *result = *flag ? 1.0 : 0.0;
    else
        return false;
    return std::isfinite(*result);
}

OssEvResult bringNumber(const OssEvParameterDescription &description, const OssEvParameter &given,
                        OssEvParameter *value)
{
    double real = 0.0;
    if (!number(given, &real))
        return unusable(description, "number");
    real = std::clamp(real, description.minimum, description.maximum);
    if (std::holds_alternative<double>(description.fallback))
        *value = real;
    else if (std::holds_alternative<bool>(description.fallback))
        *value = real != 0.0;
    else
        *value = std::int64_t(std::llround(std::clamp(real, -2147483648.0, 2147483647.0)));
    return {};
}

OssEvResult bringChoice(const OssEvParameterDescription &description, const OssEvParameter &given,
                        OssEvParameter *value)
{
    const auto *text = std::get_if<std::string>(&given);
    if (text == nullptr)
        return bringNumber(description, given, value);
    const auto found = std::find(description.choices.begin(), description.choices.end(), *text);
    if (found == description.choices.end()) {
        return OssEvResult::failure("\"" + description.name + "\" knows no \"" + *text + "\"");
    }
    *value = std::int64_t(found - description.choices.begin());
    return {};
}

OssEvResult bringColor(const OssEvParameterDescription &description, const OssEvParameter &given,
                       OssEvParameter *value)
{
    const auto *color = std::get_if<OssEvColor>(&given);
    if (color == nullptr
        || !std::all_of(color->begin(), color->end(), [](float c) { return std::isfinite(c); }))
        return unusable(description, "color");
    *value = *color;
    return {};
}

/// A curve or a ramp, which may come as text.
template <class Shape>
OssEvResult bringShape(const OssEvParameterDescription &description, const OssEvParameter &given,
                       const char *kind, OssEvParameter *value)
{
    if (std::holds_alternative<Shape>(given)) {
        *value = given;
        return {};
    }
    Shape shape;
    const auto *text = std::get_if<std::string>(&given);
    if (text == nullptr || !Shape::fromText(*text, &shape))
        return unusable(description, kind);
    *value = std::move(shape);
    return {};
}

OssEvResult bring(const OssEvParameterDescription &description, const OssEvParameter &given,
                  OssEvParameter *value)
{
    if (!description.choices.empty())
        return bringChoice(description, given, value);
    if (std::holds_alternative<OssEvColor>(description.fallback))
        return bringColor(description, given, value);
    if (std::holds_alternative<OssEvCurve>(description.fallback))
        return bringShape<OssEvCurve>(description, given, "curve", value);
    if (std::holds_alternative<OssEvRamp>(description.fallback))
        return bringShape<OssEvRamp>(description, given, "ramp", value);
    if (const bool text = std::holds_alternative<std::string>(description.fallback);
        text || std::holds_alternative<OssEvVector2>(description.fallback)) {
        if (given.index() != description.fallback.index())
            return unusable(description, text ? "text" : "vector");
        const auto *vector = std::get_if<OssEvVector2>(&given);
        if (vector != nullptr && !(std::isfinite((*vector)[0]) && std::isfinite((*vector)[1])))
            return unusable(description, "vector");
        *value = given;
        return {};
    }
    return bringNumber(description, given, value);
}

template <class Items>
int indexOf(const Items &items, std::string_view name)
{
    const auto found = std::find_if(items.begin(), items.end(),
                                    [name](const auto &item) { return item.name == name; });
    return found == items.end() ? -1 : int(found - items.begin());
}

/// Names of inputs in node types of before, which projects keep.
struct EarlierInput
{
    std::string_view kernel;
    std::string_view earlier;
    std::string_view name;
};

constexpr EarlierInput EarlierInputs[] = {{"fractalNoise", "Coordinates", "Position"}};

} // namespace

int OssEvKernel::inputIndex(std::string_view inputName) const
{
    const int index = indexOf(inputs, inputName);
    const auto *const end = std::end(EarlierInputs);
    const auto *const found = std::find_if(
        std::begin(EarlierInputs), end, [&](const EarlierInput &input) {
            return input.kernel == name && input.earlier == inputName;
        });
    return index < 0 && found != end ? indexOf(inputs, found->name) : index;
}

int OssEvKernel::outputIndex(std::string_view outputName) const
{
    return indexOf(outputs, outputName);
}

OssEvResult OssEvKernel::normalise(const OssEvParameters &given, OssEvParameters *complete) const
{
    complete->clear();
    for (const OssEvParameterDescription &description : parameters) {
        OssEvParameter value = description.fallback;
        const auto found = given.find(description.name);
        if (found != given.end()) {
            const OssEvResult result = bring(description, found->second, &value);
            if (!result)
                return result;
        }
        complete->emplace(description.name, std::move(value));
    }
    return check ? check(*complete) : OssEvResult();
}

OssEvKernelSetup::OssEvKernelSetup(const OssEvParameters &parameters, std::vector<bool> connected,
                                   int output, const OssEvFrame &frame,
                                   const OssEvWorkingSpace &working)
    : m_parameters(parameters)
    , m_connected(std::move(connected))
    , m_output(output)
    , m_frame(frame)
    , m_working(working)
{
}

template <class T>
T OssEvKernelSetup::value(std::string_view name) const
{
    const auto found = m_parameters.find(name);
    const T *held = found == m_parameters.end() ? nullptr : std::get_if<T>(&found->second);
    return held != nullptr ? *held : T{};
}

double OssEvKernelSetup::real(std::string_view name) const
{
    return value<double>(name);
}

int OssEvKernelSetup::integer(std::string_view name) const
{
    return int(value<std::int64_t>(name));
}

bool OssEvKernelSetup::flag(std::string_view name) const
{
    return value<bool>(name);
}

OssEvColor OssEvKernelSetup::color(std::string_view name) const
{
    return value<OssEvColor>(name);
}

std::array<float, 4> OssEvKernelSetup::premultiplied(std::string_view name) const
{
    const OssEvColor plain = color(name);
    return {plain[0] * plain[3], plain[1] * plain[3], plain[2] * plain[3], plain[3]};
}

OssEvVector2 OssEvKernelSetup::vector(std::string_view name) const
{
    return value<OssEvVector2>(name);
}

std::string OssEvKernelSetup::text(std::string_view name) const
{
    return value<std::string>(name);
}

OssEvCurve OssEvKernelSetup::curve(std::string_view name) const
{
    return value<OssEvCurve>(name);
}

OssEvRamp OssEvKernelSetup::ramp(std::string_view name) const
{
    return value<OssEvRamp>(name);
}

OssEvParameterDescription OssEvDescribe::real(std::string name, double fallback, double minimum,
                                              double maximum)
{
    return {std::move(name), fallback, minimum, maximum, {}};
}

OssEvParameterDescription OssEvDescribe::integer(std::string name, int fallback, int minimum,
                                                 int maximum)
{
    return {std::move(name), std::int64_t(fallback), double(minimum), double(maximum), {}};
}

OssEvParameterDescription OssEvDescribe::flag(std::string name, bool fallback)
{
    return {std::move(name), fallback, 0.0, 1.0, {}};
}

OssEvParameterDescription OssEvDescribe::color(std::string name, const OssEvColor &fallback)
{
    return {std::move(name), fallback, 0.0, 0.0, {}};
}

OssEvParameterDescription OssEvDescribe::vector(std::string name, const OssEvVector2 &fallback)
{
    return {std::move(name), fallback, 0.0, 0.0, {}};
}

OssEvParameterDescription OssEvDescribe::text(std::string name)
{
    return {std::move(name), std::string(), 0.0, 0.0, {}};
}

OssEvParameterDescription OssEvDescribe::curve(std::string name)
{
    return {std::move(name), OssEvCurve(), 0.0, 0.0, {}};
}

OssEvParameterDescription OssEvDescribe::ramp(std::string name)
{
    return {std::move(name), OssEvRamp(), 0.0, 0.0, {}};
}

OssEvParameterDescription OssEvDescribe::choice(std::string name, std::vector<std::string> choices,
                                                int fallback)
{
    const double last = double(choices.size()) - 1.0;
    return {std::move(name), std::int64_t(fallback), 0.0, last, std::move(choices)};
}
