#include "OssGraphLayout/Layers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

// Wires are drawn straight from port to port, not along the ranks: what was good rank by rank is made better
// as it is seen. Boxes go up and down in their columns where fewer wires cross, or run through boxes, then.

namespace {

constexpr double Clear = 8.0; ///< between a wire and a box that it passes
constexpr double CrossingCost = 1.0;
constexpr double ThroughCost = 1.1;
constexpr double SlopeCost = 0.0004; ///< of a unit up or down
constexpr int MostPushed = 8;
constexpr int MostRounds = 6;

std::size_t at(int index)
{
    return std::size_t(index);
}

struct Line
{
    int from; ///< box
    int to;
    int first; ///< rank
    int last;
    double x1, x2;
    double fromY, toY;
    double y1 = 0.0, y2 = 0.0;
    double slope = 0.0;

    double yAt(double x) const { return y1 + slope * (x - x1); }

    void setEnds(double start, double end)
    {
        y1 = start;
        y2 = end;
        slope = (y2 - y1) / (x2 - x1);
    }
};

/// What most looks ask for: kept apart, and small.
struct Extent
{
    double top = 0.0;
    double bottom = 0.0;

    bool meets(const Extent &other) const { return top <= other.bottom && bottom >= other.top; }
};

class Refining
{
public:
    Refining(Layers *layers, const OssLyOptions &options, std::int64_t budget)
        : m_layers(*layers)
        , m_options(options)
        , m_budget(budget)
    {
    }

    void run();
    double costOfAll();

private:
    struct Move
    {
        int box;
        double y;
    };

    using Moves = std::vector<Move>;

    void gatherLines();
    void gatherColumns();
    void setEnds(int line, double first, double second);
    bool runsThrough(int line, int box) const;
    double costOf(const Moves &moves);
    /// Of crossings only those with lines after `last`.
    double costOfLine(int line, int last = -1);
    void place(int box, double y);
    bool tryMoves(const Moves &moves);
    bool push(int box, double y, Moves *moves) const;
    bool improve(int box);
    bool exchange(int column, std::size_t place);
    std::vector<double> wantedPlaces(int box);

    OssLyRect &rect(int box) { return m_layers.boxes[at(box)].rect; }

    const OssLyRect &rect(int box) const { return m_layers.boxes[at(box)].rect; }

