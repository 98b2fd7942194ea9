#include "OssGraphLayout/Isotonic.h"
#include "OssGraphLayout/Layers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>

// Layer by layer, after Sugiyama, Tagawa and Toda (1981), with the exchanges of neighbours of Gansner et al. (1993).
// Crossings are counted by ports with an accumulator tree, after Barth, Juenger and Mutzel (2002).

namespace {

constexpr double Gap = 30.0; ///< estimated
constexpr int MostPasses = 12;
constexpr int MostWay = 40; ///< that an element is taken in its rank
constexpr int MostSweeps = 60;
constexpr int MostIdle = 8; ///< sweeps without success

std::size_t at(int index)
{
    return std::size_t(index);
}

using Order = std::vector<std::vector<int>>;

class Ordering
{
public:
    explicit Ordering(Layers *layers)
        : m_layers(*layers)
        , m_inBase(layers->elements.size(), 0)
        , m_outBase(layers->elements.size(), 0)
    {
    }

    void run(std::int64_t budget);

private:
    enum Sides { Left = 1, Right = 2, Both = 3 };

    struct Key
    {
        int place;
        int weight;
    };

    using Keys = std::vector<Key>;

    // Starts
    void startFromToday();
    void startFromWalk(bool fromSources);
    void sortAllByY();

    // Improving
    std::int64_t improve(int sweeps);
    void sweep(bool rightwards, int sides, bool median, bool sort);
    void climb();
    void sortRank(int rank);
    void sortLevel(int frame, const std::vector<int> &elements, std::vector<int> *sorted);
    void setKeys(int rank, int sides, bool median);
    void keyFrames();
    void settleRank(int rank);
    template <bool (Ordering::*work)(int)>
    void workOn();
    bool exchangeIn(int rank);
    bool siftIn(int rank);
    void gatherKeys(int rank);
    void fillKeys(int element, bool left, Keys *keys) const;
    static std::int64_t gainOfExchange(const Keys &upper, const Keys &lower);
    bool mayExchange(int a, int b) const;

    // Counting
    void number(int rank);
    std::int64_t crossings();
    std::int64_t crossingsRightOf(int rank);

    Order save() const { return m_layers.ranks; }

    void restore(const Order &order);
    int frameAt(int element, int level) const;

    Layers &m_layers;
    std::vector<int> m_inBase, m_outBase; ///< of elements: where their ports are counted from
    std::vector<int> m_accumulated;
    std::vector<double> m_key;
    std::vector<char> m_dirty;
    std::vector<Keys> m_left, m_right; ///< of a rank's elements, by their places in it
    std::int64_t m_budget = 0;         ///< of looks at two elements
    bool m_evenMoves = false;          ///< also where nothing is won: other ways open then
};

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

// --- counting

std::int64_t Ordering::crossingsRightOf(int rank)
{
    const std::vector<int> &elements = m_layers.ranks[at(rank)];
    int count = 0;
    for (const int e : elements)
        count += m_layers.outStart[at(e) + 1] - m_layers.outStart[at(e)];
    m_accumulated.assign(at(count) + 1, 0);
    int inserted = 0;
    std::int64_t crossings = 0;
    const auto add = [&](int place, int weight) {
        inserted += weight;
        for (int i = place + 1; i <= count; i += i & -i)
            m_accumulated[at(i)] += weight;
    };
    const auto upTo = [&](int place) {
        int sum = 0;
        for (int i = place + 1; i > 0; i -= i & -i)
            sum += m_accumulated[at(i)];
        return sum;
    };
    for (const int e : elements) {
        const int end = m_layers.outStart[at(e) + 1];
        for (int i = m_layers.outStart[at(e)]; i < end;) {
            const int port = m_layers.segment(m_layers.out[at(i)]).fromPort;
            int next = i;
            for (; next < end && m_layers.segment(m_layers.out[at(next)]).fromPort == port;
                 ++next) {
                const Layers::Segment &segment = m_layers.segment(m_layers.out[at(next)]);
                const int place = m_inBase[at(segment.to)] + segment.toPort;
                crossings += std::int64_t(segment.weight) * (inserted - upTo(place));
            }
            for (; i < next; ++i) {
                const Layers::Segment &segment = m_layers.segment(m_layers.out[at(i)]);
                add(m_inBase[at(segment.to)] + segment.toPort, segment.weight);
            }
        }
    }
    return crossings;
}

std::int64_t Ordering::crossings()
{
    std::int64_t sum = 0;
    for (int rank = 0; rank + 1 < int(m_layers.ranks.size()); ++rank)
        sum += crossingsRightOf(rank);
    return sum;
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
        if (i > 0 && sort)
            sortRank(rank);
        settleRank(rank);
    }
    keyFrames();
}

