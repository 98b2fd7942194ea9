// Heights that weather: slopes that slide, and water that carries them down and cuts gullies.

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Chance.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Filter/Window.h"
#include "OssEvaluation/Kernels/FilterKernel.h"
#include "OssEvaluation/Kernels/Sampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr auto Clamp = OssEvTileGrid::Border::Clamp;
/// Weathering happens in a picture no larger than this, or it would reach less far in a larger patch.
constexpr int Largest = 256;
/// A height of 1 is this part of the patch's width at a strength of 1.
constexpr double Depth = 1.0 / 32.0;

struct Neighbour
{
    int x;
    int y;
    float distance;
};

constexpr std::array<Neighbour, 8> Neighbours{{{1, 0, 1.0F},
                                               {-1, 0, 1.0F},
                                               {0, 1, 1.0F},
                                               {0, -1, 1.0F},
                                               {1, 1, 1.41421356F},
                                               {-1, 1, 1.41421356F},
                                               {1, -1, 1.41421356F},
                                               {-1, -1, 1.41421356F}}};

int reductionOf(OssEvFrame frame)
{
    int times = 0;
    while (std::max(frame.width, frame.height) > Largest) {
        frame = OssEvReduced(frame, 1);
        ++times;
    }
    return times;
}

/// Where a part of the small picture lies in it, in its texels.
struct Part
{
    int x;
    int y;
    int whole; ///< width of all of it
};

/// What changes the heights of a small picture, step by step. Each step may look `reach()` texels far.
class Weather
{
public:
    Weather() = default;
    Weather(const Weather &) = delete;
    Weather &operator=(const Weather &) = delete;
    virtual ~Weather() = default;

    virtual int steps() const = 0;
    virtual int reach() const = 0;
    /// Heights in texels; of the outermost ones nothing is wanted.
    virtual void run(const OssEvPlane &heights, const Part &part, OssEvScratch *scratch) const = 0;
};

/// Adds the change of the small picture to the large one, which keeps its detail.
class Erosion : public OssEvAreaOperation
{
public:
    Erosion(const OssEvKernelSetup &setup, std::unique_ptr<Weather> weather)
        : OssEvAreaOperation({{0, 0}, {0, reductionOf(setup.frame())}})
        , m_weather(std::move(weather))
        , m_scale(float(std::max(setup.real("Strength"), 1e-3) * Depth * setup.frame().width
                        / (1 << taps()[1].reduction)))
        , m_whole(OssEvReduced(setup.frame(), taps()[1].reduction).width)
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        return tap == 0 ? block
                        : OssEvUnder(block, taps()[1].reduction)
                              .expanded(m_weather->steps() * m_weather->reach() + Beyond);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const OssEvRegion region = needed(1, block.region);
        const OssEvPlane before(&scratch, region.width, region.height);
        const OssEvPlane heights(&scratch, region.width, region.height);
        block.inputs[1].assemble(0, region, Clamp, before.data, before.stride);
        for (int y = 0; y < region.height; ++y) {
            for (int x = 0; x < region.width; ++x)
                heights.row(y)[x] = before.row(y)[x] * m_scale;
        }
        m_weather->run(heights, {region.x, region.y, m_whole}, &scratch);
        for (int y = 0; y < region.height; ++y) {
            for (int x = 0; x < region.width; ++x)
                heights.row(y)[x] = heights.row(y)[x] / m_scale - before.row(y)[x];
        }
        const OssEvPlane to(block.output[0], block.region.width, block.region.height, block.stride);
        const OssEvPlane change(&scratch, to.width, to.height);
        OssEvEnlarge(heights, region.x, region.y, block.region, taps()[1].reduction, change);
        block.inputs[0].assemble(0, block.region, Clamp, to.data, to.stride);
        for (int y = 0; y < to.height; ++y) {
            for (int x = 0; x < to.width; ++x)
                to.row(y)[x] += change.row(y)[x];
        }
    }

private:
    /// For slopes about the last texel, and for enlarging.
    static constexpr int Beyond = 4;

    std::unique_ptr<Weather> m_weather;
    float m_scale;
    int m_whole;
};

