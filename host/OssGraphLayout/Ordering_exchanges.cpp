#include "OssGraphLayout/Ordering.h"

#include <algorithm>
#include <cmath>
#include <utility>

// Crossings are counted by ports with an accumulator tree, after Barth, Juenger and Mutzel (2002).

namespace {

constexpr int MostPasses = 12;
constexpr int MostWay = 40; ///< that an element is taken in its rank

std::size_t at(int index)
{
    return std::size_t(index);
}

} // namespace

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

// --- exchanges

/// m_keys has room.
Ordering::Keys Ordering::keysOf(int element, bool left)
{
    const std::vector<int> &starts = left ? m_layers.inStart : m_layers.outStart;
    const std::vector<int> &list = left ? m_layers.in : m_layers.out;
    const std::size_t first = m_keys.size();
    Keys keys{m_keys.data() + first, 0, 0};
    for (int i = starts[at(element)]; i < starts[at(element) + 1]; ++i) {
        const Layers::Segment &segment = m_layers.segment(list[at(i)]);
        m_keys.push_back(left ? Key{m_outBase[at(segment.from)] + segment.fromPort, segment.weight}
                              : Key{m_inBase[at(segment.to)] + segment.toPort, segment.weight});
        ++keys.size;
        keys.weight += segment.weight;
    }
    if (keys.size > 1)
        std::sort(m_keys.begin() + std::ptrdiff_t(first), m_keys.end(),
                  [](const Key &a, const Key &b) { return a.place < b.place; });
    return keys;
}

/// Crossings of their wires as they are, less those after an exchange.
std::int64_t Ordering::gainOfExchange(const Keys &upper, const Keys &lower)
{
    if (upper.size == 0 || lower.size == 0)
        return 0;
    if (upper.size == 1 && lower.size == 1) {
        const int way = upper.first->place - lower.first->place;
        const std::int64_t both = std::int64_t(upper.weight) * lower.weight;
        return way > 0 ? both : way < 0 ? -both : 0;
    }
    std::int64_t gain = 0;
    const Key *first = lower.begin();  // of those of the lower that are not above
    const Key *beyond = lower.begin(); // of those that are below
    std::int64_t above = 0;
    std::int64_t notBelow = 0;
    for (const Key &key : upper) {
        for (; first != lower.end() && first->place < key.place; ++first)
            above += first->weight;
        for (; beyond != lower.end() && beyond->place <= key.place; ++beyond)
            notBelow += beyond->weight;
        gain += key.weight * (above - (lower.weight - notBelow));
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
    std::size_t count = 0;
    for (const int e : elements)
        count += at(m_layers.inStart[at(e) + 1] - m_layers.inStart[at(e)]
                    + m_layers.outStart[at(e) + 1] - m_layers.outStart[at(e)]);
    m_keys.clear();
    m_keys.reserve(count);
    m_left.clear();
    m_right.clear();
    for (const int e : elements) {
        m_left.push_back(keysOf(e, true));
        m_right.push_back(keysOf(e, false));
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

/// Of those near it in its rank the place where fewest of its wires cross others; the nearest of equal ones.
int Ordering::bestPlaceFor(int start, const std::vector<int> &elements)
{
    std::int64_t bestGain = 0;
    int best = start;
    for (const int step : {-1, 1}) {
        std::int64_t gain = 0;
        for (int i = start + step;
             i >= 0 && i < int(elements.size()) && std::abs(i - start) <= MostWay; i += step) {
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
    return best;
}

void Ordering::takeAlong(int start, int end, std::vector<int> *elements)
{
    const int step = end > start ? 1 : -1;
    for (int i = start; i != end; i += step) {
        std::swap((*elements)[at(i)], (*elements)[at(i + step)]);
        std::swap(m_layers.element((*elements)[at(i)]).y,
                  m_layers.element((*elements)[at(i + step)]).y);
        std::swap(m_left[at(i)], m_left[at(i + step)]);
        std::swap(m_right[at(i)], m_right[at(i + step)]);
    }
}

/// Takes each element to the best of the places near it, after Matuszewski, Schoenfeld and Molitor (1999).
bool Ordering::siftIn(int rank)
{
    std::vector<int> &elements = m_layers.ranks[at(rank)];
    if (elements.size() < 3)
        return false;
    gatherKeys(rank);
    bool any = false;
    for (int start = 0; start < int(elements.size()); ++start) {
        const int best = bestPlaceFor(start, elements);
        takeAlong(start, best, &elements);
        any = any || best != start;
    }
    if (any)
        number(rank);
    return any;
}

void Ordering::soilBeside(int rank)
{
    for (const int near : {rank - 1, rank + 1}) {
        if (near >= 0 && near < int(m_layers.ranks.size()))
            m_dirty[at(near)] = 1;
    }
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
            soilBeside(rank);
        }
    }
}

void Ordering::climb()
{
    workOn<&Ordering::exchangeIn>();
    workOn<&Ordering::siftIn>();
}
