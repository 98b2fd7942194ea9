#pragma once

#include <QGraphicsScene>

#include <vector>

/// The least that draws the same graph with QGraphicsView: what our items are measured against.
/// No marks, no hover, no loading, no search; everything is laid out by hand.
class LimitScene : public QGraphicsScene
{
public:
    explicit LimitScene(int count);

    /// With its wires.
    void moveNode(int index, const QPointF &offset);

private:
    class Node;
    class Wire;

    std::vector<Node *> m_nodes;
};
