#include "Ossa/Scripting/ScriptEcho.h"

#include "Ossa/Scripting/ScriptText.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"

namespace {

const QString groupCommand = QStringLiteral("/Ossa/NodeGraph/Group Selected Nodes");
const QString ungroupCommand = QStringLiteral("/Ossa/NodeGraph/Ungroup");

} // namespace

QPointF ScriptEcho::positionOf(const OssSnBaseNode *node)
{
    const OssSnBaseContext *context = node->viewContext();
    return context ? context->nodePosition() : QPointF();
}

QPointF ScriptEcho::sizeOf(const OssSnBaseNode *node)
{
    const OssSnBaseContext *context = node->viewContext();
    if (!context || node->pathKey() != QLatin1String("Misc/Backdrop"))
        return {};
    const QSizeF size = context->nodeSize();
    return {size.width(), size.height()};
}

QString ScriptEcho::sizeLine(const OssSnBaseNode *node)
{
    return ScriptText::node(node->path()) + QStringLiteral(".size = ")
           + ScriptText::value(sizeOf(node));
}

QStringList ScriptEcho::describeNew(OssSnBaseNode *node) const
{
    QStringList lines{ScriptText::createNode(node)};
    if (node->viewContext()) {
        lines.first().chop(1);
        lines.first() += QStringLiteral(", %1)").arg(ScriptText::value(positionOf(node)));
    }
    if (!sizeOf(node).isNull())
        lines.append(sizeLine(node));
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
        if (sizeOf(node) != known->size && !m_added.contains(node))
            lines.append(sizeLine(node));
    }
    lines.sort();
    return lines;
}

QString ScriptEcho::describeAction() const
{
    const QString trigger = QStringLiteral("ossa.trigger(%1)").arg(ScriptText::text(m_action));
    const OssShaderNetwork *shown = OssShaderNetworkManager::instance()->currentViewNetwork();
    if (!shown)
        return trigger;
    const OssSnGroupNode *around = shown->parentGroupNode();
    const QString shownPath = around ? around->path() : QString();
    QStringList nodes;
    QStringList takenApart;
    for (const QString &path : m_selection) {
        if (path.section(QLatin1Char('/'), 0, -2) != shownPath)
            continue;
        nodes.append(ScriptText::node(path));
        if (m_removed.contains(path))
            takenApart.append(ScriptText::node(path));
    }
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
