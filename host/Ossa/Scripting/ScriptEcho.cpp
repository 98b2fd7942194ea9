#include "Ossa/Scripting/ScriptEcho.h"

#include "Ossa/Scripting/ScriptText.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "OssModel/Types/OssSnTags.h"

#include <QAction>

namespace {

const QString groupCommand = QStringLiteral("/Ossa/NodeGraph/Group Selected Nodes");
const QString ungroupCommand = QStringLiteral("/Ossa/NodeGraph/Ungroup");

QPointF positionOf(const OssSnBaseNode *node)
{
    const OssSnBaseContext *context = node->viewContext();
    return context ? context->nodePosition() : QPointF();
}

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
    m_known.insert(node, {node->path(), positionOf(node), network, node, node->outputPointNames()});
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
    forgetChanges();
    m_selection.clear();
    for (auto known = m_known.begin(); known != m_known.end(); ++known) {
        OssSnBaseNode *node = known.key();
        known->path = node->path();
        known->position = positionOf(node);
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
        if (m_removedNodes.contains(node) || qobject_cast<const OssSnGroupNode *>(node)
            || node->hasTag(OssSnTags::input()) || node->hasTag(OssSnTags::output()))
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

QStringList ScriptEcho::describeNew(OssSnBaseNode *node) const
{
    QStringList lines{ScriptText::createNode(node)};
    if (node->viewContext()) {
        lines.first().chop(1);
        lines.first() += QStringLiteral(", %1)").arg(ScriptText::value(positionOf(node)));
    }
    for (const OssCustomAttribute &attribute : node->userAttributes()) {
        if (!attribute.isDefault())
            lines.append(
                ScriptText::setAttribute(node->path(), attribute.name(), attribute.value()));
    }
    Change state;
    state.enabled = node->isNotEnabled();
    state.bypassed = node->isBypassed();
    state.locked = node->isLocked();
    state.description = node->hasDescription();
    lines.append(describeNode(node, state));
    lines.removeAll(QString());
    return lines;
}

QStringList ScriptEcho::describeNode(OssSnBaseNode *node, const Change &change) const
{
    QStringList lines;
    const QString path = node->path();
    const QString name = ScriptText::node(path);
    if (change.renamed)
        lines.append(ScriptText::node(m_known.value(node).path) + QStringLiteral(".name = ")
                     + ScriptText::text(node->name()));
    // Values and ports are told anew with the type, though nobody changed them.
    if (!change.published.isEmpty())
        return lines << name + change.published;
    if (change.version)
        return lines << describeVersion(node);
    lines.append(describePorts(node, change));
    const QString lock = change.locked ? name + QStringLiteral(".locked = ")
                                             + ScriptText::value(node->isLocked())
                                       : QString();
    if (!node->isLocked())
        lines.append(lock);
    QStringList attributes = change.attributes.values();
    attributes.sort();
    for (const QString &attribute : qAsConst(attributes)) {
        if (node->exists(attribute))
            lines.append(ScriptText::setAttribute(path, attribute, node->attribute(attribute)));
    }
    if (node->isLocked())
        lines.append(lock);
    if (change.enabled)
        lines.append(name + QStringLiteral(".enabled = ")
                     + ScriptText::value(node->enabledAsBool()));
    if (change.bypassed)
        lines.append(name + QStringLiteral(".bypassed = ") + ScriptText::value(node->isBypassed()));
    if (change.description)
        lines.append(name + QStringLiteral(".description = ")
                     + ScriptText::text(node->description()));
    QStringList inputs = change.inputs.values();
    inputs.sort();
    lines.append(describeWires(node, inputs));
    lines.removeAll(QString());
    return lines;
}

QStringList ScriptEcho::describeVersion(const OssSnBaseNode *node)
{
    const auto installed = OssShaderNetworkManager::instance()->nodeType(node->pathKey());
    if (!installed || node->nodeType() != installed.get())
        return {};
    return {ScriptText::node(node->path()) + QStringLiteral(".upgrade()")};
}

QStringList ScriptEcho::describePorts(OssSnBaseNode *node, const Change &change) const
{
    QStringList lines;
    const QString name = ScriptText::node(node->path());
    for (const auto &knob : change.knobs) {
        if (node->exists(knob.second))
            lines.append(QStringLiteral("%1.renameKnob(%2, %3)")
                             .arg(name, ScriptText::text(knob.first),
                                  ScriptText::text(node->userAttribute(knob.second).prettyName())));
    }
    QStringList inputs = change.switched.values();
    inputs.sort();
    for (const QString &input : qAsConst(inputs)) {
        if (node->hasInput(input))
            lines.append(QStringLiteral("%1.setInputEnabled(%2, %3)")
                             .arg(name, ScriptText::text(input),
                                  ScriptText::value(node->isInputEnabled(input))));
    }
    if (change.inputOrder)
        lines.append(QStringLiteral("%1.reorderInputs(%2)")
                         .arg(name, ScriptText::value(node->inputNames())));
    // That they were refreshed may mean more.
    const QStringList outputs = node->outputPointNames();
    const QStringList before = m_known.value(node).outputs;
    if (change.outputOrder && outputs != before && outputs.size() == before.size()
        && QSet<QString>(outputs.cbegin(), outputs.cend())
               == QSet<QString>(before.cbegin(), before.cend()))
        lines.append(QStringLiteral("%1.reorderOutputs(%2)").arg(name, ScriptText::value(outputs)));
    return lines;
}

QStringList ScriptEcho::describeWires(OssSnBaseNode *node, const QStringList &inputs) const
{
    QStringList lines;
    const QString name = ScriptText::node(node->path());
    for (const QString &input : inputs) {
        OssSnBaseNode *source = node->inputNode(input);
        const bool isNew = m_added.contains(node);
        if (source)
            lines.append(QStringLiteral("%1.connectInput(%2, %3, %4)")
                             .arg(name, ScriptText::text(input), ScriptText::node(source->path()),
                                  ScriptText::text(node->inputOutputPoint(input))));
        else if (!isNew && m_removed.isEmpty() && node->hasInput(input))
            lines.append(
                QStringLiteral("%1.disconnectInput(%2)").arg(name, ScriptText::text(input)));
    }
    return lines;
}

QStringList ScriptEcho::describeMoves()
{
    QStringList lines;
    for (auto known = m_known.cbegin(); known != m_known.cend(); ++known) {
        OssSnBaseNode *node = known.key();
        const QPointF position = positionOf(node);
        if (position != known->position && !m_added.contains(node))
            lines.append(ScriptText::node(node->path()) + QStringLiteral(".position = ")
                         + ScriptText::value(position));
    }
    lines.sort();
    return lines;
}

QString ScriptEcho::describeAction() const
{
    QStringList nodes;
    QStringList takenApart;
    for (const QString &path : m_selection) {
        nodes.append(ScriptText::node(path));
        if (m_removed.contains(path))
            takenApart.append(ScriptText::node(path));
    }
    const QString trigger = QStringLiteral("ossa.trigger(%1)").arg(ScriptText::text(m_action));
    const OssShaderNetwork *shown = OssShaderNetworkManager::instance()->currentViewNetwork();
    if (!shown)
        return trigger;
    // What has a line of its own runs without a window, too.
    const QString graph = ScriptText::graph(shown);
    if (m_action == groupCommand) // more than the selection, when the user took others in
        return QStringLiteral("%1.group(%2)").arg(graph, ScriptText::list(removedNodes()));
    if (m_action == ungroupCommand && !takenApart.isEmpty()) {
        const QString next = QStringLiteral(")\n%1.ungroup(").arg(graph);
        return QStringLiteral("%1.ungroup(%2)").arg(graph, takenApart.join(next));
    }
    return QStringLiteral("%1.select(%2)\n%3").arg(graph, ScriptText::list(nodes), trigger);
}
