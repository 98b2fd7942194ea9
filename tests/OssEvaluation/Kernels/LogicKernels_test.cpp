// Switches, comparing, chance by patches, against plain formulas.

#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/KernelBench.h"

#include <cmath>
#include <set>
#include <string>

namespace {

constexpr int Size = 128;

using Logic = EngineFixture;

TEST_F(Logic, onlyWhatASwitchShowsIsComputedAndAsItComes)
{
    std::vector<TestNode> nodes{{"Scalar", "constant", {{"Value", 3.5}}},
                                {"Noise", "perlinNoise"},
                                {"Image", "image", file("wave")},
                                {"Switch", "switch", {{"Number", std::int64_t(2)}}}};
    nodes.back().inputs = {{"Input 1", "Image"}, {"Input 2", "Noise"}, {"Input 3", "Scalar"}};
    const Collected noise = evaluate(graphOf(nodes), "Switch", 256);
    ASSERT_TRUE(noise.outcome.ok()) << noise.outcome.error;
    EXPECT_EQ(noise.channels(), 1);
    EXPECT_EQ(images->reads(), 0) << "what is not shown is not read";
    expectNear(noise, evaluate(graphOf(nodes), "Noise", 256), 256, 0.0);

    nodes.back() = {"Switch",
                    "switchByName",
                    {{"Name", std::string("hard")}, {"Names", std::string("soft ,  hard")}},
                    {{"Input 1", "Image"}, {"Input 2", "Scalar"}}};
    const Collected scalar = evaluate(graphOf(nodes), "Switch", 256);
    EXPECT_EQ(scalar.texel(0, 9, 9), 3.5F);
    nodes.back().parameters["Name"] = std::string("harder");
    const Collected refused = evaluate(graphOf(nodes), "Switch", 256);
    EXPECT_EQ(refused.outcome.error, "\"Switch\": none of its inputs is named \"harder\"");
    nodes.back() = {"Switch", "switch", {{"Number", std::int64_t(7)}}, {{"Input 1", "Image"}}};
    const Collected nothing = evaluate(graphOf(nodes), "Switch", 256);
    EXPECT_TRUE(nothing.outcome.ok());
    EXPECT_EQ(nothing.texel(3, 5, 5), 0.0F);
}

TEST(LogicKernels, compareAndBlend)
{
    const Picture a = randomPicture(Size, Size, 1, 1, -1.0, 1.0);
    const Picture b = randomPicture(Size, Size, 1, 2, -1.0, 1.0);
    const Picture yes = randomPicture(Size, Size, 4, 3);
    const Picture no = randomPicture(Size, Size, 4, 4);
    const auto soft = [](double t, double width) {
        const double s = std::min(std::max(t / width + 0.5, 0.0), 1.0);
        return s * s * (3.0 - 2.0 * s);
    };
    const std::array<double (*)(double), 6> wanted{
        [](double d) { return double(d > 0.0); },
        [](double d) { return double(d >= 0.0); },
        [](double d) { return double(d < 0.0); },
        [](double d) { return double(d <= 0.0); },
        [](double d) { return double(std::abs(d) <= 0.25); },
        [](double d) {
            return double(std::abs(d) > 0.25);
        }};
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        KernelBench bench("compare", {{"Operation", std::int64_t(i)}, {"Tolerance", 0.25}});
        bench.input("A", a).input("B", b).input("True", yes).input("False", no);
        expectPicture(bench.run(Size, Size), [&](int x, int y) {
            const double t = wanted[i](double(float(a.at(0, x, y)) - float(b.at(0, x, y))));
            Texel texel{};
            for (int k = 0; k < 4; ++k)
                texel[std::size_t(k)] = t > 0.5 ? yes.at(k, x, y) : no.at(k, x, y);
            return texel;
        });
    }
    KernelBench gentle("compare", {{"Softness", 0.5}});
    expectPicture(gentle.input("A", a).input("B", b).output("Mask").run(Size, Size),
                  [&](int x, int y) { return Texel{soft(a.at(0, x, y) - b.at(0, x, y), 0.5)}; });
    const Picture mask = randomPicture(Size, Size, 1, 5);
    KernelBench blend("blendByMask", {{"Balance", 0.6}, {"Contrast", 0.75}, {"Invert", true}});
    blend.input("A", yes).input("B", no).input("Mask", mask);
    expectPicture(blend.run(Size, Size), [&](int x, int y) {
        const double level = (mask.at(0, x, y) - 0.4) * 4.0 + 0.5;
        const double t = 1.0 - std::min(std::max(level, 0.0), 1.0);
        Texel texel{};
        for (int k = 0; k < 4; ++k)
            texel[std::size_t(k)] = yes.at(k, x, y) + (no.at(k, x, y) - yes.at(k, x, y)) * t;
        return texel;
    });
}

double first(KernelBench &&bench, int patch)
{
    return bench.patch(patch).run(Size, 1).at(0, 0, 0);
}

TEST(LogicKernels, eachPatchDrawsItsOwnNumbers)
{
    std::set<double> randoms;
    std::set<double> seeds;
    for (int patch = 1001; patch < 1041; ++patch) {
        KernelBench varies("patchVariation");
        varies.output("Random");
        const double random = first(std::move(varies), patch);
        EXPECT_TRUE(random >= 0.0 && random < 1.0);
        randoms.insert(random);
        seeds.insert(first(KernelBench("seed", {{"PerPatch", true}}), patch));
        const double whole = first(
            KernelBench("seed",
                        {{"PerPatch", true}, {"Whole", true}, {"Minimum", 2.0}, {"Maximum", 4.0}}),
            patch);
        EXPECT_TRUE(whole == 2.0 || whole == 3.0 || whole == 4.0) << whole;
    }
    EXPECT_EQ(randoms.size(), 40U);
    EXPECT_EQ(seeds.size(), 40U);
    EXPECT_EQ(first(KernelBench("seed"), 1001), first(KernelBench("seed"), 1017));
    EXPECT_NE(first(KernelBench("seed"), 1001),
              first(KernelBench("seed", {{"Index", std::int64_t(1)}}), 1001));
}

