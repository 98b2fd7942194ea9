#include "OssGraphLayout/Isotonic.h"
#include "OssGraphLayout/Layers.h"
#include "OssGraphLayout/NetworkSimplex.h"

#include <algorithm>
#include <cmath>
#include <numeric>

// Heights of least weighted differences along wires, by network simplex (Gansner et al. 1993). What long
// wires pass is drawn level as far as such parts do not cross, as in Brandes and Koepf (2001).

namespace {

constexpr double Scale = 4.0; ///< steps of a scene unit
constexpr int EndWeight = 1;
constexpr int PassWeight = 2;
constexpr int LevelWeight = 8;
constexpr int Rounds = 16;

std::size_t at(int index)
{
    return std::size_t(index);
}

int scaled(double length)
{
    return int(std::lround(length * Scale));
}

class Heights
{
public:
    Heights(Layers *layers, const OssLyOptions &options)
        : m_layers(*layers)
        , m_options(options)
    {
    }

    void run();

private:
    bool isLevel(int segment) const;
    void joinLevel();
    void keepLevel(const std::vector<int> &level);
    int find(int element);
    void numberPoints();
    double gapBetween(const Layers::Element &upper, const Layers::Element &lower) const;
    void separate(NetworkSimplex *simplex);
    void pull(NetworkSimplex *simplex);
    void relax(int rounds);
    void gatherPulls(int e, int side, std::vector<std::pair<double, int>> *pulls) const;
    void relaxRank(int rank, int side);
    double wantedBy(const std::vector<std::pair<double, int>> &pulls) const;
    std::vector<int> firstPlaces(int pointCount) const;

    struct Distance
    {
        int upper;
        int lower;
        int length;
    };

    struct Pull
    {
        int from;
        int to;
        int fromY;
        int toY;
        int weight;
    };

