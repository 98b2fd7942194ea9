#include "OssEvaluation/Kernels/Space/Remapping.h"

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

using Border = OssEvTileGrid::Border;
using Texel = OssEvSampler::Texel;

/// How often the second look at the input is halved.
constexpr int Reduction = 2;
/// Texels of an input, along an edge, that are read for one.
constexpr int MostSamples = 4;
/// Places farther apart than this part of the patch belong to two sides of a cut.
constexpr double Cut = 0.2;

std::vector<OssEvTap> tapsOf(const std::vector<std::size_t> &maps)
{
    std::vector<OssEvTap> taps{{0, 0}, {0, Reduction}};
    taps.reserve(taps.size() + maps.size());
    for (const std::size_t map : maps)
        taps.push_back({map, 0});
    return taps;
}

Border borderOf(OssEvRemapping::Edge edge)
{
    if (edge == OssEvRemapping::Edge::Repeat)
        return Border::Repeat;
    return edge == OssEvRemapping::Edge::Empty ? Border::Zero : Border::Clamp;
}

} // namespace

/// A source in texels; not there where there is none.
struct OssEvRemapping::Found
{
    Source source;
    double x = 0.0;
    double y = 0.0;
    bool isThere = false;
};

/// The sources of one row of texels, and of the one behind its end.
class OssEvRemapping::Rows
{
public:
    Rows(const OssEvRemapping &remapping, const OssEvBlock &block)
        : m_remapping(remapping)
        , m_block(block)
        , m_columns(std::size_t(block.region.width) + 1)
        , m_row(m_columns * std::size_t(remapping.m_looks))
    {
    }

    void fill(int y, Maps *maps)
    {
        const OssEvFrame &frame = m_block.frame;
        for (std::size_t x = 0; x < m_columns; ++x) {
            const OssEvPlace place{(m_block.region.x + double(x) + 0.5) / frame.width,
                                   1.0 - (m_block.region.y + y + 0.5) / frame.height};
            for (int look = 0; look < m_remapping.m_looks; ++look) {
                Found &found = m_row[std::size_t(look) * m_columns + x];
                found.isThere = m_remapping.wants(look, place, maps, &found.source);
                found.x = found.source.place.u * frame.width;
                found.y = (1.0 - found.source.place.v) * frame.height;
            }
        }
    }

    const Found &at(int look, int x) const
    {
        return m_row[std::size_t(look) * m_columns + std::size_t(x)];
    }

    void swap(Rows *other) { m_row.swap(other->m_row); }

private:
    const OssEvRemapping &m_remapping;
    const OssEvBlock &m_block;
    std::size_t m_columns;
    std::vector<Found> m_row;
};

/// Reads the input over the little field that one texel stands for.
class OssEvRemapping::Reader
{
public:
    Reader(const OssEvBlock &block, Edge edge, OssEvScratch *scratch)
        : m_fine(block.inputs[0], borderOf(edge), scratch)
        , m_coarse(block.inputs[1], borderOf(edge), scratch)
        , m_frame(block.frame)
        , m_surface(edge == Edge::AcrossSeams ? block.surface : nullptr)
    {
    }

    Texel read(const Found &here, const Found &beside, const Found &below)
    {
        const std::array<double, 2> across = step(here, beside);
        const std::array<double, 2> down = step(here, below);
        const double wide = std::hypot(across[0], across[1]);
        const double high = std::hypot(down[0], down[1]);
        const bool coarse = std::max(wide, high) > MostSamples && m_surface == nullptr;
        const double unit = coarse ? 1 << Reduction : 1;
        const int columns = samples(wide / unit);
        const int lines = samples(high / unit);
        Texel sum{};
        for (int i = 0; i < columns * lines; ++i) {
            const double s = (i % columns + 0.5) / columns - 0.5;
            const int line = i / columns;
            const double t = (line + 0.5) / lines - 0.5;
            const Texel texel = at((here.x + s * across[0] + t * down[0]) / unit,
                                   (here.y + s * across[1] + t * down[1]) / unit, coarse);
            for (std::size_t k = 0; k < 4; ++k)
                sum[k] += texel[k] / float(columns * lines);
        }
        return sum;
    }

private:
    static int samples(double length)
    {
        return std::clamp(int(std::ceil(length - 0.3)), 1, MostSamples);
    }

