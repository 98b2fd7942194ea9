#include "OssGraphLayout/NetworkSimplex.h"

#include <queue>

#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

namespace {

constexpr int SearchBatch = 30;

std::size_t at(int index)
{
    return std::size_t(index);
}

} // namespace

NetworkSimplex::NetworkSimplex(int pointCount)
    : m_count(pointCount)
{
}

void NetworkSimplex::addEdge(int tail, int head, int length, int weight)
{
    m_edges.push_back({tail, head, length, weight});
}

int NetworkSimplex::slack(int index) const
{
    const Edge &one = edge(index);
    return m_places[at(one.head)] - m_places[at(one.tail)] - one.length;
}

void NetworkSimplex::indexEdges()
{
    m_outStart.assign(at(m_count) + 1, 0);
    m_inStart.assign(at(m_count) + 1, 0);
    for (const Edge &one : m_edges) {
        ++m_outStart[at(one.tail) + 1];
        ++m_inStart[at(one.head) + 1];
    }
    std::partial_sum(m_outStart.begin(), m_outStart.end(), m_outStart.begin());
    std::partial_sum(m_inStart.begin(), m_inStart.end(), m_inStart.begin());
    m_out.resize(m_edges.size());
    m_in.resize(m_edges.size());
    m_heads.resize(m_edges.size());
    m_tails.resize(m_edges.size());
    std::vector<int> nextOut = m_outStart;
    std::vector<int> nextIn = m_inStart;
    for (int i = 0; i < int(m_edges.size()); ++i) {
        const Edge &one = edge(i);
        const std::size_t out = at(nextOut[at(one.tail)]++);
        const std::size_t in = at(nextIn[at(one.head)]++);
        m_out[out] = i;
        m_heads[out] = {one.head, one.length};
        m_in[in] = i;
        m_tails[in] = {one.tail, one.length};
    }
}

/// Parts that nothing joins are tied to the first point, at no cost. Points must have places.
void NetworkSimplex::connect()
{
    std::vector<int> leader(at(m_count));
    std::iota(leader.begin(), leader.end(), 0);
    const auto find = [&leader](int point) {
        while (leader[at(point)] != point)
            point = leader[at(point)] = leader[at(leader[at(point)])];
        return point;
    };
    for (const Edge &one : m_edges)
        leader[at(find(one.tail))] = find(one.head);
    for (int point = 1; point < m_count; ++point) {
        if (find(point) == find(0))
            continue;
        leader[at(find(point))] = find(0);
        addEdge(0, point, m_places[at(point)] - m_places[0], 0);
    }
}

void NetworkSimplex::placeBackmost()
{
    m_places.assign(at(m_count), 0);
    std::vector<int> waiting(at(m_count));
    std::vector<int> open;
    for (int point = 0; point < m_count; ++point) {
        waiting[at(point)] = m_inStart[at(point) + 1] - m_inStart[at(point)];
        if (waiting[at(point)] == 0)
            open.push_back(point);
    }
    while (!open.empty()) {
        const int point = open.back();
        open.pop_back();
        for (int i = m_outStart[at(point)]; i < m_outStart[at(point) + 1]; ++i) {
            const Edge &one = edge(m_out[at(i)]);
            m_places[at(one.head)] = std::max(m_places[at(one.head)],
                                              m_places[at(point)] + one.length);
            if (--waiting[at(one.head)] == 0)
                open.push_back(one.head);
        }
    }
}

// --- the first tree

/// What leads out of the tree while it grows, nearest first. The tree moves as a whole, so keys are
/// as of its first place.
struct NetworkSimplex::Boundary
{
    using Entry = std::pair<int, int>; ///< slack when the tree has not moved, edge
    using Queue = std::priority_queue<Entry, std::vector<Entry>, std::greater<>>;

    Queue out; ///< from the tree
    Queue in;  ///< to the tree
};

