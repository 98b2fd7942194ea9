#include "OssSnNodeGraphViewContext.h"

#include "OssCore/Program/OssDebug.h"
#include "OssModel/Nodes/OssSnCustomProceduralNode.h"

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContext";
const QString GuiNodeObject = QStringLiteral("m_GuiNode");
const QString InputPositions = QStringLiteral("m_inputNodeInitialPos");
const QString OutputPositions = QStringLiteral("m_outputNodeInitialPos");

void saveStubs(OssSerializer &serializer, const QString &name,
               const OssSnNodeGraphViewContext::StubMap &stubs)
{
    OssSerializer::Attributes attributes;
    const QStringList keys = stubs.keys();
    for (int i = 0; i < keys.size(); ++i) {
        const OssSnNodeGraphViewContext::Stub stub = stubs.value(keys.at(i));
        attributes.insert(
            QStringLiteral("map%1").arg(i),
            QStringLiteral("%1:%2,%3,%4,%5")
                .arg(keys.at(i), QString::number(stub.first.x()), QString::number(stub.first.y()),
                     QString::number(stub.second.x()), QString::number(stub.second.y())));
    }
    serializer.beginCollection(name, keys.size(), QStringLiteral("QHash"),
                               QStringLiteral("QString"), attributes);
    serializer.endCollection();
}

void readStubs(const OssSerializableObject::Attributes &attributes,
               OssSnNodeGraphViewContext::StubMap *stubs)
{
    for (const QString &value : attributes) {
        // A name that has a colon itself is written, but cannot be read back.
        const QStringList parts = value.split(QLatin1Char(':'));
        if (parts.size() != 2)
            continue;
        const QStringList numbers = parts.at(1).split(QLatin1Char(','));
        if (numbers.size() != 4)
            continue;
        stubs->insert(parts.at(0), {QPoint(numbers.at(0).toInt(), numbers.at(1).toInt()),
                                    QPoint(numbers.at(2).toInt(), numbers.at(3).toInt())});
    }
}

QString positionDump(const OssSnNodeGraphViewContext::StubMap &stubs)
{
    QStringList lines;
    for (auto it = stubs.cbegin(); it != stubs.cend(); ++it) {
        const QString points = QStringLiteral("A(%1, %2), B(%3, %4)")
                                   .arg(it->first.x())
                                   .arg(it->first.y())
                                   .arg(it->second.x())
                                   .arg(it->second.y());
        lines.append(it.key() + QLatin1Char(' ') + points);
    }
    return lines.join(QLatin1Char('\n'));
}

QString textPositionDump(const OssSnNodeGraphViewContext::TextPositionMap &positions)
{
    QStringList lines;
    for (auto it = positions.cbegin(); it != positions.cend(); ++it)
        lines.append(it.key() + QLatin1Char(' ') + QString::number(double(it.value()), 'g', 6));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

bool OssSnNodeGraphViewContext::saveObjects(OssSerializer &serializer)
{
    if (m_GuiNode)
        m_GuiNode->save(serializer, GuiNodeObject, {});
    saveStubs(serializer, InputPositions, m_inputNodeInitialPos);
    saveStubs(serializer, OutputPositions, m_outputNodeInitialPos);
    return OssSnBaseContext::saveObjects(serializer);
}

OssSerializableObject *OssSnNodeGraphViewContext::onLoadSubObject(OssDeserializer &deserializer,
                                                                  const QString &name,
                                                                  const QString &type)
{
    if (name == GuiNodeObject)
        return m_GuiNode.get();
    return OssSnBaseContext::onLoadSubObject(deserializer, name, type);
}

OssSerializableObject *OssSnNodeGraphViewContext::onLoadCollectionObject(
    OssDeserializer &deserializer, const QString &name, const QString &type,
    const Attributes &attributes)
{
    return OssSnBaseContext::onLoadCollectionObject(deserializer, name, type, attributes);
}

void OssSnNodeGraphViewContext::onEndCollection(OssDeserializer &deserializer, const QString &name)
{
    OssSnBaseContext::onEndCollection(deserializer, name);
}

bool OssSnNodeGraphViewContext::onLoadCollection(const QString &name, const QString &type,
                                                 const QString &elementType, int count,
                                                 const Attributes &attributes)
{
    if (name == InputPositions)
        readStubs(attributes, &m_inputNodeInitialPos);
    else if (name == OutputPositions)
        readStubs(attributes, &m_outputNodeInitialPos);
    return OssSnBaseContext::onLoadCollection(name, type, elementType, count, attributes);
}

QString OssSnNodeGraphViewContext::versionHashSource() const
{
    const OssSnBaseNode *node = parentNode();
    if (!node) {
        OssDebug(Source, __LINE__, "ParentNode is NULL");
        return {};
    }
    QString text;
    if (!qobject_cast<const OssSnCustomProceduralNode *>(node)) {
        text += QStringLiteral("InputInitialPositions\n%1\n")
                    .arg(positionDump(m_inputNodeInitialPos));
        text += QStringLiteral("OutputInitialPositions\n%1\n")
                    .arg(positionDump(m_outputNodeInitialPos));
        text += QStringLiteral("InputInitialTextPositions\n%1\n")
                    .arg(textPositionDump(m_inputTextPositions));
        text += QStringLiteral("OutputInitialTextPositions\n%1\n")
                    .arg(textPositionDump(m_outputTextPositions));
    }
    text += QStringLiteral("ShapeType : %1\n").arg(m_shapeType);
    text += QStringLiteral("ColorTop : %1, ColorBottom : %2\n")
                .arg(m_nodeColorTop, m_nodeColorBottom);
    return text + OssSnBaseContext::versionHashSource();
}