    Layers &m_layers;
    const OssLyOptions &m_options;
    std::int64_t m_budget; ///< of looks at a line and a box, or two lines
    std::vector<Line> m_lines;
    std::vector<Extent> m_extents;           ///< of lines
    std::vector<std::vector<int>> m_boxesIn; ///< of columns
    std::vector<std::vector<int>> m_linesOf; ///< of boxes
    std::vector<std::vector<int>> m_over;    ///< of columns: lines that reach them
    std::vector<std::vector<int>> m_columns; ///< boxes and borders, from top to bottom: elements
    std::vector<int> m_placeOf;              ///< of boxes in their columns
    std::vector<double> m_borders;           ///< heights of elements that are borders
    std::vector<int> m_seen;                 ///< of lines: when they were counted last
    std::vector<char> m_moved;
    int m_look = 0;
    double m_top = 0.0; ///< beyond which nothing goes
    double m_bottom = 0.0;
};

void Refining::gatherLines()
{
    m_linesOf.assign(m_layers.boxes.size(), {});
    m_over.assign(m_layers.ranks.size(), {});
    m_extents.resize(m_layers.links.size());
    for (const Layers::Link &link : m_layers.links) {
        Line line{};
        line.from = link.from;
        line.to = link.to;
        line.first = m_layers.rankOf[at(link.from)];
        line.last = m_layers.rankOf[at(link.to)];
        line.fromY = link.fromY;
        line.toY = link.toY;
        line.x1 = rect(link.from).right();
        line.x2 = rect(link.to).x;
        const int index = int(m_lines.size());
        m_lines.push_back(line);
        setEnds(index, rect(link.from).y + link.fromY, rect(link.to).y + link.toY);
        m_linesOf[at(link.from)].push_back(index);
        m_linesOf[at(link.to)].push_back(index);
        for (int rank = line.first; rank <= line.last; ++rank)
            m_over[at(rank)].push_back(index);
    }
    m_seen.assign(m_lines.size(), 0);
    m_moved.assign(m_layers.boxes.size(), 0);
}

void Refining::gatherColumns()
{
    m_columns.assign(m_layers.ranks.size(), {});
    m_boxesIn.assign(m_layers.ranks.size(), {});
    m_placeOf.assign(m_layers.boxes.size(), 0);
    for (std::size_t rank = 0; rank < m_layers.ranks.size(); ++rank) {
        for (const int e : m_layers.ranks[rank]) {
            const Layers::Element &element = m_layers.element(e);
            if (element.kind == Layers::Kind::Passing)
                continue;
            if (element.kind == Layers::Kind::Box) {
                m_placeOf[at(element.owner)] = int(m_columns[rank].size());
                m_boxesIn[rank].push_back(element.owner);
            }
            m_columns[rank].push_back(e);
        }
    }
}

void Refining::setEnds(int line, double first, double second)
{
    m_lines[at(line)].setEnds(first, second);
    m_extents[at(line)] = {std::min(first, second), std::max(first, second)};
}

bool Refining::runsThrough(int index, int box) const
{
    const OssLyRect &area = rect(box);
    const Extent &extent = m_extents[at(index)];
    if (extent.top >= area.bottom() || extent.bottom <= area.y)
        return false;
    const Line &line = m_lines[at(index)];
    const double left = std::max(line.x1, area.x);
    const double right = std::min(line.x2, area.right());
    if (left > right)
        return false;
    const double a = line.yAt(left);
    const double b = line.yAt(right);
    return std::min(a, b) < area.bottom() && std::max(a, b) > area.y;
}

double Refining::costOfLine(int index, int last)
{
    const Line &line = m_lines[at(index)];
    const Extent extent = m_extents[at(index)];
    double cost = SlopeCost * std::abs(line.y2 - line.y1);
    for (int rank = line.first; rank <= line.last; ++rank) {
        for (const int box : m_boxesIn[at(rank)]) {
            if (runsThrough(index, box) && box != line.from && box != line.to)
                cost += ThroughCost;
        }
        m_budget -= std::int64_t(m_columns[at(rank)].size() + m_over[at(rank)].size());
        for (const int other : m_over[at(rank)]) {
            if (!m_extents[at(other)].meets(extent))
                continue;
            const Line &two = m_lines[at(other)];
            // Once, in the first column that both reach.
            if (other == index || other <= last || std::max(two.first, line.first) != rank)
                continue;
            const double left = std::max(line.x1, two.x1);
            const double right = std::min(line.x2, two.x2);
            if (left >= right)
                continue;
            const double before = line.yAt(left) - two.yAt(left);
            const double after = line.yAt(right) - two.yAt(right);
            if ((before > 0.001 && after < -0.001) || (before < -0.001 && after > 0.001))
                cost += CrossingCost;
        }
    }
    return cost;
}

double Refining::costOf(const Moves &moves)
{
    ++m_look;
    double cost = 0.0;
    for (const Move &move : moves) {
        for (const int line : m_linesOf[at(move.box)]) {
            if (m_seen[at(line)] == m_look)
                continue;
            m_seen[at(line)] = m_look;
            cost += costOfLine(line);
        }
    }
    for (const Move &move : moves) {
        const std::vector<int> &over = m_over[at(m_layers.rankOf[at(move.box)])];
        m_budget -= std::int64_t(over.size());
        for (const int line : over) {
            if (m_seen[at(line)] != m_look && runsThrough(line, move.box))
                cost += ThroughCost;
        }
    }
    return cost;
}

void Refining::place(int box, double y)
{
    rect(box).y = y;
    for (const int index : m_linesOf[at(box)]) {
        const Line &line = m_lines[at(index)];
        if (line.from == box)
            setEnds(index, y + line.fromY, line.y2);
        else
            setEnds(index, line.y1, y + line.toY);
    }
}

bool Refining::tryMoves(const Moves &moves)
{
    const double before = costOf(moves);
    Moves back;
    for (const Move &move : moves) {
        back.push_back({move.box, rect(move.box).y});
        place(move.box, move.y);
    }
    if (costOf(moves) < before - 1e-6)
        return true;
    for (const Move &move : back)
        place(move.box, move.y);
    return false;
}

/// What is in the way goes along, unless a frame's border is.
bool Refining::push(int box, double y, Moves *moves) const
{
    const int rank = m_layers.rankOf[at(box)];
    const std::vector<int> &column = m_columns[at(rank)];
    const int start = m_placeOf[at(box)];
    const bool down = y > rect(box).y;
    moves->push_back({box, y});
    double edge = down ? y + rect(box).height : y;
    const auto isInside = [&] {
        return down ? edge <= m_bottom : edge >= m_top;
    };
    for (int i = start + (down ? 1 : -1); i >= 0 && i < int(column.size()); i += down ? 1 : -1) {
        const Layers::Element &element = m_layers.element(column[at(i)]);
        if (element.kind != Layers::Kind::Box) {
            const Layers::Frame &frame = m_layers.frames[at(element.owner)];
            const bool leaves = (element.kind == Layers::Kind::Top) != down;
            const double gap = !leaves                             ? m_options.rowGap
                               : element.kind == Layers::Kind::Top ? frame.topMargin
                                                                   : frame.margin;
            return down ? edge + gap <= element.y : edge - gap >= element.y;
        }
        const OssLyRect &next = rect(element.owner);
        const double room = down ? next.y - m_options.rowGap - edge
                                 : edge - m_options.rowGap - next.bottom();
        if (room >= -0.001)
            return isInside();
        if (int(moves->size()) >= MostPushed)
            return false;
        const double to = down ? next.y - room : next.y + room;
        moves->push_back({element.owner, to});
        edge = down ? to + next.height : to;
    }
    return isInside();
}

/// Level with what it is wired to; clear of wires that run through it; where its own wires are clear of others.
std::vector<double> Refining::wantedPlaces(int box)
{
    const OssLyRect &own = rect(box);
    std::vector<double> places;
    for (const int index : m_linesOf[at(box)]) {
        const Line &line = m_lines[at(index)];
        const bool leaves = line.from == box;
        places.push_back(own.y + (leaves ? line.y2 - line.y1 : line.y1 - line.y2));
        for (int rank = line.first; rank <= line.last; ++rank) {
            for (const int other : m_boxesIn[at(rank)]) {
                if (other == line.from || other == line.to || !runsThrough(index, other))
                    continue;
                const OssLyRect &hit = rect(other);
                // The line turns about its other end.
                const double fixedX = leaves ? line.x2 : line.x1;
                const double fixedY = leaves ? line.y2 : line.y1;
                const double ownX = leaves ? line.x1 : line.x2;
                for (const double x : {hit.x, hit.right()}) {
                    if (std::abs(x - fixedX) < 1.0)
                        continue;
                    const double lever = (ownX - fixedX) / (x - fixedX);
                    for (const double y : {hit.y - Clear, hit.bottom() + Clear})
                        places.push_back(fixedY + (y - fixedY) * lever
                                         - (leaves ? line.fromY : line.toY));
                }
            }
            m_budget -= std::int64_t(m_columns[at(rank)].size());
        }
    }
    for (const int index : m_over[at(m_layers.rankOf[at(box)])]) {
        const Line &line = m_lines[at(index)];
        if (line.from == box || line.to == box || !runsThrough(index, box))
            continue;
        const double a = line.yAt(std::max(line.x1, own.x));
        const double b = line.yAt(std::min(line.x2, own.right()));
        places.push_back(std::max(a, b) + Clear);
        places.push_back(std::min(a, b) - Clear - own.height);
    }
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end(),
                             [](double a, double b) { return std::abs(a - b) < 1.0; }),
                 places.end());
    return places;
}

