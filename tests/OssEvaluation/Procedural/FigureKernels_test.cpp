// Figures by their distances, copies and letters.

#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr double Pi = 3.14159265358979323846;

double limited(double v)
{
    return std::clamp(v, 0.0, 1.0);
}

using Corners = std::vector<std::array<double, 2>>;

/// To the outline of a polygon, negative inside: by its edges one after the other.
double distanceTo(const Corners &corners, double x, double y)
{
    double best = 1e9;
    bool inside = false;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const auto &a = corners[i];
        const auto &b = corners[(i + 1) % corners.size()];
        const double dx = b[0] - a[0];
        const double dy = b[1] - a[1];
        const double t = limited(((x - a[0]) * dx + (y - a[1]) * dy) / (dx * dx + dy * dy));
        best = std::min(best, std::hypot(x - a[0] - t * dx, y - a[1] - t * dy));
        if ((a[1] > y) != (b[1] > y) && x < a[0] + (y - a[1]) / dy * dx)
            inside = !inside;
    }
    return inside ? -best : best;
}

Corners starOf(int points, double radius, double inner, double degrees)
{
    Corners corners;
    for (int i = 0; i < 2 * points; ++i) {
        const double angle = Pi / 2 + degrees * Pi / 180 + Pi * i / points;
        const double r = i % 2 == 0 ? radius : inner;
        corners.push_back({0.4 + r * std::cos(angle), 0.55 + r * std::sin(angle)});
    }
    return corners;
}

TEST(FigureKernels, distancesOfFigures)
{
    const auto compareWith = [](const std::string &kernel, OssEvParameters parameters,
                                const std::function<double(double u, double v)> &reference) {
        SCOPED_TRACE(kernel);
        parameters["Center"] = OssEvVector2{0.4, 0.55};
        KernelBench bench(kernel, parameters);
        expectPicture(bench.output("Distance").run(128, 128), [&](int x, int y) {
            return Texel{reference((x + 0.5) / 128, 1.0 - (y + 0.5) / 128), 0, 0, 0};
        });
    };
    const Corners star = starOf(5, 0.4, 0.2, 20);
    compareWith("star",
                {{"Points", 5.0}, {"Radius", 0.4}, {"InnerRadius", 0.5}, {"Rotation", 20.0}},
                [&](double u, double v) { return distanceTo(star, u, v); });
    compareWith("star",
                {{"Points", 5.0},
                 {"Radius", 0.4},
                 {"InnerRadius", 0.5},
                 {"Rotation", 20.0},
                 {"Outline", 0.1}},
                [&](double u, double v) { return std::abs(distanceTo(star, u, v)) - 0.05; });
    const Corners six = starOf(6, 0.3, 0.3 * std::cos(Pi / 6), 0);
    compareWith("polygon", {{"Sides", 6.0}, {"Radius", 0.3}},
                [&](double u, double v) { return distanceTo(six, u, v); });
    const Corners box{{0.1, 0.4}, {0.7, 0.4}, {0.7, 0.7}, {0.1, 0.7}};
    compareWith("shape", {{"Shape", std::string("Box")}, {"Radius", 0.3}, {"Aspect", 0.5}},
                [&](double u, double v) { return distanceTo(box, u, v); });
    compareWith("shape", {{"Shape", std::string("Circle")}, {"Radius", 0.3}},
                [](double u, double v) { return std::hypot(u - 0.4, v - 0.55) - 0.3; });
}

TEST(FigureKernels, distancesAreJoined)
{
    const Picture a = pictureOf(128, 8, 1, [](int, int x, int) { return (x - 64) * 0.01; });
    const Picture b = pictureOf(128, 8, 1, [](int, int x, int y) { return (30 - x + y) * 0.012; });
    const std::vector<std::string> names{"Union", "Intersection", "Subtraction", "Exclusion"};
    for (int operation = 0; operation < 4; ++operation) {
        SCOPED_TRACE(names[std::size_t(operation)]);
        const OssEvParameters parameters{
            {"Operation", names[std::size_t(operation)]}, {"Smoothness", 0.2}, {"Rounding", 0.03}};
        KernelBench bench("shapeBlend", parameters);
        bench.input("A", a).input("B", b).output("Distance");
        expectPicture(bench.run(128, 8), [&](int x, int y) {
            const auto lesser = [](double p, double q) {
                const double near = std::max(0.2 - std::abs(p - q), 0.0) / 0.2;
                return std::min(p, q) - near * near * 0.05;
            };
            const double p = a.at(0, x, y);
            const double q = b.at(0, x, y);
            const std::array<double, 4> all{lesser(p, q), -lesser(-p, -q), -lesser(-p, q),
                                            std::max(lesser(p, q), lesser(-p, -q))};
            return Texel{all[std::size_t(operation)] - 0.03, 0, 0, 0};
        });
    }
}

