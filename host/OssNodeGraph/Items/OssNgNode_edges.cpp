#include "OssNodeGraph/Items/OssNgNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgItemHost.h"
#include "OssNodeGraph/Items/OssNgNodeExtras.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QGraphicsScene>
#include <QGraphicsView>

#include <algorithm>

OssNgEdge *OssNgNode::input(const QString &name) const
{
    for (OssNgEdge *edge : m_inputEdges) {
        if (edge->destinationInput() == name)
            return edge;
    }
    return nullptr;
}

OssNgEdge *OssNgNode::attachInput(const QString &name, OssNgNode *source, const QString &outputName)
{
    OssNgEdge *old = input(name);
    if (old && old->source() == source && old->sourceOutput() == outputName)
        return old;
    delete old;
    if (!source || outputName.isEmpty())
        return nullptr;
    auto *edge = new OssNgEdge(source, outputName, this, name);
    edge->setVirtual(isVirtualInput(name));
    m_inputEdges.append(edge);
    source->addOutputEdge(edge);
    source->setOutputUsed(outputName, true);
    refresh();
    edge->updateVisibility();
    syncEdgeScene(edge);
    return edge;
}

void OssNgNode::detachInput(const QString &name)
{
    delete input(name);
}

bool OssNgNode::hasConsumer(const QString &output) const
{
    return std::any_of(m_outputEdges.begin(), m_outputEdges.end(),
                       [&output](const OssNgEdge *edge) { return edge->sourceOutput() == output; });
}

void OssNgNode::removeInputPort(const QString &name)
{
    delete input(name);
    if (list(Side::Input).remove(name))
        refresh();
}

void OssNgNode::removeOutputPort(const QString &name)
{
    const QList<OssNgEdge *> edges = m_outputEdges;
    for (OssNgEdge *edge : edges) {
        if (edge->sourceOutput() == name)
            delete edge;
    }
    if (list(Side::Output).remove(name))
        refresh();
}

void OssNgNode::renameEdges(Side side, const QString &oldName, const QString &newName)
{
    const bool input = side == Side::Input;
    for (OssNgEdge *edge : qAsConst(input ? m_inputEdges : m_outputEdges)) {
        QString &name = input ? edge->m_input : edge->m_output;
        if (name == oldName)
            name = newName;
    }
}

void OssNgNode::renameInputPort(const QString &oldName, const QString &newName)
{
    if (!list(Side::Input).rename(oldName, newName))
        return;
    renameEdges(Side::Input, oldName, newName);
    refresh();
}

void OssNgNode::renameOutputPort(const QString &oldName, const QString &newName)
{
    if (!list(Side::Output).rename(oldName, newName))
        return;
    renameEdges(Side::Output, oldName, newName);
    refresh();
}

void OssNgNode::forgetEdge(OssNgEdge *edge)
{
    if (m_temporaryEdge.get() == edge) {
        static_cast<void>(m_temporaryEdge.release()); // it is dying already
        return;
    }
    const bool wasInput = m_inputEdges.removeOne(edge);
    if (m_outputEdges.removeOne(edge))
        setOutputUsed(edge->sourceOutput(), hasConsumer(edge->sourceOutput()));
    if (wasInput)
        refresh();
}

void OssNgNode::syncEdgeScene(OssNgEdge *edge)
{
    QGraphicsScene *wanted = nullptr;
    if (edge->source() && edge->destination()
        && edge->source()->scene() == edge->destination()->scene())
        wanted = edge->destination()->scene();
    if (edge->scene() == wanted)
        return;
    if (wanted)
        wanted->addItem(edge);
    else
        edge->scene()->removeItem(edge);
}

void OssNgNode::updateEdges()
{
    for (OssNgEdge *edge : qAsConst(m_inputEdges))
        edge->updateGeometry();
    for (OssNgEdge *edge : qAsConst(m_outputEdges))
        edge->updateGeometry();
    if (m_temporaryEdge)
        m_temporaryEdge->updateGeometry();
}

OssNgEdge *OssNgNode::beginTemporaryEdge(const QString &portName, bool fromOutput)
{
    removeTemporaryOutputEdge();
    m_temporaryEdge = fromOutput ? std::make_unique<OssNgEdge>(this, portName, nullptr, QString())
                                 : std::make_unique<OssNgEdge>(nullptr, QString(), this, portName);
    if (scene())
        scene()->addItem(m_temporaryEdge.get());
    return m_temporaryEdge.get();
}

