#include "OssModel/Nodes/OssNodeFiles.h"

#include "OssCore/Values/OssCustomAttribute.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"

QStringList OssNodeFiles::of(const OssCustomAttribute &attribute)
{
    const QVariant value = attribute.value();
    if (value.userType() == QMetaType::QString)
        return OssFilePath::isHeldBy(attribute)
                   ? QStringList{OssFilePath::valueOf(attribute).toString()}
                   : QStringList();
    QStringList files;
    if (value.userType() == QMetaType::QStringList) {
        const OssImageList images = OssImageList::fromVariant(value);
        for (const OssImageUniqueId &id : images.ids()) {
            const OssImage *image = OssImageManager::instance()->getImage(id);
            files.append(image ? image->path() : QString());
        }
    }
    return files;
}
