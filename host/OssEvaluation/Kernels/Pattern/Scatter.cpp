// Copies of a picture, thrown over the patch or laid out on a grid: each is drawn over those that come
// before it by chance. Letters belong to this family: they are copies of what a font draws.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Pattern/Text.h"
#include "OssEvaluation/Kernels/Sampler.h"

#include <algorithm>
#include <cmath>

namespace {

using Border = OssEvTileGrid::Border;
using Texel = OssEvSampler::Texel;

constexpr double Turn = 6.283185307179586;

std::uint32_t mixed(std::uint32_t h)
{
    h = (h ^ (h >> 15U)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12U)) * 0x297A2D39U;
    return h ^ (h >> 15U);
}

/// Chances of one copy, one after the other.
class Chances
{
public:
    Chances(int column, int row, int layer, std::uint32_t seed)
        : m_state(mixed(std::uint32_t(column) * 0x9E3779B1U ^ std::uint32_t(row) * 0x85EBCA77U
                        ^ std::uint32_t(layer) * 0xC2B2AE3DU ^ seed * 0x27D4EB2FU))
    {
    }

    std::uint32_t bits() { return m_state = mixed(m_state + 0x9E3779B9U); }

    /// 0 to 1.
    double next() { return double(bits() >> 8U) / 16777216.0; }

private:
    std::uint32_t m_state;
};

struct Rules
{
    int output;
    int columns;
    int rows;
    double offset;
    int layers;
    double amount;
    double jitter;
    double scale;
    double scaleVariation;
    double rotation; ///< in turns
    double rotationVariation;
    double brightness;
    double hue;
    int blend;
    std::uint32_t seed;
};

struct Copy
{
    double u;
    double v;
    double size; ///< of its sides, in texture coordinates
    double cosine;
    double sine;
    float light;
    double hue; ///< in turns
    float random;
    std::uint32_t order;
};

int wrapped(int i, int count)
{
    const int rest = i % count;
    return rest < 0 ? rest + count : rest;
}

class Scatter : public OssEvAreaOperation
{
public:
    enum Tap { Input, Mask, Background, ScaleMap, RotationMap };

    enum Blend { Over, Add, Lightest };

    Scatter(const Rules &rules, const OssEvFrame &frame)
        : OssEvAreaOperation(tapsOf(rules))
        , m_rules(rules)
        , m_frame(frame)
    {
        defaults = {{}, OssEvMaskDefault, {}, OssEvMaskDefault, {}};
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        // Copies show all of the picture, and each reads maps where its middle lies.
        return tap == Background ? block : OssEvReduced(m_frame, taps()[tap].reduction).region();
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        drawBackground(block, &scratch);
        OssEvSampler picture(block.inputs[Input], Border::Zero, &scratch);
        for (const Copy &copy : copiesIn(block, &scratch)) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            draw(block, copy, &picture);
        }
    }