void OssNgNode::removeTemporaryOutputEdge()
{
    m_temporaryEdge.reset();
}

void OssNgNode::setVirtualInput(const QString &name, bool on)
{
    if (isVirtualInput(name) == on)
        return;
    if (on)
        extras().virtualInputs.insert(name);
    else
        extras().virtualInputs.remove(name);
    updateVirtualInputEdge();
}

bool OssNgNode::isVirtualInput(const QString &name) const
{
    return m_extras && m_extras->virtualInputs.contains(name);
}

void OssNgNode::updateVirtualInputEdge()
{
    for (OssNgEdge *edge : qAsConst(m_inputEdges)) {
        edge->setVirtual(isVirtualInput(edge->destinationInput()));
        edge->updateGeometry();
    }
}

void OssNgNode::removeVirtualInputEdge()
{
    const QList<OssNgEdge *> edges = m_inputEdges;
    for (OssNgEdge *edge : edges) {
        if (edge->isVirtual())
            delete edge;
    }
}

namespace {

bool someViewInserts(const QGraphicsScene *scene)
{
    const QList<QGraphicsView *> views = scene->views();
    return std::any_of(views.begin(), views.end(), [](QGraphicsView *view) {
        const auto *host = qobject_cast<OssNgItemHost *>(view);
        return host && host->isAutoInsertOn();
    });
}

/// The input that takes the wire: a preferred one, else the first. Empty without inputs.
QString insertionInput(const OssNgNode *node)
{
    for (const OssNgPort &port : node->inputPorts()) {
        if (port.preferred)
            return port.name;
    }
    return node->inputPorts().isEmpty() ? QString() : node->inputPorts().first().name;
}

void splice(OssNgNode *node, const OssNgEdge *edge)
{
    const QPointer<OssNgNode> source = edge->source();
    const QPointer<OssNgNode> destination = edge->destination();
    const QString sourceOutput = edge->sourceOutput();
    const QString destinationInput = edge->destinationInput();
    const QString ownInput = insertionInput(node);
    const QString ownOutput = node->outputPorts().first().name;
    // Listeners may rewire and so delete the edge from here on.
    OssUndoManager::AutoMacro macro(QStringLiteral("Insert node into connection"));
    const QPointer<OssNgNode> self = node;
    Q_EMIT node->inputSourceChanged(source, ownInput, sourceOutput);
    if (self && destination)
        Q_EMIT destination->inputSourceChanged(self, destinationInput, ownOutput);
}

} // namespace

OssNgEdge *OssNgNode::autoinsertCandidate() const
{
    if (!m_index || inputPorts().isEmpty() || outputPorts().isEmpty() || !m_inputEdges.isEmpty()
        || !m_outputEdges.isEmpty() || !someViewInserts(scene()))
        return nullptr;
    const QRectF body = bodyRect().translated(pos());
    // The header counts most: a wire that only brushes a corner is not meant.
    const QRectF core = body.adjusted(body.width() * 0.15, 0.0, -body.width() * 0.15, 0.0);
    OssNgEdge *best = nullptr;
    qreal nearest = core.height() / 2.0;
    const QVector<OssNgEdge *> edges = m_index->edgesIn(core);
    for (OssNgEdge *edge : edges) {
        if (!edge->isFullConnected() || edge->isVirtual())
            continue;
        const qreal away = edge->distanceTo(core.center());
        if (away > nearest)
            continue;
        nearest = away;
        best = edge;
    }
    return best;
}

void OssNgNode::processAutoinsert()
{
    if (const OssNgEdge *edge = m_keptOutOfWires ? nullptr : autoinsertCandidate())
        splice(this, edge);
}

void OssNgNode::setupNodeForInsertionIntoEdge(OssNgEdge *edge)
{
    if (!edge || !edge->isFullConnected() || inputPorts().isEmpty() || outputPorts().isEmpty()
        || edge->source() == this || edge->destination() == this)
        return;
    const OssUndoManager::AutoMacro macro(QStringLiteral("Insert node into connection"));
    savePosition();
    setPosition(edge->markerPosition() - boundingRect().center());
    OssUndoManager::instance()->addUndo(std::make_unique<OssNgNodePositionChangeUndo>(this));
    splice(this, edge);
}