TEST(FigureKernels, stripesAndDots)
{
    const auto line = [](double phase, double width) {
        return std::abs(phase - std::floor(phase) - 0.5) - width / 2;
    };
    KernelBench stripes("stripes", {{"Count", 10.0}, {"Angle", 30.0}, {"Width", 0.4}});
    expectPicture(stripes.output("Distance").run(128, 128), [&](int x, int y) {
        const double phase = (x + 0.5) / 128 * 9 + (1.0 - (y + 0.5) / 128) * 5;
        return Texel{line(phase, 0.4) / std::hypot(9, 5), 0, 0, 0};
    });
    KernelBench dots("dots", {{"Columns", 6.0}, {"Radius", 0.4}, {"Stagger", true}});
    expectPicture(dots.output("Distance").run(128, 128), [](int x, int y) {
        const double v = (1.0 - (y + 0.5) / 128) * 6;
        const double u = (x + 0.5) / 128 * 6 + (int(std::floor(v)) % 2 == 1 ? 0.5 : 0.0);
        const double du = u - std::floor(u) - 0.5;
        const double dv = v - std::floor(v) - 0.5;
        return Texel{(std::hypot(du, dv) - 0.4) / 6, 0, 0, 0};
    });
}

/// Half of a picture: white on the left, nothing on the right.
Picture halfWhite()
{
    return pictureOf(256, 256, 4, [](int, int x, int) { return x < 128 ? 1.0 : 0.0; });
}

TEST(FigureKernels, copiesLieWhereTheGridSays)
{
    KernelBench bench("tileSampler",
                      {{"Columns", 4.0}, {"Rows", 4.0}, {"Scale", 1.0}, {"Rotation", 90.0}});
    const Picture copies = bench.input("Input", halfWhite()).output("Mask").run(256, 256);
    // A quarter turn to the left brings the left half down.
    for (int y = 0; y < 256; ++y) {
        if (y % 64 > 28 && y % 64 < 36)
            continue;
        const double wanted = y % 64 >= 32 ? 1.0 : 0.0;
        EXPECT_NEAR(copies.at(0, 100, y), wanted, y % 64 < 2 || y % 64 > 61 ? 1.0 : 0.02) << y;
    }
}

TEST(FigureKernels, aMaskAndAnAmountSayWhereCopiesAre)
{
    const Picture mask = pictureOf(256, 256, 1,
                                   [](int, int, int y) { return y < 128 ? 1.0 : 0.0; });
    const auto covered = [&mask](bool masked, double amount) {
        KernelBench bench("scatter", {{"Amount", amount}, {"Layers", 1.0}, {"Jitter", 0.0}});
        bench.input("Input", halfWhite()).output("Mask");
        if (masked)
            bench.input("Mask", mask);
        const Picture picture = bench.run(256, 256);
        double lower = 0.0;
        double all = 0.0;
        for (int y = 0; y < 256; ++y) {
            for (int x = 0; x < 256; ++x) {
                all += picture.at(0, x, y);
                lower += y > 160 && y < 220 ? picture.at(0, x, y) : 0.0;
            }
        }
        return std::array<double, 2>{all, lower};
    };
    EXPECT_GT(covered(false, 1.0)[0], covered(false, 0.5)[0] * 1.3);
    EXPECT_EQ(covered(false, 0.0)[0], 0.0);
    EXPECT_GT(covered(true, 1.0)[0], 0.0);
    EXPECT_EQ(covered(true, 1.0)[1], 0.0);
}

// Which fonts there are is the machine's: letters are compared with themselves.
TEST(FigureKernels, lettersKeepTheirPlaceAndTheirShare)
{
    const auto masked = [](const std::string &text, const OssEvParameters &more, int size) {
        OssEvParameters parameters = more;
        parameters["Text"] = text;
        return KernelBench("text", parameters).output("Mask").run(size, size);
    };
    const auto covered = [](const Picture &picture) {
        double sum = 0.0;
        for (float value : picture.planes[0])
            sum += double(value);
        return sum / double(picture.planes[0].size());
    };
    const double once = covered(masked("HH", {}, 128));
    ASSERT_GT(once, 0.01) << "there is no font";
    EXPECT_NEAR(covered(masked("HH", {}, 512)), once, 1e-3);
    EXPECT_NEAR(covered(masked("HH", {{"Rotation", 33.0}}, 512)), once, 1e-3);
    EXPECT_NEAR(covered(masked("HH\nHH", {}, 512)), 2 * once, 2e-3);
    EXPECT_NEAR(covered(masked("HH", {{"Size", 0.125}}, 512)), once / 4, 1e-3);
    // What begins in the middle leaves the left half empty.
    const Picture right = masked("HH", {{"Alignment", std::string("Left")}}, 128);
    for (int y = 0; y < 128; ++y)
        ASSERT_EQ(right.at(0, 40, y), 0.0);
    EXPECT_EQ(covered(masked("HH", {{"Font", std::string("/nowhere/at/all.ttf")}}, 128)), 0.0);
    EXPECT_EQ(covered(masked("\xFF\xC3", {}, 128)), 0.0) << "no UTF-8";
}

} // namespace
