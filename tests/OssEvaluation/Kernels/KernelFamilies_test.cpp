// What holds for every kernel of the families Adjust, Space, Filter, Height and Logic, those of Mesh that
// make pictures without one, and the first ones of each kind: neither the size of the
// patch nor its tiles nor its number show, and no attribute brings what is no number.

#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/KernelBench.h"

#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace {

struct Row
{
    const char *kernel;
    /// Mean difference of a picture at 256 texels from the same at 512; steps and finest detail differ.
    double difference;
};

constexpr Row Rows[] = {{"hsl", 0.002},
                        {"rgbCurves", 0.002},
                        {"gradientMap", 0.004},
                        {"histogramScan", 0.006},
                        {"histogramRange", 0.002},
                        {"posterize", 0.02},
                        {"threshold", 0.01},
                        {"replaceColor", 0.004},
                        {"whiteBalance", 0.003},
                        {"colorSpace", 0.003},
                        {"tonemap", 0.002},
                        {"luminosityContrast", 0.003},
                        {"ascCdl", 0.002},
                        {"autoLevels", 0.006},
                        {"equalize", 0.006},
                        {"normalize", 0.006},
                        {"colorMatch", 0.006},
                        {"mirror", 0.004},
                        {"kaleidoscope", 0.006},
                        {"polar", 0.01},
                        {"swirl", 0.006},
                        {"bulge", 0.005},
                        {"perspective", 0.006},
                        {"crop", 0.004},
                        {"tileOffset", 0.004},
                        {"rotateByMap", 0.006},
                        {"vectorWarp", 0.006},
                        {"multiWarp", 0.006},
                        {"uvFromMap", 0.004},
                        {"textureBombing", 0.01},
                        {"hexTiling", 0.01},
                        {"makeTile", 0.006},
                        {"directionalBlur", 0.006},
                        {"anisotropicBlur", 0.006},
                        {"radialBlur", 0.006},
                        {"slopeBlur", 0.01},
                        {"bilateral", 0.008},
                        {"median", 0.008},
                        {"kuwahara", 0.012},
                        {"highPass", 0.006},
                        {"unsharpMask", 0.02},
                        {"emboss", 0.02},
                        {"growBright", 0.015},
                        {"growDark", 0.015},
                        {"distance", 0.01},
                        {"bevel", 0.01},
                        {"outline", 0.01},
                        {"pixelate", 0.006},
                        {"heightBlend", 0.006},
                        {"normalCombine", 0.006},
                        {"flipNormal", 0.004},
                        {"rotateNormal", 0.004},
                        {"slopeFromHeight", 0.03},
                        {"curvatureFromHeight", 0.006},
                        {"cavity", 0.01},
                        {"occlusionFromHeight", 0.02},
                        {"normalToHeight", 0.02},
                        {"sharpenNormal", 0.01},
                        {"thermalErosion", 0.01},
                        {"hydraulicErosion", 0.015},
                        {"expression", 0.004},
                        {"compare", 0.02},
                        {"blendByMask", 0.006},
                        {"switch", 0.004},
                        {"switchByName", 0.004},
                        {"decal", 0.01},
                        {"colorIdMask", 0.02},
                        {"edgeWear", 0.05},
                        {"dirt", 0.05},
                        {"blur", 0.004},
                        {"sharpen", 0.02},
                        {"edgeDetect", 0.02},
                        {"heightToNormal", 0.02},
                        {"transform", 0.006},
                        {"warp", 0.006},
                        {"tiled", 0.006},
                        {"merge", 0.004},
                        {"levels", 0.004},
                        {"curve", 0.004},
                        // What is taken for a pixel depends on the size.
                        {"upscale", 1.0}};

const OssEvKernel &kernelOf(const Row &row)
{
    const OssEvKernel *kernel = OssEvKernelLibrary::find(row.kernel);
    if (kernel == nullptr)
        throw std::runtime_error(row.kernel);
    return *kernel;
}

int channelsOf(const OssEvKernelInput &input)
{
    return input.channels == 0 ? 4 : input.channels;
}

/// Waves with an edge, the same at any size; every input has others. Made once: they are asked for often.
const Picture &wavesOf(int size, int channels, int input)
{
    static std::map<std::array<int, 3>, Picture> made;
    Picture &picture = made[{size, channels, input}];
    if (picture.channels == channels)
        return picture;
    picture = pictureOf(size, size, channels, [=](int channel, int x, int y) {
        if (channel == 3)
            return 1.0;
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const double wave = std::sin((9.0 + channel) * u + input) * std::cos(13.0 * v - channel);
        const double edge = std::hypot(u - 0.45, v - 0.55) < 0.2 ? 0.25 : 0.0;
        return 0.4 + 0.25 * wave + edge;
    });
    return picture;
}