bool Refining::improve(int box)
{
    bool any = false;
    for (const double y : wantedPlaces(box)) {
        if (std::abs(y - rect(box).y) < 0.5)
            continue;
        Moves moves;
        if (push(box, y, &moves) && tryMoves(moves))
            any = true;
    }
    return any;
}

/// The box and the one below it.
bool Refining::exchange(int rank, std::size_t place)
{
    std::vector<int> &column = m_columns[at(rank)];
    const Layers::Element &upper = m_layers.element(column[place]);
    const Layers::Element &lower = m_layers.element(column[place + 1]);
    if (upper.kind != Layers::Kind::Box || lower.kind != Layers::Kind::Box
        || upper.frame != lower.frame)
        return false;
    const OssLyRect &first = rect(upper.owner);
    const OssLyRect &second = rect(lower.owner);
    if (!tryMoves({{lower.owner, first.y}, {upper.owner, second.bottom() - first.height}}))
        return false;
    std::swap(column[place], column[place + 1]);
    std::swap(m_placeOf[at(m_layers.element(column[place]).owner)],
              m_placeOf[at(m_layers.element(column[place + 1]).owner)]);
    return true;
}

double Refining::costOfAll()
{
    gatherLines();
    gatherColumns();
    double cost = 0.0;
    for (int line = 0; line < int(m_lines.size()); ++line)
        cost += costOfLine(line, line);
    return cost;
}

void Refining::run()
{
    gatherLines();
    gatherColumns();
    for (std::size_t b = 0; b < m_layers.boxes.size(); ++b) {
        m_top = b == 0 ? rect(0).y : std::min(m_top, rect(int(b)).y);
        m_bottom = b == 0 ? rect(0).bottom() : std::max(m_bottom, rect(int(b)).bottom());
    }
    for (int round = 0; round < MostRounds && m_budget > 0; ++round) {
        bool any = false;
        const int count = int(m_columns.size());
        for (int i = 0; i < count && m_budget > 0; ++i) {
            const int rank = round % 2 == 0 ? i : count - 1 - i;
            for (std::size_t place = 0; place + 1 < m_columns[at(rank)].size() && m_budget > 0;
                 ++place)
                any = exchange(rank, place) || any;
            for (std::size_t place = 0; place < m_columns[at(rank)].size() && m_budget > 0;
                 ++place) {
                const Layers::Element &element = m_layers.element(m_columns[at(rank)][place]);
                if (element.kind == Layers::Kind::Box)
                    any = improve(element.owner) || any;
            }
        }
        if (!any)
            break;
    }
}

} // namespace

double drawnCost(const Layers &layers)
{
    Layers copy = layers;
    return Refining(&copy, {}, 0).costOfAll();
}

void refineHeights(Layers *layers, const OssLyOptions &options, long budget)
{
    Refining(layers, options, budget).run();
}
