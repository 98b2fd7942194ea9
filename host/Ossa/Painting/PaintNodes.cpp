#include "Ossa/Painting/PaintNodes.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnChannelInputNode.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QCoreApplication>
#include <QSet>

namespace {

const QString shaderTag = QStringLiteral("_shader");

struct Channel
{
    const char *input;
    bool isScalar;
};

constexpr Channel layerChannels[] = {
    {"Base Color", false}, {"Roughness", true}, {"Metallic", true}, {"Displacement", true}};

OssSnImageSetNodeBase *putOver(OssSnBaseNode *shader, const Channel &channel)
{
    const QString input = QLatin1String(channel.input);
    OssShaderNetwork *network = shader->network();
    auto *paint = qobject_cast<OssSnImageSetNodeBase *>(network->createPaintableNode({}));
    if (!paint)
        return nullptr;
    paint->setName(QCoreApplication::translate("PaintNodes", "%1 Paint").arg(input));
    if (paint->imageSet())
        paint->imageSet()->setScalar(channel.isScalar);
    OssSnBaseNode *beneath = shader->inputNode(input);
    const QString output = shader->inputOutputPoint(input);
    if (!beneath || beneath->network() != network) {
        shader->setInputNode(input, paint, paint->prefferedOutputPoint());
        PaintNodes::placeLeftOf(shader, paint);
        return paint;
    }
    OssSnBaseNode *merge = network->createNode(QStringLiteral("Layer/Merge"), {});
    merge->setInputNode(QStringLiteral("Base"), beneath, output);
    merge->setInputNode(QStringLiteral("Over"), paint, paint->prefferedOutputPoint());
    shader->setInputNode(input, merge, merge->prefferedOutputPoint());
    // Who looks at what is beneath sees the paint as well.
    OssSnBaseNode *viewer = network->viewerNode();
    const QString edge = QString::number(network->rootNetwork()->viewerNodeCurrentEdge());
    if (viewer && viewer->inputNode(edge) == beneath && viewer->inputOutputPoint(edge) == output)
        viewer->setInputNode(edge, merge, merge->prefferedOutputPoint());
    PaintNodes::placeLeftOf(shader, merge);
    PaintNodes::placeLeftOf(merge, paint);
    return paint;
}

/// Whether a node gets something of another.
bool isUpstream(const OssSnBaseNode *source, const OssSnBaseNode *node)
{
    QSet<const OssSnBaseNode *> seen;
    QList<const OssSnBaseNode *> open{node};
    while (!open.isEmpty()) {
        const OssSnBaseNode *next = open.takeLast();
        const QStringList inputs = next->inputNames();
        for (const QString &input : inputs) {
            const OssSnBaseNode *beneath = next->inputNode(input);
            if (beneath == source)
                return true;
            if (beneath && !seen.contains(beneath)) {
                seen.insert(beneath);
                open.append(beneath);
            }
        }
    }
    return false;
}

} // namespace

void PaintNodes::placeLeftOf(OssSnBaseNode *fed, OssSnBaseNode *node)
{
    // It fails where nobody shows nodes, and there they lie anywhere.
    const OssResult placed = OssShaderNetworkManager::instance()->requestArrangement(
        {fed, node}, OssShaderNetworkManager::PlaceLeft);
    Q_UNUSED(placed)
}

PaintNodes::Nodes PaintNodes::all(const OssShaderNetwork *network)
{
    Nodes found;
    const QList<OssSnBaseNode *> nodes = network ? network->getAllNodes()
                                                 : QList<OssSnBaseNode *>();
    for (OssSnBaseNode *node : nodes) {
        if (auto *paint = qobject_cast<OssSnChannelInputNode *>(node))
            found.append(paint);
    }
    return found;
}

PaintNodes::Nodes PaintNodes::selected(const OssShaderNetwork *network)
{
    Nodes found;
    bool hasOthers = false;
    const QList<OssSnBaseNode *> nodes = network ? network->getAllNodes()
                                                 : QList<OssSnBaseNode *>();
    for (OssSnBaseNode *node : nodes) {
        if (!node->selected())
            continue;
        const auto *group = qobject_cast<OssSnGroupNode *>(node);
        const Nodes inside = group ? all(group->groupNetwork()) : Nodes();
        if (auto *paint = qobject_cast<OssSnChannelInputNode *>(node))
            found.append(paint);
        hasOthers = hasOthers || (inside.isEmpty() && !qobject_cast<OssSnChannelInputNode *>(node));
        found += inside;
    }
    return hasOthers ? found.mid(0, 1) : found;
}

OssSnBaseNode *PaintNodes::shownShader(OssShaderNetwork *network)
{
    const OssSnBaseNode *viewer = network ? network->viewerNode() : nullptr;
    if (!viewer)
        return nullptr;
    const OssSnBaseNode *shown = viewer->inputNode(
        QString::number(network->rootNetwork()->viewerNodeCurrentEdge()));
    QList<OssSnBaseNode *> shaders;
    const QList<OssSnBaseNode *> nodes = network->getAllNodes();
    for (OssSnBaseNode *node : nodes) {
        if (!node->hasTag(shaderTag))
            continue;
        if (node == shown || (shown && isUpstream(shown, node)))
            return node;
        shaders.append(node);
    }
    return shaders.size() == 1 ? shaders.first() : nullptr;
}

PaintNodes::Nodes PaintNodes::makeLayer(OssSnBaseNode *shader)
{
    const OssUndoManager::AutoMacro macro(
        QCoreApplication::translate("PaintNodes", "New Paint Layer"));
    Nodes made;
    for (const Channel &channel : layerChannels) {
        if (!shader->inputNames().contains(QLatin1String(channel.input)))
            continue;
        if (OssSnImageSetNodeBase *paint = putOver(shader, channel))
            made.append(paint);
    }
    const QList<OssSnBaseNode *> nodes = shader->network()->getAllNodes();
    if (!made.isEmpty())
        OssShaderNetworkManager::instance()->requestSight(made.first());
    for (OssSnBaseNode *node : nodes)
        node->setSelected(made.contains(qobject_cast<OssSnImageSetNodeBase *>(node)));
    return made;
}
