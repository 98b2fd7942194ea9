#include "OssModel/Graph/OssPublishedGroup.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssValueText.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssNodeImages.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssPublishedGroup", text);
}

OssLinkedCustomAttributeManager *linker()
{
    return OssLinkedCustomAttributeManager::instance();
}

/// Names of keys are names of files and parts of paths, too.
QString usable(const QString &name)
{
    QString kept;
    for (const QChar letter : name.simplified()) {
        if (!QStringLiteral("\\:*?\"<>|").contains(letter) && letter.isPrint())
            kept += letter;
    }
    return kept;
}

/// Everything between the tags of the document element, or that element as well.
void copy(const QString &xml, bool whole, QXmlStreamWriter *writer)
{
    QXmlStreamReader reader(xml);
    int depth = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        depth += reader.isStartElement() ? 1 : 0;
        const bool isTag = reader.isStartElement() || reader.isEndElement();
        if ((isTag && (whole || depth > 1)) || (reader.isCharacters() && depth > 0))
            writer->writeCurrentToken(reader);
        depth -= reader.isEndElement() ? 1 : 0;
    }
}

QStringList categoriesOf(const QString &category)
{
    QStringList parts;
    const QStringList given = category.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &part : given) {
        const QString clean = usable(part);
        if (!clean.isEmpty() && clean != QLatin1String(".") && clean != QLatin1String(".."))
            parts.append(clean);
    }
    return parts;
}

/// The viewer may look in from outside.
QList<OssSnBaseNode *> contentOf(const OssShaderNetwork *network)
{
    QList<OssSnBaseNode *> nodes = network->nodes();
    nodes.erase(
        std::remove_if(nodes.begin(), nodes.end(),
                       [](const OssSnBaseNode *node) { return node->hasTag(OssSnTags::viewer()); }),
        nodes.end());
    return nodes;
}

void appendInside(const OssSnGroupNode *group, const QString &path, QStringList *lines)
{
    const QList<OssSnBaseNode *> nodes = contentOf(group->groupNetwork());
    for (OssSnBaseNode *node : nodes) {
        const QString own = path + node->name();
        lines->append(QStringLiteral("inside %1 %2 %3 %4")
                          .arg(own, node->pathKey())
                          .arg(node->enabled())
                          .arg(node->isBypassed()));
        for (const OssCustomAttribute &attribute : node->userAttributes()) {
            if (linker()->knobsOf(node, attribute.name()).isEmpty())
                lines->append(
                    QStringLiteral("inside %1 %2 %3")
                        .arg(own, attribute.name(), OssValueText::toText(attribute.value())));
        }
        for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
            if (port.source)
                lines->append(QStringLiteral("inside %1 %2 < %3 %4")
                                  .arg(own, port.name, port.source->name(), port.sourceOutput));
        }
        if (const auto *inner = qobject_cast<const OssSnGroupNode *>(node))
            appendInside(inner, own + QLatin1Char('/'), lines);
    }
}

/// Makes the group of another definition, as a step.
void apply(OssSnGroupNode *group, const OssSnBaseNode::Definition &after)
{
    const OssSnBaseNode::Definition before = group->definition();
    const auto set = [group](const OssSnBaseNode::Definition &definition) {
        const OssUndoManager::Pause pause;
        group->applyDefinition(definition);
    };
    set(after);
    OssUndoManager::instance()->record(
        {}, [set, before] { set(before); }, [set, after] { set(after); }, group);
}

/// Knobs of the one group for the other, which has the same nodes inside.
void moveKnobs(const OssSnGroupNode *from, OssSnGroupNode *to,
               const QVector<OssCustomAttribute> &old, QStringList *lost)
{
    QStringList kept;
    for (const OssCustomAttribute &attribute : from->userAttributes()) {
        if (!attribute.definition().isKnob)
            continue;
        OssCustomAttribute knob = attribute;
        const auto before = std::find_if(old.cbegin(), old.cend(), [&](const auto &other) {
            return other.name() == attribute.name();
        });
        const QVariant value = before == old.cend()
                                   ? QVariant()
                                   : OssAttributeKind::like(attribute.value(), before->value());
        if (value.isValid())
            knob.setValue(value);
        to->setUserAttribute(knob, true);
        kept.append(attribute.name());
        const auto links = linker()->links(from, attribute.name());
        for (const auto &link : links) {
            OssSnBaseNode *node = to->groupNetwork()->nodeByPath(QLatin1Char('/') + link.nodePath);
            to->addKnobLink(attribute.name(), node, link.attribute);
        }
    }
    for (const OssCustomAttribute &attribute : old) {
        if (attribute.definition().isKnob && !kept.contains(attribute.name()))
            lost->append(
                tr("%1: the value \"%2\" of %3 has no place any more")
                    .arg(to->path(), attribute.value().toString(), attribute.prettyName()));
    }
}

} // namespace

QString OssPublishedGroup::Form::pathKey() const
{
    QStringList parts = categoriesOf(category);
    QString last = usable(name);
    last.remove(QLatin1Char('/'));
    return parts.isEmpty() || last.isEmpty() ? QString() : (parts << last).join(QLatin1Char('/'));
}

