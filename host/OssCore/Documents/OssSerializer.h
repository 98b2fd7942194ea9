#pragma once

#include "OssCore/OssCore_export.h"

#include <QMap>
#include <QString>
#include <QVector>
#include <QXmlStreamWriter>

#include <functional>

class OssSerializableObject;
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

    /// The text with U+FFFD for each character that XML cannot carry: most control characters, halves
    /// of surrogate pairs.
    static QString withoutUnwritable(const QString &text);

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

    /// What is written is taken out of a document, which keeps what it has once.
    void setExcerpt(bool excerpt) { m_excerpt = excerpt; }

    bool isExcerpt() const { return m_excerpt; }

    /// What is to be saved as an element of a collection, and the byte of the text at which it
    /// belongs.
    struct PutOff
    {
        OssSerializableObject *object = nullptr;
        QString name;
        Attributes attributes;
        qint64 position = 0;
    };

    /// From now on elements of collections are handed to `take` instead of being written, so that
    /// a large document can be written in small steps. For text that is not formatted.
    void setPutOff(std::function<void(const PutOff &element)> take);
    /// Asked by each object before it writes itself. True: it must not.
    bool putOff(OssSerializableObject *object, const QString &name, const Attributes &attributes);

    bool failed() const;

private:
    void writeAttributes(const Attributes &attributes);

    QXmlStreamWriter m_xml;
    std::function<void(const PutOff &)> m_putOff;
    QVector<bool> m_collections; ///< for each open element whether it is a collection
    bool m_canonical = false;
    bool m_excerpt = false;
};
