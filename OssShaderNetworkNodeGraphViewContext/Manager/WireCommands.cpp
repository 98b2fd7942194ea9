#include "Manager/WireCommands.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QAction>
#include <QCursor>
#include <QGraphicsScene>

#include <algorithm>

namespace {

constexpr qreal Reach = 10.0; // pixels

struct End
{
    OssSnBaseNode *node;
    QString input;
};

/// Where a wire of the model ends; a null node for others.
End endOf(const OssNgEdge *wire)
{
    if (!wire || !wire->isFullConnected())
        return {};
    return {qobject_cast<OssSnBaseNode *>(wire->destination()->businessNode()),
            wire->destinationInput()};
}

QVector<End> wantedEnds(const OssShaderNetworkView *view)
{
    QVector<End> ends;
    const QList<QGraphicsItem *> selected = view->scene()->selectedItems();
    for (QGraphicsItem *item : selected) {
        const End end = endOf(dynamic_cast<OssNgEdge *>(item));
        if (end.node)
            ends.append(end);
    }
    const QPoint pointer = view->viewport()->mapFromGlobal(QCursor::pos());
    if (!ends.isEmpty() || !view->viewport()->rect().contains(pointer))
        return ends;
    // From the menu: what it was asked for at.
    const End end = endOf(OssNgSceneIndex::of(view->scene())
                              ->edgeAt(view->toScene(view->creationPoint()), Reach / view->zoom()));
    return end.node ? QVector<End>{end} : ends;
}

} // namespace

WireCommands::WireCommands(QObject *parent)
    : QObject(parent)
{
    QAction *action = OssCommandTable::makeAction(QStringLiteral("/Ossa/NodeGraph/Toggle Wire"),
                                                  this);
    connect(action, &QAction::triggered, this, &WireCommands::toggle);
    OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph"), action);
}

void WireCommands::toggle()
{
    const OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    if (!view || !view->scene())
        return;
    const QVector<End> ends = wantedEnds(view);
    if (ends.isEmpty()) {
        OssStatusManager::instance()->showMessage(
            tr("Toggle Wire: select a wire first, or point at one"));
        return;
    }
    // One that is on among them: all go off.
    const bool enable = std::none_of(ends.cbegin(), ends.cend(), [](const End &end) {
        return end.node->isInputEnabled(end.input);
    });
    {
        const OssUndoManager::Gathering gathering(enable ? tr("Enable Wires")
                                                         : tr("Disable Wires"));
        for (const End &end : ends)
            end.node->setInputEnabled(end.input, enable);
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}
