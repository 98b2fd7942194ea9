#include "OssGraphLayout/Ordering.h"

#include "OssGraphLayout/Isotonic.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <utility>

// Layer by layer, after Sugiyama, Tagawa and Toda (1981), with the exchanges of neighbours of Gansner et al. (1993).

namespace {

constexpr double Gap = 30.0; ///< estimated
constexpr int MostSweeps = 60;
constexpr int MostIdle = 8; ///< sweeps without success
constexpr int FewStarts = 2;
constexpr int MostStarts = 24;
constexpr std::size_t MostKept = 10;
constexpr std::size_t ManyElements = 1500;
constexpr double Shaking = 400.0; ///< scene units

std::size_t at(int index)
{
    return std::size_t(index);
}

} // namespace

void Ordering::number(int rank)
{
    int in = 0;
    int out = 0;
    int position = 0;
    for (const int e : m_layers.ranks[at(rank)]) {
        m_layers.element(e).position = position++;
        m_inBase[at(e)] = in;
        m_outBase[at(e)] = out;
        in += m_layers.inStart[at(e) + 1] - m_layers.inStart[at(e)];
        out += m_layers.outStart[at(e) + 1] - m_layers.outStart[at(e)];
    }
}

void Ordering::restore(const Order &order)
{
    m_layers.ranks = order;
    for (int rank = 0; rank < int(order.size()); ++rank)
        number(rank);
}

// --- sorting

/// Of the frames around an element the one that lies directly in the frame `level`; -1: the element
/// itself lies directly in it.
int Ordering::frameAt(int element, int level) const
{
    int frame = m_layers.element(element).frame;
    int below = -1;
    while (frame != level) {
        below = frame;
        frame = m_layers.frames[at(frame)].parent;
    }
    return below;
}

void Ordering::sortLevel(int frame, const std::vector<int> &elements, std::vector<int> *sorted)
{
    struct Unit
    {
        int frame;
        double key;
        std::vector<int> elements;
    };

    std::vector<Unit> units;
    int top = -1;
    int bottom = -1;
    for (const int e : elements) {
        const Layers::Element &element = m_layers.element(e);
        const int inner = frameAt(e, frame);
        if (inner < 0 && element.kind == Layers::Kind::Top) {
            top = e;
        } else if (inner < 0 && element.kind == Layers::Kind::Bottom) {
            bottom = e;
        } else if (inner < 0) {
            units.push_back({-1, m_key[at(e)], {e}});
        } else {
            const auto known = std::find_if(units.begin(), units.end(), [inner](const Unit &unit) {
                return unit.frame == inner;
            });
            if (known != units.end())
                known->elements.push_back(e);
            else
                units.push_back({inner, m_layers.frames[at(inner)].key, {e}});
        }
    }
    std::stable_sort(units.begin(), units.end(), [](const Unit &a, const Unit &b) {
        return a.key != b.key ? a.key < b.key : a.frame < b.frame;
    });
    if (top >= 0)
        sorted->push_back(top);
    for (const Unit &unit : units) {
        if (unit.frame < 0)
            sorted->push_back(unit.elements.front());
        else
            sortLevel(unit.frame, unit.elements, sorted);
    }
    if (bottom >= 0)
        sorted->push_back(bottom);
}

void Ordering::sortRank(int rank)
{
    std::vector<int> &elements = m_layers.ranks[at(rank)];
    if (m_layers.frames.empty()) {
        std::stable_sort(elements.begin(), elements.end(),
                         [this](int a, int b) { return m_key[at(a)] < m_key[at(b)]; });
    } else {
        std::vector<int> sorted;
        sorted.reserve(elements.size());
        sortLevel(-1, elements, &sorted);
        elements = sorted;
    }
    number(rank);
}

/// Frames lie above each other in the same order in all ranks.
void Ordering::keyFrames()
{
    if (m_layers.frames.empty())
        return;
    std::vector<double> sums(m_layers.frames.size(), 0.0);
    std::vector<int> counts(m_layers.frames.size(), 0);
    for (const Layers::Element &element : m_layers.elements) {
        if (element.kind != Layers::Kind::Box)
            continue;
        for (int f = element.frame; f >= 0; f = m_layers.frames[at(f)].parent) {
            sums[at(f)] += element.y;
            ++counts[at(f)];
        }
    }
    for (std::size_t f = 0; f < sums.size(); ++f)
        m_layers.frames[f].key = counts[f] > 0 ? sums[f] / counts[f] : 0.0;
}

