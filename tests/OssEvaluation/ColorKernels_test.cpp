// Kernels that change colours, against the same done slowly in double precision.

#include "OssEvaluation/KernelBench.h"
#include "OssEvaluation/Kernels/Adjusted.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Width = AdjustedWidth;
constexpr int Height = AdjustedHeight;

TEST(ColorKernels, levels)
{
    expectAdjustment(
        "levels",
        {{"InLow", 0.1}, {"InHigh", 0.8}, {"Gamma", 1.7}, {"OutLow", 0.05}, {"OutHigh", 0.9}},
        eachChannel([](double x) {
            const double t = std::clamp((x - 0.1) / 0.7, 0.0, 1.0);
            return 0.05 + 0.85 * std::pow(t, 1.0 / 1.7);
        }));
    expectAdjustment("levels", {{"InLow", 0.9}, {"InHigh", 0.2}},
                     eachChannel([](double x) { return std::clamp((x - 0.9) / -0.7, 0.0, 1.0); }));
    expectAdjustment("levels", {{"InLow", 0.5}, {"InHigh", 0.5}},
                     eachChannel([](double x) { return x > 0.5 ? 1.0 : 0.0; }));
}

TEST(ColorKernels, gammaClampInvert)
{
    expectAdjustment("gamma", {{"Gamma", 2.2}},
                     eachChannel([](double x) { return x > 0.0 ? std::pow(x, 1.0 / 2.2) : 0.0; }));
    expectAdjustment("clamp", {{"Low", 0.25}, {"High", 0.75}},
                     eachChannel([](double x) { return std::clamp(x, 0.25, 0.75); }));
    expectAdjustment("invert", {}, eachChannel([](double x) { return 1.0 - x; }));
}

TEST(ColorKernels, invertTakesAlphaAlongWhenAsked)
{
    const Picture input = randomPicture(Width, Height, 4, 9);
    const Picture result =
        KernelBench("invert", {{"Alpha", true}}).input("Input", input).run(Width, Height);
    expectPicture(result, [&input](int x, int y) {
        Texel texel = input.texel(x, y);
        const double alpha = texel[3] > 0.0 ? texel[3] : 1.0;
        for (std::size_t k = 0; k < 3; ++k)
            texel[k] = (1.0 - texel[k] / alpha) * (1.0 - texel[3]);
        texel[3] = 1.0 - texel[3];
        return texel;
    });
}

TEST(ColorKernels, brightnessContrastSaturation)
{
    const double slope = std::tan(1.3 * std::acos(-1.0) / 4.0);
    const auto contrast = [slope](double x) {
        return (x - 0.5) * slope + 0.5 + 0.1;
    };
    const OssEvParameters parameters{{"Brightness", 0.1}, {"Contrast", 0.3}, {"Saturation", 1.6}};
    const auto run = [&parameters](const Picture &input) {
        return KernelBench("brightnessContrast", parameters)
            .input("Input", input)
            .run(Width, Height);
    };
    const Picture input = randomPicture(Width, Height, 4, 2);
    expectPicture(run(input), adjusted(input, nullptr, [&contrast](Texel texel) {
                      for (std::size_t k = 0; k < 3; ++k)
                          texel[k] = contrast(texel[k]);
                      const double grey = luminance(texel);
                      for (std::size_t k = 0; k < 3; ++k)
                          texel[k] = mix(grey, texel[k], 1.6);
                      return texel;
                  }));
    const Picture grey = randomPicture(Width, Height, 1, 2);
    expectPicture(run(grey), adjusted(grey, nullptr, eachChannel(contrast)));
}

// Hue in sixths of a turn.
Texel toHsv(const Texel &c)
{
    const double high = std::max({c[0], c[1], c[2]});
    const double range = high - std::min({c[0], c[1], c[2]});
    double hue = 0.0;
    if (range > 1e-20) {
        if (high == c[0])
            hue = (c[1] - c[2]) / range;
        else if (high == c[1])
            hue = 2.0 + (c[2] - c[0]) / range;
        else
            hue = 4.0 + (c[0] - c[1]) / range;
    }
    return {hue, high > 0.0 ? range / high : 0.0, high, c[3]};
}

Texel fromHsv(const Texel &hsv)
{
    const double hue = hsv[0] - 6.0 * std::floor(hsv[0] / 6.0);
    const auto channel = [&](double n) {
        const double k = std::fmod(n + hue, 6.0);
        return hsv[2] - hsv[2] * hsv[1] * std::clamp(std::min(k, 4.0 - k), 0.0, 1.0);
    };
    return {channel(5), channel(3), channel(1), hsv[3]};
}

