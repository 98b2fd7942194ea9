#include "Ossa/Painting/PaintNodes.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnChannelInputNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Types/OssSnTags.h"

#include <QCoreApplication>
#include <QSet>

namespace {

struct Channel
{
    const char *input;
    bool isScalar;
};

constexpr Channel layerChannels[] = {
    {"Base Color", false}, {"Roughness", true}, {"Metallic", true}, {"Displacement", true}};
const QString normalInput = QStringLiteral("Normal");

/// What a node gets from beneath it gets with the paint.
void lead(OssSnBaseNode *node, const OssSnBaseNode *beneath, const QString &output,
          OssSnBaseNode *merge)
{
    const QStringList inputs = node->inputNames();
    for (const QString &input : inputs) {
        if (node->inputNode(input) == beneath && node->inputOutputPoint(input) == output)
            node->setInputNode(input, merge, merge->prefferedOutputPoint());
    }
}

QList<OssSnBaseNode *> nodesOf(const OssShaderNetwork *network)
{
    return network ? network->getAllNodes() : QList<OssSnBaseNode *>();
}

void select(const OssShaderNetwork *network, const PaintNodes::Nodes &chosen)
{
    const QList<OssSnBaseNode *> nodes = nodesOf(network);
    for (OssSnBaseNode *node : nodes)
        node->setSelected(chosen.contains(qobject_cast<OssSnImageSetNodeBase *>(node)));
    if (!chosen.isEmpty())
        OssShaderNetworkManager::instance()->requestSight(chosen.first());
}

OssSnImageSetNodeBase *makePaint(OssSnBaseNode *fed, const QString &input)
{
    OssShaderNetwork *network = fed->network();
    auto *paint = qobject_cast<OssSnImageSetNodeBase *>(network->createPaintableNode({}));
    if (!paint)
        return nullptr;
    OssSnBaseNode *beneath = fed->inputNode(input);
    const QString output = fed->inputOutputPoint(input);
    if (!beneath || beneath->network() != network) {
        fed->setInputNode(input, paint, paint->prefferedOutputPoint());
        PaintNodes::placeLeftOf(fed, paint);
        return paint;
    }
    OssSnBaseNode *merge = network->createNode(QStringLiteral("Layer/Merge"), {});
    OssSnBaseNode *viewer = network->viewerNode();
    const QList<OssSnBaseNode *> others = beneath->outputNodes();
    merge->setInputNode(QStringLiteral("Base"), beneath, output);
    merge->setInputNode(QStringLiteral("Over"), paint, paint->prefferedOutputPoint());
    fed->setInputNode(input, merge, merge->prefferedOutputPoint());
    OssSnBaseNode *bends = fed->inputNode(normalInput);
    if (bends && input == QLatin1String("Displacement")) // a normal that is made of it
        lead(bends, beneath, output, merge);
    // Who looks at what is beneath sees the paint as well.
    const QString edge = QString::number(network->rootNetwork()->viewerNodeCurrentEdge());
    if (viewer && viewer->inputNode(edge) == beneath && viewer->inputOutputPoint(edge) == output)
        viewer->setInputNode(edge, merge, merge->prefferedOutputPoint());
    // What is painted on while one looks at it is painted for all that is made of it.
    OssSnBaseNode *first = fed;
    for (OssSnBaseNode *other : others) {
        if (fed != viewer || other == viewer)
            continue;
        lead(other, beneath, output, merge);
        first = first == fed && merge->outputNodes().contains(other) ? other : first;
    }
    PaintNodes::placeLeftOf(first, merge);
    PaintNodes::placeLeftOf(merge, paint);
    return paint;
}

OssSnImageSetNodeBase *findIn(const OssShaderNetwork *network, const OssImageSet *images)
{
    const QList<OssSnBaseNode *> nodes = nodesOf(network);
    for (OssSnBaseNode *node : nodes) {
        auto *own = qobject_cast<OssSnImageSetNodeBase *>(node);
        const auto *group = qobject_cast<const OssSnGroupNode *>(node);
        if (own && own->imageSet() == images)
            return own;
        if (OssSnImageSetNodeBase *inside = group ? findIn(group->groupNetwork(), images) : nullptr)
            return inside;
    }
    return nullptr;
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
    const QList<OssSnBaseNode *> nodes = nodesOf(network);
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
    const QList<OssSnBaseNode *> nodes = nodesOf(network);
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
        if (!node->hasTag(OssSnTags::shader()))
            continue;
        if (node == shown || (shown && isUpstream(shown, node)))
            return node;
        shaders.append(node);
    }
    return shaders.size() == 1 ? shaders.first() : nullptr;
}

OssSnImageSetNodeBase *PaintNodes::find(const OssProject *project, const OssImageSet *images)
{
    const QList<OssShadingGroup *> groups = project ? project->shadingGroups()
                                                    : QList<OssShadingGroup *>();
    for (const OssShadingGroup *group : groups) {
        if (OssSnImageSetNodeBase *found = findIn(group->network(), images))
            return found;
    }
    return nullptr;
}

OssSnImageSetNodeBase *PaintNodes::putOver(OssSnBaseNode *fed, const QString &input)
{
    if (!fed->inputNames().contains(input))
        return nullptr;
    const OssUndoManager::AutoMacro macro(QCoreApplication::translate("PaintNodes", "New Paint"));
    OssSnImageSetNodeBase *paint = makePaint(fed, input);
    if (paint)
        select(fed->network(), {paint});
    return paint;
}

std::optional<double> PaintNodes::usualOf(const OssSnBaseNode *node)
{
    QSet<const OssSnBaseNode *> seen;
    QList<const OssSnBaseNode *> open{node};
    while (!open.isEmpty()) {
        const OssSnBaseNode *next = open.takeFirst();
        const QList<OssSnBaseNode *> fed = next->outputNodes();
        for (const OssSnBaseNode *shader : fed) {
            for (const Channel &channel : layerChannels) {
                const QString input = QLatin1String(channel.input);
                if (channel.isScalar && shader->hasTag(OssSnTags::shader())
                    && shader->inputNode(input) == next)
                    return shader->attribute(input).toDouble();
            }
            if (!seen.contains(shader)) {
                seen.insert(shader);
                open.append(shader);
            }
        }
    }
    return std::nullopt;
}

PaintNodes::Nodes PaintNodes::makeLayer(OssSnBaseNode *shader)
{
    const OssUndoManager::AutoMacro macro(
        QCoreApplication::translate("PaintNodes", "New Paint Layer"));
    Nodes made;
    for (const Channel &channel : layerChannels) {
        const QString input = QLatin1String(channel.input);
        OssSnImageSetNodeBase *paint = shader->inputNames().contains(input)
                                           ? makePaint(shader, input)
                                           : nullptr;
        if (!paint)
            continue;
        paint->setName(QCoreApplication::translate("PaintNodes", "%1 Paint").arg(input));
        if (paint->imageSet())
            paint->imageSet()->setScalar(channel.isScalar);
        made.append(paint);
    }
    select(shader->network(), made);
    return made;
}
