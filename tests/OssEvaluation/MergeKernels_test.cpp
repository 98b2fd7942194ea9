// Blend modes, against the formulas of "Compositing and Blending" in double precision.

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

using Rgb = std::array<double, 3>;

constexpr int Width = 256;
constexpr int Height = 32;

double toSrgb(double x)
{
    const double size = std::abs(x);
    const double result = size > 0.0031308 ? 1.055 * std::pow(size, 1.0 / 2.4) - 0.055
                                           : 12.92 * size;
    return std::copysign(result, x);
}

double fromSrgb(double x)
{
    const double size = std::abs(x);
    const double result = size > 0.04045 ? std::pow((size + 0.055) / 1.055, 2.4) : size / 12.92;
    return std::copysign(result, x);
}

double hardLight(double b, double s)
{
    return s <= 0.5 ? b * 2.0 * s : b + (2.0 * s - 1.0) - b * (2.0 * s - 1.0);
}

double softLight(double b, double s)
{
    if (s <= 0.5)
        return b - (1.0 - 2.0 * s) * b * (1.0 - b);
    const double d = b <= 0.25 ? ((16.0 * b - 12.0) * b + 4.0) * b : std::sqrt(b);
    return b + (2.0 * s - 1.0) * (d - b);
}

double colorDodge(double b, double s)
{
    if (b <= 0.0)
        return 0.0;
    return s >= 1.0 ? 1.0 : std::min(1.0, b / (1.0 - s));
}

double colorBurn(double b, double s)
{
    if (b >= 1.0)
        return 1.0;
    return s <= 0.0 ? 0.0 : 1.0 - std::min(1.0, (1.0 - b) / s);
}

using Mode = double (*)(double base, double over);

std::map<std::string, Mode> separableModes()
{
    std::map<std::string, Mode> modes{{"Soft Light", softLight},
                                      {"Hard Light", hardLight},
                                      {"Color Dodge", colorDodge},
                                      {"Color Burn", colorBurn}};
    const auto add = [&modes](const char *name, Mode mode) {
        modes[name] = mode;
    };
    add("Normal", [](double, double s) { return s; });
    add("Add", [](double b, double s) { return b + s; });
    add("Subtract", [](double b, double s) { return std::max(0.0, b - s); });
    add("Multiply", [](double b, double s) { return b * s; });
    add("Divide", [](double b, double s) { return s > 1e-6 ? b / s : 1.0; });
    add("Screen", [](double b, double s) { return b + s - b * s; });
    add("Overlay", [](double b, double s) { return hardLight(s, b); });
    add("Linear Burn", [](double b, double s) { return std::max(0.0, b + s - 1.0); });
    add("Darken", [](double b, double s) { return std::min(b, s); });
    add("Lighten", [](double b, double s) { return std::max(b, s); });
    add("Difference", [](double b, double s) { return std::abs(b - s); });
    add("Exclusion", [](double b, double s) { return b + s - 2.0 * b * s; });
    add("Average", [](double b, double s) { return (b + s) / 2.0; });
    return modes;
}

const std::map<std::string, Mode> Separable = separableModes();

double lum(const Rgb &c)
{
    return 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2];
}

double sat(const Rgb &c)
{
    return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
}

Rgb setLum(Rgb c, double wanted)
{
    const double shift = wanted - lum(c);
    for (double &x : c)
        x += shift;
    const double low = *std::min_element(c.begin(), c.end());
    const double high = *std::max_element(c.begin(), c.end());
    double part = 1.0;
    if (low < 0.0)
        part = wanted / (wanted - low);
    if (high > 1.0)
        part = std::min(part, (1.0 - wanted) / (high - wanted));
    for (double &x : c)
        x = wanted + (x - wanted) * part;
    return c;
}

Rgb setSat(Rgb c, double wanted)
{
    const double low = *std::min_element(c.begin(), c.end());
    const double range = sat(c);
    for (double &x : c)
        x = range > 0.0 ? (x - low) * wanted / range : 0.0;
    return c;
}

Rgb blended(const std::string &mode, const Rgb &b, const Rgb &s)
{
    if (mode == "Hue")
        return setLum(setSat(s, sat(b)), lum(b));
    if (mode == "Saturation")
        return setLum(setSat(b, sat(s)), lum(b));
    if (mode == "Color")
        return setLum(s, lum(b));
    if (mode == "Luminosity")
        return setLum(b, lum(s));
    Rgb result{};
    for (std::size_t k = 0; k < 3; ++k)
        result[k] = Separable.at(mode)(b[k], s[k]);
    return result;
}

