#pragma once

#include "OssCore/Documents/OssSerializer.h"
#include "OssModel/OssModel_export.h"

#include <QByteArray>
#include <QPointer>
#include <QVector>

class OssProject;
class OssSerializableObject;

/// The text of a project, put together on the GUI thread in steps too short to be noticed: each
/// element of a collection is a part of its own. The project must not change between the first step
/// and the last; whoever steps throws the snapshot away when it does.
class OSSMODEL_EXPORT OssProjectSnapshot
{
public:
    /// The finished parts. Values, so that another thread can put them together.
    struct Part
    {
        struct Hole
        {
            qint64 position = 0; ///< byte of the text at which the other part belongs
            int part = 0;
        };

        QByteArray text;
        QVector<Hole> holes;
    };

    using Parts = QVector<Part>;

    /// `attributes` go to the document's first element. The project must outlive the snapshot.
    OssProjectSnapshot(OssProject *project, OssSerializer::Attributes attributes);
    ~OssProjectSnapshot();
    OssProjectSnapshot(const OssProjectSnapshot &) = delete;
    OssProjectSnapshot &operator=(const OssProjectSnapshot &) = delete;

    /// Writes parts for about that many milliseconds, one at least; a negative number: all of them.
    /// False when an object could not be written or has gone.
    bool advance(int milliseconds);
    bool isDone() const;
    Parts takeParts();

    /// The document, with less white space than a saved one. Any thread.
    static QByteArray joined(const Parts &parts);

private:
    struct Pending
    {
        QPointer<OssSerializableObject> object;
        QString name;
        OssSerializer::Attributes attributes;
    };

    bool writeNext();

    OssProject *m_project;
    OssSerializer::Attributes m_attributes;
    Parts m_parts;              ///< the first is the document's own
    QVector<Pending> m_pending; ///< for each part; those written are empty
    int m_next = 0;
};