private:
    static constexpr std::array<float, 4> OssEvMaskDefault{1.0F, 0.0F, 0.0F, 0.0F};
    /// Maps are read at points, so they are smoothed a little.
    static constexpr int MapReduction = 2;

    static std::vector<OssEvTap> tapsOf(const Rules &rules)
    {
        const double times = std::min(rules.columns, rules.rows) / std::max(rules.scale, 0.01);
        return {{Input, OssEvReductionFor(times)},
                {Mask, MapReduction},
                {Background, 0},
                {ScaleMap, MapReduction},
                {RotationMap, MapReduction}};
    }

    void drawBackground(const OssEvBlock &block, OssEvScratch *scratch) const
    {
        OssEvSampler background(block.inputs[Background], Border::Clamp, scratch);
        for (int y = 0; y < block.region.height; ++y) {
            for (int x = 0; x < block.region.width; ++x) {
                Texel texel{};
                if (m_rules.output == 0)
                    texel = background.at(block.region.x + x + 0.5, block.region.y + y + 0.5);
                const std::ptrdiff_t at = std::ptrdiff_t(y) * block.stride + x;
                for (int k = 0; k < block.outputChannels; ++k)
                    block.output[std::size_t(k)][at] = texel[std::size_t(k)];
            }
        }
    }

    // Those that may touch the block, in the order in which they are drawn.
    std::vector<Copy> copiesIn(const OssEvBlock &block, OssEvScratch *scratch) const
    {
        OssEvSampler mask(block.inputs[Mask], Border::Repeat, scratch);
        OssEvSampler scales(block.inputs[ScaleMap], Border::Repeat, scratch);
        OssEvSampler rotations(block.inputs[RotationMap], Border::Repeat, scratch);
        const double cell = 1.0 / std::max(m_rules.columns, m_rules.rows);
        const double reach = cell * m_rules.scale * 0.71;
        const auto from = [&](double edge, double reached, int count) {
            return int(std::floor((edge - reached) * count - m_rules.jitter)) - 2;
        };
        const auto to = [&](double edge, double reached, int count) {
            return int(std::ceil((edge + reached) * count + m_rules.jitter)) + 1;
        };
        const double width = block.frame.width;
        const double height = block.frame.height;
        const double top = 1.0 - block.region.y / height;
        const double bottom = 1.0 - (block.region.y + block.region.height) / height;
        const double right = (block.region.x + block.region.width) / width;
        std::vector<Copy> copies;
        for (int j = from(bottom, reach, m_rules.rows); j <= to(top, reach, m_rules.rows); ++j) {
            for (int i = from(block.region.x / width, reach, m_rules.columns);
                 i <= to(right, reach, m_rules.columns); ++i) {
                for (int layer = 0; layer < m_rules.layers; ++layer)
                    addCopy(i, j, layer, &mask, &scales, &rotations, &copies);
            }
        }
        std::sort(copies.begin(), copies.end(), [](const Copy &a, const Copy &b) {
            return a.order != b.order ? a.order < b.order : a.u < b.u;
        });
        return copies;
    }

    void addCopy(int column, int row, int layer, OssEvSampler *mask, OssEvSampler *scales,
                 OssEvSampler *rotations, std::vector<Copy> *copies) const
    {
        const Rules &r = m_rules;
        Chances chances(wrapped(column, r.columns), wrapped(row, r.rows), layer, r.seed);
        const double shift = wrapped(row, r.rows) % 2 == 1 ? r.offset : 0.0;
        Copy copy{};
        copy.u = (column + 0.5 + shift + (chances.next() - 0.5) * r.jitter) / r.columns;
        copy.v = (row + 0.5 + (chances.next() - 0.5) * r.jitter) / r.rows;
        const auto read = [this, &copy](OssEvSampler *map, int tap) {
            const OssEvFrame frame = OssEvReduced(m_frame, taps()[std::size_t(tap)].reduction);
            const double u = copy.u - std::floor(copy.u);
            const double v = copy.v - std::floor(copy.v);
            const double value = map->at(u * frame.width, (1.0 - v) * frame.height)[0];
            return std::isfinite(value) ? value : 0.0;
        };
        if (!(chances.next() < r.amount * read(mask, Mask)))
            return;
        const double cell = 1.0 / std::max(r.columns, r.rows);
        const double chosen = std::clamp(read(scales, ScaleMap), 0.0, 1.0);
        copy.size = cell * r.scale * chosen * (1.0 - r.scaleVariation * chances.next());
        const double turned = (chances.next() - 0.5) * r.rotationVariation;
        const double angle = (r.rotation + turned + read(rotations, RotationMap)) * Turn;
        copy.cosine = std::cos(angle);
        copy.sine = std::sin(angle);
        copy.light = float(1.0 + r.brightness * (2.0 * chances.next() - 1.0));
        copy.hue = (chances.next() - 0.5) * r.hue;
        copy.random = float(chances.next());
        copy.order = chances.bits();
        if (copy.size > 1e-6)
            copies->push_back(copy);
    }

    void draw(const OssEvBlock &block, const Copy &copy, OssEvSampler *picture) const
    {
        const double width = block.frame.width;
        const double height = block.frame.height;
        const double reach = copy.size * 0.7072 + 1.0 / std::min(width, height);
        const auto clampTo = [](double value, int limit) {
            return int(std::clamp(value, 0.0, double(limit)));
        };
        const int left = clampTo((copy.u - reach) * width - block.region.x, block.region.width);
        const int right = clampTo((copy.u + reach) * width - block.region.x + 1,
                                  block.region.width);
        const int top = clampTo((1.0 - copy.v - reach) * height - block.region.y,
                                block.region.height);
        const int bottom = clampTo((1.0 - copy.v + reach) * height - block.region.y + 1,
                                   block.region.height);
        const OssEvFrame source = OssEvReduced(m_frame, taps()[Input].reduction);
        for (int y = top; y < bottom; ++y) {
            const double dv = 1.0 - (block.region.y + y + 0.5) / height - copy.v;
            for (int x = left; x < right; ++x) {
                const double du = (block.region.x + x + 0.5) / width - copy.u;
                const double s = (du * copy.cosine + dv * copy.sine) / copy.size + 0.5;
                const double t = (dv * copy.cosine - du * copy.sine) / copy.size + 0.5;
                if (s < -0.1 || s > 1.1 || t < -0.1 || t > 1.1)
                    continue;
                const Texel texel = picture->at(s * source.width, (1.0 - t) * source.height);
                blend(block, copy, texel, std::ptrdiff_t(y) * block.stride + x);
            }
        }
    }

    void blend(const OssEvBlock &block, const Copy &copy, const Texel &texel,
               std::ptrdiff_t at) const
    {
        const float alpha = std::clamp(texel[3], 0.0F, 1.0F);
        if (alpha <= 0.0F && m_rules.blend == Over)
            return;
        Texel own = m_rules.output == 0 ? colored(copy, texel)
                                        : Texel{m_rules.output == 1 ? alpha : alpha * copy.random};
        for (int k = 0; k < block.outputChannels; ++k) {
            float &value = block.output[std::size_t(k)][at];
            const float given = own[std::size_t(k)];
            if (m_rules.blend == Add && m_rules.output == 0)
                value = k == 3 ? std::min(value + given, 1.0F) : value + given;
            else if (m_rules.blend == Lightest && m_rules.output == 0)
                value = std::max(value, given);
            else
                value = given + value * (1.0F - alpha);
        }
    }

    // Turned about the axis of grays.
    static Texel colored(const Copy &copy, const Texel &texel)
    {
        const double angle = copy.hue * Turn;
        const auto c = float(std::cos(angle));
        const float a = (1.0F - c) / 3.0F;
        const auto b = float(std::sin(angle) * 0.57735026919);
        Texel result = texel;
        for (std::size_t k = 0; k < 3; ++k) {
            const float next = texel[(k + 1) % 3];
            const float last = texel[(k + 2) % 3];
            result[k] = copy.light
                        * std::max(0.0F, texel[k] * (c + a) + next * (a - b) + last * (a + b));
        }
        return result;
    }

    Rules m_rules;
    OssEvFrame m_frame;
};

