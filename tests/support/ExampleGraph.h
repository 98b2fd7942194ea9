#pragma once

#include "OssNodeGraph/Items/OssNgExtendedNode.h"

#include <QGraphicsScene>

#include <memory>
#include <vector>

/// A scene that owns its nodes and lets go of them before it dies; connects what a user connects.
class GraphScene : public QGraphicsScene
{
public:
    GraphScene();
    ~GraphScene() override;

    template <class Node = OssNgExtendedNode>
    Node *add(const QString &text, const QPointF &position)
    {
        auto *node = new Node;
        m_nodes.emplace_back(node);
        node->setText(text);
        node->setPosition(position);
        adopt(node);
        return node;
    }

    /// An extended node with one row for each port.
    OssNgExtendedNode *add(const QString &text, const QPointF &position, const QString &category,
                           const QStringList &inputs, const QStringList &outputs);
    OssNgExtendedNode *add(const char *title, const QPointF &position,
                           const QStringList &inputs = {QStringLiteral("Input")},
                           const QStringList &outputs = {QStringLiteral("Output")});
    void connectNodes(OssNgNode *source, const QString &output, OssNgNode *destination,
                      const QString &input);

private:
    void adopt(OssNgNode *node);

    std::vector<std::unique_ptr<OssNgNode>> m_nodes;
};

/// `count` nodes in a square with about as many wires.
void buildGrid(GraphScene *scene, int count);
