// What holds for every kind of noise, tiles and figures, asked of all that the library has.

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace {

bool hasParameter(const OssEvKernel &kernel, const std::string &name)
{
    return std::any_of(kernel.parameters.begin(), kernel.parameters.end(),
                       [&name](const auto &parameter) { return parameter.name == name; });
}

bool isNoise(const OssEvKernel &kernel)
{
    return hasParameter(kernel, "Space") && hasParameter(kernel, "Balance");
}

bool isTiles(const OssEvKernel &kernel)
{
    return hasParameter(kernel, "GapColor");
}

bool isFigure(const OssEvKernel &kernel)
{
    return kernel.outputIndex("Distance") >= 0 && kernel.inputIndex("UV") >= 0;
}

/// Those whose inputs need not be connected.
std::vector<const OssEvKernel *> kernelsThat(bool (*holds)(const OssEvKernel &))
{
    std::vector<const OssEvKernel *> found;
    for (const OssEvKernel &kernel : OssEvKernelLibrary::kernels()) {
        const bool alone = std::none_of(kernel.inputs.begin(), kernel.inputs.end(),
                                        [](const auto &input) { return input.required; });
        if (alone && holds(kernel))
            found.push_back(&kernel);
    }
    EXPECT_FALSE(found.empty());
    return found;
}

bool isAny(const OssEvKernel &kernel)
{
    return isNoise(kernel) || isTiles(kernel) || isFigure(kernel);
}

/// Coarse enough for small pictures.
OssEvParameters coarse(const OssEvKernel &kernel)
{
    OssEvParameters parameters;
    if (hasParameter(kernel, "Octaves"))
        parameters["Octaves"] = 2.0;
    if (isNoise(kernel))
        parameters["Scale"] = 4.0;
    return parameters;
}

void expectWithin(const Picture &picture, double low, double high, const std::string &what)
{
    for (const std::vector<float> &plane : picture.planes) {
        const auto outside = std::find_if(plane.begin(), plane.end(), [=](float value) {
            return !(double(value) >= low && double(value) <= high);
        });
        ASSERT_TRUE(outside == plane.end()) << what << ": " << *outside;
    }
}

/// All outputs, at defaults and at the ends of one parameter after the other.
void tryExtremes(const OssEvKernel &kernel)
{
    std::vector<OssEvParameters> sets{{}};
    for (const OssEvParameterDescription &parameter : kernel.parameters) {
        if (!parameter.choices.empty()) {
            for (std::size_t i = 0; i < parameter.choices.size(); ++i)
                sets.push_back({{parameter.name, std::int64_t(i)}});
        } else if (std::holds_alternative<double>(parameter.fallback)
                   || std::holds_alternative<std::int64_t>(parameter.fallback)) {
            sets.push_back({{parameter.name, parameter.minimum}});
            sets.push_back({{parameter.name, parameter.maximum}});
        }
    }
    for (const OssEvParameters &set : sets) {
        const std::string changed = set.empty() ? "" : set.begin()->first;
        for (const OssEvKernelOutput &output : kernel.outputs) {
            const Picture picture =
                KernelBench(kernel.name, set).output(output.name).patch(1047).run(128, 8);
            const bool wide = output.name == "Distance" || output.name == "Vector";
            const double limit = wide ? 1e4 : output.channels == 4 ? 2.0 : 1.0;
            expectWithin(picture, wide ? -limit : 0.0, limit,
                         kernel.name + "." + output.name + " " + changed);
        }
    }
}

TEST(ProceduralKernels, resultsAreFiniteAndInRangeWhateverIsSet)
{
    for (const OssEvKernel *kernel : kernelsThat(isAny))
        tryExtremes(*kernel);
}

TEST(ProceduralKernels, placesFarAwayAndBrokenDoNoHarm)
{
    const Picture far = pictureOf(128, 4, 3, [](int channel, int x, int y) {
        return (x - 64) * 1e30 * (channel + 1) + (x == y ? std::nan("") : 0.0);
    });
    for (const OssEvKernel *kernel : kernelsThat(isAny)) {
        const bool figure = isFigure(*kernel);
        KernelBench bench(kernel->name);
        bench.input(isNoise(*kernel) ? "Position" : "UV", far);
        const Picture picture = bench.run(128, 4);
        // What a NaN becomes is for the engine to say; none may spread to others.
        int broken = 0;
        for (float value : picture.planes[0])
            broken += std::isfinite(value) ? 0 : 1;
        EXPECT_LE(broken, figure ? 8 : 4) << kernel->name;
    }
}

/// Mean of each square of `times` texels.
Picture reduced(const Picture &from, int times)
{
    return pictureOf(from.width / times, from.height / times, from.channels,
                     [&](int channel, int x, int y) {
                         double sum = 0.0;
                         for (int i = 0; i < times * times; ++i)
                             sum += from.at(channel, x * times + i % times, y * times + i / times);
                         return sum / (times * times);
                     });
}

TEST(ProceduralKernels, thePictureIsTheSameAtEverySize)
{
    for (const OssEvKernel *kernel : kernelsThat(isAny)) {
        const Picture small = KernelBench(kernel->name, coarse(*kernel)).run(128, 128);
        const Picture large = reduced(KernelBench(kernel->name, coarse(*kernel)).run(384, 384), 3);
        EXPECT_LT(meanError(small, [&large](int x, int y) { return large.texel(x, y); }), 0.06)
            << kernel->name;
    }
}

/// Mean difference of texels of two columns, or of two rows.
double difference(const Picture &a, int from, const Picture &b, int to, bool rows)
{
    double sum = 0.0;
    for (int i = 0; i < a.width; ++i) {
        for (int k = 0; k < a.channels; ++k) {
            sum += rows ? std::abs(a.at(k, i, from) - b.at(k, i, to))
                        : std::abs(a.at(k, from, i) - b.at(k, to, i));
        }
    }
    return sum / a.width;
}

/// The seam counts as one if it is no worse than the worst that is seen inside.
void expectNoSeam(const Picture &a, const Picture &b, const std::string &what)
{
    for (const bool rows : {false, true}) {
        double worst = 0.0;
        for (int i = 0; i + 1 < a.width; ++i)
            worst = std::max(worst, difference(a, i, a, i + 1, rows));
        const double seam = difference(a, a.width - 1, b, 0, rows);
        EXPECT_LE(seam, worst * 1.2 + 1e-4) << what << (rows ? ", rows" : ", columns");
    }
}

TEST(ProceduralKernels, edgesOfAPatchMeet)
{
    const std::set<std::string> single{"spiral", "rays", "polygon", "star", "shape"};
    for (const OssEvKernel *kernel : kernelsThat(isAny)) {
        if (single.count(kernel->name) != 0)
            continue;
        const Picture picture = KernelBench(kernel->name, coarse(*kernel)).run(128, 128);
        expectNoSeam(picture, picture, kernel->name);
    }
}

TEST(ProceduralKernels, noiseThatDoesNotTileGoesOnOnTheNextPatch)
{
    for (const OssEvKernel *kernel : kernelsThat(isNoise)) {
        OssEvParameters parameters = coarse(*kernel);
        parameters["Tile"] = false;
        parameters["Scale"] = 3.3;
        const Picture a = KernelBench(kernel->name, parameters).patch(1001).run(128, 128);
        const Picture b = KernelBench(kernel->name, parameters).patch(1002).run(128, 128);
        double worst = 0.0;
        for (int i = 0; i + 1 < a.width; ++i)
            worst = std::max(worst, difference(a, i, a, i + 1, false));
        EXPECT_LE(difference(a, 127, b, 0, false), worst * 1.2 + 1e-4) << kernel->name;
        EXPECT_GT(meanError(a, [&b](int x, int y) { return b.texel(x, y); }), 1e-4)
            << kernel->name << " repeats";
    }
}

// The sphere's seam runs where u is 0 and 1: one meridian.
TEST(ProceduralKernels, noiseOnTheSphereHasNoSeam)
{
    const OssEvFrame frame{256, 128, 1001, 1.0};
    const auto map = OssEvSurfaceMap::make(OssEvShapes::sphere(), frame, nullptr);
    for (const OssEvKernel *kernel : kernelsThat(isNoise)) {
        KernelBench bench(kernel->name, coarse(*kernel));
        const Picture result = bench.surface(map).run(256, 128);
        double seam = 0.0;
        double worst = 0.0;
        for (int x = 0; x < 256; ++x) {
            double sum = 0.0;
            for (int y = 10; y < 118; ++y)
                sum += std::abs(result.at(0, x, y) - result.at(0, (x + 1) % 256, y));
            (x == 255 ? seam : worst) = std::max(x == 255 ? seam : worst, sum);
        }
        EXPECT_LE(seam, worst * 1.2) << kernel->name;
        EXPECT_GT(worst, 0.0) << kernel->name;
    }
}

TEST(ProceduralKernels, anotherSeedIsAnotherPicture)
{
    for (const OssEvKernel *kernel : kernelsThat(isAny)) {
        if (!hasParameter(*kernel, "Seed"))
            continue;
        OssEvParameters parameters = coarse(*kernel);
        parameters["SizeVariation"] = 1.0;
        const Picture first = KernelBench(kernel->name, parameters).run(128, 128);
        const Picture again = KernelBench(kernel->name, parameters).run(128, 128);
        parameters["Seed"] = 2.0;
        const Picture other = KernelBench(kernel->name, parameters).run(128, 128);
        EXPECT_EQ(first.planes, again.planes) << kernel->name;
        EXPECT_GT(meanError(first, [&other](int x, int y) { return other.texel(x, y); }), 1e-3)
            << kernel->name;
    }
}

TEST(ProceduralKernels, thereAreAsManyTilesAsAreAskedFor)
{
    const auto tilesOf = [](const std::string &name, OssEvParameters parameters) {
        parameters["Gap"] = 0.3;
        const Picture random = KernelBench(name, parameters).output("Random").run(384, 384);
        const Picture mask = KernelBench(name, parameters).output("Mask").run(384, 384);
        std::set<float> values;
        for (std::size_t i = 0; i < mask.planes[0].size(); ++i) {
            if (mask.planes[0][i] >= 1.0F)
                values.insert(random.planes[0][i]);
        }
        return values.size();
    };
    const OssEvParameters small{{"Columns", 4.0}, {"Rows", 6.0}};
    const std::vector<std::pair<std::string, std::size_t>> wanted{
        {"runningBond", 24U}, {"stackBond", 24U},       {"englishBond", 36U}, {"flemishBond", 48U},
        {"planks", 24U},      {"basketWeaveBond", 32U}, {"hexagons", 16U},    {"triangles", 32U},
        {"cobbles", 16U},     {"roofTiles", 24U},       {"knit", 24U}};
    for (const auto &[name, count] : wanted)
        EXPECT_EQ(tilesOf(name, small), count) << name;
    // 24 x 24 squares, of which a board takes three; along the diagonals half as many.
    EXPECT_EQ(tilesOf("herringbone", {{"Columns", 4.0}, {"Diagonal", false}}), 24U * 24U / 3U);
    EXPECT_EQ(tilesOf("herringbone", {{"Columns", 4.0}, {"Diagonal", true}}), 12U * 12U * 2U / 3U);
    EXPECT_EQ(tilesOf("plainWeave", small), 10U) << "threads";
    EXPECT_EQ(tilesOf("twillWeave", {{"Columns", 4.0}, {"Rows", 8.0}}), 12U) << "threads";
}

// A gap of g leaves (1 - g)^2 of a square, and of whatever else is round about a circle.
TEST(ProceduralKernels, gapsTakeTheirPartOfTiles)
{
    const auto covered = [](const std::string &name, const OssEvParameters &parameters) {
        const Picture mask = KernelBench(name, parameters).output("Mask").run(384, 384);
        double sum = 0.0;
        for (float value : mask.planes[0])
            sum += double(value);
        return sum / double(mask.planes[0].size());
    };
    const OssEvParameters square{{"Columns", 6.0}, {"Rows", 6.0}, {"Gap", 0.2}};
    EXPECT_NEAR(covered("stackBond", square), 0.64, 0.005);
    EXPECT_NEAR(covered("runningBond", square), 0.64, 0.005);
    EXPECT_NEAR(covered("hexagons", square), 0.64, 0.02);
    EXPECT_NEAR(covered("basketWeaveBond", {{"Columns", 6.0}, {"Ratio", 1.0}, {"Gap", 0.2}}), 0.64,
                0.005);
    EXPECT_NEAR(covered("herringbone", {{"Columns", 2.0}, {"Ratio", 2.0}, {"Gap", 0.2}}),
                0.8 * 1.8 / 2.0, 0.01);
}

} // namespace
