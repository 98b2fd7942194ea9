#include "View/DropWire.h"

#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssShaderNetworkView.h"

#include <QMimeData>

#include <algorithm>

namespace {

constexpr qreal Reach = 10.0; ///< pixels

/// Whether a node of the one type that is dragged has what a wire needs at both ends.
bool fitsIntoWires(const QMimeData *data)
{
    const QString key = QString::fromUtf8(data->data(OssNodeTypeListModel::MimeType));
    const auto type = OssShaderNetworkManager::instance()->nodeType(key); // several lines are none
    const auto isColor = [](const OssSnNodeType::Port &port) {
        return port.kind != OssSnDataKind::Material;
    };
    return type && std::any_of(type->inputs.cbegin(), type->inputs.cend(), isColor)
           && std::any_of(type->outputs.cbegin(), type->outputs.cend(), isColor);
}

OssNgEdge *wireAt(const OssShaderNetworkView *view, const QPointF &place)
{
    const OssNgSceneIndex *index = OssNgSceneIndex::of(view->scene());
    const OssNgNode *node = index ? index->nodeAt(place) : nullptr;
    if (!index || (node && !node->isBackground())) // wires run below nodes
        return nullptr;
    OssNgEdge *edge = index->edgeAt(place, Reach / view->zoom());
    return edge && edge->isFullConnected() && !edge->isVirtual() ? edge : nullptr;
}

} // namespace

void DropWire::show(const OssShaderNetworkView *view, const QMimeData *data, const QPoint &position)
{
    OssNgEdge *edge = view->isAutoInsertOn() && fitsIntoWires(data)
                          ? wireAt(view, view->mapToScene(position))
                          : nullptr;
    if (edge == wire())
        return;
    hide();
    if (!edge)
        return;
    edge->setMark(OssNgEdge::Inviting, true);
    m_destination = edge->destination();
    m_input = edge->destinationInput();
}

void DropWire::hide()
{
    if (OssNgEdge *lit = wire())
        lit->setMark(OssNgEdge::Inviting, false);
    m_destination = nullptr;
}

OssNgEdge *DropWire::wire() const
{
    return m_destination ? m_destination->input(m_input) : nullptr;
}

void DropWire::takeIn(OssNgNode *node, const QPointF &place) const
{
    if (!node || !wire())
        return;
    node->setPosition(place - node->boundingRect().center());
    if (node->autoinsertCandidate() == wire())
        node->processAutoinsert();
    else // another is nearer to it
        node->setupNodeForInsertionIntoEdge(wire());
}