/// Every input filled.
Picture run(const Row &row, const OssEvParameters &parameters, int size, int patch = 1001,
            double nothing = 0.0)
{
    KernelBench bench(row.kernel, parameters);
    int number = 0;
    for (const OssEvKernelInput &input : kernelOf(row).inputs) {
        const int channels = channelsOf(input);
        const auto even = [nothing](int, int, int) {
            return nothing;
        };
        bench.input(input.name, nothing == 0.0 ? wavesOf(size, channels, number)
                                               : pictureOf(size, size, channels, even));
        ++number;
    }
    return bench.patch(patch).run(size, size);
}

void expectFinite(const Picture &picture, const std::string &what)
{
    for (const std::vector<float> &plane : picture.planes) {
        for (const float value : plane)
            ASSERT_TRUE(std::isfinite(value)) << what;
    }
}

TEST(KernelFamilies, theSizeOfThePatchDoesNotShow)
{
    constexpr int Small = 256;
    constexpr int Times = 2;
    for (const Row &row : Rows) {
        const Picture small = run(row, {}, Small);
        const Picture large = run(row, {}, Small * Times);
        const double difference = meanError(small, [&large](int x, int y) {
            Texel mean{};
            for (int i = 0; i < Times * Times; ++i) {
                const Texel texel = large.texel(x * Times + i % Times, y * Times + i / Times);
                for (std::size_t k = 0; k < 4; ++k)
                    mean[k] += texel[k] / (Times * Times);
            }
            return mean;
        });
        EXPECT_LE(difference, row.difference) << row.kernel;
    }
}

TEST(KernelFamilies, everyPatchIsComputedAlike)
{
    for (const Row &row : Rows) {
        const Picture first = run(row, {}, 128, 1001);
        const Picture other = run(row, {}, 128, 1024);
        EXPECT_EQ(first.planes, other.planes) << row.kernel;
    }
}

// Each attribute at both of its ends, over pictures with edges and over what is all one value.
TEST(KernelFamilies, theEndsOfAttributesBringNumbers)
{
    for (const Row &row : Rows) {
        std::vector<OssEvParameters> cases{{}};
        for (const OssEvParameterDescription &parameter : kernelOf(row).parameters) {
            if (std::holds_alternative<OssEvVector2>(parameter.fallback)) {
                cases.push_back({{parameter.name, OssEvVector2{0.0, 0.0}}});
                cases.push_back({{parameter.name, OssEvVector2{-7.0, 1e6}}});
            }
            if (!(parameter.minimum < parameter.maximum))
                continue;
            cases.push_back({{parameter.name, parameter.minimum}});
            cases.push_back({{parameter.name, parameter.maximum}});
        }
        for (const OssEvParameters &parameters : cases) {
            const std::string what = std::string(row.kernel) + ", "
                                     + (parameters.empty() ? "" : parameters.begin()->first);
            expectFinite(run(row, parameters, 128), what);
        }
        for (const double value : {-1.0, 1e-30, 60000.0})
            expectFinite(run(row, {}, 128, 1001, value), std::string(row.kernel) + " of one value");
    }
}

/// Through the engine, where a part of the patch is asked for.
class KernelTiles : public EngineFixture
{};

TEST_F(KernelTiles, aTileByItselfIsThatOfTheWhole)
{
    constexpr int Tile = OssEvTile::Size;
    for (const Row &row : Rows) {
        TestNode node{"Node", row.kernel};
        for (const OssEvKernelInput &input : kernelOf(row).inputs)
            node.inputs.emplace_back(input.name, "Image");
        OssEvRequest request;
        request.target = target(graphOf({{"Image", "image", file("wave")}, node}), "Node", 640);
        Collected whole;
        engine->wait(start(request, &whole));
        // No tile of what was computed before is to be found by the other engine.
        engine = std::make_unique<OssEvEngine>(OssEvEngine::Options{std::size_t(256) << 20, 2});
        request.region = {3 * Tile, Tile, Tile, Tile};
        Collected part;
        engine->wait(start(request, &part));
        ASSERT_TRUE(whole.outcome.ok() && part.outcome.ok()) << row.kernel << whole.outcome.error;
        for (int i = 0; i < Tile; i += 5) {
            for (int k = 0; k < part.channels(); ++k) {
                ASSERT_EQ(part.texel(k, 3 * Tile + i, Tile + 7),
                          whole.texel(k, 3 * Tile + i, Tile + 7))
                    << row.kernel;
                ASSERT_EQ(part.texel(k, 3 * Tile + 3, Tile + i),
                          whole.texel(k, 3 * Tile + 3, Tile + i))
                    << row.kernel;
            }
        }
    }
}

} // namespace
