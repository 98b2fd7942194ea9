#include "OssSnNodeGraphViewContext.h"

#include "OssModel/Evaluation/OssDependencyMarks.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssModel/Types/OssSnTypeHelp.h"

#include <algorithm>

// What the graph says in words of a node and its ports.

namespace {

constexpr int MostNamed = 4; // nodes that an output feeds

/// As the port is read in the graph: "Brick . Height".
QString place(const OssSnBaseNode *node, const QString &name, const QString &label)
{
    return QStringLiteral("%1 . %2").arg(node->name(), label.isEmpty() ? name : label);
}

/// Of the port in a list of ports or points; null when there is none.
template <class Ports>
auto portOf(const Ports &ports, const QString &name)
{
    const auto found = std::find_if(ports.cbegin(), ports.cend(),
                                    [&](const auto &port) { return port.name == name; });
    return found == ports.cend() ? nullptr : &*found;
}

template <class Ports>
QString labelOf(const Ports &ports, const QString &name)
{
    const auto *port = portOf(ports, name);
    return port ? port->label : QString();
}

QString inputHelp(const OssSnBaseNode *node, const QString &name)
{
    const OssSnBaseNode::InputPort *input = portOf(node->inputPorts(), name);
    if (!input)
        return {};
    QString text = OssSnNodeGraphViewContext::tr("Input, %1")
                       .arg(OssSnTypeHelp::wordsOf(input->kind));
    if (!input->enabled)
        text += QLatin1Char('\n') + OssSnNodeGraphViewContext::tr("switched off");
    if (input->shared)
        text += QLatin1Char('\n') + OssSnNodeGraphViewContext::tr("of all streams");
    if (input->source)
        text += QLatin1Char('\n')
                + OssSnNodeGraphViewContext::tr("from %1").arg(
                    place(input->source, input->sourceOutput,
                          labelOf(input->source->outputPoints(), input->sourceOutput)));
    return text;
}

QString outputHelp(const OssSnBaseNode *node, const QString &name)
{
    const OssSnBaseNode::OutputPoint *point = portOf(node->outputPoints(), name);
    if (!point)
        return {};
    QString text = OssSnNodeGraphViewContext::tr("Output, %1")
                       .arg(OssSnTypeHelp::wordsOf(point->kind));
    QStringList targets;
    for (const OssSnBaseNode::OutgoingConnection &wire : node->outgoingConnections()) {
        if (wire.outputPoint == name)
            targets.append(
                place(wire.target, wire.input, labelOf(wire.target->inputPorts(), wire.input)));
    }
    const int more = targets.size() - MostNamed;
    for (const QString &target : targets.mid(0, MostNamed))
        text += QLatin1Char('\n') + OssSnNodeGraphViewContext::tr("to %1").arg(target);
    if (more > 0)
        text += QLatin1Char('\n') + OssSnNodeGraphViewContext::tr("and %1 more").arg(more);
    return text;
}

} // namespace

QString OssSnNodeGraphViewContext::nodeHelp() const
{
    const OssSnBaseNode *node = parentNode();
    if (!node)
        return {};
    QStringList lines{node->nodeType() ? node->nodeType()->description : QString(),
                      OssDependencyMarks::instance()->shareOf(node)};
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n'));
}

QString OssSnNodeGraphViewContext::portHelp(const QString &port, bool isInput) const
{
    const OssSnBaseNode *node = parentNode();
    if (!node)
        return {};
    QString text = isInput ? inputHelp(node, port) : outputHelp(node, port);
    if (text.isEmpty() || !node->nodeType())
        return text;
    const OssSnNodeType &type = *node->nodeType();
    const OssSnNodeType::Port *described = portOf(isInput ? type.inputs : type.outputs, port);
    if (described && !described->description.isEmpty())
        text += QLatin1Char('\n') + described->description;
    return text;
}
