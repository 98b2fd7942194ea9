#include "OssModel/Graph/OssNodeConversion.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssModel/Graph/OssPublishedGroup.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssNodeConversion", text);
}

/// The attributes of a new definition with the node's values, and after them those that were never
/// the old type's.
QVector<OssCustomAttribute> keptAttributes(const OssSnBaseNode *node,
                                           const QVector<OssCustomAttribute> &fresh,
                                           QStringList *lost)
{
    QVector<OssCustomAttribute> kept = fresh;
    const OssSnNodeType *type = node->nodeType();
    for (const OssCustomAttribute &own : node->userAttributes()) {
        const auto same = [&own](const OssCustomAttribute &other) {
            return other.name() == own.name();
        };
        const auto found = std::find_if(kept.begin(), kept.end(), same);
        const QVariant value = found == kept.end()
                                   ? QVariant()
                                   : OssAttributeKind::like(found->value(), own.value());
        if (value.isValid())
            found->setValue(value);
        else if (found == kept.end()
                 && (!type
                     || std::none_of(type->attributes.cbegin(), type->attributes.cend(), same)))
            kept.append(own);
        else if (!own.isDefault())
            lost->append(tr("%1: the value \"%2\" of %3 has no place any more")
                             .arg(node->path(), own.value().toString(), own.prettyName()));
    }
    return kept;
}

bool hasOutput(const QVector<OssSnBaseNode::OutputPoint> &points, const QString &name)
{
    return std::any_of(points.cbegin(), points.cend(),
                       [&name](const auto &point) { return point.name == name; });
}

/// Frees the ports that the definition does not have.
void cutWires(OssSnBaseNode *node, const OssSnBaseNode::Definition &after, QStringList *lost)
{
    const QVector<OssSnBaseNode::InputPort> inputs = node->inputPorts();
    for (const OssSnBaseNode::InputPort &port : inputs) {
        const bool stays = std::any_of(
            after.inputs.cbegin(), after.inputs.cend(),
            [&port](const OssSnBaseNode::InputPort &other) { return other.name == port.name; });
        if (!port.source || stays)
            continue;
        lost->append(tr("%1: the wire from %2 goes to the input \"%3\", which is gone")
                         .arg(node->path(), port.source->name(), port.name));
        node->setInputNode(port.name, nullptr, {});
    }
    const QVector<OssSnBaseNode::OutgoingConnection> wires = node->outgoingConnections();
    for (const OssSnBaseNode::OutgoingConnection &wire : wires) {
        if (hasOutput(after.outputs, wire.outputPoint))
            continue;
        lost->append(tr("%1: the wire to %2 comes from the output \"%3\", which is gone")
                         .arg(node->path(), wire.target->name(), wire.outputPoint));
        wire.target->setInputNode(wire.input, nullptr, {});
    }
}

bool belongsToNetwork(const QSet<QString> &tags)
{
    for (const QString &tag : {OssSnTags::viewer(), OssSnTags::input(), OssSnTags::output(),
                               OssSnTags::graphLayerInput()}) {
        if (tags.contains(tag))
            return true;
    }
    return false;
}

QSet<QString> tagsOf(const OssSnBaseNode *node)
{
    const QStringList tags = node->tags();
    return {tags.cbegin(), tags.cend()};
}

void movePlace(OssSnBaseNode *from, OssSnBaseNode *to)
{
    if (from->viewContext() && to->viewContext())
        to->viewContext()->takePlaceOf(from->viewContext());
    OssShaderNetworkManager::instance()->requestSamePosition(from, to);
    to->setContainer(from->container());
    const auto tell = [](OssSnBaseNode *old, OssSnBaseNode *replacement) {
        Q_EMIT OssShaderNetworkManager::instance()->nodeReplaced(old, replacement);
    };
    tell(from, to);
    OssUndoManager::instance()->record(
        {}, [=] { tell(to, from); }, [=] { tell(from, to); });
}

void moveValues(const OssSnBaseNode *from, OssSnBaseNode *to, QStringList *lost)
{
    const QVector<OssCustomAttribute> attributes = keptAttributes(from, to->userAttributes(), lost);
    for (const OssCustomAttribute &attribute : attributes) {
        // Knobs belong to the nodes inside, which do not come along.
        if (!attribute.definition().isKnob)
            to->setUserAttribute(attribute, true);
    }
    to->setDescription(from->description());
    to->setEnabled(from->enabled());
    to->setBypassed(from->isBypassed());
    to->setLocked(from->isLocked());
    to->setCacheActive(from->cacheActive());
}