void NetworkSimplex::reach(int point, int offset, Boundary *boundary)
{
    m_reached[at(point)] = 1;
    m_places[at(point)] -= offset;
    for (int i = m_outStart[at(point)]; i < m_outStart[at(point) + 1]; ++i) {
        const int index = m_out[at(i)];
        if (!m_reached[at(edge(index).head)])
            boundary->out.emplace(slack(index), index);
    }
    for (int i = m_inStart[at(point)]; i < m_inStart[at(point) + 1]; ++i) {
        const int index = m_in[at(i)];
        if (!m_reached[at(edge(index).tail)])
            boundary->in.emplace(slack(index), index);
    }
}

void NetworkSimplex::addToTree(int index)
{
    edge(index).treeIndex = int(m_tree.size());
    m_tree.push_back(index);
    m_treeAt[at(edge(index).tail)].push_back(index);
    m_treeAt[at(edge(index).head)].push_back(index);
}

/// The tightest edge from the tree to what it has not reached, and how far the tree has to move for it; -1
/// where there is none.
std::pair<int, int> NetworkSimplex::nextTight(Boundary *boundary, int offset) const
{
    const auto drop = [this](Boundary::Queue *queue, bool out) {
        while (!queue->empty()) {
            const Edge &one = edge(queue->top().second);
            if (!m_reached[at(out ? one.head : one.tail)])
                return;
            queue->pop();
        }
    };
    drop(&boundary->out, true);
    drop(&boundary->in, false);
    if (boundary->out.empty() && boundary->in.empty())
        return {-1, 0};
    constexpr int Far = std::numeric_limits<int>::max();
    const int outSlack = boundary->out.empty() ? Far : boundary->out.top().first - offset;
    const int inSlack = boundary->in.empty() ? Far : boundary->in.top().first + offset;
    if (outSlack <= inSlack)
        return {boundary->out.top().second, outSlack};
    return {boundary->in.top().second, -inSlack};
}

void NetworkSimplex::buildTightTree()
{
    m_tree.clear();
    m_treeAt.assign(at(m_count), {});
    m_reached.assign(at(m_count), 0);
    Boundary boundary;
    int offset = 0; // of the tree from its first place
    reach(0, offset, &boundary);
    for (auto [index, way] = nextTight(&boundary, offset); index >= 0;
         std::tie(index, way) = nextTight(&boundary, offset)) {
        offset += way;
        addToTree(index);
        const Edge &tight = edge(index);
        reach(m_reached[at(tight.tail)] ? tight.head : tight.tail, offset, &boundary);
    }
    for (int &place : m_places)
        place += offset;
}

// --- the tree's numbers

/// Numbers what hangs below in postorder. Parts that hang as before are moved as they are.
void NetworkSimplex::number(int root, int parentEdge, int low)
{
    if (m_lim[at(root)] >= 0)
        std::copy(m_byLim.begin() + m_low[at(root)], m_byLim.begin() + m_lim[at(root)] + 1,
                  m_before.begin() + m_low[at(root)]);
    m_way.clear();
    int lim = low;
    const auto enter = [&](int point, int parent) {
        const int last = m_lim[at(point)];
        if (m_parent[at(point)] == parent && last >= 0) {
            const int first = m_low[at(point)];
            const int by = lim - first;
            lim = last + by + 1;
            if (by == 0)
                return;
            for (int i = first; i <= last; ++i) {
                const int moved = m_before[at(i)];
                m_low[at(moved)] += by;
                m_lim[at(moved)] = i + by;
                m_byLim[at(i + by)] = moved;
            }
            return;
        }
        m_parent[at(point)] = parent;
        m_low[at(point)] = lim;
        m_lim[at(point)] = -1;
        m_way.emplace_back(point, std::size_t(0));
    };
    m_lim[at(root)] = -1;
    enter(root, parentEdge);
    while (!m_way.empty()) {
        auto &[point, next] = m_way.back();
        const std::vector<int> &edges = m_treeAt[at(point)];
        if (next == edges.size()) {
            m_lim[at(point)] = lim;
            m_byLim[at(lim)] = point;
            ++lim;
            m_way.pop_back();
            continue;
        }
        const int index = edges[next++];
        if (index != m_parent[at(point)])
            enter(edge(index).tail == point ? edge(index).head : edge(index).tail, index);
    }
}

