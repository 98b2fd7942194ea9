// Kernels below Kernels/Adjust, against the same done slowly in double precision.

#include "OssEvaluation/KernelBench.h"
#include "OssEvaluation/Kernels/Adjusted.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Width = AdjustedWidth;
constexpr int Height = AdjustedHeight;

double toDisplay(double x)
{
    const double size = std::abs(x);
    const double shown = size > 0.0031308 ? 1.055 * std::pow(size, 1.0 / 2.4) - 0.055
                                          : 12.92 * size;
    return std::copysign(shown, x);
}

double toLight(double x)
{
    const double size = std::abs(x);
    const double light = size > 0.04045 ? std::pow((size + 0.055) / 1.055, 2.4) : size / 12.92;
    return std::copysign(light, x);
}

Texel each(Texel texel, const std::function<double(double)> &change)
{
    for (std::size_t k = 0; k < 3; ++k)
        texel[k] = change(texel[k]);
    return texel;
}

/// A picture of one row of colours.
Picture colorsOf(const std::vector<Texel> &colors)
{
    return pictureOf(128, 1, 3, [&colors](int channel, int x, int) {
        return colors[std::size_t(x) % colors.size()][std::size_t(channel)];
    });
}

Texel changedColor(KernelBench bench, const Texel &color)
{
    const Picture input = colorsOf({color});
    return bench.input("Input", input).run(128, 1).texel(0, 0);
}