    std::array<double, 2> step(const Found &from, const Found &to) const
    {
        const double x = to.x - from.x;
        const double y = to.y - from.y;
        const bool cut = !from.isThere || !to.isThere || from.source.piece != to.source.piece
                         || !(std::abs(x) < Cut * m_frame.width)
                         || !(std::abs(y) < Cut * m_frame.height);
        return cut ? std::array<double, 2>{} : std::array<double, 2>{x, y};
    }

    Texel at(double x, double y, bool coarse)
    {
        if (m_surface != nullptr)
            return m_fine.covered(x, y, *m_surface);
        return coarse ? m_coarse.at(x, y) : m_fine.at(x, y);
    }

    OssEvSampler m_fine;
    OssEvSampler m_coarse;
    OssEvFrame m_frame;
    const OssEvSurfaceMap *m_surface;
};

namespace {

/// What the looks of one texel have brought.
class Mixture
{
public:
    explicit Mixture(OssEvRemapping::Combine combine)
        : m_combine(combine)
    {
    }

    void add(const Texel &texel, const OssEvRemapping::Source &source)
    {
        Texel changed = texel;
        for (std::size_t k = 0; k < 3; ++k)
            changed[k] *= float(source.gain);
        if (m_combine == OssEvRemapping::Combine::Over)
            m_layers.emplace_back(source.order, scaled(changed, source.weight), source.weight);
        else if (m_combine == OssEvRemapping::Combine::Average || !m_any)
            addTo(changed, source.weight);
        else
            choose(changed);
        m_any = true;
    }

    /// `opaque`: layers without alpha of their own cover by their weights.
    Texel result(bool opaque)
    {
        if (m_combine == OssEvRemapping::Combine::Over)
            return stacked(opaque);
        if (m_combine == OssEvRemapping::Combine::Average && m_weight > 1e-9)
            return scaled(m_sum, 1.0 / m_weight);
        return m_sum;
    }

private:
    struct Layer
    {
        Layer(double place, const Texel &color, double cover)
            : order(place)
            , texel(color)
            , weight(cover)
        {
        }

        double order;
        Texel texel;
        double weight;
    };

    static Texel scaled(const Texel &texel, double factor)
    {
        Texel result{};
        for (std::size_t k = 0; k < 4; ++k)
            result[k] = texel[k] * float(factor);
        return result;
    }

    static float brightness(const Texel &texel) { return texel[0] + texel[1] + texel[2]; }

    void addTo(const Texel &texel, double weight)
    {
        const double factor = m_combine == OssEvRemapping::Combine::Average ? weight : 1.0;
        for (std::size_t k = 0; k < 4; ++k)
            m_sum[k] += texel[k] * float(factor);
        m_weight += weight;
    }

    void choose(const Texel &texel)
    {
        const bool brighter = brightness(texel) > brightness(m_sum);
        if (brighter == (m_combine == OssEvRemapping::Combine::Lightest))
            m_sum = texel;
    }

    Texel stacked(bool opaque)
    {
        std::sort(m_layers.begin(), m_layers.end(),
                  [](const Layer &a, const Layer &b) { return a.order < b.order; });
        Texel result{};
        for (const Layer &layer : m_layers) {
            const float cover = opaque ? float(layer.weight) : layer.texel[3];
            for (std::size_t k = 0; k < 4; ++k)
                result[k] = layer.texel[k] + result[k] * (1.0F - cover);
        }
        return result;
    }

    OssEvRemapping::Combine m_combine;
    std::vector<Layer> m_layers;
    Texel m_sum{};
    double m_weight = 0.0;
    bool m_any = false;
};

} // namespace

OssEvRemapping::Maps::Maps(const OssEvBlock &block, std::size_t first, std::size_t count,
                           OssEvScratch *scratch)
    : m_frame(block.frame)
{
    m_samplers.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        m_samplers.emplace_back(block.inputs[first + i], Border::Clamp, scratch);
}

