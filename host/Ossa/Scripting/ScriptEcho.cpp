#include "Ossa/Scripting/ScriptEcho.h"

#include "Ossa/Scripting/ScriptText.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "OssModel/Types/OssSnTags.h"

#include <QAction>

#include <algorithm>

namespace {

QString comment(const QString &title)
{
    return QStringLiteral("# ") + title;
}

} // namespace

ScriptEcho::ScriptEcho(QObject *parent)
    : QObject(parent)
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, &ScriptEcho::tell);
}

ScriptEcho::~ScriptEcho() = default;

// --- listening

void ScriptEcho::setEnabled(bool enabled)
{
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    auto *networks = OssShaderNetworkManager::instance();
    auto *undo = OssUndoManager::instance();
    auto *actions = OssActionTreeManager::instance();
    if (!enabled) {
        for (QObject *sender : {static_cast<QObject *>(networks), static_cast<QObject *>(undo),
                                static_cast<QObject *>(actions),
                                static_cast<QObject *>(OssNodeTypeWatch::instance())})
            disconnect(sender, nullptr, this, nullptr);
        for (const OssActionTreeManager::Entry &entry : actions->entries())
            disconnect(entry.action, nullptr, this, nullptr);
        for (const Known &known : qAsConst(m_known)) {
            if (known.node)
                disconnect(known.node, nullptr, this, nullptr);
        }
        m_known.clear();
        forgetChanges();
        return;
    }
    connect(networks, &OssShaderNetworkManager::nodeRegistered, this, &ScriptEcho::addNode);
    connect(networks, &OssShaderNetworkManager::nodeDeregistered, this,
            [this](OssShaderNetwork *, OssSnBaseNode *node) { loseNode(node); });
    connect(networks, &OssShaderNetworkManager::currentShaderNetworkChanged, this,
            &ScriptEcho::learnEverything);
    connect(networks, &OssShaderNetworkManager::arrangementRequested, this,
            &ScriptEcho::addArrangement);
    connect(OssNodeTypeWatch::instance(), &OssNodeTypeWatch::published, this,
            &ScriptEcho::addPublished);
    connect(undo, &OssUndoManager::recorded, this, [this](const QString &title) {
        m_titles.append(title);
        schedule();
    });
    connect(undo, &OssUndoManager::undone, this, [this] {
        m_moves.append(QStringLiteral("undo"));
        schedule();
    });
    connect(undo, &OssUndoManager::redone, this, [this] {
        m_moves.append(QStringLiteral("redo"));
        schedule();
    });
    for (const OssActionTreeManager::Entry &entry : actions->entries())
        watchAction(entry.action);
    connect(actions, &OssActionTreeManager::actionRegistered, this,
            [this](const QString &, QAction *action) { watchAction(action); });
    learnEverything();
}

void ScriptEcho::setScriptRunning(bool running)
{
    if (running && m_later.isActive()) { // the script's macro is open already
        m_later.stop();
        tellNow();
    }
    m_scriptRunning = running;
    if (!running && m_enabled) {
        forgetChanges();
        learnEverything();
    }
}

void ScriptEcho::watchAction(QAction *action)
{
    connect(action, &QAction::triggered, this, [this, action] {
        m_action = OssActionTreeManager::instance()->pathOf(action);
        schedule();
    });
}

