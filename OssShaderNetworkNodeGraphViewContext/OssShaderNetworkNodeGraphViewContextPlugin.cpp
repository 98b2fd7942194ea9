#include "OssShaderNetworkNodeGraphViewContextPlugin.h"

#include "OssAPI/NodeGraphAPI.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Arranger.h"
#include "ZelGL/ZelTextureToken.h"

#include <QAction>
#include <QApplication>

#include <utility>

namespace {

constexpr const char *Source = "OssShaderNetworkNodeGraphViewContextPlugin";
const ZelTextureToken TextureToken;
const QString ActionFolder = QStringLiteral("/Ossa/NodeGraph/");
const QString CreationFolder = QStringLiteral("/Ossa/NodeGraph/Create/");

/// What users read for a command of the node graph.
QString textOf(const char *name)
{
    const OssCommandTable::Row *row = OssCommandTable::find(ActionFolder
                                                            + QString::fromLatin1(name));
    return row ? OssCommandTable::text(*row) : QString();
}

} // namespace

bool OssShaderNetworkNodeGraphViewContextPlugin::initialize()
{
    OssDebug(Source, __LINE__, "[ Plugin ] Shader Network - Node Graph View Context");
    OssSnNodeGraphViewContextManager::instance();
    createActions();
    new Arranger(this); // owned
    initNodeGraphAPI();
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::registeredNodePopulationChanged, this,
            &OssShaderNetworkNodeGraphViewContextPlugin::createNodeCreationActions);
    return true;
}

bool OssShaderNetworkNodeGraphViewContextPlugin::uninitialize()
{
    return true;
}

QString OssShaderNetworkNodeGraphViewContextPlugin::name()
{
    return tr("Node Graph View Context");
}

QString OssShaderNetworkNodeGraphViewContextPlugin::description()
{
    return tr("Node Graph View of the Shader Network");
}

QString OssShaderNetworkNodeGraphViewContextPlugin::authorName()
{
    return QStringLiteral("The Ossa developers");
}

QString OssShaderNetworkNodeGraphViewContextPlugin::legalNotice()
{
    return QStringLiteral("Copyright (c) The Ossa developers. BSD-3-Clause.");
}

int OssShaderNetworkNodeGraphViewContextPlugin::version()
{
    return 1;
}

// --- actions

void OssShaderNetworkNodeGraphViewContextPlugin::createActions()
{
    using Plugin = OssShaderNetworkNodeGraphViewContextPlugin;

    struct Row
    {
        const char *name;
        void (Plugin::*slot)();
    };

#define OSS_ACTION_ROW(name, slot, call) Row{name, &Plugin::slot},
    const Row rows[] = {OSS_NODE_GRAPH_ACTIONS(OSS_ACTION_ROW, OSS_ACTION_ROW, OSS_ACTION_ROW)};
#undef OSS_ACTION_ROW

    createNodeCreationActions();
    for (const Row &row : rows) {
        const QString path = ActionFolder + QString::fromLatin1(row.name);
        QAction *action = OssCommandTable::makeAction(path, this);
        OssActionTreeManager::instance()->registerAction(ActionFolder, action);
        connect(action, &QAction::triggered, this, row.slot);
        action->setCheckable(path.endsWith(QLatin1String("/Toggle Edge Sever Mode")));
    }
}

void OssShaderNetworkNodeGraphViewContextPlugin::createNodeCreationActions()
{
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    QStringList keys = networks->nodeGraphPathKeys();
    std::sort(keys.begin(), keys.end());
    for (const QString &key : qAsConst(keys)) {
        QStringList parts = networks->nodeMenuPath(key).split(QLatin1Char('/'), Qt::SkipEmptyParts);
        if (parts.isEmpty())
            continue;
        const QString text = parts.takeLast();
        if (!parts.isEmpty() && parts.first().startsWith(QLatin1Char('_')))
            continue;
        const QString folder = CreationFolder + parts.join(QLatin1Char('/'));
        if (tree->hasAction(folder + QLatin1Char('/') + text))
            continue;
        auto *action = new QAction(OssMenu::asTyped(text), this);
        OssActionTreeManager::setName(action, text);
        action->setData(key);
        connect(action, &QAction::triggered, this,
                &OssShaderNetworkNodeGraphViewContextPlugin::createNodeFromAction);
        tree->registerAction(folder, action);
    }
}

