#include "Ossa/Palettes/MaterialListModel.h"

#include "Ossa/Palettes/MaterialPictures.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Types/OssMaterialTypes.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace {

constexpr QSize roomOfOne(MaterialPictures::side + 16, MaterialPictures::side + 40);

/// A faint disc in place of a ball.
QPixmap whileDrawn()
{
    QPixmap pixels(2 * MaterialPictures::side, 2 * MaterialPictures::side);
    pixels.fill(Qt::transparent);
    QPainter painter(&pixels);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 16));
    painter.drawEllipse(pixels.rect().adjusted(8, 8, -8, -8));
    return pixels;
}

} // namespace

MaterialListModel::MaterialListModel(MaterialPictures *pictures, const QString &folder,
                                     QObject *parent)
    : OssNodeTypeListModel(parent)
    , m_pictures(pictures)
{
    setFilter([&folder](const OssSnNodeType &type) {
        return OssMaterialTypes::isMaterial(type.pathKey)
               && (folder.isEmpty() || OssMaterialTypes::folderOf(type.pathKey) == folder);
    });
    connect(m_pictures, &MaterialPictures::made, this, &MaterialListModel::showPicture);
}

QStringList MaterialListModel::folders()
{
    QStringList found;
    const QStringList keys = OssShaderNetworkManager::instance()->nodeGraphPathKeys();
    for (const QString &key : keys) {
        const QString folder = OssMaterialTypes::folderOf(key);
        if (!folder.isEmpty() && !found.contains(folder))
            found.append(folder);
    }
    found.sort(Qt::CaseInsensitive);
    return found;
}

QVariant MaterialListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::DecorationRole) {
        // Asked for what is seen alone, so nothing else is drawn.
        const QImage picture = m_pictures->picture(index.data(PathKeyRole).toString());
        return QIcon(picture.isNull() ? whileDrawn() : QPixmap::fromImage(picture));
    }
    if (role == Qt::SizeHintRole)
        return roomOfOne; // for names of two lines
    if (role == Qt::ToolTipRole) {
        const QString key = index.data(PathKeyRole).toString();
        const auto type = OssShaderNetworkManager::instance()->nodeType(key);
        const QStringList tags = type ? type->aliases : QStringList();
        QString tip = OssNodeTypeListModel::data(index, role).toString();
        if (!tags.isEmpty())
            tip.insert(
                tip.lastIndexOf(QLatin1String("</html>")),
                QStringLiteral("<p>%1</p>").arg(tags.join(QStringLiteral(", ")).toHtmlEscaped()));
        return tip;
    }
    return OssNodeTypeListModel::data(index, role);
}

void MaterialListModel::showPicture(const QString &pathKey)
{
    for (int row = 0; row < rowCount(); ++row) {
        if (index(row).data(PathKeyRole) == pathKey)
            Q_EMIT dataChanged(index(row), index(row), {Qt::DecorationRole});
    }
}
