#include "OssModel/Graph/OssNodeTypeTable.h"

#include "OssCore/Program/OssDebug.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"

#include <QSet>

namespace {

const QString Element = QStringLiteral("nodeType");

struct Used
{
    QSet<const OssSnNodeType *> types;
    /// Descriptions of types that are not known here, by key and id.
    QMap<QPair<QString, QString>, QString> foreign;
};

/// Types that the application itself builds on are what they are here, whatever a file says.
bool isOwn(const QString &pathKey)
{
    return pathKey.startsWith(QLatin1String("_System/"));
}

void collect(const QList<OssSnBaseNode *> &nodes, Used *used)
{
    for (OssSnBaseNode *node : nodes) {
        if (node->nodeType() && !isOwn(node->nodeType()->pathKey))
            used->types.insert(node->nodeType());
        else if (!node->foreignType().isEmpty())
            used->foreign.insert({node->pathKey(), node->definitionId()}, node->foreignType());
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(node))
            collect(group->groupNetwork()->nodes(), used);
    }
}

/// "<nodeType ...>...</nodeType>" without its own tags.
QString contentOf(const QString &element)
{
    const int begin = element.indexOf(QLatin1Char('>')) + 1;
    return element.mid(begin, element.lastIndexOf(QLatin1String("</")) - begin).trimmed();
}

} // namespace

QString OssNodeTypeTable::idOf(const OssSnNodeType &type)
{
    const auto installed = OssShaderNetworkManager::instance()->nodeType(type.pathKey);
    return !installed || installed.get() == &type || isOwn(type.pathKey) ? QString() : type.id;
}

void OssNodeTypeTable::write(OssSerializer &serializer, const QList<OssSnBaseNode *> &nodes)
{
    Used used;
    collect(nodes, &used);
    QMap<QString, QString> elements;
    const auto put = [&elements](const QString &key, const QString &id, const QString &content) {
        const QString attribute = id.isEmpty() ? QString() : QStringLiteral(" id=\"%1\"").arg(id);
        elements.insert(
            key + QLatin1Char('\n') + id,
            QStringLiteral("<%1 key=\"%2\"%3>").arg(Element, key.toHtmlEscaped(), attribute)
                + content + QStringLiteral("</%1>").arg(Element));
    };
    for (const OssSnNodeType *type : qAsConst(used.types))
        put(type->pathKey, idOf(*type), type->source);
    for (auto foreign = used.foreign.cbegin(); foreign != used.foreign.cend(); ++foreign)
        put(foreign.key().first, foreign.key().second, foreign.value());
    for (const QString &element : qAsConst(elements))
        serializer.writeRaw(element);
}

void OssNodeTypeTable::read(OssDeserializer &deserializer,
                            const OssSerializableObject::Attributes &attributes)
{
    const QString key = attributes.value(QStringLiteral("key"));
    Entry entry;
    entry.description = contentOf(deserializer.readRaw());
    if (isOwn(key))
        return;
    const auto installed = OssShaderNetworkManager::instance()->nodeType(key);
    OssResult result;
    entry.type = OssSnNodeType::read(entry.description.toUtf8(), key, &result);
    if (!installed) {
        // Only of a published group do nodes have everything with them.
        if (entry.type && (entry.type->pathKey != key || !entry.type->isPublishedGroup()))
            entry.type.reset();
    } else {
        if (!result || entry.type->pathKey != key) {
            OssDebug("OssNodeTypeTable", __LINE__,
                     "[ !! ] The file's own description of '%s' cannot be used: %s",
                     qPrintable(key), qPrintable(result.error()));
            return;
        }
        if (entry.type->isSameAs(*installed))
            entry.type = installed;
    }
    m_entries.insert({key, attributes.value(QStringLiteral("id"))}, entry);
}

OssNodeTypeTable::Entry OssNodeTypeTable::find(const QString &pathKey, const QString &id) const
{
    const auto found = m_entries.constFind({pathKey, id});
    if (found != m_entries.cend())
        return *found;
    return {OssShaderNetworkManager::instance()->nodeType(pathKey), {}};
}
