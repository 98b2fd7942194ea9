#include "OssCoreModules/Network/OssSnImageSetNodeBase.h"

#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Images/OssImageSet.h"

OssImageSet *OssSnImageSetNodeBase::imageSet() const
{
    return qobject_cast<OssImageSet *>(m_imageSet.data());
}

void OssSnImageSetNodeBase::setImageSet(OssImageSet *set, bool notify)
{
    const QPointer<QObject> before = m_imageSet;
    if (before == set)
        return;
    const auto apply = [this](QObject *value) {
        m_imageSet = value;
        Q_EMIT imageSetChanged();
        Q_EMIT nodeStateRefreshed();
    };
    if (notify)
        apply(set);
    else
        m_imageSet = set;
    const QPointer<QObject> after(set);
    OssUndoManager::instance()->record(
        tr("Set Images of %1").arg(name()), [apply, before] { apply(before); },
        [apply, after] { apply(after); });
}