void ScriptEcho::watchNode(OssShaderNetwork *network, OssSnBaseNode *node)
{
    m_known.insert(node, {node->path(), positionOf(node), sizeOf(node), network, node,
                          node->outputPointNames()});
    const auto change = [this, node]() -> Change & {
        if (!m_changes.contains(node))
            m_changeOrder.append(node);
        schedule();
        return m_changes[node];
    };
    disconnect(node, nullptr, this, nullptr);
    connect(node, &OssSnBaseNode::nameChanged, this, [change] { change().renamed = true; });
    connect(node, &OssSerializableObject::userAttributeChanged, this,
            [change](const QString &name) { change().attributes.insert(name); });
    connect(node, &OssSnBaseNode::inputNodeChanged, this,
            [change](const QString &input) { change().inputs.insert(input); });
    connect(node, &OssSnBaseNode::inputEnabledChanged, this,
            [change](const QString &input) { change().switched.insert(input); });
    connect(node, &OssSnBaseNode::inputOrderChanged, this,
            [change] { change().inputOrder = true; });
    connect(node, &OssSnBaseNode::outputsRefreshed, this,
            [change] { change().outputOrder = true; });
    connect(node, &OssSnBaseNode::nodeAttributeRenamed, this,
            [change](const QString &before, const QString &after) {
                change().knobs.append({before, after});
            });
    connect(node, &OssSnBaseNode::nodeRefreshed, this, [change] { change().version = true; });
    connect(node, &OssSnBaseNode::enabledChanged, this, [change] { change().enabled = true; });
    connect(node, &OssSnBaseNode::bypassedChanged, this, [change] { change().bypassed = true; });
    connect(node, &OssSnBaseNode::lockedChanged, this, [change] { change().locked = true; });
    connect(node, &OssSnBaseNode::descriptionChanged, this,
            [change] { change().description = true; });
    connect(node, &OssSerializableObject::selectedChanged, this, &ScriptEcho::schedule);
}

void ScriptEcho::addNode(OssShaderNetwork *network, OssSnBaseNode *node)
{
    watchNode(network, node);
    m_added.append(node);
    schedule();
}

void ScriptEcho::addArrangement(const QList<OssSnBaseNode *> &nodes,
                                OssShaderNetworkManager::Arrangement how)
{
    const OssShaderNetwork *shown = OssShaderNetworkManager::instance()->currentViewNetwork();
    const OssShaderNetwork *network = nodes.isEmpty() ? shown : nodes.first()->network();
    if (!network)
        return;
    if (how == OssShaderNetworkManager::ArrangeInLayers
        && nodes.size() == network->nodes().size()) {
        m_arranged.append(ScriptText::graph(network) + QStringLiteral(".arrange()"));
        schedule();
        return;
    }
    QStringList paths;
    for (const OssSnBaseNode *node : nodes)
        paths.append(ScriptText::node(node->path()));
    m_arranged.append(QStringLiteral("%1.arrange(%2, %3)")
                          .arg(ScriptText::graph(network), ScriptText::list(paths),
                               ScriptText::text(OssShaderNetworkManager::nameOf(how))));
    schedule();
}

void ScriptEcho::addPublished(OssSnBaseNode *group, const OssPublishedGroup::Form &form)
{
    if (!m_changes.contains(group))
        m_changeOrder.append(group);
    QStringList values = {ScriptText::text(form.category), ScriptText::text(form.name),
                          ScriptText::text(form.toolTip)};
    if (!form.aliases.isEmpty()) {
        QStringList words;
        for (const QString &word : form.aliases)
            words.append(ScriptText::text(word));
        values.append(ScriptText::list(words));
    }
    m_changes[group].published = QStringLiteral(".publish(%1)")
                                     .arg(values.join(QStringLiteral(", ")));
    schedule();
}

void ScriptEcho::loseNode(OssSnBaseNode *node)
{
    const auto known = m_known.constFind(node);
    if (known == m_known.cend())
        return;
    if (!m_added.contains(node))
        m_removed.append(known->path);
    m_removedNodes.insert(node);
    m_changes.remove(node);
    m_changeOrder.removeAll(node);
    disconnect(node, nullptr, this, nullptr);
    m_known.erase(known);
    schedule();
}

void ScriptEcho::learnEverything()
{
    for (const Known &known : qAsConst(m_known)) {
        if (known.node)
            disconnect(known.node, nullptr, this, nullptr);
    }
    m_known.clear();
    forgetChanges();
    m_selection.clear();
    const OssShaderNetwork *current = OssShaderNetworkManager::instance()->currentShaderNetwork();
    if (!current)
        return;
    const QList<OssSnBaseNode *> nodes = current->getAllNodes();
    for (OssSnBaseNode *node : nodes) {
        watchNode(node->network(), node);
        if (node->selected())
            m_selection.append(node->path());
    }
}

