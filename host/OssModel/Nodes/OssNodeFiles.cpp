#include "OssModel/Nodes/OssNodeFiles.h"

#include "OssCore/Values/OssCustomAttribute.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Files/OssEvUdim.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
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

QString OssNodeFiles::automaticSpace(const OssSnBaseNode *node, const QString &attribute)
{
    const OssSnNodeType *type = node->nodeType();
    if (!type || type->kernel != QLatin1String("image"))
        return {};
    const bool isKind = attribute == QLatin1String("ColorSpace");
    if (!isKind && attribute != QLatin1String("FileSpace"))
        return {};
    const QString chosen = node->attribute(QStringLiteral("FileSpace")).toString();
    if (isKind && !chosen.isEmpty())
        return chosen;
    const QStringList files = of(node->userAttribute(QStringLiteral("File")));
    if (files.isEmpty() || files.first().isEmpty())
        return {};
    const std::string pattern = OssEvUdim::pattern(files.first().toStdString());
    const std::vector<int> patches = OssEvUdim::patches(pattern);
    const std::string path = patches.empty() ? pattern : OssEvUdim::file(pattern, patches.front());
    OssEvImageHeader header;
    if (!OssEvImageFiles::readHeader(path, &header))
        return {};
    return QString::fromStdString(OssColorManagement::instance()->fileColors().spaceOf(
        {path, header.channels, header.isInteger, header.space}));
}
