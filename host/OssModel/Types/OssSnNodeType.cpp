#include "OssModel/Types/OssSnNodeType.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssValueText.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

constexpr int IdLength = 12;

QString tr(const char *text)
{
    return QCoreApplication::translate("OssSnNodeType", text);
}

QString hashOf(const QString &text)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1).toHex().left(IdLength));
}

/// Reads one description; the first fault is kept and ends the reading.
class Reader
{
public:
    explicit Reader(const QByteArray &xml)
        : m_xml(xml)
    {
    }

    bool read(OssSnNodeType *type);
    QString fault() const;

    qint64 line() const { return m_xml.lineNumber(); }

private:
    void fail(const QString &reason)
    {
        if (m_fault.isEmpty())
            m_fault = reason;
    }

    bool next() { return m_fault.isEmpty() && m_xml.readNextStartElement(); }

    QString text(const char *attribute, const QString &fallback = {}) const
    {
        const QXmlStreamAttributes attributes = m_xml.attributes();
        const QLatin1String name(attribute);
        return attributes.hasAttribute(name) ? attributes.value(name).toString() : fallback;
    }

    bool flag(const char *attribute, bool fallback);
    OssSnDataKind kind();
    void readPorts(const QString &element, QVector<OssSnNodeType::Port> *ports);
    void readAttributes(OssSnNodeType *type, const QString &group);
    void readAttribute(OssSnNodeType *type, const QString &group);
    QVariant readDefault(const OssAttributeKind *kind, const QString &name);
    void readContexts(OssSnNodeType *type, const QString &documentElement);
    void readContent(OssSnNodeType *type);
    void copyElement(QXmlStreamWriter *writer, bool spaces);

    QXmlStreamReader m_xml;
    QString m_fault;
};

bool Reader::flag(const char *attribute, bool fallback)
{
    const QString value = text(attribute,
                               fallback ? QStringLiteral("true") : QStringLiteral("false"));
    const QVariant read = OssValueText::fromText(value, QMetaType::Bool);
    if (!read.isValid())
        fail(tr("%1 is \"%2\", which is neither true nor false")
                 .arg(QLatin1String(attribute), value));
    return read.toBool();
}

OssSnDataKind Reader::kind()
{
    static const char *const names[] = {"Color", "Scalar", "Vector", "Material", "Data"};
    const QString value = text("Kind", QStringLiteral("Color"));
    for (int i = 0; i < 5; ++i) {
        if (value == QLatin1String(names[i]))
            return OssSnDataKind(i);
    }
    fail(tr("there is no port kind \"%1\"").arg(value));
    return OssSnDataKind::Color;
}

void Reader::readPorts(const QString &element, QVector<OssSnNodeType::Port> *ports)
{
    while (next()) {
        if (m_xml.name() != element) {
            fail(tr("\"%1\" stands where only \"%2\" may").arg(m_xml.name().toString(), element));
            return;
        }
        OssSnNodeType::Port port;
        port.name = text("Name");
        port.label = text("Label");
        port.description = text("Description");
        port.kind = kind();
        port.preferred = flag("Preferred", false);
        port.setAtLoad = flag("SetAtLoad", false);
        if (!text("Tags").isEmpty())
            port.tags = text("Tags").split(QLatin1Char(','));
        if (port.name.isEmpty())
            fail(tr("a port has no name"));
        for (const OssSnNodeType::Port &other : qAsConst(*ports)) {
            if (other.name == port.name)
                fail(tr("the port \"%1\" stands there twice").arg(port.name));
        }
        ports->append(port);
        m_xml.skipCurrentElement();
    }
}

QVariant Reader::readDefault(const OssAttributeKind *kind, const QString &name)
{
    if (!kind) {
        fail(tr("\"%1\" has the unknown type \"%2\"").arg(name, text("Type")));
        return {};
    }
    const QStringList choices = text("Choices").split(QLatin1Char(','), Qt::SkipEmptyParts);
    const QString value = text("Default",
                               kind->hasChoices() ? choices.value(0) : kind->defaultText);
    const QVariant read = OssAttributeKind::fromWords(
        OssAttributeKind::empty(kind->form.type, choices), value);
    if (!read.isValid() && kind->hasChoices())
        fail(tr("the default \"%1\" of \"%2\" is none of its choices").arg(value, name));
    else if (!read.isValid())
        fail(tr("the default \"%1\" of \"%2\" is no %3").arg(value, name, kind->name));
    return read;
}

