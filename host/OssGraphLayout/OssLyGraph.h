#pragma once

#include <vector>

/// A graph as plain values, in scene units: x runs to the right, y downwards. Wires leave nodes at
/// the right and enter others at the left.
struct OssLyRect
{
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    double right() const { return x + width; }

    double bottom() const { return y + height; }

    bool isEmpty() const { return width <= 0.0 || height <= 0.0; }

    bool intersects(const OssLyRect &other) const
    {
        return x < other.right() && other.x < right() && y < other.bottom() && other.y < bottom();
    }

    OssLyRect united(const OssLyRect &other) const
    {
        if (isEmpty())
            return other;
        if (other.isEmpty())
            return *this;
        const double left = x < other.x ? x : other.x;
        const double top = y < other.y ? y : other.y;
        const double farRight = right() > other.right() ? right() : other.right();
        const double farBottom = bottom() > other.bottom() ? bottom() : other.bottom();
        return {left, top, farRight - left, farBottom - top};
    }
};

struct OssLyPoint
{
    double x = 0.0;
    double y = 0.0;
};

struct OssLyNode
{
    OssLyRect rect; ///< where it stands today
    int frame = -1; ///< the innermost one that it is a member of
    /// A node beside which it stays as it stands today, such as the one that a note is about; -1:
    /// none. That one must not be attached itself.
    int attachedTo = -1;
    int besideFrame =
        -1; ///< a frame near which it stands and with which it goes; then it has none itself
    bool standsApart = false; ///< so far from others that it is about none of them: a note
    bool looksOnly = false;   ///< a viewer: stands right of what it is wired to, and forms nothing
};

struct OssLyWire
{
    int from = 0; ///< node
    int to = 0;
    double fromY = 0.0; ///< of the ports, from the nodes' tops
    double toY = 0.0;
};

/// A titled area around its members. One without members is better given as a node.
struct OssLyFrame
{
    int parent = -1;     ///< a frame
    double margin = 0.0; ///< left, right and below
    double topMargin = 0.0;
};

struct OssLyGraph
{
    std::vector<OssLyNode> nodes;
    std::vector<OssLyWire> wires;
    std::vector<OssLyFrame> frames;
};

struct OssLyOptions
{
    double columnGap = 150.0;
    double rowGap = 60.0;
    double wireGap = 30.0;   ///< between a wire that passes by and its neighbours
    double partGap = 60.0;   ///< between parts that nothing joins
    double apartGap = 125.0; ///< between what stands apart and others
};

struct OssLyPlaces
{
    std::vector<OssLyRect> nodes;
    std::vector<OssLyRect> frames; ///< empty where a frame has no members
};
