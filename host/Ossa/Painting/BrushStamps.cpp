#include "Ossa/Painting/BrushStamps.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

namespace {

constexpr int size = 128;

/// Even between 0 and 1 at each corner of a grid (the finalizer of MurmurHash3).
double grain(int x, int y, int seed)
{
    auto h = std::uint32_t(x) * 0x9E3779B9U + std::uint32_t(y) * 0x85EBCA6BU
             + std::uint32_t(seed) * 0xC2B2AE35U;
    h = (h ^ (h >> 16)) * 0x85EBCA6BU;
    h = (h ^ (h >> 13)) * 0xC2B2AE35U;
    return double(h ^ (h >> 16)) / 4294967296.0;
}

/// Value noise: smooth between the corners.
double noise(double x, double y, int seed)
{
    const int left = int(std::floor(x));
    const int top = int(std::floor(y));
    const auto smooth = [](double t) {
        return t * t * (3.0 - 2.0 * t);
    };
    const double right = smooth(x - left);
    const double down = smooth(y - top);
    const double above = grain(left, top, seed) * (1.0 - right)
                         + grain(left + 1, top, seed) * right;
    const double below = grain(left, top + 1, seed) * (1.0 - right)
                         + grain(left + 1, top + 1, seed) * right;
    return above * (1.0 - down) + below * down;
}

double step(double from, double to, double value)
{
    const double t = std::clamp((value - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

double distance(double x, double y)
{
    return std::hypot(x, y);
}

/// A round stick with holes.
double chalk(double x, double y)
{
    const double rough = 0.6 * noise(x * 22.0 + 40.0, y * 22.0 + 40.0, 1)
                         + 0.4 * noise(x * 48.0 + 90.0, y * 48.0 + 90.0, 2);
    return step(0.38, 0.62, rough) * (1.0 - step(0.7, 1.0, distance(x, y) + 0.25 * (rough - 0.5)));
}

/// Single hairs side by side.
double bristles(double x, double y)
{
    const double hair = noise(30.0 + y * 26.0, 7.0, 3);
    const double worn = noise(x * 5.0 + 11.0, y * 26.0 + 60.0, 4);
    return step(0.35, 0.7, hair) * step(0.15, 0.5, worn)
           * (1.0 - step(0.75, 1.0, std::max(std::abs(x), std::abs(y))));
}

struct Drop
{
    double x;
    double y;
    double radius;
};

std::vector<Drop> drops()
{
    std::vector<Drop> all;
    for (int i = 0; i < 60; ++i) {
        const double way = 6.283185307179586 * grain(i, 0, 5);
        const double far = 0.95 * std::sqrt(grain(i, 1, 5));
        all.push_back({far * std::cos(way), far * std::sin(way),
                       0.02 + 0.09 * std::pow(grain(i, 2, 5), 3.0)});
    }
    return all;
}

/// Drops around a middle.
double spatter(double x, double y)
{
    static const std::vector<Drop> all = drops();
    double covered = 0.0;
    for (const Drop &drop : all) {
        const double dx = x - drop.x;
        const double dy = y - drop.y;
        const double square = dx * dx + dy * dy;
        if (square < drop.radius * drop.radius)
            covered = std::max(covered,
                               1.0 - step(0.7 * drop.radius, drop.radius, std::sqrt(square)));
    }
    return covered;
}

/// Soft heaps, as of a sponge or of dust.
double cloud(double x, double y)
{
    double sum = 0.0;
    double part = 0.5;
    double scale = 3.0;
    for (int octave = 0; octave < 5; ++octave) {
        sum += part * noise(x * scale + 50.0, y * scale + 50.0, 6 + octave);
        part *= 0.5;
        scale *= 2.0;
    }
    return step(0.42, 0.75, sum) * (1.0 - step(0.5, 1.0, distance(x, y)));
}

struct Row
{
    const char *name;
    double (*coverage)(double x, double y); ///< at a place from -1 to 1
};

constexpr Row table[] = {
    {"Chalk", chalk}, {"Bristles", bristles}, {"Spatter", spatter}, {"Cloud", cloud}};

OssEvStamp::Pointer draw(const Row &row)
{
    std::vector<float> coverage;
    coverage.reserve(std::size_t(size) * size);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x)
            coverage.push_back(
                float(row.coverage((x + 0.5) / size * 2.0 - 1.0, (y + 0.5) / size * 2.0 - 1.0)));
    }
    return std::make_shared<const OssEvStamp>(size, std::move(coverage), row.name);
}

} // namespace

QStringList BrushStamps::names()
{
    QStringList names;
    for (const Row &row : table)
        names.append(QLatin1String(row.name));
    return names;
}

OssEvStamp::Pointer BrushStamps::make(const QString &name)
{
    static std::map<QString, OssEvStamp::Pointer> made;
    for (const Row &row : table) {
        if (name != QLatin1String(row.name))
            continue;
        OssEvStamp::Pointer &stamp = made[name];
        if (!stamp)
            stamp = draw(row);
        return stamp;
    }
    return nullptr;
}