    Layers &m_layers;
    const OssLyOptions &m_options;
    std::vector<int> m_leader; ///< of elements that have one height
    std::vector<int> m_point;  ///< of elements
    int m_pointCount = 0;
    std::vector<Distance> m_distances;
    std::vector<Pull> m_pulls;
};

int Heights::find(int element)
{
    while (m_leader[at(element)] != element)
        element = m_leader[at(element)] = m_leader[at(m_leader[at(element)])];
    return element;
}

bool Heights::isLevel(int segment) const
{
    const Layers::Segment &one = m_layers.segment(segment);
    return m_layers.element(one.from).kind != Layers::Kind::Box
           && m_layers.element(one.to).kind != Layers::Kind::Box;
}

namespace {

/// Which parts cross a border: that ends below all that begin above it, and the other way round.
template <class IsBorder, class EndOf>
std::vector<char> acrossBorders(const std::vector<int> &level, int beyond, const IsBorder &isBorder,
                                const EndOf &endOf)
{
    std::vector<char> dropped(level.size(), 0);
    int most = -1;
    for (std::size_t i = 0; i < level.size(); ++i) {
        if (isBorder(level[i]))
            most = std::max(most, endOf(level[i]));
        else if (endOf(level[i]) < most)
            dropped[i] = 1;
    }
    int least = beyond;
    for (std::size_t i = level.size(); i-- > 0;) {
        if (isBorder(level[i]))
            least = std::min(least, endOf(level[i]));
        else if (endOf(level[i]) > least)
            dropped[i] = 1;
    }
    return dropped;
}

} // namespace

/// Of level parts between two ranks, from top to bottom, as many as do not cross; borders never bend.
void Heights::keepLevel(const std::vector<int> &level)
{
    const auto isBorder = [this](int segment) {
        return m_layers.element(m_layers.segment(segment).from).kind != Layers::Kind::Passing;
    };
    const auto endOf = [this](int segment) {
        return m_layers.element(m_layers.segment(segment).to).position;
    };
    const int count = int(level.size());
    const std::vector<char> dropped = acrossBorders(level, int(m_layers.elements.size()), isBorder,
                                                    endOf);
    // Of the others the longest run that does not cross.
    std::vector<int> tails;
    std::vector<int> before(level.size(), -1);
    for (int i = 0; i < count; ++i) {
        if (dropped[at(i)])
            continue;
        const auto place = std::lower_bound(tails.begin(), tails.end(), i, [&](int a, int b) {
            return endOf(level[at(a)]) < endOf(level[at(b)]);
        });
        before[at(i)] = place == tails.begin() ? -1 : *(place - 1);
        if (place == tails.end())
            tails.push_back(i);
        else
            *place = i;
    }
    std::vector<char> kept(level.size(), 0);
    for (int i = tails.empty() ? -1 : tails.back(); i >= 0; i = before[at(i)])
        kept[at(i)] = 1;
    for (int i = 0; i < count; ++i) {
        const Layers::Segment &one = m_layers.segment(level[at(i)]);
        if (kept[at(i)])
            m_leader[at(find(one.from))] = find(one.to);
    }
}

/// Of level parts that cross between two ranks the one that comes first is bent; borders never are.
void Heights::joinLevel()
{
    m_leader.resize(m_layers.elements.size());
    std::iota(m_leader.begin(), m_leader.end(), 0);
    for (const std::vector<int> &rank : m_layers.ranks) {
        std::vector<int> level;
        for (const int e : rank) {
            for (int i = m_layers.outStart[at(e)]; i < m_layers.outStart[at(e) + 1]; ++i) {
                if (isLevel(m_layers.out[at(i)]))
                    level.push_back(m_layers.out[at(i)]);
            }
        }
        keepLevel(level);
    }
    // Borders are level whatever was kept.
    for (const Layers::Frame &frame : m_layers.frames) {
        for (const std::vector<int> *side : {&frame.tops, &frame.bottoms}) {
            for (std::size_t i = 1; i < side->size(); ++i)
                m_leader[at(find((*side)[i - 1]))] = find((*side)[i]);
        }
    }
}

void Heights::numberPoints()
{
    m_point.assign(m_layers.elements.size(), -1);
    m_pointCount = 0;
    for (int e = 0; e < int(m_layers.elements.size()); ++e) {
        const int leader = find(e);
        if (m_point[at(leader)] < 0)
            m_point[at(leader)] = m_pointCount++;
        m_point[at(e)] = m_point[at(leader)];
    }
}

double Heights::gapBetween(const Layers::Element &upper, const Layers::Element &lower) const
{
    using Kind = Layers::Kind;
    const auto frame = [this](const Layers::Element &element) -> const Layers::Frame & {
        return m_layers.frames[at(element.owner)];
    };
    if (upper.kind == Kind::Top) {
        if (lower.kind == Kind::Bottom)
            return frame(upper).topMargin + frame(upper).margin;
        return lower.kind == Kind::Passing ? frame(upper).topMargin / 2.0 + m_options.wireGap / 2.0
                                           : frame(upper).topMargin;
    }
    if (lower.kind == Kind::Bottom)
        return frame(lower).margin;
    if (upper.kind == Kind::Passing || lower.kind == Kind::Passing)
        return upper.kind == lower.kind ? m_options.wireGap * 0.2 : m_options.wireGap;
    return m_options.rowGap;
}

void Heights::separate(NetworkSimplex *simplex)
{
    for (const std::vector<int> &rank : m_layers.ranks) {
        for (std::size_t i = 1; i < rank.size(); ++i) {
            const Layers::Element &upper = m_layers.element(rank[i - 1]);
            const Layers::Element &lower = m_layers.element(rank[i]);
            m_distances.push_back({m_point[at(rank[i - 1])], m_point[at(rank[i])],
                                   scaled(upper.height + gapBetween(upper, lower))});
        }
    }
    std::sort(m_distances.begin(), m_distances.end(), [](const Distance &a, const Distance &b) {
        if (a.upper != b.upper)
            return a.upper < b.upper;
        return a.lower != b.lower ? a.lower < b.lower : a.length > b.length;
    });
    m_distances.erase(std::unique(m_distances.begin(), m_distances.end(),
                                  [](const Distance &a, const Distance &b) {
                                      return a.upper == b.upper && a.lower == b.lower;
                                  }),
                      m_distances.end());
    for (const Distance &distance : m_distances)
        simplex->addEdge(distance.upper, distance.lower, distance.length, 0);
    for (const Layers::Frame &frame : m_layers.frames) {
        if (!frame.tops.empty())
            simplex->addEdge(m_point[at(frame.tops.front())], m_point[at(frame.bottoms.front())], 0,
                             EndWeight);
    }
}

void Heights::pull(NetworkSimplex *simplex)
{
    int next = m_pointCount;
    for (const Pull &one : m_pulls) {
        simplex->addEdge(next, one.from, -one.fromY, one.weight);
        simplex->addEdge(next, one.to, -one.toY, one.weight);
        ++next;
    }
}

int weightOf(const Layers &layers, const Layers::Segment &segment)
{
    const bool passes = layers.element(segment.from).kind != Layers::Kind::Box;
    const bool leads = layers.element(segment.to).kind != Layers::Kind::Box;
    return passes && leads ? LevelWeight : passes || leads ? PassWeight : EndWeight;
}

/// The weighted median.
double Heights::wantedBy(const std::vector<std::pair<double, int>> &pulls) const
{
    int all = 0;
    for (const auto &pull : pulls)
        all += pull.second;
    int sum = 0;
    for (std::size_t i = 0; i < pulls.size(); ++i) {
        sum += pulls[i].second;
        if (2 * sum > all)
            return pulls[i].first;
        if (2 * sum == all)
            return (pulls[i].first + pulls[i + 1].first) / 2.0;
    }
    return 0.0;
}

/// Where wires pull an element, and how much; sides as relaxRank() has them.
void Heights::gatherPulls(int e, int side, std::vector<std::pair<double, int>> *pulls) const
{
    pulls->clear();
    const auto add = [&](const Layers::Segment &segment, bool left) {
        const Layers::Element &other = m_layers.element(left ? segment.from : segment.to);
        const double there = left ? segment.fromY : segment.toY;
        const double here = left ? segment.toY : segment.fromY;
        pulls->emplace_back(other.y - other.height / 2.0 + there - here,
                            weightOf(m_layers, segment));
    };
    if (side & 1) {
        for (int j = m_layers.inStart[at(e)]; j < m_layers.inStart[at(e) + 1]; ++j)
            add(m_layers.segment(m_layers.in[at(j)]), true);
    }
    if (side & 2) {
        for (int j = m_layers.outStart[at(e)]; j < m_layers.outStart[at(e) + 1]; ++j)
            add(m_layers.segment(m_layers.out[at(j)]), false);
    }
}

/// Each as near as the others of its rank let it to where its wires pull it. Side: from the left (1), from
/// the right (2), from both (3).
void Heights::relaxRank(int rank, int side)
{
    const std::vector<int> &elements = m_layers.ranks[at(rank)];
    Isotonic places;
    double offset = 0.0;
    std::vector<double> offsets;
    std::vector<std::pair<double, int>> pulls;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const int e = elements[i];
        const Layers::Element &own = m_layers.element(e);
        if (i > 0) {
            const Layers::Element &above = m_layers.element(elements[i - 1]);
            offset += above.height + gapBetween(above, own);
        }
        offsets.push_back(offset);
        gatherPulls(e, side, &pulls);
        std::sort(pulls.begin(), pulls.end());
        double wanted = own.y - own.height / 2.0;
        double weight = 0.01;
        if (!pulls.empty()) {
            wanted = wantedBy(pulls);
            weight = 0.0;
            for (const auto &pull : pulls)
                weight += pull.second;
        }
        places.add(wanted - offset, weight);
    }
    const std::vector<double> &found = places.solve();
    for (std::size_t i = 0; i < elements.size(); ++i) {
        Layers::Element &own = m_layers.element(elements[i]);
        own.y = found[i] + offsets[i] + own.height / 2.0;
    }
}

