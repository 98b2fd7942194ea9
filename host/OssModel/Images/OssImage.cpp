#include "OssModel/Images/OssImage.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

const QString OssImage::MimeType = QStringLiteral("application/x-ossa-image-ids");
const QString OssImage::PathMimeType = QStringLiteral("application/x-ossa-image-paths");

namespace {

const QString Placeholder = QStringLiteral("<UDIM>");
constexpr int FirstPatch = 1001;

} // namespace

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

QString OssImage::pathOfPatch(int udim) const
{
    QString path = m_path;
    return path.replace(Placeholder, QString::number(udim));
}

QList<int> OssImage::patches() const
{
    if (!isUdim())
        return {FirstPatch};
    const QFileInfo info(m_path);
    const QString pattern = QRegularExpression::escape(info.fileName())
                                .replace(QRegularExpression::escape(Placeholder),
                                         QStringLiteral("(\\d{4})"));
    const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
    QList<int> found;
    const QStringList files = info.dir().entryList(QDir::Files);
    for (const QString &file : files) {
        const QRegularExpressionMatch match = expression.match(file);
        if (match.hasMatch() && match.captured(1).toInt() >= FirstPatch)
            found.append(match.captured(1).toInt());
    }
    std::sort(found.begin(), found.end());
    return found;
}