void Ordering::setKeys(int rank, int sides, bool median)
{
    std::vector<double> places;
    for (const int e : m_layers.ranks[at(rank)]) {
        const Layers::Element &own = m_layers.element(e);
        places.clear();
        const auto add = [&](int other, double there, double here) {
            const Layers::Element &far = m_layers.element(other);
            places.push_back(far.y - far.height / 2.0 + there - here + own.height / 2.0);
        };
        if (sides & Left) {
            for (int i = m_layers.inStart[at(e)]; i < m_layers.inStart[at(e) + 1]; ++i) {
                const Layers::Segment &segment = m_layers.segment(m_layers.in[at(i)]);
                add(segment.from, segment.fromY, segment.toY);
            }
        }
        if (sides & Right) {
            for (int i = m_layers.outStart[at(e)]; i < m_layers.outStart[at(e) + 1]; ++i) {
                const Layers::Segment &segment = m_layers.segment(m_layers.out[at(i)]);
                add(segment.to, segment.toY, segment.fromY);
            }
        }
        if (places.empty()) {
            m_key[at(e)] = own.y;
        } else if (median) {
            std::sort(places.begin(), places.end());
            const std::size_t middle = places.size() / 2;
            m_key[at(e)] = places.size() % 2 == 1 ? places[middle]
                                                  : (places[middle - 1] + places[middle]) / 2.0;
        } else {
            m_key[at(e)] = std::accumulate(places.begin(), places.end(), 0.0)
                           / double(places.size());
        }
    }
}

/// Estimates where the elements come to stand: near their keys, in order, apart.
void Ordering::settleRank(int rank)
{
    const std::vector<int> &elements = m_layers.ranks[at(rank)];
    Isotonic places;
    double offset = 0.0;
    double before = 0.0;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const Layers::Element &element = m_layers.element(elements[i]);
        if (i > 0)
            offset += (before + element.height) / 2.0 + Gap;
        before = element.height;
        places.add(m_key[at(elements[i])] - offset, 1.0);
    }
    const std::vector<double> &found = places.solve();
    offset = 0.0;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        Layers::Element &element = m_layers.element(elements[i]);
        if (i > 0)
            offset += (m_layers.element(elements[i - 1]).height + element.height) / 2.0 + Gap;
        element.y = found[i] + offset;
    }
}

void Ordering::sweep(bool rightwards, int sides, bool median, bool sort)
{
    const int count = int(m_layers.ranks.size());
    for (int i = 0; i < count; ++i) {
        const int rank = rightwards ? i : count - 1 - i;
        setKeys(rank, sides, median);
        // Frames lie in one order in all ranks, in the first as well.
        if (sort && (i > 0 || !m_layers.frames.empty()))
            sortRank(rank);
        settleRank(rank);
    }
    keyFrames();
}

// --- starts

void Ordering::sortAllByY()
{
    keyFrames();
    for (std::size_t e = 0; e < m_layers.elements.size(); ++e)
        m_key[e] = m_layers.elements[e].y;
    for (int rank = 0; rank < int(m_layers.ranks.size()); ++rank) {
        sortRank(rank);
        settleRank(rank);
    }
}

void Ordering::startFromToday()
{
    sortAllByY();
}

/// Gives all that wires join to the element their places in the order in which the walk comes to them.
void Ordering::walkFrom(int root, std::vector<char> *seen, double *next)
{
    std::vector<int> open{root};
    (*seen)[at(root)] = 1;
    const auto reach = [&open, seen](int element) {
        if (!std::exchange((*seen)[at(element)], char(1)))
            open.push_back(element);
    };
    while (!open.empty()) {
        const int e = open.back();
        open.pop_back();
        m_layers.element(e).y = *next;
        *next += 1.0;
        for (int i = m_layers.outStart[at(e) + 1]; i-- > m_layers.outStart[at(e)];)
            reach(m_layers.segment(m_layers.out[at(i)]).to);
        for (int i = m_layers.inStart[at(e) + 1]; i-- > m_layers.inStart[at(e)];)
            reach(m_layers.segment(m_layers.in[at(i)]).from);
    }
}

void Ordering::startFromWalk(bool fromSources)
{
    std::vector<char> seen(m_layers.elements.size(), 0);
    double next = 0.0;
    const int count = int(m_layers.ranks.size());
    for (int i = 0; i < count; ++i) {
        for (const int root : m_layers.ranks[at(fromSources ? i : count - 1 - i)]) {
            if (!seen[at(root)])
                walkFrom(root, &seen, &next);
        }
    }
    sortAllByY();
}

/// As it is, with each element somewhat out of its place; always in the same way.
void Ordering::startShaken(unsigned seed)
{
    std::minstd_rand random(seed);
    for (int rank = 0; rank < int(m_layers.ranks.size()); ++rank) {
        double y = 0.0;
        for (const int e : m_layers.ranks[at(rank)]) {
            const double share = double(random() % 1000U) / 1000.0;
            m_layers.element(e).y = y + Shaking * share;
            y += m_layers.element(e).height + Gap;
        }
    }
    sortAllByY();
}