OssResult OssPublishedGroup::canPublish(const OssSnGroupNode *group, const Form &form)
{
    const QString key = form.pathKey();
    if (!group || group->metaObject() != &OssSnGroupNode::staticMetaObject || !group->nodeType())
        return OssResult::failure(tr("Only a plain group can be published as a node type"));
    if (key.isEmpty())
        return OssResult::failure(tr("A node type needs a name and a category"));
    if (key.startsWith(QLatin1String("_System/")))
        return OssResult::failure(tr("keys below \"_System\" are the application's own"));
    const QList<OssSnBaseNode *> all = group->groupNetwork()->getAllNodes();
    for (const OssSnBaseNode *node : all) {
        if (node->pathKey() == key)
            return OssResult::failure(
                tr("The group has a node of the type \"%1\" inside, which it cannot be itself")
                    .arg(key));
    }
    return {};
}

QByteArray OssPublishedGroup::describe(OssSnGroupNode *group, const Form &form)
{
    OssNodeImages::bakePaint({group});
    const OssSnNodeType *type = group->nodeType();
    const QString key = form.pathKey();
    QByteArray text;
    QXmlStreamWriter writer(&text);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("NodeType"));
    writer.writeAttribute(QStringLiteral("PathKey"), key);
    writer.writeAttribute(QStringLiteral("Class"), type->className);
    if (!form.aliases.isEmpty())
        writer.writeAttribute(QStringLiteral("Aliases"), form.aliases.join(QLatin1Char(',')));
    if (!form.isShipped)
        writer.writeAttribute(QStringLiteral("VersionUUID"), QStringLiteral("OSS_Own_") + key);
    writer.writeAttribute(QStringLiteral("Date"),
                          QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    writer.writeTextElement(QStringLiteral("Description"), form.toolTip);
    writer.writeStartElement(QStringLiteral("Tags"));
    QStringList tags = type->tags.values();
    tags.sort();
    for (const QString &tag : qAsConst(tags))
        writer.writeTextElement(QStringLiteral("Tag"), tag);
    writer.writeEndElement();
    copy(type->contextsDescription, false, &writer);
    writer.writeStartElement(QStringLiteral("Content"));
    copy(QString::fromUtf8(OssShaderNetworkIO::nodesToText({group}, {}, key, !form.isShipped)),
         true, &writer);
    writer.writeEndElement();
    writer.writeEndElement();
    writer.writeEndDocument();
    return text;
}

void OssPublishedGroup::adopt(OssSnGroupNode *group,
                              const std::shared_ptr<const OssSnNodeType> &type)
{
    const OssUndoManager::AutoMacro macro(tr("Publish %1").arg(group->name()));
    OssSnBaseNode::Definition after = group->definition();
    after.type = type;
    after.pathKey = type->pathKey;
    after.versionUUID = type->versionUUID;
    after.versionHashCreated.clear();
    after.versionDate = type->date;
    apply(group, after);
}

QStringList OssPublishedGroup::inside(const OssSnGroupNode *group)
{
    QStringList lines;
    appendInside(group, {}, &lines);
    return lines;
}

void OssPublishedGroup::renew(OssSnGroupNode *group,
                              const std::shared_ptr<const OssSnNodeType> &type, QStringList *lost)
{
    const QVector<OssSnBaseNode::InputPort> inputs = group->inputPorts();
    const QVector<OssSnBaseNode::OutgoingConnection> wires = group->outgoingConnections();
    const QVector<OssCustomAttribute> old = group->userAttributes();
    for (const OssCustomAttribute &attribute : old) {
        if (attribute.definition().isKnob)
            group->deleteAttribute(attribute.name());
    }
    const QList<OssSnBaseNode *> content = contentOf(group->groupNetwork());
    group->groupNetwork()->removeNodes({content.cbegin(), content.cend()});
    const std::unique_ptr<OssSnBaseNode> made = OssShaderNetwork::makeNode(type, group->network());
    const auto *fresh = qobject_cast<const OssSnGroupNode *>(made.get());
    if (!fresh)
        return;
    QList<OssSnBaseNode *> inserted;
    const OssResult result = OssShaderNetworkIO::nodesFromText(
        group->groupNetwork(), OssShaderNetworkIO::nodesToText(contentOf(fresh->groupNetwork())),
        type->pathKey, &inserted);
    if (!result)
        lost->append(result.error());
    OssSnBaseNode::Definition after = group->definition();
    after.inputs = fresh->inputPorts();
    after.outputs = fresh->outputPoints();
    apply(group, after);
    moveKnobs(fresh, group, old, lost);
    for (const OssSnBaseNode::InputPort &port : inputs) {
        if (port.source
            && (!group->hasInput(port.name)
                || !group->setInputNode(port.name, port.source, port.sourceOutput)))
            lost->append(tr("%1: the wire from %2 goes to the input \"%3\", which is gone")
                             .arg(group->path(), port.source->name(), port.name));
    }
    for (const OssSnBaseNode::OutgoingConnection &wire : wires) {
        if (!group->hasOutputPoint(wire.outputPoint)
            || !wire.target->setInputNode(wire.input, group, wire.outputPoint))
            lost->append(tr("%1: the wire to %2 comes from the output \"%3\", which is gone")
                             .arg(group->path(), wire.target->name(), wire.outputPoint));
    }
}