void ScriptEcho::forgetChanges()
{
    m_action.clear();
    m_arranged.clear();
    m_titles.clear();
    m_moves.clear();
    m_added.clear();
    m_removed.clear();
    m_removedNodes.clear();
    m_changes.clear();
    m_changeOrder.clear();
}

void ScriptEcho::schedule()
{
    if (!m_scriptRunning && !m_later.isActive())
        m_later.start(0);
}

// --- telling

void ScriptEcho::tell()
{
    // In the middle of a gesture or a dialog the command is not over.
    if (!m_enabled || m_scriptRunning)
        return;
    if (OssUndoManager::instance()->isMacroOpen()) {
        m_later.start(100);
        return;
    }
    tellNow();
}

void ScriptEcho::tellNow()
{
    for (const QString &move : qAsConst(m_moves))
        Q_EMIT line(QStringLiteral("ossa.undo().%1()").arg(move));
    if (!m_titles.isEmpty()) {
        const QStringList lines = canBeSaid() ? describe() : QStringList();
        for (const QString &text : lines)
            Q_EMIT line(text);
        const bool told = !lines.isEmpty();
        if (!told && !m_action.isEmpty())
            Q_EMIT line(describeAction());
        else if (!told)
            Q_EMIT line(comment(m_titles.join(QStringLiteral(", "))));
    }
    const bool pathsAreOther = !m_added.isEmpty() || !m_removed.isEmpty()
                               || std::any_of(m_changes.cbegin(), m_changes.cend(),
                                              [](const Change &change) { return change.renamed; });
    forgetChanges();
    m_selection.clear();
    for (auto known = m_known.begin(); known != m_known.end(); ++known) {
        OssSnBaseNode *node = known.key();
        if (pathsAreOther)
            known->path = node->path();
        known->position = positionOf(node);
        known->size = sizeOf(node);
        known->outputs = node->outputPointNames();
        if (node->selected())
            m_selection.append(known->path);
    }
    m_selection.sort();
}

bool ScriptEcho::canBeSaid() const
{
    for (OssSnBaseNode *node : m_added) {
        // Moved from graph to graph, or with something inside. What came and went is nothing.
        if (!m_known.contains(node))
            continue;
        const auto *group = qobject_cast<const OssSnGroupNode *>(node);
        const bool hasContent = group && !group->groupNetwork()->nodes().isEmpty();
        if (m_removedNodes.contains(node) || hasContent || node->hasTag(OssSnTags::input())
            || node->hasTag(OssSnTags::output()))
            return false;
    }
    return true;
}

QStringList ScriptEcho::removedNodes() const
{
    QStringList nodes;
    for (const QString &path : qAsConst(m_removed)) {
        const QString parent = path.section(QLatin1Char('/'), 0, -2);
        if (parent.isEmpty() || !m_removed.contains(parent))
            nodes.append(ScriptText::node(path));
    }
    return nodes;
}

QStringList ScriptEcho::describe()
{
    QStringList lines;
    const QStringList removed = removedNodes();
    for (const QString &node : removed)
        lines.append(node + QStringLiteral(".remove()"));
    for (OssSnBaseNode *node : qAsConst(m_added)) {
        if (m_known.contains(node))
            lines.append(describeNew(node));
    }
    for (OssSnBaseNode *node : qAsConst(m_changeOrder)) {
        if (!m_added.contains(node))
            lines.append(describeNode(node, m_changes.value(node)));
    }
    for (OssSnBaseNode *node : qAsConst(m_added)) {
        if (m_known.contains(node))
            lines.append(describeWires(node, node->inputNames()));
    }
    if (m_arranged.isEmpty())
        lines.append(describeMoves());
    return lines + m_arranged;
}
