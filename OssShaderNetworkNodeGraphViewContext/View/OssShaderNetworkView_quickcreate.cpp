#include "OssShaderNetworkView.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "View/Backdrops.h"
#include "View/QuickCreation.h"

#include <algorithm>

// Making a node that is found by a few letters, also at the end of a wire.

namespace {

/// A material goes into what takes materials; all else can be read as something else.
bool goTogether(OssSnDataKind a, OssSnDataKind b)
{
    return (a == OssSnDataKind::Material) == (b == OssSnDataKind::Material);
}

/// The port to wire to: of the same kind rather than of another, preferred ones rather than others, and which
/// of both counts more. Empty when none goes together with the kind.
template <class Ports, class Preferred>
QString bestPort(const Ports &ports, OssSnDataKind kind, Preferred isPreferred, int likeness = 1)
{
    QString best;
    int bestScore = 0;
    for (const auto &port : ports) {
        const int score = !goTogether(port.kind, kind) ? 0
                                                       : 1 + (port.kind == kind ? likeness : 0)
                                                             + (isPreferred(port) ? 2 : 0);
        if (score > bestScore) {
            bestScore = score;
            best = port.name;
        }
    }
    return best;
}

template <class Ports>
bool hasPortFor(const Ports &ports, OssSnDataKind kind)
{
    return !bestPort(ports, kind, [](const auto &) { return false; }).isEmpty();
}

template <class Ports>
OssSnDataKind kindOf(const Ports &ports, const QString &name)
{
    const auto found = std::find_if(ports.cbegin(), ports.cend(),
                                    [&name](const auto &port) { return port.name == name; });
    return found == ports.cend() ? OssSnDataKind::Color : found->kind;
}

} // namespace

void OssShaderNetworkView::quickCreate()
{
    if (!hasNetwork())
        return;
    QPoint position = creationPoint();
    const QString chosen = QuickCreation::findNodeType(viewport(), &position, {});
    if (!chosen.isEmpty())
        createChosenNode(chosen, position);
}

void OssShaderNetworkView::createAtWireEnd(OssNgNode *item, const QString &port, bool fromOutput,
                                           const QPointF &scenePos)
{
    const QPointer<OssSnBaseNode> owner = item ? qobject_cast<OssSnBaseNode *>(item->businessNode())
                                               : nullptr;
    if (!hasNetwork() || !scene() || !owner || owner->network() != m_network)
        return;
    const OssSnDataKind kind = fromOutput ? kindOf(owner->outputPoints(), port)
                                          : kindOf(owner->inputPorts(), port);
    QPoint position = fromScene(scenePos).toPoint();
    const QString chosen = QuickCreation::findNodeType(
        viewport(), &position, [kind, fromOutput](const OssSnNodeType &type) {
            return fromOutput ? hasPortFor(type.inputs, kind) : hasPortFor(type.outputs, kind);
        });
    if (chosen.isEmpty() || !owner || !scene())
        return;
    const OssUndoManager::AutoMacro macro(
        tr("Create Node : %1").arg(chosen.section(QLatin1Char('/'), -1)));
    scene()->clearSelection(); // the wire says what it is connected to
    createChosenNode(chosen, position);
    const QList<OssSnBaseNode *> made = selectedNodes();
    if (made.size() != 1)
        return;
    OssSnBaseNode *node = made.first();
    if (fromOutput) {
        const auto preferred = [](const OssSnInputPort &input) {
            return input.preferred;
        };
        node->setInputNode(bestPort(node->inputPorts(), kind, preferred), owner, port);
    } else {
        if (OssNgNode *newItem = itemOf(node)) {
            newItem->setPosition(scenePos - QPointF(newItem->boundingRect().width(), 0.0));
            placeNodeInSight(node);
        }
        const QString first = node->prefferedOutputPoint();
        const auto preferred = [&first](const OssSnOutputPoint &output) {
            return output.name == first;
        };
        // A color is wanted, and a noise has one besides its value.
        constexpr int Likeness = 3;
        owner->setInputNode(port, node, bestPort(node->outputPoints(), kind, preferred, Likeness));
    }
    Backdrops::settle({{node, node->container()}});
    Backdrops::settleNew(node);
    if (const OssNgNode *newItem = itemOf(node))
        ensureVisible(newItem, 0, 0); // others may have pushed it out of sight
}
