#pragma once

#include "OssModel/OssModel_export.h"

#include <QList>
#include <QString>
#include <QUuid>

/// Names an image of the project for good: what attributes, drags and files hold.
class OSSMODEL_EXPORT OssImageUniqueId
{
public:
    OssImageUniqueId() = default;

    static OssImageUniqueId create();
    /// Null for a text that is none.
    static OssImageUniqueId fromString(const QString &text);
    /// Ids separated by commas or white space; what is none is left out.
    static QList<OssImageUniqueId> imageIdListFromString(const QString &text);

    bool isNull() const { return m_id.isNull(); }

    QString toString() const { return m_id.toString(QUuid::WithoutBraces); }

    friend bool operator==(const OssImageUniqueId &a, const OssImageUniqueId &b)
    {
        return a.m_id == b.m_id;
    }

private:
    QUuid m_id;
};
