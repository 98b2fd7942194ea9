#include "OssModel/Images/OssImageList.h"

OssImageList OssImageList::fromVariant(const QVariant &value)
{
    OssImageList list;
    const QStringList texts = value.toStringList();
    for (const QString &text : texts) {
        const OssImageUniqueId id = OssImageUniqueId::fromString(text);
        if (!id.isNull())
            list.append(id);
    }
    return list;
}

QVariant OssImageList::toVariant() const
{
    QStringList texts;
    for (const OssImageUniqueId &id : m_ids)
        texts.append(id.toString());
    return texts;
}
