#pragma once

#include "OssGraphLayout/OssLyGraph.h"

#include <cstddef>
#include <vector>

/// One joined part of a graph on its way to a layout: boxes in ranks, wires as segments between
/// neighbouring ranks. What a wire passes between its ends is an element as well, and so are the upper
/// and lower borders of frames in each rank that they reach.
struct Layers
{
    /// A node with what is attached to it.
    struct Box
    {
        OssLyRect rect; ///< today's
        int frame = -1;
    };

    struct Link
    {
        int from = 0; ///< box
        int to = 0;
        double fromY = 0.0; ///< from the boxes' tops
        double toY = 0.0;
    };

    struct Frame
    {
        int parent = -1;
        double margin = 0.0;
        double topMargin = 0.0;
        int depth = 0;
        int first = 0; ///< rank
        int last = -1;
        std::vector<int> tops; ///< elements, rank by rank
        std::vector<int> bottoms;
        double key = 0.0; ///< by which frames are ordered among each other in all ranks
    };

    enum class Kind : char { Box, Passing, Top, Bottom };

    struct Element
    {
        Kind kind = Kind::Box;
        int owner = 0; ///< box, link or frame
        int frame = -1;
        int rank = 0;
        int position = 0; ///< in the rank
        double height = 0.0;
        double y = 0.0; ///< middle; an estimate until heights are known
    };

    struct Segment
    {
        int from = 0; ///< element
        int to = 0;
        double fromY = 0.0; ///< from the elements' tops
        double toY = 0.0;
        int fromPort = 0; ///< counted from the top
        int toPort = 0;
        int weight = 1; ///< of a crossing with another one
    };

    using Order = std::vector<std::vector<int>>; ///< elements from top to bottom, rank by rank

    std::vector<Box> boxes;
    std::vector<Link> links;
    std::vector<Frame> frames;
    std::vector<int> rankOf; ///< of boxes
    std::vector<Element> elements;
    std::vector<Segment> segments;
    Order ranks;
    std::vector<int> inStart, in, outStart, out; ///< segments by their elements, by ports
    std::vector<double> tops;                    ///< of boxes: the result
    bool isKept = false; ///< the order of today was good, and heights start from it

    Element &element(int index) { return elements[std::size_t(index)]; }

    const Element &element(int index) const { return elements[std::size_t(index)]; }

    const Segment &segment(int index) const { return segments[std::size_t(index)]; }

    /// Ranks of boxes are known: makes elements and segments, ordered as they stand today.
    void build();
    void setOrder(const Order &order);

private:
    int addElement(Kind kind, int owner, int frame, int rank, double height, double y);
    void addLink(int index, const std::vector<int> &boxElements);
    void addBorders();
    int frameOfPassing(const Link &link, int rank) const;
    void spanFrames();
    void indexSegments();
};

/// Gives each box a rank: wires run to higher ones, and are short.
void rankBoxes(Layers *layers);
/// Orders the elements in their ranks so that few wires cross; starts from the order of today. Looks at about
/// as many pairs as the budget. Gives the best orders that were found: the first is taken, but as wires are drawn
/// straight another one may be better.
std::vector<Layers::Order> orderElements(Layers *layers, long budget);
/// Gives each box its top, so that wires run level.
void placeHeights(Layers *layers, const OssLyOptions &options);
/// Moves boxes, which have their places by now, up and down where fewer wires cross or run through boxes then, as
/// they are drawn. Looks at no more pairs than the budget.
void refineHeights(Layers *layers, const OssLyOptions &options, long budget);
/// How bad the boxes stand where they are: crossings, wires through boxes, and a little for wires that do not run
/// level.
double drawnCost(const Layers &layers);
