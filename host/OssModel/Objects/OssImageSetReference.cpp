#include "OssModel/Objects/OssImageSetReference.h"

namespace {

const QString Element = QStringLiteral("images");
const QString NameAttribute = QStringLiteral("set");

} // namespace

void OssImageSetReference::set(OssImageSet *set)
{
    m_set = set;
    m_savedName.clear();
}

void OssImageSetReference::save(OssSerializer &serializer) const
{
    if (!name().isEmpty())
        serializer.writeElement(Element, {{NameAttribute, name()}});
}

bool OssImageSetReference::load(const QString &element,
                                const OssSerializableObject::Attributes &attributes)
{
    if (element != Element)
        return false;
    m_savedName = attributes.value(NameAttribute);
    return true;
}
