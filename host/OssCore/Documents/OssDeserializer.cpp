#include "OssCore/Documents/OssDeserializer.h"

#include "OssCore/Documents/OssSerializableObject.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssDeserializer", text);
}

/// Qt's reader lets control characters pass in names, and cannot read them again.
bool isWritable(const QStringRef &name)
{
    return std::none_of(name.cbegin(), name.cend(), [](QChar c) { return c < QLatin1Char(' '); });
}

bool namesAreWritable(const QXmlStreamReader &xml)
{
    const QXmlStreamAttributes attributes = xml.attributes();
    return isWritable(xml.qualifiedName())
           && std::all_of(attributes.cbegin(), attributes.cend(), [](const QXmlStreamAttribute &a) {
                  return isWritable(a.qualifiedName());
              });
}

} // namespace

OssDeserializer::OssDeserializer(QIODevice *device, QString fileName)
    : m_fileName(std::move(fileName))
{
    if (device->size() > MaximumSize)
        m_error = tr("the file is larger than %1 MB").arg(MaximumSize >> 20);
    else
        m_xml.setDevice(device);
}

OssDeserializer::~OssDeserializer() = default;

bool OssDeserializer::guard()
{
    if (failed())
        return false;
    if (m_xml.isDTD()) {
        raiseError(tr("it has a DOCTYPE, which is not allowed"));
        return false;
    }
    if (m_xml.isStartElement()) {
        if (++m_depth > MaximumDepth) {
            raiseError(tr("elements are nested deeper than %1").arg(MaximumDepth));
            return false;
        }
        if (m_xml.attributes().size() > MaximumAttributes) {
            raiseError(tr("an element has more than %1 attributes").arg(MaximumAttributes));
            return false;
        }
        if (!namesAreWritable(m_xml)) {
            raiseError(tr("a name has control characters in it"));
            return false;
        }
        // Nothing here writes any, and they would not survive being kept as text.
        if (!m_xml.namespaceDeclarations().isEmpty()) {
            raiseError(tr("it has XML namespaces, which are not allowed"));
            return false;
        }
    } else if (m_xml.isEndElement()) {
        --m_depth;
    }
    return true;
}

OssResult OssDeserializer::beginDocument(const QString &element, Attributes *documentAttributes)
{
    while (!failed() && !m_xml.atEnd()) {
        m_xml.readNext();
        if (!guard())
            break;
        if (!m_xml.isStartElement())
            continue;
        if (m_xml.name() != element) {
            raiseError(tr("it is not an %1 document").arg(element));
            break;
        }
        *documentAttributes = attributes();
        return {};
    }
    if (!failed())
        raiseError(tr("it is empty"));
    return result();
}

bool OssDeserializer::nextElement()
{
    while (!failed() && !m_xml.atEnd()) {
        m_xml.readNext();
        if (!guard() || m_xml.isEndElement())
            return false;
        if (m_xml.isStartElement())
            return true;
    }
    return false;
}

QString OssDeserializer::elementName() const
{
    return m_xml.name().toString();
}

OssDeserializer::Attributes OssDeserializer::attributes() const
{
    Attributes result;
    const QXmlStreamAttributes read = m_xml.attributes();
    for (const QXmlStreamAttribute &attribute : read)
        result.insert(attribute.name().toString(), attribute.value().toString());
    return result;
}

QString OssDeserializer::attribute(const QString &name) const
{
    return m_xml.attributes().value(name).toString();
}

bool OssDeserializer::loadObject(OssSerializableObject *object)
{
    return object->load(*this) && !failed();
}

void OssDeserializer::skipElement()
{
    const int outside = m_depth - 1;
    while (m_depth > outside && !failed() && !m_xml.atEnd()) {
        m_xml.readNext();
        guard();
    }
}

QString OssDeserializer::readRaw()
{
    QString text;
    QXmlStreamWriter writer(&text);
    const int outside = m_depth - 1;
    writer.writeCurrentToken(m_xml);
    while (m_depth > outside && !failed() && !m_xml.atEnd()) {
        m_xml.readNext();
        if (!guard())
            break;
        if (m_xml.isStartElement() || m_xml.isEndElement() || m_xml.isCharacters())
            writer.writeCurrentToken(m_xml);
    }
    return text;
}

bool OssDeserializer::claimId(const QString &id)
{
    const int before = m_ids.size();
    m_ids.insert(id);
    return m_ids.size() > before;
}

void OssDeserializer::raiseError(const QString &reason)
{
    if (m_error.isEmpty())
        m_error = reason;
}

bool OssDeserializer::failed() const
{
    return !m_error.isEmpty() || m_xml.hasError();
}

OssResult OssDeserializer::result() const
{
    if (!failed())
        return {};
    const QString reason = m_error.isEmpty() ? m_xml.errorString() : m_error;
    return OssResult::failure(
        tr("Cannot read \"%1\", line %2: %3").arg(m_fileName).arg(m_xml.lineNumber()).arg(reason));
}
