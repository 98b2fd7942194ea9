#include "OssGraphLayout/Packing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace {

constexpr double WorthMoving = 1.25; ///< so much larger may an area be that stays
constexpr double MostSlender = 3.0;  ///< width to height

struct Step
{
    double x;
    double width;
    double y;
};

/// In a skyline each goes where it lies highest, then furthest left.
OssLyRect pack(std::vector<PackedPart> *parts, const std::vector<std::size_t> &order, double limit,
               double gap)
{
    OssLyRect all;
    std::vector<Step> line{{0.0, limit + gap, 0.0}};
    for (const std::size_t index : order) {
        PackedPart &part = (*parts)[index];
        std::size_t best = 0;
        double bestY = -1.0;
        for (std::size_t i = 0; i < line.size() && line[i].x + part.width <= limit + 0.001; ++i) {
            double y = 0.0;
            for (std::size_t j = i; j < line.size() && line[j].x < line[i].x + part.width + gap;
                 ++j)
                y = std::max(y, line[j].y);
            if (bestY < 0.0 || y < bestY - 0.001) {
                bestY = y;
                best = i;
            }
        }
        part.x = line[best].x;
        part.y = std::max(0.0, bestY);
        const double left = part.x;
        const double right = part.x + part.width + gap;
        std::vector<Step> next;
        for (const Step &step : line) {
            const double end = step.x + step.width;
            if (end <= left || step.x >= right) {
                next.push_back(step);
                continue;
            }
            if (step.x < left)
                next.push_back({step.x, left - step.x, step.y});
            if (end > right)
                next.push_back({right, end - right, step.y});
        }
        next.push_back({left, right - left, part.y + part.height + gap});
        std::sort(next.begin(), next.end(), [](const Step &a, const Step &b) { return a.x < b.x; });
        line = next;
        all = all.united({part.x, part.y, part.width, part.height});
    }
    return all;
}

/// Where they stand today, if they still fit there. About their rightmost ends, from which they are read.
bool stay(const std::vector<PackedPart> &parts, double gap, std::vector<OssLyRect> *places)
{
    for (const PackedPart &part : parts)
        places->push_back({part.today.right() - part.width,
                           part.today.y + (part.today.height - part.height) / 2.0, part.width,
                           part.height});
    for (std::size_t i = 0; i < places->size(); ++i) {
        OssLyRect wide = (*places)[i];
        wide.x -= gap * 0.5;
        wide.y -= gap * 0.5;
        wide.width += gap;
        wide.height += gap;
        for (std::size_t j = 0; j < i; ++j) {
            if (wide.intersects((*places)[j]))
                return false;
        }
    }
    return true;
}

} // namespace

void packParts(std::vector<PackedPart> *parts, double gap)
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
    for (double limit = widest;
         limit <= std::max(widest, std::min(sum, 2.0 * std::sqrt(area))) + 1.0;
         limit = limit * 1.15 + 1.0) {
        for (const std::vector<std::size_t> *order : {&byPlace, &byHeight}) {
            const OssLyRect all = pack(parts, *order, limit, gap);
            double cost = all.width * all.height;
            if (all.width > MostSlender * all.height && all.width > widest)
                cost *= all.width / (MostSlender * all.height);
            if (order == &byHeight)
                cost *= 1.1; // the order of today is worth as much
            if (bestCost < 0.0 || cost < bestCost) {
                bestCost = cost;
                best = *parts;
            }
        }
    }
    std::vector<OssLyRect> today;
    if (parts->size() < 2000 && stay(*parts, gap, &today)) {
        OssLyRect all;
        for (const OssLyRect &place : today)
            all = all.united(place);
        if (all.width * all.height <= WorthMoving * bestCost) {
            for (std::size_t i = 0; i < today.size(); ++i) {
                best[i].x = today[i].x;
                best[i].y = today[i].y;
            }
        }
    }
    *parts = best;
}