TEST(ColorKernels, hueShift)
{
    for (const double degrees : {0.0, 75.0, -160.0}) {
        const Picture input = randomPicture(Width, Height, 4, 4, 0.05, 1.2);
        const OssEvParameters parameters{{"Hue", degrees}, {"Saturation", 0.7}, {"Value", 1.2}};
        SCOPED_TRACE(degrees);
        expectPicture(KernelBench("hueShift", parameters).input("Input", input).run(Width, Height),
                      adjusted(input, nullptr, [degrees](const Texel &texel) {
                          Texel hsv = toHsv(texel);
                          hsv[0] += degrees / 60.0;
                          hsv[1] *= 0.7;
                          hsv[2] *= 1.2;
                          return fromHsv(hsv);
                      }));
    }
}

TEST(ColorKernels, curveFollowsItsPoints)
{
    const std::string points = "0,0.1 0.3,0.7 0.6,0.5 1,1";
    OssEvCurve curve;
    ASSERT_TRUE(OssEvCurve::fromText(points, &curve));
    expectAdjustment("curve", {{"Curve", points}},
                     eachChannel([&curve](double x) { return curve.at(x); }));
}

/// A masked ramp: each texel's premultiplied colour for its luminance from 0 to 1.
void expectRamp(const std::string &kernel, const OssEvParameters &parameters,
                const std::function<Texel(double)> &colorAt)
{
    const Picture input = randomPicture(Width, Height, 4, 6, 0.0, 1.2);
    const Picture mask = randomPicture(Width, Height, 1, 7);
    KernelBench bench(kernel, parameters);
    bench.input("Input", input).input("Mask", mask);
    expectPicture(bench.run(Width, Height), [&](int x, int y) {
        const Texel before = input.texel(x, y);
        const double alpha = before[3] > 0.0 ? before[3] : 1.0;
        const Texel color = colorAt(std::clamp(luminance(before) / alpha, 0.0, 1.0));
        Texel after{};
        for (std::size_t k = 0; k < 4; ++k)
            after[k] = mix(before[k], color[k] * before[3], mask.at(0, x, y));
        return after;
    });
}

TEST(ColorKernels, rampLooksColorsUpByLuminance)
{
    const OssEvParameters parameters{{"LowColor", OssEvColor{0.1F, 0.5F, 0.2F, 0.5F}},
                                     {"HighColor", OssEvColor{1.0F, 0.3F, 0.0F, 1.0F}},
                                     {"Midpoint", 0.3}};
    expectRamp("ramp", parameters, [](double t) {
        const Texel low{0.05, 0.25, 0.1, 0.5};
        const Texel high{1.0, 0.3, 0.0, 1.0};
        const double place = t < 0.3 ? t / 0.3 * 0.5 : 0.5 + (t - 0.3) / 0.7 * 0.5;
        Texel color{};
        for (std::size_t k = 0; k < 4; ++k)
            color[k] = mix(low[k], high[k], place);
        return color;
    });
}

TEST(ColorKernels, colorRampMixesItsStops)
{
    // The second and third stop are at one place: a hard edge.
    const std::string text = "0,0.1,0.5,0.2,0.5 0.4,1,0.3,0,1 0.4,0,0,1,1 0.9,1,1,1,0.25";
    OssEvRamp ramp;
    ASSERT_TRUE(OssEvRamp::fromText(text, &ramp));
    const std::pair<const char *, OssEvRamp::Mix> mixes[] = {{"Linear", OssEvRamp::Mix::Linear},
                                                             {"Smooth", OssEvRamp::Mix::Smooth},
                                                             {"Step", OssEvRamp::Mix::Step}};
    for (const auto &[name, way] : mixes) {
        SCOPED_TRACE(name);
        expectRamp("colorRamp", {{"Ramp", text}, {"Interpolation", std::string(name)}},
                   [&ramp, way = way](double t) { return ramp.at(t, way); });
    }
}

