#include "OssModel/Nodes/OssSnImageSetNodeBase.h"

#include "OssCore/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssShadingContext.h"

OssImageSet *OssSnImageSetNodeBase::imageSet() const
{
    if (!m_imageSet && !m_savedImageSet.isEmpty() && network() && network()->shadingContext())
        const_cast<OssSnImageSetNodeBase *>(this)->m_imageSet =
            network()->shadingContext()->findImageSet(m_savedImageSet);
    return qobject_cast<OssImageSet *>(m_imageSet.data());
}

void OssSnImageSetNodeBase::setImageSet(OssImageSet *set, bool notify)
{
    const QPointer<QObject> before = imageSet();
    if (before == set)
        return;
    const auto apply = [this](QObject *value) {
        m_imageSet = value;
        m_savedImageSet.clear();
        Q_EMIT nodeStateRefreshed();
    };
    if (notify)
        apply(set);
    else {
        m_imageSet = set;
        m_savedImageSet.clear();
    }
    const QPointer<QObject> after(set);
    OssUndoManager::instance()->record(
        tr("Set Images of %1").arg(name()), [apply, before] { apply(before); },
        [apply, after] { apply(after); });
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
    const OssImageSet *set = imageSet();
    const QString name = set ? set->name() : m_savedImageSet;
    if (!name.isEmpty())
        serializer.writeElement(QStringLiteral("images"), {{QStringLiteral("set"), name}});
    return OssSnBaseNode::saveObjects(serializer);
}

bool OssSnImageSetNodeBase::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                          const Attributes &attributes)
{
    if (name != QLatin1String("images"))
        return OssSnBaseNode::onLoadElement(deserializer, name, attributes);
    m_savedImageSet = attributes.value(QStringLiteral("set"));
    return true;
}