Texel composited(const std::string &mode, const Texel &base, const Texel &over, double mask,
                 bool display)
{
    Rgb b{};
    Rgb s{};
    for (std::size_t k = 0; k < 3; ++k) {
        b[k] = base[k] / (base[3] > 0.0 ? base[3] : 1.0);
        s[k] = over[k] / (over[3] > 0.0 ? over[3] : 1.0);
        if (display) {
            b[k] = toSrgb(b[k]);
            s[k] = toSrgb(s[k]);
        }
    }
    const Rgb mixed = blended(mode, b, s);
    const double as = over[3] * mask;
    const double ab = base[3];
    Texel result{};
    result[3] = as + ab - as * ab;
    for (std::size_t k = 0; k < 3; ++k) {
        double color = as * (1.0 - ab) * s[k] + as * ab * mixed[k] + (1.0 - as) * ab * b[k];
        if (display && result[3] > 0.0)
            color = fromSrgb(color / result[3]) * result[3];
        result[k] = color;
    }
    return result;
}

TEST(MergeKernels, everyModeOverEveryAlpha)
{
    const Picture base = randomPicture(Width, Height, 4, 41);
    const Picture over = randomPicture(Width, Height, 4, 42);
    const Picture mask = randomPicture(Width, Height, 1, 43);
    std::vector<std::string> modes{"Hue", "Saturation", "Color", "Luminosity"};
    for (const auto &[name, function] : Separable)
        modes.push_back(name);
    ASSERT_EQ(modes.size(), 21U);
    for (const std::string &mode : modes) {
        for (const bool display : {false, true}) {
            KernelBench bench(
                "merge", {{"BlendMode", mode},
                          {"Amount", 0.8},
                          {"BlendColorSpaceEnabled", std::string(display ? "Enable" : "Disable")}});
            bench.input("Base", base).input("Over", over).input("Mask", mask);
            SCOPED_TRACE(mode + (display ? " of display values" : ""));
            expectPicture(
                bench.run(Width, Height),
                [&](int x, int y) {
                    return composited(mode, base.texel(x, y), over.texel(x, y),
                                      mask.at(0, x, y) * 0.8, display);
                },
                // Quotients of small numbers are large.
                mode == "Divide" ? 20.0 * MeanErrorBound : MeanErrorBound);
        }
    }
}

// Display values are those of a screen whatever one works in: two ways to the same colours.
TEST(MergeKernels, displayValuesAreTheSameInEveryWorkingSpace)
{
    OssEvColorSpaces::Pointer film;
    ASSERT_TRUE(OssEvColorSpaces::builtIn()->withWorking("ACEScg", &film));
    const OssEvWorkingSpace space = film->workingSpace();
    const auto inFilm = [&space](const Picture &picture) {
        return pictureOf(Width, Height, 4, [&](int channel, int x, int y) {
            if (channel == 3)
                return picture.at(3, x, y);
            double sum = 0.0;
            for (int k = 0; k < 3; ++k)
                sum += double(space.fromBt709[std::size_t(3 * channel + k)]) * picture.at(k, x, y);
            return sum;
        });
    };
    const Picture base = randomPicture(Width, Height, 4, 45);
    const Picture over = randomPicture(Width, Height, 4, 46);
    for (const std::string mode : {"Normal", "Overlay", "Luminosity"}) {
        SCOPED_TRACE(mode);
        const OssEvParameters parameters{{"BlendMode", mode},
                                         {"BlendColorSpaceEnabled", std::string("Enable")}};
        const Picture wanted = inFilm(KernelBench("merge", parameters)
                                          .input("Base", base)
                                          .input("Over", over)
                                          .run(Width, Height));
        expectPicture(KernelBench("merge", parameters)
                          .working(space)
                          .input("Base", inFilm(base))
                          .input("Over", inFilm(over))
                          .run(Width, Height),
                      [&wanted](int x, int y) { return wanted.texel(x, y); });
    }
}

TEST(MergeKernels, nothingOverSomethingIsSomething)
{
    const Picture base = randomPicture(Width, Height, 4, 44);
    for (const std::string mode : {"Normal", "Multiply", "Luminosity"}) {
        SCOPED_TRACE(mode);
        expectPicture(
            KernelBench("merge", {{"BlendMode", mode}}).input("Base", base).run(Width, Height),
            [&base](int x, int y) { return base.texel(x, y); }, 1e-6);
    }
}

} // namespace