/// The frame, counted from above, and the next one below it in the same frame change places.
bool Ordering::startWithExchangedFrames(std::size_t upper)
{
    std::vector<int> order(m_layers.frames.size());
    std::iota(order.begin(), order.end(), 0);
    keyFrames();
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
        const Layers::Frame &one = m_layers.frames[at(a)];
        const Layers::Frame &other = m_layers.frames[at(b)];
        return one.parent != other.parent ? one.parent < other.parent : one.key < other.key;
    });
    if (upper + 1 >= order.size()
        || m_layers.frames[at(order[upper])].parent != m_layers.frames[at(order[upper + 1])].parent)
        return false;
    const double way = m_layers.frames[at(order[upper + 1])].key
                       - m_layers.frames[at(order[upper])].key;
    for (Layers::Element &element : m_layers.elements) {
        for (int f = element.frame; f >= 0; f = m_layers.frames[at(f)].parent) {
            if (f == order[upper] || f == order[upper + 1])
                element.y += f == order[upper] ? way : -way;
        }
    }
    sortAllByY();
    return true;
}

/// First as the wires run; then from the best so far.
void Ordering::startAgain(int start, const Order &best)
{
    if (start < FewStarts) {
        startFromWalk(start == 1);
        return;
    }
    restore(best);
    if (start % 2 == 1 || !startWithExchangedFrames(std::size_t(start - FewStarts) / 2))
        startShaken(unsigned(start));
}

std::int64_t Ordering::improve(int sweeps)
{
    climb();
    std::int64_t best = crossings();
    Order order = save();
    int idle = 0;
    for (int i = 0; i < sweeps && best > 0 && idle < MostIdle && m_budget > 0; ++i) {
        m_budget -= 4 * std::int64_t(m_layers.elements.size());
        if (i % 6 < 4) {
            sweep(i % 2 == 0, i % 2 == 0 ? Left : Right, (i / 2) % 2 == 1, true);
        } else {
            // From the best so far, drawn as it will be.
            restore(order);
            for (int round = 0; round < 4; ++round)
                sweep(round % 2 == 0, Both, false, false);
            sweep(i % 2 == 0, Both, i % 6 == 5, true);
        }
        m_evenMoves = i % 4 >= 2;
        climb();
        m_evenMoves = false;
        const std::int64_t found = crossings();
        ++idle;
        if (found < best) {
            best = found;
            order = save();
            idle = 0;
        }
    }
    restore(order);
    return best;
}

/// Among the best few, unless one of them is as good: that is mostly the same.
void Ordering::keep(std::int64_t crossings, std::vector<Found> *best) const
{
    const auto place = std::lower_bound(
        best->begin(), best->end(), crossings,
        [](const Found &found, std::int64_t limit) { return found.crossings < limit; });
    if (place != best->end() && place->crossings == crossings)
        return;
    best->insert(place, Found{crossings, save()});
    if (best->size() > MostKept)
        best->pop_back();
}

std::vector<Ordering::Order> Ordering::run(std::int64_t budget)
{
    m_budget = budget;
    m_key.assign(m_layers.elements.size(), 0.0);
    std::vector<double> heights;
    for (const Layers::Element &element : m_layers.elements)
        heights.push_back(element.y);
    startFromToday();
    const std::int64_t today = crossings();
    climb();
    const Order kept = save();
    const std::int64_t keptCrossings = crossings();
    std::vector<Found> best;
    keep(improve(MostSweeps), &best);
    // What was in order stays as it was.
    m_layers.isKept = today <= best.front().crossings + best.front().crossings / 4 + 1;
    if (m_layers.isKept && keptCrossings <= best.front().crossings + best.front().crossings / 20) {
        restore(kept);
        for (std::size_t e = 0; e < heights.size(); ++e)
            m_layers.elements[e].y = heights[e];
        return {kept};
    }
    const int starts = m_layers.elements.size() < ManyElements ? MostStarts : FewStarts;
    for (int start = 0;
         start < starts && best.front().crossings > 0 && !m_layers.isKept && m_budget > 0;
         ++start) {
        startAgain(start, best.front().order);
        keep(improve(MostSweeps), &best);
    }
    restore(best.front().order);
    std::vector<Order> orders;
    orders.reserve(best.size());
    for (Found &found : best)
        orders.push_back(std::move(found.order));
    return orders;
}

std::vector<Layers::Order> orderElements(Layers *layers, long budget)
{
    return Ordering(layers).run(budget);
}