void moveWires(OssSnBaseNode *from, OssSnBaseNode *to, QStringList *lost)
{
    const QVector<OssSnBaseNode::OutgoingConnection> wires = from->outgoingConnections();
    const QVector<OssSnBaseNode::InputPort> inputs = from->inputPorts();
    from->disconnectAll();
    // Namesakes first: the main input may be one of them.
    QVector<OssSnBaseNode::InputPort> others;
    for (const OssSnBaseNode::InputPort &port : inputs) {
        if (!port.source)
            continue;
        if (!to->hasInput(port.name)
            || !to->setInputNode(port.name, port.source, port.sourceOutput))
            others.append(port);
    }
    for (const OssSnBaseNode::InputPort &port : qAsConst(others)) {
        const QString input = to->preferredInput();
        if (input.isEmpty() || to->inputNode(input)
            || !to->setInputNode(input, port.source, port.sourceOutput))
            lost->append(tr("%1: the wire from %2 to the input \"%3\" has no place any more")
                             .arg(from->path(), port.source->name(), port.name));
    }
    for (const OssSnBaseNode::OutgoingConnection &wire : wires) {
        const QString point = to->hasOutputPoint(wire.outputPoint) ? wire.outputPoint
                                                                   : to->prefferedOutputPoint();
        if (point.isEmpty() || !wire.target->setInputNode(wire.input, to, point))
            lost->append(tr("%1: the wire to %2 has no place any more")
                             .arg(from->path(), wire.target->name()));
    }
}

} // namespace

bool OssNodeConversion::upgrade(OssSnBaseNode *node,
                                const std::shared_ptr<const OssSnNodeType> &type, QStringList *lost)
{
    // One without a type may have learned which it is.
    if (!type || (node->isPlaceholder() && node->pathKey() != type->pathKey)) {
        lost->append(tr("%1: its type is not installed here").arg(node->path()));
        return false;
    }
    OssSnBaseNode::Definition after = OssSnBaseNode::definitionOf(type);
    if (after.look->metaObject() != node->metaObject()) {
        lost->append(
            tr("%1: its type is another kind of node now; convert it instead").arg(node->path()));
        return false;
    }
    if (node->versionHashPresent() == after.look->versionHashPresent()
        && node->nodeType() == type.get() && node->versionDate() == type->date)
        return true;
    const OssUndoManager::AutoMacro macro(tr("Upgrade %1").arg(node->name()));
    if (auto *group = qobject_cast<OssSnGroupNode *>(node)) {
        if (!type->content.isEmpty())
            OssPublishedGroup::renew(group, type, lost);
        // What is inside makes its ports.
        after.inputs = node->inputPorts();
        after.outputs = node->outputPoints();
    } else {
        cutWires(node, after, lost);
    }
    after.attributes = keptAttributes(node, after.attributes, lost);
    if (node->isPlaceholder())
        node->setErrorText({}); // which said that the type is not known
    const OssSnBaseNode::Definition before = node->definition();
    const auto apply = [node](const OssSnBaseNode::Definition &definition) {
        const OssUndoManager::Pause pause;
        node->applyDefinition(definition);
    };
    apply(after);
    OssUndoManager::instance()->record(
        {}, [apply, before] { apply(before); }, [apply, after] { apply(after); }, node);
    return true;
}

bool OssNodeConversion::canBecome(const OssSnNodeType &type)
{
    return !belongsToNetwork(type.tags);
}

OssSnBaseNode *OssNodeConversion::convert(OssSnBaseNode *node,
                                          const std::shared_ptr<const OssSnNodeType> &type,
                                          QStringList *lost)
{
    OssShaderNetwork *network = node->network();
    if (!type || !network || belongsToNetwork(tagsOf(node)) || !canBecome(*type)) {
        lost->append(tr("%1 cannot be converted").arg(node->path()));
        return nullptr;
    }
    const QString name = node->name();
    OssUndoManager::AutoMacro macro(tr("Convert %1 to %2").arg(name, type->baseName()));
    OssSnBaseNode *converted = network->createNode(type->pathKey);
    if (!converted)
        return nullptr;
    const auto *group = qobject_cast<const OssSnGroupNode *>(node);
    if (group && group->groupNetwork()->nodeCount() > 0)
        lost->append(tr("%1: the nodes inside do not come along").arg(node->path()));
    movePlace(node, converted);
    moveValues(node, converted, lost);
    moveWires(node, converted, lost);
    OssSnGroupNode::replaceInKnobs(node, converted);
    converted->setSelected(node->selected());
    network->removeNodes({node});
    converted->setName(name);
    return converted;
}
