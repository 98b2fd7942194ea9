// The language of expressions: what it computes, what it refuses and where, and text that means no good.

#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/KernelBench.h"

#include <cmath>
#include <random>
#include <string>

namespace {

constexpr int Size = 128;

struct Straight
{
    double r, g, b, a;
};

struct Row
{
    const char *text;
    /// Of the colours a and b, and the place in the patch.
    Straight (*wanted)(const Straight &a, const Straight &b, double u, double v);
};

Straight gray(double value)
{
    return {value, value, value, 1.0};
}

double part(double low, double high, double value)
{
    const double t = std::min(std::max((value - low) / (high - low), 0.0), 1.0);
    return t * t * (3.0 - 2.0 * t);
}

using C = const Straight &;

constexpr Row Rows[] = {
    {"a",
     [](C a, C, double, double) {
         return a;
     }},
    {"a * 2 - 0.25 # darker",
     [](C a, C, double, double) {
         return Straight{a.r * 2 - .25, a.g * 2 - .25, a.b * 2 - .25, a.a};
     }},
    {"k1 + a*b",
     [](C a, C b, double, double) {
         return Straight{a.r * b.r + 3, a.g * b.g + 3, a.b * b.b + 3, a.a};
     }},
    {"mix(a, b, u)",
     [](C a, C b, double u, double) {
         return Straight{a.r + (b.r - a.r) * u, a.g + (b.g - a.g) * u, a.b + (b.b - a.b) * u,
                         a.a + (b.a - a.a) * u};
     }},
    {"rgba(a.r, v, 0.5, 0.25)",
     [](C a, C, double, double v) {
         return Straight{a.r, v, 0.5, 0.25};
     }},
    {"2 + 3 * 4 ^ 2 ^ 0.5 - -1 % 3",
     [](C, C, double, double) {
         return gray(3 * std::pow(4.0, std::sqrt(2.0)));
     }},
    {"(u - 2)^3",
     [](C, C, double u, double) {
         return gray(std::pow(u - 2.0, 3.0));
     }},
    {"u ^ 2.5",
     [](C, C, double u, double) {
         return gray(std::pow(u, 2.5));
     }},
    {"s = sin(u * 10); t = s * s; t + cos(v) * t",
     [](C, C, double u, double v) {
         const double t = std::sin(u * 10.0) * std::sin(u * 10.0);
         return gray(t + std::cos(v) * t);
     }},
    {"u < 0.5 && v >= 0.25 || u > 0.9 ? a : b",
     [](C a, C b, double u, double v) {
         return (u < 0.5 && v >= 0.25) || u > 0.9 ? a : b;
     }},
    {"if(!(u == v), 1, 0) + (u != v)",
     [](C, C, double u, double v) {
         return gray(u != v ? 2 : 0);
     }},
    {"min(max(a.g, 0.3), b.g) + abs(u - v) + sign(u - 0.5)",
     [](C a, C b, double u, double v) {
         return gray(std::min(std::max(a.g, 0.3), b.g) + std::abs(u - v) + (u > 0.5 ? 1 : -1));
     }},
    {"floor(u*7) + ceil(v*5) + fract(u*3) + mod(v, 0.3) + round(u)",
     [](C, C, double u, double v) {
         return gray(std::floor(u * 7) + std::ceil(v * 5) + u * 3 - std::floor(u * 3) + v
                     - 0.3 * std::floor(v / 0.3) + std::nearbyint(u));
     }},
    {"smoothstep(0.2, 0.8, u) + step(0.5, v) + clamp(u * 4, 1, 2)",
     [](C, C, double u, double v) {
         return gray(part(0.2, 0.8, u) + (v >= 0.5 ? 1 : 0) + std::min(std::max(u * 4, 1.0), 2.0));
     }},
    {"sqrt(u) + exp(v) + log(u + 1) + atan(v, u - 0.5) + length(u, v, 1)",
     [](C, C, double u, double v) {
         return gray(std::sqrt(u) + std::exp(v) + std::log(u + 1) + std::atan2(v, u - 0.5)
                     + std::sqrt(u * u + v * v + 1));
     }},
    {"luma(a)",
     [](C a, C, double, double) {
         return gray(0.2126 * a.r + 0.7152 * a.g + 0.0722 * a.b);
     }},
    {"hsv(1/3, 1, 0.5)",
     [](C, C, double, double) {
         return Straight{0, 0.5, 0, 1};
     }},
    {"1 / 0 + u / (v - v) + sqrt(0 - 1) + log(0) * 0",
     [](C, C, double, double) {
         return gray(0.0);
     }},
    {"patch - 1000 + column * 100 + row * 1000 + x - u + y - v + z + nz", [](C, C, double, double) {
         return gray(12 + 100 + 1000 + 1 + 1 + 1);
     }}};

TEST(ExpressionKernels, computeWhatTheySay)
{
    const Picture a = randomPicture(Size, Size, 4, 11);
    const Picture b = randomPicture(Size, Size, 4, 12);
    const auto straight = [](const Picture &picture, int x, int y) {
        const double alpha = picture.at(3, x, y);
        const double part = alpha > 0.0 ? 1.0 / alpha : 0.0;
        return Straight{picture.at(0, x, y) * part, picture.at(1, x, y) * part,
                        picture.at(2, x, y) * part, alpha};
    };
    for (const Row &row : Rows) {
        SCOPED_TRACE(row.text);
        KernelBench bench("expression", {{"Expression", std::string(row.text)}, {"K1", 3.0}});
        bench.input("A", a).input("B", b).patch(1012);
        expectPicture(bench.run(Size, Size), [&](int x, int y) {
            const Straight color = row.wanted(straight(a, x, y), straight(b, x, y),
                                              (x + 0.5) / Size, 1.0 - (y + 0.5) / Size);
            return Texel{color.r * color.a, color.g * color.a, color.b * color.a, color.a};
        });
    }
}

TEST(ExpressionKernels, noiseAndChanceStayWithinTheirRange)
{
    for (const char *text : {"noise(u*9, v*9)", "fractal(u*9, v*9, 0.5)", "random(u*9, v*9)"}) {
        KernelBench bench("expression", {{"Expression", std::string(text)}});
        const Picture picture = bench.output("Value").run(Size, Size);
        const auto [low, high] = std::minmax_element(picture.planes[0].begin(),
                                                     picture.planes[0].end());
        EXPECT_TRUE(*low >= 0.0F && *low < 0.35F && *high > 0.65F && *high <= 1.0F) << text;
    }
}

std::string errorOf(const std::string &text)
{
    OssEvParameters complete;
    return OssEvKernelLibrary::find("expression")
        ->normalise({{"Expression", text}}, &complete)
        .error();
}

TEST(ExpressionKernels, faultsNameTheirPlace)
{
    EXPECT_EQ(errorOf("a + foo"), "column 5: there is no \"foo\"");
    EXPECT_EQ(errorOf("a +"), "column 4: something is missing at the end");
    EXPECT_EQ(errorOf(""), "column 1: something is missing at the end");
    EXPECT_EQ(errorOf("(a + b"), "column 7: \")\" is missing");
    EXPECT_EQ(errorOf("n = u;\nn * $"), "line 2, column 5: \"$\" is not expected here");
    EXPECT_EQ(errorOf("clamp(u, 1)"), "column 1: \"clamp\" takes 3 values");
    EXPECT_EQ(errorOf("v * noise()"), "column 5: \"noise\" takes 1 to 3 values");
    EXPECT_EQ(errorOf("a.x"), "column 2: a color has .r, .g, .b and .a");
    EXPECT_EQ(errorOf("u = 3; u"), "column 1: \"u\" has a meaning already");
    EXPECT_EQ(errorOf("n = 3 n"), "column 7: \";\" ends what gets a name");
    EXPECT_EQ(errorOf("u v"), "column 3: \"v\" is not expected here");
    EXPECT_EQ(errorOf("u ? 1"), "column 6: \":\" is missing after \"?\"");
    EXPECT_EQ(errorOf("wave(u)"), "column 1: there is no function \"wave\"");
    EXPECT_EQ(errorOf("\xC3\xA4"), "column 1: \"\xC3\xA4\" is not expected here");
    EXPECT_EQ(errorOf("1e999"), "column 1: this number is too large or too small");
}

class Expressions : public EngineFixture
{};

TEST_F(Expressions, theNodeIsToldOfAndInputsThatAreNotNamedAreNotComputed)
{
    const auto graph = [](const char *text) {
        return graphOf({{"Image", "image", file("wave")},
                        {"Noise", "perlinNoise"},
                        {"Node",
                         "expression",
                         {{"Expression", std::string(text)}},
                         {{"A", "Noise"}, {"D", "Image"}}}});
    };
    const Collected wrong = evaluate(graph("a + ?"), "Node", 256);
    EXPECT_EQ(wrong.outcome.error, "\"Node\": column 5: \"?\" is not expected here");
    EXPECT_EQ(wrong.outcome.node, "Node");
    EXPECT_TRUE(evaluate(graph("d.r * 0 + a.r * 0 + k1"), "Node", 256).outcome.ok());
    engine->resetStatistics();
    const int before = images->reads();
    EXPECT_TRUE(evaluate(graph("a * 0.5"), "Node", 256).outcome.ok());
    EXPECT_EQ(images->reads(), before);
    EXPECT_GT(engine->statistics().callsOf("expression"), 0U);
}

TEST(ExpressionKernels, whatIsTooMuchIsRefused)
{
    EXPECT_NE(errorOf(std::string(5000, ' ') + "1"), "");
    EXPECT_NE(errorOf(std::string(1000, '(') + "1" + std::string(1000, ')')), "");
    EXPECT_NE(errorOf(std::string(3000, '-') + "1"), "");
    EXPECT_NE(errorOf(std::string(2000, '!')), "");
    std::string deep = "u";
    for (int i = 0; i < 500; ++i)
        deep += "?u:u";
    EXPECT_NE(errorOf(deep), "");
    // Many numbers that are all wanted at the end, and many operations.
    std::string wide;
    std::string sum = "0";
    for (int i = 0; i < 120; ++i) {
        wide += "n" + std::to_string(i) + "=noise(u*" + std::to_string(i + 1) + ");";
        sum += "+n" + std::to_string(119 - i) + "*n" + std::to_string(i);
    }
    EXPECT_EQ(errorOf(wide + sum), "the expression is more than can be computed");
    std::string growing = "h=hsv(u,v,u);";
    while (growing.size() < 4000)
        growing += "h=hsv(h,u+h.r,v);";
    EXPECT_NE(errorOf(growing + "h"), "");
}

// Pieces of the language, thrown together: never a crash, and what is taken can be run.
TEST(ExpressionKernels, textThatMeansNoGoodDoesNoHarm)
{
    static const char *const Pieces[] = {
        "a",    "b.r",    "u",    "v",    "k1",          "n",      "=",       ";",    "+",     "-",
        "*",    "/",      "%",    "^",    "(",           ")",      ",",       "?",    ":",     "<",
        "<=",   "==",     "!=",   "!",    "&&",          "||",     "1",       "0",    "1e9",   ".5",
        "sin(", "clamp(", "mix(", "rgb(", "hsv(",        "noise(", "random(", "if(",  "luma(", "#",
        "\n",   ".a",     "pow(", "exp(", "99999999999", "\xFF",   "\x01",    "atan("};
    std::mt19937 random(7);
    const auto below = [&random](std::size_t count) {
        return random() % count;
    };
    int taken = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = round % 2 == 0 ? std::string()
                                          : std::string(Rows[below(std::size(Rows))].text);
        for (std::size_t i = 0, count = 1 + below(12); i < count; ++i) {
            const std::size_t place = text.empty() ? 0 : below(text.size());
            if (round % 2 != 0 && !text.empty() && below(2) == 0)
                text.erase(place, 1 + below(4));
            else
                text.insert(round % 2 == 0 ? text.size() : place, Pieces[below(std::size(Pieces))]);
        }
        const std::string error = errorOf(text);
        if (!error.empty()) {
            EXPECT_TRUE(error.find("column") != std::string::npos
                        || error.find("the expression is") == 0)
                << error;
            continue;
        }
        if (++taken % 8 != 0)
            continue;
        const Picture picture = KernelBench("expression", {{"Expression", text}, {"K1", -1e6}})
                                    .input("A", pictureOf(Size, 1, 4,
                                                          [](int k, int x, int) {
                                                              return k == 3 ? x % 2 : 6e4;
                                                          }))
                                    .run(Size, 1);
        for (const auto &plane : picture.planes) {
            for (const float value : plane)
                ASSERT_TRUE(std::isfinite(value) || std::abs(value) > 1e30F) << text;
        }
    }
    EXPECT_GT(taken, 500);
}

} // namespace
