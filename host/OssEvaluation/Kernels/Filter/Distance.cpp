// Filters that know how far away the edge of a shape is: distance, bevel, outline.

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Coverage.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Filter/Window.h"
#include "OssEvaluation/Kernels/FilterKernel.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>
#include <vector>

namespace {

constexpr auto Clamp = OssEvTileGrid::Border::Clamp;
constexpr double Far = 1e12;

/// The lower envelope of parabolas: P. F. Felzenszwalb, D. P. Huttenlocher, "Distance Transforms of
/// Sampled Functions", 2012; here they may stand between samples.
class Envelope
{
public:
    void clear()
    {
        m_parabolas.clear();
        m_from.clear();
    }

    /// Places ascend.
    void add(double place, double height)
    {
        if (height >= Far)
            return;
        double from = -Far;
        while (!m_parabolas.empty()) {
            const Parabola &last = m_parabolas.back();
            if (place - last.place < 1e-9) {
                if (height >= last.height)
                    return;
                drop();
                continue;
            }
            from = ((height + place * place) - (last.height + last.place * last.place))
                   / (2.0 * (place - last.place));
            if (from > m_from.back())
                break;
            drop();
            from = -Far;
        }
        m_parabolas.push_back({place, height});
        m_from.push_back(from);
    }

    /// At 0, 1 and so on.
    template <class Put>
    void walk(int count, const Put &put) const
    {
        std::size_t at = 0;
        for (int i = 0; i < count; ++i) {
            if (m_parabolas.empty()) {
                put(i, Far);
                continue;
            }
            while (at + 1 < m_from.size() && m_from[at + 1] < i)
                ++at;
            const double away = i - m_parabolas[at].place;
            put(i, away * away + m_parabolas[at].height);
        }
    }

private:
    struct Parabola
    {
        double place;
        double height;
    };

    void drop()
    {
        m_parabolas.pop_back();
        m_from.pop_back();
    }

    std::vector<Parabola> m_parabolas;
    std::vector<double> m_from;
};

/// Where a value crosses 0 between two neighbours, as a part of the way; negative where it does not.
double crossing(float here, float next)
{
    if ((here > 0.0F) == (next > 0.0F))
        return -1.0;
    return double(here) / (double(here) - double(next));
}

/// Squares of the distances from the edge at which `values` cross 0, which may lie between texels.
/// Where `cover` is 0 there is no edge.
void squaredDistances(const OssEvPlane &values, const OssEvPlane *cover, const OssEvPlane &to)
{
    const auto counts = [cover](int x, int y, int dx, int dy) {
        return cover == nullptr || (cover->row(y)[x] > 0.0F && cover->row(y + dy)[x + dx] > 0.0F);
    };
    Envelope envelope;
    for (int y = 0; y < values.height; ++y) {
        envelope.clear();
        for (int x = 0; x + 1 < values.width; ++x) {
            const double part = crossing(values.row(y)[x], values.row(y)[x + 1]);
            if (part >= 0.0 && counts(x, y, 1, 0))
                envelope.add(x + part, 0.0);
        }
        envelope.walk(values.width, [&](int x, double square) { to.row(y)[x] = float(square); });
    }
    for (int x = 0; x < values.width; ++x) {
        envelope.clear();
        for (int y = 0; y < values.height; ++y) {
            envelope.add(y, double(to.row(y)[x]));
            if (y + 1 == values.height)
                break;
            const double part = crossing(values.row(y)[x], values.row(y + 1)[x]);
            if (part >= 0.0 && counts(x, y, 0, 1))
                envelope.add(y + part, 0.0);
        }
        envelope.walk(values.height, [&](int y, double square) { to.row(y)[x] = float(square); });
    }
}

/// Distances from the edge of what is brighter than a threshold, positive inside, in widths of the
/// patch. Far distances are found in a reduced picture: what they are far from has no detail there.
class Distance : public OssEvAreaOperation
{
public:
    using Map = std::function<float(float distance)>;

