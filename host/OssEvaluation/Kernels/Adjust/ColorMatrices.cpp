#include "OssEvaluation/Kernels/Adjust/ColorMatrices.h"

#include <cmath>

namespace {

using Matrix = OssEvWorkingSpace::Matrix;
using Vector = std::array<double, 3>;
using Wide = std::array<double, 9>;

constexpr Wide Identity{1, 0, 0, 0, 1, 0, 0, 0, 1};
// From linear BT.709 (IEC 61966-2-1) to CIE XYZ.
constexpr Wide ToXyz{0.4123908, 0.3575843, 0.1804808, 0.2126390, 0.7151687,
                     0.0721923, 0.0193308, 0.1191948, 0.9505322};
// To the primaries of SMPTE EG 432-1 under D65.
constexpr Wide ToP3{0.8224620, 0.1775380, 0.0,       0.0331942, 0.9668058,
                    0.0,       0.0170826, 0.0723974, 0.9105199};
// To the primaries AP1 (S-2014-004) under D60, adapted after Bradford.
constexpr Wide ToAp1{0.6130974, 0.3395231, 0.0473794, 0.0701937, 0.9163539,
                     0.0134524, 0.0206156, 0.1095698, 0.8698147};
// B. Ottosson, "A perceptual color space for image processing", 2020: to cones, to the space.
constexpr Wide ToCones{0.4122214708, 0.5363325363, 0.0514459929, 0.2119034982, 0.6806995451,
                       0.1073969566, 0.0883024619, 0.2817188376, 0.6299787005};
constexpr Wide ToOklab{0.2104542553, 0.7936177850, -0.0040720468, 1.9779984951, -2.4285922050,
                       0.4505937099, 0.0259040371, 0.7827717662,  -0.8086757660};
// K. M. Lam, "Metamerism and Colour Constancy", 1985, known as Bradford.
constexpr Wide ToBradford{0.8951, 0.2664, -0.1614, -0.7502, 1.7135,
                          0.0367, 0.0389, -0.0685, 1.0296};

Wide times(const Wide &a, const Wide &b)
{
    Wide result{};
    for (std::size_t i = 0; i < 9; ++i) {
        for (std::size_t k = 0; k < 3; ++k)
            result[i] += a[i / 3 * 3 + k] * b[k * 3 + i % 3];
    }
    return result;
}

Vector times(const Wide &a, const Vector &b)
{
    Vector result{};
    for (std::size_t i = 0; i < 9; ++i)
        result[i / 3] += a[i] * b[i % 3];
    return result;
}

Wide inverse(const Wide &m)
{
    Wide result{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const std::size_t a = (column + 1) % 3;
            const std::size_t b = (column + 2) % 3;
            const std::size_t c = (row + 1) % 3;
            const std::size_t d = (row + 2) % 3;
            result[row * 3 + column] = m[a * 3 + c] * m[b * 3 + d] - m[a * 3 + d] * m[b * 3 + c];
        }
    }
    const double determinant = m[0] * result[0] + m[1] * result[3] + m[2] * result[6];
    for (double &value : result)
        value /= determinant;
    return result;
}

Wide wide(const Matrix &matrix)
{
    Wide result{};
    for (std::size_t i = 0; i < 9; ++i)
        result[i] = double(matrix[i]);
    return result;
}

Matrix narrow(const Wide &matrix)
{
    Matrix result{};
    for (std::size_t i = 0; i < 9; ++i)
        result[i] = float(matrix[i]);
    return result;
}

enum Space { Working, Bt709, Srgb, P3, Ap1, Xyz, Oklab };

Wide fromBt709(int space, const OssEvWorkingSpace &working)
{
    switch (space) {
    case Working:
        return wide(working.fromBt709);
    case P3:
        return ToP3;
    case Ap1:
        return ToAp1;
    case Xyz:
        return ToXyz;
    case Oklab:
        return ToCones;
    default:
        return Identity;
    }
}