TEST(ColorKernels, mathOperations)
{
    const Picture a = randomPicture(Width, Height, 1, 11, -1.0, 1.0);
    const Picture b = randomPicture(Width, Height, 1, 12, -1.0, 1.0);
    const auto expectOperation = [&](const std::string &name,
                                     const std::function<double(double, double)> &wanted) {
        SCOPED_TRACE(name);
        KernelBench bench("math", {{"Operation", name}});
        const Picture result = bench.input("A", a).input("B", b).run(Width, Height);
        double scale = 1.0;
        for (int x = 0; x < Width; ++x)
            scale = std::max(scale, std::abs(double(result.at(0, x, 0))));
        // Quotients and powers may be large; their error is relative.
        expectPicture(
            result,
            [&](int x, int y) {
                return Texel{wanted(a.at(0, x, y), b.at(0, x, y)), 0, 0, 0};
            },
            MeanErrorBound * scale);
    };
    expectOperation("Add", [](double x, double y) { return x + y; });
    expectOperation("Subtract", [](double x, double y) { return x - y; });
    expectOperation("Multiply", [](double x, double y) { return x * y; });
    expectOperation("Divide", [](double x, double y) { return y == 0.0 ? 0.0 : x / y; });
    expectOperation("Power", [](double x, double y) {
        return y == 0.0 ? 1.0 : x > 0.0 ? std::pow(x, y) : 0.0;
    });
    expectOperation("Minimum", [](double x, double y) { return std::min(x, y); });
    expectOperation("Maximum", [](double x, double y) { return std::max(x, y); });
    expectOperation("Step", [](double x, double y) { return x >= y ? 1.0 : 0.0; });
    KernelBench unconnected("math",
                            {{"Operation", std::string("Subtract")}, {"A", 3.0}, {"B", 1.0}});
    EXPECT_EQ(unconnected.run(128, 1).at(0, 5, 0), 2.0F);
}

TEST(ColorKernels, vectorMathOperations)
{
    const Picture a = randomPicture(Width, Height, 3, 21, -1.0, 1.0);
    const Picture b = randomPicture(Width, Height, 3, 22, -1.0, 1.0);
    const auto expect = [&](const std::string &name, const std::function<Texel(Texel, Texel)> &f) {
        SCOPED_TRACE(name);
        KernelBench bench("vectorMath", {{"Operation", name}});
        expectPicture(bench.input("A", a).input("B", b).run(Width, Height),
                      [&](int x, int y) { return f(a.texel(x, y), b.texel(x, y)); });
    };
    const auto each = [](const std::function<double(double, double)> &f) {
        return [f](Texel x, Texel y) {
            return Texel{f(x[0], y[0]), f(x[1], y[1]), f(x[2], y[2]), 0.0};
        };
    };
    expect("Add", each([](double x, double y) { return x + y; }));
    expect("Subtract", each([](double x, double y) { return x - y; }));
    expect("Multiply", each([](double x, double y) { return x * y; }));
    expect("Cross", [](Texel x, Texel y) {
        return Texel{x[1] * y[2] - x[2] * y[1], x[2] * y[0] - x[0] * y[2],
                     x[0] * y[1] - x[1] * y[0], 0.0};
    });
    expect("Normalize", [](Texel x, Texel) {
        const double length = std::hypot(x[0], x[1], x[2]);
        return length > 0.0 ? Texel{x[0] / length, x[1] / length, x[2] / length, 0.0} : Texel{};
    });
}

TEST(ColorKernels, channelsGoWhereTheyAreSent)
{
    const Picture input = randomPicture(128, 4, 4, 31);
    KernelBench shuffle("shuffle", {{"Red", std::string("Blue")},
                                    {"Green", std::string("One")},
                                    {"Blue", std::string("Zero")},
                                    {"Alpha", std::string("Red")}});
    expectPicture(
        shuffle.input("Input", input).run(128, 4),
        [&input](int x, int y) {
            const Texel texel = input.texel(x, y);
            return Texel{texel[2], 1.0, 0.0, texel[0]};
        },
        0.0);
    KernelBench split("split");
    expectPicture(
        split.input("Input", input).output("Alpha").run(128, 4),
        [&input](int x, int y) {
            return Texel{input.at(3, x, y), 0, 0, 0};
        },
        0.0);

    KernelBench combine("combine");
    combine.input("Green", randomPicture(128, 4, 1, 32));
    const Picture combined = combine.run(128, 4);
    EXPECT_EQ(combined.at(0, 7, 1), 0.0F);
    EXPECT_GT(combined.at(1, 7, 1), 0.0F);
    EXPECT_EQ(combined.at(3, 7, 1), 1.0F) << "a color is opaque unless told otherwise";
}

} // namespace
