#include "OssGraphLayout/Layers.h"
#include "OssGraphLayout/NetworkSimplex.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int WireWeight = 4;
constexpr int FrameWeight = 1; ///< for each rank that a frame is wide

std::size_t at(int index)
{
    return std::size_t(index);
}

/// In a loop one wire has to run backwards: those that lead back in a walk along the wires.
std::vector<bool> backwardLinks(const Layers &layers)
{
    std::vector<std::vector<int>> out(layers.boxes.size());
    for (int i = 0; i < int(layers.links.size()); ++i)
        out[at(layers.links[at(i)].from)].push_back(i);
    std::vector<bool> backward(layers.links.size(), false);
    std::vector<char> state(layers.boxes.size(), 0); // 1: on the way, 2: done
    std::vector<std::pair<int, std::size_t>> way;
    for (int start = 0; start < int(layers.boxes.size()); ++start) {
        if (state[at(start)] != 0)
            continue;
        way.emplace_back(start, 0);
        state[at(start)] = 1;
        while (!way.empty()) {
            auto &[box, next] = way.back();
            if (next == out[at(box)].size()) {
                state[at(box)] = 2;
                way.pop_back();
                continue;
            }
            const int link = out[at(box)][next++];
            const int to = layers.links[at(link)].to;
            if (state[at(to)] == 1) {
                backward[at(link)] = true;
            } else if (state[at(to)] == 0) {
                state[at(to)] = 1;
                way.emplace_back(to, 0);
            }
        }
    }
    return backward;
}

/// Nothing ties these to a rank but their frame: they go where they stand in it today.
void rankLoose(Layers *layers)
{
    std::vector<bool> wired(layers->boxes.size(), false);
    for (const Layers::Link &link : layers->links)
        wired[at(link.from)] = wired[at(link.to)] = true;
    if (layers->links.empty()) {
        // Side by side as they stand, no more than a square holds.
        std::vector<int> order;
        for (int b = 0; b < int(layers->boxes.size()); ++b)
            order.push_back(b);
        std::stable_sort(order.begin(), order.end(), [layers](int a, int b) {
            return layers->boxes[at(a)].rect.x < layers->boxes[at(b)].rect.x;
        });
        int rank = 0;
        double right = order.empty() ? 0.0 : layers->boxes[at(order.front())].rect.right();
        for (const int b : order) {
            const OssLyRect &rect = layers->boxes[at(b)].rect;
            if (rect.x >= right) {
                ++rank;
                right = rect.right();
            }
            layers->rankOf[at(b)] = rank;
        }
        return;
    }
    for (std::size_t b = 0; b < layers->boxes.size(); ++b) {
        if (wired[b])
            continue;
        int best = -1;
        double nearest = 0.0;
        for (std::size_t other = 0; other < layers->boxes.size(); ++other) {
            int frame = layers->boxes[other].frame;
            while (frame >= 0 && frame != layers->boxes[b].frame)
                frame = layers->frames[at(frame)].parent;
            if (!wired[other] || frame != layers->boxes[b].frame)
                continue;
            const double away = std::abs(layers->boxes[other].rect.x - layers->boxes[b].rect.x);
            if (best < 0 || away < nearest) {
                best = int(other);
                nearest = away;
            }
        }
        if (best >= 0)
            layers->rankOf[b] = layers->rankOf[at(best)];
    }
}

} // namespace

void rankBoxes(Layers *layers)
{
    const std::vector<bool> backward = backwardLinks(*layers);
    for (std::size_t i = backward.size(); i-- > 0;) {
        if (backward[i])
            layers->links.erase(layers->links.begin() + std::ptrdiff_t(i));
    }
    const int boxCount = int(layers->boxes.size());
    const int frameCount = int(layers->frames.size());
    const auto left = [boxCount](int frame) {
        return boxCount + 2 * frame;
    };
    NetworkSimplex simplex(boxCount + 2 * frameCount);
    for (const Layers::Link &link : layers->links)
        simplex.addEdge(link.from, link.to, 1, WireWeight);
    for (int f = 0; f < frameCount; ++f) {
        simplex.addEdge(left(f), left(f) + 1, 0, FrameWeight);
        if (const int parent = layers->frames[at(f)].parent; parent >= 0) {
            simplex.addEdge(left(parent), left(f), 0, 0);
            simplex.addEdge(left(f) + 1, left(parent) + 1, 0, 0);
        }
    }
    for (int b = 0; b < boxCount; ++b) {
        if (const int frame = layers->boxes[at(b)].frame; frame >= 0) {
            simplex.addEdge(left(frame), b, 0, 0);
            simplex.addEdge(b, left(frame) + 1, 0, 0);
        }
    }
    std::vector<int> places = simplex.solve(20 * (boxCount + 100));
    places.resize(at(boxCount));
    layers->rankOf = places;
    rankLoose(layers);
    const int first = *std::min_element(layers->rankOf.begin(), layers->rankOf.end());
    std::vector<int> used;
    for (int &rank : layers->rankOf) {
        rank -= first;
        used.push_back(rank);
    }
    std::sort(used.begin(), used.end());
    used.erase(std::unique(used.begin(), used.end()), used.end());
    for (int &rank : layers->rankOf)
        rank = int(std::lower_bound(used.begin(), used.end(), rank) - used.begin());
}
