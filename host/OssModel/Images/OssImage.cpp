#include "OssModel/Images/OssImage.h"

#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssModel/Images/OssUdimPath.h"

#include <QFileInfo>

const QString OssImage::MimeType = QStringLiteral("application/x-ossa-image-ids");
const QString OssImage::PathMimeType = QStringLiteral("application/x-ossa-image-paths");

OssImage::OssImage(const OssImageUniqueId &id, QObject *parent)
    : OssSerializableObject(parent)
    , m_id(id)
{
}

OssImage::~OssImage() = default;

QString OssImage::name() const
{
    return QFileInfo(m_path).fileName();
}

bool OssImage::isUdim() const
{
    return OssUdimPath::isPattern(m_path);
}

QString OssImage::pathOfPatch(int udim) const
{
    return OssUdimPath::file(m_path, udim);
}

QList<int> OssImage::patches() const
{
    return isUdim() ? OssUdimPath::patches(m_path) : QList<int>{OssEvPatch::First};
}
