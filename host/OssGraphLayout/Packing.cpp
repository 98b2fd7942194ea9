#include "OssGraphLayout/Packing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace {

constexpr double WorthMoving = 1.15; ///< so much larger may an area be that stays
constexpr double MostSlender = 3.0;  ///< width to height
constexpr std::size_t ManyParts = 2000;
constexpr std::size_t MostTucked = 8; ///< parts
constexpr std::size_t MostAreas = 100;

struct Step
{
    double x;
    double width;
    double y;
};

using Skyline = std::vector<Step>;

/// Where a part lies highest, then furthest left.
OssLyPoint highestPlace(const Skyline &line, const PackedPart &part, double limit, double gap)
{
    OssLyPoint best{line.front().x, -1.0};
    for (std::size_t i = 0; i < line.size() && line[i].x + part.width <= limit + 0.001; ++i) {
        double y = 0.0;
        const double end = line[i].x + part.width + gap;
        for (std::size_t j = i; j < line.size() && line[j].x < end; ++j)
            y = std::max(y, line[j].y);
        if (best.y < 0.0 || y < best.y - 0.001)
            best = {line[i].x, y};
    }
    best.y = std::max(0.0, best.y);
    return best;
}

/// The line with what now stands there.
Skyline raised(const Skyline &line, double left, double right, double y)
{
    Skyline next;
    for (const Step &step : line) {
        const double end = step.x + step.width;
        if (step.x < left)
            next.push_back({step.x, std::min(end, left) - step.x, step.y});
        if (end > right)
            next.push_back({std::max(step.x, right), end - std::max(step.x, right), step.y});
    }
    next.push_back({left, right - left, y});
    std::sort(next.begin(), next.end(), [](const Step &a, const Step &b) { return a.x < b.x; });
    return next;
}

OssLyRect pack(std::vector<PackedPart> *parts, const std::vector<std::size_t> &order, double limit,
               double gap)
{
    OssLyRect all;
    Skyline line{{0.0, limit + gap, 0.0}};
    for (const std::size_t index : order) {
        PackedPart &part = (*parts)[index];
        const OssLyPoint place = highestPlace(line, part, limit, gap);
        part.x = place.x;
        part.y = place.y;
        line = raised(line, part.x, part.x + part.width + gap, part.y + part.height + gap);
        all = all.united({part.x, part.y, part.width, part.height});
    }
    return all;
}

bool runsThrough(const PackedPart::Wire &wire, const OssLyRect &rect)
{
    const double left = std::max(wire.from.x, rect.x);
    const double right = std::min(wire.to.x, rect.right());
    if (left >= right)
        return false;
    const auto yAt = [&wire](double x) {
        return wire.from.y
               + (wire.to.y - wire.from.y) * (x - wire.from.x) / (wire.to.x - wire.from.x);
    };
    return std::min(yAt(left), yAt(right)) < rect.bottom()
           && std::max(yAt(left), yAt(right)) > rect.y;
}

OssLyRect grown(const OssLyRect &rect, double by)
{
    return {rect.x - by, rect.y - by, rect.width + 2.0 * by, rect.height + 2.0 * by};
}

/// Whether the part has nothing in the area, given in the same coordinates as the part's places.
bool leavesFree(const PackedPart &part, OssLyRect area)
{
    area.x -= part.x;
    area.y -= part.y;
    if (!area.intersects({0.0, 0.0, part.width, part.height}))
        return true;
    return std::none_of(part.areas.begin(), part.areas.end(),
                        [&area](const OssLyRect &own) { return own.intersects(area); })
           && std::none_of(part.wires.begin(), part.wires.end(),
                           [&area](const PackedPart::Wire &own) { return runsThrough(own, area); });
}

/// Whether two parts, at their places, have the gap between them and none a wire through the other.
bool areApart(const PackedPart &a, const PackedPart &b, double gap)
{
    if (!grown({a.x, a.y, a.width, a.height}, gap - 0.1).intersects({b.x, b.y, b.width, b.height}))
        return true;
    const auto all = [gap](const PackedPart &part, const PackedPart &other) {
        return std::all_of(part.areas.begin(), part.areas.end(), [&](const OssLyRect &area) {
            const OssLyRect here{area.x + part.x, area.y + part.y, area.width, area.height};
            return leavesFree(other, grown(here, gap - 0.1));
        });
    };
    return all(a, b) && all(b, a);
}

/// Where they stand today, if they still fit there. About their rightmost ends, from which they are read.
bool stay(const std::vector<PackedPart> &parts, double gap, std::vector<OssLyRect> *places)
{
    std::vector<PackedPart> placed = parts;
    for (PackedPart &part : placed) {
        part.x = part.today.right() - part.width;
        part.y = part.today.y + (part.today.height - part.height) / 2.0;
        places->push_back({part.x, part.y, part.width, part.height});
    }
    for (std::size_t i = 0; i < placed.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (!areApart(placed[i], placed[j], gap))
                return false;
        }
    }
    return true;
}

