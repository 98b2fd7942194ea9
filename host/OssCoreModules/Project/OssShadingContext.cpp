#include "OssCoreModules/Project/OssShadingContext.h"

#include "OssCoreModules/Images/OssImageSet.h"

OssShadingContext::OssShadingContext(const QString &name, OssGeoEntity *entity)
    : OssEntity(name)
    , m_entity(entity)
{
}

OssShadingContext::~OssShadingContext() = default;

OssImageSet *OssShadingContext::currentImageSet() const
{
    return qobject_cast<OssImageSet *>(m_currentImageSet.data());
}

void OssShadingContext::setCurrentImageSet(OssImageSet *set)
{
    m_currentImageSet = set;
}

OssImageSet *OssShadingContext::findImageSet(const QString &name) const
{
    for (OssImageSet *set : m_imageSets) {
        if (set->name() == name)
            return set;
    }
    return nullptr;
}

QList<OssImageSet *> OssShadingContext::imageSets() const
{
    return m_imageSets;
}

void OssShadingContext::addImageSet(OssImageSet *set)
{
    if (!set || m_imageSets.contains(set))
        return;
    set->setParent(this);
    m_imageSets.append(set);
}