void Reader::readAttribute(OssSnNodeType *type, const QString &group)
{
    QSharedDataPointer<OssCustomAttribute::Definition> definition(
        new OssCustomAttribute::Definition);
    definition->name = text("Name");
    definition->prettyName = text("Label");
    definition->group = group;
    definition->toolTip = text("ToolTip");
    definition->visible = flag("Visible", true);
    const OssAttributeKind *kind = OssAttributeKind::named(text("Type"));
    if (kind && !kind->isPlain())
        definition->editor = kind->name;
    definition->defaultValue = readDefault(kind, definition->name);
    if (definition->name.isEmpty() || definition->name.contains(QLatin1Char('/')))
        fail(tr("\"%1\" is no attribute name").arg(definition->name));
    for (const OssCustomAttribute &other : qAsConst(type->attributes)) {
        if (other.name() == definition->name)
            fail(tr("the attribute \"%1\" stands there twice").arg(definition->name));
    }
    const auto bound = [&](const char *which) -> QVariant {
        if (text(which).isEmpty())
            return {};
        const QVariant value = OssValueText::fromText(text(which), QMetaType::Double);
        if (!value.isValid())
            fail(tr("%1 of \"%2\" is no number").arg(QLatin1String(which), definition->name));
        return value;
    };
    definition->minimum = bound("Minimum");
    definition->maximum = bound("Maximum");
    definition->softMinimum = bound("SoftMinimum");
    definition->softMaximum = bound("SoftMaximum");
    const QVariant value = definition->defaultValue;
    type->attributes.append(OssCustomAttribute(definition, value));
    m_xml.skipCurrentElement();
}

void Reader::readAttributes(OssSnNodeType *type, const QString &group)
{
    while (next()) {
        if (m_xml.name() == QLatin1String("Attribute"))
            readAttribute(type, group);
        else if (m_xml.name() == QLatin1String("Group") && group.isEmpty())
            readAttributes(type, text("Name"));
        else
            fail(tr("\"%1\" stands where only attributes may").arg(m_xml.name().toString()));
    }
}

/// The element at which the reader stands, past which it moves.
void Reader::copyElement(QXmlStreamWriter *writer, bool spaces)
{
    int depth = 0;
    do {
        if (m_xml.isStartElement())
            ++depth;
        else if (m_xml.isEndElement())
            --depth;
        if (m_xml.isStartElement() || m_xml.isEndElement()
            || (m_xml.isCharacters() && (spaces || !m_xml.isWhitespace())))
            writer->writeCurrentToken(m_xml);
        if (depth > 0)
            m_xml.readNext();
    } while (depth > 0 && !m_xml.atEnd());
}

void Reader::readContexts(OssSnNodeType *type, const QString &documentElement)
{
    QXmlStreamWriter writer(&type->contextsDescription);
    writer.writeStartElement(documentElement);
    copyElement(&writer, false);
    writer.writeEndElement();
}

void Reader::readContent(OssSnNodeType *type)
{
    type->contentHash = text("Hash");
    if (next()) {
        QXmlStreamWriter writer(&type->content);
        copyElement(&writer, true);
        type->contentHash = hashOf(type->content);
        m_xml.skipCurrentElement();
    }
    if (type->contentHash.isEmpty())
        fail(tr("its content is empty"));
}

bool Reader::read(OssSnNodeType *type)
{
    if (!next())
        return false;
    const QString documentElement = m_xml.name().toString();
    if (documentElement != QLatin1String("NodeType"))
        fail(tr("it is not a NodeType document"));
    type->pathKey = text("PathKey");
    type->menuPath = text("MenuPath", type->pathKey);
    type->className = text("Class", QStringLiteral("OssSnBaseNode"));
    type->kernel = text("Kernel");
    type->versionUUID = text("VersionUUID");
    type->date = text("Date");
    type->aliases = text("Aliases").split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (type->pathKey.isEmpty())
        fail(tr("it has no PathKey"));
    while (next()) {
        if (m_xml.name() == QLatin1String("Description"))
            type->description = m_xml.readElementText().simplified();
        else if (m_xml.name() == QLatin1String("Inputs"))
            readPorts(QStringLiteral("Input"), &type->inputs);
        else if (m_xml.name() == QLatin1String("Outputs"))
            readPorts(QStringLiteral("Output"), &type->outputs);
        else if (m_xml.name() == QLatin1String("Attributes"))
            readAttributes(type, {});
        else if (m_xml.name() == QLatin1String("Contexts"))
            readContexts(type, documentElement);
        else if (m_xml.name() == QLatin1String("Content"))
            readContent(type);
        else if (m_xml.name() == QLatin1String("Tags")) {
            while (next())
                type->tags.insert(m_xml.readElementText());
        } else
            m_xml.skipCurrentElement();
    }
    return fault().isEmpty();
}