/// Of the places beside what stands already the highest, then the one furthest left, at which the part is clear.
bool tuckIn(PackedPart *part, const std::vector<PackedPart> &others, const OssLyRect &bounds,
            double gap)
{
    std::vector<double> lefts{bounds.x};
    std::vector<double> tops{bounds.y};
    for (const PackedPart &other : others) {
        for (const OssLyRect &area : other.areas) {
            lefts.insert(lefts.end(), {other.x + area.right() + gap, other.x + area.x,
                                       other.x + area.x - gap - part->width});
            tops.insert(tops.end(), {other.y + area.bottom() + gap, other.y + area.y,
                                     other.y + area.y - gap - part->height});
        }
    }
    for (std::vector<double> *values : {&lefts, &tops}) {
        std::sort(values->begin(), values->end());
        values->erase(std::unique(values->begin(), values->end()), values->end());
    }
    for (const double y : tops) {
        for (const double x : lefts) {
            part->x = x;
            part->y = y;
            if (x >= bounds.x && y >= bounds.y && x + part->width <= bounds.right()
                && y + part->height <= bounds.bottom()
                && std::all_of(others.begin(), others.end(), [&](const PackedPart &other) {
                       return areApart(*part, other, gap);
                   }))
                return true;
        }
    }
    return false;
}

/// Small parts go into what the largest one leaves free.
bool tuckAllIn(std::vector<PackedPart> *parts, double gap)
{
    std::size_t areas = 0;
    std::size_t largest = 0;
    for (std::size_t i = 0; i < parts->size(); ++i) {
        areas += (*parts)[i].areas.size();
        if ((*parts)[i].width * (*parts)[i].height
            > (*parts)[largest].width * (*parts)[largest].height)
            largest = i;
    }
    if (parts->size() < 2 || parts->size() > MostTucked || areas > MostAreas)
        return false;
    PackedPart &first = (*parts)[largest];
    first.x = first.y = 0.0;
    const OssLyRect bounds{0.0, 0.0, first.width, first.height};
    std::vector<PackedPart> placed{first};
    for (std::size_t i = 0; i < parts->size(); ++i) {
        if (i == largest)
            continue;
        if (!tuckIn(&(*parts)[i], placed, bounds, gap))
            return false;
        placed.push_back((*parts)[i]);
    }
    return true;
}

double costOf(const OssLyRect &all, double widest)
{
    const double area = all.width * all.height;
    const bool isSlender = all.width > MostSlender * all.height && all.width > widest;
    return isSlender ? area * all.width / (MostSlender * all.height) : area;
}

/// In rows of the width that needs least room; gives the cost.
double packInRows(std::vector<PackedPart> *parts, double gap)
{
    std::vector<std::size_t> byPlace(parts->size());
    std::iota(byPlace.begin(), byPlace.end(), std::size_t(0));
    double widest = 0.0;
    double sum = 0.0;
    double area = 0.0;
    for (const PackedPart &part : *parts) {
        widest = std::max(widest, part.width);
        sum += part.width + gap;
        area += (part.width + gap) * (part.height + gap);
    }
    std::stable_sort(byPlace.begin(), byPlace.end(), [parts](std::size_t a, std::size_t b) {
        return (*parts)[a].today.y < (*parts)[b].today.y;
    });
    std::vector<std::size_t> byHeight = byPlace;
    std::stable_sort(byHeight.begin(), byHeight.end(), [parts](std::size_t a, std::size_t b) {
        return (*parts)[a].height > (*parts)[b].height;
    });
    double bestCost = -1.0;
    std::vector<PackedPart> best = *parts;
    const double widestRow = std::max(widest, std::min(sum, 2.0 * std::sqrt(area)));
    double limit = widest;
    while (limit <= widestRow + 1.0) {
        for (const std::vector<std::size_t> *order : {&byPlace, &byHeight}) {
            // The order of today is worth as much.
            const double cost = costOf(pack(parts, *order, limit, gap), widest)
                                * (order == &byHeight ? 1.1 : 1.0);
            if (bestCost < 0.0 || cost < bestCost) {
                bestCost = cost;
                best = *parts;
            }
        }
        limit = limit * 1.15 + 1.0;
    }
    *parts = best;
    return bestCost;
}

} // namespace

void packParts(std::vector<PackedPart> *parts, double gap)
{
    double cost = packInRows(parts, gap);
    std::vector<PackedPart> tucked = *parts;
    if (tuckAllIn(&tucked, gap)) {
        *parts = tucked;
        cost = 0.0;
        for (const PackedPart &part : tucked)
            cost = std::max(cost, part.width * part.height);
    }
    std::vector<OssLyRect> today;
    if (parts->size() >= ManyParts || !stay(*parts, gap, &today))
        return;
    OssLyRect all;
    for (const OssLyRect &place : today)
        all = all.united(place);
    if (all.width * all.height > WorthMoving * cost)
        return;
    for (std::size_t i = 0; i < today.size(); ++i) {
        (*parts)[i].x = today[i].x;
        (*parts)[i].y = today[i].y;
    }
}