    /// `reach` is the farthest distance that matters, in widths of the patch.
    Distance(const OssEvFrame &frame, double threshold, double reach, Map map)
        : OssEvAreaOperation({{0, reductionOf(frame, reach)}})
        , m_threshold(float(threshold))
        , m_margin(int(std::ceil(reach * frame.width / (1 << taps()[0].reduction))) + 2)
        , m_map(std::move(map))
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return OssEvUnder(block, taps()[0].reduction).expanded(m_margin);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const int reduction = taps()[0].reduction;
        const OssEvRegion region = needed(0, block.region);
        const OssEvPlane values(&scratch, region.width, region.height);
        block.inputs[0].assemble(0, region, Clamp, values.data, values.stride);
        for (int y = 0; y < region.height; ++y) {
            for (int x = 0; x < region.width; ++x)
                values.row(y)[x] -= m_threshold;
        }
        const OssEvPlane cover(&scratch, region.width, region.height);
        if (block.surface != nullptr)
            OssEvCoverageSource(*block.surface, reduction).read(region, cover);
        if (block.cancel != nullptr && block.cancel->isCancelled())
            return;
        const OssEvPlane distances(&scratch, region.width, region.height);
        squaredDistances(values, block.surface != nullptr ? &cover : nullptr, distances);
        const float unit = float(1 << reduction) / float(block.frame.width);
        for (int y = 0; y < region.height; ++y) {
            for (int x = 0; x < region.width; ++x) {
                const float away = std::sqrt(distances.row(y)[x]) * unit;
                distances.row(y)[x] = values.row(y)[x] > 0.0F ? away : -away;
            }
        }
        const OssEvPlane to(block.output[0], block.region.width, block.region.height, block.stride);
        OssEvEnlarge(distances, region.x, region.y, block.region, reduction, to);
        for (int y = 0; y < to.height; ++y)
            std::transform(to.row(y), to.row(y) + to.width, to.row(y), m_map);
    }

private:
    static int reductionOf(const OssEvFrame &frame, double reach)
    {
        constexpr double Widest = 64.0;
        int reduction = 0;
        while (reach * frame.width / (1 << reduction) > Widest)
            ++reduction;
        return reduction;
    }

    float m_threshold;
    int m_margin;
    Map m_map;
};

float within(float value)
{
    return std::clamp(value, 0.0F, 1.0F);
}

std::shared_ptr<const OssEvOperation> makeDistance(const OssEvKernelSetup &setup)
{
    enum Side { Inside, Outside, Both };

    const auto reach = float(std::max(setup.real("Distance"), 1e-4));
    const int side = setup.integer("Side");
    return std::make_shared<Distance>(setup.frame(), setup.real("Threshold"), double(reach),
                                      [reach, side](float distance) {
                                          const float part = distance / reach;
                                          if (side == Inside)
                                              return within(part);
                                          if (side == Outside)
                                              return within(1.0F + part);
                                          return within(0.5F + 0.5F * part);
                                      });
}

std::shared_ptr<const OssEvOperation> makeBevel(const OssEvKernelSetup &setup)
{
    enum Profile { Linear, Round, Smooth, Hollow };

    const auto reach = float(std::max(setup.real("Distance"), 1e-4));
    const int profile = setup.integer("Profile");
    return std::make_shared<Distance>(
        setup.frame(), setup.real("Threshold"), double(reach), [reach, profile](float distance) {
            const float part = within(distance / reach);
            if (profile == Round)
                return std::sqrt(std::max(0.0F, 1.0F - (1.0F - part) * (1.0F - part)));
            if (profile == Smooth)
                return part * part * (3.0F - 2.0F * part);
            return profile == Hollow ? 1.0F - std::sqrt(1.0F - part * part) : part;
        });
}

std::shared_ptr<const OssEvOperation> makeOutline(const OssEvKernelSetup &setup)
{
    const double width = setup.real("Width");
    // The middle of the line, from its place inside, on or outside the edge.
    const double middle = 0.5 * width * (1 - setup.integer("Place"));
    // No harder than a texel.
    const double soft = std::max(setup.real("Softness") * width, 1.0 / setup.frame().width);
    const double reach = std::abs(middle) + 0.5 * width + soft;
    return std::make_shared<Distance>(
        setup.frame(), setup.real("Threshold"), reach,
        [half = float(0.5 * width), middle = float(middle), soft = float(soft)](float distance) {
            return half > 0.0F ? within((half - std::abs(distance - middle)) / soft + 0.5F) : 0.0F;
        });
}

OssEvKernel kernelOf(const char *name, std::vector<OssEvParameterDescription> parameters,
                     const OssEvFilterKernel::Make &make)
{
    parameters.push_back(OssEvDescribe::real("Threshold", 0.5, 0, 1));
    OssEvKernel kernel = OssEvFilterKernel::describe(name, "Input", 1, std::move(parameters), make);
    kernel.usesSurface = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addDistance(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    kernels->push_back(kernelOf(
        "distance",
        {real("Distance", 0.1, 0.001, 0.5), choice("Side", {"Inside", "Outside", "Both"}, 1)},
        makeDistance));
    kernels->push_back(kernelOf("bevel",
                                {real("Distance", 0.04, 0.001, 0.5),
                                 choice("Profile", {"Linear", "Round", "Smooth", "Hollow"}, 2)},
                                makeBevel));
    kernels->push_back(
        kernelOf("outline",
                 {real("Width", 0.01, 0, 0.2),
                  choice("Place", {"Inside", "Centered", "Outside"}, 1), real("Softness", 0, 0, 1)},
                 makeOutline));
}
