// Kernels that change a picture by what all of it is like: levels, equalising, matching.

#include "OssEvaluation/Kernels/Adjust/Curves.h"
#include "OssEvaluation/Kernels/Adjust/Statistics.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/FilterKernel.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <utility>

namespace {

using Statistics = std::vector<OssEvPictureStatistics>;
using Operation = std::shared_ptr<const OssEvOperation>;

/// The distribution that a channel is changed by.
const OssEvDistribution &distributionOf(const OssEvPictureStatistics &picture, std::size_t channel,
                                        bool each)
{
    if (!each)
        return picture.luminance;
    return picture.channels[std::min(channel, picture.channels.size() - 1)];
}

/// Curves from the lowest to the highest value of the picture; `map` gets the channel and a value.
std::shared_ptr<const OssEvPointOperation> curvesOver(
    const OssEvPictureStatistics &picture,
    const std::function<double(std::size_t channel, double value)> &map)
{
    OssEvCurves curves;
    curves.first = picture.luminance.low();
    curves.last = picture.luminance.high();
    for (const OssEvDistribution &channel : picture.channels) {
        curves.first = std::min(curves.first, channel.low());
        curves.last = std::max(curves.last, channel.high());
    }
    curves.last = std::max(curves.last,
                           curves.first + 1e-6 * std::max(1.0, std::abs(curves.first)));
    for (std::size_t k = 0; k < 4; ++k) {
        curves.samples[k].reserve(OssEvCurves::Samples);
        for (int i = 0; i < OssEvCurves::Samples; ++i)
            curves.samples[k].push_back(float(map(k == 3 ? 0 : k, curves.place(i))));
    }
    return OssEvMakeCurves(std::move(curves));
}

Operation measured(const OssEvKernelSetup &setup, const std::vector<std::size_t> &inputs,
                   OssEvMeasuredOperation::Make make)
{
    const std::size_t mask = inputs.size();
    auto operation = std::make_shared<OssEvMeasuredOperation>(
        setup.frame(), inputs, mask, setup.working().luminance, std::move(make));
    operation->isMasked = setup.isConnected(mask);
    operation->defaults.resize(mask + 1);
    operation->defaults[mask] = OssEvScalar(1.0);
    return operation;
}

// Of what lies between two values as a part of their distance, which may be nothing.
double partOf(double value, double low, double high)
{
    return std::clamp((value - low) / std::max(high - low, 1e-6), 0.0, 1.0);
}

Operation makeAutoLevels(const OssEvKernelSetup &setup)
{
    const double clip = setup.real("Clip");
    const double midtones = setup.real("Midtones");
    const bool each = setup.integer("Channels") == 1;
    return measured(setup, {0}, [clip, midtones, each](const Statistics &statistics) {
        const OssEvPictureStatistics &picture = statistics[0];
        std::array<double, 3> gammas{1, 1, 1};
        const auto ends = [&](std::size_t k) {
            const OssEvDistribution &values = distributionOf(picture, k, each);
            return std::make_pair(values.valueAt(clip), values.valueAt(1.0 - clip));
        };
        for (std::size_t k = 0; k < 3; ++k) {
            constexpr double Middle = 0.5;
            const auto [low, high] = ends(k);
            const double median = partOf(distributionOf(picture, k, each).valueAt(0.5), low, high);
            const double wanted = std::log(Middle) / std::log(std::clamp(median, 0.01, 0.99));
            gammas[k] = std::pow(wanted, midtones);
        }
        return curvesOver(picture, [&](std::size_t k, double value) {
            const auto [low, high] = ends(k);
            return std::pow(partOf(value, low, high), gammas[k]);
        });
    });
}

Operation makeEqualize(const OssEvKernelSetup &setup)
{
    const double amount = setup.real("Amount");
    const bool each = setup.integer("Channels") == 1;
    return measured(setup, {0}, [amount, each](const Statistics &statistics) {
        return curvesOver(statistics[0], [&](std::size_t k, double value) {
            const double part = distributionOf(statistics[0], k, each).partBelow(value);
            return value + (part - value) * amount;
        });
    });
}

Operation makeNormalize(const OssEvKernelSetup &setup)
{
    const double low = setup.real("Low");
    const double high = setup.real("High");
    const bool each = setup.integer("Channels") == 1;
    return measured(setup, {0}, [low, high, each](const Statistics &statistics) {
        const OssEvPictureStatistics &picture = statistics[0];
        double first = picture.channels[0].low();
        double last = picture.channels[0].high();
        for (const OssEvDistribution &channel : picture.channels) {
            first = std::min(first, channel.low());
            last = std::max(last, channel.high());
        }
        return curvesOver(picture, [&](std::size_t k, double value) {
            const OssEvDistribution &own = distributionOf(picture, k, true);
            const double part = each ? partOf(value, own.low(), own.high())
                                     : partOf(value, first, last);
            return low + (high - low) * part;
        });
    });
}

// After E. Reinhard et al., "Color Transfer between Images", 2001, in each channel; or by the whole
// histogram.
Operation makeMatch(const OssEvKernelSetup &setup)
{
    const double amount = setup.real("Amount");
    const bool byHistogram = setup.integer("Match") == 1;
    const bool connected = setup.isConnected(1);
    return measured(setup, {0, 1}, [=](const Statistics &statistics) {
        return curvesOver(statistics[0], [&](std::size_t k, double value) {
            if (!connected)
                return value;
            const OssEvDistribution &own = distributionOf(statistics[0], k, true);
            const OssEvDistribution &other = distributionOf(statistics[1], k, true);
            double wanted = other.valueAt(own.partBelow(value));
            if (!byHistogram) {
                const double scale = other.spread() / std::max(own.spread(), 1e-6);
                wanted = (value - own.mean()) * scale + other.mean();
                wanted = std::clamp(wanted, std::min(0.0, other.low()),
                                    std::max(1.0, other.high()));
            }
            return value + (wanted - value) * amount;
        });
    });
}

OssEvKernel kernelOf(const char *name, std::vector<OssEvParameterDescription> parameters,
                     Operation (*make)(const OssEvKernelSetup &setup))
{
    OssEvKernel kernel = OssEvFilterKernel::describe(name, "Input", 0, std::move(parameters), make);
    kernel.inputs.push_back({"Mask", 1});
    kernel.usesSurface = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addMeasured(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    const auto channels = [](int fallback) {
        return choice("Channels", {"Together", "Each"}, fallback);
    };
    kernels->push_back(kernelOf(
        "autoLevels", {real("Clip", 0.005, 0, 0.2), real("Midtones", 0, 0, 1), channels(0)},
        makeAutoLevels));
    kernels->push_back(kernelOf("equalize", {real("Amount", 1, 0, 1), channels(0)}, makeEqualize));
    kernels->push_back(kernelOf("normalize",
                                {real("Low", 0, -10, 10), real("High", 1, -10, 10), channels(0)},
                                makeNormalize));
    OssEvKernel match = kernelOf(
        "colorMatch", {real("Amount", 1, 0, 1), choice("Match", {"Mean and Spread", "Histogram"})},
        makeMatch);
    match.inputs = {{"Input", 0, true}, {"Reference", 0}, {"Mask", 1}};
    kernels->push_back(match);
}