OssEvSampler::Texel OssEvRemapping::Maps::at(std::size_t map, const OssEvPlace &place)
{
    return m_samplers[map].at(place.u * m_frame.width, (1.0 - place.v) * m_frame.height);
}

OssEvRemapping::OssEvRemapping(const OssEvFrame &frame, int looks,
                               const std::vector<std::size_t> &maps, double reach)
    : OssEvAreaOperation(tapsOf(maps))
    , m_frame(frame)
    , m_looks(looks)
    , m_reach(reach)
{
}

OssEvRegion OssEvRemapping::needed(std::size_t tap, const OssEvRegion &block) const
{
    const OssEvRegion whole = tap == 1 ? OssEvReduced(m_frame, Reduction).region()
                                       : m_frame.region();
    if (m_reach < 0.0)
        return tap < 2 ? whole : block.expanded(2);
    const int unit = tap == 1 ? 1 << Reduction : 1;
    const OssEvRegion part{block.x / unit, block.y / unit, block.width / unit, block.height / unit};
    const double size = std::max(m_frame.width, m_frame.height);
    const OssEvRegion region = part.expanded(int(std::ceil(m_reach * size / unit)) + 8);
    const bool inside = region.intersected(whole) == region;
    return m_edge == Edge::Repeat && !inside ? whole : region;
}

// What is no number leads nowhere.
bool OssEvRemapping::wants(int look, const OssEvPlace &place, Maps *maps, Source *source) const
{
    *source = Source();
    if (!find(look, place, maps, source) || !(source->weight > 0.0))
        return false;
    constexpr double Farthest = 1e4;
    return std::abs(source->place.u) < Farthest && std::abs(source->place.v) < Farthest;
}

void OssEvRemapping::run(const OssEvBlock &block) const
{
    OssEvScratch scratch;
    Maps maps(block, 2, taps().size() - 2, &scratch);
    Reader reader(block, m_edge, &scratch);
    Rows row(*this, block);
    Rows next(*this, block);
    next.fill(0, &maps);
    for (int y = 0; y < block.region.height; ++y) {
        if (block.cancel != nullptr && block.cancel->isCancelled())
            return;
        row.swap(&next);
        next.fill(y + 1, &maps);
        for (int x = 0; x < block.region.width; ++x) {
            Mixture mixture(m_combine);
            for (int look = 0; look < m_looks; ++look) {
                const Found &found = row.at(look, x);
                if (!found.isThere)
                    continue;
                mixture.add(reader.read(found, row.at(look, x + 1), next.at(look, x)),
                            found.source);
            }
            const Texel result = mixture.result(block.outputChannels < 4);
            const std::ptrdiff_t offset = std::ptrdiff_t(y) * block.stride + x;
            for (std::size_t k = 0; k < std::size_t(block.outputChannels); ++k)
                block.output[k][offset] = result[k];
        }
    }
}

OssEvParameterDescription OssEvDescribeEdge(OssEvRemapping::Edge fallback)
{
    return OssEvDescribe::choice("Border", {"Repeat", "Clamp", "Empty", "Across Seams"},
                                 int(fallback));
}

OssEvRemapping::Edge OssEvEdgeOf(const OssEvKernelSetup &setup)
{
    return OssEvRemapping::Edge(setup.integer("Border"));
}

OssEvKernel OssEvSpaceKernel(
    const char *name, std::vector<OssEvParameterDescription> parameters,
    std::shared_ptr<const OssEvOperation> (*make)(const OssEvKernelSetup &),
    const std::vector<OssEvKernelInput> &maps)
{
    OssEvKernel kernel;
    kernel.name = name;
    kernel.inputs = {{"Input", 0, true}};
    kernel.inputs.insert(kernel.inputs.end(), maps.begin(), maps.end());
    kernel.outputs = {{"Output", 0}};
    kernel.parameters = std::move(parameters);
    kernel.keepsPrecision = true;
    kernel.make = make;
    return kernel;
}
