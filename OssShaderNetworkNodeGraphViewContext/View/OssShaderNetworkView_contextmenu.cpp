#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Actions/OssMenuManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssNodeGraph/Items/OssNgNode.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QGraphicsScene>
#include <QScopedValueRollback>

#include <algorithm>
#include <memory>

namespace {

constexpr const char *Source = "OssShaderNetworkView";

/// Their nodes are reached elsewhere.
bool isListed(const QString &menuPath)
{
    for (const char *prefix : {"Shader Network/", "Shaders/", "Lighting/"}) {
        if (menuPath.startsWith(QLatin1String(prefix)))
            return false;
    }
    const QStringList parts = menuPath.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    return !parts.isEmpty() && std::none_of(parts.cbegin(), parts.cend(), [](const QString &part) {
        return part.startsWith(QLatin1Char('_'));
    });
}

void fillNodesMenu(OssMenu *menu)
{
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    QStringList keys = networks->nodeGraphPathKeys();
    std::sort(keys.begin(), keys.end(), [networks](const QString &a, const QString &b) {
        return networks->nodeMenuPath(a) < networks->nodeMenuPath(b);
    });
    for (const QString &key : qAsConst(keys)) {
        const QString menuPath = networks->nodeMenuPath(key);
        if (!isListed(menuPath))
            continue;
        QStringList parts = menuPath.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        parts.removeLast();
        QAction *action = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Create/") + key);
        if (action)
            OssMenu::submenu(menu, parts)->addAction(action);
    }
}

void addGlobalActions(OssMenu *menu)
{
    const QList<QAction *> actions = OssShaderNetworkManager::instance()
                                         ->globalContextMenuActions();
    if (actions.isEmpty())
        return;
    menu->addSeparator();
    menu->addActions(actions);
    menu->addSeparator();
}

/// Enables an action while the menu is open. Its key must not stay dead afterwards.
class EnabledWhileOpen
{
public:
    EnabledWhileOpen(const QString &path, bool enabled)
        : m_action(OssActionTreeManager::instance()->findAction(path))
        , m_before(!m_action || m_action->isEnabled())
    {
        if (m_action)
            m_action->setEnabled(enabled);
    }

    EnabledWhileOpen(const EnabledWhileOpen &) = delete;
    EnabledWhileOpen &operator=(const EnabledWhileOpen &) = delete;

    ~EnabledWhileOpen()
    {
        if (m_action)
            m_action->setEnabled(m_before);
    }

private:
    QPointer<QAction> m_action;
    bool m_before;
};

} // namespace

QPoint OssShaderNetworkView::menuPoint(const QContextMenuEvent *event) const
{
    if (event->reason() == QContextMenuEvent::Mouse)
        return viewport()->mapFromGlobal(event->globalPos());
    const QRectF selection = selectionBounds();
    const QRect visible = viewport()->rect();
    const QPoint wanted = fromScene(selection.center()).toPoint();
    return !selection.isEmpty() && visible.contains(wanted) ? wanted : visible.center();
}

void OssShaderNetworkView::contextMenuEvent(QContextMenuEvent *event)
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    const std::unique_ptr<OssMenu> menu(OssMenuManager::instance()->makeMenu(
        QStringLiteral("Context"), QStringLiteral("NodeGraph")));
    if (!menu) {
        OssDebug(Source, __LINE__, "Menu is NULL");
        return;
    }
    menu->setShortcutGroup(QStringLiteral("Node Graph"));
    auto *nodes = new OssMenu(tr("Nodes"), menu.get()); // owned by the menu
    fillNodesMenu(nodes);
    addGlobalActions(menu.get());

    const QList<QGraphicsItem *> selected = scene()->selectedItems();
    const auto *guiNode = selected.isEmpty() ? nullptr
                                             : dynamic_cast<OssNgNode *>(selected.first());
    const auto *node = guiNode ? qobject_cast<OssSnBaseNode *>(guiNode->businessNode()) : nullptr;
    const bool one = selected.size() == 1 && node;
    const bool inGroup = one && node->network() && node->network()->parentGroupNode();
    const EnabledWhileOpen knobs(QStringLiteral("/Ossa/NodeGraph/Manage User Knobs"),
                                 one && qobject_cast<const OssSnGroupNode *>(node));
    const EnabledWhileOpen exposure(QStringLiteral("/Ossa/NodeGraph/Expose Node Properties"),
                                    inGroup && OssSnGroupNode::offersKnobs(node));
    for (const char *text :
         {"Dump Selected Node Info", "Upgrade Selected Node Info", "Upgrade All Node Info"}) {
        QAction *action = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/") + QLatin1String(text));
        if (action)
            menu->addAction(action);
    }
    const QScopedValueRollback<std::optional<QPoint>> point(m_menuPoint, menuPoint(event));
    menu->exec(viewport()->mapToGlobal(*m_menuPoint));
}
