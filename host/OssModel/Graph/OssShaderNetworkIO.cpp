#include "OssModel/Graph/OssShaderNetworkIO.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Documents/OssDeserializer.h"
#include "OssCore/Documents/OssSerializer.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssNodeImages.h"
#include "OssModel/Graph/OssNodeTypeTable.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <QBuffer>
#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMimeData>

namespace {

constexpr const char *Source = "OssShaderNetworkIO";
constexpr int FormatMajor = 1;
constexpr qint64 LargestFile = qint64(256) << 20;
const QString DocumentElement = QStringLiteral("ossaNodes");
const QString NetworkObject = QStringLiteral("network");
const QString NodesCollection = QStringLiteral("m_nodes");
const QString MimeType = QStringLiteral("application/x-ossa-nodes");

QString tr(const char *text)
{
    return QCoreApplication::translate("OssShaderNetworkIO", text);
}

OssResult readDocument(OssDeserializer &reader, OssShaderNetwork *network, OssNodeImages *images)
{
    const OssUndoManager::Pause pause;
    OssDeserializer::Attributes attributes;
    const OssResult begun = reader.beginDocument(DocumentElement, &attributes);
    if (!begun)
        return begun;
    const int major = attributes.value(QStringLiteral("major")).toInt();
    if (major < 1 || major > FormatMajor)
        reader.raiseError(tr("its nodes are in a format that is not known here"));
    bool found = false;
    while (reader.nextElement()) {
        const bool isObject = reader.elementName() == QLatin1String("object");
        if (isObject && reader.attribute(QStringLiteral("name")) == OssNodeImages::elementName()) {
            images->read(reader);
        } else if (isObject && !found) {
            found = true;
            reader.loadObject(network);
        } else {
            reader.skipElement();
        }
    }
    if (!found && !reader.failed())
        reader.raiseError(tr("there are no nodes in it"));
    return reader.result();
}

/// The knobs of the group around that stand for attributes of the node: a copy in the same group
/// can be linked to them.
void writeKnobsOf(OssSerializer &serializer, const OssSnBaseNode *node)
{
    const OssSnGroupNode *group = node->network() ? node->network()->parentGroupNode() : nullptr;
    if (!group)
        return;
    for (const OssCustomAttribute &attribute : node->userAttributes()) {
        const auto knobs = OssLinkedCustomAttributeManager::instance()->knobsOf(node,
                                                                                attribute.name());
        for (const auto &knob : knobs) {
            if (knob.group == group)
                serializer.writeElement(QStringLiteral("knobLink"),
                                        {{QStringLiteral("group"), group->path()},
                                         {QStringLiteral("node"), node->name()},
                                         {QStringLiteral("knob"), knob.name},
                                         {QStringLiteral("attribute"), attribute.name()}});
        }
    }
}

/// What the nodes have inside them: of nodes that are written as another type their own does not count.
QList<OssSnBaseNode *> insideOf(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> inside;
    for (const OssSnBaseNode *node : nodes) {
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(node))
            inside += group->groupNetwork()->nodes();
    }
    return inside;
}

QList<OssSnBaseNode *> insert(OssShaderNetwork *network, const QByteArray &text,
                              const QString &source, bool select)
{
    QList<OssSnBaseNode *> inserted;
    const OssResult result = OssShaderNetworkIO::nodesFromText(network, text, source, &inserted);
    if (!result)
        OssDebug(Source, __LINE__, "[ !! ] %s", qPrintable(result.error()));
    else if (select)
        network->selectOnly(inserted);
    return inserted;
}

} // namespace