/// What is steeper than its angle of rest slides: F. K. Musgrave, C. E. Kolb, R. S. Mace, "The Synthesis
/// and Rendering of Eroded Fractal Terrains", 1989.
class Slides : public Weather
{
public:
    explicit Slides(const OssEvKernelSetup &setup)
        : m_steps(setup.integer("Steps"))
        , m_rest(float(std::tan(std::min(setup.real("Angle"), 89.0) * 0.017453292519943295)))
    {
    }

    int steps() const override { return m_steps; }

    int reach() const override { return 1; }

    void run(const OssEvPlane &heights, const Part & /*part*/, OssEvScratch *scratch) const override
    {
        const OssEvPlane next(scratch, heights.width, heights.height);
        for (int step = 0; step < m_steps; ++step) {
            for (int y = 1; y + 1 < heights.height; ++y) {
                for (int x = 1; x + 1 < heights.width; ++x)
                    next.row(y)[x] = heights.row(y)[x] + Share * slid(heights, x, y);
            }
            for (int y = 1; y + 1 < heights.height; ++y)
                std::copy_n(next.row(y) + 1, heights.width - 2, heights.row(y) + 1);
        }
    }

private:
    /// More would swing.
    static constexpr float Share = 0.1F;

    float slid(const OssEvPlane &heights, int x, int y) const
    {
        const float here = heights.row(y)[x];
        float sum = 0.0F;
        for (const Neighbour &n : Neighbours) {
            const float above = heights.row(y + n.y)[x + n.x] - here;
            const float over = std::abs(above) - m_rest * n.distance;
            if (over > 0.0F)
                sum += std::copysign(over, above);
        }
        return sum;
    }

    int m_steps;
    float m_rest;
};

/// Furrows down the slopes: waves across the way down, each about a place of its own, that meet in branches for
/// finer ones follow the sides of those before.
class Gullies
{
public:
    explicit Gullies(double amount)
        : m_amount(float(amount))
    {
    }

    /// How far around a texel its slope is looked for.
    static constexpr int Reach = 3;

    /// The ways down are those of the ground, as smooth as it was before the rain.
    void cut(const OssEvPlane &ground, const OssEvPlane &heights, const Part &part) const
    {
        if (m_amount <= 0.0F)
            return;
        for (int y = Reach; y + Reach < heights.height; ++y) {
            const float *row = ground.row(y);
            for (int x = Reach; x + Reach < heights.width; ++x) {
                const Way slope{(row[x + Reach] - row[x - Reach]) / (2 * Reach),
                                (ground.row(y + Reach)[x] - ground.row(y - Reach)[x])
                                    / (2 * Reach)};
                heights.row(y)[x] += m_amount
                                     * at(float(part.x + x) + 0.5F, float(part.y + y) + 0.5F, slope,
                                          float(part.whole));
            }
        }
    }

private:
    struct Way
    {
        float x;
        float y;
    };

    struct Furrow
    {
        float value; ///< -1 in its middle, 1 on the crest
        Way slope;   ///< of the value, in cells
    };

    static constexpr float Cells = 11.0F; ///< of the first octave, along a patch
    static constexpr int Octaves = 3;
    static constexpr float Turn = 6.2831853F;

    /// How far the height changes, in texels.
    static float at(float x, float y, Way slope, float whole)
    {
        float change = 0.0F;
        float cells = Cells;
        for (int octave = 0; octave < Octaves; ++octave, cells *= 2.0F) {
            const float steep = std::hypot(slope.x, slope.y);
            if (steep < 1e-6F)
                break;
            const float length = whole / cells;
            const Furrow furrow = furrowAt(x / length, y / length,
                                           {-slope.y / steep, slope.x / steep}, octave);
            // Where it is nearly flat water does not cut; walls are as steep as what they are cut into.
            const float depth = 0.3F * length * steep * steep / (steep + 0.05F);
            change += 0.5F * depth * furrow.value;
            slope.x += depth / length * furrow.slope.x;
            slope.y += depth / length * furrow.slope.y;
        }
        return change;
    }

