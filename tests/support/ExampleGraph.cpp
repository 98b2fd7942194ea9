#include "support/ExampleGraph.h"

#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "support/Text.h"

#include <cmath>

GraphScene::GraphScene() = default;

GraphScene::~GraphScene()
{
    OssNgSceneIndex::releaseItems(this);
}

void GraphScene::adopt(OssNgNode *node)
{
    addItem(node);
    QObject::connect(node, &OssNgNode::inputSourceChanged, node,
                     [node](OssNgNode *source, const QString &input, const QString &output) {
                         if (source)
                             node->attachInput(input, source, output);
                         else
                             node->detachInput(input);
                     });
}

OssNgExtendedNode *GraphScene::add(const QString &title, const QPointF &position,
                                   const QString &category, const QStringList &inputs,
                                   const QStringList &outputs)
{
    auto *node = add<OssNgExtendedNode>(title, position);
    node->setCategory(category);
    node->addInputPorts(inputs);
    for (const QString &output : outputs)
        node->addOutputPort(output);
    return node;
}

OssNgExtendedNode *GraphScene::add(const char *title, const QPointF &position,
                                   const QStringList &inputs, const QStringList &outputs)
{
    return add(text(title), position, {}, inputs, outputs);
}

void GraphScene::connectNodes(OssNgNode *source, const QString &output, OssNgNode *destination,
                              const QString &input)
{
    destination->attachInput(input, source, output);
}

void buildGrid(GraphScene *scene, int count)
{
    static const char *const categories[] = {"Procedural", "Filter", "Layer", "Math", "Material"};
    const QStringList inputs = texts({"Base", "Over", "Mask", "Amount"});
    const QStringList outputs = texts({"Output"});
    const QHash<QString, int> kinds{{text("Mask"), int(OssNgPortKind::Scalar)},
                                    {text("Amount"), int(OssNgPortKind::Vector)}};
    const int columns = std::max(1, int(std::sqrt(double(count))));
    std::vector<OssNgExtendedNode *> nodes;
    nodes.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        auto *node = scene->add(QStringLiteral("Node %1").arg(i),
                                {250.0 * (i % columns), 160.0 * (i / columns)},
                                text(categories[i % 5]), inputs, outputs);
        node->setPortKinds(kinds, {});
        if (i >= columns)
            node->attachInput(inputs[i % 2], nodes[std::size_t(i - columns)], outputs[0]);
        else if (i > 0)
            node->attachInput(inputs[0], nodes[std::size_t(i - 1)], outputs[0]);
        nodes.push_back(node);
    }
}
