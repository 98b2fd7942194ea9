#include "OssModel/Images/OssImageUniqueId.h"

#include <QRegularExpression>

OssImageUniqueId OssImageUniqueId::create()
{
    OssImageUniqueId id;
    id.m_id = QUuid::createUuid();
    return id;
}

OssImageUniqueId OssImageUniqueId::fromString(const QString &text)
{
    OssImageUniqueId id;
    id.m_id = QUuid(text.trimmed());
    return id;
}

QList<OssImageUniqueId> OssImageUniqueId::imageIdListFromString(const QString &text)
{
    QList<OssImageUniqueId> ids;
    const QStringList parts = text.split(QRegularExpression(QStringLiteral("[,\\s]+")),
                                         Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const OssImageUniqueId id = fromString(part);
        if (!id.isNull())
            ids.append(id);
    }
    return ids;
}
