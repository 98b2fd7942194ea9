#include "OssModel/Nodes/OssSnImageSetNodeBase.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Objects/OssShadingContext.h"

OssImageSet *OssSnImageSetNodeBase::imageSet() const
{
    return m_images.find(network() ? network()->shadingContext() : nullptr);
}

OssImageSet *OssSnImageSetNodeBase::needImageSet()
{
    OssShadingContext *shading = network() ? network()->shadingContext() : nullptr;
    if (imageSet() || !shading)
        return imageSet();
    auto *set = new OssImageSet(shading->freeImageSetName(name()));
    set->setResolution(OssImageManager::instance()->newResolution());
    applySettings(set);
    shading->addImageSet(set); // takes it
    setImageSet(set, true);
    return set;
}

void OssSnImageSetNodeBase::setImageSet(OssImageSet *set, bool notify)
{
    const QPointer<OssImageSet> before = imageSet();
    if (before == set)
        return;
    const auto apply = [this](OssImageSet *value) {
        m_images.set(value);
        Q_EMIT nodeStateRefreshed();
    };
    if (notify)
        apply(set);
    else
        m_images.set(set);
    const QPointer<OssImageSet> after(set);
    OssUndoManager::instance()->record(
        tr("Set Images of %1").arg(name()), [apply, before] { apply(before); },
        [apply, after] { apply(after); }, this);
}

void OssSnImageSetNodeBase::enablePropertiesBasedOnManagedByChannel()
{
    const OssImageSet *set = imageSet();
    setManagedByChannel(set && set->channel());
}

void OssSnImageSetNodeBase::setManagedByChannel(bool managed)
{
    if (m_managedByChannel == managed)
        return;
    m_managedByChannel = managed;
    Q_EMIT nodeStateRefreshed();
}

bool OssSnImageSetNodeBase::saveObjects(OssSerializer &serializer)
{
    m_images.save(serializer);
    return OssSnBaseNode::saveObjects(serializer);
}

bool OssSnImageSetNodeBase::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                          const Attributes &attributes)
{
    return m_images.load(name, attributes)
           || OssSnBaseNode::onLoadElement(deserializer, name, attributes);
}
