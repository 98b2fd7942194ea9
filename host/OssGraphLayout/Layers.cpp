#include "OssGraphLayout/Layers.h"

#include <algorithm>
#include <numeric>

namespace {

std::size_t at(int index)
{
    return std::size_t(index);
}

constexpr int BorderWeight = 16; ///< frames are rectangles: their borders do not bend

} // namespace

int Layers::addElement(Kind kind, int owner, int frame, int rank, double height, double y)
{
    Element element;
    element.kind = kind;
    element.owner = owner;
    element.frame = frame;
    element.rank = rank;
    element.height = height;
    element.y = y;
    elements.push_back(element);
    return int(elements.size()) - 1;
}

void Layers::spanFrames()
{
    for (Frame &frame : frames) {
        frame.first = int(elements.size());
        frame.last = -1;
    }
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (int f = boxes[i].frame; f >= 0; f = frames[at(f)].parent) {
            Frame &frame = frames[at(f)];
            const int rank = rankOf[i];
            frame.first = frame.last < 0 ? rank : std::min(frame.first, rank);
            frame.last = std::max(frame.last, rank);
        }
    }
}

/// Within the frames of its ends as far as they reach.
int Layers::frameOfPassing(const Link &link, int rank) const
{
    const int from = boxes[at(link.from)].frame;
    const int to = boxes[at(link.to)].frame;
    const auto holds = [this](int outer, int inner) {
        while (inner >= 0 && inner != outer)
            inner = frames[at(inner)].parent;
        return inner == outer;
    };
    for (int f = from; f >= 0; f = frames[at(f)].parent) {
        if (holds(f, to) || rank <= frames[at(f)].last) {
            if (!holds(f, to))
                return f;
            break;
        }
    }
    int common = from;
    while (common >= 0 && !holds(common, to))
        common = frames[at(common)].parent;
    for (int f = to; f >= 0 && f != common; f = frames[at(f)].parent) {
        if (rank >= frames[at(f)].first)
            return f;
    }
    return common;
}

void Layers::addLink(int index, const std::vector<int> &boxElements)
{
    const Link &link = links[at(index)];
    const int first = rankOf[at(link.from)];
    const int last = rankOf[at(link.to)];
    const double start = boxes[at(link.from)].rect.y + link.fromY;
    const double end = boxes[at(link.to)].rect.y + link.toY;
    int previous = boxElements[at(link.from)];
    double leaves = link.fromY;
    for (int rank = first + 1; rank <= last; ++rank) {
        Segment segment;
        segment.from = previous;
        segment.fromY = leaves;
        if (rank == last) {
            segment.to = boxElements[at(link.to)];
            segment.toY = link.toY;
        } else {
            const double along = double(rank - first) / double(last - first);
            segment.to = addElement(Kind::Passing, index, frameOfPassing(link, rank), rank, 0.0,
                                    start + (end - start) * along);
        }
        segments.push_back(segment);
        previous = segment.to;
        leaves = 0.0;
    }
}

void Layers::addBorders()
{
    for (int f = 0; f < int(frames.size()); ++f) {
        Frame &frame = frames[at(f)];
        frame.tops.clear();
        frame.bottoms.clear();
        for (int rank = frame.first; rank <= frame.last; ++rank) {
            frame.tops.push_back(addElement(Kind::Top, f, f, rank, 0.0, 0.0));
            frame.bottoms.push_back(addElement(Kind::Bottom, f, f, rank, 0.0, 0.0));
            if (rank == frame.first)
                continue;
            for (const std::vector<int> *side : {&frame.tops, &frame.bottoms}) {
                Segment border;
                border.from = (*side)[side->size() - 2];
                border.to = side->back();
                border.weight = BorderWeight;
                segments.push_back(border);
            }
        }
    }
}

void Layers::indexSegments()
{
    const std::size_t count = elements.size();
    inStart.assign(count + 1, 0);
    outStart.assign(count + 1, 0);
    for (const Segment &segment : segments) {
        ++outStart[at(segment.from) + 1];
        ++inStart[at(segment.to) + 1];
    }
    std::partial_sum(inStart.begin(), inStart.end(), inStart.begin());
    std::partial_sum(outStart.begin(), outStart.end(), outStart.begin());
    in.resize(segments.size());
    out.resize(segments.size());
    std::vector<int> nextIn = inStart;
    std::vector<int> nextOut = outStart;
    for (int i = 0; i < int(segments.size()); ++i) {
        in[at(nextIn[at(segment(i).to)]++)] = i;
        out[at(nextOut[at(segment(i).from)]++)] = i;
    }
    for (std::size_t e = 0; e < count; ++e) {
        const auto inBegin = in.begin() + inStart[e];
        const auto inEnd = in.begin() + inStart[e + 1];
        std::stable_sort(inBegin, inEnd,
                         [this](int a, int b) { return segment(a).toY < segment(b).toY; });
        int port = 0;
        for (auto i = inBegin; i != inEnd; ++i) {
            port += i != inBegin && segment(*i).toY > segment(*(i - 1)).toY ? 1 : 0;
            segments[at(*i)].toPort = port;
        }
        const auto outBegin = out.begin() + outStart[e];
        const auto outEnd = out.begin() + outStart[e + 1];
        std::stable_sort(outBegin, outEnd,
                         [this](int a, int b) { return segment(a).fromY < segment(b).fromY; });
        port = 0;
        for (auto i = outBegin; i != outEnd; ++i) {
            port += i != outBegin && segment(*i).fromY > segment(*(i - 1)).fromY ? 1 : 0;
            segments[at(*i)].fromPort = port;
        }
    }
}

void Layers::build()
{
    elements.clear();
    segments.clear();
    spanFrames();
    std::vector<int> boxElements;
    for (int b = 0; b < int(boxes.size()); ++b) {
        const OssLyRect &rect = boxes[at(b)].rect;
        boxElements.push_back(addElement(Kind::Box, b, boxes[at(b)].frame, rankOf[at(b)],
                                         rect.height, rect.y + rect.height / 2.0));
    }
    for (int link = 0; link < int(links.size()); ++link)
        addLink(link, boxElements);
    addBorders();
    indexSegments();
    int last = 0;
    for (const int rank : rankOf)
        last = std::max(last, rank);
    ranks.assign(at(last) + 1, {});
    for (int e = 0; e < int(elements.size()); ++e)
        ranks[at(element(e).rank)].push_back(e);
}

void Layers::setOrder(const Order &order)
{
    ranks = order;
    for (const std::vector<int> &rank : ranks) {
        int position = 0;
        for (const int e : rank)
            element(e).position = position++;
    }
}