QByteArray OssShaderNetworkIO::nodesToText(const QList<OssSnBaseNode *> &nodes, const QString &note,
                                           const QString &asType, bool bringsTypes)
{
    QList<OssSnBaseNode *> written;
    for (OssSnBaseNode *node : nodes) {
        if (node && !node->hasTag(OssSnTags::viewer()))
            written.append(node);
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer);
    serializer.setCanonical(true); // what is pasted are other nodes: they bring no ids
    serializer.setExcerpt(true);
    OssSerializer::Attributes attributes;
    attributes.insert(QStringLiteral("major"), QString::number(FormatMajor));
    if (!note.isEmpty())
        attributes.insert(QStringLiteral("note"), note);
    serializer.beginDocument(DocumentElement, attributes);
    serializer.beginObject(NetworkObject, QStringLiteral("OssShaderNetwork"), {});
    if (bringsTypes)
        OssNodeTypeTable::write(serializer, asType.isEmpty() ? written : insideOf(written));
    serializer.beginCollection(NodesCollection, written.size(), QStringLiteral("QList"),
                               QStringLiteral("OssSnBaseNode"), {});
    for (OssSnBaseNode *node : qAsConst(written)) {
        OssSerializer::Attributes identity = node->identityAttributes();
        if (!asType.isEmpty()) {
            for (const char *other : {"definition", "version", "versionHash", "versionDate"})
                identity.remove(QLatin1String(other));
            identity.insert(QStringLiteral("key"), asType);
        }
        node->save(serializer, node->name(), identity);
    }
    serializer.endCollection();
    for (const OssSnBaseNode *node : qAsConst(written))
        writeKnobsOf(serializer, node);
    serializer.endObject();
    OssNodeImages::write(serializer, written);
    serializer.endDocument();
    return buffer.data();
}

OssResult OssShaderNetworkIO::readNodes(OssShaderNetwork *read, const QByteArray &text,
                                        const QString &source, OssNodeImages *images)
{
    QByteArray content = text;
    QBuffer buffer(&content);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, source);
    return readDocument(reader, read, images);
}

OssResult OssShaderNetworkIO::nodesFromText(OssShaderNetwork *network, const QByteArray &text,
                                            const QString &source, QList<OssSnBaseNode *> *inserted)
{
    inserted->clear();
    if (!network)
        return OssResult::failure(tr("There is no network to put nodes into"));
    // Read whole before the network is touched.
    OssShaderNetwork read;
    OssNodeImages images;
    const OssResult result = readNodes(&read, text, source, &images);
    if (!result)
        return result;
    const OssUndoManager::AutoMacro macro(tr("Insert Nodes"));
    images.give(&read, network);
    *inserted = network->takeOverNodes(&read);
    return {};
}

QList<OssSnBaseNode *> OssShaderNetworkIO::duplicateNodes(OssShaderNetwork *network,
                                                          const QList<OssSnBaseNode *> &nodes,
                                                          bool select)
{
    if (!network || nodes.isEmpty())
        return {};
    OssNodeImages::bakePaint(nodes);
    return insert(network, nodesToText(nodes), tr("duplicated nodes"), select);
}

void OssShaderNetworkIO::copyNodesToClipboard(const QList<OssSnBaseNode *> &nodes,
                                              const QString &note)
{
    OssNodeImages::bakePaint(nodes);
    const QByteArray text = nodesToText(nodes, note);
    auto *data = new QMimeData; // the clipboard takes it
    data->setText(QString::fromUtf8(text));
    data->setData(MimeType, text);
    QGuiApplication::clipboard()->setMimeData(data);
}

QByteArray OssShaderNetworkIO::nodesTextOf(const QMimeData *data)
{
    if (!data || data->hasFormat(MimeType))
        return data ? data->data(MimeType) : QByteArray();
    // Text that went through a mail may have blanks before it.
    const QString text = data->text();
    return text.left(512).contains(QLatin1Char('<') + DocumentElement) ? text.trimmed().toUtf8()
                                                                       : QByteArray();
}

QList<OssSnBaseNode *> OssShaderNetworkIO::pasteNodesFromClipboard(OssShaderNetwork *network,
                                                                   bool select)
{
    const QByteArray text = nodesTextOf(QGuiApplication::clipboard()->mimeData());
    if (!network || text.isEmpty()) {
        OssDebug(Source, __LINE__, "[ !! ] The clipboard holds no nodes");
        return {};
    }
    return insert(network, text, tr("the clipboard"), select);
}

OssResult OssShaderNetworkIO::saveNodesToXmlFile(const QList<OssSnBaseNode *> &nodes,
                                                 const QString &path)
{
    return OssAtomicFile::write(path, nodesToText(nodes));
}

OssResult OssShaderNetworkIO::loadNodesFromXmlFile(OssShaderNetwork *network, const QString &path,
                                                   QList<OssSnBaseNode *> *inserted)
{
    inserted->clear();
    QByteArray content;
    const OssResult result = OssAtomicFile::read(path, LargestFile, &content);
    return result ? nodesFromText(network, content, path, inserted) : result;
}
