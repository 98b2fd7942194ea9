#pragma once

#include "OssCore/OssCore_export.h"

#include <QMap>
#include <QString>
#include <QXmlStreamWriter>

class QIODevice;

/// Writes objects as a deterministic XML document: the same state gives the same bytes. Attributes
/// come in the order of their names. See OssDeserializer for the reading side and the form.
class OSSCORE_EXPORT OssSerializer
{
public:
    using Attributes = QMap<QString, QString>;

    /// The device stays the caller's and must be open for writing. Check `failed` at the end.
    explicit OssSerializer(QIODevice *device, bool formatted = true);
    OssSerializer(const OssSerializer &) = delete;
    OssSerializer &operator=(const OssSerializer &) = delete;
    ~OssSerializer();

    /// Document element; its attributes carry the format's name and version.
    void beginDocument(const QString &element, const Attributes &attributes);
    void endDocument();

    /// Objects that are saved between the two calls are the collection's elements. `attributes`
    /// are its entries, one child element each, so a large collection stays readable by others.
    void beginCollection(const QString &name, int count, const QString &type,
                         const QString &elementType, const Attributes &attributes);
    void endCollection();

    void beginObject(const QString &name, const QString &type, const Attributes &attributes);
    void endObject();

    /// One element of its own, such as a connection of a node.
    void writeElement(const QString &name, const Attributes &attributes);
    /// XML that was read and not understood, written back as it was.
    void writeRaw(const QString &xml);

    /// Leaves out what differs from one making of the same state to the next: ids.
    void setCanonical(bool canonical) { m_canonical = canonical; }

    bool isCanonical() const { return m_canonical; }

    bool failed() const;

private:
    void writeAttributes(const Attributes &attributes);

    QXmlStreamWriter m_xml;
    bool m_canonical = false;
};