    static Furrow furrowAt(float x, float y, Way across, int octave)
    {
        const auto column = int(std::floor(x));
        const auto line = int(std::floor(y));
        Furrow sum{0.0F, {0.0F, 0.0F}};
        float weights = 1e-6F;
        for (int j = line - 1; j <= line + 1; ++j) {
            for (int i = column - 1; i <= column + 1; ++i) {
                const float toX = x - (float(i) + chanceOf(i, j, octave, 0));
                const float toY = y - (float(j) + chanceOf(i, j, octave, 1));
                const float weight = std::max(0.0F, 1.0F - 0.7F * (toX * toX + toY * toY));
                const float phase = Turn * (toX * across.x + toY * across.y);
                const float share = weight * weight;
                sum.value += share * std::cos(phase);
                sum.slope.x -= share * Turn * std::sin(phase) * across.x;
                sum.slope.y -= share * Turn * std::sin(phase) * across.y;
                weights += share;
            }
        }
        return {sum.value / weights, {sum.slope.x / weights, sum.slope.y / weights}};
    }

    static float chanceOf(int column, int line, int octave, int which)
    {
        return float(OssEvChance(std::uint32_t(column), std::uint32_t(line),
                                 std::uint32_t(2 * octave + which)));
    }

    float m_amount;
};

/// Rain runs down, takes along what it can carry and leaves it where it slows down.
class Rain : public Weather
{
public:
    explicit Rain(const OssEvKernelSetup &setup)
        : m_steps(setup.integer("Steps"))
        , m_carry(float(setup.real("Carry")))
        , m_hardness(float(1.0 - setup.real("Hardness")))
        , m_gullies(setup.real("Gullies") * std::min(1.0, m_steps / 24.0))
    {
    }

    int steps() const override { return m_steps; }

    int reach() const override { return 2; }

    void run(const OssEvPlane &heights, const Part &part, OssEvScratch *scratch) const override
    {
        const OssEvPlane ground(scratch, heights.width, heights.height);
        for (int y = 0; y < heights.height; ++y)
            std::copy_n(heights.row(y), heights.width, ground.row(y));
        std::vector<OssEvPlane> planes;
        planes.reserve(5);
        for (int i = 0; i < 5; ++i) {
            planes.emplace_back(scratch, heights.width, heights.height);
            for (int y = 0; y < heights.height; ++y)
                std::fill_n(planes.back().row(y), heights.width, 0.0F);
        }
        const State state{heights, planes[0], planes[1], planes[2], planes[3], planes[4]};
        for (int step = 0; step < m_steps; ++step) {
            leave(state);
            arrive(state);
        }
        for (int y = 0; y < heights.height; ++y) {
            for (int x = 0; x < heights.width; ++x)
                heights.row(y)[x] += state.soil.row(y)[x];
        }
        calm(ground, heights, scratch);
        m_gullies.cut(ground, heights, part);
    }

private:
    static constexpr float Fall = 0.02F;
    static constexpr float Dry = 0.1F;

    struct State
    {
        const OssEvPlane &heights;
        const OssEvPlane &water;
        const OssEvPlane &soil;   ///< in the water
        const OssEvPlane &flow;   ///< water that leaves, for each unit that it is pulled
        const OssEvPlane &loaded; ///< soil that leaves with it
        const OssEvPlane &next;
    };

    // Water that swings from texel to texel leaves ripples; half and two quarters know none of these.
    static void calm(const OssEvPlane &ground, const OssEvPlane &heights, OssEvScratch *scratch)
    {
        const OssEvPlane change(scratch, heights.width, heights.height);
        for (int y = 0; y < heights.height; ++y) {
            for (int x = 0; x < heights.width; ++x)
                change.row(y)[x] = heights.row(y)[x] - ground.row(y)[x];
        }
        const auto across = [&change](int x, int y) {
            const float *row = change.row(y) + x;
            return 0.5F * row[0] + 0.25F * (row[-1] + row[1]);
        };
        for (int y = 1; y + 1 < heights.height; ++y) {
            for (int x = 1; x + 1 < heights.width; ++x) {
                heights.row(y)[x] = ground.row(y)[x] + 0.5F * across(x, y)
                                    + 0.25F * (across(x, y - 1) + across(x, y + 1));
            }
        }
    }

    static float drop(const State &state, int x, int y, const Neighbour &n)
    {
        const float here = state.heights.row(y)[x] + state.water.row(y)[x];
        const float there = state.heights.row(y + n.y)[x + n.x] + state.water.row(y + n.y)[x + n.x];
        return std::max(0.0F, (here - there) / n.distance);
    }

    // Most of it goes where it is steepest: water gathers in courses.
    static float pull(float down) { return down * down * down * down; }