bool NetworkSimplex::isBelow(int point, int top) const
{
    return m_low[at(top)] <= m_lim[at(point)] && m_lim[at(point)] <= m_lim[at(top)];
}

int NetworkSimplex::cutOf(int treeEdge) const
{
    const Edge &cutEdge = edge(treeEdge);
    const bool fromTail = m_parent[at(cutEdge.tail)] == treeEdge;
    const int point = fromTail ? cutEdge.tail : cutEdge.head;
    int sum = 0;
    const auto add = [&](int index, bool leaves) {
        const Edge &one = edge(index);
        const int other = leaves ? one.head : one.tail;
        const bool outside = !isBelow(other, point);
        int value = one.weight;
        if (!outside)
            value = (one.treeIndex >= 0 ? one.cut : 0) - one.weight;
        // What goes the cut edge's way counts for it.
        int sign = fromTail == leaves ? -1 : 1;
        if (outside)
            sign = -sign;
        sum += sign * value;
    };
    for (int i = m_outStart[at(point)]; i < m_outStart[at(point) + 1]; ++i)
        add(m_out[at(i)], true);
    for (int i = m_inStart[at(point)]; i < m_inStart[at(point) + 1]; ++i)
        add(m_in[at(i)], false);
    return sum;
}

void NetworkSimplex::initCuts()
{
    m_parent.assign(at(m_count), -2);
    m_low.assign(at(m_count), -1);
    m_lim.assign(at(m_count), -1);
    m_byLim.assign(at(m_count), 0);
    m_before.assign(at(m_count), 0);
    number(0, -1, 0);
    for (const int point : m_byLim) {
        if (const int index = m_parent[at(point)]; index >= 0)
            edge(index).cut = cutOf(index);
    }
}

// --- exchanges

int NetworkSimplex::leavingEdge()
{
    int best = -1;
    int seen = 0;
    for (std::size_t i = 0; i < m_tree.size(); ++i) {
        m_search = m_search + 1 < m_tree.size() ? m_search + 1 : 0;
        const int index = m_tree[m_search];
        if (edge(index).cut >= 0)
            continue;
        if (best < 0 || edge(index).cut < edge(best).cut)
            best = index;
        if (++seen >= SearchBatch)
            break;
    }
    return best;
}

/// The two sides of a tree edge: what hangs below it, and the rest. Gives the smaller one.
NetworkSimplex::Side NetworkSimplex::smallerSide(int treeEdge) const
{
    const Edge &one = edge(treeEdge);
    const bool tailBelow = m_lim[at(one.tail)] < m_lim[at(one.head)];
    Side side;
    side.top = tailBelow ? one.tail : one.head;
    const int size = m_lim[at(side.top)] - m_low[at(side.top)] + 1;
    side.below = 2 * size <= m_count;
    side.isTail = tailBelow == side.below;
    return side;
}

/// Until the visitor gives false.
template <class Visit>
void NetworkSimplex::visit(const Side &side, Visit visit) const
{
    const auto run = [&](int first, int last) {
        for (int i = first; i < last; ++i) {
            if (!visit(m_byLim[at(i)]))
                return false;
        }
        return true;
    };
    const int low = m_low[at(side.top)];
    const int lim = m_lim[at(side.top)];
    if (side.below)
        run(low, lim + 1);
    else if (run(0, low))
        run(lim + 1, m_count);
}