void Heights::relax(int rounds)
{
    const int count = int(m_layers.ranks.size());
    for (int round = 0; round < rounds; ++round) {
        const bool rightwards = round % 2 == 0;
        const int side = round >= rounds / 2 ? 3 : rightwards ? 1 : 2;
        for (int i = 0; i < count; ++i)
            relaxRank(rightwards ? i : count - 1 - i, side);
    }
}

/// As estimated while the elements were ordered, but far enough apart.
std::vector<int> Heights::firstPlaces(int pointCount) const
{
    std::vector<double> sums(at(m_pointCount), 0.0);
    std::vector<int> counts(at(m_pointCount), 0);
    for (std::size_t e = 0; e < m_layers.elements.size(); ++e) {
        const Layers::Element &element = m_layers.elements[e];
        sums[at(m_point[e])] += element.y - element.height / 2.0;
        ++counts[at(m_point[e])];
    }
    std::vector<int> places(at(pointCount));
    for (int p = 0; p < m_pointCount; ++p)
        places[at(p)] = scaled(sums[at(p)] / counts[at(p)]);
    std::vector<int> waiting(at(m_pointCount), 0);
    std::vector<std::vector<std::pair<int, int>>> below(at(m_pointCount));
    for (const Distance &distance : m_distances) {
        ++waiting[at(distance.lower)];
        below[at(distance.upper)].emplace_back(distance.lower, distance.length);
    }
    std::vector<int> open;
    for (int p = 0; p < m_pointCount; ++p) {
        if (waiting[at(p)] == 0)
            open.push_back(p);
    }
    while (!open.empty()) {
        const int p = open.back();
        open.pop_back();
        for (const auto &[lower, length] : below[at(p)]) {
            places[at(lower)] = std::max(places[at(lower)], places[at(p)] + length);
            if (--waiting[at(lower)] == 0)
                open.push_back(lower);
        }
    }
    int next = m_pointCount;
    for (const Pull &one : m_pulls)
        places[at(next++)] = std::min(places[at(one.from)] + one.fromY,
                                      places[at(one.to)] + one.toY);
    return places;
}

