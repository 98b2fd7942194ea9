#pragma once

#include "OssModel/Images/OssImageUniqueId.h"

#include <QStringList>
#include <QVariant>

/// Images by their ids: the value of attributes that hold images. In a QVariant it is the list of
/// the ids as text, which is what is saved, compared and copied.
class OSSMODEL_EXPORT OssImageList
{
public:
    OssImageList() = default;

    explicit OssImageList(const OssImageUniqueId &id) { append(id); }

    static OssImageList fromVariant(const QVariant &value);

    void append(const OssImageUniqueId &id) { m_ids.append(id); }

    const QList<OssImageUniqueId> &ids() const { return m_ids; }

    QVariant toVariant() const;

private:
    QList<OssImageUniqueId> m_ids;
};