// Turning hues about the gray axis keeps grays, and the sum of the channels.
TEST(LogicKernels, patchesVaryColorsAndLeaveAlphaAlone)
{
    const Picture input = randomPicture(Size, Size, 4, 7, 0.3, 0.6);
    const OssEvParameters onlyHue{
        {"Hue", 0.1}, {"Saturation", 0.0}, {"Brightness", 0.0}, {"Seed", std::int64_t(5)}};
    const Picture turned =
        KernelBench("patchVariation", onlyHue).input("Input", input).run(Size, Size);
    double moved = 0.0;
    for (int i = 0; i < Size; ++i) {
        EXPECT_EQ(turned.at(3, i, i), input.at(3, i, i));
        double sum = 0.0;
        for (int k = 0; k < 3; ++k) {
            sum += turned.at(k, i, i) - input.at(k, i, i);
            moved += std::abs(turned.at(k, i, i) - input.at(k, i, i));
        }
        EXPECT_NEAR(sum, 0.0, 1e-5);
    }
    EXPECT_GT(moved, 0.5);
    const OssEvParameters onlyBright{{"Hue", 0.0}, {"Saturation", 0.0}, {"Brightness", 1.0}};
    const Picture bright =
        KernelBench("patchVariation", onlyBright).input("Input", input).run(Size, Size);
    const double factor = bright.at(1, 3, 3) / input.at(1, 3, 3);
    EXPECT_TRUE(factor > 0.5 && factor < 2.0 && std::abs(factor - 1.0) > 1e-3) << factor;
    expectPicture(bright, [&](int x, int y) {
        return Texel{input.at(0, x, y) * factor, input.at(1, x, y) * factor,
                     input.at(2, x, y) * factor, input.at(3, x, y)};
    });
}

// Whatever is done to the place, every texel of the input is there once, and neighbours stay neighbours.
TEST(LogicKernels, anOffsetOnlyMovesTexels)
{
    const Picture input = pictureOf(Size, Size, 1, [](int, int x, int y) { return x + Size * y; });
    std::set<double> corners;
    for (int patch = 1001; patch < 1013; ++patch) {
        KernelBench bench("patchOffset", {{"Mirror", true}});
        const Picture moved = bench.input("Input", input).patch(patch).run(Size, Size);
        std::set<float> values(moved.planes[0].begin(), moved.planes[0].end());
        EXPECT_EQ(values.size(), std::size_t(Size) * Size);
        const int here = int(moved.at(0, 40, 40));
        const int next = int(moved.at(0, 41, 40));
        const int columns = (next % Size - here % Size + Size) % Size;
        const int lines = (next / Size - here / Size + Size) % Size;
        EXPECT_TRUE((columns == 0 && (lines == 1 || lines == Size - 1))
                    || (lines == 0 && (columns == 1 || columns == Size - 1)));
        corners.insert(moved.at(0, 0, 0));
    }
    EXPECT_EQ(corners.size(), 12U);
}

TEST(LogicKernels, listsOfPatchesAreReadOrRefused)
{
    const OssEvKernel &mask = *OssEvKernelLibrary::find("patchMask");
    const auto value = [](const char *list, int patch) {
        return first(KernelBench("patchMask", {{"Patches", std::string(list)}}), patch);
    };
    EXPECT_EQ(value("1001 - 1003 , 1011", 1002), 1.0);
    EXPECT_EQ(value("1001 - 1003 , 1011", 1011), 1.0);
    EXPECT_EQ(value("1001 - 1003 , 1011", 1004), 0.0);
    EXPECT_EQ(value("", 1001), 0.0);
    OssEvParameters complete;
    for (const char *wrong : {"1001-", "1000", "10000", "one", "1001 1002", "1001:2", "-1001",
                              "99999999999999999999"}) {
        EXPECT_FALSE(mask.normalise({{"Patches", std::string(wrong)}}, &complete)) << wrong;
    }
    const OssEvKernel &each = *OssEvKernelLibrary::find("forEachPatch");
    for (const char *wrong : {"1001", "1001:0", "1001:9", "1001-1003:x", "1001:2:3"})
        EXPECT_FALSE(each.normalise({{"List", std::string(wrong)}}, &complete)) << wrong;

    const auto shown = [](const OssEvParameters &parameters, int patch) {
        KernelBench bench("forEachPatch", parameters);
        for (const int i : {1, 4, 6}) {
            bench.input("Input " + std::to_string(i),
                        pictureOf(Size, 1, 4, [i](int, int, int) { return i; }));
        }
        return bench.patch(patch).run(Size, 1).at(0, 0, 0);
    };
    EXPECT_EQ(shown({}, 1001), 1.0);
    EXPECT_EQ(shown({}, 1003), 6.0);
    EXPECT_EQ(shown({}, 1004), 1.0) << "only what is connected takes turns";
    const OssEvParameters list{{"Order", std::string("List")},
                               {"List", std::string("1001-1004:4, 1011:6")}};
    EXPECT_EQ(shown(list, 1003), 4.0);
    EXPECT_EQ(shown(list, 1011), 6.0);
    std::set<double> drawn;
    for (int patch = 1001; patch < 1031; ++patch)
        drawn.insert(shown({{"Order", std::string("By Chance")}}, patch));
    EXPECT_EQ(drawn, (std::set<double>{1.0, 4.0, 6.0}));
}

} // namespace