QString Reader::fault() const
{
    return m_fault.isEmpty() && m_xml.hasError() ? m_xml.errorString() : m_fault;
}

QByteArray definitionOf(const OssSnNodeType &type)
{
    QByteArray text;
    const auto line = [&text](const QString &part) {
        text += part.toUtf8() + '\n';
    };
    line(type.pathKey);
    line(type.className);
    line(type.kernel);
    QStringList tags = type.tags.values();
    tags.sort();
    line(tags.join(QLatin1Char(' ')));
    for (const auto *ports : {&type.inputs, &type.outputs}) {
        for (const OssSnNodeType::Port &port : *ports)
            line(QStringLiteral("port %1 %2 %3")
                     .arg(port.name, QString::number(int(port.kind)),
                          port.tags.join(QLatin1Char(','))));
    }
    for (const OssCustomAttribute &attribute : type.attributes)
        line(QStringLiteral("attribute %1 %2 %3 %4")
                 .arg(attribute.name(), QLatin1String(attribute.value().typeName()),
                      OssValueText::toText(attribute.value()),
                      OssAttributeKind::choices(attribute.value()).join(QLatin1Char(','))));
    if (type.isPublishedGroup())
        line(QStringLiteral("content ") + type.contentHash);
    return text;
}

/// What all nodes that read files have, those of projects from before it was thought of, too. No part of
/// what tells one version of a type from another.
void addImplied(OssSnNodeType *type)
{
    if (type->kernel != QLatin1String("image"))
        return;
    QSharedDataPointer<OssCustomAttribute::Definition> definition(
        new OssCustomAttribute::Definition);
    definition->name = QStringLiteral("FileSpace");
    definition->prettyName = tr("File Color Space");
    definition->toolTip = tr(
        "In which the numbers of the file stand; automatic goes by the project's "
        "rules and by what the file says");
    definition->editor = QStringLiteral("colorspace");
    definition->defaultValue = QString();
    for (const OssCustomAttribute &other : qAsConst(type->attributes)) {
        if (other.name() == definition->name)
            return;
    }
    type->attributes.append(OssCustomAttribute(definition, QString()));
}

QString sourceOf(const QByteArray &xml, const QString &contentHash)
{
    QString text;
    QXmlStreamReader reader(xml);
    QXmlStreamWriter writer(&text);
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == QLatin1String("Content")) {
            reader.skipCurrentElement();
            writer.writeEmptyElement(QStringLiteral("Content"));
            writer.writeAttribute(QStringLiteral("Hash"), contentHash);
        } else if (reader.isStartElement() || reader.isEndElement()
                   || (reader.isCharacters() && !reader.isWhitespace()))
            writer.writeCurrentToken(reader);
    }
    return text;
}

} // namespace

std::shared_ptr<const OssSnNodeType> OssSnNodeType::read(const QByteArray &xml,
                                                         const QString &fileName, OssResult *result)
{
    auto type = std::make_shared<OssSnNodeType>();
    Reader reader(xml);
    if (!reader.read(type.get())) {
        const QString reason = reader.fault().isEmpty() ? tr("it is empty") : reader.fault();
        *result = OssResult::failure(tr("Cannot read the node type \"%1\", line %2: %3")
                                         .arg(fileName)
                                         .arg(reader.line())
                                         .arg(reason));
        return nullptr;
    }
    if (type->contextsDescription.isEmpty())
        type->contextsDescription = QStringLiteral("<NodeType/>");
    if (type->versionUUID.isEmpty()) {
        type->versionUUID = QStringLiteral("OSS_") + type->pathKey;
        type->versionUUID.replace(QLatin1Char('/'), QLatin1Char('_'));
        type->versionUUID.replace(QLatin1Char(' '), QLatin1Char('_'));
    }
    type->definition = definitionOf(*type);
    type->source = sourceOf(xml, type->contentHash);
    type->id = hashOf(type->source);
    addImplied(type.get());
    *result = {};
    return type;
}

bool OssSnNodeType::isSameAs(const OssSnNodeType &other) const
{
    return pathKey == other.pathKey && versionUUID == other.versionUUID
           && definition == other.definition && contextsDescription == other.contextsDescription;
}

QString OssSnNodeType::baseName() const
{
    return pathKey.mid(pathKey.lastIndexOf(QLatin1Char('/')) + 1);
}
