#include "Ossa/Viewer/MaterialDrop.h"

#include "Ossa/Commands/MaterialCommands.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Types/OssMaterialTypes.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QDropEvent>
#include <QMimeData>
#include <QWidget>

#include <utility>

MaterialDrop::MaterialDrop(QWidget *view, ObjectAt objectAt)
    : QObject(view)
    , m_objectAt(std::move(objectAt))
{
    view->setAcceptDrops(true);
    view->installEventFilter(this);
}

QString MaterialDrop::materialIn(const QMimeData *data)
{
    const QString key = QString::fromUtf8(data->data(OssNodeTypeListModel::MimeType));
    const auto *networks = OssShaderNetworkManager::instance();
    const bool isOne = networks->currentViewNetwork() && OssMaterialTypes::isMaterial(key)
                       && networks->nodeType(key);
    return isOne ? key : QString();
}

bool MaterialDrop::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        break;
    default:
        return QObject::eventFilter(watched, event);
    }
    auto *drop = static_cast<QDropEvent *>(event); // the others are made of it
    const QString key = materialIn(drop->mimeData());
    if (key.isEmpty())
        return QObject::eventFilter(watched, event);
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
    if (event->type() == QEvent::DragEnter)
        OssStatusManager::instance()->showMessage(
            tr("Drop: the object gets %1").arg(key.section(QLatin1Char('/'), -1)));
    if (event->type() == QEvent::Drop)
        MaterialCommands::putOnObject(key, m_objectAt ? m_objectAt(drop->posF()) : nullptr);
    return true;
}