// Where a black body's light of a temperature lies in xy: B. Kim et al., "Design of Advanced Color
// Temperature Control System for HDTV Applications", 2002. From 1667 to 25000 Kelvin.
std::array<double, 2> blackBody(double kelvin)
{
    const double t = 1000.0 / kelvin;
    const double x = kelvin < 4000.0
                         ? ((-0.2661239 * t - 0.2343589) * t + 0.8776956) * t + 0.179910
                         : ((-3.0258469 * t + 2.1070379) * t + 0.2226347) * t + 0.240390;
    if (kelvin < 2222.0)
        return {x, ((-1.1063814 * x - 1.34811020) * x + 2.18555832) * x - 0.20219683};
    if (kelvin < 4000.0)
        return {x, ((-0.9549476 * x - 1.37418593) * x + 2.09137015) * x - 0.16748867};
    return {x, ((3.0817580 * x - 5.87338670) * x + 3.75112997) * x - 0.37001483};
}

Vector cones(double kelvin)
{
    const auto [x, y] = blackBody(kelvin);
    return times(ToBradford, Vector{x / y, 1.0, (1.0 - x - y) / y});
}

} // namespace

const std::vector<std::string> &OssEvColorSpaceNames()
{
    static const std::vector<std::string> names{
        "Working", "Linear BT.709", "sRGB", "Linear Display P3", "ACEScg", "XYZ", "Oklab"};
    return names;
}

OssEvColorWay OssEvColorSpaceWay(int from, int to, const OssEvWorkingSpace &working)
{
    OssEvColorWay way;
    if (from == to)
        return way;
    // The working space says both ways itself, so that there and back is the same colour.
    const Wide back = from == Working ? wide(working.toBt709) : inverse(fromBt709(from, working));
    way.middle = narrow(times(fromBt709(to, working), back));
    if (from == Oklab) {
        way.first = narrow(inverse(ToOklab));
        way.before = OssEvColorWay::Cube;
    } else if (from == Srgb) {
        way.before = OssEvColorWay::FromSrgb;
    }
    if (to == Oklab) {
        way.after = OssEvColorWay::CubeRoot;
        way.last = narrow(ToOklab);
    } else if (to == Srgb) {
        way.after = OssEvColorWay::ToSrgb;
    }
    way.hasGrey = from != Xyz && to != Xyz;
    return way;
}

OssEvColorWay OssEvWhiteBalance(double temperature, double tint, const OssEvWorkingSpace &working)
{
    constexpr double Neutral = 6500.0;
    const Vector seen = cones(temperature);
    const Vector wanted = cones(Neutral);
    Wide gains{};
    for (std::size_t k = 0; k < 3; ++k)
        gains[4 * k] = wanted[k] / seen[k];
    const Wide toCones = times(ToBradford, ToXyz);
    Wide balance = times(inverse(toCones), times(gains, toCones));
    constexpr double Strength = 0.5;
    for (std::size_t k = 3; k < 6; ++k)
        balance[k] *= std::exp2(-Strength * tint);
    const Vector white = times(times(ToXyz, balance), Vector{1.0, 1.0, 1.0});
    for (double &value : balance)
        value /= white[1];
    OssEvColorWay way;
    way.middle = narrow(times(wide(working.fromBt709), times(balance, wide(working.toBt709))));
    return way;
}

std::array<float, 3> OssEvDisplayed(const std::array<float, 3> &color,
                                    const OssEvWorkingSpace &working)
{
    const Vector light = times(wide(working.toBt709),
                               Vector{double(color[0]), double(color[1]), double(color[2])});
    std::array<float, 3> result{};
    for (std::size_t k = 0; k < 3; ++k) {
        const double size = std::abs(light[k]);
        const double shown = size > 0.0031308 ? 1.055 * std::pow(size, 1.0 / 2.4) - 0.055
                                              : 12.92 * size;
        result[k] = float(std::copysign(shown, light[k]));
    }
    return result;
}