// --- exchanges

void Ordering::fillKeys(int element, bool left, Keys *keys) const
{
    const std::vector<int> &starts = left ? m_layers.inStart : m_layers.outStart;
    const std::vector<int> &list = left ? m_layers.in : m_layers.out;
    keys->clear();
    for (int i = starts[at(element)]; i < starts[at(element) + 1]; ++i) {
        const Layers::Segment &segment = m_layers.segment(list[at(i)]);
        keys->push_back(left ? Key{m_outBase[at(segment.from)] + segment.fromPort, segment.weight}
                             : Key{m_inBase[at(segment.to)] + segment.toPort, segment.weight});
    }
    std::sort(keys->begin(), keys->end(),
              [](const Key &a, const Key &b) { return a.place < b.place; });
}

/// Crossings of their wires as they are, less those after an exchange.
std::int64_t Ordering::gainOfExchange(const Keys &upper, const Keys &lower)
{
    if (upper.empty() || lower.empty())
        return 0;
    std::int64_t gain = 0;
    std::size_t first = 0;  // of those of the lower that are not above
    std::size_t beyond = 0; // of those that are below
    std::int64_t above = 0;
    std::int64_t notBelow = 0;
    std::int64_t all = 0;
    for (const Key &key : lower)
        all += key.weight;
    for (const Key &key : upper) {
        for (; first < lower.size() && lower[first].place < key.place; ++first)
            above += lower[first].weight;
        for (; beyond < lower.size() && lower[beyond].place <= key.place; ++beyond)
            notBelow += lower[beyond].weight;
        gain += key.weight * (above - (all - notBelow));
    }
    return gain;
}

bool Ordering::mayExchange(int a, int b) const
{
    const auto isPlain = [](const Layers::Element &element) {
        return element.kind == Layers::Kind::Box || element.kind == Layers::Kind::Passing;
    };
    return isPlain(m_layers.element(a)) && isPlain(m_layers.element(b))
           && m_layers.element(a).frame == m_layers.element(b).frame;
}

void Ordering::gatherKeys(int rank)
{
    const std::vector<int> &elements = m_layers.ranks[at(rank)];
    if (m_left.size() < elements.size()) {
        m_left.resize(elements.size());
        m_right.resize(elements.size());
    }
    for (std::size_t i = 0; i < elements.size(); ++i) {
        fillKeys(elements[i], true, &m_left[i]);
        fillKeys(elements[i], false, &m_right[i]);
    }
}

bool Ordering::exchangeIn(int rank)
{
    std::vector<int> &elements = m_layers.ranks[at(rank)];
    if (elements.size() < 2)
        return false;
    gatherKeys(rank);
    bool any = false;
    bool again = true;
    for (int pass = 0; again && pass < MostPasses; ++pass) {
        again = false;
        for (std::size_t i = 0; i + 1 < elements.size(); ++i) {
            if (!mayExchange(elements[i], elements[i + 1]))
                continue;
            --m_budget;
            const std::int64_t gain = gainOfExchange(m_left[i], m_left[i + 1])
                                      + gainOfExchange(m_right[i], m_right[i + 1]);
            if (gain < 0 || (gain == 0 && (!m_evenMoves || pass > 0)))
                continue;
            std::swap(elements[i], elements[i + 1]);
            std::swap(m_layers.element(elements[i]).y, m_layers.element(elements[i + 1]).y);
            std::swap(m_left[i], m_left[i + 1]);
            std::swap(m_right[i], m_right[i + 1]);
            again = true;
            any = any || gain > 0;
            if (gain == 0)
                ++i; // not on and on
        }
    }
    number(rank);
    return any;
}

