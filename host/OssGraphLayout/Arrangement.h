#pragma once

#include "OssGraphLayout/Layers.h"

#include <vector>

/// A part that nothing joins to others, with where its boxes and frames come from.
struct Part
{
    Layers layers;
    std::vector<int> nodeOf;  ///< of boxes: whom others are attached to
    std::vector<int> frameOf; ///< of frames
    double around = 0.0;      ///< that others leave free, beyond the gap between parts
    OssLyRect today;
    OssLyRect placed;
};

/// Takes a graph apart, lays out its parts and puts them together; see OssLyLayout::arranged().
class Arrangement
{
public:
    /// A part that stands in columns already stays unless it would be so many times better.
    Arrangement(const OssLyGraph &graph, const OssLyOptions &options, double worthMoving)
        : m_graph(graph)
        , m_options(options)
        , m_worthMoving(worthMoving)
    {
    }

    OssLyPlaces run();
    /// Of the nodes that feed nothing the one that stands furthest right; -1: none.
    int rightmost() const;

private:
    int find(int unit);
    bool forms(int node) const;

    int frameUnit(int frame) const { return int(m_graph.nodes.size()) + frame; }

    void joinParts();
    void makeBoxes();
    void makeParts();
    void placeParts();
    void fillPart(Part *part, const std::vector<int> &nodes);
    void placePart(Part *part);
    void placeBest(Layers *layers) const;
    void placeOrdered(Layers *layers) const;
    std::vector<double> columnLefts(const Layers &layers) const;
    void placeColumns(Layers *layers) const;
    bool isArranged(const Layers &placed, const std::vector<OssLyRect> &today) const;
    void refitFrames();
    void anchor();
    void placeLookers();
    OssLyRect besideLookedAt(int looker) const;
    const OssLyRect *under(int node, const OssLyRect &place) const;
    void placeBesideFrames();
    OssLyRect frameToday(int frame) const;
    bool isFree(int node, const OssLyRect &rect) const;

    const OssLyGraph &m_graph;
    const OssLyOptions &m_options;
    double m_worthMoving;
    std::vector<int> m_leader;
    std::vector<OssLyRect> m_boxes; ///< of nodes with what is attached to them
    std::vector<int> m_boxOf;       ///< of nodes in their part
    std::vector<int> m_frameOf;
    std::vector<Part> m_parts;
    OssLyPlaces m_places;
};