void expectColor(const Texel &color, const Texel &wanted, double tolerance = 1e-4)
{
    for (std::size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(color[k], wanted[k], tolerance) << "channel " << k;
}

TEST(AdjustKernels, scanRangeAndPosterize)
{
    for (const double position : {0.0, 0.3, 0.5, 1.0}) {
        const double low = (1.0 - position) * 1.4 - 0.4;
        expectAdjustment(
            "histogramScan", {{"Position", position}, {"Contrast", 0.6}},
            eachChannel([low](double x) { return std::clamp((x - low) / 0.4, 0.0, 1.0); }));
    }
    expectAdjustment("histogramScan", {{"Position", 0.5}, {"Contrast", 0.0}, {"Invert", true}},
                     eachChannel([](double x) { return std::clamp(1.0 - x, 0.0, 1.0); }));
    expectAdjustment("histogramRange", {{"Range", 0.4}, {"Position", 0.25}},
                     eachChannel([](double x) { return 0.15 + 0.4 * std::clamp(x, 0.0, 1.0); }));
    const auto step = [](double t) {
        const double q = std::clamp(t, 0.0, 1.0) * 3.0;
        const double rise = std::clamp((q - std::floor(q) - 0.5) / 0.5 + 0.5, 0.0, 1.0);
        return (std::floor(q) + rise) / 3.0;
    };
    const OssEvParameters four{{"Levels", 4.0}, {"Softness", 0.5}};
    expectAdjustment("posterize", four, eachChannel(step), {1});
    expectAdjustment("posterize", four,
                     eachChannel([step](double x) { return toLight(step(toDisplay(x))); }), {3, 4});
}

TEST(AdjustKernels, curvesOfChannelsComeBeforeTheOneOfAll)
{
    const std::string down = "0,1 1,0";
    const OssEvParameters parameters{{"All", std::string("0,0 1,0.5")}, {"Red", down}};
    expectAdjustment(
        "rgbCurves", parameters,
        [](Texel texel) {
            const Texel inside = each(texel, [](double x) { return std::clamp(x, 0.0, 1.0); });
            return Texel{0.5 - 0.5 * inside[0], 0.5 * inside[1], 0.5 * inside[2], texel[3]};
        },
        {3, 4});
    expectAdjustment("rgbCurves", parameters,
                     eachChannel([](double x) { return 0.5 * std::clamp(x, 0.0, 1.0); }), {1});
}

TEST(AdjustKernels, threshold)
{
    const Picture input = randomPicture(Width, Height, 1, 3);
    const Picture map = randomPicture(Width, Height, 1, 4);
    KernelBench bench("threshold", {{"Softness", 0.25}, {"Invert", true}});
    bench.input("Input", input);
    const auto wanted = [&input](int x, int y, double from) {
        return Texel{std::clamp((from - input.at(0, x, y)) / 0.25 + 0.5, 0.0, 1.0)};
    };
    expectPicture(bench.run(Width, Height), [&](int x, int y) { return wanted(x, y, 0.5); });
    bench.input("Threshold", map);
    expectPicture(bench.run(Width, Height),
                  [&](int x, int y) { return wanted(x, y, map.at(0, x, y)); });
}

TEST(AdjustKernels, hslTurnsGreysAndTints)
{
    const Texel red{0.5, 0.02, 0.02};
    expectColor(changedColor(KernelBench("hsl", {{"Hue", 120.0}}), red), {0.02, 0.5, 0.02});
    const Texel grey = changedColor(KernelBench("hsl", {{"Saturation", -1.0}}), red);
    EXPECT_NEAR(grey[0], grey[1], 1e-5);
    EXPECT_NEAR(toDisplay(grey[0]), 0.5 * (toDisplay(0.5) + toDisplay(0.02)), 1e-4);
    expectColor(changedColor(KernelBench("hsl", {{"Lightness", 1.0}}), red), {1, 1, 1});
    expectColor(changedColor(KernelBench("hsl", {{"Lightness", -1.0}}), red), {0, 0, 0});
    // Half of the way to the strongest blue of this lightness.
    const Texel blue = changedColor(KernelBench("hsl", {{"Colorize", true}, {"Hue", -120.0}}),
                                    {toLight(0.4), toLight(0.4), toLight(0.4)});
    expectColor(blue, {toLight(0.2), toLight(0.2), toLight(0.6)});
    expectColor(changedColor(KernelBench("hsl"), {3.0, 0.5, -0.1}), {3.0, 0.5, -0.1}, 1e-3);
}

TEST(AdjustKernels, tonemapCurves)
{
    const auto hable = [](double x) {
        return (x * (0.15 * x + 0.05) + 0.004) / (x * (0.15 * x + 0.5) + 0.06) - 0.02 / 0.30;
    };
    const auto steep = [](double x) {
        return x * (2.51 * x + 0.03) / (x * (2.43 * x + 0.59) + 0.14);
    };
    const std::vector<std::pair<const char *, std::function<double(double)>>> table{
        {"Reinhard",
         [](double x) {
             return x * (1.0 + x / 9.0) / (1.0 + x);
         }},
        {"Filmic",
         [&](double x) {
             return hable(x) / hable(3.0);
         }},
        {"High Contrast", [&](double x) {
             return steep(x) / steep(3.0);
         }}};
    for (const auto &[name, curve] : table) {
        const OssEvParameters parameters{
            {"Curve", std::string(name)}, {"White", 3.0}, {"Exposure", 1.0}};
        expectAdjustment("tonemap", parameters, eachChannel([&curve = curve](double x) {
                             return std::clamp(curve(std::max(2.0 * x, 0.0)), 0.0, 1.0);
                         }));
    }
    const Texel kept = changedColor(KernelBench("tonemap", {{"KeepHue", true}}), {1.0, 0.5, 0.0});
    EXPECT_NEAR(kept[1] * 2.0, kept[0], 1e-4) << "as much redder than green as before";
}

TEST(AdjustKernels, colorDecisionList)
{
    const OssEvParameters grade{{"SlopeRed", 1.3},
                                {"OffsetGreen", 0.1},
                                {"PowerBlue", 2.2},
                                {"Saturation", 0.4},
                                {"Clamp", false}};
    expectAdjustment("ascCdl", grade,
                     [](Texel texel) {
                         texel[0] *= 1.3;
                         texel[1] += 0.1;
                         texel[2] = texel[2] > 0.0 ? std::pow(texel[2], 2.2) : texel[2];
                         const double grey = luminance(texel);
                         return each(texel, [grey](double x) { return mix(grey, x, 0.4); });
                     },
                     {3, 4});
    expectAdjustment("ascCdl", {}, eachChannel([](double x) { return std::clamp(x, 0.0, 1.0); }));
}

TEST(AdjustKernels, contrastOfLuminosityKeepsEndsAndHue)
{
    KernelBench bench("luminosityContrast", {{"Shadows", -0.5}, {"Midtones", 1.0}});
    const Texel changed = changedColor(bench, {0.4, 0.2, 0.1});
    EXPECT_NEAR(changed[0] / changed[2], 4.0, 1e-3);
    EXPECT_GT(std::abs(changed[0] - 0.4), 0.02);
    for (const double end : {0.0, 1.0, 5.0})
        expectColor(changedColor(bench, {end, end, end}), {end, end, end}, 1e-3);
    expectAdjustment("luminosityContrast", {{"Midtones", 0.0}},
                     eachChannel([](double x) { return x; }));
}

TEST(AdjustKernels, replacedColorsKeepTheirShade)
{
    const OssEvParameters parameters{{"From", OssEvColor{0.8F, 0.1F, 0.1F, 1.0F}},
                                     {"To", OssEvColor{0.1F, 0.2F, 0.9F, 1.0F}},
                                     {"Tolerance", 0.05},
                                     {"Softness", 0.05}};
    const Texel from{0.8, 0.1, 0.1};
    expectColor(changedColor(KernelBench("replaceColor", parameters), from), {0.1, 0.2, 0.9}, 1e-3);
    const Texel shaded = changedColor(KernelBench("replaceColor", parameters),
                                      {0.76, 0.095, 0.095});
    EXPECT_NEAR(shaded[2] / shaded[0], 9.0, 1e-2);
    EXPECT_NEAR(shaded[2], 0.9 * 0.95, 1e-3);
    const Texel other{0.1, 0.7, 0.2};
    expectColor(changedColor(KernelBench("replaceColor", parameters), other), other, 1e-5);
}

TEST(AdjustKernels, whiteBalanceMakesTheLightNeutral)
{
    const Texel color{0.3, 0.5, 0.2};
    expectColor(changedColor(KernelBench("whiteBalance"), color), color);
    // Candles are red and the sky is blue.
    const Texel warm = changedColor(KernelBench("whiteBalance", {{"Temperature", 3000.0}}),
                                    {1, 1, 1});
    EXPECT_GT(warm[2], 1.5);
    EXPECT_LT(warm[0], 0.9);
    EXPECT_NEAR(luminance(warm), 1.0, 1e-3);
    const Texel cold = changedColor(KernelBench("whiteBalance", {{"Temperature", 12000.0}}),
                                    {1, 1, 1});
    EXPECT_GT(cold[0], cold[2] + 0.2);
    const Texel pink = changedColor(KernelBench("whiteBalance", {{"Tint", 1.0}}), {1, 1, 1});
    EXPECT_GT(pink[0], pink[1] * 1.3);
}

TEST(AdjustKernels, colorSpacesThereAndBack)
{
    const std::vector<std::string> spaces{"Linear BT.709", "sRGB", "Linear Display P3",
                                          "ACEScg",        "XYZ",  "Oklab"};
    OssEvWorkingSpace film;
    film.isBt709 = false;
    film.toBt709 = {1.6F, -0.5F, -0.1F, -0.1F, 1.2F, -0.1F, 0.0F, -0.2F, 1.2F};
    film.fromBt709 = {0.6425339F, 0.2805430F, 0.0769231F, 0.0542986F, 0.8687783F,
                      0.0769231F, 0.0090498F, 0.1447964F, 0.8461538F};
    const Texel color{0.3, 0.5, 0.2};
    for (const std::string &space : spaces) {
        SCOPED_TRACE(space);
        KernelBench there("colorSpace", {{"From", std::string("Working")}, {"To", space}});
        KernelBench back("colorSpace", {{"From", space}, {"To", std::string("Working")}});
        expectColor(changedColor(back, changedColor(there, color)), color, 1e-4);
        const Texel film709 = changedColor(there.working(film), color);
        EXPECT_GT(std::abs(film709[0]
                           - changedColor(KernelBench("colorSpace", {{"To", space}}), color)[0]),
                  1e-3);
    }
    const auto white = [](const char *space) {
        return changedColor(KernelBench("colorSpace", {{"To", std::string(space)}}), {1, 1, 1});
    };
    expectColor(white("Oklab"), {1, 0, 0}, 1e-3);
    expectColor(white("ACEScg"), {1, 1, 1}, 1e-3);
    expectColor(white("XYZ"), {0.9505, 1.0, 1.089}, 1e-3);
}

TEST(AdjustKernels, gradientsFoldReverseAndTakeAChannel)
{
    const Picture input = pictureOf(Width, Height, 4, [](int channel, int x, int) {
        return channel == 0 ? x / 255.0 : channel == 3 ? 1.0 : 0.25;
    });
    const auto run = [&input](OssEvParameters parameters) {
        parameters["Interpolation"] = std::string("Linear");
        parameters["Source"] = std::string("Red");
        return KernelBench("gradientMap", parameters).input("Input", input).run(Width, Height);
    };
    expectPicture(run({{"Reverse", true}}), [](int x, int) {
        const double value = 1.0 - x / 255.0;
        return Texel{value, value, value, 1.0};
    });
    expectPicture(
        run({{"Repeats", 4.0}, {"Mirror", true}}),
        [](int x, int) {
            const double turn = std::fmod(4.0 * x / 255.0, 2.0);
            const double value = turn < 1.0 ? turn : 2.0 - turn;
            return Texel{value, value, value, 1.0};
        },
        1e-3);
}

/// The statistics are those of the picture halved to 256 texels, so small ones are measured as they are.
TEST(AdjustKernels, measuredKernelsStretchAndSpread)
{
    const Picture input = pictureOf(256, 256, 1, [](int, int x, int y) {
        const double t = (x + 256.0 * y) / 65535.0;
        return 0.2 + 0.4 * t * t;
    });
    const auto part = [](int x, int y) {
        return (x + 256.0 * y) / 65535.0;
    };
    expectPicture(
        KernelBench("normalize", {{"Low", -1.0}, {"High", 2.0}})
            .input("Input", input)
            .run(256, 256),
        [&](int x, int y) { return Texel{3.0 * part(x, y) * part(x, y) - 1.0}; }, 1e-3);
    expectPicture(
        KernelBench("equalize").input("Input", input).run(256, 256),
        [&](int x, int y) { return Texel{part(x, y)}; }, 1e-3);
    const double low = 0.1 * 0.1;
    const double high = 0.9 * 0.9;
    expectPicture(
        KernelBench("autoLevels", {{"Clip", 0.1}}).input("Input", input).run(256, 256),
        [&](int x, int y) {
            return Texel{std::clamp((part(x, y) * part(x, y) - low) / (high - low), 0.0, 1.0)};
        },
        1e-3);
    const Picture middle =
        KernelBench("autoLevels", {{"Midtones", 1.0}}).input("Input", input).run(256, 256);
    EXPECT_NEAR(middle.at(0, 128, 127), 0.5, 2e-3) << "the median";
    const Picture flat = pictureOf(256, 256, 3, [](int, int, int) { return 0.3; });
    for (const char *kernel : {"normalize", "equalize", "autoLevels", "colorMatch"}) {
        const Picture result = KernelBench(kernel).input("Input", flat).run(256, 256);
        EXPECT_TRUE(std::isfinite(result.at(0, 5, 5))) << kernel << " of one value";
    }
}

TEST(AdjustKernels, matchedColorsHaveTheOthersMeansAndShapes)
{
    const Picture input = randomPicture(256, 256, 3, 7, 0.3, 0.6);
    const Picture other = pictureOf(256, 256, 3, [](int channel, int x, int y) {
        return 0.2 * channel + 0.3 * std::pow((x + 256.0 * y) / 65535.0, channel + 1.0);
    });
    for (const char *match : {"Mean and Spread", "Histogram"}) {
        const Picture result = KernelBench("colorMatch", {{"Match", std::string(match)}})
                                   .input("Input", input)
                                   .input("Reference", other)
                                   .run(256, 256);
        for (int channel = 0; channel < 3; ++channel) {
            double sum = 0.0;
            double wanted = 0.0;
            for (int i = 0; i < 256 * 256; ++i) {
                sum += result.at(channel, i % 256, i / 256) / 65536.0;
                wanted += other.at(channel, i % 256, i / 256) / 65536.0;
            }
            EXPECT_NEAR(sum, wanted, 2e-3) << match << ", channel " << channel;
        }
    }
}

} // namespace
