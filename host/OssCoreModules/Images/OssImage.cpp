#include "OssCoreModules/Images/OssImage.h"

const QString OssImage::MimeType = QStringLiteral("application/x-ossa-image-ids");
const QString OssImage::PathMimeType = QStringLiteral("application/x-ossa-image-paths");

OssImage::OssImage(const QString &path, QObject *parent)
    : OssSerializableObject(parent)
    , m_path(path)
{
}

OssImage::~OssImage() = default;