void OssShaderNetworkNodeGraphViewContextPlugin::createNodeFromAction()
{
    auto *action = qobject_cast<QAction *>(sender());
    if (!action) {
        OssDebug(Source, __LINE__, "Action is NULL");
        return;
    }
    forward(action->text(),
            [action](OssShaderNetworkView *view) { view->createNodeFromAction(action); });
}

// --- forwarding

OssShaderNetworkView *OssShaderNetworkNodeGraphViewContextPlugin::currentShaderNetworkView()
{
    if (auto *focused = qobject_cast<OssShaderNetworkView *>(QApplication::focusWidget()))
        return focused;
    OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    const OssShaderNetwork *network = view ? view->network() : nullptr;
    const OssSnGroupNode *group = network ? network->parentGroupNode() : nullptr;
    OssDebugName(view, group ? group->path() : view ? tr("Root") : tr("(none)"));
    OssDebug(Source, __LINE__,
             "[ !! ] Could not get the current active widget, fallback onto current nodegraph "
             "view %p",
             static_cast<void *>(view));
    return view;
}

template <class Call>
void OssShaderNetworkNodeGraphViewContextPlugin::forward(const QString &title, Call call)
{
    OssShaderNetworkView *view = currentShaderNetworkView();
    if (!view) {
        OssDebug(Source, __LINE__, "ShaderNetworkView is NULL");
        return;
    }
    view->interruptGesture();
    OssApplication::takeTyped();
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    bool changed = false;
    bool told = false;
    const auto recording = connect(OssUndoManager::instance(), &OssUndoManager::recorded, this,
                                   [&changed] { changed = true; });
    const auto telling = connect(networks, &OssShaderNetworkManager::nodeGraphIsManuallyChanged,
                                 this, [&told] { told = true; });
    {
        const OssUndoManager::Gathering gathering(title);
        call(view);
    }
    disconnect(recording);
    disconnect(telling);
    // Commands that are told of in the midst of their work tell of it themselves.
    if (changed && !told)
        networks->emitNodeGraphIsManuallyChanged();
    if (!title.isEmpty() && !view->network())
        OssStatusManager::instance()->showMessage(tr("%1: open a project first").arg(title));
}

template <class Call>
void OssShaderNetworkNodeGraphViewContextPlugin::forwardOnNodes(const QString &title, Call call)
{
    OssStatusManager *status = OssStatusManager::instance();
    const OssUndoManager *steps = OssUndoManager::instance();
    bool said = false;
    const auto listening = connect(status, &OssStatusManager::messageShown, this,
                                   [&said] { said = true; });
    bool none = false;
    // A step that takes the place of undone ones may leave as many as there were.
    const auto now = [steps] {
        return std::make_pair(steps->count(), steps->index());
    };
    const auto before = now();
    forward(title, [&](OssShaderNetworkView *view) {
        none = !view->network() || view->network()->selectedNodes().isEmpty();
        call(view);
    });
    disconnect(listening);
    if (none && !said && now() == before)
        status->showMessage(tr("%1: select a node first").arg(title));
}

#define OSS_DEFINE_SLOT(title, slot, call) \
    void OssShaderNetworkNodeGraphViewContextPlugin::slot() \
    { \
        forward(title, [](OssShaderNetworkView *view) { view->call; }); \
    }
#define OSS_DEFINE_NODES_SLOT(name, slot, call) \
    void OssShaderNetworkNodeGraphViewContextPlugin::slot() \
    { \
        forwardOnNodes(textOf(name), [](OssShaderNetworkView *view) { view->call; }); \
    }
#define OSS_DEFINE_ACTION_SLOT(name, slot, call) OSS_DEFINE_SLOT(textOf(name), slot, call)
#define OSS_DEFINE_NAMED_SLOT(slot, call) OSS_DEFINE_SLOT({}, slot, call)
#define OSS_DEFINE_NO_SLOT(name, slot, call)

OSS_NODE_GRAPH_ACTIONS(OSS_DEFINE_ACTION_SLOT, OSS_DEFINE_NO_SLOT, OSS_DEFINE_NODES_SLOT)
OSS_NODE_GRAPH_NAMED_SLOTS(OSS_DEFINE_NAMED_SLOT)
