#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Values/OssResult.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QXmlStreamReader>

class QIODevice;
class OssSerializableObject;

/// Reads what OssSerializer wrote, from a file that may come from anywhere: no DOCTYPE, no
/// namespaces, nesting and attribute counts bounded. The form is
///
///     <object name type uuid? ...>
///       <properties name=value .../>
///       <collection name type elementType count> <entry key value/>* <object/>* </collection>
///       <object/>*  <anything else/>*
///     </object>
///
/// Reading stops at the first error; what was filled until then must be thrown away by the caller.
class OSSCORE_EXPORT OssDeserializer
{
public:
    using Attributes = QMap<QString, QString>;

    static constexpr int MaximumDepth = 256;
    static constexpr int MaximumAttributes = 512;
    static constexpr qint64 MaximumSize = qint64(1) << 30;

    /// The device stays the caller's. `fileName` is for messages only.
    OssDeserializer(QIODevice *device, QString fileName);
    OssDeserializer(const OssDeserializer &) = delete;
    OssDeserializer &operator=(const OssDeserializer &) = delete;
    ~OssDeserializer();

    /// Enters the document element and returns its attributes; fails when it is another.
    OssResult beginDocument(const QString &element, Attributes *attributes);

    /// Moves to the next child element of the current one; false at its end or on an error.
    bool nextElement();

    /// Of the element at which the reader stands; the document element's is 1.
    int depth() const { return m_depth; }

    QString elementName() const;
    Attributes attributes() const;
    QString attribute(const QString &name) const;

    /// Loads the object element at which the reader stands into `object`.
    bool loadObject(OssSerializableObject *object);
    void skipElement();
    /// The whole current element as text, and moves past it.
    QString readRaw();

    /// False when the id was claimed before in this document.
    bool claimId(const QString &id);

    /// Makes the reading fail with the given reason.
    void raiseError(const QString &reason);
    bool failed() const;
    /// Names the file, the line and the reason.
    OssResult result() const;

private:
    bool guard();

    QXmlStreamReader m_xml;
    QString m_fileName;
    QString m_error;
    QSet<QString> m_ids;
    int m_depth = 0;
};