    // What leaves each texel, and what it digs or drops before.
    void leave(const State &state) const
    {
        for (int y = 0; y < state.heights.height; ++y) {
            for (int x = 0; x < state.heights.width; ++x)
                state.water.row(y)[x] += Fall;
        }
        for (int y = 1; y + 1 < state.heights.height; ++y) {
            for (int x = 1; x + 1 < state.heights.width; ++x) {
                float total = 0.0F;
                float steepest = 0.0F;
                for (const Neighbour &n : Neighbours) {
                    const float down = drop(state, x, y, n);
                    total += pull(down);
                    steepest = std::max(steepest, down);
                }
                float &water = state.water.row(y)[x];
                float &soil = state.soil.row(y)[x];
                const float leaving = std::min(water, 0.5F * steepest);
                // Steep and much water carries most.
                const float most = m_carry * leaving * std::min(steepest, 2.0F);
                float &height = state.heights.row(y)[x];
                const float moved = soil < most
                                        ? std::min(m_hardness * (most - soil), 0.25F * steepest)
                                        : 0.3F * (most - soil);
                state.next.row(y)[x] = height - moved;
                soil += moved;
                const float part = total > 1e-20F ? leaving / total : 0.0F;
                state.flow.row(y)[x] = part;
                state.loaded.row(y)[x] = water > 1e-9F ? part * soil / water : 0.0F;
            }
        }
    }

    static void arrive(const State &state)
    {
        const OssEvPlane &heights = state.heights;
        OssEvScratch scratch;
        const OssEvPlane water(&scratch, heights.width, heights.height);
        const OssEvPlane soil(&scratch, heights.width, heights.height);
        for (int y = 1; y + 1 < heights.height; ++y) {
            for (int x = 1; x + 1 < heights.width; ++x) {
                float wet = state.water.row(y)[x];
                float mud = state.soil.row(y)[x];
                for (const Neighbour &n : Neighbours) {
                    const float down = drop(state, x, y, n);
                    wet -= pull(down) * state.flow.row(y)[x];
                    mud -= pull(down) * state.loaded.row(y)[x];
                    if (x + n.x < 1 || y + n.y < 1 || x + n.x > heights.width - 2
                        || y + n.y > heights.height - 2)
                        continue;
                    const float up = pull(drop(state, x + n.x, y + n.y, {-n.x, -n.y, n.distance}));
                    wet += up * state.flow.row(y + n.y)[x + n.x];
                    mud += up * state.loaded.row(y + n.y)[x + n.x];
                }
                water.row(y)[x] = std::max(0.0F, wet) * (1.0F - Dry);
                soil.row(y)[x] = std::max(0.0F, mud);
            }
        }
        for (int y = 1; y + 1 < heights.height; ++y) {
            std::copy_n(state.next.row(y) + 1, heights.width - 2, heights.row(y) + 1);
            std::copy_n(water.row(y) + 1, heights.width - 2, state.water.row(y) + 1);
            std::copy_n(soil.row(y) + 1, heights.width - 2, state.soil.row(y) + 1);
        }
    }

    int m_steps;
    float m_carry;
    float m_hardness;
    Gullies m_gullies;
};

template <class Kind>
std::shared_ptr<const OssEvOperation> makeErosion(const OssEvKernelSetup &setup)
{
    return std::make_shared<Erosion>(setup, std::make_unique<Kind>(setup));
}

OssEvKernel kernelOf(const char *name, std::vector<OssEvParameterDescription> parameters,
                     const OssEvFilterKernel::Make &make)
{
    parameters.push_back(OssEvDescribe::real("Strength", 4, 0, 20));
    OssEvKernel kernel = OssEvFilterKernel::describe(name, "Height", 1, std::move(parameters),
                                                     make);
    kernel.version = 2;
    kernel.outputs.front().precise = true;
    kernel.costly = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addErosion(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    kernels->push_back(kernelOf("thermalErosion",
                                {integer("Steps", 24, 0, 64), real("Angle", 30, 0, 89)},
                                makeErosion<Slides>));
    kernels->push_back(kernelOf("hydraulicErosion",
                                {integer("Steps", 32, 0, 48), real("Carry", 2, 0, 8),
                                 real("Hardness", 0.3, 0, 1), real("Gullies", 0.5, 0, 1)},
                                makeErosion<Rain>));
}