/// Takes each element to the best of the places near it, after Matuszewski, Schoenfeld and Molitor (1999).
bool Ordering::siftIn(int rank)
{
    std::vector<int> &elements = m_layers.ranks[at(rank)];
    if (elements.size() < 3)
        return false;
    gatherKeys(rank);
    bool any = false;
    const int count = int(elements.size());
    for (int start = 0; start < count; ++start) {
        std::int64_t bestGain = 0;
        int best = start;
        for (const int step : {-1, 1}) {
            std::int64_t gain = 0;
            for (int i = start + step; i >= 0 && i < count && std::abs(i - start) <= MostWay;
                 i += step) {
                if (!mayExchange(elements[at(start)], elements[at(i)]))
                    break;
                --m_budget;
                const int upper = step > 0 ? start : i;
                const int lower = step > 0 ? i : start;
                gain += gainOfExchange(m_left[at(upper)], m_left[at(lower)])
                        + gainOfExchange(m_right[at(upper)], m_right[at(lower)]);
                if (gain > bestGain) {
                    bestGain = gain;
                    best = i;
                }
            }
        }
        const int step = best > start ? 1 : -1;
        for (int i = start; i != best; i += step) {
            std::swap(elements[at(i)], elements[at(i + step)]);
            std::swap(m_layers.element(elements[at(i)]).y,
                      m_layers.element(elements[at(i + step)]).y);
            std::swap(m_left[at(i)], m_left[at(i + step)]);
            std::swap(m_right[at(i)], m_right[at(i + step)]);
        }
        any = any || best != start;
    }
    if (any)
        number(rank);
    return any;
}

template <bool (Ordering::*work)(int)>
void Ordering::workOn()
{
    const int count = int(m_layers.ranks.size());
    m_dirty.assign(at(count), 1);
    bool again = true;
    for (int pass = 0; again && pass < MostPasses && m_budget > 0; ++pass) {
        again = false;
        for (int i = 0; i < count; ++i) {
            const int rank = pass % 2 == 0 ? i : count - 1 - i;
            if (!m_dirty[at(rank)])
                continue;
            m_dirty[at(rank)] = 0;
            if (!(this->*work)(rank))
                continue;
            again = true;
            for (const int near : {rank - 1, rank + 1}) {
                if (near >= 0 && near < count)
                    m_dirty[at(near)] = 1;
            }
        }
    }
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

/// In the order in which a walk along the wires comes to the elements.
void Ordering::startFromWalk(bool fromSources)
{
    std::vector<char> seen(m_layers.elements.size(), 0);
    std::vector<int> open;
    double next = 0.0;
    const int count = int(m_layers.ranks.size());
    for (int i = 0; i < count; ++i) {
        const Order::value_type start = m_layers.ranks[at(fromSources ? i : count - 1 - i)];
        for (const int root : start) {
            if (seen[at(root)])
                continue;
            open.push_back(root);
            seen[at(root)] = 1;
            while (!open.empty()) {
                const int e = open.back();
                open.pop_back();
                m_layers.element(e).y = next;
                next += 1.0;
                for (int j = m_layers.outStart[at(e) + 1]; j-- > m_layers.outStart[at(e)];) {
                    const int to = m_layers.segment(m_layers.out[at(j)]).to;
                    if (!seen[at(to)]) {
                        seen[at(to)] = 1;
                        open.push_back(to);
                    }
                }
                for (int j = m_layers.inStart[at(e) + 1]; j-- > m_layers.inStart[at(e)];) {
                    const int from = m_layers.segment(m_layers.in[at(j)]).from;
                    if (!seen[at(from)]) {
                        seen[at(from)] = 1;
                        open.push_back(from);
                    }
                }
            }
        }
    }
    sortAllByY();
}

void Ordering::climb()
{
    workOn<&Ordering::exchangeIn>();
    workOn<&Ordering::siftIn>();
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

void Ordering::run(std::int64_t budget)
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
    std::int64_t best = improve(MostSweeps);
    // What was in order stays as it was.
    m_layers.isKept = today <= best + best / 4 + 1;
    if (m_layers.isKept && keptCrossings <= best + best / 20) {
        restore(kept);
        for (std::size_t e = 0; e < heights.size(); ++e)
            m_layers.elements[e].y = heights[e];
        return;
    }
    Order order = save();
    for (const bool fromSources : {false, true}) {
        if (best == 0 || m_layers.isKept || m_budget <= 0)
            break;
        startFromWalk(fromSources);
        const std::int64_t found = improve(MostSweeps);
        if (found < best) {
            best = found;
            order = save();
        }
    }
    restore(order);
}

} // namespace

void orderElements(Layers *layers, long budget)
{
    Ordering(layers).run(budget);
}