/// The shortest that leads from the head's side to the tail's. No edge of the tree does.
int NetworkSimplex::enteringEdge(int leaving) const
{
    const Side side = smallerSide(leaving);
    int best = -1;
    int least = std::numeric_limits<int>::max();
    const std::vector<int> &starts = side.isTail ? m_inStart : m_outStart;
    const std::vector<int> &edges = side.isTail ? m_in : m_out;
    const std::vector<End> &ends = side.isTail ? m_tails : m_heads;
    const int low = m_low[at(side.top)];
    const auto size = unsigned(m_lim[at(side.top)] - low);
    visit(side, [&](int point) {
        const int place = m_places[at(point)];
        for (int i = starts[at(point)]; i < starts[at(point) + 1]; ++i) {
            const End &end = ends[at(i)];
            if ((unsigned(m_lim[at(end.point)] - low) <= size) == side.below)
                continue;
            const int way = m_places[at(end.point)] - place;
            const int free = (side.isTail ? -way : way) - end.length;
            if (free < least) {
                least = free;
                best = edges[at(i)];
            }
        }
        return least > 0;
    });
    return best;
}

/// Moves the sides of a tree edge apart.
void NetworkSimplex::part(int leaving, int delta)
{
    const Side side = smallerSide(leaving);
    visit(side, [&](int point) {
        m_places[at(point)] += side.isTail ? -delta : delta;
        return true;
    });
}

/// From a point up to where the way to the other one turns down; gives that point.
int NetworkSimplex::updateCuts(int from, int to, int cut, bool forward)
{
    while (!isBelow(to, from)) {
        const int index = m_parent[at(from)];
        Edge &one = edge(index);
        const bool along = (from == one.tail) == forward;
        one.cut += along ? cut : -cut;
        from = from == one.tail ? one.head : one.tail;
    }
    return from;
}

void NetworkSimplex::exchange(int leaving, int entering)
{
    if (const int delta = slack(entering); delta > 0)
        part(leaving, delta);
    Edge &old = edge(leaving);
    Edge &fresh = edge(entering);
    const int cut = old.cut;
    const int top = updateCuts(fresh.tail, fresh.head, cut, true);
    updateCuts(fresh.head, fresh.tail, cut, false);
    for (int point : {fresh.tail, fresh.head}) {
        for (; point != top && m_lim[at(point)] >= 0;) {
            m_lim[at(point)] = -1; // below it the tree will be another
            const Edge &up = edge(m_parent[at(point)]);
            point = up.tail == point ? up.head : up.tail;
        }
    }
    fresh.cut = -cut;
    old.cut = 0;
    fresh.treeIndex = old.treeIndex;
    m_tree[at(fresh.treeIndex)] = entering;
    old.treeIndex = -1;
    for (const int point : {old.tail, old.head}) {
        std::vector<int> &edges = m_treeAt[at(point)];
        edges.erase(std::find(edges.begin(), edges.end(), leaving));
    }
    m_treeAt[at(fresh.tail)].push_back(entering);
    m_treeAt[at(fresh.head)].push_back(entering);
    number(top, m_parent[at(top)], m_low[at(top)]);
}

std::vector<int> NetworkSimplex::solve(int mostExchanges)
{
    if (m_count == 0)
        return {};
    indexEdges();
    if (int(m_places.size()) != m_count)
        placeBackmost();
    connect();
    indexEdges();
    buildTightTree();
    initCuts();
    for (int i = 0; i < mostExchanges; ++i) {
        const int leaving = leavingEdge();
        const int entering = leaving < 0 ? -1 : enteringEdge(leaving);
        if (entering < 0)
            break;
        exchange(leaving, entering);
    }
    return m_places;
}

const std::vector<int> &NetworkSimplex::balance()
{
    for (const int leaving : m_tree) {
        if (edge(leaving).cut != 0)
            continue;
        const int entering = enteringEdge(leaving);
        if (entering < 0 || slack(entering) <= 1)
            continue;
        part(leaving, slack(entering) / 2);
    }
    return m_places;
}
