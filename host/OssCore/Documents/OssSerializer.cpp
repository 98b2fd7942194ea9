#include "OssCore/Documents/OssSerializer.h"

#include <QIODevice>
#include <QXmlStreamReader>

OssSerializer::OssSerializer(QIODevice *device, bool formatted)
    : m_xml(device)
{
    m_xml.setAutoFormatting(formatted);
    m_xml.setAutoFormattingIndent(1);
}

OssSerializer::~OssSerializer() = default;

QString OssSerializer::withoutUnwritable(const QString &text)
{
    const auto isUnwritable = [&text](int i) {
        const QChar letter = text.at(i);
        if (letter >= u' ' && letter < QChar(0xD800)) // nearly all of them
            return false;
        if (letter.isHighSurrogate())
            return i + 1 == text.size() || !text.at(i + 1).isLowSurrogate();
        if (letter.isLowSurrogate())
            return i == 0 || !text.at(i - 1).isHighSurrogate();
        const bool isControl = letter < u' ' && letter != u'\t' && letter != u'\n'
                               && letter != u'\r';
        return isControl || letter.unicode() >= 0xFFFE;
    };
    QString writable = text;
    for (int i = 0; i < text.size(); ++i) {
        if (isUnwritable(i))
            writable[i] = QChar::ReplacementCharacter;
    }
    return writable;
}

void OssSerializer::writeAttributes(const Attributes &attributes)
{
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it)
        m_xml.writeAttribute(it.key(), withoutUnwritable(it.value()));
}

void OssSerializer::beginDocument(const QString &element, const Attributes &attributes)
{
    m_xml.writeStartDocument();
    m_xml.writeStartElement(element);
    writeAttributes(attributes);
}

void OssSerializer::endDocument()
{
    m_xml.writeEndElement();
    m_xml.writeEndDocument();
}

void OssSerializer::beginCollection(const QString &name, int count, const QString &type,
                                    const QString &elementType, const Attributes &attributes)
{
    m_collections.append(true);
    m_xml.writeStartElement(QStringLiteral("collection"));
    m_xml.writeAttribute(QStringLiteral("name"), withoutUnwritable(name));
    m_xml.writeAttribute(QStringLiteral("type"), withoutUnwritable(type));
    m_xml.writeAttribute(QStringLiteral("elementType"), withoutUnwritable(elementType));
    m_xml.writeAttribute(QStringLiteral("count"), QString::number(count));
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it) {
        m_xml.writeEmptyElement(QStringLiteral("entry"));
        m_xml.writeAttribute(QStringLiteral("key"), withoutUnwritable(it.key()));
        m_xml.writeAttribute(QStringLiteral("value"), withoutUnwritable(it.value()));
    }
}

void OssSerializer::endCollection()
{
    m_collections.removeLast();
    m_xml.writeEndElement();
}

void OssSerializer::beginObject(const QString &name, const QString &type,
                                const Attributes &attributes)
{
    m_collections.append(false);
    m_xml.writeStartElement(QStringLiteral("object"));
    m_xml.writeAttribute(QStringLiteral("name"), withoutUnwritable(name));
    m_xml.writeAttribute(QStringLiteral("type"), withoutUnwritable(type));
    writeAttributes(attributes);
}

void OssSerializer::endObject()
{
    m_collections.removeLast();
    m_xml.writeEndElement();
}

void OssSerializer::writeElement(const QString &name, const Attributes &attributes)
{
    m_xml.writeEmptyElement(name);
    writeAttributes(attributes);
}

void OssSerializer::writeRaw(const QString &xml)
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() || reader.isEndElement()
            || (reader.isCharacters() && !reader.isWhitespace()))
            m_xml.writeCurrentToken(reader);
    }
}

void OssSerializer::setPutOff(std::function<void(const PutOff &)> take)
{
    m_putOff = std::move(take);
}

bool OssSerializer::putOff(OssSerializableObject *object, const QString &name,
                           const Attributes &attributes)
{
    if (!m_putOff || m_collections.isEmpty() || !m_collections.last())
        return false;
    m_xml.writeCharacters(QString()); // ends the collection's start tag
    m_putOff({object, name, attributes, m_xml.device()->pos()});
    return true;
}

bool OssSerializer::failed() const
{
    return m_xml.hasError();
}