void Heights::run()
{
    joinLevel();
    numberPoints();
    for (const Layers::Segment &segment : m_layers.segments) {
        const int from = m_point[at(segment.from)];
        const int to = m_point[at(segment.to)];
        if (from == to)
            continue;
        const bool passes = m_layers.element(segment.from).kind == Layers::Kind::Passing;
        const bool leads = m_layers.element(segment.to).kind == Layers::Kind::Passing;
        const int weight = passes && leads ? LevelWeight : passes || leads ? PassWeight : EndWeight;
        m_pulls.push_back({from, to, scaled(segment.fromY), scaled(segment.toY), weight});
    }
    const int count = m_pointCount + int(m_pulls.size());
    if (!m_layers.isKept)
        relax(Rounds);
    NetworkSimplex simplex(count);
    separate(&simplex);
    pull(&simplex);
    simplex.startFrom(firstPlaces(count));
    simplex.solve(4 * count + 200);
    const std::vector<int> &places = simplex.balance();
    m_layers.tops.assign(m_layers.boxes.size(), 0.0);
    for (int e = 0; e < int(m_layers.elements.size()); ++e) {
        Layers::Element &element = m_layers.element(e);
        element.y = places[at(m_point[at(e)])] / Scale + element.height / 2.0;
        if (element.kind == Layers::Kind::Box)
            m_layers.tops[at(element.owner)] = places[at(m_point[at(e)])] / Scale;
    }
}

} // namespace

void placeHeights(Layers *layers, const OssLyOptions &options)
{
    Heights(layers, options).run();
}