Rules rulesOf(const OssEvKernelSetup &setup)
{
    return {setup.output(),
            setup.integer("Columns"),
            setup.integer("Rows"),
            setup.real("Offset"),
            setup.integer("Layers"),
            setup.real("Amount"),
            setup.real("Jitter"),
            setup.real("Scale"),
            setup.real("ScaleVariation"),
            setup.real("Rotation") / 360.0,
            setup.real("RotationVariation"),
            setup.real("Brightness"),
            setup.real("Hue"),
            setup.integer("Blend"),
            std::uint32_t(setup.integer("Seed"))};
}

/// What the two differ in.
struct Habits
{
    const char *name;
    int layers;
    double amount;
    double jitter;
    double scale;
    double variation;
    double turning;
};

void addRow(std::vector<OssEvKernel> *kernels, const Habits &habits)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = habits.name;
    kernel.inputs = {
        {"Input", 4, true}, {"Mask", 1}, {"Background", 4}, {"Scale Map", 1}, {"Rotation Map", 1}};
    kernel.outputs = {{"Output", 4}, {"Mask", 1}, {"Random", 1}};
    kernel.parameters = {integer("Columns", 8, 1, 200),
                         integer("Rows", 8, 1, 200),
                         real("Offset", 0, 0, 1),
                         integer("Layers", habits.layers, 1, 8),
                         real("Amount", habits.amount, 0, 1),
                         real("Jitter", habits.jitter, 0, 2),
                         real("Scale", habits.scale, 0.01, 8),
                         real("ScaleVariation", habits.variation, 0, 1),
                         real("Rotation", 0, -360, 360),
                         real("RotationVariation", habits.turning, 0, 1),
                         real("Brightness", habits.variation, 0, 1),
                         real("Hue", 0, 0, 1),
                         choice("Blend", {"Over", "Add", "Lightest"}),
                         integer("Seed", 1, 0, 9999)};
    kernel.costly = true;
    kernel.make = [](const OssEvKernelSetup &setup) {
        return std::make_shared<Scatter>(rulesOf(setup), setup.frame());
    };
    kernels->push_back(kernel);
}

} // namespace

void OssEvFamilies::addScatter(std::vector<OssEvKernel> *kernels)
{
    addRow(kernels, {"scatter", 2, 0.9, 1, 1.2, 0.4, 1});
    addRow(kernels, {"tileSampler", 1, 1, 0, 0.9, 0, 0});
    OssEvAddText(kernels);
}
