#include "OssEvaluation/Values/OssEvRamp.h"

#include "OssEvaluation/Values/OssEvNumberList.h"

#include <algorithm>
#include <charconv>

namespace {

std::array<double, 4> premultiplied(const std::array<float, 4> &color)
{
    const double alpha = color[3];
    return {color[0] * alpha, color[1] * alpha, color[2] * alpha, alpha};
}

template <class Number>
void append(std::string *text, Number number)
{
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof(digits), number);
    text->append(digits, end);
}

} // namespace

OssEvRamp::OssEvRamp(std::vector<Stop> stops)
    : m_stops(std::move(stops))
{
    for (Stop &stop : m_stops) {
        stop.place = std::clamp(stop.place, 0.0, 1.0);
        stop.color[3] = std::clamp(stop.color[3], 0.0F, 1.0F);
    }
    std::stable_sort(m_stops.begin(), m_stops.end(),
                     [](const Stop &a, const Stop &b) { return a.place < b.place; });
}

OssEvResult OssEvRamp::fromText(std::string_view text, OssEvRamp *ramp)
{
    std::vector<std::array<double, 5>> groups;
    if (!OssEvReadNumbers(text, &groups))
        return OssEvResult::failure("\"" + std::string(text) + "\" is no ramp of colors");
    std::vector<Stop> stops;
    stops.reserve(groups.size());
    for (const std::array<double, 5> &group : groups)
        stops.push_back(
            {group[0], {float(group[1]), float(group[2]), float(group[3]), float(group[4])}});
    *ramp = OssEvRamp(std::move(stops));
    return {};
}

std::string OssEvRamp::toText() const
{
    std::string text;
    for (const Stop &stop : m_stops) {
        if (!text.empty())
            text += ' ';
        append(&text, stop.place);
        for (const float channel : stop.color) {
            text += ',';
            append(&text, channel);
        }
    }
    return text;
}

std::array<double, 4> OssEvRamp::at(double place, Mix mix) const
{
    const double t = std::clamp(place, 0.0, 1.0);
    if (m_stops.empty())
        return {t, t, t, 1.0};
    const auto next = std::upper_bound(m_stops.begin(), m_stops.end(), t,
                                       [](double x, const Stop &stop) { return x < stop.place; });
    if (next == m_stops.begin())
        return premultiplied(m_stops.front().color);
    const Stop &left = *(next - 1);
    if (next == m_stops.end() || mix == Mix::Step)
        return premultiplied(left.color);
    double part = (t - left.place) / (next->place - left.place);
    if (mix == Mix::Smooth)
        part = part * part * (3.0 - 2.0 * part);
    const std::array<double, 4> a = premultiplied(left.color);
    const std::array<double, 4> b = premultiplied(next->color);
    std::array<double, 4> mixed{};
    for (std::size_t k = 0; k < 4; ++k)
        mixed[k] = a[k] + (b[k] - a[k]) * part;
    return mixed;
}
